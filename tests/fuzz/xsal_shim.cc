// The OS calls that the command language core and the wire format use,
// over the C library, so that the fuzzers build from their sources alone.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <tide/xsal.h>

extern "C" {

void *xsal_malloc(uint64_t size, const char *, uint32_t)
{
    return static_cast<uint32_t>(size) == 0 ? nullptr : std::malloc(static_cast<size_t>(size));
}

void xsal_mem_free(void *ptr)
{
    std::free(ptr);
}

int xsal_vprintf(const char *format, va_list args)
{
    return std::vprintf(format, args);
}

int xsal_printf(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int n = std::vprintf(format, args);
    va_end(args);
    return n;
}

} // extern "C"
