/*
 * What only atolreef does in the QoS service: the layout of its priority
 * map table and its hardware bring-up.
 */
#ifndef TIDE_DPL_ATOLREEF_QOS_H
#define TIDE_DPL_ATOLREEF_QOS_H

#include "dpl/reef/qos/dpl_reef_qos.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Fills the chip's row of reef_qos_special. */
i32 dpl_atolreef_qos_special_register(u32 chip_id);

i32 dpl_atolreef_qos_priority_map_set(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg);
i32 dpl_atolreef_qos_priority_map_get(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg);
i32 dpl_atolreef_qos_hw_init(u32 chip_id);

/* Entry of icar_ba_tbl and pair in it of a map key; -20 for NULL, -4 or
 * -24 (with a line) for a key out of range or a type the table does not
 * have. */
i32 dpl_atolreef_qos_ba_index(u32 chip_id, u32 type, u32 map_id, const qos_map_cfg *cfg, u32 *entry, u32 *pair);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_QOS_H */
