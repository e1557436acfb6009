/*
 * tide: access control lists.
 *
 * An application makes a group (a stage of the chip's lookups and a key
 * width), gives it its size, creates entries in it, picks a template (the
 * layout of the key) for each entry, adds match items and actions, and
 * installs the entry: only then does it reach the chip.  Entries live in
 * the library with all their data, so that they can be edited while
 * uninstalled and moved between TCAM rows at any time: the rows of a
 * group always hold its installed entries in priority order, the smallest
 * priority value first (it wins when several entries match).
 *
 * Every call takes the chip id first and returns a status (0, or a
 * negative code whose text shr_errmsg gives).  The calls that take a record
 * or an output pointer refuse NULL with -20 before they look at the chip.
 */
#ifndef TIDE_ACL_H
#define TIDE_ACL_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* ---- groups ------------------------------------------------------------------- */

/* Group types (stages) and width modes; the pairs a chip has are its
 * kinds of group (atolreef: vcap single and double, icap single and
 * double, ipsg double, ecap double, cpucap double, mcap double). */
enum acl_group_type {
    ACL_GROUP_VCAP = 0,
    ACL_GROUP_ICAP = 1,
    ACL_GROUP_ECAP = 2,
    ACL_GROUP_CPUCAP = 3,
    ACL_GROUP_IPSG = 4,
    ACL_GROUP_MFF = 5,
    ACL_GROUP_MCAP = 6
};
enum acl_group_mode {
    ACL_MODE_SINGLE = 0,
    ACL_MODE_DOUBLE = 1,
    ACL_MODE_TRIPLE = 2,
    ACL_MODE_QUAD = 3,
    ACL_MODE_AUTO = 4
};

/* Flags of acl_api_group_create and of acl_group_para.flags. */
#define ACL_GROUP_FLAG_BLOCKS 0x1u  /* the group's TCAM blocks are given */
#define ACL_GROUP_FLAG_WITH_ID 0x2u /* create: the caller's group id */
#define ACL_GROUP_FLAG_SIZE 0x4u    /* set: the size is given */
#define ACL_GROUP_FLAG_AUTO 0x8u    /* set: the size comes from automatic allocation */

#define ACL_GROUP_BLOCKS_MAX 32u
#define ACL_GROUP_NAME_LEN 11u
/* Sizes of a group are multiples of this many entries. */
#define ACL_GROUP_ENTRY_UNIT 128u

/* What acl_api_group_set gives a group. */
typedef struct acl_group_para {
    uint32_t flags;
    uint32_t priority;
    uint32_t type; /* enum acl_group_type */
    uint32_t mode; /* enum acl_group_mode */
    uint32_t reserved0[4];
    uint32_t entry_num; /* without ACL_GROUP_FLAG_BLOCKS: a non-zero multiple of 128 */
    uint32_t block_num; /* with ACL_GROUP_FLAG_BLOCKS */
    uint32_t block_ids[ACL_GROUP_BLOCKS_MAX];
    uint32_t reserved1;
    char name[ACL_GROUP_NAME_LEN];
} acl_group_para;

/* Allocation modes of a group. */
#define ACL_ALLOC_MANUAL 0u /* blocks given */
#define ACL_ALLOC_SIZE 1u   /* size given */
#define ACL_ALLOC_AUTO 2u   /* size from automatic allocation */

/* A group as it stands. */
typedef struct acl_group_info {
    uint32_t group_id;
    uint32_t priority;
    uint32_t type;    /* 0xFFFFFFFF until acl_api_group_set */
    uint32_t mode;
    uint32_t alloc_mode;
    uint32_t entry_num;   /* the size asked for */
    uint32_t entry_count; /* entries of the group */
    uint32_t installed;   /* of them installed */
    uint32_t table_size;  /* rows of its TCAM table (0: no table) */
    uint32_t block_num;   /* blocks of its table, in ascending id */
    uint32_t block_ids[ACL_GROUP_BLOCKS_MAX];
    uint32_t match_support; /* templates the group takes, a bit per template id */
    uint32_t action_support[5]; /* actions the group takes, a bit per action id */
    uint64_t moves; /* entry moves its table made so far */
    char name[ACL_GROUP_NAME_LEN + 1];
} acl_group_info;

typedef int32_t (*acl_group_traverse_cb)(uint32_t chip_id, uint32_t group_id, const acl_group_info *info,
                                         void *user);

/* ---- entries ------------------------------------------------------------------------ */

/* Flag of acl_api_entry_create: the caller's entry id. */
#define ACL_ENTRY_FLAG_WITH_ID 0x1u

/* Highest priority value of an entry; 0 is the first. */
#define ACL_PRIORITY_MAX 0xFFFFFFFEu

/* Match ids (224 rows: 223 ids and "null"), action ids (153 rows: 152 ids
 * and "null") and templates (32 and "null"); their names are the shell's
 * words. */
#define ACL_MATCH_ID_COUNT 224u
#define ACL_MATCH_NULL 223u
#define ACL_ACTION_ID_COUNT 153u
#define ACL_ACTION_NULL 152u
#define ACL_TEMPLATE_COUNT 33u
#define ACL_TEMPLATE_NONE 32u

/* Key bases of an entry (acl_api_entry_based_set): which lookups find it. */
#define ACL_BASED_GLB 0u
#define ACL_BASED_PORT 1u
#define ACL_BASED_VLAN 2u
#define ACL_BASED_VP 3u
#define ACL_BASED_DEFAULT 5u

/* Entry states. */
#define ACL_ENTRY_INSTALLED 0x1u
#define ACL_ENTRY_DIRTY 0x2u

/* A match item (value and mask) or an action (value and second value). */
typedef struct acl_item {
    uint32_t id;
    uint32_t value;
    uint32_t mask; /* of an action: its second value */
} acl_item;

/* An entry as it stands; the items in ascending id. */
typedef struct acl_entry_info {
    uint32_t entry_id;
    uint32_t group_id;
    uint32_t priority;
    uint32_t state; /* ACL_ENTRY_* */
    uint32_t logical_index; /* of an installed entry: its row in the group's table */
    uint32_t block;
    uint32_t index_in_block;
    uint32_t template_id; /* ACL_TEMPLATE_NONE until set */
    uint32_t based_mode;
    uint32_t match_count;
    acl_item match[ACL_MATCH_ID_COUNT];
    uint32_t action_count;
    acl_item action[ACL_ACTION_ID_COUNT];
} acl_entry_info;

typedef int32_t (*acl_entry_traverse_cb)(uint32_t chip_id, uint32_t entry_id, const acl_entry_info *info,
                                         void *user);

/* ---- lookups and controls ---------------------------------------------------------- */

/* Which key type a stage looks up, chip-wide, per port, per VLAN, per
 * virtual port or per CPU cause.  `type` is the key's sub-type tag (0 none,
 * 1 ipv4, 2 sipv6, 3 dipv6, 4 ipv6-mac or width-single-ipv4, 5
 * all-ipv6-port, 6 udf, 7 ipv6-exp or width-single-l2, 8 arp, 13 ucl-ipv4,
 * 14 ucl-ipv6; for vcap 0 width-single, 1 width-double), `pri` 0..7. */
enum acl_lookup_stage { ACL_STAGE_VCAP = 0, ACL_STAGE_ICAP = 1, ACL_STAGE_ECAP = 2, ACL_STAGE_CPUCAP = 3 };
enum acl_lookup_base {
    ACL_BASE_GLOBAL = 0,
    ACL_BASE_PORT = 1,
    ACL_BASE_VLAN = 2,
    ACL_BASE_SVP = 3, /* dvp for ecap */
    ACL_BASE_CPU = 4  /* `id` is the CPU cause */
};
typedef struct acl_lookup {
    uint32_t stage;
    uint32_t base;
    uint32_t id; /* port, VLAN, virtual port or cause */
    uint32_t lookup_index; /* 0 first, 1 second */
    uint32_t type;
    uint32_t pri;
} acl_lookup;

/* A control: key and value. */
typedef struct acl_control {
    uint32_t key;
    uint32_t value;
} acl_control;

/* Keys of acl_api_port_control_set and _get. */
enum acl_port_control {
    ACL_PORT_VCAP_EN = 0,       /* 0..1, VLAN ACL lookups of tagged and untagged frames */
    ACL_PORT_ICAP_EN = 1,       /* 0..1 */
    ACL_PORT_ECAP_EN = 2,       /* 0..1 */
    ACL_PORT_VCAP_MISS_DROP = 3, /* 0..1 */
    ACL_PORT_IPSG_V4 = 4,       /* 0..1 */
    ACL_PORT_IPSG_V6 = 5,       /* 0..1 */
    ACL_PORT_ING_CLASSID = 6,   /* 0..15 */
    ACL_PORT_EGR_CLASSID = 7,   /* not on atolreef */
    ACL_PORT_VCAP_GROUP_ID = 8, /* not on atolreef */
    ACL_PORT_CONTROL_COUNT = 9
};

/* Keys of acl_api_vlan_control_set and _get. */
enum acl_vlan_control { ACL_VLAN_IPSG_V4 = 0, ACL_VLAN_IPSG_V6 = 1, ACL_VLAN_MFF = 2, ACL_VLAN_CONTROL_COUNT = 3 };

/* Bits of the flag of acl_api_global_cfg_set and _get, by stage. */
#define ACL_GLB_VCAP_TYPE 0x2u        /* stage vcap: vacl_type */
#define ACL_GLB_ICAP_CFG0 0x10u       /* stage icap: iacl_cfg[0] */
#define ACL_GLB_ICAP_CFG1 0x20u       /* stage icap: iacl_cfg[1] */
#define ACL_GLB_ICAP_CFG2 0x40u       /* stage icap: iacl_cfg[2] */
#define ACL_GLB_VCAP_PORT_MODE0 0x80u /* stage vcap: vacl_key_port_mode[0] */
#define ACL_GLB_VCAP_PORT_MODE1 0x100u /* stage vcap: vacl_key_port_mode[1] */
#define ACL_GLB_IPV6_SEL 0x200u       /* stage icap (4) or ecap (6): ipv6_sel */

typedef struct acl_global_cfg {
    uint32_t stage; /* enum acl_lookup_stage */
    uint32_t vacl_key_port_mode[2]; /* 0..65535 */
    uint32_t vacl_type;
    uint32_t iacl_cfg[3]; /* 0..255 */
    uint32_t ipv6_sel[6]; /* 0..31: which 32-bit chunk of an IPv6 address */
} acl_global_cfg;

/* ---- the calls ------------------------------------------------------------------------ */

TIDE_API int32_t acl_api_group_create(uint32_t chip_id, uint32_t flags, uint32_t *group_id);
TIDE_API int32_t acl_api_group_set(uint32_t chip_id, uint32_t group_id, acl_group_para *para);
TIDE_API int32_t acl_api_group_get(uint32_t chip_id, uint32_t group_id, acl_group_info *info);
TIDE_API int32_t acl_api_group_traverse(uint32_t chip_id, acl_group_traverse_cb fn, void *user);
TIDE_API int32_t acl_api_group_destroy(uint32_t chip_id, uint32_t group_id);
TIDE_API int32_t acl_api_template_config_set(uint32_t chip_id, acl_lookup *lookup);
TIDE_API int32_t acl_api_template_config_get(uint32_t chip_id, acl_lookup *lookup);
/* Bitmaps: 5 words (actions) and 8 words (match ids). */
TIDE_API int32_t acl_api_action_support_get(uint32_t chip_id, uint32_t type, uint32_t mode, uint32_t *bitmap);
TIDE_API int32_t acl_api_match_support_get(uint32_t chip_id, uint32_t template_id, uint32_t *bitmap);
TIDE_API int32_t acl_api_group_install(uint32_t chip_id, uint32_t group_id);
TIDE_API int32_t acl_api_group_uninstall(uint32_t chip_id, uint32_t group_id);
TIDE_API int32_t acl_api_entry_create(uint32_t chip_id, uint32_t flags, uint32_t priority, uint32_t group_id,
                                      uint32_t *entry_id);
TIDE_API int32_t acl_api_entry_template_set(uint32_t chip_id, uint32_t entry_id, uint32_t template_id);
TIDE_API int32_t acl_api_entry_template_get(uint32_t chip_id, uint32_t entry_id, uint32_t *template_id);
TIDE_API int32_t acl_api_entry_based_set(uint32_t chip_id, uint32_t entry_id, uint32_t mode);
TIDE_API int32_t acl_api_entry_based_get(uint32_t chip_id, uint32_t entry_id, uint32_t *mode);
TIDE_API int32_t acl_api_entry_destroy(uint32_t chip_id, uint32_t entry_id);
TIDE_API int32_t acl_api_entry_install(uint32_t chip_id, uint32_t entry_id);
TIDE_API int32_t acl_api_entry_uninstall(uint32_t chip_id, uint32_t entry_id);
TIDE_API int32_t acl_api_entry_match_field_set(uint32_t chip_id, uint32_t entry_id, acl_item *item);
TIDE_API int32_t acl_api_entry_match_field_remove(uint32_t chip_id, uint32_t entry_id, acl_item *item);
TIDE_API int32_t acl_api_entry_action_set(uint32_t chip_id, uint32_t entry_id, acl_item *item);
TIDE_API int32_t acl_api_entry_action_remove(uint32_t chip_id, uint32_t entry_id, acl_item *item);
TIDE_API int32_t acl_api_entry_get(uint32_t chip_id, uint32_t entry_id, acl_entry_info *info);
TIDE_API int32_t acl_api_entry_traverse(uint32_t chip_id, acl_entry_traverse_cb fn, void *user);
TIDE_API int32_t acl_api_entry_traverse_in_group(uint32_t chip_id, uint32_t group_id, acl_entry_traverse_cb fn,
                                                 void *user);
TIDE_API int32_t acl_api_entry_pri_set(uint32_t chip_id, uint32_t entry_id, uint32_t priority);
TIDE_API int32_t acl_api_port_control_set(uint32_t chip_id, uint32_t port, acl_control *control);
TIDE_API int32_t acl_api_port_control_get(uint32_t chip_id, uint32_t port, acl_control *control);
TIDE_API int32_t acl_api_vlan_control_set(uint32_t chip_id, uint32_t vid, acl_control *control);
TIDE_API int32_t acl_api_vlan_control_get(uint32_t chip_id, uint32_t vid, acl_control *control);
TIDE_API int32_t acl_api_global_cfg_set(uint32_t chip_id, uint32_t flag, acl_global_cfg *cfg);
TIDE_API int32_t acl_api_global_cfg_get(uint32_t chip_id, uint32_t flag, acl_global_cfg *cfg);

TIDE_END_DECLS

#endif /* TIDE_ACL_H */
