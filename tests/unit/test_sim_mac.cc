// The chip model's MAC side, driven through the chip's registers as a
// driver would: the 400 MHz input clock, the link of a port by every cause
// that takes it down, the glue modes and channels, cabled and plugged
// lanes, auto-negotiation against the partner's abilities, the link
// events, the MAC data path gate and the MIB counters.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tide/property.h>

#include "atolreef_cib.h"
#include "hal/hal_op/hal.h"
#include "support/fixture.h"
#include "support/vlan_ports.h"

using tide::test::SimChips;

namespace {

constexpr u32 kClkCtrl = 0x47030;
constexpr u32 kClkStatus = 0x47044;
constexpr u32 kPulse = 1u << 20;
constexpr u32 kLocked = 1u << 21;

u32 read_reg(u32 chip, u32 bar, u32 addr)
{
    u32 v = 0;
    EXPECT_EQ(hal_reg_read_32(chip, bar, addr, &v), 0);
    return v;
}

class SimMacClock : public SimChips {
protected:
    SimMacClock() : SimChips(1, 1) {}

    static void write3(u32 addr, u32 v) { ASSERT_EQ(hal_reg_write_32(0, 3, addr, v), 0); }
    // The driver's sequence: the divider, then a pulse of bit 20.
    static void pulse()
    {
        const u32 base = (read_reg(0, 3, kClkCtrl) & ~(0x1FFu | kPulse)) | 80u;
        write3(kClkCtrl, base);
        write3(kClkCtrl, base | kPulse);
        EXPECT_EQ(read_reg(0, 3, kClkStatus) & kLocked, 0u); // restarting
        write3(kClkCtrl, base);
    }
};

TEST_F(SimMacClock, LocksWhenThePulseEndsAndNotBefore)
{
    // The ports' bring-up has locked it; the rising edge of a pulse
    // restarts it, and while the pulse is held it stays unlocked.
    EXPECT_NE(read_reg(0, 3, kClkStatus) & kLocked, 0u);
    write3(kClkCtrl, 80 | kPulse);
    EXPECT_EQ(read_reg(0, 3, kClkStatus) & kLocked, 0u);
    write3(kClkCtrl, 80 | kPulse);
    EXPECT_EQ(read_reg(0, 3, kClkStatus) & kLocked, 0u);
    write3(kClkCtrl, 80);
    EXPECT_NE(read_reg(0, 3, kClkStatus) & kLocked, 0u);
    pulse();
    EXPECT_NE(read_reg(0, 3, kClkStatus) & kLocked, 0u);
    EXPECT_EQ(read_reg(0, 3, kClkCtrl) & 0x1FFu, 80u);
}

TEST_F(SimMacClock, KnobKeepsTheClockFromLocking)
{
    ASSERT_EQ(tide_sim_clk400_never_lock_set(0, 1), 0);
    pulse();
    EXPECT_EQ(read_reg(0, 3, kClkStatus) & kLocked, 0u);
    // Back to normal: the next pulse locks it.
    ASSERT_EQ(tide_sim_clk400_never_lock_set(0, 0), 0);
    pulse();
    EXPECT_NE(read_reg(0, 3, kClkStatus) & kLocked, 0u);
    EXPECT_EQ(tide_sim_clk400_never_lock_set(3, 1), -3);
}

// ---- link ------------------------------------------------------------------------------

// Protocols of pcs_glb_protocol_type.
constexpr u32 k1000BaseX = 0, kSgmii = 1, k10GBaseR = 8, kMmac = 10;

// Two chips whose lane 2 runs at 10.3125 Gbit/s (its MAG's interface
// property), brought up by the SDK without the fixture's front ports; the
// MACs are then driven by hand.
class SimMac : public SimChips {
protected:
    explicit SimMac(bool ports = false) : SimChips(2, 0) { ports_ = ports; }
    void SetUp() override
    {
        SimChips::SetUp();
        for (u32 chip = 0; chip < 2; chip++) {
            ASSERT_EQ(shr_property_set(chip, "mag_interface_type_2", "10"), 0);
            // The counter thread stays off the port counters: the reads of
            // the tests are the only ones.
            ASSERT_EQ(shr_property_set(chip, "counter_enable_port_stat", "0"), 0);
            up_chip(chip);
        }
    }

    static u32 addr(u32 reg_id, u32 instance = 0) { return g_atolreef_reg_list[reg_id]->addr[instance]; }
    static u32 rd(u32 reg_id, u32 instance = 0, u32 chip = 0) { return read_reg(chip, 4, addr(reg_id, instance)); }
    static void wr(u32 reg_id, u32 instance, u32 value, u32 chip = 0)
    {
        ASSERT_EQ(hal_reg_write_32(chip, 4, addr(reg_id, instance), value), 0);
    }
    static tide_sim_mac_port port(u32 lport, u32 chip = 0)
    {
        tide_sim_mac_port p{};
        EXPECT_EQ(tide_sim_mac_port_get(chip, lport, &p), 0);
        return p;
    }
    static u32 down(u32 lport, u32 chip = 0) { return port(lport, chip).down; }

    // Glue mode, every block out of reset with its clock running, and the
    // protocol of one MAG, as the driver leaves them.
    static void mag_up(u32 mag, u32 protocol, u32 ch_num = 0, u32 glue_mode = 0, u32 chip = 0)
    {
        wr(cib_mag_glue_glue_mode_cfg, 0, glue_mode, chip);
        wr(cib_mag_glue_rst_cfg, 0, 0, chip);
        wr(cib_lsw_hreg_soft_rst, 0, 0x00FFF800, chip);
        wr(cib_lsw_hreg_clk_gating_en, 0, 0, chip);
        wr(cib_pcs_glb_protocol_type, mag, ch_num << 4 | protocol, chip);
        // The ports' bring-up left the block resets of unconfigured MAGs held.
        wr(cib_pcs_glb_pcs_rst, mag, 0, chip);
        for (u32 group = 0; group < 5; group++) {
            wr(cib_mac_glb_rst_cfg, group, 0, chip);
        }
    }
    static void enable(u32 lport, u32 chip = 0) { wr(cib_mac_port_enable_cfg, lport, 0x6, chip); }
    static u32 an_status(u32 channel, u32 chip = 0) { return rd(cib_pcs_an_pcs_an_status_1, channel, chip); }
};

TEST_F(SimMac, APortRunsOnlyWhenEveryResetGateAndForceLetsIt)
{
    mag_up(0, k1000BaseX);
    ASSERT_EQ(port(0).link, 1u);
    EXPECT_EQ(rd(cib_mag_glb_ch_link, 0) & 1u, 1u);
    // Each cause alone takes it down; putting the word back brings it up.
    struct Case {
        u32 reg, instance, value, cause;
    };
    const std::vector<Case> cases = {
        {cib_mag_glue_rst_cfg, 0, 0x4, TIDE_SIM_MAC_DOWN_GLUE_RESET},
        {cib_lsw_hreg_soft_rst, 0, 0x00FFF800 & ~(1u << 11), TIDE_SIM_MAC_DOWN_PCS_RESET},
        {cib_lsw_hreg_clk_gating_en, 0, 1u << 6, TIDE_SIM_MAC_DOWN_PCS_RESET},
        {cib_pcs_glb_pcs_rst, 0, 0x4, TIDE_SIM_MAC_DOWN_PCS_RESET},
        {cib_pcs_glb_pcs_rst, 0, 1u << 4, TIDE_SIM_MAC_DOWN_PCS_RESET},
        {cib_lsw_hreg_soft_rst, 0, 0x00FFF800 & ~(1u << 19), TIDE_SIM_MAC_DOWN_MAC_RESET},
        {cib_lsw_hreg_clk_gating_en, 0, 1u << 1, TIDE_SIM_MAC_DOWN_MAC_RESET},
        {cib_mac_glb_rst_cfg, 0, 0x1, TIDE_SIM_MAC_DOWN_MAC_RESET},
        {cib_mac_port_rst_cfg, 0, 1, TIDE_SIM_MAC_DOWN_MAC_RESET},
        {cib_mag_map_port_rst, 0, 1, TIDE_SIM_MAC_DOWN_MAC_RESET},
        {cib_pcs_8b10b_force_link_set, 0, 0x010001, TIDE_SIM_MAC_DOWN_FORCED},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(g_atolreef_reg_list[c.reg]->name) + " = " + std::to_string(c.value));
        const u32 before = rd(c.reg, c.instance);
        wr(c.reg, c.instance, c.value);
        EXPECT_EQ(down(0), c.cause);
        EXPECT_EQ(rd(cib_mag_glb_ch_link, 0) & 1u, 0u);
        wr(c.reg, c.instance, before);
        EXPECT_EQ(port(0).link, 1u);
    }
    // A reset of another MAG, group or port leaves this one running.
    wr(cib_pcs_glb_pcs_rst, 1, 0x7);
    wr(cib_mac_glb_rst_cfg, 1, 0x7);
    wr(cib_mag_map_port_rst, 0, 0x0FFFFFFE);
    wr(cib_pcs_8b10b_force_link_set, 0, 0x020002); // MAC 1's bits
    EXPECT_EQ(port(0).link, 1u);
    // The endpoint unplugged: no signal, unless the port is forced up or
    // loops inside its MAC.
    ASSERT_EQ(tide_sim_mac_endpoint_set(0, 0, 0), 0);
    EXPECT_EQ(down(0), TIDE_SIM_MAC_DOWN_NO_SIGNAL);
    wr(cib_pcs_8b10b_force_link_set, 0, 0x010100);
    EXPECT_EQ(port(0).link, 1u);
    wr(cib_pcs_8b10b_force_link_set, 0, 0);
    wr(cib_mac_port_inloop_cfg, 0, 1);
    EXPECT_EQ(port(0).link, 1u);
    EXPECT_EQ(tide_sim_mac_endpoint_set(0, 28, 0), -4);
}

TEST_F(SimMac, GlueModesPlaceThePortsAndChannelsBoundThem)
{
    // QSGMII on MAG 2 in mode 0: four of its eight MACs run.
    mag_up(2, kSgmii, 2);
    for (u32 lport = 8; lport < 12; lport++) {
        const tide_sim_mac_port p = port(lport);
        EXPECT_EQ(p.link, 1u) << lport;
        EXPECT_EQ(p.mag, 2u);
        EXPECT_EQ(p.mac, lport - 8);
        EXPECT_EQ(p.channel, lport);
    }
    EXPECT_EQ(down(12), TIDE_SIM_MAC_DOWN_NO_INTERFACE);
    EXPECT_EQ(rd(cib_mag_glb_ch_link, 0) & 0x00FF0000u, 0x000F0000u); // MAG 2's bits
    // Mode 1: lport 25 does not exist; 16 to 19 sit on MAG 6.
    mag_up(6, kSgmii, 2, 1);
    EXPECT_EQ(down(25), TIDE_SIM_MAC_DOWN_NO_PORT);
    const tide_sim_mac_port p = port(17);
    EXPECT_EQ(p.mag, 6u);
    EXPECT_EQ(p.mac, 1u);
    EXPECT_EQ(p.channel, 27u);
    EXPECT_EQ(p.link, 1u);
    EXPECT_EQ(rd(cib_mag_glb_ch_link, 1) & 0x00FF0000u, 0x000F0000u); // MAG 6's bits
    // The 64B/66B PCS has no MAG 0 or 1.
    mag_up(0, k10GBaseR);
    EXPECT_EQ(down(0), TIDE_SIM_MAC_DOWN_NO_INTERFACE);
    EXPECT_EQ(tide_sim_mac_port_get(0, 0, nullptr), -20);
    EXPECT_EQ(tide_sim_mac_port_get(0, 28, nullptr), -20);
}

TEST_F(SimMac, CabledLanesLinkWhenBothEndsRunTheSameProtocol)
{
    // Lane 2 of both chips at 10.3125G, MAG 2 in 10GBASE-R on both.
    ASSERT_EQ(tide_sim_serdes_link(0, 2, 1, 2), 0);
    mag_up(2, k10GBaseR, 0, 0, 0);
    EXPECT_EQ(down(8, 0), TIDE_SIM_MAC_DOWN_NO_PARTNER); // chip 1's PCS sends nothing yet
    mag_up(2, k10GBaseR, 0, 0, 1);
    EXPECT_EQ(port(8, 0).link, 1u);
    EXPECT_EQ(port(8, 1).link, 1u);
    // The far port held in reset or forced down: the near end loses it.
    wr(cib_mac_port_rst_cfg, 8, 1, 1);
    EXPECT_EQ(down(8, 0), TIDE_SIM_MAC_DOWN_NO_PARTNER);
    wr(cib_mac_port_rst_cfg, 8, 0, 1);
    wr(cib_pcs_6466b_force_link_set, 0, 0x010001, 1);
    EXPECT_EQ(down(8, 0), TIDE_SIM_MAC_DOWN_NO_PARTNER);
    EXPECT_EQ(down(8, 1), TIDE_SIM_MAC_DOWN_FORCED);
    EXPECT_EQ(rd(cib_pcs_6466b_ch_stat, 0, 1) & 0x4u, 0x4u); // link interruption
    EXPECT_EQ(rd(cib_pcs_6466b_ch_stat, 0, 0) & 0x10u, 0x10u); // local fault
    wr(cib_pcs_6466b_force_link_set, 0, 0, 1);
    EXPECT_EQ(port(8, 0).link, 1u);
    // Another protocol at the far end.
    mag_up(2, kMmac, 0, 0, 1);
    EXPECT_EQ(down(8, 0), TIDE_SIM_MAC_DOWN_NO_PARTNER);
    // The cable out: the port faces the frame endpoint again; unplugged,
    // nothing arrives.  A plug returns the lane's own signal.
    ASSERT_EQ(tide_sim_serdes_unlink(0, 2), 0);
    EXPECT_EQ(port(8, 0).link, 1u);
    ASSERT_EQ(tide_sim_mac_endpoint_set(0, 8, 0), 0);
    EXPECT_EQ(down(8, 0), TIDE_SIM_MAC_DOWN_NO_SIGNAL);
    ASSERT_EQ(tide_sim_serdes_plug(0, 2), 0);
    EXPECT_EQ(port(8, 0).link, 1u);
    ASSERT_EQ(tide_sim_serdes_fault_set(0, 2, TIDE_SIM_SERDES_NEVER_LOCK), 0);
    EXPECT_EQ(down(8, 0), TIDE_SIM_MAC_DOWN_NO_SIGNAL);
}

TEST_F(SimMac, AutoNegotiationResolvesThePartnersAbilities)
{
    mag_up(0, k1000BaseX);
    wr(cib_pcs_an_pcs_an_ctrl_0, 0, 0x01A0u << 16 | 0x0180); // FD, both pause bits
    wr(cib_pcs_an_pcs_an_ctrl_2, 0, 0x14);                   // an_enable, an_link_en
    // The default partner advertises what the port does.
    tide_sim_mac_port p = port(0);
    EXPECT_EQ(p.link, 1u);
    EXPECT_EQ(p.an_done, 1u);
    u32 st = an_status(0);
    EXPECT_EQ((st >> 8) & 0xF, 2u);  // an_speed 1000
    EXPECT_EQ((st >> 3) & 1, 1u);    // full duplex
    EXPECT_EQ((st >> 18) & 3, 3u);   // the port's own pause bits
    EXPECT_EQ(st & 0xF0, 0xF0u);     // an_state, an_link_up, an_phy_link, an_link
    // The partner's pause bits, whatever the port advertises: the driver
    // resolves them against its own.
    for (u32 pause = 0; pause < 4; pause++) {
        const tide_sim_mac_partner partner{1, 1000, 1, pause};
        ASSERT_EQ(tide_sim_mac_partner_set(0, 0, &partner), 0);
        EXPECT_EQ((an_status(0) >> 18) & 3, pause);
        EXPECT_EQ(rd(cib_pcs_an_pcs_an_ctrl_0, 0) >> 16, 0x01A0u);
    }
    // A partner that does not negotiate: with an_link_en the link waits
    // for the negotiation; without, it comes up all the same.
    const tide_sim_mac_partner mute{0, 1000, 1, 0};
    ASSERT_EQ(tide_sim_mac_partner_set(0, 0, &mute), 0);
    EXPECT_EQ(down(0), TIDE_SIM_MAC_DOWN_AN);
    EXPECT_EQ(an_status(0) & 0x80, 0u);
    wr(cib_pcs_an_pcs_an_ctrl_2, 0, 0x10);
    EXPECT_EQ(port(0).link, 1u);
    // Held in its reset, the negotiation does not complete.
    ASSERT_EQ(tide_sim_mac_partner_set(0, 0, nullptr), 0);
    wr(cib_pcs_an_pcs_an_ctrl_2, 0, 0x14);
    wr(cib_pcs_an_an_rst, 0, 1);
    EXPECT_EQ(down(0), TIDE_SIM_MAC_DOWN_AN);
    wr(cib_pcs_an_an_rst, 0, 0);
    EXPECT_EQ(port(0).an_done, 1u);
    // A port forced up does not negotiate.
    wr(cib_pcs_8b10b_force_link_set, 0, 0x010100);
    EXPECT_EQ(port(0).an_done, 0u);
    EXPECT_EQ(port(0).link, 1u);
    const tide_sim_mac_partner bad{1, 1234, 1, 0};
    EXPECT_EQ(tide_sim_mac_partner_set(0, 0, &bad), -4);
}

TEST_F(SimMac, NegotiatedSpeedCodesFollowTheCoding)
{
    // 10G-QXGMII-like MAG 2: four channels, 2.5G each by default.
    mag_up(2, kMmac, 2);
    wr(cib_pcs_an_pcs_an_ctrl_2, 9, 0x14);
    EXPECT_EQ((an_status(9) >> 8) & 0xF, 4u);
    struct Case {
        u32 speed, code;
    };
    for (const Case c : {Case{10, 0}, Case{100, 1}, Case{1000, 2}, Case{2500, 4}, Case{5000, 5}, Case{10000, 3}}) {
        const tide_sim_mac_partner partner{1, c.speed, 1, 0};
        ASSERT_EQ(tide_sim_mac_partner_set(0, 9, &partner), 0);
        EXPECT_EQ((an_status(9) >> 8) & 0xF, c.code) << c.speed;
    }
    // The 8B/10B codes: 2500 shares 1000's; a half-duplex partner.
    mag_up(0, kSgmii);
    wr(cib_pcs_an_pcs_an_ctrl_2, 0, 0x14);
    const tide_sim_mac_partner half{1, 2500, 0, 0};
    ASSERT_EQ(tide_sim_mac_partner_set(0, 0, &half), 0);
    EXPECT_EQ((an_status(0) >> 8) & 0xF, 2u);
    EXPECT_EQ((an_status(0) >> 3) & 1, 0u);
}

TEST_F(SimMac, LinkChangesRaiseTheirEvents)
{
    mag_up(0, kSgmii, 2); // SGMII_4P: lports 0 to 3
    wr(cib_pcs_an_pcs_an_ctrl_2, 1, 0x14);
    EXPECT_EQ(rd(cib_pcs_an_int_stat, 1) & 1u, 1u); // an_done of channel 1
    EXPECT_EQ(rd(cib_pcs_8b10b_int_stat, 0) & (1u << 5), 1u << 5); // link up
    wr(cib_pcs_an_int_stat, 1, 0xF);
    // A restart negotiates again.
    wr(cib_pcs_an_pcs_an_ctrl_2, 1, 0x1C);
    wr(cib_pcs_an_pcs_an_ctrl_2, 1, 0x14);
    EXPECT_EQ(rd(cib_pcs_an_int_stat, 1) & 0x3u, 0x3u); // restart and done
    EXPECT_EQ(rd(cib_mac_port_int_stat, 1) & 1u, 0u);
    wr(cib_mac_port_rst_cfg, 1, 1);
    EXPECT_EQ(rd(cib_mac_port_int_stat, 1) & 1u, 1u); // link down of lport 1
    EXPECT_EQ(rd(cib_pcs_8b10b_int_stat, 0) & (1u << 4), 1u << 4);
    EXPECT_EQ(rd(cib_mac_port_int_stat, 0) & 1u, 0u); // lport 0 unchanged
}

// ---- the MAC data path gate -----------------------------------------------------------

std::vector<uint8_t> frame(uint8_t src)
{
    std::vector<uint8_t> f(60, 0);
    for (int i = 0; i < 6; i++) {
        f[i] = 0xFF;
    }
    f[6] = 0x02;
    f[11] = src;
    f[12] = 0x08;
    return f;
}

TEST_F(SimMac, GatedFramesNeedAnEnabledMacWithItsLinkUp)
{
    ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF), 0);
    mag_up(0, k1000BaseX);
    mag_up(1, k1000BaseX);
    enable(0);
    enable(4);
    ASSERT_EQ(tide_sim_mac_gating_set(0, 1), 0);
    // Broadcast from port 0: only port 4 has a MAC up.
    const auto f = frame(1);
    ASSERT_EQ(tide_sim_packet_inject(0, 0, f.data(), static_cast<u32>(f.size())), 0);
    tide_sim_port_stats s4{}, s8{};
    ASSERT_EQ(tide_sim_port_stats_get(0, 4, &s4), 0);
    ASSERT_EQ(tide_sim_port_stats_get(0, 8, &s8), 0);
    EXPECT_EQ(s4.tx_frames, 1u);
    EXPECT_EQ(s8.tx_frames, 0u);
    // Port 4 with its link down, then with tx_en clear: nothing leaves.
    ASSERT_EQ(tide_sim_mac_endpoint_set(0, 4, 0), 0);
    ASSERT_EQ(tide_sim_packet_inject(0, 0, f.data(), static_cast<u32>(f.size())), 0);
    ASSERT_EQ(tide_sim_mac_endpoint_set(0, 4, 1), 0);
    wr(cib_mac_port_enable_cfg, 4, 0x2);
    ASSERT_EQ(tide_sim_packet_inject(0, 0, f.data(), static_cast<u32>(f.size())), 0);
    ASSERT_EQ(tide_sim_port_stats_get(0, 4, &s4), 0);
    EXPECT_EQ(s4.tx_frames, 1u);
    // Into the chip: rx_en clear, then the link down, each named.
    struct Case {
        u32 enable;
        int plugged;
        u32 cause;
    };
    for (const Case c : {Case{0x4, 1, TIDE_SIM_CAUSE_MAC_RX_DISABLED}, Case{0x6, 0, TIDE_SIM_CAUSE_MAC_RX_LINK_DOWN}}) {
        wr(cib_mac_port_enable_cfg, 0, c.enable);
        ASSERT_EQ(tide_sim_mac_endpoint_set(0, 0, c.plugged), 0);
        tide_sim_port_stats before{}, after{};
        ASSERT_EQ(tide_sim_port_stats_get(0, 0, &before), 0);
        ASSERT_EQ(tide_sim_packet_inject(0, 0, f.data(), static_cast<u32>(f.size())), 0);
        ASSERT_EQ(tide_sim_port_stats_get(0, 0, &after), 0);
        EXPECT_EQ(after.rx_dropped, before.rx_dropped + 1);
        EXPECT_EQ(after.last_drop_cause, c.cause);
    }
    // Ungated, the same frame passes again.
    ASSERT_EQ(tide_sim_mac_gating_set(0, 0), 0);
    ASSERT_EQ(tide_sim_packet_inject(0, 0, f.data(), static_cast<u32>(f.size())), 0);
    ASSERT_EQ(tide_sim_port_stats_get(0, 8, &s8), 0);
    EXPECT_EQ(s8.tx_frames, 1u);
}

} // namespace

// ---- MIB ------------------------------------------------------------------------------

namespace {

// The front ports brought up by the fixture's harness: the MACs pass and
// count frames.
class SimMacMib : public SimMac {
protected:
    SimMacMib() : SimMac(true) {}
    void SetUp() override
    {
        SimMac::SetUp();
        ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF), 0);
    }
    // One count through its register pair, low word first.
    static uint64_t mib(u32 lo_tab, u32 hi_tab, u32 lport)
    {
        const u32 lo = read_reg(0, 4, g_atolreef_tab_list[lo_tab]->addr[lport]);
        const u32 hi = read_reg(0, 4, g_atolreef_tab_list[hi_tab]->addr[lport]);
        return static_cast<uint64_t>(hi) << 32 | lo;
    }
    static uint64_t rx_pkts(u32 lport) { return mib(cib_mac_mib_rx_total_pkt_l, cib_mac_mib_rx_total_pkt_h, lport); }
    static uint64_t tx_pkts(u32 lport) { return mib(cib_mac_mib_tx_total_pkt_l, cib_mac_mib_tx_total_pkt_h, lport); }
    static void inject(u32 lport, const std::vector<uint8_t> &f)
    {
        ASSERT_EQ(tide_sim_packet_inject(0, lport, f.data(), static_cast<u32>(f.size())), 0);
    }
};

std::vector<uint8_t> sized(uint64_t dmac, size_t len)
{
    std::vector<uint8_t> f(len, 0);
    for (int i = 0; i < 6; i++) {
        f[i] = static_cast<uint8_t>(dmac >> (8 * (5 - i)));
    }
    f[6] = 0x02;
    f[11] = 0xA;
    f[12] = 0x08;
    return f;
}

TEST_F(SimMacMib, ABurstCountsInTheRxAndTxItemsAcrossBothClearModes)
{
    constexpr u32 kBurst = 25;
    wr(cib_mac_port_mib_cfg, 0, 1u << 19); // mib_clr_mode 1: the totals stay
    for (u32 i = 0; i < kBurst; i++) {
        inject(0, frame(1));
    }
    EXPECT_EQ(rx_pkts(0), kBurst);
    EXPECT_EQ(rx_pkts(0), kBurst); // a read keeps them
    EXPECT_EQ(tx_pkts(5), kBurst);  // the flood left by every other port
    EXPECT_EQ(tx_pkts(5), 0u);      // port 5 is in mode 0: the read cleared it
    EXPECT_EQ(mib(cib_mac_mib_rx_total_byte_l, cib_mac_mib_rx_total_byte_h, 0), kBurst * 64u);
    EXPECT_EQ(mib(cib_mac_mib_rxbroadcast_l, cib_mac_mib_rxbroadcast_h, 0), kBurst);
    // A pulse of clr_cnt_cfg clears the port's counts, and only its.
    wr(cib_mac_port_clr_cnt_cfg, 0, 1);
    wr(cib_mac_port_clr_cnt_cfg, 0, 0);
    EXPECT_EQ(rx_pkts(0), 0u);
    EXPECT_EQ(tx_pkts(6), kBurst);
    inject(0, frame(1));
    EXPECT_EQ(rx_pkts(0), 1u);
    // Mode 0: a read of the low word clears; the high word read alone
    // does not.
    wr(cib_mac_port_mib_cfg, 0, 0);
    EXPECT_EQ(read_reg(0, 4, g_atolreef_tab_list[cib_mac_mib_rx_total_pkt_h]->addr[0]), 0u);
    EXPECT_EQ(rx_pkts(0), 1u);
    EXPECT_EQ(rx_pkts(0), 0u);
    // A CPU write presets its half of the count.
    wr(cib_mac_port_mib_cfg, 0, 1u << 19);
    ASSERT_EQ(hal_reg_write_32(0, 4, g_atolreef_tab_list[cib_mac_mib_rx_total_pkt_l]->addr[0], 1000), 0);
    inject(0, frame(1));
    EXPECT_EQ(rx_pkts(0), 1001u);
}

TEST_F(SimMacMib, FramesCountBySizeClassAndDestinationKind)
{
    wr(cib_mac_port_mib_cfg, 3, 1u << 19);
    inject(3, sized(0x020000000001ull, 60));   // 64 with FCS, unicast
    inject(3, sized(0x010000000001ull, 100));  // 104, multicast
    inject(3, sized(0xFFFFFFFFFFFFull, 1514)); // 1518, broadcast
    inject(3, sized(0xFFFFFFFFFFFFull, 1600)); // 1604
    inject(3, sized(0xFFFFFFFFFFFFull, 40));   // 44: undersize
    struct Case {
        u32 lo, hi;
        uint64_t count;
    };
    const std::vector<Case> cases = {
        {cib_mac_mib_rx_64_l, cib_mac_mib_rx_64_h, 1},
        {cib_mac_mib_rx_127_65_l, cib_mac_mib_rx_127_65_h, 1},
        {cib_mac_mib_rx_1518_1024_l, cib_mac_mib_rx_1518_1024_h, 1},
        {cib_mac_mib_rx_max_1519_l, cib_mac_mib_rx_max_1519_h, 1},
        {cib_mac_mib_rx_max_1519_good_l, cib_mac_mib_rx_max_1519_good_h, 1},
        {cib_mac_mib_rxundersize_l, cib_mac_mib_rxundersize_h, 1},
        {cib_mac_mib_rxunicast_l, cib_mac_mib_rxunicast_h, 1},
        {cib_mac_mib_rxmulticast_l, cib_mac_mib_rxmulticast_h, 1},
        {cib_mac_mib_rxbroadcast_l, cib_mac_mib_rxbroadcast_h, 3},
        {cib_mac_mib_rx_good_pkt_l, cib_mac_mib_rx_good_pkt_h, 5},
        {cib_mac_mib_rx_bad_pkt_l, cib_mac_mib_rx_bad_pkt_h, 0},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(mib(c.lo, c.hi, 3), c.count) << g_atolreef_tab_list[c.lo]->name;
    }
}

TEST_F(SimMacMib, BadFcsFramesCountAsBadAndGoNoFurther)
{
    wr(cib_mac_port_mib_cfg, 2, 1u << 19);
    ASSERT_EQ(tide_sim_mac_crc_error_set(0, 2, 2), 0);
    for (int i = 0; i < 3; i++) {
        inject(2, frame(2));
    }
    EXPECT_EQ(rx_pkts(2), 3u);
    EXPECT_EQ(mib(cib_mac_mib_rx_bad_pkt_l, cib_mac_mib_rx_bad_pkt_h, 2), 2u);
    EXPECT_EQ(mib(cib_mac_mib_rxfcs_err_l, cib_mac_mib_rxfcs_err_h, 2), 2u);
    EXPECT_EQ(mib(cib_mac_mib_rx_err_all_l, cib_mac_mib_rx_err_all_h, 2), 2u);
    tide_sim_port_stats s{};
    ASSERT_EQ(tide_sim_port_stats_get(0, 2, &s), 0);
    EXPECT_EQ(s.rx_dropped, 2u);
    EXPECT_EQ(s.last_drop_cause, TIDE_SIM_CAUSE_MAC_RX_FCS_ERR);
    EXPECT_EQ(tx_pkts(5), 1u); // only the good one flooded
    EXPECT_EQ(tide_sim_mac_crc_error_set(0, 28, 1), -4);
}

} // namespace
