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
} dpl_atolreef_vlan_info;
extern dpl_atolreef_vlan_info *g_atolreef_vlan_info[SHR_MAX_CHIPS];

/* Fills the chip's row of reef_vlan_special. */
i32 dpl_atolreef_vlan_special_register(u32 chip_id);

/* The default records of a new VLAN. */
dpl_reef_ivlan_key dpl_atolreef_vlan_ingress_default(void);
dpl_reef_evlan_key dpl_atolreef_vlan_egress_default(void);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_VLAN_H */
