/*
 * The VLAN service of the reef family: the operations of the vlan family,
 * the services other features call to rewrite a VLAN's rows, and the
 * chip's special table.  The generic part (port controls, TPIDs, global
 * settings, trust type) is in dpl_reef_vlan.cc; the row sharing and the
 * membership are atolreef's (dpl_atolreef_vlan.cc).
 */
#ifndef TIDE_DPL_REEF_VLAN_H
#define TIDE_DPL_REEF_VLAN_H

#include "api/api_families.h"
#include "dpl/common/dpl_init_pre.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Feature lock of the service. */
#define DPL_LOCK_VLAN 18u

#define DPL_VLAN_VID_COUNT 4096u
#define DPL_VLAN_ROWS 256u
#define DPL_VLAN_PORT_MAX 32u

/* The settings of a VLAN's ingress row, the unit of comparison: two VLANs
 * may share a row exactly when these fields are equal.  The lists name
 * the u8 fields; `cnt_id` follows them. */
#define DPL_IVLAN_FIELDS(X)                                                                                        \
    X(vld) X(local_mac_en) X(ipmc_mode) X(ad_act3_tocpu) X(ad_act3_fwd_disable) X(ad_act2_tocpu)                    \
    X(ad_act2_fwd_disable) X(ad_act1_tocpu) X(ad_act1_fwd_disable) X(car_id) X(bc_ctrl) X(unuc_tocp) X(unuc_broad)  \
    X(unmc_tocp) X(unmc_broad) X(mac_lrn_mode) X(vlan_lrn_lmt) X(mac_lmt_dlf) X(bc_tocp) X(bc_broad)                \
    X(first_policy_acltype) X(first_policy_aclpri) X(classid) X(ipsgv4_en) X(ipsgv6_en) X(stg_id) X(mac_idx)        \
    X(dai_en) X(protocol_bmp) X(mirror_en) X(mirror_id) X(cnt_type)
typedef struct dpl_reef_ivlan_key {
#define DPL_VLAN_U8_MEMBER(f) u8 f;
    DPL_IVLAN_FIELDS(DPL_VLAN_U8_MEMBER)
    u16 cnt_id;
} dpl_reef_ivlan_key;

/* The settings of a VLAN's egress row. */
#define DPL_EVLAN_FIELDS(X)                                                                                        \
    X(others) X(vld) X(first_policy_acltype) X(acl_pri) X(stg_id) X(smac_idx) X(port_isolation_vlan_dis) X(cnt_type)
typedef struct dpl_reef_evlan_key {
    DPL_EVLAN_FIELDS(DPL_VLAN_U8_MEMBER)
    u16 cnt_id;
#undef DPL_VLAN_U8_MEMBER
} dpl_reef_evlan_key;

/* A row in software: its record, its index and the number of VIDs on it. */
typedef struct dpl_reef_ivlan_node {
    dpl_reef_ivlan_key key;
    u32 used;
    u32 index;
    u32 count;
} dpl_reef_ivlan_node;
typedef struct dpl_reef_evlan_node {
    dpl_reef_evlan_key key;
    u32 used;
    u32 index;
    u32 count;
} dpl_reef_evlan_node;

/* The families of the VLAN TCAM entries; the voice kind is the MAC family's
 * entries with `voice` set. */
enum dpl_vlan_vacl_family {
    DPL_VACL_VOICE = 0,
    DPL_VACL_VT = 1,
    DPL_VACL_MAC = 2,
    DPL_VACL_SUBNET = 3,
    DPL_VACL_PROTOCOL = 8
};
/* Called for each entry of a family by the traverse slot; `key` is the
 * family's key record. */
typedef i32 (*dpl_vlan_vacl_cb)(u32 chip_id, void *key, vlan_translate_action *action, void *ctx);

/* What only one chip type does; an empty slot gives -24. */
typedef struct reef_vlan_special_t {
    i32 (*soft_init)(u32 chip_id);
    i32 (*soft_deinit)(u32 chip_id);
    i32 (*hw_init)(u32 chip_id);
    i32 (*create)(u32 chip_id, u32 vid);
    i32 (*destroy)(u32 chip_id, u32 vid);
    i32 (*port_add)(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged);
    i32 (*port_set)(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged);
    i32 (*port_delete)(u32 chip_id, u32 vid, port_bitmap *ports);
    i32 (*port_get)(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged);
    i32 (*control_set)(u32 chip_id, u32 vid, vlan_control *control);
    i32 (*control_get)(u32 chip_id, u32 vid, vlan_control *control);
    i32 (*ingress_control_get)(u32 chip_id, u32 vid, dpl_reef_ivlan_key *record);
    i32 (*ingress_control_set)(u32 chip_id, u32 vid, const dpl_reef_ivlan_key *record);
    i32 (*egress_control_get)(u32 chip_id, u32 vid, dpl_reef_evlan_key *record);
    i32 (*egress_control_set)(u32 chip_id, u32 vid, const dpl_reef_evlan_key *record);
    i32 (*ingress_software_info_get)(u32 chip_id, u32 vid, dpl_reef_ivlan_node *node);
    i32 (*egress_software_info_get)(u32 chip_id, u32 vid, dpl_reef_evlan_node *node);
    i32 (*forward_bitmap_set)(u32 chip_id, const port_bitmap *bitmap, u32 all);
    i32 (*map_index_get)(u32 chip_id, u32 vid, u32 *index);
    /* The VLAN TCAM entries of one family (enum dpl_vlan_vacl_family);
     * `key` is the family's key record, never NULL. */
    i32 (*vacl_add)(u32 chip_id, u32 family, const void *key, const vlan_translate_action *action);
    i32 (*vacl_delete)(u32 chip_id, u32 family, const void *key);
    i32 (*vacl_get)(u32 chip_id, u32 family, const void *key, vlan_translate_action *action);
    i32 (*vacl_traverse)(u32 chip_id, u32 family, dpl_vlan_vacl_cb fn, void *ctx);
    i32 (*vacl_clear)(u32 chip_id, u32 family);
} reef_vlan_special_t;
extern reef_vlan_special_t reef_vlan_special[SHR_MAX_CHIPS];

/* Bring-up. */
i32 dpl_reef_vlan_soft_init(u32 chip_id);
i32 dpl_reef_vlan_soft_deinit(u32 chip_id);
i32 dpl_reef_vlan_hw_init(u32 chip_id);
i32 dpl_reef_vlan_hw_deinit(u32 chip_id);
i32 dpl_reef_vlan_special_register(u32 chip_id);
i32 dpl_reef_vlan_set_property(u32 chip_id);

/* The operations of the family: dpl_reef_vlan_<name>. */
#define DPL_REEF_VLAN_DECLARE(name, params, args, ...) i32 dpl_reef_vlan_##name params;
TIDE_VLAN_OPS(DPL_REEF_VLAN_DECLARE)
#undef DPL_REEF_VLAN_DECLARE

/* Services for other features: a VID's whole ingress or egress record,
 * read or rewritten (the row sharing follows by itself); the software
 * nodes for the debug shell. */
i32 dpl_reef_vlan_ingress_control_get(u32 chip_id, u32 vid, dpl_reef_ivlan_key *record);
i32 dpl_reef_vlan_ingress_control_set(u32 chip_id, u32 vid, const dpl_reef_ivlan_key *record);
i32 dpl_reef_vlan_egress_control_get(u32 chip_id, u32 vid, dpl_reef_evlan_key *record);
i32 dpl_reef_vlan_egress_control_set(u32 chip_id, u32 vid, const dpl_reef_evlan_key *record);
i32 dpl_reef_vlan_ingress_control_software_info_get(u32 chip_id, u32 vid, dpl_reef_ivlan_node *node);
i32 dpl_reef_vlan_egress_control_software_info_get(u32 chip_id, u32 vid, dpl_reef_evlan_node *node);
/* The ingress members of every VLAN (`all` 1) or of those marked changed
 * become `bitmap` & the members the VLAN was given. */
i32 dpl_reef_vlan_forward_bitmap_set(u32 chip_id, const port_bitmap *bitmap, u32 all);
/* The shared row of a VID. */
i32 dpl_reef_vlan_map_index_get(u32 chip_id, u32 vid, u32 *index);
/* Every egress translation deleted; goes on past a -7 and ORs other codes. */
i32 dpl_reef_vlan_egress_translate_clear(u32 chip_id);
/* Every entry of a family of the VLAN TCAM deleted; goes on past a failing
 * delete and ORs the codes. */
i32 dpl_reef_vlan_ingress_translate_clear(u32 chip_id);
i32 dpl_reef_vlan_macbased_clear(u32 chip_id);
i32 dpl_reef_vlan_subnetbased_clear(u32 chip_id);
i32 dpl_reef_vlan_protocolbased_clear(u32 chip_id);
/* -4 for a trunk id above the chip's highest (7 on atolreef, 127 else). */
i32 dpl_reef_check_tgid(u32 chip_id, u32 tgid);

#ifdef __cplusplus
}

/* Holds the service's feature lock for a scope. */
using VlanLock = DplLockHold<DPL_LOCK_VLAN>;
#define VLAN_LOCK(chip_id) VlanLock vlan_lock_hold_((chip_id), __func__, __LINE__)
#endif

#endif /* TIDE_DPL_REEF_VLAN_H */
