// The exported bring-up and tear-down calls.  The process level and the
// common level of a chip run before the chip is valid, so they are called
// directly; the family levels pass the guard like every other call.
#include "api/api_families.h"
#include "dpl/common/dpl_init_pre.h"

API_DEFINE_DISPATCH(init)

using tide::api::dispatch;

extern "C" {

i32 init_api_base_software_process(const sdk_init_cfg *cfg)
{
    const i32 rc = dpl_base_software_init(cfg);
    if (rc < 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INIT, "dpl base soft inited failed!\n");
    }
    return rc;
}

i32 deinit_api_base_software_process(void)
{
    const i32 rc = dpl_base_software_deinit();
    if (rc < 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INIT, "dpl sdk base deinited failed!\n");
    }
    return rc;
}

i32 init_api_software_process(u32 chip_id, const sdk_init_cfg *cfg)
{
    i32 rc = dpl_common_soft_init(chip_id, cfg);
    if (rc < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "Process dpl prepare inited failed!\n");
        return rc;
    }
    rc = dispatch<&reef_init_dispatch_t::soft_init>(init_dispatch, chip_id);
    if (rc < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "software init failed! [%s]\n", shr_errmsg(rc));
    }
    return rc;
}

i32 deinit_api_software_process(u32 chip_id)
{
    i32 rc = dispatch<&reef_init_dispatch_t::soft_deinit>(init_dispatch, chip_id);
    if (rc == 0) {
        rc = dpl_common_soft_deinit(chip_id);
    }
    if (rc < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "software deinit failed! [%s]\n", shr_errmsg(rc));
    }
    return rc;
}

i32 init_api_hardware_process(u32 chip_id)
{
    const i32 rc = dispatch<&reef_init_dispatch_t::hw_init>(init_dispatch, chip_id);
    if (rc < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "hardware init failed! [%s]\n", shr_errmsg(rc));
    }
    return rc;
}

i32 deinit_api_hardware_process(u32 chip_id)
{
    const i32 rc = dispatch<&reef_init_dispatch_t::hw_deinit>(init_dispatch, chip_id);
    if (rc < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "dpl base hardware inited failed! [%s]\n", shr_errmsg(rc));
    }
    return rc;
}

i32 init_api_chip_id_get_by_bus_number(u16 bus_number, u32 *chip_id)
{
    if (chip_id == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INIT, "dpl get chipid by bus number failed!\n");
        return SHR_E_PARAM;
    }
    const i32 rc = dpl_chip_id_get_by_bus_number(bus_number, chip_id);
    if (rc != 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INIT, "dpl get chipid by bus number failed!\n");
    }
    return rc;
}

i32 init_api_chip_id_busnum_mapping_get(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num)
{
    if (bus_num_arr == nullptr || chip_id_arr == nullptr || valid_num == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INIT, "dpl get chipid busnum mapping failed!\n");
        return SHR_E_PARAM;
    }
    const i32 rc = dpl_chip_id_busnum_mapping_get(bus_num_arr, chip_id_arr, valid_num);
    if (rc != 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_INIT, "dpl get chipid busnum mapping failed!\n");
    }
    return rc;
}

} // extern "C"
