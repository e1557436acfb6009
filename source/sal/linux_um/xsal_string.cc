// The bounded string calls of the OS layer and the string helpers.
#include <execinfo.h>

#include <cctype>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "sal/linux_um/xsal_bounds.h"
#include "sal/linux_um/xsal_int.h"

namespace {

// The destination size of the unbounded prints: no limit in effect.
constexpr size_t kUnbounded = 0x7FFFFFFF;

// Difference of the first differing bytes, as unsigned characters.
int _byte_diff(unsigned char a, unsigned char b)
{
    return static_cast<int>(a) - static_cast<int>(b);
}

} // namespace

extern "C" {

// ---- bounded string calls ---------------------------------------------------

int xsal_strcpy_s(char *dest, size_t dest_size, const char *src)
{
    return tide::bounds::strcpy_s(dest, dest_size, src);
}

int xsal_strncpy_s(char *dest, size_t dest_size, const char *src, size_t count)
{
    return tide::bounds::strncpy_s(dest, dest_size, src, count);
}

int xsal_strcat_s(char *dest, size_t dest_size, const char *src)
{
    return tide::bounds::strcat_s(dest, dest_size, src);
}

int xsal_vsprintf(char *dest, const char *format, va_list args)
{
    return tide::bounds::vsprintf_s(dest, kUnbounded, format, args);
}

int xsal_vsprintf_s(char *dest, size_t dest_size, const char *format, va_list args)
{
    return tide::bounds::vsprintf_s(dest, dest_size, format, args);
}

int xsal_vsnprintf(char *dest, size_t size, const char *format, va_list args)
{
    return tide::bounds::vsnprintf_s(dest, size, size, format, args);
}

int xsal_vsnprintf_s(char *dest, size_t dest_size, size_t count, const char *format, va_list args)
{
    return tide::bounds::vsnprintf_s(dest, dest_size, count, format, args);
}

int xsal_sprintf(char *dest, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int n = xsal_vsprintf(dest, format, args);
    va_end(args);
    return n;
}

int xsal_snprintf(char *dest, size_t size, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int n = xsal_vsnprintf(dest, size, format, args);
    va_end(args);
    return n;
}

int xsal_snprintf_s(char *dest, size_t dest_size, size_t count, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int n = xsal_vsnprintf_s(dest, dest_size, count, format, args);
    va_end(args);
    return n;
}

int xsal_sprintf_s(char *dest, size_t dest_size, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int n = tide::bounds::vsnprintf_truncated_s(dest, dest_size, format, args);
    va_end(args);
    return n;
}

int xsal_sscanf(const char *text, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int n = tide::bounds::vsscanf_s(text, format, args);
    va_end(args);
    return n;
}

// ---- string helpers -----------------------------------------------------------

size_t xsal_strlen(const char *text)
{
    return text != nullptr ? std::strlen(text) : 0;
}

int xsal_strcmp(const char *a, const char *b)
{
    return xsal_strncmp(a, b, SIZE_MAX);
}

int xsal_strncmp(const char *a, const char *b, size_t count)
{
    for (size_t i = 0; i < count; i++) {
        const auto ca = static_cast<unsigned char>(a[i]);
        const auto cb = static_cast<unsigned char>(b[i]);
        if (ca != cb || ca == 0) {
            return _byte_diff(ca, cb);
        }
    }
    return 0;
}

int xsal_memcmp(const void *a, const void *b, size_t count)
{
    const auto *pa = static_cast<const unsigned char *>(a);
    const auto *pb = static_cast<const unsigned char *>(b);
    for (size_t i = 0; i < count; i++) {
        if (pa[i] != pb[i]) {
            return _byte_diff(pa[i], pb[i]);
        }
    }
    return 0;
}

int xsal_strcasecmp(const char *a, const char *b)
{
    return xsal_strncasecmp(a, b, SIZE_MAX);
}

int xsal_strncasecmp(const char *a, const char *b, size_t count)
{
    for (size_t i = 0; i < count; i++) {
        const auto ca = static_cast<unsigned char>(std::tolower(static_cast<unsigned char>(a[i])));
        const auto cb = static_cast<unsigned char>(std::tolower(static_cast<unsigned char>(b[i])));
        if (ca != cb || ca == 0) {
            return _byte_diff(ca, cb);
        }
    }
    return 0;
}

char *xsal_strstr(const char *haystack, const char *needle)
{
    if (haystack == nullptr) {
        return nullptr;
    }
    if (needle == nullptr) {
        return const_cast<char *>(haystack);
    }
    return const_cast<char *>(std::strstr(haystack, needle));
}

char *xsal_strndup(const char *text, size_t count)
{
    if (text == nullptr) {
        return nullptr;
    }
    const size_t n = strnlen(text, count);
    auto *copy = static_cast<char *>(xsal_malloc(n + 1, "sal_strndup", SHR_MOD_COMMON));
    if (copy != nullptr) {
        std::memcpy(copy, text, n);
        copy[n] = '\0';
    }
    return copy;
}

char *xsal_strdup(const char *text)
{
    if (text == nullptr) {
        return nullptr;
    }
    const size_t n = std::strlen(text);
    auto *copy = static_cast<char *>(xsal_malloc(n + 1, "sal_strdup", SHR_MOD_COMMON));
    if (copy != nullptr) {
        std::memcpy(copy, text, n + 1);
    }
    return copy;
}

char *xsal_strupper_to_lower(char *dest, const char *src, size_t count)
{
    if (dest == nullptr || src == nullptr || count == 0) {
        return nullptr;
    }
    for (size_t i = 0; i < count; i++) {
        dest[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(src[i])));
    }
    return dest;
}

int xsal_byte_memcpy_s(void *dest, size_t dest_size, const void *src, size_t count)
{
    if (dest == nullptr || src == nullptr) {
        return -1;
    }
    const size_t n = dest_size < count ? dest_size : count;
    auto *d = static_cast<volatile unsigned char *>(dest);
    const auto *s = static_cast<const volatile unsigned char *>(src);
    for (size_t i = 0; i < n; i++) {
        d[i] = s[i];
    }
    return 0;
}

int xsal_byte_memset_s(void *dest, size_t dest_size, int value, size_t count)
{
    if (dest == nullptr) {
        return -1;
    }
    const size_t n = dest_size < count ? dest_size : count;
    auto *d = static_cast<volatile unsigned char *>(dest);
    for (size_t i = 0; i < n; i++) {
        d[i] = static_cast<unsigned char>(value);
    }
    return 0;
}

// For memory that takes only 32-bit accesses (mapped device memory): words
// wherever source and destination share their alignment, bytes for the
// unaligned head and tail, and bytes throughout when the alignments differ.
int xsal_memcpy_addr_4byte_align_s(void *dest, size_t dest_size, const void *src, size_t count)
{
    if (dest == nullptr || src == nullptr) {
        return -1;
    }
    size_t n = dest_size < count ? dest_size : count;
    auto *d = static_cast<volatile unsigned char *>(dest);
    const auto *s = static_cast<const volatile unsigned char *>(src);
    const auto da = reinterpret_cast<uintptr_t>(dest) & 3u;
    const auto sa = reinterpret_cast<uintptr_t>(src) & 3u;
    if (da == sa) {
        for (; n > 0 && (reinterpret_cast<uintptr_t>(d) & 3u) != 0; n--) {
            *d++ = *s++;
        }
        for (; n >= 4; n -= 4, d += 4, s += 4) {
            *reinterpret_cast<volatile uint32_t *>(d) = *reinterpret_cast<const volatile uint32_t *>(s);
        }
    }
    for (; n > 0; n--) {
        *d++ = *s++;
    }
    return 0;
}

i64 xsal_ctoi_scan(const char *text, const char **end)
{
    const char *p = text != nullptr ? text : "";
    bool negative = false;
    if (*p == '-') {
        negative = true;
        p++;
    }
    u32 base = 10;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        base = 16;
        p += 2;
    } else if (p[0] == '0' && (p[1] == 'b' || p[1] == 'B')) {
        base = 2;
        p += 2;
    } else if (p[0] == '0') {
        base = 8;
        p++;
    }
    u64 value = 0;
    for (;; p++) {
        const int c = std::tolower(static_cast<unsigned char>(*p));
        u32 digit;
        if (c >= '0' && c <= '9') {
            digit = static_cast<u32>(c - '0');
        } else if (c >= 'a' && c <= 'f') {
            digit = static_cast<u32>(c - 'a' + 10);
        } else {
            break;
        }
        if (digit >= base) {
            break;
        }
        value = value * base + digit;
    }
    if (end != nullptr) {
        *end = p;
    }
    // Negated as unsigned: "-9223372036854775808" is the least i64, and a
    // longer number wraps instead of overflowing.
    return static_cast<i64>(negative ? 0 - value : value);
}

int64_t xsal_ctoi(const char *text)
{
    return xsal_ctoi_scan(text, nullptr);
}

int32_t xsal_strto32(const char *text, char **end, int base)
{
    const long v = std::strtol(text, end, base);
    return v > INT32_MAX ? INT32_MAX : v < INT32_MIN ? INT32_MIN : static_cast<int32_t>(v);
}

uint32_t xsal_strtou32(const char *text, char **end, int base)
{
    const unsigned long v = std::strtoul(text, end, base);
    return v > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(v);
}

int64_t xsal_strto64(const char *text, char **end, int base)
{
    return std::strtoll(text, end, base);
}

uint64_t xsal_strtou64(const char *text, char **end, int base)
{
    return std::strtoull(text, end, base);
}

char *xsal_clean_string_nullspace(char *text)
{
    if (text == nullptr) {
        return nullptr;
    }
    char *out = text;
    for (const char *in = text; *in != '\0'; in++) {
        if (*in != ' ' && *in != '\t' && *in != '\n' && *in != '\r') {
            *out++ = *in;
        }
    }
    *out = '\0';
    return text;
}

void xsal_utils_memdump(const char *prefix, const void *data, u32 length, xsal_print_func_t print)
{
    if (data == nullptr || print == nullptr) {
        return;
    }
    const auto *bytes = static_cast<const unsigned char *>(data);
    for (u32 i = 0; i < length; i++) {
        if (i % 16 == 0) {
            if (i != 0) {
                print("\n");
            }
            const auto addr = reinterpret_cast<unsigned long>(bytes + i);
            if (prefix != nullptr) {
                print("%s %016lx | ", prefix, addr);
            } else {
                print("%016lx | ", addr);
            }
        }
        print("%02x ", bytes[i]);
        if (i % 16 == 7) {
            print(" ");
        }
    }
    if (length != 0) {
        print("\n");
    }
}

void xsal_memdump(const void *data, u32 length)
{
    xsal_utils_memdump(nullptr, data, length, xsal_printf);
}

char *xsal_strtok_s(char *text, const char *delimiters, char **context)
{
    return strtok_r(text, delimiters, context);
}

char *xsal_strchr_s(const char *text, int c)
{
    return text != nullptr ? const_cast<char *>(std::strchr(text, c)) : nullptr;
}

char *xsal_strrchr_s(const char *text, int c)
{
    return text != nullptr ? const_cast<char *>(std::strrchr(text, c)) : nullptr;
}

size_t xsal_strspn_s(const char *text, const char *accept)
{
    return text != nullptr && accept != nullptr ? std::strspn(text, accept) : 0;
}

void xsal_assert(const char *text, const char *file, int line)
{
    xsal_printf("ERROR: Null pointer assertion failed: (%s) at %s:%d\n", text, file, line);
    xsal_usleep(1000);
    std::abort();
}

int xsal_backtrace(void **frames, int size)
{
    return frames != nullptr && size > 0 ? backtrace(frames, size) : 0;
}

} // extern "C"
