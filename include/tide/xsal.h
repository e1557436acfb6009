/*
 * tide: the core calls of the OS layer that everything stands on:
 * tracked allocation with a replaceable backend, recursive mutexes,
 * reader-writer mutexes, the console and the bounded memory calls.
 *
 * Failure style of this layer: 0 for success and -1 for failure; handle
 * creating calls return the handle or NULL.
 */
#ifndef TIDE_XSAL_H
#define TIDE_XSAL_H

#include <stdarg.h>
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

TIDE_END_DECLS

#endif /* TIDE_XSAL_H */
