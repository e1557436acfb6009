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

// The settings of ipro_vacl_key_pvid_cfg, in the order of f_key_cfg_:
// whether an untagged frame presents the PVID's VID, priority and CFI in
// its keys; the same for a priority-tagged frame; and whether a priority
// tag counts in the key's tag count.
enum KeyCfg : uint8_t { kUntagVid, kUntagPri, kUntagCfi, kPriVid, kPriPri, kPriCfi, kPriTagNum };
constexpr const char *kKeyCfgNames[] = {
    "untag_vacl_key_pvid_cfg",      "untag_vacl_key_pvid_pri_cfg",  "untag_vacl_key_pvid_cfi_cfg",
    "pritag_vacl_key_pvid_cfg",     "pritag_vacl_key_pvid_pri_cfg", "pritag_vacl_key_pvid_cfi_cfg",
    "pritag_vacl_key_tag_num_cfg",
};

// What the lookups read of a frame.
struct View {
    const Packet *p = nullptr;
    uint16_t inner_tci = 0;
    uint32_t sip = 0;
    uint16_t protocol = 0; // ethernet type, SNAP type, or DSAP << 8 | SSAP
    bool snap = false, llc = false;
    // The outer tag as the keys show it, and the tag count.
    uint32_t vid = 0, opri = 0, ocfi = 0, tagnum = 0;
};

// The outer tag's part of the keys: a tagged frame shows its tag; an
// untagged or priority-tagged one shows the PVID's VID, priority and CFI
// where the key settings say so (else 0 for an untagged frame, the
// priority tag's own priority and CFI for a priority-tagged one).
void _outer_of(View &v, const Packet &p, uint32_t pvid, uint32_t cfg)
{
    auto on = [cfg](KeyCfg k) { return ((cfg >> k) & 1) != 0; };
    const uint32_t pvid_pri = pvid >> 13 & 7, pvid_cfi = pvid >> 12 & 1;
    if (p.tags == 0) {
        v.vid = on(kUntagVid) ? pvid & 0xFFF : 0;
        v.opri = on(kUntagPri) ? pvid_pri : 0;
        v.ocfi = on(kUntagCfi) ? pvid_cfi : 0;
        return;
    }
    v.vid = p.outer_tci & 0xFFF;
    v.opri = p.outer_tci >> 13;
    v.ocfi = p.outer_tci >> 12 & 1;
    v.tagnum = p.tags;
    if (v.vid == 0) {
        v.vid = on(kPriVid) ? pvid & 0xFFF : 0;
        v.opri = on(kPriPri) ? pvid_pri : v.opri;
        v.ocfi = on(kPriCfi) ? pvid_cfi : v.ocfi;
        v.tagnum = on(kPriTagNum) ? p.tags : p.tags - 1;
    }
}

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

// Fields of the VLAN key tables, by name.  The port fields hold the
// ingress port.
constexpr Attr kAttrs[] = {
    {"vacl_ovlan", [](const View &v) -> uint64_t { return v.vid; }},
    {"vacl_ivlan", [](const View &v) -> uint64_t { return v.inner_tci & 0xFFFu; }},
    {"opri", [](const View &v) -> uint64_t { return v.opri; }},
    {"ocfi", [](const View &v) -> uint64_t { return v.ocfi; }},
    {"ipri", [](const View &v) -> uint64_t { return v.inner_tci >> 13; }},
    {"icfi", [](const View &v) -> uint64_t { return v.inner_tci >> 12 & 1; }},
    {"tagnum", [](const View &v) -> uint64_t { return v.tagnum; }},
    {"vacl_tagnum", [](const View &v) -> uint64_t { return v.tagnum; }},
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

// The action row's fields, in the order of VlanTcamStage::Act.
constexpr const char *kActNames[] = {
    "valid",  "nolrn",  "nolrntocpu", "nolrndiscard", "tocpu", "opricp", "ipricp",  "ocficp", "icficp", "ovlancmd",
    "ovlan",  "ivlancmd", "ivlan",    "oprien",       "opri",  "iprien", "ipri",    "ocfien", "ocfi",   "icfien",
    "icfi",   "fwdcmd", "dest",       "causeid",      "dscpen", "dscp",  "staten",  "statid",
};
static_assert(std::size(kActNames) == VlanTcamStage::kActFields);

// The four tag fields the copy commands fill, in the order of the action
// row's copy commands (opricp, ipricp, ocficp, icficp): each with its copy
// mode register and its place in a tag control.
struct TagField {
    const char *name;
    const char *cp_reg;
    bool outer;
    uint32_t shift, mask;
};
constexpr TagField kTagFieldRows[] = {
    {"opri", "ipro_vlan_glb_cfg1", true, 13, 7},
    {"ipri", "ipro_vlan_glb_cfg3", false, 13, 7},
    {"ocfi", "ipro_vlan_glb_cfg2", true, 12, 1},
    {"icfi", "ipro_vlan_glb_cfg4", false, 12, 1},
};
// The tag states of the copy mode fields: untagged, outer tag only, inner
// tag only, both, priority-tagged.
constexpr const char *kTagStateNames[] = {"tag0", "tag1", "tag2", "tag3", "pritag"};
constexpr uint32_t kStateUntagged = 0, kStateOuter = 1, kStateBoth = 3, kStatePriTagged = 4;
// Copy sources: 1 the inner field, 2 the outer field, as they came in.
constexpr uint32_t kCpInner = 1, kCpOuter = 2;

// Forwarding commands of the action row.
// (0 to 3 as Packet::basic_forwarding; 5 a trunk.)
constexpr uint32_t kFwdPort = 4, kFwdGroup = 6;

constexpr uint32_t kFcs = 4;
constexpr uint32_t kIpv4Header = 20;

// The TOS byte of an IPv4 header gets the DSCP of `dscp_tos` (its upper
// six bits) and keeps its ECN bits; the header checksum follows by the
// incremental update of one 16-bit word (RFC 1624), so a header that came
// with a wrong checksum keeps it wrong.
void _dscp_rewrite(uint8_t *ip, uint32_t dscp_tos)
{
    const uint32_t old_word = static_cast<uint32_t>(ip[0]) << 8 | ip[1];
    ip[1] = static_cast<uint8_t>((dscp_tos & 0xFC) | (ip[1] & 3));
    const uint32_t new_word = static_cast<uint32_t>(ip[0]) << 8 | ip[1];
    uint32_t sum = (~(static_cast<uint32_t>(ip[10]) << 8 | ip[11]) & 0xFFFF) + (~old_word & 0xFFFF) + new_word;
    sum = (sum & 0xFFFF) + (sum >> 16);
    sum = (sum & 0xFFFF) + (sum >> 16);
    ip[10] = static_cast<uint8_t>(~sum >> 8);
    ip[11] = static_cast<uint8_t>(~sum);
}

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
        for (uint32_t a = 0; a < kActFields; a++) {
            act_[a] = needs_.field(ad->fields, ad->field_count, kActNames[a]);
        }
    }
    a_key_cfg_ = needs_.reg("ipro_vacl_key_pvid_cfg", &r);
    for (uint32_t k = 0; k < std::size(kKeyCfgNames); k++) {
        f_key_cfg_[k] = needs_.field(r, kKeyCfgNames[k]);
    }
    for (uint32_t t = 0; t < kTagFields; t++) {
        a_cp_[t] = needs_.reg(kTagFieldRows[t].cp_reg, &r);
        for (uint32_t st = 0; st < kTagStates; st++) {
            const std::string name =
                std::string(kTagStateNames[st]) + "_" + kTagFieldRows[t].name + "_cp_mode_en_cfg";
            f_cp_[t][st] = needs_.field(r, name.c_str());
        }
    }
}

bool VlanTcamStage::run(Packet &p)
{
    TcamEngine &tcam = *pl_.chip().tcam;
    uint32_t enabled = 0;
    for (uint32_t b = 0; b < TcamEngine::kBlocks; b++) {
        const uint32_t cbe = pl_.reg(RegView{&a_cbe_[b], 1});
        enabled |= (word_get(cbe, f_cbe_[b]) != 0 ? 1u : 0u) << b;
    }
    if (enabled == 0) {
        return true;
    }
    View v;
    _parse(v, p);
    const uint32_t key_cfg = pl_.reg(RegView{&a_key_cfg_, 1});
    uint32_t cfg = 0;
    for (uint32_t k = 0; k < std::size(kKeyCfgNames); k++) {
        cfg |= word_get(key_cfg, f_key_cfg_[k]) << k;
    }
    _outer_of(v, p, static_cast<uint32_t>(bits_get(p.ipat, pl_.ipat.pvid)), cfg);
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
        apply(p, row.action.data());
        break;
    }
    return p.forward;
}

// The action row of the hit.  An outer add or replace gives the frame the
// VLAN `ovlan`; the counter counts the frame as it came in; the tags and
// the DSCP are rewritten (edit); the learning bits wait for the ARL; the
// forwarding command drops with the stage's cause, sends to the CPU with
// the entry's cause id, or names the destination in place of the MAC
// table's.  `tocpu` redirects to the CPU whatever the command.
void VlanTcamStage::apply(Packet &p, const uint32_t *ad)
{
    auto get = [&](Act a) { return static_cast<uint32_t>(bits_get(ad, act_[a])); };
    if (get(kValid) == 0) {
        return;
    }
    const uint32_t ocmd = get(kOvlanCmd);
    if (ocmd == kTagAdd || ocmd == kTagReplace) {
        p.vid = get(kOvlan);
    }
    if (get(kStatEn) != 0) {
        // The VLAN ACL counters share the table of the VLAN rows' counters.
        pl_.count_vlan(1, get(kStatId), p.len + kFcs);
    }
    edit(p, ad);
    p.no_learn = get(kNoLrn) != 0;
    p.no_learn_tocpu = get(kNoLrnCpu) != 0;
    p.no_learn_discard = get(kNoLrnDiscard) != 0;
    const uint32_t dest = get(kDest);
    const uint16_t cause = static_cast<uint16_t>(get(kCauseId));
    const uint32_t cmd = get(kFwdCmd);
    if (!p.basic_forwarding(cmd, kCauseVaclDrop, cause)) {
        p.dest_set = cmd == kFwdPort || cmd == kFwdGroup;
        if (cmd == kFwdPort) {
            p.redirect_to_port(dest);
        } else if (cmd == kFwdGroup) {
            p.dest = 0;
            p.flood = false;
            p.replicate = true;
            p.mrt = dest;
        } else { // trunks have no stage in the model yet
            p.drop(kCauseOpcodeAbnormal);
        }
    }
    if (get(kToCpu) != 0) {
        p.redirect_to_cpu(cause);
    }
}

// The tag and DSCP rewrites of an action row, on a copy of the frame that
// then stands for it (Packet::edited).
//
// The outer command acts on the outer tag (add pushes a new one, with TPID
// 0 and the PVID's priority and CFI; replace sets the VID of a present
// tag; delete pops it), then the inner command on the tag behind it (an
// added inner tag has TPID 0, priority and CFI 0).  A frame left with an
// inner tag but no outer one, or whose outer priority or CFI is rewritten
// without an outer tag, is given an outer tag of its VLAN with the PVID's
// priority and CFI: the egress rows decide about it as about any outer
// tag.  Then the copies (1 from the inner, 2 from the outer field as the
// frame came in; an untagged frame's outer field is the PVID's), where the
// row has no copy command the copy mode of the frame's tag state; then the
// replaces, which win over a copy.  Last the DSCP of an IPv4 frame.
void VlanTcamStage::edit(Packet &p, const uint32_t *ad)
{
    auto get = [&](Act a) { return static_cast<uint32_t>(bits_get(ad, act_[a])); };
    const uint32_t pvid = static_cast<uint32_t>(bits_get(p.ipat, pl_.ipat.pvid));
    const bool outer = p.tags != 0, inner = p.tags == 2;
    const uint32_t old_otci = outer ? p.outer_tci : pvid & 0xF000;
    const uint32_t old_itci = inner ? _be16(p.data + kTypeOffset + kTagBytes + 2) : 0;
    const uint32_t state = !outer                         ? kStateUntagged
                           : (p.outer_tci & 0xFFF) == 0 ? kStatePriTagged
                           : inner                        ? kStateBoth
                                                          : kStateOuter;
    // Per tag field (in the order of kTagFieldRows): its copy source (the
    // row's command, else the mode of the frame's tag state), its replace
    // enable and value.
    uint32_t cp[kTagFields] = {};
    for (uint32_t t = 0; t < kTagFields; t++) {
        cp[t] = get(static_cast<Act>(kOpriCp + t));
        if (cp[t] == 0) {
            const uint32_t mode = word_get(pl_.reg(RegView{&a_cp_[t], 1}), f_cp_[t][state]);
            cp[t] = mode == kCpInner || mode == kCpOuter ? mode : 0;
        }
    }
    const uint32_t en[kTagFields] = {get(kOpriEn), get(kIpriEn), get(kOcfiEn), get(kIcfiEn)};
    const uint32_t val[kTagFields] = {get(kOpri), get(kIpri), get(kOcfi), get(kIcfi)};
    bool touch[2] = {}; // the outer and the inner tag's priority or CFI
    for (uint32_t t = 0; t < kTagFields; t++) {
        touch[kTagFieldRows[t].outer ? 0 : 1] |= cp[t] != 0 || en[t] != 0;
    }
    const uint32_t ocmd = get(kOvlanCmd), icmd = get(kIvlanCmd);
    const bool tags_change = (outer && (ocmd == kTagAdd || ocmd == kTagDelete)) || icmd != 0;
    if (!tags_change && !touch[0] && !touch[1] && get(kDscpEn) == 0) {
        return;
    }
    std::vector<uint8_t> &f = p.edited;
    f.assign(p.data, p.data + p.len);
    const uint32_t tpid0 = word_get(pl_.reg(pl_.r.tpid0), pl_.r.tpid_value[0]);
    uint32_t tags = p.tags;
    bool has_outer = outer;
    if (outer || ocmd == kTagAdd) {
        tag_edit(f, kTypeOffset, outer, ocmd, tpid0, (pvid & 0xF000) | get(kOvlan), false, false);
        tags += ocmd == kTagAdd ? 1 : 0;
        tags -= outer && ocmd == kTagDelete ? 1 : 0;
        has_outer = ocmd == kTagAdd || (outer && ocmd != kTagDelete);
    }
    const size_t inner_at = kTypeOffset + (has_outer ? kTagBytes : 0);
    // The tag behind the outer one, as the inner command sees it.
    const bool behind = tags > (has_outer ? 1u : 0u);
    tag_edit(f, inner_at, behind, icmd, tpid0, get(kIvlan), false, false);
    tags += icmd == kTagAdd ? 1 : 0;
    tags -= behind && icmd == kTagDelete ? 1 : 0;
    if (!has_outer && (tags != 0 || touch[0])) {
        tag_edit(f, kTypeOffset, false, kTagAdd, tpid0, (pvid & 0xF000) | (p.vid & 0xFFF), false, false);
        tags++;
        has_outer = true;
    }
    const bool has_inner = tags > 1;
    uint32_t tci[2] = {has_outer ? tag_at(f, kTypeOffset) : 0, has_inner ? tag_at(f, kTypeOffset + kTagBytes) : 0};
    const uint32_t old[2] = {old_otci, old_itci};
    for (uint32_t t = 0; t < kTagFields; t++) {
        const TagField &tf = kTagFieldRows[t];
        uint32_t &dst = tci[tf.outer ? 0 : 1];
        const uint32_t place = tf.mask << tf.shift;
        if (cp[t] != 0) {
            dst = (dst & ~place) | (old[cp[t] == kCpInner ? 1 : 0] & place);
        }
        if (en[t] != 0) {
            dst = (dst & ~place) | ((val[t] & tf.mask) << tf.shift);
        }
    }
    for (uint32_t i = 0; i < 2; i++) {
        const size_t at = kTypeOffset + i * kTagBytes;
        if (i == 0 ? has_outer : has_inner) {
            tag_put(f, at, _be16(f.data() + at), tci[i]);
        }
    }
    const size_t l3 = kTypeOffset + kTagBytes * tags + 2;
    if (get(kDscpEn) != 0 && f.size() >= l3 + kIpv4Header && _be16(f.data() + l3 - 2) == kTypeIpv4 &&
        (f[l3] >> 4) == 4) {
        _dscp_rewrite(f.data() + l3, get(kDscp));
    }
    p.data = f.data();
    p.len = static_cast<uint32_t>(f.size());
    p.tags = tags < 2 ? tags : 2;
    p.outer_tci = has_outer ? static_cast<uint16_t>(tci[0]) : 0;
}

} // namespace tide::sim
