/*
 * The interrupt engine of the reef family: the operations of the
 * interrupt family, the actions on one type or many (enable, disable,
 * clear, read), the parameter check, the thread that waits on the chip's
 * line, and the module's bring-up.  What the tree of a chip looks like is
 * the chip's (dpl_atolreef_interrupt_cm); this layer knows modules, subids
 * and types.
 */
#ifndef TIDE_DPL_REEF_INTERRUPT_H
#define TIDE_DPL_REEF_INTERRUPT_H

#include "api/api_families.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_intr_tables.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Feature lock of the engine: the callback rows and the register work of
 * the API callers. */
#define DPL_LOCK_INTERRUPT 16u

/* Reads of action_get. */
#define DPL_INTR_STATUS 0u
#define DPL_INTR_MASK 1u

/* The thread of a chip.  `run` and `thread_id` are the stop protocol
 * between the thread and its destroyer; they are read and written
 * atomically. */
typedef struct dpl_intr_thread {
    i64 thread_id; /* -1 when there is no thread */
    u32 run;       /* 1 while the thread is to go on */
    u32 created;   /* 1 after dpl_reef_interrupt_thread_create */
    u32 enabled;   /* 1 if the property allowed a thread */
    xsal_thread_t thread;
} dpl_intr_thread;
extern dpl_intr_thread g_intr_thread[SHR_MAX_CHIPS];

/* The thread's wait for its end: rounds of a delay. */
#define DPL_INTR_THREAD_STOP_ROUNDS 10000u
#define DPL_INTR_THREAD_STOP_ROUND_US 1000u

extern const reef_interrupt_dispatch_t reef_interrupt_dispatch;

/* The module table of a chip, or NULL for a chip without interrupt tables
 * (the kelpreef chips). */
const intr_module_info *dpl_reef_interrupt_module_info(u32 chip_id);

/* 0, or -4 with a line naming the first bad number: the chip type, the
 * module, a subid (unless all), a type (unless all; with all subids it must
 * be in range of each). */
i32 dpl_reef_interrupt_check_para(u32 chip_id, intr_module module, intr_type type);
/* INTR_DISABLE, INTR_ENABLE or INTR_CLEAR on a type, all types of a subid
 * (INTR_ID_ALL), all subids (INTR_SUBID_ALL), one instance or all
 * (INTR_ADDR_ALL).  0 and nothing done on a chip without tables. */
i32 dpl_reef_interrupt_action_set(u32 chip_id, u32 module_id, u32 subid, u32 intr_id, u32 addr_idx, u32 action);
/* The type's status (DPL_INTR_STATUS) or mask (DPL_INTR_MASK) bits, or
 * the whole register with INTR_ID_ALL. */
i32 dpl_reef_interrupt_action_get(u32 chip_id, intr_module module, intr_type type, u32 kind, u32 *value);

/* The operations of the family, in slot order. */
i32 dpl_reef_interrupt_support_module_dump(u32 chip_id);
i32 dpl_reef_interrupt_module_status_dump(u32 chip_id, intr_module module, intr_type type);
i32 dpl_reef_interrupt_clear_all(u32 chip_id);
i32 dpl_reef_interrupt_clear(u32 chip_id, intr_module module, intr_type type);
i32 dpl_reef_interrupt_enable_set(u32 chip_id, intr_module module, intr_type type, u32 enable);
i32 dpl_reef_interrupt_mask_get(u32 chip_id, intr_module module, intr_type type, u32 *mask);
i32 dpl_reef_interrupt_status_get(u32 chip_id, intr_module module, intr_type type, u32 *status);
i32 dpl_reef_interrupt_subid_types_get(u32 chip_id, u32 module_id, u32 *count);
i32 dpl_reef_interrupt_onesubid_types_get(u32 chip_id, u32 module_id, u32 subid, u32 *count);
i32 dpl_reef_interrupt_base_info_get(u32 chip_id, u32 module_id);
i32 dpl_reef_interrupt_debug_get(u32 chip_id, intr_module module, intr_type type, intr_debug *debug);
i32 dpl_reef_interrupt_debug_info_get(u32 chip_id, intr_module module, intr_type type, intr_debug_info *info);
i32 dpl_reef_interrupt_callback_register(u32 chip_id, intr_module module, intr_type type, intr_callback callback);
i32 dpl_reef_interrupt_callback_unregister(u32 chip_id, intr_module module, intr_type type);
i32 dpl_reef_interrupt_stats_get(u32 chip_id, intr_module module, intr_type type, u32 *count);
i32 dpl_reef_interrupt_stats_clear(u32 chip_id, intr_module module, intr_type type);
i32 dpl_reef_interrupt_ecc_error_cnt_get(u32 chip_id, intr_ecc_cnt_para para, u32 *cnt);
i32 dpl_reef_interrupt_ecc_types_get(u32 chip_id, u32 module_id, u32 *count);
i32 dpl_reef_interrupt_ecc_info_get(u32 chip_id, intr_module module, intr_type type, intr_ecc_info *info);
i32 dpl_reef_interrupt_ecc_lpm_se_get(u32 chip_id, u32 table_type, u32 *param, u32 *tbl_num);
i32 dpl_reef_interrupt_ecc_default_action_set(u32 chip_id, u32 action);
i32 dpl_reef_interrupt_default_action_get(u32 chip_id, u32 *action);
i32 dpl_reef_interrupt_lport_to_reg_index(u32 chip_id, u32 lport, u32 kind, u8 *index);
i32 dpl_reef_interrupt_reg_index_to_lport(u32 chip_id, u8 index, u32 kind, u32 *lport);

/* The thread: made when the property `init_create_intr_thread` (default
 * 1) allows and the chip has a line of its own (not on kelpreef2). */
i32 dpl_reef_interrupt_thread_create(u32 chip_id);
/* Stops the thread: it leaves its wait, ends its walk before the next bit
 * it would serve, and is gone within DPL_INTR_THREAD_STOP_ROUNDS rounds. */
i32 dpl_reef_interrupt_thread_destroy(u32 chip_id);
/* 1 when a walk is to stop at once: the thread is there and is ending. */
i32 dpl_reef_interrupt_thread_status_get(u32 chip_id);

/* Bring-up of the module. */
i32 dpl_reef_interrupt_soft_init(u32 chip_id);
i32 dpl_reef_interrupt_soft_deinit(u32 chip_id);
i32 dpl_reef_interrupt_hw_init(u32 chip_id);
i32 dpl_reef_interrupt_hw_deinit(u32 chip_id);
/* The debug shell's raise: checks the chip id (-4). */
i32 dpl_reef_interrupt_raise(u32 chip_id);

#ifdef __cplusplus
}

/* Holds the engine's lock for the length of a scope. */
class IntrLock {
public:
    IntrLock(u32 chip_id, const char *function, u32 line);
    ~IntrLock();
    IntrLock(const IntrLock &) = delete;
    IntrLock &operator=(const IntrLock &) = delete;

private:
    u32 chip_;
    i32 rc_;
};
#endif

#endif /* TIDE_DPL_REEF_INTERRUPT_H */
