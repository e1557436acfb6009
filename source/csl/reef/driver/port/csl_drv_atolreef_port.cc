// The port model of atolreef and its driver table.  The operations that
// only read the model live here; the MAC and PCS operations fill their
// slots as they come.
#include <cstdio>
#include <cstring>

#include <tide/property.h>

#include "csl/reef/driver/port/csl_atolreef_port.h"

using tide::port::MutexGuard;
using tide::port::pbmp_range;

namespace {

struct inner_port_name {
    u32 lport;
    const char *name;
};

constexpr inner_port_name kInnerPorts[] = {
    {28, "mirror_lb_port"}, {29, "prbs_port"}, {30, "dygasp_port"}, {CSL_ATOLREEF_CPU_PORT, "cpu_port"}};
static_assert(sizeof(kInnerPorts) / sizeof(kInnerPorts[0]) ==
              CSL_ATOLREEF_PORT_COUNT - CSL_ATOLREEF_FIRST_INNER_PORT);

// The keys by which the port start names the inner ports in the chip's
// property store, both ways: a property of each name holds the port's
// number, the port's own "inner_port" holds the name.  The shell
// translates port names by them.  `fn(key, value)` for each, in order.
template <typename Fn>
i32 _csl_atolreef_inner_port_keys(Fn fn)
{
    for (const inner_port_name &p : kInnerPorts) {
        char number[12];
        char port_key[24];
        std::snprintf(number, sizeof(number), "%u", p.lport);
        std::snprintf(port_key, sizeof(port_key), "inner_port_%u", p.lport);
        i32 rc = fn(p.name, number);
        if (rc == 0) {
            rc = fn(port_key, p.name);
        }
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

// Which of those keys the port start added, by chip, one bit per key in
// their order: the port stop removes them, so that the records go back
// through the allocator that made them.
u8 g_inner_port_keys_added[SHR_MAX_CHIPS];

i32 _csl_atolreef_inner_port_names_store(u32 chip_id)
{
    u32 bit = 0;
    const i32 rc = _csl_atolreef_inner_port_keys([chip_id, &bit](const char *key, const char *value) {
        const bool had = shr_property_get_str(chip_id, key) != nullptr;
        const i32 r = shr_property_set(chip_id, key, value);
        if (r == 0 && !had) {
            g_inner_port_keys_added[chip_id] |= static_cast<u8>(1u << bit);
        }
        bit++;
        return r;
    });
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

} // namespace

extern "C" {

i32 csl_atolreef_port_map_load(u32 chip_id, u32 map_mode)
{
    csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    if (map_mode >= CSL_PORT_MAP_MODES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "map_type%u out of range (range : 0~1)\n", map_mode);
        return SHR_E_PARAM;
    }
    const auto &mags = map_mode == 0 ? g_atolreef_mag_info_glue0 : g_atolreef_mag_info_glue1;
    const auto &macs = map_mode == 0 ? g_atolreef_mac_info_glue_0 : g_atolreef_mac_info_glue_1;
    MutexGuard hold(ctl->lock);
    memcpy(ctl->mag_info, mags.data(), sizeof(ctl->mag_info));
    memcpy(ctl->mac_info, macs.data(), sizeof(ctl->mac_info));
    ctl->port_config.pbmp[PORT_CONFIG_ACTIVE] = port_bitmap{};
    ctl->map_mode = map_mode;
    return 0;
}

i32 csl_atolreef_control_db_init(u32 chip_id)
{
    csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        return SHR_E_NULL_PTR;
    }
    {
        MutexGuard hold(ctl->lock);
        ctl->cpu_port = CSL_ATOLREEF_CPU_PORT;
        ctl->mag_count = CSL_PORT_MAX_MAG;
        ctl->mac_count = CSL_PORT_MAX_MAC;
        ctl->pcs_ch_count = CSL_ATOLREEF_PCS_CH_COUNT;
        ctl->lport_count = CSL_ATOLREEF_PORT_COUNT;
        ctl->valid_bmp = pbmp_range(0, CSL_ATOLREEF_PORT_COUNT - 1);
        port_bitmap *pbmp = ctl->port_config.pbmp;
        pbmp[PORT_CONFIG_ALL] = ctl->valid_bmp;
        pbmp[PORT_CONFIG_ACTIVE] = port_bitmap{};
        pbmp[PORT_CONFIG_ETHER] = pbmp_range(0, CSL_PORT_MAX_MAC - 1);
        pbmp[PORT_CONFIG_INNER] = pbmp_range(CSL_ATOLREEF_FIRST_INNER_PORT, CSL_ATOLREEF_PORT_COUNT - 1);
        pbmp[PORT_CONFIG_CPU] = pbmp_range(CSL_ATOLREEF_CPU_PORT, CSL_ATOLREEF_CPU_PORT);
        // Until a mapping mode is loaded no MAC has a MAG.
        ctl->map_mode = CSL_PORT_MAP_NONE;
        for (csl_port_mac_info &mac : ctl->mac_info) {
            mac = {CSL_PORT_ABSENT, 0, CSL_PORT_NONE, CSL_PORT_NONE};
        }
        for (csl_port_mag_info &mag : ctl->mag_info) {
            mag = {};
            for (u32 &m : mag.member) {
                m = CSL_PORT_NONE;
            }
        }
    }
    const i32 rc = _csl_atolreef_inner_port_names_store(chip_id);
    if (rc != 0) {
        return rc;
    }
    const i32 map_mode = csl_port_property_get(chip_id, -1, "map_mode", CSL_PORT_MAP_NONE);
    if (map_mode >= 0 && static_cast<u32>(map_mode) < CSL_PORT_MAP_MODES) {
        return csl_atolreef_port_map_load(chip_id, static_cast<u32>(map_mode));
    }
    return 0;
}

i32 csl_atolreef_control_db_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    u32 bit = 0;
    _csl_atolreef_inner_port_keys([chip_id, &bit](const char *key, const char *value) {
        if ((g_inner_port_keys_added[chip_id] >> bit++) & 1u) {
            shr_property_delete(chip_id, key, value);
        }
        return 0;
    });
    g_inner_port_keys_added[chip_id] = 0;
    return 0;
}

i32 csl_atolreef_port_mag_get(u32 chip_id, u32 lport, u32 *mag_id, u32 *mac)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || mag_id == nullptr || mac == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    if (lport >= CSL_PORT_MAX_MAC || ctl->mac_info[lport].use == CSL_PORT_ABSENT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u has no mag in map_mode%u\n", chip_id, lport,
                    ctl->map_mode);
        return SHR_E_NOT_SUPPORT;
    }
    *mag_id = ctl->mac_info[lport].mag_id;
    *mac = ctl->mac_info[lport].mac;
    return 0;
}

i32 csl_atolreef_port_pcs_channel_get(u32 chip_id, u32 lport, u32 *channel)
{
    u32 mag = 0, mac = 0;
    const i32 rc = csl_atolreef_port_mag_get(chip_id, lport, &mag, &mac);
    if (rc == 0) {
        *channel = csl_atolreef_pcs_channel(mag, mac);
    }
    return rc;
}

i32 csl_atolreef_port_link_bit_get(u32 chip_id, u32 lport, u32 *reg_index, u32 *bit)
{
    u32 mag = 0, mac = 0;
    const i32 rc = csl_atolreef_port_mag_get(chip_id, lport, &mag, &mac);
    if (rc == 0) {
        *reg_index = mag / 4;
        *bit = g_port_link_bitmap[mag][mac];
    }
    return rc;
}

// ---- operations that read the model --------------------------------------------------

static i32 _csl_atolreef_mapping_mode_get(u32 chip_id, u32 lport, u32 *map_type)
{
    (void)lport;
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *map_type = ctl->map_mode;
    return 0;
}

static i32 _csl_atolreef_port_interface_type_get(u32 chip_id, u32 lport, port_interface *info)
{
    u32 mag = 0, mac = 0;
    const i32 rc = csl_atolreef_port_mag_get(chip_id, lport, &mag, &mac);
    if (rc == 0) {
        const csl_port_control *ctl = csl_port_control_get(chip_id);
        info->interface_type = ctl->mag_info[mag].interface_type;
        info->port_num = ctl->mag_info[mag].port_num;
    }
    return rc;
}

static i32 _csl_atolreef_port_config_get(u32 chip_id, u32 lport, port_config *config)
{
    (void)lport;
    csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        return SHR_E_NULL_PTR;
    }
    MutexGuard hold(ctl->lock);
    *config = ctl->port_config;
    return 0;
}

static i32 _csl_atolreef_serdes_id_get(u32 chip_id, u32 lport, port_serdes_id *serdes)
{
    u32 mag = 0, mac = 0;
    const i32 rc = csl_atolreef_port_mag_get(chip_id, lport, &mag, &mac);
    if (rc == 0) {
        serdes->count = 1;
        serdes->serdes_id = static_cast<u8>(mag);
    }
    return rc;
}

static constexpr csl_port_driver_t _csl_atolreef_port_driver_make()
{
    csl_port_driver_t t{};
    t.name = "g_csl_port_atolreef";
    t.mapping_mode_get = _csl_atolreef_mapping_mode_get;
    t.port_interface_type_get = _csl_atolreef_port_interface_type_get;
    t.port_config_get = _csl_atolreef_port_config_get;
    t.serdes_id_get = _csl_atolreef_serdes_id_get;
    return t;
}

extern const csl_port_driver_t g_csl_port_atolreef = _csl_atolreef_port_driver_make();

const csl_port_driver_t *csl_atolreef_port_driver_get(void)
{
    return &g_csl_port_atolreef;
}

} // extern "C"
