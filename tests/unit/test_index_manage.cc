// The table index manager: lowest free number first, numbers counted from
// the lowest entry, tables the chip does not have skipped.
#include <gtest/gtest.h>

#include "atolreef_cib.h"
#include "dpl/reef/base/dpl_reef_base_index_manage.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

class IndexManage : public SimChips {
protected:
    IndexManage() : SimChips(1, 1) {}
};

TEST_F(IndexManage, LowestFreeNumberFirst)
{
    const u32 tab = cib_icar_acl_car_cfg_tbl;
    u32 n = 99;
    ASSERT_EQ(dpl_reef_base_tab_index_alloc(0, tab, &n), 0);
    EXPECT_EQ(n, 0u);
    ASSERT_EQ(dpl_reef_base_tab_index_alloc(0, tab, &n), 0);
    EXPECT_EQ(n, 1u);
    ASSERT_EQ(dpl_reef_base_tab_index_alloc(0, tab, &n), 0);
    EXPECT_EQ(n, 2u);
    ASSERT_EQ(dpl_reef_base_tab_index_free(0, tab, 0), 0);
    ASSERT_EQ(dpl_reef_base_tab_index_alloc(0, tab, &n), 0);
    EXPECT_EQ(n, 0u);
    u8 used = 9;
    ASSERT_EQ(dpl_reef_base_tab_index_used_get(0, tab, 2, &used), 0);
    EXPECT_EQ(used, 1);
    ASSERT_EQ(dpl_reef_base_tab_index_used_get(0, tab, 3, &used), 0);
    EXPECT_EQ(used, 0);
    // A chosen number, used or beyond the table.
    EXPECT_EQ(dpl_reef_base_tab_index_alloc_with_id(0, tab, 10), 0);
    EXPECT_EQ(dpl_reef_base_tab_index_alloc_with_id(0, tab, 10), -8);
    const cib_tab_info *t = g_atolreef_tab_list[tab];
    EXPECT_EQ(dpl_reef_base_tab_index_alloc_with_id(0, tab, t->index_max + 1 - t->index_min), -4);
    // Freeing a free number is a warning, not an error.
    Capture::clear();
    EXPECT_EQ(dpl_reef_base_tab_index_free(0, tab, 5), 0);
    EXPECT_TRUE(Capture::has("the cur index is free,  not need free!\n"));
}

TEST_F(IndexManage, ExhaustionAndBadTables)
{
    const u32 tab = cib_ecar_cause_id_car_cfg_tbl;
    const cib_tab_info *t = g_atolreef_tab_list[tab];
    const u32 entries = t->index_max + 1 - t->index_min;
    u32 n = 0;
    for (u32 i = 0; i < entries; i++) {
        ASSERT_EQ(dpl_reef_base_tab_index_alloc(0, tab, &n), 0);
    }
    EXPECT_EQ(dpl_reef_base_tab_index_alloc(0, tab, &n), -6);
    // Tables this chip does not have, tables not managed, bad outputs.
    EXPECT_EQ(dpl_reef_base_tab_index_alloc(0, 475, &n), -20);
    EXPECT_EQ(dpl_reef_base_tab_index_alloc(0, cib_mcc_mlib, &n), -6);
    EXPECT_EQ(dpl_reef_base_tab_index_free(0, cib_mcc_mlib, 0), -20);
    EXPECT_EQ(dpl_reef_base_tab_index_alloc(0, tab + 0, nullptr), -20);
    u8 used = 0;
    EXPECT_EQ(dpl_reef_base_tab_index_used_get(0, tab, 0, nullptr), -20);
    EXPECT_EQ(dpl_reef_base_tab_index_used_get(0, 481, 0, &used), -20);
    // The two absent ids are skipped at start; the other ten have bitmaps.
    u32 managed = 0;
    for (u32 i = 0; i < g_index_manage[0].count; i++) {
        managed += g_index_manage[0].tabs[i].bitmap != nullptr;
    }
    EXPECT_EQ(managed, 10u);
}

} // namespace
