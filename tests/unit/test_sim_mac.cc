// The chip model's MAC side, driven through the chip's registers as a
// driver would: the 400 MHz input clock.
#include <gtest/gtest.h>

#include "hal/hal_op/hal.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

constexpr u32 kClkCtrl = 0x47030;
constexpr u32 kClkStatus = 0x47044;
constexpr u32 kPulse = 1u << 20;
constexpr u32 kLocked = 1u << 21;

class SimMacClock : public SimChips {
protected:
    SimMacClock() : SimChips(1, 1) {}

    static u32 read3(u32 addr)
    {
        u32 v = 0;
        EXPECT_EQ(hal_reg_read_32(0, 3, addr, &v), 0);
        return v;
    }
    static void write3(u32 addr, u32 v) { ASSERT_EQ(hal_reg_write_32(0, 3, addr, v), 0); }
    // The driver's sequence: the divider, then a pulse of bit 20.
    static void pulse()
    {
        const u32 base = (read3(kClkCtrl) & ~(0x1FFu | kPulse)) | 80u;
        write3(kClkCtrl, base);
        write3(kClkCtrl, base | kPulse);
        EXPECT_EQ(read3(kClkStatus) & kLocked, 0u); // restarting
        write3(kClkCtrl, base);
    }
};

TEST_F(SimMacClock, LocksWhenThePulseEndsAndNotBefore)
{
    EXPECT_EQ(read3(kClkStatus) & kLocked, 0u);
    // Writing the divider alone starts nothing.
    write3(kClkCtrl, 80);
    EXPECT_EQ(read3(kClkStatus) & kLocked, 0u);
    pulse();
    EXPECT_NE(read3(kClkStatus) & kLocked, 0u);
    EXPECT_EQ(read3(kClkCtrl) & 0x1FFu, 80u);
}

TEST_F(SimMacClock, KnobKeepsTheClockFromLocking)
{
    ASSERT_EQ(tide_sim_clk400_never_lock_set(0, 1), 0);
    pulse();
    EXPECT_EQ(read3(kClkStatus) & kLocked, 0u);
    // Back to normal: the next pulse locks it.
    ASSERT_EQ(tide_sim_clk400_never_lock_set(0, 0), 0);
    pulse();
    EXPECT_NE(read3(kClkStatus) & kLocked, 0u);
    EXPECT_EQ(tide_sim_clk400_never_lock_set(3, 1), -3);
}

} // namespace
