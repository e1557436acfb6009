// Typed accessors of the generated catalogue on the chip model: a one-field
// read-modify-write of a register, a whole-record write, and a table entry.
#include <benchmark/benchmark.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include "bench_chip.h"
#include "atolreef_cib.h"

namespace {

using tide::bench::chip;

void BM_RegSetOneField(benchmark::State &state)
{
    chip();
    cib_mcc_en_mode_cfg_t rec{};
    u8 mask[4] = {1u << cib_mcc_en_mode_cfg__mirr_samp_en_cfg, 0, 0, 0};
    for (auto _ : state) {
        rec.mirr_samp_en_cfg ^= 1;
        benchmark::DoNotOptimize(csl_reef_cib_mcc_en_mode_cfg_set(0, 0, &rec, mask));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RegSetOneField);

void BM_RegSetWholeRecord(benchmark::State &state)
{
    chip();
    cib_mcc_en_mode_cfg_t rec{};
    u8 mask[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    for (auto _ : state) {
        rec.mcc_tick_cp_full_cfg = (rec.mcc_tick_cp_full_cfg + 1) & 0x7F;
        benchmark::DoNotOptimize(csl_reef_cib_mcc_en_mode_cfg_set(0, 0, &rec, mask));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RegSetWholeRecord);

void BM_TabSetOneField(benchmark::State &state)
{
    chip();
    cib_mcc_mlib_t rec{};
    u64 mask[2] = {1ull << cib_mcc_mlib__next_vld, 0};
    u32 index = 0;
    for (auto _ : state) {
        rec.next_vld ^= 1;
        benchmark::DoNotOptimize(csl_reef_cib_mcc_mlib_set(0, 0, index, &rec, mask));
        index = (index + 1) & 2047;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TabSetOneField);

} // namespace
