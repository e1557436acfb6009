// How the ports of atolreef come up: the 400 MHz clock, the mapping mode
// of MACs onto MAGs, the interface sequence of a MAG, the clock gates and
// block resets, and the two phases of hardware init.
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/driver/port/csl_atolreef_port_int.h"

using namespace tide::port::atolreef;

extern "C" {
u32 g_atolreef_port_init_flag[SHR_MAX_CHIPS];
u32 g_an_link_en[SHR_MAX_CHIPS][CSL_PORT_MAX_MAC];
u32 g_an_enable_status[SHR_MAX_CHIPS][CSL_PORT_MAX_MAC];
u32 g_port_mac_phy_mode[SHR_MAX_CHIPS];
u32 g_cnt_clr_mode[SHR_MAX_CHIPS];
}

namespace {

// ---- data of the chip -----------------------------------------------------------------

// Rates by interface type, in Hz: rx SerDes, tx SerDes, rx core, tx core.
constexpr u64 kCore = 400000000ull;
constexpr u64 g_serdes_interface_type_frequence[PORT_INTERFACE_COUNT][4] = {
    {0, 0, 0, 0},
    {1250000000ull, 1250000000ull, kCore, kCore},   {1250000000ull, 1250000000ull, kCore, kCore},
    {3125000000ull, 3125000000ull, kCore, kCore},   {5000000000ull, 5000000000ull, kCore, kCore},
    {10000000000ull, 10000000000ull, kCore, kCore}, {5000000000ull, 5000000000ull, kCore, kCore},
    {10000000000ull, 10000000000ull, kCore, kCore}, {3125000000ull, 3125000000ull, kCore, kCore},
    {0, 0, 0, 0},
    {10312500000ull, 10312500000ull, kCore, kCore}, {0, 0, 0, 0},
    {10312500000ull, 10312500000ull, kCore, kCore}, {10312500000ull, 10312500000ull, kCore, kCore},
    {10312500000ull, 10312500000ull, kCore, kCore}, {0, 0, 0, 0},
    {0, 0, 0, 0},
    {125000000ull, 125000000ull, kCore, kCore},
    {10312500000ull, 10312500000ull, kCore, kCore}, {10312500000ull, 10312500000ull, kCore, kCore},
    {10312500000ull, 10312500000ull, kCore, kCore},
};

// PCS clock (multiplier, divider) of each MAG, mapping modes 0 and 1.
struct clk_div {
    u8 mul;
    u8 div;
};
constexpr clk_div g_glue_0_pcs_clk_div[CSL_PORT_MAX_MAG] = {{2, 1}, {2, 1}, {1, 1}, {1, 1},
                                                            {5, 4}, {5, 4}, {5, 1}, {5, 1}};
constexpr clk_div g_glue_1_pcs_clk_div[CSL_PORT_MAX_MAG] = {{2, 1}, {2, 1}, {2, 1}, {2, 1},
                                                            {1, 1}, {1, 1}, {2, 1}, {2, 1}};

constexpr u32 bit(u32 n)
{
    return 1u << n;
}

// Types a MAG accepts, by mapping mode and MAG, as bits of the type.
constexpr u32 kTypes0101 = bit(1) | bit(2) | bit(3) | bit(4) | bit(6) | bit(8) | bit(17);
constexpr u32 kTypesWide = bit(1) | bit(2) | bit(3) | bit(4) | bit(5) | bit(6) | bit(7) | bit(8) | bit(10) |
                           bit(12) | bit(13) | bit(17) | bit(18) | bit(19) | bit(20);
constexpr u32 kTypes10G = bit(1) | bit(2) | bit(3) | bit(8) | bit(10) | bit(17);
constexpr u32 kTypesSingle = bit(1) | bit(2) | bit(3) | bit(8) | bit(17);
constexpr u32 g_mag_types[CSL_PORT_MAP_MODES][CSL_PORT_MAX_MAG] = {
    {kTypes0101, kTypes0101, kTypesWide, kTypesWide, kTypes10G, kTypes10G, kTypesSingle, kTypesSingle},
    {kTypes0101, kTypes0101, kTypes0101, kTypes0101, kTypes10G, kTypes10G, kTypes0101, kTypes0101},
};

// `port_num` each type allows, as bits of the count.
constexpr u32 port_num_allowed(u32 type)
{
    switch (type) {
    case 4: case 6: return bit(4);
    case 5: case 7: return bit(8);
    case 12: case 13: return bit(1) | bit(2) | bit(4);
    case 19: return bit(2);
    case 20: return bit(4);
    case 1: case 2: case 3: case 8: case 10: case 17: case 18: return bit(1);
    default: return 0;
    }
}

// The initial `port_num` of a MAG's type.
constexpr u32 port_num_default(u32 type)
{
    switch (type) {
    case 5: case 7: return 8;
    case 4: case 6: case 20: return 4;
    case 19: return 2;
    default: return 1;
    }
}

// pcs_glb_protocol_type by type: protocol_type, an_feature, amoh_ipg_del_en;
// ch_num 0xFF means by port_num (0, 1, 2 for 1, 2, 4).
struct protocol_row {
    u8 type;
    u8 protocol;
    u8 an_feature;
    u8 amoh;
    u8 ch_num;
};
constexpr u8 kChByNum = 0xFF;
constexpr protocol_row kProtocol[] = {
    {1, 0, 1, 0, 0},   {8, 0, 1, 0, 0},   {2, 1, 1, 0, 0},         {3, 1, 1, 0, 0},         {4, 2, 1, 0, 2},
    {5, 1, 1, 0, 3},   {6, 1, 1, 0, 2},   {7, 2, 1, 0, 3},         {10, 8, 0, 0, 0},        {12, 9, 1, 1, kChByNum},
    {13, 10, 1, 1, kChByNum}, {18, 10, 1, 1, kChByNum}, {19, 10, 1, 1, kChByNum}, {20, 10, 1, 1, kChByNum},
    {17, 7, 0, 0, 0},
};

// Auto-negotiation words by type: tx_cfg_dat, cfg_an_sel, an_link_time.
struct an_row {
    u16 tx_cfg_dat;
    u16 cfg_an_sel;
    u32 link_time;
};
bool _csl_atolreef_an_row(u32 type, an_row *row)
{
    switch (type) {
    case 1: case 8: *row = {0x01A0, 0x0180, 4000000}; return true;
    case 2: case 3: case 5: case 6: case 12: *row = {0x0001, 0, 2560000}; return true;
    case 4: case 7: case 13: case 18: case 19: case 20: *row = {0x0401, 0, 2560000}; return true;
    default: return false;
    }
}

bool _in_phase1(u32 chip_id)
{
    return g_atolreef_port_init_flag[chip_id] == 1;
}

csl_port_control *_ctl(u32 chip_id)
{
    return csl_port_control_get(chip_id);
}

// ---- clock -------------------------------------------------------------------------------

constexpr u32 kClkCtrl = 0x47030;
constexpr u32 kClkStatus = 0x47044;
constexpr u32 kClkPulse = bit(20);
constexpr u32 kClkLock = bit(21);
constexpr u32 kClkRounds = 5;

i32 _csl_atolreef_input_clk_init(u32 chip_id)
{
    u32 v = 0;
    i32 rc = csl_reg_general_read32(chip_id, 3, kClkCtrl, &v);
    v = (v & ~(0x1FFu | kClkPulse)) | 80u;
    for (u32 word : {v, v | kClkPulse, v}) {
        if (rc == 0) {
            rc = csl_reg_general_write32(chip_id, 3, kClkCtrl, word);
        }
    }
    if (rc != 0) {
        return rc;
    }
    for (u32 round = 0; round < kClkRounds; round++) {
        xsal_usleep(1000);
        u32 status = 0;
        rc = csl_reg_general_read32(chip_id, 3, kClkStatus, &status);
        if (rc == 0 && (status & kClkLock) != 0) {
            return 0;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u 400M clk init fail! \n", chip_id);
    return SHR_E_TIMEOUT;
}

// ---- block resets -------------------------------------------------------------------------

// The bit of each reset level: glue and MAC (level 0, 1, 2), PCS.
constexpr u32 kGlueMacBit[3] = {1, 2, 0};
constexpr u32 kPcsBit[3] = {1, 0, 2};

i32 _csl_atolreef_mag_glue_reset(u32 chip_id, u32 level, u32 mode)
{
    if (level > 2) {
        return 0;
    }
    return reg_write(chip_id, cib_mag_glue_rst_cfg, 0, {{cib_f_glue_rst, mode == 1 ? bit(kGlueMacBit[level]) : 0}});
}

u32 _mac_group(u32 chip_id, u32 mag_id)
{
    const u32 first = _ctl(chip_id)->mag_info[mag_id].member[0];
    return first < CSL_PORT_MAX_MAC ? g_mac_group_id_per_mac[first] : 0;
}

i32 _csl_atolreef_mac_glb_reset(u32 chip_id, u32 mag_id, u32 level, u32 mode)
{
    if (level > 2) {
        return 0;
    }
    if (mode == 0 && level != 1) {
        const i32 rc = for_used_macs(chip_id, mag_id,
                                     [chip_id](u32 lport, u32) { return _csl_atolreef_mac_half_seed_init(chip_id, lport); });
        if (rc != 0) {
            return rc;
        }
    }
    return reg_field_bit_set(chip_id, cib_mac_glb_rst_cfg, _mac_group(chip_id, mag_id), cib_f_mac_rst,
                             kGlueMacBit[level], mode);
}

i32 _csl_atolreef_pcs_glb_reset(u32 chip_id, u32 mag_id, u32 level, u32 mode)
{
    if (level > 2) {
        return 0;
    }
    return reg_field_bit_set(chip_id, cib_pcs_glb_pcs_rst, mag_id, cib_f_pcs_rst, kPcsBit[level], mode);
}

// ---- interface sequence ---------------------------------------------------------------------

i32 _csl_atolreef_mag_interface_type_valid_check(u32 chip_id, u32 mag_id, u32 type)
{
    const u32 map_mode = _ctl(chip_id)->map_mode;
    if (map_mode >= CSL_PORT_MAP_MODES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\rchip_id%u mapping mode not init!\n", chip_id);
        return SHR_E_PARAM;
    }
    if (mag_id >= CSL_PORT_MAX_MAG) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\rchip_id%u  mag_id%u out of range \n", chip_id, mag_id);
        return SHR_E_PARAM;
    }
    if (type >= 32 || (g_mag_types[map_mode][mag_id] & bit(type)) == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT,
                    "\n\rchip_id%u  mag_id%u under map_cfg%u not support this interface type\n", chip_id, mag_id,
                    map_mode);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

i32 _csl_atolreef_mag_port_num_valid_check(u32 chip_id, u32 mag_id, const port_interface *info)
{
    const u32 max_port = _ctl(chip_id)->mag_info[mag_id].max_port;
    if (info->port_num >= 32 || (port_num_allowed(info->interface_type) & bit(info->port_num)) == 0 ||
        info->port_num > max_port) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\rchip_id%u interface_type%u not support port_num%u\n", chip_id,
                    info->interface_type, info->port_num);
        return SHR_E_PARAM;
    }
    return 0;
}

// The band of the PCS's clock-valid rate, +/- one per mille around the
// ratio of the lane's word clock to the core clock.
u32 _clk_band_mid(u64 rate, u32 code, u32 mul, u32 div, u64 core)
{
    const u64 per_word = code == kCode8b10b ? 40 : code == kCode6466b ? 33 : 10;
    const u64 f = rate / per_word;
    const u64 divisor = static_cast<u64>(div) * core;
    return divisor == 0 ? 0 : static_cast<u32>(xsal_udiv64((mul * f) << 16, divisor));
}

i32 _csl_atolreef_mag_clk_init(u32 chip_id, u32 mag_id, u32 type)
{
    u32 code = 0;
    i32 rc = mag_code_get(chip_id, type, &code);
    if (rc != 0) {
        return rc;
    }
    const clk_div d = _ctl(chip_id)->map_mode == 1 ? g_glue_1_pcs_clk_div[mag_id] : g_glue_0_pcs_clk_div[mag_id];
    const u64 *row = g_serdes_interface_type_frequence[type];
    const u32 rx = _clk_band_mid(row[0], code, d.mul, d.div, row[2]);
    const u32 tx = _clk_band_mid(row[1], code, d.mul, d.div, row[3]);
    rc = reg_write(chip_id, cib_pcs_glb_rx_clk_vld_cfg, mag_id,
                   {{cib_f_rx_clk_add_max, (rx + rx / 1000) & 0xFFFF}, {cib_f_rx_clk_add_min, (rx - rx / 1000) & 0xFFFF}});
    if (rc == 0) {
        rc = reg_write(chip_id, cib_pcs_glb_tx_clk_vld_cfg, mag_id,
                       {{cib_f_tx_clk_add_max, (tx + tx / 1000) & 0xFFFF},
                        {cib_f_tx_clk_add_min, (tx - tx / 1000) & 0xFFFF}});
    }
    return rc;
}

i32 _csl_atolreef_mag_pcs_glb_init(u32 chip_id, u32 mag_id, const port_interface *info)
{
    const protocol_row *row = nullptr;
    for (const protocol_row &r : kProtocol) {
        if (r.type == info->interface_type) {
            row = &r;
        }
    }
    if (row == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\rchip_id%u  mag_id%u interface type %u error!\n", chip_id, mag_id,
                    info->interface_type);
        return SHR_E_PARAM;
    }
    const u32 ch_num = row->ch_num != kChByNum ? row->ch_num : info->port_num == 4 ? 2 : info->port_num == 2 ? 1 : 0;
    const u32 am = csl_port_property_get(chip_id, static_cast<i32>(mag_id), "mmac_1p_an_en", 0) == 1 ? 1 : 0;
    const i32 rc = reg_update(chip_id, cib_pcs_glb_protocol_type, mag_id,
                              {{cib_f_protocol_type, row->protocol}, {cib_f_an_feature, row->an_feature},
                               {cib_f_amoh_ipg_del_en, row->amoh}, {cib_f_ch_num, ch_num}, {cib_f_mmac_1p_am_en, am}});
    if (rc != 0) {
        return rc;
    }
    csl_port_control *ctl = _ctl(chip_id);
    tide::port::MutexGuard hold(ctl->lock);
    csl_port_mag_info &mag = ctl->mag_info[mag_id];
    port_bitmap &active = ctl->port_config.pbmp[PORT_CONFIG_ACTIVE];
    for (u32 i = 0; i < mag.max_port && i < CSL_PORT_MAC_PER_MAG; i++) {
        const u32 lport = mag.member[i];
        if (lport == CSL_PORT_NONE) {
            continue;
        }
        const bool used = i < info->port_num;
        ctl->mac_info[lport].use = used ? CSL_PORT_USED : CSL_PORT_UNUSED;
        used ? tide::port::pbmp_set(active, lport) : tide::port::pbmp_clear(active, lport);
    }
    mag.port_num = info->port_num;
    mag.interface_type = info->interface_type;
    return 0;
}

i32 _csl_atolreef_mag_pcs_cfg_init(u32 chip_id, u32 mag_id, u32 type)
{
    switch (type) {
    case 1: case 2: case 3: case 8: case 4: case 6: case 5: case 7: {
        const u32 disp = type <= 3 || type == 8 ? 1 : 0;
        const u32 bypass = type == 5 || type == 7 ? 0 : 1;
        return reg_update(chip_id, cib_pcs_8b10b_pcs_cfg, mag_id,
                          {{cib_f_alm_filter_mode, 1}, {cib_f_disp_en, disp}, {cib_f_dscr_bypass, bypass},
                           {cib_f_dscr_type, 0}, {cib_f_scr_bypass, bypass}, {cib_f_scr_type, 0}});
    }
    case 10: case 12: case 13: case 18: case 19: case 20: {
        const u32 opcode = type == 10 ? 0 : type == 12 ? 0xAA : 3;
        const u32 dup = type == 10 || type == 12 ? 0 : 3;
        return reg_update(chip_id, cib_pcs_6466b_pcs_cfg, mag_id - 2,
                          {{cib_f_alm_filter_mode, 1}, {cib_f_premble_dup, dup}, {cib_f_an_opcode, opcode},
                           {cib_f_dscr_bypass, 0}, {cib_f_dscr_type, 0}, {cib_f_scr_bypass, 0}, {cib_f_scr_type, 0}});
    }
    case 17: {
        const i32 rc = reg_update(chip_id, cib_pcs_4b5b_pcs_fe_ctrl, mag_id,
                                  {{cib_f_rxp2link_en, 1}, {cib_f_alm_filter_mode, 1}, {cib_f_invld_link_en, 1},
                                   {cib_f_linkdown2tx_en, 1}});
        return rc != 0 ? rc : reg_update(chip_id, cib_pcs_4b5b_link_down_err_thd, mag_id, {{cib_f_link_down_err_thd, 1000}});
    }
    default:
        return 0;
    }
}

i32 _csl_atolreef_pcs_an_cfg(u32 chip_id, u32 lport, u32 type)
{
    an_row row{};
    if (!_csl_atolreef_an_row(type, &row)) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "\n\rchip_id%u  lport%u interface type %u no need configue an!\n", chip_id,
                    lport, type);
        return 0;
    }
    u32 ch = 0;
    i32 rc = csl_atolreef_port_pcs_channel_get(chip_id, lport, &ch);
    if (rc == 0) {
        rc = reg_update(chip_id, cib_pcs_an_pcs_an_ctrl_0, ch,
                        {{cib_f_tx_cfg_dat, row.tx_cfg_dat}, {cib_f_cfg_an_sel, row.cfg_an_sel}});
    }
    if (rc == 0) {
        rc = reg_update(chip_id, cib_pcs_an_pcs_an_ctrl_1, ch, {{cib_f_an_link_time, row.link_time}});
    }
    return rc;
}

i32 _csl_atolreef_mag_link_filtration_init(u32 chip_id, u32 mag_id, u32 code)
{
    constexpr u32 kDebounce = 400000;
    static constexpr u32 regs[3][2] = {{cib_pcs_8b10b_link_filt_cfg, cib_pcs_8b10b_link_filt_clr},
                                       {cib_pcs_6466b_link_filt_cfg, cib_pcs_6466b_link_filt_clr},
                                       {cib_pcs_4b5b_link_filt_cfg, cib_pcs_4b5b_link_filt_clr}};
    const u32 idx = pcs_index(code, mag_id);
    const i32 rc = reg_update(chip_id, regs[code][0], idx, {{cib_f_link_down_set, kDebounce}});
    return rc != 0 ? rc : reg_update(chip_id, regs[code][1], idx, {{cib_f_link_down_clr, kDebounce}});
}

i32 _csl_atolreef_mag_interface_clk_check_init(u32 chip_id, u32 mag_id, u32 type)
{
    u32 div_sel = 0, factor = 1;
    switch (type) {
    case 5: case 7: case 10: case 12: case 13: case 18: case 19: case 20: div_sel = 1; factor = 10; break;
    case 1: case 2: case 3: case 4: case 6: case 8: case 17: break;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\rchip_id%u  mag_id%u interface type%u error!\n", chip_id, mag_id, type);
        return SHR_E_PARAM;
    }
    const u64 *row = g_serdes_interface_type_frequence[type == 17 ? 6 : type];
    const u64 rx_mhz = row[0] / 1000000, tx_mhz = row[1] / 1000000;
    const u32 rx_win = static_cast<u32>(xsal_udiv64(factor * 16000000000ull, rx_mhz));
    const u32 tx_win = static_cast<u32>(xsal_udiv64(factor * 16000000000ull, tx_mhz));
    i32 rc = reg_update(chip_id, cib_pcs_glb_clk_div_sel, mag_id,
                        {{cib_f_clk_sds_rx_err_down_en, 1}, {cib_f_clk_sds_tx_err_down_en, 1},
                         {cib_f_clk_sds_rx_div_sel, div_sel}, {cib_f_clk_sds_tx_div_sel, div_sel}});
    if (rc == 0) {
        rc = reg_write(chip_id, cib_pcs_glb_clk_sds_rx_cfg_win, mag_id, {{cib_f_clk_sds_rx_cfg_win, rx_win}});
    }
    if (rc == 0) {
        rc = reg_write(chip_id, cib_pcs_glb_clk_sds_tx_cfg_win, mag_id, {{cib_f_clk_sds_tx_cfg_win, tx_win}});
    }
    if (rc == 0) {
        rc = reg_write(chip_id, cib_pcs_glb_clk_chk_cfg0, mag_id, {{cib_f_clk_sds_rx_cfg_num, 1000000}});
    }
    if (rc == 0) {
        rc = reg_write(chip_id, cib_pcs_glb_clk_chk_cfg1, mag_id, {{cib_f_clk_sds_tx_cfg_num, 1000000}});
    }
    if (rc == 0) {
        rc = reg_write(chip_id, cib_pcs_glb_clk_chk_cfg2, mag_id,
                       {{cib_f_clk_sds_rx_cfg_delta, 200}, {cib_f_clk_sds_tx_cfg_delta, 200}});
    }
    return rc;
}

i32 _csl_atolreef_mag_pcs_block_and_slot_init(u32 chip_id, u32 mag_id, const port_interface *info)
{
    const u32 type = info->interface_type;
    if (type != 12 && type != 13 && (type < 18 || type > 20)) {
        return 0;
    }
    u32 slots[4] = {};
    switch (info->port_num) {
    case 1: break;
    case 2: slots[1] = 1; slots[3] = 1; break;
    case 4: slots[1] = 1; slots[2] = 2; slots[3] = 3; break;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\r port_num%u out of range !\n", info->port_num);
        return SHR_E_PARAM;
    }
    const bool flex = type == 12;
    const u32 blocks[4] = {flex ? 75u : 0x2168C1u, flex ? 5u : 0xE6C4F0u, flex ? 0u : 0x9B65C5u, flex ? 0u : 0x3D79A2u};
    const u32 idx = mag_id - 2;
    i32 rc = reg_update(chip_id, cib_pcs_6466b_block_ins_cycle, idx, {{cib_f_block_ins_cycle, flex ? 20001u : 16404u}});
    if (rc == 0) rc = reg_update(chip_id, cib_pcs_6466b_fault_ins_cfg0, idx, {{cib_f_ins_block0, blocks[0]}});
    if (rc == 0) rc = reg_update(chip_id, cib_pcs_6466b_fault_ins_cfg1, idx, {{cib_f_ins_block1, blocks[1]}});
    if (rc == 0) rc = reg_update(chip_id, cib_pcs_6466b_fault_ins_cfg2, idx, {{cib_f_ins_block2, blocks[2]}});
    for (u32 load : {0u, 1u, 0u}) {
        if (rc == 0) {
            rc = reg_update(chip_id, cib_pcs_6466b_fault_ins_cfg3, idx,
                            {{cib_f_ins_block3, blocks[3]}, {cib_f_ins_blk_load, load}});
        }
    }
    if (rc == 0) {
        rc = reg_update(chip_id, cib_pcs_6466b_ch_slot, idx,
                        {{cib_f_ch_slot0, slots[0]}, {cib_f_ch_slot1, slots[1]}, {cib_f_ch_slot2, slots[2]},
                         {cib_f_ch_slot3, slots[3]}});
    }
    return rc;
}

i32 _csl_atolreef_mac_nibble_init(u32 chip_id, u32 mag_id)
{
    return for_used_macs(chip_id, mag_id, [chip_id](u32 lport, u32) {
        return reg_update(chip_id, cib_mac_port_misc_cfg0, lport, {{cib_f_nibble_en, 0}});
    });
}

i32 _csl_atolreef_mac_ipg_init(u32 chip_id, u32 mag_id, u32 type)
{
    const u32 del_max = type == 13 || (type >= 18 && type <= 20) ? 3 : 1;
    return for_used_macs(chip_id, mag_id, [chip_id, del_max](u32 lport, u32) {
        i32 rc = reg_update(chip_id, cib_mac_port_misc_cfg0, lport, {{cib_f_ipg_adp_en, 1}});
        if (rc == 0) {
            rc = reg_update(chip_id, cib_mac_port_ipg_cfg, lport, {{cib_f_ipg_del_max, del_max}});
        }
        return rc != 0 ? rc : _csl_atolreef_ifg_set(chip_id, lport, 12);
    });
}

i32 _csl_atolreef_mac_tx_waterline_init(u32 chip_id, u32 mag_id, const port_interface *info)
{
    u32 level = 6;
    switch (info->interface_type) {
    case 10: case 18: level = 16; break;
    case 19: level = 10; break;
    case 12: case 13: level = info->port_num == 1 ? 16 : info->port_num == 2 ? 10 : 6; break;
    case 1: case 2: case 4: case 5: case 6: case 7: case 17: level = 3; break;
    default: break;
    }
    return for_used_macs(chip_id, mag_id, [chip_id, level](u32 lport, u32) {
        return reg_update(chip_id, cib_mag_map_tx_fifo_waterline, lport, {{cib_f_txmap_rd_waterline, level}});
    });
}

// The first settings of a port: defaults by type, or the properties.
struct port_defaults {
    u32 an_enable;
    u32 speed;
};
i32 _csl_atolreef_port_defaults(u32 chip_id, u32 type, u32 port_num, port_defaults *d)
{
    switch (type) {
    case 1: case 2: case 4: case 5: case 6: case 7: *d = {1, 1000}; return 0;
    case 3: case 8: *d = {1, 2500}; return 0;
    case 10: *d = {0, 10000}; return 0;
    case 12: case 13: *d = {1, port_num == 1 ? 10000u : port_num == 2 ? 5000u : 2500u}; return 0;
    case 17: *d = {0, 100}; return 0;
    case 18: *d = {1, 10000}; return 0;
    case 19: *d = {1, 5000}; return 0;
    case 20: *d = {1, 2500}; return 0;
    case 0:
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "chip_id%u mag not used\n", chip_id);
        return 1;
    default:
        return SHR_E_PARAM;
    }
}

i32 _csl_atolreef_mac_cfg_init(u32 chip_id, u32 mag_id)
{
    const csl_port_mag_info &mag = _ctl(chip_id)->mag_info[mag_id];
    port_defaults d{};
    const i32 rc = _csl_atolreef_port_defaults(chip_id, mag.interface_type, mag.port_num, &d);
    if (rc != 0) {
        return rc > 0 ? 0 : rc;
    }
    return for_used_macs(chip_id, mag_id, [chip_id, d](u32 lport, u32) {
        i32 r = _csl_atolreef_port_speed_set(chip_id, lport, d.speed);
        if (r == 0) r = _csl_atolreef_port_duplex_set(chip_id, lport, 1);
        if (r == 0) r = _csl_atolreef_pcs_an_enable_set(chip_id, lport, d.an_enable);
        return r;
    });
}

// Runs the steps in order, logging the first failure.
template <typename... Steps>
i32 _steps(u32 chip_id, Steps... steps)
{
    i32 rc = 0;
    ((rc = rc == 0 ? steps() : rc), ...);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

} // namespace

extern "C" {

i32 _csl_atolreef_port_gating_cfg(u32 chip_id, u32 mag_id, u32 level, u32 mode)
{
    struct part {
        u32 rst_bit;
        u32 gate_field;
        u32 gate_bit;
    };
    const part mac{19 + _mac_group(chip_id, mag_id), cib_f_clk_mag_mac_gating_en, _mac_group(chip_id, mag_id)};
    const part pcs{11 + mag_id, cib_f_clk_mag_pcs_gating_en, mag_id};
    auto apply = [chip_id, mode](const part &p) {
        auto rst = [&] { return reg_field_bit_set(chip_id, cib_lsw_hreg_soft_rst, 0, cib_f_soft_rst, p.rst_bit, mode); };
        auto gate = [&] {
            return reg_field_bit_set(chip_id, cib_lsw_hreg_clk_gating_en, 0, p.gate_field, p.gate_bit, mode == 1 ? 0 : 1);
        };
        // Out of reset before the clock runs; the clock stopped before the reset.
        i32 rc = mode == 1 ? rst() : gate();
        return rc != 0 ? rc : mode == 1 ? gate() : rst();
    };
    switch (level) {
    case 0: return apply(mac);
    case 1: return apply(pcs);
    case 3: {
        const i32 rc = apply(mac);
        return rc != 0 ? rc : apply(pcs);
    }
    default: return 0;
    }
}

i32 _csl_atolreef_mapping_mode_set(u32 chip_id, u32 lport, u32 map_type)
{
    (void)lport;
    if (map_type >= CSL_PORT_MAP_MODES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "map_type%u out of range (range : 0~1)\n", map_type);
        return SHR_E_PARAM;
    }
    i32 rc = csl_atolreef_port_map_load(chip_id, map_type);
    if (rc == 0) {
        rc = reg_write(chip_id, cib_mag_glue_mac3_cycle_cfg, 0, {{cib_f_mac3_pcs4_cycle, 4}, {cib_f_mac3_all_cycle, 5}});
    }
    if (rc == 0) {
        rc = reg_write(chip_id, cib_mag_glue_mac4_cycle_cfg, 0, {{cib_f_mac4_pcs5_cycle, 4}, {cib_f_mac4_all_cycle, 5}});
    }
    if (rc == 0) rc = _csl_atolreef_mag_glue_reset(chip_id, 2, 1);
    for (u32 mag = 0; mag < CSL_PORT_MAX_MAG && rc == 0; mag++) {
        rc = _csl_atolreef_port_gating_cfg(chip_id, mag, 3, 0);
        if (rc == 0) rc = _csl_atolreef_pcs_glb_reset(chip_id, mag, 2, 1);
        if (rc == 0) rc = _csl_atolreef_mac_glb_reset(chip_id, mag, 2, 1);
    }
    for (u32 p = 0; p < CSL_PORT_MAX_MAC && rc == 0; p++) {
        rc = reg_update(chip_id, cib_mac_port_enable_cfg, p, {{cib_f_tx_en, 0}, {cib_f_rx_en, 0}});
    }
    if (rc == 0) rc = reg_write(chip_id, cib_mag_glue_glue_mode_cfg, 0, {{cib_f_glue_mode_cfg, map_type}});
    if (rc == 0) rc = _csl_atolreef_mag_glue_reset(chip_id, 2, 0);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    const csl_port_control *ctl = _ctl(chip_id);
    for (u32 p = 0; p < CSL_PORT_MAX_MAC; p++) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "port%u use:%u serdes:%u mac:%u\n\n", p, ctl->mac_info[p].use,
                    ctl->mac_info[p].mag_id, ctl->mac_info[p].mac);
    }
    for (u32 mag = 0; mag < CSL_PORT_MAX_MAG && rc == 0; mag++) {
        rc = _csl_atolreef_port_gating_cfg(chip_id, mag, 3, 1);
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "serdes%u pro:%u inter:%u max port :%u port member: \n", mag,
                    ctl->mag_info[mag].protocol, ctl->mag_info[mag].interface_type, ctl->mag_info[mag].max_port);
    }
    if (rc == 0) {
        rc = reg_update(chip_id, cib_sch_sch_global_cfg, 0, {{cib_f_lane_scene, map_type}});
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "chip_id%u map_type%u set finish.\n", chip_id, map_type);
    return 0;
}

i32 _csl_atolreef_mac_enable_init(u32 chip_id, u32 mag_id, u32 enable)
{
    if (_ctl(chip_id)->mag_info[mag_id].interface_type == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "current serdes%u not init before, no need disable port.\n", mag_id);
        return 0;
    }
    return for_used_macs(chip_id, mag_id, [chip_id, enable](u32 lport, u32) {
        const i32 rc = reg_update(chip_id, cib_mac_port_enable_cfg, lport, {{cib_f_tx_en, enable}, {cib_f_rx_en, enable}});
        return rc != 0 || enable == 0 ? rc : _csl_atolreef_port_enable_set(chip_id, lport, 1);
    });
}

i32 csl_atolreef_port_interface_check(u32 chip_id, u32 lport, const port_interface *info)
{
    u32 mag = 0, mac = 0;
    i32 rc = csl_atolreef_port_mag_get(chip_id, lport, &mag, &mac);
    if (rc == 0) {
        rc = _csl_atolreef_mag_interface_type_valid_check(chip_id, mag, info->interface_type);
    }
    if (rc == 0) {
        rc = _csl_atolreef_mag_port_num_valid_check(chip_id, mag, info);
    }
    return rc;
}

i32 _csl_atolreef_port_interface_type_set(u32 chip_id, u32 lport, port_interface *info)
{
    i32 rc = csl_atolreef_port_interface_check(chip_id, lport, info);
    if (rc != 0) {
        return rc;
    }
    u32 mag = 0, mac = 0;
    csl_atolreef_port_mag_get(chip_id, lport, &mag, &mac);
    const u32 type = info->interface_type;
    u32 code = 0;
    rc = mag_code_get(chip_id, type, &code);
    if (rc != 0) {
        return rc;
    }
    const bool phase1 = _in_phase1(chip_id);
    return _steps(
        chip_id, [&] { return _csl_atolreef_port_gating_cfg(chip_id, mag, 3, 0); },
        [&] { return _csl_atolreef_pcs_glb_reset(chip_id, mag, 2, 1); },
        [&] { return _csl_atolreef_mag_clk_init(chip_id, mag, type); },
        [&] { return phase1 ? 0 : _csl_atolreef_mac_enable_init(chip_id, mag, 0); },
        [&] { return _csl_atolreef_mag_pcs_glb_init(chip_id, mag, info); },
        [&] { return _csl_atolreef_mag_pcs_cfg_init(chip_id, mag, type); },
        [&] {
            return for_used_macs(chip_id, mag, [&](u32 p, u32) { return _csl_atolreef_pcs_an_cfg(chip_id, p, type); });
        },
        [&] { return _csl_atolreef_mag_link_filtration_init(chip_id, mag, code); },
        [&] { return _csl_atolreef_mag_interface_clk_check_init(chip_id, mag, type); },
        // The MAG stopped at the start runs again (reset released, then its
        // clocks) before its PCS and MACs leave their block resets.
        [&] { return _csl_atolreef_port_gating_cfg(chip_id, mag, 3, 1); },
        [&] { return _csl_atolreef_pcs_glb_reset(chip_id, mag, 2, 0); },
        [&] { return _csl_atolreef_mac_glb_reset(chip_id, mag, 2, 0); },
        [&] { return _csl_atolreef_mag_pcs_block_and_slot_init(chip_id, mag, info); },
        [&] { return _csl_atolreef_mac_nibble_init(chip_id, mag); },
        [&] { return _csl_atolreef_mac_ipg_init(chip_id, mag, type); },
        [&] { return _csl_atolreef_mac_tx_waterline_init(chip_id, mag, info); },
        [&] { return phase1 ? 0 : _csl_atolreef_mac_cfg_init(chip_id, mag); },
        [&] { return phase1 ? 0 : _csl_atolreef_mac_enable_init(chip_id, mag, 1); },
        [&] { return phase1 ? 0 : _csl_atolreef_mac_phy_mode_init(chip_id, mag, type); });
}

i32 _csl_atolreef_port_ability_init(u32 chip_id, u32 lport)
{
    const csl_port_control *ctl = _ctl(chip_id);
    if (lport >= CSL_PORT_MAX_MAC || ctl->mac_info[lport].use != CSL_PORT_USED) {
        return 0;
    }
    const csl_port_mag_info &mag = ctl->mag_info[ctl->mac_info[lport].mag_id];
    port_defaults d{};
    const i32 rc = _csl_atolreef_port_defaults(chip_id, mag.interface_type, mag.port_num, &d);
    if (rc != 0) {
        return rc > 0 ? 0 : rc;
    }
    const i32 p = static_cast<i32>(lport);
    auto prop = [chip_id, p](const char *key, u32 dflt) {
        return static_cast<u32>(csl_port_property_get(chip_id, p, key, static_cast<i32>(dflt)));
    };
    return _steps(
        chip_id, [&] { return _csl_atolreef_pcs_an_enable_set(chip_id, lport, prop("port_init_an_enable", d.an_enable)); },
        [&] { return _csl_atolreef_port_speed_set(chip_id, lport, prop("port_init_speed", d.speed)); },
        [&] { return _csl_atolreef_port_duplex_set(chip_id, lport, prop("port_init_duplex", 1)); },
        [&] { return _csl_atolreef_min_frame_set(chip_id, lport, PORT_FRAME_TX, prop("port_tx_min_pkt_length", 64)); },
        [&] { return _csl_atolreef_max_frame_set(chip_id, lport, PORT_FRAME_TX, prop("port_tx_max_pkt_length", 9600)); },
        [&] { return _csl_atolreef_min_frame_set(chip_id, lport, PORT_FRAME_RX, prop("port_rx_min_pkt_length", 64)); },
        [&] { return _csl_atolreef_max_frame_set(chip_id, lport, PORT_FRAME_RX, prop("port_rx_max_pkt_length", 9600)); },
        [&] { return _csl_atolreef_mac_pause_set(chip_id, lport, PORT_PAUSE_TX_EN, 1); },
        [&] { return _csl_atolreef_mac_pause_set(chip_id, lport, PORT_PAUSE_RX_EN, 1); });
}

i32 _csl_atolreef_mac_phy_mode_set(u32 chip_id, u32 lport, u32 mode)
{
    (void)lport;
    g_port_mac_phy_mode[chip_id] = mode >= 2 ? 0 : mode;
    const i32 rc = reg_update(chip_id, cib_pa_fast_path_dbg, 0, {{cib_f_fast_path_dbg, g_port_mac_phy_mode[chip_id]}});
    return rc != 0 ? rc : _csl_atolreef_mapping_mode_set(chip_id, 0, 0);
}

i32 _csl_atolreef_mac_phy_mode_get(u32 chip_id, u32 lport, u32 *mode)
{
    (void)lport;
    *mode = g_port_mac_phy_mode[chip_id];
    return 0;
}

i32 _csl_atolreef_port_hw_phase1_init(u32 chip_id)
{
    if (_ctl(chip_id) == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    i32 rc = _csl_atolreef_input_clk_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    for (u32 p = 0; p < CSL_PORT_MAX_MAC; p++) {
        g_an_link_en[chip_id][p] = static_cast<u32>(csl_port_property_get(chip_id, static_cast<i32>(p), "an_link_status", 1));
    }
    g_atolreef_port_init_flag[chip_id] = 1;
    rc = _csl_atolreef_mac_phy_mode_set(chip_id, 0,
                                        static_cast<u32>(csl_port_property_get(chip_id, -1, "mac_phy_mode", 0)));
    for (u32 mag = 0; mag < CSL_PORT_MAX_MAG && rc == 0; mag++) {
        rc = _csl_atolreef_mac_enable_init(chip_id, mag, 0);
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    _ctl(chip_id)->map_mode = CSL_PORT_MAP_NONE;
    const i32 map_mode = csl_port_property_get(chip_id, -1, "map_mode", CSL_PORT_MAP_NONE);
    if (map_mode < 0 || map_mode >= static_cast<i32>(CSL_PORT_MAP_MODES)) {
        for (u32 mag = 0; mag < CSL_PORT_MAX_MAG; mag++) {
            _csl_atolreef_port_gating_cfg(chip_id, mag, 3, 1);
        }
        // The glue keeps mode 0's state, but without a mapping no MAC has
        // a MAG until one is set.
        csl_atolreef_port_map_clear(chip_id);
        SHR_LOG_INF(chip_id, SHR_MOD_PORT, "chip_id%u map_mode%u invalid, do nothing.\n", chip_id,
                    static_cast<u32>(map_mode));
        return 0;
    }
    rc = _csl_atolreef_mapping_mode_set(chip_id, 0, static_cast<u32>(map_mode));
    for (u32 mag = 0; mag < CSL_PORT_MAX_MAG && rc == 0; mag++) {
        const i32 m = static_cast<i32>(mag);
        const i32 type = csl_port_property_get(chip_id, m, "mag_interface_type", 0);
        if (type < 1 || type > 20) {
            SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "chip_id%u mag_id%u current mag interface not exist.\n", chip_id, mag);
            continue;
        }
        if (type == 9 || type == 11 || type == 14 || type == 15 || type == 16) {
            SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "\n\rchip_id%u  mag_id%u interface type %u unvalid!\n", chip_id, mag,
                        static_cast<u32>(type));
            continue;
        }
        port_interface info{};
        info.interface_type = static_cast<u32>(type);
        info.port_num = static_cast<u8>(
            csl_port_property_get(chip_id, m, "mag_port_number", static_cast<i32>(port_num_default(info.interface_type))));
        rc = _csl_atolreef_port_interface_type_set(chip_id, _ctl(chip_id)->mag_info[mag].member[0], &info);
    }
    for (u32 p = 0; p < CSL_PORT_MAX_MAC && rc == 0; p++) {
        rc = _csl_atolreef_port_ability_init(chip_id, p);
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

i32 _csl_atolreef_port_hw_phase2_init(u32 chip_id)
{
    if (_ctl(chip_id) == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = 0;
    for (u32 mag = 0; mag < CSL_PORT_MAX_MAG && rc == 0; mag++) {
        const u32 type = _ctl(chip_id)->mag_info[mag].interface_type;
        rc = _csl_atolreef_mac_enable_init(chip_id, mag, 1);
        if (rc == 0 && type != 0) {
            rc = _csl_atolreef_mac_phy_mode_init(chip_id, mag, type);
        }
    }
    if (rc != 0) {
        g_atolreef_port_init_flag[chip_id] = 0;
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    g_cnt_clr_mode[chip_id] = static_cast<u32>(csl_port_property_get(chip_id, -1, "port_cnt_get_clr_mode", 1));
    g_atolreef_port_init_flag[chip_id] = 0;
    return 0;
}

} // extern "C"
