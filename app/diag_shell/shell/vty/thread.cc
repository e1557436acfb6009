// The event loop: registrations, the fetch pass over select, timers on a
// per-thread clock that a step of the wall clock cannot stall.
#include <pthread.h>

#include <atomic>
#include <cassert>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <initializer_list>

#include "app/diag_shell/shell/vty/thread.h"

namespace {

constexpr long k_usec_per_sec = 1000000;

pthread_key_t g_vthread_key;
std::atomic<bool> g_vthread_key_inited;
pthread_mutex_t g_vthread_key_lock = PTHREAD_MUTEX_INITIALIZER;

int _clock_read(clockid_t clock, struct timeval *tv)
{
    struct timespec ts;
    if (clock_gettime(clock, &ts) != 0) {
        return -1;
    }
    tv->tv_sec = ts.tv_sec;
    tv->tv_usec = ts.tv_nsec / 1000;
    return 0;
}

int _wallclock_system(struct timeval *tv)
{
    return _clock_read(CLOCK_REALTIME, tv);
}

vthread_wallclock_t g_vthread_wallclock = _wallclock_system;

void _tls_destroy(void *tls)
{
    xsal_mem_free(tls);
}

// Microseconds into 0 .. 999,999, carrying into the seconds.
struct timeval _normalise(struct timeval tv)
{
    while (tv.tv_usec >= k_usec_per_sec) {
        tv.tv_usec -= k_usec_per_sec;
        tv.tv_sec++;
    }
    while (tv.tv_usec < 0) {
        tv.tv_usec += k_usec_per_sec;
        tv.tv_sec--;
    }
    return tv;
}

struct timeval _add(struct timeval a, struct timeval b)
{
    return _normalise({a.tv_sec + b.tv_sec, a.tv_usec + b.tv_usec});
}

// a - b, never below zero.
struct timeval _sub_clamped(struct timeval a, struct timeval b)
{
    struct timeval d = _normalise({a.tv_sec - b.tv_sec, a.tv_usec - b.tv_usec});
    if (d.tv_sec < 0) {
        d = {0, 0};
    }
    return d;
}

int _cmp_time(struct timeval a, struct timeval b)
{
    if (a.tv_sec != b.tv_sec) {
        return a.tv_sec < b.tv_sec ? -1 : 1;
    }
    if (a.tv_usec != b.tv_usec) {
        return a.tv_usec < b.tv_usec ? -1 : 1;
    }
    return 0;
}

// The calling thread's record, made on first use.
vthread_tls *_tls_get()
{
    if (!g_vthread_key_inited.load(std::memory_order_acquire)) {
        pthread_mutex_lock(&g_vthread_key_lock);
        int rc = 0;
        if (!g_vthread_key_inited.load(std::memory_order_relaxed)) {
            rc = pthread_key_create(&g_vthread_key, _tls_destroy);
            g_vthread_key_inited.store(rc == 0, std::memory_order_release);
        }
        pthread_mutex_unlock(&g_vthread_key_lock);
        if (rc != 0) {
            xsal_printf("pthread_key_create thread tls failed: %s.\n", std::strerror(rc));
            return nullptr;
        }
    }
    auto *tls = static_cast<vthread_tls *>(pthread_getspecific(g_vthread_key));
    if (tls != nullptr) {
        return tls;
    }
    tls = static_cast<vthread_tls *>(xsal_malloc(sizeof(vthread_tls), "vty_tls", SHR_MOD_CLI));
    if (tls == nullptr) {
        xsal_printf("malloc tls failed.\n");
        return nullptr;
    }
    std::memset(tls, 0, sizeof(*tls));
    const int rc = pthread_setspecific(g_vthread_key, tls);
    if (rc != 0) {
        xsal_printf("set tls failed. error: %s.\n", std::strerror(rc));
        xsal_mem_free(tls);
        return nullptr;
    }
    return tls;
}

// Brings the loop's clock up to date with the wall clock.  A step of the
// wall clock backwards counts as one second.
void _update_clock(vthread_tls *tls)
{
    g_vthread_wallclock(&tls->recent_time);
    if (tls->timers_inited == 0) {
        tls->relative_time_base = tls->recent_time;
        tls->last_recent_time = tls->recent_time;
        tls->timers_inited = 1;
    }
    if (_cmp_time(tls->recent_time, tls->last_recent_time) < 0) {
        tls->relative_time.tv_sec++;
        tls->relative_time.tv_usec = 0;
    } else {
        tls->relative_time = _add(tls->relative_time, _sub_clamped(tls->recent_time, tls->last_recent_time));
    }
    tls->last_recent_time = tls->recent_time;
}

void _list_add(vthread_list *list, vthread *t)
{
    t->next = nullptr;
    t->prev = list->tail;
    if (list->tail != nullptr) {
        list->tail->next = t;
    } else {
        list->head = t;
    }
    list->tail = t;
    list->count++;
}

void _list_delete(vthread_list *list, vthread *t)
{
    if (t->next != nullptr) {
        t->next->prev = t->prev;
    } else {
        list->tail = t->prev;
    }
    if (t->prev != nullptr) {
        t->prev->next = t->next;
    } else {
        list->head = t->next;
    }
    t->next = nullptr;
    t->prev = nullptr;
    list->count--;
}

vthread *_list_pop(vthread_list *list)
{
    vthread *t = list->head;
    if (t != nullptr) {
        _list_delete(list, t);
    }
    return t;
}

void _list_free(vthread_list *list, thread_master *m)
{
    while (vthread *t = _list_pop(list)) {
        xsal_mem_free(t);
        m->alloc--;
    }
}

void _add_unuse(thread_master *m, vthread *t)
{
    assert(t->next == nullptr && t->prev == nullptr);
    t->type = THREAD_UNUSED;
    _list_add(&m->unuse, t);
}

int _timer_cmp(void *a, void *b)
{
    return _cmp_time(static_cast<vthread *>(a)->u.sands, static_cast<vthread *>(b)->u.sands);
}

void _timer_update(void *node, int index)
{
    static_cast<vthread *>(node)->index = index;
}

pqueue *_timer_queue_create()
{
    pqueue *q = pqueue_create();
    if (q != nullptr) {
        q->cmp = _timer_cmp;
        q->update = _timer_update;
    }
    return q;
}

void _queue_free(pqueue *q, thread_master *m)
{
    if (q == nullptr) {
        return;
    }
    for (i32 i = 0; i < q->size; i++) {
        xsal_mem_free(q->array[i]);
        m->alloc--;
    }
    pqueue_delete(q);
}

// A record for a new registration: one kept for reuse, or a new one.
vthread *_thread_get(thread_master *m, u8 type, vthread_func_t func, void *arg, const char *funcname,
                     const char *schedfrom, u32 schedfrom_line)
{
    vthread *t = _list_pop(&m->unuse);
    if (t == nullptr) {
        t = static_cast<vthread *>(xsal_malloc(sizeof(vthread), "vty_thread", SHR_MOD_CLI));
        if (t == nullptr) {
            return nullptr;
        }
        std::memset(t, 0, sizeof(*t));
        m->alloc++;
    }
    t->type = type;
    t->add_type = type;
    t->master = m;
    t->func = func;
    t->arg = arg;
    t->index = -1;
    t->funcname = funcname;
    t->schedfrom = schedfrom;
    t->schedfrom_line = schedfrom_line;
    return t;
}

vthread *_add_io(thread_master *m, u8 type, vthread_func_t func, void *arg, int fd, const char *funcname,
                 const char *schedfrom, u32 schedfrom_line)
{
    assert(m != nullptr);
    // The tables hold descriptors below the limit only.
    if (fd < 0 || fd >= m->fd_limit) {
        return nullptr;
    }
    fd_set *set = type == THREAD_READ ? &m->readfd : &m->writefd;
    if (FD_ISSET(fd, set)) {
        xsal_printf("There is already %s fd [%d]\n", type == THREAD_READ ? "read" : "write", fd);
        return nullptr;
    }
    vthread *t = _thread_get(m, type, func, arg, funcname, schedfrom, schedfrom_line);
    if (t == nullptr) {
        return nullptr;
    }
    FD_SET(fd, set);
    t->u.fd = fd;
    (type == THREAD_READ ? m->read : m->write)[fd] = t;
    return t;
}

vthread *_add_timer(thread_master *m, u8 type, vthread_func_t func, void *arg, const struct timeval *delay,
                    const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    assert(m != nullptr && delay != nullptr);
    assert(type == THREAD_TIMER || type == THREAD_BACKGROUND);
    vthread_tls *tls = _tls_get();
    if (tls == nullptr) {
        return nullptr;
    }
    vthread *t = _thread_get(m, type, func, arg, funcname, schedfrom, schedfrom_line);
    if (t == nullptr) {
        return nullptr;
    }
    _update_clock(tls);
    t->u.sands = _add(tls->relative_time, *delay);
    if (pqueue_enqueue(t, type == THREAD_TIMER ? m->timer : m->background) != 0) {
        _add_unuse(m, t);
        return nullptr;
    }
    return t;
}

struct timeval _msec(long msec)
{
    return {msec / 1000, (msec % 1000) * 1000};
}

// Time until the first record of a queue is due; false for an empty queue.
bool _queue_wait(pqueue *q, const vthread_tls *tls, struct timeval *wait)
{
    if (q->size == 0) {
        return false;
    }
    *wait = _sub_clamped(static_cast<vthread *>(q->array[0])->u.sands, tls->relative_time);
    return true;
}

// Moves every due record of a timer queue to ready, earliest first.
void _move_due(thread_master *m, pqueue *q, const vthread_tls *tls)
{
    while (q->size > 0) {
        auto *t = static_cast<vthread *>(q->array[0]);
        if (_cmp_time(t->u.sands, tls->relative_time) > 0) {
            break;
        }
        pqueue_dequeue(q);
        t->index = -1;
        t->type = THREAD_READY;
        _list_add(&m->ready, t);
    }
}

// Moves a descriptor's record to ready and clears its interest.
void _move_io(thread_master *m, vthread **slot, fd_set *set, int fd)
{
    vthread *t = *slot;
    FD_CLR(fd, set);
    *slot = nullptr;
    t->type = THREAD_READY;
    _list_add(&m->ready, t);
}

// The next record to run, or nullptr to end the loop.
vthread *_thread_fetch(thread_master *m, vthread_tls *tls)
{
    for (;;) {
        if (tls->stop != 0) {
            return nullptr;
        }
        if (vthread *t = _list_pop(&m->ready)) {
            return t;
        }
        while (vthread *t = _list_pop(&m->event)) {
            t->type = THREAD_READY;
            _list_add(&m->ready, t);
        }
        fd_set readfd = m->readfd;
        fd_set writefd = m->writefd;
        fd_set exceptfd = m->exceptfd;
        struct timeval wait = {0, 0};
        struct timeval *wait_ptr = &wait;
        if (m->ready.count == 0) {
            _update_clock(tls);
            struct timeval timer_wait;
            struct timeval background_wait;
            const bool has_timer = _queue_wait(m->timer, tls, &timer_wait);
            const bool has_background = _queue_wait(m->background, tls, &background_wait);
            if (has_timer && has_background) {
                wait = _cmp_time(timer_wait, background_wait) <= 0 ? timer_wait : background_wait;
            } else if (has_timer || has_background) {
                wait = has_timer ? timer_wait : background_wait;
            } else {
                wait_ptr = nullptr;
            }
        }
        int num = select(FD_SETSIZE, &readfd, &writefd, &exceptfd, wait_ptr);
        if (num < 0) {
            if (errno == EINTR) {
                continue;
            }
            xsal_printf("select() error: %s\n", std::strerror(errno));
            return nullptr;
        }
        _update_clock(tls);
        _move_due(m, m->timer, tls);
        for (int fd = 0; num > 0 && fd < m->fd_limit; fd++) {
            if (m->read[fd] != nullptr && FD_ISSET(fd, &readfd)) {
                _move_io(m, &m->read[fd], &m->readfd, fd);
                num--;
            }
            if (m->write[fd] != nullptr && FD_ISSET(fd, &writefd)) {
                _move_io(m, &m->write[fd], &m->writefd, fd);
                num--;
            }
        }
        _move_due(m, m->background, tls);
        if (vthread *t = _list_pop(&m->ready)) {
            return t;
        }
        if (tls->stop != 0) {
            return nullptr;
        }
    }
}

void _thread_call(vthread_tls *tls, vthread *t)
{
    tls->current = t;
    t->func(t);
    tls->current = nullptr;
    if (t->master != nullptr) {
        _add_unuse(t->master, t);
    }
}

} // namespace

extern "C" {

void vthread_wallclock_set(vthread_wallclock_t func)
{
    g_vthread_wallclock = func != nullptr ? func : _wallclock_system;
}

thread_master *vthread_master_create(void)
{
    if (_tls_get() == nullptr) {
        return nullptr;
    }
    auto *m = static_cast<thread_master *>(xsal_malloc(sizeof(thread_master), "vty_master", SHR_MOD_CLI));
    if (m == nullptr) {
        return nullptr;
    }
    std::memset(m, 0, sizeof(*m));
    m->timer = _timer_queue_create();
    m->background = _timer_queue_create();
    if (m->timer == nullptr || m->background == nullptr) {
        pqueue_delete(m->timer);
        pqueue_delete(m->background);
        xsal_mem_free(m);
        return nullptr;
    }
    m->fd_limit = THREAD_FD_LIMIT;
    FD_ZERO(&m->readfd);
    FD_ZERO(&m->writefd);
    FD_ZERO(&m->exceptfd);
    return m;
}

void thread_master_free(thread_master *m)
{
    if (m == nullptr) {
        return;
    }
    for (int fd = 0; fd < THREAD_FD_LIMIT; fd++) {
        for (vthread **slot : {&m->read[fd], &m->write[fd]}) {
            if (*slot != nullptr) {
                xsal_mem_free(*slot);
                *slot = nullptr;
                m->alloc--;
            }
        }
    }
    _queue_free(m->timer, m);
    _list_free(&m->event, m);
    _list_free(&m->ready, m);
    _list_free(&m->unuse, m);
    _queue_free(m->background, m);
    xsal_mem_free(m);
}

vthread *funcname_thread_add_read(thread_master *m, vthread_func_t func, void *arg, int fd, const char *funcname,
                                  const char *schedfrom, u32 schedfrom_line)
{
    return _add_io(m, THREAD_READ, func, arg, fd, funcname, schedfrom, schedfrom_line);
}

vthread *funcname_thread_add_write(thread_master *m, vthread_func_t func, void *arg, int fd,
                                   const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    return _add_io(m, THREAD_WRITE, func, arg, fd, funcname, schedfrom, schedfrom_line);
}

vthread *funcname_thread_add_timer(thread_master *m, vthread_func_t func, void *arg, long seconds,
                                   const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    const struct timeval delay = {seconds, 0};
    return _add_timer(m, THREAD_TIMER, func, arg, &delay, funcname, schedfrom, schedfrom_line);
}

vthread *funcname_thread_add_timer_msec(thread_master *m, vthread_func_t func, void *arg, long msec,
                                        const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    const struct timeval delay = _msec(msec);
    return _add_timer(m, THREAD_TIMER, func, arg, &delay, funcname, schedfrom, schedfrom_line);
}

vthread *funcname_thread_add_timer_tv(thread_master *m, vthread_func_t func, void *arg, const struct timeval *tv,
                                      const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    return _add_timer(m, THREAD_TIMER, func, arg, tv, funcname, schedfrom, schedfrom_line);
}

vthread *funcname_thread_add_background(thread_master *m, vthread_func_t func, void *arg, long msec,
                                        const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    const struct timeval delay = _msec(msec);
    return _add_timer(m, THREAD_BACKGROUND, func, arg, &delay, funcname, schedfrom, schedfrom_line);
}

vthread *funcname_thread_add_event(thread_master *m, vthread_func_t func, void *arg, i32 val,
                                   const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    assert(m != nullptr);
    vthread *t = _thread_get(m, THREAD_EVENT, func, arg, funcname, schedfrom, schedfrom_line);
    if (t != nullptr) {
        t->u.val = val;
        _list_add(&m->event, t);
    }
    return t;
}

vthread *funcname_thread_execute(thread_master *m, vthread_func_t func, void *arg, i32 val,
                                 const char *funcname, const char *schedfrom, u32 schedfrom_line)
{
    (void)m;
    vthread_tls *tls = _tls_get();
    if (tls == nullptr) {
        return nullptr;
    }
    vthread t;
    std::memset(&t, 0, sizeof(t));
    t.type = THREAD_UNUSED;
    t.add_type = THREAD_EXECUTE;
    t.func = func;
    t.arg = arg;
    t.u.val = val;
    t.index = -1;
    t.funcname = funcname;
    t.schedfrom = schedfrom;
    t.schedfrom_line = schedfrom_line;
    vthread *outer = tls->current;
    _thread_call(tls, &t);
    tls->current = outer;
    return nullptr;
}

void vthread_cancel(vthread *thread)
{
    if (thread == nullptr || thread->master == nullptr) {
        return;
    }
    // The running record goes back for reuse when its callback returns.
    vthread_tls *tls = _tls_get();
    if (tls != nullptr && tls->current == thread) {
        return;
    }
    thread_master *m = thread->master;
    switch (thread->type) {
    case THREAD_READ:
    case THREAD_WRITE: {
        fd_set *set = thread->type == THREAD_READ ? &m->readfd : &m->writefd;
        assert(FD_ISSET(thread->u.fd, set));
        FD_CLR(thread->u.fd, set);
        (thread->type == THREAD_READ ? m->read : m->write)[thread->u.fd] = nullptr;
        break;
    }
    case THREAD_TIMER:
    case THREAD_BACKGROUND:
        assert(thread->index >= 0);
        pqueue_remove_at(thread->index, thread->type == THREAD_TIMER ? m->timer : m->background);
        thread->index = -1;
        break;
    case THREAD_EVENT:
        _list_delete(&m->event, thread);
        break;
    case THREAD_READY:
        _list_delete(&m->ready, thread);
        break;
    default:
        return;
    }
    _add_unuse(m, thread);
}

u32 vthread_cancel_event(thread_master *m, void *arg)
{
    u32 n = 0;
    for (vthread_list *list : {&m->event, &m->ready}) {
        vthread *t = list->head;
        while (t != nullptr) {
            vthread *next = t->next;
            if (t->arg == arg) {
                _list_delete(list, t);
                _add_unuse(m, t);
                n++;
            }
            t = next;
        }
    }
    return n;
}

void thread_main(thread_master *m)
{
    vthread_tls *tls = _tls_get();
    if (tls == nullptr || m == nullptr) {
        return;
    }
    while (vthread *t = _thread_fetch(m, tls)) {
        _thread_call(tls, t);
    }
    // The loop can be run again.
    tls->stop = 0;
}

void thread_stop(void)
{
    if (vthread_tls *tls = _tls_get()) {
        tls->stop = 1;
    }
}

vthread *vthread_current(void)
{
    vthread_tls *tls = _tls_get();
    return tls != nullptr ? tls->current : nullptr;
}

struct timeval thread_timer_remain(vthread *thread)
{
    vthread_tls *tls = _tls_get();
    if (tls == nullptr || thread == nullptr) {
        return {0, 0};
    }
    _update_clock(tls);
    return _sub_clamped(thread->u.sands, tls->relative_time);
}

unsigned long vthread_timer_remain_second(vthread *thread)
{
    return static_cast<unsigned long>(thread_timer_remain(thread).tv_sec);
}

long timeval_elapsed(struct timeval a, struct timeval b)
{
    return (a.tv_sec - b.tv_sec) * k_usec_per_sec + (a.tv_usec - b.tv_usec);
}

int vthread_gettime(int clock, struct timeval *tv)
{
    if (tv == nullptr) {
        errno = EINVAL;
        return -1;
    }
    switch (clock) {
    case 0:
        return g_vthread_wallclock(tv);
    case 1:
        return _clock_read(CLOCK_MONOTONIC, tv);
    case 2: {
        vthread_tls *tls = _tls_get();
        if (tls == nullptr) {
            return -1;
        }
        _update_clock(tls);
        *tv = _add(tls->relative_time_base, tls->relative_time);
        return 0;
    }
    default:
        errno = EINVAL;
        return -1;
    }
}

time_t vthread_time(time_t *t)
{
    struct timeval tv = {0, 0};
    vthread_gettime(2, &tv);
    if (t != nullptr) {
        *t = tv.tv_sec;
    }
    return tv.tv_sec;
}

struct timeval recent_relative_time(void)
{
    vthread_tls *tls = _tls_get();
    return tls != nullptr ? tls->relative_time : timeval{0, 0};
}

} // extern "C"
