/*
 * tide: counters.
 *
 * The chip's statistics tables hold narrow counters (36-bit packet and
 * 44-bit byte counts) that wrap.  A thread per chip, "tdl_counter<chip>",
 * walks the enabled tables and folds every reading into a 64-bit
 * accumulator; a read through counter_api_stats_get reads its one entry
 * fresh from the chip before it answers, so it is current between passes.
 *
 * Every call takes the chip id first and returns a status (0, or a
 * negative code whose text shr_errmsg gives).
 */
#ifndef TIDE_COUNTER_H
#define TIDE_COUNTER_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* Counter ids: 0 to 27 the statistics tables, 28 the port counters. */
enum counter_id {
    COUNTER_PA_STAT = 0,
    COUNTER_MGID_STAT = 1,
    COUNTER_IPORT_STAT = 2,
    COUNTER_OPORT_STAT = 3,
    COUNTER_ITUNNEL_STAT = 4,
    COUNTER_OTUNNEL_STAT = 5,
    COUNTER_VLAN_ACL_STAT = 6,
    COUNTER_CAUSEID_STAT = 7,
    COUNTER_TM_QUE_FWD_STAT = 8,
    COUNTER_TM_QUE_DROP_STAT = 9,
    COUNTER_ICAR_ACL_CAR_FWD_STAT = 10,
    COUNTER_ICAR_ACL_CAR_DROP_STAT = 11,
    COUNTER_ICAR_PORT_CAR_FWD_STAT = 12,
    COUNTER_ICAR_PORT_CAR_DROP_STAT = 13,
    COUNTER_ICAR_VLAN_SUPPRESSION_CAR_FWD_STAT = 14,
    COUNTER_ICAR_VLAN_SUPPRESSION_CAR_DROP_STAT = 15,
    COUNTER_ICAR_PORT_SUPPRESSION_CAR_FWD_STAT = 16,
    COUNTER_ICAR_PORT_SUPPRESSION_CAR_DROP_STAT = 17,
    COUNTER_ECAR_PORT_CAR_FWD_STAT = 18,
    COUNTER_ECAR_PORT_CAR_DROP_STAT = 19,
    COUNTER_ECAR_ACL_CAR_FWD_STAT = 20,
    COUNTER_ECAR_ACL_CAR_DROP_STAT = 21,
    COUNTER_ECAR_CPACL_CAR_FWD_STAT = 22,
    COUNTER_ECAR_CPACL_CAR_DROP_STAT = 23,
    COUNTER_ECAR_CAUSE_ID_CAR_FWD_STAT = 24,
    COUNTER_ECAR_CAUSE_ID_CAR_DROP_STAT = 25,
    COUNTER_ECAR_SPORT_PTYPE_CAR_FWD_STAT = 26,
    COUNTER_ECAR_SPORT_PTYPE_CAR_DROP_STAT = 27,
    COUNTER_PORT_STAT = 28
};

/* Tables with a value read through counter_api_stats_get: 0 to 27. */
#define COUNTER_FWD_DROP_MAX 27u
/* Ids of counter_api_enable_set: 0 to 28. */
#define COUNTER_ID_MAX 28u
/* The thread's interval in milliseconds: 0 stops it, others are clamped. */
#define COUNTER_INTERVAL_MIN 1000u
#define COUNTER_INTERVAL_MAX 300000u

/* Which entry: a counter id, an index of its table, and with clr_flag 1 the
 * read also sets the counter's base, so that the next read shows only what
 * came after it. */
typedef struct counter_key {
    uint32_t counter_id;
    uint32_t index;
    uint32_t clr_flag;
} counter_key;

/* Packets, and bytes for a counter of both. */
typedef struct counter_stats {
    uint64_t pkt;
    uint64_t bytes;
} counter_stats;

/* The thread: the interval of a whole pass in milliseconds, and sync 1 to
 * run passes (0 lets the thread sleep). */
typedef struct thread_cfg {
    uint32_t interval;
    uint32_t sync;
} thread_cfg;

TIDE_API int32_t counter_api_map_display(uint32_t chip_id);
TIDE_API int32_t counter_api_enable_set(uint32_t chip_id, uint32_t id, uint32_t enable);
TIDE_API int32_t counter_api_enable_get(uint32_t chip_id, uint32_t id, uint32_t *enable);
TIDE_API int32_t counter_api_stats_get(uint32_t chip_id, counter_key *key, counter_stats *stats);
TIDE_API int32_t counter_api_stats_clear(uint32_t chip_id, counter_key *key);
TIDE_API int32_t counter_api_thread_set(uint32_t chip_id, thread_cfg *cfg);
TIDE_API int32_t counter_api_thread_get(uint32_t chip_id, thread_cfg *cfg);
/* The chip's global statistics registers; `flags` bit 0 shows only the
 * non-zero ones, bit 1 clears them after the display. */
TIDE_API int32_t counter_api_global_display(uint32_t chip_id, uint32_t flags);
TIDE_API int32_t counter_api_size_get(uint32_t chip_id, uint32_t id, uint32_t *entries);
TIDE_API int32_t counter_api_entry_enable_set(uint32_t chip_id, uint32_t id, uint32_t index, uint8_t enable);
TIDE_API int32_t counter_api_entry_enable_get(uint32_t chip_id, uint32_t id, uint32_t index, uint8_t *enable);
/* Declared slots that the reef family leaves empty: -24. */
TIDE_API int32_t counter_api_control_set(uint32_t chip_id, uint32_t key, uint32_t value);
TIDE_API int32_t counter_api_control_get(uint32_t chip_id, uint32_t key, uint32_t *value);

TIDE_END_DECLS

#endif /* TIDE_COUNTER_H */
