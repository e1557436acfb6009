// The address record of the service against the MAC table's key and AD:
// the checks of a record, and the conversions both ways, with the IPv6
// digests that the selector registers choose.
#include <cstring>

#include "atolreef_cib.h"
#include "dpl/reef/l2/dpl_reef_l2.h"

namespace {

constexpr u32 kMacShift = 16; // a MAC stands in bits 63..16 of the key value
constexpr u32 kChunkBits = 16;
// A conversion takes selectors below these: a DIP selector of 14 would
// take the last chunk of the address, which the digest leaves to the
// VLAN-free key types, so the control may hold it but no key uses it.
constexpr u32 kDipSelLimit = 14; // selectors of DIP chunks
constexpr u32 kSipSelLimit = 30; // selectors of SIP chunks, held with 16 added

// Opcodes of the AD: the kind of destination.
enum : u8 { kOpPort = 0, kOpTrunk, kOpDvp, kOpNhp, kOpEcmp, kOpMcast, kOpDrop, kOpCpu };

// The destination flags in the order in which a record's first one counts,
// with the opcode each stands for.
struct Dest {
    u32 flag;
    u8 opcode;
};
constexpr Dest kDests[] = {
    {L2_FLAG_DEST_PORT, kOpPort},   {L2_FLAG_DEST_TRUNK, kOpTrunk}, {L2_FLAG_DEST_MCAST, kOpMcast},
    {L2_FLAG_DEST_DROP, kOpDrop},   {L2_FLAG_DEST_CPU, kOpCpu},     {L2_FLAG_DEST_DVP, kOpDvp},
    {L2_FLAG_DEST_NHP, kOpNhp},     {L2_FLAG_DEST_ECMP, kOpEcmp},
};

const Dest *_first_dest(u32 flags)
{
    for (const Dest &d : kDests) {
        if (flags & d.flag) {
            return &d;
        }
    }
    return nullptr;
}

bool _range(u32 chip_id, u32 value, u32 max, const char *format)
{
    if (value > max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, format, (int)value, (int)max);
        return false;
    }
    return true;
}

// The four selectors of a digest: DIP selectors for key type 3, DIP and
// SIP selectors for key types 4 and 5.  All must be even and below their
// limit.
i32 _selectors(u32 chip_id, bool dip_only, u32 sel[4])
{
    i32 rc = 0;
    if (dip_only) {
        cib_arl_ipv6_dip_sel_t r{};
        rc = csl_reef_cib_arl_ipv6_dip_sel_get(chip_id, 0, &r);
        sel[0] = r.ipv6_dip_sel_0;
        sel[1] = r.ipv6_dip_sel_1;
        sel[2] = r.ipv6_dip_sel_2;
        sel[3] = r.ipv6_dip_sel_3;
    } else {
        cib_arl_ipv6_ip_sel_t r{};
        rc = csl_reef_cib_arl_ipv6_ip_sel_get(chip_id, 0, &r);
        sel[0] = r.ipv6_ip_sel_0;
        sel[1] = r.ipv6_ip_sel_1;
        sel[2] = r.ipv6_ip_sel_2;
        sel[3] = r.ipv6_ip_sel_3;
    }
    if (rc != 0) {
        return rc;
    }
    for (u32 i = 0; i < 4; i++) {
        const u32 limit = dip_only || i < 2 ? kDipSelLimit : kSipSelLimit;
        if (sel[i] >= limit || (sel[i] & 1) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "arl_ipv6_dip_sel value is wrong %u %u %u %u\n", sel[0], sel[1],
                        sel[2], sel[3]);
            return SHR_E_PARAM;
        }
    }
    return 0;
}

// The two bytes of an address that a selector picks: DIP chunks at
// 14 - s, SIP chunks at t - 1 with t = ~s & 15.
u32 _chunk_at(u32 i, u32 s, bool dip_only)
{
    return dip_only || i < 2 ? 14 - s : (~s & 15) - 1;
}

const u8 *_chunk_src(const l2_addr *a, u32 i, bool dip_only)
{
    return dip_only || i < 2 ? a->dipv6 : a->sipv6;
}

u8 *_chunk_dst(l2_addr *a, u32 i, bool dip_only)
{
    return dip_only || i < 2 ? a->dipv6 : a->sipv6;
}

i32 _ipv6_digest(u32 chip_id, const l2_addr *addr, bool dip_only, u64 *digest)
{
    u32 sel[4];
    const i32 rc = _selectors(chip_id, dip_only, sel);
    if (rc != 0) {
        return rc;
    }
    u64 v = 0;
    for (u32 i = 0; i < 4; i++) {
        const u8 *src = _chunk_src(addr, i, dip_only);
        const u32 at = _chunk_at(i, sel[i], dip_only);
        v |= static_cast<u64>(src[at] << 8 | src[at + 1]) << (kChunkBits * i);
    }
    *digest = v;
    return 0;
}

// The inverse: only the bytes that the selectors take are written back.
i32 _ipv6_undigest(u32 chip_id, u64 digest, bool dip_only, l2_addr *addr)
{
    u32 sel[4];
    const i32 rc = _selectors(chip_id, dip_only, sel);
    if (rc != 0) {
        return rc;
    }
    for (u32 i = 0; i < 4; i++) {
        u8 *dst = _chunk_dst(addr, i, dip_only);
        const u32 at = _chunk_at(i, sel[i], dip_only);
        const u32 chunk = static_cast<u32>(digest >> (kChunkBits * i)) & 0xFFFF;
        dst[at] = static_cast<u8>(chunk >> 8);
        dst[at + 1] = static_cast<u8>(chunk);
    }
    return 0;
}

u64 _mac_value(const u8 mac[6])
{
    u64 v = 0;
    for (u32 i = 0; i < 6; i++) {
        v = v << 8 | mac[i];
    }
    return v << kMacShift;
}

i32 _key_value(u32 chip_id, const l2_addr *addr, csl_l2_mac_key *key)
{
    if (addr->key_type == L2_KEY_MAC_VLAN) {
        key->iptype = 0;
        key->keymode = 0;
        key->mac_ip = _mac_value(addr->mac);
        SHR_LOG_DBG(chip_id, SHR_MOD_ARL, "key->mac_ip %lx\n", (unsigned long)key->mac_ip);
        return 0;
    }
    if (addr->key_type != L2_KEY_DIP_VLAN && addr->key_type != L2_KEY_DIP_SIP &&
        addr->key_type != L2_KEY_DIP_SIP_VLAN) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "_dpl_ebb_l2_to_l2x l2 addr keymode is erro %d\n", (int)addr->key_type);
        return SHR_E_PARAM;
    }
    const bool dip_only = addr->key_type == L2_KEY_DIP_VLAN;
    key->keymode = static_cast<u8>(dip_only ? 1 : addr->key_type - 2);
    if (addr->iptype == 0) {
        key->iptype = 0;
        key->mac_ip = dip_only ? addr->dip4 : (static_cast<u64>(addr->sip4) << 32 | addr->dip4);
        return 0;
    }
    if (addr->iptype != 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "_dpl_ebb_l2_to_l2x l2 addr iptype is erro\n");
        return SHR_E_PARAM;
    }
    key->iptype = 1;
    return _ipv6_digest(chip_id, addr, dip_only, &key->mac_ip);
}

i32 _dest_value(u32 chip_id, const l2_addr *addr, csl_l2_mac_ad *ad, u32 no_dest_check)
{
    const Dest *d = _first_dest(addr->flags);
    if (d == nullptr) {
        if (no_dest_check) {
            return 0;
        }
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "_l2_to_l2x l2 addr dest type is error\n");
        return SHR_E_PARAM;
    }
    ad->opcode = d->opcode;
    switch (d->opcode) {
    case kOpPort:
        ad->learn_data = static_cast<u16>((addr->modid & 31) * 64 | (addr->port & 63));
        return 0;
    case kOpTrunk:
        ad->learn_data = static_cast<u16>(addr->tgid);
        return 0;
    case kOpMcast:
        ad->learn_data = static_cast<u16>(addr->mgid);
        return 0;
    case kOpDrop:
    case kOpCpu:
        ad->learn_data = static_cast<u16>(addr->causeid);
        return 0;
    default:
        // Destinations of the layer-3 tables, which atolreef's MAC table
        // does not reach.
        return SHR_E_NOT_SUPPORT;
    }
}

} // namespace

extern "C" {

i32 _l2_addr_key_check(u32 chip_id, const l2_addr *addr)
{
    if (addr->key_type != L2_KEY_MAC_VLAN && addr->key_type != L2_KEY_DIP_VLAN && addr->key_type != L2_KEY_DIP_SIP &&
        addr->key_type != L2_KEY_DIP_SIP_VLAN) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "chip is not support \n");
        return SHR_E_NOT_SUPPORT;
    }
    if ((addr->flags & L2_FLAG_KEY_VID) && addr->vid > DPL_L2_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "vlan id %d is out of range, min %d, max %d \n", (int)addr->vid, 0,
                    (int)DPL_L2_VID_MAX);
        return SHR_E_PARAM;
    }
    if ((addr->flags & L2_FLAG_KEY_FID) && addr->vid > DPL_L2_FID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "fid %d is out of range, min %d, max %d \n", (int)addr->vid, 0,
                    (int)DPL_L2_FID_MAX);
        return SHR_E_PARAM;
    }
    if (addr->flags & L2_FLAG_KEY_VFI) {
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

i32 _l2_addr_check(u32 chip_id, const l2_addr *addr)
{
    const i32 rc = _l2_addr_key_check(chip_id, addr);
    if (rc != 0) {
        return rc;
    }
    const dpl_reef_l2_property &p = g_l2_property[chip_id];
    if (!_range(chip_id, addr->ovid, DPL_L2_VID_MAX, "ovid %d is out of range, min 0, max %d \n") ||
        !_range(chip_id, addr->gid, p.gid_max, "gid %d is out of range, min 0, max %d \n")) {
        return SHR_E_PARAM;
    }
    const Dest *d = _first_dest(addr->flags);
    if (d == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "_ret_l2_to_l2x l2 addr flag %d is error\n", (int)addr->flags);
        return SHR_E_PARAM;
    }
    bool ok = true;
    switch (d->opcode) {
    case kOpPort:
        ok = _range(chip_id, addr->port, p.port_max, "port %d is out of range, min 0, max %d \n");
        break;
    case kOpTrunk:
        ok = _range(chip_id, addr->tgid, p.tgid_max, "tgid %d is out of range, min 0, max %d  \n");
        break;
    case kOpMcast:
        ok = addr->mgid >= DPL_L2_MGID_MIN && addr->mgid <= DPL_L2_MGID_MAX;
        if (!ok) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "multicast group %d is out of range, min %d, max %d  \n",
                        (int)addr->mgid, (int)DPL_L2_MGID_MIN, (int)DPL_L2_MGID_MAX);
        }
        break;
    case kOpDrop:
        ok = _range(chip_id, addr->causeid, p.drop_cause_max, "drop causeid %d is out of range, min 0, max %d  \n");
        break;
    case kOpCpu:
        ok = _range(chip_id, addr->causeid, p.tocpu_cause_max, "tocpu causeid %d is out of range, min 0, max %d  \n");
        break;
    case kOpDvp:
        ok = _range(chip_id, addr->dvp, DPL_L2_DVP_MAX, "dvp %d is out of range, min 0, max %d  \n");
        break;
    case kOpNhp:
        ok = _range(chip_id, addr->nhp, DPL_L2_NHP_MAX, "nhp %d is out of range, min 0, max %d  \n");
        break;
    default:
        ok = _range(chip_id, addr->ecmp, DPL_L2_ECMP_MAX, "ecmp %d is out of range, min 0, max %d  \n");
        break;
    }
    return ok ? 0 : SHR_E_PARAM;
}

i32 _l2_to_l2x(u32 chip_id, const l2_addr *addr, csl_l2_mac_key *key, csl_l2_mac_ad *ad, u32 no_dest_check)
{
    *key = csl_l2_mac_key{};
    *ad = csl_l2_mac_ad{};
    i32 rc = _key_value(chip_id, addr, key);
    if (rc != 0) {
        return rc;
    }
    if (addr->flags & L2_FLAG_KEY_VID) {
        key->vlanid = addr->vid;
    } else if (addr->flags & L2_FLAG_KEY_FID) {
        return SHR_E_NOT_SUPPORT; // atolreef keys have no fid
    }
    ad->stati = (addr->flags & L2_FLAG_DYNAMIC) ? 0 : 1;
    ad->remote = (addr->flags & L2_FLAG_REMOTE) ? 1 : 0;
    ad->lrnclass = static_cast<u8>(((addr->flags & L2_FLAG_DYN_COVER_STATIC) ? 2 : 0) |
                                   ((addr->flags & L2_FLAG_DYN_COVER_STATIC_FWD) ? 1 : 0));
    ad->src_blk_list = (addr->flags & L2_FLAG_SRC_DROP) ? 1 : 0;
    ad->dst_blk_list = (addr->flags & L2_FLAG_DST_DROP) ? 1 : 0;
    rc = _dest_value(chip_id, addr, ad, no_dest_check);
    if (rc != 0) {
        return rc;
    }
    ad->gid = static_cast<u8>(addr->gid);
    ad->outer_vlanid = addr->ovid;
    ad->tagnum = addr->tagnum;
    ad->valid = static_cast<u8>(addr->valid != 0);
    return 0;
}

i32 _l2x_to_l2(u32 chip_id, const csl_l2_mac_key *key, const csl_l2_mac_ad *ad, l2_addr *addr)
{
    addr->valid = ad->valid;
    addr->iptype = key->iptype;
    addr->flags = L2_FLAG_KEY_VID;
    addr->vid = key->vlanid & DPL_L2_VID_MAX;
    if (key->keymode == 0) {
        addr->key_type = L2_KEY_MAC_VLAN;
        for (u32 i = 0; i < 6; i++) {
            addr->mac[i] = static_cast<u8>(key->mac_ip >> (kMacShift + 8 * (5 - i)));
        }
    } else {
        const bool dip_only = key->keymode == 1;
        addr->key_type = dip_only ? L2_KEY_DIP_VLAN : key->keymode + 2;
        if (key->iptype == 1) {
            const i32 rc = _ipv6_undigest(chip_id, key->mac_ip, dip_only, addr);
            if (rc != 0) {
                return rc;
            }
        } else {
            addr->dip4 = static_cast<u32>(key->mac_ip);
            addr->sip4 = dip_only ? 0 : static_cast<u32>(key->mac_ip >> 32);
        }
    }
    if (!ad->stati) {
        addr->flags |= L2_FLAG_DYNAMIC;
    }
    addr->flags |= (ad->lrnclass & 2 ? L2_FLAG_DYN_COVER_STATIC : 0) | (ad->lrnclass & 1 ? L2_FLAG_DYN_COVER_STATIC_FWD : 0);
    addr->flags |= (ad->src_blk_list ? L2_FLAG_SRC_DROP : 0) | (ad->dst_blk_list ? L2_FLAG_DST_DROP : 0);
    addr->modid = addr->port = addr->tgid = addr->dvp = addr->nhp = addr->ecmp = addr->mgid = addr->causeid = 0;
    const u32 ld = ad->learn_data;
    switch (ad->opcode) {
    case kOpPort:
        addr->flags |= L2_FLAG_DEST_PORT;
        addr->modid = ld >> 6 & 31;
        addr->port = ld & 63;
        break;
    case kOpTrunk:
        addr->flags |= L2_FLAG_DEST_TRUNK;
        addr->tgid = ld;
        break;
    case kOpDvp:
        addr->flags |= L2_FLAG_DEST_DVP;
        addr->dvp = ld;
        break;
    case kOpNhp:
        addr->flags |= L2_FLAG_DEST_NHP;
        addr->nhp = ld;
        break;
    case kOpEcmp:
        addr->flags |= L2_FLAG_DEST_ECMP;
        addr->ecmp = ld;
        break;
    case kOpMcast:
        addr->flags |= L2_FLAG_DEST_MCAST;
        addr->mgid = ld;
        break;
    case kOpDrop:
        addr->flags |= L2_FLAG_DEST_DROP;
        addr->causeid = ld;
        break;
    case kOpCpu:
        addr->flags |= L2_FLAG_DEST_CPU;
        addr->causeid = ld;
        break;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "\n\r l2 mac opcode wrong \n\r");
        return SHR_E_PARAM;
    }
    addr->gid = ad->gid;
    addr->ovid = ad->outer_vlanid;
    addr->age_cnt = ad->age_cnt;
    addr->tagnum = 0;
    return 0;
}

} // extern "C"
