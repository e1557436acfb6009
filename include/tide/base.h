/*
 * tide: the base service, chip-wide diagnostic and management calls.
 *
 * Every call takes the chip id first and returns a status (0, or a negative
 * code whose text shr_errmsg gives).
 */
#ifndef TIDE_BASE_H
#define TIDE_BASE_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* Register or table access by name and field. */
typedef struct base_field_op {
    const char *name;       /* register or table name; NULL when working by address */
    uint32_t start;         /* first table index */
    uint32_t kind;          /* 0 register by name, 1 register by address, 2 table by name */
    uint32_t addr;          /* the address for kind 1, a multiple of 4 */
    uint32_t show_all;      /* non-zero also prints entries whose field is 0 */
    const char *field_name; /* the field, or NULL for the whole word or entry */
    uint32_t count;         /* number of instances or entries */
    uint8_t *data;          /* value bytes for a set */
    uint32_t data_bytes;    /* size of data */
} base_field_op;

/* Hash table door.  Images are in the table's bit layout, bit n in bit
 * n % 8 of byte n / 8: for "ECIB" the key's 34 bits and the 64-bit AD row;
 * for "L2_MAC" the key and AD buffers of the MAC table's engine. */
typedef struct base_hash_op {
    const char *op;    /* "add-entry", "del-entry", "hard-search-key", "soft-search-key" or a prefix */
    const char *table; /* "L3_MFIB", "VRRP_MCDP", "ECIB", "L2_MAC" */
    void *key;         /* key image */
    void *data;        /* AD image of an add */
    uint32_t option;   /* an add: 1 puts the entry in the CAM */
} base_hash_op;

typedef struct base_hash_dump {
    const char *table;
    uint32_t bucket; /* 0 bar0, 1 bar1, 2 cam, 3 kt, 4 ad */
    uint32_t soft;   /* 0 the hardware, 1 the software image */
    uint32_t start;
    uint32_t end;
} base_hash_dump;

typedef struct base_hash_alg {
    const char *table;
    uint32_t barrel0;
    uint32_t barrel1;
    uint32_t left_shift;
    uint32_t fp_select;
} base_hash_alg;

/* Key, mask and data of a TCAM entry. */
typedef struct base_tcam_entry {
    uint8_t *key;
    uint8_t *mask;
    uint8_t *data;
} base_tcam_entry;

typedef struct base_cause_cfg {
    const char *name; /* new name; NULL only removes a name */
    uint32_t type;    /* 0 forward or drop, 1 to-CPU */
    uint32_t index;
} base_cause_cfg;

typedef struct base_test_cfg {
    uint32_t type;   /* must be 0 */
    uint32_t result; /* out: 1 passed, 0 failed */
} base_test_cfg;

TIDE_API int32_t base_api_reg_set_by_addr(uint32_t chip_id, uint32_t addr, uint8_t *data, uint8_t bytes);
TIDE_API int32_t base_api_reg_get_by_addr(uint32_t chip_id, uint32_t addr, uint8_t *data, uint8_t bytes);
TIDE_API int32_t base_api_direct_tab_set_by_name(uint32_t chip_id, const char *name, uint32_t index, uint8_t *data,
                                                 uint32_t bytes);
TIDE_API int32_t base_api_direct_tab_get_by_name(uint32_t chip_id, const char *name, uint32_t index, uint8_t *data,
                                                 uint32_t bytes);
TIDE_API int32_t base_api_field_set(uint32_t chip_id, base_field_op *op);
TIDE_API int32_t base_api_field_get(uint32_t chip_id, base_field_op *op, const char *file);
TIDE_API int32_t base_api_chip_version_show(uint32_t chip_id);
TIDE_API int32_t base_api_tab_data_to_string(uint32_t chip_id, const char *table_name, uint8_t *data, char *text,
                                             uint32_t size);
TIDE_API int32_t base_api_hash_tab_summary_show(uint32_t chip_id);
TIDE_API int32_t base_api_hash_tab_op(uint32_t chip_id, base_hash_op *op);
TIDE_API int32_t base_api_hash_tab_dump(uint32_t chip_id, base_hash_dump *dump);
TIDE_API int32_t base_api_hash_alg_set(uint32_t chip_id, base_hash_alg *alg);
TIDE_API int32_t base_api_hash_alg_get(uint32_t chip_id, base_hash_alg *alg);
TIDE_API int32_t base_api_hash_info_show(uint32_t chip_id, const char *table_name);
TIDE_API int32_t base_api_tcam_summary_show(uint32_t chip_id);
TIDE_API int32_t base_api_tcam_resource_show(uint32_t chip_id);
TIDE_API int32_t base_api_tcam_add(uint32_t chip_id, const char *table_name, uint32_t index, base_tcam_entry *entry);
TIDE_API int32_t base_api_tcam_del(uint32_t chip_id, const char *table_name, uint32_t index);
TIDE_API int32_t base_api_tcam_show(uint32_t chip_id, const char *table_name, uint32_t index);
TIDE_API int32_t base_api_cause_show(uint32_t chip_id, uint32_t type, uint32_t only_hits, uint32_t clear);
TIDE_API int32_t base_api_cause_set(uint32_t chip_id, base_cause_cfg *cfg);
TIDE_API int32_t base_api_chip_module_cnt_show(uint32_t chip_id, const char *module, const char *file, uint32_t mask,
                                               uint32_t limit_bytes, uint32_t raw);
TIDE_API int32_t base_api_control_get(uint32_t chip_id, base_test_cfg *cfg);

TIDE_END_DECLS

#endif /* TIDE_BASE_H */
