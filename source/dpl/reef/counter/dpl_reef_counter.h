/*
 * The counter service of the reef family: 64-bit accumulators over the
 * chip's narrow statistics counters, the thread that folds the hardware
 * into them, and the registration of other modules' counters (the port
 * counters are id 28).
 *
 * dpl_reef_counter.cc holds the operations and bring-up,
 * dpl_reef_counter_general.cc the table of counters and the per-counter
 * state, dpl_reef_counter_thread.cc the thread and its cycle times.
 */
#ifndef TIDE_DPL_REEF_COUNTER_H
#define TIDE_DPL_REEF_COUNTER_H

#include "api/api_families.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Feature lock of the service. */
#define DPL_LOCK_COUNTER 20u

/* Ids of the statistics tables (0 to 27), the port counters (28), and the
 * inner counters behind them (29: the upper part of causeid_stat). */
#define DPL_COUNTER_TAB_NUM 28u
#define DPL_COUNTER_PORT_ID 28u
#define DPL_COUNTER_OUTER_NUM 29u
#define DPL_COUNTER_INNER_ID 29u
#define DPL_COUNTER_SLOT_NUM 30u

/* Kinds: one value per entry, or a pair of packets and bytes. */
#define DPL_COUNTER_KIND_ONE 0u
#define DPL_COUNTER_KIND_PAIR 2u

/* Wait for the thread's end at deinit: 1 ms rounds, about 10 s. */
#define DPL_COUNTER_STOP_ROUND_US 1000u
#define DPL_COUNTER_STOP_ROUNDS 10000u
/* Default interval of a pass, ms. */
#define DPL_COUNTER_DEFAULT_MSEC 150000u
/* Bits added to the total of a pass for what is not a table. */
#define DPL_COUNTER_EXTRA_BITS_ATOLREEF 114688u
#define DPL_COUNTER_EXTRA_BITS_OTHER 393600u

/* One statistics table: its name (the property is "counter_enable_" and the
 * name), catalogue table, kind, whether each value is split into a high and
 * a low field, and the dictionary ids of the fields (the low ones 0 when
 * not split). */
typedef struct dpl_counter_baseinfo {
    const char *name;
    u32 tab_id;
    u32 kind;
    u32 split;
    u32 pkt_field;
    u32 pkt_low_field;
    u32 byt_field;
    u32 byt_low_field;
} dpl_counter_baseinfo;
extern const dpl_counter_baseinfo g_counter_baseinfo[DPL_COUNTER_TAB_NUM];

/* One accumulator: the running total, the last hardware reading, and the
 * total at the last read-and-clear. */
typedef struct dpl_counter_entry {
    u64 value;
    u64 last;
    u64 cleared;
} dpl_counter_entry;

/* The state of one counter id.  A kind-2 table has two cache entries per
 * table entry, packets first. */
typedef struct dpl_counter_stat {
    xsal_mutex_t mutex;
    dpl_counter_entry *cache;
    u32 *entry_bitmap;
    u16 byt_bits;
    u16 pkt_bits;
    u16 byt_low_bits;
    u16 pkt_low_bits;
    u64 cycle_time; /* us */
    u32 index_min;
    u32 index_max;
} dpl_counter_stat;
extern dpl_counter_stat *g_counter_stat[SHR_MAX_CHIPS];
extern u64 g_counter_port_cycle_time[SHR_MAX_CHIPS];

/* A registered function: the update of a pass, the allocation at the first
 * enable, the free at deinit.  `id` is the slot's counter id. */
typedef i32 (*dpl_counter_fn)(u32 chip_id, u32 id);

typedef struct dpl_counter_slot {
    dpl_counter_fn update;
    dpl_counter_fn malloc_fn;
    dpl_counter_fn free_fn;
    u32 enabled;
    u32 supported;
} dpl_counter_slot;

/* The thread of a chip.  `running` and `syncing` are read by the thread
 * without the mutex; every change of them is followed by setting the event. */
typedef struct dpl_counter_thread {
    xsal_thread_t thread;
    i64 thread_id; /* -1 when there is no thread */
    xsal_event_t event;
    xsal_mutex_t mutex;
    u32 interval; /* ms */
    u32 syncing;
    u32 running;
    dpl_counter_slot slot[DPL_COUNTER_SLOT_NUM];
} dpl_counter_thread;
extern dpl_counter_thread *g_counter_thread[SHR_MAX_CHIPS];

/* The chip's hooks. */
typedef struct reef_counter_special_t {
    i32 (*global_display)(u32 chip_id, u32 flags);
    void *reserved;
    i32 (*enable_property_get)(u32 chip_id, u32 id, u32 *enable);
    /* The entry's packets and bytes (kind 0: the one value in `pkt`). */
    i32 (*get_hardware_value)(u32 chip_id, u32 id, u32 index, u64 *pkt, u64 *bytes);
    i32 (*get_outer_id)(u32 chip_id, u32 inner_id, u32 *outer_id);
    i32 (*get_innerid_num)(u32 chip_id, u32 *num);
    i32 (*inner_cycle_time_set)(u32 chip_id);
    i32 (*inner_cycle_time_get)(u32 chip_id, u32 inner_id, u64 *cycle);
} reef_counter_special_t;
extern reef_counter_special_t reef_counter_special[SHR_MAX_CHIPS];

/* Bring-up. */
i32 dpl_reef_counter_soft_init(u32 chip_id);
i32 dpl_reef_counter_soft_deinit(u32 chip_id);
i32 dpl_reef_counter_hw_init(u32 chip_id);
i32 dpl_reef_counter_hw_deinit(u32 chip_id);
i32 dpl_reef_counter_general_init(u32 chip_id);
void dpl_reef_counter_general_deinit(u32 chip_id);
i32 dpl_reef_counter_thread_init(u32 chip_id);
i32 dpl_reef_counter_thread_deinit(u32 chip_id);
i32 dpl_reef_counter_thread_start(u32 chip_id);

/* Registration by other modules: `id` 0 to 28.  A taken slot stays. */
i32 dpl_reef_counter_update_register(u32 chip_id, u32 id, dpl_counter_fn fn);
i32 dpl_reef_counter_malloc_register(u32 chip_id, u32 id, dpl_counter_fn fn);
i32 dpl_reef_counter_free_register(u32 chip_id, u32 id, dpl_counter_fn fn);
i32 dpl_reef_counter_update_unregister(u32 chip_id, u32 id);
i32 dpl_reef_counter_malloc_unregister(u32 chip_id, u32 id);
i32 dpl_reef_counter_free_unregister(u32 chip_id, u32 id);

/* The accumulate step: one wrap at most between two readings of a counter
 * of `bits` bits. */
void dpl_reef_counter_update_stat_entry(u32 chip_id, u32 bits, u64 hw, dpl_counter_entry *entry);
/* Cycle times of every id from the interval; 0 or a status. */
i32 dpl_reef_counter_cycle_time_set(u32 chip_id);
i32 dpl_reef_counter_cycle_time_get(u32 chip_id, u32 id, u64 *cycle);
i32 dpl_reef_counter_set_interval(u32 chip_id, u32 interval);
i32 dpl_reef_counter_set_sync_enable(u32 chip_id, u32 sync);
/* The counter's mutex. */
i32 dpl_reef_counter_lock(u32 chip_id, u32 id);
i32 dpl_reef_counter_unlock(u32 chip_id, u32 id);
/* The cache and bitmap of a table id, allocated at its first enable. */
i32 dpl_reef_counter_stat_malloc(u32 chip_id, u32 id);
i32 dpl_reef_counter_stat_free(u32 chip_id, u32 id);
/* Reads entries first..last of `id` (into the cache of table `tab`) and
 * accumulates them; the update of a pass, under the counter's mutex. */
i32 dpl_reef_counter_update_range(u32 chip_id, u32 id, u32 first, u32 last);
/* 1 while the thread exists. */
u32 dpl_reef_counter_thread_alive(u32 chip_id);

/* Operations of the family. */
i32 dpl_reef_counter_map_display(u32 chip_id);
i32 dpl_reef_counter_enable_set(u32 chip_id, u32 id, u32 enable);
i32 dpl_reef_counter_enable_get(u32 chip_id, u32 id, u32 *enable);
i32 dpl_reef_counter_stats_get(u32 chip_id, counter_key *key, counter_stats *stats);
i32 dpl_reef_counter_stats_clear(u32 chip_id, counter_key *key);
i32 dpl_reef_counter_thread_set(u32 chip_id, thread_cfg *cfg);
i32 dpl_reef_counter_thread_get(u32 chip_id, thread_cfg *cfg);
i32 dpl_reef_counter_global_display(u32 chip_id, u32 flags);
i32 dpl_reef_counter_size_get(u32 chip_id, u32 id, u32 *entries);
i32 dpl_reef_counter_entry_enable_set(u32 chip_id, u32 id, u32 index, u8 enable);
i32 dpl_reef_counter_entry_enable_get(u32 chip_id, u32 id, u32 index, u8 *enable);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_COUNTER_H */
