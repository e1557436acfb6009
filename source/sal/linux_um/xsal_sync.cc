// Semaphores, condition variables and events.  Names, files and lines of
// the callers are for their diagnostics and are not kept.
#include <errno.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/time.h>

#include "sal/linux_um/xsal_int.h"

struct xsal_event_s {
    xsal_mutex_t mutex;
    pthread_cond_t cond;
    u32 signalled;
    u32 auto_reset;
};

namespace {

// The wall clock moved on by `usec` microseconds, as an absolute time.
timespec _abs_time_after_usec(u64 usec)
{
    struct timeval now;
    gettimeofday(&now, nullptr);
    u64 nsec = static_cast<u64>(now.tv_usec) * 1000u + (usec % 1000000u) * 1000u;
    timespec ts;
    ts.tv_sec = now.tv_sec + static_cast<time_t>(usec / 1000000u + nsec / 1000000000u);
    ts.tv_nsec = static_cast<long>(nsec % 1000000000u);
    return ts;
}

} // namespace

extern "C" {

xsal_sem_t xsal_sem_create_(const char *, u32 value, const char *, int)
{
    auto *sem = static_cast<xsal_sem_t>(xsal_malloc(sizeof(xsal_sem_s), "sem", SHR_MOD_COMMON));
    if (sem == nullptr) {
        return nullptr;
    }
    if (sem_init(&sem->sem, 0, value) != 0) {
        xsal_mem_free(sem);
        return nullptr;
    }
    return sem;
}

int xsal_sem_destroy_(xsal_sem_t sem, const char *, int)
{
    if (sem == nullptr) {
        return -1;
    }
    sem_destroy(&sem->sem);
    xsal_mem_free(sem);
    return 0;
}

int xsal_sem_take_(xsal_sem_t sem, const char *file, int line)
{
    return xsal_sem_take_timeout_(sem, XSAL_SEM_FOREVER, file, line);
}

int xsal_sem_take_timeout_(xsal_sem_t sem, u32 usec, const char *, int)
{
    if (sem == nullptr) {
        return -1;
    }
    int rc;
    if (usec == XSAL_SEM_FOREVER) {
        do {
            rc = sem_wait(&sem->sem);
        } while (rc != 0 && errno == EINTR);
    } else {
        const timespec deadline = _abs_time_after_usec(usec);
        do {
            rc = sem_timedwait(&sem->sem, &deadline);
        } while (rc != 0 && errno == EINTR);
    }
    return rc == 0 ? 0 : -1;
}

int xsal_sem_trytake_(xsal_sem_t sem, const char *, int)
{
    return sem != nullptr && sem_trywait(&sem->sem) == 0 ? 0 : -1;
}

int xsal_sem_give_(xsal_sem_t sem, const char *, int)
{
    return sem != nullptr && sem_post(&sem->sem) == 0 ? 0 : -1;
}

int xsal_cond_init(xsal_cond_t *cond)
{
    return pthread_cond_init(cond, nullptr);
}

int xsal_cond_destroy(xsal_cond_t *cond)
{
    return pthread_cond_destroy(cond);
}

int xsal_cond_wait(xsal_cond_t *cond, xsal_mutex_t mutex)
{
    return mutex != nullptr ? pthread_cond_wait(cond, &mutex->m) : EINVAL;
}

int xsal_cond_timedwait(xsal_cond_t *cond, xsal_mutex_t mutex, const struct timespec *abstime)
{
    return mutex != nullptr ? pthread_cond_timedwait(cond, &mutex->m, abstime) : EINVAL;
}

int xsal_cond_signal(xsal_cond_t *cond)
{
    return pthread_cond_signal(cond);
}

int xsal_cond_broadcast(xsal_cond_t *cond)
{
    return pthread_cond_broadcast(cond);
}

int xsal_mutex_stat(void)
{
    return 0;
}

int xsal_mutex_get_next(void)
{
    return 0;
}

int xsal_sem_stat(void)
{
    return 0;
}

int xsal_sem_get_next(void)
{
    return 0;
}

int xsal_rw_mutex_stat(void)
{
    return 0;
}

int xsal_rw_mutex_get_next(void)
{
    return 0;
}

int xsal_event_create(xsal_event_t *event, u32 auto_reset)
{
    if (event == nullptr) {
        return -4;
    }
    auto *ev = static_cast<xsal_event_t>(xsal_malloc(sizeof(xsal_event_s), "event", SHR_MOD_COMMON));
    if (ev == nullptr) {
        return -2;
    }
    ev->mutex = xsal_mutex_create_("event mutex", __FILE__, __LINE__);
    if (ev->mutex == nullptr) {
        xsal_mem_free(ev);
        return -2;
    }
    pthread_cond_init(&ev->cond, nullptr);
    ev->signalled = 0;
    ev->auto_reset = auto_reset;
    *event = ev;
    return 0;
}

int xsal_event_destroy(xsal_event_t event)
{
    if (event != nullptr) {
        pthread_cond_destroy(&event->cond);
        xsal_mutex_destroy_(event->mutex, __FILE__, __LINE__);
        xsal_mem_free(event);
    }
    return 0;
}

int xsal_event_set(xsal_event_t event)
{
    if (event == nullptr) {
        return -1;
    }
    xsal_mutex_lock_(event->mutex, __FILE__, __LINE__);
    if (event->signalled == 0) {
        event->signalled = 1;
        pthread_cond_broadcast(&event->cond);
    }
    xsal_mutex_unlock_(event->mutex, __FILE__, __LINE__);
    return 0;
}

int xsal_event_reset(xsal_event_t event)
{
    if (event == nullptr) {
        return -1;
    }
    xsal_mutex_lock_(event->mutex, __FILE__, __LINE__);
    event->signalled = 0;
    xsal_mutex_unlock_(event->mutex, __FILE__, __LINE__);
    return 0;
}

int xsal_event_wait(xsal_event_t event, int32_t ms)
{
    if (event == nullptr) {
        return 0;
    }
    const timespec deadline = _abs_time_after_usec(ms < 0 ? 0 : static_cast<u64>(ms) * 1000u);
    int result = 0;
    xsal_mutex_lock_(event->mutex, __FILE__, __LINE__);
    for (;;) {
        if (event->signalled != 0) {
            if (event->auto_reset != 0) {
                event->signalled = 0;
            }
            result = 1;
            break;
        }
        const int rc = ms < 0 ? pthread_cond_wait(&event->cond, &event->mutex->m)
                              : pthread_cond_timedwait(&event->cond, &event->mutex->m, &deadline);
        if (rc == ETIMEDOUT) {
            break;
        }
    }
    xsal_mutex_unlock_(event->mutex, __FILE__, __LINE__);
    return result;
}

} // extern "C"
