// The model's QoS stages (see sim_qos.h).  Everything is read from the
// tables the SDK programs, found by name in the chip description.
#include "sim/sim_qos.h"

#include <algorithm>

#include "sim/sim_int.h"

namespace tide::sim {

namespace {

constexpr uint32_t kTypeOffset = 12;
constexpr uint32_t kTagBytes = 4;
constexpr uint32_t kFcs = 4;
constexpr uint32_t kCauseIds = 512;
constexpr uint32_t kPortProfiles = 32;
constexpr uint32_t kUnmetered = 3;
constexpr uint32_t kRed = 2, kYellow = 1, kGreen = 0;
constexpr uint32_t kCpuQueueBase = 240;
// The clock of a bucket moves at most this far in one step; a longer idle
// time fills any bucket anyway.
constexpr uint64_t kMaxStepMs = 1000000;

// Trust types of the port row.
enum Trust : uint32_t { kTrustNone, kTrustQindex, kTrustDscp, kTrustOuter = 4, kTrustOuterCfi, kTrustInner, kTrustInnerCfi };

// Bits of the egress port row's remark word (phbstruct).
constexpr uint32_t kPhbEnable = 1u << 13;
constexpr uint32_t kPhbIdShift = 7;
constexpr uint32_t kPhbTc = 1u << 6, kPhbDscp = 1u << 5, kPhbOpri = 1u << 3, kPhbOcfi = 1u << 2, kPhbIpri = 1u << 1,
                   kPhbIcfi = 1u << 0;

uint16_t _be16(const uint8_t *p)
{
    return static_cast<uint16_t>(p[0] << 8 | p[1]);
}

// The DSCP of an IPv4 or IPv6 frame whose L3 header starts at `l3`; 0 for
// anything else.
uint32_t _dscp(const uint8_t *data, uint32_t len, uint32_t l3, uint16_t type)
{
    if (type == 0x0800 && l3 + 2 <= len) {
        return data[l3 + 1] >> 2;
    }
    if (type == 0x86DD && l3 + 2 <= len) {
        return ((data[l3] & 0x0F) << 4 | data[l3 + 1] >> 4) >> 2;
    }
    return 0;
}

void _ipv4_checksum(uint8_t *h, uint32_t avail)
{
    const uint32_t ihl = (h[0] & 0x0F) * 4u;
    if (ihl < 20 || ihl > avail) {
        return;
    }
    h[10] = h[11] = 0;
    uint32_t sum = 0;
    for (uint32_t i = 0; i < ihl; i += 2) {
        sum += _be16(h + i);
    }
    while (sum >> 16) {
        sum = (sum & 0xFFFF) + (sum >> 16);
    }
    const uint16_t c = static_cast<uint16_t>(~sum);
    h[10] = static_cast<uint8_t>(c >> 8);
    h[11] = static_cast<uint8_t>(c);
}

// The traffic class byte of an IP header, read and written.
uint32_t _tc_get(const uint8_t *h, uint16_t type)
{
    return type == 0x0800 ? h[1] : static_cast<uint32_t>((h[0] & 0x0F) << 4 | h[1] >> 4);
}

void _tc_set(uint8_t *h, uint16_t type, uint32_t tc)
{
    if (type == 0x0800) {
        h[1] = static_cast<uint8_t>(tc);
    } else {
        h[0] = static_cast<uint8_t>((h[0] & 0xF0) | (tc >> 4));
        h[1] = static_cast<uint8_t>((h[1] & 0x0F) | ((tc & 0x0F) << 4));
    }
}

} // namespace

QosEngine::QosEngine(Chip &chip) : chip_(chip)
{
    const desc::Table *t = nullptr;
    const desc::Register *r = nullptr;
    tab("ipro_ipat_tbl", &t);
    trust_type_ = field(t, "trust_type");
    ba_info_ = field(t, "ba_info");
    portcar_en_ = field(t, "portcar_en");
    portcar_id_ = field(t, "portcar_id");
    tab("epro_epat_table", &t);
    port_car_en_ = field(t, "port_car_en");
    port_car_id_ = field(t, "port_car_id");
    phbstruct_ = field(t, "phbstruct");
    ba_ = tab("icar_ba_tbl", &t);
    static const char *const kQ[4] = {"qindex0", "qindex1", "qindex2", "qindex3"};
    static const char *const kC[4] = {"color0", "color1", "color2", "color3"};
    for (uint32_t i = 0; i < 4; i++) {
        ba_q_[i] = field(t, kQ[i]);
        ba_c_[i] = field(t, kC[i]);
    }
    phb_ = tab("ecar_phb_tbl", &t);
    phb_tc_ = field(t, "tc");
    phb_dscp_ = field(t, "dscp");
    phb_opri_ = field(t, "ovlanpri");
    phb_odei_ = field(t, "odei");
    phb_ipri_ = field(t, "ivlanpri");
    phb_idei_ = field(t, "idei");
    causeid_ = tab("epro_causeid_table", &t);
    cp_vld_ = field(t, "vld");
    cp_qindex_en_ = field(t, "cp_qindex_en");
    cp_qindex_ = field(t, "cp_qindex");
    ptype_map_ = tab("ecar_causeid_ptype_map_tbl", &t);
    map_vld_ = field(t, "causeid_idx_vld");
    map_idx_ = field(t, "causeid_idx");
    cause_tbl_ = tab("qm_cause_tbl", &t);
    redir_en_ = field(t, "redir_en");
    empty_ = tab("sch_que_empty_tbl", &t);
    cos_map_ = reg("qm_cos_queue_map", &r);
    static const char *const kCos[8] = {"cos0_queue_map", "cos1_queue_map", "cos2_queue_map", "cos3_queue_map",
                                        "cos4_queue_map", "cos5_queue_map", "cos6_queue_map", "cos7_queue_map"};
    for (uint32_t i = 0; i < 8; i++) {
        cos_[i] = r != nullptr ? field_of(r->fields, r->field_count, kCos[i]) : FieldRef{};
        ok_ &= cos_[i].ok();
    }
    redir_cfg_ = reg("qm_redir_cfg", &r);
    if (r != nullptr) {
        glb_redir_en_ = field_of(r->fields, r->field_count, "glb_redir_en");
        redir_cpu_flag_ = field_of(r->fields, r->field_count, "redir_cpu_flag");
        queid_ = field_of(r->fields, r->field_count, "queid");
    }
    ok_ &= glb_redir_en_.ok() && redir_cpu_flag_.ok() && queid_.ok();
    meter_init(sport_, "icar_port_car_cfg_tbl", "icar_port_car_action_tbl", "icar_port_car", "icar_cfg_pps_len");
    meter_init(dport_, "ecar_port_car_cfg_tbl", "ecar_port_car_action_tbl", "ecar_port_car", "ecar_cfg_pps_len");
    meter_init(cause_, "ecar_cause_id_car_cfg_tbl", nullptr, "ecar_cause_id_car", "ecar_cfg_pps_len");
    sport_.buckets.resize(kPortProfiles);
    dport_.buckets.resize(kPortProfiles);
    cause_.buckets.resize(kCauseIds);
}

TableView QosEngine::tab(const char *name, const desc::Table **out)
{
    const desc::Table *t = desc::find_table(name);
    *out = t;
    if (t == nullptr || t->instances == 0 || t->words > kMaxEntryWords) {
        ok_ = false;
        *out = nullptr;
        return TableView{};
    }
    return TableView{t->addrs[0], t->words, t->depth};
}

FieldRef QosEngine::field(const desc::Table *t, const char *name)
{
    const FieldRef f = t != nullptr ? field_of(t->fields, t->field_count, name) : FieldRef{};
    ok_ &= f.ok();
    return f;
}

uint32_t QosEngine::reg(const char *name, const desc::Register **out)
{
    const desc::Register *r = desc::find_register(name);
    *out = r;
    ok_ &= r != nullptr && r->instances > 0;
    return r != nullptr && r->instances > 0 ? r->addrs[0] : 0;
}

void QosEngine::meter_init(Meter &m, const char *cfg, const char *act, const char *stat, const char *pps_reg)
{
    const desc::Table *t = nullptr;
    m.cfg = tab(cfg, &t);
    CarFields &f = m.f;
    const bool dbl = act != nullptr;
    f.valid = field(t, "valid");
    f.pband_bas = field(t, "pband_bas");
    f.pband_exp = field(t, "pband_exp");
    f.pburst_bas = field(t, "pburst_bas");
    f.pburst_exp = field(t, "pburst_exp");
    f.value = field(t, "value");
    f.bps_type = field(t, "bps_type");
    if (dbl) {
        f.colormode = field(t, "colormode");
        f.car_mode = field(t, "car_mode");
        f.cburst_exp = field(t, "cburst_exp");
        f.cburst_bas = field(t, "cburst_bas");
        f.cband_bas = field(t, "cband_bas");
        f.cband_exp = field(t, "cband_exp");
        m.act = tab(act, &t);
        static const char *const kOpr[3] = {"gopr", "yopr", "ropr"};
        static const char *const kQ[3] = {"gqindex", "yqindex", "rqindex"};
        static const char *const kCol[3] = {"gcolor", "ycolor", "rcolor"};
        for (uint32_t k = 0; k < 3; k++) {
            m.a.opr[k] = field(t, kOpr[k]);
            m.a.qindex[k] = field(t, kQ[k]);
            m.a.color[k] = field(t, kCol[k]);
        }
    }
    // The statistics rows: "<block>_<name>_fwd_stat_tbl" with the fields
    // "<name>_fwd_stat_pkt_num" and "..._byt_num".
    const std::string s(stat);
    const std::string short_name = s.substr(s.find('_') + 1);
    m.fwd = tab((s + "_fwd_stat_tbl").c_str(), &t);
    m.fwd_pkts = field(t, (short_name + "_fwd_stat_pkt_num").c_str());
    m.fwd_bytes = field(t, (short_name + "_fwd_stat_byt_num").c_str());
    m.drop = tab((s + "_drop_stat_tbl").c_str(), &t);
    m.drop_pkts = field(t, (short_name + "_drop_stat_pkt_num").c_str());
    m.drop_bytes = field(t, (short_name + "_drop_stat_byt_num").c_str());
    const desc::Register *r = nullptr;
    m.pps_len_reg = reg(pps_reg, &r);
}

void QosEngine::install()
{
    // The empty flags of a port's queues: all empty, as the model holds no
    // frames, unless the port never empties.
    if (!empty_.ok()) {
        return;
    }
    chip_.on_read_range(4, empty_.addr, empty_.addr + empty_.depth * empty_.words * 4,
                        [this](Chip &chip, uint32_t, uint32_t addr) {
                            const uint32_t port = (addr - empty_.addr) / (empty_.words * 4);
                            chip.set_core_word(addr, port < kPorts && never_empty_[port] ? 0xFFu : 0u);
                        });
}

void QosEngine::clear()
{
    for (Meter *m : {&sport_, &dport_, &cause_}) {
        for (Bucket &b : m->buckets) {
            b = Bucket{};
        }
    }
}

uint32_t QosEngine::entry(const TableView &t, uint32_t index, uint32_t *words) const
{
    const uint32_t base = t.addr + index * t.words * 4;
    for (uint32_t i = 0; i < t.words; i++) {
        words[i] = chip_.core_word(base + 4 * i);
    }
    return t.words;
}

uint32_t QosEngine::cosq(uint32_t intl_pri) const
{
    return word_get(chip_.core_word(cos_map_), cos_[intl_pri & 7]);
}

uint32_t QosEngine::meter(Pipeline &pl, Meter &m, uint32_t id, uint32_t bytes, uint32_t in_color)
{
    uint32_t w[kMaxEntryWords] = {};
    entry(m.cfg, id, w);
    const CarFields &f = m.f;
    if (bits_get(w, f.valid) == 0) {
        return kUnmetered;
    }
    const bool dbl = m.f.car_mode.ok();
    // Packet mode: every packet weighs the pps length.
    if (bits_get(w, f.bps_type) != 0) {
        bytes = chip_.core_word(m.pps_len_reg);
    } else {
        // Length compensation: 6-bit two's complement.
        const int32_t v = static_cast<int32_t>(bits_get(w, f.value));
        const int32_t adj = v >= 32 ? v - 64 : v;
        bytes = static_cast<uint32_t>(std::max<int64_t>(0, static_cast<int64_t>(bytes) + adj));
    }
    auto units = [&](FieldRef bas, FieldRef exp) {
        return bas.ok() ? static_cast<int64_t>(bits_get(w, bas) << bits_get(w, exp)) : 0;
    };
    // A unit of rate is 16 kbit/s, two bytes a millisecond; a unit of burst
    // 1000 bytes.
    const int64_t cir = units(f.cband_bas, f.cband_exp) * 2, pir = units(f.pband_bas, f.pband_exp) * 2;
    const int64_t cbs = units(f.cburst_bas, f.cburst_exp) * 1000, pbs = units(f.pburst_bas, f.pburst_exp) * 1000;
    Bucket &b = m.buckets[id];
    const uint64_t now = pl.now();
    if (!b.live || b.cfg[0] != w[0] || b.cfg[1] != w[1]) {
        // A new or changed profile starts with full buckets.
        b = Bucket{cbs, pbs, now, true, {w[0], w[1]}};
    }
    const int64_t dt = static_cast<int64_t>(std::min(now - b.last_ms, kMaxStepMs));
    b.last_ms = now;
    const uint32_t mode = dbl ? static_cast<uint32_t>(bits_get(w, f.car_mode)) : 1;
    const int64_t c = b.c + cir * dt;
    const int64_t overflow = std::max<int64_t>(0, c - cbs);
    b.c = std::min(c, cbs);
    switch (mode) {
    case 0: // rfc2697: the excess bucket fills with what overflows the committed one
        b.p = std::min(b.p + overflow, pbs);
        break;
    case 3: // mef10.2, coupled: the excess bucket also takes the overflow
        b.p = std::min(b.p + pir * dt + overflow, pbs);
        break;
    default: // rfc2698, rfc4115: two independent buckets
        b.p = std::min(b.p + pir * dt, pbs);
        break;
    }
    const int64_t n = bytes;
    if (!dbl) {
        if (b.p >= n) {
            b.p -= n;
            return kGreen;
        }
        return kRed;
    }
    const bool aware = bits_get(w, f.colormode) != 0;
    const uint32_t in = aware ? in_color : kGreen;
    if (mode == 1) {
        // rfc2698: the peak bucket first, then the committed one.
        if (in == kRed || b.p < n) {
            return kRed;
        }
        b.p -= n;
        if (in == kYellow || b.c < n) {
            return kYellow;
        }
        b.c -= n;
        return kGreen;
    }
    if (in == kGreen && b.c >= n) {
        b.c -= n;
        return kGreen;
    }
    if (in != kRed && b.p >= n) {
        b.p -= n;
        return kYellow;
    }
    return kRed;
}

bool QosEngine::act(Meter &m, uint32_t id, uint32_t color, uint32_t bytes, uint32_t *intl_pri, uint32_t *out_color)
{
    bool pass = color != kRed;
    if (m.act.ok()) {
        uint32_t w[kMaxEntryWords] = {};
        entry(m.act, id, w);
        const uint32_t opr = static_cast<uint32_t>(bits_get(w, m.a.opr[color]));
        pass = opr != 0;
        *out_color = color;
        if (opr == 2 || opr == 4) {
            *out_color = static_cast<uint32_t>(bits_get(w, m.a.color[color]));
        }
        if (opr == 3 || opr == 4) {
            *intl_pri = static_cast<uint32_t>(bits_get(w, m.a.qindex[color]));
        }
    }
    if (pass) {
        count_entry(chip_, m.fwd, id, m.fwd_pkts, m.fwd_bytes, bytes);
    } else {
        count_entry(chip_, m.drop, id, m.drop_pkts, m.drop_bytes, bytes);
    }
    return pass;
}

bool QosEngine::ingress(Pipeline &pl, Packet &p)
{
    const uint32_t trust = static_cast<uint32_t>(bits_get(p.ipat, trust_type_));
    const uint32_t info = static_cast<uint32_t>(bits_get(p.ipat, ba_info_));
    p.intl_pri = (info >> 2) & 7;
    p.color = std::min<uint32_t>(info & 3, kRed);
    uint32_t index = 0, pair = 0;
    const uint32_t map = info & 7;
    const uint32_t l3 = kTypeOffset + kTagBytes * p.tags + 2;
    const uint16_t inner = p.tags == 2 ? _be16(p.data + kTypeOffset + kTagBytes + 2) : 0;
    const uint32_t opri = p.tags != 0 ? p.outer_tci >> 13 : 0, ocfi = p.tags != 0 ? (p.outer_tci >> 12) & 1 : 0;
    const uint32_t ipri = inner >> 13, icfi = (inner >> 12) & 1;
    switch (trust) {
    case kTrustDscp: {
        const uint32_t dscp = _dscp(p.data, p.len, l3, p.ethertype);
        index = map * 16 + (dscp >> 2);
        pair = dscp & 3;
        break;
    }
    case kTrustOuter:
        index = 192 + map * 2 + (opri >> 2);
        pair = opri & 3;
        break;
    case kTrustOuterCfi:
        index = 128 + map * 4 + ocfi * 2 + (opri >> 2);
        pair = opri & 3;
        break;
    case kTrustInner:
        index = 208 + map * 2 + (ipri >> 2);
        pair = ipri & 3;
        break;
    case kTrustInnerCfi:
        index = 160 + map * 4 + icfi * 2 + (ipri >> 2);
        pair = ipri & 3;
        break;
    default: // none, fixed priority and colour, and the type without a meaning
        index = ba_.depth;
        break;
    }
    if (index < ba_.depth) {
        uint32_t w[kMaxEntryWords] = {};
        entry(ba_, index, w);
        p.intl_pri = static_cast<uint32_t>(bits_get(w, ba_q_[pair]));
        p.color = std::min<uint32_t>(static_cast<uint32_t>(bits_get(w, ba_c_[pair])), kRed);
    }
    if (bits_get(p.ipat, portcar_en_) == 0) {
        return true;
    }
    const uint32_t id = static_cast<uint32_t>(bits_get(p.ipat, portcar_id_)) % kPortProfiles;
    const uint32_t wire = p.len + kFcs;
    const uint32_t color = meter(pl, sport_, id, wire, p.color);
    if (color == kUnmetered) {
        return true;
    }
    if (!act(sport_, id, color, wire, &p.intl_pri, &p.color)) {
        p.drop(kCauseSportCar);
        return false;
    }
    return true;
}

void QosEngine::remark(const Packet &p, EgressCopy &c) const
{
    const uint32_t phb = static_cast<uint32_t>(bits_get(c.epat, phbstruct_));
    if ((phb & kPhbEnable) == 0) {
        return;
    }
    const uint32_t id = (phb >> kPhbIdShift) & 0x3F;
    const uint32_t index = (c.intl_pri + id * 8) * 4 + c.color;
    if (index >= phb_.depth) {
        return;
    }
    uint32_t w[kMaxEntryWords] = {};
    entry(phb_, index, w);
    std::vector<uint8_t> &f = *c.frame;
    // The tags the copy leaves with: the outer one unless it leaves
    // untagged, and the frame's inner one.
    const bool outer = !c.untag;
    const uint32_t tags = (outer ? 1u : 0u) + (p.tags == 2 ? 1u : 0u);
    auto tag_edit = [&](uint32_t off, FieldRef pri, FieldRef dei, uint32_t pri_bit, uint32_t dei_bit) {
        if (off + 4 > f.size()) {
            return;
        }
        uint32_t tci = _be16(&f[off + 2]);
        if (phb & pri_bit) {
            tci = (tci & 0x1FFF) | static_cast<uint32_t>(bits_get(w, pri)) << 13;
        }
        if (phb & dei_bit) {
            tci = (tci & ~0x1000u) | static_cast<uint32_t>(bits_get(w, dei)) << 12;
        }
        f[off + 2] = static_cast<uint8_t>(tci >> 8);
        f[off + 3] = static_cast<uint8_t>(tci);
    };
    if (outer) {
        tag_edit(kTypeOffset, phb_opri_, phb_odei_, kPhbOpri, kPhbOcfi);
    }
    if (p.tags == 2) {
        tag_edit(kTypeOffset + (outer ? kTagBytes : 0), phb_ipri_, phb_idei_, kPhbIpri, kPhbIcfi);
    }
    const uint32_t l3 = kTypeOffset + kTagBytes * tags + 2;
    if ((phb & (kPhbTc | kPhbDscp)) == 0 || l3 + 20 > f.size() ||
        (p.ethertype != 0x0800 && p.ethertype != 0x86DD)) {
        return;
    }
    uint8_t *h = &f[l3];
    uint32_t tc = _tc_get(h, p.ethertype);
    if (phb & kPhbTc) {
        tc = static_cast<uint32_t>(bits_get(w, phb_tc_));
    }
    if (phb & kPhbDscp) {
        tc = (tc & 3) | static_cast<uint32_t>(bits_get(w, phb_dscp_)) << 2;
    }
    _tc_set(h, p.ethertype, tc);
    if (p.ethertype == 0x0800) {
        _ipv4_checksum(h, static_cast<uint32_t>(f.size()) - l3);
    }
}

bool QosEngine::egress(Pipeline &pl, const Packet &p, EgressCopy &c, uint16_t *cause)
{
    c.intl_pri = p.intl_pri;
    c.color = p.color;
    if (bits_get(c.epat, port_car_en_) != 0) {
        const uint32_t id = static_cast<uint32_t>(bits_get(c.epat, port_car_id_)) % kPortProfiles;
        const uint32_t wire = p.len + kFcs;
        const uint32_t color = meter(pl, dport_, id, wire, c.color);
        if (color != kUnmetered && !act(dport_, id, color, wire, &c.intl_pri, &c.color)) {
            *cause = kCauseDportCar;
            return false;
        }
    }
    c.queue = c.port == kCpuPort ? kCpuQueueBase + cosq(c.intl_pri) : c.port * 8 + cosq(c.intl_pri);
    remark(p, c);
    return true;
}

bool QosEngine::cpu_copy(Pipeline &pl, const Packet &p, uint32_t *queue)
{
    const uint32_t cause = p.cpu_cause % kCauseIds;
    uint32_t w[kMaxEntryWords] = {};
    entry(causeid_, cause, w);
    uint32_t offset = cosq(p.intl_pri);
    if (bits_get(w, cp_vld_) != 0 && bits_get(w, cp_qindex_en_) != 0) {
        const uint32_t q = static_cast<uint32_t>(bits_get(w, cp_qindex_));
        offset = cosq(q & 7) + (q >> 3) * 8;
    }
    *queue = kCpuQueueBase + offset;
    entry(ptype_map_, cause, w);
    if (bits_get(w, map_vld_) == 0) {
        return true;
    }
    const uint32_t id = static_cast<uint32_t>(bits_get(w, map_idx_)) % kCauseIds;
    const uint32_t wire = p.len + kFcs;
    const uint32_t color = meter(pl, cause_, id, wire, kGreen);
    if (color == kUnmetered) {
        return true;
    }
    uint32_t pri = 0, col = 0;
    if (!act(cause_, id, color, wire, &pri, &col)) {
        pl.count_cause(kCauseCpuCauseCar, wire);
        return false;
    }
    return true;
}

bool QosEngine::redirect(Pipeline &, const Packet &p, uint32_t *port, uint32_t *queue)
{
    const uint32_t cfg = chip_.core_word(redir_cfg_);
    if (word_get(cfg, glb_redir_en_) == 0 || p.drop_cause >= cause_tbl_.depth) {
        return false;
    }
    uint32_t w[kMaxEntryWords] = {};
    entry(cause_tbl_, p.drop_cause, w);
    if (bits_get(w, redir_en_) == 0) {
        return false;
    }
    *queue = word_get(cfg, queid_);
    *port = word_get(cfg, redir_cpu_flag_) != 0 ? kCpuPort : (*queue >> 3) % kPorts;
    return true;
}

} // namespace tide::sim
