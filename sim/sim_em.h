// The model's exact-match engine: the memories of the egress translation
// behind their command block.
//
// The chip holds two barrels of rows of four slots, a CAM of one slot a
// row, and runs the commands the CPU gives through the block: write and
// read a row of each memory, and search a key.  A search computes the
// key's two bucket rows itself, with the CRCs the block's hash mode
// selects, and reports the hits of the CAM, barrel 0 and barrel 1.  The
// action rows (the AD table) are a plain table of the register file.
#ifndef TIDE_SIM_EM_H
#define TIDE_SIM_EM_H

#include <array>
#include <cstdint>
#include <vector>

#include "sim/sim_bits.h"

namespace tide::sim {

class Chip;

class EmEngine {
public:
    static constexpr uint32_t kMems = 3;      // barrel 0, barrel 1, CAM
    static constexpr uint32_t kRowWords = 6;  // the block's data words
    static constexpr uint32_t kBarrelSlots = 4;

    using Row = std::array<uint32_t, kRowWords>;

    explicit EmEngine(Chip &chip);

    // Whether the description gave every register, table and field the
    // engine needs.
    bool ok() const { return needs_.ok; }
    // Write handlers of the command block and of the init.
    void install();
    // Barrels and CAM empty (power-on, hard reset, init).
    void clear();
    // A row as the chip holds it; false for a memory or row beyond the
    // engine.
    bool row_get(uint32_t mem, uint32_t row, Row *out) const;

    // The bucket rows of a key with a hash id, as the search computes them.
    void buckets(uint64_t key, uint32_t hash_id, uint32_t *bar0, uint32_t *bar1) const;
    // The lookup of the egress stage: the AD row of the entry holding `key`
    // (the CAM first, then the key's rows of barrel 0 and barrel 1), as
    // the search command finds it; false for a miss.
    bool lookup(uint64_t key, uint32_t hash_id, uint32_t *ad) const;
    // A key from its fields, placed as a slot of the description holds them.
    uint64_t key_of(uint32_t tid, uint32_t trunk_flag, uint32_t port, uint32_t ovid, uint32_t ivid_opri) const;

private:
    Chip &chip_;
    DescNeeds needs_;
    std::array<std::vector<Row>, kMems> mem_;
    std::array<uint32_t, kMems> depth_{};
    std::array<uint32_t, kMems> row_bits_{};

    uint32_t a_wdat_[kRowWords] = {}, a_rdat_[kRowWords] = {};
    uint32_t a_addr_ = 0, a_info_ = 0, a_mode_ = 0, a_init_start_ = 0, a_init_done_ = 0;
    FieldRef f_opcode_, f_done_, f_start_, f_bar0_alg_, f_bar1_alg_, f_left_shift_;
    // A slot: its width and, inside it, the AD row and the valid bit; the
    // key is every bit below the AD row.
    uint32_t slot_bits_ = 0;
    FieldRef s_ad_, s_vld_;
    FieldRef k_tid_, k_trunk_, k_port_, k_ovid_, k_ivid_;
    uint32_t key_bits_ = 0;
    uint32_t hash_id_bits_ = 0;


    void on_command(uint32_t info);
    void search();
    uint64_t slot(const Row &row, uint32_t index) const;
    // The search result word of a memory: hit bit, row, AD row, slot.
    uint32_t hit_word(uint32_t mem, uint32_t row, uint64_t key) const;
};

} // namespace tide::sim

#endif // TIDE_SIM_EM_H
