// The containers: 10^6 inserts then 10^6 finds into shr_avl and shr_hash,
// with keys in a shuffled order.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <vector>

#include "shared/shr_avl.h"
#include "shared/shr_hash.h"

namespace {

constexpr std::size_t kItems = 1000000;

// Keys 1..n in a fixed shuffled order; items are the keys themselves,
// stored in the pointers.
const std::vector<std::uintptr_t> &keys()
{
    static const std::vector<std::uintptr_t> k = [] {
        std::vector<std::uintptr_t> v(kItems);
        std::iota(v.begin(), v.end(), 1);
        std::shuffle(v.begin(), v.end(), std::mt19937_64(7));
        return v;
    }();
    return k;
}

int _cmp(const void *a, const void *b, void *)
{
    const auto x = reinterpret_cast<std::uintptr_t>(a);
    const auto y = reinterpret_cast<std::uintptr_t>(b);
    return x < y ? -1 : x > y ? 1 : 0;
}

u32 _hash(const void *data)
{
    auto x = static_cast<u64>(reinterpret_cast<std::uintptr_t>(data));
    x *= 0x9E3779B97F4A7C15ull;
    return static_cast<u32>(x >> 32);
}

int _same(const void *stored, const void *data)
{
    return stored == data;
}

void BM_AvlInsertFind(benchmark::State &state)
{
    const auto &k = keys();
    for (auto _ : state) {
        shr_avl_table *t = shr_avl_create(_cmp, nullptr, nullptr);
        for (auto key : k) {
            shr_avl_insert(t, reinterpret_cast<void *>(key));
        }
        for (auto key : k) {
            benchmark::DoNotOptimize(shr_avl_find(t, reinterpret_cast<void *>(key)));
        }
        state.PauseTiming();
        shr_avl_destroy(t, nullptr);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kItems * 2));
}
BENCHMARK(BM_AvlInsertFind)->Unit(benchmark::kMillisecond);

void BM_HashInsertFind(benchmark::State &state)
{
    const auto &k = keys();
    for (auto _ : state) {
        shr_hash *h = shr_hash_create_size(static_cast<u32>(state.range(0)), _hash, _same);
        for (auto key : k) {
            shr_hash_insert_samekey_ignore(h, reinterpret_cast<void *>(key), nullptr);
        }
        for (auto key : k) {
            benchmark::DoNotOptimize(shr_hash_lookup(h, reinterpret_cast<void *>(key)));
        }
        state.PauseTiming();
        shr_hash_destroy(h, nullptr);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kItems * 2));
}
// A table sized to its load.  (With the default 1,024 buckets the chains
// grow to about 1,000 records and the run takes minutes.)
BENCHMARK(BM_HashInsertFind)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

} // namespace
