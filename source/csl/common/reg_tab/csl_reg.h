/*
 * Chip support: the one access path of every register access, the
 * diagnostics on it, and the calls that tie a chip to the HAL.
 */
#ifndef TIDE_CSL_REG_H
#define TIDE_CSL_REG_H

#include <tide/init.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

#define CSL_REG_CACHE_ENTRIES 5u

typedef struct csl_reg_cache_entry {
    u32 valid;
    u32 addr;
    u32 data;
} csl_reg_cache_entry;

extern csl_reg_cache_entry g_reg_cache_t[SHR_MAX_CHIPS][CSL_REG_CACHE_ENTRIES];
extern u32 g_csl_opt_reg_cache_enable[SHR_MAX_CHIPS];
extern u32 g_recode_addr[SHR_MAX_CHIPS];
extern u32 g_recode_enable[SHR_MAX_CHIPS];
extern u32 g_csl_log_coverage_flag[SHR_MAX_CHIPS];

/* Word access on BAR 4. */
int csl_reg_read32(u32 chip_id, u32 addr, u32 *value);
int csl_reg_write32(u32 chip_id, u32 addr, u32 value);
int csl_reg_read32_validaddr(u32 chip_id, u32 addr, u32 *value);
int csl_reg_write32_validaddr(u32 chip_id, u32 addr, u32 value);
/* The same, logging "errcode = %d [%s]\n" when the access fails: the
 * register path of the table engines. */
int csl_reg_read32_logged(u32 chip_id, u32 addr, u32 *value);
int csl_reg_write32_logged(u32 chip_id, u32 addr, u32 value);
int csl_reg_read64(u32 chip_id, u32 addr, u64 *value);
int csl_reg_write64(u32 chip_id, u32 addr, u64 value);
int csl_reg_read64_validaddr(u32 chip_id, u32 addr, u64 *value);
int csl_reg_write64_validaddr(u32 chip_id, u32 addr, u64 value);
/* Word access on any BAR. */
int csl_reg_general_read16(u32 chip_id, u32 bar, u32 addr, u16 *value);
int csl_reg_general_write16(u32 chip_id, u32 bar, u32 addr, u16 value);
int csl_reg_general_read32(u32 chip_id, u32 bar, u32 addr, u32 *value);
int csl_reg_general_write32(u32 chip_id, u32 bar, u32 addr, u32 value);
int csl_reg_general_read64(u32 chip_id, u32 bar, u32 addr, u64 *value);
int csl_reg_general_write64(u32 chip_id, u32 bar, u32 addr, u64 value);

int csl_efuse_read32(u32 chip_id, u32 offset, u32 *data);

/* The forced-read table and the watch. */
int csl_reg_cache_enable(u32 chip_id, u32 enable);
int csl_reg_cache_clear(u32 chip_id, i32 clear);
int csl_reg_cache_update(u32 chip_id, u32 addr, u32 data);
int csl_recode_set(u32 chip_id, u32 addr, u32 enable);

/* Access by raw address in the LSW space, through a little-endian byte
 * buffer. */
int csl_reef_reg_set_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes);
int csl_reef_reg_get_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes);
int csl_reef_reg_set_u32_by_addr(u32 chip_id, u32 addr, u32 value);
int csl_reef_reg_get_u32_by_addr(u32 chip_id, u32 addr, u32 *value);

/* Console or file output of the diagnostic code: `to_file` 1 writes to the
 * file that csl_write_file_open opened for the chip. */
int csl_output_func(u32 chip_id, u32 to_file, const char *format, ...) TIDE_PRINTF(3, 4);
/* Redirects output with `to_file` 1 to a file, appended, up to `limit`
 * bytes (0xFFFFFFFF: no limit); the file lock is held until the close. */
int csl_write_file_open(u32 chip_id, const char *path, u32 limit);
int csl_write_file_close(u32 chip_id);
int csl_write_file_lock_init(u32 chip_id);
int csl_write_file_lock_deinit(u32 chip_id);
extern int g_csl_write_fd[SHR_MAX_CHIPS];

/* Tying a chip to the HAL. */
int csl_base_init(void);
int csl_base_deinit(void);
int csl_chip_num_get(u32 *count);
int csl_get_chip_id_by_bus_number(u16 bus, u32 *chip_id);
int csl_get_chipid_busnum_mapping(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num);
int csl_hw_op_attach(u32 chip_id, const sdk_init_cfg *ops);
int csl_hw_op_dettach(u32 chip_id);
int csl_chip_info_init(u32 chip_id);
int csl_chip_info_deinit(u32 chip_id);
int csl_chip_mem_init(u32 chip_id);
int csl_chip_mem_deinit(u32 chip_id);

extern u32 g_csl_chip_info_inited[SHR_MAX_CHIPS];

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REG_H */
