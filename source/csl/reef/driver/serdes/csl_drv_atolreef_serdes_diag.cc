// atolreef's SerDes driver: the macro's registers by name, by id and by
// offset, and the reports of a lane (register dump, debug information,
// receive parameters, the speed table).
#include <cstdio>
#include <cstring>

#include "atolreef_cib.h"
#include "csl/reef/driver/serdes/csl_atolreef_serdes_int.h"

using namespace tide::serdes;

namespace {

constexpr u32 k_lane_space = 1u << ATOLREEF_SDS_LANE_SHIFT;

// The catalogue row of a register name; -1 when there is none.
i32 _reg_by_name(const char *name)
{
    for (u32 i = 0; name != nullptr && i < ATOLREEF_SDS_REG_COUNT; i++) {
        if (strcmp(g_atolreef_serdes_reg[i].name, name) == 0) {
            return static_cast<i32>(i);
        }
    }
    return -1;
}

i32 _field_by_name(u32 reg_name_id, const char *name)
{
    const csl_serdes_reg_t &r = g_atolreef_serdes_reg[reg_name_id];
    for (u32 i = 0; name != nullptr && i < r.field_count; i++) {
        if (strcmp(r.fields[i].name, name) == 0) {
            return static_cast<i32>(i);
        }
    }
    return -1;
}

// A register and field by their names, each miss logged with its own line
// ("set" or "get" in it).
i32 _find(u32 chip_id, u32 serdes_id, const char *reg, const char *field, const char *op, i32 *reg_id, i32 *field_id)
{
    *reg_id = _reg_by_name(reg);
    if (*reg_id < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "register name %s serdes_id %u can't find reg , reg_name = %s \n", op,
                    serdes_id, reg != nullptr ? reg : "");
        return SHR_E_NOT_FOUND;
    }
    if (field == nullptr) {
        return 0;
    }
    *field_id = _field_by_name(static_cast<u32>(*reg_id), field);
    if (*field_id < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id %u %s can't find field_name , field_name = %s \n", serdes_id,
                    op, field);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

u32 _reg_addr(u32 serdes_id, const csl_serdes_reg_t &r)
{
    const lane_place p = place_of(serdes_id);
    return g_serdes_base_addr[p.macro] + (r.per_lane ? (r.offset | p.lane << ATOLREEF_SDS_LANE_SHIFT) : r.offset);
}

u32 _width_mask(const csl_serdes_field_t &f)
{
    const u32 width = f.end_bit - f.start_bit + 1u;
    return width >= 32 ? 0xFFFFFFFFu : (1u << width) - 1;
}

// The fields of the registers `regs` of the lane, one line each:
// "name[hi:lo]              : 0x%x".
void _fields_report(u32 chip_id, u32 serdes_id, text_buf &out, std::span<const u32> regs)
{
    for (u32 reg : regs) {
        const csl_serdes_reg_t &r = g_atolreef_serdes_reg[reg];
        u32 word = 0;
        csl_atolreef_serdes_register_get(chip_id, serdes_id, reg, &word);
        for (u32 i = 0; i < r.field_count; i++) {
            const csl_serdes_field_t &f = r.fields[i];
            char name[64];
            snprintf(name, sizeof(name), "%s[%u:%u]", f.name, f.end_bit, f.start_bit);
            out.add("%-25s: 0x%x\n", name, (word >> f.start_bit) & _width_mask(f));
        }
    }
}

// The receiver's registers of the reports.
constexpr u32 k_rx_report_regs[] = {sds_reg_eq_cfg1,  sds_reg_eq_cfg2,  sds_reg_eq_cfg3,  sds_reg_eq_cfg8,
                                    sds_reg_eq_cfg9,  sds_reg_eq_cfg10, sds_reg_eq_cfg11, sds_reg_eq_sta0,
                                    sds_reg_eq_sta1,  sds_reg_eq_sta2,  sds_reg_pi_cfg0,  sds_reg_pi_cfg1,
                                    sds_reg_pi_cfg2,  sds_reg_pi_cfg_n_2};
constexpr u32 k_tx_report_regs[] = {sds_reg_pol_inv_cfg, sds_reg_ffe_cfg0, sds_reg_lane_cfg3, sds_reg_los_cfg0};

} // namespace

extern "C" {

i32 csl_atolreef_serdes_register_set(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 data)
{
    if (reg_name_id >= ATOLREEF_SDS_REG_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id[%u] reg_name_id:%u out of range\n", serdes_id, reg_name_id);
        return SHR_E_PARAM;
    }
    const i32 rc = csl_reg_general_write32(chip_id, HAL_BAR_LSW, _reg_addr(serdes_id, g_atolreef_serdes_reg[reg_name_id]),
                                           data);
    return rc != 0 ? failed(chip_id, rc) : 0;
}

i32 csl_atolreef_serdes_register_get(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 *data)
{
    if (reg_name_id >= ATOLREEF_SDS_REG_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes_id[%u] reg_name_id:%u out of range\n", serdes_id, reg_name_id);
        return SHR_E_PARAM;
    }
    const i32 rc = csl_reg_general_read32(chip_id, HAL_BAR_LSW, _reg_addr(serdes_id, g_atolreef_serdes_reg[reg_name_id]),
                                          data);
    return rc != 0 ? failed(chip_id, rc) : 0;
}

i32 csl_atolreef_serdes_register_field_name_set(u32 chip_id, u32 serdes_id, char *reg, char *field, u32 data)
{
    i32 reg_id = -1, field_id = -1;
    const i32 rc = _find(chip_id, serdes_id, reg, field, "set", &reg_id, &field_id);
    if (rc != 0) {
        return rc;
    }
    const csl_serdes_field_t &f = g_atolreef_serdes_reg[reg_id].fields[field_id];
    if ((data & ~_width_mask(f)) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES,
                    "serdes_id[%u]  field set val %#x  not support, reg_name_id:%s bit_name_id:%s max val %#x\n",
                    serdes_id, data, reg, field, _width_mask(f));
        return SHR_E_NOT_SUPPORT;
    }
    return _csl_atolreef_serdes_field_set(chip_id, serdes_id, static_cast<u32>(reg_id), static_cast<u32>(field_id),
                                          data);
}

i32 csl_atolreef_serdes_register_field_name_get(u32 chip_id, u32 serdes_id, char *reg, char *field, u32 *data)
{
    i32 reg_id = -1, field_id = -1;
    const i32 rc = _find(chip_id, serdes_id, reg, field, "get", &reg_id, &field_id);
    return rc != 0 ? rc
                   : _csl_atolreef_serdes_field_get(chip_id, serdes_id, static_cast<u32>(reg_id),
                                                    static_cast<u32>(field_id), data);
}

i32 _csl_atolreef_serdes_name_register_set(u32 chip_id, u32 serdes_id, char *reg, u32 data)
{
    i32 reg_id = -1, field_id = -1;
    const i32 rc = _find(chip_id, serdes_id, reg, nullptr, "set", &reg_id, &field_id);
    return rc != 0 ? rc : csl_atolreef_serdes_register_set(chip_id, serdes_id, static_cast<u32>(reg_id), data);
}

i32 _csl_atolreef_serdes_name_register_get(u32 chip_id, u32 serdes_id, char *reg, u32 *data)
{
    i32 reg_id = -1, field_id = -1;
    const i32 rc = _find(chip_id, serdes_id, reg, nullptr, "get", &reg_id, &field_id);
    return rc != 0 ? rc : csl_atolreef_serdes_register_get(chip_id, serdes_id, static_cast<u32>(reg_id), data);
}

// A whole register by its offset in the macro: a multiple of 4 below the
// lane space (0x1000 to 0x1fff: the macro's own).
static i32 _csl_atolreef_serdes_inner_addr_check(u32 chip_id, u32 serdes_id, u32 addr)
{
    if (addr % 4 != 0 || addr >= k_lane_space) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u inner register addr:%#x out of range\n",
                    chip_id, serdes_id, addr);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _csl_atolreef_serdes_inner_register_get(u32 chip_id, u32 serdes_id, u32 addr, u32 *data)
{
    const i32 rc = _csl_atolreef_serdes_inner_addr_check(chip_id, serdes_id, addr);
    return rc != 0 ? rc : _csl_atolreef_serdes_bits_get(chip_id, serdes_id, addr, 0, 31, data);
}

i32 _csl_atolreef_serdes_inner_register_set(u32 chip_id, u32 serdes_id, u32 addr, u32 data)
{
    const i32 rc = _csl_atolreef_serdes_inner_addr_check(chip_id, serdes_id, addr);
    return rc != 0 ? rc : _csl_atolreef_serdes_bits_set(chip_id, serdes_id, addr, 0, 31, data);
}

i32 csl_atolreef_serdes_rx_adapt_para_get(u32 chip_id, u32 serdes_id, char *buffer)
{
    text_buf out(chip_id, buffer, SERDES_RX_PARA_BUFF_LEN);
    out.add("serdes%u rx adapt para:\n", serdes_id);
    _fields_report(chip_id, serdes_id, out, k_rx_report_regs);
    return out.status();
}

i32 _csl_atolreef_serdes_all_reg_dump(u32 chip_id, u32 serdes_id, u32 detail, char *buffer, u64 len)
{
    i32 rc = buffer_check(chip_id, serdes_id, "reg dump", "SERDES_REG_DUMP_BUFF_LEN", len, SERDES_REG_DUMP_BUFF_LEN);
    if (rc != 0) {
        return rc;
    }
    text_buf out(chip_id, buffer, len);
    out.add("serdes_id:%u ###serdes ip_reg dump begin: ### \n", serdes_id);
    for (u32 reg = 0; rc == 0 && reg < ATOLREEF_SDS_REG_COUNT; reg++) {
        const csl_serdes_reg_t &r = g_atolreef_serdes_reg[reg];
        u32 word = 0;
        rc = csl_atolreef_serdes_register_get(chip_id, serdes_id, reg, &word);
        out.add(" addr:0x%-6x value:0x%-8x\n", _reg_addr(serdes_id, r), word);
        for (u32 i = 0; detail != 0 && i < r.field_count; i++) {
            out.add("    %-34s[%u:%u] : 0x%x\n", r.fields[i].name, r.fields[i].end_bit, r.fields[i].start_bit,
                    (word >> r.fields[i].start_bit) & _width_mask(r.fields[i]));
        }
    }
    // The registers of the chip around the lane's macro.
    constexpr u32 phy_regs[] = {cib_phy_ctrl_por_resetn,          cib_phy_ctrl_srds_rx_los,
                                cib_phy_ctrl_srds_rx_ready,       cib_phy_ctrl_srds_tx_elecidle_l0,
                                cib_phy_ctrl_srds_tx_elecidle_l1, cib_phy_ctrl_srds_tx_elecidle_l2,
                                cib_phy_ctrl_srds_tx_elecidle_l3, cib_phy_ctrl_srds_tx_preset,
                                cib_phy_ctrl_srds_tx_ready};
    const u32 macro = place_of(serdes_id).macro;
    out.add("serdes_id:%u ###phy_ctrl%u dump: ### \n", serdes_id, macro);
    for (u32 i = 0; rc == 0 && i < sizeof(phy_regs) / sizeof(phy_regs[0]); i++) {
        u32 word = 0;
        rc = csl_reef_reg_get_u32(chip_id, phy_regs[i] | macro << 20, &word);
        const cib_reg_info *info = csl_reef_reg_info_get(chip_id, phy_regs[i]);
        out.add(" %-28s value:0x%-8x\n", info != nullptr ? info->name : "", word);
    }
    return rc != 0 ? rc : out.status();
}

i32 _csl_atolreef_serdes_debug_info_get(u32 chip_id, u32 serdes_id, char *buffer, u64 len)
{
    const i32 rc = buffer_check(chip_id, serdes_id, "debug info", "SERDES_DEBUG_INFO_BUF_LEN", len,
                                SERDES_DEBUG_INFO_BUF_LEN);
    if (rc != 0) {
        return rc;
    }
    const lane_place p = place_of(serdes_id);
    const csl_serdes_info &row = info(chip_id, serdes_id);
    const bool used = row.enable != 0 && row.speed != SERDES_SPEED_UNUSED;
    text_buf out(chip_id, buffer, len);
    out.add("ds info:\nsoft version:20240816-MAIN\nserdes_id:%u[%u,%u] freq:%s use:%s\n", serdes_id, p.macro, p.lane,
            csl_serdes_speed_name(row.speed), used ? "used" : "unused");
    out.add("refclk:%u lane rate div:%u interface:%u pll_sel:%u rx_adapt:%u\n", control(chip_id)->refclk,
            db(chip_id)->serdes_rate_val[serdes_id], row.interface_type, row.pll_sel, row.rx_adapt);
    const csl_serdes_info &macro_row = info(chip_id, p.macro);
    for (u32 pll = 0; pll < ATOLREEF_SDS_PLLS; pll++) {
        u32 fbdiv = 0, down = 0, lock = 0;
        fbdiv = field_value(chip_id, serdes_id, pll == 0 ? sds_reg_pll0_cfg0 : sds_reg_pll1_cfg0,
                            pll == 0 ? sds_f_pll0_cfg0__pll0_fbdiv : sds_f_pll1_cfg0__pll1_fbdiv);
        down = field_value(chip_id, serdes_id, pll == 0 ? sds_reg_pll0_cfg0 : sds_reg_pll1_cfg0,
                           pll == 0 ? sds_f_pll0_cfg0__pll0_pd_byp_val : sds_f_pll1_cfg0__pll1_pd_byp_val);
        lock = field_value(chip_id, serdes_id, sds_reg_pll_status,
                           pll == 0 ? sds_f_pll_status__pll0_lock_sts : sds_f_pll_status__pll1_lock_sts);
        out.add("pll%u: vco:%u fbdiv:%u target:%u pd:%u lock:%u\n", pll,
                pll == 0 ? macro_row.pll0_vco : macro_row.pll1_vco, fbdiv,
                db(chip_id)->pll_fbdiv_val[p.macro + ATOLREEF_SDS_MACROS * pll], down, lock);
    }
    out.add("tx:\n");
    _fields_report(chip_id, serdes_id, out, k_tx_report_regs);
    out.add("rx:\n");
    _fields_report(chip_id, serdes_id, out, k_rx_report_regs);
    out.add("serdes %u cdr pi code: max_val = %-3u, min_val = %-3u\n", serdes_id,
            field_value(chip_id, serdes_id, SDS_FLD(pi_cfg_n_2, cdr_pi_code_max)),
            field_value(chip_id, serdes_id, SDS_FLD(pi_cfg_n_2, cdr_pi_code_min)));
    return out.status();
}

i32 _csl_atolreef_serdes_support_speed_get(u32 chip_id, u32 serdes_id, char *buffer, u64 len)
{
    const i32 rc = buffer_check(chip_id, serdes_id, "support speed", "SERDES_SUPPORT_SPEED_BUFF_LEN", len,
                                SERDES_SUPPORT_SPEED_BUFF_LEN);
    if (rc != 0) {
        return rc;
    }
    text_buf out(chip_id, buffer, len);
    for (u32 speed = SERDES_SPEED_FIRST; speed <= SERDES_SPEED_UNUSED; speed++) {
        out.add("%-2d             %-16s\n", static_cast<int>(speed), csl_serdes_speed_name(speed));
    }
    return out.status();
}

} // extern "C"
