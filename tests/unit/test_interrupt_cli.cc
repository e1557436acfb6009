// The `interrupt` mode of the shell and the interrupt commands of the
// `debug` mode on a chip of the model, line by line as an operator types
// them.
#include <gtest/gtest.h>
#include <tide/cli.h>
#include <tide/interrupt.h>

#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "support/fixture.h"
#include "support/mode_cli.h"
#include "support/wait.h"

using tide::test::Capture;

namespace {

class IntrCli : public tide::test::ModeCli {
protected:
    IntrCli() : ModeCli("interrupt", true) {}
    u32 served(u32 module, u32 subid, u32 type)
    {
        u32 n = 0;
        EXPECT_EQ(interrupt_api_stats_get(0, {module, subid}, {type, 0}, &n), 0);
        return n;
    }
};

TEST_F(IntrCli, AnOperatorEnablesWatchesAndClearsInterrupts)
{
    ASSERT_EQ(run("show interrupt support-module"), 0) << out_;
    EXPECT_TRUE(said("  43               arl")) << out_;
    ASSERT_EQ(run("show interrupt base-info module arl"), 0) << out_;
    EXPECT_TRUE(said("  Module name: arl")) << out_;
    EXPECT_TRUE(said("lrn_event")) << out_;

    // Raised with everything masked: the status shows, nothing is served.
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_ARL, 0, 2, 0), 0);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_MAC_PORT, 0, 1, 9), 0);
    ASSERT_EQ(run("show interrupt status module arl sub-id 0 intr-id all non-zero"), 0) << out_;
    EXPECT_TRUE(said("age_fifo_ovf")) << out_;
    EXPECT_FALSE(said("lrn_event")) << out_;
    ASSERT_EQ(run("show interrupt status module 17 sub-id all intr-id 1"), 0) << out_;
    EXPECT_TRUE(said("0x00000001  0x00000000  local_fault_int")) << out_; // set in one of the 28 instances
    ASSERT_EQ(run("clear interrupt module mac_port sub-id 0 intr-id all multi-addr 9"), 0) << out_;
    ASSERT_EQ(run("show interrupt status module mac_port sub-id 0 intr-id all non-zero"), 0) << out_;
    EXPECT_FALSE(said("local_fault_int")) << out_;

    // Enabled: the thread serves the pending status, the counts show it.
    ASSERT_EQ(run("interrupt enable module all sub-id all intr-id all"), 0) << out_;
    ASSERT_TRUE(tide_test::eventually([&] { return served(INTR_MOD_ARL, 0, 2) == 1; }));
    ASSERT_EQ(run("show interrupt stats module arl non-zero"), 0) << out_;
    EXPECT_TRUE(said("age_fifo_ovf")) << out_;
    EXPECT_FALSE(said("lrn_event")) << out_;
    ASSERT_EQ(run("show interrupt stats module arl non-zero clear"), 0) << out_;
    EXPECT_EQ(served(INTR_MOD_ARL, 0, 2), 0u);
    ASSERT_EQ(run("interrupt disable module arl sub-id 0 intr-id 2 multi-addr all"), 0) << out_;
    u32 mask = 1;
    ASSERT_EQ(interrupt_api_mask_get(0, {INTR_MOD_ARL, 0}, {2, 0}, &mask), 0);
    EXPECT_EQ(mask, 0u);
}

TEST_F(IntrCli, EccDetailsDebugRegistersAndTheDefaultAction)
{
    ASSERT_EQ(run("show interrupt ecc default action"), 0);
    EXPECT_TRUE(said("disable")) << out_;
    ASSERT_EQ(run("interrupt ecc default action enable"), 0);
    ASSERT_EQ(run("show interrupt ecc default action"), 0);
    EXPECT_TRUE(said("enable")) << out_;

    const tide_sim_ecc_error e = {INTR_MOD_IPRO, 0, 1, 0, INTR_ECC_NOTICE | INTR_ECC_SINGLE_BIT, 12, 0};
    ASSERT_EQ(tide_sim_ecc_inject(0, &e), 0);
    ASSERT_EQ(run("show interrupt ecc module ipro sub-id all intr-id all non-zero"), 0) << out_;
    EXPECT_TRUE(said("   Subid  Intr ID  ECC Reg Addr    ECC Reg Data    ECC Type    Table ID")) << out_;
    EXPECT_TRUE(said("3(DIRECT)")) << out_;
    EXPECT_TRUE(said("   (Table ECC Type: bit0:notice  bit1:single bit err  bit2:multi bit err)")) << out_;
    ASSERT_EQ(run("show interrupt ecc module acl_core sub-id 2 intr-id 0"), 0) << out_;
    EXPECT_TRUE(said("0(TCAM)")) << out_;

    ASSERT_EQ(run("show interrupt err-debug module arl sub-id 0 intr-id 0"), 0) << out_;
    EXPECT_TRUE(said("cpuop_cmd_err")) << out_;
}

TEST_F(IntrCli, BadWordsAreNamed)
{
    EXPECT_EQ(run("show interrupt base-info module nosuch"), SHR_E_PARAM);
    EXPECT_TRUE(said("Parameter 'nosuch' is invalid!")) << out_;
    EXPECT_EQ(run("show interrupt status module arl sub-id 1 intr-id all"), SHR_E_PARAM);
    EXPECT_TRUE(said("call interrupt_api_onesubid_types_get failed")) << out_;
    EXPECT_EQ(run("show interrupt status module arl sub-id 0 intr-id 30"), SHR_E_PARAM);
    EXPECT_TRUE(said("intr-id 30 is invalid")) << out_;
    EXPECT_EQ(run("clear interrupt module arl sub-id 0 intr-id 0 multi-addr 3"), SHR_E_PARAM);
    EXPECT_TRUE(said("call interrupt_api_clear failed")) << out_;
}

TEST_F(IntrCli, TheDebugModeWatchesEveryType)
{
    ASSERT_EQ(run("debug"), 0);
    ASSERT_EQ(run("interrupt register callback all"), 0) << out_;
    EXPECT_TRUE(said("registered the debug callback of 903 interrupt types")) << out_;
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    Capture::clear();
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_PCS_AN, 0, 2, 30), 0);
    ASSERT_TRUE(tide_test::eventually([] { return Capture::has("interrupt served: module 23 subid 0 type 2 instance 30"); }));
    ASSERT_EQ(run("interrupt unregister callback module 23 sub-id 0 intr-id 2"), 0) << out_;
    ASSERT_EQ(run("interrupt sim-mode raise-once"), 0) << out_;
    EXPECT_EQ(run("interrupt register callback module 1 sub-id 0 intr-id 0"), SHR_E_PARAM);
    EXPECT_TRUE(said("call interrupt_api_callback_register failed")) << out_;
}

} // namespace
