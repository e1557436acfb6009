/*
 * The constant tables of atolreef's interrupt engine, generated from the
 * chip description and cib/interrupts.txt (atolreef_intr_data.cc): every
 * interrupt type of the 58 chip modules, the two dispatch tables from the
 * top register to the leaves, the ECC rows and the ECC counters.  They are
 * shared by all chips.
 */
#ifndef TIDE_DPL_ATOLREEF_INTR_TABLES_H
#define TIDE_DPL_ATOLREEF_INTR_TABLES_H

#include "csl/reef/reg_tbl/csl_reef_cib.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A register id of the tables that names no register. */
#define INTR_NO_REG 0xFFFEu
/* An ECC row without debug register; a field without place. */
#define INTR_NO_DEBUG_REG 0xFFFFFFFEu
#define INTR_NO_FIELD 255u

#define INTR_LSWTOP_ROWS 107u
#define INTR_SECOND_ROWS 76u
#define INTR_ECC_ERROR_CNT_ROWS 19u
#define INTR_ECC_TCAM_CNT_ROWS 48u

/* One interrupt type: its bits in its status register and in its mask
 * register (the same place), and the registers that debug_info_get
 * reads. */
typedef struct intr_type_info {
    const char *name;
    const char *status_reg_name; /* without the module's prefix */
    const char *mask_reg_name;   /* NULL: none, the type is always on */
    const u16 *debug_regs;
    u16 status_reg_id;
    u16 mask_reg_id; /* INTR_NO_REG: none */
    u8 bit_start;
    u8 bit_width;
    u8 debug_reg_count;
} intr_type_info;

typedef struct intr_subid_info {
    const char *name;
    const intr_type_info *types;
    u8 type_count;
} intr_subid_info;

/* A module without interrupts has no subids. */
typedef struct intr_module_info {
    const intr_subid_info *subids;
    u8 subid_count;
} intr_module_info;

/* A row of a dispatch table: module entries, each an instance and the
 * types of its subids that the row serves, in table order. */
typedef struct intr_dispatch_subid {
    u32 subid;
    const u8 *types;
    u32 type_count;
} intr_dispatch_subid;

typedef struct intr_dispatch_module {
    u32 module_id;
    u32 addr_idx;
    const intr_dispatch_subid *subids;
    u32 subid_count;
} intr_dispatch_module;

typedef struct intr_dispatch_row {
    const intr_dispatch_module *modules; /* NULL: an empty row */
    u32 module_count;
} intr_dispatch_row;

/* How a memory error of a type is described.  `debug_reg`: low 20 bits the
 * register (for icar and ecar: the table) id, upper bits the instance (the
 * word of the table's entry 0). */
typedef struct intr_ecc_row {
    u32 kind; /* INTR_ECC_KIND_* of tide/interrupt.h */
    u32 debug_reg;
    u8 type_start; /* INTR_NO_FIELD: no type field */
    u8 type_width;
    u8 index_start;
    u8 index_width;
    u16 table_id; /* direct or hash table, TCAM block; INTR_NO_REG */
} intr_ecc_row;

/* One list per subid (NULL for a subid without ECC rows), a row per type. */
typedef struct intr_ecc_module_info {
    u32 ecc_type_count;
    const intr_ecc_row *const *subid_rows;
} intr_ecc_module_info;

typedef struct intr_ecc_error_cnt {
    u32 module_id;
    u32 subid;
    u32 intr_id;
    u32 table_id;
    u32 reg_id; /* with the instance in the upper bits */
    u32 start;
    u32 width;
} intr_ecc_error_cnt;

/* TCAM blocks: rows 0-15 the data planes, 16-31 the care planes, 32-47
 * the action rows; the second count is absent (width 0) for actions. */
typedef struct intr_ecc_tcam_cnt {
    u32 reg_id;
    u32 start0;
    u32 width0;
    u32 start1;
    u32 width1;
} intr_ecc_tcam_cnt;

extern const intr_module_info g_atolreef_all_intr_module_info[CIB_MODULE_COUNT];
extern const intr_dispatch_row g_atolreef_intr_lswtop_dispatch_info[INTR_LSWTOP_ROWS];
extern const intr_dispatch_row g_atolreef_intr_mag_sds_xsec_dispatch_info[INTR_SECOND_ROWS];
extern const intr_ecc_module_info g_atolreef_all_ecc_module_info[CIB_MODULE_COUNT];
extern const intr_ecc_error_cnt g_atolreef_all_ecc_error_cnt[INTR_ECC_ERROR_CNT_ROWS];
extern const intr_ecc_tcam_cnt g_atolreef_all_ecc_error_tcam_cnt[INTR_ECC_TCAM_CNT_ROWS];

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_INTR_TABLES_H */
