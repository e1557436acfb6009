/*
 * tide: chip registry, status codes, module names and the log and output hooks.
 */
#ifndef TIDE_SHR_H
#define TIDE_SHR_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* ---- chip registry ---------------------------------------------------- */

/* One slot per chip id.  `valid` is the only word the API guard reads. */
typedef struct shr_chip_info {
    uint32_t valid;
    const char *name;
    uint32_t type;
    uint32_t family;
    uint32_t sub_devid;
} shr_chip_info;

/* Chip types. */
#define SHR_CHIP_TYPE_NULL 0u
#define SHR_CHIP_TYPE_KELPREEF 1u
#define SHR_CHIP_TYPE_KELPREEF2 2u
#define SHR_CHIP_TYPE_ATOLREEF 3u
#define SHR_CHIP_TYPE_SANDSHARK 4u

/* The family of all chips of the reef family: index into every
 * `<module>_dispatch` array. */
#define SHR_CHIP_FAMILY_REEF 2u

TIDE_API uint32_t shr_chip_valid_get(uint32_t chip_id);
TIDE_API uint32_t shr_chip_family_get(uint32_t chip_id);
TIDE_API uint32_t shr_chip_type_get(uint32_t chip_id);
TIDE_API int32_t shr_chip_sub_devid_get(uint32_t chip_id, uint32_t *type, uint32_t *sub_devid);
TIDE_API const char *shr_chip_name_get(uint32_t chip_id);
TIDE_API void shr_chip_cur_num_assign(uint32_t count);
TIDE_API uint32_t shr_chip_cur_num_get(void);
TIDE_API void shr_chip_type_assign(uint32_t chip_id, uint32_t type, uint32_t sub_devid);
TIDE_API int32_t shr_chip_classify(uint32_t device_id, int32_t revision, uint32_t *type, uint32_t *family);

/* ---- status codes ------------------------------------------------------ */

/* Text of a status: 0 and the negative codes -1 .. -30; anything below
 * that is "Unknown error". */
TIDE_API const char *shr_errmsg(int32_t status);

/* ---- module ids -------------------------------------------------------- */

#define SHR_MODULE_COUNT 57u
/* Name of a log module id: "INVALID MODULE" above 56. */
TIDE_API const char *shr_module_name_get(uint32_t module_id);

/* ---- log levels -------------------------------------------------------- */

#define SHR_LOG_FATAL 0u
#define SHR_LOG_ERROR 1u
#define SHR_LOG_WARN 2u
#define SHR_LOG_INFO 3u
#define SHR_LOG_DEBUG 4u

/* ---- hooks ------------------------------------------------------------- */

/* The log sink: (chip_id or -1, module_id, level, file, line, format, ...). */
typedef void (*shr_log_func_t)(int32_t chip_id, uint32_t module_id, uint32_t level, const char *file,
                               uint32_t line, const char *format, ...);
/* The diagnostic output sink: printf-like. */
typedef int (*shr_output_func_t)(const char *format, ...);

/* The default log sink: filtered per module by a switch and a level. */
TIDE_API void shr_debugk(int32_t chip_id, uint32_t module_id, uint32_t level, const char *file, uint32_t line,
                         const char *format, ...) TIDE_PRINTF(6, 7);

TIDE_API shr_log_func_t shr_debug_base_printf_func_get(void);
/* NULL restores shr_debugk. */
TIDE_API void shr_debug_base_printf_func_set(shr_log_func_t func);
TIDE_API shr_output_func_t shr_debug_base_cli_printf_func_get(void);
/* NULL restores xsal_printf. */
TIDE_API void shr_debug_base_cli_printf_func_set(shr_output_func_t func);

/* Module switches and levels of the default sink. */
TIDE_API void shr_debugk_enable(uint32_t module_id);
TIDE_API void shr_debugk_disable(uint32_t module_id);
TIDE_API void shr_debugk_ll_enable(uint32_t module_id, uint8_t level);
TIDE_API uint8_t shr_debugk_ll_enable_get(uint32_t module_id);
TIDE_API uint8_t shr_debugk_ll_level_get(uint32_t module_id);
TIDE_API void shr_debugk_all_module_enable(void);
TIDE_API void shr_debugk_all_module_disable(void);
TIDE_API void shr_debugk_all_module_ll_set(uint8_t level);
TIDE_API void shr_debug_default_log_level(void);

TIDE_END_DECLS

#endif /* TIDE_SHR_H */
