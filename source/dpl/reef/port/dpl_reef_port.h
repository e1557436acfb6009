/*
 * The port service of the reef family: the operations of the port family,
 * their locks and their forwarding to the chip's port driver; the
 * link-forwarding view of the front ports; the SerDes watchdog.
 */
#ifndef TIDE_DPL_REEF_PORT_H
#define TIDE_DPL_REEF_PORT_H

#include "api/api_families.h"
#include "csl/common/port/csl_port.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A logical port's lock and driver table. */
typedef struct dpl_reef_port_info {
    xsal_mutex_t lock;
    const csl_port_driver_t *driver; /* NULL: the port reaches no driver */
} dpl_reef_port_info;

/* The link-forwarding record of a chip. */
typedef struct dpl_reef_da_control {
    xsal_mutex_t lock;
    port_bitmap da_bmp_block; /* ports held closed */
    port_bitmap cur_link_bmp; /* ports whose link is up as far as forwarding knows */
} dpl_reef_da_control;

/* What only one chip type does. */
typedef struct reef_port_special_t {
    i32 (*link_fwd_pbmp_set)(u32 chip_id, const port_bitmap *pbmp);
    i32 (*chk_sds_status)(u32 chip_id, u32 lport);
    i32 (*intr_init)(u32 chip_id);
    /* Whether the port's MAG takes the interface, before anything changes. */
    i32 (*interface_check)(u32 chip_id, u32 lport, const port_interface *info);
} reef_port_special_t;

extern xsal_mutex_t g_dpl_reef_port_chip_lock[SHR_MAX_CHIPS];
extern dpl_reef_port_info *g_dpl_reef_port_control[SHR_MAX_CHIPS];
extern u32 g_dpl_reef_port_soft_inited[SHR_MAX_CHIPS];
extern dpl_reef_da_control *g_reef_da_ctrl[SHR_MAX_CHIPS];
extern reef_port_special_t *reef_port_special[SHR_MAX_CHIPS];

/* Bring-up. */
i32 dpl_reef_port_soft_init(u32 chip_id);
i32 dpl_reef_port_soft_deinit(u32 chip_id);
i32 dpl_reef_port_hw_phase1_init(u32 chip_id);
i32 dpl_reef_port_hw_phase2_init(u32 chip_id);
i32 dpl_reef_port_db_init(u32 chip_id);
i32 dpl_reef_port_counter_db_init(u32 chip_id);
i32 dpl_reef_port_counter_db_deinit(u32 chip_id);
/* The refresh of the counter store, run by the counter thread. */
i32 dpl_reef_port_counter_db_update(u32 chip_id);
/* Registers the port counters with the counter thread as its id 28, enabled
 * by the property "counter_enable_port_stat" (default 1).  Failures are
 * logged; 0. */
i32 dpl_reef_port_counter_init(u32 chip_id);
i32 dpl_reef_port_link_fwd_init(u32 chip_id);
i32 dpl_reef_port_link_fwd_deinit(u32 chip_id);

/* The operations of the port family: dpl_reef_port_<name>. */
#define DPL_REEF_PORT_DECLARE(name, params, args) i32 dpl_reef_port_##name params;
TIDE_PORT_OPS(DPL_REEF_PORT_DECLARE)
#undef DPL_REEF_PORT_DECLARE

/* The driver operation of the port call without the external PHY rule. */
i32 dpl_reef_mac_autoneg_set(u32 chip_id, u32 lport, u32 enable);
i32 dpl_reef_mac_autoneg_get(u32 chip_id, u32 lport, u32 *enable);
i32 dpl_reef_mac_speed_set(u32 chip_id, u32 lport, u32 speed);
i32 dpl_reef_mac_speed_get(u32 chip_id, u32 lport, u32 *speed);
i32 dpl_reef_mac_duplex_set(u32 chip_id, u32 lport, u32 duplex_mode);
i32 dpl_reef_mac_duplex_get(u32 chip_id, u32 lport, u32 *duplex_mode);
/* As dpl_reef_port_enable_set, without the log line. */
i32 dpl_reef_port_lane_enable_set(u32 chip_id, u32 lport, u32 enable);

/* The SerDes speed id of an interface type, by the port's PLL selection;
 * -24 for a type without one. */
i32 dpl_reef_port_serdes_speed_get(u32 chip_id, u32 lport, u32 interface_type, u32 *speed_id);
/* 1 when the port has an external PHY. */
u32 dpl_reef_port_phy_ext(u32 chip_id, u32 lport);

/* Link forwarding.  A chip id above 3 or not brought up gives -3. */
dpl_reef_da_control *dpl_reef_da_control_get(u32 chip_id);
i32 dpl_reef_port_link_fwd_pbmp_set(u32 chip_id, const port_bitmap *pbmp);
i32 dpl_reef_port_link_fwd_pbmp_get(u32 chip_id, port_bitmap *pbmp);
i32 dpl_reef_port_link_fwd_port_add(u32 chip_id, u32 lport);
i32 dpl_reef_port_link_fwd_port_del(u32 chip_id, u32 lport);
i32 dpl_reef_port_link_fwd_block(u32 chip_id, u32 lport);
i32 dpl_reef_port_link_fwd_unblock(u32 chip_id, u32 lport);
i32 dpl_reef_port_link_fwd_block_all(u32 chip_id);
i32 dpl_reef_port_link_fwd_unblock_all(u32 chip_id);

/* The SerDes watchdog of one port: -3 for a bad chip, -24 when the chip
 * type has none. */
i32 dpl_reef_port_chk_sds_status(u32 chip_id, u32 lport);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_PORT_H */
