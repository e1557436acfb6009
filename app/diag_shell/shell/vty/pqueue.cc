// The priority queue of the event loop's timers.
#include <cstring>

#include "app/diag_shell/shell/vty/pqueue.h"

namespace {

constexpr i32 k_pqueue_start = 32;

void _place(pqueue *q, int index, void *data)
{
    q->array[index] = data;
    if (q->update != nullptr) {
        q->update(data, index);
    }
}

} // namespace

extern "C" {

pqueue *pqueue_create(void)
{
    auto *q = static_cast<pqueue *>(xsal_malloc(sizeof(pqueue), "pqueue", SHR_MOD_CLI));
    if (q == nullptr) {
        return nullptr;
    }
    std::memset(q, 0, sizeof(*q));
    q->array = static_cast<void **>(xsal_malloc(k_pqueue_start * sizeof(void *), "pqueue_array", SHR_MOD_CLI));
    if (q->array == nullptr) {
        xsal_mem_free(q);
        return nullptr;
    }
    q->capacity = k_pqueue_start;
    return q;
}

void pqueue_delete(pqueue *queue)
{
    if (queue != nullptr) {
        xsal_mem_free(queue->array);
        xsal_mem_free(queue);
    }
}

void trickle_up(int index, pqueue *queue)
{
    void *item = queue->array[index];
    while (index > 0) {
        const int parent = (index - 1) / 2;
        if (queue->cmp(item, queue->array[parent]) >= 0) {
            break;
        }
        _place(queue, index, queue->array[parent]);
        index = parent;
    }
    _place(queue, index, item);
}

void trickle_down(int index, pqueue *queue)
{
    void *item = queue->array[index];
    for (;;) {
        const int left = 2 * index + 1;
        if (left >= queue->size) {
            break;
        }
        const int right = left + 1;
        // Of two equal children the left one moves up.
        const int child =
            right < queue->size && queue->cmp(queue->array[right], queue->array[left]) < 0 ? right : left;
        if (queue->cmp(queue->array[child], item) >= 0) {
            break;
        }
        _place(queue, index, queue->array[child]);
        index = child;
    }
    _place(queue, index, item);
}

int pqueue_enqueue(void *data, pqueue *queue)
{
    if (queue->size + 2 >= queue->capacity) {
        const i32 capacity = queue->capacity * 2;
        auto *array = static_cast<void **>(
            xsal_malloc(static_cast<u64>(capacity) * sizeof(void *), "pqueue_array", SHR_MOD_CLI));
        if (array == nullptr) {
            return -1;
        }
        std::memcpy(array, queue->array, static_cast<size_t>(queue->size) * sizeof(void *));
        xsal_mem_free(queue->array);
        queue->array = array;
        queue->capacity = capacity;
    }
    queue->array[queue->size] = data;
    if (queue->update != nullptr) {
        queue->update(data, queue->size);
    }
    trickle_up(queue->size, queue);
    queue->size++;
    return 0;
}

void *pqueue_dequeue(pqueue *queue)
{
    if (queue->size == 0) {
        return nullptr;
    }
    void *top = queue->array[0];
    queue->size--;
    if (queue->size > 0) {
        queue->array[0] = queue->array[queue->size];
        trickle_down(0, queue);
    }
    return top;
}

void pqueue_remove_at(int index, pqueue *queue)
{
    if (index < 0 || index >= queue->size) {
        return;
    }
    queue->size--;
    if (index == queue->size) {
        return;
    }
    queue->array[index] = queue->array[queue->size];
    if (index == 0) {
        trickle_down(0, queue);
    } else if (queue->cmp(queue->array[index], queue->array[(index - 1) / 2]) >= 0) {
        trickle_down(index, queue);
    } else {
        trickle_up(index, queue);
    }
}

} // extern "C"
