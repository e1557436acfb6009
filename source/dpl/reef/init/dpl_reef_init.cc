// The family levels of bring-up.  Each level walks its modules in a fixed
// order, logs every step, and stops at the first failure; a failed init
// runs the matching deinit over all modules, so every module's deinit
// accepts that its init never ran.
#include <initializer_list>
#include <span>

#include "api/api_families.h"
#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/acl/dpl_reef_acl.h"
#include "dpl/reef/base/dpl_reef_base.h"
#include "dpl/reef/counter/dpl_reef_counter.h"
#include "dpl/reef/l2/dpl_reef_l2.h"
#include "dpl/reef/macsec/dpl_reef_macsec.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"
#include "dpl/reef/init/dpl_reef_init.h"
#include "dpl/reef/interrupt/dpl_reef_interrupt.h"
#include "dpl/reef/port/dpl_reef_port.h"
#include "dpl/reef/qos/dpl_reef_qos.h"
#include "dpl/reef/serdes/dpl_reef_serdes.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"
#include "hal/hal_op/hal.h"
#include "shared/shr_property_int.h"
#include "sal/linux_um/xsal_int.h"

namespace {

struct dpl_step {
    const char *name;
    i32 (*fn)(u32 chip_id);
    // Text of a failure of this step, when it is not the walk's own.
    const char *fail_fmt;
};

// Software init, in order.
constexpr dpl_step kSoftInit[] = {
    {"base", dpl_reef_base_soft_init, nullptr},
    {"serdes", dpl_reef_serdes_soft_init, nullptr},
    {"port", dpl_reef_port_soft_init, nullptr},
    {"macsec", dpl_reef_macsec_soft_init, nullptr},
    {"vlan", dpl_reef_vlan_soft_init, nullptr},
    {"mcc", dpl_reef_mcc_soft_init, nullptr},
    {"l2", dpl_reef_l2_soft_init, nullptr},
    {"qos", dpl_reef_qos_soft_init, nullptr},
    {"acl", dpl_reef_acl_fp_soft_init, nullptr},
    {"interrupt", dpl_reef_interrupt_soft_init, nullptr},
    {"counter", dpl_reef_counter_soft_init, nullptr},
};

// Software deinit, in order.
constexpr dpl_step kSoftDeinit[] = {
    {"counter", dpl_reef_counter_soft_deinit, nullptr},
    {"interrupt", dpl_reef_interrupt_soft_deinit, nullptr},
    {"acl", dpl_reef_acl_fp_soft_deinit, "[SOFT-DEINIT: %13s]init failed!!!!!!![ret=%d]\r\n"},
    {"qos", dpl_reef_qos_soft_deinit, nullptr},
    {"l2", dpl_reef_l2_soft_deinit, nullptr},
    {"mcc", dpl_reef_mcc_soft_deinit, nullptr},
    {"vlan", dpl_reef_vlan_soft_deinit, nullptr},
    {"macsec", dpl_reef_macsec_soft_deinit, nullptr},
    {"port", dpl_reef_port_soft_deinit, nullptr},
    {"serdes", dpl_reef_serdes_soft_deinit, nullptr},
    {"base", dpl_reef_base_soft_deinit, nullptr},
};

// Hardware init, in order, after the reset.  The ports come up in two
// phases around the feature modules: their MACs open only when the core
// can take packets.
constexpr dpl_step kHwInit[] = {
    {"serdes", dpl_reef_serdes_hw_init, nullptr},
    {"port_phase1", dpl_reef_port_hw_phase1_init, nullptr},
    {"base", dpl_reef_base_hw_init, nullptr},
    {"macsec", dpl_reef_macsec_hw_init, nullptr},
    {"acl", dpl_reef_acl_fp_hw_init, nullptr},
    {"vlan", dpl_reef_vlan_hw_init, nullptr},
    {"l2", dpl_reef_l2_hw_init, nullptr},
    {"mcc", dpl_reef_mcc_hw_init, nullptr},
    {"qos", dpl_reef_qos_hw_init, nullptr},
    {"port_phase2", dpl_reef_port_hw_phase2_init, nullptr},
    {"counter", dpl_reef_counter_hw_init, nullptr},
    {"interrupt", dpl_reef_interrupt_hw_init, nullptr},
};

// Hardware deinit, in order.
constexpr dpl_step kHwDeinit[] = {
    {"counter", dpl_reef_counter_hw_deinit, nullptr},
    {"qos", dpl_reef_qos_hw_deinit, nullptr},
    {"mcc", dpl_reef_mcc_hw_deinit, nullptr},
    {"l2", dpl_reef_l2_hw_deinit, nullptr},
    {"vlan", dpl_reef_vlan_hw_deinit, nullptr},
    {"macsec", dpl_reef_macsec_hw_deinit, nullptr},
    {"base", dpl_reef_base_hw_deinit, nullptr},
    {"serdes", dpl_reef_serdes_hw_deinit, nullptr},
    {"interrupt", dpl_reef_interrupt_hw_deinit, nullptr},
};

constexpr const char *kSoftInitOk = "[SOFT-INIT: %13s]............[OK]\r\n";
constexpr const char *kSoftInitFail = "[SOFT-INIT: %13s]init failed!!!!!!![ret=%d]\r\n";
constexpr const char *kSoftDeinitOk = "[SOFT-DEINIT: %13s]............[OK]\r\n";
constexpr const char *kSoftDeinitFail = "[SOFT-DEINIT: %13s]deinit failed!!!!!!![ret=%d]\r\n";
constexpr const char *kChipInitOk = "[CHIP-INIT: %13s]............[OK]\r\n";
constexpr const char *kChipInitFail = "[CHIP-INIT: %13s]init failed!!!!!!![ret=%d]\r\n";
constexpr const char *kChipDeinitOk = "[CHIP-DEINIT: %13s]............[OK]\r\n";
constexpr const char *kChipDeinitFail = "[CHIP-DEINIT: %13s]deinit failed!!!!!!![ret=%d]\r\n";

// Logs the outcome of one step: into the bring-up record of debug buffer
// 0 and through the log hook.
void _dpl_step_log(u32 chip_id, const char *name, i32 rc, const char *ok_fmt, const char *fail_fmt)
{
    if (rc < 0) {
        xsal_log(static_cast<i32>(chip_id), SHR_LOG_ERROR, __FILE__, __LINE__, fail_fmt, name, (int)rc);
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, fail_fmt, name, (int)rc);
    } else {
        xsal_log(static_cast<i32>(chip_id), SHR_LOG_INFO, __FILE__, __LINE__, ok_fmt, name);
        SHR_LOG_INF(chip_id, SHR_MOD_INIT, ok_fmt, name);
    }
}

// Runs the steps in order; the status of the first failing step, or 0.
i32 _dpl_run_steps(u32 chip_id, std::span<const dpl_step> steps, const char *ok_fmt, const char *fail_fmt)
{
    for (const dpl_step &step : steps) {
        i32 rc = g_dpl_reef_step_hook != nullptr ? g_dpl_reef_step_hook(chip_id, ok_fmt, step.name) : 0;
        if (rc == 0) {
            rc = step.fn(chip_id);
        }
        _dpl_step_log(chip_id, step.name, rc, ok_fmt, step.fail_fmt != nullptr ? step.fail_fmt : fail_fmt);
        if (rc < 0) {
            return rc;
        }
    }
    return 0;
}

// Tear-down of a level: nothing to do if it is not up; otherwise walk its
// modules until the first failure.  The level is down afterwards either
// way: the modules behind a failure stay as they are.
i32 _dpl_level_deinit(u32 chip_id, u32 *flags, const char *not_inited, std::span<const dpl_step> steps,
                      const char *ok_fmt, const char *fail_fmt)
{
    if (flags[chip_id] == 0) {
        SHR_LOG_WRN(chip_id, SHR_MOD_DIRECT, "%s", not_inited);
        return 0;
    }
    const i32 rc = _dpl_run_steps(chip_id, steps, ok_fmt, fail_fmt);
    flags[chip_id] = 0;
    return rc;
}

} // namespace

extern "C" {

dpl_reef_step_hook_t g_dpl_reef_step_hook;
u32 g_dpl_reef_soft_inited[SHR_MAX_CHIPS];
u32 g_dpl_reef_hw_inited[SHR_MAX_CHIPS];

i32 dpl_reef_soft_init(u32 chip_id)
{
    if (g_dpl_reef_soft_inited[chip_id] == 1) {
        SHR_LOG_WRN(chip_id, SHR_MOD_DIRECT, "sdk reef software was already inited!\n");
        return 0;
    }
    const i32 rc = _dpl_run_steps(chip_id, kSoftInit, kSoftInitOk, kSoftInitFail);
    // Set in both cases: on a failure it lets the deinit walk all modules.
    g_dpl_reef_soft_inited[chip_id] = 1;
    if (rc < 0) {
        dpl_reef_soft_deinit(chip_id);
    }
    return rc;
}

i32 dpl_reef_soft_deinit(u32 chip_id)
{
    return _dpl_level_deinit(chip_id, g_dpl_reef_soft_inited, "sdk reef software was not inited!\n", kSoftDeinit,
                             kSoftDeinitOk, kSoftDeinitFail);
}

// Clock gating and low power off before the reset, so that every block
// sees it.  A chip type whose catalogue the build lacks is reset as the
// chip stands, with a line that says so.
static void _dpl_reef_reset_prepare(u32 chip_id)
{
    if (csl_reef_reg_in_build(chip_id, cib_lsw_hreg_cfg_lp_en, SHR_MOD_TOP, SHR_LOG_WARN,
                              "low power and clock gating registers") != 0) {
        return;
    }
    cib_lsw_hreg_cfg_lp_en_t lp{};
    u8 lp_mask[4] = {};
    lp_mask[0] = 1u << cib_lsw_hreg_cfg_lp_en__cfg_lp_en;
    i32 rc = csl_reef_cib_lsw_hreg_cfg_lp_en_set(chip_id, 0, &lp, lp_mask);
    cib_lsw_hreg_tick_en_cfg0_t tick{};
    u8 tick_mask[4] = {};
    tick_mask[0] = (1u << cib_lsw_hreg_tick_en_cfg0__clk_static_div_cfg) |
                   (1u << cib_lsw_hreg_tick_en_cfg0__clk_auto_gate_en_cfg);
    rc |= csl_reef_cib_lsw_hreg_tick_en_cfg0_set(chip_id, 0, &tick, tick_mask);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TOP, "chip hw reset: low power and clock gating not cleared\n");
    }
}

i32 dpl_reef_chip_hw_reset(u32 chip_id)
{
    static constexpr u32 kSequence[] = {0, 8, 10, 11, 15};
    _dpl_reef_reset_prepare(chip_id);
    for (u32 value : kSequence) {
        const i32 rc = csl_reg_general_write32(chip_id, HAL_BAR_AXI, DPL_REEF_RESET_SEQ_ADDR, value);
        if (rc != 0) {
            return rc;
        }
    }
    const u32 type = shr_chip_type_get(chip_id);
    u32 done_bit = 0;
    if (type == SHR_CHIP_TYPE_KELPREEF || type == SHR_CHIP_TYPE_KELPREEF2) {
        done_bit = 1u << 2;
    } else if (type == SHR_CHIP_TYPE_ATOLREEF) {
        done_bit = 1u << 0;
    }
    const u64 start = xsal_time_usecs();
    i32 rc = 0;
    bool done = done_bit == 0; // other types: the poll ends at once
    for (u32 poll = 0; !done && poll < DPL_REEF_RESET_POLLS; poll++) {
        u32 status = 0;
        rc = csl_reg_general_read32(chip_id, HAL_BAR_AXI, DPL_REEF_RESET_STATUS_ADDR, &status);
        if (rc == 0 && (status & done_bit) != 0) {
            done = true;
            break;
        }
        xsal_usleep(DPL_REEF_RESET_POLL_US);
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_TOP, "chip hw reset: %lu ms\n", (unsigned long)((xsal_time_usecs() - start) / 1000));
    if (!done) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TOP, "chip hw reset opertion timeout\n");
        return SHR_E_TIMEOUT;
    }
    return rc;
}

i32 dpl_reef_hw_init(u32 chip_id)
{
    if (g_dpl_reef_hw_inited[chip_id] == 1) {
        SHR_LOG_WRN(chip_id, SHR_MOD_DIRECT, "sdk reef hardware was already inited!\n");
        return 0;
    }
    // Both switches default to 1: reset the chip, then program it.
    const int chip_lsw_hw_reset = shr_property_get(chip_id, "chip_lsw_hw_reset", 1);
    const int chip_hw_init = shr_property_get(chip_id, "chip_hw_init", 1);
    i32 rc = 0;
    if (chip_lsw_hw_reset == 1) {
        rc = dpl_reef_chip_hw_reset(chip_id);
        _dpl_step_log(chip_id, "hw reset", rc, kChipInitOk, kChipInitFail);
    }
    if (rc >= 0 && chip_hw_init != 1) {
        // The registers stay at their reset values; no module touches the
        // hardware.
        _dpl_step_log(chip_id, "no hw init", 0, kChipInitOk, kChipInitFail);
        g_dpl_reef_hw_inited[chip_id] = 1;
        return 0;
    }
    if (rc >= 0) {
        rc = _dpl_run_steps(chip_id, kHwInit, kChipInitOk, kChipInitFail);
    }
    g_dpl_reef_hw_inited[chip_id] = 1;
    if (rc < 0) {
        dpl_reef_hw_deinit(chip_id);
    }
    return rc;
}

i32 dpl_reef_hw_deinit(u32 chip_id)
{
    return _dpl_level_deinit(chip_id, g_dpl_reef_hw_inited, "sdk reef hardware was not inited!\n", kHwDeinit,
                             kChipDeinitOk, kChipDeinitFail);
}

// Resets the switch core without touching the host side: the ports are
// closed around the reset and the ones that were open open again.  A bad
// value is refused before anything changes.
i32 dpl_reef_chip_soft_reset(u32 chip_id, u32 value)
{
    const csl_port_control *ctl = chip_id < SHR_MAX_CHIPS ? g_csl_port_control[chip_id] : nullptr;
    const u32 ports = ctl != nullptr ? ctl->lport_count : 0;
    if (ports > DPL_REEF_SOFT_RESET_PORTS_MAX || value > 0xFFFFFFu) {
        return SHR_E_PARAM;
    }
    const i32 in_build =
        csl_reef_reg_in_build(chip_id, cib_lsw_hreg_soft_rst, SHR_MOD_TOP, SHR_LOG_ERROR, "core reset register");
    if (in_build != 0) {
        return in_build;
    }
    u32 was_on[DPL_REEF_SOFT_RESET_PORTS_MAX] = {};
    for (u32 port = 0; port < ports; port++) {
        if (tide::port::pbmp_test(ctl->valid_bmp, port)) {
            dpl_reef_port_enable_get(chip_id, port, &was_on[port]);
            dpl_reef_port_enable_set(chip_id, port, 0);
        }
    }
    cib_lsw_hreg_soft_rst_t rst{};
    u8 mask[4] = {};
    mask[0] = 1u << cib_lsw_hreg_soft_rst__soft_rst;
    i32 rc = 0;
    for (u32 v : {value, 0u}) {
        rst.soft_rst = v;
        if (rc == 0) {
            rc = csl_reef_cib_lsw_hreg_soft_rst_set(chip_id, 0, &rst, mask);
        }
    }
    for (u32 port = 0; port < ports; port++) {
        if (was_on[port] != 0) {
            dpl_reef_port_enable_set(chip_id, port, 1);
        }
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return 0;
}

// The contract of the init family: levels 0 to 3 are reached from the
// exported calls, the resets have no exported door.
extern const reef_init_dispatch_t reef_init_dispatch = {
    .soft_init = dpl_reef_soft_init,
    .soft_deinit = dpl_reef_soft_deinit,
    .hw_init = dpl_reef_hw_init,
    .hw_deinit = dpl_reef_hw_deinit,
    .chip_hw_reset = dpl_reef_chip_hw_reset,
    .chip_soft_reset = dpl_reef_chip_soft_reset,
};

} // extern "C"
