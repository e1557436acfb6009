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

/* The level an application keeps for itself; it filters nothing. */
extern u32 g_sal_loglevel;
void xsal_log_level_set(u32 level);
u32 xsal_log_level_get(void);

/* Text of at most 1,023 characters to standard output, in lines of at most
 * 512 characters, each ended with "\r\n". */
#define XSAL_LOG_TEXT_MAX 1023u
#define XSAL_LOG_LINE_MAX 512u
int xsal_log_printf(const char *format, ...) TIDE_PRINTF(1, 2);

/* Debug buffers; buffer 0 records bring-up. */
#define XSAL_DEBUG_BUF_COUNT 4u
#define XSAL_DEBUG_BUF_SIZE 0x20000u
typedef struct xsal_debug_buf {
    char *data;
    u32 size;
    u32 used;
    u32 outside; /* memory of the caller, not freed here */
} xsal_debug_buf;
extern xsal_debug_buf g_sal_debug_buf[XSAL_DEBUG_BUF_COUNT];

int xsal_log_debug_buffer_allocate(u32 buffer);
int xsal_log_debug_outside_buffer_allocate(u32 buffer, u8 *memory, u32 size);
int xsal_log_debug_buffer_clear(u32 buffer);
char *xsal_log_debug_obtain_buffer_get(u32 buffer, u32 *used);
int xsal_log_buffter_utilization_get(u32 buffer, u32 *size, u32 *used);
/* Appends; -1 when the text does not fit in what is left (the buffer keeps
 * the earliest text). */
int xsal_log_str_to_buf_put(const char *text, u32 length, u32 buffer);
int xsal_log_print_buf(const char *format, ...) TIDE_PRINTF(1, 2);
int xsal_log_buffer(const char *format, ...) TIDE_PRINTF(1, 2);
/* A header and the text into buffer 0. */
int xsal_log(i32 chip_id, u32 level, const char *file, i32 line, const char *format, ...) TIDE_PRINTF(5, 6);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_XSAL_INT_H */
