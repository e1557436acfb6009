// The TCAM tables of the ACL groups.  A table is an array of slots laid
// over the group's blocks in ascending block id: a slot's index is its
// logical row, and slots are kept in ascending priority, free slots
// anywhere between.  An insert takes a free slot of its window; only
// when the window has none, the nearest run of used neighbours moves by
// half of the free gap beyond it, so that the other half stays for later
// inserts.  A table grows block by block; the block it needs must follow
// its last one (or precede its first), so other tables' blocks move one
// place, live: the destination is enabled and filled before the source
// is given back, so that an entry always matches somewhere.
//
// Everything here runs under the ACL lock, taken by the service.
#include <cstring>
#include <vector>

#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"
#include "dpl/reef/acl/dpl_reef_acl.h"

extern "C" {
shr_avl_table *g_acl_tcam_block[SHR_MAX_CHIPS];
}

namespace {

constexpr u32 kDefaultSize = 128;

int _block_cmp(const void *a, const void *b, void *)
{
    const u32 x = static_cast<const dpl_acl_tcam_block *>(a)->block_id;
    const u32 y = static_cast<const dpl_acl_tcam_block *>(b)->block_id;
    return x < y ? -1 : x > y ? 1 : 0;
}

dpl_acl_tcam_slot *_slots_alloc(u32 size)
{
    auto *s = static_cast<dpl_acl_tcam_slot *>(
        xsal_malloc(static_cast<u64>(size ? size : 1) * sizeof(dpl_acl_tcam_slot), "acl_tcam_table", SHR_MOD_ACL));
    if (s != nullptr) {
        memset(s, 0, static_cast<size_t>(size) * sizeof(dpl_acl_tcam_slot));
    }
    return s;
}

// The blocks of a table in ascending id.
template <typename Fn>
void _each_block(const dpl_acl_tcam_table *table, Fn fn)
{
    shr_avl_traverser t;
    for (void *p = shr_avl_t_first(&t, table->block_tree); p != nullptr; p = shr_avl_t_next(&t)) {
        if (!fn(static_cast<dpl_acl_tcam_block *>(p))) {
            return;
        }
    }
}

dpl_acl_tcam_block *_first_block(const dpl_acl_tcam_table *table)
{
    shr_avl_traverser t;
    return static_cast<dpl_acl_tcam_block *>(shr_avl_t_first(&t, table->block_tree));
}

dpl_acl_tcam_block *_last_block(const dpl_acl_tcam_table *table)
{
    shr_avl_traverser t;
    return static_cast<dpl_acl_tcam_block *>(shr_avl_t_last(&t, table->block_tree));
}

// Every row of a block written empty and invalid.
i32 _block_clean(u32 chip_id, u32 map_type, u32 block, u32 rows)
{
    const u32 tcam_id = _dpl_reef_acl_tcam_id_get_by_map_type(map_type);
    static const u8 kZeros[CSL_TCAM_KEY_BYTES_MAX] = {};
    u32 bits = 0;
    if (tcam_id == DPL_ACL_TCAM_NO_TAB) {
        // No table of the kind to delete through: the planes by the
        // block's width.
        const i32 rc = csl_reef_tcam_block_width_get(chip_id, block, &bits);
        if (rc != 0) {
            return rc;
        }
    }
    for (u32 i = 0; i < rows; i++) {
        i32 rc = 0;
        if (tcam_id != DPL_ACL_TCAM_NO_TAB) {
            rc = csl_reef_tcam_del(chip_id, tcam_id, static_cast<u16>(i << 8 | block));
        } else {
            for (u32 type : {CSL_TCAM_KEY, CSL_TCAM_MASK}) {
                rc = rc != 0 ? rc : csl_reef_tcam_key_mask_ad_set(chip_id, type, block, i, kZeros, bits, 0);
            }
            rc = rc != 0 ? rc : csl_reef_tcam_key_mask_ad_set(chip_id, CSL_TCAM_AD, block, i, kZeros, CSL_TCAM_AD_BITS, 0);
        }
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "clean block %u row %u failed\n", block, i);
            return rc;
        }
    }
    return 0;
}

// A record for block `block_id` of the table, in both trees.
i32 _block_record_add(u32 chip_id, dpl_acl_tcam_table *table, u32 block_id)
{
    auto *b = static_cast<dpl_acl_tcam_block *>(xsal_malloc(sizeof(dpl_acl_tcam_block), "acl_tcam_block", SHR_MOD_ACL));
    if (b == nullptr) {
        return SHR_E_MEMORY;
    }
    *b = dpl_acl_tcam_block{block_id, csl_reef_tcam_block_size_get(chip_id, &table->block_list, block_id), 0,
                            table->map_type, table, g_tcam_mgmt_info[table->map_type].mode};
    if (shr_avl_insert(table->block_tree, b) != nullptr) {
        xsal_mem_free(b);
        return SHR_E_EXISTS;
    }
    if (g_acl_tcam_block[chip_id] == nullptr || shr_avl_insert(g_acl_tcam_block[chip_id], b) != nullptr) {
        shr_avl_delete(table->block_tree, b);
        xsal_mem_free(b);
        return SHR_E_EXISTS;
    }
    return 0;
}

void _block_record_drop(u32 chip_id, dpl_acl_tcam_table *table, dpl_acl_tcam_block *b)
{
    shr_avl_delete(table->block_tree, b);
    if (g_acl_tcam_block[chip_id] != nullptr) {
        shr_avl_delete(g_acl_tcam_block[chip_id], b);
    }
    xsal_mem_free(b);
}

// A block taken for the table: in hardware, in the trees, with its rows
// cleaned.
i32 _block_take(u32 chip_id, dpl_acl_tcam_table *table, u32 block_id)
{
    i32 rc = csl_reef_tcam_block_add(chip_id, block_id, table->map_type, &table->block_list);
    if (rc != 0) {
        return rc;
    }
    rc = _block_record_add(chip_id, table, block_id);
    if (rc != 0) {
        csl_reef_tcam_block_del(chip_id, block_id, table->map_type, &table->block_list);
        return rc;
    }
    return _block_clean(chip_id, table->map_type, block_id, csl_reef_tcam_block_size_get(chip_id, &table->block_list, block_id));
}

// A block given back: cleaned, released, its record dropped.
i32 _block_give(u32 chip_id, dpl_acl_tcam_table *table, dpl_acl_tcam_block *b)
{
    i32 rc = _block_clean(chip_id, table->map_type, b->block_id, b->entries);
    rc = rc != 0 ? rc : csl_reef_tcam_block_del(chip_id, b->block_id, table->map_type, &table->block_list);
    if (rc == 0) {
        _block_record_drop(chip_id, table, b);
    }
    return rc;
}

// The slot array grown by `added` free slots at its end.
i32 _slots_grow(dpl_acl_tcam_table *table, u32 added)
{
    dpl_acl_tcam_slot *s = _slots_alloc(table->size + added);
    if (s == nullptr) {
        return SHR_E_MEMORY;
    }
    memcpy(s, table->slots, static_cast<size_t>(table->size) * sizeof(dpl_acl_tcam_slot));
    xsal_mem_free(table->slots);
    table->slots = s;
    table->size += added;
    return 0;
}

// One move of a slot's entry: the hardware first, then the slots.
i32 _slot_move(u32 chip_id, dpl_acl_tcam_table *table, u32 from, u32 to)
{
    const i32 rc = table->move_entry(chip_id, table, from, to);
    if (rc < 0) {
        return rc;
    }
    table->slots[to] = table->slots[from];
    table->slots[from] = dpl_acl_tcam_slot{0, nullptr};
    table->moves++;
    return 0;
}

// Room for an entry whose window [low, high) has no free slot: the nearest
// run of free slots below `low` or from `high` up, and the used slots
// between it and the window moved into half of it.
i32 _dpl_reef_acl_tcam_move_entry(u32 chip_id, dpl_acl_tcam_table *table, u32 low, u32 high, u32 *out)
{
    const dpl_acl_tcam_slot *s = table->slots;
    // Below: used slots from low - 1 down, then the free run.
    i64 i = static_cast<i64>(low) - 1;
    u32 down_dist = 0, down_len = 0, down_start = 0;
    while (i >= 0 && s[i].key != 0) {
        down_dist++;
        i--;
    }
    const bool down = i >= 0;
    if (down) {
        const i64 top = i;
        while (i >= 0 && s[i].key == 0) {
            i--;
        }
        down_start = static_cast<u32>(i + 1);
        down_len = static_cast<u32>(top - i);
    }
    // Above: used slots from high up, then the free run.
    u32 j = high, up_dist = 0, up_len = 0, up_first = 0;
    while (j < table->size && s[j].key != 0) {
        up_dist++;
        j++;
    }
    const bool up = j < table->size;
    if (up) {
        up_first = j;
        while (j < table->size && s[j].key == 0) {
            j++;
        }
        up_len = j - up_first;
    }
    if (!down && !up) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "no free tcam entry around window %u..%u\n", low, high);
        return SHR_E_FULL;
    }
    if (table->move_entry == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam table has no move function\n");
        return SHR_E_PARAM;
    }
    // The side with less to move and more room wins; down on a tie.
    const bool go_down = down && (!up || static_cast<i64>(down_dist) - down_len <= static_cast<i64>(up_dist) - up_len);
    if (go_down) {
        const u32 shift = down_len - down_len / 2;
        for (u32 from = down_start + down_len; from < low; from++) {
            const i32 rc = _slot_move(chip_id, table, from, from - shift);
            if (rc < 0) {
                return rc;
            }
        }
        *out = down_len <= 1 ? low - 1 : low - 1 - xsal_rand() % (down_len / 2);
        return 0;
    }
    const u32 shift = up_len - up_len / 2;
    for (u32 from = up_first; from-- > high;) {
        const i32 rc = _slot_move(chip_id, table, from, from + shift);
        if (rc < 0) {
            return rc;
        }
    }
    *out = up_len <= 1 ? high : high + xsal_rand() % (up_len / 2);
    return 0;
}

dpl_acl_tcam_table *_table_new(u32 chip_id, u32 map_type, dpl_acl_tcam_move_entry_f move_entry,
                               dpl_acl_tcam_move_block_f move_block)
{
    auto *t = static_cast<dpl_acl_tcam_table *>(xsal_malloc(sizeof(dpl_acl_tcam_table), "TCAM", SHR_MOD_ACL));
    if (t == nullptr) {
        return nullptr;
    }
    memset(t, 0, sizeof(*t));
    csl_reef_tcam_block_list_init(&t->block_list);
    t->chip_id = chip_id;
    t->map_type = map_type;
    t->move_entry = move_entry;
    t->move_block = move_block;
    t->block_tree = shr_avl_create(_block_cmp, nullptr, nullptr);
    if (t->block_tree == nullptr) {
        xsal_mem_free(t);
        return nullptr;
    }
    return t;
}

// The table over the blocks its list holds: records, clean rows, slots.
// On a failure everything is given back and the result is NULL.
dpl_acl_tcam_table *_table_finish(u32 chip_id, dpl_acl_tcam_table *t, i32 rc)
{
    u32 count = 0;
    u32 ids[ACL_GROUP_BLOCKS_MAX] = {};
    if (rc == 0) {
        rc = csl_reef_tcam_blocklist_get(chip_id, &t->block_list, &count, ids);
    }
    for (u32 k = 0; rc == 0 && k < count; k++) {
        rc = _block_record_add(chip_id, t, ids[k]);
        rc = rc != 0 ? rc : _block_clean(chip_id, t->map_type, ids[k], csl_reef_tcam_block_size_get(chip_id, &t->block_list, ids[k]));
    }
    if (rc == 0) {
        t->size = csl_reef_tcam_block_list_size_get(chip_id, &t->block_list);
        t->slots = _slots_alloc(t->size);
        rc = t->slots == nullptr ? SHR_E_MEMORY : 0;
    }
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam table create failed, map_type %u: %s\n", t->map_type, shr_errmsg(rc));
        dpl_reef_acl_tcam_destroy(chip_id, t->map_type, t);
        return nullptr;
    }
    return t;
}

bool _adjacent(const u32 *ids, u32 count)
{
    for (u32 k = 1; k < count; k++) {
        if (ids[k] != ids[k - 1] + 1) {
            return false;
        }
    }
    return true;
}

// A block may move when a table of this service owns it.
bool _movable(u32 chip_id, u32 block_id)
{
    return dpl_reef_acl_tcam_block_get(chip_id, block_id) != nullptr;
}

// The lowest block id the downward search may reach: above every block of
// a kind whose blocks never move.
u32 _search_floor(u32 chip_id)
{
    u32 fixed = 0, flexible = 0;
    if (csl_reef_tcam_last_fixed_flexd_unchange_block_get(chip_id, &fixed, &flexible) != 0) {
        return 0;
    }
    return flexible == 0xFFFFFFFFu ? 0 : flexible + 1;
}

i32 _down_expand(u32 chip_id, dpl_acl_tcam_table *table, const dpl_acl_tcam_free_block &fb)
{
    const u32 f = fb.start_free_block_index;
    const u32 l = _last_block(table)->block_id;
    if (l >= f) {
        return SHR_E_RESOURCE;
    }
    SHR_LOG_INF(chip_id, SHR_MOD_ACL, "map_type %u move down start block id %u end block id %u tcam table size %u \n",
                table->map_type, f - 1, l + 1, table->size);
    for (u32 b = f - 1; b > l; b--) {
        dpl_acl_tcam_block *rec = dpl_reef_acl_tcam_block_get(chip_id, b);
        if (rec == nullptr) {
            continue;
        }
        const i32 rc = dpl_reef_acl_tcam_block_move(chip_id, rec, 0);
        if (rc != 0) {
            return rc;
        }
    }
    i32 rc = _block_take(chip_id, table, l + 1);
    return rc != 0 ? rc : _slots_grow(table, csl_reef_tcam_block_size_get(chip_id, &table->block_list, l + 1));
}

i32 _up_expand(u32 chip_id, dpl_acl_tcam_table *table, const dpl_acl_tcam_free_block &fb)
{
    const u32 f = fb.start_free_block_index;
    const u32 first = _first_block(table)->block_id;
    const u32 l = _last_block(table)->block_id;
    if (f >= first) {
        return SHR_E_RESOURCE;
    }
    SHR_LOG_INF(chip_id, SHR_MOD_ACL, "map_type %u move up start block id %u end block id %u tcam table size %u \n",
                table->map_type, f + 1, l, table->size);
    for (u32 b = f + 1; b <= l; b++) {
        dpl_acl_tcam_block *rec = dpl_reef_acl_tcam_block_get(chip_id, b);
        if (rec == nullptr) {
            continue;
        }
        const i32 rc = dpl_reef_acl_tcam_block_move(chip_id, rec, 1);
        if (rc != 0) {
            return rc;
        }
    }
    i32 rc = _block_take(chip_id, table, l);
    return rc != 0 ? rc : _slots_grow(table, csl_reef_tcam_block_size_get(chip_id, &table->block_list, l));
}

} // namespace

extern "C" {

u32 _dpl_reef_acl_tcam_id_get_by_map_type(u32 map_type)
{
    static constexpr u32 kIds[] = {21, 22, 34, 29, 38, 38, 35, 21, 13, 19, 7, 12, 38, 38, 38, 38, 38, 5, 4};
    return map_type < sizeof(kIds) / sizeof(kIds[0]) ? kIds[map_type] : DPL_ACL_TCAM_NO_TAB;
}

i32 dpl_reef_acl_tcam_init(u32 chip_id)
{
    if (g_acl_tcam_block[chip_id] != nullptr) {
        return SHR_E_INIT;
    }
    g_acl_tcam_block[chip_id] = shr_avl_create(_block_cmp, nullptr, nullptr);
    return g_acl_tcam_block[chip_id] == nullptr ? SHR_E_MEMORY : 0;
}

// The records belong to the tables; the tables are gone by now.
i32 dpl_reef_acl_tcam_deinit(u32 chip_id)
{
    if (g_acl_tcam_block[chip_id] != nullptr) {
        shr_avl_destroy(g_acl_tcam_block[chip_id], nullptr);
        g_acl_tcam_block[chip_id] = nullptr;
    }
    return 0;
}

dpl_acl_tcam_table *dpl_reef_acl_tcam_create(u32 chip_id, u32 size, u32 map_type, dpl_acl_tcam_move_entry_f move_entry,
                                             dpl_acl_tcam_move_block_f move_block)
{
    dpl_acl_tcam_table *t = _table_new(chip_id, map_type, move_entry, move_block);
    if (t == nullptr) {
        return nullptr;
    }
    i32 rc = csl_reef_tcam_block_auto_alloc(chip_id, size == 0 ? kDefaultSize : size, map_type, &t->block_list);
    if (rc == 0 && size == 0) {
        // A default table must lie on adjacent blocks.
        u32 count = 0;
        u32 ids[ACL_GROUP_BLOCKS_MAX] = {};
        csl_reef_tcam_blocklist_get(chip_id, &t->block_list, &count, ids);
        if (!_adjacent(ids, count)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "default tcam table of map_type %u needs adjacent blocks\n", map_type);
            rc = SHR_E_RESOURCE;
        }
    }
    return _table_finish(chip_id, t, rc);
}

dpl_acl_tcam_table *dpl_reef_acl_tcam_manual_create(u32 chip_id, u32 count, const u32 *ids, u32 map_type,
                                                    dpl_acl_tcam_move_entry_f move_entry,
                                                    dpl_acl_tcam_move_block_f move_block)
{
    dpl_acl_tcam_table *t = _table_new(chip_id, map_type, move_entry, move_block);
    if (t == nullptr) {
        return nullptr;
    }
    return _table_finish(chip_id, t, csl_reef_tcam_block_manual_alloc(chip_id, count, ids, map_type, &t->block_list));
}

i32 dpl_reef_acl_tcam_destroy(u32 chip_id, u32 map_type, dpl_acl_tcam_table *table)
{
    if (table == nullptr) {
        return SHR_E_NULL_PTR;
    }
    shr_avl_traverser t;
    for (void *p = shr_avl_t_first(&t, table->block_tree); p != nullptr; p = shr_avl_t_first(&t, table->block_tree)) {
        _block_record_drop(chip_id, table, static_cast<dpl_acl_tcam_block *>(p));
    }
    const i32 rc = csl_reef_tcam_block_free(chip_id, map_type, &table->block_list);
    shr_avl_destroy(table->block_tree, nullptr);
    xsal_mem_free(table->slots);
    xsal_mem_free(table);
    return rc;
}

i32 dpl_reef_acl_tcam_alloc_entry(u32 chip_id, dpl_acl_tcam_table *table, u32 priority, void *entry, u32 *index)
{
    if (table == nullptr || index == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam table or index is null\n");
        return SHR_E_INTERNAL;
    }
    if (table->slots == nullptr || table->used >= table->size) {
        return SHR_E_RESOURCE;
    }
    const u32 want = priority + 1;
    u32 low = 0, high = table->size;
    for (u32 i = 0, seen = 0; i < table->size && seen < table->used; i++) {
        const u32 key = table->slots[i].key;
        if (key == 0) {
            continue;
        }
        seen++;
        if (key < want) {
            low = i + 1;
        } else if (key > want) {
            high = i;
            break;
        }
    }
    u32 slot = table->size;
    for (u32 i = low; i < high; i++) {
        if (table->slots[i].key == 0) {
            slot = i;
            break;
        }
    }
    if (slot == table->size) {
        const i32 rc = _dpl_reef_acl_tcam_move_entry(chip_id, table, low, high, &slot);
        if (rc != 0) {
            return rc;
        }
    }
    table->slots[slot] = dpl_acl_tcam_slot{want, entry};
    table->used++;
    *index = slot;
    return 0;
}

i32 dpl_reef_acl_tcam_release_entry(u32 chip_id, dpl_acl_tcam_table *table, u32 index)
{
    if (table == nullptr || index >= table->size || table->slots[index].key == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam entry %u is not in use\n", index);
        return SHR_E_PARAM;
    }
    table->slots[index] = dpl_acl_tcam_slot{0, nullptr};
    table->used--;
    return 0;
}

i32 dpl_reef_acl_tcam_logic_idx_to_hw_idx(const dpl_acl_tcam_table *table, u32 index, u32 *block, u32 *row)
{
    if (table == nullptr || block == nullptr || row == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = SHR_E_PARAM;
    _each_block(table, [&](const dpl_acl_tcam_block *b) {
        if (index < b->entries) {
            *block = b->block_id;
            *row = index;
            rc = 0;
            return false;
        }
        index -= b->entries;
        return true;
    });
    return rc;
}

i32 dpl_reef_acl_tcam_block_logic_idx_offset_get(u32 chip_id, const dpl_acl_tcam_block *block, u32 *offset)
{
    if (block == nullptr || offset == nullptr || block->table == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam block or offset is null\n");
        return SHR_E_NULL_PTR;
    }
    *offset = 0;
    _each_block(block->table, [&](const dpl_acl_tcam_block *b) {
        if (b->block_id >= block->block_id) {
            return false;
        }
        *offset += b->entries;
        return true;
    });
    return 0;
}

i32 dpl_reef_acl_tcam_compress(u32 chip_id, dpl_acl_tcam_table *table, u32 *moved)
{
    if (table == nullptr || moved == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *moved = 0;
    u32 free_slot = 0;
    for (u32 i = 0; i < table->size; i++) {
        if (table->slots[i].key == 0) {
            continue;
        }
        if (i != free_slot) {
            if (table->move_entry == nullptr) {
                return SHR_E_PARAM;
            }
            const i32 rc = _slot_move(chip_id, table, i, free_slot);
            if (rc < 0) {
                return rc;
            }
            (*moved)++;
        }
        free_slot++;
    }
    return 0;
}

i32 dpl_acl_reef_tcam_free_block_get(u32 chip_id, u32 map_type, const dpl_acl_tcam_table *table,
                                     dpl_acl_tcam_free_block *out)
{
    if (table == nullptr || out == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const csl_tcam_resource *res = csl_reef_tcam_resource_get(chip_id);
    const dpl_acl_tcam_block *first = _first_block(table);
    const dpl_acl_tcam_block *last = _last_block(table);
    if (res == nullptr || first == nullptr || map_type >= CSL_TCAM_MAP_TYPE_COUNT) {
        return SHR_E_RESOURCE;
    }
    // No 480-bit kind nor fixed block on a chip whose blocks are all
    // flexible: one block of the kind's capacity.
    if (g_tcam_mgmt_info[map_type].is_480 || res->fixed != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam map_type %u: no block search on this chip\n", map_type);
        return SHR_E_FULL;
    }
    const auto is_free = [&](u32 id) { return res->flex_blocks[id - res->fixed].used == 0; };
    u32 found = res->total;
    // Upward through the flexible blocks as far as blocks can move...
    for (u32 b = last->block_id + 1; b < res->total; b++) {
        if (is_free(b)) {
            found = b;
            break;
        }
        if (!_movable(chip_id, b)) {
            break;
        }
    }
    // ... then downward, down to the blocks that never move.
    const u32 floor = _search_floor(chip_id);
    for (u32 b = first->block_id; found == res->total && b-- > floor;) {
        if (is_free(b)) {
            found = b;
            break;
        }
        if (!_movable(chip_id, b)) {
            break;
        }
    }
    if (found == res->total) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "no free tcam block for map_type %u\n", map_type);
        return SHR_E_FULL;
    }
    static constexpr u32 kEntries[] = {256, 128, 64};
    const u32 mode = g_tcam_mgmt_info[map_type].mode;
    *out = dpl_acl_tcam_free_block{found, 1, 0, mode < 3 ? kEntries[mode] : 0};
    return 0;
}

i32 dpl_reef_acl_tcam_block_expand(u32 chip_id, u32 map_type, dpl_acl_tcam_table *table)
{
    if (table == nullptr) {
        return SHR_E_NULL_PTR;
    }
    dpl_acl_tcam_free_block fb{};
    i32 rc = dpl_acl_reef_tcam_free_block_get(chip_id, map_type, table, &fb);
    if (rc != 0) {
        return rc;
    }
    SHR_LOG_INF(chip_id, SHR_MOD_ACL,
                "tcam map_type %u start_free_block_index %u free_resource_block_num %u refter_480block_move %u \n",
                map_type, fb.start_free_block_index, fb.free_resource_block_num, fb.refter_480block_move);
    // A free block above the table: the blocks between move up and the
    // table takes the one after its last (down expand); below it: the blocks
    // from it to the table's last move down, the table's own among them
    // (up expand).
    return fb.start_free_block_index > _last_block(table)->block_id ? _down_expand(chip_id, table, fb)
                                                                      : _up_expand(chip_id, table, fb);
}

i32 dpl_reef_acl_tcam_block_shrink(u32 chip_id, u32 map_type, dpl_acl_tcam_table *table)
{
    if (table == nullptr) {
        return SHR_E_NULL_PTR;
    }
    (void)map_type;
    dpl_acl_tcam_block *last = _last_block(table);
    if (last == nullptr || table->size - table->used < last->entries || table->block_tree->count <= 1) {
        return SHR_E_RESOURCE;
    }
    // The used slots rounded up to whole blocks, one block at least.
    const u32 unit = last->entries;
    const u32 want = table->used == 0 ? unit : (table->used + unit - 1) / unit * unit;
    u32 moved = 0;
    i32 rc = dpl_reef_acl_tcam_compress(chip_id, table, &moved);
    if (rc != 0) {
        return rc;
    }
    u32 keep = table->size;
    std::vector<dpl_acl_tcam_block *> drop;
    shr_avl_traverser t;
    for (void *p = shr_avl_t_last(&t, table->block_tree); p != nullptr && table->block_tree->count - drop.size() > 1;
         p = shr_avl_t_prev(&t)) {
        auto *b = static_cast<dpl_acl_tcam_block *>(p);
        if (keep - b->entries < want) {
            break;
        }
        keep -= b->entries;
        drop.push_back(b);
    }
    dpl_acl_tcam_slot *s = _slots_alloc(keep);
    if (s == nullptr) {
        return SHR_E_NULL_PTR;
    }
    memcpy(s, table->slots, static_cast<size_t>(keep) * sizeof(dpl_acl_tcam_slot));
    for (dpl_acl_tcam_block *b : drop) {
        rc = rc != 0 ? rc : _block_give(chip_id, table, b);
    }
    if (rc != 0) {
        // The blocks that went are gone; the slots beyond them stay free.
        xsal_mem_free(s);
        table->size = csl_reef_tcam_block_list_size_get(chip_id, &table->block_list);
        return rc;
    }
    xsal_mem_free(table->slots);
    table->slots = s;
    table->size = keep;
    return 0;
}

dpl_acl_tcam_block *dpl_reef_acl_tcam_block_get(u32 chip_id, u32 block_id)
{
    if (chip_id >= SHR_MAX_CHIPS || g_acl_tcam_block[chip_id] == nullptr) {
        return nullptr;
    }
    dpl_acl_tcam_block probe{};
    probe.block_id = block_id;
    return static_cast<dpl_acl_tcam_block *>(shr_avl_find(g_acl_tcam_block[chip_id], &probe));
}

i32 dpl_reef_acl_tcam_block_move(u32 chip_id, dpl_acl_tcam_block *block, u32 direction)
{
    if (block == nullptr || block->table == nullptr) {
        return SHR_E_NULL_PTR;
    }
    dpl_acl_tcam_table *table = block->table;
    const u32 src = block->block_id;
    const u32 dst = direction == 0 ? src + 1 : src - 1;
    if (table->move_block == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam table has no block move function\n");
        return SHR_E_PARAM;
    }
    // The destination joins the kind's lookups empty...
    i32 rc = csl_reef_tcam_block_add(chip_id, dst, table->map_type, &table->block_list);
    if (rc != 0) {
        return rc;
    }
    // ... takes a copy of every entry, so that both blocks match ...
    SHR_LOG_INF(chip_id, SHR_MOD_ACL, "block from_block_idx %u to to_block_idx %u \n", src, dst);
    const dpl_acl_tcam_move mv{table, block, dst, 0, block->entries, 0, 0};
    rc = table->move_block(chip_id, &mv);
    if (rc != 0) {
        return rc;
    }
    // ... and only then the source leaves them and is cleaned.
    _block_record_drop(chip_id, table, block);
    rc = _block_record_add(chip_id, table, dst);
    rc = rc != 0 ? rc : csl_reef_tcam_block_del(chip_id, src, table->map_type, &table->block_list);
    return rc != 0 ? rc : _block_clean(chip_id, table->map_type, src, csl_reef_tcam_block_size_get(chip_id, &table->block_list, dst));
}

} // extern "C"
