// The console: standard output under one mutex, flushed after each call.
#include <cstdarg>
#include <cstdio>

#include "sal/linux_um/xsal_int.h"

extern "C" {

xsal_mutex_t g_xsal_console_mutex;

int xsal_console_init(void)
{
    if (g_xsal_console_mutex != nullptr) {
        return 0;
    }
    g_xsal_console_mutex = xsal_mutex_create_("console mutex", __FILE__, __LINE__);
    return g_xsal_console_mutex != nullptr ? 0 : -1;
}

int xsal_console_deinit(void)
{
    if (g_xsal_console_mutex != nullptr) {
        xsal_mutex_destroy_(g_xsal_console_mutex, __FILE__, __LINE__);
        g_xsal_console_mutex = nullptr;
    }
    return 0;
}

int xsal_vprintf(const char *format, va_list args)
{
    // Until the console mutex exists the lock calls fail harmlessly on the
    // NULL handle and the text goes out unlocked.
    xsal_mutex_t mutex = g_xsal_console_mutex;
    xsal_mutex_lock_(mutex, __FILE__, __LINE__);
    const int n = vprintf(format, args);
    fflush(stdout);
    xsal_mutex_unlock_(mutex, __FILE__, __LINE__);
    return n;
}

int xsal_printf(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int n = xsal_vprintf(format, args);
    va_end(args);
    return n;
}

} // extern "C"
