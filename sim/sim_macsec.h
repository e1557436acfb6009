// The model's MACsec engine: the init-done bits of both sides, the clearing
// of the MIB rows, and the encrypt side's packet numbers, advanced per
// protected frame by a knob (no cipher runs), with the PN-expire and
// SA-expire interrupts at their thresholds.
#ifndef TIDE_SIM_MACSEC_H
#define TIDE_SIM_MACSEC_H

#include <cstdint>

namespace tide::sim {

class Chip;

// The init-done bits after a reset of the switch core: set at once, unless
// the knob stalls the start.
void macsec_reset(Chip &chip);
// The read handlers of the init registers and the write handlers of the
// MIB clearing registers.
void macsec_install(Chip &chip);
// The encrypt side protects `frames` frames of `bytes` bytes for SC `sc`
// on port `port`; `done` gets how many it protected.  Called with the
// chip's mutex held.  -4 for an index beyond the tables, -7 for an SC or
// its encoding SA not valid.
int macsec_tx(Chip &chip, uint32_t port, uint32_t sc, uint32_t frames, uint32_t bytes, uint32_t *done);

} // namespace tide::sim

#endif // TIDE_SIM_MACSEC_H
