// The model's MAC side: the 400 MHz input clock.
#include "sim/sim_mac.h"

#include "sim/sim_int.h"

namespace tide::sim {

namespace {

// General registers of BAR 3: the clock's control and status words.
constexpr uint32_t kClkCtrlAddr = 0x47030;
constexpr uint32_t kClkStatusAddr = 0x47044;
constexpr uint32_t kClkPulseBit = 1u << 20;
constexpr uint32_t kClkLockBit = 1u << 21;

} // namespace

MacEngine::MacEngine(Chip &chip) : chip_(chip) {}

void MacEngine::install()
{
    chip_.on_write(3, kClkCtrlAddr, [this](Chip &, uint32_t, uint32_t, uint64_t v) {
        on_clock_write(static_cast<uint32_t>(v));
    });
}

// A rising pulse bit restarts the clock: it loses its lock.  The falling
// edge ends the pulse, and the clock locks (unless the knob forbids it).
void MacEngine::on_clock_write(uint32_t value)
{
    uint64_t status = 0;
    chip_.load(3, kClkStatusAddr, 4, &status);
    if ((value & kClkPulseBit) != 0) {
        clk_pulse_high_ = true;
        status &= ~static_cast<uint64_t>(kClkLockBit);
    } else if (clk_pulse_high_) {
        clk_pulse_high_ = false;
        if (!clk_never_lock_) {
            status |= kClkLockBit;
        }
    }
    chip_.store(3, kClkStatusAddr, 4, status);
}

} // namespace tide::sim
