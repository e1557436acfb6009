// The replication engine's commands of mode `debug`, line by line as an
// operator types them on a chip of the model.
#include <gtest/gtest.h>

#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "atolreef_cib.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"
#include "support/fixture.h"
#include "support/mode_cli.h"


namespace {

class MccCli : public tide::test::ModeCli {
protected:
    MccCli() : ModeCli("debug") {}
    static u32 field(u32 reg, const char *name)
    {
        u32 v = 0;
        EXPECT_EQ(dpl_reef_mcc_reg_field_get(0, reg, name, &v), 0) << name;
        return v;
    }
};

TEST_F(MccCli, AnOperatorBuildsWalksAndTearsDownATree)
{
    ASSERT_EQ(run("mcc alloc-mrt-table table-type l2mc copy-number 2"), 0) << out_;
    EXPECT_TRUE(said("mrt id 16, first mlib id 0, last mlib id 1, copies 2")) << out_;
    ASSERT_EQ(run("mcc increment-copy mrt-id 16"), 0) << out_;
    EXPECT_TRUE(said("mrt 16: new mlib id 2")) << out_;
    ASSERT_EQ(run("show mcc mrt-id 16"), 0) << out_;
    EXPECT_TRUE(said("first 0 last 2 rep_num 3")) << out_;
    EXPECT_TRUE(said("mrt 16 in the chip:\n  0 ")) << out_;
    ASSERT_EQ(run("show mcc mlib-id 1"), 0) << out_;
    EXPECT_TRUE(said("mlib 1: mrt 16 valid 1 next 2 prev 0")) << out_;
    ASSERT_EQ(run("mcc decrement-copy mrt-id 16 mlib-id 1"), 0) << out_;
    EXPECT_EQ(run("mcc decrement-copy mrt-id 16 mlib-id 9"), SHR_E_PARAM);
    EXPECT_TRUE(said("Invalid parameter")) << out_;
    ASSERT_EQ(run("mcc group-id 16 stats enable"), 0) << out_;
    ASSERT_EQ(run("show mcc mrt-id 16"), 0) << out_;
    EXPECT_TRUE(said("stat_en 1")) << out_;
    ASSERT_EQ(run("mcc del-all-copy mrt-id 16"), 0) << out_;
    EXPECT_EQ(run("show mcc mlib-id 1"), SHR_E_NOT_FOUND);
    EXPECT_EQ(run("mcc alloc-mrt-table table-type l3mc copy-number 1"), SHR_E_PARAM);
    EXPECT_EQ(run("mcc increment-copy mrt-id x"), SHR_E_PARAM);
}

TEST_F(MccCli, SettingsReachTheirRegistersAndShowReadsThem)
{
    ASSERT_EQ(run("mcc no-cpu-pkt high-threshold 40 low-threshold 30"), 0) << out_;
    EXPECT_EQ(field(cib_mcc_pri_st, "pri_full_h"), 40u);
    EXPECT_EQ(field(cib_mcc_pri_st, "pri_full_l"), 30u);
    ASSERT_EQ(run("mcc cpu-pkt vlan-tag-pri pri6 low-threshold"), 0) << out_;
    EXPECT_EQ(field(cib_mcc_qindx_st, "qindx6_flag"), 0u);
    EXPECT_EQ(field(cib_mcc_qindx_st, "qindx5_flag"), 1u);
    ASSERT_EQ(run("mcc no-cpu-pkt vlan-tag-pri pri2 low-threshold"), 0) << out_;
    EXPECT_EQ(field(cib_mcc_pri_st, "pri2_flag"), 0u);
    ASSERT_EQ(run("mcc mirr catch-pkt enable"), 0) << out_;
    ASSERT_EQ(run("mcc mirr catch-pkt-type copy-to-cpu"), 0) << out_;
    EXPECT_EQ(field(cib_mcc_catch_pkt_cfg, "mirr_catch_en"), 1u);
    EXPECT_EQ(field(cib_mcc_catch_pkt_cfg, "mirr_catch_type"), 3u);
    ASSERT_EQ(run("mcc bcp interval-beats 9 token-add 2 token-data 100"), 0) << out_;
    EXPECT_EQ(field(cib_mcc_bcp_token_cnt, "bcp_token_cnt"), 9u);
    EXPECT_EQ(field(cib_mcc_bcp_token_dat, "bcp_token_dat"), 100u);
    ASSERT_EQ(run("mcc unicast-weight 3 multicast-weight 5"), 0) << out_;
    EXPECT_EQ(run("mcc unicast-weight 16 multicast-weight 5"), SHR_E_PARAM);
    ASSERT_EQ(run("mcc udp-port 5004"), 0) << out_;
    ASSERT_EQ(run("show mcc rtp"), 0) << out_;
    EXPECT_TRUE(said("rtp udp port : 5004")) << out_;
    ASSERT_EQ(run("show mcc weight-status"), 0) << out_;
    EXPECT_TRUE(said("unicast weight   : 3")) << out_;
    ASSERT_EQ(run("show mcc"), 0) << out_;
    EXPECT_TRUE(said("no-cpu-pkt thresholds : high 40 low 30")) << out_;
    EXPECT_TRUE(said("bcp tokens            : interval 9 add 2 data 100")) << out_;
    EXPECT_TRUE(said("free mlib ids         : 2048")) << out_;
    ASSERT_EQ(run("show mcc sch debug"), 0) << out_;
    EXPECT_TRUE(said("mcc_sch_trace1_out_cnt_debug3")) << out_;
    ASSERT_EQ(run("show mcc fifo-status"), 0) << out_;
    EXPECT_TRUE(said("mirr  fifo : 0")) << out_;
    EXPECT_EQ(run("mcc group-id 300 rtp enable"), SHR_E_NOT_FOUND);
}

TEST_F(MccCli, TheSharedListsShowTheirChainsAndGroupsAndCompress)
{
    ASSERT_EQ(l2_api_multicast_port_add(0, 20, L2_MC_PORT(0, 1)), 0);
    // {1,2} is built in new leaves (1 and 2) before leaf 0 of {1} goes.
    ASSERT_EQ(l2_api_multicast_port_add(0, 20, L2_MC_PORT(0, 2)), 0);
    ASSERT_EQ(l2_api_multicast_port_add(0, 21, L2_MC_PORT(0, 2)), 0);
    ASSERT_EQ(run("show mcc mrt group"), 0) << out_;
    EXPECT_TRUE(said("20      0      2      1           0x1,0x2,")) << out_;
    EXPECT_TRUE(said("21      1      1      2           0x2,")) << out_;
    ASSERT_EQ(run("show mcc mlib group"), 0) << out_;
    EXPECT_TRUE(said("0      2      2      0x1,0x2,")) << out_;
    ASSERT_EQ(run("show mcc mlib group tree 0"), 0) << out_;
    EXPECT_TRUE(said("key 0x0002 leaf 2     next -0     use_cnt 2")) << out_;
    EXPECT_EQ(run("show mcc mlib group tree 5"), SHR_E_NOT_FOUND);
    ASSERT_EQ(run("show mcc mrt group tree 21"), 0) << out_;
    EXPECT_TRUE(said("mrt 21: slot 1, 1 copies from mlib 2")) << out_;
    ASSERT_EQ(run("mcc compress"), 0) << out_;
    EXPECT_TRUE(said("chains: 1 before, 1 after")) << out_;
}

} // namespace
