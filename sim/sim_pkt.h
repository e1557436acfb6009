// The model's packet path.
//
// A frame injected on a port runs through the stages of the chip in their
// order, synchronously and under the chip's mutex.  Each stage reads the
// model's own registers and tables (the ones the SDK programs), may change
// the packet's record, and may end it with a named cause.  The copies that
// survive the ingress stages run the egress stages one by one and land in
// the capture queue of their port, where a test or an operator reads them.
//
// Later stages (translation, ACL, mirror, counters, trace) slot into the two stage lists of sim_pkt_stages.cc.
#ifndef TIDE_SIM_PKT_H
#define TIDE_SIM_PKT_H

#include <tide/sim.h>

#include <array>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <memory>
#include <vector>

#include "sim/sim_arl.h"
#include "sim/sim_bits.h"

namespace tide::sim {

class AclStage;
class VlanTcamStage;
class Chip;
class MccEngine;
class EmEngine;
class PcapWriter;
class QosEngine;

// Causes the packet path gives.  Forward and drop causes count in entries
// 0 to 1023 of the cause statistics, to-CPU causes in 1024 + cause.
enum Cause : uint16_t {
    kCauseMinPkt = 513,         // RSM_DISCARD_MINPKT_DROP
    kCauseMaxPkt = 514,         // RSM_DISCARD_MAXPKT_DROP
    kCauseIpatInvalid = 565,    // DISCARD_IPAT_TABLE_INVALID
    kCauseUntagDiscard = 567,   // DISCARD_IPAT_DISCARD_UNTAGPKT
    kCauseTagDiscard = 568,     // DISCARD_IPAT_DISCARD_TAGPKT
    kCauseVmapInvalid = 570,    // DISCARD_VMAP_TABLE_INVALID
    kCauseIvlanInvalid = 571,   // DISCARD_IVLAN_TABLE_INVALID
    kCauseIvlanCheck = 572,     // DISCARD_IVLAN_CHECK_FAIL
    kCauseVaclDrop = 579,       // IPRO_VLANACL_DROP: the drop action of a VLAN TCAM entry
    kCauseDmacErr = 583,        // ARL_DMAC_ERR
    kCausePortBridge = 584,     // ARL_PORT_BRIDGE
    kCauseBc = 585,             // ARL_BC
    kCauseUnknownMc = 586,      // ARL_UNKNOW_MC
    kCauseUnknownUc = 587,      // ARL_UNKNOW_UC
    kCauseDstBlk = 588,         // ARL_DST_BLK
    kCauseSrcBlk = 589,         // ARL_SRC_BLK
    kCauseGlbLmt = 590,         // ARL_GLB_LMT
    kCausePortLmt = 591,        // ARL_PORT_LMT
    kCauseVlanLmt = 592,        // ARL_VLAN_LMT
    kCauseDynFloat = 593,       // ARL_DYN_FLOAT
    kCauseStaFloat = 594,       // ARL_STA_FLOAT
    kCauseHashFull = 595,       // ARL_HASH_FULL
    kCauseNoLearn = 596,        // ARL_NO_LRN
    kCauseAclDrop = 600,        // IACL_ACL_DROP: the drop action of an ingress ACL entry
    kCauseMcAbnormal = 667,     // MCC_MC_ABNORMAL_DROP
    kCauseMrtInvalid = 688,     // MCC_MC_MRT_NVLD_DROP
    kCauseMlibInvalid = 689,    // MCC_MC_MLB_NVLD_DROP
    kCauseFloodEmpty = 690,     // MCC_BC_BIT_CN0_DROP
    kCauseSpDportErr = 692,     // MCC_SP_DPORT_ERR_DROP
    kCauseEpatInvalid = 710,    // DISCARD_EPAT_UNVLD
    kCauseEgressUnuc = 711,     // DISCARD_UNUC
    kCauseEgressUnmc = 712,     // DISCARD_UNMC
    kCauseEgressMc = 713,       // DISCARD_MC
    kCauseEgressBc = 714,       // DISCARD_BC
    kCauseVlanCheck = 723,      // DISCARD_VLANCHECK
    kCauseVtMissDrop = 728,     // DISCARD_VTMISSDROP
    kCauseEvlanInvalid = 724,   // DISCARD_EVLAN_UNVLD
    kCauseOpcodeAbnormal = 733, // DISCARD_OPCODE_ABNORMAL
    kCauseQmFlush = 749,        // QM_FLUSH_DROP
};

// To-CPU causes.
enum CpuCause : uint16_t {
    kCpuBc = 304,         // TOCPU_ARL_BC
    kCpuUnknownMc = 305,  // TOCPU_ARL_UNKNOW_MC
    kCpuUnknownUc = 306,  // TOCPU_ARL_UNKNOW_UC
    kCpuGlbLmt = 307,     // TOCPU_ARL_GLB_LMT
    kCpuPortLmt = 309,    // TOCPU_ARL_PORT_LMT
    kCpuVlanLmt = 308,    // TOCPU_ARL_VLAN_LMT
    kCpuNoLearn = 310,    // TOCPU_ARL_NO_LRN
    kCpuStaFloat = 311,   // TOCPU_ARL_STA_FLOAT
    kCpuSoftLearn = 312,  // TOCPU_ARL_SOFT_LRN
};

// Name of a cause the model gives ("NA" for another).
const char *cause_name(uint32_t cause, bool to_cpu);

constexpr uint32_t kPorts = 32;
constexpr uint32_t kCpuPort = 31;
// Widest entry of a table the stages read (the ingress port row: 261 bits).
constexpr uint32_t kMaxEntryWords = 9;

constexpr uint32_t kElbWords = 4;

// A copy the replication engine makes: its port and its egress edit (the
// words of its epro_elb_table entry).
struct ReplicaCopy {
    uint32_t port = 0;
    uint32_t elb[kElbWords] = {};
};

// What the ARL made of the destination MAC.
enum class DaKind : uint8_t { kUnicast, kMulticast, kBroadcast };

// The record of one packet on its way through the ingress stages.
struct Packet {
    const uint8_t *data = nullptr;
    uint32_t len = 0; // bytes without FCS
    uint32_t src = 0; // ingress lport

    // TTI: the parsed header.
    uint64_t dmac = 0, smac = 0;
    uint32_t tags = 0;       // 0, 1 or 2
    uint16_t outer_tci = 0;  // tag control of the outer tag
    uint16_t ethertype = 0;  // after the tags

    // IPRO: the port and VLAN rows.
    uint32_t vid = 0;
    uint32_t vlan_idx = 0;
    uint32_t ipat[kMaxEntryWords] = {};
    uint32_t ivlan[kMaxEntryWords] = {};
    uint32_t members = 0; // ingress members of the VLAN

    // QoS: the internal priority and colour (0 green, 1 yellow, 2 red).
    uint32_t intl_pri = 0;
    uint32_t color = 0;

    // ARL.
    DaKind da = DaKind::kUnicast;
    bool da_hit = false;

    // The VLAN TCAM action: the frame as it rewrote it (`data` then points
    // into it); its learning bits, which the ARL's source side reads; and
    // whether it named the destination, which the ARL's lookup then leaves.
    std::vector<uint8_t> edited;
    bool no_learn = false, no_learn_tocpu = false, no_learn_discard = false;
    bool dest_set = false;

    // Verdict: a drop ends forwarding; a redirect to the CPU replaces it; a
    // CPU copy goes with it.
    bool forward = true;
    bool dropped = false;
    bool deny_drop = false; // an ACL entry's "not-drop": later drops do not happen
    uint16_t drop_cause = 0;
    bool to_cpu = false;
    uint16_t cpu_cause = 0;
    uint32_t dest = 0; // egress ports, bit n: lport n
    bool flood = false;

    // MCC: a MAC hit whose destination is a replication id, and the copies
    // its tree makes (they replace `dest`).
    bool replicate = false;
    uint32_t mrt = 0;
    std::vector<ReplicaCopy> copies;

    void drop(uint16_t cause)
    {
        if (forward && !deny_drop) {
            forward = false;
            dropped = true;
            drop_cause = cause;
        }
    }
    void copy_to_cpu(uint16_t cause)
    {
        if (!to_cpu) {
            to_cpu = true;
            cpu_cause = cause;
        }
    }
    void redirect_to_cpu(uint16_t cause)
    {
        copy_to_cpu(cause);
        forward = false;
    }
    // A port an action names replaces what the MAC table found; a port
    // beyond the chip's drops (733).
    void redirect_to_port(uint32_t port)
    {
        if (port >= kPorts) {
            drop(kCauseOpcodeAbnormal);
            return;
        }
        dest = 1u << port;
        replicate = false;
        flood = false;
    }
    // The forwarding commands the ACL and VLAN TCAM action rows share: 0
    // permit, 1 drop with `drop_cause`, 2 a copy and 3 a redirect to the
    // CPU with `cpu_cause`.  False for another command.
    bool basic_forwarding(uint32_t cmd, uint16_t drop_cause, uint16_t cpu_cause)
    {
        switch (cmd) {
        case 0:
            return true;
        case 1:
            drop(drop_cause);
            return true;
        case 2:
            copy_to_cpu(cpu_cause);
            return true;
        case 3:
            redirect_to_cpu(cpu_cause);
            return true;
        default:
            return false;
        }
    }
};

// A frame that left the chip on a port.
struct SentFrame {
    std::vector<uint8_t> bytes;
    uint32_t src_port = 0;
    uint32_t cause = TIDE_SIM_CAUSE_NONE;
    uint64_t time_ms = 0;
    uint32_t queue = 0;
};

// One copy on its way through the egress stages.
struct EgressCopy {
    uint32_t port = 0;
    uint32_t epat[kMaxEntryWords] = {};
    bool untag = false;
    const uint32_t *elb = nullptr;         // the egress edit of a replicated copy
    std::vector<uint8_t> *frame = nullptr; // built by EPRO, sent by MAC TX
    // QoS of the copy after the egress policer, and its queue.
    uint32_t intl_pri = 0;
    uint32_t color = 0;
    uint32_t queue = 0;
};

class Pipeline;

// The stage lists (sim_pkt_stages.cc).  `ingress` runs until a stage ends
// the packet; `egress` runs one copy and says whether it left the chip.
void run_ingress(Pipeline &pl, Packet &p);
bool run_egress(Pipeline &pl, const Packet &p, EgressCopy &c);

// Tag commands of the action rows: 1 add, 2 replace, 3 delete.
constexpr uint32_t kTagAdd = 1, kTagReplace = 2, kTagDelete = 3;
// The tag control of the tag at byte `at` of a frame, and a whole tag put
// there (sim_pkt_stages.cc).
uint32_t tag_at(const std::vector<uint8_t> &f, size_t at);
void tag_put(std::vector<uint8_t> &f, size_t at, uint32_t tpid, uint32_t tci);
// One tag edit: `act` on the tag at `at` (present or not), with the new
// tag control `tci` and which of its priority and CFI replace the old.
void tag_edit(std::vector<uint8_t> &f, size_t at, bool present, uint32_t act, uint32_t tpid, uint32_t tci, bool pri,
              bool cfi);

// The replication stage (sim_pkt_mcc.cc): the copies of a replicated
// packet; and the egress edit of one of them, on the frame EPRO built.
bool mcc_stage(Pipeline &pl, Packet &p);
// The ingress ACL stage (sim_acl.cc).
bool acl_stage(Pipeline &pl, Packet &p);
void mcc_egress_edit(Pipeline &pl, const Packet &p, EgressCopy &c);

// A table of the description as the chip's logic reads it.
struct TableView {
    uint32_t addr = 0;
    uint32_t words = 0;
    uint32_t depth = 0;
    bool ok() const { return words != 0; }
};

// One packet of `n` bytes more in a statistics entry of two counts.
void count_entry(Chip &chip, const TableView &tv, uint32_t entry, FieldRef pkts, FieldRef bytes, uint32_t n);

// A register and its instances.
struct RegView {
    const uint32_t *addrs = nullptr;
    uint32_t instances = 0;
};

class Pipeline {
public:
    explicit Pipeline(Chip &chip);
    ~Pipeline();
    Pipeline(const Pipeline &) = delete;
    Pipeline &operator=(const Pipeline &) = delete;

    // Whether the description gave every register, table and field.
    bool ok() const { return ok_; }

    // The public calls; the caller holds the chip's mutex.
    // `hops`: the wires the frame has crossed since it was injected.
    void inject(uint32_t port, const uint8_t *frame, uint32_t len, uint32_t hops = 0);
    int capture(uint32_t port, uint8_t *buf, uint32_t size, uint32_t *len);
    int peek(uint32_t port, uint32_t index, uint8_t *buf, uint32_t size, tide_sim_frame_info *info) const;
    void stats(uint32_t port, tide_sim_port_stats *out) const;
    void advance(uint32_t ms);
    uint64_t now() const { return now_ms_; }
    int pcap_open(const char *path);
    int pcap_close();

    // Captured frames a port keeps; older ones are forgotten.
    static constexpr size_t kQueueFrames = 1024;

private:
    struct PortState {
        std::deque<SentFrame> sent;
        tide_sim_port_stats stats{};
    };

    Chip &chip_;
    bool ok_ = true;
    uint64_t now_ms_ = 0;
    std::array<PortState, kPorts> ports_{};
    std::unique_ptr<PcapWriter> pcap_;
    std::unique_ptr<AclStage> acl_;
    std::unique_ptr<VlanTcamStage> vlan_tcam_;
    std::vector<uint8_t> scratch_; // the frame as one egress copy leaves
    uint32_t hops_ = 0;            // the wires the frame being injected has crossed

    // The frame leaves `port` onto its line: over a wire, into the
    // endpoint (its TAP or capture queue), or lost.
    void line_out(uint32_t port, const uint8_t *frame, uint32_t len, uint32_t src, uint32_t cause, uint32_t queue);

    // ---- what the stages read, found by name once ----
public:
    struct Regs {
        RegView tpid0, tpid1, tpid_sel[4], inner_tpid, max_len, vlan_glb0, lrn_cfg, glb_cfg, ppri, flush;
        FieldRef tpid_value[4], inner_bm[4], max_pkt_len, vlan_check_act;
        FieldRef glb_lrn_en, glb_lmt_en, glb_lmt_act, age_time, glb_age_en, age_cnt_en, two_way_age_en;
        FieldRef lrn_mode, mac_float_pfe, sta_float_act, mac_float_fail_act, hash_conflict_act;
    } r;
    struct Tables {
        TableView ipat, ivlan, vmap, vbmp, epat, evlan, vlanbmp, stat, mgid_stat, ecib, iport_stat, oport_stat,
            vlan_stat;
    } t;
    struct IpatFields {
        FieldRef vld, pvid, discard_untag, discard_tag, vlan_check_en, mac_lrn_mode, nolrn_tocp, nolrn_discard,
            port_bridge_en, bc_broad, bc_tocp, unmc_broad, unmc_tocp, unuc_broad, unuc_tocp, port_mac_lmt,
            mac_lmt_dlf;
    } ipat;
    struct IvlanFields {
        FieldRef vld, mac_lrn_mode, bc_broad, bc_tocp, unmc_broad, unmc_tocp, unuc_broad, unuc_tocp, vlan_lrn_lmt,
            mac_lmt_dlf, cnt_type, cnt_id;
    } ivlan;
    struct VlanFields {
        FieldRef vmap_vld, vmap_idx, ingress_members, members, untagged, evlan_vld, evlan_cnt_type, evlan_cnt_id;
    } vlan;
    struct EgressFields {
        FieldRef epat_vld, vlan_check_en, tpid_index, unuc_ctrl, unmc_ctrl, mc_ctrl, bc_ctrl, sit1, sit2,
            vtmiss_drop, hash_opc;
    } egr;
    // The action rows of the egress translation.
    struct EcibFields {
        FieldRef vld, ivid, ovid, outer_pri, outer_cfi, inner_pri, inner_cfi, vlan_opc;
    } ecib;
    FieldRef stat_pkts, stat_bytes, mgid_pkts, mgid_bytes, iport_pkts, iport_bytes, oport_pkts, oport_bytes,
        vlan_stat_pkts, vlan_stat_bytes;

    uint32_t reg(const RegView &r, uint32_t instance = 0) const;
    void read(const TableView &t, uint32_t index, uint32_t *words) const;
    // Adds one packet of `bytes` to a cause's statistics entry, or to a
    // replication id's.
    void count_cause(uint32_t entry, uint32_t bytes);
    void count_mgid(uint32_t mrt, uint32_t bytes);
    // Adds one packet of `bytes` to the VLAN counter of a VLAN row whose
    // counter type is not "none".
    void count_vlan(uint32_t cnt_type, uint32_t cnt_id, uint32_t bytes);
    // The move-priority nibble of a port: priority in bits 1..0, enable 2.
    uint32_t move_priority(uint32_t port) const;
    ArlEngine &arl();
    MccEngine &mcc();
    AclStage &acl() { return *acl_; }
    VlanTcamStage &vlan_tcam() { return *vlan_tcam_; }
    Chip &chip() { return chip_; }
    EmEngine &em();

private:
    void resolve();
    RegView need_reg(const char *name, const desc::Register **out);
    TableView need_tab(const char *name, const desc::Table **out);
    // A field to find, and where its place goes.
    struct Want {
        FieldRef *field;
        const char *name;
    };
    void need(const desc::Field *fields, uint32_t count, std::initializer_list<Want> wants);
    void need(const desc::Register *r, std::initializer_list<Want> wants);
    void need(const desc::Table *t, std::initializer_list<Want> wants);

    void age_to(uint64_t now);

public:
    // MAC TX: the frame leaves `port` into the pcap and into its TAP, or
    // its capture queue when the port is not bound.
    void send(uint32_t port, const uint8_t *frame, uint32_t len, uint32_t src, uint32_t cause, uint32_t queue = 0);
    QosEngine &qos();
};

} // namespace tide::sim

#endif // TIDE_SIM_PKT_H
