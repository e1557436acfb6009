#include "fuzz_support.h"

#include <cstdarg>
#include <cstdio>

#include <tide/shr.h>

namespace tide::fuzz {

namespace {

void _format(const char *format, va_list args)
{
    char text[512];
    std::vsnprintf(text, sizeof(text), format, args);
}

} // namespace

void log_sink(int32_t, uint32_t, uint32_t, const char *file, uint32_t, const char *format, ...)
{
    if (file == nullptr || format == nullptr) {
        fail("a log line without its file or format");
    }
    va_list args;
    va_start(args, format);
    _format(format, args);
    va_end(args);
}

int output_sink(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    _format(format, args);
    va_end(args);
    return 0;
}

void quiet()
{
    shr_debug_base_printf_func_set(log_sink);
    shr_debug_base_cli_printf_func_set(output_sink);
}

sdk_init_cfg quiet_cfg()
{
    sdk_init_cfg cfg{};
    cfg.log_printf = log_sink;
    cfg.cli_printf = output_sink;
    return cfg;
}

void fail(const char *what)
{
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::fflush(stderr);
    __builtin_trap();
}

} // namespace tide::fuzz
