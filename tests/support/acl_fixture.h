// Test support of the ACL: a chip whose ACL runs in manual or automatic
// block mode, groups and entries of the L2 template (icap single,
// template 31 "icap-width-single-l2"), and the rows of the model decoded
// as that template's key.
#ifndef TIDE_TEST_ACL_FIXTURE_H
#define TIDE_TEST_ACL_FIXTURE_H

#include <gtest/gtest.h>
#include <tide/acl.h>
#include <tide/sim.h>

#include <map>
#include <vector>

#include "support/fixture.h"

namespace tide::test {

// The built template and the words of its key (iacl_tcam_iacl_160_l2_key).
constexpr uint32_t kL2Template = 31;
constexpr uint32_t kMatchEthtype = 3;
constexpr uint32_t kMatchSmacLow = 19;
constexpr uint32_t kMatchSrcPort = 29;
constexpr uint32_t kMatchSrcTgid = 31;
constexpr uint32_t kActionDrop = 24;
constexpr uint32_t kActionRedirectPort = 44;
constexpr uint32_t kL2KeyBits = 160;
constexpr uint32_t kSmacLow = 24; // bit of the key where the MAC source address begins
constexpr uint32_t kRowsPerBlock = 128;
constexpr uint32_t kBlocks = 16;

// Bits of a row's plane or a key, bit i in word i / 32.
inline uint32_t bits_get(const uint32_t *words, uint32_t low, uint32_t width)
{
    uint64_t v = 0;
    for (uint32_t i = 0; i < width; i++) {
        v |= static_cast<uint64_t>((words[(low + i) / 32] >> ((low + i) % 32)) & 1) << i;
    }
    return static_cast<uint32_t>(v);
}
inline void bits_put(uint32_t *words, uint32_t low, uint32_t width, uint32_t value)
{
    for (uint32_t i = 0; i < width; i++) {
        const uint32_t b = low + i;
        words[b / 32] = (words[b / 32] & ~(1u << (b % 32))) | (((value >> i) & 1) << (b % 32));
    }
}

// A row of the model as key and mask: y is key & mask (data plane), x is
// ~key & mask (care plane).
struct RowKey {
    bool valid = false;
    uint32_t key[10] = {};
    uint32_t mask[10] = {};
};
inline RowKey row_key(uint32_t chip, uint32_t block, uint32_t index)
{
    tide_sim_tcam_row r{};
    RowKey k;
    if (tide_sim_tcam_row_get(chip, block, index, &r) != 0) {
        ADD_FAILURE() << "no row " << block << "." << index;
    }
    k.valid = r.valid != 0;
    for (uint32_t w = 0; w < 10; w++) {
        k.key[w] = r.data[w];
        k.mask[w] = r.data[w] | r.care[w];
    }
    return k;
}

// The search key of an entry of the fixture: tag 11 (default base), sub-tag
// 7, the MAC source address's low word.
inline void l2_search_key(uint32_t smac_low, uint32_t key[10])
{
    for (uint32_t w = 0; w < 10; w++) {
        key[w] = 0;
    }
    bits_put(key, 156, 4, 11);
    bits_put(key, 152, 4, 7);
    bits_put(key, kSmacLow, 32, smac_low);
}

// Where an installed entry is.
struct Place {
    uint32_t priority;
    uint32_t block;
    uint32_t index;
    uint32_t logical;
};

class AclChip : public SimChips {
protected:
    // `automatic`: the ACL's blocks in automatic mode
    // (acl_alloc_tcam_resource_mode 1).
    explicit AclChip(bool automatic = false) : SimChips(1, 0), automatic_(automatic) {}
    void SetUp() override
    {
        SimChips::SetUp();
        if (automatic_) {
            ASSERT_EQ(shr_property_set(0, "acl_alloc_tcam_resource_mode", "1"), 0);
        }
        // No VLAN TCAM spaces: the ACL's blocks start from an empty TCAM.
        ASSERT_EQ(shr_property_set(0, "vacl_160bit_cnt", "0"), 0);
        ASSERT_EQ(shr_property_set(0, "vacl_320bit_cnt", "0"), 0);
        up_chip(0);
    }

    // An icap group of `size` entries, single width unless `mode` says
    // otherwise (a size in manual mode, the automatic flag in automatic
    // mode).
    uint32_t group(uint32_t size = 128, uint32_t mode = ACL_MODE_SINGLE)
    {
        uint32_t id = 0;
        EXPECT_EQ(acl_api_group_create(0, 0, &id), 0);
        acl_group_para p{};
        p.type = ACL_GROUP_ICAP;
        p.mode = mode;
        p.entry_num = size;
        p.flags = automatic_ ? ACL_GROUP_FLAG_AUTO : ACL_GROUP_FLAG_SIZE;
        EXPECT_EQ(acl_api_group_set(0, id, &p), 0);
        return id;
    }

    // An entry of template 31 that matches MAC source addresses whose low
    // word is `smac_low` and drops.
    uint32_t entry(uint32_t group_id, uint32_t priority, uint32_t smac_low)
    {
        uint32_t id = 0;
        EXPECT_EQ(acl_api_entry_create(0, 0, priority, group_id, &id), 0);
        EXPECT_EQ(acl_api_entry_template_set(0, id, kL2Template), 0);
        acl_item m{kMatchSmacLow, smac_low, 0xFFFFFFFFu};
        EXPECT_EQ(acl_api_entry_match_field_set(0, id, &m), 0);
        acl_item a{kActionDrop, 0, 0};
        EXPECT_EQ(acl_api_entry_action_set(0, id, &a), 0);
        return id;
    }

    acl_entry_info info(uint32_t entry_id)
    {
        acl_entry_info i{};
        EXPECT_EQ(acl_api_entry_get(0, entry_id, &i), 0);
        return i;
    }

    acl_group_info group_info(uint32_t group_id)
    {
        acl_group_info i{};
        EXPECT_EQ(acl_api_group_get(0, group_id, &i), 0);
        return i;
    }

    // The installed entries of a group by id.
    std::map<uint32_t, Place> installed(uint32_t group_id)
    {
        std::map<uint32_t, Place> out;
        EXPECT_EQ(acl_api_entry_traverse_in_group(
                      0, group_id,
                      [](uint32_t, uint32_t id, const acl_entry_info *i, void *user) {
                          if (i->state & ACL_ENTRY_INSTALLED) {
                              (*static_cast<std::map<uint32_t, Place> *>(user))[id] =
                                  Place{i->priority, i->block, i->index_in_block, i->logical_index};
                          }
                          return 0;
                      },
                      &out),
                  0);
        return out;
    }

    bool automatic_;
};

} // namespace tide::test

#endif // TIDE_TEST_ACL_FIXTURE_H
