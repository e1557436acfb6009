/*
 * OS layer calls used inside the library that are not in the public
 * headers.
 */
#ifndef TIDE_XSAL_INT_H
#define TIDE_XSAL_INT_H

#include <stdarg.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Calendar record of xsal_get_current_time, from localtime. */
typedef struct xsal_calendar {
    u32 sec;
    u32 min;
    u32 hour;
    u32 mday;
    u32 mon;  /* 1 to 12 */
    u32 year; /* full year */
} xsal_calendar;

int xsal_get_current_time(xsal_calendar *out);
/* Wall clock in microseconds. */
u64 xsal_time_usecs(void);
/* Sleep: select from 20 ms up, a spin on the clock below. */
void xsal_usleep(u32 usec);

extern xsal_mutex_t g_xsal_console_mutex;
extern xsal_malloc_func_t g_xsal_malloc_base_func;
extern xsal_free_func_t g_xsal_free_base_func;

/* Log lines: header (unless the module is "COMMON" or headers are off)
 * and text to standard output. */
extern u32 g_xsal_log_header_state;
void xsal_log_vprintf(i32 chip_id, u32 level, const char *module_name, const char *file, i32 line,
                      const char *format, va_list args);
const char *xsal_log_levelname_get(u32 level);
void xsal_log_log_header_set(u32 state);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_XSAL_INT_H */
