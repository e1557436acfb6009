/*
 * The exact-match hash engine of the egress translation (hash type 2,
 * "ECIB").
 *
 * Unlike the MAC table, this engine is placed by software: the SDK computes
 * the two bucket rows of a key itself, walks its images of the tables,
 * picks the place and writes it.  The chip is only asked to write, read
 * and search rows through a small command block.
 *
 * Memories: two barrels of unequal depth (rows of 4 slots), a small CAM for
 * overflow (one slot a row) and one table of action data (AD) that barrels
 * and CAM share.  A slot holds the key (its low `key_bits`), the AD row of
 * the entry at `ad_start` and a valid bit at the top.
 *
 * Buffers are in the bit order of the field helpers (bit n is bit n % 8 of
 * byte n / 8): a key image holds the key's bits from 0, an AD image the
 * AD row, a row image a whole barrel or CAM row.
 */
#ifndef TIDE_CSL_REEF_HASH_ECIB_H
#define TIDE_CSL_REEF_HASH_ECIB_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The geometry of the engine by chip type, so that one engine serves all
 * types. */
typedef struct csl_ecib_hw_info {
    u32 ad_row_bits;        /* bits of an AD row */
    u32 hash_id_bits;       /* bits of the hash id */
    u32 port_start;         /* `portid_trunkid` in a slot */
    u32 port_width;
    u32 trunk_flag_start;   /* `trunk_flag` in a slot */
    u32 trunk_flag_width;
    u32 ad_start;           /* `ad` in a slot */
    u32 ad_width;
    u32 key_bits;           /* the key: a slot's bits below `ad_start` */
    u32 key_fields_bits;    /* key and `ad` */
    u32 search_field_width; /* AD index in a search result word */
    u32 slot_bits;          /* key, `ad` and the valid bit */
    u32 barrel_row_bits;    /* 4 slots */
    u32 cam_row_bits;       /* 1 slot */
    u32 ad_entries;         /* AD rows */
} csl_ecib_hw_info;

/* By chip type: none, kelpreef, kelpreef2, atolreef, unknown. */
extern const csl_ecib_hw_info g_ecib_hw_info[5];

/* Software state per chip: one bit per AD row in 64-bit words (1 in use),
 * one byte per AD row (1 in use), and the AD row count. */
extern u64 *g_ecib_ad_tbl_bitmap[SHR_MAX_CHIPS];
extern u8 *g_ecib_used_entry_info[SHR_MAX_CHIPS];
extern u32 g_ecib_entry_size[SHR_MAX_CHIPS];

/* Slots of a barrel row. */
#define CSL_ECIB_SLOTS 4u
/* Bytes of a row image (the six data words of the command block), of a
 * key image and of an AD image. */
#define CSL_ECIB_ROW_BYTES 24u
#define CSL_ECIB_KEY_BYTES 8u
#define CSL_ECIB_AD_BYTES 8u

/* Kinds of csl_reef_hash_ecib_clean. */
#define CSL_ECIB_CLEAN_BAR0 4u
#define CSL_ECIB_CLEAN_BAR1 5u
#define CSL_ECIB_CLEAN_CAM 6u
#define CSL_ECIB_CLEAN_AD 7u

/* Internal table numbers of the hardware commands: the opcode of a
 * command is its number less CSL_ECIB_TAB_WRITE_BAR0.  The AD table is read
 * directly. */
enum csl_ecib_hw_tab {
    CSL_ECIB_TAB_WRITE_BAR0 = 17,
    CSL_ECIB_TAB_WRITE_BAR1 = 18,
    CSL_ECIB_TAB_WRITE_CAM = 19,
    CSL_ECIB_TAB_READ_BAR0 = 20,
    CSL_ECIB_TAB_READ_BAR1 = 21,
    CSL_ECIB_TAB_READ_CAM = 22,
    CSL_ECIB_TAB_SEARCH = 23,
    CSL_ECIB_TAB_AD = 24
};

/* Search modes. */
#define CSL_ECIB_SEARCH_HARD 0u
#define CSL_ECIB_SEARCH_SOFT 1u

/* Where a search found a key: `hit_type` 1 CAM, 2 barrel 0, 3 barrel 1;
 * the row, the AD row of the entry and its slot (0 in the CAM). */
#define CSL_ECIB_HIT_CAM 1u
#define CSL_ECIB_HIT_BAR0 2u
#define CSL_ECIB_HIT_BAR1 3u
typedef struct csl_ecib_search_result {
    u32 hit_type;
    u32 index;
    u32 ad_index;
    u8 slot;
} csl_ecib_search_result;

/* The key of an entry; the mask selects fields by bits 0..4 in this
 * order. */
typedef struct ecib_key {
    u8 tid;
    u8 trunk_flag;
    u8 portid_trunkid;
    u16 ovid;
    u16 ivid_opri;
} ecib_key;
#define ECIB_KEY_FIELDS 5u

/* The action of an entry (an AD row); the two-byte mask selects fields by
 * bits 0..7 of the first byte and 0..2 of the second, in this order. */
typedef struct ecib_ad {
    u8 vld;
    u16 ivid;
    u16 ovid;
    u8 outer_pri;
    u8 outer_cfi;
    u8 inner_pri;
    u8 inner_cfi;
    u8 vlan_opc;
    u8 multi_mapping_flag;
    u8 dpid_en;
    u8 dpid;
} ecib_ad;
#define ECIB_AD_FIELDS 11u
#define ECIB_AD_MASK_BYTES 2u

/* A range of places by flat index (barrel 0 as row * 4 + slot, then
 * barrel 1, then the CAM rows), and what a read of it found. */
typedef struct csl_ecib_range {
    u32 min;
    u32 max;
    u32 found; /* out: records filled */
    u32 last;  /* out: the last index read */
} csl_ecib_range;

/* One entry of a range read. */
typedef struct ecib_entry {
    ecib_key key;
    ecib_ad ad;
    u32 index; /* flat index of its place */
} ecib_entry;

/* ---- the engine ------------------------------------------------------------ */

/* Software state of a chip (the AD bitmap and used bytes, the command
 * block's registers); -24 for a chip type whose tables this build does not
 * describe. */
i32 csl_reef_hash_ecib_soft_init(u32 chip_id);
i32 csl_reef_hash_ecib_soft_deinit(u32 chip_id);
/* Clears the chip's memories (init start, bounded wait for init done) and
 * sets the algorithms 0 and 1 without rotation. */
i32 csl_reef_hash_ecib_hw_init(u32 chip_id);

/* Inserts a key image with an AD image.  0; -8 when the key exists (only
 * its AD row is rewritten); -25 when both barrel rows were full and the
 * entry went to the CAM; -6 when the AD table or the CAM is full; -15 for
 * equal barrel algorithms.  `force` puts the entry in the CAM. */
i32 csl_reef_hash_ecib_insert(u32 chip_id, const u8 *key, const u8 *ad, u32 force);
/* 0; -7 "delete not hit!\n". */
i32 csl_reef_hash_ecib_delete(u32 chip_id, const u8 *key);
/* Mode CSL_ECIB_SEARCH_HARD asks the chip, CSL_ECIB_SEARCH_SOFT reads the
 * images.  0 with the place; -7 when the key is absent. */
i32 csl_reef_hash_ecib_search(u32 chip_id, u32 mode, const u8 *key, csl_ecib_search_result *result);
/* Reads the entries of a range of flat indexes from the chip into
 * `records` (room for max - min + 1). */
i32 csl_reef_ecib_range_get(u32 chip_id, csl_ecib_range *range, ecib_entry *records);
/* Zeroes rows `first` to `last` of a kind (4 barrel 0, 5 barrel 1, 6 CAM,
 * 7 AD) in image and chip; AD rows are also freed. */
i32 csl_reef_hash_ecib_clean(u32 chip_id, u32 kind, u32 first, u32 last);
/* AD rows, those in use and their indexes (`used_list`, room for the AD
 * row count, may be NULL). */
i32 csl_reef_hash_ecib_get_entry_size(u32 chip_id, u32 *entry_count, u32 *used_count, u32 *used_list);
/* Flat places of the barrels and the CAM: 772 on atolreef. */
i32 csl_reef_hash_ecib_place_count(u32 chip_id, u32 *places);

/* The hardware commands.  A write or read of one row of a barrel or the
 * CAM by its internal table number (17 to 22), or of the AD table (24,
 * read only); `len` bytes of at least CSL_ECIB_ROW_BYTES for the command
 * block's rows.  -9 when the chip does not finish. */
i32 csl_reef_hash_ecib_hard_table_write(u32 chip_id, u32 tab, u32 index, const u8 *data, u32 len);
i32 csl_reef_hash_ecib_hard_table_read(u32 chip_id, u32 tab, u32 index, u8 *data, u32 len);

/* 0 when `first` to `last` lie in the table; -4 otherwise. */
i32 csl_reef_judge_index_scope(u32 chip_id, u32 tab_id, u32 first, u32 last);

/* The bucket rows of a key image under the current algorithms; -15 for
 * equal algorithms. */
i32 csl_reef_hash_ecib_bar_index(u32 chip_id, const u8 *key, u32 *bar0, u32 *bar1);

/* ---- records (the wrappers take the type 2 lock around their
 * conversions too) ---------------------------------------------------------- */

/* Finds the records' fields in the chip's catalogue; -5 when it has no
 * exact-match tables.  Run when the chip's hash tables start. */
i32 csl_reef_hash_ecib_layout_init(u32 chip_id);

/* Record to image and back; -5 when the chip has no such table, -21 for a
 * value wider than its field. */
i32 csl_reef_hash_ecib_key_TO_data(u32 chip_id, const ecib_key *key, u8 *data, const u8 *mask);
i32 csl_reef_hash_data_TO_ecib_key(u32 chip_id, ecib_key *key, const u8 *data);
i32 csl_reef_hash_ecib_ad_TO_data(u32 chip_id, const ecib_ad *ad, u8 *data, const u8 *mask);
i32 csl_reef_hash_data_TO_ecib_ad(u32 chip_id, ecib_ad *ad, const u8 *data);

/* As csl_reef_hash_ecib_insert, not forced. */
i32 csl_reef_hash_ecib_add(u32 chip_id, const ecib_key *key, const u8 *key_mask, const ecib_ad *ad,
                           const u8 *ad_mask);
i32 csl_reef_hash_ecib_del(u32 chip_id, const ecib_key *key);
/* A search (hard or soft), then the entry's AD row read from the chip. */
i32 csl_reef_hash_ecib_tbl_search_hard(u32 chip_id, const ecib_key *key, ecib_ad *ad,
                                       csl_ecib_search_result *result);
i32 csl_reef_hash_ecib_tbl_search_soft(u32 chip_id, const ecib_key *key, ecib_ad *ad,
                                       csl_ecib_search_result *result);

/* ---- the doors of every hash type ------------------------------------------- */

/* Type 2 reaches this engine; types 0 and 1 give -24, others -4. */
i32 csl_reef_hash_tab_insert(u32 chip_id, u32 type, const u8 *key, const u8 *ad, u32 force);
i32 csl_reef_hash_tab_search(u32 chip_id, u32 type, u32 mode, const u8 *key, csl_ecib_search_result *result);
i32 csl_reef_hash_tab_delete(u32 chip_id, u32 type, const u8 *key);
/* Barrel algorithms (0 to 3) and the rotation of type 2: written to
 * `epro_em_hash_mode` and kept.  Types 0, 1 and 3 give -24, others -4. */
i32 csl_reef_hash_alg_mode_set(u32 chip_id, u32 type, u32 bar0_alg, u32 bar1_alg, u32 left_shift);
i32 csl_reef_hash_alg_mode_get(u32 chip_id, u32 type, u32 *bar0_alg, u32 *bar1_alg, u32 *left_shift);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_HASH_ECIB_H */
