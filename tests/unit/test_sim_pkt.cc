// The model's packet path end to end: the SDK's chip brought up on the
// model, VLAN 1 made by hand (ports 0 to 27 untagged), frames injected on
// ports and read back where they left.  L2 settings and addresses go
// through the L2 service; what has no service yet (VLAN rows, egress rows,
// aging switches) through the generated accessors and the by-name field
// door.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include "support/vlan_ports.h"
#include "atolreef_cib.h"
#include "support/fixture.h"
#include "support/temp_dir.h"
#include "support/wait.h"

using tide::test::SimChips;

namespace {

using Frame = std::vector<uint8_t>;

constexpr uint32_t kFront = 0x0FFFFFFF; // ports 0 to 27
constexpr uint64_t kA = 0x02000000000Aull, kB = 0x02000000000Bull, kC = 0x02000000000Cull;
constexpr uint64_t kBroadcast = 0xFFFFFFFFFFFFull;

struct Tag {
    uint16_t tpid;
    uint16_t tci;
};

// An Ethernet frame without FCS: addresses, IPv4 type and a counting
// payload up to `len` bytes, then the tags inserted behind the addresses
// (so that taking them out gives the untagged frame back).
Frame eth(uint64_t dmac, uint64_t smac, std::initializer_list<Tag> tags = {}, size_t len = 60)
{
    Frame f;
    for (uint64_t mac : {dmac, smac}) {
        for (int i = 5; i >= 0; i--) {
            f.push_back(static_cast<uint8_t>(mac >> (8 * i)));
        }
    }
    f.insert(f.end(), {0x08, 0x00});
    while (f.size() < len) {
        f.push_back(static_cast<uint8_t>(f.size()));
    }
    size_t at = 12;
    for (const Tag &t : tags) {
        f.insert(f.begin() + static_cast<long>(at), {static_cast<uint8_t>(t.tpid >> 8), static_cast<uint8_t>(t.tpid),
                                                     static_cast<uint8_t>(t.tci >> 8), static_cast<uint8_t>(t.tci)});
        at += 4;
    }
    return f;
}

uint32_t bit(uint32_t port)
{
    return 1u << port;
}

// A register read-modified-written through its generated accessor.
template <typename T>
void rmw(int (*get)(u32, u32, T *), int (*set)(u32, u32, T *, u8 *), u32 instance,
         const std::function<void(T &)> &change)
{
    T rec{};
    ASSERT_EQ(get(0, instance, &rec), 0);
    change(rec);
    u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(set(0, instance, &rec, all), 0);
}

class SimPkt : public SimChips {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, kFront), 0);
    }

    void in(uint32_t port, const Frame &f) { ASSERT_EQ(tide_sim_packet_inject(0, port, f.data(), f.size()), 0); }

    // Every frame waiting on every port, taken.
    std::map<uint32_t, std::vector<Frame>> out()
    {
        std::map<uint32_t, std::vector<Frame>> sent;
        for (uint32_t p = 0; p < 32; p++) {
            uint8_t buf[TIDE_SIM_FRAME_MAX];
            uint32_t len = 0;
            while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
                sent[p].emplace_back(buf, buf + len);
            }
        }
        return sent;
    }

    // The ports that sent something, and the frames they sent all equal to
    // `expect` when it is given.
    uint32_t out_ports(const Frame *expect = nullptr)
    {
        uint32_t ports = 0;
        for (const auto &[port, frames] : out()) {
            ports |= bit(port);
            EXPECT_EQ(frames.size(), 1u) << "port " << port;
            if (expect != nullptr) {
                EXPECT_EQ(frames.front(), *expect) << "port " << port;
            }
        }
        return ports;
    }

    uint64_t cause(uint32_t index)
    {
        cib_stat_causeid_stat_result_tbl_t rec{};
        EXPECT_EQ(csl_reef_cib_stat_causeid_stat_result_tbl_get(0, 0, index, &rec), 0);
        return rec.causeid_stat_result_pkt_num;
    }

    void table(const char *name, uint32_t index, const char *field, uint64_t value)
    {
        base_field_op op{};
        op.name = name;
        op.kind = 2;
        op.start = index;
        op.count = 1;
        op.field_name = field;
        op.data = reinterpret_cast<uint8_t *>(&value);
        op.data_bytes = sizeof(value);
        ASSERT_EQ(base_api_field_set(0, &op), 0) << name << "." << field;
    }
    void lrn(const std::function<void(cib_arl_age_lrn_cfg0_t &)> &change)
    {
        rmw<cib_arl_age_lrn_cfg0_t>(csl_reef_cib_arl_age_lrn_cfg0_get, csl_reef_cib_arl_age_lrn_cfg0_set, 0,
                                    change);
    }

    static l2_addr key(uint64_t mac, uint32_t vlan)
    {
        l2_addr a{};
        a.flags = L2_FLAG_KEY_VID;
        for (int i = 5; i >= 0; i--) {
            a.mac[i] = static_cast<uint8_t>(mac);
            mac >>= 8;
        }
        a.vid = static_cast<uint16_t>(vlan);
        return a;
    }

    // Where the L2 service finds (mac, vlan): its port, or -1.
    int station(uint64_t mac, uint32_t vlan = 1)
    {
        l2_addr a = key(mac, vlan);
        const int32_t rc = l2_api_addr_get(0, &a);
        EXPECT_TRUE(rc == 0 || rc == -7) << rc;
        return rc == 0 ? static_cast<int>(a.port) : -1;
    }

    void add(uint64_t mac, uint32_t port, uint32_t flags)
    {
        l2_addr a = key(mac, 1);
        a.flags |= L2_FLAG_DEST_PORT | flags;
        a.port = port;
        ASSERT_EQ(l2_api_addr_add(0, &a), 0);
    }
    void add_static(uint64_t mac, uint32_t port, uint32_t flags = 0) { add(mac, port, flags); }

    uint32_t moves(uint32_t type)
    {
        uint32_t n = 0;
        EXPECT_EQ(l2_api_mac_cnt_get(0, type, &n), 0);
        return n;
    }

    uint32_t port_macs(uint32_t port)
    {
        l2_learn_limit l{};
        l.flags = L2_LIMIT_PORT;
        l.port = port;
        EXPECT_EQ(l2_api_learn_limit_get(0, &l), 0);
        return l.mac_cnt;
    }

    void control(uint32_t id, uint32_t value) { ASSERT_EQ(l2_api_control_set(0, id, value), 0); }
    void port_control(uint32_t port, uint32_t id, uint32_t value)
    {
        ASSERT_EQ(l2_api_port_control_set(0, port, id, value), 0);
    }

    void move_pri(uint32_t port, uint8_t pri)
    {
        l2_port_move_pri p{};
        p.id = port;
        p.enable = 1;
        p.pri = pri;
        ASSERT_EQ(l2_api_port_move_pri_set(0, &p), 0);
    }
};

TEST_F(SimPkt, UnknownUnicastFloodsAndLearnsThenTheReplyGoesBackAlone)
{
    const Frame f = eth(kB, kA);
    in(1, f);
    EXPECT_EQ(out_ports(&f), kFront & ~bit(1));
    EXPECT_EQ(station(kA), 1);
    EXPECT_EQ(port_macs(1), 1u);
    EXPECT_EQ(cause(587), 0u); // flooded, not dropped

    const Frame reply = eth(kA, kB);
    in(2, reply);
    EXPECT_EQ(out_ports(&reply), bit(1));
    EXPECT_EQ(station(kB), 2);
    uint32_t st = 0, dyn = 0;
    ASSERT_EQ(tide_sim_arl_count_get(0, &st, &dyn, nullptr), 0);
    EXPECT_EQ(dyn, 2u);

    // Known unicast back to its own port is not bridged back.
    in(1, eth(kA, kC));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(584), 1u);
    tide_sim_port_stats s{};
    ASSERT_EQ(tide_sim_port_stats_get(0, 1, &s), 0);
    EXPECT_EQ(s.rx_frames, 2u);
    EXPECT_EQ(s.rx_dropped, 1u);
    EXPECT_EQ(s.last_drop_cause, 584u);
}

TEST_F(SimPkt, StaticEntriesWinAndTheirBlockBitsDrop)
{
    add_static(kB, 5);
    in(1, eth(kB, kA));
    EXPECT_EQ(out_ports(), bit(5));
    // The static station seen on another port does not move; the frame is
    // dropped (sta_float_act 0) and the refusal counted.
    in(3, eth(kA, kB));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(station(kB), 5);
    EXPECT_EQ(cause(594), 1u);
    EXPECT_EQ(moves(L2_CNT_MOVE_FAIL), 1u);
    // With sta_float_act 1 the CPU gets it.
    control(L2_CTRL_STATIC_MOVE_ACT, 1);
    in(3, eth(kA, kB));
    tide_sim_frame_info info{};
    ASSERT_EQ(tide_sim_packet_peek(0, 31, 0, nullptr, 0, &info), 0);
    EXPECT_EQ(info.cause, 311u);
    EXPECT_EQ(info.src_port, 3u);
    EXPECT_EQ(out_ports(), bit(31));
    EXPECT_EQ(cause(1024 + 311), 1u);

    add_static(kC, 6, L2_FLAG_DST_DROP);
    in(1, eth(kC, kA));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(588), 1u);
    add_static(0x02000000000Dull, 7, L2_FLAG_SRC_DROP);
    in(7, eth(kA, 0x02000000000Dull));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(589), 1u);
}

TEST_F(SimPkt, AgingRunsOnTheModelsClock)
{
    // Age time 300 s (the reset value): an idle entry is gone after it.
    add_static(kC, 9);
    in(1, eth(kBroadcast, kA));
    in(2, eth(kBroadcast, kB));
    out();
    ASSERT_EQ(tide_sim_time_advance(0, 299999), 0);
    EXPECT_EQ(station(kA), 1);
    // A hit of B's source refreshes it.
    in(2, eth(kA, kB));
    EXPECT_EQ(out_ports(), bit(1));
    ASSERT_EQ(tide_sim_time_advance(0, 1), 0);
    EXPECT_EQ(station(kA), -1);
    EXPECT_EQ(station(kB), 2);
    EXPECT_EQ(station(kC), 9);
    EXPECT_EQ(port_macs(1), 0u);
    // Traffic to the aged station floods again.
    in(3, eth(kA, 0x02000000000Eull));
    EXPECT_EQ(out_ports(), kFront & ~bit(3));
    uint64_t now = 0;
    ASSERT_EQ(tide_sim_time_get(0, &now), 0);
    EXPECT_EQ(now, 300000u);

    // Aging off: nothing goes.
    lrn([](cib_arl_age_lrn_cfg0_t &c) { c.glb_age_en = 0; });
    ASSERT_EQ(tide_sim_time_advance(0, 4000000), 0);
    EXPECT_EQ(station(kB), 2);
    // A short age time of 3 s, and a clock advanced in one long step.
    lrn([](cib_arl_age_lrn_cfg0_t &c) {
        c.glb_age_en = 1;
        c.age_time = 3;
    });
    ASSERT_EQ(tide_sim_time_advance(0, 3000), 0);
    EXPECT_EQ(station(kB), -1);
    EXPECT_EQ(station(kC), 9);
}

TEST_F(SimPkt, LearnLimitsRefuseTheNextStationAndCountersAgree)
{
    l2_learn_limit lim{};
    lim.flags = L2_LIMIT_PORT | L2_LIMIT_ENABLE | L2_LIMIT_VALUE;
    lim.port = 3;
    lim.limit_en = 1;
    lim.limit_value = 2;
    ASSERT_EQ(l2_api_learn_limit_set(0, &lim), 0);
    for (uint64_t mac = 1; mac <= 3; mac++) {
        in(3, eth(kBroadcast, 0x020000000100ull + mac));
    }
    EXPECT_EQ(station(0x020000000101ull), 3);
    EXPECT_EQ(station(0x020000000102ull), 3);
    EXPECT_EQ(station(0x020000000103ull), -1);
    EXPECT_EQ(port_macs(3), 2u);
    // Without the over-limit action the third was still forwarded.
    EXPECT_EQ(out().size(), 27u);
    // With it (drop), the next new station is dropped.
    lim.flags = L2_LIMIT_PORT | L2_LIMIT_OVER_LIMIT_EN | L2_LIMIT_OVER_ACT;
    lim.over_limit_en = 1;
    lim.over_act = 0;
    ASSERT_EQ(l2_api_learn_limit_set(0, &lim), 0);
    in(3, eth(kBroadcast, 0x020000000104ull));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(591), 1u);

    // The global limit counts every dynamic entry, learned or inserted.
    l2_learn_limit glb{};
    glb.flags = L2_LIMIT_GLOBAL | L2_LIMIT_ENABLE | L2_LIMIT_VALUE;
    glb.limit_en = 1;
    glb.limit_value = 3;
    ASSERT_EQ(l2_api_learn_limit_set(0, &glb), 0);
    add(kC, 9, L2_FLAG_DYNAMIC);
    in(4, eth(kBroadcast, kA));
    EXPECT_EQ(station(kA), -1);
    EXPECT_EQ(cause(590), 1u);
    uint32_t dyn = 0;
    ASSERT_EQ(tide_sim_arl_count_get(0, nullptr, &dyn, nullptr), 0);
    EXPECT_EQ(dyn, 3u);
}

TEST_F(SimPkt, StationMovesFollowTheMovePriorities)
{
    in(1, eth(kBroadcast, kA));
    in(2, eth(kBroadcast, kA)); // every port enabled at priority 0: moves
    out();
    EXPECT_EQ(station(kA), 2);
    EXPECT_EQ(port_macs(1), 0u);
    EXPECT_EQ(port_macs(2), 1u);
    EXPECT_EQ(moves(L2_CNT_MOVE_OK), 1u);

    // Port 2 at priority 2 keeps the station against port 4 at priority 1.
    for (uint32_t port = 0; port < 8; port++) {
        move_pri(port, port == 2 || port == 3 ? 2 : port == 4 ? 1 : 0);
    }
    in(4, eth(kBroadcast, kA));
    EXPECT_EQ(station(kA), 2);
    EXPECT_EQ(out_ports(), 0u); // mac_float_fail_act 0 drops
    EXPECT_EQ(cause(593), 1u);
    EXPECT_EQ(moves(L2_CNT_MOVE_FAIL), 1u);
    control(L2_CTRL_MOVE_FAIL_ACT, 1);
    in(4, eth(kBroadcast, kA));
    EXPECT_EQ(out_ports(), kFront & ~bit(4));
    EXPECT_EQ(station(kA), 2);
    // Port 3 at priority 2 may take it, unless mac_float_pfe leaves out
    // priority 2.
    control(L2_CTRL_MOVE_PRI_MASK, 0xB);
    in(3, eth(kBroadcast, kA));
    EXPECT_EQ(station(kA), 2);
    control(L2_CTRL_MOVE_PRI_MASK, 0xF);
    in(3, eth(kBroadcast, kA));
    EXPECT_EQ(station(kA), 3);
    EXPECT_EQ(moves(L2_CNT_MOVE_OK), 2u);
    EXPECT_EQ(moves(L2_CNT_MOVE_FAIL), 3u);
}

TEST_F(SimPkt, BroadcastWithNoneOneAndTwoTags)
{
    // VLAN 10 on ports 0 to 3, tagged.
    ASSERT_EQ(tide::test::vlan_ports(0, 10, 0xF, 0), 0);
    const Frame untagged = eth(kBroadcast, kA);
    in(0, untagged);
    EXPECT_EQ(out_ports(&untagged), kFront & ~bit(0));

    // A VLAN 1 tag leaves on untagged members without it.
    in(0, eth(kBroadcast, kA, {{0x8100, 0x2001}}));
    EXPECT_EQ(out_ports(&untagged), kFront & ~bit(0));

    const Frame one = eth(kBroadcast, kA, {{0x8100, 0xA00A}});
    in(0, one);
    EXPECT_EQ(out_ports(&one), 0xEu);
    const Frame two = eth(kBroadcast, kA, {{0x8100, 0x000A}, {0x8100, 0x0014}});
    in(0, two);
    EXPECT_EQ(out_ports(&two), 0xEu);
    // An untagged frame into a tagged member gains the port's PVID tag.
    ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, kFront & ~bit(2)), 0);
    in(0, untagged);
    const auto sent = out();
    ASSERT_EQ(sent.count(2), 1u);
    EXPECT_EQ(sent.at(2).front(), eth(kBroadcast, kA, {{0x8100, 0x0001}}));
    EXPECT_EQ(sent.at(3).front(), untagged);

    // 0x88A8 is no outer TPID of the port: the frame is untagged, VLAN 1.
    in(5, eth(kBroadcast, kA, {{0x88A8, 0x000A}}));
    EXPECT_EQ(out().size(), 27u);
    // A VID without a map entry is dropped as the chip would.
    in(5, eth(kBroadcast, kA, {{0x8100, 0x0063}}));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(570), 1u);
    // The port accepting 0x88A8 as well: the S-tag is its outer tag.
    rmw<cib_tti_tpidcfg_sel0_t>(csl_reef_cib_tti_tpidcfg_sel0_get, csl_reef_cib_tti_tpidcfg_sel0_set, 0,
                                [](cib_tti_tpidcfg_sel0_t &r) { r.tpidcfg_sel0 = 0x11311111; });
    in(5, eth(kBroadcast, kA, {{0x88A8, 0x000A}, {0x8100, 0x0014}}));
    EXPECT_EQ(out_ports(&two), 0xFu); // leaving with the TPID of the egress port
    in(0, eth(kBroadcast, kA, {{0x88A8, 0x000A}}));
    EXPECT_EQ(out().size(), 27u); // port 0 takes only 0x8100 still
}

TEST_F(SimPkt, RuntOversizeAndBadInputNeverCrash)
{
    in(1, eth(kBroadcast, kA, {}, 59));
    EXPECT_EQ(cause(513), 1u);
    in(1, eth(kBroadcast, kA, {}, 16005)); // 16009 bytes with the FCS: the longest
    EXPECT_EQ(out().size(), 27u);
    in(1, eth(kBroadcast, kA, {}, 16006));
    EXPECT_EQ(cause(514), 1u);
    EXPECT_EQ(out_ports(), 0u);

    uint8_t buf[64] = {};
    uint32_t len = 0;
    EXPECT_EQ(tide_sim_packet_inject(0, 1, nullptr, 60), -20);
    EXPECT_EQ(tide_sim_packet_inject(0, 32, buf, 60), -4);
    EXPECT_EQ(tide_sim_packet_inject(0, 1, buf, 0), -4);
    EXPECT_EQ(tide_sim_packet_inject(0, 1, buf, TIDE_SIM_FRAME_MAX + 1), -4);
    EXPECT_EQ(tide_sim_packet_inject(4, 1, buf, 60), -3);
    EXPECT_EQ(tide_sim_packet_capture(0, 1, nullptr, 64, &len), -20);
    EXPECT_EQ(tide_sim_packet_capture(0, 1, buf, 64, nullptr), -20);
    EXPECT_EQ(tide_sim_packet_capture(0, 32, buf, 64, &len), -4);
    EXPECT_EQ(tide_sim_packet_capture(0, 1, buf, 64, &len), -7);
    EXPECT_EQ(tide_sim_packet_peek(0, 1, 0, buf, sizeof(buf), nullptr), -7);
    // A buffer too small keeps the frame.
    in(2, eth(kBroadcast, kA, {}, 100));
    EXPECT_EQ(tide_sim_packet_capture(0, 1, buf, sizeof(buf), &len), -4);
    EXPECT_EQ(len, 100u);
    tide_sim_port_stats s{};
    ASSERT_EQ(tide_sim_port_stats_get(0, 1, &s), 0);
    EXPECT_EQ(s.waiting, 1u);
    EXPECT_EQ(tide_sim_port_stats_get(0, 1, nullptr), -20);

    // Garbage of every length on every port.
    TIDE_TEST_SEED(seed, 7);
    std::mt19937 rng(static_cast<std::mt19937::result_type>(seed));
    Frame junk(2000);
    for (int i = 0; i < 2000; i++) {
        for (uint8_t &b : junk) {
            b = static_cast<uint8_t>(rng());
        }
        const uint32_t n = 1 + rng() % junk.size();
        ASSERT_EQ(tide_sim_packet_inject(0, rng() % 32, junk.data(), n), 0);
    }
    // A full queue forgets its oldest frames.
    ASSERT_EQ(tide_sim_port_stats_get(0, 1, &s), 0);
    EXPECT_EQ(s.waiting, std::min<uint64_t>(s.tx_frames, TIDE_SIM_QUEUE_FRAMES));
    EXPECT_EQ(s.tx_forgotten, s.tx_frames - s.waiting);
}

TEST_F(SimPkt, ControlsOfFloodingLearningAndEgress)
{
    // Port 6 copies unknown unicast to the CPU and floods it.
    port_control(6, L2_PORT_UNKNOWN_UCAST_ACT, 3);
    const Frame f = eth(kB, kA);
    in(6, f);
    tide_sim_frame_info info{};
    ASSERT_EQ(tide_sim_packet_peek(0, 31, 0, nullptr, 0, &info), 0);
    EXPECT_EQ(info.cause, 306u);
    EXPECT_EQ(out_ports(&f), (kFront & ~bit(6)) | bit(31));
    EXPECT_EQ(cause(1024 + 306), 1u);
    // Without flooding it is redirected; with neither it is dropped.
    port_control(6, L2_PORT_UNKNOWN_UCAST_ACT, 2);
    in(6, f);
    EXPECT_EQ(out_ports(), bit(31));
    port_control(6, L2_PORT_UNKNOWN_UCAST_ACT, 0);
    in(6, f);
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(587), 1u);
    // The VLAN row must flood too.
    table("ipro_ivlan_tbl", 0, "bc_broad", 0);
    in(7, eth(kBroadcast, kC));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(585), 1u);
    table("ipro_ivlan_tbl", 0, "bc_broad", 1);

    // A port that does not learn: the station stays unknown; with its
    // not-learn drop the frame goes too.
    port_control(8, L2_PORT_LEARN_MODE, 1);
    in(8, eth(kBroadcast, 0x020000000008ull));
    EXPECT_EQ(station(0x020000000008ull), -1);
    EXPECT_EQ(out().size(), 27u);
    port_control(8, L2_PORT_LEARN_MODE, 2);
    in(8, eth(kBroadcast, 0x020000000008ull));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(596), 1u);
    // Software learning: the CPU gets a copy and the chip learns nothing.
    control(L2_CTRL_LEARN_MODE, 0);
    in(9, eth(kBroadcast, 0x020000000009ull));
    EXPECT_EQ(station(0x020000000009ull), -1);
    ASSERT_EQ(tide_sim_packet_peek(0, 31, 0, nullptr, 0, &info), 0);
    EXPECT_EQ(info.cause, 312u);
    out();
    control(L2_CTRL_LEARN_MODE, 1);

    // Egress: an unknown-unicast block, a flushed port, the egress VLAN
    // check and an invalid port row each stop their copy alone.
    table("epro_epat_table", 10, "unuc_ctrl", 1);
    rmw<cib_qm_qm_port_flush_en_t>(csl_reef_cib_qm_qm_port_flush_en_get, csl_reef_cib_qm_qm_port_flush_en_set, 0,
                                   [](cib_qm_qm_port_flush_en_t &r) { r.port_flush_en = bit(11); });
    table("epro_epat_table", 12, "vld", 0);
    in(1, f);
    EXPECT_EQ(out_ports(), kFront & ~(bit(1) | bit(10) | bit(11) | bit(12)));
    EXPECT_EQ(cause(711), 1u);
    EXPECT_EQ(cause(749), 1u);
    EXPECT_EQ(cause(710), 1u);
    add_static(kC, 20);
    ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront & ~bit(20), kFront), 0);
    in(1, eth(kC, kA));
    EXPECT_EQ(out_ports(), bit(20)); // no check on the port: it sends
    table("epro_epat_table", 20, "vlan_check_en", 1);
    in(1, eth(kC, kA));
    EXPECT_EQ(out_ports(), 0u);
    EXPECT_EQ(cause(723), 1u);
}

// ---- the capture file ------------------------------------------------------------

struct PcapRecord {
    uint32_t iface;
    uint32_t flags;
    Frame data;
    std::string comment;
};

uint32_t _u32(const std::string &s, size_t at)
{
    uint32_t v = 0;
    memcpy(&v, s.data() + at, 4);
    return v;
}

// A reader of the blocks the model writes: the section header, interface
// blocks and enhanced packet blocks with their options.
bool read_pcapng(const std::string &path, std::vector<std::string> *ifaces, std::vector<PcapRecord> *records)
{
    std::ifstream in(path, std::ios::binary);
    const std::string s((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    size_t at = 0;
    while (at + 12 <= s.size()) {
        const uint32_t type = _u32(s, at), total = _u32(s, at + 4);
        if (total < 12 || total % 4 != 0 || at + total > s.size() || _u32(s, at + total - 4) != total) {
            return false;
        }
        const std::string body = s.substr(at + 8, total - 12);
        size_t opt = 0;
        if (type == 0x0A0D0D0A) {
            if (_u32(body, 0) != 0x1A2B3C4D) {
                return false;
            }
            opt = 16;
        } else if (type == 1) {
            opt = 8;
        } else if (type == 6) {
            const uint32_t cap = _u32(body, 12);
            records->push_back(PcapRecord{_u32(body, 0), 0, Frame(body.begin() + 20, body.begin() + 20 + cap), ""});
            opt = 20 + (cap + 3) / 4 * 4;
        } else {
            return false;
        }
        std::string name;
        while (opt + 4 <= body.size()) {
            uint16_t code = 0, len = 0;
            memcpy(&code, body.data() + opt, 2);
            memcpy(&len, body.data() + opt + 2, 2);
            if (code == 0) {
                break;
            }
            const std::string value = body.substr(opt + 4, len);
            if (type == 1 && code == 2) {
                name = value;
            } else if (type == 6 && code == 2) {
                records->back().flags = _u32(value, 0);
            } else if (type == 6 && code == 1) {
                records->back().comment = value;
            }
            opt += 4 + (len + 3u) / 4 * 4;
        }
        if (type == 1) {
            ifaces->push_back(name);
        }
        at += total;
    }
    return at == s.size();
}

TEST_F(SimPkt, CaptureFileShowsEveryFrameWithItsPortAndDirection)
{
    tide_test::TempDir dir;
    const std::string path = dir.file("capture.pcapng");
    EXPECT_EQ(tide_sim_pcap_close(0), -7);
    EXPECT_EQ(tide_sim_pcap_open(0, nullptr), -20);
    EXPECT_EQ(tide_sim_pcap_open(0, "/nonexistent/dir/x.pcapng"), -11);
    ASSERT_EQ(tide_sim_pcap_open(0, path.c_str()), 0);
    EXPECT_EQ(tide_sim_pcap_open(0, path.c_str()), -8);
    ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x7, 0x7), 0); // ports 0 to 2
    const Frame f = eth(kB, kA);
    in(0, f);                        // floods to 1 and 2
    in(1, eth(kA, kB));              // to 0
    in(2, eth(kA, kB, {}, 40));      // a runt, dropped
    port_control(2, L2_PORT_UNKNOWN_UCAST_ACT, 3);
    in(2, eth(kC, kB));              // copied to the CPU
    ASSERT_EQ(tide_sim_pcap_close(0), 0);

    std::vector<std::string> ifaces;
    std::vector<PcapRecord> recs;
    ASSERT_TRUE(read_pcapng(path, &ifaces, &recs));
    ASSERT_EQ(ifaces.size(), 32u);
    EXPECT_EQ(ifaces[0], "port0");
    EXPECT_EQ(ifaces[31], "port31");
    std::vector<std::pair<uint32_t, uint32_t>> seen; // (port, direction)
    for (const PcapRecord &r : recs) {
        seen.emplace_back(r.iface, r.flags & 3);
    }
    const std::vector<std::pair<uint32_t, uint32_t>> want = {{0, 1}, {1, 2}, {2, 2}, {1, 1}, {0, 2},
                                                             {2, 1}, {2, 1}, {31, 2}, {0, 2}, {1, 2}};
    EXPECT_EQ(seen, want);
    ASSERT_EQ(recs.size(), want.size());
    EXPECT_EQ(recs[0].data, f);
    EXPECT_EQ(recs[1].data, f);
    EXPECT_EQ(recs[5].comment, "dropped, cause 513 RSM_DISCARD_MINPKT_DROP");
    EXPECT_EQ(recs[7].comment, "to CPU, cause 306 TOCPU_ARL_UNKNOW_UC");

    // A standard reader sees the same, where one is installed.
    if (system("command -v tshark >/dev/null 2>&1") != 0) {
        std::remove(path.c_str());
        GTEST_SKIP() << "tshark is not installed; the file was checked by the test's own reader only";
    }
    const std::string cmd = "tshark -r " + path +
                            " -T fields -e frame.interface_name -e frame.packet_flags_direction 2>/dev/null";
    FILE *p = popen(cmd.c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::string text;
    char line[256];
    while (fgets(line, sizeof(line), p) != nullptr) {
        text += line;
    }
    EXPECT_EQ(pclose(p), 0);
    std::string expect;
    for (const auto &[port, dir] : want) {
        expect += "port" + std::to_string(port) + "\t" + (dir == 1 ? "0x00000001" : "0x00000002") + "\n";
    }
    EXPECT_EQ(text, expect);
    std::remove(path.c_str());
}

TEST(SimPktNoModel, CallsSayThereIsNoModel)
{
    uint8_t buf[60] = {};
    uint32_t len = 0;
    EXPECT_EQ(tide_sim_packet_inject(0, 0, buf, sizeof(buf)), -17);
    EXPECT_EQ(tide_sim_packet_capture(0, 0, buf, sizeof(buf), &len), -17);
    EXPECT_EQ(tide_sim_time_advance(0, 1), -17);
    EXPECT_EQ(tide_sim_pcap_open(0, "x"), -17);
}

} // namespace
