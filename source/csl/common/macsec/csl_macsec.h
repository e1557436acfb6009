/*
 * The MACsec engine of a chip: its driver, a table of operations.  The
 * slots after `hw_init` are the MACsec family's, in its slot order (a slot
 * left NULL answers 0 through the service), then `dfx_cnt_get`.
 */
#ifndef TIDE_CSL_MACSEC_H
#define TIDE_CSL_MACSEC_H

#include "api/api_families.h"

#ifdef __cplusplus
extern "C" {
#endif

#define CSL_MACSEC_SLOT(name, params, args, ...) i32(*name) params;

typedef struct csl_macsec_ops_t {
    const char *name;
    i32 (*hw_init)(u32 chip_id);
    TIDE_MACSEC_OPS(CSL_MACSEC_SLOT)
    /* One of the engine's debug counters: `type` below 30. */
    i32 (*dfx_cnt_get)(u32 chip_id, u32 lport, u32 type, u32 *out);
} csl_macsec_ops_t;

/* The driver of atolreef (source/csl/reef/driver/macsec). */
extern const csl_macsec_ops_t g_csl_macsec_atolreef;

/* Selects the driver of the chip's family; a chip without the engine's
 * tables in this build gets none. */
i32 csl_common_macsec_base_init(u32 chip_id);
/* The driver selected, NULL for none. */
i32 csl_common_macsec_probe(u32 chip_id, const csl_macsec_ops_t **out);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_MACSEC_H */
