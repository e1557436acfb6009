// The records of the hash tables at the engines' level.  Field positions
// come from the chip's catalogue, found once per chip when the hash tables
// start; a conversion is then a few shifts.  The MAC table's key is
// `arl_em_mac_tbl_key`, its AD the whole entry `arl_em_mac_tbl_ad`; the
// exact-match key is a slot of `epro_em_pv_cam_tbl`, its AD a row of
// `epro_ecib_table`.
#include "csl/reef/reg_tbl/auto_code/api/csl_reef_hash_table.h"

#include <cstddef>
#include <cstring>
#include <initializer_list>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

using tide::l2mac::Bits;
using tide::l2mac::u128;

namespace {

// A member of a record: where it is and the catalogue field it stands for
// (NULL: a field the catalogue does not have).
struct Member {
    u16 offset;
    u8 size;
    const char *field;
};

constexpr Member kKeyMembers[CSL_L2_MAC_KEY_FIELDS] = {
    {offsetof(csl_l2_mac_key, iptype), 1, "iptype"},  {offsetof(csl_l2_mac_key, keymode), 1, "keymode"},
    {offsetof(csl_l2_mac_key, vlanid), 2, "vlanid"},  {offsetof(csl_l2_mac_key, mac_ip), 8, "mac_ip"},
    {offsetof(csl_l2_mac_key, unused0), 4, nullptr}, {offsetof(csl_l2_mac_key, unused1), 4, nullptr},
    {offsetof(csl_l2_mac_key, unused2), 4, nullptr},
};

constexpr Member kAdMembers[CSL_L2_MAC_AD_FIELDS] = {
    {offsetof(csl_l2_mac_ad, valid), 1, "valid"},
    {offsetof(csl_l2_mac_ad, stati), 1, "stati"},
    {offsetof(csl_l2_mac_ad, age_cnt), 1, "age_cnt"},
    {offsetof(csl_l2_mac_ad, opcode), 1, "opcode"},
    {offsetof(csl_l2_mac_ad, learn_data), 2, "learn_data"},
    {offsetof(csl_l2_mac_ad, outer_vlanid), 2, "outer_vlanid"},
    {offsetof(csl_l2_mac_ad, lrnclass), 1, "lrnclass"},
    {offsetof(csl_l2_mac_ad, gid), 1, "gid"},
    {offsetof(csl_l2_mac_ad, dst_blk_list), 1, "dst_blk_list"},
    {offsetof(csl_l2_mac_ad, src_blk_list), 1, "src_blk_list"},
    {offsetof(csl_l2_mac_ad, remote), 1, nullptr},
    {offsetof(csl_l2_mac_ad, tagnum), 1, nullptr},
    {offsetof(csl_l2_mac_ad, replace_sta_flag), 1, nullptr},
    {offsetof(csl_l2_mac_ad, replace_dyn_flag), 1, nullptr},
    {offsetof(csl_l2_mac_ad, grap_flag), 1, nullptr},
};

struct Layout {
    bool ok = false;
    csl_l2_mac_widths w{};
    Bits key[CSL_L2_MAC_KEY_FIELDS];
    Bits ad[CSL_L2_MAC_AD_FIELDS]; // positions in the entry
};

Layout g_layout[SHR_MAX_CHIPS];

const Layout *_layout(u32 chip_id)
{
    if (chip_id < SHR_MAX_CHIPS && g_layout[chip_id].ok) {
        return &g_layout[chip_id];
    }
    const u32 type = shr_chip_type_get(chip_id);
    const csl_l2_mac_widths &w = g_csl_l2_mac_widths[type < 5 ? type : 4];
    SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "ERR: tbl key bytes %d ad bytes %d.\n", (int)((w.key_bits + 7) / 8),
                (int)((w.ad_bits + 7) / 8));
    return nullptr;
}

u64 _member_get(const Member &m, const void *rec)
{
    const u8 *p = static_cast<const u8 *>(rec) + m.offset;
    u64 v = 0;
    switch (m.size) {
    case 1:
        return *p;
    case 2: {
        u16 x;
        memcpy(&x, p, 2);
        return x;
    }
    case 4: {
        u32 x;
        memcpy(&x, p, 4);
        return x;
    }
    default:
        memcpy(&v, p, 8);
        return v;
    }
}

void _member_set(const Member &m, void *rec, u64 v)
{
    u8 *p = static_cast<u8 *>(rec) + m.offset;
    switch (m.size) {
    case 1:
        *p = static_cast<u8>(v);
        break;
    case 2: {
        const u16 x = static_cast<u16>(v);
        memcpy(p, &x, 2);
        break;
    }
    case 4: {
        const u32 x = static_cast<u32>(v);
        memcpy(p, &x, 4);
        break;
    }
    default:
        memcpy(p, &v, 8);
        break;
    }
}

bool _mask_bit(const u8 *mask, u32 i)
{
    return mask == nullptr || ((mask[i / 8] >> (i % 8)) & 1) != 0;
}

// Which records a conversion is about, for its log lines.
struct Table {
    const char *name;
    u32 module;
};
constexpr Table kL2Mac = {"l2 mac", SHR_MOD_ARL};
constexpr Table kEcib = {"ecib", SHR_MOD_REG_TAB};

// The members of a record with their mask bits set into an image; a field
// beyond the data's `width` is left out.
template <size_t N>
i32 _record_to_image(u32 chip_id, const Table &table, const Member (&members)[N], const Bits (&bits)[N],
                     const void *rec, const u8 *mask, u32 width, u128 *image)
{
    i32 rc = 0;
    u128 v = 0;
    for (u32 i = 0; i < N; i++) {
        const Bits &f = bits[i];
        if (!f.ok() || f.low + f.width > width || !_mask_bit(mask, i)) {
            continue;
        }
        const u64 x = _member_get(members[i], rec);
        if (x > f.max()) {
            SHR_LOG_ERR(chip_id, table.module, "%s field %s value 0x%lx is wider than %u bits\n", table.name,
                        members[i].field, (unsigned long)x, (unsigned)f.width);
            rc = SHR_E_FIELD_OVERFLOW;
            continue;
        }
        v = f.put(v, x);
    }
    *image = v;
    return rc;
}

template <size_t N>
void _image_to_record(const Member (&members)[N], const Bits (&bits)[N], u128 image, void *rec)
{
    for (u32 i = 0; i < N; i++) {
        if (bits[i].ok()) {
            _member_set(members[i], rec, bits[i].get(image));
        }
    }
}

u32 _bytes(u32 bits)
{
    return (bits + 31) / 32 * 4;
}

// The insert flags of an AD record: those with a clear mask bit keep the
// command word's policy.
u64 _flags(const csl_l2_mac_ad *ad, const u8 *mask)
{
    const u8 sta = _mask_bit(mask, CSL_L2_MAC_AD_REPLACE_STA) ? ad->replace_sta_flag : CSL_L2_MAC_FLAG_KEEP;
    const u8 dyn = _mask_bit(mask, CSL_L2_MAC_AD_REPLACE_DYN) ? ad->replace_dyn_flag : CSL_L2_MAC_FLAG_KEEP;
    const u8 grab = _mask_bit(mask, CSL_L2_MAC_AD_GRAP) ? ad->grap_flag : CSL_L2_MAC_FLAG_KEEP;
    return CSL_L2_MAC_FLAGS(sta, dyn, grab);
}

// The layout of the chip, once the record and the data are there.
i32 _checked(u32 chip_id, const void *record, const void *data, const Layout **l)
{
    *l = _layout(chip_id);
    if (*l == nullptr) {
        return SHR_E_EMPTY;
    }
    return record == nullptr || data == nullptr ? SHR_E_PARAM : 0;
}

// A record into its data buffer (key or AD) of `width` bits.
template <size_t N, typename Rec>
i32 _to_data(u32 chip_id, const Member (&members)[N], Bits (Layout::*bits)[N], u32 csl_l2_mac_widths::*width,
             const Rec *rec, u8 *data, const u8 *mask)
{
    const Layout *l = nullptr;
    i32 rc = _checked(chip_id, rec, data, &l);
    if (rc != 0) {
        return rc;
    }
    u128 v = 0;
    rc = _record_to_image(chip_id, kL2Mac, members, l->*bits, rec, mask, l->w.*width, &v);
    tide::l2mac::store(v, data, _bytes(l->w.*width));
    return rc;
}

// A record from a key buffer, or (`entry`) from a whole entry, where the
// key stands at its position (`key_at_pos`) and the AD at bit 0.
template <size_t N, typename Rec>
i32 _from_data(u32 chip_id, const Member (&members)[N], Bits (Layout::*bits)[N], Rec *rec, const u8 *data,
               bool entry, bool key_at_pos)
{
    const Layout *l = nullptr;
    const i32 rc = _checked(chip_id, rec, data, &l);
    if (rc != 0) {
        return rc;
    }
    const u128 v = entry ? tide::l2mac::load(data, CSL_L2_MAC_ENTRY_BYTES) >> (key_at_pos ? l->w.key_pos : 0)
                         : tide::l2mac::load(data, _bytes(l->w.key_bits));
    *rec = Rec{};
    _image_to_record(members, l->*bits, v, rec);
    return 0;
}

using batched_fn = i32 (*)(u32, const u8 *, const u8 *, const csl_l2_mac_cmp *, u8 *, u32 *);

i32 _batched(u32 chip_id, batched_fn fn, const csl_l2_mac_key *key, const csl_l2_mac_ad *ad, const u8 *ad_mask,
             const csl_l2_mac_cmp *cmp, u8 *fail_case, u32 *return_num)
{
    u8 kdata[CSL_L2_MAC_KEY_BYTES] = {};
    u8 adata[CSL_L2_MAC_AD_BYTES] = {};
    i32 rc = csl_reef_hash_l2_mac_key_TO_data(chip_id, key, kdata, nullptr);
    rc |= csl_reef_hash_l2_mac_ad_TO_data(chip_id, ad, adata, ad_mask);
    if (rc != 0) {
        return rc;
    }
    return fn(chip_id, kdata, adata, cmp, fail_case, return_num);
}

} // namespace

extern "C" {

// Called when the hash tables of a chip start.
i32 csl_reef_hash_l2_mac_layout_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    Layout l;
    const u32 type = shr_chip_type_get(chip_id);
    l.w = g_csl_l2_mac_widths[type < 5 ? type : 4];
    const cib_tab_info *key = csl_reef_tab_info_get(chip_id, cib_arl_em_mac_tbl_key);
    const cib_tab_info *ad = csl_reef_tab_info_get(chip_id, cib_arl_em_mac_tbl_ad);
    l.ok = key != nullptr && ad != nullptr && l.w.key_bits != 0;
    for (u32 i = 0; i < CSL_L2_MAC_KEY_FIELDS; i++) {
        l.key[i] = tide::l2mac::tab_field(key, kKeyMembers[i].field);
        l.ok &= kKeyMembers[i].field == nullptr || l.key[i].ok();
    }
    for (u32 i = 0; i < CSL_L2_MAC_AD_FIELDS; i++) {
        l.ad[i] = tide::l2mac::tab_field(ad, kAdMembers[i].field);
        l.ok &= kAdMembers[i].field == nullptr || l.ad[i].ok();
    }
    g_layout[chip_id] = l;
    return l.ok ? 0 : SHR_E_EMPTY;
}

i32 csl_reef_hash_l2_mac_key_TO_data(u32 chip_id, const csl_l2_mac_key *key, u8 *data, const u8 *mask)
{
    return _to_data(chip_id, kKeyMembers, &Layout::key, &csl_l2_mac_widths::key_bits, key, data, mask);
}

i32 csl_reef_hash_data_TO_l2_mac_key(u32 chip_id, csl_l2_mac_key *key, const u8 *data)
{
    return _from_data(chip_id, kKeyMembers, &Layout::key, key, data, false, false);
}

i32 csl_reef_hash_entry_TO_l2_mac_key(u32 chip_id, csl_l2_mac_key *key, const u8 *entry)
{
    return _from_data(chip_id, kKeyMembers, &Layout::key, key, entry, true, true);
}

i32 csl_reef_hash_l2_mac_ad_TO_data(u32 chip_id, const csl_l2_mac_ad *ad, u8 *data, const u8 *mask)
{
    return _to_data(chip_id, kAdMembers, &Layout::ad, &csl_l2_mac_widths::ad_bits, ad, data, mask);
}

i32 csl_reef_hash_data_TO_l2_mac_ad(u32 chip_id, csl_l2_mac_ad *ad, const u8 *entry)
{
    return _from_data(chip_id, kAdMembers, &Layout::ad, ad, entry, true, false);
}

i32 csl_reef_hash_l2_mac_add(u32 chip_id, const csl_l2_mac_key *key, const u8 *key_mask, const csl_l2_mac_ad *ad,
                             const u8 *ad_mask, u8 *fail_case)
{
    u8 kdata[CSL_L2_MAC_KEY_BYTES] = {};
    u8 adata[CSL_L2_MAC_AD_BYTES] = {};
    i32 rc = csl_reef_hash_l2_mac_key_TO_data(chip_id, key, kdata, key_mask);
    rc |= csl_reef_hash_l2_mac_ad_TO_data(chip_id, ad, adata, ad_mask);
    if (rc != 0) {
        return rc;
    }
    return csl_reef_hash_l2_mac_appointed_insert(chip_id, kdata, _flags(ad, ad_mask), adata, fail_case);
}

i32 csl_reef_hash_l2_mac_del(u32 chip_id, const csl_l2_mac_key *key, u8 *fail_case)
{
    u8 kdata[CSL_L2_MAC_KEY_BYTES] = {};
    const i32 rc = csl_reef_hash_l2_mac_key_TO_data(chip_id, key, kdata, nullptr);
    return rc != 0 ? rc : csl_reef_hash_l2_mac_appointed_delete(chip_id, kdata, fail_case);
}

i32 csl_reef_hash_l2_mac_tbl_search_hard(u32 chip_id, const csl_l2_mac_key *key, csl_l2_mac_ad *ad, u8 *fail_case)
{
    u8 kdata[CSL_L2_MAC_KEY_BYTES] = {};
    i32 rc = csl_reef_hash_l2_mac_key_TO_data(chip_id, key, kdata, nullptr);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "ERR: hash l2_mac key to data return %d\n", (int)rc);
        return rc;
    }
    u8 entry[CSL_L2_MAC_ENTRY_BYTES] = {};
    rc = csl_reef_hash_l2_mac_appointed_search(chip_id, kdata, entry, fail_case);
    if (rc != 0) {
        // A miss is an answer, not a fault: the line is for debugging.
        SHR_LOG_DBG(chip_id, SHR_MOD_ARL, "ERR: hash l2_mac search return %d\n", (int)rc);
        return rc;
    }
    return csl_reef_hash_data_TO_l2_mac_ad(chip_id, ad, entry);
}

i32 csl_reef_hash_l2_mac_tbl_batched_delete(u32 chip_id, const csl_l2_mac_key *key, const csl_l2_mac_ad *ad,
                                            const u8 *ad_mask, const csl_l2_mac_cmp *cmp, u8 *fail_case,
                                            u32 *return_num)
{
    return _batched(chip_id, csl_reef_hash_l2_mac_batched_delete, key, ad, ad_mask, cmp, fail_case, return_num);
}

i32 csl_reef_hash_l2_mac_tbl_batched_search(u32 chip_id, const csl_l2_mac_key *key, const csl_l2_mac_ad *ad,
                                            const u8 *ad_mask, const csl_l2_mac_cmp *cmp, u8 *fail_case,
                                            u32 *return_num)
{
    return _batched(chip_id, csl_reef_hash_l2_mac_batched_search, key, ad, ad_mask, cmp, fail_case, return_num);
}

} // extern "C"

// ---- the exact-match table's records ---------------------------------------------------

namespace {

constexpr Member kEcibKeyMembers[ECIB_KEY_FIELDS] = {
    {offsetof(ecib_key, tid), 1, "tid"},
    {offsetof(ecib_key, trunk_flag), 1, "trunk_flag"},
    {offsetof(ecib_key, portid_trunkid), 1, "portid_trunkid"},
    {offsetof(ecib_key, ovid), 2, "ovid"},
    {offsetof(ecib_key, ivid_opri), 2, "ivid_opri"},
};

constexpr Member kEcibAdMembers[ECIB_AD_FIELDS] = {
    {offsetof(ecib_ad, vld), 1, "vld"},
    {offsetof(ecib_ad, ivid), 2, "ivid"},
    {offsetof(ecib_ad, ovid), 2, "ovid"},
    {offsetof(ecib_ad, outer_pri), 1, "outer_pri"},
    {offsetof(ecib_ad, outer_cfi), 1, "outer_cfi"},
    {offsetof(ecib_ad, inner_pri), 1, "inner_pri"},
    {offsetof(ecib_ad, inner_cfi), 1, "inner_cfi"},
    {offsetof(ecib_ad, vlan_opc), 1, "vlan_opc"},
    {offsetof(ecib_ad, multi_mapping_flag), 1, "multi_mapping_flag"},
    {offsetof(ecib_ad, dpid_en), 1, "dpid_en"},
    {offsetof(ecib_ad, dpid), 1, "dpid"},
};

// Where the fields of the two records lie, per chip; the key in a CAM
// slot, the AD in a row of the AD table.
struct EcibLayout {
    bool ok = false;
    u32 key_bits = 0;
    u32 ad_bits = 0;
    Bits key[ECIB_KEY_FIELDS];
    Bits ad[ECIB_AD_FIELDS];
};

EcibLayout g_ecib_layout[SHR_MAX_CHIPS];

// The layout of a chip with the exact-match tables; -5 with the sizes of
// its type's records otherwise.
i32 _ecib_layout(u32 chip_id, const EcibLayout **out)
{
    if (chip_id < SHR_MAX_CHIPS && g_ecib_layout[chip_id].ok) {
        *out = &g_ecib_layout[chip_id];
        return 0;
    }
    const u32 type = shr_chip_type_get(chip_id);
    const csl_ecib_hw_info &hw = g_ecib_hw_info[type < 5 ? type : 4];
    SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ERR: tbl key bytes %d ad bytes %d.\n", (int)((hw.key_bits + 7) / 8),
                (int)((hw.ad_row_bits + 7) / 8));
    return SHR_E_EMPTY;
}

// A record into its image of `width` bits.
template <size_t N, typename Rec>
i32 _ecib_to_data(u32 chip_id, const Member (&members)[N], Bits (EcibLayout::*bits)[N], u32 EcibLayout::*width,
                  const Rec *rec, u8 *data, const u8 *mask)
{
    const EcibLayout *l = nullptr;
    i32 rc = _ecib_layout(chip_id, &l);
    if (rc != 0) {
        return rc;
    }
    if (rec == nullptr || data == nullptr) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return SHR_E_PARAM;
    }
    u128 v = 0;
    rc = _record_to_image(chip_id, kEcib, members, l->*bits, rec, mask, l->*width, &v);
    tide::l2mac::store(v, data, _bytes(l->*width));
    return rc;
}

template <size_t N, typename Rec>
i32 _ecib_from_data(u32 chip_id, const Member (&members)[N], Bits (EcibLayout::*bits)[N], u32 EcibLayout::*width,
                    Rec *rec, const u8 *data)
{
    const EcibLayout *l = nullptr;
    const i32 rc = _ecib_layout(chip_id, &l);
    if (rc != 0) {
        return rc;
    }
    if (rec == nullptr || data == nullptr) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return SHR_E_PARAM;
    }
    *rec = Rec{};
    _image_to_record(members, l->*bits, tide::l2mac::load(data, _bytes(l->*width)), rec);
    return 0;
}

// A wrapper's frame: the layout, the arguments, the type 2 lock around the
// conversions and the engine's call.
template <typename Fn>
i32 _ecib_wrapped(u32 chip_id, std::initializer_list<const void *> args, Fn fn)
{
    const EcibLayout *l = nullptr;
    const i32 rc = _ecib_layout(chip_id, &l);
    if (rc != 0) {
        return rc;
    }
    for (const void *p : args) {
        if (p == nullptr) {
            SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
            return SHR_E_PARAM;
        }
    }
    tide::hash::HashGuard hold(chip_id, CSL_HASH_TYPE_ECIB);
    return hold.status() != 0 ? hold.status() : fn();
}

// A search, then the AD row of the entry from the chip.
i32 _ecib_search(u32 chip_id, u32 mode, const ecib_key *key, ecib_ad *ad, csl_ecib_search_result *result)
{
    return _ecib_wrapped(chip_id, {key, ad, result}, [&] {
        u8 kdata[CSL_ECIB_KEY_BYTES] = {};
        i32 rc = csl_reef_hash_ecib_key_TO_data(chip_id, key, kdata, nullptr);
        rc = rc != 0 ? rc : csl_reef_hash_ecib_search(chip_id, mode, kdata, result);
        u8 adata[CSL_ECIB_AD_BYTES] = {};
        rc = rc != 0 ? rc : csl_reef_hash_ecib_hard_table_read(chip_id, CSL_ECIB_TAB_AD, result->ad_index, adata,
                                                               sizeof(adata));
        return rc != 0 ? rc : csl_reef_hash_data_TO_ecib_ad(chip_id, ad, adata);
    });
}

} // namespace

extern "C" {

// Called when the hash tables of a chip start.
i32 csl_reef_hash_ecib_layout_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    EcibLayout l;
    const u32 type = shr_chip_type_get(chip_id);
    const csl_ecib_hw_info &hw = g_ecib_hw_info[type < 5 ? type : 4];
    const cib_tab_info *cam = csl_reef_tab_info_get(chip_id, cib_epro_em_pv_cam_tbl);
    const cib_tab_info *ad = csl_reef_tab_info_get(chip_id, cib_epro_ecib_table);
    l.key_bits = hw.key_bits;
    l.ad_bits = hw.ad_row_bits;
    l.ok = cam != nullptr && ad != nullptr && hw.key_bits != 0;
    for (u32 i = 0; i < ECIB_KEY_FIELDS; i++) {
        l.key[i] = tide::l2mac::tab_field(cam, kEcibKeyMembers[i].field);
        l.ok &= l.key[i].ok() && l.key[i].low + l.key[i].width <= hw.key_bits;
    }
    for (u32 i = 0; i < ECIB_AD_FIELDS; i++) {
        l.ad[i] = tide::l2mac::tab_field(ad, kEcibAdMembers[i].field);
        l.ok &= l.ad[i].ok();
    }
    g_ecib_layout[chip_id] = l;
    return l.ok ? 0 : SHR_E_EMPTY;
}

i32 csl_reef_hash_ecib_key_TO_data(u32 chip_id, const ecib_key *key, u8 *data, const u8 *mask)
{
    return _ecib_to_data(chip_id, kEcibKeyMembers, &EcibLayout::key, &EcibLayout::key_bits, key, data, mask);
}

i32 csl_reef_hash_data_TO_ecib_key(u32 chip_id, ecib_key *key, const u8 *data)
{
    return _ecib_from_data(chip_id, kEcibKeyMembers, &EcibLayout::key, &EcibLayout::key_bits, key, data);
}

i32 csl_reef_hash_ecib_ad_TO_data(u32 chip_id, const ecib_ad *ad, u8 *data, const u8 *mask)
{
    return _ecib_to_data(chip_id, kEcibAdMembers, &EcibLayout::ad, &EcibLayout::ad_bits, ad, data, mask);
}

i32 csl_reef_hash_data_TO_ecib_ad(u32 chip_id, ecib_ad *ad, const u8 *data)
{
    return _ecib_from_data(chip_id, kEcibAdMembers, &EcibLayout::ad, &EcibLayout::ad_bits, ad, data);
}

i32 csl_reef_hash_ecib_add(u32 chip_id, const ecib_key *key, const u8 *key_mask, const ecib_ad *ad,
                           const u8 *ad_mask)
{
    return _ecib_wrapped(chip_id, {key, ad}, [&] {
        u8 kdata[CSL_ECIB_KEY_BYTES] = {};
        u8 adata[CSL_ECIB_AD_BYTES] = {};
        i32 rc = csl_reef_hash_ecib_key_TO_data(chip_id, key, kdata, key_mask);
        rc = rc != 0 ? rc : csl_reef_hash_ecib_ad_TO_data(chip_id, ad, adata, ad_mask);
        return rc != 0 ? rc : csl_reef_hash_ecib_insert(chip_id, kdata, adata, 0);
    });
}

i32 csl_reef_hash_ecib_del(u32 chip_id, const ecib_key *key)
{
    return _ecib_wrapped(chip_id, {key}, [&] {
        u8 kdata[CSL_ECIB_KEY_BYTES] = {};
        const i32 rc = csl_reef_hash_ecib_key_TO_data(chip_id, key, kdata, nullptr);
        return rc != 0 ? rc : csl_reef_hash_ecib_delete(chip_id, kdata);
    });
}

i32 csl_reef_hash_ecib_tbl_search_hard(u32 chip_id, const ecib_key *key, ecib_ad *ad,
                                       csl_ecib_search_result *result)
{
    return _ecib_search(chip_id, CSL_ECIB_SEARCH_HARD, key, ad, result);
}

i32 csl_reef_hash_ecib_tbl_search_soft(u32 chip_id, const ecib_key *key, ecib_ad *ad,
                                       csl_ecib_search_result *result)
{
    return _ecib_search(chip_id, CSL_ECIB_SEARCH_SOFT, key, ad, result);
}

} // extern "C"
