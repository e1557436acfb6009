// The counter service on the chip model: one full pass of the counter
// thread over every table the chip counts (all enabled, every entry read
// and folded into its accumulator, the port counters and the inner
// counter included), without the waits that spread a pass over its
// interval; and one fresh read of an entry through counter_api_stats_get.
#include <benchmark/benchmark.h>

#include "bench_chip.h"
#include "dpl/reef/counter/dpl_reef_counter.h"
#include "tide_int.h"

namespace {

using tide::bench::chip;

void _enable_all()
{
    chip();
    for (u32 id = 0; id <= COUNTER_FWD_DROP_MAX; id++) {
        counter_api_enable_set(0, id, 1); // -24 for the tables the chip lacks
    }
}

void BM_CounterFullPass(benchmark::State &state)
{
    _enable_all();
    u64 entries = 0;
    for (u32 id = 0; id <= COUNTER_FWD_DROP_MAX; id++) {
        u32 n = 0;
        entries += counter_api_size_get(0, id, &n) == 0 ? n : 0;
    }
    for (auto _ : state) {
        for (u32 id = 0; id < DPL_COUNTER_SLOT_NUM; id++) {
            const dpl_counter_slot slot = g_counter_thread[0]->slot[id];
            if (slot.update != nullptr && slot.enabled == 1) {
                benchmark::DoNotOptimize(slot.update(0, id));
            }
        }
    }
    state.counters["entries"] = static_cast<double>(entries);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(entries));
}
BENCHMARK(BM_CounterFullPass)->Unit(benchmark::kMillisecond);

void BM_CounterFreshRead(benchmark::State &state)
{
    _enable_all();
    u32 i = 0;
    for (auto _ : state) {
        counter_key key{COUNTER_CAUSEID_STAT, i++ % 1536, 0};
        counter_stats s{};
        benchmark::DoNotOptimize(counter_api_stats_get(0, &key, &s));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CounterFreshRead);

} // namespace
