// The QoS service's maps and global settings through the exported calls,
// on the chip model: where each key lands in the chip's tables, the queue
// numbering of redirect and to-CPU enqueue both ways, flush with its
// bounded wait, capture, the checks, and the refusals.
#include <gtest/gtest.h>

#include <cstring>

#include "atolreef_cib.h"
#include "dpl/reef/qos/dpl_reef_qos.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

class Qos : public SimChips {};

cib_icar_ba_tbl_t ba(u32 entry)
{
    cib_icar_ba_tbl_t r{};
    EXPECT_EQ(csl_reef_cib_icar_ba_tbl_get(0, 0, entry, &r), 0);
    return r;
}

// Sets intl_pri to queue n identically, or by `map` when given.
void cos_map(const u32 (&map)[8])
{
    for (u32 n = 0; n < 8; n++) {
        qos_common_map_cfg c{};
        c.type = QOS_COMMON_MAP_INTL_PRI_TO_COSQ;
        c.intl_pri = static_cast<u8>(n);
        c.cosq = map[n];
        ASSERT_EQ(qos_api_common_map_ctrl_set(0, &c), 0) << n;
    }
}
constexpr u32 kIdentity[8] = {0, 1, 2, 3, 4, 5, 6, 7};

u32 flush_bits()
{
    cib_qm_qm_port_flush_en_t r{};
    EXPECT_EQ(csl_reef_cib_qm_qm_port_flush_en_get(0, 0, &r), 0);
    return r.port_flush_en;
}

} // namespace

TEST_F(Qos, PriorityMapKeysLandInTheirEntryAndPair)
{
    struct Case {
        u32 type, map_id;
        qos_map_cfg key;
        u32 entry, pair;
    };
    const Case cases[] = {
        {QOS_MAP_DSCP, 7, {63, 0, 0, 0, 0}, 127, 3},       {QOS_MAP_DSCP, 0, {5, 0, 0, 0, 0}, 1, 1},
        {QOS_MAP_OPRI, 7, {0, 7, 0, 0, 0}, 207, 3},        {QOS_MAP_OPRI, 0, {0, 2, 0, 0, 0}, 192, 2},
        {QOS_MAP_IPRI, 3, {0, 5, 0, 0, 0}, 215, 1},        {QOS_MAP_OPRI_OCFI, 2, {0, 6, 1, 0, 0}, 139, 2},
        {QOS_MAP_IPRI_ICFI, 7, {0, 7, 1, 0, 0}, 191, 3},   {QOS_MAP_IPRI_ICFI, 0, {0, 0, 0, 0, 0}, 160, 0},
    };
    u8 value = 1;
    for (const Case &c : cases) {
        qos_map_cfg cfg = c.key;
        cfg.intl_pri = value % 8;
        cfg.color = value % 3;
        ASSERT_EQ(qos_api_priority_map_set(0, c.type, c.map_id, &cfg), 0) << c.entry;
        const cib_icar_ba_tbl_t r = ba(c.entry);
        const u8 q[4] = {r.qindex0, r.qindex1, r.qindex2, r.qindex3};
        const u8 col[4] = {r.color0, r.color1, r.color2, r.color3};
        EXPECT_EQ(q[c.pair], value % 8) << c.entry;
        EXPECT_EQ(col[c.pair], value % 3) << c.entry;
        for (u32 other = 0; other < 4; other++) {
            if (other != c.pair) {
                EXPECT_EQ(q[other] | col[other], 0) << "entry " << c.entry << " pair " << other;
            }
        }
        qos_map_cfg got = c.key;
        ASSERT_EQ(qos_api_priority_map_get(0, c.type, c.map_id, &got), 0);
        EXPECT_EQ(got.intl_pri, value % 8u);
        EXPECT_EQ(got.color, value % 3u);
        // Clear it again so that the next case sees a clean table.
        cfg.intl_pri = 0;
        cfg.color = 0;
        ASSERT_EQ(qos_api_priority_map_set(0, c.type, c.map_id, &cfg), 0);
        value++;
    }
}

TEST_F(Qos, PriorityMapRefusesBadKeysAndValues)
{
    qos_map_cfg cfg{};
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_DSCP, 8, &cfg), -4);
    cfg.dscp = 64;
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_DSCP, 0, &cfg), -4);
    EXPECT_TRUE(Capture::has("dscp(64) is out of range 0-63!"));
    cfg = qos_map_cfg{0, 8, 0, 0, 0};
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_OPRI, 0, &cfg), -4);
    cfg = qos_map_cfg{0, 1, 2, 0, 0};
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_IPRI_ICFI, 0, &cfg), -4);
    cfg = qos_map_cfg{0, 1, 0, 3, 0};
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_OPRI, 0, &cfg), -4);
    cfg = qos_map_cfg{0, 1, 0, 0, 8};
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_OPRI, 0, &cfg), -4);
    EXPECT_EQ(qos_api_priority_map_set(0, 5, 0, &cfg), -24);
    EXPECT_EQ(qos_api_priority_map_set(0, QOS_MAP_OPRI, 0, nullptr), -20);
    for (u32 e = 0; e < 224; e++) {
        const cib_icar_ba_tbl_t r = ba(e);
        ASSERT_EQ(r.qindex0 | r.qindex1 | r.qindex2 | r.qindex3 | r.color0 | r.color1 | r.color2 | r.color3, 0) << e;
    }
}

TEST_F(Qos, RemarkWritesOnlyItsFieldOfItsEntry)
{
    qos_remark_cfg cfg{5, 2, 0xA5, 0x2A, 6, 1};
    for (u32 type = QOS_REMARK_OCFI; type <= QOS_REMARK_OPRI; type++) {
        ASSERT_EQ(qos_api_remark_set(0, type, 3, &cfg), 0) << type;
    }
    cib_ecar_phb_tbl_t r{};
    const u32 entry = (5 + 3 * 8) * 4 + 2;
    ASSERT_EQ(csl_reef_cib_ecar_phb_tbl_get(0, 0, entry, &r), 0);
    EXPECT_EQ(r.tc, 0xA5);
    EXPECT_EQ(r.dscp, 0x2A);
    EXPECT_EQ(r.ovlanpri, 6);
    EXPECT_EQ(r.ivlanpri, 6);
    EXPECT_EQ(r.odei, 1);
    EXPECT_EQ(r.idei, 1);
    // Another type's write leaves the others.
    qos_remark_cfg dscp{5, 2, 0, 7, 0, 0};
    ASSERT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 3, &dscp), 0);
    ASSERT_EQ(csl_reef_cib_ecar_phb_tbl_get(0, 0, entry, &r), 0);
    EXPECT_EQ(r.dscp, 7);
    EXPECT_EQ(r.tc, 0xA5);
    qos_remark_cfg got{5, 2, 0, 0, 0, 0};
    ASSERT_EQ(qos_api_remark_get(0, QOS_REMARK_TC, 3, &got), 0);
    EXPECT_EQ(got.tc, 0xA5);
    ASSERT_EQ(qos_api_remark_get(0, QOS_REMARK_OPRI, 3, &got), 0);
    EXPECT_EQ(got.pri, 6);

    EXPECT_EQ(qos_api_remark_set(0, 6, 0, &cfg), -24);
    EXPECT_TRUE(Capture::has("Not support remark type 6"));
    EXPECT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 8, &cfg), -4);
    qos_remark_cfg bad{8, 0, 0, 0, 0, 0};
    EXPECT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 0, &bad), -4);
    bad = qos_remark_cfg{0, 3, 0, 0, 0, 0};
    EXPECT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 0, &bad), -4);
    bad = qos_remark_cfg{0, 0, 0, 64, 0, 0};
    EXPECT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 0, &bad), -4);
    // Only the type's own field is checked.
    bad = qos_remark_cfg{0, 0, 0, 64, 0, 0};
    EXPECT_EQ(qos_api_remark_set(0, QOS_REMARK_TC, 0, &bad), 0);
    EXPECT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 0, nullptr), -20);
}

TEST_F(Qos, GlobalSwitchesAndTheirRefusals)
{
    u32 v = 9;
    EXPECT_EQ(qos_api_ctrl_set(0, QOS_CTRL_FBM_SHARE_RAM, 1), -24);
    EXPECT_TRUE(Capture::has("Please use chip_config.cfg to set this option[4]!"));
    EXPECT_EQ(qos_api_ctrl_get(0, QOS_CTRL_FBM_SHARE_RAM, &v), 0);
    EXPECT_EQ(v, 0u);
    EXPECT_EQ(qos_api_ctrl_set(0, QOS_CTRL_TUNNEL_USR_PRI_CFI, 1), -24);
    EXPECT_EQ(qos_api_ctrl_get(0, QOS_CTRL_TUNNEL_USR_TC_DSCP, &v), -24);
    EXPECT_EQ(qos_api_ctrl_set(0, 5, 1), -24);
    for (u32 type : {QOS_CTRL_PHB_PRI, QOS_CTRL_BA_TAG}) {
        ASSERT_EQ(qos_api_ctrl_set(0, type, 7), 0);
        ASSERT_EQ(qos_api_ctrl_get(0, type, &v), 0);
        EXPECT_EQ(v, 1u) << "a non-zero value is a set flag";
        ASSERT_EQ(qos_api_ctrl_set(0, type, 0), 0);
        ASSERT_EQ(qos_api_ctrl_get(0, type, &v), 0);
        EXPECT_EQ(v, 0u);
    }
}

TEST_F(Qos, CommonMapsOfAtolreef)
{
    qos_common_map_cfg c{};
    c.type = QOS_COMMON_MAP_CAUSEID_TO_GROUP;
    EXPECT_EQ(qos_api_common_map_ctrl_set(0, &c), -24);
    EXPECT_TRUE(Capture::has("chip type (3) not support common map type (0) !"));
    c.type = QOS_COMMON_MAP_DPID_TO_DP_GROUP;
    EXPECT_EQ(qos_api_common_map_ctrl_get(0, &c), -24);
    c.type = 6;
    EXPECT_EQ(qos_api_common_map_ctrl_set(0, &c), -24);
    EXPECT_EQ(qos_api_common_map_ctrl_set(0, nullptr), -20);

    cos_map({7, 6, 5, 4, 3, 2, 1, 0});
    cib_qm_cos_queue_map_t r{};
    ASSERT_EQ(csl_reef_cib_qm_cos_queue_map_get(0, 0, &r), 0);
    EXPECT_EQ(r.cos0_queue_map, 7);
    EXPECT_EQ(r.cos7_queue_map, 0);
    c = qos_common_map_cfg{};
    c.type = QOS_COMMON_MAP_INTL_PRI_TO_COSQ;
    c.intl_pri = 2;
    ASSERT_EQ(qos_api_common_map_ctrl_get(0, &c), 0);
    EXPECT_EQ(c.cosq, 5u);
    c.cosq = 8;
    EXPECT_EQ(qos_api_common_map_ctrl_set(0, &c), -4);
    c.intl_pri = 8;
    EXPECT_EQ(qos_api_common_map_ctrl_get(0, &c), -4);
}

TEST_F(Qos, ToCpuQueueNumberingBothWays)
{
    cos_map(kIdentity);
    qos_tocpu_key key{17};
    qos_tocpu_cfg cfg{};
    cfg.cpu_queue_id = 8;
    ASSERT_EQ(qos_api_tocpu_enqueue_set(0, QOS_TOCPU_CPU_QUEUE_ID, &key, &cfg), 0);
    cib_epro_causeid_table_t r{};
    ASSERT_EQ(csl_reef_cib_epro_causeid_table_get(0, 0, 17, &r), 0);
    EXPECT_EQ(r.cp_qindex, 8);
    EXPECT_EQ(r.vld, 1);
    qos_tocpu_cfg got{};
    ASSERT_EQ(qos_api_tocpu_enqueue_get(0, &key, &got), 0);
    EXPECT_EQ(got.cpu_queue_id, 8u);

    // With a map that is not the identity, the internal priority of the
    // queue is stored, and the get maps it back.
    cos_map({3, 0, 1, 2, 7, 4, 5, 6});
    cfg.cpu_queue_id = 13; // queue 5 of the upper half: intl_pri 6
    ASSERT_EQ(qos_api_tocpu_enqueue_set(0, QOS_TOCPU_CPU_QUEUE_ID, &key, &cfg), 0);
    ASSERT_EQ(csl_reef_cib_epro_causeid_table_get(0, 0, 17, &r), 0);
    EXPECT_EQ(r.cp_qindex, 6 + 8);
    ASSERT_EQ(qos_api_tocpu_enqueue_get(0, &key, &got), 0);
    EXPECT_EQ(got.cpu_queue_id, 13u);

    // The flags each write their own field beside the valid bit.
    cfg = qos_tocpu_cfg{1, 1, 0, 1};
    for (u32 type : {QOS_TOCPU_SNOOPING_DROP, QOS_TOCPU_CPU_QUEUE_EN, QOS_TOCPU_TIME_EN}) {
        ASSERT_EQ(qos_api_tocpu_enqueue_set(0, type, &key, &cfg), 0);
    }
    ASSERT_EQ(qos_api_tocpu_enqueue_get(0, &key, &got), 0);
    EXPECT_EQ(got.snooping_drop, 1u);
    EXPECT_EQ(got.cpu_queue_en, 1u);
    EXPECT_EQ(got.time_en, 1u);
    EXPECT_EQ(got.cpu_queue_id, 13u);

    // A cause id whose row is not valid reads all zero.
    qos_tocpu_key other{18};
    cib_epro_causeid_table_t invalid{0, 1, 0, 1, 1, 5};
    u64 all[2] = {~0ull, ~0ull};
    ASSERT_EQ(csl_reef_cib_epro_causeid_table_set(0, 0, 18, &invalid, all), 0);
    got = qos_tocpu_cfg{9, 9, 9, 9};
    ASSERT_EQ(qos_api_tocpu_enqueue_get(0, &other, &got), 0);
    EXPECT_EQ(got.snooping_drop + got.cpu_queue_en + got.cpu_queue_id + got.time_en, 0u);

    cfg.cpu_queue_id = 16;
    EXPECT_EQ(qos_api_tocpu_enqueue_set(0, QOS_TOCPU_CPU_QUEUE_ID, &key, &cfg), -4);
    key.causeid = 512;
    EXPECT_EQ(qos_api_tocpu_enqueue_set(0, QOS_TOCPU_TIME_EN, &key, &cfg), -4);
    key.causeid = 1;
    EXPECT_EQ(qos_api_tocpu_enqueue_set(0, 4, &key, &cfg), -24);
    EXPECT_EQ(qos_api_tocpu_enqueue_get(0, &key, nullptr), -20);
}

TEST_F(Qos, ToCpuQueueOfAQueueNoPriorityMapsToIsNotFound)
{
    cos_map({0, 0, 0, 0, 0, 0, 0, 0});
    qos_tocpu_key key{3};
    cib_epro_causeid_table_t before{}, after{};
    ASSERT_EQ(csl_reef_cib_epro_causeid_table_get(0, 0, 3, &before), 0);
    qos_tocpu_cfg cfg{};
    cfg.cpu_queue_id = 2;
    EXPECT_EQ(qos_api_tocpu_enqueue_set(0, QOS_TOCPU_CPU_QUEUE_ID, &key, &cfg), -7);
    ASSERT_EQ(csl_reef_cib_epro_causeid_table_get(0, 0, 3, &after), 0);
    EXPECT_EQ(memcmp(&before, &after, sizeof(before)), 0) << "nothing written";
}

TEST_F(Qos, RedirectQueueNumberingBothWays)
{
    struct Case {
        qos_redirect_cfg in;
        u32 queid;
        qos_redirect_cfg out;
    };
    const Case cases[] = {
        {{QOS_REDIR_TO_CPU, 31, 3, 1}, 243, {QOS_REDIR_TO_CPU, 30, 3, 1}},
        {{QOS_REDIR_TO_CPU, 31, 11, 0}, 251, {QOS_REDIR_TO_CPU, 31, 11, 0}},
        {{QOS_REDIR_TO_CPU, 31, 15, 0}, 255, {QOS_REDIR_TO_CPU, 31, 15, 0}},
        {{QOS_REDIR_TO_ETH, 5, 7, 1}, 47, {QOS_REDIR_TO_ETH, 5, 7, 1}},
        {{QOS_REDIR_TO_ETH, 0, 0, 0}, 0, {QOS_REDIR_TO_ETH, 0, 0, 0}},
    };
    for (const Case &c : cases) {
        qos_redirect_cfg in = c.in;
        ASSERT_EQ(qos_api_redirect_glb_set(0, &in), 0) << c.queid;
        cib_qm_redir_cfg_t r{};
        ASSERT_EQ(csl_reef_cib_qm_redir_cfg_get(0, 0, &r), 0);
        EXPECT_EQ(r.queid, c.queid);
        EXPECT_EQ(r.redir_cpu_flag, c.in.redir_flag == QOS_REDIR_TO_CPU);
        EXPECT_EQ(r.glb_redir_en, c.in.drop_pkt_en);
        qos_redirect_cfg out{};
        ASSERT_EQ(qos_api_redirect_glb_get(0, &out), 0);
        EXPECT_EQ(out.redir_flag, c.out.redir_flag) << c.queid;
        EXPECT_EQ(out.lport, c.out.lport) << c.queid;
        EXPECT_EQ(out.queue_offset, c.out.queue_offset) << c.queid;
        EXPECT_EQ(out.drop_pkt_en, c.out.drop_pkt_en) << c.queid;
    }
    qos_redirect_cfg bad{QOS_REDIR_TO_ETH, 5, 8, 0};
    EXPECT_EQ(qos_api_redirect_glb_set(0, &bad), -4);
    bad = qos_redirect_cfg{QOS_REDIR_TO_CPU, 31, 16, 0};
    EXPECT_EQ(qos_api_redirect_glb_set(0, &bad), -4);
    bad = qos_redirect_cfg{2, 5, 0, 0};
    EXPECT_EQ(qos_api_redirect_glb_set(0, &bad), -4);
    EXPECT_TRUE(Capture::has("Worng redir flag(2)"));
    bad = qos_redirect_cfg{QOS_REDIR_TO_ETH, 32, 0, 0};
    EXPECT_EQ(qos_api_redirect_glb_set(0, &bad), -4);
    EXPECT_EQ(qos_api_redirect_glb_set(0, nullptr), -20);

    u32 en = 5;
    ASSERT_EQ(qos_api_redirect_cause_enable_set(0, 1023, 1), 0);
    ASSERT_EQ(qos_api_redirect_cause_enable_get(0, 1023, &en), 0);
    EXPECT_EQ(en, 1u);
    ASSERT_EQ(qos_api_redirect_cause_enable_set(0, 1023, 2), 0);
    ASSERT_EQ(qos_api_redirect_cause_enable_get(0, 1023, &en), 0);
    EXPECT_EQ(en, 0u) << "only 1 enables";
    EXPECT_EQ(qos_api_redirect_cause_enable_set(0, 1024, 1), -4);
}

TEST_F(Qos, FlushClosesWaitsAndOpens)
{
    qos_flush_cfg f{QOS_FLUSH_PORT_CLOSE, 4, 0};
    ASSERT_EQ(qos_api_flush_set(0, &f), 0);
    EXPECT_EQ(flush_bits(), 1u << 4);
    f = qos_flush_cfg{QOS_FLUSH_PORT_CLOSE, 31, 0};
    ASSERT_EQ(qos_api_flush_set(0, &f), 0);
    EXPECT_EQ(flush_bits(), 1u << 4 | 1u << 31);
    f = qos_flush_cfg{QOS_FLUSH_PORT_OPEN, 4, 0};
    ASSERT_EQ(qos_api_flush_set(0, &f), 0);
    EXPECT_EQ(flush_bits(), 1u << 31);
    f = qos_flush_cfg{QOS_FLUSH_PORT, 7, 0};
    ASSERT_EQ(qos_api_flush_set(0, &f), 0);
    EXPECT_EQ(flush_bits(), 1u << 31) << "a full flush opens the port again";
}

TEST_F(Qos, FlushTimeOutLeavesThePortClosed)
{
    ASSERT_EQ(tide_sim_qos_never_empty_set(0, 6, 1), 0);
    qos_flush_cfg f{QOS_FLUSH_PORT, 6, 0};
    EXPECT_EQ(qos_api_flush_set(0, &f), -9);
    EXPECT_TRUE(Capture::has("port or dp(6) check out of time after flush!"));
    EXPECT_EQ(flush_bits(), 1u << 6);
    ASSERT_EQ(tide_sim_qos_never_empty_set(0, 6, 0), 0);
    ASSERT_EQ(qos_api_flush_set(0, &f), 0);
    EXPECT_EQ(flush_bits(), 0u);
}

TEST_F(Qos, FlushRefusals)
{
    qos_flush_cfg f{QOS_FLUSH_DP, 0, 0};
    EXPECT_EQ(qos_api_flush_set(0, &f), -24) << "DP flush is of chip types 1 and 2";
    EXPECT_TRUE(Capture::has("chip type (3) not support flush type (0) !"));
    f = qos_flush_cfg{QOS_FLUSH_PORT, 32, 0};
    EXPECT_EQ(qos_api_flush_set(0, &f), -4);
    f = qos_flush_cfg{4, 1, 0};
    EXPECT_EQ(qos_api_flush_set(0, &f), -24);
    EXPECT_EQ(qos_api_flush_set(0, nullptr), -20);
    EXPECT_EQ(flush_bits(), 0u);
}

TEST_F(Qos, CaptureSettingsAndCauseIds)
{
    qos_capture_cfg c{QOS_CAPTURE_ON, 9, 15, 12};
    ASSERT_EQ(qos_api_capture_set(0, &c), 0);
    qos_capture_info info{};
    ASSERT_EQ(qos_api_capture_status_get(0, &info), 0);
    EXPECT_EQ(info.flags, QOS_CAPTURE_ON);
    EXPECT_EQ(info.cap_pid, 9u);
    EXPECT_EQ(info.cap_num, 15u);
    EXPECT_EQ(info.cap_qid, 12u);
    c.cap_num = 16;
    EXPECT_EQ(qos_api_capture_set(0, &c), -4);
    c = qos_capture_cfg{QOS_CAPTURE_ON, 9, 1, 16};
    EXPECT_EQ(qos_api_capture_set(0, &c), -4);
    c = qos_capture_cfg{QOS_CAPTURE_EX_LEN_1588, 9, 1, 1};
    EXPECT_EQ(qos_api_capture_set(0, &c), -24);

    const u32 causes[4] = {1, 513, 1023, 700};
    for (u32 i = 0; i < 4; i++) {
        ASSERT_EQ(qos_api_capture_causeid_set(0, i, causes[i]), 0) << i;
    }
    for (u32 i = 0; i < 4; i++) {
        u32 got = 0;
        ASSERT_EQ(qos_api_capture_causeid_get(0, i, &got), 0);
        EXPECT_EQ(got, causes[i]) << i;
    }
    cib_qm_pkt_cap_ctrl2_t r{};
    ASSERT_EQ(csl_reef_cib_qm_pkt_cap_ctrl2_get(0, 0, &r), 0);
    EXPECT_EQ(r.ptype_cap0, 1023);
    EXPECT_EQ(r.ptype_cap1, 700);
    EXPECT_EQ(qos_api_capture_causeid_set(0, 4, 1), -4);
    EXPECT_EQ(qos_api_capture_causeid_set(0, 0, 1024), -4);
}

TEST_F(Qos, ZeroBandwidthCheckOfQueueAndPort)
{
    qos_check_key key{0, 21};
    u32 zero = 9;
    ASSERT_EQ(qos_api_que_bandwidth_cfg_zero_check(0, &key, &zero), 0);
    EXPECT_EQ(zero, 0u);
    cib_sch_port_shap_tbl_t p{};
    p.pv = 1;
    u64 mask[2] = {~0ull, ~0ull};
    ASSERT_EQ(csl_reef_cib_sch_port_shap_tbl_set(0, 0, 2, &p, mask), 0);
    ASSERT_EQ(qos_api_que_bandwidth_cfg_zero_check(0, &key, &zero), 0);
    EXPECT_EQ(zero, 0u) << "type 0 looks at the queue alone";
    key.type = 1;
    ASSERT_EQ(qos_api_que_bandwidth_cfg_zero_check(0, &key, &zero), 0);
    EXPECT_EQ(zero, 1u) << "queue 21 is on port 2, whose shaper has nothing to give";
    cib_sch_que_shap_tbl_t q{};
    q.pv = 1;
    q.pband_bas = 4;
    q.pburst_bas = 0;
    ASSERT_EQ(csl_reef_cib_sch_que_shap_tbl_set(0, 0, 30, &q, mask), 0);
    key = qos_check_key{0, 30};
    ASSERT_EQ(qos_api_que_bandwidth_cfg_zero_check(0, &key, &zero), 0);
    EXPECT_EQ(zero, 1u);
    key = qos_check_key{0, 256};
    EXPECT_EQ(qos_api_que_bandwidth_cfg_zero_check(0, &key, &zero), -4);
    key = qos_check_key{2, 1};
    EXPECT_EQ(qos_api_que_bandwidth_cfg_zero_check(0, &key, &zero), -24);
}

TEST_F(Qos, CongestionCheckOfAQueueGroup)
{
    qos_check_key key{0, 13};
    qos_check_result res{};
    ASSERT_EQ(qos_api_que_congestion_check(0, &key, &res), 0);
    for (u32 i = 0; i < 8; i++) {
        EXPECT_EQ(res.queue_id[i], 8 + i);
        EXPECT_EQ(res.checked[i], 1u);
        EXPECT_EQ(res.congested[i], 0u);
    }
    cib_qm_fbm_link_rdata_t cells{21};
    u64 mask[2] = {~0ull, ~0ull};
    ASSERT_EQ(csl_reef_cib_qm_fbm_link_rdata_set(0, 0, 10, &cells, mask), 0);
    ASSERT_EQ(qos_api_que_congestion_check(0, &key, &res), 0);
    EXPECT_EQ(res.congested[2], 1u) << "queue 10 holds more than 20 cells";
    EXPECT_EQ(res.congested[3], 0u);
    key.type = 1;
    EXPECT_EQ(qos_api_que_congestion_check(0, &key, &res), -24) << "the tree above a queue is of chip types 1 and 2";
    EXPECT_EQ(qos_api_que_congestion_check(0, &key, nullptr), -20);
}

TEST_F(Qos, ConfigurationOfAtolreef)
{
    const dpl_reef_qos_cfg *q = dpl_reef_g_qos_cfg_get(0);
    ASSERT_NE(q, nullptr);
    EXPECT_EQ(q->tocpu_causeid_num, 512u);
    EXPECT_EQ(q->dp_num, 0u);
    EXPECT_EQ(q->queue_offset_max_cpu, 16u);
    EXPECT_EQ(q->max_rate, 50000000000ull);
    EXPECT_EQ(q->max_bucket, 1020000ull);
    EXPECT_EQ(q->causeid_policer_num, 512u);
    EXPECT_EQ(q->alpha_min, -2);
    EXPECT_EQ(q->tail_thr_auto_change, 1u);
    EXPECT_EQ(q->port_tail_max_thr, 1792u);
    // The pps length of both policer blocks is set by the hardware init.
    cib_icar_cfg_pps_len_t i{};
    cib_ecar_cfg_pps_len_t e{};
    ASSERT_EQ(csl_reef_cib_icar_cfg_pps_len_get(0, 0, &i), 0);
    ASSERT_EQ(csl_reef_cib_ecar_cfg_pps_len_get(0, 0, &e), 0);
    EXPECT_EQ(i.cfg_pps_len, 2000u);
    EXPECT_EQ(e.cfg_pps_len, 2000u);
}

TEST_F(Qos, StatisticsAreAssembledFromTheirPartsAndCleared)
{
    u64 all[2] = {~0ull, ~0ull};
    cib_qm_que_fwd_stat_tbl_t fwd{0x1234, 0x0ABCDEF, 0x9, 0x87654321};
    ASSERT_EQ(csl_reef_cib_qm_que_fwd_stat_tbl_set(0, 0, 77, &fwd, all), 0);
    qos_counter_key key{0, 0, 77, 0};
    qos_counter_info info{};
    ASSERT_EQ(qos_api_counter_info_get(0, 1, &key, &info), 0);
    EXPECT_EQ(info.valid_mask, 9u);
    EXPECT_EQ(info.byte_num, 0x0ABCDEFull + (0x1234ull << 28));
    EXPECT_EQ(info.pkt_num, 0x87654321ull + (0x9ull << 32));
    qos_clear_key clear{0, 77, 0};
    ASSERT_EQ(qos_api_counter_status_clear(0, 2, &clear), 0);
    ASSERT_EQ(qos_api_counter_info_get(0, 1, &key, &info), 0);
    EXPECT_EQ(info.pkt_num + info.byte_num, 0u);

    // The history watcher: the mode and mask of the type, then the length.
    cib_qm_qm_que_dbg_t dbg{0x111, 0x222};
    u8 m4[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(csl_reef_cib_qm_qm_que_dbg_set(0, 0, &dbg, m4), 0);
    ASSERT_EQ(qos_api_counter_info_get(0, 16, &key, &info), 0);
    EXPECT_EQ(info.cell_num, 0x222u) << "highest over all queues";
    cib_qm_que_dbg_ctrl_t ctrl{};
    ASSERT_EQ(csl_reef_cib_qm_que_dbg_ctrl_get(0, 0, &ctrl), 0);
    EXPECT_EQ(ctrl.queue_dbg_mod_cfg, 0);
    EXPECT_EQ(ctrl.queue_mask_cfg, 255);
    key.lport = 9;
    ASSERT_EQ(qos_api_counter_info_get(0, 14, &key, &info), 0);
    EXPECT_EQ(info.cell_num, 0x111u) << "lowest of a port";
    ASSERT_EQ(csl_reef_cib_qm_que_dbg_ctrl_get(0, 0, &ctrl), 0);
    EXPECT_EQ(ctrl.queue_dbg_mod_cfg, 1);
    EXPECT_EQ(ctrl.queue_mask_cfg, 0);
    EXPECT_EQ(ctrl.queue_cfg, 9);

    EXPECT_EQ(qos_api_counter_info_get(0, 4, &key, &info), -24);
    EXPECT_EQ(qos_api_counter_info_get(0, 10, &key, &info), -24) << "the DP watcher is of chip types 1 and 2";
    key.queue_id = 256;
    EXPECT_EQ(qos_api_counter_info_get(0, 1, &key, &info), -4);
    EXPECT_EQ(qos_api_counter_status_clear(0, 4, &clear), -24);
    EXPECT_EQ(qos_api_counter_status_clear(0, 1, nullptr), -20);
}

TEST_F(Qos, PortStatusOfFlushAndEmptiness)
{
    qos_status_key key{6, 0, 0};
    u32 st = 9;
    ASSERT_EQ(qos_api_status_info_get(0, 10, &key, &st), 0);
    EXPECT_EQ(st, 0u);
    qos_flush_cfg f{QOS_FLUSH_PORT_CLOSE, 6, 0};
    ASSERT_EQ(qos_api_flush_set(0, &f), 0);
    ASSERT_EQ(qos_api_status_info_get(0, 10, &key, &st), 0);
    EXPECT_EQ(st, 1u);
    key.queue_id = 6;
    ASSERT_EQ(qos_api_status_info_get(0, 0, &key, &st), 0);
    EXPECT_EQ(st, 0u);
    ASSERT_EQ(tide_sim_qos_never_empty_set(0, 6, 1), 0);
    ASSERT_EQ(qos_api_status_info_get(0, 0, &key, &st), 0);
    EXPECT_EQ(st, 1u);
    EXPECT_EQ(qos_api_status_info_get(0, 1, &key, &st), -24) << "the port's own flag is of chip types 1 and 2";
    EXPECT_EQ(qos_api_status_info_get(0, 2, &key, &st), -24) << "no back-pressure registers in this build";
    key.queue_id = 256;
    EXPECT_EQ(qos_api_status_info_get(0, 0, &key, &st), -4);
    EXPECT_EQ(qos_api_status_info_get(0, 0, nullptr, &st), -20);
}
