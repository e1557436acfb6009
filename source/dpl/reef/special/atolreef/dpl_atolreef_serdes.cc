// The SerDes operations that only atolreef has.
#include "dpl/reef/special/atolreef/dpl_atolreef_serdes.h"

#include <tide/property.h>

#include "csl/reef/driver/serdes/csl_atolreef_serdes.h"
#include "dpl/reef/serdes/dpl_reef_serdes.h"

extern "C" {

i32 _dpl_atolreef_serdes_emphasis_by_speed(u32 chip_id, u32 serdes_id)
{
    if (shr_property_sds_lane_pe_dist_speed_flag_get(chip_id) != 1) {
        return 0;
    }
    const csl_serdes_driver_t *driver = g_dpl_reef_serdes_control[chip_id][serdes_id].driver;
    serdes_emphasis e{};
    csl_atolreef_serdes_property_emphasis(chip_id, serdes_id, csl_serdes_control_get(chip_id)->info[serdes_id].speed,
                                          &e);
    return driver != nullptr && driver->emphasis_set != nullptr ? driver->emphasis_set(chip_id, serdes_id, &e) : 0;
}

i32 dpl_atolreef_serdes_special_register(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    reef_serdes_special[chip_id].emphasis_by_speed = _dpl_atolreef_serdes_emphasis_by_speed;
    return 0;
}

} // extern "C"
