// The shell's "port" mode on a chip brought up on the model: each command
// line reaches the port service with the values its words stand for (seen
// through a recording port driver), refuses bad input before any call,
// stops a port list at the first failure, and shows what the reads answer.
// Also the records as a client downloads them, and one run through the
// server.
#include <gtest/gtest.h>
#include <tide/cli.h>

#include <string>
#include <unistd.h>
#include <vector>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "support/cli_lines.h"
#include "support/fixture.h"
#include "support/port_fake.h"
#include "tests/support/cli_catalogue.h"
#include "tests/support/shell_client.h"
#include "tests/support/temp_dir.h"

using namespace tide::test::port_fake;

namespace {

// The recording driver, with the chip's own port configuration, by which
// the shell turns port names into ports.
const csl_port_driver_t g_shell_fake = [] {
    csl_port_driver_t t = g_fake;
    t.port_config_get = g_csl_port_atolreef.port_config_get;
    return t;
}();

// The chip's ports stay as hardware init leaves them (no mapping mode, no
// interface type): the shell meets a recording driver, or the real one
// before any port exists.
class CliPort : public tide::test::SimChips, public tide::test::CliLines {
protected:
    CliPort() { ports_ = false; }
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(cli_shell_mode_set(0, 1), 0);
        ASSERT_EQ(run("port"), 0);
        ASSERT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config/port)#");
        fake_port_driver(0, &g_shell_fake);
    }
    void TearDown() override
    {
        cli_view_config(0);
        cli_ctree_free();
        cli_shell_mode_set(0, 0);
        g_cli_key_check = 1;
        fake_port_reset();
        SimChips::TearDown();
    }

    // Only ports first to last are in use.
    static void in_use(u32 first, u32 last)
    {
        csl_port_control_get(0)->port_config.pbmp[PORT_CONFIG_ACTIVE] = tide::port::pbmp_range(first, last);
    }
};

using Texts = std::vector<std::string>;

TEST_F(CliPort, SettingsReachTheServiceWithTheValuesOfTheirWords)
{
    g_answer["advert_ability_get"] = 32; // every field of the record read back
    g_answer["serdes_id_get"] = 2;        // a lane that runs at 10G as well
    struct Case {
        const char *line;
        Texts calls;
    } cases[] = {
        {"port 3 speed 1G", {"port_speed_set 3 1000"}},
        {"port 3,5 sp 2g5", {"port_speed_set 3 2500", "port_speed_set 5 2500"}},
        {"port 1-3 power-up", {"port_enable_set 1 1", "port_enable_set 2 1", "port_enable_set 3 1"}},
        {"port 4 power-down", {"port_enable_set 4 0"}},
        {"port 4 autoneg-en dis", {"pcs_an_enable_set 4 0"}},
        {"port 4 autoneg-restart", {"autoneg_restart_set 4"}},
        {"port 4 duplex half", {"port_duplex_set 4 0"}},
        {"port 4 tx-rx-enable dir rx enable", {"port_tx_rx_enable_set 4 1 1"}},
        {"port 4 tx-rx-enable dir all disable", {"port_tx_rx_enable_set 4 2 0"}},
        {"port 4 pause rx-pause-err enable tx-pause disable", {"mac_pause_set 4 3 1", "mac_pause_set 4 0 0"}},
        {"port 4 pause tx-pause-resp en", {"mac_pause_set 4 2 1"}},
        {"port 4 vlan-pause rx-vlan-pause enable", {"vlan_pause_set 4 1 1"}},
        {"port 4 crc-cfg tx-crc-check enable rx-crc disable", {"port_crc_set 4 2 1", "port_crc_set 4 1 0"}},
        {"port 4 port-ctrl rx-short-err enable", {"cfg_control_set 4 4 1"}},
        {"port 4 port-ctrl padding-en disable", {"cfg_control_set 4 0 0"}},
        {"port 4 pause-smac 00:1A:2b:3c:4d:5e", {"mac_pause_smac_set 4 00:1a:2b:3c:4d:5e"}},
        {"port 4 frame-len dir rx max-frame 9000 min-frame 0x40", {"max_frame_set 4 1 9000", "min_frame_set 4 1 64"}},
        {"port 4 frame-len dir tx min-frame 60", {"min_frame_set 4 0 60"}},
        {"port 4 ifg-cfg dic enable ifg-value 12", {"dic_mode_set 4 1", "ifg_set 4 12"}},
        {"port 4 loop-mode pcs-outer transparent enable", {"port_loopback_set 4 {3,1}"}},
        {"port 4 loop-mode mac-inner", {"port_loopback_set 4 {0,0}"}},
        {"port 4 link-mode force-mode up", {"port_force_link_set 4 1 1"}},
        {"port 4 link-mode force-mode down", {"port_force_link_set 4 1 0"}},
        {"port 4 link-mode normal-mode", {"port_force_link_set 4 0 0"}},
        {"port 4 reset enable", {"port_reset_set 4 1"}},
        {"port 4 reset disable", {"port_reset_set 4 0"}},
        // The port advertises the one speed in the one duplex; the rest of
        // the record stays as read, the pause bits too unless given.
        {"port 4 autoneg-ability speed 100M duplex half pause symm-pause",
         {"advert_ability_get 4", "advert_ability_set 4 {2,0,32,32,16,32}"}},
        {"port 4 autoneg-ability speed 10G duplex full",
         {"advert_ability_get 4", "advert_ability_set 4 {0,32,32,32,32,32}"}},
        // A port that stays in use goes back to normal link mode.
        {"port 0 protocol-cfg type sgmii_4p",
         {"serdes_id_get 0", "port_interface_type_set 0 {4,4}", "port_force_link_set 0 0 0"}},
        {"port 2 protocol-cfg type 10G-dxgmii",
         {"serdes_id_get 2", "port_interface_type_set 2 {19,2}", "port_force_link_set 2 0 0"}},
        {"port 8 protocol-cfg type mmac port-number 2",
         {"serdes_id_get 8", "port_interface_type_set 8 {13,2}", "port_force_link_set 8 0 0"}},
        {"port mapping-mode 1", {"mapping_mode_set 0 1"}},
        {"port transmit-path normal-mode", {"port_transmit_path_set 0 0 0"}},
        {"port transmit-path master-slave-mode hw-select", {"port_transmit_path_set 1 0 0"}},
        {"port transmit-path master-slave-mode sw-select slave-path", {"port_transmit_path_set 1 1 1"}},
    };
    for (const Case &c : cases) {
        calls_clear();
        EXPECT_EQ(run(c.line), 0) << c.line << "\n" << out_;
        EXPECT_EQ(out_, "return OK\r\n") << c.line;
        EXPECT_EQ(texts(), c.calls) << c.line;
    }
}

TEST_F(CliPort, BadInputAndFailuresStopBeforeOrAtTheCallThatFailed)
{
    in_use(0, 27);
    struct Case {
        const char *line;
        i32 rc;
        const char *said;
        Texts calls;
    } cases[] = {
        {"port 99 speed 1G", -7, " chip_id: 0 input port: 99 convert to logical port failed.(errmsg = Entry not found)",
         {}},
        {"port 2,99 power-up", -7, "input port: 99 convert", {"port_enable_set 2 1"}},
        {"port 3-1 power-up", -4, "pport_list: 3-1 is invalid!\n", {}},
        {"port 3 speed 25G", -24, "Key [25G] Not Support for chip[atolreef]!\n", {}},
        {"port 3 autoneg-ability speed 400G duplex full", -24, "Key [400G] Not Support", {}},
        {"port 4 frame-len dir tx max-frame big", -4, "Input Non-Valid-Number String(big)", {}},
        {"port 4 ifg-cfg ifg-value 300", -4, " para 300 is out of range 0~255.", {}},
        {"port 4 protocol-cfg type flexe port-number 256", -4, "out of range", {}},
        {"port mapping-mode one", -4, "Input Non-Valid-Number String(one)", {}},
        {"linkscan enable maybe", -4, " para maybe is invalid.", {}},
        // Inner ports are never in use; they go by their names.
        {"port 30 power-up", -24, " port 30: call port_api_enable_set failed, Not Support\n", {}},
        {"port 3,cpu_port autoneg-restart", -24, " port cpu_port: call port_api_autoneg_restart failed",
         {"autoneg_restart_set 3"}},
        // The reef chips have no link scan.
        {"linkscan enable 1", -24, " call linkscan_api_enable_set failed, Not Support\n", {}},
        {"show linkscan enable", -24, " call linkscan_api_enable_get failed, Not Support\n", {}},
        {"linkscan mode ports 1,2 hw", -24, " port 1: call linkscan_api_mode_set failed", {}},
        {"show linkscan ports 2", -24, " port 2: call linkscan_api_mode_get failed", {}},
    };
    for (const Case &c : cases) {
        calls_clear();
        EXPECT_EQ(run(c.line), c.rc) << c.line;
        EXPECT_TRUE(said(c.said)) << c.line << "\n" << out_;
        EXPECT_TRUE(said("Command execute(errcode=" + std::to_string(c.rc) + ")")) << c.line;
        EXPECT_EQ(texts(), c.calls) << c.line;
    }

    // A chip that is not there, before any heading or call.
    for (const char *line : {"port 1 power-up", "show port 1 status", "show port cnt"}) {
        EXPECT_EQ(run(line, 2), -3) << line;
        EXPECT_EQ(out_, "chip_id(2) is invalid\nCommand execute(errcode=-3)\r\n") << line;
    }

    // A failing driver ends the list at that port; a read-change-write
    // writes nothing after a failed read.
    g_fake_rc = -11;
    calls_clear();
    EXPECT_EQ(run("port 1-3 power-up"), -11);
    EXPECT_TRUE(said(" port 1: call port_api_enable_set failed, ")) << out_;
    EXPECT_EQ(texts(), (Texts{"port_enable_set 1 1"}));
    calls_clear();
    EXPECT_EQ(run("port 1 autoneg-ability speed 1G duplex full"), -11);
    EXPECT_EQ(texts(), (Texts{"advert_ability_get 1"}));
    g_fake_rc = 0;

    // Without the keyword check the speed reaches the service, which
    // judges it; an ability bit it cannot have.
    ASSERT_EQ(run("common"), 0);
    ASSERT_EQ(run("cli-key-check disable"), 0);
    ASSERT_EQ(run("port"), 0);
    calls_clear();
    EXPECT_EQ(run("port 3 speed 25G"), 0);
    EXPECT_EQ(texts(), (Texts{"port_speed_set 3 25000"}));
    EXPECT_EQ(run("port 3 autoneg-ability speed 25G duplex full"), -4);
    EXPECT_TRUE(said(" speed 25G can not be advertised\n"));
}

TEST_F(CliPort, DisplaysShowWhatTheReadsAnswerAndADashForWhatIsNotThere)
{
    in_use(0, 3);
    g_answer = {{"port_enable_get", 1},      {"link_status_get", 1},      {"port_speed_get", 1000},
                {"port_duplex_get", 1},      {"pcs_an_enable_get", 0},    {"port_interface_type_get", 2},
                {"counter_get", 7},          {"port_force_link_get", 1},  {"mac_pause_smac_get", 0xaabbccddeeffu},
                {"port_loopback_get", 1},    {"mac_fault_status_get", 5}, {"port_transmit_path_get", 1},
                {"mapping_mode_get", 2},     {"advert_ability_get", 0x25}};
    const std::string heading = " port      interface        enable   link  speed   duplex  autoneg\n";
    const std::string row2 = " 2         SGMII            enable   up    1G      full    disable\n";
    EXPECT_EQ(run("show port 2 status"), 0);
    EXPECT_EQ(out_.rfind(heading, 0), 0u) << out_;
    EXPECT_TRUE(said(row2)) << out_;
    // Every front port; those not in use have nothing but their interface.
    EXPECT_EQ(run("show port status"), 0);
    EXPECT_TRUE(said(row2));
    EXPECT_TRUE(said(" 5         SGMII            -        -     -       -       -\n")) << out_;
    EXPECT_TRUE(said(" 27        SGMII ")) << out_;
    EXPECT_FALSE(said(" 28 "));

    calls_clear();
    EXPECT_EQ(run("show port 3 cnt clear"), 0);
    EXPECT_TRUE(said(" port 3 counters\n")) << out_;
    EXPECT_TRUE(said(" rx_total_pkt          : 7             tx_total_pkt          : 7\n")) << out_;
    EXPECT_TRUE(said(" rx_mtu_err            : 7\n"));
    EXPECT_EQ(texts().size(), PORT_MIB_ITEMS + 1);
    EXPECT_EQ(texts().back(), "port_counter_clean 3");
    // A port not in use shows dashes and has nothing to clear.
    calls_clear();
    tide::test::Capture::clear();
    EXPECT_EQ(run("show port 5 cnt clear"), 0);
    EXPECT_TRUE(said(" rx_total_pkt          : -             tx_total_pkt          : -\n")) << out_;
    EXPECT_TRUE(texts().empty());
    EXPECT_EQ(tide::test::Capture::count("lport: 5 dose not exist"), 1u); // one read tells
    calls_clear();
    EXPECT_EQ(run("show port cnt clear"), 0);
    EXPECT_TRUE(said(" 1         7             7             7             7             7             7\n")) << out_;
    EXPECT_TRUE(said(" 4         -             -")) << out_;
        EXPECT_EQ(texts().back(), "port_counter_clean 3");

    EXPECT_EQ(run("show port 1 cfg-info"), 0);
    for (const char *line : {" protocol-cfg type         : SGMII, port-number 1\n", " power                     : up\n",
                             " speed                     : 1G\n", " link-mode                 : force-mode up\n",
                             " loop-mode                 : mac-outer, transparent enable\n",
                             " pause-smac                : aa:bb:cc:dd:ee:ff\n",
                             " autoneg-ability           : full 10M,1G,10G, half 10M,1G,10G, pause tx-pause,pause,"
                             "both-pause\n",
                             " fault                     : LINK_INT&LOCAL_FAULT\n"}) {
        EXPECT_TRUE(said(line)) << line << out_;
    }

    EXPECT_EQ(run("show port transmit-path"), 0);
    EXPECT_TRUE(said(" transmit path : master-slave-mode sw-select slave-path\n")) << out_;
    EXPECT_EQ(run("show port mapping-mode"), 0);
    EXPECT_TRUE(said(" mapping mode : 2 (none loaded)\n")) << out_;
    EXPECT_EQ(run("show port basic-info"), 0);
    EXPECT_EQ(out_, "lport     interface       serdes_id mac             \nbasic_info_get of lport 0\n"
                    "basic_info_get of lport 1\nbasic_info_get of lport 2\nbasic_info_get of lport 3\nreturn OK\r\n");
    calls_clear();
    EXPECT_EQ(run("show port 3 alm-info clear"), 0);
    EXPECT_TRUE(said(" port 3 alarms\nalm_info_get of lport 3\n")) << out_;
    EXPECT_EQ(texts(), (Texts{"alm_info_get 3 1"}));
    // A display of one value fails with its call.
    EXPECT_EQ(run("show port 5 alm-info"), -24);
    EXPECT_TRUE(said(" port 5: call port_api_alm_info_get failed, Not Support\n"));

    // Any other failure of a read ends the display with its status.
    g_fake_rc = -11;
    EXPECT_EQ(run("show port 1 status"), -11);
    EXPECT_TRUE(said(" port 1: call port_api_interface_get failed, ")) << out_;
    EXPECT_FALSE(said(" 1         "));
}

// What an operator sees before a mapping mode gives the ports their MAGs.
TEST_F(CliPort, BeforeAMappingModeThePortsHaveNoMag)
{
    for (u32 lport = 0; lport < 32; lport++) {
        g_dpl_reef_port_control[0][lport].driver = csl_atolreef_port_driver_get();
    }
    in_use(0, 0);
    EXPECT_EQ(run("show port mapping-mode"), 0);
    EXPECT_EQ(out_, " mapping mode : 2 (none loaded)\nreturn OK\r\n");
    // No mapping mode: the port has no MAG yet.
    EXPECT_EQ(run("port 3 protocol-cfg type sgmii"), -24);
    EXPECT_TRUE(said(" port 3: call port_api_interface_set failed, Not Support\n")) << out_;
    // The driver refuses a port that no MAG holds, whatever the service thinks.
    EXPECT_EQ(run("port 0 speed 1G"), -4);
    EXPECT_TRUE(said(" port 0: call port_api_speed_set failed, Invalid parameter\n")) << out_;
    EXPECT_EQ(run("port 1 speed 1G"), -24);
}

TEST_F(CliPort, TheRecordsAsAClientDownloadsThemAndOneRunThroughTheServer)
{
    tide_test::TempDir dir;
    const std::string path = dir.file("shell.sock");
    ASSERT_EQ(cli_server_socket_path_set(path.c_str()), 0);
    ASSERT_EQ(cli_server_main(0), 0);
    {
        tide::test::WireClient client(path);
        ASSERT_TRUE(client.ok());
        ASSERT_TRUE(client.shake());
        const std::vector<tide::test::WireRecord> records = client.download();
        // The port mode's commands, as the catalogue lists them.
        std::vector<std::string> port_cmds, expected;
        for (const tide::test::WireRecord &r : records) {
            // One help line per word, in every record of the library.
            EXPECT_EQ(r.help.size(), tide::test::help_lines(r.cmd.c_str()).size()) << r.cmd;
            if (r.mode == 8 && (r.flags & (CLI_FLAG_VIEW | CLI_FLAG_GLOBAL)) == 0) {
                port_cmds.push_back(r.cmd);
            }
        }
        for (const tide::test::CatalogueCmd &c : tide::test::k_catalogue) {
            if (std::string(c.mode) == "port") {
                expected.emplace_back(c.cmd);
            }
        }
        EXPECT_EQ(port_cmds.size(), 34u);
        EXPECT_EQ(port_cmds, expected);

        std::string out;
        calls_clear();
        EXPECT_EQ(client.exec(expected[11], 8, {"6", "1G"}, &out), 0);
        EXPECT_EQ(texts(), (Texts{"port_speed_set 6 1000"}));
        out.clear();
        EXPECT_EQ(client.exec("show port WORD status", 8, {"6"}, &out), 0);
        EXPECT_EQ(out.rfind(" port      interface", 0), 0u) << out;
    }
    cli_server_wait(0);
}

} // namespace
