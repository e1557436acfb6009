// How each word of the switch-core aperture answers the CPU, from the chip
// description: a sorted list of the ranges of registers and table entries.
#ifndef TIDE_SIM_REGMAP_H
#define TIDE_SIM_REGMAP_H

#include <cstdint>
#include <vector>

#include "sim/sim_desc.h"

namespace tide::sim {

// The behaviour of one 32-bit word.
struct WordRule {
    uint32_t rw = 0xFFFFFFFF; // bits a CPU write stores
    uint32_t rc = 0;          // bits a CPU read clears
    uint32_t w1c = 0;         // bits a CPU write of one clears
    uint32_t reset = 0;
    bool complement = false;  // a read returns the complement of what is stored
    bool unreachable = false; // a table reached through its engine only
    bool described = false;   // false: a plain word of memory
};

class RegMap {
public:
    // The map of the chip description, built once.
    static const RegMap &get();

    WordRule rule(uint32_t addr) const;

    // Calls fn(addr, reset) for every described word whose reset value is
    // not zero.
    template <typename Fn>
    void for_each_reset(Fn fn) const
    {
        for (const Range &r : ranges_) {
            for (uint32_t a = r.start; a < r.end; a += 4) {
                const WordRule w = rule_in(r, a);
                if (w.reset != 0) {
                    fn(a, w.reset);
                }
            }
        }
    }

private:
    struct Range {
        uint32_t start;
        uint32_t end;
        const desc::Register *reg;
        const desc::Table *tab;
        const desc::SerdesWord *sds;
        uint32_t base; // the instance's base address
    };
    std::vector<Range> ranges_;

    RegMap();
    WordRule rule_in(const Range &r, uint32_t addr) const;
};

} // namespace tide::sim

#endif // TIDE_SIM_REGMAP_H
