// The interrupt tree of the chip as the model loads it, generated from the
// chip description and cib/interrupts.txt into atolreef_intr_model.cc:
// every interrupt type with its registers, the nodes of the tree from the
// leaves up, the ECC rows and the events of the model's engines.
#ifndef TIDE_SIM_INTR_DESC_H
#define TIDE_SIM_INTR_DESC_H

#include <cstddef>
#include <cstdint>

namespace tide::sim::desc {

// One interrupt type: its status bits and the same bits of its mask
// register (none: always on).
struct IntrType {
    uint8_t module;
    uint8_t subid;
    uint8_t type;
    const char *status_reg;
    const char *mask_reg; // nullptr: none
    uint8_t low;
    uint8_t width;
    uint16_t instances;
};

// Kinds of node: a leaf holds its status until the CPU clears it; a node of
// the second level holds it too and is set again while one of its children
// is set and enabled; a category group is set exactly while one of its
// children is.
enum IntrNodeKind : uint8_t { kIntrLeaf = 0, kIntrSecond = 1, kIntrGroup = 2 };

// A type at one instance, in the order leaves, second level, groups: the
// node it feeds (-1 none) comes after it.  A group names its category
// (0 fatal, 1 ecc, 2 event, 3 warning).
struct IntrNode {
    uint16_t type; // index of kIntrTypes
    uint16_t instance;
    uint8_t kind;
    int16_t parent;
    int8_t category;
};

// The ECC description of a type: where the chip writes the error's type
// and index (a register instance, or a word of entry 0 of a table), its
// counts, and the memory behind it (a table by name, or a TCAM plane with
// the type's number as the block).
struct IntrEcc {
    uint16_t type;
    uint8_t kind; // 1 RAM, 2 FIFO, 3 direct, 4 hash, 5 TCAM
    const char *debug; // nullptr: none
    bool debug_is_table;
    uint16_t debug_index;
    uint8_t type_low, type_width;
    uint8_t index_low, index_width;
    uint8_t cnt0_low, cnt0_width;
    uint8_t cnt1_low, cnt1_width;
    const char *table;  // direct and hash
    int8_t tcam_plane; // 0 data, 1 care, 2 action; -1 none
};

// An event of an engine and the type it sets; a type of -1 is the TCAM
// block of the error.
struct IntrEvent {
    const char *name;
    uint8_t module;
    uint8_t subid;
    int16_t type;
};

extern const IntrType kIntrTypes[];
extern const size_t kIntrTypeCount;
extern const IntrNode kIntrNodes[];
extern const size_t kIntrNodeCount;
extern const IntrEcc kIntrEcc[];
extern const size_t kIntrEccCount;
extern const IntrEvent kIntrEvents[];
extern const size_t kIntrEventCount;

} // namespace tide::sim::desc

#endif // TIDE_SIM_INTR_DESC_H
