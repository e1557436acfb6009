// Carriers (growable pointer arrays), the list links of command items,
// and the memory of the tree: every node and installed descriptor block
// is recorded so that the whole tree can be freed at once.
#include <cstring>

#include "app/diag_shell/shell/cli/cli_core.h"

namespace {

// Header in front of every block of the tree.
struct cli_block {
    cli_block *next;
    u32 kind;
    u32 pad;
};

constexpr u32 k_block_node = 0;
constexpr u32 k_block_desc = 1;

cli_block *g_cli_node_list;

} // namespace

extern "C" {

void cli_list_init(cli_list_link *head)
{
    head->next = head;
    head->prev = head;
}

void cli_list_add_tail(cli_list_link *head, cli_list_link *link)
{
    if (head->next == nullptr) {
        cli_list_init(head);
    }
    link->prev = head->prev;
    link->next = head;
    head->prev->next = link;
    head->prev = link;
}

void cli_list_del(cli_list_link *link)
{
    if (link->next != nullptr) {
        link->next->prev = link->prev;
        link->prev->next = link->next;
    }
    link->next = nullptr;
    link->prev = nullptr;
}

void cli_cmd_items_link(cli_cmd_item *items, u32 count)
{
    for (u32 i = 0; i < count; i++) {
        cli_list_add_tail(&cli_cmd_init_list, &items[i].node);
    }
}

cli_carrier *cli_init_carrier(u32 n)
{
    if (n == 0) {
        n = 1;
    }
    auto *c = static_cast<cli_carrier *>(xsal_malloc(sizeof(cli_carrier), "carrier", SHR_MOD_CLI));
    if (c == nullptr) {
        return nullptr;
    }
    c->items = static_cast<void **>(xsal_malloc(u64{n} * sizeof(void *), "carrier_index", SHR_MOD_CLI));
    if (c->items == nullptr) {
        xsal_mem_free(c);
        return nullptr;
    }
    std::memset(c->items, 0, n * sizeof(void *));
    c->count = 0;
    c->capacity = n;
    return c;
}

void cli_free_carrier(cli_carrier *c)
{
    if (c != nullptr) {
        xsal_mem_free(c->items);
        xsal_mem_free(c);
    }
}

i32 cli_check_carrier(cli_carrier *c, u32 index)
{
    if (c == nullptr) {
        return -1;
    }
    if (index < c->capacity) {
        return 0;
    }
    // The array grows to exactly the slot asked for: carriers of the tree
    // stay as small as the words they hold.
    const u32 capacity = index + 1;
    auto *items = static_cast<void **>(xsal_malloc(u64{capacity} * sizeof(void *), "cli_carrier", SHR_MOD_CLI));
    if (items == nullptr) {
        return -1;
    }
    std::memcpy(items, c->items, c->capacity * sizeof(void *));
    std::memset(items + c->capacity, 0, (capacity - c->capacity) * sizeof(void *));
    xsal_mem_free(c->items);
    c->items = items;
    c->capacity = capacity;
    return 0;
}

i32 cli_set_carrier(cli_carrier *c, void *item)
{
    if (c == nullptr || cli_check_carrier(c, c->count) != 0) {
        return -1;
    }
    c->items[c->count++] = item;
    return 0;
}

i32 cli_setindex_carrier(cli_carrier *c, u32 index, void *item)
{
    if (c == nullptr || cli_check_carrier(c, index) != 0) {
        return -1;
    }
    c->items[index] = item;
    if (index >= c->count) {
        c->count = index + 1;
    }
    return 0;
}

i32 cli_add_carrier(cli_carrier *dst, const cli_carrier *src)
{
    if (src == nullptr) {
        return 0;
    }
    for (u32 i = 0; i < src->count; i++) {
        if (src->items[i] != nullptr && cli_set_carrier(dst, src->items[i]) != 0) {
            return -1;
        }
    }
    return 0;
}

void *cli_search_carrier(const cli_carrier *c, u32 index)
{
    return c != nullptr && index < c->count ? c->items[index] : nullptr;
}

i32 cli_search_value_carrier(const cli_carrier *c, const void *value)
{
    if (c == nullptr) {
        return -1;
    }
    for (u32 i = 0; i < c->count; i++) {
        if (c->items[i] == value) {
            return static_cast<i32>(i);
        }
    }
    return -1;
}

void *cli_node_malloc(u64 size, u32 kind)
{
    if (kind > k_block_desc) {
        return nullptr;
    }
    const u64 total = sizeof(cli_block) + size;
    auto *block = static_cast<cli_block *>(
        xsal_malloc(total, kind == k_block_node ? "cli_node" : "cli_node_info", SHR_MOD_CLI));
    if (block == nullptr) {
        return nullptr;
    }
    std::memset(block, 0, static_cast<size_t>(total));
    block->kind = kind;
    block->next = g_cli_node_list;
    g_cli_node_list = block;
    return block + 1;
}

void cli_free_all_node(void)
{
    cli_block *block = g_cli_node_list;
    g_cli_node_list = nullptr;
    while (block != nullptr) {
        cli_block *next = block->next;
        if (block->kind == k_block_node) {
            auto *node = reinterpret_cast<cli_node *>(block + 1);
            cli_free_carrier(node->next);
            xsal_mem_free(node->parent_str);
        }
        xsal_mem_free(block);
        block = next;
    }
}

} // extern "C"
