// Real hosts on the simulated switch: four network namespaces, each with a
// TAP bound to a front port of the model (ports 1 to 3 in VLAN 1, port 4
// outside it).  The hosts ping each other by IPv6 link-local addresses,
// the chip learns them, a static MAC entry diverts their traffic, an ARP
// broadcast floods the VLAN only, and a host whose namespace is deleted
// leaves its binding marked gone.  Skipped where namespaces or TAP devices
// cannot be made.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/icmp6.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "support/vlan_ports.h"
#include "support/fixture.h"
#include "support/netns.h"

using tide::test::NetNs;
using tide::test::SimChips;

namespace {

using Frame = std::vector<uint8_t>;

constexpr uint32_t kHosts = 4;          // on ports 1 to 4
constexpr uint32_t kVlanPorts = 0xE;    // ports 1, 2 and 3
constexpr uint16_t kEthIpv6 = 0x86DD, kEthArp = 0x0806;
constexpr uint8_t kIpv6Icmp = 58;
constexpr int kWaitMs = 10000;
constexpr uint16_t kPingId = 0x7A1D;

uint64_t mac_of(uint32_t host)
{
    return 0x020000005E00ull | host;
}

std::string mac_text(uint32_t host)
{
    char s[18];
    snprintf(s, sizeof(s), "02:00:00:00:5e:%02x", host);
    return s;
}

l2_addr l2_key(uint32_t host)
{
    l2_addr a{};
    a.flags = L2_FLAG_KEY_VID;
    const uint64_t mac = mac_of(host);
    for (int i = 0; i < 6; i++) {
        a.mac[i] = static_cast<uint8_t>(mac >> (8 * (5 - i)));
    }
    a.vid = 1;
    return a;
}

// The port the chip's MAC table gives a host, or -1.
int learned_port(uint32_t host)
{
    l2_addr a = l2_key(host);
    return l2_api_addr_get(0, &a) == 0 ? static_cast<int>(a.port) : -1;
}

bool is_echo_request(const Frame &f, uint16_t seq)
{
    return tide::test::eth_type(f) == kEthIpv6 && f.size() >= 62 && f[20] == kIpv6Icmp &&
           f[54] == ICMP6_ECHO_REQUEST && (f[58] << 8 | f[59]) == kPingId && (f[60] << 8 | f[61]) == seq;
}

class TapLab : public SimChips {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        const std::string why = tide::test::netns_unavailable();
        if (!why.empty()) {
            GTEST_SKIP() << why;
        }
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kVlanPorts, kVlanPorts), 0);
        for (uint32_t h = 1; h <= kHosts; h++) {
            add_host(h);
        }
    }
    void TearDown() override
    {
        for (uint32_t h = 1; h <= kHosts; h++) {
            tide_sim_tap_unbind(0, h);
        }
        SimChips::TearDown();
        for (auto &ns : ns_) {
            ns.reset();
        }
    }

    // Host h: a TAP bound to port h, moved into a namespace of its own,
    // with a fixed MAC address and the link-local address fe80::h.
    void add_host(uint32_t h)
    {
        const std::string ifname = tap(h);
        ns_[h] = std::make_unique<NetNs>(tide::test::unique_name("tide", "h" + std::to_string(h)));
        ASSERT_TRUE(ns_[h]->ok());
        ASSERT_EQ(tide_sim_tap_bind(0, h, ifname.c_str(), TIDE_SIM_TAP_CREATE), 0);
        ASSERT_EQ(tide::test::run_program({"ip", "link", "set", "dev", ifname, "netns", ns_[h]->name()}), 0);
        ASSERT_TRUE(ns_[h]->ip({"link", "set", "dev", ifname, "address", mac_text(h)}));
        ASSERT_TRUE(ns_[h]->ip({"link", "set", "dev", ifname, "up"}));
        // No duplicate address detection: the address is usable at once.
        ASSERT_TRUE(ns_[h]->ip({"addr", "add", "fe80::" + std::to_string(h) + "/64", "dev", ifname, "nodad"}));
    }

    std::string tap(uint32_t h) const { return tide::test::unique_name("tt", "h" + std::to_string(h)); }

    // A socket of host h: opened in its namespace.
    int socket_in(uint32_t h, const std::function<int()> &open_it) const
    {
        int fd = -1;
        ns_[h]->run([&] { fd = open_it(); });
        return fd;
    }
    int packet_socket(uint32_t h, uint16_t ethertype) const
    {
        const std::string ifname = tap(h);
        return socket_in(h, [&] { return tide::test::packet_socket(ifname, ethertype); });
    }
    // An ICMPv6 socket of host h, and where fe80::to is from it.
    int icmp_socket(uint32_t h, uint32_t to, sockaddr_in6 *dst) const
    {
        const std::string ifname = tap(h);
        return socket_in(h, [&] {
            *dst = sockaddr_in6{};
            dst->sin6_family = AF_INET6;
            inet_pton(AF_INET6, ("fe80::" + std::to_string(to)).c_str(), &dst->sin6_addr);
            dst->sin6_scope_id = if_nametoindex(ifname.c_str());
            return socket(AF_INET6, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_ICMPV6);
        });
    }

    static bool send_echo(int fd, const sockaddr_in6 &dst, uint16_t seq)
    {
        icmp6_hdr echo{};
        echo.icmp6_type = ICMP6_ECHO_REQUEST;
        echo.icmp6_id = htons(kPingId);
        echo.icmp6_seq = htons(seq);
        return sendto(fd, &echo, sizeof(echo), 0, reinterpret_cast<const sockaddr *>(&dst), sizeof(dst)) ==
               static_cast<ssize_t>(sizeof(echo));
    }
    // Waits for the echo reply of `seq` on an ICMPv6 socket.
    static bool reply_within(int fd, uint16_t seq, int timeout_ms)
    {
        return tide::test::packet_wait(
            fd,
            [&](const Frame &m) {
                return m.size() >= 8 && m[0] == ICMP6_ECHO_REPLY && (m[4] << 8 | m[5]) == kPingId &&
                       (m[6] << 8 | m[7]) == seq;
            },
            timeout_ms);
    }
    // A ping from host `from` to host `to`: an echo request and its reply.
    bool ping(uint32_t from, uint32_t to, uint16_t seq) const
    {
        sockaddr_in6 dst{};
        const int fd = icmp_socket(from, to, &dst);
        const bool ok = fd >= 0 && send_echo(fd, dst, seq) && reply_within(fd, seq, kWaitMs);
        if (fd >= 0) {
            close(fd);
        }
        return ok;
    }

    std::unique_ptr<NetNs> ns_[kHosts + 1];
};

TEST_F(TapLab, PingsLearnBothHostsAndFollowTheMacTable)
{
    ASSERT_TRUE(ping(1, 2, 1));
    EXPECT_EQ(learned_port(1), 1);
    EXPECT_EQ(learned_port(2), 2);

    // A static entry sends host 2's MAC to port 3: the echo request goes
    // there and host 2 never sees it.
    l2_addr divert = l2_key(2);
    divert.flags |= L2_FLAG_DEST_PORT;
    divert.port = 3;
    ASSERT_EQ(l2_api_addr_add(0, &divert), 0);
    const int on_3 = packet_socket(3, kEthIpv6);
    ASSERT_GE(on_3, 0);
    sockaddr_in6 dst{};
    const int fd = icmp_socket(1, 2, &dst);
    ASSERT_GE(fd, 0);
    ASSERT_TRUE(send_echo(fd, dst, 2));
    EXPECT_TRUE(tide::test::packet_wait(on_3, [](const Frame &f) { return is_echo_request(f, 2); }, kWaitMs));
    EXPECT_FALSE(reply_within(fd, 2, 0));
    EXPECT_EQ(learned_port(2), 3);
    close(fd);
    close(on_3);

    // Without it the chip floods the unknown MAC and learns it again.
    l2_addr del = l2_key(2);
    ASSERT_EQ(l2_api_addr_del(0, &del), 0);
    EXPECT_TRUE(ping(1, 2, 3));
    EXPECT_EQ(learned_port(2), 2);
}

TEST_F(TapLab, ArpBroadcastReachesTheVlanAndNothingElse)
{
    int on[kHosts + 1];
    for (uint32_t h = 1; h <= kHosts; h++) {
        on[h] = packet_socket(h, kEthArp);
        ASSERT_GE(on[h], 0);
    }
    // Who has 192.0.2.77? from host 1 (192.0.2.1).
    Frame arp = tide::test::eth_frame(0xFFFFFFFFFFFFull, mac_of(1), kEthArp, 14);
    const uint8_t body[] = {0, 1, 8, 0, 6, 4, 0, 1, 0x02, 0, 0, 0, 0x5e, 1, 192, 0, 2, 1, 0, 0, 0, 0, 0, 0, 192, 0,
                            2, 77};
    arp.insert(arp.end(), std::begin(body), std::end(body));
    arp.resize(60, 0);
    const auto is_ours = [&](const Frame &f) { return f.size() >= 42 && f[41] == 77 && f[6] == 0x02; };
    ASSERT_TRUE(tide::test::packet_send(on[1], arp));
    EXPECT_TRUE(tide::test::packet_wait(on[2], is_ours, kWaitMs));
    EXPECT_TRUE(tide::test::packet_wait(on[3], is_ours, kWaitMs));
    // The chip has sent the broadcast; nothing of it (nor of anything
    // else of VLAN 1) left port 4, and it did not come back to port 1.
    tide_sim_port_stats port4{};
    ASSERT_EQ(tide_sim_port_stats_get(0, 4, &port4), 0);
    EXPECT_EQ(port4.tx_frames, 0u);
    EXPECT_FALSE(tide::test::packet_wait(on[4], is_ours, 0));
    EXPECT_FALSE(tide::test::packet_wait(on[1], is_ours, 0));
    for (uint32_t h = 1; h <= kHosts; h++) {
        close(on[h]);
    }
}

// The namespace of host 4 goes, and its TAP with it: the binding stays,
// marked gone, refuses frames and unbinds.
TEST_F(TapLab, TapOfADeletedNamespaceIsMarkedGone)
{
    ns_[4].reset();
    const auto gone = [] {
        tide_sim_tap_info t[kHosts];
        uint32_t n = 0;
        tide_sim_tap_list(0, t, kHosts, &n);
        return n == kHosts && (t[3].state & TIDE_SIM_TAP_GONE) != 0;
    };
    ASSERT_TRUE(tide::test::wait_until(gone, kWaitMs));
    EXPECT_TRUE(tide::test::Capture::has("interface " + tap(4) + " is gone"));
    ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x1E, 0x1E), 0);
    const Frame bc = tide::test::eth_frame(0xFFFFFFFFFFFFull, 0x020000000C05ull, 0x88B5);
    ASSERT_EQ(tide_sim_packet_inject(0, 5, bc.data(), static_cast<uint32_t>(bc.size())), 0);
    tide_sim_tap_info t[kHosts];
    uint32_t n = 0;
    ASSERT_EQ(tide_sim_tap_list(0, t, kHosts, &n), 0);
    EXPECT_EQ(t[3].tx_dropped, 1u);
    EXPECT_EQ(tide_sim_tap_unbind(0, 4), 0);
    // The others still switch.
    EXPECT_TRUE(ping(3, 1, 4));
}

} // namespace
