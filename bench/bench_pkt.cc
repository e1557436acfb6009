// The chip model's packet path: known-unicast 64-byte frames (60 bytes
// without the FCS) from port 1 to a station learned on port 2, through
// tide_sim_packet_inject on one core; with and without taking the frames
// out of port 2's queue; and with the model's MAC gating off, which the
// gate's cost per frame is read against.
#include <benchmark/benchmark.h>

#include <vector>

#include "support/vlan_ports.h"
#include "bench_chip.h"

namespace {

using tide::bench::chip;

std::vector<uint8_t> _frame(uint64_t dmac, uint64_t smac)
{
    std::vector<uint8_t> f;
    for (uint64_t mac : {dmac, smac}) {
        for (int i = 5; i >= 0; i--) {
            f.push_back(static_cast<uint8_t>(mac >> (8 * i)));
        }
    }
    f.insert(f.end(), {0x08, 0x00});
    f.resize(60, 0);
    return f;
}

constexpr uint64_t kA = 0x02000000000Aull, kB = 0x02000000000Bull;

// VLAN 1 on the front ports, A learned on port 1 and B on port 2.
std::vector<uint8_t> _known_unicast()
{
    chip();
    tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF);
    const std::vector<uint8_t> a = _frame(0xFFFFFFFFFFFFull, kA), b = _frame(0xFFFFFFFFFFFFull, kB);
    tide_sim_packet_inject(0, 1, a.data(), static_cast<uint32_t>(a.size()));
    tide_sim_packet_inject(0, 2, b.data(), static_cast<uint32_t>(b.size()));
    uint8_t buf[128];
    uint32_t len = 0;
    for (uint32_t p = 0; p < 32; p++) {
        while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
        }
    }
    return _frame(kB, kA);
}

void BM_PktKnownUnicast(benchmark::State &state)
{
    const std::vector<uint8_t> f = _known_unicast();
    for (auto _ : state) {
        benchmark::DoNotOptimize(tide_sim_packet_inject(0, 1, f.data(), static_cast<uint32_t>(f.size())));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PktKnownUnicast);

// The same frames with the MACs letting every frame pass.
void BM_PktKnownUnicastUngated(benchmark::State &state)
{
    const std::vector<uint8_t> f = _known_unicast();
    tide_sim_mac_gating_set(0, 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(tide_sim_packet_inject(0, 1, f.data(), static_cast<uint32_t>(f.size())));
    }
    tide_sim_mac_gating_set(0, 1);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PktKnownUnicastUngated);

void BM_PktKnownUnicastCaptured(benchmark::State &state)
{
    const std::vector<uint8_t> f = _known_unicast();
    uint8_t buf[128];
    uint32_t len = 0;
    for (auto _ : state) {
        tide_sim_packet_inject(0, 1, f.data(), static_cast<uint32_t>(f.size()));
        benchmark::DoNotOptimize(tide_sim_packet_capture(0, 2, buf, sizeof(buf), &len));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PktKnownUnicastCaptured);

} // namespace
