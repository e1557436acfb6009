// Tearing a chip down while its interrupts fire: the thread stops within
// its bound, no callback runs once the software deinit has returned, and
// (in the ThreadSanitizer tree) nothing races.
#include <gtest/gtest.h>
#include <tide/interrupt.h>

#include <atomic>
#include <thread>

#include "dpl/reef/interrupt/dpl_reef_interrupt.h"
#include "support/fixture.h"
#include "support/wait.h"
#include "tide_int.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

std::atomic<bool> g_down{false};
std::atomic<u32> g_calls{0};
std::atomic<u32> g_late{0};

void _cb(u32, intr_module, intr_type)
{
    g_calls++;
    if (g_down) {
        g_late++;
    }
}

class IntrTeardown : public SimChips {
protected:
    IntrTeardown() : SimChips(1, 1) {}
};

TEST_F(IntrTeardown, TheThreadStopsAndNoCallbackRunsAfterDeinit)
{
    constexpr u32 kTypes[] = {INTR_ARL_LEARN, INTR_ARL_AGE, INTR_ARL_MOVE, INTR_ARL_FULL};
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    for (u32 t : kTypes) {
        ASSERT_EQ(interrupt_api_callback_register(0, {INTR_MOD_ARL, 0}, {t, 0}, _cb), 0);
    }
    std::atomic<bool> stop{false};
    std::thread firing([&] {
        for (u32 i = 0; !stop; i++) {
            tide_sim_intr_raise(0, INTR_MOD_ARL, 0, kTypes[i % 4], 0);
            std::this_thread::yield();
        }
    });
    ASSERT_TRUE(tide_test::eventually([] { return g_calls.load() >= 50; }));
    down_chip(0);
    g_down = true;
    EXPECT_EQ(__atomic_load_n(&g_intr_thread[0].thread_id, __ATOMIC_ACQUIRE), -1);
    EXPECT_FALSE(Capture::has("the thread did not stop"));
    // Interrupts go on firing in the chip; nobody serves them any more.
    const u32 calls = g_calls;
    for (u32 i = 0; i < 1000; i++) {
        std::this_thread::yield();
    }
    stop = true;
    firing.join();
    EXPECT_EQ(g_late.load(), 0u);
    EXPECT_EQ(g_calls.load(), calls);
}

} // namespace
