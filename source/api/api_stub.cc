// Functions of families that the reef family does not implement: -3 for
// an invalid chip, -24 for a valid one, -20 for a NULL record after the
// chip check.
#include <tide/stub.h>

#include "api/api_guard.h"

extern "C" {

i32 l3_api_iif_create(u32 chip_id, u32 flags, l3_iif *iif)
{
    (void)flags;
    return tide::api::stub_ptr(chip_id, iif, SHR_MOD_L3, "iif");
}

i32 pkt_api_init(u32 chip_id, pkt_init_cfg *cfg)
{
    (void)cfg;
    return tide::api::stub(chip_id);
}

i32 pkt_api_deinit(u32 chip_id, u32 mode)
{
    (void)mode;
    return tide::api::stub(chip_id);
}

i32 linkscan_api_enable_set(u32 chip_id, u32 enable)
{
    (void)enable;
    return tide::api::stub(chip_id);
}

i32 linkscan_api_enable_get(u32 chip_id, u32 *enable)
{
    (void)enable;
    return tide::api::stub(chip_id);
}

i32 linkscan_api_mode_set(u32 chip_id, u32 lport, u32 mode)
{
    (void)lport;
    (void)mode;
    return tide::api::stub(chip_id);
}

i32 linkscan_api_mode_get(u32 chip_id, u32 lport, u32 *mode)
{
    (void)lport;
    (void)mode;
    return tide::api::stub(chip_id);
}

} // extern "C"
