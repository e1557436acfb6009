/*
 * shr_avl: a balanced binary tree of records held by pointer, ordered by
 * the user's compare function, with traversers that stay usable across
 * insertions and deletions of other nodes.  The tree has no lock: its user
 * holds one around every call, and around the whole of a traversal.
 */
#ifndef TIDE_SHR_AVL_H
#define TIDE_SHR_AVL_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Highest height of a tree; paths are kept in arrays of this size. */
#define SHR_AVL_MAX_HEIGHT 92

/* Negative, 0 or positive as a is below, equal to or above b. */
typedef int (*shr_avl_comparison_func)(const void *a, const void *b, void *param);
typedef void (*shr_avl_item_func)(void *item, void *param);
typedef void *(*shr_avl_copy_func)(void *item, void *param);

typedef struct shr_avl_allocator {
    void *(*avl_malloc)(struct shr_avl_allocator *allocator, size_t size);
    void (*avl_free)(struct shr_avl_allocator *allocator, void *block);
} shr_avl_allocator;

extern shr_avl_allocator g_shr_avl_allocator_default;
/* xsal_malloc with the tag "avl", and xsal_mem_free. */
void *shr_avl_malloc(shr_avl_allocator *allocator, size_t size);
void shr_avl_free(shr_avl_allocator *allocator, void *block);
shr_avl_allocator *shr_get_avl_allocator_default_func(void);

typedef struct shr_avl_node {
    struct shr_avl_node *link[2]; /* 0 the lesser, 1 the greater */
    void *data;
    i8 balance; /* height of the right subtree less that of the left */
} shr_avl_node;

typedef struct shr_avl_table {
    shr_avl_node *root;
    shr_avl_comparison_func compare;
    void *param;
    shr_avl_allocator *alloc;
    u64 count;
    u64 generation; /* up at each deletion and each rotation of an insertion */
} shr_avl_table;

typedef struct shr_avl_traverser {
    shr_avl_table *table;
    shr_avl_node *node; /* NULL at the end or before the start */
    shr_avl_node *stack[SHR_AVL_MAX_HEIGHT];
    u64 height;
    u64 generation; /* the tree's when `stack` was last right */
} shr_avl_traverser;

/* NULL allocator: the default. */
shr_avl_table *shr_avl_create(shr_avl_comparison_func compare, void *param, shr_avl_allocator *allocator);
void *shr_avl_find(const shr_avl_table *tree, const void *item);
/* The slot of the new item, or of the equal one already there; NULL if out
 * of memory. */
void **shr_avl_probe(shr_avl_table *tree, void *item);
/* NULL if inserted (or out of memory), else the equal item, unchanged. */
void *shr_avl_insert(shr_avl_table *tree, void *item);
/* As insert, but an equal item is replaced and returned. */
void *shr_avl_replace(shr_avl_table *tree, void *item);
/* The removed item, or NULL if none was equal. */
void *shr_avl_delete(shr_avl_table *tree, const void *item);
/* Frees all nodes and the tree, calling fn(item, param) on each item. */
void shr_avl_destroy(shr_avl_table *tree, shr_avl_item_func fn);
/* A tree of the same shape; items made by copy(item, param) or shared
 * without one.  NULL allocator: the source's.  On a failure all that was
 * made is freed (items through free_fn) and the result is NULL. */
shr_avl_table *shr_avl_copy(const shr_avl_table *org, shr_avl_copy_func copy, shr_avl_item_func free_fn,
                            shr_avl_allocator *allocator);
void shr_avl_assert_insert(shr_avl_table *tree, void *item);
void shr_avl_assert_delete(shr_avl_table *tree, const void *item);

void shr_avl_t_init(shr_avl_traverser *trav, shr_avl_table *tree);
void *shr_avl_t_first(shr_avl_traverser *trav, shr_avl_table *tree);
void *shr_avl_t_last(shr_avl_traverser *trav, shr_avl_table *tree);
void *shr_avl_t_find(shr_avl_traverser *trav, shr_avl_table *tree, const void *item);
void *shr_avl_t_insert(shr_avl_traverser *trav, shr_avl_table *tree, void *item);
void *shr_avl_t_copy(shr_avl_traverser *trav, const shr_avl_traverser *src);
/* From no node these start at the first or the last item; NULL at the
 * end. */
void *shr_avl_t_next(shr_avl_traverser *trav);
void *shr_avl_t_prev(shr_avl_traverser *trav);
void *shr_avl_t_cur(const shr_avl_traverser *trav);
/* Stores `item`, which compares equal, in the current node; the old one. */
void *shr_avl_t_replace(shr_avl_traverser *trav, void *item);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_SHR_AVL_H */
