// The levels of bring-up that stand so far: process, common, and the
// family levels with the hard reset.
#include <gtest/gtest.h>

#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/init/dpl_reef_init.h"
#include "hal/hal_op/hal.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

TEST(BringUp, BaseTwiceAndDeinitTwice)
{
    ASSERT_EQ(tide_sim_install(1), 0);
    Capture::clear();
    sdk_init_cfg cfg = tide::test::capture_cfg();
    ASSERT_EQ(init_api_base_software_process(&cfg), 0);
    EXPECT_EQ(shr_chip_cur_num_get(), 1u);
    EXPECT_EQ(init_api_base_software_process(nullptr), 0);
    EXPECT_TRUE(Capture::has("sdk base software was already inited!\n"));
    // The second call changed nothing: the first call's hooks are in force.
    EXPECT_EQ(shr_debug_base_printf_func_get(), tide::test::Capture::log_sink);
    EXPECT_EQ(deinit_api_base_software_process(), 0);
    EXPECT_EQ(shr_debug_base_printf_func_get(), shr_debugk);
    EXPECT_EQ(shr_debug_base_cli_printf_func_get(), xsal_printf);
    EXPECT_EQ(shr_chip_cur_num_get(), 0u);
    EXPECT_EQ(deinit_api_base_software_process(), 0); // "not inited": 0
    tide_sim_uninstall();
}

class Levels : public SimChips {
protected:
    Levels() : SimChips(2, 0) {}
};

TEST_F(Levels, WrongOrderAndWrongChips)
{
    EXPECT_EQ(init_api_software_process(4, nullptr), -3);
    EXPECT_EQ(deinit_api_software_process(4), -3);
    EXPECT_EQ(init_api_hardware_process(0), -3);
    EXPECT_EQ(deinit_api_software_process(0), -3);
}

TEST_F(Levels, FullLifeTwiceInOneProcess)
{
    for (int round = 0; round < 2; round++) {
        Capture::clear();
        ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
        EXPECT_EQ(shr_chip_valid_get(0), 1u);
        EXPECT_EQ(shr_chip_type_get(0), 3u);
        ASSERT_EQ(init_api_hardware_process(0), 0);
        const long soft = Capture::find("[SOFT-INIT:          base]............[OK]\r\n");
        const long reset = Capture::find("[CHIP-INIT:      hw reset]............[OK]\r\n");
        const long hw = Capture::find("[CHIP-INIT:          base]............[OK]\r\n");
        EXPECT_GE(soft, 0);
        EXPECT_GT(reset, soft);
        EXPECT_GT(hw, reset);
        ASSERT_EQ(deinit_api_hardware_process(0), 0);
        ASSERT_EQ(deinit_api_software_process(0), 0);
        EXPECT_TRUE(Capture::has("[CHIP-DEINIT:          base]............[OK]\r\n"));
        EXPECT_TRUE(Capture::has("[SOFT-DEINIT:          base]............[OK]\r\n"));
        EXPECT_EQ(shr_chip_valid_get(0), 0u);
        EXPECT_STREQ(shr_chip_name_get(0), "null");
    }
}

TEST_F(Levels, SecondCallsReportAlreadyInited)
{
    up_chip(1);
    Capture::clear();
    EXPECT_EQ(init_api_software_process(1, &cfg_), 0);
    EXPECT_TRUE(Capture::has("sdk common software was already inited!\n"));
    EXPECT_TRUE(Capture::has("sdk reef software was already inited!\n"));
    EXPECT_EQ(init_api_hardware_process(1), 0);
    EXPECT_TRUE(Capture::has("sdk reef hardware was already inited!\n"));
    // Deinit of hardware twice: the second is "not inited" and 0.
    EXPECT_EQ(deinit_api_hardware_process(1), 0);
    Capture::clear();
    EXPECT_EQ(deinit_api_hardware_process(1), 0);
    EXPECT_TRUE(Capture::has("sdk reef hardware was not inited!\n"));
    EXPECT_EQ(deinit_api_software_process(1), 0);
    up_[1] = false;
    EXPECT_EQ(dpl_common_soft_deinit(1), 0);
    EXPECT_TRUE(Capture::has("sdk common software was not inited!\n"));
}

TEST_F(Levels, HardResetWritesTheSequenceThenPolls)
{
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    tide_sim_stats before{};
    tide_sim_stats_get(0, &before);
    ASSERT_EQ(init_api_hardware_process(0), 0);
    std::vector<uint32_t> seq;
    for (const auto &w : tide::test::sim_writes(0)) {
        if (w.bar == 3) {
            EXPECT_EQ(w.addr, 0x47200u);
            seq.push_back(static_cast<uint32_t>(w.value));
        }
    }
    EXPECT_EQ(seq, (std::vector<uint32_t>{0, 8, 10, 11, 15}));
    tide_sim_stats after{};
    tide_sim_stats_get(0, &after);
    EXPECT_GE(after.hook_reads, before.hook_reads + 1); // the poll
    EXPECT_EQ(deinit_api_hardware_process(0), 0);
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

TEST_F(Levels, ResetThatNeverFinishesTimesOutAndUnwinds)
{
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_RESET, 1), 0);
    Capture::clear();
    tide_sim_stats before{};
    tide_sim_stats_get(0, &before);
    EXPECT_EQ(init_api_hardware_process(0), -9);
    tide_sim_stats after{};
    tide_sim_stats_get(0, &after);
    // The poll, after the two read-modify-writes that turn low power and
    // clock gating off.
    EXPECT_EQ(after.hook_reads - before.hook_reads, DPL_REEF_RESET_POLLS + 2);
    EXPECT_TRUE(Capture::has("chip hw reset opertion timeout\n"));
    EXPECT_TRUE(Capture::has("[CHIP-INIT:      hw reset]init failed!!!!!!![ret=-9]\r\n"));
    EXPECT_TRUE(Capture::has("hardware init failed! [Operation timed out]\n"));
    EXPECT_EQ(g_dpl_reef_hw_inited[0], 0u);
    // The chip stays software-inited; with the engine working again the
    // hardware level comes up.
    EXPECT_EQ(shr_chip_valid_get(0), 1u);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_RESET, 0), 0);
    EXPECT_EQ(init_api_hardware_process(0), 0);
    up_[0] = true;
}

TEST_F(Levels, UnknownDeviceLeavesTheSlotEmpty)
{
    tide_sim_identity id{};
    ASSERT_EQ(tide_sim_identity_get(0, &id), 0);
    id.device_id = 0x1234;
    ASSERT_EQ(tide_sim_identity_set(0, &id), 0);
    Capture::clear();
    EXPECT_EQ(init_api_software_process(0, &cfg_), -7);
    EXPECT_TRUE(Capture::has("Process dpl prepare inited failed!\n"));
    EXPECT_EQ(shr_chip_valid_get(0), 0u);
    EXPECT_EQ(g_dpl_common_soft_inited[0], 0u);
    // The chip is detached: its table is gone.
    u32 v = 0;
    EXPECT_EQ(hal_reg_read_32(0, 4, 0, &v), -7);
}

TEST_F(Levels, FeatureLocks)
{
    EXPECT_EQ(dpl_lock_create(0, 30, "bad"), -4);
    EXPECT_EQ(dpl_lock_destroy(0, 30), -4);
    EXPECT_EQ(dpl_lock_take(0, 6, __func__, __LINE__), -17); // not created
    ASSERT_EQ(dpl_lock_create(0, 6, "L2"), 0);
    xsal_mutex_t first = g_dpl_lock[0][6];
    EXPECT_EQ(dpl_lock_create(0, 6, "L2"), 0); // exists: kept
    EXPECT_EQ(g_dpl_lock[0][6], first);
    EXPECT_EQ(dpl_lock_take(0, 6, __func__, __LINE__), 0);
    EXPECT_EQ(dpl_lock_take(0, 6, __func__, __LINE__), 0); // recursive
    EXPECT_EQ(dpl_lock_give(0, 6, __func__, __LINE__), 0);
    EXPECT_EQ(dpl_lock_give(0, 6, __func__, __LINE__), 0);
    EXPECT_EQ(dpl_lock_destroy(0, 6), 0);
    EXPECT_EQ(g_dpl_lock[0][6], nullptr);
    EXPECT_EQ(dpl_lock_destroy(0, 6), 0);
    EXPECT_EQ(dpl_lock_take(9, 6, __func__, __LINE__), -4);
}

} // namespace
