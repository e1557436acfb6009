// The port service on the chip model: the port model after bring-up, the
// two mapping modes, the routing of every operation to its driver slot
// through a recording driver, the locks, the external PHY rule, refusals,
// link forwarding and the SerDes watchdog.
#include <gtest/gtest.h>
#include <tide/tide.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "dpl/reef/port/dpl_reef_port.h"
#include "support/fixture.h"
#include "support/port_fake.h"
#include "support/wait.h"

using tide::port::pbmp_range;
using tide::port::pbmp_test;
using tide::test::Capture;
using namespace tide::test::port_fake;

namespace {

constexpr uint32_t kFlushAddr = 0x1400028; // qm_qm_port_flush_en, LSW aperture

// ---- properties as a chip configuration would give them ------------------------------

// "key" for the chip, "key_<port>" for a port.
void _prop(const std::string &key, i32 value)
{
    ASSERT_EQ(shr_property_set(0, key.c_str(), std::to_string(value).c_str()), 0);
}

// One chip up, with the properties set before it read at bring-up.
class Port : public tide::test::SimChips {
protected:
    Port() : SimChips(1, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        up_chip(0);
        Capture::clear();
    }
    void TearDown() override
    {
        SimChips::TearDown();
        fake_port_reset();
    }
    // Every port reaches the recording driver; the MAC ports are in use.
    static void fake_driver() { fake_port_driver(0); }
    static port_config config()
    {
        port_config c{};
        EXPECT_EQ(port_api_config_get(0, &c), 0);
        return c;
    }
};

// ---- the model -------------------------------------------------------------------------

// The chip as hardware init leaves it, before any front port is brought up.
class PortBare : public Port {
protected:
    PortBare() { ports_ = false; }
};

TEST_F(PortBare, ConfigurationAfterBringUp)
{
    const port_config c = config();
    EXPECT_TRUE(tide::port::pbmp_eq(c.pbmp[PORT_CONFIG_ALL], pbmp_range(0, 31)));
    EXPECT_TRUE(tide::port::pbmp_eq(c.pbmp[PORT_CONFIG_ETHER], pbmp_range(0, 27)));
    EXPECT_TRUE(tide::port::pbmp_eq(c.pbmp[PORT_CONFIG_INNER], pbmp_range(28, 31)));
    EXPECT_TRUE(tide::port::pbmp_eq(c.pbmp[PORT_CONFIG_CPU], pbmp_range(31, 31)));
    // No interface type is set: no port is in use, and nothing else is told.
    for (u32 pos : {1u, 4u, 6u, 22u}) {
        EXPECT_TRUE(tide::port::pbmp_eq(c.pbmp[pos], port_bitmap{})) << pos;
    }
    u32 mode = 9;
    EXPECT_EQ(port_api_map_mode_get(0, &mode), 0);
    EXPECT_EQ(mode, CSL_PORT_MAP_NONE);
    // The inner ports are named in the property store both ways.
    const std::pair<u32, const char *> inner[] = {
        {28, "mirror_lb_port"}, {29, "prbs_port"}, {30, "dygasp_port"}, {31, "cpu_port"}};
    for (const auto &[lport, name] : inner) {
        EXPECT_EQ(shr_property_get(0, name, -1), static_cast<int>(lport)) << name;
        const char *stored = shr_property_port_get_str(0, static_cast<int>(lport), "inner_port");
        ASSERT_NE(stored, nullptr) << lport;
        EXPECT_STREQ(stored, name);
    }
    EXPECT_EQ(shr_property_get_str(1, "cpu_port"), nullptr); // only for the chip that started
}

TEST_F(Port, ValidityChecksAndTheirLines)
{
    EXPECT_EQ(csl_port_valid_check(0, 31), 0);
    for (u32 lport : {32u, 191u, 192u, 0xFFFFFFFFu}) {
        Capture::clear();
        EXPECT_EQ(csl_port_valid_check(0, lport), -24);
        ASSERT_EQ(Capture::lines().size(), 1u);
        EXPECT_EQ(Capture::lines()[0].text,
                  "lport: " + std::to_string(static_cast<int>(lport)) +
                      " dose not exist, please enter the correct port  \n");
        EXPECT_EQ(Capture::lines()[0].module, 4u);
        EXPECT_EQ(Capture::lines()[0].level, 1u);
    }
    Capture::clear();
    EXPECT_EQ(csl_port_valid_check(2, 0), -20); // a chip without a port model
    EXPECT_TRUE(Capture::has("chip_id2 pointer is NULL\n"));
    EXPECT_EQ(csl_port_valid_check(7, 0), -20);

    port_bitmap b = pbmp_range(0, 31);
    EXPECT_EQ(csl_port_valid_bmp_check(0, &b), 0);
    tide::port::pbmp_set(b, 100);
    Capture::clear();
    EXPECT_EQ(csl_port_valid_bmp_check(0, &b), -24);
    EXPECT_TRUE(Capture::has("lport: 100 dose not exist, please enter the correct port bitmap \n"));
    port_bitmap two{};
    tide::port::pbmp_set(two, 191);
    tide::port::pbmp_set(two, 64);
    Capture::clear();
    EXPECT_EQ(csl_port_valid_bmp_check(0, &two), -24);
    EXPECT_TRUE(Capture::has("lport: 64 dose not exist")); // the lowest one
    port_bitmap valid{};
    EXPECT_EQ(csl_port_valid_bmp_get(0, &valid), 0);
    EXPECT_TRUE(tide::port::pbmp_eq(valid, pbmp_range(0, 31)));
}

// ---- mapping modes ------------------------------------------------------------------------

TEST_F(Port, MagAndPcsChannelInBothModes)
{
    struct Row {
        u32 lport, mag, channel;
    };
    const Row mode0[] = {{8, 2, 8}, {24, 4, 24}, {25, 6, 26}, {26, 5, 25}};
    const Row mode1[] = {{8, 2, 8}, {24, 4, 24}, {26, 5, 25}, {16, 6, 26}, {23, 7, 33}};
    for (u32 mode : {0u, 1u}) {
        ASSERT_EQ(csl_atolreef_port_map_load(0, mode), 0);
        u32 got = 9;
        EXPECT_EQ(port_api_map_mode_get(0, &got), 0);
        EXPECT_EQ(got, mode);
        for (const Row &r : mode == 0 ? std::span<const Row>(mode0) : std::span<const Row>(mode1)) {
            port_serdes_id s{};
            EXPECT_EQ(port_api_serdes_id_get(0, r.lport, &s), 0) << mode << "/" << r.lport;
            EXPECT_EQ(s.count, 1u);
            EXPECT_EQ(s.serdes_id, r.mag) << mode << "/" << r.lport;
            u32 ch = 99;
            EXPECT_EQ(csl_atolreef_port_pcs_channel_get(0, r.lport, &ch), 0);
            EXPECT_EQ(ch, r.channel) << mode << "/" << r.lport;
        }
    }
    // Mode 1 has no MAC 25 (nor 27), yet the port exists.
    port_serdes_id s{};
    EXPECT_EQ(port_api_serdes_id_get(0, 25, &s), -24);
    EXPECT_EQ(csl_port_valid_check(0, 25), 0);
    EXPECT_EQ(csl_atolreef_port_map_load(0, 2), -4);
    EXPECT_TRUE(Capture::has("map_type2 out of range (range : 0~1)\n"));
}

TEST_F(Port, MappingTablesAreConsistent)
{
    for (const auto *tables : {&g_atolreef_mag_info_glue0, &g_atolreef_mag_info_glue1}) {
        const auto &macs = tables == &g_atolreef_mag_info_glue0 ? g_atolreef_mac_info_glue_0
                                                                 : g_atolreef_mac_info_glue_1;
        std::vector<bool> channel_used(CSL_ATOLREEF_PCS_CH_COUNT), link_used(64);
        u32 held = 0;
        for (u32 mag = 0; mag < CSL_PORT_MAX_MAG; mag++) {
            const csl_port_mag_info &row = (*tables)[mag];
            for (u32 mac = 0; mac < row.max_port; mac++) {
                const u32 lport = row.member[mac];
                ASSERT_LT(lport, CSL_PORT_MAX_MAC);
                EXPECT_EQ(macs[lport].mag_id, mag);
                EXPECT_EQ(macs[lport].mac, mac);
                const u32 ch = csl_atolreef_pcs_channel(mag, mac);
                ASSERT_LT(ch, CSL_ATOLREEF_PCS_CH_COUNT);
                EXPECT_FALSE(channel_used[ch]) << "channel " << ch;
                channel_used[ch] = true;
                const u32 bit = g_port_link_bitmap[mag][mac];
                ASSERT_LT(bit, 32u) << mag << "/" << mac;
                EXPECT_FALSE(link_used[(mag / 4) * 32 + bit]);
                link_used[(mag / 4) * 32 + bit] = true;
                held++;
            }
        }
        u32 absent = 0;
        for (const csl_port_mac_info &m : macs) {
            absent += m.use == CSL_PORT_ABSENT;
        }
        EXPECT_EQ(held + absent, CSL_PORT_MAX_MAC);
    }
    EXPECT_EQ(g_mac_group_id_per_mac[25], 3u);
    EXPECT_EQ(g_mac_group_id_per_mac[26], 4u);
}

class PortMode1 : public PortBare {
protected:
    void SetUp() override
    {
        _prop("map_mode", 1);
        PortBare::SetUp();
    }
};

// The property loads a mapping at bring-up; ports still wait for their
// interface types.
TEST_F(PortMode1, MappingModeFromTheConfiguration)
{
    u32 mode = 9;
    EXPECT_EQ(port_api_map_mode_get(0, &mode), 0);
    EXPECT_EQ(mode, 1u);
    port_serdes_id s{};
    EXPECT_EQ(port_api_serdes_id_get(0, 16, &s), 0);
    EXPECT_EQ(s.serdes_id, 6u);
    u32 v = 0;
    EXPECT_EQ(port_api_enable_set(0, 16, 1), -24);
    EXPECT_EQ(port_api_enable_get(0, 16, &v), -24);
    port_interface sgmii{PORT_INTERFACE_SGMII, 1};
    EXPECT_EQ(port_api_interface_set(0, 16, &sgmii), 0);
}

// ---- routing through the driver ----------------------------------------------------------------

alignas(16) u32 g_scratch[256];

// The first u32 after the chip is the port (or a chip-wide value) 5;
// pointers point at a scratch record that starts with the word 1.
template <typename T>
T _arg(bool first_u32)
{
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<T>(g_scratch);
    } else if constexpr (std::is_same_v<T, u32>) {
        return first_u32 ? 5u : 0u;
    } else {
        return T{};
    }
}

template <typename... A, size_t... I>
i32 _call_indexed(i32 (*fn)(u32, A...), std::index_sequence<I...>)
{
    constexpr size_t first = first_u32_index<A...>();
    return fn(0, _arg<A>(I == first)...);
}

template <typename... A>
i32 _call(i32 (*fn)(u32, A...))
{
    g_scratch[0] = 1; // 1000BASE-X; MAC-OUTER loop
    return _call_indexed(fn, std::index_sequence_for<A...>{});
}

struct Route {
    const char *op;
    std::vector<std::string> slots;
    char kind; // 'p' the port 5, 'c' the chip (port 0), '-' not checked
};

const std::vector<Route> kRoutes = {
    {"map_mode_set", {"mapping_mode_set"}, 'c'},
    {"map_mode_get", {"mapping_mode_get"}, 'c'},
    {"interface_set", {"serdes_id_get", "port_interface_type_set", "port_force_link_set"}, 'p'},
    {"interface_get", {"port_interface_type_get"}, 'p'},
    {"config_get", {"port_config_get"}, 'c'},
    {"tx_rx_enable_set", {"port_tx_rx_enable_set"}, 'p'},
    {"tx_rx_enable_get", {"port_tx_rx_enable_get"}, 'p'},
    {"enable_set", {"port_enable_set"}, 'p'},
    {"enable_get", {"port_enable_get"}, 'p'},
    {"autoneg_set", {"pcs_an_enable_set"}, 'p'},
    {"autoneg_get", {"pcs_an_enable_get"}, 'p'},
    {"autoneg_restart", {"autoneg_restart_set"}, 'p'},
    {"advert_ability_set", {"advert_ability_set"}, 'p'},
    {"advert_ability_get", {"advert_ability_get"}, 'p'},
    {"local_ability_get", {"local_ability_get"}, 'p'},
    {"remote_ability_get", {}, '-'},
    {"speed_set", {"port_speed_set"}, 'p'},
    {"speed_get", {"port_speed_get"}, 'p'},
    {"duplex_set", {"port_duplex_set"}, 'p'},
    {"duplex_get", {"port_duplex_get"}, 'p'},
    {"vlan_pause_set", {"vlan_pause_set"}, 'p'},
    {"vlan_pause_get", {"vlan_pause_get"}, 'p'},
    {"pause_set", {"mac_pause_set"}, 'p'},
    {"pause_get", {"mac_pause_get"}, 'p'},
    {"pause_addr_set", {"mac_pause_smac_set"}, 'p'},
    {"pause_addr_get", {"mac_pause_smac_get"}, 'p'},
    {"max_frame_set", {"max_frame_set"}, 'p'},
    {"max_frame_get", {"max_frame_get"}, 'p'},
    {"min_frame_set", {"min_frame_set"}, 'p'},
    {"min_frame_get", {"min_frame_get"}, 'p'},
    {"mac_link_status_get", {"mac_link_status_get"}, 'p'},
    {"link_status_get", {"link_status_get"}, 'p'},
    {"ifg_set", {"ifg_set"}, 'p'},
    {"ifg_get", {"ifg_get"}, 'p'},
    {"fault_get", {"mac_fault_status_get"}, 'p'},
    {"counter_get", {"counter_get"}, 'p'},
    {"counter_clean", {"port_counter_clean"}, 'p'},
    {"loopback_set", {"port_loopback_set"}, 'p'},
    {"loopback_get", {"port_loopback_get"}, 'p'},
    {"force_set", {"port_force_link_set"}, 'p'},
    {"force_get", {"port_force_link_get"}, 'p'},
    {"crc_set", {"port_crc_set"}, 'p'},
    {"crc_get", {"port_crc_get"}, 'p'},
    {"dic_mode_set", {"dic_mode_set"}, 'p'},
    {"dic_mode_get", {"dic_mode_get"}, 'p'},
    {"clk_delta_get", {"clk_delta_result_get"}, 'p'},
    {"mac_phy_mode_set", {"mac_phy_mode_set"}, 'c'},
    {"mac_phy_mode_get", {"mac_phy_mode_get"}, 'c'},
    {"serdes_id_get", {"serdes_id_get"}, 'p'},
    {"transmit_path_set", {"port_transmit_path_set"}, '-'},
    {"transmit_path_get", {"port_transmit_path_get"}, '-'},
    {"cfg_control_set", {"cfg_control_set"}, 'p'},
    {"cfg_control_get", {"cfg_control_get"}, 'p'},
    {"basic_info_get", {"basic_info_get"}, 'p'},
    {"alm_info_get", {"alm_info_get"}, 'p'},
    {"reset", {"port_reset_set"}, 'p'},
};

TEST_F(Port, EveryOperationReachesItsDriverSlot)
{
    fake_driver();
    std::map<std::string, i32 (*)()> ops;
#define PORT_CALL(name, params, args) ops[#name] = [] { return _call(port_api_##name); };
    TIDE_PORT_OPS(PORT_CALL)
#undef PORT_CALL
    ASSERT_EQ(ops.size(), 56u);
    ASSERT_EQ(kRoutes.size(), 56u);
    for (const Route &r : kRoutes) {
        ASSERT_EQ(ops.count(r.op), 1u) << r.op;
        calls_clear();
        g_fake_rc = 0;
        EXPECT_EQ(ops[r.op](), 0) << r.op;
        EXPECT_EQ(slots(), r.slots) << r.op;
        for (const Call &c : calls()) {
            if (r.kind == 'p') {
                EXPECT_EQ(c.lport, 5u) << r.op << " " << c.slot;
            } else if (r.kind == 'c') {
                EXPECT_EQ(c.lport, 0u) << r.op << " " << c.slot;
            }
        }
        // The driver's status comes back unchanged.
        g_fake_rc = -11;
        EXPECT_EQ(ops[r.op](), r.slots.empty() ? 0 : -11) << r.op;
    }
}

TEST_F(Port, OperationsWithoutADriverSucceedAndDoNothing)
{
    csl_port_control_get(0)->port_config.pbmp[PORT_CONFIG_ACTIVE] = pbmp_range(0, 27);
    for (u32 lport = 0; lport < 32; lport++) {
        g_dpl_reef_port_control[0][lport].driver = nullptr;
    }
    u32 v = 77;
    EXPECT_EQ(port_api_speed_get(0, 3, &v), 0);
    EXPECT_EQ(v, 77u);
    EXPECT_EQ(port_api_enable_set(0, 3, 0), 0);
    EXPECT_EQ(port_api_mac_phy_mode_set(0, 1), 0);
}

// ---- locks ---------------------------------------------------------------------------------

std::mutex g_gate_mu;
std::condition_variable g_gate_cv;
std::map<u32, int> g_inside_now; // calls inside the driver, by port
int g_max_inside_one_port;
int g_total_inside;
int g_max_total_inside;
int g_entered;
bool g_release;
bool g_overlap; // calls on two ports were inside at once

void _gate(const char *, u32 lport)
{
    std::unique_lock<std::mutex> hold(g_gate_mu);
    g_entered++;
    g_max_inside_one_port = std::max(g_max_inside_one_port, ++g_inside_now[lport]);
    g_max_total_inside = std::max(g_max_total_inside, ++g_total_inside);
    g_overlap = g_overlap || g_inside_now.size() > 1;
    g_gate_cv.notify_all();
    // Wait for a release, or for a call on another port to be inside too.
    g_gate_cv.wait_for(hold, tide_test::kPatience, [] { return g_release || g_overlap; });
    g_inside_now[lport]--;
    g_total_inside--;
    if (g_inside_now[lport] == 0) {
        g_inside_now.erase(lport);
    }
}

void _gate_reset()
{
    std::lock_guard<std::mutex> hold(g_gate_mu);
    g_inside_now.clear();
    g_max_inside_one_port = 0;
    g_total_inside = 0;
    g_max_total_inside = 0;
    g_entered = 0;
    g_release = false;
    g_overlap = false;
}

void _wait_entered(int n)
{
    std::unique_lock<std::mutex> hold(g_gate_mu);
    ASSERT_TRUE(g_gate_cv.wait_for(hold, tide_test::kPatience, [n] { return g_entered >= n; }));
}

void _release()
{
    std::lock_guard<std::mutex> hold(g_gate_mu);
    g_release = true;
    g_gate_cv.notify_all();
}

TEST_F(Port, TwoPortsRunInParallel)
{
    fake_driver();
    _gate_reset();
    g_inside = _gate;
    // Each call waits inside the driver until the other one is inside too:
    // both return only if the two ports' calls overlap.
    u32 a = 0, b = 0;
    std::thread t1([&] { EXPECT_EQ(port_api_enable_get(0, 1, &a), 0); });
    std::thread t2([&] { EXPECT_EQ(port_api_enable_get(0, 2, &b), 0); });
    t1.join();
    t2.join();
    EXPECT_TRUE(g_overlap);
    EXPECT_EQ(g_max_total_inside, 2);
}

TEST_F(Port, OnePortSerializesAndHoldsOnlyItsLock)
{
    fake_driver();
    _gate_reset();
    g_inside = _gate;
    std::thread first([] { EXPECT_EQ(port_api_enable_set(0, 3, 1), 0); });
    _wait_entered(1);
    // Inside the driver: port 3's lock is held, the chip lock and port 4's
    // are free.
    EXPECT_EQ(xsal_mutex_trylock(g_dpl_reef_port_control[0][3].lock), -1);
    EXPECT_EQ(xsal_mutex_trylock(g_dpl_reef_port_control[0][4].lock), 0);
    xsal_mutex_unlock(g_dpl_reef_port_control[0][4].lock);
    EXPECT_EQ(xsal_mutex_trylock(g_dpl_reef_port_chip_lock[0]), 0);
    xsal_mutex_unlock(g_dpl_reef_port_chip_lock[0]);
    u32 v = 0;
    std::atomic<pid_t> second_tid{0};
    std::thread second([&] {
        second_tid = tide_test::thread_id();
        EXPECT_EQ(port_api_enable_get(0, 3, &v), 0);
    });
    // Once the second call sleeps, it waits at the port's lock: it has not
    // reached the driver.
    tide_test::eventually([&] { return second_tid.load() != 0 && tide_test::thread_sleeps(second_tid.load()); });
    {
        std::lock_guard<std::mutex> hold(g_gate_mu);
        EXPECT_EQ(g_entered, 1);
    }
    _release();
    first.join();
    second.join();
    EXPECT_EQ(g_entered, 2);
    EXPECT_EQ(g_max_inside_one_port, 1);
    EXPECT_FALSE(g_overlap);
}

void _chip_lock_probe(const char *slot, u32)
{
    // Called on the caller's thread: the probes run on another one.
    int chip = 0, port0 = 0;
    std::thread([&] {
        chip = xsal_mutex_trylock(g_dpl_reef_port_chip_lock[0]);
        if (chip == 0) {
            xsal_mutex_unlock(g_dpl_reef_port_chip_lock[0]);
        }
        port0 = xsal_mutex_trylock(g_dpl_reef_port_control[0][0].lock);
        if (port0 == 0) {
            xsal_mutex_unlock(g_dpl_reef_port_control[0][0].lock);
        }
    }).join();
    const std::string s = slot;
    const bool transmit = s.find("transmit_path") != std::string::npos;
    EXPECT_EQ(chip, transmit ? 0 : -1) << slot;
    EXPECT_EQ(port0, transmit ? -1 : 0) << slot;
}

TEST_F(Port, ChipWideOperationsHoldTheChipLock)
{
    fake_driver();
    g_inside = _chip_lock_probe;
    port_config c{};
    u32 v = 0;
    EXPECT_EQ(port_api_config_get(0, &c), 0);
    EXPECT_EQ(port_api_map_mode_set(0, 1), 0);
    EXPECT_EQ(port_api_mac_phy_mode_get(0, &v), 0);
    EXPECT_EQ(port_api_transmit_path_set(0, 1, 0, 0), 0);
    EXPECT_EQ(calls().size(), 4u);
}

// ---- external PHY and loopback -------------------------------------------------------------

TEST_F(Port, ExternalPhyOwnsSpeedDuplexAutonegAndLoopbackGet)
{
    _prop("port_phy_int_ext_5", 1);
    fake_driver();
    EXPECT_EQ(port_api_speed_set(0, 5, 99999), 0);
    EXPECT_EQ(port_api_autoneg_set(0, 5, 1), 0);
    EXPECT_EQ(port_api_duplex_set(0, 5, 0), 0);
    u32 speed = 7, an = 7, duplex = 7;
    port_loopback loop{3, 1};
    EXPECT_EQ(port_api_speed_get(0, 5, &speed), 0);
    EXPECT_EQ(port_api_autoneg_get(0, 5, &an), 0);
    EXPECT_EQ(port_api_duplex_get(0, 5, &duplex), 0);
    EXPECT_EQ(port_api_loopback_get(0, 5, &loop), 0);
    EXPECT_EQ(speed, 7u);
    EXPECT_EQ(an, 7u);
    EXPECT_EQ(duplex, 7u);
    EXPECT_EQ(loop.loop_mode, 3u);
    EXPECT_TRUE(calls().empty());
    // Still checked: a port not in use is refused first.
    EXPECT_EQ(port_api_speed_set(0, 29, 1000), -24);
    // Abilities, link status and the MAC calls go on as usual.
    port_ability ab{};
    EXPECT_EQ(port_api_advert_ability_get(0, 5, &ab), 0);
    EXPECT_EQ(port_api_link_status_get(0, 5, &speed), 0);
    EXPECT_EQ(dpl_reef_mac_speed_set(0, 5, 1000), 0);
    EXPECT_EQ(slots(), (std::vector<std::string>{"advert_ability_get", "link_status_get", "port_speed_set"}));
}

// The MAC sees the loop it is to make: the PHY loops of a port with an
// external PHY become no loop, and are refused on a port without one.
TEST_F(Port, LoopbackModeMapping)
{
    _prop("port_phy_int_ext_5", 1);
    fake_driver();
    static u32 g_seen_mode;
    struct Case {
        u32 lport, mode;
        i32 rc;
        u32 driver_mode; // ~0: no driver call
    } cases[] = {
        {5, PORT_LOOP_PHY_INNER, 0, PORT_LOOP_NONE}, {5, PORT_LOOP_PHY_OUTER, 0, PORT_LOOP_NONE},
        {5, PORT_LOOP_MAC_INNER, 0, PORT_LOOP_MAC_INNER}, {6, PORT_LOOP_PHY_INNER, -24, ~0u},
        {6, PORT_LOOP_PHY_OUTER, -24, ~0u}, {6, PORT_LOOP_MAC_OUTER, 0, PORT_LOOP_MAC_OUTER},
        {6, PORT_LOOP_NONE, 0, PORT_LOOP_NONE},
    };
    csl_port_driver_t spy = g_fake;
    spy.port_loopback_set = [](u32, u32, port_loopback *l) {
        g_seen_mode = l->loop_mode;
        return 0;
    };
    for (u32 lport : {5u, 6u}) {
        g_dpl_reef_port_control[0][lport].driver = &spy;
    }
    for (const Case &c : cases) {
        g_seen_mode = ~0u;
        port_loopback loop{c.mode, 1};
        EXPECT_EQ(port_api_loopback_set(0, c.lport, &loop), c.rc) << c.lport << "/" << c.mode;
        EXPECT_EQ(g_seen_mode, c.driver_mode) << c.lport << "/" << c.mode;
        EXPECT_EQ(loop.loop_mode, c.mode); // the caller's record is left alone
    }
    EXPECT_TRUE(Capture::has("chip_id0 lport6 loop mode 4 needs an external phy\n"));
}

// ---- refusals -----------------------------------------------------------------------------------

TEST_F(Port, BadInputIsRefusedBeforeAnythingIsTouched)
{
    fake_driver();
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    u32 v = 0;
    port_interface intf{PORT_INTERFACE_SGMII, 1};
    // Ports that do not exist, or are not in use.
    for (u32 lport : {32u, 28u, 31u, 500u}) {
        Capture::clear();
        EXPECT_EQ(port_api_enable_set(0, lport, 1), -24) << lport;
        EXPECT_TRUE(Capture::has("lport: " + std::to_string(lport) + " dose not exist"));
    }
    EXPECT_EQ(port_api_interface_set(0, 32, &intf), -24);
    EXPECT_EQ(port_api_interface_set(0, 32, nullptr), -24); // the port comes first
    // NULL records.
    Capture::clear();
    EXPECT_EQ(port_api_interface_set(0, 3, nullptr), -20);
    EXPECT_TRUE(Capture::has("chip_id0 input para is NULL pointer\n"));
    EXPECT_EQ(port_api_enable_get(0, 3, nullptr), -20);
    EXPECT_EQ(port_api_force_get(0, 3, &v, nullptr), -20);
    EXPECT_EQ(port_api_config_get(0, nullptr), -20);
    EXPECT_EQ(port_api_transmit_path_get(0, &v, nullptr, &v), -20);
    EXPECT_EQ(port_api_remote_ability_get(0, 3, nullptr), -20);
    // Interface types without a SerDes speed.
    for (u32 type : {0u, 9u, 11u, 16u, 21u, 1000u}) {
        Capture::clear();
        port_interface bad{type, 1};
        EXPECT_EQ(port_api_interface_set(0, 3, &bad), -24) << type;
        EXPECT_TRUE(Capture::has("chip_id0 lport3 interface type " + std::to_string(type) + " has no serdes speed\n"));
    }
    EXPECT_EQ(slots(), std::vector<std::string>(6, "serdes_id_get"));
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
}

TEST_F(Port, SerdesSpeedIdFollowsThePllSelection)
{
    struct Row {
        u32 type, id15, id20;
    } rows[] = {{1, 11, 11}, {2, 11, 11}, {3, 12, 17}, {8, 12, 17},  {4, 13, 13},  {6, 13, 13}, {17, 13, 13},
                {5, 14, 14}, {7, 14, 14}, {10, 15, 20}, {13, 15, 20}, {14, 15, 20}, {20, 15, 20}};
    _prop("serdes_freq_pll_sel_4", 0);
    for (const Row &r : rows) {
        u32 id = 0;
        EXPECT_EQ(dpl_reef_port_serdes_speed_get(0, 3, r.type, &id), 0);
        EXPECT_EQ(id, r.id15) << r.type;
        EXPECT_EQ(dpl_reef_port_serdes_speed_get(0, 4, r.type, &id), 0);
        EXPECT_EQ(id, r.id20) << r.type;
    }
}

// A failing driver ends the change; a port that the new type leaves
// unused is not forced back to normal link mode.
TEST_F(Port, InterfaceChangeStopsAtTheDriverAndRestoresLinkOnlyOnPortsInUse)
{
    fake_driver();
    port_interface intf{PORT_INTERFACE_QSGMII, 4};
    csl_port_driver_t failing = g_fake;
    failing.port_interface_type_set = [](u32, u32, port_interface *) { return -4; };
    g_dpl_reef_port_control[0][2].driver = &failing;
    Capture::clear();
    EXPECT_EQ(port_api_interface_set(0, 2, &intf), -4);
    EXPECT_TRUE(Capture::has("errcode = -4 [Invalid parameter]\n"));
    EXPECT_EQ(slots(), (std::vector<std::string>{"serdes_id_get"}));

    g_dpl_reef_port_control[0][2].driver = &g_fake;
    csl_port_control_get(0)->port_config.pbmp[PORT_CONFIG_ACTIVE] = port_bitmap{};
    calls_clear();
    EXPECT_EQ(port_api_interface_set(0, 2, &intf), 0);
    EXPECT_EQ(slots(), (std::vector<std::string>{"serdes_id_get", "port_interface_type_set"}));
}

// ---- link forwarding ----------------------------------------------------------------------------

u32 _flush_word()
{
    u32 v = 0;
    EXPECT_EQ(tide_sim_reg_peek(0, 4, kFlushAddr, &v), 0);
    return v;
}

port_bitmap _ports(std::initializer_list<u32> ports)
{
    port_bitmap b{};
    for (u32 p : ports) {
        tide::port::pbmp_set(b, p);
    }
    return b;
}

TEST_F(Port, LinkForwardingWritesTheFlushWordAndKeepsInnerBits)
{
    ASSERT_EQ(tide_sim_reg_poke(0, 4, kFlushAddr, 0xA0000010u), 0);
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    const port_bitmap up = _ports({0, 1, 2});
    ASSERT_EQ(dpl_reef_port_link_fwd_pbmp_set(0, &up), 0);
    const auto writes = tide::test::sim_writes(0);
    ASSERT_EQ(writes.size(), 28u); // one read-modify-write per front port
    for (const auto &w : writes) {
        EXPECT_EQ(w.bar, 4u);
        EXPECT_EQ(w.addr, kFlushAddr);
    }
    EXPECT_EQ(writes.back().value, 0xAFFFFFF8u);
    port_bitmap cur{};
    ASSERT_EQ(dpl_reef_port_link_fwd_pbmp_get(0, &cur), 0);
    EXPECT_TRUE(tide::port::pbmp_eq(cur, _ports({0, 1, 2, 28, 29, 30, 31})));
}

TEST_F(Port, BlockingHoldsPortsClosedAndUnblockingRestoresThem)
{
    const port_bitmap up = _ports({0, 1, 2, 7});
    ASSERT_EQ(dpl_reef_port_link_fwd_pbmp_set(0, &up), 0);
    const u32 open = _flush_word();
    EXPECT_EQ(open & 0x0FFFFFFFu, 0x0FFFFF78u);

    ASSERT_EQ(dpl_reef_port_link_fwd_block(0, 1), 0);
    EXPECT_EQ(_flush_word(), open | 0x2u);
    // A blocked port that links stays closed, and opens when unblocked.
    ASSERT_EQ(dpl_reef_port_link_fwd_block(0, 5), 0);
    ASSERT_EQ(dpl_reef_port_link_fwd_port_add(0, 5), 0);
    EXPECT_NE(_flush_word() & (1u << 5), 0u);
    ASSERT_EQ(dpl_reef_port_link_fwd_unblock(0, 5), 0);
    EXPECT_EQ(_flush_word() & (1u << 5), 0u);
    ASSERT_EQ(dpl_reef_port_link_fwd_unblock(0, 1), 0);
    const u32 with5 = _flush_word();
    EXPECT_EQ(with5, open & ~(1u << 5));

    ASSERT_EQ(dpl_reef_port_link_fwd_block_all(0), 0);
    EXPECT_EQ(_flush_word() & 0x0FFFFFFFu, 0x0FFFFFFFu);
    port_bitmap cur{};
    ASSERT_EQ(dpl_reef_port_link_fwd_pbmp_get(0, &cur), 0);
    EXPECT_TRUE(tide::port::pbmp_eq(cur, _ports({0, 1, 2, 5, 7, 28, 29, 30, 31})));
    ASSERT_EQ(dpl_reef_port_link_fwd_unblock_all(0), 0);
    EXPECT_EQ(_flush_word(), with5);

    ASSERT_EQ(dpl_reef_port_link_fwd_port_del(0, 0), 0);
    EXPECT_EQ(_flush_word(), with5 | 1u);
}

TEST_F(Port, LinkForwardingRefusals)
{
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    const port_bitmap stranger = _ports({3, 40});
    EXPECT_EQ(dpl_reef_port_link_fwd_pbmp_set(0, &stranger), -24);
    EXPECT_EQ(dpl_reef_port_link_fwd_pbmp_set(0, nullptr), -20);
    EXPECT_EQ(dpl_reef_port_link_fwd_port_add(0, 32), -24);
    EXPECT_EQ(dpl_reef_port_link_fwd_block(0, 192), -24);
    EXPECT_EQ(dpl_reef_port_link_fwd_pbmp_get(2, nullptr), -3);
    EXPECT_EQ(dpl_reef_port_link_fwd_block_all(9), -3);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
}

// ---- the SerDes watchdog ---------------------------------------------------------------------

// The receive path of lane 0 restarts by its PCS watchdog (lane_cfg1).
bool _lane0_rx_reset_written()
{
    constexpr u32 kLane0Cfg1 = 0x850084;
    for (const tide_sim_write &w : tide::test::sim_writes(0)) {
        if (w.bar == 4 && w.addr == kLane0Cfg1) {
            return true;
        }
    }
    return false;
}

TEST_F(Port, WatchdogResetsOnlyADownLaneThatLostItsClock)
{
    fake_driver();
    struct Case {
        u32 link, type, rx_delta, phy_ext;
        bool reset;
    } cases[] = {
        {1, PORT_INTERFACE_SGMII, 500, 0, false},      // link up
        {0, PORT_INTERFACE_SGMII, 99, 0, false},       // clock within bounds
        {0, PORT_INTERFACE_SGMII, 100, 0, true},       // the lane restarts its receive path
        {2, PORT_INTERFACE_SGMII, 100, 1, true},       // link unknown
        {0, PORT_INTERFACE_1000BASE_X, 0, 0, true},    // no clock check on 1000BASE-X
        {1, PORT_INTERFACE_1000BASE_X, 0, 1, false},
    };
    // Lane 0 has no interface type of its own and came up powered down:
    // its receiver runs so that a reset has a watchdog to restart.
    serdes_power rx_up{SERDES_POWER_RX, SERDES_POWER_UP};
    ASSERT_EQ(serdes_api_power_set(0, 0, &rx_up), 0);
    for (const Case &c : cases) {
        g_answer["mac_link_status_get"] = c.link;
        g_answer["port_interface_type_get"] = c.type;
        g_answer["clk_delta_result_get"] = c.rx_delta;
        _prop("port_phy_int_ext_9", static_cast<i32>(c.phy_ext));
        Capture::clear();
        ASSERT_EQ(tide_sim_write_log_clear(0), 0);
        EXPECT_EQ(dpl_reef_port_chk_sds_status(0, 9), 0) << c.link << "/" << c.type << "/" << c.rx_delta;
        EXPECT_EQ(Capture::has("chip_id0 lport9 serdes0 lost its receive clock"), c.reset);
        EXPECT_EQ(_lane0_rx_reset_written(), c.reset);
    }
    // A lane under test is left alone.
    serdes_prbs prbs{1, SERDES_DIR_TX, SERDES_PRBS7, nullptr};
    ASSERT_EQ(serdes_api_prbs_set(0, 0, &prbs), 0);
    g_answer["mac_link_status_get"] = 0;
    g_answer["port_interface_type_get"] = PORT_INTERFACE_1000BASE_X;
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    EXPECT_EQ(dpl_reef_port_chk_sds_status(0, 9), 0);
    EXPECT_FALSE(_lane0_rx_reset_written());
    EXPECT_EQ(dpl_reef_port_chk_sds_status(7, 9), -3);
    EXPECT_EQ(dpl_reef_port_chk_sds_status(2, 9), -3);
}

// ---- bring-up ---------------------------------------------------------------------------------

TEST_F(Port, StepsOfBringUpAndTearDown)
{
    down_chip(0);
    Capture::clear();
    up_chip(0);
    const long base = Capture::find("[SOFT-INIT:          base]............[OK]\r\n");
    const long port = Capture::find("[SOFT-INIT:          port]............[OK]\r\n");
    const long phase1 = Capture::find("[CHIP-INIT:   port_phase1]............[OK]\r\n");
    const long hw_base = Capture::find("[CHIP-INIT:          base]............[OK]\r\n");
    const long phase2 = Capture::find("[CHIP-INIT:   port_phase2]............[OK]\r\n");
    EXPECT_GE(base, 0);
    EXPECT_GT(port, base);
    EXPECT_GT(phase1, port);
    EXPECT_GT(hw_base, phase1);
    EXPECT_GT(phase2, hw_base);
    EXPECT_EQ(dpl_reef_port_soft_init(0), 0); // already done
    Capture::clear();
    down_chip(0);
    EXPECT_GT(Capture::find("[SOFT-DEINIT:          base]"), Capture::find("[SOFT-DEINIT:          port]"));
    EXPECT_FALSE(Capture::has("CHIP-DEINIT:          port"));
    EXPECT_EQ(csl_port_control_get(0), nullptr);
    EXPECT_EQ(g_dpl_reef_port_chip_lock[0], nullptr);
    // The port stop takes back the inner ports' names that its start added;
    // a key that the configuration had stays, with the start's value.
    EXPECT_EQ(shr_property_get_str(0, "cpu_port"), nullptr);
    EXPECT_EQ(shr_property_get_str(0, "inner_port_31"), nullptr);
    ASSERT_EQ(shr_property_set(0, "inner_port_29", "prbs"), 0);
    up_chip(0);
    EXPECT_STREQ(shr_property_get_str(0, "inner_port_29"), "prbs_port");
    down_chip(0);
    EXPECT_STREQ(shr_property_get_str(0, "inner_port_29"), "prbs_port");
    EXPECT_EQ(shr_property_get_str(0, "prbs_port"), nullptr);
}

// A sibling chip has the frame but no ports of its own.
class PortSibling : public tide::test::SimChips {
protected:
    PortSibling() : SimChips(1, 0) {}
};

TEST_F(PortSibling, HasNoPortDriver)
{
    tide::test::kelpreef_identity_set(0);
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    EXPECT_EQ(shr_chip_type_get(0), 1u);
    u32 v = 0;
    EXPECT_EQ(port_api_enable_get(0, 0, &v), -24);
    EXPECT_EQ(csl_port_valid_check(0, 0), -24);
    EXPECT_EQ(dpl_reef_port_chk_sds_status(0, 0), -24);
    const port_bitmap none{};
    EXPECT_EQ(dpl_reef_port_link_fwd_pbmp_set(0, &none), -24);
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

} // namespace
