// The ACL core through acl_api_* on the chip model: groups and entries,
// the edit rules, install and uninstall with the key and action the
// template builds, the table that grows and gives its blocks back, and
// bad input refused without a trace in software or hardware.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "atolreef_cib.h"
#include "dpl/reef/acl/dpl_reef_acl.h"
#include "support/acl_fixture.h"

using tide::test::AclChip;
using tide::test::Capture;
using namespace tide::test;

namespace {

class Acl : public AclChip {
protected:
    Acl() : AclChip(false) {}

    // Every row of every block: valid rows and their content.
    std::vector<std::vector<uint32_t>> snapshot()
    {
        std::vector<std::vector<uint32_t>> rows;
        for (uint32_t b = 0; b < kBlocks; b++) {
            for (uint32_t i = 0; i < kRowsPerBlock; i++) {
                tide_sim_tcam_row r{};
                EXPECT_EQ(tide_sim_tcam_row_get(0, b, i, &r), 0);
                std::vector<uint32_t> v(r.data, r.data + 10);
                v.insert(v.end(), r.care, r.care + 10);
                v.insert(v.end(), r.action, r.action + 3);
                v.push_back(r.valid);
                rows.push_back(v);
            }
        }
        return rows;
    }
};

class AclAuto : public AclChip {
protected:
    AclAuto() : AclChip(true) {}
};

TEST_F(Acl, TheFixturesWordsAreTheNameTablesRows)
{
    EXPECT_EQ(dpl_reef_acl_name_find(g_entry_match_id_name, ACL_MATCH_ID_COUNT, "smac-31-0"), kMatchSmacLow);
    EXPECT_EQ(dpl_reef_acl_name_find(g_entry_match_id_name, ACL_MATCH_ID_COUNT, "src-tgid"), kMatchSrcTgid);
    EXPECT_EQ(dpl_reef_acl_name_find(g_entry_action_id_name, ACL_ACTION_ID_COUNT, "drop"), kActionDrop);
    EXPECT_EQ(dpl_reef_acl_name_find(g_entry_action_id_name, ACL_ACTION_ID_COUNT, "redirect-port"),
              kActionRedirectPort);
    EXPECT_STREQ(g_entry_match_id_name[ACL_MATCH_NULL], "null");
    EXPECT_STREQ(g_entry_match_id_name[222], "meta-arl-ovlan");
    EXPECT_STREQ(g_entry_action_id_name[ACL_ACTION_NULL], "null");
    EXPECT_STREQ(g_entry_action_id_name[151], "permit-forward");
    EXPECT_STREQ(g_template_type_id_name[kL2Template], "icap-width-single-l2");
}

// ---- groups -------------------------------------------------------------------------------

TEST_F(Acl, GroupIdsAreTakenUpwardFromTheAutomaticBaseOrGiven)
{
    uint32_t a = 0, b = 0, c = 0xFF000001u;
    ASSERT_EQ(acl_api_group_create(0, ACL_GROUP_FLAG_WITH_ID, &c), 0);
    ASSERT_EQ(acl_api_group_create(0, 0, &a), 0);
    ASSERT_EQ(acl_api_group_create(0, 0, &b), 0);
    EXPECT_EQ(a, 0xFF000000u);
    EXPECT_EQ(b, 0xFF000002u); // 0xFF000001 is taken
    uint32_t again = c;
    EXPECT_EQ(acl_api_group_create(0, ACL_GROUP_FLAG_WITH_ID, &again), SHR_E_EXISTS);
    std::vector<uint32_t> seen;
    ASSERT_EQ(acl_api_group_traverse(
                  0,
                  [](uint32_t, uint32_t id, const acl_group_info *i, void *u) {
                      static_cast<std::vector<uint32_t> *>(u)->push_back(id);
                      return i->type == 0xFFFFFFFFu ? 0 : -1;
                  },
                  &seen),
              0);
    EXPECT_EQ(seen, (std::vector<uint32_t>{a, c, b}));
    EXPECT_EQ(acl_api_group_destroy(0, c), 0);
    EXPECT_EQ(acl_api_group_destroy(0, c), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("group not found, group_id 4278190081"));
}

TEST_F(Acl, GroupSetChecksItsRecordBeforeAnythingChanges)
{
    const uint32_t id = group();
    const acl_group_info before = group_info(id);
    struct Case {
        uint32_t flags, type, mode, entry_num, block_num, block;
        const char *line;
    };
    const Case cases[] = {
        {0, ACL_GROUP_ICAP, ACL_MODE_SINGLE, 100, 0, 0, "group entry num error 100, cannot be zero"},
        {0, ACL_GROUP_ICAP, ACL_MODE_SINGLE, 0, 0, 0, "group entry num error 0"},
        {ACL_GROUP_FLAG_BLOCKS, ACL_GROUP_ICAP, ACL_MODE_SINGLE, 0, 33, 0, "group block_num is out of range"},
        {ACL_GROUP_FLAG_BLOCKS, ACL_GROUP_ICAP, ACL_MODE_SINGLE, 0, 1, 32, "group block id is out of range"},
        {ACL_GROUP_FLAG_AUTO, ACL_GROUP_ICAP, ACL_MODE_SINGLE, 128, 0, 0, "group tcam resource alloc is manual mode"},
        {0, 7, ACL_MODE_SINGLE, 128, 0, 0, "group type not support, type 7"},
        {0, ACL_GROUP_ECAP, ACL_MODE_SINGLE, 128, 0, 0, "not support group type 2 mode 0"},
        {0, ACL_GROUP_MFF, ACL_MODE_SINGLE, 128, 0, 0, "not support group type 5 mode 0"},
    };
    for (const Case &c : cases) {
        Capture::clear();
        acl_group_para p{};
        p.flags = c.flags;
        p.type = c.type;
        p.mode = c.mode;
        p.entry_num = c.entry_num;
        p.block_num = c.block_num;
        p.block_ids[5] = c.block;
        EXPECT_EQ(acl_api_group_set(0, id, &p), SHR_E_PARAM) << c.line;
        EXPECT_TRUE(Capture::has(c.line)) << c.line;
    }
    acl_group_para ok{};
    ok.type = ACL_GROUP_ICAP;
    ok.entry_num = 128;
    EXPECT_EQ(acl_api_group_set(0, 0x1234, &ok), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("group not exist, group_id 4660"));
    EXPECT_EQ(acl_api_group_set(0, id, nullptr), SHR_E_NULL_PTR);
    EXPECT_TRUE(Capture::has("group_para ptr is null"));
    const acl_group_info after = group_info(id);
    EXPECT_EQ(memcmp(&before, &after, sizeof(before)), 0);
}

TEST_F(AclAuto, AutomaticModeRefusesGivenBlocksAndSizes)
{
    uint32_t id = 0;
    ASSERT_EQ(acl_api_group_create(0, 0, &id), 0);
    acl_group_para p{};
    p.type = ACL_GROUP_ICAP;
    p.entry_num = 128;
    for (uint32_t flags : {ACL_GROUP_FLAG_SIZE, ACL_GROUP_FLAG_BLOCKS}) {
        Capture::clear();
        p.flags = flags;
        EXPECT_EQ(acl_api_group_set(0, id, &p), SHR_E_PARAM);
        EXPECT_TRUE(Capture::has("group tcam resource alloc is auto mode"));
    }
}

TEST_F(Acl, AKindTakesItsBuiltTemplatesAndItsActionSet)
{
    const acl_group_info g = group_info(group());
    EXPECT_EQ(g.match_support, 1u << kL2Template | 1u << 30);
    EXPECT_EQ(g.type, ACL_GROUP_ICAP);
    EXPECT_EQ(g.mode, ACL_MODE_SINGLE);
    uint32_t actions[5] = {};
    ASSERT_EQ(acl_api_action_support_get(0, ACL_GROUP_ICAP, ACL_MODE_SINGLE, actions), 0);
    EXPECT_EQ(memcmp(actions, g.action_support, sizeof(actions)), 0);
    uint32_t count = 0;
    for (uint32_t w : actions) {
        count += static_cast<uint32_t>(__builtin_popcount(w));
    }
    EXPECT_EQ(count, 22u);
    EXPECT_EQ(acl_api_action_support_get(0, ACL_GROUP_MFF, ACL_MODE_SINGLE, actions), SHR_E_PARAM);
    uint32_t items[8] = {};
    ASSERT_EQ(acl_api_match_support_get(0, kL2Template, items), 0);
    EXPECT_EQ((items[0] >> kMatchSmacLow) & 1, 1u);
    EXPECT_EQ((items[0] >> kMatchSrcTgid) & 1, 1u);
    EXPECT_EQ(acl_api_match_support_get(0, 3, items), SHR_E_NOT_SUPPORT); // no 320-bit IPv6-MAC key here
    EXPECT_EQ(acl_api_match_support_get(0, 32, items), SHR_E_PARAM);
}

// ---- entries ----------------------------------------------------------------------------------

TEST_F(Acl, EntryCreationNeedsAGroupAFreeIdAndAPriorityInRange)
{
    const uint32_t g = group();
    uint32_t id = 7;
    ASSERT_EQ(acl_api_entry_create(0, ACL_ENTRY_FLAG_WITH_ID, 3, g, &id), 0);
    EXPECT_EQ(acl_api_entry_create(0, ACL_ENTRY_FLAG_WITH_ID, 3, g, &id), SHR_E_EXISTS);
    EXPECT_TRUE(Capture::has("entry exists, group_id"));
    EXPECT_EQ(acl_api_entry_create(0, 0, 3, 0x99, &id), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("group not found, group_id 153 entry_id"));
    EXPECT_EQ(acl_api_entry_create(0, 0, 0xFFFFFFFFu, g, &id), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("priority 4294967295 is out of range"));
    EXPECT_EQ(acl_api_entry_create(0, 2, 3, g, &id), SHR_E_PARAM);
    EXPECT_EQ(acl_api_entry_create(0, 0, 3, g, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(group_info(g).entry_count, 1u);
    const acl_entry_info i = info(7);
    EXPECT_EQ(i.template_id, ACL_TEMPLATE_NONE);
    EXPECT_EQ(i.based_mode, ACL_BASED_DEFAULT);
    EXPECT_EQ(i.priority, 3u);
}

TEST_F(Acl, ItemsNeedATemplateThatTakesThemAndMustNotExcludeEachOther)
{
    const uint32_t g = group();
    uint32_t id = 0;
    ASSERT_EQ(acl_api_entry_create(0, 0, 1, g, &id), 0);
    acl_item port{kMatchSrcPort, 3, 0x1F};
    EXPECT_EQ(acl_api_entry_match_field_set(0, id, &port), SHR_E_CONFIG);
    EXPECT_TRUE(Capture::has("template not set, entry_id"));
    EXPECT_EQ(acl_api_entry_template_set(0, id, 0), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("template not support, template_id 0"));
    EXPECT_EQ(acl_api_entry_template_set(0, id, 33), SHR_E_PARAM);
    ASSERT_EQ(acl_api_entry_template_set(0, id, kL2Template), 0);
    ASSERT_EQ(acl_api_entry_match_field_set(0, id, &port), 0);
    port.value = 4; // a repeated item takes the new value
    ASSERT_EQ(acl_api_entry_match_field_set(0, id, &port), 0);
    acl_item tgid{kMatchSrcTgid, 1, 0x1F};
    Capture::clear();
    EXPECT_EQ(acl_api_entry_match_field_set(0, id, &tgid), SHR_E_CONFIG);
    EXPECT_TRUE(Capture::has("common match item conflict, maybe in [port trunk-id svp stack-port]"));
    acl_item sip{61, 1, 1}; // "sip": not an item of this template
    EXPECT_EQ(acl_api_entry_match_field_set(0, id, &sip), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("item not support, type 61"));
    acl_item beyond{ACL_MATCH_NULL, 0, 0};
    EXPECT_EQ(acl_api_entry_match_field_set(0, id, &beyond), SHR_E_PARAM);
    EXPECT_EQ(acl_api_entry_match_field_remove(0, id, &tgid), SHR_E_NOT_FOUND);
    const acl_entry_info i = info(id);
    ASSERT_EQ(i.match_count, 1u);
    EXPECT_EQ(i.match[0].id, kMatchSrcPort);
    EXPECT_EQ(i.match[0].value, 4u);
    ASSERT_EQ(acl_api_entry_match_field_remove(0, id, &port), 0);
    EXPECT_EQ(acl_api_entry_match_field_set(0, id, &tgid), 0);
    // And the other way round: a port after a trunk.
    EXPECT_EQ(acl_api_entry_match_field_set(0, id, &port), SHR_E_CONFIG);
    EXPECT_EQ(info(id).match[0].id, kMatchSrcTgid);
}

TEST_F(Acl, ActionsAreTakenOnceFromTheGroupsSetWithoutConflicts)
{
    const uint32_t g = group();
    uint32_t id = 0;
    ASSERT_EQ(acl_api_entry_create(0, 0, 1, g, &id), 0);
    acl_item drop{kActionDrop, 0, 0};
    ASSERT_EQ(acl_api_entry_action_set(0, id, &drop), 0);
    acl_item second{kActionDrop, 5, 5};
    EXPECT_EQ(acl_api_entry_action_set(0, id, &second), SHR_E_EXISTS);
    EXPECT_EQ(info(id).action[0].value, 0u); // the first stays
    acl_item redirect{kActionRedirectPort, 0, 3};
    EXPECT_EQ(acl_api_entry_action_set(0, id, &redirect), SHR_E_CONFIG);
    EXPECT_TRUE(Capture::has("iacl action conflict, maybe in [cause-id drop copy-to-cpu"));
    acl_item pop{120, 0, 0}; // "ovid-add": not an ingress action
    EXPECT_EQ(acl_api_entry_action_set(0, id, &pop), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("action not support, action 120"));
    // The counter, policer and mirror services bind their actions.
    for (uint32_t a : {49u, 50u, 0u}) {
        acl_item bound{a, 1, 1};
        EXPECT_EQ(acl_api_entry_action_set(0, id, &bound), SHR_E_NOT_SUPPORT) << a;
    }
    acl_item sflow{2, 1, 0};
    ASSERT_EQ(acl_api_entry_action_set(0, id, &sflow), 0);
    acl_item mirror{0, 1, 1};
    EXPECT_EQ(acl_api_entry_action_set(0, id, &mirror), SHR_E_INTERNAL);
    EXPECT_TRUE(Capture::has("sflow action exist, need to remove sflow first"));
    EXPECT_EQ(info(id).action_count, 2u);
    ASSERT_EQ(acl_api_entry_action_remove(0, id, &drop), 0);
    EXPECT_EQ(acl_api_entry_action_set(0, id, &redirect), 0);
}

TEST_F(Acl, AChangeOfTemplateDropsTheItemsAndTheBaseIsForIngressKindsOnly)
{
    const uint32_t g = group();
    const uint32_t id = entry(g, 1, 0x11);
    ASSERT_EQ(info(id).match_count, 1u);
    ASSERT_EQ(acl_api_entry_template_set(0, id, kL2Template), 0); // the same: kept
    EXPECT_EQ(info(id).match_count, 1u);
    EXPECT_EQ(acl_api_entry_based_set(0, id, 4), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("based_mode[4] is not support"));
    EXPECT_EQ(acl_api_entry_based_set(0, id, ACL_BASED_PORT), 0);
    uint32_t mode = 0;
    EXPECT_EQ(acl_api_entry_based_get(0, id, &mode), 0);
    EXPECT_EQ(mode, ACL_BASED_PORT);
    EXPECT_NE(info(id).state & ACL_ENTRY_DIRTY, 0u);
}

TEST_F(Acl, AnInstalledEntryCannotBeEditedAndAnUninstalledOneCannotBeUninstalled)
{
    const uint32_t g = group();
    const uint32_t id = entry(g, 1, 0x11);
    EXPECT_EQ(acl_api_entry_uninstall(0, id), SHR_E_FAIL);
    ASSERT_EQ(acl_api_entry_install(0, id), 0);
    EXPECT_EQ(acl_api_entry_install(0, id), 0); // already: nothing to do
    const auto rows = snapshot();
    acl_item m{kMatchEthtype, 0x800, 0xFFFF};
    acl_item a{kActionRedirectPort, 0, 3};
    const int32_t edits[] = {
        acl_api_entry_template_set(0, id, kL2Template), acl_api_entry_based_set(0, id, 1),
        acl_api_entry_match_field_set(0, id, &m),        acl_api_entry_match_field_remove(0, id, &m),
        acl_api_entry_action_set(0, id, &a),            acl_api_entry_action_remove(0, id, &a),
    };
    for (int32_t rc : edits) {
        EXPECT_EQ(rc, SHR_E_FAIL);
    }
    EXPECT_TRUE(Capture::has("entry was installed, edit must in uninstalled state"));
    EXPECT_EQ(snapshot(), rows);
    EXPECT_EQ(info(id).state, ACL_ENTRY_INSTALLED);
    ASSERT_EQ(acl_api_entry_uninstall(0, id), 0);
    EXPECT_EQ(acl_api_entry_uninstall(0, id), SHR_E_FAIL);
    EXPECT_TRUE(Capture::has("entry was not installed"));
}

TEST_F(Acl, UnknownIdsAndNullRecordsAreRefusedWithoutChange)
{
    const uint32_t g = group();
    const uint32_t id = entry(g, 1, 0x11);
    ASSERT_EQ(acl_api_entry_install(0, id), 0);
    const auto rows = snapshot();
    const acl_entry_info before = info(id);
    acl_item m{kMatchEthtype, 1, 1};
    acl_entry_info out{};
    uint32_t v = 0;
    EXPECT_EQ(acl_api_entry_install(0, 0x5151), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_uninstall(0, 0x5151), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_destroy(0, 0x5151), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_pri_set(0, 0x5151, 1), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_get(0, 0x5151, &out), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_match_field_set(0, 0x5151, &m), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_template_get(0, 0x5151, &v), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("entry not found, entry_id 20817"));
    EXPECT_EQ(acl_api_group_install(0, 0x5151), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_group_uninstall(0, 0x5151), SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_pri_set(0, id, 0xFFFFFFFFu), SHR_E_PARAM);
    EXPECT_EQ(acl_api_entry_get(0, id, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(acl_api_entry_match_field_set(0, id, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(acl_api_entry_action_set(0, id, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(acl_api_group_get(0, g, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(acl_api_entry_traverse(0, nullptr, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(acl_api_group_traverse(0, nullptr, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(acl_api_entry_traverse_in_group(0, 0x5151, [](uint32_t, uint32_t, const acl_entry_info *, void *) { return 0; },
                                              nullptr),
              SHR_E_NOT_FOUND);
    EXPECT_EQ(acl_api_entry_create(5, 0, 1, g, &v), SHR_E_UNIT);
    EXPECT_EQ(snapshot(), rows);
    const acl_entry_info after = info(id);
    EXPECT_EQ(memcmp(&before, &after, sizeof(before)), 0);
}

// ---- the hardware -----------------------------------------------------------------------------

TEST_F(Acl, AnEntryWithoutItemsMatchesOnItsTagsOnlyAndItsBaseSetsTheTag)
{
    const uint32_t g = group();
    uint32_t id = 0;
    ASSERT_EQ(acl_api_entry_create(0, 0, 1, g, &id), 0);
    EXPECT_EQ(acl_api_entry_install(0, id), SHR_E_CONFIG);
    EXPECT_TRUE(Capture::has("template not set, entry_id"));
    ASSERT_EQ(acl_api_entry_template_set(0, id, kL2Template), 0);
    ASSERT_EQ(acl_api_entry_install(0, id), 0);
    acl_entry_info i = info(id);
    RowKey k = row_key(0, i.block, i.index_in_block);
    EXPECT_TRUE(k.valid);
    EXPECT_EQ(bits_get(k.key, 156, 4), 11u); // the default base
    EXPECT_EQ(bits_get(k.mask, 156, 4), 15u);
    EXPECT_EQ(bits_get(k.key, 152, 4), 7u);
    EXPECT_EQ(bits_get(k.mask, 152, 4), 15u);
    for (uint32_t w = 0; w < 5; w++) {
        EXPECT_EQ(k.mask[w] & (w == 4 ? 0x00FFFFFFu : 0xFFFFFFFFu), 0u) << w;
    }
    ASSERT_EQ(acl_api_entry_uninstall(0, id), 0);
    ASSERT_EQ(acl_api_entry_based_set(0, id, ACL_BASED_PORT), 0);
    ASSERT_EQ(acl_api_entry_install(0, id), 0);
    i = info(id);
    EXPECT_EQ(bits_get(row_key(0, i.block, i.index_in_block).key, 156, 4), 4u);
}

TEST_F(Acl, ItemsAndActionsLandInTheirFieldsCutToTheirWidths)
{
    const uint32_t g = group();
    uint32_t id = 0;
    ASSERT_EQ(acl_api_entry_create(0, 0, 1, g, &id), 0);
    ASSERT_EQ(acl_api_entry_template_set(0, id, kL2Template), 0);
    const acl_item items[] = {
        {kMatchEthtype, 0x86DD, 0xFFFF}, {4, 0xF, 0xF},             // opri: cut to 3 bits
        {18, 0x1234, 0xFFFF},            {kMatchSmacLow, 0x89ABCDEF, 0xFFFFFF00},
        {kMatchSrcTgid, 0x25, 0x1F},
    };
    for (acl_item it : items) {
        ASSERT_EQ(acl_api_entry_match_field_set(0, id, &it), 0) << it.id;
    }
    acl_item redirect{kActionRedirectPort, 9, 0x27}; // second value cut to 5 bits
    ASSERT_EQ(acl_api_entry_action_set(0, id, &redirect), 0);
    ASSERT_EQ(acl_api_entry_install(0, id), 0);
    const acl_entry_info i = info(id);
    const RowKey k = row_key(0, i.block, i.index_in_block);
    EXPECT_EQ(bits_get(k.key, 136, 16), 0x86DDu);
    EXPECT_EQ(bits_get(k.key, 133, 3), 7u);
    EXPECT_EQ(bits_get(k.mask, 133, 3), 7u);
    EXPECT_EQ(bits_get(k.key, 72 + 32, 16), 0x1234u); // dmac 47..32
    EXPECT_EQ(bits_get(k.mask, 72, 32), 0u);          // dmac 31..0 not matched
    EXPECT_EQ(bits_get(k.key, kSmacLow, 32), 0x89ABCD00u);
    EXPECT_EQ(bits_get(k.mask, kSmacLow, 32), 0xFFFFFF00u);
    EXPECT_EQ(bits_get(k.key, 18, 1), 1u); // trunken for a trunk
    EXPECT_EQ(bits_get(k.mask, 18, 1), 1u);
    EXPECT_EQ(bits_get(k.key, 13, 5), 5u);
    tide_sim_tcam_row r{};
    ASSERT_EQ(tide_sim_tcam_row_get(0, i.block, i.index_in_block, &r), 0);
    EXPECT_EQ(bits_get(r.action, 95, 1), 1u);   // valid
    EXPECT_EQ(bits_get(r.action, 80, 4), 5u);   // fwdcmd redirect
    EXPECT_EQ(bits_get(r.action, 12, 15), 7u);  // destination port
}

TEST_F(Acl, TheFirstInstallMakesTheTableAndTheLastUninstallGivesItsBlocksBack)
{
    const uint32_t g = group(256);
    const uint32_t a = entry(g, 5, 1), b = entry(g, 5, 2);
    EXPECT_EQ(group_info(g).table_size, 0u);
    ASSERT_EQ(acl_api_group_install(0, g), 0);
    acl_group_info gi = group_info(g);
    EXPECT_EQ(gi.table_size, 256u);
    EXPECT_EQ(gi.block_num, 2u);
    EXPECT_EQ(gi.installed, 2u);
    // Equal priorities fill from the low end: the empty table's slot 0 first.
    EXPECT_EQ(info(a).logical_index, 0u);
    EXPECT_EQ(info(b).logical_index, 1u);
    ASSERT_EQ(acl_api_entry_uninstall(0, a), 0);
    EXPECT_EQ(group_info(g).table_size, 256u);
    ASSERT_EQ(acl_api_group_uninstall(0, g), 0);
    gi = group_info(g);
    EXPECT_EQ(gi.table_size, 0u);
    EXPECT_EQ(gi.block_num, 0u);
    uint32_t bitmap = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, atolreef_cib_acl_core_tcamblock_cfg1_reg.addr[0], &bitmap), 0);
    EXPECT_EQ(bitmap, 0u);
    ASSERT_EQ(acl_api_group_destroy(0, g), 0);
    EXPECT_EQ(acl_api_entry_get(0, a, nullptr), SHR_E_NULL_PTR);
    acl_entry_info gone{};
    EXPECT_EQ(acl_api_entry_get(0, a, &gone), SHR_E_NOT_FOUND);
}

TEST_F(Acl, AFullGroupInManualModeKeepsItsSizeAndSaysWhy)
{
    const uint32_t g = group(128);
    for (uint32_t i = 0; i < 128; i++) {
        ASSERT_EQ(acl_api_entry_install(0, entry(g, i, i)), 0);
    }
    const uint32_t extra = entry(g, 500, 500);
    Capture::clear();
    EXPECT_EQ(acl_api_entry_install(0, extra), SHR_E_RESOURCE);
    EXPECT_TRUE(Capture::has("not support tcam resource expand"));
    EXPECT_TRUE(Capture::has("tcam resouce expand faild, group_id"));
    EXPECT_EQ(info(extra).state & ACL_ENTRY_INSTALLED, 0u);
    EXPECT_EQ(group_info(g).table_size, 128u);
    dpl_acl_group *grp = dpl_reef_acl_group_find(0, g);
    ASSERT_NE(grp, nullptr);
    EXPECT_EQ(dpl_reef_acl_group_expand(0, grp), SHR_E_NOT_SUPPORT);
}

TEST_F(AclAuto, The129thEntryOfAGroupOf128GrowsItByABlock)
{
    const uint32_t g = group(128);
    for (uint32_t i = 0; i < 129; i++) {
        ASSERT_EQ(acl_api_entry_install(0, entry(g, i, i)), 0) << i;
    }
    const acl_group_info gi = group_info(g);
    EXPECT_EQ(gi.table_size, 256u);
    EXPECT_EQ(gi.block_num, 2u);
    EXPECT_EQ(gi.block_ids[1], gi.block_ids[0] + 1);
    EXPECT_TRUE(Capture::has("tcam map_type 0 start_free_block_index 1"));
}

TEST_F(AclAuto, UninstallsThatFreeABlockGiveItBack)
{
    const uint32_t g = group(128);
    std::vector<uint32_t> ids;
    for (uint32_t i = 0; i < 200; i++) {
        ids.push_back(entry(g, i, i));
        ASSERT_EQ(acl_api_entry_install(0, ids.back()), 0);
    }
    ASSERT_EQ(group_info(g).table_size, 256u);
    for (uint32_t i = 0; i < 71; i++) {
        ASSERT_EQ(acl_api_entry_uninstall(0, ids[i * 2]), 0);
    }
    // 129 left in 256: still in two blocks; one more and a block goes.
    EXPECT_EQ(group_info(g).table_size, 256u);
    ASSERT_EQ(acl_api_entry_uninstall(0, ids[1]), 0);
    const acl_group_info gi = group_info(g);
    EXPECT_EQ(gi.table_size, 128u);
    EXPECT_EQ(gi.block_num, 1u);
    // The entries left keep their order in the block that stays.
    auto placed = installed(g);
    uint32_t last = 0;
    std::map<uint32_t, uint32_t> by_logical;
    for (auto &[id, p] : placed) {
        EXPECT_EQ(p.block, gi.block_ids[0]);
        by_logical[p.logical] = p.priority;
    }
    for (auto &[logical, pri] : by_logical) {
        EXPECT_GE(pri, last);
        last = pri;
    }
}

TEST_F(Acl, PriorityChangeOfAnInstalledEntryMovesItsRow)
{
    const uint32_t g = group();
    const uint32_t a = entry(g, 10, 1), b = entry(g, 20, 2);
    ASSERT_EQ(acl_api_group_install(0, g), 0);
    ASSERT_LT(info(a).logical_index, info(b).logical_index);
    ASSERT_EQ(acl_api_entry_pri_set(0, a, 30), 0);
    EXPECT_GT(info(a).logical_index, info(b).logical_index);
    EXPECT_EQ(info(a).state, ACL_ENTRY_INSTALLED);
    uint32_t key[10];
    l2_search_key(1, key);
    uint32_t block = 0, index = 0;
    ASSERT_EQ(tide_sim_tcam_search(0, key, kL2KeyBits, 0xFFFF, &block, &index), 0);
    EXPECT_EQ(block, info(a).block);
    EXPECT_EQ(index, info(a).index_in_block);
}

TEST_F(Acl, ManualGroupsTakeTheirGivenBlocks)
{
    uint32_t id = 0;
    ASSERT_EQ(acl_api_group_create(0, 0, &id), 0);
    acl_group_para p{};
    p.flags = ACL_GROUP_FLAG_BLOCKS;
    p.type = ACL_GROUP_ICAP;
    p.block_num = 2;
    p.block_ids[0] = 9;
    p.block_ids[1] = 7;
    ASSERT_EQ(acl_api_group_set(0, id, &p), 0);
    const uint32_t a = entry(id, 1, 1);
    ASSERT_EQ(acl_api_entry_install(0, a), 0);
    EXPECT_EQ(info(a).block, 7u); // the lower block holds the first rows
    const acl_group_info gi = group_info(id);
    EXPECT_EQ(gi.block_num, 2u);
    EXPECT_EQ(gi.block_ids[0], 7u);
    EXPECT_EQ(gi.block_ids[1], 9u);
}

TEST_F(Acl, ASetOfAGroupWithInstalledEntriesIsRefused)
{
    const uint32_t g = group();
    ASSERT_EQ(acl_api_entry_install(0, entry(g, 1, 1)), 0);
    acl_group_para p{};
    p.type = ACL_GROUP_ICAP;
    p.mode = ACL_MODE_DOUBLE;
    p.entry_num = 128;
    p.flags = ACL_GROUP_FLAG_SIZE;
    EXPECT_EQ(acl_api_group_set(0, g, &p), SHR_E_FAIL);
    EXPECT_EQ(group_info(g).mode, ACL_MODE_SINGLE);
}

TEST_F(Acl, AFailedWriteLeavesTheEntryUninstalledAndTheTableAsItWas)
{
    const uint32_t g = group();
    const uint32_t a = entry(g, 1, 1), b = entry(g, 2, 2);
    ASSERT_EQ(acl_api_entry_install(0, a), 0);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_TCAM, 1), 0);
    EXPECT_NE(acl_api_entry_install(0, b), 0);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_TCAM, 0), 0);
    EXPECT_EQ(info(b).state & ACL_ENTRY_INSTALLED, 0u);
    EXPECT_EQ(group_info(g).installed, 1u);
    ASSERT_EQ(acl_api_entry_install(0, b), 0);
    EXPECT_EQ(group_info(g).installed, 2u);
}

class AclSibling : public tide::test::SimChips {
protected:
    AclSibling() : SimChips(1, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        tide::test::kelpreef_identity_set(0);
        up_chip(0);
    }
};

TEST_F(AclSibling, KelpreefAnswersNotSupportWithItsLine)
{
    uint32_t id = 0;
    EXPECT_EQ(acl_api_group_create(0, 0, &id), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("kelpreef: no ACL tables in this build"));
    acl_global_cfg cfg{};
    EXPECT_EQ(acl_api_global_cfg_get(0, ACL_GLB_ICAP_CFG0, &cfg), SHR_E_NOT_SUPPORT);
}

} // namespace
