// The replication engine: bring-up, the "MCC" mutex, the table writes, and
// the replication trees, each a root with a chain of leaves of its own.
//
// The chain operations write in an order in which the chip, walking a
// root for rep_num leaves and stopping at a leaf that is not valid or has
// no successor, only ever makes copies of the old or the new set: a new
// leaf is valid before anything leads to it beyond the root's count, and a
// leaf is cleared only after the chain no longer leads to it.
#include <cstring>

#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/mcc/dpl_reef_mcc_int.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_mcc.h"

extern "C" {
xsal_mutex_t g_dpl_reef_mcc_lock[SHR_MAX_CHIPS];
dpl_reef_mcc_table_info *g_mcc_table_info[SHR_MAX_CHIPS];
}

namespace {

u32 g_dpl_reef_mcc_soft_init[SHR_MAX_CHIPS];

const char *const kRootRange = "mrt_root_index %d is out of range,max %d\n";
const char *const kLeafRange = "mleaf_index %d is out of range,max %d\n";

template <typename Entry>
i32 _logged(u32 chip_id, const char *table, u32 index, i32 rc)
{
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "write %s %u fail, ret %d\n", table, index, (int)rc);
    }
    return rc;
}

// A root id of the chip: 0, or -4 with the line.
i32 _root_id_check(u32 chip_id, u32 mrt_index)
{
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (lim == nullptr) {
        return SHR_E_PARAM;
    }
    if (mrt_index > lim->mrt_id_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, kRootRange, (int)mrt_index, (int)lim->mrt_id_max);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _leaf_id_check(u32 chip_id, u32 leaf)
{
    if (leaf >= DPL_MCC_MLIB_LEAVES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, kLeafRange, (int)leaf, (int)DPL_MCC_MLIB_LEAVES - 1);
        return SHR_E_PARAM;
    }
    return 0;
}

cib_mcc_mrt_t _root_entry(const mrt_root_node &r)
{
    cib_mcc_mrt_t e{};
    e.mrt_vld = static_cast<u8>(r.mrt_vld);
    e.stat_en = static_cast<u8>(r.stat_en);
    e.udp_dport_en = static_cast<u8>(r.udp_dport_en);
    e.leafid_indx = r.leafid_indx;
    e.rep_num = r.rep_num;
    return e;
}

cib_mcc_mlib_t _leaf_entry(const mleaf_node &l)
{
    cib_mcc_mlib_t e{};
    e.mlib_vld = static_cast<u8>(l.mlib_vld);
    e.next_vld = static_cast<u8>(l.next_vld);
    e.leafid_next_ptr = l.next_leaf;
    e.udp_dport_en = static_cast<u8>(l.udp_dport_en);
    return e;
}

// A leaf record of a root's chain, or NULL.
mleaf_node *&_leaf_slot(u32 chip_id, u32 leaf)
{
    return g_mcc_table_info[chip_id]->leaf[leaf];
}

// The record of a root id or of a leaf, or NULL (also for an id beyond the
// records and a chip without records).
mrt_root_node *_root_rec(u32 chip_id, u32 mrt_index)
{
    const dpl_reef_mcc_table_info *t = chip_id < SHR_MAX_CHIPS ? g_mcc_table_info[chip_id] : nullptr;
    return t != nullptr && mrt_index <= DPL_MCC_MRT_IDS ? t->root[mrt_index] : nullptr;
}

mleaf_node *_leaf_rec(u32 chip_id, u32 leaf)
{
    const dpl_reef_mcc_table_info *t = chip_id < SHR_MAX_CHIPS ? g_mcc_table_info[chip_id] : nullptr;
    return t != nullptr && leaf < DPL_MCC_MLIB_LEAVES ? t->leaf[leaf] : nullptr;
}

// A record copied out under the lock: -20 with `null_line` for a NULL out
// pointer, the id's check, -7 when the id holds no record.
template <typename Rec, i32 (*Check)(u32, u32), Rec *(*Get)(u32, u32)>
i32 _record_get(u32 chip_id, u32 id, Rec *out, const char *null_line)
{
    if (out == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "%s", null_line);
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    rc = rc != 0 ? rc : Check(chip_id, id);
    if (rc != 0) {
        return rc;
    }
    MccLock hold(chip_id);
    const Rec *rec = Get(chip_id, id);
    if (rec == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    *out = *rec;
    return 0;
}

void _leaf_free(u32 chip_id, u32 leaf)
{
    xsal_mem_free(_leaf_slot(chip_id, leaf));
    _leaf_slot(chip_id, leaf) = nullptr;
    dpl_reef_mcc_mlib_node_unuse_set(chip_id, leaf);
}

// Leaves for a new root: the lowest free ids, chained in that order.  When
// they run out, every leaf taken is given back.
i32 _dpl_reef_mcc_mlib_table_alloc(u32 chip_id, mrt_root_node *root)
{
    u32 prev = 0;
    for (u32 i = 0; i < root->rep_num; i++) {
        u32 leaf = 0;
        mleaf_node *rec = nullptr;
        if (dpl_reef_mcc_mlib_node_get(chip_id, &leaf) == 0) {
            rec = static_cast<mleaf_node *>(xsal_malloc(sizeof(mleaf_node), "mlib_table_alloc", SHR_MOD_MCC));
        }
        if (rec == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC,
                        "i %d first_mlib_node_flag %d copy_number %d copy_req->copy_number %d "
                        "mrt_root_node->mrt_index %d",
                        (int)i, i > 0 ? 1 : 0, (int)i, (int)root->rep_num, (int)root->mrt_index);
            for (u32 l = root->leafid_indx; i > 0; i--) {
                const mleaf_node *taken = _leaf_slot(chip_id, l);
                const u32 next = taken->next_leaf;
                _leaf_free(chip_id, l);
                l = next;
            }
            return SHR_E_RESOURCE;
        }
        *rec = mleaf_node{};
        rec->mlib_vld = 1;
        rec->leaf_index = static_cast<u16>(leaf);
        rec->mrt_index = root->mrt_index;
        _leaf_slot(chip_id, leaf) = rec;
        dpl_reef_mcc_mlib_node_use_set(chip_id, leaf);
        if (i == 0) {
            root->leafid_indx = static_cast<u16>(leaf);
        } else {
            mleaf_node *p = _leaf_slot(chip_id, prev);
            p->next_vld = 1;
            p->next_leaf = static_cast<u16>(leaf);
            rec->prev_leaf = static_cast<u16>(prev);
        }
        root->last_leaf = static_cast<u16>(leaf);
        prev = leaf;
    }
    return 0;
}

// The root with a full mask, then every leaf along its chain.
i32 _dpl_reef_mcc_install_all_alloc(u32 chip_id, const mrt_root_node *root)
{
    i32 rc = _dpl_reef_mcc_mrt_write(chip_id, root->mrt_index, _root_entry(*root), {});
    u32 leaf = root->leafid_indx;
    for (u32 i = 0; rc == 0 && i < root->rep_num; i++) {
        const mleaf_node *rec = _leaf_slot(chip_id, leaf);
        rc = _dpl_reef_mcc_mlib_write(chip_id, leaf, _leaf_entry(*rec), {});
        leaf = rec->next_leaf;
    }
    return rc;
}

// Every leaf of a root, then the root, cleared and given back: the leaves
// as zeros along the chain, then the root as zeros; the root's record and
// id go only when its write succeeded.
i32 _dpl_reef_mcc_del_all_alloc(u32 chip_id, u32 mrt_index)
{
    MccLock hold(chip_id);
    mrt_root_node root{};
    i32 rc = dpl_reef_mcc_get_mrt_root_node(chip_id, mrt_index, &root);
    if (rc != 0) {
        return rc;
    }
    u32 leaf = root.leafid_indx;
    for (u32 i = 0; i < root.rep_num; i++) {
        const mleaf_node *rec = _leaf_slot(chip_id, leaf);
        if (rec == nullptr) {
            break;
        }
        const u32 next = rec->next_leaf;
        _leaf_free(chip_id, leaf);
        rc = _dpl_reef_mcc_mlib_write(chip_id, leaf, cib_mcc_mlib_t{}, {});
        if (rc != 0) {
            return rc;
        }
        leaf = next;
    }
    rc = _dpl_reef_mcc_mrt_write(chip_id, mrt_index, cib_mcc_mrt_t{}, {});
    if (rc == 0) {
        xsal_mem_free(g_mcc_table_info[chip_id]->root[mrt_index]);
        g_mcc_table_info[chip_id]->root[mrt_index] = nullptr;
        dpl_reef_mcc_mrt_node_unuse_set(chip_id, mrt_index);
    }
    return rc;
}

} // namespace

// ---- shared with the shared lists -----------------------------------------------------

i32 _dpl_reef_mcc_chip_check(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS || shr_chip_valid_get(chip_id) == 0) {
        return SHR_E_UNIT;
    }
    const i32 rc = csl_reef_tab_in_build(chip_id, cib_mcc_mrt, SHR_MOD_MCC, SHR_LOG_ERROR, "replication tables");
    if (rc != 0) {
        return rc;
    }
    if (g_mcc_table_info[chip_id] == nullptr || g_dpl_reef_mcc_lock[chip_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mcc is not initialized\n");
        return SHR_E_INIT;
    }
    return 0;
}

i32 _dpl_reef_mcc_mrt_write(u32 chip_id, u32 mrt_index, cib_mcc_mrt_t entry, McMask mask)
{
    return _logged<cib_mcc_mrt_t>(chip_id, "mcc_mrt", mrt_index,
                                  csl_reef_cib_mcc_mrt_set(chip_id, 0, mrt_index, &entry, mask.bits));
}

i32 _dpl_reef_mcc_mlib_write(u32 chip_id, u32 leaf, cib_mcc_mlib_t entry, McMask mask)
{
    return _logged<cib_mcc_mlib_t>(chip_id, "mcc_mlib", leaf, csl_reef_cib_mcc_mlib_set(chip_id, 0, leaf, &entry, mask.bits));
}

i32 _dpl_reef_mcc_elb_write(u32 chip_id, u32 leaf, cib_epro_elb_table_t entry)
{
    McMask all{};
    return _logged<cib_epro_elb_table_t>(chip_id, "epro_elb_table", leaf,
                                         csl_reef_cib_epro_elb_table_set(chip_id, 0, leaf, &entry, all.bits));
}

i32 _dpl_reef_mcc_leaf_clear(u32 chip_id, u32 leaf)
{
    const i32 rc = _dpl_reef_mcc_mlib_write(chip_id, leaf, cib_mcc_mlib_t{}, {});
    return rc != 0 ? rc : _dpl_reef_mcc_elb_write(chip_id, leaf, cib_epro_elb_table_t{});
}

extern "C" {

i32 dpl_reef_mcc_chip_check(u32 chip_id)
{
    return _dpl_reef_mcc_chip_check(chip_id);
}

// ---- the lock -------------------------------------------------------------------------------

i32 dpl_reef_mcc_lock(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS || g_dpl_reef_mcc_lock[chip_id] == nullptr) {
        return SHR_E_INIT;
    }
    return xsal_mutex_lock(g_dpl_reef_mcc_lock[chip_id]) == 0 ? 0 : SHR_E_INTERNAL;
}

i32 dpl_reef_mcc_unlock(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS || g_dpl_reef_mcc_lock[chip_id] == nullptr) {
        return SHR_E_INIT;
    }
    return xsal_mutex_unlock(g_dpl_reef_mcc_lock[chip_id]) == 0 ? 0 : SHR_E_INTERNAL;
}

// ---- bring-up -------------------------------------------------------------------------------

i32 dpl_reef_mcc_soft_init(u32 chip_id)
{
    if (g_dpl_reef_mcc_soft_init[chip_id]) {
        return 0;
    }
    if (g_dpl_reef_mcc_lock[chip_id] == nullptr) {
        g_dpl_reef_mcc_lock[chip_id] = xsal_mutex_create("MCC");
        if (g_dpl_reef_mcc_lock[chip_id] == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "create mcc lock fail\n");
            return SHR_E_INIT;
        }
    }
    if (g_mcc_table_info[chip_id] == nullptr) {
        g_mcc_table_info[chip_id] = static_cast<dpl_reef_mcc_table_info *>(
            xsal_malloc(sizeof(dpl_reef_mcc_table_info), "mcc_control", SHR_MOD_MCC));
        if (g_mcc_table_info[chip_id] == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mcc_control malloc fail\n");
            return SHR_E_MEMORY; // the bring-up runs the deinit, which frees what was made
        }
        memset(g_mcc_table_info[chip_id], 0, sizeof(dpl_reef_mcc_table_info));
    }
    i32 rc = dpl_reef_mcc_mlib_group_init(chip_id);
    rc = rc != 0 ? rc : dpl_reef_mcc_mrt_group_init(chip_id);
    rc = rc != 0 ? rc : dpl_reef_mcc_alloc_init(chip_id, 1);
    if (rc == 0) {
        g_dpl_reef_mcc_soft_init[chip_id] = 1;
    }
    return rc;
}

// Undoes whatever the init got done; the chip's tables are left as they
// are.
i32 dpl_reef_mcc_soft_deinit(u32 chip_id)
{
    dpl_reef_mcc_alloc_deinit(chip_id);
    dpl_reef_mcc_mrt_group_deinit(chip_id);
    dpl_reef_mcc_mlib_group_deinit(chip_id);
    dpl_reef_mcc_table_info *info = g_mcc_table_info[chip_id];
    if (info != nullptr) {
        for (mrt_root_node *r : info->root) {
            xsal_mem_free(r);
        }
        for (mleaf_node *l : info->leaf) {
            xsal_mem_free(l);
        }
        xsal_mem_free(info);
        g_mcc_table_info[chip_id] = nullptr;
    }
    if (g_dpl_reef_mcc_lock[chip_id] != nullptr) {
        xsal_mutex_destroy(g_dpl_reef_mcc_lock[chip_id]);
        g_dpl_reef_mcc_lock[chip_id] = nullptr;
    }
    g_dpl_reef_mcc_soft_init[chip_id] = 0;
    return 0;
}

i32 dpl_reef_mcc_hw_init(u32 chip_id)
{
    if (csl_reef_tab_in_build(chip_id, cib_mcc_mrt, SHR_MOD_MCC, SHR_LOG_WARN, "replication tables") != 0) {
        // Nothing of the engine can be programmed: the chip keeps what its
        // reset gave it, and the calls of the engine answer -24.
        return 0;
    }
    return dpl_atolreef_mcc_hw_init(chip_id);
}

i32 dpl_reef_mcc_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

// ---- replication trees ------------------------------------------------------------------------

i32 dpl_reef_mcc_alloc_copy_resource(u32 chip_id, copy_req *req, mrt_root_node *root)
{
    if (req == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r copy_req is NULL \n\r");
        return SHR_E_NULL_PTR;
    }
    if (root == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r mrt_root_node is NULL \n\r");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    const dpl_reef_mcc_limits *lim = dpl_reef_mcc_limits_get(chip_id);
    if (req->copy_number < 1 || req->copy_number > DPL_MCC_COPY_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "copy_number %d is out of range,min %d max %d\n", (int)req->copy_number, 1,
                    (int)DPL_MCC_COPY_MAX);
        return SHR_E_PARAM;
    }
    if (req->type >= MCC_TYPE_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "table type %u is out of range,max %u\n", req->type, MCC_TYPE_COUNT - 1);
        return SHR_E_PARAM;
    }
    MccLock hold(chip_id);
    u32 mid = 0;
    const mcc_mrt_req r{req->type, req->use_mid, req->mid};
    rc = dpl_reef_mcc_mrt_node_get(chip_id, &r, &mid);
    if (rc != 0) {
        return rc;
    }
    if (req->copy_number >= lim->copy_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "max_index %d copy_req->copy_number %d\n", (int)lim->copy_max - 1,
                    (int)req->copy_number);
        return SHR_E_PARAM;
    }
    auto *rec = static_cast<mrt_root_node *>(xsal_malloc(sizeof(mrt_root_node), "mrt_root_table", SHR_MOD_MCC));
    if (rec == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mrt_table_data is NULL\n");
        return SHR_E_MEMORY;
    }
    *rec = mrt_root_node{};
    rec->mrt_vld = 1;
    rec->rep_num = static_cast<u16>(req->copy_number);
    rec->mrt_index = static_cast<u16>(mid);
    rec->type = req->type;
    rc = _dpl_reef_mcc_mlib_table_alloc(chip_id, rec);
    if (rc != 0) {
        xsal_mem_free(rec);
        return rc;
    }
    g_mcc_table_info[chip_id]->root[mid] = rec;
    dpl_reef_mcc_mrt_node_use_set(chip_id, mid);
    *root = *rec;
    rc = _dpl_reef_mcc_install_all_alloc(chip_id, rec);
    if (rc != 0) {
        _dpl_reef_mcc_del_all_alloc(chip_id, mid);
    }
    return rc;
}

i32 dpl_reef_mcc_resource_alloc(u32 chip_id, u32 type, u32 *mid, const u32 *req)
{
    if (mid == nullptr || req == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r copy_req is NULL \n\r");
        return SHR_E_NULL_PTR;
    }
    copy_req r{type, req[0], *mid, req[1]};
    mrt_root_node root{};
    const i32 rc = dpl_reef_mcc_alloc_copy_resource(chip_id, &r, &root);
    if (rc == 0) {
        *mid = root.mrt_index;
    }
    return rc;
}

i32 dpl_reef_mcc_increment_copy(u32 chip_id, u32 mrt_index, u32 *leaf_index)
{
    if (leaf_index == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r mleaf_index is NULL \n\r");
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    rc = rc != 0 ? rc : _root_id_check(chip_id, mrt_index);
    if (rc != 0) {
        return rc;
    }
    MccLock hold(chip_id);
    mrt_root_node *root = _root_rec(chip_id, mrt_index);
    if (root == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    mleaf_node *tail = root->rep_num > 0 ? _leaf_slot(chip_id, root->last_leaf) : nullptr;
    if (tail == nullptr || _leaf_slot(chip_id, root->leafid_indx) == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mrt %u has no leaf\n", mrt_index);
        return SHR_E_PARAM;
    }
    // Every leaf of the table may be taken here.
    u32 leaf = 0;
    for (leaf = 0; leaf < DPL_MCC_MLIB_LEAVES && dpl_reef_mcc_mlib_node_use_status_get(chip_id, leaf) == 1; leaf++) {
    }
    if (leaf == DPL_MCC_MLIB_LEAVES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mlib node is full\n");
        return SHR_E_RESOURCE;
    }
    auto *rec = static_cast<mleaf_node *>(xsal_malloc(sizeof(mleaf_node), "increment_copy", SHR_MOD_MCC));
    if (rec == nullptr) {
        return SHR_E_MEMORY;
    }
    *rec = mleaf_node{};
    rec->mlib_vld = 1;
    rec->prev_leaf = root->last_leaf;
    rec->leaf_index = static_cast<u16>(leaf);
    rec->mrt_index = static_cast<u16>(mrt_index);
    _leaf_slot(chip_id, leaf) = rec;
    dpl_reef_mcc_mlib_node_use_set(chip_id, leaf);
    tail->next_leaf = static_cast<u16>(leaf);
    tail->next_vld = 1;
    root->last_leaf = static_cast<u16>(leaf);
    root->rep_num++;
    *leaf_index = leaf;
    // The count first: the chip stops at the old tail, which has no
    // successor yet; then the link; then the leaf.
    rc = _dpl_reef_mcc_mrt_write(chip_id, mrt_index, _root_entry(*root), {cib_mcc_mrt__rep_num});
    rc = rc != 0 ? rc
                 : _dpl_reef_mcc_mlib_write(chip_id, tail->leaf_index, _leaf_entry(*tail),
                                            {cib_mcc_mlib__next_vld, cib_mcc_mlib__leafid_next_ptr});
    return rc != 0 ? rc : _dpl_reef_mcc_mlib_write(chip_id, leaf, _leaf_entry(*rec), {});
}

i32 dpl_reef_mcc_decrement_copy(u32 chip_id, u32 mrt_index, u32 leaf_index)
{
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    rc = rc != 0 ? rc : _root_id_check(chip_id, mrt_index);
    rc = rc != 0 ? rc : _leaf_id_check(chip_id, leaf_index);
    if (rc != 0) {
        return rc;
    }
    MccLock hold(chip_id);
    mrt_root_node *root = _root_rec(chip_id, mrt_index);
    if (root == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    mleaf_node *leaf = _leaf_slot(chip_id, leaf_index);
    if (_leaf_slot(chip_id, root->leafid_indx) == nullptr || leaf == nullptr || leaf->mrt_index != mrt_index) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mleaf %u is not a leaf of mrt %u\n", leaf_index, mrt_index);
        return SHR_E_PARAM;
    }
    const bool first = root->leafid_indx == leaf_index;
    if (root->rep_num == 1) {
        if (!first) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mleaf %u is not a leaf of mrt %u\n", leaf_index, mrt_index);
            return SHR_E_PARAM;
        }
        return _dpl_reef_mcc_del_all_alloc(chip_id, mrt_index);
    }
    if (first) {
        mleaf_node *succ = _leaf_slot(chip_id, leaf->next_leaf);
        root->leafid_indx = leaf->next_leaf;
        succ->prev_leaf = 0;
        rc = _dpl_reef_mcc_mrt_write(chip_id, mrt_index, _root_entry(*root), {cib_mcc_mrt__leafid_indx});
    } else if (root->last_leaf == leaf_index) {
        mleaf_node *pred = _leaf_slot(chip_id, leaf->prev_leaf);
        pred->next_vld = 0;
        pred->next_leaf = 0;
        root->last_leaf = pred->leaf_index;
        rc = _dpl_reef_mcc_mlib_write(chip_id, pred->leaf_index, _leaf_entry(*pred),
                                      {cib_mcc_mlib__next_vld, cib_mcc_mlib__leafid_next_ptr});
    } else {
        mleaf_node *pred = _leaf_slot(chip_id, leaf->prev_leaf);
        mleaf_node *succ = _leaf_slot(chip_id, leaf->next_leaf);
        pred->next_leaf = succ->leaf_index;
        succ->prev_leaf = pred->leaf_index;
        rc = _dpl_reef_mcc_mlib_write(chip_id, pred->leaf_index, _leaf_entry(*pred), {cib_mcc_mlib__leafid_next_ptr});
    }
    if (rc != 0) {
        return rc;
    }
    root->rep_num--;
    rc = _dpl_reef_mcc_mrt_write(chip_id, mrt_index, _root_entry(*root), {cib_mcc_mrt__rep_num});
    if (rc != 0) {
        return rc;
    }
    // The chain no longer leads to the leaf: now it may go.
    rc = _dpl_reef_mcc_mlib_write(chip_id, leaf_index, cib_mcc_mlib_t{}, {});
    _leaf_free(chip_id, leaf_index);
    return rc;
}

i32 dpl_reef_mcc_del_all_copy(u32 chip_id, u32 mrt_index)
{
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    if (mrt_index >= DPL_MCC_MRT_IDS) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, kRootRange, (int)mrt_index, (int)DPL_MCC_MRT_IDS - 1);
        return SHR_E_PARAM;
    }
    return _dpl_reef_mcc_del_all_alloc(chip_id, mrt_index);
}

i32 dpl_reef_mcc_get_mrt_root_node(u32 chip_id, u32 mrt_index, mrt_root_node *root)
{
    return _record_get<mrt_root_node, _root_id_check, _root_rec>(chip_id, mrt_index, root,
                                                                  "\n\r mrt_root_node is NULL \n\r");
}

i32 dpl_reef_mcc_get_mlib_leaf_node(u32 chip_id, u32 leaf_index, mleaf_node *leaf)
{
    return _record_get<mleaf_node, _leaf_id_check, _leaf_rec>(chip_id, leaf_index, leaf,
                                                               "\n\r mleaf_node is NULL \n\r");
}

i32 dpl_reef_mcc_mrt_mlib_tree_traverse(u32 chip_id, dpl_reef_mcc_tree_cb fn, void *user)
{
    if (fn == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const i32 check = _dpl_reef_mcc_chip_check(chip_id);
    if (check != 0) {
        return check;
    }
    MccLock hold(chip_id);
    i32 rc = 0;
    for (const mrt_root_node *root : g_mcc_table_info[chip_id]->root) {
        if (root == nullptr) {
            continue;
        }
        const mleaf_node *leaf = root->rep_num > 0 ? _leaf_slot(chip_id, root->leafid_indx) : nullptr;
        if (leaf == nullptr) {
            rc |= fn(chip_id, root, nullptr, user);
        }
        for (u32 i = 0; leaf != nullptr && i < root->rep_num; i++) {
            rc |= fn(chip_id, root, leaf, user);
            leaf = leaf->next_vld ? _leaf_slot(chip_id, leaf->next_leaf) : nullptr;
        }
    }
    return rc;
}

i32 dpl_reef_mcc_mrt_hw_walk(u32 chip_id, u32 mrt_index, dpl_reef_mcc_hw_leaf_cb fn, void *user, u32 *valid)
{
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    rc = rc != 0 ? rc : _root_id_check(chip_id, mrt_index);
    if (rc != 0) {
        return rc;
    }
    MccLock hold(chip_id);
    cib_mcc_mrt_t root{};
    rc = csl_reef_cib_mcc_mrt_get(chip_id, 0, mrt_index, &root);
    if (valid != nullptr) {
        *valid = root.mrt_vld;
    }
    u32 leaf = root.leafid_indx;
    for (u32 i = 0; rc == 0 && root.mrt_vld && i < root.rep_num; i++) {
        cib_mcc_mlib_t l{};
        cib_epro_elb_table_t e{};
        rc = csl_reef_cib_mcc_mlib_get(chip_id, 0, leaf, &l);
        rc = rc != 0 ? rc : csl_reef_cib_epro_elb_table_get(chip_id, 0, leaf, &e);
        if (rc != 0 || l.mlib_vld == 0) {
            break;
        }
        const mcc_port_config edit{e.vlanprichg, e.vlanupdate, e.ttldecrease, e.mcttl,
                                   e.ttlcheck,   e.tagnum,     e.stack,       e.elbtype,
                                   e.prunedisable, e.dpid_dvp_index_mirror_carid, e.aib1, e.ovlan_rspan_vlan,
                                   e.ivlan_rspan_en, e.oport_inf_causeid};
        rc = fn != nullptr ? fn(chip_id, leaf, &edit, user) : 0;
        if (l.next_vld == 0) {
            break;
        }
        leaf = l.leafid_next_ptr;
    }
    return rc;
}

// ---- registers ------------------------------------------------------------------------------

namespace {

// The field of an mcc register, or NULL with the line.
const cib_field_info *_field_of(u32 chip_id, u32 reg_id, const char *field)
{
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
    for (u32 i = 0; reg != nullptr && i < reg->field_count; i++) {
        if (strcmp(reg->fields[i].name, field) == 0) {
            return &reg->fields[i];
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "register %u has no field %s\n", reg_id, field);
    return nullptr;
}

u32 _width_max(const cib_field_info &f)
{
    return f.width >= 32 ? 0xFFFFFFFFu : (1u << f.width) - 1;
}

} // namespace

i32 dpl_reef_mcc_reg_field_get(u32 chip_id, u32 reg_id, const char *field, u32 *value)
{
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    const cib_field_info *f = _field_of(chip_id, reg_id, field);
    if (f == nullptr || value == nullptr) {
        return f == nullptr ? SHR_E_NOT_SUPPORT : SHR_E_NULL_PTR;
    }
    u32 word = 0;
    rc = csl_reef_reg_get_u32(chip_id, CIB_ID(reg_id, 0), &word);
    *value = (word >> f->low_bit) & _width_max(*f);
    return rc;
}

i32 dpl_reef_mcc_reg_field_set(u32 chip_id, u32 reg_id, const char *field, u32 value)
{
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    const cib_field_info *f = _field_of(chip_id, reg_id, field);
    if (f == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    if (value > _width_max(*f)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "input %d max %d\n\r", (int)value, (int)_width_max(*f));
        return SHR_E_PARAM;
    }
    MccLock hold(chip_id);
    CslRegLock reg_lock(chip_id, cib_module_mcc);
    u32 word = 0;
    rc = csl_reef_reg_get_u32(chip_id, CIB_ID(reg_id, 0), &word);
    if (rc == 0) {
        const u32 mask = _width_max(*f) << f->low_bit;
        rc = csl_reef_reg_set_u32(chip_id, CIB_ID(reg_id, 0), (word & ~mask) | (value << f->low_bit));
    }
    return rc;
}

i32 dpl_reef_mcc_mrt_count_set(u32 chip_id, u32 mrt_index, u32 what, u32 enable)
{
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    rc = rc != 0 ? rc : _root_id_check(chip_id, mrt_index);
    if (rc != 0) {
        return rc;
    }
    if (what > MCC_COUNT_RTP || enable > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "count %u value %u is wrong\n", what, enable);
        return SHR_E_PARAM;
    }
    MccLock hold(chip_id);
    mrt_root_node *root = _root_rec(chip_id, mrt_index);
    mrt_group *group = dpl_reef_mcc_mrt_group_get(chip_id, mrt_index);
    if (root == nullptr && group == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mrt %u is not in use\n", mrt_index);
        return SHR_E_NOT_FOUND;
    }
    if (root != nullptr) {
        (what == MCC_COUNT_STATS ? root->stat_en : root->udp_dport_en) = enable;
    }
    if (group != nullptr) {
        (what == MCC_COUNT_STATS ? group->stat_en : group->udp_dport_en) = static_cast<u8>(enable);
    }
    cib_mcc_mrt_t e{};
    e.stat_en = static_cast<u8>(enable);
    e.udp_dport_en = static_cast<u8>(enable);
    return _dpl_reef_mcc_mrt_write(chip_id, mrt_index, e,
                                   {what == MCC_COUNT_STATS ? cib_mcc_mrt__stat_en : cib_mcc_mrt__udp_dport_en});
}

} // extern "C"
