// The model's replication engine (MCC): how the chip follows a replication
// id through its root in mcc_mrt, the chain of leaves in mcc_mlib and the
// egress edit of each leaf in epro_elb_table.
//
// The walk reads the tables as they stand, with no knowledge of who wrote
// them: from the root's first leaf, for rep_num leaves, one copy per leaf
// reached.  It stops early at a leaf that is not valid, after a leaf that
// has no successor, or at a leaf it has seen before; the end says which.
#ifndef TIDE_SIM_MCC_H
#define TIDE_SIM_MCC_H

#include <tide/sim.h>

#include <cstdint>
#include <vector>

#include "sim/sim_bits.h"

namespace tide::sim {

class Chip;

class MccEngine {
public:
    static constexpr uint32_t kElbWords = 4;
    static constexpr uint32_t kLeaves = 2048;

    // One copy: its leaf and the leaf's egress edit, as words of the entry.
    struct Copy {
        uint32_t leaf = 0;
        uint32_t elb[kElbWords] = {};
    };

    // The fields of a root, a leaf and an edit that the chip reads.
    struct RootFields {
        FieldRef vld, stat_en, first, rep_num;
    };
    struct LeafFields {
        FieldRef vld, next_vld, next;
    };
    struct ElbFields {
        FieldRef valid, vlanprichg, vlanupdate, tagnum, prunedisable, ovlan, ivlan, oport, elbtype, stack;
    };

    explicit MccEngine(Chip &chip);

    bool ok() const { return needs_.ok; }
    // Roots of the chip.
    uint32_t roots() const { return mrt_depth_; }

    // Follows root `mrt` (below roots()) and returns how the walk ended
    // (TIDE_SIM_MCC_*); `out` gets the copies made.
    uint32_t walk(uint32_t mrt, std::vector<Copy> *out) const;
    // Whether the root counts its frames (stat_en).
    bool counts(uint32_t mrt) const;
    // The chip's own module id, the high part of a port's key.
    uint32_t mymod() const;

    const ElbFields &elb() const { return elb_; }

private:
    Chip &chip_;
    DescNeeds needs_;
    uint32_t mrt_addr_ = 0, mrt_words_ = 0, mrt_depth_ = 0;
    uint32_t mlib_addr_ = 0, mlib_words_ = 0, mlib_depth_ = 0;
    uint32_t elb_addr_ = 0, elb_words_ = 0;
    uint32_t mymod_addr_ = 0;
    FieldRef mymod_;
    RootFields root_;
    LeafFields leaf_;
    ElbFields elb_;

    void entry(uint32_t addr, uint32_t words, uint32_t index, uint32_t *out) const;
};

} // namespace tide::sim

#endif // TIDE_SIM_MCC_H
