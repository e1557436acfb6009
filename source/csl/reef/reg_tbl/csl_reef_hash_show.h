/*
 * Displays of the hash tables through the output hook.
 */
#ifndef TIDE_CSL_REEF_HASH_SHOW_H
#define TIDE_CSL_REEF_HASH_SHOW_H

#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"
#include "csl/reef/reg_tbl/csl_reef_hash_tab_op.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Names of the hash types, by number. */
extern const char *const g_csl_hash_type_name[CSL_HASH_TYPE_COUNT];

/* Memories of a dump: 0 bar0, 1 bar1, 2 cam, 3 kt, 4 ad. */
#define CSL_HASH_BUCKET_BAR0 0u
#define CSL_HASH_BUCKET_BAR1 1u
#define CSL_HASH_BUCKET_CAM 2u
#define CSL_HASH_BUCKET_KT 3u
#define CSL_HASH_BUCKET_AD 4u

/* Size and use of every hash table the chip has. */
i32 csl_reef_hash_tab_summary_show(u32 chip_id);
/* Geometry, use and algorithms of one table; -24 for a type without
 * them. */
i32 csl_reef_hash_info_show(u32 chip_id, u32 type);
/* Rows `start` to `end` of a memory of a table, from the chip or (`soft`
 * 1) from the software image; -24 for a memory the table has not, -4 for
 * rows outside it. */
i32 csl_reef_hash_table_dump(u32 chip_id, u32 type, u32 bucket, u32 soft, u32 start, u32 end);
/* The fields of an AD row on one line. */
void csl_reef_hash_ecib_ad_show(u32 chip_id, const ecib_ad *ad);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_HASH_SHOW_H */
