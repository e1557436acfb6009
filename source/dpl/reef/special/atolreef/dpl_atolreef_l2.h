/*
 * What only atolreef does in the L2 address service: reading the MAC table
 * by linear index, the move priorities of ports and trunks, the learn
 * limits, and the decoding of the table's event messages.
 */
#ifndef TIDE_DPL_ATOLREEF_L2_H
#define TIDE_DPL_ATOLREEF_L2_H

#include "dpl/reef/l2/dpl_reef_l2.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Fills the chip's row of reef_l2_special; -13 for a chip id above 3. */
i32 dpl_atolreef_l2_special_register(u32 chip_id);

/* One entry by bucket and address in the table's plain read command;
 * `entry` receives the whole entry. */
i32 dpl_reef_atolreef_l2_hash_mac_appointed_hash_search(u32 chip_id, u32 bucket_type, u32 bucket_addr, u8 *entry,
                                                        u8 *fail_case);
i32 dpl_reef_atolreef_l2_addr_get_by_index(u32 chip_id, u32 index, l2_addr *addr);
i32 dpl_reef_atolreef_l2_port_move_pri_get(u32 chip_id, l2_port_move_pri *pri);
i32 dpl_reef_atolreef_l2_port_move_pri_set(u32 chip_id, l2_port_move_pri *pri);
i32 dpl_reef_atolreef_l2_learn_limit_get(u32 chip_id, l2_learn_limit *limit);
i32 dpl_reef_atolreef_l2_learn_limit_set(u32 chip_id, l2_learn_limit *limit);
i32 dpl_reef_atolreef_l2_msg_to_l2data(u32 chip_id, const u8 *msg, l2_addr *addr);
i32 dpl_reef_atolreef_l2_mac_msg_parse(u32 chip_id, const u8 *buf, u32 len, l2_addr *out, u32 *count);
i32 _dpl_reef_atolreef_l2_learn_limit_param_check(u32 chip_id, const l2_learn_limit *limit);

/* The trunks of the move priorities. */
#define DPL_ATOLREEF_L2_MOVE_TGID_MAX 7u

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_L2_H */
