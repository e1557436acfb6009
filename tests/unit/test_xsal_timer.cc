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

} // namespace

TEST(XsalTimer, PeriodicTimerFiresTenTimesASecondAndNeverAfterStop)
{
    tide_test::CountingAlloc alloc;
    ASSERT_EQ(xsal_timer_init(), 0);
    EXPECT_TRUE(_thread_named("tdl_xsal_timer"));
    std::atomic<int> fired{0};
    xsal_timer_t t = nullptr;
    ASSERT_EQ(xsal_timer_create(&t, "tick", _count, &fired), 0);
    ASSERT_EQ(xsal_timer_start(t, 100), 0);
    // A second start of a started timer changes nothing.
    EXPECT_EQ(xsal_timer_start(t, 5), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    EXPECT_EQ(xsal_timer_stop(t), 0);
    const int at_stop = fired.load();
    EXPECT_GE(at_stop, 9);
    EXPECT_LE(at_stop, 11);
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    EXPECT_EQ(fired.load(), at_stop);

    EXPECT_EQ(xsal_timer_destroy(t), 0);
    EXPECT_EQ(xsal_timer_deinit(), 0);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(XsalTimer, TimersFireInExpiryThenStartOrder)
{
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
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    for (auto *t : timers) {
        xsal_timer_stop(t);
    }
    std::vector<int> fired;
    {
        std::lock_guard<std::mutex> guard(order.lock);
        fired = order.fired;
    }
    // 3 at 20, 40 and 60 ms and the others at 60 ms: the first four
    // calls are 3, 3, then 0, 1, 2 in start order, with the third call of
    // 3 (also due at 60) somewhere behind the first.
    std::vector<int> others;
    for (size_t i = 2; i < fired.size(); i++) {
        if (fired[i] != 3) {
            others.push_back(fired[i]);
        }
    }
    ASSERT_GE(fired.size(), 5u);
    EXPECT_EQ(fired[0], 3);
    EXPECT_EQ(fired[1], 3);
    ASSERT_GE(others.size(), 3u);
    EXPECT_EQ(std::vector<int>(others.begin(), others.begin() + 3), (std::vector<int>{0, 1, 2}));
    for (auto *t : timers) {
        xsal_timer_destroy(t);
    }
    EXPECT_EQ(xsal_timer_deinit(), 0);
}

TEST(XsalTimer, StartedTimersKeepTheirStartOrderAmongEqualExpiries)
{
    ASSERT_EQ(xsal_timer_init(), 0);
    std::atomic<int> fired{0};
    constexpr int kTimers = 200;
    std::vector<xsal_timer_t> timers(kTimers);
    for (auto &t : timers) {
        ASSERT_EQ(xsal_timer_create(&t, "t", _count, &fired), 0);
    }
    // Started in a tight loop, many share their microsecond of expiry.
    for (auto *t : timers) {
        ASSERT_EQ(xsal_timer_start(t, 10000), 0);
    }
    int index = 0;
    int ties = 0;
    for (const xsal_timer_s *p = g_xsal_timer_head; p != nullptr; p = p->next, index++) {
        ASSERT_LT(index, kTimers);
        EXPECT_EQ(p, timers[static_cast<size_t>(index)]) << "position " << index;
        if (p->next != nullptr && p->next->end_sec == p->end_sec && p->next->end_usec == p->end_usec) {
            ties++;
        }
    }
    EXPECT_EQ(index, kTimers);
    RecordProperty("ties", ties);
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
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_GT(fired.load(), 0);
    // Destroy stops a started timer.
    EXPECT_EQ(xsal_timer_destroy(t), 0);
    EXPECT_EQ(xsal_timer_deinit(), 0);
    EXPECT_EQ(g_xsal_timer_inited, 0u);
    for (int i = 0; i < 100 && _thread_named("tdl_xsal_timer"); i++) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    EXPECT_FALSE(_thread_named("tdl_xsal_timer"));
}
