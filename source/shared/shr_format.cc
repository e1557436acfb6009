// Text formatted on the heap, for output whose length is not known ahead.
#include <cstdio>

#include "shared/shr_int.h"

extern "C" {

char *shr_vformat_alloc(u64 first_size, const char *tag, u32 module, u32 *len, const char *format, va_list args)
{
    for (u64 size = first_size > 0 ? first_size : 1;; size *= 2) {
        auto *buf = static_cast<char *>(xsal_malloc(size, tag, module));
        if (buf == nullptr) {
            return nullptr;
        }
        va_list copy;
        va_copy(copy, args);
        const int n = std::vsnprintf(buf, size, format, copy);
        va_end(copy);
        if (n < 0) {
            xsal_mem_free(buf);
            return nullptr;
        }
        if (static_cast<u64>(n) < size) {
            *len = static_cast<u32>(n);
            return buf;
        }
        xsal_mem_free(buf);
    }
}

} // extern "C"
