// The first commands of mode `common` and the terminal monitor command,
// run as an operator types them on a simulated chip.
#include <string>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "shared/shr_int.h"
#include "tests/support/cli_lines.h"
#include "tests/support/fixture.h"

using namespace tide::test;

namespace {

class CliCommon : public SimChips, public CliLines {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(run("common"), 0);
    }
    void TearDown() override
    {
        cli_ctree_free();
        g_cli_key_check = 1;
        SimChips::TearDown();
    }
};

TEST_F(CliCommon, TheKeyCheckSwitchAndTheChip)
{
    EXPECT_EQ(run("show cli-key-check"), 0);
    EXPECT_EQ(out_, " CLI key check : enable\nreturn OK\r\n");
    EXPECT_EQ(run("cli-key-check dis"), 0);
    EXPECT_EQ(g_cli_key_check, 0u);
    EXPECT_EQ(run("show cli-key-check"), 0);
    EXPECT_EQ(out_, " CLI key check : disable\nreturn OK\r\n");
    EXPECT_EQ(run("cli-key-check enable"), 0);
    EXPECT_EQ(g_cli_key_check, 1u);

    EXPECT_EQ(run("show chip"), 0);
    EXPECT_NE(out_.find(" chip name    : atolreef\n"), std::string::npos) << out_;
    EXPECT_NE(out_.find(" chip type    : 3\n"), std::string::npos);
    EXPECT_EQ(run("show chip", 2), -3);
    EXPECT_EQ(out_, "chip_id(2) is invalid\nCommand execute(errcode=-3)\r\n");
    EXPECT_EQ(run("show chip die-id"), -24);
    EXPECT_EQ(run("show mutex info"), 0);
}

TEST_F(CliCommon, LogSwitchesAndLevelsByModule)
{
    EXPECT_EQ(run("debug-log arl enable debug"), 0);
    EXPECT_EQ(g_shr_current_dk_enable[SHR_MOD_ARL], 1);
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_ARL), SHR_LOG_DEBUG);
    EXPECT_EQ(run("show debug-log arl"), 0);
    EXPECT_NE(out_.find(" ARL            enable   debug\n"), std::string::npos) << out_;
    // "pci" is the hardware layer's bus access; the names of the modules
    // are those of the log.
    EXPECT_EQ(run("debug-log pci enable warn"), 0);
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_HAL), SHR_LOG_WARN);
    EXPECT_EQ(run("debug-log reg_tab enable info"), 0);
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_REG_TAB), SHR_LOG_INFO);
    EXPECT_EQ(run("debug-log all disable"), 0);
    for (u32 id = 0; id < SHR_MODULE_COUNT; id++) {
        EXPECT_EQ(g_shr_current_dk_enable[id], 0) << id;
    }
    EXPECT_EQ(run("show debug-log all"), 0);
    EXPECT_NE(out_.find(" TOP            disable"), std::string::npos);
    EXPECT_EQ(run("debug-log all enable error"), 0);
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_TOP), SHR_LOG_ERROR);
    // Every module word of the command names a module.
    for (const char *word : {"pci", "l3", "intr", "arl", "port", "pkt", "dma", "phy", "linkscan", "counter", "vxlan",
                             "vlan", "stp", "reg_tab", "trunk", "tunnel", "qos", "rsm", "ecc", "trace", "init",
                             "serdes", "clk", "pa", "acl", "mcc", "prbs", "mirror", "stack", "flexe", "bfd", "oam",
                             "ptp", "tti", "macsec", "led", "pgc", "sflow", "storm", "dos", "isolation", "tas",
                             "dygasp", "keepalive", "common", "misc", "channelvlan", "multicast", "top", "hal"}) {
        EXPECT_EQ(run((std::string("show debug-log ") + word).c_str()), 0) << word << out_;
    }
}

TEST_F(CliCommon, TheChipGoesDownAndComesBackUp)
{
    EXPECT_EQ(run("sdk deinit"), 0);
    EXPECT_EQ(out_, "[chip deinit]............[OK]\r\n[soft deinit]............[OK]\r\nreturn OK\r\n");
    EXPECT_EQ(shr_chip_valid_get(0), 0u);
    EXPECT_EQ(run("sdk init"), 0) << out_;
    EXPECT_EQ(out_, "[soft init]............[OK]\r\n[chip init]............[OK]\r\nreturn OK\r\n");
    EXPECT_EQ(shr_chip_valid_get(0), 1u);
    EXPECT_EQ(run("show chip-id bus-number mapping"), 0);
    EXPECT_NE(out_.find(" 1            0\n"), std::string::npos) << out_;
    EXPECT_EQ(run("show chip-id bus-number mapping 1"), 0);
    EXPECT_NE(out_.find(" 1            0\n"), std::string::npos) << out_;
    EXPECT_EQ(run("show chip-id bus-number mapping 9"), -1);
    EXPECT_NE(out_.find(" call init_api_chip_id_get_by_bus_number failed, "), std::string::npos) << out_;
}

TEST_F(CliCommon, TheTerminalMonitorIsForShellClients)
{
    EXPECT_EQ(run("exit"), 0);
    EXPECT_EQ(run("terminal monitor enable"), -11);
    EXPECT_EQ(out_, "terminal monitor is for shell clients\nCommand execute(errcode=-11)\r\n");
    EXPECT_EQ(run("terminal monitor disable"), 0);
}

TEST_F(CliCommon, ChipIdChecksTheChipAndSetsTheShellsChip)
{
    EXPECT_EQ(run("chip-id 0"), 0);
    EXPECT_EQ(cli_chip_id_get(), 0u);
    EXPECT_EQ(run("chip-id 3"), -3);
    EXPECT_EQ(out_, "chip_id 3 invalid\nCommand execute(errcode=-3)\r\n");
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config/common)#");
}

} // namespace
