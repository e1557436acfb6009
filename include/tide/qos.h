/*
 * tide: quality of service.
 *
 * The mapping of packet priorities to the chip's internal priority and
 * colour, the remark of priorities at egress, the queue of each internal
 * priority, the queues of frames sent to the CPU, global redirect, flush,
 * packet capture, policers (token buckets that colour packets, with an
 * action per colour) and the checks of the queue manager.
 *
 * Every call takes the chip id first and returns a status (0, or a
 * negative code whose text shr_errmsg gives).  The family has 62
 * operations; those of the scheduler (bandwidth, sched, topo) and of the
 * discard profiles take records of their own, declared here and answered
 * -24 until those services land.
 */
#ifndef TIDE_QOS_H
#define TIDE_QOS_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* ---- priority maps ---------------------------------------------------------- */

/* Types of qos_api_priority_map_set: the key the map reads. */
enum qos_map_type {
    QOS_MAP_OPRI = 0,      /* outer tag priority */
    QOS_MAP_OPRI_OCFI = 1, /* outer tag priority and CFI */
    QOS_MAP_IPRI = 2,      /* inner tag priority */
    QOS_MAP_IPRI_ICFI = 3, /* inner tag priority and CFI */
    QOS_MAP_DSCP = 4       /* DSCP */
};

#define QOS_MAP_ID_MAX 7u

/* One entry of a priority map: key `dscp`, `pri`, `cfi` (by type), value
 * `color` (0 green, 1 yellow, 2 red) and `intl_pri` (0 to 7). */
typedef struct qos_map_cfg {
    uint8_t dscp;
    uint8_t pri;
    uint8_t cfi;
    uint32_t color;
    uint32_t intl_pri;
} qos_map_cfg;

/* ---- remark ----------------------------------------------------------------- */

/* Types of qos_api_remark_set: the field of the frame it remarks. */
enum qos_remark_type {
    QOS_REMARK_OCFI = 0,
    QOS_REMARK_ICFI = 1,
    QOS_REMARK_DSCP = 2,
    QOS_REMARK_TC = 3,
    QOS_REMARK_IPRI = 4, /* ipri-exp2 */
    QOS_REMARK_OPRI = 5  /* opri-exp1 */
};

/* Remark of (intl_pri, color) of a remark id: the value of the type's
 * field. */
typedef struct qos_remark_cfg {
    uint32_t intl_pri;
    uint32_t color;
    uint16_t tc;
    uint16_t dscp;
    uint16_t pri;
    uint16_t cfi;
} qos_remark_cfg;

/* ---- global switches (qos_api_ctrl_set) -------------------------------------- */

enum qos_ctrl_type {
    QOS_CTRL_TUNNEL_USR_PRI_CFI = 0, /* chip types 1 and 2 */
    QOS_CTRL_TUNNEL_USR_TC_DSCP = 1, /* chip types 1 and 2 */
    QOS_CTRL_PHB_PRI = 2,            /* 0 acl-high, 1 remark-high */
    QOS_CTRL_BA_TAG = 3,             /* 0 use-original, 1 use-remarkd */
    QOS_CTRL_FBM_SHARE_RAM = 4       /* read only */
};

/* ---- common maps -------------------------------------------------------------- */

enum qos_common_map_type {
    QOS_COMMON_MAP_CAUSEID_TO_GROUP = 0, /* chip types 1 and 2 */
    QOS_COMMON_MAP_INTL_PRI_TO_COSQ = 1,
    QOS_COMMON_MAP_DPID_TO_DP_GROUP = 2 /* chip types 1 and 2 */
};

typedef struct qos_common_map_cfg {
    uint32_t type;
    uint32_t causeid;
    uint32_t dpid;
    uint8_t intl_pri;
    uint32_t enable;
    uint32_t causeid_group; /* 0 to 3 */
    uint32_t cosq;          /* 0 to 7 */
    uint32_t dp_group;      /* 0 or 1 */
} qos_common_map_cfg;

/* ---- flush -------------------------------------------------------------------- */

enum qos_flush_type {
    QOS_FLUSH_DP = 0,         /* chip types 1 and 2 */
    QOS_FLUSH_PORT = 1,       /* close, wait for empty, open */
    QOS_FLUSH_PORT_CLOSE = 2, /* close only */
    QOS_FLUSH_PORT_OPEN = 3   /* open only */
};

typedef struct qos_flush_cfg {
    uint32_t type;
    uint32_t lport;
    uint32_t dpid;
} qos_flush_cfg;

/* ---- to-CPU enqueue ----------------------------------------------------------- */

enum qos_tocpu_type {
    QOS_TOCPU_SNOOPING_DROP = 0,
    QOS_TOCPU_CPU_QUEUE_ID = 1,
    QOS_TOCPU_CPU_QUEUE_EN = 2,
    QOS_TOCPU_TIME_EN = 3
};

typedef struct qos_tocpu_key {
    uint32_t causeid;
} qos_tocpu_key;

typedef struct qos_tocpu_cfg {
    uint32_t snooping_drop;
    uint32_t cpu_queue_en;
    uint32_t cpu_queue_id; /* offset among the CPU's queues, 0 to 15 */
    uint32_t time_en;
} qos_tocpu_cfg;

/* ---- global redirect ---------------------------------------------------------- */

#define QOS_REDIR_TO_CPU 0u
#define QOS_REDIR_TO_ETH 1u

typedef struct qos_redirect_cfg {
    uint32_t redir_flag; /* QOS_REDIR_TO_CPU or QOS_REDIR_TO_ETH */
    uint32_t lport;
    uint32_t queue_offset;
    uint32_t drop_pkt_en;
} qos_redirect_cfg;

/* ---- capture ------------------------------------------------------------------ */

#define QOS_CAPTURE_ON 0x1u
#define QOS_CAPTURE_EX_LEN_1588 0x2u /* chip types 1 and 2 */

typedef struct qos_capture_cfg {
    uint32_t flags;
    uint32_t lport;
    uint32_t cap_num; /* 0 to 15 */
    uint32_t queue_offset;
} qos_capture_cfg;

typedef struct qos_capture_info {
    uint32_t flags;
    uint32_t cap_pid;
    uint32_t cap_num;
    uint32_t cap_qid;
    uint32_t cap_cnt;
} qos_capture_info;

/* ---- statistics, status and checks --------------------------------------------- */

typedef struct qos_counter_key {
    uint32_t lport;
    uint32_t dpid;
    uint32_t queue_id;
    uint32_t color;
} qos_counter_key;

#define QOS_COUNTER_VALID_PKT 0x1u
#define QOS_COUNTER_VALID_CELL 0x4u
#define QOS_COUNTER_VALID_BYTE 0x8u

typedef struct qos_counter_info {
    uint32_t valid_mask;
    uint64_t pkt_num;
    uint32_t cell_num;
    uint64_t byte_num;
} qos_counter_info;

typedef struct qos_status_key {
    uint32_t lport;
    uint32_t queue_id;
    uint32_t dpid;
} qos_status_key;

typedef struct qos_clear_key {
    uint32_t lport;
    uint32_t queue_id;
    uint32_t color;
} qos_clear_key;

/* Key of the congestion and zero-bandwidth checks: type 0 the queue (or
 * its group of eight) alone, 1 every level above it too. */
typedef struct qos_check_key {
    uint32_t type;
    uint32_t qid;
} qos_check_key;

typedef struct qos_check_result {
    uint32_t checked[8];
    uint32_t congested[8];
    uint32_t queue_id[8];
} qos_check_result;

/* ---- policers ----------------------------------------------------------------- */

enum qos_policer_type {
    QOS_POLICER_SPORT = 0,         /* ingress port */
    QOS_POLICER_DPORT = 1,         /* egress port */
    QOS_POLICER_TOCPU_CAUSEID = 2, /* frames to the CPU by cause id */
    QOS_POLICER_SPORT_TOCPU_GROUP = 3
};

enum qos_policer_mode { QOS_CAR_RFC2697 = 0, QOS_CAR_RFC2698 = 1, QOS_CAR_RFC4115 = 2, QOS_CAR_MEF10P2 = 3 };

enum qos_policer_act {
    QOS_POLICER_ACT_DROP = 0,
    QOS_POLICER_ACT_PASS = 1,
    QOS_POLICER_ACT_NEW_COLOR = 2,
    QOS_POLICER_ACT_NEW_INTL_PRI = 3,
    QOS_POLICER_ACT_NEW_INTL_PRI_COLOR = 4
};

enum qos_color { QOS_COLOR_GREEN = 0, QOS_COLOR_YELLOW = 1, QOS_COLOR_RED = 2 };

/* Bits of qos_policer_cfg.flag: the fields that count. */
#define QOS_POLICER_F_MODE 0x1u
#define QOS_POLICER_F_CIR 0x2u
#define QOS_POLICER_F_XIR 0x4u
#define QOS_POLICER_F_CBS 0x8u
#define QOS_POLICER_F_XBS 0x10u
#define QOS_POLICER_F_LEN_ADJ 0x20u
#define QOS_POLICER_F_COLOR_MODE 0x40u

/* Rates in bits (rate_mode 0) or packets (1) per second, bursts in bytes.
 * The single-bucket types use only xir, xbs, len_adj and rate_mode. */
typedef struct qos_policer_cfg {
    uint32_t flag;
    uint32_t mode;
    uint64_t cir;
    uint64_t xir;
    uint64_t cbs;
    uint64_t xbs;
    int32_t len_adj; /* -32 to 31 */
    uint8_t color_mode;
    uint8_t rate_mode;
} qos_policer_cfg;

typedef struct qos_policer_action {
    uint32_t color; /* the colour this action applies to */
    uint32_t action;
    uint32_t remark_color;
    uint8_t remark_pri;
} qos_policer_action;

/* The actions of a profile, green, yellow and red in each array. */
typedef struct qos_policer_actions {
    uint32_t action[3];
    uint32_t remark_color[3];
    uint8_t remark_pri[3];
} qos_policer_actions;

typedef struct qos_bind_info {
    uint32_t type;
    uint32_t causeid;
    uint32_t causeid_group;
    uint32_t lport;
    uint32_t policer_id;
} qos_bind_info;

/* ---- records of the scheduler and the discard profiles -------------------------- */

typedef struct qos_bandwidth_en_key qos_bandwidth_en_key;
typedef struct qos_bandwidth_key qos_bandwidth_key;
typedef struct qos_bandwidth_cfg qos_bandwidth_cfg;
typedef struct qos_sch_key qos_sch_key;
typedef struct qos_sch_cfg qos_sch_cfg;
typedef struct qos_sch_profile_cfg qos_sch_profile_cfg;
typedef struct qos_topo_cfg qos_topo_cfg;
typedef struct qos_discard_profile_key qos_discard_profile_key;
typedef struct qos_discard_profile_cfg qos_discard_profile_cfg;
typedef struct qos_discard_bind_key qos_discard_bind_key;
typedef struct qos_discard_cfg qos_discard_cfg;
typedef struct qos_discard_ctrl qos_discard_ctrl;

/* ---- the calls, in the order of the family's slots ------------------------------ */

TIDE_API int32_t qos_api_priority_map_set(uint32_t chip_id, uint32_t type, uint32_t map_id, qos_map_cfg *cfg);
TIDE_API int32_t qos_api_priority_map_get(uint32_t chip_id, uint32_t type, uint32_t map_id, qos_map_cfg *cfg);
TIDE_API int32_t qos_api_remark_set(uint32_t chip_id, uint32_t type, uint32_t remark_id, qos_remark_cfg *cfg);
TIDE_API int32_t qos_api_remark_get(uint32_t chip_id, uint32_t type, uint32_t remark_id, qos_remark_cfg *cfg);
TIDE_API int32_t qos_api_ctrl_set(uint32_t chip_id, uint32_t type, uint32_t value);
TIDE_API int32_t qos_api_ctrl_get(uint32_t chip_id, uint32_t type, uint32_t *value);
TIDE_API int32_t qos_api_policer_create(uint32_t chip_id, uint32_t with_id, uint32_t type, uint32_t *id);
TIDE_API int32_t qos_api_policer_destroy(uint32_t chip_id, uint32_t type, uint32_t id);
TIDE_API int32_t qos_api_policer_created_get(uint32_t chip_id, uint32_t type, uint32_t id, uint32_t *created);
TIDE_API int32_t qos_api_policer_set(uint32_t chip_id, uint32_t type, uint32_t id, qos_policer_cfg *cfg);
TIDE_API int32_t qos_api_policer_get(uint32_t chip_id, uint32_t type, uint32_t id, qos_policer_cfg *cfg);
TIDE_API int32_t qos_api_policer_action_set(uint32_t chip_id, uint32_t type, uint32_t id, qos_policer_action *act);
TIDE_API int32_t qos_api_policer_action_get(uint32_t chip_id, uint32_t type, uint32_t id,
                                            qos_policer_actions *acts);
TIDE_API int32_t qos_api_policer_bind(uint32_t chip_id, qos_bind_info *info);
TIDE_API int32_t qos_api_policer_unbind(uint32_t chip_id, qos_bind_info *info);
TIDE_API int32_t qos_api_policer_bind_get(uint32_t chip_id, qos_bind_info *info);
TIDE_API int32_t qos_api_common_map_ctrl_set(uint32_t chip_id, qos_common_map_cfg *cfg);
TIDE_API int32_t qos_api_common_map_ctrl_get(uint32_t chip_id, qos_common_map_cfg *cfg);
TIDE_API int32_t qos_api_bandwidth_enable_set(uint32_t chip_id, qos_bandwidth_en_key *key, uint32_t enable);
TIDE_API int32_t qos_api_bandwidth_enable_get(uint32_t chip_id, qos_bandwidth_en_key *key, uint32_t *enable);
TIDE_API int32_t qos_api_bandwidth_rate_mode_set(uint32_t chip_id, qos_bandwidth_key *key, uint8_t mode);
TIDE_API int32_t qos_api_bandwidth_set(uint32_t chip_id, qos_bandwidth_cfg *cfg);
TIDE_API int32_t qos_api_bandwidth_get(uint32_t chip_id, qos_bandwidth_cfg *cfg);
TIDE_API int32_t qos_api_bandwidth_len_adj_set(uint32_t chip_id, qos_bandwidth_key *key);
TIDE_API int32_t qos_api_bandwidth_len_adj_get(uint32_t chip_id, qos_bandwidth_key *key);
TIDE_API int32_t qos_api_sched_set(uint32_t chip_id, qos_sch_key *key, qos_sch_cfg *cfg);
TIDE_API int32_t qos_api_sched_get(uint32_t chip_id, qos_sch_key *key, qos_sch_cfg *cfg);
TIDE_API int32_t qos_api_sched_set_by_queue_profile(uint32_t chip_id, uint32_t profile_id, qos_sch_profile_cfg *cfg);
TIDE_API int32_t qos_api_sched_get_by_queue_profile(uint32_t chip_id, uint32_t profile_id, qos_sch_profile_cfg *cfg);
TIDE_API int32_t qos_api_sched_bind_queue_profile(uint32_t chip_id, uint32_t queue_group_id, uint32_t profile_id);
TIDE_API int32_t qos_api_sched_queue_profile_bind_info_get(uint32_t chip_id, uint32_t queue_group_id,
                                                           uint32_t *profile_id);
TIDE_API int32_t qos_api_topo_add(uint32_t chip_id, qos_topo_cfg *cfg);
TIDE_API int32_t qos_api_topo_del(uint32_t chip_id, qos_topo_cfg *cfg);
TIDE_API int32_t qos_api_topo_get(uint32_t chip_id, qos_topo_cfg *cfg);
TIDE_API int32_t qos_api_flush_set(uint32_t chip_id, qos_flush_cfg *cfg);
TIDE_API int32_t qos_api_tocpu_enqueue_set(uint32_t chip_id, uint32_t type, qos_tocpu_key *key, qos_tocpu_cfg *cfg);
TIDE_API int32_t qos_api_tocpu_enqueue_get(uint32_t chip_id, qos_tocpu_key *key, qos_tocpu_cfg *cfg);
TIDE_API int32_t qos_api_redirect_glb_set(uint32_t chip_id, qos_redirect_cfg *cfg);
TIDE_API int32_t qos_api_redirect_glb_get(uint32_t chip_id, qos_redirect_cfg *cfg);
TIDE_API int32_t qos_api_redirect_cause_enable_set(uint32_t chip_id, uint32_t causeid, uint32_t is_enable);
TIDE_API int32_t qos_api_redirect_cause_enable_get(uint32_t chip_id, uint32_t causeid, uint32_t *is_enable);
TIDE_API int32_t qos_api_capture_set(uint32_t chip_id, qos_capture_cfg *cfg);
TIDE_API int32_t qos_api_capture_status_get(uint32_t chip_id, qos_capture_info *info);
TIDE_API int32_t qos_api_capture_causeid_set(uint32_t chip_id, uint32_t causeid_index, uint32_t causeid);
TIDE_API int32_t qos_api_capture_causeid_get(uint32_t chip_id, uint32_t causeid_index, uint32_t *causeid);
TIDE_API int32_t qos_api_discard_profile_create(uint32_t chip_id, uint32_t with_id, uint32_t type, uint32_t *id);
TIDE_API int32_t qos_api_discard_profile_destroy(uint32_t chip_id, uint32_t type, uint32_t id);
TIDE_API int32_t qos_api_discard_profile_created_get(uint32_t chip_id, uint32_t type, uint32_t id,
                                                     uint32_t *created);
TIDE_API int32_t qos_api_discard_profile_set(uint32_t chip_id, qos_discard_profile_key *key,
                                             qos_discard_profile_cfg *cfg);
TIDE_API int32_t qos_api_discard_profile_get(uint32_t chip_id, qos_discard_profile_key *key,
                                             qos_discard_profile_cfg *cfg);
TIDE_API int32_t qos_api_discard_profile_bind(uint32_t chip_id, qos_discard_bind_key *key, uint32_t type,
                                              uint32_t id);
TIDE_API int32_t qos_api_discard_profile_unbind(uint32_t chip_id, qos_discard_bind_key *key, uint32_t type);
TIDE_API int32_t qos_api_discard_profile_bind_get(uint32_t chip_id, qos_discard_bind_key *key, uint32_t type,
                                                  uint32_t *id);
TIDE_API int32_t qos_api_discard_set(uint32_t chip_id, qos_discard_cfg *cfg);
TIDE_API int32_t qos_api_discard_get(uint32_t chip_id, qos_discard_cfg *cfg);
TIDE_API int32_t qos_api_discard_ctrl_set(uint32_t chip_id, qos_discard_ctrl *ctrl);
TIDE_API int32_t qos_api_discard_ctrl_get(uint32_t chip_id, qos_discard_ctrl *ctrl);
TIDE_API int32_t qos_api_counter_info_get(uint32_t chip_id, uint32_t type, qos_counter_key *key,
                                          qos_counter_info *info);
TIDE_API int32_t qos_api_status_info_get(uint32_t chip_id, uint32_t type, qos_status_key *key, uint32_t *status);
TIDE_API int32_t qos_api_counter_status_clear(uint32_t chip_id, uint32_t type, qos_clear_key *key);
TIDE_API int32_t qos_api_que_congestion_check(uint32_t chip_id, qos_check_key *key, qos_check_result *result);
TIDE_API int32_t qos_api_que_bandwidth_cfg_zero_check(uint32_t chip_id, qos_check_key *key, uint32_t *zero);

TIDE_END_DECLS

#endif /* TIDE_QOS_H */
