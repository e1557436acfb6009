/*
 * The operations of every real family, in slot order, and their family
 * tables.  A list entry is OP(name, (parameters, chip_id first),
 * (arguments)); the exported function is `<module>_api_<name>`.
 *
 * This header is the contract between source/api and the policy layer:
 * the api layer defines the exported functions and the `<module>_dispatch`
 * arrays, the policy layer fills `reef_<module>_dispatch`.
 */
#ifndef TIDE_API_FAMILIES_H
#define TIDE_API_FAMILIES_H

#include <tide/base.h>
#include <tide/init.h>

#include "api/api_guard.h"

/* ---- init: six slots; the exported init calls are written by hand ------- */
#define TIDE_INIT_OPS(OP)                                   \
    OP(soft_init, (u32 chip_id), (chip_id))                 \
    OP(soft_deinit, (u32 chip_id), (chip_id))               \
    OP(hw_init, (u32 chip_id), (chip_id))                   \
    OP(hw_deinit, (u32 chip_id), (chip_id))                 \
    OP(chip_hw_reset, (u32 chip_id), (chip_id))             \
    OP(chip_soft_reset, (u32 chip_id, u32 value), (chip_id, value))

API_DECLARE_FAMILY(init, TIDE_INIT_OPS)

/* ---- base: 23 slots ------------------------------------------------------ */
#define TIDE_BASE_OPS(OP)                                                                                  \
    OP(reg_set_by_addr, (u32 chip_id, u32 addr, u8 *data, u8 bytes), (chip_id, addr, data, bytes))         \
    OP(reg_get_by_addr, (u32 chip_id, u32 addr, u8 *data, u8 bytes), (chip_id, addr, data, bytes))         \
    OP(direct_tab_set_by_name, (u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes),             \
       (chip_id, name, index, data, bytes))                                                                 \
    OP(direct_tab_get_by_name, (u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes),             \
       (chip_id, name, index, data, bytes))                                                                 \
    OP(field_set, (u32 chip_id, base_field_op *op), (chip_id, op))                                          \
    OP(field_get, (u32 chip_id, base_field_op *op, const char *file), (chip_id, op, file))                  \
    OP(chip_version_show, (u32 chip_id), (chip_id))                                                         \
    OP(tab_data_to_string, (u32 chip_id, const char *table_name, u8 *data, char *text, u32 size),           \
       (chip_id, table_name, data, text, size))                                                             \
    OP(hash_tab_summary_show, (u32 chip_id), (chip_id))                                                     \
    OP(hash_tab_op, (u32 chip_id, base_hash_op *op), (chip_id, op))                                         \
    OP(hash_tab_dump, (u32 chip_id, base_hash_dump *dump), (chip_id, dump))                                 \
    OP(hash_alg_set, (u32 chip_id, base_hash_alg *alg), (chip_id, alg))                                     \
    OP(hash_alg_get, (u32 chip_id, base_hash_alg *alg), (chip_id, alg))                                     \
    OP(hash_info_show, (u32 chip_id, const char *table_name), (chip_id, table_name))                        \
    OP(tcam_summary_show, (u32 chip_id), (chip_id))                                                         \
    OP(tcam_resource_show, (u32 chip_id), (chip_id))                                                        \
    OP(tcam_add, (u32 chip_id, const char *table_name, u32 index, base_tcam_entry *entry),                  \
       (chip_id, table_name, index, entry))                                                                 \
    OP(tcam_del, (u32 chip_id, const char *table_name, u32 index), (chip_id, table_name, index))            \
    OP(tcam_show, (u32 chip_id, const char *table_name, u32 index), (chip_id, table_name, index))           \
    OP(cause_show, (u32 chip_id, u32 type, u32 only_hits, u32 clear), (chip_id, type, only_hits, clear))    \
    OP(cause_set, (u32 chip_id, base_cause_cfg *cfg), (chip_id, cfg))                                       \
    OP(chip_module_cnt_show,                                                                                \
       (u32 chip_id, const char *module, const char *file, u32 mask, u32 limit_bytes, u32 raw),             \
       (chip_id, module, file, mask, limit_bytes, raw))                                                     \
    OP(control_get, (u32 chip_id, base_test_cfg *cfg), (chip_id, cfg))

API_DECLARE_FAMILY(base, TIDE_BASE_OPS)

#endif /* TIDE_API_FAMILIES_H */
