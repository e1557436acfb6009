// Threads, semaphores and events of the OS layer.
#include <dirent.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/prctl.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

#include "sal/linux_um/xsal_int.h"
#include "support/wait.h"
#include "unit/counting_alloc.h"

namespace {

// True while a thread of this process has the kernel name `name`.
bool _task_named(const std::string &name)
{
    bool found = false;
    if (DIR *d = opendir("/proc/self/task")) {
        while (const dirent *e = readdir(d)) {
            std::ifstream comm(std::string("/proc/self/task/") + e->d_name + "/comm");
            std::string line;
            found = found || (std::getline(comm, line) && line == name);
        }
        closedir(d);
    }
    return found;
}

// What a worker thread saw of itself, then it waits to be released or
// destroyed.
struct Worker {
    std::atomic<bool> sigint_blocked{false};
    char kernel_name[17] = {};
    xsal_sem_t release = nullptr;
    std::atomic<bool> done{false};
};

void _worker(void *arg)
{
    auto *w = static_cast<Worker *>(arg);
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    w->sigint_blocked = sigismember(&mask, SIGINT) == 1;
    prctl(PR_GET_NAME, w->kernel_name, 0, 0, 0);
    if (w->release != nullptr) {
        xsal_sem_take(w->release);
    }
    w->done = true;
}

bool _on_list(const xsal_thread_t &t)
{
    for (const xsal_thread_info *p = g_list_thread_head; p != nullptr; p = p->next) {
        if (p == t.info) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(XsalThread, CreatedThreadIsListedNamedAndBlocksSigint)
{
    tide_test::CountingAlloc alloc;
    Worker w;
    w.release = xsal_sem_create("release", 0);
    xsal_thread_t t{};
    ASSERT_EQ(xsal_thread_create(&t, "tdl_worker7", 0, _worker, &w), 0);
    // On the list and fully started before create returns.
    EXPECT_TRUE(_on_list(t));
    EXPECT_EQ(t.state, XSAL_THREAD_STATE_CREATED);
    EXPECT_EQ(t.info->stack_size, 65536u);

    char name[32];
    EXPECT_STREQ(xsal_thread_name(&t, name, sizeof(name)), "tdl_worker7");
    char kernel[17] = {};
    ASSERT_EQ(pthread_getname_np(t.tid, kernel, sizeof(kernel)), 0);
    EXPECT_STREQ(kernel, "tdl_worker7");
    // A short buffer is terminated at its last byte.
    char shortbuf[4];
    EXPECT_STREQ(xsal_thread_name(&t, shortbuf, sizeof(shortbuf)), "tdl");

    xsal_sem_give(w.release);
    ASSERT_TRUE(tide_test::eventually([&] { return xsal_thread_name(&t, name, sizeof(name)) == nullptr; }));
    EXPECT_TRUE(w.sigint_blocked);
    EXPECT_STREQ(w.kernel_name, "tdl_worker7");
    // The thread ended by itself: its record is gone, destroy has nothing
    // left to do.
    EXPECT_EQ(xsal_thread_name(&t, name, sizeof(name)), nullptr);
    EXPECT_STREQ(name, "");
    EXPECT_EQ(xsal_thread_destroy(&t), 0);
    xsal_sem_destroy(w.release);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(XsalThread, DestroyOfRunningThreadCancelsItAndFreesItsRecord)
{
    tide_test::CountingAlloc alloc;
    Worker w;
    w.release = xsal_sem_create("never given", 0);
    xsal_thread_t t{};
    ASSERT_EQ(xsal_thread_create(&t, "blocked", 1000, _worker, &w), 0);
    EXPECT_EQ(t.info->stack_size, 16384u);
    EXPECT_EQ(xsal_thread_destroy(&t), 0);
    EXPECT_EQ(t.state, XSAL_THREAD_STATE_DESTROYED);
    EXPECT_FALSE(_on_list(t));
    char name[8];
    EXPECT_EQ(xsal_thread_name(&t, name, sizeof(name)), nullptr);
    // The cancel takes effect in the thread itself: once it has ended, it
    // never got past its wait.
    EXPECT_TRUE(tide_test::eventually([] { return !_task_named("blocked"); }));
    EXPECT_FALSE(w.done);
    // The record and the boot semaphore are gone; only ours is left.
    EXPECT_EQ(alloc.live(), 1);
    xsal_sem_destroy(w.release);
}

TEST(XsalThread, ManyThreadsComeAndGoConcurrently)
{
    tide_test::CountingAlloc alloc;
    constexpr int kThreads = 24;
    Worker workers[kThreads];
    xsal_thread_t handles[kThreads];
    for (int i = 0; i < kThreads; i++) {
        ASSERT_EQ(xsal_thread_create(&handles[i], "short", 0, _worker, &workers[i]), 0);
    }
    // Each leaves the list as its last act; destroy then has nothing to do.
    ASSERT_TRUE(tide_test::eventually([&handles] {
        char name[8];
        for (auto &h : handles) {
            if (xsal_thread_name(&h, name, sizeof(name)) != nullptr) {
                return false;
            }
        }
        return true;
    }));
    for (auto &h : handles) {
        EXPECT_EQ(xsal_thread_destroy(&h), 0);
    }
    EXPECT_EQ(g_list_thread_head, nullptr);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(XsalSem, TimeoutCarriesIntoSecondsAndForeverWaits)
{
    xsal_sem_t sem = xsal_sem_create("s", 0);
    ASSERT_NE(sem, nullptr);
    EXPECT_EQ(xsal_sem_trytake(sem), -1);

    // The deadline is the wall clock plus the time: read on that clock
    // around the call, the wait lasts at least that long, which a lost
    // carry into the seconds would cut short.
    const u64 before = xsal_time_usecs();
    EXPECT_EQ(xsal_sem_take_timeout(sem, 1500000), -1);
    EXPECT_GE(xsal_time_usecs() - before, 1500000u);

    // 0xFFFFFFFF is no time-out of 71 minutes: it waits until the give,
    // which comes once the take sleeps.
    const pid_t taker = tide_test::thread_id();
    std::thread giver([sem, taker] {
        tide_test::eventually([taker] { return tide_test::thread_sleeps(taker); });
        xsal_sem_give(sem);
    });
    EXPECT_EQ(xsal_sem_take_timeout(sem, XSAL_SEM_FOREVER), 0);
    giver.join();

    EXPECT_EQ(xsal_sem_give(sem), 0);
    EXPECT_EQ(xsal_sem_take_timeout(sem, 0), 0);
    EXPECT_EQ(xsal_sem_destroy(sem), 0);
    EXPECT_EQ(xsal_sem_take(nullptr), -1);
}

TEST(XsalEvent, AutoResetIsConsumedByOneWaitManualResetStays)
{
    xsal_event_t autoev = nullptr;
    xsal_event_t manual = nullptr;
    ASSERT_EQ(xsal_event_create(&autoev, 1), 0);
    ASSERT_EQ(xsal_event_create(&manual, 0), 0);

    EXPECT_EQ(xsal_event_wait(autoev, 0), 0);
    xsal_event_set(autoev);
    EXPECT_EQ(xsal_event_wait(autoev, 0), 1);
    EXPECT_EQ(xsal_event_wait(autoev, 0), 0);

    xsal_event_set(manual);
    EXPECT_EQ(xsal_event_wait(manual, 0), 1);
    EXPECT_EQ(xsal_event_wait(manual, 0), 1);
    xsal_event_reset(manual);
    EXPECT_EQ(xsal_event_wait(manual, 0), 0);

    // The end of the time is the wall clock plus `ms`, as the layer reads
    // it.
    const u64 before = xsal_time_usecs();
    EXPECT_EQ(xsal_event_wait(autoev, 120), 0);
    EXPECT_GE(xsal_time_usecs() - before, 120000u);

    xsal_event_destroy(autoev);
    xsal_event_destroy(manual);
}

TEST(XsalEvent, SetWakesEveryWaiterOfAManualEvent)
{
    xsal_event_t ev = nullptr;
    ASSERT_EQ(xsal_event_create(&ev, 0), 0);
    std::atomic<int> woken{0};
    std::atomic<pid_t> tids[3] = {};
    std::thread waiters[3];
    for (int i = 0; i < 3; i++) {
        waiters[i] = std::thread([&, i] {
            tids[i] = tide_test::thread_id();
            woken += xsal_event_wait(ev, -1);
        });
    }
    // The set comes once all three sleep in their wait.
    tide_test::eventually([&] {
        for (const auto &tid : tids) {
            if (tid.load() == 0 || !tide_test::thread_sleeps(tid.load())) {
                return false;
            }
        }
        return true;
    });
    EXPECT_EQ(woken, 0);
    xsal_event_set(ev);
    for (auto &w : waiters) {
        w.join();
    }
    EXPECT_EQ(woken, 3);
    xsal_event_destroy(ev);
}
