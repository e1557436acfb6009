// What the files of atolreef's SerDes driver share: the place of a lane,
// the access to the macro's registers by name, by offset and by the chip's
// catalogue, register sequences as data, and the lane's rate facts.
#ifndef TIDE_CSL_ATOLREEF_SERDES_INT_H
#define TIDE_CSL_ATOLREEF_SERDES_INT_H

#include <tide/port.h>

#include <cstdarg>
#include <span>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/driver/serdes/csl_atolreef_serdes.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "hal/hal_op/hal.h"

extern "C" {

/* One named field by reg_name_id and bit_name_id: a read-modify-write, or
 * the field's value.  A value too wide for the field gives -24. */
i32 _csl_atolreef_serdes_field_set(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 bit_name_id, u32 data);
i32 _csl_atolreef_serdes_field_get(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 bit_name_id, u32 *data);
/* Bits start_bit to end_bit of the register at `addr`, an offset in the
 * lane's macro (0x1000 to 0x1fff: a register of the macro; any other: the
 * lane's).  Bad bit numbers give -29, a value too wide -24. */
i32 _csl_atolreef_serdes_bits_set(u32 chip_id, u32 serdes_id, u32 addr, u32 start_bit, u32 end_bit, u32 data);
i32 _csl_atolreef_serdes_bits_get(u32 chip_id, u32 serdes_id, u32 addr, u32 start_bit, u32 end_bit, u32 *data);
/* The receiver's trained values into the run-time record. */
i32 _csl_atolreef_serdes_rx_para_save(u32 chip_id, u32 serdes_id);
/* The lane's power by `dir` (SERDES_POWER_*), `value` 1 down. */
i32 _csl_atolreef_serdes_power_set(u32 chip_id, u32 serdes_id, serdes_power *power);
/* The offset calibration of one lane; `report` NULL for none. */
i32 _csl_atolreef_serdes_offset_calibrate(u32 chip_id, u32 serdes_id, char *report, u32 len);
i32 _csl_atolreef_serdes_all_offset_calibrate(u32 chip_id);
/* One emphasis setting of a lane. */
i32 _csl_atolreef_serdes_emphasis_set(u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis);
/* Polarity of a lane. */
i32 _csl_atolreef_serdes_pn_set(u32 chip_id, u32 serdes_id, serdes_pn *pn);
/* 8K clock output `clk_id` from the lane: the divider and the selection of
 * its speed, without the enable. */
i32 _csl_atolreef_serdes_8k_clk_program(u32 chip_id, u32 serdes_id, u32 clk_id);
i32 _csl_atolreef_serdes_8k_clk_enable(u32 chip_id, u32 clk_id, u32 enable);

/* The slots of the test and diagnostic parts of the driver. */
i32 _csl_atolreef_serdes_pn_get(u32 chip_id, u32 serdes_id, serdes_pn *pn);
i32 _csl_atolreef_serdes_emphasis_get(u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis);
i32 _csl_atolreef_serdes_prbs_set(u32 chip_id, u32 serdes_id, serdes_prbs *prbs);
i32 _csl_atolreef_serdes_prbs_get(u32 chip_id, u32 serdes_id, serdes_prbs *prbs);
i32 _csl_atolreef_serdes_prbs_insert_err(u32 chip_id, u32 serdes_id, u32 count);
i32 _csl_atolreef_serdes_prbs_counter_get(u32 chip_id, u32 serdes_id, u32 *count);
i32 _csl_atolreef_serdes_prbs_counter_clear(u32 chip_id, u32 serdes_id);
i32 _csl_atolreef_serdes_loopback_set(u32 chip_id, u32 serdes_id, serdes_loopback *loopback);
i32 _csl_atolreef_serdes_loopback_get(u32 chip_id, u32 serdes_id, serdes_loopback *loopback);
i32 _csl_atolreef_serdes_rx_adapt_set(u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt);
i32 _csl_atolreef_serdes_rx_adapt_get(u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt);
i32 _csl_atolreef_serdes_four_point_eye(u32 chip_id, u32 serdes_id, serdes_eye *eye);
i32 _csl_atolreef_serdes_full_eye_get(u32 chip_id, u32 serdes_id, char *buffer, u64 len);
i32 _csl_atolreef_serdes_all_reg_dump(u32 chip_id, u32 serdes_id, u32 detail, char *buffer, u64 len);
i32 _csl_atolreef_serdes_debug_info_get(u32 chip_id, u32 serdes_id, char *buffer, u64 len);
i32 _csl_atolreef_serdes_inner_register_get(u32 chip_id, u32 serdes_id, u32 addr, u32 *data);
i32 _csl_atolreef_serdes_inner_register_set(u32 chip_id, u32 serdes_id, u32 addr, u32 data);
i32 _csl_atolreef_serdes_name_register_get(u32 chip_id, u32 serdes_id, char *reg, u32 *data);
i32 _csl_atolreef_serdes_name_register_set(u32 chip_id, u32 serdes_id, char *reg, u32 data);
i32 _csl_atolreef_serdes_support_speed_get(u32 chip_id, u32 serdes_id, char *buffer, u64 len);
i32 _csl_atolreef_serdes_8k_clk_set(u32 chip_id, u32 serdes_id, u32 clk_id);
i32 _csl_atolreef_serdes_8k_clk_get(u32 chip_id, u32 clk_id, serdes_8k_clk *clk);
i32 _csl_atolreef_serdes_ctle_offset_calibrate_result(u32 chip_id, u32 serdes_id, char *buffer, u32 len);

} // extern "C"

namespace tide::serdes {

// Where a lane sits: serdes_id 0..7 stands for the value 0, 1, 2, 3, 7, 6,
// 5, 4, which is macro (value >> 2) and lane (value & 3).
struct lane_place {
    u32 macro;
    u32 lane;
};
lane_place place_of(u32 serdes_id);
// The serdes_id of a lane of a macro.
u32 serdes_of(u32 macro, u32 lane);

// The rate classes of the lane tables.
enum rate_class : u8 { kRate1p25 = 0, kRate3p125 = 1, kRate5 = 2, kRate10 = 3, kRate10p3125 = 4, kRates = 5 };

// What a speed id stands for: its rate class, its PLL and the VCO class
// the PLL must run at.
struct speed_fact {
    rate_class rate;
    u8 pll;
    u8 vco;
};
// The facts of speed ids 11 to 20; false for any other id.
bool speed_fact_of(u32 speed, speed_fact *out);
// The rate class a lane's analog defaults follow: its speed's, or 10G for
// a lane without one.
rate_class rate_of(u32 speed);
// The rate of a class without its PLL, as a speed attribute: "10Gbps".
const char *rate_name(rate_class rate);

// The chip's control record and run-time record, both there once the
// driver's software state stands.
csl_serdes_control_t *control(u32 chip_id);
csl_atolreef_serdes_db *db(u32 chip_id);
csl_serdes_info &info(u32 chip_id, u32 serdes_id);
// The VCO class PLL `pll` of the lane's macro runs at.
u32 &vco_of(u32 chip_id, u32 serdes_id, u32 pll);

// Waits for the chip to settle.
void settle(u32 chip_id, u32 usec);

// One step of a register sequence.
enum class op : u8 {
    field, // a = reg_name_id, b = bit_name_id
    bits,  // a = offset, b = end bit, c = start bit
    rbits, // a = reg_name_id, b = end bit, c = start bit: bits of a named register
    word,  // a = offset: the whole register
    sleep, // value: microseconds
};
struct step {
    op kind;
    u16 a;
    u8 b;
    u8 c;
    u32 value;
};
constexpr step F(u32 reg, u32 field, u32 value)
{
    return {op::field, static_cast<u16>(reg), static_cast<u8>(field), 0, value};
}
constexpr step B(u32 addr, u32 end_bit, u32 start_bit, u32 value)
{
    return {op::bits, static_cast<u16>(addr), static_cast<u8>(end_bit), static_cast<u8>(start_bit), value};
}
constexpr step B1(u32 addr, u32 bit, u32 value)
{
    return B(addr, bit, bit, value);
}
constexpr step RB(u32 reg, u32 end_bit, u32 start_bit, u32 value)
{
    return {op::rbits, static_cast<u16>(reg), static_cast<u8>(end_bit), static_cast<u8>(start_bit), value};
}
constexpr step W(u32 addr, u32 value)
{
    return {op::word, static_cast<u16>(addr), 0, 0, value};
}
constexpr step S(u32 usec)
{
    return {op::sleep, 0, 0, 0, usec};
}
// A named field of the macro's catalogue: SDS(eq_cfg1, rx_vga_capen, 1).
#define SDS(reg, field, value) ::tide::serdes::F(sds_reg_##reg, sds_f_##reg##__##field, (value))
// The (reg_name_id, bit_name_id) pair of a named field.
#define SDS_FLD(reg, field) sds_reg_##reg, sds_f_##reg##__##field

// Runs the steps in order on the lane; the first failure is logged and
// returned, the steps before it stay done.
i32 run(u32 chip_id, u32 serdes_id, std::span<const step> steps);
// The same, with adjacent steps on disjoint bits of one register merged
// into one read-modify-write of the register: for groups of settings
// where only the values that land count, not the writes between them.
i32 run_records(u32 chip_id, u32 serdes_id, std::span<const step> steps);
// The same on every lane of a macro.
i32 run_macro_lanes(u32 chip_id, u32 macro, std::span<const step> steps);
// One field; 0 when the read fails (after logging it).
u32 field_value(u32 chip_id, u32 serdes_id, u32 reg, u32 field);
// Logs a failed step: "errcode = %d [%s]\n".
i32 failed(u32 chip_id, i32 rc);

// A field of a register of the chip's catalogue, instance `index`; the set
// holds the register lock of the register's module.
i32 cib_field_set(u32 chip_id, u32 module_id, u32 reg_id, u32 index, u32 field_id, u32 value);
i32 cib_field_get(u32 chip_id, u32 reg_id, u32 index, u32 field_id, u32 *value);

// Text appended to a caller's buffer of `len` bytes, always terminated.
// An append that does not fit logs "sal_strcat ret = %u fail\n" and makes
// status() -6; later appends do nothing.
class text_buf {
public:
    text_buf(u32 chip_id, char *buf, u64 len) : chip_(chip_id), buf_(buf), len_(len)
    {
        if (len_ > 0) {
            buf_[0] = '\0';
        }
    }
    void add(const char *format, ...) TIDE_PRINTF(2, 3);
    i32 status() const { return rc_; }

private:
    u32 chip_;
    char *buf_;
    u64 len_;
    u64 used_ = 0;
    i32 rc_ = 0;
};

// A caller's buffer of at least `need` bytes: 0, or -4 with the line of
// `what` ("chip_id:%u serdes_id:%u %s len err! len:%lu < %s\n").
i32 buffer_check(u32 chip_id, u32 serdes_id, const char *what, const char *need_name, u64 len, u64 need);

} // namespace tide::serdes

#endif // TIDE_CSL_ATOLREEF_SERDES_INT_H
