// The SerDes lanes of the model as tests look at them: a lane register's
// address on the switch core, its word, bits of a word, the model's view
// of the lane and the time the SDK has waited on a chip.
#ifndef TIDE_TEST_SERDES_LANES_H
#define TIDE_TEST_SERDES_LANES_H

#include <gtest/gtest.h>
#include <tide/sim.h>

#include <cstdint>

namespace tide::test {

// The register window the SerDes macros sit in.
constexpr uint32_t kSerdesBar = 4;

// The switch-core address of a lane register: macro base, offset, lane.
// serdes_id 0..7 sits at place 0, 1, 2, 3, 7, 6, 5, 4: macro place >> 2,
// lane place & 3.
inline uint32_t serdes_lane_addr(uint32_t serdes_id, uint32_t offset)
{
    constexpr uint32_t kPlace[] = {0, 1, 2, 3, 7, 6, 5, 4};
    constexpr uint32_t kBase[] = {0x850000, 0x870000};
    const uint32_t v = kPlace[serdes_id];
    return kBase[v >> 2] + (offset | (v & 3) << 14);
}

inline uint32_t serdes_peek(uint32_t chip, uint32_t serdes_id, uint32_t offset)
{
    uint32_t v = 0;
    EXPECT_EQ(tide_sim_reg_peek(chip, kSerdesBar, serdes_lane_addr(serdes_id, offset), &v), 0);
    return v;
}

// Bits hi:lo of a word.
inline uint32_t word_bits(uint64_t word, uint32_t hi, uint32_t lo)
{
    return static_cast<uint32_t>((word >> lo) & ((1ull << (hi - lo + 1)) - 1));
}

inline tide_sim_serdes_lane serdes_lane(uint32_t chip, uint32_t serdes_id)
{
    tide_sim_serdes_lane l{};
    EXPECT_EQ(tide_sim_serdes_lane_get(chip, serdes_id, &l), 0);
    return l;
}

inline uint64_t sim_waited(uint32_t chip)
{
    uint64_t us = 0;
    EXPECT_EQ(tide_sim_wait_get(chip, &us), 0);
    return us;
}

} // namespace tide::test

#endif // TIDE_TEST_SERDES_LANES_H
