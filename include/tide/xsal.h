/*
 * tide: the OS layer.  The core calls that everything stands on (tracked
 * allocation with a replaceable backend, recursive mutexes, reader-writer
 * mutexes, the console, the bounded memory calls), then threads,
 * semaphores, condition variables, events, timers, delays, clocks, random
 * numbers, files, raw packet sockets, the bounded string calls and the
 * string helpers, the slab and pool allocators and the reference count.
 *
 * Failure style of this layer: 0 for success and -1 for failure; handle
 * creating calls return the handle or NULL.
 */
#ifndef TIDE_XSAL_H
#define TIDE_XSAL_H

#include <pthread.h>
#include <stdarg.h>
#include <time.h>
#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* ---- allocation -------------------------------------------------------- */

typedef void *(*xsal_malloc_func_t)(size_t size);
typedef void (*xsal_free_func_t)(void *ptr);

/* Memory from the backend, not cleared.  `tag` names the object and
 * `module_id` the owner; both document the call.  NULL when the low 32
 * bits of `size` are 0, or when there is no memory. */
TIDE_API void *xsal_malloc(uint64_t size, const char *tag, uint32_t module_id);
/* Gives a block back to the backend; nothing for NULL. */
TIDE_API void xsal_mem_free(void *ptr);
TIDE_API xsal_malloc_func_t xsal_malloc_base_func_get(void);
TIDE_API xsal_free_func_t xsal_free_base_func_get(void);
/* NULL puts the C library's malloc or free back. */
TIDE_API void xsal_malloc_base_func_set(xsal_malloc_func_t func);
TIDE_API void xsal_free_base_func_set(xsal_free_func_t func);

/* ---- mutexes ----------------------------------------------------------- */

typedef struct xsal_mutex_s *xsal_mutex_t;
typedef struct xsal_rw_mutex_s *xsal_rw_mutex_t;

/* All mutexes are recursive.  Name, file and line are for the caller's
 * diagnostics and are not kept. */
TIDE_API xsal_mutex_t xsal_mutex_create_(const char *name, const char *file, int line);
TIDE_API int xsal_mutex_destroy_(xsal_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_mutex_lock_(xsal_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_mutex_trylock_(xsal_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_mutex_unlock_(xsal_mutex_t mutex, const char *file, int line);

TIDE_API xsal_rw_mutex_t xsal_rw_mutex_create_(const char *name, const char *file, int line);
TIDE_API int xsal_rw_mutex_destroy_(xsal_rw_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_rw_mutex_rdlock_(xsal_rw_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_rw_mutex_wrlock_(xsal_rw_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_rw_mutex_tryrdlock_(xsal_rw_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_rw_mutex_trywrlock_(xsal_rw_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_rw_mutex_rdunlock_(xsal_rw_mutex_t mutex, const char *file, int line);
TIDE_API int xsal_rw_mutex_wrunlock_(xsal_rw_mutex_t mutex, const char *file, int line);

#define xsal_mutex_create(name) xsal_mutex_create_((name), __FILE__, __LINE__)
#define xsal_mutex_destroy(m) xsal_mutex_destroy_((m), __FILE__, __LINE__)
#define xsal_mutex_lock(m) xsal_mutex_lock_((m), __FILE__, __LINE__)
#define xsal_mutex_trylock(m) xsal_mutex_trylock_((m), __FILE__, __LINE__)
#define xsal_mutex_unlock(m) xsal_mutex_unlock_((m), __FILE__, __LINE__)
#define xsal_rw_mutex_create(name) xsal_rw_mutex_create_((name), __FILE__, __LINE__)
#define xsal_rw_mutex_destroy(m) xsal_rw_mutex_destroy_((m), __FILE__, __LINE__)
#define xsal_rw_mutex_rdlock(m) xsal_rw_mutex_rdlock_((m), __FILE__, __LINE__)
#define xsal_rw_mutex_wrlock(m) xsal_rw_mutex_wrlock_((m), __FILE__, __LINE__)
#define xsal_rw_mutex_rdunlock(m) xsal_rw_mutex_rdunlock_((m), __FILE__, __LINE__)
#define xsal_rw_mutex_wrunlock(m) xsal_rw_mutex_wrunlock_((m), __FILE__, __LINE__)

/* ---- console ----------------------------------------------------------- */

/* Creates the console mutex if it does not exist; 0 or -1. */
TIDE_API int xsal_console_init(void);
/* Destroys it; 0. */
TIDE_API int xsal_console_deinit(void);
/* Standard output, flushed, with the console mutex held. */
TIDE_API int xsal_printf(const char *format, ...) TIDE_PRINTF(1, 2);
TIDE_API int xsal_vprintf(const char *format, va_list args);

/* ---- bounded memory calls ---------------------------------------------- */

/* Copy `count` bytes into a destination of `dest_size` bytes.  Nothing is
 * written beyond `dest_size`; a copy that does not fit is refused with a
 * non-zero result. */
TIDE_API int xsal_memcpy_s(void *dest, size_t dest_size, const void *src, size_t count);
/* Set `count` bytes; refused (non-zero) if `count` exceeds `dest_size`. */
TIDE_API int xsal_memset_s(void *dest, size_t dest_size, int value, size_t count);

/* ---- threads ----------------------------------------------------------- */

typedef void (*xsal_thread_func_t)(void *arg);

/* A caller's record, filled by xsal_thread_create. */
typedef struct xsal_thread_t {
    pthread_t tid;
    uint32_t state;              /* 1 after creation, 2 after xsal_thread_destroy */
    struct xsal_thread_info *info; /* the thread's record on the thread list */
} xsal_thread_t;

#define XSAL_THREAD_STATE_CREATED 1u
#define XSAL_THREAD_STATE_DESTROYED 2u

/* Starts a detached, cancellable thread with SIGINT blocked, named `name`
 * for the kernel too (the text is not copied).  A stack size of 0 is noted
 * as 65,536 and anything below 16,384 as 16,384.  Returns when the thread
 * is on the thread list and running: 0, -1, or the platform's error number
 * if the thread could not be made. */
TIDE_API int xsal_thread_create(xsal_thread_t *thread, const char *name, int32_t stack_size,
                                xsal_thread_func_t entry, void *arg);
/* Cancels the thread and frees its record if it is still on the list; a
 * thread that ended by itself gives 0.  Never destroy a thread that holds a
 * lock.  -1 if cancelling fails. */
TIDE_API int xsal_thread_destroy(xsal_thread_t *thread);
TIDE_API pthread_t xsal_thread_self(void);
/* The platform's join; threads of this layer are detached. */
TIDE_API int xsal_thread_join(xsal_thread_t *thread, void **result);
/* The thread's name in `buffer`, terminated at its last byte; NULL and an
 * empty buffer when the thread is not on the list. */
TIDE_API char *xsal_thread_name(xsal_thread_t *thread, char *buffer, int32_t size);
/* Takes the calling thread's record off the list and frees it.  The entry
 * of a thread does this by itself when it returns. */
TIDE_API void xsal_thread_exit(void);
TIDE_API void xsal_thread_yield(void);
TIDE_API void xsal_thread_main_set(xsal_thread_t thread);
TIDE_API xsal_thread_t xsal_thread_main_get(void);
TIDE_API int xsal_pid_get(void);
/* Calibrates xsal_udelay and notes the calling thread as the main one; 0. */
TIDE_API int xsal_core_init(void);

/* ---- semaphores and condition variables -------------------------------- */

typedef struct xsal_sem_s *xsal_sem_t;
typedef pthread_cond_t xsal_cond_t;

#define XSAL_SEM_FOREVER 0xFFFFFFFFu

TIDE_API xsal_sem_t xsal_sem_create_(const char *name, uint32_t value, const char *file, int line);
TIDE_API int xsal_sem_destroy_(xsal_sem_t sem, const char *file, int line);
/* Waits for ever; 0 or -1. */
TIDE_API int xsal_sem_take_(xsal_sem_t sem, const char *file, int line);
/* Waits at most `usec` microseconds (XSAL_SEM_FOREVER: for ever); -1 at
 * the end of the time. */
TIDE_API int xsal_sem_take_timeout_(xsal_sem_t sem, uint32_t usec, const char *file, int line);
/* -1 if it would block. */
TIDE_API int xsal_sem_trytake_(xsal_sem_t sem, const char *file, int line);
TIDE_API int xsal_sem_give_(xsal_sem_t sem, const char *file, int line);

#define xsal_sem_create(name, value) xsal_sem_create_((name), (value), __FILE__, __LINE__)
#define xsal_sem_destroy(s) xsal_sem_destroy_((s), __FILE__, __LINE__)
#define xsal_sem_take(s) xsal_sem_take_((s), __FILE__, __LINE__)
#define xsal_sem_take_timeout(s, usec) xsal_sem_take_timeout_((s), (usec), __FILE__, __LINE__)
#define xsal_sem_trytake(s) xsal_sem_trytake_((s), __FILE__, __LINE__)
#define xsal_sem_give(s) xsal_sem_give_((s), __FILE__, __LINE__)

/* The platform's condition variables, with the mutexes of this layer.  The
 * results are the platform's. */
TIDE_API int xsal_cond_init(xsal_cond_t *cond);
TIDE_API int xsal_cond_destroy(xsal_cond_t *cond);
TIDE_API int xsal_cond_wait(xsal_cond_t *cond, xsal_mutex_t mutex);
/* `abstime` on the wall clock. */
TIDE_API int xsal_cond_timedwait(xsal_cond_t *cond, xsal_mutex_t mutex, const struct timespec *abstime);
TIDE_API int xsal_cond_signal(xsal_cond_t *cond);
TIDE_API int xsal_cond_broadcast(xsal_cond_t *cond);

/* Statistics of locks are not kept; these do nothing and give 0. */
TIDE_API int xsal_mutex_stat(void);
TIDE_API int xsal_mutex_get_next(void);
TIDE_API int xsal_sem_stat(void);
TIDE_API int xsal_sem_get_next(void);
TIDE_API int xsal_rw_mutex_stat(void);
TIDE_API int xsal_rw_mutex_get_next(void);

/* ---- events and timers ------------------------------------------------- */

typedef struct xsal_event_s *xsal_event_t;

/* An auto-reset event is cleared by the wait that sees it signalled; a
 * manual-reset one stays signalled until xsal_event_reset.  0, or -2 for
 * no memory or no mutex. */
TIDE_API int xsal_event_create(xsal_event_t *event, uint32_t auto_reset);
TIDE_API int xsal_event_destroy(xsal_event_t event);
/* Wakes all waiters when the event goes from clear to signalled. */
TIDE_API int xsal_event_set(xsal_event_t event);
TIDE_API int xsal_event_reset(xsal_event_t event);
/* 1 when signalled, 0 at the end of `ms` milliseconds; a negative `ms`
 * waits for ever. */
TIDE_API int xsal_event_wait(xsal_event_t event, int32_t ms);

typedef struct xsal_timer_s *xsal_timer_t;
typedef void (*xsal_timer_func_t)(void *arg);

/* Start and stop of the timer manager thread "tdl_xsal_timer".  Deinit
 * does nothing while timers are started. */
TIDE_API int xsal_timer_init(void);
TIDE_API int xsal_timer_deinit(void);
/* 0, or -2 for no memory. */
TIDE_API int xsal_timer_create(xsal_timer_t *timer, const char *name, xsal_timer_func_t callback, void *arg);
/* Fires `callback(arg)` every `ms` milliseconds on the timer thread until
 * stopped; starting a started timer does nothing.  0, -4 for NULL, -1 when
 * the timer manager is not running.  A callback must not start, stop or
 * destroy timers. */
TIDE_API int xsal_timer_start(xsal_timer_t timer, uint32_t ms);
/* 0, -4 for NULL.  No callback of the timer runs after it returns. */
TIDE_API int xsal_timer_stop(xsal_timer_t timer);
/* Stops it if started and frees it. */
TIDE_API int xsal_timer_destroy(xsal_timer_t timer);

/* ---- delays, clocks and numbers ---------------------------------------- */

/* Busy wait of about `usec` microseconds, with no system call once
 * calibrated; 0 calibrates again. */
TIDE_API void xsal_udelay(int32_t usec);
/* Sleeps `usec` microseconds; below 20 ms it spins on the clock. */
TIDE_API void xsal_usleep(uint32_t usec);
/* Wall clock in microseconds. */
TIDE_API uint64_t xsal_time_usecs(void);
TIDE_API time_t xsal_time(void);
TIDE_API uint32_t xsal_rand(void);
TIDE_API void xsal_srand(uint64_t seed);
TIDE_API void xsal_srand_func(uint64_t seed);
TIDE_API uint32_t xsal_rand_func(void);
TIDE_API uint64_t xsal_udiv64(uint64_t dividend, uint64_t divisor);
TIDE_API uint64_t xsal_umod64(uint64_t dividend, uint64_t divisor);
TIDE_API double xsal_pow(double base, double exponent);
TIDE_API double xsal_ceil(double value);
TIDE_API double xsal_floor(double value);
TIDE_API double xsal_fabs(double value);

/* ---- files ------------------------------------------------------------- */

typedef struct xsal_file_s *xsal_file_t;

/* Origins of xsal_file_seek. */
#define XSAL_SEEK_CUR 0u
#define XSAL_SEEK_SET 1u
#define XSAL_SEEK_END 2u

/* `flags` are the platform's open flags; a created file gets mode 0644. */
TIDE_API xsal_file_t xsal_file_open(const char *path, uint32_t flags);
TIDE_API int xsal_file_close(xsal_file_t file);
TIDE_API int xsal_file_read(xsal_file_t file, void *buffer, int32_t length);
/* One line into `buffer` (with its newline, terminated); NULL at the end. */
TIDE_API char *xsal_file_readline(xsal_file_t file, char *buffer, uint32_t size);
TIDE_API int xsal_file_write(xsal_file_t file, const void *buffer, int32_t length);
/* Writes one line: a line end is added to a text with none, a text ending
 * in its only newline is written as it is, other newlines are refused. */
TIDE_API int xsal_file_writeline(xsal_file_t file, const char *text);
TIDE_API int xsal_file_seek(xsal_file_t file, int32_t offset, uint32_t whence);
TIDE_API int xsal_file_write_log(xsal_file_t file, const char *format, ...) TIDE_PRINTF(2, 3);
/* Free space in MiB of the file system that holds the path's directory. */
TIDE_API int sal_disk_available_size(const char *path, uint32_t *mbytes);

/* ---- raw packet sockets ------------------------------------------------ */

typedef struct xsal_socket_packet_s *xsal_socket_packet_t;

/* A raw packet socket for the Ethernet type `protocol` (0 for none),
 * receiving on `if_recv` (NULL: all interfaces) and sending on `if_send`.
 * NULL if an interface is unknown or a step fails. */
TIDE_API xsal_socket_packet_t xsal_socket_packet_create(uint16_t protocol, const char *if_recv,
                                                        const char *if_send);
TIDE_API int xsal_socket_packet_destroy(xsal_socket_packet_t sock);
TIDE_API int xsal_socket_packet_receive(xsal_socket_packet_t sock, void *buffer, int32_t length);
TIDE_API int xsal_socket_packet_sendto(xsal_socket_packet_t sock, int32_t if_index, const void *buffer,
                                       int32_t length);
TIDE_API int xsal_socket_packet_send(xsal_socket_packet_t sock, const void *buffer, int32_t length);

/* ---- bounded string calls ---------------------------------------------- */

/* Nothing is written beyond `dest_size`.  A copy, append or print that
 * does not fit is refused with a non-zero result and leaves an empty
 * string in the destination. */
TIDE_API int xsal_strcpy_s(char *dest, size_t dest_size, const char *src);
/* Copies at most `count` characters of `src` and terminates the copy. */
TIDE_API int xsal_strncpy_s(char *dest, size_t dest_size, const char *src, size_t count);
TIDE_API int xsal_strcat_s(char *dest, size_t dest_size, const char *src);
/* Unbounded prints: the count of characters, or -1. */
TIDE_API int xsal_sprintf(char *dest, const char *format, ...) TIDE_PRINTF(2, 3);
TIDE_API int xsal_vsprintf(char *dest, const char *format, va_list args);
/* The count of characters, or -1 (empty destination) if it does not fit. */
TIDE_API int xsal_vsprintf_s(char *dest, size_t dest_size, const char *format, va_list args);
/* At most `size - 1` characters; -1 (empty destination) if the text is
 * longer. */
TIDE_API int xsal_snprintf(char *dest, size_t size, const char *format, ...) TIDE_PRINTF(3, 4);
TIDE_API int xsal_vsnprintf(char *dest, size_t size, const char *format, va_list args);
/* At most `count` characters and `dest_size - 1`; -1 (empty destination)
 * if the text is longer. */
TIDE_API int xsal_snprintf_s(char *dest, size_t dest_size, size_t count, const char *format, ...)
    TIDE_PRINTF(4, 5);
TIDE_API int xsal_vsnprintf_s(char *dest, size_t dest_size, size_t count, const char *format,
                              va_list args);
/* Cuts the text to what fits and returns the count of characters written,
 * so that appends chain: off += xsal_sprintf_s(buf + off, size - off, ...). */
TIDE_API int xsal_sprintf_s(char *dest, size_t dest_size, const char *format, ...) TIDE_PRINTF(3, 4);
/* sscanf whose %s, %c and %[ take a destination size (size_t) behind each
 * destination pointer; a text that does not fit ends the scan. */
TIDE_API int xsal_sscanf(const char *text, const char *format, ...);

/* ---- string helpers ---------------------------------------------------- */

TIDE_API size_t xsal_strlen(const char *text);
TIDE_API int xsal_strcmp(const char *a, const char *b);
TIDE_API int xsal_strncmp(const char *a, const char *b, size_t count);
TIDE_API int xsal_memcmp(const void *a, const void *b, size_t count);
TIDE_API int xsal_strcasecmp(const char *a, const char *b);
TIDE_API int xsal_strncasecmp(const char *a, const char *b, size_t count);
TIDE_API char *xsal_strstr(const char *haystack, const char *needle);
/* Heap copies, freed with xsal_mem_free. */
TIDE_API char *xsal_strdup(const char *text);
TIDE_API char *xsal_strndup(const char *text, size_t count);
TIDE_API char *xsal_strupper_to_lower(char *dest, const char *src, size_t count);
TIDE_API int xsal_byte_memcpy_s(void *dest, size_t dest_size, const void *src, size_t count);
TIDE_API int xsal_byte_memset_s(void *dest, size_t dest_size, int value, size_t count);
TIDE_API int xsal_memcpy_addr_4byte_align_s(void *dest, size_t dest_size, const void *src, size_t count);
/* Text to number: optional '-', then "0x" hexadecimal, "0b" binary, a
 * leading 0 octal, else decimal, up to the first other character. */
TIDE_API int64_t xsal_ctoi(const char *text);
TIDE_API int32_t xsal_strto32(const char *text, char **end, int base);
TIDE_API uint32_t xsal_strtou32(const char *text, char **end, int base);
TIDE_API int64_t xsal_strto64(const char *text, char **end, int base);
TIDE_API uint64_t xsal_strtou64(const char *text, char **end, int base);
/* Removes every blank and newline in place. */
TIDE_API char *xsal_clean_string_nullspace(char *text);
typedef int (*xsal_print_func_t)(const char *format, ...);
/* Hexadecimal dump, 16 bytes a line. */
TIDE_API void xsal_utils_memdump(const char *prefix, const void *data, uint32_t length, xsal_print_func_t print);
TIDE_API void xsal_memdump(const void *data, uint32_t length);
TIDE_API char *xsal_strtok_s(char *text, const char *delimiters, char **context);
TIDE_API char *xsal_strchr_s(const char *text, int c);
TIDE_API char *xsal_strrchr_s(const char *text, int c);
TIDE_API size_t xsal_strspn_s(const char *text, const char *accept);
/* Prints the failed assertion, waits 1 ms and aborts. */
TIDE_API void xsal_assert(const char *text, const char *file, int line);
/* Up to `size` return addresses of the calling thread; their count. */
TIDE_API int xsal_backtrace(void **frames, int size);

/* ---- slab caches, the pool and the reference count --------------------- */

typedef struct xsal_mem_cache_s *xsal_mem_cache_t;

/* Do nothing: allocations are not recorded. */
TIDE_API void xsal_malloc_clean(void);
TIDE_API void xsal_malloc_resource_usage(void);
TIDE_API void xsal_malloc_stat(void);
TIDE_API uint64_t xsal_malloc_total(void);
TIDE_API int xsal_malloc_get_next(void);
TIDE_API int xsal_malloc_list_lock(void);
TIDE_API int xsal_malloc_list_unlock(void);

/* Caches of equal objects on 64 KiB anonymous mappings.  A cache has no
 * lock: its user holds one around every call. */
TIDE_API void xsal_mem_cache_init(void);
TIDE_API xsal_mem_cache_t xsal_mem_cache_create(uint32_t obj_size);
TIDE_API void *xsal_mem_cache_alloc(xsal_mem_cache_t cache);
TIDE_API void xsal_mem_cache_free(void *obj);
/* All objects must have been freed. */
TIDE_API void xsal_mem_cache_destroy(xsal_mem_cache_t cache);
TIDE_API void xsal_mem_cache_stat(xsal_mem_cache_t cache);

/* The pool: 28 size classes from 4 bytes to 16 MiB on slab caches, larger
 * blocks from xsal_malloc.  Safe for use from several threads. */
TIDE_API int xsal_mem_pool_create(void);
TIDE_API void xsal_mem_pool_clean(void);
TIDE_API void *xsal_malloc_from_mem_pool(uint32_t size, const char *tag);
TIDE_API void xsal_free_to_mem_pool(void *block);
TIDE_API void xsal_mem_pool_stat(void);

typedef struct xsal_kref_t {
    uint32_t refcount;
    xsal_mutex_t mutex;
} xsal_kref_t;

typedef void (*xsal_kref_release_t)(xsal_kref_t *kref, void *arg);

/* Count 1; -4 for NULL, -2 if no mutex can be made. */
TIDE_API int xsal_kref_init(xsal_kref_t *kref);
TIDE_API int xsal_kref_deinit(xsal_kref_t *kref);
TIDE_API uint32_t xsal_kref_refount_read(xsal_kref_t *kref);
TIDE_API void xsal_kref_get(xsal_kref_t *kref);
/* 0 if the count is 1, else lowers it and gives 1. */
TIDE_API int xsal_kref_refcount_dec_not_one(xsal_kref_t *kref);
/* Lowers the count; 1 if it reached 0. */
TIDE_API int xsal_kref_refcount_dec_and_test(xsal_kref_t *kref);
/* 1 with `mutex` held if the count reached 0, else 0 without it. */
TIDE_API int xsal_kref_refcount_dec_and_mutex_lock(xsal_kref_t *kref, xsal_mutex_t mutex);
/* At 0 calls release(kref, arg) with `mutex` held, which release gives
 * back; 1 if released, else 0. */
TIDE_API int xsal_kref_put_mutex(xsal_kref_t *kref, xsal_kref_release_t release, xsal_mutex_t mutex, void *arg);

TIDE_END_DECLS

#endif /* TIDE_XSAL_H */
