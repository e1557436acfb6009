// Heap sort of an array, insertion sort and middle of a circular queue, and
// a fixed-size stack of pointers.
#include <cstring>

#include "shared/shr_int.h"

namespace {

struct _heap {
    u8 *base;
    u64 size;
    shr_sort_compare_f compare;
    shr_sort_swap_f swap;

    u8 *at(u64 i) const { return base + i * size; }

    // Moves the element at `root` down inside the first `n` elements until
    // neither child is greater.
    void sift_down(u64 root, u64 n) const
    {
        for (;;) {
            u64 child = 2 * root + 1;
            if (child >= n) {
                return;
            }
            if (child + 1 < n && compare(at(child), at(child + 1)) < 0) {
                child++;
            }
            if (compare(at(root), at(child)) >= 0) {
                return;
            }
            swap(at(root), at(child), size);
            root = child;
        }
    }
};

} // namespace

extern "C" {

void shr_u32_swap(void *a, void *b, u64 size)
{
    (void)size;
    u32 ta = 0;
    u32 tb = 0;
    std::memcpy(&ta, a, sizeof ta);
    std::memcpy(&tb, b, sizeof tb);
    std::memcpy(a, &tb, sizeof tb);
    std::memcpy(b, &ta, sizeof ta);
}

void shr_generic_swap(void *a, void *b, u64 size)
{
    u8 *pa = static_cast<u8 *>(a);
    u8 *pb = static_cast<u8 *>(b);
    for (u64 i = 0; i < size; i++) {
        const u8 t = pa[i];
        pa[i] = pb[i];
        pb[i] = t;
    }
}

int32_t shr_sort(void *base, int64_t count, u64 size, shr_sort_compare_f compare, shr_sort_swap_f swap)
{
    if (size == 0) {
        return SHR_E_PARAM;
    }
    if (count < 2) {
        return SHR_E_NONE;
    }
    if (base == nullptr || compare == nullptr) {
        return SHR_E_PARAM;
    }
    if (swap == nullptr) {
        swap = size == 4 ? shr_u32_swap : shr_generic_swap;
    }
    const _heap heap{static_cast<u8 *>(base), size, compare, swap};
    const u64 n = static_cast<u64>(count);
    for (u64 i = n / 2; i > 0; i--) {
        heap.sift_down(i - 1, n);
    }
    for (u64 last = n - 1; last > 0; last--) {
        swap(heap.at(0), heap.at(last), size);
        heap.sift_down(0, last);
    }
    return SHR_E_NONE;
}

void shr_queue_sort(shr_queue_node *head, shr_queue_compare_f compare)
{
    if (head == nullptr || compare == nullptr || head->next == head || head->next->next == head) {
        return;
    }
    shr_queue_node *node = head->next->next;
    while (node != head) {
        shr_queue_node *const next = node->next;
        shr_queue_node *pos = node->prev;
        pos->next = next;
        next->prev = pos;
        // Back past every greater node; an equal one keeps its place in
        // front, which makes the sort stable.
        while (pos != head && compare(pos, node) >= 1) {
            pos = pos->prev;
        }
        node->prev = pos;
        node->next = pos->next;
        pos->next->prev = node;
        pos->next = node;
        node = next;
    }
}

shr_queue_node *shr_queue_middle(shr_queue_node *head)
{
    if (head == nullptr) {
        return nullptr;
    }
    shr_queue_node *slow = head->next;
    shr_queue_node *fast = head->next;
    shr_queue_node *const last = head->prev;
    if (slow == head) {
        return slow;
    }
    while (fast != last && fast->next != last) {
        slow = slow->next;
        fast = fast->next->next;
    }
    return slow;
}

shr_stack *shr_stack_create(u32 capacity)
{
    if (capacity == 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_COMMON, "stack capacity 0\n");
        return nullptr;
    }
    const u64 bytes = sizeof(shr_stack) + static_cast<u64>(capacity) * sizeof(void *);
    auto *stack = static_cast<shr_stack *>(xsal_malloc(bytes, "STACK", SHR_MOD_COMMON));
    if (stack == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_COMMON, "stack of %u entries: no memory\n", capacity);
        return nullptr;
    }
    stack->capacity = capacity;
    stack->count = 0;
    return stack;
}

int32_t shr_stack_destroy(shr_stack *stack)
{
    if (stack == nullptr) {
        return SHR_E_PARAM;
    }
    if (stack->count != 0) {
        return SHR_E_BUSY;
    }
    xsal_mem_free(stack);
    return SHR_E_NONE;
}

int32_t shr_stack_push(shr_stack *stack, void *item)
{
    if (stack == nullptr || item == nullptr) {
        return SHR_E_PARAM;
    }
    if (stack->count >= stack->capacity) {
        return SHR_E_FULL;
    }
    stack->slot[stack->count++] = item;
    return SHR_E_NONE;
}

void *shr_stack_pop(shr_stack *stack)
{
    if (stack == nullptr || stack->count == 0) {
        return nullptr;
    }
    return stack->slot[--stack->count];
}

} // extern "C"
