/*
 * The replication engine of the reef family (MCC): the root table mcc_mrt
 * (one entry per replication id), the leaf table mcc_mlib (one entry per
 * copy, chained) and the egress table epro_elb_table (one edit per copy,
 * at the leaf's index).
 *
 * Two users stand on the same tables and allocators:
 *
 * - replication trees: a root that owns its chain of leaves, built,
 *   grown, shrunk and deleted by the chain operations below (mirror and
 *   the multicast service use them);
 * - shared lists: the L2 multicast groups, whose members are kept sorted
 *   by key, and whose roots point into chains shared between groups whose
 *   sorted member sequences are contiguous parts of one another.  Every
 *   change builds what is new in free leaves, switches the root in one
 *   table write and only then releases what is old.
 *
 * These calls are internal to the library: no exported family stands on
 * them; the diagnostic commands of mode `debug` reach them directly.  All
 * of them hold the chip's "MCC" mutex (recursive) for their whole work.
 */
#ifndef TIDE_DPL_REEF_MCC_H
#define TIDE_DPL_REEF_MCC_H

#include "shared/shr_avl.h"
#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- the id plan -------------------------------------------------------------------- */

/* Table types of a replication request, each with its range of root ids. */
#define MCC_TYPE_SAMPLE_ONLY 0u
#define MCC_TYPE_MIRROR_ONLY 1u
#define MCC_TYPE_SAMPLE_MIRROR 2u
#define MCC_TYPE_L2MC 3u
#define MCC_TYPE_L3MC 4u
#define MCC_TYPE_BC_TUNNEL 5u
#define MCC_TYPE_COUNT 6u

/* Root ids of the id plan, leaves of the leaf table, bits of room of the
 * leaf bitmap. */
#define DPL_MCC_MRT_IDS 2176u
#define DPL_MCC_MLIB_LEAVES 2048u
#define DPL_MCC_MLIB_BITS 4096u
/* Most copies of one request. */
#define DPL_MCC_COPY_MAX 2048u
/* Room of a member sequence's key text. */
#define DPL_MCC_NODE_BUF 2048u

/* What a chip type has of the engine. */
typedef struct dpl_reef_mcc_limits {
    u32 mrt_id_max;  /* highest root id of the chip */
    u32 mlib_count;  /* leaves the scanners hand out */
    u32 db_count;    /* group slots the scanners hand out */
    u32 copy_max;    /* a root takes fewer copies than this */
} dpl_reef_mcc_limits;

/* The limits of the chip's type; NULL (with the line "chip id %d is not
 * support") for a type the family does not know. */
const dpl_reef_mcc_limits *dpl_reef_mcc_limits_get(u32 chip_id);

/* ---- replication trees ------------------------------------------------------------------ */

/* Software record of a root. */
typedef struct mrt_root_node {
    u32 mrt_vld;
    u32 stat_en;
    u32 udp_dport_en;
    u16 leafid_indx; /* first leaf */
    u16 last_leaf;
    u16 rep_num;
    u16 mrt_index;
    u32 type;
} mrt_root_node;

/* Software record of a leaf of a root's own chain. */
typedef struct mleaf_node {
    u32 mlib_vld;
    u32 next_vld;
    u32 udp_dport_en;
    u16 prev_leaf;
    u16 next_leaf;
    u16 leaf_index;
    u16 mrt_index;
    u32 user[4]; /* words private to the caller */
} mleaf_node;

/* A request for a root and its copies. */
typedef struct copy_req {
    u32 type;     /* MCC_TYPE_* */
    u32 use_mid;  /* 1: take the id in `mid` */
    u32 mid;
    u32 copy_number;
} copy_req;

/* A request for a root id alone: type, use-given-id flag, id. */
typedef struct mcc_mrt_req {
    u32 type;
    u32 use_mid;
    u32 mid;
} mcc_mrt_req;

typedef i32 (*dpl_reef_mcc_tree_cb)(u32 chip_id, const mrt_root_node *root, const mleaf_node *leaf, void *user);

/* 0 when the chip can take a call of the engine: a chip of the registry
 * whose build describes the tables (-24 with a line) and whose software
 * init ran (-17). */
i32 dpl_reef_mcc_chip_check(u32 chip_id);

i32 dpl_reef_mcc_soft_init(u32 chip_id);
i32 dpl_reef_mcc_soft_deinit(u32 chip_id);
i32 dpl_reef_mcc_hw_init(u32 chip_id);
i32 dpl_reef_mcc_hw_deinit(u32 chip_id);
/* Bit 0 makes the three bitmaps; bit 1 (the hardware part) has nothing to
 * do. */
i32 dpl_reef_mcc_alloc_init(u32 chip_id, u32 flags);
i32 dpl_reef_mcc_alloc_deinit(u32 chip_id);

i32 dpl_reef_mcc_alloc_copy_resource(u32 chip_id, copy_req *req, mrt_root_node *root);
/* The same request as (type, in/out mid, words {use_mid, copy_number}). */
i32 dpl_reef_mcc_resource_alloc(u32 chip_id, u32 type, u32 *mid, const u32 *req);
i32 dpl_reef_mcc_increment_copy(u32 chip_id, u32 mrt_index, u32 *leaf_index);
i32 dpl_reef_mcc_decrement_copy(u32 chip_id, u32 mrt_index, u32 leaf_index);
i32 dpl_reef_mcc_del_all_copy(u32 chip_id, u32 mrt_index);
i32 dpl_reef_mcc_get_mrt_root_node(u32 chip_id, u32 mrt_index, mrt_root_node *root);
i32 dpl_reef_mcc_get_mlib_leaf_node(u32 chip_id, u32 leaf_index, mleaf_node *leaf);
/* Every root and each of its leaves in chain order: fn(chip, root, leaf,
 * user), leaf NULL for a root without leaves.  The OR of the answers. */
i32 dpl_reef_mcc_mrt_mlib_tree_traverse(u32 chip_id, dpl_reef_mcc_tree_cb fn, void *user);

/* ---- allocators (dpl_reef_mcc_node_alloc_control) ------------------------------------ */

i32 dpl_reef_mcc_mrt_node_get(u32 chip_id, const mcc_mrt_req *req, u32 *mid);
i32 dpl_reef_mcc_mrt_node_get1(u32 chip_id, const mcc_mrt_req *req, u32 *mid);
i32 dpl_reef_mcc_mlib_node_get(u32 chip_id, u32 *leaf_index);
i32 dpl_reef_mcc_db_mrt_get(u32 chip_id, u32 *db_id);
i32 dpl_reef_mcc_mrt_node_use_set(u32 chip_id, u32 mid);
i32 dpl_reef_mcc_mrt_node_unuse_set(u32 chip_id, u32 mid);
i32 dpl_reef_mcc_mlib_node_use_set(u32 chip_id, u32 leaf_index);
i32 dpl_reef_mcc_mlib_node_unuse_set(u32 chip_id, u32 leaf_index);
i32 dpl_reef_mcc_db_mrt_node_use_set(u32 chip_id, u32 db_id);
i32 dpl_reef_mcc_db_mrt_unuse_set(u32 chip_id, u32 db_id);
/* 1 if used, 0 if free (and for an id out of range). */
i32 dpl_reef_mcc_mrt_node_use_status_get(u32 chip_id, u32 mid);
i32 dpl_reef_mcc_mlib_node_use_status_get(u32 chip_id, u32 leaf_index);
i32 dpl_reef_mcc_db_mrt_use_status_get(u32 chip_id, u32 db_id);
/* Free leaves. */
i32 dpl_reef_mcc_mlib_unuse_node_cnt_get(u32 chip_id, u32 *count);
i32 dpl_reef_mcc_hw_mlib_node_num_get(u32 chip_id, u32 *count);
/* Free root ids of a table type, free group slots (for the checks of the
 * tests and the shell). */
i32 dpl_reef_mcc_mrt_unuse_node_cnt_get(u32 chip_id, u32 type, u32 *count);
i32 dpl_reef_mcc_db_mrt_unuse_cnt_get(u32 chip_id, u32 *count);

/* ---- shared lists of L2 multicast (dpl_reef_mcc_mlib_list_control) ------------------ */

/* What a member is, in mcc_port_bitmap.mcc_port_flag and mcc_member. */
#define MCC_PORT_FLAG_PORT 0u   /* key (mymod & 31) * 64 + port */
#define MCC_PORT_FLAG_TRUNK 1u  /* key 0x800 | trunk */
#define MCC_PORT_FLAG_STACK 2u  /* key 0x4000 | index; stack 1 */
#define MCC_PORT_FLAG_MIRROR 3u /* key 0x8000 | index; elbtype 3 */
#define MCC_KEY_TRUNK 0x800u
#define MCC_KEY_STACK 0x4000u
#define MCC_KEY_MIRROR 0x8000u
#define MCC_ELBTYPE_MIRROR 3u

/* Members of a new group.  `empty` 1 makes a group without members. */
typedef struct mcc_port_bitmap {
    u32 empty;
    u32 mcc_port_flag;
    u64 bits[2]; /* 64 ports, 128 trunks or indexes, 4 stack ports */
} mcc_port_bitmap;

/* One member. */
typedef struct mcc_member {
    u32 mcc_port_flag;
    u32 id;
} mcc_member;

/* The egress edit of one member: its epro_elb_table entry. */
typedef struct mcc_port_config {
    u8 vlanprichg;
    u8 vlanupdate;
    u8 ttldecrease;
    u8 mcttl;
    u8 ttlcheck;
    u8 tagnum;
    u8 stack;
    u8 elbtype;
    u8 prunedisable;
    u8 dpid_dvp_index_mirror_carid;
    u16 aib1;
    u16 ovlan_rspan_vlan; /* ovid | opri << 13 */
    u16 ivlan_rspan_en;   /* ivid | ipri << 13 */
    u16 oport_inf_causeid; /* the member's key */
} mcc_port_config;

/* What the chip's tables hold for a root: its leaves in chain order, each
 * with its edit read back, for rep_num leaves or until the chain ends.
 * fn(chip, leaf, edit, user); an answer other than 0 ends the walk and is
 * its result.  *valid (may be NULL) tells whether the root is valid. */
typedef i32 (*dpl_reef_mcc_hw_leaf_cb)(u32 chip_id, u32 leaf, const mcc_port_config *edit, void *user);
i32 dpl_reef_mcc_mrt_hw_walk(u32 chip_id, u32 mrt_index, dpl_reef_mcc_hw_leaf_cb fn, void *user, u32 *valid);

/* A group's request: counting switches, then the root id request; the id
 * found is stored back. */
typedef struct mrt_info {
    u8 stat_en;
    u8 udp_dport_en;
    mcc_mrt_req req;
} mrt_info;

/* A leaf of a shared chain, or a member of a group's own tree. */
typedef struct mlib_node {
    u8 next_vld;
    u8 udp_dport_en;
    u16 pre_id;  /* leaf of the predecessor */
    u16 next_id; /* leaf of the successor */
    u16 mlib_id; /* own leaf */
    u32 use_cnt; /* roots whose range covers this node */
    u32 dirty;   /* the hardware does not agree with this record yet */
    mcc_port_config port_config;
} mlib_node;

struct mrt_group;

/* A root on a chain's list of users. */
typedef struct mrt_mlib_entry {
    u32 db_id;
    struct mrt_group *group;
    struct mrt_mlib_entry *next;
} mrt_mlib_entry;

/* One chain of leaves, shared by the roots on its list of users. */
typedef struct mlib_group {
    u32 mrt_cnt;  /* roots that use it */
    u32 node_cnt;
    char node_buf[DPL_MCC_NODE_BUF]; /* keys in order, "0x%x," each */
    shr_avl_table *mlib_entry;       /* mlib_node by key */
    struct mlib_group *next;
    mrt_mlib_entry *users;
} mlib_group;

/* One L2 multicast group. */
typedef struct mrt_group {
    u32 db_id;
    u32 rep_cnt;
    u32 mrt_id;
    u32 first_mlib_id;
    char node_buf[DPL_MCC_NODE_BUF];
    mlib_group *mlib_group;
    shr_avl_table *mlib_entry; /* the members, mlib_node by key, with their wanted edits */
    u8 stat_en;
    u8 udp_dport_en;
    struct mrt_group *next;
} mrt_group;

typedef i32 (*dpl_reef_mcc_mrt_group_cb)(u32 chip_id, const mrt_group *group, void *arg);
typedef i32 (*dpl_reef_mcc_mlib_group_cb)(u32 chip_id, const mlib_group *group, void *arg);
typedef i32 (*dpl_reef_mcc_mlib_mrt_cb)(u32 chip_id, const mlib_group *chain, const mrt_group *group, void *arg);

i32 dpl_reef_mcc_mlib_group_init(u32 chip_id);
i32 dpl_reef_mcc_mrt_group_init(u32 chip_id);
i32 dpl_reef_mcc_mlib_group_deinit(u32 chip_id);
i32 dpl_reef_mcc_mrt_group_deinit(u32 chip_id);

i32 dpl_reef_mcc_group_create(u32 chip_id, const mcc_port_bitmap *members, const mcc_port_config *config,
                              mrt_info *info);
i32 dpl_reef_mcc_group_port_add(u32 chip_id, u32 mrt_id, const mcc_member *member, const mcc_port_config *config);
i32 dpl_reef_mcc_group_port_config(u32 chip_id, u32 mrt_id, const mcc_member *member,
                                   const mcc_port_config *config);
i32 dpl_reef_mcc_group_port_del(u32 chip_id, u32 mrt_id, const mcc_member *member, const mcc_port_config *config);
i32 dpl_reef_mcc_group_del(u32 chip_id, u32 mrt_id);
/* Merges chains until no two agree; 0. */
i32 dpl_reef_mlib_group_compress(u32 chip_id);

/* The group of a root id, or of a group slot; NULL if none. */
mrt_group *dpl_reef_mcc_mrt_group_get(u32 chip_id, u32 mrt_id);
mrt_group *dpl_reef_mcc_mrt_group_by_db_id_get(u32 chip_id, u32 db_id);
u32 dpl_reef_mcc_mrt_group_num_get(u32 chip_id);
u32 dpl_reef_mcc_mlib_group_num_get(u32 chip_id);
/* Walks under the mutex; an answer other than 0 ends the walk and is its
 * result. */
i32 dpl_reef_mcc_mrt_group_traverse(u32 chip_id, dpl_reef_mcc_mrt_group_cb fn, void *arg);
i32 dpl_reef_mcc_mlib_group_traverse(u32 chip_id, dpl_reef_mcc_mlib_group_cb fn, void *arg);
i32 dpl_reef_mcc_mlib_mrt_group_traverse(u32 chip_id, dpl_reef_mcc_mlib_mrt_cb fn, void *arg);
/* A member's stored edit in a group: 0, -7 when it is no member. */
i32 dpl_reef_mcc_group_port_config_get(u32 chip_id, u32 mrt_id, const mcc_member *member, mcc_port_config *config);

/* The key of a member and the edit completed from it (key, stack, elbtype);
 * -11 for an unknown flag. */
i32 dpl_reef_mcc_port_config_refresh(u32 chip_id, const mcc_member *member, mcc_port_config *config);
/* 0 when the two edits are equal in every field. */
i32 dpl_reef_mcc_mlib_elb_cmp(const mcc_port_config *a, const mcc_port_config *b);
/* The key text of a member bitmap, "0x%x," per member; -11 when it does
 * not fit. */
i32 dpl_reef_mcc_bitmap_to_string(u32 chip_id, const mcc_port_bitmap *members, char *text, u32 room);
/* Members of a bitmap. */
u32 dpl_reef_mcc_mrt_group_port_bitmap_cnt_get(const mcc_port_bitmap *members);

/* ---- registers of the engine ----------------------------------------------------------- */

/* A field of an mcc register by name, read, or read-changed-written under
 * the module's register lock; -4 for a value beyond the field, -24 for a
 * field the register does not have. */
i32 dpl_reef_mcc_reg_field_get(u32 chip_id, u32 reg_id, const char *field, u32 *value);
i32 dpl_reef_mcc_reg_field_set(u32 chip_id, u32 reg_id, const char *field, u32 value);

/* The counting switches of a root: `what` 0 stat_en (frames counted per
 * replication id), 1 udp_dport_en (copies counted by RTP UDP port).  The
 * record of the root's tree or group keeps the value for later writes of
 * the root.  -7 for a root id that nothing holds. */
#define MCC_COUNT_STATS 0u
#define MCC_COUNT_RTP 1u
i32 dpl_reef_mcc_mrt_count_set(u32 chip_id, u32 mrt_index, u32 what, u32 enable);

/* ---- the lock ------------------------------------------------------------------------------ */

extern xsal_mutex_t g_dpl_reef_mcc_lock[SHR_MAX_CHIPS];
i32 dpl_reef_mcc_lock(u32 chip_id);
i32 dpl_reef_mcc_unlock(u32 chip_id);

#ifdef __cplusplus
}

/* Holds the chip's MCC mutex for a scope. */
class MccLock {
public:
    explicit MccLock(u32 chip_id) : chip_(chip_id), rc_(dpl_reef_mcc_lock(chip_id)) {}
    ~MccLock()
    {
        if (rc_ == 0) {
            dpl_reef_mcc_unlock(chip_);
        }
    }
    MccLock(const MccLock &) = delete;
    MccLock &operator=(const MccLock &) = delete;
    i32 status() const { return rc_; }

private:
    u32 chip_;
    i32 rc_;
};
#endif

#endif /* TIDE_DPL_REEF_MCC_H */
