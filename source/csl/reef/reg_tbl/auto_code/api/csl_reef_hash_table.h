/*
 * The records of the MAC table at the engine's level, their conversion
 * into the data buffers of the command block, and the calls that take
 * records: add, delete, search, batched delete and search.
 *
 * Each record travels with a field mask: bit n (eight fields a byte, from
 * the first field) says that field n is written into the data; fields
 * with a clear bit stay 0.  A NULL mask takes every field.  Fields that
 * the chip's catalogue does not have are carried and have no effect.
 */
#ifndef TIDE_CSL_REEF_HASH_TABLE_H
#define TIDE_CSL_REEF_HASH_TABLE_H

#include "csl/reef/reg_tbl/csl_reef_hash_tab_op.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The key: bits of `arl_em_mac_tbl_key`. */
typedef struct csl_l2_mac_key {
    u8 iptype;   /* 0 MAC or IPv4, 1 IPv6 */
    u8 keymode;  /* 0 MAC + VLAN, 1 DIP + VLAN, 2 DIP + SIP, 3 DIP + SIP + VLAN */
    u16 vlanid;
    u64 mac_ip;  /* a MAC in bits 63..16, or an IP digest */
    u32 unused0; /* keys of the other chips of the family */
    u32 unused1;
    u32 unused2;
} csl_l2_mac_key;

enum csl_l2_mac_key_field {
    CSL_L2_MAC_KEY_IPTYPE = 0,
    CSL_L2_MAC_KEY_KEYMODE = 1,
    CSL_L2_MAC_KEY_VLANID = 2,
    CSL_L2_MAC_KEY_MAC_IP = 3,
    CSL_L2_MAC_KEY_FIELDS = 7
};

/* The AD: the entry without its key, and the insert flags. */
typedef struct csl_l2_mac_ad {
    u8 valid;
    u8 stati; /* 1 static */
    u8 age_cnt;
    u8 opcode; /* kind of destination */
    u16 learn_data;
    u16 outer_vlanid;
    u8 lrnclass;
    u8 gid;
    u8 dst_blk_list;
    u8 src_blk_list;
    u8 remote; /* no field on atolreef */
    u8 tagnum; /* no field on atolreef */
    u8 replace_sta_flag;
    u8 replace_dyn_flag;
    u8 grap_flag;
} csl_l2_mac_ad;

enum csl_l2_mac_ad_field {
    CSL_L2_MAC_AD_VALID = 0,
    CSL_L2_MAC_AD_STATI = 1,
    CSL_L2_MAC_AD_AGE_CNT = 2,
    CSL_L2_MAC_AD_OPCODE = 3,
    CSL_L2_MAC_AD_LEARN_DATA = 4,
    CSL_L2_MAC_AD_OUTER_VLANID = 5,
    CSL_L2_MAC_AD_LRNCLASS = 6,
    CSL_L2_MAC_AD_GID = 7,
    CSL_L2_MAC_AD_DST_BLK_LIST = 8,
    CSL_L2_MAC_AD_SRC_BLK_LIST = 9,
    CSL_L2_MAC_AD_REMOTE = 10,
    CSL_L2_MAC_AD_TAGNUM = 11,
    CSL_L2_MAC_AD_REPLACE_STA = 12,
    CSL_L2_MAC_AD_REPLACE_DYN = 13,
    CSL_L2_MAC_AD_GRAP = 14,
    CSL_L2_MAC_AD_FIELDS = 15
};
#define CSL_L2_MAC_AD_MASK_BYTES 2u

/* Finds the fields of the records in the chip's catalogue; -5 when it has
 * no MAC table.  Run when the chip's hash tables start. */
i32 csl_reef_hash_l2_mac_layout_init(u32 chip_id);

/* Record to data (a key buffer or an AD buffer) and back; the AD comes
 * back from a whole entry.  -5 when the chip's catalogue has no MAC table,
 * -21 for a value wider than its field. */
i32 csl_reef_hash_l2_mac_key_TO_data(u32 chip_id, const csl_l2_mac_key *key, u8 *data, const u8 *mask);
i32 csl_reef_hash_data_TO_l2_mac_key(u32 chip_id, csl_l2_mac_key *key, const u8 *data);
i32 csl_reef_hash_l2_mac_ad_TO_data(u32 chip_id, const csl_l2_mac_ad *ad, u8 *data, const u8 *mask);
i32 csl_reef_hash_data_TO_l2_mac_ad(u32 chip_id, csl_l2_mac_ad *ad, const u8 *entry);
/* The key of a whole entry. */
i32 csl_reef_hash_entry_TO_l2_mac_key(u32 chip_id, csl_l2_mac_key *key, const u8 *entry);

/* Insert.  The insert flags whose mask bits are clear keep the policy of
 * the command word. */
i32 csl_reef_hash_l2_mac_add(u32 chip_id, const csl_l2_mac_key *key, const u8 *key_mask, const csl_l2_mac_ad *ad,
                             const u8 *ad_mask, u8 *fail_case);
i32 csl_reef_hash_l2_mac_del(u32 chip_id, const csl_l2_mac_key *key, u8 *fail_case);
/* Search by key; `ad` receives the entry's AD. */
i32 csl_reef_hash_l2_mac_tbl_search_hard(u32 chip_id, const csl_l2_mac_key *key, csl_l2_mac_ad *ad, u8 *fail_case);
i32 csl_reef_hash_l2_mac_tbl_batched_delete(u32 chip_id, const csl_l2_mac_key *key, const csl_l2_mac_ad *ad,
                                            const u8 *ad_mask, const csl_l2_mac_cmp *cmp, u8 *fail_case,
                                            u32 *return_num);
i32 csl_reef_hash_l2_mac_tbl_batched_search(u32 chip_id, const csl_l2_mac_key *key, const csl_l2_mac_ad *ad,
                                            const u8 *ad_mask, const csl_l2_mac_cmp *cmp, u8 *fail_case,
                                            u32 *return_num);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_HASH_TABLE_H */
