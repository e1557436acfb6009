// The calls that tie a chip to the HAL during bring-up: open the device
// nodes, attach the operations table (with the application's register
// hooks), classify the chip, map its apertures.
#include "csl/common/reg_tab/csl_reg.h"
#include "hal/hal_op/hal.h"

extern "C" {

u32 g_csl_chip_info_inited[SHR_MAX_CHIPS];

int csl_base_init(void)
{
    return hal_init();
}

int csl_base_deinit(void)
{
    return hal_deinit();
}

int csl_chip_num_get(u32 *count)
{
    return hal_chip_num_get(count);
}

int csl_get_chip_id_by_bus_number(u16 bus, u32 *chip_id)
{
    return hal_get_chip_id_by_bus_number(bus, chip_id);
}

int csl_get_chipid_busnum_mapping(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num)
{
    return hal_get_chipid_busnum_mapping(bus_num_arr, chip_id_arr, valid_num);
}

int csl_hw_op_attach(u32 chip_id, const sdk_init_cfg *ops)
{
    // A failed attach leaves the chip without a table; classification then
    // fails with -7 and reports it.
    (void)hal_ops_attach(chip_id);
    if (ops != nullptr) {
        const auto rd = reinterpret_cast<hal_reg_func_t>(ops->reg_read);
        const auto wr = reinterpret_cast<hal_reg_func_t>(ops->reg_write);
        hal_reg_operate_func_register(chip_id, ops->reg_read != nullptr ? rd : nullptr, 0);
        hal_reg_operate_func_register(chip_id, ops->reg_read != nullptr ? rd : nullptr, 2);
        hal_reg_operate_func_register(chip_id, ops->reg_write != nullptr ? wr : nullptr, 1);
        hal_reg_operate_func_register(chip_id, ops->reg_write != nullptr ? wr : nullptr, 3);
        hal_reg_operate_func_register(chip_id, reinterpret_cast<hal_reg_func_t>(ops->reg_read64), 4);
        hal_reg_operate_func_register(chip_id, reinterpret_cast<hal_reg_func_t>(ops->reg_write64), 5);
    }
    return 0;
}

int csl_hw_op_dettach(u32 chip_id)
{
    return hal_ops_dettach(chip_id);
}

int csl_chip_info_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (g_csl_chip_info_inited[chip_id]) {
        return 0;
    }
    u32 vendor = 0, device = 0, byte_order = 0, revision = 0;
    int rc = hal_probe_chip_info_get(chip_id, &vendor, &device, &byte_order, &revision);
    if (rc != 0) {
        return rc;
    }
    u32 type = 0, family = 0;
    rc = shr_chip_classify(device, static_cast<i32>(revision), &type, &family);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "unknown device id 0x%x (revision %u)\n", device, revision);
        return rc;
    }
    shr_chip_type_assign(chip_id, type, revision);
    g_csl_chip_info_inited[chip_id] = 1;
    return 0;
}

int csl_chip_info_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    shr_chip_type_assign(chip_id, SHR_CHIP_TYPE_NULL, 0);
    g_csl_chip_info_inited[chip_id] = 0;
    return 0;
}

int csl_chip_mem_init(u32 chip_id)
{
    return hal_chip_mem_init(chip_id);
}

int csl_chip_mem_deinit(u32 chip_id)
{
    return hal_chip_mem_deinit(chip_id);
}

} // extern "C"
