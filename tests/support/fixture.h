// Test support: capture of the log and output hooks, and a fixture that
// stands simulated chips behind the SDK.
#ifndef TIDE_TEST_FIXTURE_H
#define TIDE_TEST_FIXTURE_H

#include <gtest/gtest.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include <string>
#include <vector>

namespace tide::test {

// One captured log line: module, level and the formatted text.
struct LogLine {
    int32_t chip;
    uint32_t module;
    uint32_t level;
    std::string text;
};

// Captures everything the library logs and outputs while installed.
class Capture {
public:
    static void log_sink(int32_t chip, uint32_t module, uint32_t level, const char *file, uint32_t line,
                         const char *format, ...);
    static int output_sink(const char *format, ...);

    static std::vector<LogLine> lines();
    static std::string output();
    static void clear();
    // Number of log lines whose text contains `needle`.
    static size_t count(const std::string &needle);
    static bool has(const std::string &needle) { return count(needle) > 0; }
    // Index of the first line containing `needle` at or after `from`, or -1.
    static long find(const std::string &needle, size_t from = 0);
};

// A configuration record with the capture hooks and, unless `hooks` is
// false, the model's register hooks.
sdk_init_cfg capture_cfg(bool hooks = true);

// Simulated chips behind the SDK: the model installed, the process level
// up with capture hooks, and `bring_up` chips through software and hardware
// init.  Tear-down undoes all of it and checks that it succeeded.
class SimChips : public ::testing::Test {
protected:
    // `hooks` false leaves the register hooks out: the SDK then reaches the
    // model's register file through the mapped apertures only.
    explicit SimChips(uint32_t chips = 1, uint32_t bring_up = 1, bool hooks = true)
        : chips_(chips), bring_up_(bring_up), hooks_(hooks)
    {
    }
    void SetUp() override;
    void TearDown() override;

    // The process level only, for tests that bring chips up themselves.
    // With the model's hooks in use, a chip's front ports are brought up
    // through the SDK after its hardware init (the model's MACs let frames
    // pass only by enabled ports whose link is up), unless `ports_` is
    // false.
    void up_chip(uint32_t chip);
    void down_chip(uint32_t chip);

    sdk_init_cfg cfg_{};
    uint32_t chips_;
    uint32_t bring_up_;
    bool hooks_;
    // False leaves the front ports as hardware init leaves them: no mapping
    // mode, no interface type, not enabled (tests of that state).
    bool ports_ = true;
    std::vector<bool> up_;
};

// Makes the model report a kelpreef chip (device 0x9228, revision 0) for
// `chip`, before the SDK attaches it; revision 1 makes it a kelpreef2.
void kelpreef_identity_set(uint32_t chip, uint32_t revision = 0);

// Puts the library's own register slots back into the HAL tables.
void restore_hal_tables();

// The seed of a randomized test: TIDE_TEST_SEED when it is set, else a new
// one; printed, so that the run can be repeated.
uint64_t test_seed();

// Writes of the model's log for one chip.
std::vector<tide_sim_write> sim_writes(uint32_t chip);

} // namespace tide::test

#endif // TIDE_TEST_FIXTURE_H
