// Bit helpers of data images: bit n is bit n % 8 of byte n / 8.
#include "shared/shr_int.h"

extern "C" {

u32 shr_buf_bitwidth_get(const u8 *buf, u32 bytes)
{
    if (buf == nullptr) {
        return 0;
    }
    for (u32 i = bytes; i > 0; i--) {
        const u8 b = buf[i - 1];
        if (b != 0) {
            return (i - 1) * 8 + (32 - static_cast<u32>(__builtin_clz(b)));
        }
    }
    return 0;
}

} // extern "C"
