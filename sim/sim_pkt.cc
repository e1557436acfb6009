// The packet path around its stages: what the stages read, the verdict of a
// packet, the copies, the capture queues, the model's clock and aging, and
// the capture file.
#include "sim/sim_pkt.h"
#include "sim/sim_qos.h"

#include <cstring>
#include <string>

#include "sim/sim_acl.h"
#include "sim/sim_vlan.h"
#include "sim/sim_em.h"
#include "sim/sim_int.h"
#include "sim/sim_mac.h"
#include "sim/sim_pcap.h"
#include "sim/sim_stat.h"
#include "sim/sim_tap.h"
#include "sim/sim_tcam.h"
#include "sim/sim_wire.h"

namespace tide::sim {

namespace {

constexpr uint32_t kFcs = 4;
constexpr uint32_t kCpuCauseBase = 1024;
constexpr uint64_t kMsPerSecond = 1000;
// Aging passes per age time: an idle entry, learned with an age count of 3,
// is gone after three of them.
constexpr uint64_t kPassesPerAgeTime = ArlEngine::kAgeFull;

struct CauseName {
    uint16_t cause;
    const char *name;
};

constexpr CauseName kDropNames[] = {
    {kCauseMinPkt, "RSM_DISCARD_MINPKT_DROP"},
    {kCauseAclDrop, "IACL_ACL_DROP"},
    {kCauseMaxPkt, "RSM_DISCARD_MAXPKT_DROP"},
    {kCauseIpatInvalid, "DISCARD_IPAT_TABLE_INVALID"},
    {kCauseUntagDiscard, "DISCARD_IPAT_DISCARD_UNTAGPKT"},
    {kCauseTagDiscard, "DISCARD_IPAT_DISCARD_TAGPKT"},
    {kCauseVmapInvalid, "DISCARD_VMAP_TABLE_INVALID"},
    {kCauseIvlanInvalid, "DISCARD_IVLAN_TABLE_INVALID"},
    {kCauseIvlanCheck, "DISCARD_IVLAN_CHECK_FAIL"},
    {kCauseVaclDrop, "IPRO_VLANACL_DROP"},
    {kCauseDmacErr, "ARL_DMAC_ERR"},
    {kCausePortBridge, "ARL_PORT_BRIDGE"},
    {kCauseBc, "ARL_BC"},
    {kCauseUnknownMc, "ARL_UNKNOW_MC"},
    {kCauseUnknownUc, "ARL_UNKNOW_UC"},
    {kCauseDstBlk, "ARL_DST_BLK"},
    {kCauseSrcBlk, "ARL_SRC_BLK"},
    {kCauseGlbLmt, "ARL_GLB_LMT"},
    {kCausePortLmt, "ARL_PORT_LMT"},
    {kCauseVlanLmt, "ARL_VLAN_LMT"},
    {kCauseDynFloat, "ARL_DYN_FLOAT"},
    {kCauseStaFloat, "ARL_STA_FLOAT"},
    {kCauseHashFull, "ARL_HASH_FULL"},
    {kCauseNoLearn, "ARL_NO_LRN"},
    {kCauseMcAbnormal, "MCC_MC_ABNORMAL_DROP"},
    {kCauseMrtInvalid, "MCC_MC_MRT_NVLD_DROP"},
    {kCauseMlibInvalid, "MCC_MC_MLB_NVLD_DROP"},
    {kCauseFloodEmpty, "MCC_BC_BIT_CN0_DROP"},
    {kCauseSpDportErr, "MCC_SP_DPORT_ERR_DROP"},
    {kCauseEpatInvalid, "DISCARD_EPAT_UNVLD"},
    {kCauseEgressUnuc, "DISCARD_UNUC"},
    {kCauseEgressUnmc, "DISCARD_UNMC"},
    {kCauseEgressMc, "DISCARD_MC"},
    {kCauseEgressBc, "DISCARD_BC"},
    {kCauseVlanCheck, "DISCARD_VLANCHECK"},
    {kCauseEvlanInvalid, "DISCARD_EVLAN_UNVLD"},
    {kCauseVtMissDrop, "DISCARD_VTMISSDROP"},
    {kCauseOpcodeAbnormal, "DISCARD_OPCODE_ABNORMAL"},
    {kCauseQmFlush, "QM_FLUSH_DROP"},
    {kCausePortLinkDown, "DISCARD_PORT_LINK_DOWN"},
    {kCauseMacRxDisabled, "MAC_RX_DISABLED"},
    {kCauseMacRxLinkDown, "MAC_RX_LINK_DOWN"},
    {kCauseMacTxDisabled, "MAC_TX_DISABLED"},
    {kCauseMacRxFcsErr, "MAC_RX_FCS_ERR"},
    {kCauseWireHops, "WIRE_HOPS"},
    {kCauseMacPathClear, "MAC_PATH_CLEAR"},
    {kCauseWireNoPort, "WIRE_NO_PORT"},
};

constexpr CauseName kCpuNames[] = {
    {kCpuBc, "TOCPU_ARL_BC"},
    {kCpuUnknownMc, "TOCPU_ARL_UNKNOW_MC"},
    {kCpuUnknownUc, "TOCPU_ARL_UNKNOW_UC"},
    {kCpuGlbLmt, "TOCPU_ARL_GLB_LMT"},
    {kCpuPortLmt, "TOCPU_ARL_PORT_LMT"},
    {kCpuVlanLmt, "TOCPU_ARL_VLAN_LMT"},
    {kCpuNoLearn, "TOCPU_ARL_NO_LRN"},
    {kCpuStaFloat, "TOCPU_ARL_STA_FLOAT"},
    {kCpuSoftLearn, "TOCPU_ARL_SOFT_LRN"},
};

std::string _comment(const char *what, uint32_t cause, bool to_cpu)
{
    return std::string(what) + " cause " + std::to_string(cause) + " " + cause_name(cause, to_cpu);
}

} // namespace

const char *cause_name(uint32_t cause, bool to_cpu)
{
    const CauseName *first = to_cpu ? std::begin(kCpuNames) : std::begin(kDropNames);
    const CauseName *last = to_cpu ? std::end(kCpuNames) : std::end(kDropNames);
    for (const CauseName *c = first; c != last; ++c) {
        if (c->cause == cause) {
            return c->name;
        }
    }
    return "NA";
}

Pipeline::Pipeline(Chip &chip) : chip_(chip)
{
    resolve();
    acl_ = std::make_unique<AclStage>(*this);
    ok_ &= acl_->ok();
    vlan_tcam_ = std::make_unique<VlanTcamStage>(*this);
    ok_ &= vlan_tcam_->ok();
}

Pipeline::~Pipeline() = default;

// ---- what the stages read ----------------------------------------------------

RegView Pipeline::need_reg(const char *name, const desc::Register **out)
{
    const desc::Register *r = desc::find_register(name);
    *out = r;
    if (r == nullptr || r->instances == 0) {
        ok_ = false;
        return RegView{};
    }
    return RegView{r->addrs, r->instances};
}

TableView Pipeline::need_tab(const char *name, const desc::Table **out)
{
    const desc::Table *t = desc::find_table(name);
    *out = t;
    if (t == nullptr || t->instances == 0 || t->words > kMaxEntryWords || (t->flags & desc::kTableIndirect) != 0) {
        ok_ = false;
        *out = nullptr;
        return TableView{};
    }
    return TableView{t->addrs[0], t->words, t->depth};
}

void Pipeline::need(const desc::Field *fields, uint32_t count, std::initializer_list<Want> wants)
{
    for (const Want &w : wants) {
        *w.field = fields != nullptr ? field_of(fields, count, w.name) : FieldRef{};
        ok_ &= w.field->ok();
    }
}

void Pipeline::need(const desc::Register *d, std::initializer_list<Want> wants)
{
    need(d != nullptr ? d->fields : nullptr, d != nullptr ? d->field_count : 0, wants);
}

void Pipeline::need(const desc::Table *d, std::initializer_list<Want> wants)
{
    need(d != nullptr ? d->fields : nullptr, d != nullptr ? d->field_count : 0, wants);
}

void Pipeline::resolve()
{
    const desc::Register *d = nullptr;
    r.tpid0 = need_reg("lsw_hreg_tpidcfg0", &d);
    need(d, {{&r.tpid_value[0], "tpid_value0"}, {&r.tpid_value[1], "tpid_value1"}});
    r.tpid1 = need_reg("lsw_hreg_tpidcfg1", &d);
    need(d, {{&r.tpid_value[2], "tpid_value2"}, {&r.tpid_value[3], "tpid_value3"}});
    static const char *const kSel[4] = {"tti_tpidcfg_sel0", "tti_tpidcfg_sel1", "tti_tpidcfg_sel2",
                                        "tti_tpidcfg_sel3"};
    for (int i = 0; i < 4; i++) {
        r.tpid_sel[i] = need_reg(kSel[i], &d);
    }
    r.inner_tpid = need_reg("tti_tpid_compare_cfg", &d);
    need(d, {{&r.inner_bm[0], "innervlan_tpidcfg_bm_tpid0"},
             {&r.inner_bm[1], "innervlan_tpidcfg_bm_tpid1"},
             {&r.inner_bm[2], "innervlan_tpidcfg_bm_tpid2"},
             {&r.inner_bm[3], "innervlan_tpidcfg_bm_tpid3"}});
    r.max_len = need_reg("rsm_maxpktlen_set_reg", &d);
    need(d, {{&r.max_pkt_len, "max_pkt_len"}});
    r.vlan_glb0 = need_reg("ipro_vlan_glb_cfg0", &d);
    need(d, {{&r.vlan_check_act, "vlan_check_drop_act_cfg"}});
    r.lrn_cfg = need_reg("arl_age_lrn_cfg0", &d);
    need(d, {{&r.glb_lrn_en, "glb_lrn_en"},
             {&r.glb_lmt_en, "glb_lmt_en"},
             {&r.glb_lmt_act, "glb_lmt_act"},
             {&r.age_time, "age_time"},
             {&r.glb_age_en, "glb_age_en"},
             {&r.age_cnt_en, "age_cnt_en"},
             {&r.two_way_age_en, "two_way_age_en"}});
    r.glb_cfg = need_reg("arl_arl_glb_cfg", &d);
    need(d, {{&r.lrn_mode, "lrn_mode"},
             {&r.mac_float_pfe, "mac_float_pfe"},
             {&r.sta_float_act, "sta_float_act"},
             {&r.mac_float_fail_act, "mac_float_fail_act"},
             {&r.hash_conflict_act, "hash_conflict_act"}});
    r.ppri = need_reg("arl_port_ppri", &d);
    ok_ &= r.ppri.instances * 8 >= kPorts;
    r.flush = need_reg("qm_qm_port_flush_en", &d);
    ok_ &= r.flush.instances * 32 >= kPorts;

    const desc::Table *tab = nullptr;
    t.ipat = need_tab("ipro_ipat_tbl", &tab);
    need(tab, {{&ipat.vld, "vld"},
               {&ipat.pvid, "pvid"},
               {&ipat.discard_untag, "discard_untag_pkt"},
               {&ipat.discard_tag, "discard_tag_pkt"},
               {&ipat.vlan_check_en, "vlan_check_en"},
               {&ipat.mac_lrn_mode, "mac_lrn_mode"},
               {&ipat.nolrn_tocp, "nolrn_tocp"},
               {&ipat.nolrn_discard, "nolrn_discard"},
               {&ipat.port_bridge_en, "port_bridge_en"},
               {&ipat.bc_broad, "bc_broad"},
               {&ipat.bc_tocp, "bc_tocp"},
               {&ipat.unmc_broad, "unmc_broad"},
               {&ipat.unmc_tocp, "unmc_tocp"},
               {&ipat.unuc_broad, "unuc_broad"},
               {&ipat.unuc_tocp, "unuc_tocp"},
               {&ipat.port_mac_lmt, "port_mac_lmt"},
               {&ipat.mac_lmt_dlf, "mac_lmt_dlf"}});
    t.ivlan = need_tab("ipro_ivlan_tbl", &tab);
    need(tab, {{&ivlan.vld, "vld"},
               {&ivlan.mac_lrn_mode, "mac_lrn_mode"},
               {&ivlan.bc_broad, "bc_broad"},
               {&ivlan.bc_tocp, "bc_tocp"},
               {&ivlan.unmc_broad, "unmc_broad"},
               {&ivlan.unmc_tocp, "unmc_tocp"},
               {&ivlan.unuc_broad, "unuc_broad"},
               {&ivlan.unuc_tocp, "unuc_tocp"},
               {&ivlan.vlan_lrn_lmt, "vlan_lrn_lmt"},
               {&ivlan.mac_lmt_dlf, "mac_lmt_dlf"},
               {&ivlan.cnt_type, "cnt_type"},
               {&ivlan.cnt_id, "cnt_id"}});
    t.vmap = need_tab("ipro_vmap_tbl", &tab);
    need(tab, {{&vlan.vmap_vld, "vld"}, {&vlan.vmap_idx, "vlan_idx"}});
    t.vbmp = need_tab("ipro_vbmp_tbl", &tab);
    need(tab, {{&vlan.ingress_members, "portbit_map"}});
    t.epat = need_tab("epro_epat_table", &tab);
    need(tab, {{&egr.epat_vld, "vld"},
               {&egr.vlan_check_en, "vlan_check_en"},
               {&egr.tpid_index, "tpid_index"},
               {&egr.unuc_ctrl, "unuc_ctrl"},
               {&egr.unmc_ctrl, "unmc_ctrl"},
               {&egr.mc_ctrl, "mc_ctrl"},
               {&egr.bc_ctrl, "bc_ctrl"},
               {&egr.sit1, "sit1"},
               {&egr.sit2, "sit2"},
               {&egr.vtmiss_drop, "vtmiss_drop"},
               {&egr.hash_opc, "hash_opc"}});
    t.ecib = need_tab("epro_ecib_table", &tab);
    need(tab, {{&ecib.vld, "vld"},
               {&ecib.ivid, "ivid"},
               {&ecib.ovid, "ovid"},
               {&ecib.outer_pri, "outer_pri"},
               {&ecib.outer_cfi, "outer_cfi"},
               {&ecib.inner_pri, "inner_pri"},
               {&ecib.inner_cfi, "inner_cfi"},
               {&ecib.vlan_opc, "vlan_opc"}});
    t.evlan = need_tab("epro_evlan_table", &tab);
    need(tab, {{&vlan.evlan_vld, "vld"}, {&vlan.evlan_cnt_type, "cnt_type"}, {&vlan.evlan_cnt_id, "cnt_id"}});
    t.vlanbmp = need_tab("epro_vlanbitmap_table", &tab);
    need(tab, {{&vlan.members, "portbitmap"}, {&vlan.untagged, "utport_bitmap"}});
    t.stat = need_tab("stat_causeid_stat_result_tbl", &tab);
    need(tab, {{&stat_pkts, "causeid_stat_result_pkt_num"}, {&stat_bytes, "causeid_stat_result_byt_num"}});
    t.mgid_stat = need_tab("stat_mgid_stat_result_tbl", &tab);
    need(tab, {{&mgid_pkts, "mgid_stat_pkt_num"}, {&mgid_bytes, "mgid_stat_byt_num"}});
    t.vlan_stat = need_tab("stat_vlan_acl_stat_result_tbl", &tab);
    need(tab, {{&vlan_stat_pkts, "vlan_acl_stat_pkt_num"}, {&vlan_stat_bytes, "vlan_acl_stat_byt_num"}});
    t.iport_stat = need_tab("stat_iport_stat_result_tbl", &tab);
    need(tab, {{&iport_pkts, "iport_stat_pkt_num"}, {&iport_bytes, "iport_stat_byt_num"}});
    t.oport_stat = need_tab("stat_oport_stat_result_tbl", &tab);
    need(tab, {{&oport_pkts, "oport_stat_result_pkt_num"}, {&oport_bytes, "oport_stat_result_byt_num"}});
    ok_ &= t.ipat.depth >= kPorts && t.epat.depth >= kPorts;
    ok_ &= t.vmap.depth >= 4096 && t.vbmp.depth >= 4096 && t.vlanbmp.depth >= 4096;
}

uint32_t Pipeline::reg(const RegView &rv, uint32_t instance) const
{
    return instance < rv.instances ? chip_.core_word(rv.addrs[instance]) : 0;
}

void Pipeline::read(const TableView &tv, uint32_t index, uint32_t *words) const
{
    const uint32_t base = tv.addr + index * tv.words * 4;
    for (uint32_t i = 0; i < tv.words; i++) {
        words[i] = chip_.core_word(base + 4 * i);
    }
}

// One packet of `bytes` more in a statistics entry of two counts.
void count_entry(Chip &chip, const TableView &tv, uint32_t entry, FieldRef pkts, FieldRef bytes, uint32_t n)
{
    if (entry >= tv.depth) {
        return;
    }
    const uint32_t base = tv.addr + entry * tv.words * 4;
    if (stat_latched(chip, base, n)) {
        return; // counted when the CPU has read the whole entry
    }
    uint32_t w[kMaxEntryWords] = {};
    for (uint32_t i = 0; i < tv.words; i++) {
        w[i] = chip.core_word(base + 4 * i);
    }
    bits_set(w, pkts, bits_get(w, pkts) + 1);
    bits_set(w, bytes, bits_get(w, bytes) + n);
    for (uint32_t i = 0; i < tv.words; i++) {
        chip.set_core_word(base + 4 * i, w[i]);
    }
}

void Pipeline::count_cause(uint32_t entry, uint32_t bytes)
{
    count_entry(chip_, t.stat, entry, stat_pkts, stat_bytes, bytes);
}

void Pipeline::count_mgid(uint32_t mrt, uint32_t bytes)
{
    count_entry(chip_, t.mgid_stat, mrt, mgid_pkts, mgid_bytes, bytes);
}

void Pipeline::count_vlan(uint32_t cnt_type, uint32_t cnt_id, uint32_t bytes)
{
    if (cnt_type != 0) {
        count_entry(chip_, t.vlan_stat, cnt_id, vlan_stat_pkts, vlan_stat_bytes, bytes);
    }
}

uint32_t Pipeline::move_priority(uint32_t port) const
{
    return (reg(r.ppri, port / 8) >> (4 * (port % 8))) & 0xF;
}

ArlEngine &Pipeline::arl()
{
    return *chip_.arl;
}

EmEngine &Pipeline::em()
{
    return *chip_.em;
}

MccEngine &Pipeline::mcc()
{
    return *chip_.mcc;
}

// ---- a packet ----------------------------------------------------------------

void Pipeline::inject(uint32_t port, const uint8_t *frame, uint32_t len, uint32_t hops)
{
    PortState &in = ports_[port];
    in.stats.rx_frames++;
    in.stats.rx_bytes += len;
    hops_ = hops;
    uint16_t mac_cause = hops > kWireHops ? kCauseWireHops : 0;
    if (mac_cause == 0 && chip_.mac->outloop(port)) {
        // The outer loop sends it straight back to the line; the MAC and
        // the pipeline never see it.
        if (pcap_ != nullptr) {
            pcap_->frame(port, true, now_ms_ * kMsPerSecond, frame, len, "outer loop");
        }
        in.stats.tx_frames++;
        in.stats.tx_bytes += len;
        line_out(port, frame, len, port, TIDE_SIM_CAUSE_NONE, 0);
        return;
    }
    if (mac_cause != 0 || !chip_.mac->rx_admit(port, &mac_cause)) {
        // The MAC refuses it: it never reaches the pipeline.  A frame with
        // a bad FCS counts in the MAC's MIB, one the gate keeps out not.
        if (mac_cause == kCauseMacRxFcsErr) {
            chip_.mac->count_rx(port, frame, len, false);
        }
        in.stats.rx_dropped++;
        in.stats.last_drop_cause = mac_cause;
        if (pcap_ != nullptr) {
            pcap_->frame(port, true, now_ms_ * kMsPerSecond, frame, len, _comment("dropped,", mac_cause, false));
        }
        return;
    }
    chip_.mac->count_rx(port, frame, len, true);
    count_entry(chip_, t.iport_stat, port, iport_pkts, iport_bytes, len + kFcs);
    Packet p;
    p.data = frame;
    p.len = len;
    p.src = port;
    run_ingress(*this, p);
    const uint32_t wire = len + kFcs;
    std::string note;
    if (p.dropped) {
        count_cause(p.drop_cause, wire);
        in.stats.rx_dropped++;
        in.stats.last_drop_cause = p.drop_cause;
        note = _comment("dropped,", p.drop_cause, false);
    }
    if (pcap_ != nullptr) {
        pcap_->frame(port, true, now_ms_ * kMsPerSecond, frame, len, note);
    }
    uint32_t queue = 0, to = 0;
    if (p.dropped && qos().redirect(*this, p, &to, &queue)) {
        // The cause redirects what it drops to one queue of the chip.
        send(to, frame, len, port, to == kCpuPort ? p.drop_cause : TIDE_SIM_CAUSE_NONE, queue);
    }
    if (p.to_cpu && qos().cpu_copy(*this, p, &queue)) {
        count_cause(kCpuCauseBase + p.cpu_cause, wire);
        send(kCpuPort, frame, len, port, p.cpu_cause, queue);
    }
    if (!p.forward) {
        return;
    }
    if (p.replicate) {
        for (const ReplicaCopy &r : p.copies) {
            EgressCopy c;
            c.port = r.port;
            c.elb = r.elb;
            c.frame = &scratch_;
            run_egress(*this, p, c);
        }
        return;
    }
    for (uint32_t d = 0; d < kPorts; d++) {
        if (((p.dest >> d) & 1) != 0) {
            EgressCopy c;
            c.port = d;
            c.frame = &scratch_;
            run_egress(*this, p, c);
        }
    }
}

QosEngine &Pipeline::qos()
{
    return *chip_.qos;
}

void Pipeline::send(uint32_t port, const uint8_t *frame, uint32_t len, uint32_t src, uint32_t cause, uint32_t queue)
{
    PortState &out = ports_[port];
    out.stats.tx_frames++;
    out.stats.tx_bytes += len;
    chip_.mac->count_tx(port, frame, len);
    count_entry(chip_, t.oport_stat, port, oport_pkts, oport_bytes, len + kFcs);
    line_out(port, frame, len, src, cause, queue);
}

void Pipeline::line_out(uint32_t port, const uint8_t *frame, uint32_t len, uint32_t src, uint32_t cause,
                        uint32_t queue)
{
    PortState &out = ports_[port];
    const MacEngine::Route route = chip_.mac->route(port);
    if (route.kind != MacEngine::Route::kEndpoint) {
        std::string note;
        if (route.kind == MacEngine::Route::kWire) {
            // It enters its port once this chip's pipeline has finished.
            wire_put(route.chip, route.lport, hops_ + 1, frame, len);
            note = "to chip " + std::to_string(route.chip) + " port " + std::to_string(route.lport);
        } else {
            out.stats.tx_lost++;
            out.stats.last_lost_cause = route.cause;
            note = _comment("lost,", route.cause, false);
        }
        if (pcap_ != nullptr) {
            pcap_->frame(port, false, now_ms_ * kMsPerSecond, frame, len, note);
        }
        return;
    }
    // A port bound to a TAP delivers there; only the others queue.
    const int tap = chip_.tap->send(port, frame, len);
    if (pcap_ != nullptr) {
        std::string note;
        if (cause != TIDE_SIM_CAUSE_NONE) {
            note = _comment("to CPU,", cause, true);
        } else if (tap > 0) {
            note = std::string("not delivered, the TAP refused it: ") + strerror(tap);
        }
        pcap_->frame(port, false, now_ms_ * kMsPerSecond, frame, len, note);
    }
    if (tap != TapPorts::kNotBound) {
        return;
    }
    if (out.sent.size() >= kQueueFrames) {
        // The oldest frame is forgotten; its buffer carries the new one.
        out.sent.push_back(std::move(out.sent.front()));
        out.sent.pop_front();
        out.stats.tx_forgotten++;
    } else {
        out.sent.emplace_back();
    }
    SentFrame &f = out.sent.back();
    f.bytes.assign(frame, frame + len);
    f.src_port = src;
    f.cause = cause;
    f.time_ms = now_ms_;
    f.queue = queue;
}

// ---- what left the chip ------------------------------------------------------

int Pipeline::capture(uint32_t port, uint8_t *buf, uint32_t size, uint32_t *len)
{
    std::deque<SentFrame> &q = ports_[port].sent;
    if (q.empty()) {
        return -7;
    }
    const std::vector<uint8_t> &f = q.front().bytes;
    *len = static_cast<uint32_t>(f.size());
    if (size < f.size()) {
        return -4; // the frame stays for a larger buffer
    }
    memcpy(buf, f.data(), f.size());
    q.pop_front();
    return 0;
}

int Pipeline::peek(uint32_t port, uint32_t index, uint8_t *buf, uint32_t size, tide_sim_frame_info *info) const
{
    const std::deque<SentFrame> &q = ports_[port].sent;
    if (index >= q.size()) {
        return -7;
    }
    const SentFrame &f = q[index];
    if (info != nullptr) {
        *info = tide_sim_frame_info{static_cast<uint32_t>(f.bytes.size()), f.src_port, f.cause, f.time_ms, f.queue};
    }
    if (buf != nullptr) {
        memcpy(buf, f.bytes.data(), f.bytes.size() < size ? f.bytes.size() : size);
    }
    return 0;
}

void Pipeline::stats(uint32_t port, tide_sim_port_stats *out) const
{
    *out = ports_[port].stats;
    out->waiting = static_cast<uint32_t>(ports_[port].sent.size());
}

// ---- the model's clock -------------------------------------------------------

// Aging passes run at the multiples of a third of the age time on the
// model's clock, while aging is on.
void Pipeline::age_to(uint64_t now)
{
    const uint32_t cfg = reg(r.lrn_cfg);
    const uint64_t period_x3 = static_cast<uint64_t>(word_get(cfg, r.age_time)) * kMsPerSecond;
    if (word_get(cfg, r.glb_age_en) == 0 || period_x3 == 0) {
        now_ms_ = now;
        return;
    }
    const uint64_t before = now_ms_ * kPassesPerAgeTime / period_x3;
    const uint64_t after = now * kPassesPerAgeTime / period_x3;
    now_ms_ = now;
    // After as many passes as an entry's full age count, nothing dynamic is
    // left; more passes change nothing.
    const uint64_t passes = after - before < kPassesPerAgeTime ? after - before : kPassesPerAgeTime;
    for (uint64_t i = 0; i < passes; i++) {
        arl().age_pass();
    }
}

void Pipeline::advance(uint32_t ms)
{
    age_to(now_ms_ + ms);
    // The TCAM's background scan runs while time passes.
    chip_.tcam->scan();
}

// ---- capture file --------------------------------------------------------------

int Pipeline::pcap_open(const char *path)
{
    if (pcap_ != nullptr) {
        return -8;
    }
    pcap_ = PcapWriter::open(path, kPorts);
    return pcap_ != nullptr ? 0 : -11;
}

int Pipeline::pcap_close()
{
    if (pcap_ == nullptr) {
        return -7;
    }
    const bool ok = pcap_->close();
    pcap_.reset();
    return ok ? 0 : -11;
}

} // namespace tide::sim
