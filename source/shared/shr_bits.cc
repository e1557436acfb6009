// Bit helpers of data images: bit n is bit n % 8 of byte n / 8.  Typed
// fields touch only the bytes a field occupies; the untyped forms and the
// bit ranges go bit by bit and take any width.
#include <algorithm>
#include <bit>

#include "shared/shr_int.h"

namespace {

// The value with the `width` low bits set; 0 for width 0.
constexpr u64 _max_value(u32 width)
{
    return width == 0 ? 0 : width >= 64 ? ~0ull : (1ull << width) - 1;
}

// Writes a field of at most 32 bits.  With the shift inside the first byte
// below 8, the field and its mask span at most 5 bytes and fit in a u64;
// only those bytes are read and written.
void _field32_put(u8 *data, u32 value, u32 start, u32 width)
{
    if (width == 0) {
        return;
    }
    const u32 shift = start % 8;
    u8 *p = data + start / 8;
    const u64 mask = _max_value(width) << shift;
    const u64 bits = (static_cast<u64>(value) << shift) & mask;
    const u32 bytes = (width + shift + 7) / 8;
    for (u32 i = 0; i < bytes; i++) {
        const u8 m = static_cast<u8>(mask >> (8 * i));
        p[i] = static_cast<u8>((p[i] & ~m) | static_cast<u8>(bits >> (8 * i)));
    }
}

// Reads a field of at most 32 bits from the bytes it occupies.
u32 _field32_take(const u8 *data, u32 start, u32 width)
{
    if (width == 0) {
        return 0;
    }
    const u32 shift = start % 8;
    const u8 *p = data + start / 8;
    const u32 bytes = (width + shift + 7) / 8;
    u64 acc = 0;
    for (u32 i = 0; i < bytes; i++) {
        acc |= static_cast<u64>(p[i]) << (8 * i);
    }
    return static_cast<u32>((acc >> shift) & _max_value(width));
}

template <typename T>
constexpr u32 kTypeBits = sizeof(T) * 8;

template <typename T>
int32_t _width_check(u16 width)
{
    if (width > kTypeBits<T>) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "field(bits=%u) is wider than %u bits\n", (unsigned)width,
                    (unsigned)kTypeBits<T>);
        return SHR_E_PARAM;
    }
    return SHR_E_NONE;
}

// The typed field set of 8, 16, 32 and 64 bits.  The 64-bit form is two
// fields of the 32-bit form: bits 31:0 at `start`, the rest at start + 32.
template <typename T>
int32_t _field_set(u8 *data, T value, u16 start, u16 width)
{
    if (data == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "data is NULL\n");
        return SHR_E_NULL_PTR;
    }
    const int32_t rc = _width_check<T>(width);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const u64 max = _max_value(width);
    if (static_cast<u64>(value) > max) {
        if constexpr (sizeof(T) == 8) {
            SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "input fdata=0x%lx, field(bits=%u) max value=0x%lx\n",
                        (unsigned long)value, (unsigned)width, (unsigned long)max);
        } else {
            SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "input fdata=0x%x, field(bits=%u) max value=0x%lx\n",
                        (unsigned)value, (unsigned)width, (unsigned long)max);
        }
        return SHR_E_FIELD_WIDE;
    }
    if constexpr (sizeof(T) == 8) {
        _field32_put(data, static_cast<u32>(value), start, std::min<u32>(width, 32));
        if (width > 32) {
            _field32_put(data, static_cast<u32>(value >> 32), static_cast<u32>(start) + 32, width - 32u);
        }
    } else {
        _field32_put(data, value, start, width);
    }
    return SHR_E_NONE;
}

template <typename T>
int32_t _field_get(const u8 *data, T *out, u16 start, u16 width)
{
    if (data == nullptr || out == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "data or fdata is NULL\n");
        return SHR_E_NULL_PTR;
    }
    const int32_t rc = _width_check<T>(width);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if constexpr (sizeof(T) == 8) {
        u64 value = _field32_take(data, start, std::min<u32>(width, 32));
        if (width > 32) {
            value |= static_cast<u64>(_field32_take(data, static_cast<u32>(start) + 32, width - 32u)) << 32;
        }
        *out = value;
    } else {
        *out = static_cast<T>(_field32_take(data, start, width));
    }
    return SHR_E_NONE;
}

u32 _bit_get(const u8 *data, u64 n)
{
    return (data[n / 8] >> (n % 8)) & 1u;
}

void _bit_put(u8 *data, u64 n, u32 bit)
{
    const u8 m = static_cast<u8>(1u << (n % 8));
    data[n / 8] = static_cast<u8>(bit != 0 ? (data[n / 8] | m) : (data[n / 8] & ~m));
}

// Copies `length` bits one at a time.  The copy runs from the highest bit
// down, except when a range moves down inside one image, where it runs up:
// either way a bit is read before the copy overwrites it.
void _bits_copy(u8 *dst, u64 dst_start, const u8 *src, u64 src_start, u64 length)
{
    if (dst == src && dst_start < src_start) {
        for (u64 i = 0; i < length; i++) {
            _bit_put(dst, dst_start + i, _bit_get(src, src_start + i));
        }
        return;
    }
    for (u64 i = length; i > 0; i--) {
        _bit_put(dst, dst_start + i - 1, _bit_get(src, src_start + i - 1));
    }
}

// Value of a hexadecimal digit of either case; 255 for anything else.
u8 _digit_value(char c)
{
    if (c >= '0' && c <= '9') {
        return static_cast<u8>(c - '0');
    }
    if (c >= 'a' && c <= 'f') {
        return static_cast<u8>(c - 'a' + 10);
    }
    if (c >= 'A' && c <= 'F') {
        return static_cast<u8>(c - 'A' + 10);
    }
    return 255;
}

// Reads a decimal number, or a hexadecimal one after "0x" or "0X".  False
// for NULL, an empty text, the prefix alone or a bad digit; `*overflow`
// tells whether the value passed 64 bits.
bool _number_scan(const char *text, u64 *value, bool *overflow)
{
    *value = 0;
    *overflow = false;
    if (text == nullptr) {
        return false;
    }
    u64 base = 10;
    if (text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        text += 2;
    }
    if (*text == '\0') {
        return false;
    }
    for (; *text != '\0'; text++) {
        const u8 digit = _digit_value(*text);
        if (digit >= base) {
            return false;
        }
        u64 next = 0;
        if (__builtin_mul_overflow(*value, base, &next) || __builtin_add_overflow(next, digit, &next)) {
            *overflow = true;
        }
        *value = next;
    }
    return true;
}

} // namespace

extern "C" {

int32_t shr_field8_set_to_data(u8 *data, u8 value, u16 start, u16 width)
{
    return _field_set(data, value, start, width);
}

int32_t shr_field16_set_to_data(u8 *data, u16 value, u16 start, u16 width)
{
    return _field_set(data, value, start, width);
}

int32_t shr_field32_set_to_data(u8 *data, u32 value, u16 start, u16 width)
{
    return _field_set(data, value, start, width);
}

int32_t shr_field64_set_to_data(u8 *data, u64 value, u16 start, u16 width)
{
    return _field_set(data, value, start, width);
}

int32_t shr_field8_get_from_data(const u8 *data, u8 *out, u16 start, u16 width)
{
    return _field_get(data, out, start, width);
}

int32_t shr_field16_get_from_data(const u8 *data, u16 *out, u16 start, u16 width)
{
    return _field_get(data, out, start, width);
}

int32_t shr_field32_get_from_data(const u8 *data, u32 *out, u16 start, u16 width)
{
    return _field_get(data, out, start, width);
}

int32_t shr_field64_get_from_data(const u8 *data, u64 *out, u16 start, u16 width)
{
    return _field_get(data, out, start, width);
}

u64 shr_bitwidth_max_value_get(u16 width)
{
    if (width < 1 || width > 64) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "index(%d) error !!!\n", (int)width);
        return 0;
    }
    return _max_value(width);
}

int32_t shr_field_set_to_data(u8 *data, const u8 *value, int32_t width, int32_t start)
{
    if (data == nullptr || value == nullptr || width < 0 || start < 0) {
        return SHR_E_PARAM;
    }
    _bits_copy(data, static_cast<u64>(start), value, 0, static_cast<u64>(width));
    return SHR_E_NONE;
}

int32_t shr_field_get_from_data(const u8 *data, u8 *out, int32_t width, int32_t start)
{
    if (data == nullptr || out == nullptr || width < 0 || start < 0) {
        return SHR_E_PARAM;
    }
    for (u64 i = 0; i < static_cast<u64>(width); i++) {
        out[i / 8] = static_cast<u8>(out[i / 8] | _bit_get(data, static_cast<u64>(start) + i) << (i % 8));
    }
    return SHR_E_NONE;
}

int32_t shr_data_copy_by_bits(u8 *dst, u32 dst_start, const u8 *src, u32 src_start, u32 length)
{
    if (dst == nullptr || src == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "src_data or dst_data is NULL !!!\n");
        return SHR_E_NULL_PTR;
    }
    _bits_copy(dst, dst_start, src, src_start, length);
    return SHR_E_NONE;
}

u32 shr_data_compare_by_bits(const u8 *a, u32 a_start, const u8 *b, u32 b_start, u32 length)
{
    if (length == 0) {
        return 1;
    }
    if (a == nullptr || b == nullptr) {
        return 0;
    }
    for (u64 i = 0; i < length; i++) {
        if (_bit_get(a, a_start + i) != _bit_get(b, b_start + i)) {
            return 0;
        }
    }
    return 1;
}

int32_t shr_data_to_bits_array(const u8 *data, u32 bytes, u8 *out, u32 out_size)
{
    if (data == nullptr || out == nullptr) {
        return SHR_E_PARAM;
    }
    const u64 bits = static_cast<u64>(std::min(bytes, out_size / 8)) * 8;
    for (u64 i = 0; i < bits; i++) {
        out[i] = static_cast<u8>(_bit_get(data, i));
    }
    return SHR_E_NONE;
}

u32 shr_even_parity_calc(const u8 *data, u16 bits)
{
    if (data == nullptr) {
        return 0;
    }
    u32 ones = 0;
    for (u32 i = 0; i < bits / 8u; i++) {
        ones += static_cast<u32>(std::popcount(data[i]));
    }
    if (bits % 8 != 0) {
        ones += static_cast<u32>(std::popcount(static_cast<u8>(data[bits / 8] & _max_value(bits % 8))));
    }
    return ones & 1u;
}

u32 shr_data_bitwidth_get(u64 value)
{
    return static_cast<u32>(std::bit_width(value));
}

u32 shr_buf_bitwidth_get(const u8 *buf, u32 bytes)
{
    if (buf == nullptr) {
        return 0;
    }
    for (u32 i = bytes; i > 0; i--) {
        const u8 b = buf[i - 1];
        if (b != 0) {
            return (i - 1) * 8 + static_cast<u32>(std::bit_width(b));
        }
    }
    return 0;
}

int32_t shr_tcam_keymask_to_xy(const u8 *key, const u8 *mask, u8 *x, u8 *y, u32 bytes)
{
    if (key == nullptr || mask == nullptr || x == nullptr || y == nullptr) {
        return SHR_E_NULL_PTR;
    }
    for (u32 i = 0; i < bytes; i++) {
        const u8 k = key[i];
        const u8 m = mask[i];
        x[i] = static_cast<u8>(m & ~k);
        y[i] = static_cast<u8>(m & k);
    }
    return SHR_E_NONE;
}

int32_t shr_tcam_xy_to_keymask(u8 *key, u8 *mask, const u8 *x, const u8 *y, u32 bytes)
{
    if (key == nullptr || mask == nullptr || x == nullptr || y == nullptr) {
        return SHR_E_NULL_PTR;
    }
    for (u32 i = 0; i < bytes; i++) {
        const u8 xi = x[i];
        const u8 yi = y[i];
        mask[i] = static_cast<u8>(xi ^ yi);
        key[i] = yi;
    }
    return SHR_E_NONE;
}

u32 shr_ipv4_prefix_len_get(u32 mask)
{
    // Contiguous from the top: the inverse is a run of low ones.
    const u32 inverse = ~mask;
    if ((inverse & (inverse + 1)) != 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "invalid parameter: ip_addr_mask 0x%X\n", mask);
        return 255;
    }
    return static_cast<u32>(std::popcount(mask));
}

u32 shr_is_num_string(const char *text)
{
    u64 value = 0;
    bool overflow = false;
    return _number_scan(text, &value, &overflow) ? 1 : 0;
}

int64_t shr_string_num_get(const char *text)
{
    u64 value = 0;
    bool overflow = false;
    if (!_number_scan(text, &value, &overflow) || overflow) {
        return -1;
    }
    return static_cast<int64_t>(value);
}

int32_t shr_data_print(const u8 *data, u16 bytes, const char *title)
{
    if (data == nullptr || bytes == 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "invalid parameter\n");
        return SHR_E_PARAM;
    }
    xsal_printf("%s: data\n", title != nullptr ? title : "");
    // One call per line of 8 bytes ("XX " each, then backspace and newline),
    // so that lines of concurrent prints do not mix.
    char line[8 * 3 + 3];
    u32 used = 0;
    for (u32 i = 0; i < bytes; i++) {
        static constexpr char kHex[] = "0123456789ABCDEF";
        line[used++] = kHex[data[i] >> 4];
        line[used++] = kHex[data[i] & 0xF];
        line[used++] = ' ';
        if (i % 8 == 7 || i + 1 == bytes) {
            line[used++] = '\b';
            line[used++] = '\n';
            line[used] = '\0';
            xsal_printf("%s", line);
            used = 0;
        }
    }
    return SHR_E_NONE;
}

} // extern "C"
