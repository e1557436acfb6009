// The QoS service on the chip model: policer profiles created and
// destroyed, set, and bound to a port and back, per second, through every
// layer; and the model's forwarding rate of known-unicast frames with a
// port policer on the ingress and the egress port of every frame (so that
// both meters and the queue and remark stage run for each), beside the
// same frames with no policer bound.
#include <benchmark/benchmark.h>

#include <vector>

#include "support/vlan_ports.h"
#include "bench_chip.h"
#include "tide_int.h"

namespace {

using tide::bench::chip;

void BM_QosPolicerCreateDestroy(benchmark::State &state)
{
    chip();
    for (auto _ : state) {
        u32 id = 0;
        benchmark::DoNotOptimize(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id));
        benchmark::DoNotOptimize(qos_api_policer_destroy(0, QOS_POLICER_SPORT, id));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QosPolicerCreateDestroy);

void BM_QosPolicerSet(benchmark::State &state)
{
    chip();
    u32 id = 0;
    qos_api_policer_create(0, 0, QOS_POLICER_DPORT, &id);
    qos_policer_cfg c{};
    c.flag = QOS_POLICER_F_MODE | QOS_POLICER_F_CIR | QOS_POLICER_F_CBS | QOS_POLICER_F_XIR | QOS_POLICER_F_XBS;
    c.mode = QOS_CAR_RFC2698;
    c.cbs = c.xbs = 64000;
    u64 rate = 1000000;
    for (auto _ : state) {
        c.cir = rate;
        c.xir = 2 * rate;
        rate = rate % 10000000000ull + 1000003;
        benchmark::DoNotOptimize(qos_api_policer_set(0, QOS_POLICER_DPORT, id, &c));
    }
    qos_api_policer_destroy(0, QOS_POLICER_DPORT, id);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QosPolicerSet);

void BM_QosPolicerBindUnbind(benchmark::State &state)
{
    chip();
    u32 id = 0;
    qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id);
    u32 port = 0;
    for (auto _ : state) {
        qos_bind_info b{QOS_POLICER_SPORT, 0, 0, port, id};
        benchmark::DoNotOptimize(qos_api_policer_bind(0, &b));
        benchmark::DoNotOptimize(qos_api_policer_unbind(0, &b));
        port = (port + 1) % 28;
    }
    qos_api_policer_destroy(0, QOS_POLICER_SPORT, id);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QosPolicerBindUnbind);

constexpr uint64_t kA = 0x02000000000Aull, kB = 0x02000000000Bull;

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

// VLAN 1 on the front ports, A on port 1 and B on port 2; with `policers`
// every front port has an ingress and an egress policer far above the
// offered load, so that every frame is metered twice and passes.
std::vector<uint8_t> _setup(bool policers)
{
    chip();
    tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF);
    const std::vector<uint8_t> a = _frame(0xFFFFFFFFFFFFull, kA), b = _frame(0xFFFFFFFFFFFFull, kB);
    tide_sim_packet_inject(0, 1, a.data(), static_cast<uint32_t>(a.size()));
    tide_sim_packet_inject(0, 2, b.data(), static_cast<uint32_t>(b.size()));
    for (u32 type : {QOS_POLICER_SPORT, QOS_POLICER_DPORT}) {
        for (u32 port = 0; port < 28; port++) {
            u32 id = port;
            qos_bind_info bind{type, 0, 0, port, id};
            if (!policers) {
                qos_api_policer_unbind(0, &bind);
                qos_api_policer_destroy(0, type, id);
                continue;
            }
            qos_api_policer_create(0, 1, type, &id);
            qos_policer_cfg c{};
            c.flag = QOS_POLICER_F_MODE | QOS_POLICER_F_CIR | QOS_POLICER_F_CBS;
            c.mode = QOS_CAR_RFC4115;
            c.cir = 50000000000ull;
            c.cbs = 1020000;
            qos_api_policer_set(0, type, id, &c);
            qos_policer_action g{QOS_COLOR_GREEN, QOS_POLICER_ACT_PASS, 0, 0};
            qos_api_policer_action_set(0, type, id, &g);
            qos_api_policer_bind(0, &bind);
        }
    }
    uint8_t buf[128];
    uint32_t len = 0;
    for (uint32_t p = 0; p < 32; p++) {
        while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
        }
    }
    return _frame(kB, kA);
}

void _forward(benchmark::State &state, bool policers)
{
    const std::vector<uint8_t> f = _setup(policers);
    u32 n = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(tide_sim_packet_inject(0, 1, f.data(), static_cast<uint32_t>(f.size())));
        if (++n % 1024 == 0) {
            // A millisecond of model time now and then keeps the buckets
            // filling, as on a wire.
            tide_sim_time_advance(0, 1);
        }
    }
    state.SetItemsProcessed(state.iterations());
    _setup(false);
}

void BM_QosForwardPoliced(benchmark::State &state)
{
    _forward(state, true);
}
BENCHMARK(BM_QosForwardPoliced);

void BM_QosForwardUnpoliced(benchmark::State &state)
{
    _forward(state, false);
}
BENCHMARK(BM_QosForwardUnpoliced);

} // namespace
