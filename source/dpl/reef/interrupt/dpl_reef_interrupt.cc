// The interrupt family of the reef family.  Every call checks its numbers
// against the chip's tables before it takes the engine's lock; the actions
// on the registers take the module's register lock around each
// read-modify-write, so that the interrupt thread's masking and an
// application's enable of another bit of the same register do not undo
// each other.
#include <tide/property.h>

#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/interrupt/dpl_reef_interrupt.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_interrupt_cm.h"

namespace {

u32 g_dpl_reef_interrupt_soft_init[SHR_MAX_CHIPS];

constexpr u32 kActionMax = INTR_CLEAR;
constexpr u32 kNoCount = 0xFFFFFFFFu;

const char *_name(u32 module_id)
{
    return module_id < CIB_MODULE_COUNT ? g_cib_module_name[module_id] : "";
}

// The chip's tables, or the refusal of a chip that has none.
const intr_module_info *_tables(u32 chip_id, i32 *rc)
{
    const intr_module_info *tab = dpl_reef_interrupt_module_info(chip_id);
    *rc = 0;
    if (tab == nullptr) {
        const u32 type = shr_chip_type_get(chip_id);
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR,
                    type == SHR_CHIP_TYPE_KELPREEF || type == SHR_CHIP_TYPE_KELPREEF2
                        ? "ERROR! Can not found reef interrupt module info!\n"
                        : "ERROR! chip id not belong to reef series!\n");
        *rc = SHR_E_PARAM;
    }
    return tab;
}

bool _has_info(const intr_module_info &mi)
{
    return mi.subids != nullptr && mi.subid_count != 0;
}

bool _any_wild(intr_module module, intr_type type)
{
    return module.module_id == INTR_MODULE_ALL || module.subid == INTR_SUBID_ALL || type.intr_id == INTR_ID_ALL ||
           type.addr_idx == INTR_ADDR_ALL;
}

i32 _null(u32 chip_id, const void *p, const char *what)
{
    if (p == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! %s is NULL!\n", what);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _module_check(u32 chip_id, u32 module_id)
{
    if (module_id >= CIB_MODULE_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! module id(%u) must less than %u!\n", module_id, CIB_MODULE_COUNT);
        return SHR_E_PARAM;
    }
    return 0;
}

u32 _bits(const intr_type_info &t)
{
    return t.bit_width >= 32 ? 0xFFFFFFFFu : ((1u << t.bit_width) - 1) << t.bit_start;
}

u32 _instances(u32 chip_id, u32 reg_id)
{
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
    return reg == nullptr ? 0 : static_cast<u32>(reg->a) * reg->b;
}

// The instances an action or a read covers: all, or one below the count.
i32 _instance_range(u32 chip_id, u32 module_id, u32 reg_id, u32 addr_idx, u32 *first, u32 *last)
{
    const u32 count = _instances(chip_id, reg_id);
    if (addr_idx == INTR_ADDR_ALL) {
        *first = 0;
        *last = count == 0 ? 0 : count - 1;
        return count == 0 ? SHR_E_NOT_FOUND : 0;
    }
    if (addr_idx >= count) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! In module %s(id:%u): addr_idx must less than %u!\n",
                    _name(module_id), module_id, count);
        return SHR_E_PARAM;
    }
    *first = *last = addr_idx;
    return 0;
}

// One action on one type, all instances or one.
i32 _type_action(u32 chip_id, u32 module_id, u32 subid, const intr_type_info &t, u32 addr_idx, u32 action)
{
    const u32 reg_id = action == INTR_CLEAR ? t.status_reg_id : t.mask_reg_id;
    if (reg_id == INTR_NO_REG) {
        if (action != INTR_CLEAR) {
            return 0; // a type without mask register is always on
        }
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Module %s(id:%u) subid(%u) has no status intr reg!\n",
                    _name(module_id), module_id, subid);
        return SHR_E_NOT_FOUND;
    }
    u32 first = 0, last = 0;
    i32 rc = _instance_range(chip_id, module_id, reg_id, addr_idx, &first, &last);
    const u32 bits = _bits(t);
    for (u32 i = first; rc == 0 && i <= last; i++) {
        const u32 id = CIB_ID(reg_id, i);
        if (action == INTR_CLEAR) {
            // Only the type's bits: a write-one-to-clear register clears
            // that interrupt alone.
            rc = csl_reef_reg_set_u32(chip_id, id, bits);
            continue;
        }
        CslRegLock lock(chip_id, module_id);
        u32 v = 0;
        rc = csl_reef_reg_get_u32(chip_id, id, &v);
        if (rc == 0) {
            rc = csl_reef_reg_set_u32(chip_id, id, action == INTR_ENABLE ? v | bits : v & ~bits);
        }
    }
    return rc;
}

// Calls `fn(module_id)` for the module named, or each module with
// interrupts for INTR_MODULE_ALL; the first failure ends the walk.
template <typename F>
i32 _each_module(const intr_module_info *tab, u32 module_id, F fn)
{
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        if ((module_id == INTR_MODULE_ALL && _has_info(tab[m])) || m == module_id) {
            const i32 rc = fn(m);
            if (rc != 0) {
                return rc;
            }
        }
    }
    return 0;
}

// The same for each type of the subids and types named.
template <typename F>
i32 _each_type(const intr_module_info &mi, u32 subid, u32 intr_id, F fn)
{
    for (u32 s = 0; s < mi.subid_count; s++) {
        if (subid != INTR_SUBID_ALL && s != subid) {
            continue;
        }
        for (u32 t = 0; t < mi.subids[s].type_count; t++) {
            if (intr_id == INTR_ID_ALL || t == intr_id) {
                const i32 rc = fn(s, t);
                if (rc != 0) {
                    return rc;
                }
            }
        }
    }
    return 0;
}

// The checks every call of one interrupt at a time makes: the chip's
// tables, no wild card, the numbers in range.
i32 _one(u32 chip_id, intr_module module, intr_type type, const char *refusal)
{
    i32 rc = 0;
    if (_tables(chip_id, &rc) == nullptr) {
        return rc;
    }
    if (_any_wild(module, type)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "%s", refusal);
        return SHR_E_PARAM;
    }
    return dpl_reef_interrupt_check_para(chip_id, module, type);
}

i32 _read_type(u32 chip_id, intr_module module, intr_type type, u32 kind, u32 *out, const char *what)
{
    i32 rc = _null(chip_id, out, what);
    if (rc == 0 && _tables(chip_id, &rc) == nullptr) {
        return rc;
    }
    if (rc != 0) {
        return rc;
    }
    if (module.module_id == INTR_MODULE_ALL || module.subid == INTR_SUBID_ALL) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Not support get all module or get all subid at a time!\n");
        return SHR_E_NOT_SUPPORT;
    }
    rc = dpl_reef_interrupt_check_para(chip_id, module, type);
    if (rc != 0) {
        return rc;
    }
    IntrLock lock(chip_id, __func__, __LINE__);
    return dpl_reef_interrupt_action_get(chip_id, module, type, kind, out);
}

// Index of the per-port interrupt registers of a MAC: MAGs 0 and 1 have
// four MACs each, MAGs 2 and 3 eight, MAGs 4 and 5 one, MAGs 6 and 7 four.
constexpr u32 kPortRegIndexCount = 34;
u32 _port_reg_index(u32 mag, u32 mac)
{
    if (mag <= 1) {
        return mag * 4 + mac;
    }
    if (mag <= 3) {
        return (mag - 1) * 8 + mac;
    }
    if (mag <= 5) {
        return mag + mac + 20;
    }
    return mag * 4 + mac + 2;
}

void _port_of_reg_index(u32 index, u32 *mag, u32 *mac)
{
    if (index < 8) {
        *mag = index / 4, *mac = index % 4;
    } else if (index < 24) {
        *mag = index / 8 + 1, *mac = index % 8;
    } else if (index < 26) {
        *mag = index - 20, *mac = 0;
    } else {
        *mag = (index - 2) / 4, *mac = (index - 2) % 4;
    }
}

} // namespace

extern "C" {

const reef_interrupt_dispatch_t reef_interrupt_dispatch = {
    dpl_reef_interrupt_support_module_dump,
    dpl_reef_interrupt_module_status_dump,
    dpl_reef_interrupt_clear_all,
    dpl_reef_interrupt_clear,
    dpl_reef_interrupt_enable_set,
    dpl_reef_interrupt_mask_get,
    dpl_reef_interrupt_status_get,
    dpl_reef_interrupt_subid_types_get,
    dpl_reef_interrupt_onesubid_types_get,
    dpl_reef_interrupt_base_info_get,
    dpl_reef_interrupt_debug_get,
    dpl_reef_interrupt_debug_info_get,
    dpl_reef_interrupt_callback_register,
    dpl_reef_interrupt_callback_unregister,
    dpl_reef_interrupt_stats_get,
    dpl_reef_interrupt_stats_clear,
    dpl_reef_interrupt_ecc_error_cnt_get,
    dpl_reef_interrupt_ecc_types_get,
    dpl_reef_interrupt_ecc_info_get,
    dpl_reef_interrupt_ecc_lpm_se_get,
    dpl_reef_interrupt_ecc_default_action_set,
    dpl_reef_interrupt_default_action_get,
    dpl_reef_interrupt_lport_to_reg_index,
    dpl_reef_interrupt_reg_index_to_lport,
};

const intr_module_info *dpl_reef_interrupt_module_info(u32 chip_id)
{
    return shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? dpl_atolreef_interrupt_module_info_get() : nullptr;
}

i32 dpl_reef_interrupt_check_para(u32 chip_id, intr_module module, intr_type type)
{
    i32 rc = 0;
    const intr_module_info *tab = _tables(chip_id, &rc);
    if (tab == nullptr) {
        return rc;
    }
    if (module.module_id != INTR_MODULE_ALL && (rc = _module_check(chip_id, module.module_id)) != 0) {
        return rc;
    }
    return _each_module(tab, module.module_id, [&](u32 m) -> i32 {
        const intr_module_info &mi = tab[m];
        if (!_has_info(mi)) {
            if (module.subid == INTR_SUBID_ALL) {
                return 0;
            }
            SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Module %s(id:%u) has no interrupt information!\n", _name(m), m);
            return SHR_E_PARAM;
        }
        if (module.subid != INTR_SUBID_ALL && module.subid >= mi.subid_count) {
            SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! In module %s(id:%u): subid must less than %u!\n", _name(m), m,
                        mi.subid_count);
            return SHR_E_PARAM;
        }
        if (type.intr_id == INTR_ID_ALL) {
            return 0;
        }
        for (u32 s = 0; s < mi.subid_count; s++) {
            if ((module.subid == INTR_SUBID_ALL || s == module.subid) && type.intr_id >= mi.subids[s].type_count) {
                SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! In module %s(id:%u) subid(%u): intr id must less than %u!\n",
                            _name(m), m, s, mi.subids[s].type_count);
                return SHR_E_PARAM;
            }
        }
        return 0;
    });
}

i32 dpl_reef_interrupt_action_set(u32 chip_id, u32 module_id, u32 subid, u32 intr_id, u32 addr_idx, u32 action)
{
    const intr_module_info *tab = dpl_reef_interrupt_module_info(chip_id);
    if (tab == nullptr) {
        return 0;
    }
    if (module_id >= CIB_MODULE_COUNT || !_has_info(tab[module_id])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! module id(%u) hasn't intr reg!\n", module_id);
        return SHR_E_PARAM;
    }
    if (action > kActionMax) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! action must be one of (INTR_ENABLE | INTR_DISABLE | INTR_CLEAR)\n");
        return SHR_E_PARAM;
    }
    const intr_module_info &mi = tab[module_id];
    if ((subid != INTR_SUBID_ALL && subid >= mi.subid_count) ||
        (subid != INTR_SUBID_ALL && intr_id != INTR_ID_ALL && intr_id >= mi.subids[subid].type_count)) {
        return dpl_reef_interrupt_check_para(chip_id, {module_id, subid}, {intr_id, addr_idx});
    }
    return _each_type(mi, subid, intr_id, [&](u32 s, u32 t) {
        return _type_action(chip_id, module_id, s, mi.subids[s].types[t], addr_idx, action);
    });
}

i32 dpl_reef_interrupt_action_get(u32 chip_id, intr_module module, intr_type type, u32 kind, u32 *value)
{
    const intr_module_info *tab = dpl_reef_interrupt_module_info(chip_id);
    if (tab == nullptr) {
        return 0;
    }
    const intr_subid_info &sub = tab[module.module_id].subids[module.subid];
    const intr_type_info &t = sub.types[type.intr_id == INTR_ID_ALL ? 0 : type.intr_id];
    const u32 reg_id = kind == DPL_INTR_STATUS ? t.status_reg_id : t.mask_reg_id;
    if (reg_id == INTR_NO_REG) {
        if (kind == DPL_INTR_MASK) {
            *value = 0xFFFFFFFFu; // always enabled
            return 0;
        }
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Module(id:%u name:%s) subid(%u) has no status intr reg!\n",
                    module.module_id, _name(module.module_id), module.subid);
        return SHR_E_NOT_FOUND;
    }
    // All instances read as one: a bit set in any of them.
    u32 first = 0, last = 0;
    i32 rc = _instance_range(chip_id, module.module_id, reg_id, type.addr_idx, &first, &last);
    u32 v = 0;
    for (u32 i = first; rc == 0 && i <= last; i++) {
        u32 word = 0;
        rc = csl_reef_reg_get_u32(chip_id, CIB_ID(reg_id, i), &word);
        v |= word;
    }
    if (rc == 0) {
        *value = type.intr_id == INTR_ID_ALL ? v : (v & _bits(t)) >> t.bit_start;
    }
    return rc;
}

// ---- the operations of the family ----------------------------------------------------

i32 dpl_reef_interrupt_support_module_dump(u32 chip_id)
{
    i32 rc = 0;
    const intr_module_info *tab = _tables(chip_id, &rc);
    if (tab == nullptr) {
        return rc;
    }
    csl_output_func(chip_id, 0, "module id        module name\n");
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        if (_has_info(tab[m])) {
            csl_output_func(chip_id, 0, "  %-2u               %s\n", m, _name(m));
        }
    }
    return 0;
}

i32 dpl_reef_interrupt_module_status_dump(u32 chip_id, intr_module module, intr_type type)
{
    i32 rc = 0;
    const intr_module_info *tab = _tables(chip_id, &rc);
    if (tab == nullptr) {
        return rc;
    }
    if (module.module_id == INTR_MODULE_ALL) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Only support dump one module at a time!\n");
        return SHR_E_PARAM;
    }
    if ((rc = dpl_reef_interrupt_check_para(chip_id, module, type)) != 0) {
        return rc;
    }
    const intr_module_info &mi = tab[module.module_id];
    if (!_has_info(mi)) {
        return 0;
    }
    IntrLock lock(chip_id, __func__, __LINE__);
    csl_output_func(chip_id, 0, "  Module %s(id:%u)\n   Subid  Intr ID  Addr  Status  Mask  Name\n",
                    _name(module.module_id), module.module_id);
    return _each_type(mi, module.subid, type.intr_id, [&](u32 s, u32 t) -> i32 {
        const intr_type_info &ti = mi.subids[s].types[t];
        u32 first = 0, last = 0;
        i32 r = _instance_range(chip_id, module.module_id, ti.status_reg_id, type.addr_idx, &first, &last);
        for (u32 i = first; r == 0 && i <= last; i++) {
            u32 status = 0, mask = 0;
            r = dpl_reef_interrupt_action_get(chip_id, {module.module_id, s}, {t, i}, DPL_INTR_STATUS, &status);
            if (r == 0) {
                r = dpl_reef_interrupt_action_get(chip_id, {module.module_id, s}, {t, i}, DPL_INTR_MASK, &mask);
            }
            if (r == 0) {
                csl_output_func(chip_id, 0, "    %02u      %02u      %-4u  %-6u  %-4u  %s\n", s, t, i, status,
                                ti.mask_reg_id == INTR_NO_REG ? 1u : mask, ti.name);
            }
        }
        return r;
    });
}

i32 dpl_reef_interrupt_clear_all(u32 chip_id)
{
    const intr_module_info *tab = dpl_reef_interrupt_module_info(chip_id);
    if (tab == nullptr) {
        return 0;
    }
    IntrLock lock(chip_id, __func__, __LINE__);
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        for (u32 s = 0; _has_info(tab[m]) && s < tab[m].subid_count; s++) {
            const intr_subid_info &sub = tab[m].subids[s];
            if (sub.type_count == 0 || sub.types[0].status_reg_id == INTR_NO_REG) {
                continue;
            }
            const i32 rc =
                csl_reef_reg_set_u32(chip_id, CIB_ID(sub.types[0].status_reg_id, CIB_ALL_INSTANCES), 0xFFFFFFFFu);
            if (rc != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! module(id:%u) subid(%u) write failed!\n", m, s);
                return rc;
            }
        }
    }
    return 0;
}

// clear and enable_set: an action over everything the wild cards name,
// modules without interrupts left out.
static i32 _act(u32 chip_id, intr_module module, intr_type type, u32 action)
{
    i32 rc = 0;
    const intr_module_info *tab = _tables(chip_id, &rc);
    if (tab == nullptr || (rc = dpl_reef_interrupt_check_para(chip_id, module, type)) != 0) {
        return rc;
    }
    IntrLock lock(chip_id, __func__, __LINE__);
    return _each_module(tab, module.module_id, [&](u32 m) -> i32 {
        return _has_info(tab[m]) ? dpl_reef_interrupt_action_set(chip_id, m, module.subid, type.intr_id,
                                                                 type.addr_idx, action)
                                 : 0;
    });
}

i32 dpl_reef_interrupt_clear(u32 chip_id, intr_module module, intr_type type)
{
    return _act(chip_id, module, type, INTR_CLEAR);
}

i32 dpl_reef_interrupt_enable_set(u32 chip_id, intr_module module, intr_type type, u32 enable)
{
    return _act(chip_id, module, type, enable != 0 ? INTR_ENABLE : INTR_DISABLE);
}

i32 dpl_reef_interrupt_mask_get(u32 chip_id, intr_module module, intr_type type, u32 *mask)
{
    return _read_type(chip_id, module, type, DPL_INTR_MASK, mask, "mask");
}

i32 dpl_reef_interrupt_status_get(u32 chip_id, intr_module module, intr_type type, u32 *status)
{
    return _read_type(chip_id, module, type, DPL_INTR_STATUS, status, "status");
}

i32 dpl_reef_interrupt_subid_types_get(u32 chip_id, u32 module_id, u32 *count)
{
    i32 rc = _null(chip_id, count, "subid");
    const intr_module_info *tab = rc == 0 ? _tables(chip_id, &rc) : nullptr;
    if (tab == nullptr || (rc = _module_check(chip_id, module_id)) != 0) {
        return rc;
    }
    *count = _has_info(tab[module_id]) ? tab[module_id].subid_count : 0;
    return 0;
}

i32 dpl_reef_interrupt_onesubid_types_get(u32 chip_id, u32 module_id, u32 subid, u32 *count)
{
    i32 rc = _null(chip_id, count, "intr_types");
    const intr_module_info *tab = rc == 0 ? _tables(chip_id, &rc) : nullptr;
    if (tab == nullptr || (rc = _module_check(chip_id, module_id)) != 0) {
        return rc;
    }
    if (subid == INTR_SUBID_ALL) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! In module %s(id:%u): subid must less than %u!\n", _name(module_id),
                    module_id, static_cast<u32>(tab[module_id].subid_count));
        return SHR_E_PARAM;
    }
    if ((rc = dpl_reef_interrupt_check_para(chip_id, {module_id, subid}, {INTR_ID_ALL, 0})) != 0) {
        return rc;
    }
    *count = tab[module_id].subids[subid].type_count;
    return 0;
}

i32 dpl_reef_interrupt_base_info_get(u32 chip_id, u32 module_id)
{
    i32 rc = 0;
    const intr_module_info *tab = _tables(chip_id, &rc);
    if (tab == nullptr || (rc = _module_check(chip_id, module_id)) != 0) {
        return rc;
    }
    const intr_module_info &mi = tab[module_id];
    const u32 subids = _has_info(mi) ? mi.subid_count : 0;
    csl_output_func(chip_id, 0, "  Module name: %-17s    Module id: %u\n", _name(module_id), module_id);
    csl_output_func(chip_id, 0, "  Module subid num: %u\n", subids);
    csl_output_func(chip_id, 0, "  Data format: reg name[field start bit.field bits]\n");
    for (u32 s = 0; s < subids; s++) {
        const intr_subid_info &sub = mi.subids[s];
        csl_output_func(chip_id, 0, "  Subid %u: %s, %u types\n", s, sub.name, sub.type_count);
        for (u32 t = 0; t < sub.type_count; t++) {
            const intr_type_info &ti = sub.types[t];
            char status[64], mask[64];
            xsal_snprintf(status, sizeof(status), "%s[%2u.%u]", ti.status_reg_name, ti.bit_start, ti.bit_width);
            if (ti.mask_reg_id == INTR_NO_REG) {
                xsal_snprintf(mask, sizeof(mask), "No Mask Reg");
            } else {
                xsal_snprintf(mask, sizeof(mask), "%s[%2u.%u]", ti.mask_reg_name, ti.bit_start, ti.bit_width);
            }
            csl_output_func(chip_id, 0, "    %-2u  %-32s  %-36s  %s\n", t, ti.name, status, mask);
        }
    }
    return 0;
}

i32 dpl_reef_interrupt_debug_get(u32 chip_id, intr_module module, intr_type type, intr_debug *debug)
{
    i32 rc = _null(chip_id, debug, "debug");
    if (rc == 0) {
        rc = _null(chip_id, debug->name, "name");
    }
    const intr_module_info *tab = rc == 0 ? _tables(chip_id, &rc) : nullptr;
    if (tab == nullptr) {
        return rc;
    }
    const bool whole = module.module_id != INTR_MODULE_ALL && module.subid != INTR_SUBID_ALL;
    if (debug->type == 0 && !whole) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Must specific module id and sub id to get subid name!\n");
        return SHR_E_PARAM;
    }
    if (debug->type == 1 && (!whole || type.intr_id == INTR_ID_ALL)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Must specific module id, sub id and intr id to get intr name!\n");
        return SHR_E_PARAM;
    }
    if (debug->type > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! Unknown debug type!\n");
        return SHR_E_PARAM;
    }
    if ((rc = dpl_reef_interrupt_check_para(chip_id, module, type)) != 0) {
        return rc;
    }
    const intr_subid_info &sub = tab[module.module_id].subids[module.subid];
    const char *name = debug->type == 0 ? sub.name : sub.types[type.intr_id].name;
    if (debug->size > 0) {
        xsal_strncpy_s(debug->name, debug->size, name, debug->size - 1);
    }
    return 0;
}

i32 dpl_reef_interrupt_debug_info_get(u32 chip_id, intr_module module, intr_type type, intr_debug_info *info)
{
    i32 rc = _null(chip_id, info, "debug_info");
    if (rc != 0 || (rc = _one(chip_id, module, type, "ERROR! Only support get one debug info at a time!\n")) != 0) {
        return rc;
    }
    const intr_type_info &t =
        dpl_reef_interrupt_module_info(chip_id)[module.module_id].subids[module.subid].types[type.intr_id];
    if (t.debug_reg_count == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_INTR, "[INTR] The intr has not debug reg(module id:%u subid:%u intr id:%u)!\n",
                    module.module_id, module.subid, type.intr_id);
        return SHR_E_NOT_FOUND;
    }
    u32 first = 0, last = 0;
    if ((rc = _instance_range(chip_id, module.module_id, t.status_reg_id, type.addr_idx, &first, &last)) != 0) {
        return rc;
    }
    info->count = 0;
    for (u32 i = 0; i < t.debug_reg_count && i < INTR_DEBUG_REG_MAX; i++) {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, t.debug_regs[i]);
        const u32 inst = _instances(chip_id, t.debug_regs[i]) > 1 ? type.addr_idx : 0;
        if (reg == nullptr || reg->addr == nullptr ||
            (rc = csl_reef_reg_get_u32(chip_id, CIB_ID(t.debug_regs[i], inst), &info->value[i])) != 0) {
            return rc != 0 ? rc : SHR_E_NOT_FOUND;
        }
        info->addr[i] = reg->addr[inst];
        info->count++;
    }
    return 0;
}

// The callback of one type, under the interrupt lock, so that the thread
// never sees a row half written.
static i32 _callback_set(u32 chip_id, intr_module module, u32 intr_id, intr_callback callback)
{
    IntrLock lock(chip_id, __func__, __LINE__);
    atolreef_intr_callback_info *row =
        dpl_atolreef_interrupt_callback_row(chip_id, module.module_id, module.subid, intr_id);
    if (row == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) does not init!\n", chip_id);
        return SHR_E_INIT;
    }
    row->callback = callback;
    return 0;
}

i32 dpl_reef_interrupt_callback_register(u32 chip_id, intr_module module, intr_type type, intr_callback callback)
{
    i32 rc = 0;
    const intr_module_info *tab = _tables(chip_id, &rc);
    if (tab == nullptr) {
        return rc;
    }
    if (module.module_id < CIB_MODULE_COUNT && !_has_info(tab[module.module_id])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! module(%u) has no interrupt!\n", module.module_id);
        return SHR_E_PARAM;
    }
    if (callback == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! callback function is NULL!\n");
        return SHR_E_PARAM;
    }
    if ((rc = _one(chip_id, module, {type.intr_id, 0}, "ERROR! Only support register one callback at a time!\n")) != 0) {
        return rc;
    }
    return _callback_set(chip_id, module, type.intr_id, callback);
}

i32 dpl_reef_interrupt_callback_unregister(u32 chip_id, intr_module module, intr_type type)
{
    const i32 rc = _one(chip_id, module, {type.intr_id, 0}, "ERROR! Only support unregister one callback at a time!\n");
    return rc != 0 ? rc : _callback_set(chip_id, module, type.intr_id, nullptr);
}

i32 dpl_reef_interrupt_stats_get(u32 chip_id, intr_module module, intr_type type, u32 *count)
{
    i32 rc = _null(chip_id, count, "cnt");
    if (rc != 0 || (rc = _one(chip_id, module, {type.intr_id, 0}, "ERROR! Only support get one stats at a time!\n")) != 0) {
        return rc;
    }
    IntrLock lock(chip_id, __func__, __LINE__);
    const atolreef_intr_callback_info *row =
        dpl_atolreef_interrupt_callback_row(chip_id, module.module_id, module.subid, type.intr_id);
    if (row == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) does not init!\n", chip_id);
        return SHR_E_INIT;
    }
    *count = row->count;
    return 0;
}

i32 dpl_reef_interrupt_stats_clear(u32 chip_id, intr_module module, intr_type type)
{
    i32 rc = 0;
    const intr_module_info *tab = _tables(chip_id, &rc);
    if (tab == nullptr || (rc = dpl_reef_interrupt_check_para(chip_id, module, type)) != 0) {
        return rc;
    }
    IntrLock lock(chip_id, __func__, __LINE__);
    if (g_atolreef_intr_callback_info[chip_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) does not init!\n", chip_id);
        return SHR_E_INIT;
    }
    return _each_module(tab, module.module_id, [&](u32 m) -> i32 {
        if (!_has_info(tab[m])) {
            return 0;
        }
        return _each_type(tab[m], module.subid, type.intr_id, [&](u32 s, u32 t) -> i32 {
            dpl_atolreef_interrupt_callback_row(chip_id, m, s, t)->count = 0;
            return 0;
        });
    });
}

i32 dpl_reef_interrupt_ecc_error_cnt_get(u32 chip_id, intr_ecc_cnt_para para, u32 *cnt)
{
    i32 rc = _null(chip_id, cnt, "cnt");
    if (rc != 0 || _tables(chip_id, &rc) == nullptr) {
        return rc;
    }
    if (para.type > INTR_ECC_TYPE_DIRECT_TAB) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC,
                    "ERROR! type must be one of (INTR_ECC_TYPE_TCAM_KEY | INTR_ECC_TYPE_TCAM_MASK | "
                    "INTR_ECC_TYPE_TCAM_AD | INTR_ECC_TYPE_DIRECT_TAB)!\n");
        return SHR_E_PARAM;
    }
    return dpl_atolreef_interrupt_ecc_error_cnt_get(chip_id, para, cnt);
}

i32 dpl_reef_interrupt_ecc_types_get(u32 chip_id, u32 module_id, u32 *count)
{
    i32 rc = _null(chip_id, count, "cnt");
    if (rc != 0 || _tables(chip_id, &rc) == nullptr || (rc = _module_check(chip_id, module_id)) != 0) {
        return rc;
    }
    *count = dpl_atolreef_ecc_module_info_get()[module_id].ecc_type_count;
    return 0;
}

i32 dpl_reef_interrupt_ecc_info_get(u32 chip_id, intr_module module, intr_type type, intr_ecc_info *info)
{
    i32 rc = _null(chip_id, info, "ecc_info");
    if (rc != 0 || (rc = _one(chip_id, module, type, "ERROR! Only support get one ecc info at a time!\n")) != 0) {
        return rc;
    }
    return dpl_atolreef_interrupt_ecc_info_get(chip_id, module, type, info);
}

i32 dpl_reef_interrupt_ecc_lpm_se_get(u32 chip_id, u32 table_type, u32 *param, u32 *tbl_num)
{
    i32 rc = _null(chip_id, param, "param");
    if (rc == 0) {
        rc = _null(chip_id, tbl_num, "tbl_num");
    }
    if (rc != 0) {
        return rc;
    }
    const u32 type = shr_chip_type_get(chip_id);
    if (type != SHR_CHIP_TYPE_KELPREEF && type != SHR_CHIP_TYPE_KELPREEF2) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! Only support kelpreef or kelpreef2 for lpm_se module!\n");
        return SHR_E_NOT_SUPPORT;
    }
    if (table_type != INTR_ECC_LPM_TBLV4 && table_type != INTR_ECC_LPM_TBLV6) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! table type must be one of (INTR_ECC_LPM_TBLV4 | INTR_ECC_LPM_TBLV6)!\n");
        return SHR_E_PARAM;
    }
    return csl_reef_not_in_build(chip_id, SHR_MOD_ECC, SHR_LOG_ERROR, "route tables");
}

i32 dpl_reef_interrupt_ecc_default_action_set(u32 chip_id, u32 action)
{
    if (dpl_reef_interrupt_module_info(chip_id) == nullptr) {
        return 0;
    }
    if (action > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! ecc default action must be 0 or 1!\n");
        return SHR_E_PARAM;
    }
    __atomic_store_n(&g_atolreef_ecc_default_action[chip_id], action, __ATOMIC_RELAXED);
    return 0;
}

i32 dpl_reef_interrupt_default_action_get(u32 chip_id, u32 *action)
{
    i32 rc = _null(chip_id, action, "action");
    if (rc != 0) {
        return rc;
    }
    *action = dpl_reef_interrupt_module_info(chip_id) == nullptr
                  ? 0
                  : __atomic_load_n(&g_atolreef_ecc_default_action[chip_id], __ATOMIC_RELAXED);
    return 0;
}

i32 dpl_reef_interrupt_lport_to_reg_index(u32 chip_id, u32 lport, u32 kind, u8 *index)
{
    i32 rc = _null(chip_id, index, "index");
    if (rc != 0) {
        return rc;
    }
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || !tide::port::pbmp_test(ctl->valid_bmp, lport)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! lport: %d dose not exist, please enter the correct port  \n",
                    static_cast<int>(lport));
        return SHR_E_NOT_SUPPORT;
    }
    if (kind == INTR_INDEX_LPORT) {
        *index = static_cast<u8>(lport);
        return 0;
    }
    if (kind != INTR_INDEX_PORT_REG) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! index kind %u is neither 0 nor 1!\n", kind);
        return SHR_E_PARAM;
    }
    const csl_port_mac_info &mac = ctl->mac_info[lport < CSL_PORT_MAX_MAC ? lport : 0];
    if (lport >= CSL_PORT_MAX_MAC || mac.mag_id == CSL_PORT_NONE || mac.mac == CSL_PORT_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! lport: %d has no MAC of a MAG\n", static_cast<int>(lport));
        return SHR_E_PARAM;
    }
    *index = static_cast<u8>(_port_reg_index(mac.mag_id, mac.mac));
    return 0;
}

i32 dpl_reef_interrupt_reg_index_to_lport(u32 chip_id, u8 index, u32 kind, u32 *lport)
{
    i32 rc = _null(chip_id, lport, "lport");
    if (rc != 0) {
        return rc;
    }
    if (shr_chip_type_get(chip_id) != SHR_CHIP_TYPE_ATOLREEF) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip id not belong to reef series!\n");
        return SHR_E_PARAM;
    }
    if (kind == INTR_INDEX_LPORT) {
        *lport = index;
        return 0;
    }
    if (kind != INTR_INDEX_PORT_REG || index >= kPortRegIndexCount) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! reg index %u of kind %u is out of range!\n", index, kind);
        return SHR_E_PARAM;
    }
    u32 mag = 0, mac = 0;
    _port_of_reg_index(index, &mag, &mac);
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    const u32 member = ctl == nullptr || mag >= CSL_PORT_MAX_MAG ? CSL_PORT_NONE : ctl->mag_info[mag].member[mac];
    if (ctl != nullptr && ctl->map_mode == 1 && (mag == 2 || mag == 3) && mac >= 4) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "chip_id: %u the converted lport does not exist in the mapping mode 1!\n",
                    chip_id);
        return SHR_E_PARAM;
    }
    if (member == CSL_PORT_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! reg index %u names no port of this mapping!\n", index);
        return SHR_E_PARAM;
    }
    *lport = member;
    return 0;
}

// ---- bring-up ---------------------------------------------------------------------------

i32 dpl_reef_interrupt_soft_init(u32 chip_id)
{
    if (g_dpl_reef_interrupt_soft_init[chip_id]) {
        return 0;
    }
    if (dpl_lock_create(chip_id, DPL_LOCK_INTERRUPT, "interrupt") != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) interrupt create lock failed!\n", chip_id);
        return SHR_E_INIT;
    }
    const bool atolreef = shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF;
    if (atolreef && dpl_atolreef_interrupt_cm_init(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) atolreef intr cm init failed!\n", chip_id);
        dpl_lock_destroy(chip_id, DPL_LOCK_INTERRUPT);
        return SHR_E_INIT;
    }
    if (dpl_reef_interrupt_thread_create(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) interrupt create thread failed!\n", chip_id);
        if (atolreef) {
            dpl_atolreef_interrupt_cm_deinit(chip_id);
        }
        dpl_lock_destroy(chip_id, DPL_LOCK_INTERRUPT);
        return SHR_E_INIT;
    }
    g_dpl_reef_interrupt_soft_init[chip_id] = 1;
    return 0;
}

i32 dpl_reef_interrupt_soft_deinit(u32 chip_id)
{
    if (!g_dpl_reef_interrupt_soft_init[chip_id]) {
        return 0;
    }
    dpl_reef_interrupt_thread_destroy(chip_id);
    {
        IntrLock lock(chip_id, __func__, __LINE__);
        dpl_atolreef_interrupt_cm_deinit(chip_id);
    }
    dpl_lock_destroy(chip_id, DPL_LOCK_INTERRUPT);
    g_dpl_reef_interrupt_soft_init[chip_id] = 0;
    return 0;
}

i32 dpl_reef_interrupt_hw_init(u32 chip_id)
{
    if (shr_chip_type_get(chip_id) != SHR_CHIP_TYPE_ATOLREEF) {
        csl_reef_not_in_build(chip_id, SHR_MOD_INTR, SHR_LOG_WARN, "interrupt tables");
        return 0;
    }
    return dpl_atolreef_interrupt_hw_init(chip_id) == 0 ? 0 : SHR_E_INIT;
}

i32 dpl_reef_interrupt_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

i32 dpl_reef_interrupt_raise(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INTR, "ERROR! chip_id(%u) is invalid!\n", chip_id);
        return SHR_E_PARAM;
    }
    return 0;
}

} // extern "C"
