// The levels of bring-up that stand so far: process, common, and the
// family levels with the hard reset.
#include <gtest/gtest.h>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_cib.h"
#include "api/api_families.h"
#include "dpl/common/dpl_init_pre.h"
#include "shared/shr_int.h"
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
        // The reset sequence's register; the ports' clock pulse is the
        // other general register written at hardware init.
        if (w.bar == 3 && w.addr != 0x47030u) {
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

// The switches of the chip configuration, read at bring-up.
TEST_F(Levels, ResetAndHardwareInitSwitches)
{
    ASSERT_EQ(shr_property_set(0, "chip_lsw_hw_reset", "0"), 0);
    ASSERT_EQ(shr_property_set(0, "chip_hw_init", "0"), 0);
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    Capture::clear();
    ASSERT_EQ(init_api_hardware_process(0), 0);
    EXPECT_TRUE(tide::test::sim_writes(0).empty()); // no reset, no module touched the chip
    EXPECT_TRUE(Capture::has("[CHIP-INIT:    no hw init]............[OK]\r\n"));
    EXPECT_FALSE(Capture::has("hw reset"));
    EXPECT_EQ(g_dpl_reef_hw_inited[0], 1u);
    // The deinit still walks every module.
    Capture::clear();
    EXPECT_EQ(deinit_api_hardware_process(0), 0);
    EXPECT_TRUE(Capture::has("[CHIP-DEINIT:          base]............[OK]\r\n"));
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

TEST_F(Levels, LogLevelsComeFromTheChipConfiguration)
{
    shr_property_set(0, "debug_level", "2");
    shr_property_set(0, "debug_level_port", "4");
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_L3), 2);
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_PORT), 4);
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_INIT), 3); // its own default
    EXPECT_EQ(shr_debugk_ll_level_get(SHR_MOD_TOP), 1);
    EXPECT_EQ(g_shr_current_dk_enable[SHR_MOD_L3], 1);
    EXPECT_EQ(deinit_api_software_process(0), 0);
    shr_property_set(1, "debug_status", "0");
    ASSERT_EQ(init_api_software_process(1, &cfg_), 0);
    EXPECT_EQ(g_shr_current_dk_enable[SHR_MOD_L3], 0); // the last chip decides
    EXPECT_EQ(deinit_api_software_process(1), 0);
}

// After hardware init every port's ingress and egress rows are valid and
// every cause id copies by its queue index; `causid_en` 0 leaves the cause
// ids as the chip holds them.
TEST_F(Levels, BaseHardwareInitMarksPortsAndCauses)
{
    shr_property_set(1, "causid_en", "0");
    for (u32 chip : {0u, 1u}) {
        ASSERT_EQ(init_api_software_process(chip, &cfg_), 0);
        ASSERT_EQ(init_api_hardware_process(chip), 0);
        up_[chip] = true;
    }
    for (u32 port : {0u, 27u, 31u}) {
        cib_ipro_ipat_tbl_t ipat{};
        cib_epro_epat_table_t epat{};
        ASSERT_EQ(csl_reef_cib_ipro_ipat_tbl_get(0, 0, port, &ipat), 0);
        ASSERT_EQ(csl_reef_cib_epro_epat_table_get(0, 0, port, &epat), 0);
        EXPECT_EQ(ipat.vld, 1u) << port;
        EXPECT_EQ(epat.vld, 1u) << port;
        EXPECT_EQ(epat.port_cnt_type, 3u) << port;
    }
    const u32 last = cib_tab_depth(&atolreef_cib_epro_causeid_tablem) - 1;
    for (u32 chip : {0u, 1u}) {
        cib_epro_causeid_table_t row{};
        ASSERT_EQ(csl_reef_cib_epro_causeid_table_get(chip, 0, last, &row), 0);
        EXPECT_EQ(row.vld, chip == 0 ? 1u : 0u);
        EXPECT_EQ(row.cp_qindex_en, chip == 0 ? 1u : 0u);
    }
}

TEST_F(Levels, MemoryTestAtBringUp)
{
    shr_property_set(0, "ram_dft_test", "1");
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    ASSERT_EQ(init_api_hardware_process(0), 0);
    ASSERT_EQ(deinit_api_hardware_process(0), 0);
    // A cell that holds one bit whatever is written fails the test, and
    // bring-up with it.
    const u32 addr = atolreef_cib_epro_causeid_tablem.addr[0];
    ASSERT_EQ(tide_sim_stuck_bit_set(0, 4, addr, 1, 1), 0);
    Capture::clear();
    EXPECT_NE(init_api_hardware_process(0), 0);
    EXPECT_TRUE(Capture::has("[CHIP-INIT:          base] ram test failed!\n"));
    EXPECT_EQ(g_dpl_reef_hw_inited[0], 0u);
    tide_sim_stuck_bits_clear(0);
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

TEST_F(Levels, SoftResetPulsesTheCoreReset)
{
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    ASSERT_EQ(init_api_hardware_process(0), 0);
    up_[0] = true;
    const u32 addr = atolreef_cib_lsw_hreg_soft_rst_reg.addr[0];
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    EXPECT_EQ(reef_init_dispatch.chip_soft_reset(0, 0x1000000), -4);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
    ASSERT_EQ(reef_init_dispatch.chip_soft_reset(0, 0xABCDEF), 0);
    std::vector<uint64_t> pulses;
    for (const auto &w : tide::test::sim_writes(0)) {
        if (w.bar == 4 && w.addr == addr) {
            pulses.push_back(w.value);
        }
    }
    EXPECT_EQ(pulses, (std::vector<uint64_t>{0xABCDEF, 0}));
}

} // namespace
