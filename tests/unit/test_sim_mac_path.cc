// The chip model's frame path through MACs, cables and loops: two chips
// with their front ports brought up through the SDK and the MAC gate on.
// A frame crosses a SerDes cable into the far chip's pipeline; MAC loops
// and a lane plug turn frames around; a loop between chips cabled twice
// ends with the hop budget's cause; a far port that does not receive
// drops what crosses; a fault inserted at one end shows at the other; a
// PCS held in reset, a cleared path and a counter clear do what the model
// says they do.
#include <gtest/gtest.h>
#include <tide/interrupt.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <tide/property.h>

#include "atolreef_cib.h"
#include "hal/hal_op/hal.h"
#include "support/acl_frames.h"
#include "support/fixture.h"
#include "support/front_ports.h"
#include "support/vlan_ports.h"
#include "support/wait.h"

namespace {

using tide::test::Frame;
using tide::test::kFrontPorts;
constexpr uint64_t kStationA = 0x020000000A01ull, kStationB = 0x020000000B02ull;

constexpr uint64_t kBroadcast = 0xFFFFFFFFFFFFull;

void _inject(uint32_t chip, uint32_t port, const Frame &f)
{
    ASSERT_EQ(tide_sim_packet_inject(chip, port, f.data(), static_cast<uint32_t>(f.size())), 0);
}

// Frames waiting at a port's capture, taken.
uint32_t _taken(uint32_t chip, uint32_t port)
{
    uint8_t buf[TIDE_SIM_FRAME_MAX];
    uint32_t len = 0, n = 0;
    while (tide_sim_packet_capture(chip, port, buf, sizeof(buf), &len) == 0) {
        n++;
    }
    return n;
}

// Every frame waiting at the chip's ports, taken.
void _empty(uint32_t chip)
{
    for (uint32_t port = 0; port < 32; port++) {
        _taken(chip, port);
    }
}

tide_sim_port_stats _stats(uint32_t chip, uint32_t port)
{
    tide_sim_port_stats s{};
    EXPECT_EQ(tide_sim_port_stats_get(chip, port, &s), 0);
    return s;
}

uint32_t _addr(uint32_t reg_id, uint32_t instance)
{
    return g_atolreef_reg_list[reg_id]->addr[instance];
}

uint32_t _rd(uint32_t chip, uint32_t reg_id, uint32_t instance)
{
    uint32_t v = 0;
    EXPECT_EQ(hal_reg_read_32(chip, 4, _addr(reg_id, instance), &v), 0);
    return v;
}

void _wr(uint32_t chip, uint32_t reg_id, uint32_t instance, uint32_t value)
{
    ASSERT_EQ(hal_reg_write_32(chip, 4, _addr(reg_id, instance), value), 0);
}

// The local faults chip 1's port 8 has seen, through its interrupt.
std::atomic<uint32_t> g_local_faults{0};

void _on_local_fault(u32 chip, intr_module, intr_type)
{
    if (chip == 1) {
        g_local_faults++;
    }
}

// MAG 2 of both chips runs 10GBASE-R (lport 8 alone, 64B/66B); the other
// MAGs their harness types.
class SimMacPath : public tide::test::SimChips {
protected:
    SimMacPath() : SimChips(2, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        for (uint32_t chip = 0; chip < 2; chip++) {
            // The SerDes bring-up sets each lane's rate from its MAG's type.
            for (uint32_t mag = 0; mag < CSL_PORT_MAX_MAG; mag++) {
                const uint32_t type =
                    mag == 2 ? static_cast<uint32_t>(PORT_INTERFACE_10GBASE_R) : tide::test::kFrontPortTypes[mag];
                const std::string key = "mag_interface_type_" + std::to_string(mag);
                ASSERT_EQ(shr_property_set(chip, key.c_str(), std::to_string(type).c_str()), 0);
            }
            up_chip(chip);
            ASSERT_EQ(tide::test::front_ports_up(chip), 0);
            ASSERT_EQ(tide_sim_mac_gating_set(chip, 1), 0);
            ASSERT_EQ(tide::test::vlan_ports(chip, 1, kFrontPorts, kFrontPorts), 0);
        }
    }
    // A cable between lane `lane` of both chips; the port on it links up
    // at both ends.
    static void cable(uint32_t lane, uint32_t port)
    {
        ASSERT_EQ(tide_sim_serdes_link(0, lane, 1, lane), 0);
        EXPECT_TRUE(tide_test::eventually([port] { return tide::test::link_up(0, port) && tide::test::link_up(1, port); }))
            << tide::test::link_down_cause(0, port) << " " << tide::test::link_down_cause(1, port);
    }
};

// ---- frames across a cable -----------------------------------------------------------------

TEST_F(SimMacPath, AFrameCrossesTheCableIntoTheFarChipsForwarding)
{
    cable(4, 24);
    // A broadcast from A on chip 0 floods; the copy for port 24 enters
    // chip 1 there and floods on chip 1, never reaching chip 0's endpoint
    // of port 24.
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_taken(0, 3), 1u);
    EXPECT_EQ(_taken(0, 24), 0u);
    EXPECT_EQ(_stats(0, 24).tx_frames, 1u);
    EXPECT_EQ(_stats(1, 24).rx_frames, 1u);
    for (uint32_t port : {0u, 3u, 8u, 27u}) {
        EXPECT_EQ(_taken(1, port), 1u) << port;
    }
    EXPECT_EQ(_taken(1, 24), 0u); // not back out of its source
    // Chip 1 learned A on 24: B's answer from chip 1 crosses back and
    // chip 0, which learned A on port 0, forwards it there alone.
    _inject(1, 5, tide::test::l2_frame(kStationA, kStationB));
    EXPECT_EQ(_taken(1, 3), 0u);
    EXPECT_EQ(_taken(0, 0), 1u);
    EXPECT_EQ(_taken(0, 3), 0u);
    // The cable out: port 24 faces its endpoint again.
    ASSERT_EQ(tide_sim_serdes_unlink(0, 4), 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 24); }));
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_taken(0, 24), 1u);
    EXPECT_EQ(_stats(1, 24).rx_frames, 1u);
}

TEST_F(SimMacPath, AFarPortThatDoesNotReceiveDropsTheCrossingFrame)
{
    cable(4, 24);
    // Receive switched off at the far MAC: the link stays, the frame
    // crosses and the far MAC drops it.
    ASSERT_EQ(port_api_tx_rx_enable_set(1, 24, 1, 0), 0);
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    tide_sim_port_stats far = _stats(1, 24);
    EXPECT_EQ(far.rx_frames, 1u);
    EXPECT_EQ(far.rx_dropped, 1u);
    EXPECT_EQ(far.last_drop_cause, TIDE_SIM_CAUSE_MAC_RX_DISABLED);
    EXPECT_EQ(_taken(1, 3), 0u);
    // The far port disabled takes the link down at both ends: nothing
    // leaves chip 0 by port 24 any more.
    ASSERT_EQ(port_api_tx_rx_enable_set(1, 24, 1, 1), 0);
    ASSERT_EQ(port_api_enable_set(1, 24, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, 24) && !tide::test::link_up(1, 24); }));
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_stats(0, 24).tx_frames, 1u);
    EXPECT_EQ(_stats(1, 24).rx_frames, 1u);
    EXPECT_EQ(_taken(1, 3), 0u);
    // Chip 0 ungated sends anyway; a far MAG without a protocol has no
    // port to take the frame, which is lost on the line.
    ASSERT_EQ(tide_sim_mac_gating_set(0, 0), 0);
    _wr(1, cib_pcs_glb_protocol_type, 4, 0xF);
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    const tide_sim_port_stats near = _stats(0, 24);
    EXPECT_EQ(near.tx_frames, 2u);
    EXPECT_EQ(near.tx_lost, 1u);
    EXPECT_EQ(near.last_lost_cause, TIDE_SIM_CAUSE_WIRE_NO_PORT);
    EXPECT_EQ(_stats(1, 24).rx_frames, 1u);
}

TEST_F(SimMacPath, ABroadcastBetweenChipsCabledTwiceEndsWithItsHopBudget)
{
    cable(4, 24);
    cable(5, 26);
    // Each chip floods what enters by one cable out of the other: the
    // frame circles.  Chip 1 receives it at hops 1, 3, 5 and 7 and chip 0
    // at 2, 4, 6 and 8, twice each (one per direction of the circle); at
    // hop 9 chip 1 drops it.
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_taken(1, 3), 8u);
    EXPECT_EQ(_taken(0, 3), 1u + 8u);
    for (uint32_t port : {24u, 26u}) {
        const tide_sim_port_stats s = _stats(1, port);
        EXPECT_EQ(s.rx_frames, 5u) << port;
        EXPECT_EQ(s.rx_dropped, 1u) << port;
        EXPECT_EQ(s.last_drop_cause, TIDE_SIM_CAUSE_WIRE_HOPS) << port;
        EXPECT_EQ(_stats(0, port).rx_dropped, 0u) << port;
    }
    // The next frame has a budget of its own.
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationB));
    EXPECT_EQ(_taken(1, 3), 8u);
}

TEST_F(SimMacPath, ChipsCabledTwiceTakeFramesFromBothSidesAtOnce)
{
    // Each chip's pipeline sends into the other while the other sends
    // back: neither waits for the other's mutex while holding its own.
    cable(4, 24);
    cable(5, 26);
    constexpr uint32_t kEach = 20;
    auto sender = [](uint32_t chip) {
        for (uint32_t i = 0; i < kEach; i++) {
            _inject(chip, 0, tide::test::l2_frame(kBroadcast, chip == 0 ? kStationA : kStationB));
        }
    };
    std::thread a(sender, 0), b(sender, 1);
    a.join();
    b.join();
    // Each broadcast reaches port 3 of its own chip 9 times and of the
    // other 8 (see the test above).
    for (uint32_t chip = 0; chip < 2; chip++) {
        EXPECT_EQ(_stats(chip, 3).tx_frames, kEach * 17u) << chip;
    }
}

// ---- loops -----------------------------------------------------------------------------------

TEST_F(SimMacPath, LoopsTurnFramesAround)
{
    // A broadcast from port 0 floods out of `port`, comes back into it
    // and floods again; none reaches the line of `port`.
    auto turned_around = [](uint32_t port) {
        ASSERT_TRUE(tide_test::eventually([port] { return tide::test::link_up(0, port); })) << tide::test::link_down_cause(0, port);
        _empty(0);
        _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
        EXPECT_EQ(_taken(0, 3), 2u) << port;
        EXPECT_EQ(_taken(0, port), 0u) << port;
        EXPECT_EQ(_stats(0, port).rx_frames, 1u) << port;
    };
    // A MAC inner loop turns what port 24 sends into its receive side.
    port_loopback inner{PORT_LOOP_MAC_INNER, 0};
    ASSERT_EQ(port_api_loopback_set(0, 24, &inner), 0);
    turned_around(24);
    port_loopback none{PORT_LOOP_NONE, 0};
    ASSERT_EQ(port_api_loopback_set(0, 24, &none), 0);
    // A plug in lane 5 turns what port 26 sends back into it.
    ASSERT_EQ(tide_sim_serdes_plug(0, 5), 0);
    turned_around(26);
    // An outer loop: a frame arriving from the line at port 27 goes back
    // out to the line, and the pipeline never sees it.
    port_loopback outer{PORT_LOOP_MAC_OUTER, 0};
    ASSERT_EQ(port_api_loopback_set(0, 27, &outer), 0);
    _empty(0);
    _inject(0, 27, tide::test::l2_frame(kBroadcast, kStationB));
    EXPECT_EQ(_taken(0, 27), 1u);
    EXPECT_EQ(_taken(0, 3), 0u);
    uint64_t rx = 1;
    EXPECT_EQ(port_api_counter_get(0, 27, 0, &rx), 0); // rx total frames of the MIB
    EXPECT_EQ(rx, 0u);
}

TEST_F(SimMacPath, AnOuterLoopBehindAPlugEndsWithTheHopBudget)
{
    port_loopback outer{PORT_LOOP_MAC_OUTER, 0};
    ASSERT_EQ(port_api_loopback_set(0, 26, &outer), 0);
    ASSERT_EQ(tide_sim_serdes_plug(0, 5), 0);
    _inject(0, 26, tide::test::l2_frame(kBroadcast, kStationA));
    const tide_sim_port_stats s = _stats(0, 26);
    EXPECT_EQ(s.rx_frames, 1u + TIDE_SIM_WIRE_HOPS + 1u);
    EXPECT_EQ(s.last_drop_cause, TIDE_SIM_CAUSE_WIRE_HOPS);
    EXPECT_EQ(_taken(0, 3), 0u);
}

// ---- faults, resets, clears ------------------------------------------------------------------

TEST_F(SimMacPath, AnInsertedFaultShowsAtTheFarEnd)
{
    cable(2, 8);
    g_local_faults = 0;
    const intr_module pcs{INTR_MOD_PCS_6466B, 0};
    ASSERT_EQ(interrupt_api_callback_register(1, pcs, intr_type{3, 0}, _on_local_fault), 0);
    ASSERT_EQ(interrupt_api_enable_set(1, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    uint32_t fault = 0;
    // A local fault inserted on chip 0's port 8: chip 1 sees it, raises its
    // interrupt and loses its link, and its response sends a remote fault
    // back.
    _wr(0, cib_pcs_6466b_fault_ins_ctrl, 0, 0x1); // MAC 0, type 0
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(1, 8); }));
    EXPECT_TRUE(tide_test::eventually([] { return g_local_faults.load() == 1; })) << g_local_faults.load();
    EXPECT_EQ(tide::test::link_down_cause(1, 8), TIDE_SIM_MAC_DOWN_FAULT);
    ASSERT_EQ(port_api_fault_get(1, 8, &fault), 0);
    EXPECT_EQ(fault & PORT_FAULT_LOCAL, static_cast<uint32_t>(PORT_FAULT_LOCAL));
    EXPECT_TRUE(tide_test::eventually([&] {
        return port_api_fault_get(0, 8, &fault) == 0 && (fault & PORT_FAULT_REMOTE) != 0;
    })) << fault;
    // A link interruption instead.
    _wr(0, cib_pcs_6466b_fault_ins_ctrl, 0, 0x21);
    EXPECT_TRUE(tide_test::eventually([&] {
        return port_api_fault_get(1, 8, &fault) == 0 && fault == PORT_FAULT_LINK_INT;
    })) << fault;
    // Taken out: both ends up and clear.
    _wr(0, cib_pcs_6466b_fault_ins_ctrl, 0, 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 8) && tide::test::link_up(1, 8); }));
    EXPECT_EQ(port_api_fault_get(1, 8, &fault), 0);
    EXPECT_EQ(fault, 0u);
    // Chip 1 no longer answers a local fault: chip 0 sees no remote one.
    _wr(1, cib_pcs_6466b_fault_resp, 0, 0);
    _wr(0, cib_pcs_6466b_fault_ins_ctrl, 0, 0x1);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(1, 8); }));
    EXPECT_EQ(port_api_fault_get(0, 8, &fault), 0);
    EXPECT_EQ(fault, 0u);
    _wr(0, cib_pcs_6466b_fault_ins_ctrl, 0, 0);
    // A loop sees its own fault.
    ASSERT_EQ(tide_sim_serdes_unlink(0, 2), 0);
    ASSERT_EQ(tide_sim_serdes_plug(0, 2), 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 8); }));
    _wr(0, cib_pcs_6466b_fault_ins_ctrl, 0, 0x11); // remote fault
    EXPECT_TRUE(tide_test::eventually([&] {
        return port_api_fault_get(0, 8, &fault) == 0 && fault == PORT_FAULT_REMOTE;
    })) << fault;
    EXPECT_EQ(_rd(0, cib_pcs_6466b_ch_stat, 0), 0x8u);
}

TEST_F(SimMacPath, APcsHeldInResetTakesTheLinkDownAtBothEnds)
{
    cable(4, 24);
    // rx_port_rst of MAC 0 of MAG 4's 8B/10B PCS.
    _wr(0, cib_pcs_8b10b_rst_pcs, 4, 0x1);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, 24) && !tide::test::link_up(1, 24); }));
    EXPECT_EQ(tide::test::link_down_cause(0, 24), TIDE_SIM_MAC_DOWN_PCS_RESET);
    EXPECT_EQ(tide::test::link_down_cause(1, 24), TIDE_SIM_MAC_DOWN_NO_PARTNER);
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_stats(1, 24).rx_frames, 0u);
    _wr(0, cib_pcs_8b10b_rst_pcs, 4, 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 24) && tide::test::link_up(1, 24); }));
    // The SDK's port reset holds it too, and its release brings it back.
    ASSERT_EQ(port_api_reset(1, 24, 1), 0);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, 24); }));
    ASSERT_EQ(port_api_reset(1, 24, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 24) && tide::test::link_up(1, 24); }));
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_taken(1, 3), 1u);
}

TEST_F(SimMacPath, APathClearStopsFramesAndAChannelClearHoldsThePcsCounts)
{
    // mag_map_port_clr of port 3: nothing enters or leaves by it.
    _wr(0, cib_mag_map_port_clr, 0, 1u << 3);
    _inject(0, 3, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_stats(0, 3).last_drop_cause, TIDE_SIM_CAUSE_MAC_PATH_CLEAR);
    EXPECT_EQ(_taken(0, 0), 0u);
    _inject(0, 0, tide::test::l2_frame(kBroadcast, kStationB));
    EXPECT_EQ(_taken(0, 3), 0u);
    EXPECT_EQ(_taken(0, 2), 1u);
    _wr(0, cib_mag_map_port_clr, 0, 0);
    // rx_cnt_clr of MAC 3 of MAG 0 zeroes and holds the receive counts of
    // its PCS (SOP in the low half of instance 0 * 8 + 3); the MAC's MIB
    // goes on counting.
    _inject(0, 3, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_NE(_rd(0, cib_pcs_glb_pkt_rx_cnt, 3), 0u);
    uint64_t rx_before = 0, rx = 0;
    ASSERT_EQ(port_api_counter_get(0, 3, 0, &rx_before), 0);
    _wr(0, cib_pcs_glb_ch_cnt_clr, 0, 1u << 3);
    _inject(0, 3, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_rd(0, cib_pcs_glb_pkt_rx_cnt, 3), 0u);
    ASSERT_EQ(port_api_counter_get(0, 3, 0, &rx), 0);
    EXPECT_EQ(rx, rx_before + 1);
    _wr(0, cib_pcs_glb_ch_cnt_clr, 0, 0);
    _inject(0, 3, tide::test::l2_frame(kBroadcast, kStationA));
    EXPECT_EQ(_rd(0, cib_pcs_glb_pkt_rx_cnt, 3) & 0xFFFFu, 1u);
}

TEST_F(SimMacPath, PhyLinkEnableFollowsThePartnerPhysLine)
{
    // Port 27 (SGMII) negotiates with phy_link_en set by the driver; its
    // partner, a PHY, reports its line down.
    ASSERT_EQ(tide_sim_mac_phy_line_set(0, 27, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, 27); }));
    EXPECT_EQ(tide::test::link_down_cause(0, 27), TIDE_SIM_MAC_DOWN_PHY_LINK);
    tide_sim_mac_port p{};
    ASSERT_EQ(tide_sim_mac_port_get(0, 27, &p), 0);
    const uint32_t ctrl = _rd(0, cib_pcs_an_pcs_an_ctrl_2, p.channel);
    EXPECT_NE(ctrl & 0x2u, 0u);
    // Without phy_link_en the port ignores the PHY's line.
    _wr(0, cib_pcs_an_pcs_an_ctrl_2, p.channel, ctrl & ~0x2u);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 27); }));
    EXPECT_EQ(tide_sim_mac_phy_line_set(0, 28, 0), -4);
}

} // namespace
