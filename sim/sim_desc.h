// The chip's geometry as the model loads it from the chip description:
// where each register and table lies and how each bit of it answers the
// CPU.  Generated into atolreef_model_desc.cc.
#ifndef TIDE_SIM_DESC_H
#define TIDE_SIM_DESC_H

#include <cstddef>
#include <cstdint>

namespace tide::sim::desc {

// A field: its place in the register or entry.
struct Field {
    const char *name;
    uint32_t low;
    uint32_t width;
};

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
    const Field *fields;
    uint32_t field_count;
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
    const Field *fields;
    uint32_t field_count;
};

extern const Register kRegisters[];
extern const size_t kRegisterCount;
extern const Table kTables[];
extern const size_t kTableCount;

constexpr uint32_t kTableIndirect = 4;

// A word of the SerDes macros: a named register of the macro's catalogue or
// a register known by its offset only.  Lane words repeat for every lane at
// offset | lane << kSerdesLaneShift.  The CPU writes every bit but `ro`,
// which the macro drives.
struct SerdesWord {
    const char *name;
    uint32_t offset;
    bool per_lane;
    bool named;
    uint32_t ro;
    uint32_t reset;
    const Field *fields;
    uint32_t field_count;
};

extern const uint32_t kSerdesBases[];
extern const uint32_t kSerdesMacros;
extern const uint32_t kSerdesMacroSize;
extern const uint32_t kSerdesLanes;
extern const uint32_t kSerdesLaneShift;
// The place of each serdes_id: macro * kSerdesLanes + lane.
extern const uint8_t kSerdesLaneOrder[];
extern const SerdesWord kSerdesWords[];
extern const size_t kSerdesWordCount;

// Lookups by name, for the engines of the model; NULL when the description
// has no such name.
const Register *find_register(const char *name);
const Table *find_table(const char *name);
const Field *find_field(const Field *fields, uint32_t count, const char *name);
const SerdesWord *find_serdes_word(const char *name);

} // namespace tide::sim::desc

#endif // TIDE_SIM_DESC_H
