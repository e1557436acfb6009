// The HAL's interrupt wait, enable and exit, with the engine's status
// codes.
#include "csl/common/interrupt/csl_interrupt_common.h"
#include "hal/hal_op/hal.h"

namespace {

bool _chip_ok(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INTR, "ERROR! chip_id(%u) is invalid!\n", chip_id);
        return false;
    }
    return true;
}

} // namespace

extern "C" {

int csl_interrupt_irq_wait(u32 chip_id)
{
    if (!_chip_ok(chip_id)) {
        return SHR_E_PARAM;
    }
    const int rc = hal_irq_wait(chip_id);
    if (rc == 0 || rc == SHR_E_DISABLED) {
        return rc;
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) %d irq wait failed!\n", chip_id, rc);
    return SHR_E_FAIL;
}

int csl_interrupt_irq_enable(u32 chip_id)
{
    if (!_chip_ok(chip_id)) {
        return SHR_E_PARAM;
    }
    if (hal_irq_enable(chip_id, CSL_INTERRUPT_LINE_MASK) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) irq enable failed!\n", chip_id);
        return SHR_E_FAIL;
    }
    return 0;
}

int csl_interrupt_irq_exit(u32 chip_id)
{
    if (!_chip_ok(chip_id)) {
        return SHR_E_PARAM;
    }
    if (hal_irq_exit(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip_id(%u) irq exit failed!\n", chip_id);
        return SHR_E_FAIL;
    }
    return 0;
}

} // extern "C"
