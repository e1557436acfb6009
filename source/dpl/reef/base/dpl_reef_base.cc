// The base service of the reef family.
#include "api/api_families.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/base/dpl_reef_base.h"

extern "C" {

static u32 g_dpl_reef_base_soft_inited[SHR_MAX_CHIPS];

// The catalogue comes first: everything after it speaks in its terms.  A
// failure of it is logged and the sequence goes on.
i32 dpl_reef_base_soft_init(u32 chip_id)
{
    if (csl_reef_reg_tab_soft_init(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[SOFT-INIT: %13s] reg tab soft init failed!\n", "base");
    }
    g_dpl_reef_base_soft_inited[chip_id] = 1;
    return 0;
}

i32 dpl_reef_base_soft_deinit(u32 chip_id)
{
    const i32 rc = csl_reef_reg_tab_soft_deinit(chip_id);
    g_dpl_reef_base_soft_inited[chip_id] = 0;
    return rc;
}

i32 dpl_reef_base_hw_init(u32 chip_id)
{
    const i32 rc = csl_reef_reg_tab_hw_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[CHIP-INIT: %13s] reg tab soft init failed!\n", "base");
    }
    return rc;
}

i32 dpl_reef_base_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

i32 dpl_reef_base_reg_set_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return csl_reef_reg_set_by_addr(chip_id, addr, data, bytes);
}

i32 dpl_reef_base_reg_get_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return csl_reef_reg_get_by_addr(chip_id, addr, data, bytes);
}

// The slots of the base family that this layer fills; the others stay
// empty and answer -24.
static constexpr reef_base_dispatch_t _dpl_reef_base_dispatch_make()
{
    reef_base_dispatch_t t{};
    t.reg_set_by_addr = dpl_reef_base_reg_set_by_addr;
    t.reg_get_by_addr = dpl_reef_base_reg_get_by_addr;
    return t;
}

extern const reef_base_dispatch_t reef_base_dispatch = _dpl_reef_base_dispatch_make();

} // extern "C"
