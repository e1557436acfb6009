// The process level of bring-up (console, hooks, device nodes, chip count)
// and the common level of a chip (HAL attach, classification, mapping).
#include <algorithm>
#include <cstring>

#include "csl/common/reg_tab/csl_reg.h"
#include "dpl/common/dpl_init_pre.h"
#include "shared/shr_property_int.h"
#include "sal/linux_um/xsal_int.h"

extern "C" {

u32 g_dpl_base_soft_inited;
u32 g_dpl_common_soft_inited[SHR_MAX_CHIPS];

static sdk_init_cfg g_dpl_base_cfg;
static sdk_init_cfg g_dpl_common_cfg[SHR_MAX_CHIPS];

static void _dpl_cfg_copy(sdk_init_cfg *dst, const sdk_init_cfg *src)
{
    if (src != nullptr) {
        *dst = *src;
    } else {
        memset(dst, 0, sizeof(*dst));
    }
}

i32 dpl_base_software_init(const sdk_init_cfg *cfg)
{
    if (g_dpl_base_soft_inited == 1) {
        SHR_LOG_WRN(SHR_NO_CHIP, SHR_MOD_DIRECT, "sdk base software was already inited!\n");
        return 0;
    }
    _dpl_cfg_copy(&g_dpl_base_cfg, cfg);

    // Made on the default allocator, before the application's is set.
    xsal_console_init();
    shr_property_init();
    xsal_log_debug_buffer_allocate(0);

    xsal_malloc_base_func_set(g_dpl_base_cfg.mem_alloc);
    xsal_free_base_func_set(g_dpl_base_cfg.mem_free);
    shr_debug_base_printf_func_set(g_dpl_base_cfg.log_printf);
    shr_debug_base_cli_printf_func_set(g_dpl_base_cfg.cli_printf);

    i32 rc = csl_base_init();
    if (rc == 0) {
        u32 count = 0;
        rc = csl_chip_num_get(&count);
        if (rc == 0) {
            shr_chip_cur_num_assign(count);
            g_dpl_base_soft_inited = 1;
            return 0;
        }
        csl_base_deinit();
    }
    xsal_log_debug_buffer_clear(0);
    xsal_console_deinit();
    shr_property_deinit();
    return rc;
}

i32 dpl_base_software_deinit(void)
{
    if (g_dpl_base_soft_inited == 0) {
        SHR_LOG_WRN(SHR_NO_CHIP, SHR_MOD_DIRECT, "sdk base software was not inited!\n");
        return 0;
    }
    shr_chip_cur_num_assign(0);
    const i32 rc = csl_base_deinit();
    if (rc != 0) {
        SHR_LOG_ERRCODE(SHR_NO_CHIP, rc);
        return rc;
    }
    // The hooks go back in this order so that what the default allocator
    // gave before the application's hook was set goes back to it.
    shr_debug_base_printf_func_set(nullptr);
    shr_debug_base_cli_printf_func_set(nullptr);
    xsal_free_base_func_set(nullptr);
    xsal_malloc_base_func_set(nullptr);
    xsal_log_debug_buffer_clear(0);
    xsal_console_deinit();
    shr_property_deinit();
    g_dpl_base_soft_inited = 0;
    return 0;
}

// The log switch and level of every module, from the chip's properties.
// They are process-wide: the chip brought up last decides.
void _dpl_debug_log_level_init(u32 chip_id)
{
    const int status = shr_property_get(chip_id, "debug_status", 1);
    const int level = shr_property_get(chip_id, "debug_level", 1);
    for (u32 module = 0; module < SHR_MODULE_COUNT; module++) {
        if (status == 1) {
            shr_debugk_enable(module);
        } else {
            shr_debugk_disable(module);
        }
        char key[48] = "debug_level_";
        const char *name = shr_module_name_get(module);
        xsal_strupper_to_lower(key + 12, name, std::min(std::strlen(name), sizeof(key) - 13));
        int dflt = level;
        if (module == SHR_MOD_INIT) {
            dflt = 3;
        } else if (module == SHR_MOD_TOP) {
            dflt = 1;
        }
        shr_debugk_ll_enable(module, static_cast<u8>(shr_property_get(chip_id, key, dflt)));
    }
}

i32 dpl_common_soft_init(u32 chip_id, const sdk_init_cfg *cfg)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (g_dpl_common_soft_inited[chip_id]) {
        SHR_LOG_WRN(chip_id, SHR_MOD_DIRECT, "sdk common software was already inited!\n");
        return 0;
    }
    _dpl_cfg_copy(&g_dpl_common_cfg[chip_id], cfg);
    _dpl_debug_log_level_init(chip_id);

    csl_hw_op_attach(chip_id, &g_dpl_common_cfg[chip_id]);
    i32 rc = csl_chip_info_init(chip_id);
    if (rc == 0) {
        rc = csl_chip_mem_init(chip_id);
        if (rc == 0) {
            g_dpl_common_soft_inited[chip_id] = 1;
            return 0;
        }
        csl_chip_info_deinit(chip_id);
    }
    csl_hw_op_dettach(chip_id);
    return rc;
}

i32 dpl_common_soft_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (!g_dpl_common_soft_inited[chip_id]) {
        SHR_LOG_WRN(chip_id, SHR_MOD_DIRECT, "sdk common software was not inited!\n");
        return 0;
    }
    i32 rc = csl_chip_mem_deinit(chip_id);
    if (rc != 0) {
        return rc;
    }
    csl_hw_op_dettach(chip_id);
    rc = csl_chip_info_deinit(chip_id);
    if (rc == 0) {
        g_dpl_common_soft_inited[chip_id] = 0;
    }
    return rc;
}

i32 dpl_chip_id_get_by_bus_number(u16 bus_number, u32 *chip_id)
{
    return csl_get_chip_id_by_bus_number(bus_number, chip_id);
}

i32 dpl_chip_id_busnum_mapping_get(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num)
{
    return csl_get_chipid_busnum_mapping(bus_num_arr, chip_id_arr, valid_num);
}

} // extern "C"
