// Waiting on conditions and seeding randomized tests, so that no test
// depends on how fast the machine is or on which numbers it drew.
#ifndef TIDE_TEST_WAIT_H
#define TIDE_TEST_WAIT_H

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
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

} // namespace tide_test

// Declares `name` as the test's seed and names it in every failure of the
// scope: "TIDE_TEST_SEED=<seed> reproduces".
#define TIDE_TEST_SEED(name, fallback)                                                                             \
    const uint64_t name = ::tide_test::test_seed(fallback);                                                       \
    SCOPED_TRACE("TIDE_TEST_SEED=" + std::to_string(name) + " reproduces")

#endif
