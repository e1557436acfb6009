// The timer manager: one thread, "tdl_xsal_timer", runs the callbacks of
// all started timers from a list sorted by expiry, earliest first.  Timers
// are periodic until stopped.  Equal expiries keep the order in which the
// timers were started.
#include <atomic>

#include "sal/linux_um/xsal_int.h"

extern "C" {
struct xsal_timer_s *g_xsal_timer_head;
u32 g_xsal_timer_inited;
u64 (*g_xsal_timer_clock)(void) = xsal_time_usecs;
}

namespace {

std::atomic<u32> g_xsal_timer_exit;
xsal_mutex_t g_xsal_timer_mutex;
xsal_event_t g_xsal_timer_event;
xsal_thread_t g_xsal_timer_thread;
// Given by the thread when it leaves its loop, so that deinit never
// cancels it in the middle of its work.
xsal_sem_t g_xsal_timer_done;
// Serialises init and deinit.
pthread_mutex_t g_xsal_timer_init_lock = PTHREAD_MUTEX_INITIALIZER;

constexpr u64 kUsecPerSec = 1000000;

u64 _expiry_usecs(const xsal_timer_s *t)
{
    return t->end_sec * kUsecPerSec + t->end_usec;
}

// Seconds first, then microseconds: -1, 0 or 1.
int _xsal_timer_compare(const xsal_timer_s *a, const xsal_timer_s *b)
{
    if (a->end_sec != b->end_sec) {
        return a->end_sec < b->end_sec ? -1 : 1;
    }
    if (a->end_usec != b->end_usec) {
        return a->end_usec < b->end_usec ? -1 : 1;
    }
    return 0;
}

// Before the first timer that expires later than `t`, else at the tail:
// among equal expiries the newcomer goes behind.
void _insert_locked(xsal_timer_s *t)
{
    xsal_timer_s *prev = nullptr;
    xsal_timer_s *cur = g_xsal_timer_head;
    while (cur != nullptr && _xsal_timer_compare(cur, t) <= 0) {
        prev = cur;
        cur = cur->next;
    }
    t->prev = prev;
    t->next = cur;
    if (prev != nullptr) {
        prev->next = t;
    } else {
        g_xsal_timer_head = t;
    }
    if (cur != nullptr) {
        cur->prev = t;
    }
}

void _add_ms(xsal_timer_s *t, u32 ms)
{
    const u64 usec = t->end_usec + static_cast<u64>(ms) * 1000u;
    t->end_sec += usec / kUsecPerSec;
    t->end_usec = usec % kUsecPerSec;
}

void _xsal_timer_check(void *)
{
    for (;;) {
        if (g_xsal_timer_exit.load() == 1) {
            SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_TOP, "exit timer thread!\n");
            break;
        }
        xsal_mutex_lock_(g_xsal_timer_mutex, __FILE__, __LINE__);
        xsal_timer_s *head = g_xsal_timer_head;
        if (head == nullptr) {
            xsal_mutex_unlock_(g_xsal_timer_mutex, __FILE__, __LINE__);
            xsal_event_wait(g_xsal_timer_event, -1);
            continue;
        }
        const u64 now = g_xsal_timer_clock();
        const u64 end = _expiry_usecs(head);
        if (now < end) {
            // Rounded up, so that the wait does not end just short of the
            // expiry and spin.
            const u64 ms_left = (end - now + 999) / 1000;
            xsal_mutex_unlock_(g_xsal_timer_mutex, __FILE__, __LINE__);
            xsal_event_wait(g_xsal_timer_event, ms_left > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<i32>(ms_left));
            continue;
        }
        head->callback(head->arg);
        _add_ms(head, head->timeout);
        // Behind every timer of the same expiry, so that timers of one
        // period started one after the other take turns.
        if (head->next != nullptr && _xsal_timer_compare(head, head->next) >= 0) {
            tide::list_unlink(&g_xsal_timer_head, head);
            _insert_locked(head);
        }
        xsal_mutex_unlock_(g_xsal_timer_mutex, __FILE__, __LINE__);
    }
    // Deinit cancels the thread once it has the semaphore.  The thread's
    // cancellation is asynchronous, and a cancel landing in its way out (a
    // lock guard's destructor, which may not unwind) would end the process:
    // from here on the thread leaves by itself.
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    xsal_sem_give_(g_xsal_timer_done, __FILE__, __LINE__);
}

void _release_manager_objects()
{
    xsal_sem_destroy_(g_xsal_timer_done, __FILE__, __LINE__);
    xsal_event_destroy(g_xsal_timer_event);
    xsal_mutex_destroy_(g_xsal_timer_mutex, __FILE__, __LINE__);
    g_xsal_timer_done = nullptr;
    g_xsal_timer_event = nullptr;
    g_xsal_timer_mutex = nullptr;
}

} // namespace

extern "C" {

int xsal_timer_init(void)
{
    tide::PthreadLock lock(&g_xsal_timer_init_lock);
    if (g_xsal_timer_inited != 0) {
        SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_TOP, "Notice!!!timer manager has been initialized\n");
        return 0;
    }
    g_xsal_timer_mutex = xsal_mutex_create_("timer mutex", __FILE__, __LINE__);
    g_xsal_timer_done = xsal_sem_create_("timer done", 0, __FILE__, __LINE__);
    if (g_xsal_timer_mutex == nullptr || g_xsal_timer_done == nullptr ||
        xsal_event_create(&g_xsal_timer_event, 1) != 0) {
        _release_manager_objects();
        return -1;
    }
    g_xsal_timer_exit.store(0);
    if (xsal_thread_create(&g_xsal_timer_thread, "tdl_xsal_timer", 65536, _xsal_timer_check, nullptr) != 0) {
        _release_manager_objects();
        return -1;
    }
    g_xsal_timer_inited = 1;
    SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_TOP, "timer manager is initialized sucessfully \n");
    return 0;
}

int xsal_timer_deinit(void)
{
    tide::PthreadLock lock(&g_xsal_timer_init_lock);
    if (g_xsal_timer_inited == 0) {
        SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_TOP, "Notice!!!No timer manager has initialized\n");
        return 0;
    }
    bool busy;
    {
        tide::MutexGuard guard(g_xsal_timer_mutex);
        busy = g_xsal_timer_head != nullptr;
    }
    if (busy) {
        SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_TOP, "Notice!!!Please destroy all timers before deinit timer manager\n");
        return -1;
    }
    g_xsal_timer_exit.store(1);
    xsal_event_set(g_xsal_timer_event);
    xsal_sem_take_(g_xsal_timer_done, __FILE__, __LINE__);
    xsal_thread_destroy(&g_xsal_timer_thread);
    _release_manager_objects();
    g_xsal_timer_inited = 0;
    SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_TOP, "timer manager is deinitialized sucessfully\n");
    return 0;
}

int xsal_timer_create(xsal_timer_t *timer, const char *name, xsal_timer_func_t callback, void *arg)
{
    if (timer == nullptr) {
        return -4;
    }
    auto *t = static_cast<xsal_timer_t>(xsal_malloc(sizeof(xsal_timer_s), "temp_timer", SHR_MOD_COMMON));
    if (t == nullptr) {
        return -2;
    }
    *t = xsal_timer_s{};
    t->name = name;
    t->stopped = 1;
    t->callback = callback;
    t->arg = arg;
    *timer = t;
    return 0;
}

int xsal_timer_start(xsal_timer_t timer, u32 ms)
{
    if (timer == nullptr) {
        return -4;
    }
    if (g_xsal_timer_inited == 0 || timer->callback == nullptr) {
        return -1;
    }
    tide::MutexGuard guard(g_xsal_timer_mutex);
    if (timer->stopped == 0) {
        return 0;
    }
    const u64 now = g_xsal_timer_clock();
    timer->timeout = ms;
    timer->end_sec = now / kUsecPerSec;
    timer->end_usec = now % kUsecPerSec;
    _add_ms(timer, ms);
    _insert_locked(timer);
    if (g_xsal_timer_head == timer) {
        xsal_event_set(g_xsal_timer_event);
    }
    timer->stopped = 0;
    return 0;
}

int xsal_timer_stop(xsal_timer_t timer)
{
    if (timer == nullptr) {
        return -4;
    }
    if (g_xsal_timer_inited == 0) {
        return 0; // with no manager no timer is started
    }
    tide::MutexGuard guard(g_xsal_timer_mutex);
    if (timer->stopped == 0) {
        tide::list_unlink(&g_xsal_timer_head, timer);
        timer->stopped = 1;
    }
    return 0;
}

int xsal_timer_destroy(xsal_timer_t timer)
{
    if (timer == nullptr) {
        return -4;
    }
    xsal_timer_stop(timer);
    xsal_mem_free(timer);
    return 0;
}

} // extern "C"
