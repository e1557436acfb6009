/*
 * The family levels of a chip's bring-up: software init and deinit of all
 * modules, hardware init and deinit, hard reset.
 */
#ifndef TIDE_DPL_REEF_INIT_H
#define TIDE_DPL_REEF_INIT_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

extern u32 g_dpl_reef_soft_inited[SHR_MAX_CHIPS];
extern u32 g_dpl_reef_hw_inited[SHR_MAX_CHIPS];

/* A seam for tests and fault drills: called before each module's step of
 * every level with the level's log format (it names the level) and the
 * step's name; a status other than 0 stands for the step's result and the
 * module is not called. */
typedef i32 (*dpl_reef_step_hook_t)(u32 chip_id, const char *level_format, const char *step);
extern dpl_reef_step_hook_t g_dpl_reef_step_hook;

i32 dpl_reef_soft_init(u32 chip_id);
i32 dpl_reef_soft_deinit(u32 chip_id);
i32 dpl_reef_hw_init(u32 chip_id);
i32 dpl_reef_hw_deinit(u32 chip_id);
i32 dpl_reef_chip_hw_reset(u32 chip_id);
/* Writes `value` (24 bits) to the core's soft reset, then 0, with the open
 * ports closed around it.  -4 for a bad value or a port table above 128
 * ports; -24 for a chip type whose catalogue the build lacks; 0 otherwise,
 * a failed write being logged. */
i32 dpl_reef_chip_soft_reset(u32 chip_id, u32 value);
#define DPL_REEF_SOFT_RESET_PORTS_MAX 128u

/* The reset controller on BAR 3: the sequence register and its status. */
#define DPL_REEF_RESET_SEQ_ADDR 0x47200u
#define DPL_REEF_RESET_STATUS_ADDR 0x47014u
#define DPL_REEF_RESET_POLLS 30u
#define DPL_REEF_RESET_POLL_US 10000u

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_INIT_H */
