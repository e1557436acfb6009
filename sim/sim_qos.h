// The model's QoS stages: classification, policers, queues and remark.
//
// Ingress: the internal priority and colour of a frame come from its port's
// trust type and the priority maps; then the source port's policer meters
// it.  Egress, per copy: the destination port's policer, the queue from
// the intl_pri-to-queue map, and the remark of the frame's priorities.  A
// copy to the CPU takes its queue from the cause id's row and passes the
// cause id's policer.  Policers are token buckets on the model's clock.
//
// The queue manager holds no frames in the model (a frame leaves at once),
// so a flushed port reports its queues empty, unless a test asks for
// queues that never empty.
#ifndef TIDE_SIM_QOS_H
#define TIDE_SIM_QOS_H

#include <array>
#include <cstdint>
#include <vector>

#include "sim/sim_pkt.h"

namespace tide::sim {

class Chip;

// Drop causes of the policers.
constexpr uint16_t kCauseSportCar = 662;    // DISCARD_SP_CAR
constexpr uint16_t kCauseCpuCauseCar = 740; // DISCARD_CPCAUSEID_CAR
constexpr uint16_t kCauseDportCar = 742;    // DISCARD_DP_CAR

class QosEngine {
public:
    explicit QosEngine(Chip &chip);
    bool ok() const { return ok_; }
    // The read handler of the queue manager's empty flags.
    void install();
    // Buckets back to full on their next use (power-on, reset).
    void clear();
    // 1: the port's queues never report empty.
    void never_empty(uint32_t port, bool on) { never_empty_[port % kPorts] = on; }

    // IPRO/ICAR: internal priority and colour, then the source port's
    // policer; false when the policer dropped the frame.
    bool ingress(Pipeline &pl, Packet &p);
    // ECAR/QM/EPRO edit of one copy: the destination port's policer, the
    // queue and the remark; false (with the cause) when dropped.
    bool egress(Pipeline &pl, const Packet &p, EgressCopy &c, uint16_t *cause);
    // A copy to the CPU: its queue, and whether the cause id's policer
    // lets it pass.
    bool cpu_copy(Pipeline &pl, const Packet &p, uint32_t *queue);
    // A dropped frame whose cause redirects: where it goes (its port and
    // queue); false when it stays dropped.
    bool redirect(Pipeline &pl, const Packet &p, uint32_t *port, uint32_t *queue);

    // A policer's state, for the knobs.
    struct Bucket {
        int64_t c = 0, p = 0; // bytes of the committed and the peak/excess bucket
        uint64_t last_ms = 0;
        bool live = false;
        uint32_t cfg[2] = {}; // the entry the bucket was filled for
    };

private:
    // The fields of a policer entry (both layouts), of an action row and
    // of a statistics row.
    struct CarFields {
        FieldRef valid, colormode, car_mode, pband_bas, pband_exp, pburst_bas, pburst_exp, cburst_exp, cband_bas,
            cband_exp, cburst_bas, value, bps_type;
    };
    struct ActFields {
        FieldRef opr[3], qindex[3], color[3];
    };
    struct Meter {
        TableView cfg, act, fwd, drop;
        CarFields f;
        ActFields a;
        FieldRef fwd_pkts, fwd_bytes, drop_pkts, drop_bytes;
        uint32_t pps_len_reg = 0;
        std::vector<Bucket> buckets;
    };

    Chip &chip_;
    bool ok_ = true;
    std::array<bool, kPorts> never_empty_{};
    Meter sport_, dport_, cause_;
    TableView ba_, phb_, causeid_, ptype_map_, cause_tbl_, empty_;
    FieldRef trust_type_, ba_info_, portcar_en_, portcar_id_, port_car_en_, port_car_id_, phbstruct_;
    FieldRef ba_q_[4], ba_c_[4];
    FieldRef phb_tc_, phb_dscp_, phb_opri_, phb_odei_, phb_ipri_, phb_idei_;
    FieldRef cp_vld_, cp_qindex_en_, cp_qindex_, map_vld_, map_idx_, redir_en_;
    uint32_t cos_map_ = 0, redir_cfg_ = 0;
    FieldRef cos_[8], glb_redir_en_, redir_cpu_flag_, queid_;

    TableView tab(const char *name, const desc::Table **out);
    FieldRef field(const desc::Table *t, const char *name);
    uint32_t reg(const char *name, const desc::Register **out);
    void meter_init(Meter &m, const char *cfg, const char *act, const char *stat_prefix, const char *pps_reg);
    uint32_t entry(const TableView &t, uint32_t index, uint32_t *words) const;
    // The colour of a packet of `bytes` through profile `id` of `m`;
    // `in_color` counts in colour-aware mode.  Single-bucket meters give
    // green or red.
    uint32_t meter(Pipeline &pl, Meter &m, uint32_t id, uint32_t bytes, uint32_t in_color);
    // Applies the action of `color`; false for a drop.  Counts.
    bool act(Meter &m, uint32_t id, uint32_t color, uint32_t bytes, uint32_t *intl_pri, uint32_t *out_color);
    uint32_t cosq(uint32_t intl_pri) const;
    void remark(const Packet &p, EgressCopy &c) const;
};

} // namespace tide::sim

#endif // TIDE_SIM_QOS_H
