// The model's MAC table and its command block.
//
// The chip operates its MAC table itself: the CPU writes an entry image and
// a command into the command block and reads back a status.  This engine
// holds the table (bar0, bar1 and a 4-entry cam), runs each command inside
// the register write that starts it, and keeps the table's counters in the
// registers the SDK reads.
#ifndef TIDE_SIM_ARL_H
#define TIDE_SIM_ARL_H

#include <array>
#include <cstdint>
#include <vector>

#include "sim/sim_bits.h"

namespace tide::sim {

class Chip;

// One entry: 128 bits, word 0 holding bits 31..0.
using ArlEntry = std::array<uint32_t, 4>;

class ArlEngine {
public:
    static constexpr uint32_t kBar0Max = 16384;
    static constexpr uint32_t kBar1 = 2048;
    static constexpr uint32_t kCam = 4;
    static constexpr uint32_t kWays = 4; // entries of a bucket in bar0 and bar1
    static constexpr uint32_t kPorts = 32;

    // Fail causes of the command block.
    enum Cause : uint32_t {
        kOk = 0,
        kStaticPreempted = 1,
        kOverwritten = 2,
        kPreemptFailed = 3,
        kOverwriteRefused = 4,
        kDeleteMiss = 5,
        kSearchMiss = 6,
        kBarrelFull = 7,
        kGlobalLimit = 8,
        kPortLimit = 9,
    };

    // Outcome of a command or of a learning step: the fail cause, the
    // count of a batched command, and whether the block reports a failure.
    struct Result {
        uint32_t cause = kOk;
        uint32_t count = 0;
        bool fail = false;
    };

    // Fields of an entry, for the packet path.
    struct EntryFields {
        FieldRef valid, stati, age_cnt, opcode, learn_data, dst_blk, src_blk;
    };

    // The age count of an entry that was just learned or hit.
    static constexpr uint32_t kAgeFull = 3;

    explicit ArlEngine(Chip &chip);

    // Whether the description gave every register and field the engine
    // needs.
    bool ok() const { return ok_; }

    // Write handlers of the command block and of the table init.
    void install();
    // The table empty, counters zero (power-on and the table init).
    void clear();

    uint32_t bar0_size() const;
    uint32_t entries() const { return bar0_size() + kBar1 + kCam; }
    // Entry by the linear index of the walkers: bar0, bar1, cam.
    bool entry_get(uint32_t index, ArlEntry *out) const;
    uint32_t static_count() const { return static_count_; }
    uint32_t dynamic_count() const { return dynamic_count_; }

    // ---- the packet path: lookup, learning, moves and aging ------------
    // They work on the same table, counters and limits as the command
    // block, so that a learned entry and an entry the CPU inserted are
    // alike.  The caller holds the chip's mutex.
    const EntryFields &fields() const { return ef_; }
    // The entry of a MAC key (key mode 0) in `vid`, or NULL.
    ArlEntry *lookup(uint32_t vid, uint64_t mac);
    // A new dynamic entry of (vid, mac) on `port`, refused for the same
    // causes as a CPU insert (limits 8 and 9, a full bucket 7).
    Result learn(uint32_t vid, uint64_t mac, uint32_t port);
    // A dynamic entry moved to `port`; refused (9) when that port is at its
    // learn limit.
    Result move(ArlEntry *entry, uint32_t port);
    // A hit: the age count back to full.
    void refresh(ArlEntry *entry) const;
    // One aging pass: the age count of every dynamic entry one lower, and
    // the entries it brings to zero removed.  Gives the number removed.
    uint32_t age_pass();
    // Counts a station move that succeeded or was refused.
    void float_counted(bool succeeded);

private:
    struct Slot {
        uint32_t bucket; // 0 bar0, 1 bar1, 2 cam
        uint32_t addr;
    };

    Chip &chip_;
    bool ok_ = true;
    std::vector<ArlEntry> bar0_;
    std::vector<ArlEntry> bar1_;
    std::vector<ArlEntry> cam_;
    uint32_t static_count_ = 0;
    uint32_t dynamic_count_ = 0;
    std::array<uint32_t, kPorts> port_count_{};
    uint32_t dirty_ports_ = ~0u; // ports whose count register is behind
    static_assert(kPorts <= 32, "one bit per port");

    // Register addresses and fields, from the description.
    uint32_t a_cfg_ = 0, a_mac_[4] = {}, a_sch_[4] = {}, a_state_ = 0, a_glb_cnt_ = 0, a_glb_lmt_ = 0;
    uint32_t a_lrn_cfg_ = 0, a_glb_cfg_ = 0, a_share_ = 0, a_init_en_ = 0, a_ram_sta_ = 0;
    const uint32_t *a_port_lmt_ = nullptr;
    FieldRef f_start_, f_btype_, f_baddr_, f_optype_, f_cmp_[9];
    FieldRef f_rep_sta_, f_rep_dyn_, f_grab_, f_mac0_;
    FieldRef f_ret_num_, f_fail_cause_, f_fail_ind_, f_finish_;
    FieldRef f_sta_cnt_, f_dyn_cnt_, f_dyn_lmt_, f_glb_lmt_en_, f_port_cnt_, f_port_lmt_, f_port_lmt_en_;
    FieldRef f_share_, f_ram_share_, f_hash_mode_, f_init_ok_;
    // Entry fields.
    FieldRef e_valid_, e_stati_, e_opcode_, e_learn_data_, e_vlanid_, e_mac_ip_, e_ovid_, e_lrnclass_, e_gid_;
    EntryFields ef_;
    uint32_t a_float_ = 0;
    FieldRef f_float_succ_, f_float_fail_;

    FieldRef need(const desc::Field *fields, uint32_t count, const char *name);
    uint32_t need_reg(const char *name, const desc::Register **out = nullptr);
    uint32_t reg(uint32_t addr) const;
    void set_reg(uint32_t addr, uint32_t value);

    void on_command(uint32_t cfg);
    Result run(uint32_t op, uint32_t cfg, const ArlEntry &image, uint32_t flags);

    ArlEntry *slot(Slot s);
    bool same_key(const ArlEntry &a, const ArlEntry &b) const;
    bool find(const ArlEntry &image, Slot *where);
    void buckets(const ArlEntry &image, uint32_t *b0, uint32_t *b1) const;
    bool free_slot(const ArlEntry &image, Slot *where);
    bool victim(const ArlEntry &image, Slot *where);
    bool matches(const ArlEntry &entry, const ArlEntry &image, uint32_t cfg) const;

    Result insert(const ArlEntry &image, uint32_t flags);
    Result limit_check(const ArlEntry &image) const;
    Result port_limit_check(uint32_t port) const;
    void put(ArlEntry *at, const ArlEntry &entry);
    void remove(ArlEntry *at);
    void count(const ArlEntry &entry, int delta);
    void publish_counts();
};

} // namespace tide::sim

#endif // TIDE_SIM_ARL_H
