// Waiting on conditions and seeding randomized tests, so that no test
// depends on how fast the machine is or on which numbers it drew.
#ifndef TIDE_TEST_WAIT_H
#define TIDE_TEST_WAIT_H

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

namespace tide_test {

// Generous bound of a wait for something that happens within milliseconds
// on an idle machine: a loaded one may take far longer, and a bound that
// is reached means the condition never came.
constexpr std::chrono::seconds kPatience{30};

// Polls `cond` until it holds or `limit` has passed; true when it held.
template <typename F> bool eventually(F cond, std::chrono::milliseconds limit = kPatience)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!cond()) {
        if (std::chrono::steady_clock::now() > end) {
            return cond();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

// The kernel's id of the calling thread, as /proc/self/task names it.
inline pid_t thread_id()
{
    return static_cast<pid_t>(syscall(SYS_gettid));
}

// True while the thread `tid` of this process sleeps in the kernel (state
// S: a lock, a condition, a semaphore, select).  A thread that sleeps for
// another reason looks the same, so a test may use this only to wait for a
// moment from which either order of events must give the same result.
inline bool thread_sleeps(pid_t tid)
{
    std::ifstream in("/proc/self/task/" + std::to_string(tid) + "/stat");
    std::string stat((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // "tid (name) S ...": the name may hold blanks and parentheses.
    const size_t close = stat.rfind(')');
    return close != std::string::npos && close + 2 < stat.size() && stat[close + 2] == 'S';
}

// "TIDE_TEST_SEED=<seed> reproduces": the note of a seed in a failure.
inline std::string seed_note(uint64_t seed)
{
    return "TIDE_TEST_SEED=" + std::to_string(seed) + " reproduces";
}

// The seed of a randomized test: TIDE_TEST_SEED when set, else `fallback`.
// The seed goes into the test's record and into every failure message
// of the calling scope (through the returned trace), so that a failure
// can be run again with TIDE_TEST_SEED=<seed>.
inline uint64_t test_seed(uint64_t fallback)
{
    uint64_t seed = fallback;
    if (const char *env = std::getenv("TIDE_TEST_SEED"); env != nullptr && *env != '\0') {
        seed = std::strtoull(env, nullptr, 0);
    }
    ::testing::Test::RecordProperty("seed", std::to_string(seed));
    return seed;
}

// The seed of a fixture's tests, as TIDE_TEST_SEED gives it: a member of
// the fixture, named in every failure of the test that the fixture runs.
class FixtureSeed {
public:
    explicit FixtureSeed(uint64_t fallback) : value(test_seed(fallback)), trace_(__FILE__, __LINE__, seed_note(value))
    {
    }
    const uint64_t value;

private:
    ::testing::ScopedTrace trace_;
};

} // namespace tide_test

// Declares `name` as the test's seed and names it in every failure of the
// scope: "TIDE_TEST_SEED=<seed> reproduces".  A trace holds for its own
// thread only: other threads of the test add SCOPED_TRACE(seed_note(seed)).
#define TIDE_TEST_SEED(name, fallback)                                                                             \
    const uint64_t name = ::tide_test::test_seed(fallback);                                                       \
    SCOPED_TRACE(::tide_test::seed_note(name))

#endif
