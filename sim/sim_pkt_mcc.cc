// The replication stage of the packet path: a MAC hit whose destination is
// a replication id follows its tree (sim_mcc.cc), one copy per leaf, and
// each copy leaves with its leaf's egress edit.
//
// A copy's key (oport_inf_causeid) names its destination: a port of this
// chip ((mymod & 31) * 64 + port), a trunk (bit 11), or, by the edit's
// stack and elbtype, a stack port or a mirror.  Only ports have a stage in
// the model; the rest drop with a cause.
#include <algorithm>
#include <iterator>

#include "sim/sim_mcc.h"
#include "sim/sim_pkt.h"

namespace tide::sim {

namespace {

constexpr uint32_t kFcs = 4;
constexpr uint32_t kTagBytes = 4;
constexpr uint32_t kTypeOffset = 12;
constexpr uint32_t kKeyTrunk = 0x800;
constexpr uint32_t kElbMirror = 3;

// How a walk that ended early shows in the statistics.
uint16_t _walk_cause(uint32_t end)
{
    switch (end) {
    case TIDE_SIM_MCC_ROOT_INVALID:
        return kCauseMrtInvalid;
    case TIDE_SIM_MCC_LEAF_INVALID:
        return kCauseMlibInvalid;
    default:
        return kCauseMcAbnormal;
    }
}

// The destination of one copy: its port, or the cause that drops it.
bool _copy_port(const MccEngine &m, const uint32_t *elb, uint32_t mymod, uint32_t *port, uint16_t *cause)
{
    const MccEngine::ElbFields &f = m.elb();
    const uint32_t key = static_cast<uint32_t>(bits_get(elb, f.oport));
    if (bits_get(elb, f.valid) == 0) {
        *cause = kCauseMlibInvalid;
        return false;
    }
    if ((key & kKeyTrunk) != 0 || bits_get(elb, f.stack) != 0 || bits_get(elb, f.elbtype) == kElbMirror) {
        *cause = kCauseOpcodeAbnormal; // trunks, stack ports and mirrors have no stage yet
        return false;
    }
    *port = key & 63;
    if (((key >> 6) & 31) != (mymod & 31) || *port >= kPorts) {
        *cause = kCauseSpDportErr;
        return false;
    }
    return true;
}

void _put_tag(std::vector<uint8_t> &f, size_t at, uint32_t tpid, uint32_t tci)
{
    const uint8_t tag[kTagBytes] = {static_cast<uint8_t>(tpid >> 8), static_cast<uint8_t>(tpid),
                                    static_cast<uint8_t>(tci >> 8), static_cast<uint8_t>(tci)};
    f.insert(f.begin() + static_cast<std::ptrdiff_t>(at), tag, tag + kTagBytes);
}

} // namespace

// The copies of a replicated packet.  A root that is not valid drops the
// frame; a walk that ends early makes the copies it reached and counts its
// cause; a copy back to the ingress port is pruned unless its edit
// (prunedisable) or the port row (port_bridge_en) lets it go.
bool mcc_stage(Pipeline &pl, Packet &p)
{
    if (!p.forward || !p.replicate) {
        return p.forward;
    }
    MccEngine &m = pl.mcc();
    if (p.mrt >= m.roots()) {
        p.drop(kCauseMrtInvalid);
        return false;
    }
    std::vector<MccEngine::Copy> made;
    const uint32_t end = m.walk(p.mrt, &made);
    if (end == TIDE_SIM_MCC_ROOT_INVALID) {
        p.drop(kCauseMrtInvalid);
        return false;
    }
    const uint32_t wire = p.len + kFcs;
    const bool bridge = bits_get(p.ipat, pl.ipat.port_bridge_en) != 0;
    const uint32_t mymod = m.mymod();
    std::vector<uint16_t> dropped;
    if (end != TIDE_SIM_MCC_COMPLETE) {
        dropped.push_back(_walk_cause(end));
    }
    for (const MccEngine::Copy &c : made) {
        uint32_t port = 0;
        uint16_t cause = 0;
        if (!_copy_port(m, c.elb, mymod, &port, &cause)) {
            dropped.push_back(cause);
            continue;
        }
        if (port == p.src && !bridge && bits_get(c.elb, m.elb().prunedisable) == 0) {
            continue;
        }
        ReplicaCopy r;
        r.port = port;
        std::copy(std::begin(c.elb), std::end(c.elb), r.elb);
        p.copies.push_back(r);
    }
    if (p.copies.empty()) {
        p.drop(dropped.empty() ? static_cast<uint16_t>(kCauseFloodEmpty) : dropped.front());
        return false;
    }
    for (uint16_t cause : dropped) {
        pl.count_cause(cause, wire);
    }
    if (m.counts(p.mrt)) {
        pl.count_mgid(p.mrt, wire);
    }
    return true;
}

// The edit of a copy on the frame EPRO built (outer tag by the VLAN's
// untagged set, inner tag untouched).  With vlanupdate the copy leaves
// with `tagnum` tags of its own: none, an outer tag of ovid, or an outer
// tag of ovid over an inner tag of ivid (TPID 0); their priorities are
// opri and ipri with vlanprichg, else the frame's.  Without vlanupdate,
// vlanprichg sets the priority of the outer tag the copy has.
void mcc_egress_edit(Pipeline &pl, const Packet &p, EgressCopy &c)
{
    const MccEngine::ElbFields &f = pl.mcc().elb();
    const bool update = bits_get(c.elb, f.vlanupdate) != 0;
    const bool prichg = bits_get(c.elb, f.vlanprichg) != 0;
    const uint32_t ovlan = static_cast<uint32_t>(bits_get(c.elb, f.ovlan));
    const uint32_t ivlan = static_cast<uint32_t>(bits_get(c.elb, f.ivlan));
    std::vector<uint8_t> &frame = *c.frame;
    const uint32_t tags = (c.untag ? 0u : 1u) + (p.tags == 2 ? 1u : 0u);
    const uint32_t frame_pri = p.tags != 0 ? p.outer_tci >> 13 : (static_cast<uint32_t>(bits_get(p.ipat, pl.ipat.pvid)) >> 13) & 7;
    if (!update) {
        if (prichg && !c.untag) {
            frame[kTypeOffset + 2] = static_cast<uint8_t>((frame[kTypeOffset + 2] & 0x1F) | ((ovlan >> 13) & 7) << 5);
        }
        return;
    }
    frame.erase(frame.begin() + kTypeOffset, frame.begin() + kTypeOffset + kTagBytes * tags);
    const uint32_t tagnum = static_cast<uint32_t>(bits_get(c.elb, f.tagnum));
    const uint32_t index = static_cast<uint32_t>(bits_get(c.epat, pl.egr.tpid_index));
    const uint32_t outer_tpid = word_get(pl.reg(index < 2 ? pl.r.tpid0 : pl.r.tpid1), pl.r.tpid_value[index]);
    const uint32_t inner_tpid = word_get(pl.reg(pl.r.tpid0), pl.r.tpid_value[0]);
    if (tagnum >= 2) {
        const uint32_t pri = prichg ? (ivlan >> 13) & 7 : 0;
        _put_tag(frame, kTypeOffset, inner_tpid, pri << 13 | (ivlan & 0xFFF));
    }
    if (tagnum >= 1) {
        const uint32_t pri = prichg ? (ovlan >> 13) & 7 : frame_pri;
        _put_tag(frame, kTypeOffset, outer_tpid, pri << 13 | (ovlan & 0xFFF));
    }
}

} // namespace tide::sim
