// The model's SerDes lanes.
//
// Each chip has two macros of four lanes in the switch-core space, laid
// out by the SerDes description (cib/serdes).  The engine of a chip reads
// the lanes' control registers after every write into a macro (or into
// the macros' reset and idle registers of phy_ctrl) and publishes what
// they amount to: powered, rate, polarity, loops, PRBS generator and
// checker.  The fabric, one per model, holds those facts of every lane of
// every chip together with the cables between lanes, and answers what a
// receiver sees: its clock recovery locks when a signal of its rate
// arrives, its PRBS checker locks when the pattern is its own and arrives
// upright, and counts the errors the sending generator injects.  The
// status words (lock, checker, PLL lock, loss of signal, ready) are
// answered when the CPU reads them.
//
// Locks: a chip's engine runs under the chip's mutex and takes the
// fabric's mutex inside it; the fabric never takes a chip's mutex.
#ifndef TIDE_SIM_SERDES_H
#define TIDE_SIM_SERDES_H

#include <array>
#include <cstdint>
#include <mutex>
#include <vector>

#include "sim/sim_bits.h"

namespace tide::sim {

class Chip;

constexpr uint32_t kSerdesLanesPerChip = 8;
constexpr uint32_t kSerdesChips = 4;

// A lane's rate: the reference clock times num / den, exactly.
struct LaneRate {
    unsigned __int128 num = 0;
    unsigned __int128 den = 0;
    bool valid() const { return den != 0 && num != 0; }
    bool operator==(const LaneRate &o) const { return valid() && o.valid() && num * o.den == o.num * den; }
    uint64_t bps() const { return valid() ? static_cast<uint64_t>(num / den) : 0; }
};

// What a lane's registers amount to.
struct LaneFacts {
    bool tx_on = false;   // macro out of reset, PLL running, transmitter powered, out of reset, not idle
    bool rx_on = false;   // macro out of reset, PLL running, receiver powered
    LaneRate rate;
    bool tx_inverted = false;
    bool rx_inverted = false;
    bool near_loop = false; // the transmitter drives the lane's own receiver (serial or parallel)
    bool far_loop = false;  // what the receiver recovers is sent out again (serial or parallel)
    bool gen_on = false;    // the PRBS generator drives the transmitter
    uint32_t gen_mode = 0;  // prbs_mode_cfg
    uint64_t gen_pattern = 0;
    bool chk_on = false;    // the PRBS checker runs
    uint32_t chk_mode = 0;
    uint64_t chk_pattern = 0;
};

// A signal on a wire: who makes it and how.
struct Signal {
    bool present = false;
    LaneRate rate;
    bool inverted = false;
    int generator = -1; // the lane whose PRBS generator makes it (chip * 8 + serdes_id), -1 for traffic
    uint32_t mode = 0;
    uint64_t pattern = 0;
};

// What a lane's PCS sends toward the far end, as the MAC stage of its chip
// publishes it: running with a protocol, the channels that send idles, and
// for each channel whether it negotiates and what it advertises.
struct PcsTx {
    bool on = false;
    uint32_t protocol = 0;
    uint32_t sending = 0; // bit per channel
    uint32_t an = 0;      // bit per channel
    std::array<uint16_t, 8> adv{};
    // The lport of each channel that has one (bit in `placed`), where a
    // frame sent over the lane enters; and the fault each channel sends
    // (0 none, else 1 + fault_ins_type: 1 local fault, 2 remote fault,
    // 3 link interruption).
    uint32_t placed = 0;
    std::array<uint8_t, 8> lport{};
    std::array<uint8_t, 8> fault{};
};

class SerdesFabric {
public:
    enum class Link : uint8_t { none, cable, plug };

    // A lane's published facts; the checker restarts when it is switched
    // on.
    void publish(uint32_t chip, uint32_t serdes_id, const LaneFacts &facts);
    // All lanes of a chip back to nothing (power-on, hard reset, removal).
    void forget(uint32_t chip);

    // The cables.  -4 for a lane beyond the model or a cable to itself, -8
    // for a lane that has one, -7 for none to take out.
    int link(uint32_t chip_a, uint32_t sid_a, uint32_t chip_b, uint32_t sid_b);
    int plug(uint32_t chip, uint32_t sid);
    int unlink(uint32_t chip, uint32_t sid);
    void faults_set(uint32_t chip, uint32_t sid, uint32_t faults);

    // The receiver's view.
    bool cdr_locked(uint32_t chip, uint32_t sid);
    bool prbs_locked(uint32_t chip, uint32_t sid);
    uint32_t prbs_errors(uint32_t chip, uint32_t sid);
    bool signal_present(uint32_t chip, uint32_t sid);
    uint32_t faults(uint32_t chip, uint32_t sid);
    // One bit error from the lane's generator: every checker locked on its
    // pattern counts it.
    void inject_error(uint32_t chip, uint32_t sid);

    struct LaneView {
        LaneFacts facts;
        Link link = Link::none;
        uint32_t peer = 0; // chip * 8 + serdes_id of the cable's other end
        bool cdr_locked = false;
        bool prbs_locked = false;
        uint32_t prbs_errors = 0;
    };
    LaneView view(uint32_t chip, uint32_t sid);

    // The PCS side of a lane: what it sends, and what arrives at its
    // receiver (its own with a plug, the far end's with a cable, nothing
    // otherwise).
    void pcs_publish(uint32_t chip, uint32_t sid, const PcsTx &tx);
    PcsTx pcs_arriving(uint32_t chip, uint32_t sid);
    // What a lane is connected to, in one look: the link, and for a cable
    // or plug the far lane (chip * 8 + serdes_id) and what its PCS sends.
    Link far_end(uint32_t chip, uint32_t sid, uint32_t *peer, PcsTx *pcs);

    // The chips on the board, by id, for the frames that cross its cables
    // (sim_wire.h); a chip attaches itself while it exists.
    void attach(uint32_t chip, Chip *c);
    Chip *chip(uint32_t id);

private:
    struct Lane {
        PcsTx pcs;
        LaneFacts facts;
        Link link = Link::none;
        uint32_t peer = 0;
        uint32_t faults = 0;
        uint32_t errors = 0;
    };
    std::mutex mutex_;
    std::array<Lane, kSerdesChips * kSerdesLanesPerChip> lanes_{};
    std::array<Chip *, kSerdesChips> chips_{};

    static bool valid(uint32_t chip, uint32_t sid) { return chip < kSerdesChips && sid < kSerdesLanesPerChip; }
    static uint32_t key(uint32_t chip, uint32_t sid) { return chip * kSerdesLanesPerChip + sid; }
    // Under the mutex.
    Signal own_tx(uint32_t k) const;
    Signal tx_out(uint32_t k, int depth) const;
    Signal line_in(uint32_t k, int depth) const;
    Signal rx_in(uint32_t k) const;
    bool cdr_locked_locked(uint32_t k) const;
    bool prbs_locked_locked(uint32_t k) const;
};

class SerdesEngine {
public:
    SerdesEngine(Chip &chip, SerdesFabric *fabric);

    // Whether the descriptions gave every word and field the engine needs.
    bool ok() const { return needs_ok_; }
    // Write and read handlers of the macros.
    void install();
    // Power-on state of the lanes (and after a hard reset of the core).
    void clear();

private:
    // A field of a SerDes word: its offset, whether it repeats per lane.
    struct Fld {
        uint32_t offset = 0;
        bool per_lane = false;
        FieldRef f;
    };

    Chip &chip_;
    SerdesFabric *fabric_;
    bool needs_ok_ = true;
    std::array<uint32_t, kSerdesLanesPerChip> cal_round_{};
    // By offset within a lane's space (in words): the word holds a field of
    // the lanes' facts.
    std::vector<bool> fact_word_;

    Fld f_pll_fbdiv_[2], f_pll_frac_[2], f_pll_refdiv_[2], f_pll_postdiv_[2], f_pll_pd_en_[2], f_pll_pd_val_[2];
    Fld f_pll_lock_[2];
    Fld f_lane_sel_[2], f_lane_div_[2];
    Fld f_route_, f_route_ext_;
    Fld f_pd_tx_, f_pd_tx_val_, f_pd_rx_, f_pd_rx_val_, f_tx_rst_ctrl_, f_tx_rst_val_;
    Fld f_tx_pol_, f_rx_pol_;
    Fld f_near_rx_, f_near_tx_, f_near_mode_, f_far_, f_sr_rx2tx_, f_sr_rx2tx_clk_, f_tx_pcs_, f_tx_sync_, f_pr_tx2rx_;
    Fld f_mode_, f_gen_sel_ctrl_, f_gen_sel_val_, f_gen_en_, f_gen_rstn_, f_pat_[3];
    Fld f_chk_ctrl_, f_chk_val_, f_err_inj_;
    Fld f_bist_lock_, f_bist_errors_, f_cdr_unlock_;
    Fld f_eye_cfg_en0_, f_eye_fsm_, f_eye_x_, f_eye_y_, f_eye_done_, f_eye_errors_;
    Fld f_cal_trig_, f_ofs_sel_, f_los_ossel_, f_slicer_[4];
    Fld f_sta_capen_, f_sta_hf_cal_, f_sta_stage12_, f_sta_hf_gray_, f_sta_lf_gray_;
    Fld f_byp_capen_ctrl_, f_byp_capen_, f_byp_hf_cal_ctrl_, f_byp_hf_cal_, f_byp_vga_ctrl_, f_byp_vga_;
    Fld f_byp_hf_ctrl_, f_byp_hf_, f_byp_lf_ctrl_, f_byp_lf_;
    Fld f_pi_max_, f_pi_min_;
    uint32_t a_por_[2] = {}, a_idle_[2][4] = {}, a_rx_los_[2] = {}, a_rx_ready_[2] = {}, a_tx_ready_[2] = {};
    FieldRef f_por_, f_idle_[4], f_rx_los_[4];

    Fld need(const char *word, const char *field);
    uint32_t addr(const Fld &f, uint32_t macro, uint32_t lane) const;
    uint32_t get(const Fld &f, uint32_t macro, uint32_t lane) const;
    void set(const Fld &f, uint32_t macro, uint32_t lane, uint32_t value);
    // The lane of a switch-core address in a macro; false outside them.
    static bool where(uint32_t address, uint32_t *macro, uint32_t *lane, uint32_t *offset);

    LaneFacts facts(uint32_t macro, uint32_t lane) const;
    LaneRate rate(uint32_t macro, uint32_t lane, bool *pll_running) const;
    void publish_macro(uint32_t macro);
    void on_macro_write(uint32_t address, uint32_t value);
    void on_status_read(uint32_t address);
    void eye_measure(uint32_t macro, uint32_t lane);
    void calibration_round(uint32_t macro, uint32_t lane);
    void phy_status(uint32_t macro);
};

} // namespace tide::sim

#endif // TIDE_SIM_SERDES_H
