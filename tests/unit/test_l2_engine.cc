// The driver of the MAC table's command block on the chip model: the
// register sequence and the image it writes, the insert flags, batched
// compares, bucket commands, the bounded waits on a stuck engine, the
// geometry and the whole-table memory test.
#include <gtest/gtest.h>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/auto_code/api/csl_reef_hash_table.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "support/fixture.h"
#include "support/sim_arl.h"
#include "tide/l2.h"

using tide::test::ArlImage;
using tide::test::Capture;
using tide::test::SimChips;

namespace {

constexpr u32 kCfg = 0x41C0040, kMac0 = 0x41C0050, kMac3 = 0x41C005C;

csl_l2_mac_key mac_key(u64 mac, u16 vlan)
{
    csl_l2_mac_key k{};
    k.vlanid = vlan;
    k.mac_ip = mac << 16;
    return k;
}

csl_l2_mac_ad port_ad(u16 port, bool is_static)
{
    csl_l2_mac_ad a{};
    a.stati = is_static;
    a.learn_data = port;
    return a;
}

// Every flag of the AD but the insert flags, which keep the register's
// policy.
constexpr u8 kNoFlags[CSL_L2_MAC_AD_MASK_BYTES] = {0xFF, 0x0F};

class L2Engine : public SimChips {
protected:
    L2Engine() : SimChips(1, 1) {}

    i32 add(u64 mac, u16 vlan, u16 port, bool is_static, u8 *fail, const u8 *ad_mask = kNoFlags, u8 flags = 0)
    {
        const csl_l2_mac_key k = mac_key(mac, vlan);
        csl_l2_mac_ad a = port_ad(port, is_static);
        a.replace_sta_flag = a.replace_dyn_flag = a.grap_flag = flags;
        return csl_reef_hash_l2_mac_add(0, &k, nullptr, &a, ad_mask, fail);
    }

    // The model's entry of a MAC key, by walking its table.
    static bool model_entry(u64 mac, u32 vlan, ArlImage *out)
    {
        uint32_t st = 0, dyn = 0, entries = 0;
        tide_sim_arl_count_get(0, &st, &dyn, &entries);
        for (u32 i = 0; i < entries; i++) {
            ArlImage e;
            tide_sim_arl_entry_get(0, i, e.w);
            if (e.get(117, 1) && e.get(54, 48) == mac && e.get(102, 12) == vlan) {
                *out = e;
                return true;
            }
        }
        return false;
    }

    static u32 mac0_flags()
    {
        u32 v = 0;
        EXPECT_EQ(csl_reef_reg_get_u32(0, cib_arl_cpuop_cfg_mac0, &v), 0);
        return v >> 29;
    }
};

TEST_F(L2Engine, CommandSequenceWritesTheImageAndReadsTheEntryBack)
{
    tide_sim_write_log_clear(0);
    u8 fail = 0xFF;
    // The valid bit is the driver's: the record's 0 does not matter.
    ASSERT_EQ(add(0x0A0B0C0D0E0Full, 7, 3, true, &fail), 0);
    EXPECT_EQ(fail, 0);
    const auto writes = tide::test::sim_writes(0);
    ASSERT_EQ(writes.size(), 6u);
    const u32 order[6] = {kCfg, kMac0, kMac0 + 4, kMac0 + 8, kMac3, kCfg};
    for (u32 i = 0; i < 6; i++) {
        EXPECT_EQ(writes[i].addr, order[i]) << i;
    }
    EXPECT_EQ(writes[0].value, 0u);
    EXPECT_EQ(writes[5].value, 1u << 31); // start, insert by key, nothing compared

    ArlImage want = tide::test::mac_entry(0x0A0B0C0D0E0Full, 7, true, 3);
    ArlImage got;
    ASSERT_TRUE(model_entry(0x0A0B0C0D0E0Full, 7, &got));
    EXPECT_EQ(std::vector<u32>(got.w, got.w + 4), std::vector<u32>(want.w, want.w + 4));

    // The search returns the whole entry, the hard search its AD.
    u8 key[CSL_L2_MAC_KEY_BYTES] = {};
    const csl_l2_mac_key k = mac_key(0x0A0B0C0D0E0Full, 7);
    ASSERT_EQ(csl_reef_hash_l2_mac_key_TO_data(0, &k, key, nullptr), 0);
    u8 entry[CSL_L2_MAC_ENTRY_BYTES] = {};
    ASSERT_EQ(csl_reef_hash_l2_mac_appointed_search(0, key, entry, &fail), 0);
    for (u32 w = 0; w < 4; w++) {
        const u32 word = entry[4 * w] | entry[4 * w + 1] << 8 | entry[4 * w + 2] << 16 | (u32)entry[4 * w + 3] << 24;
        EXPECT_EQ(word, want.w[w]) << w;
    }
    csl_l2_mac_ad ad{};
    ASSERT_EQ(csl_reef_hash_l2_mac_tbl_search_hard(0, &k, &ad, &fail), 0);
    EXPECT_EQ(ad.valid, 1);
    EXPECT_EQ(ad.stati, 1);
    EXPECT_EQ(ad.learn_data, 3);

    ASSERT_EQ(csl_reef_hash_l2_mac_del(0, &k, &fail), 0);
    EXPECT_EQ(csl_reef_hash_l2_mac_tbl_search_hard(0, &k, &ad, &fail), SHR_E_FAIL);
    EXPECT_EQ(fail, CSL_L2_MAC_SEARCH_MISS);
    EXPECT_EQ(csl_reef_hash_l2_mac_del(0, &k, &fail), SHR_E_FAIL);
    EXPECT_EQ(fail, CSL_L2_MAC_DELETE_MISS);
}

TEST_F(L2Engine, ConversionsRefuseWideValuesAndKeepMaskedFieldsZero)
{
    csl_l2_mac_key k = mac_key(0x112233445566ull, 4095);
    u8 data[CSL_L2_MAC_KEY_BYTES] = {};
    ASSERT_EQ(csl_reef_hash_l2_mac_key_TO_data(0, &k, data, nullptr), 0);
    csl_l2_mac_key back{};
    ASSERT_EQ(csl_reef_hash_data_TO_l2_mac_key(0, &back, data), 0);
    EXPECT_EQ(back.vlanid, 4095);
    EXPECT_EQ(back.mac_ip, k.mac_ip);
    k.vlanid = 4096;
    EXPECT_EQ(csl_reef_hash_l2_mac_key_TO_data(0, &k, data, nullptr), SHR_E_FIELD_OVERFLOW);

    csl_l2_mac_ad a = port_ad(9, true);
    a.gid = 5;
    const u8 only_stati[CSL_L2_MAC_AD_MASK_BYTES] = {1u << CSL_L2_MAC_AD_STATI, 0};
    u8 ad[CSL_L2_MAC_AD_BYTES] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(csl_reef_hash_l2_mac_ad_TO_data(0, &a, ad, only_stati), 0);
    const u8 want[CSL_L2_MAC_AD_BYTES] = {0, 0, 0, 0, 0x20, 0, 0, 0}; // stati is bit 37
    EXPECT_EQ(std::vector<u8>(ad, ad + 8), std::vector<u8>(want, want + 8));
}

TEST_F(L2Engine, InsertFlagsComeFromTheCallOrStayTheRegistersPolicy)
{
    u8 fail = 0;
    ASSERT_EQ(add(0x1, 1, 1, true, &fail), 0);
    // An existing static key without the static replace flag: refused, the
    // entry stands.
    EXPECT_EQ(add(0x1, 1, 2, true, &fail), SHR_E_FAIL);
    EXPECT_EQ(fail, CSL_L2_MAC_COVER_FAILED);
    ArlImage e;
    ASSERT_TRUE(model_entry(0x1, 1, &e));
    EXPECT_EQ(e.port(), 1u);

    // Flags given by the call are written into the command word and stay
    // there as the policy of later inserts.  A success reports cause 0.
    const u8 all[CSL_L2_MAC_AD_MASK_BYTES] = {0xFF, 0xFF};
    ASSERT_EQ(add(0x1, 1, 2, true, &fail, all, 1), 0);
    EXPECT_EQ(fail, CSL_L2_MAC_OK);
    EXPECT_EQ(mac0_flags(), 7u);
    ASSERT_EQ(add(0x1, 1, 3, true, &fail), 0);
    ASSERT_TRUE(model_entry(0x1, 1, &e));
    EXPECT_EQ(e.port(), 3u);
    ASSERT_EQ(add(0x1, 1, 3, true, &fail, all, 0), SHR_E_FAIL);
    EXPECT_EQ(mac0_flags(), 0u);
}

TEST_F(L2Engine, BatchedCommandsCompareOnlyTheSelectedFields)
{
    u8 fail = 0;
    ASSERT_EQ(add(0x10, 1, 1, false, &fail), 0);
    ASSERT_EQ(add(0x11, 2, 1, false, &fail), 0);
    ASSERT_EQ(add(0x12, 1, 2, false, &fail), 0);
    ASSERT_EQ(add(0x13, 1, 1, true, &fail), 0);

    const csl_l2_mac_key k{};
    const csl_l2_mac_ad a = port_ad(1, false);
    csl_l2_mac_cmp cmp{};
    cmp.opcode = 1;
    cmp.sport = 1; // never set by the driver
    cmp.gid = 2;   // only 1 selects
    u32 count = 0;
    tide_sim_write_log_clear(0);
    ASSERT_EQ(csl_reef_hash_l2_mac_tbl_batched_search(0, &k, &a, nullptr, &cmp, &fail, &count), 0);
    EXPECT_EQ(count, 3u);
    const auto writes = tide::test::sim_writes(0);
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes.back().addr, kCfg);
    EXPECT_EQ(writes.back().value, 1u << 31 | 4u << 9 | 1u << 3);

    cmp.stati = 1;
    ASSERT_EQ(csl_reef_hash_l2_mac_tbl_batched_delete(0, &k, &a, nullptr, &cmp, &fail, &count), 0);
    EXPECT_EQ(count, 2u); // the dynamic entries on port 1
    ASSERT_EQ(csl_reef_hash_l2_mac_destory_all_entry(0, &fail, &count), 0);
    EXPECT_EQ(count, 2u);
    uint32_t st = 1, dyn = 1, entries = 0;
    tide_sim_arl_count_get(0, &st, &dyn, &entries);
    EXPECT_EQ(st + dyn, 0u);
}

// The values written to the command word since the log was cleared.
std::vector<u32> cfg_writes()
{
    std::vector<u32> out;
    for (const auto &w : tide::test::sim_writes(0)) {
        if (w.addr == kCfg) {
            out.push_back(w.value);
        }
    }
    return out;
}

TEST_F(L2Engine, BatchedAndBucketCommandsWriteTheirFieldsBeforeTheStart)
{
    u8 fail = 0;
    ASSERT_EQ(add(0x10, 1, 1, false, &fail), 0);
    const csl_l2_mac_key k{};
    const csl_l2_mac_ad a = port_ad(1, false);
    csl_l2_mac_cmp cmp{};
    cmp.opcode = 1;
    u32 count = 0;
    tide_sim_write_log_clear(0);
    ASSERT_EQ(csl_reef_hash_l2_mac_tbl_batched_search(0, &k, &a, nullptr, &cmp, &fail, &count), 0);
    EXPECT_EQ(cfg_writes(), (std::vector<u32>{0, 1u << 3, 1u << 31 | 4u << 9 | 1u << 3}));

    // Bucket 1, address 5: type in bits 29..28, address in 27..12.
    const u32 where = 1u << 28 | 5u << 12;
    u8 key[CSL_L2_MAC_KEY_BYTES] = {0x11};
    u8 ad[CSL_L2_MAC_AD_BYTES] = {0x33};
    tide_sim_write_log_clear(0);
    ASSERT_EQ(csl_reef_hash_l2_mac_appointed_hash_insert(0, key, ad, 1, 5, &fail), 0);
    EXPECT_EQ(cfg_writes(), (std::vector<u32>{0, where, where | 1u << 31 | 6u << 9}));
    tide_sim_write_log_clear(0);
    ASSERT_EQ(csl_reef_hash_l2_mac_appointed_hash_delete(0, 1, 5, &fail), 0);
    EXPECT_EQ(cfg_writes(), (std::vector<u32>{0, where, where | 1u << 31 | 5u << 9}));

    // The service's read by index: 8192 + 5 is bucket 1, address 5.
    l2_addr got{};
    tide_sim_write_log_clear(0);
    ASSERT_EQ(l2_api_addr_get_by_index(0, 8192 + 5, &got), 0);
    EXPECT_EQ(got.valid, 0u);
    EXPECT_EQ(cfg_writes(), (std::vector<u32>{0, where, where | 0x80000E00u}));

    // A command with a key only: cleared, then started.
    tide_sim_write_log_clear(0);
    ASSERT_EQ(add(0x11, 1, 1, false, &fail), 0);
    EXPECT_EQ(cfg_writes(), (std::vector<u32>{0, 1u << 31}));
}

TEST_F(L2Engine, StuckEngineTimesOutAndTheNextCommandTouchesNothing)
{
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_ARL, 1), 0);
    u8 fail = 0;
    EXPECT_EQ(add(0x20, 1, 1, true, &fail), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("get finish state timeout!"));
    tide_sim_write_log_clear(0);
    EXPECT_EQ(add(0x21, 1, 1, true, &fail), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("hash opertion timeout"));
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_ARL, 0), 0);
}

TEST_F(L2Engine, BucketCommandsAndTheGeometryOfTheLinearIndex)
{
    struct {
        u32 index, bucket, addr;
    } const cases[] = {{0, 0, 0}, {8191, 0, 8191}, {8192, 1, 0}, {10239, 1, 2047}, {10240, 2, 0}, {10243, 2, 3}};
    for (const auto &c : cases) {
        u32 b = 9, a = 9;
        ASSERT_EQ(csl_reef_hash_l2_mac_index_to_bucket(0, 8192, c.index, &b, &a), 0);
        EXPECT_EQ(b, c.bucket) << c.index;
        EXPECT_EQ(a, c.addr) << c.index;
    }
    u32 b = 0, a = 0;
    EXPECT_EQ(csl_reef_hash_l2_mac_index_to_bucket(0, 8192, 10244, &b, &a), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_l2_mac_scope_judge(0, 1, 2048), SHR_E_PARAM);
    EXPECT_NE(Capture::output().find("ERR: L2_MAC bar1 max entry index 2047"), std::string::npos);
    EXPECT_EQ(csl_reef_hash_l2_mac_scope_judge(0, 3, 0), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_l2_mac_scope_judge(0, 2, 3), 0);

    // Verbatim at an address: no hash decides where it goes.
    u8 key[CSL_L2_MAC_KEY_BYTES] = {0x11, 0x22};
    u8 ad[CSL_L2_MAC_AD_BYTES] = {0x33};
    u8 fail = 0;
    ASSERT_EQ(csl_reef_hash_l2_mac_appointed_hash_insert(0, key, ad, 1, 5, &fail), 0);
    u8 entry[CSL_L2_MAC_ENTRY_BYTES] = {};
    ASSERT_EQ(csl_reef_hash_l2_mac_appointed_hash_search(0, 1, 5, entry, &fail), 0);
    EXPECT_EQ(entry[0], 0x33);
    ArlImage e;
    tide_sim_arl_entry_get(0, 8192 + 5, e.w);
    EXPECT_EQ(e.get(38, 16), 0x2211u);
    EXPECT_EQ(csl_reef_hash_l2_mac_appointed_hash_insert(0, key, ad, 1, 5, &fail), SHR_E_FAIL);
    EXPECT_EQ(fail, CSL_L2_MAC_BARREL_FULL);
    ASSERT_EQ(csl_reef_hash_l2_mac_appointed_hash_delete(0, 1, 5, &fail), 0);
    EXPECT_EQ(csl_reef_hash_l2_mac_appointed_hash_search(0, 1, 5, entry, &fail), SHR_E_FAIL);
    EXPECT_EQ(fail, CSL_L2_MAC_SEARCH_MISS);
    EXPECT_EQ(csl_reef_hash_l2_mac_appointed_hash_delete(0, 1, 1u << 16, &fail), SHR_E_PARAM);
}

TEST_F(L2Engine, Bar0DoublesOnlyWhenBothShareSettingsSayIt)
{
    u32 bar0 = 0, bar1 = 0;
    cib_lsw_hreg_fbm_share_ram_cfg_t share{1};
    u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(csl_reef_cib_lsw_hreg_fbm_share_ram_cfg_set(0, 0, &share, all), 0);
    ASSERT_EQ(csl_reef_hash_l2_mac_scope_get(0, &bar0, &bar1), 0);
    EXPECT_EQ(bar0, 8192u);
    ASSERT_EQ(l2_api_control_set(0, L2_CTRL_HASH_MODE, 1), 0);
    cib_arl_arl_glb_cfg_t glb{};
    ASSERT_EQ(csl_reef_cib_arl_arl_glb_cfg_get(0, 0, &glb), 0);
    glb.ram_share_mode = 1;
    ASSERT_EQ(csl_reef_cib_arl_arl_glb_cfg_set(0, 0, &glb, all), 0);
    ASSERT_EQ(csl_reef_hash_l2_mac_scope_get(0, &bar0, &bar1), 0);
    EXPECT_EQ(bar0, 16384u);
    EXPECT_EQ(bar1, 2048u);
    u32 size = 0;
    ASSERT_EQ(l2_api_mac_entry_size_get(0, &size), 0);
    EXPECT_EQ(size, 18436u);
}

TEST_F(L2Engine, RamTestPassesOnTheModelAndFindsAStuckBit)
{
    u8 fail = 0;
    ASSERT_EQ(add(0x30, 1, 1, true, &fail), 0);
    char report[4096] = {};
    EXPECT_EQ(csl_reef_hash_table_test(0, 1, report, sizeof(report)), 0);
    EXPECT_STREQ(report, "Ram bist is testing l2 mac done!\n");
    uint32_t st = 1, dyn = 1, entries = 0;
    tide_sim_arl_count_get(0, &st, &dyn, &entries);
    EXPECT_EQ(st + dyn, 0u); // the test leaves the table empty

    // AD bit 0 sticks at one in the image the CPU writes.
    ASSERT_EQ(tide_sim_stuck_bit_set(0, 4, kMac3, 0, 1), 0);
    EXPECT_EQ(csl_reef_hash_table_test(0, 1, report, sizeof(report)), SHR_E_FAIL);
    EXPECT_NE(std::string(report).find("Ram bist is testing l2 mac ad bar0(0) failed!\n"), std::string::npos);
    EXPECT_NE(std::string(report).find("Ram bist is testing l2 mac ad cam(3) failed!\n"), std::string::npos);
    tide_sim_stuck_bits_clear(0);
}

TEST_F(L2Engine, LocksAndTableNames)
{
    EXPECT_EQ(csl_reef_hash_table_get_lock(0, CSL_HASH_TYPE_COUNT), SHR_E_PARAM);
    for (u32 type = 0; type < CSL_HASH_TYPE_COUNT; type++) {
        ASSERT_EQ(csl_reef_hash_table_get_lock(0, type), 0);
        ASSERT_EQ(csl_reef_hash_table_get_unlock(0, type), 0);
    }
    EXPECT_EQ(csl_reef_hash_table_get_lock(1, CSL_HASH_TYPE_L2_MAC), SHR_E_INIT); // a chip not brought up
    u8 fail = 0;
    ASSERT_EQ(add(0x40, 1, 1, true, &fail), 0);
    EXPECT_EQ(csl_reef_hash_tab_clean(0, nullptr), SHR_E_PARAM);
    EXPECT_EQ(csl_reef_hash_tab_clean(0, "l3_mfib"), SHR_E_NOT_SUPPORT);
    EXPECT_EQ(csl_reef_hash_tab_clean(0, "bogus"), SHR_E_NOT_FOUND);
    EXPECT_EQ(csl_reef_hash_tab_clean(0, "L2_Mac"), 0);
    uint32_t st = 1, dyn = 1, entries = 0;
    tide_sim_arl_count_get(0, &st, &dyn, &entries);
    EXPECT_EQ(st, 0u);
}

} // namespace
