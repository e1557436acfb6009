// The model's MAC table.
//
// Geometry: bar0 of 8192 entries (16384 when both share-RAM settings are
// on), bar1 of 2048, a cam of 4.  bar0 and bar1 are organised in buckets of
// 4 entries; a key has one bucket in each, chosen by a hash of its 79 key
// bits, and may also stand in the cam.  An insert takes the first free
// entry of the bar0 bucket, then of the bar1 bucket, then of the cam.
#include "sim/sim_arl.h"

#include <cstring>

#include "sim/sim_int.h"
#include "sim/sim_intr.h"

namespace tide::sim {

namespace {

// CRC-32 of the model's hash, MSB first, from all ones, a byte at a time
// through a table of the polynomial (the packet path hashes two keys per
// frame).
struct CrcTable {
    uint32_t t[256];
    explicit constexpr CrcTable(uint32_t poly) : t{}
    {
        for (uint32_t i = 0; i < 256; i++) {
            uint32_t c = i << 24;
            for (int b = 0; b < 8; b++) {
                c = (c & 0x80000000u) ? (c << 1) ^ poly : c << 1;
            }
            t[i] = c;
        }
    }
};

constexpr CrcTable kCrcBar0(0x04C11DB7u);
constexpr CrcTable kCrcBar1(0x1EDC6F41u);

uint32_t _crc(const uint8_t *data, size_t len, const CrcTable &table)
{
    uint32_t crc = 0xFFFFFFFFu;
    for (size_t i = 0; i < len; i++) {
        crc = (crc << 8) ^ table.t[(crc >> 24) ^ data[i]];
    }
    return crc;
}

unsigned __int128 _wide(const ArlEntry &e)
{
    return static_cast<unsigned __int128>(e[0]) | static_cast<unsigned __int128>(e[1]) << 32 |
           static_cast<unsigned __int128>(e[2]) << 64 | static_cast<unsigned __int128>(e[3]) << 96;
}

// The key: bits 116..38 of an entry.
constexpr uint32_t kKeyLow = 38;
constexpr uint32_t kKeyBits = 79;

unsigned __int128 _key(const ArlEntry &e)
{
    const unsigned __int128 mask = (static_cast<unsigned __int128>(1) << kKeyBits) - 1;
    return (_wide(e) >> kKeyLow) & mask;
}

constexpr uint32_t kMac0ImageBits = 29; // image bits 124..96 in the first command word

} // namespace

ArlEngine::ArlEngine(Chip &chip)
    : chip_(chip), bar0_(kBar0Max), bar1_(kBar1), cam_(kCam)
{
    const desc::Register *r = nullptr;
    a_cfg_ = need_reg("arl_cpuop_cfg", &r);
    if (r != nullptr) {
        f_start_ = need(r->fields, r->field_count, "cpuop_start");
        f_btype_ = need(r->fields, r->field_count, "bucket_type");
        f_baddr_ = need(r->fields, r->field_count, "bucket_addr");
        f_optype_ = need(r->fields, r->field_count, "cpuop_type");
        static const char *const kCmp[9] = {"cmp_stati_en",   "cmp_vsiid_en", "cmp_mac_en",
                                            "cmp_opcode_en",  "cmp_ovlan_en", "cmp_lrnclass_en",
                                            "cmp_gid_en",     "cmp_sport_en", "cmp_remote_en"};
        for (int i = 0; i < 9; i++) {
            f_cmp_[i] = need(r->fields, r->field_count, kCmp[i]);
        }
    }
    static const char *const kMac[4] = {"arl_cpuop_cfg_mac0", "arl_cpuop_cfg_mac1", "arl_cpuop_cfg_mac2",
                                        "arl_cpuop_cfg_mac3"};
    static const char *const kSch[4] = {"arl_cpuop_sch_mac0", "arl_cpuop_sch_mac1", "arl_cpuop_sch_mac2",
                                        "arl_cpuop_sch_mac3"};
    for (int i = 0; i < 4; i++) {
        a_mac_[i] = need_reg(kMac[i], i == 0 ? &r : nullptr);
        if (i == 0 && r != nullptr) {
            f_rep_sta_ = need(r->fields, r->field_count, "replace_sta_flag");
            f_rep_dyn_ = need(r->fields, r->field_count, "replace_dyn_flag");
            f_grab_ = need(r->fields, r->field_count, "grap_flag");
        }
        a_sch_[i] = need_reg(kSch[i]);
    }
    f_mac0_ = FieldRef{0, kMac0ImageBits};
    a_state_ = need_reg("arl_cpuop_state", &r);
    if (r != nullptr) {
        f_ret_num_ = need(r->fields, r->field_count, "cpuop_return_num");
        f_fail_cause_ = need(r->fields, r->field_count, "cpuop_fail_cause");
        f_fail_ind_ = need(r->fields, r->field_count, "cpuop_fail_ind");
        f_finish_ = need(r->fields, r->field_count, "cpuop_finish_ind");
    }
    a_glb_cnt_ = need_reg("arl_glb_mac_cnt", &r);
    if (r != nullptr) {
        f_sta_cnt_ = need(r->fields, r->field_count, "static_mac_cnt");
        f_dyn_cnt_ = need(r->fields, r->field_count, "dynamic_mac_cnt");
    }
    a_glb_lmt_ = need_reg("arl_glb_lmt_cnt", &r);
    if (r != nullptr) {
        f_dyn_lmt_ = need(r->fields, r->field_count, "dynamic_lmt_cnt");
    }
    a_lrn_cfg_ = need_reg("arl_age_lrn_cfg0", &r);
    if (r != nullptr) {
        f_glb_lmt_en_ = need(r->fields, r->field_count, "glb_lmt_en");
    }
    need_reg("arl_port_lmt_cnt", &r);
    if (r != nullptr) {
        a_port_lmt_ = r->instances >= kPorts ? r->addrs : nullptr;
        ok_ &= a_port_lmt_ != nullptr;
        f_port_cnt_ = need(r->fields, r->field_count, "port_mac_cnt");
        f_port_lmt_ = need(r->fields, r->field_count, "port_lmt_cnt");
        f_port_lmt_en_ = need(r->fields, r->field_count, "port_lmt_en");
    }
    a_glb_cfg_ = need_reg("arl_arl_glb_cfg", &r);
    if (r != nullptr) {
        f_ram_share_ = need(r->fields, r->field_count, "ram_share_mode");
        f_hash_mode_ = need(r->fields, r->field_count, "hash_mode");
    }
    a_share_ = need_reg("lsw_hreg_fbm_share_ram_cfg", &r);
    if (r != nullptr) {
        f_share_ = need(r->fields, r->field_count, "fbm_share_ram_cfg");
    }
    a_init_en_ = need_reg("arl_mac_tab_init_en");
    a_ram_sta_ = need_reg("arl_mac_ram_sta", &r);
    if (r != nullptr) {
        f_init_ok_ = need(r->fields, r->field_count, "mac_ram_init_ok");
    }
    const desc::Table *t = desc::find_table("arl_em_mac_tbl_ad");
    ok_ &= t != nullptr;
    if (t != nullptr) {
        e_valid_ = need(t->fields, t->field_count, "valid");
        e_stati_ = need(t->fields, t->field_count, "stati");
        e_opcode_ = need(t->fields, t->field_count, "opcode");
        e_learn_data_ = need(t->fields, t->field_count, "learn_data");
        e_vlanid_ = need(t->fields, t->field_count, "vlanid");
        e_mac_ip_ = need(t->fields, t->field_count, "mac_ip");
        e_ovid_ = need(t->fields, t->field_count, "outer_vlanid");
        e_lrnclass_ = need(t->fields, t->field_count, "lrnclass");
        e_gid_ = need(t->fields, t->field_count, "gid");
        ef_ = EntryFields{e_valid_,
                          e_stati_,
                          need(t->fields, t->field_count, "age_cnt"),
                          e_opcode_,
                          e_learn_data_,
                          need(t->fields, t->field_count, "dst_blk_list"),
                          need(t->fields, t->field_count, "src_blk_list")};
    }
    a_float_ = need_reg("arl_age_lrn_cfg1", &r);
    if (r != nullptr) {
        f_float_succ_ = need(r->fields, r->field_count, "float_succ_cnt");
        f_float_fail_ = need(r->fields, r->field_count, "float_fail_cnt");
    }
}

FieldRef ArlEngine::need(const desc::Field *fields, uint32_t count, const char *name)
{
    const FieldRef f = field_of(fields, count, name);
    ok_ &= f.ok();
    return f;
}

uint32_t ArlEngine::need_reg(const char *name, const desc::Register **out)
{
    const desc::Register *r = desc::find_register(name);
    if (out != nullptr) {
        *out = r;
    }
    if (r == nullptr || r->instances == 0) {
        ok_ = false;
        return 0;
    }
    return r->addrs[0];
}

uint32_t ArlEngine::reg(uint32_t addr) const
{
    return chip_.core_word(addr);
}

void ArlEngine::set_reg(uint32_t addr, uint32_t value)
{
    chip_.set_core_word(addr, value);
}

void ArlEngine::install()
{
    if (!ok_) {
        return;
    }
    chip_.on_write(4, a_cfg_, [this](Chip &, uint32_t, uint32_t, uint64_t value) {
        on_command(static_cast<uint32_t>(value));
    });
    chip_.on_write(4, a_init_en_, [this](Chip &c, uint32_t, uint32_t, uint64_t value) {
        // A write of one clears the table; the done bit follows unless the
        // init engine is made to stall.
        if ((value & 1) == 0) {
            set_reg(a_ram_sta_, word_set(reg(a_ram_sta_), f_init_ok_, 0));
            return;
        }
        if (!c.stalled[TIDE_SIM_ENGINE_ARL_INIT]) {
            clear();
            set_reg(a_ram_sta_, word_set(reg(a_ram_sta_), f_init_ok_, 1));
        }
    });
}

void ArlEngine::clear()
{
    for (auto *v : {&bar0_, &bar1_, &cam_}) {
        for (ArlEntry &e : *v) {
            e = ArlEntry{};
        }
    }
    static_count_ = dynamic_count_ = 0;
    port_count_.fill(0);
    dirty_ports_ = ~0u;
    if (ok_) {
        publish_counts();
    }
}

uint32_t ArlEngine::bar0_size() const
{
    if (!ok_) {
        return kBar0Max / 2;
    }
    const bool shared = word_get(reg(a_share_), f_share_) == 1 && word_get(reg(a_glb_cfg_), f_ram_share_) == 1;
    return shared ? kBar0Max : kBar0Max / 2;
}

bool ArlEngine::entry_get(uint32_t index, ArlEntry *out) const
{
    const uint32_t b0 = bar0_size();
    if (index < b0) {
        *out = bar0_[index];
    } else if (index < b0 + kBar1) {
        *out = bar1_[index - b0];
    } else if (index < b0 + kBar1 + kCam) {
        *out = cam_[index - b0 - kBar1];
    } else {
        return false;
    }
    return true;
}

ArlEntry *ArlEngine::slot(Slot s)
{
    switch (s.bucket) {
    case 0:
        return s.addr < bar0_size() ? &bar0_[s.addr] : nullptr;
    case 1:
        return s.addr < kBar1 ? &bar1_[s.addr] : nullptr;
    case 2:
        return s.addr < kCam ? &cam_[s.addr] : nullptr;
    default:
        return nullptr;
    }
}

bool ArlEngine::same_key(const ArlEntry &a, const ArlEntry &b) const
{
    return _key(a) == _key(b);
}

void ArlEngine::buckets(const ArlEntry &image, uint32_t *b0, uint32_t *b1) const
{
    const unsigned __int128 key = _key(image);
    uint8_t bytes[10];
    for (int i = 0; i < 10; i++) {
        bytes[i] = static_cast<uint8_t>(key >> (8 * i));
    }
    uint32_t h0 = 0, h1 = 0;
    if (word_get(reg(a_glb_cfg_), f_hash_mode_) == 1) {
        // XOR of the key's 32-bit pieces, and of its bytes rotated.
        const uint64_t lo = static_cast<uint64_t>(key), hi = static_cast<uint64_t>(key >> 64);
        h0 = static_cast<uint32_t>(lo) ^ static_cast<uint32_t>(lo >> 32) ^ static_cast<uint32_t>(hi);
        h1 = (h0 << 13 | h0 >> 19) ^ static_cast<uint32_t>(hi << 7);
    } else {
        h0 = _crc(bytes, sizeof(bytes), kCrcBar0);
        h1 = _crc(bytes, sizeof(bytes), kCrcBar1);
    }
    *b0 = h0 % (bar0_size() / kWays);
    *b1 = h1 % (kBar1 / kWays);
}

bool ArlEngine::find(const ArlEntry &image, Slot *where)
{
    uint32_t b0 = 0, b1 = 0;
    buckets(image, &b0, &b1);
    for (uint32_t w = 0; w < kWays; w++) {
        for (Slot s : {Slot{0, b0 * kWays + w}, Slot{1, b1 * kWays + w}}) {
            const ArlEntry *e = slot(s);
            if (bits_get(e->data(), e_valid_) && same_key(*e, image)) {
                *where = s;
                return true;
            }
        }
    }
    for (uint32_t c = 0; c < kCam; c++) {
        if (bits_get(cam_[c].data(), e_valid_) && same_key(cam_[c], image)) {
            *where = Slot{2, c};
            return true;
        }
    }
    return false;
}

bool ArlEngine::free_slot(const ArlEntry &image, Slot *where)
{
    uint32_t b0 = 0, b1 = 0;
    buckets(image, &b0, &b1);
    for (const Slot first : {Slot{0, b0 * kWays}, Slot{1, b1 * kWays}}) {
        for (uint32_t w = 0; w < kWays; w++) {
            const Slot s{first.bucket, first.addr + w};
            if (!bits_get(slot(s)->data(), e_valid_)) {
                *where = s;
                return true;
            }
        }
    }
    for (uint32_t c = 0; c < kCam; c++) {
        if (!bits_get(cam_[c].data(), e_valid_)) {
            *where = Slot{2, c};
            return true;
        }
    }
    return false;
}

// The entry a grabbing insert takes: the first dynamic entry of the key's
// buckets, bar0 before bar1.
bool ArlEngine::victim(const ArlEntry &image, Slot *where)
{
    uint32_t b0 = 0, b1 = 0;
    buckets(image, &b0, &b1);
    for (const Slot first : {Slot{0, b0 * kWays}, Slot{1, b1 * kWays}}) {
        for (uint32_t w = 0; w < kWays; w++) {
            const Slot s{first.bucket, first.addr + w};
            if (bits_get(slot(s)->data(), e_stati_) == 0) {
                *where = s;
                return true;
            }
        }
    }
    return false;
}

void ArlEngine::count(const ArlEntry &entry, int delta)
{
    if (!bits_get(entry.data(), e_valid_)) {
        return;
    }
    if (bits_get(entry.data(), e_stati_)) {
        static_count_ += delta;
        return;
    }
    dynamic_count_ += delta;
    // A learned entry on a port counts against that port's limit.
    if (bits_get(entry.data(), e_opcode_) == 0) {
        const uint64_t port = bits_get(entry.data(), e_learn_data_);
        if (port < kPorts) {
            port_count_[port] += delta;
            dirty_ports_ |= 1u << port;
        }
    }
}

void ArlEngine::publish_counts()
{
    uint32_t glb = reg(a_glb_cnt_);
    glb = word_set(glb, f_sta_cnt_, static_count_);
    glb = word_set(glb, f_dyn_cnt_, dynamic_count_);
    set_reg(a_glb_cnt_, glb);
    // Only the ports whose count moved are written: a command touches one
    // or two of them, and rewriting all would cost more than the command.
    for (uint32_t p = 0; p < kPorts; p++) {
        if (dirty_ports_ & (1u << p)) {
            set_reg(a_port_lmt_[p], word_set(reg(a_port_lmt_[p]), f_port_cnt_, port_count_[p]));
        }
    }
    dirty_ports_ = 0;
}

void ArlEngine::put(ArlEntry *at, const ArlEntry &entry)
{
    count(*at, -1);
    *at = entry;
    count(*at, +1);
}

void ArlEngine::remove(ArlEntry *at)
{
    count(*at, -1);
    *at = ArlEntry{};
}

// A new dynamic entry beyond the global or its port's learn limit is
// refused; static entries have no limit.
ArlEngine::Result ArlEngine::limit_check(const ArlEntry &image) const
{
    if (bits_get(image.data(), e_stati_)) {
        return Result{};
    }
    const uint32_t cfg = reg(a_lrn_cfg_);
    if (word_get(cfg, f_glb_lmt_en_) && dynamic_count_ >= word_get(reg(a_glb_lmt_), f_dyn_lmt_)) {
        return Result{kGlobalLimit, 0, true};
    }
    if (bits_get(image.data(), e_opcode_) == 0) {
        return port_limit_check(static_cast<uint32_t>(bits_get(image.data(), e_learn_data_)));
    }
    return Result{};
}

ArlEngine::Result ArlEngine::port_limit_check(uint32_t port) const
{
    if (port < kPorts) {
        const uint32_t lmt = reg(a_port_lmt_[port]);
        if (word_get(lmt, f_port_lmt_en_) && port_count_[port] >= word_get(lmt, f_port_lmt_)) {
            return Result{kPortLimit, 0, true};
        }
    }
    return Result{};
}

// Insert by key.  An existing key: a static one is overwritten only with
// the static replace flag; a dynamic one by a static entry always
// (static preempts dynamic), by a dynamic one with the dynamic replace
// flag.  A new key takes a free entry; with none, the grab flag takes a
// dynamic entry of its buckets.
ArlEngine::Result ArlEngine::insert(const ArlEntry &image, uint32_t flags)
{
    const bool rep_sta = flags & 1, rep_dyn = flags & 2, grab = flags & 4;
    const bool new_static = bits_get(image.data(), e_stati_) != 0;
    Slot at{};
    if (find(image, &at)) {
        ArlEntry *e = slot(at);
        const bool old_static = bits_get(e->data(), e_stati_) != 0;
        if (old_static && !rep_sta) {
            return Result{kOverwriteRefused, 0, true};
        }
        if (!old_static && !new_static && !rep_dyn) {
            return Result{kOverwriteRefused, 0, true};
        }
        put(e, image);
        return Result{!old_static && new_static ? kStaticPreempted : kOverwritten, 0, false};
    }
    const Result limit = limit_check(image);
    if (limit.fail) {
        return limit;
    }
    if (free_slot(image, &at)) {
        put(slot(at), image);
        return Result{};
    }
    if (!grab) {
        return Result{kBarrelFull, 0, true};
    }
    if (!victim(image, &at)) {
        return Result{kPreemptFailed, 0, true};
    }
    put(slot(at), image);
    return Result{new_static ? kStaticPreempted : kOk, 0, false};
}

// Batched commands compare only the enabled fields of the image.
bool ArlEngine::matches(const ArlEntry &entry, const ArlEntry &image, uint32_t cfg) const
{
    const FieldRef by[9][2] = {{e_stati_, {}},     {e_vlanid_, {}},   {e_mac_ip_, {}},
                               {e_opcode_, e_learn_data_}, {e_ovid_, {}}, {e_lrnclass_, {}},
                               {e_gid_, {}},       {e_learn_data_, {}}, {}};
    for (int i = 0; i < 9; i++) {
        if (!word_get(cfg, f_cmp_[i])) {
            continue;
        }
        for (const FieldRef &f : by[i]) {
            if (f.ok() && bits_get(entry.data(), f) != bits_get(image.data(), f)) {
                return false;
            }
        }
    }
    return true;
}

ArlEngine::Result ArlEngine::run(uint32_t op, uint32_t cfg, const ArlEntry &image, uint32_t flags)
{
    Slot at{};
    switch (op) {
    case 0:
        return insert(image, flags);
    case 1:
        if (!find(image, &at)) {
            return Result{kDeleteMiss, 0, true};
        }
        remove(slot(at));
        return Result{};
    case 2:
        if (!find(image, &at)) {
            return Result{kSearchMiss, 0, true};
        }
        for (int i = 0; i < 4; i++) {
            const uint32_t w = (*slot(at))[3 - i];
            set_reg(a_sch_[i], i == 0 ? word_set(0, f_mac0_, w) : w);
        }
        return Result{};
    case 3:
    case 4: {
        uint32_t n = 0;
        for (auto *v : {&bar0_, &bar1_, &cam_}) {
            const uint32_t size = v == &bar0_ ? bar0_size() : static_cast<uint32_t>(v->size());
            for (uint32_t i = 0; i < size; i++) {
                ArlEntry &e = (*v)[i];
                if (bits_get(e.data(), e_valid_) && matches(e, image, cfg)) {
                    n++;
                    if (op == 3) {
                        remove(&e);
                    }
                }
            }
        }
        return Result{kOk, n, false};
    }
    case 5:
    case 6:
    case 7: {
        ArlEntry *e = slot(Slot{word_get(cfg, f_btype_), word_get(cfg, f_baddr_)});
        const bool used = e != nullptr && bits_get(e->data(), e_valid_);
        if (op == 5) {
            if (!used) {
                return Result{kDeleteMiss, 0, true};
            }
            remove(e);
        } else if (op == 6) {
            if (e == nullptr || used) {
                return Result{kBarrelFull, 0, true};
            }
            put(e, image); // verbatim: the address is the caller's, not the hash's
        } else {
            if (!used) {
                return Result{kSearchMiss, 0, true};
            }
            for (int i = 0; i < 4; i++) {
                const uint32_t w = (*e)[3 - i];
                set_reg(a_sch_[i], i == 0 ? word_set(0, f_mac0_, w) : w);
            }
        }
        return Result{};
    }
    default:
        return Result{kOk, 0, true};
    }
}

void ArlEngine::on_command(uint32_t cfg)
{
    if (!word_get(cfg, f_start_)) {
        return;
    }
    uint32_t state = reg(a_state_);
    if (chip_.stalled[TIDE_SIM_ENGINE_ARL]) {
        // The command never finishes: the block stays busy.
        set_reg(a_state_, word_set(state, f_finish_, 0));
        return;
    }
    const uint32_t mac0 = reg(a_mac_[0]);
    const ArlEntry image{reg(a_mac_[3]), reg(a_mac_[2]), reg(a_mac_[1]), word_get(mac0, f_mac0_)};
    const uint32_t flags = (word_get(mac0, f_rep_sta_) ? 1 : 0) | (word_get(mac0, f_rep_dyn_) ? 2 : 0) |
                           (word_get(mac0, f_grab_) ? 4 : 0);
    const Result r = run(word_get(cfg, f_optype_), cfg, image, flags);
    publish_counts();
    state = word_set(state, f_ret_num_, r.count);
    state = word_set(state, f_fail_cause_, r.cause);
    state = word_set(state, f_fail_ind_, r.fail ? 1 : 0);
    state = word_set(state, f_finish_, 1);
    set_reg(a_state_, state);
    // The start bit clears itself when the command is done.
    set_reg(a_cfg_, word_set(cfg, f_start_, 0));
}

// ---- the packet path -------------------------------------------------------

ArlEntry *ArlEngine::lookup(uint32_t vid, uint64_t mac)
{
    ArlEntry image{};
    bits_set(image.data(), e_vlanid_, vid);
    bits_set(image.data(), e_mac_ip_, mac << 16);
    Slot at{};
    return find(image, &at) ? slot(at) : nullptr;
}

ArlEngine::Result ArlEngine::learn(uint32_t vid, uint64_t mac, uint32_t port)
{
    ArlEntry image{};
    bits_set(image.data(), e_valid_, 1);
    bits_set(image.data(), e_vlanid_, vid);
    bits_set(image.data(), e_mac_ip_, mac << 16);
    bits_set(image.data(), ef_.age_cnt, kAgeFull);
    bits_set(image.data(), e_learn_data_, port);
    const Result r = insert(image, 0);
    if (!r.fail) {
        publish_counts();
        chip_.intr->event("arl_learn");
    } else if (r.cause == kBarrelFull) {
        chip_.intr->event("arl_full");
    }
    return r;
}

ArlEngine::Result ArlEngine::move(ArlEntry *entry, uint32_t port)
{
    const Result limit = port_limit_check(port);
    if (limit.fail) {
        return limit;
    }
    ArlEntry moved = *entry;
    bits_set(moved.data(), e_opcode_, 0);
    bits_set(moved.data(), e_learn_data_, port);
    bits_set(moved.data(), ef_.age_cnt, kAgeFull);
    put(entry, moved);
    publish_counts();
    chip_.intr->event("arl_move");
    return Result{};
}

void ArlEngine::refresh(ArlEntry *entry) const
{
    bits_set(entry->data(), ef_.age_cnt, kAgeFull);
}

uint32_t ArlEngine::age_pass()
{
    uint32_t removed = 0;
    for (auto *v : {&bar0_, &bar1_, &cam_}) {
        const uint32_t size = v == &bar0_ ? bar0_size() : static_cast<uint32_t>(v->size());
        for (uint32_t i = 0; i < size; i++) {
            ArlEntry &e = (*v)[i];
            if (!bits_get(e.data(), e_valid_) || bits_get(e.data(), e_stati_)) {
                continue;
            }
            const uint64_t age = bits_get(e.data(), ef_.age_cnt);
            if (age <= 1) {
                remove(&e);
                removed++;
            } else {
                bits_set(e.data(), ef_.age_cnt, age - 1);
            }
        }
    }
    if (removed != 0) {
        publish_counts();
        chip_.intr->event("arl_age");
    }
    return removed;
}

void ArlEngine::float_counted(bool succeeded)
{
    const uint32_t w = reg(a_float_);
    const FieldRef f = succeeded ? f_float_succ_ : f_float_fail_;
    // The counters stop at their highest value.
    const uint32_t n = word_get(w, f);
    if (n < width_mask(f.width)) {
        set_reg(a_float_, word_set(w, f, n + 1));
    }
}

} // namespace tide::sim
