/*
 * OS layer calls used inside the library that are not in the public
 * headers.
 */
#ifndef TIDE_XSAL_INT_H
#define TIDE_XSAL_INT_H

#include <pthread.h>
#include <semaphore.h>
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

/* The platform objects behind the handles. */
struct xsal_mutex_s {
    pthread_mutex_t m;
};

struct xsal_sem_s {
    sem_t sem;
};

/* The record of a thread on the thread list. */
typedef struct xsal_thread_info {
    struct xsal_thread_info *next;
    struct xsal_thread_info *prev;
    xsal_thread_func_t entry;
    const char *name; /* the creator's text, not copied */
    pthread_t tid;
    void *arg;
    u32 stack_size; /* noted; the thread runs on the platform's default stack */
    xsal_sem_t boot_sem;
} xsal_thread_info;

extern xsal_thread_info *g_list_thread_head;

/* A timer, on the sorted list g_xsal_timer_head while started. */
struct xsal_timer_s {
    const char *name;
    u32 stopped; /* 1 when not on the list */
    u64 end_sec;
    u64 end_usec; /* below 1,000,000 */
    u32 timeout;  /* period, ms */
    xsal_timer_func_t callback;
    void *arg;
    struct xsal_timer_s *next;
    struct xsal_timer_s *prev;
};

extern struct xsal_timer_s *g_xsal_timer_head;
extern u32 g_xsal_timer_inited;
/* The wall clock of the timer manager in microseconds: xsal_time_usecs,
 * or a clock of a test that needs timers to share an expiry. */
extern u64 (*g_xsal_timer_clock)(void);

/* Loops of the busy delay's inner loop per microsecond; 0 until it is
 * calibrated. */
extern volatile u32 g_xsal_udelay_loops;
/* The word the busy delay increments, loops times per microsecond. */
extern volatile u32 g_xsal_udelay_counter;

/* The line end of this platform. */
extern const char *const g_sal_new_line_symbol;

/* xsal_ctoi that also tells where the number ended. */
i64 xsal_ctoi_scan(const char *text, const char **end);

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

#ifdef __cplusplus
namespace tide {

// Holds a mutex of this layer for the life of a scope.
class MutexGuard {
public:
    explicit MutexGuard(xsal_mutex_t mutex) : mutex_(mutex) { xsal_mutex_lock_(mutex_, __FILE__, __LINE__); }
    ~MutexGuard() { xsal_mutex_unlock_(mutex_, __FILE__, __LINE__); }
    MutexGuard(const MutexGuard &) = delete;
    MutexGuard &operator=(const MutexGuard &) = delete;

private:
    xsal_mutex_t mutex_;
};

// Holds a static platform mutex of this layer for the life of a scope.
class PthreadLock {
public:
    explicit PthreadLock(pthread_mutex_t *mutex) : mutex_(mutex) { pthread_mutex_lock(mutex_); }
    ~PthreadLock() { pthread_mutex_unlock(mutex_); }
    PthreadLock(const PthreadLock &) = delete;
    PthreadLock &operator=(const PthreadLock &) = delete;

private:
    pthread_mutex_t *mutex_;
};

// Takes `node` off a NULL-ended doubly linked list of records with `next`
// and `prev` links, and clears its links.
template <typename T>
void list_unlink(T **head, T *node)
{
    if (node->prev != nullptr) {
        node->prev->next = node->next;
    } else {
        *head = node->next;
    }
    if (node->next != nullptr) {
        node->next->prev = node->prev;
    }
    node->next = node->prev = nullptr;
}

} // namespace tide
#endif
