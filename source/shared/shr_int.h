/*
 * Shared helpers of libtide_sdk that are not part of the public headers.
 */
#ifndef TIDE_SHR_INT_H
#define TIDE_SHR_INT_H

#include <stdarg.h>

#include "tide_int.h"
#include "shared/shr_bits.h"

#define SHR_DEVICE_ID_ATOLREEF 0x2025u
#define SHR_DEVICE_ID_KELPREEF 0x9228u

#ifdef __cplusplus
extern "C" {
#endif

extern shr_chip_info g_shr_chips[SHR_MAX_CHIPS];
extern u32 g_shr_chip_cur_num;
extern const char *const g_shr_chip_name[5];
extern const char *const g_shr_errmsg[32];
extern const char *const g_shr_mod_name[SHR_MODULE_COUNT];
extern const char *const g_sal_loglevel_name[5];

extern shr_log_func_t g_shr_debug_base_func;
extern shr_output_func_t g_shr_debug_base_cli_func;
extern u8 g_shr_current_dk_enable[SHR_MODULE_COUNT];
extern u8 g_shr_current_ll[SHR_MODULE_COUNT];

/* Formats into a heap block (xsal_malloc with `tag` and `module`) that
 * starts at `first_size` bytes and doubles until the text fits; its length
 * at `*len`.  NULL without memory or for a format that fails. */
char *shr_vformat_alloc(u64 first_size, const char *tag, u32 module, u32 *len, const char *format, va_list args);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_SHR_INT_H */
