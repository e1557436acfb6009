// Lookups in the chip description by name.
#include <cstring>

#include "sim/sim_desc.h"

namespace tide::sim::desc {

const Register *find_register(const char *name)
{
    for (size_t i = 0; i < kRegisterCount; i++) {
        if (strcmp(kRegisters[i].name, name) == 0) {
            return &kRegisters[i];
        }
    }
    return nullptr;
}

const Table *find_table(const char *name)
{
    for (size_t i = 0; i < kTableCount; i++) {
        if (strcmp(kTables[i].name, name) == 0) {
            return &kTables[i];
        }
    }
    return nullptr;
}

const SerdesWord *find_serdes_word(const char *name)
{
    for (size_t i = 0; i < kSerdesWordCount; i++) {
        if (strcmp(kSerdesWords[i].name, name) == 0) {
            return &kSerdesWords[i];
        }
    }
    return nullptr;
}

const Field *find_field(const Field *fields, uint32_t count, const char *name)
{
    for (uint32_t i = 0; i < count; i++) {
        if (strcmp(fields[i].name, name) == 0) {
            return &fields[i];
        }
    }
    return nullptr;
}

} // namespace tide::sim::desc
