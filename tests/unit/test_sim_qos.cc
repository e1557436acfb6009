// The model's QoS stages end to end, programmed through the QoS calls:
// frames classified by DSCP and 802.1p leave with the mapped queue and the
// remark; port policers pass their rate within one burst over a long
// window of model time and drop or remark the rest, counted; the to-CPU
// cause policer limits the CPU's copies of its cause; global redirect.
#include <gtest/gtest.h>

#include <vector>

#include "support/vlan_ports.h"
#include "atolreef_cib.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

using Frame = std::vector<uint8_t>;

constexpr uint32_t kFront = 0x0FFFFFFF;
constexpr uint64_t kA = 0x02000000000Aull, kB = 0x02000000000Bull;
constexpr uint32_t kIn = 1, kOut = 2;

// Remark word of the egress port row: on, remark id, and the fields.
constexpr uint64_t kPhbOn = 1u << 13, kPhbDscp = 1u << 5, kPhbOpri = 1u << 3;

// An IPv4 frame without FCS of `len` bytes, with one tag when `tci` is
// given.
Frame ipv4(uint8_t dscp, int tci = -1, size_t len = 60)
{
    Frame f;
    for (uint64_t mac : {kB, kA}) {
        for (int i = 5; i >= 0; i--) {
            f.push_back(static_cast<uint8_t>(mac >> (8 * i)));
        }
    }
    if (tci >= 0) {
        f.insert(f.end(), {0x81, 0x00, static_cast<uint8_t>(tci >> 8), static_cast<uint8_t>(tci)});
    }
    f.insert(f.end(), {0x08, 0x00, 0x45, static_cast<uint8_t>(dscp << 2), 0, 46, 0, 0, 0, 0, 64, 17, 0, 0, 10, 0,
                       0, 1, 10, 0, 0, 2});
    while (f.size() < len) {
        f.push_back(static_cast<uint8_t>(f.size()));
    }
    return f;
}

uint16_t checksum(const uint8_t *h)
{
    uint32_t sum = 0;
    for (int i = 0; i < 20; i += 2) {
        sum += static_cast<uint32_t>(h[i] << 8 | h[i + 1]);
    }
    while (sum >> 16) {
        sum = (sum & 0xFFFF) + (sum >> 16);
    }
    return static_cast<uint16_t>(sum);
}

class SimQos : public SimChips {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFront, 0), 0); // every port a tagged member
        l2_addr a{};
        a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT;
        for (int i = 5; i >= 0; i--) {
            a.mac[i] = static_cast<u8>(kB >> (8 * (5 - i)));
        }
        a.vid = 1;
        a.port = kOut;
        ASSERT_EQ(l2_api_addr_add(0, &a), 0);
        for (u32 n = 0; n < 8; n++) {
            qos_common_map_cfg c{};
            c.type = QOS_COMMON_MAP_INTL_PRI_TO_COSQ;
            c.intl_pri = static_cast<u8>(n);
            c.cosq = n;
            ASSERT_EQ(qos_api_common_map_ctrl_set(0, &c), 0);
        }
    }

    void field(const char *table, uint32_t index, const char *name, uint64_t value)
    {
        base_field_op op{};
        op.name = table;
        op.kind = 2;
        op.start = index;
        op.count = 1;
        op.field_name = name;
        op.data = reinterpret_cast<uint8_t *>(&value);
        op.data_bytes = sizeof(value);
        ASSERT_EQ(base_api_field_set(0, &op), 0) << table << "." << name;
    }
    // The port's trust type (the VLAN service's setting) and its map.
    void trust(uint32_t port, uint32_t type, uint32_t info)
    {
        field("ipro_ipat_tbl", port, "trust_type", type);
        field("ipro_ipat_tbl", port, "ba_info", info);
    }

    void in(uint32_t port, const Frame &f) { ASSERT_EQ(tide_sim_packet_inject(0, port, f.data(), f.size()), 0); }

    // The next frame of a port, with its description.
    Frame take(uint32_t port, tide_sim_frame_info *info)
    {
        uint8_t buf[TIDE_SIM_FRAME_MAX];
        EXPECT_EQ(tide_sim_packet_peek(0, port, 0, nullptr, 0, info), 0);
        uint32_t len = 0;
        EXPECT_EQ(tide_sim_packet_capture(0, port, buf, sizeof(buf), &len), 0);
        return Frame(buf, buf + len);
    }

    tide_sim_port_stats stats(uint32_t port)
    {
        tide_sim_port_stats s{};
        EXPECT_EQ(tide_sim_port_stats_get(0, port, &s), 0);
        return s;
    }

    void drain(uint32_t port)
    {
        uint8_t buf[TIDE_SIM_FRAME_MAX];
        uint32_t len = 0;
        while (tide_sim_packet_capture(0, port, buf, sizeof(buf), &len) == 0) {
        }
    }

    // Offers `per_ms` frames of `len` bytes (with FCS) every millisecond
    // for `ms` milliseconds on `port`.
    void offer(uint32_t port, uint32_t per_ms, uint32_t ms, uint32_t len)
    {
        const Frame f = ipv4(0, 0x0001, len - 4);
        for (uint32_t t = 0; t < ms; t++) {
            for (uint32_t i = 0; i < per_ms; i++) {
                in(port, f);
            }
            ASSERT_EQ(tide_sim_time_advance(0, 1), 0);
        }
    }

    u32 policer(u32 type, u64 rate, u64 burst, u32 red_action, u8 red_pri = 0)
    {
        u32 id = 0;
        EXPECT_EQ(qos_api_policer_create(0, 0, type, &id), 0);
        qos_policer_cfg c{};
        c.flag = QOS_POLICER_F_MODE | QOS_POLICER_F_CIR | QOS_POLICER_F_CBS | QOS_POLICER_F_XIR | QOS_POLICER_F_XBS;
        c.mode = QOS_CAR_RFC4115;
        c.cir = rate;
        c.cbs = burst;
        EXPECT_EQ(qos_api_policer_set(0, type, id, &c), 0);
        qos_policer_action g{QOS_COLOR_GREEN, QOS_POLICER_ACT_PASS, 0, 0};
        EXPECT_EQ(qos_api_policer_action_set(0, type, id, &g), 0);
        qos_policer_action r{QOS_COLOR_RED, red_action, 0, red_pri};
        EXPECT_EQ(qos_api_policer_action_set(0, type, id, &r), 0);
        return id;
    }
};

} // namespace

TEST_F(SimQos, DscpIsMappedQueuedAndRemarked)
{
    trust(kIn, 2, 3); // DSCP, map 3
    qos_map_cfg m{46, 0, 0, QOS_COLOR_GREEN, 5};
    ASSERT_EQ(qos_api_priority_map_set(0, QOS_MAP_DSCP, 3, &m), 0);
    qos_remark_cfg r{5, QOS_COLOR_GREEN, 0, 10, 3, 0};
    ASSERT_EQ(qos_api_remark_set(0, QOS_REMARK_DSCP, 2, &r), 0);
    ASSERT_EQ(qos_api_remark_set(0, QOS_REMARK_OPRI, 2, &r), 0);
    field("epro_epat_table", kOut, "phbstruct", kPhbOn | 2u << 7 | kPhbDscp | kPhbOpri);

    in(kIn, ipv4(46, 0x0001));
    tide_sim_frame_info info{};
    const Frame f = take(kOut, &info);
    ASSERT_GE(f.size(), 38u);
    EXPECT_EQ(info.queue, kOut * 8 + 5) << "intl_pri 5 on queue 5 of the port";
    EXPECT_EQ(f[14] >> 5, 3) << "the outer priority remarked";
    EXPECT_EQ(f[19] >> 2, 10) << "the DSCP remarked";
    EXPECT_EQ(checksum(&f[18]), 0xFFFF) << "the IPv4 header checksum follows";

    // Another DSCP of the same map has its own entry: 0 by default.
    in(kIn, ipv4(45, 0x0001));
    const Frame g = take(kOut, &info);
    EXPECT_EQ(info.queue, kOut * 8);
    EXPECT_EQ(g[19] >> 2, 0) << "intl_pri 0 green remarks to the table's 0";
}

TEST_F(SimQos, OuterPriorityIsMappedWithItsColour)
{
    trust(kIn, 4, 1); // outer priority, map 1
    qos_map_cfg m{0, 6, 0, QOS_COLOR_YELLOW, 2};
    ASSERT_EQ(qos_api_priority_map_set(0, QOS_MAP_OPRI, 1, &m), 0);
    qos_remark_cfg r{2, QOS_COLOR_YELLOW, 0, 0, 1, 0};
    ASSERT_EQ(qos_api_remark_set(0, QOS_REMARK_OPRI, 0, &r), 0);
    field("epro_epat_table", kOut, "phbstruct", kPhbOn | kPhbOpri);
    qos_common_map_cfg c{};
    c.type = QOS_COMMON_MAP_INTL_PRI_TO_COSQ;
    c.intl_pri = 2;
    c.cosq = 7;
    ASSERT_EQ(qos_api_common_map_ctrl_set(0, &c), 0);

    in(kIn, ipv4(0, 6 << 13 | 1));
    tide_sim_frame_info info{};
    const Frame f = take(kOut, &info);
    EXPECT_EQ(info.queue, kOut * 8 + 7);
    EXPECT_EQ(f[14] >> 5, 1);
    EXPECT_EQ(f[19], 0) << "the DSCP is not remarked without its bit";
}

TEST_F(SimQos, SourcePortPolicerPassesItsRateWithinOneBurst)
{
    // 16 Mbit/s is 2000 bytes a millisecond; 1000-byte frames are offered
    // at twice that for 500 ms.
    const u64 rate = 16000000, burst = 10000;
    const u32 id = policer(QOS_POLICER_SPORT, rate, burst, QOS_POLICER_ACT_DROP);
    qos_bind_info b{QOS_POLICER_SPORT, 0, 0, kIn, id};
    ASSERT_EQ(qos_api_policer_bind(0, &b), 0);
    const uint32_t ms = 500, len = 1000;
    offer(kIn, 4, ms, len);
    const uint64_t passed = stats(kOut).tx_frames;
    const uint64_t allowed = rate / 8 * ms / 1000 + burst;
    EXPECT_LE(passed * len, allowed);
    EXPECT_GE(passed * len, rate / 8 * ms / 1000) << "the rate is passed over the window";
    const tide_sim_port_stats in_stats = stats(kIn);
    EXPECT_EQ(in_stats.rx_dropped + passed, 4u * ms);
    EXPECT_EQ(in_stats.last_drop_cause, 662u);
    cib_icar_port_car_fwd_stat_tbl_t fwd{};
    cib_icar_port_car_drop_stat_tbl_t drop{};
    ASSERT_EQ(csl_reef_cib_icar_port_car_fwd_stat_tbl_get(0, 0, id, &fwd), 0);
    ASSERT_EQ(csl_reef_cib_icar_port_car_drop_stat_tbl_get(0, 0, id, &drop), 0);
    EXPECT_EQ(fwd.port_car_fwd_stat_pkt_num, passed);
    EXPECT_EQ(drop.port_car_drop_stat_pkt_num, in_stats.rx_dropped);
    EXPECT_EQ(fwd.port_car_fwd_stat_byt_num, passed * len);

    // Unbound, everything passes.
    ASSERT_EQ(qos_api_policer_unbind(0, &b), 0);
    drain(kOut);
    offer(kIn, 4, 10, len);
    EXPECT_EQ(stats(kOut).tx_frames, passed + 40);
}

TEST_F(SimQos, DestinationPortPolicerRemarksTheExcessToAnotherQueue)
{
    const u64 rate = 8000000, burst = 4000; // 1000 bytes a millisecond
    const u32 id = policer(QOS_POLICER_DPORT, rate, burst, QOS_POLICER_ACT_NEW_INTL_PRI, 6);
    qos_bind_info b{QOS_POLICER_DPORT, 0, 0, kOut, id};
    ASSERT_EQ(qos_api_policer_bind(0, &b), 0);
    const uint32_t ms = 200, len = 500;
    offer(kIn, 4, ms, len); // 2000 bytes a millisecond
    uint64_t green = 0, red = 0;
    tide_sim_frame_info info{};
    while (tide_sim_packet_peek(0, kOut, 0, nullptr, 0, &info) == 0) {
        take(kOut, &info);
        (info.queue == kOut * 8 + 6 ? red : green)++;
    }
    EXPECT_EQ(green + red, 4u * ms) << "nothing is dropped";
    EXPECT_LE(green * len, rate / 8 * ms / 1000 + burst);
    EXPECT_GE(green * len, rate / 8 * ms / 1000);
    cib_ecar_port_car_fwd_stat_tbl_t fwd{};
    ASSERT_EQ(csl_reef_cib_ecar_port_car_fwd_stat_tbl_get(0, 0, id, &fwd), 0);
    EXPECT_EQ(fwd.port_car_fwd_stat_pkt_num, green + red);
}

TEST_F(SimQos, CauseIdPolicerLimitsTheCopiesToTheCpu)
{
    ASSERT_EQ(l2_api_port_control_set(0, 5, L2_PORT_UNKNOWN_UCAST_ACT, 3), 0); // copy to the CPU, flood
    u32 id = 0;
    ASSERT_EQ(qos_api_policer_create(0, 0, QOS_POLICER_TOCPU_CAUSEID, &id), 0);
    qos_policer_cfg c{};
    c.flag = QOS_POLICER_F_XIR | QOS_POLICER_F_XBS;
    c.xir = 160000; // 20 bytes a millisecond
    c.xbs = 3000;
    ASSERT_EQ(qos_api_policer_set(0, QOS_POLICER_TOCPU_CAUSEID, id, &c), 0);
    qos_bind_info b{QOS_POLICER_TOCPU_CAUSEID, 306, 0, 0, id};
    ASSERT_EQ(qos_api_policer_bind(0, &b), 0);
    // The copies of cause 306 go to CPU queue 12.
    qos_tocpu_key key{306};
    qos_tocpu_cfg q{0, 1, 12, 0};
    ASSERT_EQ(qos_api_tocpu_enqueue_set(0, QOS_TOCPU_CPU_QUEUE_ID, &key, &q), 0);
    ASSERT_EQ(qos_api_tocpu_enqueue_set(0, QOS_TOCPU_CPU_QUEUE_EN, &key, &q), 0);

    Frame f = ipv4(0, 0x0001, 996); // 1000 bytes on the wire
    f[5] = 0x77;                    // a destination nobody knows
    for (int i = 0; i < 20; i++) {
        in(5, f);
    }
    EXPECT_EQ(stats(31).tx_frames, 3u) << "the burst holds three copies";
    tide_sim_frame_info info{};
    take(31, &info);
    EXPECT_EQ(info.queue, 240u + 12);
    EXPECT_EQ(info.cause, 306u);
    EXPECT_EQ(stats(kOut).tx_frames, 20u) << "forwarding is not limited";
    ASSERT_EQ(tide_sim_time_advance(0, 50), 0); // 1000 bytes more
    in(5, f);
    in(5, f);
    EXPECT_EQ(stats(31).tx_frames, 4u);
    cib_ecar_cause_id_car_drop_stat_tbl_t drop{};
    ASSERT_EQ(csl_reef_cib_ecar_cause_id_car_drop_stat_tbl_get(0, 0, id, &drop), 0);
    EXPECT_EQ(drop.cause_id_car_drop_stat_pkt_num, 18u);
}

TEST_F(SimQos, GlobalRedirectTakesTheDropsOfACause)
{
    // Frames of an unknown VLAN are dropped with cause 570; redirected,
    // they go to CPU queue 243.
    qos_redirect_cfg r{QOS_REDIR_TO_CPU, 31, 3, 1};
    ASSERT_EQ(qos_api_redirect_glb_set(0, &r), 0);
    const Frame f = ipv4(0, 0x0064); // VLAN 100
    in(kIn, f);
    EXPECT_EQ(stats(31).tx_frames, 0u) << "the cause does not redirect yet";
    ASSERT_EQ(qos_api_redirect_cause_enable_set(0, 570, 1), 0);
    in(kIn, f);
    tide_sim_frame_info info{};
    take(31, &info);
    EXPECT_EQ(info.queue, 243u);
    EXPECT_EQ(info.cause, 570u);
    r = qos_redirect_cfg{QOS_REDIR_TO_ETH, 9, 4, 1};
    ASSERT_EQ(qos_api_redirect_glb_set(0, &r), 0);
    in(kIn, f);
    take(9, &info);
    EXPECT_EQ(info.queue, 9u * 8 + 4);
}

TEST_F(SimQos, AFlushedPortDropsAndItsQueuesReportEmpty)
{
    qos_flush_cfg fl{QOS_FLUSH_PORT_CLOSE, kOut, 0};
    ASSERT_EQ(qos_api_flush_set(0, &fl), 0);
    in(kIn, ipv4(0, 0x0001));
    EXPECT_EQ(stats(kOut).tx_frames, 0u);
    cib_sch_que_empty_tbl_t e{};
    ASSERT_EQ(csl_reef_cib_sch_que_empty_tbl_get(0, 0, kOut, &e), 0);
    EXPECT_EQ(e.data, 0u);
    fl.type = QOS_FLUSH_PORT_OPEN;
    ASSERT_EQ(qos_api_flush_set(0, &fl), 0);
    in(kIn, ipv4(0, 0x0001));
    EXPECT_EQ(stats(kOut).tx_frames, 1u);
}
