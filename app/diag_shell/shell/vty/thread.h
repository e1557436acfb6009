/*
 * The shell's event loop: a cooperative scheduler on one operating-system
 * thread.  A "thread" here is a one-shot registration of a callback: for a
 * readable or writable descriptor, a timer, a low-priority timer or an
 * event.  A callback runs to completion; to run again it registers again.
 *
 * A master belongs to the thread that created it; its clock and its stop
 * flag are that thread's own, so many loops can run in one process.  The
 * only way into a loop from another thread is a pipe on which the loop
 * has read interest.
 */
#ifndef TIDE_VTY_THREAD_H
#define TIDE_VTY_THREAD_H

#include <sys/select.h>
#include <sys/time.h>

#include "app/diag_shell/shell/vty/pqueue.h"

#ifdef __cplusplus
extern "C" {
#endif

/* States of a record. */
#define THREAD_READ 0
#define THREAD_WRITE 1
#define THREAD_TIMER 2
#define THREAD_EVENT 3
#define THREAD_READY 4
#define THREAD_BACKGROUND 5
#define THREAD_UNUSED 6
#define THREAD_EXECUTE 7

/* Descriptors 0 to 255 can be watched. */
#define THREAD_FD_LIMIT 256

typedef struct vthread vthread;
typedef struct thread_master thread_master;
typedef int (*vthread_func_t)(vthread *thread);

struct vthread {
    u8 type;
    u8 add_type;
    vthread *next;
    vthread *prev;
    thread_master *master;
    vthread_func_t func;
    void *arg;
    union {
        i32 fd;
        i32 val;
        struct timeval sands; /* expiry on the loop's clock */
    } u;
    i32 index; /* place in a timer queue, -1 in none */
    const char *funcname;
    const char *schedfrom;
    u32 schedfrom_line;
};

typedef struct vthread_list {
    vthread *head;
    vthread *tail;
    u32 count;
} vthread_list;

struct thread_master {
    vthread *read[THREAD_FD_LIMIT];
    vthread *write[THREAD_FD_LIMIT];
    pqueue *timer;
    vthread_list event;
    vthread_list ready;
    vthread_list unuse;
    pqueue *background;
    i32 fd_limit;
    fd_set readfd;
    fd_set writefd;
    fd_set exceptfd;
    u64 alloc;
};

/* The calling thread's record of the loop: clocks, the running record and
 * the stop flag. */
typedef struct vthread_tls {
    struct timeval recent_time;
    struct timeval last_recent_time;
    struct timeval relative_time;
    struct timeval relative_time_base;
    u16 timers_inited;
    vthread *current;
    u32 stop;
} vthread_tls;

thread_master *vthread_master_create(void);
void thread_master_free(thread_master *m);

vthread *funcname_thread_add_read(thread_master *m, vthread_func_t func, void *arg, int fd, const char *funcname,
                                  const char *schedfrom, u32 schedfrom_line);
vthread *funcname_thread_add_write(thread_master *m, vthread_func_t func, void *arg, int fd,
                                   const char *funcname, const char *schedfrom, u32 schedfrom_line);
vthread *funcname_thread_add_timer(thread_master *m, vthread_func_t func, void *arg, long seconds,
                                   const char *funcname, const char *schedfrom, u32 schedfrom_line);
vthread *funcname_thread_add_timer_msec(thread_master *m, vthread_func_t func, void *arg, long msec,
                                        const char *funcname, const char *schedfrom, u32 schedfrom_line);
vthread *funcname_thread_add_timer_tv(thread_master *m, vthread_func_t func, void *arg, const struct timeval *tv,
                                      const char *funcname, const char *schedfrom, u32 schedfrom_line);
vthread *funcname_thread_add_background(thread_master *m, vthread_func_t func, void *arg, long msec,
                                        const char *funcname, const char *schedfrom, u32 schedfrom_line);
vthread *funcname_thread_add_event(thread_master *m, vthread_func_t func, void *arg, i32 val,
                                   const char *funcname, const char *schedfrom, u32 schedfrom_line);
/* Runs `func` at once on a record of its own, which no list holds; NULL. */
vthread *funcname_thread_execute(thread_master *m, vthread_func_t func, void *arg, i32 val,
                                 const char *funcname, const char *schedfrom, u32 schedfrom_line);

#define thread_add_read(m, f, a, fd) funcname_thread_add_read(m, f, a, fd, #f, __FILE__, __LINE__)
#define thread_add_write(m, f, a, fd) funcname_thread_add_write(m, f, a, fd, #f, __FILE__, __LINE__)
#define thread_add_timer(m, f, a, v) funcname_thread_add_timer(m, f, a, v, #f, __FILE__, __LINE__)
#define thread_add_timer_msec(m, f, a, v) funcname_thread_add_timer_msec(m, f, a, v, #f, __FILE__, __LINE__)
#define thread_add_timer_tv(m, f, a, v) funcname_thread_add_timer_tv(m, f, a, v, #f, __FILE__, __LINE__)
#define thread_add_background(m, f, a, v) funcname_thread_add_background(m, f, a, v, #f, __FILE__, __LINE__)
#define thread_add_event(m, f, a, v) funcname_thread_add_event(m, f, a, v, #f, __FILE__, __LINE__)
#define thread_execute(m, f, a, v) funcname_thread_execute(m, f, a, v, #f, __FILE__, __LINE__)

/* Takes a record out of wherever it waits; it is kept for reuse. */
void vthread_cancel(vthread *thread);
/* Cancels every event and ready record with this argument; how many. */
u32 vthread_cancel_event(thread_master *m, void *arg);
/* Fetches and calls until the loop is stopped or select fails. */
void thread_main(thread_master *m);
/* Asks the calling thread's loop to end after the running callback. */
void thread_stop(void);
/* The calling thread's record whose callback is running, or NULL. */
vthread *vthread_current(void);

struct timeval thread_timer_remain(vthread *thread);
unsigned long vthread_timer_remain_second(vthread *thread);
/* (a - b) in microseconds. */
long timeval_elapsed(struct timeval a, struct timeval b);
/* clock 0: wall clock; 1: monotonic; 2: the loop's clock from the wall
 * clock's first reading.  0, or -1 with errno EINVAL for another clock. */
int vthread_gettime(int clock, struct timeval *tv);
/* Seconds of clock 2; also stored at `t` if given. */
time_t vthread_time(time_t *t);
/* The loop's clock as last updated, without reading the wall clock. */
struct timeval recent_relative_time(void);

/* Source of the wall clock; NULL puts the system's back.  Lets a test step
 * the clock. */
typedef int (*vthread_wallclock_t)(struct timeval *tv);
void vthread_wallclock_set(vthread_wallclock_t func);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_VTY_THREAD_H */
