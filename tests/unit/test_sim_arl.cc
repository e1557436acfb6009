// The model's MAC table, driven through its command block the way a driver
// does: entry image into the four command words, the command with its start
// bit, the status read back.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "hal/hal_op/hal.h"
#include "support/fixture.h"
#include "support/sim_arl.h"
#include "support/wait.h"

using tide::test::SimChips;

namespace {

using Entry = tide::test::ArlImage;
using State = tide::test::ArlState;
using tide::test::mac_entry;

class SimArl : public SimChips {
protected:
    SimArl() : SimChips(1, 1) {}

    static constexpr uint32_t kGrab = tide::test::kArlGrab, kReplaceDynamic = tide::test::kArlReplaceDynamic,
                              kReplaceStatic = tide::test::kArlReplaceStatic;
    static constexpr uint32_t kCfg = 0x41C0040;

    State command(uint32_t op, const Entry &image, uint32_t flags = 0, uint32_t bucket = 0, uint32_t addr = 0,
                  uint32_t compare = 0)
    {
        return tide::test::arl_command(0, op, image, flags, bucket, addr, compare);
    }
    State state() { return tide::test::arl_state(0); }
    Entry found() { return tide::test::arl_found(0); }

    void counts(uint32_t *st, uint32_t *dyn)
    {
        uint32_t v = 0;
        ASSERT_EQ(csl_reef_reg_get_u32(0, cib_arl_glb_mac_cnt, &v), 0);
        *st = v & 0xFFFF;
        *dyn = v >> 16;
    }
};

TEST_F(SimArl, InsertSearchDeleteAndReplaceRules)
{
    EXPECT_EQ(state().finish, 1u); // idle
    const Entry a = mac_entry(0x001122334455ull, 1, true, 3);
    State s = command(0, a);
    EXPECT_EQ(s.fail, 0u);
    EXPECT_EQ(s.finish, 1u);
    s = command(2, a);
    ASSERT_EQ(s.fail, 0u);
    const Entry back = found();
    EXPECT_EQ(back.get(22, 10), 3u);
    EXPECT_EQ(back.get(54, 48), 0x001122334455ull);
    // The start bit cleared itself.
    uint32_t cfg = 0;
    hal_reg_read_32(0, 4, kCfg, &cfg);
    EXPECT_EQ(cfg >> 31, 0u);

    // The same static key: refused without the static replace flag, and the
    // old entry stands; with it, overwritten.
    const Entry a5 = mac_entry(0x001122334455ull, 1, true, 5);
    s = command(0, a5);
    EXPECT_EQ(s.fail, 1u);
    EXPECT_EQ(s.cause, 4u);
    command(2, a);
    EXPECT_EQ(found().get(22, 10), 3u);
    s = command(0, a5, kReplaceStatic);
    EXPECT_EQ(s.fail, 0u);
    EXPECT_EQ(s.cause, 2u);
    command(2, a);
    EXPECT_EQ(found().get(22, 10), 5u);

    // A static entry preempts a dynamic one of the same key.
    const Entry d = mac_entry(0x0000000000AAull, 2, false, 7);
    EXPECT_EQ(command(0, d).fail, 0u);
    const Entry d_static = mac_entry(0x0000000000AAull, 2, true, 8);
    s = command(0, d_static);
    EXPECT_EQ(s.fail, 0u);
    EXPECT_EQ(s.cause, 1u);
    uint32_t st = 0, dyn = 0;
    counts(&st, &dyn);
    EXPECT_EQ(st, 2u);
    EXPECT_EQ(dyn, 0u);

    // Misses.
    const Entry none = mac_entry(0x0000DEADBEEFull, 9, false, 1);
    EXPECT_EQ(command(1, none).cause, 5u);
    EXPECT_EQ(command(2, none).cause, 6u);
    EXPECT_EQ(command(1, a).fail, 0u);
    EXPECT_EQ(command(2, a).cause, 6u);
    counts(&st, &dyn);
    EXPECT_EQ(st, 1u);
}

TEST_F(SimArl, FillUntilRefusedThenBatchedCommands)
{
    TIDE_TEST_SEED(seed, 7);
    std::mt19937_64 rng(seed);
    std::set<uint64_t> added;
    std::vector<uint32_t> per_port(4, 0);
    uint64_t refused = 0;
    while (refused == 0) {
        const uint64_t mac = rng() & 0xFFFFFFFFFFFFull;
        const uint32_t port = static_cast<uint32_t>(mac % 4);
        const State s = command(0, mac_entry(mac, 1, false, port));
        if (s.fail) {
            EXPECT_EQ(s.cause, 7u);
            refused = mac;
        } else if (added.insert(mac).second) {
            per_port[port]++;
        }
    }
    // With the grab flag the refused key takes the place of a dynamic entry
    // of its buckets: the table holds as many entries as before.
    uint32_t before = 0;
    ASSERT_EQ(tide_sim_arl_count_get(0, nullptr, &before, nullptr), 0);
    EXPECT_EQ(command(0, mac_entry(refused, 1, false, 0), kGrab).fail, 0u);
    uint32_t after = 0;
    ASSERT_EQ(tide_sim_arl_count_get(0, nullptr, &after, nullptr), 0);
    EXPECT_EQ(after, before);
    EXPECT_EQ(command(2, mac_entry(refused, 1, false, 0)).fail, 0u);
    // Start the count again from what the table holds.
    added.clear();
    std::fill(per_port.begin(), per_port.end(), 0);
    for (uint32_t i = 0; i < 10244; i++) {
        uint32_t raw[4] = {};
        ASSERT_EQ(tide_sim_arl_entry_get(0, i, raw), 0);
        Entry e;
        std::copy(raw, raw + 4, e.w);
        if (e.get(117, 1)) {
            added.insert(e.get(54, 48));
            per_port[e.get(22, 10)]++;
        }
    }
    uint32_t st = 0, dyn = 0, entries = 0;
    counts(&st, &dyn);
    EXPECT_EQ(dyn, added.size());
    ASSERT_EQ(tide_sim_arl_count_get(0, &st, &dyn, &entries), 0);
    EXPECT_EQ(dyn, added.size());
    EXPECT_EQ(entries, 8192u + 2048u + 4u);
    // Most of the table is used before the first refusal.
    EXPECT_GT(added.size(), 5000u);
    for (uint64_t mac : {*added.begin(), *added.rbegin()}) {
        EXPECT_EQ(command(2, mac_entry(mac, 1, false, 0)).fail, 0u);
    }

    // Batched search with no compare counts every entry; by port counts that
    // port's entries; batched delete by port removes exactly those.
    const uint32_t cmp_opcode = 1u << 3;
    EXPECT_EQ(command(4, Entry{}).count, added.size());
    EXPECT_EQ(command(4, mac_entry(0, 0, false, 2), 0, 0, 0, cmp_opcode).count, per_port[2]);
    EXPECT_EQ(command(3, mac_entry(0, 0, false, 2), 0, 0, 0, cmp_opcode).count, per_port[2]);
    EXPECT_EQ(command(4, mac_entry(0, 0, false, 2), 0, 0, 0, cmp_opcode).count, 0u);
    counts(&st, &dyn);
    EXPECT_EQ(dyn, added.size() - per_port[2]);
    uint32_t port_cnt = 0;
    ASSERT_EQ(csl_reef_reg_get_u32(0, CIB_ID(cib_arl_port_lmt_cnt, 1), &port_cnt), 0);
    EXPECT_EQ(port_cnt >> 17, per_port[1]);
    // No compare: everything goes.
    EXPECT_EQ(command(3, Entry{}).count, added.size() - per_port[2]);
    counts(&st, &dyn);
    EXPECT_EQ(dyn, 0u);
}

TEST_F(SimArl, LearnLimitsRefuseDynamicEntries)
{
    // Global limit of 2 dynamic entries.
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_arl_glb_lmt_cnt, 2), 0);
    cib_arl_age_lrn_cfg0_t lrn{};
    ASSERT_EQ(csl_reef_cib_arl_age_lrn_cfg0_get(0, 0, &lrn), 0);
    lrn.glb_lmt_en = 1;
    u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(csl_reef_cib_arl_age_lrn_cfg0_set(0, 0, &lrn, all), 0);
    EXPECT_EQ(command(0, mac_entry(1, 1, false, 0)).fail, 0u);
    EXPECT_EQ(command(0, mac_entry(2, 1, false, 0)).fail, 0u);
    const State s = command(0, mac_entry(3, 1, false, 0));
    EXPECT_EQ(s.fail, 1u);
    EXPECT_EQ(s.cause, 8u);
    EXPECT_EQ(command(0, mac_entry(4, 1, true, 0)).fail, 0u); // static: no limit
    lrn.glb_lmt_en = 0;
    ASSERT_EQ(csl_reef_cib_arl_age_lrn_cfg0_set(0, 0, &lrn, all), 0);

    // Port 6 may learn one entry.
    cib_arl_port_lmt_cnt_t port{};
    port.port_lmt_en = 1;
    port.port_lmt_cnt = 1;
    u8 mask[4] = {};
    mask[0] = 1u << cib_arl_port_lmt_cnt__port_lmt_en | 1u << cib_arl_port_lmt_cnt__port_lmt_cnt;
    ASSERT_EQ(csl_reef_cib_arl_port_lmt_cnt_set(0, 6, &port, mask), 0);
    EXPECT_EQ(command(0, mac_entry(10, 1, false, 6)).fail, 0u);
    const State p = command(0, mac_entry(11, 1, false, 6));
    EXPECT_EQ(p.cause, 9u);
    EXPECT_EQ(command(0, mac_entry(12, 1, false, 7)).fail, 0u); // another port
    ASSERT_EQ(csl_reef_cib_arl_port_lmt_cnt_get(0, 6, &port), 0);
    EXPECT_EQ(port.port_mac_cnt, 1u);
}

TEST_F(SimArl, BucketCommandsAreVerbatim)
{
    Entry odd;
    odd.w[0] = 0x12345678;
    odd.w[1] = 0x9ABCDEF0;
    odd.w[2] = 0x0F0F0F0F;
    odd.w[3] = (1u << 21) | 0x5; // valid and some key bits
    EXPECT_EQ(command(6, odd, 0, 1, 5).fail, 0u);
    EXPECT_EQ(command(6, odd, 0, 1, 5).cause, 7u); // occupied
    const State s = command(7, Entry{}, 0, 1, 5);
    ASSERT_EQ(s.fail, 0u);
    const Entry back = found();
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(back.w[i], odd.w[i]) << i;
    }
    uint32_t raw[4] = {};
    ASSERT_EQ(tide_sim_arl_entry_get(0, 8192 + 5, raw), 0);
    EXPECT_EQ(raw[0], odd.w[0]);
    EXPECT_EQ(command(5, Entry{}, 0, 1, 5).fail, 0u);
    EXPECT_EQ(command(7, Entry{}, 0, 1, 5).cause, 6u);
    EXPECT_EQ(command(5, Entry{}, 0, 1, 5).cause, 5u);
    EXPECT_EQ(command(7, Entry{}, 0, 2, 4).cause, 6u); // beyond the cam
    EXPECT_EQ(tide_sim_arl_entry_get(0, 20000, raw), -4);
}

TEST_F(SimArl, TableInitAndStalledEngines)
{
    EXPECT_EQ(command(0, mac_entry(1, 1, true, 0)).fail, 0u);
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_arl_mac_tab_init_en, 0), 0);
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_arl_mac_tab_init_en, 1), 0);
    uint32_t ok = 0;
    ASSERT_EQ(csl_reef_reg_get_u32(0, cib_arl_mac_ram_sta, &ok), 0);
    EXPECT_EQ(ok & 1, 1u);
    EXPECT_EQ(command(2, mac_entry(1, 1, true, 0)).cause, 6u);

    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_ARL_INIT, 1), 0);
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_arl_mac_tab_init_en, 0), 0);
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_arl_mac_tab_init_en, 1), 0);
    ASSERT_EQ(csl_reef_reg_get_u32(0, cib_arl_mac_ram_sta, &ok), 0);
    EXPECT_EQ(ok & 1, 0u);

    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_ARL, 1), 0);
    const State s = command(0, mac_entry(2, 1, true, 0));
    EXPECT_EQ(s.finish, 0u);
    uint32_t st = 9;
    ASSERT_EQ(tide_sim_arl_count_get(0, &st, nullptr, nullptr), 0);
    EXPECT_EQ(st, 0u);
}

TEST_F(SimArl, SharedRamDoublesBar0)
{
    uint32_t entries = 0;
    ASSERT_EQ(tide_sim_arl_count_get(0, nullptr, nullptr, &entries), 0);
    EXPECT_EQ(entries, 10244u);
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_lsw_hreg_fbm_share_ram_cfg, 1), 0);
    ASSERT_EQ(tide_sim_arl_count_get(0, nullptr, nullptr, &entries), 0);
    EXPECT_EQ(entries, 10244u); // the ARL's own setting is still off
    cib_arl_arl_glb_cfg_t glb{};
    glb.ram_share_mode = 1;
    u8 mask[4] = {};
    mask[cib_arl_arl_glb_cfg__ram_share_mode / 8] = 1u << (cib_arl_arl_glb_cfg__ram_share_mode % 8);
    ASSERT_EQ(csl_reef_cib_arl_arl_glb_cfg_set(0, 0, &glb, mask), 0);
    ASSERT_EQ(tide_sim_arl_count_get(0, nullptr, nullptr, &entries), 0);
    EXPECT_EQ(entries, 18436u);
}

} // namespace
