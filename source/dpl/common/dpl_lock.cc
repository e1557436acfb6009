// Feature locks: per chip 30 recursive mutexes, created by a module in its
// software init and destroyed in its software deinit.
#include "dpl/common/dpl_init_pre.h"

extern "C" {

xsal_mutex_t g_dpl_lock[SHR_MAX_CHIPS][DPL_LOCK_COUNT];

static bool _dpl_lock_id_ok(u32 chip_id, u32 lock_id)
{
    return chip_id < SHR_MAX_CHIPS && lock_id < DPL_LOCK_COUNT;
}

i32 dpl_lock_create(u32 chip_id, u32 lock_id, const char *name)
{
    if (!_dpl_lock_id_ok(chip_id, lock_id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "lock id (%u) is out of range!!!\n", lock_id);
        return SHR_E_PARAM;
    }
    if (g_dpl_lock[chip_id][lock_id] != nullptr) {
        return 0;
    }
    g_dpl_lock[chip_id][lock_id] = xsal_mutex_create_(name, __FILE__, __LINE__);
    if (g_dpl_lock[chip_id][lock_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "create lock %u (%s) failed!\n", lock_id, name != nullptr ? name : "");
        return SHR_E_INIT;
    }
    return 0;
}

i32 dpl_lock_destroy(u32 chip_id, u32 lock_id)
{
    if (!_dpl_lock_id_ok(chip_id, lock_id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "lock id (%u) is out of range!!!\n", lock_id);
        return SHR_E_PARAM;
    }
    if (g_dpl_lock[chip_id][lock_id] != nullptr) {
        xsal_mutex_destroy_(g_dpl_lock[chip_id][lock_id], __FILE__, __LINE__);
        g_dpl_lock[chip_id][lock_id] = nullptr;
    }
    return 0;
}

i32 dpl_lock_take(u32 chip_id, u32 lock_id, const char *function, u32 line)
{
    if (!_dpl_lock_id_ok(chip_id, lock_id)) {
        return SHR_E_PARAM;
    }
    if (g_dpl_lock[chip_id][lock_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "lock %u is not created (%s:%u)\n", lock_id,
                    function != nullptr ? function : "", line);
        return SHR_E_INIT;
    }
    return xsal_mutex_lock_(g_dpl_lock[chip_id][lock_id], function, static_cast<int>(line)) == 0 ? 0
                                                                                                : SHR_E_INTERNAL;
}

i32 dpl_lock_give(u32 chip_id, u32 lock_id, const char *function, u32 line)
{
    if (!_dpl_lock_id_ok(chip_id, lock_id)) {
        return SHR_E_PARAM;
    }
    if (g_dpl_lock[chip_id][lock_id] == nullptr) {
        return SHR_E_INIT;
    }
    return xsal_mutex_unlock_(g_dpl_lock[chip_id][lock_id], function, static_cast<int>(line)) == 0 ? 0
                                                                                                  : SHR_E_INTERNAL;
}

} // extern "C"
