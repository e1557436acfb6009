// The SerDes control record of each chip and the chip's SerDes driver.
#include <cstring>

#include "csl/common/serdes/csl_serdes.h"
#include "csl/reef/driver/serdes/csl_atolreef_serdes.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

extern "C" {

csl_serdes_control_t *csl_serdes_control[SHR_MAX_CHIPS];

i32 csl_serdes_control_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (csl_serdes_control[chip_id] != nullptr) {
        return 0;
    }
    auto *ctl = static_cast<csl_serdes_control_t *>(
        xsal_malloc(sizeof(csl_serdes_control_t), "csl-serdes-control", SHR_MOD_SERDES));
    if (ctl == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "malloc csl_serdes_control memory error!\n");
        return SHR_E_MEMORY;
    }
    memset(ctl, 0, sizeof(*ctl));
    csl_serdes_control[chip_id] = ctl;
    return 0;
}

i32 csl_serdes_control_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    csl_serdes_control_t *ctl = csl_serdes_control[chip_id];
    csl_serdes_control[chip_id] = nullptr;
    if (ctl != nullptr) {
        xsal_mem_free(ctl->info);
        xsal_mem_free(ctl);
    }
    return 0;
}

csl_serdes_control_t *csl_serdes_control_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? csl_serdes_control[chip_id] : nullptr;
}

i32 csl_serdes_control_db_init(u32 chip_id)
{
    return shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? csl_atolreef_serdes_control_db_init(chip_id) : 0;
}

i32 csl_serdes_db_malloc(u32 chip_id)
{
    return shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? csl_atolreef_serdes_db_malloc(chip_id) : 0;
}

i32 csl_serdes_db_free(u32 chip_id)
{
    // Only atolreef's driver keeps run-time values; freeing none is fine.
    return csl_atolreef_serdes_db_free(chip_id);
}

i32 csl_serdes_base_probe(u32 chip_id, const csl_serdes_driver_t **driver)
{
    if (driver == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *driver = nullptr;
    const u32 type = shr_chip_type_get(chip_id);
    switch (type) {
    case SHR_CHIP_TYPE_ATOLREEF:
        *driver = csl_atolreef_serdes_driver_get();
        return 0;
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        // The siblings' lanes are theirs; the build has no driver for them.
        csl_reef_not_in_build(chip_id, SHR_MOD_SERDES, SHR_LOG_WARN, "SerDes driver");
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_SERDES, "serdes base probe fail chip type:%u\n", type);
        return SHR_E_NOT_FOUND;
    }
}

const char *csl_serdes_speed_name(u32 speed)
{
    static const char *const k_names[] = {"1.25Gbps_pll0", "3.125Gbps_pll1",   "5Gbps_pll0",     "10Gbps_pll0",
                                          "10.3125Gbps_pll1", "1.25Gbps_pll1", "3.125Gbps_pll0", "5Gbps_pll1",
                                          "10Gbps_pll1",   "10.3125Gbps_pll0", "unused_lane"};
    return speed >= SERDES_SPEED_FIRST && speed <= SERDES_SPEED_UNUSED ? k_names[speed - SERDES_SPEED_FIRST] : "";
}

} // extern "C"
