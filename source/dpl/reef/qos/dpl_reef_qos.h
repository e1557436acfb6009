/*
 * The QoS service of the reef family: the family's frame, the per-chip
 * QoS configuration and support table that every QoS operation reads,
 * priority maps, remark, global switches, common maps, flush, to-CPU
 * enqueue, global redirect, capture, the queue manager's reads and checks,
 * and the policers (dpl_reef_qos_policer.cc).
 */
#ifndef TIDE_DPL_REEF_QOS_H
#define TIDE_DPL_REEF_QOS_H

#include "api/api_families.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Feature lock of the service. */
#define DPL_LOCK_QOS 1u

/* Limits and table sizes of a chip. */
typedef struct dpl_reef_qos_cfg {
    u32 tocpu_causeid_num;
    u32 causeid_num;
    u32 dp_num;
    u32 lane_num;
    u32 queue_num;
    u32 remark_num;
    u8 queue_offset_max_cpu;
    u8 queue_offset_max_port;
    u32 black_hole_dpid;
    u16 sport_policer_num;
    u16 dport_policer_num;
    u16 causeid_policer_num;
    u16 group_policer_num;
    u64 max_rate;
    u64 max_bucket;
    u64 max_sch_rate;
    u64 max_sch_burst;
    u32 discard_profile_num[6];
    u32 max_thr;
    i8 alpha_min;
    i8 alpha_max;
    /* From the chip configuration. */
    u32 sch_port_bp_thr_flag;
    u32 sch_shaper_cfg_method;
    u32 port_tail_min_thr;
    u32 port_tail_max_thr;
    u32 que_tail_min_thr;
    u32 que_tail_max_thr;
    u32 port_tail_alpha;
    u32 que_tail_alpha;
    u32 tail_thr_auto_change;
    u32 dp_tail_max_thr;
} dpl_reef_qos_cfg;

dpl_reef_qos_cfg *dpl_reef_g_qos_cfg_get(u32 chip_id);

/* Sections of the support table: row = section + type. */
enum dpl_qos_flag_section {
    DPL_QOS_FLAG_CTRL = 0,
    DPL_QOS_FLAG_COMMON_MAP = 5,
    DPL_QOS_FLAG_FLUSH = 11,
    DPL_QOS_FLAG_TOCPU = 15,
    DPL_QOS_FLAG_COUNTER = 19,
    DPL_QOS_FLAG_STATUS = 44,
    DPL_QOS_FLAG_CLEAR = 55,
    DPL_QOS_FLAG_DISCARD_PROFILE = 61,
    DPL_QOS_FLAG_DISCARD_CTRL = 67,
    DPL_QOS_FLAG_POLICER = 91,
    DPL_QOS_FLAG_BANDWIDTH_EN = 95,
    DPL_QOS_FLAG_BANDWIDTH_KEY = 103,
    DPL_QOS_FLAG_SCHED = 113,
    DPL_QOS_FLAG_CONGESTION = 118,
    DPL_QOS_FLAG_ZERO_CHECK = 120,
    DPL_QOS_FLAG_ROWS = 122
};
extern const u32 g_qos_chip_flag[DPL_QOS_FLAG_ROWS];

/* 1 when type `type` of the section starting at `base` (of `count` types)
 * exists on the chip's type. */
u32 dpl_reef_chip_flag_get(u32 chip_id, u32 base, u32 count, u32 type);

/* What only one chip type does; an empty slot gives -24. */
typedef struct reef_qos_special_t {
    i32 (*priority_map_set)(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg);
    i32 (*priority_map_get)(u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg);
    i32 (*hw_init)(u32 chip_id);
    i32 (*hw_deinit)(u32 chip_id);
    i32 (*sch_mod_stat_print)(u32 chip_id);
} reef_qos_special_t;
extern reef_qos_special_t reef_qos_special[SHR_MAX_CHIPS];

/* Bring-up. */
i32 dpl_reef_qos_soft_init(u32 chip_id);
i32 dpl_reef_qos_soft_deinit(u32 chip_id);
i32 dpl_reef_qos_hw_init(u32 chip_id);
i32 dpl_reef_qos_hw_deinit(u32 chip_id);
i32 dpl_reef_qos_special_register(u32 chip_id);
i32 dpl_reef_policer_soft_init(u32 chip_id);
i32 dpl_reef_policer_mem_free(u32 chip_id);

/* The operations of the family. */
#define DPL_REEF_QOS_DECLARE(name, params, args, ...) i32 dpl_reef_qos_##name params;
TIDE_QOS_OPS(DPL_REEF_QOS_DECLARE)
#undef DPL_REEF_QOS_DECLARE

/* The queue manager's port of a scheduler port. */
i32 dpl_reef_tm_port_to_qm_port(u32 chip_id, u32 tm_port, u32 *qm_port);

/* Queue numbering: the queue id of a port's queue offset, and back.  For
 * a CPU redirect (`to_cpu` 1) the CPU's 16 queues count as one port. */
i32 dpl_reef_queue_off_to_queue_id(u32 chip_id, u32 lport, u32 offset, u32 *queue_id);
i32 dpl_reef_queue_id_to_queue_off(u32 chip_id, u32 queue_id, u32 to_cpu, u32 *lport, u32 *offset);

/* The intl_pri-to-queue map of the queue manager, both ways. */
i32 dpl_reef_qos_intl_pri_to_cosq(u32 chip_id, u32 intl_pri, u32 *cosq);
i32 dpl_reef_qos_cosq_to_intl_pri(u32 chip_id, u32 cosq, u32 *intl_pri);

/* Rates and bursts as a base and exponent, `bas << exp`. */
void dpl_reef_qos_bas_exp_gen(u32 chip_id, u64 value, u32 *bas, u32 *exp);
/* Length compensation as 6-bit two's complement, and back. */
u32 dpl_reef_qos_origin_to_complement(u32 chip_id, i32 value, u32 max);
i32 dpl_reef_qos_complement_to_origin(u32 chip_id, u32 value, u32 max);
/* Rate in bits or packets per second into 16 kbit/s units, and a field
 * pair back into a rate; bursts in bytes into 1000-byte units. */
u64 dpl_reef_qos_rate_units(u64 rate, u32 rate_mode, u32 pps_len);
u64 dpl_reef_qos_units_rate(u32 bas, u32 exp, u32 rate_mode, u32 pps_len);

/* Flush: the bounded wait for an empty port, in rounds and microseconds. */
#define DPL_QOS_FLUSH_POLLS 500u
#define DPL_QOS_FLUSH_POLL_US 1000u

/* Packet length that stands for one packet in packet mode. */
#define DPL_QOS_PPS_LEN 2000u

#ifdef __cplusplus
}

#include <initializer_list>

// The service's feature lock for the scope of a function.
class QosLock {
public:
    QosLock(u32 chip_id, const char *function, u32 line);
    ~QosLock();
    QosLock(const QosLock &) = delete;
    QosLock &operator=(const QosLock &) = delete;
    i32 status() const { return rc_; }

private:
    u32 chip_;
    i32 rc_;
};
#define QOS_LOCK(chip_id)                              \
    QosLock qos_lock_hold_((chip_id), __func__, __LINE__); \
    if (qos_lock_hold_.status() != 0) {               \
        return qos_lock_hold_.status();               \
    }

// Sets the mask bit of a member of a generated record.
template <size_t N, typename W>
inline void dpl_qos_mask_set(W (&mask)[N], u32 member)
{
    mask[member / (8 * sizeof(W))] |= static_cast<W>(W{1} << (member % (8 * sizeof(W))));
}
template <size_t N, typename W>
inline void dpl_qos_mask_set(W (&mask)[N], std::initializer_list<u32> members)
{
    for (const u32 m : members) {
        dpl_qos_mask_set(mask, m);
    }
}
#endif

#endif /* TIDE_DPL_REEF_QOS_H */
