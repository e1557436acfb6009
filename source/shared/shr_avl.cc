// shr_avl: AVL tree.  Insertion and deletion walk down with the path in
// stack arrays and rebalance on the way back with at most one single or
// double rotation per level.  The tree's generation goes up at every
// deletion and at every rotation of an insertion, and a traverser whose
// generation is behind rebuilds its path from the root before it steps.
#include "shared/shr_avl.h"

#include <cstddef>

#include "sal/linux_um/xsal_int.h"

namespace {

constexpr int kMaxHeight = SHR_AVL_MAX_HEIGHT;

shr_avl_node *_node_alloc(shr_avl_table *tree)
{
    return static_cast<shr_avl_node *>(tree->alloc->avl_malloc(tree->alloc, sizeof(shr_avl_node)));
}

void _node_free(shr_avl_table *tree, shr_avl_node *node)
{
    tree->alloc->avl_free(tree->alloc, node);
}

// Rotates the subtree of `y`, whose balance is 2 towards side `dir`, and
// returns its new root.  `height_same` tells whether the subtree kept its
// height, which happens only when the heavy child is balanced (deletion).
shr_avl_node *_rotate(shr_avl_node *y, int dir, bool *height_same)
{
    const i8 s = dir != 0 ? 1 : -1;
    shr_avl_node *x = y->link[dir];
    if (x->balance == -s) {
        shr_avl_node *w = x->link[!dir];
        x->link[!dir] = w->link[dir];
        w->link[dir] = x;
        y->link[dir] = w->link[!dir];
        w->link[!dir] = y;
        if (w->balance == s) {
            x->balance = 0;
            y->balance = static_cast<i8>(-s);
        } else if (w->balance == 0) {
            x->balance = 0;
            y->balance = 0;
        } else {
            x->balance = s;
            y->balance = 0;
        }
        w->balance = 0;
        *height_same = false;
        return w;
    }
    y->link[dir] = x->link[!dir];
    x->link[!dir] = y;
    if (x->balance == 0) {
        x->balance = static_cast<i8>(-s);
        y->balance = s;
        *height_same = true;
    } else {
        x->balance = 0;
        y->balance = 0;
        *height_same = false;
    }
    return x;
}

// The slot that holds pa[k]: the root, or its parent's link.
shr_avl_node **_slot(shr_avl_table *tree, shr_avl_node **pa, const unsigned char *da, int k)
{
    return k == 0 ? &tree->root : &pa[k - 1]->link[da[k - 1]];
}

// Rebuilds the path of a traverser from the root to its node.  A node no
// longer in the tree ends the traversal.
void _trav_refresh(shr_avl_traverser *trav)
{
    shr_avl_table *tree = trav->table;
    trav->generation = tree->generation;
    shr_avl_node *node = trav->node;
    if (node == nullptr) {
        return;
    }
    trav->height = 0;
    for (shr_avl_node *i = tree->root; i != node;) {
        if (i == nullptr || trav->height >= kMaxHeight) {
            trav->node = nullptr;
            trav->height = 0;
            return;
        }
        trav->stack[trav->height++] = i;
        i = i->link[tree->compare(node->data, i->data, tree->param) > 0];
    }
}

// The least (dir 0) or greatest (dir 1) item, with the path to it.
void *_trav_extreme(shr_avl_traverser *trav, shr_avl_table *tree, int dir)
{
    trav->table = tree;
    trav->height = 0;
    trav->generation = tree->generation;
    shr_avl_node *x = tree->root;
    if (x != nullptr) {
        while (x->link[dir] != nullptr) {
            trav->stack[trav->height++] = x;
            x = x->link[dir];
        }
    }
    trav->node = x;
    return x != nullptr ? x->data : nullptr;
}

// The in-order successor (dir 1) or predecessor (dir 0).
void *_trav_step(shr_avl_traverser *trav, int dir)
{
    if (trav->generation != trav->table->generation) {
        _trav_refresh(trav);
    }
    shr_avl_node *x = trav->node;
    if (x == nullptr) {
        return _trav_extreme(trav, trav->table, !dir);
    }
    if (x->link[dir] != nullptr) {
        trav->stack[trav->height++] = x;
        x = x->link[dir];
        while (x->link[!dir] != nullptr) {
            trav->stack[trav->height++] = x;
            x = x->link[!dir];
        }
    } else {
        shr_avl_node *y;
        do {
            if (trav->height == 0) {
                trav->node = nullptr;
                return nullptr;
            }
            y = x;
            x = trav->stack[--trav->height];
        } while (y == x->link[dir]);
    }
    trav->node = x;
    return x->data;
}

// A new node with the source's balance and no children, holding a copy of
// the source's item (or the item itself without a copy function).
shr_avl_node *_copy_node(shr_avl_table *dst, const shr_avl_node *src, shr_avl_copy_func copy,
                         shr_avl_item_func free_fn)
{
    void *data = src->data;
    if (copy != nullptr && data != nullptr) {
        data = copy(data, dst->param);
        if (data == nullptr) {
            return nullptr;
        }
    }
    shr_avl_node *node = _node_alloc(dst);
    if (node == nullptr) {
        if (copy != nullptr && free_fn != nullptr && data != nullptr) {
            free_fn(data, dst->param);
        }
        return nullptr;
    }
    node->link[0] = node->link[1] = nullptr;
    node->data = data;
    node->balance = src->balance;
    dst->count++;
    return node;
}

} // namespace

extern "C" {

void *shr_avl_malloc(shr_avl_allocator *, size_t size)
{
    return xsal_malloc(size, "avl", SHR_MOD_COMMON);
}

void shr_avl_free(shr_avl_allocator *, void *block)
{
    xsal_mem_free(block);
}

shr_avl_allocator g_shr_avl_allocator_default = {shr_avl_malloc, shr_avl_free};

shr_avl_allocator *shr_get_avl_allocator_default_func(void)
{
    return &g_shr_avl_allocator_default;
}

shr_avl_table *shr_avl_create(shr_avl_comparison_func compare, void *param, shr_avl_allocator *allocator)
{
    if (compare == nullptr) {
        return nullptr;
    }
    if (allocator == nullptr) {
        allocator = &g_shr_avl_allocator_default;
    }
    auto *tree = static_cast<shr_avl_table *>(allocator->avl_malloc(allocator, sizeof(shr_avl_table)));
    if (tree == nullptr) {
        return nullptr;
    }
    tree->root = nullptr;
    tree->compare = compare;
    tree->param = param;
    tree->alloc = allocator;
    tree->count = 0;
    tree->generation = 0;
    return tree;
}

void *shr_avl_find(const shr_avl_table *tree, const void *item)
{
    if (tree == nullptr) {
        return nullptr;
    }
    for (const shr_avl_node *p = tree->root; p != nullptr;) {
        const int cmp = tree->compare(item, p->data, tree->param);
        if (cmp == 0) {
            return p->data;
        }
        p = p->link[cmp > 0];
    }
    return nullptr;
}

void **shr_avl_probe(shr_avl_table *tree, void *item)
{
    if (tree == nullptr) {
        return nullptr;
    }
    // y: the deepest node on the path with a balance other than 0, where
    // rebalancing starts; yslot holds it.  da: directions from y down.
    shr_avl_node *y = tree->root;
    shr_avl_node **yslot = &tree->root;
    shr_avl_node **slot = &tree->root;
    unsigned char da[kMaxHeight];
    int k = 0;
    for (shr_avl_node *p = tree->root; p != nullptr; p = *slot) {
        const int cmp = tree->compare(item, p->data, tree->param);
        if (cmp == 0) {
            return &p->data;
        }
        if (p->balance != 0) {
            y = p;
            yslot = slot;
            k = 0;
        }
        const int dir = cmp > 0;
        da[k++] = static_cast<unsigned char>(dir);
        slot = &p->link[dir];
    }
    shr_avl_node *n = _node_alloc(tree);
    if (n == nullptr) {
        return nullptr;
    }
    n->link[0] = n->link[1] = nullptr;
    n->data = item;
    n->balance = 0;
    *slot = n;
    tree->count++;
    if (y == nullptr) {
        return &n->data;
    }
    k = 0;
    for (shr_avl_node *p = y; p != n; p = p->link[da[k++]]) {
        p->balance = static_cast<i8>(p->balance + (da[k] == 0 ? -1 : 1));
    }
    if (y->balance == -2 || y->balance == 2) {
        bool height_same;
        *yslot = _rotate(y, y->balance > 0, &height_same);
        tree->generation++;
    }
    return &n->data;
}

namespace {

// The slot of `item` after a probe, and whether the probe found an equal
// item there before (told by the count, as the found item may be the very
// same pointer).
void **_probe_existing(shr_avl_table *tree, void *item, bool *existed)
{
    const u64 before = tree != nullptr ? tree->count : 0;
    void **p = shr_avl_probe(tree, item);
    *existed = p != nullptr && tree->count == before;
    return p;
}

} // namespace

void *shr_avl_insert(shr_avl_table *tree, void *item)
{
    bool existed;
    void **p = _probe_existing(tree, item, &existed);
    return existed ? *p : nullptr;
}

void *shr_avl_replace(shr_avl_table *tree, void *item)
{
    bool existed;
    void **p = _probe_existing(tree, item, &existed);
    if (!existed) {
        return nullptr;
    }
    void *old = *p;
    *p = item;
    return old;
}

void *shr_avl_delete(shr_avl_table *tree, const void *item)
{
    if (tree == nullptr) {
        return nullptr;
    }
    shr_avl_node *pa[kMaxHeight]; // the path: pa[k] is reached from pa[k-1] by da[k-1]
    unsigned char da[kMaxHeight];
    int k = 0;
    shr_avl_node *p = tree->root;
    for (;;) {
        if (p == nullptr) {
            return nullptr;
        }
        const int cmp = tree->compare(item, p->data, tree->param);
        if (cmp == 0) {
            break;
        }
        const int dir = cmp > 0;
        pa[k] = p;
        da[k++] = static_cast<unsigned char>(dir);
        p = p->link[dir];
    }
    void *found = p->data;
    shr_avl_node **pslot = _slot(tree, pa, da, k);
    if (p->link[1] == nullptr) {
        *pslot = p->link[0];
    } else {
        shr_avl_node *r = p->link[1];
        if (r->link[0] == nullptr) {
            r->link[0] = p->link[0];
            r->balance = p->balance;
            *pslot = r;
            da[k] = 1;
            pa[k++] = r;
        } else {
            // The leftmost node s of the right subtree takes p's place.
            const int j = k++;
            shr_avl_node *s;
            for (;;) {
                da[k] = 0;
                pa[k++] = r;
                s = r->link[0];
                if (s->link[0] == nullptr) {
                    break;
                }
                r = s;
            }
            s->link[0] = p->link[0];
            r->link[0] = s->link[1];
            s->link[1] = p->link[1];
            s->balance = p->balance;
            *pslot = s;
            da[j] = 1;
            pa[j] = s;
        }
    }
    _node_free(tree, p);

    // Back up the path: the side da[k] of pa[k] has lost height.
    while (--k >= 0) {
        shr_avl_node *y = pa[k];
        y->balance = static_cast<i8>(y->balance + (da[k] == 0 ? 1 : -1));
        if (y->balance == 1 || y->balance == -1) {
            break; // the subtree kept its height
        }
        if (y->balance != 0) {
            bool height_same;
            *_slot(tree, pa, da, k) = _rotate(y, y->balance > 0, &height_same);
            if (height_same) {
                break;
            }
        }
    }
    tree->count--;
    tree->generation++;
    return found;
}

void shr_avl_destroy(shr_avl_table *tree, shr_avl_item_func fn)
{
    if (tree == nullptr) {
        return;
    }
    // Right rotations flatten the tree into a list along the right links:
    // no stack and no recursion.
    shr_avl_node *q;
    for (shr_avl_node *p = tree->root; p != nullptr; p = q) {
        if (p->link[0] == nullptr) {
            q = p->link[1];
            if (fn != nullptr && p->data != nullptr) {
                fn(p->data, tree->param);
            }
            _node_free(tree, p);
        } else {
            q = p->link[0];
            p->link[0] = q->link[1];
            q->link[1] = p;
        }
    }
    tree->alloc->avl_free(tree->alloc, tree);
}

shr_avl_table *shr_avl_copy(const shr_avl_table *org, shr_avl_copy_func copy, shr_avl_item_func free_fn,
                            shr_avl_allocator *allocator)
{
    if (org == nullptr) {
        return nullptr;
    }
    shr_avl_table *tree = shr_avl_create(org->compare, org->param, allocator != nullptr ? allocator : org->alloc);
    if (tree == nullptr || org->root == nullptr) {
        return tree;
    }
    // Pre-order walk; a node whose left subtree is being copied waits on
    // the stack with its copy for its right subtree.  Nodes are linked as
    // they are made, so the part built so far is always a whole tree.
    const shr_avl_node *src_stack[kMaxHeight + 1];
    shr_avl_node *dst_stack[kMaxHeight + 1];
    int height = 0;
    bool failed = false;
    const shr_avl_node *x = org->root;
    shr_avl_node *y = _copy_node(tree, x, copy, free_fn);
    tree->root = y;
    failed = y == nullptr;
    while (!failed) {
        while (x->link[0] != nullptr) {
            shr_avl_node *left = _copy_node(tree, x->link[0], copy, free_fn);
            if (left == nullptr) {
                failed = true;
                break;
            }
            src_stack[height] = x;
            dst_stack[height++] = y;
            y->link[0] = left;
            x = x->link[0];
            y = left;
        }
        if (failed) {
            break;
        }
        // Up to the nearest node with a right subtree still to copy.
        while (x->link[1] == nullptr && height > 0) {
            x = src_stack[--height];
            y = dst_stack[height];
        }
        if (x->link[1] == nullptr) {
            return tree; // done
        }
        shr_avl_node *right = _copy_node(tree, x->link[1], copy, free_fn);
        if (right == nullptr) {
            break;
        }
        y->link[1] = right;
        x = x->link[1];
        y = right;
    }
    // Shared items belong to the source: only copies are freed.
    shr_avl_destroy(tree, copy != nullptr ? free_fn : nullptr);
    return nullptr;
}

void shr_avl_assert_insert(shr_avl_table *tree, void *item)
{
    (void)shr_avl_probe(tree, item);
}

void shr_avl_assert_delete(shr_avl_table *tree, const void *item)
{
    (void)shr_avl_delete(tree, item);
}

void shr_avl_t_init(shr_avl_traverser *trav, shr_avl_table *tree)
{
    trav->table = tree;
    trav->node = nullptr;
    trav->height = 0;
    trav->generation = tree->generation;
}

void *shr_avl_t_first(shr_avl_traverser *trav, shr_avl_table *tree)
{
    return _trav_extreme(trav, tree, 0);
}

void *shr_avl_t_last(shr_avl_traverser *trav, shr_avl_table *tree)
{
    return _trav_extreme(trav, tree, 1);
}

void *shr_avl_t_find(shr_avl_traverser *trav, shr_avl_table *tree, const void *item)
{
    trav->table = tree;
    trav->height = 0;
    trav->generation = tree->generation;
    for (shr_avl_node *p = tree->root; p != nullptr;) {
        const int cmp = tree->compare(item, p->data, tree->param);
        if (cmp == 0) {
            trav->node = p;
            return p->data;
        }
        trav->stack[trav->height++] = p;
        p = p->link[cmp > 0];
    }
    trav->height = 0;
    trav->node = nullptr;
    return nullptr;
}

void *shr_avl_t_insert(shr_avl_traverser *trav, shr_avl_table *tree, void *item)
{
    void **p = shr_avl_probe(tree, item);
    if (p == nullptr) {
        shr_avl_t_init(trav, tree);
        return nullptr;
    }
    trav->table = tree;
    trav->node = reinterpret_cast<shr_avl_node *>(reinterpret_cast<char *>(p) - offsetof(shr_avl_node, data));
    // The path is not known: the next step rebuilds it.
    trav->generation = tree->generation - 1;
    return *p;
}

void *shr_avl_t_copy(shr_avl_traverser *trav, const shr_avl_traverser *src)
{
    if (trav != src) {
        trav->table = src->table;
        trav->node = src->node;
        trav->generation = src->generation;
        if (trav->generation == trav->table->generation) {
            trav->height = src->height;
            for (u64 i = 0; i < src->height; i++) {
                trav->stack[i] = src->stack[i];
            }
        }
    }
    return trav->node != nullptr ? trav->node->data : nullptr;
}

void *shr_avl_t_next(shr_avl_traverser *trav)
{
    return _trav_step(trav, 1);
}

void *shr_avl_t_prev(shr_avl_traverser *trav)
{
    return _trav_step(trav, 0);
}

void *shr_avl_t_cur(const shr_avl_traverser *trav)
{
    return trav->node != nullptr ? trav->node->data : nullptr;
}

void *shr_avl_t_replace(shr_avl_traverser *trav, void *item)
{
    if (trav->node == nullptr) {
        return nullptr;
    }
    void *old = trav->node->data;
    trav->node->data = item;
    return old;
}

} // extern "C"
