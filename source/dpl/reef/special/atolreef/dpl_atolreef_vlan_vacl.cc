// The VLAN TCAM entries of atolreef: ingress translation and the MAC-,
// subnet- and protocol-based VLANs.  The 160-bit space (TCAM module 1) is
// cut by the reservations into consecutive ranges: voice, translate, MAC,
// subnet; the 320-bit space (module 2) is the protocol range.  Each entry
// has a node in the list of its space (the key record the caller gave, its
// place, its kind), found by comparing the key bytes; the place is the
// first free one of the kind's range.  The software list is written first,
// the TCAM second, the counts after both; a failing write takes the node
// back, so a refused add changes nothing.
#include <tide/vlan.h>

#include <cstring>

#include "atolreef_cib.h"
#include "atolreef_tcam_table.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_vlan.h"

namespace {

constexpr u32 kTid160 = 9;
constexpr u32 kTid320 = 3;
constexpr u32 kTidMask = 0xF;
constexpr u32 kVidMax = VLAN_VID_MAX;
constexpr u32 kPriMax = 7;
constexpr u32 kActMax = 3;
constexpr u32 kActReplace = 2;
constexpr u32 kFwdTypeMax = 7;
constexpr u32 kFwdInfoMax = 1023;
constexpr u32 kDscpMax = 63;
// A voice entry's DSCP is stored shifted left 2, as the action's 8-bit
// dscp holds it.
constexpr u32 kDscpShift = 2;
constexpr u32 kTagNumMax = 3;
constexpr u32 kVtKeyTypeMax = 23;
constexpr u32 kTrunkPortFlag = 32;
constexpr u32 kPort28Mask = 0xFFFFFFF;
constexpr u32 kPort32Mask = 0xFFFFFFFF;

// ---- the spaces and the ranges of the kinds ------------------------------------------------

// The kinds, as an index of the counts: voice, translate, MAC, subnet of
// the 160-bit space, then protocol of the 320-bit space.
enum Kind : u32 { kVoice, kVt, kMac, kSubnet, kProtocol, kKinds };

constexpr const char *kKindName[kKinds] = {"VACL_160BIT_MAC_VLAN", "VACL_160BIT_VT", "VACL_160BIT_MAC_VLAN",
                                           "VACL_160BIT_SUBNET_VLAN", "VACL_320BIT_PROTOCOL_VLAN"};
// The internal kind number an entry keeps.
constexpr u32 kKindId[kKinds] = {DPL_VACL_VOICE, DPL_VACL_VT, DPL_VACL_MAC, DPL_VACL_SUBNET, DPL_VACL_PROTOCOL};

i32 _bad(u32 chip_id, const char *fmt, u32 value)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, fmt, value);
    return SHR_E_PARAM;
}

// The first place and the size of a kind's range.
void _range(const dpl_atolreef_vlan_property &p, u32 kind, u32 *first, u32 *size)
{
    const u32 sizes[kKinds] = {p.voice_vlan_cnt, p.vacl_cnt, p.mac_vlan_cnt, p.subnet_vlan_cnt, p.protocol_vlan_cnt};
    // The 320-bit space holds the protocol range alone.
    *first = 0;
    for (u32 k = 0; k < kind && kind != kProtocol; k++) {
        *first += sizes[k];
    }
    *size = sizes[kind];
}

dpl_atolreef_vacl_space &_space(dpl_atolreef_vlan_info *v, u32 kind)
{
    return v->vacl[kind == kProtocol ? 1 : 0];
}

bool _used(const dpl_atolreef_vacl_space &s, u32 place)
{
    return (s.used[place / 32] >> (place % 32) & 1) != 0;
}

void _mark(dpl_atolreef_vacl_space &s, u32 place, bool used)
{
    const u32 bit = 1u << (place % 32);
    s.used[place / 32] = used ? (s.used[place / 32] | bit) : (s.used[place / 32] & ~bit);
}

// The first free place of the kind's range; -6 when the range is full.
i32 _empty_index(u32 chip_id, dpl_atolreef_vlan_info *v, u32 kind, u32 *place)
{
    u32 first = 0, size = 0;
    _range(v->prop, kind, &first, &size);
    if (v->vacl_count[kind] >= size) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "%s is full  max_count_start!!!\n", kKindName[kind]);
        return SHR_E_FULL;
    }
    const dpl_atolreef_vacl_space &s = _space(v, kind);
    for (u32 i = first; i < first + size && i < DPL_VACL_PLACES; i++) {
        if (!_used(s, i)) {
            *place = i;
            return 0;
        }
    }
    if (kind == kProtocol) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "protocol vlan is full!!!\n");
    }
    return SHR_E_FULL;
}

// ---- the list of a space ----------------------------------------------------------------------

dpl_atolreef_vacl_node *_find(dpl_atolreef_vacl_space &s, const void *key, u32 size)
{
    for (dpl_atolreef_vacl_node *n = s.head; n != nullptr; n = n->next) {
        if (memcmp(n->key, key, size) == 0) {
            return n;
        }
    }
    return nullptr;
}

dpl_atolreef_vacl_node *_insert(dpl_atolreef_vacl_space &s, const void *key, u32 size, u32 place, u32 kind_id)
{
    auto *n = static_cast<dpl_atolreef_vacl_node *>(
        xsal_malloc(sizeof(dpl_atolreef_vacl_node), "vlan_vacl", SHR_MOD_VLAN));
    if (n == nullptr) {
        return nullptr;
    }
    memset(n, 0, sizeof(*n));
    memcpy(n->key, key, size);
    n->key_ad_index = place;
    n->kind = kind_id;
    n->prev = s.tail;
    (s.tail != nullptr ? s.tail->next : s.head) = n;
    s.tail = n;
    return n;
}

void _remove(dpl_atolreef_vacl_space &s, dpl_atolreef_vacl_node *n)
{
    (n->prev != nullptr ? n->prev->next : s.head) = n->next;
    (n->next != nullptr ? n->next->prev : s.tail) = n->prev;
    xsal_mem_free(n);
}

// ---- the action row, common to all kinds ------------------------------------------------------

i32 _action_check(u32 chip_id, const vlan_translate_action *a)
{
    struct Limit {
        u32 value;
        u32 max;
        const char *fmt;
    };
    const Limit limits[] = {{a->otag_action, kActMax, "outer_tag_act is invalid!!!\n"},
                            {a->itag_action, kActMax, "inner_tag_act is invalid!!!\n"},
                            {a->new_outer_vlan, kVidMax, "action->new_outer_vlan:%u is invalid!!!\n\n"},
                            {a->new_inner_vlan, kVidMax, "action->new_inner_vlan:%u is invalid!!!\n\n"},
                            {a->new_outer_pri, kPriMax, "outerpri is invalid!!!\n"},
                            {a->new_inner_pri, kPriMax, "innerpri is invalid!!!\n"},
                            {a->new_outer_cfi, 1, "outercfi is invalid!!!\n"},
                            {a->new_inner_cfi, 1, "innercfi is invalid!!!\n"},
                            {a->fwdtype, kFwdTypeMax, "fwdtype:%u is invalid!!!\n"},
                            {a->fwdinfo, kFwdInfoMax, "fwdinfo:%u is invalid!!!\n"}};
    for (const Limit &l : limits) {
        if (l.value > l.max) {
            return _bad(chip_id, l.fmt, l.value);
        }
    }
    const Limit acts[] = {{a->outer_pri_act, 0, "outer_pri_act is invalid!!!\n"},
                          {a->outer_cfi_act, 0, "outer_cfi_act is invalid!!!\n"},
                          {a->inner_pri_act, 0, "inner_pri_act is invalid!!!\n"},
                          {a->inner_cfi_act, 0, "inner_cfi_act is invalid!!!\n"}};
    for (const Limit &l : acts) {
        if (l.value != 0 && l.value != kActReplace) {
            return _bad(chip_id, l.fmt, l.value);
        }
    }
    return 0;
}

cib_ipro_tcam_vlanacl_ad_t _ad_of(const vlan_translate_action &a)
{
    cib_ipro_tcam_vlanacl_ad_t ad{};
    ad.valid = 1;
    ad.ovlancmd = static_cast<u8>(a.otag_action);
    ad.ovlan = a.new_outer_vlan;
    ad.ivlancmd = static_cast<u8>(a.itag_action);
    ad.ivlan = a.new_inner_vlan;
    ad.oprien = a.outer_pri_act == kActReplace ? 1 : 0;
    ad.opri = a.new_outer_pri;
    ad.ocfien = a.outer_cfi_act == kActReplace ? 1 : 0;
    ad.ocfi = a.new_outer_cfi;
    ad.iprien = a.inner_pri_act == kActReplace ? 1 : 0;
    ad.ipri = a.new_inner_pri;
    ad.icfien = a.inner_cfi_act == kActReplace ? 1 : 0;
    ad.icfi = a.new_inner_cfi;
    ad.fwdcmd = static_cast<u8>(a.fwdtype);
    ad.dest = static_cast<u16>(a.fwdinfo);
    return ad;
}

vlan_translate_action _action_of(const cib_ipro_tcam_vlanacl_ad_t &ad)
{
    vlan_translate_action a{};
    a.otag_action = ad.ovlancmd;
    a.new_outer_vlan = ad.ovlan;
    a.itag_action = ad.ivlancmd;
    a.new_inner_vlan = ad.ivlan;
    a.outer_pri_act = ad.oprien != 0 ? kActReplace : 0;
    a.new_outer_pri = ad.opri;
    a.outer_cfi_act = ad.ocfien != 0 ? kActReplace : 0;
    a.new_outer_cfi = ad.ocfi;
    a.inner_pri_act = ad.iprien != 0 ? kActReplace : 0;
    a.new_inner_pri = ad.ipri;
    a.inner_cfi_act = ad.icfien != 0 ? kActReplace : 0;
    a.new_inner_cfi = ad.icfi;
    a.fwdtype = ad.fwdcmd;
    a.fwdinfo = ad.dest;
    a.dscp = ad.dscpen != 0 ? static_cast<u8>(ad.dscp >> kDscpShift) : 0;
    return a;
}

// ---- the keys of the families -------------------------------------------------------------------

using Rec160 = cib_ipro_tcam_vlanacl_160_t;
using Rec320 = cib_ipro_tcam_vlanacl_320_t;

// The 60-bit match of an ingress translation key type: outer priority
// (59..57), outer VID (55..44), inner priority (43..41), inner VID (39..28),
// port (27..0).
struct VtMask {
    u32 type;
    u64 mask;
};
constexpr VtMask kVtMasks[] = {
    {VLAN_IVT_KEY_OVID_IVID, 0x00FFF0FFF0000000ull},      {VLAN_IVT_KEY_OVID, 0x00FFF00000000000ull},
    {VLAN_IVT_KEY_IVID, 0x000000FFF0000000ull},           {VLAN_IVT_KEY_PORT_OVID_IVID, 0x00FFF0FFFFFFFFFFull},
    {VLAN_IVT_KEY_PORT_OVID, 0x00FFF0000FFFFFFFull},      {VLAN_IVT_KEY_PORT_IVID, 0x000000FFFFFFFFFFull},
    {VLAN_IVT_KEY_OVID_OPRI, 0x0EFFF00000000000ull},      {VLAN_IVT_KEY_IVID_IPRI, 0x00000EFFF0000000ull},
    {VLAN_IVT_KEY_PORT_OVID_OPRI, 0x0EFFF0000FFFFFFFull}, {VLAN_IVT_KEY_PORT_IVID_IPRI, 0x00000EFFFFFFFFFFull},
};

// The port field of a key: the port, or the trunk id with bit 5 set.
i32 _port_value(u32 chip_id, u32 trunk_flag, u32 tgid, u32 lport, u32 *value)
{
    if (trunk_flag != 0) {
        const i32 rc = dpl_reef_check_tgid(chip_id, tgid);
        *value = tgid | kTrunkPortFlag;
        return rc;
    }
    if (csl_port_valid_check(chip_id, lport) != 0) {
        return _bad(chip_id, "key->lport:%d is invalid!!!\n", lport);
    }
    *value = lport;
    return 0;
}

i32 _vt_key(u32 chip_id, const vlan_ingress_translate_key &k, Rec160 *r)
{
    if (k.vt_key_type == 0 || k.vt_key_type > kVtKeyTypeMax) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vt_key_type id error !!!\n");
        return SHR_E_PARAM;
    }
    u64 m = 0;
    for (const VtMask &x : kVtMasks) {
        m = x.type == k.vt_key_type ? x.mask : m;
    }
    if (m == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vt_key_type %u not support!!!\n", k.vt_key_type);
        return SHR_E_NOT_SUPPORT;
    }
    if (k.outer_vlan > kVidMax) {
        return _bad(chip_id, "input match ovid : %u is invalid param!!!\n", k.outer_vlan);
    }
    if (k.inner_vlan > kVidMax) {
        return _bad(chip_id, "input match ivid : %u is invalid param!!!\n", k.inner_vlan);
    }
    if (k.outer_pri > kPriMax) {
        return _bad(chip_id, "input match opri : %u is invalid param!!!\n", k.outer_pri);
    }
    if (k.inner_pri > kPriMax) {
        return _bad(chip_id, "input match ipri : %u is invalid param!!!\n", k.inner_pri);
    }
    if (k.tag_num > kTagNumMax) {
        return _bad(chip_id, "input match tagnum : %u is invalid param!!!\n", k.tag_num);
    }
    // The port or trunk is checked when the key type matches on it.
    u32 port = 0;
    if ((m & kPort28Mask) != 0) {
        const i32 rc = _port_value(chip_id, k.trunk_flag, k.tgid, k.lport, &port);
        if (rc != 0) {
            return rc;
        }
    }
    r->key.opri = static_cast<u8>(k.outer_pri);
    r->key.vacl_ovlan = k.outer_vlan;
    r->key.ipri = static_cast<u8>(k.inner_pri);
    r->key.vacl_ivlan = k.inner_vlan;
    r->key.portbitmap_l28 = port;
    r->mask.opri = static_cast<u8>(m >> 57 & 7);
    r->mask.vacl_ovlan = static_cast<u16>(m >> 44 & 0xFFF);
    r->mask.ipri = static_cast<u8>(m >> 41 & 7);
    r->mask.vacl_ivlan = static_cast<u16>(m >> 28 & 0xFFF);
    r->mask.portbitmap_l28 = static_cast<u32>(m & kPort28Mask);
    return 0;
}

// The MAC family's kind: voice when the key says so.
u32 _mac_kind(const vlan_mac_key &k)
{
    return k.voice != 0 ? kVoice : kMac;
}

i32 _mac_key(u32 chip_id, const vlan_mac_key &k, Rec160 *r)
{
    r->key.smac_47_32 = static_cast<u16>(k.smac[0] << 8 | k.smac[1]);
    r->key.smac = static_cast<u32>(k.smac[2]) << 24 | k.smac[3] << 16 | k.smac[4] << 8 | k.smac[5];
    r->mask.smac_47_32 = static_cast<u16>(k.smac_mask[0] << 8 | k.smac_mask[1]);
    r->mask.smac = static_cast<u32>(k.smac_mask[2]) << 24 | k.smac_mask[3] << 16 | k.smac_mask[4] << 8 |
                   k.smac_mask[5];
    if (k.voice == 0) {
        return 0;
    }
    if (k.outer_vlan > kVidMax) {
        return _bad(chip_id, "input match ovid : %u is invalid param!!!\n", k.outer_vlan);
    }
    if (k.dscp > kDscpMax) {
        return _bad(chip_id, "dscp_value is invalid!!!\n", k.dscp);
    }
    u32 port = 0;
    const i32 rc = _port_value(chip_id, 0, 0, k.lport, &port);
    r->key.vacl_ovlan = k.outer_vlan;
    r->mask.vacl_ovlan = kVidMax;
    r->key.portbitmap_l28 = port;
    r->mask.portbitmap_l28 = kPort28Mask;
    r->ad.voicevlan = 1;
    r->ad.dscpen = 1;
    r->ad.dscp = static_cast<u8>(k.dscp << kDscpShift);
    return rc;
}

i32 _subnet_key(u32 chip_id, const vlan_subnet_key &k, Rec160 *r)
{
    if (k.ipv6 != 0 || (k.flags & 1) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "ipv6 subnet vlan not support!!!\n");
        return SHR_E_NOT_SUPPORT;
    }
    r->key.ipv4_sip = k.ipv4_sip;
    r->mask.ipv4_sip = k.ipv4_mask;
    return 0;
}

i32 _protocol_key(u32 chip_id, const vlan_protocol_key &k, Rec320 *r)
{
    u32 port = 0;
    i32 rc = _port_value(chip_id, k.trunk_flag, k.tgid, k.lport, &port);
    if (rc != 0) {
        return rc;
    }
    switch (k.l2_pkt_type) {
    case VLAN_L2_PKT_ETHERNETII:
        break;
    case VLAN_L2_PKT_SNAP:
        r->key.snap = 1;
        break;
    case VLAN_L2_PKT_LLC:
        r->key.llc = 1;
        break;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "l2_pkt_type is error:%d\n", k.l2_pkt_type);
        return SHR_E_NOT_SUPPORT;
    }
    r->key.vacl_ethtype = k.protocol_type;
    r->mask.vacl_ethtype = 0xFFFF;
    r->mask.snap = 1;
    r->mask.llc = 1;
    r->key.portbitmap = port;
    r->mask.portbitmap = kPort32Mask;
    return rc;
}

// ---- one family: its key record, its space, its texts ------------------------------------------

// What tells the families apart: the key record (normalized: its ignored
// bytes zero), its kind, how it becomes a TCAM record, its texts.
template <typename Key, typename Rec>
struct Family {
    u32 id; // enum dpl_vlan_vacl_family
    u32 (*kind)(const Key &);
    i32 (*fill)(u32 chip_id, const Key &, Rec *);
    const char *exists;
    const char *missing;
};

template <typename Key>
Key _normal(const Key &k)
{
    Key n = k;
    if constexpr (requires { n.reserved; }) {
        n.reserved = 0;
    }
    if constexpr (requires { n.voice; }) {
        // Only a voice entry matches on the port, VID and DSCP.
        n.voice = n.voice != 0 ? 1 : 0;
        if (n.voice == 0) {
            n.lport = 0;
            n.outer_vlan = 0;
            n.dscp = 0;
        }
    }
    return n;
}

// The TCAM of a space: module, type tag, the generated accessors.
template <typename Rec>
struct Tcam;
template <>
struct Tcam<Rec160> {
    static constexpr u32 kModule = CSL_TCAM_UTILS_VT_160;
    static void tag(Rec160 *r)
    {
        r->key.tid = kTid160;
        r->mask.tid = kTidMask;
    }
    static int set(u32 c, u32 b, u32 i, Rec160 *r) { return csl_reef_cib_ipro_tcam_vlanacl_160_set(c, b, i, r); }
    static int get(u32 c, u32 b, u32 i, Rec160 *r) { return csl_reef_cib_ipro_tcam_vlanacl_160_get(c, b, i, r); }
    static int del(u32 c, u32 b, u32 i) { return csl_reef_cib_ipro_tcam_vlanacl_160_del(c, b, i); }
};
template <>
struct Tcam<Rec320> {
    static constexpr u32 kModule = CSL_TCAM_UTILS_VT_320;
    static void tag(Rec320 *r)
    {
        r->key.tid = kTid320;
        r->mask.tid = kTidMask;
    }
    static int set(u32 c, u32 b, u32 i, Rec320 *r) { return csl_reef_cib_ipro_tcam_vlanacl_320_set(c, b, i, r); }
    static int get(u32 c, u32 b, u32 i, Rec320 *r) { return csl_reef_cib_ipro_tcam_vlanacl_320_get(c, b, i, r); }
    static int del(u32 c, u32 b, u32 i) { return csl_reef_cib_ipro_tcam_vlanacl_320_del(c, b, i); }
};

template <typename Rec>
i32 _place(u32 chip_id, u32 place, u32 *block, u32 *index)
{
    return csl_reef_tcam_utils_index_to_block_index(chip_id, Tcam<Rec>::kModule, place, block, index);
}

dpl_atolreef_vlan_info *_info(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_atolreef_vlan_info[chip_id] : nullptr;
}

template <typename Key, typename Rec>
i32 _add(u32 chip_id, const Family<Key, Rec> &f, const Key &raw, const vlan_translate_action &action)
{
    dpl_atolreef_vlan_info *v = _info(chip_id);
    if (v == nullptr) {
        return SHR_E_INIT;
    }
    const Key key = _normal(raw);
    i32 rc = _action_check(chip_id, &action);
    if (rc != 0) {
        return rc;
    }
    Rec rec{};
    rec.ad = _ad_of(action);
    rc = f.fill(chip_id, key, &rec);
    if (rc != 0) {
        return rc;
    }
    Tcam<Rec>::tag(&rec);
    const u32 kind = f.kind(key);
    VLAN_LOCK(chip_id);
    dpl_atolreef_vacl_space &s = _space(v, kind);
    if (_find(s, &key, sizeof(key)) != nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "%s", f.exists);
        return SHR_E_EXISTS;
    }
    u32 place = 0, block = 0, index = 0;
    rc = _empty_index(chip_id, v, kind, &place);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vacl get empty index fail!!!\n");
        return rc;
    }
    rc = _place<Rec>(chip_id, place, &block, &index);
    if (rc != 0) {
        return rc;
    }
    dpl_atolreef_vacl_node *n = _insert(s, &key, sizeof(key), place, kKindId[kind]);
    if (n == nullptr) {
        return SHR_E_MEMORY;
    }
    rc = Tcam<Rec>::set(chip_id, block, index, &rec);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vacl tcam entry %u set fail (%d)!!!\n", place, rc);
        _remove(s, n);
        return rc;
    }
    _mark(s, place, true);
    v->vacl_count[kind]++;
    return 0;
}

// The entry of a key, under the caller's hold of lock 18; -7 when absent.
template <typename Key, typename Rec>
i32 _lookup(u32 chip_id, const Family<Key, Rec> &f, const Key &key, dpl_atolreef_vacl_node **out)
{
    dpl_atolreef_vlan_info *v = _info(chip_id);
    if (v == nullptr) {
        return SHR_E_INIT;
    }
    *out = _find(_space(v, f.kind(key)), &key, sizeof(key));
    if (*out == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "%s", f.missing);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

template <typename Rec>
i32 _delete_node(u32 chip_id, u32 kind, dpl_atolreef_vacl_node *n)
{
    dpl_atolreef_vlan_info *v = _info(chip_id);
    u32 block = 0, index = 0;
    i32 rc = _place<Rec>(chip_id, n->key_ad_index, &block, &index);
    if (rc == 0) {
        rc = Tcam<Rec>::del(chip_id, block, index);
    }
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vacl tcam entry %u delete fail (%d)!!!\n", n->key_ad_index, rc);
        return rc;
    }
    dpl_atolreef_vacl_space &s = _space(v, kind);
    _mark(s, n->key_ad_index, false);
    _remove(s, n);
    v->vacl_count[kind]--;
    return 0;
}

template <typename Key, typename Rec>
i32 _delete(u32 chip_id, const Family<Key, Rec> &f, const Key &raw)
{
    const Key key = _normal(raw);
    VLAN_LOCK(chip_id);
    dpl_atolreef_vacl_node *n = nullptr;
    const i32 rc = _lookup(chip_id, f, key, &n);
    return rc != 0 ? rc : _delete_node<Rec>(chip_id, f.kind(key), n);
}

template <typename Rec>
i32 _action_read(u32 chip_id, const dpl_atolreef_vacl_node *n, vlan_translate_action *action)
{
    u32 block = 0, index = 0;
    Rec rec{};
    i32 rc = _place<Rec>(chip_id, n->key_ad_index, &block, &index);
    if (rc == 0) {
        rc = Tcam<Rec>::get(chip_id, block, index, &rec);
    }
    if (rc == 0) {
        *action = _action_of(rec.ad);
    }
    return rc;
}

template <typename Key, typename Rec>
i32 _get(u32 chip_id, const Family<Key, Rec> &f, const Key &raw, vlan_translate_action *action)
{
    const Key key = _normal(raw);
    VLAN_LOCK(chip_id);
    dpl_atolreef_vacl_node *n = nullptr;
    const i32 rc = _lookup(chip_id, f, key, &n);
    return rc != 0 ? rc : _action_read<Rec>(chip_id, n, action);
}

// The nodes of a family, in the order they were added; the MAC family's
// are of two kinds, voice and MAC.
template <typename Key, typename Rec, typename Fn>
i32 _each(u32 chip_id, const Family<Key, Rec> &f, Fn fn)
{
    dpl_atolreef_vlan_info *v = _info(chip_id);
    if (v == nullptr) {
        return SHR_E_INIT;
    }
    dpl_atolreef_vacl_space &s = v->vacl[f.id == DPL_VACL_PROTOCOL ? 1 : 0];
    i32 result = 0;
    dpl_atolreef_vacl_node *next = nullptr;
    for (dpl_atolreef_vacl_node *n = s.head; n != nullptr; n = next) {
        next = n->next;
        if ((n->kind == DPL_VACL_VOICE ? static_cast<u32>(DPL_VACL_MAC) : n->kind) == f.id) {
            Key key{};
            memcpy(&key, n->key, sizeof(key));
            result |= fn(key, n);
        }
    }
    return result;
}

template <typename Key, typename Rec>
i32 _traverse(u32 chip_id, const Family<Key, Rec> &f, dpl_vlan_vacl_cb cb, void *ctx)
{
    VLAN_LOCK(chip_id);
    return _each(chip_id, f, [&](Key &key, dpl_atolreef_vacl_node *n) {
        vlan_translate_action action{};
        i32 rc = _action_read<Rec>(chip_id, n, &action);
        if (rc == 0) {
            rc = cb(chip_id, &key, &action, ctx);
        }
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "key_ad_index:%u traverse fail!!!\n", n->key_ad_index);
        }
        return rc;
    });
}

template <typename Key, typename Rec>
i32 _clear(u32 chip_id, const Family<Key, Rec> &f)
{
    VLAN_LOCK(chip_id);
    return _each(chip_id, f, [&](Key &key, dpl_atolreef_vacl_node *n) {
        return _delete_node<Rec>(chip_id, f.kind(key), n);
    });
}

constexpr Family<vlan_ingress_translate_key, Rec160> kVtFamily = {
    DPL_VACL_VT, [](const vlan_ingress_translate_key &) -> u32 { return kVt; },
    [](u32 c, const vlan_ingress_translate_key &k, Rec160 *r) { return _vt_key(c, k, r); },
    "vacl key is exists !!!\n", "vacl key not found!!!\n"};
constexpr Family<vlan_mac_key, Rec160> kMacFamily = {
    DPL_VACL_MAC,
    [](const vlan_mac_key &k) { return _mac_kind(k); },
    [](u32 c, const vlan_mac_key &k, Rec160 *r) { return _mac_key(c, k, r); }, "mac vlan is exists!!!\n",
    "mac vlan not found!!!\n"};
constexpr Family<vlan_subnet_key, Rec160> kSubnetFamily = {
    DPL_VACL_SUBNET,
    [](const vlan_subnet_key &) -> u32 { return kSubnet; },
    [](u32 c, const vlan_subnet_key &k, Rec160 *r) { return _subnet_key(c, k, r); },
    "subnet vlan is exists!!!\n", "subnet vlan not found!!!\n"};
constexpr Family<vlan_protocol_key, Rec320> kProtocolFamily = {
    DPL_VACL_PROTOCOL,
    [](const vlan_protocol_key &) -> u32 { return kProtocol; },
    [](u32 c, const vlan_protocol_key &k, Rec320 *r) { return _protocol_key(c, k, r); },
    "protocol vlan is exists!!!\n", "protocol vlan not found!!!\n"};

// Runs `op` with the family of `family` and its key record.
template <typename Op>
i32 _by_family(u32 chip_id, u32 family, const void *key, Op op)
{
    switch (family) {
    case DPL_VACL_VT:
        return op(kVtFamily, static_cast<const vlan_ingress_translate_key *>(key));
    case DPL_VACL_MAC:
        return op(kMacFamily, static_cast<const vlan_mac_key *>(key));
    case DPL_VACL_SUBNET:
        return op(kSubnetFamily, static_cast<const vlan_subnet_key *>(key));
    case DPL_VACL_PROTOCOL:
        return op(kProtocolFamily, static_cast<const vlan_protocol_key *>(key));
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vacl key type is error!!!\n");
        return SHR_E_PARAM;
    }
}

} // namespace

extern "C" {

i32 dpl_atolreef_vlan_vacl_add(u32 chip_id, u32 family, const void *key, const vlan_translate_action *action)
{
    return _by_family(chip_id, family, key,
                      [&](const auto &f, const auto *k) { return _add(chip_id, f, *k, *action); });
}

i32 dpl_atolreef_vlan_vacl_delete(u32 chip_id, u32 family, const void *key)
{
    return _by_family(chip_id, family, key, [&](const auto &f, const auto *k) { return _delete(chip_id, f, *k); });
}

i32 dpl_atolreef_vlan_vacl_get(u32 chip_id, u32 family, const void *key, vlan_translate_action *action)
{
    return _by_family(chip_id, family, key,
                      [&](const auto &f, const auto *k) { return _get(chip_id, f, *k, action); });
}

i32 dpl_atolreef_vlan_vacl_traverse(u32 chip_id, u32 family, dpl_vlan_vacl_cb fn, void *ctx)
{
    return _by_family(chip_id, family, nullptr,
                      [&](const auto &f, const auto *) { return _traverse(chip_id, f, fn, ctx); });
}

i32 dpl_atolreef_vlan_vacl_clear(u32 chip_id, u32 family)
{
    return _by_family(chip_id, family, nullptr, [&](const auto &f, const auto *) { return _clear(chip_id, f); });
}

void dpl_atolreef_vlan_vacl_destroy(dpl_atolreef_vlan_info *v)
{
    for (dpl_atolreef_vacl_space &s : v->vacl) {
        while (s.head != nullptr) {
            _remove(s, s.head);
        }
    }
}

} // extern "C"
