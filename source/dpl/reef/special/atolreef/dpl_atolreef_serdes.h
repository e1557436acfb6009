/*
 * What only atolreef does in the SerDes service: the transmit emphasis by
 * speed after a rate change.
 */
#ifndef TIDE_DPL_ATOLREEF_SERDES_H
#define TIDE_DPL_ATOLREEF_SERDES_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Fills the chip's row of reef_serdes_special; -13 for a chip id above 3. */
i32 dpl_atolreef_serdes_special_register(u32 chip_id);
/* With serdes_lane_pe_dist_speed 1: the emphasis the properties give the
 * lane at its speed, into the lane; nothing otherwise.  The caller holds
 * the lane's lock. */
i32 _dpl_atolreef_serdes_emphasis_by_speed(u32 chip_id, u32 serdes_id);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_SERDES_H */
