// Members of an L2 multicast group removed and added back per second
// through the public calls, on groups of 8 and of 28 members (two
// operations per iteration).
//
// - Shared: a second group with all the members holds a chain.  Removing
//   the last member builds the shorter sequence in free leaves (a group
//   never looks for its sequence on the chain it leaves), adding it back
//   finds the holder's chain, moves the root there and releases the own one.
// - Own: the group is alone; every change builds the whole new sequence in
//   free leaves, writes the root and releases the old chain.
#include <benchmark/benchmark.h>
#include <tide/tide.h>

#include <cstdint>
#include <cstdlib>

#include "bench_chip.h"

namespace {

using tide::bench::chip;

constexpr uint32_t kGroup = 100;
constexpr uint32_t kHolder = 101;

l2_multicast_bitmap _first_ports(uint32_t count)
{
    l2_multicast_bitmap bm{};
    for (uint32_t p = 0; p < count; p++) {
        bm.ports.word[p / 64] |= uint64_t{1} << (p % 64);
    }
    return bm;
}

void _group(uint32_t mgid, uint32_t members)
{
    l2_multicast_bitmap bm = _first_ports(members);
    if (l2_api_multicast_bitmap_set(0, mgid, &bm) != 0) {
        std::abort();
    }
}

void _bench(benchmark::State &state, bool shared)
{
    chip();
    const uint32_t members = static_cast<uint32_t>(state.range(0));
    _group(kGroup, members);
    if (shared) {
        _group(kHolder, members);
    }
    const uint64_t member = L2_MC_PORT(0, members - 1);
    for (auto _ : state) {
        if (l2_api_multicast_port_delete(0, kGroup, member) != 0 || l2_api_multicast_port_add(0, kGroup, member) != 0) {
            state.SkipWithError("member change failed");
            break;
        }
    }
    state.SetItemsProcessed(2 * state.iterations());
    l2_api_multicast_destroy(0, kGroup);
    if (shared) {
        l2_api_multicast_destroy(0, kHolder);
    }
}

void BM_McMemberShared(benchmark::State &state)
{
    _bench(state, true);
}
BENCHMARK(BM_McMemberShared)->Arg(8)->Arg(28);

void BM_McMemberOwn(benchmark::State &state)
{
    _bench(state, false);
}
BENCHMARK(BM_McMemberOwn)->Arg(8)->Arg(28);

} // namespace
