// The counter thread of a chip and its cycle times.  The thread walks the
// counter ids one after the other and, after each, waits for that id's
// share of the interval, so that the tables are read spread over the
// interval in proportion to their size.  Its event is both the timer and
// the wake-up: a change of the interval or of sync sets it.
#include <tide/property.h>

#include <cstdio>

#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/counter/dpl_reef_counter.h"

namespace {

u32 _load(const u32 *flag)
{
    return __atomic_load_n(flag, __ATOMIC_ACQUIRE);
}

void _store(u32 *flag, u32 value)
{
    __atomic_store_n(flag, value, __ATOMIC_RELEASE);
}

u32 _inner_num(u32 chip_id)
{
    u32 num = 0;
    const auto fn = reef_counter_special[chip_id].get_innerid_num;
    return fn != nullptr && fn(chip_id, &num) == 0 ? num : 0;
}

void _thread_main(void *arg)
{
    const u32 chip_id = static_cast<u32>(reinterpret_cast<uintptr_t>(arg));
    dpl_counter_thread *t = g_counter_thread[chip_id];
    // `running` was set before the thread was made: a stop that comes
    // before the thread's first step is not undone by it.
    const u32 positions = DPL_COUNTER_OUTER_NUM + _inner_num(chip_id);
    u32 p = 0;
    while (_load(&t->running) != 0) {
        if (_load(&t->syncing) == 0) {
            xsal_event_wait(t->event, -1);
            if (_load(&t->running) == 0) {
                break;
            }
        }
        const u32 id = p;
        if (p > DPL_COUNTER_PORT_ID) {
            u32 outer = 0;
            const auto map = reef_counter_special[chip_id].get_outer_id;
            if (map == nullptr || map(chip_id, p, &outer) != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "inner counter-%u fail to map outer!\n", p);
            }
        }
        const u64 start = xsal_time_usecs();
        xsal_mutex_lock(t->mutex);
        const dpl_counter_slot slot = t->slot[id];
        xsal_mutex_unlock(t->mutex);
        if (slot.update != nullptr && slot.enabled == 1 && slot.update(chip_id, id) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "counter-%u fail to update!\n", id);
        }
        if (_load(&t->running) == 0) {
            break;
        }
        const u64 elapsed = xsal_time_usecs() - start;
        SHR_LOG_DBG(chip_id, SHR_MOD_COUNTER, "Counter-%u finish to update in %lu usec!\n", id,
                    (unsigned long)elapsed);
        p = (p + 1) % positions;
        u64 cycle = 0;
        dpl_reef_counter_cycle_time_get(chip_id, id, &cycle);
        if (cycle == 0) {
            continue;
        }
        const u64 wait_ms = cycle > elapsed ? (cycle - elapsed) / 1000 : 0;
        SHR_LOG_DBG(chip_id, SHR_MOD_COUNTER, "Counter-%u cycle time:%lu us, wait time:%lu ms!\n", id,
                    (unsigned long)cycle, (unsigned long)wait_ms);
        if (wait_ms > 0) {
            xsal_event_wait(t->event, static_cast<i32>(wait_ms > 0x7FFFFFFF ? 0x7FFFFFFF : wait_ms));
        }
    }
    __atomic_store_n(&t->thread_id, static_cast<i64>(-1), __ATOMIC_RELEASE);
    xsal_thread_exit();
}

// Bits of a table id: the counted width of an entry times its entries.  The
// port counters count 104 items of 64 bits on each MAC port.
u64 _bits(u32 chip_id, u32 id)
{
    const dpl_counter_thread *t = g_counter_thread[chip_id];
    if (t->slot[id].supported == 0) {
        return 0;
    }
    if (id == DPL_COUNTER_PORT_ID) {
        return 28ull * 104 * 64;
    }
    const dpl_counter_stat &s = g_counter_stat[chip_id][id];
    const u64 width = s.pkt_bits + s.pkt_low_bits + s.byt_bits + s.byt_low_bits;
    return width * (s.index_max + 1 - s.index_min);
}

} // namespace

extern "C" {

dpl_counter_thread *g_counter_thread[SHR_MAX_CHIPS];

i32 dpl_reef_counter_cycle_time_set(u32 chip_id)
{
    dpl_counter_thread *t = g_counter_thread[chip_id];
    dpl_counter_stat *st = g_counter_stat[chip_id];
    if (t == nullptr || st == nullptr) {
        return SHR_E_INIT;
    }
    u64 bits[DPL_COUNTER_OUTER_NUM] = {};
    u64 total = shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? DPL_COUNTER_EXTRA_BITS_ATOLREEF
                                                                      : DPL_COUNTER_EXTRA_BITS_OTHER;
    for (u32 id = 0; id < DPL_COUNTER_OUTER_NUM; id++) {
        bits[id] = _bits(chip_id, id);
        total += bits[id];
    }
    const u32 interval = __atomic_load_n(&t->interval, __ATOMIC_ACQUIRE);
    const u64 cell = static_cast<u64>(interval) * 1000 / total;
    SHR_LOG_DBG(chip_id, SHR_MOD_COUNTER, "total interval(us):%u, total counter bits:%lu, cell time(us):%lu\n",
                interval * 1000, (unsigned long)total, (unsigned long)cell);
    for (u32 id = 0; id < DPL_COUNTER_TAB_NUM; id++) {
        __atomic_store_n(&st[id].cycle_time, bits[id] * cell, __ATOMIC_RELEASE);
    }
    __atomic_store_n(&g_counter_port_cycle_time[chip_id], bits[DPL_COUNTER_PORT_ID] * cell, __ATOMIC_RELEASE);
    const auto inner = reef_counter_special[chip_id].inner_cycle_time_set;
    return inner != nullptr ? inner(chip_id) : 0;
}

i32 dpl_reef_counter_cycle_time_get(u32 chip_id, u32 id, u64 *cycle)
{
    if (id == DPL_COUNTER_PORT_ID) {
        *cycle = __atomic_load_n(&g_counter_port_cycle_time[chip_id], __ATOMIC_ACQUIRE);
        return 0;
    }
    if (id > DPL_COUNTER_PORT_ID) {
        const auto inner = reef_counter_special[chip_id].inner_cycle_time_get;
        *cycle = 0;
        return inner != nullptr ? inner(chip_id, id, cycle) : 0;
    }
    *cycle = __atomic_load_n(&g_counter_stat[chip_id][id].cycle_time, __ATOMIC_ACQUIRE);
    return 0;
}

u32 dpl_reef_counter_thread_alive(u32 chip_id)
{
    const dpl_counter_thread *t = g_counter_thread[chip_id];
    return t != nullptr && __atomic_load_n(&t->thread_id, __ATOMIC_ACQUIRE) != -1;
}

i32 dpl_reef_counter_thread_start(u32 chip_id)
{
    dpl_counter_thread *t = g_counter_thread[chip_id];
    _store(&t->syncing, 1);
    static char names[SHR_MAX_CHIPS][24];
    snprintf(names[chip_id], sizeof(names[chip_id]), "tdl_counter%u", chip_id);
    // The mark stands until the thread ends, so that a stop that comes at
    // once still waits for it.
    __atomic_store_n(&t->thread_id, static_cast<i64>(chip_id), __ATOMIC_RELEASE);
    _store(&t->running, 1);
    if (xsal_thread_create(&t->thread, names[chip_id], 0, _thread_main, reinterpret_cast<void *>(uintptr_t{chip_id})) !=
        0) {
        __atomic_store_n(&t->thread_id, static_cast<i64>(-1), __ATOMIC_RELEASE);
        _store(&t->running, 0);
        xsal_event_destroy(t->event);
        t->event = nullptr;
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Counter thread create failed\n");
        return SHR_E_INTERNAL;
    }
    return 0;
}

i32 dpl_reef_counter_set_interval(u32 chip_id, u32 interval)
{
    dpl_counter_thread *t = g_counter_thread[chip_id];
    if (interval == 0) {
        xsal_mutex_lock(t->mutex);
        _store(&t->running, 0);
        __atomic_store_n(&t->interval, 0u, __ATOMIC_RELEASE);
        xsal_event_set(t->event);
        xsal_mutex_unlock(t->mutex);
        return 0;
    }
    interval = interval < COUNTER_INTERVAL_MIN ? COUNTER_INTERVAL_MIN : interval;
    interval = interval > COUNTER_INTERVAL_MAX ? COUNTER_INTERVAL_MAX : interval;
    __atomic_store_n(&t->interval, interval, __ATOMIC_RELEASE);
    return dpl_reef_counter_cycle_time_set(chip_id);
}

i32 dpl_reef_counter_set_sync_enable(u32 chip_id, u32 sync)
{
    dpl_counter_thread *t = g_counter_thread[chip_id];
    xsal_mutex_lock(t->mutex);
    if (sync == 1 && _load(&t->syncing) == 0) {
        _store(&t->syncing, 1);
        xsal_event_set(t->event);
    } else if (sync != 1) {
        _store(&t->syncing, 0);
    }
    xsal_mutex_unlock(t->mutex);
    return 0;
}

i32 dpl_reef_counter_thread_init(u32 chip_id)
{
    auto *t = static_cast<dpl_counter_thread *>(
        xsal_malloc(sizeof(dpl_counter_thread), "counter_thread", SHR_MOD_COUNTER));
    if (t == nullptr) {
        return SHR_E_MEMORY;
    }
    *t = dpl_counter_thread{};
    t->thread_id = -1;
    g_counter_thread[chip_id] = t;
    const int msec = shr_property_get(chip_id, "counter_thread_msec", DPL_COUNTER_DEFAULT_MSEC);
    t->interval = msec >= static_cast<int>(COUNTER_INTERVAL_MIN) && msec <= static_cast<int>(COUNTER_INTERVAL_MAX)
                      ? static_cast<u32>(msec)
                      : COUNTER_INTERVAL_MIN;
    t->mutex = xsal_mutex_create("counter-thread");
    if (t->mutex == nullptr || xsal_event_create(&t->event, 1) != 0) {
        return SHR_E_MEMORY;
    }
    i32 rc = dpl_reef_counter_general_init(chip_id);
    if (rc == 0 && shr_property_get(chip_id, "counter_thread_start", 0) == 1) {
        rc = dpl_reef_counter_thread_start(chip_id);
    }
    return rc;
}

i32 dpl_reef_counter_thread_deinit(u32 chip_id)
{
    dpl_counter_thread *t = g_counter_thread[chip_id];
    if (t == nullptr) {
        return 0;
    }
    if (_load(&t->running) != 0 || dpl_reef_counter_thread_alive(chip_id)) {
        xsal_mutex_lock(t->mutex);
        _store(&t->running, 0);
        xsal_event_set(t->event);
        xsal_mutex_unlock(t->mutex);
    }
    u32 round = 0;
    for (; dpl_reef_counter_thread_alive(chip_id) && round < DPL_COUNTER_STOP_ROUNDS; round++) {
        xsal_event_set(t->event);
        xsal_usleep(DPL_COUNTER_STOP_ROUND_US);
    }
    if (dpl_reef_counter_thread_alive(chip_id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Counter destory failed!\n");
        return SHR_E_FAIL;
    }
    // Past its last touch of the service the thread still ends itself in
    // the OS layer; wait for its record to go within the same bound.
    for (char name[32]; round < DPL_COUNTER_STOP_ROUNDS && xsal_thread_name(&t->thread, name, sizeof(name)) != nullptr;
         round++) {
        xsal_usleep(DPL_COUNTER_STOP_ROUND_US);
    }
    for (u32 id = 0; id < DPL_COUNTER_SLOT_NUM; id++) {
        if (t->slot[id].free_fn != nullptr) {
            t->slot[id].free_fn(chip_id, id);
        }
    }
    dpl_reef_counter_general_deinit(chip_id);
    if (t->mutex != nullptr) {
        xsal_mutex_destroy(t->mutex);
    }
    if (t->event != nullptr) {
        xsal_event_destroy(t->event);
    }
    xsal_mem_free(t);
    g_counter_thread[chip_id] = nullptr;
    return 0;
}

} // extern "C"
