// The port service on the chip model: a per-port get through all layers
// (guard, port check, port lock, driver slot), and the port bitmaps of link
// forwarding and of the validity check.
#include <benchmark/benchmark.h>
#include <tide/tide.h>

#include "bench_chip.h"
#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "dpl/reef/port/dpl_reef_port.h"

namespace {

using tide::bench::chip;

// Mapping mode 0 loaded and the MAC ports in use, as after an interface
// set-up of every MAG.
void _ports_up()
{
    chip();
    csl_atolreef_port_map_load(0, 0);
    csl_port_control_get(0)->port_config.pbmp[PORT_CONFIG_ACTIVE] = tide::port::pbmp_range(0, 27);
}

// A get whose driver slot is empty: the frame alone.
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

} // namespace
