// The TCAM block manager on the chip model: the choices and refusals of
// automatic and manual allocation, what free and delete give back, with
// the registers of acl_core read from the model after each step; the
// caller's list walks, the unchangeable boundary and the module view.
#include <gtest/gtest.h>

#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "support/fixture.h"
#include "support/vlan_tcam.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

u32 _peek(u32 addr)
{
    u32 v = 0;
    EXPECT_EQ(tide_sim_reg_peek(0, 4, addr, &v), 0);
    return v;
}

// The registers as the model holds them.
u32 _mode(u32 block)
{
    return (_peek(atolreef_cib_acl_core_tcam_glb_cfg0_reg.addr[0]) >> (2 * block)) & 3;
}

u32 _bank(u32 block)
{
    static const cib_reg_info *const kBank[16] = {
        &atolreef_cib_acl_core_tcam_glb_cbe0_reg,  &atolreef_cib_acl_core_tcam_glb_cbe1_reg,
        &atolreef_cib_acl_core_tcam_glb_cbe2_reg,  &atolreef_cib_acl_core_tcam_glb_cbe3_reg,
        &atolreef_cib_acl_core_tcam_glb_cbe4_reg,  &atolreef_cib_acl_core_tcam_glb_cbe5_reg,
        &atolreef_cib_acl_core_tcam_glb_cbe6_reg,  &atolreef_cib_acl_core_tcam_glb_cbe7_reg,
        &atolreef_cib_acl_core_tcam_glb_cbe8_reg,  &atolreef_cib_acl_core_tcam_glb_cbe9_reg,
        &atolreef_cib_acl_core_tcam_glb_cbe10_reg, &atolreef_cib_acl_core_tcam_glb_cbe11_reg,
        &atolreef_cib_acl_core_tcam_glb_cbe12_reg, &atolreef_cib_acl_core_tcam_glb_cbe13_reg,
        &atolreef_cib_acl_core_tcam_glb_cbe14_reg, &atolreef_cib_acl_core_tcam_glb_cbe15_reg,
    };
    return _peek(kBank[block]->addr[0]);
}

// Kind bitmaps: cfg1 iacl-160, cfg0 iacl-320, cfg3 spa and eacl-s, cfg7
// vacl-160 and vt-160.
u32 _iacl160()
{
    return _peek(atolreef_cib_acl_core_tcamblock_cfg1_reg.addr[0]);
}
u32 _iacl320()
{
    return _peek(atolreef_cib_acl_core_tcamblock_cfg0_reg.addr[0]);
}
u32 _cfg3()
{
    return _peek(atolreef_cib_acl_core_tcamblock_cfg3_reg.addr[0]);
}

std::vector<u32> _ids(const csl_tcam_block_node &head)
{
    u32 ids[32] = {}, n = 0;
    EXPECT_EQ(csl_reef_tcam_blocklist_get(0, &head, &n, ids), 0);
    return std::vector<u32>(ids, ids + n);
}

class TcamMgmt : public SimChips {
protected:
    TcamMgmt() : SimChips(1, 1) {}
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(tide::test::vlan_tcam_spaces_free(0), 0);
        for (csl_tcam_block_node &h : heads_) {
            csl_reef_tcam_block_list_init(&h);
        }
    }
    void TearDown() override
    {
        // Every list is given back, so that no node is left behind.
        const u32 types[] = {CSL_TCAM_MAP_IACL_160, CSL_TCAM_MAP_IACL_320, CSL_TCAM_MAP_SPA, CSL_TCAM_MAP_EACL_S};
        for (u32 i = 0; i < 4; i++) {
            EXPECT_EQ(csl_reef_tcam_block_free(0, types[i], &heads_[i]), 0);
        }
        SimChips::TearDown();
    }
    csl_tcam_block_node &iacl160() { return heads_[0]; }
    csl_tcam_block_node &iacl320() { return heads_[1]; }
    csl_tcam_block_node &spa() { return heads_[2]; }
    csl_tcam_block_node &eacls() { return heads_[3]; }

    csl_tcam_block_node heads_[4];
};

TEST_F(TcamMgmt, AutomaticAllocationTakesTheLowestFreeBlocksOfTheKind)
{
    // 16 entries of iacl-160: one block of 128, block 0.
    ASSERT_EQ(csl_reef_tcam_block_auto_alloc(0, 16, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    EXPECT_EQ(_ids(iacl160()), std::vector<u32>{0});
    EXPECT_EQ(csl_reef_tcam_block_list_size_get(0, &iacl160()), 128u);
    EXPECT_EQ(_mode(0), CSL_TCAM_MODE_160);
    EXPECT_EQ(_bank(0), 0xFFFFu);
    EXPECT_EQ(_iacl160(), 0x1u);

    // 129 more: two blocks, the next free ones.
    ASSERT_EQ(csl_reef_tcam_block_auto_alloc(0, 129, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    EXPECT_EQ(_ids(iacl160()), (std::vector<u32>{0, 1, 2}));
    EXPECT_EQ(_iacl160(), 0x7u);

    // 65 of iacl-320: two blocks of 64.
    ASSERT_EQ(csl_reef_tcam_block_auto_alloc(0, 65, CSL_TCAM_MAP_IACL_320, &iacl320()), 0);
    EXPECT_EQ(_ids(iacl320()), (std::vector<u32>{3, 4}));
    EXPECT_EQ(csl_reef_tcam_block_size_get(0, &iacl320(), 4), 64u);
    EXPECT_EQ(csl_reef_tcam_block_size_get(0, &iacl320(), 0), 0u);
    EXPECT_EQ(_mode(3), CSL_TCAM_MODE_320);
    EXPECT_EQ(_mode(4), CSL_TCAM_MODE_320);
    EXPECT_EQ(_iacl320(), 0x18u);
    EXPECT_EQ(_iacl160(), 0x7u);
    EXPECT_EQ(csl_reef_tcam_resource_get(0)->used, 5u);

    // Nothing for 0 entries; 480-bit kinds and kinds atolreef lacks are
    // refused at the type check.
    csl_tcam_block_node other{};
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(0, 0, CSL_TCAM_MAP_IACL_160, &other), 0);
    EXPECT_EQ(_ids(other).size(), 0u);
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(0, 10, CSL_TCAM_MAP_IACL_480, &other), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("Wrong tcam map type 2"));
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(0, 10, CSL_TCAM_MAP_MFF, &other), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(0, 10, CSL_TCAM_MAP_TYPE_COUNT, &other), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(0, 10, CSL_TCAM_MAP_IACL_160, nullptr), SHR_E_NULL_PTR);

    // The other eleven blocks hold 11 * 64; one entry more does not fit,
    // and nothing is taken.
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(0, 11 * 64 + 1, CSL_TCAM_MAP_IACL_320, &iacl320()), SHR_E_FULL);
    EXPECT_EQ(_ids(iacl320()).size(), 2u);
    ASSERT_EQ(csl_reef_tcam_block_auto_alloc(0, 11 * 64, CSL_TCAM_MAP_IACL_320, &iacl320()), 0);
    EXPECT_EQ(csl_reef_tcam_resource_get(0)->used, 16u);
    EXPECT_EQ(_iacl320(), 0xFFF8u);
    // The seventeenth block.
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(0, 1, CSL_TCAM_MAP_IACL_160, &iacl160()), SHR_E_FULL);
    u32 block = 5;
    EXPECT_EQ(csl_reef_tcam_block_manual_alloc(0, 1, &block, CSL_TCAM_MAP_IACL_160, &iacl160()), SHR_E_FULL);
}

TEST_F(TcamMgmt, FreeAndDeleteGiveBlocksBackInHardwareAndSoftware)
{
    ASSERT_EQ(csl_reef_tcam_block_auto_alloc(0, 200, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    ASSERT_EQ(csl_reef_tcam_block_auto_alloc(0, 1, CSL_TCAM_MAP_IACL_320, &iacl320()), 0);
    ASSERT_EQ(_iacl160(), 0x3u);

    // One block out of the middle of nothing: -7, nothing changes.
    EXPECT_EQ(csl_reef_tcam_block_del(0, 2, CSL_TCAM_MAP_IACL_160, &iacl160()), SHR_E_NOT_FOUND);
    EXPECT_EQ(_bank(2), 0xFFFFu);

    ASSERT_EQ(csl_reef_tcam_block_del(0, 0, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    EXPECT_EQ(_ids(iacl160()), std::vector<u32>{1});
    EXPECT_EQ(_iacl160(), 0x2u);
    EXPECT_EQ(_bank(0), 0u);
    EXPECT_EQ(_mode(0), CSL_TCAM_MODE_80);
    const csl_tcam_block &b0 = csl_reef_tcam_resource_get(0)->flex_blocks[0];
    EXPECT_EQ(b0.used, 0);
    EXPECT_EQ(b0.mode, CSL_TCAM_MODE_UNSET);
    EXPECT_EQ(b0.map_type, CSL_TCAM_MAP_NONE);

    // Block 0 is free again and the lowest: the next allocation takes it.
    ASSERT_EQ(csl_reef_tcam_block_add(0, 0, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    EXPECT_EQ(_ids(iacl160()), (std::vector<u32>{1, 0}));

    ASSERT_EQ(csl_reef_tcam_block_free(0, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    EXPECT_EQ(_ids(iacl160()).size(), 0u);
    EXPECT_EQ(_iacl160(), 0u);
    EXPECT_EQ(_bank(0) | _bank(1), 0u);
    EXPECT_EQ(_bank(2), 0xFFFFu); // iacl-320's block stays
    EXPECT_EQ(_iacl320(), 0x4u);
    EXPECT_EQ(csl_reef_tcam_resource_get(0)->used, 1u);
}

TEST_F(TcamMgmt, KindsThatShareABitmapKeepEachOthersBits)
{
    u32 b = 6;
    ASSERT_EQ(csl_reef_tcam_block_manual_alloc(0, 1, &b, CSL_TCAM_MAP_SPA, &spa()), 0);
    b = 9;
    ASSERT_EQ(csl_reef_tcam_block_manual_alloc(0, 1, &b, CSL_TCAM_MAP_EACL_S, &eacls()), 0);
    EXPECT_EQ(_cfg3(), (1u << 6) | (1u << 9));
    ASSERT_EQ(csl_reef_tcam_block_free(0, CSL_TCAM_MAP_SPA, &spa()), 0);
    EXPECT_EQ(_cfg3(), 1u << 9);
    EXPECT_EQ(_bank(6), 0u);
    EXPECT_EQ(_bank(9), 0xFFFFu);
}

TEST_F(TcamMgmt, ManualAllocationRefusesTakenWrongAndRepeatedBlocks)
{
    const u32 two[] = {4, 7};
    ASSERT_EQ(csl_reef_tcam_block_manual_alloc(0, 2, two, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    EXPECT_EQ(_ids(iacl160()), (std::vector<u32>{4, 7}));
    const u32 regs_before = _iacl320();

    const u32 taken[] = {5, 7};
    EXPECT_EQ(csl_reef_tcam_block_manual_alloc(0, 2, taken, CSL_TCAM_MAP_IACL_320, &iacl320()), SHR_E_RESOURCE);
    EXPECT_TRUE(Capture::has("tcam: block 7 is in use"));
    const u32 beyond[] = {16};
    EXPECT_EQ(csl_reef_tcam_block_manual_alloc(0, 1, beyond, CSL_TCAM_MAP_IACL_320, &iacl320()), SHR_E_PARAM);
    const u32 twice[] = {5, 5};
    EXPECT_EQ(csl_reef_tcam_block_manual_alloc(0, 2, twice, CSL_TCAM_MAP_IACL_320, &iacl320()), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_block_manual_alloc(0, 17, two, CSL_TCAM_MAP_IACL_320, &iacl320()), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_block_manual_alloc(0, 1, nullptr, CSL_TCAM_MAP_IACL_320, &iacl320()), SHR_E_NULL_PTR);
    EXPECT_EQ(csl_reef_tcam_block_manual_alloc(0, 0, nullptr, CSL_TCAM_MAP_IACL_320, &iacl320()), 0);
    // None of the refusals took a block.
    EXPECT_EQ(_ids(iacl320()).size(), 0u);
    EXPECT_EQ(_iacl320(), regs_before);
    EXPECT_EQ(_bank(5), 0u);
    EXPECT_EQ(csl_reef_tcam_resource_get(0)->used, 2u);
}

TEST_F(TcamMgmt, AListMapsLogicalIndexesToBlocksInItsOrder)
{
    const u32 ids[] = {9, 2};
    ASSERT_EQ(csl_reef_tcam_block_manual_alloc(0, 2, ids, CSL_TCAM_MAP_IACL_160, &iacl160()), 0);
    u32 block = 0, index = 0;
    ASSERT_EQ(csl_reef_tcam_block_entry_index_location_get(0, &block, &index, &iacl160()), 0);
    EXPECT_EQ(block, 9u);
    EXPECT_EQ(index, 0u);
    ASSERT_EQ(csl_reef_tcam_block_entry_index_location_get(130, &block, &index, &iacl160()), 0);
    EXPECT_EQ(block, 2u);
    EXPECT_EQ(index, 2u);
    // Beyond the list: the last block with the remainder.
    ASSERT_EQ(csl_reef_tcam_block_entry_index_location_get(300, &block, &index, &iacl160()), 0);
    EXPECT_EQ(block, 2u);
    EXPECT_EQ(index, 172u);
    csl_tcam_block_node empty{};
    EXPECT_EQ(csl_reef_tcam_block_entry_index_location_get(0, &block, &index, &empty), SHR_E_NOT_FOUND);
    EXPECT_EQ(csl_reef_tcam_block_entry_index_location_get(0, nullptr, &index, &iacl160()), SHR_E_NULL_PTR);
    EXPECT_EQ(csl_reef_tcam_block_list_size_get(0, &iacl160()), 256u);
}

TEST_F(TcamMgmt, TheUnchangeableBoundaryFollowsTheFixedUsers)
{
    u32 fixed = 0, flexible = 0;
    ASSERT_EQ(csl_reef_tcam_last_fixed_flexd_unchange_block_get(0, &fixed, &flexible), 0);
    EXPECT_EQ(fixed, 0xFFFFFFFFu);
    EXPECT_EQ(flexible, 0xFFFFFFFFu); // no fixed blocks on atolreef: fixed count - 1

    // vt-160 is module 1 of the module view: unchangeable.
    const u32 ids[] = {3, 5};
    ASSERT_EQ(csl_reef_tcam_utils_block_manual_alloc(0, CSL_TCAM_UTILS_VT_160, 2, ids), 0);
    ASSERT_EQ(csl_reef_tcam_block_auto_alloc(0, 100, CSL_TCAM_MAP_IACL_160, &iacl160()), 0); // block 0
    ASSERT_EQ(csl_reef_tcam_last_fixed_flexd_unchange_block_get(0, &fixed, &flexible), 0);
    EXPECT_EQ(fixed, 0xFFFFFFFFu);
    EXPECT_EQ(flexible, 5u);
    EXPECT_EQ(csl_reef_tcam_last_fixed_flexd_unchange_block_get(0, nullptr, &flexible), SHR_E_NULL_PTR);
    ASSERT_EQ(csl_reef_tcam_utils_block_free(0, CSL_TCAM_UTILS_VT_160), 0);
}

TEST_F(TcamMgmt, TheModuleViewHoldsOneListPerFixedUser)
{
    ASSERT_EQ(csl_reef_tcam_utils_block_alloc(0, CSL_TCAM_UTILS_SPA, 100), 0);
    EXPECT_EQ(_cfg3(), 0x3u); // two blocks of 64
    EXPECT_EQ(csl_reef_tcam_utils_block_alloc(0, CSL_TCAM_UTILS_SPA, 1), SHR_E_FAIL);
    u32 block = 0, index = 0;
    ASSERT_EQ(csl_reef_tcam_utils_index_to_block_index(0, CSL_TCAM_UTILS_SPA, 70, &block, &index), 0);
    EXPECT_EQ(block, 1u);
    EXPECT_EQ(index, 6u);
    ASSERT_EQ(csl_reef_tcam_utils_block_alloc(0, CSL_TCAM_UTILS_VT_320, 64), 0);
    EXPECT_EQ(_peek(atolreef_cib_acl_core_tcamblock_cfg8_reg.addr[0]), 0x4u);
    ASSERT_EQ(csl_reef_tcam_utils_block_free(0, CSL_TCAM_UTILS_SPA), 0);
    EXPECT_EQ(_cfg3(), 0u);
    EXPECT_EQ(csl_reef_tcam_utils_block_free(0, CSL_TCAM_UTILS_SPA), SHR_E_FAIL);
    EXPECT_EQ(csl_reef_tcam_utils_index_to_block_index(0, CSL_TCAM_UTILS_SPA, 0, &block, &index), SHR_E_FAIL);
    // The tunnel tables are not on atolreef; modules end at 5.
    EXPECT_EQ(csl_reef_tcam_utils_block_alloc(0, 3, 10), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_tcam_utils_block_alloc(0, 6, 10), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_utils_block_alloc(4, 0, 10), SHR_E_PARAM);
    // The view's lists go with the software at tear-down: vt-320 is left
    // allocated on purpose.
}

TEST_F(TcamMgmt, TheRegisterWrappersCheckTheirArguments)
{
    u32 v = 0;
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_get(0, 3, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, 16, 1), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, 3, 4), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(0, CSL_TCAM_MAP_MFF, &v), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcam_block_480mode_get(0, 0, &v), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcam_block_480mode_set(0, 0, 1), SHR_E_NOT_SUPPORT);
    ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_cfgpri_set(0, 5), 0);
    ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_cfgpri_get(0, &v), 0);
    EXPECT_EQ(v, 5u);
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcam_block_cfgpri_set(0, 8), SHR_E_PARAM);
    // Two bits a block: block 7's mode leaves its neighbours alone.
    ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, 6, 2), 0);
    ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, 7, 1), 0);
    ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, 8, 3), 0);
    EXPECT_EQ(_peek(atolreef_cib_acl_core_tcam_glb_cfg0_reg.addr[0]), 2u << 12 | 1u << 14 | 3u << 16);
    u16 fixed = 0, flexible = 0;
    ASSERT_EQ(csl_reef_tcam_fix_flex_block_num_get(0, &fixed, &flexible), 0);
    EXPECT_EQ(fixed, 0u);
    EXPECT_EQ(flexible, 16u);
    EXPECT_EQ(csl_reef_tcam_fix_flex_block_num_get(4, &fixed, &flexible), SHR_E_PARAM);
}

} // namespace
