// Four threads add, find and delete disjoint sets of addresses for a while
// (10 s, or TIDE_STRESS_SECONDS); afterwards the service's counts, the
// model's table and what each thread believes agree exactly.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "support/fixture.h"
#include "support/wait.h"
#include "tide_int.h"

using tide::test::SimChips;

namespace {

constexpr u32 kThreads = 4;
constexpr u32 kPool = 600; // addresses each thread works on

l2_addr addr_of(u32 thread, u32 n)
{
    l2_addr a{};
    a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT;
    a.mac[0] = 0x02;
    a.mac[1] = static_cast<u8>(thread);
    a.mac[4] = static_cast<u8>(n >> 8);
    a.mac[5] = static_cast<u8>(n);
    a.vid = static_cast<u16>(1 + n % 7);
    a.port = (thread * 7 + n) % 28;
    return a;
}

struct Worker {
    u32 id = 0;
    std::set<u32> present;
    u64 ops = 0;
    u32 errors = 0;

    void run(const std::atomic<bool> &stop, uint64_t seed)
    {
        std::mt19937 rng(static_cast<std::mt19937::result_type>(seed + id));
        while (!stop.load(std::memory_order_relaxed)) {
            const u32 n = rng() % kPool;
            l2_addr a = addr_of(id, n);
            const bool have = present.count(n) != 0;
            if (rng() % 4 == 0) {
                errors += (l2_api_addr_get(0, &a) == 0) != have;
            } else if (have) {
                errors += l2_api_addr_del(0, &a) != 0;
                present.erase(n);
            } else {
                const i32 rc = l2_api_addr_add(0, &a);
                if (rc == 0) {
                    present.insert(n);
                } else {
                    errors += !(rc == SHR_E_FAIL && a.fail_case == L2_FAIL_FULL);
                }
            }
            ops++;
        }
    }
};

i32 count_walk(u32, l2_addr *, void *user)
{
    ++*static_cast<u32 *>(user);
    return 0;
}

class L2Stress : public SimChips {
protected:
    L2Stress() : SimChips(1, 1) {}
};

TEST_F(L2Stress, FourThreadsOnDisjointAddressesLeaveExactCounts)
{
    const char *env = std::getenv("TIDE_STRESS_SECONDS");
    const int seconds = env != nullptr ? std::atoi(env) : 10;
    // Thread t draws from seed + t; the threads' interleaving is the
    // scheduler's, so a seed gives each thread's sequence back, not the run.
    TIDE_TEST_SEED(seed, 1);
    std::atomic<bool> stop{false};
    std::vector<Worker> workers(kThreads);
    std::vector<std::thread> threads;
    for (u32 t = 0; t < kThreads; t++) {
        workers[t].id = t;
        threads.emplace_back([&, t] { workers[t].run(stop, seed); });
    }
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    stop = true;
    for (std::thread &th : threads) {
        th.join();
    }

    u32 expected = 0;
    u64 ops = 0;
    for (const Worker &w : workers) {
        EXPECT_EQ(w.errors, 0u) << "thread " << w.id;
        expected += static_cast<u32>(w.present.size());
        ops += w.ops;
        for (u32 n : w.present) {
            l2_addr a = addr_of(w.id, n);
            EXPECT_EQ(l2_api_addr_get(0, &a), 0);
        }
    }
    u32 counted = 0;
    ASSERT_EQ(l2_api_mac_cnt_get(0, L2_CNT_STATIC, &counted), 0);
    uint32_t st = 0, dyn = 0, entries = 0;
    ASSERT_EQ(tide_sim_arl_count_get(0, &st, &dyn, &entries), 0);
    EXPECT_EQ(counted, expected);
    EXPECT_EQ(st, expected);
    EXPECT_EQ(dyn, 0u);
    u32 walked = 0;
    ASSERT_EQ(l2_api_addr_traverse(0, count_walk, &walked), 0);
    EXPECT_EQ(walked, expected);
    RecordProperty("operations", static_cast<int>(ops));
    std::printf("%lu operations in %d s, %u entries at the end\n", static_cast<unsigned long>(ops), seconds, expected);
}

} // namespace
