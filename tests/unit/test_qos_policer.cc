// Policer profiles of the QoS service: the base-and-exponent encoding of
// rates and bursts over their whole range, the limits, length
// compensation, profiles and their ids (shared with the ACL for the
// to-CPU cause ids), colour actions and bindings.
#include <gtest/gtest.h>

#include "atolreef_cib.h"
#include "dpl/reef/base/dpl_reef_base_index_manage.h"
#include "dpl/reef/qos/dpl_reef_qos.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

class QosPolicer : public SimChips {};

u32 high_bit(u64 v)
{
    return 63u - static_cast<u32>(__builtin_clzll(v));
}

// The value a base/exponent pair stands for.
u64 decoded(u64 value)
{
    u32 bas = 0, exp = 0;
    dpl_reef_qos_bas_exp_gen(0, value, &bas, &exp);
    EXPECT_LE(bas, 255u) << value;
    EXPECT_LE(exp, 15u) << value;
    return u64{bas} << exp;
}

// Rounding to eight significant bits, to the nearest: the error is at
// most half of the last kept bit.
void expect_rounded(u64 value)
{
    const u64 got = decoded(value);
    if (value < 256) {
        ASSERT_EQ(got, value);
        return;
    }
    const u64 half = u64{1} << (high_bit(value) - 8);
    ASSERT_LE(got > value ? got - value : value - got, half) << value;
}

qos_policer_cfg rates(u64 cir, u64 cbs, u64 xir = 0, u64 xbs = 0)
{
    qos_policer_cfg c{};
    c.flag = QOS_POLICER_F_CIR | QOS_POLICER_F_CBS | QOS_POLICER_F_XIR | QOS_POLICER_F_XBS;
    c.cir = cir;
    c.cbs = cbs;
    c.xir = xir;
    c.xbs = xbs;
    return c;
}

} // namespace

TEST(QosRate, BaseAndExponentOfTheEdgeValues)
{
    struct Case {
        u64 value;
        u32 bas, exp;
    };
    const Case cases[] = {{0, 0, 0}, {1, 1, 0}, {255, 255, 0}, {256, 128, 1}, {300, 150, 1}, {301, 151, 1},
                          {510, 255, 1}, {511, 128, 2}, {1021, 255, 2}, {1022, 128, 3}};
    for (const Case &c : cases) {
        u32 bas = 99, exp = 99;
        dpl_reef_qos_bas_exp_gen(0, c.value, &bas, &exp);
        EXPECT_EQ(bas, c.bas) << c.value;
        EXPECT_EQ(exp, c.exp) << c.value;
    }
    // Rates in units of 16 kbit/s: the thousands truncate, the sixteens
    // round up.
    EXPECT_EQ(dpl_reef_qos_rate_units(1000, 0, 2000), 1u);
    EXPECT_EQ(dpl_reef_qos_rate_units(999, 0, 2000), 0u);
    EXPECT_EQ(dpl_reef_qos_rate_units(0, 0, 2000), 0u);
    EXPECT_EQ(dpl_reef_qos_rate_units(16999, 0, 2000), 1u);
    EXPECT_EQ(dpl_reef_qos_rate_units(17000, 0, 2000), 2u);
    EXPECT_EQ(dpl_reef_qos_rate_units(1, 1, 2000), 1u); // 16000 bit/s
    EXPECT_EQ(dpl_reef_qos_units_rate(1, 0, 0, 2000), 16000u);
    EXPECT_EQ(dpl_reef_qos_units_rate(1, 0, 1, 2000), 1u);
    EXPECT_EQ(dpl_reef_qos_units_rate(1, 0, 1, 0), 0u);
}

TEST(QosRate, EveryRateAndBurstOfTheRangeRoundsToTheNearest)
{
    // Every unit count of the policer's rates (50 Gbit/s is 3,125,000
    // units) and bursts (1,020,000 bytes is 1020 units).
    for (u64 units = 0; units <= 3125000; units++) {
        expect_rounded(units);
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
    // The encoding is monotonic: a higher rate never reads back lower.
    u64 last = 0;
    for (u64 units = 0; units <= 3125000; units += 7) {
        const u64 got = decoded(units);
        ASSERT_GE(got, last) << units;
        last = got;
    }
}

TEST(QosRate, LengthCompensationInSixBits)
{
    EXPECT_EQ(dpl_reef_qos_origin_to_complement(0, -1, 31), 63u);
    EXPECT_EQ(dpl_reef_qos_origin_to_complement(0, -32, 31), 32u);
    EXPECT_EQ(dpl_reef_qos_origin_to_complement(0, 31, 31), 31u);
    for (i32 v = -32; v <= 31; v++) {
        EXPECT_EQ(dpl_reef_qos_complement_to_origin(0, dpl_reef_qos_origin_to_complement(0, v, 31), 31), v);
    }
}

TEST_F(QosPolicer, RatesAndBurstsReadBackAsProgrammed)
{
    u32 id = 0;
    ASSERT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id), 0);
    const u64 samples[] = {0, 1000, 15999, 16000, 300 * 16000ull, 511 * 16000ull, 1000000, 123456789,
                           10000000000ull, 49999999999ull, 50000000000ull};
    for (u64 rate : samples) {
        qos_policer_cfg c = rates(rate, 999, rate, 1020000);
        ASSERT_EQ(qos_api_policer_set(0, QOS_POLICER_SPORT, id, &c), 0) << rate;
        qos_policer_cfg got{};
        ASSERT_EQ(qos_api_policer_get(0, QOS_POLICER_SPORT, id, &got), 0);
        const u64 units = dpl_reef_qos_rate_units(rate, 0, 2000);
        EXPECT_EQ(got.cir, decoded(units) * 16000) << rate;
        EXPECT_EQ(got.xir, got.cir) << rate;
        EXPECT_EQ(got.cbs, 0u) << "999 bytes are no unit";
        EXPECT_EQ(got.xbs, decoded(1020) * 1000);
    }
    // 1000 bit/s is one unit: base 1, exponent 0.
    qos_policer_cfg c = rates(1000, 0);
    ASSERT_EQ(qos_api_policer_set(0, QOS_POLICER_SPORT, id, &c), 0);
    cib_icar_port_car_cfg_tbl_t r{};
    ASSERT_EQ(csl_reef_cib_icar_port_car_cfg_tbl_get(0, 0, id, &r), 0);
    EXPECT_EQ(r.cband_bas, 1);
    EXPECT_EQ(r.cband_exp, 0);
    EXPECT_EQ(r.valid, 1);

    // Packet mode: rates in packets of the pps length (2000 bytes).
    qos_policer_cfg p = rates(3125000, 1000, 3125000, 1000);
    p.rate_mode = 1;
    ASSERT_EQ(qos_api_policer_set(0, QOS_POLICER_SPORT, id, &p), 0);
    qos_policer_cfg got{};
    ASSERT_EQ(qos_api_policer_get(0, QOS_POLICER_SPORT, id, &got), 0);
    EXPECT_EQ(got.rate_mode, 1u);
    EXPECT_EQ(got.cir, decoded(3125000)) << "one packet a second is one unit";
    p.cir = 3125001;
    EXPECT_EQ(qos_api_policer_set(0, QOS_POLICER_SPORT, id, &p), -4);
    EXPECT_TRUE(Capture::has("pps mode out of range[pps_len=2000, cir=3125001"));
}

TEST_F(QosPolicer, LimitsAndParametersAreRefusedBeforeAnyWrite)
{
    u32 id = 0;
    ASSERT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_DPORT, &id), 0);
    cib_ecar_port_car_cfg_tbl_t before{}, after{};
    ASSERT_EQ(csl_reef_cib_ecar_port_car_cfg_tbl_get(0, 0, id, &before), 0);
    struct Bad {
        qos_policer_cfg cfg;
        const char *line;
    };
    qos_policer_cfg base = rates(1000, 1000, 1000, 1000);
    Bad bad[] = {{base, "bps mode out of range[cir=50000000001"}, {base, "bps mode out of range[xir=50000000001"},
                 {base, "bucket size out of range![cbs=1020001"}, {base, "bucket size out of range![xbs=1020001"},
                 {base, "error colormode(2)"},                     {base, "error car mode(4)"},
                 {base, "len_adj(-33) is out of range -32-31"},    {base, "len_adj(32) is out of range -32-31"}};
    bad[0].cfg.cir = 50000000001ull;
    bad[1].cfg.xir = 50000000001ull;
    bad[2].cfg.cbs = 1020001;
    bad[3].cfg.xbs = 1020001;
    bad[4].cfg.color_mode = 2;
    bad[5].cfg.mode = 4;
    bad[6].cfg.len_adj = -33;
    bad[7].cfg.len_adj = 32;
    for (Bad &b : bad) {
        b.cfg.flag = 0; // every field is checked, whatever the flag says
        EXPECT_EQ(qos_api_policer_set(0, QOS_POLICER_DPORT, id, &b.cfg), -4) << b.line;
        EXPECT_TRUE(Capture::has(b.line)) << b.line;
    }
    qos_policer_cfg edge = rates(50000000000ull, 1020000, 50000000000ull, 1020000);
    edge.len_adj = -32;
    edge.flag = 0;
    EXPECT_EQ(qos_api_policer_set(0, QOS_POLICER_DPORT, id, &edge), 0);
    ASSERT_EQ(csl_reef_cib_ecar_port_car_cfg_tbl_get(0, 0, id, &after), 0);
    EXPECT_EQ(memcmp(&before, &after, sizeof(before)), 0);
    EXPECT_EQ(qos_api_policer_set(0, QOS_POLICER_DPORT, 32, &edge), -4);
    EXPECT_EQ(qos_api_policer_set(0, QOS_POLICER_DPORT, 5, &edge), -7) << "not created";
    EXPECT_EQ(qos_api_policer_set(0, QOS_POLICER_DPORT, id, nullptr), -20);
}

TEST_F(QosPolicer, OnlyTheFlaggedFieldsChange)
{
    u32 id = 3;
    ASSERT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_SPORT, &id), 0);
    qos_policer_cfg c = rates(8000000, 20000, 16000000, 40000);
    c.flag |= QOS_POLICER_F_MODE | QOS_POLICER_F_COLOR_MODE | QOS_POLICER_F_LEN_ADJ;
    c.mode = QOS_CAR_RFC4115;
    c.color_mode = 1;
    c.len_adj = -1;
    ASSERT_EQ(qos_api_policer_set(0, QOS_POLICER_SPORT, id, &c), 0);
    cib_icar_port_car_cfg_tbl_t r{};
    ASSERT_EQ(csl_reef_cib_icar_port_car_cfg_tbl_get(0, 0, id, &r), 0);
    EXPECT_EQ(r.value, 63) << "-1 in six bits";
    qos_policer_cfg burst{};
    burst.flag = QOS_POLICER_F_CBS;
    burst.cbs = 5000;
    ASSERT_EQ(qos_api_policer_set(0, QOS_POLICER_SPORT, id, &burst), 0);
    qos_policer_cfg got{};
    ASSERT_EQ(qos_api_policer_get(0, QOS_POLICER_SPORT, id, &got), 0);
    EXPECT_EQ(got.cbs, 5000u);
    EXPECT_EQ(got.cir, 8000000u);
    EXPECT_EQ(got.xir, 16000000u);
    EXPECT_EQ(got.xbs, 40000u);
    EXPECT_EQ(got.mode, u32{QOS_CAR_RFC4115});
    EXPECT_EQ(got.color_mode, 1);
    EXPECT_EQ(got.len_adj, -1);
}

TEST_F(QosPolicer, ProfileIdsAndTheCauseIdsTheAclHolds)
{
    u32 id = 0;
    ASSERT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id), 0);
    EXPECT_EQ(id, 0u);
    ASSERT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id), 0);
    EXPECT_EQ(id, 1u);
    id = 0;
    EXPECT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_SPORT, &id), -11);
    id = 32;
    EXPECT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_SPORT, &id), -4);
    EXPECT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT_TOCPU_GROUP, &id), -24);
    EXPECT_TRUE(Capture::has("chip type (3) not support policer type (3) !"));
    EXPECT_EQ(qos_api_policer_create(0, 0, 4, &id), -24);
    EXPECT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, nullptr), -20);

    // Cause-id rows are shared with the ACL's policers.
    ASSERT_EQ(dpl_reef_base_tab_index_alloc_with_id(0, cib_ecar_cause_id_car_cfg_tbl, 0), 0);
    id = 0;
    EXPECT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_TOCPU_CAUSEID, &id), -11);
    EXPECT_TRUE(Capture::has("Policer id(0) is used by acl mod"));
    u32 created = 0;
    ASSERT_EQ(qos_api_policer_created_get(0, QOS_POLICER_TOCPU_CAUSEID, 0, &created), 0);
    EXPECT_EQ(created, 1u);
    ASSERT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_TOCPU_CAUSEID, &id), 0);
    EXPECT_EQ(id, 1u) << "the ACL's row is skipped";
    u8 used = 0;
    ASSERT_EQ(dpl_reef_base_tab_index_used_get(0, cib_ecar_cause_id_car_cfg_tbl, 1, &used), 0);
    EXPECT_EQ(used, 1);
    ASSERT_EQ(qos_api_policer_destroy(0, QOS_POLICER_TOCPU_CAUSEID, 1), 0);
    ASSERT_EQ(dpl_reef_base_tab_index_used_get(0, cib_ecar_cause_id_car_cfg_tbl, 1, &used), 0);
    EXPECT_EQ(used, 0);
    cib_ecar_cause_id_car_cfg_tbl_t row{};
    ASSERT_EQ(csl_reef_cib_ecar_cause_id_car_cfg_tbl_get(0, 0, 1, &row), 0);
    EXPECT_EQ(row.valid, 0);
    EXPECT_EQ(qos_api_policer_destroy(0, QOS_POLICER_TOCPU_CAUSEID, 1), -7);
    EXPECT_EQ(qos_api_policer_created_get(0, QOS_POLICER_TOCPU_CAUSEID, 512, &created), -28);
    ASSERT_EQ(qos_api_policer_created_get(0, QOS_POLICER_SPORT, 1, &created), 0);
    EXPECT_EQ(created, 1u);

    // All 32 port profiles, then none.
    for (u32 i = 2; i < 32; i++) {
        ASSERT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id), 0);
    }
    EXPECT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id), -11);
}

TEST_F(QosPolicer, ActionsPerColour)
{
    u32 id = 7;
    ASSERT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_DPORT, &id), 0);
    qos_policer_actions a{};
    ASSERT_EQ(qos_api_policer_action_get(0, QOS_POLICER_DPORT, id, &a), 0);
    for (u32 k = 0; k < 3; k++) {
        EXPECT_EQ(a.action[k], u32{QOS_POLICER_ACT_DROP}) << "a new profile drops every colour";
    }
    qos_policer_action y{QOS_COLOR_YELLOW, QOS_POLICER_ACT_NEW_INTL_PRI_COLOR, QOS_COLOR_RED, 6};
    ASSERT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, id, &y), 0);
    qos_policer_action g{QOS_COLOR_GREEN, QOS_POLICER_ACT_PASS, QOS_COLOR_RED, 6};
    ASSERT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, id, &g), 0);
    ASSERT_EQ(qos_api_policer_action_get(0, QOS_POLICER_DPORT, id, &a), 0);
    EXPECT_EQ(a.action[0], u32{QOS_POLICER_ACT_PASS});
    EXPECT_EQ(a.remark_color[0], 0u) << "pass keeps no remark";
    EXPECT_EQ(a.remark_pri[0], 0);
    EXPECT_EQ(a.action[1], u32{QOS_POLICER_ACT_NEW_INTL_PRI_COLOR});
    EXPECT_EQ(a.remark_color[1], u32{QOS_COLOR_RED});
    EXPECT_EQ(a.remark_pri[1], 6);
    EXPECT_EQ(a.action[2], u32{QOS_POLICER_ACT_DROP});

    qos_policer_action bad{QOS_COLOR_RED, 5, 0, 0};
    EXPECT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, id, &bad), -4);
    bad = qos_policer_action{3, QOS_POLICER_ACT_PASS, 0, 0};
    EXPECT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, id, &bad), -4);
    bad = qos_policer_action{QOS_COLOR_RED, QOS_POLICER_ACT_NEW_COLOR, 3, 0};
    EXPECT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, id, &bad), -4);
    bad = qos_policer_action{QOS_COLOR_RED, QOS_POLICER_ACT_NEW_INTL_PRI, 0, 8};
    EXPECT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, id, &bad), -4);
    bad = qos_policer_action{QOS_COLOR_RED, QOS_POLICER_ACT_NEW_COLOR, 1, 8};
    EXPECT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, id, &bad), 0) << "the priority counts only with 3, 4";
    EXPECT_EQ(qos_api_policer_action_set(0, QOS_POLICER_TOCPU_CAUSEID, 0, &g), -24);
    EXPECT_EQ(qos_api_policer_action_set(0, QOS_POLICER_DPORT, 8, &g), -7);
}

TEST_F(QosPolicer, BindingsToPortsAndCauseIds)
{
    u32 sp = 4, dp = 9, cp = 100;
    ASSERT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_SPORT, &sp), 0);
    ASSERT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_DPORT, &dp), 0);
    ASSERT_EQ(qos_api_policer_create(0, 1, QOS_POLICER_TOCPU_CAUSEID, &cp), 0);
    qos_bind_info b{QOS_POLICER_SPORT, 0, 0, 3, sp};
    ASSERT_EQ(qos_api_policer_bind(0, &b), 0);
    b = qos_bind_info{QOS_POLICER_DPORT, 0, 0, 5, dp};
    ASSERT_EQ(qos_api_policer_bind(0, &b), 0);
    b = qos_bind_info{QOS_POLICER_TOCPU_CAUSEID, 306, 0, 0, cp};
    ASSERT_EQ(qos_api_policer_bind(0, &b), 0);
    cib_ipro_ipat_tbl_t ipat{};
    ASSERT_EQ(csl_reef_cib_ipro_ipat_tbl_get(0, 0, 3, &ipat), 0);
    EXPECT_EQ(ipat.portcar_en, 1);
    EXPECT_EQ(ipat.portcar_id, sp);
    cib_epro_epat_table_t epat{};
    ASSERT_EQ(csl_reef_cib_epro_epat_table_get(0, 0, 5, &epat), 0);
    EXPECT_EQ(epat.port_car_en, 1);
    EXPECT_EQ(epat.port_car_id, dp);
    cib_ecar_causeid_ptype_map_tbl_t map{};
    ASSERT_EQ(csl_reef_cib_ecar_causeid_ptype_map_tbl_get(0, 0, 306, &map), 0);
    EXPECT_EQ(map.causeid_idx_vld, 1);
    EXPECT_EQ(map.causeid_idx, cp);
    qos_bind_info get{QOS_POLICER_DPORT, 0, 0, 5, 0};
    ASSERT_EQ(qos_api_policer_bind_get(0, &get), 0);
    EXPECT_EQ(get.policer_id, dp);

    b = qos_bind_info{QOS_POLICER_TOCPU_CAUSEID, 306, 0, 0, cp};
    ASSERT_EQ(qos_api_policer_unbind(0, &b), 0);
    ASSERT_EQ(csl_reef_cib_ecar_causeid_ptype_map_tbl_get(0, 0, 306, &map), 0);
    EXPECT_EQ(map.causeid_idx_vld, 0);
    EXPECT_EQ(map.causeid_idx, 0);

    b = qos_bind_info{QOS_POLICER_SPORT, 0, 0, 3, 5};
    EXPECT_EQ(qos_api_policer_bind(0, &b), -11) << "profile 5 does not exist";
    b = qos_bind_info{QOS_POLICER_SPORT, 0, 0, 32, sp};
    EXPECT_EQ(qos_api_policer_bind(0, &b), -4);
    b = qos_bind_info{QOS_POLICER_TOCPU_CAUSEID, 512, 0, 0, cp};
    EXPECT_EQ(qos_api_policer_bind(0, &b), -4);
    b = qos_bind_info{QOS_POLICER_SPORT_TOCPU_GROUP, 1, 0, 3, 0};
    EXPECT_EQ(qos_api_policer_bind(0, &b), -24);
    EXPECT_EQ(qos_api_policer_bind(0, nullptr), -20);

    // Destroying a profile leaves its bindings as they are.
    ASSERT_EQ(qos_api_policer_destroy(0, QOS_POLICER_SPORT, sp), 0);
    ASSERT_EQ(csl_reef_cib_ipro_ipat_tbl_get(0, 0, 3, &ipat), 0);
    EXPECT_EQ(ipat.portcar_id, sp);
}

// A kelpreef chip: its QoS configuration is its own, and every call that
// needs its tables answers -24 before it touches anything.
class QosSibling : public SimChips {
protected:
    QosSibling() : SimChips(1, 0) {}
};

TEST_F(QosSibling, CallsThatNeedTheTablesAnswer24)
{
    tide::test::kelpreef_identity_set(0, 0);
    up_chip(0);
    const dpl_reef_qos_cfg *q = dpl_reef_g_qos_cfg_get(0);
    ASSERT_NE(q, nullptr);
    EXPECT_EQ(q->dp_num, 128u);
    EXPECT_EQ(q->group_policer_num, 256u);
    EXPECT_EQ(q->dp_tail_max_thr, 3072u);
    u32 id = 0;
    EXPECT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_SPORT, &id), -24);
    qos_remark_cfg r{};
    EXPECT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 0, &r), -24);
    qos_map_cfg m{};
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_DSCP, 0, &m), -24);
    EXPECT_TRUE(Capture::has("no catalogue in this build"));
}
