// atolreef's part of the QoS service.  The priority maps of every key type
// share one table, icar_ba_tbl: an entry holds four (intl_pri, colour)
// pairs, and each key type owns a range of entries.
#include "dpl/reef/special/atolreef/dpl_atolreef_qos.h"

#include "atolreef_cib.h"

namespace {

// Where a key type's entries start, and how many entries a map has.
struct BaLayout {
    u32 base;
    u32 per_map;
};
constexpr BaLayout kBa[] = {
    {192, 2}, // opri
    {128, 4}, // opri-ocfi
    {208, 2}, // ipri
    {160, 4}, // ipri-icfi
    {0, 16},  // dscp
};

// The pair of each place in an entry.
struct BaPair {
    u32 qindex_member, color_member;
    u8 cib_icar_ba_tbl_t::*qindex;
    u8 cib_icar_ba_tbl_t::*color;
};
constexpr BaPair kPairs[4] = {
    {cib_icar_ba_tbl__qindex0, cib_icar_ba_tbl__color0, &cib_icar_ba_tbl_t::qindex0, &cib_icar_ba_tbl_t::color0},
    {cib_icar_ba_tbl__qindex1, cib_icar_ba_tbl__color1, &cib_icar_ba_tbl_t::qindex1, &cib_icar_ba_tbl_t::color1},
    {cib_icar_ba_tbl__qindex2, cib_icar_ba_tbl__color2, &cib_icar_ba_tbl_t::qindex2, &cib_icar_ba_tbl_t::color2},
    {cib_icar_ba_tbl__qindex3, cib_icar_ba_tbl__color3, &cib_icar_ba_tbl_t::qindex3, &cib_icar_ba_tbl_t::color3},
};

i32 _bad(u32 chip_id, const char *fmt, u32 a, u32 b, u32 c = 0, u32 d = 0)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_QOS, fmt, a, b, c, d);
    return SHR_E_PARAM;
}

i32 _pps_len_init(u32 chip_id)
{
    u8 mask[4] = {};
    dpl_qos_mask_set(mask, cib_icar_cfg_pps_len__cfg_pps_len);
    cib_icar_cfg_pps_len_t in{DPL_QOS_PPS_LEN};
    i32 rc = csl_reef_cib_icar_cfg_pps_len_set(chip_id, 0, &in, mask);
    if (rc == 0) {
        cib_ecar_cfg_pps_len_t out{DPL_QOS_PPS_LEN};
        rc = csl_reef_cib_ecar_cfg_pps_len_set(chip_id, 0, &out, mask);
    }
    return rc;
}

} // namespace

extern "C" {

i32 dpl_atolreef_qos_ba_index(u32 chip_id, u32 type, u32 map_id, const qos_map_cfg *cfg, u32 *entry, u32 *pair)
{
    if (cfg == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "map_cfg is NULL \n");
        return SHR_E_NULL_PTR;
    }
    if (map_id > QOS_MAP_ID_MAX) {
        return _bad(chip_id, "map_id(%u) is out of range 0-%u !\n", map_id, QOS_MAP_ID_MAX);
    }
    switch (type) {
    case QOS_MAP_OPRI:
    case QOS_MAP_IPRI:
        if (cfg->pri > 7) {
            return _bad(chip_id, type == QOS_MAP_OPRI ? "opri(%u) is out of range 0-%u!\n" : "ipri(%u) is out of range 0-%u!\n",
                        cfg->pri, 7);
        }
        break;
    case QOS_MAP_OPRI_OCFI:
    case QOS_MAP_IPRI_ICFI:
        if (cfg->pri > 7 || cfg->cfi > 1) {
            return _bad(chip_id,
                        type == QOS_MAP_OPRI_OCFI ? "opri(%u) or ocfi(%u) is out of range 0-%u 0-%u!\n"
                                                  : "ipri(%u) or icfi(%u) is out of range 0-%u 0-%u!\n",
                        cfg->pri, cfg->cfi, 7, 1);
        }
        break;
    case QOS_MAP_DSCP:
        if (cfg->dscp > 63) {
            return _bad(chip_id, "dscp(%u) is out of range 0-%u!\n", cfg->dscp, 63);
        }
        *entry = map_id * 16 + (cfg->dscp >> 2u);
        *pair = cfg->dscp & 3u;
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "Not support type(%d)!\n", (int)type);
        return SHR_E_NOT_SUPPORT;
    }
    const BaLayout &l = kBa[type];
    const u32 cfi = (type == QOS_MAP_OPRI_OCFI || type == QOS_MAP_IPRI_ICFI) ? cfg->cfi * 2u : 0u;
    *entry = l.base + map_id * l.per_map + cfi + ((cfg->pri >> 2u) & 1u);
    *pair = cfg->pri & 3u;
    return 0;
}

i32 dpl_atolreef_qos_priority_map_set(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg)
{
    u32 entry = 0, pair = 0;
    i32 rc = dpl_atolreef_qos_ba_index(chip_id, type, map_id, cfg, &entry, &pair);
    if (rc != 0) {
        return rc;
    }
    if (cfg->intl_pri > 7 || cfg->color > 2) {
        SHR_LOG_ERR(chip_id, SHR_MOD_QOS, "intl_pri(%u) or color(%d) is out of range:[0-%u], [0-%d]! \n", cfg->intl_pri,
                    (int)cfg->color, 7, 2);
        return SHR_E_PARAM;
    }
    const BaPair &p = kPairs[pair];
    cib_icar_ba_tbl_t r{};
    r.*p.qindex = static_cast<u8>(cfg->intl_pri);
    r.*p.color = static_cast<u8>(cfg->color);
    u64 mask[2] = {};
    dpl_qos_mask_set(mask, p.qindex_member);
    dpl_qos_mask_set(mask, p.color_member);
    QOS_LOCK(chip_id);
    rc = csl_reef_cib_icar_ba_tbl_set(chip_id, 0, entry, &r, mask);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

i32 dpl_atolreef_qos_priority_map_get(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg)
{
    u32 entry = 0, pair = 0;
    i32 rc = dpl_atolreef_qos_ba_index(chip_id, type, map_id, cfg, &entry, &pair);
    if (rc != 0) {
        return rc;
    }
    cib_icar_ba_tbl_t r{};
    QOS_LOCK(chip_id);
    rc = csl_reef_cib_icar_ba_tbl_get(chip_id, 0, entry, &r);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    cfg->intl_pri = r.*kPairs[pair].qindex;
    cfg->color = r.*kPairs[pair].color;
    return 0;
}

// The QoS part of atolreef's bring-up that exists so far: the packet
// length of packet-mode policers.
i32 dpl_atolreef_qos_hw_init(u32 chip_id)
{
    const i32 rc = _pps_len_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

i32 dpl_atolreef_qos_special_register(u32 chip_id)
{
    reef_qos_special[chip_id] = reef_qos_special_t{dpl_atolreef_qos_priority_map_set,
                                                   dpl_atolreef_qos_priority_map_get, dpl_atolreef_qos_hw_init,
                                                   nullptr, nullptr};
    return 0;
}

} // extern "C"
