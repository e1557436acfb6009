// The model's diagnostics of the MAC side: the recovered-clock check of
// each MAG and the frame counters along the path of each front port.
//
// The clock check compares, over the window that pcs_glb_clk_chk_cfg0/1
// set, the lane's recovered receive clock (and its transmit clock) with the
// local one.  It runs on a MAG once its cycle count is set.  A lane with a
// signal and a clean clock measures the drift a knob gives it (0 by
// default); a lane with nothing arriving measures the whole window
// (kNoClock, sign 1).  A measure beyond clk_sds_*_cfg_delta raises
// rx_clk_lost_int or tx_clk_lost_int of pcs_glb_int_stat (once, when it
// goes beyond), and with clk_sds_*_err_down_en it holds the MAG's links
// down (TIDE_SIM_MAC_DOWN_CLK_LOST).  The measure is taken again whenever
// the MAC engine recomputes its ports and before a read of the result.
//
// The alarm words of the three PCS codings of a MAG follow the same lane:
// while something arrives, 8B/10B has its comma detection and check in
// ACK4, 64B/66B its search in INF LOCK, 4B/5B its receiver in RX_IDLE, and
// no alarm; while nothing does, LOSS, OOF UNLOCK with LOCAL_FAULT and
// BLOCK_UNSYN, RX_ERR, each with SDS_DOWN.
//
// The path counters count the start (SOP) and end (EOP) of each frame at
// each block it passes, in 16 bits that wrap: receive PCS, glue, MAC,
// map from MACsec, map to the core; transmit map from the core, map to
// MACsec, MAC, glue, PCS.  A frame with a bad FCS stops at the MAC's error
// counter, one the MAC gate refuses counts in its drop counter only.  The
// counters of a port (all but the PCS's) are zeroed and held at 0 while
// its bit of mag_map_port_clr is set; the PCS's, by MAC, while the MAC's bit
// of rx_cnt_clr or tx_cnt_clr of pcs_glb_ch_cnt_clr is.  A read does not
// clear them.
#ifndef TIDE_SIM_MAC_DIAG_H
#define TIDE_SIM_MAC_DIAG_H

#include <tide/sim.h>

#include <array>
#include <cstdint>

#include "sim/sim_mac.h"

namespace tide::sim {

class MacDiag {
public:
    explicit MacDiag(MacEngine &mac);
    MacDiag(const MacDiag &) = delete;
    MacDiag &operator=(const MacDiag &) = delete;

    void install();
    // Power-on state: counters and alarm edges (the knob's drift stays).
    void clear();

    // A frame `lport` took in (dir 0, `good` false for a bad FCS) or sent
    // (dir 1); a frame the MAC gate refused.
    void frame(uint32_t lport, uint32_t dir, bool good);
    void drop(uint32_t lport, uint32_t dir);

    // The knob: the drift of a MAG's lane clocks.  -4 out of range.
    int drift(uint32_t mag, uint32_t rx_sign, uint32_t rx_delta, uint32_t tx_sign, uint32_t tx_delta);
    // Whether the clock check holds the MAG's links down.
    bool clk_down(uint32_t mag) const;
    // Takes the measure of every MAG: result words and alarm edges.
    void evaluate();

    // What the check measures when nothing arrives: the whole window.
    static constexpr uint32_t kNoClock = 0xFFFF;

private:
    struct Measure {
        uint32_t sign = 0;
        uint32_t delta = 0;
        bool lost = false;
    };
    struct Drift {
        uint32_t sign[2] = {};
        uint32_t delta[2] = {};
    };
    // A counter register: its SOP and EOP fields, and whether it is
    // indexed by the MAC of a MAG (mag * 8 + mac) rather than by lport.
    struct Stage {
        MacEngine::Fld sop, eop;
        bool by_channel = false;
    };
    enum StageId : uint32_t {
        kPcsRx, kGlueRx, kMacRxOut, kMapRxSec, kMapRxMac,
        kMapTxMac, kMapTxSec, kMacTxIn, kGlueTx, kPcsTx, kStages
    };

    MacEngine &mac_;
    std::array<Stage, kStages> stages_{};
    MacEngine::Fld err_[2], drop_[2];
    MacEngine::Fld port_clr_, cnt_clr_[2];
    MacEngine::Fld num_[2], allow_[2], down_en_[2], sign_[2], delta_[2];
    MacEngine::Event lost_ev_[2];
    // The alarm words: 8B/10B comma detection and check, 64B/66B search,
    // 4B/5B receiver; their lane alarms.
    MacEngine::Fld comma_det_, comma_chk_, sds_down_8b10b_, am_oh_sch_, local_fault_, block_unsyn_, sds_down_6466b_,
        rx_fsm_, sds_down_4b5b_;
    std::array<Drift, kMags> drift_{};
    std::array<std::array<bool, 2>, kMags> lost_was_{};

    Measure measure(uint32_t mag, uint32_t dir) const;
    void alarms(uint32_t mag);
    bool held(const Stage &st, uint32_t lport, uint32_t dir, uint32_t *instance) const;
    void bump(const MacEngine::Fld &f, uint32_t instance);
    void count(uint32_t first, uint32_t last, uint32_t lport, uint32_t dir);
    void on_port_clr();
    void on_cnt_clr(uint32_t mag);
};

} // namespace tide::sim

#endif // TIDE_SIM_MAC_DIAG_H
