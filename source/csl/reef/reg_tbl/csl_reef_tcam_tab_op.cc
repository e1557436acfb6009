// The TCAM entry layer.  One command of acl_core moves one plane or the
// action row of one block row: the data registers are loaded (left-
// justified), the command word is written once, and its done bit is polled
// within a bound; the status read that sees it done carries the result.
// Every operation holds the chip's "tcam-%d" lock across its whole command
// sequence, since the data registers are shared by all tables.
//
// The caches keep, per row, what software last wrote into each plane and
// the action, and the valid bit last written with the data plane; only the
// ECC repair reads them.
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "shared/shr_bits.h"

using tide::cib::Bits;

extern "C" {

u8 *g_reef_tcam_tab_cache_data[SHR_MAX_CHIPS];
u8 *g_reef_tcam_tab_cache_care[SHR_MAX_CHIPS];
u8 *g_reef_tcam_tab_cache_ad[SHR_MAX_CHIPS];
u8 *g_reef_tcam_tab_cache_valid[SHR_MAX_CHIPS];
xsal_mutex_t g_reef_tcam_tab_lock[SHR_MAX_CHIPS];

} // extern "C"

namespace {

constexpr u32 kDataRegs = 10; // d0..d9: a plane of 320 bits
constexpr u32 kAdRegs = 3;    // d0..d2: an action of 96 bits
constexpr u32 kRowBytes = 40; // a cached plane row
constexpr u32 kAdRowBytes = 12;
constexpr u32 kNarrowBlocks = 16;   // blocks below 16 cache 128 rows
constexpr u32 kNarrowRows = 128;
constexpr u32 kWideRows = 256;      // blocks 16 and above cache 256
constexpr u32 kOpRead = 0, kOpWrite = 1, kOpSearch = 2;

// The TCAM of a chip type: blocks, and the bytes of the plane and action
// caches (blocks below 16 cache 128 rows, the others 256).
struct Geometry {
    u32 blocks;
    u32 plane_bytes;
    u32 ad_bytes;
};
constexpr Geometry kGeometry[5] = {
    {0, 0, 0}, {32, 0x3C000, 0x12000}, {32, 0x3C000, 0x12000}, {16, 0x14000, 24576}, {0, 0, 0},
};

const Geometry &_geometry(u32 chip_id)
{
    const u32 type = shr_chip_type_get(chip_id);
    return kGeometry[type < 5 ? type : 0];
}

// The command registers of a chip, as its catalogue describes them.
struct Engine {
    bool ok = false;
    u32 blocks = 0;
    u32 cmd0 = 0, cmd1 = 0, rr0 = 0, bbm = 0, init_done = 0, search_en = 0, cfg0 = 0;
    u32 d[kDataRegs] = {}, rd[kDataRegs] = {};
    Bits dcs, vbi, vbe, op_addr, op_cmd, ad_start, tcam_start;
    Bits hit_block, hit_addr, vbo, hit, done;
    Bits rst, blockbitmap, init_done_bits, search_en_bit, blockmode;
};

Engine g_engine[SHR_MAX_CHIPS];

// Finds the registers and fields in the chip's catalogue; a chip whose
// catalogue lacks any of them has no usable TCAM.
bool _engine_resolve(u32 chip_id, Engine &e)
{
    e = Engine{};
    e.blocks = _geometry(chip_id).blocks;
    tide::cib::CatalogueNeeds need{chip_id};
    auto reg = [&](u32 id, u32 *addr) { return need.reg(id, addr); };
    auto field = [&](const cib_reg_info *r, const char *name) { return need.field(r, name); };
    const cib_reg_info *r = reg(cib_acl_core_tcamad_op_cmd0, &e.cmd0);
    e.dcs = field(r, "op_dcs");
    e.vbi = field(r, "op_vbi");
    e.vbe = field(r, "op_vbe");
    e.op_addr = field(r, "op_addr");
    e.op_cmd = field(r, "op_cmd");
    e.ad_start = field(r, "op_ad_start");
    e.tcam_start = field(r, "op_tcam_start");
    r = reg(cib_acl_core_tcamad_op_rr0, &e.rr0);
    e.hit_block = field(r, "ophitblock");
    e.hit_addr = field(r, "ophitblockaddr");
    e.vbo = field(r, "opvbo");
    e.hit = field(r, "ophit");
    e.done = field(r, "opdone");
    e.rst = field(reg(cib_acl_core_tcamad_op_cmd1, &e.cmd1), "op_tcam_rst");
    e.blockbitmap = field(reg(cib_acl_core_tcam_op_bbm, &e.bbm), "blockbitmap");
    e.init_done_bits = field(reg(cib_acl_core_tcam_init_done, &e.init_done), "tcam_init_done");
    e.search_en_bit = field(reg(cib_acl_core_test_search_en, &e.search_en), "test_search_en");
    e.blockmode = field(reg(cib_acl_core_tcam_glb_cfg0, &e.cfg0), "blockmode");
    static constexpr u32 kD[kDataRegs] = {cib_acl_core_tcamad_op_d0, cib_acl_core_tcamad_op_d1,
                                          cib_acl_core_tcamad_op_d2, cib_acl_core_tcam_op_d3,
                                          cib_acl_core_tcam_op_d4,   cib_acl_core_tcam_op_d5,
                                          cib_acl_core_tcam_op_d6,   cib_acl_core_tcam_op_d7,
                                          cib_acl_core_tcam_op_d8,   cib_acl_core_tcam_op_d9};
    static constexpr u32 kRd[kDataRegs] = {cib_acl_core_tcamad_op_rd0, cib_acl_core_tcamad_op_rd1,
                                           cib_acl_core_tcamad_op_rd2, cib_acl_core_tcam_op_rd3,
                                           cib_acl_core_tcam_op_rd4,   cib_acl_core_tcam_op_rd5,
                                           cib_acl_core_tcam_op_rd6,   cib_acl_core_tcam_op_rd7,
                                           cib_acl_core_tcam_op_rd8,   cib_acl_core_tcam_op_rd9};
    for (u32 i = 0; i < kDataRegs; i++) {
        reg(kD[i], &e.d[i]);
        reg(kRd[i], &e.rd[i]);
    }
    e.ok = e.blocks != 0 && need.ok;
    return e.ok;
}

// The chip's engine: -3 for a chip id beyond the registry, -24 for a chip
// whose build has no TCAM (no catalogue of its type, or none started).
i32 _engine_get(u32 chip_id, const Engine **out)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (!g_engine[chip_id].ok || g_reef_tcam_tab_lock[chip_id] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ERR: the chip %u has no tcam in this build\n", chip_id);
        return SHR_E_NOT_SUPPORT;
    }
    *out = &g_engine[chip_id];
    return 0;
}

// Holds the chip's TCAM lock for a scope.
class TcamLock {
public:
    explicit TcamLock(u32 chip_id) : lock_(g_reef_tcam_tab_lock[chip_id]) { xsal_mutex_lock(lock_); }
    ~TcamLock() { xsal_mutex_unlock(lock_); }
    TcamLock(const TcamLock &) = delete;
    TcamLock &operator=(const TcamLock &) = delete;

private:
    xsal_mutex_t lock_;
};

// Every register access of the layer: a failure is logged with its text.
constexpr auto _read = csl_reg_read32_logged;
constexpr auto _write = csl_reg_write32_logged;

// Polls opdone: at most CSL_TCAM_POLLS reads with a busy delay between
// them.  0 with the status word that saw it done, a read's failure, or -9
// on time-out; `spent` gets the microseconds waited.
i32 _wait_done(u32 chip_id, const Engine &e, u32 *rr0, u64 *spent)
{
    u64 start = 0;
    *spent = 0;
    for (u32 poll = 0; poll < CSL_TCAM_POLLS; poll++) {
        const i32 rc = _read(chip_id, e.rr0, rr0);
        if (rc != 0) {
            return rc;
        }
        if (e.done.get32(*rr0) == 1) {
            *spent = poll == 0 ? 0 : xsal_time_usecs() - start;
            return 0;
        }
        if (poll == 0) {
            start = xsal_time_usecs();
        }
        xsal_udelay(CSL_TCAM_POLL_US);
    }
    *spent = xsal_time_usecs() - start;
    return SHR_E_TIMEOUT;
}

// One command: the command word written once, then the wait for its done
// bit; a time-out logs `timeout_line` and gives -9.
i32 _command_run(u32 chip_id, const Engine &e, u32 cmd, const char *timeout_line, u32 *rr0, u64 *spent)
{
    *spent = 0;
    i32 rc = _write(chip_id, e.cmd0, cmd);
    if (rc == 0) {
        rc = _wait_done(chip_id, e, rr0, spent);
    }
    if (rc == SHR_E_TIMEOUT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "%s", timeout_line);
    }
    return rc;
}

// `bits` bits of `data` as register words, left-justified: out[0] takes the
// highest 32 bits, a remainder of r bits the top r bits of the last word.
u32 _to_regs(const u8 *data, u32 bits, u32 *out)
{
    const u32 n = (bits + 31) / 32;
    u32 le[kDataRegs] = {};
    for (u32 i = 0; i < (bits + 7) / 8; i++) {
        le[i / 4] |= static_cast<u32>(data[i]) << (8 * (i % 4));
    }
    const u32 pad = 32 * n - bits;
    if (pad != 0) {
        le[n - 1] &= (1u << (32 - pad)) - 1;
        for (u32 i = n; i-- > 0;) {
            le[i] = le[i] << pad | (i > 0 ? le[i - 1] >> (32 - pad) : 0);
        }
    }
    for (u32 k = 0; k < n; k++) {
        out[k] = le[n - 1 - k];
    }
    return n;
}

// The reverse of _to_regs: `bits` bits into (bits + 7) / 8 bytes of `data`.
void _from_regs(const u32 *in, u32 bits, u8 *data)
{
    const u32 n = (bits + 31) / 32;
    u32 le[kDataRegs] = {};
    for (u32 k = 0; k < n; k++) {
        le[n - 1 - k] = in[k];
    }
    const u32 pad = 32 * n - bits;
    if (pad != 0) {
        for (u32 i = 0; i < n; i++) {
            le[i] = le[i] >> pad | (i + 1 < n ? le[i + 1] << (32 - pad) : 0);
        }
    }
    for (u32 i = 0; i < (bits + 7) / 8; i++) {
        data[i] = static_cast<u8>(le[i / 4] >> (8 * (i % 4)));
    }
}

// Copies `bits` bits from the start of `src` to the start of `dst`; the
// rest of the last byte of `dst` stays.
void _copy_bits(u8 *dst, const u8 *src, u32 bits)
{
    memcpy(dst, src, bits / 8);
    if (bits % 8 != 0) {
        const u8 keep = static_cast<u8>(0xFF << (bits % 8));
        dst[bits / 8] = static_cast<u8>((dst[bits / 8] & keep) | (src[bits / 8] & ~keep));
    }
}

// Rows of a block in the caches.
u32 _cache_rows(u32 block)
{
    return block < kNarrowBlocks ? kNarrowRows : kWideRows;
}

// The row number of (block, index) in the caches: 128 rows a block below
// 16, 256 from 16 on.
u32 _cache_row(u32 block, u32 index)
{
    return block < kNarrowBlocks ? block * kNarrowRows + index
                                 : kNarrowBlocks * kNarrowRows + (block - kNarrowBlocks) * kWideRows + index;
}

// A place of the chip: a block it has and an index its cache holds.
i32 _place_check(u32 chip_id, const Engine &e, u32 block, u32 index)
{
    if (block >= e.blocks || index >= _cache_rows(block)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong tcam block(%u) or index(%u), the chip has %u blocks!\n", block,
                    index, e.blocks);
        return SHR_E_PARAM;
    }
    return 0;
}

// "Wrong bits len(%d)!!!\n": a plane of more than 10 words, an action of
// more than 3, or nothing.
i32 _bits_check(u32 chip_id, u32 type, u32 bits)
{
    const u32 words = (bits + 31) / 32;
    if (bits == 0 || words > (type == CSL_TCAM_AD ? kAdRegs : kDataRegs)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong bits len(%d)!!!\n", (int)bits);
        return SHR_E_PARAM;
    }
    return 0;
}

// The cache row of a plane or the action.
u8 *_cache_at(u32 chip_id, u32 type, u32 row)
{
    switch (type) {
    case CSL_TCAM_KEY:
        return g_reef_tcam_tab_cache_data[chip_id] + row * kRowBytes;
    case CSL_TCAM_MASK:
        return g_reef_tcam_tab_cache_care[chip_id] + row * kRowBytes;
    default:
        return g_reef_tcam_tab_cache_ad[chip_id] + row * kAdRowBytes;
    }
}

void _valid_cache_set(u32 chip_id, u32 row, u32 valid)
{
    u8 &byte = g_reef_tcam_tab_cache_valid[chip_id][row / 8];
    byte = static_cast<u8>(valid != 0 ? byte | (1u << (row % 8)) : byte & ~(1u << (row % 8)));
}

u32 _valid_cache_get(u32 chip_id, u32 row)
{
    return (g_reef_tcam_tab_cache_valid[chip_id][row / 8] >> (row % 8)) & 1;
}

// The command word of one plane or the action row.
u32 _command(const Engine &e, u32 op, u32 type, u32 block, u32 index, u32 valid)
{
    u32 cmd = e.op_addr.put32(0, block << 8 | index);
    cmd = e.op_cmd.put32(cmd, op);
    if (type == CSL_TCAM_AD) {
        return e.ad_start.put32(cmd, 1);
    }
    cmd = e.tcam_start.put32(cmd, 1);
    if (op == kOpWrite) {
        // The valid value rides with both planes; only the data plane
        // writes it.
        cmd = e.vbi.put32(cmd, valid != 0);
    }
    cmd = e.vbe.put32(cmd, op == kOpRead || type == CSL_TCAM_KEY);
    return e.dcs.put32(cmd, type == CSL_TCAM_KEY);
}

// One plane or the action written, under the lock; the caches follow a
// command that is done.
i32 _plane_write(u32 chip_id, const Engine &e, u32 type, u32 block, u32 index, const u8 *data, u32 bits, u32 valid)
{
    u32 regs[kDataRegs];
    const u32 n = _to_regs(data, bits, regs);
    const u32 top = type == CSL_TCAM_AD ? kAdRegs - 1 : kDataRegs - 1;
    i32 rc = 0;
    for (u32 k = 0; k < n && rc == 0; k++) {
        rc = _write(chip_id, e.d[top - k], regs[k]);
    }
    u32 rr0 = 0;
    u64 spent = 0;
    if (rc == 0) {
        rc = _command_run(chip_id, e, _command(e, kOpWrite, type, block, index, valid),
                          "TCAM Read Write Operation is not done !!!\n", &rr0, &spent);
    }
    if (rc != 0) {
        return rc == SHR_E_TIMEOUT ? SHR_E_FAIL : rc;
    }
    const u32 row = _cache_row(block, index);
    _copy_bits(_cache_at(chip_id, type, row), data, bits);
    if (type == CSL_TCAM_KEY) {
        _valid_cache_set(chip_id, row, valid);
    }
    return 0;
}

// One plane or the action read, under the lock; `valid` (may be NULL) gets
// the row's valid bit of a plane read.
i32 _plane_read(u32 chip_id, const Engine &e, u32 type, u32 block, u32 index, u8 *data, u32 bits, u32 *valid)
{
    u32 rr0 = 0;
    u64 spent = 0;
    i32 rc = _command_run(chip_id, e, _command(e, kOpRead, type, block, index, 0), "tcam read opertion timeout\n",
                          &rr0, &spent);
    if (rc != 0) {
        return rc;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[GET] tcam read time: %lu us\n", (unsigned long)spent);
    u32 regs[kDataRegs] = {};
    const u32 n = (bits + 31) / 32;
    const u32 top = type == CSL_TCAM_AD ? kAdRegs - 1 : kDataRegs - 1;
    for (u32 k = 0; k < n && rc == 0; k++) {
        rc = _read(chip_id, e.rd[top - k], &regs[k]);
    }
    if (rc != 0) {
        return rc;
    }
    _from_regs(regs, bits, data);
    if (valid != nullptr && type != CSL_TCAM_AD) {
        *valid = e.vbo.get32(rr0);
    }
    return 0;
}

// A single-plane call: the engine, the checks in the order of their
// lines, then `op` under the lock.
template <typename Op>
i32 _single(u32 chip_id, u32 type, u32 block, u32 index, const void *data, u32 bits, Op op)
{
    const Engine *e = nullptr;
    i32 rc = _engine_get(chip_id, &e);
    if (rc == 0 && (type > CSL_TCAM_AD || data == nullptr)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong tcam type(%u) or null data!\n", type);
        rc = SHR_E_PARAM;
    }
    if (rc == 0) {
        rc = _bits_check(chip_id, type, bits);
    }
    if (rc == 0) {
        rc = _place_check(chip_id, *e, block, index);
    }
    if (rc != 0) {
        return rc;
    }
    TcamLock lock(chip_id);
    return op(*e);
}

// ---- entries of a table -----------------------------------------------------------

// What an operation on an entry needs of its table: the key and action
// widths from the catalogue, and its place.
struct EntryPlace {
    u32 key_bits = 0;
    u32 ad_bits = 0;
    u32 block = 0;
    u32 index = 0;
    bool wide = false; // a 480-bit key over blocks b and b + 16
};

// Checks the table, its widths on this chip and the address; -6 or -4 for
// a 480-bit key beyond block 15, as the caller says.
i32 _entry_place(u32 chip_id, const Engine &e, u32 tcam_id, u16 address, i32 wide_block_rc, EntryPlace *p)
{
    if (tcam_id >= CSL_TCAM_TAB_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong tcam id:%u!\n", tcam_id);
        return SHR_E_PARAM;
    }
    const csl_tcam_tab_name_id &row = g_tcam_tab_name_id[tcam_id];
    const cib_tab_info *key = row.key_tab_id != CSL_TCAM_NO_TAB ? csl_reef_tab_info_get(chip_id, row.key_tab_id) : nullptr;
    const cib_tab_info *ad = row.ad_tab_id != CSL_TCAM_NO_TAB ? csl_reef_tab_info_get(chip_id, row.ad_tab_id) : nullptr;
    p->key_bits = key != nullptr ? key->width : 0;
    p->ad_bits = ad != nullptr ? ad->width : 0;
    if (p->key_bits == 0 || p->ad_bits == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ERR: the chip %d not support the tcam named %s\n", (int)chip_id,
                    row.name);
        return SHR_E_PARAM;
    }
    if (p->key_bits > CSL_TCAM_KEY_BITS_MAX || p->ad_bits > CSL_TCAM_AD_BITS) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong bits len(%d)!!!\n", (int)p->key_bits);
        return SHR_E_PARAM;
    }
    p->block = address & 0xFF;
    p->index = address >> 8;
    p->wide = p->key_bits > CSL_TCAM_ROW_BITS;
    if (p->wide && p->block >= CSL_TCAM_PAIR_OFFSET) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong block id(%u), should be less than 16 (480bits)!\n", p->block);
        return wide_block_rc;
    }
    const i32 rc = _place_check(chip_id, e, p->block, p->index);
    return rc != 0 || !p->wide ? rc : _place_check(chip_id, e, p->block + CSL_TCAM_PAIR_OFFSET, p->index);
}

// The start of an entry call: the engine, the operation data (for a call
// that has some) and the table's place.
i32 _entry_args(u32 chip_id, u32 tcam_id, u16 address, const csl_tcam_data *data, bool has_data, i32 wide_block_rc,
                const Engine **e, EntryPlace *p)
{
    i32 rc = _engine_get(chip_id, e);
    if (rc == 0 && has_data &&
        (data == nullptr || data->key == nullptr || data->mask == nullptr || data->ad == nullptr)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam entry: null data pointer!\n");
        rc = SHR_E_PARAM;
    }
    return rc != 0 ? rc : _entry_place(chip_id, **e, tcam_id, address, wide_block_rc, p);
}

// A plane of an entry: one row, or the two halves of a 480-bit key (bits
// 479..160 in block b, 159..0 in block b + 16), upper half first.
i32 _entry_plane_write(u32 chip_id, const Engine &e, const EntryPlace &p, u32 type, const u8 *data, u32 valid)
{
    if (!p.wide) {
        return _plane_write(chip_id, e, type, p.block, p.index, data, p.key_bits, valid);
    }
    constexpr u32 kLowBytes = CSL_TCAM_PAIR_LOW_BITS / 8;
    i32 rc = _plane_write(chip_id, e, type, p.block, p.index, data + kLowBytes, p.key_bits - CSL_TCAM_PAIR_LOW_BITS,
                          valid);
    if (rc == 0) {
        rc = _plane_write(chip_id, e, type, p.block + CSL_TCAM_PAIR_OFFSET, p.index, data, CSL_TCAM_PAIR_LOW_BITS,
                          valid);
    }
    return rc;
}

i32 _entry_plane_read(u32 chip_id, const Engine &e, const EntryPlace &p, u32 type, u8 *data, u32 *valid)
{
    if (!p.wide) {
        return _plane_read(chip_id, e, type, p.block, p.index, data, p.key_bits, valid);
    }
    constexpr u32 kLowBytes = CSL_TCAM_PAIR_LOW_BITS / 8;
    u32 low_valid = 0;
    i32 rc = _plane_read(chip_id, e, type, p.block, p.index, data + kLowBytes, p.key_bits - CSL_TCAM_PAIR_LOW_BITS,
                         valid);
    if (rc == 0) {
        rc = _plane_read(chip_id, e, type, p.block + CSL_TCAM_PAIR_OFFSET, p.index, data, CSL_TCAM_PAIR_LOW_BITS,
                         &low_valid);
    }
    if (rc == 0 && valid != nullptr) {
        *valid &= low_valid;
    }
    return rc;
}

constexpr u8 kZeros[CSL_TCAM_KEY_BYTES_MAX] = {};

// The entry images of a table's typed record: key and mask of the widest
// key, an action, in whole words.
struct RecordImages {
    u8 key[CSL_TCAM_KEY_BYTES_MAX + 4] = {};
    u8 mask[CSL_TCAM_KEY_BYTES_MAX + 4] = {};
    u8 ad[CSL_TCAM_AD_BYTES + 4] = {};
};

// A generated function's place as an API-form address.
i32 _record_address(u32 chip_id, u32 block, u32 index, u16 *address)
{
    if (block > 0xFF || index > 0xFF) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong tcam block(%u) or index(%u)!\n", block, index);
        return SHR_E_PARAM;
    }
    *address = static_cast<u16>(index << 8 | block);
    return 0;
}

// The arguments of a generated _set or _get: the record, its layout (whose
// tables fit the images) and the place.
i32 _record_args(u32 chip_id, const void *record, const csl_tcam_record_layout *layout, u32 block, u32 index,
                 u16 *address)
{
    if (record == nullptr || layout == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam entry: null record!\n");
        return SHR_E_PARAM;
    }
    if (cib_tab_entry_bytes(layout->key_tab) > sizeof(RecordImages::key) ||
        cib_tab_entry_bytes(layout->ad_tab) > sizeof(RecordImages::ad)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam entry: tables of %u bits do not fit\n", layout->key_tab->width);
        return SHR_E_PARAM;
    }
    return _record_address(chip_id, block, index, address);
}

// The mode of a block below 16 from acl_core_tcam_glb_cfg0, two bits a
// block.
i32 _block_mode(u32 chip_id, const Engine &e, u32 block, u32 *mode)
{
    u32 cfg0 = 0;
    const i32 rc = _read(chip_id, e.cfg0, &cfg0);
    if (rc == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "block mode reg:0x%x\n", cfg0);
        *mode = (e.blockmode.get32(cfg0) >> (2 * block)) & 3;
    }
    return rc;
}

} // namespace

extern "C" {

u32 csl_reef_tcam_block_count(u32 chip_id)
{
    return _geometry(chip_id).blocks;
}

int csl_reef_tcam_tab_soft_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    const Geometry &g = _geometry(chip_id);
    if (g.blocks == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong chip type %u for the tcam\n", shr_chip_type_get(chip_id));
        return SHR_E_BADID;
    }
    if (g_reef_tcam_tab_lock[chip_id] == nullptr) {
        char name[16];
        snprintf(name, sizeof(name), "tcam-%u", chip_id);
        g_reef_tcam_tab_lock[chip_id] = xsal_mutex_create(name);
    }
    struct Cache {
        u8 **array;
        u32 bytes;
        const char *tag;
    };
    const Cache caches[] = {
        {g_reef_tcam_tab_cache_data, g.plane_bytes, "tcam data cache"},
        {g_reef_tcam_tab_cache_care, g.plane_bytes, "tcam care cache"},
        {g_reef_tcam_tab_cache_ad, g.ad_bytes, "tcam care ad"},
        {g_reef_tcam_tab_cache_valid, g.plane_bytes / kRowBytes / 8, "tcam valid cache"},
    };
    bool failed = g_reef_tcam_tab_lock[chip_id] == nullptr;
    for (const Cache &c : caches) {
        if (c.array[chip_id] == nullptr && !failed) {
            c.array[chip_id] = static_cast<u8 *>(xsal_malloc(c.bytes, c.tag, SHR_MOD_REG_TAB));
            failed = c.array[chip_id] == nullptr;
            if (!failed) {
                memset(c.array[chip_id], 0, c.bytes);
            }
        }
    }
    if (failed) {
        csl_reef_tcam_tab_soft_deinit(chip_id);
        return SHR_E_MEMORY;
    }
    if (!_engine_resolve(chip_id, g_engine[chip_id])) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "the catalogue of chip %u has no tcam registers\n", chip_id);
    }
    return 0;
}

int csl_reef_tcam_tab_soft_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    g_engine[chip_id] = Engine{};
    for (u8 **array : {g_reef_tcam_tab_cache_data, g_reef_tcam_tab_cache_care, g_reef_tcam_tab_cache_ad,
                       g_reef_tcam_tab_cache_valid}) {
        xsal_mem_free(array[chip_id]);
        array[chip_id] = nullptr;
    }
    if (g_reef_tcam_tab_lock[chip_id] != nullptr) {
        xsal_mutex_destroy(g_reef_tcam_tab_lock[chip_id]);
        g_reef_tcam_tab_lock[chip_id] = nullptr;
    }
    return 0;
}

int csl_reef_tcam_tab_hw_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (_geometry(chip_id).blocks == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong chip type %u for the tcam\n", shr_chip_type_get(chip_id));
        return SHR_E_BADID;
    }
    const Engine &e = g_engine[chip_id];
    if (!e.ok || g_reef_tcam_tab_lock[chip_id] == nullptr) {
        // The build has no TCAM registers of this chip type: nothing to
        // program, and every entry call answers -24.
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "tcam hw init: no tcam registers for chip %u\n", chip_id);
        return 0;
    }
    TcamLock lock(chip_id);
    const u32 all = e.blocks >= 32 ? 0xFFFFFFFFu : (1u << e.blocks) - 1;
    i32 rc = _write(chip_id, e.cmd1, e.rst.put32(0, 0));
    if (rc == 0) {
        rc = _write(chip_id, e.cmd1, e.rst.put32(0, all));
    }
    // The chip empties every row: so do the caches.
    const Geometry &g = _geometry(chip_id);
    memset(g_reef_tcam_tab_cache_data[chip_id], 0, g.plane_bytes);
    memset(g_reef_tcam_tab_cache_care[chip_id], 0, g.plane_bytes);
    memset(g_reef_tcam_tab_cache_ad[chip_id], 0, g.ad_bytes);
    memset(g_reef_tcam_tab_cache_valid[chip_id], 0, g.plane_bytes / kRowBytes / 8);
    const u32 want = static_cast<u32>(e.init_done_bits.max()) & all;
    for (u32 poll = 0; rc == 0; poll++) {
        u32 done = 0;
        rc = _read(chip_id, e.init_done, &done);
        if (rc == 0 && e.init_done_bits.get32(done) == want) {
            return 0;
        }
        if (poll + 1 >= CSL_TCAM_POLLS) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam init done timeout, init done 0x%x\n",
                        e.init_done_bits.get32(done));
            return SHR_E_FAIL;
        }
        xsal_udelay(CSL_TCAM_POLL_US);
    }
    return rc;
}

int csl_reef_tcam_block_width_get(u32 chip_id, u32 block, u32 *bits)
{
    const Engine *e = nullptr;
    i32 rc = _engine_get(chip_id, &e);
    if (rc != 0 || bits == nullptr) {
        return rc != 0 ? rc : SHR_E_PARAM;
    }
    rc = _place_check(chip_id, *e, block, 0);
    if (rc != 0) {
        return rc;
    }
    // Blocks from 16 on have no mode bits: they hold the 160-bit halves.
    u32 mode = 1;
    if (block < kNarrowBlocks) {
        rc = _block_mode(chip_id, *e, block, &mode);
    }
    *bits = rc == 0 && mode < 3 ? 80u << mode : 0;
    return rc;
}

u32 csl_reef_tcam_block_rows(u32 block, u32 bits)
{
    if (bits == 0) {
        return 0;
    }
    const u32 rows = CSL_TCAM_ROW_BITS * 64 / bits;
    return rows < _cache_rows(block) ? rows : _cache_rows(block);
}

int csl_reef_tcam_get_tab_name_id(u32 chip_id, u32 tcam_id, const csl_tcam_tab_name_id **row)
{
    if (tcam_id >= CSL_TCAM_TAB_COUNT || row == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong! tcam id:%u!\n", tcam_id);
        return SHR_E_PARAM;
    }
    *row = &g_tcam_tab_name_id[tcam_id];
    return 0;
}

int csl_reef_tcam_tab_id_get(u32 chip_id, const char *name, u32 *tcam_id)
{
    if (name == nullptr || tcam_id == nullptr) {
        return SHR_E_PARAM;
    }
    const char *bare = strncasecmp(name, "cib_", 4) == 0 ? name + 4 : name;
    for (u32 i = 0; i < CSL_TCAM_TAB_COUNT; i++) {
        if (strcasecmp(bare, g_tcam_tab_name_id[i].name) == 0) {
            *tcam_id = i;
            return 0;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "no tcam tab named %s\n", name);
    return SHR_E_NOT_FOUND;
}

int csl_reef_tcam_tab_index_get(u32 chip_id, u32 addr, u16 *out)
{
    if (out == nullptr) {
        return SHR_E_PARAM;
    }
    const u32 limit = _geometry(chip_id).blocks << 8;
    if (addr >= limit) {
        csl_output_func(chip_id, 0, "ERR: addr must less than %d\n", (int)limit);
        return SHR_E_FIELD_OVERFLOW;
    }
    *out = static_cast<u16>((addr & 0xFF) << 8 | addr >> 8);
    return 0;
}

int csl_reef_tcam_key_mask_ad_set(u32 chip_id, u32 type, u32 block, u32 index, const u8 *data, u32 bits, u32 valid)
{
    return _single(chip_id, type, block, index, data, bits, [&](const Engine &e) {
        return _plane_write(chip_id, e, type, block, index, data, bits, valid);
    });
}

int csl_reef_tcam_key_mask_ad_get(u32 chip_id, u32 type, u32 block, u32 index, u8 *data, u32 bits, u32 *valid)
{
    return _single(chip_id, type, block, index, data, bits, [&](const Engine &e) {
        return _plane_read(chip_id, e, type, block, index, data, bits, valid);
    });
}

int csl_reef_tcam_key_mask_search(u32 chip_id, const u8 *key, u32 bits, u32 block_bitmap, u8 *ad, u32 ad_bits,
                                  u32 *block, u32 *index)
{
    const Engine *e = nullptr;
    i32 rc = _engine_get(chip_id, &e);
    if (rc != 0) {
        return rc;
    }
    if (key == nullptr || ad == nullptr || block == nullptr || index == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam search: null pointer!\n");
        return SHR_E_PARAM;
    }
    rc = _bits_check(chip_id, CSL_TCAM_KEY, bits);
    if (rc == 0) {
        rc = _bits_check(chip_id, CSL_TCAM_AD, ad_bits);
    }
    if (rc == 0 && block_bitmap > e->blockbitmap.max()) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam search: block bitmap 0x%x beyond the chip's %u blocks\n",
                    block_bitmap, e->blocks);
        rc = SHR_E_PARAM;
    }
    if (rc != 0) {
        return rc;
    }
    TcamLock lock(chip_id);
    u32 regs[kDataRegs];
    const u32 n = _to_regs(key, bits, regs);
    for (u32 k = 0; k < n && rc == 0; k++) {
        rc = _write(chip_id, e->d[kDataRegs - 1 - k], regs[k]);
    }
    if (rc == 0) {
        rc = _write(chip_id, e->bbm, e->blockbitmap.put32(0, block_bitmap));
    }
    if (rc != 0) {
        return rc;
    }
    // From here on the search enable goes back to 0 on every path.
    rc = _write(chip_id, e->search_en, e->search_en_bit.put32(0, 1));
    u32 rr0 = 0;
    u64 spent = 0;
    if (rc == 0) {
        rc = _command_run(chip_id, *e, e->tcam_start.put32(e->op_cmd.put32(0, kOpSearch), 1),
                          "tcam search opertion timeout\n", &rr0, &spent);
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[SEARCH] tcam search %lu us\n", (unsigned long)spent);
    }
    if (rc == 0 && e->hit.get32(rr0) == 0) {
        // A miss answers like a search that found nothing in time.
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "tcam search not hit!\n");
        rc = SHR_E_TIMEOUT;
    } else if (rc == 0) {
        u32 ad_regs[kAdRegs] = {};
        const u32 words = (ad_bits + 31) / 32;
        for (u32 k = 0; k < words && rc == 0; k++) {
            rc = _read(chip_id, e->rd[kAdRegs - 1 - k], &ad_regs[k]);
        }
        if (rc == 0) {
            _from_regs(ad_regs, ad_bits, ad);
            *block = e->hit_block.get32(rr0);
            *index = e->hit_addr.get32(rr0);
        }
    }
    const i32 off = _write(chip_id, e->search_en, e->search_en_bit.put32(0, 0));
    return rc != 0 ? rc : off;
}

int csl_reef_tcam_add(u32 chip_id, u32 tcam_id, u16 address, const csl_tcam_data *data)
{
    const Engine *e = nullptr;
    EntryPlace p;
    i32 rc = _entry_args(chip_id, tcam_id, address, data, true, SHR_E_FULL, &e, &p);
    if (rc != 0) {
        return rc;
    }
    u8 x[CSL_TCAM_KEY_BYTES_MAX], y[CSL_TCAM_KEY_BYTES_MAX];
    shr_tcam_keymask_to_xy(data->key, data->mask, x, y, (p.key_bits + 7) / 8);
    TcamLock lock(chip_id);
    // Out of service first, in service last: a half-written entry never
    // matches.
    rc = _entry_plane_write(chip_id, *e, p, CSL_TCAM_KEY, kZeros, 0);
    if (rc == 0) {
        rc = _plane_write(chip_id, *e, CSL_TCAM_AD, p.block, p.index, data->ad, p.ad_bits, 0);
    }
    if (rc == 0) {
        rc = _entry_plane_write(chip_id, *e, p, CSL_TCAM_MASK, x, 0);
    }
    if (rc == 0) {
        rc = _entry_plane_write(chip_id, *e, p, CSL_TCAM_KEY, y, 1);
    }
    return rc;
}

int csl_reef_tcam_del(u32 chip_id, u32 tcam_id, u16 address)
{
    const Engine *e = nullptr;
    EntryPlace p;
    i32 rc = _entry_args(chip_id, tcam_id, address, nullptr, false, SHR_E_PARAM, &e, &p);
    if (rc != 0) {
        return rc;
    }
    TcamLock lock(chip_id);
    if (!p.wide) {
        rc = _plane_write(chip_id, *e, CSL_TCAM_KEY, p.block, p.index, kZeros, p.key_bits, 0);
        if (rc == 0) {
            rc = _plane_write(chip_id, *e, CSL_TCAM_MASK, p.block, p.index, kZeros, p.key_bits, 0);
        }
    } else {
        // Both planes of the upper half, then both of the lower half.
        for (u32 half = 0; half < 2 && rc == 0; half++) {
            const u32 block = p.block + half * CSL_TCAM_PAIR_OFFSET;
            const u32 bits = half == 0 ? p.key_bits - CSL_TCAM_PAIR_LOW_BITS : CSL_TCAM_PAIR_LOW_BITS;
            rc = _plane_write(chip_id, *e, CSL_TCAM_KEY, block, p.index, kZeros, bits, 0);
            if (rc == 0) {
                rc = _plane_write(chip_id, *e, CSL_TCAM_MASK, block, p.index, kZeros, bits, 0);
            }
        }
    }
    if (rc == 0) {
        rc = _plane_write(chip_id, *e, CSL_TCAM_AD, p.block, p.index, kZeros, CSL_TCAM_AD_BITS, 0);
    }
    return rc;
}

int csl_reef_tcam_read(u32 chip_id, u32 tcam_id, u16 address, csl_tcam_data *data, u32 *valid)
{
    const Engine *e = nullptr;
    EntryPlace p;
    i32 rc = _entry_args(chip_id, tcam_id, address, valid != nullptr ? data : nullptr, true, SHR_E_PARAM, &e, &p);
    if (rc != 0) {
        return rc;
    }
    u8 x[CSL_TCAM_KEY_BYTES_MAX] = {}, y[CSL_TCAM_KEY_BYTES_MAX] = {};
    {
        TcamLock lock(chip_id);
        rc = _plane_read(chip_id, *e, CSL_TCAM_AD, p.block, p.index, data->ad, p.ad_bits, nullptr);
        if (rc == 0) {
            rc = _entry_plane_read(chip_id, *e, p, CSL_TCAM_KEY, y, valid);
        }
        if (rc == 0) {
            rc = _entry_plane_read(chip_id, *e, p, CSL_TCAM_MASK, x, nullptr);
        }
    }
    if (rc == 0) {
        shr_tcam_xy_to_keymask(data->key, data->mask, x, y, (p.key_bits + 7) / 8);
    }
    return rc;
}

int csl_reef_tcam_tab_rewrite(u32 chip_id, u32 type, u32 address)
{
    const Engine *e = nullptr;
    i32 rc = _engine_get(chip_id, &e);
    if (rc != 0) {
        return rc;
    }
    const u32 block = address & 0xFF, index = (address >> 8) & 0xFF;
    if (block >= e->blocks || block >= kNarrowBlocks) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong block id %u, tcam rewrite failed!\n", block);
        return SHR_E_PARAM;
    }
    if (index >= kNarrowRows) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong block id %u, index_in_block %u, tcam rewrite failed!\n", block,
                    index);
        return SHR_E_PARAM;
    }
    if (type > CSL_TCAM_AD) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong tcam type(%u), tcam rewrite failed!\n", type);
        return SHR_E_PARAM;
    }
    TcamLock lock(chip_id);
    u32 mode = 0;
    rc = _block_mode(chip_id, *e, block, &mode);
    if (rc != 0) {
        return rc;
    }
    if (mode != 1 && mode != 2) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Block id %u, mode %u\n is error!", block, mode);
        return SHR_E_CONFIG;
    }
    const u32 row = _cache_row(block, index);
    const u32 bits = type == CSL_TCAM_AD ? CSL_TCAM_AD_BITS : 80u << mode;
    // The data plane goes back with the valid bit software last gave the
    // row, so a row in service stays in service.
    const u32 valid = type == CSL_TCAM_KEY ? _valid_cache_get(chip_id, row) : 0;
    u8 saved[kRowBytes];
    memcpy(saved, _cache_at(chip_id, type, row), type == CSL_TCAM_AD ? kAdRowBytes : kRowBytes);
    return _plane_write(chip_id, *e, type, block, index, saved, bits, valid);
}

// ---- the engine of the generated functions ---------------------------------------------

int csl_reef_tcam_record_set(u32 chip_id, u32 block, u32 index, const void *record,
                             const csl_tcam_record_layout *layout)
{
    u16 address = 0;
    const Engine *e = nullptr;
    i32 rc = _record_args(chip_id, record, layout, block, index, &address);
    if (rc == 0) {
        rc = _engine_get(chip_id, &e);
    }
    if (rc != 0) {
        return rc;
    }
    const u8 *rec = static_cast<const u8 *>(record);
    const cib_tab_info *k = layout->key_tab, *a = layout->ad_tab;
    RecordImages img;
    TcamLock lock(chip_id);
    rc = csl_reef_cib_record_to_data(k->modes[0].fields, k->members, k->member_count, rec + layout->mask_off,
                                     img.mask, nullptr, 0);
    rc |= csl_reef_cib_record_to_data(k->modes[0].fields, k->members, k->member_count, rec + layout->key_off, img.key,
                                      nullptr, 0);
    rc |= csl_reef_cib_record_to_data(a->modes[0].fields, a->members, a->member_count, rec + layout->ad_off, img.ad,
                                      nullptr, 0);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam set: a field of the record does not fit\n");
        return SHR_E_PARAM;
    }
    const csl_tcam_data data = {img.mask, img.key, img.ad};
    return csl_reef_tcam_add(chip_id, layout->tcam_id, address, &data);
}

int csl_reef_tcam_record_get(u32 chip_id, u32 block, u32 index, void *record, const csl_tcam_record_layout *layout)
{
    u16 address = 0;
    i32 rc = _record_args(chip_id, record, layout, block, index, &address);
    if (rc != 0) {
        return rc;
    }
    RecordImages img;
    csl_tcam_data data = {img.mask, img.key, img.ad};
    u32 valid = 0;
    rc = csl_reef_tcam_read(chip_id, layout->tcam_id, address, &data, &valid);
    if (rc != 0) {
        return rc;
    }
    u8 *rec = static_cast<u8 *>(record);
    const cib_tab_info *k = layout->key_tab, *a = layout->ad_tab;
    csl_reef_cib_data_to_record(k->modes[0].fields, k->members, k->member_count, rec + layout->key_off, img.key);
    csl_reef_cib_data_to_record(k->modes[0].fields, k->members, k->member_count, rec + layout->mask_off, img.mask);
    csl_reef_cib_data_to_record(a->modes[0].fields, a->members, a->member_count, rec + layout->ad_off, img.ad);
    return 0;
}

int csl_reef_tcam_record_del(u32 chip_id, u32 block, u32 index, u32 tcam_id)
{
    u16 address = 0;
    const i32 rc = _record_address(chip_id, block, index, &address);
    return rc != 0 ? rc : csl_reef_tcam_del(chip_id, tcam_id, address);
}

int csl_reef_tcam_record_to_entry(u32 chip_id, const cib_tab_info *tab, const void *record, const void *mask,
                                  u8 *data, u32 write_bits)
{
    if (tab == nullptr || record == nullptr || data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam conversion: null pointer!\n");
        return SHR_E_PARAM;
    }
    if (write_bits < tab->width) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong bits len(%d)!!!\n", (int)write_bits);
        return SHR_E_PARAM;
    }
    const int rc = csl_reef_cib_record_to_data(tab->modes[0].fields, tab->members, tab->member_count, record, data,
                                               static_cast<const u8 *>(mask), 16);
    return rc != 0 ? SHR_E_PARAM : 0;
}

int csl_reef_tcam_entry_to_record(u32 chip_id, const cib_tab_info *tab, void *record, const u8 *data)
{
    if (tab == nullptr || record == nullptr || data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tcam conversion: null pointer!\n");
        return SHR_E_PARAM;
    }
    return csl_reef_cib_data_to_record(tab->modes[0].fields, tab->members, tab->member_count, record, data);
}

int csl_reef_tcam_record_absent(u32 chip_id, u32 tcam_id)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ERR: the chip %d not support the tcam named %s\n", (int)chip_id,
                tcam_id < CSL_TCAM_TAB_COUNT ? g_tcam_tab_name_id[tcam_id].name : "?");
    return SHR_E_NOT_SUPPORT;
}

} // extern "C"
