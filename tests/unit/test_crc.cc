// CRCs: the CRC-16 and 32-bit rounds of the shared helpers, and the hash
// engine's 64-bit-input CRCs against a bit-by-bit shift register written
// here.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "csl/reef/reg_tbl/csl_reef_crc.h"
#include "shared/shr_int.h"
#include "support/fixture.h"
#include "support/wait.h"

namespace {

using Bits64 = std::array<u8, 64>;

// The engine's input: bit k of the word at entry k.
Bits64 bits_of(u64 word)
{
    Bits64 b{};
    for (u32 k = 0; k < 64; k++) {
        b[k] = static_cast<u8>((word >> k) & 1u);
    }
    return b;
}

// The shift register one bit at a time: entry 0 first, MSB-first register
// from 0, no reflection, no final inversion.
u32 ref_crc_d64(const Bits64 &bits, u32 poly)
{
    u32 crc = 0;
    for (u8 bit : bits) {
        const bool feedback = ((crc >> 31) ^ (bit != 0 ? 1u : 0u)) != 0;
        crc <<= 1;
        if (feedback) {
            crc ^= poly;
        }
    }
    return crc;
}

// 32 zero bits through the register: the value times x^32.
u32 ref_crc32_rounds(u32 value)
{
    for (int i = 0; i < 32; i++) {
        value = (value << 1) ^ ((value & 0x80000000u) != 0 ? 0x04C11DB7u : 0u);
    }
    return value;
}

u32 (*const g_types[4])(const u8 *) = {csl_reef_crc_32_d64_type0, csl_reef_crc_32_d64_type1,
                                       csl_reef_crc_32_d64_type2, csl_reef_crc_32_d64_type3};
const u32 g_polys[4] = {0x45A5C105u, 0x04C11DB7u, 0x6DB88321u, 0x1EDC6F41u};

TEST(Crc, Crc16CheckValuesAndTable)
{
    const u8 text[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(shr_crc16(0x0000, text, 9), 0xBB3D);
    EXPECT_EQ(shr_crc16(0xFFFF, text, 9), 0x4B37);
    // In pieces: the CRC so far is the seed of the rest.
    EXPECT_EQ(shr_crc16(shr_crc16(0xFFFF, text, 4), text + 4, 5), 0x4B37);
    EXPECT_EQ(shr_crc16(0x1234, text, 0), 0x1234);
    EXPECT_EQ(shr_crc16(0x1234, nullptr, 5), 0x1234);
    EXPECT_EQ(g_shr_crc16_table[0], 0x0000);
    EXPECT_EQ(g_shr_crc16_table[1], 0xCC01);
    EXPECT_EQ(g_shr_crc16_table[2], 0xD801);
    EXPECT_EQ(g_shr_crc16_table[3], 0x1400);
}

TEST(Crc, Crc32RoundsAndTheirInverse)
{
    EXPECT_EQ(shr_crc32(0), 0u);
    EXPECT_EQ(shr_crc32(1), 0x04C11DB7u);
    EXPECT_EQ(g_shr_crc32_bytetable[1], 0x04C11DB7u);
    for (u32 b = 0; b < 256; b++) {
        EXPECT_EQ(g_shr_crc32_bytetable[g_shr_crc32_bytetable_reverse_index[b]] & 0xFF, b);
    }
    TIDE_TEST_SEED(seed, 0xC3C);
    std::mt19937 rng(static_cast<std::mt19937::result_type>(seed));
    for (int i = 0; i < 100000; i++) {
        const u32 x = static_cast<u32>(rng());
        const u32 c = shr_crc32(x);
        ASSERT_EQ(c, ref_crc32_rounds(x)) << x;
        ASSERT_EQ(shr_crc32_reverse(c), x) << x;
        ASSERT_EQ(shr_crc32(shr_crc32_reverse(x)), x) << x;
    }
}

TEST(Crc, D64MatchesTheBitByBitRegister)
{
    TIDE_TEST_SEED(seed, 0xD64);
    std::mt19937_64 rng(seed);
    for (int i = 0; i < 20000; i++) {
        const Bits64 bits = bits_of(rng());
        for (u32 t = 0; t < 4; t++) {
            ASSERT_EQ(g_types[t](bits.data()), ref_crc_d64(bits, g_polys[t])) << t;
        }
    }
}

TEST(Crc, D64KnownValues)
{
    // Computed once outside the library; they pin the rule down.
    const struct {
        u64 word;
        u32 crc[4];
    } rows[] = {
        {0, {0, 0, 0, 0}},
        {1ull << 63, {0x45A5C105u, 0x04C11DB7u, 0x6DB88321u, 0x1EDC6F41u}},
        {1, {0xC0DE141Fu, 0x79005533u, 0xDDF1F69Bu, 0xE4BE3C92u}},
        {~0ull, {0x7F6BE7EAu, 0xAE006622u, 0xB236DA0Du, 0xB29FF223u}},
        {0x0123456789ABCDEFull, {0x042EFAC2u, 0x74BC9884u, 0x521B8C67u, 0x95561997u}},
        // A key of 34 bits at bit 22 and a hash id at bit 56.
        {0xA5C48D159E000000ull, {0xCA5B8563u, 0x44CF6C97u, 0xD7DA970Cu, 0x9FEE7175u}},
    };
    for (const auto &row : rows) {
        const Bits64 bits = bits_of(row.word);
        for (u32 t = 0; t < 4; t++) {
            EXPECT_EQ(g_types[t](bits.data()), row.crc[t]) << std::hex << row.word << " type " << t;
        }
    }
}

TEST(Crc, AlgorithmIdsEightToEleven)
{
    const Bits64 bits = bits_of(0x0123456789ABCDEFull);
    // The array as the engine makes it from the word's little-endian bytes.
    const u8 word[8] = {0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01};
    Bits64 made{};
    ASSERT_EQ(shr_data_to_bits_array(word, 8, made.data(), 64), 0);
    EXPECT_EQ(made, bits);
    for (u32 t = 0; t < 4; t++) {
        u32 v = 0;
        ASSERT_EQ(csl_reef_hash_get_alg_value(8 + t, bits.data(), &v), 0);
        EXPECT_EQ(v, g_types[t](bits.data()));
        EXPECT_EQ(g_csl_reef_crc_d64_poly[t], g_polys[t]);
    }
    tide::test::Capture::clear();
    shr_debug_base_printf_func_set(tide::test::Capture::log_sink);
    u32 v = 0xDEAD;
    for (u32 id : {0u, 7u, 12u, 0xFFFFFFFFu}) {
        EXPECT_EQ(csl_reef_hash_get_alg_value(id, bits.data(), &v), -4) << id;
    }
    EXPECT_EQ(v, 0xDEADu);
    EXPECT_EQ(csl_reef_hash_get_alg_value(8, nullptr, &v), -4);
    EXPECT_EQ(csl_reef_hash_get_alg_value(8, bits.data(), nullptr), -4);
    EXPECT_EQ(tide::test::Capture::count("is not a 64-bit CRC (8 to 11)\n"), 4u);
    shr_debug_base_printf_func_set(nullptr);
    EXPECT_EQ(csl_reef_crc_32_d64_type2(nullptr), 0u);
}

TEST(Crc, D64TakesAnyNonZeroEntryAsOne)
{
    Bits64 ones = bits_of(0x8000000000000001ull);
    Bits64 loud = ones;
    loud[0] = 0xFF;
    loud[63] = 2;
    for (u32 t = 0; t < 4; t++) {
        EXPECT_EQ(g_types[t](loud.data()), g_types[t](ones.data()));
    }
}

} // namespace
