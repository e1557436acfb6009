// The counter thread against callers: fresh reads, enables, read-and-clear
// and clearing from several threads while the thread passes and traffic
// flows; then the chip is torn down with the thread running.  Built into
// the ThreadSanitizer tree too (tests/tsan).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "dpl/reef/counter/dpl_reef_counter.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

class CounterThreads : public SimChips {
protected:
    CounterThreads() : SimChips(1, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        for (const char *key : {"counter_enable_iport_stat", "counter_enable_oport_stat", "counter_enable_causeid_stat",
                                "counter_thread_start"}) {
            ASSERT_EQ(shr_property_set(0, key, "1"), 0);
        }
        ASSERT_EQ(shr_property_set(0, "counter_thread_msec", "1000"), 0);
        up_chip(0);
    }
};

TEST_F(CounterThreads, CallersAndTheThreadShareTheAccumulators)
{
    ASSERT_TRUE(dpl_reef_counter_thread_alive(0));
    constexpr int kRounds = 300;
    std::atomic<int> failures{0};
    std::vector<std::thread> callers;
    // Traffic: broadcast frames counted in ports and flood copies.
    callers.emplace_back([&] {
        uint8_t f[60] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0, 0, 0, 0, 0x0A, 0x08, 0x00};
        for (int i = 0; i < kRounds; i++) {
            failures += tide_sim_packet_inject(0, static_cast<uint32_t>(i % 4), f, sizeof(f)) != 0;
        }
    });
    callers.emplace_back([&] {
        for (int i = 0; i < kRounds; i++) {
            counter_key key{COUNTER_IPORT_STAT, static_cast<uint32_t>(i % 4), static_cast<uint32_t>(i % 2)};
            counter_stats s{};
            failures += counter_api_stats_get(0, &key, &s) != 0;
        }
    });
    callers.emplace_back([&] {
        for (int i = 0; i < kRounds; i++) {
            failures += counter_api_enable_set(0, COUNTER_MGID_STAT, static_cast<uint32_t>(i % 2)) != 0;
            failures += counter_api_entry_enable_set(0, COUNTER_OPORT_STAT, 7, static_cast<u8>(i % 2)) != 0;
        }
    });
    callers.emplace_back([&] {
        for (int i = 0; i < kRounds; i++) {
            counter_key key{COUNTER_OPORT_STAT, static_cast<uint32_t>(i % 8), 0};
            failures += counter_api_stats_clear(0, &key) != 0;
            thread_cfg cfg{1000u + static_cast<uint32_t>(i % 3) * 1000u, 1};
            failures += counter_api_thread_set(0, &cfg) != 0;
        }
    });
    for (std::thread &t : callers) {
        t.join();
    }
    EXPECT_EQ(failures.load(), 0);
    EXPECT_TRUE(dpl_reef_counter_thread_alive(0));
    // Torn down with the thread running: the software deinit stops it.
    down_chip(0);
    EXPECT_EQ(g_counter_thread[0], nullptr);
}

} // namespace
