/*
 * A binary min-heap of pointers that tells each element its place, so that
 * an element can be taken out from the middle.
 */
#ifndef TIDE_VTY_PQUEUE_H
#define TIDE_VTY_PQUEUE_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct pqueue {
    void **array;
    i32 capacity;
    i32 size;
    /* negative, zero or positive as a sorts before, with or after b */
    int (*cmp)(void *a, void *b);
    /* told the new index of an element after every move */
    void (*update)(void *node, int index);
} pqueue;

/* An empty queue of 32 slots; the caller sets cmp and update.  NULL
 * without memory. */
pqueue *pqueue_create(void);
void pqueue_delete(pqueue *queue);
/* 0, or -1 when the array cannot grow (the element is not queued). */
int pqueue_enqueue(void *data, pqueue *queue);
/* The smallest element; NULL for an empty queue. */
void *pqueue_dequeue(pqueue *queue);
/* Takes out the element at `index`. */
void pqueue_remove_at(int index, pqueue *queue);
void trickle_up(int index, pqueue *queue);
void trickle_down(int index, pqueue *queue);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_VTY_PQUEUE_H */
