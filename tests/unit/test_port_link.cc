// From nothing to a forwarding link through the SDK only, on the chip
// model with its MAC data path gating (on by default): interface types, enable,
// negotiation, link on both sides, a frame across, and a disabled port
// that takes its link down and stops forwarding.  Also the negotiated
// speed, duplex and pause against a partner's abilities.
#include <gtest/gtest.h>
#include <tide/interrupt.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include <atomic>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/driver/port/csl_atolreef_port_int.h"
#include "support/fixture.h"
#include "support/front_ports.h"
#include "support/vlan_ports.h"
#include "support/wait.h"

namespace {

using Frame = std::vector<uint8_t>;
constexpr uint32_t kFront = 0x0FFFFFFF;

Frame _broadcast()
{
    Frame f(6, 0xFF);
    for (uint8_t b : {0x02, 0x00, 0x00, 0x00, 0x00, 0x01}) {
        f.push_back(b);
    }
    f.insert(f.end(), {0x08, 0x00});
    while (f.size() < 60) {
        f.push_back(static_cast<uint8_t>(f.size()));
    }
    return f;
}

// Frames waiting at a port's capture, emptied.
uint32_t _drain(uint32_t port)
{
    uint8_t buf[TIDE_SIM_FRAME_MAX];
    uint32_t len = 0, n = 0;
    while (tide_sim_packet_capture(0, port, buf, sizeof(buf), &len) == 0) {
        n++;
    }
    return n;
}

// A chip after hardware init, its front ports not yet brought up.
class PortLink : public tide::test::SimChips {
protected:
    PortLink() : SimChips(1, 0) { ports_ = false; }
    void SetUp() override
    {
        SimChips::SetUp();
        if (counter_thread_) {
            ASSERT_EQ(shr_property_set(0, "counter_thread_start", "1"), 0);
            ASSERT_EQ(shr_property_set(0, "counter_thread_msec", "1000"), 0);
        }
        up_chip(0);
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, kFront), 0);
    }
    void inject(uint32_t port)
    {
        const Frame f = _broadcast();
        ASSERT_EQ(tide_sim_packet_inject(0, port, f.data(), static_cast<uint32_t>(f.size())), 0);
    }
    // The counter service's thread runs from bring-up, a pass a second.
    bool counter_thread_ = false;
};

TEST_F(PortLink, FromNothingToAForwardingLink)
{
    // Nothing is configured: the MACs let no frame in.
    inject(24);
    EXPECT_EQ(_drain(26), 0u);
    ASSERT_EQ(port_api_map_mode_set(0, 0), 0);
    for (uint32_t port : {24u, 26u}) {
        port_interface sgmii{PORT_INTERFACE_SGMII, 1};
        ASSERT_EQ(port_api_interface_set(0, port, &sgmii), 0) << port;
        ASSERT_EQ(port_api_enable_set(0, port, 1), 0) << port;
        ASSERT_EQ(port_api_autoneg_set(0, port, 1), 0) << port;
    }
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 24) && tide::test::link_up(0, 26); })) << tide::test::link_down_cause(0, 24) << " " << tide::test::link_down_cause(0, 26);
    inject(24);
    EXPECT_TRUE(tide_test::eventually([] { return _drain(26) == 1; }));
    // A disabled port is forced down: no link, nothing leaves by it.
    ASSERT_EQ(port_api_enable_set(0, 26, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return !tide::test::link_up(0, 26); }));
    EXPECT_TRUE(tide::test::link_up(0, 24));
    inject(24);
    tide_sim_port_stats stats{};
    EXPECT_TRUE(tide_test::eventually([&] {
        return tide_sim_port_stats_get(0, 24, &stats) == 0 && stats.rx_frames >= 3;
    }));
    EXPECT_EQ(_drain(26), 0u);
    // Enabled again, it forwards again.
    ASSERT_EQ(port_api_enable_set(0, 26, 1), 0);
    EXPECT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 26); }));
    inject(24);
    EXPECT_TRUE(tide_test::eventually([] { return _drain(26) == 1; }));
}

TEST_F(PortLink, EveryFrontPortComesUpThroughTheHarness)
{
    ASSERT_EQ(tide::test::front_ports_up(0), 0);
    for (uint32_t port = 0; port < 28; port++) {
        EXPECT_TRUE(tide::test::link_up(0, port)) << port << " down " << tide::test::link_down_cause(0, port);
    }
    inject(3);
    for (uint32_t port : {0u, 13u, 27u}) {
        EXPECT_TRUE(tide_test::eventually([port] { return _drain(port) == 1; })) << port;
    }
}

TEST_F(PortLink, NegotiationAgainstThePartnersAbilities)
{
    ASSERT_EQ(tide::test::front_ports_up(0), 0);
    // Port 24, SGMII: the partner offers 100M half.
    tide_sim_mac_partner slow{1, 100, 0, 0};
    ASSERT_EQ(tide_sim_mac_partner_set(0, 24, &slow), 0);
    ASSERT_EQ(port_api_autoneg_restart(0, 24), 0);
    uint32_t speed = 0, duplex = 9;
    EXPECT_TRUE(tide_test::eventually([&] {
        return port_api_speed_get(0, 24, &speed) == 0 && speed == 100 && port_api_duplex_get(0, 24, &duplex) == 0 &&
               duplex == 0;
    })) << speed << " " << duplex;
    // Port 25 as 1000BASE_X: pause from negotiation, by the resolution of
    // both ends' pause bits.
    port_interface x{PORT_INTERFACE_1000BASE_X, 1};
    ASSERT_EQ(port_api_interface_set(0, 25, &x), 0);
    ASSERT_EQ(port_api_enable_set(0, 25, 1), 0);
    port_ability both{};
    both.pause = PAUSE_BOTH;
    ASSERT_EQ(port_api_advert_ability_set(0, 25, &both), 0);
    struct row {
        uint32_t partner;
        uint32_t tx;
        uint32_t rx;
    } rows[] = {{1, 1, 1}, {2, 0, 1}, {0, 0, 0}, {3, 1, 1}};
    for (const row &r : rows) {
        tide_sim_mac_partner p{1, 1000, 1, r.partner};
        ASSERT_EQ(tide_sim_mac_partner_set(0, 25, &p), 0);
        ASSERT_EQ(port_api_autoneg_restart(0, 25), 0);
        uint32_t tx = 9, rx = 9;
        EXPECT_TRUE(tide_test::eventually([&] {
            return port_api_pause_get(0, 25, PORT_PAUSE_TX_EN, &tx) == 0 &&
                   port_api_pause_get(0, 25, PORT_PAUSE_RX_EN, &rx) == 0 && tx == r.tx && rx == r.rx;
        })) << r.partner << ": " << tx << " " << rx;
    }
    EXPECT_TRUE(tide::test::link_up(0, 25));
}

std::atomic<uint32_t> g_link_up{0};
std::atomic<uint32_t> g_link_down{0};

// A callback serves its event type on every instance of the PCS block, so
// only instance 4 (MAG 4, port 24) counts: other MAGs may still have link
// events pending from the bring-up when the interrupts are enabled.
void _on_link_up(u32, intr_module, intr_type type)
{
    g_link_up += type.addr_idx == 4;
}

void _on_link_down(u32, intr_module, intr_type type)
{
    g_link_down += type.addr_idx == 4;
}

// Port 24 is the SGMII port of MAG 4, an 8B/10B PCS: its link changes are
// the link-down (type 4) and link-up (type 5) events of that PCS's register
// instance 4.  Disabling forces the link down once; enabling turns
// negotiation on again, which may pass through down before the link is up.
TEST_F(PortLink, ALinkChangeReachesItsCallback)
{
    ASSERT_EQ(tide::test::front_ports_up(0), 0);
    ASSERT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 24); })) << tide::test::link_down_cause(0, 24);
    // The bring-up's own link events are cleared first: only the changes
    // below are to reach the callbacks.
    ASSERT_EQ(tide::port::atolreef::reg_write(0, cib_pcs_8b10b_int_stat, 4,
                                              {{cib_f_link_up_int, 1}, {cib_f_link_down_int, 1}}),
              0);
    const intr_module pcs{INTR_MOD_PCS_8B10B, 0};
    ASSERT_EQ(interrupt_api_callback_register(0, pcs, intr_type{4, 4}, _on_link_down), 0);
    ASSERT_EQ(interrupt_api_callback_register(0, pcs, intr_type{5, 4}, _on_link_up), 0);
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    g_link_up = 0;
    g_link_down = 0;
    ASSERT_EQ(port_api_enable_set(0, 24, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return g_link_down.load() == 1; })) << g_link_down.load();
    EXPECT_FALSE(tide::test::link_up(0, 24));
    const uint32_t up_before = g_link_up.load();
    ASSERT_EQ(port_api_enable_set(0, 24, 1), 0);
    EXPECT_TRUE(tide_test::eventually([&] { return g_link_up.load() > up_before; })) << g_link_up.load();
    EXPECT_TRUE(tide::test::link_up(0, 24));
}

// A burst entering by port 3 and flooded out of port 0 counts in the MIB
// of both, read through port_api_counter_get: with the MAC keeping its
// totals (a clean pulses them to 0) and with reads that clear the MAC (the
// store adds what each read finds).
TEST_F(PortLink, ABurstCountsInTheMibOfBothPortsInEitherClearMode)
{
    constexpr uint32_t kRxTotal = 0, kRxBroadcast = 8, kRx64 = 12, kTxTotal = 53, kTxBroadcast = 61;
    constexpr uint32_t kBurst = 5;
    ASSERT_EQ(tide::test::front_ports_up(0), 0);
    ASSERT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, 3) && tide::test::link_up(0, 0); }));
    auto item = [](uint32_t port, uint32_t mib) {
        uint64_t v = ~0ull;
        EXPECT_EQ(port_api_counter_get(0, port, mib, &v), 0) << port << " item " << mib;
        return v;
    };
    for (uint32_t mode : {1u, 0u}) {
        SCOPED_TRACE(mode);
        for (uint32_t port : {0u, 3u}) {
            ASSERT_EQ(tide::port::atolreef::reg_update(0, cib_mac_port_mib_cfg, port, {{cib_f_mib_clr_mode, mode}}), 0);
            ASSERT_EQ(port_api_counter_clean(0, port), 0);
        }
        const uint64_t rx = item(3, kRxTotal), rx_bc = item(3, kRxBroadcast), rx64 = item(3, kRx64);
        const uint64_t tx = item(0, kTxTotal), tx_bc = item(0, kTxBroadcast);
        for (uint32_t i = 0; i < kBurst; i++) {
            inject(3);
        }
        uint32_t left = 0;
        EXPECT_TRUE(tide_test::eventually([&] {
            left += _drain(0);
            return left == kBurst;
        })) << left;
        for (uint32_t port = 1; port < 28; port++) {
            _drain(port);
        }
        EXPECT_EQ(item(3, kRxTotal), rx + kBurst);
        EXPECT_EQ(item(3, kRxBroadcast), rx_bc + kBurst);
        EXPECT_EQ(item(3, kRx64), rx64 + kBurst);
        EXPECT_EQ(item(0, kTxTotal), tx + kBurst);
        EXPECT_EQ(item(0, kTxBroadcast), tx_bc + kBurst);
        // A second read gives the same: the MAC's total again, or the
        // store with nothing new in the MAC.
        EXPECT_EQ(item(3, kRxTotal), rx + kBurst);
        EXPECT_EQ(item(0, kTxTotal), tx + kBurst);
    }
}

class PortLinkCounterThread : public PortLink {
protected:
    PortLinkCounterThread() { counter_thread_ = true; }
};

// The counter thread's pass refreshes the "port_counter" store from the
// MAC's reads that clear it: after each burst the store holds the running
// total, without a read of the test's, and port_api_counter_get gives that
// total although the MAC now counts from 0.
TEST_F(PortLinkCounterThread, TheThreadsRefreshKeepsTheTotalAcrossReadsThatClear)
{
    constexpr uint32_t kRxTotal = 0, kBurst = 5, kPort = 3;
    ASSERT_EQ(tide::test::front_ports_up(0), 0);
    ASSERT_TRUE(tide_test::eventually([] { return tide::test::link_up(0, kPort); }));
    ASSERT_EQ(tide::port::atolreef::reg_update(0, cib_mac_port_mib_cfg, kPort, {{cib_f_mib_clr_mode, 0}}), 0);
    ASSERT_EQ(port_api_counter_clean(0, kPort), 0);
    ASSERT_NE(g_atolreef_port_counter[0], nullptr);
    const uint64_t *item = g_atolreef_port_counter[0] + kPort * PORT_MIB_ITEMS + kRxTotal;
    auto stored = [item] { return __atomic_load_n(item, __ATOMIC_ACQUIRE); };
    const uint64_t base = stored();
    for (uint32_t round = 1; round <= 2; round++) {
        SCOPED_TRACE(round);
        for (uint32_t i = 0; i < kBurst; i++) {
            inject(kPort);
        }
        const uint64_t total = base + round * kBurst;
        EXPECT_TRUE(tide_test::eventually([&] { return stored() == total; })) << stored();
        uint64_t v = 0;
        EXPECT_EQ(port_api_counter_get(0, kPort, kRxTotal, &v), 0);
        EXPECT_EQ(v, total);
    }
    for (uint32_t port = 0; port < 28; port++) {
        _drain(port);
    }
}

} // namespace
