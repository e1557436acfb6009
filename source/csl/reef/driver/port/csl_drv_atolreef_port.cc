// The port model of atolreef, the driver's register helpers and its
// operation table.  The operations that only read the model live here;
// bring-up and interfaces in csl_drv_atolreef_port_init.cc, the MAC and
// PCS of a port in csl_drv_atolreef_port_mac.cc, the counters in
// csl_drv_atolreef_port_mib.cc.
#include <cstdio>
#include <cstring>

#include <tide/property.h>

#include "csl/reef/driver/port/csl_atolreef_port_int.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"

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

// ---- register helpers -----------------------------------------------------------------

namespace tide::port::atolreef {

namespace {

i32 _reg_read(u32 chip_id, u32 reg_id, u32 index, u8 data[4])
{
    memset(data, 0, 4);
    return csl_reef_reg_get(chip_id, CIB_ID(reg_id, index), data, 4);
}

i32 _reg_put(u32 chip_id, u32 reg_id, u32 index, u8 data[4], std::initializer_list<fv> fields)
{
    for (const fv &f : fields) {
        const i32 rc = csl_reg_field32_set_to_data(chip_id, data, reg_id, f.value, f.field);
        if (rc != 0) {
            return rc;
        }
    }
    return csl_reef_reg_set(chip_id, CIB_ID(reg_id, index), data, 4);
}

} // namespace

i32 reg_update(u32 chip_id, u32 reg_id, u32 index, std::initializer_list<fv> fields)
{
    u8 data[4];
    const i32 rc = _reg_read(chip_id, reg_id, index, data);
    return rc != 0 ? rc : _reg_put(chip_id, reg_id, index, data, fields);
}

i32 reg_write(u32 chip_id, u32 reg_id, u32 index, std::initializer_list<fv> fields)
{
    u8 data[4] = {};
    return _reg_put(chip_id, reg_id, index, data, fields);
}

i32 reg_field_get(u32 chip_id, u32 reg_id, u32 index, u32 field, u32 *value)
{
    u8 data[4];
    *value = 0;
    const i32 rc = _reg_read(chip_id, reg_id, index, data);
    return rc != 0 ? rc : csl_reg_field32_get_from_data(chip_id, data, reg_id, value, field);
}

i32 reg_field_bits_set(u32 chip_id, u32 reg_id, u32 index, u32 field, u32 pos, u32 width, u32 value)
{
    u8 data[4];
    u32 word = 0;
    i32 rc = _reg_read(chip_id, reg_id, index, data);
    if (rc == 0) {
        rc = csl_reg_field32_get_from_data(chip_id, data, reg_id, &word, field);
    }
    return rc != 0 ? rc : _reg_put(chip_id, reg_id, index, data, {{field, bits_put(word, pos, width, value)}});
}

i32 reg_field_bit_set(u32 chip_id, u32 reg_id, u32 index, u32 field, u32 bit, u32 on)
{
    return reg_field_bits_set(chip_id, reg_id, index, field, bit, 1, on ? 1 : 0);
}

i32 mag_code_get(u32 chip_id, u32 type, u32 *code)
{
    switch (type) {
    case 1: case 2: case 3: case 4: case 5: case 6: case 7: case 8: *code = kCode8b10b; return 0;
    case 10: case 12: case 13: case 18: case 19: case 20: *code = kCode6466b; return 0;
    case 17: *code = kCode4b5b; return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\rchip_id%u  interface type %u error!\n", chip_id, type);
        return SHR_E_PARAM;
    }
}

i32 port_where_any(u32 chip_id, u32 lport, port_where *w)
{
    u32 mag = 0, mac = 0;
    const i32 rc = csl_atolreef_port_mag_get(chip_id, lport, &mag, &mac);
    if (rc != 0) {
        return rc;
    }
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    *w = {mag, mac, ctl->mag_info[mag].interface_type, ctl->mag_info[mag].port_num, csl_atolreef_pcs_channel(mag, mac)};
    return 0;
}

i32 port_where_get(u32 chip_id, u32 lport, port_where *w)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || lport >= CSL_PORT_MAX_MAC || ctl->mac_info[lport].use != CSL_PORT_USED) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u is not a valid port\n", chip_id, lport);
        return SHR_E_PARAM;
    }
    return port_where_any(chip_id, lport, w);
}

} // namespace tide::port::atolreef

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

i32 csl_atolreef_port_map_clear(u32 chip_id)
{
    csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        return SHR_E_NULL_PTR;
    }
    MutexGuard hold(ctl->lock);
    ctl->map_mode = CSL_PORT_MAP_NONE;
    ctl->port_config.pbmp[PORT_CONFIG_ACTIVE] = port_bitmap{};
    for (csl_port_mac_info &mac : ctl->mac_info) {
        mac = {CSL_PORT_ABSENT, 0, CSL_PORT_NONE, CSL_PORT_NONE};
    }
    for (csl_port_mag_info &mag : ctl->mag_info) {
        mag = {};
        for (u32 &m : mag.member) {
            m = CSL_PORT_NONE;
        }
    }
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
    }
    csl_atolreef_port_map_clear(chip_id);
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
    t.port_counter_db_malloc = _csl_atolreef_port_counter_db_malloc;
    t.port_counter_db_free = _csl_atolreef_port_counter_db_free;
    t.port_counter_db_update = _csl_atolreef_port_counter_db_update;
    t.port_hw_phase1_init = _csl_atolreef_port_hw_phase1_init;
    t.port_hw_phase2_init = _csl_atolreef_port_hw_phase2_init;
    t.mapping_mode_set = _csl_atolreef_mapping_mode_set;
    t.mapping_mode_get = _csl_atolreef_mapping_mode_get;
    t.port_interface_type_set = _csl_atolreef_port_interface_type_set;
    t.port_interface_type_get = _csl_atolreef_port_interface_type_get;
    t.port_config_get = _csl_atolreef_port_config_get;
    t.port_tx_rx_enable_set = _csl_atolreef_port_tx_rx_enable_set;
    t.port_tx_rx_enable_get = _csl_atolreef_port_tx_rx_enable_get;
    t.port_enable_set = _csl_atolreef_port_enable_set;
    t.port_enable_get = _csl_atolreef_port_enable_get;
    t.pcs_an_enable_set = _csl_atolreef_pcs_an_enable_set;
    t.pcs_an_enable_get = _csl_atolreef_pcs_an_enable_get;
    t.autoneg_restart_set = _csl_atolreef_autoneg_restart_set;
    t.advert_ability_set = _csl_atolreef_advert_ability_set;
    t.advert_ability_get = _csl_atolreef_advert_ability_get;
    t.local_ability_get = _csl_atolreef_local_ability_get;
    // The partner's abilities are not kept: the remote ability slot stays empty.
    t.port_speed_set = _csl_atolreef_port_speed_set;
    t.port_speed_get = _csl_atolreef_port_speed_get;
    t.port_duplex_set = _csl_atolreef_port_duplex_set;
    t.port_duplex_get = _csl_atolreef_port_duplex_get;
    t.vlan_pause_set = _csl_atolreef_vlan_pause_set;
    t.vlan_pause_get = _csl_atolreef_vlan_pause_get;
    t.mac_pause_set = _csl_atolreef_mac_pause_set;
    t.mac_pause_get = _csl_atolreef_mac_pause_get;
    t.mac_pause_smac_set = _csl_atolreef_mac_pause_smac_set;
    t.mac_pause_smac_get = _csl_atolreef_mac_pause_smac_get;
    t.max_frame_set = _csl_atolreef_max_frame_set;
    t.max_frame_get = _csl_atolreef_max_frame_get;
    t.min_frame_set = _csl_atolreef_min_frame_set;
    t.min_frame_get = _csl_atolreef_min_frame_get;
    t.mac_link_status_get = _csl_atolreef_mac_link_status_get;
    t.link_status_get = _csl_atolreef_mac_link_status_get;
    t.ifg_set = _csl_atolreef_ifg_set;
    t.ifg_get = _csl_atolreef_ifg_get;
    t.mac_fault_status_get = _csl_atolreef_mac_fault_status_get;
    t.counter_get = _csl_atolreef_counter_get;
    t.port_counter_clean = _csl_atolreef_port_counter_clean;
    t.port_loopback_set = _csl_atolreef_port_loopback_set;
    t.port_loopback_get = _csl_atolreef_port_loopback_get;
    t.port_force_link_set = _csl_atolreef_port_force_link_set;
    t.port_force_link_get = _csl_atolreef_port_force_link_get;
    t.port_crc_set = _csl_atolreef_port_crc_set;
    t.port_crc_get = _csl_atolreef_port_crc_get;
    t.dic_mode_set = _csl_atolreef_dic_mode_set;
    t.dic_mode_get = _csl_atolreef_dic_mode_get;
    t.clk_delta_result_get = _csl_atolreef_clk_delta_result_get;
    t.mac_phy_mode_set = _csl_atolreef_mac_phy_mode_set;
    t.mac_phy_mode_get = _csl_atolreef_mac_phy_mode_get;
    t.serdes_id_get = _csl_atolreef_serdes_id_get;
    t.port_transmit_path_set = _csl_atolreef_port_transmit_path_set;
    t.port_transmit_path_get = _csl_atolreef_port_transmit_path_get;
    t.cfg_control_set = _csl_atolreef_cfg_control_set;
    t.cfg_control_get = _csl_atolreef_cfg_control_get;
    t.basic_info_get = _csl_atolreef_basic_info_get;
    t.alm_info_get = _csl_atolreef_alm_info_get;
    t.port_reset_set = _csl_atolreef_port_reset_set;
    return t;
}

extern const csl_port_driver_t g_csl_port_atolreef = _csl_atolreef_port_driver_make();

const csl_port_driver_t *csl_atolreef_port_driver_get(void)
{
    return &g_csl_port_atolreef;
}

} // extern "C"
