// Frames on the board's wires: what leaves a front port onto a SerDes
// cable, a plug or a MAC loop and enters a port of the same or another
// chip.
//
// A chip's pipeline runs under the chip's mutex and must not enter another
// chip's pipeline (two chips cabled twice would deadlock, a loop would
// recurse).  So a frame that leaves onto a wire is only put on a work list
// of the thread that runs the pipeline; the caller that started it (an
// injection, a TAP's I/O thread) delivers the list after it has let go of
// the chip's mutex, one frame at a time under its target chip's mutex,
// iteratively: a delivered frame may put more frames on the list.  Each
// frame carries the number of wires it has crossed since it was injected;
// beyond kWireHops the receiving port drops it (TIDE_SIM_CAUSE_WIRE_HOPS),
// and one delivery run ends after kWireFrames frames, dropping the rest
// alike, so a broadcast between chips cabled twice ends.
#ifndef TIDE_SIM_WIRE_H
#define TIDE_SIM_WIRE_H

#include <cstdint>

namespace tide::sim {

class SerdesFabric;

constexpr uint32_t kWireHops = 8;
constexpr uint32_t kWireFrames = 4096;

// Puts a frame on the work list of this thread: it is to enter `lport` of
// `chip`, having crossed `hops` wires.  Called under the sending chip's
// mutex.
void wire_put(uint32_t chip, uint32_t lport, uint32_t hops, const uint8_t *frame, uint32_t len);

// Delivers the work list of this thread, and what the deliveries put on
// it, until it is empty.  Called with no chip's mutex held.
void wire_deliver(SerdesFabric &fabric);

} // namespace tide::sim

#endif // TIDE_SIM_WIRE_H
