/*
 * The hash tables of the chip and the driver of the MAC table's command
 * block.
 *
 * The MAC table (hash type 3) is operated by the chip itself: software
 * writes a 128-bit entry image into four command words, starts an
 * operation in a fifth and polls a status word until the chip reports
 * finished, with a fail cause and a count.  Software keeps no image of the
 * table.  One recursive mutex per chip and hash type serialises whole
 * command sequences.
 *
 * Data buffers are in the bit order of the field helpers (bit n is bit
 * n % 8 of byte n / 8).  A key buffer holds the key in the layout of
 * `arl_em_mac_tbl_key`, an AD buffer the low AD bits of an entry, and an
 * entry buffer (CSL_L2_MAC_ENTRY_BYTES) a whole 128-bit entry.
 */
#ifndef TIDE_CSL_REEF_HASH_TAB_OP_H
#define TIDE_CSL_REEF_HASH_TAB_OP_H

#include "csl/reef/reg_tbl/csl_reef_cib.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Hash table types, as "table type:%u  (0:L3 MFIB 1:VRRP/MC_DROP
 * 2:ECIB_KEY0/1 3:L2 MAC)" names them. */
#define CSL_HASH_TYPE_L3_MFIB 0u
#define CSL_HASH_TYPE_VRRP_MCDP 1u
#define CSL_HASH_TYPE_ECIB 2u
#define CSL_HASH_TYPE_L2_MAC 3u
#define CSL_HASH_TYPE_COUNT 4u

/* Operations of the command block (`cpuop_type`). */
enum csl_l2_mac_op {
    CSL_L2_MAC_OP_INSERT = 0,       /* insert by key */
    CSL_L2_MAC_OP_DELETE = 1,       /* delete by key */
    CSL_L2_MAC_OP_SEARCH = 2,       /* search by key, returns the entry */
    CSL_L2_MAC_OP_BATCH_DELETE = 3, /* walk the table, delete the matches */
    CSL_L2_MAC_OP_BATCH_SEARCH = 4, /* walk the table, count the matches */
    CSL_L2_MAC_OP_HASH_DELETE = 5,  /* delete at bucket and address */
    CSL_L2_MAC_OP_HASH_INSERT = 6,  /* insert at bucket and address, verbatim */
    CSL_L2_MAC_OP_HASH_SEARCH = 7   /* read at bucket and address */
};

/* Fail causes (`cpuop_fail_cause`); 1 and 2 are successes. */
enum csl_l2_mac_cause {
    CSL_L2_MAC_OK = 0,
    CSL_L2_MAC_STATIC_PREEMPT = 1,
    CSL_L2_MAC_KEY_COVERED = 2,
    CSL_L2_MAC_INSERT_FAILED = 3,
    CSL_L2_MAC_COVER_FAILED = 4,
    CSL_L2_MAC_DELETE_MISS = 5,
    CSL_L2_MAC_SEARCH_MISS = 6,
    CSL_L2_MAC_BARREL_FULL = 7,
    CSL_L2_MAC_GLOBAL_LIMIT = 8,
    CSL_L2_MAC_PORT_LIMIT = 9,
    CSL_L2_MAC_CAUSE_COUNT = 10
};

/* The debug texts of the causes 0 to 7; causes 8 and 9 have none. */
#define CSL_L2_MAC_DEBUG_TEXTS 8u
extern const char *const g_csl_l2_mac_fail_case_str[CSL_L2_MAC_DEBUG_TEXTS];
/* The debug text of a cause, or NULL for one without. */
const char *csl_reef_hash_l2_mac_fail_case_text(u32 cause);

/* Buckets of the table and their linear order for every walker: bar0,
 * bar1, cam. */
#define CSL_L2_MAC_BUCKET_BAR0 0u
#define CSL_L2_MAC_BUCKET_BAR1 1u
#define CSL_L2_MAC_BUCKET_CAM 2u
#define CSL_L2_MAC_CAM_ENTRIES 4u

/* Bytes of a whole entry, of a key buffer and of an AD buffer. */
#define CSL_L2_MAC_ENTRY_BYTES 16u
#define CSL_L2_MAC_KEY_BYTES 12u
#define CSL_L2_MAC_AD_BYTES 8u

/* Insert flags: byte 0 `replace_sta_flag`, byte 1 `replace_dyn_flag`, byte 2
 * `grap_flag`.  A byte of 1 sets the flag in the command word, 0 clears
 * it, CSL_L2_MAC_FLAG_KEEP leaves the policy the register holds. */
#define CSL_L2_MAC_FLAG_KEEP 0xFFu
#define CSL_L2_MAC_FLAGS(sta, dyn, grab) ((u64)(u8)(sta) | (u64)(u8)(dyn) << 8 | (u64)(u8)(grab) << 16)
#define CSL_L2_MAC_FLAGS_KEEP CSL_L2_MAC_FLAGS(CSL_L2_MAC_FLAG_KEEP, CSL_L2_MAC_FLAG_KEEP, CSL_L2_MAC_FLAG_KEEP)

/* Compare selection of the batched operations: a byte of 1 compares that
 * field, any other value leaves it out.  `sport` has no effect. */
typedef struct csl_l2_mac_cmp {
    u8 remote;
    u8 sport;
    u8 gid;
    u8 lrnclass;
    u8 ovlan;
    u8 opcode; /* the destination: opcode with learn_data */
    u8 mac;    /* the key value: MAC or IP digest */
    u8 vsiid;  /* the key VLAN */
    u8 stati;
} csl_l2_mac_cmp;

/* Sizes of the chip type's entry: bits of the key and of the AD, the key's
 * position in the image, and the `valid` bit inside the top command word. */
typedef struct csl_l2_mac_widths {
    u32 key_bits;
    u32 ad_bits;
    u32 key_pos;
    u32 valid_bit;
} csl_l2_mac_widths;
extern const csl_l2_mac_widths g_csl_l2_mac_widths[5];

/* Register addresses of the command block. */
typedef struct csl_l2_mac_regs {
    u32 cfg;
    u32 mac[4];
    u32 sch[4];
    u32 state;
} csl_l2_mac_regs;

/* Polls of a wait for a hash engine's command block, and the busy delay
 * between them: about 24 ms in all. */
#define CSL_HASH_POLLS 8000u
#define CSL_HASH_POLL_US 3

/* ---- locks and set-up --------------------------------------------------------- */

extern xsal_mutex_t g_reef_hash_l3_mfib_lock[SHR_MAX_CHIPS];
extern xsal_mutex_t g_reef_hash_vrrp_mcdp_lock[SHR_MAX_CHIPS];
extern xsal_mutex_t g_reef_hash_epro_lock[SHR_MAX_CHIPS];
extern xsal_mutex_t g_reef_hash_l2_mac_lock[SHR_MAX_CHIPS];

/* 0; -4 for a type above 3; -17 when the mutex does not exist. */
i32 csl_reef_hash_table_get_lock(u32 chip_id, u32 type);
i32 csl_reef_hash_table_get_unlock(u32 chip_id, u32 type);

/* Polls the register at `addr` until bit `bit` reads 1: at most
 * CSL_HASH_POLLS reads with a busy delay of CSL_HASH_POLL_US between them.
 * 0 with the last word read and the time spent waiting; -9 when the bit
 * never came; a failed read's status. */
i32 csl_reef_hash_poll_bit(u32 chip_id, u32 addr, u32 bit, u32 *word, u64 *spent_us);

i32 csl_reef_hash_tab_soft_init(u32 chip_id);
i32 csl_reef_hash_tab_soft_deinit(u32 chip_id);
i32 csl_reef_hash_tab_hw_init(u32 chip_id);
/* "l2_mac" empties the MAC table; -24 for the tables this build does not
 * clean, -7 for an unknown name, -4 for NULL. */
i32 csl_reef_hash_tab_clean(u32 chip_id, const char *name);

/* ---- the command block ------------------------------------------------------------ */

i32 csl_reef_hash_l2_mac_appointed_insert(u32 chip_id, const u8 *key, u64 flags, const u8 *ad, u8 *fail_case);
i32 csl_reef_hash_l2_mac_appointed_delete(u32 chip_id, const u8 *key, u8 *fail_case);
/* `tab_data` receives the whole entry (CSL_L2_MAC_ENTRY_BYTES). */
i32 csl_reef_hash_l2_mac_appointed_search(u32 chip_id, const u8 *key, u8 *tab_data, u8 *fail_case);
i32 csl_reef_hash_l2_mac_batched_delete(u32 chip_id, const u8 *key, const u8 *ad, const csl_l2_mac_cmp *cmp,
                                        u8 *fail_case, u32 *return_num);
i32 csl_reef_hash_l2_mac_batched_search(u32 chip_id, const u8 *key, const u8 *ad, const csl_l2_mac_cmp *cmp,
                                        u8 *fail_case, u32 *return_num);
i32 csl_reef_hash_l2_mac_appointed_hash_insert(u32 chip_id, const u8 *key, const u8 *ad, u32 bucket_type,
                                               u32 bucket_addr, u8 *fail_case);
i32 csl_reef_hash_l2_mac_appointed_hash_delete(u32 chip_id, u32 bucket_type, u32 bucket_addr, u8 *fail_case);
i32 csl_reef_hash_l2_mac_appointed_hash_search(u32 chip_id, u32 bucket_type, u32 bucket_addr, u8 *tab_data,
                                               u8 *fail_case);
/* A batched delete with every compare off: empties the table. */
i32 csl_reef_hash_l2_mac_destory_all_entry(u32 chip_id, u8 *fail_case, u32 *return_num);

/* Entries of bar0 and bar1; -3 for a chip type without a MAC table. */
i32 csl_reef_hash_l2_mac_scope_get(u32 chip_id, u32 *bar0_entries, u32 *bar1_entries);
/* 0 when `addr` lies in the bucket, else -4 with a line to the shell. */
i32 csl_reef_hash_l2_mac_scope_judge(u32 chip_id, u32 bucket_type, u32 addr);
/* Bucket and address of a linear index, for a bar0 of `bar0_entries`;
 * -4 past the end of the table. */
i32 csl_reef_hash_l2_mac_index_to_bucket(u32 chip_id, u32 bar0_entries, u32 index, u32 *bucket_type,
                                         u32 *bucket_addr);

/* The whole-table memory test through the bucket operations: patterns
 * random, ones, zeros at every index (the first and last only with
 * `use_sample`).  The report goes to `out`, cut to out_len - 1; -11 when an
 * entry does not read back.  The table is empty afterwards. */
i32 csl_reef_hash_table_test(u32 chip_id, u32 use_sample, char *out, u32 out_len);


#ifdef __cplusplus
}

#include <cstring>

#include "csl/reef/reg_tbl/csl_reef_cib.h"

/* ---- the entry as one 128-bit number ------------------------------------------- */

namespace tide::hash {

/* Holds a hash type's mutex for a scope; status() is the lock's result,
 * and nothing was taken unless it is 0. */
class HashGuard {
public:
    HashGuard(u32 chip_id, u32 type) : chip_(chip_id), type_(type), rc_(csl_reef_hash_table_get_lock(chip_id, type)) {}
    ~HashGuard()
    {
        if (rc_ == 0) {
            csl_reef_hash_table_get_unlock(chip_, type_);
        }
    }
    HashGuard(const HashGuard &) = delete;
    HashGuard &operator=(const HashGuard &) = delete;
    i32 status() const { return rc_; }

private:
    u32 chip_;
    u32 type_;
    i32 rc_;
};

} // namespace tide::hash

namespace tide::l2mac {

using u128 = unsigned __int128;

/* A field of an entry, a register or a key: its lowest bit and width. */
using Bits = tide::cib::Bits;

/* A field of a register or of a table's entry in the chip's catalogue;
 * an empty Bits when there is none of that name. */
inline Bits reg_field(const cib_reg_info *reg, const char *name)
{
    for (u32 i = 0; reg != nullptr && name != nullptr && i < reg->field_count; i++) {
        if (strcmp(reg->fields[i].name, name) == 0) {
            return Bits{reg->fields[i].low_bit, reg->fields[i].width};
        }
    }
    return Bits{};
}
inline Bits tab_field(const cib_tab_info *tab, const char *name)
{
    if (tab == nullptr || tab->modes == nullptr || name == nullptr) {
        return Bits{};
    }
    const cib_tab_mode &m = tab->modes[0];
    for (u32 i = 0; i < m.field_count; i++) {
        if (strcmp(m.fields[i].name, name) == 0) {
            return Bits{m.fields[i].low_bit, m.fields[i].width};
        }
    }
    return Bits{};
}

/* Bytes in the field helpers' bit order to a number and back. */
inline u128 load(const u8 *data, u32 bytes)
{
    u128 v = 0;
    for (u32 i = bytes; i-- > 0;) {
        v = v << 8 | data[i];
    }
    return v;
}
inline void store(u128 v, u8 *data, u32 bytes)
{
    for (u32 i = 0; i < bytes; i++) {
        data[i] = static_cast<u8>(v >> (8 * i));
    }
}

} // namespace tide::l2mac
#endif

#endif /* TIDE_CSL_REEF_HASH_TAB_OP_H */
