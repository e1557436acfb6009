// shr_avl: balance and order under random change, traversers, copy.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include "shared/shr_avl.h"
#include "support/wait.h"
#include "unit/counting_alloc.h"

namespace {

// Items are small integers stored in the pointer itself.
void *_item(intptr_t v)
{
    return reinterpret_cast<void *>(v);
}

intptr_t _val(const void *p)
{
    return reinterpret_cast<intptr_t>(p);
}

int _cmp(const void *a, const void *b, void *)
{
    return _val(a) < _val(b) ? -1 : _val(a) > _val(b) ? 1 : 0;
}

// Height of a subtree, checking balances, order and counting nodes;
// -1 on a fault.
int _check(const shr_avl_node *n, intptr_t lo, intptr_t hi, u64 *count)
{
    if (n == nullptr) {
        return 0;
    }
    if (_val(n->data) <= lo || _val(n->data) >= hi) {
        return -1;
    }
    const int l = _check(n->link[0], lo, _val(n->data), count);
    const int r = _check(n->link[1], _val(n->data), hi, count);
    if (l < 0 || r < 0 || r - l != n->balance || n->balance < -1 || n->balance > 1) {
        return -1;
    }
    ++*count;
    return 1 + (l > r ? l : r);
}

::testing::AssertionResult _valid(const shr_avl_table *t)
{
    u64 count = 0;
    if (_check(t->root, INTPTR_MIN, INTPTR_MAX, &count) < 0) {
        return ::testing::AssertionFailure() << "unbalanced or out of order";
    }
    if (count != t->count) {
        return ::testing::AssertionFailure() << "count " << t->count << " but " << count << " nodes";
    }
    return ::testing::AssertionSuccess();
}

std::vector<intptr_t> _walk(shr_avl_table *t)
{
    std::vector<intptr_t> out;
    shr_avl_traverser tr;
    for (void *p = shr_avl_t_first(&tr, t); p != nullptr; p = shr_avl_t_next(&tr)) {
        out.push_back(_val(p));
    }
    return out;
}

} // namespace

TEST(ShrAvl, SmallShapesAndEqualItems)
{
    shr_avl_table *t = shr_avl_create(_cmp, nullptr, nullptr);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(shr_avl_insert(t, _item(1)), nullptr);
    EXPECT_EQ(shr_avl_insert(t, _item(2)), nullptr);
    const u64 gen = t->generation;
    EXPECT_EQ(shr_avl_insert(t, _item(3)), nullptr);
    EXPECT_EQ(_val(t->root->data), 2);
    EXPECT_EQ(t->generation, gen + 1); // one rotation
    // An equal item: the old one back, nothing changed.
    EXPECT_EQ(_val(shr_avl_insert(t, _item(3))), 3);
    EXPECT_EQ(t->count, 3u);
    EXPECT_EQ(_val(shr_avl_find(t, _item(1))), 1);
    EXPECT_EQ(shr_avl_find(t, _item(4)), nullptr);
    // Deleting the root of three nodes.
    EXPECT_EQ(_val(shr_avl_delete(t, _item(2))), 2);
    EXPECT_TRUE(_valid(t));
    EXPECT_EQ(_walk(t), (std::vector<intptr_t>{1, 3}));
    EXPECT_EQ(shr_avl_delete(t, _item(2)), nullptr);
    shr_avl_destroy(t, nullptr);
}

TEST(ShrAvl, RandomInsertsAndDeletesKeepItBalancedOrderedAndCounted)
{
    tide_test::CountingAlloc alloc;
    shr_avl_table *t = shr_avl_create(_cmp, nullptr, nullptr);
    TIDE_TEST_SEED(seed, 12345);
    std::mt19937 rng(static_cast<std::mt19937::result_type>(seed));
    std::uniform_int_distribution<int> key(1, 4000);
    std::set<intptr_t> model;
    constexpr int kSteps = 100000;
    for (int step = 0; step < kSteps; step++) {
        const intptr_t v = key(rng);
        if (rng() % 2 == 0) {
            const bool fresh = model.insert(v).second;
            void *old = shr_avl_insert(t, _item(v));
            ASSERT_EQ(old == nullptr, fresh) << "step " << step;
        } else {
            const bool had = model.erase(v) == 1;
            ASSERT_EQ(shr_avl_delete(t, _item(v)) != nullptr, had) << "step " << step;
        }
        // Cheap each step: count and the root's balance; in full now and
        // then.
        ASSERT_EQ(t->count, model.size()) << "step " << step;
        ASSERT_TRUE(t->root == nullptr || (t->root->balance >= -1 && t->root->balance <= 1));
        if (step % 500 == 0) {
            ASSERT_TRUE(_valid(t)) << "step " << step;
        }
    }
    ASSERT_TRUE(_valid(t));
    EXPECT_EQ(_walk(t), std::vector<intptr_t>(model.begin(), model.end()));
    shr_avl_destroy(t, nullptr);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(ShrAvl, TraverserSurvivesDeletionOfOtherNodes)
{
    shr_avl_table *t = shr_avl_create(_cmp, nullptr, nullptr);
    for (intptr_t v = 1; v <= 100; v++) {
        shr_avl_insert(t, _item(v * 10));
    }
    shr_avl_traverser tr;
    ASSERT_EQ(_val(shr_avl_t_find(&tr, t, _item(500))), 500);
    // The successor and many others go; the next step rebuilds the path.
    shr_avl_delete(t, _item(510));
    for (intptr_t v = 1; v <= 40; v++) {
        shr_avl_delete(t, _item(v * 10));
    }
    EXPECT_EQ(_val(shr_avl_t_next(&tr)), 520);
    EXPECT_EQ(_val(shr_avl_t_prev(&tr)), 500);
    shr_avl_delete(t, _item(490));
    EXPECT_EQ(_val(shr_avl_t_prev(&tr)), 480);

    // A copy of the traverser walks on its own.
    shr_avl_traverser other;
    EXPECT_EQ(_val(shr_avl_t_copy(&other, &tr)), 480);
    EXPECT_EQ(_val(shr_avl_t_next(&other)), 500);
    EXPECT_EQ(_val(shr_avl_t_cur(&tr)), 480);

    // Insert through a traverser, then step from the new item.
    EXPECT_EQ(_val(shr_avl_t_insert(&tr, t, _item(505))), 505);
    EXPECT_EQ(_val(shr_avl_t_next(&tr)), 520);
    EXPECT_EQ(_val(shr_avl_t_replace(&tr, _item(520))), 520);

    // At the end NULL, then again from the first.
    EXPECT_EQ(_val(shr_avl_t_last(&tr, t)), 1000);
    EXPECT_EQ(shr_avl_t_next(&tr), nullptr);
    EXPECT_EQ(_val(shr_avl_t_next(&tr)), 410);
    shr_avl_t_init(&tr, t);
    EXPECT_EQ(_val(shr_avl_t_prev(&tr)), 1000);
    EXPECT_EQ(shr_avl_t_find(&tr, t, _item(7)), nullptr);
    EXPECT_EQ(shr_avl_t_cur(&tr), nullptr);
    EXPECT_TRUE(_valid(t));
    shr_avl_destroy(t, nullptr);
}

namespace {

struct Boxed {
    intptr_t v;
};

int _cmp_boxed(const void *a, const void *b, void *)
{
    const intptr_t x = static_cast<const Boxed *>(a)->v;
    const intptr_t y = static_cast<const Boxed *>(b)->v;
    return x < y ? -1 : x > y ? 1 : 0;
}

int g_copies_left;

void *_copy_boxed(void *item, void *)
{
    if (g_copies_left-- == 0) {
        return nullptr;
    }
    auto *b = static_cast<Boxed *>(xsal_malloc(sizeof(Boxed), "boxed", SHR_MOD_COMMON));
    *b = *static_cast<Boxed *>(item);
    return b;
}

void _free_boxed(void *item, void *)
{
    xsal_mem_free(item);
}

} // namespace

TEST(ShrAvl, CopyHasTheSameShapeAndAFailedCopyLeavesNothing)
{
    tide_test::CountingAlloc alloc;
    shr_avl_table *t = shr_avl_create(_cmp_boxed, nullptr, nullptr);
    for (intptr_t v = 0; v < 300; v++) {
        auto *b = static_cast<Boxed *>(xsal_malloc(sizeof(Boxed), "boxed", SHR_MOD_COMMON));
        b->v = (v * 37) % 300;
        ASSERT_EQ(shr_avl_insert(t, b), nullptr);
    }
    const long base = alloc.live();

    g_copies_left = 1 << 30;
    shr_avl_table *c = shr_avl_copy(t, _copy_boxed, _free_boxed, nullptr);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->count, t->count);
    // Same shape: the same item and balance at every position of a
    // pre-order walk, and copies rather than shared items.
    std::vector<const shr_avl_node *> a{t->root}, b{c->root};
    while (!a.empty()) {
        const shr_avl_node *x = a.back();
        const shr_avl_node *y = b.back();
        a.pop_back();
        b.pop_back();
        ASSERT_EQ(x == nullptr, y == nullptr);
        if (x == nullptr) {
            continue;
        }
        EXPECT_NE(x->data, y->data);
        EXPECT_EQ(static_cast<Boxed *>(x->data)->v, static_cast<Boxed *>(y->data)->v);
        EXPECT_EQ(x->balance, y->balance);
        a.insert(a.end(), {x->link[0], x->link[1]});
        b.insert(b.end(), {y->link[0], y->link[1]});
    }
    shr_avl_destroy(c, _free_boxed);
    EXPECT_EQ(alloc.live(), base);

    // Failing at several points of the walk leaves no block behind.
    for (int fail_at : {0, 1, 2, 17, 150, 299}) {
        g_copies_left = fail_at;
        EXPECT_EQ(shr_avl_copy(t, _copy_boxed, _free_boxed, nullptr), nullptr);
        EXPECT_EQ(alloc.live(), base) << fail_at;
    }
    // Without a copy function the items are shared and not freed on
    // failure.
    shr_avl_table *shared = shr_avl_copy(t, nullptr, _free_boxed, nullptr);
    ASSERT_NE(shared, nullptr);
    EXPECT_EQ(shared->root->data, t->root->data);
    shr_avl_destroy(shared, nullptr);

    shr_avl_destroy(t, _free_boxed);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(ShrAvl, ReplaceAndAllocatorFailure)
{
    static int s_budget;
    shr_avl_allocator limited = {
        [](shr_avl_allocator *, size_t size) -> void * { return s_budget-- > 0 ? xsal_malloc(size, "t", 54) : nullptr; },
        [](shr_avl_allocator *, void *p) { xsal_mem_free(p); },
    };
    s_budget = 3; // the tree and two nodes
    shr_avl_table *t = shr_avl_create(_cmp, nullptr, &limited);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(shr_avl_insert(t, _item(1)), nullptr);
    EXPECT_EQ(shr_avl_insert(t, _item(2)), nullptr);
    EXPECT_EQ(shr_avl_probe(t, _item(3)), nullptr);
    EXPECT_EQ(t->count, 2u);
    EXPECT_TRUE(_valid(t));
    // Replace of an equal item: the old one back, the count unchanged.
    EXPECT_EQ(_val(shr_avl_replace(t, _item(2))), 2);
    EXPECT_EQ(t->count, 2u);
    shr_avl_destroy(t, nullptr);
}
