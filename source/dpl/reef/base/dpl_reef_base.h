/*
 * The base service: the raw register door, the TCAM doors, the read-back
 * check of the test registers, and the base module's start and stop.
 */
#ifndef TIDE_DPL_REEF_BASE_H
#define TIDE_DPL_REEF_BASE_H

#include <tide/base.h>

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

/* The TCAM doors: a table by name, an entry by its table-wide index
 * (block << 8 | index). */
i32 dpl_reef_base_tcam_summary_show(u32 chip_id);
i32 dpl_reef_base_tcam_resource_show(u32 chip_id);
i32 dpl_reef_base_tcam_add(u32 chip_id, const char *table_name, u32 index, base_tcam_entry *entry);
i32 dpl_reef_base_tcam_del(u32 chip_id, const char *table_name, u32 index);
i32 dpl_reef_base_tcam_show(u32 chip_id, const char *table_name, u32 index);

/* The read-back check of the test registers. */
i32 dpl_reef_base_control_get(u32 chip_id, base_test_cfg *cfg);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_BASE_H */
