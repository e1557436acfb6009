// The log hook, the output hook and the default log sink with its
// per-module switch and highest level.
#include <cstdarg>
#include <cstdio>

#include "sal/linux_um/xsal_int.h"
#include "shared/shr_int.h"

extern "C" {

shr_log_func_t g_shr_debug_base_func = shr_debugk;
shr_output_func_t g_shr_debug_base_cli_func = xsal_printf;

// Only "DIRECT" (55) is on at load: it carries the lines an operator asked
// for, whatever the level.
u8 g_shr_current_dk_enable[SHR_MODULE_COUNT] = {
    // modules 0 to 54
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    1, // 55 DIRECT
    0, // 56 TOP
};
u8 g_shr_current_ll[SHR_MODULE_COUNT];

static bool _shr_debugk_check(u32 module_id, u32 level)
{
    if (module_id >= SHR_MODULE_COUNT || !g_shr_current_dk_enable[module_id]) {
        return false;
    }
    return module_id == SHR_MOD_DIRECT || level <= g_shr_current_ll[module_id];
}

void shr_debugk(i32 chip_id, u32 module_id, u32 level, const char *file, u32 line, const char *format, ...)
{
    if (!_shr_debugk_check(module_id, level)) {
        return;
    }
    va_list args;
    va_start(args, format);
    xsal_log_vprintf(chip_id, level, g_shr_mod_name[module_id], file, static_cast<i32>(line), format, args);
    va_end(args);
    fflush(stdout);
}

shr_log_func_t shr_debug_base_printf_func_get(void)
{
    return g_shr_debug_base_func;
}

void shr_debug_base_printf_func_set(shr_log_func_t func)
{
    g_shr_debug_base_func = func != nullptr ? func : shr_debugk;
}

shr_output_func_t shr_debug_base_cli_printf_func_get(void)
{
    return g_shr_debug_base_cli_func;
}

void shr_debug_base_cli_printf_func_set(shr_output_func_t func)
{
    g_shr_debug_base_cli_func = func != nullptr ? func : xsal_printf;
}

void shr_debugk_enable(u32 module_id)
{
    if (module_id < SHR_MODULE_COUNT) {
        g_shr_current_dk_enable[module_id] = 1;
    }
}

void shr_debugk_disable(u32 module_id)
{
    if (module_id < SHR_MODULE_COUNT) {
        g_shr_current_dk_enable[module_id] = 0;
    }
}

void shr_debugk_ll_enable(u32 module_id, u8 level)
{
    if (module_id < SHR_MODULE_COUNT) {
        g_shr_current_ll[module_id] = level;
    }
}

u8 shr_debugk_ll_enable_get(u32 module_id)
{
    return module_id < SHR_MODULE_COUNT ? g_shr_current_ll[module_id] : 0;
}

u8 shr_debugk_ll_level_get(u32 module_id)
{
    return shr_debugk_ll_enable_get(module_id);
}

void shr_debugk_all_module_enable(void)
{
    for (u32 m = 0; m < SHR_MODULE_COUNT; m++) {
        g_shr_current_dk_enable[m] = 1;
    }
}

void shr_debugk_all_module_disable(void)
{
    for (u32 m = 0; m < SHR_MODULE_COUNT; m++) {
        g_shr_current_dk_enable[m] = 0;
    }
}

void shr_debugk_all_module_ll_set(u8 level)
{
    for (u32 m = 0; m < SHR_MODULE_COUNT; m++) {
        g_shr_current_ll[m] = level;
    }
}

void shr_debug_default_log_level(void)
{
    shr_debugk_all_module_enable();
    shr_debugk_all_module_ll_set(SHR_LOG_ERROR);
    g_shr_current_ll[SHR_MOD_INIT] = SHR_LOG_DEBUG;
    g_shr_current_ll[SHR_MOD_TOP] = SHR_LOG_DEBUG;
}

} // extern "C"
