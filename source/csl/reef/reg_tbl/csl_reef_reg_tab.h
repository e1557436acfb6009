/*
 * Register and table access by catalogue id, direct tables with their
 * software images, module locks, and the catalogue manager of each chip.
 */
#ifndef TIDE_CSL_REEF_REG_TAB_H
#define TIDE_CSL_REEF_REG_TAB_H

#include "csl/reef/reg_tbl/csl_reef_cib.h"

#ifdef __cplusplus
#include <cstring>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- catalogue manager ----------------------------------------------------- */

/* The software image of one table. */
typedef struct csl_tab_cache {
    u8 *data; /* depth * bytes_per_entry bytes; NULL while off */
    u8 enabled;
} csl_tab_cache;

typedef struct csl_reg_tab_cm {
    const cib_reg_info *const *reg_list;
    const cib_tab_info *const *tab_list;
    void *reserved0;
    csl_tab_cache *tab_cache; /* one per table id */
    void *reserved1;
    u32 reg_count;
    u32 tab_count;
} csl_reg_tab_cm;

extern csl_reg_tab_cm *g_csl_reg_tab_cm[SHR_MAX_CHIPS];

int csl_reg_tab_cm_malloc(u32 chip_id);
void csl_reg_tab_cm_free(u32 chip_id);
/* The chip's manager, without a check. */
csl_reg_tab_cm *csl_reg_tab_cm_get(u32 chip_id);

/* Start and stop of the catalogue of a chip (lists, images, locks). */
int csl_reef_reg_tab_soft_init(u32 chip_id);
int csl_reef_reg_tab_soft_deinit(u32 chip_id);
int csl_reef_reg_tab_hw_init(u32 chip_id);

/* A chip's register and table records, or NULL. */
const cib_reg_info *csl_reef_reg_info_get(u32 chip_id, u32 reg_id);
const cib_tab_info *csl_reef_tab_info_get(u32 chip_id, u32 tab_id);

/* What the build has of a chip type.  The catalogue of a chip is the
 * build's description of its type: kelpreef and kelpreef2 have none, so a
 * feature that needs a register or table of it has nothing to work on.
 * The refusal: the line "<chip>: no <what> in this build" at `level` under
 * `module_id`, and -24. */
int csl_reef_not_in_build(u32 chip_id, u32 module_id, u32 level, const char *what);
/* 0 when the chip's catalogue has the table `tab_id` (the register `reg_id`,
 * any record at all), else the refusal. */
int csl_reef_tab_in_build(u32 chip_id, u32 tab_id, u32 module_id, u32 level, const char *what);
int csl_reef_reg_in_build(u32 chip_id, u32 reg_id, u32 module_id, u32 level, const char *what);
int csl_reef_catalogue_in_build(u32 chip_id, u32 module_id, u32 level);

/* ---- module locks -------------------------------------------------------------- */

extern xsal_mutex_t g_reef_module_reg_lock[SHR_MAX_CHIPS][CIB_MODULE_COUNT];
extern xsal_mutex_t g_reef_module_tab_lock[SHR_MAX_CHIPS][CIB_MODULE_COUNT];

int csl_reef_module_lock_init(u32 chip_id);
int csl_reef_module_lock_deinit(u32 chip_id);
int csl_reef_module_reg_get_lock(u32 chip_id, u32 cib_module_id);
int csl_reef_module_reg_get_unlock(u32 chip_id, u32 cib_module_id);
int csl_reef_module_tab_get_lock(u32 chip_id, u32 tab_id);
int csl_reef_module_tab_get_unlock(u32 chip_id, u32 tab_id);

/* ---- registers by id ------------------------------------------------------------- */

int csl_reef_reg_set_u32(u32 chip_id, u32 id, u32 value);
int csl_reef_reg_set(u32 chip_id, u32 id, u8 *data, u8 bytes);
int csl_reef_reg_get(u32 chip_id, u32 id, u8 *data, u8 bytes);
int csl_reef_reg_get_u32(u32 chip_id, u32 id, u32 *value);

/* ---- direct tables ------------------------------------------------------------------ */

/* Access modes of the direct table functions. */
#define CSL_TAB_HW 0u
#define CSL_TAB_IMAGE 1u
#define CSL_TAB_HW_AND_IMAGE 2u

int csl_reef_tab_set_direct(u32 chip_id, u32 id, u32 index, u8 *data, u32 bytes, u32 mode);
int csl_reef_tab_get_direct(u32 chip_id, u32 id, u32 index, u8 *data, u32 bytes, u32 mode);
int csl_reef_tab_set_direct_uint32(u32 chip_id, u32 id, u32 index, u32 *words, u32 word_count, u32 mode);
int csl_reef_tab_get_direct_uint32(u32 chip_id, u32 id, u32 index, u32 *words, u32 word_count, u32 mode);
int csl_reef_tab_cache_enable_set(u32 chip_id, u32 tab_id, u8 enable);
/* The image of a table while it is on (depth * entry bytes, indexed by the
 * entry index), else NULL.  Read and change it under the table lock. */
u8 *csl_reef_tab_image_get(u32 chip_id, u32 tab_id);

/* Block transfer: the caller's buffer, `len` bytes. */
typedef struct csl_mem_buf {
    u8 *data;
    u32 len;
} csl_mem_buf;

int csl_reef_mem_array_read_range(u32 chip_id, u32 id, u32 index_min, u32 index_max, csl_mem_buf *buf);
int csl_reef_mem_array_write_range(u32 chip_id, u32 id, u32 index_min, u32 index_max, csl_mem_buf *buf);

/* Clearing: zeros written to hardware and image (mode 2); the range form
 * gives the OR of the statuses, the whole-table form clears 0 to index_max. */
int csl_reef_direct_table_entry_clr(u32 chip_id, u32 tab_id, u32 index);
int csl_reef_direct_table_entry_clr_range(u32 chip_id, u32 tab_id, u32 first, u32 last);
int csl_reef_direct_table_entry_all_clr(u32 chip_id, u32 tab_id);

/* Index of csl_reef_direct_table_rewrite for the whole table. */
#define CSL_TAB_REWRITE_ALL 0xFFFFFFFEu
/* Hardware refreshed from the image (zeros while the image is off). */
int csl_reef_direct_table_rewrite(u32 chip_id, u32 id, u32 index);

/* An entry read from hardware as text, by the table's fields. */
int csl_reef_direct_table_tostring(u32 chip_id, u32 id, u32 index, char *buf, u32 len);

/* An entry that an engine moves, for its debug log lines. */
typedef struct csl_table_data {
    u32 tab_id; /* catalogue id, or an engine's own table number */
    u32 index;
    const u8 *data;
    u32 bytes;
} csl_table_data;
int csl_reef_table_debug_out_data(u32 chip_id, const csl_table_data *entry);

/* ---- RAM test of the direct tables ----------------------------------------------- */

/* Bytes of the text a RAM test collects. */
#define CSL_RAM_BIST_TEXT_BYTES 80000u

/* Appends to a report of CSL_RAM_BIST_TEXT_BYTES bytes while more than 200
 * of them are left. */
void csl_ram_bist_report(char *text, const char *format, ...) TIDE_PRINTF(2, 3);
/* The random source of the test patterns. */
u32 csl_ram_bist_rand(void);

/* Patterns of csl_reef_tab_test_data_get. */
#define CSL_BIST_ZEROS 0u
#define CSL_BIST_ONES 1u
#define CSL_BIST_RANDOM 2u

/* Every direct table: patterns written and read back, `loops` rounds; with
 * `use_sample` only the first and last entry of each.  The report goes to
 * `out`, cut to out_len - 1; -11 when an entry fails. */
int csl_reef_direct_tab_ram_bist_test(u32 chip_id, u32 use_sample, u32 loops, char *out, u32 out_len);
/* The memory test of bring-up: the sampled test of every direct table. */
int csl_reef_chip_ram_dft_test(u32 chip_id);
/* One table; the report is appended to `text`, a NUL-terminated buffer of
 * CSL_RAM_BIST_TEXT_BYTES bytes. */
int _csl_reef_direct_tab_test_single(u32 chip_id, u32 tab_id, u32 use_sample, char *text, u32 loops);
/* *all_ro 1 when no field after the highest one is RW or RWW. */
int csl_reef_tab_all_ro_check(u32 chip_id, u32 tab_id, u8 *all_ro);
/* A test entry: zeros, with each RW or RWW field after the highest one set
 * by the pattern (all ones, random, zeros). */
int csl_reef_tab_test_data_get(u32 chip_id, u32 tab_id, u32 pattern, u8 *data, u32 bytes);

#ifdef __cplusplus
}

/* Holds a module lock for the length of a scope; a lock that could not be
 * taken is not released. */
template <int (*Lock)(u32, u32), int (*Unlock)(u32, u32)>
class CslModuleLock {
public:
    CslModuleLock(u32 chip_id, u32 which) : chip_id_(chip_id), which_(which), held_(Lock(chip_id, which) == 0) {}
    ~CslModuleLock()
    {
        if (held_) {
            Unlock(chip_id_, which_);
        }
    }
    CslModuleLock(const CslModuleLock &) = delete;
    CslModuleLock &operator=(const CslModuleLock &) = delete;

private:
    u32 chip_id_;
    u32 which_;
    bool held_;
};
/* Zeroed bytes from xsal_malloc for the length of a scope. */
class CslHeapBytes {
public:
    CslHeapBytes(u64 size, const char *tag) : data_(static_cast<u8 *>(xsal_malloc(size, tag, SHR_MOD_REG_TAB)))
    {
        if (data_ != nullptr) {
            memset(data_, 0, size);
        }
    }
    ~CslHeapBytes() { xsal_mem_free(data_); }
    CslHeapBytes(const CslHeapBytes &) = delete;
    CslHeapBytes &operator=(const CslHeapBytes &) = delete;
    u8 *get() const { return data_; }

private:
    u8 *data_;
};

/* The register lock of a module (by cib module id), the table lock of a
 * table's module (by tab_id). */
using CslRegLock = CslModuleLock<csl_reef_module_reg_get_lock, csl_reef_module_reg_get_unlock>;
using CslTabLock = CslModuleLock<csl_reef_module_tab_get_lock, csl_reef_module_tab_get_unlock>;
#endif

#endif /* TIDE_CSL_REEF_REG_TAB_H */
