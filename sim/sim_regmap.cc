#include "sim/sim_regmap.h"

#include <algorithm>

namespace tide::sim {

const RegMap &RegMap::get()
{
    static const RegMap map;
    return map;
}

RegMap::RegMap()
{
    for (size_t i = 0; i < desc::kRegisterCount; i++) {
        const desc::Register &r = desc::kRegisters[i];
        for (uint32_t k = 0; k < r.instances; k++) {
            ranges_.push_back(Range{r.addrs[k], r.addrs[k] + 4, &r, nullptr, nullptr, r.addrs[k]});
        }
    }
    for (size_t i = 0; i < desc::kTableCount; i++) {
        const desc::Table &t = desc::kTables[i];
        const bool indirect = (t.flags & desc::kTableIndirect) != 0;
        // A table reached through its engine holds one word of room at its
        // address: nothing of it answers the CPU there.
        const uint32_t span = indirect ? 4 : t.depth * t.words * 4;
        for (uint32_t k = 0; k < t.instances; k++) {
            ranges_.push_back(Range{t.addrs[k], t.addrs[k] + span, nullptr, &t, nullptr, t.addrs[k]});
        }
    }
    // The words of the SerDes macros, every lane of every macro.
    for (size_t i = 0; i < desc::kSerdesWordCount; i++) {
        const desc::SerdesWord &w = desc::kSerdesWords[i];
        for (uint32_t m = 0; m < desc::kSerdesMacros; m++) {
            for (uint32_t lane = 0; lane < (w.per_lane ? desc::kSerdesLanes : 1); lane++) {
                const uint32_t a = desc::kSerdesBases[m] + (w.offset | lane << desc::kSerdesLaneShift);
                ranges_.push_back(Range{a, a + 4, nullptr, nullptr, &w, a});
            }
        }
    }
    std::sort(ranges_.begin(), ranges_.end(), [](const Range &a, const Range &b) { return a.start < b.start; });
}

WordRule RegMap::rule_in(const Range &r, uint32_t addr) const
{
    WordRule w;
    w.described = true;
    const uint32_t *m = nullptr;
    uint32_t words = 1, word = 0;
    if (r.sds != nullptr) {
        // Every bit of a SerDes word stores what is written but those the
        // macro drives.
        w.rw = ~r.sds->ro;
        w.reset = r.sds->reset;
        return w;
    }
    if (r.reg != nullptr) {
        m = r.reg->masks;
        w.complement = r.reg->complement;
    } else {
        m = r.tab->masks;
        words = r.tab->words;
        word = ((addr - r.base) / 4) % words;
        w.unreachable = (r.tab->flags & desc::kTableIndirect) != 0;
    }
    w.rw = m[word];
    w.rc = m[2 * words + word];
    w.w1c = m[3 * words + word];
    w.reset = m[4 * words + word];
    return w;
}

WordRule RegMap::rule(uint32_t addr) const
{
    auto it = std::upper_bound(ranges_.begin(), ranges_.end(), addr,
                               [](uint32_t a, const Range &r) { return a < r.start; });
    if (it == ranges_.begin()) {
        return WordRule{};
    }
    --it;
    if (addr >= it->end) {
        return WordRule{};
    }
    return rule_in(*it, addr & ~3u);
}

} // namespace tide::sim
