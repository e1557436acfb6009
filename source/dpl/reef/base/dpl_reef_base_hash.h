/*
 * The hash doors of the base service (slots 8 to 13 of its family table).
 */
#ifndef TIDE_DPL_REEF_BASE_HASH_H
#define TIDE_DPL_REEF_BASE_HASH_H

#include <tide/base.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

i32 dpl_reef_base_hash_tab_summary_show(u32 chip_id);
i32 dpl_reef_base_hash_tab_op(u32 chip_id, base_hash_op *op);
i32 dpl_reef_base_hash_tab_dump(u32 chip_id, base_hash_dump *dump);
i32 dpl_reef_base_hash_alg_set(u32 chip_id, base_hash_alg *alg);
i32 dpl_reef_base_hash_alg_get(u32 chip_id, base_hash_alg *alg);
i32 dpl_reef_base_hash_info_show(u32 chip_id, const char *table_name);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_BASE_HASH_H */
