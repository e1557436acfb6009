// The model's statistics tables: the clearing pulse of the chip's counters
// and the knob that sets an entry.  The packet path counts into them
// (sim_pkt.cc, sim_qos.cc); every statistics entry holds its packets in
// bits 35:0 and its bytes in bits 79:36, and wraps at those widths; a
// two-word entry (pa_stat) holds packets only.  Entries lie at the stride
// of the description's entry.
#ifndef TIDE_SIM_STAT_H
#define TIDE_SIM_STAT_H

#include <cstdint>

namespace tide::sim {

class Chip;

// Tables of the description marked as statistics.
constexpr uint32_t kTableStatistics = 16;
// The bit of lsw_hreg_clr_cnt that clears every statistics table.
constexpr uint32_t kClearStatisticsBit = 1u << 1;

// The write handler of lsw_hreg_clr_cnt and the read handlers of the
// statistics tables (the read latch).
void stat_install(Chip &chip);
// The read latch: a CPU read of the first word of an entry latches the
// entry, and until its last word has been read the chip's counting into it
// waits aside, so that the words of one reading belong together.  Called by
// the counting of the packet path for the entry at `base`: true when the
// count (one packet of `bytes`) waits aside.  With the chip's mutex held.
bool stat_latched(Chip &chip, uint32_t base, uint32_t bytes);
// Entry `index` of statistics table `table` (by its description name) to
// the given counts, cut to their widths; -7 for no such table, -4 for an
// index beyond it.  Called with the chip's mutex held.
int stat_set(Chip &chip, const char *table, uint32_t index, uint64_t pkts, uint64_t bytes);

} // namespace tide::sim

#endif // TIDE_SIM_STAT_H
