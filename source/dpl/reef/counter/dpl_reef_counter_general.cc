// The table of counters and the per-counter state: field widths from the
// catalogue, the counters' mutexes, the registered functions of the
// tables, the enables of the chip configuration, and the caches.
#include <cstring>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/counter/dpl_reef_counter.h"
#include "dpl/reef/port/dpl_reef_port.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_counter.h"

namespace {

// A pair table whose values are single fields, and one whose values are
// split into a high and a low field.
#define PAIR(name, tab, pkt, byt) {name, tab, DPL_COUNTER_KIND_PAIR, 0, cib_f_##pkt, 0, cib_f_##byt, 0}
#define SPLIT(name, tab, pkt, byt) {name, tab, DPL_COUNTER_KIND_PAIR, 1, cib_f_##pkt, 0, cib_f_##byt, 0}
#define SPLIT_HL(name, tab, pkt_h, pkt_l, byt_h, byt_l) \
    {name, tab, DPL_COUNTER_KIND_PAIR, 1, cib_f_##pkt_h, cib_f_##pkt_l, cib_f_##byt_h, cib_f_##byt_l}

} // namespace

extern "C" {

// The split tables of the car blocks keep each value in one field of the
// description; their width is the same sum as of a high and a low part.
const dpl_counter_baseinfo g_counter_baseinfo[DPL_COUNTER_TAB_NUM] = {
    {"pa_stat", cib_stat_pa_stat_result_tbl, DPL_COUNTER_KIND_ONE, 0, cib_f_pa_stat_pkt_num, 0, 0, 0},
    PAIR("mgid_stat", cib_stat_mgid_stat_result_tbl, mgid_stat_pkt_num, mgid_stat_byt_num),
    PAIR("iport_stat", cib_stat_iport_stat_result_tbl, iport_stat_pkt_num, iport_stat_byt_num),
    PAIR("oport_stat", cib_stat_oport_stat_result_tbl, oport_stat_result_pkt_num, oport_stat_result_byt_num),
    PAIR("itunnel_stat", cib_stat_itunnel_stat_result_tbl, itunnel_stat_pkt_num, itunnel_stat_byt_num),
    PAIR("otunnel_stat", cib_stat_otunnel_stat_result_tbl, otunnel_stat_pkt_num, otunnel_stat_byt_num),
    PAIR("vlan_acl_stat", cib_stat_vlan_acl_stat_result_tbl, vlan_acl_stat_pkt_num, vlan_acl_stat_byt_num),
    PAIR("causeid_stat", cib_stat_causeid_stat_result_tbl, causeid_stat_result_pkt_num, causeid_stat_result_byt_num),
    SPLIT_HL("tm_que_fwd_stat", cib_qm_que_fwd_stat_tbl, pkt_cnt_h4, pkt_cnt_l32, byte_cnt_h16, byte_cnt_l28),
    SPLIT_HL("tm_que_drop_stat", cib_qm_que_drop_stat_tbl, pkt_cnt_h4, pkt_cnt_l32, byte_cnt_h16, byte_cnt_l28),
    SPLIT("icar_acl_car_fwd_stat", cib_icar_acl_car_fwd_stat_tbl, acl_car_fwd_stat_pkt_num, acl_car_fwd_stat_byt_num),
    SPLIT("icar_acl_car_drop_stat", cib_icar_acl_car_drop_stat_tbl, acl_car_drop_stat_pkt_num,
          acl_car_drop_stat_byt_num),
    SPLIT("icar_port_car_fwd_stat", cib_icar_port_car_fwd_stat_tbl, port_car_fwd_stat_pkt_num,
          port_car_fwd_stat_byt_num),
    SPLIT("icar_port_car_drop_stat", cib_icar_port_car_drop_stat_tbl, port_car_drop_stat_pkt_num,
          port_car_drop_stat_byt_num),
    SPLIT("icar_vlan_suppression_car_fwd_stat", cib_icar_vlan_suppression_car_fwd_stat_tbl,
          vlan_suppression_car_fwd_stat_pkt_num, vlan_suppression_car_fwd_stat_byt_num),
    SPLIT("icar_vlan_suppression_car_drop_stat", cib_icar_vlan_suppression_car_drop_stat_tbl,
          vlan_suppression_car_drop_stat_pkt_num, vlan_suppression_car_drop_stat_byt_num),
    SPLIT("icar_port_suppression_car_fwd_stat", cib_icar_port_suppression_car_fwd_stat_tbl,
          port_suppression_car_fwd_stat_pkt_num, port_suppression_car_fwd_stat_byt_num),
    SPLIT("icar_port_suppression_car_drop_stat", cib_icar_port_suppression_car_drop_stat_tbl,
          port_suppression_car_drop_stat_pkt_num, port_suppression_car_drop_stat_byt_num),
    SPLIT("ecar_port_car_fwd_stat", cib_ecar_port_car_fwd_stat_tbl, port_car_fwd_stat_pkt_num,
          port_car_fwd_stat_byt_num),
    SPLIT("ecar_port_car_drop_stat", cib_ecar_port_car_drop_stat_tbl, port_car_drop_stat_pkt_num,
          port_car_drop_stat_byt_num),
    SPLIT("ecar_acl_car_fwd_stat", cib_ecar_acl_car_fwd_stat_tbl, acl_car_fwd_stat_pkt_num, acl_car_fwd_stat_byt_num),
    SPLIT("ecar_acl_car_drop_stat", cib_ecar_acl_car_drop_stat_tbl, acl_car_drop_stat_pkt_num,
          acl_car_drop_stat_byt_num),
    SPLIT("ecar_cpacl_car_fwd_stat", cib_ecar_cpacl_car_fwd_stat_tbl, cpacl_car_fwd_stat_pkt_num,
          cpacl_car_fwd_stat_byt_num),
    SPLIT("ecar_cpacl_car_drop_stat", cib_ecar_cpacl_car_drop_stat_tbl, cpacl_car_drop_stat_pkt_num,
          cpacl_car_drop_stat_byt_num),
    SPLIT("ecar_cause_id_car_fwd_stat", cib_ecar_cause_id_car_fwd_stat_tbl, cause_id_car_fwd_stat_pkt_num,
          cause_id_car_fwd_stat_byt_num),
    SPLIT("ecar_cause_id_car_drop_stat", cib_ecar_cause_id_car_drop_stat_tbl, cause_id_car_drop_stat_pkt_num,
          cause_id_car_drop_stat_byt_num),
    SPLIT("ecar_sport_ptype_car_fwd_stat", cib_ecar_sport_ptype_car_fwd_stat_tbl, sport_ptype_car_fwd_stat_pkt_num,
          sport_ptype_car_fwd_stat_byt_num),
    SPLIT("ecar_sport_ptype_car_drop_stat", cib_ecar_sport_ptype_car_drop_stat_tbl,
          sport_ptype_car_drop_stat_pkt_num, sport_ptype_car_drop_stat_byt_num),
};

dpl_counter_stat *g_counter_stat[SHR_MAX_CHIPS];
u64 g_counter_port_cycle_time[SHR_MAX_CHIPS];

} // extern "C"

namespace {

u16 _width(u32 chip_id, u32 tab_id, u32 field_id)
{
    cib_field_info f{};
    return field_id != 0 && csl_tab_field_info_get(chip_id, tab_id, 0, field_id, &f) == 0 ? f.width : 0;
}

// Widths and entry range of each table the chip counts.  A table the
// chip's catalogue lacks, or that the chip's hooks say it does not count,
// stays unsupported.
i32 _dpl_reef_counter_baseinfo_init(u32 chip_id)
{
    dpl_counter_thread *t = g_counter_thread[chip_id];
    dpl_counter_stat *st = g_counter_stat[chip_id];
    const auto prop = reef_counter_special[chip_id].enable_property_get;
    for (u32 id = 0; id < DPL_COUNTER_TAB_NUM; id++) {
        const dpl_counter_baseinfo &b = g_counter_baseinfo[id];
        const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, b.tab_id);
        u32 enable = 0;
        if (tab == nullptr || prop == nullptr || prop(chip_id, id, &enable) == SHR_E_NOT_SUPPORT) {
            continue;
        }
        dpl_counter_stat &s = st[id];
        s.pkt_bits = _width(chip_id, b.tab_id, b.pkt_field);
        s.pkt_low_bits = _width(chip_id, b.tab_id, b.pkt_low_field);
        s.byt_bits = _width(chip_id, b.tab_id, b.byt_field);
        s.byt_low_bits = _width(chip_id, b.tab_id, b.byt_low_field);
        s.index_min = tab->index_min;
        s.index_max = tab->index_max;
        t->slot[id].supported = 1;
    }
    // The port counters are always there; the inner counter stands for a
    // part of its outer table.
    t->slot[DPL_COUNTER_PORT_ID].supported = 1;
    t->slot[DPL_COUNTER_INNER_ID].supported = t->slot[COUNTER_CAUSEID_STAT].supported;
    return 0;
}

i32 _dpl_reef_counter_mutex_init(u32 chip_id)
{
    for (u32 id = 0; id < DPL_COUNTER_SLOT_NUM; id++) {
        dpl_counter_stat &s = g_counter_stat[chip_id][id];
        s.mutex = xsal_mutex_create("counter");
        if (s.mutex == nullptr) {
            return SHR_E_MEMORY;
        }
    }
    return 0;
}

i32 _dpl_reef_counter_register_init(u32 chip_id)
{
    dpl_counter_thread *t = g_counter_thread[chip_id];
    const dpl_counter_fn update =
        shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? dpl_atolreef_counter_update_stat : nullptr;
    for (u32 id = 0; id < DPL_COUNTER_TAB_NUM; id++) {
        if (t->slot[id].supported != 0) {
            t->slot[id].update = update;
            t->slot[id].malloc_fn = dpl_reef_counter_stat_malloc;
            t->slot[id].free_fn = dpl_reef_counter_stat_free;
        }
    }
    if (t->slot[DPL_COUNTER_INNER_ID].supported != 0) {
        t->slot[DPL_COUNTER_INNER_ID].update = update;
    }
    return 0;
}

// The tables enabled by the chip configuration, then the port counters.
void _dpl_reef_counter_enable_init(u32 chip_id)
{
    const auto prop = reef_counter_special[chip_id].enable_property_get;
    for (u32 id = 0; id < DPL_COUNTER_TAB_NUM && prop != nullptr; id++) {
        u32 enable = 0;
        if (g_counter_thread[chip_id]->slot[id].supported != 0 && prop(chip_id, id, &enable) == 0 && enable == 1) {
            const i32 rc = dpl_reef_counter_enable_set(chip_id, id, 1);
            if (rc != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "counter-%u enable failed!\n", id);
            }
        }
    }
    dpl_reef_port_counter_init(chip_id);
}

} // namespace

extern "C" {

i32 dpl_reef_counter_general_init(u32 chip_id)
{
    auto *st = static_cast<dpl_counter_stat *>(
        xsal_malloc(sizeof(dpl_counter_stat) * DPL_COUNTER_SLOT_NUM, "counter_stat", SHR_MOD_COUNTER));
    if (st == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(st, 0, sizeof(dpl_counter_stat) * DPL_COUNTER_SLOT_NUM);
    g_counter_stat[chip_id] = st;
    i32 rc = _dpl_reef_counter_baseinfo_init(chip_id);
    if (rc == 0) {
        rc = _dpl_reef_counter_mutex_init(chip_id);
    }
    if (rc == 0) {
        rc = _dpl_reef_counter_register_init(chip_id);
    }
    if (rc == 0) {
        rc = dpl_reef_counter_cycle_time_set(chip_id);
    }
    if (rc == 0) {
        _dpl_reef_counter_enable_init(chip_id);
    }
    return rc;
}

void dpl_reef_counter_general_deinit(u32 chip_id)
{
    dpl_counter_stat *st = g_counter_stat[chip_id];
    if (st == nullptr) {
        return;
    }
    for (u32 id = 0; id < DPL_COUNTER_SLOT_NUM; id++) {
        xsal_mem_free(st[id].cache);
        xsal_mem_free(st[id].entry_bitmap);
        if (st[id].mutex != nullptr) {
            xsal_mutex_destroy(st[id].mutex);
        }
    }
    xsal_mem_free(st);
    g_counter_stat[chip_id] = nullptr;
}

i32 dpl_reef_counter_stat_malloc(u32 chip_id, u32 id)
{
    dpl_counter_stat &s = g_counter_stat[chip_id][id];
    if (s.cache != nullptr) {
        return 0;
    }
    const u32 entries = s.index_max + 1 - s.index_min;
    const u32 per_entry = g_counter_baseinfo[id].kind == DPL_COUNTER_KIND_PAIR ? 2 : 1;
    const u64 cache_bytes = sizeof(dpl_counter_entry) * entries * per_entry;
    const u64 bitmap_bytes = sizeof(u32) * ((entries + 31) / 32);
    auto *cache = static_cast<dpl_counter_entry *>(xsal_malloc(cache_bytes, "counter_cache", SHR_MOD_COUNTER));
    auto *bitmap = static_cast<u32 *>(xsal_malloc(bitmap_bytes, "counter_bitmap", SHR_MOD_COUNTER));
    if (cache == nullptr || bitmap == nullptr) {
        xsal_mem_free(cache);
        xsal_mem_free(bitmap);
        SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "counter-%u cache malloc failed!\n", id);
        return SHR_E_MEMORY;
    }
    memset(cache, 0, cache_bytes);
    memset(bitmap, 0xFF, bitmap_bytes);
    dpl_reef_counter_lock(chip_id, id);
    s.cache = cache;
    s.entry_bitmap = bitmap;
    dpl_reef_counter_unlock(chip_id, id);
    return 0;
}

i32 dpl_reef_counter_stat_free(u32 chip_id, u32 id)
{
    dpl_counter_stat &s = g_counter_stat[chip_id][id];
    dpl_reef_counter_lock(chip_id, id);
    xsal_mem_free(s.cache);
    xsal_mem_free(s.entry_bitmap);
    s.cache = nullptr;
    s.entry_bitmap = nullptr;
    dpl_reef_counter_unlock(chip_id, id);
    return 0;
}

i32 dpl_reef_counter_lock(u32 chip_id, u32 id)
{
    return xsal_mutex_lock(g_counter_stat[chip_id][id].mutex);
}

i32 dpl_reef_counter_unlock(u32 chip_id, u32 id)
{
    return xsal_mutex_unlock(g_counter_stat[chip_id][id].mutex);
}

void dpl_reef_counter_update_stat_entry(u32 chip_id, u32 bits, u64 hw, dpl_counter_entry *entry)
{
    (void)chip_id;
    if (entry->last > hw) {
        entry->value += (1ull << bits) + hw - entry->last;
    } else {
        entry->value += hw - entry->last;
    }
    entry->last = hw;
}

i32 dpl_reef_counter_update_range(u32 chip_id, u32 id, u32 first, u32 last)
{
    const auto read = reef_counter_special[chip_id].get_hardware_value;
    if (read == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    dpl_reef_counter_lock(chip_id, id);
    dpl_counter_stat &s = g_counter_stat[chip_id][id];
    i32 rc = 0;
    if (s.cache == nullptr || s.entry_bitmap == nullptr) {
        rc = SHR_E_MEMORY;
    }
    const bool pair = g_counter_baseinfo[id].kind == DPL_COUNTER_KIND_PAIR;
    const u32 pkt_bits = s.pkt_bits + s.pkt_low_bits;
    const u32 byt_bits = s.byt_bits + s.byt_low_bits;
    for (u32 index = first; rc == 0 && index <= last; index++) {
        const u32 e = index - s.index_min;
        if (((s.entry_bitmap[e / 32] >> (e % 32)) & 1) == 0) {
            continue;
        }
        u64 pkt = 0, bytes = 0;
        rc = read(chip_id, id, index, &pkt, &bytes);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_COUNTER, "Wrong! get entry-%u failed!\n", index);
            break;
        }
        if (pair) {
            dpl_reef_counter_update_stat_entry(chip_id, byt_bits, bytes, &s.cache[2 * e + 1]);
            dpl_reef_counter_update_stat_entry(chip_id, pkt_bits, pkt, &s.cache[2 * e]);
        } else {
            dpl_reef_counter_update_stat_entry(chip_id, pkt_bits, pkt, &s.cache[e]);
        }
    }
    dpl_reef_counter_unlock(chip_id, id);
    return rc;
}

} // extern "C"
