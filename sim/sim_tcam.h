// The model's TCAM: the shared blocks of acl_core and their command
// registers.
//
// The chip holds every TCAM table in one memory of blocks.  A row of a
// block has a data plane, a care plane, a valid bit and a 96-bit action
// row; the block's mode (two bits of acl_core_tcam_glb_cfg0) decides how
// many rows it has and how wide they are.  The CPU reaches the memory only
// through the command registers: it loads the data registers, writes a
// command and reads the result.  This engine runs each command inside the
// register write that starts it.
#ifndef TIDE_SIM_TCAM_H
#define TIDE_SIM_TCAM_H

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include "sim/sim_bits.h"

namespace tide::sim {

class Chip;

class TcamEngine {
public:
    static constexpr uint32_t kBlocks = 16;     // atolreef
    static constexpr uint32_t kBlocksWide = 32; // kelpreef
    static constexpr uint32_t kRowsMax = 256;   // rows of a block of 80-bit rows
    static constexpr uint32_t kPlaneWords = 10; // 320 bits
    static constexpr uint32_t kActionWords = 3; // 96 bits

    using Plane = std::array<uint32_t, kPlaneWords>;

    // One row: the planes hold the row's bits right-aligned (bit i in word
    // i / 32), as many as the block's width.
    struct Row {
        Plane data{};
        Plane care{};
        std::array<uint32_t, kActionWords> action{};
        bool valid = false;
    };

    explicit TcamEngine(Chip &chip);

    // Whether the description gave every register and field the engine
    // needs.
    bool ok() const { return needs_.ok; }
    // Write handlers of the command registers.
    void install();
    // Every row empty and invalid (power-on and hard reset).
    void clear();

    // Blocks of the chip by its identity.
    uint32_t blocks() const;
    // Mode of a block (0 80-bit rows, 1 160, 2 320, 3 none), its rows and
    // their width in bits (0 for mode 3).
    uint32_t mode(uint32_t block) const;
    uint32_t rows(uint32_t block) const;
    uint32_t width(uint32_t block) const;

    // A row by (block, index), whatever the block's mode; false beyond the
    // chip.
    bool row_get(uint32_t block, uint32_t index, Row *out) const;
    // A fault of the memory: the row changes without a command, and the
    // scan finds it.
    bool row_set(uint32_t block, uint32_t index, const Row &row);
    // A memory error that is reported already: bit 0 of the row's plane
    // (0 data, 1 care, 2 action) flips; false beyond the chip.
    bool damage(uint32_t block, uint32_t index, uint32_t plane);
    // The background scan of the blocks whose scan is enabled
    // (acl_core_tcam_scan_enable): each row a fault changed is reported
    // once to the interrupt tree, by plane; an action row with one bit
    // wrong is corrected by the memory itself.
    void scan();

    // The search of the chip: the first valid row that matches `key` (the
    // top bits of a 320-bit number, key[0] holding bits 31..0) in ascending
    // block id among the blocks of `bitmap`, then in ascending index.
    bool search(const Plane &key, uint32_t bitmap, uint32_t *block, uint32_t *index) const;
    // The same with a key of `bits` bits held right-aligned (bit i in word
    // i / 32), as a row holds it.
    bool search_right_aligned(const Plane &key, uint32_t bits, uint32_t bitmap, uint32_t *block,
                              uint32_t *index) const;

    // Counts the changes of the memory: any command or fault that may
    // change a row moves it on, so a result found at one value holds while
    // it stays.
    uint64_t generation() const { return generation_; }

private:
    static constexpr uint32_t kDataRegs = 10;
    uint64_t generation_ = 0;

    Chip &chip_;
    DescNeeds needs_;
    std::vector<Row> rows_;
    // The rows as the CPU last wrote them, of the rows a fault changed.
    std::map<uint32_t, Row> faults_;
    uint32_t a_scan_ = 0;
    FieldRef f_scan_;

    // Register addresses and fields, from the description.
    uint32_t a_cmd0_ = 0, a_cmd1_ = 0, a_rr0_ = 0, a_bbm_ = 0, a_init_done_ = 0, a_search_en_ = 0, a_cfg0_ = 0;
    uint32_t a_d_[kDataRegs] = {}, a_rd_[kDataRegs] = {};
    FieldRef f_dcs_, f_vbi_, f_vbe_, f_addr_, f_cmd_, f_ad_start_, f_tcam_start_;
    FieldRef f_hit_block_, f_hit_addr_, f_vbo_, f_hit_, f_done_;
    FieldRef f_rst_, f_bbm_, f_init_done_, f_search_en_, f_blockmode_;

    uint32_t reg(uint32_t addr) const;
    void set_reg(uint32_t addr, uint32_t value);
    Row *at(uint32_t block, uint32_t index);

    void on_command(uint32_t cmd);
    void on_reset(uint32_t blocks);
    void write(uint32_t cmd, uint32_t block, uint32_t index);
    void read(uint32_t cmd, uint32_t block, uint32_t index);
    void run_search();
    // The data registers d0..d9 as one 320-bit number, word 0 from d0.
    Plane data_regs() const;
    void set_read_regs(const Plane &value);
    static bool matches(const Row &row, const Plane &key, uint32_t width);
};

} // namespace tide::sim

#endif // TIDE_SIM_TCAM_H
