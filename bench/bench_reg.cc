// Register access through the whole stack on the chip model: the exported
// door (api -> dpl -> csl -> hal -> model hooks) and the word access of the
// chip support layer.
#include <benchmark/benchmark.h>
#include <tide/sim.h>
#include <tide/tide.h>

#include "bench_chip.h"
#include "csl/common/reg_tab/csl_reg.h"

namespace {

using tide::bench::chip;

void BM_ApiRegWriteRead(benchmark::State &state)
{
    chip();
    uint8_t out[4] = {1, 2, 3, 4};
    uint8_t in[4] = {};
    for (auto _ : state) {
        base_api_reg_set_by_addr(0, 0x100, out, 4);
        base_api_reg_get_by_addr(0, 0x100, in, 4);
        benchmark::DoNotOptimize(in);
    }
    state.SetItemsProcessed(state.iterations() * 2);
}
BENCHMARK(BM_ApiRegWriteRead);

void BM_CslRead32(benchmark::State &state)
{
    chip();
    uint32_t v = 0;
    for (auto _ : state) {
        csl_reg_read32_validaddr(0, 0x100, &v);
        benchmark::DoNotOptimize(v);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CslRead32);

} // namespace
