/*
 * The SerDes service of the reef family: the operations of the serdes
 * family with their checks and locks, forwarded to the chip's SerDes
 * driver; the service's bring-up.
 */
#ifndef TIDE_DPL_REEF_SERDES_H
#define TIDE_DPL_REEF_SERDES_H

#include "api/api_families.h"
#include "csl/common/serdes/csl_serdes.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A lane's lock and driver table. */
typedef struct dpl_reef_serdes_info {
    xsal_mutex_t lock;
    const csl_serdes_driver_t *driver; /* NULL: the lane reaches no driver */
} dpl_reef_serdes_info;

/* What only one chip type does. */
typedef struct reef_serdes_special_t {
    /* After a rate change: the transmit emphasis the properties give the
     * lane at its new speed. */
    i32 (*emphasis_by_speed)(u32 chip_id, u32 serdes_id);
} reef_serdes_special_t;

extern dpl_reef_serdes_info *g_dpl_reef_serdes_control[SHR_MAX_CHIPS];
extern xsal_mutex_t g_dpl_reef_serdes_chip_lock[SHR_MAX_CHIPS];
extern u32 g_dpl_reef_serdes_soft_inited[SHR_MAX_CHIPS];
extern u32 g_dpl_reef_serdes_hw_inited[SHR_MAX_CHIPS];
extern reef_serdes_special_t reef_serdes_special[SHR_MAX_CHIPS];

/* Bring-up. */
i32 dpl_reef_serdes_soft_init(u32 chip_id);
i32 dpl_reef_serdes_soft_deinit(u32 chip_id);
i32 dpl_reef_serdes_hw_init(u32 chip_id);
i32 dpl_reef_serdes_hw_deinit(u32 chip_id);

/* The operations of the serdes family: dpl_reef_serdes_<name>. */
#define DPL_REEF_SERDES_DECLARE(slot, params, args, name) i32 dpl_reef_serdes_##name params;
TIDE_SERDES_OPS(DPL_REEF_SERDES_DECLARE)
#undef DPL_REEF_SERDES_DECLARE

/* The driver's CIB configuration of a lane (a slot atolreef leaves empty). */
i32 dpl_reef_serdes_cib_config_set(u32 chip_id, u32 serdes_id, u32 value);
/* The port service's rate change of a lane: the lane's row takes the MAG's
 * interface type, then the rate changes as by dpl_reef_serdes_freq_set. */
i32 dpl_reef_serdes_interface_freq_set(u32 chip_id, u32 serdes_id, u32 interface_type, serdes_freq *freq);
/* Shorter name of the reset for other services. */
i32 dpl_reef_serdes_reset(u32 chip_id, u32 serdes_id, u32 mode);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_DPL_REEF_SERDES_H */
