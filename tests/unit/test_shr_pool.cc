// Slab caches, the pool of size classes and the reference count.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include "sal/linux_um/xsal_int.h"
#include "support/wait.h"
#include "unit/counting_alloc.h"

namespace {

// The slab record in front of an object.
const void *_slab_of(const void *obj)
{
    return *reinterpret_cast<void *const *>(static_cast<const char *>(obj) - 8);
}

} // namespace

TEST(XsalMemCache, SlabsHoldTheirObjectCountAndEmptySlabsAreReleased)
{
    xsal_mem_cache_init();
    xsal_mem_cache_t cache = xsal_mem_cache_create(4095);
    ASSERT_NE(cache, nullptr);
    // 65536 / (4096 + 8): 15 objects in the first slab, the 16th in a
    // second one.
    std::vector<void *> objs;
    for (int i = 0; i < 16; i++) {
        void *p = xsal_mem_cache_alloc(cache);
        ASSERT_NE(p, nullptr);
        std::memset(p, 0xAB, 4095);
        objs.push_back(p);
    }
    for (int i = 1; i < 15; i++) {
        EXPECT_EQ(_slab_of(objs[i]), _slab_of(objs[0]));
    }
    EXPECT_NE(_slab_of(objs[15]), _slab_of(objs[0]));
    // Returned objects are used before fresh ones.
    void *again = objs[3];
    xsal_mem_cache_free(again);
    EXPECT_EQ(xsal_mem_cache_alloc(cache), again);
    for (void *p : objs) {
        xsal_mem_cache_free(p);
    }
    xsal_mem_cache_destroy(cache);

    // From 4,096 bytes on a slab holds one object.
    xsal_mem_cache_t big = xsal_mem_cache_create(4096);
    void *a = xsal_mem_cache_alloc(big);
    void *b = xsal_mem_cache_alloc(big);
    EXPECT_NE(_slab_of(a), _slab_of(b));
    xsal_mem_cache_free(a);
    xsal_mem_cache_free(b);
    xsal_mem_cache_destroy(big);

    // Objects smaller than a link still each have room for it.
    xsal_mem_cache_t tiny = xsal_mem_cache_create(1);
    std::vector<void *> t;
    for (int i = 0; i < 100; i++) {
        t.push_back(xsal_mem_cache_alloc(tiny));
        *static_cast<char *>(t.back()) = static_cast<char>(i);
    }
    for (size_t i = 0; i < t.size(); i += 2) {
        xsal_mem_cache_free(t[i]);
    }
    for (size_t i = 1; i < t.size(); i += 2) {
        EXPECT_EQ(*static_cast<char *>(t[i]), static_cast<char>(i));
        xsal_mem_cache_free(t[i]);
    }
    xsal_mem_cache_destroy(tiny);
    EXPECT_EQ(xsal_mem_cache_create(0), nullptr);
}

TEST(XsalMemPool, SizeClassesHeadersAndLargeBlocks)
{
    tide_test::CountingAlloc alloc;
    ASSERT_EQ(xsal_mem_pool_create(), 0);
    const long base = alloc.live(); // the rows' mutexes
    EXPECT_EQ(xsal_malloc_from_mem_pool(0, "zero"), nullptr);
    struct Case {
        u32 size;
        u8 row;
    };
    for (Case c : {Case{1, 0}, Case{4, 0}, Case{5, 1}, Case{126976, 20}, Case{126977, 21}, Case{16777216, 27}}) {
        auto *p = static_cast<unsigned char *>(xsal_malloc_from_mem_pool(c.size, "blk"));
        ASSERT_NE(p, nullptr) << c.size;
        EXPECT_EQ(p[-16], c.row) << c.size;
        EXPECT_EQ(*reinterpret_cast<const char **>(p - 8), std::string_view("blk"));
        std::memset(p, 0x11, c.size);
        xsal_free_to_mem_pool(p);
    }
    EXPECT_EQ(alloc.live(), base); // all from mappings
    // Above the largest class: xsal_malloc, size plus the header.
    static size_t s_last_size;
    xsal_malloc_base_func_set([](size_t size) {
        s_last_size = size;
        return tide_test::counting_malloc(size);
    });
    void *huge = xsal_malloc_from_mem_pool(16777217, "huge");
    ASSERT_NE(huge, nullptr);
    EXPECT_EQ(s_last_size, 16777233u);
    EXPECT_EQ(static_cast<unsigned char *>(huge)[-16], 28);
    EXPECT_EQ(alloc.live(), base + 1);
    xsal_free_to_mem_pool(huge);
    xsal_free_to_mem_pool(nullptr);
    EXPECT_EQ(alloc.live(), base);
    xsal_mem_pool_clean();
    EXPECT_EQ(alloc.live(), 0);
}

TEST(XsalMemPool, RandomPatternsFromSeveralThreadsLeaveNothingBehind)
{
    tide_test::CountingAlloc alloc;
    ASSERT_EQ(xsal_mem_pool_create(), 0);
    const long after_create = alloc.live();
    // Each thread draws from a seed of its own: the test's and the next.
    TIDE_TEST_SEED(seed, 1);
    auto worker = [seed](uint64_t offset) {
        SCOPED_TRACE(tide_test::seed_note(seed));
        std::mt19937 rng(static_cast<std::mt19937::result_type>(seed + offset));
        std::vector<std::pair<unsigned char *, u32>> held;
        for (int i = 0; i < 4000; i++) {
            if (held.empty() || rng() % 3 != 0) {
                const u32 size = 1 + rng() % (rng() % 8 == 0 ? 70000 : 600);
                auto *p = static_cast<unsigned char *>(xsal_malloc_from_mem_pool(size, "w"));
                ASSERT_NE(p, nullptr);
                p[0] = static_cast<unsigned char>(size);
                p[size - 1] = static_cast<unsigned char>(size);
                held.emplace_back(p, size);
            } else {
                const size_t at = rng() % held.size();
                auto [p, size] = held[at];
                ASSERT_EQ(p[0], static_cast<unsigned char>(size));
                ASSERT_EQ(p[size - 1], static_cast<unsigned char>(size));
                xsal_free_to_mem_pool(p);
                held[at] = held.back();
                held.pop_back();
            }
        }
        for (auto [p, size] : held) {
            xsal_free_to_mem_pool(p);
        }
    };
    std::thread a(worker, 0);
    std::thread b(worker, 1);
    a.join();
    b.join();
    EXPECT_EQ(alloc.live(), after_create);
    xsal_mem_pool_clean();
    EXPECT_EQ(alloc.live(), 0);
}

namespace {

struct Owner {
    xsal_kref_t ref;
    xsal_mutex_t lock;
    int released = 0;
};

void _release(xsal_kref_t *kref, void *arg)
{
    auto *o = static_cast<Owner *>(arg);
    EXPECT_EQ(&o->ref, kref);
    // Called with the lock held; it is ours to give back.
    EXPECT_EQ(xsal_mutex_trylock(o->lock), 0); // recursive: held by us
    xsal_mutex_unlock(o->lock);
    o->released++;
    xsal_mutex_unlock(o->lock);
}

} // namespace

TEST(XsalKref, CountsDownAndReleasesOnTheLastPut)
{
    tide_test::CountingAlloc alloc;
    EXPECT_EQ(xsal_kref_init(nullptr), -4);
    Owner o;
    o.lock = xsal_mutex_create("owner");
    ASSERT_EQ(xsal_kref_init(&o.ref), 0);
    EXPECT_EQ(xsal_kref_refount_read(&o.ref), 1u);
    xsal_kref_get(&o.ref);
    xsal_kref_get(&o.ref);
    EXPECT_EQ(xsal_kref_put_mutex(&o.ref, _release, o.lock, &o), 0);
    EXPECT_EQ(xsal_kref_put_mutex(&o.ref, _release, o.lock, &o), 0);
    EXPECT_EQ(o.released, 0);
    EXPECT_EQ(xsal_kref_put_mutex(&o.ref, _release, o.lock, &o), 1);
    EXPECT_EQ(o.released, 1);
    EXPECT_EQ(xsal_kref_refount_read(&o.ref), 0u);
    // The lock was given back: another thread can take it.
    std::thread([&] {
        EXPECT_EQ(xsal_mutex_trylock(o.lock), 0);
        xsal_mutex_unlock(o.lock);
    }).join();

    // At 2: dec_not_one gives 1 and leaves 1, then 0 and leaves 1.
    o.ref.refcount = 2;
    EXPECT_EQ(xsal_kref_refcount_dec_not_one(&o.ref), 1);
    EXPECT_EQ(xsal_kref_refount_read(&o.ref), 1u);
    EXPECT_EQ(xsal_kref_refcount_dec_not_one(&o.ref), 0);
    EXPECT_EQ(xsal_kref_refount_read(&o.ref), 1u);
    EXPECT_EQ(xsal_kref_refcount_dec_and_test(&o.ref), 1);
    // Underflow stays at 0; a saturated count stays too.
    EXPECT_EQ(xsal_kref_refcount_dec_not_one(&o.ref), 1);
    EXPECT_EQ(xsal_kref_refount_read(&o.ref), 0u);
    o.ref.refcount = 0xFFFFFFFFu;
    xsal_kref_get(&o.ref);
    EXPECT_EQ(xsal_kref_refcount_dec_not_one(&o.ref), 1);
    EXPECT_EQ(xsal_kref_refount_read(&o.ref), 0xFFFFFFFFu);

    EXPECT_EQ(xsal_kref_deinit(&o.ref), 0);
    xsal_mutex_destroy(o.lock);
    EXPECT_EQ(alloc.live(), 0);
}
