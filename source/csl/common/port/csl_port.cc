// The port control record of each chip, its port driver, and the checks
// of port numbers that every feature uses.
#include <bit>

#include <tide/property.h>

#include "csl/common/port/csl_port.h"
#include "csl/reef/driver/port/csl_atolreef_port.h"

using tide::port::pbmp_test;

extern "C" {

csl_port_control *g_csl_port_control[SHR_MAX_CHIPS];
const csl_port_driver_t *g_csl_port_driver[SHR_MAX_CHIPS];
i32 csl_port_property_get(u32 chip_id, i32 port, const char *key, i32 dflt)
{
    // A chip setting, or a port's with the port forms tried first.
    return port < 0 ? shr_property_get(chip_id, key, dflt) : shr_property_port_get(chip_id, port, key, dflt);
}

i32 csl_port_control_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (g_csl_port_control[chip_id] != nullptr) {
        return 0;
    }
    auto *ctl = tide::port::zalloc<csl_port_control>(1, "port_control");
    if (ctl == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "port_control malloc fail.\n");
        return SHR_E_NULL_PTR;
    }
    ctl->map_mode = CSL_PORT_MAP_NONE;
    ctl->lock = xsal_mutex_create("socPortControlMutex");
    if (ctl->lock == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "port_control malloc fail.\n");
        xsal_mem_free(ctl);
        return SHR_E_NULL_PTR;
    }
    g_csl_port_control[chip_id] = ctl;
    return 0;
}

i32 csl_port_control_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    csl_port_control *ctl = g_csl_port_control[chip_id];
    g_csl_port_control[chip_id] = nullptr;
    g_csl_port_driver[chip_id] = nullptr;
    if (ctl != nullptr) {
        xsal_mutex_destroy(ctl->lock);
        xsal_mem_free(ctl);
    }
    return 0;
}

csl_port_control *csl_port_control_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_csl_port_control[chip_id] : nullptr;
}

i32 csl_port_base_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    g_csl_port_driver[chip_id] =
        shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? csl_atolreef_port_driver_get() : nullptr;
    return 0;
}

i32 csl_port_control_db_init(u32 chip_id)
{
    return shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? csl_atolreef_control_db_init(chip_id) : 0;
}

i32 csl_port_probe(u32 chip_id, u32 lport, const csl_port_driver_t **driver)
{
    (void)lport;
    if (driver == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const csl_port_driver_t *d = chip_id < SHR_MAX_CHIPS ? g_csl_port_driver[chip_id] : nullptr;
    if (d == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    *driver = d;
    return 0;
}

i32 csl_port_not_exist(u32 chip_id, u32 lport)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "lport: %d dose not exist, please enter the correct port  \n", (int)lport);
    return SHR_E_NOT_SUPPORT;
}

i32 csl_port_valid_check(u32 chip_id, u32 lport)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    return pbmp_test(ctl->valid_bmp, lport) ? 0 : csl_port_not_exist(chip_id, lport);
}

i32 csl_port_valid_bmp_check(u32 chip_id, const port_bitmap *pbmp)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || pbmp == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    // The lowest port of the bitmap outside the existing ones, a word at a
    // time.
    for (u32 w = 0; w < PORT_BITMAP_WORDS; w++) {
        const u64 stranger = pbmp->word[w] & ~ctl->valid_bmp.word[w];
        if (stranger != 0) {
            const int lport = static_cast<int>(w * 64 + static_cast<u32>(std::countr_zero(stranger)));
            SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "lport: %d dose not exist, please enter the correct port bitmap \n",
                        lport);
            return SHR_E_NOT_SUPPORT;
        }
    }
    return 0;
}

i32 csl_port_valid_bmp_get(u32 chip_id, port_bitmap *pbmp)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || pbmp == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    *pbmp = ctl->valid_bmp;
    return 0;
}

} // extern "C"
