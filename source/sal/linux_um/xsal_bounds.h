/*
 * Bounded memory and string calls of our own: the C library of the
 * platform does not have them.  Nothing is ever written beyond the stated
 * destination size.  A refused call returns non-zero and writes nothing
 * (for the string copies: the destination becomes an empty string when it
 * has room for one).
 */
#ifndef TIDE_XSAL_BOUNDS_H
#define TIDE_XSAL_BOUNDS_H

#include <cstdarg>
#include <cstddef>

namespace tide::bounds {

// Error values of the bounded calls.
constexpr int kOk = 0;
constexpr int kInvalid = 22;   // NULL pointer or size 0 or size beyond the limit
constexpr int kNoSpace = 34;   // the data does not fit
constexpr int kOverlap = 54;   // source and destination overlap

// Sizes above this are taken as a negative number cast to size_t.
constexpr std::size_t kMaxSize = static_cast<std::size_t>(0x7FFFFFFF) * 2 + 1;

int memcpy_s(void *dest, std::size_t dest_size, const void *src, std::size_t count);
int memmove_s(void *dest, std::size_t dest_size, const void *src, std::size_t count);
int memset_s(void *dest, std::size_t dest_size, int value, std::size_t count);

// String copies: the whole of `src` (strcpy_s), at most `count` characters
// of it (strncpy_s) or `src` behind the text in `dest` (strcat_s), always
// terminated.  Refused when the result and its terminator do not fit.
int strcpy_s(char *dest, std::size_t dest_size, const char *src);
int strncpy_s(char *dest, std::size_t dest_size, const char *src, std::size_t count);
int strcat_s(char *dest, std::size_t dest_size, const char *src);

// Prints: the number of characters, or -1 when the text and its terminator
// do not fit (vsnprintf_s: when the text is longer than `count` or does
// not fit in `dest_size`), the destination then being an empty string.
int vsprintf_s(char *dest, std::size_t dest_size, const char *format, va_list args);
int vsnprintf_s(char *dest, std::size_t dest_size, std::size_t count, const char *format, va_list args);
// Cuts the text to what fits and terminates it; the number of characters
// written, or -1 for a destination of no size or a format error.
int vsnprintf_truncated_s(char *dest, std::size_t dest_size, const char *format, va_list args);

// vsscanf whose %s, %c and %[ conversions take a destination size
// (size_t) behind each destination pointer.  A text that does not fit is a
// matching failure: the destination gets an empty string and the scan
// ends.  The number of assigned items; -1 for an input failure before the
// first one, for NULL arguments, for a destination of size 0 and for
// wide-character conversions.
int vsscanf_s(const char *buffer, const char *format, va_list args);

} // namespace tide::bounds

#endif /* TIDE_XSAL_BOUNDS_H */
