/*
 * The L2 address service of the reef family: the operations of the l2
 * family, the conversion of an address record into the MAC table's key
 * and AD, the marks of the multicast group ids that MAC entries use, and
 * the chip's special operations.
 */
#ifndef TIDE_DPL_REEF_L2_H
#define TIDE_DPL_REEF_L2_H

#include "api/api_families.h"
#include "csl/reef/reg_tbl/auto_code/api/csl_reef_hash_table.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Feature lock of the service. */
#define DPL_LOCK_L2 6u

/* Limits of a chip, filled at software init. */
typedef struct dpl_reef_l2_property {
    u32 port_max;      /* highest port id accepted */
    u32 tgid_max;      /* highest trunk id */
    u32 gid_max;       /* highest gid */
    u32 tocpu_cause_max;
    u32 drop_cause_max;
} dpl_reef_l2_property;
extern dpl_reef_l2_property g_l2_property[SHR_MAX_CHIPS];

/* Multicast group ids of this service: a byte per id 16 to 1023, 1 when a
 * MAC entry or l2_api_multicast_create holds it. */
#define DPL_L2_MGID_MIN 16u
#define DPL_L2_MGID_MAX 1023u
#define DPL_L2_MGID_COUNT (DPL_L2_MGID_MAX + 1 - DPL_L2_MGID_MIN)
extern u8 *g_l2_multicast_mac_arr[SHR_MAX_CHIPS];

/* Ranges of the other destinations. */
#define DPL_L2_DVP_MAX 127u
#define DPL_L2_NHP_MAX 4095u
#define DPL_L2_ECMP_MAX 63u
#define DPL_L2_VID_MAX 4095u
#define DPL_L2_FID_MAX 127u

/* Settings of the hardware init. */
#define DPL_L2_AGE_TIME_DEFAULT 300u
#define DPL_L2_LIMIT_DEFAULT 65535u
#define DPL_L2_CLK_MHZ_DEFAULT 250u
#define DPL_L2_TABLE_INIT_POLLS 5u
#define DPL_L2_TABLE_INIT_POLL_US 10000u

/* What only one chip type does; an empty slot gives -24. */
typedef struct reef_l2_special_t {
    i32 (*addr_get_by_index)(u32 chip_id, u32 index, l2_addr *addr);
    i32 (*port_move_pri_get)(u32 chip_id, l2_port_move_pri *pri);
    i32 (*port_move_pri_set)(u32 chip_id, l2_port_move_pri *pri);
    i32 (*learn_limit_get)(u32 chip_id, l2_learn_limit *limit);
    i32 (*learn_limit_set)(u32 chip_id, l2_learn_limit *limit);
    /* One message into a record: 0, or 1 for a message that is not an
     * address of this service and is skipped. */
    i32 (*msg_to_l2data)(u32 chip_id, const u8 *msg, l2_addr *addr);
    i32 (*mac_msg_parse)(u32 chip_id, const u8 *buf, u32 len, l2_addr *out, u32 *count);
} reef_l2_special_t;
extern reef_l2_special_t reef_l2_special[SHR_MAX_CHIPS];

/* Bring-up. */
i32 dpl_reef_l2_soft_init(u32 chip_id);
i32 dpl_reef_l2_soft_deinit(u32 chip_id);
i32 dpl_reef_l2_hw_init(u32 chip_id);
i32 dpl_reef_l2_hw_deinit(u32 chip_id);
i32 dpl_reef_l2_special_register(u32 chip_id);
i32 dpl_reef_l2_set_property(u32 chip_id);

/* The operations of the family: dpl_reef_l2_<name>; the member delete is
 * dpl_reef_l2_multicast_port_del. */
#define DPL_REEF_L2_DECLARE(name, params, args, ...) i32 dpl_reef_l2_##name params;
TIDE_L2_OPS(DPL_REEF_L2_DECLARE)
#undef DPL_REEF_L2_DECLARE
i32 dpl_reef_l2_multicast_port_del(u32 chip_id, u32 mgid, u64 port);

/* The record into the table's key and AD and back.  `no_dest_check` 1
 * accepts a record without a destination. */
i32 _l2_to_l2x(u32 chip_id, const l2_addr *addr, csl_l2_mac_key *key, csl_l2_mac_ad *ad, u32 no_dest_check);
i32 _l2x_to_l2(u32 chip_id, const csl_l2_mac_key *key, const csl_l2_mac_ad *ad, l2_addr *addr);
/* The checks of a record before an add. */
i32 _l2_addr_key_check(u32 chip_id, const l2_addr *addr);
i32 _l2_addr_check(u32 chip_id, const l2_addr *addr);

/* A field of an `arl` register by name, read or read-changed-written
 * under the module's register lock; a value beyond the field gives -4. */
i32 dpl_reef_l2_reg_field_get(u32 chip_id, u32 reg_id, u32 index, const char *field, u32 *value);
i32 dpl_reef_l2_reg_field_set(u32 chip_id, u32 reg_id, u32 index, const char *field, u32 value);

#ifdef __cplusplus
}

/* Holds the service's feature lock for a scope. */
class L2Lock {
public:
    L2Lock(u32 chip_id, const char *function, u32 line);
    ~L2Lock();
    L2Lock(const L2Lock &) = delete;
    L2Lock &operator=(const L2Lock &) = delete;
    i32 status() const { return rc_; }

private:
    u32 chip_;
    i32 rc_;
};
#define L2_LOCK(chip_id) L2Lock l2_lock_hold_((chip_id), __func__, __LINE__)
#endif

#endif /* TIDE_DPL_REEF_L2_H */
