// A poll timeout with back-off: the first polls are free, then the clock
// starts and each poll that finds the time not yet run out sleeps a little
// longer than the one before, up to an eighth of the timeout.
#include <algorithm>
#include <climits>

#include "sal/linux_um/xsal_int.h"
#include "shared/shr_int.h"

namespace {

// Microseconds from the start of the clock (expire - usec) to `now`.
u64 _since_start(const shr_timeout *to, u64 now)
{
    return now - (to->expire - to->usec);
}

} // namespace

extern "C" {

int32_t shr_timeout_init(shr_timeout *to, u64 usec, u32 min_polls)
{
    if (to == nullptr) {
        return SHR_E_PARAM;
    }
    to->expire = 0;
    to->usec = usec;
    to->min_polls = static_cast<int32_t>(std::min<u32>(min_polls, INT32_MAX));
    to->polls = 1;
    to->exp_delay = 1;
    return SHR_E_NONE;
}

int32_t shr_timeout_check(shr_timeout *to)
{
    if (to == nullptr) {
        return SHR_E_PARAM;
    }
    if (to->polls < INT32_MAX) {
        to->polls++;
    }
    if (to->polls < to->min_polls) {
        return 0;
    }
    if (to->min_polls >= 0) {
        // The free polls are over: the clock starts now.
        to->min_polls = -1;
        to->expire = xsal_time_usecs() + to->usec;
        to->exp_delay = 1;
        SHR_LOG_WRN(SHR_NO_CHIP, SHR_MOD_COMMON, "to->usec = %lu\n", (unsigned long)to->usec);
        SHR_LOG_WRN(SHR_NO_CHIP, SHR_MOD_COMMON, "to->expire = %lu\n", (unsigned long)to->expire);
        return 0;
    }
    // The difference taken as signed works across a wrap of the clock.
    const u64 now = xsal_time_usecs();
    if (static_cast<int64_t>(now - to->expire) >= 0) {
        const u64 cost = _since_start(to, now);
        SHR_LOG_WRN(SHR_NO_CHIP, SHR_MOD_COMMON, "shr_timeout_check exit cost %d\n",
                    (int)std::min<u64>(cost, INT32_MAX));
        return 1;
    }
    xsal_usleep(static_cast<u32>(std::min<u64>(to->exp_delay, UINT32_MAX)));
    to->exp_delay = std::min(to->exp_delay * 2, to->usec / 8);
    SHR_LOG_WRN(SHR_NO_CHIP, SHR_MOD_COMMON, "to->exp_delay = %lu\n", (unsigned long)to->exp_delay);
    return 0;
}

u64 shr_timeout_elapsed(const shr_timeout *to)
{
    if (to == nullptr || to->min_polls >= 0) {
        return 0;
    }
    return _since_start(to, xsal_time_usecs());
}

} // extern "C"
