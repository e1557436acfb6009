// The model's MAC side: the 400 MHz input clock, the link of the front
// ports, auto-negotiation, the MAC data path gate and the link events.
#include "sim/sim_mac.h"

#include <cstring>
#include <set>
#include <string>

#include "sim/sim_int.h"
#include "sim/sim_intr.h"
#include "sim/sim_intr_desc.h"
#include "sim/sim_mac_diag.h"
#include "sim/sim_serdes.h"

namespace tide::sim {

namespace {

// General registers of BAR 3: the clock's control and status words.
constexpr uint32_t kClkCtrlAddr = 0x47030;
constexpr uint32_t kClkStatusAddr = 0x47044;
constexpr uint32_t kClkPulseBit = 1u << 20;
constexpr uint32_t kClkLockBit = 1u << 21;

// lsw_hreg_soft_rst: a set bit lets the block run.
constexpr uint32_t kSoftRstPcs0 = 11;
constexpr uint32_t kSoftRstMac0 = 19;

// The MAGs of the two glue modes and the lport of each of their MACs.
struct MagLayout {
    uint8_t count;
    uint8_t lport[8];
};
constexpr MagLayout kGlue[2][kMags] = {
    {{4, {0, 1, 2, 3}},
     {4, {4, 5, 6, 7}},
     {8, {8, 9, 10, 11, 12, 13, 14, 15}},
     {8, {16, 17, 18, 19, 20, 21, 22, 23}},
     {1, {24}},
     {1, {26}},
     {1, {25}},
     {1, {27}}},
    {{4, {0, 1, 2, 3}},
     {4, {4, 5, 6, 7}},
     {4, {8, 9, 10, 11}},
     {4, {12, 13, 14, 15}},
     {1, {24}},
     {1, {26}},
     {4, {16, 17, 18, 19}},
     {4, {20, 21, 22, 23}}},
};
// The MAC group of each lport: the unit of MAC reset and clock gate.
constexpr uint8_t kMacGroup[kMacPorts] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1,
                                          1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 4, 4};

bool _place(uint32_t mode, uint32_t lport, uint32_t *mag, uint32_t *mac)
{
    for (uint32_t m = 0; m < kMags; m++) {
        for (uint32_t i = 0; i < kGlue[mode][m].count; i++) {
            if (kGlue[mode][m].lport[i] == lport) {
                *mag = m;
                *mac = i;
                return true;
            }
        }
    }
    return false;
}

// The flat index of a MAC among the auto-negotiation channels.
uint32_t _channel(uint32_t mag, uint32_t mac)
{
    if (mag < 2) {
        return mag * 4 + mac;
    }
    if (mag < 4) {
        return mag * 8 - 8 + mac;
    }
    if (mag < 6) {
        return mag + 20 + mac;
    }
    return mag * 4 + 2 + mac;
}

// The coding of a MAG's protocol_type, and whether it negotiates.
enum Coding : uint32_t { kNone = 0, k8b10b = 1, k6466b = 2, k4b5b = 3 };
struct Proto {
    Coding coding;
    bool an;
};
Proto _proto(uint32_t protocol_type)
{
    switch (protocol_type) {
    case 0: // 1000BASE-X, 2500BASE-X
    case 1: // the SGMII family
    case 2: // SGMII_4P, OSGMII
        return {k8b10b, true};
    case 7: // 100BASE-FX
        return {k4b5b, false};
    case 8: // 10GBASE-R
        return {k6466b, false};
    case 9:  // FLEXMII
    case 10: // MMAC and the 10G-xXGMII
        return {k6466b, true};
    default:
        return {kNone, false};
    }
}

// an_speed codes by coding.
uint32_t _speed_code(Coding coding, uint32_t mbps)
{
    switch (mbps) {
    case 10:
        return 0;
    case 100:
        return 1;
    case 1000:
        return 2;
    case 2500:
        return coding == k8b10b ? 2 : 4;
    case 5000:
        return 5;
    case 10000:
        return 3;
    default:
        return 2;
    }
}

bool _bit(uint32_t word, uint32_t bit)
{
    return bit < 32 && ((word >> bit) & 1) != 0;
}

// The cause at which the local part of a port's state ends: the port is
// absent, unconfigured, held or forced down.
bool _local_down(uint32_t cause)
{
    return cause >= TIDE_SIM_MAC_DOWN_NO_PORT && cause <= TIDE_SIM_MAC_DOWN_FORCED;
}

// The MIB items of a MAC by role: the names of their register pairs
// (mac_mib_<name>_l and _h) for receive and transmit, nullptr where a
// direction has none.
enum MibRole : uint32_t {
    kMibTotalPkt, kMibTotalByte, kMibGoodPkt, kMibGoodByte, kMibBadPkt, kMibBadByte, kMibUnicast, kMibMulticast,
    kMibBroadcast, kMibUndersize, kMibFragment, kMibUndermin, kMib64, kMib127, kMib255, kMib511, kMib1023, kMib1518,
    kMibMax1519, kMibMax1519Good, kMibMax1519Bad, kMibOvermaxGood, kMibOvermaxBad, kMibPause, kMibCtrl, kMibErrAll,
    kMibFcsErr, kMibRoles
};
struct MibName {
    const char *rx;
    const char *tx;
};
constexpr MibName kMibNames[MacEngine::kMibItems] = {
    {"rx_total_pkt", "tx_total_pkt"}, {"rx_total_byte", "tx_total_byte"}, {"rx_good_pkt", "tx_good_pkt"},
    {"rx_good_byte", "tx_good_byte"}, {"rx_bad_pkt", "tx_bad_pkt"}, {"rx_bad_byte", "tx_bad_byte"},
    {"rxunicast", "txunicast"}, {"rxmulticast", "txmulticast"}, {"rxbroadcast", "txbroadcast"},
    {"rxundersize", "txundersized"}, {"rx_fragment", "txfragment"}, {"rxundermin", "txundermin"},
    {"rx_64", "tx_64"}, {"rx_127_65", "tx_127_65"}, {"rx_255_128", "tx_255_128"}, {"rx_511_256", "tx_511_256"},
    {"rx_1023_512", "tx_1023_512"}, {"rx_1518_1024", "tx_1518_1024"}, {"rx_max_1519", "tx_max_1519"},
    {"rx_max_1519_good", "tx_max_1519_good"}, {"rx_max_1519_bad", "tx_max_1519_bad"},
    {"rx_overmax_good", "tx_overmax_good"}, {"rx_overmax_bad", "tx_overmax_bad"}, {"rxpause", "txpause"},
    {"rxctrl", "txctrl"}, {"rx_err_all", "txerr_all"}, {"rxfcs_err", nullptr},
    // Items the model never counts (no symbol errors, alignment or
    // half-duplex collisions on its wires); they read 0 and clear alike.
    {"rxsymbol_err", "tx_half_deferral"}, {"rx_segment_bytes", "tx_half_singel_col"},
    {"rx_align_err", "tx_half_multi_col"}, {nullptr, "tx_half_excessive_col"}, {nullptr, "tx_half_late_col"},
    {nullptr, "tx_half_crs_lost"}, {nullptr, nullptr}, {nullptr, nullptr}, {nullptr, nullptr},
};
static_assert(kMibRoles <= MacEngine::kMibItems);

// The size class of a frame of `wire` bytes (with FCS) of 64 and more.
uint32_t _size_class(uint32_t wire)
{
    constexpr uint32_t kTops[] = {64, 127, 255, 511, 1023, 1518};
    for (uint32_t i = 0; i < 6; i++) {
        if (wire <= kTops[i]) {
            return kMib64 + i;
        }
    }
    return kMibMax1519;
}

constexpr uint32_t kFcsBytes = 4;
constexpr uint32_t kMinWire = 64;
constexpr uint16_t kMacControlType = 0x8808;
constexpr uint16_t kPauseOpcode = 0x0001;

} // namespace

MacEngine::MacEngine(Chip &chip, SerdesFabric *fabric) : chip_(chip), fabric_(fabric)
{
    glue_mode_ = need("mag_glue_glue_mode_cfg", "glue_mode_cfg");
    glue_rst_ = need("mag_glue_rst_cfg", "glue_rst");
    soft_rst_ = need("lsw_hreg_soft_rst", "soft_rst");
    gate_pcs_ = need("lsw_hreg_clk_gating_en", "clk_mag_pcs_gating_en");
    gate_mac_ = need("lsw_hreg_clk_gating_en", "clk_mag_mac_gating_en");
    mac_glb_rst_ = need("mac_glb_rst_cfg", "mac_rst");
    pcs_rst_ = need("pcs_glb_pcs_rst", "pcs_rst");
    sds_rst_ = need("pcs_glb_pcs_rst", "sds_rst");
    pcs_port_rst_ = need("pcs_glb_pcs_rst", "port_rst");
    protocol_ = need("pcs_glb_protocol_type", "protocol_type");
    ch_num_ = need("pcs_glb_protocol_type", "ch_num");
    mac_rst_ = need("mac_port_rst_cfg", "mac_rst");
    map_port_rst_ = need("mag_map_port_rst", "port_rst");
    tx_en_ = need("mac_port_enable_cfg", "tx_en");
    rx_en_ = need("mac_port_enable_cfg", "rx_en");
    inloop_ = need("mac_port_inloop_cfg", "inloop_en");
    outloop_ = need("mag_map_outloop_cfg", "port_outloop_en");
    const char *force[] = {"pcs_8b10b_force_link_set", "pcs_6466b_force_link_set", "pcs_4b5b_force_link_set"};
    for (uint32_t c = 0; c < 3; c++) {
        force_en_[c] = need(force[c], "force_link_en");
        force_cfg_[c] = need(force[c], "force_link_cfg");
        force_kd_[c] = need(force[c], "force_err_kd");
    }
    an_enable_ = need("pcs_an_pcs_an_ctrl_2", "an_enable");
    an_restart_ = need("pcs_an_pcs_an_ctrl_2", "an_restart");
    an_link_en_ = need("pcs_an_pcs_an_ctrl_2", "an_link_en");
    an_rst_ = need("pcs_an_an_rst", "an_rst");
    an_adv_ = need("pcs_an_pcs_an_ctrl_0", "tx_cfg_dat");
    an_status_ = need("pcs_an_pcs_an_status_1", "an_state");
    ch_link_ = need("mag_glb_ch_link", "ch_link");
    ch_stat_ = need("pcs_6466b_ch_stat", "ch_stat");
    DescNeeds needs;
    const desc::Register *st = an_status_.reg;
    st_pause_ = needs.field(st, "an_pause");
    st_speed_ = needs.field(st, "an_speed");
    st_state_ = needs.field(st, "an_state");
    st_link_up_ = needs.field(st, "an_link_up");
    st_phy_link_ = needs.field(st, "an_phy_link");
    st_link_ = needs.field(st, "an_link");
    st_duplex_ = needs.field(st, "an_duplex");
    st_tx_xmit_ = needs.field(st, "tx_xmit");
    st_rx_xmit_ = needs.field(st, "rx_xmit");
    st_remote_fault_ = needs.field(st, "an_remote_fault");
    ok_ &= needs.ok && fabric_ != nullptr;
    mib_clr_mode_ = need("mac_port_mib_cfg", "mib_clr_mode");
    clr_cnt_ = need("mac_port_clr_cnt_cfg", "clr_cnt_cfg");
    rx_max_len_ = need("mac_port_rx_pkt_cfg", "rx_max_len");
    tx_max_len_ = need("mac_port_tx_pkt_cfg", "tx_max_len");
    rx_min_len_ = need("mac_port_rx_pkt_cfg", "rx_min_len");
    tx_min_len_ = need("mac_port_tx_pkt_cfg", "tx_min_len");
    for (uint32_t dir = 0; dir < 2; dir++) {
        for (uint32_t item = 0; item < kMibItems; item++) {
            const char *name = dir == 0 ? kMibNames[item].rx : kMibNames[item].tx;
            if (name == nullptr) {
                continue;
            }
            const std::string base = std::string("mac_mib_") + name;
            MibPair &p = mib_pairs_[dir][item];
            p.lo = desc::find_table((base + "_l").c_str());
            p.hi = desc::find_table((base + "_h").c_str());
            ok_ &= p.lo != nullptr && p.hi != nullptr && p.lo->instances >= kMacPorts &&
                   p.hi->instances >= kMacPorts;
        }
    }
    ev_mac_link_down_ = event_of("mac_port_int_stat", "link_down_int");
    ev_8b10b_up_ = event_of("pcs_8b10b_int_stat", "link_up_int");
    ev_8b10b_down_ = event_of("pcs_8b10b_int_stat", "link_down_int");
    ev_6466b_down_ = event_of("pcs_6466b_int_stat", "link_down_int");
    ev_4b5b_down_ = event_of("pcs_4b5b_int_stat", "link_down_int");
    ev_an_done_ = event_of("pcs_an_int_stat", "an_done_int");
    ev_an_restart_ = event_of("pcs_an_int_stat", "an_restart_int");
    diag_ = std::make_unique<MacDiag>(*this);
    path_fields();
}

MacEngine::~MacEngine() = default;

MacEngine::Fld MacEngine::need(const char *reg, const char *field)
{
    Fld out;
    out.reg = desc::find_register(reg);
    if (out.reg == nullptr || out.reg->instances == 0) {
        ok_ = false;
        out.reg = nullptr;
        return out;
    }
    out.f = field_of(out.reg->fields, out.reg->field_count, field);
    ok_ &= out.f.ok();
    return out;
}

uint32_t MacEngine::get(const Fld &f, uint32_t instance) const
{
    if (f.reg == nullptr || instance >= f.reg->instances) {
        return 0;
    }
    return word_get(chip_.core_word(f.reg->addrs[instance]), f.f);
}

void MacEngine::set(const Fld &f, uint32_t instance, uint32_t value)
{
    if (f.reg != nullptr && instance < f.reg->instances) {
        const uint32_t a = f.reg->addrs[instance];
        chip_.set_core_word(a, word_set(chip_.core_word(a), f.f, value));
    }
}

// The interrupt type whose status bits are `field` of `status_reg`.
MacEngine::Event MacEngine::event_of(const char *status_reg, const char *field)
{
    Event e;
    const desc::Register *r = desc::find_register(status_reg);
    const desc::Field *f = r != nullptr ? desc::find_field(r->fields, r->field_count, field) : nullptr;
    for (size_t i = 0; f != nullptr && i < desc::kIntrTypeCount; i++) {
        const desc::IntrType &t = desc::kIntrTypes[i];
        if (strcmp(t.status_reg, status_reg) == 0 && t.low == f->low) {
            e.module = t.module;
            e.subid = t.subid;
            e.type = t.type;
            break;
        }
    }
    ok_ &= e.module >= 0;
    return e;
}

void MacEngine::raise(const Event &e, uint32_t instance)
{
    if (e.module >= 0 && chip_.intr != nullptr) {
        chip_.intr->raise(static_cast<uint32_t>(e.module), static_cast<uint32_t>(e.subid),
                          static_cast<uint32_t>(e.type), instance);
    }
}

void MacEngine::install()
{
    chip_.on_write(3, kClkCtrlAddr, [this](Chip &, uint32_t, uint32_t, uint64_t v) {
        on_clock_write(static_cast<uint32_t>(v));
    });
    if (!ok_) {
        return;
    }
    // Every write of a register the link depends on recomputes the ports.
    std::set<uint32_t> words;
    const Fld *inputs[] = {&glue_mode_, &glue_rst_, &soft_rst_, &gate_pcs_, &mac_glb_rst_, &pcs_rst_, &protocol_,
                           &mac_rst_, &map_port_rst_, &tx_en_, &inloop_, &outloop_, &force_en_[0], &force_en_[1],
                           &force_en_[2], &an_rst_, &an_adv_};
    for (const Fld *f : inputs) {
        for (uint32_t i = 0; i < f->reg->instances; i++) {
            words.insert(f->reg->addrs[i]);
        }
    }
    for (uint32_t a : words) {
        chip_.on_write(4, a, [this](Chip &, uint32_t, uint32_t, uint64_t) { update(); });
    }
    for (uint32_t ch = 0; ch < an_enable_.reg->instances; ch++) {
        chip_.on_write(4, an_enable_.reg->addrs[ch], [this, ch](Chip &, uint32_t, uint32_t, uint64_t) {
            on_an_write(ch);
        });
    }
    // The MIB: a read of a low word latches its pair; a pulse of
    // clr_cnt_cfg clears the port's counts.
    for (uint32_t dir = 0; dir < 2; dir++) {
        for (uint32_t item = 0; item < kMibItems; item++) {
            const MibPair &p = mib_pairs_[dir][item];
            for (uint32_t lport = 0; p.lo != nullptr && lport < kMacPorts; lport++) {
                chip_.on_read(4, p.lo->addrs[lport], [this, lport, dir, item](Chip &, uint32_t, uint32_t) {
                    mib_read(lport, dir, item, false);
                });
                chip_.on_read(4, p.hi->addrs[lport], [this, lport, dir, item](Chip &, uint32_t, uint32_t) {
                    mib_read(lport, dir, item, true);
                });
                chip_.on_write(4, p.lo->addrs[lport], [this, lport, dir, item](Chip &, uint32_t, uint32_t, uint64_t) {
                    mib_write(lport, dir, item, false);
                });
                chip_.on_write(4, p.hi->addrs[lport], [this, lport, dir, item](Chip &, uint32_t, uint32_t, uint64_t) {
                    mib_write(lport, dir, item, true);
                });
            }
        }
    }
    for (uint32_t lport = 0; lport < kMacPorts; lport++) {
        chip_.on_write(4, clr_cnt_.reg->addrs[lport], [this, lport](Chip &, uint32_t, uint32_t, uint64_t) {
            if (get(clr_cnt_, lport) != 0) {
                mib_clear(lport);
            }
        });
    }
    // The status words are brought up to date before the CPU reads them.
    const Fld *status[] = {&ch_link_, &an_status_, &ch_stat_};
    for (const Fld *f : status) {
        for (uint32_t i = 0; i < f->reg->instances; i++) {
            chip_.on_read(4, f->reg->addrs[i], [this](Chip &, uint32_t, uint32_t) { update(); });
        }
    }
    diag_->install();
    path_install();
}

void MacEngine::clear()
{
    clk_pulse_high_ = false;
    mib_ = {};
    mib_latched_ = {};
    mib_dirty_ = {};
    crc_pending_ = {};
    link_was_ = {};
    an_done_was_ = {};
    an_restart_was_ = {};
    diag_->clear();
    fault_was_ = {};
    if (ok_) {
        update();
    }
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

// A restart (the rising edge of an_restart) starts the negotiation again:
// it completes at once, and its done event comes again.
void MacEngine::on_an_write(uint32_t channel)
{
    const bool restart = get(an_restart_, channel) != 0;
    if (restart && !an_restart_was_[channel]) {
        raise(ev_an_restart_, channel);
        an_done_was_[channel] = false;
    }
    an_restart_was_[channel] = restart;
    update();
}

bool MacEngine::place(uint32_t lport, uint32_t *mag, uint32_t *mac) const
{
    const uint32_t mode = get(glue_mode_);
    return mode <= 1 && _place(mode, lport, mag, mac);
}

MacEngine::PortState MacEngine::state(uint32_t lport) const
{
    PortState s;
    s.rx_en = get(rx_en_, lport) != 0;
    s.tx_en = get(tx_en_, lport) != 0;
    const uint32_t mode = get(glue_mode_);
    if (mode > 1 || !_place(mode, lport, &s.mag, &s.mac)) {
        return s;
    }
    s.channel = _channel(s.mag, s.mac);
    const uint32_t protocol = get(protocol_, s.mag);
    const Proto pr = _proto(protocol);
    s.coding = pr.coding;
    if (pr.coding == kNone || s.mac >= (1u << get(ch_num_, s.mag)) || (pr.coding == k6466b && s.mag < 2)) {
        s.cause = TIDE_SIM_MAC_DOWN_NO_INTERFACE;
        return s;
    }
    if (get(glue_rst_) != 0) {
        s.cause = TIDE_SIM_MAC_DOWN_GLUE_RESET;
        return s;
    }
    const uint32_t soft = get(soft_rst_);
    if (!_bit(soft, kSoftRstPcs0 + s.mag) || _bit(get(gate_pcs_), s.mag) || get(pcs_rst_, s.mag) != 0 ||
        get(sds_rst_, s.mag) != 0 || _bit(get(pcs_port_rst_, s.mag), s.mac) || pcs_port_held(s, pr.coding)) {
        s.cause = TIDE_SIM_MAC_DOWN_PCS_RESET;
        return s;
    }
    const uint32_t group = kMacGroup[lport];
    if (!_bit(soft, kSoftRstMac0 + group) || _bit(get(gate_mac_), group) || get(mac_glb_rst_, group) != 0 ||
        get(mac_rst_, lport) != 0 || _bit(get(map_port_rst_), lport)) {
        s.cause = TIDE_SIM_MAC_DOWN_MAC_RESET;
        return s;
    }
    const uint32_t c = pr.coding - 1, fi = pr.coding == k6466b ? s.mag - 2 : s.mag;
    const bool force = _bit(get(force_en_[c], fi), s.mac);
    if (force && _bit(get(force_kd_[c], fi), s.mac)) {
        s.cause = TIDE_SIM_MAC_DOWN_FORCED;
        return s;
    }
    const bool forced_up = force && _bit(get(force_cfg_[c], fi), s.mac);
    // What arrives: the MAC's own frames in an inner loop, the lane's far
    // end with a cable or plug, the frame endpoint otherwise.
    tide_sim_mac_partner partner{};
    partner_abilities(lport, s, protocol, &partner);
    bool negotiates = partner.negotiates != 0;
    uint32_t down = TIDE_SIM_MAC_UP;
    bool phy_line = true;
    if (get(inloop_, lport) != 0) {
        s.signal = true;
        s.rx_fault = fault_inserted(s); // a loop sees its own
    } else {
        const SerdesFabric::LaneView v = fabric_->view(chip_.id(), s.mag);
        if (v.link == SerdesFabric::Link::none) {
            s.signal = partners_[lport].plugged;
            down = s.signal ? down : TIDE_SIM_MAC_DOWN_NO_SIGNAL;
            phy_line = partners_[lport].phy_line;
        } else if (!v.cdr_locked) {
            down = TIDE_SIM_MAC_DOWN_NO_SIGNAL;
        } else {
            const PcsTx far = fabric_->pcs_arriving(chip_.id(), s.mag);
            s.signal = far.on && far.protocol == protocol && _bit(far.sending, s.mac);
            down = s.signal ? down : TIDE_SIM_MAC_DOWN_NO_PARTNER;
            negotiates = _bit(far.an, s.mac);
            partner.pause = (far.adv[s.mac] >> 7) & 3;
            s.rx_fault = s.signal && pr.coding == k6466b ? far.fault[s.mac] : 0;
        }
        if (down == TIDE_SIM_MAC_UP && diag_->clk_down(s.mag)) {
            down = TIDE_SIM_MAC_DOWN_CLK_LOST;
        }
    }
    s.phy_link = s.signal && phy_line;
    s.an_active = pr.an && !forced_up && get(an_enable_, s.channel) != 0;
    if (s.an_active && s.signal && negotiates && get(an_rst_, s.channel) == 0) {
        s.an_done = true;
        s.an_speed = _speed_code(pr.coding, partner.speed);
        s.an_duplex = partner.duplex;
        s.an_pause = partner.pause;
    }
    if (forced_up) {
        down = TIDE_SIM_MAC_UP;
    } else if (down == TIDE_SIM_MAC_UP && s.rx_fault != 0) {
        down = TIDE_SIM_MAC_DOWN_FAULT;
    } else if (down == TIDE_SIM_MAC_UP && s.an_active && !s.an_done && get(an_link_en_, s.channel) != 0) {
        down = TIDE_SIM_MAC_DOWN_AN;
    } else if (down == TIDE_SIM_MAC_UP && s.an_active && !phy_line && get(phy_link_en_, s.channel) != 0) {
        down = TIDE_SIM_MAC_DOWN_PHY_LINK;
    }
    s.cause = down;
    s.link = down == TIDE_SIM_MAC_UP;
    return s;
}

// What the partner of a port advertises: the knob's abilities, or by
// default the port's own: the fastest speed of its interface (the lane's
// rate tells 2500BASE-X and 2G5_SGMII from their 1 Gbit/s twins), full
// duplex and the port's own pause bits.
void MacEngine::partner_abilities(uint32_t lport, const PortState &s, uint32_t protocol,
                                  tide_sim_mac_partner *out) const
{
    if (partners_[lport].custom) {
        *out = partners_[lport].abilities;
        return;
    }
    const uint32_t channels = 1u << get(ch_num_, s.mag);
    uint32_t speed = 1000;
    if (protocol == 9 || protocol == 10) {
        speed = channels == 1 ? 10000 : (channels == 2 ? 5000 : 2500);
    } else if (protocol <= 1 && channels == 1) {
        speed = fabric_->view(chip_.id(), s.mag).facts.rate.bps() > 2000000000ull ? 2500 : 1000;
    }
    out->negotiates = 1;
    out->speed = speed;
    out->duplex = 1;
    out->pause = (get(an_adv_, s.channel) >> 7) & 3;
}

// What each lane's PCS sends toward its far end.
void MacEngine::publish()
{
    std::array<PcsTx, kMags> tx{};
    const uint32_t mode = get(glue_mode_);
    for (uint32_t lport = 0; mode <= 1 && lport < kMacPorts; lport++) {
        const PortState s = state(lport);
        if (s.cause == TIDE_SIM_MAC_DOWN_NO_PORT || s.cause == TIDE_SIM_MAC_DOWN_NO_INTERFACE) {
            continue;
        }
        PcsTx &t = tx[s.mag];
        const uint32_t protocol = get(protocol_, s.mag);
        if (s.cause != TIDE_SIM_MAC_DOWN_GLUE_RESET && s.cause != TIDE_SIM_MAC_DOWN_PCS_RESET) {
            t.on = true;
            t.protocol = protocol;
        }
        if (!_local_down(s.cause)) {
            t.sending |= 1u << s.mac;
        }
        t.placed |= 1u << s.mac;
        t.lport[s.mac] = static_cast<uint8_t>(lport);
        t.fault[s.mac] = static_cast<uint8_t>(fault_sent(s));
        if (_proto(protocol).an && get(an_enable_, s.channel) != 0) {
            t.an |= 1u << s.mac;
        }
        t.adv[s.mac] = static_cast<uint16_t>(get(an_adv_, s.channel));
    }
    for (uint32_t mag = 0; mag < kMags; mag++) {
        fabric_->pcs_publish(chip_.id(), mag, tx[mag]);
    }
}

void MacEngine::update()
{
    if (!ok_ || updating_) {
        return;
    }
    updating_ = true;
    publish();
    uint32_t link_words[2] = {};
    uint32_t ch_stat[kMags] = {};
    const uint32_t mode = get(glue_mode_);
    for (uint32_t lport = 0; lport < kMacPorts; lport++) {
        const PortState s = state(lport);
        const bool placed = mode <= 1 && s.cause != TIDE_SIM_MAC_DOWN_NO_PORT;
        if (placed) {
            if (s.link) {
                link_words[s.mag >> 2] |= 1u << ((s.mag & 3) * 8 + s.mac);
            }
            uint32_t w = 0;
            w = word_set(w, st_state_, s.an_done);
            w = word_set(w, st_link_, s.an_done);
            w = word_set(w, st_tx_xmit_, s.an_done);
            w = word_set(w, st_rx_xmit_, s.an_done);
            w = word_set(w, st_phy_link_, s.phy_link);
            w = word_set(w, st_link_up_, s.link);
            w = word_set(w, st_speed_, s.an_speed);
            w = word_set(w, st_duplex_, s.an_duplex);
            w = word_set(w, st_pause_, s.an_pause);
            w = word_set(w, st_remote_fault_, s.rx_fault == 2);
            if (s.channel < an_status_.reg->instances) {
                chip_.set_core_word(an_status_.reg->addrs[s.channel], w);
            }
            // The 64B/66B PCS reports a local fault while it receives
            // nothing, a link interruption while it is forced down.
            if (s.cause == TIDE_SIM_MAC_DOWN_NO_SIGNAL || s.cause == TIDE_SIM_MAC_DOWN_NO_PARTNER) {
                ch_stat[s.mag] |= 1u << 4;
            } else if (s.cause == TIDE_SIM_MAC_DOWN_FORCED) {
                ch_stat[s.mag] |= 1u << 2;
            }
            ch_stat[s.mag] |= fault_stat(lport, s);
            if (s.an_done && !an_done_was_[s.channel]) {
                raise(ev_an_done_, s.channel);
            }
            an_done_was_[s.channel] = s.an_done;
        }
        if (s.link != link_was_[lport]) {
            link_was_[lport] = s.link;
            const Proto pr = _proto(get(protocol_, s.mag));
            if (!s.link) {
                raise(ev_mac_link_down_, lport);
            }
            if (pr.coding == k8b10b) {
                raise(s.link ? ev_8b10b_up_ : ev_8b10b_down_, s.mag);
            } else if (pr.coding == k6466b && !s.link && s.mag >= 2) {
                raise(ev_6466b_down_, s.mag - 2);
            } else if (pr.coding == k4b5b && !s.link) {
                raise(ev_4b5b_down_, s.mag);
            }
        }
    }
    set(ch_link_, 0, link_words[0]);
    set(ch_link_, 1, link_words[1]);
    for (uint32_t mag = 2; mag < kMags; mag++) {
        if (_proto(get(protocol_, mag)).coding == k6466b) {
            set(ch_stat_, mag - 2, ch_stat[mag]);
        }
    }
    diag_->evaluate();
    updating_ = false;
}

// ---- knobs -------------------------------------------------------------------------

int MacEngine::partner_flag(uint32_t lport, bool Partner::*flag, bool on)
{
    if (lport >= kMacPorts) {
        return -4;
    }
    partners_[lport].*flag = on;
    update();
    return 0;
}

int MacEngine::endpoint(uint32_t lport, bool plugged)
{
    return partner_flag(lport, &Partner::plugged, plugged);
}

int MacEngine::partner(uint32_t lport, const tide_sim_mac_partner *p)
{
    if (lport >= kMacPorts) {
        return -4;
    }
    if (p != nullptr) {
        const uint32_t speeds[] = {10, 100, 1000, 2500, 5000, 10000};
        bool speed_ok = false;
        for (uint32_t sp : speeds) {
            speed_ok |= p->speed == sp;
        }
        if (!speed_ok || p->duplex > 1 || p->pause > 3) {
            return -4;
        }
        partners_[lport].abilities = *p;
    }
    partners_[lport].custom = p != nullptr;
    update();
    return 0;
}

int MacEngine::phy_line(uint32_t lport, bool up)
{
    return partner_flag(lport, &Partner::phy_line, up);
}

int MacEngine::port_get(uint32_t lport, tide_sim_mac_port *out)
{
    if (lport >= kMacPorts) {
        return -4;
    }
    const PortState s = state(lport);
    *out = tide_sim_mac_port{};
    out->link = s.link;
    out->down = s.cause;
    out->mag = s.mag;
    out->mac = s.mac;
    out->channel = s.channel;
    out->rx_en = s.rx_en;
    out->tx_en = s.tx_en;
    out->an_done = s.an_done;
    out->an_speed = s.an_speed;
    out->an_duplex = s.an_duplex;
    out->an_pause = s.an_pause;
    return 0;
}

bool MacEngine::lane_signal(uint32_t mag) const
{
    const SerdesFabric::LaneView v = fabric_->view(chip_.id(), mag);
    if (v.link != SerdesFabric::Link::none) {
        return v.cdr_locked;
    }
    const uint32_t mode = get(glue_mode_);
    for (uint32_t i = 0; mode <= 1 && mag < kMags && i < kGlue[mode][mag].count; i++) {
        if (partners_[kGlue[mode][mag].lport[i]].plugged) {
            return true;
        }
    }
    return false;
}

// ---- MIB ---------------------------------------------------------------------------------

void MacEngine::count(uint32_t lport, uint32_t dir, const uint8_t *frame, uint32_t len, bool good)
{
    if (lport >= kMacPorts || len < 14) {
        return;
    }
    diag_->frame(lport, dir, good);
    std::array<uint64_t, kMibItems> &counts = mib_[lport][dir];
    std::array<bool, kMibItems> &dirty = mib_dirty_[lport][dir];
    auto add = [&](uint32_t item, uint64_t n = 1) {
        counts[item] += n;
        dirty[item] = true;
    };
    const uint32_t wire = len + kFcsBytes;
    add(kMibTotalPkt);
    add(kMibTotalByte, wire);
    add(good ? kMibGoodPkt : kMibBadPkt);
    add(good ? kMibGoodByte : kMibBadByte, wire);
    if (!good) {
        add(kMibErrAll);
        if (dir == 0) {
            add(kMibFcsErr);
        }
    }
    bool broadcast = true;
    for (uint32_t i = 0; i < 6; i++) {
        broadcast &= frame[i] == 0xFF;
    }
    add(broadcast ? kMibBroadcast : ((frame[0] & 1) != 0 ? kMibMulticast : kMibUnicast));
    if (wire < kMinWire) {
        add(good ? kMibUndersize : kMibFragment);
    } else {
        const uint32_t cls = _size_class(wire);
        add(cls);
        if (cls == kMibMax1519) {
            add(good ? kMibMax1519Good : kMibMax1519Bad);
        }
    }
    const uint32_t max_len = get(dir == 0 ? rx_max_len_ : tx_max_len_, lport);
    const uint32_t min_len = get(dir == 0 ? rx_min_len_ : tx_min_len_, lport);
    if (max_len != 0 && wire > max_len) {
        add(good ? kMibOvermaxGood : kMibOvermaxBad);
    }
    if (wire < min_len) {
        add(kMibUndermin);
    }
    const uint16_t type = static_cast<uint16_t>(frame[12] << 8 | frame[13]);
    if (type == kMacControlType) {
        add(kMibCtrl);
        if (len >= 16 && static_cast<uint16_t>(frame[14] << 8 | frame[15]) == kPauseOpcode) {
            add(kMibPause);
        }
    }
}

void MacEngine::count_rx(uint32_t lport, const uint8_t *frame, uint32_t len, bool good)
{
    count(lport, 0, frame, len, good);
}

void MacEngine::count_tx(uint32_t lport, const uint8_t *frame, uint32_t len)
{
    count(lport, 1, frame, len, true);
}

int MacEngine::crc_errors(uint32_t lport, uint32_t n)
{
    if (lport >= kMacPorts) {
        return -4;
    }
    crc_pending_[lport] = n;
    return 0;
}

// A CPU read of one word of a pair.  The words take the count when it has
// moved since they were last written.  The low word latches the high word
// as it stands, so that the pair read low first belongs together, and
// with mib_clr_mode other than 1 its read clears the count (the words
// follow at the next read).  A high word read without its low word gives
// the count's high half as it stands.
void MacEngine::mib_read(uint32_t lport, uint32_t dir, uint32_t item, bool high)
{
    const MibPair &p = mib_pairs_[dir][item];
    uint64_t &v = mib_[lport][dir][item];
    bool &latched = mib_latched_[lport][dir][item];
    bool &dirty = mib_dirty_[lport][dir][item];
    if (high && latched) {
        latched = false;
        return;
    }
    if (dirty) {
        chip_.set_core_word(p.lo->addrs[lport], static_cast<uint32_t>(v));
        chip_.set_core_word(p.hi->addrs[lport], static_cast<uint32_t>(v >> 32));
        dirty = false;
    }
    if (high) {
        return;
    }
    latched = true;
    if (get(mib_clr_mode_, lport) != 1) {
        v = 0;
        dirty = true;
    }
}

// A CPU write of one word of a pair presets that half of the count.
void MacEngine::mib_write(uint32_t lport, uint32_t dir, uint32_t item, bool high)
{
    const MibPair &p = mib_pairs_[dir][item];
    const uint64_t word = chip_.core_word((high ? p.hi : p.lo)->addrs[lport]);
    uint64_t &v = mib_[lport][dir][item];
    v = high ? (v & 0xFFFFFFFFull) | word << 32 : (v & ~0xFFFFFFFFull) | word;
}

void MacEngine::mib_clear(uint32_t lport, uint32_t dirs)
{
    for (uint32_t dir = 0; dir < 2; dir++) {
        if (((dirs >> dir) & 1) == 0) {
            continue;
        }
        mib_[lport][dir] = {};
        mib_latched_[lport][dir] = {};
        mib_dirty_[lport][dir] = {};
        for (const MibPair &p : mib_pairs_[dir]) {
            if (p.lo != nullptr) {
                chip_.set_core_word(p.lo->addrs[lport], 0);
                chip_.set_core_word(p.hi->addrs[lport], 0);
            }
        }
    }
}

// ---- the packet path -----------------------------------------------------------------

bool MacEngine::rx_admit(uint32_t lport, uint16_t *cause)
{
    if (lport >= kMacPorts) {
        return true;
    }
    if (path_cleared(lport)) {
        *cause = kCauseMacPathClear;
        return false;
    }
    if (crc_pending_[lport] > 0) {
        // A bad FCS: the MAC counts the frame and takes it no further.
        crc_pending_[lport]--;
        *cause = kCauseMacRxFcsErr;
        return false;
    }
    if (!gating_) {
        return true;
    }
    const PortState s = state(lport);
    if (!s.rx_en) {
        *cause = kCauseMacRxDisabled;
        diag_->drop(lport, 0);
        return false;
    }
    if (!s.link) {
        *cause = kCauseMacRxLinkDown;
        diag_->drop(lport, 0);
        return false;
    }
    return true;
}

bool MacEngine::tx_admit(uint32_t lport, uint16_t *cause)
{
    if (lport < kMacPorts && path_cleared(lport)) {
        *cause = kCauseMacPathClear;
        return false;
    }
    if (!gating_ || lport >= kMacPorts) {
        return true;
    }
    const PortState s = state(lport);
    if (!s.link) {
        *cause = kCausePortLinkDown;
        diag_->drop(lport, 1);
        return false;
    }
    if (!s.tx_en) {
        *cause = kCauseMacTxDisabled;
        diag_->drop(lport, 1);
        return false;
    }
    return true;
}

} // namespace tide::sim
