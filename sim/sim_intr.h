// The model's interrupt tree.
//
// Every interrupt type of the chip has a status bit (write one to clear)
// and, most of them, a mask bit (a set bit enables).  The tree is computed
// from the leaves up after every write that may change it: a node of the
// second level (the MAG, SerDes and MACsec sources) is set while one of
// its children is set and enabled, and stays set until the CPU clears it;
// a bit of a category register is set exactly while one of its children
// is; the top register holds a bit per category with an enabled bit set;
// and the line to the CPU is high while the top register is not zero and
// the line is opened (cib2int_lsw2gic_msk).  The line is level-sensitive:
// after the CPU enables it again, it rises again for a cause still
// pending.
//
// Causes: the knob that raises any leaf, the ECC error injection, and the
// events of the model's own engines (learning, aging, moves and full
// buckets of the MAC table; errors the TCAM scan finds).
#ifndef TIDE_SIM_INTR_H
#define TIDE_SIM_INTR_H

#include <tide/sim.h>

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "sim/sim_bits.h"
#include "sim/sim_intr_desc.h"

namespace tide::sim {

class Chip;

class IntrTree {
public:
    explicit IntrTree(Chip &chip);

    // Whether the description gave every register the tree needs.
    bool ok() const { return ok_; }
    // Write handlers on every register of the tree.
    void install();
    // The whole tree from the leaves up, and the line (power-on, reset).
    // The caller holds the chip's mutex, as for every call below.
    void update();
    // The nodes of one register after it changed, and what they feed.
    void touched(uint32_t addr);

    // Sets a type's status bits at one instance.  -4 for a type or
    // instance the chip does not have, or a type the tree computes (the
    // category registers and the top).
    int raise(uint32_t module, uint32_t subid, uint32_t type, uint32_t instance);
    // An ECC error: the details in the type's debug register, its counts
    // one higher, optionally the memory damaged, and the type raised.  -4
    // also for a type without ECC description, or an index beyond its
    // memory.
    int ecc_inject(const tide_sim_ecc_error &error);
    // An event of an engine, by its name in the description; `block` is
    // the TCAM block of a TCAM event.
    void event(const char *name, uint32_t block = 0);
    // An error the TCAM scan found: plane 0 data, 1 care, 2 action.
    void tcam_error(uint32_t plane, uint32_t block, uint32_t index, uint32_t ecc_type);

    bool line() const { return line_; }

private:
    struct Node {
        uint32_t status;
        uint32_t mask; // 0: none
        uint32_t bits;
        int32_t parent;
        uint8_t kind;
        int8_t category;
    };

    Chip &chip_;
    bool ok_ = true;
    std::vector<Node> nodes_;
    // The state the tree keeps between writes: whether a node is set and
    // enabled, how many of its children are, and how many groups of each
    // category are.
    std::vector<uint8_t> active_;
    std::vector<uint32_t> active_children_;
    uint32_t active_groups_[4] = {};
    // The nodes of each register, by status and by mask address.
    std::unordered_map<uint32_t, std::vector<uint32_t>> by_addr_;
    // Type by (module, subid, type); node by (type index, instance).
    std::unordered_map<uint32_t, uint32_t> type_of_;
    std::unordered_map<uint64_t, uint32_t> node_of_;
    uint32_t a_top_ = 0, a_top_copy_ = 0, a_ctrl_ = 0;
    FieldRef f_line_open_;
    bool line_ = false;

    // One node again from its registers and its children; a change goes
    // up to its parent and to the top.
    void refresh(uint32_t node);
    void drive_top();
    int type_index(uint32_t module, uint32_t subid, uint32_t type) const;
    uint32_t status_addr(const desc::IntrType &t, uint32_t instance) const;
    int raise_at(uint32_t type_index, uint32_t instance);
    int ecc_details(const desc::IntrEcc &ecc, uint32_t ecc_type, uint32_t index);
    int damage(const desc::IntrEcc &ecc, uint32_t index);
};

} // namespace tide::sim

#endif // TIDE_SIM_INTR_H
