// atolreef's part of the counter service.  An entry of a statistics table
// is four words, 16 bytes apart, with a 36-bit packet count in its bits
// 35:0 and a 44-bit byte count in bits 79:36; pa_stat's entry is two words,
// 8 bytes apart, with one 36-bit value.  The stride is the description's.
// causeid_stat is refreshed in two steps: the outer id 7 covers its entries
// 0 to 1023, the inner id 29 the entries 1024 to 1535.
#include <tide/property.h>

#include <cstdio>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_counter.h"

extern "C" {
u32 g_atolreef_counter_stat_addr[SHR_MAX_CHIPS][DPL_COUNTER_TAB_NUM];
const u32 g_atolreef_counter_id_map[1][2] = {{DPL_COUNTER_INNER_ID, COUNTER_CAUSEID_STAT}};
}

namespace {

// The table ids atolreef counts.
constexpr bool kCounted[DPL_COUNTER_TAB_NUM] = {
    true, true, true, true, false, false, true, true, true, true, true, true, true, true,
    true, true, true, true, true,  true,  true, true, false, false, true, true, false, false,
};

u64 _cycle_inner[SHR_MAX_CHIPS];

} // namespace

extern "C" {

i32 dpl_atolreef_counter_enable_property_get(u32 chip_id, u32 id, u32 *enable)
{
    if (id >= DPL_COUNTER_TAB_NUM || !kCounted[id]) {
        return SHR_E_NOT_SUPPORT;
    }
    char key[96];
    snprintf(key, sizeof(key), "counter_enable_%s", g_counter_baseinfo[id].name);
    *enable = shr_property_get(chip_id, key, 0) == 1 ? 1 : 0;
    return 0;
}

i32 dpl_atolreef_counter_get_hardware_value(u32 chip_id, u32 id, u32 index, u64 *pkt, u64 *bytes)
{
    const u32 tab_id = g_counter_baseinfo[id].tab_id;
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr || g_atolreef_counter_stat_addr[chip_id][id] == 0) {
        return SHR_E_NOT_SUPPORT;
    }
    const u32 words = cib_entry_words(tab->width);
    const u32 base = g_atolreef_counter_stat_addr[chip_id][id] + index * words * 4;
    u32 w[4] = {};
    i32 rc = 0;
    {
        CslModuleLock<csl_reef_module_tab_get_lock, csl_reef_module_tab_get_unlock> hold(chip_id, tab_id);
        // The first word latches the entry; the others, w1 to w3 (w1 for
        // pa_stat), are read as latched, and the last one frees the latch.
        for (u32 i = 0; i < words && i < 4 && rc == 0; i++) {
            rc = csl_reg_read32(chip_id, base + 4 * i, &w[i]);
        }
    }
    if (rc != 0) {
        return rc;
    }
    *pkt = w[0] | static_cast<u64>(w[1] & 0xF) << 32;
    *bytes = id == COUNTER_PA_STAT ? 0 : (w[1] >> 4 | static_cast<u64>(w[2] & 0xFFFF) << 28);
    return 0;
}

i32 dpl_atolreef_counter_get_ounter_id(u32 chip_id, u32 inner_id, u32 *outer_id)
{
    (void)chip_id;
    for (const auto &row : g_atolreef_counter_id_map) {
        if (row[0] == inner_id) {
            *outer_id = row[1];
            return 0;
        }
    }
    return SHR_E_NOT_FOUND;
}

i32 dpl_atolreef_counter_get_innerid_num(u32 chip_id, u32 *num)
{
    (void)chip_id;
    *num = sizeof(g_atolreef_counter_id_map) / sizeof(g_atolreef_counter_id_map[0]);
    return 0;
}

// Of id 7's share, two thirds stay with it and one third goes to the inner
// id, in step with their 1024 and 512 entries.
i32 dpl_atolreef_counter_innner_cycle_time_set(u32 chip_id)
{
    dpl_counter_stat &s = g_counter_stat[chip_id][COUNTER_CAUSEID_STAT];
    const u64 c = __atomic_load_n(&s.cycle_time, __ATOMIC_ACQUIRE) * 2 / 3;
    __atomic_store_n(&s.cycle_time, c & ~1ull, __ATOMIC_RELEASE);
    __atomic_store_n(&_cycle_inner[chip_id], c / 2, __ATOMIC_RELEASE);
    return 0;
}

i32 dpl_atolreef_counter_innner_cycle_time_get(u32 chip_id, u32 inner_id, u64 *cycle)
{
    *cycle = inner_id == DPL_COUNTER_INNER_ID ? __atomic_load_n(&_cycle_inner[chip_id], __ATOMIC_ACQUIRE) : 0;
    return 0;
}

i32 dpl_atolreef_counter_update_stat(u32 chip_id, u32 id)
{
    if (id == DPL_COUNTER_INNER_ID) {
        const dpl_counter_stat &s = g_counter_stat[chip_id][COUNTER_CAUSEID_STAT];
        return dpl_reef_counter_update_range(chip_id, COUNTER_CAUSEID_STAT,
                                             s.index_min + DPL_ATOLREEF_CAUSEID_OUTER_ENTRIES, s.index_max);
    }
    const dpl_counter_stat &s = g_counter_stat[chip_id][id];
    u32 last = s.index_max;
    if (id == COUNTER_CAUSEID_STAT && last >= s.index_min + DPL_ATOLREEF_CAUSEID_OUTER_ENTRIES) {
        last = s.index_min + DPL_ATOLREEF_CAUSEID_OUTER_ENTRIES - 1;
    }
    return dpl_reef_counter_update_range(chip_id, id, s.index_min, last);
}

// The totals of every enabled table since the last clear: bit 0 of `flags`
// shows only the non-zero ones, bit 1 clears them after the display.
i32 dpl_atolreef_counter_global_display(u32 chip_id, u32 flags)
{
    const dpl_counter_thread *t = g_counter_thread[chip_id];
    if (t == nullptr || g_counter_stat[chip_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Counter software didn't init!\n");
        return SHR_E_INIT;
    }
    csl_output_func(chip_id, 0, "%-4s%-40s%-22s%-22s\n", "id", "name", "packets", "bytes");
    for (u32 id = 0; id < DPL_COUNTER_TAB_NUM; id++) {
        dpl_counter_stat &s = g_counter_stat[chip_id][id];
        if (t->slot[id].supported == 0) {
            continue;
        }
        dpl_reef_counter_lock(chip_id, id);
        u64 pkt = 0, bytes = 0;
        const u32 per = g_counter_baseinfo[id].kind == DPL_COUNTER_KIND_PAIR ? 2 : 1;
        const u32 entries = s.index_max + 1 - s.index_min;
        for (u32 e = 0; s.cache != nullptr && e < entries; e++) {
            dpl_counter_entry *c = &s.cache[e * per];
            pkt += c[0].value - c[0].cleared;
            bytes += per == 2 ? c[1].value - c[1].cleared : 0;
            for (u32 i = 0; (flags & 2) != 0 && i < per; i++) {
                c[i].cleared = c[i].value;
            }
        }
        dpl_reef_counter_unlock(chip_id, id);
        if ((flags & 1) != 0 && pkt == 0 && bytes == 0) {
            continue;
        }
        csl_output_func(chip_id, 0, "%-4u%-40s%-22lu%-22lu\n", id, g_counter_baseinfo[id].name, (unsigned long)pkt,
                        (unsigned long)bytes);
    }
    return 0;
}

i32 dpl_atolreef_counter_special_register(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    for (u32 id = 0; id < DPL_COUNTER_TAB_NUM; id++) {
        const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, g_counter_baseinfo[id].tab_id);
        g_atolreef_counter_stat_addr[chip_id][id] = kCounted[id] && tab != nullptr ? tab->addr[0] : 0;
    }
    reef_counter_special[chip_id] = reef_counter_special_t{
        dpl_atolreef_counter_global_display,       nullptr,
        dpl_atolreef_counter_enable_property_get,  dpl_atolreef_counter_get_hardware_value,
        dpl_atolreef_counter_get_ounter_id,        dpl_atolreef_counter_get_innerid_num,
        dpl_atolreef_counter_innner_cycle_time_set, dpl_atolreef_counter_innner_cycle_time_get,
    };
    return 0;
}

} // extern "C"
