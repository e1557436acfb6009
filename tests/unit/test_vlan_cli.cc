// The `vlan` mode of the shell on a chip of the model, line by line as an
// operator types it: VLANs with members, port settings, TPIDs, the global
// actions, and what the commands refuse.
#include <gtest/gtest.h>
#include <tide/cli.h>
#include <tide/property.h>
#include <tide/vlan.h>

#include <initializer_list>
#include <string>
#include <utility>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "support/mode_cli.h"

namespace {

class VlanCli : public tide::test::ModeCli {
protected:
    VlanCli() : ModeCli("vlan") {}
    void SetUp() override
    {
        cli_shell_mode_set(0, 1); // ports by their logical numbers
        ModeCli::SetUp();
    }
    void TearDown() override
    {
        cli_shell_mode_set(0, 0);
        ModeCli::TearDown();
    }
    bool has(const std::string &text) const { return out_.find(text) != std::string::npos; }
};

TEST_F(VlanCli, AnOperatorMakesVlansWithMembersShowsAndDestroysThem)
{
    ASSERT_EQ(run("vlan create 10,20-21 ports 1-3 untagged 3"), 0) << out_;
    port_bitmap m{}, u{};
    ASSERT_EQ(vlan_api_port_get(0, 21, &m, &u), 0);
    EXPECT_EQ(m.word[0], 0xEu);
    EXPECT_EQ(u.word[0], 0x8u);
    ASSERT_EQ(run("vlan 10 add ports 5 untagged 5"), 0) << out_;
    ASSERT_EQ(run("vlan 10 del ports 1"), 0) << out_;
    ASSERT_EQ(vlan_api_port_get(0, 10, &m, &u), 0);
    EXPECT_EQ(m.word[0], 0x2Cu);
    EXPECT_EQ(u.word[0], 0x28u);
    ASSERT_EQ(run("show vlan 10"), 0) << out_;
    EXPECT_TRUE(has("10 ")) << out_;
    ASSERT_EQ(run("show vlan"), 0) << out_;
    EXPECT_TRUE(has("Total: 3")) << out_;

    ASSERT_EQ(run("vlan 20 class-id 7"), 0) << out_;
    vlan_control c{VLAN_CTRL_CLASSID, 0};
    ASSERT_EQ(vlan_api_control_get(0, 20, &c), 0);
    EXPECT_EQ(c.value, 7u);
    ASSERT_EQ(run("show vlan 20 info"), 0) << out_;
    EXPECT_TRUE(has("class-id         7")) << out_;

    ASSERT_EQ(run("vlan destroy 10,20-21"), 0) << out_;
    EXPECT_EQ(vlan_api_port_get(0, 10, &m, &u), -7);
    // Refusals keep their status and say why.
    EXPECT_NE(run("vlan destroy 10"), 0);
    EXPECT_TRUE(has("vlan_api_destroy failed")) << out_;
    EXPECT_NE(run("vlan create 4096"), 0);
    EXPECT_NE(run("vlan 30 super-vid 5"), 0);
    EXPECT_TRUE(has("super-vid is not supported")) << out_;
}

TEST_F(VlanCli, PortSettingsTpidsAndGlobalActions)
{
    ASSERT_EQ(run("vlan ports 4-5 pvid 30 pri 5"), 0) << out_;
    vlan_control c{VLAN_PORT_CTRL_PVID, 0};
    ASSERT_EQ(vlan_api_port_control_get(0, 5, &c), 0);
    EXPECT_EQ(c.value, 30u);
    c.key = VLAN_PORT_CTRL_PVID_PRI;
    ASSERT_EQ(vlan_api_port_control_get(0, 4, &c), 0);
    EXPECT_EQ(c.value, 5u);
    ASSERT_EQ(run("vlan ports 4 accept-frame untag"), 0) << out_;
    c.key = VLAN_PORT_CTRL_DISCARD_TAGGED;
    ASSERT_EQ(vlan_api_port_control_get(0, 4, &c), 0);
    EXPECT_EQ(c.value, 1u);
    ASSERT_EQ(run("vlan ports 4 outer-tpid-index 2 enable"), 0) << out_;
    u32 bitmap = 0;
    ASSERT_EQ(vlan_api_port_tpid_bitmap_get(0, 4, &bitmap), 0);
    EXPECT_EQ(bitmap, 0x5u);
    ASSERT_EQ(run("vlan ports 4 egr-port-cnt-type uuc-umc"), 0) << out_;
    c.key = VLAN_PORT_CTRL_E_PORT_CNT_TYPE;
    ASSERT_EQ(vlan_api_port_control_get(0, 4, &c), 0);
    EXPECT_EQ(c.value, 2u);
    ASSERT_EQ(run("vlan ports 4 trust set-qindex-color qindex 3 color red"), 0) << out_;
    u32 type = 0;
    vlan_trust_info t{};
    ASSERT_EQ(vlan_api_port_trust_type_get(0, 4, &type, &t), 0);
    EXPECT_EQ(type, 1u);
    EXPECT_EQ(t.qindex, 3u);
    EXPECT_EQ(t.color, 2u);
    ASSERT_EQ(run("show vlan port 4 info"), 0) << out_;
    EXPECT_TRUE(has("pvid                 30")) << out_;
    EXPECT_TRUE(has("outer tpid bitmap    0x5")) << out_;

    ASSERT_EQ(run("vlan tpid outer index 3 0x9300"), 0) << out_;
    u32 v = 0;
    ASSERT_EQ(vlan_api_tpid_get(0, 3, &v), 0);
    EXPECT_EQ(v, 0x9300u);
    ASSERT_EQ(run("show vlan tpid outer"), 0) << out_;
    EXPECT_TRUE(has("0x9300")) << out_;

    ASSERT_EQ(run("vlan vlan-check-drop-action forward"), 0) << out_;
    ASSERT_EQ(run("show vlan glb-info"), 0) << out_;
    EXPECT_TRUE(has("vlan-check-drop-action     forward")) << out_;

    ASSERT_EQ(run("vlan pvid-add all add-after-del"), 0) << out_;
    ASSERT_EQ(run("vlan remark-level voice-vlan-opri iacl"), 0) << out_;
    ASSERT_EQ(run("vlan pa-immune-lag-blk-action tocpu-pkt drop"), 0) << out_;
    ASSERT_EQ(run("vlan inner-tpid 2 disable"), 0) << out_;
    ASSERT_EQ(run("vlan vlan-switch-pritag-tagnum 1"), 0) << out_;
    for (const auto &[key, want] : std::initializer_list<std::pair<u32, u32>>{
             {VLAN_GLB_PVID_ADD_MODE, 1}, {VLAN_GLB_PRI_TAG_ADD_MODE, 1}, {5, 2}, {32, 1},
             {VLAN_GLB_INNER_TPID0 + 2, 0}, {VLAN_GLB_PRI_TAG_TAGNUM, 1}}) {
        vlan_control g{key, 9};
        ASSERT_EQ(vlan_api_global_cfg_get(0, &g), 0) << key;
        EXPECT_EQ(g.value, want) << key;
    }
    ASSERT_EQ(run("show vlan glb-info"), 0) << out_;
    EXPECT_TRUE(has("voice-vlan-opri            iacl")) << out_;
    EXPECT_NE(run("vlan vacl-vt-action-mode action-pri"), 0); // not on this chip
    EXPECT_TRUE(has("vlan_api_global_cfg_set failed")) << out_;

    EXPECT_NE(run("vlan ports 4 pvid 4096"), 0);
    EXPECT_TRUE(has("vlan_api_port_control_set failed")) << out_;
    EXPECT_NE(run("vlan ports 4 outer-tpid-index 4 enable"), 0);
}


TEST_F(VlanCli, EgressTranslationsAreAddedShownAndDeleted)
{
    ASSERT_EQ(run("egress-vlan-translate add key-type port-ovid port 2 match-vlan ovid 40 action otag-action "
                  "replace new-ovid 400 new-opri 6"),
              0)
        << out_;
    vlan_egress_translate_key k{};
    k.key_type = VLAN_EVT_KEY_PORT_OVID;
    k.lport = 2;
    k.outer_vlan_id = 40;
    vlan_translate_action a{};
    ASSERT_EQ(vlan_api_egress_translate_get(0, &k, &a), 0);
    EXPECT_EQ(a.otag_action, u32{VLAN_TAG_ACT_REPLACE});
    EXPECT_EQ(a.new_outer_vlan, 400u);
    EXPECT_EQ(a.new_outer_pri, 6u);
    EXPECT_EQ(a.outer_pri_act, 2u);
    ASSERT_EQ(run("show egress-vlan-translate all"), 0) << out_;
    EXPECT_TRUE(has("port-ovid")) << out_;
    EXPECT_TRUE(has("new-ovid 400")) << out_;
    ASSERT_EQ(run("show egress-vlan-translate key-type port-ovid port 2 match-vlan ovid 40"), 0) << out_;
    EXPECT_TRUE(has("otag replace")) << out_;
    ASSERT_EQ(run("egress-vlan-translate del key-type port-ovid port 2 match-vlan ovid 40"), 0) << out_;
    EXPECT_EQ(vlan_api_egress_translate_get(0, &k, &a), -7);
    EXPECT_NE(run("egress-vlan-translate del key-type port-ovid port 2 match-vlan ovid 40"), 0);
    EXPECT_TRUE(has("vlan_api_egress_translate_delete failed")) << out_;
    EXPECT_NE(run("egress-vlan-translate del key-type vp-ovid-ivid vp 1 match-vlan ovid 40"), 0);
    EXPECT_TRUE(has("vp-ovid-ivid is not supported")) << out_;
    EXPECT_NE(run("egress-vlan-translate add key-type port-ovid port 2 match-vlan ovid 4096 action new-ovid 1"), 0);
}

// A chip whose VLAN TCAM spaces hold ranges for every kind of entry.
class VlanVaclCli : public VlanCli {
protected:
    void SetUp() override
    {
        for (const char *k : {"vacl_cnt", "mac_vlan_cnt", "subnet_vlan_cnt", "protocol_vlan_cnt", "voice_vlan_cnt"}) {
            ASSERT_EQ(shr_property_set(0, k, "4"), 0);
        }
        VlanCli::SetUp();
    }
};

TEST_F(VlanVaclCli, IngressTranslationsAreAddedShownDeletedAndCleared)
{
    ASSERT_EQ(run("ingress-vlan-translate add key-type port-ovid port 3 match-vlan ovid 20 action otag-action replace "
                  "new-ovid 300 new-opri 5"),
              0)
        << out_;
    vlan_ingress_translate_key k{};
    k.vt_key_type = VLAN_IVT_KEY_PORT_OVID;
    k.lport = 3;
    k.outer_vlan = 20;
    vlan_translate_action a{};
    ASSERT_EQ(vlan_api_ingress_translate_get(0, &k, &a), 0);
    EXPECT_EQ(a.otag_action, u32{VLAN_TAG_ACT_REPLACE});
    EXPECT_EQ(a.new_outer_vlan, 300u);
    EXPECT_EQ(a.new_outer_pri, 5u);
    EXPECT_EQ(a.outer_pri_act, 2u);
    ASSERT_EQ(run("ingress-vlan-translate add key-type ovid-ivid match-vlan ovid 7 ivid 8 action otag-action add new-ovid 9"),
              0)
        << out_;
    ASSERT_EQ(run("show ingress-vlan-translate all"), 0) << out_;
    EXPECT_TRUE(has("port-ovid")) << out_;
    EXPECT_TRUE(has("REPLACE")) << out_;
    EXPECT_TRUE(has("ovid-ivid")) << out_;
    ASSERT_EQ(run("show ingress-vlan-translate key-type port-ovid port 3 match-vlan ovid 20"), 0) << out_;
    EXPECT_TRUE(has("new-ovid 300")) << out_;
    ASSERT_EQ(run("ingress-vlan-translate del key-type port-ovid port 3 match-vlan ovid 20"), 0) << out_;
    EXPECT_EQ(vlan_api_ingress_translate_get(0, &k, &a), -7);
    EXPECT_NE(run("ingress-vlan-translate del key-type port-ovid port 3 match-vlan ovid 20"), 0);
    EXPECT_TRUE(has("vlan_api_ingress_translate_delete failed")) << out_;
    // Key types this chip lacks, and bad values, say so.
    EXPECT_EQ(run("ingress-vlan-translate add key-type otag match-vlan ovid 1 opri 2 ocfi 0 action new-ovid 3"), -24) << out_;
    EXPECT_EQ(run("ingress-vlan-translate add key-type ovid match-vlan ovid 4096 action new-ovid 3"), -4) << out_;
    ASSERT_EQ(run("vlan ingress-vlan-translate clear"), 0) << out_;
    ASSERT_EQ(run("show ingress-vlan-translate all"), 0) << out_;
    EXPECT_FALSE(has("ovid-ivid ")) << out_;

    // The translation settings of the keys.
    ASSERT_EQ(run("ingress-vlan-translate untag-key-pvid enable"), 0) << out_;
    vlan_control c{VLAN_VT_GLB_UNTAG_KEY_PVID, 0};
    ASSERT_EQ(vlan_api_translation_global_cfg_get(0, &c), 0);
    EXPECT_EQ(c.value, 1u);
    ASSERT_EQ(run("ingress-vlan-translate pri-tag-key-tag-num 1"), 0) << out_;
    EXPECT_EQ(run("ingress-vlan-translate tag-miss-drop enable"), -24) << out_;
}

TEST_F(VlanVaclCli, MacSubnetAndProtocolVlans)
{
    ASSERT_EQ(run("mac-vlan add smac 00:11:22:33:44:55 smac-mask ff:ff:ff:ff:ff:ff ovid-add 40 opri 3"), 0) << out_;
    vlan_mac_key mk{{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 0, 0, 0, 0, 0};
    vlan_translate_action a{};
    ASSERT_EQ(vlan_api_macbased_get(0, &mk, &a), 0);
    EXPECT_EQ(a.otag_action, u32{VLAN_TAG_ACT_ADD});
    EXPECT_EQ(a.new_outer_vlan, 40u);
    EXPECT_EQ(a.new_outer_pri, 3u);
    ASSERT_EQ(run("mac-vlan add voice-vlan port 4 ovid 12 dscp 46 ovid-add 41"), 0) << out_;
    ASSERT_EQ(run("show mac-vlan all"), 0) << out_;
    EXPECT_TRUE(has("00:11:22:33:44:55")) << out_;
    EXPECT_TRUE(has("voice")) << out_;
    ASSERT_EQ(run("show mac-vlan voice-vlan port 4 ovid 12"), 0) << out_;
    EXPECT_TRUE(has("new-ovid 41")) << out_;
    ASSERT_EQ(run("mac-vlan del voice-vlan port 4 ovid 12"), 0) << out_;
    EXPECT_NE(run("mac-vlan del voice-vlan port 4 ovid 12"), 0);
    ASSERT_EQ(run("mac-vlan del smac 00:11:22:33:44:55 smac-mask ff:ff:ff:ff:ff:ff"), 0) << out_;
    EXPECT_EQ(vlan_api_macbased_get(0, &mk, &a), -7);

    ASSERT_EQ(run("subnet-vlan add sip 10.1.0.0 ip-mask 255.255.0.0 ovid-add 50"), 0) << out_;
    vlan_subnet_key sk{0x0A010000, 0xFFFF0000, 0, 0};
    ASSERT_EQ(vlan_api_subnetbased_get(0, &sk, &a), 0);
    EXPECT_EQ(a.new_outer_vlan, 50u);
    ASSERT_EQ(run("show subnet-vlan index 0"), 0) << out_;
    EXPECT_TRUE(has(" 10.  1.  0.  0")) << out_;
    EXPECT_EQ(run("subnet-vlan add sipv6 2001::1 ipv6-mask ffff:: ovid-add 50"), -24) << out_;
    ASSERT_EQ(run("subnet-vlan del index 0"), 0) << out_;
    EXPECT_EQ(vlan_api_subnetbased_get(0, &sk, &a), -7);

    ASSERT_EQ(run("protocol-vlan add port 2 frame-type eth protocol-type 0x88b5 ovid-add 60"), 0) << out_;
    ASSERT_EQ(run("protocol-vlan add port 2 frame-type llc-other protocol-type 0x4242 ovid-add 61"), 0) << out_;
    vlan_protocol_key pk{2, 0, 0, VLAN_L2_PKT_ETHERNETII, 0x88B5, 0};
    ASSERT_EQ(vlan_api_protocolbased_get(0, &pk, &a), 0);
    EXPECT_EQ(a.new_outer_vlan, 60u);
    ASSERT_EQ(run("show protocol-vlan port 2 frame-type llc-other protocol-type 0x4242"), 0) << out_;
    EXPECT_TRUE(has("new-ovid 61")) << out_;
    ASSERT_EQ(run("protocol-vlan del port 2 frame-type eth protocol-type 0x88b5"), 0) << out_;
    EXPECT_EQ(vlan_api_protocolbased_get(0, &pk, &a), -7);
    ASSERT_EQ(run("vlan protocol-vlan clear"), 0) << out_;
    ASSERT_EQ(run("show protocol-vlan all"), 0) << out_;
    EXPECT_FALSE(has("0x4242")) << out_;
}

} // namespace
