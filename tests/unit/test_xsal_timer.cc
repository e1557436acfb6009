// The timer manager.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>

#include "sal/linux_um/xsal_int.h"
#include "support/wait.h"
#include "unit/counting_alloc.h"

namespace {

void _count(void *arg)
{
    ++*static_cast<std::atomic<int> *>(arg);
}

// Whether a thread of this process has the kernel name `name`.
bool _thread_named(const std::string &name)
{
    DIR *dir = opendir("/proc/self/task");
    bool found = false;
    while (dirent *e = readdir(dir)) {
        std::ifstream comm(std::string("/proc/self/task/") + e->d_name + "/comm");
        std::string line;
        if (std::getline(comm, line) && line == name) {
            found = true;
        }
    }
    closedir(dir);
    return found;
}

struct Order {
    std::mutex lock;
    std::vector<int> fired;
};

struct Tagged {
    Order *order;
    int id;
};

void _note(void *arg)
{
    auto *t = static_cast<Tagged *>(arg);
    std::lock_guard<std::mutex> guard(t->order->lock);
    t->order->fired.push_back(t->id);
}

// The timer manager's wall clock, moved by the test: expiries are exact,
// and a timer fires only when the test moves the clock past it, however
// slow the machine.
class ManualClock {
public:
    ManualClock()
    {
        s_now.store(1000000000000ull);
        g_xsal_timer_clock = _read;
    }
    ~ManualClock() { g_xsal_timer_clock = xsal_time_usecs; }
    void advance_ms(u64 ms) { s_now.fetch_add(ms * 1000); }

private:
    static u64 _read() { return s_now.load(); }
    static inline std::atomic<u64> s_now{0};
};

size_t _fired(Order &order)
{
    std::lock_guard<std::mutex> guard(order.lock);
    return order.fired.size();
}

} // namespace

TEST(XsalTimer, PeriodicTimerFiresOncePerPeriodAndNeverAfterStop)
{
    tide_test::CountingAlloc alloc;
    ManualClock clock;
    ASSERT_EQ(xsal_timer_init(), 0);
    EXPECT_TRUE(_thread_named("tdl_xsal_timer"));
    std::atomic<int> fired{0};
    xsal_timer_t t = nullptr;
    ASSERT_EQ(xsal_timer_create(&t, "tick", _count, &fired), 0);
    ASSERT_EQ(xsal_timer_start(t, 100), 0);
    // A second start of a started timer changes nothing.
    EXPECT_EQ(xsal_timer_start(t, 5), 0);
    clock.advance_ms(99);
    for (int i = 1; i <= 10; i++) {
        clock.advance_ms(i == 1 ? 1 : 100);
        ASSERT_TRUE(tide_test::eventually([&] { return fired.load() == i; })) << "period " << i;
    }
    EXPECT_EQ(xsal_timer_stop(t), 0);

    // A timer started after the stop, due when the stopped one would have
    // been due ten more times: once it has fired, the thread has passed
    // every expiry the stopped timer had.
    Order order;
    Tagged sentinel{&order, 1};
    xsal_timer_t probe = nullptr;
    ASSERT_EQ(xsal_timer_create(&probe, "probe", _note, &sentinel), 0);
    ASSERT_EQ(xsal_timer_start(probe, 1000), 0);
    clock.advance_ms(1000);
    ASSERT_TRUE(tide_test::eventually([&] { return _fired(order) == 1; }));
    EXPECT_EQ(fired.load(), 10);

    EXPECT_EQ(xsal_timer_destroy(probe), 0);
    EXPECT_EQ(xsal_timer_destroy(t), 0);
    EXPECT_EQ(xsal_timer_deinit(), 0);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(XsalTimer, FiresOnTheRealClock)
{
    ASSERT_EQ(xsal_timer_init(), 0);
    std::atomic<int> fired{0};
    xsal_timer_t t = nullptr;
    ASSERT_EQ(xsal_timer_create(&t, "tick", _count, &fired), 0);
    ASSERT_EQ(xsal_timer_start(t, 10), 0);
    EXPECT_TRUE(tide_test::eventually([&] { return fired.load() >= 3; }));
    EXPECT_EQ(xsal_timer_destroy(t), 0);
    EXPECT_EQ(xsal_timer_deinit(), 0);
}

TEST(XsalTimer, TimersFireInExpiryThenStartOrder)
{
    ManualClock clock;
    ASSERT_EQ(xsal_timer_init(), 0);
    Order order;
    Tagged tags[4] = {{&order, 0}, {&order, 1}, {&order, 2}, {&order, 3}};
    xsal_timer_t timers[4];
    for (int i = 0; i < 4; i++) {
        ASSERT_EQ(xsal_timer_create(&timers[i], "t", _note, &tags[i]), 0);
    }
    // 3 expires first although started last; 0, 1 and 2 have one period.
    ASSERT_EQ(xsal_timer_start(timers[0], 60), 0);
    ASSERT_EQ(xsal_timer_start(timers[1], 60), 0);
    ASSERT_EQ(xsal_timer_start(timers[2], 60), 0);
    ASSERT_EQ(xsal_timer_start(timers[3], 20), 0);
    // At 20 and 40 only 3 is due; at 60 all four are, and 3, which came
    // back to the list at 40, is behind the three that were there.
    const size_t after[] = {1, 2, 6};
    for (size_t step : after) {
        clock.advance_ms(20);
        ASSERT_TRUE(tide_test::eventually([&] { return _fired(order) == step; })) << "after " << step;
    }
    EXPECT_EQ(order.fired, (std::vector<int>{3, 3, 0, 1, 2, 3}));
    for (auto *t : timers) {
        xsal_timer_destroy(t);
    }
    EXPECT_EQ(g_xsal_timer_head, nullptr);
    EXPECT_EQ(xsal_timer_deinit(), 0);
}

TEST(XsalTimer, TimersOfOnePeriodStartedInTurnTakeTurns)
{
    ManualClock clock;
    ASSERT_EQ(xsal_timer_init(), 0);
    Order order;
    Tagged a{&order, 0};
    Tagged b{&order, 1};
    xsal_timer_t ta = nullptr;
    xsal_timer_t tb = nullptr;
    ASSERT_EQ(xsal_timer_create(&ta, "a", _note, &a), 0);
    ASSERT_EQ(xsal_timer_create(&tb, "b", _note, &b), 0);
    // The clock stands still between the two starts: equal expiries.
    ASSERT_EQ(xsal_timer_start(ta, 50), 0);
    ASSERT_EQ(xsal_timer_start(tb, 50), 0);
    for (size_t round = 1; round <= 4; round++) {
        clock.advance_ms(50);
        ASSERT_TRUE(tide_test::eventually([&] { return _fired(order) == 2 * round; })) << "round " << round;
    }
    EXPECT_EQ(order.fired, (std::vector<int>{0, 1, 0, 1, 0, 1, 0, 1}));
    xsal_timer_destroy(ta);
    xsal_timer_destroy(tb);
    EXPECT_EQ(xsal_timer_deinit(), 0);
}

TEST(XsalTimer, StartedTimersKeepTheirStartOrderAmongEqualExpiries)
{
    ManualClock clock;
    ASSERT_EQ(xsal_timer_init(), 0);
    std::atomic<int> fired{0};
    constexpr int kTimers = 200;
    std::vector<xsal_timer_t> timers(kTimers);
    for (auto &t : timers) {
        ASSERT_EQ(xsal_timer_create(&t, "t", _count, &fired), 0);
    }
    for (auto *t : timers) {
        ASSERT_EQ(xsal_timer_start(t, 10000), 0);
    }
    int index = 0;
    for (const xsal_timer_s *p = g_xsal_timer_head; p != nullptr; p = p->next, index++) {
        ASSERT_LT(index, kTimers);
        EXPECT_EQ(p, timers[static_cast<size_t>(index)]) << "position " << index;
    }
    EXPECT_EQ(index, kTimers);
    for (auto *t : timers) {
        xsal_timer_destroy(t);
    }
    EXPECT_EQ(g_xsal_timer_head, nullptr);
    EXPECT_EQ(xsal_timer_deinit(), 0);
}

TEST(XsalTimer, DeinitWithAStartedTimerOnlyGivesNotice)
{
    EXPECT_EQ(xsal_timer_deinit(), 0); // no manager: a notice
    xsal_timer_t t = nullptr;
    std::atomic<int> fired{0};
    ASSERT_EQ(xsal_timer_create(&t, "t", _count, &fired), 0);
    EXPECT_EQ(xsal_timer_start(t, 10), -1); // no manager running
    EXPECT_EQ(xsal_timer_start(nullptr, 10), -4);
    EXPECT_EQ(xsal_timer_stop(nullptr), -4);

    ASSERT_EQ(xsal_timer_init(), 0);
    EXPECT_EQ(xsal_timer_init(), 0); // a notice, nothing else
    ASSERT_EQ(xsal_timer_start(t, 10), 0);
    EXPECT_EQ(xsal_timer_deinit(), -1);
    EXPECT_EQ(g_xsal_timer_inited, 1u);
    EXPECT_TRUE(tide_test::eventually([&] { return fired.load() > 0; }));
    // Destroy stops a started timer.
    EXPECT_EQ(xsal_timer_destroy(t), 0);
    EXPECT_EQ(xsal_timer_deinit(), 0);
    EXPECT_EQ(g_xsal_timer_inited, 0u);
    EXPECT_TRUE(tide_test::eventually([] { return !_thread_named("tdl_xsal_timer"); }));
}

// The manager's thread is cancelled by deinit right after it signals that
// it left its loop; however the two interleave, the process goes on.
TEST(XsalTimer, DeinitRightAfterInitEndsTheThreadCleanlyEveryTime)
{
    for (int round = 0; round < 300; round++) {
        ASSERT_EQ(xsal_timer_init(), 0) << round;
        ASSERT_EQ(xsal_timer_deinit(), 0) << round;
    }
    EXPECT_TRUE(tide_test::eventually([] { return !_thread_named("tdl_xsal_timer"); }));
}
