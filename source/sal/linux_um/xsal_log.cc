// Log lines on standard output: an optional header, then the text.
#include <cstdio>
#include <cstring>

#include "sal/linux_um/xsal_int.h"
#include "shared/shr_int.h"

extern "C" {

u32 g_xsal_log_header_state = 1;

const char *xsal_log_levelname_get(u32 level)
{
    return level <= SHR_LOG_DEBUG ? g_sal_loglevel_name[level] : "UNKNOWN";
}

void xsal_log_log_header_set(u32 state)
{
    g_xsal_log_header_state = state;
}

static const char *_xsal_basename(const char *path)
{
    if (path == nullptr) {
        return "";
    }
    const char *slash = strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

void xsal_log_vprintf(i32 chip_id, u32 level, const char *module_name, const char *file, i32 line,
                      const char *format, va_list args)
{
    if (module_name == nullptr) {
        module_name = "";
    }
    if (g_xsal_log_header_state == 1 && strcmp(module_name, "COMMON") != 0) {
        xsal_calendar now{};
        xsal_get_current_time(&now);
        const u32 shown = level > SHR_LOG_DEBUG ? SHR_LOG_DEBUG : level;
        printf(" [%d-%d-%d %d:%d:%d %6s %s %16s:%05d chip_id:%2d] ", (int)now.year, (int)now.mon, (int)now.mday,
               (int)now.hour, (int)now.min, (int)now.sec, module_name, g_sal_loglevel_name[shown],
               _xsal_basename(file), (int)line, (int)chip_id);
    }
    vprintf(format, args);
}

} // extern "C"
