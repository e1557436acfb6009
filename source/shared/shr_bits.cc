// Bit helpers of data images: bit n is bit n % 8 of byte n / 8.
#include "shared/shr_int.h"

namespace {

// A field of up to 32 bits, placed byte by byte: the bytes it covers
// change, the other bits of them stay.
int _field_set(u8 *data, u64 value, u16 start, u16 width)
{
    u64 mask = width >= 64 ? ~0ull : (1ull << width) - 1;
    const u32 shift = start % 8;
    mask <<= shift;
    value <<= shift;
    for (u32 i = start / 8; mask != 0; i++, mask >>= 8, value >>= 8) {
        data[i] = static_cast<u8>((data[i] & ~mask) | (value & mask));
    }
    return 0;
}

u64 _field_get(const u8 *data, u16 start, u16 width)
{
    const u32 shift = start % 8;
    const u32 bytes = (shift + width + 7) / 8;
    unsigned __int128 acc = 0;
    for (u32 i = 0; i < bytes; i++) {
        acc |= static_cast<unsigned __int128>(data[start / 8 + i]) << (8 * i);
    }
    acc >>= shift;
    return width >= 64 ? static_cast<u64>(acc) : static_cast<u64>(acc) & ((1ull << width) - 1);
}

template <typename T>
int _typed_set(u8 *data, T value, u16 start, u16 width)
{
    if (data == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (width < 64 && (static_cast<u64>(value) >> width) != 0) {
        return SHR_E_FIELD_WIDE;
    }
    return _field_set(data, value, start, width);
}

template <typename T>
int _typed_get(u8 *data, T *value, u16 start, u16 width)
{
    if (data == nullptr || value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *value = static_cast<T>(_field_get(data, start, width));
    return 0;
}

} // namespace

extern "C" {

int shr_field8_set_to_data(u8 *d, u8 v, u16 s, u16 w) { return _typed_set(d, v, s, w); }
int shr_field16_set_to_data(u8 *d, u16 v, u16 s, u16 w) { return _typed_set(d, v, s, w); }
int shr_field32_set_to_data(u8 *d, u32 v, u16 s, u16 w) { return _typed_set(d, v, s, w); }
int shr_field64_set_to_data(u8 *d, u64 v, u16 s, u16 w) { return _typed_set(d, v, s, w); }
int shr_field8_get_from_data(u8 *d, u8 *v, u16 s, u16 w) { return _typed_get(d, v, s, w); }
int shr_field16_get_from_data(u8 *d, u16 *v, u16 s, u16 w) { return _typed_get(d, v, s, w); }
int shr_field32_get_from_data(u8 *d, u32 *v, u16 s, u16 w) { return _typed_get(d, v, s, w); }
int shr_field64_get_from_data(u8 *d, u64 *v, u16 s, u16 w) { return _typed_get(d, v, s, w); }

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
