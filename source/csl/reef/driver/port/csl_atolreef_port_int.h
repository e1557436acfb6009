/*
 * What the files of the atolreef port driver share: its state per chip,
 * the coding of the interface types, the register field helpers and the
 * operations one file offers the others.
 */
#ifndef TIDE_CSL_ATOLREEF_PORT_INT_H
#define TIDE_CSL_ATOLREEF_PORT_INT_H

#include <initializer_list>

#include "atolreef_cib.h"
#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

/* ---- driver state, by chip ------------------------------------------------------ */

extern "C" {
extern u32 g_atolreef_port_init_flag[SHR_MAX_CHIPS];
extern u32 g_an_link_en[SHR_MAX_CHIPS][CSL_PORT_MAX_MAC];
extern u32 g_an_enable_status[SHR_MAX_CHIPS][CSL_PORT_MAX_MAC];
extern u32 g_port_mac_phy_mode[SHR_MAX_CHIPS];
extern u32 g_cnt_clr_mode[SHR_MAX_CHIPS];
/* 28 ports of 104 counters, "port_counter"; NULL without a store. */
extern u64 *g_atolreef_port_counter[SHR_MAX_CHIPS];
}

namespace tide::port::atolreef {

/* Codings of a MAG. */
enum coding : u32 { kCode8b10b = 0, kCode6466b = 1, kCode4b5b = 2 };

/* The coding of an interface type, -4 (logged) for a type without one. */
i32 mag_code_get(u32 chip_id, u32 type, u32 *code);

/* Where a port sits: its MAG, the MAG's type and port count, the MAC's
 * index and its PCS channel. */
struct port_where {
    u32 mag;
    u32 mac;
    u32 type;
    u32 port_num;
    u32 channel;
};
/* -4 (logged "chip_id%u lport%u is not a valid port\n") unless the port is
 * in use. */
i32 port_where_get(u32 chip_id, u32 lport, port_where *w);
/* The same without the in-use test: any port with a MAG. */
i32 port_where_any(u32 chip_id, u32 lport, port_where *w);

/* ---- registers by field ------------------------------------------------------------- */

struct fv {
    u32 field;
    u32 value;
};
/* One read of the register instance, the fields changed, one write. */
i32 reg_update(u32 chip_id, u32 reg_id, u32 index, std::initializer_list<fv> fields);
/* One write with the fields given and every other bit 0. */
i32 reg_write(u32 chip_id, u32 reg_id, u32 index, std::initializer_list<fv> fields);
i32 reg_field_get(u32 chip_id, u32 reg_id, u32 index, u32 field, u32 *value);
/* A field's bit `bit` set or cleared, read-modify-write. */
i32 reg_field_bit_set(u32 chip_id, u32 reg_id, u32 index, u32 field, u32 bit, u32 on);
/* `width` bits at `pos` of a field, read-modify-write. */
i32 reg_field_bits_set(u32 chip_id, u32 reg_id, u32 index, u32 field, u32 pos, u32 width, u32 value);

constexpr u32 bits_put(u32 word, u32 pos, u32 width, u32 value)
{
    const u32 mask = (width >= 32 ? ~0u : ((1u << width) - 1u)) << pos;
    return (word & ~mask) | ((value << pos) & mask);
}

/* The register instance of a coding's PCS block for a MAG. */
constexpr u32 pcs_index(u32 code, u32 mag)
{
    return code == kCode6466b ? mag - 2 : mag;
}

/* Runs `fn(lport, mac)` for each used MAC of a MAG; stops at a failure. */
template <typename Fn>
i32 for_used_macs(u32 chip_id, u32 mag, Fn fn)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        return SHR_E_NULL_PTR;
    }
    for (u32 i = 0; i < ctl->mag_info[mag].max_port && i < CSL_PORT_MAC_PER_MAG; i++) {
        const u32 lport = ctl->mag_info[mag].member[i];
        if (lport < CSL_PORT_MAX_MAC && ctl->mac_info[lport].use == CSL_PORT_USED) {
            const i32 rc = fn(lport, i);
            if (rc != 0) {
                return rc;
            }
        }
    }
    return 0;
}

} // namespace tide::port::atolreef

/* ---- operations shared between the driver's files ------------------------------------ */

extern "C" {
/* Bring-up and interfaces (csl_drv_atolreef_port_init.cc). */
i32 _csl_atolreef_port_hw_phase1_init(u32 chip_id);
i32 _csl_atolreef_port_hw_phase2_init(u32 chip_id);
i32 _csl_atolreef_mapping_mode_set(u32 chip_id, u32 lport, u32 map_type);
i32 _csl_atolreef_port_interface_type_set(u32 chip_id, u32 lport, port_interface *info);
i32 _csl_atolreef_mac_phy_mode_set(u32 chip_id, u32 lport, u32 mode);
i32 _csl_atolreef_mac_phy_mode_get(u32 chip_id, u32 lport, u32 *mode);
i32 _csl_atolreef_port_gating_cfg(u32 chip_id, u32 mag_id, u32 level, u32 mode);
i32 _csl_atolreef_mac_enable_init(u32 chip_id, u32 mag_id, u32 enable);
i32 _csl_atolreef_port_ability_init(u32 chip_id, u32 lport);

/* MAC and PCS of a port (csl_drv_atolreef_port_mac.cc). */
i32 _csl_atolreef_port_tx_rx_enable_set(u32 chip_id, u32 lport, u32 enable_type, u32 value);
i32 _csl_atolreef_port_tx_rx_enable_get(u32 chip_id, u32 lport, u32 enable_type, u32 *value);
i32 _csl_atolreef_port_enable_set(u32 chip_id, u32 lport, u32 value);
i32 _csl_atolreef_port_enable_get(u32 chip_id, u32 lport, u32 *value);
i32 _csl_atolreef_mac_link_mode_set(u32 chip_id, u32 lport, u32 link_mode, u32 link_status);
i32 _csl_atolreef_port_force_link_get(u32 chip_id, u32 lport, u32 *link_mode, u32 *link_status);
i32 _csl_atolreef_pcs_an_enable_set(u32 chip_id, u32 lport, u32 enable);
i32 _csl_atolreef_pcs_an_enable_get(u32 chip_id, u32 lport, u32 *enable);
i32 csl_atolreef_pcs_an_enable_set(u32 chip_id, u32 lport, u32 enable);
i32 _csl_atolreef_autoneg_restart_set(u32 chip_id, u32 lport);
i32 _csl_atolreef_advert_ability_set(u32 chip_id, u32 lport, port_ability *ability);
i32 _csl_atolreef_advert_ability_get(u32 chip_id, u32 lport, port_ability *ability);
i32 _csl_atolreef_local_ability_get(u32 chip_id, u32 lport, port_ability *ability);
i32 _csl_atolreef_port_speed_set(u32 chip_id, u32 lport, u32 speed);
i32 _csl_atolreef_port_speed_get(u32 chip_id, u32 lport, u32 *speed);
i32 _csl_atolreef_port_duplex_set(u32 chip_id, u32 lport, u32 duplex);
i32 _csl_atolreef_port_duplex_get(u32 chip_id, u32 lport, u32 *duplex);
i32 _csl_atolreef_vlan_pause_set(u32 chip_id, u32 lport, u32 type, u32 value);
i32 _csl_atolreef_vlan_pause_get(u32 chip_id, u32 lport, u32 type, u32 *value);
i32 _csl_atolreef_mac_pause_set(u32 chip_id, u32 lport, u32 pause_type, u32 value);
i32 _csl_atolreef_mac_pause_get(u32 chip_id, u32 lport, u32 pause_type, u32 *value);
i32 _csl_atolreef_mac_pause_smac_set(u32 chip_id, u32 lport, u8 *smac);
i32 _csl_atolreef_mac_pause_smac_get(u32 chip_id, u32 lport, u8 *smac);
i32 _csl_atolreef_max_frame_set(u32 chip_id, u32 lport, u32 frame_type, u32 length);
i32 _csl_atolreef_max_frame_get(u32 chip_id, u32 lport, u32 frame_type, u32 *length);
i32 _csl_atolreef_min_frame_set(u32 chip_id, u32 lport, u32 frame_type, u32 length);
i32 _csl_atolreef_min_frame_get(u32 chip_id, u32 lport, u32 frame_type, u32 *length);
i32 _csl_atolreef_mac_link_status_get(u32 chip_id, u32 lport, u32 *status);
i32 _csl_atolreef_ifg_set(u32 chip_id, u32 lport, u8 ifg);
i32 _csl_atolreef_ifg_get(u32 chip_id, u32 lport, u8 *ifg);
i32 _csl_atolreef_mac_fault_status_get(u32 chip_id, u32 lport, u32 *fault);
i32 _csl_atolreef_mac_fault_resp_set(u32 chip_id, u32 lport, u32 fault_type, u32 value);
i32 _csl_atolreef_mac_fault_insert_set(u32 chip_id, u32 lport, u32 fault_type, u32 value);
i32 _csl_atolreef_port_loopback_set(u32 chip_id, u32 lport, port_loopback *loopback);
i32 _csl_atolreef_port_loopback_get(u32 chip_id, u32 lport, port_loopback *loopback);
i32 _csl_atolreef_port_force_link_set(u32 chip_id, u32 lport, u32 link_mode, u32 link_status);
i32 _csl_atolreef_port_crc_set(u32 chip_id, u32 lport, u32 crc_type, u32 value);
i32 _csl_atolreef_port_crc_get(u32 chip_id, u32 lport, u32 crc_type, u32 *value);
i32 _csl_atolreef_dic_mode_set(u32 chip_id, u32 lport, u32 mode);
i32 _csl_atolreef_dic_mode_get(u32 chip_id, u32 lport, u32 *mode);
i32 _csl_atolreef_port_transmit_path_set(u32 chip_id, u32 mode, u32 select, u32 path);
i32 _csl_atolreef_port_transmit_path_get(u32 chip_id, u32 *mode, u32 *select, u32 *path);
i32 _csl_atolreef_cfg_control_set(u32 chip_id, u32 lport, u32 flag, void *value);
i32 _csl_atolreef_cfg_control_get(u32 chip_id, u32 lport, u32 flag, void *value);
/* Diagnostics (csl_drv_atolreef_port_diag.cc). */
i32 _csl_atolreef_clk_delta_result_get(u32 chip_id, u32 lport, port_clk_delta *delta);
i32 _csl_atolreef_basic_info_get(u32 chip_id, u32 lport, port_info_buff *info);
i32 _csl_atolreef_alm_info_get(u32 chip_id, u32 lport, u32 clear, port_info_buff *info);
i32 _csl_atolreef_port_reset_set(u32 chip_id, u32 lport, u32 reset_flag);
i32 _csl_atolreef_mac_phy_mode_init(u32 chip_id, u32 mag_id, u32 type);
i32 _csl_atolreef_mac_half_seed_init(u32 chip_id, u32 lport);
i32 _csl_atolreef_mac_xmit_en_set(u32 chip_id, u32 lport, u32 flag);

/* Counters (csl_drv_atolreef_port_mib.cc). */
i32 _csl_atolreef_port_counter_db_malloc(u32 chip_id);
i32 _csl_atolreef_port_counter_db_free(u32 chip_id);
i32 _csl_atolreef_port_counter_db_update(u32 chip_id);
i32 _csl_atolreef_counter_get(u32 chip_id, u32 lport, u32 mib_item, u64 *value);
i32 _csl_atolreef_port_counter_clean(u32 chip_id, u32 lport);
}

#endif /* TIDE_CSL_ATOLREEF_PORT_INT_H */
