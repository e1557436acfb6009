// The model's MAC side: the clocks, glue, PCS, auto-negotiation and MACs
// between the SerDes lanes and the packet core.
//
// The 400 MHz input clock of the MACs sits in the general registers of
// BAR 3 (outside the switch-core description, like the reset controller):
// a pulse of bit 20 of the control word restarts it, and its lock bit 21
// in the status word is set when the pulse ends, unless a knob keeps the
// clock from ever locking.
//
// A front port's link is computed from its registers and from what its
// lane is connected to: the glue mode places the port on a MAG and a MAC
// of it, the MAG's protocol gives its coding and channels, the resets and
// clock gates must let it run, the force register may hold it up or down,
// and the signal comes from a MAC loopback, from the lane's cable or plug
// (its clock recovery locked and the far PCS sending this channel), or,
// for a lane with neither, from the model's frame endpoint (a partner that
// is always there unless a knob unplugs it).  Auto-negotiation completes
// at once against the partner's abilities.  The link is recomputed after
// every write of a MAC-side register and before a read of a status word,
// and a change raises the link events of the interrupt tree.
//
// Frames follow the same connections (sim_mac_path.cc, sim_wire.h): what
// a port sends enters the far port of a cable, the port itself through a
// plug or an inner loop, or the endpoint; and a 64B/66B PCS's inserted
// fault, or its remote-fault answer, reaches the far end's status.
//
// Locks: the engine runs under the chip's mutex and takes the SerDes
// fabric's mutex inside it (through the fabric's calls).
#ifndef TIDE_SIM_MAC_H
#define TIDE_SIM_MAC_H

#include <tide/sim.h>

#include <array>
#include <cstdint>
#include <memory>

#include "sim/sim_bits.h"

namespace tide::sim {

class Chip;
class SerdesFabric;
class MacDiag;

constexpr uint32_t kMacPorts = 28;
constexpr uint32_t kMags = 8;
constexpr uint32_t kPcsChannels = 34;

// Causes of the MAC stage's drops.  They lie beyond the chip's cause
// statistics (the frame never reaches the pipeline), so they are named
// but not counted there.
enum MacCause : uint16_t {
    kCauseMacRxDisabled = 2048, // MAC_RX_DISABLED: rx_en is clear
    kCauseMacRxLinkDown = 2049, // MAC_RX_LINK_DOWN: the port's link is down
    kCauseMacTxDisabled = 2050, // MAC_TX_DISABLED: tx_en is clear
    kCauseMacRxFcsErr = 2051,   // MAC_RX_FCS_ERR: the frame arrived with a bad FCS
    kCausePortLinkDown = 735,   // DISCARD_PORT_LINK_DOWN: egress to a port whose link is down
    kCauseWireHops = 2052,      // WIRE_HOPS: the frame crossed more wires than its budget
    kCauseMacPathClear = 2053,  // MAC_PATH_CLEAR: mag_map_port_clr holds the port's path clear
    kCauseWireNoPort = 2054,    // WIRE_NO_PORT: the far lane has no port on the channel
};

class MacEngine {
public:
    MacEngine(Chip &chip, SerdesFabric *fabric);
    ~MacEngine();
    MacEngine(const MacEngine &) = delete;
    MacEngine &operator=(const MacEngine &) = delete;

    bool ok() const { return ok_; }
    void install();
    // Power-on state of the MACs (and after a hard reset of the core).
    void clear();

    // ---- knobs; the caller holds the chip's mutex ----
    void clock_never_lock(bool on) { clk_never_lock_ = on; }
    void gating(bool on) { gating_ = on; }
    bool gating() const { return gating_; }
    int endpoint(uint32_t lport, bool plugged);
    int partner(uint32_t lport, const tide_sim_mac_partner *p);
    int phy_line(uint32_t lport, bool up);
    int port_get(uint32_t lport, tide_sim_mac_port *out);

    // ---- the packet path; the caller holds the chip's mutex ----
    // Whether a frame may enter by `lport`; `cause` gets the drop's cause.
    // Inner ports and an ungated model take every frame.
    bool rx_admit(uint32_t lport, uint16_t *cause);
    bool tx_admit(uint32_t lport, uint16_t *cause);

    // The MIB of a front port: a frame the MAC took in or sent out, with
    // `len` bytes without its FCS.
    void count_rx(uint32_t lport, const uint8_t *frame, uint32_t len, bool good);
    void count_tx(uint32_t lport, const uint8_t *frame, uint32_t len);
    // The knob: the next `count` frames arriving by `lport` have a bad FCS.
    int crc_errors(uint32_t lport, uint32_t count);
    uint64_t mib(uint32_t lport, bool tx, uint32_t item) const { return mib_[lport][tx ? 1 : 0][item]; }

    // Recomputes every port: link bits, AN status, events.
    void update();

    // The clock check and path counters (sim_mac_diag.h).
    MacDiag &diag() { return *diag_; }
    // The MAG and MAC of a front port in the glue mode; false for none.
    bool place(uint32_t lport, uint32_t *mag, uint32_t *mac) const;
    // Whether anything arrives on a MAG's lane: its cable or plug with the
    // clock recovered, or without either the frame endpoint of a port.
    bool lane_signal(uint32_t mag) const;

    // ---- frames across cables and loops (sim_mac_path.cc); the caller
    // holds the chip's mutex ----
    // Where a frame that `lport` sends goes: the frame endpoint (the
    // capture queue or TAP), a port of this or another chip over a MAC
    // inner loop, a plug or a cable, or nowhere (`cause`).
    struct Route {
        enum Kind : uint8_t { kEndpoint, kWire, kLost } kind = kEndpoint;
        uint32_t chip = 0, lport = 0;
        uint16_t cause = 0;
    };
    Route route(uint32_t lport) const;
    // Whether a frame arriving from the line at `lport` goes straight back
    // out to the line (mag_map_outloop_cfg).
    bool outloop(uint32_t lport) const;

    static constexpr uint32_t kMibItems = 36;

private:
    friend class MacDiag;
    // A field of a register of the description.
    struct Fld {
        const desc::Register *reg = nullptr;
        FieldRef f;
    };
    // What a port amounts to.
    struct PortState {
        uint32_t cause = TIDE_SIM_MAC_DOWN_NO_PORT;
        bool link = false;
        bool rx_en = false;
        bool tx_en = false;
        uint32_t mag = 0, mac = 0, channel = 0;
        uint32_t coding = 0; // 1 8B/10B, 2 64B/66B, 3 4B/5B
        bool an_active = false, an_done = false;
        uint32_t an_speed = 0, an_duplex = 0, an_pause = 0;
        bool signal = false;
        bool phy_link = false; // what arrives, and the partner PHY reports its line up
        uint32_t rx_fault = 0; // the fault arriving on the 64B/66B channel: 0 none, 1 + type
    };
    struct Partner {
        bool plugged = true;
        bool custom = false;
        bool phy_line = true; // a PHY partner reports its line up
        tide_sim_mac_partner abilities{};
    };

    Chip &chip_;
    SerdesFabric *fabric_;
    std::unique_ptr<MacDiag> diag_;
    bool ok_ = true;
    bool clk_never_lock_ = false;
    bool clk_pulse_high_ = false;
    bool gating_ = true;
    bool updating_ = false;
    std::array<Partner, kMacPorts> partners_{};
    std::array<bool, kMacPorts> link_was_{};
    std::array<bool, kPcsChannels> an_done_was_{};
    std::array<bool, kPcsChannels> an_restart_was_{};
    std::array<uint32_t, kMacPorts> fault_was_{};
    // The MIB counts by port, direction (0 rx, 1 tx) and item; whether a
    // read of the low word latched the high word; whether the count has
    // moved since its words were last written (a poke of a word stands
    // until then).
    template <typename T>
    using PerMib = std::array<std::array<std::array<T, kMibItems>, 2>, kMacPorts>;
    PerMib<uint64_t> mib_{};
    PerMib<bool> mib_latched_{};
    PerMib<bool> mib_dirty_{};
    struct MibPair {
        const desc::Table *lo = nullptr, *hi = nullptr;
    };
    std::array<std::array<MibPair, kMibItems>, 2> mib_pairs_{};
    std::array<uint32_t, kMacPorts> crc_pending_{};
    Fld mib_clr_mode_, clr_cnt_, rx_max_len_, tx_max_len_, rx_min_len_, tx_min_len_;

    Fld glue_mode_, glue_rst_, soft_rst_, gate_pcs_, gate_mac_, mac_glb_rst_, pcs_rst_, sds_rst_, pcs_port_rst_;
    Fld protocol_, ch_num_, mac_rst_, map_port_rst_, tx_en_, rx_en_, inloop_, outloop_;
    Fld force_en_[3], force_cfg_[3], force_kd_[3];
    // The PCS port resets of 8B/10B and 64B/66B, fault insertion and
    // response, the path clear.
    Fld rst_pcs_rx_[2], rst_pcs_tx_[2], fault_ins_en_, fault_ins_type_, lf_resp_, li_resp_, phy_link_en_, port_clr_;
    Fld an_enable_, an_restart_, an_link_en_, an_rst_, an_adv_, an_status_, ch_link_, ch_stat_;
    FieldRef st_pause_, st_speed_, st_state_, st_link_up_, st_phy_link_, st_link_, st_duplex_, st_tx_xmit_,
        st_rx_xmit_, st_remote_fault_;
    // Interrupt types the engine raises: (module, subid, type), -1 absent.
    struct Event {
        int module = -1, subid = -1, type = -1;
    };
    Event ev_mac_link_down_, ev_8b10b_up_, ev_8b10b_down_, ev_6466b_down_, ev_4b5b_down_, ev_an_done_,
        ev_an_restart_, ev_6466b_lf_, ev_6466b_rf_, ev_6466b_li_;

    Fld need(const char *reg, const char *field);
    uint32_t get(const Fld &f, uint32_t instance = 0) const;
    void set(const Fld &f, uint32_t instance, uint32_t value);
    Event event_of(const char *status_reg, const char *field);
    void raise(const Event &e, uint32_t instance);

    // A knob's flag of a port's partner, and the ports recomputed.
    int partner_flag(uint32_t lport, bool Partner::*flag, bool on);
    void on_clock_write(uint32_t value);
    void on_an_write(uint32_t channel);
    PortState state(uint32_t lport) const;
    void partner_abilities(uint32_t lport, const PortState &s, uint32_t protocol, tide_sim_mac_partner *out) const;
    void publish();
    void count(uint32_t lport, uint32_t dir, const uint8_t *frame, uint32_t len, bool good);
    void mib_read(uint32_t lport, uint32_t dir, uint32_t item, bool high);
    void mib_write(uint32_t lport, uint32_t dir, uint32_t item, bool high);
    void mib_clear(uint32_t lport, uint32_t dirs = 3);

    // sim_mac_path.cc
    void path_fields();
    void path_install();
    // The fault a placed 64B/66B port sends: the inserted one, else a
    // remote fault answering what arrives where its response is enabled.
    uint32_t fault_sent(const PortState &s) const;
    uint32_t fault_inserted(const PortState &s) const;
    // Whether the port's PCS is held in reset by its coding's rst_pcs.
    bool pcs_port_held(const PortState &s, uint32_t coding) const;
    // The port's status bits and events of an arriving fault.
    uint32_t fault_stat(uint32_t lport, const PortState &s);
    bool path_cleared(uint32_t lport) const;
};

} // namespace tide::sim

#endif // TIDE_SIM_MAC_H
