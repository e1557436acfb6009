// Recursive mutexes and reader-writer mutexes on the heap.  Name, file
// and line of the callers are for their diagnostics and are not kept.
#include <pthread.h>

#include "sal/linux_um/xsal_int.h"

struct xsal_rw_mutex_s {
    pthread_rwlock_t rw;
};

namespace {

// One wrapper shape for the six lock calls of the reader-writer mutex.
template <int (*Op)(pthread_rwlock_t *)>
int _xsal_rw_op(xsal_rw_mutex_t mutex)
{
    return mutex != nullptr && Op(&mutex->rw) == 0 ? 0 : -1;
}

} // namespace

extern "C" {

xsal_mutex_t xsal_mutex_create_(const char *name, const char *file, int line)
{
    (void)name;
    (void)file;
    (void)line;
    auto *mutex = static_cast<xsal_mutex_t>(xsal_malloc(sizeof(xsal_mutex_s), "mutex", SHR_MOD_COMMON));
    if (mutex == nullptr) {
        return nullptr;
    }
    pthread_mutexattr_t attr;
    pthread_mutexattr_init(&attr);
    pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
    const int rc = pthread_mutex_init(&mutex->m, &attr);
    pthread_mutexattr_destroy(&attr);
    if (rc != 0) {
        xsal_mem_free(mutex);
        return nullptr;
    }
    return mutex;
}

int xsal_mutex_destroy_(xsal_mutex_t mutex, const char *file, int line)
{
    (void)file;
    (void)line;
    if (mutex == nullptr) {
        return -1;
    }
    pthread_mutex_destroy(&mutex->m);
    xsal_mem_free(mutex);
    return 0;
}

int xsal_mutex_lock_(xsal_mutex_t mutex, const char *file, int line)
{
    (void)file;
    (void)line;
    return mutex != nullptr && pthread_mutex_lock(&mutex->m) == 0 ? 0 : -1;
}

int xsal_mutex_trylock_(xsal_mutex_t mutex, const char *file, int line)
{
    (void)file;
    (void)line;
    return mutex != nullptr && pthread_mutex_trylock(&mutex->m) == 0 ? 0 : -1;
}

int xsal_mutex_unlock_(xsal_mutex_t mutex, const char *file, int line)
{
    (void)file;
    (void)line;
    return mutex != nullptr && pthread_mutex_unlock(&mutex->m) == 0 ? 0 : -1;
}

xsal_rw_mutex_t xsal_rw_mutex_create_(const char *name, const char *file, int line)
{
    (void)name;
    (void)file;
    (void)line;
    auto *mutex = static_cast<xsal_rw_mutex_t>(xsal_malloc(sizeof(xsal_rw_mutex_s), "rw_mutex", SHR_MOD_COMMON));
    if (mutex == nullptr) {
        return nullptr;
    }
    if (pthread_rwlock_init(&mutex->rw, nullptr) != 0) {
        xsal_mem_free(mutex);
        return nullptr;
    }
    return mutex;
}

int xsal_rw_mutex_destroy_(xsal_rw_mutex_t mutex, const char *file, int line)
{
    (void)file;
    (void)line;
    if (mutex == nullptr) {
        return -1;
    }
    pthread_rwlock_destroy(&mutex->rw);
    xsal_mem_free(mutex);
    return 0;
}

int xsal_rw_mutex_rdlock_(xsal_rw_mutex_t mutex, const char *, int)
{
    return _xsal_rw_op<pthread_rwlock_rdlock>(mutex);
}

int xsal_rw_mutex_wrlock_(xsal_rw_mutex_t mutex, const char *, int)
{
    return _xsal_rw_op<pthread_rwlock_wrlock>(mutex);
}

int xsal_rw_mutex_tryrdlock_(xsal_rw_mutex_t mutex, const char *, int)
{
    return _xsal_rw_op<pthread_rwlock_tryrdlock>(mutex);
}

int xsal_rw_mutex_trywrlock_(xsal_rw_mutex_t mutex, const char *, int)
{
    return _xsal_rw_op<pthread_rwlock_trywrlock>(mutex);
}

int xsal_rw_mutex_rdunlock_(xsal_rw_mutex_t mutex, const char *, int)
{
    return _xsal_rw_op<pthread_rwlock_unlock>(mutex);
}

int xsal_rw_mutex_wrunlock_(xsal_rw_mutex_t mutex, const char *, int)
{
    return _xsal_rw_op<pthread_rwlock_unlock>(mutex);
}

} // extern "C"
