// The port service of the reef family.  Every operation checks its port
// and pointers, takes the port's lock (or the chip lock for what concerns
// the whole chip) and forwards to the slot of the chip's port driver; a
// driver or slot that is not there makes the operation a success that
// does nothing.
#include <tide/property.h>

#include <array>
#include <span>
#include <type_traits>

#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "dpl/reef/counter/dpl_reef_counter.h"
#include "dpl/reef/port/dpl_reef_port.h"
#include "dpl/reef/serdes/dpl_reef_serdes.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_port.h"

using tide::port::MutexGuard;
using tide::port::pbmp_test;
using drv = csl_port_driver_t;

extern "C" {
xsal_mutex_t g_dpl_reef_port_chip_lock[SHR_MAX_CHIPS];
dpl_reef_port_info *g_dpl_reef_port_control[SHR_MAX_CHIPS];
u32 g_dpl_reef_port_soft_inited[SHR_MAX_CHIPS];
reef_port_special_t *reef_port_special[SHR_MAX_CHIPS];
}

namespace {

using check_fn = i32 (*)(u32, u32);

template <typename T>
constexpr bool _arg_set(T v)
{
    if constexpr (std::is_pointer_v<T>) {
        return v != nullptr;
    } else {
        return true;
    }
}

// The port must be in use: in the active ports of the configuration.
i32 _dpl_reef_port_valid_check(u32 chip_id, u32 lport)
{
    csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    bool active = false;
    {
        MutexGuard hold(ctl->lock);
        active = pbmp_test(ctl->port_config.pbmp[PORT_CONFIG_ACTIVE], lport);
    }
    return active ? 0 : csl_port_not_exist(chip_id, lport);
}

// The port by `Check`, then every pointer argument.
template <check_fn Check = _dpl_reef_port_valid_check, typename... A>
i32 _dpl_port_args_check(u32 chip_id, u32 lport, A... args)
{
    const i32 rc = Check(chip_id, lport);
    if (rc != 0) {
        return rc;
    }
    if (!(... && _arg_set(args))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    return 0;
}

const dpl_reef_port_info *_dpl_port_info(u32 chip_id, u32 lport)
{
    const dpl_reef_port_info *ports = g_dpl_reef_port_control[chip_id];
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    return ports != nullptr && ctl != nullptr && lport < ctl->lport_count ? &ports[lport] : nullptr;
}

// One driver operation under one lock.
template <auto Slot, typename... A>
i32 _dpl_port_driver_call(u32 chip_id, xsal_mutex_t lock, const drv *driver, A... args)
{
    MutexGuard hold(lock);
    if (driver == nullptr || driver->*Slot == nullptr) {
        return 0;
    }
    return (driver->*Slot)(chip_id, args...);
}

// A checked port's operation under its lock; `what` names it in the debug
// line, NULL for none.
template <auto Slot, typename... A>
i32 _dpl_port_forward(u32 chip_id, u32 lport, const char *what, A... args)
{
    const dpl_reef_port_info *info = _dpl_port_info(chip_id, lport);
    if (info == nullptr) {
        return SHR_E_INIT;
    }
    if (what != nullptr) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "%s: chip_id%u lport%u\n", what, chip_id, lport);
    }
    return _dpl_port_driver_call<Slot>(chip_id, info->lock, info->driver, lport, args...);
}

template <auto Slot, check_fn Check = _dpl_reef_port_valid_check, typename... A>
i32 _dpl_port_op(u32 chip_id, u32 lport, const char *what, A... args)
{
    const i32 rc = _dpl_port_args_check<Check>(chip_id, lport, args...);
    return rc != 0 ? rc : _dpl_port_forward<Slot>(chip_id, lport, what, args...);
}

// An operation that an external PHY owns: with one, it succeeds and
// touches nothing.
template <auto Slot, typename... A>
i32 _dpl_port_phy_op(u32 chip_id, u32 lport, const char *what, A... args)
{
    const i32 rc = _dpl_port_args_check(chip_id, lport, args...);
    if (rc != 0 || dpl_reef_port_phy_ext(chip_id, lport)) {
        return rc;
    }
    return _dpl_port_forward<Slot>(chip_id, lport, what, args...);
}

// An operation on the whole chip: the chip lock and the driver of port 0.
template <auto Slot, typename... A>
i32 _dpl_port_chip_op(u32 chip_id, const char *what, A... args)
{
    if (!(... && _arg_set(args))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    if (g_dpl_reef_port_chip_lock[chip_id] == nullptr) {
        return SHR_E_INIT;
    }
    if (what != nullptr) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "%s: chip_id%u\n", what, chip_id);
    }
    const dpl_reef_port_info *port0 = _dpl_port_info(chip_id, 0);
    return _dpl_port_driver_call<Slot>(chip_id, g_dpl_reef_port_chip_lock[chip_id],
                                       port0 != nullptr ? port0->driver : nullptr, args...);
}

// An operation of the chip's transmit path: the lock and driver of port 0.
template <auto Slot, typename... A>
i32 _dpl_port0_op(u32 chip_id, A... args)
{
    if (!(... && _arg_set(args))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    const dpl_reef_port_info *port0 = _dpl_port_info(chip_id, 0);
    if (port0 == nullptr) {
        return SHR_E_INIT;
    }
    return _dpl_port_driver_call<Slot>(chip_id, port0->lock, port0->driver, args...);
}

// An interface type without a SerDes speed id.
constexpr u8 kNoSpeedId = PORT_INTERFACE_COUNT;

// ---- special table --------------------------------------------------------------------

i32 _dpl_reef_port_special_db_malloc(u32 chip_id)
{
    if (reef_port_special[chip_id] != nullptr) {
        return 0;
    }
    auto *row = tide::port::zalloc<reef_port_special_t>(1, "port_special");
    if (row == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "malloc reef_port_special memory error!\n");
        return SHR_E_MEMORY;
    }
    reef_port_special[chip_id] = row;
    return 0;
}

void _dpl_reef_port_special_db_free(u32 chip_id)
{
    xsal_mem_free(reef_port_special[chip_id]);
    reef_port_special[chip_id] = nullptr;
}

i32 _dpl_reef_port_special_register(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        return 0;
    case SHR_CHIP_TYPE_ATOLREEF:
        return dpl_atolreef_port_special_register(chip_id);
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "error chip type!\n");
        return SHR_E_NOT_SUPPORT;
    }
}

i32 _dpl_reef_port_intr_init(u32 chip_id)
{
    const reef_port_special_t *row = reef_port_special[chip_id];
    return row != nullptr && row->intr_init != nullptr ? row->intr_init(chip_id) : 0;
}

// ---- bring-up -------------------------------------------------------------------------

i32 _dpl_reef_port_db_locks_create(u32 chip_id, dpl_reef_port_info *ports, u32 count)
{
    for (u32 lport = 0; lport < count; lport++) {
        ports[lport].lock = xsal_mutex_create("Port Lock");
        if (ports[lport].lock == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "create DPL_REEF_PORT_INFO(chip_id, mac_id).lock error!\n");
            for (u32 made = 0; made < lport; made++) {
                xsal_mutex_destroy(ports[made].lock);
            }
            return SHR_E_MEMORY;
        }
        // A chip type without a port driver leaves the port without one.
        const drv *driver = nullptr;
        ports[lport].driver = csl_port_probe(chip_id, lport, &driver) == 0 ? driver : nullptr;
    }
    return 0;
}

i32 _dpl_reef_port_db_deinit(u32 chip_id)
{
    dpl_reef_port_info *ports = g_dpl_reef_port_control[chip_id];
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ports != nullptr) {
        const u32 count = ctl != nullptr ? ctl->lport_count : 0;
        for (u32 lport = 0; lport < count; lport++) {
            xsal_mutex_destroy(ports[lport].lock);
        }
        xsal_mem_free(ports);
        g_dpl_reef_port_control[chip_id] = nullptr;
    }
    if (g_dpl_reef_port_chip_lock[chip_id] != nullptr) {
        xsal_mutex_destroy(g_dpl_reef_port_chip_lock[chip_id]);
        g_dpl_reef_port_chip_lock[chip_id] = nullptr;
    }
    return 0;
}

i32 _dpl_reef_port_special_db_make(u32 chip_id)
{
    const i32 rc = _dpl_reef_port_special_db_malloc(chip_id);
    return rc != 0 ? rc : _dpl_reef_port_special_register(chip_id);
}

struct port_step {
    i32 (*fn)(u32 chip_id);
};

// Software init, in order: the model, the locks and drivers of the ports,
// the counter store, the chip's special operations, link forwarding.
constexpr port_step kPortSoftInit[] = {
    {csl_port_control_init},  {csl_port_base_init},         {csl_port_control_db_init},
    {dpl_reef_port_db_init},  {dpl_reef_port_counter_db_init}, {_dpl_reef_port_special_db_make},
    {dpl_reef_port_link_fwd_init},
};

// Runs steps in order; the first failure is logged and returned, the
// steps before it stay done.
i32 _dpl_reef_port_run(u32 chip_id, std::span<const port_step> steps)
{
    for (const port_step &step : steps) {
        const i32 rc = step.fn(chip_id);
        if (rc != 0) {
            SHR_LOG_ERRCODE(chip_id, rc);
            return rc;
        }
    }
    return 0;
}

// ---- calls with steps of their own -----------------------------------------------------

bool _dpl_reef_port_active(u32 chip_id, u32 lport)
{
    csl_port_control *ctl = csl_port_control_get(chip_id);
    MutexGuard hold(ctl->lock);
    return pbmp_test(ctl->port_config.pbmp[PORT_CONFIG_ACTIVE], lport);
}

// The whole MAG of the port takes the new type: first the SerDes lane its
// rate, then the MAC layer.  A port that the new type keeps in use returns to normal link
// mode; one that it leaves unused has no link to restore.
i32 _dpl_reef_port_interface_set(u32 chip_id, u32 lport, port_interface *info)
{
    i32 rc = _dpl_port_args_check<csl_port_valid_check>(chip_id, lport, info);
    if (rc != 0) {
        return rc;
    }
    port_serdes_id serdes{};
    u32 speed_id = 0;
    rc = dpl_reef_port_serdes_id_get(chip_id, lport, &serdes);
    if (rc == 0) {
        rc = dpl_reef_port_serdes_speed_get(chip_id, lport, info->interface_type, &speed_id);
    }
    // The chip's own driver must take the type on the port's MAG before the
    // lane changes its rate.
    const reef_port_special_t *row = reef_port_special[chip_id];
    const dpl_reef_port_info *port = _dpl_port_info(chip_id, lport);
    if (rc == 0 && row != nullptr && row->interface_check != nullptr && port != nullptr &&
        port->driver == g_csl_port_driver[chip_id]) {
        rc = row->interface_check(chip_id, lport, info);
    }
    if (rc == 0) {
        // The lane runs at its new rate before the MAC layer follows it.
        serdes_freq freq{speed_id, 0};
        rc = dpl_reef_serdes_interface_freq_set(chip_id, serdes.serdes_id, info->interface_type, &freq);
    }
    if (rc == 0) {
        rc = _dpl_port_forward<&drv::port_interface_type_set>(chip_id, lport, "interface_set", info);
    }
    if (rc == 0 && _dpl_reef_port_active(chip_id, lport)) {
        rc = dpl_reef_port_force_set(chip_id, lport, PORT_LINK_NORMAL, PORT_LINK_DOWN);
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

// The PHY loops belong to an external PHY: with one the MAC is asked for
// no loop, without one they are refused.
i32 _dpl_reef_port_loopback_set(u32 chip_id, u32 lport, port_loopback *loopback)
{
    const i32 rc = _dpl_port_args_check(chip_id, lport, loopback);
    if (rc != 0) {
        return rc;
    }
    port_loopback ask = *loopback;
    if (ask.loop_mode == PORT_LOOP_PHY_INNER || ask.loop_mode == PORT_LOOP_PHY_OUTER) {
        if (!dpl_reef_port_phy_ext(chip_id, lport)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u loop mode %u needs an external phy\n", chip_id,
                        lport, ask.loop_mode);
            return SHR_E_NOT_SUPPORT;
        }
        ask.loop_mode = PORT_LOOP_NONE;
    }
    return _dpl_port_forward<&drv::port_loopback_set>(chip_id, lport, "loopback_set", &ask);
}

// The partner's abilities are not kept: the call checks and writes nothing.
i32 _dpl_reef_port_remote_ability_get(u32 chip_id, u32 lport, port_ability *ability)
{
    return _dpl_port_args_check(chip_id, lport, ability);
}

// ---- where each operation goes -------------------------------------------------------------

enum class route_kind {
    port,   // a port in use, under its lock
    phy,    // the same, unless an external PHY owns it
    exists, // a port that exists, in use or not
    chip,   // the whole chip: the chip lock, port 0's driver
    port0,  // the transmit path: port 0's lock and driver
    own,    // steps of its own
};

template <auto Op>
struct port_route;

#define DPL_PORT_ROUTE(op, slot, kind_)                               \
    template <>                                                       \
    struct port_route<&reef_port_dispatch_t::op> {                    \
        static constexpr route_kind kind = route_kind::kind_;         \
        static constexpr auto driver_slot = &drv::slot;               \
    };
#define DPL_PORT_OWN(op)                                              \
    template <>                                                       \
    struct port_route<&reef_port_dispatch_t::op> {                    \
        static constexpr route_kind kind = route_kind::own;           \
        static constexpr auto fn = _dpl_reef_port_##op;               \
    };

DPL_PORT_ROUTE(map_mode_set, mapping_mode_set, chip)
DPL_PORT_ROUTE(map_mode_get, mapping_mode_get, chip)
DPL_PORT_OWN(interface_set)
DPL_PORT_ROUTE(interface_get, port_interface_type_get, exists)
DPL_PORT_ROUTE(config_get, port_config_get, chip)
DPL_PORT_ROUTE(tx_rx_enable_set, port_tx_rx_enable_set, port)
DPL_PORT_ROUTE(tx_rx_enable_get, port_tx_rx_enable_get, port)
DPL_PORT_ROUTE(enable_set, port_enable_set, port)
DPL_PORT_ROUTE(enable_get, port_enable_get, port)
DPL_PORT_ROUTE(autoneg_set, pcs_an_enable_set, phy)
DPL_PORT_ROUTE(autoneg_get, pcs_an_enable_get, phy)
DPL_PORT_ROUTE(autoneg_restart, autoneg_restart_set, port)
DPL_PORT_ROUTE(advert_ability_set, advert_ability_set, port)
DPL_PORT_ROUTE(advert_ability_get, advert_ability_get, port)
DPL_PORT_ROUTE(local_ability_get, local_ability_get, port)
DPL_PORT_OWN(remote_ability_get)
DPL_PORT_ROUTE(speed_set, port_speed_set, phy)
DPL_PORT_ROUTE(speed_get, port_speed_get, phy)
DPL_PORT_ROUTE(duplex_set, port_duplex_set, phy)
DPL_PORT_ROUTE(duplex_get, port_duplex_get, phy)
DPL_PORT_ROUTE(vlan_pause_set, vlan_pause_set, port)
DPL_PORT_ROUTE(vlan_pause_get, vlan_pause_get, port)
DPL_PORT_ROUTE(pause_set, mac_pause_set, port)
DPL_PORT_ROUTE(pause_get, mac_pause_get, port)
DPL_PORT_ROUTE(pause_addr_set, mac_pause_smac_set, port)
DPL_PORT_ROUTE(pause_addr_get, mac_pause_smac_get, port)
DPL_PORT_ROUTE(max_frame_set, max_frame_set, port)
DPL_PORT_ROUTE(max_frame_get, max_frame_get, port)
DPL_PORT_ROUTE(min_frame_set, min_frame_set, port)
DPL_PORT_ROUTE(min_frame_get, min_frame_get, port)
DPL_PORT_ROUTE(mac_link_status_get, mac_link_status_get, port)
DPL_PORT_ROUTE(link_status_get, link_status_get, port)
DPL_PORT_ROUTE(ifg_set, ifg_set, port)
DPL_PORT_ROUTE(ifg_get, ifg_get, port)
DPL_PORT_ROUTE(fault_get, mac_fault_status_get, port)
DPL_PORT_ROUTE(counter_get, counter_get, port)
DPL_PORT_ROUTE(counter_clean, port_counter_clean, port)
DPL_PORT_OWN(loopback_set)
DPL_PORT_ROUTE(loopback_get, port_loopback_get, phy)
DPL_PORT_ROUTE(force_set, port_force_link_set, port)
DPL_PORT_ROUTE(force_get, port_force_link_get, port)
DPL_PORT_ROUTE(crc_set, port_crc_set, port)
DPL_PORT_ROUTE(crc_get, port_crc_get, port)
DPL_PORT_ROUTE(dic_mode_set, dic_mode_set, port)
DPL_PORT_ROUTE(dic_mode_get, dic_mode_get, port)
DPL_PORT_ROUTE(clk_delta_get, clk_delta_result_get, port)
DPL_PORT_ROUTE(mac_phy_mode_set, mac_phy_mode_set, chip)
DPL_PORT_ROUTE(mac_phy_mode_get, mac_phy_mode_get, chip)
DPL_PORT_ROUTE(serdes_id_get, serdes_id_get, exists)
DPL_PORT_ROUTE(transmit_path_set, port_transmit_path_set, port0)
DPL_PORT_ROUTE(transmit_path_get, port_transmit_path_get, port0)
DPL_PORT_ROUTE(cfg_control_set, cfg_control_set, port)
DPL_PORT_ROUTE(cfg_control_get, cfg_control_get, port)
DPL_PORT_ROUTE(basic_info_get, basic_info_get, port)
DPL_PORT_ROUTE(alm_info_get, alm_info_get, port)
DPL_PORT_ROUTE(reset, port_reset_set, port)
#undef DPL_PORT_ROUTE
#undef DPL_PORT_OWN

template <typename Route, typename... A>
i32 _dpl_port_route_lport(const char *name, u32 chip_id, u32 lport, A... args)
{
    if constexpr (Route::kind == route_kind::phy) {
        return _dpl_port_phy_op<Route::driver_slot>(chip_id, lport, name, args...);
    } else if constexpr (Route::kind == route_kind::exists) {
        return _dpl_port_op<Route::driver_slot, csl_port_valid_check>(chip_id, lport, name, args...);
    } else {
        return _dpl_port_op<Route::driver_slot>(chip_id, lport, name, args...);
    }
}

// One operation of the family by its route; `name` for the debug line.
template <auto Op, typename... A>
i32 _dpl_port_route(const char *name, u32 chip_id, A... args)
{
    using Route = port_route<Op>;
    if constexpr (Route::kind == route_kind::own) {
        return Route::fn(chip_id, args...);
    } else if constexpr (Route::kind == route_kind::chip) {
        return _dpl_port_chip_op<Route::driver_slot>(chip_id, name, 0u, args...);
    } else if constexpr (Route::kind == route_kind::port0) {
        return _dpl_port0_op<Route::driver_slot>(chip_id, args...);
    } else {
        return _dpl_port_route_lport<Route>(name, chip_id, args...);
    }
}

} // namespace

extern "C" {

u32 dpl_reef_port_phy_ext(u32 chip_id, u32 lport)
{
    return csl_port_property_get(chip_id, static_cast<i32>(lport), "port_phy_int_ext", 0) == 1 ? 1 : 0;
}

i32 dpl_reef_port_serdes_speed_get(u32 chip_id, u32 lport, u32 interface_type, u32 *speed_id)
{
    const bool pll_15 = csl_port_property_get(chip_id, static_cast<i32>(lport), "serdes_freq_pll_sel", 1) != 0;
    const auto &table = pll_15 ? g_atolreef_port_protocol_to_speed_id : g_atolreef_port_protocol_to_speed_id_pll20;
    const u32 id = interface_type < table.size() ? table[interface_type] : kNoSpeedId;
    if (id == kNoSpeedId) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u interface type %u has no serdes speed\n", chip_id,
                    lport, interface_type);
        return SHR_E_NOT_SUPPORT;
    }
    *speed_id = id;
    return 0;
}

i32 dpl_reef_port_db_init(u32 chip_id)
{
    if (g_dpl_reef_port_chip_lock[chip_id] == nullptr) {
        g_dpl_reef_port_chip_lock[chip_id] = xsal_mutex_create("Chip Lock");
        if (g_dpl_reef_port_chip_lock[chip_id] == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "create DPL_REEF_PORT_CHIP_LOCK(chip_id) error!\n");
            return SHR_E_MEMORY;
        }
    }
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    const u32 count = ctl != nullptr ? ctl->lport_count : 0;
    if (g_dpl_reef_port_control[chip_id] != nullptr || count == 0) {
        return 0;
    }
    auto *ports = tide::port::zalloc<dpl_reef_port_info>(count, "port_control");
    if (ports == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "malloc g_dpl_reef_port_control memory error!\n");
        return SHR_E_MEMORY;
    }
    const i32 rc = _dpl_reef_port_db_locks_create(chip_id, ports, count);
    if (rc != 0) {
        xsal_mem_free(ports);
        return rc;
    }
    g_dpl_reef_port_control[chip_id] = ports;
    return 0;
}

i32 dpl_reef_port_counter_db_init(u32 chip_id)
{
    return _dpl_port_chip_op<&drv::port_counter_db_malloc>(chip_id, nullptr);
}

i32 dpl_reef_port_counter_db_deinit(u32 chip_id)
{
    return _dpl_port_chip_op<&drv::port_counter_db_free>(chip_id, nullptr);
}

i32 dpl_reef_port_counter_db_update(u32 chip_id)
{
    return _dpl_port_chip_op<&drv::port_counter_db_update>(chip_id, nullptr);
}

i32 dpl_reef_port_counter_init(u32 chip_id)
{
    const u32 enable = shr_property_get(chip_id, "counter_enable_port_stat", 1) == 1 ? 1 : 0;
    // The counter thread calls with its slot's id; the store is one per chip.
    constexpr auto init = [](u32 chip, u32) { return dpl_reef_port_counter_db_init(chip); };
    constexpr auto deinit = [](u32 chip, u32) { return dpl_reef_port_counter_db_deinit(chip); };
    constexpr auto update = [](u32 chip, u32) { return dpl_reef_port_counter_db_update(chip); };
    i32 rc = dpl_reef_counter_enable_set(chip_id, DPL_COUNTER_PORT_ID, enable);
    rc |= dpl_reef_counter_malloc_register(chip_id, DPL_COUNTER_PORT_ID, init);
    rc |= dpl_reef_counter_free_register(chip_id, DPL_COUNTER_PORT_ID, deinit);
    rc |= dpl_reef_counter_update_register(chip_id, DPL_COUNTER_PORT_ID, update);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u port counter register failed\n", chip_id);
    }
    return 0;
}

i32 dpl_reef_port_soft_init(u32 chip_id)
{
    if (g_dpl_reef_port_soft_inited[chip_id] == 1) {
        return 0;
    }
    const i32 rc = _dpl_reef_port_run(chip_id, kPortSoftInit);
    if (rc == 0) {
        g_dpl_reef_port_soft_inited[chip_id] = 1;
    }
    return rc;
}

// Undoes whatever the init got done, also a part of it.
i32 dpl_reef_port_soft_deinit(u32 chip_id)
{
    if (g_dpl_reef_port_chip_lock[chip_id] != nullptr) {
        dpl_reef_port_counter_db_deinit(chip_id);
    }
    _dpl_reef_port_db_deinit(chip_id);
    csl_port_control_db_deinit(chip_id);
    csl_port_control_deinit(chip_id);
    dpl_reef_port_link_fwd_deinit(chip_id);
    _dpl_reef_port_special_db_free(chip_id);
    g_dpl_reef_port_soft_inited[chip_id] = 0;
    return 0;
}

i32 dpl_reef_port_hw_phase1_init(u32 chip_id)
{
    i32 rc = _dpl_port_chip_op<&drv::port_hw_phase1_init>(chip_id, nullptr);
    if (rc == 0) {
        rc = _dpl_reef_port_intr_init(chip_id);
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

i32 dpl_reef_port_hw_phase2_init(u32 chip_id)
{
    const i32 rc = _dpl_port_chip_op<&drv::port_hw_phase2_init>(chip_id, nullptr);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

// ---- the operations of the family ---------------------------------------------------------

#define DPL_REEF_PORT_DEFINE(name, params, args)                                           \
    i32 dpl_reef_port_##name params                                                        \
    {                                                                                      \
        return _dpl_port_route<&reef_port_dispatch_t::name>(#name, API_UNPAREN args);      \
    }
TIDE_PORT_OPS(DPL_REEF_PORT_DEFINE)
#undef DPL_REEF_PORT_DEFINE

// The driver operations of the calls that an external PHY may own, for
// code that speaks to the MAC itself.
i32 dpl_reef_mac_autoneg_set(u32 chip_id, u32 lport, u32 enable)
{
    return _dpl_port_op<&drv::pcs_an_enable_set>(chip_id, lport, __func__, enable);
}

i32 dpl_reef_mac_autoneg_get(u32 chip_id, u32 lport, u32 *enable)
{
    return _dpl_port_op<&drv::pcs_an_enable_get>(chip_id, lport, __func__, enable);
}

i32 dpl_reef_mac_speed_set(u32 chip_id, u32 lport, u32 speed)
{
    return _dpl_port_op<&drv::port_speed_set>(chip_id, lport, __func__, speed);
}

i32 dpl_reef_mac_speed_get(u32 chip_id, u32 lport, u32 *speed)
{
    return _dpl_port_op<&drv::port_speed_get>(chip_id, lport, __func__, speed);
}

i32 dpl_reef_mac_duplex_set(u32 chip_id, u32 lport, u32 duplex_mode)
{
    return _dpl_port_op<&drv::port_duplex_set>(chip_id, lport, __func__, duplex_mode);
}

i32 dpl_reef_mac_duplex_get(u32 chip_id, u32 lport, u32 *duplex_mode)
{
    return _dpl_port_op<&drv::port_duplex_get>(chip_id, lport, __func__, duplex_mode);
}

i32 dpl_reef_port_lane_enable_set(u32 chip_id, u32 lport, u32 enable)
{
    return _dpl_port_op<&drv::port_enable_set>(chip_id, lport, nullptr, enable);
}

// ---- the SerDes watchdog ------------------------------------------------------------------

i32 dpl_reef_port_chk_sds_status(u32 chip_id, u32 lport)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    const reef_port_special_t *row = reef_port_special[chip_id];
    if (row == nullptr || row->chk_sds_status == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    return row->chk_sds_status(chip_id, lport);
}

// Every operation of the family is the dpl function of its name.
static constexpr reef_port_dispatch_t _dpl_reef_port_dispatch_make()
{
    reef_port_dispatch_t t{};
#define DPL_REEF_PORT_SLOT(name, params, args) t.name = dpl_reef_port_##name;
    TIDE_PORT_OPS(DPL_REEF_PORT_SLOT)
#undef DPL_REEF_PORT_SLOT
    return t;
}

extern const reef_port_dispatch_t reef_port_dispatch = _dpl_reef_port_dispatch_make();

} // extern "C"
