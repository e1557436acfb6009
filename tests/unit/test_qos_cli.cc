// The `qos` mode of the shell on a chip of the model, line by line as an
// operator types them; what the lines did is read back through the API.
#include <gtest/gtest.h>
#include <tide/cli.h>
#include <tide/qos.h>

#include "atolreef_cib.h"
#include "support/mode_cli.h"

namespace {

class QosCli : public tide::test::ModeCli {
protected:
    QosCli() : ModeCli("qos", true) {}
    void SetUp() override
    {
        ModeCli::SetUp();
        cli_shell_mode_set(0, 1); // ports by their logical numbers
    }
    void TearDown() override
    {
        cli_shell_mode_set(0, 0);
        ModeCli::TearDown();
    }
};

TEST_F(QosCli, APolicerFromCreationToBinding)
{
    ASSERT_EQ(run("qos policer create sport profile-id 5"), 0) << out_;
    ASSERT_EQ(run("qos policer double-bucket sport profile-id 5 rfc2698 color-aware bps cir 16000000 cbs 10000 "
                  "xir 32000000 xbs 20000 compensation -4"),
              0)
        << out_;
    qos_policer_cfg c{};
    ASSERT_EQ(qos_api_policer_get(0, QOS_POLICER_SPORT, 5, &c), 0);
    EXPECT_EQ(c.mode, u32{QOS_CAR_RFC2698});
    EXPECT_EQ(c.color_mode, 1);
    EXPECT_EQ(c.cir, 16000000u);
    EXPECT_EQ(c.cbs, 10000u);
    EXPECT_EQ(c.xir, 32000000u);
    EXPECT_EQ(c.xbs, 20000u);
    EXPECT_EQ(c.len_adj, -4);

    ASSERT_EQ(run("qos policer-action sport profile-id 5 red new-intl-pri-color 6 yellow"), 0) << out_;
    ASSERT_EQ(run("qos policer-action sport profile-id 5 green pass"), 0) << out_;
    qos_policer_actions a{};
    ASSERT_EQ(qos_api_policer_action_get(0, QOS_POLICER_SPORT, 5, &a), 0);
    EXPECT_EQ(a.action[0], u32{QOS_POLICER_ACT_PASS});
    EXPECT_EQ(a.action[2], u32{QOS_POLICER_ACT_NEW_INTL_PRI_COLOR});
    EXPECT_EQ(a.remark_pri[2], 6);
    EXPECT_EQ(a.remark_color[2], u32{QOS_COLOR_YELLOW});

    ASSERT_EQ(run("show qos policer sport profile-id 5"), 0) << out_;
    EXPECT_TRUE(said("rfc2698")) << out_;
    EXPECT_TRUE(said("16000000")) << out_;
    EXPECT_TRUE(said("pass drop new-intl-pri-color")) << out_;

    ASSERT_EQ(run("qos policer-bind sport 3 profile-id 5"), 0) << out_;
    qos_bind_info b{QOS_POLICER_SPORT, 0, 0, 3, 0};
    ASSERT_EQ(qos_api_policer_bind_get(0, &b), 0);
    EXPECT_EQ(b.policer_id, 5u);
    ASSERT_EQ(run("show qos policer-bind-info sports 3"), 0) << out_;
    EXPECT_TRUE(said("3                5")) << out_;
    ASSERT_EQ(run("qos policer-unbind sport 3"), 0) << out_;
    ASSERT_EQ(run("qos policer destroy sport profile-id 5"), 0) << out_;
    u32 created = 1;
    ASSERT_EQ(qos_api_policer_created_get(0, QOS_POLICER_SPORT, 5, &created), 0);
    EXPECT_EQ(created, 0u);

    // The cause-id policer and its refusals.
    ASSERT_EQ(run("qos policer create tocpu-causeid"), 0) << out_;
    EXPECT_TRUE(said("profile-id 0 created")) << out_;
    ASSERT_EQ(run("qos policer single-bucket tocpu-causeid profile-id 0 pps pir 1000 pbs 4000"), 0) << out_;
    ASSERT_EQ(qos_api_policer_get(0, QOS_POLICER_TOCPU_CAUSEID, 0, &c), 0);
    EXPECT_EQ(c.rate_mode, 1);
    EXPECT_EQ(c.xir, 1000u);
    ASSERT_EQ(run("qos policer-bind tocpu-causeid 306 profile-id 0"), 0) << out_;
    EXPECT_EQ(run("qos policer create sport profile-id 40"), -4) << out_;
    EXPECT_TRUE(said("call qos_api_policer_create failed")) << out_;
    EXPECT_EQ(run("qos policer create sport-tocpu-causeid-group"), -24) << out_;
    EXPECT_EQ(run("qos policer-action dport profile-id 1 red drop"), -7) << out_;
}

TEST_F(QosCli, MapsRemarkAndTheQueuesOfTheCpu)
{
    ASSERT_EQ(run("qos priority-map 7 type dscp 63 intl-pri 5 color red"), 0) << out_;
    qos_map_cfg m{63, 0, 0, 0, 0};
    ASSERT_EQ(qos_api_priority_map_get(0, QOS_MAP_DSCP, 7, &m), 0);
    EXPECT_EQ(m.intl_pri, 5u);
    EXPECT_EQ(m.color, u32{QOS_COLOR_RED});
    ASSERT_EQ(run("qos priority-map 2 type opri-ocfi 6 1 intl-pri 3 color yellow"), 0) << out_;
    m = qos_map_cfg{0, 6, 1, 0, 0};
    ASSERT_EQ(qos_api_priority_map_get(0, QOS_MAP_OPRI_OCFI, 2, &m), 0);
    EXPECT_EQ(m.intl_pri, 3u);
    ASSERT_EQ(run("show qos priority-map type opri map-ids 0"), 0) << out_;
    EXPECT_TRUE(said("intl-pri")) << out_;
    EXPECT_EQ(run("qos priority-map 0 type untag intl-pri 1 color green"), -24) << out_;

    ASSERT_EQ(run("qos remark 1 intl-pri 4 color green dscp 46"), 0) << out_;
    qos_remark_cfg r{4, 0, 0, 0, 0, 0};
    ASSERT_EQ(qos_api_remark_get(0, QOS_REMARK_DSCP, 1, &r), 0);
    EXPECT_EQ(r.dscp, 46);
    ASSERT_EQ(run("show qos remark dscp remark-ids 1"), 0) << out_;
    EXPECT_TRUE(said("1          4         green   46")) << out_;
    EXPECT_EQ(run("qos remark 1 intl-pri 4 color green dscp 64"), -4) << out_;
    ASSERT_EQ(run("qos remark glb priority remark-high"), 0) << out_;
    ASSERT_EQ(run("show qos remark glb"), 0) << out_;
    EXPECT_TRUE(said("priority : remark-high")) << out_;

    for (int n = 0; n < 8; n++) {
        ASSERT_EQ(run("qos common-map intl-pri-to-cosq " + std::to_string(n) + " " + std::to_string(n)), 0) << out_;
    }
    ASSERT_EQ(run("qos tocpu-enqueue-cfg cpu-causeids 10-12 cpu-queue-id 9"), 0) << out_;
    ASSERT_EQ(run("show qos tocpu-enqueue-cfg cpu-causeids 11"), 0) << out_;
    EXPECT_TRUE(said("9             0")) << out_;

    ASSERT_EQ(run("qos redirect to-cpu port-id 31 queue-offset 11"), 0) << out_;
    ASSERT_EQ(run("qos redirect drop-pkt enable"), 0) << out_;
    qos_redirect_cfg g{};
    ASSERT_EQ(qos_api_redirect_glb_get(0, &g), 0);
    EXPECT_EQ(g.queue_offset, 11u);
    EXPECT_EQ(g.lport, 31u);
    EXPECT_EQ(g.drop_pkt_en, 1u);
    ASSERT_EQ(run("show qos redirect"), 0) << out_;
    EXPECT_TRUE(said("queue-offset : 11")) << out_;
    EXPECT_EQ(run("qos redirect to-eth port-id 3 queue-offset 8"), -4) << out_;
    EXPECT_TRUE(said("redirect glb set failed")) << out_;

    ASSERT_EQ(run("qos capture num 15 dport 4 queue-offset 2"), 0) << out_;
    ASSERT_EQ(run("qos capture causeid start"), 0) << out_;
    ASSERT_EQ(run("show qos capture"), 0) << out_;
    EXPECT_TRUE(said("capture      : start")) << out_;
    EXPECT_TRUE(said("num          : 15")) << out_;
    ASSERT_EQ(run("qos flush ports 4,6"), 0) << out_;
    qos_flush_cfg closing{QOS_FLUSH_PORT_CLOSE, 5, 0};
    ASSERT_EQ(run("show qos band-zero-check queues 8-9"), 0) << out_;
    EXPECT_TRUE(said("queue 9     : ok")) << out_;
    ASSERT_EQ(run("show qos status port-flush"), 0) << out_;
    EXPECT_FALSE(said("port 4")) << out_ << "a full flush opens the port again";
    ASSERT_EQ(qos_api_flush_set(0, &closing), 0);
    ASSERT_EQ(run("show qos status port-flush"), 0) << out_;
    EXPECT_TRUE(said("port 5      : port-flush")) << out_;
    EXPECT_EQ(run("show qos status backpressure"), -24) << out_;
}

TEST_F(QosCli, CountersShownAndCleared)
{
    u64 all[2] = {~0ull, ~0ull};
    cib_qm_que_drop_stat_tbl_t drop{0, 3000, 0, 3};
    ASSERT_EQ(csl_reef_cib_qm_que_drop_stat_tbl_set(0, 0, 42, &drop, all), 0);
    ASSERT_EQ(run("show qos cnt fwd-drop queues 42 clear"), 0) << out_;
    EXPECT_TRUE(said("dropped    42     packets 3")) << out_;
    qos_counter_key key{0, 0, 42, 0};
    qos_counter_info info{};
    ASSERT_EQ(qos_api_counter_info_get(0, 2, &key, &info), 0);
    EXPECT_EQ(info.pkt_num, 0u) << "cleared";
    cib_qm_qm_que_dbg_t dbg{7, 99};
    u8 m4[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(csl_reef_cib_qm_qm_que_dbg_set(0, 0, &dbg, m4), 0);
    ASSERT_EQ(run("show qos cnt his-min-max queue 3"), 0) << out_;
    EXPECT_TRUE(said("highest    3      cells 99")) << out_;
    EXPECT_TRUE(said("lowest     3      cells 7")) << out_;
    ASSERT_EQ(run("show qos cnt fwd-drop ports 2"), 0) << out_;
    EXPECT_TRUE(said("port-out")) << out_;
    EXPECT_EQ(run("show qos cnt his-min-max dpid 1"), -24) << out_;
}

} // namespace
