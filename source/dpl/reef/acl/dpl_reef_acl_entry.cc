// ACL entries: creation in a group, the template, the key base, match
// items and actions, the priority, reading and walking.  An entry keeps
// all its data here; it can be edited only while uninstalled, and every
// edit marks it dirty until its next install.
#include <cstring>
#include <vector>

#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/acl/dpl_reef_acl.h"

extern "C" {
shr_avl_table *g_entry_tree[SHR_MAX_CHIPS];
u32 g_last_entry_id_alloc[SHR_MAX_CHIPS];
}

namespace {

// The actions whose services bind them to something of their own.
constexpr u32 kActionMirror = 0;
constexpr u32 kActionSflow = 2;
constexpr u32 kActionCnt = 49;
constexpr u32 kActionPolicer = 50;

int _entry_cmp(const void *a, const void *b, void *)
{
    const u32 x = static_cast<const dpl_acl_entry *>(a)->entry_id;
    const u32 y = static_cast<const dpl_acl_entry *>(b)->entry_id;
    return x < y ? -1 : x > y ? 1 : 0;
}

bool _entry_used(u32 chip_id, u32 id)
{
    return dpl_reef_acl_entry_get(chip_id, id) != nullptr;
}

i32 _priority_check(u32 chip_id, u32 priority)
{
    if (priority > ACL_PRIORITY_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "priority %u is out of range, max %u\n", priority, ACL_PRIORITY_MAX);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _entry_find(u32 chip_id, u32 entry_id, dpl_acl_entry **out)
{
    *out = dpl_reef_acl_entry_get(chip_id, entry_id);
    if (*out == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry not found, entry_id %u\n", entry_id);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

// An entry that may be edited: found and uninstalled.
i32 _entry_editable(u32 chip_id, u32 entry_id, dpl_acl_entry **out)
{
    i32 rc = _entry_find(chip_id, entry_id, out);
    if (rc == 0 && ((*out)->state & ACL_ENTRY_INSTALLED)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry was installed, edit must in uninstalled state, entry_id %u\n",
                    entry_id);
        rc = SHR_E_FAIL;
    }
    return rc;
}

void _items_clear(acl_item **items, u32 count, u32 *set)
{
    for (u32 i = 0; i < count; i++) {
        xsal_mem_free(items[i]);
        items[i] = nullptr;
        dpl_acl_bit_clear(set, i);
    }
}

// Stores an item: a new record, or the one the id has.
i32 _item_store(acl_item **slot, u32 *set, const acl_item &item)
{
    if (*slot == nullptr) {
        *slot = static_cast<acl_item *>(xsal_malloc(sizeof(acl_item), "FP ENTRY", SHR_MOD_ACL));
        if (*slot == nullptr) {
            return SHR_E_MEMORY;
        }
    }
    **slot = item;
    dpl_acl_bit_set(set, item.id);
    return 0;
}

i32 _item_remove(u32 chip_id, acl_item **slot, u32 *set, u32 id, const char *what, u32 entry_id)
{
    if (!dpl_acl_bit_get(set, id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "%s %u not set, entry_id %u\n", what, id, entry_id);
        return SHR_E_NOT_FOUND;
    }
    xsal_mem_free(*slot);
    *slot = nullptr;
    dpl_acl_bit_clear(set, id);
    return 0;
}

// What the services behind some actions must do before the action is
// kept: the counters and policers of the ACL and the mirror sessions are
// services of their own that this build does not have.
i32 _action_bind(u32 chip_id, const dpl_acl_entry *e, const acl_item *item)
{
    switch (item->id) {
    case kActionCnt:
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "acl counter %u: no ACL counter service in this build\n", item->value);
        return SHR_E_NOT_SUPPORT;
    case kActionPolicer:
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "acl policer %u: no ACL policer service in this build\n", item->value);
        return SHR_E_NOT_SUPPORT;
    case kActionMirror:
        if (dpl_acl_bit_get(e->action_set, kActionSflow)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "sflow action exist, need to remove sflow first\n");
            return SHR_E_INTERNAL;
        }
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "mirror %u: no mirror service in this build\n", item->value);
        return SHR_E_NOT_SUPPORT;
    default:
        return 0;
    }
}

template <typename Fn>
i32 _walk(u32 chip_id, shr_avl_table *tree, Fn fn)
{
    std::vector<u32> ids;
    ids.reserve(tree->count);
    shr_avl_traverser t;
    for (void *p = shr_avl_t_first(&t, tree); p != nullptr; p = shr_avl_t_next(&t)) {
        ids.push_back(static_cast<const dpl_acl_entry *>(p)->entry_id);
    }
    // One record for the whole walk: it is large.
    auto *info = static_cast<acl_entry_info *>(xsal_malloc(sizeof(acl_entry_info), "acl entry info", SHR_MOD_ACL));
    if (info == nullptr) {
        return SHR_E_MEMORY;
    }
    i32 rc = 0;
    for (u32 id : ids) {
        if (const dpl_acl_entry *e = dpl_reef_acl_entry_get(chip_id, id); e != nullptr) {
            _dpl_reef_acl_entry_info_fill(e, info);
            rc |= fn(id, info);
        }
    }
    xsal_mem_free(info);
    return rc;
}

i32 _item_id_check(u32 chip_id, const acl_item *item, u32 count, const char *what)
{
    if (item->id >= count) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "%s id %u is out of range, max %u\n", what, item->id, count - 1);
        return SHR_E_PARAM;
    }
    return 0;
}

// An edit of an entry's items: the item's id checked, then, under the
// lock, the entry found editable and `edit` run on it; a done edit marks
// the entry dirty.
template <typename Edit>
i32 _item_edit(u32 chip_id, u32 entry_id, const acl_item *item, u32 count, const char *what, Edit edit)
{
    i32 rc = _item_id_check(chip_id, item, count, what);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    rc = _entry_editable(chip_id, entry_id, &e);
    rc = rc != 0 ? rc : edit(e);
    if (rc == 0) {
        e->state |= ACL_ENTRY_DIRTY;
    }
    return rc;
}

} // namespace

extern "C" {

dpl_acl_entry *dpl_reef_acl_entry_get(u32 chip_id, u32 entry_id)
{
    if (chip_id >= SHR_MAX_CHIPS || g_entry_tree[chip_id] == nullptr) {
        return nullptr;
    }
    dpl_acl_entry probe;
    probe.entry_id = entry_id;
    return static_cast<dpl_acl_entry *>(shr_avl_find(g_entry_tree[chip_id], &probe));
}

i32 dpl_reef_acl_entry_init(u32 chip_id)
{
    g_last_entry_id_alloc[chip_id] = DPL_ACL_ID_AUTO_BASE;
    if (g_entry_tree[chip_id] == nullptr) {
        g_entry_tree[chip_id] = shr_avl_create(_entry_cmp, nullptr, nullptr);
    }
    return g_entry_tree[chip_id] == nullptr ? SHR_E_MEMORY : 0;
}

// The entries went with their groups.
i32 dpl_reef_acl_entry_deinit(u32 chip_id)
{
    if (g_entry_tree[chip_id] != nullptr) {
        shr_avl_destroy(g_entry_tree[chip_id], nullptr);
        g_entry_tree[chip_id] = nullptr;
    }
    return 0;
}

void _dpl_reef_acl_entry_info_fill(const dpl_acl_entry *e, acl_entry_info *info)
{
    memset(info, 0, sizeof(*info));
    info->entry_id = e->entry_id;
    info->group_id = e->group->group_id;
    info->priority = e->priority;
    info->state = e->state;
    info->logical_index = e->logical_index;
    info->block = e->block;
    info->index_in_block = e->index_in_block;
    info->template_id = e->template_id;
    info->based_mode = e->based_mode;
    for (u32 i = 0; i < ACL_MATCH_ID_COUNT; i++) {
        if (e->match[i] != nullptr) {
            info->match[info->match_count++] = *e->match[i];
        }
    }
    for (u32 i = 0; i < ACL_ACTION_ID_COUNT; i++) {
        if (e->action[i] != nullptr) {
            info->action[info->action_count++] = *e->action[i];
        }
    }
}

// Out of the hardware, out of both trees, items and record freed.
i32 _dpl_reef_acl_entry_free(u32 chip_id, dpl_acl_entry *e)
{
    i32 rc = 0;
    if (e->state & ACL_ENTRY_INSTALLED) {
        rc = _dpl_reef_acl_internal_entry_uninstall(chip_id, e);
    }
    if (e->state & ACL_ENTRY_INSTALLED) {
        // Its row could not be deleted: the slot goes with it, the row with
        // the table.
        if (e->group->table != nullptr) {
            dpl_reef_acl_tcam_release_entry(chip_id, e->group->table, e->logical_index);
        }
    }
    _items_clear(e->match, ACL_MATCH_ID_COUNT, e->match_set);
    _items_clear(e->action, ACL_ACTION_ID_COUNT, e->action_set);
    shr_avl_delete(e->group->entry_tree, e);
    shr_avl_delete(g_entry_tree[chip_id], e);
    e->group->entry_count--;
    xsal_mem_free(e);
    return rc;
}

i32 dpl_reef_acl_entry_create(u32 chip_id, u32 flags, u32 priority, u32 group_id, u32 *entry_id)
{
    if (flags & ~ACL_ENTRY_FLAG_WITH_ID) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry create flags 0x%x not support\n", flags);
        return SHR_E_PARAM;
    }
    i32 rc = _priority_check(chip_id, priority);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    dpl_acl_group *g = dpl_reef_acl_group_find(chip_id, group_id);
    u32 id = *entry_id;
    if (g == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group not found, group_id %u entry_id %u\n", group_id, id);
        return SHR_E_NOT_FOUND;
    }
    if (flags & ACL_ENTRY_FLAG_WITH_ID) {
        if (_entry_used(chip_id, id)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry exists, group_id %u entry_id %u\n", group_id, id);
            return SHR_E_EXISTS;
        }
    } else if (!dpl_reef_acl_auto_id(&g_last_entry_id_alloc[chip_id], _entry_used, chip_id, &id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "no free entry id\n");
        return SHR_E_FULL;
    }
    auto *e = static_cast<dpl_acl_entry *>(xsal_malloc(sizeof(dpl_acl_entry), "FP ENTRY", SHR_MOD_ACL));
    if (e == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(e, 0, sizeof(*e));
    e->entry_id = id;
    e->priority = priority;
    e->template_id = ACL_TEMPLATE_NONE;
    e->based_mode = ACL_BASED_DEFAULT;
    e->group = g;
    shr_avl_insert(g->entry_tree, e);
    shr_avl_insert(g_entry_tree[chip_id], e);
    g->entry_count++;
    *entry_id = id;
    return 0;
}

i32 dpl_reef_acl_entry_destroy(u32 chip_id, u32 entry_id)
{
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    const i32 rc = _entry_find(chip_id, entry_id, &e);
    return rc != 0 ? rc : _dpl_reef_acl_entry_free(chip_id, e);
}

i32 dpl_reef_acl_entry_template_set(u32 chip_id, u32 entry_id, u32 template_id)
{
    if (template_id >= ACL_TEMPLATE_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "template %u is out of range, max %u\n", template_id, ACL_TEMPLATE_NONE - 1);
        return SHR_E_PARAM;
    }
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    i32 rc = _entry_editable(chip_id, entry_id, &e);
    if (rc != 0) {
        return rc;
    }
    if (!((e->group->match_support >> template_id) & 1)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "template not support, template_id %u entry_id %u\n", template_id, entry_id);
        return SHR_E_NOT_SUPPORT;
    }
    if (template_id != e->template_id) {
        u32 support[DPL_ACL_MATCH_WORDS] = {};
        rc = dpl_reef_acl_template_match_type_support_gen(chip_id, template_id, support);
        if (rc != 0) {
            return rc;
        }
        _items_clear(e->match, ACL_MATCH_ID_COUNT, e->match_set);
        _items_clear(e->action, ACL_ACTION_ID_COUNT, e->action_set);
        memcpy(e->match_support, support, sizeof(support));
        e->template_id = template_id;
    }
    e->state |= ACL_ENTRY_DIRTY;
    return 0;
}

i32 dpl_reef_acl_entry_template_get(u32 chip_id, u32 entry_id, u32 *template_id)
{
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    const i32 rc = _entry_find(chip_id, entry_id, &e);
    if (rc == 0) {
        *template_id = e->template_id;
    }
    return rc;
}

i32 dpl_reef_acl_entry_based_mode_set(u32 chip_id, u32 entry_id, u32 mode)
{
    if (mode > ACL_BASED_VP) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "based_mode[%u] is not support, entry_id %u\n", mode, entry_id);
        return SHR_E_PARAM;
    }
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    i32 rc = _entry_editable(chip_id, entry_id, &e);
    if (rc != 0) {
        return rc;
    }
    const u32 fp = e->group->fp_type;
    if (fp >= DPL_ACL_FP_TYPE_COUNT || g_acl_fp_kind[fp].type != ACL_GROUP_ICAP) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "iacl support only, entry_id %u\n", entry_id);
        return SHR_E_NOT_SUPPORT;
    }
    e->based_mode = mode;
    e->state |= ACL_ENTRY_DIRTY;
    return 0;
}

i32 dpl_reef_acl_entry_based_mode_get(u32 chip_id, u32 entry_id, u32 *mode)
{
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    const i32 rc = _entry_find(chip_id, entry_id, &e);
    if (rc == 0) {
        *mode = e->based_mode;
    }
    return rc;
}

i32 dpl_reef_acl_entry_match_field_add(u32 chip_id, u32 entry_id, acl_item *item)
{
    return _item_edit(chip_id, entry_id, item, ACL_MATCH_NULL, "match item", [&](dpl_acl_entry *e) -> i32 {
        if (e->template_id == ACL_TEMPLATE_NONE) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "template not set, entry_id %u\n", entry_id);
            return SHR_E_CONFIG;
        }
        if (!dpl_acl_bit_get(e->match_support, item->id)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "item not support, type %u entry_id %u\n", item->id, entry_id);
            return SHR_E_NOT_SUPPORT;
        }
        const i32 rc = dpl_reef_acl_template_match_type_conflict_check(chip_id, e->template_id, e->match_set, item->id);
        return rc != 0 ? rc : _item_store(&e->match[item->id], e->match_set, *item);
    });
}

i32 dpl_reef_acl_entry_match_field_remove(u32 chip_id, u32 entry_id, acl_item *item)
{
    return _item_edit(chip_id, entry_id, item, ACL_MATCH_NULL, "match item", [&](dpl_acl_entry *e) {
        return _item_remove(chip_id, &e->match[item->id], e->match_set, item->id, "match item", entry_id);
    });
}

i32 dpl_reef_acl_entry_action_add(u32 chip_id, u32 entry_id, acl_item *item)
{
    return _item_edit(chip_id, entry_id, item, ACL_ACTION_NULL, "action", [&](dpl_acl_entry *e) -> i32 {
        if (!dpl_acl_bit_get(e->group->action_support, item->id)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "action not support, action %u entry_id %u\n", item->id, entry_id);
            return SHR_E_NOT_SUPPORT;
        }
        if (dpl_acl_bit_get(e->action_set, item->id)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "action exists, action %u entry_id %u\n", item->id, entry_id);
            return SHR_E_EXISTS;
        }
        i32 rc = _action_bind(chip_id, e, item);
        rc = rc != 0 ? rc : dpl_reef_acl_template_action_conflict_check(chip_id, e->group->fp_type, e->action_set, item->id);
        return rc != 0 ? rc : _item_store(&e->action[item->id], e->action_set, *item);
    });
}

i32 dpl_reef_acl_entry_action_remove(u32 chip_id, u32 entry_id, acl_item *item)
{
    return _item_edit(chip_id, entry_id, item, ACL_ACTION_NULL, "action", [&](dpl_acl_entry *e) {
        return _item_remove(chip_id, &e->action[item->id], e->action_set, item->id, "action", entry_id);
    });
}

i32 dpl_reef_acl_entry_info_get(u32 chip_id, u32 entry_id, acl_entry_info *info)
{
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    const i32 rc = _entry_find(chip_id, entry_id, &e);
    if (rc == 0) {
        _dpl_reef_acl_entry_info_fill(e, info);
    }
    return rc;
}

i32 dpl_reef_acl_entry_traverse(u32 chip_id, acl_entry_traverse_cb fn, void *user)
{
    if (fn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry traverse callback is null\n");
        return SHR_E_NULL_PTR;
    }
    ACL_LOCK(chip_id);
    return _walk(chip_id, g_entry_tree[chip_id],
                 [&](u32 id, const acl_entry_info *info) { return fn(chip_id, id, info, user); });
}

i32 dpl_reef_acl_entry_traverse_in_group(u32 chip_id, u32 group_id, acl_entry_traverse_cb fn, void *user)
{
    if (fn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry traverse callback is null\n");
        return SHR_E_NULL_PTR;
    }
    ACL_LOCK(chip_id);
    dpl_acl_group *g = dpl_reef_acl_group_find(chip_id, group_id);
    if (g == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group not found, group_id %u\n", group_id);
        return SHR_E_NOT_FOUND;
    }
    return _walk(chip_id, g->entry_tree,
                 [&](u32 id, const acl_entry_info *info) { return fn(chip_id, id, info, user); });
}

i32 dpl_reef_acl_entry_pri_set(u32 chip_id, u32 entry_id, u32 priority)
{
    i32 rc = _priority_check(chip_id, priority);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = nullptr;
    rc = _entry_find(chip_id, entry_id, &e);
    if (rc != 0 || e->priority == priority) {
        return rc;
    }
    if (!(e->state & ACL_ENTRY_INSTALLED)) {
        e->priority = priority;
        return 0;
    }
    // An installed entry leaves its row and comes back at its new place.
    rc = _dpl_reef_acl_internal_entry_uninstall(chip_id, e);
    if (rc != 0) {
        return rc;
    }
    e->priority = priority;
    return _dpl_reef_acl_internal_entry_install(chip_id, e);
}

} // extern "C"
