/*
 * tide: the VLAN service.
 *
 * 4096 VLAN ids on the chip's 256 ingress and 256 egress VLAN rows: VLANs
 * whose settings are equal share one row pair, and a change of one VLAN's
 * settings moves it to a row of its own (or to another VLAN's equal row)
 * by itself.  Per VLAN: the member ports and the ports that send
 * untagged.  Per port: the PVID and the other VLAN behaviour of the port's
 * ingress and egress rows, the accepted outer TPIDs, the trust type.
 * Globally: four TPID values and the VLAN settings of the pipeline.
 *
 * Every call takes the chip id first and returns a status (0, or a
 * negative code whose text shr_errmsg gives); results go through the
 * pointer arguments.
 */
#ifndef TIDE_VLAN_H
#define TIDE_VLAN_H

#include <tide/port.h>
#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

#define VLAN_VID_MAX 4095u
#define VLAN_TPID_COUNT 4u

/* A control of a VLAN, a port or the chip: a key and its value. */
typedef struct vlan_control {
    uint32_t key;
    uint32_t value;
} vlan_control;

/* ---- keys of vlan_api_control_set (per VLAN) ------------------------------- */

/* Below VLAN_CTRL_EGRESS_MIN the ingress VLAN row, else the egress row. */
enum vlan_ctrl_key {
    VLAN_CTRL_AD_ACT3_TOCPU = 1,
    VLAN_CTRL_AD_ACT3_FWD_DISABLE = 2,
    VLAN_CTRL_AD_ACT2_TOCPU = 3,
    VLAN_CTRL_AD_ACT2_FWD_DISABLE = 4,
    VLAN_CTRL_AD_ACT1_TOCPU = 5,
    VLAN_CTRL_AD_ACT1_FWD_DISABLE = 6,
    VLAN_CTRL_CLASSID = 10,      /* 0..15 */
    VLAN_CTRL_DAI_EN = 11,
    VLAN_CTRL_PROTOCOL_BMP = 12, /* 0..255 */
    VLAN_CTRL_CNT_TYPE = 15,     /* 0..3 */
    VLAN_CTRL_MAC_IDX = 16,
    VLAN_CTRL_CNT_ID = 17,       /* 0..1023 */
    VLAN_CTRL_LOCAL_MAC_EN = 21,
    VLAN_CTRL_EGRESS_MIN = 22,
    VLAN_CTRL_SMAC_IDX = 22,
    VLAN_CTRL_EGRESS_CNT_TYPE = 23, /* 0..4 */
    VLAN_CTRL_EGRESS_CNT_ID = 24    /* 0..4095 */
};

/* ---- keys of vlan_api_port_control_set ---------------------------------------- */

/* Below VLAN_PORT_CTRL_EGRESS_MIN the port's ingress row, else its egress
 * row.  Each key changes one field (or a piece of one). */
enum vlan_port_ctrl_key {
    VLAN_PORT_CTRL_PVID_CFI = 4,
    VLAN_PORT_CTRL_PVID_PRI = 6,
    VLAN_PORT_CTRL_PVID = 8,
    VLAN_PORT_CTRL_VLAN_CHECK = 9,          /* ingress filtering by membership */
    VLAN_PORT_CTRL_VLAN_ACL_TYPE1 = 18,
    VLAN_PORT_CTRL_VLAN_ACL_TYPE0 = 19,     /* also 20, 34, 35 */
    VLAN_PORT_CTRL_TAG_PVID_PRI_ACT = 21,
    VLAN_PORT_CTRL_TAG_PVID_CFI_ACT = 22,
    VLAN_PORT_CTRL_CLASSID = 24,
    VLAN_PORT_CTRL_GID = 26,
    VLAN_PORT_CTRL_PORT_TYPE = 27,
    VLAN_PORT_CTRL_PVID_ADD_MODE = 28,      /* 0 none, 1 untagged, 2 all */
    VLAN_PORT_CTRL_PVID_PRI_ACT = 29,
    VLAN_PORT_CTRL_PVID_CFI_ACT = 30,
    VLAN_PORT_CTRL_DISCARD_TAGGED = 31,
    VLAN_PORT_CTRL_DISCARD_UNTAGGED = 32,
    VLAN_PORT_CTRL_VLAN_RANGE_EN = 33,
    VLAN_PORT_CTRL_PROTOCOL_BMP = 37,
    VLAN_PORT_CTRL_RMTLP_BLK = 38,
    VLAN_PORT_CTRL_LAG_BLK = 39,
    VLAN_PORT_CTRL_I_BLK = 40,
    VLAN_PORT_CTRL_ERPS_BLK = 41,
    VLAN_PORT_CTRL_VLAN_TYPE0 = 42,         /* slot n: type 42 + 3n, max 43 + 3n, min 44 + 3n */
    VLAN_PORT_CTRL_VID_MAX0 = 43,
    VLAN_PORT_CTRL_VID_MIN0 = 44,
    VLAN_PORT_CTRL_DAI_EN = 54,
    VLAN_PORT_CTRL_DAI_PORT_TYPE = 55,
    VLAN_PORT_CTRL_PORT_CNT_TYPE = 56,
    VLAN_PORT_CTRL_EGRESS_MIN = 57,
    VLAN_PORT_CTRL_HASH_OPC = 57,
    VLAN_PORT_CTRL_DEFAULT_DP = 58,
    VLAN_PORT_CTRL_SIT1 = 60,               /* key type of the first egress translation lookup, 0 none */
    VLAN_PORT_CTRL_SIT2 = 61,
    VLAN_PORT_CTRL_VTMISS_DROP = 62,        /* an egress translation miss drops */
    VLAN_PORT_CTRL_TPID_INDEX = 63,         /* the TPID of the sent outer tag, 0..3 */
    VLAN_PORT_CTRL_E_RMTLP_BLK = 64,
    VLAN_PORT_CTRL_E_LAG_BLK = 65,
    VLAN_PORT_CTRL_E_I_BLK = 66,
    VLAN_PORT_CTRL_E_ERPS_BLK = 67,
    VLAN_PORT_CTRL_E_VLAN_RANGE_EN = 68,
    VLAN_PORT_CTRL_E_VLAN_TYPE0 = 69,
    VLAN_PORT_CTRL_E_VID_MAX0 = 70,         /* slot n > 0: type 69 + 3n, max 70 + 3n, min 71 + 3n */
    VLAN_PORT_CTRL_E_VID_MIN0 = 71,
    VLAN_PORT_CTRL_E_VLAN_CHECK = 90,       /* egress filtering by membership */
    VLAN_PORT_CTRL_E_PORT_CNT_TYPE = 93
};

/* ---- keys of vlan_api_global_cfg_set ---------------------------------------- */

enum vlan_global_key {
    VLAN_GLB_PVID_ADD_MODE = 1,      /* 0 untagged, 1 all */
    VLAN_GLB_PRI_TAG_ADD_MODE = 2,   /* 0 add, 1 add after delete */
    VLAN_GLB_VOICE_DSCP_RMK = 3,     /* 3..7: 0..3 */
    VLAN_GLB_VLAN_CHECK_ACT = 10,    /* 0 copy to CPU, 1 redirect, 2 forward, 3 drop */
    VLAN_GLB_MSTP_DIS_ACT = 12,
    VLAN_GLB_MSTP_LRN_ACT = 13,
    VLAN_GLB_MSTP_BLK_ACT = 14,
    VLAN_GLB_MSTP_LRN_DROP_MODE = 15,
    VLAN_GLB_PRI_TAG_TAGNUM = 16,
    VLAN_GLB_INNER_TPID0 = 17,       /* 17..20: TPID n may be an inner tag */
    VLAN_GLB_IMMUNE_FWD_STP_LRN = 25,   /* 25..29 forward, 30..34 to CPU */
    VLAN_GLB_LOW_POWER = 35,
    VLAN_GLB_LP_TNL_SP_MODE = 36,
    VLAN_GLB_OPRI_CP_MODE = 37,      /* 37..41 */
    VLAN_GLB_VMAP_KEY_UNTAG_MODE = 57
};

/* Keys of vlan_api_translation_global_cfg_set, 1..7. */
enum vlan_translation_global_key {
    VLAN_VT_GLB_PRI_TAG_KEY_TAG_NUM = 1,
    VLAN_VT_GLB_PRI_TAG_KEY_PVID_CFI = 2,
    VLAN_VT_GLB_PRI_TAG_KEY_PVID_PRI = 3,
    VLAN_VT_GLB_UNTAG_KEY_PVID_CFI = 4,
    VLAN_VT_GLB_UNTAG_KEY_PVID_PRI = 5,
    VLAN_VT_GLB_PRI_TAG_KEY_PVID = 6,
    VLAN_VT_GLB_UNTAG_KEY_PVID = 7
};

/* ---- trust type ------------------------------------------------------------ */

enum vlan_trust_type {
    VLAN_TRUST_NONE = 0,
    VLAN_TRUST_QINDEX_COLOR = 1,
    VLAN_TRUST_DSCP = 2,
    VLAN_TRUST_OUTER_PRI = 4,
    VLAN_TRUST_OUTER_PRI_CFI = 5,
    VLAN_TRUST_INNER_PRI = 6,
    VLAN_TRUST_INNER_PRI_CFI = 7
};

/* Types 0 and 1 use qindex (0..7) and color (0..3); the others ba_tid
 * (0..63). */
typedef struct vlan_trust_info {
    uint8_t qindex;
    uint8_t color;
    uint8_t ba_tid;
} vlan_trust_info;

/* ---- calls ------------------------------------------------------------------- */

TIDE_API int32_t vlan_api_port_trust_type_set(uint32_t chip_id, uint32_t lport, uint32_t type, vlan_trust_info *info);
TIDE_API int32_t vlan_api_port_trust_type_get(uint32_t chip_id, uint32_t lport, uint32_t *type, vlan_trust_info *info);
TIDE_API int32_t vlan_api_port_control_set(uint32_t chip_id, uint32_t lport, vlan_control *control);
TIDE_API int32_t vlan_api_port_control_get(uint32_t chip_id, uint32_t lport, vlan_control *control);
TIDE_API int32_t vlan_api_control_set(uint32_t chip_id, uint32_t vid, vlan_control *control);
TIDE_API int32_t vlan_api_control_get(uint32_t chip_id, uint32_t vid, vlan_control *control);
TIDE_API int32_t vlan_api_global_cfg_set(uint32_t chip_id, vlan_control *cfg);
TIDE_API int32_t vlan_api_global_cfg_get(uint32_t chip_id, vlan_control *cfg);

/* A new VLAN has the default rows (learning, flooding on), no members. */
TIDE_API int32_t vlan_api_create(uint32_t chip_id, uint32_t vid);
TIDE_API int32_t vlan_api_destroy(uint32_t chip_id, uint32_t vid);
/* Members join; of the joining ports those in `untagged` send untagged,
 * the others tagged. */
TIDE_API int32_t vlan_api_port_add(uint32_t chip_id, uint32_t vid, port_bitmap *members, port_bitmap *untagged);
/* The members and untagged ports replaced. */
TIDE_API int32_t vlan_api_port_set(uint32_t chip_id, uint32_t vid, port_bitmap *members, port_bitmap *untagged);
TIDE_API int32_t vlan_api_port_delete(uint32_t chip_id, uint32_t vid, port_bitmap *ports);
TIDE_API int32_t vlan_api_port_get(uint32_t chip_id, uint32_t vid, port_bitmap *members, port_bitmap *untagged);

/* The four TPID values (id 0..3); after bring-up 0x8100, 0x88A8, 0x9100,
 * 0x9200. */
TIDE_API int32_t vlan_api_tpid_set(uint32_t chip_id, uint32_t id, uint32_t value);
TIDE_API int32_t vlan_api_tpid_get(uint32_t chip_id, uint32_t id, uint32_t *value);
/* The TPIDs a port accepts for an outer tag: bit n for TPID n. */
TIDE_API int32_t vlan_api_port_tpid_bitmap_set(uint32_t chip_id, uint32_t lport, uint32_t bitmap);
TIDE_API int32_t vlan_api_port_tpid_bitmap_get(uint32_t chip_id, uint32_t lport, uint32_t *bitmap);

TIDE_API int32_t vlan_api_translation_global_cfg_set(uint32_t chip_id, vlan_control *cfg);
TIDE_API int32_t vlan_api_translation_global_cfg_get(uint32_t chip_id, vlan_control *cfg);

/* ---- egress translation ------------------------------------------------------- */

/* Key types of an egress translation. */
enum vlan_egress_translate_key_type {
    VLAN_EVT_KEY_PORT_OVID_IVID = 1,  /* port, outer VID, inner VID */
    VLAN_EVT_KEY_PORT_OVID_DOT1P = 2, /* port, outer VID, priority in inner_vlan_id (0..7) */
    VLAN_EVT_KEY_PORT_OVID = 3        /* port, outer VID */
};

/* What a frame leaving by a port (or trunk) must carry to be translated. */
typedef struct vlan_egress_translate_key {
    uint32_t key_type; /* 0..3, enum vlan_egress_translate_key_type */
    uint32_t lport;
    uint32_t tgid;
    uint32_t trunk_flag; /* 1: tgid instead of lport */
    uint16_t outer_vlan_id;
    uint16_t inner_vlan_id;
} vlan_egress_translate_key;

/* Tag actions of a translation. */
enum vlan_tag_action {
    VLAN_TAG_ACT_NONE = 0,
    VLAN_TAG_ACT_ADD = 1,
    VLAN_TAG_ACT_REPLACE = 2,
    VLAN_TAG_ACT_DELETE = 3
};

/* What a translation does.  A priority or CFI action of 2 replaces the
 * field with the new value; 0 keeps it. */
typedef struct vlan_translate_action {
    uint16_t new_outer_vlan;
    uint16_t new_inner_vlan;
    uint8_t new_outer_pri;
    uint8_t new_outer_cfi;
    uint8_t new_inner_pri;
    uint8_t new_inner_cfi;
    uint8_t dscp;
    uint32_t multi_mapping_flag;
    uint32_t dpid; /* egress: below 128 */
    uint32_t dpid_en;
    uint32_t otag_action; /* enum vlan_tag_action */
    uint32_t itag_action;
    uint32_t outer_pri_act;
    uint32_t outer_cfi_act;
    uint32_t inner_pri_act;
    uint32_t inner_cfi_act;
    uint32_t fwdtype;
    uint32_t fwdinfo;
    uint32_t action_idx;
} vlan_translate_action;

typedef int32_t (*vlan_egress_translate_traverse_cb)(uint32_t chip_id, vlan_egress_translate_key *key,
                                                     vlan_translate_action *action, void *user);

/* An add of an existing key replaces its action. */
TIDE_API int32_t vlan_api_egress_translate_add(uint32_t chip_id, vlan_egress_translate_key *key,
                                              vlan_translate_action *action);
TIDE_API int32_t vlan_api_egress_translate_delete(uint32_t chip_id, vlan_egress_translate_key *key);
TIDE_API int32_t vlan_api_egress_translate_get(uint32_t chip_id, vlan_egress_translate_key *key,
                                              vlan_translate_action *action);
/* Every entry, in the order of the table's places; a failing callback
 * does not stop the walk, its status is OR-ed into the result. */
TIDE_API int32_t vlan_api_egress_translate_traverse(uint32_t chip_id, vlan_egress_translate_traverse_cb fn,
                                                   void *user);

/* ---- ingress translation and VLAN assignment --------------------------------- */

/* Ingress translation, MAC-, subnet- and protocol-based VLANs are entries
 * of the VLAN TCAM spaces; each kind has the range of the space its
 * reservation property gives it ("vacl_cnt", "mac_vlan_cnt",
 * "subnet_vlan_cnt", "protocol_vlan_cnt", all 0 by default: with a range
 * of 0 every add answers -6).  Their actions are vlan_translate_action. */

/* What an ingress translation matches on. */
enum vlan_ingress_translate_key_type {
    VLAN_IVT_KEY_OVID_IVID = 4,
    VLAN_IVT_KEY_OVID = 5,
    VLAN_IVT_KEY_IVID = 6,
    VLAN_IVT_KEY_PORT_OVID_IVID = 12,
    VLAN_IVT_KEY_PORT_OVID = 13,
    VLAN_IVT_KEY_PORT_IVID = 14,
    VLAN_IVT_KEY_OVID_OPRI = 20,
    VLAN_IVT_KEY_IVID_IPRI = 21,
    VLAN_IVT_KEY_PORT_OVID_OPRI = 22,
    VLAN_IVT_KEY_PORT_IVID_IPRI = 23
};

/* The fields the key type does not name are not compared by the chip, but
 * two keys that differ in them are two entries. */
typedef struct vlan_ingress_translate_key {
    uint32_t lport;
    uint32_t tgid;
    uint16_t outer_vlan;
    uint16_t inner_vlan;
    uint16_t outer_pri;
    uint16_t inner_pri;
    uint16_t tag_num;  /* 0..3 */
    uint16_t reserved; /* ignored */
    uint32_t trunk_flag; /* 1: tgid instead of lport */
    uint32_t vt_key_type; /* enum vlan_ingress_translate_key_type */
} vlan_ingress_translate_key;

/* A MAC-based VLAN: frames whose source MAC matches `smac` under
 * `smac_mask`.  A voice entry (`voice` 1) also matches the port and outer
 * VID, and marks the frame's DSCP (0..63). */
typedef struct vlan_mac_key {
    uint8_t smac[6];
    uint8_t smac_mask[6];
    uint32_t voice;
    uint32_t lport;
    uint16_t outer_vlan;
    uint8_t dscp;
    uint8_t reserved; /* ignored */
} vlan_mac_key;

/* A subnet-based VLAN: IPv4 frames whose source address matches under the
 * mask.  IPv6 subnets (`ipv6` 1, or bit 0 of `flags`) answer -24. */
typedef struct vlan_subnet_key {
    uint32_t ipv4_sip;
    uint32_t ipv4_mask;
    uint32_t ipv6;
    uint32_t flags;
} vlan_subnet_key;

/* Frame kinds of a protocol-based VLAN. */
enum vlan_l2_pkt_type {
    VLAN_L2_PKT_ETHERNETII = 0, /* protocol_type: the ethernet type */
    VLAN_L2_PKT_SNAP = 1,       /* protocol_type: the SNAP type */
    VLAN_L2_PKT_LLC = 2         /* protocol_type: DSAP << 8 | SSAP */
};

/* A protocol-based VLAN: frames of a port (or trunk) of one frame kind and
 * protocol. */
typedef struct vlan_protocol_key {
    uint32_t lport;
    uint32_t tgid;
    uint32_t trunk_flag; /* 1: tgid instead of lport */
    uint32_t l2_pkt_type; /* enum vlan_l2_pkt_type */
    uint16_t protocol_type;
    uint16_t reserved; /* ignored */
} vlan_protocol_key;

typedef int32_t (*vlan_ingress_translate_traverse_cb)(uint32_t chip_id, vlan_ingress_translate_key *key,
                                                      vlan_translate_action *action, void *user);
typedef int32_t (*vlan_mac_traverse_cb)(uint32_t chip_id, vlan_mac_key *key, vlan_translate_action *action,
                                        void *user);
typedef int32_t (*vlan_subnet_traverse_cb)(uint32_t chip_id, vlan_subnet_key *key, vlan_translate_action *action,
                                           void *user);
typedef int32_t (*vlan_protocol_traverse_cb)(uint32_t chip_id, vlan_protocol_key *key,
                                             vlan_translate_action *action, void *user);

/* Add: -8 for a key that is there, -6 when the kind's range is full.
 * Delete and get: -7 for a key that is not there.  Traverse: the entries
 * of the kind in the order they were added; a failing callback does not
 * stop the walk, its status is OR-ed into the result. */
TIDE_API int32_t vlan_api_ingress_translate_add(uint32_t chip_id, vlan_ingress_translate_key *key,
                                               vlan_translate_action *action);
TIDE_API int32_t vlan_api_ingress_translate_delete(uint32_t chip_id, vlan_ingress_translate_key *key);
TIDE_API int32_t vlan_api_ingress_translate_get(uint32_t chip_id, vlan_ingress_translate_key *key,
                                               vlan_translate_action *action);
TIDE_API int32_t vlan_api_ingress_translate_traverse(uint32_t chip_id, vlan_ingress_translate_traverse_cb fn,
                                                    void *user);
TIDE_API int32_t vlan_api_macbased_add(uint32_t chip_id, vlan_mac_key *key, vlan_translate_action *action);
TIDE_API int32_t vlan_api_macbased_delete(uint32_t chip_id, vlan_mac_key *key);
TIDE_API int32_t vlan_api_macbased_get(uint32_t chip_id, vlan_mac_key *key, vlan_translate_action *action);
TIDE_API int32_t vlan_api_macbased_traverse(uint32_t chip_id, vlan_mac_traverse_cb fn, void *user);
TIDE_API int32_t vlan_api_subnetbased_add(uint32_t chip_id, vlan_subnet_key *key, vlan_translate_action *action);
TIDE_API int32_t vlan_api_subnetbased_delete(uint32_t chip_id, vlan_subnet_key *key);
TIDE_API int32_t vlan_api_subnetbased_get(uint32_t chip_id, vlan_subnet_key *key, vlan_translate_action *action);
TIDE_API int32_t vlan_api_subnetbased_traverse(uint32_t chip_id, vlan_subnet_traverse_cb fn, void *user);
TIDE_API int32_t vlan_api_protocolbased_add(uint32_t chip_id, vlan_protocol_key *key,
                                           vlan_translate_action *action);
TIDE_API int32_t vlan_api_protocolbased_delete(uint32_t chip_id, vlan_protocol_key *key);
TIDE_API int32_t vlan_api_protocolbased_get(uint32_t chip_id, vlan_protocol_key *key,
                                           vlan_translate_action *action);
TIDE_API int32_t vlan_api_protocolbased_traverse(uint32_t chip_id, vlan_protocol_traverse_cb fn, void *user);

/* ---- private VLANs, port default actions, tag checks by destination MAC -------
 * Calls of the family that no chip of this build implements: each answers
 * -24. */

/* Settings of vlan_api_pvlan_port_set, by `key`. */
enum vlan_pvlan_key {
    VLAN_PVLAN_TYPE = 1,    /* the VLAN `vid` becomes `value`: 0 promiscuous, 1 isolated, 2 community */
    VLAN_PVLAN_PRIMARY = 2, /* the port joins (`enable` 1) or leaves the secondary `vid` of primary `value` */
    VLAN_PVLAN_OUTPUT = 3   /* frames leave untagged (`value` 0) or with VID `vid` and priority `pri` */
};
/* The port of a setting of the VLAN itself (VLAN_PVLAN_TYPE). */
#define VLAN_PVLAN_NO_PORT 0xFFFFFFFFu

typedef struct vlan_pvlan_cfg {
    uint32_t key; /* enum vlan_pvlan_key */
    uint32_t vid;
    uint32_t value;
    uint32_t pri;
    uint32_t enable;
} vlan_pvlan_cfg;

/* Frames to a destination MAC under a mask that skip the accepted-frame
 * checks of their port. */
typedef struct vlan_dmac_check {
    uint8_t dmac[6];
    uint8_t dmac_mask[6];
    uint32_t enable; /* 1 add, 0 delete */
} vlan_dmac_check;

TIDE_API int32_t vlan_api_port_default_action_add(uint32_t chip_id, uint32_t lport, vlan_translate_action *action);
TIDE_API int32_t vlan_api_port_default_action_get(uint32_t chip_id, uint32_t lport, vlan_translate_action *action);
TIDE_API int32_t vlan_api_port_default_action_delete(uint32_t chip_id, uint32_t lport);
TIDE_API int32_t vlan_api_pvlan_enable(uint32_t chip_id, uint32_t lport, uint32_t enable);
TIDE_API int32_t vlan_api_tag_check_by_dmac_set(uint32_t chip_id, vlan_dmac_check *check);
TIDE_API int32_t vlan_api_tag_check_by_dmac_get(uint32_t chip_id, vlan_dmac_check *check);
TIDE_API int32_t vlan_api_pvlan_port_set(uint32_t chip_id, uint32_t lport, vlan_pvlan_cfg *cfg);
TIDE_API int32_t vlan_api_pvlan_port_get(uint32_t chip_id, uint32_t lport, vlan_pvlan_cfg *cfg);

TIDE_END_DECLS

#endif /* TIDE_VLAN_H */
