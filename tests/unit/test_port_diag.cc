// A port's diagnostics on the chip model through the SDK: the result of the
// recovered-clock check and what the SerDes watchdog makes of it, a
// drifting clock's alarms and link, and the alarm report with the frame
// counters along a port's path, their clears, its sections and its
// refusals, also through the shell.
#include <gtest/gtest.h>
#include <tide/cli.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/driver/port/csl_atolreef_port_int.h"
#include "dpl/reef/port/dpl_reef_port.h"
#include "support/cli_lines.h"
#include "support/mode_cli.h"
#include "support/fixture.h"
#include "support/front_ports.h"
#include "support/vlan_ports.h"
#include "support/wait.h"

using tide::test::Capture;

namespace {

constexpr uint32_t kFront = 0x0FFFFFFF;
// Port 24 is alone on MAG 4 (SGMII), port 3 one of four on MAG 0 (QSGMII).
constexpr uint32_t kSolo = 24;
constexpr uint32_t kSoloMag = 4;

std::vector<uint8_t> _broadcast()
{
    std::vector<uint8_t> f(6, 0xFF);
    for (uint8_t b : {0x02, 0x00, 0x00, 0x00, 0x00, 0x01, 0x08, 0x00}) {
        f.push_back(b);
    }
    f.resize(60, 0x5A);
    return f;
}

// The alarm report of a port.
std::string _report(uint32_t port, uint32_t clear = 0)
{
    std::vector<char> text(8192);
    port_info_buff b{text.data(), static_cast<uint32_t>(text.size()), 0};
    EXPECT_EQ(port_api_alm_info_get(0, port, clear, &b), 0);
    return std::string(text.data(), b.used);
}

// The value after `name` on its line of a report, -1 without one.
long _value(const std::string &report, const std::string &name)
{
    const size_t at = report.find(" " + name + " ");
    return at == std::string::npos ? -1 : strtol(report.c_str() + at + name.size() + 1, nullptr, 10);
}

class PortDiag : public tide::test::SimChips {
protected:
    PortDiag() : SimChips(1, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        up_chip(0);
        ASSERT_EQ(tide_sim_mac_gating_set(0, 1), 0);
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, kFront), 0);
        ASSERT_EQ(tide::test::front_ports_up(0), 0);
        ASSERT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 3) && tide::test::link_up(0, 0) && tide::test::link_up(0, kSolo); }));
    }
    static port_clk_delta delta(uint32_t port)
    {
        port_clk_delta d{9, 9, 9, 9};
        EXPECT_EQ(port_api_clk_delta_get(0, port, &d), 0);
        return d;
    }
    // Injects `n` broadcast frames by `port` and waits until the model
    // took them all in.
    static void burst(uint32_t port, uint32_t n)
    {
        tide_sim_port_stats before{};
        ASSERT_EQ(tide_sim_port_stats_get(0, port, &before), 0);
        const std::vector<uint8_t> f = _broadcast();
        for (uint32_t i = 0; i < n; i++) {
            ASSERT_EQ(tide_sim_packet_inject(0, port, f.data(), static_cast<uint32_t>(f.size())), 0);
        }
        tide_sim_port_stats now{};
        ASSERT_TRUE(tide_test::eventually([&] {
            return tide_sim_port_stats_get(0, port, &now) == 0 && now.rx_frames >= before.rx_frames + n;
        }));
    }
};

// ---- the clock check ---------------------------------------------------------------------------

TEST_F(PortDiag, ALinkedPortsClockIsCleanAndTheWatchdogLeavesItsLaneAlone)
{
    for (uint32_t port : {0u, 3u, 13u, kSolo}) {
        const port_clk_delta d = delta(port);
        EXPECT_LE(d.rx_delta, 99u) << port;
        EXPECT_EQ(d.rx_sign, 0u) << port;
        EXPECT_EQ(d.tx_delta, 0u) << port;
    }
    // Down but with a clean clock: the watchdog stops at the delta.
    ASSERT_EQ(port_api_enable_set(0, kSolo, 0), 0);
    ASSERT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, kSolo); }));
    Capture::clear();
    EXPECT_EQ(dpl_reef_port_chk_sds_status(0, kSolo), 0);
    EXPECT_FALSE(Capture::has("lost its receive clock"));
    // A drift above 99 but within the check's allowance of 200: the link
    // holds, no alarm, but the watchdog restarts the lane of a down port.
    ASSERT_EQ(tide_sim_mac_clk_delta_set(0, kSoloMag, 1, 150, 0, 0), 0);
    const port_clk_delta d = delta(kSolo);
    EXPECT_EQ(d.rx_sign, 1u);
    EXPECT_EQ(d.rx_delta, 150u);
    EXPECT_EQ(_value(_report(kSolo), "rx_clk_lost"), 0);
    EXPECT_EQ(dpl_reef_port_chk_sds_status(0, kSolo), 0);
    EXPECT_TRUE(Capture::has("chip_id0 lport24 serdes4 lost its receive clock, resetting the lane"));
    ASSERT_EQ(port_api_enable_set(0, kSolo, 1), 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, kSolo); })) << tide::test::link_down_cause(0, kSolo);
}

TEST_F(PortDiag, ADriftBeyondTheAllowanceRaisesItsAlarmAndTakesTheLinkDown)
{
    ASSERT_EQ(tide_sim_mac_clk_delta_set(0, kSoloMag, 0, 300, 0, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, kSolo); }));
    EXPECT_EQ(tide::test::link_down_cause(0, kSolo), TIDE_SIM_MAC_DOWN_CLK_LOST);
    EXPECT_TRUE(tide::test::link_up(0, 3)) << "another MAG's lane keeps its clock";
    EXPECT_EQ(delta(kSolo).rx_delta, 300u);
    std::string r = _report(kSolo);
    EXPECT_EQ(_value(r, "rx_clk_lost"), 1) << r;
    EXPECT_EQ(_value(r, "tx_clk_lost"), 0) << r;
    EXPECT_EQ(_value(_report(3), "rx_clk_lost"), 0);
    // The transmit side alike; the report's clear takes both alarms back,
    // and they stay clear while the drift does not move.
    ASSERT_EQ(tide_sim_mac_clk_delta_set(0, kSoloMag, 0, 300, 1, 201), 0);
    r = _report(kSolo, 1);
    EXPECT_EQ(_value(r, "rx_clk_lost"), 1) << r;
    EXPECT_EQ(_value(r, "tx_clk_lost"), 1) << r;
    EXPECT_NE(r.find("tx_sign 1 tx_delta 201"), std::string::npos) << r;
    r = _report(kSolo);
    EXPECT_EQ(_value(r, "rx_clk_lost"), 0) << r;
    EXPECT_EQ(_value(r, "tx_clk_lost"), 0) << r;
    // Back within the allowance, the link returns.
    ASSERT_EQ(tide_sim_mac_clk_delta_set(0, kSoloMag, 0, 0, 0, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, kSolo); })) << tide::test::link_down_cause(0, kSolo);
    // Without err_down_en the alarm rises and the link stays.
    ASSERT_EQ(tide::port::atolreef::reg_update(0, cib_pcs_glb_clk_div_sel, kSoloMag,
                                               {{cib_f_clk_sds_rx_err_down_en, 0}, {cib_f_clk_sds_tx_err_down_en, 0}}),
              0);
    ASSERT_EQ(tide_sim_mac_clk_delta_set(0, kSoloMag, 0, 500, 0, 0), 0);
    EXPECT_EQ(_value(_report(kSolo), "rx_clk_lost"), 1);
    EXPECT_TRUE(tide::test::link_up(0, kSolo)) << tide::test::link_down_cause(0, kSolo);
}

TEST_F(PortDiag, ALaneWithNothingArrivingMeasuresTheWholeWindow)
{
    ASSERT_EQ(tide_sim_mac_endpoint_set(0, kSolo, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, kSolo); }));
    EXPECT_EQ(tide::test::link_down_cause(0, kSolo), TIDE_SIM_MAC_DOWN_NO_SIGNAL);
    const port_clk_delta d = delta(kSolo);
    EXPECT_EQ(d.rx_sign, 1u);
    EXPECT_EQ(d.rx_delta, 0xFFFFu);
    EXPECT_EQ(d.tx_delta, 0u);
    const std::string r = _report(kSolo);
    EXPECT_EQ(_value(r, "rx_clk_lost"), 1);
    EXPECT_NE(r.find("8b10b alm:\n  comma_det_st LOSS comma_chk_st LOSS\n  SDS_DOWN\n"), std::string::npos) << r;
    // Knob refusals.
    EXPECT_EQ(tide_sim_mac_clk_delta_set(0, 8, 0, 0, 0, 0), -4);
    EXPECT_EQ(tide_sim_mac_clk_delta_set(0, 0, 2, 0, 0, 0), -4);
    EXPECT_EQ(tide_sim_mac_clk_delta_set(0, 0, 0, 0x10000, 0, 0), -4);
}

TEST_F(PortDiag, EachCodingReportsItsStatesByName)
{
    // Port 24 alone on MAG 4 as 10GBASE_R, port 26 alone on MAG 5 as
    // 100BASE_FX.
    port_interface r10g{PORT_INTERFACE_10GBASE_R, 1};
    ASSERT_EQ(port_api_interface_set(0, kSolo, &r10g), 0);
    ASSERT_EQ(port_api_enable_set(0, kSolo, 1), 0);
    std::string r = _report(kSolo);
    EXPECT_NE(r.find("64b66b alm:\n  am_oh_sch_st INF LOCK\n  NORMAL\n"), std::string::npos) << r;
    ASSERT_EQ(tide_sim_mac_endpoint_set(0, kSolo, 0), 0);
    r = _report(kSolo);
    EXPECT_NE(r.find("64b66b alm:\n  am_oh_sch_st OOF UNLOCK\n  LOCAL_FAULT BLOCK_UNSYN SDS_DOWN\n"),
              std::string::npos)
        << r;
    port_interface fx{PORT_INTERFACE_100BASE_FX, 1};
    ASSERT_EQ(port_api_interface_set(0, 26, &fx), 0);
    ASSERT_EQ(port_api_enable_set(0, 26, 1), 0);
    r = _report(26);
    EXPECT_NE(r.find("4b5b alm:\n  rx_fsm_st RX_IDLE\n  NORMAL\n"), std::string::npos) << r;
}

// ---- the path counters -------------------------------------------------------------------------

const char *const kRxPath[] = {"pcs_glb_pkt_rx", "mag_glue_mac_rx", "mac_port_rxdat_out", "map_rx_macsec",
                               "mag_map_rx_mac"};
const char *const kTxPath[] = {"mag_map_tx_mac", "map_tx_macsec", "mac_port_txdat_in", "mag_glue_mac_tx",
                               "pcs_glb_pkt_tx"};

// Every SOP and EOP counter of a path reads `n`.
void _path_reads(const std::string &report, const char *const (&path)[5], long n)
{
    for (const char *stage : path) {
        EXPECT_EQ(_value(report, std::string(stage) + "_sop"), n) << stage << "\n" << report;
        EXPECT_EQ(_value(report, std::string(stage) + "_eop"), n) << stage << "\n" << report;
    }
}

TEST_F(PortDiag, ABurstCountsAtEveryStageOfBothPaths)
{
    constexpr uint32_t kBurst = 7;
    _path_reads(_report(3), kRxPath, 0);
    burst(3, kBurst);
    // Flooded: port 3 received, port 0 (same MAG) and port 24 sent.
    EXPECT_TRUE(tide_test::eventually([] { return _value(_report(0), "pcs_glb_pkt_tx_eop") == kBurst; }));
    EXPECT_TRUE(tide_test::eventually([] { return _value(_report(kSolo), "pcs_glb_pkt_tx_eop") == kBurst; }));
    const std::string in = _report(3);
    _path_reads(in, kRxPath, kBurst);
    _path_reads(in, kTxPath, 0);
    _path_reads(_report(0), kTxPath, kBurst);
    _path_reads(_report(0), kRxPath, 0);
    _path_reads(_report(kSolo), kTxPath, kBurst);
    // Bad FCS: through the PCS and glue, then the MAC's error counter.
    ASSERT_EQ(tide_sim_mac_crc_error_set(0, 3, 2), 0);
    burst(3, 2);
    std::string r = _report(3);
    EXPECT_EQ(_value(r, "pcs_glb_pkt_rx_sop"), kBurst + 2) << r;
    EXPECT_EQ(_value(r, "mag_glue_mac_rx_eop"), kBurst + 2) << r;
    EXPECT_EQ(_value(r, "mac_port_rxdat_out_sop"), kBurst) << r;
    EXPECT_EQ(_value(r, "mac_port_rx_err"), 2) << r;
    EXPECT_EQ(_value(r, "mac_port_rx_drop"), 0) << r;
    // A port that does not receive drops at its MAC; one that does not
    // send drops what the others flood to it.
    ASSERT_EQ(port_api_tx_rx_enable_set(0, 3, PORT_ENABLE_RX, 0), 0);
    ASSERT_EQ(port_api_enable_set(0, 0, 0), 0);
    ASSERT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, 0); }));
    burst(3, 1);
    burst(kSolo, 1);
    EXPECT_EQ(_value(_report(3), "mac_port_rx_drop"), 1);
    EXPECT_EQ(_value(_report(3), "mac_port_rxdat_out_sop"), kBurst);
    EXPECT_TRUE(tide_test::eventually([] { return _value(_report(0), "mac_port_tx_drop") == 1; }));
    EXPECT_EQ(_value(_report(0), "pcs_glb_pkt_tx_sop"), kBurst);
}

TEST_F(PortDiag, TheReportsClearAndAPortResetZeroTheCounters)
{
    burst(3, 4);
    ASSERT_TRUE(tide_test::eventually([] { return _value(_report(0), "pcs_glb_pkt_tx_sop") == 4; }));
    // The clear reads first, then zeroes; port 3's MAG neighbour keeps its
    // counts.
    _path_reads(_report(3, 1), kRxPath, 4);
    _path_reads(_report(3), kRxPath, 0);
    _path_reads(_report(0), kTxPath, 4);
    // They count again after a clear.
    burst(3, 2);
    _path_reads(_report(3), kRxPath, 2);
    // A port reset holds the clears; released, the counters start at 0.
    ASSERT_EQ(port_api_reset(0, 3, 1), 0);
    _path_reads(_report(3), kRxPath, 0);
    burst(3, 1);
    ASSERT_EQ(port_api_reset(0, 3, 0), 0);
    _path_reads(_report(3), kRxPath, 0);
    EXPECT_EQ(_value(_report(3), "mac_port_rx_drop"), 0);
    ASSERT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 3); })) << tide::test::link_down_cause(0, 3);
    burst(3, 1);
    _path_reads(_report(3), kRxPath, 1);
}

// ---- the report: sections, the shell, refusals -------------------------------------------------

TEST_F(PortDiag, TheReportsSectionsInOrder)
{
    const std::string r = _report(3);
    const char *const sections[] = {"buf_alm\n", "inter-cnt\n", "8b10b alm:\n", "clk-delta\n", "clk-delta-alarm\n"};
    size_t last = 0;
    for (const char *s : sections) {
        const size_t at = r.find(s, last);
        ASSERT_NE(at, std::string::npos) << s << "\n" << r;
        EXPECT_TRUE(at == 0 || r[at - 1] == '\n') << s;
        last = at + 1;
    }
    // One line per counter between inter-cnt and the coding's section,
    // transmit first, each its name then its count.
    const size_t from = r.find("inter-cnt\n") + 10, to = r.find("8b10b alm:");
    const std::string counters = r.substr(from, to - from);
    EXPECT_EQ(std::count(counters.begin(), counters.end(), '\n'), 24);
    EXPECT_EQ(counters.rfind("  mag_map_tx_mac_sop       0\n  mag_map_tx_mac_eop       0\n", 0), 0u) << counters;
    EXPECT_LT(counters.find("pcs_glb_pkt_tx_sop"), counters.find("pcs_glb_pkt_rx_sop"));
    EXPECT_NE(r.find("8b10b alm:\n  comma_det_st ACK4 comma_chk_st ACK4\n  NORMAL\n"), std::string::npos) << r;
    EXPECT_NE(r.find("clk-delta\n  rx_sign 0 rx_delta 0 tx_sign 0 tx_delta 0\n"), std::string::npos) << r;
    EXPECT_NE(r.find("clk-delta-alarm\n  rx_clk_lost 0 tx_clk_lost 0\n"), std::string::npos) << r;
}

TEST_F(PortDiag, BadInputIsRefusedWithItsLine)
{
    char text[64];
    port_info_buff b{text, sizeof(text), 0};
    Capture::clear();
    EXPECT_EQ(port_api_alm_info_get(0, 3, 0, nullptr), -20);
    EXPECT_TRUE(Capture::has("chip_id0 input para is NULL pointer"));
    port_info_buff no_text{nullptr, 64, 0};
    Capture::clear();
    EXPECT_EQ(port_api_alm_info_get(0, 3, 0, &no_text), -20);
    EXPECT_TRUE(Capture::has("chip_id0 input para is NULL pointer"));
    for (port_info_buff full : {port_info_buff{text, 0, 0}, port_info_buff{text, 8, 8}}) {
        Capture::clear();
        EXPECT_EQ(port_api_alm_info_get(0, 3, 0, &full), -4);
        EXPECT_EQ(port_api_basic_info_get(0, 3, &full), -4);
        EXPECT_TRUE(Capture::has("chip_id0 lport3 info buffer len")) << full.len;
    }
    Capture::clear();
    EXPECT_EQ(port_api_clk_delta_get(0, 3, nullptr), -20);
    EXPECT_TRUE(Capture::has("chip_id0 input para is NULL pointer"));
    Capture::clear();
    EXPECT_EQ(port_api_alm_info_get(0, 29, 0, &b), -24);
    EXPECT_EQ(port_api_clk_delta_get(0, 29, nullptr), -24);
    EXPECT_TRUE(Capture::has("lport: 29 dose not exist"));
    EXPECT_EQ(b.used, 0u);
    // A short buffer takes what fits, and the clear still happens.
    burst(3, 1);
    text[10] = 'X';
    port_info_buff small{text, 10, 0};
    EXPECT_EQ(port_api_alm_info_get(0, 3, 1, &small), 0);
    EXPECT_EQ(small.used, 9u);
    EXPECT_EQ(std::string(text), "buf_alm\n ");
    EXPECT_EQ(text[10], 'X');
    _path_reads(_report(3), kRxPath, 0);
}

class PortDiagShell : public tide::test::ShellModeOver<PortDiag> {
protected:
    PortDiagShell() : ShellModeOver("port") {}
};

TEST_F(PortDiagShell, TheAlarmReportAndItsClearWord)
{
    burst(3, 3);
    EXPECT_EQ(run("show port 3 alm-info"), 0);
    EXPECT_TRUE(said(" port 3 alarms\nbuf_alm\n")) << out_;
    EXPECT_EQ(_value(out_, "mag_map_rx_mac_eop"), 3) << out_;
    EXPECT_EQ(run("show port 3 alm-info clear"), 0);
    EXPECT_EQ(_value(out_, "mag_map_rx_mac_eop"), 3) << out_;
    EXPECT_EQ(run("show port 3 alm-info"), 0);
    EXPECT_EQ(_value(out_, "mag_map_rx_mac_eop"), 0) << out_;
    EXPECT_EQ(run("show port 3 cfg-info"), 0);
    EXPECT_TRUE(said(" clk-delta" + std::string(17, ' ') + ": rx 0, tx 0\n")) << out_;
}

} // namespace
