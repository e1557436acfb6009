// Threads.  Every thread made here has a record on the doubly linked
// thread list from before its creator returns until it ends or is
// destroyed.  Threads are detached, cancellable at any point, and block
// SIGINT so that the console's signal goes to the application's own
// threads.
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstring>

#include "sal/linux_um/xsal_int.h"

extern "C" {
xsal_thread_info *g_list_thread_head;
}

namespace {

pthread_mutex_t g_xsal_thread_list_lock = PTHREAD_MUTEX_INITIALIZER;
xsal_thread_t g_xsal_thread_main;

constexpr u32 kDefaultStack = 65536;
constexpr u32 kMinStack = 16384;

// Holds the thread list.  Cancellation is off meanwhile: a thread
// cancelled while it holds the list lock would keep it for ever.
class _ListGuard {
public:
    _ListGuard()
    {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &old_state_);
        pthread_mutex_lock(&g_xsal_thread_list_lock);
    }
    ~_ListGuard()
    {
        pthread_mutex_unlock(&g_xsal_thread_list_lock);
        pthread_setcancelstate(old_state_, nullptr);
    }
    _ListGuard(const _ListGuard &) = delete;
    _ListGuard &operator=(const _ListGuard &) = delete;

private:
    int old_state_ = PTHREAD_CANCEL_ENABLE;
};

// The record of `info` if it is still on the list, for thread `tid`.
// Records are compared by address only: a record that left the list may
// have been freed.
xsal_thread_info *_find_locked(const xsal_thread_info *info, pthread_t tid)
{
    for (xsal_thread_info *p = g_list_thread_head; p != nullptr; p = p->next) {
        if (p == info && pthread_equal(p->tid, tid)) {
            return p;
        }
    }
    return nullptr;
}

xsal_thread_info *_find_by_tid_locked(pthread_t tid)
{
    for (xsal_thread_info *p = g_list_thread_head; p != nullptr; p = p->next) {
        if (pthread_equal(p->tid, tid)) {
            return p;
        }
    }
    return nullptr;
}

void *_xsal_thread_boot(void *arg)
{
    auto *info = static_cast<xsal_thread_info *>(arg);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    pthread_detach(pthread_self());
    pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, nullptr);
    info->tid = pthread_self();
    if (info->name != nullptr) {
        prctl(PR_SET_NAME, info->name, 0, 0, 0);
    }
    // From the give on, the record may be freed by xsal_thread_destroy:
    // keep what the thread needs.
    const xsal_thread_func_t entry = info->entry;
    void *const entry_arg = info->arg;
    xsal_sem_give_(info->boot_sem, __FILE__, __LINE__);
    entry(entry_arg);
    xsal_thread_exit();
    return nullptr;
}

} // namespace

extern "C" {

int xsal_thread_create(xsal_thread_t *thread, const char *name, int32_t stack_size, xsal_thread_func_t entry,
                       void *arg)
{
    if (thread == nullptr || entry == nullptr) {
        return -1;
    }
    u32 stack = stack_size <= 0 ? kDefaultStack : static_cast<u32>(stack_size);
    if (stack < kMinStack) {
        stack = kMinStack;
    }
    auto *info =
        static_cast<xsal_thread_info *>(xsal_malloc(sizeof(xsal_thread_info), "xsal_thread_create", SHR_MOD_COMMON));
    if (info == nullptr) {
        return -1;
    }
    std::memset(info, 0, sizeof(*info));
    info->entry = entry;
    info->name = name;
    info->arg = arg;
    info->stack_size = stack;
    info->boot_sem = xsal_sem_create_("threadBoot", 0, __FILE__, __LINE__);
    if (info->boot_sem == nullptr) {
        xsal_mem_free(info);
        return -1;
    }
    pthread_t tid;
    {
        // The record goes on the list before the new thread can end and
        // look for it there.
        _ListGuard guard;
        const int rc = pthread_create(&tid, nullptr, _xsal_thread_boot, info);
        if (rc != 0) {
            xsal_sem_destroy_(info->boot_sem, __FILE__, __LINE__);
            xsal_mem_free(info);
            return rc;
        }
        thread->tid = tid;
        thread->state = XSAL_THREAD_STATE_CREATED;
        thread->info = info;
        info->next = g_list_thread_head;
        if (g_list_thread_head != nullptr) {
            g_list_thread_head->prev = info;
        }
        g_list_thread_head = info;
    }
    xsal_sem_t boot = info->boot_sem;
    xsal_sem_take_(boot, __FILE__, __LINE__);
    xsal_sem_destroy_(boot, __FILE__, __LINE__);
    return 0;
}

int xsal_thread_destroy(xsal_thread_t *thread)
{
    if (thread == nullptr) {
        return -1;
    }
    thread->state = XSAL_THREAD_STATE_DESTROYED;
    {
        _ListGuard guard;
        xsal_thread_info *info = _find_locked(thread->info, thread->tid);
        if (info == nullptr) {
            return 0; // it ended by itself
        }
        // While the record is on the list the thread has not reached the
        // end of xsal_thread_exit, so its id is still valid.  The record is
        // freed before the guard ends: a thread that destroys itself is
        // cancelled as soon as cancellation is on again.
        if (pthread_cancel(thread->tid) != 0) {
            return -1;
        }
        tide::list_unlink(&g_list_thread_head, info);
        xsal_mem_free(info);
    }
    return 0;
}

pthread_t xsal_thread_self(void)
{
    return pthread_self();
}

int xsal_thread_join(xsal_thread_t *thread, void **result)
{
    if (thread == nullptr) {
        return -1;
    }
    return pthread_join(thread->tid, result);
}

char *xsal_thread_name(xsal_thread_t *thread, char *buffer, int32_t size)
{
    if (buffer == nullptr || size <= 0) {
        return nullptr;
    }
    buffer[0] = '\0';
    if (thread == nullptr) {
        return nullptr;
    }
    _ListGuard guard;
    const xsal_thread_info *info = _find_locked(thread->info, thread->tid);
    if (info == nullptr) {
        return nullptr;
    }
    if (info->name != nullptr) {
        std::strncpy(buffer, info->name, static_cast<size_t>(size));
        buffer[size - 1] = '\0';
    }
    return buffer;
}

void xsal_thread_exit(void)
{
    _ListGuard guard;
    xsal_thread_info *info = _find_by_tid_locked(pthread_self());
    if (info != nullptr) {
        tide::list_unlink(&g_list_thread_head, info);
        xsal_mem_free(info);
    }
}

void xsal_thread_yield(void)
{
    sched_yield();
}

void xsal_thread_main_set(xsal_thread_t thread)
{
    g_xsal_thread_main = thread;
}

xsal_thread_t xsal_thread_main_get(void)
{
    return g_xsal_thread_main;
}

int xsal_pid_get(void)
{
    return static_cast<int>(getpid());
}

int xsal_core_init(void)
{
    xsal_udelay(0);
    xsal_thread_t self{};
    self.tid = pthread_self();
    self.state = XSAL_THREAD_STATE_CREATED;
    xsal_thread_main_set(self);
    return 0;
}

} // extern "C"
