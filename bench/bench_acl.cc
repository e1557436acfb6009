// ACL installs on the chip model through acl_api_*: 2,000 entries into one
// group whose table grows block by block (automatic block mode), in the
// worst priority order (each new entry above all others, so that every
// insert finds its window at the low end) and in random order.  Reported:
// entries installed per second and entry moves per insert.
#include <benchmark/benchmark.h>
#include <tide/acl.h>
#include <tide/property.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr uint32_t kEntries = 2000;
constexpr uint32_t kL2Template = 31;  // icap-width-single-l2
constexpr uint32_t kMatchSmacLow = 19; // smac-31-0
constexpr uint32_t kActionDrop = 24;

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
        init_api_software_process(0, &cfg);
        init_api_hardware_process(0);
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

// The chip of the mode asked for, brought up again when the mode changes.
AclBenchChip &_chip(bool automatic)
{
    static std::unique_ptr<AclBenchChip> c;
    if (c == nullptr || c->automatic != automatic) {
        c.reset();
        c = std::make_unique<AclBenchChip>(automatic);
    }
    return *c;
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
bool _install(uint32_t group, uint32_t priority, uint32_t smac)
{
    uint32_t id = 0;
    if (acl_api_entry_create(0, 0, priority, group, &id) != 0 || acl_api_entry_template_set(0, id, kL2Template) != 0) {
        return false;
    }
    acl_item m{kMatchSmacLow, smac, 0xFFFFFFFFu};
    acl_item a{kActionDrop, 0, 0};
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

} // namespace
