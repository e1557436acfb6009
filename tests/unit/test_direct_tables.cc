// Direct tables on the chip model: access modes and the image, instances,
// refused arguments, block transfers, clearing, the refresh from the image,
// the module locks, the text forms and the RAM test.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

constexpr u32 kBar = 4;

class DirectTab : public SimChips {
protected:
    DirectTab() : SimChips(1, 1) {}

    static const cib_tab_info *tab(u32 tab_id) { return g_atolreef_tab_list[tab_id]; }

    // Address of word `word` of entry `index` of instance `inst`.
    static u32 addr(u32 tab_id, u32 index, u32 word = 0, u32 inst = 0)
    {
        const cib_tab_info *t = tab(tab_id);
        return t->addr[inst] + (index * cib_entry_words(t->width) + word) * 4;
    }

    static u32 peek(u32 a)
    {
        u32 v = 0;
        EXPECT_EQ(tide_sim_reg_peek(0, kBar, a, &v), 0);
        return v;
    }

    static void poke(u32 a, u32 v) { ASSERT_EQ(tide_sim_reg_poke(0, kBar, a, v), 0); }

    // An entry's bytes from its words.
    template <size_t N>
    static std::array<u8, N * 4> entry(const std::array<u32, N> &words)
    {
        std::array<u8, N * 4> e{};
        memcpy(e.data(), words.data(), e.size());
        return e;
    }
};

// ---- modes and the image -----------------------------------------------------------

TEST_F(DirectTab, LazyImageComesWithTheFirstWrite)
{
    u8 data[4] = {};
    EXPECT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 5, data, 4, CSL_TAB_IMAGE), -27);
    EXPECT_TRUE(Capture::has("[GET mcc_mlib]: get from cache, not enable cache!\n"));

    u8 five[4] = {0x35, 0x40, 0, 0};
    ASSERT_EQ(csl_reef_tab_set_direct(0, cib_mcc_mlib, 5, five, 4, CSL_TAB_HW_AND_IMAGE), 0);
    ASSERT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 5, data, 4, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(memcmp(data, five, 4), 0);
    u8 six[4] = {9, 9, 9, 9};
    ASSERT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 6, six, 4, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(six[0] | six[1] | six[2] | six[3], 0);

    // Mode 0 reads the hardware, not the image.
    poke(addr(cib_mcc_mlib, 5), 0x1);
    ASSERT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 5, data, 4, CSL_TAB_HW), 0);
    EXPECT_EQ(data[0], 0x1);
    ASSERT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 5, data, 4, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(data[0], 0x35);
}

TEST_F(DirectTab, ModesKeepHardwareAndImageApart)
{
    const u32 t = cib_xsec_enc_enc_sc_tbl; // 81 bits: three words
    ASSERT_EQ(csl_reef_tab_cache_enable_set(0, t, 1), 0);
    auto a = entry<3>({0x11111111, 0x22222222, 0x1ffff});
    auto b = entry<3>({0x33333333, 0x44444444, 0x5});
    auto back = entry<3>({});

    // Mode 0: hardware only; the image stays zero.
    ASSERT_EQ(csl_reef_tab_set_direct(0, t, 2, a.data(), 12, CSL_TAB_HW), 0);
    EXPECT_EQ(peek(addr(t, 2, 1)), 0x22222222u);
    ASSERT_EQ(csl_reef_tab_get_direct(0, t, 2, back.data(), 12, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(back, entry<3>({}));

    // Mode 1: image only; the hardware keeps a.  The image holds the
    // entry's 81 bits, not the rest of the last word.
    ASSERT_EQ(csl_reef_tab_set_direct(0, t, 2, b.data(), 12, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(peek(addr(t, 2, 0)), 0x11111111u);
    ASSERT_EQ(csl_reef_tab_get_direct(0, t, 2, back.data(), 12, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(back, b);

    // Mode 2: both; the hardware keeps only the entry's bits.
    ASSERT_EQ(csl_reef_tab_set_direct(0, t, 2, a.data(), 12, CSL_TAB_HW_AND_IMAGE), 0);
    ASSERT_EQ(csl_reef_tab_get_direct(0, t, 2, back.data(), 12, CSL_TAB_HW), 0);
    EXPECT_EQ(back, a);
    ASSERT_EQ(csl_reef_tab_get_direct(0, t, 2, back.data(), 12, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(back, a);

    EXPECT_EQ(csl_reef_tab_get_direct(0, t, 2, back.data(), 12, CSL_TAB_HW_AND_IMAGE), -4);
    EXPECT_TRUE(Capture::has("ERR: get from hard and cache at same time!\n"));
}

TEST_F(DirectTab, RefusedArgumentsAndBufferSizes)
{
    const u32 t = cib_mcc_mlib;
    u8 data[8] = {1, 2, 0, 0, 5, 6, 7, 8}; // bits 31:15 of an entry are reserved
    EXPECT_EQ(csl_reef_tab_set_direct(0, t, 2048, data, 4, CSL_TAB_HW), -4);
    EXPECT_TRUE(Capture::has("[mcc_mlib]: cur_index(2048) >= tab_count(2048)\n"));
    EXPECT_EQ(csl_reef_tab_set_direct(0, CIB_ID(t, 1), 0, data, 4, CSL_TAB_HW), -6);
    EXPECT_EQ(csl_reef_tab_set_direct(0, t, 0, data, 3, CSL_TAB_HW), -4);
    EXPECT_EQ(csl_reef_tab_set_direct(0, t, 0, nullptr, 4, CSL_TAB_HW), -4);
    EXPECT_EQ(csl_reef_tab_set_direct(0, 564, 0, data, 4, CSL_TAB_HW), -4);
    EXPECT_EQ(csl_reef_tab_set_direct(3, t, 0, data, 4, CSL_TAB_HW), -3);

    // A larger buffer is accepted; a read fills only the entry's bytes.
    ASSERT_EQ(csl_reef_tab_set_direct(0, t, 0, data, 8, CSL_TAB_HW), 0);
    EXPECT_EQ(peek(addr(t, 0)), 0x0201u);
    EXPECT_EQ(peek(addr(t, 1)), 0u);
    u8 back[8];
    memset(back, 0xAA, sizeof(back));
    ASSERT_EQ(csl_reef_tab_get_direct(0, t, 0, back, 8, CSL_TAB_HW), 0);
    EXPECT_EQ(back[0], 1);
    EXPECT_EQ(back[4], 0xAA);

    // An indirect table: mode 0 gives 0 and leaves the buffer.
    u8 key[24];
    memset(key, 0x5C, sizeof(key));
    EXPECT_EQ(csl_reef_tab_get_direct(0, cib_epro_em_pv_ht0_tbl, 1, key, sizeof(key), CSL_TAB_HW), 0);
    for (u8 b : key) {
        EXPECT_EQ(b, 0x5C);
    }
    EXPECT_TRUE(Capture::has("[GET epro_em_pv_ht0_tbl]: tab indirect!\n"));
}

TEST_F(DirectTab, InstancesAllAtOnceAndOneSharedImage)
{
    const u32 t = cib_mac_mib_rx_1023_512_h;
    const u32 n = static_cast<u32>(tab(t)->inst_a) * tab(t)->inst_b;
    ASSERT_GT(n, 2u);
    u8 v[4] = {0x78, 0x56, 0x34, 0x12};
    ASSERT_EQ(csl_reef_tab_set_direct(0, CIB_ID(t, CIB_ALL_INSTANCES), 0, v, 4, CSL_TAB_HW), 0);
    for (u32 k = 0; k < n; k++) {
        EXPECT_EQ(peek(addr(t, 0, 0, k)), 0x12345678u) << k;
    }
    poke(addr(t, 0, 0, 1), 0xBEEF);
    u32 word = 0;
    ASSERT_EQ(csl_reef_tab_get_direct(0, CIB_ID(t, CIB_ALL_INSTANCES), 0, reinterpret_cast<u8 *>(&word), 4,
                                      CSL_TAB_HW),
              0);
    EXPECT_EQ(word, 0x12345678u);
    ASSERT_EQ(csl_reef_tab_get_direct(0, CIB_ID(t, 1), 0, reinterpret_cast<u8 *>(&word), 4, CSL_TAB_HW), 0);
    EXPECT_EQ(word, 0xBEEFu);
    EXPECT_EQ(csl_reef_tab_set_direct(0, CIB_ID(t, n), 0, v, 4, CSL_TAB_HW), -6);

    // One image for all instances: the later write of index 0 is what it holds.
    ASSERT_EQ(csl_reef_tab_cache_enable_set(0, t, 1), 0);
    u32 one = 0x111, two = 0x222;
    ASSERT_EQ(csl_reef_tab_set_direct(0, CIB_ID(t, 1), 0, reinterpret_cast<u8 *>(&one), 4, CSL_TAB_HW_AND_IMAGE), 0);
    ASSERT_EQ(csl_reef_tab_set_direct(0, CIB_ID(t, 2), 0, reinterpret_cast<u8 *>(&two), 4, CSL_TAB_HW_AND_IMAGE), 0);
    ASSERT_EQ(csl_reef_tab_get_direct(0, CIB_ID(t, 1), 0, reinterpret_cast<u8 *>(&word), 4, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(word, 0x222u);
    EXPECT_EQ(peek(addr(t, 0, 0, 1)), 0x111u);
    EXPECT_EQ(peek(addr(t, 0, 0, 2)), 0x222u);
}

// A table that makes its image at the first write but may not be cached:
// the write goes to the hardware and no image appears.
TEST_F(DirectTab, LazyImageOfATableThatMayNotBeCached)
{
    csl_reg_tab_cm *cm = csl_reg_tab_cm_get(0);
    ASSERT_NE(cm, nullptr);
    std::vector<const cib_tab_info *> list(cm->tab_list, cm->tab_list + cm->tab_count);
    cib_tab_info no_cache = *tab(cib_mcc_mlib);
    no_cache.flags |= CIB_TAB_NO_CACHE;
    list[cib_mcc_mlib] = &no_cache;
    const cib_tab_info *const *saved = cm->tab_list;
    cm->tab_list = list.data();
    u8 data[4] = {7, 0, 0, 0};
    EXPECT_EQ(csl_reef_tab_set_direct(0, cib_mcc_mlib, 3, data, 4, CSL_TAB_HW), 0);
    EXPECT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 3, data, 4, CSL_TAB_IMAGE), -27);
    EXPECT_EQ(csl_reef_tab_set_direct(0, cib_mcc_mlib, 3, data, 4, CSL_TAB_HW_AND_IMAGE), -27);
    cm->tab_list = saved;
    EXPECT_EQ(peek(addr(cib_mcc_mlib, 3)), 7u);
}

// ---- block transfers, clearing and the refresh -----------------------------------------

TEST_F(DirectTab, BlockTransferFromHardwareOrImage)
{
    const u32 t = cib_xsec_enc_enc_profile_tbl; // 51 bits, 8 entries
    std::vector<u32> words(16);
    for (u32 i = 0; i < 16; i++) {
        words[i] = (i % 2) ? (i << 8) | 0x3 : 0xA0000000u | i;
    }
    csl_mem_buf buf{reinterpret_cast<u8 *>(words.data()), 64};
    ASSERT_EQ(csl_reef_mem_array_write_range(0, t, 0, 7, &buf), 0);
    EXPECT_EQ(peek(addr(t, 7, 1)), (15u << 8) | 0x3);
    std::vector<u32> back(16, 0);
    csl_mem_buf in{reinterpret_cast<u8 *>(back.data()), 64};
    ASSERT_EQ(csl_reef_mem_array_read_range(0, t, 0, 7, &in), 0);
    EXPECT_EQ(back, words);
    EXPECT_TRUE(Capture::has("[TAB ARRAY WRITE START]xsec_enc_enc_profile_tbl, index_min: 0, index_max: 7\n"));
    EXPECT_TRUE(Capture::has("[TAB ARRAY READ END]xsec_enc_enc_profile_tbl\n"));

    // With the image on, a write fills it and a read comes from it.
    ASSERT_EQ(csl_reef_tab_cache_enable_set(0, t, 1), 0);
    csl_mem_buf two{reinterpret_cast<u8 *>(words.data()), 16};
    ASSERT_EQ(csl_reef_mem_array_write_range(0, t, 3, 4, &two), 0);
    poke(addr(t, 3), 0);
    std::vector<u32> got(4, 0);
    csl_mem_buf out{reinterpret_cast<u8 *>(got.data()), 16};
    ASSERT_EQ(csl_reef_mem_array_read_range(0, t, 3, 4, &out), 0);
    EXPECT_EQ(got, std::vector<u32>(words.begin(), words.begin() + 4));

    // Refusals.
    EXPECT_EQ(csl_reef_mem_array_read_range(0, t, 0, 7, nullptr), -4);
    EXPECT_TRUE(Capture::has("\ngot buffer pointer null\n"));
    EXPECT_EQ(csl_reef_mem_array_read_range(0, 560, 0, 0, &in), -20);
    EXPECT_EQ(csl_reef_mem_array_read_range(0, t, 7, 8, &in), -4); // ends beyond the table
    EXPECT_EQ(csl_reef_mem_array_read_range(0, t, 5, 4, &in), -4); // backwards
    EXPECT_TRUE(Capture::has("range out of tab size\n"));
    csl_mem_buf short_buf{reinterpret_cast<u8 *>(back.data()), 63};
    EXPECT_EQ(csl_reef_mem_array_read_range(0, t, 0, 7, &short_buf), -4);
    EXPECT_EQ(csl_reef_mem_array_write_range(0, t, 0, 7, &short_buf), -4);
    EXPECT_TRUE(Capture::has("got buffer size less than 64\n"));
    csl_mem_buf no_data{nullptr, 64};
    EXPECT_EQ(csl_reef_mem_array_write_range(0, t, 0, 7, &no_data), -4);
}

TEST_F(DirectTab, ClearingReachesIndexMaxAndTheImage)
{
    const u32 t = cib_xsec_enc_enc_profile_tbl;
    ASSERT_EQ(csl_reef_tab_cache_enable_set(0, t, 1), 0);
    auto fill = [&] {
        const auto e = entry<2>({0xFFFF, 0x1});
        for (u32 i = 0; i < 8; i++) {
            ASSERT_EQ(csl_reef_tab_set_direct(0, t, i, const_cast<u8 *>(e.data()), 8, CSL_TAB_HW_AND_IMAGE), 0);
        }
    };
    auto image_word = [&](u32 i) {
        u32 w[2] = {};
        EXPECT_EQ(csl_reef_tab_get_direct(0, t, i, reinterpret_cast<u8 *>(w), 8, CSL_TAB_IMAGE), 0);
        return w[0] | w[1];
    };
    fill();
    ASSERT_EQ(csl_reef_direct_table_entry_clr(0, t, 2), 0);
    EXPECT_EQ(peek(addr(t, 2)), 0u);
    EXPECT_EQ(image_word(2), 0u);
    EXPECT_NE(peek(addr(t, 3)), 0u);

    // A range that runs past the end clears what it can and reports.
    EXPECT_NE(csl_reef_direct_table_entry_clr_range(0, t, 5, 8), 0);
    for (u32 i = 5; i < 8; i++) {
        EXPECT_EQ(peek(addr(t, i)), 0u) << i;
    }
    EXPECT_NE(peek(addr(t, 4)), 0u);

    fill();
    ASSERT_EQ(csl_reef_direct_table_entry_all_clr(0, t), 0);
    for (u32 i = 0; i < 8; i++) {
        EXPECT_EQ(peek(addr(t, i)) | peek(addr(t, i, 1)), 0u) << i;
        EXPECT_EQ(image_word(i), 0u) << i;
    }
    EXPECT_EQ(csl_reef_direct_table_entry_clr(0, 560, 0), -4);
}

TEST_F(DirectTab, RewriteRestoresCorruptedRowsFromTheImage)
{
    const u32 t = cib_xsec_enc_enc_sc_tbl;
    ASSERT_EQ(csl_reef_tab_cache_enable_set(0, t, 1), 0);
    const auto e = entry<3>({0xCAFEF00D, 0x12345678, 0x1});
    for (u32 i = 0; i < 64; i++) {
        ASSERT_EQ(csl_reef_tab_set_direct(0, t, i, const_cast<u8 *>(e.data()), 12, CSL_TAB_HW_AND_IMAGE), 0);
    }
    poke(addr(t, 9, 1), 0xDEAD);
    ASSERT_EQ(csl_reef_direct_table_rewrite(0, t, 9), 0);
    EXPECT_EQ(peek(addr(t, 9, 1)), 0x12345678u);
    EXPECT_TRUE(Capture::has("Rewrite tab id:194, index:9\n"));

    // The whole table.
    poke(addr(t, 0, 0), 0);
    poke(addr(t, 63, 2), 0);
    ASSERT_EQ(csl_reef_direct_table_rewrite(0, t, CSL_TAB_REWRITE_ALL), 0);
    EXPECT_EQ(peek(addr(t, 0, 0)), 0xCAFEF00Du);
    EXPECT_EQ(peek(addr(t, 63, 2)), 0x1u);

    // Without an image: zeros, and for the whole table entry 0 only.
    ASSERT_EQ(csl_reef_tab_cache_enable_set(0, t, 0), 0);
    ASSERT_EQ(csl_reef_direct_table_rewrite(0, t, 9), 0);
    EXPECT_EQ(peek(addr(t, 9, 0)), 0u);
    ASSERT_EQ(csl_reef_direct_table_rewrite(0, t, CSL_TAB_REWRITE_ALL), 0);
    EXPECT_EQ(peek(addr(t, 0, 0)), 0u);
    EXPECT_EQ(peek(addr(t, 1, 0)), 0xCAFEF00Du);

    EXPECT_EQ(csl_reef_direct_table_rewrite(0, 560, 0), -4);
    EXPECT_TRUE(Capture::has("[TABLE INVALID]: table(560) pointer is NULL!\n"));
}

// ---- locks ------------------------------------------------------------------------------

TEST_F(DirectTab, NestedTableLockIsFreeAfterTwoUnlocks)
{
    const u32 t = cib_mcc_mlib;
    xsal_mutex_t lock = g_reef_module_tab_lock[0][g_direct_tab_id_to_module_id[t]];
    ASSERT_NE(lock, nullptr);
    auto free_elsewhere = [&] {
        bool got = false;
        std::thread other([&] {
            got = xsal_mutex_trylock(lock) == 0;
            if (got) {
                xsal_mutex_unlock(lock);
            }
        });
        other.join();
        return got;
    };
    ASSERT_EQ(csl_reef_module_tab_get_lock(0, t), 0);
    ASSERT_EQ(csl_reef_module_tab_get_lock(0, t), 0);
    // The table functions pass under the held lock.
    u8 data[4] = {};
    EXPECT_EQ(csl_reef_tab_get_direct(0, t, 0, data, 4, CSL_TAB_HW), 0);
    EXPECT_FALSE(free_elsewhere());
    ASSERT_EQ(csl_reef_module_tab_get_unlock(0, t), 0);
    EXPECT_FALSE(free_elsewhere());
    ASSERT_EQ(csl_reef_module_tab_get_unlock(0, t), 0);
    EXPECT_TRUE(free_elsewhere());
    EXPECT_EQ(csl_reef_module_tab_get_lock(0, 564), -4);
    EXPECT_EQ(csl_reef_module_tab_get_unlock(0, 564), -4);
}

// ---- text forms -------------------------------------------------------------------------

TEST_F(DirectTab, EntryAsTextAndDebugLines)
{
    u8 e[4] = {0x35, 0x40, 0, 0};
    ASSERT_EQ(csl_reef_tab_set_direct(0, cib_mcc_mlib, 4, e, 4, CSL_TAB_HW), 0);
    char text[1024];
    ASSERT_EQ(csl_reef_direct_table_tostring(0, cib_mcc_mlib, 4, text, sizeof(text)), 0);
    const std::string s = text;
    EXPECT_NE(s.find("0x : 00004035\n"), std::string::npos) << s;
    EXPECT_NE(s.find("mlib_vld                            [0014:0014] : 0x01\n"), std::string::npos) << s;
    EXPECT_NE(s.find("next_vld                            [0013:0013] : 0x00\n"), std::string::npos) << s;
    EXPECT_EQ(csl_reef_direct_table_tostring(0, cib_mcc_mlib, 2048, text, sizeof(text)), -4);
    EXPECT_EQ(csl_reef_direct_table_tostring(0, cib_mcc_mlib, 4, text, 2), -4);

    // Debug lines: words from the highest, eight to a line.
    std::vector<u32> words(10);
    for (u32 i = 0; i < 10; i++) {
        words[i] = 0x100 + i;
    }
    Capture::clear();
    const csl_table_data d{cib_epro_em_pv_ht0_tbl, 7, reinterpret_cast<const u8 *>(words.data()), 38};
    ASSERT_EQ(csl_reef_table_debug_out_data(0, &d), 0);
    EXPECT_TRUE(Capture::has("[TAB DATA] epro_em_pv_ht0_tbl(438) index:7 bytes:38\n"));
    EXPECT_TRUE(Capture::has("[TAB DATA] 0x00000109 0x00000108 0x00000107 0x00000106 0x00000105 0x00000104 "
                             "0x00000103 0x00000102\n"));
    // The last line, and a partial highest word cut to its two bytes.
    EXPECT_EQ(Capture::count("[TAB DATA] 0x00000101 0x00000100\n"), 1u);
    const csl_table_data part{cib_mcc_mlib, 0, reinterpret_cast<const u8 *>(words.data()), 6};
    ASSERT_EQ(csl_reef_table_debug_out_data(0, &part), 0);
    EXPECT_TRUE(Capture::has("[TAB DATA] 0x00000101 0x00000100\n"));
    EXPECT_EQ(csl_reef_table_debug_out_data(0, nullptr), -4);
}

// ---- RAM test ---------------------------------------------------------------------------

class RamBist : public DirectTab {
protected:
    std::string single(u32 tab_id, u32 use_sample, int expect)
    {
        std::vector<char> text(CSL_RAM_BIST_TEXT_BYTES, '\0');
        EXPECT_EQ(_csl_reef_direct_tab_test_single(0, tab_id, use_sample, text.data(), 1), expect) << tab_id;
        return text.data();
    }
};

TEST_F(RamBist, CleanModelPassesEveryTable)
{
    std::vector<char> out(CSL_RAM_BIST_TEXT_BYTES);
    ASSERT_EQ(csl_reef_direct_tab_ram_bist_test(0, 1, 1, out.data(), static_cast<u32>(out.size())), 0);
    const std::string s = out.data();
    EXPECT_NE(s.find("Ram bist is testing direct mcc_mlib done! \n"), std::string::npos);
    EXPECT_NE(s.find("Ram bist is testing direct sch_que_shap_tbl done! \n"), std::string::npos);
    EXPECT_EQ(s.find("epro_em_pv_ht0_tbl"), std::string::npos); // indirect: not tested
    EXPECT_EQ(s.find("fail"), std::string::npos) << s;
    // The tables end as zeros, and a table that makes its image at the first
    // write has it, zero as well.
    EXPECT_EQ(peek(addr(cib_mcc_mlib, 2047)), 0u);
    u8 e[4] = {1};
    ASSERT_EQ(csl_reef_tab_get_direct(0, cib_mcc_mlib, 2047, e, 4, CSL_TAB_IMAGE), 0);
    EXPECT_EQ(e[0], 0);

    // The text is cut to the caller's buffer.
    char small[40];
    ASSERT_EQ(csl_reef_direct_tab_ram_bist_test(0, 1, 1, small, sizeof(small)), 0);
    EXPECT_EQ(strlen(small), sizeof(small) - 1);
    small[0] = 'x';
    ASSERT_EQ(csl_reef_direct_tab_ram_bist_test(0, 1, 1, small, 0), 0);
    EXPECT_EQ(small[0], 'x');
    EXPECT_EQ(csl_reef_direct_tab_ram_bist_test(0, 1, 1, nullptr, 10), -20);
    EXPECT_EQ(csl_reef_direct_tab_ram_bist_test(0, 1, 0, small, sizeof(small)), -4);
}

TEST_F(RamBist, StuckBitIsReportedWithTableAndIndex)
{
    // leafid_next_ptr, bit 1 of entry 37.
    ASSERT_EQ(tide_sim_stuck_bit_set(0, kBar, addr(cib_mcc_mlib, 37), 1, 0), 0);
    std::string s = single(cib_mcc_mlib, 0, -11);
    EXPECT_NE(s.find(" ram bist test fail information:  table name: mcc_mlib   index: 37\n"
                     " write  value(hex high address  -->  low address)\n"),
              std::string::npos)
        << s;
    EXPECT_NE(s.find("write(bytes 4): 00 00 7f ff \n read(bytes 4): 00 00 7f fd \n"), std::string::npos) << s;
    EXPECT_NE(s.find("Ram bist is testing direct mcc_mlib(423) failed!\n"), std::string::npos);
    EXPECT_NE(s.find("Ram bist is testing direct mcc_mlib done! \n"), std::string::npos);
    EXPECT_EQ(s.find("index: 36\n"), std::string::npos);
    // A sample of first and last entries does not see entry 37 ...
    single(cib_mcc_mlib, 1, 0);
    // ... but sees the last one, in the test of all tables.
    ASSERT_EQ(tide_sim_stuck_bit_set(0, kBar, addr(cib_mcc_mlib, 2047), 14, 1), 0);
    std::vector<char> out(CSL_RAM_BIST_TEXT_BYTES);
    EXPECT_EQ(csl_reef_direct_tab_ram_bist_test(0, 1, 1, out.data(), static_cast<u32>(out.size())), -11);
    EXPECT_NE(std::string(out.data()).find(" table name: mcc_mlib   index: 2047\n"), std::string::npos);
}

TEST_F(RamBist, ExcludedBytesAndTablesAreNotCompared)
{
    // The key tables are written and read but not compared.
    ASSERT_EQ(tide_sim_stuck_bit_set(0, kBar, addr(cib_xsec_enc_enc_sak_tbl, 0), 3, 1), 0);
    single(cib_xsec_enc_enc_sak_tbl, 1, 0);
    // The shaper table: its first 7 bytes are left out, byte 8 counts.
    ASSERT_EQ(tide_sim_stuck_bit_set(0, kBar, addr(cib_sch_que_shap_tbl, 0, 0), 0, 0), 0);
    single(cib_sch_que_shap_tbl, 1, 0);
    ASSERT_EQ(tide_sim_stuck_bit_set(0, kBar, addr(cib_sch_que_shap_tbl, 0, 2), 0, 0), 0);
    const std::string s = single(cib_sch_que_shap_tbl, 1, -11);
    EXPECT_NE(s.find(" table name: sch_que_shap_tbl   index: 0\n"), std::string::npos) << s;
}

TEST_F(RamBist, PatternsAndReadOnlyTables)
{
    // The highest field record does not take part: pa_stat's entry gets its
    // count (35:0) set, not the reserved bits above it (63:36).
    u8 e[12];
    ASSERT_EQ(csl_reef_tab_test_data_get(0, cib_stat_pa_stat_result_tbl, CSL_BIST_ONES, e, sizeof(e)), 0);
    const u8 want[12] = {0xff, 0xff, 0xff, 0xff, 0x0f, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(memcmp(e, want, sizeof(e)), 0);
    ASSERT_EQ(csl_reef_tab_test_data_get(0, cib_stat_pa_stat_result_tbl, CSL_BIST_ZEROS, e, sizeof(e)), 0);
    EXPECT_EQ(std::count(e, e + sizeof(e), 0), 12);
    ASSERT_EQ(csl_reef_tab_test_data_get(0, cib_stat_pa_stat_result_tbl, CSL_BIST_RANDOM, e, sizeof(e)), 0);
    EXPECT_EQ(e[4] & 0xF0, 0);
    EXPECT_EQ(e[5] | e[6] | e[7] | e[8] | e[9] | e[10] | e[11], 0);
    // Random values are drawn for every call: two entries differ.
    u8 r1[12], r2[12];
    ASSERT_EQ(csl_reef_tab_test_data_get(0, cib_xsec_enc_enc_sc_tbl, CSL_BIST_RANDOM, r1, sizeof(r1)), 0);
    ASSERT_EQ(csl_reef_tab_test_data_get(0, cib_xsec_enc_enc_sc_tbl, CSL_BIST_RANDOM, r2, sizeof(r2)), 0);
    EXPECT_NE(memcmp(r1, r2, sizeof(r1)), 0);
    EXPECT_EQ(csl_reef_tab_test_data_get(0, cib_stat_pa_stat_result_tbl, 3, e, sizeof(e)), -4);

    // A table whose one field is its highest counts as read-only: it is read,
    // never written.
    u8 ro = 0;
    ASSERT_EQ(csl_reef_tab_all_ro_check(0, cib_mac_mib_rx_1023_512_h, &ro), 0);
    EXPECT_EQ(ro, 1);
    ASSERT_EQ(csl_reef_tab_all_ro_check(0, cib_mcc_mlib, &ro), 0);
    EXPECT_EQ(ro, 0);
    EXPECT_EQ(csl_reef_tab_all_ro_check(0, 560, &ro), -4);
    tide_sim_stats before{}, after{};
    tide_sim_stats_get(0, &before);
    single(cib_mac_mib_rx_1023_512_h, 0, 0);
    tide_sim_stats_get(0, &after);
    EXPECT_EQ(after.hook_writes, before.hook_writes);
    EXPECT_GT(after.hook_reads, before.hook_reads);

    std::vector<char> text(CSL_RAM_BIST_TEXT_BYTES, '\0');
    EXPECT_EQ(_csl_reef_direct_tab_test_single(0, 564, 0, text.data(), 1), -4);
    EXPECT_EQ(_csl_reef_direct_tab_test_single(0, cib_mcc_mlib, 0, text.data(), 0), -4);
}

} // namespace
