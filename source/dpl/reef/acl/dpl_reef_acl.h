/*
 * Access control lists of the reef family: the TCAM tables that keep a
 * group's entries in priority order over its blocks (dpl_reef_acl_tcam),
 * and the core of the acl family: groups, entries, their items, install
 * and uninstall, the lookup configuration, the global settings and the
 * port and VLAN controls.  Everything runs under the feature lock 21,
 * which is recursive, so that a call may call another.
 *
 * Templates (the key layouts of the chip) are the chip's: a table of
 * callbacks per chip (reef_acl_special) filled at soft init, through which
 * the core asks which templates and actions a kind of group takes, checks
 * items against each other and builds an entry's key, mask and action.
 */
#ifndef TIDE_DPL_REEF_ACL_H
#define TIDE_DPL_REEF_ACL_H

#include <tide/acl.h>

#include "api/api_families.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "shared/shr_avl.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Feature lock of the service. */
#define DPL_LOCK_ACL 21u

/* ==== the TCAM tables of the groups ====================================== */

/* A slot of a table: `key` is the entry's priority + 1, 0 for a free slot.
 * Slots are in ascending order of key; free slots may lie anywhere. */
typedef struct dpl_acl_tcam_slot {
    u32 key;
    void *entry;
} dpl_acl_tcam_slot;

struct dpl_acl_tcam_table;

/* A block of a table (tag "acl_tcam_block"); in the table's block_tree and
 * in the chip-wide tree g_acl_tcam_block, both by block id. */
typedef struct dpl_acl_tcam_block {
    u32 block_id;
    u32 entries;
    u32 reserved;
    u32 map_type;
    struct dpl_acl_tcam_table *table;
    u32 mode;
} dpl_acl_tcam_block;

/* What a block move rewrites: the used slots of `src` from its row
 * `first` to `last` (exclusive) go to block `dst_block`, at the same row,
 * or counted from 0 (`from_zero`), or after `last` (`high_half`). */
typedef struct dpl_acl_tcam_move {
    struct dpl_acl_tcam_table *table;
    const dpl_acl_tcam_block *src;
    u32 dst_block;
    u32 first;
    u32 last;
    u32 from_zero;
    u32 high_half;
} dpl_acl_tcam_move;

/* Moves the entry of slot `from` to slot `to` in the hardware (the table
 * moves the slot afterwards); writes the move's entries at its block. */
typedef i32 (*dpl_acl_tcam_move_entry_f)(u32 chip_id, struct dpl_acl_tcam_table *table, u32 from, u32 to);
typedef i32 (*dpl_acl_tcam_move_block_f)(u32 chip_id, const dpl_acl_tcam_move *move);

/* One group's table (tag "TCAM"). */
typedef struct dpl_acl_tcam_table {
    dpl_acl_tcam_slot *slots;
    csl_tcam_block_node block_list;
    u32 size;
    u32 used;
    u32 chip_id;
    dpl_acl_tcam_move_entry_f move_entry;
    shr_avl_table *block_tree;
    dpl_acl_tcam_move_block_f move_block;
    u32 map_type;
    u64 moves; /* entry moves so far */
    void *owner;
} dpl_acl_tcam_table;

/* Result of the free block search. */
typedef struct dpl_acl_tcam_free_block {
    u32 start_free_block_index;
    u32 free_resource_block_num;
    u32 refter_480block_move;
    u32 added_entries;
} dpl_acl_tcam_free_block;

/* Catalogue TCAM id whose delete cleans a block of a map type (38: none). */
#define DPL_ACL_TCAM_NO_TAB 38u

extern shr_avl_table *g_acl_tcam_block[SHR_MAX_CHIPS];

i32 dpl_reef_acl_tcam_init(u32 chip_id);
i32 dpl_reef_acl_tcam_deinit(u32 chip_id);
/* A table over new blocks of `size` entries (0: 128, on adjacent blocks),
 * or over the given blocks; NULL on a failure, with nothing kept. */
dpl_acl_tcam_table *dpl_reef_acl_tcam_create(u32 chip_id, u32 size, u32 map_type, dpl_acl_tcam_move_entry_f move_entry,
                                             dpl_acl_tcam_move_block_f move_block);
dpl_acl_tcam_table *dpl_reef_acl_tcam_manual_create(u32 chip_id, u32 count, const u32 *ids, u32 map_type,
                                                    dpl_acl_tcam_move_entry_f move_entry,
                                                    dpl_acl_tcam_move_block_f move_block);
i32 dpl_reef_acl_tcam_destroy(u32 chip_id, u32 map_type, dpl_acl_tcam_table *table);
/* The slot of a new entry of `priority`, with room made by moving the
 * nearest run of neighbours by half its gap; -14 in a full table, -6 when
 * no free slot can be reached. */
i32 dpl_reef_acl_tcam_alloc_entry(u32 chip_id, dpl_acl_tcam_table *table, u32 priority, void *entry, u32 *index);
i32 dpl_reef_acl_tcam_release_entry(u32 chip_id, dpl_acl_tcam_table *table, u32 index);
/* Block and row of a slot: the blocks in ascending id, rows in order. */
i32 dpl_reef_acl_tcam_logic_idx_to_hw_idx(const dpl_acl_tcam_table *table, u32 index, u32 *block, u32 *row);
/* Slots of the table's blocks below `block`. */
i32 dpl_reef_acl_tcam_block_logic_idx_offset_get(u32 chip_id, const dpl_acl_tcam_block *block, u32 *offset);
/* The used slots moved down to 0 .. used - 1, in order. */
i32 dpl_reef_acl_tcam_compress(u32 chip_id, dpl_acl_tcam_table *table, u32 *moved);
i32 dpl_reef_acl_tcam_block_expand(u32 chip_id, u32 map_type, dpl_acl_tcam_table *table);
i32 dpl_reef_acl_tcam_block_shrink(u32 chip_id, u32 map_type, dpl_acl_tcam_table *table);
i32 dpl_acl_reef_tcam_free_block_get(u32 chip_id, u32 map_type, const dpl_acl_tcam_table *table,
                                     dpl_acl_tcam_free_block *out);
/* The record of a block of any table, NULL when no table has it. */
dpl_acl_tcam_block *dpl_reef_acl_tcam_block_get(u32 chip_id, u32 block_id);
/* A block of another table one place up (direction 0) or down (1),
 * without a moment in which its entries match nowhere. */
i32 dpl_reef_acl_tcam_block_move(u32 chip_id, dpl_acl_tcam_block *block, u32 direction);
u32 _dpl_reef_acl_tcam_id_get_by_map_type(u32 map_type);

/* ==== groups and entries ======================================================= */

/* Kinds of group (fp types): 12 on the family, 0 to 11. */
#define DPL_ACL_FP_TYPE_COUNT 12u
#define DPL_ACL_FP_TYPE_NONE 12u
/* Stage objects: 0 vfp, 1 ifp, 2 cfp, 3 efp, 4 mfp. */
#define DPL_ACL_STAGE_COUNT 5u
/* Automatic group and entry ids run from here up and wrap back. */
#define DPL_ACL_ID_AUTO_BASE 0xFF000000u
#define DPL_ACL_GROUP_TYPE_MAX 6u

/* Images of an entry: mask, key and action, in the tables' layouts. */
#define DPL_ACL_KEY_BYTES 60u
#define DPL_ACL_AD_BYTES 12u
typedef struct dpl_acl_image {
    u8 mask[DPL_ACL_KEY_BYTES];
    u8 key[DPL_ACL_KEY_BYTES];
    u8 ad[DPL_ACL_AD_BYTES];
} dpl_acl_image;

#define DPL_ACL_MATCH_WORDS 8u  /* 256 bits */
#define DPL_ACL_ACTION_WORDS 6u /* 192 bits */
#define DPL_ACL_ACTION_SUPPORT_WORDS 5u

struct dpl_acl_group;

/* An entry (tag "FP ENTRY"). */
typedef struct dpl_acl_entry {
    u32 entry_id;
    u32 priority;
    u32 state; /* ACL_ENTRY_INSTALLED, ACL_ENTRY_DIRTY */
    u32 logical_index;
    u32 block;
    u32 index_in_block;
    u32 template_id; /* ACL_TEMPLATE_NONE until set */
    u32 based_mode;
    u32 tcam_id; /* the table it was written to, while installed */
    u32 match_support[DPL_ACL_MATCH_WORDS];
    u32 match_set[DPL_ACL_MATCH_WORDS];
    acl_item *match[ACL_MATCH_ID_COUNT];
    u32 action_set[DPL_ACL_ACTION_WORDS];
    acl_item *action[ACL_ACTION_ID_COUNT];
    struct dpl_acl_group *group;
    dpl_acl_image *hw_image; /* alive only between build and download */
} dpl_acl_entry;

/* A stage: the groups of one kind of lookup. */
typedef struct dpl_acl_stage {
    u32 stage_id;
    u32 group_count;
    struct dpl_acl_group *head;
} dpl_acl_stage;

/* A group (tag "FP GROUP"). */
typedef struct dpl_acl_group {
    u32 group_id;
    char name[ACL_GROUP_NAME_LEN + 1];
    u32 priority;
    u32 alloc_mode;
    u32 block_num;
    u32 block_ids[ACL_GROUP_BLOCKS_MAX];
    u32 entry_num;
    u32 entry_count;
    u32 fp_type; /* DPL_ACL_FP_TYPE_NONE until set */
    u32 match_support;
    u32 action_support[DPL_ACL_ACTION_SUPPORT_WORDS];
    dpl_acl_stage *fp;
    dpl_acl_tcam_table *table;
    shr_avl_table *entry_tree;
    struct dpl_acl_group *stage_prev;
    struct dpl_acl_group *stage_next;
} dpl_acl_group;

/* A kind of group: its type and mode, stage and map type. */
typedef struct dpl_acl_fp_kind {
    u32 type;
    u32 mode;
    u32 stage;
    u32 map_type;
} dpl_acl_fp_kind;
extern const dpl_acl_fp_kind g_acl_fp_kind[DPL_ACL_FP_TYPE_COUNT];

extern dpl_acl_stage g_fp[SHR_MAX_CHIPS][DPL_ACL_STAGE_COUNT];
extern shr_avl_table *g_acl_group_tree[SHR_MAX_CHIPS];
extern shr_avl_table *g_entry_tree[SHR_MAX_CHIPS];
extern u32 g_acl_group_id_alloc[SHR_MAX_CHIPS];
extern u32 g_last_entry_id_alloc[SHR_MAX_CHIPS];
/* 0 manual: a table never grows or shrinks; 1 automatic. */
extern u32 g_acl_group_alloc_tcam_block_mode[SHR_MAX_CHIPS];

/* Names: 224 match ids, 153 actions, 33 templates, the last "null". */
extern const char *const g_entry_match_id_name[ACL_MATCH_ID_COUNT];
extern const char *const g_entry_action_id_name[ACL_ACTION_ID_COUNT];
extern const char *const g_template_type_id_name[ACL_TEMPLATE_COUNT];
/* Row of a name, or the count when none. */
u32 dpl_reef_acl_name_find(const char *const *names, u32 count, const char *name);

/* ==== the chip's templates ============================================================ */

/* Callbacks of a chip; an empty one makes its caller answer -24. */
typedef struct reef_acl_special_t {
    i32 (*match_type_conflict_check)(u32 chip_id, u32 template_id, const u32 *match_set, u32 match_id);
    i32 (*action_conflict_check)(u32 chip_id, u32 fp_type, const u32 *action_set, u32 action_id);
    i32 (*match_type_support_gen)(u32 chip_id, u32 template_id, u32 *bitmap);
    i32 (*support_gen)(u32 chip_id, u32 fp_type, u32 *bitmap);
    i32 (*action_support_gen)(u32 chip_id, u32 fp_type, u32 *bitmap);
    i32 (*init)(u32 chip_id);
    i32 (*deinit)(u32 chip_id);
    /* The TCAM table of a template's entries. */
    i32 (*template_tcam_id_get)(u32 chip_id, u32 template_id, u32 *tcam_id);
    /* An entry's key, mask and action by its template and actions. */
    i32 (*entry_gen)(u32 chip_id, const dpl_acl_entry *entry, dpl_acl_image *image);
} reef_acl_special_t;
extern reef_acl_special_t reef_acl_special[SHR_MAX_CHIPS];

i32 dpl_reef_acl_template_special_register(u32 chip_id);
i32 dpl_reef_acl_template_init(u32 chip_id);
i32 dpl_reef_acl_template_deinit(u32 chip_id);
i32 dpl_reef_acl_template_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap);
i32 dpl_reef_acl_template_action_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap);
i32 dpl_reef_acl_template_match_type_support_gen(u32 chip_id, u32 template_id, u32 *bitmap);
i32 dpl_reef_acl_template_match_type_conflict_check(u32 chip_id, u32 template_id, const u32 *match_set,
                                                    u32 match_id);
i32 dpl_reef_acl_template_action_conflict_check(u32 chip_id, u32 fp_type, const u32 *action_set, u32 action_id);
i32 dpl_reef_acl_template_tcam_id_get(u32 chip_id, u32 template_id, u32 *tcam_id);
i32 dpl_reef_acl_template_entry_gen(u32 chip_id, const dpl_acl_entry *entry, dpl_acl_image *image);

/* ==== the service ====================================================================== */

i32 dpl_reef_acl_fp_soft_init(u32 chip_id);
i32 dpl_reef_acl_fp_soft_deinit(u32 chip_id);
i32 dpl_reef_acl_fp_hw_init(u32 chip_id);

/* -24 for a key type a stage cannot look up on this chip. */
i32 dpl_reef_acl_control_check_lookup_type(u32 chip_id, u32 stage, u32 type);

/* The kind of a type and mode (DPL_ACL_FP_TYPE_NONE for none), and back. */
u32 dpl_reef_get_fp_group_type(u32 chip_id, u32 type, u32 mode);
u32 dpl_reef_get_group_type_by_fp_type(u32 fp_type);
u32 dpl_reef_get_group_mode_by_fp_type(u32 fp_type);

/* Records by id, NULL when absent; the caller holds the lock. */
dpl_acl_group *dpl_reef_acl_group_find(u32 chip_id, u32 group_id);
dpl_acl_entry *dpl_reef_acl_entry_get(u32 chip_id, u32 entry_id);

/* The next free automatic id from `*cursor` on, wrapping within the
 * automatic range; false when the range is full. */
bool dpl_reef_acl_auto_id(u32 *cursor, bool (*used)(u32 chip_id, u32 id), u32 chip_id, u32 *id);

/* Group and entry parts of the service. */
i32 dpl_reef_acl_group_init(u32 chip_id);
i32 dpl_reef_acl_group_deinit(u32 chip_id);
i32 dpl_reef_acl_entry_init(u32 chip_id);
i32 dpl_reef_acl_entry_deinit(u32 chip_id);
/* A table that is full grows by a block (automatic mode only: -24 and
 * "not support tcam resource expand" in manual mode); one with more than a
 * block free gives blocks back. */
i32 dpl_reef_acl_group_expand(u32 chip_id, dpl_acl_group *group);
i32 dpl_reef_acl_group_shrink(u32 chip_id, dpl_acl_group *group);
/* Install and uninstall of one entry, under the lock. */
i32 _dpl_reef_acl_internal_entry_install(u32 chip_id, dpl_acl_entry *entry);
i32 _dpl_reef_acl_internal_entry_uninstall(u32 chip_id, dpl_acl_entry *entry);
i32 _dpl_reef_acl_entry_free(u32 chip_id, dpl_acl_entry *entry);
void _dpl_reef_acl_entry_info_fill(const dpl_acl_entry *entry, acl_entry_info *info);
/* The table moves of the service. */
i32 _dpl_reef_acl_move_entry(u32 chip_id, dpl_acl_tcam_table *table, u32 from, u32 to);
i32 _dpl_reef_acl_move_block(u32 chip_id, const dpl_acl_tcam_move *move);

/* The family's operations, slot by slot. */
i32 dpl_reef_acl_group_create(u32 chip_id, u32 flags, u32 *group_id);
i32 dpl_reef_acl_group_set(u32 chip_id, u32 group_id, acl_group_para *para);
i32 dpl_reef_acl_group_info_get(u32 chip_id, u32 group_id, acl_group_info *info);
i32 dpl_reef_acl_group_traverse(u32 chip_id, acl_group_traverse_cb fn, void *user);
i32 dpl_reef_acl_group_destroy(u32 chip_id, u32 group_id);
i32 dpl_reef_acl_control_lookup_type_set(u32 chip_id, acl_lookup *lookup);
i32 dpl_reef_acl_control_lookup_type_get(u32 chip_id, acl_lookup *lookup);
i32 dpl_reef_acl_template_action_support_get(u32 chip_id, u32 type, u32 mode, u32 *bitmap);
/* (dpl_reef_acl_template_match_type_support_gen, below) */
i32 dpl_reef_acl_group_install(u32 chip_id, u32 group_id);
i32 dpl_reef_acl_group_uninstall(u32 chip_id, u32 group_id);
i32 dpl_reef_acl_entry_create(u32 chip_id, u32 flags, u32 priority, u32 group_id, u32 *entry_id);
i32 dpl_reef_acl_entry_template_set(u32 chip_id, u32 entry_id, u32 template_id);
i32 dpl_reef_acl_entry_template_get(u32 chip_id, u32 entry_id, u32 *template_id);
i32 dpl_reef_acl_entry_based_mode_set(u32 chip_id, u32 entry_id, u32 mode);
i32 dpl_reef_acl_entry_based_mode_get(u32 chip_id, u32 entry_id, u32 *mode);
i32 dpl_reef_acl_entry_destroy(u32 chip_id, u32 entry_id);
i32 dpl_reef_acl_entry_install(u32 chip_id, u32 entry_id);
i32 dpl_reef_acl_entry_uninstall(u32 chip_id, u32 entry_id);
i32 dpl_reef_acl_entry_match_field_add(u32 chip_id, u32 entry_id, acl_item *item);
i32 dpl_reef_acl_entry_match_field_remove(u32 chip_id, u32 entry_id, acl_item *item);
i32 dpl_reef_acl_entry_action_add(u32 chip_id, u32 entry_id, acl_item *item);
i32 dpl_reef_acl_entry_action_remove(u32 chip_id, u32 entry_id, acl_item *item);
i32 dpl_reef_acl_entry_info_get(u32 chip_id, u32 entry_id, acl_entry_info *info);
i32 dpl_reef_acl_entry_traverse(u32 chip_id, acl_entry_traverse_cb fn, void *user);
i32 dpl_reef_acl_entry_traverse_in_group(u32 chip_id, u32 group_id, acl_entry_traverse_cb fn, void *user);
i32 dpl_reef_acl_entry_pri_set(u32 chip_id, u32 entry_id, u32 priority);
i32 dpl_reef_acl_control_port_control_set(u32 chip_id, u32 port, acl_control *control);
i32 dpl_reef_acl_control_port_control_get(u32 chip_id, u32 port, acl_control *control);
i32 dpl_reef_acl_control_vlan_control_set(u32 chip_id, u32 vid, acl_control *control);
i32 dpl_reef_acl_control_vlan_control_get(u32 chip_id, u32 vid, acl_control *control);
i32 dpl_reef_acl_control_global_cfg_set(u32 chip_id, u32 flag, acl_global_cfg *cfg);
i32 dpl_reef_acl_control_global_cfg_get(u32 chip_id, u32 flag, acl_global_cfg *cfg);

/* Bits of the word bitmaps. */
static inline u32 dpl_acl_bit_get(const u32 *bitmap, u32 bit)
{
    return (bitmap[bit / 32] >> (bit % 32)) & 1u;
}
static inline void dpl_acl_bit_set(u32 *bitmap, u32 bit)
{
    bitmap[bit / 32] |= 1u << (bit % 32);
}
static inline void dpl_acl_bit_clear(u32 *bitmap, u32 bit)
{
    bitmap[bit / 32] &= ~(1u << (bit % 32));
}

#ifdef __cplusplus
}

/* Holds the feature lock for a scope. */
class AclLock {
public:
    AclLock(u32 chip_id, const char *function, u32 line);
    ~AclLock();
    AclLock(const AclLock &) = delete;
    AclLock &operator=(const AclLock &) = delete;
    i32 status() const { return rc_; }

private:
    u32 chip_;
    i32 rc_;
};
#define ACL_LOCK(chip_id)                                                                                          \
    AclLock acl_lock_hold_((chip_id), __func__, __LINE__);                                                          \
    if (acl_lock_hold_.status() != 0) {                                                                            \
        return acl_lock_hold_.status();                                                                            \
    }
#endif

#endif /* TIDE_DPL_REEF_ACL_H */
