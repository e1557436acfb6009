// One simulated chip, brought up to the hardware level with its front ports
// up (the model's MACs pass frames only by those), shared by the benchmarks
// of a program for its whole run.
#ifndef TIDE_BENCH_CHIP_H
#define TIDE_BENCH_CHIP_H

#include <benchmark/benchmark.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include "support/front_ports.h"

namespace tide::bench {

struct Chip {
    Chip()
    {
        tide_sim_install(1);
        sdk_init_cfg cfg{};
        tide_sim_sdk_init_cfg(&cfg);
        init_api_base_software_process(&cfg);
        init_api_software_process(0, &cfg);
        init_api_hardware_process(0);
        tide::test::front_ports_up(0);
    }
    ~Chip()
    {
        deinit_api_hardware_process(0);
        deinit_api_software_process(0);
        deinit_api_base_software_process();
        tide_sim_uninstall();
    }
    Chip(const Chip &) = delete;
    Chip &operator=(const Chip &) = delete;
};

inline Chip &chip()
{
    static Chip c;
    return c;
}

// The next number of a xorshift sequence: the benchmarks' keys are spread
// but the same from run to run.
inline uint64_t next_random(uint64_t &x)
{
    x ^= x << 13;
    x ^= x >> 7;
    x ^= x << 17;
    return x;
}

// Runs `op(i)` for i = 0, 1, ... in turn, `start` first; every `batch`
// items, outside the timing, `refill` puts the chip's table back and i
// starts again from 0.
template <typename Op>
void in_batches(benchmark::State &state, uint32_t batch, void (*start)(), void (*refill)(), Op op)
{
    start();
    uint32_t i = 0;
    for (auto _ : state) {
        if (i == batch) {
            state.PauseTiming();
            refill();
            i = 0;
            state.ResumeTiming();
        }
        op(i++);
    }
    state.SetItemsProcessed(state.iterations());
}

} // namespace tide::bench

#endif // TIDE_BENCH_CHIP_H
