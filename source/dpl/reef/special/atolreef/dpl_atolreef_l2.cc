// The L2 operations that only atolreef has.
#include "dpl/reef/special/atolreef/dpl_atolreef_l2.h"

#include <cstring>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"

namespace {

constexpr u32 kNibbleBits = 4;
constexpr u32 kNibblesPerWord = 8;
constexpr u32 kPriMax = 3;
constexpr u32 kLimitValueMax = 65535;
constexpr u32 kOverActMax = 255;

// The nibble of a port or trunk: register, instance and position.
struct Nibble {
    u32 reg_id;
    u32 index;
    const char *field;
    u32 shift;
};

i32 _move_pri_nibble(u32 chip_id, const l2_port_move_pri *pri, Nibble *n)
{
    if (pri->flag == 0) {
        const u32 max = g_l2_property[chip_id].port_max;
        if (pri->id > max) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port id %d is out of range,min 0 max %d\n", (int)pri->id, (int)max);
            return SHR_E_PARAM;
        }
        *n = Nibble{cib_arl_port_ppri, pri->id / kNibblesPerWord, "port_ppri",
                    (pri->id % kNibblesPerWord) * kNibbleBits};
        return 0;
    }
    if (pri->flag == 1) {
        if (pri->id > DPL_ATOLREEF_L2_MOVE_TGID_MAX) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "tgid %d is out of range,min 0,max %d\n", (int)pri->id,
                        (int)DPL_ATOLREEF_L2_MOVE_TGID_MAX);
            return SHR_E_PARAM;
        }
        *n = Nibble{cib_arl_trunk_ppri, 0, "trunk_ppri", pri->id * kNibbleBits};
        return 0;
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "move priority flag %d is wrong\n", (int)pri->flag);
    return SHR_E_PARAM;
}

// The scope of a learn limit record: the first of global, port, VLAN.
enum class Scope { global, port, vlan };

i32 _limit_scope(u32 chip_id, u32 flags, Scope *scope)
{
    constexpr u32 kKnown = L2_LIMIT_GLOBAL | L2_LIMIT_VLAN | L2_LIMIT_PORT | L2_LIMIT_OVER_LIMIT_EN | L2_LIMIT_ENABLE |
                           L2_LIMIT_VALUE | L2_LIMIT_OVER_ACT;
    if (flags & (L2_LIMIT_VFI | L2_LIMIT_SVP)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "limit->flags not support \n\r");
        return SHR_E_NOT_SUPPORT;
    }
    if ((flags & ~kKnown) != 0 || (flags & (L2_LIMIT_GLOBAL | L2_LIMIT_PORT | L2_LIMIT_VLAN)) == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "flag %d is wrong \n\r", (int)flags);
        return SHR_E_PARAM;
    }
    *scope = (flags & L2_LIMIT_GLOBAL) ? Scope::global : ((flags & L2_LIMIT_PORT) ? Scope::port : Scope::vlan);
    return 0;
}

i32 _limit_prepare(u32 chip_id, const l2_learn_limit *limit, Scope *scope)
{
    const i32 rc = _limit_scope(chip_id, limit->flags, scope);
    return rc != 0 ? rc : _dpl_reef_atolreef_l2_learn_limit_param_check(chip_id, limit);
}

// The per-VLAN over-limit settings live in the VLAN's ingress record:
// `vlan_lrn_lmt` the over-limit enable, `mac_lmt_dlf` the action.  The
// record is rewritten through the VLAN service, which keeps the row
// sharing right.
i32 _limit_vlan_set(u32 chip_id, const l2_learn_limit *l)
{
    if ((l->flags & (L2_LIMIT_ENABLE | L2_LIMIT_VALUE)) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "vlan %u: no count or enable of its own, only the over-limit action\n",
                    l->vlan);
        return SHR_E_NOT_SUPPORT;
    }
    dpl_reef_ivlan_key rec{};
    i32 rc = dpl_reef_vlan_ingress_control_get(chip_id, l->vlan, &rec);
    if (rc != 0) {
        return rc;
    }
    if (l->flags & L2_LIMIT_OVER_ACT) {
        rec.mac_lmt_dlf = static_cast<u8>(l->over_act);
    }
    if (l->flags & L2_LIMIT_OVER_LIMIT_EN) {
        rec.vlan_lrn_lmt = l->over_limit_en != 0 ? 1 : 0;
    }
    return dpl_reef_vlan_ingress_control_set(chip_id, l->vlan, &rec);
}

i32 _limit_vlan_get(u32 chip_id, l2_learn_limit *l)
{
    dpl_reef_ivlan_key rec{};
    const i32 rc = dpl_reef_vlan_ingress_control_get(chip_id, l->vlan, &rec);
    if (rc == 0) {
        l->over_act = rec.mac_lmt_dlf;
        l->over_limit_en = rec.vlan_lrn_lmt;
        l->limit_en = 0;
        l->limit_value = 0;
        l->mac_cnt = 0;
    }
    return rc;
}

void _u64_mask_set(u64 mask[2], u32 member)
{
    mask[member / 64] |= u64{1} << (member % 64);
}

i32 _limit_port_set(u32 chip_id, const l2_learn_limit *l)
{
    const u32 p = l->port;
    i32 rc = 0;
    if (l->flags & L2_LIMIT_ENABLE) {
        rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_port_lmt_cnt, p, "port_lmt_en", l->limit_en);
    }
    if (rc == 0 && (l->flags & L2_LIMIT_VALUE)) {
        rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_port_lmt_cnt, p, "port_lmt_cnt", l->limit_value);
    }
    if (rc != 0 || (l->flags & (L2_LIMIT_OVER_ACT | L2_LIMIT_OVER_LIMIT_EN)) == 0) {
        return rc;
    }
    cib_ipro_ipat_tbl_t r{};
    u64 mask[2] = {};
    if (l->flags & L2_LIMIT_OVER_ACT) {
        r.mac_lmt_dlf = static_cast<u16>(l->over_act);
        _u64_mask_set(mask, cib_ipro_ipat_tbl__mac_lmt_dlf);
    }
    if (l->flags & L2_LIMIT_OVER_LIMIT_EN) {
        r.port_mac_lmt = l->over_limit_en;
        _u64_mask_set(mask, cib_ipro_ipat_tbl__port_mac_lmt);
    }
    return csl_reef_cib_ipro_ipat_tbl_set(chip_id, 0, p, &r, mask);
}

i32 _limit_global_set(u32 chip_id, const l2_learn_limit *l)
{
    i32 rc = 0;
    if (l->flags & L2_LIMIT_ENABLE) {
        rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_lmt_en", l->limit_en);
    }
    if (rc == 0 && (l->flags & L2_LIMIT_VALUE)) {
        rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_glb_lmt_cnt, 0, "dynamic_lmt_cnt", l->limit_value);
    }
    if (rc == 0 && (l->flags & L2_LIMIT_OVER_ACT)) {
        rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_lmt_act", l->over_act);
    }
    return rc;
}

// One read of a u32 field into a narrower record member.
template <typename T>
i32 _field_into(u32 chip_id, u32 reg_id, u32 index, const char *field, T *out)
{
    u32 v = 0;
    const i32 rc = dpl_reef_l2_reg_field_get(chip_id, reg_id, index, field, &v);
    *out = static_cast<T>(v);
    return rc;
}

// Fields of a message (the entry in big-endian byte order, read as four
// little-endian words).
struct Msg {
    u32 w[4];
    explicit Msg(const u8 *m)
    {
        for (u32 i = 0; i < 4; i++) {
            w[i] = static_cast<u32>(m[4 * i]) | static_cast<u32>(m[4 * i + 1]) << 8 |
                   static_cast<u32>(m[4 * i + 2]) << 16 | static_cast<u32>(m[4 * i + 3]) << 24;
        }
    }
    u32 bit(u32 word, u32 b) const { return (w[word] >> b) & 1; }
    u32 bits(u32 word, u32 low, u32 width) const { return (w[word] >> low) & ((1u << width) - 1); }
};

} // namespace

extern "C" {

i32 dpl_atolreef_l2_special_register(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    reef_l2_special[chip_id] = reef_l2_special_t{
        dpl_reef_atolreef_l2_addr_get_by_index, dpl_reef_atolreef_l2_port_move_pri_get,
        dpl_reef_atolreef_l2_port_move_pri_set, dpl_reef_atolreef_l2_learn_limit_get,
        dpl_reef_atolreef_l2_learn_limit_set,   dpl_reef_atolreef_l2_msg_to_l2data,
        dpl_reef_atolreef_l2_mac_msg_parse,
    };
    return 0;
}

// The read at a bucket address is one command of plain register accesses
// and no field helpers, so that a walk of the table costs one command per
// entry.
i32 dpl_reef_atolreef_l2_hash_mac_appointed_hash_search(u32 chip_id, u32 bucket_type, u32 bucket_addr, u8 *entry,
                                                        u8 *fail_case)
{
    return csl_reef_hash_l2_mac_appointed_hash_search(chip_id, bucket_type, bucket_addr, entry, fail_case);
}

i32 dpl_reef_atolreef_l2_addr_get_by_index(u32 chip_id, u32 index, l2_addr *addr)
{
    u32 bar0 = 0, bar1 = 0, bucket = 0, baddr = 0;
    i32 rc = csl_reef_hash_l2_mac_scope_get(chip_id, &bar0, &bar1);
    if (rc != 0) {
        return rc;
    }
    if (csl_reef_hash_l2_mac_index_to_bucket(chip_id, bar0, index, &bucket, &baddr) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "index %u is out of range, max %u\n", index,
                    bar0 + bar1 + CSL_L2_MAC_CAM_ENTRIES - 1);
        return SHR_E_PARAM;
    }
    u8 entry[CSL_L2_MAC_ENTRY_BYTES] = {};
    u8 fail = 0;
    rc = dpl_reef_atolreef_l2_hash_mac_appointed_hash_search(chip_id, bucket, baddr, entry, &fail);
    *addr = l2_addr{};
    addr->fail_case = fail;
    if (rc == SHR_E_FAIL && fail == CSL_L2_MAC_SEARCH_MISS) {
        return 0; // an empty slot: valid 0
    }
    if (rc != 0) {
        return rc;
    }
    csl_l2_mac_key key;
    csl_l2_mac_ad ad;
    rc = csl_reef_hash_entry_TO_l2_mac_key(chip_id, &key, entry);
    rc |= csl_reef_hash_data_TO_l2_mac_ad(chip_id, &ad, entry);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "get field from data fialed\n ret = %d", (int)rc);
        return rc;
    }
    rc = _l2x_to_l2(chip_id, &key, &ad, addr);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "tranform l2 key and ad to l2 addr failed\n");
    }
    return rc;
}

i32 dpl_reef_atolreef_l2_port_move_pri_get(u32 chip_id, l2_port_move_pri *pri)
{
    Nibble n{};
    i32 rc = _move_pri_nibble(chip_id, pri, &n);
    u32 word = 0;
    rc = rc != 0 ? rc : dpl_reef_l2_reg_field_get(chip_id, n.reg_id, n.index, n.field, &word);
    if (rc == 0) {
        const u32 nibble = word >> n.shift;
        pri->pri = static_cast<u8>(nibble & kPriMax);
        pri->enable = static_cast<u8>((nibble >> 2) & 1);
    }
    return rc;
}

i32 dpl_reef_atolreef_l2_port_move_pri_set(u32 chip_id, l2_port_move_pri *pri)
{
    Nibble n{};
    i32 rc = _move_pri_nibble(chip_id, pri, &n);
    if (rc != 0) {
        return rc;
    }
    if (pri->pri > kPriMax || pri->enable > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "move priority %d enable %d is wrong\n", (int)pri->pri, (int)pri->enable);
        return SHR_E_PARAM;
    }
    CslRegLock hold(chip_id, cib_module_arl);
    u32 word = 0;
    rc = dpl_reef_l2_reg_field_get(chip_id, n.reg_id, n.index, n.field, &word);
    if (rc != 0) {
        return rc;
    }
    const u32 nibble = static_cast<u32>(pri->pri) | static_cast<u32>(pri->enable) << 2;
    word = (word & ~(0xFu << n.shift)) | nibble << n.shift;
    return dpl_reef_l2_reg_field_set(chip_id, n.reg_id, n.index, n.field, word);
}

i32 _dpl_reef_atolreef_l2_learn_limit_param_check(u32 chip_id, const l2_learn_limit *limit)
{
    if ((limit->flags & L2_LIMIT_VLAN) && limit->vlan > DPL_L2_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "vlan %u param is wrong\n", limit->vlan);
        return SHR_E_PARAM;
    }
    if ((limit->flags & L2_LIMIT_PORT) && limit->port > g_l2_property[chip_id].port_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port %u param is wrong\n", limit->port);
        return SHR_E_PARAM;
    }
    if ((limit->flags & L2_LIMIT_VALUE) && limit->limit_value > kLimitValueMax) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "limit value %u param is wrong\n", limit->limit_value);
        return SHR_E_PARAM;
    }
    if ((limit->flags & L2_LIMIT_OVER_ACT) && limit->over_act > kOverActMax) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "over act %u param is wrong\n", limit->over_act);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 dpl_reef_atolreef_l2_learn_limit_set(u32 chip_id, l2_learn_limit *limit)
{
    Scope scope{};
    const i32 rc = _limit_prepare(chip_id, limit, &scope);
    if (rc != 0) {
        return rc;
    }
    switch (scope) {
    case Scope::global:
        return _limit_global_set(chip_id, limit);
    case Scope::port:
        return _limit_port_set(chip_id, limit);
    default:
        return _limit_vlan_set(chip_id, limit);
    }
}

i32 dpl_reef_atolreef_l2_learn_limit_get(u32 chip_id, l2_learn_limit *limit)
{
    Scope scope{};
    i32 rc = _limit_prepare(chip_id, limit, &scope);
    if (rc != 0) {
        return rc;
    }
    if (scope == Scope::vlan) {
        return _limit_vlan_get(chip_id, limit);
    }
    if (scope == Scope::global) {
        limit->over_limit_en = 0;
        rc = _field_into(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_lmt_en", &limit->limit_en);
        rc = rc != 0 ? rc : _field_into(chip_id, cib_arl_glb_lmt_cnt, 0, "dynamic_lmt_cnt", &limit->limit_value);
        rc = rc != 0 ? rc : _field_into(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_lmt_act", &limit->over_act);
        return rc != 0 ? rc : _field_into(chip_id, cib_arl_glb_mac_cnt, 0, "dynamic_mac_cnt", &limit->mac_cnt);
    }
    const u32 p = limit->port;
    rc = _field_into(chip_id, cib_arl_port_lmt_cnt, p, "port_lmt_en", &limit->limit_en);
    rc = rc != 0 ? rc : _field_into(chip_id, cib_arl_port_lmt_cnt, p, "port_lmt_cnt", &limit->limit_value);
    rc = rc != 0 ? rc : _field_into(chip_id, cib_arl_port_lmt_cnt, p, "port_mac_cnt", &limit->mac_cnt);
    if (rc != 0) {
        return rc;
    }
    cib_ipro_ipat_tbl_t r{};
    rc = csl_reef_cib_ipro_ipat_tbl_get(chip_id, 0, p, &r);
    limit->over_act = r.mac_lmt_dlf;
    limit->over_limit_en = static_cast<u8>(r.port_mac_lmt);
    return rc;
}

i32 dpl_reef_atolreef_l2_msg_to_l2data(u32 chip_id, const u8 *msg, l2_addr *addr)
{
    (void)chip_id;
    const Msg m(msg);
    // Only MAC + VLAN keys are addresses of this service.
    if (m.bit(0, 12) || m.bit(0, 11)) {
        return 1;
    }
    *addr = l2_addr{};
    addr->key_type = L2_KEY_MAC_VLAN;
    addr->msg_type = static_cast<u8>((m.w[0] & 3) << 2 | (m.w[0] >> 14 & 3));
    addr->valid = m.bit(0, 13);
    addr->vid = static_cast<u16>(m.bits(0, 8, 2) << 10 | m.bits(0, 16, 8) << 2 | m.bits(0, 30, 2));
    addr->flags = L2_FLAG_KEY_VID;
    // MAC byte i: the low six bits of stream byte 3 + i, the top two of the
    // next.
    for (u32 i = 0; i < 6; i++) {
        addr->mac[i] = static_cast<u8>((msg[3 + i] & 0x3F) << 2 | msg[4 + i] >> 6);
    }
    addr->age_cnt = static_cast<u8>(m.bits(2, 27, 2));
    if (!m.bit(2, 29)) {
        addr->flags |= L2_FLAG_DYNAMIC;
    }
    const u32 opcode = m.bits(2, 24, 3);
    const u32 learn_data = (m.w[3] & 255) << 2 | (m.w[3] >> 14 & 3);
    static constexpr u32 kDestFlag[8] = {L2_FLAG_DEST_PORT, L2_FLAG_DEST_TRUNK, L2_FLAG_DEST_DVP,
                                         L2_FLAG_DEST_NHP,  L2_FLAG_DEST_ECMP,  L2_FLAG_DEST_MCAST,
                                         L2_FLAG_DEST_DROP, L2_FLAG_DEST_CPU};
    u32 *const kDestField[8] = {&addr->port, &addr->tgid, &addr->dvp,     &addr->nhp,
                                &addr->ecmp, &addr->mgid, &addr->causeid, &addr->causeid};
    addr->flags |= kDestFlag[opcode];
    *kDestField[opcode] = opcode == 0 ? learn_data & 31 : learn_data;
    addr->ovid = static_cast<u16>(m.bits(3, 8, 6) << 6 | m.bits(3, 18, 6));
    addr->flags |= (m.bit(3, 16) ? L2_FLAG_DYN_COVER_STATIC : 0) | (m.bit(3, 17) ? L2_FLAG_DYN_COVER_STATIC_FWD : 0);
    addr->gid = static_cast<u16>(m.bits(3, 26, 6));
    addr->flags |= (m.bit(3, 25) ? L2_FLAG_DST_DROP : 0) | (m.bit(3, 24) ? L2_FLAG_SRC_DROP : 0);
    return 0;
}

i32 dpl_reef_atolreef_l2_mac_msg_parse(u32 chip_id, const u8 *buf, u32 len, l2_addr *out, u32 *count)
{
    if (len > L2_MSG_BUFFER_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "buffer is too big \n\r");
        return SHR_E_PARAM;
    }
    if (len % L2_MSG_BYTES != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "buffer length %u is not a whole number of messages\n", len);
        return SHR_E_PARAM;
    }
    u32 n = 0;
    for (u32 off = 0; off < len; off += L2_MSG_BYTES) {
        if (dpl_reef_atolreef_l2_msg_to_l2data(chip_id, buf + off, &out[n]) == 0) {
            n++;
        }
    }
    *count = n;
    return 0;
}

} // extern "C"
