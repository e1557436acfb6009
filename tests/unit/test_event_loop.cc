// The shell's event loop: timer order and cancel, the loop clock across a
// step of the wall clock, descriptors, events, stop, and the heap itself.
#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "app/diag_shell/shell/vty/thread.h"
#include "support/wait.h"

namespace {

// What the callbacks of a test saw, in order.
struct Seen {
    std::vector<int> ids;
    std::vector<struct timeval> due;
    int stop_after = -1; // stop the loop after this many calls
};

Seen g_seen;

int _record(vthread *t)
{
    g_seen.ids.push_back(static_cast<int>(reinterpret_cast<intptr_t>(t->arg)));
    g_seen.due.push_back(t->u.sands);
    if (static_cast<int>(g_seen.ids.size()) == g_seen.stop_after) {
        thread_stop();
    }
    return 0;
}

void *id(int n)
{
    return reinterpret_cast<void *>(static_cast<intptr_t>(n));
}

class EventLoop : public ::testing::Test {
protected:
    void SetUp() override
    {
        g_seen = Seen{};
        m_ = vthread_master_create();
        ASSERT_NE(m_, nullptr);
    }
    void TearDown() override
    {
        thread_master_free(m_);
        vthread_wallclock_set(nullptr);
    }
    thread_master *m_ = nullptr;
};

TEST_F(EventLoop, ThousandTimersFireInOrderWithoutTheCancelledOnes)
{
    TIDE_TEST_SEED(seed, 7);
    std::mt19937 rng(static_cast<std::mt19937::result_type>(seed));
    std::vector<vthread *> timers;
    for (int i = 0; i < 1000; i++) {
        timers.push_back(thread_add_timer_msec(m_, _record, id(i), static_cast<long>(rng() % 40)));
        ASSERT_NE(timers.back(), nullptr);
    }
    std::vector<int> order(1000);
    for (int i = 0; i < 1000; i++) {
        order[i] = i;
    }
    std::shuffle(order.begin(), order.end(), rng);
    std::set<int> cancelled(order.begin(), order.begin() + 300);
    for (int i : cancelled) {
        vthread_cancel(timers[i]);
        EXPECT_EQ(timers[i]->type, THREAD_UNUSED);
    }
    EXPECT_EQ(m_->timer->size, 700);
    g_seen.stop_after = 700;
    thread_main(m_);
    ASSERT_EQ(g_seen.ids.size(), 700u);
    for (size_t i = 1; i < g_seen.due.size(); i++) {
        EXPECT_LE(timeval_elapsed(g_seen.due[i - 1], g_seen.due[i]), 0) << i;
    }
    for (int n : g_seen.ids) {
        EXPECT_EQ(cancelled.count(n), 0u) << n;
    }
    EXPECT_EQ(m_->alloc, 1000u); // every record is kept for reuse
    EXPECT_EQ(m_->unuse.count, 1000u);
}

// A wall clock that the test moves: it starts at the system's clock and
// goes on by 50 ms at every reading, plus what the test adds.  The loop's
// times then follow from its readings alone, whatever the machine's speed.
std::atomic<long long> g_wall_usec;

int _stepping_wallclock(struct timeval *tv)
{
    const long long now = g_wall_usec.fetch_add(50000);
    tv->tv_sec = static_cast<time_t>(now / 1000000);
    tv->tv_usec = static_cast<suseconds_t>(now % 1000000);
    return 0;
}

constexpr long long k_hour_usec = 3600LL * 1000000;

int _step_back_an_hour(vthread *)
{
    g_wall_usec -= k_hour_usec;
    return 0;
}

// What the loop's clock said when the callbacks ran.
std::vector<struct timeval> g_ran_at;

int _record_time(vthread *t)
{
    g_ran_at.push_back(recent_relative_time());
    return _record(t);
}

TEST_F(EventLoop, WallClockStepBackwardsDoesNotStallTimers)
{
    struct timespec ts;
    clock_gettime(CLOCK_REALTIME, &ts);
    g_wall_usec = static_cast<long long>(ts.tv_sec) * 1000000 + ts.tv_nsec / 1000;
    g_ran_at.clear();
    vthread_wallclock_set(_stepping_wallclock);
    // A timer that is due in 300 ms, and the clock stepping back an hour
    // before it is.
    vthread *first = thread_add_timer_msec(m_, _record_time, id(1), 300);
    ASSERT_NE(first, nullptr);
    const struct timeval due = first->u.sands;
    const struct timeval before = recent_relative_time();
    ASSERT_NE(thread_add_event(m_, _step_back_an_hour, nullptr, 0), nullptr);
    g_seen.stop_after = 1;
    thread_main(m_);
    ASSERT_EQ(g_seen.ids, std::vector<int>{1});
    // The step counted as one second of the loop's clock, and the timer
    // ran once its delay had passed on that clock, not an hour later.
    EXPECT_GE(recent_relative_time().tv_sec, before.tv_sec + 1);
    ASSERT_EQ(g_ran_at.size(), 1u);
    EXPECT_GE(timeval_elapsed(g_ran_at[0], due), 0);
    EXPECT_LT(timeval_elapsed(g_ran_at[0], due), 1000000);
    // A timer added after the step waits for its delay, not for an hour.
    vthread *second = thread_add_timer_msec(m_, _record_time, id(2), 100);
    ASSERT_NE(second, nullptr);
    const struct timeval added = recent_relative_time();
    g_seen.stop_after = 2;
    thread_main(m_);
    ASSERT_EQ(g_seen.ids, (std::vector<int>{1, 2}));
    ASSERT_EQ(g_ran_at.size(), 2u);
    EXPECT_GE(timeval_elapsed(g_ran_at[1], added), 100000);
    EXPECT_LT(timeval_elapsed(g_ran_at[1], added), 1000000);
    vthread *t = thread_add_timer(m_, _record, id(3), 5);
    ASSERT_NE(t, nullptr);
    g_wall_usec -= k_hour_usec;
    EXPECT_LE(vthread_timer_remain_second(t), 4u);
    g_wall_usec += 2 * k_hour_usec; // forward: the rest is never negative
    EXPECT_EQ(thread_timer_remain(t).tv_sec, 0);
    EXPECT_EQ(thread_timer_remain(t).tv_usec, 0);
}

TEST_F(EventLoop, ZeroTimerRunsAfterEventsAndBackgroundAfterTimers)
{
    ASSERT_NE(thread_add_background(m_, _record, id(4), 0), nullptr);
    ASSERT_NE(thread_add_timer(m_, _record, id(3), 0), nullptr);
    ASSERT_NE(thread_add_event(m_, _record, id(1), 0), nullptr);
    ASSERT_NE(thread_add_event(m_, _record, id(2), 0), nullptr);
    g_seen.stop_after = 4;
    thread_main(m_);
    EXPECT_EQ(g_seen.ids, (std::vector<int>{1, 2, 3, 4}));
}

struct Pipe {
    int fd[2] = {-1, -1};
    Pipe() { EXPECT_EQ(pipe(fd), 0); }
    ~Pipe()
    {
        close(fd[0]);
        close(fd[1]);
    }
};

// The system's wall clock, counting its readings.
std::atomic<int> g_clock_reads;

int _counting_wallclock(struct timeval *tv)
{
    g_clock_reads++;
    return gettimeofday(tv, nullptr);
}

int _drain_and_stop(vthread *t)
{
    char c = 0;
    EXPECT_EQ(read(t->u.fd, &c, 1), 1);
    g_seen.ids.push_back(c);
    thread_stop();
    return 0;
}

TEST_F(EventLoop, ReadInterestIsOneShotAndSleepsUntilTheDescriptorIsReady)
{
    Pipe p;
    vthread *first = thread_add_read(m_, _drain_and_stop, nullptr, p.fd[0]);
    ASSERT_NE(first, nullptr);
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(thread_add_read(m_, _record, nullptr, p.fd[0]), nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "There is already read fd [" + std::to_string(p.fd[0]) + "]\n");
    EXPECT_EQ(m_->read[p.fd[0]], first);
    EXPECT_EQ(thread_add_write(m_, _record, nullptr, THREAD_FD_LIMIT), nullptr);
    EXPECT_EQ(thread_add_read(m_, _record, nullptr, -1), nullptr);
    // Nothing else is registered: the loop waits without limit.  The
    // writer waits until the loop has read its clock for the wait and
    // sleeps; the loop reads the clock once more when select returns, and
    // only then, as the wait had no end of its own.
    g_clock_reads = 0;
    vthread_wallclock_set(_counting_wallclock);
    const pid_t loop = tide_test::thread_id();
    std::thread writer([&p, loop] {
        tide_test::eventually([loop] { return g_clock_reads.load() >= 1 && tide_test::thread_sleeps(loop); });
        EXPECT_EQ(write(p.fd[1], "a", 1), 1);
    });
    thread_main(m_);
    writer.join();
    EXPECT_EQ(g_seen.ids, std::vector<int>{'a'});
    EXPECT_EQ(g_clock_reads.load(), 2);
    // The interest was cleared before the call.
    EXPECT_EQ(m_->read[p.fd[0]], nullptr);
    EXPECT_FALSE(FD_ISSET(p.fd[0], &m_->readfd));
    EXPECT_NE(thread_add_read(m_, _drain_and_stop, nullptr, p.fd[0]), nullptr);
}

TEST_F(EventLoop, PendingEventStillServesReadyDescriptors)
{
    Pipe p;
    ASSERT_EQ(write(p.fd[1], "b", 1), 1);
    ASSERT_NE(thread_add_read(m_, _drain_and_stop, nullptr, p.fd[0]), nullptr);
    ASSERT_NE(thread_add_event(m_, _record, id(1), 0), nullptr);
    ASSERT_NE(thread_add_timer(m_, _record, id(9), 60), nullptr);
    thread_main(m_);
    EXPECT_EQ(g_seen.ids, (std::vector<int>{1, 'b'}));
}

int _cancel_arg_seven(vthread *t)
{
    g_seen.ids.push_back(-static_cast<int>(vthread_cancel_event(t->master, id(7))));
    return 0;
}

TEST_F(EventLoop, CancelEventTakesRecordsAlreadyReady)
{
    ASSERT_NE(thread_add_event(m_, _cancel_arg_seven, id(0), 0), nullptr);
    ASSERT_NE(thread_add_event(m_, _record, id(7), 0), nullptr);
    ASSERT_NE(thread_add_event(m_, _record, id(8), 0), nullptr);
    ASSERT_NE(thread_add_event(m_, _record, id(7), 0), nullptr);
    g_seen.stop_after = 2;
    thread_main(m_);
    EXPECT_EQ(g_seen.ids, (std::vector<int>{-2, 8}));
    EXPECT_EQ(m_->ready.count, 0u);
}

int _check_current(vthread *t)
{
    EXPECT_EQ(vthread_current(), t);
    EXPECT_EQ(t->master, nullptr);
    EXPECT_EQ(t->add_type, THREAD_EXECUTE);
    g_seen.ids.push_back(t->u.val);
    return 0;
}

int _stop_now(vthread *)
{
    thread_stop();
    return 0;
}

TEST_F(EventLoop, ExecuteRunsAtOnceAndStopLeavesReadyRecordsUnrun)
{
    EXPECT_EQ(thread_execute(m_, _check_current, nullptr, 42), nullptr);
    EXPECT_EQ(g_seen.ids, std::vector<int>{42});
    EXPECT_EQ(vthread_current(), nullptr);
    EXPECT_EQ(m_->alloc, 0u);
    ASSERT_NE(thread_add_event(m_, _stop_now, nullptr, 0), nullptr);
    ASSERT_NE(thread_add_event(m_, _record, id(5), 0), nullptr);
    thread_main(m_);
    EXPECT_EQ(g_seen.ids, std::vector<int>{42});
    EXPECT_EQ(m_->ready.count, 1u); // freed unrun with the master
}

TEST_F(EventLoop, CancelByStateAndReuse)
{
    Pipe p;
    vthread *r = thread_add_read(m_, _record, nullptr, p.fd[0]);
    vthread *w = thread_add_write(m_, _record, nullptr, p.fd[1]);
    vthread *b = thread_add_background(m_, _record, nullptr, 1000);
    vthread *e = thread_add_event(m_, _record, nullptr, 0);
    for (vthread *t : {r, w, b, e}) {
        ASSERT_NE(t, nullptr);
        vthread_cancel(t);
        EXPECT_EQ(t->type, THREAD_UNUSED);
    }
    vthread_cancel(r); // twice: nothing happens
    EXPECT_FALSE(FD_ISSET(p.fd[0], &m_->readfd));
    EXPECT_FALSE(FD_ISSET(p.fd[1], &m_->writefd));
    EXPECT_EQ(m_->background->size, 0);
    EXPECT_EQ(m_->unuse.count, 4u);
    vthread *again = thread_add_timer(m_, _record, nullptr, 1);
    EXPECT_EQ(m_->alloc, 4u);
    EXPECT_EQ(again->add_type, THREAD_TIMER);
    EXPECT_EQ(again->index, 0);
}

void _check_clocks()
{
    struct timeval tv;
    errno = 0;
    EXPECT_EQ(vthread_gettime(3, &tv), -1);
    EXPECT_EQ(errno, EINVAL);
    // Without a step of the wall clock the loop's clock is the wall clock
    // as it last read it: between the readings before and after.
    struct timeval wall;
    struct timeval after;
    ASSERT_EQ(vthread_gettime(0, &wall), 0);
    ASSERT_EQ(vthread_gettime(2, &tv), 0);
    ASSERT_EQ(vthread_gettime(0, &after), 0);
    EXPECT_GE(timeval_elapsed(tv, wall), 0);
    EXPECT_LE(timeval_elapsed(tv, after), 0);
    ASSERT_EQ(vthread_gettime(1, &tv), 0);
    EXPECT_EQ(timeval_elapsed({5, 100}, {3, 900}), 1999200);
    EXPECT_EQ(timeval_elapsed({3, 900}, {5, 100}), -1999200);
    time_t t = 0;
    EXPECT_EQ(vthread_time(&t), t);
}

TEST(EventClock, ClocksAndDifferences)
{
    // A thread of its own: the loop's clock starts with its first reading.
    std::thread(_check_clocks).join();
}

// The heap against a sorted reference: random inserts, removals from the
// middle and takes from the top.
struct Item {
    int key;
    int index;
};

int _item_cmp(void *a, void *b)
{
    return static_cast<Item *>(a)->key - static_cast<Item *>(b)->key;
}

void _item_update(void *node, int index)
{
    static_cast<Item *>(node)->index = index;
}

TEST(EventQueue, HeapKeepsOrderAndPlacesThroughRemovals)
{
    pqueue *q = pqueue_create();
    ASSERT_NE(q, nullptr);
    q->cmp = _item_cmp;
    q->update = _item_update;
    TIDE_TEST_SEED(seed, 11);
    std::mt19937 rng(static_cast<std::mt19937::result_type>(seed));
    std::vector<Item> items(2000);
    std::multiset<int> ref;
    std::vector<Item *> in;
    for (int round = 0; round < 6000; round++) {
        const unsigned op = rng() % 4;
        if (op < 2 && in.size() < items.size()) {
            Item *it = &items[round % items.size()];
            if (std::find(in.begin(), in.end(), it) != in.end()) {
                continue;
            }
            it->key = static_cast<int>(rng() % 100);
            ASSERT_EQ(pqueue_enqueue(it, q), 0);
            in.push_back(it);
            ref.insert(it->key);
        } else if (op == 2 && !in.empty()) {
            const size_t k = rng() % in.size();
            Item *it = in[k];
            ASSERT_EQ(q->array[it->index], it);
            pqueue_remove_at(it->index, q);
            ref.erase(ref.find(it->key));
            in.erase(in.begin() + static_cast<long>(k));
        } else if (!in.empty()) {
            auto *it = static_cast<Item *>(pqueue_dequeue(q));
            ASSERT_EQ(it->key, *ref.begin());
            ref.erase(ref.begin());
            in.erase(std::find(in.begin(), in.end(), it));
        }
        ASSERT_EQ(q->size, static_cast<i32>(ref.size()));
        for (Item *it : in) {
            ASSERT_EQ(q->array[it->index], it);
        }
    }
    EXPECT_GT(q->capacity, 32);
    while (!ref.empty()) {
        ASSERT_EQ(static_cast<Item *>(pqueue_dequeue(q))->key, *ref.begin());
        ref.erase(ref.begin());
    }
    EXPECT_EQ(pqueue_dequeue(q), nullptr);
    pqueue_delete(q);
}

} // namespace
