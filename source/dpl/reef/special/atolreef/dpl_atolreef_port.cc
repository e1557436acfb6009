// The port operations that only atolreef has.
#include "dpl/reef/special/atolreef/dpl_atolreef_port.h"

#include "atolreef_cib.h"
#include "csl/reef/driver/port/csl_atolreef_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/serdes/dpl_reef_serdes.h"

using tide::port::pbmp_test;

namespace {

// One port's bit of the queue manager's flush bitmap, read, changed and
// written back under the module's register lock.
i32 _dpl_atolreef_port_flush_set(u32 chip_id, u32 lport, bool flush)
{
    const u32 index = lport >> 5;
    const u32 bit = 1u << (lport & 31);
    CslRegLock hold(chip_id, cib_module_qm);
    cib_qm_qm_port_flush_en_t reg{};
    const i32 rc = csl_reef_cib_qm_qm_port_flush_en_get(chip_id, index, &reg);
    if (rc != 0) {
        return rc;
    }
    reg.port_flush_en = flush ? reg.port_flush_en | bit : reg.port_flush_en & ~bit;
    u8 mask[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    return csl_reef_cib_qm_qm_port_flush_en_set(chip_id, index, &reg, mask);
}

// What the SerDes service knows of a lane: its lock state (control item
// 1) and whether a PRBS or a loopback runs on it.
struct sds_lane_state {
    u32 control_item;
    bool under_test;
};

i32 _dpl_atolreef_port_sds_state(u32 chip_id, u32 serdes_id, sds_lane_state *state)
{
    serdes_control lock{SERDES_CONTROL_LOCK, &state->control_item};
    i32 rc = dpl_reef_serdes_control_get(chip_id, serdes_id, &lock);
    serdes_prbs prbs{0, SERDES_DIR_BOTH, 0, nullptr};
    rc = rc == 0 ? dpl_reef_serdes_prbs_get(chip_id, serdes_id, &prbs) : rc;
    state->under_test = prbs.enable != 0;
    for (u32 type = 0; rc == 0 && type < SERDES_LOOP_TYPES; type++) {
        serdes_loopback loop{type, 0};
        rc = dpl_reef_serdes_loopback_get(chip_id, serdes_id, &loop);
        state->under_test = state->under_test || loop.enable != 0;
    }
    return rc;
}

// The receive path of the lane restarts; the lane settles for a moment.
i32 _dpl_atolreef_port_sds_reset(u32 chip_id, u32 serdes_id)
{
    const i32 rc = dpl_reef_serdes_reset(chip_id, serdes_id, SERDES_RESET_RX);
    xsal_usleep(DPL_ATOLREEF_SDS_RESET_SETTLE_US);
    return rc;
}

} // namespace

extern "C" {

i32 _dpl_atolreef_port_node_open(u32 chip_id, u32 lport)
{
    return _dpl_atolreef_port_flush_set(chip_id, lport, false);
}

i32 _dpl_atolreef_port_node_close(u32 chip_id, u32 lport)
{
    return _dpl_atolreef_port_flush_set(chip_id, lport, true);
}

i32 _dpl_atolreef_port_link_fwd_pbmp_set(u32 chip_id, const port_bitmap *pbmp)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || pbmp == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const port_bitmap &ether = ctl->port_config.pbmp[PORT_CONFIG_ETHER];
    for (u32 lport = 0; lport < PORT_BITMAP_PORTS; lport++) {
        if (!pbmp_test(ether, lport)) {
            continue;
        }
        const i32 rc = pbmp_test(*pbmp, lport) ? _dpl_atolreef_port_node_open(chip_id, lport)
                                               : _dpl_atolreef_port_node_close(chip_id, lport);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

i32 _dpl_atolreef_port_chk_sds_status(u32 chip_id, u32 lport)
{
    u32 link = 2; // neither down nor up until the MAC answers
    dpl_reef_port_mac_link_status_get(chip_id, lport, &link);
    port_serdes_id serdes{};
    port_interface intf{};
    i32 rc = dpl_reef_port_serdes_id_get(chip_id, lport, &serdes);
    if (rc == 0) {
        rc = dpl_reef_port_interface_get(chip_id, lport, &intf);
    }
    if (rc != 0) {
        return rc;
    }
    sds_lane_state lane{};
    rc = _dpl_atolreef_port_sds_state(chip_id, serdes.serdes_id, &lane);
    if (rc != 0) {
        return rc;
    }
    if (link == PORT_LINK_UP) {
        return 0;
    }
    // Behind an external PHY the lane's own state says nothing of the link.
    if (!dpl_reef_port_phy_ext(chip_id, lport) && lane.control_item != 0) {
        return 0;
    }
    if (intf.interface_type != PORT_INTERFACE_1000BASE_X) {
        port_clk_delta delta{};
        rc = dpl_reef_port_clk_delta_get(chip_id, lport, &delta);
        if (rc != 0 || delta.rx_delta <= DPL_ATOLREEF_SDS_RX_DELTA_MAX) {
            return rc;
        }
    }
    if (lane.under_test) {
        return 0;
    }
    SHR_LOG_WRN(chip_id, SHR_MOD_PORT, "chip_id%u lport%u serdes%u lost its receive clock, resetting the lane\n",
                chip_id, lport, serdes.serdes_id);
    return _dpl_atolreef_port_sds_reset(chip_id, serdes.serdes_id);
}

// The interrupt slot stays empty: atolreef's ports need no interrupt set-up.
i32 dpl_atolreef_port_special_register(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    reef_port_special_t *row = reef_port_special[chip_id];
    if (row == nullptr) {
        return SHR_E_NULL_PTR;
    }
    row->link_fwd_pbmp_set = _dpl_atolreef_port_link_fwd_pbmp_set;
    row->chk_sds_status = _dpl_atolreef_port_chk_sds_status;
    row->intr_init = nullptr;
    row->interface_check = csl_atolreef_port_interface_check;
    return 0;
}

} // extern "C"
