// atolreef's SerDes driver: register access of the two macros, bring-up
// from power-on, rate change, PLL power, resets, and the driver table.
// The sequences are the macro's: the order of the steps, the waits and the
// values are what the lanes need.
#include <cstdio>
#include <cstring>

#include <tide/property.h>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "csl/reef/driver/serdes/csl_atolreef_serdes_int.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "hal/hal_op/hal.h"

using namespace tide::serdes;

extern "C" {
csl_atolreef_serdes_db *g_csl_atolreef_serdes_db[SHR_MAX_CHIPS];
}

namespace {

constexpr u32 k_macro_ofs_lo = 0x1000, k_macro_ofs_hi = 0x2000;
constexpr u32 k_lane_space = 1u << ATOLREEF_SDS_LANE_SHIFT;

// The facts of speed ids 11 to 20, in order.
constexpr speed_fact k_speed_facts[] = {
    {kRate1p25, 0, 0},   {kRate3p125, 1, 2}, {kRate5, 0, 0},  {kRate10, 0, 0}, {kRate10p3125, 1, 1},
    {kRate1p25, 1, 0},   {kRate3p125, 0, 2}, {kRate5, 1, 0},  {kRate10, 1, 0}, {kRate10p3125, 0, 1},
};

// One row of the lane table: the PLL's dividers for refclk 1 or 2 and for
// refclk 0, its post divider, the lane divider (0x2448[24:23]) and the
// 0x1018/0x10bc bit for refclk 1 or 2 and for 0.
struct lane_row {
    u32 fbdiv[2];
    u32 frac[2];
    u32 refdiv[2];
    u32 postdiv;
    u32 lane_div;
    u32 frac_bit[2];
};
constexpr lane_row k_lane_table[kRates] = {
    {{200, 32}, {0, 0}, {1, 1}, 0, 3, {1, 1}},        // 1.25G
    {{250, 40}, {0, 0}, {1, 1}, 0, 2, {1, 1}},        // 3.125G
    {{200, 32}, {0, 0}, {1, 1}, 0, 1, {1, 1}},        // 5G
    {{200, 32}, {0, 0}, {1, 1}, 0, 0, {1, 1}},        // 10G
    {{206, 33}, {0x400000, 0}, {1, 1}, 0, 0, {0, 1}}, // 10.3125G
};
constexpr const char *k_rate_names[kRates] = {"1.25Gbps", "3.125Gbps", "5Gbps", "10Gbps", "10.3125Gbps"};

// Column of the lane table for the chip's reference clock.
u32 _refclk_col(u32 chip_id)
{
    return control(chip_id)->refclk == 0 ? 1 : 0;
}

bool _macro_offset(u32 addr)
{
    return addr >= k_macro_ofs_lo && addr < k_macro_ofs_hi;
}

// The switch-core address of a register of the lane's macro.
u32 _addr_of(lane_place p, u32 offset, bool per_lane)
{
    return g_serdes_base_addr[p.macro] + (per_lane ? (offset | p.lane << ATOLREEF_SDS_LANE_SHIFT) : offset);
}

i32 _read(u32 chip_id, u32 addr, u32 *value)
{
    const i32 rc = csl_reg_general_read32(chip_id, HAL_BAR_LSW, addr, value);
    return rc != 0 ? failed(chip_id, rc) : 0;
}

i32 _write(u32 chip_id, u32 addr, u32 value)
{
    const i32 rc = csl_reg_general_write32(chip_id, HAL_BAR_LSW, addr, value);
    return rc != 0 ? failed(chip_id, rc) : 0;
}

constexpr u32 _mask(u32 start_bit, u32 end_bit)
{
    return (end_bit - start_bit == 31 ? 0xFFFFFFFFu : ((1u << (end_bit - start_bit + 1)) - 1)) << start_bit;
}

i32 _addr_bits_set(u32 chip_id, u32 addr, u32 start_bit, u32 end_bit, u32 data)
{
    u32 v = 0;
    i32 rc = _read(chip_id, addr, &v);
    if (rc == 0) {
        const u32 m = _mask(start_bit, end_bit);
        rc = _write(chip_id, addr, (v & ~m) | ((data << start_bit) & m));
    }
    return rc;
}

i32 _addr_bits_get(u32 chip_id, u32 addr, u32 start_bit, u32 end_bit, u32 *data)
{
    u32 v = 0;
    const i32 rc = _read(chip_id, addr, &v);
    if (rc == 0) {
        *data = (v & _mask(start_bit, end_bit)) >> start_bit;
    }
    return rc;
}

bool _fits(u32 value, u32 start_bit, u32 end_bit)
{
    return ((value << start_bit) & ~_mask(start_bit, end_bit)) == 0 && (value >> (end_bit - start_bit)) <= 1;
}

const csl_serdes_field_t *_field_of(u32 reg_name_id, u32 bit_name_id)
{
    if (reg_name_id >= ATOLREEF_SDS_REG_COUNT || bit_name_id >= g_atolreef_serdes_reg[reg_name_id].field_count) {
        return nullptr;
    }
    return &g_atolreef_serdes_reg[reg_name_id].fields[bit_name_id];
}

// Where the bits a step sets lie.
struct bit_place {
    u32 addr;
    u32 start_bit;
    u32 end_bit;
};

// A named field's place, checked: an unknown field -29 (PARAM), a value too
// wide -24; each with its log line.
i32 _field_place(u32 chip_id, u32 serdes_id, lane_place p, u32 reg_name_id, u32 bit_name_id, u32 data,
                 bit_place *out)
{
    const csl_serdes_field_t *f = _field_of(reg_name_id, bit_name_id);
    if (f == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id[%u] no field reg_name_id:%u bit_name_id:%u\n", serdes_id,
                    reg_name_id, bit_name_id);
        return SHR_E_PARAM;
    }
    if (!_fits(data, f->start_bit, f->end_bit)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES,
                    "serdes_id[%u]  field set val %#x  not support, reg_name_id:%u bit_name_id:%u max val %#x\n",
                    serdes_id, data, reg_name_id, bit_name_id, _mask(f->start_bit, f->end_bit) >> f->start_bit);
        return SHR_E_NOT_SUPPORT;
    }
    const csl_serdes_reg_t &r = g_atolreef_serdes_reg[reg_name_id];
    *out = {_addr_of(p, r.offset, r.per_lane != 0), f->start_bit, f->end_bit};
    return 0;
}

// Bits of a register by its offset in the lane's macro, checked: bad bit
// numbers -29 (INVALID_DATA), a bad offset PARAM, a value too wide -24.
i32 _bits_place(u32 chip_id, u32 serdes_id, lane_place p, u32 addr, u32 start_bit, u32 end_bit, u32 data,
                bit_place *out)
{
    if (start_bit > end_bit || end_bit > 31) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id[%u] addr:%#x bits %u:%u error\n", serdes_id, addr, end_bit,
                    start_bit);
        return SHR_E_INVALID_DATA;
    }
    if (addr % 4 != 0 || addr >= k_lane_space) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id[%u] addr:%#x out of range\n", serdes_id, addr);
        return SHR_E_PARAM;
    }
    if (!_fits(data, start_bit, end_bit)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id[%u]  bits set val %#x  not support, addr:%#x max val %#x\n",
                    serdes_id, data, addr, _mask(start_bit, end_bit) >> start_bit);
        return SHR_E_NOT_SUPPORT;
    }
    *out = {_addr_of(p, addr, !_macro_offset(addr)), start_bit, end_bit};
    return 0;
}

// The bits a field, bits or rbits step sets.
i32 _step_bits(u32 chip_id, u32 serdes_id, lane_place p, const step &s, bit_place *out)
{
    switch (s.kind) {
    case op::field:
        return _field_place(chip_id, serdes_id, p, s.a, s.b, s.value, out);
    case op::bits:
        return _bits_place(chip_id, serdes_id, p, s.a, s.c, s.b, s.value, out);
    default: {
        const csl_serdes_reg_t &r = g_atolreef_serdes_reg[s.a];
        *out = {_addr_of(p, r.offset, r.per_lane != 0), s.c, s.b};
        return 0;
    }
    }
}

// ---- bring-up pieces ------------------------------------------------------------------

// A PLL takes the dividers of `speed` for the chip's reference clock; with
// `force` also its feedback divider, which otherwise the power-up ramp
// reaches.
i32 _csl_atolreef_serdes_pll_set(u32 chip_id, u32 serdes_id, u32 speed, u32 force)
{
    speed_fact sf{};
    if (!speed_fact_of(speed, &sf)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id[%u] pll set speed:%u not support\n", chip_id,
                    serdes_id, speed);
        return SHR_E_NOT_SUPPORT;
    }
    const lane_row &row = k_lane_table[sf.rate];
    const u32 col = _refclk_col(chip_id);
    const lane_place p = place_of(serdes_id);
    db(chip_id)->pll_fbdiv_val[p.macro + ATOLREEF_SDS_MACROS * sf.pll] = row.fbdiv[col];
    i32 rc = 0;
    if (sf.pll == 0) {
        const step head[] = {SDS(pll0_cfg2, pll0_postdiv, row.postdiv)};
        const step fb[] = {SDS(pll0_cfg0, pll0_fbdiv, row.fbdiv[col])};
        const step tail[] = {SDS(pll0_cfg0, pll0_refdiv, row.refdiv[col]), SDS(pll0_cfg1, pll0_frac, row.frac[col]),
                             B1(0x1018, 4, row.frac_bit[col]), B1(0x1018, 5, row.frac_bit[col])};
        rc = run(chip_id, serdes_id, head);
        rc = rc == 0 && force ? run(chip_id, serdes_id, fb) : rc;
        rc = rc == 0 ? run(chip_id, serdes_id, tail) : rc;
    } else {
        const step head[] = {SDS(pll1_cfg1, pll1_postdiv, row.postdiv)};
        const step fb[] = {SDS(pll1_cfg0, pll1_fbdiv, row.fbdiv[col])};
        const step tail[] = {SDS(pll1_cfg0, pll1_refdiv, row.refdiv[col]), SDS(pll1_cfg2, pll1_frac, row.frac[col]),
                             B1(0x10bc, 6, row.frac_bit[col]), B1(0x10bc, 7, row.frac_bit[col])};
        rc = run(chip_id, serdes_id, head);
        rc = rc == 0 && force ? run(chip_id, serdes_id, fb) : rc;
        rc = rc == 0 ? run(chip_id, serdes_id, tail) : rc;
    }
    if (rc == 0) {
        vco_of(chip_id, serdes_id, sf.pll) = sf.vco;
    }
    return rc;
}

i32 _csl_atolreef_serdes_lane_set(u32 chip_id, u32 serdes_id, u32 speed)
{
    speed_fact sf{};
    if (!speed_fact_of(speed, &sf)) {
        return SHR_E_NOT_SUPPORT;
    }
    const u32 div = k_lane_table[sf.rate].lane_div;
    const u32 fx = info(chip_id, serdes_id).interface_type == PORT_INTERFACE_100BASE_FX;
    const u32 ten = sf.rate == kRate10 || sf.rate == kRate10p3125;
    const step steps[] = {
        B1(0x2444, 3, 1),
        SDS(lane_cfg0, pma_tx_wd_cfg, 4),   SDS(lane_cfg0, pma_tx_rate_cfg, 1), SDS(lane_cfg0, pma_rx_rate_cfg, 1),
        SDS(lane_cfg0, pma_rx_wd_cfg, 4),   SDS(lane_cfg1, pcs_wd_cfg_high, 1), SDS(lane_cfg1, pcs_wd_cfg_low, 4),
        SDS(lane_cfg2, phy_rate_cfg, 0),
        B(0x2448, 24, 23, div),             B1(0x2448, 25, sf.pll == 0),        B(0x244c, 24, 23, div),
        B1(0x244c, 25, sf.pll == 1),
        B1(0x728, 12, fx),                  B(0xaa4, 25, 24, fx ? 3 : 0),
        B1(0x2444, 11, ten),                B1(0x2450, 0, ten),
    };
    const i32 rc = run_records(chip_id, serdes_id, steps);
    if (rc == 0) {
        db(chip_id)->serdes_rate_val[serdes_id] = div;
        info(chip_id, serdes_id).pll_sel = sf.pll;
    }
    return rc;
}

// Analog defaults of the receiver by rate class.
struct afe_row {
    u8 lf_en_val, vga_cap_en_val, ctle_deq_val, vga_deq_lo, vga_deq_hi;
    u8 pi_bypass, rx_lf_en, pi_buf_rescal, pibuf_sr, pibuf_bwctrl, pi_rescal, lf_en_res;
};
constexpr afe_row k_afe_table[kRates] = {
    {0, 0, 0, 0, 0, 1, 1, 0, 15, 3, 4, 2},  // 1.25G
    {0, 7, 0, 1, 7, 1, 1, 0, 4, 1, 4, 0},   // 3.125G
    {0, 15, 0, 0, 5, 1, 1, 0, 4, 0, 4, 0},  // 5G
    {0, 15, 15, 3, 7, 1, 0, 7, 15, 3, 4, 0}, // 10G
    {0, 15, 15, 3, 7, 1, 0, 7, 15, 3, 4, 0}, // 10.3125G
};

i32 _csl_atolreef_serdes_afe_set(u32 chip_id, u32 serdes_id, u32 speed)
{
    const rate_class rate = rate_of(speed);
    const afe_row &r = k_afe_table[rate];
    const u32 ten = rate == kRate10 || rate == kRate10p3125;
    // One record per register, in the order the registers are first
    // named: the bypass controls before the values they let through.
    const step steps[] = {
        SDS(afe_cfg_n_1, rx_lf_en_bypass, 1), SDS(afe_cfg_n_1, vga_cap_en_bypass, 1),
        SDS(afe_cfg_n_1, rx_ctle_deq_enb_bypass, 1), SDS(afe_cfg_n_1, rx_lf_en_val, r.lf_en_val),
        SDS(afe_cfg_n_1, vga_cap_en_val, r.vga_cap_en_val), SDS(afe_cfg_n_1, rx_ctle_deq_enb_val, r.ctle_deq_val),
        SDS(eq_cfg1, rx_vga_deq_enb, 1), SDS(eq_cfg1, vga_gain_cfg_byp_ctrl, 1), SDS(eq_cfg1, ctle_cap_cfg_byp_ctrl, 1),
        SDS(eq_cfg1, ctle_res_cfg_byp_ctrl, 1), SDS(eq_cfg1, vga_res_cfg_byp_ctrl, 1), SDS(eq_cfg1, rx_lpf_res_sel, 1),
        SDS(eq_cfg1, rx_ctle_lpf_capsel, 1), SDS(eq_cfg1, ctle_leg_cfg_byp_ctrl, 1), SDS(eq_cfg1, rx_lz_ctle_en, 1),
        SDS(eq_cfg3, rx_vga_deq_enb, r.vga_deq_lo), SDS(eq_cfg3, ctle_cap_cfg_byp_val_high, 15),
        SDS(eq_cfg3, ctle_res_cfg_byp_val, 8), SDS(eq_cfg3, vga_res_cfg_byp_val, 15),
        SDS(eq_cfg2, rx_vga_deq_enb_h, r.vga_deq_hi), SDS(eq_cfg2, vga_gain_cfg_byp_val, 15),
        SDS(eq_cfg2, rx_lpf_res_sel, 4), SDS(eq_cfg2, rx_ctle_lpf_capsel, 0), SDS(eq_cfg2, ctle_leg_cfg_byp_val, 0),
        SDS(eq_cfg2, rx_lz_ctle_en_val, 0),
        // The common-mode buffer: on below 10G.
        SDS(afe_cfg_n_2, rx_en_cmllp_bypass, 1), SDS(afe_cfg_n_2, rx_en_cmllp_val, ten ? 0u : 1u),
        // The phase interpolator.
        SDS(pi_cfg3, pi_bypass, r.pi_bypass), SDS(pi_cfg3, rx_lf_en, r.rx_lf_en), SDS(pi_cfg3, lf_en_res, r.lf_en_res),
        SDS(pi_cfg4, rx_pi_buf_rescal, r.pi_buf_rescal), SDS(pi_cfg4, rx_pibuf_sr, r.pibuf_sr),
        SDS(pi_cfg4, rx_pibuf_bwctrl, r.pibuf_bwctrl), SDS(pi_cfg4, rx_pi_rescal, r.pi_rescal),
        // The bias block.
        SDS(rx_ptat_cfg_n_0, ctatbias_ss, 0), SDS(rx_ptat_cfg_n_0, ctatbias_ff, 0),
        SDS(rx_ptat_cfg_n_0, ctatbias_tt, 0), SDS(rx_ptat_cfg_n_0, ptatbias_ff, 31),
        SDS(rx_ptat_cfg_n_0, ptatbias_tt, 31), SDS(rx_ptat_cfg_n_0, ptatbias_ss, 31),
        SDS(bg_cfg0, bg_ical_sel_bypass, 1), SDS(bg_cfg0, bg_ical_sel_val, 31),
        SDS(bg_cfg1, bg_rcal_sel_bypass, 1), SDS(bg_cfg1, bg_rcal_sel_val, 31),
        SDS(bg_cfg2, bgcom_ofs_sel_bypass, 1), SDS(bg_cfg2, bgcom_ofs_sel_val, 0),
        SDS(afe_cfg_n_0, sum_i_sel, 1), SDS(afe_cfg_n_0, sum_res_vref_cal, 1), SDS(afe_cfg_n_0, ofsbias_sel, 1),
        SDS(tx_cfg_n_0, exswing_en, 1), SDS(tx_cfg_n_0, exswing_isel, 7),
    };
    return run_records(chip_id, serdes_id, steps);
}

i32 _csl_atolreef_serdes_bg_set(u32 chip_id, u32 serdes_id)
{
    const u32 pll1_frac = field_value(chip_id, serdes_id, SDS_FLD(pll1_cfg2, pll1_frac));
    const u32 pll0_frac = field_value(chip_id, serdes_id, SDS_FLD(pll0_cfg1, pll0_frac));
    const step steps[] = {
        B1(0x142c, 30, 1), B(0x1424, 25, 20, 0), W(0x10c4, pll1_frac != 0 ? 6192 : 6416),
        B(0x1050, 7, 0, pll0_frac != 0 ? 24 : 40), B(0x1014, 17, 16, 3), B(0x1420, 17, 0, 241214),
        B1(0x1000, 12, 1),
    };
    return run(chip_id, serdes_id, steps);
}

i32 _csl_atolreef_serdes_eq_set(u32 chip_id, u32 serdes_id, u32 speed)
{
    const rate_class rate = rate_of(speed);
    const step head[] = {
        W(0x674, 28671), W(0x704, 0x3C30FFF3), W(0x714, 0x1CFFFC00), W(0x170, 3), W(0x280, 0x45376540),
        SDS(eq_cfg1, rx_vga_deq_enb, 1), SDS(eq_cfg2, rx_vga_deq_enb_h, 7), SDS(eq_cfg3, rx_vga_deq_enb, 3),
        SDS(eq_cfg1, ctle_hf_cal_byp_ctrl, 1), SDS(eq_cfg3, rx_ctle_hf_cal, 7),
        SDS(eq_cfg1, ctle_leg_cfg_byp_ctrl, 1), SDS(eq_cfg2, ctle_leg_cfg_byp_val, 3),
        SDS(eq_cfg8, da_ctle_hf_gain_gray_bypass, 1),
        SDS(eq_cfg9, da_ctle_hf_gain_gray_bypass_val, csl_atolreef_grey_coding(10)),
        SDS(eq_cfg8, da_ctle_lf_gain_gray_bypass, 1),
        SDS(eq_cfg9, da_ctle_lf_gain_gray_bypass_val, csl_atolreef_grey_coding(2)),
        SDS(eq_cfg1, vga_gain_cfg_byp_ctrl, 1), SDS(eq_cfg1, rx_vga_stage12_ctrl, 0),
        SDS(eq_cfg2, vga_gain_cfg_byp_val, 31), SDS(eq_cfg1, rx_vga_capen, 1), SDS(eq_cfg3, rx_vga_capen, 5),
        B(0x8c4, 1, 0, 0),
        SDS(pi_cfg0, reg_phase_accum_adj_div_fin_gain1, 26), SDS(pi_cfg0, reg_phase_accum_adj_frq_fin_gain1, 26),
        SDS(pi_cfg0, reg_phase_accum_adj_phs_fin_gain1, 26),
    };
    i32 rc = run_records(chip_id, serdes_id, head);
    if (rc != 0) {
        return rc;
    }
    if (rate == kRate1p25) {
        const step slow[] = {SDS(pi_cfg0, reg_phase_accum_adj_div_fin_gain1, 3),
                             SDS(pi_cfg0, reg_phase_accum_adj_frq_fin_gain1, 3),
                             SDS(pi_cfg0, reg_phase_accum_adj_phs_fin_gain1, 3), SDS(pi_cfg1, reg_cdr_ferf_add, 0)};
        rc = run_records(chip_id, serdes_id, slow);
    } else {
        const i32 add = shr_property_port_get(chip_id, static_cast<int>(serdes_id), "serdes_cdr_freq_add_para", 0);
        const step ferf[] = {SDS(pi_cfg1, reg_cdr_ferf_add, static_cast<u32>(add))};
        rc = run_records(chip_id, serdes_id, ferf);
    }
    if (rc != 0) {
        return rc;
    }
    const u32 cdr = rate == kRate1p25 ? 25122 : (rate == kRate10 || rate == kRate10p3125 ? 23837 : 24608);
    const step tail[] = {
        W(0x8c4, 0x5FF00FF), SDS(full_eye_ctl2, full_eye_meas_time_low, 63),
        SDS(full_eye_ctl2, full_eye_meas_time_high, 63), B(0x15c, 14, 10, 0), B(0x15c, 24, 20, 0),
        B(0x160, 9, 5, 0), B(0x4, 26, 19, 170), B(0x8c4, 23, 0, 3925), B1(0x20, 29, 1), B(0xc, 19, 18, 1),
        B1(0x2a8, 6, 0), B1(0x2a8, 10, 0),
        B(0x424, 27, 12, cdr),
        B(0x10, 19, 18, 2), B1(0x10, 3, 0),
    };
    return run_records(chip_id, serdes_id, tail);
}

// ---- power ----------------------------------------------------------------------------

// The power of a PLL of the lane's macro: the feedback divider walks down
// to below its floor before the PLL is powered down, and walks up to its
// target after it is powered up, `step` at a time; then every lane of the
// macro on that PLL has its receive clock reset pulsed.
i32 _csl_atolreef_serdes_pll_power(u32 chip_id, u32 serdes_id, u32 pll, u32 down)
{
    const u32 step_size = control(chip_id)->refclk != 0 ? 10 : 1;
    const u32 floor = control(chip_id)->refclk != 0 ? 100 : 16;
    const u32 fb_reg = pll == 0 ? sds_reg_pll0_cfg0 : sds_reg_pll1_cfg0;
    const u32 fb_bit = pll == 0 ? sds_f_pll0_cfg0__pll0_fbdiv : sds_f_pll1_cfg0__pll1_fbdiv;
    const u32 en_bit = pll == 0 ? sds_f_pll0_cfg0__pll0_pd_byp_en : sds_f_pll1_cfg0__pll1_pd_byp_en;
    const u32 val_bit = pll == 0 ? sds_f_pll0_cfg0__pll0_pd_byp_val : sds_f_pll1_cfg0__pll1_pd_byp_val;
    const lane_place p = place_of(serdes_id);
    u32 fbdiv = 0;
    i32 rc = _csl_atolreef_serdes_field_get(chip_id, serdes_id, fb_reg, fb_bit, &fbdiv);
    if (down) {
        for (; rc == 0 && fbdiv >= floor; settle(chip_id, 10000)) {
            fbdiv -= step_size;
            rc = _csl_atolreef_serdes_field_set(chip_id, serdes_id, fb_reg, fb_bit, fbdiv);
        }
        const step off[] = {F(fb_reg, en_bit, 1), F(fb_reg, val_bit, 1)};
        return rc == 0 ? run(chip_id, serdes_id, off) : rc;
    }
    const step on[] = {F(fb_reg, val_bit, 0), F(fb_reg, en_bit, 0)};
    rc = rc == 0 ? run(chip_id, serdes_id, on) : rc;
    const u32 target = db(chip_id)->pll_fbdiv_val[p.macro + ATOLREEF_SDS_MACROS * pll];
    for (; rc == 0 && fbdiv < target; settle(chip_id, 10000)) {
        fbdiv += step_size;
        rc = _csl_atolreef_serdes_field_set(chip_id, serdes_id, fb_reg, fb_bit, fbdiv < target ? fbdiv : target);
    }
    rc = rc == 0 ? _csl_atolreef_serdes_field_set(chip_id, serdes_id, fb_reg, fb_bit, target) : rc;
    for (u32 lane = 0; rc == 0 && lane < ATOLREEF_SDS_LANES_PER_MACRO; lane++) {
        const u32 sid = serdes_of(p.macro, lane);
        u32 on_pll1 = 0;
        rc = _csl_atolreef_serdes_bits_get(chip_id, sid, 0x244c, 25, 25, &on_pll1);
        if (rc == 0 && on_pll1 == pll) {
            const u32 bit = lane + 9;
            const step pulse[] = {B1(0x1400, bit, 1), B1(0x1404, bit, 0), B1(0x1404, bit, 1), B1(0x1400, bit, 0),
                                  B1(0x1404, bit, 0)};
            rc = run(chip_id, serdes_id, pulse);
        }
    }
    return rc;
}

i32 _csl_atolreef_serdes_power_get(u32 chip_id, u32 serdes_id, serdes_power *power)
{
    auto down = [&](u32 reg, u32 en, u32 val) {
        return field_value(chip_id, serdes_id, reg, en) != 0 && field_value(chip_id, serdes_id, reg, val) != 0;
    };
    const bool tx = down(SDS_FLD(lane_cfg3, da_pd_tx_bypass), sds_f_lane_cfg3__da_pd_tx_bypass_val);
    const bool rx = down(SDS_FLD(lane_cfg3, da_pd_rx_bypass), sds_f_lane_cfg3__da_pd_rx_bypass_val);
    switch (power->dir) {
    case SERDES_POWER_TX:
        power->value = tx;
        return 0;
    case SERDES_POWER_RX:
        power->value = rx;
        return 0;
    case SERDES_POWER_TXRX:
        power->value = tx && rx;
        return 0;
    case SERDES_POWER_PLL0:
        power->value = down(SDS_FLD(pll0_cfg0, pll0_pd_byp_en), sds_f_pll0_cfg0__pll0_pd_byp_val);
        return 0;
    case SERDES_POWER_PLL1:
        power->value = down(SDS_FLD(pll1_cfg0, pll1_pd_byp_en), sds_f_pll1_cfg0__pll1_pd_byp_val);
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%d  set not support power type: %u \n", chip_id,
                    static_cast<int>(serdes_id), power->dir);
        return SHR_E_NOT_SUPPORT;
    }
}

// ---- rate change ----------------------------------------------------------------------

// The freeze of the PLL paths while a lane changes rate, and its release:
// (0x1400 bit, 0x1404 bit, value) in order, by whether the PLL's class
// stays, changes on PLL 1 or changes on PLL 0.
constexpr step k_freeze[3][4] = {
    {B1(0x1404, 8, 1), B1(0x1400, 8, 1), B1(0x1404, 13, 1), B1(0x1400, 18, 1)},
    {B1(0x1400, 18, 0), B1(0x1404, 13, 0), B1(0x1404, 8, 1), B1(0x1400, 8, 1)},
    {B1(0x1400, 8, 0), B1(0x1404, 8, 0), B1(0x1404, 13, 1), B1(0x1400, 18, 1)},
};
constexpr step k_unfreeze_same[] = {B1(0x1400, 8, 0), B1(0x1404, 8, 0), B1(0x1400, 18, 0), B1(0x1404, 13, 0)};
constexpr step k_unfreeze_pll1[] = {B1(0x1400, 8, 0), B1(0x1404, 8, 0)};
constexpr step k_unfreeze_pll0[] = {B1(0x1400, 18, 0), B1(0x1404, 13, 0)};

// The other lanes of the macro keep their receive clocks while one lane
// changes: `on` isolates, off gives them back.
i32 _rate_change_isolate(u32 chip_id, u32 serdes_id, bool on)
{
    const lane_place p = place_of(serdes_id);
    i32 rc = 0;
    for (u32 lane = 0; rc == 0 && lane < ATOLREEF_SDS_LANES_PER_MACRO; lane++) {
        const u32 bit = lane + 9;
        const u32 other = serdes_of(p.macro, lane);
        if (on) {
            const u32 v = lane == p.lane ? 0 : 1;
            const step iso[] = {B1(0x1404, bit, v), B1(0x1400, bit, v)};
            rc = run(chip_id, serdes_id, iso);
            if (rc == 0 && lane != p.lane) {
                const step hold[] = {B(0xbf4, 1, 0, 3)};
                rc = run(chip_id, other, hold);
            }
        } else if (lane == p.lane) {
            const step back[] = {B1(0x1404, bit, 0), B1(0x1400, bit, 1), S(5), B1(0x1400, bit, 0)};
            rc = run(chip_id, serdes_id, back);
        } else {
            const step back[] = {B1(0x1400, bit, 0), B1(0x1404, bit, 0)};
            const step free[] = {B(0xbf4, 1, 0, 0)};
            rc = run(chip_id, serdes_id, back);
            rc = rc == 0 ? run(chip_id, other, free) : rc;
        }
    }
    return rc;
}

// The PLL of the new speed at its VCO class: down, the new dividers, up,
// and a pulse of its path.
i32 _rate_change_pll(u32 chip_id, u32 serdes_id, u32 speed, const speed_fact &sf)
{
    serdes_power down{sf.pll == 1 ? SERDES_POWER_PLL1 : SERDES_POWER_PLL0, SERDES_POWER_DOWN};
    serdes_power up{down.dir, SERDES_POWER_UP};
    const u32 bit = sf.pll == 1 ? 18 : 8;
    i32 rc = _csl_atolreef_serdes_power_set(chip_id, serdes_id, &down);
    settle(chip_id, 5);
    rc = rc == 0 ? _csl_atolreef_serdes_pll_set(chip_id, serdes_id, speed, 0) : rc;
    settle(chip_id, 5);
    rc = rc == 0 ? _csl_atolreef_serdes_power_set(chip_id, serdes_id, &up) : rc;
    const step pulse[] = {S(100), B1(0x1400, bit, 1), S(100), B1(0x1400, bit, 0), S(100), S(200)};
    return rc == 0 ? run(chip_id, serdes_id, pulse) : rc;
}

// The lanes whose rate is 1.25G take their lane divider in two steps.
constexpr step k_slow_div_2[] = {B(0x2448, 24, 23, 2), B(0x244c, 24, 23, 2)};
constexpr step k_slow_div_3[] = {B(0x2448, 24, 23, 3), B(0x244c, 24, 23, 3)};

i32 _csl_atolreef_serdes_freq_set(u32 chip_id, u32 serdes_id, serdes_freq *freq)
{
    const u32 speed = freq->speed;
    speed_fact sf{};
    if (!speed_fact_of(speed, &sf)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id[%u] set freq: %u  not support\n", chip_id,
                    serdes_id, speed);
        return SHR_E_NOT_SUPPORT;
    }
    const bool limited = serdes_id <= 1 || serdes_id >= 6;
    if (db(chip_id)->speed_limit_set && limited && (sf.rate == kRate10 || sf.rate == kRate10p3125)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES,
                    "chip_id:%u serdes_id[%u] set freq: %u  lane 0/1/6/7 not support set speed > 5G\n", chip_id,
                    serdes_id, speed);
        return SHR_E_NOT_SUPPORT;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id[%u] set freq: %u width: %u\n", chip_id, serdes_id,
                speed, freq->width);
    const bool same = vco_of(chip_id, serdes_id, sf.pll) == sf.vco;
    const u32 how = same ? 0 : (sf.pll == 1 ? 1 : 2);
    const step head[] = {B1(0x1074, 30, 1), B1(0x1074, 31, 1)};
    const step hold_tx[] = {SDS(bist_cfg3, tx_soft_rstn_byp_val, 0), SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 1)};
    i32 rc = run(chip_id, serdes_id, head);
    rc = rc == 0 ? run(chip_id, serdes_id, k_freeze[how]) : rc;
    rc = rc == 0 ? _rate_change_isolate(chip_id, serdes_id, true) : rc;
    rc = rc == 0 ? run(chip_id, serdes_id, hold_tx) : rc;
    rc = rc == 0 && !same ? _rate_change_pll(chip_id, serdes_id, speed, sf) : rc;
    rc = rc == 0 ? _csl_atolreef_serdes_lane_set(chip_id, serdes_id, speed) : rc;
    settle(chip_id, 100);
    rc = rc == 0 ? _csl_atolreef_serdes_afe_set(chip_id, serdes_id, speed) : rc;
    rc = rc == 0 ? _csl_atolreef_serdes_bg_set(chip_id, serdes_id) : rc;
    rc = rc == 0 ? _csl_atolreef_serdes_eq_set(chip_id, serdes_id, speed) : rc;
    settle(chip_id, 100);
    if (rc == 0) {
        const std::span<const step> unfreeze = how == 0 ? std::span<const step>(k_unfreeze_same)
                                               : how == 1 ? std::span<const step>(k_unfreeze_pll1)
                                                          : std::span<const step>(k_unfreeze_pll0);
        rc = run(chip_id, serdes_id, unfreeze);
    }
    const step lane_pulse[] = {B1(0x2404, 31, 1), S(100), B1(0x2404, 31, 0), S(100)};
    rc = rc == 0 ? run(chip_id, serdes_id, lane_pulse) : rc;
    rc = rc == 0 ? _rate_change_isolate(chip_id, serdes_id, false) : rc;
    const step release[] = {
        SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 0), SDS(bist_cfg3, tx_soft_rstn_byp_val, 1), S(10000),
        SDS(lane_cfg1, pcs_wd_cfg_high, 0), S(5000), SDS(lane_cfg1, pcs_wd_cfg_high, 1), S(5000),
        B1(0x460, 11, 1), S(5000), B1(0x460, 11, 0),
    };
    rc = rc == 0 ? run(chip_id, serdes_id, release) : rc;
    rc = rc == 0 ? _csl_atolreef_serdes_rx_para_save(chip_id, serdes_id) : rc;
    if (rc != 0) {
        return rc;
    }
    info(chip_id, serdes_id).speed = speed;
    if (sf.rate == kRate1p25) {
        rc = run(chip_id, serdes_id, k_slow_div_2);
        settle(chip_id, 10000);
        rc = rc == 0 ? run(chip_id, serdes_id, k_slow_div_3) : rc;
    }
    if (rc == 0) {
        vco_of(chip_id, serdes_id, sf.pll) = sf.vco;
    }
    return rc;
}

i32 _csl_atolreef_serdes_freq_get(u32 chip_id, u32 serdes_id, serdes_freq *freq)
{
    freq->speed = info(chip_id, serdes_id).speed;
    freq->width = 0;
    return 0;
}

// ---- resets ---------------------------------------------------------------------------

i32 _por_resetn_set(u32 chip_id, u32 macro, u32 value)
{
    cib_phy_ctrl_por_resetn_t r{static_cast<u8>(value)};
    u8 mask[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    const i32 rc = csl_reef_cib_phy_ctrl_por_resetn_set(chip_id, macro, &r, mask);
    return rc != 0 ? failed(chip_id, rc) : 0;
}

constexpr step k_phy_hold[] = {B1(0xaa0, 1, 1), B1(0xaa0, 21, 1)};
constexpr step k_phy_free[] = {B1(0xaa0, 1, 0)};
constexpr step k_adapt_kick_on[] = {B1(0xaa0, 26, 1)};
constexpr step k_adapt_kick_off[] = {B1(0xaa0, 26, 0)};

// The power-on reset of the macros of `macros` (a bit per macro), with the
// lanes' receivers held around it.
i32 _phy_por_reset(u32 chip_id, u32 macros)
{
    i32 rc = 0;
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = (macros >> m & 1) != 0 ? run_macro_lanes(chip_id, m, k_phy_hold) : 0;
    }
    settle(chip_id, 10000);
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = (macros >> m & 1) != 0 ? _por_resetn_set(chip_id, m, 0) : 0;
    }
    settle(chip_id, 100000);
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = (macros >> m & 1) != 0 ? _por_resetn_set(chip_id, m, 1) : 0;
    }
    settle(chip_id, 100000);
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = (macros >> m & 1) != 0 ? run_macro_lanes(chip_id, m, k_phy_free) : 0;
    }
    return rc;
}

bool _rx_down(u32 chip_id, u32 serdes_id)
{
    return field_value(chip_id, serdes_id, SDS_FLD(lane_cfg3, da_pd_rx_bypass)) != 0 &&
           field_value(chip_id, serdes_id, SDS_FLD(lane_cfg3, da_pd_rx_bypass_val)) != 0;
}

bool _checker_runs(u32 chip_id, u32 serdes_id)
{
    return field_value(chip_id, serdes_id, SDS_FLD(bist_cfg1, rx_bist_en_byp_ctrl)) != 0 &&
           field_value(chip_id, serdes_id, SDS_FLD(bist_cfg1, rx_bist_en_byp_val)) != 0;
}

i32 _csl_atolreef_serdes_reset(u32 chip_id, u32 serdes_id, u32 mode)
{
    switch (mode) {
    case SERDES_RESET_TX: {
        const step steps[] = {SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 1), SDS(bist_cfg3, tx_soft_rstn_byp_val, 0),
                              S(1000), SDS(bist_cfg3, tx_soft_rstn_byp_val, 1),
                              SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 0), S(1000)};
        return run(chip_id, serdes_id, steps);
    }
    case SERDES_RESET_RX: {
        i32 rc = 0;
        if (!_rx_down(chip_id, serdes_id)) {
            const step wd[] = {SDS(lane_cfg1, pcs_wd_cfg_high, 0), S(5000), SDS(lane_cfg1, pcs_wd_cfg_high, 1),
                               S(5000)};
            rc = run(chip_id, serdes_id, wd);
        }
        if (rc == 0 && _checker_runs(chip_id, serdes_id)) {
            const step bist[] = {SDS(bist_cfg1, rx_bist_en_byp_val, 0), SDS(bist_cfg1, rx_bist_en_byp_ctrl, 0),
                                 S(1000), SDS(bist_cfg1, rx_bist_en_byp_ctrl, 1),
                                 SDS(bist_cfg1, rx_bist_en_byp_val, 1)};
            rc = run(chip_id, serdes_id, bist);
        }
        return rc;
    }
    case SERDES_RESET_PHY: {
        const lane_place p = place_of(serdes_id);
        i32 rc = _phy_por_reset(chip_id, 1u << p.macro);
        settle(chip_id, 10000);
        for (u32 lane = 0; rc == 0 && lane < ATOLREEF_SDS_LANES_PER_MACRO; lane++) {
            const u32 sid = serdes_of(p.macro, lane);
            if (rate_of(info(chip_id, sid).speed) == kRate1p25 && info(chip_id, sid).speed != SERDES_SPEED_UNUSED) {
                rc = run(chip_id, sid, k_slow_div_2);
                settle(chip_id, 10000);
                rc = rc == 0 ? run(chip_id, sid, k_slow_div_3) : rc;
                settle(chip_id, 10000);
            }
            const step kick[] = {B1(0xaa0, 26, 1), S(10000), B1(0xaa0, 26, 0)};
            rc = rc == 0 ? run(chip_id, sid, kick) : rc;
        }
        return rc;
    }
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u reset mod: %u error \n", chip_id, serdes_id,
                    mode);
        return SHR_E_NOT_SUPPORT;
    }
}

i32 _reset_half(u32 chip_id, u32 serdes_id, u32 mode, bool hold)
{
    switch (mode) {
    case SERDES_RESET_TX: {
        const step keep[] = {SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 1), SDS(bist_cfg3, tx_soft_rstn_byp_val, 0)};
        const step free[] = {SDS(bist_cfg3, tx_soft_rstn_byp_val, 1), SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 0)};
        return hold ? run(chip_id, serdes_id, keep) : run(chip_id, serdes_id, free);
    }
    case SERDES_RESET_RX: {
        const step wd[] = {SDS(lane_cfg1, pcs_wd_cfg_high, hold ? 0u : 1u)};
        return run(chip_id, serdes_id, wd);
    }
    case SERDES_RESET_PHY: {
        const u32 macro = place_of(serdes_id).macro;
        if (hold) {
            const i32 rc = run_macro_lanes(chip_id, macro, k_phy_hold);
            return rc == 0 ? _por_resetn_set(chip_id, macro, 0) : rc;
        }
        const i32 rc = _por_resetn_set(chip_id, macro, 1);
        return rc == 0 ? run_macro_lanes(chip_id, macro, k_phy_free) : rc;
    }
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u reset mod: %u error \n", chip_id, serdes_id,
                    mode);
        return SHR_E_NOT_SUPPORT;
    }
}

// ---- bring-up -------------------------------------------------------------------------

// Step 1: each lane's rate, PLL and enable from the properties of its MAG.
i32 _init_lanes_from_properties(u32 chip_id)
{
    for (u32 sid = 0; sid < ATOLREEF_SDS_LANES; sid++) {
        const i32 type = shr_property_port_get(chip_id, static_cast<int>(sid), "mag_interface_type", 0);
        if (type < 0 || type > PORT_INTERFACE_10G_QXGMII) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u  not support interface: %u \n", chip_id,
                        sid, static_cast<u32>(type));
            return SHR_E_NOT_SUPPORT;
        }
        csl_serdes_info &row = info(chip_id, sid);
        row.interface_type = static_cast<u32>(type);
        row.speed = g_atolreef_port_protocol_to_speed_id[type];
        const i32 pll_dflt = row.speed == SERDES_SPEED_3P125G_PLL1 || row.speed == SERDES_SPEED_10P3125G_PLL1;
        row.pll_sel = static_cast<u32>(shr_property_port_get(chip_id, static_cast<int>(sid), "serdes_freq_pll_sel",
                                                             pll_dflt));
        row.enable = static_cast<u32>(shr_property_port_get(chip_id, static_cast<int>(sid), "serdes_enable", 1));
        row.rx_adapt = 0;
        vco_of(chip_id, sid, 0) = CSL_SERDES_VCO_NONE;
        vco_of(chip_id, sid, 1) = CSL_SERDES_VCO_NONE;
    }
    return 0;
}

bool _lane_used(u32 chip_id, u32 serdes_id)
{
    const csl_serdes_info &row = info(chip_id, serdes_id);
    return row.enable != 0 && row.speed != SERDES_SPEED_UNUSED;
}

// Step 5: the reference clock to both macros.
i32 _init_refclk_route(u32 chip_id)
{
    const u32 refclk = control(chip_id)->refclk;
    const u32 m0 = serdes_of(0, 0), m1 = serdes_of(1, 0);
    if (refclk == 1) {
        const step both[] = {B(0x1004, 3, 1, 0), B1(0x1008, 0, 0)};
        const i32 rc = run(chip_id, m0, both);
        return rc == 0 ? run(chip_id, m1, both) : rc;
    }
    const step m0_steps[] = {B(0x1004, 3, 1, 7)};
    i32 rc = run(chip_id, m0, m0_steps);
    if (refclk == 0 || refclk == 2) {
        const step m1_steps[] = {B(0x1004, 3, 1, 0), B1(0x1008, 0, 1)};
        return rc == 0 ? run(chip_id, m1, m1_steps) : rc;
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip:%u not support ref-clk:%u set \n", chip_id, refclk);
    return rc == 0 ? run(chip_id, m1, m0_steps) : rc;
}

// Step 7: the speed id of the PLL the lane selects.
i32 _init_speed_of_pll(u32 chip_id, u32 serdes_id, u32 *speed)
{
    const csl_serdes_info &row = info(chip_id, serdes_id);
    if (row.pll_sel > 1 || row.speed > SERDES_SPEED_UNUSED) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u ,pll:%u speed:%u init get fail\n", chip_id,
                    serdes_id, row.pll_sel, row.speed);
        return SHR_E_PARAM;
    }
    u32 s = row.speed;
    if (row.pll_sel == 1 && (s == SERDES_SPEED_1P25G_PLL0 || s == SERDES_SPEED_5G_PLL0 || s == SERDES_SPEED_10G_PLL0)) {
        s += SERDES_SPEED_1P25G_PLL1 - SERDES_SPEED_1P25G_PLL0;
    } else if (row.pll_sel == 0 && s == SERDES_SPEED_3P125G_PLL1) {
        s = SERDES_SPEED_3P125G_PLL0;
    } else if (row.pll_sel == 0 && s == SERDES_SPEED_10P3125G_PLL1) {
        s = SERDES_SPEED_10P3125G_PLL0;
    }
    *speed = s;
    return 0;
}

// Step 15: polarity and transmit emphasis from the properties.
i32 _init_lane_pn_emphasis(u32 chip_id, u32 serdes_id)
{
    const i32 pn_type = shr_property_alone_lane_pn_type_get(chip_id, serdes_id);
    i32 rc = 0;
    if (pn_type >= 0 && pn_type <= 3) {
        serdes_pn rx{SERDES_DIR_RX, (pn_type & 1) != 0 ? 1u : 0u};
        serdes_pn tx{SERDES_DIR_TX, (pn_type & 2) != 0 ? 1u : 0u};
        rc = _csl_atolreef_serdes_pn_set(chip_id, serdes_id, &rx);
        rc = rc == 0 ? _csl_atolreef_serdes_pn_set(chip_id, serdes_id, &tx) : rc;
    } else if (pn_type != -1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u init pn set not support type: %u \n", chip_id,
                    serdes_id, static_cast<u32>(pn_type));
    }
    if (rc != 0) {
        return rc;
    }
    serdes_emphasis e{};
    csl_atolreef_serdes_property_emphasis(chip_id, serdes_id, info(chip_id, serdes_id).speed, &e);
    return _csl_atolreef_serdes_emphasis_set(chip_id, serdes_id, &e);
}

// Steps 16 to 19 on all lanes: the slow lanes' dividers, the receive
// watchdog, the receive path's restart, the adaptation's kick.
i32 _init_lanes_settle(u32 chip_id)
{
    i32 rc = 0;
    for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
        rc = rate_of(info(chip_id, sid).speed) == kRate1p25 && _lane_used(chip_id, sid)
                 ? run(chip_id, sid, k_slow_div_2)
                 : 0;
    }
    settle(chip_id, 10000);
    for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
        rc = rate_of(info(chip_id, sid).speed) == kRate1p25 && _lane_used(chip_id, sid)
                 ? run(chip_id, sid, k_slow_div_3)
                 : 0;
    }
    // Each phase: per lane save the receiver and set, wait, per lane clear.
    struct phase {
        step set, clear;
        u32 wait;
        bool save;
    };
    const phase phases[] = {
        {SDS(lane_cfg1, pcs_wd_cfg_high, 0), SDS(lane_cfg1, pcs_wd_cfg_high, 1), 5000, true},
        {B1(0x460, 11, 1), B1(0x460, 11, 0), 5000, true},
        {k_adapt_kick_on[0], k_adapt_kick_off[0], 10000, false},
    };
    for (const phase &ph : phases) {
        for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
            rc = ph.save ? _csl_atolreef_serdes_rx_para_save(chip_id, sid) : 0;
            rc = rc == 0 ? run(chip_id, sid, std::span<const step>(&ph.set, 1)) : rc;
        }
        settle(chip_id, ph.wait);
        for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
            rc = run(chip_id, sid, std::span<const step>(&ph.clear, 1));
        }
    }
    for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
        const step adapt_all[] = {B(0x638, 26, 0, 0x7FFFFFF)};
        rc = run(chip_id, sid, adapt_all);
    }
    return rc;
}

i32 _init_pll_and_lanes(u32 chip_id)
{
    i32 rc = 0;
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = _csl_atolreef_serdes_pll_set(chip_id, serdes_of(m, 0), SERDES_SPEED_10G_PLL0, 1);
        rc = rc == 0 ? _csl_atolreef_serdes_pll_set(chip_id, serdes_of(m, 0), SERDES_SPEED_10P3125G_PLL1, 1) : rc;
    }
    for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
        if (!_lane_used(chip_id, sid)) {
            continue;
        }
        u32 speed = 0;
        rc = _init_speed_of_pll(chip_id, sid, &speed);
        if (rc == 0) {
            info(chip_id, sid).speed = speed;
            rc = _csl_atolreef_serdes_pll_set(chip_id, sid, speed, 1);
        }
        rc = rc == 0 ? _csl_atolreef_serdes_lane_set(chip_id, sid, speed) : rc;
    }
    return rc;
}

i32 _init_analog_and_power(u32 chip_id)
{
    i32 rc = 0;
    constexpr u32 idle_reg[] = {cib_phy_ctrl_srds_tx_elecidle_l0, cib_phy_ctrl_srds_tx_elecidle_l1,
                                cib_phy_ctrl_srds_tx_elecidle_l2, cib_phy_ctrl_srds_tx_elecidle_l3};
    constexpr u32 idle_field[] = {cib_f_srds_tx_elecidle_l0, cib_f_srds_tx_elecidle_l1, cib_f_srds_tx_elecidle_l2,
                                  cib_f_srds_tx_elecidle_l3};
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        for (u32 lane = 0; rc == 0 && lane < ATOLREEF_SDS_LANES_PER_MACRO; lane++) {
            rc = cib_field_set(chip_id, cib_module_phy_ctrl, idle_reg[lane], m, idle_field[lane], 0);
        }
    }
    for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
        const u32 speed = info(chip_id, sid).speed;
        rc = _csl_atolreef_serdes_afe_set(chip_id, sid, speed);
        rc = rc == 0 ? _csl_atolreef_serdes_bg_set(chip_id, sid) : rc;
        rc = rc == 0 ? _csl_atolreef_serdes_eq_set(chip_id, sid, speed) : rc;
        serdes_power pw{SERDES_POWER_TXRX, _lane_used(chip_id, sid) ? SERDES_POWER_UP : SERDES_POWER_DOWN};
        rc = rc == 0 ? _csl_atolreef_serdes_power_set(chip_id, sid, &pw) : rc;
    }
    return rc;
}

// Step 11: the first lane in use feeds 8K clocks 0 and 1.
i32 _init_8k_clocks(u32 chip_id)
{
    for (u32 sid = 0; sid < ATOLREEF_SDS_LANES; sid++) {
        if (!_lane_used(chip_id, sid)) {
            continue;
        }
        i32 rc = 0;
        for (u32 clk = 0; rc == 0 && clk < 2; clk++) {
            rc = cib_field_set(chip_id, cib_module_lsw_hreg, cib_lsw_hreg_srds_8k_detect_cfg, 0, cib_f_srds_detect_8k,
                               1);
            rc = rc == 0 ? cib_field_set(chip_id, cib_module_lsw_hreg, cib_lsw_hreg_srds_8k_detect_cfg, 0,
                                         cib_f_srds_8k_ppm_en, 1)
                         : rc;
            rc = rc == 0 ? _csl_atolreef_serdes_8k_clk_program(chip_id, sid, clk) : rc;
            settle(chip_id, 20);
            rc = rc == 0 ? _csl_atolreef_serdes_8k_clk_enable(chip_id, clk, 1) : rc;
        }
        return rc;
    }
    return 0;
}

i32 _init_all(u32 chip_id)
{
    i32 rc = _init_lanes_from_properties(chip_id);
    if (rc != 0) {
        return rc;
    }
    csl_serdes_control_t *ctl = control(chip_id);
    if (!ctl->refclk_chosen) {
        ctl->refclk = static_cast<u32>(shr_property_get(chip_id, "serdes_pll_clk_type", 1));
    }
    db(chip_id)->speed_limit_set = 1;
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = _por_resetn_set(chip_id, m, 0);
    }
    rc = rc == 0 ? _init_refclk_route(chip_id) : rc;
    rc = rc == 0 ? _init_pll_and_lanes(chip_id) : rc;
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = _por_resetn_set(chip_id, m, 1);
    }
    rc = rc == 0 ? _init_analog_and_power(chip_id) : rc;
    rc = rc == 0 ? _init_8k_clocks(chip_id) : rc;
    const step pcs_on[] = {B1(0x1074, 30, 1), B1(0x1074, 31, 1)};
    for (u32 m = 0; rc == 0 && m < ATOLREEF_SDS_MACROS; m++) {
        rc = run(chip_id, serdes_of(m, 0), pcs_on);
    }
    rc = rc == 0 ? _csl_atolreef_serdes_all_offset_calibrate(chip_id) : rc;
    if (rc == 0) {
        SHR_LOG_INF(chip_id, SHR_MOD_SERDES, "chip_id:%u all phy por reset\n", chip_id);
        rc = _phy_por_reset(chip_id, (1u << ATOLREEF_SDS_MACROS) - 1);
    }
    for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
        rc = _init_lane_pn_emphasis(chip_id, sid);
    }
    return rc == 0 ? _init_lanes_settle(chip_id) : rc;
}

i32 _csl_atolreef_serdes_refclk_chose_set(u32 chip_id, u32 serdes_id, u32 refclk)
{
    if (refclk > 2) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u refclk:%u not support\n", chip_id, serdes_id,
                    refclk);
        return SHR_E_PARAM;
    }
    control(chip_id)->refclk = refclk;
    control(chip_id)->refclk_chosen = 1;
    return 0;
}

i32 _csl_atolreef_serdes_reset_slot(u32 chip_id, u32 serdes_id, u32 mode)
{
    return _csl_atolreef_serdes_reset(chip_id, serdes_id, mode);
}

} // namespace

// ---- shared pieces ------------------------------------------------------------------------

namespace tide::serdes {

lane_place place_of(u32 serdes_id)
{
    const u32 v = g_serdes_lane_order[serdes_id % ATOLREEF_SDS_LANES];
    return {v / ATOLREEF_SDS_LANES_PER_MACRO, v % ATOLREEF_SDS_LANES_PER_MACRO};
}

u32 serdes_of(u32 macro, u32 lane)
{
    const u32 v = macro * ATOLREEF_SDS_LANES_PER_MACRO + lane;
    for (u32 sid = 0; sid < ATOLREEF_SDS_LANES; sid++) {
        if (g_serdes_lane_order[sid] == v) {
            return sid;
        }
    }
    return 0;
}

bool speed_fact_of(u32 speed, speed_fact *out)
{
    if (speed < SERDES_SPEED_FIRST || speed > SERDES_SPEED_LAST) {
        return false;
    }
    *out = k_speed_facts[speed - SERDES_SPEED_FIRST];
    return true;
}

rate_class rate_of(u32 speed)
{
    speed_fact sf{};
    return speed_fact_of(speed, &sf) ? sf.rate : kRate10;
}

const char *rate_name(rate_class rate)
{
    return rate < kRates ? k_rate_names[rate] : "";
}

csl_serdes_control_t *control(u32 chip_id)
{
    return csl_serdes_control_get(chip_id);
}

csl_atolreef_serdes_db *db(u32 chip_id)
{
    return g_csl_atolreef_serdes_db[chip_id];
}

csl_serdes_info &info(u32 chip_id, u32 serdes_id)
{
    return control(chip_id)->info[serdes_id];
}

u32 &vco_of(u32 chip_id, u32 serdes_id, u32 pll)
{
    csl_serdes_info &row = info(chip_id, place_of(serdes_id).macro);
    return pll == 0 ? row.pll0_vco : row.pll1_vco;
}

void settle(u32 chip_id, u32 usec)
{
    hal_usleep(chip_id, usec);
}

i32 failed(u32 chip_id, i32 rc)
{
    SHR_LOG_ERRCODE(chip_id, rc);
    return rc;
}

i32 run(u32 chip_id, u32 serdes_id, std::span<const step> steps)
{
    const lane_place p = place_of(serdes_id);
    for (const step &s : steps) {
        i32 rc = 0;
        switch (s.kind) {
        case op::field:
            rc = _csl_atolreef_serdes_field_set(chip_id, serdes_id, s.a, s.b, s.value);
            break;
        case op::bits:
            rc = _csl_atolreef_serdes_bits_set(chip_id, serdes_id, s.a, s.c, s.b, s.value);
            break;
        case op::rbits: {
            const csl_serdes_reg_t &r = g_atolreef_serdes_reg[s.a];
            rc = _addr_bits_set(chip_id, _addr_of(p, r.offset, r.per_lane != 0), s.c, s.b, s.value);
            break;
        }
        case op::word:
            rc = _write(chip_id, _addr_of(p, s.a, !_macro_offset(s.a)), s.value);
            break;
        case op::sleep:
            settle(chip_id, s.value);
            break;
        }
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

i32 run_records(u32 chip_id, u32 serdes_id, std::span<const step> steps)
{
    const lane_place p = place_of(serdes_id);
    auto mergeable = [](const step &s) { return s.kind != op::word && s.kind != op::sleep; };
    size_t i = 0;
    while (i < steps.size()) {
        if (!mergeable(steps[i])) {
            const i32 rc = run(chip_id, serdes_id, steps.subspan(i, 1));
            if (rc != 0) {
                return rc;
            }
            i++;
            continue;
        }
        // The longest run of steps from i on one register, no bit twice.
        u32 addr = 0, mask = 0, bits = 0;
        size_t j = i;
        for (; j < steps.size() && mergeable(steps[j]); j++) {
            bit_place b{};
            const i32 rc = _step_bits(chip_id, serdes_id, p, steps[j], &b);
            if (rc != 0) {
                return rc;
            }
            const u32 m = _mask(b.start_bit, b.end_bit);
            if (j > i && (b.addr != addr || (mask & m) != 0)) {
                break;
            }
            addr = b.addr;
            mask |= m;
            bits = (bits & ~m) | ((steps[j].value << b.start_bit) & m);
        }
        u32 v = 0;
        i32 rc = _read(chip_id, addr, &v);
        rc = rc == 0 ? _write(chip_id, addr, (v & ~mask) | bits) : rc;
        if (rc != 0) {
            return rc;
        }
        i = j;
    }
    return 0;
}

i32 run_macro_lanes(u32 chip_id, u32 macro, std::span<const step> steps)
{
    i32 rc = 0;
    for (u32 lane = 0; rc == 0 && lane < ATOLREEF_SDS_LANES_PER_MACRO; lane++) {
        rc = run(chip_id, serdes_of(macro, lane), steps);
    }
    return rc;
}

u32 field_value(u32 chip_id, u32 serdes_id, u32 reg, u32 field)
{
    u32 v = 0;
    return _csl_atolreef_serdes_field_get(chip_id, serdes_id, reg, field, &v) == 0 ? v : 0;
}

i32 cib_field_set(u32 chip_id, u32 module_id, u32 reg_id, u32 index, u32 field_id, u32 value)
{
    CslRegLock hold(chip_id, module_id);
    const u32 id = reg_id | index << 20;
    u32 word = 0;
    i32 rc = csl_reef_reg_get_u32(chip_id, id, &word);
    rc = rc == 0 ? csl_reg_field32_set_to_data(chip_id, reinterpret_cast<u8 *>(&word), reg_id, value, field_id) : rc;
    rc = rc == 0 ? csl_reef_reg_set_u32(chip_id, id, word) : rc;
    return rc != 0 ? failed(chip_id, rc) : 0;
}

i32 cib_field_get(u32 chip_id, u32 reg_id, u32 index, u32 field_id, u32 *value)
{
    u32 word = 0;
    i32 rc = csl_reef_reg_get_u32(chip_id, reg_id | index << 20, &word);
    rc = rc == 0 ? csl_reg_field32_get_from_data(chip_id, reinterpret_cast<u8 *>(&word), reg_id, value, field_id)
                 : rc;
    return rc != 0 ? failed(chip_id, rc) : 0;
}

void text_buf::add(const char *format, ...)
{
    if (rc_ != 0 || buf_ == nullptr || len_ == 0) {
        return;
    }
    va_list args;
    va_start(args, format);
    const int n = vsnprintf(buf_ + used_, len_ - used_, format, args);
    va_end(args);
    if (n < 0 || static_cast<u64>(n) >= len_ - used_) {
        buf_[used_] = '\0';
        SHR_LOG_ERR(chip_, SHR_MOD_SERDES, "sal_strcat ret = %u fail\n", 34u);
        rc_ = SHR_E_FULL;
        return;
    }
    used_ += static_cast<u64>(n);
}

i32 buffer_check(u32 chip_id, u32 serdes_id, const char *what, const char *need_name, u64 len, u64 need)
{
    if (len >= need) {
        return 0;
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u %s len err! len:%lu < %s\n", chip_id, serdes_id,
                what, static_cast<unsigned long>(len), need_name);
    return SHR_E_PARAM;
}

} // namespace tide::serdes

extern "C" {

u32 csl_atolreef_grey_coding(u32 value)
{
    const u32 sign = value & 0x80000000u, mag = value & 0x7FFFFFFFu;
    return sign | (mag ^ (mag >> 1));
}

u32 csl_atolreef_grey_decoding(u32 value)
{
    const u32 sign = value & 0x80000000u;
    u32 mag = value & 0x7FFFFFFFu;
    for (u32 shift = mag >> 1; shift != 0; shift >>= 1) {
        mag ^= shift;
    }
    return sign | mag;
}

i32 _csl_atolreef_serdes_field_set(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 bit_name_id, u32 data)
{
    bit_place b{};
    const i32 rc = _field_place(chip_id, serdes_id, place_of(serdes_id), reg_name_id, bit_name_id, data, &b);
    return rc != 0 ? rc : _addr_bits_set(chip_id, b.addr, b.start_bit, b.end_bit, data);
}

i32 _csl_atolreef_serdes_field_get(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 bit_name_id, u32 *data)
{
    bit_place b{};
    const i32 rc = _field_place(chip_id, serdes_id, place_of(serdes_id), reg_name_id, bit_name_id, 0, &b);
    return rc != 0 ? rc : _addr_bits_get(chip_id, b.addr, b.start_bit, b.end_bit, data);
}

i32 _csl_atolreef_serdes_bits_set(u32 chip_id, u32 serdes_id, u32 addr, u32 start_bit, u32 end_bit, u32 data)
{
    bit_place b{};
    const i32 rc = _bits_place(chip_id, serdes_id, place_of(serdes_id), addr, start_bit, end_bit, data, &b);
    return rc != 0 ? rc : _addr_bits_set(chip_id, b.addr, b.start_bit, b.end_bit, data);
}

i32 _csl_atolreef_serdes_bits_get(u32 chip_id, u32 serdes_id, u32 addr, u32 start_bit, u32 end_bit, u32 *data)
{
    bit_place b{};
    const i32 rc = _bits_place(chip_id, serdes_id, place_of(serdes_id), addr, start_bit, end_bit, 0, &b);
    return rc != 0 ? rc : _addr_bits_get(chip_id, b.addr, b.start_bit, b.end_bit, data);
}

i32 _csl_atolreef_serdes_power_set(u32 chip_id, u32 serdes_id, serdes_power *power)
{
    if (power->value > SERDES_POWER_DOWN) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u power value:%u not support\n", chip_id,
                    serdes_id, power->value);
        return SHR_E_PARAM;
    }
    const u32 down = power->value;
    const step tx_down[] = {SDS(lane_cfg3, da_pd_tx_bypass, 1), SDS(lane_cfg3, da_pd_tx_bypass_val, 1),
                            SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 1), SDS(bist_cfg3, tx_soft_rstn_byp_val, 0)};
    const step tx_up[] = {SDS(lane_cfg3, da_pd_tx_bypass, 0), SDS(lane_cfg3, da_pd_tx_bypass_val, 0),
                          SDS(bist_cfg3, tx_soft_rstn_byp_val, 1), SDS(bist_cfg3, tx_soft_rstn_byp_ctrl, 0)};
    const step rx[] = {SDS(lane_cfg3, da_pd_rx_bypass, down), SDS(lane_cfg3, da_pd_rx_bypass_val, down)};
    switch (power->dir) {
    case SERDES_POWER_TX:
        return run(chip_id, serdes_id, down ? std::span<const step>(tx_down) : std::span<const step>(tx_up));
    case SERDES_POWER_RX:
        return run(chip_id, serdes_id, rx);
    case SERDES_POWER_TXRX: {
        const i32 rc = run(chip_id, serdes_id, down ? std::span<const step>(tx_down) : std::span<const step>(tx_up));
        return rc == 0 ? run(chip_id, serdes_id, rx) : rc;
    }
    case SERDES_POWER_PLL0:
    case SERDES_POWER_PLL1:
        return _csl_atolreef_serdes_pll_power(chip_id, serdes_id, power->dir - SERDES_POWER_PLL0, down);
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%d  set not support power type: %u \n", chip_id,
                    static_cast<int>(serdes_id), power->dir);
        return SHR_E_NOT_SUPPORT;
    }
}

i32 _csl_atolreef_serdes_rx_para_save(u32 chip_id, u32 serdes_id)
{
    csl_atolreef_serdes_db *d = db(chip_id);
    u32 gray = 0;
    i32 rc = _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(eq_sta0, rx_vga_capen),
                                            &d->rx_para_vga_cap_val[serdes_id]);
    rc = rc == 0 ? _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(eq_sta0, rx_ctle_hf_cal),
                                                  &d->rx_para_hf_cal_val[serdes_id])
                 : rc;
    rc = rc == 0 ? _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(eq_sta1, rx_vga_stage12_ctrl),
                                                  &d->rx_para_stage12_val[serdes_id])
                 : rc;
    rc = rc == 0 ? _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(eq_sta2, da_ctle_hf_gain_gray), &gray)
                 : rc;
    if (rc == 0) {
        d->rx_para_hf_val[serdes_id] = csl_atolreef_grey_decoding(gray);
    }
    return rc;
}

const csl_serdes_driver_t *csl_atolreef_serdes_driver_get(void)
{
    return &g_csl_serdes_atolreef;
}

i32 csl_atolreef_serdes_control_db_init(u32 chip_id)
{
    csl_serdes_control_t *ctl = csl_serdes_control_get(chip_id);
    if (ctl == nullptr) {
        return SHR_E_INIT;
    }
    if (ctl->info == nullptr) {
        auto *rows = static_cast<csl_serdes_info *>(
            xsal_malloc(sizeof(csl_serdes_info) * ATOLREEF_SDS_LANES, "csl-serdes-ctrol-info", SHR_MOD_SERDES));
        if (rows == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "malloc csl-serdes-ctrol-info memory error!\n");
            return SHR_E_MEMORY;
        }
        memset(rows, 0, sizeof(csl_serdes_info) * ATOLREEF_SDS_LANES);
        ctl->info = rows;
    }
    ctl->serdes_count = ATOLREEF_SDS_LANES;
    ctl->lanes_per_macro = ATOLREEF_SDS_LANES_PER_MACRO;
    if (!ctl->refclk_chosen) {
        ctl->refclk = static_cast<u32>(shr_property_get(chip_id, "serdes_pll_clk_type", 1));
    }
    for (u32 sid = 0; sid < ATOLREEF_SDS_LANES; sid++) {
        csl_serdes_info &row = ctl->info[sid];
        row.speed = SERDES_SPEED_UNUSED;
        row.enable = static_cast<u32>(shr_property_port_get(chip_id, static_cast<int>(sid), "serdes_enable", 1));
        row.pll0_vco = row.pll1_vco = CSL_SERDES_VCO_NONE;
    }
    return 0;
}

i32 csl_atolreef_serdes_db_malloc(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (g_csl_atolreef_serdes_db[chip_id] != nullptr) {
        return 0;
    }
    auto *d = static_cast<csl_atolreef_serdes_db *>(
        xsal_malloc(sizeof(csl_atolreef_serdes_db), "csl-serdes-db", SHR_MOD_SERDES));
    if (d == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "malloc csl-serdes-db memory error!\n");
        return SHR_E_MEMORY;
    }
    memset(d, 0, sizeof(*d));
    d->speed_limit_set = 1;
    g_csl_atolreef_serdes_db[chip_id] = d;
    return 0;
}

i32 csl_atolreef_serdes_db_free(u32 chip_id)
{
    if (chip_id < SHR_MAX_CHIPS) {
        xsal_mem_free(g_csl_atolreef_serdes_db[chip_id]);
        g_csl_atolreef_serdes_db[chip_id] = nullptr;
    }
    return 0;
}

i32 csl_atolreef_serdes_init(u32 chip_id)
{
    if (control(chip_id) == nullptr || control(chip_id)->info == nullptr || db(chip_id) == nullptr) {
        return SHR_E_INIT;
    }
    return _init_all(chip_id);
}

i32 csl_atolreef_serdes_deinit(u32 chip_id)
{
    // The lanes stay as they are.
    (void)chip_id;
    return 0;
}

i32 csl_atolreef_serdes_keep_reset(u32 chip_id, u32 serdes_id, u32 mode)
{
    return _reset_half(chip_id, serdes_id, mode, true);
}

i32 csl_atolreef_serdes_unreset(u32 chip_id, u32 serdes_id, u32 mode)
{
    return _reset_half(chip_id, serdes_id, mode, false);
}

i32 csl_atolreef_serdes_los_state_get(u32 chip_id, u32 serdes_id, u32 *los)
{
    if (los == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "Null pointer Error Happened!!\n");
        return SHR_E_NULL_PTR;
    }
    if (serdes_id >= ATOLREEF_SDS_LANES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id out range Error Happened!\n");
        return SHR_E_INVALID_DATA;
    }
    constexpr u32 los_field[] = {cib_f_srds_rx_los_l0, cib_f_srds_rx_los_l1, cib_f_srds_rx_los_l2,
                                 cib_f_srds_rx_los_l3};
    const lane_place p = place_of(serdes_id);
    return cib_field_get(chip_id, cib_phy_ctrl_srds_rx_los, p.macro, los_field[p.lane], los);
}

#define SDS_SLOT(name) .name = _csl_atolreef_serdes_##name
const csl_serdes_driver_t g_csl_serdes_atolreef = {
    .name = "g_csl_serdes_atolreef",
    .init = csl_atolreef_serdes_init,
    .deinit = csl_atolreef_serdes_deinit,
    .cib_config_set = nullptr,
    .refclk_set = nullptr,
    .refclk_get = nullptr,
    SDS_SLOT(refclk_chose_set),
    SDS_SLOT(freq_set),
    SDS_SLOT(freq_get),
    SDS_SLOT(pn_set),
    SDS_SLOT(pn_get),
    SDS_SLOT(emphasis_set),
    SDS_SLOT(emphasis_get),
    .serdes_enable_set = nullptr,
    .serdes_enable_get = nullptr,
    SDS_SLOT(prbs_set),
    SDS_SLOT(prbs_get),
    .prbs_insert_err_pkt = _csl_atolreef_serdes_prbs_insert_err,
    SDS_SLOT(prbs_counter_get),
    .prbs_check = nullptr,
    SDS_SLOT(prbs_counter_clear),
    .prbs_invert_enable_set = nullptr,
    .serdes_reset = _csl_atolreef_serdes_reset_slot,
    SDS_SLOT(loopback_set),
    SDS_SLOT(loopback_get),
    SDS_SLOT(power_set),
    SDS_SLOT(power_get),
    .control_set = csl_atolreef_serdes_control_set,
    .control_get = csl_atolreef_serdes_control_get,
    SDS_SLOT(rx_adapt_set),
    SDS_SLOT(rx_adapt_get),
    .rx_para_set = csl_atolreef_serdes_rx_adapt_para_set,
    .rx_para_get = csl_atolreef_serdes_rx_adapt_para_get,
    SDS_SLOT(four_point_eye),
    SDS_SLOT(full_eye_get),
    SDS_SLOT(all_reg_dump),
    SDS_SLOT(debug_info_get),
    SDS_SLOT(inner_register_get),
    SDS_SLOT(inner_register_set),
    .name_register_field_get = csl_atolreef_serdes_register_field_name_get,
    .name_register_field_set = csl_atolreef_serdes_register_field_name_set,
    SDS_SLOT(name_register_get),
    SDS_SLOT(name_register_set),
    .serdes_type_sel = nullptr,
    SDS_SLOT(support_speed_get),
    .sram_get = nullptr,
    .clk_8k_set = _csl_atolreef_serdes_8k_clk_set,
    .clk_8k_get = _csl_atolreef_serdes_8k_clk_get,
    SDS_SLOT(ctle_offset_calibrate_result),
};
#undef SDS_SLOT

} // extern "C"
