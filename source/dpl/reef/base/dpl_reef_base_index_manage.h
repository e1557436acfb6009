/*
 * The table index manager: one bitmap of used entry numbers per table
 * whose rows several features share (ACL counters, ACL and QoS policers).
 */
#ifndef TIDE_DPL_REEF_BASE_INDEX_MANAGE_H
#define TIDE_DPL_REEF_BASE_INDEX_MANAGE_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

#define DPL_INDEX_MANAGE_TABLES 12u

typedef struct dpl_tab_index_bitmap {
    u32 tab_id; /* 0 when the chip has no such table */
    u8 *bitmap; /* bit n of byte n / 8: entry number n is used */
} dpl_tab_index_bitmap;

typedef struct dpl_index_manage {
    u32 count;
    dpl_tab_index_bitmap *tabs;
} dpl_index_manage;

extern dpl_index_manage g_index_manage[SHR_MAX_CHIPS];
extern const u32 g_tab_id_list[DPL_INDEX_MANAGE_TABLES];

i32 dpl_reef_base_index_manage_init(u32 chip_id);
i32 dpl_reef_base_index_manage_deinit(u32 chip_id);
i32 dpl_reef_base_tab_index_alloc(u32 chip_id, u32 tab_id, u32 *index);
i32 dpl_reef_base_tab_index_alloc_with_id(u32 chip_id, u32 tab_id, u32 index);
i32 dpl_reef_base_tab_index_free(u32 chip_id, u32 tab_id, u32 index);
i32 dpl_reef_base_tab_index_used_get(u32 chip_id, u32 tab_id, u32 index, u8 *used);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_BASE_INDEX_MANAGE_H */
