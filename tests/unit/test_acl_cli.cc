// The `acl` mode of the shell on a chip of the model, line by line as an
// operator types it: a group, an entry with a MAC match and a drop action,
// installed, found by the model's search, shown and destroyed.
#include <gtest/gtest.h>
#include <tide/acl.h>
#include <tide/cli.h>
#include <tide/sim.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "dpl/reef/acl/dpl_reef_acl.h"
#include "support/acl_fixture.h"
#include "support/acl_frames.h"
#include "support/cli_lines.h"
#include "support/vlan_ports.h"

namespace {

using tide::test::AclChip;

class AclCli : public AclChip, public tide::test::CliLines {
protected:
    void SetUp() override
    {
        AclChip::SetUp();
        cli_shell_mode_set(0, 1); // ports by their logical numbers
        ASSERT_EQ(run("acl"), 0) << out_;
    }
    void TearDown() override
    {
        cli_shell_mode_set(0, 0);
        cli_ctree_free();
        AclChip::TearDown();
    }

    // The model's search for the fixture's key of `smac_low` over every
    // block: whether a row matches, and which.
    struct Hit {
        bool hit;
        uint32_t block;
        uint32_t index;
    };
    Hit search(uint32_t smac_low)
    {
        uint32_t key[10];
        tide::test::l2_search_key(smac_low, key);
        Hit h{false, 0, 0};
        h.hit = tide_sim_tcam_search(0, key, tide::test::kL2KeyBits, 0xFFFFu, &h.block, &h.index) == 0;
        return h;
    }
};

TEST_F(AclCli, AnOperatorMakesAGroupAnEntryInstallsShowsAndDestroys)
{
    ASSERT_EQ(run("acl group 7 create type icap width-mode single alloc-mode size 128 priority 3 name macs"), 0)
        << out_;
    ASSERT_EQ(run("acl entry 100 create group 7 pri 50"), 0) << out_;
    ASSERT_EQ(run("acl entry 100 template icap-width-single-l2"), 0) << out_;
    ASSERT_EQ(run("acl entry 100 match add smac-31-0 0x22334455"), 0) << out_;
    ASSERT_EQ(run("acl entry 100 action add drop"), 0) << out_;
    EXPECT_FALSE(search(0x22334455).hit);
    ASSERT_EQ(run("acl entry 100 install"), 0) << out_;
    EXPECT_TRUE(search(0x22334455).hit);
    EXPECT_FALSE(search(0x22334456).hit);

    ASSERT_EQ(run("show acl entry 100"), 0) << out_;
    EXPECT_TRUE(said("installed")) << out_;
    EXPECT_TRUE(said("icap-width-single-l2")) << out_;
    EXPECT_TRUE(said("smac-31-0")) << out_;
    EXPECT_TRUE(said("0x22334455")) << out_;
    EXPECT_TRUE(said("mask 0xffffffff")) << out_;
    EXPECT_TRUE(said("action drop")) << out_;
    ASSERT_EQ(run("show acl group 7 detail"), 0) << out_;
    EXPECT_TRUE(said("macs")) << out_;
    EXPECT_TRUE(said("installed   : 1")) << out_;
    ASSERT_EQ(run("show acl entry all"), 0) << out_;
    EXPECT_TRUE(said("100")) << out_;

    // An installed entry is not edited in place.
    EXPECT_EQ(run("acl entry 100 action add not-drop"), SHR_E_FAIL) << out_;
    ASSERT_EQ(run("acl group 7 destroy"), 0) << out_;
    EXPECT_FALSE(search(0x22334455).hit);
    acl_entry_info gone{};
    EXPECT_EQ(acl_api_entry_get(0, 100, &gone), SHR_E_NOT_FOUND);
    EXPECT_NE(run("show acl group 7"), 0);
}

TEST_F(AclCli, PriorityOrderAndUninstallFromTheShell)
{
    ASSERT_EQ(run("acl group 1 create type icap width-mode single"), 0) << out_;
    for (const char *id : {"1", "2"}) {
        const std::string e = std::string("acl entry ") + id;
        ASSERT_EQ(run(e + " create group 1 pri " + (id[0] == '1' ? "10" : "20")), 0) << out_;
        ASSERT_EQ(run(e + " template icap-width-single-l2"), 0) << out_;
        ASSERT_EQ(run(e + " match add smac-31-0 0x10 0xf0"), 0) << out_;
        ASSERT_EQ(run(e + " action add " + (id[0] == '1' ? "drop" : "not-drop")), 0) << out_;
        ASSERT_EQ(run(e + " install"), 0) << out_;
    }
    // Both match; the lower priority value sits at the lower row and wins.
    acl_entry_info one{}, two{};
    ASSERT_EQ(acl_api_entry_get(0, 1, &one), 0);
    EXPECT_EQ(search(0x10).index, one.index_in_block);
    ASSERT_EQ(run("acl entry 1 pri 30"), 0) << out_;
    ASSERT_EQ(acl_api_entry_get(0, 1, &one), 0);
    ASSERT_EQ(acl_api_entry_get(0, 2, &two), 0);
    EXPECT_LT(two.logical_index, one.logical_index);
    const Hit h = search(0x10);
    ASSERT_TRUE(h.hit);
    EXPECT_EQ(h.block, two.block);
    EXPECT_EQ(h.index, two.index_in_block);

    ASSERT_EQ(run("acl entry 1 uninstall"), 0) << out_;
    EXPECT_EQ(run("acl entry 1 uninstall"), SHR_E_FAIL) << out_;
    ASSERT_EQ(run("acl entry 1 destroy"), 0) << out_;
    ASSERT_EQ(run("acl group 1 destroy"), 0) << out_;
}

TEST_F(AclCli, BadWordsAreRefusedAndNothingIsMade)
{
    EXPECT_NE(run("acl entry 5 create group 99 pri 1"), 0);
    EXPECT_TRUE(said("acl_api_entry_create")) << out_;
    ASSERT_EQ(run("acl group 2 create type icap width-mode single"), 0) << out_;
    ASSERT_EQ(run("acl entry 5 create group 2 pri 1"), 0) << out_;
    EXPECT_NE(run("acl entry 5 match add smac-31-0 zz"), 0);
    EXPECT_TRUE(said("parameter zz is incorrect")) << out_;
    EXPECT_NE(run("acl entry 6 install"), 0);
    acl_entry_info i{};
    ASSERT_EQ(acl_api_entry_get(0, 5, &i), 0);
    EXPECT_EQ(i.match_count, 0u);
    EXPECT_EQ(i.state & ACL_ENTRY_INSTALLED, 0u);
    // A group that is there already keeps what it had.
    EXPECT_NE(run("acl group 2 create type ecap width-mode single"), 0);
    acl_group_info g{};
    ASSERT_EQ(acl_api_group_get(0, 2, &g), 0);
    EXPECT_EQ(g.type, static_cast<uint32_t>(ACL_GROUP_ICAP));
}

TEST_F(AclCli, PortControlsAndLookupsShowBack)
{
    ASSERT_EQ(run("acl port 3 cfg icap enable ing-classid 9"), 0) << out_;
    ASSERT_EQ(run("show acl port 3 cfg"), 0) << out_;
    EXPECT_TRUE(said("enable")) << out_;
    EXPECT_TRUE(said(" 9 ")) << out_;
    acl_control c{ACL_PORT_ING_CLASSID, 0};
    ASSERT_EQ(acl_api_port_control_get(0, 3, &c), 0);
    EXPECT_EQ(c.value, 9u);

    ASSERT_EQ(run("acl template icap based port 3 pri 2 type width-single-l2"), 0) << out_;
    ASSERT_EQ(run("show acl template icap port 3"), 0) << out_;
    EXPECT_TRUE(said("width-single-l2")) << out_;
    EXPECT_TRUE(said("pri 2")) << out_;

    // A VLAN's lookup and source guards, kept in the VLAN's record.
    ASSERT_EQ(tide::test::vlan_ports(0, 9, 0x3, 0), 0);
    ASSERT_EQ(run("acl template icap based vlan 9 pri 4 type ipv4"), 0) << out_;
    ASSERT_EQ(run("show acl template icap vlan 9"), 0) << out_;
    EXPECT_TRUE(said("ipv4")) << out_;
    EXPECT_TRUE(said("pri 4")) << out_;
    EXPECT_NE(run("acl template icap based vlan 9 pri 4 type arp"), 0); // the VLAN row's type has one bit
    ASSERT_EQ(run("acl vlan 9 cfg ipsg-v6 enable"), 0) << out_;
    ASSERT_EQ(run("show acl vlan all cfg"), 0) << out_;
    EXPECT_TRUE(said("vlan 9 ipsg-v6 : enable")) << out_;
    EXPECT_TRUE(said("vlan 9 ipsg-v4 : disable")) << out_;
    EXPECT_FALSE(said("vlan 8 ")) << out_;
    EXPECT_NE(run("acl vlan 9 cfg mff enable"), 0);
}

// Every kind of group of the chip, from the shell: each of its templates
// takes each of its items, and its entries each action of its set, by the
// words of the name tables.  The actions of the counter, policer and mirror
// services are refused with a line until those services exist.
TEST_F(AclCli, EveryItemOfEveryTemplateAndEveryActionOfEverySetIsTakenByItsWord)
{
    const char *kinds[][2] = {{"icap", "single"}, {"icap", "double"}, {"ipsg", "double"}, {"ecap", "double"},
                              {"cpucap", "double"}, {"vcap", "single"}, {"vcap", "double"}, {"mcap", "double"}};
    const uint32_t bound[] = {0 /* mirror */, 49 /* cnt */, 50 /* policer */};
    uint32_t templates = 0, items = 0, actions = 0, entry = 1000;
    for (uint32_t k = 0; k < std::size(kinds); k++) {
        SCOPED_TRACE(std::string(kinds[k][0]) + " " + kinds[k][1]);
        const std::string g = std::to_string(k + 1);
        ASSERT_EQ(run("acl group " + g + " create type " + kinds[k][0] + " width-mode " + kinds[k][1]), 0) << out_;
        acl_group_info gi{};
        ASSERT_EQ(acl_api_group_get(0, k + 1, &gi), 0);
        ASSERT_NE(gi.match_support, 0u);
        for (uint32_t t = 0; t < ACL_TEMPLATE_NONE; t++) {
            if ((gi.match_support >> t & 1) == 0) {
                continue;
            }
            templates |= 1u << t;
            const std::string e = "acl entry " + std::to_string(++entry);
            ASSERT_EQ(run(e + " create group " + g + " pri 1"), 0) << out_;
            ASSERT_EQ(run(e + " template " + g_template_type_id_name[t]), 0) << out_;
            uint32_t bitmap[8] = {};
            ASSERT_EQ(acl_api_match_support_get(0, t, bitmap), 0);
            for (uint32_t m = 0; m < ACL_MATCH_NULL; m++) {
                if (dpl_acl_bit_get(bitmap, m)) {
                    const std::string word = g_entry_match_id_name[m];
                    EXPECT_EQ(run(e + " match add " + word + " 1"), 0) << g_template_type_id_name[t] << ": " << out_;
                    EXPECT_EQ(run(e + " match del " + word), 0) << g_template_type_id_name[t] << ": " << out_;
                    items++;
                }
            }
        }
        // The group's actions on its last entry.
        const std::string e = "acl entry " + std::to_string(entry);
        for (uint32_t a = 0; a < ACL_ACTION_NULL; a++) {
            if (!dpl_acl_bit_get(gi.action_support, a)) {
                continue;
            }
            const std::string word = g_entry_action_id_name[a];
            actions++;
            if (std::find(std::begin(bound), std::end(bound), a) != std::end(bound)) {
                EXPECT_NE(run(e + " action add " + word + " 1 1"), 0) << word;
                continue;
            }
            EXPECT_EQ(run(e + " action add " + word + " 1 1"), 0) << word << ": " << out_;
            EXPECT_EQ(run(e + " action del " + word), 0) << word << ": " << out_;
        }
        ASSERT_EQ(run("acl group " + g + " destroy"), 0) << out_;
    }
    EXPECT_EQ(__builtin_popcount(templates), 22);
    RecordProperty("items", std::to_string(items));
    RecordProperty("actions", std::to_string(actions));
}

// A rule typed at the shell filters traffic: addresses in dotted form, the
// lookup and the port's ACL switched on from the same mode.
TEST_F(AclCli, ARuleTypedAtTheShellDropsItsFlowAndNoOther)
{
    using namespace tide::test;
    ASSERT_EQ(vlan_ports(0, 1, kFrontPorts, kFrontPorts), 0);
    l2_static(kHostB, 1, 2);
    ASSERT_EQ(run("acl group 3 create type icap width-mode double"), 0) << out_;
    ASSERT_EQ(run("acl entry 30 create group 3 pri 5"), 0) << out_;
    ASSERT_EQ(run("acl entry 30 template icap-ipv4"), 0) << out_;
    ASSERT_EQ(run("acl entry 30 match add sip 10.1.2.0 255.255.255.0"), 0) << out_;
    ASSERT_EQ(run("acl entry 30 match add reuse-l4dport-arpopcode 23"), 0) << out_;
    ASSERT_EQ(run("acl entry 30 action add drop"), 0) << out_;
    ASSERT_EQ(run("acl entry 30 install"), 0) << out_;
    ASSERT_EQ(run("acl template icap based glb pri 1 type ipv4"), 0) << out_;
    ASSERT_EQ(run("acl port 1 cfg icap enable"), 0) << out_;
    acl_entry_info i{};
    ASSERT_EQ(acl_api_entry_get(0, 30, &i), 0);
    ASSERT_EQ(i.match_count, 2u);
    const acl_item *sip = i.match[0].id == kMatchSip ? &i.match[0] : &i.match[1];
    EXPECT_EQ(sip->value, 0x0A010200u);
    EXPECT_EQ(sip->mask, 0xFFFFFF00u);

    Traffic t(0);
    EXPECT_TRUE(t.send(1, ipv4_frame(kHostB, kHostA, 0x0A010207, 0x0A000002, 6, 4000, 23)).dropped);
    EXPECT_EQ(t.send(1, ipv4_frame(kHostB, kHostA, 0x0A010307, 0x0A000002, 6, 4000, 23)).ports, 1u << 2);
    EXPECT_EQ(t.send(1, ipv4_frame(kHostB, kHostA, 0x0A010207, 0x0A000002, 6, 4000, 22)).ports, 1u << 2);
    EXPECT_NE(run("acl entry 31 match add sip 10.1.2.300"), 0);
    EXPECT_TRUE(said("ipv4 address is wrong")) << out_;
}

} // namespace
