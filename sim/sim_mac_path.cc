// The MAC stage's part of the frame path across cables and loops: where a
// frame a port sends goes, the outer loop, the faults a 64B/66B PCS sends
// and receives, the PCS port resets, the path clear and the channel
// counter clear.
#include <tide/sim.h>

#include "sim/sim_int.h"
#include "sim/sim_mac.h"
#include "sim/sim_serdes.h"

namespace tide::sim {

namespace {

constexpr uint32_t kCoding8b10b = 1, kCoding6466b = 2;
// Faults as the PCS sends them: 1 + fault_ins_type.
constexpr uint32_t kFaultLocal = 1, kFaultRemote = 2, kFaultLinkInt = 3;
// pcs_6466b_ch_stat bits of an arriving fault, by fault.
constexpr uint32_t kFaultStat[4] = {0, 1u << 4, 1u << 3, 1u << 2};

bool _bit(uint32_t word, uint32_t bit)
{
    return bit < 32 && ((word >> bit) & 1) != 0;
}

} // namespace

void MacEngine::path_fields()
{
    const char *rst[2] = {"pcs_8b10b_rst_pcs", "pcs_6466b_rst_pcs"};
    for (uint32_t c = 0; c < 2; c++) {
        rst_pcs_rx_[c] = need(rst[c], "rx_port_rst");
        rst_pcs_tx_[c] = need(rst[c], "tx_port_rst");
    }
    fault_ins_en_ = need("pcs_6466b_fault_ins_ctrl", "fault_ins_en");
    fault_ins_type_ = need("pcs_6466b_fault_ins_ctrl", "fault_ins_type");
    lf_resp_ = need("pcs_6466b_fault_resp", "lf_resp_en");
    li_resp_ = need("pcs_6466b_fault_resp", "li_resp_en");
    phy_link_en_ = need("pcs_an_pcs_an_ctrl_2", "phy_link_en");
    port_clr_ = need("mag_map_port_clr", "port_clr");
    ev_6466b_lf_ = event_of("pcs_6466b_int_stat", "local_fault_int");
    ev_6466b_rf_ = event_of("pcs_6466b_int_stat", "remote_fault_int");
    ev_6466b_li_ = event_of("pcs_6466b_int_stat", "link_int_int");
}

void MacEngine::path_install()
{
    // The resets and faults change the link.
    const Fld *inputs[] = {&rst_pcs_rx_[0], &rst_pcs_rx_[1], &fault_ins_en_, &lf_resp_};
    for (const Fld *f : inputs) {
        for (uint32_t i = 0; i < f->reg->instances; i++) {
            chip_.on_write(4, f->reg->addrs[i], [this](Chip &, uint32_t, uint32_t, uint64_t) { update(); });
        }
    }
}

// ---- where a sent frame goes -------------------------------------------------------------

MacEngine::Route MacEngine::route(uint32_t lport) const
{
    Route r;
    if (lport >= kMacPorts) {
        return r;
    }
    r.chip = chip_.id();
    r.lport = lport;
    if (get(inloop_, lport) != 0) {
        r.kind = Route::kWire; // back into its own receive side, not onto the line
        return r;
    }
    uint32_t mag = 0, mac = 0;
    if (!place(lport, &mag, &mac)) {
        return r;
    }
    uint32_t peer = 0;
    PcsTx far;
    const SerdesFabric::Link link = fabric_->far_end(chip_.id(), mag, &peer, &far);
    if (link == SerdesFabric::Link::none) {
        return r;
    }
    r.kind = Route::kWire;
    if (link == SerdesFabric::Link::plug) {
        return r;
    }
    // The port on the same channel of the far lane's MAG, as its chip
    // last published it.
    if (!_bit(far.placed, mac)) {
        r.kind = Route::kLost;
        r.cause = kCauseWireNoPort;
        return r;
    }
    r.chip = peer / kSerdesLanesPerChip;
    r.lport = far.lport[mac];
    return r;
}

bool MacEngine::outloop(uint32_t lport) const
{
    return lport < kMacPorts && get(outloop_, lport) != 0;
}

bool MacEngine::path_cleared(uint32_t lport) const
{
    return lport < kMacPorts && _bit(get(port_clr_), lport);
}

// ---- PCS resets ------------------------------------------------------------

bool MacEngine::pcs_port_held(const PortState &s, uint32_t coding) const
{
    if (coding != kCoding8b10b && coding != kCoding6466b) {
        return false;
    }
    const uint32_t c = coding - 1, index = coding == kCoding6466b ? s.mag - 2 : s.mag;
    return _bit(get(rst_pcs_rx_[c], index), s.mac) || _bit(get(rst_pcs_tx_[c], index), s.mac);
}

// ---- faults --------------------------------------------------------------------------------

uint32_t MacEngine::fault_inserted(const PortState &s) const
{
    if (s.coding != kCoding6466b || s.mag < 2 || !_bit(get(fault_ins_en_, s.mag - 2), s.mac)) {
        return 0;
    }
    return 1 + ((get(fault_ins_type_, s.mag - 2) >> (2 * s.mac)) & 3);
}

uint32_t MacEngine::fault_sent(const PortState &s) const
{
    const uint32_t inserted = fault_inserted(s);
    if (inserted != 0 || s.coding != kCoding6466b) {
        return inserted;
    }
    // A local fault or link interruption arriving is answered with a
    // remote fault, where the channel's response is enabled.
    const Fld *resp = s.rx_fault == kFaultLocal ? &lf_resp_ : s.rx_fault == kFaultLinkInt ? &li_resp_ : nullptr;
    return resp != nullptr && _bit(get(*resp, s.mag - 2), s.mac) ? kFaultRemote : 0;
}

// The ch_stat bit of the fault arriving at a port, with its event when it
// starts.
uint32_t MacEngine::fault_stat(uint32_t lport, const PortState &s)
{
    const uint32_t f = s.rx_fault < 4 ? s.rx_fault : 0;
    if (f != fault_was_[lport]) {
        fault_was_[lport] = f;
        const Event *ev[4] = {nullptr, &ev_6466b_lf_, &ev_6466b_rf_, &ev_6466b_li_};
        if (f != 0 && s.mag >= 2) {
            raise(*ev[f], s.mag - 2);
        }
    }
    return kFaultStat[f];
}

} // namespace tide::sim
