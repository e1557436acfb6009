// The model's SerDes lanes: the engine of a chip and the fabric of cables.
//
// A lane's rate is its PLL's: reference * 2 * (fbdiv + frac / 2^24) /
// (refdiv * 2^postdiv), divided by the lane's divider 2^div.  The board of
// the model has a 25 MHz reference on the macros' own pad and 156.25 MHz
// on the other (refclk_route 7, or refclk_route_ext 1).  Two lanes meet
// when their rates are equal exactly.
//
// A receiver's clock recovery locks when a signal arrives at its rate.  Its
// PRBS checker locks when, in addition, the signal comes from a generator
// of the checker's pattern (and user pattern) and arrives upright: the
// inversions of the sending transmitter, of loops on the way and of the
// receiver cancel out.  A locked checker counts each error the generator
// injects; it starts from 0 when it is switched on.
//
// The eye of a locked lane is open 14 steps left and right of the centre
// and 30 up and down at 8 Gbit/s and above, 20 and 40 below; a point
// outside has 16 errors per step beyond the edge, on either axis.  An eye
// measurement of a lane that is not locked never finishes.
#include "sim/sim_serdes.h"

#include <tide/sim.h>

#include "sim/sim_int.h"

namespace tide::sim {

namespace {

constexpr int kLoopDepth = 4;
constexpr uint32_t kPll1 = 1;
constexpr uint64_t kRefNearHz = 25000000;
constexpr uint64_t kRefFarHz = 156250000;
constexpr uint64_t kFastBps = 8000000000ull;
constexpr uint32_t kErrorsMax = 0xFFFFFF;
constexpr uint32_t kEyeErrorsMax = 0xFFFF;
constexpr uint32_t kEyeErrorsPerStep = 16;

uint32_t _gray(uint32_t v)
{
    return v ^ (v >> 1);
}

uint32_t _ungray(uint32_t g)
{
    uint32_t v = 0;
    for (; g != 0; g >>= 1) {
        v ^= g;
    }
    return v;
}

uint32_t _sid(uint32_t macro, uint32_t lane)
{
    const uint32_t place = macro * desc::kSerdesLanes + lane;
    for (uint32_t sid = 0; sid < kSerdesLanesPerChip; sid++) {
        if (desc::kSerdesLaneOrder[sid] == place) {
            return sid;
        }
    }
    return 0;
}

} // namespace

// ---- fabric ----------------------------------------------------------------------------

void SerdesFabric::publish(uint32_t chip, uint32_t serdes_id, const LaneFacts &facts)
{
    if (!valid(chip, serdes_id)) {
        return;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    Lane &l = lanes_[key(chip, serdes_id)];
    if (facts.chk_on && !l.facts.chk_on) {
        l.errors = 0;
    }
    l.facts = facts;
}

void SerdesFabric::forget(uint32_t chip)
{
    if (chip >= kSerdesChips) {
        return;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    for (uint32_t sid = 0; sid < kSerdesLanesPerChip; sid++) {
        Lane &l = lanes_[key(chip, sid)];
        l.facts = LaneFacts{};
        l.pcs = PcsTx{};
        l.errors = 0;
    }
}

int SerdesFabric::link(uint32_t chip_a, uint32_t sid_a, uint32_t chip_b, uint32_t sid_b)
{
    if (!valid(chip_a, sid_a) || !valid(chip_b, sid_b) || key(chip_a, sid_a) == key(chip_b, sid_b)) {
        return -4;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    Lane &a = lanes_[key(chip_a, sid_a)];
    Lane &b = lanes_[key(chip_b, sid_b)];
    if (a.link != Link::none || b.link != Link::none) {
        return -8;
    }
    a.link = b.link = Link::cable;
    a.peer = key(chip_b, sid_b);
    b.peer = key(chip_a, sid_a);
    return 0;
}

int SerdesFabric::plug(uint32_t chip, uint32_t sid)
{
    if (!valid(chip, sid)) {
        return -4;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    Lane &l = lanes_[key(chip, sid)];
    if (l.link != Link::none) {
        return -8;
    }
    l.link = Link::plug;
    l.peer = key(chip, sid);
    return 0;
}

int SerdesFabric::unlink(uint32_t chip, uint32_t sid)
{
    if (!valid(chip, sid)) {
        return -4;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    Lane &l = lanes_[key(chip, sid)];
    if (l.link == Link::none) {
        return -7;
    }
    if (l.link == Link::cable) {
        lanes_[l.peer].link = Link::none;
    }
    l.link = Link::none;
    return 0;
}

void SerdesFabric::faults_set(uint32_t chip, uint32_t sid, uint32_t faults)
{
    if (valid(chip, sid)) {
        std::lock_guard<std::mutex> lock(mutex_);
        lanes_[key(chip, sid)].faults = faults;
    }
}

uint32_t SerdesFabric::faults(uint32_t chip, uint32_t sid)
{
    if (!valid(chip, sid)) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    return lanes_[key(chip, sid)].faults;
}

// What the lane's transmitter makes of its own.
Signal SerdesFabric::own_tx(uint32_t k) const
{
    const LaneFacts &f = lanes_[k].facts;
    Signal s;
    if (!f.tx_on || !f.rate.valid()) {
        return s;
    }
    s.present = true;
    s.rate = f.rate;
    s.inverted = f.tx_inverted;
    if (f.gen_on) {
        s.generator = static_cast<int>(k);
        s.mode = f.gen_mode;
        s.pattern = f.gen_pattern;
    }
    return s;
}

// What the lane drives onto its wire: its own signal, or with a far-end
// loop what its receiver recovers, sent out again.
Signal SerdesFabric::tx_out(uint32_t k, int depth) const
{
    const LaneFacts &f = lanes_[k].facts;
    if (!f.far_loop) {
        return own_tx(k);
    }
    if (depth <= 0 || !f.tx_on) {
        return Signal{};
    }
    Signal in = line_in(k, depth - 1);
    if (!in.present || !(in.rate == f.rate) || !f.rx_on) {
        return Signal{};
    }
    in.inverted = in.inverted != (f.rx_inverted != f.tx_inverted);
    return in;
}

// What arrives at the lane's receive pins.
Signal SerdesFabric::line_in(uint32_t k, int depth) const
{
    const Lane &l = lanes_[k];
    switch (l.link) {
    case Link::plug:
        return tx_out(k, depth);
    case Link::cable:
        return tx_out(l.peer, depth);
    default:
        return Signal{};
    }
}

// What the receiver takes: its own transmitter's signal with a near-end
// loop, else the wire's.
Signal SerdesFabric::rx_in(uint32_t k) const
{
    const LaneFacts &f = lanes_[k].facts;
    if (!f.rx_on) {
        return Signal{};
    }
    return f.near_loop ? own_tx(k) : line_in(k, kLoopDepth);
}

bool SerdesFabric::cdr_locked_locked(uint32_t k) const
{
    const Lane &l = lanes_[k];
    const Signal in = rx_in(k);
    return (l.faults & TIDE_SIM_SERDES_NEVER_LOCK) == 0 && in.present && in.rate == l.facts.rate;
}

bool SerdesFabric::prbs_locked_locked(uint32_t k) const
{
    const LaneFacts &f = lanes_[k].facts;
    if (!f.chk_on || !cdr_locked_locked(k)) {
        return false;
    }
    const Signal in = rx_in(k);
    const bool upright = in.inverted == f.rx_inverted;
    const bool same = in.generator >= 0 && in.mode == f.chk_mode && (f.chk_mode != 0 || in.pattern == f.chk_pattern);
    return upright && same;
}

bool SerdesFabric::cdr_locked(uint32_t chip, uint32_t sid)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return valid(chip, sid) && cdr_locked_locked(key(chip, sid));
}

bool SerdesFabric::prbs_locked(uint32_t chip, uint32_t sid)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return valid(chip, sid) && prbs_locked_locked(key(chip, sid));
}

uint32_t SerdesFabric::prbs_errors(uint32_t chip, uint32_t sid)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return valid(chip, sid) ? lanes_[key(chip, sid)].errors : 0;
}

bool SerdesFabric::signal_present(uint32_t chip, uint32_t sid)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return valid(chip, sid) && rx_in(key(chip, sid)).present;
}

void SerdesFabric::inject_error(uint32_t chip, uint32_t sid)
{
    if (!valid(chip, sid)) {
        return;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    const int from = static_cast<int>(key(chip, sid));
    for (uint32_t k = 0; k < lanes_.size(); k++) {
        if (prbs_locked_locked(k) && rx_in(k).generator == from && lanes_[k].errors < kErrorsMax) {
            lanes_[k].errors++;
        }
    }
}

SerdesFabric::LaneView SerdesFabric::view(uint32_t chip, uint32_t sid)
{
    LaneView v;
    if (!valid(chip, sid)) {
        return v;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    const uint32_t k = key(chip, sid);
    v.facts = lanes_[k].facts;
    v.link = lanes_[k].link;
    v.peer = lanes_[k].peer;
    v.cdr_locked = cdr_locked_locked(k);
    v.prbs_locked = prbs_locked_locked(k);
    v.prbs_errors = lanes_[k].errors;
    return v;
}

void SerdesFabric::pcs_publish(uint32_t chip, uint32_t sid, const PcsTx &tx)
{
    if (valid(chip, sid)) {
        std::lock_guard<std::mutex> lock(mutex_);
        lanes_[key(chip, sid)].pcs = tx;
    }
}

PcsTx SerdesFabric::pcs_arriving(uint32_t chip, uint32_t sid)
{
    if (!valid(chip, sid)) {
        return PcsTx{};
    }
    std::lock_guard<std::mutex> lock(mutex_);
    const Lane &l = lanes_[key(chip, sid)];
    return l.link == Link::none ? PcsTx{} : lanes_[l.peer].pcs;
}

SerdesFabric::Link SerdesFabric::far_end(uint32_t chip, uint32_t sid, uint32_t *peer, PcsTx *pcs)
{
    if (!valid(chip, sid)) {
        return Link::none;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    const Lane &l = lanes_[key(chip, sid)];
    if (l.link != Link::none) {
        *peer = l.peer;
        *pcs = lanes_[l.peer].pcs;
    }
    return l.link;
}

void SerdesFabric::attach(uint32_t chip, Chip *c)
{
    if (chip < kSerdesChips) {
        std::lock_guard<std::mutex> lock(mutex_);
        chips_[chip] = c;
    }
}

Chip *SerdesFabric::chip(uint32_t id)
{
    std::lock_guard<std::mutex> lock(mutex_);
    return id < kSerdesChips ? chips_[id] : nullptr;
}

// ---- engine ------------------------------------------------------------------------------

SerdesEngine::SerdesEngine(Chip &chip, SerdesFabric *fabric) : chip_(chip), fabric_(fabric)
{
    const char *pll_cfg0[] = {"pll0_cfg0", "pll1_cfg0"};
    const char *fbdiv[] = {"pll0_fbdiv", "pll1_fbdiv"}, *refdiv[] = {"pll0_refdiv", "pll1_refdiv"};
    const char *pd_en[] = {"pll0_pd_byp_en", "pll1_pd_byp_en"}, *pd_val[] = {"pll0_pd_byp_val", "pll1_pd_byp_val"};
    const char *frac_reg[] = {"pll0_cfg1", "pll1_cfg2"}, *frac[] = {"pll0_frac", "pll1_frac"};
    const char *post_reg[] = {"pll0_cfg2", "pll1_cfg1"}, *post[] = {"pll0_postdiv", "pll1_postdiv"};
    const char *lock[] = {"pll0_lock_sts", "pll1_lock_sts"};
    const char *sel_word[] = {"r2448", "r244c"}, *sel[] = {"pll0_lane_sel", "pll1_lane_sel"};
    const char *div[] = {"pll0_lane_div", "pll1_lane_div"};
    for (uint32_t p = 0; p < 2; p++) {
        f_pll_fbdiv_[p] = need(pll_cfg0[p], fbdiv[p]);
        f_pll_refdiv_[p] = need(pll_cfg0[p], refdiv[p]);
        f_pll_pd_en_[p] = need(pll_cfg0[p], pd_en[p]);
        f_pll_pd_val_[p] = need(pll_cfg0[p], pd_val[p]);
        f_pll_frac_[p] = need(frac_reg[p], frac[p]);
        f_pll_postdiv_[p] = need(post_reg[p], post[p]);
        f_pll_lock_[p] = need("pll_status", lock[p]);
        f_lane_sel_[p] = need(sel_word[p], sel[p]);
        f_lane_div_[p] = need(sel_word[p], div[p]);
    }
    f_route_ = need("r1004", "refclk_route");
    f_route_ext_ = need("r1008", "refclk_route_ext");
    f_pd_tx_ = need("lane_cfg3", "da_pd_tx_bypass");
    f_pd_tx_val_ = need("lane_cfg3", "da_pd_tx_bypass_val");
    f_pd_rx_ = need("lane_cfg3", "da_pd_rx_bypass");
    f_pd_rx_val_ = need("lane_cfg3", "da_pd_rx_bypass_val");
    f_tx_rst_ctrl_ = need("bist_cfg3", "tx_soft_rstn_byp_ctrl");
    f_tx_rst_val_ = need("bist_cfg3", "tx_soft_rstn_byp_val");
    f_tx_pol_ = need("pol_inv_cfg", "tx_pol_inv_en");
    f_rx_pol_ = need("pol_inv_cfg", "rx_pol_inv_en");
    f_near_rx_ = need("bist_cfg4", "rx_nearlpbk_en");
    f_near_tx_ = need("bist_cfg4", "tx_nearlpbk_en");
    f_near_mode_ = need("bist_cfg4", "nearlpbk_mode_en");
    f_far_ = need("bist_cfg4", "farlpbk_en");
    f_sr_rx2tx_ = need("r0004", "sr_rx2tx_lpbk_en");
    f_sr_rx2tx_clk_ = need("r0010", "sr_rx2tx_lpbk_clk");
    f_tx_pcs_ = need("r001c", "tx_pcs_data_sel");
    f_tx_sync_ = need("r2414", "tx_sync_en");
    f_pr_tx2rx_ = need("r241c", "pr_tx2rx_lpbk_en");
    f_mode_ = need("bist_cfg0", "prbs_mode_cfg");
    f_gen_sel_ctrl_ = need("bist_cfg2", "tx_bist_data_sel_byp_ctrl");
    f_gen_sel_val_ = need("bist_cfg2", "tx_bist_data_sel_byp_val");
    f_gen_en_ = need("bist_cfg6", "tx_bist_en");
    f_gen_rstn_ = need("bist_cfg6", "tx_bist_rstn");
    f_pat_[0] = need("usr_pat_cfg0", "bist_usr_pat0");
    f_pat_[1] = need("usr_pat_cfg1", "bist_usr_pat1");
    f_pat_[2] = need("usr_pat_cfg2", "bist_usr_pat2");
    f_chk_ctrl_ = need("bist_cfg1", "rx_bist_en_byp_ctrl");
    f_chk_val_ = need("bist_cfg1", "rx_bist_en_byp_val");
    f_err_inj_ = need("bist_cfg5", "tx_bist_err_inj");
    f_bist_lock_ = need("bist_sts0", "bist_lock_sts");
    f_bist_errors_ = need("bist_sts0", "bist_error_count");
    f_cdr_unlock_ = need("r27c0", "cdr_unlock");
    f_eye_cfg_en0_ = need("full_eye_ctl0", "full_eye_cfg_en0");
    f_eye_fsm_ = need("full_eye_ctl0", "full_eye_fsm_en");
    f_eye_x_ = need("full_eye_ctl1", "full_eye_xaxis_val");
    f_eye_y_ = need("full_eye_ctl1", "full_eye_yaxis_val");
    f_eye_done_ = need("full_eye_sts0", "full_eye_meas_done");
    f_eye_errors_ = need("full_eye_sts0", "full_eye_err_count");
    f_cal_trig_ = need("r0aa0", "ofs_cal_trig");
    f_ofs_sel_ = need("offset_cal_cfg1", "rx_ofs_sel");
    f_los_ossel_ = need("offset_cal_cfg1", "rx_los_ossel");
    const char *slicer_reg[] = {"offset_cal_cfg2", "offset_cal_cfg3", "offset_cal_cfg4", "offset_cal_cfg5"};
    const char *slicer[] = {"rxa_slicer_offset_adj", "rxb_slicer_offset_adj", "rxc_slicer_offset_adj",
                            "rxd_slicer_offset_adj"};
    for (uint32_t ch = 0; ch < 4; ch++) {
        f_slicer_[ch] = need(slicer_reg[ch], slicer[ch]);
    }
    f_sta_capen_ = need("eq_sta0", "rx_vga_capen");
    f_sta_hf_cal_ = need("eq_sta0", "rx_ctle_hf_cal");
    f_sta_stage12_ = need("eq_sta1", "rx_vga_stage12_ctrl");
    f_sta_hf_gray_ = need("eq_sta2", "da_ctle_hf_gain_gray");
    f_sta_lf_gray_ = need("eq_sta2", "da_ctle_lf_gain_gray");
    f_byp_capen_ctrl_ = need("eq_cfg1", "rx_vga_capen");
    f_byp_capen_ = need("eq_cfg3", "rx_vga_capen");
    f_byp_hf_cal_ctrl_ = need("eq_cfg1", "ctle_hf_cal_byp_ctrl");
    f_byp_hf_cal_ = need("eq_cfg3", "rx_ctle_hf_cal");
    f_byp_vga_ctrl_ = need("eq_cfg1", "vga_gain_cfg_byp_ctrl");
    f_byp_vga_ = need("eq_cfg2", "vga_gain_cfg_byp_val");
    f_byp_hf_ctrl_ = need("eq_cfg8", "da_ctle_hf_gain_gray_bypass");
    f_byp_hf_ = need("eq_cfg9", "da_ctle_hf_gain_gray_bypass_val");
    f_byp_lf_ctrl_ = need("eq_cfg8", "da_ctle_lf_gain_gray_bypass");
    f_byp_lf_ = need("eq_cfg9", "da_ctle_lf_gain_gray_bypass_val");
    f_pi_max_ = need("pi_cfg_n_2", "cdr_pi_code_max");
    f_pi_min_ = need("pi_cfg_n_2", "cdr_pi_code_min");
    // The registers of the chip around the macros, by macro.
    DescNeeds needs;
    const desc::Register *r = nullptr;
    const char *idle[] = {"phy_ctrl_srds_tx_elecidle_l0", "phy_ctrl_srds_tx_elecidle_l1",
                          "phy_ctrl_srds_tx_elecidle_l2", "phy_ctrl_srds_tx_elecidle_l3"};
    const char *idle_f[] = {"srds_tx_elecidle_l0", "srds_tx_elecidle_l1", "srds_tx_elecidle_l2",
                            "srds_tx_elecidle_l3"};
    const char *los_f[] = {"srds_rx_los_l0", "srds_rx_los_l1", "srds_rx_los_l2", "srds_rx_los_l3"};
    auto instances = [&](const char *name, uint32_t out[2]) {
        needs.reg(name, &r);
        needs.ok &= r != nullptr && r->instances >= desc::kSerdesMacros;
        for (uint32_t m = 0; r != nullptr && m < 2 && m < r->instances; m++) {
            out[m] = r->addrs[m];
        }
    };
    instances("phy_ctrl_por_resetn", a_por_);
    f_por_ = needs.field(r, "por_resetn");
    for (uint32_t lane = 0; lane < 4; lane++) {
        uint32_t a[2] = {};
        instances(idle[lane], a);
        f_idle_[lane] = needs.field(r, idle_f[lane]);
        a_idle_[0][lane] = a[0];
        a_idle_[1][lane] = a[1];
    }
    instances("phy_ctrl_srds_rx_los", a_rx_los_);
    for (uint32_t lane = 0; lane < 4; lane++) {
        f_rx_los_[lane] = needs.field(r, los_f[lane]);
    }
    instances("phy_ctrl_srds_rx_ready", a_rx_ready_);
    instances("phy_ctrl_srds_tx_ready", a_tx_ready_);
    needs_ok_ &= needs.ok && desc::kSerdesMacros == 2 && desc::kSerdesLanes == 4 && fabric_ != nullptr;
    // The words a lane's facts are made of: a write elsewhere in a macro
    // (equaliser, calibration, eye settings) changes none of them.
    fact_word_.assign((1u << desc::kSerdesLaneShift) / 4, false);
    const Fld *fact_fields[] = {&f_pll_fbdiv_[0], &f_pll_fbdiv_[1], &f_pll_frac_[0], &f_pll_frac_[1],
                                &f_pll_refdiv_[0], &f_pll_refdiv_[1], &f_pll_postdiv_[0], &f_pll_postdiv_[1],
                                &f_pll_pd_en_[0], &f_pll_pd_en_[1], &f_pll_pd_val_[0], &f_pll_pd_val_[1],
                                &f_lane_sel_[0], &f_lane_sel_[1], &f_lane_div_[0], &f_lane_div_[1], &f_route_,
                                &f_route_ext_, &f_pd_tx_, &f_pd_tx_val_, &f_pd_rx_, &f_pd_rx_val_, &f_tx_rst_ctrl_,
                                &f_tx_rst_val_, &f_tx_pol_, &f_rx_pol_, &f_near_rx_, &f_near_tx_, &f_near_mode_,
                                &f_far_, &f_sr_rx2tx_, &f_sr_rx2tx_clk_, &f_tx_pcs_, &f_tx_sync_, &f_pr_tx2rx_,
                                &f_mode_, &f_gen_sel_ctrl_, &f_gen_sel_val_, &f_gen_en_, &f_gen_rstn_, &f_pat_[0],
                                &f_pat_[1], &f_pat_[2], &f_chk_ctrl_, &f_chk_val_};
    for (const Fld *f : fact_fields) {
        if ((f->offset >> 2) < fact_word_.size()) {
            fact_word_[f->offset >> 2] = true;
        }
    }
}

SerdesEngine::Fld SerdesEngine::need(const char *word, const char *field)
{
    Fld out;
    const desc::SerdesWord *w = desc::find_serdes_word(word);
    if (w == nullptr) {
        needs_ok_ = false;
        return out;
    }
    out.offset = w->offset;
    out.per_lane = w->per_lane;
    out.f = field_of(w->fields, w->field_count, field);
    needs_ok_ &= out.f.ok();
    return out;
}

uint32_t SerdesEngine::addr(const Fld &f, uint32_t macro, uint32_t lane) const
{
    return desc::kSerdesBases[macro] + (f.per_lane ? (f.offset | lane << desc::kSerdesLaneShift) : f.offset);
}

uint32_t SerdesEngine::get(const Fld &f, uint32_t macro, uint32_t lane) const
{
    return word_get(chip_.core_word(addr(f, macro, lane)), f.f);
}

void SerdesEngine::set(const Fld &f, uint32_t macro, uint32_t lane, uint32_t value)
{
    const uint32_t a = addr(f, macro, lane);
    chip_.set_core_word(a, word_set(chip_.core_word(a), f.f, value));
}

bool SerdesEngine::where(uint32_t address, uint32_t *macro, uint32_t *lane, uint32_t *offset)
{
    for (uint32_t m = 0; m < desc::kSerdesMacros; m++) {
        const uint32_t base = desc::kSerdesBases[m];
        if (address >= base && address < base + desc::kSerdesMacroSize) {
            const uint32_t ofs = address - base;
            *macro = m;
            *lane = ofs >> desc::kSerdesLaneShift;
            *offset = ofs & ((1u << desc::kSerdesLaneShift) - 1);
            return *lane < desc::kSerdesLanes;
        }
    }
    return false;
}

LaneRate SerdesEngine::rate(uint32_t macro, uint32_t lane, bool *pll_running) const
{
    *pll_running = false;
    const uint32_t pll = get(f_lane_sel_[0], macro, lane) != 0 ? 0 : (get(f_lane_sel_[1], macro, lane) != 0 ? kPll1 : 2);
    if (pll > kPll1) {
        return LaneRate{};
    }
    const uint64_t fbdiv = get(f_pll_fbdiv_[pll], macro, lane), refdiv = get(f_pll_refdiv_[pll], macro, lane);
    const bool down = get(f_pll_pd_en_[pll], macro, lane) != 0 && get(f_pll_pd_val_[pll], macro, lane) != 0;
    *pll_running = !down && fbdiv != 0 && refdiv != 0;
    if (!*pll_running) {
        return LaneRate{};
    }
    const bool far_pad = get(f_route_, macro, lane) == 7 || get(f_route_ext_, macro, lane) != 0;
    const uint32_t shift = 24 + get(f_pll_postdiv_[pll], macro, lane) + get(f_lane_div_[pll], macro, lane);
    LaneRate r;
    r.num = static_cast<unsigned __int128>(far_pad ? kRefFarHz : kRefNearHz) * 2 *
            ((fbdiv << 24) + get(f_pll_frac_[pll], macro, lane));
    r.den = static_cast<unsigned __int128>(refdiv) << shift;
    return r;
}

LaneFacts SerdesEngine::facts(uint32_t macro, uint32_t lane) const
{
    LaneFacts f;
    const bool out_of_reset = word_get(chip_.core_word(a_por_[macro]), f_por_) != 0;
    const bool idle = word_get(chip_.core_word(a_idle_[macro][lane]), f_idle_[lane]) != 0;
    bool pll_running = false;
    f.rate = rate(macro, lane, &pll_running);
    const bool tx_down = get(f_pd_tx_, macro, lane) != 0 && get(f_pd_tx_val_, macro, lane) != 0;
    const bool tx_reset = get(f_tx_rst_ctrl_, macro, lane) != 0 && get(f_tx_rst_val_, macro, lane) == 0;
    const bool rx_down = get(f_pd_rx_, macro, lane) != 0 && get(f_pd_rx_val_, macro, lane) != 0;
    f.tx_on = out_of_reset && pll_running && !tx_down && !tx_reset && !idle;
    f.rx_on = out_of_reset && pll_running && !rx_down;
    f.tx_inverted = get(f_tx_pol_, macro, lane) != 0;
    f.rx_inverted = get(f_rx_pol_, macro, lane) != 0;
    f.near_loop = (get(f_near_rx_, macro, lane) != 0 && get(f_near_tx_, macro, lane) != 0 &&
                   get(f_near_mode_, macro, lane) != 0) ||
                  get(f_pr_tx2rx_, macro, lane) != 0;
    f.far_loop = get(f_far_, macro, lane) != 0 ||
                 (get(f_sr_rx2tx_, macro, lane) != 0 && get(f_sr_rx2tx_clk_, macro, lane) != 0 &&
                  get(f_tx_pcs_, macro, lane) == 0 && get(f_tx_sync_, macro, lane) == 0);
    const uint64_t pattern = static_cast<uint64_t>(get(f_pat_[0], macro, lane)) |
                             static_cast<uint64_t>(get(f_pat_[1], macro, lane)) << 16 |
                             static_cast<uint64_t>(get(f_pat_[2], macro, lane)) << 48;
    f.gen_on = get(f_gen_en_, macro, lane) != 0 && get(f_gen_rstn_, macro, lane) != 0 &&
               get(f_gen_sel_ctrl_, macro, lane) != 0 && get(f_gen_sel_val_, macro, lane) != 0;
    f.gen_mode = f.chk_mode = get(f_mode_, macro, lane);
    f.gen_pattern = f.chk_pattern = pattern;
    f.chk_on = get(f_chk_ctrl_, macro, lane) != 0 && get(f_chk_val_, macro, lane) != 0;
    return f;
}

void SerdesEngine::publish_macro(uint32_t macro)
{
    for (uint32_t lane = 0; lane < desc::kSerdesLanes; lane++) {
        fabric_->publish(chip_.id(), _sid(macro, lane), facts(macro, lane));
    }
}

void SerdesEngine::install()
{
    if (!needs_ok_) {
        return;
    }
    for (uint32_t m = 0; m < desc::kSerdesMacros; m++) {
        const uint32_t base = desc::kSerdesBases[m];
        chip_.on_write_range(4, base, base + desc::kSerdesMacroSize,
                             [this](Chip &, uint32_t, uint32_t a, uint64_t v) { on_macro_write(a, v); });
        chip_.on_read_range(4, base, base + desc::kSerdesMacroSize,
                            [this](Chip &, uint32_t, uint32_t a) { on_status_read(a); });
        auto republish = [this, m](Chip &, uint32_t, uint32_t, uint64_t) { publish_macro(m); };
        chip_.on_write(4, a_por_[m], republish);
        for (uint32_t lane = 0; lane < 4; lane++) {
            chip_.on_write(4, a_idle_[m][lane], republish);
        }
        auto status = [this, m](Chip &, uint32_t, uint32_t) { phy_status(m); };
        chip_.on_read(4, a_rx_los_[m], status);
        chip_.on_read(4, a_rx_ready_[m], status);
        chip_.on_read(4, a_tx_ready_[m], status);
    }
}

void SerdesEngine::clear()
{
    cal_round_ = {};
    if (!needs_ok_) {
        return;
    }
    fabric_->forget(chip_.id());
    for (uint32_t m = 0; m < desc::kSerdesMacros; m++) {
        publish_macro(m);
    }
}

void SerdesEngine::on_macro_write(uint32_t address, uint32_t value)
{
    uint32_t macro = 0, lane = 0, offset = 0;
    if (!where(address, &macro, &lane, &offset)) {
        return;
    }
    if (fact_word_[offset >> 2]) {
        publish_macro(macro);
    }
    const uint32_t sid = _sid(macro, lane);
    if (offset == f_err_inj_.offset && word_get(value, f_err_inj_.f) != 0) {
        fabric_->inject_error(chip_.id(), sid);
    } else if (offset == f_eye_fsm_.offset) {
        if (word_get(value, f_eye_fsm_.f) != 0 && word_get(value, f_eye_cfg_en0_.f) != 0) {
            eye_measure(macro, lane);
        } else {
            set(f_eye_done_, macro, lane, 0);
            set(f_eye_errors_, macro, lane, 0);
        }
    } else if (offset == f_cal_trig_.offset && word_get(value, f_cal_trig_.f) == 2) {
        calibration_round(macro, lane);
    }
}

// The status words of a lane, as the CPU reads them.
void SerdesEngine::on_status_read(uint32_t address)
{
    uint32_t macro = 0, lane = 0, offset = 0;
    if (!where(address, &macro, &lane, &offset)) {
        return;
    }
    const uint32_t sid = _sid(macro, lane);
    if (offset == f_pll_lock_[0].offset) {
        for (uint32_t p = 0; p < 2; p++) {
            const bool down = get(f_pll_pd_en_[p], macro, 0) != 0 && get(f_pll_pd_val_[p], macro, 0) != 0;
            set(f_pll_lock_[p], macro, 0, !down && get(f_pll_fbdiv_[p], macro, 0) != 0);
        }
        return;
    }
    const SerdesFabric::LaneView v = fabric_->view(chip_.id(), sid);
    if (offset == f_cdr_unlock_.offset) {
        set(f_cdr_unlock_, macro, lane, v.cdr_locked ? 0 : 1);
    } else if (offset == f_bist_lock_.offset) {
        set(f_bist_lock_, macro, lane, v.prbs_locked);
        set(f_bist_errors_, macro, lane, v.prbs_errors);
    } else if (offset == f_pi_max_.offset) {
        set(f_pi_max_, macro, lane, v.cdr_locked ? 44 : 0);
        set(f_pi_min_, macro, lane, v.cdr_locked ? 20 : 0);
    } else if (offset == f_sta_capen_.offset || offset == f_sta_stage12_.offset || offset == f_sta_hf_gray_.offset) {
        // A bypassed value stands; a locked receiver trains the others.
        auto trained = [&](const Fld &ctrl, const Fld &byp, uint32_t learnt) {
            return get(ctrl, macro, lane) != 0 ? get(byp, macro, lane) : (v.cdr_locked ? learnt : 0);
        };
        set(f_sta_capen_, macro, lane, trained(f_byp_capen_ctrl_, f_byp_capen_, 5));
        set(f_sta_hf_cal_, macro, lane, trained(f_byp_hf_cal_ctrl_, f_byp_hf_cal_, 9));
        set(f_sta_stage12_, macro, lane, trained(f_byp_vga_ctrl_, f_byp_vga_, 20));
        set(f_sta_hf_gray_, macro, lane, trained(f_byp_hf_ctrl_, f_byp_hf_, _gray(7)));
        set(f_sta_lf_gray_, macro, lane, trained(f_byp_lf_ctrl_, f_byp_lf_, _gray(3)));
    }
}

void SerdesEngine::eye_measure(uint32_t macro, uint32_t lane)
{
    const uint32_t sid = _sid(macro, lane);
    const SerdesFabric::LaneView v = fabric_->view(chip_.id(), sid);
    if (!v.cdr_locked || (fabric_->faults(chip_.id(), sid) & TIDE_SIM_SERDES_NEVER_CALIBRATE) != 0) {
        set(f_eye_done_, macro, lane, 0);
        return;
    }
    const int x = static_cast<int8_t>(get(f_eye_x_, macro, lane));
    const uint32_t y_raw = get(f_eye_y_, macro, lane);
    const int y_mag = static_cast<int>(_ungray(y_raw & 0x3F));
    const int y = (y_raw & 0x40) != 0 ? -y_mag : y_mag;
    const bool fast = v.facts.rate.bps() >= kFastBps;
    const int half_w = fast ? 14 : 20, half_h = fast ? 30 : 40;
    const int over_x = (x < 0 ? -x : x) - half_w + 1, over_y = (y < 0 ? -y : y) - half_h + 1;
    const uint32_t steps = static_cast<uint32_t>((over_x > 0 ? over_x : 0) + (over_y > 0 ? over_y : 0));
    const uint32_t errors = steps * kEyeErrorsPerStep;
    set(f_eye_errors_, macro, lane, errors < kEyeErrorsMax ? errors : kEyeErrorsMax);
    set(f_eye_done_, macro, lane, 1);
}

// One round of the offset calibration: readings near the lane's own
// offsets, a little different each round and far off every fifth, as a
// noisy comparator gives them.
void SerdesEngine::calibration_round(uint32_t macro, uint32_t lane)
{
    const uint32_t sid = _sid(macro, lane);
    if ((fabric_->faults(chip_.id(), sid) & TIDE_SIM_SERDES_NEVER_CALIBRATE) != 0) {
        set(f_ofs_sel_, macro, lane, 0);
        set(f_los_ossel_, macro, lane, 0);
        for (const Fld &f : f_slicer_) {
            set(f, macro, lane, 0);
        }
        return;
    }
    const uint32_t round = ++cal_round_[sid];
    const uint32_t base = 10 + (chip_.id() + sid) % 7;
    set(f_ofs_sel_, macro, lane, base + round % 3);
    set(f_los_ossel_, macro, lane, 16 + sid % 5);
    for (uint32_t ch = 0; ch < 4; ch++) {
        uint32_t word = 0;
        for (uint32_t k = 0; k < 5; k++) {
            int v = static_cast<int>((sid * 5 + ch * 3 + k) % 7) - 3 + static_cast<int>(round % 2);
            v += round % 5 == 0 ? 9 : 0;
            const uint32_t mag = static_cast<uint32_t>(v < 0 ? -v : v) & 0x1F;
            word |= ((v < 0 ? 0x20u : 0u) | _gray(mag)) << (6 * k);
        }
        set(f_slicer_[ch], macro, lane, word);
    }
}

void SerdesEngine::phy_status(uint32_t macro)
{
    uint32_t ready_rx = 0, ready_tx = 0, los = chip_.core_word(a_rx_los_[macro]);
    for (uint32_t lane = 0; lane < desc::kSerdesLanes; lane++) {
        const uint32_t sid = _sid(macro, lane);
        const SerdesFabric::LaneView v = fabric_->view(chip_.id(), sid);
        ready_rx |= (v.cdr_locked ? 1u : 0u) << lane;
        ready_tx |= (v.facts.tx_on ? 1u : 0u) << lane;
        los = word_set(los, f_rx_los_[lane], fabric_->signal_present(chip_.id(), sid) ? 0 : 1);
    }
    chip_.set_core_word(a_rx_los_[macro], los);
    chip_.set_core_word(a_rx_ready_[macro], ready_rx);
    chip_.set_core_word(a_tx_ready_[macro], ready_tx);
}

} // namespace tide::sim
