// The model's front ports on TAP devices, in the test's own network
// namespace: the refusals of bad arguments and of the driver, frames both
// ways between a TAP and the chip, the chip's length limit on frames from
// the kernel, and unbinding and tearing down while traffic flows (this
// file runs under ThreadSanitizer too).  Tests that need TAP devices skip
// where /dev/net/tun or root is missing.
#include <gtest/gtest.h>

#include <linux/capability.h>
#include <net/if.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "support/vlan_ports.h"
#include "sim/sim_tap.h"
#include "support/fixture.h"
#include "support/netns.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

using Frame = std::vector<uint8_t>;

constexpr uint32_t kFront = 0x0FFFFFFF; // ports 0 to 27
constexpr uint64_t kBroadcast = 0xFFFFFFFFFFFFull;
constexpr uint64_t kHost = 0x020000000A01ull;
constexpr uint16_t kTestType = 0x88B5; // the local experimental ethertype
constexpr int kWaitMs = 10000;

std::vector<tide_sim_tap_info> taps()
{
    uint32_t n = 0;
    EXPECT_EQ(tide_sim_tap_list(0, nullptr, 0, &n), 0);
    std::vector<tide_sim_tap_info> v(n);
    EXPECT_EQ(tide_sim_tap_list(0, v.data(), n, &n), 0);
    v.resize(n);
    return v;
}

tide_sim_port_stats port_stats(uint32_t port)
{
    tide_sim_port_stats s{};
    EXPECT_EQ(tide_sim_port_stats_get(0, port, &s), 0);
    return s;
}

// How many frames equal to `f` wait on a port.
int waiting_copies(uint32_t port, const Frame &f)
{
    Frame got(f.size() + 1);
    tide_sim_frame_info info{};
    int n = 0;
    for (uint32_t i = 0; tide_sim_packet_peek(0, port, i, got.data(), static_cast<uint32_t>(got.size()), &info) == 0;
         i++) {
        n += info.len == f.size() && std::equal(f.begin(), f.end(), got.begin());
    }
    return n;
}

// Descriptors the process holds.
size_t open_fds()
{
    size_t n = 0;
    for (const auto &e : std::filesystem::directory_iterator("/proc/self/fd")) {
        (void)e;
        n++;
    }
    return n;
}

size_t tap_errors()
{
    size_t n = 0;
    for (const tide::test::LogLine &l : Capture::lines()) {
        n += l.module == 5 && l.level == 1 && l.text.rfind("tap: ", 0) == 0;
    }
    return n;
}

class SimTap : public SimChips {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, kFront), 0);
    }
    // Skips the test where TAP devices cannot be made.
    void need_taps()
    {
        const std::string why = tide::test::tap_unavailable();
        if (!why.empty()) {
            GTEST_SKIP() << why;
        }
    }
    std::string name(const std::string &suffix) const { return tide::test::unique_name("tt", suffix); }
};

TEST(SimTapNoModel, CallsWithoutAModelAreRefused)
{
    uint32_t n = 0;
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "tap0", 0), -17);
    EXPECT_EQ(tide_sim_tap_unbind(0, 1), -17);
    EXPECT_EQ(tide_sim_tap_list(0, nullptr, 0, &n), -17);
    EXPECT_STREQ(tide_sim_tap_errmsg(-10), "the interface name is in use");
    EXPECT_STREQ(tide_sim_tap_errmsg(-9), "Operation timed out");
}

// Refusals that the model makes before it asks the kernel: each gives its
// status and one log line, and nothing is bound.
TEST_F(SimTap, BadArgumentsAreRefusedWithALogLineEach)
{
    Capture::clear();
    EXPECT_EQ(tide_sim_tap_bind(0, 28, "tap0", 0), -4); // an inner port
    EXPECT_EQ(tide_sim_tap_bind(0, 31, "tap0", 0), -4); // the CPU port
    EXPECT_EQ(tide_sim_tap_bind(0, 1, nullptr, 0), -20);
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "", 0), -4);
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "sixteen-chars-xx", 0), -4);
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "a/b", 0), -4);
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "a b", 0), -4);
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "..", 0), -4);
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "tap0", TIDE_SIM_TAP_CREATE | TIDE_SIM_TAP_ATTACH), -4);
    EXPECT_EQ(tide_sim_tap_bind(0, 1, "tap0", 0x4), -4);
    EXPECT_EQ(tide_sim_tap_bind(1, 1, "tap0", 0), -3);
    EXPECT_EQ(tide_sim_tap_unbind(0, 28), -4);
    EXPECT_EQ(tide_sim_tap_unbind(0, 1), -7);
    EXPECT_EQ(tide_sim_tap_list(0, nullptr, 0, nullptr), -20);
    EXPECT_EQ(tap_errors(), 14u);
    EXPECT_TRUE(Capture::has("tap: bad interface name \"sixteen-chars-xx\" for port 1"));
    EXPECT_TRUE(Capture::has("tap: port 1 is not bound"));
    EXPECT_TRUE(taps().empty());
}

// Refusals of the driver, each with its status and nothing changed; a TAP
// the model created goes with its binding.
TEST_F(SimTap, RefusalsOfTheDriverChangeNothing)
{
    need_taps();
    const std::string a = name("a"), b = name("b");
    const size_t fds_unbound = open_fds();
    ASSERT_EQ(tide_sim_tap_bind(0, 1, a.c_str(), TIDE_SIM_TAP_CREATE), 0);
    const size_t fds_bound = open_fds();
    Capture::clear();
    EXPECT_EQ(tide_sim_tap_bind(0, 1, b.c_str(), 0), -8);                        // the port is bound
    EXPECT_EQ(tide_sim_tap_bind(0, 2, a.c_str(), 0), -10);                       // held by port 1
    EXPECT_EQ(tide_sim_tap_bind(0, 2, a.c_str(), TIDE_SIM_TAP_ATTACH), -10);     // the same, attaching
    EXPECT_EQ(tide_sim_tap_bind(0, 2, b.c_str(), TIDE_SIM_TAP_ATTACH), -7);      // no such interface
    EXPECT_EQ(tide_sim_tap_bind(0, 2, "lo", 0), -10);                            // not a TAP
    EXPECT_EQ(tide_sim_tap_bind(0, 2, "lo", TIDE_SIM_TAP_CREATE), -10);          // exists
    tide::sim::tap_device_path_set("/nonexistent/net/tun");
    EXPECT_EQ(tide_sim_tap_bind(0, 2, b.c_str(), 0), -16);
    tide::sim::tap_device_path_set("/dev/null"); // a device that is no TUN/TAP driver
    EXPECT_EQ(tide_sim_tap_bind(0, 2, b.c_str(), 0), -11);
    tide::sim::tap_device_path_set(nullptr);
    // Without CAP_NET_ADMIN (capabilities belong to a thread) the driver
    // creates nothing.
    int no_admin = 0;
    std::thread([&] {
        __user_cap_header_struct hdr{_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct data[2] = {};
        syscall(SYS_capget, &hdr, data);
        data[CAP_NET_ADMIN / 32].effective &= ~(1u << (CAP_NET_ADMIN % 32));
        syscall(SYS_capset, &hdr, data);
        no_admin = tide_sim_tap_bind(0, 2, b.c_str(), 0);
    }).join();
    EXPECT_EQ(no_admin, -12);
    EXPECT_EQ(tap_errors(), 9u);
    EXPECT_TRUE(Capture::has("(no TUN/TAP driver)"));
    EXPECT_EQ(if_nametoindex(b.c_str()), 0u);
    EXPECT_EQ(open_fds(), fds_bound);

    const auto held = taps();
    ASSERT_EQ(held.size(), 1u);
    EXPECT_EQ(held[0].lport, 1u);
    EXPECT_EQ(held[0].ifname, a);
    EXPECT_EQ(held[0].state, TIDE_SIM_TAP_CREATED);
    EXPECT_NE(if_nametoindex(a.c_str()), 0u);

    // The kernel numbers a name with "%d"; the list gives what it made.
    ASSERT_EQ(tide_sim_tap_bind(0, 3, name("n%d").c_str(), 0), 0);
    EXPECT_EQ(taps()[1].ifname, name("n0"));

    EXPECT_EQ(tide_sim_tap_unbind(0, 1), 0);
    EXPECT_EQ(if_nametoindex(a.c_str()), 0u);
    EXPECT_EQ(tide_sim_tap_unbind(0, 3), 0);
    EXPECT_TRUE(taps().empty());
    EXPECT_EQ(open_fds(), fds_unbound); // the TAPs and the I/O thread's eventfd
    // The port and the name are free again.
    EXPECT_EQ(tide_sim_tap_bind(0, 1, a.c_str(), TIDE_SIM_TAP_CREATE), 0);
}

// What the chip sends on a bound port goes to the TAP and not into the
// capture queue; what the kernel sends on the TAP enters the chip.
TEST_F(SimTap, FramesGoBothWays)
{
    need_taps();
    const std::string a = name("a");
    ASSERT_EQ(tide_sim_tap_bind(0, 1, a.c_str(), 0), 0);
    ASSERT_TRUE(tide::test::link_quiet(a));

    // A TAP that is down refuses the frame: counted, with its errno, and
    // named in the capture file.
    const std::string pcap = ::testing::TempDir() + "/tide_tap_" + std::to_string(getpid()) + ".pcapng";
    ASSERT_EQ(tide_sim_pcap_open(0, pcap.c_str()), 0);
    const Frame bc = tide::test::eth_frame(kBroadcast, 0x020000000B01ull, kTestType);
    ASSERT_EQ(tide_sim_packet_inject(0, 3, bc.data(), static_cast<uint32_t>(bc.size())), 0);
    ASSERT_EQ(tide_sim_pcap_close(0), 0);
    std::ifstream file(pcap, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    unlink(pcap.c_str());
    EXPECT_NE(bytes.find("not delivered, the TAP refused it: Input/output error"), std::string::npos);
    EXPECT_EQ(taps()[0].tx_dropped, 1u);
    EXPECT_EQ(taps()[0].tx_errno, EIO);
    EXPECT_EQ(port_stats(1).tx_frames, 1u);
    EXPECT_EQ(port_stats(1).waiting, 0u);
    EXPECT_EQ(port_stats(2).waiting, 1u); // an unbound port queues

    ASSERT_TRUE(tide::test::link_up(a));
    const int sock = tide::test::packet_socket(a, kTestType);
    ASSERT_GE(sock, 0);
    ASSERT_EQ(tide_sim_packet_inject(0, 3, bc.data(), static_cast<uint32_t>(bc.size())), 0);
    EXPECT_TRUE(tide::test::packet_wait(sock, [&](const Frame &f) { return f == bc; }, kWaitMs));
    EXPECT_EQ(taps()[0].tx_frames, 1u);
    EXPECT_EQ(port_stats(1).waiting, 0u);

    // From the kernel into the chip on port 1, flooded to port 2's queue.
    const Frame up = tide::test::eth_frame(kBroadcast, kHost, kTestType, 100);
    ASSERT_TRUE(tide::test::packet_send(sock, up));
    ASSERT_TRUE(tide::test::wait_until([&] { return waiting_copies(2, up) > 0; }, kWaitMs));
    EXPECT_EQ(waiting_copies(2, up), 1);
    EXPECT_GE(taps()[0].rx_frames, 1u);

    // The TAP's MTU is the user's; a frame above the chip's maximum length
    // (max_pkt_len, 16009 bytes with the FCS) is dropped with its cause.
    ASSERT_TRUE(tide::test::link_mtu(a, 16100));
    const Frame big = tide::test::eth_frame(kBroadcast, kHost, kTestType, 16006);
    const Frame jumbo = tide::test::eth_frame(kBroadcast, kHost, kTestType, 16005);
    ASSERT_TRUE(tide::test::packet_send(sock, big));
    ASSERT_TRUE(tide::test::wait_until([&] { return port_stats(1).last_drop_cause == 514; }, kWaitMs));
    ASSERT_TRUE(tide::test::packet_send(sock, jumbo));
    ASSERT_TRUE(tide::test::wait_until([&] { return waiting_copies(2, jumbo) == 1; }, kWaitMs));
    EXPECT_EQ(waiting_copies(2, big), 0);

    // A reset of the switch core leaves the binding as it is; frames keep
    // entering and meet the registers at their reset values: the MAC's
    // receive enable is clear again.
    ASSERT_EQ(cfg_.reg_write(0, 3, 0x47200, 0), 0);
    ASSERT_EQ(cfg_.reg_write(0, 3, 0x47200, 15), 0);
    ASSERT_TRUE(tide::test::packet_send(sock, up));
    ASSERT_TRUE(tide::test::wait_until(
        [&] { return port_stats(1).last_drop_cause == TIDE_SIM_CAUSE_MAC_RX_DISABLED; }, kWaitMs))
        << port_stats(1).last_drop_cause;
    EXPECT_EQ(taps().size(), 1u);
    close(sock);
}

// Unbinding while the chip writes to the TAP and the kernel sends on it,
// then tearing the model down while the kernel sends: no frame reaches the
// TAP once the unbind has returned, and nothing crashes, leaks or races.
TEST_F(SimTap, UnbindAndTearDownWhileTrafficFlows)
{
    need_taps();
    const std::string a = name("a"), b = name("b");
    tide::test::PersistentTap persistent(a);
    ASSERT_TRUE(persistent.ok());
    ASSERT_TRUE(tide::test::link_quiet(a) && tide::test::link_up(a));
    ASSERT_EQ(tide_sim_tap_bind(0, 1, a.c_str(), TIDE_SIM_TAP_ATTACH), 0);
    ASSERT_EQ(tide_sim_tap_bind(0, 2, b.c_str(), TIDE_SIM_TAP_CREATE), 0);
    ASSERT_TRUE(tide::test::link_quiet(b) && tide::test::link_up(b));
    const int sock_a = tide::test::packet_socket(a, kTestType);
    const int sock_b = tide::test::packet_socket(b, kTestType);
    ASSERT_GE(sock_a, 0);
    ASSERT_GE(sock_b, 0);

    // The chip floods frames of port 3 to both TAPs; the kernel sends on
    // both TAPs, which the chip floods on.
    std::atomic<bool> stop_inject{false}, stop_kernel{false};
    std::atomic<uint64_t> injected{0};
    std::thread injector([&] {
        const Frame f = tide::test::eth_frame(kBroadcast, 0x020000000C03ull, kTestType);
        while (!stop_inject) {
            tide_sim_packet_inject(0, 3, f.data(), static_cast<uint32_t>(f.size()));
            injected++;
        }
    });
    std::thread kernel([&] {
        const Frame f = tide::test::eth_frame(kBroadcast, kHost, kTestType);
        while (!stop_kernel) {
            tide::test::packet_send(sock_a, f);
            tide::test::packet_send(sock_b, f);
        }
    });
    ASSERT_TRUE(tide::test::wait_until(
        [&] {
            const auto t = taps();
            return t.size() == 2 && t[0].rx_frames > 100 && t[0].tx_frames > 100;
        },
        kWaitMs));

    ASSERT_EQ(tide_sim_tap_unbind(0, 1), 0);
    const int64_t written = tide::test::link_rx_packets(a);
    const uint64_t at_unbind = injected;
    ASSERT_TRUE(tide::test::wait_until([&] { return injected > at_unbind + 1000; }, kWaitMs));
    EXPECT_EQ(tide::test::link_rx_packets(a), written);
    EXPECT_NE(if_nametoindex(a.c_str()), 0u); // an attached TAP stays
    stop_inject = true;
    injector.join();

    // The model goes while the kernel still sends on port 2's TAP.
    ASSERT_TRUE(tide::test::wait_until([&] { return taps()[0].rx_frames > 200; }, kWaitMs));
    SimChips::TearDown();
    EXPECT_EQ(if_nametoindex(b.c_str()), 0u); // a created TAP goes with the model
    stop_kernel = true;
    kernel.join();
    close(sock_a);
    close(sock_b);
    SimChips::SetUp(); // for the fixture's own tear-down
}

} // namespace
