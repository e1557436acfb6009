// The interrupt engine on the chip model, end to end: the model raises a
// leaf, the thread's walk finds it, the callback runs once with the right
// numbers, the leaf is cleared and unmasked, and its count grows.  Also the
// order of the categories, the bits the walk must leave alone, the masked
// leaf, the level-sensitive line, and the L2 events of learning and aging.
#include <gtest/gtest.h>
#include <tide/interrupt.h>

#include <cstring>
#include <map>
#include <mutex>
#include <tuple>
#include <vector>

#include "support/vlan_ports.h"
#include "atolreef_cib.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_intr_tables.h"
#include "support/fixture.h"
#include "support/wait.h"
#include "tide_int.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

using Key = std::tuple<u32, u32, u32, u32>; // module, subid, type, instance

// What the callbacks saw, in order.
std::mutex g_seen_lock;
std::vector<Key> g_seen;
// A raise the callback of one type makes while it runs.
Key g_raise_from{~0u, 0, 0, 0};
Key g_raise_what{};

void _record(u32 chip_id, intr_module m, intr_type t)
{
    const Key k{m.module_id, m.subid, t.intr_id, t.addr_idx};
    {
        std::lock_guard<std::mutex> hold(g_seen_lock);
        g_seen.push_back(k);
    }
    if (k == g_raise_from) {
        const auto &[mod, sub, type, inst] = g_raise_what;
        tide_sim_intr_raise(chip_id, mod, sub, type, inst);
    }
}

size_t _seen(const Key &k)
{
    std::lock_guard<std::mutex> hold(g_seen_lock);
    size_t n = 0;
    for (const Key &s : g_seen) {
        n += s == k;
    }
    return n;
}

std::vector<Key> _seen_all()
{
    std::lock_guard<std::mutex> hold(g_seen_lock);
    return g_seen;
}

void _forget()
{
    std::lock_guard<std::mutex> hold(g_seen_lock);
    g_seen.clear();
}

// Every (type, instance) that stands in a dispatch row.
std::vector<Key> _leaves()
{
    std::vector<Key> out;
    auto add = [&](const intr_dispatch_row &row) {
        for (u32 m = 0; m < row.module_count; m++) {
            const intr_dispatch_module &e = row.modules[m];
            for (u32 s = 0; s < e.subid_count; s++) {
                for (u32 t = 0; t < e.subids[s].type_count; t++) {
                    out.emplace_back(e.module_id, e.subids[s].subid, e.subids[s].types[t], e.addr_idx);
                }
            }
        }
    };
    for (const intr_dispatch_row &r : g_atolreef_intr_lswtop_dispatch_info) {
        add(r);
    }
    for (const intr_dispatch_row &r : g_atolreef_intr_mag_sds_xsec_dispatch_info) {
        add(r);
    }
    return out;
}

class IntrTree : public SimChips {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        _forget();
        g_raise_from = Key{~0u, 0, 0, 0};
        // The front ports' bring-up left their link events pending: the
        // tests start from a quiet tree.
        ASSERT_EQ(interrupt_api_clear_all(0), 0);
        // Everything enabled, every type called back.
        ASSERT_EQ(interrupt_api_enable_set(0, kAll, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
        for (u32 m = 0; m < INTR_MODULE_COUNT; m++) {
            u32 subids = 0;
            ASSERT_EQ(interrupt_api_subid_types_get(0, m, &subids), 0);
            for (u32 s = 0; s < subids; s++) {
                u32 types = 0;
                ASSERT_EQ(interrupt_api_onesubid_types_get(0, m, s, &types), 0);
                for (u32 t = 0; t < types; t++) {
                    ASSERT_EQ(interrupt_api_callback_register(0, {m, s}, {t, 0}, _record), 0);
                }
            }
        }
    }

    u32 status(const Key &k)
    {
        const auto &[m, s, t, i] = k;
        u32 v = ~0u;
        EXPECT_EQ(interrupt_api_status_get(0, {m, s}, {t, i}, &v), 0);
        return v;
    }
    u32 mask(const Key &k)
    {
        const auto &[m, s, t, i] = k;
        u32 v = ~0u;
        EXPECT_EQ(interrupt_api_mask_get(0, {m, s}, {t, i}, &v), 0);
        return v;
    }
    u32 count(const Key &k)
    {
        const auto &[m, s, t, i] = k;
        u32 v = ~0u;
        EXPECT_EQ(interrupt_api_stats_get(0, {m, s}, {t, 0}, &v), 0);
        return v;
    }
    void raise(const Key &k)
    {
        const auto &[m, s, t, i] = k;
        ASSERT_EQ(tide_sim_intr_raise(0, m, s, t, i), 0);
    }
    bool line_low()
    {
        u32 level = 1;
        return tide_sim_intr_line_get(0, &level) == 0 && level == 0;
    }
    // Opens or closes the chip's line to the CPU.
    void line_open(bool open)
    {
        cib_lsw_hreg_cib2int_lsw_ctrl_t ctrl{};
        ASSERT_EQ(csl_reef_cib_lsw_hreg_cib2int_lsw_ctrl_get(0, 0, &ctrl), 0);
        ctrl.cib2int_lsw2gic_msk = open ? 1 : 0;
        u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
        ASSERT_EQ(csl_reef_cib_lsw_hreg_cib2int_lsw_ctrl_set(0, 0, &ctrl, all), 0);
    }

    static constexpr intr_module kAll = {INTR_MODULE_ALL, INTR_SUBID_ALL};
};

TEST_F(IntrTree, EveryLeafIsServedOnceClearedUnmaskedAndCounted)
{
    const std::vector<Key> leaves = _leaves();
    ASSERT_GT(leaves.size(), 780u); // every type but those of the tree's own registers, at each instance
    for (const Key &k : leaves) {
        const auto &[m, s, t, i] = k;
        SCOPED_TRACE(testing::Message() << "module " << m << " subid " << s << " type " << t << " instance " << i);
        const u32 before = count(k);
        raise(k);
        // The mask restored: 1, or all ones for a type without mask register.
        ASSERT_TRUE(tide_test::eventually([&] { return _seen(k) == 1 && status(k) == 0 && mask(k) != 0; }));
        ASSERT_TRUE(tide_test::eventually([&] { return line_low(); }));
        EXPECT_EQ(count(k), before + 1);
        EXPECT_EQ(_seen(k), 1u);
        _forget();
    }
}

TEST_F(IntrTree, CategoriesAreWalkedWarningEventEccFatal)
{
    const Key fatal{INTR_MOD_ARL, 0, 0, 0}, ecc{INTR_MOD_ARL, 0, 6, 0}, event{INTR_MOD_ARL, 0, INTR_ARL_LEARN, 0},
        warning{INTR_MOD_ARL, 0, INTR_ARL_AGE, 0};
    line_open(false);
    for (const Key &k : {fatal, ecc, event, warning}) {
        raise(k);
    }
    EXPECT_TRUE(line_low());
    line_open(true);
    ASSERT_TRUE(tide_test::eventually([&] { return _seen_all().size() == 4; }));
    EXPECT_EQ(_seen_all(), (std::vector<Key>{warning, event, ecc, fatal}));
}

TEST_F(IntrTree, BitSixteenOfGroupZeroIsNeverServed)
{
    // Bit 16 set and enabled in the fatal group, next to a real cause.
    for (const cib_reg_info *r : {&atolreef_cib_lsw_hreg_lsw_fatal_0_reg, &atolreef_cib_lsw_hreg_lsw_fatal_0_msk_reg}) {
        u32 word = 0;
        ASSERT_EQ(tide_sim_reg_peek(0, 4, r->addr[0], &word), 0);
        ASSERT_EQ(tide_sim_reg_poke(0, 4, r->addr[0], word | 1u << 16), 0);
    }
    Capture::clear();
    const Key k{INTR_MOD_ARL, 0, 1, 0};
    raise(k);
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(k) == 1 && line_low(); }));
    EXPECT_FALSE(Capture::has("ptr is null"));
    EXPECT_EQ(_seen_all().size(), 1u);
}

TEST_F(IntrTree, AMagBitWithAnEmptyRowIsCleared)
{
    const Key pcs0{INTR_MOD_MAG_GLB, 2, 0, 0}; // fatal pcs0: nothing behind it
    raise(pcs0);
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(pcs0) == 1 && status(pcs0) == 0 && line_low(); }));
}

TEST_F(IntrTree, AMaskedLeafIsNeitherCountedNorCleared)
{
    const Key masked{INTR_MOD_ARL, 0, INTR_ARL_MOVE, 0}, served{INTR_MOD_ARL, 0, INTR_ARL_AGE, 0};
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MOD_ARL, 0}, {INTR_ARL_MOVE, 0}, 0), 0);
    raise(masked);
    EXPECT_TRUE(line_low());
    raise(served); // the same row is walked
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(served) == 1 && line_low(); }));
    EXPECT_EQ(_seen(masked), 0u);
    EXPECT_EQ(count(masked), 0u);
    EXPECT_EQ(status(masked), 1u);
    // Enabled again, it is served.
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MOD_ARL, 0}, {INTR_ARL_MOVE, 0}, 1), 0);
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(masked) == 1 && status(masked) == 0; }));
}

TEST_F(IntrTree, TheLineRisesAgainForACausePendingAfterTheWalk)
{
    // The fatal walk comes last; a warning raised while it runs is pending
    // when the thread enables the line again.
    const Key fatal{INTR_MOD_ARL, 0, 0, 0}, warning{INTR_MOD_ARL, 0, INTR_ARL_FULL, 0};
    g_raise_from = fatal;
    g_raise_what = warning;
    raise(fatal);
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(warning) == 1 && line_low(); }));
    EXPECT_EQ(_seen_all(), (std::vector<Key>{fatal, warning}));
}

TEST_F(IntrTree, ASecondLevelBitStaysSetWhileAChildIsPending)
{
    // A child of mag_glb's fatal mac0 with its callback away: the walk
    // serves it; the source's own bit is served and cleared too.
    const Key child{INTR_MOD_MAC_GLB, 0, 5, 2}, own{INTR_MOD_MAG_GLB, 2, 10, 0};
    raise(child);
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(child) == 1 && line_low(); }));
    EXPECT_EQ(_seen(own), 1u);
    EXPECT_EQ(status(own), 0u);
    // Masked at the second level, the child leaves the line low.
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MOD_MAG_GLB, 2}, {10, 0}, 0), 0);
    raise(child);
    EXPECT_TRUE(line_low());
    EXPECT_EQ(status(own), 1u);
}

// ---- L2 events from the packet path --------------------------------------------------

std::vector<u8> _frame(const u8 dst[6], const u8 src[6])
{
    std::vector<u8> f(60, 0);
    memcpy(f.data(), dst, 6);
    memcpy(f.data() + 6, src, 6);
    f[12] = 0x08;
    return f;
}

TEST_F(IntrTree, LearningAndAgingOfInjectedFramesReachTheL2Callbacks)
{
    ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF), 0);
    const u8 a[6] = {0x00, 0x10, 0x94, 0, 0, 1}, b[6] = {0x00, 0x10, 0x94, 0, 0, 2};
    const std::vector<u8> f = _frame(b, a);
    ASSERT_EQ(tide_sim_packet_inject(0, 3, f.data(), static_cast<u32>(f.size())), 0);
    const Key learn{INTR_MOD_ARL, 0, INTR_ARL_LEARN, 0}, age{INTR_MOD_ARL, 0, INTR_ARL_AGE, 0};
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(learn) == 1; }));
    EXPECT_EQ(_seen(age), 0u);
    // The age time (300 s) passes: the address ages out.
    ASSERT_EQ(tide_sim_time_advance(0, 301 * 1000), 0);
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(age) == 1; }));
    // A station move is an event of its own.
    ASSERT_EQ(tide_sim_packet_inject(0, 3, f.data(), static_cast<u32>(f.size())), 0);
    ASSERT_EQ(tide_sim_packet_inject(0, 4, f.data(), static_cast<u32>(f.size())), 0);
    const Key move{INTR_MOD_ARL, 0, INTR_ARL_MOVE, 0};
    ASSERT_TRUE(tide_test::eventually([&] { return _seen(move) == 1; }));
}

} // namespace
