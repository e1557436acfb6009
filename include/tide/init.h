/*
 * tide: bring-up and tear-down of the library and of each chip.
 *
 * Calling order of an application:
 *   init_api_base_software_process(cfg)            once per process
 *   shr_property_cfg_file_load(chip, path)         per chip (when the property store is present)
 *   init_api_software_process(chip, cfg)           per chip
 *   init_api_hardware_process(chip)                per chip
 *   ... any <module>_api_<op>(chip, ...) ...
 *   deinit_api_hardware_process(chip), deinit_api_software_process(chip)
 *   deinit_api_base_software_process()
 */
#ifndef TIDE_INIT_H
#define TIDE_INIT_H

#include <tide/shr.h>
#include <tide/xsal.h>

TIDE_BEGIN_DECLS

/* Register hooks: replace the HAL's register access for every chip of the
 * bus type the chip is attached to.  `reg_write` and `reg_read` serve the
 * 16-bit and the 32-bit accesses (16-bit values travel in the low half of
 * the word); the 64-bit hooks serve the 64-bit accesses. */
typedef int (*sdk_reg_write_func_t)(uint32_t chip_id, uint32_t bar, uint32_t addr, uint32_t value);
typedef int (*sdk_reg_read_func_t)(uint32_t chip_id, uint32_t bar, uint32_t addr, uint32_t *value);
typedef int (*sdk_reg_write64_func_t)(uint32_t chip_id, uint32_t bar, uint32_t addr, uint64_t value);
typedef int (*sdk_reg_read64_func_t)(uint32_t chip_id, uint32_t bar, uint32_t addr, uint64_t *value);

/* The caller's configuration.  It is copied at the call; NULL stands for a
 * record of zeros, and every field that is 0 takes its default.  The first
 * four fields are read by init_api_base_software_process, the register
 * hooks by init_api_software_process. */
typedef struct sdk_init_cfg {
    shr_log_func_t log_printf;    /* default shr_debugk */
    shr_output_func_t cli_printf; /* default xsal_printf */
    xsal_malloc_func_t mem_alloc; /* default malloc */
    xsal_free_func_t mem_free;    /* default free */
    uint8_t reserved0[128];
    void *reserved1;
    void *reserved2;
    sdk_reg_write_func_t reg_write;
    sdk_reg_read_func_t reg_read;
    sdk_reg_write64_func_t reg_write64;
    sdk_reg_read64_func_t reg_read64;
    void *reserved3;
} sdk_init_cfg;

TIDE_API int32_t init_api_base_software_process(const sdk_init_cfg *cfg);
TIDE_API int32_t deinit_api_base_software_process(void);
TIDE_API int32_t init_api_software_process(uint32_t chip_id, const sdk_init_cfg *cfg);
TIDE_API int32_t deinit_api_software_process(uint32_t chip_id);
TIDE_API int32_t init_api_hardware_process(uint32_t chip_id);
TIDE_API int32_t deinit_api_hardware_process(uint32_t chip_id);
/* Which chip id the kernel driver gave the chip on a bus number. */
TIDE_API int32_t init_api_chip_id_get_by_bus_number(uint16_t bus_number, uint32_t *chip_id);
/* All (bus number, chip id) pairs; the arrays need room for 16 entries. */
TIDE_API int32_t init_api_chip_id_busnum_mapping_get(uint16_t *bus_num_arr, uint32_t *chip_id_arr,
                                                     uint32_t *valid_num);

TIDE_END_DECLS

#endif /* TIDE_INIT_H */
