/*
 * Register and table access by catalogue id, direct tables with their
 * software images, module locks, and the catalogue manager of each chip.
 */
#ifndef TIDE_CSL_REEF_REG_TAB_H
#define TIDE_CSL_REEF_REG_TAB_H

#include "csl/reef/reg_tbl/csl_reef_cib.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- catalogue manager ----------------------------------------------------- */

/* The software image of one table. */
typedef struct csl_tab_cache {
    u8 *data; /* depth * bytes_per_entry bytes; NULL while off */
    u8 enabled;
} csl_tab_cache;

typedef struct csl_reg_tab_cm {
    const cib_reg_info *const *reg_list;
    const cib_tab_info *const *tab_list;
    void *reserved0;
    csl_tab_cache *tab_cache; /* one per table id */
    void *reserved1;
    u32 reg_count;
    u32 tab_count;
} csl_reg_tab_cm;

extern csl_reg_tab_cm *g_csl_reg_tab_cm[SHR_MAX_CHIPS];

int csl_reg_tab_cm_malloc(u32 chip_id);
void csl_reg_tab_cm_free(u32 chip_id);
/* The chip's manager, without a check. */
csl_reg_tab_cm *csl_reg_tab_cm_get(u32 chip_id);

/* Start and stop of the catalogue of a chip (lists, images, locks). */
int csl_reef_reg_tab_soft_init(u32 chip_id);
int csl_reef_reg_tab_soft_deinit(u32 chip_id);
int csl_reef_reg_tab_hw_init(u32 chip_id);

/* A chip's register and table records, or NULL. */
const cib_reg_info *csl_reef_reg_info_get(u32 chip_id, u32 reg_id);
const cib_tab_info *csl_reef_tab_info_get(u32 chip_id, u32 tab_id);

/* ---- module locks -------------------------------------------------------------- */

extern xsal_mutex_t g_reef_module_reg_lock[SHR_MAX_CHIPS][CIB_MODULE_COUNT];
extern xsal_mutex_t g_reef_module_tab_lock[SHR_MAX_CHIPS][CIB_MODULE_COUNT];

int csl_reef_module_lock_init(u32 chip_id);
int csl_reef_module_lock_deinit(u32 chip_id);
int csl_reef_module_reg_get_lock(u32 chip_id, u32 cib_module_id);
int csl_reef_module_reg_get_unlock(u32 chip_id, u32 cib_module_id);
int csl_reef_module_tab_get_lock(u32 chip_id, u32 tab_id);
int csl_reef_module_tab_get_unlock(u32 chip_id, u32 tab_id);

/* ---- registers by id ------------------------------------------------------------- */

int csl_reef_reg_set_u32(u32 chip_id, u32 id, u32 value);
int csl_reef_reg_set(u32 chip_id, u32 id, u8 *data, u8 bytes);
int csl_reef_reg_get(u32 chip_id, u32 id, u8 *data, u8 bytes);
int csl_reef_reg_get_u32(u32 chip_id, u32 id, u32 *value);

/* ---- direct tables ------------------------------------------------------------------ */

/* Access modes of the direct table functions. */
#define CSL_TAB_HW 0u
#define CSL_TAB_IMAGE 1u
#define CSL_TAB_HW_AND_IMAGE 2u

int csl_reef_tab_set_direct(u32 chip_id, u32 id, u32 index, u8 *data, u32 bytes, u32 mode);
int csl_reef_tab_get_direct(u32 chip_id, u32 id, u32 index, u8 *data, u32 bytes, u32 mode);
int csl_reef_tab_set_direct_uint32(u32 chip_id, u32 id, u32 index, u32 *words, u32 word_count, u32 mode);
int csl_reef_tab_get_direct_uint32(u32 chip_id, u32 id, u32 index, u32 *words, u32 word_count, u32 mode);
int csl_reef_tab_cache_enable_set(u32 chip_id, u32 tab_id, u8 enable);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_REG_TAB_H */
