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

/* Loops of the busy delay's inner loop per microsecond; 0 until it is
 * calibrated. */
extern volatile u32 g_xsal_udelay_loops;

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
