// The interrupt thread of a chip: it waits on the chip's line, runs the
// chip's top handler when the line rises, enables the line again, and goes
// on until its destroyer sets `run` to 0 and wakes it.
#include <tide/property.h>

#include <cstdio>

#include "csl/common/interrupt/csl_interrupt_common.h"
#include "dpl/reef/interrupt/dpl_reef_interrupt.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_interrupt_cm.h"

extern "C" {
dpl_intr_thread g_intr_thread[SHR_MAX_CHIPS] = {{-1, 0, 0, 0, {}}, {-1, 0, 0, 0, {}}, {-1, 0, 0, 0, {}},
                                                {-1, 0, 0, 0, {}}};
}

namespace {

u32 _run(u32 chip_id)
{
    return __atomic_load_n(&g_intr_thread[chip_id].run, __ATOMIC_ACQUIRE);
}

i64 _thread_id(u32 chip_id)
{
    return __atomic_load_n(&g_intr_thread[chip_id].thread_id, __ATOMIC_ACQUIRE);
}

void _handle(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_ATOLREEF:
        dpl_atolreef_interrupt_cm(chip_id);
        break;
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        break; // no tables in this build
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip id not belong to reef series!\n");
        break;
    }
}

void _thread_main(void *arg)
{
    const u32 chip_id = static_cast<u32>(reinterpret_cast<uintptr_t>(arg));
    do {
        if (csl_interrupt_irq_wait(chip_id) != 0) {
            break;
        }
        _handle(chip_id);
        csl_interrupt_irq_enable(chip_id);
    } while (_run(chip_id) != 0);
    // The last touch of the engine's state: after this the destroyer may
    // free everything.
    __atomic_store_n(&g_intr_thread[chip_id].thread_id, static_cast<i64>(-1), __ATOMIC_RELEASE);
}

} // namespace

extern "C" {

i32 dpl_reef_interrupt_thread_create(u32 chip_id)
{
    dpl_intr_thread &t = g_intr_thread[chip_id];
    if (t.created) {
        return 0;
    }
    if (shr_property_get(chip_id, "init_create_intr_thread", 1) == 0 ||
        shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_KELPREEF2) {
        t.enabled = 0;
        return 0;
    }
    t.enabled = 1;
    char name[32];
    snprintf(name, sizeof(name), "tdl_interrupt%u", chip_id);
    // The thread runs until it is told to stop: `run` is up and `thread_id`
    // holds a mark (not -1) before it starts, so a destroy that comes at
    // once still finds it running.
    __atomic_store_n(&t.run, 1u, __ATOMIC_RELEASE);
    __atomic_store_n(&t.thread_id, static_cast<i64>(chip_id), __ATOMIC_RELEASE);
    const int rc = xsal_thread_create(&t.thread, name, 0, _thread_main, reinterpret_cast<void *>(uintptr_t{chip_id}));
    if (rc != 0) {
        __atomic_store_n(&t.run, 0u, __ATOMIC_RELEASE);
        __atomic_store_n(&t.thread_id, static_cast<i64>(-1), __ATOMIC_RELEASE);
        t.enabled = 0;
        return SHR_E_INIT;
    }
    // The handle replaces the mark unless the thread has ended already.
    i64 mark = static_cast<i64>(chip_id);
    __atomic_compare_exchange_n(&t.thread_id, &mark, static_cast<i64>(t.thread.tid), false, __ATOMIC_ACQ_REL,
                                __ATOMIC_ACQUIRE);
    t.created = 1;
    return 0;
}

i32 dpl_reef_interrupt_thread_destroy(u32 chip_id)
{
    dpl_intr_thread &t = g_intr_thread[chip_id];
    if (!t.created) {
        SHR_LOG_INF(chip_id, SHR_MOD_INTR, "[interrupt thread destroy]: not inited\n");
        return 0;
    }
    if (_run(chip_id) == 0) {
        SHR_LOG_INF(chip_id, SHR_MOD_INTR, "[interrupt thread destroy]: already destroy\n");
        return 0;
    }
    __atomic_store_n(&t.run, 0u, __ATOMIC_RELEASE);
    // A wake that comes while the thread is between two waits ends nothing,
    // so each round of the wait wakes it again.
    u32 round = 0;
    for (; _thread_id(chip_id) != -1 && round < DPL_INTR_THREAD_STOP_ROUNDS; round++) {
        csl_interrupt_irq_exit(chip_id);
        xsal_usleep(DPL_INTR_THREAD_STOP_ROUND_US);
    }
    if (_thread_id(chip_id) != -1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "[interrupt thread destroy]: the thread did not stop\n");
    }
    // Past its last touch of the engine the thread still ends itself in the
    // OS layer, which frees its record there: the tear-down that follows
    // (the memory layer's own) waits until the record is gone, within what
    // is left of the same bound.
    for (char name[32]; round < DPL_INTR_THREAD_STOP_ROUNDS && xsal_thread_name(&t.thread, name, sizeof(name)) != nullptr;
         round++) {
        xsal_usleep(DPL_INTR_THREAD_STOP_ROUND_US);
    }
    t.created = 0;
    return 0;
}

i32 dpl_reef_interrupt_thread_status_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS && g_intr_thread[chip_id].enabled == 1 && _run(chip_id) == 0;
}

} // extern "C"
