// Test support of ACL traffic: frames of the kinds the ingress keys read
// (L2, IPv4, IPv6, ARP), what the model did with one injected frame, and
// one case per ingress key template: its entry's items and a frame that
// matches them or differs from them in one bit.
#ifndef TIDE_TEST_ACL_FRAMES_H
#define TIDE_TEST_ACL_FRAMES_H

#include <gtest/gtest.h>
#include <tide/acl.h>
#include <tide/l2.h>
#include <tide/sim.h>

#include <array>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace tide::test {

using Frame = std::vector<uint8_t>;
using Ipv6 = std::array<uint8_t, 16>;

constexpr uint32_t kFrontPorts = 0x0FFFFFFF; // ports 0 to 27
constexpr uint64_t kHostA = 0x02000000000Aull, kHostB = 0x02000000000Bull, kHostC = 0x02000000000Cull;

// Lookup types of the ingress stage (also the keys' sub-type tags).
constexpr uint32_t kTypeL2 = 7;

// Match and action ids of the name tables.
constexpr uint32_t kMatchOvid = 6, kMatchDmacLow = 16, kMatchDmacHigh = 18, kMatchL4Sport = 14,
                   kMatchL4Dport = 15, kMatchTos = 46, kMatchProtocol = 47, kMatchSip = 61, kMatchSip0 = 62,
                   kMatchSip1 = 63, kMatchSip2 = 64, kMatchSip3 = 65, kMatchDip = 66, kMatchDip0 = 67, kMatchDip1 = 68,
                   kMatchDip2 = 69, kMatchDip3 = 70, kMatchArpSip = 75, kMatchArpDip = 76;
constexpr uint32_t kActionCopyToCpu = 29, kActionCauseId = 54, kActionPermit = 151;

// An Ethernet header: addresses, an 802.1Q tag unless `vid` is 1, type.
inline Frame eth_header(uint64_t dmac, uint64_t smac, uint16_t type, uint32_t vid = 1)
{
    Frame f;
    for (uint64_t mac : {dmac, smac}) {
        for (int i = 5; i >= 0; i--) {
            f.push_back(static_cast<uint8_t>(mac >> (8 * i)));
        }
    }
    if (vid != 1) {
        f.insert(f.end(), {0x81, 0x00, static_cast<uint8_t>(vid >> 8), static_cast<uint8_t>(vid)});
    }
    f.insert(f.end(), {static_cast<uint8_t>(type >> 8), static_cast<uint8_t>(type)});
    return f;
}

inline void put16(Frame &f, uint32_t v)
{
    f.push_back(static_cast<uint8_t>(v >> 8));
    f.push_back(static_cast<uint8_t>(v));
}
inline void put32(Frame &f, uint32_t v)
{
    put16(f, v >> 16);
    put16(f, v & 0xFFFF);
}
inline void pad(Frame &f)
{
    while (f.size() < 60) {
        f.push_back(0);
    }
}

inline Frame l2_frame(uint64_t dmac, uint64_t smac, uint32_t vid = 1, uint16_t type = 0x88B5)
{
    Frame f = eth_header(dmac, smac, type, vid);
    pad(f);
    return f;
}

// TCP or UDP ports after the IP header; 8 bytes of L4 header (20 for TCP).
inline void l4(Frame &f, uint8_t proto, uint16_t sport, uint16_t dport)
{
    put16(f, sport);
    put16(f, dport);
    const size_t rest = proto == 6 ? 16 : 4;
    f.insert(f.end(), rest, 0);
}

inline Frame ipv4_frame(uint64_t dmac, uint64_t smac, uint32_t sip, uint32_t dip, uint8_t proto, uint16_t sport,
                        uint16_t dport, uint32_t vid = 1)
{
    Frame f = eth_header(dmac, smac, 0x0800, vid);
    f.insert(f.end(), {0x45, 0x00});
    put16(f, 20 + (proto == 6 ? 20 : 8));
    f.insert(f.end(), {0, 0, 0, 0, 64, proto, 0, 0});
    put32(f, sip);
    put32(f, dip);
    l4(f, proto, sport, dport);
    pad(f);
    return f;
}

inline Frame ipv6_frame(uint64_t dmac, uint64_t smac, const Ipv6 &sip, const Ipv6 &dip, uint8_t proto,
                        uint16_t sport, uint16_t dport)
{
    Frame f = eth_header(dmac, smac, 0x86DD);
    f.insert(f.end(), {0x60, 0, 0, 0});
    put16(f, proto == 6 ? 20 : 8);
    f.insert(f.end(), {proto, 64});
    f.insert(f.end(), sip.begin(), sip.end());
    f.insert(f.end(), dip.begin(), dip.end());
    l4(f, proto, sport, dport);
    pad(f);
    return f;
}

inline Frame arp_frame(uint64_t dmac, uint64_t smac, uint16_t op, uint32_t sender_ip, uint32_t target_ip)
{
    Frame f = eth_header(dmac, smac, 0x0806);
    f.insert(f.end(), {0, 1, 8, 0, 6, 4});
    put16(f, op);
    for (int i = 5; i >= 0; i--) {
        f.push_back(static_cast<uint8_t>(smac >> (8 * i)));
    }
    put32(f, sender_ip);
    f.insert(f.end(), 6, 0);
    put32(f, target_ip);
    pad(f);
    return f;
}

// A 32-bit window of an IPv6 address: word 3 is bits 127..96.
inline uint32_t window(const Ipv6 &a, uint32_t word)
{
    const uint32_t at = 4 * (3 - word);
    return static_cast<uint32_t>(a[at]) << 24 | static_cast<uint32_t>(a[at + 1]) << 16 |
           static_cast<uint32_t>(a[at + 2]) << 8 | a[at + 3];
}

inline void l2_static(uint64_t mac, uint32_t vid, uint32_t port)
{
    l2_addr a{};
    a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT;
    for (int i = 5; i >= 0; i--) {
        a.mac[i] = static_cast<uint8_t>(mac);
        mac >>= 8;
    }
    a.vid = static_cast<uint16_t>(vid);
    a.port = port;
    ASSERT_EQ(l2_api_addr_add(0, &a), 0);
}

// What became of one frame: the ports it left by, whether the ingress
// dropped it and why, the cause of its CPU copy.
struct Verdict {
    uint32_t ports = 0;
    bool dropped = false;
    uint32_t drop_cause = 0;
    uint32_t cpu_cause = TIDE_SIM_CAUSE_NONE;

    static Verdict drop(uint32_t cause)
    {
        Verdict v;
        v.dropped = true;
        v.drop_cause = cause;
        return v;
    }
    bool operator==(const Verdict &o) const
    {
        return ports == o.ports && dropped == o.dropped && drop_cause == o.drop_cause && cpu_cause == o.cpu_cause;
    }
};
inline std::ostream &operator<<(std::ostream &os, const Verdict &v)
{
    return os << "{ports 0x" << std::hex << v.ports << std::dec << (v.dropped ? ", dropped cause " : "")
              << (v.dropped ? std::to_string(v.drop_cause) : "") << ", cpu cause " << v.cpu_cause << "}";
}

// Injects frames on a chip of the model and says what became of each; the
// queues are emptied after each frame.
class Traffic {
public:
    explicit Traffic(uint32_t chip) : chip_(chip) {}

    Verdict send(uint32_t port, const Frame &f)
    {
        tide_sim_port_stats before{}, after{};
        EXPECT_EQ(tide_sim_port_stats_get(chip_, port, &before), 0);
        EXPECT_EQ(tide_sim_packet_inject(chip_, port, f.data(), static_cast<uint32_t>(f.size())), 0);
        EXPECT_EQ(tide_sim_port_stats_get(chip_, port, &after), 0);
        Verdict v;
        if (after.rx_dropped != before.rx_dropped) {
            v.dropped = true;
            v.drop_cause = after.last_drop_cause;
        }
        tide_sim_frame_info info{};
        if (tide_sim_packet_peek(chip_, 31, 0, nullptr, 0, &info) == 0) {
            v.cpu_cause = info.cause;
        }
        for (uint32_t p = 0; p < 32; p++) {
            uint8_t buf[TIDE_SIM_FRAME_MAX];
            uint32_t len = 0;
            while (tide_sim_packet_capture(chip_, p, buf, sizeof(buf), &len) == 0) {
                v.ports |= 1u << p;
            }
        }
        return v;
    }

private:
    uint32_t chip_;
};

// One ingress key template: the lookup type that reads its key, its
// entry's items, and its frame (`miss`: one bit of a matched field
// differs).  Every frame goes to host B.
struct TemplateCase {
    const char *name;
    uint32_t template_id;
    uint32_t lookup_type;
    bool double_width;
    std::vector<acl_item> items;
    std::function<Frame(bool miss)> frame;
};

inline std::vector<TemplateCase> template_cases()
{
    const uint32_t kSip = 0x0A000001, kDip = 0x0A000002;
    const Ipv6 s6 = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0x42};
    const Ipv6 d6 = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 2, 0, 0, 0, 0, 0xab, 0xcd, 0, 0x99};
    auto flip = [](Ipv6 a, size_t byte) {
        a[byte] ^= 1;
        return a;
    };
    const uint32_t all = ~0u;
    const uint32_t mac_low = static_cast<uint32_t>(kHostB), mac_high = static_cast<uint32_t>(kHostB >> 32);
    return {
        {"icap-ipv4", 0, 1, true,
         {{kMatchSip, kSip, all}, {kMatchDip, kDip, all}, {kMatchL4Sport, 1234, 0xFFFF}, {kMatchL4Dport, 80, 0xFFFF},
          {kMatchProtocol, 6, 0xFF}},
         [=](bool miss) { return ipv4_frame(kHostB, kHostA, kSip, kDip, 6, 1234, miss ? 81 : 80); }},
        {"icap-sipv6", 1, 2, true,
         {{kMatchSip0, window(s6, 0), all},
          {kMatchSip1, window(s6, 1), all},
          {kMatchSip2, window(s6, 2), all},
          {kMatchSip3, window(s6, 3), all},
          {kMatchDip3, window(d6, 3), all}},
         [=](bool miss) { return ipv6_frame(kHostB, kHostA, miss ? flip(s6, 15) : s6, d6, 17, 1, 2); }},
        {"icap-dipv6", 2, 3, true,
         {{kMatchDip0, window(d6, 0), all},
          {kMatchDip1, window(d6, 1), all},
          {kMatchDip2, window(d6, 2), all},
          {kMatchDip3, window(d6, 3), all},
          {kMatchSip3, window(s6, 3), all}},
         [=](bool miss) { return ipv6_frame(kHostB, kHostA, s6, miss ? flip(d6, 5) : d6, 17, 1, 2); }},
        {"icap-arp", 4, 8, true,
         {{kMatchArpSip, kSip, all}, {kMatchArpDip, kDip, all}, {kMatchL4Dport, 1, 0xFFFF}},
         [=](bool miss) { return arp_frame(kHostB, kHostA, 1, kSip, miss ? kDip ^ 1 : kDip); }},
        {"icap-all-ipv6-port", 5, 5, true,
         {{kMatchDip0, window(d6, 0), all},
          {kMatchDip1, window(d6, 1), all},
          {kMatchDip2, window(d6, 2), all},
          {kMatchDip3, window(d6, 3), all},
          {29 /* src-port */, 1, 0x1F},
          {kMatchL4Dport, 443, 0xFFFF}},
         [=](bool miss) { return ipv6_frame(kHostB, kHostA, s6, d6, 6, 1000, miss ? 442 : 443); }},
        {"icap-udf", 7, 6, true,
         {{19 /* smac-31-0 */, static_cast<uint32_t>(kHostA), all},
          {kMatchL4Sport, 5000, 0xFFFF},
          {kMatchProtocol, 17, 0xFF}},
         [=](bool miss) { return ipv4_frame(kHostB, kHostA, kSip, kDip, 17, miss ? 5001 : 5000, 53); }},
        {"icap-ucl-ipv4", 8, 13, true,
         {{kMatchSip, kSip, all}, {kMatchDip, kDip, all}, {kMatchProtocol, 17, 0xFF}},
         [=](bool miss) { return ipv4_frame(kHostB, kHostA, miss ? kSip ^ 0x80000000u : kSip, kDip, 17, 1, 2); }},
        {"icap-ucl-ipv6", 9, 14, true,
         {{kMatchSip3, window(s6, 3), all}, {kMatchSip0, window(s6, 0), all}, {kMatchL4Sport, 7, 0xFFFF}},
         [=](bool miss) { return ipv6_frame(kHostB, kHostA, miss ? flip(s6, 0) : s6, d6, 17, 7, 2); }},
        {"icap-width-single-ipv4", 30, 4, false,
         {{kMatchSip, kSip, all}, {kMatchDip, kDip, all}, {kMatchL4Dport, 22, 0xFFFF}},
         [=](bool miss) { return ipv4_frame(kHostB, kHostA, kSip, miss ? kDip ^ 0x100 : kDip, 6, 999, 22); }},
        {"icap-width-single-l2", 31, 7, false,
         {{kMatchDmacLow, mac_low, all}, {kMatchDmacHigh, mac_high, 0xFFFF}, {kMatchOvid, 1, 0xFFF},
          {3 /* ethtype */, 0x88B5, 0xFFFF}},
         [=](bool miss) { return l2_frame(kHostB, kHostA, 1, miss ? 0x88B4 : 0x88B5); }},
    };
}

} // namespace tide::test

#endif // TIDE_TEST_ACL_FRAMES_H
