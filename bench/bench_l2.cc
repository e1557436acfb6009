// The L2 address service on the chip model: add, get and delete per second
// through every layer (guard, checks and conversion, feature lock, command
// block driver, register path, HAL, the model), side by side with the
// model's own cost of an insert: the same command given straight to its
// register hooks, with no SDK in between.  The ratio of the two is the
// SDK's share.
#include <benchmark/benchmark.h>
#include <tide/tide.h>

#include <array>
#include <vector>

#include "bench_chip.h"
#include "tide_int.h"

namespace {

using tide::bench::chip;

// Addresses spread over the table well below its fill limit.
constexpr u32 kBatch = 2048;

std::vector<l2_addr> &addresses()
{
    static std::vector<l2_addr> v = [] {
        std::vector<l2_addr> out(kBatch);
        u64 x = 0x9E3779B97F4A7C15ull;
        for (l2_addr &a : out) {
            tide::bench::next_random(x);
            a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT;
            for (u32 i = 0; i < 6; i++) {
                a.mac[i] = static_cast<u8>(x >> (8 * i));
            }
            a.mac[0] &= 0xFE;
            a.vid = 1;
            a.port = static_cast<u32>(x % 28);
        }
        return out;
    }();
    return v;
}

void _empty()
{
    chip();
    l2_api_mac_clear_all(0);
}

void _fill()
{
    _empty();
    for (l2_addr a : addresses()) {
        l2_api_addr_add(0, &a);
    }
}

template <typename Op>
void _in_batches(benchmark::State &state, void (*start)(), void (*refill)(), Op op)
{
    tide::bench::in_batches(state, kBatch, start, refill, op);
}

void _nothing() {}

void BM_L2AddrAdd(benchmark::State &state)
{
    _in_batches(state, _empty, _empty, [](u32 i) {
        l2_addr a = addresses()[i];
        benchmark::DoNotOptimize(l2_api_addr_add(0, &a));
    });
}
BENCHMARK(BM_L2AddrAdd);

void BM_L2AddrGet(benchmark::State &state)
{
    _in_batches(state, _fill, _nothing, [](u32 i) {
        l2_addr a = addresses()[i];
        benchmark::DoNotOptimize(l2_api_addr_get(0, &a));
    });
}
BENCHMARK(BM_L2AddrGet);

void BM_L2AddrDel(benchmark::State &state)
{
    _in_batches(state, _fill, _fill, [](u32 i) {
        l2_addr a = addresses()[i];
        benchmark::DoNotOptimize(l2_api_addr_del(0, &a));
    });
}
BENCHMARK(BM_L2AddrDel);

// The model's own insert: the entry image, the command word with its start
// bit and the status read, through the register hooks the SDK would use.
void BM_ModelInsert(benchmark::State &state)
{
    chip();
    sdk_init_cfg hooks{};
    tide_sim_sdk_init_cfg(&hooks);
    constexpr u32 kMac0 = 0x41C0050, kCfg = 0x41C0040, kState = 0x41C007C;
    constexpr u32 kLsw = 4, kStart = 1u << 31;
    // Images of the same addresses as the SDK's: valid, VLAN 1, static.
    std::vector<std::array<u32, 4>> images(kBatch);
    for (u32 n = 0; n < kBatch; n++) {
        const l2_addr &a = addresses()[n];
        u64 mac = 0;
        for (u8 b : a.mac) {
            mac = mac << 8 | b;
        }
        const unsigned __int128 e = static_cast<unsigned __int128>(1) << 117 |
                                    static_cast<unsigned __int128>(1) << 102 |
                                    static_cast<unsigned __int128>(mac) << 54 | static_cast<unsigned __int128>(1) << 37 |
                                    static_cast<unsigned __int128>(3) << 35 |
                                    static_cast<unsigned __int128>(a.port) << 22;
        images[n] = {static_cast<u32>(e >> 96), static_cast<u32>(e >> 64), static_cast<u32>(e >> 32),
                     static_cast<u32>(e)};
    }
    _in_batches(state, _empty, _empty, [&](u32 i) {
        const auto &img = images[i];
        for (u32 w = 0; w < 4; w++) {
            hooks.reg_write(0, kLsw, kMac0 + 4 * w, img[w]);
        }
        hooks.reg_write(0, kLsw, kCfg, kStart);
        u32 status = 0;
        hooks.reg_read(0, kLsw, kState, &status);
        benchmark::DoNotOptimize(status);
    });
}
BENCHMARK(BM_ModelInsert);

} // namespace
