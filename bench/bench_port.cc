// The port service on the chip model: the 28 front ports from nothing to
// link up, a per-port get through all layers
// (guard, port check, port lock, driver slot), and the port bitmaps of link
// forwarding and of the validity check.
#include <benchmark/benchmark.h>
#include <tide/tide.h>

#include "bench_chip.h"
#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "dpl/reef/port/dpl_reef_port.h"

namespace {

using tide::bench::chip;

// All 28 front ports brought up through the SDK, as an application does:
// mapping mode 0 (every interface type back to none), then the harness's
// interface type of each MAG and every port enabled.  The number of ports
// whose link is up, or -1 when a call fails.
int _ports_up()
{
    chip();
    i32 rc = port_api_map_mode_set(0, 0);
    if (rc == 0) {
        rc = tide::test::front_ports_up(0);
    }
    int linked = 0;
    for (u32 lport = 0; lport < 28 && rc == 0; lport++) {
        u32 up = 0;
        rc = port_api_link_status_get(0, lport, &up);
        linked += static_cast<int>(up);
    }
    return rc == 0 ? linked : -1;
}

// A get the driver answers from its own state.
void BM_PortEnableGet(benchmark::State &state)
{
    _ports_up();
    u32 v = 0;
    u32 lport = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(port_api_enable_get(0, lport, &v));
        lport = (lport + 1) % 28;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PortEnableGet);

// A get that the driver answers from the port model.
void BM_PortSerdesIdGet(benchmark::State &state)
{
    _ports_up();
    port_serdes_id s{};
    u32 lport = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(port_api_serdes_id_get(0, lport, &s));
        lport = (lport + 1) % 28;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PortSerdesIdGet);

// Link forwarding of all 28 front ports: one register read-modify-write
// each.  Items: bitmaps applied.
void BM_PortLinkFwdPbmpSet(benchmark::State &state)
{
    _ports_up();
    port_bitmap up[2] = {tide::port::pbmp_range(0, 13), tide::port::pbmp_range(14, 27)};
    u32 i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(dpl_reef_port_link_fwd_pbmp_set(0, &up[i]));
        i ^= 1;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PortLinkFwdPbmpSet);

// The check of a bitmap against the existing ports: 192 bits.
void BM_PortValidBmpCheck(benchmark::State &state)
{
    _ports_up();
    const port_bitmap all = tide::port::pbmp_range(0, 31);
    for (auto _ : state) {
        benchmark::DoNotOptimize(csl_port_valid_bmp_check(0, &all));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PortValidBmpCheck);

// All 28 front ports from nothing to link up through the SDK.
void BM_PortsFromNothingToLinkUp(benchmark::State &state)
{
    for (auto _ : state) {
        if (_ports_up() != 28) {
            state.SkipWithError("the front ports did not all come up");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * 28);
}
BENCHMARK(BM_PortsFromNothingToLinkUp)->Unit(benchmark::kMillisecond);

} // namespace
