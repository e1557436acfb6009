// Egress VLAN translation on the exact-match hash engine (hash type 2):
// a key of the egress port (or trunk) and the frame's VIDs, an action
// that edits the outer and inner tags.  The engine places the entries;
// this file checks and converts, under lock 18.
#include <tide/vlan.h>

#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"

namespace {

constexpr u32 kKeyTypeMax = 3;
constexpr u32 kDot1pKey = VLAN_EVT_KEY_PORT_OVID_DOT1P;
constexpr u32 kActMax = 3;
constexpr u32 kActReplace = 2;
constexpr u32 kDpidMax = 127;
constexpr u32 kPriMax = 7;

i32 _bad(u32 chip_id, const char *fmt, u32 value)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, fmt, value);
    return SHR_E_PARAM;
}

i32 _key_check(u32 chip_id, const vlan_egress_translate_key *key)
{
    if (key == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    if (key->key_type > kKeyTypeMax) {
        return _bad(chip_id, "input key_type : %d is invalid param!!!\n", key->key_type);
    }
    if (key->trunk_flag != 0) {
        const i32 rc = dpl_reef_check_tgid(chip_id, key->tgid);
        if (rc != 0) {
            return rc;
        }
    } else if (csl_port_valid_check(chip_id, key->lport) != 0) {
        return _bad(chip_id, "key->lport:%d is invalid!!!\n", key->lport);
    }
    if (key->outer_vlan_id > VLAN_VID_MAX) {
        return _bad(chip_id, "input match ovid : %u is invalid param!!!\n", key->outer_vlan_id);
    }
    const u32 inner_max = key->key_type == kDot1pKey ? kPriMax : VLAN_VID_MAX;
    if (key->inner_vlan_id > inner_max) {
        return _bad(chip_id, key->key_type == kDot1pKey ? "input match opri : %u is invalid param!!!\n"
                                                        : "input match ivid : %u is invalid param!!!\n",
                    key->inner_vlan_id);
    }
    return 0;
}

i32 _action_check(u32 chip_id, const vlan_translate_action *a)
{
    if (a == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    struct Act {
        u32 value;
        const char *fmt;
    };
    const Act acts[] = {{a->outer_pri_act, "input opri-action : %d is invalid param!!!\n"},
                        {a->outer_cfi_act, "input ocfi-action : %d is invalid param!!!\n"},
                        {a->inner_pri_act, "input ipri-action : %d is invalid param!!!\n"},
                        {a->inner_cfi_act, "input icfi-action : %d is invalid param!!!\n"}};
    for (const Act &x : acts) {
        if (x.value != 0 && x.value != kActReplace) {
            return _bad(chip_id, x.fmt, x.value);
        }
    }
    struct Limit {
        u32 value;
        u32 max;
        const char *fmt;
    };
    const Limit limits[] = {{a->otag_action, kActMax, "input otag-action : %d is invalid param!!!\n"},
                            {a->itag_action, kActMax, "input itag-action : %d is invalid param!!!\n"},
                            {a->new_outer_vlan, VLAN_VID_MAX, "input new ovid : %u is invalid param!!!\n"},
                            {a->new_inner_vlan, VLAN_VID_MAX, "input new ivid : %u is invalid param!!!\n"},
                            {a->new_outer_pri, kPriMax, "input new opri : %u is invalid param!!!\n"},
                            {a->new_inner_pri, kPriMax, "input new ipri : %u is invalid param!!!\n"},
                            {a->new_outer_cfi, 1, "input new ocfi : %u is invalid param!!!\n"},
                            {a->new_inner_cfi, 1, "input new icfi : %u is invalid param!!!\n"},
                            {a->dpid, kDpidMax, "dpid is invalid!!!\n"}};
    for (const Limit &l : limits) {
        if (l.value > l.max) {
            return _bad(chip_id, l.fmt, l.value);
        }
    }
    return 0;
}

ecib_key _hash_key(const vlan_egress_translate_key &k)
{
    ecib_key h{};
    h.tid = static_cast<u8>(k.key_type);
    h.trunk_flag = k.trunk_flag != 0 ? 1 : 0;
    h.portid_trunkid = static_cast<u8>(k.trunk_flag != 0 ? k.tgid : k.lport);
    h.ovid = k.outer_vlan_id;
    h.ivid_opri = k.inner_vlan_id;
    return h;
}

vlan_egress_translate_key _key_of(const ecib_key &h)
{
    vlan_egress_translate_key k{};
    k.key_type = h.tid;
    k.trunk_flag = h.trunk_flag;
    (h.trunk_flag != 0 ? k.tgid : k.lport) = h.portid_trunkid;
    k.outer_vlan_id = h.ovid;
    k.inner_vlan_id = h.ivid_opri;
    return k;
}

// A new tag as the action row holds it: priority, CFI, VID.
u16 _tci(u32 pri, u32 cfi, u32 vid)
{
    return static_cast<u16>(pri << 13 | cfi << 12 | vid);
}

ecib_ad _ad_of(const vlan_translate_action &a)
{
    ecib_ad ad{};
    ad.vld = 1;
    ad.ovid = _tci(a.new_outer_pri, a.new_outer_cfi, a.new_outer_vlan);
    ad.ivid = _tci(a.new_inner_pri, a.new_inner_cfi, a.new_inner_vlan);
    ad.outer_pri = a.outer_pri_act == kActReplace ? 1 : 0;
    ad.outer_cfi = a.outer_cfi_act == kActReplace ? 1 : 0;
    ad.inner_pri = a.inner_pri_act == kActReplace ? 1 : 0;
    ad.inner_cfi = a.inner_cfi_act == kActReplace ? 1 : 0;
    ad.vlan_opc = static_cast<u8>(a.otag_action * 4 + a.itag_action);
    ad.multi_mapping_flag = a.multi_mapping_flag != 0 ? 1 : 0;
    ad.dpid_en = a.dpid_en != 0 ? 1 : 0;
    ad.dpid = static_cast<u8>(a.dpid);
    return ad;
}

vlan_translate_action _action_of(const ecib_ad &ad)
{
    vlan_translate_action a{};
    a.new_outer_vlan = ad.ovid & 0xFFF;
    a.new_outer_cfi = static_cast<u8>(ad.ovid >> 12 & 1);
    a.new_outer_pri = static_cast<u8>(ad.ovid >> 13 & 7);
    a.new_inner_vlan = ad.ivid & 0xFFF;
    a.new_inner_cfi = static_cast<u8>(ad.ivid >> 12 & 1);
    a.new_inner_pri = static_cast<u8>(ad.ivid >> 13 & 7);
    a.outer_pri_act = ad.outer_pri != 0 ? kActReplace : 0;
    a.outer_cfi_act = ad.outer_cfi != 0 ? kActReplace : 0;
    a.inner_pri_act = ad.inner_pri != 0 ? kActReplace : 0;
    a.inner_cfi_act = ad.inner_cfi != 0 ? kActReplace : 0;
    a.otag_action = ad.vlan_opc >> 2 & 3;
    a.itag_action = ad.vlan_opc & 3;
    a.multi_mapping_flag = ad.multi_mapping_flag;
    a.dpid_en = ad.dpid_en;
    a.dpid = ad.dpid;
    return a;
}

// `fn(entry)` for every valid entry of the table, in place order.
template <typename Fn>
i32 _walk(u32 chip_id, Fn fn)
{
    u32 places = 0;
    i32 rc = csl_reef_hash_ecib_place_count(chip_id, &places);
    if (rc != 0 || places == 0) {
        return rc;
    }
    ecib_entry *all = static_cast<ecib_entry *>(xsal_malloc(places * sizeof(ecib_entry), "vlan_evt", SHR_MOD_VLAN));
    if (all == nullptr) {
        return SHR_E_MEMORY;
    }
    csl_ecib_range range{0, places - 1, 0, 0};
    rc = csl_reef_ecib_range_get(chip_id, &range, all);
    i32 result = rc;
    for (u32 i = 0; rc == 0 && i < range.found; i++) {
        if (all[i].ad.vld != 0) {
            result |= fn(all[i]);
        }
    }
    xsal_mem_free(all);
    return result;
}

} // namespace

extern "C" {

i32 dpl_reef_vlan_egress_translate_add(u32 chip_id, vlan_egress_translate_key *key, vlan_translate_action *action)
{
    i32 rc = _key_check(chip_id, key);
    if (rc == 0) {
        rc = _action_check(chip_id, action);
    }
    if (rc != 0) {
        return rc;
    }
    const ecib_key h = _hash_key(*key);
    const ecib_ad ad = _ad_of(*action);
    VLAN_LOCK(chip_id);
    rc = csl_reef_hash_ecib_add(chip_id, &h, nullptr, &ad, nullptr);
    // An existing key got the new action; an entry in the overflow CAM is
    // an entry all the same.
    if (rc == SHR_E_EXISTS || rc == SHR_E_HASH_CONFLICT) {
        rc = 0;
    }
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "ecib hash add error!!!\n");
    }
    return rc;
}

i32 dpl_reef_vlan_egress_translate_delete(u32 chip_id, vlan_egress_translate_key *key)
{
    const i32 rc = _key_check(chip_id, key);
    if (rc != 0) {
        return rc;
    }
    const ecib_key h = _hash_key(*key);
    VLAN_LOCK(chip_id);
    return csl_reef_hash_ecib_del(chip_id, &h);
}

i32 dpl_reef_vlan_egress_translate_get(u32 chip_id, vlan_egress_translate_key *key, vlan_translate_action *action)
{
    i32 rc = _key_check(chip_id, key);
    if (rc == 0 && action == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        rc = SHR_E_NULL_PTR;
    }
    if (rc != 0) {
        return rc;
    }
    const ecib_key h = _hash_key(*key);
    ecib_ad ad{};
    csl_ecib_search_result where{};
    VLAN_LOCK(chip_id);
    rc = csl_reef_hash_ecib_tbl_search_soft(chip_id, &h, &ad, &where);
    if (rc == 0) {
        *action = _action_of(ad);
    }
    return rc;
}

i32 dpl_reef_vlan_egress_translate_traverse(u32 chip_id, vlan_egress_translate_traverse_cb fn, void *user)
{
    if (fn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    VLAN_LOCK(chip_id);
    return _walk(chip_id, [&](const ecib_entry &e) {
        vlan_egress_translate_key k = _key_of(e.key);
        vlan_translate_action a = _action_of(e.ad);
        return fn(chip_id, &k, &a, user);
    });
}

i32 dpl_reef_vlan_egress_translate_clear(u32 chip_id)
{
    VLAN_LOCK(chip_id);
    return _walk(chip_id, [&](const ecib_entry &e) {
        const i32 rc = csl_reef_hash_ecib_del(chip_id, &e.key);
        return rc == SHR_E_NOT_FOUND ? 0 : rc;
    });
}

} // extern "C"
