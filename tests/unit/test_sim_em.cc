// The model's exact-match engine driven through its command block the way
// any driver would: rows written and read back, searches computed by the
// model's own bucket function and reported in the result words, the
// init, the stall knob and the peek of rows.
#include <gtest/gtest.h>

#include <array>
#include <bit>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_crc.h"
#include "hal/hal_op/hal.h"
#include "shared/shr_bits.h"
#include "support/fixture.h"
#include "support/wait.h"

using tide::test::SimChips;

namespace {

using Row = std::array<u32, TIDE_SIM_EM_ROW_WORDS>;

constexpr u32 kSlotBits = 43, kKeyBits = 34, kAdLow = 34;
constexpr u32 kWrite = 0, kRead = 3, kSearch = 6;

// A CRC rotated left by its own top five bits.
u32 rotated(u32 crc)
{
    return std::rotl(crc, static_cast<int>(crc >> 27));
}

u32 _addr(const cib_reg_info &r)
{
    return r.addr[0];
}

class SimEm : public SimChips {
protected:
    SimEm() : SimChips(1, 1) {}

    static void write(u32 addr, u32 value) { ASSERT_EQ(hal_reg_write_32(0, 4, addr, value), 0); }
    static u32 read(u32 addr)
    {
        u32 v = 0;
        EXPECT_EQ(hal_reg_read_32(0, 4, addr, &v), 0);
        return v;
    }
    static u32 info() { return read(_addr(atolreef_cib_epro_em_cfg_info_reg)); }
    static bool done() { return (info() >> 1 & 1) != 0; }

    // One command with the six data words; true when it finished.
    static bool command(u32 op, u32 row, const Row &data = Row{})
    {
        const cib_reg_info *wdat[6] = {&atolreef_cib_epro_em_cfg_wdat0_reg, &atolreef_cib_epro_em_cfg_wdat1_reg,
                                       &atolreef_cib_epro_em_cfg_wdat2_reg, &atolreef_cib_epro_em_cfg_wdat3_reg,
                                       &atolreef_cib_epro_em_cfg_wdat4_reg, &atolreef_cib_epro_em_cfg_wdat5_reg};
        for (u32 i = 0; i < 6; i++) {
            write(_addr(*wdat[i]), data[i]);
        }
        write(_addr(atolreef_cib_epro_em_cfg_addr_reg), row);
        write(_addr(atolreef_cib_epro_em_cfg_info_reg), op << 4 | 1);
        return done();
    }
    static Row result()
    {
        const cib_reg_info *rdat[6] = {&atolreef_cib_epro_em_cfg_rdat0_reg, &atolreef_cib_epro_em_cfg_rdat1_reg,
                                       &atolreef_cib_epro_em_cfg_rdat2_reg, &atolreef_cib_epro_em_cfg_rdat3_reg,
                                       &atolreef_cib_epro_em_cfg_rdat4_reg, &atolreef_cib_epro_em_cfg_rdat5_reg};
        Row r{};
        for (u32 i = 0; i < 6; i++) {
            r[i] = read(_addr(*rdat[i]));
        }
        return r;
    }
    static void set_mode(u32 bar0, u32 bar1, u32 shift)
    {
        write(_addr(atolreef_cib_epro_em_hash_mode_reg), bar0 | bar1 << 2 | shift << 4);
    }
    // A valid slot of `key` with AD row `ad` at slot `slot` of a row image.
    static void put_slot(Row &row, u32 slot, u64 key, u32 ad)
    {
        const u64 v = key | static_cast<u64>(ad) << kAdLow | 1ull << (kSlotBits - 1);
        shr_field64_set_to_data(reinterpret_cast<u8 *>(row.data()), v, static_cast<u16>(slot * kSlotBits), kSlotBits);
    }
    static Row search(u64 key, u32 hash_id)
    {
        Row d{};
        const u64 w = key | static_cast<u64>(hash_id) << kKeyBits;
        d[0] = static_cast<u32>(w);
        d[1] = static_cast<u32>(w >> 32);
        EXPECT_TRUE(command(kSearch, 0, d));
        return result();
    }
    static Row peek(u32 mem, u32 row)
    {
        Row r{};
        EXPECT_EQ(tide_sim_em_row_get(0, mem, row, r.data()), 0);
        return r;
    }
};

TEST_F(SimEm, RowsOfEachMemoryAreWrittenAndReadBackToTheirWidth)
{
    Row ones;
    ones.fill(0xFFFFFFFFu);
    struct Case {
        u32 mem, row, bits;
    };
    for (const Case c : {Case{0, 127, 172}, Case{1, 63, 172}, Case{2, 3, 43}}) {
        ASSERT_TRUE(command(kWrite + c.mem, c.row, ones));
        ASSERT_TRUE(command(kRead + c.mem, c.row));
        const Row back = result();
        // The memory keeps the row's bits and nothing above them.
        for (u32 w = 0; w < 6; w++) {
            const u32 keep = c.bits <= 32 * w ? 0 : std::min(32u, c.bits - 32 * w);
            const u32 want = keep == 32 ? 0xFFFFFFFFu : (1u << keep) - 1;
            EXPECT_EQ(back[w], want) << c.mem << " word " << w;
        }
        EXPECT_EQ(peek(c.mem, c.row), back);
        // Other rows stay empty.
        EXPECT_EQ(peek(c.mem, c.row - 1), Row{});
    }
    // Rows beyond a memory are not written and read as zeros; the peek
    // refuses them.
    ASSERT_TRUE(command(kWrite + 2, 4, ones));
    ASSERT_TRUE(command(kRead + 2, 4));
    EXPECT_EQ(result(), Row{});
    Row r{};
    EXPECT_EQ(tide_sim_em_row_get(0, 2, 4, r.data()), -4);
    EXPECT_EQ(tide_sim_em_row_get(0, 3, 0, r.data()), -4);
    EXPECT_EQ(tide_sim_em_row_get(0, 0, 0, nullptr), -20);
    EXPECT_EQ(tide_sim_em_row_get(7, 0, 0, r.data()), -3);
}

// A word with only its top bit set (hash id 0x80, key 0) hashes to the
// polynomial itself: the bucket rows are the polynomial's low bits.
TEST_F(SimEm, SearchComputesTheBucketsOfEachAlgorithmAndReportsEveryMemory)
{
    const u32 poly[4] = {0x45A5C105u, 0x04C11DB7u, 0x6DB88321u, 0x1EDC6F41u};
    for (u32 a0 = 0; a0 < 4; a0++) {
        for (u32 shift = 0; shift < 2; shift++) {
            const u32 a1 = (a0 + 1) % 4;
            set_mode(a0, a1, shift);
            u32 crc0 = poly[a0], crc1 = poly[a1];
            if (shift != 0) {
                crc0 = rotated(crc0);
                crc1 = rotated(crc1);
            }
            const u32 r0 = crc0 & 127, r1 = crc1 & 63;
            Row b0{}, b1{}, cam{};
            put_slot(b0, 2, 0, 9);
            put_slot(b1, 3, 0, 200);
            put_slot(cam, 0, 0, 77);
            ASSERT_TRUE(command(kWrite + 0, r0, b0));
            ASSERT_TRUE(command(kWrite + 1, r1, b1));
            ASSERT_TRUE(command(kWrite + 2, 1, cam));
            Row res = search(0, 0x80);
            EXPECT_EQ(res[0], 1u << 31 | 1u | 77u << 2) << a0 << shift;
            EXPECT_EQ(res[1], 1u << 31 | r0 | 9u << 7 | 2u << 15) << a0 << shift;
            EXPECT_EQ(res[2], 1u << 31 | r1 | 200u << 6 | 3u << 14) << a0 << shift;
            // Another hash id hashes elsewhere, a missing key hits nowhere
            // but where it stands.
            res = search(0, 0x40);
            EXPECT_EQ(res[0] >> 31, 1u);
            res = search(1, 0x80);
            EXPECT_EQ(res, Row{});
            for (u32 m : {0u, 1u, 2u}) {
                ASSERT_TRUE(command(kWrite + m, m == 0 ? r0 : (m == 1 ? r1 : 1)));
            }
        }
    }
}

// The model's bucket function against the hash engine's CRCs of the SDK,
// two implementations of one rule, over random words.
TEST_F(SimEm, BucketsAgreeWithTheDocumentedCrcs)
{
    TIDE_TEST_SEED(seed, 0x5eed0042);
    u64 x = seed | 1;
    for (u32 i = 0; i < 200; i++) {
        x ^= x << 13, x ^= x >> 7, x ^= x << 17;
        const u64 key = x & ((1ull << kKeyBits) - 1);
        const u32 hash_id = static_cast<u32>(x >> 56);
        const u32 a0 = i % 4, a1 = (i / 4 + a0 + 1) % 4, shift = (i >> 4) & 1;
        if (a0 == a1) {
            continue;
        }
        set_mode(a0, a1, shift);
        const u64 word = key << 22 | static_cast<u64>(hash_id) << 56;
        u8 bytes[8], bits[64];
        for (u32 b = 0; b < 8; b++) {
            bytes[b] = static_cast<u8>(word >> (8 * b));
        }
        shr_data_to_bits_array(bytes, 8, bits, 64);
        u32 crc[2] = {};
        ASSERT_EQ(csl_reef_hash_get_alg_value(8 + a0, bits, &crc[0]), 0);
        ASSERT_EQ(csl_reef_hash_get_alg_value(8 + a1, bits, &crc[1]), 0);
        for (u32 &c : crc) {
            c = shift != 0 ? rotated(c) : c;
        }
        Row b0{}, b1{};
        put_slot(b0, 0, key, 1);
        put_slot(b1, 1, key, 2);
        ASSERT_TRUE(command(kWrite + 0, crc[0] & 127, b0));
        ASSERT_TRUE(command(kWrite + 1, crc[1] & 63, b1));
        const Row res = search(key, hash_id);
        EXPECT_EQ(res[1], 1u << 31 | (crc[0] & 127) | 1u << 7) << i;
        EXPECT_EQ(res[2], 1u << 31 | (crc[1] & 63) | 2u << 6 | 1u << 14) << i;
        ASSERT_TRUE(command(kWrite + 0, crc[0] & 127));
        ASSERT_TRUE(command(kWrite + 1, crc[1] & 63));
    }
}

TEST_F(SimEm, StalledCommandsNeverFinishAndInitClearsTheMemories)
{
    Row ones;
    ones.fill(0x12345678u);
    ASSERT_TRUE(command(kWrite + 0, 5, ones));
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_EM, 1), 0);
    EXPECT_FALSE(command(kWrite + 0, 6, ones));
    EXPECT_EQ(peek(0, 6), Row{});
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_EM, 0), 0);
    EXPECT_TRUE(command(kRead + 0, 5));
    EXPECT_EQ(result()[0], 0x12345678u);

    const u32 start = _addr(atolreef_cib_epro_em_init_start_reg), init_done = _addr(atolreef_cib_epro_em_init_done_reg);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_EM_INIT, 1), 0);
    write(start, 1);
    EXPECT_EQ(read(init_done), 0u);
    EXPECT_NE(peek(0, 5), Row{});
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_EM_INIT, 0), 0);
    write(start, 1);
    EXPECT_EQ(read(init_done), 1u);
    EXPECT_EQ(peek(0, 5), Row{});

    // A hard reset of the switch core empties the memories too.
    ASSERT_TRUE(command(kWrite + 2, 0, ones));
    ASSERT_EQ(hal_reg_write_32(0, 3, 0x47200, 0), 0);
    ASSERT_EQ(hal_reg_write_32(0, 3, 0x47200, 15), 0);
    EXPECT_EQ(peek(2, 0), Row{});
    EXPECT_TRUE(done());
}

} // namespace
