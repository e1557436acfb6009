// Bounded memory and string calls.
#include "sal/linux_um/xsal_bounds.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace tide::bounds {

static bool _overlaps(const void *a, const void *b, std::size_t n)
{
    const auto pa = reinterpret_cast<std::uintptr_t>(a);
    const auto pb = reinterpret_cast<std::uintptr_t>(b);
    return pa < pb ? pb - pa < n : pa - pb < n;
}

// The checks of a copy of `count` bytes; kOk when it may go ahead (a copy
// of 0 bytes does nothing).
static int _copy_check(const void *dest, std::size_t dest_size, const void *src, std::size_t count)
{
    if (dest == nullptr || dest_size > kMaxSize) {
        return kInvalid;
    }
    if (count == 0) {
        return kOk;
    }
    if (src == nullptr || count > kMaxSize) {
        return kInvalid;
    }
    return count > dest_size ? kNoSpace : kOk;
}

int memcpy_s(void *dest, std::size_t dest_size, const void *src, std::size_t count)
{
    const int rc = _copy_check(dest, dest_size, src, count);
    if (rc != kOk || count == 0) {
        return rc;
    }
    if (_overlaps(dest, src, count)) {
        return kOverlap;
    }
    std::memcpy(dest, src, count);
    return kOk;
}

int memmove_s(void *dest, std::size_t dest_size, const void *src, std::size_t count)
{
    const int rc = _copy_check(dest, dest_size, src, count);
    if (rc == kOk && count != 0) {
        std::memmove(dest, src, count);
    }
    return rc;
}

int memset_s(void *dest, std::size_t dest_size, int value, std::size_t count)
{
    if (dest == nullptr || dest_size > kMaxSize || count > kMaxSize) {
        return kInvalid;
    }
    if (count > dest_size) {
        return kNoSpace;
    }
    std::memset(dest, value, count);
    return kOk;
}

// ---- strings ----------------------------------------------------------------

namespace {

// A destination that a string call may write its terminator into.
bool _dest_ok(const char *dest, std::size_t dest_size)
{
    return dest != nullptr && dest_size != 0 && dest_size <= kMaxSize;
}

// Ends a refused string call: an empty string, and the error.
int _refuse(char *dest, int error)
{
    dest[0] = '\0';
    return error;
}

} // namespace

int strncpy_s(char *dest, std::size_t dest_size, const char *src, std::size_t count)
{
    if (!_dest_ok(dest, dest_size)) {
        return kInvalid;
    }
    if (src == nullptr || count > kMaxSize) {
        return _refuse(dest, kInvalid);
    }
    const std::size_t n = strnlen(src, count < dest_size ? count : dest_size);
    if (n >= dest_size) {
        return _refuse(dest, kNoSpace);
    }
    if (_overlaps(dest, src, n + 1)) {
        return _refuse(dest, kOverlap);
    }
    std::memcpy(dest, src, n);
    dest[n] = '\0';
    return kOk;
}

int strcpy_s(char *dest, std::size_t dest_size, const char *src)
{
    return strncpy_s(dest, dest_size, src, dest_size);
}

int strcat_s(char *dest, std::size_t dest_size, const char *src)
{
    if (!_dest_ok(dest, dest_size)) {
        return kInvalid;
    }
    if (src == nullptr) {
        return _refuse(dest, kInvalid);
    }
    const std::size_t used = strnlen(dest, dest_size);
    if (used == dest_size) {
        return _refuse(dest, kInvalid); // the destination is not terminated
    }
    const std::size_t room = dest_size - used;
    const std::size_t n = strnlen(src, room);
    if (n >= room) {
        return _refuse(dest, kNoSpace);
    }
    if (_overlaps(dest + used, src, n + 1)) {
        return _refuse(dest, kOverlap);
    }
    std::memcpy(dest + used, src, n);
    dest[used + n] = '\0';
    return kOk;
}

int vsnprintf_s(char *dest, std::size_t dest_size, std::size_t count, const char *format, va_list args)
{
    if (!_dest_ok(dest, dest_size)) {
        return -1;
    }
    if (format == nullptr || count > kMaxSize) {
        return _refuse(dest, -1);
    }
    va_list copy;
    va_copy(copy, args);
    const int n = std::vsnprintf(dest, dest_size, format, copy);
    va_end(copy);
    if (n < 0 || static_cast<std::size_t>(n) >= dest_size || static_cast<std::size_t>(n) > count) {
        return _refuse(dest, -1);
    }
    return n;
}

int vsprintf_s(char *dest, std::size_t dest_size, const char *format, va_list args)
{
    return vsnprintf_s(dest, dest_size, dest_size, format, args);
}

int vsnprintf_truncated_s(char *dest, std::size_t dest_size, const char *format, va_list args)
{
    if (!_dest_ok(dest, dest_size)) {
        return -1;
    }
    if (format == nullptr) {
        return _refuse(dest, -1);
    }
    va_list copy;
    va_copy(copy, args);
    const int n = std::vsnprintf(dest, dest_size, format, copy);
    va_end(copy);
    if (n < 0) {
        return _refuse(dest, -1);
    }
    return static_cast<std::size_t>(n) < dest_size ? n : static_cast<int>(dest_size - 1);
}

// ---- scanning ---------------------------------------------------------------

namespace {

// One conversion of a scan format, as parsed.
struct _Conversion {
    bool suppress = false;
    std::size_t width = 0; // 0: none given
    char length[3] = {};   // length modifier, at most two characters
    char conv = '\0';
    const char *set = nullptr; // %[: from '[' to ']' inclusive
    std::size_t set_len = 0;
};

constexpr std::size_t kSubFormatMax = 256;

// Parses the conversion behind a '%'; the format position after it, or
// NULL for a malformed one.
const char *_parse_conversion(const char *f, _Conversion *cv)
{
    if (*f == '*') {
        cv->suppress = true;
        f++;
    }
    while (std::isdigit(static_cast<unsigned char>(*f))) {
        cv->width = cv->width * 10 + static_cast<std::size_t>(*f - '0');
        if (cv->width > kMaxSize) {
            return nullptr;
        }
        f++;
    }
    std::size_t len = 0;
    while (*f != '\0' && std::strchr("hlLqjzt", *f) != nullptr) {
        if (len == 2) {
            return nullptr;
        }
        cv->length[len++] = *f++;
    }
    cv->conv = *f;
    if (cv->conv == '\0' || std::strchr("diouxXaAeEfFgGpsc[n", cv->conv) == nullptr) {
        return nullptr;
    }
    if (cv->conv != '[') {
        return f + 1;
    }
    // A ']' right behind '[' or '[^' belongs to the set.
    const char *p = f + 1;
    if (*p == '^') {
        p++;
    }
    if (*p == ']') {
        p++;
    }
    p = std::strchr(p, ']');
    if (p == nullptr) {
        return nullptr;
    }
    cv->set = f;
    cv->set_len = static_cast<std::size_t>(p - f) + 1;
    return p + 1;
}

// "%<*><width><length><conv or set>%n" into `out`; false if too long.
bool _sub_format(const _Conversion &cv, bool suppress, char (&out)[kSubFormatMax])
{
    char width[24] = "";
    if (cv.width != 0) {
        std::snprintf(width, sizeof(width), "%zu", cv.width);
    }
    const int n = cv.set != nullptr
                      ? std::snprintf(out, sizeof(out), "%%%s%s%.*s%%n", suppress ? "*" : "", width,
                                      static_cast<int>(cv.set_len), cv.set)
                      : std::snprintf(out, sizeof(out), "%%%s%s%s%c%%n", suppress ? "*" : "", width, cv.length,
                                      cv.conv);
    return n > 0 && static_cast<std::size_t>(n) < sizeof(out);
}

void _store_count(const _Conversion &cv, void *dest, long long count)
{
    const char l0 = cv.length[0];
    const char l1 = cv.length[1];
    if (l0 == 'h' && l1 == 'h') {
        *static_cast<signed char *>(dest) = static_cast<signed char>(count);
    } else if (l0 == 'h') {
        *static_cast<short *>(dest) = static_cast<short>(count);
    } else if ((l0 == 'l' && l1 == 'l') || l0 == 'q' || l0 == 'L' || l0 == 'j') {
        *static_cast<long long *>(dest) = count;
    } else if (l0 == 'l' || l0 == 'z' || l0 == 't') {
        *static_cast<long *>(dest) = static_cast<long>(count);
    } else {
        *static_cast<int *>(dest) = static_cast<int>(count);
    }
}

// Characters that %s, or the set of a %[, would take from `in`; -1 if
// none.
int _measure(const _Conversion &cv, const char *in)
{
    char sub[kSubFormatMax];
    if (!_sub_format(cv, true, sub)) {
        return -1;
    }
    int consumed = -1;
    std::sscanf(in, sub, &consumed);
    return consumed;
}

void _skip_space(const char **in)
{
    while (std::isspace(static_cast<unsigned char>(**in))) {
        (*in)++;
    }
}

} // namespace

int vsscanf_s(const char *buffer, const char *format, va_list args_in)
{
    if (buffer == nullptr || format == nullptr) {
        return -1;
    }
    va_list args;
    va_copy(args, args_in);
    const char *in = buffer;
    const char *f = format;
    int assigned = 0;
    bool converted = false; // a conversion has completed
    // The result when the input ends: EOF before the first conversion.
    const auto input_failure = [&]() { return converted ? assigned : -1; };
    int result = -2; // still scanning
    while (result == -2 && *f != '\0') {
        if (std::isspace(static_cast<unsigned char>(*f))) {
            _skip_space(&f);
            _skip_space(&in);
            continue;
        }
        if (*f != '%' || f[1] == '%') {
            if (*f == '%') {
                _skip_space(&in);
                f++;
            }
            if (*in == '\0') {
                result = input_failure();
            } else if (*in != *f) {
                result = assigned;
            } else {
                in++;
                f++;
            }
            continue;
        }
        _Conversion cv;
        f = _parse_conversion(f + 1, &cv);
        const bool string_conv = cv.conv == 's' || cv.conv == 'c' || cv.conv == '[';
        if (f == nullptr || (string_conv && cv.length[0] != '\0')) {
            result = -1; // malformed, or wide characters
            break;
        }
        if (cv.conv == 'n') {
            if (!cv.suppress) {
                _store_count(cv, va_arg(args, void *), in - buffer);
            }
            continue;
        }
        if (cv.conv != 'c' && cv.conv != '[') {
            _skip_space(&in);
        }
        if (*in == '\0') {
            result = input_failure();
            break;
        }
        char *dest = nullptr;
        std::size_t dest_size = 0;
        if (string_conv && !cv.suppress) {
            dest = va_arg(args, char *);
            dest_size = va_arg(args, std::size_t);
            if (dest == nullptr || dest_size == 0) {
                result = -1;
                break;
            }
        }
        std::size_t taken;
        if (cv.conv == 'c') {
            taken = cv.width != 0 ? cv.width : 1;
            if (strnlen(in, taken) < taken) {
                result = input_failure();
                break;
            }
        } else if (string_conv) {
            const int n = _measure(cv, in);
            if (n <= 0) {
                result = assigned;
                break;
            }
            taken = static_cast<std::size_t>(n);
        } else {
            char sub[kSubFormatMax];
            if (!_sub_format(cv, cv.suppress, sub)) {
                result = -1;
                break;
            }
            int consumed = -1;
            if (cv.suppress) {
                std::sscanf(in, sub, &consumed);
            } else {
                std::sscanf(in, sub, va_arg(args, void *), &consumed);
            }
            if (consumed < 0) {
                result = assigned;
                break;
            }
            taken = static_cast<std::size_t>(consumed);
        }
        if (dest != nullptr) {
            // %c stores no terminator; the strings need room for one.
            const std::size_t need = cv.conv == 'c' ? taken : taken + 1;
            if (need > dest_size) {
                dest[0] = '\0';
                result = assigned;
                break;
            }
            std::memcpy(dest, in, taken);
            if (cv.conv != 'c') {
                dest[taken] = '\0';
            }
        }
        in += taken;
        converted = true;
        if (!cv.suppress) {
            assigned++;
        }
    }
    va_end(args);
    return result == -2 ? assigned : result;
}

} // namespace tide::bounds
