// The model's exact-match engine.
//
// Geometry and field positions come from the chip description: the depth
// of each memory, the slot (the CAM's entry: the key below the AD row, the
// AD row, the valid bit on top), the width of the hash id (`hash_opc` of
// the egress port table).  The bucket function is the model's own: a
// 32-bit shift register over the 64-bit word of key and hash id, one input
// bit at a time.
#include "sim/sim_em.h"

#include <initializer_list>
#include <utility>

#include "sim/sim_int.h"

namespace tide::sim {

namespace {

// Polynomials of the four algorithms a barrel may use.
constexpr uint32_t kPoly[4] = {0x45A5C105u, 0x04C11DB7u, 0x6DB88321u, 0x1EDC6F41u};

constexpr uint32_t kOpSearch = 6;
constexpr uint32_t kOpReadFirst = 3;
constexpr uint32_t kHitBit = 31;

// The CRC of a 64-bit word, bit 0 of the word entering first: the register
// starts at 0, each input bit is XORed with the top bit that leaves, and a
// 1 that leaves brings the polynomial in.  No reflection, no inversion.
uint32_t _crc64(uint64_t word, uint32_t poly)
{
    uint32_t reg = 0;
    for (uint32_t k = 0; k < 64; k++) {
        const uint32_t feedback = (reg >> 31) ^ static_cast<uint32_t>((word >> k) & 1);
        reg <<= 1;
        if (feedback != 0) {
            reg ^= poly;
        }
    }
    return reg;
}

// Rotated left by the value of its own top five bits.
uint32_t _rotate(uint32_t crc)
{
    const uint32_t n = crc >> 27;
    return n == 0 ? crc : (crc << n) | (crc >> (32 - n));
}

uint32_t _bits_for(uint32_t depth)
{
    uint32_t bits = 0;
    while ((1u << bits) < depth) {
        bits++;
    }
    return bits;
}

} // namespace

EmEngine::EmEngine(Chip &chip) : chip_(chip)
{
    static const char *const kWdat[kRowWords] = {"epro_em_cfg_wdat0", "epro_em_cfg_wdat1", "epro_em_cfg_wdat2",
                                                 "epro_em_cfg_wdat3", "epro_em_cfg_wdat4", "epro_em_cfg_wdat5"};
    static const char *const kRdat[kRowWords] = {"epro_em_cfg_rdat0", "epro_em_cfg_rdat1", "epro_em_cfg_rdat2",
                                                 "epro_em_cfg_rdat3", "epro_em_cfg_rdat4", "epro_em_cfg_rdat5"};
    for (uint32_t i = 0; i < kRowWords; i++) {
        a_wdat_[i] = needs_.reg(kWdat[i]);
        a_rdat_[i] = needs_.reg(kRdat[i]);
    }
    a_addr_ = needs_.reg("epro_em_cfg_addr");
    const desc::Register *r = nullptr;
    a_info_ = needs_.reg("epro_em_cfg_info", &r);
    if (r != nullptr) {
        f_opcode_ = needs_.field(r->fields, r->field_count, "em_cfg_opcode");
        f_done_ = needs_.field(r->fields, r->field_count, "em_cfg_done");
        f_start_ = needs_.field(r->fields, r->field_count, "em_cfg_start");
    }
    a_mode_ = needs_.reg("epro_em_hash_mode", &r);
    if (r != nullptr) {
        f_bar0_alg_ = needs_.field(r->fields, r->field_count, "bar0_alg");
        f_bar1_alg_ = needs_.field(r->fields, r->field_count, "bar1_alg");
        f_left_shift_ = needs_.field(r->fields, r->field_count, "left_shift");
    }
    a_init_start_ = needs_.reg("epro_em_init_start");
    a_init_done_ = needs_.reg("epro_em_init_done");

    static const char *const kTables[kMems] = {"epro_em_pv_ht0_tbl", "epro_em_pv_ht1_tbl", "epro_em_pv_cam_tbl"};
    for (uint32_t m = 0; m < kMems; m++) {
        const desc::Table *t = desc::find_table(kTables[m]);
        needs_.ok &= t != nullptr && t->words <= kRowWords;
        depth_[m] = t != nullptr ? t->depth : 0;
        row_bits_[m] = _bits_for(depth_[m]);
        mem_[m].assign(depth_[m], Row{});
        if (t != nullptr && m == 2) {
            s_ad_ = needs_.field(t->fields, t->field_count, "ad");
            s_vld_ = needs_.field(t->fields, t->field_count, "vld");
            k_tid_ = needs_.field(t->fields, t->field_count, "tid");
            k_trunk_ = needs_.field(t->fields, t->field_count, "trunk_flag");
            k_port_ = needs_.field(t->fields, t->field_count, "portid_trunkid");
            k_ovid_ = needs_.field(t->fields, t->field_count, "ovid");
            k_ivid_ = needs_.field(t->fields, t->field_count, "ivid_opri");
        }
    }
    slot_bits_ = s_vld_.low + 1;
    key_bits_ = s_ad_.low;
    // Barrel rows hold their slots one after the other.
    const desc::Table *bar0 = desc::find_table(kTables[0]);
    if (bar0 != nullptr) {
        const FieldRef second = needs_.field(bar0->fields, bar0->field_count, "bucket1_ivid_opri");
        needs_.ok &= second.low == slot_bits_;
    }
    const desc::Table *epat = desc::find_table("epro_epat_table");
    needs_.ok &= epat != nullptr;
    if (epat != nullptr) {
        hash_id_bits_ = needs_.field(epat->fields, epat->field_count, "hash_opc").width;
    }
    needs_.ok &= key_bits_ + s_ad_.width + 1 == slot_bits_ && key_bits_ + s_ad_.width <= 64;
}

void EmEngine::install()
{
    if (!needs_.ok) {
        return;
    }
    chip_.on_write(4, a_info_, [this](Chip &, uint32_t, uint32_t, uint64_t value) {
        on_command(static_cast<uint32_t>(value));
    });
    chip_.on_write(4, a_init_start_, [this](Chip &c, uint32_t, uint32_t, uint64_t value) {
        // A write of one clears the memories: done drops while it runs and
        // comes back at its end, unless the init is made to stall.
        if ((value & 1) == 0) {
            return;
        }
        c.set_core_word(a_init_done_, 0);
        if (!c.stalled[TIDE_SIM_ENGINE_EM_INIT]) {
            clear();
            c.set_core_word(a_init_done_, 1);
        }
    });
}

void EmEngine::clear()
{
    for (auto &m : mem_) {
        for (Row &row : m) {
            row = Row{};
        }
    }
}

bool EmEngine::row_get(uint32_t mem, uint32_t row, Row *out) const
{
    if (mem >= kMems || row >= depth_[mem]) {
        return false;
    }
    *out = mem_[mem][row];
    return true;
}

uint64_t EmEngine::slot(const Row &row, uint32_t index) const
{
    return bits_get(row.data(), FieldRef{index * slot_bits_, slot_bits_});
}

void EmEngine::buckets(uint64_t key, uint32_t hash_id, uint32_t *bar0, uint32_t *bar1) const
{
    const uint32_t mode = chip_.core_word(a_mode_);
    const uint32_t fields = key_bits_ + s_ad_.width;
    const uint64_t word = (key & width_mask(key_bits_)) << (64 - fields) |
                          static_cast<uint64_t>(hash_id & width_mask(hash_id_bits_)) << (64 - hash_id_bits_);
    uint32_t crc0 = _crc64(word, kPoly[word_get(mode, f_bar0_alg_) & 3]);
    uint32_t crc1 = _crc64(word, kPoly[word_get(mode, f_bar1_alg_) & 3]);
    if (word_get(mode, f_left_shift_) != 0) {
        crc0 = _rotate(crc0);
        crc1 = _rotate(crc1);
    }
    *bar0 = crc0 & (depth_[0] - 1);
    *bar1 = crc1 & (depth_[1] - 1);
}

uint32_t EmEngine::hit_word(uint32_t mem, uint32_t row, uint64_t key) const
{
    const uint32_t rb = row_bits_[mem];
    const bool cam = mem == 2;
    const uint32_t first = cam ? 0 : row, last = cam ? depth_[2] : row + 1;
    for (uint32_t r = first; r < last; r++) {
        for (uint32_t s = 0; s < (cam ? 1 : kBarrelSlots); s++) {
            const uint64_t v = slot(mem_[mem][r], s);
            if (((v >> s_vld_.low) & 1) == 0 || (v & width_mask(key_bits_)) != key) {
                continue;
            }
            const uint32_t ad = static_cast<uint32_t>((v >> s_ad_.low) & width_mask(s_ad_.width));
            uint32_t w = 1u << kHitBit | r | ad << rb;
            if (!cam) {
                w |= s << (rb + s_ad_.width);
            }
            return w;
        }
    }
    return 0;
}

uint64_t EmEngine::key_of(uint32_t tid, uint32_t trunk_flag, uint32_t port, uint32_t ovid, uint32_t ivid_opri) const
{
    uint64_t key = 0;
    const std::pair<FieldRef, uint32_t> parts[] = {
        {k_tid_, tid}, {k_trunk_, trunk_flag}, {k_port_, port}, {k_ovid_, ovid}, {k_ivid_, ivid_opri}};
    for (const auto &[f, v] : parts) {
        key |= (static_cast<uint64_t>(v) & width_mask(f.width)) << f.low;
    }
    return key;
}

bool EmEngine::lookup(uint64_t key, uint32_t hash_id, uint32_t *ad) const
{
    key &= width_mask(key_bits_);
    uint32_t rows[kMems] = {0, 0, 0};
    buckets(key, hash_id, &rows[0], &rows[1]);
    for (uint32_t mem : {2u, 0u, 1u}) {
        const uint32_t w = hit_word(mem, rows[mem], key);
        if (w != 0) {
            *ad = (w >> row_bits_[mem]) & static_cast<uint32_t>(width_mask(s_ad_.width));
            return true;
        }
    }
    return false;
}

void EmEngine::search()
{
    Row data{};
    for (uint32_t i = 0; i < kRowWords; i++) {
        data[i] = chip_.core_word(a_wdat_[i]);
    }
    const uint64_t key = bits_get(data.data(), FieldRef{0, key_bits_});
    const uint32_t hash_id = static_cast<uint32_t>(bits_get(data.data(), FieldRef{key_bits_, hash_id_bits_}));
    uint32_t bar0 = 0, bar1 = 0;
    buckets(key, hash_id, &bar0, &bar1);
    // Result words: the CAM, barrel 0, barrel 1.
    chip_.set_core_word(a_rdat_[0], hit_word(2, 0, key));
    chip_.set_core_word(a_rdat_[1], hit_word(0, bar0, key));
    chip_.set_core_word(a_rdat_[2], hit_word(1, bar1, key));
}

void EmEngine::on_command(uint32_t info)
{
    if (word_get(info, f_start_) == 0) {
        return;
    }
    if (chip_.stalled[TIDE_SIM_ENGINE_EM]) {
        // The command never finishes: done stays 0.
        chip_.set_core_word(a_info_, word_set(info, f_done_, 0));
        return;
    }
    const uint32_t op = word_get(info, f_opcode_);
    const uint32_t row = chip_.core_word(a_addr_);
    if (op < kMems) {
        // A row beyond the memory is not written.
        if (row < depth_[op]) {
            // The memory keeps the row's bits and no more.
            const uint32_t bits = op == 2 ? slot_bits_ : slot_bits_ * kBarrelSlots;
            for (uint32_t i = 0; i < kRowWords; i++) {
                const uint32_t keep = bits <= 32 * i ? 0 : bits - 32 * i;
                mem_[op][row][i] = chip_.core_word(a_wdat_[i]) & static_cast<uint32_t>(width_mask(keep < 32 ? keep : 32));
            }
        }
    } else if (op < kOpSearch) {
        // A row beyond the memory reads as zeros.
        const uint32_t m = op - kOpReadFirst;
        const Row r = row < depth_[m] ? mem_[m][row] : Row{};
        for (uint32_t i = 0; i < kRowWords; i++) {
            chip_.set_core_word(a_rdat_[i], r[i]);
        }
    } else if (op == kOpSearch) {
        search();
    }
    // Start clears itself and done reports the end of the command.
    chip_.set_core_word(a_info_, word_set(word_set(info, f_start_, 0), f_done_, 1));
}

} // namespace tide::sim
