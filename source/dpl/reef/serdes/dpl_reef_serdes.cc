// The SerDes service of the reef family.  Every operation on a lane checks
// the pointers it needs and the lane, takes the lane's lock and calls the
// slot of the chip's SerDes driver; an empty slot answers -24.  The chip
// lock covers only the bring-up and the choice of the SerDes type.
#include <cstring>

#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/serdes/dpl_reef_serdes.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_serdes.h"

using tide::port::MutexGuard;
using drv = csl_serdes_driver_t;

extern "C" {
dpl_reef_serdes_info *g_dpl_reef_serdes_control[SHR_MAX_CHIPS];
xsal_mutex_t g_dpl_reef_serdes_chip_lock[SHR_MAX_CHIPS];
u32 g_dpl_reef_serdes_soft_inited[SHR_MAX_CHIPS];
u32 g_dpl_reef_serdes_hw_inited[SHR_MAX_CHIPS];
reef_serdes_special_t reef_serdes_special[SHR_MAX_CHIPS];
}

namespace {

template <typename T>
constexpr bool _arg_set(T v)
{
    if constexpr (std::is_pointer_v<T>) {
        return v != nullptr;
    } else {
        return true;
    }
}

// "freq_set" as the log lines say it: "freq set".
struct op_words {
    char text[48];
    explicit op_words(const char *name)
    {
        strncpy(text, name, sizeof(text) - 1);
        text[sizeof(text) - 1] = '\0';
        for (char *c = text; *c != '\0'; c++) {
            *c = *c == '_' ? ' ' : *c;
        }
    }
};

// The service of the chip stands: -24 (logged) for a type whose driver the
// build lacks, -17 before the software init.
i32 _dpl_serdes_present(u32 chip_id)
{
    if (g_dpl_reef_serdes_control[chip_id] != nullptr) {
        return 0;
    }
    if (g_dpl_reef_serdes_soft_inited[chip_id] != 0 && shr_chip_type_get(chip_id) != SHR_CHIP_TYPE_ATOLREEF) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_SERDES, SHR_LOG_ERROR, "SerDes driver");
    }
    return SHR_E_INIT;
}

// A slot of a driver; an empty one is an operation the chip lacks.
template <auto Slot, typename... A>
i32 _dpl_serdes_call(const char *name, u32 chip_id, u32 serdes_id, const drv *driver, A... args)
{
    if (driver == nullptr || driver->*Slot == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id:%u serdes_id:%u %s not support\n", chip_id, serdes_id,
                    op_words(name).text);
        return SHR_E_NOT_SUPPORT;
    }
    return (driver->*Slot)(chip_id, args...);
}

// The frame of an operation on a lane: the pointers it needs, the lane,
// then the slot under the lane's lock.
template <auto Slot, typename... A>
i32 _dpl_serdes_lane_op(const char *name, u32 chip_id, u32 serdes_id, A... args)
{
    i32 rc = _dpl_serdes_present(chip_id);
    if (rc != 0) {
        return rc;
    }
    if (!(... && _arg_set(args))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id %u, serdes_id %u, %s null point\n", chip_id, serdes_id,
                    op_words(name).text);
        return SHR_E_NULL_PTR;
    }
    const csl_serdes_control_t *ctl = csl_serdes_control_get(chip_id);
    if (serdes_id >= ctl->serdes_count) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES,
                    "serdes_id out range Error Happened, chip_id:%u max serdes_id:%u, curr serdes_id:%u!!\n", chip_id,
                    ctl->serdes_count - 1, serdes_id);
        return SHR_E_INVALID_DATA;
    }
    const dpl_reef_serdes_info &lane = g_dpl_reef_serdes_control[chip_id][serdes_id];
    MutexGuard hold(lane.lock);
    return _dpl_serdes_call<Slot>(name, chip_id, serdes_id, lane.driver, serdes_id, args...);
}

// An operation of the chip, not of a lane: the pointers, then the slot of
// lane 0's driver, under the chip lock when `locked`.
template <auto Slot, bool Locked, typename... A>
i32 _dpl_serdes_chip_op(const char *name, u32 chip_id, A... args)
{
    i32 rc = _dpl_serdes_present(chip_id);
    if (rc != 0) {
        return rc;
    }
    if (!(... && _arg_set(args))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id %u, %s null point\n", chip_id, op_words(name).text);
        return SHR_E_NULL_PTR;
    }
    const drv *driver = g_dpl_reef_serdes_control[chip_id][0].driver;
    if constexpr (Locked) {
        MutexGuard hold(g_dpl_reef_serdes_chip_lock[chip_id]);
        return _dpl_serdes_call<Slot>(name, chip_id, 0, driver, args...);
    } else {
        return _dpl_serdes_call<Slot>(name, chip_id, 0, driver, args...);
    }
}

// A control record also needs its value.
template <auto Slot>
i32 _dpl_serdes_control(const char *name, u32 chip_id, u32 serdes_id, serdes_control *control)
{
    if (control != nullptr && control->value == nullptr && _dpl_serdes_present(chip_id) == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "chip_id %u, serdes_id %u, %s p_value null point\n", chip_id, serdes_id,
                    op_words(name).text);
        return SHR_E_NULL_PTR;
    }
    return _dpl_serdes_lane_op<Slot>(name, chip_id, serdes_id, control);
}

// ---- bring-up -------------------------------------------------------------------------

void _dpl_serdes_locks_free(u32 chip_id)
{
    dpl_reef_serdes_info *lanes = g_dpl_reef_serdes_control[chip_id];
    const csl_serdes_control_t *ctl = csl_serdes_control_get(chip_id);
    if (lanes != nullptr) {
        for (u32 sid = 0; ctl != nullptr && sid < ctl->serdes_count; sid++) {
            xsal_mutex_destroy(lanes[sid].lock);
        }
        xsal_mem_free(lanes);
        g_dpl_reef_serdes_control[chip_id] = nullptr;
    }
    if (g_dpl_reef_serdes_chip_lock[chip_id] != nullptr) {
        xsal_mutex_destroy(g_dpl_reef_serdes_chip_lock[chip_id]);
        g_dpl_reef_serdes_chip_lock[chip_id] = nullptr;
    }
}

// The lanes' pairs with their locks and driver, and the chip lock.
i32 _dpl_serdes_lanes_make(u32 chip_id, const drv *driver)
{
    const u32 count = csl_serdes_control_get(chip_id)->serdes_count;
    auto *lanes = static_cast<dpl_reef_serdes_info *>(
        xsal_malloc(sizeof(dpl_reef_serdes_info) * count, "dpl-serdes-control", SHR_MOD_SERDES));
    if (lanes == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "malloc g_dpl_reef_serdes_control memory error!\n");
        return SHR_E_MEMORY;
    }
    memset(lanes, 0, sizeof(dpl_reef_serdes_info) * count);
    for (u32 sid = 0; sid < count; sid++) {
        lanes[sid].driver = driver;
        lanes[sid].lock = xsal_mutex_create("serdes Lock");
        if (lanes[sid].lock == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "create DPL_REEF_SERDES_INFO(chip_id, serdes_id).lock error!\n");
            for (u32 made = 0; made < sid; made++) {
                xsal_mutex_destroy(lanes[made].lock);
            }
            xsal_mem_free(lanes);
            return SHR_E_MEMORY;
        }
    }
    g_dpl_reef_serdes_control[chip_id] = lanes;
    g_dpl_reef_serdes_chip_lock[chip_id] = xsal_mutex_create("serdes chip Lock");
    if (g_dpl_reef_serdes_chip_lock[chip_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "create DPL_REEF_SERDES_CHIP_LOCK(chip_id) error!\n");
        return SHR_E_MEMORY;
    }
    return 0;
}

i32 _dpl_serdes_soft_init(u32 chip_id)
{
    i32 rc = csl_serdes_control_init(chip_id);
    rc = rc == 0 ? csl_serdes_control_db_init(chip_id) : rc;
    rc = rc == 0 ? csl_serdes_db_malloc(chip_id) : rc;
    const drv *driver = nullptr;
    rc = rc == 0 ? csl_serdes_base_probe(chip_id, &driver) : rc;
    if (rc != 0 || driver == nullptr) {
        return rc; // a sibling: no driver in the build, no lanes
    }
    rc = _dpl_serdes_lanes_make(chip_id, driver);
    return rc == 0 ? dpl_atolreef_serdes_special_register(chip_id) : rc;
}

} // namespace

extern "C" {

i32 dpl_reef_serdes_soft_init(u32 chip_id)
{
    if (g_dpl_reef_serdes_soft_inited[chip_id] == 1) {
        return 0;
    }
    const i32 rc = _dpl_serdes_soft_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    g_dpl_reef_serdes_soft_inited[chip_id] = 1;
    return 0;
}

// Undoes whatever the init got done, also a part of it.
i32 dpl_reef_serdes_soft_deinit(u32 chip_id)
{
    _dpl_serdes_locks_free(chip_id);
    reef_serdes_special[chip_id] = reef_serdes_special_t{};
    csl_serdes_db_free(chip_id);
    csl_serdes_control_deinit(chip_id);
    g_dpl_reef_serdes_soft_inited[chip_id] = 0;
    g_dpl_reef_serdes_hw_inited[chip_id] = 0;
    return 0;
}

i32 dpl_reef_serdes_hw_init(u32 chip_id)
{
    if (g_dpl_reef_serdes_hw_inited[chip_id] != 0 || g_dpl_reef_serdes_control[chip_id] == nullptr) {
        return 0; // done already, or a chip without lanes of its own in the build
    }
    MutexGuard hold(g_dpl_reef_serdes_chip_lock[chip_id]);
    const drv *driver = g_dpl_reef_serdes_control[chip_id][0].driver;
    const i32 rc = driver != nullptr && driver->init != nullptr ? driver->init(chip_id) : 0;
    // Set whatever the driver said: a second call does not run it again.
    g_dpl_reef_serdes_hw_inited[chip_id] = 1;
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

i32 dpl_reef_serdes_hw_deinit(u32 chip_id)
{
    if (g_dpl_reef_serdes_hw_inited[chip_id] == 0 || g_dpl_reef_serdes_control[chip_id] == nullptr) {
        g_dpl_reef_serdes_hw_inited[chip_id] = 0;
        return 0;
    }
    MutexGuard hold(g_dpl_reef_serdes_chip_lock[chip_id]);
    const drv *driver = g_dpl_reef_serdes_control[chip_id][0].driver;
    const i32 rc = driver != nullptr && driver->deinit != nullptr ? driver->deinit(chip_id) : 0;
    g_dpl_reef_serdes_hw_inited[chip_id] = 0;
    return rc;
}

i32 dpl_reef_serdes_cib_config_set(u32 chip_id, u32 serdes_id, u32 value)
{
    return _dpl_serdes_lane_op<&drv::cib_config_set>(__func__, chip_id, serdes_id, value);
}

// ---- the operations of the family -------------------------------------------------------

#define DPL_SERDES_LANE(name, slot, params, args)                                                           \
    i32 dpl_reef_serdes_##name params                                                                       \
    {                                                                                                       \
        return _dpl_serdes_lane_op<&drv::slot>(#name, API_UNPAREN args);                                    \
    }

DPL_SERDES_LANE(refclk_set, refclk_set, (u32 chip_id, u32 serdes_id, u32 refclk), (chip_id, serdes_id, refclk))
DPL_SERDES_LANE(refclk_get, refclk_get, (u32 chip_id, u32 serdes_id, u32 *refclk), (chip_id, serdes_id, refclk))
DPL_SERDES_LANE(refclk_chose_set, refclk_chose_set, (u32 chip_id, u32 serdes_id, u32 refclk),
                (chip_id, serdes_id, refclk))
DPL_SERDES_LANE(freq_get, freq_get, (u32 chip_id, u32 serdes_id, serdes_freq *freq), (chip_id, serdes_id, freq))
DPL_SERDES_LANE(pn_set, pn_set, (u32 chip_id, u32 serdes_id, serdes_pn *pn), (chip_id, serdes_id, pn))
DPL_SERDES_LANE(pn_get, pn_get, (u32 chip_id, u32 serdes_id, serdes_pn *pn), (chip_id, serdes_id, pn))
DPL_SERDES_LANE(emphasis_set, emphasis_set, (u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis),
                (chip_id, serdes_id, emphasis))
DPL_SERDES_LANE(emphasis_get, emphasis_get, (u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis),
                (chip_id, serdes_id, emphasis))
DPL_SERDES_LANE(serdes_enable_set, serdes_enable_set, (u32 chip_id, u32 serdes_id, u32 *enable),
                (chip_id, serdes_id, enable))
DPL_SERDES_LANE(serdes_enable_get, serdes_enable_get, (u32 chip_id, u32 serdes_id, u32 *enable),
                (chip_id, serdes_id, enable))
DPL_SERDES_LANE(prbs_set, prbs_set, (u32 chip_id, u32 serdes_id, serdes_prbs *prbs), (chip_id, serdes_id, prbs))
DPL_SERDES_LANE(prbs_get, prbs_get, (u32 chip_id, u32 serdes_id, serdes_prbs *prbs), (chip_id, serdes_id, prbs))
DPL_SERDES_LANE(prbs_insert_err_pkt, prbs_insert_err_pkt, (u32 chip_id, u32 serdes_id, u32 count),
                (chip_id, serdes_id, count))
DPL_SERDES_LANE(prbs_counter_get, prbs_counter_get, (u32 chip_id, u32 serdes_id, u32 *count),
                (chip_id, serdes_id, count))
DPL_SERDES_LANE(prbs_check, prbs_check, (u32 chip_id, u32 serdes_id, serdes_prbs_check_info *info),
                (chip_id, serdes_id, info))
DPL_SERDES_LANE(prbs_counter_clear, prbs_counter_clear, (u32 chip_id, u32 serdes_id), (chip_id, serdes_id))
DPL_SERDES_LANE(prbs_invert_enable_set, prbs_invert_enable_set, (u32 chip_id, u32 serdes_id, serdes_pn *invert),
                (chip_id, serdes_id, invert))
DPL_SERDES_LANE(serdes_reset, serdes_reset, (u32 chip_id, u32 serdes_id, u32 mode), (chip_id, serdes_id, mode))
DPL_SERDES_LANE(loopback_set, loopback_set, (u32 chip_id, u32 serdes_id, serdes_loopback *loopback),
                (chip_id, serdes_id, loopback))
DPL_SERDES_LANE(loopback_get, loopback_get, (u32 chip_id, u32 serdes_id, serdes_loopback *loopback),
                (chip_id, serdes_id, loopback))
DPL_SERDES_LANE(power_set, power_set, (u32 chip_id, u32 serdes_id, serdes_power *power), (chip_id, serdes_id, power))
DPL_SERDES_LANE(power_get, power_get, (u32 chip_id, u32 serdes_id, serdes_power *power), (chip_id, serdes_id, power))
DPL_SERDES_LANE(rx_adapt_set, rx_adapt_set, (u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt),
                (chip_id, serdes_id, adapt))
DPL_SERDES_LANE(rx_adapt_get, rx_adapt_get, (u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt),
                (chip_id, serdes_id, adapt))
DPL_SERDES_LANE(rx_para_set, rx_para_set, (u32 chip_id, u32 serdes_id, serdes_rx_para *para),
                (chip_id, serdes_id, para))
DPL_SERDES_LANE(rx_para_get, rx_para_get, (u32 chip_id, u32 serdes_id, char *buffer), (chip_id, serdes_id, buffer))
DPL_SERDES_LANE(four_point_eye, four_point_eye, (u32 chip_id, u32 serdes_id, serdes_eye *eye),
                (chip_id, serdes_id, eye))
DPL_SERDES_LANE(full_eye_get, full_eye_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len),
                (chip_id, serdes_id, buffer, len))
DPL_SERDES_LANE(all_reg_dump, all_reg_dump, (u32 chip_id, u32 serdes_id, u32 detail, char *buffer, u64 len),
                (chip_id, serdes_id, detail, buffer, len))
DPL_SERDES_LANE(inner_register_get, inner_register_get, (u32 chip_id, u32 serdes_id, u32 addr, u32 *data),
                (chip_id, serdes_id, addr, data))
DPL_SERDES_LANE(inner_register_set, inner_register_set, (u32 chip_id, u32 serdes_id, u32 addr, u32 data),
                (chip_id, serdes_id, addr, data))
DPL_SERDES_LANE(debug_info_get, debug_info_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len),
                (chip_id, serdes_id, buffer, len))
DPL_SERDES_LANE(name_register_field_get, name_register_field_get,
                (u32 chip_id, u32 serdes_id, char *reg, char *field, u32 *data),
                (chip_id, serdes_id, reg, field, data))
DPL_SERDES_LANE(name_register_field_set, name_register_field_set,
                (u32 chip_id, u32 serdes_id, char *reg, char *field, u32 data),
                (chip_id, serdes_id, reg, field, data))
DPL_SERDES_LANE(name_register_get, name_register_get, (u32 chip_id, u32 serdes_id, char *reg, u32 *data),
                (chip_id, serdes_id, reg, data))
DPL_SERDES_LANE(name_register_set, name_register_set, (u32 chip_id, u32 serdes_id, char *reg, u32 data),
                (chip_id, serdes_id, reg, data))
DPL_SERDES_LANE(support_speed_get, support_speed_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len),
                (chip_id, serdes_id, buffer, len))
DPL_SERDES_LANE(sram_get, sram_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len),
                (chip_id, serdes_id, buffer, len))
DPL_SERDES_LANE(8k_clk_set, clk_8k_set, (u32 chip_id, u32 serdes_id, u32 clk_id), (chip_id, serdes_id, clk_id))
DPL_SERDES_LANE(ctle_offset_calibrate_result, ctle_offset_calibrate_result,
                (u32 chip_id, u32 serdes_id, char *buffer, u32 len), (chip_id, serdes_id, buffer, len))
#undef DPL_SERDES_LANE

// A rate change; with emphasis by speed the lane then takes the emphasis
// of its new speed.
i32 dpl_reef_serdes_freq_set(u32 chip_id, u32 serdes_id, serdes_freq *freq)
{
    i32 rc = _dpl_serdes_lane_op<&drv::freq_set>("freq_set", chip_id, serdes_id, freq);
    const reef_serdes_special_t &special = reef_serdes_special[chip_id];
    if (rc == 0 && special.emphasis_by_speed != nullptr) {
        MutexGuard hold(g_dpl_reef_serdes_control[chip_id][serdes_id].lock);
        rc = special.emphasis_by_speed(chip_id, serdes_id);
    }
    return rc;
}

i32 dpl_reef_serdes_interface_freq_set(u32 chip_id, u32 serdes_id, u32 interface_type, serdes_freq *freq)
{
    const csl_serdes_control_t *ctl = csl_serdes_control_get(chip_id);
    if (g_dpl_reef_serdes_control[chip_id] != nullptr && ctl->info != nullptr && serdes_id < ctl->serdes_count) {
        MutexGuard hold(g_dpl_reef_serdes_control[chip_id][serdes_id].lock);
        ctl->info[serdes_id].interface_type = interface_type;
    }
    return dpl_reef_serdes_freq_set(chip_id, serdes_id, freq);
}

i32 dpl_reef_serdes_control_set(u32 chip_id, u32 serdes_id, serdes_control *control)
{
    return _dpl_serdes_control<&drv::control_set>("control_set", chip_id, serdes_id, control);
}

i32 dpl_reef_serdes_control_get(u32 chip_id, u32 serdes_id, serdes_control *control)
{
    return _dpl_serdes_control<&drv::control_get>("control_get", chip_id, serdes_id, control);
}

i32 dpl_reef_serdes_serdes_type_sel(u32 chip_id, u32 serdes_type)
{
    return _dpl_serdes_chip_op<&drv::serdes_type_sel, true>("serdes_type_sel", chip_id, serdes_type);
}

i32 dpl_reef_serdes_8k_clk_get(u32 chip_id, u32 clk_id, serdes_8k_clk *clk)
{
    return _dpl_serdes_chip_op<&drv::clk_8k_get, false>("8k_clk_get", chip_id, clk_id, clk);
}

i32 dpl_reef_serdes_reset(u32 chip_id, u32 serdes_id, u32 mode)
{
    return dpl_reef_serdes_serdes_reset(chip_id, serdes_id, mode);
}

// Every operation of the family is the dpl function of its name.
static constexpr reef_serdes_dispatch_t _dpl_reef_serdes_dispatch_make()
{
    reef_serdes_dispatch_t t{};
#define DPL_REEF_SERDES_SLOT(slot, params, args, name) t.slot = dpl_reef_serdes_##name;
    TIDE_SERDES_OPS(DPL_REEF_SERDES_SLOT)
#undef DPL_REEF_SERDES_SLOT
    return t;
}

extern const reef_serdes_dispatch_t reef_serdes_dispatch = _dpl_reef_serdes_dispatch_make();

} // extern "C"
