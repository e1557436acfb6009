// One simulated chip, brought up to the hardware level, shared by the
// benchmarks of a program for its whole run.
#ifndef TIDE_BENCH_CHIP_H
#define TIDE_BENCH_CHIP_H

#include <tide/sim.h>
#include <tide/tide.h>

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

} // namespace tide::bench

#endif // TIDE_BENCH_CHIP_H
