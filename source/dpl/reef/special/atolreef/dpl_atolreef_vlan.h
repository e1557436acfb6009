/*
 * What atolreef does in the VLAN service: the sharing of the 256 VLAN row
 * pairs among the 4096 VIDs, membership, the per-VLAN control keys.
 */
#ifndef TIDE_DPL_ATOLREEF_VLAN_H
#define TIDE_DPL_ATOLREEF_VLAN_H

#include "dpl/reef/vlan/dpl_reef_vlan.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The properties of the service, as read at software init. */
typedef struct dpl_atolreef_vlan_property {
    u32 vacl_160bit_cnt;
    u32 vacl_320bit_cnt;
    u32 vlan_multiplex_flag;
    u32 voice_vlan_cnt;
    u32 vacl_cnt;
    u32 mac_vlan_cnt;
    u32 subnet_vlan_cnt;
    u32 protocol_vlan_cnt;
} dpl_atolreef_vlan_property;

/* A created VLAN: its VID, whether its members changed since the last
 * forward bitmap, the members it was given, its row; in creation order. */
typedef struct dpl_atolreef_vlan_node {
    u16 vid;
    u16 changed;
    u32 index;
    port_bitmap member;
    struct dpl_atolreef_vlan_node *prev;
    struct dpl_atolreef_vlan_node *next;
} dpl_atolreef_vlan_node;

/* An entry of a VLAN TCAM space: the key record it was added with (its
 * ignored bytes zero), its place in the space, its kind (enum
 * dpl_vlan_vacl_family); in the order of the adds. */
#define DPL_VACL_KEY_BYTES 56u
typedef struct dpl_atolreef_vacl_node {
    u8 key[DPL_VACL_KEY_BYTES];
    u32 key_ad_index;
    u32 kind;
    struct dpl_atolreef_vacl_node *prev;
    struct dpl_atolreef_vacl_node *next;
} dpl_atolreef_vacl_node;

/* A VLAN TCAM space: its entries and its used places. */
#define DPL_VACL_PLACES 4096u
typedef struct dpl_atolreef_vacl_space {
    dpl_atolreef_vacl_node *head;
    dpl_atolreef_vacl_node *tail;
    u32 used[DPL_VACL_PLACES / 32];
} dpl_atolreef_vacl_space;

typedef struct dpl_atolreef_vlan_info {
    dpl_atolreef_vlan_property prop;
    dpl_atolreef_vlan_node *vid_node[DPL_VLAN_VID_COUNT];
    dpl_atolreef_vlan_node *head;
    dpl_atolreef_vlan_node *tail;
    u32 vlan_count;
    dpl_reef_ivlan_node ivlan[DPL_VLAN_ROWS];
    dpl_reef_evlan_node evlan[DPL_VLAN_ROWS];
    u32 ivlan_bmp[DPL_VLAN_ROWS / 32];
    u32 evlan_bmp[DPL_VLAN_ROWS / 32];
    u32 ivlan_count;
    u32 evlan_count;
    dpl_atolreef_vacl_space vacl[2]; /* the 160-bit and the 320-bit space */
    u32 vacl_count[5];               /* entries of voice, translate, MAC, subnet, protocol */
} dpl_atolreef_vlan_info;
extern dpl_atolreef_vlan_info *g_atolreef_vlan_info[SHR_MAX_CHIPS];

/* Fills the chip's row of reef_vlan_special. */
i32 dpl_atolreef_vlan_special_register(u32 chip_id);

/* The VLAN TCAM entries (dpl_atolreef_vlan_vacl.cc): the slots of the
 * special table, and the lists given back at soft deinit. */
i32 dpl_atolreef_vlan_vacl_add(u32 chip_id, u32 family, const void *key, const vlan_translate_action *action);
i32 dpl_atolreef_vlan_vacl_delete(u32 chip_id, u32 family, const void *key);
i32 dpl_atolreef_vlan_vacl_get(u32 chip_id, u32 family, const void *key, vlan_translate_action *action);
i32 dpl_atolreef_vlan_vacl_traverse(u32 chip_id, u32 family, dpl_vlan_vacl_cb fn, void *ctx);
i32 dpl_atolreef_vlan_vacl_clear(u32 chip_id, u32 family);
void dpl_atolreef_vlan_vacl_destroy(dpl_atolreef_vlan_info *v);

/* The default records of a new VLAN. */
dpl_reef_ivlan_key dpl_atolreef_vlan_ingress_default(void);
dpl_reef_evlan_key dpl_atolreef_vlan_egress_default(void);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_VLAN_H */
