// The ingress ACL stage of the model (see sim_acl.h).
//
// The key of a lookup is laid out by the key table of the chip
// description: every field the table has is filled from the frame through
// kAttrs, the one table of key field names and packet attributes.  A field
// the model has no attribute for (UDF chunks, flow ids, group ids of
// services the model lacks) stays 0.
#include "sim/sim_acl.h"

#include <cstring>
#include <iterator>
#include <string>

#include "sim/sim_int.h"
#include "sim/sim_pkt.h"

namespace tide::sim {

namespace {

using u128 = unsigned __int128;

// ---- the frame as the ACL sees it -----------------------------------------------

constexpr uint16_t kTypeIpv4 = 0x0800, kTypeIpv6 = 0x86DD, kTypeArp = 0x0806;
constexpr uint8_t kProtoIcmp = 1, kProtoIgmp = 2, kProtoTcp = 6, kProtoUdp = 17, kProtoIcmpv6 = 58;

// What the lookups read of a frame, parsed once per frame.
struct View {
    const Packet *p = nullptr;
    uint16_t inner_tci = 0;
    bool llc = false, snap = false;
    uint32_t ip = 0; // 0 not IP, 1 IPv4, 2 IPv6
    u128 sip = 0, dip = 0;
    uint8_t tos = 0, proto = 0, ttl = 0;
    bool frag = false, frag_offset = false;
    bool l4 = false;
    uint16_t sport = 0, dport = 0;
    uint8_t tcp_flags = 0;
    uint8_t icmp_type = 0, icmp_code = 0;
    uint16_t arp_op = 0;
    uint64_t arp_smac = 0, arp_tmac = 0;
    uint32_t arp_sip = 0, arp_dip = 0;
    // The source port or trunk of the frame.
    bool trunk = false;
    uint32_t src = 0;
    uint32_t gid = 0;
};

// A field of at most 32 bits of a row or register: the stage reads a score
// of them per frame, nearly all within one word, which needs no general
// multi-word path.
[[gnu::always_inline]] inline uint32_t _get(const uint32_t *words, FieldRef f)
{
    const uint32_t shift = f.low % 32;
    if (shift + f.width <= 32) {
        return (words[f.low / 32] >> shift) & static_cast<uint32_t>(width_mask(f.width));
    }
    return static_cast<uint32_t>(bits_get(words, f));
}

uint16_t _be16(const uint8_t *b)
{
    return static_cast<uint16_t>(b[0] << 8 | b[1]);
}
uint32_t _be32(const uint8_t *b)
{
    return static_cast<uint32_t>(b[0]) << 24 | static_cast<uint32_t>(b[1]) << 16 | static_cast<uint32_t>(b[2]) << 8 |
           b[3];
}
uint64_t _be48(const uint8_t *b)
{
    return static_cast<uint64_t>(_be16(b)) << 32 | _be32(b + 2);
}
u128 _be128(const uint8_t *b)
{
    u128 v = 0;
    for (int i = 0; i < 16; i++) {
        v = v << 8 | b[i];
    }
    return v;
}

void _parse_l4(View &v, const uint8_t *l4, uint32_t room)
{
    if (v.proto == kProtoTcp || v.proto == kProtoUdp) {
        if (room >= 4) {
            v.l4 = true;
            v.sport = _be16(l4);
            v.dport = _be16(l4 + 2);
        }
        if (v.proto == kProtoTcp && room >= 14) {
            v.tcp_flags = l4[13] & 0x3F;
        }
    } else if ((v.proto == kProtoIcmp || v.proto == kProtoIcmpv6 || v.proto == kProtoIgmp) && room >= 2) {
        v.icmp_type = l4[0];
        v.icmp_code = l4[1];
        v.sport = v.proto == kProtoIgmp ? l4[0] : static_cast<uint16_t>(l4[0] << 8 | l4[1]);
    }
}

void _parse(View &v, const Packet &p, const uint32_t *bits_of_port, FieldRef trunk_en, FieldRef trunk_id,
            FieldRef gid)
{
    v.p = &p;
    const uint8_t *d = p.data;
    uint32_t off = 12 + 4 * p.tags;
    if (p.tags == 2) {
        v.inner_tci = _be16(d + 12 + 4 + 2);
    }
    const uint8_t *l3 = d + off + 2;
    const uint32_t room = p.len > off + 2 ? p.len - off - 2 : 0;
    if (p.ethertype < 0x600) {
        v.llc = true;
        v.snap = room >= 3 && l3[0] == 0xAA && l3[1] == 0xAA && l3[2] == 0x03;
    }
    v.trunk = _get(bits_of_port, trunk_en) != 0;
    v.src = v.trunk ? _get(bits_of_port, trunk_id) : p.src;
    v.gid = _get(bits_of_port, gid);
    if (p.ethertype == kTypeIpv4 && room >= 20 && (l3[0] >> 4) == 4) {
        const uint32_t ihl = (l3[0] & 15u) * 4;
        v.ip = 1;
        v.tos = l3[1];
        const uint16_t fl = _be16(l3 + 6);
        v.frag_offset = (fl & 0x1FFF) != 0;
        v.frag = v.frag_offset || (fl & 0x2000) != 0;
        v.ttl = l3[8];
        v.proto = l3[9];
        v.sip = _be32(l3 + 12);
        v.dip = _be32(l3 + 16);
        if (!v.frag_offset && room > ihl) {
            _parse_l4(v, l3 + ihl, room - ihl);
        }
    } else if (p.ethertype == kTypeIpv6 && room >= 40 && (l3[0] >> 4) == 6) {
        v.ip = 2;
        v.tos = static_cast<uint8_t>((_be16(l3) >> 4) & 0xFF);
        v.proto = l3[6];
        v.ttl = l3[7];
        v.sip = _be128(l3 + 8);
        v.dip = _be128(l3 + 24);
        _parse_l4(v, l3 + 40, room - 40);
    } else if (p.ethertype == kTypeArp && room >= 28) {
        v.arp_op = _be16(l3 + 6);
        v.arp_smac = _be48(l3 + 8);
        v.arp_sip = _be32(l3 + 14);
        v.arp_tmac = _be48(l3 + 18);
        v.arp_dip = _be32(l3 + 24);
    }
}

// ---- key field names and packet attributes ---------------------------------------

using AttrFn = u128 (*)(const View &);

struct Attr {
    const char *field;
    AttrFn get;
};

uint32_t _ttl_type(const View &v)
{
    return v.ip == 0 ? 0 : v.ttl == 0 ? 0 : v.ttl == 1 ? 1 : 2;
}

uint32_t _proto_encoded(const View &v)
{
    if (v.ip == 0) {
        return 0;
    }
    switch (v.proto) {
    case kProtoTcp:
        return 1;
    case kProtoUdp:
        return 2;
    case kProtoIcmp:
    case kProtoIcmpv6:
        return 3;
    case kProtoIgmp:
        return 4;
    default:
        return 5;
    }
}

// The destination the MAC table found: type 0 a port, 2 a replication id.
uint32_t _dst_type(const View &v)
{
    return v.p->replicate ? 2 : 0;
}
uint32_t _dst(const View &v)
{
    if (v.p->replicate) {
        return v.p->mrt;
    }
    if (!v.p->da_hit) {
        return 0;
    }
    return static_cast<uint32_t>(__builtin_ctz(v.p->dest | (1u << 31)));
}

// Fields of the description's key tables, by name.  Encodings: ip-type 0
// not IP, 1 IPv4, 2 IPv6; l3-pkt-type 0 unicast, 1 multicast, 2 broadcast
// destination MAC; ttl-type 0 for TTL 0 (or not IP), 1 for TTL 1, 2 above;
// l3-protocol-encoded 1 TCP, 2 UDP, 3 ICMP, 4 IGMP, 5 another IP protocol.
constexpr Attr kAttrs[] = {
    {"ethtype", [](const View &v) -> u128 { return v.p->ethertype; }},
    {"opri", [](const View &v) -> u128 { return v.p->tags != 0 ? v.p->outer_tci >> 13 : 0; }},
    {"ocfi", [](const View &v) -> u128 { return v.p->tags != 0 ? (v.p->outer_tci >> 12) & 1 : 0; }},
    {"ovlan", [](const View &v) -> u128 { return v.p->vid; }},
    {"ipri", [](const View &v) -> u128 { return v.inner_tci >> 13; }},
    {"icfi", [](const View &v) -> u128 { return (v.inner_tci >> 12) & 1; }},
    {"ivlan", [](const View &v) -> u128 { return v.inner_tci & 0xFFF; }},
    {"dmac", [](const View &v) -> u128 { return v.p->dmac; }},
    {"smac", [](const View &v) -> u128 { return v.p->smac; }},
    {"dmac_47_10", [](const View &v) -> u128 { return v.p->dmac >> 10; }},
    {"dmachit", [](const View &v) -> u128 { return v.p->da_hit ? 1 : 0; }},
    {"trunken", [](const View &v) -> u128 { return v.trunk ? 1 : 0; }},
    {"porttrunkidstacksp_vp", [](const View &v) -> u128 { return v.src; }},
    {"llc", [](const View &v) -> u128 { return v.llc ? 1 : 0; }},
    {"snap", [](const View &v) -> u128 { return v.snap ? 1 : 0; }},
    {"tagnum", [](const View &v) -> u128 { return v.p->tags; }},
    {"gid", [](const View &v) -> u128 { return v.gid; }},
    {"drop", [](const View &v) -> u128 { return v.p->forward ? 0 : 1; }},
    {"iptype", [](const View &v) -> u128 { return v.ip; }},
    {"l3pkttype",
     [](const View &v) -> u128 { return v.p->da == DaKind::kBroadcast ? 2 : v.p->da == DaKind::kMulticast ? 1 : 0; }},
    {"tcpflag", [](const View &v) -> u128 { return v.tcp_flags; }},
    {"l4sport_icmp_igmp", [](const View &v) -> u128 { return v.sport; }},
    {"l4dport_arpopcode", [](const View &v) -> u128 { return v.ip != 0 ? v.dport : v.arp_op; }},
    {"sip", [](const View &v) -> u128 { return v.ip == 1 ? v.sip : 0; }},
    {"dip", [](const View &v) -> u128 { return v.ip == 1 ? v.dip : 0; }},
    {"sip_63_0", [](const View &v) -> u128 { return v.ip == 2 ? static_cast<uint64_t>(v.sip) : 0; }},
    {"sip_127_64", [](const View &v) -> u128 { return v.ip == 2 ? static_cast<uint64_t>(v.sip >> 64) : 0; }},
    {"dip_63_0", [](const View &v) -> u128 { return v.ip == 2 ? static_cast<uint64_t>(v.dip) : 0; }},
    {"dip_127_64", [](const View &v) -> u128 { return v.ip == 2 ? static_cast<uint64_t>(v.dip >> 64) : 0; }},
    {"sip_127_96", [](const View &v) -> u128 { return v.ip == 2 ? static_cast<uint32_t>(v.sip >> 96) : 0; }},
    {"dip_127_96", [](const View &v) -> u128 { return v.ip == 2 ? static_cast<uint32_t>(v.dip >> 96) : 0; }},
    {"ttltype", [](const View &v) -> u128 { return _ttl_type(v); }},
    {"tos", [](const View &v) -> u128 { return v.tos; }},
    {"protocol", [](const View &v) -> u128 { return v.proto; }},
    {"fragoffsetflag", [](const View &v) -> u128 { return v.frag_offset ? 1 : 0; }},
    {"fraginfo", [](const View &v) -> u128 { return v.frag ? 1 : 0; }},
    {"l3protoenc", [](const View &v) -> u128 { return _proto_encoded(v); }},
    {"dst_type", [](const View &v) -> u128 { return _dst_type(v); }},
    {"dst", [](const View &v) -> u128 { return _dst(v); }},
    {"arp_smac", [](const View &v) -> u128 { return v.arp_smac; }},
    {"arp_tmac", [](const View &v) -> u128 { return v.arp_tmac; }},
    {"arp_sip", [](const View &v) -> u128 { return v.arp_sip; }},
    {"arp_dip", [](const View &v) -> u128 { return v.arp_dip; }},
    {"icmptype", [](const View &v) -> u128 { return v.icmp_type; }},
    {"icmpcode", [](const View &v) -> u128 { return v.icmp_code; }},
};

// The ingress lookup types and their key tables: the type is also the
// key's sub-type tag.  Types 4 and 7 are the single-width keys on this
// chip (its 320-bit IPv6-MAC and 480-bit keys are not there).
struct TypeRow {
    uint32_t type;
    const char *table;
    const char *kind_reg; // the kind bitmap of the blocks of its width
};
constexpr TypeRow kTypes[] = {
    {1, "iacl_tcam_iacl_320_ipv4_key", "acl_core_tcamblock_cfg0"},
    {2, "iacl_tcam_iacl_320_ipv6_sip_key", "acl_core_tcamblock_cfg0"},
    {3, "iacl_tcam_iacl_320_ipv6_dip_key", "acl_core_tcamblock_cfg0"},
    {4, "iacl_tcam_iacl_160_ipv4_key", "acl_core_tcamblock_cfg1"},
    {5, "iacl_tcam_iacl_320_ipv6_allip_pv_key", "acl_core_tcamblock_cfg0"},
    {6, "iacl_tcam_iacl_320_udf_key", "acl_core_tcamblock_cfg0"},
    {7, "iacl_tcam_iacl_160_l2_key", "acl_core_tcamblock_cfg1"},
    {8, "iacl_tcam_iacl_320_arp_key", "acl_core_tcamblock_cfg0"},
    {13, "iacl_tcam_iacl_ucl_320_ipv4_key", "acl_core_tcamblock_cfg0"},
    {14, "iacl_tcam_iacl_ucl_320_ipv6_key", "acl_core_tcamblock_cfg0"},
};

// The type tag of a lookup by its base.
constexpr uint32_t kTidGlobal = 11, kTidPort = 4, kTidVlan = 10;

// Forwarding commands of the action row.
enum : uint32_t { kFwdRedirect = 5, kFwdNexthop = 9 };
constexpr uint32_t kDestTrunk = 0x800;

void _set(uint32_t *key, FieldRef f, u128 v)
{
    const uint32_t shift = f.low % 32;
    if (shift + f.width <= 32) {
        // Most key fields lie in one word.
        const uint32_t m = static_cast<uint32_t>(width_mask(f.width));
        uint32_t &w = key[f.low / 32];
        w = (w & ~(m << shift)) | (static_cast<uint32_t>(v) & m) << shift;
        return;
    }
    if (f.width <= 64) {
        bits_set(key, f, static_cast<uint64_t>(v));
        return;
    }
    bits_set(key, FieldRef{f.low, 64}, static_cast<uint64_t>(v));
    bits_set(key, FieldRef{f.low + 64, f.width - 64}, static_cast<uint64_t>(v >> 64));
}

} // namespace

// ---- set-up -----------------------------------------------------------------------

AclStage::AclStage(Pipeline &pl) : pl_(pl)
{
    memset(by_type_, -1, sizeof(by_type_));
    for (const TypeRow &t : kTypes) {
        const desc::Table *tab = desc::find_table(t.table);
        needs_.ok &= tab != nullptr;
        if (tab == nullptr) {
            continue;
        }
        Layout l;
        l.table = t.table;
        l.bits = tab->words * 32;
        l.kind_reg = needs_.reg(t.kind_reg);
        l.tid = needs_.field(tab->fields, tab->field_count, "tid");
        l.subtid = needs_.field(tab->fields, tab->field_count, "subtid");
        for (uint32_t i = 0; i < tab->field_count; i++) {
            for (uint32_t a = 0; a < std::size(kAttrs); a++) {
                if (strcmp(tab->fields[i].name, kAttrs[a].field) == 0) {
                    l.fields.push_back(KeyField{FieldRef{tab->fields[i].low, tab->fields[i].width},
                                                static_cast<uint8_t>(a)});
                }
            }
        }
        by_type_[t.type] = static_cast<int8_t>(layouts_.size());
        layouts_.push_back(std::move(l));
    }
    const desc::Register *r = nullptr;
    a_glb_ = needs_.reg("iacl_glb_lookup_cfg", &r);
    f_glb_type_[0] = needs_.field(r, "first_acltype");
    f_glb_type_[1] = needs_.field(r, "second_acltype");
    f_glb_pri_[0] = needs_.field(r, "first_aclpri");
    f_glb_pri_[1] = needs_.field(r, "second_aclpri");
    for (uint32_t b = 0; b < TcamEngine::kBlocks; b++) {
        const std::string name = "acl_core_tcam_glb_cbe" + std::to_string(b);
        a_cbe_[b] = needs_.reg(name.c_str(), &r);
        f_cbe_[b] = needs_.field(r, ("tcam_glb_cbe" + std::to_string(b)).c_str());
    }
    const desc::Table *ipat = desc::find_table("ipro_ipat_tbl");
    const desc::Table *ivlan = desc::find_table("ipro_ivlan_tbl");
    const desc::Table *ad = desc::find_table("iacl_tcam_iacl_ad");
    needs_.ok &= ipat != nullptr && ivlan != nullptr && ad != nullptr;
    if (!needs_.ok) {
        return;
    }
    f_port_en_ = needs_.field(ipat->fields, ipat->field_count, "iacl_en");
    f_port_type_[0] = needs_.field(ipat->fields, ipat->field_count, "first_policy_acltype");
    f_port_type_[1] = needs_.field(ipat->fields, ipat->field_count, "second_policy_acltype");
    f_port_pri_[0] = needs_.field(ipat->fields, ipat->field_count, "first_policy_aclpri");
    f_port_pri_[1] = needs_.field(ipat->fields, ipat->field_count, "second_policy_aclpri");
    f_trunk_en_ = needs_.field(ipat->fields, ipat->field_count, "trunk_en");
    f_trunk_id_ = needs_.field(ipat->fields, ipat->field_count, "trunk_id");
    f_gid_ = needs_.field(ipat->fields, ipat->field_count, "gid");
    f_vlan_type_ = needs_.field(ivlan->fields, ivlan->field_count, "first_policy_acltype");
    f_vlan_pri_ = needs_.field(ivlan->fields, ivlan->field_count, "first_policy_aclpri");
    f_valid_ = needs_.field(ad->fields, ad->field_count, "valid");
    f_fwdcmd_ = needs_.field(ad->fields, ad->field_count, "fwdcmd");
    f_dest_ = needs_.field(ad->fields, ad->field_count, "causeid_dport_nhpid_ecmpgrp");
    f_denydrop_ = needs_.field(ad->fields, ad->field_count, "denydrop");
}

// ---- the search and its cache ------------------------------------------------------

size_t AclStage::CacheHash::operator()(const CacheKey &k) const
{
    uint64_t h = 0xcbf29ce484222325ull ^ k.bitmap;
    for (uint32_t w : k.key) {
        h = (h ^ w) * 0x100000001b3ull;
    }
    return static_cast<size_t>(h ^ (h >> 29));
}

const AclStage::Hit &AclStage::search(const TcamEngine::Plane &key, uint32_t bits, uint32_t bitmap)
{
    TcamEngine &tcam = *pl_.chip().tcam;
    if (cache_generation_ != tcam.generation()) {
        cache_.clear();
        cache_generation_ = tcam.generation();
    }
    // The key's width is told by its tags, which sit at different bits for
    // the two widths, so one map serves both.
    const CacheKey ck{key, bitmap};
    auto it = cache_.find(ck);
    if (it != cache_.end()) {
        return it->second;
    }
    Hit h;
    uint32_t block = 0, index = 0;
    if (tcam.search_right_aligned(key, bits, bitmap, &block, &index)) {
        TcamEngine::Row row;
        tcam.row_get(block, index, &row);
        h.hit = true;
        h.action = row.action;
    }
    return cache_.emplace(ck, h).first->second;
}

// ---- the stage -----------------------------------------------------------------------

bool AclStage::run(Packet &p)
{
    if (_get(p.ipat, f_port_en_) == 0) {
        return true;
    }
    // The lookups in their order: global first and second, the port's first
    // and second, the VLAN's.  Type 0 is no lookup.
    struct Lookup {
        uint32_t type, pri, tid;
    };
    const uint32_t glb = pl_.reg(RegView{&a_glb_, 1});
    const Lookup lookups[] = {
        {_get(&glb, f_glb_type_[0]), _get(&glb, f_glb_pri_[0]), kTidGlobal},
        {_get(&glb, f_glb_type_[1]), _get(&glb, f_glb_pri_[1]), kTidGlobal},
        {_get(p.ipat, f_port_type_[0]), _get(p.ipat, f_port_pri_[0]), kTidPort},
        {_get(p.ipat, f_port_type_[1]), _get(p.ipat, f_port_pri_[1]), kTidPort},
        {_get(p.ivlan, f_vlan_type_), _get(p.ivlan, f_vlan_pri_), kTidVlan},
    };
    // The enabled blocks and the frame's view, read once the first
    // configured lookup needs them.
    uint32_t enabled = 0;
    View v;
    bool parsed = false;
    // A copy: a later search may rehash the cache.
    Hit best;
    uint32_t best_pri = 0;
    for (const Lookup &l : lookups) {
        if (l.type >= std::size(by_type_) || by_type_[l.type] < 0) {
            continue;
        }
        if (!parsed) {
            _parse(v, p, p.ipat, f_trunk_en_, f_trunk_id_, f_gid_);
            for (uint32_t b = 0; b < TcamEngine::kBlocks; b++) {
                const uint32_t cbe = pl_.reg(RegView{&a_cbe_[b], 1});
                enabled |= (_get(&cbe, f_cbe_[b]) != 0 ? 1u : 0u) << b;
            }
            parsed = true;
        }
        const Layout &lay = layouts_[static_cast<uint32_t>(by_type_[l.type])];
        TcamEngine::Plane key{};
        bits_set(key.data(), lay.tid, l.tid);
        bits_set(key.data(), lay.subtid, l.type);
        for (const KeyField &kf : lay.fields) {
            _set(key.data(), kf.field, kAttrs[kf.attr].get(v));
        }
        const uint32_t bitmap = pl_.reg(RegView{&lay.kind_reg, 1}) & enabled;
        const Hit &h = search(key, lay.bits, bitmap);
        // The higher priority wins; of equal ones the earlier lookup.
        if (h.hit && (!best.hit || l.pri > best_pri)) {
            best = h;
            best_pri = l.pri;
        }
    }
    if (best.hit) {
        apply(p, best);
    }
    return p.forward;
}

// The action row of the winning hit.  A drop names the ACL's cause; a copy
// or a redirect to the CPU carries the entry's cause id; a redirect to a
// port replaces the MAC table's destination; denydrop keeps later stages
// from dropping the frame.
void AclStage::apply(Packet &p, const Hit &h)
{
    const uint32_t *ad = h.action.data();
    if (_get(ad, f_valid_) == 0) {
        return;
    }
    const uint32_t dest = _get(ad, f_dest_);
    const uint16_t cause = static_cast<uint16_t>(dest & 0x3FF);
    const uint32_t cmd = _get(ad, f_fwdcmd_);
    if (!p.basic_forwarding(cmd, kCauseAclDrop, cause)) {
        // Trunks, next hops and the others have no stage in the model yet.
        if (cmd == kFwdRedirect && (dest & kDestTrunk) == 0) {
            p.redirect_to_port(dest & 0x7FF);
        } else {
            p.drop(kCauseOpcodeAbnormal);
        }
    }
    if (_get(ad, f_denydrop_) != 0) {
        p.deny_drop = true;
    }
}

bool acl_stage(Pipeline &pl, Packet &p)
{
    return pl.acl().run(p);
}

} // namespace tide::sim
