// The model's TCAM engine driven through its register hooks the way a
// driver would, without the SDK's entry layer: left-justified data
// registers, rows by block mode, the cell that matches nothing, the
// search's enable, block resets and the done bits.
#include <gtest/gtest.h>

#include "atolreef_cib.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

const u32 kCmd0 = atolreef_cib_acl_core_tcamad_op_cmd0_reg.addr[0];
const u32 kCmd1 = atolreef_cib_acl_core_tcamad_op_cmd1_reg.addr[0];
const u32 kRr0 = atolreef_cib_acl_core_tcamad_op_rr0_reg.addr[0];
const u32 kCfg0 = atolreef_cib_acl_core_tcam_glb_cfg0_reg.addr[0];
const u32 kBbm = atolreef_cib_acl_core_tcam_op_bbm_reg.addr[0];
const u32 kSearchEn = atolreef_cib_acl_core_test_search_en_reg.addr[0];
const u32 kInitDone = atolreef_cib_acl_core_tcam_init_done_reg.addr[0];
const u32 kD0 = atolreef_cib_acl_core_tcamad_op_d0_reg.addr[0];
const u32 kD9 = atolreef_cib_acl_core_tcam_op_d9_reg.addr[0];
const u32 kRd9 = atolreef_cib_acl_core_tcam_op_rd9_reg.addr[0];
const u32 kRd2 = atolreef_cib_acl_core_tcamad_op_rd2_reg.addr[0];

constexpr u32 kDcs = 1u << 19, kVbi = 1u << 18, kVbe = 1u << 17, kAdStart = 1u << 1, kStart = 1u << 0;
constexpr u32 kRead = 0 << 2, kWrite = 1 << 2, kSearch = 2 << 2;
constexpr u32 kDone = 1, kHit = 2, kVbo = 4;

u32 _addr(u32 block, u32 index)
{
    return (block << 8 | index) << 4;
}

class SimTcam : public SimChips {
protected:
    SimTcam() : SimChips(1, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        tide_sim_sdk_init_cfg(&hooks_);
    }
    void wr(u32 addr, u32 v) { ASSERT_EQ(hooks_.reg_write(0, 4, addr, v), 0); }
    u32 rd(u32 addr)
    {
        u32 v = 0;
        EXPECT_EQ(hooks_.reg_read(0, 4, addr, &v), 0);
        return v;
    }
    // d9 (i = 0) downwards.
    void data(std::initializer_list<u32> top_first)
    {
        u32 i = 0;
        for (u32 v : top_first) {
            const u32 reg = 9 - i++;
            wr(reg >= 3 ? kD9 - 4 * (9 - reg) : kD0 + 4 * reg, v);
        }
    }
    tide_sim_tcam_row row(u32 block, u32 index)
    {
        tide_sim_tcam_row r{};
        EXPECT_EQ(tide_sim_tcam_row_get(0, block, index, &r), 0);
        return r;
    }
    sdk_init_cfg hooks_{};
};

TEST_F(SimTcam, RowsTakeTheTopBitsOfTheDataRegistersByTheirBlocksMode)
{
    wr(kCfg0, 1u << 2 | 2u << 4); // block 1: 160 bits, block 2: 320 bits
    // 160 bits: d9..d5; the top bit of d9 is bit 159 of the row.
    data({0x80000001, 0, 0, 0, 0xF0000000});
    wr(kCmd0, kWrite | kDcs | kVbe | kVbi | kStart | _addr(1, 127));
    EXPECT_EQ(rd(kRr0) & kDone, kDone);
    tide_sim_tcam_row r = row(1, 127);
    EXPECT_EQ(r.data[4], 0x80000001u);
    EXPECT_EQ(r.data[0], 0xF0000000u);
    EXPECT_EQ(r.valid, 1u);
    EXPECT_EQ(r.care[4], 0u); // the other plane is not touched

    // A row beyond the block's 64 rows of 320 bits: nothing is written and
    // it reads as zeros and invalid.
    wr(kCmd0, kWrite | kDcs | kVbe | kVbi | kStart | _addr(2, 64));
    EXPECT_EQ(row(2, 64).valid, 0u);
    wr(kCmd0, kRead | kDcs | kVbe | kStart | _addr(1, 127));
    EXPECT_EQ(rd(kRr0) & (kDone | kVbo), kDone | kVbo);
    EXPECT_EQ(rd(kRd9), 0x80000001u);
    wr(kCmd0, kRead | kDcs | kVbe | kStart | _addr(2, 64));
    EXPECT_EQ(rd(kRr0) & (kDone | kVbo), kDone);
    EXPECT_EQ(rd(kRd9), 0u);

    // The action row: d2..d0, read back from rd2..rd0.
    data({0, 0, 0, 0, 0, 0, 0, 0xAAAA5555, 0x1234, 0x5678});
    wr(kCmd0, kWrite | kAdStart | _addr(1, 127));
    EXPECT_EQ(row(1, 127).action[2], 0xAAAA5555u);
    wr(kCmd0, kRead | kAdStart | _addr(1, 127));
    EXPECT_EQ(rd(kRd2), 0xAAAA5555u);
}

TEST_F(SimTcam, TheSearchWantsItsEnableAndACellOfBothBitsMatchesNothing)
{
    wr(kCfg0, 1u << 2 | 1u << 6); // blocks 1 and 3: 160 bits
    tide_sim_tcam_row r{};
    r.valid = 1;
    r.data[4] = 0x10000000; // bit 156 must be 1, every other bit is free
    r.action[0] = 41;
    ASSERT_EQ(tide_sim_tcam_row_set(0, 3, 2, &r), 0);
    r.action[0] = 40;
    r.care[0] = r.data[0] = 1; // bit 0 can be neither
    ASSERT_EQ(tide_sim_tcam_row_set(0, 1, 0, &r), 0);

    data({0x10000000, 0, 0, 0, 0});
    wr(kBbm, 0xFFFF);
    wr(kCmd0, kSearch | kStart);
    EXPECT_EQ(rd(kRr0) & (kDone | kHit), kDone); // test_search_en is 0
    wr(kSearchEn, 1);
    wr(kCmd0, kSearch | kStart);
    const u32 rr0 = rd(kRr0);
    ASSERT_EQ(rr0 & (kDone | kHit), kDone | kHit);
    EXPECT_EQ((rr0 >> 12) & 0x1F, 3u);
    EXPECT_EQ((rr0 >> 4) & 0xFF, 2u);
    EXPECT_EQ(rd(atolreef_cib_acl_core_tcamad_op_rd0_reg.addr[0]), 41u);
    // The key's bit 156 at 0 misses.
    data({0});
    wr(kCmd0, kSearch | kStart);
    EXPECT_EQ(rd(kRr0) & kHit, 0u);
}

TEST_F(SimTcam, ResetsClearBlocksAndADoneBitFollowsUnlessTheEngineStalls)
{
    tide_sim_tcam_row r{};
    r.valid = 1;
    ASSERT_EQ(tide_sim_tcam_row_set(0, 4, 9, &r), 0);
    ASSERT_EQ(tide_sim_tcam_row_set(0, 5, 9, &r), 0);
    wr(kCmd1, 1u << 4);
    EXPECT_EQ(row(4, 9).valid, 0u);
    EXPECT_EQ(row(5, 9).valid, 1u);
    EXPECT_EQ(rd(kInitDone), 1u << 4);

    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_TCAM, 1), 0);
    wr(kCmd1, 1u << 5);
    EXPECT_EQ(rd(kInitDone), 1u << 4);
    EXPECT_EQ(row(5, 9).valid, 1u);
    // A command falls its done bit and never raises it.
    wr(kCmd0, kRead | kAdStart);
    EXPECT_EQ(rd(kRr0) & kDone, 0u);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_TCAM, 0), 0);
    wr(kCmd1, 0xFFFF);
    EXPECT_EQ(rd(kInitDone), 0xFFFFu);

    EXPECT_EQ(tide_sim_tcam_row_get(0, 16, 0, &r), -4);
    EXPECT_EQ(tide_sim_tcam_row_set(0, 0, 256, &r), -4);
    EXPECT_EQ(tide_sim_tcam_row_get(0, 0, 0, nullptr), -20);
    EXPECT_EQ(tide_sim_tcam_row_get(1, 0, 0, &r), -3);
}

} // namespace
