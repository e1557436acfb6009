/*
 * The SerDes lanes of a chip: the control record (how many lanes, the
 * reference clock, one row per lane) and the chip's SerDes driver, a table
 * of operations.
 */
#ifndef TIDE_CSL_SERDES_H
#define TIDE_CSL_SERDES_H

#include <tide/serdes.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* pll0_vco / pll1_vco of a macro whose PLL has no rate yet. */
#define CSL_SERDES_VCO_NONE 3u

/* One lane, by serdes_id. */
typedef struct csl_serdes_info {
    u32 speed;          /* current speed id, SERDES_SPEED_UNUSED without one */
    u32 enable;         /* the property serdes_enable */
    u32 interface_type; /* interface type of the lane's MAG */
    u32 rx_adapt;       /* 1 while DFE adaptation is on */
    u32 reserved;
    u32 pll_sel;        /* which PLL of the macro the lane uses */
    u32 pll0_vco;       /* rows 0 and 1 only, by macro: the VCO class PLL 0 runs at */
    u32 pll1_vco;       /* the same for PLL 1 */
} csl_serdes_info;

/* The SerDes control record of a chip. */
typedef struct csl_serdes_control_t {
    u32 serdes_count;
    u32 lanes_per_macro;
    u32 refclk;        /* reference clock type */
    u32 refclk_chosen; /* 1 after serdes_api_refclk_chose_set */
    csl_serdes_info *info; /* serdes_count rows */
} csl_serdes_control_t;

/*
 * The operations of a SerDes driver in slot order, after the name slot
 * (slot 0): OP(name, (parameters)).  Lane operations take the serdes_id
 * second.
 */
#define CSL_SERDES_DRIVER_OPS(OP)                                                                 \
    OP(init, (u32 chip_id))                                                                       \
    OP(deinit, (u32 chip_id))                                                                     \
    OP(cib_config_set, (u32 chip_id, u32 serdes_id, u32 value))                                   \
    OP(refclk_set, (u32 chip_id, u32 serdes_id, u32 refclk))                                      \
    OP(refclk_get, (u32 chip_id, u32 serdes_id, u32 *refclk))                                     \
    OP(refclk_chose_set, (u32 chip_id, u32 serdes_id, u32 refclk))                                \
    OP(freq_set, (u32 chip_id, u32 serdes_id, serdes_freq *freq))                                 \
    OP(freq_get, (u32 chip_id, u32 serdes_id, serdes_freq *freq))                                 \
    OP(pn_set, (u32 chip_id, u32 serdes_id, serdes_pn *pn))                                       \
    OP(pn_get, (u32 chip_id, u32 serdes_id, serdes_pn *pn))                                       \
    OP(emphasis_set, (u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis))                     \
    OP(emphasis_get, (u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis))                     \
    OP(serdes_enable_set, (u32 chip_id, u32 serdes_id, u32 *enable))                              \
    OP(serdes_enable_get, (u32 chip_id, u32 serdes_id, u32 *enable))                              \
    OP(prbs_set, (u32 chip_id, u32 serdes_id, serdes_prbs *prbs))                                 \
    OP(prbs_get, (u32 chip_id, u32 serdes_id, serdes_prbs *prbs))                                 \
    OP(prbs_insert_err_pkt, (u32 chip_id, u32 serdes_id, u32 count))                              \
    OP(prbs_counter_get, (u32 chip_id, u32 serdes_id, u32 *count))                                \
    OP(prbs_check, (u32 chip_id, u32 serdes_id, serdes_prbs_check_info *info))                    \
    OP(prbs_counter_clear, (u32 chip_id, u32 serdes_id))                                          \
    OP(prbs_invert_enable_set, (u32 chip_id, u32 serdes_id, serdes_pn *invert))                   \
    OP(serdes_reset, (u32 chip_id, u32 serdes_id, u32 mode))                                      \
    OP(loopback_set, (u32 chip_id, u32 serdes_id, serdes_loopback *loopback))                     \
    OP(loopback_get, (u32 chip_id, u32 serdes_id, serdes_loopback *loopback))                     \
    OP(power_set, (u32 chip_id, u32 serdes_id, serdes_power *power))                              \
    OP(power_get, (u32 chip_id, u32 serdes_id, serdes_power *power))                              \
    OP(control_set, (u32 chip_id, u32 serdes_id, serdes_control *control))                        \
    OP(control_get, (u32 chip_id, u32 serdes_id, serdes_control *control))                        \
    OP(rx_adapt_set, (u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt))                        \
    OP(rx_adapt_get, (u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt))                        \
    OP(rx_para_set, (u32 chip_id, u32 serdes_id, serdes_rx_para *para))                           \
    OP(rx_para_get, (u32 chip_id, u32 serdes_id, char *buffer))                                   \
    OP(four_point_eye, (u32 chip_id, u32 serdes_id, serdes_eye *eye))                             \
    OP(full_eye_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len))                         \
    OP(all_reg_dump, (u32 chip_id, u32 serdes_id, u32 detail, char *buffer, u64 len))             \
    OP(debug_info_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len))                       \
    OP(inner_register_get, (u32 chip_id, u32 serdes_id, u32 addr, u32 *data))                     \
    OP(inner_register_set, (u32 chip_id, u32 serdes_id, u32 addr, u32 data))                      \
    OP(name_register_field_get, (u32 chip_id, u32 serdes_id, char *reg, char *field, u32 *data))  \
    OP(name_register_field_set, (u32 chip_id, u32 serdes_id, char *reg, char *field, u32 data))   \
    OP(name_register_get, (u32 chip_id, u32 serdes_id, char *reg, u32 *data))                     \
    OP(name_register_set, (u32 chip_id, u32 serdes_id, char *reg, u32 data))                      \
    OP(serdes_type_sel, (u32 chip_id, u32 serdes_type))                                           \
    OP(support_speed_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len))                    \
    OP(sram_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len))                             \
    OP(clk_8k_set, (u32 chip_id, u32 serdes_id, u32 clk_id))                                      \
    OP(clk_8k_get, (u32 chip_id, u32 clk_id, serdes_8k_clk *clk))                                 \
    OP(ctle_offset_calibrate_result, (u32 chip_id, u32 serdes_id, char *buffer, u32 len))

#define CSL_SERDES_DRIVER_SLOT(name, params) i32(*name) params;
/* A SerDes driver: its name, then one slot per operation (slot 1 init, 2
 * deinit, 3 CIB configuration, ...); an empty slot is an operation the
 * driver does not have. */
typedef struct csl_serdes_driver_t {
    const char *name;
    CSL_SERDES_DRIVER_OPS(CSL_SERDES_DRIVER_SLOT)
} csl_serdes_driver_t;
#undef CSL_SERDES_DRIVER_SLOT

extern csl_serdes_control_t *csl_serdes_control[SHR_MAX_CHIPS];

/* Allocates the chip's control record; -2 when that fails. */
i32 csl_serdes_control_init(u32 chip_id);
i32 csl_serdes_control_deinit(u32 chip_id);
/* The record, or NULL (also for a chip id above 3). */
csl_serdes_control_t *csl_serdes_control_get(u32 chip_id);
/* Fills the counts and the lane rows for the chip type; nothing for a type
 * without a driver in the build. */
i32 csl_serdes_control_db_init(u32 chip_id);
/* The driver's run-time values of the chip, and their release. */
i32 csl_serdes_db_malloc(u32 chip_id);
i32 csl_serdes_db_free(u32 chip_id);
/* The chip type's driver: atolreef's; NULL with 0 for a sibling whose
 * driver the build lacks (logged at WARN); -7 with "serdes base probe fail
 * chip type:%u\n" for a type the family does not know. */
i32 csl_serdes_base_probe(u32 chip_id, const csl_serdes_driver_t **driver);

/* The name of each speed id (11 to 21), "" for the others. */
const char *csl_serdes_speed_name(u32 speed);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_SERDES_H */
