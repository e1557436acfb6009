/*
 * tide: the L2 address service.
 *
 * The MAC address table of the chip as an application sees it: addresses
 * keyed by MAC and VLAN (or by IPv4/IPv6 multicast addresses), each with a
 * destination; the global, per-port and per-VLAN learning, aging, limit
 * and flooding controls.  The table lives in the chip, which learns and
 * ages by itself; these calls read and change it by commands.
 *
 * Every call takes the chip id first and returns a status (0, or a
 * negative code whose text shr_errmsg gives).  The calls that take a record
 * or an output pointer refuse NULL with -20 before they look at the chip.
 */
#ifndef TIDE_L2_H
#define TIDE_L2_H

#include <tide/port.h>
#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* ---- the address record ------------------------------------------------------- */

/* Key types of l2_addr.key_type. */
enum l2_key_type {
    L2_KEY_MAC_VLAN = 0,    /* MAC + VLAN */
    L2_KEY_DIP_VLAN = 3,    /* destination IP + VLAN */
    L2_KEY_DIP_SIP = 4,     /* destination IP + source IP */
    L2_KEY_DIP_SIP_VLAN = 5 /* destination IP + source IP + VLAN */
};

/* Bits of l2_addr.flags. */
#define L2_FLAG_SRC_DROP 0x2u          /* drop when hit as source */
#define L2_FLAG_DST_DROP 0x4u          /* drop when hit as destination */
#define L2_FLAG_DYNAMIC 0x8u           /* clear: a static address */
#define L2_FLAG_REPLACE 0x10u          /* required by l2_api_addr_replace */
#define L2_FLAG_SRC_HIT 0x20u          /* accepted, no effect */
#define L2_FLAG_DST_HIT 0x40u          /* accepted, no effect */
#define L2_FLAG_PENDING 0x80u          /* accepted, no effect */
#define L2_FLAG_REMOTE 0x100u          /* no effect on atolreef */
#define L2_FLAG_DYN_COVER_STATIC 0x200u
#define L2_FLAG_DYN_COVER_STATIC_FWD 0x400u
#define L2_FLAG_KEY_VID 0x800u         /* the key's VLAN is `vid`, 0..4095 */
#define L2_FLAG_KEY_FID 0x1000u        /* `vid` holds a fid, 0..127 */
#define L2_FLAG_KEY_VFI 0x2000u        /* not supported */
#define L2_FLAG_DEST_PORT 0x4000u      /* `modid`, `port` */
#define L2_FLAG_DEST_TRUNK 0x8000u     /* `tgid` */
#define L2_FLAG_DEST_DVP 0x10000u      /* not on atolreef */
#define L2_FLAG_DEST_NHP 0x20000u      /* not on atolreef */
#define L2_FLAG_DEST_ECMP 0x40000u     /* not on atolreef */
#define L2_FLAG_DEST_MCAST 0x80000u    /* `mgid`, 16..1023 */
#define L2_FLAG_DEST_DROP 0x100000u    /* drop with `causeid` */
#define L2_FLAG_DEST_CPU 0x200000u     /* to the CPU with `causeid` */

/* An L2 address.  `valid`, `age_cnt`, `msg_type` and `fail_case` are
 * filled by the service. */
typedef struct l2_addr {
    uint32_t flags;
    uint32_t valid;
    uint32_t key_type; /* enum l2_key_type */
    uint8_t iptype;    /* key types 3 to 5: 0 IPv4, 1 IPv6 */
    uint8_t mac[6];    /* in transmission order */
    uint32_t dip4;
    uint32_t sip4;
    uint8_t dipv6[16];
    uint8_t sipv6[16];
    uint16_t vid;
    uint16_t vfi; /* not supported on atolreef */
    uint8_t age_cnt;
    uint8_t tagnum;
    uint16_t ovid; /* outer VLAN, 0..4095 */
    uint16_t gid;
    uint8_t msg_type; /* event messages only */
    uint32_t modid;
    uint32_t port;
    uint32_t tgid;
    uint32_t dvp;
    uint32_t nhp;
    uint32_t ecmp;
    uint32_t mgid;
    uint32_t causeid;
    uint8_t fail_case; /* the table's fail cause of the last command, 0 to 9 */
} l2_addr;

/* Fail causes of the MAC table (l2_addr.fail_case). */
enum l2_fail_case {
    L2_FAIL_OK = 0,
    L2_FAIL_STATIC_PREEMPT = 1, /* success: a static entry took a dynamic one's place */
    L2_FAIL_KEY_COVERED = 2,    /* success: the entry was overwritten */
    L2_FAIL_INSERT = 3,
    L2_FAIL_COVER = 4, /* the key exists and may not be overwritten */
    L2_FAIL_DELETE_MISS = 5,
    L2_FAIL_SEARCH_MISS = 6,
    L2_FAIL_FULL = 7,
    L2_FAIL_GLOBAL_LIMIT = 8,
    L2_FAIL_PORT_LIMIT = 9
};

/* Compare bits of the batched delete and search. */
#define L2_CMP_REMOTE 0x1u
#define L2_CMP_GID 0x2u
#define L2_CMP_LRNCLASS 0x4u
#define L2_CMP_OVID 0x8u
#define L2_CMP_DEST 0x10u /* kind of destination and its value */
#define L2_CMP_MAC 0x20u  /* MAC or IP */
#define L2_CMP_VLAN 0x40u
#define L2_CMP_STATIC 0x80u /* static or dynamic */

typedef int32_t (*l2_addr_traverse_cb)(uint32_t chip_id, l2_addr *addr, void *user);
typedef void (*l2_addr_callback)(uint32_t chip_id, l2_addr *addr, void *user);

/* ---- other records ------------------------------------------------------------ */

/* Flags of l2_learn_limit. */
#define L2_LIMIT_GLOBAL 0x1u
#define L2_LIMIT_VLAN 0x2u
#define L2_LIMIT_VFI 0x4u /* not supported */
#define L2_LIMIT_PORT 0x8u
#define L2_LIMIT_SVP 0x10u /* not supported */
#define L2_LIMIT_OVER_LIMIT_EN 0x20u
#define L2_LIMIT_ENABLE 0x40u
#define L2_LIMIT_VALUE 0x80u
#define L2_LIMIT_OVER_ACT 0x100u

typedef struct l2_learn_limit {
    uint32_t flags;
    uint32_t vlan; /* 0..4095 */
    uint32_t port;
    uint32_t reserved;
    uint8_t over_limit_en;
    uint8_t limit_en;
    uint16_t mac_cnt; /* filled: entries counted now */
    uint32_t limit_value; /* 0..65535 */
    uint32_t over_act;    /* 0..255 */
} l2_learn_limit;

/* Move priority of a port (flag 0) or a trunk (flag 1). */
typedef struct l2_port_move_pri {
    uint32_t flag;
    uint8_t enable;
    uint8_t pri; /* 0..3 */
    uint32_t id;
} l2_port_move_pri;

/* Members of a multicast group. */
typedef struct l2_multicast_bitmap {
    uint32_t flag; /* 1: the ports are not checked */
    uint32_t type; /* set: 0 ports, 1 trunks; get: bit 0 ports, bit 1 trunks */
    port_bitmap ports;
    port_bitmap trunks;
} l2_multicast_bitmap;

/* Rewrite attributes of a member of a multicast group. */
#define L2_MC_ATTR_VID_CHANGE 0x1u
#define L2_MC_ATTR_PRI_CHANGE 0x2u
typedef struct l2_multicast_port_attr {
    uint32_t flags;
    uint8_t port_bridge;
    uint8_t tagnum; /* 0..2 */
    uint32_t dpid_sel;
    uint32_t dpid; /* 0..127 */
    uint8_t ipri;  /* 0..7 */
    uint8_t opri;  /* 0..7 */
    uint16_t ovid; /* 0..4095 */
    uint16_t ivid; /* 0..4095 */
} l2_multicast_port_attr;

/* Protocol entries (not offered by the reef family). */
typedef struct l2_protocol l2_protocol;
typedef int32_t (*l2_protocol_traverse_cb)(uint32_t chip_id, l2_protocol *entry, void *user);

/* A member of a multicast group: type in the low 32 bits (0 port, 1 trunk,
 * 2 stack trunk, 3 dvp), id in the high 32 bits. */
#define L2_MC_PORT(type, id) ((uint64_t)(uint32_t)(type) | (uint64_t)(uint32_t)(id) << 32)

/* Ids of l2_api_control_set and _get. */
enum l2_control {
    L2_CTRL_REPLACE_STATIC = 0,
    L2_CTRL_REPLACE_DYNAMIC = 1,
    L2_CTRL_REPLACE_FULL = 2,
    L2_CTRL_LEARN_MODE = 3, /* 0 software, 1 hardware */
    L2_CTRL_MSG_LEARN = 4,
    L2_CTRL_MSG_MOVE = 5,
    L2_CTRL_MSG_AGING = 6,
    L2_CTRL_MSG_CPU_INSERT = 7,
    L2_CTRL_MSG_CPU_DEL = 8,
    L2_CTRL_MSG_CPU_BATCH_SEARCH = 9,
    L2_CTRL_MSG_HASH_FULL = 10,
    L2_CTRL_TRAP_MSG_CNT = 11,
    L2_CTRL_MOVE_PRI_MASK = 12,
    L2_CTRL_STATIC_MOVE_ACT = 13,
    L2_CTRL_MOVE_FAIL_ACT = 14,
    L2_CTRL_PORT_LIMIT_MODE = 15,
    L2_CTRL_HASH_MODE = 16, /* 1 crc, 2 xor */
    L2_CTRL_RSV_IPV4_CAUSEID = 17,
    L2_CTRL_RSV_IPV6_CAUSEID = 18,
    L2_CTRL_RSV_FORCE_BC_MODE = 19,
    L2_CTRL_RSV_FORCE_BC_EN = 20,
    L2_CTRL_HASH_CONFLICT_ACT = 24,
    L2_CTRL_IPV6_DIP_SEL0 = 25, /* to 28 */
    L2_CTRL_IPV6_IP_SEL0 = 29,  /* to 32 */
    L2_CTRL_COUNT = 33
};

/* Ids of l2_api_age_control_*. */
enum l2_age_control {
    L2_AGE_TIME = 0,      /* seconds; 0 stops aging */
    L2_AGE_TWO_WAY = 1,   /* bidirectional aging */
    L2_AGE_CNT_EN = 2,    /* age timer refresh */
    L2_AGE_LP_MODE = 3,   /* low-power aging */
    L2_AGE_CLK_FREQ = 4   /* core clock in MHz */
};

/* Ids of l2_api_port_control_*. */
enum l2_port_control {
    L2_PORT_UNKNOWN_UCAST_ACT = 0, /* 0 drop, 1 flood, 2 redirect-to-cpu, 3 copy-to-cpu */
    L2_PORT_UNKNOWN_MCAST_ACT = 1,
    L2_PORT_BCAST_ACT = 2,
    L2_PORT_BRIDGE = 3,
    L2_PORT_EGRESS_BRIDGE = 4,
    L2_PORT_EGRESS_UNKNOWN_UCAST = 5,
    L2_PORT_EGRESS_UNKNOWN_MCAST = 6,
    L2_PORT_EGRESS_MCAST = 7,
    L2_PORT_EGRESS_BCAST = 8,
    L2_PORT_LEARN_MODE = 11 /* 0 learn; not learning: 1 forward, 2 drop, 3 redirect, 4 copy to CPU */
};

/* Ids of l2_api_vlan_control_*. */
enum l2_vlan_control {
    L2_VLAN_LEARN = 0,
    L2_VLAN_UNKNOWN_UCAST_ACT = 1,
    L2_VLAN_UNKNOWN_MCAST_ACT = 2,
    L2_VLAN_BCAST_ACT = 3,
    L2_VLAN_IPMC_MODE = 4
};

/* Types of l2_api_mac_cnt_get. */
enum l2_mac_cnt_type { L2_CNT_STATIC = 0, L2_CNT_DYNAMIC = 1, L2_CNT_MOVE_OK = 2, L2_CNT_MOVE_FAIL = 3 };

/* Bytes of one event message, and the most a buffer may hold. */
#define L2_MSG_BYTES 16u
#define L2_MSG_BUFFER_MAX 1792u

/* ---- calls ------------------------------------------------------------------------ */

TIDE_API int32_t l2_api_addr_add(uint32_t chip_id, l2_addr *addr);
TIDE_API int32_t l2_api_addr_replace(uint32_t chip_id, l2_addr *addr);
TIDE_API int32_t l2_api_addr_del(uint32_t chip_id, l2_addr *addr);
TIDE_API int32_t l2_api_addr_get(uint32_t chip_id, l2_addr *addr);
/* By linear index: bar0, then bar1, then the cam.  An empty slot gives 0
 * with `valid` 0. */
TIDE_API int32_t l2_api_addr_get_by_index(uint32_t chip_id, uint32_t index, l2_addr *addr);
/* The first valid entry at or after *cursor; *cursor becomes the index
 * after it.  -7 when none is left. */
TIDE_API int32_t l2_api_addr_next_entry_get(uint32_t chip_id, uint32_t *cursor, l2_addr *addr);
TIDE_API int32_t l2_api_addr_traverse(uint32_t chip_id, l2_addr_traverse_cb fn, void *user);
TIDE_API int32_t l2_api_addr_batched_del(uint32_t chip_id, l2_addr *addr, uint32_t compare, uint32_t *count);
TIDE_API int32_t l2_api_addr_batched_search(uint32_t chip_id, l2_addr *addr, uint32_t compare, uint32_t *count);
TIDE_API int32_t l2_api_multicast_create(uint32_t chip_id, uint32_t flags, uint32_t *mgid);
TIDE_API int32_t l2_api_multicast_bitmap_get(uint32_t chip_id, uint32_t mgid, l2_multicast_bitmap *bitmap);
TIDE_API int32_t l2_api_multicast_bitmap_set(uint32_t chip_id, uint32_t mgid, l2_multicast_bitmap *bitmap);
TIDE_API int32_t l2_api_multicast_port_add(uint32_t chip_id, uint32_t mgid, uint64_t port);
TIDE_API int32_t l2_api_multicast_port_delete(uint32_t chip_id, uint32_t mgid, uint64_t port);
TIDE_API int32_t l2_api_multicast_port_attribute_set(uint32_t chip_id, uint32_t mgid, uint64_t port,
                                                     l2_multicast_port_attr *attr);
TIDE_API int32_t l2_api_multicast_port_attribute_get(uint32_t chip_id, uint32_t mgid, uint64_t port,
                                                     l2_multicast_port_attr *attr);
TIDE_API int32_t l2_api_multicast_destroy(uint32_t chip_id, uint32_t mgid);
TIDE_API int32_t l2_api_mac_clear_all(uint32_t chip_id);
TIDE_API int32_t l2_api_age_control_get(uint32_t chip_id, uint32_t id, uint32_t *value);
TIDE_API int32_t l2_api_age_control_set(uint32_t chip_id, uint32_t id, uint32_t value);
TIDE_API int32_t l2_api_learn_control_get(uint32_t chip_id, uint32_t id, uint32_t *value);
TIDE_API int32_t l2_api_learn_control_set(uint32_t chip_id, uint32_t id, uint32_t value);
TIDE_API int32_t l2_api_control_get(uint32_t chip_id, uint32_t id, uint32_t *value);
TIDE_API int32_t l2_api_control_set(uint32_t chip_id, uint32_t id, uint32_t value);
TIDE_API int32_t l2_api_port_control_get(uint32_t chip_id, uint32_t port, uint32_t id, uint32_t *value);
TIDE_API int32_t l2_api_port_control_set(uint32_t chip_id, uint32_t port, uint32_t id, uint32_t value);
TIDE_API int32_t l2_api_vlan_control_get(uint32_t chip_id, uint32_t vid, uint32_t id, uint32_t *value);
TIDE_API int32_t l2_api_vlan_control_set(uint32_t chip_id, uint32_t vid, uint32_t id, uint32_t value);
TIDE_API int32_t l2_api_port_move_pri_get(uint32_t chip_id, l2_port_move_pri *pri);
TIDE_API int32_t l2_api_port_move_pri_set(uint32_t chip_id, l2_port_move_pri *pri);
TIDE_API int32_t l2_api_learn_limit_get(uint32_t chip_id, l2_learn_limit *limit);
TIDE_API int32_t l2_api_learn_limit_set(uint32_t chip_id, l2_learn_limit *limit);
TIDE_API int32_t l2_api_mac_cnt_get(uint32_t chip_id, uint32_t type, uint32_t *count);
TIDE_API int32_t l2_api_addr_freeze(uint32_t chip_id);
TIDE_API int32_t l2_api_addr_unfreeze(uint32_t chip_id);
TIDE_API int32_t l2_api_addr_register(uint32_t chip_id, l2_addr_callback fn, void *user);
TIDE_API int32_t l2_api_addr_unregister(uint32_t chip_id, l2_addr_callback fn);
TIDE_API int32_t l2_api_protocol_add(uint32_t chip_id, l2_protocol *entry);
TIDE_API int32_t l2_api_protocol_get(uint32_t chip_id, l2_protocol *entry);
TIDE_API int32_t l2_api_protocol_delete(uint32_t chip_id, l2_protocol *entry);
TIDE_API int32_t l2_api_protocol_delete_all(uint32_t chip_id);
TIDE_API int32_t l2_api_protocol_search(uint32_t chip_id, l2_protocol *entry);
TIDE_API int32_t l2_api_protocol_traverse(uint32_t chip_id, l2_protocol_traverse_cb fn, void *user);
TIDE_API int32_t l2_api_sync_start(uint32_t chip_id);
TIDE_API int32_t l2_api_sync_stop(uint32_t chip_id);
TIDE_API int32_t l2_api_thread_is_idling(uint32_t chip_id);
TIDE_API int32_t l2_api_thread_set_idling(uint32_t chip_id, uint32_t idling);
TIDE_API int32_t l2_api_thread_is_running(uint32_t chip_id);
TIDE_API int32_t l2_api_sync_get(uint32_t chip_id, uint32_t *state);
/* Entries of the table: bar0 + bar1 + 4. */
TIDE_API int32_t l2_api_mac_entry_size_get(uint32_t chip_id, uint32_t *size);
/* Decodes `len` bytes of event messages (16 bytes each, at most 1792) into
 * `out`, which has room for len / 16 records; *count records are filled. */
TIDE_API int32_t l2_api_mac_msg_parse(uint32_t chip_id, const uint8_t *buf, uint32_t len, l2_addr *out,
                                      uint32_t *count);

TIDE_END_DECLS

#endif /* TIDE_L2_H */
