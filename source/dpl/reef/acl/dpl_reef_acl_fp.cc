// Install and uninstall of ACL entries, the moves of the TCAM tables, the
// service's bring-up and its family table.
//
// An entry reaches the hardware only at install: its key, mask and action
// are built by its template into an image that lives until the write; a
// move builds it again.  Its group's table is made by the first install
// (automatic blocks, or the blocks the group was given) and grows by a
// block when full (automatic mode); the last uninstall gives the blocks
// back, and an uninstall that leaves more than a block free gives blocks
// back too.
#include <cstring>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/acl/dpl_reef_acl.h"

AclLock::AclLock(u32 chip_id, const char *function, u32 line)
    : chip_(chip_id), rc_(dpl_lock_take(chip_id, DPL_LOCK_ACL, function, line))
{
}

AclLock::~AclLock()
{
    if (rc_ == 0) {
        dpl_lock_give(chip_, DPL_LOCK_ACL, __func__, __LINE__);
    }
}

namespace {

u32 g_acl_soft_inited[SHR_MAX_CHIPS];

constexpr u32 kVaclMissCfg = 257; // both bytes 1
constexpr u32 kShrinkSlack = ACL_GROUP_ENTRY_UNIT - 1;

u16 _address(u32 block, u32 row)
{
    return static_cast<u16>(row << 8 | block);
}

// The entry's image, built into a buffer of its own ("ACL FP") that the
// caller frees.
i32 _image_build(u32 chip_id, dpl_acl_entry *e)
{
    e->hw_image = static_cast<dpl_acl_image *>(xsal_malloc(sizeof(dpl_acl_image), "ACL FP", SHR_MOD_ACL));
    if (e->hw_image == nullptr) {
        return SHR_E_MEMORY;
    }
    const i32 rc = dpl_reef_acl_template_entry_gen(chip_id, e, e->hw_image);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "fp gen tcam entry failed, entry_id %u type %u ", e->entry_id,
                    e->group->fp_type);
    }
    return rc;
}

void _image_free(dpl_acl_entry *e)
{
    xsal_mem_free(e->hw_image);
    e->hw_image = nullptr;
}

// The image into a row, valid.
i32 _dpl_reef_acl_fp_download_tcam_entry(u32 chip_id, const dpl_acl_entry *e, u32 tcam_id, u32 block, u32 row)
{
    const csl_tcam_data data{e->hw_image->mask, e->hw_image->key, e->hw_image->ad};
    const i32 rc = csl_reef_tcam_add(chip_id, tcam_id, _address(block, row), &data);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "fp download tcam entry failed, entry_id %u, valid %u", e->entry_id, 1u);
    }
    return rc;
}

// The entry written again, from a fresh image, at (block, row).
i32 _rewrite(u32 chip_id, dpl_acl_entry *e, u32 block, u32 row)
{
    i32 rc = _image_build(chip_id, e);
    rc = rc != 0 ? rc : _dpl_reef_acl_fp_download_tcam_entry(chip_id, e, e->tcam_id, block, row);
    _image_free(e);
    return rc;
}

dpl_acl_tcam_table *_table_create(u32 chip_id, dpl_acl_group *g)
{
    const u32 map_type = g_acl_fp_kind[g->fp_type].map_type;
    dpl_acl_tcam_table *t =
        g->alloc_mode == ACL_ALLOC_MANUAL
            ? dpl_reef_acl_tcam_manual_create(chip_id, g->block_num, g->block_ids, map_type, _dpl_reef_acl_move_entry,
                                              _dpl_reef_acl_move_block)
            : dpl_reef_acl_tcam_create(chip_id, g->entry_num, map_type, _dpl_reef_acl_move_entry,
                                       _dpl_reef_acl_move_block);
    if (t != nullptr) {
        t->owner = g;
    }
    return t;
}

void _table_drop(u32 chip_id, dpl_acl_group *g)
{
    dpl_reef_acl_tcam_destroy(chip_id, g->table->map_type, g->table);
    g->table = nullptr;
}

// The built entry into its group's table: the table made if the group has
// none, a slot by priority, the row written.  A failure gives back what
// the call took.
i32 _dpl_reef_acl_fp_download_hw_table(u32 chip_id, dpl_acl_entry *e, u32 tcam_id)
{
    dpl_acl_group *g = e->group;
    const bool created = g->table == nullptr;
    if (created) {
        g->table = _table_create(chip_id, g);
        if (g->table == nullptr) {
            return SHR_E_RESOURCE;
        }
    }
    u32 index = 0, block = 0, row = 0;
    i32 rc = dpl_reef_acl_tcam_alloc_entry(chip_id, g->table, e->priority, e, &index);
    const bool taken = rc == 0;
    rc = rc != 0 ? rc : dpl_reef_acl_tcam_logic_idx_to_hw_idx(g->table, index, &block, &row);
    rc = rc != 0 ? rc : _dpl_reef_acl_fp_download_tcam_entry(chip_id, e, tcam_id, block, row);
    if (rc != 0) {
        if (taken) {
            dpl_reef_acl_tcam_release_entry(chip_id, g->table, index);
        }
        if (g->table->used == 0 && created) {
            _table_drop(chip_id, g);
        }
        return rc;
    }
    e->logical_index = index;
    e->block = block;
    e->index_in_block = row;
    e->tcam_id = tcam_id;
    return 0;
}

// The service's answer on a chip whose ACL tables the build does not
// describe: -24 with a line, before any check of the call's own.
template <auto Fn>
struct InBuild;
template <typename... A, i32 (*Fn)(u32, A...)>
struct InBuild<Fn> {
    static i32 _call(u32 chip_id, A... args)
    {
        const i32 rc = csl_reef_tab_in_build(chip_id, cib_iacl_tcam_iacl_ad, SHR_MOD_ACL, SHR_LOG_ERROR, "ACL tables");
        return rc != 0 ? rc : Fn(chip_id, args...);
    }
};
template <auto Fn>
constexpr auto _in_build = InBuild<Fn>::_call;

} // namespace

extern "C" {

i32 _dpl_reef_acl_internal_entry_install(u32 chip_id, dpl_acl_entry *e)
{
    if (e->state & ACL_ENTRY_INSTALLED) {
        return 0;
    }
    if (e->template_id == ACL_TEMPLATE_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "template not set, entry_id %u\n", e->entry_id);
        return SHR_E_CONFIG;
    }
    dpl_acl_group *g = e->group;
    if (!((g->match_support >> e->template_id) & 1)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "template not support, template_id %u entry_id %u\n", e->template_id,
                    e->entry_id);
        return SHR_E_NOT_SUPPORT;
    }
    u32 tcam_id = 0;
    i32 rc = dpl_reef_acl_template_tcam_id_get(chip_id, e->template_id, &tcam_id);
    if (rc != 0) {
        return rc;
    }
    if (g->table != nullptr && g->table->used >= g->table->size) {
        rc = dpl_reef_acl_group_expand(chip_id, g);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "tcam resouce expand faild, group_id %u  used num %u total %u \n",
                        g->group_id, g->table->used, g->table->size);
            // A table that may not grow is full.
            return rc == SHR_E_NOT_SUPPORT ? SHR_E_RESOURCE : rc;
        }
    }
    rc = _image_build(chip_id, e);
    rc = rc != 0 ? rc : _dpl_reef_acl_fp_download_hw_table(chip_id, e, tcam_id);
    _image_free(e);
    if (rc == 0) {
        e->state = ACL_ENTRY_INSTALLED;
    }
    return rc;
}

i32 _dpl_reef_acl_internal_entry_uninstall(u32 chip_id, dpl_acl_entry *e)
{
    if (!(e->state & ACL_ENTRY_INSTALLED)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry was not installed, entry_id %u\n", e->entry_id);
        return SHR_E_FAIL;
    }
    dpl_acl_group *g = e->group;
    i32 rc = csl_reef_tcam_del(chip_id, e->tcam_id, _address(e->block, e->index_in_block));
    rc = rc != 0 ? rc : dpl_reef_acl_tcam_release_entry(chip_id, g->table, e->logical_index);
    if (rc != 0) {
        return rc;
    }
    e->state &= ~ACL_ENTRY_INSTALLED;
    e->logical_index = e->block = e->index_in_block = 0;
    if (g->table->used == 0) {
        _table_drop(chip_id, g);
    } else if (g_acl_group_alloc_tcam_block_mode[chip_id] == 1 && g->table->size - g->table->used > kShrinkSlack) {
        // The entry is out; a table that cannot give blocks back keeps them.
        const i32 shrink = dpl_reef_acl_group_shrink(chip_id, g);
        if (shrink != 0 && shrink != SHR_E_RESOURCE) {
            SHR_LOG_WRN(chip_id, SHR_MOD_ACL, "group %u keeps its blocks: %s\n", g->group_id, shr_errmsg(shrink));
        }
    }
    return 0;
}

// The entry of slot `from` written at `to`, then taken from `from`: it is
// in the hardware all the time.
i32 _dpl_reef_acl_move_entry(u32 chip_id, dpl_acl_tcam_table *table, u32 from, u32 to)
{
    auto *e = static_cast<dpl_acl_entry *>(table->slots[from].entry);
    u32 fb = 0, fr = 0, tb = 0, tr = 0;
    i32 rc = dpl_reef_acl_tcam_logic_idx_to_hw_idx(table, from, &fb, &fr);
    rc = rc != 0 ? rc : dpl_reef_acl_tcam_logic_idx_to_hw_idx(table, to, &tb, &tr);
    rc = rc != 0 ? rc : _rewrite(chip_id, e, tb, tr);
    rc = rc != 0 ? rc : csl_reef_tcam_del(chip_id, e->tcam_id, _address(fb, fr));
    if (rc == 0) {
        e->logical_index = to;
        e->block = tb;
        e->index_in_block = tr;
    }
    return rc;
}

// Every entry of the source block written at the destination block.
i32 _dpl_reef_acl_move_block(u32 chip_id, const dpl_acl_tcam_move *move)
{
    u32 offset = 0;
    i32 rc = dpl_reef_acl_tcam_block_logic_idx_offset_get(chip_id, move->src, &offset);
    for (u32 i = move->first; rc == 0 && i < move->last && offset + i < move->table->size; i++) {
        auto *e = static_cast<dpl_acl_entry *>(move->table->slots[offset + i].entry);
        if (e == nullptr) {
            continue;
        }
        const u32 row = move->from_zero ? i - move->first : move->high_half ? i + move->last : i;
        rc = _rewrite(chip_id, e, move->dst_block, row);
        if (rc == 0) {
            e->block = move->dst_block;
            e->index_in_block = row;
        }
    }
    return rc;
}

i32 dpl_reef_acl_entry_install(u32 chip_id, u32 entry_id)
{
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = dpl_reef_acl_entry_get(chip_id, entry_id);
    if (e == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry not found, entry_id %u\n", entry_id);
        return SHR_E_NOT_FOUND;
    }
    return _dpl_reef_acl_internal_entry_install(chip_id, e);
}

i32 dpl_reef_acl_entry_uninstall(u32 chip_id, u32 entry_id)
{
    ACL_LOCK(chip_id);
    dpl_acl_entry *e = dpl_reef_acl_entry_get(chip_id, entry_id);
    if (e == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "entry not found, entry_id %u\n", entry_id);
        return SHR_E_NOT_FOUND;
    }
    return _dpl_reef_acl_internal_entry_uninstall(chip_id, e);
}

i32 dpl_reef_acl_template_action_support_get(u32 chip_id, u32 type, u32 mode, u32 *bitmap)
{
    const u32 fp = dpl_reef_get_fp_group_type(chip_id, type, mode);
    if (fp == DPL_ACL_FP_TYPE_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "not support group type %u mode %u\n", type, mode);
        return SHR_E_PARAM;
    }
    u32 words[DPL_ACL_ACTION_SUPPORT_WORDS] = {};
    ACL_LOCK(chip_id);
    const i32 rc = dpl_reef_acl_template_action_support_gen(chip_id, fp, words);
    if (rc == 0) {
        memcpy(bitmap, words, sizeof(words));
    }
    return rc;
}

// ---- bring-up ------------------------------------------------------------------------------

i32 dpl_reef_acl_fp_soft_init(u32 chip_id)
{
    if (g_acl_soft_inited[chip_id]) {
        return 0;
    }
    i32 rc = dpl_reef_acl_template_special_register(chip_id);
    rc = rc != 0 ? rc : dpl_lock_create(chip_id, DPL_LOCK_ACL, "ACL");
    rc = rc != 0 ? rc : dpl_reef_acl_template_init(chip_id);
    rc = rc != 0 ? rc : dpl_reef_acl_tcam_init(chip_id);
    rc = rc != 0 ? rc : dpl_reef_acl_group_init(chip_id);
    rc = rc != 0 ? rc : dpl_reef_acl_entry_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "acl soft init failed: %s\n", shr_errmsg(rc));
        return rc; // the bring-up runs the deinit, which frees what was made
    }
    g_acl_soft_inited[chip_id] = 1;
    return 0;
}

// Undoes whatever the init got done; the groups go first, with their
// entries and tables.
i32 dpl_reef_acl_fp_soft_deinit(u32 chip_id)
{
    i32 rc = 0;
    if (g_acl_group_tree[chip_id] != nullptr) {
        AclLock hold(chip_id, __func__, __LINE__);
        rc = dpl_reef_acl_group_deinit(chip_id);
    }
    dpl_reef_acl_entry_deinit(chip_id);
    dpl_reef_acl_tcam_deinit(chip_id);
    dpl_reef_acl_template_deinit(chip_id);
    dpl_lock_destroy(chip_id, DPL_LOCK_ACL);
    g_acl_soft_inited[chip_id] = 0;
    if (rc != 0) {
        SHR_LOG_WRN(chip_id, SHR_MOD_ACL, "acl groups left the hardware with errors\n");
    }
    return 0;
}

i32 dpl_reef_acl_fp_hw_init(u32 chip_id)
{
    if (csl_reef_reg_in_build(chip_id, cib_ipro_vacl_miss_cfg, SHR_MOD_ACL, SHR_LOG_WARN, "VLAN ACL registers") != 0) {
        return 0;
    }
    return csl_reef_reg_set_u32(chip_id, CIB_ID(cib_ipro_vacl_miss_cfg, 0), kVaclMissCfg);
}

extern const reef_acl_dispatch_t reef_acl_dispatch = {
    .group_create = _in_build<dpl_reef_acl_group_create>,
    .group_set = _in_build<dpl_reef_acl_group_set>,
    .group_get = _in_build<dpl_reef_acl_group_info_get>,
    .group_traverse = _in_build<dpl_reef_acl_group_traverse>,
    .group_destroy = _in_build<dpl_reef_acl_group_destroy>,
    .template_config_set = _in_build<dpl_reef_acl_control_lookup_type_set>,
    .template_config_get = _in_build<dpl_reef_acl_control_lookup_type_get>,
    .action_support_get = _in_build<dpl_reef_acl_template_action_support_get>,
    .match_support_get = _in_build<dpl_reef_acl_template_match_type_support_gen>,
    .group_install = _in_build<dpl_reef_acl_group_install>,
    .group_uninstall = _in_build<dpl_reef_acl_group_uninstall>,
    .entry_create = _in_build<dpl_reef_acl_entry_create>,
    .entry_template_set = _in_build<dpl_reef_acl_entry_template_set>,
    .entry_template_get = _in_build<dpl_reef_acl_entry_template_get>,
    .entry_based_set = _in_build<dpl_reef_acl_entry_based_mode_set>,
    .entry_based_get = _in_build<dpl_reef_acl_entry_based_mode_get>,
    .entry_destroy = _in_build<dpl_reef_acl_entry_destroy>,
    .entry_install = _in_build<dpl_reef_acl_entry_install>,
    .entry_uninstall = _in_build<dpl_reef_acl_entry_uninstall>,
    .entry_match_field_set = _in_build<dpl_reef_acl_entry_match_field_add>,
    .entry_match_field_remove = _in_build<dpl_reef_acl_entry_match_field_remove>,
    .entry_action_set = _in_build<dpl_reef_acl_entry_action_add>,
    .entry_action_remove = _in_build<dpl_reef_acl_entry_action_remove>,
    .entry_get = _in_build<dpl_reef_acl_entry_info_get>,
    .entry_traverse = _in_build<dpl_reef_acl_entry_traverse>,
    .entry_traverse_in_group = _in_build<dpl_reef_acl_entry_traverse_in_group>,
    .entry_pri_set = _in_build<dpl_reef_acl_entry_pri_set>,
    .port_control_set = _in_build<dpl_reef_acl_control_port_control_set>,
    .port_control_get = _in_build<dpl_reef_acl_control_port_control_get>,
    .vlan_control_set = _in_build<dpl_reef_acl_control_vlan_control_set>,
    .vlan_control_get = _in_build<dpl_reef_acl_control_vlan_control_get>,
    .global_cfg_set = _in_build<dpl_reef_acl_control_global_cfg_set>,
    .global_cfg_get = _in_build<dpl_reef_acl_control_global_cfg_get>,
};

} // extern "C"
