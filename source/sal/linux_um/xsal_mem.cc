// Tracked allocation with a replaceable backend.  The tag and the module
// id document each allocation; nothing records them.
#include <cstdlib>

#include "sal/linux_um/xsal_bounds.h"
#include "sal/linux_um/xsal_int.h"

extern "C" {

xsal_malloc_func_t g_xsal_malloc_base_func = malloc;
xsal_free_func_t g_xsal_free_base_func = free;

void *xsal_malloc(u64 size, const char *tag, u32 module_id)
{
    (void)tag;
    (void)module_id;
    // A size whose low 32 bits are 0 is refused: a request for nothing,
    // or a size that wrapped while it was computed.
    if (static_cast<u32>(size) == 0) {
        return nullptr;
    }
    return g_xsal_malloc_base_func(static_cast<size_t>(size));
}

void xsal_mem_free(void *ptr)
{
    if (ptr != nullptr) {
        g_xsal_free_base_func(ptr);
    }
}

xsal_malloc_func_t xsal_malloc_base_func_get(void)
{
    return g_xsal_malloc_base_func;
}

xsal_free_func_t xsal_free_base_func_get(void)
{
    return g_xsal_free_base_func;
}

void xsal_malloc_base_func_set(xsal_malloc_func_t func)
{
    g_xsal_malloc_base_func = func != nullptr ? func : malloc;
}

void xsal_free_base_func_set(xsal_free_func_t func)
{
    g_xsal_free_base_func = func != nullptr ? func : free;
}

int xsal_memcpy_s(void *dest, size_t dest_size, const void *src, size_t count)
{
    return tide::bounds::memcpy_s(dest, dest_size, src, count);
}

int xsal_memset_s(void *dest, size_t dest_size, int value, size_t count)
{
    return tide::bounds::memset_s(dest, dest_size, value, count);
}

} // extern "C"
