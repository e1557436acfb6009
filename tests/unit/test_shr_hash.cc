// shr_hash: chains, equal keys, deletion during iteration, replace.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>
#include <vector>

#include "shared/shr_hash.h"
#include "unit/counting_alloc.h"

namespace {

struct Rec {
    u32 key;
    int value;
};

// Keys below 1000 hash alike in groups of 8, so that chains grow.
u32 _key(const void *data)
{
    return static_cast<const Rec *>(data)->key / 8;
}

int _same(const void *stored, const void *data)
{
    return static_cast<const Rec *>(stored)->key == static_cast<const Rec *>(data)->key;
}

void *_alloc_rec(void *data)
{
    auto *r = static_cast<Rec *>(xsal_malloc(sizeof(Rec), "rec", SHR_MOD_COMMON));
    if (r != nullptr) {
        *r = *static_cast<Rec *>(data);
    }
    return r;
}

void *_alloc_fail(void *)
{
    return nullptr;
}

void _free_rec(void *r)
{
    xsal_mem_free(r);
}

} // namespace

TEST(ShrHash, SameHashDifferentKeysShareAChainAndStayApart)
{
    tide_test::CountingAlloc alloc;
    shr_hash *h = shr_hash_create_size(7, _key, _same);
    ASSERT_NE(h, nullptr);
    Rec probe{3, 0};
    EXPECT_EQ(shr_hash_lookup(h, &probe), nullptr);
    for (u32 k = 0; k < 40; k++) {
        Rec r{k, static_cast<int>(k * 10)};
        ASSERT_NE(shr_hash_insert_samekey_ignore(h, &r, _alloc_rec), nullptr);
    }
    EXPECT_EQ(h->count, 40u);
    for (u32 k = 0; k < 40; k++) {
        Rec q{k, 0};
        auto *found = static_cast<Rec *>(shr_hash_lookup(h, &q));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->value, static_cast<int>(k * 10));
    }
    // An equal key is ignored; get finds the stored one and makes nothing.
    Rec dup{5, -1};
    EXPECT_EQ(shr_hash_insert_samekey_ignore(h, &dup, _alloc_rec), nullptr);
    EXPECT_EQ(static_cast<Rec *>(shr_hash_get(h, &dup, _alloc_rec))->value, 50);
    Rec fresh{500, 7};
    EXPECT_EQ(shr_hash_get(h, &fresh, nullptr), nullptr);
    EXPECT_EQ(static_cast<Rec *>(shr_hash_get(h, &fresh, _alloc_rec))->value, 7);
    Rec unmade{501, 0};
    EXPECT_EQ(shr_hash_get(h, &unmade, _alloc_fail), nullptr);
    EXPECT_EQ(h->count, 41u);

    shr_hash_destroy(h, _free_rec);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(ShrHash, PendKeepsEqualKeysLatestFirst)
{
    tide_test::CountingAlloc alloc;
    shr_hash *h = shr_hash_create(_key, _same);
    Rec a{9, 1};
    Rec b{9, 2};
    ASSERT_NE(shr_hash_insert_samekey_pend(h, &a, _alloc_rec), nullptr);
    ASSERT_NE(shr_hash_insert_samekey_pend(h, &b, _alloc_rec), nullptr);
    EXPECT_EQ(static_cast<Rec *>(shr_hash_lookup(h, &a))->value, 2);
    int seen = 0;
    shr_hash_iterate_clash(
        h, &a, [](void *r, void *arg) { *static_cast<int *>(arg) += static_cast<Rec *>(r)->value; }, &seen);
    EXPECT_EQ(seen, 3);
    void *later = shr_hash_delete(h, &a);
    EXPECT_EQ(static_cast<Rec *>(later)->value, 2);
    xsal_mem_free(later);
    EXPECT_EQ(static_cast<Rec *>(shr_hash_lookup(h, &a))->value, 1);
    shr_hash_destroy(h, _free_rec);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(ShrHash, ReplaceFreesTheOldRecordThroughTheAllocator)
{
    tide_test::CountingAlloc alloc;
    shr_hash *h = shr_hash_create_size(16, _key, _same);
    Rec r1{4, 1};
    Rec r2{4, 2};
    void *first = shr_hash_insert_samekey_replace(h, &r1, _alloc_rec);
    ASSERT_NE(first, nullptr);
    const long before = alloc.live();
    void *second = shr_hash_insert_samekey_replace(h, &r2, _alloc_rec);
    ASSERT_NE(second, nullptr);
    // One record freed and one made: the count of blocks is the same.
    EXPECT_EQ(alloc.live(), before);
    EXPECT_EQ(h->count, 1u);
    EXPECT_EQ(shr_hash_lookup(h, &r1), second);
    shr_hash_destroy(h, _free_rec);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(ShrHash, IterateCallbackThatDeletesItsRecordVisitsEveryOtherOnce)
{
    tide_test::CountingAlloc alloc;
    shr_hash *h = shr_hash_create_size(5, _key, _same);
    for (u32 k = 0; k < 200; k++) {
        Rec r{k, static_cast<int>(k)};
        ASSERT_NE(shr_hash_insert_samekey_ignore(h, &r, _alloc_rec), nullptr);
    }
    struct Ctx {
        shr_hash *h;
        std::map<u32, int> visits;
    } ctx{h, {}};
    shr_hash_iterate(
        h,
        [](void *r, void *arg) {
            auto *c = static_cast<Ctx *>(arg);
            auto *rec = static_cast<Rec *>(r);
            c->visits[rec->key]++;
            // Every third record deletes itself from inside the walk.
            if (rec->key % 3 == 0) {
                void *gone = shr_hash_delete(c->h, rec);
                EXPECT_EQ(gone, r);
                xsal_mem_free(gone);
            }
        },
        &ctx);
    ASSERT_EQ(ctx.visits.size(), 200u);
    for (const auto &[key, n] : ctx.visits) {
        EXPECT_EQ(n, 1) << key;
    }
    EXPECT_EQ(h->count, 200u - 67u);

    // Cleanup leaves a usable, empty table.
    shr_hash_cleanup(h, _free_rec);
    EXPECT_EQ(h->count, 0u);
    int calls = 0;
    shr_hash_iterate(h, [](void *, void *arg) { ++*static_cast<int *>(arg); }, &calls);
    EXPECT_EQ(calls, 0);
    Rec again{1, 1};
    EXPECT_NE(shr_hash_insert_samekey_ignore(h, &again, _alloc_rec), nullptr);
    shr_hash_destroy(h, _free_rec);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(ShrHash, NoMemoryForTheBucketLeavesNothingBehind)
{
    static int s_fail_after;
    tide_test::CountingAlloc alloc;
    shr_hash *h = shr_hash_create_size(8, _key, _same);
    // The next two blocks: the record made by alloc, then no bucket.
    s_fail_after = 1;
    xsal_malloc_base_func_set([](size_t size) -> void * {
        return s_fail_after-- > 0 ? tide_test::counting_malloc(size) : nullptr;
    });
    Rec r{1, 1};
    EXPECT_EQ(shr_hash_insert_samekey_ignore(h, &r, _alloc_rec), nullptr);
    xsal_malloc_base_func_set(tide_test::counting_malloc);
    EXPECT_EQ(h->count, 0u);
    shr_hash_destroy(h, _free_rec);
    EXPECT_EQ(alloc.live(), 0);
}
