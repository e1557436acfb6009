// Diagnostics of an atolreef port: the result of the recovered-clock
// check, the one-line summary of a port and the alarm report with the
// frame counters along the port's path.
#include <cstdio>
#include <cstring>
#include <span>

#include "csl/reef/driver/port/csl_atolreef_port_int.h"

using namespace tide::port::atolreef;

namespace {

// Scratch room of one line of the alarm report.
constexpr u32 kScratch = 200;
// MACs per MAG in the instance numbering of the PCS counters.
constexpr u32 kMacsPerMag = 8;

// A register of path counters: the names of its two counts (SOP and EOP,
// or error and drop), the register and its two fields, and whether it is
// indexed by the MAC of a MAG (mag_id * 8 + mac) rather than by lport.
// Transmit from the core to the lane, then receive from the lane to the
// core, each closed by the MAC's error and drop counts.
struct path_counter {
    const char *name[2];
    u32 reg;
    u32 field[2];
    bool by_channel;
};
#define PATH_COUNTER(reg, a, b, by_channel)                                                                            \
    {{#a, #b}, cib_##reg, {cib_f_##a, cib_f_##b}, by_channel}
constexpr path_counter kPathCounters[] = {
    PATH_COUNTER(mag_map_tx_mac_cnt, mag_map_tx_mac_sop, mag_map_tx_mac_eop, false),
    PATH_COUNTER(mag_map_tx_macsec_cnt, map_tx_macsec_sop, map_tx_macsec_eop, false),
    PATH_COUNTER(mac_port_txdat_in_cnt, mac_port_txdat_in_sop, mac_port_txdat_in_eop, false),
    PATH_COUNTER(mag_glue_mac_tx_cnt, mag_glue_mac_tx_sop, mag_glue_mac_tx_eop, false),
    PATH_COUNTER(pcs_glb_pkt_tx_cnt, pcs_glb_pkt_tx_sop, pcs_glb_pkt_tx_eop, true),
    PATH_COUNTER(mac_port_txdat_err_cnt, mac_port_tx_err, mac_port_tx_drop, false),
    PATH_COUNTER(pcs_glb_pkt_rx_cnt, pcs_glb_pkt_rx_sop, pcs_glb_pkt_rx_eop, true),
    PATH_COUNTER(mag_glue_mac_rx_cnt, mag_glue_mac_rx_sop, mag_glue_mac_rx_eop, false),
    PATH_COUNTER(mac_port_rxdat_out_cnt, mac_port_rxdat_out_sop, mac_port_rxdat_out_eop, false),
    PATH_COUNTER(mag_map_rx_macsec_cnt, map_rx_macsec_sop, map_rx_macsec_eop, false),
    PATH_COUNTER(mag_map_rx_mac_cnt, mag_map_rx_mac_sop, mag_map_rx_mac_eop, false),
    PATH_COUNTER(mac_port_rxdat_err_cnt, mac_port_rx_err, mac_port_rx_drop, false),
};
#undef PATH_COUNTER

// Appends text to a caller's buffer, cut at its end.
void _buf_append(port_info_buff *info, const char *text)
{
    if (info->used >= info->len - 1) {
        return;
    }
    const size_t room = info->len - 1 - info->used;
    const size_t n = strnlen(text, room);
    memcpy(info->buff + info->used, text, n);
    info->used += static_cast<u32>(n);
    info->buff[info->used] = '\0';
}

// A caller's buffer must have room for its terminating zero after the
// text it already holds.
i32 _buf_check(u32 chip_id, u32 lport, const port_info_buff *info)
{
    if (info == nullptr || info->buff == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    if (info->len == 0 || info->used >= info->len) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u info buffer len %u used %u has no room\n", chip_id,
                    lport, info->len, info->used);
        return SHR_E_PARAM;
    }
    return 0;
}

// Sets a bit of a clear field and takes it back, unless it is already
// held set (by a port reset), when the counters are 0 anyway.
i32 _clear_pulse(u32 chip_id, u32 reg, u32 index, u32 field, u32 bit)
{
    u32 now = 0;
    i32 rc = reg_field_get(chip_id, reg, index, field, &now);
    if (rc != 0 || ((now >> bit) & 1u) != 0) {
        return rc;
    }
    rc = reg_field_bit_set(chip_id, reg, index, field, bit, 1);
    return rc != 0 ? rc : reg_field_bit_set(chip_id, reg, index, field, bit, 0);
}

// The counters of the port's map, MAC and glue, then the PCS's of its MAC
// in both directions.
i32 _path_counters_clear(u32 chip_id, u32 lport, const port_where &w)
{
    i32 rc = _clear_pulse(chip_id, cib_mag_map_port_clr, 0, cib_f_port_clr, lport);
    if (rc == 0) rc = _clear_pulse(chip_id, cib_pcs_glb_ch_cnt_clr, w.mag, cib_f_rx_cnt_clr, w.mac);
    if (rc == 0) rc = _clear_pulse(chip_id, cib_pcs_glb_ch_cnt_clr, w.mag, cib_f_tx_cnt_clr, w.mac);
    return rc;
}

// Appends one line per counter, its name and count; `clear` zeroes them
// after reading.
i32 _inter_cnt_get(u32 chip_id, u32 lport, const port_where &w, u32 clear, port_info_buff *info, char *scratch)
{
    for (const path_counter &c : kPathCounters) {
        const u32 index = c.by_channel ? w.mag * kMacsPerMag + w.mac : lport;
        for (u32 k = 0; k < 2; k++) {
            u32 v = 0;
            const i32 rc = reg_field_get(chip_id, c.reg, index, c.field[k], &v);
            if (rc != 0) {
                return rc;
            }
            snprintf(scratch, kScratch, "  %-24s %u\n", c.name[k], v);
            _buf_append(info, scratch);
        }
    }
    return clear ? _path_counters_clear(chip_id, lport, w) : 0;
}

// The coding's alarm word: its state fields by name and its alarm bits.
struct alm_state {
    const char *name;
    u32 field;
    std::span<const char *const> names;
};
struct alm_bit {
    const char *name;
    u32 field;
};
struct alm_block {
    const char *title;
    u32 reg;
    std::span<const alm_state> states;
    std::span<const alm_bit> bits;
};
constexpr const char *kCommaSt[] = {"LOSS", "DETECT1", "DETECT2", "DETECT3", "ACK1", "ACK2", "ACK3", "ACK4"};
constexpr const char *kAmOhSchSt[] = {"OOF UNLOCK", "FC1 LOCK1", "FC2 LOCK2", "INF LOCK"};
constexpr const char *kRxFsmSt[] = {"RX_IDLE", "RX_DATA", "RX_JK", "RX_ERR"};
constexpr alm_state k8b10bStates[] = {{"comma_det_st", cib_f_comma_det_st, kCommaSt},
                                      {"comma_chk_st", cib_f_comma_chk_st, kCommaSt}};
constexpr alm_bit k8b10bBits[] = {{"SDS_DOWN", cib_f_sds_down}};
constexpr alm_state k6466bStates[] = {{"am_oh_sch_st", cib_f_am_oh_sch_st, kAmOhSchSt}};
constexpr alm_bit k6466bBits[] = {
    {"LOCAL_FAULT", cib_f_local_fault},   {"REMOTE_FAULT", cib_f_remote_fault}, {"AM_SCH_UNSYN", cib_f_am_sch_unsyn},
    {"OH_CMP_ERR", cib_f_oh_cmp_err},     {"FAKE_SYN", cib_f_fake_syn},         {"BLOCK_UNSYN", cib_f_block_unsyn},
    {"HI_BER", cib_f_hi_ber},             {"UNLOCK/HI_BER", cib_f_unlock_hi_ber},
    {"SYN_HEADER_ERR", cib_f_syn_header_err}, {"SDS_DOWN", cib_f_sds_down}};
constexpr alm_state k4b5bStates[] = {{"rx_fsm_st", cib_f_rx_fsm_st, kRxFsmSt}};
constexpr alm_bit k4b5bBits[] = {{"SDS_DOWN", cib_f_sds_down}};
// By coding (kCode8b10b, kCode6466b, kCode4b5b).
constexpr alm_block kAlmBlocks[3] = {
    {"8b10b alm:", cib_pcs_8b10b_alm_8b10b, k8b10bStates, k8b10bBits},
    {"64b66b alm:", cib_pcs_6466b_alm_6466b, k6466bStates, k6466bBits},
    {"4b5b alm:", cib_pcs_4b5b_alm_4b5b, k4b5bStates, k4b5bBits},
};

// Appends `text` to a line being built in `scratch`.
void _line_add(char *scratch, const char *text)
{
    const size_t used = strnlen(scratch, kScratch);
    snprintf(scratch + used, kScratch - used, "%s", text);
}

// The coding's section: a line of its states by name, then a line of the
// alarms that are set, or NORMAL.
i32 _coding_alm_get(u32 chip_id, const port_where &w, u32 code, port_info_buff *info, char *scratch)
{
    const alm_block &b = kAlmBlocks[code];
    const u32 index = pcs_index(code, w.mag);
    snprintf(scratch, kScratch, "%s\n ", b.title);
    for (const alm_state &st : b.states) {
        u32 v = 0;
        const i32 rc = reg_field_get(chip_id, b.reg, index, st.field, &v);
        if (rc != 0) {
            return rc;
        }
        _line_add(scratch, " ");
        _line_add(scratch, st.name);
        _line_add(scratch, " ");
        _line_add(scratch, v < st.names.size() ? st.names[v] : "INVALID");
    }
    _line_add(scratch, "\n ");
    bool any = false;
    for (const alm_bit &a : b.bits) {
        u32 v = 0;
        const i32 rc = reg_field_get(chip_id, b.reg, index, a.field, &v);
        if (rc != 0) {
            return rc;
        }
        if (v != 0) {
            _line_add(scratch, " ");
            _line_add(scratch, a.name);
            any = true;
        }
    }
    _line_add(scratch, any ? "\n" : " NORMAL\n");
    _buf_append(info, scratch);
    return 0;
}

// The clock check's result and its lost-clock alarms; `clear` clears the
// alarms (a write of one clears a bit of the status word).
i32 _clk_delta_report(u32 chip_id, u32 lport, const port_where &w, u32 clear, port_info_buff *info, char *scratch)
{
    port_clk_delta d{};
    i32 rc = _csl_atolreef_clk_delta_result_get(chip_id, lport, &d);
    if (rc != 0) {
        return rc;
    }
    snprintf(scratch, kScratch, "clk-delta\n  rx_sign %u rx_delta %u tx_sign %u tx_delta %u\n", d.rx_sign,
             d.rx_delta, d.tx_sign, d.tx_delta);
    _buf_append(info, scratch);
    u32 rx_lost = 0, tx_lost = 0;
    rc = reg_field_get(chip_id, cib_pcs_glb_int_stat, w.mag, cib_f_rx_clk_lost_int, &rx_lost);
    if (rc == 0) rc = reg_field_get(chip_id, cib_pcs_glb_int_stat, w.mag, cib_f_tx_clk_lost_int, &tx_lost);
    if (rc != 0) {
        return rc;
    }
    snprintf(scratch, kScratch, "clk-delta-alarm\n  rx_clk_lost %u tx_clk_lost %u\n", rx_lost, tx_lost);
    _buf_append(info, scratch);
    if (clear && (rx_lost || tx_lost)) {
        rc = reg_write(chip_id, cib_pcs_glb_int_stat, w.mag,
                       {{cib_f_rx_clk_lost_int, rx_lost}, {cib_f_tx_clk_lost_int, tx_lost}});
    }
    return rc;
}

} // namespace

extern "C" {

i32 _csl_atolreef_clk_delta_result_get(u32 chip_id, u32 lport, port_clk_delta *delta)
{
    if (delta == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    port_where w{};
    i32 rc = port_where_get(chip_id, lport, &w);
    port_clk_delta d{};
    if (rc == 0) rc = reg_field_get(chip_id, cib_pcs_glb_clk_sds_rx_delta, w.mag, cib_f_clk_sds_rx_sign, &d.rx_sign);
    if (rc == 0) rc = reg_field_get(chip_id, cib_pcs_glb_clk_sds_rx_delta, w.mag, cib_f_clk_sds_rx_delta, &d.rx_delta);
    if (rc == 0) rc = reg_field_get(chip_id, cib_pcs_glb_clk_sds_tx_delta, w.mag, cib_f_clk_sds_tx_sign, &d.tx_sign);
    if (rc == 0) rc = reg_field_get(chip_id, cib_pcs_glb_clk_sds_tx_delta, w.mag, cib_f_clk_sds_tx_delta, &d.tx_delta);
    if (rc == 0) {
        *delta = d;
    }
    return rc;
}

i32 _csl_atolreef_basic_info_get(u32 chip_id, u32 lport, port_info_buff *info)
{
    port_where w{};
    i32 rc = _buf_check(chip_id, lport, info);
    if (rc == 0) rc = port_where_get(chip_id, lport, &w);
    if (rc != 0) {
        return rc;
    }
    char line[96];
    const char *name = w.type < CSL_PORT_INTERFACE_NAMES ? interface_type_string[w.type] : "NULL";
    snprintf(line, sizeof(line), "%-10u%-16s%-10u%-16u\n", lport, name, w.mag, w.mac);
    _buf_append(info, line);
    return 0;
}

i32 _csl_atolreef_alm_info_get(u32 chip_id, u32 lport, u32 clear, port_info_buff *info)
{
    port_where w{};
    u32 code = 0;
    i32 rc = _buf_check(chip_id, lport, info);
    if (rc == 0) rc = port_where_get(chip_id, lport, &w);
    if (rc == 0) rc = mag_code_get(chip_id, w.type, &code);
    if (rc != 0) {
        return rc;
    }
    auto *scratch = static_cast<char *>(xsal_malloc(kScratch, "mac_dfx", SHR_MOD_PORT));
    if (scratch == nullptr) {
        return SHR_E_MEMORY;
    }
    u32 tx = 0, rx = 0;
    rc = reg_field_get(chip_id, cib_pcs_glb_txbuf_alm, w.mag, cib_f_txbuf_alm, &tx);
    if (rc == 0) rc = reg_field_get(chip_id, cib_pcs_glb_rxbuf_alm, w.mag, cib_f_rxbuf_alm, &rx);
    if (rc == 0) {
        snprintf(scratch, kScratch, "buf_alm\n  txbuf_alm 0x%x rxbuf_alm 0x%x\ninter-cnt\n", tx, rx);
        _buf_append(info, scratch);
        rc = _inter_cnt_get(chip_id, lport, w, clear, info, scratch);
    }
    if (rc == 0) rc = _coding_alm_get(chip_id, w, code, info, scratch);
    if (rc == 0) rc = _clk_delta_report(chip_id, lport, w, clear, info, scratch);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "errcode = %d [%s]\n", rc, shr_errmsg(rc));
    }
    xsal_mem_free(scratch);
    return rc;
}

} // extern "C"
