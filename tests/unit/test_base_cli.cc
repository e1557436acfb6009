// Mode `base` of the shell on a chip of the model: an entry of a TCAM
// table written, shown and cleared by an operator, the block manager's
// resource, and the read-back check of the test registers.
#include <gtest/gtest.h>
#include <tide/cli.h>

#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "atolreef_cib.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "support/fixture.h"
#include "support/mode_cli.h"

using tide::test::Capture;

namespace {

class BaseCli : public tide::test::ModeCli {
protected:
    BaseCli() : ModeCli("base", true) {}
    bool has(const char *text) const { return said(text); }
};

TEST_F(BaseCli, AnOperatorWritesShowsAndClearsAnEntry)
{
    ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, 1, CSL_TCAM_MODE_160), 0);
    // tid 4 (bits 159..156) and smac 0x0000AABBCCDD (bits 71..24), all cared for.
    ASSERT_EQ(run("tcam set-key 0x40000000000000000000000000aabbccdd000000"), 0) << out_;
    ASSERT_EQ(run("tcam set-mask 0xf000000000000000000000ffffffffffff000000"), 0) << out_;
    ASSERT_EQ(run("tcam set-ad 0x0000000000000000002a000"), SHR_E_PARAM) << out_; // odd number of digits
    ASSERT_EQ(run("tcam set-ad 0x00000000000000000002a000"), 0) << out_;
    ASSERT_EQ(run("tcam write name iacl_tcam_iacl_160_l2_key index 0x105"), 0) << out_;
    EXPECT_TRUE(has("Add tcam entry Success!")) << out_;
    tide_sim_tcam_row r{};
    ASSERT_EQ(tide_sim_tcam_row_get(0, 1, 5, &r), 0);
    EXPECT_EQ(r.valid, 1u);
    EXPECT_EQ(r.data[4], 0x40000000u);
    EXPECT_EQ(r.data[0], 0xDD000000u); // smac from bit 24 on
    EXPECT_EQ(r.data[1], 0x00AABBCCu);
    EXPECT_EQ(r.action[0], 0x2A000u);

    ASSERT_EQ(run("tcam read name iacl_tcam_iacl_160_l2_key index 261"), 0) << out_;
    EXPECT_TRUE(has("Key of block 1 entry 5:")) << out_;
    EXPECT_TRUE(has("Mask of block 1 entry 5:"));
    EXPECT_TRUE(has("Ad of block 1 entry 5:"));
    EXPECT_TRUE(has("smac")) << out_;
    EXPECT_TRUE(has("aabbccdd")) << out_;
    EXPECT_TRUE(has("Valid of block 1 entry 5: 1"));

    ASSERT_EQ(run("clear tcam name IACL_TCAM_IACL_160_L2_KEY index 261"), 0) << out_;
    ASSERT_EQ(tide_sim_tcam_row_get(0, 1, 5, &r), 0);
    EXPECT_EQ(r.valid, 0u);
}

TEST_F(BaseCli, BadNamesAndIndexesAreRefusedWithTheirLines)
{
    EXPECT_EQ(run("tcam write name no_such_key index 1"), SHR_E_NOT_FOUND);
    EXPECT_TRUE(has("ERR: tcam tab no_such_key not found")) << out_;
    EXPECT_EQ(run("tcam read name iacl_tcam_iacl_160_l2_key index 4096"), SHR_E_FIELD_OVERFLOW);
    EXPECT_TRUE(has("ERR: addr must less than 4096")) << out_;
    EXPECT_EQ(run("clear tcam name iacl_tcam_iacl_160_l2_key index many"), SHR_E_PARAM);
    EXPECT_EQ(run("tcam write name tti_tcam_my_station_key index 1"), SHR_E_PARAM);
    EXPECT_TRUE(has("call base_api_tcam_add failed")) << out_;
    EXPECT_EQ(base_api_tcam_add(0, "iacl_tcam_iacl_160_l2_key", 1, nullptr), SHR_E_PARAM);
    EXPECT_EQ(base_api_tcam_del(0, nullptr, 1), SHR_E_PARAM);
    EXPECT_EQ(base_api_tcam_show(4, "iacl_tcam_iacl_160_l2_key", 1), SHR_E_UNIT);
}

TEST_F(BaseCli, TheSummaryAndTheResourceShowWhatTheChipHas)
{
    ASSERT_EQ(run("show tcam summary"), 0) << out_;
    EXPECT_TRUE(has("iacl_tcam_iacl_160_l2_key")) << out_;
    EXPECT_TRUE(has("159:156=4")) << out_;
    ASSERT_EQ(csl_reef_tcam_utils_block_alloc(0, CSL_TCAM_UTILS_SPA, 10), 0);
    ASSERT_EQ(run("show tcam-mgmt resource"), 0) << out_;
    // Blocks 0 and 1 are the VLAN TCAM spaces of hardware init.
    EXPECT_TRUE(has("TCAM software resource: total 16  fixed 0  flexible 16  used 3")) << out_;
    EXPECT_TRUE(has("vt-160")) << out_;
    EXPECT_TRUE(has("spa")) << out_;
    EXPECT_TRUE(has("tcamblock_cfg3 spa, eacl-s        0x0004")) << out_;
}

TEST_F(BaseCli, TheModuleDumpShowsTheTcamAloneByItsMaskBit)
{
    Capture::clear();
    ASSERT_EQ(base_api_chip_module_cnt_show(0, "all", nullptr, 0x4000000, 0, 0), 0);
    const std::string out = Capture::output();
    EXPECT_NE(out.find("tcam block 15: 128 rows of 80 bits"), std::string::npos) << out;
    EXPECT_EQ(out.find("[ cib_lsw_hreg ]"), std::string::npos) << out; // no module of the catalogue
}

TEST_F(BaseCli, ThePlaneCheckFindsABrokenTestRegister)
{
    ASSERT_EQ(run("plane check"), 0) << out_;
    EXPECT_TRUE(has("plane check: pass")) << out_;
    ASSERT_EQ(tide_sim_stuck_bit_set(0, 4, atolreef_cib_pa_test_reg_reg.addr[0], 0, 1), 0);
    EXPECT_EQ(run("plane check"), SHR_E_TIMEOUT);
    EXPECT_TRUE(has("plane check: fail")) << out_;
    EXPECT_TRUE(Capture::has("pa_test_reg")); // the register that failed
    base_test_cfg cfg = {1, 0};
    EXPECT_EQ(base_api_control_get(0, &cfg), SHR_E_PARAM);
    EXPECT_EQ(base_api_control_get(0, nullptr), SHR_E_NULL_PTR);
}

} // namespace
