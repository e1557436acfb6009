// The L2 address service through the exported calls, on the chip model:
// addresses in and out of the table, the refusals of the table, walks,
// batched commands, IPv6 digests, limits, group marks, controls, event
// messages, the guard and bring-up.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/l2/dpl_reef_l2.h"
#include "support/fixture.h"
#include "support/sim_arl.h"
#include "support/wait.h"

using tide::test::ArlImage;
using tide::test::Capture;
using tide::test::SimChips;

namespace {

u64 mac_of(const l2_addr &a)
{
    u64 v = 0;
    for (u8 b : a.mac) {
        v = v << 8 | b;
    }
    return v;
}

l2_addr mac_addr(u64 mac, u16 vid, u32 port, bool dynamic = false)
{
    l2_addr a{};
    a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT | (dynamic ? L2_FLAG_DYNAMIC : 0);
    for (int i = 5; i >= 0; i--) {
        a.mac[i] = static_cast<u8>(mac);
        mac >>= 8;
    }
    a.vid = vid;
    a.port = port;
    return a;
}

// The valid entries of the model's table.
std::vector<ArlImage> model_entries()
{
    uint32_t st = 0, dyn = 0, entries = 0;
    tide_sim_arl_count_get(0, &st, &dyn, &entries);
    std::vector<ArlImage> out;
    for (u32 i = 0; i < entries; i++) {
        ArlImage e;
        tide_sim_arl_entry_get(0, i, e.w);
        if (e.get(117, 1)) {
            out.push_back(e);
        }
    }
    return out;
}

u32 field(u32 reg_id, const char *name, u32 index = 0)
{
    u32 v = 0;
    EXPECT_EQ(dpl_reef_l2_reg_field_get(0, reg_id, index, name, &v), 0) << name;
    return v;
}

i32 collect(u32, l2_addr *a, void *user)
{
    static_cast<std::vector<l2_addr> *>(user)->push_back(*a);
    return 0;
}

class L2 : public SimChips {
protected:
    L2() : SimChips(1, 1) {}
};

TEST_F(L2, RoundTripThroughEveryLayer)
{
    l2_addr a = mac_addr(0x00A0B0C0D0E0ull, 1, 3);
    ASSERT_EQ(l2_api_addr_add(0, &a), 0);

    // What the chip holds is the entry of the table's layout, bit by bit.
    ArlImage want = tide::test::mac_entry(0x00A0B0C0D0E0ull, 1, true, 3);
    want.set(35, 2, 3); // a CPU add starts with a full age count
    const auto held = model_entries();
    ASSERT_EQ(held.size(), 1u);
    EXPECT_EQ(std::vector<u32>(held[0].w, held[0].w + 4), std::vector<u32>(want.w, want.w + 4));

    l2_addr got = mac_addr(0x00A0B0C0D0E0ull, 1, 0);
    got.flags = L2_FLAG_KEY_VID;
    ASSERT_EQ(l2_api_addr_get(0, &got), 0);
    EXPECT_EQ(got.valid, 1u);
    EXPECT_EQ(got.flags, L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT);
    EXPECT_EQ(mac_of(got), 0x00A0B0C0D0E0ull);
    EXPECT_EQ(got.vid, 1);
    EXPECT_EQ(got.port, 3u);
    EXPECT_EQ(got.age_cnt, 3);

    l2_addr del = mac_addr(0x00A0B0C0D0E0ull, 1, 0);
    del.flags = L2_FLAG_KEY_VID;
    ASSERT_EQ(l2_api_addr_del(0, &del), 0);
    EXPECT_EQ(del.port, 3u); // the record tells what was deleted
    EXPECT_EQ(l2_api_addr_get(0, &got), SHR_E_NOT_FOUND);
    EXPECT_TRUE(model_entries().empty());

    // A delete of an absent key issues no delete command.
    tide_sim_write_log_clear(0);
    EXPECT_EQ(l2_api_addr_del(0, &del), SHR_E_NOT_FOUND);
    for (const auto &w : tide::test::sim_writes(0)) {
        if (w.addr == 0x41C0040 && (w.value >> 31)) {
            EXPECT_EQ((w.value >> 9) & 7, 2u); // only searches
        }
    }
}

TEST_F(L2, AnExistingStaticKeyIsOverwrittenOnlyUnderThePolicy)
{
    l2_addr a = mac_addr(0x10, 1, 1);
    ASSERT_EQ(l2_api_addr_add(0, &a), 0);
    l2_addr b = mac_addr(0x10, 1, 2);
    EXPECT_EQ(l2_api_addr_add(0, &b), SHR_E_FAIL);
    EXPECT_EQ(b.fail_case, L2_FAIL_COVER);
    l2_addr got = mac_addr(0x10, 1, 0);
    ASSERT_EQ(l2_api_addr_get(0, &got), 0);
    EXPECT_EQ(got.port, 1u);

    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_REPLACE_STATIC, 1), 0);
    ASSERT_EQ(l2_api_addr_add(0, &b), 0);
    ASSERT_EQ(l2_api_addr_get(0, &got), 0);
    EXPECT_EQ(got.port, 2u);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_REPLACE_STATIC, 0), 0);

    // Replace: the flag is required; it deletes and adds whatever the policy.
    l2_addr c = mac_addr(0x10, 1, 4);
    EXPECT_EQ(l2_api_addr_replace(0, &c), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("flags is wrong"));
    c.flags |= L2_FLAG_REPLACE;
    ASSERT_EQ(l2_api_addr_replace(0, &c), 0);
    ASSERT_EQ(l2_api_addr_get(0, &got), 0);
    EXPECT_EQ(got.port, 4u);
    l2_addr absent = mac_addr(0x11, 1, 4);
    absent.flags |= L2_FLAG_REPLACE;
    EXPECT_EQ(l2_api_addr_replace(0, &absent), SHR_E_NOT_FOUND);
}

TEST_F(L2, RecordsAreCheckedBeforeTheTableIsAsked)
{
    struct Case {
        const char *what;
        void (*edit)(l2_addr &);
        i32 rc;
        const char *log;
    };
    const Case cases[] = {
        {"no destination", [](l2_addr &a) { a.flags = L2_FLAG_KEY_VID; }, SHR_E_PARAM,
         "_ret_l2_to_l2x l2 addr flag 2048 is error"},
        {"key type 1", [](l2_addr &a) { a.key_type = 1; }, SHR_E_NOT_SUPPORT, "chip is not support"},
        {"vid", [](l2_addr &a) { a.vid = 4096; }, SHR_E_PARAM, "vlan id 4096 is out of range, min 0, max 4095"},
        {"fid", [](l2_addr &a) { a.flags ^= L2_FLAG_KEY_VID | L2_FLAG_KEY_FID; a.vid = 128; }, SHR_E_PARAM,
         "fid 128 is out of range"},
        {"fid key", [](l2_addr &a) { a.flags ^= L2_FLAG_KEY_VID | L2_FLAG_KEY_FID; }, SHR_E_NOT_SUPPORT, nullptr},
        {"vfi", [](l2_addr &a) { a.flags |= L2_FLAG_KEY_VFI; }, SHR_E_NOT_SUPPORT, nullptr},
        {"ovid", [](l2_addr &a) { a.ovid = 4096; }, SHR_E_PARAM, "ovid 4096 is out of range"},
        {"gid", [](l2_addr &a) { a.gid = 64; }, SHR_E_PARAM, "gid 64 is out of range, min 0, max 63"},
        {"port", [](l2_addr &a) { a.port = 32; }, SHR_E_PARAM, "port 32 is out of range, min 0, max 31"},
        {"tgid", [](l2_addr &a) { a.flags ^= L2_FLAG_DEST_PORT | L2_FLAG_DEST_TRUNK; a.tgid = 8; }, SHR_E_PARAM,
         "tgid 8 is out of range"},
        {"mgid", [](l2_addr &a) { a.flags ^= L2_FLAG_DEST_PORT | L2_FLAG_DEST_MCAST; a.mgid = 15; }, SHR_E_PARAM,
         "multicast group 15 is out of range, min 16, max 1023"},
        {"drop cause", [](l2_addr &a) { a.flags ^= L2_FLAG_DEST_PORT | L2_FLAG_DEST_DROP; a.causeid = 1024; },
         SHR_E_PARAM, "drop causeid 1024 is out of range"},
        {"cpu cause", [](l2_addr &a) { a.flags ^= L2_FLAG_DEST_PORT | L2_FLAG_DEST_CPU; a.causeid = 512; },
         SHR_E_PARAM, "tocpu causeid 512 is out of range"},
        {"dvp", [](l2_addr &a) { a.flags ^= L2_FLAG_DEST_PORT | L2_FLAG_DEST_DVP; }, SHR_E_NOT_SUPPORT, nullptr},
        {"ecmp", [](l2_addr &a) { a.flags ^= L2_FLAG_DEST_PORT | L2_FLAG_DEST_ECMP; a.ecmp = 64; }, SHR_E_PARAM,
         "ecmp 64 is out of range"},
        {"iptype", [](l2_addr &a) { a.key_type = L2_KEY_DIP_VLAN; a.iptype = 2; }, SHR_E_PARAM,
         "l2 addr iptype is erro"},
    };
    tide_sim_write_log_clear(0);
    for (const Case &c : cases) {
        Capture::clear();
        l2_addr a = mac_addr(0x20, 1, 1);
        c.edit(a);
        EXPECT_EQ(l2_api_addr_add(0, &a), c.rc) << c.what;
        if (c.log != nullptr) {
            EXPECT_TRUE(Capture::has(c.log)) << c.what;
        }
    }
    EXPECT_TRUE(model_entries().empty());
    l2_addr get = mac_addr(0x20, 1, 1);
    get.key_type = 2;
    EXPECT_EQ(l2_api_addr_get(0, &get), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("param error"));
}

TEST_F(L2, FillingTheTableUntilItRefusesKeepsEveryCountRight)
{
    TIDE_TEST_SEED(seed, 7);
    std::mt19937_64 rng(seed);
    std::set<u64> added;
    u32 refused_full = 0;
    while (refused_full == 0) {
        const u64 mac = rng() & 0xFFFFFFFFFFFFull;
        if (added.count(mac) != 0) {
            continue;
        }
        l2_addr a = mac_addr(mac, 1 + (mac & 7), mac % 28);
        const i32 rc = l2_api_addr_add(0, &a);
        if (rc == 0) {
            added.insert(mac);
        } else {
            ASSERT_EQ(rc, SHR_E_FAIL);
            ASSERT_EQ(a.fail_case, L2_FAIL_FULL);
            refused_full++;
        }
    }
    ASSERT_GT(added.size(), 5000u);
    u32 count = 0;
    ASSERT_EQ(l2_api_mac_cnt_get(0, L2_CNT_STATIC, &count), 0);
    uint32_t st = 0, dyn = 0, entries = 0;
    tide_sim_arl_count_get(0, &st, &dyn, &entries);
    EXPECT_EQ(count, added.size());
    EXPECT_EQ(st, added.size());
    EXPECT_EQ(dyn, 0u);

    for (u64 mac : added) {
        l2_addr g = mac_addr(mac, 1 + (mac & 7), 0);
        ASSERT_EQ(l2_api_addr_get(0, &g), 0) << std::hex << mac;
        ASSERT_EQ(g.port, mac % 28);
    }
    std::vector<l2_addr> seen;
    ASSERT_EQ(l2_api_addr_traverse(0, collect, &seen), 0);
    std::set<u64> walked;
    for (const l2_addr &a : seen) {
        walked.insert(mac_of(a));
    }
    EXPECT_EQ(seen.size(), added.size()); // each once
    EXPECT_EQ(walked, added);

    // The cursor walk meets the same entries, then reports the end.
    u32 cursor = 0, n = 0;
    l2_addr a{};
    while (l2_api_addr_next_entry_get(0, &cursor, &a) == 0) {
        n++;
    }
    EXPECT_EQ(n, added.size());
    EXPECT_EQ(cursor, entries);
}

TEST_F(L2, BatchedDeleteByPortTakesItsDynamicEntriesAndRestoresLearning)
{
    ASSERT_EQ(l2_api_age_control_set(0, L2_AGE_TWO_WAY, 1), 0);
    std::vector<l2_addr> all;
    for (u32 i = 0; i < 40; i++) {
        l2_addr a = mac_addr(0x100 + i, 1 + i % 3, 1 + i % 4, i % 5 != 0);
        ASSERT_EQ(l2_api_addr_add(0, &a), 0);
        all.push_back(a);
    }
    auto soft_count = [&](auto pred) {
        u32 n = 0;
        for (const l2_addr &a : all) {
            n += pred(a) ? 1 : 0;
        }
        return n;
    };
    // Batched search against the same filter in software.
    l2_addr f = mac_addr(0, 2, 2, true);
    u32 count = 0;
    ASSERT_EQ(l2_api_addr_batched_search(0, &f, L2_CMP_DEST | L2_CMP_STATIC, &count), 0);
    EXPECT_EQ(count, soft_count([](const l2_addr &a) { return a.port == 2 && (a.flags & L2_FLAG_DYNAMIC); }));
    ASSERT_EQ(l2_api_addr_batched_search(0, &f, L2_CMP_VLAN, &count), 0);
    EXPECT_EQ(count, soft_count([](const l2_addr &a) { return a.vid == 2; }));
    ASSERT_EQ(l2_api_addr_batched_search(0, &f, L2_CMP_VLAN | L2_CMP_DEST, &count), 0);
    EXPECT_EQ(count, soft_count([](const l2_addr &a) { return a.vid == 2 && a.port == 2; }));
    ASSERT_EQ(l2_api_addr_batched_search(0, &f, 0, &count), 0);
    EXPECT_EQ(count, all.size());

    const u32 before = field(cib_arl_age_lrn_cfg0, "glb_lrn_en") << 2 | field(cib_arl_age_lrn_cfg0, "glb_age_en") << 1 |
                       field(cib_arl_age_lrn_cfg0, "two_way_age_en");
    EXPECT_EQ(before, 7u);
    tide_sim_write_log_clear(0);
    l2_addr port1 = mac_addr(0, 0, 1, true);
    ASSERT_EQ(l2_api_addr_batched_del(0, &port1, L2_CMP_DEST | L2_CMP_STATIC, &count), 0);
    EXPECT_EQ(count, soft_count([](const l2_addr &a) { return a.port == 1 && (a.flags & L2_FLAG_DYNAMIC); }));
    // Learning and aging were off while the table was swept, and are back.
    bool stopped = false;
    for (const auto &w : tide::test::sim_writes(0)) {
        stopped |= w.addr == 0x41C0004 && ((w.value >> 16) & 0xB) == 0;
    }
    EXPECT_TRUE(stopped);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "glb_lrn_en") << 2 | field(cib_arl_age_lrn_cfg0, "glb_age_en") << 1 |
                  field(cib_arl_age_lrn_cfg0, "two_way_age_en"),
              before);
    std::vector<l2_addr> left;
    ASSERT_EQ(l2_api_addr_traverse(0, collect, &left), 0);
    EXPECT_EQ(left.size(), all.size() - count);
    for (const l2_addr &a : left) {
        EXPECT_FALSE(a.port == 1 && (a.flags & L2_FLAG_DYNAMIC)) << std::hex << mac_of(a);
    }

    l2_addr two_keys = port1;
    two_keys.flags |= L2_FLAG_KEY_FID;
    EXPECT_EQ(l2_api_addr_batched_del(0, &two_keys, L2_CMP_DEST, &count), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("can only choose one from vid, fid, vfi."));
    l2_addr two_dests = port1;
    two_dests.flags |= L2_FLAG_DEST_TRUNK;
    EXPECT_EQ(l2_api_addr_batched_del(0, &two_dests, L2_CMP_DEST, &count), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("can only choose one destination."));
}

// The digest chunk a selector takes from an address, computed here from
// the layout: DIP chunks at 14 - s, SIP chunks at t - 1 with t = ~s & 15.
u64 chunk(const u8 *ip, u32 at)
{
    return static_cast<u64>(ip[at] << 8 | ip[at + 1]);
}

TEST_F(L2, Ipv6KeysTakeTheSelectedChunksBothWays)
{
    const u32 dip_sel[4] = {0, 6, 10, 12};
    for (u32 i = 0; i < 4; i++) {
        ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_DIP_SEL0 + i, dip_sel[i]), 0);
    }
    l2_addr a{};
    a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT;
    a.key_type = L2_KEY_DIP_VLAN;
    a.iptype = 1;
    a.vid = 9;
    a.port = 2;
    for (u32 i = 0; i < 16; i++) {
        a.dipv6[i] = static_cast<u8>(0x10 + i);
    }
    ASSERT_EQ(l2_api_addr_add(0, &a), 0);
    u64 want = 0;
    for (u32 i = 0; i < 4; i++) {
        want |= chunk(a.dipv6, 14 - dip_sel[i]) << (16 * i);
    }
    const auto held = model_entries();
    ASSERT_EQ(held.size(), 1u);
    EXPECT_EQ(held[0].get(38, 64), want);
    EXPECT_EQ(held[0].get(116, 1), 1u);   // iptype
    EXPECT_EQ(held[0].get(114, 2), 1u);   // DIP + VLAN

    // The inverse writes back only the bytes that were taken.
    l2_addr back{};
    ASSERT_EQ(l2_api_addr_get_by_index(0, [] {
        for (u32 i = 0; i < 10244; i++) {
            ArlImage e;
            tide_sim_arl_entry_get(0, i, e.w);
            if (e.get(117, 1)) {
                return i;
            }
        }
        return 0u;
    }(), &back), 0);
    EXPECT_EQ(back.key_type, static_cast<u32>(L2_KEY_DIP_VLAN));
    for (u32 i = 0; i < 16; i++) {
        // Selectors 0, 6, 10, 12 take bytes 14-15, 8-9, 4-5 and 2-3.
        const bool taken = i == 2 || i == 3 || i == 4 || i == 5 || i == 8 || i == 9 || i == 14 || i == 15;
        EXPECT_EQ(back.dipv6[i], taken ? a.dipv6[i] : 0) << i;
    }

    // DIP + SIP: two chunks of each; the SIP selectors are held with 16 added.
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_IP_SEL0, 2), 0);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_IP_SEL0 + 1, 4), 0);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_IP_SEL0 + 2, 0), 0);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_IP_SEL0 + 3, 12), 0);
    EXPECT_EQ(field(cib_arl_ipv6_ip_sel, "ipv6_ip_sel_3"), 28u);
    u32 v = 0;
    ASSERT_EQ(l2_api_control_get(0, L2_CTRL_IPV6_IP_SEL0 + 3, &v), 0);
    EXPECT_EQ(v, 12u);
    l2_addr b = a;
    b.key_type = L2_KEY_DIP_SIP;
    b.flags = L2_FLAG_DEST_PORT;
    for (u32 i = 0; i < 16; i++) {
        b.sipv6[i] = static_cast<u8>(0xA0 + i);
    }
    ASSERT_EQ(l2_api_addr_add(0, &b), 0);
    const u64 want_b = chunk(b.dipv6, 12) | chunk(b.dipv6, 10) << 16 | chunk(b.sipv6, (~16u & 15) - 1) << 32 |
                       chunk(b.sipv6, (~28u & 15) - 1) << 48;
    l2_addr got_b = b;
    got_b.port = 0;
    ASSERT_EQ(l2_api_addr_get(0, &got_b), 0);
    EXPECT_EQ(got_b.key_type, static_cast<u32>(L2_KEY_DIP_SIP));
    EXPECT_EQ(got_b.port, 2u);
    bool found = false;
    for (const ArlImage &e : model_entries()) {
        found |= e.get(114, 2) == 2 && e.get(38, 64) == want_b;
    }
    EXPECT_TRUE(found);

    // Odd selectors are refused by the control and by the conversion.
    EXPECT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_DIP_SEL0, 3), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("ipv6_config dip is not even number"));
    EXPECT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_DIP_SEL0, 16), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("ipv6_config dip config is out of range"));
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_arl_ipv6_dip_sel, 0x01020305), 0);
    l2_addr odd = a;
    EXPECT_EQ(l2_api_addr_add(0, &odd), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("arl_ipv6_dip_sel value is wrong 5 3 2 1"));

    // 14 is a value the controls hold, but no conversion takes it: DIP
    // selectors must be below 14, SIP selectors below 30 as held (14 + 16).
    for (u32 i = 0; i < 4; i++) {
        ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_DIP_SEL0 + i, dip_sel[i]), 0);
    }
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_DIP_SEL0 + 3, 14), 0);
    Capture::clear();
    EXPECT_EQ(l2_api_addr_add(0, &odd), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("arl_ipv6_dip_sel value is wrong 0 6 10 14"));
    EXPECT_EQ(l2_api_addr_get(0, &odd), SHR_E_PARAM);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_IP_SEL0 + 3, 14), 0);
    l2_addr wide = b;
    EXPECT_EQ(l2_api_addr_add(0, &wide), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("arl_ipv6_dip_sel value is wrong 2 4 16 30"));
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_IP_SEL0 + 1, 14), 0);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_IPV6_IP_SEL0 + 3, 12), 0);
    EXPECT_EQ(l2_api_addr_add(0, &wide), SHR_E_PARAM);
}

TEST_F(L2, LearnLimitsRefuseWithTheirCausesAndCountsStayRight)
{
    l2_learn_limit glb{};
    glb.flags = L2_LIMIT_GLOBAL | L2_LIMIT_ENABLE | L2_LIMIT_VALUE;
    glb.limit_en = 1;
    glb.limit_value = 2;
    ASSERT_EQ(l2_api_learn_limit_set(0, &glb), 0);
    for (u32 i = 0; i < 2; i++) {
        l2_addr a = mac_addr(0x200 + i, 1, 1, true);
        ASSERT_EQ(l2_api_addr_add(0, &a), 0);
    }
    l2_addr over = mac_addr(0x210, 1, 1, true);
    EXPECT_EQ(l2_api_addr_add(0, &over), SHR_E_FAIL);
    EXPECT_EQ(over.fail_case, L2_FAIL_GLOBAL_LIMIT);
    l2_addr stat = mac_addr(0x211, 1, 1);
    EXPECT_EQ(l2_api_addr_add(0, &stat), 0); // static entries have no limit
    l2_learn_limit got{};
    got.flags = L2_LIMIT_GLOBAL;
    ASSERT_EQ(l2_api_learn_limit_get(0, &got), 0);
    EXPECT_EQ(got.mac_cnt, 2);
    EXPECT_EQ(got.limit_value, 2u);
    EXPECT_EQ(got.limit_en, 1);
    glb.limit_en = 0;
    ASSERT_EQ(l2_api_learn_limit_set(0, &glb), 0);

    l2_learn_limit port{};
    port.flags = L2_LIMIT_PORT | L2_LIMIT_ENABLE | L2_LIMIT_VALUE | L2_LIMIT_OVER_ACT | L2_LIMIT_OVER_LIMIT_EN;
    port.port = 5;
    port.limit_en = 1;
    port.limit_value = 1;
    port.over_act = 2;
    port.over_limit_en = 1;
    ASSERT_EQ(l2_api_learn_limit_set(0, &port), 0);
    l2_addr p5 = mac_addr(0x300, 1, 5, true);
    ASSERT_EQ(l2_api_addr_add(0, &p5), 0);
    l2_addr p5b = mac_addr(0x301, 1, 5, true);
    EXPECT_EQ(l2_api_addr_add(0, &p5b), SHR_E_FAIL);
    EXPECT_EQ(p5b.fail_case, L2_FAIL_PORT_LIMIT);
    l2_addr p6 = mac_addr(0x302, 1, 6, true);
    EXPECT_EQ(l2_api_addr_add(0, &p6), 0);
    got = l2_learn_limit{};
    got.flags = L2_LIMIT_PORT;
    got.port = 5;
    ASSERT_EQ(l2_api_learn_limit_get(0, &got), 0);
    EXPECT_EQ(got.mac_cnt, 1);
    EXPECT_EQ(got.limit_value, 1u);
    EXPECT_EQ(got.over_act, 2u);
    EXPECT_EQ(got.over_limit_en, 1);
    u32 dyn = 0;
    ASSERT_EQ(l2_api_mac_cnt_get(0, L2_CNT_DYNAMIC, &dyn), 0);
    EXPECT_EQ(dyn, 4u);

    l2_learn_limit bad{};
    bad.flags = L2_LIMIT_VFI;
    EXPECT_EQ(l2_api_learn_limit_set(0, &bad), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("limit->flags not support"));
    bad.flags = L2_LIMIT_ENABLE;
    EXPECT_EQ(l2_api_learn_limit_set(0, &bad), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("flag 64 is wrong"));
    bad.flags = L2_LIMIT_PORT | L2_LIMIT_VALUE;
    bad.limit_value = 65536;
    EXPECT_EQ(l2_api_learn_limit_set(0, &bad), SHR_E_PARAM);
    bad.flags = L2_LIMIT_VLAN | L2_LIMIT_OVER_ACT;
    EXPECT_EQ(l2_api_learn_limit_set(0, &bad), SHR_E_NOT_FOUND); // no VLAN 0 here
}

TEST_F(L2, AStuckTableGivesTimeoutAndTheNextCallWritesNothing)
{
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_ARL, 1), 0);
    l2_addr a = mac_addr(0x400, 1, 1);
    EXPECT_EQ(l2_api_addr_add(0, &a), SHR_E_TIMEOUT);
    tide_sim_write_log_clear(0);
    l2_addr b = mac_addr(0x401, 1, 1);
    EXPECT_EQ(l2_api_addr_add(0, &b), SHR_E_TIMEOUT);
    // A get that cannot search has not found the address.
    EXPECT_EQ(l2_api_addr_get(0, &b), SHR_E_NOT_FOUND);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_ARL, 0), 0);
}

// An event message: the entry in big-endian byte order.
std::vector<u8> message(const ArlImage &e)
{
    std::vector<u8> m(16);
    for (u32 i = 0; i < 16; i++) {
        m[i] = static_cast<u8>(e.get(120 - 8 * i, 8));
    }
    return m;
}

TEST_F(L2, EventMessagesDecodeIntoRecords)
{
    ArlImage learned = tide::test::mac_entry(0x0123456789ABull, 0xABC, false, 21);
    learned.set(118, 4, 9);     // msg_type
    learned.set(35, 2, 2);      // age
    learned.set(10, 12, 0x5A5); // outer VLAN
    learned.set(8, 2, 1);       // lrnclass bit 0
    learned.set(2, 6, 33);      // gid
    learned.set(0, 2, 3);       // both block lists
    ArlImage trunk = tide::test::mac_entry(0x1, 2, true, 6);
    trunk.set(32, 3, 1);
    ArlImage ipv6 = tide::test::mac_entry(0x2, 3, true, 1);
    ipv6.set(116, 1, 1);
    std::vector<u8> buf;
    for (const ArlImage *e : {&learned, &ipv6, &trunk}) {
        const auto m = message(*e);
        buf.insert(buf.end(), m.begin(), m.end());
    }
    l2_addr out[3] = {};
    u32 n = 0;
    ASSERT_EQ(l2_api_mac_msg_parse(0, buf.data(), static_cast<u32>(buf.size()), out, &n), 0);
    ASSERT_EQ(n, 2u); // the IPv6 key is not an address of the service
    EXPECT_EQ(out[0].msg_type, 9);
    EXPECT_EQ(out[0].valid, 1u);
    EXPECT_EQ(mac_of(out[0]), 0x0123456789ABull);
    EXPECT_EQ(out[0].vid, 0xABC);
    EXPECT_EQ(out[0].age_cnt, 2);
    EXPECT_EQ(out[0].port, 21u);
    EXPECT_EQ(out[0].ovid, 0x5A5);
    EXPECT_EQ(out[0].gid, 33);
    EXPECT_EQ(out[0].flags, L2_FLAG_KEY_VID | L2_FLAG_DYNAMIC | L2_FLAG_DEST_PORT | L2_FLAG_DYN_COVER_STATIC |
                                L2_FLAG_SRC_DROP | L2_FLAG_DST_DROP);
    EXPECT_EQ(out[1].flags, L2_FLAG_KEY_VID | L2_FLAG_DEST_TRUNK);
    EXPECT_EQ(out[1].tgid, 6u);

    std::vector<u8> big(L2_MSG_BUFFER_MAX + 1);
    EXPECT_EQ(l2_api_mac_msg_parse(0, big.data(), static_cast<u32>(big.size()), out, &n), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("buffer is too big"));
    EXPECT_EQ(l2_api_mac_msg_parse(0, buf.data(), 17, out, &n), SHR_E_PARAM);
    n = 7;
    EXPECT_EQ(l2_api_mac_msg_parse(0, nullptr, 0, nullptr, &n), 0);
    EXPECT_EQ(n, 0u);
}

TEST_F(L2, TheGuardChecksPointersBeforeTheChip)
{
    EXPECT_EQ(l2_api_addr_add(7, nullptr), SHR_E_NULL_PTR);
    EXPECT_TRUE(Capture::has("NULL pointer!"));
    l2_addr a{};
    EXPECT_EQ(l2_api_addr_add(7, &a), SHR_E_UNIT);
    u32 cursor = 0;
    EXPECT_EQ(l2_api_addr_next_entry_get(0, &cursor, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(l2_api_addr_next_entry_get(0, nullptr, &a), SHR_E_NULL_PTR);
    EXPECT_EQ(l2_api_addr_batched_del(0, &a, 0, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(l2_api_mac_cnt_get(9, 0, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(l2_api_mac_entry_size_get(9, nullptr), SHR_E_UNIT); // checked in the service
    EXPECT_EQ(l2_api_mac_entry_size_get(0, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(l2_api_protocol_add(0, nullptr), SHR_E_NULL_PTR);
    EXPECT_EQ(l2_api_protocol_add(0, reinterpret_cast<l2_protocol *>(&a)), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_protocol_delete_all(0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_protocol_delete_all(4), SHR_E_UNIT);
    EXPECT_EQ(l2_api_addr_register(0, nullptr, nullptr), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_sync_start(0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_thread_is_running(0), 0);
    EXPECT_EQ(l2_api_thread_is_idling(0), 0);
    EXPECT_EQ(l2_api_addr_traverse(0, nullptr, nullptr), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("trav_fn is null"));
    u32 size = 0;
    ASSERT_EQ(l2_api_mac_entry_size_get(0, &size), 0);
    EXPECT_EQ(size, 10244u);
}

TEST_F(L2, ControlsReachTheirFields)
{
    struct Case {
        u32 id, value, reg;
        const char *field;
        u32 held;
    };
    const Case cases[] = {
        {L2_CTRL_REPLACE_DYNAMIC, 1, cib_arl_cpuop_cfg_mac0, "replace_dyn_flag", 1},
        {L2_CTRL_LEARN_MODE, 0, cib_arl_arl_glb_cfg, "lrn_mode", 0},
        {L2_CTRL_MSG_HASH_FULL, 1, cib_arl_arl_glb_cfg, "hash_full_msg_send_en", 1},
        {L2_CTRL_TRAP_MSG_CNT, 0xFFFFF, cib_arl_trap_msg_ctrl_cnt, "trap_msg_ctrl_cnt", 0xFFFFF},
        {L2_CTRL_MOVE_PRI_MASK, 9, cib_arl_arl_glb_cfg, "mac_float_pfe", 9},
        {L2_CTRL_HASH_MODE, 2, cib_arl_arl_glb_cfg, "hash_mode", 1},
        {L2_CTRL_HASH_MODE, 1, cib_arl_arl_glb_cfg, "hash_mode", 0},
        {L2_CTRL_RSV_IPV6_CAUSEID, 511, cib_arl_rsv_mc_cfg, "ipv6_default_causeid", 511},
        {L2_CTRL_HASH_CONFLICT_ACT, 1, cib_arl_arl_glb_cfg, "hash_conflict_act", 1},
        {L2_CTRL_IPV6_DIP_SEL0 + 3, 14, cib_arl_ipv6_dip_sel, "ipv6_dip_sel_3", 14},
    };
    for (const Case &c : cases) {
        ASSERT_EQ(l2_api_control_set(0, c.id, c.value), 0) << c.field;
        EXPECT_EQ(field(c.reg, c.field), c.held) << c.field;
        u32 v = 0;
        ASSERT_EQ(l2_api_control_get(0, c.id, &v), 0);
        EXPECT_EQ(v, c.value) << c.field;
    }
    EXPECT_EQ(l2_api_control_set(0, L2_CTRL_TRAP_MSG_CNT, 0x100000), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("input 1048576 max 1048575"));
    EXPECT_EQ(l2_api_control_set(0, L2_CTRL_HASH_MODE, 3), SHR_E_PARAM);
    EXPECT_EQ(l2_api_control_set(0, 22, 0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_control_set(0, L2_CTRL_COUNT, 0), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("unknown control type 33"));
    EXPECT_EQ(l2_api_control_set(0, L2_CTRL_MSG_LEARN, 2), SHR_E_PARAM);

    // Aging: a time of 0 stops it, two-way aging starts it.
    ASSERT_EQ(l2_api_age_control_set(0, L2_AGE_TIME, 0), 0);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "glb_age_en"), 0u);
    ASSERT_EQ(l2_api_age_control_set(0, L2_AGE_TWO_WAY, 1), 0);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "glb_age_en"), 1u);
    ASSERT_EQ(l2_api_age_control_set(0, L2_AGE_LP_MODE, 2), 0);
    u32 v = 0;
    ASSERT_EQ(l2_api_age_control_get(0, L2_AGE_LP_MODE, &v), 0);
    EXPECT_EQ(v, 2u);
    EXPECT_EQ(l2_api_age_control_set(0, 5, 0), SHR_E_PARAM);
    EXPECT_EQ(l2_api_learn_control_set(0, 1, 0), SHR_E_PARAM);
    EXPECT_EQ(l2_api_mac_cnt_get(0, 4, &v), SHR_E_PARAM);

    ASSERT_EQ(l2_api_addr_freeze(0), 0);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "glb_lrn_en"), 0u);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "age_time"), 0u);
    ASSERT_EQ(l2_api_age_control_set(0, L2_AGE_TIME, 77), 0);
    ASSERT_EQ(l2_api_addr_unfreeze(0), 0);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "glb_lrn_en"), 1u);
    ASSERT_EQ(l2_api_age_control_get(0, L2_AGE_TIME, &v), 0);
    EXPECT_EQ(v, 300u);
}

TEST_F(L2, PortControlsEncodeActionsAndLearnModes)
{
    for (u32 id = L2_PORT_UNKNOWN_UCAST_ACT; id <= L2_PORT_BCAST_ACT; id++) {
        for (u32 act = 0; act < 4; act++) {
            ASSERT_EQ(l2_api_port_control_set(0, 3, id, act), 0);
            u32 v = 9;
            ASSERT_EQ(l2_api_port_control_get(0, 3, id, &v), 0);
            EXPECT_EQ(v, act);
        }
    }
    cib_ipro_ipat_tbl_t row{};
    ASSERT_EQ(l2_api_port_control_set(0, 3, L2_PORT_UNKNOWN_UCAST_ACT, 2), 0);
    ASSERT_EQ(csl_reef_cib_ipro_ipat_tbl_get(0, 0, 3, &row), 0);
    EXPECT_EQ(row.unuc_tocp, 1);
    EXPECT_EQ(row.unuc_broad, 0);

    const u8 modes[5][3] = {{1, 0, 0}, {0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0}};
    for (u32 m = 0; m < 5; m++) {
        ASSERT_EQ(l2_api_port_control_set(0, 4, L2_PORT_LEARN_MODE, m), 0);
        ASSERT_EQ(csl_reef_cib_ipro_ipat_tbl_get(0, 0, 4, &row), 0);
        EXPECT_EQ(row.mac_lrn_mode, modes[m][0]) << m;
        EXPECT_EQ(row.nolrn_tocp, modes[m][1]) << m;
        EXPECT_EQ(row.nolrn_discard, modes[m][2]) << m;
        u32 v = 9;
        ASSERT_EQ(l2_api_port_control_get(0, 4, L2_PORT_LEARN_MODE, &v), 0);
        EXPECT_EQ(v, m);
    }
    for (u32 id = L2_PORT_EGRESS_BRIDGE; id <= L2_PORT_EGRESS_BCAST; id++) {
        ASSERT_EQ(l2_api_port_control_set(0, 6, id, 1), 0);
        u32 v = 0;
        ASSERT_EQ(l2_api_port_control_get(0, 6, id, &v), 0);
        EXPECT_EQ(v, 1u) << id;
        ASSERT_EQ(l2_api_port_control_set(0, 6, id, 0), 0);
    }
    EXPECT_EQ(l2_api_port_control_set(0, 3, L2_PORT_LEARN_MODE, 5), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("port learn-mode 5 is not support"));
    EXPECT_EQ(l2_api_port_control_set(0, 3, L2_PORT_BCAST_ACT, 4), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("broadcast-act 4 is wrong"));
    EXPECT_EQ(l2_api_port_control_set(0, 3, 9, 0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_port_control_set(0, 32, 3, 0), SHR_E_PARAM);

    // VLAN controls check their values, then need the VLAN.
    EXPECT_EQ(l2_api_vlan_control_set(0, 5, L2_VLAN_LEARN, 2), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("value is wrong 2"));
    EXPECT_EQ(l2_api_vlan_control_set(0, 5, L2_VLAN_IPMC_MODE, 4), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("vid 5 ipmc mode is wrong value 4"));
    EXPECT_EQ(l2_api_vlan_control_set(0, 5, L2_VLAN_LEARN, 1), SHR_E_NOT_FOUND);
    EXPECT_EQ(l2_api_vlan_control_set(0, 5, 7, 0), SHR_E_NOT_SUPPORT);
}

TEST_F(L2, MulticastGroupIdsAndTheirMarks)
{
    u32 id = 20;
    ASSERT_EQ(l2_api_multicast_create(0, 1, &id), 0);
    EXPECT_EQ(l2_api_multicast_create(0, 1, &id), SHR_E_EXISTS);
    id = 0;
    ASSERT_EQ(l2_api_multicast_create(0, 0, &id), 0);
    EXPECT_EQ(id, 16u);
    id = 15;
    EXPECT_EQ(l2_api_multicast_create(0, 1, &id), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("mgid is wrong 15"));
    id = 1024;
    EXPECT_EQ(l2_api_multicast_create(0, 1, &id), SHR_E_PARAM);
    EXPECT_EQ(l2_api_multicast_create(0, 2, &id), SHR_E_PARAM);

    // An entry marks its group; its delete gives the mark back.
    l2_addr m = mac_addr(0x500, 1, 0);
    m.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_MCAST;
    m.mgid = 30;
    ASSERT_EQ(l2_api_addr_add(0, &m), 0);
    id = 30;
    EXPECT_EQ(l2_api_multicast_create(0, 1, &id), SHR_E_EXISTS);
    l2_addr del = m;
    ASSERT_EQ(l2_api_addr_del(0, &del), 0);
    ASSERT_EQ(l2_api_multicast_create(0, 1, &id), 0);

    // A refused add clears the mark, even one made by create.
    ASSERT_EQ(l2_api_addr_add(0, &m), 0);
    l2_addr again = m;
    again.mgid = 40;
    id = 40;
    ASSERT_EQ(l2_api_multicast_create(0, 1, &id), 0);
    EXPECT_EQ(l2_api_addr_add(0, &again), SHR_E_FAIL);
    EXPECT_EQ(l2_api_multicast_create(0, 1, &id), 0);

    // A batched delete drops the marks that no entry uses any more.
    u32 count = 0;
    l2_addr port1 = mac_addr(0, 0, 1, true);
    ASSERT_EQ(l2_api_addr_batched_del(0, &port1, L2_CMP_DEST, &count), 0);
    for (u32 free_id : {20u, 16u, 40u}) {
        id = free_id;
        EXPECT_EQ(l2_api_multicast_create(0, 1, &id), 0) << free_id;
    }
    id = 30;
    EXPECT_EQ(l2_api_multicast_create(0, 1, &id), SHR_E_EXISTS);

    // Members live in the replication engine; bad members change nothing.
    l2_multicast_bitmap bm{};
    EXPECT_EQ(l2_api_multicast_bitmap_set(0, 30, &bm), 0);
    bm.ports.word[0] = 1ull << 40;
    EXPECT_EQ(l2_api_multicast_bitmap_set(0, 30, &bm), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("chip port 40 invalid, min 0, max 31"));
    EXPECT_EQ(l2_api_multicast_port_add(0, 30, L2_MC_PORT(0, 3)), 0);
    EXPECT_EQ(l2_api_multicast_port_add(0, 30, L2_MC_PORT(1, 8)), SHR_E_PARAM);
    EXPECT_EQ(l2_api_multicast_port_add(0, 30, L2_MC_PORT(4, 0)), SHR_E_PARAM);
    l2_multicast_port_attr attr{};
    attr.ivid = 4096;
    EXPECT_EQ(l2_api_multicast_port_attribute_set(0, 30, L2_MC_PORT(0, 3), &attr), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("ivid 4096 out of range, max 4095"));
    EXPECT_EQ(l2_api_multicast_destroy(0, 10), SHR_E_PARAM);
    EXPECT_EQ(l2_api_multicast_destroy(0, 30), 0);
}

TEST_F(L2, IndexReadsCursorsAndTheEndOfAWalk)
{
    l2_addr a{};
    ASSERT_EQ(l2_api_addr_get_by_index(0, 0, &a), 0);
    EXPECT_EQ(a.valid, 0u);
    EXPECT_EQ(l2_api_addr_get_by_index(0, 10244, &a), SHR_E_PARAM);
    for (u64 mac = 1; mac <= 3; mac++) {
        l2_addr e = mac_addr(mac, 1, 1);
        ASSERT_EQ(l2_api_addr_add(0, &e), 0);
    }
    u32 cursor = 0;
    std::set<u64> seen;
    while (l2_api_addr_next_entry_get(0, &cursor, &a) == 0) {
        seen.insert(mac_of(a));
    }
    EXPECT_EQ(seen, (std::set<u64>{1, 2, 3}));
    EXPECT_EQ(l2_api_addr_next_entry_get(0, &cursor, &a), SHR_E_NOT_FOUND);

    // A callback that answers non-zero ends the walk with its answer.
    u32 calls = 0;
    EXPECT_EQ(l2_api_addr_traverse(
                  0, [](u32, l2_addr *, void *user) { return ++*static_cast<u32 *>(user) == 2 ? -30 : 0; }, &calls),
              -30);
    EXPECT_EQ(calls, 2u);
}

TEST_F(L2, MovePrioritiesSitInTheirNibbles)
{
    l2_port_move_pri p{0, 0, 2, 9};
    ASSERT_EQ(l2_api_port_move_pri_set(0, &p), 0);
    EXPECT_EQ((field(cib_arl_port_ppri, "port_ppri", 1) >> 4) & 0xF, 2u);
    EXPECT_EQ(field(cib_arl_port_ppri, "port_ppri", 1) & 0xF, 4u); // port 8 keeps its bring-up nibble
    l2_port_move_pri t{1, 1, 3, 7};
    ASSERT_EQ(l2_api_port_move_pri_set(0, &t), 0);
    EXPECT_EQ(field(cib_arl_trunk_ppri, "trunk_ppri") >> 28, 7u);
    l2_port_move_pri got{1, 0, 0, 7};
    ASSERT_EQ(l2_api_port_move_pri_get(0, &got), 0);
    EXPECT_EQ(got.enable, 1);
    EXPECT_EQ(got.pri, 3);
    l2_port_move_pri bad{1, 1, 0, 8};
    EXPECT_EQ(l2_api_port_move_pri_set(0, &bad), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("tgid 8 is out of range,min 0,max 7"));
    bad = l2_port_move_pri{0, 1, 4, 0};
    EXPECT_EQ(l2_api_port_move_pri_set(0, &bad), SHR_E_PARAM);
}

class L2BringUp : public SimChips {
protected:
    L2BringUp() : SimChips(1, 0) {}
};

TEST_F(L2BringUp, HardwareInitSetsTheDefaultsAndTheProperties)
{
    ASSERT_EQ(shr_property_set(0, "l2_msg_full_act", "1"), 0);
    ASSERT_EQ(shr_property_set(0, "trap_send_mode", "2"), 0);
    up_chip(0);
    EXPECT_EQ(field(cib_arl_arl_glb_cfg, "mac_float_pfe"), 15u);
    EXPECT_EQ(field(cib_arl_arl_glb_cfg, "port_lmt_mode"), 1u);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "age_time"), 300u);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "sys_clk_freq"), 250u);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg0, "age_cnt_en"), 1u);
    EXPECT_EQ(field(cib_arl_trap_msg_ctrl_cnt, "trap_msg_ctrl_cnt"), 1u);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg2, "mac_msg_full_act"), 1u);
    EXPECT_EQ(field(cib_arl_age_lrn_cfg2, "trap_send_mode"), 2u);
    EXPECT_EQ(field(cib_arl_port_lmt_cnt, "port_lmt_en", 30), 1u);
    EXPECT_EQ(field(cib_arl_port_lmt_cnt, "port_lmt_cnt", 30), 65535u);
    EXPECT_EQ(field(cib_arl_port_ppri, "port_ppri", 3), 0x44444444u);
    EXPECT_EQ(field(cib_arl_trunk_ppri, "trunk_ppri"), 0x44444444u);
    EXPECT_EQ(field(cib_arl_arl_glb_cfg, "ram_share_mode"), 0u);
}

TEST_F(L2BringUp, ASiblingWithoutTheTableComesUpAndRefusesCleanly)
{
    tide::test::kelpreef_identity_set(0);
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    Capture::clear();
    EXPECT_EQ(dpl_reef_l2_hw_init(0), 0); // nothing of the table to program
    EXPECT_TRUE(Capture::has("kelpreef: no MAC table in this build\n"));
    l2_addr a = mac_addr(0x1, 1, 0);
    EXPECT_EQ(l2_api_addr_add(0, &a), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(l2_api_addr_get_by_index(0, 0, &a), SHR_E_NOT_SUPPORT);
    // Below the service the engine finds no table of this chip to drive.
    const csl_l2_mac_key key{};
    u8 fail = 0;
    EXPECT_EQ(csl_reef_hash_l2_mac_del(0, &key, &fail), SHR_E_EMPTY);
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

TEST_F(L2BringUp, SharedRamDoublesTheTableAtBringUp)
{
    ASSERT_EQ(shr_property_set(0, "fbm_share_ram_cfg", "1"), 0);
    up_chip(0);
    EXPECT_EQ(field(cib_arl_arl_glb_cfg, "ram_share_mode"), 1u);
    cib_lsw_hreg_fbm_share_ram_cfg_t share{1};
    u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(csl_reef_cib_lsw_hreg_fbm_share_ram_cfg_set(0, 0, &share, all), 0);
    u32 size = 0;
    ASSERT_EQ(l2_api_mac_entry_size_get(0, &size), 0);
    EXPECT_EQ(size, 18436u);
    l2_addr a{};
    ASSERT_EQ(l2_api_addr_get_by_index(0, 18435, &a), 0);
}

} // namespace
