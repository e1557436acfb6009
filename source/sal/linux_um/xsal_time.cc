// Clocks.
#include <sys/select.h>
#include <sys/time.h>
#include <time.h>

#include "sal/linux_um/xsal_int.h"

extern "C" {

u64 xsal_time_usecs(void)
{
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return static_cast<u64>(tv.tv_sec) * 1000000u + static_cast<u64>(tv.tv_usec);
}

int xsal_get_current_time(xsal_calendar *out)
{
    if (out == nullptr) {
        return -1;
    }
    const time_t now = time(nullptr);
    struct tm tm_now;
    if (localtime_r(&now, &tm_now) == nullptr) {
        return -1;
    }
    out->sec = static_cast<u32>(tm_now.tm_sec);
    out->min = static_cast<u32>(tm_now.tm_min);
    out->hour = static_cast<u32>(tm_now.tm_hour);
    out->mday = static_cast<u32>(tm_now.tm_mday);
    out->mon = static_cast<u32>(tm_now.tm_mon + 1);
    out->year = static_cast<u32>(tm_now.tm_year + 1900);
    return 0;
}

} // extern "C"

extern "C" {

// Sleeps `usec` microseconds.  From 20 ms up the thread sleeps in select;
// below that it spins on the clock, since a sleep of the scheduler can
// overshoot short delays by a whole tick.
void xsal_usleep(u32 usec)
{
    if (usec >= 20000) {
        struct timeval tv;
        tv.tv_sec = usec / 1000000;
        tv.tv_usec = usec % 1000000;
        select(0, nullptr, nullptr, nullptr, &tv);
        return;
    }
    const u64 start = xsal_time_usecs();
    while (xsal_time_usecs() - start < usec) {
        struct timeval zero = {0, 0};
        select(0, nullptr, nullptr, nullptr, &zero);
    }
}

} // extern "C"
