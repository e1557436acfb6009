// The model's MAC side: the clocks, glue, PCS and MACs between the SerDes
// lanes and the packet core.
//
// The 400 MHz input clock of the MACs sits in the general registers of
// BAR 3 (outside the switch-core description, like the reset controller):
// a pulse of bit 20 of the control word restarts it, and its lock bit 21
// in the status word is set when the pulse ends, unless a knob keeps the
// clock from ever locking.
#ifndef TIDE_SIM_MAC_H
#define TIDE_SIM_MAC_H

#include <cstdint>

namespace tide::sim {

class Chip;

class MacEngine {
public:
    explicit MacEngine(Chip &chip);
    MacEngine(const MacEngine &) = delete;
    MacEngine &operator=(const MacEngine &) = delete;

    bool ok() const { return true; }
    void install();

    // The knob: the 400 MHz clock never locks.  Under the chip's mutex.
    void clock_never_lock(bool on) { clk_never_lock_ = on; }

private:
    Chip &chip_;
    bool clk_never_lock_ = false;
    bool clk_pulse_high_ = false;

    void on_clock_write(uint32_t value);
};

} // namespace tide::sim

#endif // TIDE_SIM_MAC_H
