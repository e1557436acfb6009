// ECC errors through the interrupt engine on the chip model: the details
// and counts the chip keeps, the repair of a damaged direct-table entry
// and TCAM action row from the software image, the rows that are not
// repaired, and the errors the model's TCAM scan finds by itself.
#include <gtest/gtest.h>
#include <tide/interrupt.h>

#include <atomic>
#include <cstring>
#include <vector>

#include "atolreef_cib.h"
#include "atolreef_tcam_table.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "support/fixture.h"
#include "support/wait.h"
#include "tide_int.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

constexpr u32 kMlib = 423; // mcc_mlib: its image is made at the first write
constexpr u32 kMlibType = 12, kMrtType = 13;
constexpr u32 kMultiBit = INTR_ECC_NOTICE | INTR_ECC_MULTI_BIT;
constexpr u32 kBlock = 1;

std::atomic<u32> g_calls{0};
void _count(u32, intr_module, intr_type)
{
    g_calls++;
}

class IntrEcc : public SimChips {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        g_calls = 0;
        // The front ports' bring-up left their link events pending: the
        // tests start from a quiet tree.
        ASSERT_EQ(interrupt_api_clear_all(0), 0);
        ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    }

    u32 served(intr_module m, u32 type)
    {
        u32 n = 0;
        EXPECT_EQ(interrupt_api_stats_get(0, m, {type, 0}, &n), 0);
        return n;
    }
    void inject(u32 module, u32 subid, u32 type, u32 ecc_type, u32 index, u32 corrupt)
    {
        const tide_sim_ecc_error e = {module, subid, type, 0, ecc_type, index, corrupt};
        ASSERT_EQ(tide_sim_ecc_inject(0, &e), 0);
    }
    bool line_low()
    {
        u32 level = 1;
        return tide_sim_intr_line_get(0, &level) == 0 && level == 0;
    }
    std::vector<u32> mlib(u32 index)
    {
        u32 w = 0;
        EXPECT_EQ(csl_reef_tab_get_direct_uint32(0, kMlib, index, &w, 1, CSL_TAB_HW), 0);
        return {w};
    }
    // An entry of iacl_tcam_iacl_160_l2 at (kBlock, index).
    void tcam_entry(u32 index, u32 action)
    {
        ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, kBlock, CSL_TCAM_MODE_160), 0);
        cib_iacl_tcam_iacl_160_l2_t e{};
        e.key.smac = 0x1234;
        e.mask.smac = 0xFFFF;
        e.key.tid = 4;
        e.mask.tid = 0xF;
        e.ad.causeid_dport_nhpid_ecmpgrp = action;
        ASSERT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_set(0, kBlock, index, &e), 0);
    }
    tide_sim_tcam_row row(u32 index)
    {
        tide_sim_tcam_row r{};
        EXPECT_EQ(tide_sim_tcam_row_get(0, kBlock, index, &r), 0);
        return r;
    }
};

TEST_F(IntrEcc, AMultiBitErrorOfADirectRowIsRewrittenFromTheImage)
{
    u32 word = 0x2345;
    ASSERT_EQ(csl_reef_tab_set_direct_uint32(0, kMlib, 5, &word, 1, CSL_TAB_HW_AND_IMAGE), 0);
    ASSERT_EQ(interrupt_api_default_action_set(0, 1), 0);
    ASSERT_EQ(interrupt_api_callback_register(0, {INTR_MOD_MCC, 0}, {kMlibType, 0}, _count), 0);
    inject(INTR_MOD_MCC, 0, kMlibType, kMultiBit, 5, 1);
    ASSERT_TRUE(tide_test::eventually([&] { return g_calls == 1 && line_low(); }));
    EXPECT_EQ(mlib(5), std::vector<u32>{0x2345});

    intr_ecc_info info{};
    ASSERT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_MCC, 0}, {kMlibType, 0}, &info), 0);
    EXPECT_EQ(info.ecc_type, kMultiBit);
    EXPECT_EQ(info.ecc_kind, INTR_ECC_KIND_DIRECT);
    EXPECT_EQ(info.table_id, kMlib);
    EXPECT_EQ(info.table_index, 5u);
    EXPECT_EQ(info.ecc_cnt, 1u);
    EXPECT_EQ(info.ecc_reg_addr, atolreef_cib_mcc_ecc_mlib_dbg_reg.addr[0]);
    u32 cnt[2] = {};
    ASSERT_EQ(interrupt_api_ecc_error_cnt_get(0, {INTR_ECC_TYPE_DIRECT_TAB, kMlib}, cnt), 0);
    EXPECT_EQ(cnt[0], 1u);
}

TEST_F(IntrEcc, WithDefaultActionZeroTheErrorIsOnlyCountedAndCalledBack)
{
    u32 word = 0x2345;
    ASSERT_EQ(csl_reef_tab_set_direct_uint32(0, kMlib, 5, &word, 1, CSL_TAB_HW_AND_IMAGE), 0);
    ASSERT_EQ(interrupt_api_callback_register(0, {INTR_MOD_MCC, 0}, {kMlibType, 0}, _count), 0);
    inject(INTR_MOD_MCC, 0, kMlibType, kMultiBit, 5, 1);
    ASSERT_TRUE(tide_test::eventually([&] { return g_calls == 1 && line_low(); }));
    EXPECT_EQ(served({INTR_MOD_MCC, 0}, kMlibType), 1u);
    EXPECT_EQ(mlib(5), std::vector<u32>{0x2344}); // still damaged
}

TEST_F(IntrEcc, ASingleBitErrorIsCorrectedByTheMemoryAndNotRewritten)
{
    u32 word = 0x2345;
    ASSERT_EQ(csl_reef_tab_set_direct_uint32(0, kMlib, 7, &word, 1, CSL_TAB_HW_AND_IMAGE), 0);
    ASSERT_EQ(interrupt_api_default_action_set(0, 1), 0);
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    inject(INTR_MOD_MCC, 0, kMlibType, INTR_ECC_NOTICE | INTR_ECC_SINGLE_BIT, 7, 0);
    ASSERT_TRUE(tide_test::eventually([&] { return served({INTR_MOD_MCC, 0}, kMlibType) == 1 && line_low(); }));
    const u32 entry = atolreef_cib_mcc_mlibm.addr[0] + 7 * 4;
    for (const tide_sim_write &w : tide::test::sim_writes(0)) {
        EXPECT_NE(w.addr, entry);
    }
}

TEST_F(IntrEcc, ATcamActionRowIsRewrittenAndAKeyErrorIsNot)
{
    tcam_entry(9, 0x77);
    const tide_sim_tcam_row good = row(9);
    ASSERT_EQ(interrupt_api_default_action_set(0, 1), 0);
    // The action row: a 4-bit type field, so the multi-bit error reads 5.
    inject(INTR_MOD_ACL_CORE, 2, kBlock, kMultiBit, 9, 1);
    ASSERT_TRUE(tide_test::eventually([&] { return served({INTR_MOD_ACL_CORE, 2}, kBlock) == 1 && line_low(); }));
    tide_sim_tcam_row now = row(9);
    EXPECT_EQ(memcmp(&now, &good, sizeof(now)), 0);
    u32 cnt[2] = {9, 9};
    ASSERT_EQ(interrupt_api_ecc_error_cnt_get(0, {INTR_ECC_TYPE_TCAM_AD, kBlock}, cnt), 0);
    EXPECT_EQ(cnt[0], 1u);
    EXPECT_EQ(cnt[1], 9u); // an action row has one count

    // The data plane: a 1-bit type field holds only the notice.
    inject(INTR_MOD_ACL_CORE, 0, kBlock, kMultiBit, 9, 1);
    ASSERT_TRUE(tide_test::eventually([&] { return served({INTR_MOD_ACL_CORE, 0}, kBlock) == 1 && line_low(); }));
    intr_ecc_info info{};
    ASSERT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_ACL_CORE, 0}, {kBlock, 0}, &info), 0);
    EXPECT_EQ(info.ecc_type, INTR_ECC_NOTICE);
    EXPECT_EQ(info.ecc_kind, INTR_ECC_KIND_TCAM);
    EXPECT_EQ(info.table_id, kBlock);
    EXPECT_EQ(info.table_index, 9u);
    EXPECT_EQ(info.ecc_cnt, 1u);
    EXPECT_EQ(info.ecc_cnt2, 1u);
    now = row(9);
    EXPECT_EQ(now.data[0], good.data[0] ^ 1u); // left as it is
}

TEST_F(IntrEcc, TheTcamScanFindsAFaultAndTheEngineRepairsIt)
{
    tcam_entry(3, 0x55);
    ASSERT_EQ(interrupt_api_default_action_set(0, 1), 0);
    const tide_sim_tcam_row good = row(3);
    tide_sim_tcam_row bad = good;
    bad.action[0] ^= 0x3; // two bits: a multi-bit error
    ASSERT_EQ(tide_sim_tcam_row_set(0, kBlock, 3, &bad), 0);
    EXPECT_TRUE(line_low()); // found only when the scan runs
    ASSERT_EQ(tide_sim_time_advance(0, 10), 0);
    ASSERT_TRUE(tide_test::eventually([&] { return served({INTR_MOD_ACL_CORE, 2}, kBlock) == 1 && line_low(); }));
    tide_sim_tcam_row now = row(3);
    EXPECT_EQ(memcmp(&now, &good, sizeof(now)), 0);
    // Reported once: the next scan finds nothing.
    ASSERT_EQ(tide_sim_time_advance(0, 10), 0);
    EXPECT_TRUE(line_low());
    EXPECT_EQ(served({INTR_MOD_ACL_CORE, 2}, kBlock), 1u);

    // One bit: the memory corrects it; reported, and nothing rewritten.
    bad = good;
    bad.action[1] ^= 0x10;
    ASSERT_EQ(tide_sim_tcam_row_set(0, kBlock, 3, &bad), 0);
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    ASSERT_EQ(tide_sim_time_advance(0, 10), 0);
    ASSERT_TRUE(tide_test::eventually([&] { return served({INTR_MOD_ACL_CORE, 2}, kBlock) == 2 && line_low(); }));
    now = row(3);
    EXPECT_EQ(memcmp(&now, &good, sizeof(now)), 0);
    intr_ecc_info info{};
    ASSERT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_ACL_CORE, 2}, {kBlock, 0}, &info), 0);
    EXPECT_EQ(info.ecc_type, INTR_ECC_NOTICE | INTR_ECC_SINGLE_BIT);
    for (const tide_sim_write &w : tide::test::sim_writes(0)) {
        EXPECT_NE(w.addr, atolreef_cib_acl_core_tcamad_op_cmd0_reg.addr[0]); // no TCAM command
    }
}

TEST_F(IntrEcc, DetailsOfTheOtherMemories)
{
    // ipro keeps a count per table; icar keeps its details in a table.
    inject(INTR_MOD_IPRO, 0, 3, INTR_ECC_NOTICE | INTR_ECC_SINGLE_BIT, 100, 0);
    inject(INTR_MOD_IPRO, 0, 3, INTR_ECC_NOTICE | INTR_ECC_SINGLE_BIT, 101, 0);
    inject(INTR_MOD_ICAR, 0, 2, kMultiBit, 17, 0);
    ASSERT_TRUE(tide_test::eventually([&] { return line_low(); }));
    intr_ecc_info info{};
    ASSERT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_IPRO, 0}, {3, 0}, &info), 0);
    EXPECT_EQ(info.ecc_type, 3u);
    EXPECT_EQ(info.table_index, 101u);
    EXPECT_EQ(info.table_id, static_cast<u32>(cib_ipro_vbmp_tbl));
    EXPECT_EQ(info.ecc_cnt, 2u);
    ASSERT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_ICAR, 0}, {2, 0}, &info), 0);
    EXPECT_EQ(info.ecc_type, kMultiBit);
    EXPECT_EQ(info.table_index, 17u);
    EXPECT_EQ(info.table_id, static_cast<u32>(cib_icar_ba_tbl));
    EXPECT_EQ(info.ecc_reg_addr, atolreef_cib_icar_ram_chk_ecc_infom.addr[0] + 2 * 4);
    EXPECT_EQ(info.ecc_cnt, 0xFFFFFFFFu);

    // The buffer manager's shared RAM: details only in the shared mode.
    intr_ecc_info untouched{};
    memset(&untouched, 0xA5, sizeof(untouched));
    info = untouched;
    ASSERT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_FBM, 0}, {10, 0}, &info), 0);
    EXPECT_EQ(memcmp(&info, &untouched, sizeof(info)), 0);
    ASSERT_EQ(tide_sim_reg_poke(0, 4, atolreef_cib_fbm_share_ram_cfg_reg.addr[0], 1), 0);
    ASSERT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_FBM, 0}, {11, 0}, &info), 0);
    EXPECT_EQ(info.ecc_type, kMultiBit);
    EXPECT_EQ(info.ecc_kind, INTR_ECC_KIND_HASH);
    EXPECT_EQ(info.table_id, 334u);
}

TEST_F(IntrEcc, RefusalsOfTheEccCalls)
{
    intr_ecc_info info{};
    u32 cnt[2] = {};
    Capture::clear();
    EXPECT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_TTI, 0}, {0, 0}, &info), -7);
    EXPECT_TRUE(Capture::has("ERROR! Module tti has no ecc information!"));
    EXPECT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_EPRO, 0}, {12, 0}, &info), -7);
    EXPECT_TRUE(Capture::has("ERROR! The intr no ecc debug reg(module id:50 subid:0 intr id:12)!"));
    EXPECT_EQ(interrupt_api_ecc_info_get(0, {INTR_MOD_MCC, 0}, {INTR_ID_ALL, 0}, &info), -4);
    EXPECT_TRUE(Capture::has("ERROR! Only support get one ecc info at a time!"));
    EXPECT_EQ(interrupt_api_ecc_error_cnt_get(0, {4, 0}, cnt), -4);
    EXPECT_TRUE(Capture::has("ERROR! type must be one of (INTR_ECC_TYPE_TCAM_KEY"));
    EXPECT_EQ(interrupt_api_ecc_error_cnt_get(0, {INTR_ECC_TYPE_TCAM_KEY, 16}, cnt), -4);
    EXPECT_TRUE(Capture::has("ERROR! tcam_block_id must less than 16!"));
    EXPECT_EQ(interrupt_api_ecc_error_cnt_get(0, {INTR_ECC_TYPE_DIRECT_TAB, cib_icar_ba_tbl}, cnt), -4);
    EXPECT_TRUE(Capture::has("has no ecc count debug!"));
    EXPECT_EQ(interrupt_api_ecc_error_cnt_get(0, {INTR_ECC_TYPE_DIRECT_TAB, kMlib}, nullptr), -4);
    // The model refuses an error it cannot describe.
    const tide_sim_ecc_error no_ecc = {INTR_MOD_TTI, 0, 0, 0, kMultiBit, 0, 0};
    EXPECT_EQ(tide_sim_ecc_inject(0, &no_ecc), -4);
    const tide_sim_ecc_error beyond = {INTR_MOD_MCC, 0, kMrtType, 0, kMultiBit, 1024, 1};
    EXPECT_EQ(tide_sim_ecc_inject(0, &beyond), -4);
    EXPECT_EQ(tide_sim_ecc_inject(0, nullptr), -20);
    EXPECT_EQ(tide_sim_intr_raise(0, INTR_MOD_LSW_HREG, 1, 3, 0), -4); // a category bit
    EXPECT_EQ(tide_sim_intr_raise(0, INTR_MOD_ARL, 0, 21, 0), -4);
    EXPECT_EQ(tide_sim_intr_raise(0, INTR_MOD_MAC_PORT, 0, 0, 28), -4);
}

} // namespace
