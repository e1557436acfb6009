/*
 * What is particular to atolreef in the interrupt engine: the walk from
 * the top register down to the leaves, the callback store over the chip's
 * 903 interrupt types, the hardware start, and the ECC errors (their
 * description, counts and the repair of a damaged table row).
 */
#ifndef TIDE_DPL_ATOLREEF_INTERRUPT_CM_H
#define TIDE_DPL_ATOLREEF_INTERRUPT_CM_H

#include <tide/interrupt.h>

#include "dpl/reef/special/atolreef/dpl_atolreef_intr_tables.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The callback store.  The index is shared by all chips: per module the
 * running start of its types and the offset of each subid; a chip has one
 * row per type (not per instance). */
typedef struct atolreef_intr_callback_index {
    u32 base;
    u32 *subid_base;
    u32 subid_count;
} atolreef_intr_callback_index;

typedef struct atolreef_intr_callback_info {
    intr_callback callback;
    u32 count;
} atolreef_intr_callback_info;

extern atolreef_intr_callback_index g_atolreef_intr_callback_index[CIB_MODULE_COUNT];
extern atolreef_intr_callback_info *g_atolreef_intr_callback_info[SHR_MAX_CHIPS];
extern u32 g_atolreef_intr_all_module_total_intr_types;
extern u32 g_atolreef_intr_inited_chip_num;
extern u32 g_atolreef_intr_cb_index_inited_flag;
/* 1: the handling of an ECC error rewrites the damaged row.  Read by the
 * interrupt thread, written by the API: accessed atomically. */
extern u32 g_atolreef_ecc_default_action[SHR_MAX_CHIPS];

const intr_module_info *dpl_atolreef_interrupt_module_info_get(void);
const intr_ecc_module_info *dpl_atolreef_ecc_module_info_get(void);
const intr_ecc_error_cnt *dpl_atolreef_ecc_error_cnt_get(u32 *count);
const intr_ecc_tcam_cnt *dpl_atolreef_ecc_tcam_error_cnt_get(u32 *count);

/* Soft start and stop of a chip: the ECC default action cleared, the
 * callback store built (the shared index by the first chip). */
i32 dpl_atolreef_interrupt_cm_init(u32 chip_id);
i32 dpl_atolreef_interrupt_cm_deinit(u32 chip_id);
/* The chip's row of a type in the callback store, or NULL before the
 * store exists.  Use it under the engine's lock. */
atolreef_intr_callback_info *dpl_atolreef_interrupt_callback_row(u32 chip_id, u32 module_id, u32 subid,
                                                                 u32 intr_id);

/* The top handler: reads the top register and walks the categories
 * warning, event, ecc, fatal. */
void dpl_atolreef_interrupt_cm(u32 chip_id);
/* The default handling of row `top_id` of the first dispatch table. */
i32 dpl_atolreef_interrupt_lswtop_default_func(u32 chip_id, u32 top_id);
/* The hardware start: the line to the CPU opened, the TCAM scan on, every
 * category masked, the scheduler's interrupt clear set, and (property
 * `init_clear_all_intr`, default 1) every status cleared. */
i32 dpl_atolreef_interrupt_hw_init(u32 chip_id);

/* The ECC operations behind the family's checks. */
i32 dpl_atolreef_interrupt_ecc_info_get(u32 chip_id, intr_module module, intr_type type, intr_ecc_info *info);
i32 dpl_atolreef_interrupt_ecc_error_cnt_get(u32 chip_id, intr_ecc_cnt_para para, u32 *cnt);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_INTERRUPT_CM_H */
