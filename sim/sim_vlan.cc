// The model's VLAN TCAM lookups (see sim_vlan.h).
#include "sim/sim_vlan.h"

#include <cstring>
#include <iterator>
#include <string>

#include "sim/sim_int.h"
#include "sim/sim_pkt.h"

namespace tide::sim {

namespace {

constexpr uint32_t kTagBytes = 4;
constexpr uint32_t kTypeOffset = 12;
constexpr uint16_t kTypeIpv4 = 0x0800;
constexpr uint16_t kTypeMin = 0x0600; // below: an 802.3 length, an LLC frame
constexpr uint8_t kSnapSap = 0xAA;
constexpr uint8_t kSnapCtrl = 0x03;

uint16_t _be16(const uint8_t *b)
{
    return static_cast<uint16_t>(b[0] << 8 | b[1]);
}

// What the lookups read of a frame.
struct View {
    const Packet *p = nullptr;
    uint16_t inner_tci = 0;
    uint32_t sip = 0;
    uint16_t protocol = 0; // ethernet type, SNAP type, or DSAP << 8 | SSAP
    bool snap = false, llc = false;
};

void _parse(View &v, const Packet &p)
{
    v.p = &p;
    const uint32_t l2 = kTypeOffset + kTagBytes * p.tags; // the type or length field
    if (p.tags == 2) {
        v.inner_tci = _be16(p.data + kTypeOffset + kTagBytes + 2);
    }
    const uint8_t *body = p.data + l2 + 2;
    const uint32_t room = p.len > l2 + 2 ? p.len - l2 - 2 : 0;
    if (p.ethertype >= kTypeMin) {
        v.protocol = p.ethertype;
        if (p.ethertype == kTypeIpv4 && room >= 20 && (body[0] >> 4) == 4) {
            v.sip = static_cast<uint32_t>(body[12]) << 24 | body[13] << 16 | body[14] << 8 | body[15];
        }
    } else if (room >= 8 && body[0] == kSnapSap && body[1] == kSnapSap && body[2] == kSnapCtrl) {
        v.snap = true;
        v.protocol = _be16(body + 6);
    } else if (room >= 2) {
        v.llc = true;
        v.protocol = _be16(body);
    }
}

using AttrFn = uint64_t (*)(const View &);
struct Attr {
    const char *field;
    AttrFn get;
};

// Fields of the VLAN key tables, by name.  The frame's outer VID is its
// VLAN so far: the tag's, or the PVID for an untagged or priority-tagged
// frame.  The port fields hold the ingress port.
constexpr Attr kAttrs[] = {
    {"vacl_ovlan", [](const View &v) -> uint64_t { return v.p->vid; }},
    {"vacl_ivlan", [](const View &v) -> uint64_t { return v.inner_tci & 0xFFFu; }},
    {"opri", [](const View &v) -> uint64_t { return v.p->tags != 0 ? v.p->outer_tci >> 13 : 0; }},
    {"ipri", [](const View &v) -> uint64_t { return v.inner_tci >> 13; }},
    {"portbitmap_l28", [](const View &v) -> uint64_t { return v.p->src; }},
    {"portbitmap", [](const View &v) -> uint64_t { return v.p->src; }},
    {"smac_47_32", [](const View &v) -> uint64_t { return v.p->smac >> 32; }},
    {"smac", [](const View &v) -> uint64_t { return v.p->smac & 0xFFFFFFFFu; }},
    {"ipv4_sip", [](const View &v) -> uint64_t { return v.sip; }},
    {"vacl_ethtype", [](const View &v) -> uint64_t { return v.protocol; }},
    {"snap", [](const View &v) -> uint64_t { return v.snap ? 1 : 0; }},
    {"llc", [](const View &v) -> uint64_t { return v.llc ? 1 : 0; }},
};

// The two lookups: key table, type tag, the kind bitmap of its blocks.
struct LookupRow {
    const char *table;
    uint32_t tid;
    const char *kind_reg;
};
constexpr LookupRow kLookups[] = {
    {"ipro_tcam_vlanacl_160_key", 9, "acl_core_tcamblock_cfg7"},
    {"ipro_tcam_vlanacl_320_key", 3, "acl_core_tcamblock_cfg8"},
};

// Outer tag commands of the action row that give the frame a VLAN.
constexpr uint32_t kCmdAdd = 1, kCmdReplace = 2;

} // namespace

VlanTcamStage::VlanTcamStage(Pipeline &pl) : pl_(pl)
{
    for (size_t i = 0; i < std::size(kLookups); i++) {
        const desc::Table *tab = desc::find_table(kLookups[i].table);
        needs_.ok &= tab != nullptr;
        if (tab == nullptr) {
            return;
        }
        Layout &l = layouts_[i];
        l.bits = tab->words * 32;
        l.tid_value = kLookups[i].tid;
        l.kind_reg = needs_.reg(kLookups[i].kind_reg);
        l.tid = needs_.field(tab->fields, tab->field_count, "tid");
        for (uint32_t f = 0; f < tab->field_count; f++) {
            for (uint32_t a = 0; a < std::size(kAttrs); a++) {
                if (strcmp(tab->fields[f].name, kAttrs[a].field) == 0) {
                    l.fields.push_back(
                        KeyField{FieldRef{tab->fields[f].low, tab->fields[f].width}, static_cast<uint8_t>(a)});
                }
            }
        }
    }
    const desc::Register *r = nullptr;
    for (uint32_t b = 0; b < TcamEngine::kBlocks; b++) {
        a_cbe_[b] = needs_.reg(("acl_core_tcam_glb_cbe" + std::to_string(b)).c_str(), &r);
        f_cbe_[b] = needs_.field(r, ("tcam_glb_cbe" + std::to_string(b)).c_str());
    }
    const desc::Table *ad = desc::find_table("ipro_tcam_vlanacl_ad");
    needs_.ok &= ad != nullptr;
    if (ad != nullptr) {
        f_valid_ = needs_.field(ad->fields, ad->field_count, "valid");
        f_ovlancmd_ = needs_.field(ad->fields, ad->field_count, "ovlancmd");
        f_ovlan_ = needs_.field(ad->fields, ad->field_count, "ovlan");
    }
}

void VlanTcamStage::run(Packet &p)
{
    TcamEngine &tcam = *pl_.chip().tcam;
    uint32_t enabled = 0;
    for (uint32_t b = 0; b < TcamEngine::kBlocks; b++) {
        const uint32_t cbe = pl_.reg(RegView{&a_cbe_[b], 1});
        enabled |= (word_get(cbe, f_cbe_[b]) != 0 ? 1u : 0u) << b;
    }
    View v;
    _parse(v, p);
    for (const Layout &l : layouts_) {
        const uint32_t bitmap = pl_.reg(RegView{&l.kind_reg, 1}) & enabled;
        if (bitmap == 0) {
            continue;
        }
        TcamEngine::Plane key{};
        bits_set(key.data(), l.tid, l.tid_value);
        for (const KeyField &kf : l.fields) {
            bits_set(key.data(), kf.field, kAttrs[kf.attr].get(v));
        }
        uint32_t block = 0, index = 0;
        if (!tcam.search_right_aligned(key, l.bits, bitmap, &block, &index)) {
            continue;
        }
        TcamEngine::Row row;
        tcam.row_get(block, index, &row);
        const uint32_t *ad = row.action.data();
        if (bits_get(ad, f_valid_) != 0) {
            const uint64_t cmd = bits_get(ad, f_ovlancmd_);
            if (cmd == kCmdAdd || cmd == kCmdReplace) {
                p.vid = static_cast<uint32_t>(bits_get(ad, f_ovlan_));
            }
        }
        return;
    }
}

} // namespace tide::sim
