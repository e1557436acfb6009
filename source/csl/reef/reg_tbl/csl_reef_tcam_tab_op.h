/*
 * The entry layer of the TCAM: every TCAM table of the chip (ingress,
 * egress, CPU and VLAN ACLs, VLAN translation, packet analysis, IP source
 * guard) lives in the shared blocks of acl_core, and this layer writes,
 * reads, invalidates and searches one entry of any of them.
 *
 * A block row has a data plane, a care plane, a valid bit and a 96-bit
 * action row.  Key and mask are stored as (x, y) = (mask & ~key, mask &
 * key): x in the care plane, y in the data plane.  The CPU reaches a row
 * through the command registers only: the data registers take the bits
 * left-justified (d9 the highest word of a plane, d2 of an action), one
 * command writes or reads one plane or the action row, and its done bit is
 * polled within a bound.
 *
 * Addresses: `block << 8 | index` in the command register; the API form
 * is a u16 with the block in its low byte and the index in its high byte.
 * A 480-bit key takes two blocks at the same index: block b the upper 320
 * bits, block b + 16 the lower 160 (only where the chip has 32 blocks).
 *
 * Data buffers are in the bit order of the field helpers (bit n is bit
 * n % 8 of byte n / 8), in the catalogue table's layout.
 */
#ifndef TIDE_CSL_REEF_TCAM_TAB_OP_H
#define TIDE_CSL_REEF_TCAM_TAB_OP_H

#include "csl/reef/reg_tbl/csl_reef_cib.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Logical TCAM tables of the family (the registry of cib/tcam_tables.txt). */
#define CSL_TCAM_TAB_COUNT 38u
/* Catalogue id of a table this chip does not have. */
#define CSL_TCAM_NO_TAB 0xFFFFFFFFu

/* A table of the registry and its key and action tables in the
 * catalogue. */
typedef struct csl_tcam_tab_name_id {
    const char *name; /* the key table's name */
    u32 key_tab_id;   /* CSL_TCAM_NO_TAB when the chip lacks it */
    const char *ad_name;
    u32 ad_tab_id;
} csl_tcam_tab_name_id;

/* The type tag and sub-type tag at the top of a table's key: start bit,
 * width and value; a sub-tag of width 0 does not exist. */
typedef struct csl_tcam_tid_subid {
    u16 tid_start;
    u16 tid_width;
    u32 tid_value;
    u16 subid_start;
    u16 subid_width;
    u32 subid_value;
} csl_tcam_tid_subid;

extern const csl_tcam_tab_name_id g_tcam_tab_name_id[CSL_TCAM_TAB_COUNT];
extern const csl_tcam_tid_subid g_tcam_tid_subid[CSL_TCAM_TAB_COUNT];

/* Plane and action selectors of the single-plane calls. */
#define CSL_TCAM_KEY 0u  /* the data plane (y) */
#define CSL_TCAM_MASK 1u /* the care plane (x) */
#define CSL_TCAM_AD 2u   /* the action row */

/* Geometry. */
#define CSL_TCAM_ROW_BITS 320u    /* widest plane a command moves */
#define CSL_TCAM_AD_BITS 96u
#define CSL_TCAM_KEY_BITS_MAX 480u
#define CSL_TCAM_KEY_BYTES_MAX 60u
#define CSL_TCAM_AD_BYTES 12u
#define CSL_TCAM_PAIR_OFFSET 16u  /* block b + 16 holds the low 160 bits of a 480-bit key */
#define CSL_TCAM_PAIR_LOW_BITS 160u

/* Polls of a wait for a command, and the busy delay between them. */
#define CSL_TCAM_POLLS 8000u
#define CSL_TCAM_POLL_US 3

/* Operation data of csl_reef_tcam_add and csl_reef_tcam_read: mask, key and
 * action in the layout of the table's key and action tables. */
typedef struct csl_tcam_data {
    u8 *mask;
    u8 *key;
    u8 *ad;
} csl_tcam_data;

/* The software caches of a chip: per row of every block, the data plane
 * and the care plane (40 bytes each) and the action (12 bytes) last
 * written, and the valid bit last written with the data plane. */
extern u8 *g_reef_tcam_tab_cache_data[SHR_MAX_CHIPS];
extern u8 *g_reef_tcam_tab_cache_care[SHR_MAX_CHIPS];
extern u8 *g_reef_tcam_tab_cache_ad[SHR_MAX_CHIPS];
extern u8 *g_reef_tcam_tab_cache_valid[SHR_MAX_CHIPS];
extern xsal_mutex_t g_reef_tcam_tab_lock[SHR_MAX_CHIPS];

/* ---- start and stop ------------------------------------------------------ */

/* The lock "tcam-%d" and the caches; -2 when an allocation fails (what was
 * allocated is released), -13 for a chip type of no TCAM. */
int csl_reef_tcam_tab_soft_init(u32 chip_id);
int csl_reef_tcam_tab_soft_deinit(u32 chip_id);
/* Every block cleared by the chip (op_tcam_rst), waiting for its done bits;
 * -11 when they do not come, -13 for an unknown chip type. */
int csl_reef_tcam_tab_hw_init(u32 chip_id);

/* Blocks of the chip (16, 32 on kelpreef), 0 for a type without TCAM. */
u32 csl_reef_tcam_block_count(u32 chip_id);
/* Width of a block's rows by its mode (80, 160, 320; 0 for a block
 * without mode). */
int csl_reef_tcam_block_width_get(u32 chip_id, u32 block, u32 *bits);
/* Rows of a block of that width that the entry layer reaches. */
u32 csl_reef_tcam_block_rows(u32 block, u32 bits);

/* ---- the registry ---------------------------------------------------------- */

/* -4 for an id above 37 ("Wrong! tcam id:%u!\n") or a NULL out. */
int csl_reef_tcam_get_tab_name_id(u32 chip_id, u32 tcam_id, const csl_tcam_tab_name_id **row);
/* A registry name, with or without the prefix "cib_", in any case; -7
 * ("no tcam tab named %s\n") for an unknown name, -4 for NULL. */
int csl_reef_tcam_tab_id_get(u32 chip_id, const char *name, u32 *tcam_id);
/* A flat address (block << 8 | index) into the API form; -21 with "ERR:
 * addr must less than %d\n" on the shell beyond the chip's blocks. */
int csl_reef_tcam_tab_index_get(u32 chip_id, u32 addr, u16 *out);

/* ---- one plane ----------------------------------------------------------- */

/* Writes `bits` bits of `data` into one plane (`type` CSL_TCAM_KEY or
 * CSL_TCAM_MASK, with `valid`: the data plane writes the valid bit, the
 * care plane does not) or the action row (CSL_TCAM_AD), and into the
 * cache.  -4 for a bad type, block, index or width ("Wrong bits
 * len(%d)!!!\n": more than 10 words for a plane, 3 for an action), -11 when
 * the command is not done. */
int csl_reef_tcam_key_mask_ad_set(u32 chip_id, u32 type, u32 block, u32 index, const u8 *data, u32 bits,
                                  u32 valid);
/* Reads one plane or the action row; `valid` (may be NULL for the action)
 * gets the row's valid bit.  -9 when the command is not done. */
int csl_reef_tcam_key_mask_ad_get(u32 chip_id, u32 type, u32 block, u32 index, u8 *data, u32 bits, u32 *valid);
/* The chip's test search: the first valid row that matches `key` (`bits`
 * wide, up to 320) in ascending block among the blocks of `block_bitmap`,
 * then ascending index.  Its action (`ad_bits`) and place; -9 when nothing
 * hits or the command is not done.  test_search_en is 0 afterwards on
 * every path. */
int csl_reef_tcam_key_mask_search(u32 chip_id, const u8 *key, u32 bits, u32 block_bitmap, u8 *ad, u32 ad_bits,
                                  u32 *block, u32 *index);

/* ---- entries of a table ------------------------------------------------------ */

/* Adds (or replaces) an entry at `address` (API form) in the order that
 * never lets a half-written entry match: data plane to zeros with valid 0,
 * action, care plane, data plane with valid 1. */
int csl_reef_tcam_add(u32 chip_id, u32 tcam_id, u16 address, const csl_tcam_data *data);
/* Zeros with valid 0 into data plane, care plane and action. */
int csl_reef_tcam_del(u32 chip_id, u32 tcam_id, u16 address);
/* Action, key and mask of an entry, and its valid bit. */
int csl_reef_tcam_read(u32 chip_id, u32 tcam_id, u16 address, csl_tcam_data *data, u32 *valid);
/* Restores one plane (type 0 data, 1 care) or the action (2) of a row from
 * the cache, for the ECC repair; `address` in the API form.  The row keeps
 * the valid bit it had. */
int csl_reef_tcam_tab_rewrite(u32 chip_id, u32 type, u32 address);

/* ---- the engine of the generated functions -------------------------------------- */

/* Where the parts of a table's typed record lie. */
typedef struct csl_tcam_record_layout {
    u32 tcam_id;
    const cib_tab_info *key_tab;
    const cib_tab_info *ad_tab;
    u16 key_off;
    u16 mask_off;
    u16 ad_off;
} csl_tcam_record_layout;

int csl_reef_tcam_record_set(u32 chip_id, u32 block, u32 index, const void *record,
                             const csl_tcam_record_layout *layout);
int csl_reef_tcam_record_get(u32 chip_id, u32 block, u32 index, void *record, const csl_tcam_record_layout *layout);
int csl_reef_tcam_record_del(u32 chip_id, u32 block, u32 index, u32 tcam_id);
/* A record of a key or action table into an entry image of at least
 * `write_bits` bits (the table's width); `mask` selects members (bit i for
 * member i, NULL all). */
int csl_reef_tcam_record_to_entry(u32 chip_id, const cib_tab_info *tab, const void *record, const void *mask,
                                  u8 *data, u32 write_bits);
int csl_reef_tcam_entry_to_record(u32 chip_id, const cib_tab_info *tab, void *record, const u8 *data);
/* The answer of a table this chip does not have: -24. */
int csl_reef_tcam_record_absent(u32 chip_id, u32 tcam_id);

/* ---- diagnostics ---------------------------------------------------------------- */

/* `count` entries of a table from `address` (API form) on, as text. */
int csl_reef_tcam_dump(u32 chip_id, u32 tcam_id, u16 address, u32 count);
/* Every row of every block as the chip holds it; `non_zero` leaves out
 * rows that are all zero.  -6 when the dump file is full. */
int csl_reef_tcam_tab_dump_all(u32 chip_id, u32 to_file, u32 non_zero);
/* The registry and what this chip has of it. */
int csl_reef_tcam_tab_summary_show(u32 chip_id);
/* Patterns written and read back in every row of every block with a mode
 * (the first and last row only with `use_sample`); the report goes to
 * `out`, cut to out_len - 1; -11 when a row fails.  Every row is left
 * zero and invalid. */
int csl_reef_ram_bist_tcam_test(u32 chip_id, u32 use_sample, char *out, u32 out_len);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_TCAM_TAB_OP_H */
