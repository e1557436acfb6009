/*
 * Fields by catalogue, lookup by name, the field doors of the shell, and
 * dumps of registers, table entries and modules.
 */
#ifndef TIDE_CSL_REEF_FIELD_H
#define TIDE_CSL_REEF_FIELD_H

#include <tide/base.h>

#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

#ifdef __cplusplus
extern "C" {
#endif

int csl_reg_field_info_get(u32 chip_id, u32 reg_id, u32 field_id, cib_field_info *out);
int csl_tab_field_info_get(u32 chip_id, u32 tab_id, u8 mode, u32 field_id, cib_field_info *out);

/* A value into or out of a register image by field id; a field the register
 * does not have does nothing and gives 0. */
int csl_reg_field8_set_to_data(u32 chip_id, u8 *data, u32 reg_id, u8 value, u32 field_id);
int csl_reg_field16_set_to_data(u32 chip_id, u8 *data, u32 reg_id, u16 value, u32 field_id);
int csl_reg_field32_set_to_data(u32 chip_id, u8 *data, u32 reg_id, u32 value, u32 field_id);
int csl_reg_field64_set_to_data(u32 chip_id, u8 *data, u32 reg_id, u64 value, u32 field_id);
int csl_reg_field8_get_from_data(u32 chip_id, u8 *data, u32 reg_id, u8 *value, u32 field_id);
int csl_reg_field16_get_from_data(u32 chip_id, u8 *data, u32 reg_id, u16 *value, u32 field_id);
int csl_reg_field32_get_from_data(u32 chip_id, u8 *data, u32 reg_id, u32 *value, u32 field_id);
int csl_reg_field64_get_from_data(u32 chip_id, u8 *data, u32 reg_id, u64 *value, u32 field_id);
/* The same for table entries; `exact` 0 cuts a value to the field's width
 * first, 1 refuses a value that is too wide. */
int csl_tab_field8_set_to_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u8 value, u32 field_id, u32 exact);
int csl_tab_field16_set_to_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u16 value, u32 field_id, u32 exact);
int csl_tab_field32_set_to_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u32 value, u32 field_id, u32 exact);
int csl_tab_field64_set_to_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u64 value, u32 field_id, u32 exact);
int csl_tab_field8_get_from_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u8 *value, u32 field_id);
int csl_tab_field16_get_from_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u16 *value, u32 field_id);
int csl_tab_field32_get_from_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u32 *value, u32 field_id);
int csl_tab_field64_get_from_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u64 *value, u32 field_id);

/* Lookup by name: "mcc_mlib", "cib_mcc_mlib", any case, with "_<n>" for
 * instance n.  -7 for no such name, -6 for an instance beyond the count. */
int _module_info_get(u32 chip_id, const char *name, u32 *module_id);
int _info_ptr_and_addr_start_idx_get_by_name(u32 chip_id, const char *name, u32 *id, const void **record,
                                             u32 is_register, u32 *addr_index);
int csl_reef_reg_info_get_by_name(u32 chip_id, const char *name, u32 *reg_id, const cib_reg_info **reg,
                                  u32 *addr_index);
int csl_reef_tab_info_get_by_name(u32 chip_id, const char *name, u32 *tab_id, const cib_tab_info **tab,
                                  u32 *addr_index);
int csl_reef_direct_tab_set_by_name(u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes);
int csl_reef_direct_tab_get_by_name(u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes);

int csl_reef_tab_size_get(u32 chip_id, u32 id, u32 *size);
int csl_reef_reg_or_tab_info_get_by_addr(u32 chip_id, u32 addr, u32 *is_register, u32 *id, u32 *addr_index,
                                         u32 *index);
int csl_reef_module_info_check(u32 chip_id, const char *name, u32 addr_index);

/* The field doors: `mode` 0 the hardware, 1 the table's image. */
int csl_reef_field_get(u32 chip_id, base_field_op *op, const char *file, u32 mode);
int csl_reef_field_set(u32 chip_id, base_field_op *op, u32 mode);

/* Dumps: flags low word 1 lists the fields (for an entry: prints its index
 * line), high word 1 also shows fields or entries of value 0. */
int csl_reef_reg_dump(u32 chip_id, u32 id, u64 flags, u32 skip_zero, const char *file);
int csl_reef_reg_show(u32 chip_id, u32 id, u64 flags, u32 skip_zero, const char *file);
int csl_reef_direct_table_show(u32 chip_id, u32 id, u32 index, u64 flags, u32 reserved, const char *file, u32 mode);
void csl_reef_entry_index_line(u32 chip_id, u32 tab_id, u32 index, u32 to_file);
int csl_table_data_to_string(u32 chip_id, const char *table_name, const u8 *data, char *buf, u32 len, u64 opt0,
                             u64 opt1, u32 opt2);

/* Write test of a module's registers ("all" for every register): all ones
 * written, each field compared by its access type; -11 when a field fails.
 * Force test: `times` rounds of read and write of each register, timed. */
int csl_reef_reg_write_test(u32 chip_id, const char *module, u32 verbose);
int csl_reef_reg_force_test(u32 chip_id, const char *module, u32 times);

/* A module's status cleared by access types (bit per type: 1 RW, 4 RWW,
 * 8 RC_H, 16 WC, 32 RC_P, 64 WC_H, 128 W1C_H), and its contents shown. */
int csl_reef_module_reg_info_clear_by_id(u32 chip_id, u32 cib_module_id, u32 addr_index, u32 types);
int csl_reef_module_reg_info_clear_by_name(u32 chip_id, const char *name, u32 addr_index, u32 types);
int csl_reef_module_cnt_show(u32 chip_id, const char *module, u32 to_file, u32 mask, u32 raw);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_FIELD_H */
