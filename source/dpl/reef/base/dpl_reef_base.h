/*
 * The base service: the raw register door and the base module's start and
 * stop.
 */
#ifndef TIDE_DPL_REEF_BASE_H
#define TIDE_DPL_REEF_BASE_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

i32 dpl_reef_base_soft_init(u32 chip_id);
i32 dpl_reef_base_soft_deinit(u32 chip_id);
i32 dpl_reef_base_hw_init(u32 chip_id);
i32 dpl_reef_base_hw_deinit(u32 chip_id);

i32 dpl_reef_base_reg_set_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes);
i32 dpl_reef_base_reg_get_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_BASE_H */
