// Link forwarding: which front ports may carry traffic.  The record keeps
// the ports whose link is up and the ports held blocked; the chip forwards
// on the linked ports that are not blocked.  A blocked port stays
// remembered as linked, so that unblocking it opens it again.

#include "dpl/reef/port/dpl_reef_port.h"

using tide::port::MutexGuard;
using tide::port::pbmp_and_not;
using tide::port::pbmp_clear;
using tide::port::pbmp_or;
using tide::port::pbmp_set;

extern "C" {
dpl_reef_da_control *g_reef_da_ctrl[SHR_MAX_CHIPS];
}

namespace {

// The chip's record; -3 for a chip that is not valid, -17 while the record
// does not exist.
i32 _dpl_reef_da_get(u32 chip_id, dpl_reef_da_control **da)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    *da = g_reef_da_ctrl[chip_id];
    return *da != nullptr ? 0 : SHR_E_INIT;
}

port_bitmap _dpl_reef_port_ether_get(u32 chip_id)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    return ctl != nullptr ? ctl->port_config.pbmp[PORT_CONFIG_ETHER] : port_bitmap{};
}

// Forwards on `bmp` minus the blocked ports and records `bmp` as the
// linked front ports.  Called with the record's lock held.
i32 _dpl_reef_port_link_fwd_set(u32 chip_id, dpl_reef_da_control *da, const port_bitmap &bmp)
{
    const port_bitmap eff = pbmp_and_not(bmp, da->da_bmp_block);
    const reef_port_special_t *row = reef_port_special[chip_id];
    if (row == nullptr || row->link_fwd_pbmp_set == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    const i32 rc = row->link_fwd_pbmp_set(chip_id, &eff);
    if (rc == 0) {
        da->cur_link_bmp = pbmp_or(pbmp_and_not(da->cur_link_bmp, _dpl_reef_port_ether_get(chip_id)), bmp);
    }
    return rc;
}

// Changes one port's bit of the linked or the blocked ports and applies the
// linked ports again.
i32 _dpl_reef_port_link_fwd_bit(u32 chip_id, u32 lport, bool blocked, bool on)
{
    dpl_reef_da_control *da = nullptr;
    i32 rc = _dpl_reef_da_get(chip_id, &da);
    if (rc == SHR_E_INIT && blocked) {
        return 0; // no forwarding view: nothing to hold blocked
    }
    if (rc == 0) {
        rc = csl_port_valid_check(chip_id, lport);
    }
    if (rc != 0) {
        return rc;
    }
    MutexGuard hold(da->lock);
    port_bitmap bmp = da->cur_link_bmp;
    port_bitmap &target = blocked ? da->da_bmp_block : bmp;
    if (on) {
        pbmp_set(target, lport);
    } else {
        pbmp_clear(target, lport);
    }
    return dpl_reef_port_link_fwd_pbmp_set(chip_id, &bmp);
}

// Sets the blocked ports and applies the linked ports again.
i32 _dpl_reef_port_link_fwd_block_set(u32 chip_id, const port_bitmap &block)
{
    dpl_reef_da_control *da = nullptr;
    const i32 rc = _dpl_reef_da_get(chip_id, &da);
    if (rc != 0) {
        return rc;
    }
    MutexGuard hold(da->lock);
    da->da_bmp_block = block;
    const port_bitmap bmp = da->cur_link_bmp;
    return dpl_reef_port_link_fwd_pbmp_set(chip_id, &bmp);
}

} // namespace

extern "C" {

dpl_reef_da_control *dpl_reef_da_control_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_reef_da_ctrl[chip_id] : nullptr;
}

// The linked ports start as the inner ports: they have no link of their
// own and always forward.
i32 dpl_reef_port_link_fwd_init(u32 chip_id)
{
    if (g_reef_da_ctrl[chip_id] != nullptr) {
        return 0;
    }
    auto *da = tide::port::zalloc<dpl_reef_da_control>(1, "Link DA Control");
    if (da == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "failed to malloc DA Control chip_id=%d\n", (int)chip_id);
        return SHR_E_MEMORY;
    }
    da->lock = xsal_mutex_create("SF Link Scan da_state Lock");
    if (da->lock == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "failed to create da_state mutex chip_id=%d\n", (int)chip_id);
        xsal_mem_free(da);
        return SHR_E_MEMORY;
    }
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl != nullptr) {
        da->cur_link_bmp = ctl->port_config.pbmp[PORT_CONFIG_INNER];
    }
    g_reef_da_ctrl[chip_id] = da;
    return 0;
}

i32 dpl_reef_port_link_fwd_deinit(u32 chip_id)
{
    dpl_reef_da_control *da = g_reef_da_ctrl[chip_id];
    g_reef_da_ctrl[chip_id] = nullptr;
    if (da != nullptr) {
        xsal_mutex_destroy(da->lock);
        xsal_mem_free(da);
    }
    return 0;
}

i32 dpl_reef_port_link_fwd_pbmp_set(u32 chip_id, const port_bitmap *pbmp)
{
    dpl_reef_da_control *da = nullptr;
    i32 rc = _dpl_reef_da_get(chip_id, &da);
    if (rc != 0) {
        return rc;
    }
    if (pbmp == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    rc = csl_port_valid_bmp_check(chip_id, pbmp);
    if (rc != 0) {
        return rc;
    }
    MutexGuard hold(da->lock);
    return _dpl_reef_port_link_fwd_set(chip_id, da, *pbmp);
}

i32 dpl_reef_port_link_fwd_pbmp_get(u32 chip_id, port_bitmap *pbmp)
{
    dpl_reef_da_control *da = nullptr;
    const i32 rc = _dpl_reef_da_get(chip_id, &da);
    if (rc != 0) {
        return rc;
    }
    if (pbmp == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    MutexGuard hold(da->lock);
    *pbmp = da->cur_link_bmp;
    return 0;
}

i32 dpl_reef_port_link_fwd_port_add(u32 chip_id, u32 lport)
{
    return _dpl_reef_port_link_fwd_bit(chip_id, lport, false, true);
}

i32 dpl_reef_port_link_fwd_port_del(u32 chip_id, u32 lport)
{
    return _dpl_reef_port_link_fwd_bit(chip_id, lport, false, false);
}

i32 dpl_reef_port_link_fwd_block(u32 chip_id, u32 lport)
{
    return _dpl_reef_port_link_fwd_bit(chip_id, lport, true, true);
}

i32 dpl_reef_port_link_fwd_unblock(u32 chip_id, u32 lport)
{
    return _dpl_reef_port_link_fwd_bit(chip_id, lport, true, false);
}

i32 dpl_reef_port_link_fwd_block_all(u32 chip_id)
{
    return _dpl_reef_port_link_fwd_block_set(chip_id, _dpl_reef_port_ether_get(chip_id));
}

i32 dpl_reef_port_link_fwd_unblock_all(u32 chip_id)
{
    return _dpl_reef_port_link_fwd_block_set(chip_id, port_bitmap{});
}

} // extern "C"
