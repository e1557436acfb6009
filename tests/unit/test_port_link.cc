// From nothing to a forwarding link through the SDK only, on the chip
// model with its MAC data path gating on: interface types, enable,
// negotiation, link on both sides, a frame across, and a disabled port
// that takes its link down and stops forwarding.  Also the negotiated
// speed, duplex and pause against a partner's abilities.
#include <gtest/gtest.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include <vector>

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

bool _link(uint32_t port)
{
    uint32_t up = 0;
    return port_api_link_status_get(0, port, &up) == 0 && up == 1;
}

// Why the model holds a port's link down, for the failure messages.
uint32_t _down(uint32_t port)
{
    tide_sim_mac_port p{};
    return tide_sim_mac_port_get(0, port, &p) == 0 ? p.down : 99;
}

class PortLink : public tide::test::SimChips {
protected:
    PortLink() : SimChips(1, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        up_chip(0);
        ASSERT_EQ(tide_sim_mac_gating_set(0, 1), 0);
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, kFront), 0);
    }
    void inject(uint32_t port)
    {
        const Frame f = _broadcast();
        ASSERT_EQ(tide_sim_packet_inject(0, port, f.data(), static_cast<uint32_t>(f.size())), 0);
    }
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
    EXPECT_TRUE(tide_test::eventually([] { return _link(24) && _link(26); })) << _down(24) << " " << _down(26);
    inject(24);
    EXPECT_TRUE(tide_test::eventually([] { return _drain(26) == 1; }));
    // A disabled port is forced down: no link, nothing leaves by it.
    ASSERT_EQ(port_api_enable_set(0, 26, 0), 0);
    EXPECT_TRUE(tide_test::eventually([] { return !_link(26); }));
    EXPECT_TRUE(_link(24));
    inject(24);
    tide_sim_port_stats stats{};
    EXPECT_TRUE(tide_test::eventually([&] {
        return tide_sim_port_stats_get(0, 24, &stats) == 0 && stats.rx_frames >= 3;
    }));
    EXPECT_EQ(_drain(26), 0u);
    // Enabled again, it forwards again.
    ASSERT_EQ(port_api_enable_set(0, 26, 1), 0);
    EXPECT_TRUE(tide_test::eventually([] { return _link(26); }));
    inject(24);
    EXPECT_TRUE(tide_test::eventually([] { return _drain(26) == 1; }));
}

TEST_F(PortLink, EveryFrontPortComesUpThroughTheHarness)
{
    ASSERT_EQ(tide::test::front_ports_up(0), 0);
    for (uint32_t port = 0; port < 28; port++) {
        EXPECT_TRUE(_link(port)) << port << " down " << _down(port);
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
    EXPECT_TRUE(_link(25));
}

} // namespace
