// Bit fields of the model's own words and entries: a field is (low, width)
// over an array of 32-bit words, word 0 holding bits 31..0.
#ifndef TIDE_SIM_BITS_H
#define TIDE_SIM_BITS_H

#include <cstdint>

#include "sim/sim_desc.h"

namespace tide::sim {

// A field found in the description; a missing name is a broken build of
// the model, caught by the model's own start-up check.
struct FieldRef {
    uint32_t low = 0;
    uint32_t width = 0;
    bool ok() const { return width != 0; }
};

inline FieldRef field_of(const desc::Field *fields, uint32_t count, const char *name)
{
    const desc::Field *f = desc::find_field(fields, count, name);
    return f != nullptr ? FieldRef{f->low, f->width} : FieldRef{};
}

// The registers and fields an engine looks up in the description; `ok`
// turns false at the first one that is missing.
struct DescNeeds {
    bool ok = true;

    // The first address of a register, or 0; `out` gets the register.
    uint32_t reg(const char *name, const desc::Register **out = nullptr)
    {
        const desc::Register *r = desc::find_register(name);
        if (out != nullptr) {
            *out = r;
        }
        ok &= r != nullptr && r->instances > 0;
        return r != nullptr && r->instances > 0 ? r->addrs[0] : 0;
    }
    FieldRef field(const desc::Field *fields, uint32_t count, const char *name)
    {
        const FieldRef f = field_of(fields, count, name);
        ok &= f.ok();
        return f;
    }
    // A field of a register found by reg().
    FieldRef field(const desc::Register *r, const char *name)
    {
        ok &= r != nullptr;
        return r != nullptr ? field(r->fields, r->field_count, name) : FieldRef{};
    }
    // A register of one field: its address and the field.
    uint32_t reg_field(const char *name, const char *field_name, FieldRef *f)
    {
        const desc::Register *r = nullptr;
        const uint32_t addr = reg(name, &r);
        *f = field(r, field_name);
        return addr;
    }
};

inline uint64_t width_mask(uint32_t width)
{
    return width >= 64 ? ~0ull : (1ull << width) - 1;
}

// A field of up to 64 bits; only the words it covers are touched.
inline uint64_t bits_get(const uint32_t *words, FieldRef f)
{
    const uint32_t first = f.low / 32, shift = f.low % 32;
    const uint32_t count = (shift + f.width + 31) / 32;
    unsigned __int128 acc = 0;
    for (uint32_t i = 0; i < count; i++) {
        acc |= static_cast<unsigned __int128>(words[first + i]) << (32 * i);
    }
    return static_cast<uint64_t>(acc >> shift) & width_mask(f.width);
}

inline void bits_set(uint32_t *words, FieldRef f, uint64_t v)
{
    const uint32_t first = f.low / 32, shift = f.low % 32;
    const uint32_t count = (shift + f.width + 31) / 32;
    const unsigned __int128 mask = static_cast<unsigned __int128>(width_mask(f.width)) << shift;
    const unsigned __int128 val = static_cast<unsigned __int128>(v & width_mask(f.width)) << shift;
    for (uint32_t i = 0; i < count; i++) {
        const uint32_t m = static_cast<uint32_t>(mask >> (32 * i));
        words[first + i] = (words[first + i] & ~m) | (static_cast<uint32_t>(val >> (32 * i)) & m);
    }
}

inline uint32_t word_get(uint32_t word, FieldRef f)
{
    return bits_get(&word, f) & 0xFFFFFFFFu;
}

inline uint32_t word_set(uint32_t word, FieldRef f, uint32_t v)
{
    bits_set(&word, f, v);
    return word;
}

} // namespace tide::sim

#endif // TIDE_SIM_BITS_H
