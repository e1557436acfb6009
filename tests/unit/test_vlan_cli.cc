// The `vlan` mode of the shell on a chip of the model, line by line as an
// operator types it: VLANs with members, port settings, TPIDs, the global
// actions, and what the commands refuse.
#include <gtest/gtest.h>
#include <tide/cli.h>
#include <tide/property.h>
#include <tide/vlan.h>

#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"
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
    // The copy modes: opri 37.., ocfi 42.., ipri 47.., icfi 52..; priority-tagged first, then tag 3 to 0.
    ASSERT_EQ(run("vlan cp-mode 9 tag-num 1 icfi enable"), 0) << out_;
    ASSERT_EQ(run("vlan cp-mode 5 pritag-ocfi enable"), 0) << out_;
    ASSERT_EQ(run("vlan cp-mode 7 tag-num 3 opri enable"), 0) << out_;
    ASSERT_EQ(run("vlan cp-mode 7 tag-num 3 opri disable"), 0) << out_;
    for (const auto &[key, want] :
         std::initializer_list<std::pair<u32, u32>>{{55, 9}, {42, 5}, {38, 0}, {47, 0}, {56, 0}}) {
        vlan_control g{key, 99};
        ASSERT_EQ(vlan_api_global_cfg_get(0, &g), 0) << key;
        EXPECT_EQ(g.value, want) << key;
    }
    EXPECT_NE(run("vlan cp-mode 16 pritag-ipri enable"), 0);
    EXPECT_TRUE(has("vlan_api_global_cfg_set failed")) << out_;
    EXPECT_NE(run("vlan cp-mode 1 tag-num 4 ipri enable"), 0);
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

u32 _ctrl(u32 vid, u32 key)
{
    vlan_control c{key, 99};
    EXPECT_EQ(vlan_api_control_get(0, vid, &c), 0) << key;
    return c.value;
}

u32 _port_ctrl(u32 lport, u32 key)
{
    vlan_control c{key, 99};
    EXPECT_EQ(vlan_api_port_control_get(0, lport, &c), 0) << key;
    return c.value;
}

TEST_F(VlanCli, VlanEnablesCounterTypesAndTheSoftwareTable)
{
    ASSERT_EQ(run("vlan create 30-31"), 0) << out_;
    ASSERT_EQ(run("vlan 30 pa-action 2 drop enable"), 0) << out_;
    EXPECT_EQ(_ctrl(30, VLAN_CTRL_AD_ACT2_FWD_DISABLE), 1u);
    EXPECT_EQ(_ctrl(30, VLAN_CTRL_AD_ACT2_TOCPU), 0u);
    ASSERT_EQ(run("vlan 30-31 pa-action 3 copy-to-cpu enable"), 0) << out_;
    EXPECT_EQ(_ctrl(31, VLAN_CTRL_AD_ACT3_TOCPU), 1u);
    ASSERT_EQ(run("vlan 30 dai enable"), 0) << out_;
    EXPECT_EQ(_ctrl(30, VLAN_CTRL_DAI_EN), 1u);
    EXPECT_NE(run("vlan 30 pa-action 4 drop enable"), 0);
    EXPECT_TRUE(has("pa-action 4 is out of range")) << out_;
    EXPECT_EQ(run("vlan 30 trust-dot1p enable"), -24);
    EXPECT_TRUE(has("trust-dot1p is not supported")) << out_;

    ASSERT_EQ(run("vlan 30-31 counter-type ip-counter"), 0) << out_;
    EXPECT_EQ(_ctrl(31, VLAN_CTRL_CNT_TYPE), 2u);
    ASSERT_EQ(run("vlan 30 egr-counter-type l2-l3-counter"), 0) << out_;
    EXPECT_EQ(_ctrl(30, VLAN_CTRL_EGRESS_CNT_TYPE), 4u);
    // The ingress record has no type 4: refused, the row keeps its type.
    EXPECT_NE(run("vlan 30 counter-type l2-l3-counter"), 0);
    EXPECT_TRUE(has("vlan_api_control_set failed")) << out_;
    EXPECT_EQ(_ctrl(30, VLAN_CTRL_CNT_TYPE), 2u);

}

TEST_F(VlanCli, PortEnablesSelectionsAndVidRanges)
{
    ASSERT_EQ(run("vlan ports 4-5 ingress-filter enable"), 0) << out_;
    EXPECT_EQ(_port_ctrl(5, VLAN_PORT_CTRL_VLAN_CHECK), 1u);
    ASSERT_EQ(run("vlan ports 4 egr-vt-miss-drop enable"), 0) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_VTMISS_DROP), 1u);
    ASSERT_EQ(run("vlan ports 4 egr-iblk enable"), 0) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_E_I_BLK), 1u);
    ASSERT_EQ(run("vlan ports 4 pvid-add-mode untag"), 0) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_PVID_ADD_MODE), 1u);
    ASSERT_EQ(run("vlan ports 4 egr-vt-lookup second port-ovid"), 0) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_SIT2), u32{VLAN_EVT_KEY_PORT_OVID});

    // Slot 1 of the ingress ranges: max 46, min 47; a range may move past the one it replaces.
    ASSERT_EQ(run("vlan ports 4 vlan-range 1 min 100 max 200"), 0) << out_;
    ASSERT_EQ(run("vlan ports 4 vlan-range 1 min 300 max 400"), 0) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_VID_MAX0 + 3), 400u);
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_VID_MIN0 + 3), 300u);
    ASSERT_EQ(run("vlan ports 4 vlan-range 1 min 10 max 20"), 0) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_VID_MAX0 + 3), 20u);
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_VID_MIN0 + 3), 10u);
    // Refusals leave the slot as it was.
    EXPECT_NE(run("vlan ports 4 vlan-range 1 min 5 max 5000"), 0);
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_VID_MIN0 + 3), 10u);
    ASSERT_EQ(run("vlan ports 4 egr-vlan-range 0 min 10 max 20"), 0) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_E_VID_MIN0), 10u);
    EXPECT_NE(run("vlan ports 4 vlan-range 1 min 500 max 450"), 0);
    EXPECT_NE(run("vlan ports 4 vlan-range 4 min 1 max 2"), 0);
    EXPECT_TRUE(has("is invalid")) << out_;
    EXPECT_EQ(_port_ctrl(4, VLAN_PORT_CTRL_VID_MAX0 + 3), 20u);

    EXPECT_EQ(run("vlan ports 4 output-tpid-mode port"), 0) << out_;
    EXPECT_EQ(run("vlan ports 4 output-tpid-mode vlan"), -24);
    EXPECT_TRUE(has("output-tpid-mode vlan is not supported")) << out_;
    EXPECT_EQ(run("vlan egr-vt-hash-mode crc16-lower"), -24);
    EXPECT_TRUE(has("egr-vt-hash-mode is not supported")) << out_;
}

// The private VLAN, port VLAN and bypass commands reach calls that no chip
// of this build implements; their words are parsed before the call.
TEST_F(VlanCli, PrivateAndPortVlansAndBypassFramesReachTheirCalls)
{
    EXPECT_EQ(vlan_api_pvlan_enable(0, 4, 1), -24);
    vlan_dmac_check check{};
    EXPECT_EQ(vlan_api_tag_check_by_dmac_get(0, &check), -24);
    for (const auto &[line, call] : std::initializer_list<std::pair<const char *, const char *>>{
             {"private-vlan ports 4 enable", "vlan_api_pvlan_enable"},
             {"private-vlan 10 type isolate", "vlan_api_pvlan_port_set"},
             {"private-vlan 11 primary 10 ports 4 enable", "vlan_api_pvlan_port_set"},
             {"private-vlan port 4 output tag 10 priority 3", "vlan_api_pvlan_port_set"},
             {"show private-vlan vlan 10", "vlan_api_pvlan_port_get"},
             {"show private-vlan ports 4", "vlan_api_pvlan_port_get"},
             {"port-vlan add port 4 action otag-action add new-ovid 12", "vlan_api_port_default_action_add"},
             {"port-vlan del port 4", "vlan_api_port_default_action_delete"},
             {"show port-vlan port 4", "vlan_api_port_default_action_get"},
             {"show port-vlan all", "vlan_api_port_default_action_get"},
             {"vlan bypass-accept-frame add dmac 01:80:c2:00:00:00 dmac-mask ff:ff:ff:ff:ff:f0",
              "vlan_api_tag_check_by_dmac_set"},
             {"show vlan bypass-accept-frame dmac", "vlan_api_tag_check_by_dmac_get"}}) {
        EXPECT_EQ(run(line), -24) << line;
        EXPECT_TRUE(has(std::string(" call ") + call + " failed")) << line << "\n" << out_;
    }
    EXPECT_EQ(run("egress-vlan-translate add key-type vp-ovid-ivid vp 3 match-vlan ovid 10 ivid 20 action new-ovid 5"),
              -24);
    EXPECT_TRUE(has("vp-ovid-ivid is not supported")) << out_;
    EXPECT_EQ(run("egress-vlan-translate add key-type port-group-ovid-ivid port-group 1 match-vlan ovid 10 ivid 20 "
                  "action new-ovid 5"),
              -24);
    EXPECT_TRUE(has("port-group-ovid-ivid is not supported")) << out_;
    // Bad words stop before the call.
    EXPECT_EQ(run("private-vlan 11 primary x ports 4 enable"), SHR_E_PARAM);
    EXPECT_TRUE(has("parameter x is incorrect")) << out_;
    EXPECT_EQ(run("port-vlan add port 4 action new-ovid y"), SHR_E_PARAM);
    EXPECT_FALSE(has("failed")) << out_;
    EXPECT_EQ(run("private-vlan 1-x type community"), SHR_E_PARAM);
}

// The debug mode shows a VLAN's rows in software.
class VlanDebugCli : public tide::test::ModeCli {
protected:
    VlanDebugCli() : ModeCli("debug") {}
    bool has(const std::string &text) const { return out_.find(text) != std::string::npos; }
};

TEST_F(VlanDebugCli, TheSoftwareTableShowsAVlansRowAndItsCounts)
{
    ASSERT_EQ(vlan_api_create(0, 31), 0);
    vlan_control c{VLAN_CTRL_CNT_TYPE, 2};
    ASSERT_EQ(vlan_api_control_set(0, 31, &c), 0);
    // 31 differs from the default row: a row of its own, count 1.
    ASSERT_EQ(run("show vlan 31 software-table"), 0) << out_;
    u32 index = 0;
    ASSERT_EQ(dpl_reef_vlan_map_index_get(0, 31, &index), 0);
    char line[64];
    std::snprintf(line, sizeof(line), "%-6u %-6u %-6u %-6u", 31u, index, 1u, 1u);
    EXPECT_TRUE(has(line)) << out_;
    EXPECT_NE(run("show vlan 40 software-table"), 0);
    EXPECT_TRUE(has("software_info_get failed")) << out_;
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
