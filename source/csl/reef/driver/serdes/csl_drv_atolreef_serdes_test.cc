// atolreef's SerDes driver: what a lane is tuned and tested with.
// Polarity, transmit emphasis and presets, the receiver's adaptation and
// parameters, PRBS generation and checking, loops, the offset
// calibration, the eye measurement and the 8K clocks.
#include <cstdio>
#include <cstring>

#include <tide/property.h>

#include "atolreef_cib.h"
#include "csl/reef/driver/serdes/csl_atolreef_serdes_int.h"

using namespace tide::serdes;

namespace {

// ---- PRBS ---------------------------------------------------------------------------

constexpr u32 k_bist_lock_delay = 112;
constexpr u32 k_bist_lock_polls = 100;
constexpr u32 k_bist_lock_poll_us = 1000;
constexpr u32 k_bist_restart_us = 100000;
constexpr u32 k_err_inject_max = 65535;

// prbs_mode_cfg of a PRBS type, or -1 for a type the hardware lacks.
i32 _prbs_mode(u32 type)
{
    switch (type) {
    case SERDES_PRBS7:
        return 1;
    case SERDES_PRBS23:
        return 2;
    case SERDES_PRBS31:
        return 3;
    case SERDES_PAT_USER:
        return 0;
    default:
        return -1;
    }
}

u32 _prbs_type(u32 mode)
{
    constexpr u32 types[] = {SERDES_PAT_USER, SERDES_PRBS7, SERDES_PRBS23, SERDES_PRBS31};
    return types[mode & 3];
}

bool _tx_bist_on(u32 chip_id, u32 serdes_id)
{
    return field_value(chip_id, serdes_id, SDS_FLD(bist_cfg6, tx_bist_en)) != 0 &&
           field_value(chip_id, serdes_id, SDS_FLD(bist_cfg2, tx_bist_data_sel_byp_ctrl)) != 0 &&
           field_value(chip_id, serdes_id, SDS_FLD(bist_cfg2, tx_bist_data_sel_byp_val)) != 0;
}

bool _rx_bist_on(u32 chip_id, u32 serdes_id)
{
    return field_value(chip_id, serdes_id, SDS_FLD(bist_cfg1, rx_bist_en_byp_ctrl)) != 0 &&
           field_value(chip_id, serdes_id, SDS_FLD(bist_cfg1, rx_bist_en_byp_val)) != 0;
}

i32 _prbs_rx_set(u32 chip_id, u32 serdes_id, u32 enable, u32 mode)
{
    const step on[] = {B1(0xacc, 18, 1), SDS(bist_cfg0, bist_lock_delay_cfg, k_bist_lock_delay),
                       SDS(bist_cfg0, prbs_mode_cfg, mode), SDS(bist_cfg1, rx_bist_en_byp_ctrl, 1),
                       SDS(bist_cfg1, rx_bist_en_byp_val, 1)};
    const step off[] = {SDS(bist_cfg1, rx_bist_en_byp_val, 0), SDS(bist_cfg1, rx_bist_en_byp_ctrl, 0),
                        B1(0xacc, 18, 0)};
    return enable ? run(chip_id, serdes_id, on) : run(chip_id, serdes_id, off);
}

i32 _prbs_tx_set(u32 chip_id, u32 serdes_id, u32 enable, u32 mode)
{
    // The generator's enable and reset move together.
    const step on[] = {SDS(bist_cfg0, prbs_mode_cfg, mode), SDS(bist_cfg2, tx_bist_data_sel_byp_ctrl, 1),
                       SDS(bist_cfg2, tx_bist_data_sel_byp_val, 1), RB(sds_reg_bist_cfg6, 1, 0, 0),
                       RB(sds_reg_bist_cfg6, 1, 0, 3), S(1000)};
    const step off[] = {SDS(bist_cfg2, tx_bist_data_sel_byp_ctrl, 0), SDS(bist_cfg2, tx_bist_data_sel_byp_val, 0),
                        RB(sds_reg_bist_cfg6, 1, 0, 0), S(1000)};
    return enable ? run(chip_id, serdes_id, on) : run(chip_id, serdes_id, off);
}

// ---- loops ---------------------------------------------------------------------------

constexpr step k_rx2tx_on[] = {B1(0x4, 0, 1), B1(0x10, 0, 1), B1(0x1c, 24, 0), B1(0x2414, 1, 0)};
constexpr step k_rx2tx_off[] = {B1(0x4, 0, 0), B1(0x10, 0, 0), B1(0x1c, 24, 0), B1(0x2414, 1, 0)};
constexpr step k_par_tx2rx_on[] = {B1(0x241c, 12, 1), B1(0x728, 12, 1), B(0xaa4, 25, 24, 3)};

i32 _loop_near_serial(u32 chip_id, u32 serdes_id, u32 enable)
{
    const step on[] = {
        SDS(bist_cfg4, rx_nearlpbk_en, 1),          SDS(bist_cfg4, tx_nearlpbk_en, 1),
        SDS(bist_cfg4, nearlpbk_mode_en, 1),
        // The receiver is forced: no VGA capacitor, the lowest gains.
        SDS(eq_cfg1, rx_vga_capen, 1),              SDS(eq_cfg3, rx_vga_capen, 0),
        SDS(eq_cfg1, vga_gain_cfg_byp_ctrl, 1),     SDS(eq_cfg1, rx_vga_stage12_ctrl, 0),
        SDS(eq_cfg2, vga_gain_cfg_byp_val, 0),      SDS(eq_cfg8, da_ctle_hf_gain_gray_bypass, 1),
        SDS(eq_cfg9, da_ctle_hf_gain_gray_bypass_val, csl_atolreef_grey_coding(0)),
        SDS(eq_cfg1, ctle_hf_cal_byp_ctrl, 1),      SDS(eq_cfg3, rx_ctle_hf_cal, 15),
    };
    const step off[] = {SDS(bist_cfg4, rx_nearlpbk_en, 0), SDS(bist_cfg4, tx_nearlpbk_en, 0),
                        SDS(bist_cfg4, nearlpbk_mode_en, 0)};
    if (enable) {
        return run(chip_id, serdes_id, on);
    }
    i32 rc = run(chip_id, serdes_id, off);
    // The receiver takes back what it had trained.
    const csl_atolreef_serdes_db *d = db(chip_id);
    const serdes_rx_para back[] = {{1, 0, SERDES_RX_PARA_VGA_CAPEN, d->rx_para_vga_cap_val[serdes_id]},
                                   {1, 0, SERDES_RX_PARA_VGA_STAGE12, d->rx_para_stage12_val[serdes_id]},
                                   {1, 0, SERDES_RX_PARA_CTLE_HF, d->rx_para_hf_val[serdes_id]},
                                   {1, 0, SERDES_RX_PARA_CTLE_HF_CAL, d->rx_para_hf_cal_val[serdes_id]}};
    for (serdes_rx_para p : back) {
        rc = rc == 0 ? csl_atolreef_serdes_rx_adapt_para_set(chip_id, serdes_id, &p) : rc;
    }
    return rc;
}

// ---- receive parameters ---------------------------------------------------------------

// A receive parameter: its bypass control and its value field(s).  A
// parameter split over two value fields (7) gives its high bits to the
// first; Gray-coded ones code their value first (12, 13: all bits; 14,
// 15: bits 5:0, bit 6 kept).
enum class coding : u8 { plain, gray, tap, split };
struct rx_para_row {
    u16 ctrl_reg, ctrl_bit;
    u16 val_reg, val_bit;
    u16 lo_reg, lo_bit; // the low part of a split value
    coding code;
    u8 width;           // bits of the value the caller gives
};

constexpr rx_para_row k_rx_para[] = {
    {SDS_FLD(eq_cfg1, ctle_hf_cal_byp_ctrl), SDS_FLD(eq_cfg3, rx_ctle_hf_cal), 0, 0, coding::plain, 4},
    {SDS_FLD(eq_cfg1, ctle_cap_cfg_byp_ctrl), SDS_FLD(eq_cfg3, ctle_cap_cfg_byp_val_high), 0, 0, coding::plain, 4},
    {SDS_FLD(eq_cfg1, ctle_res_cfg_byp_ctrl), SDS_FLD(eq_cfg3, ctle_res_cfg_byp_val), 0, 0, coding::plain, 4},
    {SDS_FLD(eq_cfg1, rx_vga_capen), SDS_FLD(eq_cfg3, rx_vga_capen), 0, 0, coding::plain, 3},
    {SDS_FLD(eq_cfg1, vga_res_cfg_byp_ctrl), SDS_FLD(eq_cfg3, vga_res_cfg_byp_val), 0, 0, coding::plain, 4},
    {SDS_FLD(eq_cfg1, rx_ctle_deq_enb), SDS_FLD(eq_cfg3, rx_ctle_deq_enb), 0, 0, coding::plain, 4},
    {SDS_FLD(eq_cfg1, rx_vga_deq_enb), SDS_FLD(eq_cfg2, rx_vga_deq_enb_h), SDS_FLD(eq_cfg3, rx_vga_deq_enb),
     coding::split, 5},
    {SDS_FLD(eq_cfg1, rx_lpf_res_sel), SDS_FLD(eq_cfg2, rx_lpf_res_sel), 0, 0, coding::plain, 3},
    {SDS_FLD(eq_cfg1, rx_ctle_lpf_capsel), SDS_FLD(eq_cfg2, rx_ctle_lpf_capsel), 0, 0, coding::plain, 2},
    {SDS_FLD(eq_cfg1, ctle_leg_cfg_byp_ctrl), SDS_FLD(eq_cfg2, ctle_leg_cfg_byp_val), 0, 0, coding::plain, 3},
    {SDS_FLD(eq_cfg1, vga_gain_cfg_byp_ctrl), SDS_FLD(eq_cfg2, vga_gain_cfg_byp_val), 0, 0, coding::plain, 5},
    {SDS_FLD(eq_cfg8, da_ctle_hf_gain_gray_bypass), SDS_FLD(eq_cfg9, da_ctle_hf_gain_gray_bypass_val), 0, 0,
     coding::gray, 4},
    {SDS_FLD(eq_cfg8, da_ctle_lf_gain_gray_bypass), SDS_FLD(eq_cfg9, da_ctle_lf_gain_gray_bypass_val), 0, 0,
     coding::gray, 3},
    {SDS_FLD(eq_cfg10, rx_sel_dat_thresh_byp), SDS_FLD(eq_cfg11, rx_sel_dat_thresh_byp_val), 0, 0, coding::tap, 7},
    {SDS_FLD(eq_cfg10, rx_sel_phs_thresh_byp), SDS_FLD(eq_cfg11, rx_sel_phs_thresh_byp_val), 0, 0, coding::tap, 7},
};

// ---- offset calibration ---------------------------------------------------------------

constexpr u32 k_cal_rounds = 5;
constexpr u32 k_cal_channels = 4;
constexpr u32 k_cal_values = 5; // 6-bit values in a channel word

constexpr step k_cal_kick_on[] = {B(0xaa4, 30, 23, 255), B(0xaa0, 26, 25, 2), S(5000)};
constexpr step k_cal_kick_off[] = {B(0xaa4, 30, 23, 0), B(0xaa0, 26, 25, 0), S(10000)};

// A 6-bit slicer offset: bit 5 the sign, bits 4:0 the magnitude in Gray
// code.
i32 _slicer_decode(u32 v6)
{
    const i32 mag = static_cast<i32>(csl_atolreef_grey_decoding(v6 & 0x1F));
    return (v6 & 0x20) != 0 ? -mag : mag;
}

u32 _slicer_encode(i32 v)
{
    const u32 mag = static_cast<u32>(v < 0 ? -v : v) & 0x1F;
    return (v < 0 ? 0x20u : 0u) | csl_atolreef_grey_coding(mag);
}

// One round of the calibration engine.
i32 _cal_round(u32 chip_id, u32 serdes_id)
{
    const i32 rc = run(chip_id, serdes_id, k_cal_kick_on);
    return rc == 0 ? run(chip_id, serdes_id, k_cal_kick_off) : rc;
}

// The tables of the rounds: the channels' words and the decoded values.
struct cal_tables {
    u32 *words = nullptr;  // [round][channel]
    i32 *values = nullptr; // [channel][value][round]
    ~cal_tables()
    {
        xsal_mem_free(words);
        xsal_mem_free(values);
    }
};

i32 _cal_tables_alloc(u32 chip_id, cal_tables *t)
{
    t->words = static_cast<u32 *>(
        xsal_malloc(sizeof(u32) * k_cal_rounds * k_cal_channels, "1serdes_all_offset_calibrate", SHR_MOD_SERDES));
    if (t->words != nullptr) {
        t->values = static_cast<i32 *>(xsal_malloc(sizeof(i32) * k_cal_channels * k_cal_values * k_cal_rounds,
                                                   "2serdes_all_offset_calibrate", SHR_MOD_SERDES));
    }
    if (t->values == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "off_ch_res_val chip_id:%u malloc fail\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    return 0;
}

// The mean of the rounds without their extremes, per channel and value,
// coded back into channel words.
void _cal_results(const cal_tables &t, u32 out[k_cal_channels])
{
    for (u32 ch = 0; ch < k_cal_channels; ch++) {
        out[ch] = 0;
        for (u32 v = 0; v < k_cal_values; v++) {
            const i32 *r = &t.values[(ch * k_cal_values + v) * k_cal_rounds];
            i32 max = r[0], min = r[0], sum = 0;
            for (u32 k = 0; k < k_cal_rounds; k++) {
                max = r[k] > max ? r[k] : max;
                min = r[k] < min ? r[k] : min;
                sum += r[k];
            }
            out[ch] |= _slicer_encode((sum - max - min) / static_cast<i32>(k_cal_rounds - 2)) << (6 * v);
        }
    }
}

// The CTLE offset: five rounds averaged into the bypass of rx_ofs_sel; the
// loss-of-signal offset as the last round found it.
i32 _cal_ctle(u32 chip_id, u32 serdes_id, u32 *ofs, u32 *los_ossel)
{
    const step kick[] = {SDS(eq_cfg1, eq_cal_mode, 2), B(0x714, 22, 18, 31)};
    u32 sum = 0;
    i32 rc = 0;
    for (u32 k = 0; rc == 0 && k < k_cal_rounds; k++) {
        rc = run(chip_id, serdes_id, kick);
        rc = rc == 0 ? _cal_round(chip_id, serdes_id) : rc;
        sum += field_value(chip_id, serdes_id, SDS_FLD(offset_cal_cfg1, rx_ofs_sel));
    }
    if (rc != 0) {
        return rc;
    }
    *ofs = sum / k_cal_rounds;
    *los_ossel = field_value(chip_id, serdes_id, SDS_FLD(offset_cal_cfg1, rx_los_ossel));
    const step take[] = {SDS(offset_cal_cfg0, rx_ofs_sel_byp_val, *ofs), SDS(offset_cal_cfg0, rx_ofs_sel_byp, 1),
                         SDS(offset_cal_cfg0, rx_los_ossel_byp_val, *los_ossel),
                         SDS(offset_cal_cfg0, rx_los_ossel_byp, 1), B1(0xaa0, 1, 1), B1(0xaa0, 21, 0),
                         B1(0x40, 5, 0)};
    return run(chip_id, serdes_id, take);
}

// The slicer offsets of the four channels, five rounds.
i32 _cal_slicers(u32 chip_id, u32 serdes_id, cal_tables &t)
{
    constexpr u32 regs[k_cal_channels][2] = {{SDS_FLD(offset_cal_cfg2, rxa_slicer_offset_adj)},
                                             {SDS_FLD(offset_cal_cfg3, rxb_slicer_offset_adj)},
                                             {SDS_FLD(offset_cal_cfg4, rxc_slicer_offset_adj)},
                                             {SDS_FLD(offset_cal_cfg5, rxd_slicer_offset_adj)}};
    i32 rc = 0;
    for (u32 k = 0; rc == 0 && k < k_cal_rounds; k++) {
        rc = _cal_round(chip_id, serdes_id);
        for (u32 ch = 0; rc == 0 && ch < k_cal_channels; ch++) {
            u32 &w = t.words[k * k_cal_channels + ch];
            rc = _csl_atolreef_serdes_field_get(chip_id, serdes_id, regs[ch][0], regs[ch][1], &w);
            for (u32 v = 0; rc == 0 && v < k_cal_values; v++) {
                t.values[(ch * k_cal_values + v) * k_cal_rounds + k] = _slicer_decode(w >> (6 * v) & 0x3F);
            }
        }
    }
    return rc;
}

// ---- eye ----------------------------------------------------------------------------

constexpr u32 k_eye_rounds = 20;
constexpr u32 k_eye_polls = 1000;
constexpr u32 k_eye_poll_us = 500;
constexpr u32 k_eye_x_limit = 32;
constexpr u32 k_eye_y_limit = 63;
constexpr u32 k_eye_round_err_max = 50;
// The grid of the full eye: x from -32 to 32, y from 60 to -60.
constexpr i32 k_full_x_step = 4, k_full_x_max = 32;
constexpr i32 k_full_y_step = 10, k_full_y_max = 60;

// The axis values of a point: x in steps of the phase (255 one left of the
// centre), y with bit 6 the sign and bits 5:0 Gray coded.
u32 _eye_x(i32 x)
{
    return static_cast<u32>(x) & 0xFF;
}

u32 _eye_y(i32 y)
{
    const u32 mag = static_cast<u32>(y < 0 ? -y : y) & 0x3F;
    return (y < 0 ? 0x40u : 0u) | csl_atolreef_grey_coding(mag);
}

// One round of the measurement: start, wait for done out of `budget`
// polls, add the errors, stop.
i32 _eye_round(u32 chip_id, u32 serdes_id, u32 *budget, u32 *errors)
{
    const step start[] = {SDS(full_eye_ctl0, full_eye_cfg_en0, 1), SDS(full_eye_ctl0, full_eye_fsm_en, 1)};
    const step stop[] = {SDS(full_eye_ctl0, full_eye_fsm_en, 0), SDS(full_eye_ctl0, full_eye_cfg_en0, 0)};
    i32 rc = run(chip_id, serdes_id, start);
    u32 done = 0;
    while (rc == 0) {
        rc = _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(full_eye_sts0, full_eye_meas_done), &done);
        if (rc != 0 || done != 0) {
            break;
        }
        if (--*budget == 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%d measure_done:%u time:%u\n", chip_id,
                        static_cast<int>(serdes_id), done, k_eye_polls);
            return SHR_E_TIMEOUT;
        }
        settle(chip_id, k_eye_poll_us);
    }
    u32 count = 0;
    rc = rc == 0 ? _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(full_eye_sts0, full_eye_err_count),
                                                  &count)
                 : rc;
    rc = rc == 0 ? run(chip_id, serdes_id, stop) : rc;
    *errors = count;
    return rc;
}

// The point's mean error count over up to `rounds` rounds; a round with
// more than `stop_above` errors ends the point early.
i32 _eye_point(u32 chip_id, u32 serdes_id, i32 x, i32 y, u32 rounds, u32 stop_above, u32 *mean)
{
    const step at[] = {SDS(full_eye_ctl1, full_eye_xaxis_val, _eye_x(x)),
                       SDS(full_eye_ctl1, full_eye_yaxis_val, _eye_y(y))};
    i32 rc = run(chip_id, serdes_id, at);
    u32 budget = k_eye_polls, sum = 0, done = 0;
    while (rc == 0 && done < rounds) {
        u32 errors = 0;
        rc = _eye_round(chip_id, serdes_id, &budget, &errors);
        sum += errors;
        done++;
        if (errors > stop_above) {
            break;
        }
    }
    *mean = rc == 0 ? sum / (stop_above == UINT32_MAX ? rounds : done) : 0;
    return rc;
}

// One measurement of the point: the sum of 20 rounds over 20.
i32 _eye_meas(u32 chip_id, u32 serdes_id, i32 x, i32 y, u32 *result)
{
    return _eye_point(chip_id, serdes_id, x, y, k_eye_rounds, UINT32_MAX, result);
}

// How far from the centre the eye stays open along one direction: the
// last error-free step between 0 (open) and `limit`, by bisection.
i32 _eye_edge(u32 chip_id, u32 serdes_id, i32 dx, i32 dy, i32 x0, i32 y0, u32 limit, u32 *edge)
{
    auto errors_at = [&](u32 k, u32 *count) {
        return _eye_meas(chip_id, serdes_id, x0 + dx * static_cast<i32>(k), y0 + dy * static_cast<i32>(k), count);
    };
    u32 count = 0;
    i32 rc = errors_at(limit, &count);
    if (rc != 0 || count == 0) {
        *edge = limit;
        return rc;
    }
    u32 lo = 0, hi = limit;
    while (rc == 0 && hi - lo > 1) {
        const u32 mid = (lo + hi) / 2;
        rc = errors_at(mid, &count);
        (count != 0 ? hi : lo) = mid;
    }
    *edge = lo;
    return rc;
}

// The controls of the measurement as they were before it, put back at its
// end whatever happened.
class eye_controls {
public:
    eye_controls(u32 chip_id, u32 serdes_id) : chip_(chip_id), sid_(serdes_id)
    {
        csl_atolreef_serdes_register_get(chip_, sid_, sds_reg_full_eye_ctl0, &ctl0_);
        csl_atolreef_serdes_register_get(chip_, sid_, sds_reg_full_eye_ctl1, &ctl1_);
    }
    ~eye_controls()
    {
        csl_atolreef_serdes_register_set(chip_, sid_, sds_reg_full_eye_ctl1, ctl1_);
        csl_atolreef_serdes_register_set(chip_, sid_, sds_reg_full_eye_ctl0, ctl0_);
    }
    eye_controls(const eye_controls &) = delete;
    eye_controls &operator=(const eye_controls &) = delete;
    i32 open()
    {
        const step on[] = {SDS(full_eye_ctl0, full_eye_en_sel, 1), SDS(full_eye_ctl0, full_eye_cfg_en1, 1)};
        return run(chip_, sid_, on);
    }

private:
    u32 chip_, sid_;
    u32 ctl0_ = 0, ctl1_ = 0;
};

// ---- 8K clocks ---------------------------------------------------------------------

constexpr u32 k_8k_clocks = 3;

// The registers and fields of one 8K clock output.
struct clk_8k_regs {
    u32 cfg, div0_reg, div1_reg;
    u32 mux4, feclk, rxclk, div33, div10, mod, div0, div1, en;
};
constexpr clk_8k_regs k_8k[k_8k_clocks] = {
    {cib_lsw_hreg_srds_8k_cfg_0, cib_lsw_hreg_srds_8k_div_cfg0_0, cib_lsw_hreg_srds_8k_div_cfg1_0,
     cib_f_clk_sel_mux4_0, cib_f_feclk_sel_0, cib_f_rxclk_sel_0, cib_f_rxclk_sel_div33_0, cib_f_rxclk_sel_div10_0,
     cib_f_srds_8k_mod_cfg_0, cib_f_srds_8k_div_cfg0_0, cib_f_srds_8k_div_cfg1_0, cib_f_srds_8k_en_0},
    {cib_lsw_hreg_srds_8k_cfg_1, cib_lsw_hreg_srds_8k_div_cfg0_1, cib_lsw_hreg_srds_8k_div_cfg1_1,
     cib_f_clk_sel_mux4_1, cib_f_feclk_sel_1, cib_f_rxclk_sel_1, cib_f_rxclk_sel_div33_1, cib_f_rxclk_sel_div10_1,
     cib_f_srds_8k_mod_cfg_1, cib_f_srds_8k_div_cfg0_1, cib_f_srds_8k_div_cfg1_1, cib_f_srds_8k_en_1},
    {cib_lsw_hreg_srds_8k_cfg_2, cib_lsw_hreg_srds_8k_div_cfg0_2, cib_lsw_hreg_srds_8k_div_cfg1_2,
     cib_f_clk_sel_mux4_2, cib_f_feclk_sel_2, cib_f_rxclk_sel_2, cib_f_rxclk_sel_div33_2, cib_f_rxclk_sel_div10_2,
     cib_f_srds_8k_mod_cfg_2, cib_f_srds_8k_div_cfg0_2, cib_f_srds_8k_div_cfg1_2, cib_f_srds_8k_en_2},
};

i32 _hreg_set(u32 chip_id, u32 reg, u32 field, u32 value)
{
    return cib_field_set(chip_id, cib_module_lsw_hreg, reg, 0, field, value);
}

// The divider and selection of the lane's speed.
void _8k_divider(u32 chip_id, u32 serdes_id, u32 *div0, u32 *div1, u32 *mux4)
{
    const u32 speed = info(chip_id, serdes_id).speed;
    *div0 = *div1 = *mux4 = 0;
    speed_fact sf{};
    if (!speed_fact_of(speed, &sf)) {
        return;
    }
    constexpr u32 div[kRates][2] = {{125000, 16}, {78125, 4}, {125000, 16}, {78125, 8}, {78125, 4}};
    constexpr u32 sel[kRates] = {0, 0, 2, 0, 1};
    *div0 = div[sf.rate][0];
    *div1 = div[sf.rate][1];
    *mux4 = info(chip_id, serdes_id).interface_type == PORT_INTERFACE_100BASE_FX ? 3 : sel[sf.rate];
}

} // namespace

extern "C" {

// ---- polarity and emphasis -----------------------------------------------------------

i32 _csl_atolreef_serdes_pn_set(u32 chip_id, u32 serdes_id, serdes_pn *pn)
{
    if (pn->dir > SERDES_DIR_BOTH || pn->mode > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u pn dir:%u mode:%u not support\n", chip_id,
                    serdes_id, pn->dir, pn->mode);
        return pn->dir > SERDES_DIR_BOTH ? SHR_E_NOT_SUPPORT : SHR_E_PARAM;
    }
    const step tx[] = {SDS(pol_inv_cfg, tx_pol_inv_en, pn->mode)};
    const step rx[] = {SDS(pol_inv_cfg, rx_pol_inv_en, pn->mode)};
    i32 rc = pn->dir != SERDES_DIR_RX ? run(chip_id, serdes_id, tx) : 0;
    return rc == 0 && pn->dir != SERDES_DIR_TX ? run(chip_id, serdes_id, rx) : rc;
}

i32 _csl_atolreef_serdes_pn_get(u32 chip_id, u32 serdes_id, serdes_pn *pn)
{
    if (pn->dir != SERDES_DIR_TX && pn->dir != SERDES_DIR_RX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u pn dir:%u not support\n", chip_id, serdes_id,
                    pn->dir);
        return SHR_E_NOT_SUPPORT;
    }
    return pn->dir == SERDES_DIR_TX
               ? _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(pol_inv_cfg, tx_pol_inv_en), &pn->mode)
               : _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(pol_inv_cfg, rx_pol_inv_en), &pn->mode);
}

i32 _csl_atolreef_serdes_emphasis_set(u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis)
{
    if (emphasis->tap != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "tx pre-emphasis set chip id:%d  serdes_id:%u  tap:%u not support \n",
                    static_cast<int>(chip_id), serdes_id, emphasis->tap);
        return SHR_E_NOT_SUPPORT;
    }
    // Every value must fit before the first is written.
    const u32 values[] = {emphasis->main, emphasis->pre, emphasis->post, emphasis->swing_leg};
    const u32 fields[] = {sds_f_ffe_cfg0__ffe_cmain_cfg, sds_f_ffe_cfg0__ffe_cpre_cfg, sds_f_ffe_cfg0__ffe_cpost_cfg,
                          sds_f_ffe_cfg0__swing_leg_cfg};
    for (u32 i = 0; i < 4; i++) {
        const csl_serdes_field_t &f = g_atolreef_serdes_reg[sds_reg_ffe_cfg0].fields[fields[i]];
        if (values[i] >> (f.end_bit - f.start_bit + 1) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES,
                        "serdes_id[%u]  field set val %#x  not support, reg_name_id:%u bit_name_id:%u max val %#x\n",
                        serdes_id, values[i], static_cast<u32>(sds_reg_ffe_cfg0), fields[i],
                        (1u << (f.end_bit - f.start_bit + 1)) - 1);
            return SHR_E_NOT_SUPPORT;
        }
    }
    const step steps[] = {SDS(ffe_cfg0, ffe_cmain_cfg, emphasis->main), SDS(ffe_cfg0, ffe_cpre_cfg, emphasis->pre),
                          SDS(ffe_cfg0, ffe_cpost_cfg, emphasis->post),
                          SDS(ffe_cfg0, swing_leg_cfg, emphasis->swing_leg), SDS(ffe_cfg0, ffe_byp_ctrl, 1)};
    return run(chip_id, serdes_id, steps);
}

i32 _csl_atolreef_serdes_emphasis_get(u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis)
{
    emphasis->tap = 0;
    emphasis->main = static_cast<u8>(field_value(chip_id, serdes_id, SDS_FLD(ffe_cfg0, ffe_cmain_cfg)));
    emphasis->pre = static_cast<u8>(field_value(chip_id, serdes_id, SDS_FLD(ffe_cfg0, ffe_cpre_cfg)));
    emphasis->post = static_cast<u8>(field_value(chip_id, serdes_id, SDS_FLD(ffe_cfg0, ffe_cpost_cfg)));
    emphasis->swing_leg = static_cast<u8>(field_value(chip_id, serdes_id, SDS_FLD(ffe_cfg0, swing_leg_cfg)));
    return 0;
}

void csl_atolreef_serdes_property_emphasis(u32 chip_id, u32 serdes_id, u32 speed, serdes_emphasis *emphasis)
{
    shr_property_pre_emphasis_t by_speed{};
    by_speed.type = SHR_PROPERTY_PE_TYPE_MPP;
    memset(&by_speed.u.mpp, 0xFF, sizeof(by_speed.u.mpp));
    if (shr_property_sds_lane_pe_dist_speed_flag_get(chip_id) == 1 && speed != SERDES_SPEED_UNUSED) {
        shr_property_sds_alone_lane_pre_emphasis_get_with_attr(chip_id, serdes_id, rate_name(rate_of(speed)),
                                                               &by_speed);
    }
    // A value the speed's record leaves unset (255) comes from the port's.
    auto pick = [&](u8 v, const char *key, i32 dflt) {
        return v != 0xFF ? v : static_cast<u8>(shr_property_port_get(chip_id, static_cast<int>(serdes_id), key, dflt));
    };
    emphasis->tap = 0;
    emphasis->main = pick(by_speed.u.mpp.main_, "serdes_tx_main", 0x5A);
    emphasis->pre = pick(by_speed.u.mpp.pre, "serdes_tx_pre", 0);
    emphasis->post = pick(by_speed.u.mpp.post, "serdes_tx_post", 0x0C);
    emphasis->swing_leg = 0;
}

// ---- controls -------------------------------------------------------------------------

i32 csl_atolreef_serdes_control_set(u32 chip_id, u32 serdes_id, serdes_control *control)
{
    const u32 value = control->type != SERDES_CONTROL_RAW_BITS ? *static_cast<u32 *>(control->value) : 0;
    constexpr u32 preset_field[] = {cib_f_srds_tx_preset_l0, cib_f_srds_tx_preset_l1, cib_f_srds_tx_preset_l2,
                                    cib_f_srds_tx_preset_l3};
    switch (control->type) {
    case SERDES_CONTROL_LOS_THR: {
        const step s[] = {SDS(los_cfg0, rx_det_vth_elec, value)};
        return run(chip_id, serdes_id, s);
    }
    case SERDES_CONTROL_PRESET: {
        if (value > 15) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u tx preset err, value: %u > 0xf \n",
                        chip_id, serdes_id, value);
            return SHR_E_PARAM;
        }
        const lane_place p = place_of(serdes_id);
        i32 rc = cib_field_set(chip_id, cib_module_phy_ctrl, cib_phy_ctrl_srds_tx_preset, p.macro,
                               preset_field[p.lane], value);
        const step taps_off[] = {SDS(ffe_cfg0, ffe_byp_ctrl, 0)};
        return rc == 0 ? run(chip_id, serdes_id, taps_off) : rc;
    }
    case SERDES_CONTROL_SPEED_LIMIT:
        if (value > 1) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u speed limit:%u not support\n", chip_id,
                        serdes_id, value);
            return SHR_E_PARAM;
        }
        db(chip_id)->speed_limit_set = value;
        return 0;
    case SERDES_CONTROL_RAW_BITS: {
        const auto *raw = static_cast<serdes_raw_bits *>(control->value);
        return _csl_atolreef_serdes_bits_set(chip_id, serdes_id, raw->addr, raw->start_bit, raw->end_bit, raw->data);
    }
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u control set type:%u not support\n", chip_id,
                    serdes_id, control->type);
        return SHR_E_NOT_SUPPORT;
    }
}

i32 csl_atolreef_serdes_control_get(u32 chip_id, u32 serdes_id, serdes_control *control)
{
    auto *value = static_cast<u32 *>(control->value);
    constexpr u32 preset_field[] = {cib_f_srds_tx_preset_l0, cib_f_srds_tx_preset_l1, cib_f_srds_tx_preset_l2,
                                    cib_f_srds_tx_preset_l3};
    switch (control->type) {
    case SERDES_CONTROL_LOCK: {
        u32 unlocked = 0;
        const i32 rc = _csl_atolreef_serdes_bits_get(chip_id, serdes_id, 0x27c0, 12, 12, &unlocked);
        *value = unlocked == 0;
        return rc;
    }
    case SERDES_CONTROL_LOS_THR:
        return _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(los_cfg0, rx_det_vth_elec), value);
    case SERDES_CONTROL_PRESET: {
        const lane_place p = place_of(serdes_id);
        return cib_field_get(chip_id, cib_phy_ctrl_srds_tx_preset, p.macro, preset_field[p.lane], value);
    }
    case SERDES_CONTROL_RAW_BITS: {
        auto *raw = static_cast<serdes_raw_bits *>(control->value);
        return _csl_atolreef_serdes_bits_get(chip_id, serdes_id, raw->addr, raw->start_bit, raw->end_bit,
                                             &raw->data);
    }
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u control get type:%u not support\n", chip_id,
                    serdes_id, control->type);
        return SHR_E_NOT_SUPPORT;
    }
}

// ---- PRBS ---------------------------------------------------------------------------

i32 _csl_atolreef_serdes_prbs_set(u32 chip_id, u32 serdes_id, serdes_prbs *prbs)
{
    if (prbs->dir > SERDES_DIR_BOTH) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u prbs disable dir: %u error \n", chip_id,
                    serdes_id, prbs->dir);
        return SHR_E_NOT_SUPPORT;
    }
    if (prbs->enable > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u prbs enable:%u not support\n", chip_id,
                    serdes_id, prbs->enable);
        return SHR_E_PARAM;
    }
    // The pattern matters only to an enable.
    const i32 mode = prbs->enable ? _prbs_mode(prbs->type) : 0;
    if (mode < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u prbs_type:%u not support \n", chip_id,
                    serdes_id, prbs->type);
        return SHR_E_NOT_SUPPORT;
    }
    i32 rc = 0;
    if (prbs->enable && prbs->type == SERDES_PAT_USER) {
        if (prbs->user_pattern == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "Null pointer Error Happened!!\n");
            return SHR_E_NULL_PTR;
        }
        const u64 pat = *prbs->user_pattern;
        const step user[] = {SDS(usr_pat_cfg0, bist_usr_pat0, static_cast<u32>(pat & 0xFFFF)),
                             SDS(usr_pat_cfg1, bist_usr_pat1, static_cast<u32>(pat >> 16)),
                             SDS(usr_pat_cfg2, bist_usr_pat2, static_cast<u32>(pat >> 48))};
        rc = run(chip_id, serdes_id, user);
    }
    if (rc == 0 && prbs->dir != SERDES_DIR_RX) {
        rc = _prbs_tx_set(chip_id, serdes_id, prbs->enable, static_cast<u32>(mode));
    }
    if (rc == 0 && prbs->dir != SERDES_DIR_TX) {
        rc = _prbs_rx_set(chip_id, serdes_id, prbs->enable, static_cast<u32>(mode));
    }
    return rc;
}

i32 _csl_atolreef_serdes_prbs_get(u32 chip_id, u32 serdes_id, serdes_prbs *prbs)
{
    if (prbs->dir > SERDES_DIR_BOTH) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u prbs disable dir: %u error \n", chip_id,
                    serdes_id, prbs->dir);
        return SHR_E_NOT_SUPPORT;
    }
    const bool tx = _tx_bist_on(chip_id, serdes_id), rx = _rx_bist_on(chip_id, serdes_id);
    prbs->enable = prbs->dir == SERDES_DIR_TX ? tx : (prbs->dir == SERDES_DIR_RX ? rx : tx || rx);
    prbs->type = _prbs_type(field_value(chip_id, serdes_id, SDS_FLD(bist_cfg0, prbs_mode_cfg)));
    if (prbs->type == SERDES_PAT_USER && prbs->user_pattern != nullptr) {
        const u64 p0 = field_value(chip_id, serdes_id, SDS_FLD(usr_pat_cfg0, bist_usr_pat0));
        const u64 p1 = field_value(chip_id, serdes_id, SDS_FLD(usr_pat_cfg1, bist_usr_pat1));
        const u64 p2 = field_value(chip_id, serdes_id, SDS_FLD(usr_pat_cfg2, bist_usr_pat2));
        *prbs->user_pattern = p0 | p1 << 16 | p2 << 48;
    }
    return 0;
}

i32 _csl_atolreef_serdes_prbs_insert_err(u32 chip_id, u32 serdes_id, u32 count)
{
    if (count > k_err_inject_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u  prbs error injection num:%u not support\n",
                    chip_id, serdes_id, count);
        return SHR_E_PARAM;
    }
    if (!_tx_bist_on(chip_id, serdes_id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%d prbs tx not enable\n", chip_id,
                    static_cast<int>(serdes_id));
        return SHR_E_FAIL;
    }
    const step pulse[] = {SDS(bist_cfg5, tx_bist_err_inj, 1), SDS(bist_cfg5, tx_bist_err_inj, 0)};
    i32 rc = 0;
    for (u32 i = 0; rc == 0 && i < count; i++) {
        rc = run(chip_id, serdes_id, pulse);
    }
    return rc;
}

i32 _csl_atolreef_serdes_prbs_counter_clear(u32 chip_id, u32 serdes_id)
{
    if (!_rx_bist_on(chip_id, serdes_id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%d prbs rx not enable\n", chip_id,
                    static_cast<int>(serdes_id));
        return SHR_E_FAIL;
    }
    const step restart[] = {SDS(bist_cfg1, rx_bist_en_byp_val, 0), SDS(bist_cfg1, rx_bist_en_byp_ctrl, 0), S(1000),
                            SDS(bist_cfg1, rx_bist_en_byp_ctrl, 1), SDS(bist_cfg1, rx_bist_en_byp_val, 1), S(1000)};
    return run(chip_id, serdes_id, restart);
}

i32 _csl_atolreef_serdes_prbs_counter_get(u32 chip_id, u32 serdes_id, u32 *count)
{
    if (!_rx_bist_on(chip_id, serdes_id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%d prbs rx not enable\n", chip_id,
                    static_cast<int>(serdes_id));
        return SHR_E_FAIL;
    }
    u32 lock = 0;
    i32 rc = 0;
    for (u32 poll = 0; rc == 0 && poll < k_bist_lock_polls; poll++) {
        rc = _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(bist_sts0, bist_lock_sts), &lock);
        if (rc != 0 || lock != 0) {
            break;
        }
        settle(chip_id, k_bist_lock_poll_us);
    }
    if (rc != 0) {
        return rc;
    }
    if (lock == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u BIST lock fail!\n", chip_id, serdes_id);
        return SHR_E_FAIL;
    }
    rc = _csl_atolreef_serdes_field_get(chip_id, serdes_id, SDS_FLD(bist_sts0, bist_error_count), count);
    rc = rc == 0 ? _csl_atolreef_serdes_prbs_counter_clear(chip_id, serdes_id) : rc;
    settle(chip_id, k_bist_restart_us);
    return rc;
}

// ---- loops ---------------------------------------------------------------------------

i32 _csl_atolreef_serdes_loopback_set(u32 chip_id, u32 serdes_id, serdes_loopback *loopback)
{
    if (loopback->type >= SERDES_LOOP_TYPES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u not support serdes_loopback_type: %u \n",
                    chip_id, serdes_id, loopback->type);
        return SHR_E_NOT_SUPPORT;
    }
    if (loopback->enable > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u loopback enable:%u not support\n", chip_id,
                    serdes_id, loopback->enable);
        return SHR_E_PARAM;
    }
    const u32 on = loopback->enable;
    switch (loopback->type) {
    case SERDES_LOOP_SERIAL_TX2RX:
        return _loop_near_serial(chip_id, serdes_id, on);
    case SERDES_LOOP_SERIAL_RX2TX:
        return on ? run(chip_id, serdes_id, k_rx2tx_on) : run(chip_id, serdes_id, k_rx2tx_off);
    case SERDES_LOOP_PARALLEL_TX2RX: {
        if (on) {
            return run(chip_id, serdes_id, k_par_tx2rx_on);
        }
        // A 100BASE-FX lane keeps the two others: its lane set-up wants them.
        const bool fx = info(chip_id, serdes_id).interface_type == PORT_INTERFACE_100BASE_FX;
        const step off[] = {B1(0x241c, 12, 0), B1(0x728, 12, 0), B(0xaa4, 25, 24, 0)};
        return run(chip_id, serdes_id, std::span<const step>(off, fx ? 1 : 3));
    }
    default: {
        const step far[] = {SDS(bist_cfg4, farlpbk_en, on)};
        return run(chip_id, serdes_id, far);
    }
    }
}

i32 _csl_atolreef_serdes_loopback_get(u32 chip_id, u32 serdes_id, serdes_loopback *loopback)
{
    auto bit = [&](u32 addr, u32 b) {
        u32 v = 0;
        return _csl_atolreef_serdes_bits_get(chip_id, serdes_id, addr, b, b, &v) == 0 && v != 0;
    };
    switch (loopback->type) {
    case SERDES_LOOP_SERIAL_TX2RX:
        loopback->enable = field_value(chip_id, serdes_id, SDS_FLD(bist_cfg4, rx_nearlpbk_en)) != 0 &&
                           field_value(chip_id, serdes_id, SDS_FLD(bist_cfg4, tx_nearlpbk_en)) != 0 &&
                           field_value(chip_id, serdes_id, SDS_FLD(bist_cfg4, nearlpbk_mode_en)) != 0;
        return 0;
    case SERDES_LOOP_SERIAL_RX2TX:
        loopback->enable = bit(0x4, 0) && bit(0x10, 0) && !bit(0x1c, 24) && !bit(0x2414, 1);
        return 0;
    case SERDES_LOOP_PARALLEL_TX2RX:
        loopback->enable = bit(0x241c, 12);
        return 0;
    case SERDES_LOOP_PARALLEL_RX2TX:
        loopback->enable = field_value(chip_id, serdes_id, SDS_FLD(bist_cfg4, farlpbk_en));
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u not support serdes_loopback_type: %u \n",
                    chip_id, serdes_id, loopback->type);
        return SHR_E_NOT_SUPPORT;
    }
}

// ---- receive adaptation and parameters -----------------------------------------------

i32 _csl_atolreef_serdes_rx_adapt_set(u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt)
{
    if (adapt->type != SERDES_RX_ADAPT_DFE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id: %d, rxadapt%u not support.\n", chip_id,
                    static_cast<int>(serdes_id), adapt->type);
        return SHR_E_NOT_SUPPORT;
    }
    if (adapt->enable > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u rxadapt enable:%u not support\n", chip_id,
                    serdes_id, adapt->enable);
        return SHR_E_PARAM;
    }
    const step on[] = {
        SDS(eq_cfg4, reg_vref_data_min, 80),         SDS(eq_cfg4, reg_vref_data_max, 85),
        B(0x22c, 28, 27, 1),                         SDS(eq_cfg8, da_ctle_hf_gain_gray_bypass, 0),
        SDS(eq_cfg8, da_ctle_lf_gain_gray_bypass, 0), SDS(eq_cfg1, vga_gain_cfg_byp_ctrl, 1),
        SDS(eq_cfg1, rx_vga_stage12_ctrl, 0),        SDS(eq_cfg10, rx_sel_dat_thresh_byp, 0),
        SDS(eq_cfg10, rx_sel_phs_thresh_byp, 0),     SDS(pi_cfg2, long_time_self_adaptive_dfe, 1),
        B(0x660, 3, 1, 6),                           B1(0x664, 31, 0),
        B1(0x634, 24, 0),                            B1(0x634, 22, 1),
        B1(0x634, 23, 1),
    };
    const step off[] = {
        SDS(eq_cfg8, da_ctle_hf_gain_gray_bypass, 1), SDS(eq_cfg8, da_ctle_lf_gain_gray_bypass, 1),
        SDS(eq_cfg1, vga_gain_cfg_byp_ctrl, 1),       SDS(eq_cfg1, rx_vga_stage12_ctrl, 1),
        SDS(eq_cfg10, rx_sel_dat_thresh_byp, 1),      SDS(eq_cfg10, rx_sel_phs_thresh_byp, 1),
        SDS(pi_cfg2, long_time_self_adaptive_dfe, 0),
    };
    const i32 rc = adapt->enable ? run(chip_id, serdes_id, on) : run(chip_id, serdes_id, off);
    if (rc == 0) {
        info(chip_id, serdes_id).rx_adapt = adapt->enable;
    }
    return rc;
}

i32 _csl_atolreef_serdes_rx_adapt_get(u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt)
{
    if (adapt->type != SERDES_RX_ADAPT_DFE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id: %d, rxadapt%u not support.\n", chip_id,
                    static_cast<int>(serdes_id), adapt->type);
        return SHR_E_NOT_SUPPORT;
    }
    adapt->enable = field_value(chip_id, serdes_id, SDS_FLD(eq_cfg10, rx_sel_dat_thresh_byp)) == 0 &&
                    field_value(chip_id, serdes_id, SDS_FLD(eq_cfg10, rx_sel_phs_thresh_byp)) == 0 &&
                    field_value(chip_id, serdes_id, SDS_FLD(pi_cfg2, long_time_self_adaptive_dfe)) == 1 &&
                    info(chip_id, serdes_id).rx_adapt == 1;
    return 0;
}

i32 csl_atolreef_serdes_rx_adapt_para_set(u32 chip_id, u32 serdes_id, serdes_rx_para *para)
{
    const u32 n = sizeof(k_rx_para) / sizeof(k_rx_para[0]);
    if (para->sel != 1 || para->para < 1 || para->para > n) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u rx para set not support type:%u, value:%u\n",
                    chip_id, serdes_id, para->para, para->value);
        return SHR_E_NOT_SUPPORT;
    }
    const rx_para_row &r = k_rx_para[para->para - 1];
    const u32 v = para->value;
    if (v >> r.width != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES,
                    "serdes_id[%u]  field set val %#x  not support, reg_name_id:%u bit_name_id:%u max val %#x\n",
                    serdes_id, v, static_cast<u32>(r.val_reg), static_cast<u32>(r.val_bit), (1u << r.width) - 1);
        return SHR_E_NOT_SUPPORT;
    }
    u32 coded = v;
    if (r.code == coding::gray) {
        coded = csl_atolreef_grey_coding(v);
    } else if (r.code == coding::tap) {
        coded = (v & 0x40) | csl_atolreef_grey_coding(v & 0x3F);
    }
    step steps[4] = {F(r.ctrl_reg, r.ctrl_bit, 1)};
    u32 count = 1;
    if (para->para == SERDES_RX_PARA_VGA_STAGE12) {
        steps[count++] = SDS(eq_cfg1, rx_vga_stage12_ctrl, 0);
    }
    if (r.code == coding::split) {
        steps[count++] = F(r.val_reg, r.val_bit, v >> 2);
        steps[count++] = F(r.lo_reg, r.lo_bit, v & 3);
    } else {
        steps[count++] = F(r.val_reg, r.val_bit, coded);
    }
    const i32 rc = run(chip_id, serdes_id, std::span<const step>(steps, count));
    if (rc == 0) {
        csl_atolreef_serdes_db *d = db(chip_id);
        switch (para->para) {
        case SERDES_RX_PARA_CTLE_HF_CAL:
            d->rx_para_hf_cal_val[serdes_id] = v;
            break;
        case SERDES_RX_PARA_VGA_CAPEN:
            d->rx_para_vga_cap_val[serdes_id] = v;
            break;
        case SERDES_RX_PARA_VGA_STAGE12:
            d->rx_para_stage12_val[serdes_id] = v;
            break;
        case SERDES_RX_PARA_CTLE_HF:
            d->rx_para_hf_val[serdes_id] = v;
            break;
        default:
            break;
        }
    }
    return rc;
}

// ---- offset calibration ---------------------------------------------------------------

// One lane's calibration in the tables `t`.
static i32 _offset_calibrate(u32 chip_id, u32 serdes_id, cal_tables &t, char *report, u32 len)
{
    u32 sum_i_sel = 0;
    i32 rc = _csl_atolreef_serdes_bits_get(chip_id, serdes_id, 0x40, 5, 5, &sum_i_sel);
    const step head[] = {B(0x168, 3, 0, 0), B1(0x40, 5, 1), SDS(offset_cal_cfg0, rx_ofs_sel_byp, 0)};
    rc = rc == 0 ? run(chip_id, serdes_id, head) : rc;
    u32 ofs = 0, los_ossel = 0;
    rc = rc == 0 ? _cal_ctle(chip_id, serdes_id, &ofs, &los_ossel) : rc;
    rc = rc == 0 ? _cal_slicers(chip_id, serdes_id, t) : rc;
    if (rc != 0) {
        return rc;
    }
    u32 words[k_cal_channels] = {};
    _cal_results(t, words);
    const step take[] = {B1(0xaa0, 1, 0),       B(0x168, 3, 0, 15),    W(0x148, words[0]),     W(0x14c, words[1]),
                         W(0x150, words[2]),    W(0x154, words[3]),    B1(0x40, 5, sum_i_sel)};
    rc = run(chip_id, serdes_id, take);
    if (rc == 0 && report != nullptr) {
        text_buf out(chip_id, report, len);
        out.add("serdes%u:\nCHA = 0x%x\nCHB = 0x%x\nCHC = 0x%x\nCHD = 0x%x\nrx_los_ossel = 0x%x, rx_ofs_sel = 0x%x\n",
                serdes_id, words[0], words[1], words[2], words[3], los_ossel, ofs);
        rc = out.status();
    }
    return rc;
}

i32 _csl_atolreef_serdes_offset_calibrate(u32 chip_id, u32 serdes_id, char *report, u32 len)
{
    cal_tables t;
    const i32 rc = _cal_tables_alloc(chip_id, &t);
    return rc != 0 ? rc : _offset_calibrate(chip_id, serdes_id, t, report, len);
}

// All lanes share one set of tables: each lane's rounds overwrite the
// last lane's.
i32 _csl_atolreef_serdes_all_offset_calibrate(u32 chip_id)
{
    cal_tables t;
    i32 rc = _cal_tables_alloc(chip_id, &t);
    for (u32 sid = 0; rc == 0 && sid < ATOLREEF_SDS_LANES; sid++) {
        if (info(chip_id, sid).interface_type != PORT_INTERFACE_100BASE_FX) {
            rc = _offset_calibrate(chip_id, sid, t, nullptr, 0);
        }
    }
    return rc;
}

i32 _csl_atolreef_serdes_ctle_offset_calibrate_result(u32 chip_id, u32 serdes_id, char *buffer, u32 len)
{
    const i32 rc = buffer_check(chip_id, serdes_id, "ctle offset calibrate", "SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN",
                                len, SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN);
    return rc != 0 ? rc : _csl_atolreef_serdes_offset_calibrate(chip_id, serdes_id, buffer, len);
}

// ---- eye ----------------------------------------------------------------------------

i32 _csl_atolreef_serdes_four_point_eye(u32 chip_id, u32 serdes_id, serdes_eye *eye)
{
    eye_controls hold(chip_id, serdes_id);
    i32 rc = hold.open();
    u32 centre = 0;
    rc = rc == 0 ? _eye_meas(chip_id, serdes_id, 0, 0, &centre) : rc;
    if (rc != 0) {
        return rc;
    }
    if (centre != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%d full eye [0:0] err count:%u != 0\n", chip_id,
                    static_cast<int>(serdes_id), centre);
        return SHR_E_FAIL;
    }
    struct scan {
        i32 dx, dy;
        u32 limit;
        const char *name;
        u32 *edge;
    };
    u32 left = 0, right = 0;
    const scan first[] = {{-1, 0, k_eye_x_limit, "left", &left},     {1, 0, k_eye_x_limit, "right", &right},
                          {0, 1, k_eye_y_limit, "up", &eye->up},      {0, -1, k_eye_y_limit, "down", &eye->down}};
    for (const scan &s : first) {
        rc = _eye_edge(chip_id, serdes_id, s.dx, s.dy, 0, 0, s.limit, s.edge);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "full eye scan %s timeout!\n", s.name);
            return rc;
        }
    }
    const i32 x_center = (static_cast<i32>(right) - static_cast<i32>(left)) / 2;
    const i32 y_center = (static_cast<i32>(eye->up) - static_cast<i32>(eye->down)) / 2;
    // Left and right again along the row of the centre.
    const scan again[] = {{-1, 0, k_eye_x_limit, "left2", &eye->left}, {1, 0, k_eye_x_limit, "right2", &eye->right}};
    for (const scan &s : again) {
        rc = _eye_edge(chip_id, serdes_id, s.dx, s.dy, 0, y_center, s.limit, s.edge);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "full eye scan %s timeout!\n", s.name);
            return rc;
        }
    }
    eye->unused = 0;
    eye->x_center = static_cast<u32>(x_center);
    eye->y_center = static_cast<u32>(y_center);
    return 0;
}

i32 _csl_atolreef_serdes_full_eye_get(u32 chip_id, u32 serdes_id, char *buffer, u64 len)
{
    i32 rc = buffer_check(chip_id, serdes_id, "full eye_info", "SERDES_FULL_EYE_BUFF_LEN", len,
                          SERDES_FULL_EYE_BUFF_LEN);
    if (rc != 0) {
        return rc;
    }
    constexpr i32 cols = 2 * k_full_x_max / k_full_x_step + 1, rows = 2 * k_full_y_max / k_full_y_step + 1;
    u32 grid[rows][cols] = {};
    eye_controls hold(chip_id, serdes_id);
    rc = hold.open();
    // From the centre outward: rows 0, +1, -1, +2, ..., and in each row
    // the columns the same way.
    for (i32 r = 0; rc == 0 && r < rows; r++) {
        const i32 ry = (r + 1) / 2 * (r % 2 != 0 ? 1 : -1);
        for (i32 c = 0; rc == 0 && c < cols; c++) {
            const i32 cx = (c + 1) / 2 * (c % 2 != 0 ? 1 : -1);
            u32 &cell = grid[rows / 2 - ry][cols / 2 + cx];
            rc = _eye_point(chip_id, serdes_id, cx * k_full_x_step, ry * k_full_y_step, k_eye_rounds,
                            k_eye_round_err_max, &cell);
        }
    }
    if (rc != 0) {
        return rc;
    }
    text_buf out(chip_id, buffer, len);
    out.add("serdes%u full eye: mean errors per point, x %d..%d step %d, y %d..%d step %d\n", serdes_id,
            -k_full_x_max, k_full_x_max, k_full_x_step, k_full_y_max, -k_full_y_max, k_full_y_step);
    for (i32 r = 0; r < rows; r++) {
        out.add("%4d:\t", k_full_y_max - r * k_full_y_step);
        for (i32 c = 0; c < cols; c++) {
            out.add("%u\t", grid[r][c]);
        }
        out.add("\n");
    }
    return out.status();
}

// ---- 8K clocks ---------------------------------------------------------------------

i32 _csl_atolreef_serdes_8k_clk_program(u32 chip_id, u32 serdes_id, u32 clk_id)
{
    const clk_8k_regs &r = k_8k[clk_id];
    u32 div0 = 0, div1 = 0, mux4 = 0;
    _8k_divider(chip_id, serdes_id, &div0, &div1, &mux4);
    const u32 fields[][3] = {{r.div0_reg, r.div0, div0}, {r.div1_reg, r.div1, div1}, {r.cfg, r.mux4, mux4},
                             {r.cfg, r.feclk, serdes_id}, {r.cfg, r.rxclk, serdes_id}, {r.cfg, r.div33, serdes_id},
                             {r.cfg, r.div10, serdes_id}};
    i32 rc = 0;
    for (const auto &f : fields) {
        rc = rc == 0 ? _hreg_set(chip_id, f[0], f[1], f[2]) : rc;
    }
    return rc;
}

i32 _csl_atolreef_serdes_8k_clk_enable(u32 chip_id, u32 clk_id, u32 enable)
{
    return _hreg_set(chip_id, cib_lsw_hreg_srds_8k_en, k_8k[clk_id].en, enable);
}

i32 _csl_atolreef_serdes_8k_clk_set(u32 chip_id, u32 serdes_id, u32 clk_id)
{
    if (clk_id >= k_8k_clocks) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes 8k clk id:%u init error, not support\n", chip_id,
                    clk_id);
        return SHR_E_PARAM;
    }
    if (info(chip_id, serdes_id).speed == SERDES_SPEED_UNUSED) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes 8k clk id:%u serdes id:%u, serdes unuse\n", chip_id,
                    clk_id, serdes_id);
        return SHR_E_PARAM;
    }
    i32 rc = _hreg_set(chip_id, k_8k[clk_id].cfg, k_8k[clk_id].mod, 0);
    rc = rc == 0 ? _csl_atolreef_serdes_8k_clk_program(chip_id, serdes_id, clk_id) : rc;
    return rc == 0 ? _csl_atolreef_serdes_8k_clk_enable(chip_id, clk_id, 1) : rc;
}

i32 _csl_atolreef_serdes_8k_clk_get(u32 chip_id, u32 clk_id, serdes_8k_clk *clk)
{
    if (clk_id >= k_8k_clocks) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes 8k clk id:%u init error, not support\n", chip_id,
                    clk_id);
        return SHR_E_PARAM;
    }
    const clk_8k_regs &r = k_8k[clk_id];
    i32 rc = cib_field_get(chip_id, r.cfg, 0, r.rxclk, &clk->serdes_id);
    rc = rc == 0 ? cib_field_get(chip_id, cib_lsw_hreg_srds_8k_en, 0, r.en, &clk->enable) : rc;
    rc = rc == 0 ? cib_field_get(chip_id, r.cfg, 0, r.mux4, &clk->clk_sel) : rc;
    rc = rc == 0 ? cib_field_get(chip_id, r.div0_reg, 0, r.div0, &clk->div0) : rc;
    return rc == 0 ? cib_field_get(chip_id, r.div1_reg, 0, r.div1, &clk->div1) : rc;
}

} // extern "C"
