// The VLAN rows of atolreef.  4096 VIDs map (ipro_vmap_tbl) onto 256 row
// pairs, an ingress row and an egress row at one index.  VIDs whose two
// records are equal share a pair; each pair counts its VIDs on both sides.
// A change of one VID's record, in this order: nothing if the record is
// the row's already; a move onto another pair that holds exactly the new
// records; a rewrite in place if the VID is alone on its pair; else a new
// pair of its own, the changed side written first.  A pair whose counts
// fall to 0 is freed and its rows zeroed.
#include "dpl/reef/special/atolreef/dpl_atolreef_vlan.h"

#include <tide/property.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <type_traits>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"

extern "C" {
dpl_atolreef_vlan_info *g_atolreef_vlan_info[SHR_MAX_CHIPS];
}

namespace {

constexpr u32 kNoIndex = 0xFFFFFFFFu;

bool _equal(const dpl_reef_ivlan_key &a, const dpl_reef_ivlan_key &b)
{
#define DPL_VLAN_SAME(f) a.f == b.f &&
    return DPL_IVLAN_FIELDS(DPL_VLAN_SAME) a.cnt_id == b.cnt_id;
}

bool _equal(const dpl_reef_evlan_key &a, const dpl_reef_evlan_key &b)
{
    return DPL_EVLAN_FIELDS(DPL_VLAN_SAME) a.cnt_id == b.cnt_id;
#undef DPL_VLAN_SAME
}

// ---- rows in the chip ------------------------------------------------------------------

i32 _row_write(u32 chip_id, u32 index, const dpl_reef_ivlan_key *key)
{
    cib_ipro_ivlan_tbl_t r{};
    if (key != nullptr) {
#define DPL_VLAN_TO_ROW(f) r.f = key->f;
        DPL_IVLAN_FIELDS(DPL_VLAN_TO_ROW)
        r.cnt_id = key->cnt_id;
    }
    u64 mask[2] = {~u64{0}, ~u64{0}};
    return csl_reef_cib_ipro_ivlan_tbl_set(chip_id, 0, index, &r, mask);
}

i32 _row_write(u32 chip_id, u32 index, const dpl_reef_evlan_key *key)
{
    cib_epro_evlan_table_t r{};
    if (key != nullptr) {
        DPL_EVLAN_FIELDS(DPL_VLAN_TO_ROW)
#undef DPL_VLAN_TO_ROW
        r.cnt_id = key->cnt_id;
    }
    u64 mask[2] = {~u64{0}, ~u64{0}};
    return csl_reef_cib_epro_evlan_table_set(chip_id, 0, index, &r, mask);
}

i32 _map_set(u32 chip_id, u32 vid, u32 vld, u32 index)
{
    if (index >= DPL_VLAN_ROWS) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan_idx can not be greater than 256!!!\n");
        return SHR_E_BADID;
    }
    cib_ipro_vmap_tbl_t r{};
    r.vld = static_cast<u8>(vld);
    r.vlan_idx = static_cast<u8>(index);
    u64 mask[2] = {~u64{0}, ~u64{0}};
    return csl_reef_cib_ipro_vmap_tbl_set(chip_id, 0, vid, &r, mask);
}

// ---- the two sides of a row pair -----------------------------------------------------------

// What differs between the ingress and the egress side: the nodes, the
// used bitmap with its count, and the side's name in the log.
template <typename Key>
struct Side;
template <>
struct Side<dpl_reef_ivlan_key> {
    static dpl_reef_ivlan_node *nodes(dpl_atolreef_vlan_info *v) { return v->ivlan; }
    static u32 *bmp(dpl_atolreef_vlan_info *v) { return v->ivlan_bmp; }
    static u32 &count(dpl_atolreef_vlan_info *v) { return v->ivlan_count; }
    static constexpr const char *kName = "ivlan";
};
template <>
struct Side<dpl_reef_evlan_key> {
    static dpl_reef_evlan_node *nodes(dpl_atolreef_vlan_info *v) { return v->evlan; }
    static u32 *bmp(dpl_atolreef_vlan_info *v) { return v->evlan_bmp; }
    static u32 &count(dpl_atolreef_vlan_info *v) { return v->evlan_count; }
    static constexpr const char *kName = "evlan";
};

bool _bit(const u32 *bmp, u32 index)
{
    return ((bmp[index / 32] >> (index % 32)) & 1u) != 0;
}

// The first free index of a side, from 0; -6 when all 256 are used.
template <typename Key>
i32 _empty_index(u32 chip_id, dpl_atolreef_vlan_info *v, u32 *index)
{
    const u32 *bmp = Side<Key>::bmp(v);
    for (u32 i = 0; i < DPL_VLAN_ROWS; i++) {
        if (!_bit(bmp, i)) {
            *index = i;
            return 0;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "%s is full %u -- %u !!!\n", Side<Key>::kName, Side<Key>::count(v),
                DPL_VLAN_ROWS);
    return SHR_E_FULL;
}

// A node of `key` with one VID at `index`, its bit set.
template <typename Key>
void _node_insert(dpl_atolreef_vlan_info *v, u32 index, const Key &key)
{
    auto &n = Side<Key>::nodes(v)[index];
    n.key = key;
    n.used = 1;
    n.index = index;
    n.count = 1;
    Side<Key>::bmp(v)[index / 32] |= 1u << (index % 32);
    Side<Key>::count(v)++;
}

// Frees the node of `index` once no VID is on it: bit cleared, row zeroed.
template <typename Key>
i32 _del_index(u32 chip_id, dpl_atolreef_vlan_info *v, u32 index)
{
    auto &n = Side<Key>::nodes(v)[index];
    if (!n.used || n.count != 0) {
        return 0;
    }
    n = {};
    Side<Key>::bmp(v)[index / 32] &= ~(1u << (index % 32));
    Side<Key>::count(v)--;
    return _row_write(chip_id, index, static_cast<const Key *>(nullptr));
}

i32 _pair_release(u32 chip_id, dpl_atolreef_vlan_info *v, u32 index)
{
    v->ivlan[index].count--;
    v->evlan[index].count--;
    const i32 rc = _del_index<dpl_reef_ivlan_key>(chip_id, v, index);
    return rc != 0 ? rc : _del_index<dpl_reef_evlan_key>(chip_id, v, index);
}

// The index of a pair holding exactly these records, other than `except`.
u32 _pair_find(const dpl_atolreef_vlan_info *v, const dpl_reef_ivlan_key &ikey, const dpl_reef_evlan_key &ekey,
               u32 except)
{
    for (u32 i = 0; i < DPL_VLAN_ROWS; i++) {
        if (i != except && v->ivlan[i].used && v->evlan[i].used && _equal(v->ivlan[i].key, ikey) &&
            _equal(v->evlan[i].key, ekey)) {
            return i;
        }
    }
    return kNoIndex;
}

// The records a VID's pair would have after its `Key` side becomes `key`.
void _pair_of(const dpl_atolreef_vlan_info *v, u32 index, const dpl_reef_ivlan_key &key, dpl_reef_ivlan_key *ikey,
              dpl_reef_evlan_key *ekey)
{
    *ikey = key;
    *ekey = v->evlan[index].key;
}

void _pair_of(const dpl_atolreef_vlan_info *v, u32 index, const dpl_reef_evlan_key &key, dpl_reef_ivlan_key *ikey,
              dpl_reef_evlan_key *ekey)
{
    *ikey = v->ivlan[index].key;
    *ekey = key;
}

// The other side's key type.
template <typename Key>
using Other = std::conditional_t<std::is_same_v<Key, dpl_reef_ivlan_key>, dpl_reef_evlan_key, dpl_reef_ivlan_key>;

// The change of one side of a VID's pair: same, move, rewrite or split.
template <typename Key>
i32 _entry_check(u32 chip_id, dpl_atolreef_vlan_info *v, dpl_atolreef_vlan_node *vn, const Key &key)
{
    using O = Other<Key>;
    const u32 cur = vn->index;
    auto *side = Side<Key>::nodes(v);
    auto *other = Side<O>::nodes(v);
    if (_equal(side[cur].key, key)) {
        SHR_LOG_DBG(chip_id, SHR_MOD_VLAN, "The is same %s table\n", Side<Key>::kName);
        return 0;
    }
    dpl_reef_ivlan_key ikey{};
    dpl_reef_evlan_key ekey{};
    _pair_of(v, cur, key, &ikey, &ekey);
    const u32 same = v->prop.vlan_multiplex_flag ? _pair_find(v, ikey, ekey, cur) : kNoIndex;
    if (same != kNoIndex) {
        // Another pair holds exactly the new records: the VID moves there.
        SHR_LOG_DBG(chip_id, SHR_MOD_VLAN, "The same node exists. index: %u\n", same);
        i32 rc = _map_set(chip_id, vn->vid, 1, same);
        if (rc != 0) {
            return rc;
        }
        v->ivlan[same].count++;
        v->evlan[same].count++;
        vn->index = same;
        return _pair_release(chip_id, v, cur);
    }
    if (other[cur].count == 1) {
        // Alone on its pair: the row is rewritten in place.
        side[cur].key = key;
        return _row_write(chip_id, cur, &key);
    }
    // A pair of its own: the changed side first, the other side copied.
    u32 index = 0;
    i32 rc = _empty_index<Key>(chip_id, v, &index);
    if (rc == 0 && _bit(Side<O>::bmp(v), index)) {
        rc = SHR_E_FULL;
    }
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "%s is full!!!\n", Side<Key>::kName);
        return rc;
    }
    rc = _row_write(chip_id, index, &key);
    if (rc != 0) {
        return rc;
    }
    side[cur].count--;
    _node_insert(v, index, key);
    rc = _map_set(chip_id, vn->vid, 1, index);
    if (rc != 0) {
        return rc;
    }
    vn->index = index;
    const O copy = other[cur].key;
    rc = _row_write(chip_id, index, &copy);
    if (rc != 0) {
        return rc;
    }
    other[cur].count--;
    _node_insert(v, index, copy);
    return 0;
}

// ---- checks --------------------------------------------------------------------------------

dpl_atolreef_vlan_info *_info(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_atolreef_vlan_info[chip_id] : nullptr;
}

// The node of a created VID, or NULL.
dpl_atolreef_vlan_node *_vlan(u32 chip_id, u32 vid)
{
    dpl_atolreef_vlan_info *v = _info(chip_id);
    return v != nullptr && vid < DPL_VLAN_VID_COUNT ? v->vid_node[vid] : nullptr;
}

i32 _bmp_check(u32 chip_id, const port_bitmap *bmp, const char *fmt)
{
    if (bmp == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    if (csl_port_valid_bmp_check(chip_id, bmp) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, fmt, static_cast<unsigned long>(bmp->word[0]));
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _members_check(u32 chip_id, u32 vid, const port_bitmap *members, const port_bitmap *untagged,
                   const char *vid_fmt)
{
    if (vid > VLAN_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, vid_fmt, vid);
        return SHR_E_PARAM;
    }
    i32 rc = _bmp_check(chip_id, members, " portbmp[0]:%lx is invalid!!!\n");
    if (rc == 0 && untagged != nullptr) {
        rc = _bmp_check(chip_id, untagged, " portbmp_ut[0]:%lx is invalid!!!\n");
    }
    return rc;
}

// The node of a VID that must exist, under the lock.
i32 _existing(u32 chip_id, u32 vid, dpl_atolreef_vlan_node **vn)
{
    *vn = _vlan(chip_id, vid);
    if (*vn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan %u not exist !!!\n", vid);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

// ---- membership in the chip ------------------------------------------------------------

i32 _members_write(u32 chip_id, u32 vid, u32 members, u32 untagged)
{
    cib_epro_vlanbitmap_table_t e{};
    e.portbitmap = members;
    e.utport_bitmap = untagged;
    u64 mask[2] = {~u64{0}, ~u64{0}};
    i32 rc = csl_reef_cib_epro_vlanbitmap_table_set(chip_id, 0, vid, &e, mask);
    if (rc == 0) {
        cib_ipro_vbmp_tbl_t i{};
        i.portbit_map = members;
        rc = csl_reef_cib_ipro_vbmp_tbl_set(chip_id, 0, vid, &i, mask);
    }
    return rc;
}

i32 _members_read(u32 chip_id, u32 vid, u32 *members, u32 *untagged)
{
    cib_epro_vlanbitmap_table_t e{};
    const i32 rc = csl_reef_cib_epro_vlanbitmap_table_get(chip_id, 0, vid, &e);
    *members = e.portbitmap;
    *untagged = e.utport_bitmap;
    return rc;
}

u32 _low(const port_bitmap *b)
{
    return static_cast<u32>(b->word[0]);
}

void _list_remove(dpl_atolreef_vlan_info *v, dpl_atolreef_vlan_node *n)
{
    (n->prev != nullptr ? n->prev->next : v->head) = n->next;
    (n->next != nullptr ? n->next->prev : v->tail) = n->prev;
    v->vid_node[n->vid] = nullptr;
    v->vlan_count--;
    xsal_mem_free(n);
}

// ---- the operations --------------------------------------------------------------------------

i32 _atolreef_vlan_soft_init(u32 chip_id)
{
    if (g_atolreef_vlan_info[chip_id] != nullptr) {
        return 0;
    }
    auto *v = static_cast<dpl_atolreef_vlan_info *>(
        xsal_malloc(sizeof(dpl_atolreef_vlan_info), "g_atolreef_vlan_info", SHR_MOD_VLAN));
    if (v == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "g_atolreef_vlan_info malloc fail!!!\n");
        return SHR_E_MEMORY;
    }
    memset(v, 0, sizeof(*v));
    dpl_atolreef_vlan_property &p = v->prop;
    struct Prop {
        const char *key;
        int dflt;
        u32 dpl_atolreef_vlan_property::*field;
    };
    static constexpr Prop kProps[] = {
        {"vacl_160bit_cnt", 128, &dpl_atolreef_vlan_property::vacl_160bit_cnt},
        {"vacl_320bit_cnt", 64, &dpl_atolreef_vlan_property::vacl_320bit_cnt},
        {"vlan_multiplex_flag", 1, &dpl_atolreef_vlan_property::vlan_multiplex_flag},
        {"voice_vlan_cnt", 0, &dpl_atolreef_vlan_property::voice_vlan_cnt},
        {"vacl_cnt", 0, &dpl_atolreef_vlan_property::vacl_cnt},
        {"mac_vlan_cnt", 0, &dpl_atolreef_vlan_property::mac_vlan_cnt},
        {"subnet_vlan_cnt", 0, &dpl_atolreef_vlan_property::subnet_vlan_cnt},
        {"protocol_vlan_cnt", 0, &dpl_atolreef_vlan_property::protocol_vlan_cnt},
    };
    for (const Prop &k : kProps) {
        const int value = shr_property_get(chip_id, k.key, k.dflt);
        p.*k.field = value < 0 ? 0u : static_cast<u32>(value);
    }
    // The reservations of the 160-bit space must fit in it, the protocol
    // reservation in the 320-bit space; one that does not is dropped.
    u32 used = 0;
    for (u32 dpl_atolreef_vlan_property::*f :
         {&dpl_atolreef_vlan_property::voice_vlan_cnt, &dpl_atolreef_vlan_property::vacl_cnt,
          &dpl_atolreef_vlan_property::mac_vlan_cnt, &dpl_atolreef_vlan_property::subnet_vlan_cnt}) {
        if (used + p.*f > p.vacl_160bit_cnt) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan tcam reservation %u is over the 160-bit space %u, set to 0\n",
                        p.*f, p.vacl_160bit_cnt);
            p.*f = 0;
        }
        used += p.*f;
    }
    if (p.protocol_vlan_cnt > p.vacl_320bit_cnt) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan tcam reservation %u is over the 320-bit space %u, set to 0\n",
                    p.protocol_vlan_cnt, p.vacl_320bit_cnt);
        p.protocol_vlan_cnt = 0;
    }
    g_atolreef_vlan_info[chip_id] = v;
    return 0;
}

// The two VLAN TCAM spaces: module 1 (160-bit keys) and module 2 (320-bit
// keys) of the TCAM manager's fixed users.
constexpr u32 kVaclModules[] = {CSL_TCAM_UTILS_VT_160, CSL_TCAM_UTILS_VT_320};

// Gives the blocks of the VLAN TCAM spaces back to the TCAM manager; a
// space that holds none is left alone.
void _atolreef_vlan_tcam_free(u32 chip_id)
{
    for (const u32 module : kVaclModules) {
        if (g_module_alloced[chip_id][module] != 0) {
            csl_reef_tcam_utils_block_free(chip_id, module);
        }
    }
}

// Carves the VLAN TCAM spaces with the sizes of the properties. A hardware
// init that runs again first gives the blocks of the last one back.
i32 _atolreef_vlan_init_tcam(u32 chip_id)
{
    const dpl_atolreef_vlan_info *v = g_atolreef_vlan_info[chip_id];
    if (v == nullptr) {
        return SHR_E_INIT;
    }
    _atolreef_vlan_tcam_free(chip_id);
    const u32 sizes[] = {v->prop.vacl_160bit_cnt, v->prop.vacl_320bit_cnt};
    for (size_t i = 0; i < std::size(kVaclModules); i++) {
        const int rc = csl_reef_tcam_utils_block_alloc(chip_id, kVaclModules[i], sizes[i]);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan tcam module %u alloc %u entries fail (%d)!!!\n", kVaclModules[i],
                        sizes[i], rc);
            _atolreef_vlan_tcam_free(chip_id);
            return rc;
        }
    }
    return 0;
}

i32 _atolreef_vlan_soft_deinit(u32 chip_id)
{
    dpl_atolreef_vlan_info *v = g_atolreef_vlan_info[chip_id];
    if (v == nullptr) {
        return 0;
    }
    _atolreef_vlan_tcam_free(chip_id);
    dpl_atolreef_vlan_vacl_destroy(v);
    while (v->head != nullptr) {
        _list_remove(v, v->head);
    }
    xsal_mem_free(v);
    g_atolreef_vlan_info[chip_id] = nullptr;
    return 0;
}

i32 _atolreef_vlan_create(u32 chip_id, u32 vid)
{
    if (vid > VLAN_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vid is invalid!!!\n");
        return SHR_E_PARAM;
    }
    VLAN_LOCK(chip_id);
    dpl_atolreef_vlan_info *v = _info(chip_id);
    if (vlan_lock_hold_.status() != 0 || v == nullptr) {
        return vlan_lock_hold_.status() != 0 ? vlan_lock_hold_.status() : SHR_E_INIT;
    }
    if (v->vid_node[vid] != nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan %u already be created !!!\n", vid);
        return SHR_E_EXISTS;
    }
    auto *n = static_cast<dpl_atolreef_vlan_node *>(xsal_malloc(sizeof(dpl_atolreef_vlan_node), "vlan", SHR_MOD_VLAN));
    if (n == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan:%u create fail!!!\n", vid);
        return SHR_E_MEMORY;
    }
    memset(n, 0, sizeof(*n));
    n->vid = static_cast<u16>(vid);
    const dpl_reef_ivlan_key ikey = dpl_atolreef_vlan_ingress_default();
    const dpl_reef_evlan_key ekey = dpl_atolreef_vlan_egress_default();
    i32 rc = 0;
    const u32 same = v->prop.vlan_multiplex_flag ? _pair_find(v, ikey, ekey, kNoIndex) : kNoIndex;
    if (same != kNoIndex) {
        SHR_LOG_DBG(chip_id, SHR_MOD_VLAN, "find same vlan entry!!!\n");
        rc = _map_set(chip_id, vid, 1, same);
        if (rc == 0) {
            v->ivlan[same].count++;
            v->evlan[same].count++;
            n->index = same;
        }
    } else {
        u32 index = 0;
        const char *step = "ivlan get empty index failed!!!\n";
        rc = _empty_index<dpl_reef_ivlan_key>(chip_id, v, &index);
        if (rc == 0 && _bit(v->evlan_bmp, index)) {
            step = "evlan insert entry failed!!!\n";
            rc = SHR_E_FULL;
        }
        if (rc == 0) {
            _node_insert(v, index, ikey);
            _node_insert(v, index, ekey);
            n->index = index;
            step = "ipro_ivlan_tbl set failed!!!\n";
            rc = _row_write(chip_id, index, &ikey);
            if (rc == 0) {
                step = "epro_evlan_tbl set failed!!!\n";
                rc = _row_write(chip_id, index, &ekey);
            }
            if (rc == 0) {
                step = "ipro_vmap_tbl set failed!!!\n";
                rc = _map_set(chip_id, vid, 1, index);
            }
            if (rc != 0) {
                // The pair goes back: no VID is on it.
                v->ivlan[index].count = 0;
                v->evlan[index].count = 0;
                _del_index<dpl_reef_ivlan_key>(chip_id, v, index);
                _del_index<dpl_reef_evlan_key>(chip_id, v, index);
            }
        }
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "%s", step);
        }
    }
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan:%u create fail!!!\n", vid);
        xsal_mem_free(n);
        return rc;
    }
    n->prev = v->tail;
    (v->tail != nullptr ? v->tail->next : v->head) = n;
    v->tail = n;
    v->vid_node[vid] = n;
    v->vlan_count++;
    SHR_LOG_DBG(chip_id, SHR_MOD_VLAN, "after insert, vlan count:%u\n", v->vlan_count);
    return 0;
}

i32 _atolreef_vlan_destroy(u32 chip_id, u32 vid)
{
    if (vid > VLAN_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vid is invalid!!!\n");
        return SHR_E_PARAM;
    }
    VLAN_LOCK(chip_id);
    if (vlan_lock_hold_.status() != 0) {
        return vlan_lock_hold_.status();
    }
    dpl_atolreef_vlan_node *n = nullptr;
    i32 rc = _existing(chip_id, vid, &n);
    if (rc != 0) {
        return rc;
    }
    dpl_atolreef_vlan_info *v = _info(chip_id);
    rc = _members_write(chip_id, vid, 0, 0);
    if (rc == 0) {
        rc = _pair_release(chip_id, v, n->index);
    }
    if (rc == 0) {
        cib_ipro_vmap_tbl_t r{};
        u64 mask[2] = {~u64{0}, ~u64{0}};
        rc = csl_reef_cib_ipro_vmap_tbl_set(chip_id, 0, vid, &r, mask);
    }
    // The VID is gone from the software either way: its pair was given back.
    _list_remove(v, n);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan:%u destroy fail!!!\n", vid);
    }
    return rc;
}

// How a membership call combines the given bitmaps with the present ones.
enum class Members { set, add, remove };

i32 _members_change(u32 chip_id, u32 vid, const port_bitmap *members, const port_bitmap *untagged, Members how)
{
    VLAN_LOCK(chip_id);
    if (vlan_lock_hold_.status() != 0) {
        return vlan_lock_hold_.status();
    }
    dpl_atolreef_vlan_node *n = nullptr;
    i32 rc = _existing(chip_id, vid, &n);
    u32 cur_m = 0, cur_u = 0;
    if (rc == 0 && how != Members::set) {
        rc = _members_read(chip_id, vid, &cur_m, &cur_u);
    }
    if (rc != 0) {
        return rc;
    }
    const u32 m = _low(members);
    const u32 u = untagged != nullptr ? _low(untagged) : 0;
    switch (how) {
    case Members::set:
        rc = _members_write(chip_id, vid, m, u);
        n->member = *members;
        break;
    case Members::add:
        rc = _members_write(chip_id, vid, cur_m | m, (cur_u & ~m) | u);
        for (u32 w = 0; w < PORT_BITMAP_WORDS; w++) {
            n->member.word[w] |= members->word[w];
        }
        break;
    case Members::remove:
        rc = _members_write(chip_id, vid, cur_m & ~m, cur_u & ~m);
        for (u32 w = 0; w < PORT_BITMAP_WORDS; w++) {
            n->member.word[w] &= ~members->word[w];
        }
        break;
    }
    n->changed = 1;
    return rc;
}

i32 _atolreef_vlan_port_set(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged)
{
    const i32 rc = _members_check(chip_id, vid, members, untagged, "vlan %u is invalid !!!\n");
    return rc != 0 ? rc : _members_change(chip_id, vid, members, untagged, Members::set);
}

i32 _atolreef_vlan_port_add(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged)
{
    const i32 rc = _members_check(chip_id, vid, members, untagged, "vlan %u is invalid !!!\n");
    return rc != 0 ? rc : _members_change(chip_id, vid, members, untagged, Members::add);
}

i32 _atolreef_vlan_port_delete(u32 chip_id, u32 vid, port_bitmap *ports)
{
    const i32 rc = _members_check(chip_id, vid, ports, nullptr, "vlan %u is invalid!!!\n");
    return rc != 0 ? rc : _members_change(chip_id, vid, ports, nullptr, Members::remove);
}

i32 _atolreef_vlan_port_get(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged)
{
    if (vid > VLAN_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan %u is invalid!!!\n", vid);
        return SHR_E_PARAM;
    }
    if (members == nullptr || untagged == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    VLAN_LOCK(chip_id);
    if (vlan_lock_hold_.status() != 0) {
        return vlan_lock_hold_.status();
    }
    dpl_atolreef_vlan_node *n = nullptr;
    i32 rc = _existing(chip_id, vid, &n);
    u32 m = 0, u = 0;
    if (rc == 0) {
        rc = _members_read(chip_id, vid, &m, &u);
    }
    *members = port_bitmap{{m, 0, 0}};
    *untagged = port_bitmap{{u, 0, 0}};
    return rc;
}

// ---- records of a VID ----------------------------------------------------------------------

i32 _record_check(u32 chip_id, u32 vid, const void *record)
{
    if (vid > VLAN_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vid is invalid!!!\n");
        return SHR_E_PARAM;
    }
    if (record == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "control ptr is NULL!!!\n");
        return SHR_E_NULL_PTR;
    }
    return 0;
}

// The existing VID's node under the lock, for a record call.
i32 _record_vlan(u32 chip_id, u32 vid, dpl_atolreef_vlan_node **vn)
{
    *vn = _vlan(chip_id, vid);
    if (*vn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan %u is not exist!!!\n", vid);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

// `fn(node)` for an existing VID under the lock, after the checks of a
// record call.
template <typename Fn>
i32 _with_vlan(u32 chip_id, u32 vid, const void *record, Fn fn)
{
    i32 rc = _record_check(chip_id, vid, record);
    if (rc != 0) {
        return rc;
    }
    VLAN_LOCK(chip_id);
    dpl_atolreef_vlan_node *vn = nullptr;
    rc = vlan_lock_hold_.status() != 0 ? vlan_lock_hold_.status() : _record_vlan(chip_id, vid, &vn);
    return rc != 0 ? rc : fn(vn);
}

template <typename Key>
i32 _record_get(u32 chip_id, u32 vid, Key *record)
{
    return _with_vlan(chip_id, vid, record, [&](const dpl_atolreef_vlan_node *vn) {
        *record = Side<Key>::nodes(_info(chip_id))[vn->index].key;
        return 0;
    });
}

template <typename Key>
i32 _record_set(u32 chip_id, u32 vid, const Key *record)
{
    return _with_vlan(chip_id, vid, record, [&](dpl_atolreef_vlan_node *vn) {
        return _entry_check(chip_id, _info(chip_id), vn, *record);
    });
}

template <typename Node>
i32 _node_get(u32 chip_id, u32 vid, Node *node)
{
    return _with_vlan(chip_id, vid, node, [&](const dpl_atolreef_vlan_node *vn) {
        *node = Side<decltype(node->key)>::nodes(_info(chip_id))[vn->index];
        return 0;
    });
}

// The per-VLAN control keys: one field of one record, its range.
struct CtrlKey {
    u32 key;
    bool egress;
    u32 offset;
    u32 size;
    u32 max;
};
#define DPL_VLAN_IKEY(k, f, m) {k, false, offsetof(dpl_reef_ivlan_key, f), sizeof(dpl_reef_ivlan_key::f), m}
#define DPL_VLAN_EKEY(k, f, m) {k, true, offsetof(dpl_reef_evlan_key, f), sizeof(dpl_reef_evlan_key::f), m}
constexpr CtrlKey kCtrlKeys[] = {
    DPL_VLAN_IKEY(1, ad_act3_tocpu, 1),  DPL_VLAN_IKEY(2, ad_act3_fwd_disable, 1),
    DPL_VLAN_IKEY(3, ad_act2_tocpu, 1),  DPL_VLAN_IKEY(4, ad_act2_fwd_disable, 1),
    DPL_VLAN_IKEY(5, ad_act1_tocpu, 1),  DPL_VLAN_IKEY(6, ad_act1_fwd_disable, 1),
    DPL_VLAN_IKEY(10, classid, 15),      DPL_VLAN_IKEY(11, dai_en, 1),
    DPL_VLAN_IKEY(12, protocol_bmp, 255), DPL_VLAN_IKEY(15, cnt_type, 3),
    DPL_VLAN_IKEY(16, mac_idx, 1),       DPL_VLAN_IKEY(17, cnt_id, 1023),
    DPL_VLAN_IKEY(21, local_mac_en, 1),  DPL_VLAN_EKEY(22, smac_idx, 1),
    DPL_VLAN_EKEY(23, cnt_type, 4),      DPL_VLAN_EKEY(24, cnt_id, 4095),
};
#undef DPL_VLAN_IKEY
#undef DPL_VLAN_EKEY

u32 _field_get(const void *record, const CtrlKey &k)
{
    const u8 *p = static_cast<const u8 *>(record) + k.offset;
    if (k.size == 1) {
        return *p;
    }
    u16 v = 0;
    memcpy(&v, p, sizeof(v));
    return v;
}

void _field_set(void *record, const CtrlKey &k, u32 value)
{
    u8 *p = static_cast<u8 *>(record) + k.offset;
    if (k.size == 1) {
        *p = static_cast<u8>(value);
    } else {
        const u16 v = static_cast<u16>(value);
        memcpy(p, &v, sizeof(v));
    }
}

i32 _ctrl_key(u32 chip_id, u32 vid, const vlan_control *control, const CtrlKey **out)
{
    i32 rc = _record_check(chip_id, vid, control);
    if (rc != 0) {
        return rc;
    }
    for (const CtrlKey &k : kCtrlKeys) {
        if (k.key == control->key) {
            *out = &k;
            return 0;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "This key:%u not support!!!\n", control->key);
    return SHR_E_NOT_SUPPORT;
}

// One field of a VID's record of kind `Key` merged into a copy of the
// record, which is then rewritten as a whole: the row sharing follows.
template <typename Key>
i32 _field_merge(u32 chip_id, u32 vid, const CtrlKey &k, u32 value)
{
    VLAN_LOCK(chip_id);
    Key rec{};
    const i32 rc = _record_get(chip_id, vid, &rec);
    _field_set(&rec, k, value);
    return rc != 0 ? rc : _record_set(chip_id, vid, &rec);
}

template <typename Key>
i32 _field_read(u32 chip_id, u32 vid, const CtrlKey &k, u32 *value)
{
    Key rec{};
    const i32 rc = _record_get(chip_id, vid, &rec);
    *value = _field_get(&rec, k);
    return rc;
}

i32 _atolreef_vlan_control_set(u32 chip_id, u32 vid, vlan_control *control)
{
    const CtrlKey *k = nullptr;
    const i32 rc = _ctrl_key(chip_id, vid, control, &k);
    if (rc != 0) {
        return rc;
    }
    if (control->value > k->max) {
        if (k->key == VLAN_CTRL_PROTOCOL_BMP) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "protocol bitmap is out of range!!!\n");
            return SHR_E_RANGE;
        }
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "key:%u , input value:%u is invalid!!!\n", control->key, control->value);
        return SHR_E_PARAM;
    }
    return k->egress ? _field_merge<dpl_reef_evlan_key>(chip_id, vid, *k, control->value)
                     : _field_merge<dpl_reef_ivlan_key>(chip_id, vid, *k, control->value);
}

i32 _atolreef_vlan_control_get(u32 chip_id, u32 vid, vlan_control *control)
{
    const CtrlKey *k = nullptr;
    const i32 rc = _ctrl_key(chip_id, vid, control, &k);
    if (rc != 0) {
        return rc;
    }
    return k->egress ? _field_read<dpl_reef_evlan_key>(chip_id, vid, *k, &control->value)
                     : _field_read<dpl_reef_ivlan_key>(chip_id, vid, *k, &control->value);
}

i32 _atolreef_vlan_forward_bitmap_set(u32 chip_id, const port_bitmap *bitmap, u32 all)
{
    if (bitmap == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    for (u32 vid = 0; vid < DPL_VLAN_VID_COUNT; vid++) {
        VLAN_LOCK(chip_id);
        if (vlan_lock_hold_.status() != 0) {
            return vlan_lock_hold_.status();
        }
        dpl_atolreef_vlan_node *n = _vlan(chip_id, vid);
        if (n == nullptr || (all == 0 && n->changed == 0)) {
            continue;
        }
        cib_ipro_vbmp_tbl_t r{};
        r.portbit_map = static_cast<u32>(bitmap->word[0] & n->member.word[0]);
        u64 mask[2] = {~u64{0}, ~u64{0}};
        const i32 rc = csl_reef_cib_ipro_vbmp_tbl_set(chip_id, 0, vid, &r, mask);
        if (rc != 0) {
            return rc;
        }
        n->changed = 0;
    }
    return 0;
}

i32 _atolreef_vlan_map_index_get(u32 chip_id, u32 vid, u32 *index)
{
    if (vid > VLAN_VID_MAX || index == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vid is invalid!!!\n");
        return SHR_E_PARAM;
    }
    cib_ipro_vmap_tbl_t r{};
    const i32 rc = csl_reef_cib_ipro_vmap_tbl_get(chip_id, 0, vid, &r);
    *index = r.vlan_idx;
    return rc;
}

// The VLAN TCAM spaces, then the registers of the chip's VLAN stages after
// a reset: the four TPIDs, every port accepting TPID 0 as an outer tag,
// every TPID accepted as an inner tag, the low power mode of the VLAN stage
// on.
i32 _atolreef_vlan_hw_init(u32 chip_id)
{
    struct RegValue {
        u32 reg;
        u32 value;
    };
    static constexpr RegValue kRegs[] = {
        {cib_lsw_hreg_tpidcfg0, 0x88A8u << 16 | 0x8100u}, {cib_lsw_hreg_tpidcfg1, 0x9200u << 16 | 0x9100u},
        {cib_tti_tpidcfg_sel0, 0x11111111u},              {cib_tti_tpidcfg_sel1, 0x11111111u},
        {cib_tti_tpidcfg_sel2, 0x11111111u},              {cib_tti_tpidcfg_sel3, 0x11111111u},
        {cib_tti_tpid_compare_cfg, 0xFu},                 {cib_ipro_msic_reg_cfg, 1u},
    };
    i32 rc = _atolreef_vlan_init_tcam(chip_id);
    for (const RegValue &r : kRegs) {
        if (rc != 0) {
            return rc;
        }
        rc = csl_reef_reg_set_u32(chip_id, CIB_ID(r.reg, 0), r.value);
    }
    return rc;
}

} // namespace

extern "C" {

dpl_reef_ivlan_key dpl_atolreef_vlan_ingress_default(void)
{
    dpl_reef_ivlan_key k{};
    k.vld = 1;
    k.unuc_broad = 1;
    k.unmc_broad = 1;
    k.mac_lrn_mode = 1;
    k.bc_broad = 1;
    return k;
}

dpl_reef_evlan_key dpl_atolreef_vlan_egress_default(void)
{
    dpl_reef_evlan_key k{};
    k.vld = 1;
    return k;
}

i32 dpl_atolreef_vlan_special_register(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    reef_vlan_special[chip_id] = reef_vlan_special_t{
        .soft_init = _atolreef_vlan_soft_init,
        .soft_deinit = _atolreef_vlan_soft_deinit,
        .hw_init = _atolreef_vlan_hw_init,
        .create = _atolreef_vlan_create,
        .destroy = _atolreef_vlan_destroy,
        .port_add = _atolreef_vlan_port_add,
        .port_set = _atolreef_vlan_port_set,
        .port_delete = _atolreef_vlan_port_delete,
        .port_get = _atolreef_vlan_port_get,
        .control_set = _atolreef_vlan_control_set,
        .control_get = _atolreef_vlan_control_get,
        .ingress_control_get = _record_get<dpl_reef_ivlan_key>,
        .ingress_control_set = _record_set<dpl_reef_ivlan_key>,
        .egress_control_get = _record_get<dpl_reef_evlan_key>,
        .egress_control_set = _record_set<dpl_reef_evlan_key>,
        .ingress_software_info_get = _node_get<dpl_reef_ivlan_node>,
        .egress_software_info_get = _node_get<dpl_reef_evlan_node>,
        .forward_bitmap_set = _atolreef_vlan_forward_bitmap_set,
        .map_index_get = _atolreef_vlan_map_index_get,
        .vacl_add = dpl_atolreef_vlan_vacl_add,
        .vacl_delete = dpl_atolreef_vlan_vacl_delete,
        .vacl_get = dpl_atolreef_vlan_vacl_get,
        .vacl_traverse = dpl_atolreef_vlan_vacl_traverse,
        .vacl_clear = dpl_atolreef_vlan_vacl_clear,
    };
    return 0;
}

} // extern "C"
