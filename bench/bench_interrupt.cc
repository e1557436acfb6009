// The interrupt engine on the chip model: interrupts handled per second
// from the raise in the chip to the callback, through the line, the
// thread's wait and its walk of the tree; one at a time (each waits for the
// thread to wake) and in bursts (many leaves pending in one walk).  Beside
// them the model's own cost of a raise and its clear: the nodes of the
// written register and the path above them recomputed.
#include <benchmark/benchmark.h>
#include <tide/interrupt.h>
#include <tide/tide.h>

#include <atomic>
#include <thread>

#include "bench_chip.h"
#include "tide_int.h"

namespace {

using tide::bench::chip;

std::atomic<u64> g_served{0};

void _count(u32, intr_module, intr_type)
{
    g_served.fetch_add(1, std::memory_order_relaxed);
}

// Everything enabled and every ARL and MAC port type called back, once.
void _setup()
{
    static bool done = [] {
        chip();
        interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1);
        for (u32 t = 0; t < 21; t++) {
            interrupt_api_callback_register(0, {INTR_MOD_ARL, 0}, {t, 0}, _count);
        }
        for (u32 t = 0; t < 4; t++) {
            interrupt_api_callback_register(0, {INTR_MOD_MAC_PORT, 0}, {t, 0}, _count);
        }
        return true;
    }();
    (void)done;
}

void _wait_for(u64 target)
{
    while (g_served.load(std::memory_order_relaxed) < target) {
        std::this_thread::yield();
    }
}

// The thread calls back before it clears a leaf's status, so a leaf raised
// again inside that window would be cleared with the first: the next raise
// waits until the leaf reads clear.
void _wait_cleared(u32 module, u32 type, u32 instance)
{
    u32 status = 1;
    while (interrupt_api_status_get(0, {module, 0}, {type, instance}, &status) == 0 && status != 0) {
        std::this_thread::yield();
    }
}

// One leaf raised, then waited for until called back and cleared: the
// latency of the whole path.
void BM_InterruptRaiseToCallback(benchmark::State &state)
{
    _setup();
    for (auto _ : state) {
        const u64 target = g_served.load() + 1;
        tide_sim_intr_raise(0, INTR_MOD_ARL, 0, INTR_ARL_LEARN, 0);
        _wait_for(target);
        _wait_cleared(INTR_MOD_ARL, INTR_ARL_LEARN, 0);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_InterruptRaiseToCallback)->UseRealTime();

// Leaves of the ARL (one category register row) and of MAC ports behind
// the MAG's second level, raised together and served by few walks.
void BM_InterruptBurst(benchmark::State &state)
{
    _setup();
    const u32 ports = static_cast<u32>(state.range(0));
    for (auto _ : state) {
        const u64 target = g_served.load() + 3 + ports;
        for (u32 t : {INTR_ARL_AGE, INTR_ARL_MOVE, INTR_ARL_FULL}) {
            tide_sim_intr_raise(0, INTR_MOD_ARL, 0, t, 0);
        }
        for (u32 p = 0; p < ports; p++) {
            tide_sim_intr_raise(0, INTR_MOD_MAC_PORT, 0, 0, p);
        }
        // The MAG's own bits are served too: count the leaves only.
        _wait_for(target);
        for (u32 t : {INTR_ARL_AGE, INTR_ARL_MOVE, INTR_ARL_FULL}) {
            _wait_cleared(INTR_MOD_ARL, t, 0);
        }
        for (u32 p = 0; p < ports; p++) {
            _wait_cleared(INTR_MOD_MAC_PORT, 0, p);
        }
    }
    state.SetItemsProcessed(state.iterations() * (3 + ports));
}
BENCHMARK(BM_InterruptBurst)->Arg(0)->Arg(8)->Arg(28)->UseRealTime();

// The model's share: a raise with the leaf masked, so that nothing is
// served, and its clear.
void BM_InterruptModelRaise(benchmark::State &state)
{
    _setup();
    interrupt_api_enable_set(0, {INTR_MOD_ARL, 0}, {INTR_ARL_FULL, 0}, 0);
    for (auto _ : state) {
        tide_sim_intr_raise(0, INTR_MOD_ARL, 0, INTR_ARL_FULL, 0);
        interrupt_api_clear(0, {INTR_MOD_ARL, 0}, {INTR_ARL_FULL, 0});
    }
    interrupt_api_enable_set(0, {INTR_MOD_ARL, 0}, {INTR_ARL_FULL, 0}, 1);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_InterruptModelRaise);

} // namespace
