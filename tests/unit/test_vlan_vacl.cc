// Ingress translation and MAC-, subnet- and protocol-based VLANs through
// the exported calls: the ranges the reservations cut from the VLAN TCAM
// spaces, the entries as the model holds them, the walks and clears, and
// the refusals that leave everything as it was.
#include <gtest/gtest.h>
#include <tide/property.h>
#include <tide/sim.h>
#include <tide/vlan.h>

#include <vector>

#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_vlan.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

// A chip brought up with the reservations of the test.
class VlanVacl : public SimChips {
protected:
    VlanVacl() : SimChips(1, 0) {}
    void up(std::initializer_list<std::pair<const char *, const char *>> props)
    {
        for (const auto &[k, v] : props) {
            ASSERT_EQ(shr_property_set(0, k, v), 0);
        }
        up_chip(0);
    }
    // voice 1, translate 3, MAC 2, subnet 2 of the 160-bit space; protocol 2.
    void up_reserved()
    {
        up({{"voice_vlan_cnt", "1"}, {"vacl_cnt", "3"}, {"mac_vlan_cnt", "2"}, {"subnet_vlan_cnt", "2"},
            {"protocol_vlan_cnt", "2"}});
    }
};

// The model's row at a place of a VLAN TCAM space.
tide_sim_tcam_row model_row(uint32_t module, uint32_t place)
{
    uint32_t block = 0, index = 0;
    EXPECT_EQ(csl_reef_tcam_utils_index_to_block_index(0, module, place, &block, &index), 0);
    tide_sim_tcam_row r{};
    EXPECT_EQ(tide_sim_tcam_row_get(0, block, index, &r), 0);
    return r;
}

// Bits hi..lo of a row image (bit i in word i / 32), up to 32 of them.
uint32_t bits(const uint32_t *w, uint32_t hi, uint32_t lo)
{
    uint64_t v = 0;
    for (uint32_t b = hi + 1; b-- > lo;) {
        v = v << 1 | (w[b / 32] >> (b % 32) & 1);
    }
    return static_cast<uint32_t>(v);
}

// The bits of a field a row compares: a cell compares when either of its
// two bits (data wants a 1, care wants a 0) is set.
uint32_t compared(const tide_sim_tcam_row &r, uint32_t hi, uint32_t lo)
{
    return bits(r.data, hi, lo) | bits(r.care, hi, lo);
}

vlan_ingress_translate_key vt_key(uint32_t type, uint32_t port, uint16_t ovid, uint16_t ivid = 0)
{
    vlan_ingress_translate_key k{};
    k.vt_key_type = type;
    k.lport = port;
    k.outer_vlan = ovid;
    k.inner_vlan = ivid;
    return k;
}

vlan_translate_action replace_outer(uint16_t vid)
{
    vlan_translate_action a{};
    a.otag_action = VLAN_TAG_ACT_REPLACE;
    a.new_outer_vlan = vid;
    return a;
}

uint32_t count(uint32_t kind)
{
    return g_atolreef_vlan_info[0]->vacl_count[kind];
}

TEST_F(VlanVacl, WithoutReservationsEveryAddIsRefusedAsFull)
{
    up({});
    vlan_translate_action a = replace_outer(5);
    vlan_ingress_translate_key vk = vt_key(VLAN_IVT_KEY_PORT_OVID, 1, 10);
    vlan_mac_key mk{{0, 1, 2, 3, 4, 5}, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 0, 0, 0, 0, 0};
    vlan_subnet_key sk{0x0A000000, 0xFF000000, 0, 0};
    vlan_protocol_key pk{1, 0, 0, VLAN_L2_PKT_ETHERNETII, 0x0800, 0};
    Capture::clear();
    EXPECT_EQ(vlan_api_ingress_translate_add(0, &vk, &a), -6);
    EXPECT_TRUE(Capture::has("VACL_160BIT_VT is full  max_count_start!!!"));
    EXPECT_EQ(vlan_api_macbased_add(0, &mk, &a), -6);
    EXPECT_TRUE(Capture::has("VACL_160BIT_MAC_VLAN is full  max_count_start!!!"));
    EXPECT_EQ(vlan_api_subnetbased_add(0, &sk, &a), -6);
    EXPECT_TRUE(Capture::has("VACL_160BIT_SUBNET_VLAN is full  max_count_start!!!"));
    EXPECT_EQ(vlan_api_protocolbased_add(0, &pk, &a), -6);
    EXPECT_TRUE(Capture::has("VACL_320BIT_PROTOCOL_VLAN is full  max_count_start!!!"));
}

TEST_F(VlanVacl, IngressTranslationsFillTheirRangeAndTheModelHoldsTheRows)
{
    up_reserved();
    // The translate range follows the one voice place: places 1..3.
    vlan_ingress_translate_key k = vt_key(VLAN_IVT_KEY_PORT_OVID, 3, 100, 7);
    vlan_translate_action a = replace_outer(200);
    a.new_outer_pri = 5;
    a.outer_pri_act = 2;
    ASSERT_EQ(vlan_api_ingress_translate_add(0, &k, &a), 0);
    tide_sim_tcam_row r = model_row(CSL_TCAM_UTILS_VT_160, 1);
    EXPECT_EQ(r.valid, 1u);
    EXPECT_EQ(bits(r.data, 159, 156), 9u);
    EXPECT_EQ(compared(r, 159, 156), 0xFu);
    EXPECT_EQ(bits(r.data, 155, 144), 100u); // outer VID, compared
    EXPECT_EQ(compared(r, 155, 144), 0xFFFu);
    EXPECT_EQ(compared(r, 143, 132), 0u);   // inner VID, not compared by PORT-OVID
    EXPECT_EQ(bits(r.data, 101, 74), 3u);    // the port
    EXPECT_EQ(compared(r, 101, 74), 0xFFFFFFFu);
    EXPECT_EQ(compared(r, 72, 70), 0u);     // outer priority not compared
    EXPECT_EQ(bits(r.action, 95, 95), 1u);   // valid
    EXPECT_EQ(bits(r.action, 82, 81), 2u);   // outer tag replaced
    EXPECT_EQ(bits(r.action, 80, 69), 200u); // by VID 200
    EXPECT_EQ(bits(r.action, 54, 54), 1u);   // and priority 5
    EXPECT_EQ(bits(r.action, 53, 51), 5u);
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, 0).valid, 0u);

    vlan_translate_action got{};
    ASSERT_EQ(vlan_api_ingress_translate_get(0, &k, &got), 0);
    EXPECT_EQ(got.otag_action, 2u);
    EXPECT_EQ(got.new_outer_vlan, 200u);
    EXPECT_EQ(got.new_outer_pri, 5u);
    EXPECT_EQ(got.outer_pri_act, 2u);
    EXPECT_EQ(got.itag_action, 0u);

    // A trunk key holds the trunk id with bit 5 set; keys that differ only
    // in a field their type does not compare are two entries.
    vlan_ingress_translate_key t = vt_key(VLAN_IVT_KEY_PORT_OVID, 0, 100);
    t.trunk_flag = 1;
    t.tgid = 2;
    ASSERT_EQ(vlan_api_ingress_translate_add(0, &t, &a), 0);
    EXPECT_EQ(bits(model_row(CSL_TCAM_UTILS_VT_160, 2).data, 101, 74), 34u);
    vlan_ingress_translate_key other = k;
    other.inner_vlan = 8;
    ASSERT_EQ(vlan_api_ingress_translate_add(0, &other, &a), 0);
    EXPECT_EQ(count(1), 3u);

    // The range is full; the MAC range after it is untouched.
    vlan_ingress_translate_key fourth = vt_key(VLAN_IVT_KEY_OVID, 0, 9);
    Capture::clear();
    EXPECT_EQ(vlan_api_ingress_translate_add(0, &fourth, &a), -6);
    EXPECT_TRUE(Capture::has("VACL_160BIT_VT is full  max_count_start!!!"));
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, 4).valid, 0u);

    // A delete frees its place for the next add; a second delete is -7.
    ASSERT_EQ(vlan_api_ingress_translate_delete(0, &t), 0);
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, 2).valid, 0u);
    Capture::clear();
    EXPECT_EQ(vlan_api_ingress_translate_delete(0, &t), -7);
    EXPECT_TRUE(Capture::has("vacl key not found!!!"));
    EXPECT_EQ(vlan_api_ingress_translate_get(0, &t, &got), -7);
    ASSERT_EQ(vlan_api_ingress_translate_add(0, &fourth, &a), 0);
    EXPECT_EQ(bits(model_row(CSL_TCAM_UTILS_VT_160, 2).data, 155, 144), 9u);

    // The walk goes in the order of the adds, on past a failing callback.
    struct Seen {
        std::vector<uint32_t> ovids;
    } seen;
    auto cb = [](uint32_t, vlan_ingress_translate_key *key, vlan_translate_action *act, void *user) -> int32_t {
        auto *s = static_cast<Seen *>(user);
        s->ovids.push_back(key->outer_vlan * 10000u + key->inner_vlan * 10u + (act->new_outer_vlan == 200));
        return key->inner_vlan == 7 ? -4 : 0;
    };
    Capture::clear();
    EXPECT_EQ(vlan_api_ingress_translate_traverse(0, cb, &seen), -4);
    EXPECT_EQ(seen.ovids, (std::vector<uint32_t>{1000071, 1000081, 90001}));
    EXPECT_TRUE(Capture::has("key_ad_index:1 traverse fail!!!"));

    // The clear takes every translation out of the model and the lists.
    ASSERT_EQ(dpl_reef_vlan_ingress_translate_clear(0), 0);
    EXPECT_EQ(count(1), 0u);
    for (uint32_t place = 1; place <= 3; place++) {
        EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, place).valid, 0u) << place;
    }
    seen.ovids.clear();
    EXPECT_EQ(vlan_api_ingress_translate_traverse(0, cb, &seen), 0);
    EXPECT_TRUE(seen.ovids.empty());
}

TEST_F(VlanVacl, BadTranslationsAreRefusedAndChangeNothing)
{
    up_reserved();
    vlan_ingress_translate_key good = vt_key(VLAN_IVT_KEY_PORT_OVID_IVID, 2, 10, 20);
    vlan_translate_action a = replace_outer(30);
    ASSERT_EQ(vlan_api_ingress_translate_add(0, &good, &a), 0);
    Capture::clear();
    EXPECT_EQ(vlan_api_ingress_translate_add(0, &good, &a), -8);
    EXPECT_TRUE(Capture::has("vacl key is exists !!!"));

    struct KeyCase {
        vlan_ingress_translate_key key;
        int32_t rc;
        const char *line;
    };
    vlan_ingress_translate_key trunk = vt_key(VLAN_IVT_KEY_PORT_OVID, 0, 1);
    trunk.trunk_flag = 1;
    trunk.tgid = 8;
    vlan_ingress_translate_key pri = vt_key(VLAN_IVT_KEY_OVID_OPRI, 0, 1);
    pri.outer_pri = 8;
    vlan_ingress_translate_key tags = vt_key(VLAN_IVT_KEY_OVID, 0, 1);
    tags.tag_num = 4;
    const KeyCase keys[] = {
        {vt_key(VLAN_IVT_KEY_OVID, 0, 4096), -4, "input match ovid : 4096 is invalid param!!!"},
        {vt_key(VLAN_IVT_KEY_IVID, 0, 1, 5000), -4, "input match ivid : 5000 is invalid param!!!"},
        {vt_key(VLAN_IVT_KEY_PORT_OVID, 99, 1), -4, "key->lport:99 is invalid!!!"},
        {trunk, -4, "tgid (8) is out of range!!!"},
        {pri, -4, "input match opri : 8 is invalid param!!!"},
        {tags, -4, "input match tagnum : 4 is invalid param!!!"},
        {vt_key(0, 0, 1), -4, "vt_key_type id error !!!"},
        {vt_key(24, 0, 1), -4, "vt_key_type id error !!!"},
        {vt_key(7, 0, 1), -24, "vt_key_type 7 not support!!!"},
        {vt_key(19, 0, 1), -24, "vt_key_type 19 not support!!!"},
    };
    for (const KeyCase &c : keys) {
        vlan_ingress_translate_key k = c.key;
        Capture::clear();
        EXPECT_EQ(vlan_api_ingress_translate_add(0, &k, &a), c.rc) << c.line;
        EXPECT_TRUE(Capture::has(c.line)) << c.line;
    }
    struct ActCase {
        void (*bend)(vlan_translate_action *);
        const char *line;
    };
    const ActCase acts[] = {
        {[](vlan_translate_action *x) { x->otag_action = 4; }, "outer_tag_act is invalid!!!"},
        {[](vlan_translate_action *x) { x->itag_action = 9; }, "inner_tag_act is invalid!!!"},
        {[](vlan_translate_action *x) { x->new_outer_vlan = 4096; }, "action->new_outer_vlan:4096 is invalid!!!"},
        {[](vlan_translate_action *x) { x->new_inner_pri = 8; }, "innerpri is invalid!!!"},
        {[](vlan_translate_action *x) { x->new_outer_cfi = 2; }, "outercfi is invalid!!!"},
        {[](vlan_translate_action *x) { x->outer_cfi_act = 1; }, "outer_cfi_act is invalid!!!"},
        {[](vlan_translate_action *x) { x->inner_pri_act = 3; }, "inner_pri_act is invalid!!!"},
        {[](vlan_translate_action *x) { x->fwdtype = 8; }, "fwdtype:8 is invalid!!!"},
    };
    vlan_ingress_translate_key fresh = vt_key(VLAN_IVT_KEY_OVID, 0, 77);
    for (const ActCase &c : acts) {
        vlan_translate_action bad = a;
        c.bend(&bad);
        Capture::clear();
        EXPECT_EQ(vlan_api_ingress_translate_add(0, &fresh, &bad), -4) << c.line;
        EXPECT_TRUE(Capture::has(c.line)) << c.line;
    }
    EXPECT_EQ(vlan_api_ingress_translate_add(0, nullptr, &a), -20);
    EXPECT_EQ(vlan_api_ingress_translate_add(0, &fresh, nullptr), -20);
    EXPECT_EQ(vlan_api_ingress_translate_get(0, &good, nullptr), -20);
    EXPECT_EQ(vlan_api_ingress_translate_traverse(0, nullptr, nullptr), -20);

    // Only the first entry is there: one count, one row.
    EXPECT_EQ(count(1), 1u);
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, 1).valid, 1u);
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, 2).valid, 0u);
    vlan_translate_action got{};
    EXPECT_EQ(vlan_api_ingress_translate_get(0, &fresh, &got), -7);
}

TEST_F(VlanVacl, MacSubnetAndProtocolVlansTakeTheirOwnRanges)
{
    up_reserved();
    vlan_translate_action a{};
    a.otag_action = VLAN_TAG_ACT_ADD;
    a.new_outer_vlan = 40;

    // MAC: places 4 and 5; the address and its mask in the two smac fields.
    vlan_mac_key mk{{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}, 0, 0, 0, 0, 0};
    ASSERT_EQ(vlan_api_macbased_add(0, &mk, &a), 0);
    tide_sim_tcam_row r = model_row(CSL_TCAM_UTILS_VT_160, 4);
    EXPECT_EQ(r.valid, 1u);
    EXPECT_EQ(bits(r.data, 125, 110), 0x0011u);
    EXPECT_EQ(bits(r.data, 65, 34), 0x22334400u);
    EXPECT_EQ(compared(r, 65, 34), 0xFFFFFF00u);
    EXPECT_EQ(compared(r, 101, 74), 0u); // no port for a plain MAC VLAN
    EXPECT_EQ(bits(r.action, 82, 81), 1u);
    EXPECT_EQ(bits(r.action, 80, 69), 40u);
    Capture::clear();
    EXPECT_EQ(vlan_api_macbased_add(0, &mk, &a), -8);
    EXPECT_TRUE(Capture::has("mac vlan is exists!!!"));

    // Voice: the one voice place 0, with the port, the VID and the DSCP.
    vlan_mac_key voice = mk;
    voice.voice = 1;
    voice.lport = 6;
    voice.outer_vlan = 12;
    voice.dscp = 46;
    ASSERT_EQ(vlan_api_macbased_add(0, &voice, &a), 0);
    r = model_row(CSL_TCAM_UTILS_VT_160, 0);
    EXPECT_EQ(bits(r.data, 101, 74), 6u);
    EXPECT_EQ(compared(r, 155, 144), 0xFFFu);
    EXPECT_EQ(bits(r.action, 42, 42), 1u); // voice VLAN
    EXPECT_EQ(bits(r.action, 14, 14), 1u);      // dscpen
    EXPECT_EQ(bits(r.action, 13, 6), 46u << 2); // the DSCP shifted left 2
    vlan_translate_action voice_act{};
    ASSERT_EQ(vlan_api_macbased_get(0, &voice, &voice_act), 0);
    EXPECT_EQ(voice_act.dscp, 46u); // and read back as the DSCP
    vlan_mac_key voice2 = voice;
    voice2.lport = 7;
    EXPECT_EQ(vlan_api_macbased_add(0, &voice2, &a), -6);
    voice2.dscp = 64;
    EXPECT_EQ(vlan_api_macbased_add(0, &voice2, &a), -4);
    EXPECT_EQ(count(0), 1u);
    EXPECT_EQ(count(2), 1u);
    int32_t n = 0;
    EXPECT_EQ(vlan_api_macbased_traverse(
                  0, [](uint32_t, vlan_mac_key *, vlan_translate_action *, void *u) -> int32_t {
                      ++*static_cast<int32_t *>(u);
                      return 0;
                  },
                  &n),
              0);
    EXPECT_EQ(n, 2);

    // Subnet: places 6 and 7; IPv6 is not in this build.
    vlan_subnet_key sk{0x0A010000, 0xFFFF0000, 0, 0};
    ASSERT_EQ(vlan_api_subnetbased_add(0, &sk, &a), 0);
    r = model_row(CSL_TCAM_UTILS_VT_160, 6);
    EXPECT_EQ(bits(r.data, 33, 2), 0x0A010000u);
    EXPECT_EQ(compared(r, 33, 2), 0xFFFF0000u);
    vlan_subnet_key v6{0, 0, 1, 0};
    EXPECT_EQ(vlan_api_subnetbased_add(0, &v6, &a), -24);
    vlan_subnet_key flagged{0x0B000000, 0xFF000000, 0, 1};
    EXPECT_EQ(vlan_api_subnetbased_add(0, &flagged, &a), -24);
    vlan_translate_action got{};
    ASSERT_EQ(vlan_api_subnetbased_get(0, &sk, &got), 0);
    EXPECT_EQ(got.new_outer_vlan, 40u);

    // Protocol: the 320-bit space from place 0.
    vlan_protocol_key eth{2, 0, 0, VLAN_L2_PKT_ETHERNETII, 0x0800, 0};
    vlan_protocol_key llc{2, 0, 0, VLAN_L2_PKT_LLC, 0x4242, 0};
    ASSERT_EQ(vlan_api_protocolbased_add(0, &eth, &a), 0);
    ASSERT_EQ(vlan_api_protocolbased_add(0, &llc, &a), 0);
    r = model_row(CSL_TCAM_UTILS_VT_320, 0);
    EXPECT_EQ(r.valid, 1u);
    EXPECT_EQ(bits(r.data, 319, 316), 3u);
    EXPECT_EQ(bits(r.data, 303, 288), 0x0800u);
    EXPECT_EQ(bits(r.data, 176, 145), 2u);
    EXPECT_EQ(compared(r, 6, 5), 3u); // SNAP and LLC bits compared, both 0
    EXPECT_EQ(bits(r.data, 6, 5), 0u);
    EXPECT_EQ(bits(model_row(CSL_TCAM_UTILS_VT_320, 1).data, 5, 5), 1u);
    vlan_protocol_key bad{2, 0, 0, 3, 0x0800, 0};
    Capture::clear();
    EXPECT_EQ(vlan_api_protocolbased_add(0, &bad, &a), -24);
    EXPECT_TRUE(Capture::has("l2_pkt_type is error:3"));
    vlan_protocol_key snap{2, 0, 0, VLAN_L2_PKT_SNAP, 0x0800, 0};
    EXPECT_EQ(vlan_api_protocolbased_add(0, &snap, &a), -6);

    // Deletes and clears of one family leave the others.
    ASSERT_EQ(vlan_api_macbased_delete(0, &mk), 0);
    Capture::clear();
    EXPECT_EQ(vlan_api_macbased_delete(0, &mk), -7);
    EXPECT_TRUE(Capture::has("mac vlan not found!!!"));
    ASSERT_EQ(dpl_reef_vlan_macbased_clear(0), 0);
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, 0).valid, 0u);
    EXPECT_EQ(count(0) + count(2), 0u);
    ASSERT_EQ(dpl_reef_vlan_protocolbased_clear(0), 0);
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_320, 1).valid, 0u);
    EXPECT_EQ(model_row(CSL_TCAM_UTILS_VT_160, 6).valid, 1u);
    ASSERT_EQ(vlan_api_subnetbased_delete(0, &sk), 0);
    EXPECT_EQ(count(3), 0u);
}

} // namespace

// ---- frames through the model's VLAN TCAM lookups ------------------------------------------

namespace {

using Frame = std::vector<uint8_t>;

// A broadcast frame from `smac_low` (02:00:00:00:00:xx), tagged with
// `vid` unless it is negative, of ethernet type `type`; an IPv4 frame
// carries `sip`.
Frame frame(int vid, uint8_t smac_low, uint16_t type = 0x0800, uint32_t sip = 0)
{
    Frame f = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0, 0, 0, 0, smac_low};
    if (vid >= 0) {
        f.insert(f.end(), {0x81, 0x00, static_cast<uint8_t>(vid >> 8), static_cast<uint8_t>(vid)});
    }
    f.insert(f.end(), {static_cast<uint8_t>(type >> 8), static_cast<uint8_t>(type)});
    if (type == 0x0800) {
        const uint8_t ip[20] = {0x45, 0, 0, 46, 0, 0, 0, 0, 64, 17, 0, 0, static_cast<uint8_t>(sip >> 24),
                                static_cast<uint8_t>(sip >> 16), static_cast<uint8_t>(sip >> 8),
                                static_cast<uint8_t>(sip), 10, 0, 0, 1};
        f.insert(f.end(), ip, ip + sizeof(ip));
    }
    f.resize(f.size() + 50, 0x5A);
    return f;
}

// The VID of the outer tag of the frames that left by port 2 (-1 for an
// untagged one); every port's queue emptied.
std::vector<int> sent_on_2(uint32_t port_in, const Frame &f)
{
    EXPECT_EQ(tide_sim_packet_inject(0, port_in, f.data(), static_cast<uint32_t>(f.size())), 0);
    std::vector<int> out;
    for (uint32_t p = 0; p < 32; p++) {
        uint8_t buf[TIDE_SIM_FRAME_MAX];
        uint32_t len = 0;
        while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
            if (p == 2) {
                out.push_back(buf[12] == 0x81 && buf[13] == 0x00 ? ((buf[14] & 0xF) << 8 | buf[15]) : -1);
            }
        }
    }
    return out;
}

TEST_F(VlanVacl, FramesTakeTheVlanOfTheirTranslationOrAssignment)
{
    up_reserved();
    // VLANs 10 to 60 on ports 1 and 2, sent tagged; port 1's PVID is 10.
    port_bitmap ports{{0x6, 0, 0}}, none{};
    for (uint32_t vid : {10u, 20u, 30u, 40u, 50u, 60u}) {
        ASSERT_EQ(vlan_api_create(0, vid), 0);
        ASSERT_EQ(vlan_api_port_set(0, vid, &ports, &none), 0);
    }
    vlan_control pvid{VLAN_PORT_CTRL_PVID, 10};
    ASSERT_EQ(vlan_api_port_control_set(0, 1, &pvid), 0);

    // Nothing configured: the tag's VLAN, or the PVID.
    EXPECT_EQ(sent_on_2(1, frame(20, 0x0B)), std::vector<int>{20});
    EXPECT_EQ(sent_on_2(1, frame(-1, 0x0B)), std::vector<int>{10});

    // Port 1's VLAN 20 becomes 30; another port's, or another VLAN, miss.
    vlan_ingress_translate_key vk = vt_key(VLAN_IVT_KEY_PORT_OVID, 1, 20);
    vlan_translate_action to30 = replace_outer(30);
    ASSERT_EQ(vlan_api_ingress_translate_add(0, &vk, &to30), 0);
    EXPECT_EQ(sent_on_2(1, frame(20, 0x0B)), std::vector<int>{30});
    EXPECT_EQ(sent_on_2(1, frame(10, 0x0B)), std::vector<int>{10});
    port_bitmap five{{0x20, 0, 0}};
    ASSERT_EQ(vlan_api_port_add(0, 20, &five, &none), 0);
    EXPECT_EQ(sent_on_2(5, frame(20, 0x0B)), std::vector<int>{20});

    // MAC, subnet and protocol VLANs give untagged frames their VLAN.
    vlan_translate_action to40{}, to50{}, to60{};
    to40.otag_action = to50.otag_action = to60.otag_action = VLAN_TAG_ACT_ADD;
    to40.new_outer_vlan = 40;
    to50.new_outer_vlan = 50;
    to60.new_outer_vlan = 60;
    vlan_mac_key mk{{0x02, 0, 0, 0, 0, 0x0C}, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 0, 0, 0, 0, 0};
    ASSERT_EQ(vlan_api_macbased_add(0, &mk, &to40), 0);
    vlan_subnet_key sk{0xC0A80000, 0xFFFF0000, 0, 0};
    ASSERT_EQ(vlan_api_subnetbased_add(0, &sk, &to50), 0);
    vlan_protocol_key pk{1, 0, 0, VLAN_L2_PKT_ETHERNETII, 0x88B5, 0};
    ASSERT_EQ(vlan_api_protocolbased_add(0, &pk, &to60), 0);
    EXPECT_EQ(sent_on_2(1, frame(-1, 0x0C)), std::vector<int>{40});
    EXPECT_EQ(sent_on_2(1, frame(-1, 0x0B, 0x0800, 0xC0A80102)), std::vector<int>{50});
    EXPECT_EQ(sent_on_2(1, frame(-1, 0x0B, 0x88B5)), std::vector<int>{60});
    // Misses keep the PVID.
    EXPECT_EQ(sent_on_2(1, frame(-1, 0x0B, 0x0800, 0xC0A90102)), std::vector<int>{10});
    EXPECT_EQ(sent_on_2(1, frame(-1, 0x0B, 0x88B6)), std::vector<int>{10});

    // Deleted, the assignment is gone.
    ASSERT_EQ(vlan_api_macbased_delete(0, &mk), 0);
    EXPECT_EQ(sent_on_2(1, frame(-1, 0x0C)), std::vector<int>{10});
}

} // namespace
