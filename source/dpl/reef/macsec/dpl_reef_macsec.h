/*
 * The MACsec service of the reef family: a thin locked layer over the
 * chip's MACsec driver (source/csl/reef/driver/macsec).  It checks the
 * pointer arguments, takes the chip's MACsec lock and calls the driver's
 * slot; a slot the driver leaves empty answers 0.
 */
#ifndef TIDE_DPL_REEF_MACSEC_H
#define TIDE_DPL_REEF_MACSEC_H

#include "api/api_families.h"
#include "csl/common/macsec/csl_macsec.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The service's record of a chip: its lock and its driver. */
typedef struct dpl_reef_macsec_control_t {
    xsal_mutex_t lock;
    const csl_macsec_ops_t *ops;
} dpl_reef_macsec_control_t;

extern dpl_reef_macsec_control_t *g_dpl_reef_macsec_control[SHR_MAX_CHIPS];

i32 dpl_reef_macsec_soft_init(u32 chip_id);
i32 dpl_reef_macsec_soft_deinit(u32 chip_id);
i32 dpl_reef_macsec_hw_init(u32 chip_id);
i32 dpl_reef_macsec_hw_deinit(u32 chip_id);

#define DPL_MACSEC_DECLARE(name, params, args) i32 dpl_reef_macsec_##name params;
TIDE_MACSEC_OPS(DPL_MACSEC_DECLARE)
#undef DPL_MACSEC_DECLARE

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_MACSEC_H */
