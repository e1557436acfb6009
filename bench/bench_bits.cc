// The bit helpers under the generated accessors: typed field set and get at
// random placements, and the hash engine's 64-bit-input CRC.
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <vector>

#include "csl/reef/reg_tbl/csl_reef_crc.h"
#include "shared/shr_bits.h"

namespace {

template <typename T>
struct Placement {
    u16 start;
    u16 width;
    T value;
};

// 1024 random fields (width 1 to the type's bits, start 0 to 255) in an
// entry image of 40 bytes; each iteration sets and gets one of them.
template <typename T>
void BM_FieldSetGet(benchmark::State &state)
{
    constexpr u32 bits = sizeof(T) * 8;
    std::mt19937_64 rng(42);
    std::vector<Placement<T>> fields(1024);
    for (auto &f : fields) {
        f.width = static_cast<u16>(1 + rng() % bits);
        f.start = static_cast<u16>(rng() % 256);
        f.value = static_cast<T>(rng() & (f.width == 64 ? ~0ull : (1ull << f.width) - 1));
    }
    u8 data[40] = {};
    size_t i = 0;
    for (auto _ : state) {
        const Placement<T> &f = fields[i++ & 1023];
        tide::bits::field_set<T>(data, f.value, f.start, f.width);
        T out = 0;
        tide::bits::field_get<T>(data, &out, f.start, f.width);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * 2);
}
BENCHMARK(BM_FieldSetGet<u8>);
BENCHMARK(BM_FieldSetGet<u16>);
BENCHMARK(BM_FieldSetGet<u32>);
BENCHMARK(BM_FieldSetGet<u64>);

// 256 random 64-bit inputs as the engine's bit arrays.
std::vector<std::array<u8, 64>> _inputs()
{
    std::mt19937_64 rng(7);
    std::vector<std::array<u8, 64>> in(256);
    for (auto &bits : in) {
        const u64 word = rng();
        for (u32 k = 0; k < 64; k++) {
            bits[k] = static_cast<u8>((word >> k) & 1u);
        }
    }
    return in;
}

void BM_CrcD64(benchmark::State &state)
{
    const auto in = _inputs();
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(csl_reef_crc_32_d64_type1(in[i++ & 255].data()));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CrcD64);

// Both barrels' CRCs by algorithm id, as the engine computes a bucket pair.
void BM_HashAlgValuePair(benchmark::State &state)
{
    const auto in = _inputs();
    size_t i = 0;
    for (auto _ : state) {
        const u8 *bits = in[i++ & 255].data();
        u32 crc0 = 0;
        u32 crc1 = 0;
        csl_reef_hash_get_alg_value(8, bits, &crc0);
        csl_reef_hash_get_alg_value(11, bits, &crc1);
        benchmark::DoNotOptimize(crc0 ^ crc1);
    }
    state.SetItemsProcessed(state.iterations() * 2);
}
BENCHMARK(BM_HashAlgValuePair);

} // namespace
