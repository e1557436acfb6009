// ACL groups: creation with automatic or given ids, the kind (stage and
// key width) and size a group takes, its stage, its walk, install and
// uninstall of all its entries, and destruction.  A group's TCAM table
// is made by its first installed entry and goes with its last.
#include <tide/property.h>

#include <cstring>
#include <vector>

#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/acl/dpl_reef_acl.h"

extern "C" {
dpl_acl_stage g_fp[SHR_MAX_CHIPS][DPL_ACL_STAGE_COUNT];
shr_avl_table *g_acl_group_tree[SHR_MAX_CHIPS];
u32 g_acl_group_id_alloc[SHR_MAX_CHIPS];
u32 g_acl_group_alloc_tcam_block_mode[SHR_MAX_CHIPS];

// The kinds of group by fp type: type, mode, stage object, map type.  fp
// types 1, 3, 5 and 7 are the 480-bit and mff kinds of the sibling chips.
const dpl_acl_fp_kind g_acl_fp_kind[DPL_ACL_FP_TYPE_COUNT] = {
    {ACL_GROUP_ICAP, ACL_MODE_DOUBLE, 1, CSL_TCAM_MAP_IACL_320},
    {ACL_GROUP_ICAP, ACL_MODE_TRIPLE, 1, CSL_TCAM_MAP_IACL_480},
    {ACL_GROUP_IPSG, ACL_MODE_DOUBLE, 1, CSL_TCAM_MAP_IPSG},
    {ACL_GROUP_MFF, ACL_MODE_SINGLE, 1, CSL_TCAM_MAP_MFF},
    {ACL_GROUP_ECAP, ACL_MODE_DOUBLE, 3, CSL_TCAM_MAP_EACL_320},
    {ACL_GROUP_ECAP, ACL_MODE_TRIPLE, 3, CSL_TCAM_MAP_EACL_480},
    {ACL_GROUP_CPUCAP, ACL_MODE_DOUBLE, 2, CSL_TCAM_MAP_CPACL_320},
    {ACL_GROUP_CPUCAP, ACL_MODE_TRIPLE, 2, CSL_TCAM_MAP_CPACL_480},
    {ACL_GROUP_VCAP, ACL_MODE_SINGLE, 0, CSL_TCAM_MAP_VACL_160},
    {ACL_GROUP_VCAP, ACL_MODE_DOUBLE, 0, CSL_TCAM_MAP_VACL_320},
    {ACL_GROUP_MCAP, ACL_MODE_DOUBLE, 4, CSL_TCAM_MAP_EACL_S},
    {ACL_GROUP_ICAP, ACL_MODE_SINGLE, 1, CSL_TCAM_MAP_IACL_160},
};
}

namespace {

// The kinds atolreef has.
constexpr u32 kAtolreefKinds = 1u << 0 | 1u << 2 | 1u << 4 | 1u << 6 | 1u << 8 | 1u << 9 | 1u << 10 | 1u << 11;
constexpr u32 kNoType = 0xFFFFFFFFu;

int _group_cmp(const void *a, const void *b, void *)
{
    const u32 x = static_cast<const dpl_acl_group *>(a)->group_id;
    const u32 y = static_cast<const dpl_acl_group *>(b)->group_id;
    return x < y ? -1 : x > y ? 1 : 0;
}

void _stage_detach(dpl_acl_group *g)
{
    dpl_acl_stage *s = g->fp;
    if (s == nullptr) {
        return;
    }
    if (g->stage_prev != nullptr) {
        g->stage_prev->stage_next = g->stage_next;
    } else {
        s->head = g->stage_next;
    }
    if (g->stage_next != nullptr) {
        g->stage_next->stage_prev = g->stage_prev;
    }
    g->stage_prev = g->stage_next = nullptr;
    g->fp = nullptr;
    s->group_count--;
}

void _stage_attach(u32 chip_id, dpl_acl_group *g)
{
    dpl_acl_stage *s = &g_fp[chip_id][g_acl_fp_kind[g->fp_type].stage];
    g->fp = s;
    g->stage_prev = nullptr;
    g->stage_next = s->head;
    if (s->head != nullptr) {
        s->head->stage_prev = g;
    }
    s->head = g;
    s->group_count++;
}

// The next free automatic id from `*cursor`, wrapping within the
// automatic range; false when the range is full.
template <typename Used>
bool _auto_id(u32 *cursor, Used used, u32 *id)
{
    u32 c = *cursor < DPL_ACL_ID_AUTO_BASE ? DPL_ACL_ID_AUTO_BASE : *cursor;
    for (u64 n = 0; n <= 0xFFFFFFull; n++) {
        const u32 candidate = c;
        c = c == 0xFFFFFFFFu ? DPL_ACL_ID_AUTO_BASE : c + 1;
        if (!used(candidate)) {
            *id = candidate;
            *cursor = c;
            return true;
        }
    }
    return false;
}

i32 _group_para_check(u32 chip_id, const acl_group_para *para, u32 *fp_type)
{
    const u32 mode = g_acl_group_alloc_tcam_block_mode[chip_id];
    if (para->flags & ACL_GROUP_FLAG_BLOCKS) {
        if (para->block_num > ACL_GROUP_BLOCKS_MAX) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group block_num is out of range, block_num %u max %u\n", para->block_num,
                        ACL_GROUP_BLOCKS_MAX);
            return SHR_E_PARAM;
        }
        for (u32 id : para->block_ids) {
            if (id > ACL_GROUP_BLOCKS_MAX - 1) {
                SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group block id is out of range, block id %u max %u\n", id,
                            ACL_GROUP_BLOCKS_MAX - 1);
                return SHR_E_PARAM;
            }
        }
    } else if (para->entry_num == 0 || para->entry_num % ACL_GROUP_ENTRY_UNIT != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group entry num error %u, cannot be zero but an integer multiple of %u\n",
                    para->entry_num, ACL_GROUP_ENTRY_UNIT);
        return SHR_E_PARAM;
    }
    if (mode == 1 && (para->flags & (ACL_GROUP_FLAG_BLOCKS | ACL_GROUP_FLAG_SIZE))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group tcam resource alloc is auto mode\n");
        return SHR_E_PARAM;
    }
    if (mode == 0 && (para->flags & ACL_GROUP_FLAG_AUTO)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group tcam resource alloc is manual mode\n");
        return SHR_E_PARAM;
    }
    if (para->type > DPL_ACL_GROUP_TYPE_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group type not support, type %u\n", para->type);
        return SHR_E_PARAM;
    }
    *fp_type = dpl_reef_get_fp_group_type(chip_id, para->type, para->mode);
    if (*fp_type == DPL_ACL_FP_TYPE_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "not support group type %u mode %u\n", para->type, para->mode);
        return SHR_E_PARAM;
    }
    return 0;
}

// The entry ids of a group, in ascending order: a walk that calls out
// may change the tree.
std::vector<u32> _entry_ids(const dpl_acl_group *g)
{
    std::vector<u32> ids;
    ids.reserve(g->entry_tree->count);
    shr_avl_traverser t;
    for (void *p = shr_avl_t_first(&t, g->entry_tree); p != nullptr; p = shr_avl_t_next(&t)) {
        ids.push_back(static_cast<const dpl_acl_entry *>(p)->entry_id);
    }
    return ids;
}

template <typename Fn>
void _each_entry(u32 chip_id, const dpl_acl_group *g, Fn fn)
{
    for (u32 id : _entry_ids(g)) {
        if (dpl_acl_entry *e = dpl_reef_acl_entry_get(chip_id, id); e != nullptr) {
            fn(e);
        }
    }
}

void _group_info_fill(const dpl_acl_group *g, acl_group_info *info)
{
    memset(info, 0, sizeof(*info));
    info->group_id = g->group_id;
    info->priority = g->priority;
    const bool set = g->fp_type < DPL_ACL_FP_TYPE_COUNT;
    info->type = set ? g_acl_fp_kind[g->fp_type].type : kNoType;
    info->mode = set ? g_acl_fp_kind[g->fp_type].mode : kNoType;
    info->alloc_mode = g->alloc_mode;
    info->entry_num = g->entry_num;
    info->entry_count = g->entry_count;
    info->match_support = g->match_support;
    memcpy(info->action_support, g->action_support, sizeof(info->action_support));
    memcpy(info->name, g->name, sizeof(info->name));
    const dpl_acl_tcam_table *t = g->table;
    if (t != nullptr) {
        info->installed = t->used;
        info->table_size = t->size;
        info->moves = t->moves;
        // The blocks in the table's order, ascending id.
        shr_avl_traverser tr;
        for (void *p = shr_avl_t_first(&tr, t->block_tree); p != nullptr && info->block_num < ACL_GROUP_BLOCKS_MAX;
             p = shr_avl_t_next(&tr)) {
            info->block_ids[info->block_num++] = static_cast<const dpl_acl_tcam_block *>(p)->block_id;
        }
    } else if (g->alloc_mode == ACL_ALLOC_MANUAL) {
        info->block_num = g->block_num;
        memcpy(info->block_ids, g->block_ids, sizeof(info->block_ids));
    }
}

i32 _group_destroy(u32 chip_id, dpl_acl_group *g)
{
    i32 rc = 0;
    _each_entry(chip_id, g, [&](dpl_acl_entry *e) { rc |= _dpl_reef_acl_entry_free(chip_id, e); });
    if (g->table != nullptr) {
        // Entries that could not leave the hardware: their rows go with the
        // blocks.
        rc |= dpl_reef_acl_tcam_destroy(chip_id, g->table->map_type, g->table);
        g->table = nullptr;
    }
    _stage_detach(g);
    shr_avl_delete(g_acl_group_tree[chip_id], g);
    shr_avl_destroy(g->entry_tree, nullptr);
    xsal_mem_free(g);
    return rc;
}

// A group by id, or -7 with the service's line.
i32 _group_find(u32 chip_id, u32 group_id, const char *format, dpl_acl_group **out)
{
    *out = dpl_reef_acl_group_find(chip_id, group_id);
    if (*out == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, format, group_id);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

} // namespace

extern "C" {

u32 dpl_reef_get_fp_group_type(u32 chip_id, u32 type, u32 mode)
{
    const u32 kinds = shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? kAtolreefKinds : (1u << 12) - 1;
    for (u32 fp = 0; fp < DPL_ACL_FP_TYPE_COUNT; fp++) {
        if ((kinds >> fp & 1) && g_acl_fp_kind[fp].type == type && g_acl_fp_kind[fp].mode == mode) {
            return fp;
        }
    }
    return DPL_ACL_FP_TYPE_NONE;
}

u32 dpl_reef_get_group_type_by_fp_type(u32 fp_type)
{
    return fp_type < DPL_ACL_FP_TYPE_COUNT ? g_acl_fp_kind[fp_type].type : kNoType;
}

u32 dpl_reef_get_group_mode_by_fp_type(u32 fp_type)
{
    return fp_type < DPL_ACL_FP_TYPE_COUNT ? g_acl_fp_kind[fp_type].mode : kNoType;
}

dpl_acl_group *dpl_reef_acl_group_find(u32 chip_id, u32 group_id)
{
    if (chip_id >= SHR_MAX_CHIPS || g_acl_group_tree[chip_id] == nullptr) {
        return nullptr;
    }
    dpl_acl_group probe{};
    probe.group_id = group_id;
    return static_cast<dpl_acl_group *>(shr_avl_find(g_acl_group_tree[chip_id], &probe));
}

i32 dpl_reef_acl_group_init(u32 chip_id)
{
    const i32 mode = shr_property_get(chip_id, "acl_alloc_tcam_resource_mode", 0);
    g_acl_group_alloc_tcam_block_mode[chip_id] = mode == 1 ? 1u : 0u;
    g_acl_group_id_alloc[chip_id] = DPL_ACL_ID_AUTO_BASE;
    for (u32 s = 0; s < DPL_ACL_STAGE_COUNT; s++) {
        g_fp[chip_id][s] = dpl_acl_stage{s, 0, nullptr};
    }
    if (g_acl_group_tree[chip_id] == nullptr) {
        g_acl_group_tree[chip_id] = shr_avl_create(_group_cmp, nullptr, nullptr);
    }
    return g_acl_group_tree[chip_id] == nullptr ? SHR_E_MEMORY : 0;
}

i32 dpl_reef_acl_group_deinit(u32 chip_id)
{
    i32 rc = 0;
    if (g_acl_group_tree[chip_id] != nullptr) {
        shr_avl_traverser t;
        for (void *p = shr_avl_t_first(&t, g_acl_group_tree[chip_id]); p != nullptr;
             p = shr_avl_t_first(&t, g_acl_group_tree[chip_id])) {
            rc |= _group_destroy(chip_id, static_cast<dpl_acl_group *>(p));
        }
        shr_avl_destroy(g_acl_group_tree[chip_id], nullptr);
        g_acl_group_tree[chip_id] = nullptr;
    }
    return rc;
}

i32 dpl_reef_acl_group_create(u32 chip_id, u32 flags, u32 *group_id)
{
    if (flags & ~ACL_GROUP_FLAG_WITH_ID) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group create flags 0x%x not support\n", flags);
        return SHR_E_PARAM;
    }
    ACL_LOCK(chip_id);
    u32 id = *group_id;
    if (flags & ACL_GROUP_FLAG_WITH_ID) {
        if (dpl_reef_acl_group_find(chip_id, id) != nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group exists, group_id %u\n", id);
            return SHR_E_EXISTS;
        }
    } else if (!_auto_id(&g_acl_group_id_alloc[chip_id],
                         [chip_id](u32 c) { return dpl_reef_acl_group_find(chip_id, c) != nullptr; }, &id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "no free group id\n");
        return SHR_E_FULL;
    }
    auto *g = static_cast<dpl_acl_group *>(xsal_malloc(sizeof(dpl_acl_group), "FP GROUP", SHR_MOD_ACL));
    if (g == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(g, 0, sizeof(*g));
    g->group_id = id;
    g->fp_type = DPL_ACL_FP_TYPE_NONE;
    g->entry_tree = shr_avl_create(
        [](const void *a, const void *b, void *) {
            const u32 x = static_cast<const dpl_acl_entry *>(a)->entry_id;
            const u32 y = static_cast<const dpl_acl_entry *>(b)->entry_id;
            return x < y ? -1 : x > y ? 1 : 0;
        },
        nullptr, nullptr);
    if (g->entry_tree == nullptr || shr_avl_insert(g_acl_group_tree[chip_id], g) != nullptr) {
        if (g->entry_tree != nullptr) {
            shr_avl_destroy(g->entry_tree, nullptr);
        }
        xsal_mem_free(g);
        return SHR_E_MEMORY;
    }
    *group_id = id;
    return 0;
}

i32 dpl_reef_acl_group_set(u32 chip_id, u32 group_id, acl_group_para *para)
{
    if (para == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group_para ptr is null\n");
        return SHR_E_NULL_PTR;
    }
    u32 fp_type = DPL_ACL_FP_TYPE_NONE;
    i32 rc = _group_para_check(chip_id, para, &fp_type);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    dpl_acl_group *g = nullptr;
    rc = _group_find(chip_id, group_id, "group not exist, group_id %u\n", &g);
    if (rc != 0) {
        return rc;
    }
    // A group whose entries are in the hardware keeps its kind and blocks.
    if (g->table != nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group has installed entries, uninstall them first, group_id %u\n", group_id);
        return SHR_E_FAIL;
    }
    u32 templates = 0;
    u32 actions[DPL_ACL_ACTION_SUPPORT_WORDS] = {};
    rc = dpl_reef_acl_template_support_gen(chip_id, fp_type, &templates);
    rc = rc != 0 ? rc : dpl_reef_acl_template_action_support_gen(chip_id, fp_type, actions);
    if (rc != 0) {
        return rc;
    }
    memcpy(g->name, para->name, ACL_GROUP_NAME_LEN);
    g->name[ACL_GROUP_NAME_LEN] = '\0';
    g->priority = para->priority;
    if (para->flags & ACL_GROUP_FLAG_BLOCKS) {
        g->block_num = para->block_num;
        memcpy(g->block_ids, para->block_ids, sizeof(g->block_ids));
        g->entry_num = para->block_num * ACL_GROUP_ENTRY_UNIT;
        g->alloc_mode = ACL_ALLOC_MANUAL;
    } else {
        g->block_num = 0;
        g->entry_num = para->entry_num;
        g->alloc_mode = (para->flags & ACL_GROUP_FLAG_SIZE) ? ACL_ALLOC_SIZE : ACL_ALLOC_AUTO;
    }
    _stage_detach(g);
    g->fp_type = fp_type;
    g->match_support = templates;
    memcpy(g->action_support, actions, sizeof(actions));
    _stage_attach(chip_id, g);
    return 0;
}

i32 dpl_reef_acl_group_info_get(u32 chip_id, u32 group_id, acl_group_info *info)
{
    ACL_LOCK(chip_id);
    dpl_acl_group *g = nullptr;
    const i32 rc = _group_find(chip_id, group_id, "group not found, group_id %u\n", &g);
    if (rc == 0) {
        _group_info_fill(g, info);
    }
    return rc;
}

i32 dpl_reef_acl_group_traverse(u32 chip_id, acl_group_traverse_cb fn, void *user)
{
    if (fn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "group traverse callback is null\n");
        return SHR_E_NULL_PTR;
    }
    ACL_LOCK(chip_id);
    std::vector<u32> ids;
    shr_avl_traverser t;
    for (void *p = shr_avl_t_first(&t, g_acl_group_tree[chip_id]); p != nullptr; p = shr_avl_t_next(&t)) {
        ids.push_back(static_cast<const dpl_acl_group *>(p)->group_id);
    }
    i32 rc = 0;
    for (u32 id : ids) {
        const dpl_acl_group *g = dpl_reef_acl_group_find(chip_id, id);
        if (g != nullptr) {
            acl_group_info info;
            _group_info_fill(g, &info);
            rc |= fn(chip_id, id, &info, user);
        }
    }
    return rc;
}

i32 dpl_reef_acl_group_destroy(u32 chip_id, u32 group_id)
{
    ACL_LOCK(chip_id);
    dpl_acl_group *g = nullptr;
    const i32 rc = _group_find(chip_id, group_id, "group not found, group_id %u\n", &g);
    return rc != 0 ? rc : _group_destroy(chip_id, g);
}

// Each entry in id order; their own results are not the group's.
i32 dpl_reef_acl_group_install(u32 chip_id, u32 group_id)
{
    ACL_LOCK(chip_id);
    dpl_acl_group *g = nullptr;
    const i32 rc = _group_find(chip_id, group_id, "group not found, group_id %u\n", &g);
    if (rc == 0) {
        _each_entry(chip_id, g, [chip_id](dpl_acl_entry *e) { _dpl_reef_acl_internal_entry_install(chip_id, e); });
    }
    return rc;
}

i32 dpl_reef_acl_group_uninstall(u32 chip_id, u32 group_id)
{
    ACL_LOCK(chip_id);
    dpl_acl_group *g = nullptr;
    const i32 rc = _group_find(chip_id, group_id, "group not found, group_id %u\n", &g);
    if (rc == 0) {
        _each_entry(chip_id, g, [chip_id](dpl_acl_entry *e) {
            if (e->state & ACL_ENTRY_INSTALLED) {
                _dpl_reef_acl_internal_entry_uninstall(chip_id, e);
            }
        });
    }
    return rc;
}

i32 dpl_reef_acl_group_expand(u32 chip_id, dpl_acl_group *group)
{
    if (g_acl_group_alloc_tcam_block_mode[chip_id] == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "not support tcam resource expand\n");
        return SHR_E_NOT_SUPPORT;
    }
    if (group == nullptr || group->table == nullptr) {
        return SHR_E_NULL_PTR;
    }
    return dpl_reef_acl_tcam_block_expand(chip_id, group->table->map_type, group->table);
}

i32 dpl_reef_acl_group_shrink(u32 chip_id, dpl_acl_group *group)
{
    if (g_acl_group_alloc_tcam_block_mode[chip_id] == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "not support tcam resource expand\n");
        return SHR_E_NOT_SUPPORT;
    }
    if (group == nullptr || group->table == nullptr) {
        return SHR_E_NULL_PTR;
    }
    return dpl_reef_acl_tcam_block_shrink(chip_id, group->table->map_type, group->table);
}

// The automatic ids of entries run like those of groups.
bool dpl_reef_acl_auto_id(u32 *cursor, bool (*used)(u32 chip_id, u32 id), u32 chip_id, u32 *id)
{
    return _auto_id(cursor, [&](u32 c) { return used(chip_id, c); }, id);
}

} // extern "C"
