// Frames on the board's wires: the work list of a thread and its delivery.
#include "sim/sim_wire.h"

#include <deque>
#include <mutex>
#include <vector>

#include "sim/sim_int.h"
#include "sim/sim_mac.h"
#include "sim/sim_pkt.h"
#include "sim/sim_serdes.h"

namespace tide::sim {

static_assert(kWireHops == TIDE_SIM_WIRE_HOPS && kWireFrames == TIDE_SIM_WIRE_FRAMES);
static_assert(kCauseWireHops == TIDE_SIM_CAUSE_WIRE_HOPS && kCauseMacPathClear == TIDE_SIM_CAUSE_MAC_PATH_CLEAR &&
              kCauseWireNoPort == TIDE_SIM_CAUSE_WIRE_NO_PORT);

namespace {

struct WireFrame {
    uint32_t chip = 0;
    uint32_t lport = 0;
    uint32_t hops = 0;
    std::vector<uint8_t> bytes;
};

// The frames this thread's pipelines put on the wires and its caller has
// not delivered yet.
thread_local std::deque<WireFrame> g_wire;

} // namespace

void wire_put(uint32_t chip, uint32_t lport, uint32_t hops, const uint8_t *frame, uint32_t len)
{
    g_wire.push_back(WireFrame{chip, lport, hops, std::vector<uint8_t>(frame, frame + len)});
}

void wire_deliver(SerdesFabric &fabric)
{
    uint32_t delivered = 0;
    while (!g_wire.empty()) {
        WireFrame w = std::move(g_wire.front());
        g_wire.pop_front();
        Chip *c = fabric.chip(w.chip);
        if (c == nullptr) {
            continue; // the chip is gone with its board
        }
        // Past the run's budget the frame arrives as one past its hops.
        const uint32_t hops = ++delivered > kWireFrames ? kWireHops + 1 : w.hops;
        std::lock_guard<std::mutex> lock(c->mutex);
        c->pkt->inject(w.lport, w.bytes.data(), static_cast<uint32_t>(w.bytes.size()), hops);
    }
}

} // namespace tide::sim
