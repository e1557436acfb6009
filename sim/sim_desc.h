// The chip's geometry as the model loads it from the chip description:
// where each register and table lies and how each bit of it answers the
// CPU.  Generated into atolreef_model_desc.cc.
#ifndef TIDE_SIM_DESC_H
#define TIDE_SIM_DESC_H

#include <cstddef>
#include <cstdint>

namespace tide::sim::desc {

// Bit masks of one register or one table entry, per 32-bit word, in five
// runs of `words` words: writable, read-only, cleared by a read, cleared by
// writing ones, and the reset value.
struct Register {
    const char *name;
    uint32_t id;
    const uint32_t *addrs; // one per instance
    uint32_t instances;
    const uint32_t *masks; // 5 words
    bool complement;       // reads return the complement of what was written
};

struct Table {
    const char *name;
    uint32_t id;
    const uint32_t *addrs; // base address per instance
    uint32_t instances;
    uint32_t depth;
    uint32_t words; // 32-bit words per entry
    uint32_t flags; // 4: indirect, not reachable by address
    const uint32_t *masks; // 5 * words words
};

extern const Register kRegisters[];
extern const size_t kRegisterCount;
extern const Table kTables[];
extern const size_t kTableCount;

constexpr uint32_t kTableIndirect = 4;

} // namespace tide::sim::desc

#endif // TIDE_SIM_DESC_H
