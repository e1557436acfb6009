// Policer profiles of the QoS service: creation and destruction, rates and
// bursts as base and exponent, length compensation, colour actions, and
// the binding of a profile to a port or a to-CPU cause id.  The profiles
// of a chip are a list of records; the rows of the to-CPU cause-id table
// are shared with the ACL's policers through the table index manager.
#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/base/dpl_reef_base_index_manage.h"
#include "dpl/reef/qos/dpl_reef_qos.h"

namespace {

// One created profile.
struct policer_profile {
    u32 id;
    u32 type;
    policer_profile *next;
};

// The list of a chip.
struct policer_glb {
    policer_profile *head;
};

policer_glb *g_policer_cfg[SHR_MAX_CHIPS];

constexpr u32 kTypes = 4;
constexpr u32 kCauseTab = cib_ecar_cause_id_car_cfg_tbl;

// The fields of a policer entry, in the order of the double-bucket table;
// the mask bit of a field is its place here.
struct CarCfg {
    u8 valid, colormode, car_mode, pband_bas, pband_exp, pburst_bas, pburst_exp, cburst_exp, cband_bas, cband_exp,
        cburst_bas, value, bps_type;
};
enum CarBit : u32 {
    kValid, kColormode, kCarMode, kPbandBas, kPbandExp, kPburstBas, kPburstExp, kCburstExp, kCbandBas, kCbandExp,
    kCburstBas, kValue, kBpsType
};
static_assert(u32{cib_icar_port_car_cfg_tbl__bps_type} == u32{kBpsType} &&
              u32{cib_ecar_port_car_cfg_tbl__bps_type} == u32{kBpsType} &&
              u32{cib_icar_port_car_cfg_tbl__cburst_exp} == u32{kCburstExp});

// Both port tables have the double-bucket layout.
template <typename R>
void _to_double(const CarCfg &c, R *r)
{
    *r = R{c.valid, c.colormode, c.car_mode, c.pband_bas, c.pband_exp, c.pburst_bas, c.pburst_exp,
           c.cburst_exp, c.cband_bas, c.cband_exp, c.cburst_bas, c.value, c.bps_type};
}
template <typename R>
CarCfg _from_double(const R &r)
{
    return CarCfg{r.valid, r.colormode, r.car_mode, r.pband_bas, r.pband_exp, r.pburst_bas, r.pburst_exp,
                  r.cburst_exp, r.cband_bas, r.cband_exp, r.cburst_bas, r.value, r.bps_type};
}

// The ingress and egress tables of a kind share one layout: an access
// picks the table of the pair by the policer type, and converts the
// record by `to` or `from`, generic over both.
template <typename V, typename Rin, typename Rout, typename To>
i32 _pair_set(u32 chip_id, u32 type, u32 id, const V &v, u64 *mask, int (*set_in)(u32, u32, u32, Rin *, u64 *),
              int (*set_out)(u32, u32, u32, Rout *, u64 *), To to)
{
    if (type == QOS_POLICER_SPORT) {
        Rin r{};
        to(v, &r);
        return set_in(chip_id, 0, id, &r, mask);
    }
    Rout r{};
    to(v, &r);
    return set_out(chip_id, 0, id, &r, mask);
}

template <typename V, typename Rin, typename Rout, typename From>
i32 _pair_get(u32 chip_id, u32 type, u32 id, V *v, int (*get_in)(u32, u32, u32, Rin *),
              int (*get_out)(u32, u32, u32, Rout *), From from)
{
    if (type == QOS_POLICER_SPORT) {
        Rin r{};
        const i32 rc = get_in(chip_id, 0, id, &r);
        *v = from(r);
        return rc;
    }
    Rout r{};
    const i32 rc = get_out(chip_id, 0, id, &r);
    *v = from(r);
    return rc;
}

// The single-bucket table's member of a double-bucket field, or none.
constexpr i32 kSingleMember[] = {cib_ecar_cause_id_car_cfg_tbl__valid, -1, -1,
                                 cib_ecar_cause_id_car_cfg_tbl__pband_bas, cib_ecar_cause_id_car_cfg_tbl__pband_exp,
                                 cib_ecar_cause_id_car_cfg_tbl__pburst_bas, cib_ecar_cause_id_car_cfg_tbl__pburst_exp,
                                 -1, -1, -1, -1, cib_ecar_cause_id_car_cfg_tbl__value,
                                 cib_ecar_cause_id_car_cfg_tbl__bps_type};

// Writes the fields of `bits` (CarBit places) of a profile's entry.
i32 _cfg_write(u32 chip_id, u32 type, u32 id, const CarCfg &c, u32 bits)
{
    u64 mask[2] = {};
    if (type == QOS_POLICER_TOCPU_CAUSEID) {
        for (u32 b = 0; b <= kBpsType; b++) {
            if ((bits >> b & 1u) && kSingleMember[b] >= 0) {
                dpl_qos_mask_set(mask, static_cast<u32>(kSingleMember[b]));
            }
        }
        cib_ecar_cause_id_car_cfg_tbl_t r{c.valid, c.pband_bas, c.pband_exp, c.pburst_bas, c.pburst_exp, c.value,
                                          c.bps_type};
        return csl_reef_cib_ecar_cause_id_car_cfg_tbl_set(chip_id, 0, id, &r, mask);
    }
    mask[0] = bits;
    return _pair_set(chip_id, type, id, c, mask, csl_reef_cib_icar_port_car_cfg_tbl_set,
                     csl_reef_cib_ecar_port_car_cfg_tbl_set, [](const CarCfg &v, auto *r) { _to_double(v, r); });
}

i32 _cfg_read(u32 chip_id, u32 type, u32 id, CarCfg *c)
{
    if (type == QOS_POLICER_TOCPU_CAUSEID) {
        cib_ecar_cause_id_car_cfg_tbl_t r{};
        const i32 rc = csl_reef_cib_ecar_cause_id_car_cfg_tbl_get(chip_id, 0, id, &r);
        *c = CarCfg{r.valid, 0, 0, r.pband_bas, r.pband_exp, r.pburst_bas, r.pburst_exp, 0, 0, 0, 0, r.value,
                    r.bps_type};
        return rc;
    }
    return _pair_get(chip_id, type, id, c, csl_reef_cib_icar_port_car_cfg_tbl_get,
                     csl_reef_cib_ecar_port_car_cfg_tbl_get, [](const auto &r) { return _from_double(r); });
}

// The action table: three fields per colour, green first.
struct ActCfg {
    u8 opr[3], qindex[3], color[3];
};
template <typename R>
void _to_act(const ActCfg &a, R *r)
{
    *r = R{a.opr[0], a.qindex[0], a.color[0], a.opr[1], a.qindex[1], a.color[1], a.opr[2], a.qindex[2], a.color[2]};
}
template <typename R>
ActCfg _from_act(const R &r)
{
    return ActCfg{{r.gopr, r.yopr, r.ropr}, {r.gqindex, r.yqindex, r.rqindex}, {r.gcolor, r.ycolor, r.rcolor}};
}
static_assert(cib_icar_port_car_action_tbl__yopr == 3 && cib_ecar_port_car_action_tbl__rcolor == 8);

i32 _act_write(u32 chip_id, u32 type, u32 id, const ActCfg &a, u64 bits)
{
    u64 mask[2] = {bits, 0};
    return _pair_set(chip_id, type, id, a, mask, csl_reef_cib_icar_port_car_action_tbl_set,
                     csl_reef_cib_ecar_port_car_action_tbl_set, [](const ActCfg &v, auto *r) { _to_act(v, r); });
}

i32 _act_read(u32 chip_id, u32 type, u32 id, ActCfg *a)
{
    return _pair_get(chip_id, type, id, a, csl_reef_cib_icar_port_car_action_tbl_get,
                     csl_reef_cib_ecar_port_car_action_tbl_get, [](const auto &r) { return _from_act(r); });
}

u32 _count(u32 chip_id, u32 type)
{
    const dpl_reef_qos_cfg *q = dpl_reef_g_qos_cfg_get(chip_id);
    const u16 counts[kTypes] = {q->sport_policer_num, q->dport_policer_num, q->causeid_policer_num,
                                q->group_policer_num};
    return counts[type];
}

// The group policers of chip types 1 and 2 keep a shadow entry per
// profile; no chip of this build has them.
i32 _no_group(u32 chip_id, u32 type)
{
    return type == QOS_POLICER_SPORT_TOCPU_GROUP
               ? csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "sport-tocpu-causeid-group policers")
               : 0;
}

// The type must exist on the chip, and in this build.
i32 _type_check(u32 chip_id, u32 type)
{
    if (dpl_reef_chip_flag_get(chip_id, DPL_QOS_FLAG_POLICER, kTypes, type) == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "chip type (%u) not support policer type (%u) !\n ", shr_chip_type_get(chip_id),
                    type);
        return SHR_E_NOT_SUPPORT;
    }
    return _no_group(chip_id, type);
}

// Type, then id below the type's count.
i32 _type_id_check(u32 chip_id, u32 type, u32 id, const char *fmt)
{
    const i32 rc = _type_check(chip_id, type);
    if (rc == 0 && id >= _count(chip_id, type)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, fmt, id, _count(chip_id, type) - 1);
        return SHR_E_PARAM;
    }
    return rc;
}

policer_profile *_find(u32 chip_id, u32 type, u32 id)
{
    for (policer_profile *p = g_policer_cfg[chip_id] != nullptr ? g_policer_cfg[chip_id]->head : nullptr; p != nullptr;
         p = p->next) {
        if (p->type == type && p->id == id) {
            return p;
        }
    }
    return nullptr;
}

bool _index_used(u32 chip_id, u32 type, u32 id)
{
    u8 used = 0;
    return type == QOS_POLICER_TOCPU_CAUSEID && dpl_reef_base_tab_index_used_get(chip_id, kCauseTab, id, &used) == 0 &&
           used != 0;
}

u32 _pps_len(u32 chip_id, u32 type)
{
    if (type == QOS_POLICER_SPORT) {
        cib_icar_cfg_pps_len_t r{};
        csl_reef_cib_icar_cfg_pps_len_get(chip_id, 0, &r);
        return r.cfg_pps_len;
    }
    cib_ecar_cfg_pps_len_t r{};
    csl_reef_cib_ecar_cfg_pps_len_get(chip_id, 0, &r);
    return r.cfg_pps_len;
}

bool _double(u32 type)
{
    return type == QOS_POLICER_SPORT || type == QOS_POLICER_DPORT;
}

i32 _param_check(u32 chip_id, u32 type, const qos_policer_cfg *cfg)
{
    const dpl_reef_qos_cfg *q = dpl_reef_g_qos_cfg_get(chip_id);
    const u64 max = q->max_rate;
    if (cfg->rate_mode == 1) {
        const u64 len = _pps_len(chip_id, type);
        if (_double(type) && cfg->cir * len * 8 > max) {
            SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "pps mode out of range[pps_len=%u, cir=%lu, MAX=%lu bps]! \n", (u32)len,
                        (unsigned long)cfg->cir, (unsigned long)max);
            return SHR_E_PARAM;
        }
        if (cfg->xir * len * 8 > max) {
            SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "pps mode out of range[pps_len=%u, xir=%lu, MAX=%lu bps]! \n", (u32)len,
                        (unsigned long)cfg->xir, (unsigned long)max);
            return SHR_E_PARAM;
        }
    } else {
        if (_double(type) && cfg->cir > max) {
            SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "bps mode out of range[cir=%lu, MAX=%lu bps]! \n",
                        (unsigned long)cfg->cir, (unsigned long)max);
            return SHR_E_PARAM;
        }
        if (cfg->xir > max) {
            SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "bps mode out of range[xir=%lu, MAX=%lu bps]! \n",
                        (unsigned long)cfg->xir, (unsigned long)max);
            return SHR_E_PARAM;
        }
    }
    if (_double(type) && cfg->cbs > q->max_bucket) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "bucket size out of range![cbs=%lu, MAX=%lu B] \n", (unsigned long)cfg->cbs,
                    (unsigned long)q->max_bucket);
        return SHR_E_PARAM;
    }
    if (cfg->xbs > q->max_bucket) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "bucket size out of range![xbs=%lu, MAX=%lu B] \n", (unsigned long)cfg->xbs,
                    (unsigned long)q->max_bucket);
        return SHR_E_PARAM;
    }
    if (cfg->color_mode > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "error colormode(%d)! \n", (int)cfg->color_mode);
        return SHR_E_PARAM;
    }
    if (cfg->mode > QOS_CAR_MEF10P2) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "error car mode(%d)! \n", (int)cfg->mode);
        return SHR_E_PARAM;
    }
    if (cfg->len_adj < -32 || cfg->len_adj > 31) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "len_adj(%d) is out of range %d-%d ! \n", (int)cfg->len_adj, -32, 31);
        return SHR_E_PARAM;
    }
    return 0;
}

void _rate_fields(u64 units, u8 *bas, u8 *exp)
{
    u32 b = 0, e = 0;
    dpl_reef_qos_bas_exp_gen(0, units, &b, &e);
    *bas = static_cast<u8>(b);
    *exp = static_cast<u8>(e);
}

i32 _bind_param_check(u32 chip_id, const qos_bind_info *info)
{
    if (info == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "bind_info is NULL !\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _type_check(chip_id, info->type);
    if (rc != 0) {
        return rc;
    }
    if (info->type != QOS_POLICER_TOCPU_CAUSEID && csl_port_valid_check(chip_id, info->lport) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "lport(%u) is out of range !\n", info->lport);
        return SHR_E_PARAM;
    }
    const u32 causes = dpl_reef_g_qos_cfg_get(chip_id)->tocpu_causeid_num;
    if (info->type == QOS_POLICER_TOCPU_CAUSEID && info->causeid >= causes) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "to_cpu_causeid(%u) is out of range 0-%u !\n", info->causeid, causes - 1);
        return SHR_E_PARAM;
    }
    if (info->type == QOS_POLICER_SPORT_TOCPU_GROUP && info->causeid_group > 3) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "causeid group(%u) is out of range 0-%u !\n", info->causeid_group, 3);
        return SHR_E_PARAM;
    }
    return 0;
}

// Writes (or, with `id` < 0, clears) the binding of a port or cause id.
i32 _bind_write(u32 chip_id, const qos_bind_info *info, bool bind)
{
    u64 mask[5] = {};
    const u8 en = bind ? 1 : 0;
    const u8 id = bind ? static_cast<u8>(info->policer_id) : 0;
    switch (info->type) {
    case QOS_POLICER_SPORT: {
        cib_ipro_ipat_tbl_t r{};
        r.portcar_en = en;
        r.portcar_id = id;
        dpl_qos_mask_set(mask, cib_ipro_ipat_tbl__portcar_en);
        dpl_qos_mask_set(mask, cib_ipro_ipat_tbl__portcar_id);
        return csl_reef_cib_ipro_ipat_tbl_set(chip_id, 0, info->lport, &r, mask);
    }
    case QOS_POLICER_DPORT: {
        cib_epro_epat_table_t r{};
        r.port_car_en = en;
        r.port_car_id = id;
        dpl_qos_mask_set(mask, cib_epro_epat_table__port_car_en);
        dpl_qos_mask_set(mask, cib_epro_epat_table__port_car_id);
        return csl_reef_cib_epro_epat_table_set(chip_id, 0, info->lport, &r, mask);
    }
    default: {
        cib_ecar_causeid_ptype_map_tbl_t r{};
        r.causeid_idx_vld = en;
        r.causeid_idx = bind ? static_cast<u16>(info->policer_id) : 0;
        dpl_qos_mask_set(mask, cib_ecar_causeid_ptype_map_tbl__causeid_idx_vld);
        dpl_qos_mask_set(mask, cib_ecar_causeid_ptype_map_tbl__causeid_idx);
        return csl_reef_cib_ecar_causeid_ptype_map_tbl_set(chip_id, 0, info->causeid, &r, mask);
    }
    }
}

i32 _hw(u32 chip_id, i32 rc)
{
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

// -7 with a line when the profile does not exist; under the lock.
i32 _created(u32 chip_id, u32 type, u32 id)
{
    if (_find(chip_id, type, id) == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "Policer not created type(%d), id(%u)\n", (int)type, id);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

// The type and id of an action call; only the port types have actions.
i32 _action_check(u32 chip_id, u32 type, u32 id)
{
    const i32 rc = _type_id_check(chip_id, type, id, "policer id(%u) is out of range 0-%u \n");
    if (rc == 0 && !_double(type)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "Not support policer type(%d) !\n", (int)type);
        return SHR_E_NOT_SUPPORT;
    }
    return rc;
}


} // namespace

extern "C" {

void dpl_reef_qos_bas_exp_gen(u32 chip_id, u64 value, u32 *bas, u32 *exp)
{
    (void)chip_id;
    const u32 p = value == 0 ? 0 : 63u - static_cast<u32>(__builtin_clzll(value));
    if (p <= 7) {
        *bas = static_cast<u32>(value);
        *exp = 0;
        return;
    }
    const u32 nine = static_cast<u32>(value >> (p - 8)) & 0x1FFu;
    if (nine < 511) {
        *bas = (nine + 1) / 2;
        *exp = p - 7;
    } else {
        *bas = 128;
        *exp = p - 6;
    }
}

u32 dpl_reef_qos_origin_to_complement(u32 chip_id, i32 value, u32 max)
{
    (void)chip_id;
    if (value >= 0) {
        return static_cast<u32>(value);
    }
    return (((static_cast<u32>(value) - 1) & max) + 1) | (max + 1);
}

i32 dpl_reef_qos_complement_to_origin(u32 chip_id, u32 value, u32 max)
{
    (void)chip_id;
    if ((value & (max + 1)) == 0) {
        return static_cast<i32>(value);
    }
    const u32 mag = (0u - value) & max;
    return mag == 0 ? -static_cast<i32>(max + 1) : -static_cast<i32>(mag);
}

u64 dpl_reef_qos_rate_units(u64 rate, u32 rate_mode, u32 pps_len)
{
    const u64 bps = rate_mode == 1 ? rate * pps_len * 8 : rate;
    return (bps / 1000 + 15) / 16;
}

u64 dpl_reef_qos_units_rate(u32 bas, u32 exp, u32 rate_mode, u32 pps_len)
{
    const u64 rate = (u64{bas} << exp) * 16000;
    if (rate_mode == 1) {
        return pps_len == 0 ? 0 : rate / (u64{pps_len} * 8);
    }
    return rate;
}

i32 dpl_reef_policer_soft_init(u32 chip_id)
{
    if (g_policer_cfg[chip_id] != nullptr) {
        return 0;
    }
    g_policer_cfg[chip_id] = static_cast<policer_glb *>(xsal_malloc(sizeof(policer_glb), "policer_glb", SHR_MOD_QOS));
    if (g_policer_cfg[chip_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer_glb malloc faild!\n");
        return SHR_E_MEMORY;
    }
    g_policer_cfg[chip_id]->head = nullptr;
    return 0;
}

i32 dpl_reef_policer_mem_free(u32 chip_id)
{
    policer_glb *g = g_policer_cfg[chip_id];
    if (g == nullptr) {
        return 0;
    }
    for (policer_profile *p = g->head; p != nullptr;) {
        policer_profile *next = p->next;
        xsal_mem_free(p);
        p = next;
    }
    xsal_mem_free(g);
    g_policer_cfg[chip_id] = nullptr;
    return 0;
}

i32 dpl_reef_qos_policer_create(u32 chip_id, u32 with_id, u32 type, u32 *id)
{
    if (id == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer id is NULL !\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _type_check(chip_id, type);
    if (rc != 0) {
        return rc;
    }
    const u32 count = _count(chip_id, type);
    if (with_id == 1 && *id >= count) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer_id(%u) is out of range 0 - %u \n", *id, count - 1);
        return SHR_E_PARAM;
    }
    QOS_LOCK(chip_id);
    u32 pick = count;
    if (with_id == 1) {
        if (_index_used(chip_id, type, *id) && _find(chip_id, type, *id) == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "Policer id(%u) is used by acl mod \n", *id);
            return SHR_E_FAIL;
        }
        pick = _find(chip_id, type, *id) == nullptr ? *id : count;
    } else {
        for (u32 i = 0; i < count && pick == count; i++) {
            if (_find(chip_id, type, i) == nullptr && !_index_used(chip_id, type, i)) {
                pick = i;
            }
        }
    }
    if (pick == count) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer id(%u) or all policer have been created! \n", *id);
        return SHR_E_FAIL;
    }
    auto *p = static_cast<policer_profile *>(xsal_malloc(sizeof(policer_profile), "policer_profile", SHR_MOD_QOS));
    if (p == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer_profile malloc faild!\n");
        return SHR_E_MEMORY;
    }
    CarCfg c{};
    c.valid = 1;
    if (type == QOS_POLICER_TOCPU_CAUSEID) {
        rc = dpl_reef_base_tab_index_alloc_with_id(chip_id, kCauseTab, pick);
        if (rc == 0) {
            rc = _cfg_write(chip_id, type, pick, c, 1u << kValid);
            if (rc != 0) {
                dpl_reef_base_tab_index_free(chip_id, kCauseTab, pick);
            }
        }
    } else {
        rc = _cfg_write(chip_id, type, pick, c, (1u << (kBpsType + 1)) - 1);
        if (rc == 0) {
            rc = _act_write(chip_id, type, pick, ActCfg{}, (1u << 9) - 1);
        }
    }
    if (rc != 0) {
        xsal_mem_free(p);
        return _hw(chip_id, rc);
    }
    *p = policer_profile{pick, type, g_policer_cfg[chip_id]->head};
    g_policer_cfg[chip_id]->head = p;
    *id = pick;
    return 0;
}

i32 dpl_reef_qos_policer_destroy(u32 chip_id, u32 type, u32 id)
{
    i32 rc = _type_id_check(chip_id, type, id, "policer id(%u) is out of range 0-%u \n");
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    policer_profile **link = &g_policer_cfg[chip_id]->head;
    while (*link != nullptr && ((*link)->type != type || (*link)->id != id)) {
        link = &(*link)->next;
    }
    if (*link == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "Policer not created type(%d), id(%u)\n", (int)type, id);
        return SHR_E_NOT_FOUND;
    }
    rc = _cfg_write(chip_id, type, id, CarCfg{}, 1u << kValid);
    if (rc != 0) {
        return _hw(chip_id, rc);
    }
    if (type == QOS_POLICER_TOCPU_CAUSEID) {
        dpl_reef_base_tab_index_free(chip_id, kCauseTab, id);
    }
    policer_profile *gone = *link;
    *link = gone->next;
    xsal_mem_free(gone);
    return 0;
}

i32 dpl_reef_qos_policer_created_get(u32 chip_id, u32 type, u32 id, u32 *created)
{
    if (created == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "created is NULL !\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _type_check(chip_id, type);
    if (rc != 0) {
        return rc;
    }
    if (id >= _count(chip_id, type)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer id(%u) is out of range 0-%u \n", id, _count(chip_id, type) - 1);
        return SHR_E_RANGE;
    }
    QOS_LOCK(chip_id);
    *created = _find(chip_id, type, id) != nullptr || _index_used(chip_id, type, id);
    return 0;
}

i32 dpl_reef_qos_policer_set(u32 chip_id, u32 type, u32 id, qos_policer_cfg *cfg)
{
    if (cfg == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer_cfg is NULL !\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _type_id_check(chip_id, type, id, "policer id(%u) is out of range 0-%u \n");
    if (rc == 0) {
        rc = _param_check(chip_id, type, cfg);
    }
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    if (rc = _created(chip_id, type, id); rc != 0) {
        return rc;
    }
    const u32 len = _pps_len(chip_id, type);
    const bool dbl = _double(type);
    CarCfg c{};
    u32 bits = 0;
    if (dbl && (cfg->flag & QOS_POLICER_F_MODE)) {
        c.car_mode = static_cast<u8>(cfg->mode);
        bits |= 1u << kCarMode;
    }
    if (dbl && (cfg->flag & QOS_POLICER_F_COLOR_MODE)) {
        c.colormode = cfg->color_mode;
        bits |= 1u << kColormode;
    }
    if (dbl && (cfg->flag & QOS_POLICER_F_CIR)) {
        _rate_fields(dpl_reef_qos_rate_units(cfg->cir, cfg->rate_mode, len), &c.cband_bas, &c.cband_exp);
        bits |= 1u << kCbandBas | 1u << kCbandExp | 1u << kBpsType;
    }
    if (cfg->flag & QOS_POLICER_F_XIR) {
        _rate_fields(dpl_reef_qos_rate_units(cfg->xir, cfg->rate_mode, len), &c.pband_bas, &c.pband_exp);
        bits |= 1u << kPbandBas | 1u << kPbandExp | 1u << kBpsType;
    }
    if (dbl && (cfg->flag & QOS_POLICER_F_CBS)) {
        _rate_fields(cfg->cbs / 1000, &c.cburst_bas, &c.cburst_exp);
        bits |= 1u << kCburstBas | 1u << kCburstExp;
    }
    if (cfg->flag & QOS_POLICER_F_XBS) {
        _rate_fields(cfg->xbs / 1000, &c.pburst_bas, &c.pburst_exp);
        bits |= 1u << kPburstBas | 1u << kPburstExp;
    }
    if (cfg->flag & QOS_POLICER_F_LEN_ADJ) {
        c.value = static_cast<u8>(dpl_reef_qos_origin_to_complement(chip_id, cfg->len_adj, 31));
        bits |= 1u << kValue;
    }
    c.bps_type = cfg->rate_mode == 1;
    return bits == 0 ? 0 : _hw(chip_id, _cfg_write(chip_id, type, id, c, bits));
}

i32 dpl_reef_qos_policer_get(u32 chip_id, u32 type, u32 id, qos_policer_cfg *cfg)
{
    if (cfg == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer_cfg is NULL !\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _type_id_check(chip_id, type, id, "policer id(%u) is out of range 0-%u \n");
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    if (rc = _created(chip_id, type, id); rc != 0) {
        return rc;
    }
    CarCfg c{};
    rc = _cfg_read(chip_id, type, id, &c);
    if (rc != 0) {
        return _hw(chip_id, rc);
    }
    const u32 len = _pps_len(chip_id, type);
    const u32 flag = cfg->flag;
    *cfg = qos_policer_cfg{};
    cfg->flag = flag;
    cfg->rate_mode = c.bps_type;
    cfg->xir = dpl_reef_qos_units_rate(c.pband_bas, c.pband_exp, c.bps_type, len);
    cfg->xbs = (u64{c.pburst_bas} << c.pburst_exp) * 1000;
    cfg->len_adj = dpl_reef_qos_complement_to_origin(chip_id, c.value, 31);
    if (_double(type)) {
        cfg->mode = c.car_mode;
        cfg->color_mode = c.colormode;
        cfg->cir = dpl_reef_qos_units_rate(c.cband_bas, c.cband_exp, c.bps_type, len);
        cfg->cbs = (u64{c.cburst_bas} << c.cburst_exp) * 1000;
    }
    return 0;
}

i32 dpl_reef_qos_policer_action_set(u32 chip_id, u32 type, u32 id, qos_policer_action *act)
{
    if (act == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "action is NULL !\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _action_check(chip_id, type, id);
    if (rc != 0) {
        return rc;
    }
    const u32 a = act->action;
    if (a > QOS_POLICER_ACT_NEW_INTL_PRI_COLOR) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "err action type (%d)\n", (int)a);
        return SHR_E_PARAM;
    }
    if (act->color > QOS_COLOR_RED) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "err action in color (%d)\n", (int)act->color);
        return SHR_E_PARAM;
    }
    const bool new_color = a == QOS_POLICER_ACT_NEW_COLOR || a == QOS_POLICER_ACT_NEW_INTL_PRI_COLOR;
    const bool new_pri = a == QOS_POLICER_ACT_NEW_INTL_PRI || a == QOS_POLICER_ACT_NEW_INTL_PRI_COLOR;
    if (new_color && act->remark_color > QOS_COLOR_RED) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "err remark color (%d)\n", (int)act->remark_color);
        return SHR_E_PARAM;
    }
    if (new_pri && act->remark_pri > 7) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "remark int pri(%u) is out of range 0-%u \n", (u32)act->remark_pri, 7);
        return SHR_E_PARAM;
    }
    QOS_LOCK(chip_id);
    if (rc = _created(chip_id, type, id); rc != 0) {
        return rc;
    }
    ActCfg v{};
    const u32 k = act->color;
    v.opr[k] = static_cast<u8>(a);
    v.color[k] = new_color ? static_cast<u8>(act->remark_color) : 0;
    v.qindex[k] = new_pri ? act->remark_pri : 0;
    return _hw(chip_id, _act_write(chip_id, type, id, v, u64{7} << (k * 3)));
}

i32 dpl_reef_qos_policer_action_get(u32 chip_id, u32 type, u32 id, qos_policer_actions *acts)
{
    if (acts == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "action is NULL !\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _action_check(chip_id, type, id);
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    if (rc = _created(chip_id, type, id); rc != 0) {
        return rc;
    }
    ActCfg v{};
    rc = _act_read(chip_id, type, id, &v);
    for (u32 k = 0; rc == 0 && k < 3; k++) {
        acts->action[k] = v.opr[k];
        acts->remark_color[k] = v.color[k];
        acts->remark_pri[k] = v.qindex[k];
    }
    return _hw(chip_id, rc);
}

i32 dpl_reef_qos_policer_bind(u32 chip_id, qos_bind_info *info)
{
    i32 rc = _bind_param_check(chip_id, info);
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    if (_find(chip_id, info->type, info->policer_id) == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "policer type (%d) policer id (%u) not created !\n", (int)info->type,
                    info->policer_id);
        return SHR_E_FAIL;
    }
    return _hw(chip_id, _bind_write(chip_id, info, true));
}

i32 dpl_reef_qos_policer_unbind(u32 chip_id, qos_bind_info *info)
{
    i32 rc = _bind_param_check(chip_id, info);
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    return _hw(chip_id, _bind_write(chip_id, info, false));
}

i32 dpl_reef_qos_policer_bind_get(u32 chip_id, qos_bind_info *info)
{
    i32 rc = _bind_param_check(chip_id, info);
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    switch (info->type) {
    case QOS_POLICER_SPORT: {
        cib_ipro_ipat_tbl_t r{};
        rc = csl_reef_cib_ipro_ipat_tbl_get(chip_id, 0, info->lport, &r);
        info->policer_id = r.portcar_id;
        break;
    }
    case QOS_POLICER_DPORT: {
        cib_epro_epat_table_t r{};
        rc = csl_reef_cib_epro_epat_table_get(chip_id, 0, info->lport, &r);
        info->policer_id = r.port_car_id;
        break;
    }
    default: {
        cib_ecar_causeid_ptype_map_tbl_t r{};
        rc = csl_reef_cib_ecar_causeid_ptype_map_tbl_get(chip_id, 0, info->causeid, &r);
        info->policer_id = r.causeid_idx;
    }
    }
    return _hw(chip_id, rc);
}

} // extern "C"
