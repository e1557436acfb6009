// The exact-match hash engine on the chip model: adds, deletes, and
// searches in the images and in the chip per second through the engine's
// wrappers (records, type 2 lock, placement on the images, the command
// block, the register path, the model), beside the model's own search
// given straight to its register hooks.
#include <benchmark/benchmark.h>
#include <tide/tide.h>

#include <vector>

#include "bench_chip.h"
#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"
#include "csl/reef/reg_tbl/csl_reef_hash_tab_op.h"
#include "tide_int.h"

namespace {

using tide::bench::chip;

// Keys of random ports and VLANs, as many as the action table holds but
// a few.
constexpr u32 kBatch = 250;

std::vector<ecib_key> &keys()
{
    static std::vector<ecib_key> v = [] {
        std::vector<ecib_key> out(kBatch);
        u64 x = 0x9E3779B97F4A7C15ull;
        for (ecib_key &k : out) {
            tide::bench::next_random(x);
            k = ecib_key{static_cast<u8>(x & 3), 0, static_cast<u8>((x >> 2) % 28),
                         static_cast<u16>((x >> 8) & 0xFFF), static_cast<u16>((x >> 20) & 0xFFF)};
        }
        return out;
    }();
    return v;
}

const ecib_ad kAction = {1, 0x0064, 0x00C8, 0, 0, 0, 0, 5, 0, 1, 3};

void _empty()
{
    chip();
    csl_reef_hash_tab_clean(0, "ecib");
}

void _fill()
{
    _empty();
    for (const ecib_key &k : keys()) {
        csl_reef_hash_ecib_add(0, &k, nullptr, &kAction, nullptr);
    }
}

void _nothing() {}

// `op` on the keys in turn, in batches of the table's refill.
template <typename Op>
void _in_batches(benchmark::State &state, void (*start)(), void (*refill)(), Op op)
{
    tide::bench::in_batches(state, kBatch, start, refill, [&](u32 i) { op(keys()[i]); });
}

void BM_EcibAdd(benchmark::State &state)
{
    _in_batches(state, _empty, _empty, [](const ecib_key &k) {
        benchmark::DoNotOptimize(csl_reef_hash_ecib_add(0, &k, nullptr, &kAction, nullptr));
    });
}
BENCHMARK(BM_EcibAdd);

void BM_EcibDel(benchmark::State &state)
{
    _in_batches(state, _fill, _fill,
                [](const ecib_key &k) { benchmark::DoNotOptimize(csl_reef_hash_ecib_del(0, &k)); });
}
BENCHMARK(BM_EcibDel);

// A search alone, without the read of the action row that the wrappers
// add: the images, or the chip's command.
template <u32 Mode>
void BM_EcibSearch(benchmark::State &state)
{
    std::vector<u8> images(kBatch * CSL_ECIB_KEY_BYTES);
    for (u32 i = 0; i < kBatch; i++) {
        csl_reef_hash_ecib_key_TO_data(0, &keys()[i], &images[i * CSL_ECIB_KEY_BYTES], nullptr);
    }
    u32 i = 0;
    _in_batches(state, _fill, _nothing, [&](const ecib_key &) {
        csl_ecib_search_result r{};
        benchmark::DoNotOptimize(csl_reef_hash_ecib_search(0, Mode, &images[(i++ % kBatch) * CSL_ECIB_KEY_BYTES], &r));
    });
}
BENCHMARK_TEMPLATE(BM_EcibSearch, CSL_ECIB_SEARCH_SOFT)->Name("BM_EcibSearchSoft");
BENCHMARK_TEMPLATE(BM_EcibSearch, CSL_ECIB_SEARCH_HARD)->Name("BM_EcibSearchHard");

// The search with the action row decoded, as the egress translation reads
// an entry back.
void BM_EcibTblSearchHard(benchmark::State &state)
{
    _in_batches(state, _fill, _nothing, [](const ecib_key &k) {
        ecib_ad ad{};
        csl_ecib_search_result r{};
        benchmark::DoNotOptimize(csl_reef_hash_ecib_tbl_search_hard(0, &k, &ad, &r));
    });
}
BENCHMARK(BM_EcibTblSearchHard);

// The model's own search: key and hash id into the data words, the
// command with its start bit, the three result words, through the register
// hooks the SDK would use.
void BM_ModelSearch(benchmark::State &state)
{
    chip();
    sdk_init_cfg hooks{};
    tide_sim_sdk_init_cfg(&hooks);
    constexpr u32 kLsw = 4, kInfo = 0x2000018, kAddr = 0x2000014, kWdat0 = 0x2000034, kRdat0 = 0x200001C;
    std::vector<u64> words(kBatch);
    for (u32 i = 0; i < kBatch; i++) {
        const ecib_key &k = keys()[i];
        words[i] = k.ivid_opri | static_cast<u64>(k.ovid) << 12 | static_cast<u64>(k.portid_trunkid) << 24 |
                   static_cast<u64>(k.tid) << 32;
    }
    u32 i = 0;
    _in_batches(state, _fill, _nothing, [&](const ecib_key &) {
        const u64 w = words[i++ % kBatch];
        hooks.reg_write(0, kLsw, kWdat0, static_cast<u32>(w));
        hooks.reg_write(0, kLsw, kWdat0 + 4, static_cast<u32>(w >> 32));
        hooks.reg_write(0, kLsw, kAddr, 0);
        hooks.reg_write(0, kLsw, kInfo, 6u << 4 | 1u);
        u32 v = 0;
        hooks.reg_read(0, kLsw, kInfo, &v);
        for (u32 r = 0; r < 3; r++) {
            hooks.reg_read(0, kLsw, kRdat0 + 4 * r, &v);
        }
        benchmark::DoNotOptimize(v);
    });
}
BENCHMARK(BM_ModelSearch);

} // namespace
