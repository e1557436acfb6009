// The chip model answers each register as the chip description says:
// writable bits store, read-only bits keep the chip's value, read-clear bits
// clear on a read, write-one-to-clear bits clear where a one is written.
#include <gtest/gtest.h>

#include "atolreef_cib.h"
#include "hal/hal_op/hal.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

class SimRegs : public SimChips {
protected:
    SimRegs() : SimChips(1, 1) {}

    static u32 addr_of(u32 reg_id, u32 instance = 0) { return g_atolreef_reg_list[reg_id]->addr[instance]; }
    static u32 read(u32 addr)
    {
        u32 v = 0;
        EXPECT_EQ(hal_reg_read_32(0, 4, addr, &v), 0);
        return v;
    }
};

TEST_F(SimRegs, ReadOnlyWordsKeepTheChipsValue)
{
    const u32 a = addr_of(cib_lsw_hreg_chip_version);
    EXPECT_EQ(read(a), 0x20250001u); // its reset value
    ASSERT_EQ(hal_reg_write_32(0, 4, a, 0), 0);
    EXPECT_EQ(read(a), 0x20250001u);
    // The version survives a hard reset: it is the reset value again.
    EXPECT_EQ(read(addr_of(cib_lsw_hreg_date_version)), 0x20261122u);
}

TEST_F(SimRegs, ReservedBitsReadZero)
{
    const u32 a = addr_of(cib_mcc_en_mode_cfg);
    ASSERT_EQ(hal_reg_write_32(0, 4, a, 0xFFFFFFFF), 0);
    EXPECT_EQ(read(a), 0x7FFu); // bits 31:11 are reserved
}

TEST_F(SimRegs, InterruptStatusClearsWhereOnesAreWritten)
{
    const u32 a = addr_of(cib_arl_int_sta);
    // The chip raises bits 0, 3 and 19.
    ASSERT_EQ(tide_sim_reg_poke(0, 4, a, (1u << 19) | (1u << 3) | 1u), 0);
    ASSERT_EQ(hal_reg_write_32(0, 4, a, 1u << 3), 0);
    EXPECT_EQ(read(a), (1u << 19) | 1u);
    ASSERT_EQ(hal_reg_write_32(0, 4, a, 0), 0); // zeros change nothing
    EXPECT_EQ(read(a), (1u << 19) | 1u);
}

TEST_F(SimRegs, DebugCountersClearWhenRead)
{
    const u32 a = addr_of(cib_xsec_enc_enc_rx_cnt_debug);
    ASSERT_EQ(tide_sim_reg_poke(0, 4, a, 1234), 0);
    EXPECT_EQ(read(a), 1234u);
    EXPECT_EQ(read(a), 0u);
    // A CPU write does not set a counter.
    ASSERT_EQ(hal_reg_write_32(0, 4, a, 99), 0);
    EXPECT_EQ(read(a), 0u);
}

TEST_F(SimRegs, ComplementRegistersAndPlainWords)
{
    ASSERT_EQ(hal_reg_write_32(0, 4, addr_of(cib_ipro_test_reg_n), 0x0F0F0000), 0);
    EXPECT_EQ(read(addr_of(cib_ipro_test_reg_n)), 0xF0F0FFFFu);
    // A word that no register describes is plain memory.
    ASSERT_EQ(hal_reg_write_32(0, 4, 0x00000300, 0xCAFE), 0);
    EXPECT_EQ(read(0x00000300), 0xCAFEu);
}

TEST_F(SimRegs, TableEntriesFollowTheirFields)
{
    // mcc_mlib entries have 15 bits of fields; the rest is reserved.
    const u32 base = g_atolreef_tab_list[cib_mcc_mlib]->addr[0];
    ASSERT_EQ(hal_reg_write_32(0, 4, base + 7 * 4, 0xFFFFFFFF), 0);
    EXPECT_EQ(read(base + 7 * 4), 0x7FFFu);
    // An indirect table does not answer at its address.
    const cib_tab_info *hash = g_atolreef_tab_list[cib_arl_em_mac_tbl_key];
    ASSERT_TRUE(hash->flags & 4);
    ASSERT_EQ(hal_reg_write_32(0, 4, hash->addr[0], 0x1234), 0);
    EXPECT_EQ(read(hash->addr[0]), 0u);
}

TEST_F(SimRegs, StuckBitsOverrideWrites)
{
    const u32 a = addr_of(cib_lsw_hreg_test_reg);
    ASSERT_EQ(tide_sim_stuck_bit_set(0, 4, a, 5, 1), 0);
    ASSERT_EQ(tide_sim_stuck_bit_set(0, 4, a, 0, 0), 0);
    ASSERT_EQ(hal_reg_write_32(0, 4, a, 0x1), 0);
    EXPECT_EQ(read(a), 0x20u);
    EXPECT_EQ(tide_sim_stuck_bit_set(0, 4, a, 32, 1), -4);
    ASSERT_EQ(tide_sim_stuck_bits_clear(0), 0);
    ASSERT_EQ(hal_reg_write_32(0, 4, a, 0x1), 0);
    EXPECT_EQ(read(a), 0x1u);
}

} // namespace
