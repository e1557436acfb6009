// atolreef's templates and action sets against the chip description's
// layouts: every item and action of every template lands inside its key
// or action record without disturbing another one that may join it, the
// tags and forced fields are there, and values are cut to their fields.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_acl_template.h"
#include "support/acl_fixture.h"

using namespace tide::test;

namespace {

// The kinds of group (fp types) with a set and templates on atolreef.
constexpr uint32_t kFpTypes[] = {0, 2, 4, 6, 8, 9, 10, 11};

struct Image {
    std::vector<uint8_t> key, mask, ad;
    bool operator==(const Image &o) const { return key == o.key && mask == o.mask && ad == o.ad; }
};

class AclTemplate : public AclChip {
protected:
    AclTemplate() : AclChip(false) {}

    // An entry of `template_id` with the given items and actions, each with
    // all value and mask bits set, built as its TCAM row would be.
    Image build(uint32_t template_id, std::initializer_list<uint32_t> items, std::initializer_list<uint32_t> actions,
                uint32_t based_mode = ACL_BASED_DEFAULT, uint32_t value = 0xFFFFFFFFu)
    {
        dpl_acl_entry e{};
        e.template_id = template_id;
        e.based_mode = based_mode;
        std::vector<acl_item> store(items.size() + actions.size());
        size_t n = 0;
        for (uint32_t id : items) {
            store[n] = acl_item{id, value, 0xFFFFFFFFu};
            e.match[id] = &store[n++];
            dpl_acl_bit_set(e.match_set, id);
        }
        for (uint32_t id : actions) {
            store[n] = acl_item{id, value, value};
            e.action[id] = &store[n++];
            dpl_acl_bit_set(e.action_set, id);
        }
        dpl_acl_image img{};
        EXPECT_EQ(dpl_atolreef_acl_template_entry_gen(0, &e, &img), 0) << template_id;
        return Image{{img.key, img.key + sizeof(img.key)},
                     {img.mask, img.mask + sizeof(img.mask)},
                     {img.ad, img.ad + sizeof(img.ad)}};
    }

    static std::vector<uint32_t> ids(const uint32_t *bitmap, uint32_t count)
    {
        std::vector<uint32_t> out;
        for (uint32_t i = 0; i < count; i++) {
            if (dpl_acl_bit_get(bitmap, i)) {
                out.push_back(i);
            }
        }
        return out;
    }

    static Image bits_or(const Image &a, const Image &b)
    {
        Image o = a;
        for (size_t i = 0; i < o.key.size(); i++) {
            o.key[i] |= b.key[i];
            o.mask[i] |= b.mask[i];
        }
        for (size_t i = 0; i < o.ad.size(); i++) {
            o.ad[i] |= b.ad[i];
        }
        return o;
    }

    // A field of a catalogue table: its low bit and width.
    static std::pair<uint32_t, uint32_t> field(const char *table, const char *name)
    {
        u32 tab_id = 0, instance = 0;
        const cib_tab_info *info = nullptr;
        EXPECT_EQ(csl_reef_tab_info_get_by_name(0, table, &tab_id, &info, &instance), 0) << table;
        for (u32 i = 0; info != nullptr && i < info->modes[0].field_count; i++) {
            if (strcmp(info->modes[0].fields[i].name, name) == 0) {
                return {info->modes[0].fields[i].low_bit, info->modes[0].fields[i].width};
            }
        }
        ADD_FAILURE() << table << "." << name;
        return {0, 0};
    }

    static uint32_t get(const std::vector<uint8_t> &bytes, std::pair<uint32_t, uint32_t> f)
    {
        uint32_t v = 0;
        for (uint32_t i = 0; i < f.second; i++) {
            const uint32_t b = f.first + i;
            v |= static_cast<uint32_t>((bytes[b / 8] >> (b % 8)) & 1) << i;
        }
        return v;
    }
};

// Two items (or actions) that may be on one entry together must build to
// what each builds alone, OR-ed: otherwise one overwrites the other in a
// shared field and the rule matches something else than was asked.  Those
// that share a field must be refused together by the conflict rules.
TEST_F(AclTemplate, ItemsAndActionsThatMayJoinNeverOverwriteEachOther)
{
    uint32_t templates_seen = 0, pairs = 0;
    for (uint32_t fp : kFpTypes) {
        uint32_t templates = 0;
        ASSERT_EQ(dpl_atolreef_acl_template_support_gen(0, fp, &templates), 0);
        uint32_t action_bits[DPL_ACL_ACTION_WORDS] = {};
        ASSERT_EQ(dpl_atolreef_acl_template_action_support_gen(0, fp, action_bits), 0);
        const std::vector<uint32_t> actions = ids(action_bits, ACL_ACTION_NULL);
        EXPECT_FALSE(actions.empty()) << "fp " << fp;
        for (uint32_t t = 0; t < 32; t++) {
            if (((templates >> t) & 1) == 0) {
                continue;
            }
            templates_seen |= 1u << t;
            uint32_t item_bits[DPL_ACL_MATCH_WORDS] = {};
            ASSERT_EQ(dpl_atolreef_acl_template_match_type_support_gen(0, t, item_bits), 0);
            const std::vector<uint32_t> items = ids(item_bits, ACL_MATCH_NULL);
            const Image bare = build(t, {}, {});
            for (size_t i = 0; i < items.size(); i++) {
                const Image a = build(t, {items[i]}, {});
                EXPECT_NE(a.mask, bare.mask) << "template " << t << " item " << items[i] << " sets nothing";
                for (size_t j = i + 1; j < items.size(); j++) {
                    uint32_t set[DPL_ACL_MATCH_WORDS] = {};
                    dpl_acl_bit_set(set, items[i]);
                    if (dpl_atolreef_acl_template_match_type_conflict_check(0, t, set, items[j]) != 0) {
                        continue;
                    }
                    pairs++;
                    EXPECT_EQ(build(t, {items[i], items[j]}, {}), bits_or(a, build(t, {items[j]}, {})))
                        << "template " << t << " items " << items[i] << " and " << items[j];
                }
            }
            for (size_t i = 0; i < actions.size(); i++) {
                const Image a = build(t, {}, {actions[i]});
                for (size_t j = i + 1; j < actions.size(); j++) {
                    uint32_t set[DPL_ACL_ACTION_WORDS] = {};
                    dpl_acl_bit_set(set, actions[i]);
                    if (dpl_atolreef_acl_template_action_conflict_check(0, fp, set, actions[j]) != 0) {
                        continue;
                    }
                    pairs++;
                    EXPECT_EQ(build(t, {}, {actions[i], actions[j]}), bits_or(a, build(t, {}, {actions[j]})))
                        << "fp " << fp << " actions " << actions[i] << " and " << actions[j];
                }
            }
        }
    }
    // All 22 templates of the chip took part.
    EXPECT_EQ(__builtin_popcount(templates_seen), 22);
    EXPECT_GT(pairs, 10000u);
}

TEST_F(AclTemplate, TagsFollowTheBaseForIngressKeysAndAreFixedForTheOthers)
{
    struct Row {
        uint32_t template_id;
        const char *table;
        int tid; // -1: by base
        int subtid; // -1: none
    };
    const Row rows[] = {
        {0, "iacl_tcam_iacl_320_ipv4_key", -1, 1},       {4, "iacl_tcam_iacl_320_arp_key", -1, 8},
        {9, "iacl_tcam_iacl_ucl_320_ipv6_key", -1, 14},  {30, "iacl_tcam_iacl_160_ipv4_key", -1, 4},
        {11, "iacl_tcam_iacl_ipsg_v4_key", 4, 9},        {12, "iacl_tcam_iacl_ipsg_v6_key", 4, 10},
        {18, "eacl_tcam_eacl_320_ipv6_allip_pv_key", 6, 5}, {25, "cpacl_tcam_cpacl_320_ipv6_sec_key", 5, 5},
        {27, "ipro_tcam_vlanacl_160_key", 9, -1},        {29, "epro_tcam_meta_acl_key", 7, -1},
    };
    for (const Row &r : rows) {
        const auto tid = field(r.table, "tid");
        for (uint32_t base : {ACL_BASED_PORT, ACL_BASED_VLAN, ACL_BASED_GLB, ACL_BASED_DEFAULT}) {
            const Image img = build(r.template_id, {}, {}, base);
            const uint32_t want = r.tid >= 0                 ? static_cast<uint32_t>(r.tid)
                                  : base == ACL_BASED_PORT ? 4u
                                  : base == ACL_BASED_VLAN ? 10u
                                                           : 11u;
            EXPECT_EQ(get(img.key, tid), want) << r.template_id << " base " << base;
            EXPECT_EQ(get(img.mask, tid), 15u);
            if (r.subtid >= 0) {
                EXPECT_EQ(get(img.key, field(r.table, "subtid")), static_cast<uint32_t>(r.subtid));
            }
        }
    }
}

TEST_F(AclTemplate, TheArpKeyMatchesArpFramesWhateverTheEntrySays)
{
    const auto type = field("iacl_tcam_iacl_320_arp_key", "ethtype");
    const Image img = build(4, {}, {});
    EXPECT_EQ(get(img.key, type), 2054u);
    EXPECT_EQ(get(img.mask, type), 0xFFFFu);
    // The sender address window lands in its field, the rest stays out.
    const Image sip = build(4, {75 /* arp-sip */}, {}, ACL_BASED_DEFAULT, 0x0A000001u);
    EXPECT_EQ(get(sip.key, field("iacl_tcam_iacl_320_arp_key", "arp_sip")), 0x0A000001u);
    EXPECT_EQ(get(sip.key, type), 2054u);
}

TEST_F(AclTemplate, WindowsOfWideFieldsAndNarrowFieldsCutTheirValues)
{
    // sip-95-64 of the IPv6 source key is bits 31..0 of the upper half.
    const auto hi = field("iacl_tcam_iacl_320_ipv6_sip_key", "sip_127_64");
    const Image w = build(1, {64 /* sip-95-64 */}, {}, ACL_BASED_DEFAULT, 0x12345678u);
    EXPECT_EQ(get(w.key, {hi.first, 32}), 0x12345678u);
    EXPECT_EQ(get(w.mask, {hi.first + 32, 32}), 0u);
    // A 16-bit L4 port field given 32 bits keeps the low 16.
    const auto l4 = field("iacl_tcam_iacl_320_ipv4_key", "l4dport_arpopcode");
    const Image cut = build(0, {15 /* reuse-l4dport-arpopcode */}, {}, ACL_BASED_DEFAULT, 0xABCD0050u);
    EXPECT_EQ(get(cut.key, l4), 0x0050u);
    // The cut of a value does not reach the neighbour field above it.
    EXPECT_EQ(cut.key, build(0, {15}, {}, ACL_BASED_DEFAULT, 0x50u).key);
}

TEST_F(AclTemplate, TheActionSetsOfEachStageWriteTheirOwnRecords)
{
    // CPU ACL: one operation and its operand cut per operation.
    const char *cp = "cpacl_tcam_cpacl_ad";
    Image img = build(21, {}, {24 /* drop */}, ACL_BASED_DEFAULT, 0xFFFF);
    EXPECT_EQ(get(img.ad, field(cp, "valid")), 1u);
    EXPECT_EQ(get(img.ad, field(cp, "op")), 2u);
    EXPECT_EQ(get(img.ad, field(cp, "opdata")), 0x3FFu);
    img = build(21, {}, {54 /* cause-id */}, ACL_BASED_DEFAULT, 0xFFFF);
    EXPECT_EQ(get(img.ad, field(cp, "op")), 1u);
    EXPECT_EQ(get(img.ad, field(cp, "opdata")), 0x1FFu);
    // Source guard: drop 1, to the CPU 2.
    img = build(11, {}, {37 /* redirect-to-cpu */});
    EXPECT_EQ(get(img.ad, field("iacl_tcam_iacl_ipsg_ad", "fwdcmd")), 2u);
    // Egress: a new outer VID, and the tag deletes.
    img = build(14, {}, {118 /* ovid-replace */}, ACL_BASED_DEFAULT, 0x1064);
    EXPECT_EQ(get(img.ad, field("eacl_tcam_eacl_ad", "ovlanen")), 1u);
    EXPECT_EQ(get(img.ad, field("eacl_tcam_eacl_ad", "causeid_ovlan")), 0x064u);
    // Ingress: a trunk redirect is the trunk id above 0x800.
    img = build(0, {}, {45 /* redirect-trunk */}, ACL_BASED_DEFAULT, 0xF);
    EXPECT_EQ(get(img.ad, field("iacl_tcam_iacl_ad", "causeid_dport_nhpid_ecmpgrp")), 0x807u);
}

} // namespace
