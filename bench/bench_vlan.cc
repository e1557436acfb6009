// The VLAN service on the chip model: every VLAN id made and destroyed, and
// membership and record changes per second, through every layer (guard,
// checks, lock 18, the row sharing, the generated accessors, register
// path, HAL, the model).
#include <benchmark/benchmark.h>
#include <tide/tide.h>

#include "bench_chip.h"
#include "tide_int.h"

namespace {

using tide::bench::chip;

constexpr u32 kFirst = 2, kLast = 4095; // 4094 VLANs beside VLAN 1

// All 4094 created, then all destroyed: one item is one create or destroy.
void BM_VlanCreateDestroyAll(benchmark::State &state)
{
    chip();
    for (auto _ : state) {
        for (u32 vid = kFirst; vid <= kLast; vid++) {
            benchmark::DoNotOptimize(vlan_api_create(0, vid));
        }
        for (u32 vid = kFirst; vid <= kLast; vid++) {
            benchmark::DoNotOptimize(vlan_api_destroy(0, vid));
        }
    }
    state.SetItemsProcessed(state.iterations() * (kLast - kFirst + 1) * 2);
}
BENCHMARK(BM_VlanCreateDestroyAll)->Unit(benchmark::kMillisecond);

// A VLAN's members and untagged ports replaced, alternating two sets.
void BM_VlanPortSet(benchmark::State &state)
{
    chip();
    vlan_api_create(0, 100);
    port_bitmap m[2] = {{{0x0FFFFFFF, 0, 0}}, {{0x00F0F0F0, 0, 0}}};
    port_bitmap u[2] = {{{0x0000FFFF, 0, 0}}, {{0x00F00000, 0, 0}}};
    u32 i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(vlan_api_port_set(0, 100, &m[i & 1], &u[i & 1]));
        i++;
    }
    state.SetItemsProcessed(state.iterations());
    vlan_api_destroy(0, 100);
}
BENCHMARK(BM_VlanPortSet);

// One port joining and leaving a VLAN in turn.
void BM_VlanPortAddDelete(benchmark::State &state)
{
    chip();
    vlan_api_create(0, 100);
    port_bitmap one{{1u << 5, 0, 0}}, none{};
    u32 i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize((i & 1) != 0 ? vlan_api_port_delete(0, 100, &one)
                                               : vlan_api_port_add(0, 100, &one, &none));
        i++;
    }
    state.SetItemsProcessed(state.iterations());
    vlan_api_destroy(0, 100);
}
BENCHMARK(BM_VlanPortAddDelete);

// One VLAN among 1000 sharing a row leaves it for a row of its own and
// rejoins: each item a record change with its row moves.
void BM_VlanControlSplitRejoin(benchmark::State &state)
{
    chip();
    for (u32 vid = 1000; vid < 2000; vid++) {
        vlan_api_create(0, vid);
    }
    u32 i = 0;
    for (auto _ : state) {
        vlan_control c{VLAN_CTRL_CLASSID, i & 1};
        benchmark::DoNotOptimize(vlan_api_control_set(0, 1500, &c));
        i++;
    }
    state.SetItemsProcessed(state.iterations());
    for (u32 vid = 1000; vid < 2000; vid++) {
        vlan_api_destroy(0, vid);
    }
}
BENCHMARK(BM_VlanControlSplitRejoin);

} // namespace
