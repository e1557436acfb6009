// The MAC and PCS of one atolreef port: enables, forced link,
// auto-negotiation with its sources, speed, duplex, pause, frame lengths,
// gap, CRC, loopbacks, faults, reset, abilities and diagnostics.
#include <cstdio>
#include <cstring>

#include "csl/reef/driver/port/csl_atolreef_port_int.h"

using namespace tide::port::atolreef;

namespace {

// Force register of each coding; the three fields hold a bit per MAC.
constexpr u32 kForceReg[3] = {cib_pcs_8b10b_force_link_set, cib_pcs_6466b_force_link_set, cib_pcs_4b5b_force_link_set};

bool _is(u32 type, std::initializer_list<u32> types)
{
    for (u32 t : types) {
        if (t == type) {
            return true;
        }
    }
    return false;
}

// The port, in use, with its coding.
i32 _where(u32 chip_id, u32 lport, port_where *w, u32 *code)
{
    i32 rc = port_where_get(chip_id, lport, w);
    return rc != 0 ? rc : mag_code_get(chip_id, w->type, code);
}

i32 _speed_source_set(u32 chip_id, const port_where &w, u32 code, u32 from_an)
{
    if (w.type == 17) {
        return 0;
    }
    if (from_an && _is(w.type, {1, 8, 10})) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u current interface type not support speed source from an\n",
                    chip_id);
        return SHR_E_NOT_SUPPORT;
    }
    const u32 reg = code == kCode6466b ? cib_pcs_6466b_pcs_speed_mode : cib_pcs_8b10b_pcs_dup_mode;
    return reg_field_bit_set(chip_id, reg, pcs_index(code, w.mag), cib_f_pcs_speed_sel, w.mac, from_an ? 0 : 1);
}

i32 _pause_source_set(u32 chip_id, u32 lport, const port_where &w, u32 from_an)
{
    if (from_an && !_is(w.type, {1, 8})) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u current protocal type not support pause from an!\n",
                    chip_id, lport);
        return SHR_E_NOT_SUPPORT;
    }
    return reg_update(chip_id, cib_mac_port_pause_cfg, lport, {{cib_f_pause_ability_sel, from_an}});
}

i32 _duplex_source_set(u32 chip_id, u32 lport, const port_where &w, u32 from_an)
{
    if (from_an && !_is(w.type, {2, 3, 6, 7})) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u current protocal type not support duplex from an!\n",
                    chip_id, lport);
        return SHR_E_NOT_SUPPORT;
    }
    return reg_update(chip_id, cib_mac_port_half_cfg, lport, {{cib_f_half_ability_sel, from_an}});
}

bool _speed_from_an(u32 chip_id, const port_where &w, u32 code)
{
    if (code == kCode4b5b) {
        return false;
    }
    const u32 reg = code == kCode6466b ? cib_pcs_6466b_pcs_speed_mode : cib_pcs_8b10b_pcs_dup_mode;
    u32 sel = 0;
    return reg_field_get(chip_id, reg, pcs_index(code, w.mag), cib_f_pcs_speed_sel, &sel) == 0 &&
           ((sel >> w.mac) & 1u) == 0;
}

u32 _an_status(u32 chip_id, const port_where &w, u32 field)
{
    u32 v = 0;
    reg_field_get(chip_id, cib_pcs_an_pcs_an_status_1, w.channel, field, &v);
    return v;
}

constexpr u32 kPauseField[4] = {cib_f_tx_pause_en, cib_f_rx_pause_en, cib_f_tx_pause_respon, cib_f_rx_pause_err};
constexpr u32 kCrcField[4] = {cib_f_tx_crc_en, cib_f_rx_crc_en, cib_f_tx_crc_chk, cib_f_rx_crc_chk};

// Resolution of the pause of both ends (IEEE 802.3 Annex 28B): tx, rx.
struct pause_res {
    u8 tx;
    u8 rx;
};
constexpr pause_res _pause_resolve(u32 local, u32 remote)
{
    switch (local & 3) {
    case 1: return (remote == 1 || remote == 3) ? pause_res{1, 1} : pause_res{0, 0};
    case 2: return remote == 3 ? pause_res{1, 0} : pause_res{0, 0};
    case 3: return (remote == 1 || remote == 3) ? pause_res{1, 1} : remote == 2 ? pause_res{0, 1} : pause_res{0, 0};
    default: return {0, 0};
    }
}

i32 _frame_len_set(u32 chip_id, u32 lport, u32 frame_type, u32 length, bool max)
{
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    if (rc != 0) {
        return rc;
    }
    const u32 lo = max ? 512 : 16, hi = max ? 16000 : 120;
    if (length < lo || length > hi) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT,
                    max ? "chip_id: %u lport: %u max frame length:%u should in range 512~16000.\n"
                        : "chip_id: %u lport: %u min frame length:%u should in range 16~120.\n",
                    chip_id, lport, length);
        return SHR_E_PARAM;
    }
    if (frame_type == PORT_FRAME_TX) {
        return reg_update(chip_id, cib_mac_port_tx_pkt_cfg, lport, {{max ? cib_f_tx_max_len : cib_f_tx_min_len, length}});
    }
    if (frame_type == PORT_FRAME_RX) {
        return reg_update(chip_id, cib_mac_port_rx_pkt_cfg, lport, {{max ? cib_f_rx_max_len : cib_f_rx_min_len, length}});
    }
    return 0;
}

i32 _frame_len_get(u32 chip_id, u32 lport, u32 frame_type, u32 *length, bool max)
{
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    if (rc != 0) {
        return rc;
    }
    if (frame_type == PORT_FRAME_TX) {
        return reg_field_get(chip_id, cib_mac_port_tx_pkt_cfg, lport, max ? cib_f_tx_max_len : cib_f_tx_min_len, length);
    }
    if (frame_type == PORT_FRAME_RX) {
        return reg_field_get(chip_id, cib_mac_port_rx_pkt_cfg, lport, max ? cib_f_rx_max_len : cib_f_rx_min_len, length);
    }
    return 0;
}

// The fields cfg_control reaches in the three packet registers.
struct cfg_field {
    u32 reg;
    u32 field;
};
bool _cfg_field(u32 flag, cfg_field *f)
{
    switch (flag) {
    case PORT_CFG_TX_PADDING_EN: *f = {cib_mac_port_tx_pkt_cfg, cib_f_tx_padding_en}; return true;
    case PORT_CFG_TX_CUT_EN: *f = {cib_mac_port_tx_pkt_cfg, cib_f_tx_cut_en}; return true;
    case PORT_CFG_RX_CUT_EN: *f = {cib_mac_port_rx_pkt_cfg, cib_f_rx_cut_en}; return true;
    case PORT_CFG_TX_DROP_EN: *f = {cib_mac_port_enable_cfg, cib_f_tx_drop_en}; return true;
    case PORT_CFG_RX_SHORT_ERR: *f = {cib_mac_port_rx_pkt_cfg, cib_f_rx_short_err}; return true;
    default: return false;
    }
}

} // namespace

extern "C" {

i32 _csl_atolreef_port_tx_rx_enable_set(u32 chip_id, u32 lport, u32 enable_type, u32 value)
{
    const u32 v = value ? 1 : 0;
    switch (enable_type) {
    case PORT_ENABLE_TX: return reg_update(chip_id, cib_mac_port_enable_cfg, lport, {{cib_f_tx_en, v}});
    case PORT_ENABLE_RX: return reg_update(chip_id, cib_mac_port_enable_cfg, lport, {{cib_f_rx_en, v}});
    case PORT_ENABLE_BOTH: return reg_update(chip_id, cib_mac_port_enable_cfg, lport, {{cib_f_tx_en, v}, {cib_f_rx_en, v}});
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u enable type%u out of range\n", chip_id, lport, enable_type);
        return SHR_E_PARAM;
    }
}

i32 _csl_atolreef_port_tx_rx_enable_get(u32 chip_id, u32 lport, u32 enable_type, u32 *value)
{
    u32 tx = 0, rx = 0;
    i32 rc = reg_field_get(chip_id, cib_mac_port_enable_cfg, lport, cib_f_tx_en, &tx);
    if (rc == 0) rc = reg_field_get(chip_id, cib_mac_port_enable_cfg, lport, cib_f_rx_en, &rx);
    if (rc != 0) {
        return rc;
    }
    switch (enable_type) {
    case PORT_ENABLE_TX: *value = tx; return 0;
    case PORT_ENABLE_RX: *value = rx; return 0;
    case PORT_ENABLE_BOTH: *value = tx && rx ? 1 : 0; return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u enable type%u out of range\n", chip_id, lport, enable_type);
        return SHR_E_PARAM;
    }
}

// A disabled port is a port forced down; its MAC stays on.
i32 _csl_atolreef_port_enable_set(u32 chip_id, u32 lport, u32 value)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    const u32 on = value ? 1 : 0;
    rc = on ? _csl_atolreef_mac_link_mode_set(chip_id, lport, PORT_LINK_NORMAL, PORT_LINK_UP)
            : _csl_atolreef_mac_link_mode_set(chip_id, lport, PORT_LINK_FORCED, PORT_LINK_DOWN);
    if (rc == 0 && code == kCode6466b) {
        rc = _csl_atolreef_mac_fault_resp_set(chip_id, lport, 0, on);
        if (rc == 0) rc = _csl_atolreef_mac_fault_insert_set(chip_id, lport, 1, on ? 0 : 1);
    }
    if (rc == 0) {
        csl_port_control *ctl = csl_port_control_get(chip_id);
        tide::port::MutexGuard hold(ctl->lock);
        ctl->mac_info[lport].enable = static_cast<u8>(on);
    }
    return rc;
}

i32 _csl_atolreef_port_enable_get(u32 chip_id, u32 lport, u32 *value)
{
    port_where w{};
    const i32 rc = port_where_get(chip_id, lport, &w);
    if (rc == 0) {
        *value = csl_port_control_get(chip_id)->mac_info[lport].enable;
    }
    return rc;
}

i32 _csl_atolreef_mac_link_mode_set(u32 chip_id, u32 lport, u32 link_mode, u32 link_status)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    const u32 reg = kForceReg[code], idx = pcs_index(code, w.mag);
    u32 en = 0, cfg = 0, kd = 0;
    rc = reg_field_get(chip_id, reg, idx, cib_f_force_link_en, &en);
    if (rc == 0) rc = reg_field_get(chip_id, reg, idx, cib_f_force_link_cfg, &cfg);
    if (rc == 0) rc = reg_field_get(chip_id, reg, idx, cib_f_force_err_kd, &kd);
    if (rc != 0) {
        return rc;
    }
    const u32 b = 1u << w.mac;
    u32 linkdown2tx = 1;
    if (link_mode == PORT_LINK_NORMAL) {
        rc = csl_atolreef_pcs_an_enable_set(chip_id, lport, g_an_enable_status[chip_id][lport]);
        en &= ~b;
        kd &= ~b;
    } else if (link_status == PORT_LINK_UP) {
        en |= b;
        cfg |= b;
        kd &= ~b;
        rc = csl_atolreef_pcs_an_enable_set(chip_id, lport, 0);
        linkdown2tx = 0;
    } else {
        en |= b;
        kd |= b;
        cfg &= ~b;
    }
    if (rc == 0) {
        rc = reg_write(chip_id, reg, idx, {{cib_f_force_link_en, en}, {cib_f_force_link_cfg, cfg}, {cib_f_force_err_kd, kd}});
    }
    if (rc == 0 && code == kCode4b5b) {
        rc = reg_update(chip_id, cib_pcs_4b5b_pcs_fe_ctrl, w.mag, {{cib_f_linkdown2tx_en, linkdown2tx}});
    }
    return rc;
}

i32 _csl_atolreef_port_force_link_set(u32 chip_id, u32 lport, u32 link_mode, u32 link_status)
{
    return _csl_atolreef_mac_link_mode_set(chip_id, lport, link_mode, link_status);
}

i32 _csl_atolreef_port_force_link_get(u32 chip_id, u32 lport, u32 *link_mode, u32 *link_status)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    u32 en = 0, cfg = 0;
    if (rc == 0) rc = reg_field_get(chip_id, kForceReg[code], pcs_index(code, w.mag), cib_f_force_link_en, &en);
    if (rc == 0) rc = reg_field_get(chip_id, kForceReg[code], pcs_index(code, w.mag), cib_f_force_link_cfg, &cfg);
    if (rc == 0) {
        *link_mode = (en >> w.mac) & 1u;
        *link_status = (cfg >> w.mac) & 1u;
    }
    return rc;
}

i32 _csl_atolreef_mac_xmit_en_set(u32 chip_id, u32 lport, u32 flag)
{
    port_where w{};
    u32 code = 0;
    const i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0 || code == kCode4b5b) {
        return rc;
    }
    const u32 reg = code == kCode6466b ? cib_pcs_6466b_pcs_speed_mode : cib_pcs_8b10b_pcs_dup_mode;
    return reg_field_bit_set(chip_id, reg, pcs_index(code, w.mag), cib_f_xmit_en, w.mac, flag);
}

i32 csl_atolreef_pcs_an_enable_set(u32 chip_id, u32 lport, u32 enable)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    if (enable == 1 && _is(w.type, {10, 17})) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u current protocal type not support an enable!\n", chip_id,
                    lport);
        return SHR_E_PARAM;
    }
    const bool on = enable == 1;
    const bool speed_an = on && !_is(w.type, {1, 8});
    const bool pause_an = on && _is(w.type, {1, 8});
    const bool duplex_an = on && _is(w.type, {2, 3, 6, 7});
    if (w.type != 10 || !on) {
        rc = _speed_source_set(chip_id, w, code, speed_an ? 1 : 0);
    }
    if (rc == 0) rc = _pause_source_set(chip_id, lport, w, pause_an ? 1 : 0);
    if (rc == 0) rc = _duplex_source_set(chip_id, lport, w, duplex_an ? 1 : 0);
    if (rc == 0) rc = _csl_atolreef_mac_xmit_en_set(chip_id, lport, on ? 1 : 0);
    if (rc == 0) {
        rc = reg_update(chip_id, cib_pcs_an_pcs_an_ctrl_2, w.channel,
                        {{cib_f_phy_link_en, on && !_is(w.type, {1, 8}) ? 1u : 0u},
                         {cib_f_an_link_en, on ? g_an_link_en[chip_id][lport] : 0u},
                         {cib_f_an_enable, on ? 1u : 0u}});
    }
    return rc;
}

i32 _csl_atolreef_pcs_an_enable_set(u32 chip_id, u32 lport, u32 enable)
{
    u32 mode = 0, status = 0;
    i32 rc = _csl_atolreef_port_force_link_get(chip_id, lport, &mode, &status);
    if (rc != 0) {
        return rc;
    }
    if (mode == PORT_LINK_FORCED && status == PORT_LINK_UP && enable == 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u force up mode not support an enable!\n", chip_id, lport);
        return SHR_E_UNAVAIL;
    }
    rc = csl_atolreef_pcs_an_enable_set(chip_id, lport, enable);
    if (rc == 0) {
        g_an_enable_status[chip_id][lport] = enable;
    }
    return rc;
}

i32 _csl_atolreef_pcs_an_enable_get(u32 chip_id, u32 lport, u32 *enable)
{
    port_where w{};
    const i32 rc = port_where_get(chip_id, lport, &w);
    return rc != 0 ? rc : reg_field_get(chip_id, cib_pcs_an_pcs_an_ctrl_2, w.channel, cib_f_an_enable, enable);
}

i32 _csl_atolreef_autoneg_restart_set(u32 chip_id, u32 lport)
{
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    if (rc != 0) {
        return rc;
    }
    if (!_is(w.type, {1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 17, 18, 19, 20})) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u can not configure AN restart for current interface type\n",
                    chip_id, lport);
        return SHR_E_PARAM;
    }
    rc = reg_update(chip_id, cib_pcs_an_pcs_an_ctrl_2, w.channel, {{cib_f_an_restart, 1}});
    return rc != 0 ? rc : reg_update(chip_id, cib_pcs_an_pcs_an_ctrl_2, w.channel, {{cib_f_an_restart, 0}});
}

i32 _csl_atolreef_advert_ability_set(u32 chip_id, u32 lport, port_ability *ability)
{
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    if (rc != 0 || !_is(w.type, {1, 8})) {
        return rc;
    }
    u32 code = 0;
    switch (ability->pause) {
    case PAUSE_SYMM: code = 1; break;
    case PAUSE_ASYMM: code = 2; break;
    case PAUSE_BOTH: code = 3; break;
    case PAUSE_NONE: code = 0; break;
    default: return 0;
    }
    return reg_field_bits_set(chip_id, cib_pcs_an_pcs_an_ctrl_0, w.channel, cib_f_tx_cfg_dat, 7, 2, code);
}

i32 _csl_atolreef_advert_ability_get(u32 chip_id, u32 lport, port_ability *ability)
{
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    if (rc != 0 || !_is(w.type, {1, 8})) {
        return rc;
    }
    u32 dat = 0;
    rc = reg_field_get(chip_id, cib_pcs_an_pcs_an_ctrl_0, w.channel, cib_f_tx_cfg_dat, &dat);
    if (rc == 0) {
        constexpr u32 kPause[4] = {PAUSE_NONE, PAUSE_SYMM, PAUSE_ASYMM, PAUSE_BOTH};
        ability->pause = kPause[(dat >> 7) & 3u];
    }
    return rc;
}

i32 _csl_atolreef_local_ability_get(u32 chip_id, u32 lport, port_ability *ability)
{
    port_where w{};
    const i32 rc = port_where_get(chip_id, lport, &w);
    if (rc != 0) {
        return rc;
    }
    ability->pause = 7;
    switch (w.type) {
    case 1: ability->speed_full = 4; ability->medium = 2; ability->pause = 31; break;
    case 8: ability->speed_full = 8; ability->medium = 2; ability->pause = 31; break;
    case 2: case 3: case 4: case 5: case 6: case 7:
        ability->speed_full = 7; ability->speed_half = 3; ability->medium = 1; break;
    case 12: case 13: ability->speed_full = 63; break;
    case 18: ability->speed_full = 63; ability->medium = 1; break;
    case 19: ability->speed_full = 31; ability->medium = 1; break;
    case 20: ability->speed_full = 15; ability->medium = 1; break;
    default: break;
    }
    return 0;
}

i32 _csl_atolreef_port_speed_set(u32 chip_id, u32 lport, u32 speed)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    bool ok = false;
    const char *msg = "chip_id%u lport%u current protocal type can not support speed %uM \n";
    switch (w.type) {
    case 1: ok = speed == 1000; break;
    case 2: case 4: case 5: case 6: case 7:
        ok = speed == 10 || speed == 100 || speed == 1000;
        msg = "chip_id%u lport%u current protocol type can not support speed %uM \n";
        break;
    case 3:
        ok = speed == 10 || speed == 100 || speed == 2500;
        msg = "chip_id%u lport%u current speed  %uM  can not support under current protocal interface\n";
        break;
    case 8: ok = speed == 2500; break;
    case 10: ok = speed == 10000; break;
    case 12: case 13: {
        const u32 top = w.port_num == 1 ? 10000 : w.port_num == 2 ? 5000 : w.port_num == 4 ? 2500 : 0;
        if (top == 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_PORT,
                        "chip_id%u lport%u current port number%u is not valid for current protocal type!\n", chip_id,
                        lport, w.port_num);
            return SHR_E_PARAM;
        }
        ok = speed <= top && _is(speed, {10, 100, 1000, 2500, 5000, 10000});
        break;
    }
    case 17: ok = speed == 100; break;
    case 18: case 19: case 20: {
        const u32 top = w.type == 18 ? 10000 : w.type == 19 ? 5000 : 2500;
        ok = speed <= top && _is(speed, {10, 100, 1000, 2500, 5000, 10000});
        msg = "chip_id%u lport%u current interface type can not support speed %uM \n";
        break;
    }
    default: break;
    }
    if (!ok) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, msg, chip_id, lport, speed);
        return SHR_E_PARAM;
    }
    const bool x25 = _is(w.type, {3, 8});
    u32 c = 0;
    switch (speed) {
    case 100: c = 1; break;
    case 1000: c = 2; break;
    case 2500: c = x25 ? 2 : 4; break;
    case 5000: c = 5; break;
    case 10000: c = 3; break;
    default: c = 0; break;
    }
    if (code == kCode6466b) {
        return reg_field_bits_set(chip_id, cib_pcs_6466b_pcs_speed_cfg, w.mag - 2, cib_f_pcs_speed_cfg, w.mac * 4, 4, c);
    }
    if (code == kCode8b10b) {
        return reg_field_bits_set(chip_id, cib_pcs_8b10b_pcs_dup_mode, w.mag, cib_f_pcs_speed_cfg, w.mac * 2, 2, c & 3);
    }
    return 0;
}

i32 _csl_atolreef_port_speed_get(u32 chip_id, u32 lport, u32 *speed)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    if (w.type == 17) {
        *speed = 100;
        return 0;
    }
    u32 c = 0;
    if (_speed_from_an(chip_id, w, code)) {
        c = _an_status(chip_id, w, cib_f_an_speed);
    } else {
        u32 word = 0;
        const u32 reg = code == kCode6466b ? cib_pcs_6466b_pcs_speed_cfg : cib_pcs_8b10b_pcs_dup_mode;
        rc = reg_field_get(chip_id, reg, pcs_index(code, w.mag), cib_f_pcs_speed_cfg, &word);
        c = code == kCode6466b ? (word >> (w.mac * 4)) & 0xFu : (word >> (w.mac * 2)) & 3u;
    }
    const bool x25 = _is(w.type, {3, 8});
    constexpr u32 kSpeed[6] = {10, 100, 1000, 10000, 2500, 5000};
    *speed = c < 6 ? (c == 2 && x25 ? 2500 : kSpeed[c]) : 400001;
    return rc;
}

i32 _csl_atolreef_port_duplex_set(u32 chip_id, u32 lport, u32 duplex)
{
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    if (rc != 0) {
        return rc;
    }
    if (duplex == 0 && _is(w.type, {1, 8, 10, 12, 13, 17, 18, 19, 20})) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "current interface type not support duplex half.\n");
        return SHR_E_PARAM;
    }
    return reg_update(chip_id, cib_mac_port_half_cfg, lport, {{cib_f_half_en, duplex == 0 ? 1u : 0u}});
}

i32 _csl_atolreef_port_duplex_get(u32 chip_id, u32 lport, u32 *duplex)
{
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    u32 sel = 0, half = 0;
    if (rc == 0) rc = reg_field_get(chip_id, cib_mac_port_half_cfg, lport, cib_f_half_ability_sel, &sel);
    if (rc == 0) rc = reg_field_get(chip_id, cib_mac_port_half_cfg, lport, cib_f_half_en, &half);
    if (rc == 0) {
        *duplex = sel != 0 ? _an_status(chip_id, w, cib_f_an_duplex) : (half ? 0 : 1);
    }
    return rc;
}

i32 _csl_atolreef_vlan_pause_set(u32, u32, u32, u32)
{
    return SHR_E_NOT_SUPPORT;
}

i32 _csl_atolreef_vlan_pause_get(u32, u32, u32, u32 *)
{
    return SHR_E_NOT_SUPPORT;
}

i32 _csl_atolreef_dic_mode_set(u32, u32, u32)
{
    return SHR_E_NOT_SUPPORT;
}

i32 _csl_atolreef_dic_mode_get(u32, u32, u32 *)
{
    return SHR_E_NOT_SUPPORT;
}

i32 _csl_atolreef_port_transmit_path_set(u32, u32, u32, u32)
{
    return SHR_E_NOT_SUPPORT;
}

i32 _csl_atolreef_port_transmit_path_get(u32, u32 *, u32 *, u32 *)
{
    return SHR_E_NOT_SUPPORT;
}

i32 _csl_atolreef_mac_pause_set(u32 chip_id, u32 lport, u32 pause_type, u32 value)
{
    if (pause_type > PORT_PAUSE_RX_ERR) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u pause type%u out of range\n", chip_id, lport, pause_type);
        return SHR_E_PARAM;
    }
    return reg_update(chip_id, cib_mac_port_pause_cfg, lport, {{kPauseField[pause_type], value ? 1u : 0u}});
}

i32 _csl_atolreef_mac_pause_get(u32 chip_id, u32 lport, u32 pause_type, u32 *value)
{
    if (pause_type > PORT_PAUSE_RX_ERR) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u pause type%u out of range\n", chip_id, lport, pause_type);
        return SHR_E_PARAM;
    }
    u32 sel = 0;
    i32 rc = reg_field_get(chip_id, cib_mac_port_pause_cfg, lport, cib_f_pause_ability_sel, &sel);
    if (rc != 0) {
        return rc;
    }
    if (pause_type > PORT_PAUSE_RX_EN || sel == 0) {
        return reg_field_get(chip_id, cib_mac_port_pause_cfg, lport, kPauseField[pause_type], value);
    }
    port_where w{};
    rc = port_where_get(chip_id, lport, &w);
    u32 dat = 0;
    if (rc == 0) rc = reg_field_get(chip_id, cib_pcs_an_pcs_an_ctrl_0, w.channel, cib_f_tx_cfg_dat, &dat);
    if (rc == 0) {
        const pause_res r = _pause_resolve((dat >> 7) & 3u, _an_status(chip_id, w, cib_f_an_pause));
        *value = pause_type == PORT_PAUSE_TX_EN ? r.tx : r.rx;
    }
    return rc;
}

i32 _csl_atolreef_mac_pause_smac_set(u32 chip_id, u32 lport, u8 *smac)
{
    const u32 high = (static_cast<u32>(smac[0]) << 8) | smac[1];
    const u32 low = (static_cast<u32>(smac[2]) << 24) | (static_cast<u32>(smac[3]) << 16) |
                    (static_cast<u32>(smac[4]) << 8) | smac[5];
    i32 rc = reg_update(chip_id, cib_mac_port_misc_cfg0, lport, {{cib_f_pause_smac_high, high}});
    return rc != 0 ? rc : reg_update(chip_id, cib_mac_port_misc_cfg1, lport, {{cib_f_pause_smac_low, low}});
}

i32 _csl_atolreef_mac_pause_smac_get(u32 chip_id, u32 lport, u8 *smac)
{
    u32 high = 0, low = 0;
    i32 rc = reg_field_get(chip_id, cib_mac_port_misc_cfg0, lport, cib_f_pause_smac_high, &high);
    if (rc == 0) rc = reg_field_get(chip_id, cib_mac_port_misc_cfg1, lport, cib_f_pause_smac_low, &low);
    if (rc == 0) {
        const u8 bytes[6] = {static_cast<u8>(high >> 8), static_cast<u8>(high), static_cast<u8>(low >> 24),
                             static_cast<u8>(low >> 16), static_cast<u8>(low >> 8), static_cast<u8>(low)};
        memcpy(smac, bytes, sizeof(bytes));
    }
    return rc;
}

i32 _csl_atolreef_max_frame_set(u32 chip_id, u32 lport, u32 frame_type, u32 length)
{
    return _frame_len_set(chip_id, lport, frame_type, length, true);
}

i32 _csl_atolreef_max_frame_get(u32 chip_id, u32 lport, u32 frame_type, u32 *length)
{
    return _frame_len_get(chip_id, lport, frame_type, length, true);
}

i32 _csl_atolreef_min_frame_set(u32 chip_id, u32 lport, u32 frame_type, u32 length)
{
    return _frame_len_set(chip_id, lport, frame_type, length, false);
}

i32 _csl_atolreef_min_frame_get(u32 chip_id, u32 lport, u32 frame_type, u32 *length)
{
    return _frame_len_get(chip_id, lport, frame_type, length, false);
}

i32 _csl_atolreef_mac_link_status_get(u32 chip_id, u32 lport, u32 *status)
{
    u32 index = 0, b = 0, word = 0;
    i32 rc = csl_atolreef_port_link_bit_get(chip_id, lport, &index, &b);
    if (rc == 0) rc = reg_field_get(chip_id, cib_mag_glb_ch_link, index, cib_f_ch_link, &word);
    if (rc == 0) {
        *status = (word >> b) & 1u;
    }
    return rc;
}

i32 _csl_atolreef_ifg_set(u32 chip_id, u32 lport, u8 ifg)
{
    if (ifg < 4 || ifg > 31) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id: %u lport: %u ifg value %u out of range 4~31\n", chip_id, lport,
                    static_cast<u32>(ifg));
        return SHR_E_PARAM;
    }
    return reg_update(chip_id, cib_mac_port_ipg_cfg, lport, {{cib_f_ipg_num, ifg}});
}

i32 _csl_atolreef_ifg_get(u32 chip_id, u32 lport, u8 *ifg)
{
    u32 v = 0;
    const i32 rc = reg_field_get(chip_id, cib_mac_port_ipg_cfg, lport, cib_f_ipg_num, &v);
    *ifg = static_cast<u8>(v);
    return rc;
}

i32 _csl_atolreef_mac_fault_status_get(u32 chip_id, u32 lport, u32 *fault)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    if (code != kCode6466b) {
        *fault = 0;
        return 0;
    }
    u32 st = 0;
    rc = reg_field_get(chip_id, cib_pcs_6466b_ch_stat, w.mag - 2, cib_f_ch_stat, &st);
    constexpr u32 kLocal = PORT_FAULT_LOCAL, kRemote = PORT_FAULT_REMOTE, kLinkInt = PORT_FAULT_LINK_INT;
    *fault = ((st >> 4) & 1u ? kLocal : 0u) | ((st >> 3) & 1u ? kRemote : 0u) | ((st >> 2) & 1u ? kLinkInt : 0u);
    return rc;
}

i32 _csl_atolreef_mac_fault_resp_set(u32 chip_id, u32 lport, u32 fault_type, u32 value)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    if (code != kCode6466b || fault_type > 2) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u current interface type%u not support fault resp set.\n",
                    chip_id, lport, w.type);
        return SHR_E_PARAM;
    }
    constexpr u32 kField[3] = {cib_f_lf_resp_en, cib_f_rf_resp_en, cib_f_li_resp_en};
    return reg_field_bit_set(chip_id, cib_pcs_6466b_fault_resp, w.mag - 2, kField[fault_type], w.mac, value ? 1 : 0);
}

i32 _csl_atolreef_mac_fault_insert_set(u32 chip_id, u32 lport, u32 fault_type, u32 value)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    if (code != kCode6466b || fault_type > 3) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT,
                    "chip_id%u lport%u current interface type%u not support fault insert set.\n", chip_id, lport,
                    w.type);
        return SHR_E_PARAM;
    }
    const u32 idx = w.mag - 2;
    if (value == 1) {
        rc = reg_field_bit_set(chip_id, cib_pcs_6466b_fault_ins_ctrl, idx, cib_f_fault_ins_en, w.mac, 1);
        return rc != 0 ? rc
                       : reg_field_bits_set(chip_id, cib_pcs_6466b_fault_ins_ctrl, idx, cib_f_fault_ins_type, w.mac * 2,
                                            2, fault_type);
    }
    u32 types = 0;
    rc = reg_field_get(chip_id, cib_pcs_6466b_fault_ins_ctrl, idx, cib_f_fault_ins_type, &types);
    if (rc != 0 || ((types >> (w.mac * 2)) & 3u) != fault_type) {
        return rc;
    }
    return reg_field_bit_set(chip_id, cib_pcs_6466b_fault_ins_ctrl, idx, cib_f_fault_ins_en, w.mac, 0);
}

i32 _csl_atolreef_port_loopback_get(u32 chip_id, u32 lport, port_loopback *loopback)
{
    u32 in = 0, tr = 0, out = 0, otr = 0;
    i32 rc = reg_field_get(chip_id, cib_mac_port_inloop_cfg, lport, cib_f_inloop_en, &in);
    if (rc == 0) rc = reg_field_get(chip_id, cib_mac_port_inloop_cfg, lport, cib_f_transparent_en, &tr);
    if (rc == 0) rc = reg_field_get(chip_id, cib_mag_map_outloop_cfg, lport, cib_f_port_outloop_en, &out);
    if (rc == 0) rc = reg_field_get(chip_id, cib_mag_map_outloop_cfg, lport, cib_f_port_transparent_en, &otr);
    if (rc != 0) {
        return rc;
    }
    if (in && !out) {
        *loopback = {PORT_LOOP_MAC_INNER, tr};
    } else if (out && !in) {
        *loopback = {PORT_LOOP_MAC_OUTER, otr};
    } else {
        *loopback = {PORT_LOOP_NONE, 0};
    }
    return 0;
}

i32 _csl_atolreef_port_loopback_set(u32 chip_id, u32 lport, port_loopback *loopback)
{
    const u32 mode = loopback->loop_mode;
    if (mode != PORT_LOOP_MAC_INNER && mode != PORT_LOOP_MAC_OUTER && mode != PORT_LOOP_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u loop mode%u out of range\n", chip_id, lport, mode);
        return SHR_E_PARAM;
    }
    port_loopback now{};
    i32 rc = _csl_atolreef_port_loopback_get(chip_id, lport, &now);
    if (rc != 0) {
        return rc;
    }
    if (now.loop_mode == mode && (mode == PORT_LOOP_NONE || now.transparent == loopback->transparent)) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "chip_id%u lport%u loop configure not change. \n", chip_id, lport);
        return 0;
    }
    const u32 tr = loopback->transparent ? 1 : 0;
    auto inner = [&] {
        return reg_update(chip_id, cib_mac_port_inloop_cfg, lport,
                          {{cib_f_inloop_en, mode == PORT_LOOP_MAC_INNER ? 1u : 0u},
                           {cib_f_transparent_en, mode == PORT_LOOP_MAC_INNER ? tr : 0u}});
    };
    auto outer = [&] {
        return reg_update(chip_id, cib_mag_map_outloop_cfg, lport,
                          {{cib_f_port_outloop_en, mode == PORT_LOOP_MAC_OUTER ? 1u : 0u},
                           {cib_f_port_transparent_en, mode == PORT_LOOP_MAC_OUTER ? tr : 0u}});
    };
    rc = _csl_atolreef_port_tx_rx_enable_set(chip_id, lport, PORT_ENABLE_BOTH, 0);
    if (rc == 0) rc = mode == PORT_LOOP_MAC_OUTER ? outer() : inner();
    if (rc == 0) rc = mode == PORT_LOOP_MAC_OUTER ? inner() : outer();
    if (rc == 0) {
        rc = mode == PORT_LOOP_MAC_INNER ? _csl_atolreef_mac_link_mode_set(chip_id, lport, PORT_LINK_FORCED, PORT_LINK_UP)
                                         : _csl_atolreef_mac_link_mode_set(chip_id, lport, PORT_LINK_NORMAL, PORT_LINK_UP);
    }
    if (rc == 0) rc = _csl_atolreef_port_tx_rx_enable_set(chip_id, lport, PORT_ENABLE_BOTH, 1);
    return rc;
}

i32 _csl_atolreef_port_crc_set(u32 chip_id, u32 lport, u32 crc_type, u32 value)
{
    if (crc_type > PORT_CRC_RX_CHK) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u crc_type%u out of range \n", chip_id, crc_type);
        return SHR_E_PARAM;
    }
    return reg_update(chip_id, cib_mac_port_crc_cfg, lport, {{kCrcField[crc_type], value ? 1u : 0u}});
}

i32 _csl_atolreef_port_crc_get(u32 chip_id, u32 lport, u32 crc_type, u32 *value)
{
    if (crc_type > PORT_CRC_RX_CHK) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u crc_type%u out of range \n", chip_id, crc_type);
        return SHR_E_PARAM;
    }
    return reg_field_get(chip_id, cib_mac_port_crc_cfg, lport, kCrcField[crc_type], value);
}

i32 _csl_atolreef_cfg_control_set(u32 chip_id, u32 lport, u32 flag, void *value)
{
    const u32 v = *static_cast<u32 *>(value);
    cfg_field f{};
    if (_cfg_field(flag, &f)) {
        return reg_update(chip_id, f.reg, lport, {{f.field, v ? 1u : 0u}});
    }
    switch (flag) {
    case PORT_CFG_FAULT_INSERT_TYPE1: return _csl_atolreef_mac_fault_insert_set(chip_id, lport, 1, v);
    case PORT_CFG_FAULT_INSERT_TYPE2: return _csl_atolreef_mac_fault_insert_set(chip_id, lport, 2, v);
    case PORT_CFG_FAULT_RESPONSE_TYPE0: return _csl_atolreef_mac_fault_resp_set(chip_id, lport, 0, v);
    case PORT_CFG_FAULT_RESPONSE_TYPE1: return _csl_atolreef_mac_fault_resp_set(chip_id, lport, 1, v);
    case PORT_CFG_PAUSE_FROM_AN: {
        port_where w{};
        const i32 rc = port_where_get(chip_id, lport, &w);
        return rc != 0 ? rc : _pause_source_set(chip_id, lport, w, v ? 1 : 0);
    }
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u not support this flag!\n", chip_id, lport);
        return SHR_E_PARAM;
    }
}

i32 _csl_atolreef_cfg_control_get(u32 chip_id, u32 lport, u32 flag, void *value)
{
    cfg_field f{};
    if (_cfg_field(flag, &f)) {
        return reg_field_get(chip_id, f.reg, lport, f.field, static_cast<u32 *>(value));
    }
    if (flag == PORT_CFG_PAUSE_FROM_AN) {
        return reg_field_get(chip_id, cib_mac_port_pause_cfg, lport, cib_f_pause_ability_sel, static_cast<u32 *>(value));
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u not support this flag!\n", chip_id, lport);
    return SHR_E_PARAM;
}

i32 _csl_atolreef_port_reset_set(u32 chip_id, u32 lport, u32 reset_flag)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _where(chip_id, lport, &w, &code);
    if (rc != 0) {
        return rc;
    }
    const u32 hold = reset_flag == 1 ? 1 : 0;
    const u32 pcs_rst = code == kCode6466b ? cib_pcs_6466b_rst_pcs : cib_pcs_8b10b_rst_pcs;
    const u32 idx = pcs_index(code, w.mag);
    auto an = [&] { return reg_update(chip_id, cib_pcs_an_an_rst, w.channel, {{cib_f_an_rst, hold}}); };
    auto pcs = [&] {
        if (code == kCode4b5b) {
            return 0;
        }
        const i32 r = reg_field_bit_set(chip_id, pcs_rst, idx, cib_f_rx_port_rst, w.mac, hold);
        return r != 0 ? r : reg_field_bit_set(chip_id, pcs_rst, idx, cib_f_tx_port_rst, w.mac, hold);
    };
    auto mac = [&] { return reg_update(chip_id, cib_mac_port_rst_cfg, lport, {{cib_f_mac_rst, hold}}); };
    auto map_rst = [&] { return reg_field_bit_set(chip_id, cib_mag_map_port_rst, 0, cib_f_port_rst, lport, hold); };
    auto map_clr = [&] { return reg_field_bit_set(chip_id, cib_mag_map_port_clr, 0, cib_f_port_clr, lport, hold); };
    auto cnt = [&] {
        const i32 r = reg_field_bit_set(chip_id, cib_pcs_glb_ch_cnt_clr, w.mag, cib_f_rx_cnt_clr, w.mac, hold);
        return r != 0 ? r : reg_field_bit_set(chip_id, cib_pcs_glb_ch_cnt_clr, w.mag, cib_f_tx_cnt_clr, w.mac, hold);
    };
    if (hold) {
        rc = an();
        if (rc == 0) rc = pcs();
        if (rc == 0) rc = mac();
        if (rc == 0) rc = map_rst();
        if (rc == 0) rc = map_clr();
        if (rc == 0) rc = cnt();
        if (rc == 0) rc = _csl_atolreef_port_counter_clean(chip_id, lport);
        return rc;
    }
    rc = map_rst();
    if (rc == 0) rc = mac();
    if (rc == 0) rc = pcs();
    if (rc == 0) rc = an();
    if (rc == 0) rc = map_clr();
    if (rc == 0) rc = cnt();
    return rc;
}

i32 _csl_atolreef_mac_half_seed_init(u32 chip_id, u32 lport)
{
    const u32 low = static_cast<u32>(xsal_time_usecs() & 0xFFFFu);
    const u32 seed = low == 0 ? 1 : low & 0x3FFu;
    i32 rc = reg_update(chip_id, cib_mac_port_half_cfg, lport, {{cib_f_prbs_seed, seed}});
    if (rc == 0) rc = reg_update(chip_id, cib_mac_port_half_cfg, lport, {{cib_f_load_seed, 1}});
    if (rc == 0) rc = reg_update(chip_id, cib_mac_port_half_cfg, lport, {{cib_f_load_seed, 0}});
    return rc;
}

i32 _csl_atolreef_mac_phy_mode_init(u32 chip_id, u32 mag_id, u32 type)
{
    (void)type;
    if (g_port_mac_phy_mode[chip_id] != 1) {
        return 0;
    }
    return for_used_macs(chip_id, mag_id, [chip_id](u32 lport, u32) {
        i32 rc = reg_update(chip_id, cib_mac_port_pause_cfg, lport,
                            {{cib_f_tx_pause_en, 0}, {cib_f_rx_pause_en, 0}, {cib_f_tx_pause_respon, 0},
                             {cib_f_rx_pause_err, 0}});
        if (rc == 0) {
            rc = reg_update(chip_id, cib_mac_port_crc_cfg, lport,
                            {{cib_f_rx_crc_en, 1}, {cib_f_rx_crc_chk, 1}, {cib_f_tx_crc_en, 1}});
        }
        if (rc == 0) {
            rc = reg_update(chip_id, cib_mac_port_rx_pkt_cfg, lport,
                            {{cib_f_rx_short_err, 0}, {cib_f_rx_max_len, 16000}, {cib_f_rx_cut_en, 1}});
        }
        if (rc == 0) {
            rc = reg_update(chip_id, cib_mac_port_tx_pkt_cfg, lport,
                            {{cib_f_tx_max_len, 16000}, {cib_f_tx_min_len, 16}, {cib_f_tx_cut_en, 0},
                             {cib_f_tx_padding_en, 1}});
        }
        return rc;
    });
}

} // extern "C"
