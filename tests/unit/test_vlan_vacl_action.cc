// The whole action of a VLAN TCAM hit, end to end through the exported
// calls and the model: inner tags, priorities and CFIs (replaced, or
// copied by the global copy modes), the DSCP with its checksum, the
// forwarding commands, the not-learn bits, and the key settings by which
// untagged and priority-tagged frames present their PVID.
#include <gtest/gtest.h>
#include <tide/counter.h>
#include <tide/property.h>
#include <tide/sim.h>
#include <tide/vlan.h>

#include <vector>

#include "atolreef_tcam_table.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

using Frame = std::vector<uint8_t>;

constexpr uint32_t kIn = 1, kCpu = 31;
constexpr uint16_t kPvidPri = 5;
// The IPv4 header of the frames: TOS 0x01 (ECN 1), a valid checksum.
constexpr uint8_t kTos = 0x01;

uint16_t tci(uint32_t pri, uint32_t vid, uint32_t cfi = 0)
{
    return static_cast<uint16_t>(pri << 13 | cfi << 12 | vid);
}

// The one's complement sum of an IPv4 header: 0xFFFF when its checksum is
// right.
uint32_t ip_sum(const uint8_t *ip)
{
    uint32_t sum = 0;
    for (int i = 0; i < 20; i += 2) {
        sum += static_cast<uint32_t>(ip[i]) << 8 | ip[i + 1];
    }
    while (sum > 0xFFFF) {
        sum = (sum & 0xFFFF) + (sum >> 16);
    }
    return sum;
}

// A broadcast IPv4 frame from 02:00:00:00:00:<smac_low> with the tags of
// `tcis` (TPID 0x8100, outermost first).
Frame frame(std::initializer_list<uint16_t> tcis, uint8_t smac_low = 0x0B)
{
    Frame f = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0, 0, 0, 0, smac_low};
    for (uint16_t t : tcis) {
        f.insert(f.end(), {0x81, 0x00, static_cast<uint8_t>(t >> 8), static_cast<uint8_t>(t)});
    }
    f.insert(f.end(), {0x08, 0x00});
    uint8_t ip[20] = {0x45, kTos, 0, 46, 0, 1, 0, 0, 64, 17, 0, 0, 10, 0, 0, 2, 10, 0, 0, 1};
    const uint32_t sum = ip_sum(ip);
    ip[10] = static_cast<uint8_t>(~sum >> 8);
    ip[11] = static_cast<uint8_t>(~sum);
    f.insert(f.end(), ip, ip + sizeof(ip));
    f.resize(f.size() + 40, 0x5A);
    return f;
}

// What a frame injected on port 1 became: the frames each port sent, and
// the to-CPU causes of those the CPU got.
struct Sent {
    std::vector<Frame> on[32];
    std::vector<uint32_t> cpu_causes;
};

Sent send(const Frame &f)
{
    EXPECT_EQ(tide_sim_packet_inject(0, kIn, f.data(), static_cast<uint32_t>(f.size())), 0);
    Sent s;
    for (uint32_t p = 0; p < 32; p++) {
        uint8_t buf[TIDE_SIM_FRAME_MAX];
        tide_sim_frame_info info{};
        while (tide_sim_packet_peek(0, p, 0, nullptr, 0, &info) == 0) {
            uint32_t len = 0;
            EXPECT_EQ(tide_sim_packet_capture(0, p, buf, sizeof(buf), &len), 0);
            s.on[p].emplace_back(buf, buf + len);
            if (p == kCpu) {
                s.cpu_causes.push_back(info.cause);
            }
        }
    }
    return s;
}

// The tag controls of a frame's 0x8100 tags, outermost first.
std::vector<uint16_t> tags_of(const Frame &f)
{
    std::vector<uint16_t> out;
    for (size_t at = 12; at + 4 <= f.size() && f[at] == 0x81 && f[at + 1] == 0x00; at += 4) {
        out.push_back(static_cast<uint16_t>(f[at + 2] << 8 | f[at + 3]));
    }
    return out;
}

// The frame after its tags (type, IPv4 header, payload).
Frame body_of(const Frame &f)
{
    return Frame(f.begin() + static_cast<long>(12 + 4 * tags_of(f).size()), f.end());
}

uint32_t last_drop_cause()
{
    tide_sim_port_stats st{};
    EXPECT_EQ(tide_sim_port_stats_get(0, kIn, &st), 0);
    return st.last_drop_cause;
}

vlan_ingress_translate_key port_ovid(uint16_t ovid)
{
    vlan_ingress_translate_key k{};
    k.vt_key_type = VLAN_IVT_KEY_PORT_OVID;
    k.lport = kIn;
    k.outer_vlan = ovid;
    return k;
}

// VLANs 10, 20 to 23 and 30 on ports 1 to 3, all sent tagged; port 1's
// PVID is 10 with priority 5.  Three translation places (after one voice
// place) and one MAC place.
class VlanVaclAction : public SimChips {
protected:
    VlanVaclAction() : SimChips(1, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        for (const auto &[k, v] : {std::pair{"voice_vlan_cnt", "1"}, {"vacl_cnt", "4"}, {"mac_vlan_cnt", "1"}}) {
            ASSERT_EQ(shr_property_set(0, k, v), 0);
        }
        up_chip(0);
        port_bitmap ports{{0xE, 0, 0}}, none{};
        for (uint32_t vid : {10u, 20u, 21u, 22u, 23u, 30u}) {
            ASSERT_EQ(vlan_api_create(0, vid), 0);
            ASSERT_EQ(vlan_api_port_set(0, vid, &ports, &none), 0);
        }
        for (vlan_control c : {vlan_control{VLAN_PORT_CTRL_PVID, 10}, vlan_control{VLAN_PORT_CTRL_PVID_PRI, kPvidPri}}) {
            ASSERT_EQ(vlan_api_port_control_set(0, kIn, &c), 0);
        }
    }
    void translate(uint16_t ovid, vlan_translate_action a)
    {
        vlan_ingress_translate_key k = port_ovid(ovid);
        ASSERT_EQ(vlan_api_ingress_translate_add(0, &k, &a), 0);
    }
    static void global(uint32_t key, uint32_t value)
    {
        vlan_control c{key, value};
        ASSERT_EQ(vlan_api_global_cfg_set(0, &c), 0);
    }
    static void key_setting(uint32_t key, uint32_t value)
    {
        vlan_control c{key, value};
        ASSERT_EQ(vlan_api_translation_global_cfg_set(0, &c), 0);
    }
};

TEST_F(VlanVaclAction, InnerTagsAreAddedReplacedAndDeletedAndAPoppedOuterTagIsRetagged)
{
    vlan_translate_action a{};
    a.itag_action = VLAN_TAG_ACT_ADD;
    a.new_inner_vlan = 100;
    translate(20, a);
    a.itag_action = VLAN_TAG_ACT_REPLACE;
    a.new_inner_vlan = 300;
    translate(21, a);
    a = {};
    a.itag_action = VLAN_TAG_ACT_DELETE;
    translate(22, a);
    a = {};
    a.otag_action = VLAN_TAG_ACT_DELETE;
    translate(23, a);

    const Frame body = body_of(frame({}));
    struct Case {
        Frame in;
        std::vector<uint16_t> out;
    };
    const Case cases[] = {
        {frame({tci(3, 20)}), {tci(3, 20), tci(0, 100)}},
        {frame({tci(3, 21), tci(2, 200)}), {tci(3, 21), tci(2, 300)}},
        {frame({tci(3, 22), tci(2, 200)}), {tci(3, 22)}},
        // The outer tag popped, the egress rows tag the frame of VLAN 23
        // anew, with the PVID's priority.
        {frame({tci(3, 23), tci(2, 200)}), {tci(kPvidPri, 23), tci(2, 200)}},
        // Replacing an inner tag that is not there changes nothing.
        {frame({tci(3, 21)}), {tci(3, 21)}},
    };
    for (const Case &c : cases) {
        const Sent s = send(c.in);
        ASSERT_EQ(s.on[2].size(), 1u);
        EXPECT_EQ(tags_of(s.on[2][0]), c.out);
        EXPECT_EQ(body_of(s.on[2][0]), body);
        EXPECT_EQ(s.on[3].size(), 1u);
    }
}

TEST_F(VlanVaclAction, PrioritiesAndCfisAreReplacedOrCopiedByTheCopyModes)
{
    vlan_translate_action a{};
    a.outer_pri_act = a.inner_pri_act = a.outer_cfi_act = 2;
    a.new_outer_pri = 6;
    a.new_inner_pri = 1;
    a.new_outer_cfi = 1;
    translate(20, a);
    a = {};
    a.itag_action = VLAN_TAG_ACT_REPLACE;
    a.new_inner_vlan = 300;
    translate(21, a);

    EXPECT_EQ(tags_of(send(frame({tci(3, 20), tci(2, 200)})).on[2].at(0)),
              (std::vector<uint16_t>{tci(6, 20, 1), tci(1, 200)}));
    // No copy mode: the priorities stay.
    EXPECT_EQ(tags_of(send(frame({tci(3, 21), tci(2, 200)})).on[2].at(0)),
              (std::vector<uint16_t>{tci(3, 21), tci(2, 300)}));

    // Double-tagged frames: the outer priority from the inner field, the
    // inner from the outer one, as they came in (global keys 38 and 48).
    global(38, 1);
    global(48, 2);
    EXPECT_EQ(tags_of(send(frame({tci(3, 21), tci(2, 200)})).on[2].at(0)),
              (std::vector<uint16_t>{tci(2, 21), tci(3, 300)}));
    // A replace of the entry wins over a copy.
    EXPECT_EQ(tags_of(send(frame({tci(3, 20), tci(2, 200)})).on[2].at(0)),
              (std::vector<uint16_t>{tci(6, 20, 1), tci(1, 200)}));
    // The modes are per tag state: a single-tagged frame keeps its own.
    EXPECT_EQ(tags_of(send(frame({tci(3, 21)})).on[2].at(0)), (std::vector<uint16_t>{tci(3, 21)}));
    // The inner CFI from the outer one (key 53, tag3).
    global(53, 2);
    EXPECT_EQ(tags_of(send(frame({tci(3, 21, 1), tci(2, 200)})).on[2].at(0)),
              (std::vector<uint16_t>{tci(2, 21, 1), tci(3, 300, 1)}));
}

TEST_F(VlanVaclAction, AVoiceEntryRewritesTheDscpAndKeepsTheChecksumRight)
{
    vlan_mac_key vk{{0x02, 0, 0, 0, 0, 0x0D}, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 1, kIn, 10, 46, 0};
    vlan_translate_action none{};
    ASSERT_EQ(vlan_api_macbased_add(0, &vk, &none), 0);

    const Frame in = frame({tci(3, 10)}, 0x0D);
    const Sent s = send(in);
    ASSERT_EQ(s.on[2].size(), 1u);
    const Frame &out = s.on[2][0];
    ASSERT_EQ(out.size(), in.size());
    const uint8_t *ip = out.data() + 18;
    EXPECT_EQ(ip[1], 46 << 2 | kTos);
    EXPECT_EQ(ip_sum(ip), 0xFFFFu);
    // Nothing else moved.
    for (size_t i = 0; i < in.size(); i++) {
        if (i != 18 + 1 && i != 18 + 10 && i != 18 + 11) {
            EXPECT_EQ(out[i], in[i]) << i;
        }
    }
    // Another source, or another VLAN, keeps its DSCP.
    EXPECT_EQ(send(frame({tci(3, 10)}, 0x0E)).on[2].at(0)[18 + 1], kTos);
    EXPECT_EQ(send(frame({tci(3, 20)}, 0x0D)).on[2].at(0)[18 + 1], kTos);
}

TEST_F(VlanVaclAction, UntaggedAndPriorityTaggedFramesPresentThePvidAsTheKeySettingsSay)
{
    // VLAN 10 with the PVID's priority 5 goes to VLAN 30.
    vlan_ingress_translate_key k{};
    k.vt_key_type = VLAN_IVT_KEY_OVID_OPRI;
    k.outer_vlan = 10;
    k.outer_pri = kPvidPri;
    vlan_translate_action a{};
    a.otag_action = VLAN_TAG_ACT_REPLACE;
    a.new_outer_vlan = 30;
    ASSERT_EQ(vlan_api_ingress_translate_add(0, &k, &a), 0);
    auto vid_on_2 = [](const Frame &f) { return tags_of(send(f).on[2].at(0)).at(0) & 0xFFF; };

    // By default neither shows the PVID: VID 0, priority 0 (untagged) or
    // the tag's own.
    EXPECT_EQ(vid_on_2(frame({})), 10);
    EXPECT_EQ(vid_on_2(frame({tci(kPvidPri, 0)})), 10);
    EXPECT_EQ(vid_on_2(frame({tci(kPvidPri, 10)})), 30);

    // The PVID's VID alone is not enough for an untagged frame: its
    // priority is 0 until the PVID's priority goes in too.
    key_setting(VLAN_VT_GLB_UNTAG_KEY_PVID, 1);
    EXPECT_EQ(vid_on_2(frame({})), 10);
    key_setting(VLAN_VT_GLB_UNTAG_KEY_PVID_PRI, 1);
    EXPECT_EQ(vid_on_2(frame({})), 30);

    // A priority-tagged frame shows its own priority with the PVID's VID,
    // or the PVID's priority when asked.
    key_setting(VLAN_VT_GLB_PRI_TAG_KEY_PVID, 1);
    EXPECT_EQ(vid_on_2(frame({tci(kPvidPri, 0)})), 30);
    EXPECT_EQ(vid_on_2(frame({tci(1, 0)})), 10);
    key_setting(VLAN_VT_GLB_PRI_TAG_KEY_PVID_PRI, 1);
    EXPECT_EQ(vid_on_2(frame({tci(1, 0)})), 30);
}

TEST_F(VlanVaclAction, ForwardingCommandsDropCopyAndRedirectWithTheirCauses)
{
    vlan_translate_action a{};
    a.fwdtype = 1; // drop
    translate(20, a);
    a.fwdtype = 2; // copy to the CPU
    translate(21, a);
    a.fwdtype = 4; // to port 3
    a.fwdinfo = 3;
    translate(22, a);
    a.fwdtype = 5; // to a trunk: the model has none
    a.fwdinfo = 1;
    translate(23, a);

    Sent s = send(frame({tci(0, 20)}));
    EXPECT_TRUE(s.on[2].empty() && s.on[3].empty() && s.on[kCpu].empty());
    EXPECT_EQ(last_drop_cause(), 579u);

    s = send(frame({tci(0, 21)}));
    EXPECT_EQ(s.on[2].size(), 1u);
    EXPECT_EQ(s.on[3].size(), 1u);
    EXPECT_EQ(s.cpu_causes, std::vector<uint32_t>{0});

    s = send(frame({tci(0, 22)}));
    EXPECT_TRUE(s.on[2].empty());
    EXPECT_EQ(s.on[3].size(), 1u);

    s = send(frame({tci(0, 23)}));
    EXPECT_TRUE(s.on[2].empty() && s.on[3].empty());
    EXPECT_EQ(last_drop_cause(), 733u);

    // Without an entry the frame floods.
    s = send(frame({tci(0, 30)}));
    EXPECT_EQ(s.on[2].size() + s.on[3].size(), 2u);
}

// The action row of the first translation (place 1, after the voice
// place), rewritten through the SDK's accessor: the calls give no
// learning bits.
void patch_first_translation(void (*fn)(cib_ipro_tcam_vlanacl_160_t *))
{
    uint32_t block = 0, index = 0;
    ASSERT_EQ(csl_reef_tcam_utils_index_to_block_index(0, 1, 1, &block, &index), 0);
    cib_ipro_tcam_vlanacl_160_t r{};
    ASSERT_EQ(csl_reef_cib_ipro_tcam_vlanacl_160_get(0, block, index, &r), 0);
    fn(&r);
    ASSERT_EQ(csl_reef_cib_ipro_tcam_vlanacl_160_set(0, block, index, &r), 0);
}

uint32_t learned()
{
    uint32_t st = 0, dyn = 0, entries = 0;
    EXPECT_EQ(tide_sim_arl_count_get(0, &st, &dyn, &entries), 0);
    return dyn;
}

TEST_F(VlanVaclAction, NotLearnBitsKeepUnknownSourcesOutOfTheMacTable)
{
    translate(20, vlan_translate_action{});
    patch_first_translation([](cib_ipro_tcam_vlanacl_160_t *r) { r->ad.nolrn = 1; });

    // A frame without a hit learns its source; one with the bit does not,
    // and still floods.
    send(frame({tci(0, 21)}, 0x21));
    ASSERT_EQ(learned(), 1u);
    Sent s = send(frame({tci(0, 20)}, 0x22));
    EXPECT_EQ(learned(), 1u);
    EXPECT_EQ(s.on[2].size(), 1u);

    // With the CPU bit the frame is copied there; with the discard bit
    // dropped; with both redirected.
    patch_first_translation([](cib_ipro_tcam_vlanacl_160_t *r) { r->ad.nolrntocpu = 1; });
    s = send(frame({tci(0, 20)}, 0x23));
    EXPECT_EQ(s.on[2].size(), 1u);
    EXPECT_EQ(s.cpu_causes, std::vector<uint32_t>{310});
    patch_first_translation([](cib_ipro_tcam_vlanacl_160_t *r) {
        r->ad.nolrntocpu = 0;
        r->ad.nolrndiscard = 1;
    });
    s = send(frame({tci(0, 20)}, 0x24));
    EXPECT_TRUE(s.on[2].empty() && s.on[kCpu].empty());
    EXPECT_EQ(last_drop_cause(), 596u);
    EXPECT_EQ(learned(), 1u);
}

TEST_F(VlanVaclAction, AnEntrysCounterCountsItsFramesAsTheyCameIn)
{
    ASSERT_EQ(counter_api_enable_set(0, COUNTER_VLAN_ACL_STAT, 1), 0);
    vlan_translate_action a{};
    a.itag_action = VLAN_TAG_ACT_ADD; // the counted length is the frame's before the push
    translate(20, a);
    patch_first_translation([](cib_ipro_tcam_vlanacl_160_t *r) {
        r->ad.staten = 1;
        r->ad.statid = 7;
    });
    const Frame f = frame({tci(0, 20)});
    for (int i = 0; i < 3; i++) {
        send(f);
    }
    send(frame({tci(0, 21)})); // no hit
    counter_key key{COUNTER_VLAN_ACL_STAT, 7, 0};
    counter_stats st{};
    ASSERT_EQ(counter_api_stats_get(0, &key, &st), 0);
    EXPECT_EQ(st.pkt, 3u);
    EXPECT_EQ(st.bytes, 3 * (f.size() + 4));
}

} // namespace
