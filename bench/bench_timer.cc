// The timer manager: one cycle is the start of a 0 ms timer, its callback
// on the timer thread, and its stop.
#include <benchmark/benchmark.h>

#include "sal/linux_um/xsal_int.h"

namespace {

void _fired(void *arg)
{
    xsal_sem_give(static_cast<xsal_sem_t>(arg));
}

void BM_TimerZeroMsAddAndFire(benchmark::State &state)
{
    xsal_timer_init();
    xsal_sem_t fired = xsal_sem_create("fired", 0);
    xsal_timer_t t = nullptr;
    xsal_timer_create(&t, "bench", _fired, fired);
    for (auto _ : state) {
        xsal_timer_start(t, 0);
        xsal_sem_take(fired);
        xsal_timer_stop(t);
        // A 0 ms timer may fire again before the stop: drain those.
        while (xsal_sem_trytake(fired) == 0) {
        }
    }
    xsal_timer_destroy(t);
    xsal_sem_destroy(fired);
    xsal_timer_deinit();
}
BENCHMARK(BM_TimerZeroMsAddAndFire)->Unit(benchmark::kMicrosecond);

} // namespace
