// The shared lists of L2 multicast: groups whose members are kept sorted by
// key, on chains of leaves shared between groups whose sorted member
// sequences are contiguous parts of one another.
//
// A group (mrt_group) keeps its members, with the edit each one wants, in
// a tree of its own.  A chain (mlib_group) is a run of leaves in key order;
// a group's root covers `rep_cnt` of them from `first_mlib_id`, and each
// leaf counts the roots that cover it (`use_cnt`).  Every change of a group
// runs the same three steps:
//
// 1. build: the chain that is to hold the group (one that agrees, found by
//    the key texts, or a new one) gets the leaves it lacks, written tail
//    first, each complete before anything links to it; new leaves only
//    ever go before the first or after the last leaf of a chain, where no
//    root's count reaches;
// 2. switch: one write of the group's root;
// 3. release: the old range loses its count; leaves that no root covers
//    any more are unlinked (their neighbours relinked, which no root
//    covering them can see) and then cleared and given back.
//
// So the chip, walking any root for its count, only ever sees complete
// chains of the old or the new member set.
#include <cstdio>
#include <cstring>
#include <vector>

#include "dpl/reef/mcc/dpl_reef_mcc_int.h"

extern "C" {
mlib_group *g_mcc_mlist_group_head[SHR_MAX_CHIPS];
u32 g_mcc_mlist_group_num[SHR_MAX_CHIPS];
mrt_group *g_mrt_group_head[SHR_MAX_CHIPS];
u32 g_mrt_group_num[SHR_MAX_CHIPS];
u32 g_compress_cnt[SHR_MAX_CHIPS];
u32 g_compress_cnt_old[SHR_MAX_CHIPS];

int dpl_reef_mcc_mlib_entry_avl_cmp_func(const void *a, const void *b, void *param);
}

namespace {

// The chain node of each leaf of the shared lists.
mlib_node **g_mcc_leaf_node[SHR_MAX_CHIPS];
bool g_mrt_lists_inited[SHR_MAX_CHIPS];

// Passes of compression, merges of one pass.
constexpr u32 kCompressPasses = 999;
constexpr u32 kCompressMerges = 100;

const char *const kFull = "\n\r mlib node is full \n\r";

u16 _key(const mlib_node *n)
{
    return n->port_config.oport_inf_causeid;
}

// ---- trees ----------------------------------------------------------------------------------

void *_chip_param(u32 chip_id)
{
    return reinterpret_cast<void *>(static_cast<uintptr_t>(chip_id));
}

u32 _param_chip(void *param)
{
    return static_cast<u32>(reinterpret_cast<uintptr_t>(param));
}

shr_avl_table *_tree_new(u32 chip_id)
{
    return shr_avl_create(dpl_reef_mcc_mlib_entry_avl_cmp_func, _chip_param(chip_id), nullptr);
}

mlib_node *_tree_find(shr_avl_table *t, u16 key)
{
    mlib_node probe{};
    probe.port_config.oport_inf_causeid = key;
    return static_cast<mlib_node *>(shr_avl_find(t, &probe));
}

// The nodes of a tree in key order.
std::vector<mlib_node *> _nodes(shr_avl_table *t)
{
    std::vector<mlib_node *> v;
    v.reserve(t->count);
    shr_avl_traverser tr;
    for (void *p = shr_avl_t_first(&tr, t); p != nullptr; p = shr_avl_t_next(&tr)) {
        v.push_back(static_cast<mlib_node *>(p));
    }
    return v;
}

// The neighbours of a node in its tree.
void _neighbours(shr_avl_table *t, mlib_node *n, mlib_node **pred, mlib_node **succ)
{
    shr_avl_traverser a, b;
    shr_avl_t_find(&a, t, n);
    shr_avl_t_copy(&b, &a);
    *pred = static_cast<mlib_node *>(shr_avl_t_prev(&a));
    *succ = static_cast<mlib_node *>(shr_avl_t_next(&b));
}

// Inserts a new record; -2 without memory.
i32 _tree_insert(shr_avl_table *t, mlib_node *n)
{
    void **slot = shr_avl_probe(t, n);
    return slot != nullptr && *slot == n ? 0 : SHR_E_MEMORY;
}

// The key text of a tree: "0x%x," per key, in order; -11 when it does not
// fit.
i32 _text_of(u32 chip_id, shr_avl_table *t, char *buf, const char *too_long)
{
    size_t len = 0;
    buf[0] = '\0';
    for (const mlib_node *n : _nodes(t)) {
        char item[16];
        const int k = snprintf(item, sizeof(item), "0x%x,", _key(n));
        if (len + static_cast<size_t>(k) >= DPL_MCC_NODE_BUF) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "%s", too_long);
            return SHR_E_FAIL;
        }
        memcpy(buf + len, item, static_cast<size_t>(k) + 1);
        len += static_cast<size_t>(k);
    }
    return 0;
}

// ---- edits ----------------------------------------------------------------------------------

cib_epro_elb_table_t _elb_of(const mcc_port_config &c)
{
    cib_epro_elb_table_t e{};
    e.dpid_dvp_index_mirror_carid = c.dpid_dvp_index_mirror_carid;
    e.aib1 = c.aib1;
    e.valid = 1;
    e.vlanprichg = c.vlanprichg;
    e.vlanupdate = c.vlanupdate;
    e.ttldecrease = c.ttldecrease;
    e.mcttl = c.mcttl;
    e.ttlcheck = c.ttlcheck;
    e.tagnum = c.tagnum;
    e.stack = c.stack;
    e.elbtype = c.elbtype;
    e.prunedisable = c.prunedisable;
    e.ovlan_rspan_vlan = c.ovlan_rspan_vlan;
    e.ivlan_rspan_en = c.ivlan_rspan_en;
    e.oport_inf_causeid = static_cast<u16>(c.oport_inf_causeid & 0xFFF);
    e.mirror_sample_info = static_cast<u8>(c.dpid_dvp_index_mirror_carid & 0x7F);
    return e;
}

// A chain node in the chip: its leaf with a full mask, then its edit.
i32 _node_hw_write(u32 chip_id, const mlib_node *n)
{
    cib_mcc_mlib_t l{};
    l.mlib_vld = 1;
    l.next_vld = n->next_vld;
    l.leafid_next_ptr = n->next_id;
    l.udp_dport_en = n->udp_dport_en;
    const i32 rc = _dpl_reef_mcc_mlib_write(chip_id, n->mlib_id, l, {});
    return rc != 0 ? rc : _dpl_reef_mcc_elb_write(chip_id, n->mlib_id, _elb_of(n->port_config));
}

// The link of a leaf that the chip holds: its successor, or none.
i32 _node_hw_link(u32 chip_id, const mlib_node *n)
{
    cib_mcc_mlib_t l{};
    l.next_vld = n->next_vld;
    l.leafid_next_ptr = n->next_id;
    return _dpl_reef_mcc_mlib_write(chip_id, n->mlib_id, l, {cib_mcc_mlib__next_vld, cib_mcc_mlib__leafid_next_ptr});
}

// ---- chains -----------------------------------------------------------------------------------

mlib_group *_chain_new(u32 chip_id)
{
    auto *c = static_cast<mlib_group *>(xsal_malloc(sizeof(mlib_group), "MLIB GROUP", SHR_MOD_MCC));
    if (c == nullptr) {
        return nullptr;
    }
    memset(c, 0, sizeof(*c));
    c->mlib_entry = _tree_new(chip_id);
    if (c->mlib_entry == nullptr) {
        xsal_mem_free(c);
        return nullptr;
    }
    mlib_group **tail = &g_mcc_mlist_group_head[chip_id];
    while (*tail != nullptr) {
        tail = &(*tail)->next;
    }
    *tail = c;
    g_mcc_mlist_group_num[chip_id]++;
    return c;
}

// A chain node goes: its leaf is free again.
void _chain_node_free(void *item, void *param)
{
    const u32 chip_id = _param_chip(param);
    auto *n = static_cast<mlib_node *>(item);
    if (g_mcc_leaf_node[chip_id] != nullptr) {
        g_mcc_leaf_node[chip_id][n->mlib_id] = nullptr;
    }
    dpl_reef_mcc_mlib_node_unuse_set(chip_id, n->mlib_id);
    xsal_mem_free(n);
}

void _member_free(void *item, void *)
{
    xsal_mem_free(item);
}

// The chain's software goes; the chip's leaves are the caller's business.
void _chain_destroy(u32 chip_id, mlib_group *c)
{
    for (mlib_group **p = &g_mcc_mlist_group_head[chip_id]; *p != nullptr; p = &(*p)->next) {
        if (*p == c) {
            *p = c->next;
            g_mcc_mlist_group_num[chip_id]--;
            break;
        }
    }
    while (c->users != nullptr) {
        mrt_mlib_entry *u = c->users;
        c->users = u->next;
        xsal_mem_free(u);
    }
    shr_avl_destroy(c->mlib_entry, _chain_node_free);
    xsal_mem_free(c);
}

i32 _chain_user_add(mlib_group *c, mrt_group *g)
{
    auto *u = static_cast<mrt_mlib_entry *>(xsal_malloc(sizeof(mrt_mlib_entry), "Mrt mlib entry", SHR_MOD_MCC));
    if (u == nullptr) {
        return SHR_E_MEMORY;
    }
    *u = mrt_mlib_entry{g->db_id, g, c->users};
    c->users = u;
    c->mrt_cnt++;
    return 0;
}

void _chain_user_del(mlib_group *c, const mrt_group *g)
{
    for (mrt_mlib_entry **p = &c->users; *p != nullptr; p = &(*p)->next) {
        if ((*p)->group == g) {
            mrt_mlib_entry *u = *p;
            *p = u->next;
            xsal_mem_free(u);
            c->mrt_cnt--;
            return;
        }
    }
}

// One member into a chain: a node of its key gains a root; a missing one
// is made on a free leaf and linked to its neighbours in the software.
i32 _chain_take(u32 chip_id, mlib_group *c, const mlib_node &member, u8 udp_dport_en)
{
    mlib_node *n = _tree_find(c->mlib_entry, _key(&member));
    if (n != nullptr) {
        n->use_cnt++;
        return 0;
    }
    u32 leaf = 0;
    if (dpl_reef_mcc_mlib_node_get(chip_id, &leaf) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "mlib_node is full\n");
        return SHR_E_RESOURCE;
    }
    n = static_cast<mlib_node *>(xsal_malloc(sizeof(mlib_node), "MLIB entry", SHR_MOD_MCC));
    if (n == nullptr) {
        return SHR_E_MEMORY;
    }
    *n = mlib_node{};
    n->port_config = member.port_config;
    n->mlib_id = static_cast<u16>(leaf);
    n->use_cnt = 1;
    n->dirty = 1;
    n->udp_dport_en = udp_dport_en;
    if (_tree_insert(c->mlib_entry, n) != 0) {
        xsal_mem_free(n);
        return SHR_E_MEMORY;
    }
    dpl_reef_mcc_mlib_node_use_set(chip_id, leaf);
    g_mcc_leaf_node[chip_id][leaf] = n;
    c->node_cnt++;
    mlib_node *pred = nullptr, *succ = nullptr;
    _neighbours(c->mlib_entry, n, &pred, &succ);
    if (succ != nullptr) {
        n->next_vld = 1;
        n->next_id = succ->mlib_id;
        succ->pre_id = n->mlib_id;
    }
    if (pred != nullptr) {
        pred->next_vld = 1;
        pred->next_id = n->mlib_id;
        n->pre_id = pred->mlib_id;
    }
    return 0;
}

// The chain's new leaves into the chip, tail first: each is complete, with
// its link to a successor that is complete already, before its
// predecessor is linked to it.
i32 _chain_hw_add(u32 chip_id, mlib_group *c)
{
    const std::vector<mlib_node *> nodes = _nodes(c->mlib_entry);
    for (size_t i = nodes.size(); i-- > 0;) {
        mlib_node *n = nodes[i];
        if (n->dirty == 0) {
            continue;
        }
        i32 rc = _node_hw_write(chip_id, n);
        if (rc == 0 && i > 0 && nodes[i - 1]->dirty == 0) {
            rc = _node_hw_link(chip_id, nodes[i - 1]);
        }
        if (rc != 0) {
            return rc;
        }
        n->dirty = 0;
    }
    return 0;
}

// A root's range leaves the chain: `count` nodes from `first_leaf` lose a
// root.  The nodes no root covers any more are unlinked (every node that
// stays is linked to the next that stays) and then cleared and given back.
// The software is made whole even when a write fails; the first failure
// is the result.
i32 _chain_release(u32 chip_id, mlib_group *c, u32 first_leaf, u32 count)
{
    std::vector<mlib_node *> nodes = _nodes(c->mlib_entry);
    bool in_range = false;
    u32 left = count;
    for (mlib_node *n : nodes) {
        in_range |= n->mlib_id == first_leaf;
        if (in_range && left > 0 && n->use_cnt > 0) {
            n->use_cnt--;
            left--;
        }
    }
    i32 rc = 0;
    mlib_node *prev = nullptr;
    for (mlib_node *n : nodes) {
        if (n->use_cnt == 0) {
            continue;
        }
        n->pre_id = prev != nullptr ? prev->mlib_id : 0;
        prev = n;
    }
    // Links first, from the tail: a node that stays gets the next that
    // stays.
    mlib_node *next = nullptr;
    for (size_t i = nodes.size(); i-- > 0;) {
        mlib_node *n = nodes[i];
        if (n->use_cnt == 0) {
            continue;
        }
        const u8 vld = next != nullptr ? 1 : 0;
        const u16 id = next != nullptr ? next->mlib_id : 0;
        if (n->next_vld != vld || (vld && n->next_id != id)) {
            n->next_vld = vld;
            n->next_id = id;
            const i32 w = _node_hw_link(chip_id, n);
            rc = rc != 0 ? rc : w;
        }
        next = n;
    }
    for (mlib_node *n : nodes) {
        if (n->use_cnt != 0) {
            continue;
        }
        const i32 w = _dpl_reef_mcc_leaf_clear(chip_id, n->mlib_id);
        rc = rc != 0 ? rc : w;
        shr_avl_delete(c->mlib_entry, n);
        c->node_cnt--;
        _chain_node_free(n, _chip_param(chip_id));
    }
    const i32 t = _text_of(chip_id, c->mlib_entry, c->node_buf, "buffer_len is too long\n");
    return rc != 0 ? rc : t;
}

// The first chain in list order, other than `except`, whose text holds
// `text` or is held by it.
mlib_group *_buffer_compare(u32 chip_id, const char *text, const mlib_group *except)
{
    for (mlib_group *c = g_mcc_mlist_group_head[chip_id]; c != nullptr; c = c->next) {
        if (c != except && c->node_cnt > 0 && (strstr(c->node_buf, text) != nullptr || strstr(text, c->node_buf) != nullptr)) {
            return c;
        }
    }
    return nullptr;
}

// Whether two trees agree on every key they have in common; `common`
// (may be NULL) gets how many keys of `own` the candidate has.
bool _tree_agree(shr_avl_table *cand, shr_avl_table *own, u32 *common)
{
    u32 n = 0;
    for (const mlib_node *m : _nodes(own)) {
        const mlib_node *c = _tree_find(cand, _key(m));
        if (c == nullptr) {
            continue;
        }
        if (dpl_reef_mcc_mlib_elb_cmp(&c->port_config, &m->port_config) != 0) {
            return false;
        }
        n++;
    }
    if (common != nullptr) {
        *common = n;
    }
    return true;
}

u32 _free_leaves(u32 chip_id)
{
    u32 n = 0;
    dpl_reef_mcc_mlib_unuse_node_cnt_get(chip_id, &n);
    return n;
}

// Compression first when fewer leaves are free than a change may need.
void _room_for(u32 chip_id, u32 leaves)
{
    if (_free_leaves(chip_id) < leaves) {
        dpl_reef_mlib_group_compress(chip_id);
    }
}

// ---- groups -----------------------------------------------------------------------------------

i32 _group_root_write(u32 chip_id, const mrt_group *g)
{
    cib_mcc_mrt_t r{};
    r.mrt_vld = g->rep_cnt != 0 ? 1 : 0;
    r.stat_en = g->stat_en;
    r.udp_dport_en = g->udp_dport_en;
    r.leafid_indx = static_cast<u16>(g->rep_cnt != 0 ? g->first_mlib_id : 0);
    r.rep_num = static_cast<u16>(g->rep_cnt);
    return _dpl_reef_mcc_mrt_write(chip_id, g->mrt_id, r, {});
}

// Puts the group on a chain that holds its members as its own tree now
// says: build, switch the root, release the old range.  On a failure
// before the switch, what was built goes again and the group keeps its
// old chain.
i32 _group_rebind(u32 chip_id, mrt_group *g)
{
    char text[DPL_MCC_NODE_BUF];
    i32 rc = _text_of(chip_id, g->mlib_entry, text, "\n\r buffer is too long \n\r");
    if (rc != 0) {
        return rc;
    }
    const std::vector<mlib_node *> members = _nodes(g->mlib_entry);
    const u32 count = static_cast<u32>(members.size());
    mlib_group *target = nullptr;
    bool fresh = false;
    if (count > 0) {
        // The search stops at the first candidate, whether it agrees or not.
        mlib_group *cand = _buffer_compare(chip_id, text, g->mlib_group);
        u32 common = 0;
        if (cand != nullptr && _tree_agree(cand->mlib_entry, g->mlib_entry, &common)) {
            SHR_LOG_DBG(chip_id, SHR_MOD_MCC, "compare SUCCESS\n");
            target = cand;
        }
        const u32 need = target != nullptr ? count - common : count;
        if (need > _free_leaves(chip_id)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "%s", kFull);
            return SHR_E_RESOURCE;
        }
        if (target == nullptr) {
            target = _chain_new(chip_id);
            fresh = true;
            if (target == nullptr) {
                SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r creat group fail \n\r");
                return SHR_E_MEMORY;
            }
        }
    }
    mlib_group *old = g->mlib_group;
    const u32 old_first = g->first_mlib_id, old_rep = g->rep_cnt;
    u32 taken = 0;
    for (const mlib_node *m : members) {
        rc = _chain_take(chip_id, target, *m, g->udp_dport_en);
        if (rc != 0) {
            break;
        }
        taken++;
    }
    const u32 first = count > 0 && taken > 0 ? _tree_find(target->mlib_entry, _key(members[0]))->mlib_id : 0;
    rc = rc != 0 || count == 0 ? rc : _text_of(chip_id, target->mlib_entry, target->node_buf, "buffer_len is too long\n");
    rc = rc != 0 || count == 0 ? rc : _chain_hw_add(chip_id, target);
    if (rc == 0) {
        g->mlib_group = target;
        g->first_mlib_id = first;
        g->rep_cnt = count;
        rc = _group_root_write(chip_id, g);
    }
    if (rc != 0) {
        // Nothing leads to what was built: it goes again.
        g->mlib_group = old;
        g->first_mlib_id = old_first;
        g->rep_cnt = old_rep;
        if (taken > 0) {
            _chain_release(chip_id, target, first, taken);
        }
        if (fresh) {
            _chain_destroy(chip_id, target);
        }
        return rc;
    }
    // The root leads to the new range: the old one may go.
    if (old != target && old != nullptr) {
        _chain_user_del(old, g);
    }
    if (old != nullptr && old_rep > 0) {
        rc = _chain_release(chip_id, old, old_first, old_rep);
    }
    if (old != nullptr && old != target && old->mrt_cnt == 0) {
        _chain_destroy(chip_id, old);
    }
    if (target != nullptr && target != old) {
        const i32 u = _chain_user_add(target, g);
        rc = rc != 0 ? rc : u;
    }
    memcpy(g->node_buf, text, sizeof(text));
    return rc;
}

mrt_group *_group_find(u32 chip_id, u32 mrt_id)
{
    for (mrt_group *g = g_mrt_group_head[chip_id]; g != nullptr; g = g->next) {
        if (g->mrt_id == mrt_id) {
            return g;
        }
    }
    return nullptr;
}

mrt_group *_group_new(u32 chip_id, u32 mrt_id, u32 db_id, const mrt_info *info)
{
    auto *g = static_cast<mrt_group *>(xsal_malloc(sizeof(mrt_group), "MRT GROUP", SHR_MOD_MCC));
    if (g == nullptr) {
        return nullptr;
    }
    memset(g, 0, sizeof(*g));
    g->mlib_entry = _tree_new(chip_id);
    if (g->mlib_entry == nullptr) {
        xsal_mem_free(g);
        return nullptr;
    }
    g->mrt_id = mrt_id;
    g->db_id = db_id;
    g->stat_en = info->stat_en;
    g->udp_dport_en = info->udp_dport_en;
    mrt_group **tail = &g_mrt_group_head[chip_id];
    while (*tail != nullptr) {
        tail = &(*tail)->next;
    }
    *tail = g;
    g_mrt_group_num[chip_id]++;
    return g;
}

void _group_free(u32 chip_id, mrt_group *g)
{
    for (mrt_group **p = &g_mrt_group_head[chip_id]; *p != nullptr; p = &(*p)->next) {
        if (*p == g) {
            *p = g->next;
            g_mrt_group_num[chip_id]--;
            break;
        }
    }
    shr_avl_destroy(g->mlib_entry, _member_free);
    xsal_mem_free(g);
}

// A member record for a group's own tree.
mlib_node *_member_new(const mcc_port_config &cfg)
{
    auto *m = static_cast<mlib_node *>(xsal_malloc(sizeof(mlib_node), "MLIB entry", SHR_MOD_MCC));
    if (m != nullptr) {
        *m = mlib_node{};
        m->port_config = cfg;
    }
    return m;
}

// Bits of a member bitmap by its flag.
u32 _bitmap_bits(u32 flag)
{
    static constexpr u32 kBits[4] = {64, 128, 4, 128};
    return flag < 4 ? kBits[flag] : 0;
}

bool _bit(const mcc_port_bitmap *b, u32 i)
{
    return ((b->bits[i / 64] >> (i % 64)) & 1) != 0;
}

// The checks of a call on a group: chip, pointers; then the group.
i32 _group_call(u32 chip_id, u32 mrt_id, const void *a, const void *b, mrt_group **g)
{
    if (a == nullptr || b == nullptr) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    *g = _group_find(chip_id, mrt_id);
    if (*g == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r mrt_id %d is not create fail \n\r", (int)mrt_id);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

// The member a call names: `cfg` gets its edit completed from its key,
// `rec` the group's record of it (NULL when it is no member).
i32 _member_lookup(u32 chip_id, const mrt_group *g, const mcc_member *member, const mcc_port_config &config,
                   mcc_port_config *cfg, mlib_node **rec)
{
    *cfg = config;
    const i32 rc = dpl_reef_mcc_port_config_refresh(chip_id, member, cfg);
    *rec = rc == 0 ? _tree_find(g->mlib_entry, cfg->oport_inf_causeid) : nullptr;
    return rc;
}

// The checks of a call on one member, made under the caller's hold of the
// mutex: those of _group_call, then the member's edit and the group's
// record of it, which must exist when `present` (-7 with the line).
i32 _member_call(u32 chip_id, u32 mrt_id, const mcc_member *member, const mcc_port_config *config, bool present,
                 mrt_group **g, mcc_port_config *cfg, mlib_node **rec)
{
    i32 rc = _group_call(chip_id, mrt_id, member, config, g);
    rc = rc != 0 ? rc : _member_lookup(chip_id, *g, member, *config, cfg, rec);
    if (rc == 0 && present && *rec == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "member 0x%x is not in group %u\n", cfg->oport_inf_causeid, mrt_id);
        return SHR_E_NOT_FOUND;
    }
    return rc;
}

// ---- compression ------------------------------------------------------------------------------

// Moves every root of `other` onto `kept`, whose text holds the other's,
// one root write each; then clears and gives back the other's leaves.
i32 _dpl_reef_mlib_compress_refresh(u32 chip_id, mlib_group *kept, mlib_group *other)
{
    i32 rc = 0;
    while (other->users != nullptr) {
        mrt_group *g = other->users->group;
        const u16 first_key = _key(g_mcc_leaf_node[chip_id][g->first_mlib_id]);
        shr_avl_traverser tr;
        auto *n = static_cast<mlib_node *>(shr_avl_t_find(&tr, kept->mlib_entry, g_mcc_leaf_node[chip_id][g->first_mlib_id]));
        g->first_mlib_id = _tree_find(kept->mlib_entry, first_key)->mlib_id;
        for (u32 i = 0; i < g->rep_cnt && n != nullptr; i++) {
            n->use_cnt++;
            n = static_cast<mlib_node *>(shr_avl_t_next(&tr));
        }
        _chain_user_del(other, g);
        const i32 u = _chain_user_add(kept, g);
        g->mlib_group = kept;
        const i32 w = _group_root_write(chip_id, g);
        rc = rc != 0 ? rc : (u != 0 ? u : w);
    }
    for (const mlib_node *n : _nodes(other->mlib_entry)) {
        const i32 w = _dpl_reef_mcc_leaf_clear(chip_id, n->mlib_id);
        rc = rc != 0 ? rc : w;
    }
    _chain_destroy(chip_id, other);
    g_compress_cnt[chip_id]++;
    return rc;
}

// The first pair of chains, in list order, of which one's text holds the
// other's and whose edits agree: `kept` the holder, `other` the held.
bool _compress_pair(u32 chip_id, mlib_group **kept, mlib_group **other)
{
    for (mlib_group *a = g_mcc_mlist_group_head[chip_id]; a != nullptr; a = a->next) {
        for (mlib_group *b = g_mcc_mlist_group_head[chip_id]; b != nullptr; b = b->next) {
            if (a == b || a->node_cnt == 0 || b->node_cnt == 0) {
                continue;
            }
            const bool a_holds = strstr(a->node_buf, b->node_buf) != nullptr;
            if (!a_holds && strstr(b->node_buf, a->node_buf) == nullptr) {
                continue;
            }
            if (_tree_agree(a->mlib_entry, b->mlib_entry, nullptr)) {
                *kept = a_holds ? a : b;
                *other = a_holds ? b : a;
                return true;
            }
        }
    }
    return false;
}

// One pass: merges pairs of chains that agree until none is left (0) or
// 100 merges were made (-10: there may be more).  A merge destroys a
// chain, so every merge starts the search over.
i32 _dpl_reef_mlib_group_compress_busy(u32 chip_id)
{
    mlib_group *kept = nullptr, *other = nullptr;
    for (u32 merges = 0; _compress_pair(chip_id, &kept, &other);) {
        _dpl_reef_mlib_compress_refresh(chip_id, kept, other);
        if (++merges >= kCompressMerges) {
            return SHR_E_BUSY;
        }
    }
    return 0;
}

// ---- traversals ------------------------------------------------------------------------------

template <typename Item, typename Fn, typename... A>
i32 _walk(u32 chip_id, Item *head, Fn fn, A... args)
{
    if (fn == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const i32 check = _dpl_reef_mcc_chip_check(chip_id);
    if (check != 0) {
        return check;
    }
    MccLock hold(chip_id);
    for (Item *i = head; i != nullptr; i = i->next) {
        const i32 rc = fn(chip_id, i, args...);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

} // namespace

extern "C" {

int dpl_reef_mcc_mlib_entry_avl_cmp_func(const void *a, const void *b, void *)
{
    return static_cast<int>(_key(static_cast<const mlib_node *>(a))) - static_cast<int>(_key(static_cast<const mlib_node *>(b)));
}

i32 dpl_reef_mcc_mlib_elb_cmp(const mcc_port_config *a, const mcc_port_config *b)
{
    // Field by field, in the order of the chip's comparison.
    const bool same = a->aib1 == b->aib1 && a->vlanprichg == b->vlanprichg && a->vlanupdate == b->vlanupdate &&
                      a->ttldecrease == b->ttldecrease && a->mcttl == b->mcttl && a->ttlcheck == b->ttlcheck &&
                      a->tagnum == b->tagnum && a->stack == b->stack && a->elbtype == b->elbtype &&
                      a->prunedisable == b->prunedisable && a->ovlan_rspan_vlan == b->ovlan_rspan_vlan &&
                      a->ivlan_rspan_en == b->ivlan_rspan_en && a->oport_inf_causeid == b->oport_inf_causeid &&
                      a->dpid_dvp_index_mirror_carid == b->dpid_dvp_index_mirror_carid;
    return same ? 0 : 1;
}

i32 dpl_reef_mcc_port_config_refresh(u32 chip_id, const mcc_member *member, mcc_port_config *config)
{
    static constexpr u32 kIdMax[4] = {63, 127, 3, 127};
    if (member->mcc_port_flag > MCC_PORT_FLAG_MIRROR) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r port_bitmap->mcc_port_flag wrong %d \n\r", (int)member->mcc_port_flag);
        return SHR_E_FAIL;
    }
    if (member->id > kIdMax[member->mcc_port_flag]) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "member %u is out of range,max %u\n", member->id,
                    kIdMax[member->mcc_port_flag]);
        return SHR_E_PARAM;
    }
    switch (member->mcc_port_flag) {
    case MCC_PORT_FLAG_PORT: {
        cib_lsw_hreg_mymod_t mymod{};
        const i32 rc = csl_reef_cib_lsw_hreg_mymod_get(chip_id, 0, &mymod);
        if (rc != 0) {
            return rc;
        }
        config->oport_inf_causeid = static_cast<u16>((mymod.mymod & 31) * 64 + member->id);
        break;
    }
    case MCC_PORT_FLAG_TRUNK:
        config->oport_inf_causeid = static_cast<u16>(MCC_KEY_TRUNK | member->id);
        break;
    case MCC_PORT_FLAG_STACK:
        config->oport_inf_causeid = static_cast<u16>(MCC_KEY_STACK | member->id);
        config->stack = 1;
        break;
    default:
        config->oport_inf_causeid = static_cast<u16>(MCC_KEY_MIRROR | member->id);
        config->elbtype = MCC_ELBTYPE_MIRROR;
        break;
    }
    return 0;
}

u32 dpl_reef_mcc_mrt_group_port_bitmap_cnt_get(const mcc_port_bitmap *members)
{
    u32 n = 0;
    for (u32 i = 0; i < _bitmap_bits(members->mcc_port_flag); i++) {
        n += _bit(members, i) ? 1 : 0;
    }
    return n;
}

i32 dpl_reef_mcc_bitmap_to_string(u32 chip_id, const mcc_port_bitmap *members, char *text, u32 room)
{
    static constexpr u32 kAdd[4] = {0, MCC_KEY_TRUNK, MCC_KEY_STACK, MCC_KEY_MIRROR};
    if (members->mcc_port_flag > MCC_PORT_FLAG_MIRROR) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r port_bitmap->mcc_port_flag wrong %d \n\r", (int)members->mcc_port_flag);
        return SHR_E_FAIL;
    }
    size_t len = 0;
    text[0] = '\0';
    for (u32 i = 0; i < _bitmap_bits(members->mcc_port_flag); i++) {
        if (!_bit(members, i)) {
            continue;
        }
        const int k = snprintf(text + len, room - len, "0x%x,", i + kAdd[members->mcc_port_flag]);
        if (k < 0 || len + static_cast<size_t>(k) >= room) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r buffer is too long \n\r");
            return SHR_E_FAIL;
        }
        len += static_cast<size_t>(k);
    }
    return 0;
}

// ---- lists ------------------------------------------------------------------------------------

i32 dpl_reef_mcc_mlib_group_init(u32 chip_id)
{
    if (g_mcc_leaf_node[chip_id] != nullptr) {
        return SHR_E_INIT;
    }
    const size_t bytes = sizeof(mlib_node *) * DPL_MCC_MLIB_LEAVES;
    g_mcc_leaf_node[chip_id] = static_cast<mlib_node **>(xsal_malloc(bytes, "MLIB index", SHR_MOD_MCC));
    if (g_mcc_leaf_node[chip_id] == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(g_mcc_leaf_node[chip_id], 0, bytes);
    g_mcc_mlist_group_head[chip_id] = nullptr;
    g_mcc_mlist_group_num[chip_id] = 0;
    return 0;
}

i32 dpl_reef_mcc_mrt_group_init(u32 chip_id)
{
    if (g_mrt_lists_inited[chip_id]) {
        return SHR_E_INIT;
    }
    g_mrt_group_head[chip_id] = nullptr;
    g_mrt_group_num[chip_id] = 0;
    g_mrt_lists_inited[chip_id] = true;
    return 0;
}

i32 dpl_reef_mcc_mlib_group_deinit(u32 chip_id)
{
    while (g_mcc_mlist_group_head[chip_id] != nullptr) {
        _chain_destroy(chip_id, g_mcc_mlist_group_head[chip_id]);
    }
    xsal_mem_free(g_mcc_leaf_node[chip_id]);
    g_mcc_leaf_node[chip_id] = nullptr;
    return 0;
}

i32 dpl_reef_mcc_mrt_group_deinit(u32 chip_id)
{
    while (g_mrt_group_head[chip_id] != nullptr) {
        _group_free(chip_id, g_mrt_group_head[chip_id]);
    }
    g_mrt_lists_inited[chip_id] = false;
    return 0;
}

// ---- groups ------------------------------------------------------------------------------------

i32 dpl_reef_mcc_group_create(u32 chip_id, const mcc_port_bitmap *members, const mcc_port_config *config,
                              mrt_info *info)
{
    if (members == nullptr || info == nullptr || (config == nullptr && members->empty != 1)) {
        return SHR_E_NULL_PTR;
    }
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    const bool empty = members->empty == 1;
    if (!empty && members->mcc_port_flag > MCC_PORT_FLAG_MIRROR) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r port_bitmap->mcc_port_flag wrong %d \n\r", (int)members->mcc_port_flag);
        return SHR_E_FAIL;
    }
    MccLock hold(chip_id);
    u32 mid = 0, db = 0;
    rc = dpl_reef_mcc_mrt_node_get1(chip_id, &info->req, &mid);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r dpl_reef_mcc_mrt_node_get1  false \n\r");
        return rc;
    }
    rc = dpl_reef_mcc_db_mrt_get(chip_id, &db);
    if (rc != 0) {
        return rc;
    }
    mrt_group *g = _group_new(chip_id, mid, db, info);
    if (g == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r creat group fail \n\r");
        return SHR_E_FAIL;
    }
    if (!empty) {
        _room_for(chip_id, dpl_reef_mcc_mrt_group_port_bitmap_cnt_get(members));
        for (u32 i = 0; rc == 0 && i < _bitmap_bits(members->mcc_port_flag); i++) {
            if (!_bit(members, i)) {
                continue;
            }
            const mcc_member m{members->mcc_port_flag, i};
            mcc_port_config cfg = *config;
            rc = dpl_reef_mcc_port_config_refresh(chip_id, &m, &cfg);
            mlib_node *rec = rc == 0 ? _member_new(cfg) : nullptr;
            rc = rc != 0 ? rc : (rec == nullptr ? SHR_E_MEMORY : _tree_insert(g->mlib_entry, rec));
        }
    }
    rc = rc != 0 ? rc : _group_rebind(chip_id, g);
    if (rc != 0) {
        _group_free(chip_id, g);
        return rc == SHR_E_PARAM || rc == SHR_E_FAIL ? rc : SHR_E_RESOURCE;
    }
    dpl_reef_mcc_mrt_node_use_set(chip_id, mid);
    dpl_reef_mcc_db_mrt_node_use_set(chip_id, db);
    info->req.mid = mid;
    return 0;
}

i32 dpl_reef_mcc_group_port_add(u32 chip_id, u32 mrt_id, const mcc_member *member, const mcc_port_config *config)
{
    MccLock hold(chip_id);
    mrt_group *g = nullptr;
    mcc_port_config cfg{};
    mlib_node *rec = nullptr;
    i32 rc = _member_call(chip_id, mrt_id, member, config, false, &g, &cfg, &rec);
    if (rc != 0) {
        return rc;
    }
    if (rec != nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "member 0x%x is in group %u already\n", cfg.oport_inf_causeid, mrt_id);
        return SHR_E_EXISTS;
    }
    _room_for(chip_id, g->rep_cnt + 1);
    rec = _member_new(cfg);
    if (rec == nullptr || _tree_insert(g->mlib_entry, rec) != 0) {
        xsal_mem_free(rec);
        return SHR_E_MEMORY;
    }
    rc = _group_rebind(chip_id, g);
    if (rc != 0) {
        shr_avl_delete(g->mlib_entry, rec);
        xsal_mem_free(rec);
    }
    return rc;
}

i32 dpl_reef_mcc_group_port_del(u32 chip_id, u32 mrt_id, const mcc_member *member, const mcc_port_config *config)
{
    MccLock hold(chip_id);
    mrt_group *g = nullptr;
    mcc_port_config cfg{};
    mlib_node *rec = nullptr;
    i32 rc = _member_call(chip_id, mrt_id, member, config, true, &g, &cfg, &rec);
    if (rc != 0) {
        return rc;
    }
    _room_for(chip_id, g->rep_cnt - 1);
    shr_avl_delete(g->mlib_entry, rec);
    rc = _group_rebind(chip_id, g);
    if (rc != 0) {
        _tree_insert(g->mlib_entry, rec);
    } else {
        xsal_mem_free(rec);
    }
    return rc;
}

i32 dpl_reef_mcc_group_port_config(u32 chip_id, u32 mrt_id, const mcc_member *member,
                                   const mcc_port_config *config)
{
    MccLock hold(chip_id);
    mrt_group *g = nullptr;
    mcc_port_config cfg{};
    mlib_node *rec = nullptr;
    i32 rc = _member_call(chip_id, mrt_id, member, config, true, &g, &cfg, &rec);
    if (rc != 0) {
        return rc;
    }
    if (dpl_reef_mcc_mlib_elb_cmp(&rec->port_config, &cfg) == 0) {
        return 0;
    }
    mlib_node *node = _tree_find(g->mlib_group->mlib_entry, cfg.oport_inf_causeid);
    if (node->use_cnt == 1) {
        // Only this root reaches the leaf: its edit changes in place.
        rec->port_config = cfg;
        node->port_config = cfg;
        return _dpl_reef_mcc_elb_write(chip_id, node->mlib_id, _elb_of(cfg));
    }
    const mcc_port_config old = rec->port_config;
    _room_for(chip_id, g->rep_cnt);
    rec->port_config = cfg;
    rc = _group_rebind(chip_id, g);
    if (rc != 0) {
        rec->port_config = old;
    }
    return rc;
}

i32 dpl_reef_mcc_group_del(u32 chip_id, u32 mrt_id)
{
    i32 rc = _dpl_reef_mcc_chip_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    MccLock hold(chip_id);
    mrt_group *g = _group_find(chip_id, mrt_id);
    if (g == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "\n\r mrt_id %d is not create fail \n\r", (int)mrt_id);
        return SHR_E_NOT_FOUND;
    }
    // The root goes first, so that nothing leads to the leaves released
    // after it.
    rc = _dpl_reef_mcc_mrt_write(chip_id, mrt_id, cib_mcc_mrt_t{}, {});
    if (rc != 0) {
        return rc;
    }
    mlib_group *c = g->mlib_group;
    if (c != nullptr) {
        _chain_user_del(c, g);
        rc = _chain_release(chip_id, c, g->first_mlib_id, g->rep_cnt);
        if (c->mrt_cnt == 0) {
            _chain_destroy(chip_id, c);
        }
    }
    dpl_reef_mcc_mrt_node_unuse_set(chip_id, mrt_id);
    dpl_reef_mcc_db_mrt_unuse_set(chip_id, g->db_id);
    _group_free(chip_id, g);
    return rc;
}

i32 dpl_reef_mlib_group_compress(u32 chip_id)
{
    const i32 check = _dpl_reef_mcc_chip_check(chip_id);
    if (check != 0) {
        return check;
    }
    MccLock hold(chip_id);
    g_compress_cnt_old[chip_id] = g_compress_cnt[chip_id];
    for (u32 pass = 0; pass < kCompressPasses && _dpl_reef_mlib_group_compress_busy(chip_id) == SHR_E_BUSY; pass++) {
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_MCC, "compress: %u chains merged\n", g_compress_cnt[chip_id] - g_compress_cnt_old[chip_id]);
    g_compress_cnt[chip_id] = 0;
    g_compress_cnt_old[chip_id] = 0;
    return 0;
}

// ---- getters and walks ----------------------------------------------------------------------

mrt_group *dpl_reef_mcc_mrt_group_get(u32 chip_id, u32 mrt_id)
{
    return chip_id < SHR_MAX_CHIPS ? _group_find(chip_id, mrt_id) : nullptr;
}

mrt_group *dpl_reef_mcc_mrt_group_by_db_id_get(u32 chip_id, u32 db_id)
{
    for (mrt_group *g = chip_id < SHR_MAX_CHIPS ? g_mrt_group_head[chip_id] : nullptr; g != nullptr; g = g->next) {
        if (g->db_id == db_id) {
            return g;
        }
    }
    return nullptr;
}

u32 dpl_reef_mcc_mrt_group_num_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_mrt_group_num[chip_id] : 0;
}

u32 dpl_reef_mcc_mlib_group_num_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_mcc_mlist_group_num[chip_id] : 0;
}

i32 dpl_reef_mcc_mrt_group_traverse(u32 chip_id, dpl_reef_mcc_mrt_group_cb fn, void *arg)
{
    return _walk(chip_id, chip_id < SHR_MAX_CHIPS ? g_mrt_group_head[chip_id] : nullptr, fn, arg);
}

i32 dpl_reef_mcc_mlib_group_traverse(u32 chip_id, dpl_reef_mcc_mlib_group_cb fn, void *arg)
{
    return _walk(chip_id, chip_id < SHR_MAX_CHIPS ? g_mcc_mlist_group_head[chip_id] : nullptr, fn, arg);
}

i32 dpl_reef_mcc_mlib_mrt_group_traverse(u32 chip_id, dpl_reef_mcc_mlib_mrt_cb fn, void *arg)
{
    if (fn == nullptr) {
        return SHR_E_NULL_PTR;
    }
    auto each_chain = [](u32 chip, const mlib_group *c, dpl_reef_mcc_mlib_mrt_cb f, void *a) -> i32 {
        for (const mrt_mlib_entry *u = c->users; u != nullptr; u = u->next) {
            const i32 rc = f(chip, c, u->group, a);
            if (rc != 0) {
                return rc;
            }
        }
        return 0;
    };
    return _walk(chip_id, chip_id < SHR_MAX_CHIPS ? g_mcc_mlist_group_head[chip_id] : nullptr,
                 static_cast<i32 (*)(u32, const mlib_group *, dpl_reef_mcc_mlib_mrt_cb, void *)>(each_chain), fn, arg);
}

i32 dpl_reef_mcc_group_port_config_get(u32 chip_id, u32 mrt_id, const mcc_member *member, mcc_port_config *config)
{
    if (config == nullptr) {
        return SHR_E_NULL_PTR;
    }
    MccLock hold(chip_id);
    const mcc_port_config probe{};
    mrt_group *g = nullptr;
    mcc_port_config cfg{};
    mlib_node *rec = nullptr;
    const i32 rc = _member_call(chip_id, mrt_id, member, &probe, false, &g, &cfg, &rec);
    if (rec == nullptr) {
        return rc != 0 ? rc : SHR_E_NOT_FOUND;
    }
    *config = rec->port_config;
    return 0;
}

} // extern "C"
