// The three OS calls that the command language core uses, over the C
// library, so that the fuzzers build from the core's sources alone.
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

} // extern "C"
