// Bounded memory calls.
#include "sal/linux_um/xsal_bounds.h"

#include <cstdint>
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

} // namespace tide::bounds
