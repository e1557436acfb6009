// The `macsec` mode of the shell on a chip of the model, line by line as an
// operator types them; what the lines did is read back through the API.
#include <gtest/gtest.h>
#include <tide/macsec.h>

#include "support/mode_cli.h"

namespace {

class MacsecCli : public tide::test::ModeCli {
protected:
    MacsecCli() : ModeCli("macsec", true) {}
};

TEST_F(MacsecCli, PortsAndGlobalSettings)
{
    ASSERT_EQ(run("macsec enc-ports 1-2 macsec-enable enable bypass-vid 100 default_sc 7"), 0) << out_;
    macsec_port_config c{};
    ASSERT_EQ(macsec_api_port_config_get(0, 2, MACSEC_DIR_ENC, &c), 0);
    EXPECT_EQ(c.macsec_enable, 1u);
    EXPECT_EQ(c.bypass_vid, 100u);
    EXPECT_EQ(c.default_sc, 7u);
    ASSERT_EQ(run("macsec dec-ports 3 loopback enable fastp enable loop_port 9 safe_mode must"), 0) << out_;
    ASSERT_EQ(macsec_api_port_config_get(0, 3, MACSEC_DIR_DEC, &c), 0);
    EXPECT_EQ(c.lb_vld, 1u);
    EXPECT_EQ(c.lb_fastp_en, 1u);
    EXPECT_EQ(c.lb_dport, 9u);
    EXPECT_EQ(c.safe_mode, 1u);
    ASSERT_EQ(run("show macsec enc-ports 2 all"), 0) << out_;
    EXPECT_TRUE(said("bypass-vid       : 100")) << out_;
    EXPECT_TRUE(said("ability          : sa 128-128 sc 32-64")) << out_;
    ASSERT_EQ(run("show macsec dec ports 3 bind-detail"), 0) << out_;
    EXPECT_TRUE(said("safe_mode        : must")) << out_;
    // A refusal of the service reaches the operator.
    EXPECT_NE(run("macsec enc-ports 1 bypass-vid 5000"), 0);
    EXPECT_TRUE(said("macsec_api_port_config_set")) << out_;

    ASSERT_EQ(run("macsec global sc_mode enable"), 0) << out_;
    macsec_global g{};
    ASSERT_EQ(macsec_api_globle_get(0, &g), 0);
    EXPECT_EQ(g.sc_mode, 1u);
    ASSERT_EQ(run("show macsec global all"), 0) << out_;
    EXPECT_TRUE(said("sc_mode             : 1:4")) << out_;
}

TEST_F(MacsecCli, ChannelsAssociationsAndTheirDestruction)
{
    ASSERT_EQ(run("macsec enc-sc 4 sc-enable enable protect-mode confidentiality sci 0x1122 tci-an 1 em-dport 6 "
                  "em-dmac 00:11:22:33:44:55"),
              0)
        << out_;
    macsec_secure_chan c{};
    ASSERT_EQ(macsec_api_secure_chan_get(0, 0, MACSEC_DIR_ENC, 4, &c), 0);
    EXPECT_EQ(c.sc_enable, 1u);
    EXPECT_EQ(c.protect_mode, 1u);
    EXPECT_EQ(c.sci, 0x1122u);
    EXPECT_EQ(c.tci >> 4, 1u);
    EXPECT_EQ(c.em_dport, 6u);
    EXPECT_EQ(c.em_dmac[5], 0x55u);
    ASSERT_EQ(run("show macsec enc-sc 4 em-dmac"), 0) << out_;
    EXPECT_TRUE(said("00:11:22:33:44:55")) << out_;
    ASSERT_EQ(run("macsec dec-sc 4 validate-mode strict sci-enable enable sci 0x77"), 0) << out_;
    ASSERT_EQ(run("show macsec dec-sc 4 all"), 0) << out_;
    EXPECT_TRUE(said("validate-mode  : strict")) << out_;

    ASSERT_EQ(run("macsec enc-sa 1 sc 4 crypto gcm-aes-128 sak sak3 0x33 sak2 0x22 next-pn 5 pn-th 1000 "
                  "iv 1 2 3 4"),
              0)
        << out_;
    macsec_secure_assoc a{};
    ASSERT_EQ(macsec_api_secure_assoc_get(0, 0, 4, 1, MACSEC_DIR_ENC, &a), 0);
    EXPECT_EQ(a.sak[3], 0x33u);
    EXPECT_EQ(a.sak_valid, 1u);
    EXPECT_EQ(a.next_pn, 5u);
    EXPECT_EQ(a.pn_th, 1000u);
    EXPECT_EQ(a.salt_h, 4u);
    ASSERT_EQ(run("show macsec enc-sa 1 sc 4 all"), 0) << out_;
    EXPECT_TRUE(said("crypto         : gcm-aes-128")) << out_;
    ASSERT_EQ(run("macsec dec-sa 0 sc 4 replay-protect enable replay-window 32 lowest-pn 9"), 0) << out_;
    ASSERT_EQ(macsec_api_secure_assoc_get(0, 0, 4, 0, MACSEC_DIR_DEC, &a), 0);
    EXPECT_EQ(a.replay_window, 32u);
    EXPECT_EQ(a.lowest_pn, 9u);

    ASSERT_EQ(run("macsec enc sa 1 sc 4 destroy"), 0) << out_;
    ASSERT_EQ(macsec_api_secure_assoc_get(0, 0, 4, 1, MACSEC_DIR_ENC, &a), 0);
    EXPECT_EQ(a.sak_valid, 0u);
    EXPECT_EQ(a.sak[3], 0u);
    ASSERT_EQ(run("macsec enc sc 4 destroy"), 0) << out_;
    ASSERT_EQ(macsec_api_secure_chan_get(0, 0, MACSEC_DIR_ENC, 4, &c), 0);
    EXPECT_EQ(c.sc_enable, 0u);
    // A refusal: secure offset 10.
    EXPECT_NE(run("macsec enc-sa 0 sc 2 secure-offset 10"), 0);
    EXPECT_TRUE(said("macsec_api_secure_assoc_create")) << out_;
}

TEST_F(MacsecCli, FlowsStatisticsAndWhiteLists)
{
    ASSERT_EQ(run("macsec dec flow 0 port 5 ec01 action drop"), 0) << out_;
    ASSERT_EQ(run("show macsec dec flow 0 port 5"), 0) << out_;
    EXPECT_TRUE(said("ec01        : drop")) << out_;
    EXPECT_TRUE(said("ec10        : forward")) << out_;
    EXPECT_NE(run("macsec enc flow 0 port 5 ec01 action drop"), 0);
    ASSERT_EQ(run("macsec ports 5 flow 0 destroy"), 0) << out_;
    ASSERT_EQ(run("show macsec dec flow 0 port 5"), 0) << out_;
    EXPECT_FALSE(said("drop")) << out_;

    ASSERT_EQ(run("macsec enc-sc 2 sc-enable enable"), 0) << out_;
    ASSERT_EQ(run("macsec enc-sa 0 sc 2 next-pn 1"), 0) << out_;
    u32 done = 0;
    ASSERT_EQ(tide_sim_macsec_tx(0, 1, 2, 3, 64, &done), 0);
    ASSERT_EQ(run("show macsec mib sc 2 non-zero"), 0) << out_;
    EXPECT_TRUE(said("enc protected packets   : 3")) << out_;
    EXPECT_FALSE(said("enc encrypted packets")) << out_;
    ASSERT_EQ(run("show macsec mib ports 1"), 0) << out_;
    EXPECT_TRUE(said("enc protected octets    : 192")) << out_;
    ASSERT_EQ(run("macsec enc mib clear sc 2"), 0) << out_;
    ASSERT_EQ(run("macsec enc mib clear ports 1"), 0) << out_;
    ASSERT_EQ(run("show macsec mib ports 1 non-zero"), 0) << out_;
    EXPECT_FALSE(said("octets")) << out_;

    ASSERT_EQ(run("macsec enc white-list ovlan entry 2 enable tpid 0x88a8"), 0) << out_;
    ASSERT_EQ(run("show macsec enc white-list all-vlan entry 2"), 0) << out_;
    EXPECT_TRUE(said("ovlan entry 2: enable tpid 0x88a8")) << out_;
    EXPECT_TRUE(said("ivlan entry 2: disable")) << out_;
    ASSERT_EQ(run("macsec dec white-list ethertype entry 1 value 0x888e mask 0xffff"), 0) << out_;
    ASSERT_EQ(run("show macsec dec white-list ethertype entry 1"), 0) << out_;
    EXPECT_TRUE(said("value 0x888e mask 0xffff")) << out_;
}

} // namespace
