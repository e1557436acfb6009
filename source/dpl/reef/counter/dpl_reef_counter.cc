// The counter service's operations, its registration of other modules'
// counters, and its bring-up.  Arguments are checked first; the flags and
// slots change under the thread mutex, the accumulators under the
// counter's own mutex, which the thread's pass takes too.
#include <cstdio>
#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/counter/dpl_reef_counter.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_counter.h"

extern "C" {
reef_counter_special_t reef_counter_special[SHR_MAX_CHIPS];
}

namespace {

constexpr u32 kClearPulse = 0x3fffe;

i32 _not_inited(u32 chip_id)
{
    if (g_counter_thread[chip_id] == nullptr || g_counter_stat[chip_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Counter software didn't init!\n");
        return SHR_E_INIT;
    }
    return 0;
}

// A counter id up to `max` that the chip has; an absent one gives
// `absent_rc`.  The first line is the caller's, with the id and `arg`.
i32 _check(u32 chip_id, u32 id, u32 max, const char *too_big, u32 arg, i32 absent_rc)
{
    if (id > max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, too_big, id, arg);
        return SHR_E_PARAM;
    }
    i32 rc = _not_inited(chip_id);
    if (rc == 0 && g_counter_thread[chip_id]->slot[id].supported == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Error! Do not support counter id(%u)!\n", id);
        rc = absent_rc;
    }
    return rc;
}

// A counter id of the enable calls: 0 to 28.
i32 _check_id(u32 chip_id, u32 id, u32 enable)
{
    return _check(chip_id, id, DPL_COUNTER_PORT_ID, "invalid counter_id = %u, state = %u\n", enable,
                  SHR_E_NOT_SUPPORT);
}

// A table id of the calls by entry: 0 to 27.
i32 _check_table(u32 chip_id, u32 id)
{
    return _check(chip_id, id, COUNTER_FWD_DROP_MAX,
                  "input counter(id:%u) more than fwd-drop max counter(id:%u)!\n", COUNTER_FWD_DROP_MAX,
                  SHR_E_NULL_PTR);
}

i32 _dpl_reef_check_counter_in_para(u32 chip_id, u32 id, u32 index)
{
    i32 rc = _check_table(chip_id, id);
    if (rc != 0) {
        return rc;
    }
    const dpl_counter_stat &s = g_counter_stat[chip_id][id];
    if (index < s.index_min || index > s.index_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "counter-%d index-%d out of range[%d~%d]\n", (int)id, (int)index,
                    (int)s.index_min, (int)s.index_max);
        return SHR_E_PARAM;
    }
    return 0;
}

// Holds the mutex of one counter for a scope.
class CounterLock {
public:
    CounterLock(u32 chip_id, u32 id) : chip_(chip_id), id_(id) { dpl_reef_counter_lock(chip_id, id); }
    ~CounterLock() { dpl_reef_counter_unlock(chip_, id_); }
    CounterLock(const CounterLock &) = delete;
    CounterLock &operator=(const CounterLock &) = delete;

private:
    u32 chip_, id_;
};

// The cache entries of table entry `index`, and how many (1 or 2).
dpl_counter_entry *_entries(u32 chip_id, u32 id, u32 index, u32 *count)
{
    const dpl_counter_stat &s = g_counter_stat[chip_id][id];
    *count = g_counter_baseinfo[id].kind == DPL_COUNTER_KIND_PAIR ? 2 : 1;
    return s.cache + (index - s.index_min) * *count;
}

// A slot of the registration calls; `member` selects the function.
i32 _register(u32 chip_id, u32 id, dpl_counter_fn fn, dpl_counter_fn dpl_counter_slot::*member, bool unregister)
{
    if (id > DPL_COUNTER_PORT_ID || (!unregister && fn == nullptr)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "counter register: invalid counter id(%u) or function\n", id);
        return SHR_E_PARAM;
    }
    const i32 rc = _not_inited(chip_id);
    if (rc != 0) {
        return rc;
    }
    dpl_counter_thread *t = g_counter_thread[chip_id];
    xsal_mutex_lock(t->mutex);
    if (unregister) {
        t->slot[id].*member = nullptr;
    } else if (t->slot[id].*member == nullptr) {
        t->slot[id].*member = fn;
    }
    xsal_mutex_unlock(t->mutex);
    return 0;
}

} // namespace

extern "C" {

i32 dpl_reef_counter_update_register(u32 chip_id, u32 id, dpl_counter_fn fn)
{
    return _register(chip_id, id, fn, &dpl_counter_slot::update, false);
}
i32 dpl_reef_counter_malloc_register(u32 chip_id, u32 id, dpl_counter_fn fn)
{
    return _register(chip_id, id, fn, &dpl_counter_slot::malloc_fn, false);
}
i32 dpl_reef_counter_free_register(u32 chip_id, u32 id, dpl_counter_fn fn)
{
    return _register(chip_id, id, fn, &dpl_counter_slot::free_fn, false);
}
i32 dpl_reef_counter_update_unregister(u32 chip_id, u32 id)
{
    return _register(chip_id, id, nullptr, &dpl_counter_slot::update, true);
}
i32 dpl_reef_counter_malloc_unregister(u32 chip_id, u32 id)
{
    return _register(chip_id, id, nullptr, &dpl_counter_slot::malloc_fn, true);
}
i32 dpl_reef_counter_free_unregister(u32 chip_id, u32 id)
{
    return _register(chip_id, id, nullptr, &dpl_counter_slot::free_fn, true);
}

i32 dpl_reef_counter_map_display(u32 chip_id)
{
    i32 rc = _not_inited(chip_id);
    if (rc != 0) {
        return rc;
    }
    const dpl_counter_thread *t = g_counter_thread[chip_id];
    csl_output_func(chip_id, 0, "%-4s%-40s%-10s%-8s%-10s%-10s%-12s\n", "id", "name", "status", "tab_id", "bits",
                    "size", "cycle(us)");
    for (u32 id = 0; id <= DPL_COUNTER_PORT_ID; id++) {
        const char *name = id == DPL_COUNTER_PORT_ID ? "port_stat" : g_counter_baseinfo[id].name;
        if (t->slot[id].supported == 0) {
            csl_output_func(chip_id, 0, "%-4u%-40s%-10s\n", id, name, "absent");
            continue;
        }
        u64 cycle = 0;
        dpl_reef_counter_cycle_time_get(chip_id, id, &cycle);
        if (id == DPL_COUNTER_PORT_ID) {
            csl_output_func(chip_id, 0, "%-4u%-40s%-10s%-8s%-10s%-10s%-12lu\n", id, name,
                            t->slot[id].enabled != 0 ? "enable" : "disable", "-", "-", "-", (unsigned long)cycle);
            continue;
        }
        const dpl_counter_stat &s = g_counter_stat[chip_id][id];
        char bits[16];
        snprintf(bits, sizeof(bits), "%u/%u", s.pkt_bits + s.pkt_low_bits, s.byt_bits + s.byt_low_bits);
        csl_output_func(chip_id, 0, "%-4u%-40s%-10s%-8u%-10s%-10u%-12lu\n", id, name,
                        t->slot[id].enabled != 0 ? "enable" : "disable", g_counter_baseinfo[id].tab_id, bits,
                        s.index_max + 1 - s.index_min, (unsigned long)cycle);
    }
    return 0;
}

i32 dpl_reef_counter_enable_set(u32 chip_id, u32 id, u32 enable)
{
    i32 rc = _check_id(chip_id, id, enable);
    if (rc != 0) {
        return rc;
    }
    dpl_counter_thread *t = g_counter_thread[chip_id];
    xsal_mutex_lock(t->mutex);
    dpl_counter_slot &slot = t->slot[id];
    if (slot.enabled == 0 && enable == 1 && slot.malloc_fn != nullptr) {
        rc = slot.malloc_fn(chip_id, id);
    }
    if (rc == 0) {
        slot.enabled = enable;
        // The inner counter goes with its outer table.
        if (id == COUNTER_CAUSEID_STAT) {
            t->slot[DPL_COUNTER_INNER_ID].enabled = enable;
        }
    }
    xsal_mutex_unlock(t->mutex);
    return rc;
}

i32 dpl_reef_counter_enable_get(u32 chip_id, u32 id, u32 *enable)
{
    if (enable == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = _check_id(chip_id, id, 0);
    if (rc != 0) {
        return rc;
    }
    dpl_counter_thread *t = g_counter_thread[chip_id];
    xsal_mutex_lock(t->mutex);
    *enable = t->slot[id].enabled;
    xsal_mutex_unlock(t->mutex);
    return 0;
}

i32 dpl_reef_counter_stats_get(u32 chip_id, counter_key *key, counter_stats *stats)
{
    if (key == nullptr || stats == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_check_counter_in_para(chip_id, key->counter_id, key->index);
    if (rc != 0) {
        return rc;
    }
    const u32 id = key->counter_id;
    CounterLock hold(chip_id, id);
    if (g_counter_stat[chip_id][id].cache == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Wrong! counter id(%u) value cache not malloc!\n", id);
        return SHR_E_MEMORY;
    }
    // One fresh reading of this entry, so that the answer is current.
    rc = dpl_reef_counter_update_range(chip_id, id, key->index, key->index);
    if (rc != 0) {
        return rc;
    }
    u32 count = 0;
    dpl_counter_entry *e = _entries(chip_id, id, key->index, &count);
    stats->pkt = e[0].value - e[0].cleared;
    stats->bytes = count == 2 ? e[1].value - e[1].cleared : 0;
    if (key->clr_flag != 0) {
        for (u32 i = 0; i < count; i++) {
            e[i].cleared = e[i].value;
        }
    }
    return 0;
}

i32 dpl_reef_counter_stats_clear(u32 chip_id, counter_key *key)
{
    if (key == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_check_counter_in_para(chip_id, key->counter_id, key->index);
    if (rc != 0) {
        return rc;
    }
    const u32 id = key->counter_id;
    CounterLock hold(chip_id, id);
    rc = csl_reef_direct_table_entry_clr(chip_id, g_counter_baseinfo[id].tab_id, key->index);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    if (g_counter_stat[chip_id][id].cache != nullptr) {
        u32 count = 0;
        dpl_counter_entry *e = _entries(chip_id, id, key->index, &count);
        memset(e, 0, sizeof(*e) * count);
    }
    return 0;
}

i32 dpl_reef_counter_thread_set(u32 chip_id, thread_cfg *cfg)
{
    if (cfg == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = _not_inited(chip_id);
    if (rc != 0) {
        return rc;
    }
    dpl_counter_thread *t = g_counter_thread[chip_id];
    if (cfg->interval != __atomic_load_n(&t->interval, __ATOMIC_ACQUIRE)) {
        rc = dpl_reef_counter_set_interval(chip_id, cfg->interval);
        if (rc != 0) {
            return rc;
        }
    }
    if (cfg->sync == 1 && cfg->interval != 0 && !dpl_reef_counter_thread_alive(chip_id)) {
        rc = dpl_reef_counter_thread_start(chip_id);
        if (rc != 0) {
            return rc;
        }
    }
    return dpl_reef_counter_set_sync_enable(chip_id, cfg->sync);
}

i32 dpl_reef_counter_thread_get(u32 chip_id, thread_cfg *cfg)
{
    if (cfg == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const i32 rc = _not_inited(chip_id);
    if (rc != 0) {
        return rc;
    }
    const dpl_counter_thread *t = g_counter_thread[chip_id];
    cfg->interval = __atomic_load_n(&t->interval, __ATOMIC_ACQUIRE);
    cfg->sync = __atomic_load_n(&t->syncing, __ATOMIC_ACQUIRE);
    return 0;
}

i32 dpl_reef_counter_global_display(u32 chip_id, u32 flags)
{
    const auto fn = reef_counter_special[chip_id].global_display;
    return fn != nullptr ? fn(chip_id, flags) : csl_reef_catalogue_in_build(chip_id, SHR_MOD_COUNTER, SHR_LOG_ERROR);
}

i32 dpl_reef_counter_size_get(u32 chip_id, u32 id, u32 *entries)
{
    if (entries == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const i32 rc = _check_table(chip_id, id);
    if (rc != 0) {
        return rc;
    }
    const dpl_counter_stat &s = g_counter_stat[chip_id][id];
    *entries = s.index_max + 1 - s.index_min;
    return 0;
}

i32 dpl_reef_counter_entry_enable_set(u32 chip_id, u32 id, u32 index, u8 enable)
{
    i32 rc = _dpl_reef_check_counter_in_para(chip_id, id, index);
    if (rc != 0) {
        return rc;
    }
    CounterLock hold(chip_id, id);
    dpl_counter_stat &s = g_counter_stat[chip_id][id];
    if (s.entry_bitmap == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Counter entry bitmap not malloc, please check if counter started!\n");
        return SHR_E_NULL_PTR;
    }
    const u32 e = index - s.index_min;
    if (enable != 0) {
        s.entry_bitmap[e / 32] |= 1u << (e % 32);
    } else {
        s.entry_bitmap[e / 32] &= ~(1u << (e % 32));
    }
    return 0;
}

i32 dpl_reef_counter_entry_enable_get(u32 chip_id, u32 id, u32 index, u8 *enable)
{
    if (enable == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_check_counter_in_para(chip_id, id, index);
    if (rc != 0) {
        return rc;
    }
    CounterLock hold(chip_id, id);
    const dpl_counter_stat &s = g_counter_stat[chip_id][id];
    if (s.entry_bitmap == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Counter entry bitmap not malloc, please check if counter started!\n");
        return SHR_E_NULL_PTR;
    }
    const u32 e = index - s.index_min;
    *enable = static_cast<u8>((s.entry_bitmap[e / 32] >> (e % 32)) & 1);
    return 0;
}

// ---- bring-up ---------------------------------------------------------------------------

static i32 _dpl_reef_counter_special_register(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_ATOLREEF:
        return dpl_atolreef_counter_special_register(chip_id);
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "error chip type!\n");
        return SHR_E_NOT_SUPPORT;
    }
}

i32 dpl_reef_counter_soft_init(u32 chip_id)
{
    if (g_counter_thread[chip_id] != nullptr) {
        return 0;
    }
    i32 rc = dpl_lock_create(chip_id, DPL_LOCK_COUNTER, "counter");
    if (rc == 0) {
        rc = _dpl_reef_counter_special_register(chip_id);
    }
    if (rc == 0) {
        rc = dpl_reef_counter_thread_init(chip_id);
    }
    if (rc != 0) {
        dpl_reef_counter_soft_deinit(chip_id);
    }
    return rc;
}

// Undoes whatever the init got done: stops the thread first.
i32 dpl_reef_counter_soft_deinit(u32 chip_id)
{
    const i32 rc = dpl_reef_counter_thread_deinit(chip_id);
    if (rc != 0) {
        return rc;
    }
    reef_counter_special[chip_id] = reef_counter_special_t{};
    dpl_lock_destroy(chip_id, DPL_LOCK_COUNTER);
    return 0;
}

// A pulse of the clearing of the chip's counters.
i32 dpl_reef_counter_hw_init(u32 chip_id)
{
    if (csl_reef_reg_in_build(chip_id, cib_lsw_hreg_clr_cnt, SHR_MOD_COUNTER, SHR_LOG_WARN,
                              "counter clearing register") != 0) {
        return 0;
    }
    i32 rc = csl_reef_reg_set_u32(chip_id, cib_lsw_hreg_clr_cnt, kClearPulse);
    rc |= csl_reef_reg_set_u32(chip_id, cib_lsw_hreg_clr_cnt, 0);
    return rc;
}

i32 dpl_reef_counter_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

const reef_counter_dispatch_t reef_counter_dispatch = {
    dpl_reef_counter_map_display,
    dpl_reef_counter_enable_set,
    dpl_reef_counter_enable_get,
    dpl_reef_counter_stats_get,
    dpl_reef_counter_stats_clear,
    dpl_reef_counter_thread_set,
    dpl_reef_counter_thread_get,
    dpl_reef_counter_global_display,
    dpl_reef_counter_size_get,
    dpl_reef_counter_entry_enable_set,
    dpl_reef_counter_entry_enable_get,
    nullptr,
    nullptr,
};

} // extern "C"
