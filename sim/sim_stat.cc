// The model's statistics tables: clearing pulse and the set knob.
#include "sim/sim_stat.h"

#include "sim/sim_desc.h"
#include "sim/sim_int.h"

namespace tide::sim {

namespace {

constexpr uint32_t kLswBar = 4;
constexpr uint32_t kPktBits = 36;
constexpr uint32_t kBytesBits = 44;

void _clear_all(Chip &chip)
{
    for (size_t i = 0; i < desc::kTableCount; i++) {
        const desc::Table &t = desc::kTables[i];
        if ((t.flags & kTableStatistics) == 0 || (t.flags & desc::kTableIndirect) != 0) {
            continue;
        }
        for (uint32_t k = 0; k < t.instances; k++) {
            for (uint32_t w = 0; w < t.depth * t.words; w++) {
                chip.set_core_word(t.addrs[k] + 4 * w, 0);
            }
        }
    }
}

} // namespace

void stat_install(Chip &chip)
{
    const desc::Register *clr = desc::find_register("lsw_hreg_clr_cnt");
    if (clr == nullptr || clr->instances == 0) {
        return;
    }
    chip.on_write(kLswBar, clr->addrs[0], [](Chip &c, uint32_t, uint32_t, uint64_t value) {
        if ((value & kClearStatisticsBit) != 0) {
            _clear_all(c);
        }
    });
}

int stat_set(Chip &chip, const char *table, uint32_t index, uint64_t pkts, uint64_t bytes)
{
    const desc::Table *t = desc::find_table(table);
    if (t == nullptr || (t->flags & kTableStatistics) == 0 || t->instances == 0 || t->words < 3) {
        return -7;
    }
    if (index >= t->depth) {
        return -4;
    }
    pkts &= (1ull << kPktBits) - 1;
    bytes &= (1ull << kBytesBits) - 1;
    const uint32_t base = t->addrs[0] + index * t->words * 4;
    chip.set_core_word(base, static_cast<uint32_t>(pkts));
    chip.set_core_word(base + 4, static_cast<uint32_t>(pkts >> 32) | static_cast<uint32_t>(bytes << 4));
    const uint32_t w2 = chip.core_word(base + 8) & ~0xFFFFu;
    chip.set_core_word(base + 8, w2 | static_cast<uint32_t>(bytes >> 28));
    return 0;
}

} // namespace tide::sim
