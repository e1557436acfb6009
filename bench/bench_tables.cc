// Direct tables on the chip model: one entry written and read back through
// the direct-table engine, and the RAM test of one table and of all.
#include <benchmark/benchmark.h>

#include <vector>

#include "atolreef_cib.h"
#include "bench_chip.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

namespace {

using tide::bench::chip;

// Argument: the table id.  Items: entries written and read.
void BM_TabEntryWriteRead(benchmark::State &state)
{
    chip();
    const u32 tab_id = static_cast<u32>(state.range(0));
    const cib_tab_info *tab = g_atolreef_tab_list[tab_id];
    const u32 bytes = cib_tab_entry_bytes(tab);
    std::vector<u8> out(bytes, 0x5A), in(bytes);
    u32 index = 0;
    for (auto _ : state) {
        csl_reef_tab_set_direct(0, tab_id, index, out.data(), bytes, CSL_TAB_HW);
        csl_reef_tab_get_direct(0, tab_id, index, in.data(), bytes, CSL_TAB_HW);
        benchmark::DoNotOptimize(in.data());
        index = (index + 1) % cib_tab_depth(tab);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel(tab->name);
}
BENCHMARK(BM_TabEntryWriteRead)->Arg(cib_mcc_mlib)->Arg(cib_xsec_enc_enc_sc_tbl)->Arg(cib_ipro_ipat_tbl);

// Argument: the table id.  Items: entries tested (three patterns each).
void BM_RamBistOneTable(benchmark::State &state)
{
    chip();
    const u32 tab_id = static_cast<u32>(state.range(0));
    std::vector<char> text(CSL_RAM_BIST_TEXT_BYTES);
    for (auto _ : state) {
        text[0] = '\0';
        benchmark::DoNotOptimize(_csl_reef_direct_tab_test_single(0, tab_id, 0, text.data(), 1));
    }
    state.SetItemsProcessed(state.iterations() * cib_tab_depth(g_atolreef_tab_list[tab_id]));
    state.SetLabel(g_atolreef_tab_list[tab_id]->name);
}
BENCHMARK(BM_RamBistOneTable)->Arg(cib_xsec_enc_enc_sc_tbl)->Arg(cib_mcc_mlib)->Unit(benchmark::kMillisecond);

// Every direct table, every entry, one round.
void BM_RamBistAllTables(benchmark::State &state)
{
    chip();
    std::vector<char> out(CSL_RAM_BIST_TEXT_BYTES);
    int rc = 0;
    for (auto _ : state) {
        rc = csl_reef_direct_tab_ram_bist_test(0, 0, 1, out.data(), static_cast<u32>(out.size()));
    }
    if (rc != 0) {
        state.SkipWithError("RAM test failed on a clean model");
    }
}
BENCHMARK(BM_RamBistAllTables)->Unit(benchmark::kMillisecond);

} // namespace
