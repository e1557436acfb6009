/*
 * The ACL templates of atolreef: which templates and actions each kind of
 * group takes, which items and actions exclude each other, and how an
 * entry's items and actions become the key, mask and action of its TCAM
 * table.  All of it is data: a template is a row of the template table
 * (its TCAM table, its items in order and where each lands in the key),
 * an action set a row of the set table (its actions and the fields each
 * sets); the builder is one function over them.  Names in the rows are
 * resolved against the name tables and the chip's catalogue at soft init.
 */
#ifndef TIDE_DPL_ATOLREEF_ACL_TEMPLATE_H
#define TIDE_DPL_ATOLREEF_ACL_TEMPLATE_H

#include "dpl/reef/acl/dpl_reef_acl.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Fills the chip's row of reef_acl_special. */
i32 dpl_atolreef_acl_template_special_register(u32 chip_id);

/* The per-chip tables (tag "acl_template"); -11 when they cannot be made,
 * -15 when a row names something the name tables or the catalogue lack. */
i32 dpl_atolreef_acl_template_init(u32 chip_id);
i32 dpl_atolreef_acl_template_deinit(u32 chip_id);

i32 dpl_atolreef_acl_template_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap);
i32 dpl_atolreef_acl_template_action_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap);
i32 dpl_atolreef_acl_template_match_type_support_gen(u32 chip_id, u32 template_id, u32 *bitmap);
i32 dpl_atolreef_acl_template_match_type_conflict_check(u32 chip_id, u32 template_id, const u32 *match_set,
                                                        u32 match_id);
i32 dpl_atolreef_acl_template_action_conflict_check(u32 chip_id, u32 fp_type, const u32 *action_set, u32 action_id);
i32 dpl_atolreef_acl_template_tcam_id_get(u32 chip_id, u32 template_id, u32 *tcam_id);
i32 dpl_atolreef_acl_template_entry_gen(u32 chip_id, const dpl_acl_entry *entry, dpl_acl_image *image);

/* The ingress ACL's type tag by the entry's base: 4 port, 10 vlan, 11
 * otherwise. */
u32 _dpl_atolreef_acl_template_iacl_tid_select_based_on_mode(u32 based_mode);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_ACL_TEMPLATE_H */
