// The TCAM on the chip model: entries added and deleted per second through
// the generated table functions (conversion, the entry layer's four or
// three commands, the register path, HAL, the model's engine), and test
// searches per second over a TCAM full of entries.
#include <benchmark/benchmark.h>
#include <tide/tide.h>

#include "atolreef_tcam_table.h"
#include "bench_chip.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"

namespace {

using tide::bench::chip;

constexpr u32 kBlocks = 16;

// Every block in the given mode.
// An entry of iacl_tcam_iacl_160_l2 for smac `n`.
cib_iacl_tcam_iacl_160_l2_t _entry160(u32 n)
{
    cib_iacl_tcam_iacl_160_l2_t e{};
    e.key.tid = 4;
    e.key.subtid = 7;
    e.key.smac = n;
    e.mask.tid = e.mask.subtid = 0xF;
    e.mask.smac = 0xFFFFFFFFFFFFull;
    e.ad.causeid_dport_nhpid_ecmpgrp = n & 0x7FFF;
    e.ad.fwdcmd = 1;
    return e;
}

void _modes(u32 mode)
{
    chip();
    for (u32 b = 0; b < kBlocks; b++) {
        csl_reef_tcam_op_acl_core_tcam_block_mode_set(0, b, mode);
    }
}

cib_iacl_tcam_iacl_320_ipv4_t _entry320(u32 n)
{
    cib_iacl_tcam_iacl_320_ipv4_t e{};
    e.key.tid = 4;
    e.key.subtid = 1;
    e.mask.tid = 0xF;
    e.mask.subtid = 0xF;
    e.ad.causeid_dport_nhpid_ecmpgrp = n & 0x7FFF;
    e.ad.fwdcmd = 1;
    return e;
}

// Runs `op(n)` for n = 0, 1, ... with every block in `mode`.
template <typename Op>
void _each(benchmark::State &state, u32 mode, Op op)
{
    _modes(mode);
    u32 n = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(op(n++));
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_TcamAdd320(benchmark::State &state)
{
    _each(state, CSL_TCAM_MODE_320, [](u32 n) {
        cib_iacl_tcam_iacl_320_ipv4_t e = _entry320(n);
        return csl_reef_cib_iacl_tcam_iacl_320_ipv4_set(0, n % kBlocks, (n / kBlocks) % 64, &e);
    });
}
BENCHMARK(BM_TcamAdd320);

void BM_TcamAdd160(benchmark::State &state)
{
    _each(state, CSL_TCAM_MODE_160, [](u32 n) {
        cib_iacl_tcam_iacl_160_l2_t e = _entry160(n);
        return csl_reef_cib_iacl_tcam_iacl_160_l2_set(0, n % kBlocks, (n / kBlocks) % 128, &e);
    });
}
BENCHMARK(BM_TcamAdd160);

void BM_TcamDelete320(benchmark::State &state)
{
    _each(state, CSL_TCAM_MODE_320, [](u32 n) {
        return csl_reef_cib_iacl_tcam_iacl_320_ipv4_del(0, n % kBlocks, (n / kBlocks) % 64);
    });
}
BENCHMARK(BM_TcamDelete320);

// 1024 entries of 160 bits in eight blocks, each a different smac; each
// search hits one of them, spread over the blocks.
void BM_TcamSearch(benchmark::State &state)
{
    _modes(CSL_TCAM_MODE_160);
    constexpr u32 kEntries = 1024;
    for (u32 n = 0; n < kEntries; n++) {
        cib_iacl_tcam_iacl_160_l2_t e = _entry160(n);
        csl_reef_cib_iacl_tcam_iacl_160_l2_set(0, n / 128, n % 128, &e);
    }
    u32 n = 0;
    for (auto _ : state) {
        cib_iacl_tcam_iacl_160_l2_key_t k{};
        k.tid = 4;
        k.subtid = 7;
        k.smac = (n * 389) % kEntries;
        u8 key[20] = {}, ad[12] = {};
        csl_reef_cib_iacl_tcam_iacl_160_l2_key_TO_entry(0, &k, nullptr, key, 160);
        u32 block = 0, index = 0;
        benchmark::DoNotOptimize(csl_reef_tcam_key_mask_search(0, key, 160, 0xFFFF, ad, 96, &block, &index));
        n++;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TcamSearch);

} // namespace
