// The command block of the MAC table.  Every operation runs one sequence
// under the chip's "hash-arl-lock": wait until the block is idle, clear the
// command word, write the entry image, start the operation, wait until it
// is finished, read the status and, for a search, the returned entry.
// Both waits are bounded polls; a block that never reports idle is left
// untouched.
#include "csl/reef/reg_tbl/csl_reef_hash_tab_op.h"

#include "csl/reef/reg_tbl/auto_code/api/csl_reef_hash_table.h"
#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "shared/shr_bits.h"

using tide::l2mac::Bits;
using tide::l2mac::u128;

extern "C" {

const char *const g_csl_l2_mac_fail_case_str[CSL_L2_MAC_DEBUG_TEXTS] = {
    "operate successfully",
    "static mac preempt dynamic mac successfully",
    "appointed key cover successfully",
    "appointed key insert failed",
    "appointed key cover failed",
    "appointed key delete failed(not hit)",
    "appointed key search failed(not hit)",
    "appointed key insert failed(barrel full)",
};

// By chip type: none, kelpreef, kelpreef2, atolreef, and a type with no
// MAC table.
const csl_l2_mac_widths g_csl_l2_mac_widths[5] = {
    {0, 0, 0, 0}, {61, 45, 45, 10}, {61, 45, 45, 10}, {79, 38, 38, 21}, {0, 0, 0, 0},
};

xsal_mutex_t g_reef_hash_l3_mfib_lock[SHR_MAX_CHIPS];
xsal_mutex_t g_reef_hash_vrrp_mcdp_lock[SHR_MAX_CHIPS];
xsal_mutex_t g_reef_hash_epro_lock[SHR_MAX_CHIPS];
xsal_mutex_t g_reef_hash_l2_mac_lock[SHR_MAX_CHIPS];

} // extern "C"

namespace {

// The command block of a chip, as its catalogue describes it.
struct Block {
    bool ok = false;
    csl_l2_mac_regs regs{};
    Bits start, btype, baddr, optype;
    Bits cmp[9]; // in the order of csl_l2_mac_cmp
    Bits rep_sta, rep_dyn, grab, image0;
    Bits ret_num, fail_cause, fail_ind, finish;
    csl_l2_mac_widths w{};
};

Block g_block[SHR_MAX_CHIPS];

struct HashLock {
    xsal_mutex_t *table;
    const char *name;
};
constexpr HashLock kHashLocks[CSL_HASH_TYPE_COUNT] = {
    {g_reef_hash_l3_mfib_lock, "hash-l3-mfib-lock"},
    {g_reef_hash_vrrp_mcdp_lock, "hash-ipro-lock"},
    {g_reef_hash_epro_lock, "hash-epro-lock"},
    {g_reef_hash_l2_mac_lock, "hash-arl-lock"},
};

constexpr u32 kImageWordBits = 32;
constexpr const char *kBucketName[3] = {"bar0", "bar1", "cam"};

// Finds the registers and fields of the block in the chip's catalogue; a
// chip whose catalogue lacks any of them has no usable block.
bool _block_resolve(u32 chip_id, Block &b)
{
    b = Block{};
    const u32 type = shr_chip_type_get(chip_id);
    b.w = g_csl_l2_mac_widths[type < 5 ? type : 4];
    tide::cib::CatalogueNeeds need{chip_id};
    auto reg = [&](u32 id, u32 *addr) { return need.reg(id, addr); };
    auto field = [&](const cib_reg_info *r, const char *name) { return need.field(r, name); };
    const cib_reg_info *cfg = reg(cib_arl_cpuop_cfg, &b.regs.cfg);
    b.start = field(cfg, "cpuop_start");
    b.btype = field(cfg, "bucket_type");
    b.baddr = field(cfg, "bucket_addr");
    b.optype = field(cfg, "cpuop_type");
    static const char *const kCmp[9] = {"cmp_remote_en", "cmp_sport_en", "cmp_gid_en",
                                        "cmp_lrnclass_en", "cmp_ovlan_en", "cmp_opcode_en",
                                        "cmp_mac_en",    "cmp_vsiid_en", "cmp_stati_en"};
    for (u32 i = 0; i < 9; i++) {
        b.cmp[i] = field(cfg, kCmp[i]);
    }
    static const u32 kMac[4] = {cib_arl_cpuop_cfg_mac0, cib_arl_cpuop_cfg_mac1, cib_arl_cpuop_cfg_mac2,
                                cib_arl_cpuop_cfg_mac3};
    static const u32 kSch[4] = {cib_arl_cpuop_sch_mac0, cib_arl_cpuop_sch_mac1, cib_arl_cpuop_sch_mac2,
                                cib_arl_cpuop_sch_mac3};
    const cib_reg_info *mac0 = reg(kMac[0], &b.regs.mac[0]);
    for (u32 i = 1; i < 4; i++) {
        reg(kMac[i], &b.regs.mac[i]);
    }
    for (u32 i = 0; i < 4; i++) {
        reg(kSch[i], &b.regs.sch[i]);
    }
    b.rep_sta = field(mac0, "replace_sta_flag");
    b.rep_dyn = field(mac0, "replace_dyn_flag");
    b.grab = field(mac0, "grap_flag");
    b.image0 = field(mac0, "cpuop_cfg_mac0");
    const cib_reg_info *state = reg(cib_arl_cpuop_state, &b.regs.state);
    b.ret_num = field(state, "cpuop_return_num");
    b.fail_cause = field(state, "cpuop_fail_cause");
    b.fail_ind = field(state, "cpuop_fail_ind");
    b.finish = field(state, "cpuop_finish_ind");
    b.ok = b.w.key_bits != 0 && need.ok;
    return b.ok;
}

const Block *_block(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS || !g_block[chip_id].ok) {
        const u32 type = shr_chip_type_get(chip_id);
        const csl_l2_mac_widths &w = g_csl_l2_mac_widths[type < 5 ? type : 4];
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "ERR: tbl key bytes %d ad bytes %d.\n", (int)((w.key_bits + 7) / 8),
                    (int)((w.ad_bits + 7) / 8));
        return nullptr;
    }
    return &g_block[chip_id];
}

// Locks or unlocks the mutex of a hash type.
i32 _hash_lock_op(u32 chip_id, u32 type, int (*op)(xsal_mutex_t, const char *, int))
{
    if (type >= CSL_HASH_TYPE_COUNT) {
        return SHR_E_PARAM;
    }
    const xsal_mutex_t m = chip_id < SHR_MAX_CHIPS ? kHashLocks[type].table[chip_id] : nullptr;
    if (m == nullptr) {
        return SHR_E_INIT;
    }
    return op(m, __FILE__, __LINE__) == 0 ? 0 : SHR_E_INTERNAL;
}

using tide::hash::HashGuard;

// One command of the block.
struct Cmd {
    u32 op = 0;
    bool has_image = false;
    u128 image = 0;
    u64 flags = CSL_L2_MAC_FLAGS_KEEP; // inserts by key only
    const csl_l2_mac_cmp *cmp = nullptr;
    bool bucket = false;
    u32 bucket_type = 0;
    u32 bucket_addr = 0;
    u8 *entry_out = nullptr; // searches: the returned entry
};

// A command at a bucket and address.
Cmd _bucket_cmd(u32 op, u32 bucket_type, u32 bucket_addr, u8 *entry_out)
{
    Cmd c;
    c.op = op;
    c.bucket = true;
    c.bucket_type = bucket_type;
    c.bucket_addr = bucket_addr;
    c.entry_out = entry_out;
    return c;
}

// Polls the status word until it reports finished (the bounded wait of
// csl_reef_hash_poll_bit).  -9 on time-out, with the last status in *state.
i32 _wait_finish(u32 chip_id, const Block &b, u32 *state)
{
    u64 spent = 0;
    const i32 rc = csl_reef_hash_poll_bit(chip_id, b.regs.state, b.finish.low, state, &spent);
    if (rc == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_ARL, "[GET] hash read time: %lu us.\n", (unsigned long)spent);
    }
    return rc;
}

u32 _flag_apply(u32 word, const Bits &f, u8 how)
{
    return how == 0 || how == 1 ? f.put32(word, how) : word;
}

// Writes the entry image from its top word down.  The top word keeps the
// insert policy flags unless an insert by key sets them, and always gets
// the valid bit: the block only ever receives valid entries.
i32 _image_write(u32 chip_id, const Block &b, const Cmd &c)
{
    u32 mac0 = 0;
    i32 rc = csl_reg_read32_logged(chip_id, b.regs.mac[0], &mac0);
    if (rc != 0) {
        return rc;
    }
    if (c.op == CSL_L2_MAC_OP_INSERT) {
        mac0 = _flag_apply(mac0, b.rep_sta, static_cast<u8>(c.flags));
        mac0 = _flag_apply(mac0, b.rep_dyn, static_cast<u8>(c.flags >> 8));
        mac0 = _flag_apply(mac0, b.grab, static_cast<u8>(c.flags >> 16));
    }
    const u32 top = static_cast<u32>(c.image >> (3 * kImageWordBits)) | 1u << b.w.valid_bit;
    mac0 = b.image0.put32(mac0, top);
    rc = csl_reg_write32_logged(chip_id, b.regs.mac[0], mac0);
    for (u32 i = 1; rc == 0 && i < 4; i++) {
        rc = csl_reg_write32_logged(chip_id, b.regs.mac[i], static_cast<u32>(c.image >> ((3 - i) * kImageWordBits)));
    }
    return rc;
}

// The command word's fields of a batched or bucket command: compare
// enables, or bucket type and address, set into `cfg`.
u32 _command_fields(const Block &b, const Cmd &c, u32 cfg)
{
    if (c.cmp != nullptr) {
        const u8 *sel = &c.cmp->remote;
        for (u32 i = 0; i < 9; i++) {
            if (i != 1 && sel[i] == 1) { // the source-port compare is never set here
                cfg = b.cmp[i].put32(cfg, 1);
            }
        }
    }
    if (c.bucket) {
        cfg = b.btype.put32(cfg, c.bucket_type);
        cfg = b.baddr.put32(cfg, c.bucket_addr);
    }
    return cfg;
}

// Read-modify-write of the command word.
template <typename F> i32 _command_update(u32 chip_id, const Block &b, F change)
{
    u32 cfg = 0;
    const i32 rc = csl_reg_read32_logged(chip_id, b.regs.cfg, &cfg);
    return rc != 0 ? rc : csl_reg_write32_logged(chip_id, b.regs.cfg, change(cfg));
}

// The command word in the block's three steps: cleared at the idle wait
// (the entry image follows for a command with a key), then the fields of a batched or bucket command, then the same with the
// operation and the start bit.  The chip may latch the fields before the
// start bit, so they are never written together with it for the first time.
i32 _command_write(u32 chip_id, const Block &b, const Cmd &c)
{
    i32 rc = csl_reg_write32_logged(chip_id, b.regs.cfg, 0);
    if (rc == 0 && c.has_image) {
        rc = _image_write(chip_id, b, c);
    }
    if (rc == 0 && (c.cmp != nullptr || c.bucket)) {
        rc = _command_update(chip_id, b, [&](u32 cfg) { return _command_fields(b, c, cfg); });
    }
    if (rc == 0) {
        rc = _command_update(chip_id, b, [&](u32 cfg) { return b.start.put32(b.optype.put32(cfg, c.op), 1); });
    }
    return rc;
}

i32 _entry_read(u32 chip_id, const Block &b, u8 *out)
{
    u128 entry = 0;
    for (u32 i = 0; i < 4; i++) {
        u32 w = 0;
        const i32 rc = csl_reg_read32_logged(chip_id, b.regs.sch[i], &w);
        if (rc != 0) {
            return rc;
        }
        if (i == 0) {
            w = b.image0.get32(w);
        }
        entry = entry << kImageWordBits | w;
    }
    tide::l2mac::store(entry, out, CSL_L2_MAC_ENTRY_BYTES);
    return 0;
}

// The sequence of one command, under the lock.
i32 _run_locked(u32 chip_id, const Block &b, const Cmd &c, u8 *fail_case, u32 *return_num)
{
    u32 state = 0;
    i32 rc = _wait_finish(chip_id, b, &state);
    if (rc == SHR_E_TIMEOUT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "hash opertion timeout\n");
    }
    if (rc == 0) {
        rc = _command_write(chip_id, b, c);
    }
    if (rc == 0) {
        rc = _wait_finish(chip_id, b, &state);
        if (rc == SHR_E_TIMEOUT) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "get finish state timeout!\n");
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "operation time out!\n");
        }
    }
    if (rc != 0) {
        return rc;
    }
    // The status read that saw the operation finished is its result.
    const u32 count = b.ret_num.get32(state);
    if (return_num != nullptr) {
        *return_num = count;
    }
    if (b.fail_ind.get32(state) == 1) {
        *fail_case = static_cast<u8>(b.fail_cause.get32(state));
        SHR_LOG_DBG(chip_id, SHR_MOD_ARL, "fail case:%u  return num:%u\n", (unsigned)*fail_case, (unsigned)count);
        return SHR_E_FAIL;
    }
    *fail_case = CSL_L2_MAC_OK;
    return c.entry_out != nullptr ? _entry_read(chip_id, b, c.entry_out) : 0;
}

i32 _run(u32 chip_id, const Cmd &c, u8 *fail_case, u32 *return_num)
{
    if (fail_case == nullptr) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return SHR_E_PARAM;
    }
    const Block *b = _block(chip_id);
    if (b == nullptr) {
        return SHR_E_EMPTY;
    }
    if (c.bucket && (c.bucket_type > CSL_L2_MAC_BUCKET_CAM || c.bucket_addr > b->baddr.max())) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "bucket %u address %u out of range\n", c.bucket_type, c.bucket_addr);
        return SHR_E_PARAM;
    }
    HashGuard hold(chip_id, CSL_HASH_TYPE_L2_MAC);
    if (hold.status() != 0) {
        return hold.status();
    }
    return _run_locked(chip_id, *b, c, fail_case, return_num);
}

// The image of a key and, when given, an AD, in the chip type's layout.
u128 _image(const Block &b, const u8 *key, const u8 *ad)
{
    const Bits k{0, static_cast<u16>(b.w.key_bits)};
    const Bits a{0, static_cast<u16>(b.w.ad_bits)};
    u128 v = (tide::l2mac::load(key, (b.w.key_bits + 7) / 8) & k.mask()) << b.w.key_pos;
    if (ad != nullptr) {
        v |= tide::l2mac::load(ad, (b.w.ad_bits + 7) / 8) & a.mask();
    }
    return v;
}

// A command with an entry image: the key, and the AD when `with_ad`.
i32 _key_op(u32 chip_id, u32 op, const u8 *key, const u8 *ad, bool with_ad, Cmd c, u8 *fail_case,
            u32 *return_num)
{
    if (key == nullptr || (with_ad && ad == nullptr)) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return SHR_E_PARAM;
    }
    const Block *b = _block(chip_id);
    if (b == nullptr) {
        return SHR_E_EMPTY;
    }
    c.op = op;
    c.has_image = true;
    c.image = _image(*b, key, with_ad ? ad : nullptr);
    return _run(chip_id, c, fail_case, return_num);
}

i32 _batched(u32 chip_id, u32 op, const u8 *key, const u8 *ad, const csl_l2_mac_cmp *cmp, u8 *fail_case,
             u32 *return_num)
{
    if (cmp == nullptr) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return SHR_E_PARAM;
    }
    Cmd c;
    c.cmp = cmp;
    return _key_op(chip_id, op, key, ad, true, c, fail_case, return_num);
}

// The RAM test's comparison of what was written with what reads back.
void _ram_test_compare(u32 chip_id, const u8 *written, const u8 *read, u32 bucket, u32 addr, char *report,
                       i32 *rc)
{
    const csl_l2_mac_widths &w = _block(chip_id)->w;
    if (!shr_data_compare_by_bits(written, w.key_pos, read, w.key_pos, w.key_bits)) {
        csl_ram_bist_report(report, "Ram bist is testing l2 mac key %s(%u) failed!\n", kBucketName[bucket], addr);
        *rc = SHR_E_FAIL;
    }
    if (!shr_data_compare_by_bits(written, 0, read, 0, w.ad_bits)) {
        csl_ram_bist_report(report, "Ram bist is testing l2 mac ad %s(%u) failed!\n", kBucketName[bucket], addr);
        *rc = SHR_E_FAIL;
    }
}

// One index of the RAM test: delete at the address, insert the pattern,
// read it back and compare.
i32 _ram_test_index(u32 chip_id, u32 bar0, u32 index, u32 pattern, char *report)
{
    u32 bucket = 0, addr = 0;
    i32 rc = csl_reef_hash_l2_mac_index_to_bucket(chip_id, bar0, index, &bucket, &addr);
    if (rc != 0) {
        return rc;
    }
    u8 entry[CSL_L2_MAC_ENTRY_BYTES];
    for (u8 &byte : entry) {
        byte = pattern == CSL_BIST_RANDOM ? static_cast<u8>(csl_ram_bist_rand() >> 24)
                                          : (pattern == CSL_BIST_ONES ? 0xFF : 0);
    }
    const csl_l2_mac_widths &w = _block(chip_id)->w;
    u8 key[CSL_L2_MAC_KEY_BYTES] = {};
    u8 ad[CSL_L2_MAC_AD_BYTES] = {};
    shr_data_copy_by_bits(key, 0, entry, w.key_pos, w.key_bits);
    shr_data_copy_by_bits(ad, 0, entry, 0, w.ad_bits);
    u8 fail = 0;
    csl_reef_hash_l2_mac_appointed_hash_delete(chip_id, bucket, addr, &fail); // a miss is fine
    rc = csl_reef_hash_l2_mac_appointed_hash_insert(chip_id, key, ad, bucket, addr, &fail);
    u8 back[CSL_L2_MAC_ENTRY_BYTES] = {};
    if (rc == 0) {
        rc = csl_reef_hash_l2_mac_appointed_hash_search(chip_id, bucket, addr, back, &fail);
    }
    if (rc != 0) {
        csl_ram_bist_report(report, "Ram bist is testing l2 mac key %s(%u) failed!\n", kBucketName[bucket], addr);
        return SHR_E_FAIL;
    }
    i32 cmp = 0;
    _ram_test_compare(chip_id, entry, back, bucket, addr, report, &cmp);
    return cmp;
}

// The MAC table needs no software of its own beyond its command block and
// the layout of its records.
i32 _l2_mac_soft_init(u32 chip_id)
{
    return _block_resolve(chip_id, g_block[chip_id]) ? csl_reef_hash_l2_mac_layout_init(chip_id) : SHR_E_EMPTY;
}

i32 _ecib_soft_init(u32 chip_id)
{
    const i32 rc = csl_reef_hash_ecib_soft_init(chip_id);
    return rc != 0 ? rc : csl_reef_hash_ecib_layout_init(chip_id);
}

// A type without the tables said so at its soft step; its hardware step
// is left out without another line.
i32 _ecib_hw_init(u32 chip_id)
{
    return csl_reef_tab_info_get(chip_id, cib_epro_em_pv_ht0_tbl) == nullptr ? SHR_E_NOT_SUPPORT
                                                                            : csl_reef_hash_ecib_hw_init(chip_id);
}

// The per-type steps of the hash tables' start, for the types a chip may
// have.
struct TypeInit {
    u32 type;
    i32 (*soft)(u32);
    i32 (*hw)(u32);
};
constexpr TypeInit kTypeInits[] = {
    {CSL_HASH_TYPE_ECIB, _ecib_soft_init, _ecib_hw_init},
    {CSL_HASH_TYPE_L2_MAC, _l2_mac_soft_init, nullptr},
};

// A type's step: a failure is logged and the next type still starts.  A
// type that this chip has no tables for (-5, -24) is no failure of the
// start; any other keeps the first such status in *rc.
void _type_step(u32 chip_id, u32 type, i32 status, i32 *rc)
{
    if (status == 0) {
        return;
    }
    const bool absent = status == SHR_E_EMPTY || status == SHR_E_NOT_SUPPORT;
    if (absent) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "reef hash table %d init err %s\n", (int)type, shr_errmsg(status));
    } else {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "reef hash table %d init err %s\n", (int)type, shr_errmsg(status));
    }
    if (!absent && *rc == 0) {
        *rc = status;
    }
}

// Every row of the four exact-match tables zeroed.
i32 _ecib_clean_all(u32 chip_id)
{
    struct Kind {
        u32 kind;
        u32 tab;
        const char *text;
    };
    static const Kind kKinds[] = {
        {CSL_ECIB_CLEAN_BAR0, cib_epro_em_pv_ht0_tbl, "clean ecib bar0 ret %d\n"},
        {CSL_ECIB_CLEAN_BAR1, cib_epro_em_pv_ht1_tbl, "clean ecib bar1 ret %d\n"},
        {CSL_ECIB_CLEAN_CAM, cib_epro_em_pv_cam_tbl, "clean ecib cam ret %d\n"},
        {CSL_ECIB_CLEAN_AD, cib_epro_ecib_table, "clean ecib ad ret %d\n"},
    };
    i32 first = 0;
    for (const Kind &k : kKinds) {
        const cib_tab_info *t = csl_reef_tab_info_get(chip_id, k.tab);
        const i32 rc = t == nullptr ? SHR_E_NOT_SUPPORT : csl_reef_hash_ecib_clean(chip_id, k.kind, 0, cib_tab_depth(t) - 1);
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, k.text, (int)rc);
        first = first != 0 ? first : rc;
    }
    return first;
}

} // namespace

extern "C" {

const char *csl_reef_hash_l2_mac_fail_case_text(u32 cause)
{
    return cause < CSL_L2_MAC_DEBUG_TEXTS ? g_csl_l2_mac_fail_case_str[cause] : nullptr;
}

i32 csl_reef_hash_table_get_lock(u32 chip_id, u32 type)
{
    return _hash_lock_op(chip_id, type, xsal_mutex_lock_);
}

i32 csl_reef_hash_table_get_unlock(u32 chip_id, u32 type)
{
    return _hash_lock_op(chip_id, type, xsal_mutex_unlock_);
}

i32 csl_reef_hash_poll_bit(u32 chip_id, u32 addr, u32 bit, u32 *word, u64 *spent_us)
{
    u64 start = 0;
    *spent_us = 0;
    for (u32 poll = 0; poll < CSL_HASH_POLLS; poll++) {
        const i32 rc = csl_reg_read32_logged(chip_id, addr, word);
        if (rc != 0) {
            return rc;
        }
        if (((*word >> bit) & 1u) != 0) {
            *spent_us = poll == 0 ? 0 : xsal_time_usecs() - start;
            return 0;
        }
        if (poll == 0) {
            start = xsal_time_usecs();
        }
        xsal_udelay(CSL_HASH_POLL_US);
    }
    return SHR_E_TIMEOUT;
}

i32 csl_reef_hash_tab_soft_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    i32 rc = 0;
    for (const HashLock &l : kHashLocks) {
        if (l.table[chip_id] == nullptr) {
            l.table[chip_id] = xsal_mutex_create(l.name);
            if (l.table[chip_id] == nullptr) {
                rc = SHR_E_INIT;
            }
        }
    }
    for (const TypeInit &t : kTypeInits) {
        _type_step(chip_id, t.type, t.soft(chip_id), &rc);
    }
    return rc;
}

i32 csl_reef_hash_tab_soft_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    csl_reef_hash_ecib_soft_deinit(chip_id);
    for (const HashLock &l : kHashLocks) {
        if (l.table[chip_id] != nullptr) {
            xsal_mutex_destroy(l.table[chip_id]);
            l.table[chip_id] = nullptr;
        }
    }
    g_block[chip_id] = Block{};
    return 0;
}

i32 csl_reef_hash_tab_hw_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    // The MAC table is initialised by the L2 service through its init
    // register; the exact-match engine clears its memories here.
    i32 rc = 0;
    for (const TypeInit &t : kTypeInits) {
        if (t.hw != nullptr) {
            _type_step(chip_id, t.type, t.hw(chip_id), &rc);
        }
    }
    return rc;
}

i32 csl_reef_hash_tab_clean(u32 chip_id, const char *name)
{
    if (name == nullptr) {
        return SHR_E_PARAM;
    }
    if (strcasecmp(name, "l2_mac") == 0) {
        u8 fail = 0;
        u32 count = 0;
        return csl_reef_hash_l2_mac_destory_all_entry(chip_id, &fail, &count);
    }
    if (strcasecmp(name, "ecib") == 0) {
        return _ecib_clean_all(chip_id);
    }
    if (strcasecmp(name, "l3_mfib") == 0 || strcasecmp(name, "vrrp_mcdp") == 0) {
        return SHR_E_NOT_SUPPORT;
    }
    return SHR_E_NOT_FOUND;
}

i32 csl_reef_hash_l2_mac_appointed_insert(u32 chip_id, const u8 *key, u64 flags, const u8 *ad, u8 *fail_case)
{
    Cmd c;
    c.flags = flags;
    return _key_op(chip_id, CSL_L2_MAC_OP_INSERT, key, ad, true, c, fail_case, nullptr);
}

i32 csl_reef_hash_l2_mac_appointed_delete(u32 chip_id, const u8 *key, u8 *fail_case)
{
    return _key_op(chip_id, CSL_L2_MAC_OP_DELETE, key, nullptr, false, Cmd{}, fail_case, nullptr);
}

i32 csl_reef_hash_l2_mac_appointed_search(u32 chip_id, const u8 *key, u8 *tab_data, u8 *fail_case)
{
    if (tab_data == nullptr) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return SHR_E_PARAM;
    }
    Cmd c;
    c.entry_out = tab_data;
    return _key_op(chip_id, CSL_L2_MAC_OP_SEARCH, key, nullptr, false, c, fail_case, nullptr);
}

i32 csl_reef_hash_l2_mac_batched_delete(u32 chip_id, const u8 *key, const u8 *ad, const csl_l2_mac_cmp *cmp,
                                        u8 *fail_case, u32 *return_num)
{
    return _batched(chip_id, CSL_L2_MAC_OP_BATCH_DELETE, key, ad, cmp, fail_case, return_num);
}

i32 csl_reef_hash_l2_mac_batched_search(u32 chip_id, const u8 *key, const u8 *ad, const csl_l2_mac_cmp *cmp,
                                        u8 *fail_case, u32 *return_num)
{
    return _batched(chip_id, CSL_L2_MAC_OP_BATCH_SEARCH, key, ad, cmp, fail_case, return_num);
}

i32 csl_reef_hash_l2_mac_appointed_hash_insert(u32 chip_id, const u8 *key, const u8 *ad, u32 bucket_type,
                                               u32 bucket_addr, u8 *fail_case)
{
    return _key_op(chip_id, CSL_L2_MAC_OP_HASH_INSERT, key, ad, true,
                   _bucket_cmd(CSL_L2_MAC_OP_HASH_INSERT, bucket_type, bucket_addr, nullptr), fail_case, nullptr);
}

i32 csl_reef_hash_l2_mac_appointed_hash_delete(u32 chip_id, u32 bucket_type, u32 bucket_addr, u8 *fail_case)
{
    return _run(chip_id, _bucket_cmd(CSL_L2_MAC_OP_HASH_DELETE, bucket_type, bucket_addr, nullptr), fail_case,
                nullptr);
}

i32 csl_reef_hash_l2_mac_appointed_hash_search(u32 chip_id, u32 bucket_type, u32 bucket_addr, u8 *tab_data,
                                               u8 *fail_case)
{
    if (tab_data == nullptr) {
        SHR_LOG_ERRCODE(chip_id, SHR_E_PARAM);
        return SHR_E_PARAM;
    }
    return _run(chip_id, _bucket_cmd(CSL_L2_MAC_OP_HASH_SEARCH, bucket_type, bucket_addr, tab_data), fail_case,
                nullptr);
}

i32 csl_reef_hash_l2_mac_destory_all_entry(u32 chip_id, u8 *fail_case, u32 *return_num)
{
    const u8 zeros[CSL_L2_MAC_ENTRY_BYTES] = {};
    const csl_l2_mac_cmp none{};
    return csl_reef_hash_l2_mac_batched_delete(chip_id, zeros, zeros, &none, fail_case, return_num);
}

i32 csl_reef_hash_l2_mac_scope_get(u32 chip_id, u32 *bar0_entries, u32 *bar1_entries)
{
    if (bar0_entries == nullptr || bar1_entries == nullptr) {
        return SHR_E_PARAM;
    }
    const u32 type = shr_chip_type_get(chip_id);
    if (type != SHR_CHIP_TYPE_ATOLREEF && type != SHR_CHIP_TYPE_KELPREEF && type != SHR_CHIP_TYPE_KELPREEF2) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "ERR: not support chip type\n");
        return SHR_E_UNIT;
    }
    cib_lsw_hreg_fbm_share_ram_cfg_t share{};
    i32 rc = csl_reef_cib_lsw_hreg_fbm_share_ram_cfg_get(chip_id, 0, &share);
    if (rc != 0) {
        return rc;
    }
    bool doubled = share.fbm_share_ram_cfg == 1;
    if (type == SHR_CHIP_TYPE_ATOLREEF) {
        // atolreef doubles bar0 only when its table takes the shared RAM too.
        cib_arl_arl_glb_cfg_t glb{};
        rc = csl_reef_cib_arl_arl_glb_cfg_get(chip_id, 0, &glb);
        if (rc != 0) {
            return rc;
        }
        doubled = doubled && glb.ram_share_mode == 1;
        *bar0_entries = doubled ? 16384 : 8192;
        *bar1_entries = 2048;
    } else {
        *bar0_entries = doubled ? 65536 : 32768;
        *bar1_entries = 4096;
    }
    return 0;
}

i32 csl_reef_hash_l2_mac_scope_judge(u32 chip_id, u32 bucket_type, u32 addr)
{
    if (bucket_type > CSL_L2_MAC_BUCKET_CAM) {
        csl_output_func(chip_id, 0, "not support bucket type\n");
        return SHR_E_PARAM;
    }
    u32 size[3] = {0, 0, CSL_L2_MAC_CAM_ENTRIES};
    const i32 rc = csl_reef_hash_l2_mac_scope_get(chip_id, &size[0], &size[1]);
    if (rc != 0) {
        return rc;
    }
    if (addr >= size[bucket_type]) {
        static const char *const kFmt[3] = {"ERR: L2_MAC bar0 max entry index %d\n",
                                            "ERR: L2_MAC bar1 max entry index %d\n",
                                            "ERR: L2_MAC cam max entry index %d\n"};
        csl_output_func(chip_id, 0, kFmt[bucket_type], (int)(size[bucket_type] - 1));
        return SHR_E_PARAM;
    }
    return 0;
}

i32 csl_reef_hash_l2_mac_index_to_bucket(u32 chip_id, u32 bar0_entries, u32 index, u32 *bucket_type,
                                         u32 *bucket_addr)
{
    const u32 type = shr_chip_type_get(chip_id);
    const u32 bar1 = type == SHR_CHIP_TYPE_ATOLREEF ? 2048 : 4096;
    if (index < bar0_entries) {
        *bucket_type = CSL_L2_MAC_BUCKET_BAR0;
        *bucket_addr = index;
    } else if (index - bar0_entries < bar1) {
        *bucket_type = CSL_L2_MAC_BUCKET_BAR1;
        *bucket_addr = index - bar0_entries;
    } else if (index - bar0_entries - bar1 < CSL_L2_MAC_CAM_ENTRIES) {
        *bucket_type = CSL_L2_MAC_BUCKET_CAM;
        *bucket_addr = index - bar0_entries - bar1;
    } else {
        return SHR_E_PARAM;
    }
    return 0;
}

i32 csl_reef_hash_table_test(u32 chip_id, u32 use_sample, char *out, u32 out_len)
{
    if (out == nullptr && out_len > 0) {
        return SHR_E_NULL_PTR;
    }
    if (_block(chip_id) == nullptr) {
        return SHR_E_EMPTY;
    }
    u32 bar0 = 0, bar1 = 0;
    i32 rc = csl_reef_hash_l2_mac_scope_get(chip_id, &bar0, &bar1);
    if (rc != 0) {
        return rc;
    }
    CslHeapBytes text(CSL_RAM_BIST_TEXT_BYTES, "RAM bist test");
    if (text.get() == nullptr) {
        return SHR_E_MEMORY;
    }
    char *report = reinterpret_cast<char *>(text.get());
    const u32 last = bar0 + bar1 + CSL_L2_MAC_CAM_ENTRIES - 1;
    for (u32 pattern : {CSL_BIST_RANDOM, CSL_BIST_ONES, CSL_BIST_ZEROS}) {
        for (u32 index = 0; index <= last; index = use_sample && index < last ? last : index + 1) {
            rc |= _ram_test_index(chip_id, bar0, index, pattern, report);
        }
    }
    // Every index now holds a test entry: leave the table empty.
    u8 fail = 0;
    u32 count = 0;
    rc |= csl_reef_hash_l2_mac_destory_all_entry(chip_id, &fail, &count);
    csl_ram_bist_report(report, "Ram bist is testing l2 mac done!\n");
    if (out_len > 0) {
        snprintf(out, out_len, "%s", report);
    }
    return rc != 0 ? SHR_E_FAIL : 0;
}

} // extern "C"
