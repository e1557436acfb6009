// The register access path: alignment, forced-read table, watch, fuse
// reads and the raw-address door.
#include <gtest/gtest.h>

#include "csl/common/reg_tab/csl_reg.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

class RegOps : public SimChips {
protected:
    RegOps() : SimChips(1, 1) {}
    void TearDown() override
    {
        csl_reg_cache_enable(0, 0);
        csl_reg_cache_clear(0, 1);
        csl_recode_set(0, 0, 0);
        SimChips::TearDown();
    }
};

TEST_F(RegOps, ThirtyTwoBitAccessMustBeWordAligned)
{
    Capture::clear();
    u32 v = 0;
    EXPECT_EQ(csl_reg_write32(0, 0x1002, 1), -4);
    EXPECT_EQ(csl_reg_read32(0, 0x1002, &v), -4);
    EXPECT_EQ(csl_reg_general_write32(0, 3, 0x1002, 1), -4);
    EXPECT_NE(Capture::output().find("ERR: input address must be divided by 4 !\n"), std::string::npos);
    // A 16-bit access at the same address goes through, and leaves the
    // other half of the word alone.
    ASSERT_EQ(csl_reg_write32(0, 0x1000, 0x11112222), 0);
    ASSERT_EQ(csl_reg_general_write16(0, 4, 0x1002, 0xabcd), 0);
    u16 h = 0;
    ASSERT_EQ(csl_reg_general_read16(0, 4, 0x1002, &h), 0);
    EXPECT_EQ(h, 0xabcd);
    ASSERT_EQ(csl_reg_read32(0, 0x1000, &v), 0);
    EXPECT_EQ(v, 0xabcd2222u);
    EXPECT_EQ(csl_reg_read32(0, 0x1000, nullptr), -4);
    EXPECT_TRUE(Capture::has("[REG INVALID]: reg_data is NULL!\n"));
}

TEST_F(RegOps, SixtyFourBitAccessOnAllForms)
{
    u64 v = 0;
    ASSERT_EQ(csl_reg_write64(0, 0x2000, 0x1122334455667788ull), 0);
    ASSERT_EQ(csl_reg_read64_validaddr(0, 0x2000, &v), 0);
    EXPECT_EQ(v, 0x1122334455667788ull);
    u32 lo = 0, hi = 0;
    ASSERT_EQ(csl_reg_read32(0, 0x2000, &lo), 0);
    ASSERT_EQ(csl_reg_read32(0, 0x2004, &hi), 0);
    EXPECT_EQ(lo, 0x55667788u);
    EXPECT_EQ(hi, 0x11223344u);
    ASSERT_EQ(csl_reg_general_write64(0, 0, 0x8, 42), 0);
    ASSERT_EQ(csl_reg_general_read64(0, 0, 0x8, &v), 0);
    EXPECT_EQ(v, 42u);
}

TEST_F(RegOps, ChipMustBeValidOnTheCheckedDoor)
{
    u32 v = 0;
    EXPECT_EQ(csl_reg_read32(1, 0x100, &v), -3);
    EXPECT_EQ(csl_reg_write32(4, 0x100, 1), -3);
    // The unchecked forms leave the chip to the HAL, which has no table.
    EXPECT_EQ(csl_reg_read32_validaddr(4, 0x100, &v), -7);
}

TEST_F(RegOps, ForcedReadTableAnswersThirtyTwoBitReads)
{
    ASSERT_EQ(csl_reg_write32(0, 0x40, 0x1111), 0);
    EXPECT_EQ(csl_reg_cache_update(0, 0x40, 0xdead), -27); // off
    ASSERT_EQ(csl_reg_cache_enable(0, 1), 0);
    ASSERT_EQ(csl_reg_cache_update(0, 0x40, 0xdead), 0);
    u32 v = 0;
    ASSERT_EQ(csl_reg_read32(0, 0x40, &v), 0);
    EXPECT_EQ(v, 0xdeadu);
    // Keyed by address alone, whatever the BAR.
    ASSERT_EQ(csl_reg_general_read32(0, 3, 0x40, &v), 0);
    EXPECT_EQ(v, 0xdeadu);
    // A write does not change it; the hardware got the write.
    ASSERT_EQ(csl_reg_write32(0, 0x40, 0x2222), 0);
    ASSERT_EQ(csl_reg_read32(0, 0x40, &v), 0);
    EXPECT_EQ(v, 0xdeadu);
    // Only 32-bit reads see it.
    u64 d = 0;
    ASSERT_EQ(csl_reg_read64(0, 0x40, &d), 0);
    EXPECT_EQ(static_cast<u32>(d), 0x2222u);
    // Off: the hardware again; on again: the entry is back.
    ASSERT_EQ(csl_reg_cache_enable(0, 0), 0);
    ASSERT_EQ(csl_reg_read32(0, 0x40, &v), 0);
    EXPECT_EQ(v, 0x2222u);
    ASSERT_EQ(csl_reg_cache_enable(0, 1), 0);
    ASSERT_EQ(csl_reg_read32(0, 0x40, &v), 0);
    EXPECT_EQ(v, 0xdeadu);
    // An update of the same address overwrites in place.
    ASSERT_EQ(csl_reg_cache_update(0, 0x40, 0xbeef), 0);
    ASSERT_EQ(csl_reg_read32(0, 0x40, &v), 0);
    EXPECT_EQ(v, 0xbeefu);
    // Clear with anything but 1 does nothing.
    ASSERT_EQ(csl_reg_cache_clear(0, 2), 0);
    ASSERT_EQ(csl_reg_read32(0, 0x40, &v), 0);
    EXPECT_EQ(v, 0xbeefu);
    ASSERT_EQ(csl_reg_cache_clear(0, 1), 0);
    ASSERT_EQ(csl_reg_read32(0, 0x40, &v), 0);
    EXPECT_EQ(v, 0x2222u);
}

TEST_F(RegOps, SixthAddressOfTheForcedReadTableLandsInEntryZero)
{
    ASSERT_EQ(csl_reg_cache_enable(0, 1), 0);
    for (u32 i = 0; i < 6; i++) {
        ASSERT_EQ(csl_reg_cache_update(0, 0x100 + 4 * i, 0xa0 + i), 0);
    }
    EXPECT_EQ(g_reg_cache_t[0][0].addr, 0x114u);
    u32 v = 0;
    ASSERT_EQ(csl_reg_read32(0, 0x100, &v), 0);
    EXPECT_EQ(v, 0u); // the first address is gone: the hardware answers
    ASSERT_EQ(csl_reg_read32(0, 0x114, &v), 0);
    EXPECT_EQ(v, 0xa5u);
    ASSERT_EQ(csl_reg_read32(0, 0x104, &v), 0);
    EXPECT_EQ(v, 0xa1u);
}

TEST_F(RegOps, WatchedAddressPrintsTheAccessAndTheStack)
{
    ASSERT_EQ(csl_recode_set(0, 0x80, 1), 0);
    Capture::clear();
    ASSERT_EQ(csl_reg_write32(0, 0x84, 1), 0);
    ASSERT_EQ(csl_reg_general_write32(0, 3, 0x80, 1), 0); // other BARs are not watched
    EXPECT_EQ(Capture::output(), "");
    ASSERT_EQ(csl_reg_write32(0, 0x80, 0x5a), 0);
    u32 v = 0;
    ASSERT_EQ(csl_reg_read32(0, 0x80, &v), 0);
    const std::string out = Capture::output();
    EXPECT_NE(out.find("[REG SET]bar:4  addr:0x80  reg_data:0x5a\n"), std::string::npos);
    EXPECT_NE(out.find("[REG GET]bar:4  addr:0x80  reg_data:0x5a\n"), std::string::npos);
    EXPECT_NE(out.find("backtrace() returned"), std::string::npos);
    EXPECT_EQ(csl_recode_set(2, 0x80, 1), -4);
}

TEST_F(RegOps, FuseReadsFollowTheBusType)
{
    ASSERT_EQ(tide_sim_reg_poke(0, 3, 0x39010, 0x600d), 0);
    ASSERT_EQ(tide_sim_reg_poke(0, 3, 0x34010, 0x5a5e), 0);
    u32 v = 0;
    ASSERT_EQ(csl_efuse_read32(0, 0x10, &v), 0);
    EXPECT_EQ(v, 0x600du);
    EXPECT_EQ(csl_efuse_read32(0, 0x10, nullptr), -20);
    tide_sim_identity id{};
    ASSERT_EQ(tide_sim_identity_get(0, &id), 0);
    id.bus_type = 1;
    ASSERT_EQ(tide_sim_identity_set(0, &id), 0);
    ASSERT_EQ(csl_efuse_read32(0, 0x10, &v), 0);
    EXPECT_EQ(v, 0x5a5eu);
    id.bus_type = 0;
    ASSERT_EQ(tide_sim_identity_set(0, &id), 0);
    EXPECT_EQ(csl_efuse_read32(2, 0x10, &v), -13);
}

TEST_F(RegOps, RawAddressDoor)
{
    Capture::clear();
    uint8_t data[8] = {0x44, 0x33, 0x22, 0x11, 0, 0, 0, 0};
    EXPECT_EQ(base_api_reg_set_by_addr(0, 0x102, data, 4), -4);
    EXPECT_NE(Capture::output().find("ERR: address must be divided by 4\n"), std::string::npos);
    EXPECT_EQ(base_api_reg_set_by_addr(0, 0x100, nullptr, 4), -4);
    EXPECT_EQ(base_api_reg_set_by_addr(0, 0x100, data, 3), -4);
    EXPECT_EQ(base_api_reg_get_by_addr(0, 0x100, data, 3), -4);

    // More significant bits than a register holds: a warning, and the low
    // 32 bits are written.
    data[5] = 0x01;
    Capture::clear();
    ASSERT_EQ(base_api_reg_set_by_addr(0, 0x100, data, 8), 0);
    EXPECT_NE(Capture::output().find("WARN: data bits 41 more than 32, write data 0x11223344\n"), std::string::npos);
    uint8_t back[8] = {};
    ASSERT_EQ(base_api_reg_get_by_addr(0, 0x100, back, 8), 0);
    EXPECT_EQ(back[0], 0x44);
    EXPECT_EQ(back[3], 0x11);
    EXPECT_EQ(back[4], 0x00);

    u32 v = 0;
    ASSERT_EQ(csl_reef_reg_set_u32_by_addr(0, 0x104, 77), 0);
    ASSERT_EQ(csl_reef_reg_get_u32_by_addr(0, 0x104, &v), 0);
    EXPECT_EQ(v, 77u);
}

TEST_F(RegOps, OutputOfAnyLengthReachesTheHookWhole)
{
    Capture::clear();
    const std::string text(2000, 'x');
    EXPECT_EQ(csl_output_func(0, 0, "%s|", text.c_str()), 2001);
    EXPECT_EQ(Capture::output(), text + "|");
    EXPECT_EQ(csl_output_func(0, 1, "to a file"), -11);
}

} // namespace
