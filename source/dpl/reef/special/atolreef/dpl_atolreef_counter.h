/*
 * What only atolreef does in the counter service: which tables it counts
 * and where they lie, the reading of an entry, the inner counter that
 * refreshes the upper part of causeid_stat on its own, and the display of
 * the chip's global statistics registers.
 */
#ifndef TIDE_DPL_ATOLREEF_COUNTER_H
#define TIDE_DPL_ATOLREEF_COUNTER_H

#include "dpl/reef/counter/dpl_reef_counter.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Base address of each table id, 0 where the chip has none; taken from the
 * chip description at registration. */
extern u32 g_atolreef_counter_stat_addr[SHR_MAX_CHIPS][DPL_COUNTER_TAB_NUM];
/* Inner id to outer id: 29 to 7. */
extern const u32 g_atolreef_counter_id_map[1][2];
/* Entries of causeid_stat of the outer id; the inner id has the rest. */
#define DPL_ATOLREEF_CAUSEID_OUTER_ENTRIES 1024u

i32 dpl_atolreef_counter_special_register(u32 chip_id);

i32 dpl_atolreef_counter_global_display(u32 chip_id, u32 flags);
i32 dpl_atolreef_counter_enable_property_get(u32 chip_id, u32 id, u32 *enable);
i32 dpl_atolreef_counter_get_hardware_value(u32 chip_id, u32 id, u32 index, u64 *pkt, u64 *bytes);
i32 dpl_atolreef_counter_get_ounter_id(u32 chip_id, u32 inner_id, u32 *outer_id);
i32 dpl_atolreef_counter_get_innerid_num(u32 chip_id, u32 *num);
i32 dpl_atolreef_counter_innner_cycle_time_set(u32 chip_id);
i32 dpl_atolreef_counter_innner_cycle_time_get(u32 chip_id, u32 inner_id, u64 *cycle);
/* The update of a pass of one id (the inner id updates its part of the
 * outer table). */
i32 dpl_atolreef_counter_update_stat(u32 chip_id, u32 id);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_COUNTER_H */
