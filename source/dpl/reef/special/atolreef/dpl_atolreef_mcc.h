/*
 * What only atolreef has of the replication engine: its limits (root ids
 * up to 1023, 2048 leaves) and the values of its hardware init.
 */
#ifndef TIDE_DPL_ATOLREEF_MCC_H
#define TIDE_DPL_ATOLREEF_MCC_H

#include "dpl/reef/mcc/dpl_reef_mcc.h"

#ifdef __cplusplus
extern "C" {
#endif

extern const dpl_reef_mcc_limits g_atolreef_mcc_limits;

/* The thresholds, the CPU port, the token buckets, the round robin and
 * every root of the table (zero, with rep_num 1).  A failing write is
 * logged and ends the sequence with its status. */
i32 dpl_atolreef_mcc_hw_init(u32 chip_id);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_ATOLREEF_MCC_H */
