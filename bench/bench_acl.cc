// ACL installs on the chip model through acl_api_*: 2,000 entries into one
// group whose table grows block by block (automatic block mode), in the
// worst priority order (each new entry above all others, so that every
// insert finds its window at the low end) and in random order.  Reported:
// entries installed per second and entry moves per insert.
//
// And the model's forwarding rate with the ingress ACL lookup running on
// every frame, over an empty TCAM and over 2,000 installed entries: 64
// flows, half of them hitting a permit entry, the others no entry at all.
// Reported: frames per second of each and the ratio of the two.
#include <benchmark/benchmark.h>
#include <tide/acl.h>
#include <tide/property.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <vector>

#include "support/front_ports.h"
#include "support/vlan_ports.h"

namespace {

constexpr uint32_t kEntries = 2000;
constexpr uint32_t kL2Template = 31;  // icap-width-single-l2
constexpr uint32_t kMatchSmacLow = 19; // smac-31-0
constexpr uint32_t kActionDrop = 24;
constexpr uint32_t kActionPermit = 151;

// One chip; `automatic`: its ACL takes blocks as its groups need them,
// else a group gets the blocks of its size at its first install.
struct AclBenchChip {
    explicit AclBenchChip(bool automatic) : automatic(automatic)
    {
        tide_sim_install(1);
        sdk_init_cfg cfg{};
        tide_sim_sdk_init_cfg(&cfg);
        init_api_base_software_process(&cfg);
        shr_property_set(0, "acl_alloc_tcam_resource_mode", automatic ? "1" : "0");
        // The whole TCAM for the ACL: no VLAN TCAM spaces carved.
        shr_property_set(0, "vacl_160bit_cnt", "0");
        shr_property_set(0, "vacl_320bit_cnt", "0");
        init_api_software_process(0, &cfg);
        init_api_hardware_process(0);
        tide::test::front_ports_up(0);
    }
    ~AclBenchChip()
    {
        deinit_api_hardware_process(0);
        deinit_api_software_process(0);
        deinit_api_base_software_process();
        tide_sim_uninstall();
    }
    bool automatic;
};

std::unique_ptr<AclBenchChip> g_chip;

// The chip of the mode asked for, brought up again when the mode changes.
// The chip goes down at exit before the model's own statics do: its
// teardown is registered after the first bring-up made them.
AclBenchChip &_chip(bool automatic)
{
    if (g_chip == nullptr || g_chip->automatic != automatic) {
        g_chip.reset();
        g_chip = std::make_unique<AclBenchChip>(automatic);
        static const bool registered = std::atexit([] { g_chip.reset(); }) == 0;
        (void)registered;
    }
    return *g_chip;
}

uint32_t _group(bool automatic)
{
    uint32_t id = 0;
    acl_api_group_create(0, 0, &id);
    acl_group_para p{};
    p.type = ACL_GROUP_ICAP;
    p.mode = ACL_MODE_SINGLE;
    // Automatic: one block to begin with; else room for all entries.
    p.entry_num = automatic ? ACL_GROUP_ENTRY_UNIT : (kEntries + ACL_GROUP_ENTRY_UNIT - 1) / ACL_GROUP_ENTRY_UNIT * ACL_GROUP_ENTRY_UNIT;
    p.flags = automatic ? ACL_GROUP_FLAG_AUTO : ACL_GROUP_FLAG_SIZE;
    acl_api_group_set(0, id, &p);
    return id;
}

// Makes and installs one entry; false on any refusal.
bool _install(uint32_t group, uint32_t priority, uint32_t smac, uint32_t action = kActionDrop)
{
    uint32_t id = 0;
    if (acl_api_entry_create(0, 0, priority, group, &id) != 0 || acl_api_entry_template_set(0, id, kL2Template) != 0) {
        return false;
    }
    acl_item m{kMatchSmacLow, smac, 0xFFFFFFFFu};
    acl_item a{action, 0, 0};
    return acl_api_entry_match_field_set(0, id, &m) == 0 && acl_api_entry_action_set(0, id, &a) == 0 &&
           acl_api_entry_install(0, id) == 0;
}

// Installs the priorities of `order` into a fresh group per iteration.
void _run(benchmark::State &state, const std::vector<uint32_t> &order)
{
    const bool automatic = state.range(0) != 0;
    _chip(automatic);
    uint64_t moves = 0;
    uint64_t inserts = 0;
    for (auto _ : state) {
        const uint32_t group = _group(automatic);
        for (uint32_t i = 0; i < order.size(); i++) {
            if (!_install(group, order[i], i)) {
                state.SkipWithError("install refused");
                return;
            }
        }
        acl_group_info info{};
        acl_api_group_get(0, group, &info);
        moves += info.moves;
        inserts += order.size();
        state.PauseTiming();
        acl_api_group_destroy(0, group);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<int64_t>(inserts));
    state.counters["moves_per_insert"] = static_cast<double>(moves) / static_cast<double>(inserts);
    state.counters["group_entries_div_16"] = static_cast<double>(order.size()) / 16.0;
}

void BM_AclInstallWorstOrder(benchmark::State &state)
{
    std::vector<uint32_t> order(kEntries);
    for (uint32_t i = 0; i < kEntries; i++) {
        order[i] = kEntries - i; // each new entry above all others
    }
    _run(state, order);
}
BENCHMARK(BM_AclInstallWorstOrder)->ArgName("automatic")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_AclInstallRandomOrder(benchmark::State &state)
{
    uint64_t seed = 20261124;
    if (const char *env = std::getenv("TIDE_TEST_SEED"); env != nullptr && *env != '\0') {
        seed = std::strtoull(env, nullptr, 0);
    }
    std::printf("BM_AclInstallRandomOrder seed %llu\n", static_cast<unsigned long long>(seed));
    std::mt19937_64 rng(seed);
    std::vector<uint32_t> order(kEntries);
    for (uint32_t &p : order) {
        p = static_cast<uint32_t>(rng() % 1000000);
    }
    _run(state, order);
}
BENCHMARK(BM_AclInstallRandomOrder)->ArgName("automatic")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// ---- forwarding through the ingress ACL stage ------------------------------------------

constexpr uint32_t kFlows = 64, kIn = 1, kOut = 2;
constexpr uint64_t kDmac = 0x0200000B000Bull, kSmacHigh = 0x021100000000ull;
constexpr uint32_t kRuleBase = 0x10000;

std::vector<uint8_t> _frame(uint64_t dmac, uint64_t smac)
{
    std::vector<uint8_t> f;
    for (uint64_t mac : {dmac, smac}) {
        for (int i = 5; i >= 0; i--) {
            f.push_back(static_cast<uint8_t>(mac >> (8 * i)));
        }
    }
    f.insert(f.end(), {0x88, 0xB5});
    f.resize(60, 0);
    return f;
}

std::vector<uint8_t> _flow_frame(uint32_t flow)
{
    // Even flows carry the address of every 64th entry (a permit), odd
    // flows one that no entry has.
    return _frame(kDmac, kSmacHigh | (flow % 2 == 0 ? kRuleBase + flow / 2 * 64 : 0x20000 + flow));
}

// Empties the queues of every port.
void _drain()
{
    uint8_t buf[128];
    uint32_t len = 0;
    for (uint32_t p = 0; p < 32; p++) {
        while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
        }
    }
}

// VLAN 1 on the front ports, the destination known on port 2, the ingress
// ACL on at port 1 with a global L2 lookup, and `rules` entries of one
// group of 2,048: every 64th a permit, the others drops of addresses no
// flow has.  nullptr, or the step that was refused.
const char *_forward_setup(uint32_t rules, uint32_t *group)
{
    _chip(false);
    if (tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF) != 0) {
        return "VLAN 1";
    }
    // The destination learnt from a frame it sends on port 2.
    std::vector<uint8_t> hello = _frame(0xFFFFFFFFFFFFull, kDmac);
    tide_sim_packet_inject(0, kOut, hello.data(), static_cast<uint32_t>(hello.size()));
    _drain();
    acl_control on{ACL_PORT_ICAP_EN, 1};
    acl_lookup global{ACL_STAGE_ICAP, ACL_BASE_GLOBAL, 0, 0, 7 /* L2 key */, 1};
    if (acl_api_port_control_set(0, kIn, &on) != 0 || acl_api_template_config_set(0, &global) != 0) {
        return "ACL port control or lookup";
    }
    *group = _group(false);
    for (uint32_t i = 0; i < rules; i++) {
        if (!_install(*group, i + 1, kRuleBase + i, i % 64 == 0 ? kActionPermit : kActionDrop)) {
            return "entry install";
        }
    }
    return nullptr;
}

// The CPU time of the process: the rates do not depend on what else the
// machine runs.
double _cpu_seconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// The rate over an empty TCAM, for the ratio of the run with entries.
double g_pps_without_rules;

void BM_AclForward(benchmark::State &state)
{
    const uint32_t rules = static_cast<uint32_t>(state.range(0));
    uint32_t group = 0;
    if (const char *refused = _forward_setup(rules, &group); refused != nullptr) {
        state.SkipWithError(refused);
        return;
    }
    std::vector<std::vector<uint8_t>> flows;
    for (uint32_t f = 0; f < kFlows; f++) {
        flows.push_back(_flow_frame(f));
    }
    uint8_t buf[128];
    uint32_t len = 0;
    if (rules > 1) {
        // The lookup runs: a frame of a drop entry's address stays in.
        const std::vector<uint8_t> dropped = _frame(kDmac, kSmacHigh | (kRuleBase + 1));
        tide_sim_packet_inject(0, kIn, dropped.data(), static_cast<uint32_t>(dropped.size()));
        if (tide_sim_packet_capture(0, kOut, buf, sizeof(buf), &len) == 0) {
            state.SkipWithError("the ACL lookup did not run");
        }
    }
    uint64_t sent = 0, out = 0;
    const double begin = _cpu_seconds();
    for (auto _ : state) {
        const std::vector<uint8_t> &f = flows[sent++ % kFlows];
        tide_sim_packet_inject(0, kIn, f.data(), static_cast<uint32_t>(f.size()));
        while (tide_sim_packet_capture(0, kOut, buf, sizeof(buf), &len) == 0) {
            out++;
        }
    }
    const double seconds = _cpu_seconds() - begin;
    if (out != sent) {
        state.SkipWithError("a frame did not forward");
    }
    const double pps = static_cast<double>(sent) / seconds;
    state.SetItemsProcessed(static_cast<int64_t>(sent));
    state.counters["rules"] = rules;
    state.counters["frames_per_s"] = pps;
    if (rules == 0) {
        g_pps_without_rules = pps;
    } else if (g_pps_without_rules > 0) {
        state.counters["ratio_to_0_rules"] = pps / g_pps_without_rules;
    }
    acl_api_group_destroy(0, group);
}
BENCHMARK(BM_AclForward)->ArgName("rules")->Arg(0)->Arg(2000);

} // namespace
