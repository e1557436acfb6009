// The interrupt engine on the chip model, end to end: the model raises a
// leaf, the thread's walk finds it, the callback runs, the leaf is cleared
// and unmasked, and the count grows.
#include <gtest/gtest.h>
#include <tide/interrupt.h>

#include <atomic>

#include "support/fixture.h"
#include "tide_int.h"
#include "support/wait.h"

using tide::test::SimChips;

namespace {

std::atomic<u32> g_calls{0};

void _cb(u32, intr_module, intr_type)
{
    g_calls++;
}

class IntrTree : public SimChips {
protected:
    IntrTree() : SimChips(1, 1) {}
};

TEST_F(IntrTree, ArlLearnReachesItsCallback)
{
    const intr_module all = {INTR_MODULE_ALL, INTR_SUBID_ALL};
    ASSERT_EQ(interrupt_api_enable_set(0, all, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    const intr_module arl = {INTR_MOD_ARL, 0};
    ASSERT_EQ(interrupt_api_callback_register(0, arl, {INTR_ARL_LEARN, 0}, _cb), 0);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_ARL, 0, INTR_ARL_LEARN, 0), 0);
    ASSERT_TRUE(tide_test::eventually([] { return g_calls.load() == 1; }));
    u32 count = 0;
    ASSERT_TRUE(tide_test::eventually([&] {
        return interrupt_api_stats_get(0, arl, {INTR_ARL_LEARN, 0}, &count) == 0 && count == 1;
    }));
    u32 status = 1;
    EXPECT_EQ(interrupt_api_status_get(0, arl, {INTR_ARL_LEARN, 0}, &status), 0);
    EXPECT_EQ(status, 0u);
}

} // namespace
