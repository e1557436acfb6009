// The model's recovered-clock check and path counters of the front ports.
#include "sim/sim_mac_diag.h"

#include "sim/sim_int.h"

namespace tide::sim {

namespace {

// The counter registers in path order (receive from the lane to the core,
// then transmit from the core to the lane): register, SOP field, EOP
// field, indexed by the MAC of a MAG.
struct StageDesc {
    const char *reg, *sop, *eop;
    bool by_channel;
};
constexpr StageDesc kStageDescs[] = {
    {"pcs_glb_pkt_rx_cnt", "pcs_glb_pkt_rx_sop", "pcs_glb_pkt_rx_eop", true},
    {"mag_glue_mac_rx_cnt", "mag_glue_mac_rx_sop", "mag_glue_mac_rx_eop", false},
    {"mac_port_rxdat_out_cnt", "mac_port_rxdat_out_sop", "mac_port_rxdat_out_eop", false},
    {"mag_map_rx_macsec_cnt", "map_rx_macsec_sop", "map_rx_macsec_eop", false},
    {"mag_map_rx_mac_cnt", "mag_map_rx_mac_sop", "mag_map_rx_mac_eop", false},
    {"mag_map_tx_mac_cnt", "mag_map_tx_mac_sop", "mag_map_tx_mac_eop", false},
    {"mag_map_tx_macsec_cnt", "map_tx_macsec_sop", "map_tx_macsec_eop", false},
    {"mac_port_txdat_in_cnt", "mac_port_txdat_in_sop", "mac_port_txdat_in_eop", false},
    {"mag_glue_mac_tx_cnt", "mag_glue_mac_tx_sop", "mag_glue_mac_tx_eop", false},
    {"pcs_glb_pkt_tx_cnt", "pcs_glb_pkt_tx_sop", "pcs_glb_pkt_tx_eop", true},
};

constexpr uint32_t kCounterMask = 0xFFFF;
constexpr uint32_t kMacsPerMag = 8;

bool _bit(uint32_t word, uint32_t bit)
{
    return bit < 32 && ((word >> bit) & 1) != 0;
}

} // namespace

MacDiag::MacDiag(MacEngine &mac) : mac_(mac)
{
    static_assert(sizeof(kStageDescs) / sizeof(kStageDescs[0]) == kStages);
    for (uint32_t i = 0; i < kStages; i++) {
        const StageDesc &d = kStageDescs[i];
        stages_[i].sop = mac_.need(d.reg, d.sop);
        stages_[i].eop = mac_.need(d.reg, d.eop);
        stages_[i].by_channel = d.by_channel;
    }
    err_[0] = mac_.need("mac_port_rxdat_err_cnt", "mac_port_rx_err");
    drop_[0] = mac_.need("mac_port_rxdat_err_cnt", "mac_port_rx_drop");
    err_[1] = mac_.need("mac_port_txdat_err_cnt", "mac_port_tx_err");
    drop_[1] = mac_.need("mac_port_txdat_err_cnt", "mac_port_tx_drop");
    port_clr_ = mac_.need("mag_map_port_clr", "port_clr");
    cnt_clr_[0] = mac_.need("pcs_glb_ch_cnt_clr", "rx_cnt_clr");
    cnt_clr_[1] = mac_.need("pcs_glb_ch_cnt_clr", "tx_cnt_clr");
    num_[0] = mac_.need("pcs_glb_clk_chk_cfg0", "clk_sds_rx_cfg_num");
    num_[1] = mac_.need("pcs_glb_clk_chk_cfg1", "clk_sds_tx_cfg_num");
    allow_[0] = mac_.need("pcs_glb_clk_chk_cfg2", "clk_sds_rx_cfg_delta");
    allow_[1] = mac_.need("pcs_glb_clk_chk_cfg2", "clk_sds_tx_cfg_delta");
    down_en_[0] = mac_.need("pcs_glb_clk_div_sel", "clk_sds_rx_err_down_en");
    down_en_[1] = mac_.need("pcs_glb_clk_div_sel", "clk_sds_tx_err_down_en");
    sign_[0] = mac_.need("pcs_glb_clk_sds_rx_delta", "clk_sds_rx_sign");
    delta_[0] = mac_.need("pcs_glb_clk_sds_rx_delta", "clk_sds_rx_delta");
    sign_[1] = mac_.need("pcs_glb_clk_sds_tx_delta", "clk_sds_tx_sign");
    delta_[1] = mac_.need("pcs_glb_clk_sds_tx_delta", "clk_sds_tx_delta");
    lost_ev_[0] = mac_.event_of("pcs_glb_int_stat", "rx_clk_lost_int");
    lost_ev_[1] = mac_.event_of("pcs_glb_int_stat", "tx_clk_lost_int");
    comma_det_ = mac_.need("pcs_8b10b_alm_8b10b", "comma_det_st");
    comma_chk_ = mac_.need("pcs_8b10b_alm_8b10b", "comma_chk_st");
    sds_down_8b10b_ = mac_.need("pcs_8b10b_alm_8b10b", "sds_down");
    am_oh_sch_ = mac_.need("pcs_6466b_alm_6466b", "am_oh_sch_st");
    local_fault_ = mac_.need("pcs_6466b_alm_6466b", "local_fault");
    block_unsyn_ = mac_.need("pcs_6466b_alm_6466b", "block_unsyn");
    sds_down_6466b_ = mac_.need("pcs_6466b_alm_6466b", "sds_down");
    rx_fsm_ = mac_.need("pcs_4b5b_alm_4b5b", "rx_fsm_st");
    sds_down_4b5b_ = mac_.need("pcs_4b5b_alm_4b5b", "sds_down");
}

void MacDiag::install()
{
    Chip &chip = mac_.chip_;
    chip.on_write(4, port_clr_.reg->addrs[0], [this](Chip &, uint32_t, uint32_t, uint64_t) { on_port_clr(); });
    for (uint32_t mag = 0; mag < kMags && mag < cnt_clr_[0].reg->instances; mag++) {
        chip.on_write(4, cnt_clr_[0].reg->addrs[mag], [this, mag](Chip &, uint32_t, uint32_t, uint64_t) {
            on_cnt_clr(mag);
        });
    }
    // A change of the check's set-up takes the measure again, and may
    // change the links.
    const MacEngine::Fld *setup[] = {&num_[0], &num_[1], &allow_[0], &down_en_[0]};
    for (const MacEngine::Fld *f : setup) {
        for (uint32_t mag = 0; mag < kMags && mag < f->reg->instances; mag++) {
            chip.on_write(4, f->reg->addrs[mag], [this](Chip &, uint32_t, uint32_t, uint64_t) { mac_.update(); });
        }
    }
    // The result and alarm words are brought up to date before a read.
    const MacEngine::Fld *results[] = {&delta_[0], &delta_[1], &comma_det_, &am_oh_sch_, &rx_fsm_};
    for (const MacEngine::Fld *f : results) {
        for (uint32_t i = 0; i < f->reg->instances; i++) {
            chip.on_read(4, f->reg->addrs[i], [this](Chip &, uint32_t, uint32_t) { evaluate(); });
        }
    }
}

void MacDiag::clear()
{
    lost_was_ = {};
}

// ---- the clock check -------------------------------------------------------------

MacDiag::Measure MacDiag::measure(uint32_t mag, uint32_t dir) const
{
    Measure m;
    if (mac_.get(num_[dir], mag) == 0) {
        return m;
    }
    if (dir == 0 && !mac_.lane_signal(mag)) {
        m.sign = 1;
        m.delta = kNoClock;
    } else {
        m.sign = drift_[mag].sign[dir];
        m.delta = drift_[mag].delta[dir];
    }
    m.lost = m.delta > mac_.get(allow_[dir], mag);
    return m;
}

bool MacDiag::clk_down(uint32_t mag) const
{
    for (uint32_t dir = 0; dir < 2; dir++) {
        if (mac_.get(down_en_[dir], mag) != 0 && measure(mag, dir).lost) {
            return true;
        }
    }
    return false;
}

void MacDiag::evaluate()
{
    for (uint32_t mag = 0; mag < kMags; mag++) {
        for (uint32_t dir = 0; dir < 2; dir++) {
            const Measure m = measure(mag, dir);
            mac_.set(sign_[dir], mag, m.sign);
            mac_.set(delta_[dir], mag, m.delta);
            if (m.lost && !lost_was_[mag][dir]) {
                mac_.raise(lost_ev_[dir], mag);
            }
            lost_was_[mag][dir] = m.lost;
        }
        alarms(mag);
    }
}

void MacDiag::alarms(uint32_t mag)
{
    constexpr uint32_t kAck4 = 7, kInfLock = 3, kRxErr = 3;
    const bool down = !mac_.lane_signal(mag);
    mac_.set(comma_det_, mag, down ? 0 : kAck4);
    mac_.set(comma_chk_, mag, down ? 0 : kAck4);
    mac_.set(sds_down_8b10b_, mag, down);
    mac_.set(rx_fsm_, mag, down ? kRxErr : 0);
    mac_.set(sds_down_4b5b_, mag, down);
    if (mag >= 2) {
        mac_.set(am_oh_sch_, mag - 2, down ? 0 : kInfLock);
        mac_.set(local_fault_, mag - 2, down);
        mac_.set(block_unsyn_, mag - 2, down);
        mac_.set(sds_down_6466b_, mag - 2, down);
    }
}

int MacDiag::drift(uint32_t mag, uint32_t rx_sign, uint32_t rx_delta, uint32_t tx_sign, uint32_t tx_delta)
{
    if (mag >= kMags || rx_sign > 1 || tx_sign > 1 || rx_delta > kNoClock || tx_delta > kNoClock) {
        return -4;
    }
    drift_[mag] = Drift{{rx_sign, tx_sign}, {rx_delta, tx_delta}};
    mac_.update();
    return 0;
}

// ---- the path counters -----------------------------------------------------------

// Whether a stage's counter of `lport` is held at 0; `instance` gets the
// register instance.  A port the glue does not place has no PCS counter.
bool MacDiag::held(const Stage &st, uint32_t lport, uint32_t dir, uint32_t *instance) const
{
    if (!st.by_channel) {
        *instance = lport;
        return _bit(mac_.get(port_clr_), lport);
    }
    uint32_t mag = 0, mac = 0;
    if (!mac_.place(lport, &mag, &mac)) {
        return true;
    }
    *instance = mag * kMacsPerMag + mac;
    return _bit(mac_.get(cnt_clr_[dir], mag), mac);
}

void MacDiag::bump(const MacEngine::Fld &f, uint32_t instance)
{
    mac_.set(f, instance, (mac_.get(f, instance) + 1) & kCounterMask);
}

void MacDiag::count(uint32_t first, uint32_t last, uint32_t lport, uint32_t dir)
{
    for (uint32_t i = first; i <= last; i++) {
        uint32_t instance = 0;
        if (!held(stages_[i], lport, dir, &instance)) {
            bump(stages_[i].sop, instance);
            bump(stages_[i].eop, instance);
        }
    }
}

void MacDiag::frame(uint32_t lport, uint32_t dir, bool good)
{
    if (lport >= kMacPorts) {
        return;
    }
    if (dir == 1) {
        count(kMapTxMac, kPcsTx, lport, 1);
        return;
    }
    if (good) {
        count(kPcsRx, kMapRxMac, lport, 0);
        return;
    }
    count(kPcsRx, kGlueRx, lport, 0);
    if (!_bit(mac_.get(port_clr_), lport)) {
        bump(err_[0], lport);
    }
}

void MacDiag::drop(uint32_t lport, uint32_t dir)
{
    if (lport < kMacPorts && !_bit(mac_.get(port_clr_), lport)) {
        bump(drop_[dir], lport);
    }
}

// A set bit of mag_map_port_clr zeroes the port's counters (the PCS's
// excepted); they stay 0 while it is set, since counting skips them.
void MacDiag::on_port_clr()
{
    const uint32_t clr = mac_.get(port_clr_);
    for (uint32_t lport = 0; lport < kMacPorts; lport++) {
        if (!_bit(clr, lport)) {
            continue;
        }
        for (const Stage &st : stages_) {
            if (!st.by_channel) {
                mac_.set(st.sop, lport, 0);
                mac_.set(st.eop, lport, 0);
            }
        }
        for (uint32_t dir = 0; dir < 2; dir++) {
            mac_.set(err_[dir], lport, 0);
            mac_.set(drop_[dir], lport, 0);
        }
    }
}

// A set bit of rx_cnt_clr or tx_cnt_clr zeroes that MAC's PCS counter of
// the direction.
void MacDiag::on_cnt_clr(uint32_t mag)
{
    for (uint32_t dir = 0; dir < 2; dir++) {
        const Stage &st = stages_[dir == 0 ? kPcsRx : kPcsTx];
        const uint32_t clr = mac_.get(cnt_clr_[dir], mag);
        for (uint32_t mac = 0; mac < kMacsPerMag; mac++) {
            if (_bit(clr, mac)) {
                mac_.set(st.sop, mag * kMacsPerMag + mac, 0);
                mac_.set(st.eop, mag * kMacsPerMag + mac, 0);
            }
        }
    }
}

} // namespace tide::sim
