// The model's MACsec engine.  It has its own reading of the engine's
// tables: where a row lies and what its fields hold come from the chip
// description, what they mean is the engine's.
#include "sim/sim_macsec.h"

#include "sim/sim_bits.h"
#include "sim/sim_desc.h"
#include "sim/sim_int.h"
#include "sim/sim_intr.h"

namespace tide::sim {

namespace {

constexpr uint32_t kLswBar = 4;
constexpr uint32_t kMaxWords = 8;
constexpr uint64_t kPnLast = 0xFFFFFFFFull; // the last packet number without XPN

// One entry of a table, its words read from and written to the chip.
struct Entry {
    const desc::Table *t = nullptr;
    uint32_t addr = 0;
    uint32_t w[kMaxWords] = {};

    bool at(Chip &c, const char *table, uint32_t index)
    {
        t = desc::find_table(table);
        if (t == nullptr || t->instances == 0 || index >= t->depth || t->words > kMaxWords) {
            return false;
        }
        addr = t->addrs[0] + index * t->words * 4;
        for (uint32_t i = 0; i < t->words; i++) {
            w[i] = c.core_word(addr + 4 * i);
        }
        return true;
    }
    uint64_t get(const char *field) const { return bits_get(w, field_of(t->fields, t->field_count, field)); }
    void set(const char *field, uint64_t v) { bits_set(w, field_of(t->fields, t->field_count, field), v); }
    void store(Chip &c) const
    {
        for (uint32_t i = 0; i < t->words; i++) {
            c.set_core_word(addr + 4 * i, w[i]);
        }
    }
};

// A field of a register by names; 0 for a name the description lacks.
uint64_t _reg_field(Chip &c, const char *reg, const char *field)
{
    const desc::Register *r = desc::find_register(reg);
    if (r == nullptr || r->instances == 0) {
        return 0;
    }
    const uint32_t w = c.core_word(r->addrs[0]);
    return bits_get(&w, field_of(r->fields, r->field_count, field));
}

// Adds to a one-word statistics row, wrapping at 32 bits.
void _count(Chip &c, const char *table, uint32_t index, uint32_t n)
{
    Entry e;
    if (e.at(c, table, index)) {
        e.w[0] += n;
        e.store(c);
    }
}

// Zeroes `rows` rows from `first` of a MIB table.
void _clear_rows(Chip &c, const char *table, uint32_t first, uint32_t rows)
{
    for (uint32_t i = first; i < first + rows; i++) {
        Entry e;
        if (e.at(c, table, i)) {
            e.w[0] = 0;
            e.store(c);
        }
    }
}

// A clearing register: each bit set clears the rows of its port or SC.
void _on_clear(Chip &chip, const char *reg, const char *table, uint32_t rows, uint32_t key_base)
{
    const desc::Register *r = desc::find_register(reg);
    if (r == nullptr || r->instances == 0) {
        return;
    }
    chip.on_write(kLswBar, r->addrs[0], [table, rows, key_base](Chip &c, uint32_t, uint32_t, uint64_t value) {
        for (uint32_t bit = 0; bit < 32; bit++) {
            if ((value >> bit & 1) != 0) {
                _clear_rows(c, table, (key_base + bit) * rows, rows);
            }
        }
    });
}

constexpr const char *kEncInit = "xsec_enc_init_ctrl";
constexpr const char *kDecInit = "xsec_dec_init_ctrl";
constexpr const char *kEncDone[4] = {"enc_init_status_done", "enc_glb_init_status_done", "enc_mib_init_done_port",
                                     "enc_mib_init_done_sc"};
constexpr const char *kDecDone[4] = {"dec_init_done", "dec_glb_init_status_done", "dec_mib_init_done_port",
                                     "dec_mib_init_done_sc"};

// The address of a side's init register and the mask of its done bits;
// false when the description lacks them.
bool _done_bits(const char *reg, const char *const done[4], uint32_t *addr, uint32_t *mask)
{
    const desc::Register *r = desc::find_register(reg);
    if (r == nullptr || r->instances == 0) {
        return false;
    }
    *addr = r->addrs[0];
    *mask = 0;
    for (uint32_t i = 0; i < 4; i++) {
        const FieldRef f = field_of(r->fields, r->field_count, done[i]);
        *mask |= f.ok() ? 1u << f.low : 0;
    }
    return true;
}

// The done bits of a side: set, unless the start is made to stall.
void _done_set(Chip &c, uint32_t addr, uint32_t mask)
{
    const uint32_t w = c.core_word(addr) & ~mask;
    c.set_core_word(addr, c.stalled[TIDE_SIM_ENGINE_MACSEC_INIT] ? w : w | mask);
}

// The memories of one side finish their start at once after a reset; a
// read through the hooks sees the stall knob's effect at once.
void _on_init(Chip &chip, const char *reg, const char *const done[4])
{
    uint32_t addr = 0, mask = 0;
    if (_done_bits(reg, done, &addr, &mask)) {
        chip.on_read(kLswBar, addr, [addr, mask](Chip &c, uint32_t, uint32_t) { _done_set(c, addr, mask); });
    }
}

} // namespace

void macsec_reset(Chip &chip)
{
    uint32_t addr = 0, mask = 0;
    if (_done_bits(kEncInit, kEncDone, &addr, &mask)) {
        _done_set(chip, addr, mask);
    }
    if (_done_bits(kDecInit, kDecDone, &addr, &mask)) {
        _done_set(chip, addr, mask);
    }
}

void macsec_install(Chip &chip)
{
    _on_init(chip, kEncInit, kEncDone);
    _on_init(chip, kDecInit, kDecDone);
    _on_clear(chip, "xsec_enc_enc_mib_port_clr", "xsec_enc_enc_mib_port", 4, 0);
    _on_clear(chip, "xsec_enc_enc_mib_sc_clr_l32", "xsec_enc_enc_mib_sc", 2, 0);
    _on_clear(chip, "xsec_enc_enc_mib_sc_clr_h32", "xsec_enc_enc_mib_sc", 2, 32);
    _on_clear(chip, "xsec_dec_dec_mib_port_clr", "xsec_dec_dec_mib_port", 8, 0);
    _on_clear(chip, "xsec_dec_dec_mib_sc_clr_l32", "xsec_dec_dec_mib_sc", 8, 0);
    _on_clear(chip, "xsec_dec_dec_mib_sc_clr_h32", "xsec_dec_dec_mib_sc", 8, 32);
}

int macsec_tx(Chip &chip, uint32_t port, uint32_t sc, uint32_t frames, uint32_t bytes, uint32_t *done)
{
    *done = 0;
    const uint32_t sas = _reg_field(chip, "xsec_enc_init_ctrl", "enc_global_ctrl_sc_mode") == 1 ? 4 : 2;
    Entry sce;
    if (port > 31 || !sce.at(chip, "xsec_enc_enc_sc_tbl", sc) || (sc + 1) * sas > 128) {
        return -4;
    }
    if (sce.get("sc_tbl_cfg_vld") == 0) {
        return -7;
    }
    const uint32_t an = static_cast<uint32_t>(sce.get("encoding_sa"));
    const uint32_t row = an + sc * sas;
    Entry sa, pn;
    if (an >= sas || !sa.at(chip, "xsec_enc_enc_sa_tbl", row) || !pn.at(chip, "xsec_enc_enc_nextpn_tbl", row)) {
        return -4;
    }
    if (sa.get("sa_tbl_vld") == 0) {
        return -7;
    }
    const bool xpn = sa.get("xpn_en") != 0;
    const bool rollover = _reg_field(chip, "xsec_enc_init_ctrl", "enc_global_ctrl_pn_rollover") != 0;
    // With XPN the 64-bit number does not run out in the life of a model.
    const uint64_t last = xpn ? ~0ull : kPnLast, th = sa.get("pn_th");
    const bool encrypt = sce.get("protect_mode") != 0;
    uint64_t next = pn.get("enc_nextpn_table");
    for (uint32_t i = 0; i < frames; i++) {
        if (next > last) {
            if (!rollover) {
                // The SA has no packet number left: the frame is not sent.
                chip.intr->event("macsec_sa_expire");
                break;
            }
            next = 1;
        }
        const uint64_t used = next++;
        if (th != 0 && used < th && next >= th) {
            chip.intr->event("macsec_pn_expire");
        }
        ++*done;
    }
    pn.set("enc_nextpn_table", next);
    pn.store(chip);
    _count(chip, "xsec_enc_enc_mib_sc", sc * 2 + (encrypt ? 1 : 0), *done);
    _count(chip, "xsec_enc_enc_mib_port", port * 4 + (encrypt ? 2 : 1), *done * bytes);
    return 0;
}

} // namespace tide::sim
