// A counting backend for xsal_malloc: the number of blocks handed out and
// not yet given back.  Install it with CountingAlloc guard; the count
// starts at 0 and the backend is restored when the guard ends.
#ifndef TIDE_TESTS_COUNTING_ALLOC_H
#define TIDE_TESTS_COUNTING_ALLOC_H

#include <atomic>
#include <cstdlib>

#include <tide/xsal.h>

namespace tide_test {

inline std::atomic<long> g_live_blocks;

inline void *counting_malloc(size_t size)
{
    void *p = std::malloc(size);
    if (p != nullptr) {
        g_live_blocks++;
    }
    return p;
}

inline void counting_free(void *p)
{
    if (p != nullptr) {
        g_live_blocks--;
    }
    std::free(p);
}

class CountingAlloc {
public:
    CountingAlloc()
    {
        g_live_blocks = 0;
        xsal_malloc_base_func_set(counting_malloc);
        xsal_free_base_func_set(counting_free);
    }
    ~CountingAlloc()
    {
        xsal_malloc_base_func_set(nullptr);
        xsal_free_base_func_set(nullptr);
    }
    CountingAlloc(const CountingAlloc &) = delete;
    CountingAlloc &operator=(const CountingAlloc &) = delete;
    long live() const { return g_live_blocks.load(); }
};

} // namespace tide_test

#endif
