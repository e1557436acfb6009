// The QoS service of the reef family: its frame, the per-chip QoS
// configuration and support table, and the operations that are neither
// policers, scheduler nor discard profiles.  Arguments are checked before
// the feature lock; each operation's reads and writes run under it.
#include <tide/property.h>

#include <cstring>
#include <initializer_list>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/qos/dpl_reef_qos.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_qos.h"

extern "C" {
reef_qos_special_t reef_qos_special[SHR_MAX_CHIPS];

// Bit n of a row: chip type n has the feature.  6 = types 1 and 2,
// 8 = atolreef, 14 = all three.  The rows of the scheduler and the discard
// profiles are filled with those services.
const u32 g_qos_chip_flag[DPL_QOS_FLAG_ROWS] = {
    // ctrl (0..4)
    6, 6, 14, 14, 14,
    // common map (5..10)
    6, 14, 6, 0, 0, 0,
    // flush (11..14)
    6, 14, 14, 14,
    // to-CPU enqueue (15..18)
    14, 14, 14, 14,
    // counter info (19..43)
    14, 14, 14, 14, 0, 0, 0, 0, 0, 14, 6, 14, 14, 8, 8, 8, 14, 6, 14, 8, 8, 8, 8, 8, 8,
    // status info (44..54)
    14, 6, 14, 14, 6, 6, 14, 14, 14, 14, 14,
    // counter clear (55..60)
    14, 14, 14, 14, 0, 8,
    // discard profile (61..66), discard control (67..90)
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    // policer (91..94)
    14, 14, 14, 6,
    // bandwidth enable (95..102), bandwidth key (103..112), sched (113..117)
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    // congestion check (118, 119), zero check (120, 121)
    14, 6, 14, 14};
}

QosLock::QosLock(u32 chip_id, const char *function, u32 line)
    : chip_(chip_id), rc_(dpl_lock_take(chip_id, DPL_LOCK_QOS, function, line))
{
}

QosLock::~QosLock()
{
    if (rc_ == 0) {
        dpl_lock_give(chip_, DPL_LOCK_QOS, __func__, __LINE__);
    }
}

namespace {

dpl_reef_qos_cfg *g_qos_cfg[SHR_MAX_CHIPS];

// The configuration of atolreef and of the siblings, by field.
constexpr dpl_reef_qos_cfg kCfgAtolreef = {
    512, 1024, 0, 10, 256, 8, 16, 8, 0, 32, 32, 512, 0, 50000000000ull, 1020000ull, 10000000000ull, 64000ull,
    {0, 8, 32, 8, 8, 0}, 3071, -2, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
constexpr dpl_reef_qos_cfg kCfgKelpreef = {
    1024, 2048, 128, 16, 1024, 64, 32, 16, 127, 64, 64, 1024, 256, 100000000000ull, 128000000ull,
    33000000000ull, 130944ull, {16, 16, 32, 32, 32, 0}, 8191, -6, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

bool _atolreef(u32 chip_id)
{
    return shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF;
}

// The chip-independent refusal of a type the chip does not have.
i32 _type_check(u32 chip_id, u32 base, u32 count, u32 type, const char *what)
{
    if (dpl_reef_chip_flag_get(chip_id, base, count, type) == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "chip type (%u) not support %s type (%u) !\n ", shr_chip_type_get(chip_id),
                    what, type);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

i32 _range(u32 chip_id, bool bad, const char *fmt, u32 value, u32 max)
{
    if (bad) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, fmt, value, max);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _null(u32 chip_id, const void *p, const char *text)
{
    if (p == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "%s", text);
        return SHR_E_NULL_PTR;
    }
    return 0;
}

i32 _hw(u32 chip_id, i32 rc)
{
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

i32 _lport_check(u32 chip_id, u32 lport, const char *fmt)
{
    if (csl_port_valid_check(chip_id, lport) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, fmt, lport);
        return SHR_E_PARAM;
    }
    return 0;
}

// The calls that reach the chip's registers: a chip type the build does
// not describe answers -24 with a line, before any check of the call's
// own.
template <auto Fn>
struct OnCatalogue;
template <typename... A, i32 (*Fn)(u32, A...)>
struct OnCatalogue<Fn> {
    static i32 _call(u32 chip_id, A... args)
    {
        const i32 rc = csl_reef_catalogue_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR);
        return rc != 0 ? rc : Fn(chip_id, args...);
    }
};

// ---- remark -------------------------------------------------------------------

struct RemarkField {
    u32 member;
    u8 cib_ecar_phb_tbl_t::*field; // NULL for tc, which is wider
    u16 qos_remark_cfg::*value;
    u32 max;
    const char *fmt;
};
constexpr RemarkField kRemark[] = {
    {cib_ecar_phb_tbl__odei, &cib_ecar_phb_tbl_t::odei, &qos_remark_cfg::cfi, 1, "cfi(%u) is out of range 0-%u !\n"},
    {cib_ecar_phb_tbl__idei, &cib_ecar_phb_tbl_t::idei, &qos_remark_cfg::cfi, 1, "cfi(%u) is out of range 0-%u !\n"},
    {cib_ecar_phb_tbl__dscp, &cib_ecar_phb_tbl_t::dscp, &qos_remark_cfg::dscp, 63,
     "dscp(%u) is out of range 0-%u !\n"},
    {cib_ecar_phb_tbl__tc, &cib_ecar_phb_tbl_t::tc, &qos_remark_cfg::tc, 255, "tc(%u) is out of range 0-%u !\n"},
    {cib_ecar_phb_tbl__ivlanpri, &cib_ecar_phb_tbl_t::ivlanpri, &qos_remark_cfg::pri, 7,
     "pri(%u) is out of range 0-%u !\n"},
    {cib_ecar_phb_tbl__ovlanpri, &cib_ecar_phb_tbl_t::ovlanpri, &qos_remark_cfg::pri, 7,
     "pri(%u) is out of range 0-%u !\n"},
};

i32 _remark_input_check(u32 chip_id, u32 remark_id, const qos_remark_cfg *cfg)
{
    i32 rc = _null(chip_id, cfg, "remark_cfg is NULL! \n");
    const dpl_reef_qos_cfg *q = g_qos_cfg[chip_id];
    if (rc == 0) {
        rc = _range(chip_id, remark_id >= q->remark_num, "remark id(%u) is out of range 0-%u !\n", remark_id,
                    q->remark_num - 1);
    }
    if (rc == 0) {
        rc = _range(chip_id, cfg->intl_pri > 7, "int-pri(%u) is out of range 0-%u !\n", cfg->intl_pri, 7);
    }
    if (rc == 0) {
        rc = _range(chip_id, cfg->color > 2, "color(%u) is out of range 0-%u !\n", cfg->color, 2);
    }
    return rc;
}

i32 _remark_type_check(u32 chip_id, u32 type)
{
    if (type >= sizeof(kRemark) / sizeof(kRemark[0])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, type <= 7 ? "Not support remark type %u \n" : "Not support type(%d) !\n",
                    type);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

u32 _remark_index(const qos_remark_cfg *cfg, u32 remark_id)
{
    return (cfg->intl_pri + remark_id * 8) * 4 + cfg->color;
}

// ---- common maps and the queue of an internal priority ---------------------------

u8 cib_qm_cos_queue_map_t::*const kCosq[8] = {
    &cib_qm_cos_queue_map_t::cos0_queue_map, &cib_qm_cos_queue_map_t::cos1_queue_map,
    &cib_qm_cos_queue_map_t::cos2_queue_map, &cib_qm_cos_queue_map_t::cos3_queue_map,
    &cib_qm_cos_queue_map_t::cos4_queue_map, &cib_qm_cos_queue_map_t::cos5_queue_map,
    &cib_qm_cos_queue_map_t::cos6_queue_map, &cib_qm_cos_queue_map_t::cos7_queue_map,
};
constexpr u32 kCosqMember[8] = {
    cib_qm_cos_queue_map__cos0_queue_map, cib_qm_cos_queue_map__cos1_queue_map, cib_qm_cos_queue_map__cos2_queue_map,
    cib_qm_cos_queue_map__cos3_queue_map, cib_qm_cos_queue_map__cos4_queue_map, cib_qm_cos_queue_map__cos5_queue_map,
    cib_qm_cos_queue_map__cos6_queue_map, cib_qm_cos_queue_map__cos7_queue_map,
};

i32 _common_map_check(u32 chip_id, const qos_common_map_cfg *cfg, bool set)
{
    i32 rc = _null(chip_id, cfg, "map_cfg is NULL !\n");
    if (rc == 0) {
        rc = _type_check(chip_id, DPL_QOS_FLAG_COMMON_MAP, 6, cfg->type, "common map");
    }
    if (rc != 0) {
        return rc;
    }
    const dpl_reef_qos_cfg *q = g_qos_cfg[chip_id];
    switch (cfg->type) {
    case QOS_COMMON_MAP_CAUSEID_TO_GROUP:
        rc = _range(chip_id, cfg->causeid >= q->tocpu_causeid_num, "causeid(%u) is out of range 0-%u !\n",
                    cfg->causeid, q->tocpu_causeid_num - 1);
        if (rc == 0 && set) {
            rc = _range(chip_id, cfg->causeid_group > 3, "causeid group (%u) is out of range 0-%u !\n",
                        cfg->causeid_group, 3);
        }
        return rc;
    case QOS_COMMON_MAP_INTL_PRI_TO_COSQ:
        rc = _range(chip_id, cfg->intl_pri > 7, "intl_pri(%u) is out of range 0-%u !\n", cfg->intl_pri, 7);
        if (rc == 0 && set) {
            rc = _range(chip_id, cfg->cosq > 7, "cosq(%u) is out of range 0-%u !\n", cfg->cosq, 7);
        }
        return rc;
    default:
        rc = _range(chip_id, cfg->dpid >= q->dp_num, "dpid(%u) is out of range 0-%u !\n", cfg->dpid,
                    q->dp_num > 0 ? q->dp_num - 1 : 0);
        if (rc == 0 && set) {
            rc = _range(chip_id, cfg->dp_group > 1, "dpid_group (%u) is out of range 0-%u !\n", cfg->dp_group, 1);
        }
        return rc;
    }
}

// ---- flush ----------------------------------------------------------------------

i32 _port_node_set(u32 chip_id, u32 port, bool closed)
{
    cib_qm_qm_port_flush_en_t r{};
    i32 rc = csl_reef_cib_qm_qm_port_flush_en_get(chip_id, port >> 5, &r);
    if (rc == 0) {
        const u32 bit = 1u << (port & 31);
        r.port_flush_en = closed ? (r.port_flush_en | bit) : (r.port_flush_en & ~bit);
        u8 mask[4] = {};
        dpl_qos_mask_set(mask, cib_qm_qm_port_flush_en__port_flush_en);
        rc = csl_reef_cib_qm_qm_port_flush_en_set(chip_id, port >> 5, &r, mask);
    }
    return _hw(chip_id, rc);
}

i32 _que_empty_check(u32 chip_id, u32 port)
{
    for (u32 round = 0; round < DPL_QOS_FLUSH_POLLS; round++) {
        cib_sch_que_empty_tbl_t r{};
        const i32 rc = csl_reef_cib_sch_que_empty_tbl_get(chip_id, 0, port, &r);
        if (rc != 0) {
            return _hw(chip_id, rc);
        }
        if (r.data == 0) {
            return 0;
        }
        xsal_usleep(DPL_QOS_FLUSH_POLL_US);
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "port or dp(%d) check out of time after flush! \n", (int)port);
    return SHR_E_TIMEOUT;
}

// ---- to-CPU enqueue ---------------------------------------------------------------

struct TocpuField {
    u32 member;
    u8 cib_epro_causeid_table_t::*field;
};
constexpr TocpuField kTocpu[] = {
    {cib_epro_causeid_table__snooping_drop_flag, &cib_epro_causeid_table_t::snooping_drop_flag},
    {cib_epro_causeid_table__cp_qindex, &cib_epro_causeid_table_t::cp_qindex},
    {cib_epro_causeid_table__cp_qindex_en, &cib_epro_causeid_table_t::cp_qindex_en},
    {cib_epro_causeid_table__time_en, &cib_epro_causeid_table_t::time_en},
};

i32 _cause_check(u32 chip_id, u32 causeid, u32 num, const char *fmt)
{
    return _range(chip_id, causeid >= num, fmt, causeid, num - 1);
}

// ---- capture ----------------------------------------------------------------------

constexpr u32 kCapCauses = 4;
constexpr u32 kCpuPort = 31;

} // namespace

extern "C" {

dpl_reef_qos_cfg *dpl_reef_g_qos_cfg_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_qos_cfg[chip_id] : nullptr;
}

u32 dpl_reef_chip_flag_get(u32 chip_id, u32 base, u32 count, u32 type)
{
    if (type >= count || base + type >= DPL_QOS_FLAG_ROWS) {
        return 0;
    }
    return (g_qos_chip_flag[base + type] >> shr_chip_type_get(chip_id)) & 1u;
}

// ---- queue numbering -------------------------------------------------------------

i32 dpl_reef_queue_off_to_queue_id(u32 chip_id, u32 lport, u32 offset, u32 *queue_id)
{
    if (!_atolreef(chip_id)) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "queue topology");
    }
    *queue_id = lport == kCpuPort ? 240 + offset : lport * 8 + offset;
    return 0;
}

i32 dpl_reef_queue_id_to_queue_off(u32 chip_id, u32 queue_id, u32 to_cpu, u32 *lport, u32 *offset)
{
    if (!_atolreef(chip_id)) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "queue topology");
    }
    *lport = queue_id >> 3;
    *offset = to_cpu && queue_id >= 248 ? queue_id - 240 : queue_id - *lport * 8;
    return 0;
}

i32 dpl_reef_tm_port_to_qm_port(u32 chip_id, u32 tm_port, u32 *qm_port)
{
    if (!_atolreef(chip_id)) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "queue topology");
    }
    *qm_port = tm_port;
    return 0;
}

i32 dpl_reef_qos_intl_pri_to_cosq(u32 chip_id, u32 intl_pri, u32 *cosq)
{
    cib_qm_cos_queue_map_t r{};
    const i32 rc = csl_reef_cib_qm_cos_queue_map_get(chip_id, 0, &r);
    if (rc == 0) {
        *cosq = r.*kCosq[intl_pri & 7];
    }
    return _hw(chip_id, rc);
}

i32 dpl_reef_qos_cosq_to_intl_pri(u32 chip_id, u32 cosq, u32 *intl_pri)
{
    cib_qm_cos_queue_map_t r{};
    const i32 rc = csl_reef_cib_qm_cos_queue_map_get(chip_id, 0, &r);
    if (rc != 0) {
        return _hw(chip_id, rc);
    }
    for (u32 n = 0; n < 8; n++) {
        if (r.*kCosq[n] == cosq) {
            *intl_pri = n;
            return 0;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "no intl_pri maps to cosq(%u) !\n", cosq);
    return SHR_E_NOT_FOUND;
}

// ---- priority maps ----------------------------------------------------------------

static i32 _priority_map(u32 chip_id, bool set, u32 type, u32 map_id, qos_map_cfg *cfg)
{
    const reef_qos_special_t &s = reef_qos_special[chip_id];
    const auto fn = set ? s.priority_map_set : s.priority_map_get;
    if (fn == nullptr) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "priority maps");
    }
    return fn(chip_id, type, map_id, cfg);
}

i32 dpl_reef_qos_priority_map_set(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg)
{
    return _priority_map(chip_id, true, type, map_id, cfg);
}

i32 dpl_reef_qos_priority_map_get(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg)
{
    return _priority_map(chip_id, false, type, map_id, cfg);
}

// ---- remark -----------------------------------------------------------------------

i32 dpl_reef_qos_remark_set(u32 chip_id, u32 type, u32 remark_id, qos_remark_cfg *cfg)
{
    i32 rc = _remark_input_check(chip_id, remark_id, cfg);
    if (rc == 0) {
        rc = _remark_type_check(chip_id, type);
    }
    if (rc != 0) {
        return rc;
    }
    const RemarkField &f = kRemark[type];
    rc = _range(chip_id, cfg->*f.value > f.max, f.fmt, cfg->*f.value, f.max);
    if (rc != 0) {
        return rc;
    }
    cib_ecar_phb_tbl_t r{};
    r.*f.field = static_cast<u8>(cfg->*f.value);
    u64 mask[2] = {};
    dpl_qos_mask_set(mask, f.member);
    QOS_LOCK(chip_id);
    return _hw(chip_id, csl_reef_cib_ecar_phb_tbl_set(chip_id, 0, _remark_index(cfg, remark_id), &r, mask));
}

i32 dpl_reef_qos_remark_get(u32 chip_id, u32 type, u32 remark_id, qos_remark_cfg *cfg)
{
    i32 rc = _remark_input_check(chip_id, remark_id, cfg);
    if (rc == 0) {
        rc = _remark_type_check(chip_id, type);
    }
    if (rc != 0) {
        return rc;
    }
    cib_ecar_phb_tbl_t r{};
    {
        QOS_LOCK(chip_id);
        rc = _hw(chip_id, csl_reef_cib_ecar_phb_tbl_get(chip_id, 0, _remark_index(cfg, remark_id), &r));
    }
    if (rc == 0) {
        cfg->*kRemark[type].value = r.*kRemark[type].field;
    }
    return rc;
}

// ---- global switches ----------------------------------------------------------------

i32 dpl_reef_qos_ctrl_set(u32 chip_id, u32 type, u32 value)
{
    i32 rc = _type_check(chip_id, DPL_QOS_FLAG_CTRL, 5, type, "ctrl");
    if (rc != 0) {
        return rc;
    }
    const u8 flag = value != 0 ? 1 : 0;
    u8 mask[4] = {};
    QOS_LOCK(chip_id);
    switch (type) {
    case QOS_CTRL_PHB_PRI: {
        cib_iacl_iacl_phb_pri_cfg_t r{};
        r.iacl_phb_pri_cfg = flag;
        dpl_qos_mask_set(mask, cib_iacl_iacl_phb_pri_cfg__iacl_phb_pri_cfg);
        return _hw(chip_id, csl_reef_cib_iacl_iacl_phb_pri_cfg_set(chip_id, 0, &r, mask));
    }
    case QOS_CTRL_BA_TAG: {
        cib_icar_icar_ba_tag_t r{};
        r.ba_tag = flag;
        dpl_qos_mask_set(mask, cib_icar_icar_ba_tag__ba_tag);
        return _hw(chip_id, csl_reef_cib_icar_icar_ba_tag_set(chip_id, 0, &r, mask));
    }
    case QOS_CTRL_FBM_SHARE_RAM:
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "Please use chip_config.cfg to set this option[%d]! \n", (int)type);
        return SHR_E_NOT_SUPPORT;
    default: // the tunnel switches of chip types 1 and 2
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "ecar_ecar_usr_phb_en");
    }
}

i32 dpl_reef_qos_ctrl_get(u32 chip_id, u32 type, u32 *value)
{
    i32 rc = _null(chip_id, value, "value is NULL !\n");
    if (rc == 0) {
        rc = _type_check(chip_id, DPL_QOS_FLAG_CTRL, 5, type, "ctrl");
    }
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    switch (type) {
    case QOS_CTRL_PHB_PRI: {
        cib_iacl_iacl_phb_pri_cfg_t r{};
        rc = csl_reef_cib_iacl_iacl_phb_pri_cfg_get(chip_id, 0, &r);
        *value = r.iacl_phb_pri_cfg;
        break;
    }
    case QOS_CTRL_BA_TAG: {
        cib_icar_icar_ba_tag_t r{};
        rc = csl_reef_cib_icar_icar_ba_tag_get(chip_id, 0, &r);
        *value = r.ba_tag;
        break;
    }
    case QOS_CTRL_FBM_SHARE_RAM: {
        cib_lsw_hreg_fbm_share_ram_cfg_t r{};
        rc = csl_reef_cib_lsw_hreg_fbm_share_ram_cfg_get(chip_id, 0, &r);
        *value = r.fbm_share_ram_cfg;
        break;
    }
    default:
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "ecar_ecar_usr_phb_en");
    }
    return _hw(chip_id, rc);
}

// ---- common maps ----------------------------------------------------------------------

i32 dpl_reef_qos_common_map_ctrl_set(u32 chip_id, qos_common_map_cfg *cfg)
{
    i32 rc = _common_map_check(chip_id, cfg, true);
    if (rc != 0) {
        return rc;
    }
    if (cfg->type != QOS_COMMON_MAP_INTL_PRI_TO_COSQ) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "common map table");
    }
    cib_qm_cos_queue_map_t r{};
    r.*kCosq[cfg->intl_pri] = static_cast<u8>(cfg->cosq);
    u8 mask[4] = {};
    dpl_qos_mask_set(mask, kCosqMember[cfg->intl_pri]);
    QOS_LOCK(chip_id);
    return _hw(chip_id, csl_reef_cib_qm_cos_queue_map_set(chip_id, 0, &r, mask));
}

i32 dpl_reef_qos_common_map_ctrl_get(u32 chip_id, qos_common_map_cfg *cfg)
{
    i32 rc = _common_map_check(chip_id, cfg, false);
    if (rc != 0) {
        return rc;
    }
    if (cfg->type != QOS_COMMON_MAP_INTL_PRI_TO_COSQ) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "common map table");
    }
    QOS_LOCK(chip_id);
    return dpl_reef_qos_intl_pri_to_cosq(chip_id, cfg->intl_pri, &cfg->cosq);
}

// ---- flush ----------------------------------------------------------------------------

i32 dpl_reef_qos_flush_set(u32 chip_id, qos_flush_cfg *cfg)
{
    i32 rc = _null(chip_id, cfg, "flush_cfg is NULL !\n");
    if (rc == 0) {
        rc = _type_check(chip_id, DPL_QOS_FLAG_FLUSH, 4, cfg->type, "flush");
    }
    if (rc != 0) {
        return rc;
    }
    const dpl_reef_qos_cfg *q = g_qos_cfg[chip_id];
    if (cfg->type == QOS_FLUSH_DP) {
        rc = _range(chip_id, cfg->dpid >= q->dp_num, "dpid(%u) is out of range 0- %u !\n", cfg->dpid,
                    q->dp_num > 0 ? q->dp_num - 1 : 0);
        if (rc == 0 && cfg->dpid == q->black_hole_dpid) {
            SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "can not flush black hole dpid\n");
            rc = SHR_E_PARAM;
        }
        // The DP nodes belong to chip types 1 and 2, which the build does
        // not describe.
        return rc != 0 ? rc : csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "DP flush");
    }
    rc = _lport_check(chip_id, cfg->lport, "lport(%u) is out of range !\n");
    u32 port = cfg->lport;
    if (rc == 0) {
        rc = dpl_reef_tm_port_to_qm_port(chip_id, cfg->lport, &port);
    }
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    if (cfg->type != QOS_FLUSH_PORT_OPEN) {
        rc = _port_node_set(chip_id, port, true);
    }
    if (rc == 0 && cfg->type == QOS_FLUSH_PORT) {
        rc = _que_empty_check(chip_id, port);
    }
    if (rc == 0 && cfg->type != QOS_FLUSH_PORT_CLOSE) {
        rc = _port_node_set(chip_id, port, false);
    }
    return rc;
}

// ---- to-CPU enqueue ---------------------------------------------------------------------

i32 dpl_reef_qos_tocpu_enqueue_set(u32 chip_id, u32 type, qos_tocpu_key *key, qos_tocpu_cfg *cfg)
{
    i32 rc = _null(chip_id, key, "key is NULL !\n");
    if (rc == 0) {
        rc = _null(chip_id, cfg, "cfg is NULL !\n");
    }
    if (rc == 0) {
        rc = _type_check(chip_id, DPL_QOS_FLAG_TOCPU, 4, type, "tocpu enqueue");
    }
    const dpl_reef_qos_cfg *q = g_qos_cfg[chip_id];
    if (rc == 0) {
        rc = _cause_check(chip_id, key->causeid, q->tocpu_causeid_num, "causeid(%u) is out of range 0-%u !\n");
    }
    if (rc == 0 && type == QOS_TOCPU_CPU_QUEUE_ID) {
        rc = _range(chip_id, cfg->cpu_queue_id >= q->queue_offset_max_cpu, "cpu_queue_offset(%u) is out of range 0-%u \n",
                    cfg->cpu_queue_id, q->queue_offset_max_cpu - 1u);
    }
    if (rc != 0) {
        return rc;
    }
    cib_epro_causeid_table_t r{};
    r.vld = 1;
    QOS_LOCK(chip_id);
    switch (type) {
    case QOS_TOCPU_SNOOPING_DROP:
        r.snooping_drop_flag = cfg->snooping_drop == 1;
        break;
    case QOS_TOCPU_CPU_QUEUE_EN:
        r.cp_qindex_en = cfg->cpu_queue_en == 1;
        break;
    case QOS_TOCPU_TIME_EN:
        r.time_en = cfg->time_en == 1;
        break;
    default: {
        u32 pri = 0;
        rc = dpl_reef_qos_cosq_to_intl_pri(chip_id, cfg->cpu_queue_id & 7, &pri);
        if (rc != 0) {
            return rc;
        }
        r.cp_qindex = static_cast<u8>(pri + (cfg->cpu_queue_id >> 3) * 8);
    }
    }
    u64 mask[2] = {};
    dpl_qos_mask_set(mask, cib_epro_causeid_table__vld);
    dpl_qos_mask_set(mask, kTocpu[type].member);
    return _hw(chip_id, csl_reef_cib_epro_causeid_table_set(chip_id, 0, key->causeid, &r, mask));
}

i32 dpl_reef_qos_tocpu_enqueue_get(u32 chip_id, qos_tocpu_key *key, qos_tocpu_cfg *cfg)
{
    i32 rc = _null(chip_id, key, "key is NULL !\n");
    if (rc == 0) {
        rc = _null(chip_id, cfg, "cfg is NULL !\n");
    }
    if (rc == 0) {
        rc = _cause_check(chip_id, key->causeid, g_qos_cfg[chip_id]->tocpu_causeid_num,
                          "causeid(%u) is out of range 0-%u !\n");
    }
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    cib_epro_causeid_table_t r{};
    rc = csl_reef_cib_epro_causeid_table_get(chip_id, 0, key->causeid, &r);
    if (rc != 0) {
        return _hw(chip_id, rc);
    }
    *cfg = qos_tocpu_cfg{};
    if (r.vld == 0) {
        return 0;
    }
    u32 cosq = 0;
    rc = dpl_reef_qos_intl_pri_to_cosq(chip_id, r.cp_qindex & 7, &cosq);
    if (rc == 0) {
        *cfg = qos_tocpu_cfg{r.snooping_drop_flag, r.cp_qindex_en, cosq + (r.cp_qindex >> 3) * 8u, r.time_en};
    }
    return rc;
}

// ---- global redirect --------------------------------------------------------------------

i32 dpl_reef_qos_redirect_glb_set(u32 chip_id, qos_redirect_cfg *cfg)
{
    i32 rc = _null(chip_id, cfg, "redirect_cfg is NULL \n");
    if (rc == 0) {
        rc = _lport_check(chip_id, cfg->lport, "lport(%u) is out of range !\n");
    }
    if (rc != 0) {
        return rc;
    }
    const dpl_reef_qos_cfg *q = g_qos_cfg[chip_id];
    if (cfg->redir_flag > QOS_REDIR_TO_ETH) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "Worng redir flag(%u) \n", cfg->redir_flag);
        return SHR_E_PARAM;
    }
    const u32 max = cfg->redir_flag == QOS_REDIR_TO_CPU ? q->queue_offset_max_cpu : q->queue_offset_max_port;
    rc = _range(chip_id, cfg->queue_offset >= max, "queue_offset(%u) is out of range 0- %u !\n", cfg->queue_offset,
                max - 1);
    u32 queue = 0;
    if (rc == 0) {
        rc = dpl_reef_queue_off_to_queue_id(chip_id, cfg->lport, cfg->queue_offset, &queue);
    }
    if (rc != 0) {
        return rc;
    }
    cib_qm_redir_cfg_t r{};
    r.glb_redir_en = cfg->drop_pkt_en != 0;
    r.redir_cpu_flag = cfg->redir_flag == QOS_REDIR_TO_CPU;
    r.queid = static_cast<u8>(queue);
    u8 mask[4] = {};
    dpl_qos_mask_set(mask, {cib_qm_redir_cfg__glb_redir_en, cib_qm_redir_cfg__redir_cpu_flag, cib_qm_redir_cfg__queid});
    QOS_LOCK(chip_id);
    return _hw(chip_id, csl_reef_cib_qm_redir_cfg_set(chip_id, 0, &r, mask));
}

i32 dpl_reef_qos_redirect_glb_get(u32 chip_id, qos_redirect_cfg *cfg)
{
    i32 rc = _null(chip_id, cfg, "redirect_cfg is NULL \n");
    if (rc != 0) {
        return rc;
    }
    cib_qm_redir_cfg_t r{};
    {
        QOS_LOCK(chip_id);
        rc = _hw(chip_id, csl_reef_cib_qm_redir_cfg_get(chip_id, 0, &r));
    }
    u32 lport = 0, offset = 0;
    if (rc == 0) {
        rc = dpl_reef_queue_id_to_queue_off(chip_id, r.queid, r.redir_cpu_flag, &lport, &offset);
    }
    if (rc == 0) {
        *cfg = qos_redirect_cfg{r.redir_cpu_flag ? QOS_REDIR_TO_CPU : QOS_REDIR_TO_ETH, lport, offset, r.glb_redir_en};
    }
    return rc;
}

i32 dpl_reef_qos_redirect_cause_enable_set(u32 chip_id, u32 causeid, u32 is_enable)
{
    const i32 rc = _cause_check(chip_id, causeid, g_qos_cfg[chip_id]->causeid_num, "causeid(%u) is out of range 0- %u !\n");
    if (rc != 0) {
        return rc;
    }
    cib_qm_cause_tbl_t r{};
    r.redir_en = is_enable == 1;
    u64 mask[2] = {};
    dpl_qos_mask_set(mask, cib_qm_cause_tbl__redir_en);
    QOS_LOCK(chip_id);
    return _hw(chip_id, csl_reef_cib_qm_cause_tbl_set(chip_id, 0, causeid, &r, mask));
}

i32 dpl_reef_qos_redirect_cause_enable_get(u32 chip_id, u32 causeid, u32 *is_enable)
{
    i32 rc = _null(chip_id, is_enable, "is_enable is NULL !\n");
    if (rc == 0) {
        rc = _cause_check(chip_id, causeid, g_qos_cfg[chip_id]->causeid_num, "causeid(%u) is out of range 0- %u !\n");
    }
    if (rc != 0) {
        return rc;
    }
    cib_qm_cause_tbl_t r{};
    QOS_LOCK(chip_id);
    rc = csl_reef_cib_qm_cause_tbl_get(chip_id, 0, causeid, &r);
    *is_enable = r.redir_en;
    return _hw(chip_id, rc);
}

// ---- capture ------------------------------------------------------------------------

i32 dpl_reef_qos_capture_set(u32 chip_id, qos_capture_cfg *cfg)
{
    i32 rc = _null(chip_id, cfg, "cfg is NULL !\n");
    const dpl_reef_qos_cfg *q = g_qos_cfg[chip_id];
    if (rc == 0) {
        rc = _range(chip_id, cfg->cap_num > 15, "cap_num(%u) is out of range 0- %u !\n", cfg->cap_num, 15);
    }
    if (rc == 0) {
        rc = _lport_check(chip_id, cfg->lport, "lport(%u), is out of range !\n");
    }
    if (rc == 0) {
        rc = _range(chip_id, cfg->queue_offset >= q->queue_offset_max_cpu, "queue_offset(%u), is out of range 0- %u !\n",
                    cfg->queue_offset, q->queue_offset_max_cpu - 1u);
    }
    if (rc != 0) {
        return rc;
    }
    if (cfg->flags & QOS_CAPTURE_EX_LEN_1588) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "chip type (%u) not support capture flag ex-len-1588 !\n",
                    shr_chip_type_get(chip_id));
        return SHR_E_NOT_SUPPORT;
    }
    cib_qm_pkt_cap_ctrl0_t r{};
    r.cap_en = cfg->flags & QOS_CAPTURE_ON;
    r.cap_pid = static_cast<u8>(cfg->lport);
    r.cap_num = static_cast<u8>(cfg->cap_num);
    r.cap_qid = static_cast<u8>(cfg->queue_offset);
    u8 mask[4] = {};
    dpl_qos_mask_set(mask, {cib_qm_pkt_cap_ctrl0__cap_en, cib_qm_pkt_cap_ctrl0__cap_pid, cib_qm_pkt_cap_ctrl0__cap_num,
                  cib_qm_pkt_cap_ctrl0__cap_qid});
    QOS_LOCK(chip_id);
    return _hw(chip_id, csl_reef_cib_qm_pkt_cap_ctrl0_set(chip_id, 0, &r, mask));
}

i32 dpl_reef_qos_capture_status_get(u32 chip_id, qos_capture_info *info)
{
    i32 rc = _null(chip_id, info, "info is NULL !\n");
    if (rc != 0) {
        return rc;
    }
    cib_qm_pkt_cap_ctrl0_t r{};
    QOS_LOCK(chip_id);
    rc = csl_reef_cib_qm_pkt_cap_ctrl0_get(chip_id, 0, &r);
    if (rc == 0) {
        *info = qos_capture_info{r.cap_en ? QOS_CAPTURE_ON : 0u, r.cap_pid, r.cap_num, r.cap_qid, r.cap_cnt};
    }
    return _hw(chip_id, rc);
}

static i32 _capture_causeid(u32 chip_id, u32 index, u32 *causeid, bool set)
{
    i32 rc = _range(chip_id, index >= kCapCauses, "causeid_index(%u) is out of range 0- %u !\n", index, kCapCauses - 1);
    if (rc == 0 && set) {
        rc = _cause_check(chip_id, *causeid, g_qos_cfg[chip_id]->causeid_num, "causeid(%u) , is out of range 0- %u !\n");
    }
    if (rc != 0) {
        return rc;
    }
    // Indexes 0 and 1 are in the first register, 2 and 3 in the second;
    // both have the same layout.
    const u32 reg = index < 2 ? cib_qm_pkt_cap_ctrl1 : cib_qm_pkt_cap_ctrl2;
    cib_qm_pkt_cap_ctrl1_t r{};
    QOS_LOCK(chip_id);
    rc = reg == cib_qm_pkt_cap_ctrl1 ? csl_reef_cib_qm_pkt_cap_ctrl1_get(chip_id, 0, &r)
                                     : csl_reef_cib_qm_pkt_cap_ctrl2_get(chip_id, 0, reinterpret_cast<cib_qm_pkt_cap_ctrl2_t *>(&r));
    u16 &field = (index & 1) ? r.ptype_cap1 : r.ptype_cap0;
    if (rc == 0 && !set) {
        *causeid = field;
    } else if (rc == 0) {
        field = static_cast<u16>(*causeid);
        u8 mask[4] = {};
        dpl_qos_mask_set(mask, (index & 1) ? cib_qm_pkt_cap_ctrl1__ptype_cap1 : cib_qm_pkt_cap_ctrl1__ptype_cap0);
        rc = reg == cib_qm_pkt_cap_ctrl1
                 ? csl_reef_cib_qm_pkt_cap_ctrl1_set(chip_id, 0, &r, mask)
                 : csl_reef_cib_qm_pkt_cap_ctrl2_set(chip_id, 0, reinterpret_cast<cib_qm_pkt_cap_ctrl2_t *>(&r), mask);
    }
    return _hw(chip_id, rc);
}

i32 dpl_reef_qos_capture_causeid_set(u32 chip_id, u32 causeid_index, u32 causeid)
{
    return _capture_causeid(chip_id, causeid_index, &causeid, true);
}

i32 dpl_reef_qos_capture_causeid_get(u32 chip_id, u32 causeid_index, u32 *causeid)
{
    const i32 rc = _null(chip_id, causeid, "causeid is NULL !\n");
    return rc != 0 ? rc : _capture_causeid(chip_id, causeid_index, causeid, false);
}

// ---- statistics and status ------------------------------------------------------------

} // extern "C"

namespace {


// Modes of the history watcher: the mode and whether it spans every
// member, by counter type (9 to 24); mode 8 marks a type without one.
struct HisMode {
    u8 mode;
    u8 all;
    bool max;
};
constexpr HisMode kHis[16] = {
    {0, 0, true},  {2, 0, true},  {1, 0, true},  {3, 1, true},  {0, 0, false}, {1, 0, false},
    {3, 1, false}, {0, 1, true},  {2, 1, true},  {1, 1, true},  {0, 1, false}, {1, 1, false},
    {2, 1, true},  {2, 1, false}, {7, 1, true},  {7, 1, false},
};
constexpr u32 kHisFirst = 9, kHisLast = 24;

i32 _his_read(u32 chip_id, u32 type, u32 key, u32 *cells)
{
    const HisMode &h = kHis[type - kHisFirst];
    cib_qm_que_dbg_ctrl_t c{};
    c.queue_cfg = static_cast<u8>(h.all ? 0 : key);
    c.queue_dbg_mod_cfg = h.mode;
    c.queue_mask_cfg = h.all ? 255 : 0;
    u8 mask[4] = {};
    dpl_qos_mask_set(mask, {cib_qm_que_dbg_ctrl__queue_cfg, cib_qm_que_dbg_ctrl__queue_dbg_mod_cfg,
                  cib_qm_que_dbg_ctrl__queue_mask_cfg});
    i32 rc = csl_reef_cib_qm_que_dbg_ctrl_set(chip_id, 0, &c, mask);
    cib_qm_qm_que_dbg_t d{};
    if (rc == 0) {
        rc = csl_reef_cib_qm_qm_que_dbg_get(chip_id, 0, &d);
    }
    *cells = h.max ? d.que_max_len : d.que_min_len;
    return _hw(chip_id, rc);
}

// The statistics row of a queue: bytes and packets assembled from their
// two parts.
template <typename R>
void _stat_parts(const R &r, qos_counter_info *info)
{
    info->byte_num = r.byte_cnt_l28 + (u64{r.byte_cnt_h16} << 28);
    info->pkt_num = r.pkt_cnt_l32 + (u64{r.pkt_cnt_h4} << 32);
    info->valid_mask = QOS_COUNTER_VALID_PKT | QOS_COUNTER_VALID_BYTE;
}

i32 _counter_key_check(u32 chip_id, u32 type, const qos_counter_key *key)
{
    const dpl_reef_qos_cfg *q = g_qos_cfg[chip_id];
    const bool by_queue = type <= 2 || type == 9 || type == 13;
    const bool by_port = type == 3 || type == 11 || type == 14;
    i32 rc = 0;
    if (by_queue) {
        rc = _range(chip_id, key->queue_id >= q->queue_num, "queue_id(%u), is out of range 0- %u !\n", key->queue_id,
                    q->queue_num - 1);
    }
    if (rc == 0 && by_port) {
        rc = _lport_check(chip_id, key->lport, "lport(%u), is out of range !\n");
    }
    if (rc == 0 && type == 10) {
        rc = _range(chip_id, key->dpid >= q->dp_num, "dpid(%u), is out of range !\n", key->dpid, 0);
    }
    return rc;
}

} // namespace

extern "C" {

i32 dpl_reef_qos_counter_info_get(u32 chip_id, u32 type, qos_counter_key *key, qos_counter_info *info)
{
    i32 rc = _null(chip_id, key, "key is NULL !\n");
    if (rc == 0) {
        rc = _null(chip_id, info, "info is NULL !\n");
    }
    if (rc == 0) {
        rc = _type_check(chip_id, DPL_QOS_FLAG_COUNTER, 25, type, "counter");
    }
    if (rc == 0) {
        rc = _counter_key_check(chip_id, type, key);
    }
    if (rc != 0) {
        return rc;
    }
    *info = qos_counter_info{};
    QOS_LOCK(chip_id);
    switch (type) {
    case 0: {
        // The packets of the queue's buffer; the description has no rows
        // of the cell counts.
        cib_qm_fbm_link_rdata_t r{};
        rc = csl_reef_cib_qm_fbm_link_rdata_get(chip_id, 0, key->queue_id, &r);
        info->pkt_num = r.data;
        info->valid_mask = QOS_COUNTER_VALID_PKT;
        return _hw(chip_id, rc);
    }
    case 1: {
        cib_qm_que_fwd_stat_tbl_t r{};
        rc = csl_reef_cib_qm_que_fwd_stat_tbl_get(chip_id, 0, key->queue_id, &r);
        _stat_parts(r, info);
        return _hw(chip_id, rc);
    }
    case 2: {
        cib_qm_que_drop_stat_tbl_t r{};
        rc = csl_reef_cib_qm_que_drop_stat_tbl_get(chip_id, 0, key->queue_id, &r);
        _stat_parts(r, info);
        return _hw(chip_id, rc);
    }
    case 3: {
        cib_stat_oport_stat_result_tbl_t r{};
        rc = csl_reef_cib_stat_oport_stat_result_tbl_get(chip_id, 0, key->lport, &r);
        info->byte_num = r.oport_stat_result_byt_num;
        info->pkt_num = r.oport_stat_result_pkt_num;
        info->valid_mask = QOS_COUNTER_VALID_PKT | QOS_COUNTER_VALID_BYTE;
        return _hw(chip_id, rc);
    }
    default: {
        const u32 k = type == 10 ? key->dpid : (type == 11 || type == 14) ? key->lport : key->queue_id;
        rc = _his_read(chip_id, type, k, &info->cell_num);
        info->valid_mask = QOS_COUNTER_VALID_CELL;
        return rc;
    }
    }
}

i32 dpl_reef_qos_counter_status_clear(u32 chip_id, u32 type, qos_clear_key *key)
{
    i32 rc = _null(chip_id, key, "clear_key is NULL !\n");
    if (rc == 0) {
        rc = _type_check(chip_id, DPL_QOS_FLAG_CLEAR, 6, type, "clear");
    }
    const qos_counter_key k{key != nullptr ? key->lport : 0, 0, key != nullptr ? key->queue_id : 0, 0};
    if (rc == 0) {
        rc = _counter_key_check(chip_id, type, &k);
    }
    if (rc != 0) {
        return rc;
    }
    u64 all[2] = {~0ull, ~0ull};
    QOS_LOCK(chip_id);
    switch (type) {
    case 1: {
        cib_stat_oport_stat_result_tbl_t r{};
        return _hw(chip_id, csl_reef_cib_stat_oport_stat_result_tbl_set(chip_id, 0, key->lport, &r, all));
    }
    case 2: {
        cib_qm_que_fwd_stat_tbl_t r{};
        return _hw(chip_id, csl_reef_cib_qm_que_fwd_stat_tbl_set(chip_id, 0, key->queue_id, &r, all));
    }
    case 3: {
        cib_qm_que_drop_stat_tbl_t r{};
        return _hw(chip_id, csl_reef_cib_qm_que_drop_stat_tbl_set(chip_id, 0, key->queue_id, &r, all));
    }
    case 5: {
        cib_qm_qm_que_dbg_t r{};
        u8 mask[4] = {0xFF, 0xFF, 0xFF, 0xFF};
        return _hw(chip_id, csl_reef_cib_qm_qm_que_dbg_set(chip_id, 0, &r, mask));
    }
    default: // the module statistics of the queue manager
        return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "queue manager module statistics");
    }
}

i32 dpl_reef_qos_status_info_get(u32 chip_id, u32 type, qos_status_key *key, u32 *status)
{
    if (key == nullptr || status == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "key(%p) or status_info(%p) is NULL !\n", static_cast<void *>(key),
                    static_cast<void *>(status));
        return SHR_E_NULL_PTR;
    }
    i32 rc = _type_check(chip_id, DPL_QOS_FLAG_STATUS, 11, type, "status");
    const u32 queues = g_qos_cfg[chip_id]->queue_num;
    if (rc == 0 && type == 0) {
        rc = _range(chip_id, key->queue_id >= queues, "queue_id(%u), is out of range 0- %u !\n", key->queue_id,
                    queues - 1);
    }
    if (rc == 0 && type == 10) {
        rc = _lport_check(chip_id, key->lport, "lport(%u), is out of range !\n");
    }
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    if (type == 0) {
        cib_sch_que_empty_tbl_t r{};
        rc = csl_reef_cib_sch_que_empty_tbl_get(chip_id, 0, key->queue_id, &r);
        *status = r.data != 0;
        return _hw(chip_id, rc);
    }
    if (type == 10) {
        cib_qm_qm_port_flush_en_t r{};
        rc = csl_reef_cib_qm_qm_port_flush_en_get(chip_id, key->lport >> 5, &r);
        *status = (r.port_flush_en >> (key->lport & 31)) & 1u;
        return _hw(chip_id, rc);
    }
    // Queue, back-pressure and link states: registers the description of
    // this build does not name.
    return csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_ERROR, "queue manager status registers");
}

// ---- the checks ----------------------------------------------------------------------

static i32 _check_args(u32 chip_id, const qos_check_key *key, const void *out, u32 base, const char *what)
{
    if (key == nullptr || out == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "check_result[%p] or key[%p] is NULL \n", out, static_cast<const void *>(key));
        return SHR_E_NULL_PTR;
    }
    const i32 rc = _type_check(chip_id, base, 2, key->type, what);
    const u32 n = g_qos_cfg[chip_id]->queue_num;
    return rc != 0 ? rc : _range(chip_id, key->qid >= n, "qid(%u), is out of range 0- %u !\n", key->qid, n - 1);
}

i32 dpl_reef_qos_que_congestion_check(u32 chip_id, qos_check_key *key, qos_check_result *result)
{
    i32 rc = _check_args(chip_id, key, result, DPL_QOS_FLAG_CONGESTION, "congestion check");
    if (rc != 0) {
        return rc;
    }
    *result = qos_check_result{};
    const u32 first = key->qid & ~7u;
    u64 last_drop[8] = {};
    QOS_LOCK(chip_id);
    // Every queue of the group is looked at: without a scheduler service,
    // no queue is known to be starved by a strict neighbour.
    for (u32 i = 0; i < 8; i++) {
        result->checked[i] = 1;
        result->queue_id[i] = first + i;
    }
    for (u32 round = 0; round < 10; round++) {
        bool any = false;
        for (u32 i = 0; i < 8; i++) {
            cib_qm_fbm_link_rdata_t cells{};
            cib_qm_que_drop_stat_tbl_t drop{};
            rc = csl_reef_cib_qm_fbm_link_rdata_get(chip_id, 0, first + i, &cells);
            if (rc == 0) {
                rc = csl_reef_cib_qm_que_drop_stat_tbl_get(chip_id, 0, first + i, &drop);
            }
            if (rc != 0) {
                return _hw(chip_id, rc);
            }
            const u64 bytes = drop.byte_cnt_l28 + (u64{drop.byte_cnt_h16} << 28);
            if (cells.data > 20 || (round > 0 && bytes > last_drop[i])) {
                result->congested[i] = 1;
                any = true;
            }
            last_drop[i] = bytes;
        }
        if (any) {
            break;
        }
    }
    return 0;
}

i32 dpl_reef_qos_que_bandwidth_cfg_zero_check(u32 chip_id, qos_check_key *key, u32 *zero)
{
    i32 rc = _check_args(chip_id, key, zero, DPL_QOS_FLAG_ZERO_CHECK, "bandwidth zero check");
    if (rc != 0) {
        return rc;
    }
    QOS_LOCK(chip_id);
    cib_sch_que_shap_tbl_t qs{};
    rc = csl_reef_cib_sch_que_shap_tbl_get(chip_id, 0, key->qid, &qs);
    u32 result = qs.pv == 1 && (qs.pband_bas == 0 || qs.pburst_bas == 0);
    if (rc == 0 && key->type == 1) {
        u32 lport = 0, offset = 0;
        rc = dpl_reef_queue_id_to_queue_off(chip_id, key->qid, 1, &lport, &offset);
        cib_sch_port_shap_tbl_t ps{};
        if (rc == 0) {
            rc = csl_reef_cib_sch_port_shap_tbl_get(chip_id, 0, lport, &ps);
        }
        result |= ps.pv == 1 && (ps.pband == 0 || ps.pburst == 0);
    }
    if (rc == 0) {
        *zero = result;
    }
    return _hw(chip_id, rc);
}

// ---- bring-up -------------------------------------------------------------------------

i32 dpl_reef_qos_special_register(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        return 0;
    case SHR_CHIP_TYPE_ATOLREEF:
        return dpl_atolreef_qos_special_register(chip_id);
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "error chip type!!!\n");
        return SHR_E_NOT_SUPPORT;
    }
}

static void _glb_info_init(u32 chip_id, dpl_reef_qos_cfg *q)
{
    const bool atol = _atolreef(chip_id);
    const dpl_reef_qos_cfg &base = atol ? kCfgAtolreef : kCfgKelpreef;
    *q = base;
    auto prop = [chip_id](const char *key, int atol_dflt, int sib_dflt, bool atol_chip) {
        return static_cast<u32>(shr_property_get(chip_id, key, atol_chip ? atol_dflt : sib_dflt));
    };
    q->sch_port_bp_thr_flag = prop("sch_port_bp_thr_flag", 0, 0, atol);
    q->sch_shaper_cfg_method = prop("sch_shaper_cfg_method", 1, 1, atol);
    q->port_tail_min_thr = prop("qos_port_tail_profile_min_thr", 16, 16, atol);
    q->port_tail_max_thr = prop("qos_port_tail_profile_max_thr", 1792, 3072, atol);
    q->que_tail_min_thr = prop("qos_que_tail_profile_min_thr", 8, 2, atol);
    q->que_tail_max_thr = prop("qos_que_tail_profile_max_thr", 600, 448, atol);
    q->port_tail_alpha = prop("qos_port_tail_profile_alpha", 4, 7, atol);
    q->que_tail_alpha = prop("qos_que_tail_profile_alpha", 2, 6, atol);
    if (atol) {
        q->tail_thr_auto_change = prop("qos_tail_thr_auto_change", 1, 1, atol);
    } else {
        q->dp_tail_max_thr = prop("qos_dp_tail_profile_max_thr", 3072, 3072, atol);
    }
}

i32 dpl_reef_qos_soft_init(u32 chip_id)
{
    if (g_qos_cfg[chip_id] != nullptr) {
        return 0;
    }
    i32 rc = dpl_lock_create(chip_id, DPL_LOCK_QOS, "QOS");
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "qos lock create faild\n");
        dpl_reef_qos_soft_deinit(chip_id);
        return rc;
    }
    auto *q = static_cast<dpl_reef_qos_cfg *>(xsal_malloc(sizeof(dpl_reef_qos_cfg), "qos_glb", SHR_MOD_QOS));
    if (q == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "qos_glb malloc faild!\n");
        dpl_reef_qos_soft_deinit(chip_id);
        return SHR_E_MEMORY;
    }
    _glb_info_init(chip_id, q);
    g_qos_cfg[chip_id] = q;
    rc = dpl_reef_qos_special_register(chip_id);
    if (rc == 0) {
        rc = dpl_reef_policer_soft_init(chip_id);
    }
    if (rc != 0) {
        dpl_reef_qos_soft_deinit(chip_id);
    }
    return rc;
}

// Undoes whatever the init got done.
i32 dpl_reef_qos_soft_deinit(u32 chip_id)
{
    dpl_reef_policer_mem_free(chip_id);
    xsal_mem_free(g_qos_cfg[chip_id]);
    g_qos_cfg[chip_id] = nullptr;
    reef_qos_special[chip_id] = reef_qos_special_t{};
    dpl_lock_destroy(chip_id, DPL_LOCK_QOS);
    return 0;
}

i32 dpl_reef_qos_hw_init(u32 chip_id)
{
    const auto fn = reef_qos_special[chip_id].hw_init;
    if (fn == nullptr) {
        // Nothing of the chip can be programmed: its registers keep their
        // reset values, and the calls that need them answer -24.
        csl_reef_not_in_build(chip_id, SHR_MOD_QOS, SHR_LOG_WARN, "QoS tables");
        return 0;
    }
    return fn(chip_id);
}

i32 dpl_reef_qos_hw_deinit(u32 chip_id)
{
    const auto fn = reef_qos_special[chip_id].hw_deinit;
    return fn != nullptr ? fn(chip_id) : 0;
}

} // extern "C"

// ---- the family table -----------------------------------------------------------

namespace {
template <auto Fn>
constexpr auto _hw_op = OnCatalogue<Fn>::_call;
}

extern "C" const reef_qos_dispatch_t reef_qos_dispatch = {
    _hw_op<dpl_reef_qos_priority_map_set>,
    _hw_op<dpl_reef_qos_priority_map_get>,
    _hw_op<dpl_reef_qos_remark_set>,
    _hw_op<dpl_reef_qos_remark_get>,
    _hw_op<dpl_reef_qos_ctrl_set>,
    _hw_op<dpl_reef_qos_ctrl_get>,
    _hw_op<dpl_reef_qos_policer_create>,
    _hw_op<dpl_reef_qos_policer_destroy>,
    _hw_op<dpl_reef_qos_policer_created_get>,
    _hw_op<dpl_reef_qos_policer_set>,
    _hw_op<dpl_reef_qos_policer_get>,
    _hw_op<dpl_reef_qos_policer_action_set>,
    _hw_op<dpl_reef_qos_policer_action_get>,
    _hw_op<dpl_reef_qos_policer_bind>,
    _hw_op<dpl_reef_qos_policer_unbind>,
    _hw_op<dpl_reef_qos_policer_bind_get>,
    _hw_op<dpl_reef_qos_common_map_ctrl_set>,
    _hw_op<dpl_reef_qos_common_map_ctrl_get>,
    // bandwidth (18..24), sched (25..30), topo (31..33): the scheduler
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    nullptr, nullptr, nullptr,
    _hw_op<dpl_reef_qos_flush_set>,
    _hw_op<dpl_reef_qos_tocpu_enqueue_set>,
    _hw_op<dpl_reef_qos_tocpu_enqueue_get>,
    _hw_op<dpl_reef_qos_redirect_glb_set>,
    _hw_op<dpl_reef_qos_redirect_glb_get>,
    _hw_op<dpl_reef_qos_redirect_cause_enable_set>,
    _hw_op<dpl_reef_qos_redirect_cause_enable_get>,
    _hw_op<dpl_reef_qos_capture_set>,
    _hw_op<dpl_reef_qos_capture_status_get>,
    _hw_op<dpl_reef_qos_capture_causeid_set>,
    _hw_op<dpl_reef_qos_capture_causeid_get>,
    // discard profiles (45..52), discard_set/get (53, 54, empty on this
    // family), discard controls (55, 56)
    nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
    nullptr, nullptr, nullptr, nullptr,
    _hw_op<dpl_reef_qos_counter_info_get>,
    _hw_op<dpl_reef_qos_status_info_get>,
    _hw_op<dpl_reef_qos_counter_status_clear>,
    _hw_op<dpl_reef_qos_que_congestion_check>,
    _hw_op<dpl_reef_qos_que_bandwidth_cfg_zero_check>,
};
