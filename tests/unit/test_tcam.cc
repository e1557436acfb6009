// The TCAM entry layer on the chip model: every table through its
// generated functions, the write order of adds and deletes, the test
// search, the ECC rewrite, a stalled engine and bad input.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "atolreef_tcam_table.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "support/fixture.h"
#include "support/vlan_tcam.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

// Fields of the command word, as the chip documents them.
constexpr u32 kDcs = 1u << 19, kVbi = 1u << 18, kVbe = 1u << 17, kAdStart = 1u << 1, kTcamStart = 1u << 0;
constexpr u32 kOpWrite = 1u << 2;
const u32 kCmd0 = atolreef_cib_acl_core_tcamad_op_cmd0_reg.addr[0];
const u32 kSearchEn = atolreef_cib_acl_core_test_search_en_reg.addr[0];

constexpr u32 kBlock160 = 1, kBlock320 = 2;

// A generated table: its functions over an untyped record, and where the
// parts of the record lie.
struct GenTable {
    u32 id;
    int (*set)(u32, u32, u32, void *);
    int (*get)(u32, u32, u32, void *);
    int (*del)(u32, u32, u32);
    size_t size, mask_off, ad_off;
};

#define TCAM_PRESENT(X)                                                                                           \
    X(ipro_tcam_vlanacl_320, 4) X(ipro_tcam_vlanacl_160, 5) X(pa_tcam_pa, 6) X(cpacl_tcam_cpacl_320_normal, 7)   \
    X(cpacl_tcam_cpacl_320_ipv6_sip, 8) X(cpacl_tcam_cpacl_320_ipv6_dip, 9) X(cpacl_tcam_cpacl_320_ipv6_mac, 10) \
    X(cpacl_tcam_cpacl_320_ipv6_sec, 11) X(eacl_tcam_eacl_320_ipv4, 13) X(eacl_tcam_eacl_320_ipv6_allip_pv, 14)  \
    X(iacl_tcam_iacl_160_l2, 20) X(iacl_tcam_iacl_160_ipv4, 21) X(iacl_tcam_iacl_320_ipv4, 22)                   \
    X(iacl_tcam_iacl_320_ipv6_sip, 23) X(iacl_tcam_iacl_320_ipv6_dip, 24) X(iacl_tcam_iacl_320_arp, 25)          \
    X(iacl_tcam_iacl_320_ipv6_allip_pv, 26) X(iacl_tcam_iacl_320_udf, 27) X(iacl_tcam_iacl_ipsg_v6, 28)          \
    X(iacl_tcam_iacl_ipsg_v4, 29) X(iacl_tcam_iacl_ucl_320_ipv4, 30) X(iacl_tcam_iacl_ucl_320_ipv6, 31)          \
    X(epro_tcam_meta_acl, 37)

#define GEN_TABLE(t, n)                                                                                   \
    GenTable{n,                                                                                            \
             [](u32 c, u32 b, u32 i, void *r) { return csl_reef_cib_##t##_set(c, b, i, static_cast<cib_##t##_t *>(r)); }, \
             [](u32 c, u32 b, u32 i, void *r) { return csl_reef_cib_##t##_get(c, b, i, static_cast<cib_##t##_t *>(r)); }, \
             csl_reef_cib_##t##_del, sizeof(cib_##t##_t), offsetof(cib_##t##_t, mask), offsetof(cib_##t##_t, ad)},
const GenTable kPresent[] = {TCAM_PRESENT(GEN_TABLE)};
#undef GEN_TABLE

const cib_tab_info *_key_tab(u32 id)
{
    return csl_reef_tab_info_get(0, g_tcam_tab_name_id[id].key_tab_id);
}

const cib_tab_info *_ad_tab(u32 id)
{
    return csl_reef_tab_info_get(0, g_tcam_tab_name_id[id].ad_tab_id);
}

u64 _member(const cib_tab_info *tab, u32 i, const u8 *rec)
{
    u64 v = 0;
    memcpy(&v, rec + tab->members[i].offset, tab->members[i].size);
    return v;
}

// Random values in every member of a record part, each within its field.
void _fill(std::mt19937_64 &rng, const cib_tab_info *tab, u8 *rec)
{
    for (u32 i = 0; i < tab->member_count; i++) {
        const cib_field_info &f = tab->modes[0].fields[tab->members[i].field];
        const u64 v = rng() & (f.width >= 64 ? ~0ull : (1ull << f.width) - 1);
        memcpy(rec + tab->members[i].offset, &v, tab->members[i].size);
    }
}

// The record part as an entry image.
std::vector<u8> _image(const cib_tab_info *tab, const u8 *rec)
{
    std::vector<u8> img(cib_tab_entry_bytes(tab) + 4);
    csl_reef_cib_record_to_data(tab->modes[0].fields, tab->members, tab->member_count, rec, img.data(), nullptr, 0);
    return img;
}

// Word w of an image, bits beyond `width` cut.
u32 _word(const std::vector<u8> &img, u32 w, u32 width)
{
    u32 v = img[4 * w] | img[4 * w + 1] << 8 | img[4 * w + 2] << 16 | static_cast<u32>(img[4 * w + 3]) << 24;
    const u32 low = 32 * w;
    return width >= low + 32 ? v : v & ((1u << (width - low)) - 1);
}

tide_sim_tcam_row _row(u32 block, u32 index)
{
    tide_sim_tcam_row r{};
    EXPECT_EQ(tide_sim_tcam_row_get(0, block, index, &r), 0);
    return r;
}

// Whether any key can match the row: valid, and no cell with both bits.
bool _can_match(const tide_sim_tcam_row &r)
{
    u32 both = 0;
    for (u32 w = 0; w < 10; w++) {
        both |= r.data[w] & r.care[w];
    }
    return r.valid != 0 && both == 0;
}

u32 _search_en()
{
    u32 v = 0;
    EXPECT_EQ(tide_sim_reg_peek(0, 4, kSearchEn, &v), 0);
    return v;
}

class Tcam : public SimChips {
protected:
    Tcam() : SimChips(1, 1) {}
    void SetUp() override
    {
        SimChips::SetUp();
        ASSERT_EQ(tide::test::vlan_tcam_spaces_free(0), 0);
        ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, kBlock160, CSL_TCAM_MODE_160), 0);
        ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, kBlock320, CSL_TCAM_MODE_320), 0);
    }

    // A 160-bit entry of iacl_tcam_iacl_160_l2 at (block, index): the key
    // bits `key`, cared for in `mask`, in its smac field.
    static int add_l2(u32 block, u32 index, u64 smac, u64 smac_mask, u32 action)
    {
        cib_iacl_tcam_iacl_160_l2_t e{};
        e.key.smac = smac;
        e.mask.smac = smac_mask;
        e.key.tid = 4;
        e.mask.tid = 0xF;
        e.ad.causeid_dport_nhpid_ecmpgrp = action;
        return csl_reef_cib_iacl_tcam_iacl_160_l2_set(0, block, index, &e);
    }

    // A search key with the tag and smac of add_l2, and its hit.
    static int search_l2(u64 smac, u32 bitmap, u32 *block, u32 *index, u32 *action = nullptr)
    {
        cib_iacl_tcam_iacl_160_l2_key_t k{};
        k.tid = 4;
        k.smac = smac;
        u8 key[20] = {};
        EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_key_TO_entry(0, &k, nullptr, key, 160), 0);
        u8 ad[12] = {};
        const int rc = csl_reef_tcam_key_mask_search(0, key, 160, bitmap, ad, 96, block, index);
        if (action != nullptr && rc == 0) {
            cib_iacl_tcam_iacl_ad_t a{};
            csl_reef_entry_TO_cib_iacl_tcam_iacl_ad(0, &a, ad);
            *action = a.causeid_dport_nhpid_ecmpgrp;
        }
        return rc;
    }
};

TEST_F(Tcam, EveryTableOfTheChipRoundTripsThroughItsGeneratedFunctions)
{
    u32 present = 0;
    for (u32 id = 0; id < CSL_TCAM_TAB_COUNT; id++) {
        present += g_tcam_tab_name_id[id].key_tab_id != CSL_TCAM_NO_TAB;
    }
    ASSERT_EQ(present, sizeof(kPresent) / sizeof(kPresent[0])) << "a table of the chip is not tested";

    std::mt19937_64 rng(tide::test::test_seed());
    for (const GenTable &t : kPresent) {
        SCOPED_TRACE(g_tcam_tab_name_id[t.id].name);
        const cib_tab_info *k = _key_tab(t.id), *a = _ad_tab(t.id);
        ASSERT_NE(k, nullptr);
        const u32 block = k->width == 160 ? kBlock160 : kBlock320;
        const u32 index = static_cast<u32>(rng() % (k->width == 160 ? 128 : 64));
        std::vector<u8> rec(t.size), back(t.size, 0xEE);
        _fill(rng, k, rec.data());
        _fill(rng, k, rec.data() + t.mask_off);
        _fill(rng, a, rec.data() + t.ad_off);
        ASSERT_EQ(t.set(0, block, index, rec.data()), 0);
        ASSERT_EQ(t.get(0, block, index, back.data()), 0);
        for (u32 i = 0; i < k->member_count; i++) {
            const u64 key = _member(k, i, rec.data()), mask = _member(k, i, rec.data() + t.mask_off);
            EXPECT_EQ(_member(k, i, back.data() + t.mask_off), mask) << "mask member " << i;
            EXPECT_EQ(_member(k, i, back.data()), key & mask) << "key member " << i;
        }
        for (u32 i = 0; i < a->member_count; i++) {
            EXPECT_EQ(_member(a, i, back.data() + t.ad_off), _member(a, i, rec.data() + t.ad_off)) << "ad " << i;
        }
        // The chip holds x = mask & ~key in the care plane, y = mask & key
        // in the data plane, and the entry in service.
        const std::vector<u8> key = _image(k, rec.data()), mask = _image(k, rec.data() + t.mask_off);
        const std::vector<u8> ad = _image(a, rec.data() + t.ad_off);
        const tide_sim_tcam_row r = _row(block, index);
        for (u32 w = 0; w < (k->width + 31u) / 32; w++) {
            const u32 km = _word(key, w, k->width), mm = _word(mask, w, k->width);
            EXPECT_EQ(r.care[w], mm & ~km) << "care word " << w;
            EXPECT_EQ(r.data[w], mm & km) << "data word " << w;
        }
        for (u32 w = 0; w < 3; w++) {
            EXPECT_EQ(r.action[w], _word(ad, w, 96)) << "action word " << w;
        }
        EXPECT_EQ(r.valid, 1u);
        ASSERT_EQ(t.del(0, block, index), 0);
        EXPECT_FALSE(_can_match(_row(block, index)));
    }
}

TEST_F(Tcam, AfterADeleteTheEntryReadsBackAsZerosAndInvalid)
{
    ASSERT_EQ(add_l2(kBlock160, 3, 0x123456, 0xFFFFFF, 77), 0);
    ASSERT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_del(0, kBlock160, 3), 0);
    u8 key[20], mask[20], ad[12];
    memset(key, 0xAA, sizeof(key));
    memset(mask, 0xAA, sizeof(mask));
    memset(ad, 0xAA, sizeof(ad));
    csl_tcam_data d = {mask, key, ad};
    u32 valid = 1;
    ASSERT_EQ(csl_reef_tcam_read(0, CSL_TCAM_ID_IACL_TCAM_IACL_160_L2_KEY, 3 << 8 | kBlock160, &d, &valid), 0);
    EXPECT_EQ(valid, 0u);
    for (u8 *part : {key, mask}) {
        EXPECT_EQ(std::vector<u8>(part, part + 20), std::vector<u8>(20, 0));
    }
    EXPECT_EQ(std::vector<u8>(ad, ad + 12), std::vector<u8>(12, 0));
}

TEST_F(Tcam, ConversionsRefuseAnImageTooSmallAndValuesTooWide)
{
    cib_iacl_tcam_iacl_160_l2_key_t k{};
    k.smac = 0xABCDEF;
    u8 data[24] = {};
    EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_key_TO_entry(0, &k, nullptr, data, 159), SHR_E_PARAM);
    ASSERT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_key_TO_entry(0, &k, nullptr, data, 160), 0);
    cib_iacl_tcam_iacl_160_l2_key_t back{};
    ASSERT_EQ(csl_reef_entry_TO_cib_iacl_tcam_iacl_160_l2_key(0, &back, data), 0);
    EXPECT_EQ(back.smac, k.smac);

    // A member wider than its field: refused, nothing written.
    cib_iacl_tcam_iacl_160_l2_t e{};
    e.key.tid = 0x1F;
    tide_sim_write_log_clear(0);
    EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_set(0, kBlock160, 0, &e), SHR_E_PARAM);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
}

// The register hooks of the model with a watch on the command word: after
// each command the row it touched is looked at.
struct Watch {
    static inline sdk_reg_write_func_t model_write;
    static inline bool on = false;
    static inline u32 block = 0, index = 0;
    static inline std::vector<u32> commands;
    static inline std::vector<bool> matchable;
    // After this many commands the engine stalls (0: never).
    static inline u32 stall_after = 0;

    static int write(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t value)
    {
        const int rc = model_write(chip, bar, addr, value);
        if (on && bar == 4 && addr == kCmd0) {
            commands.push_back(value);
            tide_sim_tcam_row r{};
            tide_sim_tcam_row_get(chip, block, index, &r);
            matchable.push_back(_can_match(r));
            if (stall_after != 0 && commands.size() == stall_after) {
                tide_sim_engine_stall_set(chip, TIDE_SIM_ENGINE_TCAM, 1);
            }
        }
        return rc;
    }
};

class TcamOrder : public Tcam {
protected:
    TcamOrder() { bring_up_ = 0; }
    void SetUp() override
    {
        SimChips::SetUp();
        Watch::model_write = cfg_.reg_write;
        cfg_.reg_write = Watch::write;
        up_chip(0);
        ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, kBlock160, CSL_TCAM_MODE_160), 0);
        Watch::block = kBlock160;
        Watch::index = 9;
        Watch::commands.clear();
        Watch::matchable.clear();
        Watch::stall_after = 0;
        Watch::on = true;
    }
    void TearDown() override
    {
        Watch::on = false;
        tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_TCAM, 0);
        Tcam::TearDown();
    }
};

TEST_F(TcamOrder, AnAddIsOutOfServiceUntilItsLastWriteAndADeleteAtEveryStep)
{
    // Over an entry in service, so that the first write must take it out.
    ASSERT_EQ(add_l2(kBlock160, 9, 0x1111, 0xFFFF, 1), 0);
    Watch::commands.clear();
    Watch::matchable.clear();
    ASSERT_EQ(add_l2(kBlock160, 9, 0x2222, 0xFFFF, 2), 0);
    const u32 addr = (kBlock160 << 8 | 9) << 4;
    const std::vector<u32> want = {
        addr | kOpWrite | kDcs | kVbe | kTcamStart,        // data plane, valid 0
        addr | kOpWrite | kAdStart,                        // action
        addr | kOpWrite | kTcamStart,                      // care plane
        addr | kOpWrite | kDcs | kVbe | kVbi | kTcamStart, // data plane, valid 1
    };
    EXPECT_EQ(Watch::commands, want);
    EXPECT_EQ(Watch::matchable, (std::vector<bool>{false, false, false, true}));

    Watch::commands.clear();
    Watch::matchable.clear();
    ASSERT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_del(0, kBlock160, 9), 0);
    EXPECT_EQ(Watch::commands, (std::vector<u32>{addr | kOpWrite | kDcs | kVbe | kTcamStart,
                                                 addr | kOpWrite | kTcamStart, addr | kOpWrite | kAdStart}));
    EXPECT_EQ(Watch::matchable, std::vector<bool>(3, false));
}

TEST_F(TcamOrder, AnAddThatFailsHalfwayLeavesTheEntryOutOfService)
{
    ASSERT_EQ(add_l2(kBlock160, 9, 0x1111, 0xFFFF, 1), 0);
    Watch::commands.clear();
    Watch::stall_after = 2; // from the care plane on, commands never finish
    EXPECT_EQ(add_l2(kBlock160, 9, 0x2222, 0xFFFF, 2), SHR_E_FAIL);
    EXPECT_TRUE(Capture::has("TCAM Read Write Operation is not done !!!"));
    EXPECT_EQ(Watch::commands.size(), 3u);
    EXPECT_FALSE(_can_match(_row(kBlock160, 9)));
}

TEST_F(Tcam, TheSearchFindsTheLowestBlockThenTheLowestIndex)
{
    ASSERT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, 3, CSL_TCAM_MODE_160), 0);
    // Three rows that match 0xAB0042: exact, and two that care only for
    // the low byte; one that would match but is invalid.
    ASSERT_EQ(add_l2(3, 5, 0xAB0042, 0xFFFFFF, 30), 0);
    ASSERT_EQ(add_l2(kBlock160, 9, 0x42, 0xFF, 19), 0);
    ASSERT_EQ(add_l2(kBlock160, 7, 0x42, 0xFF, 17), 0);
    ASSERT_EQ(add_l2(kBlock160, 2, 0x42, 0xFF, 12), 0);
    u8 plane[20] = {};
    ASSERT_EQ(csl_reef_tcam_key_mask_ad_get(0, CSL_TCAM_KEY, kBlock160, 2, plane, 160, nullptr), 0);
    ASSERT_EQ(csl_reef_tcam_key_mask_ad_set(0, CSL_TCAM_KEY, kBlock160, 2, plane, 160, 0), 0);
    ASSERT_EQ(add_l2(kBlock160, 4, 0x43, 0xFF, 14), 0); // another key

    u32 block = 99, index = 99, action = 0;
    ASSERT_EQ(search_l2(0xAB0042, 1u << kBlock160 | 1u << 3, &block, &index, &action), 0);
    EXPECT_EQ(block, kBlock160);
    EXPECT_EQ(index, 7u);
    EXPECT_EQ(action, 17u);
    EXPECT_EQ(_search_en(), 0u);

    ASSERT_EQ(search_l2(0xAB0042, 1u << 3, &block, &index, &action), 0);
    EXPECT_EQ(block, 3u);
    EXPECT_EQ(index, 5u);
    EXPECT_EQ(action, 30u);

    ASSERT_EQ(search_l2(0x43, 1u << kBlock160, &block, &index), 0);
    EXPECT_EQ(index, 4u);

    EXPECT_EQ(search_l2(0xAB0042, 0, &block, &index), SHR_E_TIMEOUT);
    EXPECT_EQ(_search_en(), 0u);
    EXPECT_EQ(search_l2(0x99, 0xFFFF, &block, &index), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("tcam search not hit!"));
    EXPECT_EQ(_search_en(), 0u);
}

TEST_F(Tcam, TheEccRewriteRestoresAPlaneAndKeepsTheRowInService)
{
    ASSERT_EQ(add_l2(kBlock160, 6, 0xC0FFEE, 0xFFFFFF, 55), 0);
    const tide_sim_tcam_row good = _row(kBlock160, 6);
    const u32 address = kBlock160 | 6 << 8;
    for (u32 type : {CSL_TCAM_KEY, CSL_TCAM_MASK, CSL_TCAM_AD}) {
        SCOPED_TRACE(type);
        tide_sim_tcam_row bad = good;
        (type == CSL_TCAM_KEY ? bad.data : type == CSL_TCAM_MASK ? bad.care : bad.action)[1] ^= 0x00F0F000;
        ASSERT_EQ(tide_sim_tcam_row_set(0, kBlock160, 6, &bad), 0);
        ASSERT_EQ(csl_reef_tcam_tab_rewrite(0, type, address), 0);
        const tide_sim_tcam_row now = _row(kBlock160, 6);
        EXPECT_EQ(memcmp(&now, &good, sizeof(now)), 0);
    }
    // A deleted row stays out of service.
    ASSERT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_del(0, kBlock160, 6), 0);
    ASSERT_EQ(csl_reef_tcam_tab_rewrite(0, CSL_TCAM_KEY, address), 0);
    EXPECT_EQ(_row(kBlock160, 6).valid, 0u);

    EXPECT_EQ(csl_reef_tcam_tab_rewrite(0, CSL_TCAM_KEY, 16), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("Wrong block id 16, tcam rewrite failed!"));
    EXPECT_EQ(csl_reef_tcam_tab_rewrite(0, CSL_TCAM_KEY, kBlock160 | 128 << 8), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("index_in_block 128, tcam rewrite failed!"));
    EXPECT_EQ(csl_reef_tcam_tab_rewrite(0, 3, address), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_tab_rewrite(0, CSL_TCAM_KEY, 0), SHR_E_CONFIG); // block 0 has mode 0
    EXPECT_TRUE(Capture::has("Block id 0, mode 0"));
}

TEST_F(Tcam, AStalledEngineFailsEachOperationAndChangesNothingOfTheCaller)
{
    ASSERT_EQ(add_l2(kBlock160, 1, 0x77, 0xFF, 7), 0);
    const u32 row = kBlock160 * 128 + 1;
    std::vector<u8> cache(g_reef_tcam_tab_cache_data[0] + row * 40, g_reef_tcam_tab_cache_data[0] + row * 40 + 40);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_TCAM, 1), 0);

    EXPECT_EQ(add_l2(kBlock160, 1, 0x88, 0xFF, 8), SHR_E_FAIL);
    EXPECT_EQ(std::vector<u8>(g_reef_tcam_tab_cache_data[0] + row * 40, g_reef_tcam_tab_cache_data[0] + row * 40 + 40),
              cache);
    u8 data[40];
    memset(data, 0x5C, sizeof(data));
    u32 valid = 0x5C;
    EXPECT_EQ(csl_reef_tcam_key_mask_ad_get(0, CSL_TCAM_KEY, kBlock160, 1, data, 160, &valid), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("tcam read opertion timeout"));
    EXPECT_EQ(std::vector<u8>(data, data + 40), std::vector<u8>(40, 0x5C));
    EXPECT_EQ(valid, 0x5Cu);
    cib_iacl_tcam_iacl_160_l2_t e{};
    memset(&e, 0x5C, sizeof(e));
    const cib_iacl_tcam_iacl_160_l2_t before = e;
    EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_get(0, kBlock160, 1, &e), SHR_E_TIMEOUT);
    EXPECT_EQ(memcmp(&e, &before, sizeof(e)), 0);
    u32 block = 0x5C, index = 0x5C;
    EXPECT_EQ(search_l2(0x77, 0xFFFF, &block, &index), SHR_E_TIMEOUT);
    EXPECT_EQ(block, 0x5Cu);
    EXPECT_EQ(_search_en(), 0u);
    EXPECT_EQ(csl_reef_tcam_tab_hw_init(0), SHR_E_FAIL);

    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_TCAM, 0), 0);
    EXPECT_EQ(csl_reef_tcam_tab_hw_init(0), 0);
}

TEST_F(Tcam, BadInputIsRefusedWithItsLineAndWritesNothing)
{
    tide_sim_write_log_clear(0);
    const csl_tcam_tab_name_id *row = nullptr;
    EXPECT_EQ(csl_reef_tcam_get_tab_name_id(0, CSL_TCAM_TAB_COUNT, &row), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("Wrong! tcam id:38!"));
    u8 key[60] = {}, mask[60] = {}, ad[12] = {};
    const csl_tcam_data d = {mask, key, ad};
    EXPECT_EQ(csl_reef_tcam_add(0, CSL_TCAM_TAB_COUNT, kBlock160, &d), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("Wrong tcam id:38!"));
    EXPECT_EQ(csl_reef_tcam_add(0, CSL_TCAM_ID_TTI_TCAM_MY_STATION_KEY, kBlock160, &d), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("ERR: the chip 0 not support the tcam named tti_tcam_my_station_key"));
    EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_480_ipv6_exp_set(0, 0, 0, nullptr), SHR_E_NOT_SUPPORT);
    const u32 l2 = CSL_TCAM_ID_IACL_TCAM_IACL_160_L2_KEY;
    EXPECT_EQ(csl_reef_tcam_add(0, l2, 16, &d), SHR_E_PARAM); // block 16 of 16
    EXPECT_EQ(csl_reef_tcam_add(0, l2, 128 << 8 | kBlock160, &d), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_add(0, l2, kBlock160, nullptr), SHR_E_PARAM);
    const csl_tcam_data no_key = {mask, nullptr, ad};
    EXPECT_EQ(csl_reef_tcam_add(0, l2, kBlock160, &no_key), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_del(0, l2, 0x80), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_set(0, kBlock160, 0, nullptr), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_get(0, 256, 0, nullptr), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_key_mask_ad_set(0, CSL_TCAM_KEY, kBlock160, 0, key, 321, 1), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("Wrong bits len(321)!!!"));
    EXPECT_EQ(csl_reef_tcam_key_mask_ad_set(0, CSL_TCAM_AD, kBlock160, 0, ad, 97, 0), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("Wrong bits len(97)!!!"));
    EXPECT_EQ(csl_reef_tcam_key_mask_ad_set(0, 3, kBlock160, 0, key, 160, 0), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_key_mask_ad_set(0, CSL_TCAM_KEY, kBlock160, 0, nullptr, 160, 0), SHR_E_PARAM);
    u32 block = 0, index = 0;
    EXPECT_EQ(csl_reef_tcam_key_mask_search(0, key, 352, 1, ad, 96, &block, &index), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_key_mask_search(0, key, 160, 0x10000, ad, 96, &block, &index), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_key_mask_search(0, key, 160, 1, ad, 96, nullptr, &index), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_tcam_key_mask_search(4, key, 160, 1, ad, 96, &block, &index), SHR_E_UNIT);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());

    u16 address = 0;
    EXPECT_EQ(csl_reef_tcam_tab_index_get(0, 4096, &address), SHR_E_FIELD_OVERFLOW);
    EXPECT_NE(Capture::output().find("ERR: addr must less than 4096"), std::string::npos);
    ASSERT_EQ(csl_reef_tcam_tab_index_get(0, 0x0F7F, &address), 0);
    EXPECT_EQ(address, 0x7F0F); // block 15 in the low byte, index 127 in the high byte
    u32 id = 0;
    EXPECT_EQ(csl_reef_tcam_tab_id_get(0, "no_such_key", &id), SHR_E_NOT_FOUND);
    EXPECT_TRUE(Capture::has("no tcam tab named no_such_key"));
    ASSERT_EQ(csl_reef_tcam_tab_id_get(0, "CIB_IACL_TCAM_IACL_160_L2_KEY", &id), 0);
    EXPECT_EQ(id, l2);
    EXPECT_EQ(csl_reef_tcam_tab_id_get(0, nullptr, &id), SHR_E_PARAM);
}

TEST_F(Tcam, TheRamTestPassesLeavesEveryRowEmptyAndFindsAStuckBit)
{
    ASSERT_EQ(add_l2(kBlock160, 0, 0x1, 0x1, 1), 0);
    char report[4096] = {};
    ASSERT_EQ(csl_reef_ram_bist_tcam_test(0, 1, report, sizeof(report)), 0) << report;
    EXPECT_NE(std::string(report).find("Ram bist is testing tcam done!"), std::string::npos);
    const tide_sim_tcam_row r = _row(kBlock160, 0);
    EXPECT_EQ(r.valid, 0u);
    EXPECT_EQ(r.data[0] | r.care[0] | r.action[0], 0u);

    // Bit 31 of the highest data register sticks at 1: the pattern of zeros
    // fails in the first row tested, its care plane first.
    const u32 d9 = atolreef_cib_acl_core_tcam_op_d9_reg.addr[0];
    ASSERT_EQ(tide_sim_stuck_bit_set(0, 4, d9, 31, 1), 0);
    EXPECT_EQ(csl_reef_ram_bist_tcam_test(0, 1, report, sizeof(report)), SHR_E_FAIL);
    EXPECT_NE(std::string(report).find("Ram bist is testing tcam mask (block:0  index:0) failed!"), std::string::npos)
        << report;
    tide_sim_stuck_bits_clear(0);
}

TEST_F(Tcam, TheDumpOfEveryBlockShowsTheRowsInUse)
{
    ASSERT_EQ(add_l2(kBlock160, 5, 0xBEEF, 0xFFFF, 3), 0);
    Capture::clear();
    ASSERT_EQ(csl_reef_tcam_tab_dump_all(0, 0, 1), 0);
    const std::string out = Capture::output();
    EXPECT_NE(out.find("tcam block 1: 128 rows of 160 bits"), std::string::npos) << out;
    EXPECT_NE(out.find("  5 valid 1"), std::string::npos) << out;
    EXPECT_EQ(out.find("  4 valid"), std::string::npos) << out;
}

TEST_F(Tcam, TheChipClearsTheTcamAtBringUp)
{
    tide_sim_tcam_row r{};
    r.valid = 1;
    r.data[0] = 5;
    ASSERT_EQ(tide_sim_tcam_row_set(0, 7, 7, &r), 0);
    down_chip(0);
    // Without the hard reset, only the TCAM's own clearing empties it.
    ASSERT_EQ(shr_property_set(0, "chip_lsw_hw_reset", "0"), 0);
    up_chip(0);
    EXPECT_EQ(_row(7, 7).valid, 0u);
    u32 done = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, atolreef_cib_acl_core_tcam_init_done_reg.addr[0], &done), 0);
    EXPECT_EQ(done, 0xFFFFu);
}

int g_allocs_left;

void *_failing_malloc(size_t size)
{
    return g_allocs_left-- > 0 ? std::malloc(size) : nullptr;
}

TEST_F(Tcam, ASoftInitThatRunsOutOfMemoryGivesBackWhatItTook)
{
    ASSERT_EQ(csl_reef_tcam_tab_soft_deinit(0), 0);
    // The lock and four caches: each of the five allocations fails once.
    for (int left = 0; left < 5; left++) {
        SCOPED_TRACE(left);
        g_allocs_left = left;
        xsal_malloc_base_func_set(_failing_malloc);
        const int rc = csl_reef_tcam_tab_soft_init(0);
        xsal_malloc_base_func_set(nullptr);
        EXPECT_EQ(rc, SHR_E_MEMORY);
        for (u8 **cache : {g_reef_tcam_tab_cache_data, g_reef_tcam_tab_cache_care, g_reef_tcam_tab_cache_ad,
                           g_reef_tcam_tab_cache_valid}) {
            EXPECT_EQ(cache[0], nullptr);
        }
        EXPECT_EQ(g_reef_tcam_tab_lock[0], nullptr);
        u8 data[20] = {};
        EXPECT_EQ(csl_reef_tcam_key_mask_ad_set(0, CSL_TCAM_KEY, kBlock160, 0, data, 160, 0), SHR_E_NOT_SUPPORT);
    }
    ASSERT_EQ(csl_reef_tcam_tab_soft_init(0), 0);
    EXPECT_EQ(add_l2(kBlock160, 0, 1, 1, 1), 0);
}

class TcamSibling : public SimChips {
protected:
    TcamSibling() : SimChips(2, 1) {}
};

TEST_F(TcamSibling, AChipWithoutTcamTablesComesUpAndRefuses)
{
    tide::test::kelpreef_identity_set(1);
    ASSERT_EQ(init_api_software_process(1, &cfg_), 0);
    EXPECT_EQ(csl_reef_tcam_tab_hw_init(1), 0); // nothing of the TCAM to program
    u8 key[60] = {}, mask[60] = {}, ad[12] = {};
    const csl_tcam_data d = {mask, key, ad};
    EXPECT_EQ(csl_reef_tcam_add(1, CSL_TCAM_ID_IACL_TCAM_IACL_160_L2_KEY, 0, &d), SHR_E_NOT_SUPPORT);
    cib_iacl_tcam_iacl_160_l2_t e{};
    EXPECT_EQ(csl_reef_cib_iacl_tcam_iacl_160_l2_set(1, 0, 0, &e), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_tcam_block_count(1), 32u);
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcam_block_mode_set(1, 0, 1), SHR_E_NOT_SUPPORT);
    csl_tcam_block_node head{};
    EXPECT_EQ(csl_reef_tcam_block_auto_alloc(1, 10, CSL_TCAM_MAP_IACL_320, &head), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(deinit_api_software_process(1), 0);
}

} // namespace
