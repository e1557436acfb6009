/*
 * What only atolreef does in the port service: opening and closing front
 * ports in the queue manager, and the SerDes watchdog.
 */
#ifndef TIDE_DPL_ATOLREEF_PORT_H
#define TIDE_DPL_ATOLREEF_PORT_H

#include "dpl/reef/port/dpl_reef_port.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Fills the chip's row of reef_port_special; -13 for a chip id above 3. */
i32 dpl_atolreef_port_special_register(u32 chip_id);

/* A front port forwards (open) or is flushed (closed). */
i32 _dpl_atolreef_port_node_open(u32 chip_id, u32 lport);
i32 _dpl_atolreef_port_node_close(u32 chip_id, u32 lport);
/* Opens the ether ports of the bitmap and closes the others. */
i32 _dpl_atolreef_port_link_fwd_pbmp_set(u32 chip_id, const port_bitmap *pbmp);
/* Resets the lane of a port whose link is down and whose receive clock
 * has drifted, unless the lane is under test.  0 when nothing was to do. */
i32 _dpl_atolreef_port_chk_sds_status(u32 chip_id, u32 lport);

/* The clock drift above which a down lane is reset. */
#define DPL_ATOLREEF_SDS_RX_DELTA_MAX 99u
/* The wait after a lane's reset. */
#define DPL_ATOLREEF_SDS_RESET_SETTLE_US 1000u

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_PORT_H */
