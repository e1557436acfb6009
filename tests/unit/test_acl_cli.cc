// The `acl` mode of the shell on a chip of the model, line by line as an
// operator types it: a group, an entry with a MAC match and a drop action,
// installed, found by the model's search, shown and destroyed.
#include <gtest/gtest.h>
#include <tide/acl.h>
#include <tide/cli.h>
#include <tide/sim.h>

#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "support/acl_fixture.h"
#include "support/cli_lines.h"

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
}

} // namespace
