/*
 * Bounded memory and string calls of our own: the C library of the
 * platform does not have them.  Nothing is ever written beyond the stated
 * destination size.  A refused call returns non-zero and writes nothing
 * (for the string copies: the destination becomes an empty string when it
 * has room for one).
 */
#ifndef TIDE_XSAL_BOUNDS_H
#define TIDE_XSAL_BOUNDS_H

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

} // namespace tide::bounds

#endif /* TIDE_XSAL_BOUNDS_H */
