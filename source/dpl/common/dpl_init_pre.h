/*
 * The process level and the common level of bring-up, and the feature
 * locks.
 */
#ifndef TIDE_DPL_INIT_PRE_H
#define TIDE_DPL_INIT_PRE_H

#include <tide/init.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

#define DPL_LOCK_COUNT 30u

extern u32 g_dpl_base_soft_inited;
extern u32 g_dpl_common_soft_inited[SHR_MAX_CHIPS];
extern u32 g_dpl_reef_soft_inited[SHR_MAX_CHIPS];
extern u32 g_dpl_reef_hw_inited[SHR_MAX_CHIPS];

i32 dpl_base_software_init(const sdk_init_cfg *cfg);
i32 dpl_base_software_deinit(void);
/* Module log switches and levels from the chip's properties. */
void _dpl_debug_log_level_init(u32 chip_id);
i32 dpl_common_soft_init(u32 chip_id, const sdk_init_cfg *cfg);
i32 dpl_common_soft_deinit(u32 chip_id);
i32 dpl_chip_id_get_by_bus_number(u16 bus_number, u32 *chip_id);
i32 dpl_chip_id_busnum_mapping_get(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num);

/* Feature locks: 30 recursive mutexes per chip, by lock id. */
extern xsal_mutex_t g_dpl_lock[SHR_MAX_CHIPS][DPL_LOCK_COUNT];
i32 dpl_lock_create(u32 chip_id, u32 lock_id, const char *name);
i32 dpl_lock_destroy(u32 chip_id, u32 lock_id);
i32 dpl_lock_take(u32 chip_id, u32 lock_id, const char *function, u32 line);
i32 dpl_lock_give(u32 chip_id, u32 lock_id, const char *function, u32 line);

#ifdef __cplusplus
}

/* Holds feature lock `LockId` of a chip for a scope; status() is the take's. */
template <u32 LockId>
class DplLockHold {
public:
    DplLockHold(u32 chip_id, const char *function, u32 line)
        : chip_(chip_id), rc_(dpl_lock_take(chip_id, LockId, function, line))
    {
    }
    ~DplLockHold()
    {
        if (rc_ == 0) {
            dpl_lock_give(chip_, LockId, __func__, __LINE__);
        }
    }
    DplLockHold(const DplLockHold &) = delete;
    DplLockHold &operator=(const DplLockHold &) = delete;
    i32 status() const { return rc_; }

private:
    u32 chip_;
    i32 rc_;
};
#endif

#endif /* TIDE_DPL_INIT_PRE_H */
