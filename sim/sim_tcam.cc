// The model's TCAM.
//
// Geometry: 16 blocks (32 when the identity says kelpreef) of 256 row
// slots.  A block's mode gives its rows: mode 0 256 rows of 80 bits, 1 128
// of 160, 2 64 of 320; mode 3 has none.  Blocks 16 to 31 have no mode bits
// in acl_core_tcam_glb_cfg0: they hold 160-bit rows.
//
// A cell is a (care, data) pair of bits: (0, 0) matches either key bit,
// (1, 0) a 0, (0, 1) a 1, and (1, 1) nothing.
//
// Commands (acl_core_tcamad_op_cmd0, run when op_tcam_start or op_ad_start
// is written): op_cmd 1 writes, 0 reads, 2 searches.  Data registers hold a
// row left-justified: a row of w bits is the top w bits of d9..d0 (d9
// highest), an action the 96 bits of d2..d0.  opdone of acl_core_tcamad_op_rr0
// falls when a command starts and rises when it is done, before the write
// that started it returns.
#include "sim/sim_tcam.h"

#include <cstdio>

#include "sim/sim_int.h"
#include "sim/sim_intr.h"

namespace tide::sim {

namespace {

using Plane = TcamEngine::Plane;

constexpr uint32_t kTotalBits = 32 * TcamEngine::kPlaneWords;
constexpr uint32_t kModeNone = 3;
constexpr uint32_t kWideBlockMode = 1;

// A 320-bit number shifted right by `n` bits (left for a negative `n`).
Plane _shift(const Plane &v, int n)
{
    Plane out{};
    const uint32_t m = static_cast<uint32_t>(n < 0 ? -n : n), ws = m / 32, bs = m % 32;
    const uint32_t words = TcamEngine::kPlaneWords;
    for (uint32_t i = 0; i < words; i++) {
        if (n >= 0 && i + ws < words) {
            const uint64_t hi = i + ws + 1 < words ? v[i + ws + 1] : 0;
            out[i] = static_cast<uint32_t>((hi << 32 | v[i + ws]) >> bs);
        } else if (n < 0 && i >= ws) {
            const uint64_t lo = i > ws ? v[i - ws - 1] : 0;
            out[i] = static_cast<uint32_t>(((static_cast<uint64_t>(v[i - ws]) << 32 | lo) << bs) >> 32);
        }
    }
    return out;
}

// The mask of the bits of word `w` below bit `width`.
uint32_t _word_mask(uint32_t w, uint32_t width)
{
    const uint32_t low = 32 * w;
    return width >= low + 32 ? ~0u : (width > low ? (1u << (width - low)) - 1 : 0);
}

// The low `width` bits of a 320-bit number.
Plane _cut(Plane v, uint32_t width)
{
    for (uint32_t w = 0; w < v.size(); w++) {
        v[w] &= _word_mask(w, width);
    }
    return v;
}

} // namespace

TcamEngine::TcamEngine(Chip &chip) : chip_(chip), rows_(kBlocksWide * kRowsMax)
{
    const desc::Register *r = nullptr;
    a_cmd0_ = needs_.reg("acl_core_tcamad_op_cmd0", &r);
    f_dcs_ = needs_.field(r, "op_dcs");
    f_vbi_ = needs_.field(r, "op_vbi");
    f_vbe_ = needs_.field(r, "op_vbe");
    f_addr_ = needs_.field(r, "op_addr");
    f_cmd_ = needs_.field(r, "op_cmd");
    f_ad_start_ = needs_.field(r, "op_ad_start");
    f_tcam_start_ = needs_.field(r, "op_tcam_start");
    a_rr0_ = needs_.reg("acl_core_tcamad_op_rr0", &r);
    f_hit_block_ = needs_.field(r, "ophitblock");
    f_hit_addr_ = needs_.field(r, "ophitblockaddr");
    f_vbo_ = needs_.field(r, "opvbo");
    f_hit_ = needs_.field(r, "ophit");
    f_done_ = needs_.field(r, "opdone");
    a_cmd1_ = needs_.reg_field("acl_core_tcamad_op_cmd1", "op_tcam_rst", &f_rst_);
    a_bbm_ = needs_.reg_field("acl_core_tcam_op_bbm", "blockbitmap", &f_bbm_);
    a_init_done_ = needs_.reg_field("acl_core_tcam_init_done", "tcam_init_done", &f_init_done_);
    a_search_en_ = needs_.reg_field("acl_core_test_search_en", "test_search_en", &f_search_en_);
    a_cfg0_ = needs_.reg_field("acl_core_tcam_glb_cfg0", "blockmode", &f_blockmode_);
    a_scan_ = needs_.reg_field("acl_core_tcam_scan_enable", "tcam_scan_en", &f_scan_);
    // d0..d2 are the action registers, d3..d9 the rest of a TCAM row.
    char name[48];
    for (uint32_t i = 0; i < kDataRegs; i++) {
        const char *kind = i < 3 ? "tcamad" : "tcam";
        snprintf(name, sizeof(name), "acl_core_%s_op_d%u", kind, i);
        a_d_[i] = needs_.reg(name);
        snprintf(name, sizeof(name), "acl_core_%s_op_rd%u", kind, i);
        a_rd_[i] = needs_.reg(name);
    }
}

uint32_t TcamEngine::reg(uint32_t addr) const
{
    return chip_.core_word(addr);
}

void TcamEngine::set_reg(uint32_t addr, uint32_t value)
{
    chip_.set_core_word(addr, value);
}

void TcamEngine::install()
{
    if (!ok()) {
        return;
    }
    chip_.on_write(4, a_cmd0_, [this](Chip &, uint32_t, uint32_t, uint64_t value) {
        on_command(static_cast<uint32_t>(value));
    });
    chip_.on_write(4, a_cmd1_, [this](Chip &, uint32_t, uint32_t, uint64_t value) {
        on_reset(word_get(static_cast<uint32_t>(value), f_rst_));
    });
}

void TcamEngine::clear()
{
    generation_++;
    for (Row &r : rows_) {
        r = Row{};
    }
    faults_.clear();
}

uint32_t TcamEngine::blocks() const
{
    return chip_.identity.device_id == kDeviceKelpreef ? kBlocksWide : kBlocks;
}

uint32_t TcamEngine::mode(uint32_t block) const
{
    if (block >= blocks()) {
        return kModeNone;
    }
    if (block >= kBlocks) {
        return kWideBlockMode;
    }
    return (word_get(reg(a_cfg0_), f_blockmode_) >> (2 * block)) & 3;
}

uint32_t TcamEngine::rows(uint32_t block) const
{
    const uint32_t m = mode(block);
    return m == kModeNone ? 0 : kRowsMax >> m;
}

uint32_t TcamEngine::width(uint32_t block) const
{
    const uint32_t m = mode(block);
    return m == kModeNone ? 0 : 80u << m;
}

TcamEngine::Row *TcamEngine::at(uint32_t block, uint32_t index)
{
    generation_++; // the row may change
    return block < blocks() && index < kRowsMax ? &rows_[block * kRowsMax + index] : nullptr;
}

bool TcamEngine::row_get(uint32_t block, uint32_t index, Row *out) const
{
    if (block >= blocks() || index >= kRowsMax) {
        return false;
    }
    *out = rows_[block * kRowsMax + index];
    return true;
}

bool TcamEngine::row_set(uint32_t block, uint32_t index, const Row &row)
{
    Row *r = at(block, index);
    if (r != nullptr) {
        faults_.emplace(block * kRowsMax + index, *r);
        *r = row;
    }
    return r != nullptr;
}

TcamEngine::Plane TcamEngine::data_regs() const
{
    Plane v{};
    for (uint32_t i = 0; i < kDataRegs; i++) {
        v[i] = reg(a_d_[i]);
    }
    return v;
}

void TcamEngine::set_read_regs(const Plane &value)
{
    for (uint32_t i = 0; i < kDataRegs; i++) {
        set_reg(a_rd_[i], value[i]);
    }
}

bool TcamEngine::matches(const Row &row, const Plane &key, uint32_t width)
{
    uint32_t bad = 0;
    for (uint32_t w = 0; w < kPlaneWords; w++) {
        // A care bit wants a 0, a data bit a 1, both together nothing.
        const uint32_t c = row.care[w], d = row.data[w], k = key[w];
        bad |= ((c & k) | (d & ~k) | (c & d)) & _word_mask(w, width);
    }
    return bad == 0;
}

void TcamEngine::on_command(uint32_t cmd)
{
    const bool tcam = word_get(cmd, f_tcam_start_) != 0;
    const bool action = word_get(cmd, f_ad_start_) != 0;
    if (!tcam && !action) {
        return;
    }
    uint32_t rr0 = word_set(reg(a_rr0_), f_done_, 0);
    set_reg(a_rr0_, rr0);
    if (chip_.stalled[TIDE_SIM_ENGINE_TCAM]) {
        return;
    }
    const uint32_t addr = word_get(cmd, f_addr_);
    const uint32_t block = addr >> 8, index = addr & 0xFF;
    switch (word_get(cmd, f_cmd_)) {
    case 0:
        read(cmd, block, index);
        break;
    case 1:
        write(cmd, block, index);
        break;
    case 2:
        if (tcam) {
            run_search();
        }
        break;
    default:
        break;
    }
    set_reg(a_rr0_, word_set(reg(a_rr0_), f_done_, 1));
}

// A write beyond the block's rows (or to a block of mode 3) changes nothing.
void TcamEngine::write(uint32_t cmd, uint32_t block, uint32_t index)
{
    Row *row = index < rows(block) ? at(block, index) : nullptr;
    if (row == nullptr) {
        return;
    }
    faults_.erase(block * kRowsMax + index);
    const Plane d = data_regs();
    if (word_get(cmd, f_tcam_start_) != 0) {
        const uint32_t w = width(block);
        const Plane value = _cut(_shift(d, static_cast<int>(kTotalBits - w)), w);
        (word_get(cmd, f_dcs_) != 0 ? row->data : row->care) = value;
        if (word_get(cmd, f_vbe_) != 0) {
            row->valid = word_get(cmd, f_vbi_) != 0;
        }
    }
    if (word_get(cmd, f_ad_start_) != 0) {
        row->action = {d[0], d[1], d[2]};
    }
}

// A read beyond the block's rows reads zeros and an invalid row.
void TcamEngine::read(uint32_t cmd, uint32_t block, uint32_t index)
{
    static const Row kEmpty{};
    const Row *row = index < rows(block) ? at(block, index) : nullptr;
    if (row == nullptr) {
        row = &kEmpty;
    }
    Plane out{};
    if (word_get(cmd, f_tcam_start_) != 0) {
        const uint32_t w = width(block);
        const Plane &plane = word_get(cmd, f_dcs_) != 0 ? row->data : row->care;
        out = w == 0 ? Plane{} : _shift(plane, -static_cast<int>(kTotalBits - w));
        set_reg(a_rr0_, word_set(reg(a_rr0_), f_vbo_, row->valid ? 1 : 0));
    }
    if (word_get(cmd, f_ad_start_) != 0) {
        out[0] = row->action[0];
        out[1] = row->action[1];
        out[2] = row->action[2];
    }
    set_read_regs(out);
}

bool TcamEngine::search(const Plane &key, uint32_t bitmap, uint32_t *block, uint32_t *index) const
{
    for (uint32_t b = 0; b < blocks() && b < 32; b++) {
        if (((bitmap >> b) & 1) == 0) {
            continue;
        }
        const uint32_t w = width(b);
        const Plane k = w == 0 ? Plane{} : _shift(key, static_cast<int>(kTotalBits - w));
        const uint32_t n = rows(b);
        for (uint32_t i = 0; i < n; i++) {
            const Row &row = rows_[b * kRowsMax + i];
            if (row.valid && matches(row, k, w)) {
                *block = b;
                *index = i;
                return true;
            }
        }
    }
    return false;
}

bool TcamEngine::search_right_aligned(const Plane &key, uint32_t bits, uint32_t bitmap, uint32_t *block,
                                      uint32_t *index) const
{
    return bits <= kTotalBits && search(_shift(key, -static_cast<int>(kTotalBits - bits)), bitmap, block, index);
}

// A search command searches only while test_search_en is 1; otherwise it
// finishes without a hit.
void TcamEngine::run_search()
{
    uint32_t rr0 = reg(a_rr0_);
    rr0 = word_set(rr0, f_hit_, 0);
    rr0 = word_set(rr0, f_hit_block_, 0);
    rr0 = word_set(rr0, f_hit_addr_, 0);
    uint32_t block = 0, index = 0;
    const bool enabled = word_get(reg(a_search_en_), f_search_en_) == 1;
    if (enabled && search(data_regs(), word_get(reg(a_bbm_), f_bbm_), &block, &index)) {
        rr0 = word_set(rr0, f_hit_, 1);
        rr0 = word_set(rr0, f_hit_block_, block);
        rr0 = word_set(rr0, f_hit_addr_, index);
        const Row &row = rows_[block * kRowsMax + index];
        set_read_regs(Plane{row.action[0], row.action[1], row.action[2]});
    }
    set_reg(a_rr0_, rr0);
}

// Each block whose bit is written as one is cleared; its done bit falls at
// the start and rises when it is clear, unless the engine is stalled.
void TcamEngine::on_reset(uint32_t bits)
{
    generation_++;
    uint32_t done = word_get(reg(a_init_done_), f_init_done_);
    for (uint32_t b = 0; b < kBlocks; b++) {
        if (((bits >> b) & 1) == 0) {
            continue;
        }
        done &= ~(1u << b);
        if (chip_.stalled[TIDE_SIM_ENGINE_TCAM]) {
            continue;
        }
        for (uint32_t i = 0; i < kRowsMax; i++) {
            faults_.erase(b * kRowsMax + i);
            rows_[b * kRowsMax + i] = Row{};
            if (b + kBlocks < blocks()) {
                rows_[(b + kBlocks) * kRowsMax + i] = Row{};
            }
        }
        done |= 1u << b;
    }
    set_reg(a_init_done_, word_set(reg(a_init_done_), f_init_done_, done));
}

bool TcamEngine::damage(uint32_t block, uint32_t index, uint32_t plane)
{
    Row *r = at(block, index);
    if (r == nullptr || plane > 2) {
        return false;
    }
    (plane == 0 ? r->data[0] : plane == 1 ? r->care[0] : r->action[0]) ^= 1u;
    return true;
}

// The error type of a plane that differs from what the CPU wrote: notice,
// with a single-bit or a multi-bit error.
static uint32_t _ecc_type(const uint32_t *now, const uint32_t *good, uint32_t words)
{
    uint32_t flipped = 0;
    for (uint32_t i = 0; i < words; i++) {
        flipped += static_cast<uint32_t>(__builtin_popcount(now[i] ^ good[i]));
    }
    return flipped == 0 ? 0 : flipped == 1 ? 0x3u : 0x5u;
}

void TcamEngine::scan()
{
    const uint32_t enabled = word_get(reg(a_scan_), f_scan_);
    for (auto it = faults_.begin(); it != faults_.end();) {
        const uint32_t block = it->first / kRowsMax, index = it->first % kRowsMax;
        if (block >= kBlocks || ((enabled >> block) & 1) == 0) {
            ++it;
            continue;
        }
        Row &row = rows_[it->first];
        const Row &good = it->second;
        const uint32_t types[3] = {_ecc_type(row.data.data(), good.data.data(), kPlaneWords),
                                   _ecc_type(row.care.data(), good.care.data(), kPlaneWords),
                                   _ecc_type(row.action.data(), good.action.data(), kActionWords)};
        if (types[2] == 0x3u) {
            row.action = good.action; // corrected by the memory
            generation_++;
        }
        for (uint32_t plane = 0; plane < 3; plane++) {
            if (types[plane] != 0) {
                chip_.intr->tcam_error(plane, block, index, types[plane]);
            }
        }
        it = faults_.erase(it);
    }
}

} // namespace tide::sim
