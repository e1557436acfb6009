/*
 * The TCAM block manager.  The blocks of acl_core are the chip's scarce
 * resource: this layer knows which block is free and which kind of table
 * (a map type) holds it, sets a block's row width, opens it for its kind of
 * lookup (the kind bitmaps and the bank enables of acl_core) and hands a
 * caller an ordered list of blocks.  Entries in the blocks belong to the
 * callers (the entry layer, csl_reef_tcam_tab_op.h).
 *
 * Block lists: the caller owns a circular doubly linked list with a
 * sentinel head (csl_reef_tcam_block_list_init, or a head of zeros, which
 * counts as empty); its order is the logical order of the caller's table.
 * Nodes are allocated here ("TCAM MGMT") and freed when their block is
 * given back.
 */
#ifndef TIDE_CSL_REEF_TCAM_MGMT_H
#define TIDE_CSL_REEF_TCAM_MGMT_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Map types: the kinds of table that own blocks. */
enum csl_tcam_map_type {
    CSL_TCAM_MAP_IACL_160 = 0,
    CSL_TCAM_MAP_IACL_320 = 1,
    CSL_TCAM_MAP_IACL_480 = 2,
    CSL_TCAM_MAP_IPSG = 3,
    CSL_TCAM_MAP_SPA = 4,
    CSL_TCAM_MAP_EACL_S = 5,
    CSL_TCAM_MAP_MFF = 6,
    CSL_TCAM_MAP_EACL_160 = 7,
    CSL_TCAM_MAP_EACL_320 = 8,
    CSL_TCAM_MAP_EACL_480 = 9,
    CSL_TCAM_MAP_CPACL_320 = 10,
    CSL_TCAM_MAP_CPACL_480 = 11,
    CSL_TCAM_MAP_TT_MYSTA = 12,
    CSL_TCAM_MAP_TT_IP = 13,
    CSL_TCAM_MAP_TT_SRV6 = 14,
    CSL_TCAM_MAP_P_PLUS_V = 15,
    CSL_TCAM_MAP_VACL_80 = 16,
    CSL_TCAM_MAP_VACL_160 = 17,
    CSL_TCAM_MAP_VACL_320 = 18,
    CSL_TCAM_MAP_VT_160 = 19,
    CSL_TCAM_MAP_VT_320 = 20,
    CSL_TCAM_MAP_TYPE_COUNT = 21,
    CSL_TCAM_MAP_NONE = 21 /* owner of a free block */
};

/* Block modes: the row width of a block. */
#define CSL_TCAM_MODE_80 0u
#define CSL_TCAM_MODE_160 1u
#define CSL_TCAM_MODE_320 2u
#define CSL_TCAM_MODE_UNSET 3u

/* A map type's name and block mode; 480-bit kinds use 320-bit blocks and a
 * paired block. */
typedef struct csl_tcam_mgmt_info {
    const char *name;
    u8 mode;
    u8 is_480;
} csl_tcam_mgmt_info;
extern const csl_tcam_mgmt_info g_tcam_mgmt_info[CSL_TCAM_MAP_TYPE_COUNT];

/* A block's record. */
typedef struct csl_tcam_block {
    u8 used;
    u8 mode;
    u8 is_480;
    u8 map_type;
    u16 in_use; /* 0xFFFF for a flexible block in use, 255 for a fixed one */
    u16 entries;
} csl_tcam_block;

/* The blocks of a chip: the fixed ones have the low ids, the flexible ones
 * follow. */
typedef struct csl_tcam_resource {
    u16 total;
    u16 fixed;
    u16 flexible;
    u16 used;
    csl_tcam_block *fixed_blocks;
    csl_tcam_block *flex_blocks;
} csl_tcam_resource;

extern csl_tcam_resource *g_tcam_resource[SHR_MAX_CHIPS];
extern xsal_mutex_t g_tcam_mgmt_lock[SHR_MAX_CHIPS];
extern u32 g_tcam_mgmt_init[SHR_MAX_CHIPS];

/* A node of a caller's block list. */
typedef struct csl_tcam_block_node {
    u32 block_id;
    u32 entries;
    struct csl_tcam_block_node *prev;
    struct csl_tcam_block_node *next;
} csl_tcam_block_node;

/* An empty list. */
void csl_reef_tcam_block_list_init(csl_tcam_block_node *head);

/* ---- start and stop -------------------------------------------------------- */

/* The resource record and the lock "tcam mgmt", once per chip. */
int csl_reef_tcam_mgmt_init_soft(u32 chip_id);
/* Frees them, and the block lists of the module view. */
int csl_reef_tcam_mgmt_deinit_soft(u32 chip_id);
/* -17 when the record exists, -2 for no memory, -24 for a chip type
 * without TCAM. */
int csl_reef_tcam_resource_init(u32 chip_id);
int csl_reef_tcam_resource_deinit(u32 chip_id);
csl_tcam_resource *csl_reef_tcam_resource_get(u32 chip_id);
/* -4 for a chip id above 3 or NULL outs, -14 without a record. */
int csl_reef_tcam_resource_fix_flex_block_num_get(u32 chip_id, u16 *fixed, u16 *flexible);
int csl_reef_tcam_fix_flex_block_num_get(u32 chip_id, u16 *fixed, u16 *flexible);

/* ---- blocks ------------------------------------------------------------------- */

/* The lowest free blocks of the map type's mode holding at least `wanted`
 * entries, appended to the list; nothing for 0.  -4 for a map type this
 * chip does not use, -6 when capacity is short, -14 without a record, -20
 * for a NULL head. */
int csl_reef_tcam_block_auto_alloc(u32 chip_id, u32 wanted, u32 map_type, csl_tcam_block_node *head);
/* The given blocks; -14 for a block in use, -4 for a wrong kind of block or
 * an id beyond the chip. */
int csl_reef_tcam_block_manual_alloc(u32 chip_id, u32 count, const u32 *ids, u32 map_type,
                                     csl_tcam_block_node *head);
/* Gives every block of the list back and empties it. */
int csl_reef_tcam_block_free(u32 chip_id, u32 map_type, csl_tcam_block_node *head);
/* One block: taken and appended, or found in the list and given back
 * (-7 when the list does not hold it). */
int csl_reef_tcam_block_add(u32 chip_id, u32 block_id, u32 map_type, csl_tcam_block_node *head);
int csl_reef_tcam_block_del(u32 chip_id, u32 block_id, u32 map_type, csl_tcam_block_node *head);

/* The list's block ids in order (room for every block of the chip). */
int csl_reef_tcam_blocklist_get(u32 chip_id, const csl_tcam_block_node *head, u32 *count, u32 *ids);
/* Entries of the whole list, and of one block of it (0 when absent). */
u32 csl_reef_tcam_block_list_size_get(u32 chip_id, const csl_tcam_block_node *head);
u32 csl_reef_tcam_block_size_get(u32 chip_id, const csl_tcam_block_node *head, u32 block_id);
/* The block and index of a logical index of the list; beyond the list's
 * entries the last block with the remainder.  -7 for an empty list, -20
 * for NULL. */
int csl_reef_tcam_block_entry_index_location_get(u32 idx, u32 *block, u32 *index, const csl_tcam_block_node *head);
/* Highest id of a used block of an unchangeable kind among the fixed ids
 * (0xFFFFFFFF if none) and among the flexible ids (fixed count - 1 if
 * none). */
int csl_reef_tcam_last_fixed_flexd_unchange_block_get(u32 chip_id, u32 *fixed, u32 *flexible);

/* Software records and hardware settings of every block, as text. */
int csl_reef_tcam_resource_show(u32 chip_id);

/* ---- acl_core registers: -24 on a chip other than atolreef, -20 for a NULL
 * out, -4 for a block beyond the chip or a kind without register ---------- */

/* The kind bitmap register of a map type, one bit per block (a register
 * shared by two kinds holds the bits of both). */
int csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(u32 chip_id, u32 map_type, u32 *bitmap);
int csl_reef_tcam_op_acl_core_tcamblock_bitmap_set(u32 chip_id, u32 map_type, u32 bitmap);
int csl_reef_tcam_op_acl_core_tcam_block_mode_get(u32 chip_id, u32 block, u32 *mode);
int csl_reef_tcam_op_acl_core_tcam_block_mode_set(u32 chip_id, u32 block, u32 mode);
int csl_reef_tcam_op_acl_core_tcam_block_bank_get(u32 chip_id, u32 block, u32 *bank);
int csl_reef_tcam_op_acl_core_tcam_block_bank_set(u32 chip_id, u32 block, u32 bank);
int csl_reef_tcam_op_acl_core_tcam_block_cfgpri_get(u32 chip_id, u32 *cfgpri);
int csl_reef_tcam_op_acl_core_tcam_block_cfgpri_set(u32 chip_id, u32 cfgpri);
/* -24 on every chip: 480-bit kinds stay off. */
int csl_reef_tcam_op_acl_core_tcam_block_480mode_get(u32 chip_id, u32 block, u32 *on);
int csl_reef_tcam_op_acl_core_tcam_block_480mode_set(u32 chip_id, u32 block, u32 on);

/* ---- the module view: six named users with one list each -------------------- */

#define CSL_TCAM_UTILS_MODULES 6u
#define CSL_TCAM_UTILS_SPA 0u   /* packet analysis */
#define CSL_TCAM_UTILS_VT_160 1u /* VLAN translation, 160 bits */
#define CSL_TCAM_UTILS_VT_320 2u /* VLAN translation, 320 bits */

extern csl_tcam_block_node g_module_head[SHR_MAX_CHIPS][CSL_TCAM_UTILS_MODULES];
extern u32 g_module_alloced[SHR_MAX_CHIPS][CSL_TCAM_UTILS_MODULES];

/* -4 for a bad chip or a module above 5, -24 for a module this chip does
 * not have, -11 when the module holds blocks already. */
int csl_reef_tcam_utils_block_alloc(u32 chip_id, u32 module, u32 entries);
int csl_reef_tcam_utils_block_manual_alloc(u32 chip_id, u32 module, u32 count, const u32 *ids);
/* -11 when the module holds nothing. */
int csl_reef_tcam_utils_block_free(u32 chip_id, u32 module);
int csl_reef_tcam_utils_index_to_block_index(u32 chip_id, u32 module, u32 idx, u32 *block, u32 *index);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_TCAM_MGMT_H */
