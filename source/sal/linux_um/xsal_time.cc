// Clocks, delays, random numbers and arithmetic helpers.
#include <sys/select.h>
#include <sys/time.h>
#include <time.h>

#include <atomic>
#include <cmath>

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

// Sleeps `usec` microseconds: returns once xsal_time_usecs() has moved on
// by more than `usec`.  The clock reads whole microseconds, truncated, so a
// move of usec + 1 readings is at least `usec` real microseconds on it.
// From 20 ms up the thread sleeps in select (again for what a signal cut
// short); below that it spins on the clock, since a sleep of the scheduler
// can overshoot short delays by a whole tick.
void xsal_usleep(u32 usec)
{
    const u64 start = xsal_time_usecs();
    if (usec >= 20000) {
        for (u64 spent = 0; spent <= usec; spent = xsal_time_usecs() - start) {
            const u64 left = usec + 1 - spent;
            struct timeval tv;
            tv.tv_sec = static_cast<time_t>(left / 1000000);
            tv.tv_usec = static_cast<suseconds_t>(left % 1000000);
            select(0, nullptr, nullptr, nullptr, &tv);
        }
        return;
    }
    while (xsal_time_usecs() - start <= usec) {
        struct timeval zero = {0, 0};
        select(0, nullptr, nullptr, nullptr, &zero);
    }
}

} // extern "C"

// ---- busy delay -----------------------------------------------------------

extern "C" {
volatile u32 g_xsal_udelay_loops;
volatile u32 g_xsal_udelay_counter;
}

namespace {

constexpr u64 kTickUsec = 10000;
constexpr u32 kMaxDoubling = 4095;

void _xsal_spin(i32 usec, u32 loops)
{
    for (i32 i = 0; i < usec; i++) {
        for (u32 j = 0; j < loops; j++) {
            g_xsal_udelay_counter = g_xsal_udelay_counter + 1;
        }
    }
}

// Starts a delay of 10,000 with `loops` on a 10 ms boundary of the clock;
// true when it ended in a later 10 ms tick.
bool _xsal_delay_crosses_tick(u32 loops)
{
    const u64 tick = xsal_time_usecs() / kTickUsec;
    u64 start;
    while ((start = xsal_time_usecs() / kTickUsec) == tick) {
    }
    _xsal_spin(static_cast<i32>(kTickUsec), loops);
    return xsal_time_usecs() / kTickUsec != start;
}

// Doubles the loop count until a delay of 10 ms crosses a tick, then looks
// between a quarter and a half of that count for the smallest that crosses
// (or takes the half).  The search halves the range at each step rather
// than counting up by one, which gives the same count in far fewer ticks.
void _xsal_udelay_calibrate()
{
    u32 loops = 1;
    while (loops <= kMaxDoubling && !_xsal_delay_crosses_tick(loops)) {
        loops *= 2;
    }
    u32 lo = loops / 4 > 0 ? loops / 4 : 1;
    u32 hi = loops / 2 > lo ? loops / 2 : lo;
    while (lo < hi) {
        const u32 mid = lo + (hi - lo) / 2;
        if (_xsal_delay_crosses_tick(mid)) {
            hi = mid;
        } else {
            lo = mid + 1;
        }
    }
    g_xsal_udelay_loops = lo;
}

} // namespace

extern "C" {

void xsal_udelay(int32_t usec)
{
    if (usec == 0 || g_xsal_udelay_loops == 0) {
        _xsal_udelay_calibrate();
        if (usec == 0) {
            return;
        }
    }
    _xsal_spin(usec, g_xsal_udelay_loops);
}

time_t xsal_time(void)
{
    return time(nullptr);
}

// ---- random numbers ---------------------------------------------------------

} // extern "C"

namespace {

// Linear congruential generator on a 32-bit state, seeded from the clock
// at its first use unless a seed was set.
std::atomic<u32> g_sal_seed;
std::atomic<u32> g_sal_seed_init;

constexpr u32 _lcg_step(u32 state)
{
    return state * 1664525u + 1013904223u;
}

static_assert(_lcg_step(0) == 1013904223u);

} // namespace

extern "C" {

void xsal_srand(uint64_t seed)
{
    g_sal_seed.store(static_cast<u32>(seed));
    g_sal_seed_init.store(1);
}

void xsal_srand_func(uint64_t seed)
{
    xsal_srand(seed);
}

u32 xsal_rand_func(void)
{
    u32 state = g_sal_seed.load();
    while (!g_sal_seed.compare_exchange_weak(state, _lcg_step(state))) {
    }
    return _lcg_step(state);
}

u32 xsal_rand(void)
{
    u32 expected = 0;
    if (g_sal_seed_init.load() == 0 && g_sal_seed_init.compare_exchange_strong(expected, 1)) {
        g_sal_seed.store(static_cast<u32>(xsal_time_usecs()));
    }
    return xsal_rand_func();
}

// ---- numbers ----------------------------------------------------------------

u64 xsal_udiv64(u64 dividend, u64 divisor)
{
    return divisor != 0 ? dividend / divisor : 0;
}

u64 xsal_umod64(u64 dividend, u64 divisor)
{
    return divisor != 0 ? dividend % divisor : 0;
}

double xsal_pow(double base, double exponent)
{
    return std::pow(base, exponent);
}

double xsal_ceil(double value)
{
    return std::ceil(value);
}

double xsal_floor(double value)
{
    return std::floor(value);
}

double xsal_fabs(double value)
{
    return std::fabs(value);
}

} // extern "C"
