// The model's statistics tables: clearing pulse, read latch and the set knob.
#include "sim/sim_stat.h"

#include "sim/sim_desc.h"
#include "sim/sim_int.h"

namespace tide::sim {

namespace {

constexpr uint32_t kLswBar = 4;
constexpr uint32_t kPktBits = 36;
constexpr uint32_t kBytesBits = 44;

// The latched entry of a chip and what was counted into it meanwhile.
struct Latch {
    uint32_t base = 0;
    uint32_t words = 0;
    bool active = false;
    bool releasing = false; // its last word is being read
    uint64_t pkts = 0;
    uint64_t bytes = 0;
};
Latch g_latch[kMaxChips];

// The counts of the entry at `base` (of `words` words) become `pkts` and
// `bytes`, cut to their widths.  A two-word entry holds packets only.
void _write(Chip &chip, uint32_t base, uint32_t words, uint64_t pkts, uint64_t bytes)
{
    pkts &= (1ull << kPktBits) - 1;
    bytes &= (1ull << kBytesBits) - 1;
    const uint32_t w1 = words >= 3 ? static_cast<uint32_t>(bytes << 4) : chip.core_word(base + 4) & ~0xFu;
    chip.set_core_word(base, static_cast<uint32_t>(pkts));
    chip.set_core_word(base + 4, static_cast<uint32_t>(pkts >> 32) | w1);
    if (words >= 3) {
        const uint32_t w2 = chip.core_word(base + 8) & ~0xFFFFu;
        chip.set_core_word(base + 8, w2 | static_cast<uint32_t>(bytes >> 28));
    }
}

// Adds to the counts of the entry at `base`, wrapping at their widths.
void _add(Chip &chip, uint32_t base, uint32_t words, uint64_t pkts, uint64_t bytes)
{
    const uint32_t w0 = chip.core_word(base), w1 = chip.core_word(base + 4);
    const uint32_t w2 = words >= 3 ? chip.core_word(base + 8) : 0;
    _write(chip, base, words, (w0 | static_cast<uint64_t>(w1 & 0xF) << 32) + pkts,
           (w1 >> 4 | static_cast<uint64_t>(w2 & 0xFFFF) << 28) + bytes);
}

// The counts that waited aside go in; the latch is free.
void _release(Chip &chip)
{
    Latch &l = g_latch[chip.id() % kMaxChips];
    if (l.active && (l.pkts != 0 || l.bytes != 0)) {
        _add(chip, l.base, l.words, l.pkts, l.bytes);
    }
    l = Latch{};
}

// Before a CPU read of word `word` of the entry at `base` (of `words`).
void _on_read(Chip &chip, uint32_t base, uint32_t word, uint32_t words)
{
    Latch &l = g_latch[chip.id() % kMaxChips];
    if (l.releasing || (word == 0 && l.active)) {
        _release(chip);
    }
    if (word == 0) {
        l.active = true;
        l.base = base;
        l.words = words;
    }
    if (l.active && l.base == base && word + 1 == words) {
        l.releasing = true;
    }
}

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
    g_latch[chip.id() % kMaxChips] = Latch{};
    chip.on_write(kLswBar, clr->addrs[0], [](Chip &c, uint32_t, uint32_t, uint64_t value) {
        if ((value & kClearStatisticsBit) != 0) {
            _release(c);
            _clear_all(c);
        }
    });
    for (size_t i = 0; i < desc::kTableCount; i++) {
        const desc::Table &t = desc::kTables[i];
        if ((t.flags & kTableStatistics) == 0 || (t.flags & desc::kTableIndirect) != 0 || t.words < 2) {
            continue;
        }
        for (uint32_t k = 0; k < t.instances; k++) {
            const uint32_t first = t.addrs[k], words = t.words;
            chip.on_read_range(kLswBar, first, first + t.depth * words * 4, [first, words](Chip &c, uint32_t, uint32_t addr) {
                const uint32_t word = (addr - first) / 4;
                _on_read(c, first + (word - word % words) * 4, word % words, words);
            });
        }
    }
}

bool stat_latched(Chip &chip, uint32_t base, uint32_t bytes)
{
    Latch &l = g_latch[chip.id() % kMaxChips];
    if (l.releasing) {
        _release(chip);
    }
    if (!l.active || l.base != base) {
        return false;
    }
    l.pkts++;
    l.bytes += bytes;
    return true;
}

int stat_set(Chip &chip, const char *table, uint32_t index, uint64_t pkts, uint64_t bytes)
{
    const desc::Table *t = desc::find_table(table);
    if (t == nullptr || (t->flags & kTableStatistics) == 0 || t->instances == 0 || t->words < 2) {
        return -7;
    }
    if (index >= t->depth) {
        return -4;
    }
    _release(chip);
    _write(chip, t->addrs[0] + index * t->words * 4, t->words, pkts, bytes);
    return 0;
}

} // namespace tide::sim
