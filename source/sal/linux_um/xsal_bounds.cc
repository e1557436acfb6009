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

int memcpy_s(void *dest, std::size_t dest_size, const void *src, std::size_t count)
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
    if (count > dest_size) {
        return kNoSpace;
    }
    if (_overlaps(dest, src, count)) {
        return kOverlap;
    }
    std::memcpy(dest, src, count);
    return kOk;
}

int memmove_s(void *dest, std::size_t dest_size, const void *src, std::size_t count)
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
    if (count > dest_size) {
        return kNoSpace;
    }
    std::memmove(dest, src, count);
    return kOk;
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
