// The exact-match hash engine of the egress translation.
//
// Every decision is taken on the software images of the barrels and the
// CAM (the table cache of the catalogue), never on a read of the chip: an
// insert looks for the key in the CAM and in its two bucket rows, takes the
// first free AD row and the first free slot of barrel 0, else of barrel 1,
// else the first free CAM row, and writes the changed row to the image and
// then to the chip.  A delete that frees a barrel slot pulls a CAM entry of
// that bucket down into it, so that the CAM stays free for real overflow.
// Everything runs under the type 2 hash mutex.
#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"

#include <bit>
#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_crc.h"
#include "csl/reef/reg_tbl/csl_reef_hash_tab_op.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "shared/shr_bits.h"

using tide::hash::HashGuard;
using tide::l2mac::Bits;

extern "C" {

// atolreef: 128 * 4 + 64 * 4 + 4 = 772 places; kelpreef and kelpreef2:
// wider AD indexes and 1024 AD rows.
const csl_ecib_hw_info g_ecib_hw_info[5] = {
    {},
    {64, 8, 24, 7, 31, 1, 34, 10, 34, 44, 10, 45, 180, 45, 1024},
    {64, 8, 24, 7, 31, 1, 34, 10, 34, 44, 10, 45, 180, 45, 1024},
    {64, 8, 24, 7, 31, 1, 34, 8, 34, 42, 8, 43, 172, 43, 256},
    {},
};

u64 *g_ecib_ad_tbl_bitmap[SHR_MAX_CHIPS];
u8 *g_ecib_used_entry_info[SHR_MAX_CHIPS];
u32 g_ecib_entry_size[SHR_MAX_CHIPS];

} // extern "C"

namespace {

// The memories of the command block, in the order of its opcodes.
enum Mem : u32 { kBar0 = 0, kBar1 = 1, kCam = 2, kMems = 3 };
constexpr u32 kMemTab[kMems] = {cib_epro_em_pv_ht0_tbl, cib_epro_em_pv_ht1_tbl, cib_epro_em_pv_cam_tbl};
constexpr u32 kMemHit[kMems] = {CSL_ECIB_HIT_BAR0, CSL_ECIB_HIT_BAR1, CSL_ECIB_HIT_CAM};
constexpr u32 kDataWords = 6;
constexpr u32 kOpRead = CSL_ECIB_TAB_READ_BAR0 - CSL_ECIB_TAB_WRITE_BAR0;
constexpr u32 kOpSearch = CSL_ECIB_TAB_SEARCH - CSL_ECIB_TAB_WRITE_BAR0;
constexpr u32 kHitBit = 31;
constexpr u32 kSlotFieldBits = 2;
constexpr u32 kAlgCount = CSL_REEF_HASH_ALG_CRC32_D64_COUNT;

// The engine of a chip: its geometry, the registers of the command block
// as the catalogue gives them, and the algorithms in force.
struct Engine {
    bool ok = false;
    csl_ecib_hw_info hw{};
    u32 depth[kMems] = {};
    u32 row_bits[kMems] = {}; // bits of a row number in a search result
    u32 wdat[kDataWords] = {};
    u32 rdat[kDataWords] = {};
    u32 addr = 0, info = 0, init_done = 0;
    Bits opcode, done, start, init_done_bit;
    u32 alg[2] = {0, 1};
    u32 left_shift = 0;
};

Engine g_engine[SHR_MAX_CHIPS];

u64 _mask(u32 width)
{
    return width >= 64 ? ~0ull : (1ull << width) - 1;
}

// The engine of a chip that has one.
Engine *_engine(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS && g_engine[chip_id].ok ? &g_engine[chip_id] : nullptr;
}

// ---- slots and rows ----------------------------------------------------------------

u64 _slot_get(const Engine &e, const u8 *row, u32 slot)
{
    u64 v = 0;
    shr_field64_get_from_data(row, &v, static_cast<u16>(slot * e.hw.slot_bits), static_cast<u16>(e.hw.slot_bits));
    return v;
}

void _slot_set(const Engine &e, u8 *row, u32 slot, u64 v)
{
    shr_field64_set_to_data(row, v, static_cast<u16>(slot * e.hw.slot_bits), static_cast<u16>(e.hw.slot_bits));
}

bool _slot_valid(const Engine &e, u64 slot)
{
    return ((slot >> (e.hw.slot_bits - 1)) & 1) != 0;
}

u64 _slot_key(const Engine &e, u64 slot)
{
    return slot & _mask(e.hw.key_bits);
}

u32 _slot_ad(const Engine &e, u64 slot)
{
    return static_cast<u32>((slot >> e.hw.ad_start) & _mask(e.hw.ad_width));
}

bool _slot_hit(const Engine &e, u64 slot, u64 key)
{
    return _slot_valid(e, slot) && _slot_key(e, slot) == key;
}

u32 _slots(u32 mem)
{
    return mem == kCam ? 1 : CSL_ECIB_SLOTS;
}

u64 _key_load(const Engine &e, const u8 *key)
{
    u64 v = 0;
    shr_field64_get_from_data(key, &v, 0, static_cast<u16>(e.hw.key_bits));
    return v;
}

// All cached access goes through here first: the barrels and the CAM must
// have their images.
i32 _judge_tab_cache_is_enable(u32 chip_id)
{
    for (u32 tab : kMemTab) {
        if (csl_reef_tab_image_get(chip_id, tab) == nullptr) {
            const cib_tab_info *t = csl_reef_tab_info_get(chip_id, tab);
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib_cib_%s not enable cache.\n", t != nullptr ? t->name : "?");
            return SHR_E_NOT_FOUND;
        }
    }
    return 0;
}

i32 _row_cached(u32 chip_id, u32 mem, u32 row, u8 *data)
{
    memset(data, 0, CSL_ECIB_ROW_BYTES);
    return csl_reef_tab_get_direct(chip_id, kMemTab[mem], row, data, CSL_ECIB_ROW_BYTES, CSL_TAB_IMAGE);
}

// A row into the image, then into the chip.
i32 _row_write(u32 chip_id, u32 mem, u32 row, u8 *data)
{
    const i32 rc = csl_reef_tab_set_direct(chip_id, kMemTab[mem], row, data, CSL_ECIB_ROW_BYTES, CSL_TAB_IMAGE);
    if (rc != 0) {
        return rc;
    }
    return csl_reef_hash_ecib_hard_table_write(chip_id, CSL_ECIB_TAB_WRITE_BAR0 + mem, row, data,
                                               CSL_ECIB_ROW_BYTES);
}

// One slot of a row changed: the cached row with the slot replaced.
i32 _slot_write(u32 chip_id, const Engine &e, u32 mem, u32 row, u32 slot, u64 value)
{
    u8 data[CSL_ECIB_ROW_BYTES];
    const i32 rc = _row_cached(chip_id, mem, row, data);
    if (rc != 0) {
        return rc;
    }
    _slot_set(e, data, slot, value);
    return _row_write(chip_id, mem, row, data);
}

// ---- AD rows --------------------------------------------------------------------------

void _ad_mark(u32 chip_id, u32 index, bool used)
{
    u64 &word = g_ecib_ad_tbl_bitmap[chip_id][index / 64];
    const u64 bit = 1ull << (index % 64);
    word = used ? word | bit : word & ~bit;
    g_ecib_used_entry_info[chip_id][index] = used ? 1 : 0;
}

// The first free AD row from 0, word by word; false when all are taken.
bool _ad_free(u32 chip_id, u32 *index)
{
    const u32 words = (g_ecib_entry_size[chip_id] + 63) / 64;
    for (u32 w = 0; w < words; w++) {
        const u64 word = g_ecib_ad_tbl_bitmap[chip_id][w];
        if (word != ~0ull) {
            const u32 i = w * 64 + static_cast<u32>(std::countr_one(word));
            if (i < g_ecib_entry_size[chip_id]) {
                *index = i;
                return true;
            }
        }
    }
    return false;
}

i32 _ad_write(u32 chip_id, u32 index, const u8 *ad)
{
    u8 row[CSL_ECIB_AD_BYTES];
    memcpy(row, ad, sizeof(row));
    return csl_reef_tab_set_direct(chip_id, cib_epro_ecib_table, index, row, sizeof(row), CSL_TAB_HW_AND_IMAGE);
}

// ---- hash id and bucket rows ----------------------------------------------------------

// The hash id of a key: the `hash_opc` of its egress port, or of the first
// member of its trunk.
i32 _csl_reef_hash_ecib_hash_id_get(u32 chip_id, const Engine &e, u64 key, u32 *hash_id)
{
    const u32 trunk_flag = static_cast<u32>((key >> e.hw.trunk_flag_start) & _mask(e.hw.trunk_flag_width));
    const u32 id = static_cast<u32>((key >> e.hw.port_start) & _mask(e.hw.port_width));
    u32 port = id & 63;
    if (trunk_flag == 1) {
        cib_epro_trunk_table_t trunk{};
        const i32 rc = csl_reef_cib_epro_trunk_table_get(chip_id, 0, id, &trunk);
        if (rc != 0) {
            return rc;
        }
        if (trunk.vld != 1 || trunk.total_member_cnt == 0) {
            SHR_LOG_INF(chip_id, SHR_MOD_REG_TAB, "Not found trunkid(%u) hashid, trunk table is invalid!\n", id);
            *hash_id = 0;
            return 0;
        }
        port = trunk.tp0;
    }
    cib_epro_epat_table_t epat{};
    const i32 rc = csl_reef_cib_epro_epat_table_get(chip_id, 0, port, &epat);
    if (rc == 0) {
        *hash_id = epat.hash_opc;
    }
    return rc;
}

u32 _rotate(u32 crc)
{
    return std::rotl(crc, static_cast<int>(crc >> 27));
}

// The bucket rows of a key: the CRCs of the chosen algorithms over the
// 64-bit word of key and hash id, optionally rotated, masked to the depth.
i32 _csl_reef_hash_ecib_bar_index_get(u32 chip_id, const Engine &e, u64 key, u32 *bar0, u32 *bar1)
{
    if (e.alg[0] == e.alg[1]) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong! barrel 0 and 1 algorithm is same!\n");
        return SHR_E_CONFIG;
    }
    u32 hash_id = 0;
    i32 rc = _csl_reef_hash_ecib_hash_id_get(chip_id, e, key, &hash_id);
    if (rc != 0) {
        return rc;
    }
    const u64 word = key << (64 - e.hw.key_fields_bits) | static_cast<u64>(hash_id) << (64 - e.hw.hash_id_bits);
    u8 bytes[8];
    for (u32 i = 0; i < 8; i++) {
        bytes[i] = static_cast<u8>(word >> (8 * i));
    }
    u8 bits[CSL_REEF_CRC_D64_BITS];
    shr_data_to_bits_array(bytes, sizeof(bytes), bits, sizeof(bits));
    u32 crc[2] = {};
    for (u32 b = 0; b < 2 && rc == 0; b++) {
        rc = csl_reef_hash_get_alg_value(e.alg[b] + CSL_REEF_HASH_ALG_CRC32_D64_BASE, bits, &crc[b]);
        crc[b] = e.left_shift == 1 ? _rotate(crc[b]) : crc[b];
    }
    *bar0 = crc[0] & (e.depth[kBar0] - 1);
    *bar1 = crc[1] & (e.depth[kBar1] - 1);
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB,
                "hash id %u bar0 alg %u row %u bar1 alg %u row %u left shift %u "
                "(0:0x45a5_c105  1:0x04c1_1db7  2:0x6db8_8321  3:0x1edc_6f41)\n",
                hash_id, e.alg[0], *bar0, e.alg[1], *bar1, e.left_shift);
    return rc;
}

// ---- the command block ---------------------------------------------------------------------

u32 _words(u32 bits)
{
    return (bits + 31) / 32;
}

// A row's data words and no more: a barrel row is six, a CAM row two.
u32 _row_words(const Engine &e, u32 mem)
{
    return _words(mem == kCam ? e.hw.cam_row_bits : e.hw.barrel_row_bits);
}

// Texts of a command's wait.
struct Wait {
    const char *time;
    const char *timeout;
};
constexpr Wait kWaitWrite = {"hash write time: %lu us. \n", "hash write opertion timeout\n"};
constexpr Wait kWaitRead = {"hash read time: %lu us. \n", "hash read opertion timeout\n"};
constexpr Wait kWaitSearch = {"[SEARCH] hash search time: %lu us. \n", "hash search opertion timeout\n"};

// One command: `wwords` data words, the row, the opcode with the start
// bit, a bounded wait for done, and `rwords` result words.
i32 _command(u32 chip_id, const Engine &e, u32 opcode, u32 row, const u8 *wdata, u32 wwords, u32 *rdata,
             u32 rwords, const Wait &wait)
{
    i32 rc = 0;
    for (u32 i = 0; i < wwords && rc == 0; i++) {
        u32 w = 0;
        memcpy(&w, wdata + 4 * i, 4);
        rc = csl_reg_write32_logged(chip_id, e.wdat[i], w);
    }
    if (rc == 0) {
        rc = csl_reg_write32_logged(chip_id, e.addr, row);
    }
    if (rc == 0) {
        rc = csl_reg_write32_logged(chip_id, e.info, e.start.put32(e.opcode.put32(0, opcode), 1));
    }
    u32 word = 0;
    u64 spent = 0;
    if (rc == 0) {
        rc = csl_reef_hash_poll_bit(chip_id, e.info, e.done.low, &word, &spent);
        if (rc == SHR_E_TIMEOUT) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "%s", wait.timeout);
        } else if (rc == 0) {
            SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, wait.time, (unsigned long)spent);
        }
    }
    for (u32 i = 0; i < rwords && rc == 0; i++) {
        rc = csl_reg_read32_logged(chip_id, e.rdat[i], &rdata[i]);
    }
    return rc;
}

// The chip's search: key and hash id into the data words, then the first
// result word with its hit bit, CAM before barrel 0 before barrel 1.
i32 _csl_reef_hash_ecib_hard_table_search(u32 chip_id, const Engine &e, u64 key, csl_ecib_search_result *result)
{
    u32 hash_id = 0;
    i32 rc = _csl_reef_hash_ecib_hash_id_get(chip_id, e, key, &hash_id);
    if (rc != 0) {
        return rc;
    }
    const u64 word = key | static_cast<u64>(hash_id) << e.hw.key_bits;
    u8 data[CSL_ECIB_ROW_BYTES] = {};
    for (u32 i = 0; i < 8; i++) {
        data[i] = static_cast<u8>(word >> (8 * i));
    }
    u32 res[kMems] = {};
    rc = _command(chip_id, e, kOpSearch, 0, data, _words(e.hw.key_bits + e.hw.hash_id_bits), res, kMems, kWaitSearch);
    if (rc != 0) {
        return rc;
    }
    // Result words in the order CAM, barrel 0, barrel 1.
    constexpr u32 kOrder[kMems] = {kCam, kBar0, kBar1};
    for (u32 i = 0; i < kMems; i++) {
        const u32 w = res[i];
        if (((w >> kHitBit) & 1) == 0) {
            continue;
        }
        const u32 mem = kOrder[i];
        const u32 rb = e.row_bits[mem];
        result->hit_type = kMemHit[mem];
        result->index = w & static_cast<u32>(_mask(rb));
        result->ad_index = (w >> rb) & static_cast<u32>(_mask(e.hw.search_field_width));
        result->slot = mem == kCam ? 0 : static_cast<u8>((w >> (rb + e.hw.search_field_width)) & _mask(kSlotFieldBits));
        return 0;
    }
    return SHR_E_NOT_FOUND;
}

// ---- lookups in the images -------------------------------------------------------------------

// A place of a key: memory, row, slot and the slot's value.
struct Place {
    u32 mem = 0;
    u32 row = 0;
    u32 slot = 0;
    u64 value = 0;
};

// The key in the CAM; `cam_free` receives the first free CAM row (or the
// depth when none).
i32 _cam_find(u32 chip_id, const Engine &e, u64 key, Place *hit, bool *found, u32 *cam_free)
{
    *found = false;
    *cam_free = e.depth[kCam];
    for (u32 c = 0; c < e.depth[kCam]; c++) {
        u8 row[CSL_ECIB_ROW_BYTES];
        const i32 rc = _row_cached(chip_id, kCam, c, row);
        if (rc != 0) {
            return rc;
        }
        const u64 s = _slot_get(e, row, 0);
        if (!*found && _slot_hit(e, s, key)) {
            *hit = Place{kCam, c, 0, s};
            *found = true;
        }
        if (!_slot_valid(e, s) && *cam_free == e.depth[kCam]) {
            *cam_free = c;
        }
    }
    return 0;
}

// A cached barrel row: where the key is in it and its first free slot
// (CSL_ECIB_SLOTS when full).
struct RowScan {
    bool hit = false;
    Place place;
    u32 free_slot = CSL_ECIB_SLOTS;
};

i32 _row_scan(u32 chip_id, const Engine &e, u32 mem, u32 row, u64 key, RowScan *out)
{
    u8 data[CSL_ECIB_ROW_BYTES];
    const i32 rc = _row_cached(chip_id, mem, row, data);
    if (rc != 0) {
        return rc;
    }
    *out = RowScan{};
    for (u32 slot = 0; slot < CSL_ECIB_SLOTS; slot++) {
        const u64 s = _slot_get(e, data, slot);
        if (!out->hit && _slot_hit(e, s, key)) {
            out->hit = true;
            out->place = Place{mem, row, slot, s};
        }
        if (!_slot_valid(e, s) && out->free_slot == CSL_ECIB_SLOTS) {
            out->free_slot = slot;
        }
    }
    return 0;
}

// What the images say of a key: where it is, the first free CAM row (the
// depth when none) and its two barrel rows.
struct Lookup {
    Place hit;
    bool found = false;
    u32 cam_free = 0;
    RowScan scan[2];
};

// The key in the images: CAM, then its barrel 0 row, then its barrel 1
// row.  A key found in the CAM needs no bucket rows.
i32 _soft_find(u32 chip_id, const Engine &e, u64 key, Lookup *lk)
{
    i32 rc = _cam_find(chip_id, e, key, &lk->hit, &lk->found, &lk->cam_free);
    if (rc != 0 || lk->found) {
        return rc;
    }
    u32 row[2] = {};
    rc = _csl_reef_hash_ecib_bar_index_get(chip_id, e, key, &row[0], &row[1]);
    for (u32 b = 0; b < 2 && rc == 0; b++) {
        rc = _row_scan(chip_id, e, b, row[b], key, &lk->scan[b]);
        if (rc == 0 && !lk->found && lk->scan[b].hit) {
            lk->hit = lk->scan[b].place;
            lk->found = true;
        }
        // A row without a hit still tells where the key would go.
        lk->scan[b].place.row = row[b];
    }
    return rc;
}

// ---- insert, delete, escape move --------------------------------------------------------------

constexpr const char *kHitText[kMems] = {"insert hit bar0 table!\n", "insert hit bar1 table!\n",
                                         "insert hit cam table!\n"};
constexpr const char *kWriteText[kMems] = {"write entry in barrel 0\n", "write entry in barrel 1\n",
                                           "write entry in cam table\n"};

// A new entry at a place: the slot with key, AD row and valid bit, then the
// AD row, then the AD row marked used.
i32 _place_new(u32 chip_id, const Engine &e, u32 mem, u32 row, u32 slot, u64 key, const u8 *ad, u32 ad_index)
{
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "%s", kWriteText[mem]);
    const u64 value = key | static_cast<u64>(ad_index) << e.hw.ad_start | 1ull << (e.hw.slot_bits - 1);
    i32 rc = _slot_write(chip_id, e, mem, row, slot, value);
    if (rc == 0) {
        rc = _ad_write(chip_id, ad_index, ad);
    }
    if (rc == 0) {
        _ad_mark(chip_id, ad_index, true);
    }
    return rc;
}

i32 _insert(u32 chip_id, const Engine &e, u64 key, const u8 *ad, u32 force)
{
    Lookup lk;
    i32 rc = _soft_find(chip_id, e, key, &lk);
    if (rc != 0) {
        return rc;
    }
    const Place &hit = lk.hit;
    if (lk.found) {
        // An existing key keeps its place: only its action changes.
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "%s", kHitText[hit.mem]);
        rc = _ad_write(chip_id, _slot_ad(e, hit.value), ad);
        return rc != 0 ? rc : SHR_E_EXISTS;
    }
    u32 ad_index = 0;
    if (!_ad_free(chip_id, &ad_index)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "insert failed! ad table is full!\n");
        return SHR_E_FULL;
    }
    if (force == 0) {
        // Barrel 0 is preferred however full it is.
        for (u32 b = 0; b < 2; b++) {
            if (lk.scan[b].free_slot < CSL_ECIB_SLOTS) {
                return _place_new(chip_id, e, b, lk.scan[b].place.row, lk.scan[b].free_slot, key, ad, ad_index);
            }
        }
    }
    if (lk.cam_free >= e.depth[kCam]) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Wrong! cam table is full!\n");
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Error! insert failed!!!\n");
        return SHR_E_FULL;
    }
    rc = _place_new(chip_id, e, kCam, lk.cam_free, 0, key, ad, ad_index);
    if (rc != 0 || force != 0) {
        return rc;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "Hash table confict\n");
    return SHR_E_HASH_CONFLICT;
}

// A freed barrel slot takes the first CAM entry of its bucket; the entry
// keeps its AD row.  One entry at most: the slot is then full again.
i32 _csl_reef_hash_ecib_escape_table_move(u32 chip_id, const Engine &e, u32 bar0_row, u32 bar0_slot, u32 bar1_row,
                                          u32 bar1_slot, bool bar0_freed, bool bar1_freed)
{
    for (u32 c = 0; c < e.depth[kCam]; c++) {
        u8 row[CSL_ECIB_ROW_BYTES];
        i32 rc = _row_cached(chip_id, kCam, c, row);
        if (rc != 0) {
            return rc;
        }
        const u64 s = _slot_get(e, row, 0);
        if (!_slot_valid(e, s)) {
            continue;
        }
        u32 b0 = 0, b1 = 0;
        rc = _csl_reef_hash_ecib_bar_index_get(chip_id, e, _slot_key(e, s), &b0, &b1);
        if (rc != 0) {
            return rc;
        }
        u32 mem = kMems;
        if (bar0_freed && b0 == bar0_row) {
            mem = kBar0;
            rc = _slot_write(chip_id, e, kBar0, bar0_row, bar0_slot, s);
        } else if (bar1_freed && b1 == bar1_row) {
            mem = kBar1;
            rc = _slot_write(chip_id, e, kBar1, bar1_row, bar1_slot, s);
        }
        if (mem == kMems) {
            continue;
        }
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "%s", kWriteText[mem]);
        if (rc == 0) {
            memset(row, 0, sizeof(row));
            rc = _row_write(chip_id, kCam, c, row);
        }
        return rc;
    }
    return 0;
}

// The AD row of a deleted entry: zeros, and free again.
i32 _ad_release(u32 chip_id, u32 index)
{
    const u8 zeros[CSL_ECIB_AD_BYTES] = {};
    const i32 rc = _ad_write(chip_id, index, zeros);
    if (rc == 0) {
        _ad_mark(chip_id, index, false);
    }
    return rc;
}

i32 _delete(u32 chip_id, const Engine &e, u64 key)
{
    Lookup lk;
    i32 rc = _soft_find(chip_id, e, key, &lk);
    if (rc != 0) {
        return rc;
    }
    const Place &hit = lk.hit;
    if (!lk.found) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "delete not hit!\n");
        return SHR_E_NOT_FOUND;
    }
    if (hit.mem == kCam) {
        // A CAM entry leaves no barrel slot behind: nothing moves.
        u8 zeros[CSL_ECIB_ROW_BYTES] = {};
        rc = _row_write(chip_id, kCam, hit.row, zeros);
        if (rc == 0) {
            rc = _ad_release(chip_id, _slot_ad(e, hit.value));
        }
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "delete hit cam table!\n");
        return rc;
    }
    rc = _slot_write(chip_id, e, hit.mem, hit.row, hit.slot, 0);
    if (rc == 0) {
        rc = _ad_release(chip_id, _slot_ad(e, hit.value));
    }
    if (rc != 0) {
        return rc;
    }
    const bool bar0 = hit.mem == kBar0;
    return _csl_reef_hash_ecib_escape_table_move(chip_id, e, hit.row, hit.slot, hit.row, hit.slot, bar0, !bar0);
}

// ---- set-up --------------------------------------------------------------------------------------

// The bits of a row number of a memory of `depth` rows.
u32 _row_bits(u32 depth)
{
    return depth <= 1 ? 0 : static_cast<u32>(std::bit_width(depth - 1));
}

// Finds the tables, registers and fields of the engine in the chip's
// catalogue, and checks them against the chip type's geometry.
bool _engine_resolve(u32 chip_id, Engine &e)
{
    e = Engine{};
    const u32 type = shr_chip_type_get(chip_id);
    e.hw = g_ecib_hw_info[type < 5 ? type : 4];
    bool ok = e.hw.slot_bits != 0;
    for (u32 m = 0; m < kMems && ok; m++) {
        const cib_tab_info *t = csl_reef_tab_info_get(chip_id, kMemTab[m]);
        ok = t != nullptr && t->width == (m == kCam ? e.hw.cam_row_bits : e.hw.barrel_row_bits);
        e.depth[m] = ok ? cib_tab_depth(t) : 0;
        e.row_bits[m] = _row_bits(e.depth[m]);
        ok = ok && std::has_single_bit(e.depth[m]);
    }
    const cib_tab_info *ad = csl_reef_tab_info_get(chip_id, cib_epro_ecib_table);
    ok = ok && ad != nullptr && cib_tab_depth(ad) == e.hw.ad_entries && ad->width == e.hw.ad_row_bits;
    auto reg = [&](u32 id) -> const cib_reg_info * {
        const cib_reg_info *r = csl_reef_reg_info_get(chip_id, id);
        ok = ok && r != nullptr && r->a > 0;
        return ok ? r : nullptr;
    };
    static const u32 kWdat[kDataWords] = {cib_epro_em_cfg_wdat0, cib_epro_em_cfg_wdat1, cib_epro_em_cfg_wdat2,
                                          cib_epro_em_cfg_wdat3, cib_epro_em_cfg_wdat4, cib_epro_em_cfg_wdat5};
    static const u32 kRdat[kDataWords] = {cib_epro_em_cfg_rdat0, cib_epro_em_cfg_rdat1, cib_epro_em_cfg_rdat2,
                                          cib_epro_em_cfg_rdat3, cib_epro_em_cfg_rdat4, cib_epro_em_cfg_rdat5};
    for (u32 i = 0; i < kDataWords; i++) {
        const cib_reg_info *w = reg(kWdat[i]);
        const cib_reg_info *r = reg(kRdat[i]);
        e.wdat[i] = w != nullptr ? w->addr[0] : 0;
        e.rdat[i] = r != nullptr ? r->addr[0] : 0;
    }
    const cib_reg_info *addr = reg(cib_epro_em_cfg_addr);
    const cib_reg_info *info = reg(cib_epro_em_cfg_info);
    const cib_reg_info *done = reg(cib_epro_em_init_done);
    if (!ok) {
        return false;
    }
    e.addr = addr->addr[0];
    e.info = info->addr[0];
    e.init_done = done->addr[0];
    e.opcode = tide::l2mac::reg_field(info, "em_cfg_opcode");
    e.done = tide::l2mac::reg_field(info, "em_cfg_done");
    e.start = tide::l2mac::reg_field(info, "em_cfg_start");
    e.init_done_bit = tide::l2mac::reg_field(done, "em_init_done");
    return e.opcode.ok() && e.done.ok() && e.start.ok() && e.init_done_bit.ok();
}

void _soft_free(u32 chip_id)
{
    xsal_mem_free(g_ecib_ad_tbl_bitmap[chip_id]);
    xsal_mem_free(g_ecib_used_entry_info[chip_id]);
    g_ecib_ad_tbl_bitmap[chip_id] = nullptr;
    g_ecib_used_entry_info[chip_id] = nullptr;
    g_ecib_entry_size[chip_id] = 0;
    g_engine[chip_id] = Engine{};
}

// Images, AD bitmap and used bytes empty, as the chip's memories are after
// its init.
i32 _soft_clear(u32 chip_id, const Engine &e)
{
    u8 zeros[CSL_ECIB_ROW_BYTES] = {};
    for (u32 m = 0; m < kMems; m++) {
        for (u32 r = 0; r < e.depth[m]; r++) {
            const i32 rc = csl_reef_tab_set_direct(chip_id, kMemTab[m], r, zeros, sizeof(zeros), CSL_TAB_IMAGE);
            if (rc != 0) {
                return rc;
            }
        }
    }
    memset(g_ecib_ad_tbl_bitmap[chip_id], 0, (e.hw.ad_entries + 63) / 64 * sizeof(u64));
    memset(g_ecib_used_entry_info[chip_id], 0, e.hw.ad_entries);
    return 0;
}

// 0 when the build describes the chip type's exact-match tables; else -24
// with the line at `level`.
i32 _in_build(u32 chip_id, u32 level)
{
    return csl_reef_tab_in_build(chip_id, cib_epro_em_pv_ht0_tbl, SHR_MOD_REG_TAB, level, "exact-match hash table");
}

// The engine of a chip for an operation: -3 for a chip out of range, -24
// for one without the engine.
i32 _ready(u32 chip_id, Engine **e)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    *e = _engine(chip_id);
    if (*e == nullptr) {
        // A type whose tables the build lacks says so in the siblings' words.
        const i32 rc = _in_build(chip_id, SHR_LOG_ERROR);
        if (rc == 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib hash engine is not set up on this chip\n");
        }
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

// A chip with the engine, under the type 2 lock: runs `fn(engine)`.
template <typename Fn>
i32 _with_engine(u32 chip_id, Fn fn)
{
    Engine *e = nullptr;
    const i32 rc = _ready(chip_id, &e);
    if (rc != 0) {
        return rc;
    }
    HashGuard hold(chip_id, CSL_HASH_TYPE_ECIB);
    return hold.status() != 0 ? hold.status() : fn(*e);
}

// The usual entry of an operation on images: as _with_engine, with the
// images present.
template <typename Fn>
i32 _locked(u32 chip_id, Fn fn)
{
    return _with_engine(chip_id, [&](Engine &e) {
        const i32 rc = _judge_tab_cache_is_enable(chip_id);
        return rc != 0 ? rc : fn(e);
    });
}

// A row command: an internal table of the command's kind (from `first`,
// one per memory), a buffer for the six data words, a row that exists.
// The memory at *mem.
i32 _row_args_check(u32 chip_id, const Engine &e, u32 tab, u32 first, u32 index, u32 len, u32 *mem)
{
    if (tab < first || tab >= first + kMems) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib table %u is not %u to %u\n", tab, first, first + kMems - 1);
        return SHR_E_PARAM;
    }
    *mem = tab - first;
    if (len < CSL_ECIB_ROW_BYTES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "data_len %d smaller than need %zu\n", (int)len,
                    (size_t)CSL_ECIB_ROW_BYTES);
        return SHR_E_PARAM;
    }
    if (index >= e.depth[*mem]) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib row %u is beyond %u rows\n", index, e.depth[*mem]);
        return SHR_E_PARAM;
    }
    return 0;
}

// Hash types other than 2: this chip family's 0 and 1 have no engine in
// this build (-24), others are not hash types with these operations (-4).
i32 _type_check(u32 chip_id, u32 type)
{
    if (type == CSL_HASH_TYPE_ECIB) {
        return 0;
    }
    if (type == CSL_HASH_TYPE_L3_MFIB || type == CSL_HASH_TYPE_VRRP_MCDP) {
        return SHR_E_NOT_SUPPORT;
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "table type:%u  (0:L3 MFIB 1:VRRP/MC_DROP 2:ECIB_KEY0/1 3:L2 MAC)\n", type);
    return SHR_E_PARAM;
}

bool _null(u32 chip_id, const void *p)
{
    if (p == nullptr) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return true;
    }
    return false;
}

} // namespace

extern "C" {

i32 csl_reef_hash_ecib_soft_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (g_engine[chip_id].ok) {
        return 0;
    }
    i32 rc = _in_build(chip_id, SHR_LOG_WARN);
    if (rc != 0) {
        return rc;
    }
    Engine e;
    if (!_engine_resolve(chip_id, e)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib hash engine is not set up on this chip\n");
        return SHR_E_NOT_SUPPORT;
    }
    const u32 words = (e.hw.ad_entries + 63) / 64;
    g_ecib_ad_tbl_bitmap[chip_id] =
        static_cast<u64 *>(xsal_malloc(words * sizeof(u64), "ecib hash ad bitmap", SHR_MOD_REG_TAB));
    g_ecib_used_entry_info[chip_id] = static_cast<u8 *>(xsal_malloc(e.hw.ad_entries, "ecib hash ad", SHR_MOD_REG_TAB));
    if (g_ecib_ad_tbl_bitmap[chip_id] == nullptr || g_ecib_used_entry_info[chip_id] == nullptr) {
        _soft_free(chip_id);
        return SHR_E_MEMORY;
    }
    memset(g_ecib_ad_tbl_bitmap[chip_id], 0, words * sizeof(u64));
    memset(g_ecib_used_entry_info[chip_id], 0, e.hw.ad_entries);
    g_ecib_entry_size[chip_id] = e.hw.ad_entries;
    e.ok = true;
    g_engine[chip_id] = e;
    return 0;
}

i32 csl_reef_hash_ecib_soft_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    _soft_free(chip_id);
    return 0;
}

i32 csl_reef_hash_ecib_hw_init(u32 chip_id)
{
    return _with_engine(chip_id, [&](Engine &e) {
        i32 rc = csl_reef_reg_set_u32(chip_id, cib_epro_em_init_start, 1);
        u32 word = 0;
        u64 spent = 0;
        if (rc == 0) {
            rc = csl_reef_hash_poll_bit(chip_id, e.init_done, e.init_done_bit.low, &word, &spent);
            if (rc == SHR_E_TIMEOUT) {
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "hash opertion timeout\n");
            } else if (rc == 0) {
                SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[INIT] hash init time: %lu us. \n", (unsigned long)spent);
            }
        }
        // The chip's memories are empty now: so are the images.
        if (rc == 0) {
            rc = _soft_clear(chip_id, e);
        }
        return rc != 0 ? rc : csl_reef_hash_alg_mode_set(chip_id, CSL_HASH_TYPE_ECIB, 0, 1, 0);
    });
}

i32 csl_reef_hash_ecib_insert(u32 chip_id, const u8 *key, const u8 *ad, u32 force)
{
    if (_null(chip_id, key) || _null(chip_id, ad)) {
        return SHR_E_PARAM;
    }
    return _locked(chip_id, [&](const Engine &e) { return _insert(chip_id, e, _key_load(e, key), ad, force); });
}

i32 csl_reef_hash_ecib_delete(u32 chip_id, const u8 *key)
{
    if (_null(chip_id, key)) {
        return SHR_E_PARAM;
    }
    return _locked(chip_id, [&](const Engine &e) { return _delete(chip_id, e, _key_load(e, key)); });
}

i32 csl_reef_hash_ecib_search(u32 chip_id, u32 mode, const u8 *key, csl_ecib_search_result *result)
{
    if (_null(chip_id, key) || _null(chip_id, result)) {
        return SHR_E_PARAM;
    }
    if (mode != CSL_ECIB_SEARCH_HARD && mode != CSL_ECIB_SEARCH_SOFT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib search mode %u is neither 0 (hard) nor 1 (soft)\n", mode);
        return SHR_E_PARAM;
    }
    return _locked(chip_id, [&](const Engine &e) {
        const u64 k = _key_load(e, key);
        if (mode == CSL_ECIB_SEARCH_HARD) {
            return _csl_reef_hash_ecib_hard_table_search(chip_id, e, k, result);
        }
        Lookup lk;
        const i32 rc = _soft_find(chip_id, e, k, &lk);
        if (rc != 0) {
            return rc;
        }
        if (!lk.found) {
            return static_cast<i32>(SHR_E_NOT_FOUND);
        }
        const Place &hit = lk.hit;
        *result = csl_ecib_search_result{kMemHit[hit.mem], hit.row, _slot_ad(e, hit.value), static_cast<u8>(hit.slot)};
        return 0;
    });
}

i32 csl_reef_hash_ecib_place_count(u32 chip_id, u32 *places)
{
    Engine *e = nullptr;
    const i32 rc = _null(chip_id, places) ? SHR_E_PARAM : _ready(chip_id, &e);
    if (rc == 0) {
        *places = (e->depth[kBar0] + e->depth[kBar1]) * CSL_ECIB_SLOTS + e->depth[kCam];
    }
    return rc;
}

i32 csl_reef_ecib_range_get(u32 chip_id, csl_ecib_range *range, ecib_entry *records)
{
    if (_null(chip_id, range) || _null(chip_id, records)) {
        return SHR_E_PARAM;
    }
    if (range->min > range->max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "input index min more than index max\n");
        return SHR_E_PARAM;
    }
    return _locked(chip_id, [&](const Engine &e) {
        const u32 total = (e.depth[kBar0] + e.depth[kBar1]) * CSL_ECIB_SLOTS + e.depth[kCam];
        range->found = 0;
        if (range->min >= total) {
            return static_cast<i32>(SHR_E_FULL);
        }
        const u32 max = range->max < total ? range->max : total - 1;
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "ecib index range %d-%d\n", (int)range->min, (int)max);
        u8 row[CSL_ECIB_ROW_BYTES] = {};
        u32 have_mem = kMems, have_row = 0;
        for (u32 i = range->min; i <= max; i++) {
            // The flat index: barrel 0, barrel 1, then the CAM.
            u32 mem = kBar0, rest = i;
            while (mem < kCam && rest >= e.depth[mem] * CSL_ECIB_SLOTS) {
                rest -= e.depth[mem] * CSL_ECIB_SLOTS;
                mem++;
            }
            const u32 r = rest / _slots(mem), slot = rest % _slots(mem);
            i32 rc = 0;
            if (mem != have_mem || r != have_row) {
                rc = csl_reef_hash_ecib_hard_table_read(chip_id, CSL_ECIB_TAB_READ_BAR0 + mem, r, row, sizeof(row));
                have_mem = rc == 0 ? mem : kMems;
                have_row = r;
            }
            const u64 s = rc == 0 ? _slot_get(e, row, slot) : 0;
            u8 key[CSL_ECIB_KEY_BYTES] = {}, ad[CSL_ECIB_AD_BYTES] = {};
            if (rc == 0 && _slot_valid(e, s)) {
                shr_field64_set_to_data(key, _slot_key(e, s), 0, static_cast<u16>(e.hw.key_bits));
                rc = csl_reef_hash_ecib_hard_table_read(chip_id, CSL_ECIB_TAB_AD, _slot_ad(e, s), ad, sizeof(ad));
                ecib_entry &rec = records[range->found];
                rc = rc != 0 ? rc : csl_reef_hash_data_TO_ecib_key(chip_id, &rec.key, key);
                rc = rc != 0 ? rc : csl_reef_hash_data_TO_ecib_ad(chip_id, &rec.ad, ad);
                rec.index = i;
                range->found += rc == 0 ? 1 : 0;
            }
            if (rc != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib read index %d fail, %s\n", (int)i, shr_errmsg(rc));
                return rc;
            }
            range->last = i;
        }
        return 0;
    });
}

i32 csl_reef_judge_index_scope(u32 chip_id, u32 tab_id, u32 first, u32 last)
{
    const cib_tab_info *t = csl_reef_tab_info_get(chip_id, tab_id);
    if (t == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "table %u is not in this chip's catalogue\n", tab_id);
        return SHR_E_PARAM;
    }
    if (first > last || last >= cib_tab_depth(t)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "index %u-%u is out of %s 0-%u\n", first, last, t->name,
                    cib_tab_depth(t) - 1);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 csl_reef_hash_ecib_clean(u32 chip_id, u32 kind, u32 first, u32 last)
{
    if (kind < CSL_ECIB_CLEAN_BAR0 || kind > CSL_ECIB_CLEAN_AD) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib clean kind %u is not 4 to 7\n", kind);
        return SHR_E_PARAM;
    }
    const u32 tab = kind == CSL_ECIB_CLEAN_AD ? static_cast<u32>(cib_epro_ecib_table) : kMemTab[kind - 4];
    const i32 scope = csl_reef_judge_index_scope(chip_id, tab, first, last);
    if (scope != 0) {
        return scope;
    }
    return _locked(chip_id, [&](const Engine &) {
        for (u32 r = first; r <= last; r++) {
            u8 zeros[CSL_ECIB_ROW_BYTES] = {};
            const i32 rc = kind == CSL_ECIB_CLEAN_AD ? _ad_release(chip_id, r) : _row_write(chip_id, kind - 4, r, zeros);
            if (rc != 0) {
                return rc;
            }
        }
        return 0;
    });
}

i32 csl_reef_hash_ecib_get_entry_size(u32 chip_id, u32 *entry_count, u32 *used_count, u32 *used_list)
{
    if (_null(chip_id, entry_count) || _null(chip_id, used_count)) {
        return SHR_E_PARAM;
    }
    return _with_engine(chip_id, [&](Engine &) {
        *entry_count = g_ecib_entry_size[chip_id];
        *used_count = 0;
        for (u32 i = 0; i < g_ecib_entry_size[chip_id]; i++) {
            if (g_ecib_used_entry_info[chip_id][i] != 0) {
                if (used_list != nullptr) {
                    used_list[*used_count] = i;
                }
                ++*used_count;
            }
        }
        return 0;
    });
}

i32 csl_reef_hash_ecib_hard_table_write(u32 chip_id, u32 tab, u32 index, const u8 *data, u32 len)
{
    if (_null(chip_id, data)) {
        return SHR_E_PARAM;
    }
    return _with_engine(chip_id, [&](Engine &e) {
        u32 mem = 0;
        const i32 rc = _row_args_check(chip_id, e, tab, CSL_ECIB_TAB_WRITE_BAR0, index, len, &mem);
        return rc != 0 ? rc : _command(chip_id, e, mem, index, data, _row_words(e, mem), nullptr, 0, kWaitWrite);
    });
}

i32 csl_reef_hash_ecib_hard_table_read(u32 chip_id, u32 tab, u32 index, u8 *data, u32 len)
{
    if (_null(chip_id, data)) {
        return SHR_E_PARAM;
    }
    return _with_engine(chip_id, [&](Engine &e) {
        if (tab == CSL_ECIB_TAB_AD) {
            return csl_reef_tab_get_direct(chip_id, cib_epro_ecib_table, index, data, len, CSL_TAB_HW);
        }
        u32 mem = 0;
        u32 words[kDataWords] = {};
        i32 rc = _row_args_check(chip_id, e, tab, CSL_ECIB_TAB_READ_BAR0, index, len, &mem);
        rc = rc != 0 ? rc : _command(chip_id, e, kOpRead + mem, index, nullptr, 0, words, _row_words(e, mem), kWaitRead);
        if (rc == 0) {
            memcpy(data, words, CSL_ECIB_ROW_BYTES);
        }
        return rc;
    });
}

i32 csl_reef_hash_ecib_bar_index(u32 chip_id, const u8 *key, u32 *bar0, u32 *bar1)
{
    if (_null(chip_id, key) || _null(chip_id, bar0) || _null(chip_id, bar1)) {
        return SHR_E_PARAM;
    }
    return _locked(chip_id, [&](const Engine &e) {
        return _csl_reef_hash_ecib_bar_index_get(chip_id, e, _key_load(e, key), bar0, bar1);
    });
}

// ---- the doors of every hash type -------------------------------------------------------------

i32 csl_reef_hash_tab_insert(u32 chip_id, u32 type, const u8 *key, const u8 *ad, u32 force)
{
    const i32 rc = _type_check(chip_id, type);
    return rc != 0 ? rc : csl_reef_hash_ecib_insert(chip_id, key, ad, force);
}

i32 csl_reef_hash_tab_search(u32 chip_id, u32 type, u32 mode, const u8 *key, csl_ecib_search_result *result)
{
    const i32 rc = _type_check(chip_id, type);
    return rc != 0 ? rc : csl_reef_hash_ecib_search(chip_id, mode, key, result);
}

i32 csl_reef_hash_tab_delete(u32 chip_id, u32 type, const u8 *key)
{
    const i32 rc = _type_check(chip_id, type);
    return rc != 0 ? rc : csl_reef_hash_ecib_delete(chip_id, key);
}

i32 csl_reef_hash_alg_mode_set(u32 chip_id, u32 type, u32 bar0_alg, u32 bar1_alg, u32 left_shift)
{
    i32 rc = type == CSL_HASH_TYPE_L2_MAC ? SHR_E_NOT_SUPPORT : _type_check(chip_id, type);
    if (rc != 0) {
        return rc;
    }
    if (bar0_alg >= kAlgCount || bar1_alg >= kAlgCount || left_shift > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ecib algorithms %u %u (0 to 3) left shift %u (0 or 1) out of range\n",
                    bar0_alg, bar1_alg, left_shift);
        return SHR_E_PARAM;
    }
    return _with_engine(chip_id, [&](Engine &e) {
        cib_epro_em_hash_mode_t mode{};
        mode.bar0_alg = bar0_alg;
        mode.bar1_alg = bar1_alg;
        mode.left_shift = left_shift;
        u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
        const i32 st = csl_reef_cib_epro_em_hash_mode_set(chip_id, 0, &mode, all);
        if (st == 0) {
            e.alg[0] = bar0_alg;
            e.alg[1] = bar1_alg;
            e.left_shift = left_shift;
        }
        return st;
    });
}

i32 csl_reef_hash_alg_mode_get(u32 chip_id, u32 type, u32 *bar0_alg, u32 *bar1_alg, u32 *left_shift)
{
    i32 rc = type == CSL_HASH_TYPE_L2_MAC ? SHR_E_NOT_SUPPORT : _type_check(chip_id, type);
    if (rc != 0) {
        return rc;
    }
    if (_null(chip_id, bar0_alg) || _null(chip_id, bar1_alg) || _null(chip_id, left_shift)) {
        return SHR_E_PARAM;
    }
    return _with_engine(chip_id, [&](Engine &e) {
        *bar0_alg = e.alg[0];
        *bar1_alg = e.alg[1];
        *left_shift = e.left_shift;
        return 0;
    });
}

} // extern "C"
