// The replication stage of the model, end to end: an L2 multicast MAC
// entry whose group the L2 service builds delivers one copy to each member
// port, tagged or untagged as the VLAN and the member's rewrite say; and
// chains the SDK would never write (cut, looping, invalid) end the walk
// with their causes.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <vector>

#include "support/vlan_ports.h"
#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"
#include "support/fixture.h"
#include "support/sim_mcc.h"

using tide::test::Capture;
using tide::test::mc_walk;
using tide::test::SimChips;

namespace {

using Frame = std::vector<u8>;

constexpr u32 kGroup = 100;
constexpr u8 kGroupMac[6] = {0x01, 0x00, 0x5e, 0x01, 0x02, 0x03};

Frame frame(std::initializer_list<u16> tags = {})
{
    Frame f(kGroupMac, kGroupMac + 6);
    f.insert(f.end(), {0x02, 0x00, 0x00, 0x00, 0x00, 0x09});
    for (u16 tci : tags) {
        f.insert(f.end(), {0x81, 0x00, static_cast<u8>(tci >> 8), static_cast<u8>(tci)});
    }
    f.insert(f.end(), {0x08, 0x00});
    f.resize(60 + 4 * tags.size(), 0xAB);
    return f;
}

// The tags of a frame, outer first, as (TPID, TCI).
std::vector<std::pair<u16, u16>> tags_of(const Frame &f)
{
    std::vector<std::pair<u16, u16>> t;
    for (size_t at = 12; at + 4 <= f.size(); at += 4) {
        const u16 tpid = static_cast<u16>(f[at] << 8 | f[at + 1]);
        if (tpid != 0x8100 && tpid != 0x88A8) {
            break;
        }
        t.emplace_back(tpid, static_cast<u16>(f[at + 2] << 8 | f[at + 3]));
    }
    return t;
}

class SimMcc : public SimChips {
protected:
    void SetUp() override
    {
        SimChips::SetUp();
        // VLAN 1 on the front ports, all untagged but port 2.
        ASSERT_EQ(tide::test::vlan_ports(0, 1, 0x0FFFFFFF, 0x0FFFFFFF & ~(1u << 2)), 0);
        l2_addr a{};
        a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_MCAST;
        std::copy(kGroupMac, kGroupMac + 6, a.mac);
        a.vid = 1;
        a.mgid = kGroup;
        ASSERT_EQ(l2_api_addr_add(0, &a), 0);
    }

    std::map<u32, std::vector<Frame>> send(u32 port, const Frame &f)
    {
        EXPECT_EQ(tide_sim_packet_inject(0, port, f.data(), static_cast<u32>(f.size())), 0);
        std::map<u32, std::vector<Frame>> out;
        for (u32 p = 0; p < 32; p++) {
            u8 buf[512];
            u32 len = 0;
            while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
                out[p].emplace_back(buf, buf + len);
            }
        }
        return out;
    }

    static u64 dropped(u32 cause)
    {
        cib_stat_causeid_stat_result_tbl_t s{};
        EXPECT_EQ(csl_reef_cib_stat_causeid_stat_result_tbl_get(0, 0, cause, &s), 0);
        return s.causeid_stat_result_pkt_num;
    }
};

TEST_F(SimMcc, AGroupEntryDeliversOneCopyPerMemberTaggedOrUntaggedPerMember)
{
    l2_multicast_bitmap bm{};
    bm.ports.word[0] = (1u << 1) | (1u << 2) | (1u << 3) | (1u << 4);
    ASSERT_EQ(l2_api_multicast_bitmap_set(0, kGroup, &bm), 0);
    // Port 3 leaves with VLAN 100 and priority 5 of its own, port 4 with
    // two tags: 200 outside, 300 inside.
    l2_multicast_port_attr a3{};
    a3.flags = L2_MC_ATTR_VID_CHANGE | L2_MC_ATTR_PRI_CHANGE;
    a3.tagnum = 1;
    a3.ovid = 100;
    a3.opri = 5;
    ASSERT_EQ(l2_api_multicast_port_attribute_set(0, kGroup, L2_MC_PORT(0, 3), &a3), 0);
    l2_multicast_port_attr a4{};
    a4.flags = L2_MC_ATTR_VID_CHANGE;
    a4.tagnum = 2;
    a4.ovid = 200;
    a4.ivid = 300;
    ASSERT_EQ(l2_api_multicast_port_attribute_set(0, kGroup, L2_MC_PORT(0, 4), &a4), 0);

    auto out = send(9, frame());
    ASSERT_EQ(out.size(), 4u);
    for (u32 p : {1u, 2u, 3u, 4u}) {
        ASSERT_EQ(out[p].size(), 1u) << "port " << p;
    }
    EXPECT_EQ(out[1][0], frame());
    EXPECT_EQ(tags_of(out[2][0]), (std::vector<std::pair<u16, u16>>{{0x8100, 1}}));
    EXPECT_EQ(tags_of(out[3][0]), (std::vector<std::pair<u16, u16>>{{0x8100, 5 << 13 | 100}}));
    EXPECT_EQ(tags_of(out[4][0]), (std::vector<std::pair<u16, u16>>{{0x8100, 200}, {0x8100, 300}}));
    // The rest of each copy is the frame's.
    Frame body = out[3][0];
    body.erase(body.begin() + 12, body.begin() + 16);
    EXPECT_EQ(body, frame());

    // What the chip holds reads back through the service.
    l2_multicast_bitmap got{};
    ASSERT_EQ(l2_api_multicast_bitmap_get(0, kGroup, &got), 0);
    EXPECT_EQ(got.type, 1u);
    EXPECT_EQ(got.ports.word[0], bm.ports.word[0]);
    l2_multicast_port_attr back{};
    ASSERT_EQ(l2_api_multicast_port_attribute_get(0, kGroup, L2_MC_PORT(0, 3), &back), 0);
    EXPECT_EQ(back.flags, a3.flags);
    EXPECT_EQ(back.ovid, 100u);
    EXPECT_EQ(back.opri, 5u);
    EXPECT_EQ(l2_api_multicast_port_attribute_get(0, kGroup, L2_MC_PORT(0, 7), &back), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("The port is not in multicast group"));
}

TEST_F(SimMcc, MembersComeAndGoAndTheCopyBackToTheIngressPortIsPruned)
{
    u32 id = kGroup;
    ASSERT_EQ(l2_api_multicast_create(0, 1, &id), SHR_E_EXISTS); // the entry holds it
    ASSERT_EQ(l2_api_multicast_port_add(0, kGroup, L2_MC_PORT(0, 5)), 0);
    ASSERT_EQ(l2_api_multicast_port_add(0, kGroup, L2_MC_PORT(0, 6)), 0);
    EXPECT_EQ(l2_api_multicast_port_add(0, kGroup, L2_MC_PORT(0, 6)), SHR_E_EXISTS);
    EXPECT_TRUE(Capture::has("this port is exist"));
    // From a member: the others only, unless the member may bridge.
    auto out = send(5, frame());
    EXPECT_EQ(out.size(), 1u);
    EXPECT_EQ(out.count(6), 1u);
    l2_multicast_port_attr bridge{};
    bridge.port_bridge = 1;
    ASSERT_EQ(l2_api_multicast_port_attribute_set(0, kGroup, L2_MC_PORT(0, 5), &bridge), 0);
    out = send(5, frame());
    EXPECT_EQ(out.size(), 2u);
    // A trunk member has no stage in the model: its copy drops with a cause.
    ASSERT_EQ(l2_api_multicast_port_add(0, kGroup, L2_MC_PORT(1, 3)), 0);
    const u64 abnormal = dropped(733);
    out = send(9, frame());
    EXPECT_EQ(out.size(), 2u);
    EXPECT_EQ(dropped(733), abnormal + 1);
    l2_multicast_bitmap got{};
    ASSERT_EQ(l2_api_multicast_bitmap_get(0, kGroup, &got), 0);
    EXPECT_EQ(got.type, 3u);
    EXPECT_EQ(got.trunks.word[0], 1u << 3);
    // Members leave; the last one takes the copies with it.
    for (u64 m : {L2_MC_PORT(0, 5), L2_MC_PORT(1, 3), L2_MC_PORT(0, 6)}) {
        ASSERT_EQ(l2_api_multicast_port_delete(0, kGroup, m), 0);
    }
    EXPECT_EQ(l2_api_multicast_port_delete(0, kGroup, L2_MC_PORT(0, 6)), SHR_E_NOT_FOUND);
    const u64 invalid = dropped(688);
    EXPECT_TRUE(send(9, frame()).empty());
    EXPECT_EQ(dropped(688), invalid + 1);
    ASSERT_EQ(l2_api_multicast_destroy(0, kGroup), 0);
    EXPECT_EQ(l2_api_multicast_port_delete(0, kGroup, L2_MC_PORT(0, 6)), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("multicast group 100 has no member"));
    // A bitmap replaces the members of its kind and keeps the others.
    ASSERT_EQ(l2_api_multicast_port_add(0, kGroup, L2_MC_PORT(1, 3)), 0);
    ASSERT_EQ(l2_api_multicast_port_add(0, kGroup, L2_MC_PORT(0, 5)), 0);
    l2_multicast_bitmap bm{};
    bm.ports.word[0] = (1u << 6) | (1u << 7);
    ASSERT_EQ(l2_api_multicast_bitmap_set(0, kGroup, &bm), 0);
    ASSERT_EQ(l2_api_multicast_bitmap_get(0, kGroup, &got), 0);
    EXPECT_EQ(got.ports.word[0], bm.ports.word[0]);
    EXPECT_EQ(got.trunks.word[0], 1u << 3);
    out = send(9, frame());
    EXPECT_EQ(out.size(), 2u);
    EXPECT_EQ(out.count(6) + out.count(7), 2u);
}

TEST_F(SimMcc, ChainsTheSdkWouldNeverWriteEndTheWalkWithTheirCauses)
{
    // Three leaves 0 -> 1 -> 2 for ports 1, 2, 3, written by hand.
    u64 all[2] = {~0ull, ~0ull};
    for (u32 leaf = 0; leaf < 3; leaf++) {
        cib_mcc_mlib_t l{1, static_cast<u8>(leaf < 2), static_cast<u16>(leaf + 1), 0};
        ASSERT_EQ(csl_reef_cib_mcc_mlib_set(0, 0, leaf, &l, all), 0);
        cib_epro_elb_table_t e{};
        e.valid = 1;
        e.oport_inf_causeid = static_cast<u16>(leaf + 1);
        ASSERT_EQ(csl_reef_cib_epro_elb_table_set(0, 0, leaf, &e, all), 0);
    }
    auto root = [&](u16 first, u16 count) {
        cib_mcc_mrt_t r{1, 0, 0, first, count};
        ASSERT_EQ(csl_reef_cib_mcc_mrt_set(0, 0, kGroup, &r, all), 0);
    };
    root(0, 3);
    EXPECT_EQ(mc_walk(0, kGroup).keys, (std::vector<u32>{1, 2, 3}));
    EXPECT_EQ(send(9, frame()).size(), 3u);
    // More copies than the chain has: the copies reached go, the cut counts.
    root(0, 4);
    EXPECT_EQ(mc_walk(0, kGroup).end, static_cast<u32>(TIDE_SIM_MCC_CUT));
    u64 before = dropped(667);
    EXPECT_EQ(send(9, frame()).size(), 3u);
    EXPECT_EQ(dropped(667), before + 1);
    // A loop: leaf 2 back to leaf 0.
    cib_mcc_mlib_t back{1, 1, 0, 0};
    ASSERT_EQ(csl_reef_cib_mcc_mlib_set(0, 0, 2, &back, all), 0);
    EXPECT_EQ(mc_walk(0, kGroup).end, static_cast<u32>(TIDE_SIM_MCC_LOOP));
    EXPECT_EQ(send(9, frame()).size(), 3u);
    // An invalid first leaf: nothing goes, the frame drops with its cause.
    cib_mcc_mlib_t none{};
    ASSERT_EQ(csl_reef_cib_mcc_mlib_set(0, 0, 0, &none, all), 0);
    EXPECT_EQ(mc_walk(0, kGroup).end, static_cast<u32>(TIDE_SIM_MCC_LEAF_INVALID));
    before = dropped(689);
    EXPECT_TRUE(send(9, frame()).empty());
    EXPECT_EQ(dropped(689), before + 1);
    // A port of another module.
    root(1, 1);
    cib_epro_elb_table_t far{};
    far.valid = 1;
    far.oport_inf_causeid = 64 + 2;
    ASSERT_EQ(csl_reef_cib_epro_elb_table_set(0, 0, 1, &far, all), 0);
    before = dropped(692);
    EXPECT_TRUE(send(9, frame()).empty());
    EXPECT_EQ(dropped(692), before + 1);
    // The root counts its frames when asked to.
    root(2, 1);
    ASSERT_EQ(dpl_reef_mcc_mrt_count_set(0, kGroup, MCC_COUNT_STATS, 1), SHR_E_NOT_FOUND);
    cib_mcc_mrt_t counting{1, 1, 0, 2, 1};
    ASSERT_EQ(csl_reef_cib_mcc_mrt_set(0, 0, kGroup, &counting, all), 0);
    EXPECT_EQ(send(9, frame()).size(), 1u);
    cib_stat_mgid_stat_result_tbl_t s{};
    ASSERT_EQ(csl_reef_cib_stat_mgid_stat_result_tbl_get(0, 0, kGroup, &s), 0);
    EXPECT_EQ(s.mgid_stat_pkt_num, 1u);
    EXPECT_EQ(s.mgid_stat_byt_num, 64u);
    EXPECT_EQ(tide_sim_mcc_walk(0, 1024, nullptr, 0, nullptr, nullptr), -4);
}

} // namespace
