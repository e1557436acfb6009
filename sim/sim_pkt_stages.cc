// The stages of the packet path, in the chip's order.
//
// Ingress: RSM (length checks), TTI (tags), IPRO (port and VLAN rows),
// ICAR (internal priority and colour, source port policer), ARL (learning, moves, the destination lookup and flooding), MCC (the copy
// list).  Egress, per copy: EPRO (port row, egress controls, VLAN check,
// tag edit), ECAR (destination port policer, queue, remark), QM (port flush), MAC TX (padding, delivery).
//
// A stage returns false to end the packet (ingress) or the copy (egress);
// the verdict in the packet record says why.
#include "sim/sim_pkt.h"
#include "sim/sim_em.h"
#include "sim/sim_int.h"
#include "sim/sim_mac.h"
#include "sim/sim_qos.h"
#include "sim/sim_vlan.h"

namespace tide::sim {

namespace {

constexpr uint32_t kMinWire = 64; // bytes on the wire with the FCS
constexpr uint32_t kFcs = 4;
constexpr uint32_t kTagBytes = 4;
constexpr uint32_t kTypeOffset = 12;
constexpr uint64_t kBroadcast = 0xFFFFFFFFFFFFull;
constexpr uint64_t kGroupBit = 1ull << 40; // I/G bit of the first byte

uint16_t _be16(const uint8_t *p)
{
    return static_cast<uint16_t>(p[0] << 8 | p[1]);
}

uint64_t _mac(const uint8_t *p)
{
    uint64_t v = 0;
    for (int i = 0; i < 6; i++) {
        v = v << 8 | p[i];
    }
    return v;
}

bool _bit(uint32_t bitmap, uint32_t port)
{
    return port < kPorts && ((bitmap >> port) & 1) != 0;
}

// Actions of the over-limit registers: 0 drop, 1 to the CPU, 2 forward
// without learning.
void _over_limit(Packet &p, uint32_t act, uint16_t drop_cause, uint16_t cpu_cause)
{
    if (act == 0) {
        p.drop(drop_cause);
    } else if (act == 1) {
        p.redirect_to_cpu(cpu_cause);
    }
}

// ---- ingress ---------------------------------------------------------------

// RSM: frames shorter than the Ethernet minimum or longer than the
// programmed maximum (both with the FCS) are dropped.
bool _rsm(Pipeline &pl, Packet &p)
{
    const uint32_t wire = p.len + kFcs;
    if (wire < kMinWire) {
        p.drop(kCauseMinPkt);
        return false;
    }
    if (wire > word_get(pl.reg(pl.r.max_len), pl.r.max_pkt_len)) {
        p.drop(kCauseMaxPkt);
        return false;
    }
    return true;
}

// TTI: an outer tag whose TPID the port accepts, then an inner tag whose
// TPID the inner bitmap accepts.
bool _tti(Pipeline &pl, Packet &p)
{
    p.dmac = _mac(p.data);
    p.smac = _mac(p.data + 6);
    const uint32_t t01 = pl.reg(pl.r.tpid0), t23 = pl.reg(pl.r.tpid1);
    const uint32_t tpid[4] = {word_get(t01, pl.r.tpid_value[0]), word_get(t01, pl.r.tpid_value[1]),
                              word_get(t23, pl.r.tpid_value[2]), word_get(t23, pl.r.tpid_value[3])};
    const uint32_t outer_bm = (pl.reg(pl.r.tpid_sel[p.src / 8]) >> (4 * (p.src % 8))) & 0xF;
    const uint32_t inner_reg = pl.reg(pl.r.inner_tpid);
    uint32_t inner_bm = 0;
    for (uint32_t i = 0; i < 4; i++) {
        inner_bm |= word_get(inner_reg, pl.r.inner_bm[i]) << i;
    }
    uint32_t off = kTypeOffset;
    auto tagged = [&](uint32_t accepted) {
        if (off + kTagBytes + 2 > p.len) {
            return false;
        }
        const uint16_t type = _be16(p.data + off);
        for (uint32_t i = 0; i < 4; i++) {
            if (((accepted >> i) & 1) != 0 && type == tpid[i]) {
                return true;
            }
        }
        return false;
    };
    if (tagged(outer_bm)) {
        p.tags = 1;
        p.outer_tci = _be16(p.data + off + 2);
        off += kTagBytes;
        if (tagged(inner_bm)) {
            p.tags = 2;
            off += kTagBytes;
        }
    }
    p.ethertype = _be16(p.data + off);
    return true;
}

// IPRO: the port row, the VLAN of the frame (its outer VID, or the port's
// PVID for untagged and priority-tagged frames, then the VLAN TCAM
// lookups of sim_vlan.cc), the VLAN's map entry and
// row, and the ingress membership check.
bool _ipro(Pipeline &pl, Packet &p)
{
    pl.read(pl.t.ipat, p.src, p.ipat);
    const auto &ip = pl.ipat;
    if (bits_get(p.ipat, ip.vld) == 0) {
        p.drop(kCauseIpatInvalid);
        return false;
    }
    if (p.tags == 0 && bits_get(p.ipat, ip.discard_untag) != 0) {
        p.drop(kCauseUntagDiscard);
        return false;
    }
    if (p.tags != 0 && bits_get(p.ipat, ip.discard_tag) != 0) {
        p.drop(kCauseTagDiscard);
        return false;
    }
    const uint32_t tag_vid = p.outer_tci & 0xFFF;
    p.vid = p.tags != 0 && tag_vid != 0 ? tag_vid : static_cast<uint32_t>(bits_get(p.ipat, ip.pvid)) & 0xFFF;
    if (!pl.vlan_tcam().run(p)) {
        return false;
    }
    uint32_t w[kMaxEntryWords] = {};
    pl.read(pl.t.vmap, p.vid, w);
    if (bits_get(w, pl.vlan.vmap_vld) == 0) {
        p.drop(kCauseVmapInvalid);
        return false;
    }
    p.vlan_idx = static_cast<uint32_t>(bits_get(w, pl.vlan.vmap_idx));
    pl.read(pl.t.ivlan, p.vlan_idx, p.ivlan);
    if (bits_get(p.ivlan, pl.ivlan.vld) == 0) {
        p.drop(kCauseIvlanInvalid);
        return false;
    }
    pl.count_vlan(static_cast<uint32_t>(bits_get(p.ivlan, pl.ivlan.cnt_type)),
                  static_cast<uint32_t>(bits_get(p.ivlan, pl.ivlan.cnt_id)), p.len + kFcs);
    pl.read(pl.t.vbmp, p.vid, w);
    p.members = static_cast<uint32_t>(bits_get(w, pl.vlan.ingress_members));
    // A non-member on a checking port: the check's action, 2 forwarding,
    // every other value dropping.
    if (bits_get(p.ipat, ip.vlan_check_en) != 0 && !_bit(p.members, p.src) &&
        word_get(pl.reg(pl.r.vlan_glb0), pl.r.vlan_check_act) != 2) {
        p.drop(kCauseIvlanCheck);
        return false;
    }
    return true;
}

// Whether a station held by `from` may move to `to`: the new port's move
// priority is enabled, its bit in mac_float_pfe is set, and it is not below
// the priority of the holding port (when that one is enabled).
bool _move_allowed(Pipeline &pl, uint32_t from, uint32_t to)
{
    const uint32_t n_to = pl.move_priority(to), n_from = from < kPorts ? pl.move_priority(from) : 0;
    const uint32_t pfe = word_get(pl.reg(pl.r.glb_cfg), pl.r.mac_float_pfe);
    if ((n_to & 4) == 0 || ((pfe >> (n_to & 3)) & 1) == 0) {
        return false;
    }
    return (n_from & 4) == 0 || (n_to & 3) >= (n_from & 3);
}

// The outcome of a refused learn or move.  A VLAN row with its over-limit
// enable (`vlan_lrn_lmt`) set answers for every learn refused by a limit in
// that VLAN, before the global and port actions: the chip keeps no count
// per VLAN, only this action.
void _refused(Pipeline &pl, Packet &p, const ArlEngine::Result &r)
{
    const bool limit = r.cause == ArlEngine::kGlobalLimit || r.cause == ArlEngine::kPortLimit;
    if (limit && bits_get(p.ivlan, pl.ivlan.vlan_lrn_lmt) != 0) {
        _over_limit(p, static_cast<uint32_t>(bits_get(p.ivlan, pl.ivlan.mac_lmt_dlf)), kCauseVlanLmt, kCpuVlanLmt);
        return;
    }
    switch (r.cause) {
    case ArlEngine::kGlobalLimit:
        _over_limit(p, word_get(pl.reg(pl.r.lrn_cfg), pl.r.glb_lmt_act), kCauseGlbLmt, kCpuGlbLmt);
        break;
    case ArlEngine::kPortLimit:
        if (bits_get(p.ipat, pl.ipat.port_mac_lmt) != 0) {
            _over_limit(p, static_cast<uint32_t>(bits_get(p.ipat, pl.ipat.mac_lmt_dlf)), kCausePortLmt,
                        kCpuPortLmt);
        }
        break;
    default:
        // A full bucket: hash_conflict_act 0 drops, 1 forwards.
        if (word_get(pl.reg(pl.r.glb_cfg), pl.r.hash_conflict_act) == 0) {
            p.drop(kCauseHashFull);
        }
        break;
    }
}

// The source side of the ARL: block list, station moves, learning.
void _arl_source(Pipeline &pl, Packet &p)
{
    ArlEngine &arl = pl.arl();
    const ArlEngine::EntryFields &ef = arl.fields();
    const uint32_t lrn = pl.reg(pl.r.lrn_cfg);
    // A VLAN TCAM action's not-learn bits act as the port's do.
    const bool port_learns = bits_get(p.ipat, pl.ipat.mac_lrn_mode) != 0 && !p.no_learn;
    const bool learns =
        word_get(lrn, pl.r.glb_lrn_en) != 0 && port_learns && bits_get(p.ivlan, pl.ivlan.mac_lrn_mode) != 0;
    ArlEntry *e = arl.lookup(p.vid, p.smac);
    if (e != nullptr) {
        const uint32_t *w = e->data();
        if (bits_get(w, ef.src_blk) != 0) {
            p.drop(kCauseSrcBlk);
            return;
        }
        const bool on_port = bits_get(w, ef.opcode) == 0;
        const uint32_t holder = on_port ? static_cast<uint32_t>(bits_get(w, ef.learn_data)) & 63 : kPorts;
        if (on_port && holder == p.src) {
            if (bits_get(w, ef.stati) == 0 && word_get(lrn, pl.r.age_cnt_en) != 0) {
                arl.refresh(e);
            }
            return;
        }
        if (bits_get(w, ef.stati) != 0) {
            // A static station never moves: sta_float_act 0 drops, 1 sends
            // the frame to the CPU.
            arl.float_counted(false);
            if (word_get(pl.reg(pl.r.glb_cfg), pl.r.sta_float_act) == 0) {
                p.drop(kCauseStaFloat);
            } else {
                p.redirect_to_cpu(kCpuStaFloat);
            }
            return;
        }
        if (!learns) {
            return;
        }
        if (!_move_allowed(pl, holder, p.src)) {
            // mac_float_fail_act 0 drops, 1 forwards.
            arl.float_counted(false);
            if (word_get(pl.reg(pl.r.glb_cfg), pl.r.mac_float_fail_act) == 0) {
                p.drop(kCauseDynFloat);
            }
            return;
        }
        const ArlEngine::Result r = arl.move(e, p.src);
        arl.float_counted(!r.fail);
        if (r.fail) {
            _refused(pl, p, r);
        }
        return;
    }
    if ((p.smac & kGroupBit) != 0) {
        return; // a group address is no station
    }
    if (!port_learns) {
        // The port's not-learn controls: discard drops, to-CPU copies, both
        // redirect.
        const bool discard = bits_get(p.ipat, pl.ipat.nolrn_discard) != 0 || p.no_learn_discard;
        const bool tocp = bits_get(p.ipat, pl.ipat.nolrn_tocp) != 0 || p.no_learn_tocpu;
        if (discard && tocp) {
            p.redirect_to_cpu(kCpuNoLearn);
        } else if (discard) {
            p.drop(kCauseNoLearn);
        } else if (tocp) {
            p.copy_to_cpu(kCpuNoLearn);
        }
        return;
    }
    if (!learns) {
        return;
    }
    if (word_get(pl.reg(pl.r.glb_cfg), pl.r.lrn_mode) != 1) {
        // Software learning: the CPU gets a copy and decides.
        p.copy_to_cpu(kCpuSoftLearn);
        return;
    }
    const ArlEngine::Result r = arl.learn(p.vid, p.smac, p.src);
    if (r.fail) {
        _refused(pl, p, r);
    }
}

// Flooding of a frame that no entry claims: the port and the VLAN must both
// flood it; either of them sends it to the CPU.
void _flood(Packet &p, bool broad, bool tocp, uint16_t drop_cause, uint16_t cpu_cause, bool bridge)
{
    if (tocp) {
        if (broad) {
            p.copy_to_cpu(cpu_cause);
        } else {
            p.redirect_to_cpu(cpu_cause);
        }
    }
    if (!broad) {
        if (!tocp) {
            p.drop(drop_cause);
        }
        return;
    }
    p.flood = true;
    p.dest = bridge ? p.members : p.members & ~(1u << p.src);
    if (p.dest == 0) {
        p.drop(kCauseFloodEmpty);
    }
}

// The destination side of the ARL.
void _arl_destination(Pipeline &pl, Packet &p)
{
    const auto &ip = pl.ipat;
    const auto &iv = pl.ivlan;
    const bool bridge = bits_get(p.ipat, ip.port_bridge_en) != 0;
    auto both = [&](FieldRef a, FieldRef b) { return bits_get(p.ipat, a) != 0 && bits_get(p.ivlan, b) != 0; };
    auto either = [&](FieldRef a, FieldRef b) { return bits_get(p.ipat, a) != 0 || bits_get(p.ivlan, b) != 0; };
    if (p.da == DaKind::kBroadcast) {
        _flood(p, both(ip.bc_broad, iv.bc_broad), either(ip.bc_tocp, iv.bc_tocp), kCauseBc, kCpuBc, bridge);
        return;
    }
    ArlEngine &arl = pl.arl();
    const ArlEngine::EntryFields &ef = arl.fields();
    ArlEntry *e = arl.lookup(p.vid, p.dmac);
    if (e == nullptr) {
        if (p.da == DaKind::kMulticast) {
            _flood(p, both(ip.unmc_broad, iv.unmc_broad), either(ip.unmc_tocp, iv.unmc_tocp), kCauseUnknownMc,
                   kCpuUnknownMc, bridge);
        } else {
            _flood(p, both(ip.unuc_broad, iv.unuc_broad), either(ip.unuc_tocp, iv.unuc_tocp), kCauseUnknownUc,
                   kCpuUnknownUc, bridge);
        }
        return;
    }
    p.da_hit = true;
    const uint32_t *w = e->data();
    if (bits_get(w, ef.dst_blk) != 0) {
        p.drop(kCauseDstBlk);
        return;
    }
    const uint32_t lrn = pl.reg(pl.r.lrn_cfg);
    if (bits_get(w, ef.stati) == 0 && word_get(lrn, pl.r.two_way_age_en) != 0 &&
        word_get(lrn, pl.r.age_cnt_en) != 0) {
        arl.refresh(e);
    }
    const uint32_t data = static_cast<uint32_t>(bits_get(w, ef.learn_data));
    switch (bits_get(w, ef.opcode)) {
    case 0: {
        const uint32_t port = data & 63;
        if (port >= kPorts) {
            p.drop(kCauseDmacErr);
        } else if (port == p.src && !bridge) {
            p.drop(kCausePortBridge);
        } else {
            p.dest = 1u << port;
        }
        break;
    }
    case 6: // drop with the entry's cause
        p.drop(static_cast<uint16_t>(data));
        break;
    case 5: // a replication id: the MCC stage makes the copies
        p.replicate = true;
        p.mrt = data;
        break;
    case 7: // to the CPU with the entry's cause
        p.redirect_to_cpu(static_cast<uint16_t>(data & 511));
        break;
    default:
        // Trunks and the L3 destinations have no stage in the model yet.
        p.drop(kCauseOpcodeAbnormal);
        break;
    }
}

bool _arl(Pipeline &pl, Packet &p)
{
    _arl_source(pl, p);
    if (!p.forward) {
        return false;
    }
    p.da = p.dmac == kBroadcast ? DaKind::kBroadcast
           : (p.dmac & kGroupBit) != 0 ? DaKind::kMulticast
                                       : DaKind::kUnicast;
    // A destination a VLAN TCAM action named stands.
    if (!p.dest_set) {
        _arl_destination(pl, p);
    }
    return p.forward;
}

struct IngressStage {
    const char *name;
    bool (*run)(Pipeline &, Packet &);
};

// ICAR: internal priority and colour, and the source port's policer.
bool _icar(Pipeline &pl, Packet &p)
{
    return pl.qos().ingress(pl, p);
}

constexpr IngressStage kIngress[] = {
    {"rsm", _rsm}, {"tti", _tti}, {"ipro", _ipro}, {"icar", _icar}, {"arl", _arl}, {"acl", acl_stage},
    {"mcc", mcc_stage},
};

// ---- egress ------------------------------------------------------------------

// The egress translation of a copy, on the frame the tag edit built.  The
// port row's `sit1` and `sit2` name the key types of its two lookups (0
// none): 1 port, outer VID and inner VID; 2 port, outer VID and outer
// priority; 3 port and outer VID.  The first hit's action row edits the
// tags; a port with lookups that all miss drops the copy with 728 when its
// `vtmiss_drop` is set.
bool _egress_translate(Pipeline &pl, const Packet &p, EgressCopy &c, uint16_t *cause)
{
    const auto &eg = pl.egr;
    const uint32_t types[2] = {static_cast<uint32_t>(bits_get(c.epat, eg.sit1)),
                               static_cast<uint32_t>(bits_get(c.epat, eg.sit2))};
    if (types[0] == 0 && types[1] == 0) {
        return true;
    }
    std::vector<uint8_t> &f = *c.frame;
    const bool outer = f.size() >= kTypeOffset + kTagBytes && !c.untag;
    const uint32_t otci = outer ? tag_at(f, kTypeOffset) : 0;
    const bool inner = p.tags == 2;
    const uint32_t itci = inner ? tag_at(f, kTypeOffset + (outer ? kTagBytes : 0)) : 0;
    const uint32_t hash_id = static_cast<uint32_t>(bits_get(c.epat, eg.hash_opc));
    uint32_t ad = 0;
    bool hit = false;
    for (uint32_t type : types) {
        if (type == 0 || hit) {
            continue;
        }
        const uint32_t second = type == 1 ? itci & 0xFFF : type == 2 ? otci >> 13 : 0;
        hit = pl.em().lookup(pl.em().key_of(type, 0, c.port, p.vid, second), hash_id, &ad);
    }
    if (!hit) {
        if (bits_get(c.epat, eg.vtmiss_drop) != 0) {
            *cause = kCauseVtMissDrop;
            return false;
        }
        return true;
    }
    uint32_t row[kMaxEntryWords] = {};
    pl.read(pl.t.ecib, ad, row);
    const auto &e = pl.ecib;
    if (bits_get(row, e.vld) == 0) {
        return true;
    }
    const uint32_t opc = static_cast<uint32_t>(bits_get(row, e.vlan_opc));
    const uint32_t index = static_cast<uint32_t>(bits_get(c.epat, eg.tpid_index));
    const uint32_t tpid = word_get(pl.reg(index < 2 ? pl.r.tpid0 : pl.r.tpid1), pl.r.tpid_value[index]);
    const uint32_t inner_tpid = word_get(pl.reg(pl.r.tpid0), pl.r.tpid_value[0]);
    tag_edit(f, kTypeOffset, outer, opc >> 2 & 3, tpid, static_cast<uint32_t>(bits_get(row, e.ovid)),
              bits_get(row, e.outer_pri) != 0, bits_get(row, e.outer_cfi) != 0);
    const bool outer_now = (outer && (opc >> 2 & 3) != kTagDelete) || (opc >> 2 & 3) == kTagAdd;
    tag_edit(f, kTypeOffset + (outer_now ? kTagBytes : 0), inner, opc & 3, inner_tpid,
              static_cast<uint32_t>(bits_get(row, e.ivid)), bits_get(row, e.inner_pri) != 0,
              bits_get(row, e.inner_cfi) != 0);
    return true;
}

// EPRO: the egress port row and its controls, the egress VLAN check, the
// VLAN's egress row, and the tag edit.
bool _epro(Pipeline &pl, const Packet &p, EgressCopy &c, uint16_t *cause)
{
    const auto &eg = pl.egr;
    pl.read(pl.t.epat, c.port, c.epat);
    if (bits_get(c.epat, eg.epat_vld) == 0) {
        *cause = kCauseEpatInvalid;
        return false;
    }
    // Egress flood controls: 1 blocks.
    if (p.flood) {
        const FieldRef ctrl = p.da == DaKind::kBroadcast ? eg.bc_ctrl
                              : p.da == DaKind::kMulticast ? eg.unmc_ctrl
                                                           : eg.unuc_ctrl;
        if (bits_get(c.epat, ctrl) != 0) {
            *cause = p.da == DaKind::kBroadcast ? kCauseEgressBc
                     : p.da == DaKind::kMulticast ? kCauseEgressUnmc
                                                  : kCauseEgressUnuc;
            return false;
        }
    } else if (p.da == DaKind::kMulticast && bits_get(c.epat, eg.mc_ctrl) != 0) {
        *cause = kCauseEgressMc;
        return false;
    }
    uint32_t w[kMaxEntryWords] = {};
    pl.read(pl.t.vlanbmp, p.vid, w);
    if (bits_get(c.epat, eg.vlan_check_en) != 0 && !_bit(static_cast<uint32_t>(bits_get(w, pl.vlan.members)), c.port)) {
        *cause = kCauseVlanCheck;
        return false;
    }
    c.untag = _bit(static_cast<uint32_t>(bits_get(w, pl.vlan.untagged)), c.port);
    uint32_t ev[kMaxEntryWords] = {};
    pl.read(pl.t.evlan, p.vlan_idx, ev);
    if (bits_get(ev, pl.vlan.evlan_vld) == 0) {
        *cause = kCauseEvlanInvalid;
        return false;
    }
    pl.count_vlan(static_cast<uint32_t>(bits_get(ev, pl.vlan.evlan_cnt_type)),
                  static_cast<uint32_t>(bits_get(ev, pl.vlan.evlan_cnt_id)), p.len + kFcs);
    // The tag edit: an untagged member loses the outer tag; any other
    // leaves with an outer tag of the port's TPID and the frame's VLAN.
    std::vector<uint8_t> &f = *c.frame;
    f.assign(p.data, p.data + p.len);
    if (c.untag) {
        if (p.tags != 0) {
            f.erase(f.begin() + kTypeOffset, f.begin() + kTypeOffset + kTagBytes);
        }
        if (!_egress_translate(pl, p, c, cause)) {
            return false;
        }
        if (c.elb != nullptr) {
            mcc_egress_edit(pl, p, c);
        }
        return true;
    }
    const uint32_t index = static_cast<uint32_t>(bits_get(c.epat, eg.tpid_index));
    const uint32_t treg = pl.reg(index < 2 ? pl.r.tpid0 : pl.r.tpid1);
    const uint32_t tpid = word_get(treg, pl.r.tpid_value[index]);
    uint32_t tci = p.outer_tci;
    if (p.tags == 0) {
        // The PVID's priority and CFI go with the added tag.
        tci = static_cast<uint32_t>(bits_get(p.ipat, pl.ipat.pvid)) & 0xF000;
        const uint8_t room[kTagBytes] = {};
        f.insert(f.begin() + kTypeOffset, room, room + kTagBytes);
    }
    tci = (tci & 0xF000) | p.vid;
    f[kTypeOffset] = static_cast<uint8_t>(tpid >> 8);
    f[kTypeOffset + 1] = static_cast<uint8_t>(tpid);
    f[kTypeOffset + 2] = static_cast<uint8_t>(tci >> 8);
    f[kTypeOffset + 3] = static_cast<uint8_t>(tci);
    if (!_egress_translate(pl, p, c, cause)) {
        return false;
    }
    if (c.elb != nullptr) {
        mcc_egress_edit(pl, p, c);
    }
    return true;
}

// ECAR: the destination port's policer, the queue and the remark.
bool _ecar(Pipeline &pl, const Packet &p, EgressCopy &c, uint16_t *cause)
{
    return pl.qos().egress(pl, p, c, cause);
}

// QM: a flushed port drops what it would send.
bool _qm(Pipeline &pl, const Packet &, EgressCopy &c, uint16_t *cause)
{
    if (_bit(pl.reg(pl.r.flush, c.port / 32), c.port)) {
        *cause = kCauseQmFlush;
        return false;
    }
    return true;
}

// The egress port's link: a copy for a port whose link is down, or whose
// MAC does not send, goes no further.
bool _port_link(Pipeline &pl, const Packet &, EgressCopy &c, uint16_t *cause)
{
    return pl.chip().mac->tx_admit(c.port, cause);
}

// MAC TX: pads to the Ethernet minimum and delivers.
bool _mac_tx(Pipeline &pl, const Packet &p, EgressCopy &c, uint16_t *)
{
    std::vector<uint8_t> &f = *c.frame;
    if (f.size() + kFcs < kMinWire) {
        f.resize(kMinWire - kFcs, 0);
    }
    pl.send(c.port, f.data(), static_cast<uint32_t>(f.size()), p.src, TIDE_SIM_CAUSE_NONE, c.queue);
    return true;
}

struct EgressStage {
    const char *name;
    bool (*run)(Pipeline &, const Packet &, EgressCopy &, uint16_t *);
};

constexpr EgressStage kEgress[] = {
    {"link", _port_link}, {"epro", _epro}, {"ecar", _ecar}, {"qm", _qm}, {"mac_tx", _mac_tx},
};

} // namespace

uint32_t tag_at(const std::vector<uint8_t> &f, size_t at)
{
    return static_cast<uint32_t>(f[at + 2]) << 8 | f[at + 3];
}

void tag_put(std::vector<uint8_t> &f, size_t at, uint32_t tpid, uint32_t tci)
{
    f[at] = static_cast<uint8_t>(tpid >> 8);
    f[at + 1] = static_cast<uint8_t>(tpid);
    f[at + 2] = static_cast<uint8_t>(tci >> 8);
    f[at + 3] = static_cast<uint8_t>(tci);
}

void tag_edit(std::vector<uint8_t> &f, size_t at, bool present, uint32_t act, uint32_t tpid, uint32_t tci,
              bool pri, bool cfi)
{
    if (act == kTagDelete && present) {
        f.erase(f.begin() + static_cast<long>(at), f.begin() + static_cast<long>(at + kTagBytes));
    } else if (act == kTagAdd) {
        const uint8_t room[kTagBytes] = {};
        f.insert(f.begin() + static_cast<long>(at), room, room + kTagBytes);
        tag_put(f, at, tpid, tci);
    } else if (act == kTagReplace && present) {
        const uint32_t old = tag_at(f, at);
        const uint32_t out = (tci & 0xFFF) | (pri ? tci & 0xE000 : old & 0xE000) | (cfi ? tci & 0x1000 : old & 0x1000);
        tag_put(f, at, static_cast<uint32_t>(f[at]) << 8 | f[at + 1], out);
    }
}

void run_ingress(Pipeline &pl, Packet &p)
{
    for (const IngressStage &s : kIngress) {
        if (!s.run(pl, p)) {
            return;
        }
    }
}

bool run_egress(Pipeline &pl, const Packet &p, EgressCopy &c)
{
    for (const EgressStage &s : kEgress) {
        uint16_t cause = 0;
        if (!s.run(pl, p, c, &cause)) {
            pl.count_cause(cause, p.len + kFcs);
            return false;
        }
    }
    return true;
}

} // namespace tide::sim
