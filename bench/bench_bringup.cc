// Bring-up of one chip on the model: software init and hardware init as an
// application calls them, and the tear-down that follows.
#include <benchmark/benchmark.h>
#include <tide/sim.h>
#include <tide/tide.h>

namespace {

// The process level stays up; the log is off so that the figures are the
// bring-up's own.
struct Process {
    Process()
    {
        tide_sim_install(1);
        tide_sim_sdk_init_cfg(&cfg);
        init_api_base_software_process(&cfg);
        shr_property_set(0, "debug_status", "0");
    }
    ~Process()
    {
        deinit_api_base_software_process();
        tide_sim_uninstall();
    }
    sdk_init_cfg cfg{};
};

Process &process()
{
    static Process p;
    return p;
}

void BM_ChipBringUp(benchmark::State &state)
{
    Process &p = process();
    for (auto _ : state) {
        if (init_api_software_process(0, &p.cfg) != 0 || init_api_hardware_process(0) != 0) {
            state.SkipWithError("bring-up failed");
            break;
        }
        state.PauseTiming();
        deinit_api_hardware_process(0);
        deinit_api_software_process(0);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ChipBringUp)->Unit(benchmark::kMillisecond);

void BM_ChipTearDown(benchmark::State &state)
{
    Process &p = process();
    for (auto _ : state) {
        state.PauseTiming();
        init_api_software_process(0, &p.cfg);
        init_api_hardware_process(0);
        state.ResumeTiming();
        deinit_api_hardware_process(0);
        deinit_api_software_process(0);
    }
}
BENCHMARK(BM_ChipTearDown)->Unit(benchmark::kMillisecond);

} // namespace
