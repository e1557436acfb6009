// The exact-match hash engine on the chip model: software placement
// against the model's own search, the hit, overflow, exhaustion and escape
// rules, the chip's commands and their failures, the hash id of ports and
// trunks, the records of the wrappers and the engine on a sibling chip.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_crc.h"
#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"
#include "csl/reef/reg_tbl/csl_reef_hash_tab_op.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "shared/shr_bits.h"
#include "support/fixture.h"
#include "support/wait.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

using Image = std::array<u8, 8>;
using Row = std::array<u32, TIDE_SIM_EM_ROW_WORDS>;

constexpr u32 kTabs[3] = {cib_epro_em_pv_ht0_tbl, cib_epro_em_pv_ht1_tbl, cib_epro_em_pv_cam_tbl};
constexpr u32 kDepth[3] = {128, 64, 4};
// The bits of an AD row that its fields cover; the chip keeps no others.
constexpr u64 kAdFieldBits = 0xFFull | 1ull << 16 | ((1ull << 41) - 1) << 21;

Image img(u64 v)
{
    Image i{};
    for (u32 b = 0; b < 8; b++) {
        i[b] = static_cast<u8>(v >> (8 * b));
    }
    return i;
}

// A key of the slot layout: ivid_opri, ovid, portid_trunkid, trunk_flag,
// tid from bit 0.
u64 key_of(u32 port, u32 ovid, u32 ivid, u32 trunk = 0, u32 tid = 0)
{
    return ivid | static_cast<u64>(ovid) << 12 | static_cast<u64>(port) << 24 | static_cast<u64>(trunk) << 31 |
           static_cast<u64>(tid) << 32;
}

// The bucket rows of a key as the rule of the engine gives them, computed
// here from the CRCs alone.
std::pair<u32, u32> buckets(u64 key, u32 hash_id, u32 a0 = 0, u32 a1 = 1, u32 shift = 0)
{
    const u64 word = key << 22 | static_cast<u64>(hash_id) << 56;
    u8 bytes[8], bits[64];
    for (u32 b = 0; b < 8; b++) {
        bytes[b] = static_cast<u8>(word >> (8 * b));
    }
    shr_data_to_bits_array(bytes, 8, bits, 64);
    u32 c0 = 0, c1 = 0;
    csl_reef_hash_get_alg_value(8 + a0, bits, &c0);
    csl_reef_hash_get_alg_value(8 + a1, bits, &c1);
    if (shift != 0) {
        c0 = std::rotl(c0, static_cast<int>(c0 >> 27));
        c1 = std::rotl(c1, static_cast<int>(c1 >> 27));
    }
    return {c0 & 127, c1 & 63};
}

bool same(const csl_ecib_search_result &a, const csl_ecib_search_result &b)
{
    return a.hit_type == b.hit_type && a.index == b.index && a.ad_index == b.ad_index && a.slot == b.slot;
}

class Ecib : public SimChips {
protected:
    Ecib() : SimChips(1, 1) {}

    static i32 insert(u64 key, u64 ad, u32 force = 0)
    {
        const Image k = img(key), a = img(ad);
        return csl_reef_hash_ecib_insert(0, k.data(), a.data(), force);
    }
    static i32 del(u64 key)
    {
        const Image k = img(key);
        return csl_reef_hash_ecib_delete(0, k.data());
    }
    static i32 search(u32 mode, u64 key, csl_ecib_search_result *r)
    {
        const Image k = img(key);
        return csl_reef_hash_ecib_search(0, mode, k.data(), r);
    }
    static u64 ad_row(u32 index)
    {
        Image a{};
        EXPECT_EQ(csl_reef_tab_get_direct(0, cib_epro_ecib_table, index, a.data(), 8, CSL_TAB_HW), 0);
        u64 v = 0;
        for (u32 b = 0; b < 8; b++) {
            v |= static_cast<u64>(a[b]) << (8 * b);
        }
        return v;
    }
    static u32 used()
    {
        u32 entries = 0, n = 0;
        EXPECT_EQ(csl_reef_hash_ecib_get_entry_size(0, &entries, &n, nullptr), 0);
        return n;
    }
    static void hash_opc_set(u32 port, u32 opc)
    {
        cib_epro_epat_table_t e{};
        e.hash_opc = opc;
        u64 mask[2] = {};
        mask[cib_epro_epat_table__hash_opc / 64] = 1ull << (cib_epro_epat_table__hash_opc % 64);
        ASSERT_EQ(csl_reef_cib_epro_epat_table_set(0, 0, port, &e, mask), 0);
    }
    static void trunk_set(u32 trunk, u32 vld, u32 members, u32 tp0)
    {
        cib_epro_trunk_table_t t{};
        t.vld = vld;
        t.total_member_cnt = members;
        t.tp0 = tp0;
        u64 all[2] = {~0ull, ~0ull};
        ASSERT_EQ(csl_reef_cib_epro_trunk_table_set(0, 0, trunk, &t, all), 0);
    }
    // Rows that the image and the chip hold differently.
    static u32 rows_apart()
    {
        u32 apart = 0;
        for (u32 m = 0; m < 3; m++) {
            for (u32 r = 0; r < kDepth[m]; r++) {
                Row cached{}, chip{};
                EXPECT_EQ(csl_reef_tab_get_direct(0, kTabs[m], r, reinterpret_cast<u8 *>(cached.data()), 24,
                                                  CSL_TAB_IMAGE),
                          0);
                EXPECT_EQ(tide_sim_em_row_get(0, m, r, chip.data()), 0);
                apart += cached != chip ? 1 : 0;
            }
        }
        return apart;
    }
    // Keys of port 0 (hash id 0) that share one pair of bucket rows under
    // the algorithms 0 and 1.
    static std::vector<u64> colliding(u32 count)
    {
        std::map<std::pair<u32, u32>, std::vector<u64>> by_pair;
        for (u32 i = 1;; i++) {
            const u64 key = key_of(0, i >> 12, i & 0xFFF);
            auto &keys = by_pair[buckets(key, 0)];
            keys.push_back(key);
            if (keys.size() == count) {
                return keys;
            }
        }
    }
};

// Placement by the engine and search by the model agree, for every pair of
// algorithms with and without rotation, for ports and trunks of random
// hash ids.
TEST_F(Ecib, TheChipFindsEveryKeyWhereTheSoftwarePlacedIt)
{
    TIDE_TEST_SEED(seed, 20240915);
    std::mt19937_64 rng(seed);
    u32 checked = 0;
    for (u32 a0 = 0; a0 < 4; a0++) {
        for (u32 a1 = 0; a1 < 4; a1++) {
            for (u32 shift = 0; shift < 2 && a0 != a1; shift++) {
                ASSERT_EQ(csl_reef_hash_tab_clean(0, "ecib"), 0);
                ASSERT_EQ(csl_reef_hash_alg_mode_set(0, CSL_HASH_TYPE_ECIB, a0, a1, shift), 0);
                for (u32 p = 0; p < 32; p++) {
                    hash_opc_set(p, static_cast<u32>(rng() & 0xFF));
                }
                for (u32 t = 0; t < 8; t++) {
                    trunk_set(t, 1, 1 + t % 3, static_cast<u32>(rng() % 32));
                }
                std::map<u64, csl_ecib_search_result> placed;
                while (placed.size() < 250) {
                    const u64 r = rng();
                    const bool trunk = (r & 7) == 0;
                    const u64 key = key_of(trunk ? (r >> 3) % 8 : (r >> 3) % 32, (r >> 8) & 0xFFF, (r >> 20) & 0xFFF,
                                           trunk, (r >> 32) & 3);
                    const i32 rc = insert(key, r >> 8);
                    if (rc == SHR_E_FULL) {
                        continue; // both rows and the CAM full
                    }
                    ASSERT_TRUE(rc == 0 || rc == SHR_E_HASH_CONFLICT || rc == SHR_E_EXISTS) << rc;
                    csl_ecib_search_result soft{};
                    ASSERT_EQ(search(CSL_ECIB_SEARCH_SOFT, key, &soft), 0);
                    placed[key] = soft;
                }
                for (const auto &[key, soft] : placed) {
                    csl_ecib_search_result hard{};
                    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, key, &hard), 0) << std::hex << key;
                    EXPECT_TRUE(same(hard, soft)) << std::hex << key << " alg " << a0 << a1 << shift;
                    checked++;
                }
                EXPECT_EQ(rows_apart(), 0u);
            }
        }
    }
    EXPECT_EQ(checked, 24u * 250u);
}

// A change costs one chip command per row write: an add one; a delete that
// pulls a CAM entry down three (the freed barrel row, the same row with the
// moved entry, the CAM row).
TEST_F(Ecib, EachChangedRowIsOneCommandToTheChip)
{
    const u32 info = atolreef_cib_epro_em_cfg_info_reg.addr[0];
    const u32 ad_table = atolreef_cib_epro_ecib_tablem.addr[0];
    auto commands = [&](u32 *ad_writes) {
        u32 n = 0;
        *ad_writes = 0;
        for (const tide_sim_write &w : tide::test::sim_writes(0)) {
            n += w.addr == info ? 1 : 0;
            *ad_writes += w.addr >= ad_table && w.addr < ad_table + 256 * 8 ? 1 : 0;
        }
        tide_sim_write_log_clear(0);
        return n;
    };
    const std::vector<u64> keys = colliding(9);
    for (u32 i = 0; i < 9; i++) {
        ASSERT_EQ(insert(keys[i], i), i < 8 ? 0 : SHR_E_HASH_CONFLICT);
    }
    tide_sim_stats before{}, after{};
    ASSERT_EQ(tide_sim_stats_get(0, &before), 0);
    tide_sim_write_log_clear(0);
    ASSERT_EQ(insert(key_of(7, 7, 7), 1), 0);
    u32 ad_writes = 0;
    EXPECT_EQ(commands(&ad_writes), 1u);
    EXPECT_EQ(ad_writes, 2u);
    ASSERT_EQ(tide_sim_stats_get(0, &after), 0);
    EXPECT_EQ(after.hook_writes - before.hook_writes, 10u);
    EXPECT_EQ(after.hook_reads - before.hook_reads, 6u);
    ASSERT_EQ(del(keys[1]), 0);
    EXPECT_EQ(commands(&ad_writes), 3u);
    EXPECT_EQ(ad_writes, 2u);
    // A hit changes no row.
    ASSERT_EQ(insert(keys[0], 5), SHR_E_EXISTS);
    EXPECT_EQ(commands(&ad_writes), 0u);
    EXPECT_EQ(ad_writes, 2u);
}

TEST_F(Ecib, AnExistingKeyChangesOnlyItsActionRow)
{
    const std::vector<u64> keys = colliding(9);
    for (u32 i = 0; i < 9; i++) {
        ASSERT_EQ(insert(keys[i], 0x100 + i), i < 8 ? 0 : SHR_E_HASH_CONFLICT);
    }
    // Wherever the key sits: barrel 0, barrel 1, the CAM.
    for (u32 i : {0u, 5u, 8u}) {
        csl_ecib_search_result before{}, after{};
        ASSERT_EQ(search(CSL_ECIB_SEARCH_SOFT, keys[i], &before), 0);
        const u64 action = 0xABull << 21 | 0xCD;
        EXPECT_EQ(insert(keys[i], action), SHR_E_EXISTS);
        ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, keys[i], &after), 0);
        EXPECT_TRUE(same(before, after));
        EXPECT_EQ(ad_row(after.ad_index), action);
    }
    EXPECT_EQ(used(), 9u);
    EXPECT_EQ(rows_apart(), 0u);
}

TEST_F(Ecib, FullBucketsOverflowIntoTheCamUntilItIsFull)
{
    const std::vector<u64> keys = colliding(13);
    const auto [r0, r1] = buckets(keys[0], 0);
    for (u32 i = 0; i < 12; i++) {
        const i32 want = i < 8 ? 0 : SHR_E_HASH_CONFLICT;
        ASSERT_EQ(insert(keys[i], i), want) << i;
        csl_ecib_search_result r{};
        ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, keys[i], &r), 0);
        // Barrel 0 first, then barrel 1, then the CAM, each in order.
        const u32 hit = i < 4 ? CSL_ECIB_HIT_BAR0 : (i < 8 ? CSL_ECIB_HIT_BAR1 : CSL_ECIB_HIT_CAM);
        EXPECT_EQ(r.hit_type, hit) << i;
        EXPECT_EQ(r.index, i < 4 ? r0 : (i < 8 ? r1 : i - 8)) << i;
        EXPECT_EQ(r.slot, i < 8 ? i % 4 : 0) << i;
        EXPECT_EQ(r.ad_index, i);
    }
    Capture::clear();
    EXPECT_EQ(insert(keys[12], 12), SHR_E_FULL);
    EXPECT_TRUE(Capture::has("Wrong! cam table is full!\n"));
    EXPECT_TRUE(Capture::has("Error! insert failed!!!\n"));
    csl_ecib_search_result r{};
    EXPECT_EQ(search(CSL_ECIB_SEARCH_SOFT, keys[12], &r), SHR_E_NOT_FOUND);
    EXPECT_EQ(used(), 12u);
}

TEST_F(Ecib, AForcedInsertGoesToTheCamThoughTheBucketHasRoom)
{
    const u64 key = key_of(3, 100, 200);
    ASSERT_EQ(insert(key, 7, 1), 0);
    csl_ecib_search_result r{};
    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, key, &r), 0);
    EXPECT_EQ(r.hit_type, CSL_ECIB_HIT_CAM);
    EXPECT_EQ(ad_row(r.ad_index), 7u);
}

// Deleting a barrel entry pulls the first CAM entry of that bucket down
// into the freed slot; it keeps its action row, and the others stay.
TEST_F(Ecib, DeletingABarrelEntryPullsItsBucketsCamEntryDown)
{
    const std::vector<u64> keys = colliding(12);
    for (u32 i = 0; i < 12; i++) {
        ASSERT_EQ(insert(keys[i], 0x50 + i), i < 8 ? 0 : SHR_E_HASH_CONFLICT);
    }
    csl_ecib_search_result gone{}, moved{};
    ASSERT_EQ(search(CSL_ECIB_SEARCH_SOFT, keys[2], &gone), 0);
    ASSERT_EQ(del(keys[2]), 0);
    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, keys[8], &moved), 0);
    EXPECT_EQ(moved.hit_type, CSL_ECIB_HIT_BAR0);
    EXPECT_EQ(moved.index, gone.index);
    EXPECT_EQ(moved.slot, gone.slot);
    EXPECT_EQ(moved.ad_index, 8u);
    EXPECT_EQ(ad_row(8), 0x58u);
    EXPECT_EQ(ad_row(gone.ad_index), 0u);
    Row cam0{};
    ASSERT_EQ(tide_sim_em_row_get(0, 2, 0, cam0.data()), 0);
    EXPECT_EQ(cam0, Row{});
    for (u32 i : {9u, 10u, 11u}) {
        csl_ecib_search_result r{};
        ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, keys[i], &r), 0);
        EXPECT_EQ(r.hit_type, CSL_ECIB_HIT_CAM) << i;
    }
    // The same from barrel 1; a CAM entry's delete moves nothing.
    ASSERT_EQ(del(keys[6]), 0);
    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, keys[9], &moved), 0);
    EXPECT_EQ(moved.hit_type, CSL_ECIB_HIT_BAR1);
    ASSERT_EQ(del(keys[11]), 0);
    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, keys[10], &moved), 0);
    EXPECT_EQ(moved.hit_type, CSL_ECIB_HIT_CAM);
    EXPECT_EQ(del(keys[11]), SHR_E_NOT_FOUND);
    EXPECT_EQ(used(), 9u);
    EXPECT_EQ(rows_apart(), 0u);
}

TEST_F(Ecib, TheActionTableRunsOutBeforeTheBarrels)
{
    u32 stored = 0;
    for (u32 i = 0; stored < 256; i++) {
        const i32 rc = insert(key_of(i % 32, i / 32, 7), i);
        ASSERT_TRUE(rc == 0 || rc == SHR_E_HASH_CONFLICT) << rc;
        stored++;
    }
    Capture::clear();
    EXPECT_EQ(insert(key_of(0, 4000, 8), 1), SHR_E_FULL);
    EXPECT_TRUE(Capture::has("insert failed! ad table is full!\n"));
    EXPECT_EQ(used(), 256u);
    // A freed action row is taken again.
    ASSERT_EQ(del(key_of(5, 0, 7)), 0);
    EXPECT_EQ(insert(key_of(0, 4000, 8), 1), 0);
}

TEST_F(Ecib, EqualAlgorithmsRefuseWhatNeedsTheBuckets)
{
    const u64 in_barrel = key_of(1, 2, 3), in_cam = key_of(1, 2, 4);
    ASSERT_EQ(insert(in_barrel, 1), 0);
    ASSERT_EQ(insert(in_cam, 2, 1), 0);
    ASSERT_EQ(csl_reef_hash_alg_mode_set(0, CSL_HASH_TYPE_ECIB, 2, 2, 0), 0);
    Capture::clear();
    EXPECT_EQ(insert(key_of(9, 9, 9), 3), SHR_E_CONFIG);
    EXPECT_TRUE(Capture::has("Wrong! barrel 0 and 1 algorithm is same!\n"));
    EXPECT_EQ(del(in_barrel), SHR_E_CONFIG);
    csl_ecib_search_result r{};
    EXPECT_EQ(search(CSL_ECIB_SEARCH_SOFT, in_barrel, &r), SHR_E_CONFIG);
    // The CAM is looked at first and needs no bucket; the chip's search
    // needs no software bucket either.
    EXPECT_EQ(search(CSL_ECIB_SEARCH_SOFT, in_cam, &r), 0);
    EXPECT_EQ(del(in_cam), 0);
    EXPECT_EQ(used(), 1u);
}

// A chip that does not finish a write leaves the image one row ahead of
// the chip: the image has the entry, the chip does not, and its action row
// is not taken.
TEST_F(Ecib, AStalledWriteLeavesTheImageAheadByOneRow)
{
    ASSERT_EQ(insert(key_of(1, 1, 1), 1), 0);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_EM, 1), 0);
    Capture::clear();
    EXPECT_EQ(insert(key_of(2, 2, 2), 2), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("hash write opertion timeout\n"));
    csl_ecib_search_result r{};
    EXPECT_EQ(search(CSL_ECIB_SEARCH_HARD, key_of(1, 1, 1), &r), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("hash search opertion timeout\n"));
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_EM, 0), 0);
    EXPECT_EQ(search(CSL_ECIB_SEARCH_SOFT, key_of(2, 2, 2), &r), 0);
    EXPECT_EQ(search(CSL_ECIB_SEARCH_HARD, key_of(2, 2, 2), &r), SHR_E_NOT_FOUND);
    EXPECT_EQ(rows_apart(), 1u);
    EXPECT_EQ(used(), 1u);
}

// Cache and chip agree after every step of a random run of adds, forced
// adds and deletes over keys that collide, against a reference of what
// must be stored.
TEST_F(Ecib, RandomOperationsKeepImageChipAndReferenceTogether)
{
    TIDE_TEST_SEED(seed, 77);
    std::mt19937_64 rng(seed);
    std::vector<u64> pool = colliding(14);
    for (u32 i = 0; i < 26; i++) {
        pool.push_back(key_of(static_cast<u32>(rng() % 32), static_cast<u32>(rng() & 0xFFF), i));
    }
    std::map<u64, u64> ref;
    for (u32 step = 0; step < 400; step++) {
        const u64 key = pool[rng() % pool.size()];
        const u64 ad = rng() & kAdFieldBits;
        const u32 what = static_cast<u32>(rng() % 10);
        if (what < 6) {
            const i32 rc = insert(key, ad, what == 0);
            if (ref.count(key) != 0) {
                ASSERT_EQ(rc, SHR_E_EXISTS) << step;
            } else {
                ASSERT_TRUE(rc == 0 || rc == SHR_E_HASH_CONFLICT || rc == SHR_E_FULL) << step << " " << rc;
            }
            if (rc != SHR_E_FULL) {
                ref[key] = ad;
            }
        } else {
            ASSERT_EQ(del(key), ref.erase(key) != 0 ? 0 : SHR_E_NOT_FOUND) << step;
        }
        ASSERT_EQ(rows_apart(), 0u) << step;
        ASSERT_EQ(used(), ref.size()) << step;
        for (const auto &[k, a] : ref) {
            csl_ecib_search_result soft{}, hard{};
            ASSERT_EQ(search(CSL_ECIB_SEARCH_SOFT, k, &soft), 0) << step;
            ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, k, &hard), 0) << step;
            ASSERT_TRUE(same(soft, hard)) << step;
            ASSERT_EQ(ad_row(hard.ad_index), a) << step;
        }
    }
}

TEST_F(Ecib, TheHashIdIsTheEgressPortsOrTheTrunksFirstMembers)
{
    hash_opc_set(5, 0x5A);
    const u64 by_port = key_of(5, 10, 20);
    ASSERT_EQ(insert(by_port, 1), 0);
    csl_ecib_search_result r{};
    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, by_port, &r), 0);
    EXPECT_EQ(r.index, buckets(by_port, 0x5A).first);
    // Bit 6 of the port field is not part of the port row's index.
    EXPECT_EQ(insert(key_of(5 + 64, 10, 20), 2), 0);
    ASSERT_EQ(search(CSL_ECIB_SEARCH_SOFT, key_of(5 + 64, 10, 20), &r), 0);
    EXPECT_EQ(r.index, buckets(key_of(5 + 64, 10, 20), 0x5A).first);

    trunk_set(3, 1, 2, 7);
    hash_opc_set(7, 0x21);
    const u64 by_trunk = key_of(3, 10, 20, 1);
    ASSERT_EQ(insert(by_trunk, 3), 0);
    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, by_trunk, &r), 0);
    EXPECT_EQ(r.index, buckets(by_trunk, 0x21).first);

    trunk_set(4, 1, 0, 7); // no members
    Capture::clear();
    const u64 empty_trunk = key_of(4, 10, 20, 1);
    ASSERT_EQ(insert(empty_trunk, 4), 0);
    EXPECT_TRUE(Capture::has("Not found trunkid(4) hashid, trunk table is invalid!\n"));
    ASSERT_EQ(search(CSL_ECIB_SEARCH_HARD, empty_trunk, &r), 0);
    EXPECT_EQ(r.index, buckets(empty_trunk, 0).first);

    // A port or trunk without its row in the chip is refused.
    EXPECT_EQ(insert(key_of(40, 1, 1), 5), SHR_E_PARAM);
    EXPECT_EQ(insert(key_of(9, 1, 1, 1), 5), SHR_E_PARAM);
    EXPECT_EQ(used(), 4u);
}

TEST_F(Ecib, HardwareInitClearsChipAndImagesAndSetsTheAlgorithms)
{
    ASSERT_EQ(csl_reef_hash_alg_mode_set(0, CSL_HASH_TYPE_ECIB, 3, 2, 1), 0);
    ASSERT_EQ(insert(key_of(1, 1, 1), 1), 0);
    ASSERT_EQ(insert(key_of(1, 1, 2), 1, 1), 0);
    ASSERT_EQ(csl_reef_hash_ecib_hw_init(0), 0);
    EXPECT_EQ(used(), 0u);
    EXPECT_EQ(rows_apart(), 0u);
    Row r{};
    ASSERT_EQ(tide_sim_em_row_get(0, 2, 0, r.data()), 0);
    EXPECT_EQ(r, Row{});
    u32 a0 = 9, a1 = 9, shift = 9, mode = 0;
    ASSERT_EQ(csl_reef_hash_alg_mode_get(0, CSL_HASH_TYPE_ECIB, &a0, &a1, &shift), 0);
    EXPECT_EQ(a0 * 100 + a1 * 10 + shift, 10u);
    ASSERT_EQ(csl_reef_reg_get_u32(0, cib_epro_em_hash_mode, &mode), 0);
    EXPECT_EQ(mode, 1u << 2); // barrel 1 on algorithm 1

    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_EM_INIT, 1), 0);
    Capture::clear();
    EXPECT_EQ(csl_reef_hash_ecib_hw_init(0), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("hash opertion timeout\n"));
}

TEST_F(Ecib, RangeReadsNumberPlacesFlatly)
{
    const std::vector<u64> keys = colliding(9);
    for (u32 i = 0; i < 9; i++) {
        ASSERT_EQ(insert(keys[i], 0x1000 + i), i < 8 ? 0 : SHR_E_HASH_CONFLICT);
    }
    const auto [r0, r1] = buckets(keys[0], 0);
    std::vector<ecib_entry> recs(772);
    csl_ecib_range range{0, 5000, 0, 0};
    ASSERT_EQ(csl_reef_ecib_range_get(0, &range, recs.data()), 0);
    ASSERT_EQ(range.found, 9u);
    EXPECT_EQ(range.last, 771u);
    for (u32 i = 0; i < 9; i++) {
        const u32 want = i < 4 ? r0 * 4 + i : (i < 8 ? 512 + r1 * 4 + i - 4 : 768);
        const ecib_entry *e = nullptr;
        for (u32 j = 0; j < range.found; j++) {
            e = recs[j].index == want ? &recs[j] : e;
        }
        ASSERT_NE(e, nullptr) << i;
        EXPECT_EQ(key_of(e->key.portid_trunkid, e->key.ovid, e->key.ivid_opri, e->key.trunk_flag, e->key.tid),
                  keys[i]);
        // The action 0x1000 + i: a reserved bit and the dpid.
        EXPECT_EQ(e->ad.dpid, i);
        EXPECT_EQ(e->ad.ovid, 0);
    }
    range = csl_ecib_range{r0 * 4 + 1, r0 * 4 + 2, 0, 0};
    ASSERT_EQ(csl_reef_ecib_range_get(0, &range, recs.data()), 0);
    EXPECT_EQ(range.found, 2u);
    Capture::clear();
    range = csl_ecib_range{5, 4, 0, 0};
    EXPECT_EQ(csl_reef_ecib_range_get(0, &range, recs.data()), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("input index min more than index max\n"));
    range = csl_ecib_range{772, 800, 0, 0};
    EXPECT_EQ(csl_reef_ecib_range_get(0, &range, recs.data()), SHR_E_FULL);
}

TEST_F(Ecib, CleanZeroesRowsAndFreesActionRows)
{
    ASSERT_EQ(insert(key_of(1, 1, 1), 0x77), 0);
    ASSERT_EQ(insert(key_of(1, 1, 2), 0x78, 1), 0);
    EXPECT_EQ(csl_reef_hash_ecib_clean(0, 3, 0, 0), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_clean(0, CSL_ECIB_CLEAN_CAM, 2, 4), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_clean(0, CSL_ECIB_CLEAN_BAR0, 9, 8), SHR_E_PARAM);
    ASSERT_EQ(csl_reef_hash_ecib_clean(0, CSL_ECIB_CLEAN_CAM, 0, 3), 0);
    csl_ecib_search_result r{};
    EXPECT_EQ(search(CSL_ECIB_SEARCH_HARD, key_of(1, 1, 2), &r), SHR_E_NOT_FOUND);
    EXPECT_EQ(used(), 2u); // the CAM's action row is the AD kind's to free
    ASSERT_EQ(csl_reef_hash_ecib_clean(0, CSL_ECIB_CLEAN_AD, 0, 255), 0);
    EXPECT_EQ(used(), 0u);
    EXPECT_EQ(ad_row(0), 0u);
    ASSERT_EQ(insert(key_of(1, 1, 3), 0x79), 0);
    ASSERT_EQ(csl_reef_hash_tab_clean(0, "ECIB"), 0);
    EXPECT_EQ(used(), 0u);
    EXPECT_EQ(rows_apart(), 0u);
    EXPECT_EQ(search(CSL_ECIB_SEARCH_SOFT, key_of(1, 1, 1), &r), SHR_E_NOT_FOUND);
}

TEST_F(Ecib, BadArgumentsAreRefusedAndOtherTypesAnswerByTheirKind)
{
    const Image k = img(key_of(1, 1, 1)), a = img(1);
    csl_ecib_search_result r{};
    EXPECT_EQ(csl_reef_hash_ecib_insert(0, nullptr, a.data(), 0), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_insert(0, k.data(), nullptr, 0), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_delete(0, nullptr), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_search(0, 2, k.data(), &r), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_search(0, 0, k.data(), nullptr), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_insert(4, k.data(), a.data(), 0), SHR_E_UNIT);
    u8 row[24] = {};
    EXPECT_EQ(csl_reef_hash_ecib_hard_table_read(0, CSL_ECIB_TAB_READ_BAR0, 0, row, 23), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_hard_table_read(0, CSL_ECIB_TAB_READ_BAR1, 64, row, 24), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_ecib_hard_table_write(0, CSL_ECIB_TAB_READ_CAM, 0, row, 24), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_tab_insert(0, CSL_HASH_TYPE_L3_MFIB, k.data(), a.data(), 0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_hash_tab_search(0, CSL_HASH_TYPE_VRRP_MCDP, 1, k.data(), &r), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_hash_tab_delete(0, CSL_HASH_TYPE_L2_MAC, k.data()), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_alg_mode_set(0, CSL_HASH_TYPE_L2_MAC, 0, 1, 0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_hash_alg_mode_set(0, CSL_HASH_TYPE_ECIB, 4, 1, 0), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_alg_mode_set(0, CSL_HASH_TYPE_ECIB, 0, 1, 2), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_tab_insert(0, CSL_HASH_TYPE_ECIB, k.data(), a.data(), 0), 0);
    EXPECT_EQ(used(), 1u);
}

TEST_F(Ecib, WrappersConvertTheRecordsUnderTheLock)
{
    ecib_key key{2, 0, 17, 0x123, 0x456};
    ecib_ad ad{};
    ad.vld = 1;
    ad.ovid = 0xE064; // pri 7, cfi 0, vid 100
    ad.outer_pri = 1;
    ad.vlan_opc = 9;
    ad.dpid_en = 1;
    ad.dpid = 99;
    ASSERT_EQ(csl_reef_hash_ecib_add(0, &key, nullptr, &ad, nullptr), 0);
    ecib_ad back{};
    csl_ecib_search_result r{};
    ASSERT_EQ(csl_reef_hash_ecib_tbl_search_hard(0, &key, &back, &r), 0);
    EXPECT_EQ(back.ovid, 0xE064);
    EXPECT_EQ(back.vlan_opc, 9);
    EXPECT_EQ(back.dpid, 99);
    EXPECT_EQ(back.vld, 1);
    EXPECT_EQ(ad_row(r.ad_index), 1ull << 61 | 0xE064ull << 29 | 1ull << 28 | 9ull << 21 | 1ull << 7 | 99);
    ASSERT_EQ(csl_reef_hash_ecib_tbl_search_soft(0, &key, &back, &r), 0);
    EXPECT_EQ(back.dpid, 99);

    // A zero mask bit leaves its field 0: the key without its tid is
    // another key.
    const u8 no_tid = 0x1E;
    const u8 only_vld[2] = {0x01, 0x00};
    ASSERT_EQ(csl_reef_hash_ecib_add(0, &key, &no_tid, &ad, only_vld), 0);
    ecib_key plain = key;
    plain.tid = 0;
    ASSERT_EQ(csl_reef_hash_ecib_tbl_search_soft(0, &plain, &back, &r), 0);
    EXPECT_EQ(ad_row(r.ad_index), 1ull << 61);

    ecib_key wide = key;
    wide.ovid = 0x1000;
    EXPECT_EQ(csl_reef_hash_ecib_add(0, &wide, nullptr, &ad, nullptr), SHR_E_FIELD_OVERFLOW);
    EXPECT_EQ(csl_reef_hash_ecib_del(0, &wide), SHR_E_FIELD_OVERFLOW);
    EXPECT_EQ(csl_reef_hash_ecib_add(0, nullptr, nullptr, &ad, nullptr), SHR_E_PARAM);
    EXPECT_EQ(used(), 2u);
    ASSERT_EQ(csl_reef_hash_ecib_del(0, &key), 0);
    EXPECT_EQ(csl_reef_hash_ecib_tbl_search_hard(0, &key, &back, &r), SHR_E_NOT_FOUND);
}

class EcibSibling : public SimChips {
protected:
    EcibSibling() : SimChips(1, 0) {}
};

// A chip type whose tables this build does not describe comes up without
// the engine; its calls answer cleanly.
TEST_F(EcibSibling, ASiblingWithoutTheTablesRefusesCleanly)
{
    tide::test::kelpreef_identity_set(0);
    Capture::clear();
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    EXPECT_EQ(csl_reef_hash_tab_hw_init(0), 0);
    // Left out at start with one WARN line, no error.
    const std::string line = "kelpreef: no exact-match hash table in this build\n";
    EXPECT_EQ(Capture::count(line), 1u);
    EXPECT_FALSE(Capture::has("not set up"));
    const Image k = img(1), a = img(1);
    EXPECT_EQ(csl_reef_hash_ecib_insert(0, k.data(), a.data(), 0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_hash_ecib_hw_init(0), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(Capture::count(line), 3u);
    ecib_key key{};
    ecib_ad ad{};
    Capture::clear();
    EXPECT_EQ(csl_reef_hash_ecib_add(0, &key, nullptr, &ad, nullptr), SHR_E_EMPTY);
    EXPECT_TRUE(Capture::has("ERR: tbl key bytes 5 ad bytes 8.\n"));
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

} // namespace
