// Bring-up under faults: every allocation that bring-up makes is made to
// fail in turn; each run must fail cleanly, leave nothing behind, and the
// next bring-up must succeed.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/init/dpl_reef_init.h"
#include "support/fixture.h"

using tide::test::Capture;

namespace {

std::atomic<long> g_countdown{-1}; // allocations left before one fails; -1 never
std::atomic<long> g_allocs{0};
std::atomic<long> g_live{0};

void *_faulty_malloc(size_t n)
{
    g_allocs++;
    if (g_countdown.load() >= 0 && g_countdown-- == 0) {
        return nullptr;
    }
    void *p = malloc(n);
    if (p != nullptr) {
        g_live++;
    }
    return p;
}

void _counting_free(void *p)
{
    if (p != nullptr) {
        g_live--;
    }
    free(p);
}

// The runs look at statuses and leaks, not at the log: its lines (one per
// register access at debug level) are dropped unformatted.
void _drop_log(int32_t, uint32_t, uint32_t, const char *, uint32_t, const char *, ...) {}

// One whole life: process level with the faulty allocator, one chip up and
// down.  The status of the first step that failed, or 0.
int _life(sdk_init_cfg &cfg)
{
    int rc = init_api_base_software_process(&cfg);
    if (rc != 0) {
        return rc;
    }
    rc = init_api_software_process(0, &cfg);
    if (rc == 0) {
        rc = init_api_hardware_process(0);
        if (rc == 0) {
            EXPECT_EQ(deinit_api_hardware_process(0), 0);
        }
    }
    // A module that failed leaves the chip common-inited: its software
    // tear-down takes it down as after a success.
    if (shr_chip_valid_get(0)) {
        EXPECT_EQ(deinit_api_software_process(0), 0);
    }
    EXPECT_EQ(deinit_api_base_software_process(), 0);
    return rc;
}

TEST(BringUpFaults, EveryAllocationMayFail)
{
    ASSERT_EQ(tide_sim_install(1), 0);
    sdk_init_cfg cfg = tide::test::capture_cfg();
    cfg.mem_alloc = _faulty_malloc;
    cfg.mem_free = _counting_free;
    cfg.log_printf = _drop_log;

    // A clean run counts the allocations made through the hook.
    g_countdown = -1;
    g_allocs = 0;
    g_live = 0;
    ASSERT_EQ(_life(cfg), 0);
    const long total = g_allocs.load();
    ASSERT_GT(total, 10);
    EXPECT_EQ(g_live.load(), 0);

    long failed_runs = 0;
    for (long k = 0; k < total; k++) {
        g_countdown = k;
        g_live = 0;
        const int rc = _life(cfg);
        // Bring-up goes on past the steps it is allowed to miss (the log
        // buffer, the console mutex, the catalogue's parts, the index
        // manager): such a run may succeed.  What never happens is a leak or
        // a chip left valid.
        failed_runs += rc != 0;
        EXPECT_LE(rc, 0);
        EXPECT_EQ(g_live.load(), 0) << "allocation " << k << " leaked, status " << rc;
        EXPECT_EQ(shr_chip_valid_get(0), 0u) << k;
        EXPECT_EQ(g_dpl_base_soft_inited, 0u) << k;
    }
    RecordProperty("failed_runs", static_cast<int>(failed_runs));
    RecordProperty("allocations", static_cast<int>(total));

    // And afterwards everything works again.
    g_countdown = -1;
    g_live = 0;
    EXPECT_EQ(_life(cfg), 0);
    EXPECT_EQ(g_live.load(), 0);
    tide_sim_uninstall();
    tide::test::restore_hal_tables();
}

} // namespace

namespace {

const char *g_fail_level;
const char *g_fail_step;

i32 _fail_at(u32 chip_id, const char *level, const char *step)
{
    (void)chip_id;
    return strstr(level, g_fail_level) != nullptr && strcmp(step, g_fail_step) == 0 ? -15 : 0;
}

class StepFaults : public tide::test::SimChips {
protected:
    StepFaults() : SimChips(1, 0) {}
    void TearDown() override
    {
        g_dpl_reef_step_hook = nullptr;
        SimChips::TearDown();
    }
};

TEST_F(StepFaults, FailedSoftwareStepUnwindsAndLeavesTheChipCommonInited)
{
    g_fail_level = "SOFT-INIT";
    g_fail_step = "base";
    g_dpl_reef_step_hook = _fail_at;
    Capture::clear();
    EXPECT_EQ(init_api_software_process(0, &cfg_), -15);
    EXPECT_TRUE(Capture::has("[SOFT-INIT:          base]init failed!!!!!!![ret=-15]\r\n"));
    EXPECT_TRUE(Capture::has("[SOFT-DEINIT:          base]............[OK]\r\n"));
    EXPECT_TRUE(Capture::has("software init failed! [Invalid configuration]\n"));
    EXPECT_EQ(shr_chip_valid_get(0), 1u); // common level stands
    EXPECT_EQ(g_dpl_reef_soft_inited[0], 0u);
    g_dpl_reef_step_hook = nullptr;
    // A later bring-up runs the whole way.
    up_chip(0);
}

TEST_F(StepFaults, FailedHardwareStepRunsTheHardwareDeinit)
{
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    g_fail_level = "CHIP-INIT";
    g_fail_step = "base";
    g_dpl_reef_step_hook = _fail_at;
    Capture::clear();
    EXPECT_EQ(init_api_hardware_process(0), -15);
    EXPECT_TRUE(Capture::has("[CHIP-DEINIT:          base]............[OK]\r\n"));
    EXPECT_EQ(g_dpl_reef_hw_inited[0], 0u);
    // A failing deinit step ends its walk, clears the flag, returns it.
    g_dpl_reef_step_hook = nullptr;
    ASSERT_EQ(init_api_hardware_process(0), 0);
    g_fail_level = "CHIP-DEINIT";
    g_dpl_reef_step_hook = _fail_at;
    Capture::clear();
    EXPECT_EQ(deinit_api_hardware_process(0), -15);
    EXPECT_TRUE(Capture::has("[CHIP-DEINIT:          base]deinit failed!!!!!!![ret=-15]\r\n"));
    EXPECT_EQ(g_dpl_reef_hw_inited[0], 0u);
    g_dpl_reef_step_hook = nullptr;
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

} // namespace
