/*
 * The SerDes driver of atolreef: the eight lanes of two macros, their
 * bring-up, rate change, calibration, adaptation and test features.
 */
#ifndef TIDE_CSL_ATOLREEF_SERDES_H
#define TIDE_CSL_ATOLREEF_SERDES_H

#include "atolreef_serdes_reg.h"
#include "csl/common/serdes/csl_serdes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define ATOLREEF_SDS_LANES (ATOLREEF_SDS_MACROS * ATOLREEF_SDS_LANES_PER_MACRO)
/* PLLs of a macro. */
#define ATOLREEF_SDS_PLLS 2u

/* What the driver keeps of a chip while it runs. */
typedef struct csl_atolreef_serdes_db {
    u32 pll_fbdiv_val[ATOLREEF_SDS_MACROS * ATOLREEF_SDS_PLLS]; /* target feedback divider, [macro + 2 * pll] */
    u32 serdes_rate_val[ATOLREEF_SDS_LANES];                   /* the lane divider of the lane's rate */
    u32 rx_para_vga_cap_val[ATOLREEF_SDS_LANES];               /* the receiver's trained values */
    u32 rx_para_hf_cal_val[ATOLREEF_SDS_LANES];
    u32 rx_para_stage12_val[ATOLREEF_SDS_LANES];
    u32 rx_para_hf_val[ATOLREEF_SDS_LANES];
    u32 speed_limit_set; /* 1: lanes 0, 1, 6, 7 at 5 Gbit/s or less */
} csl_atolreef_serdes_db;

extern csl_atolreef_serdes_db *g_csl_atolreef_serdes_db[SHR_MAX_CHIPS];
extern const csl_serdes_driver_t g_csl_serdes_atolreef;

const csl_serdes_driver_t *csl_atolreef_serdes_driver_get(void);
/* The lane rows of the control record ("csl-serdes-ctrol-info"). */
i32 csl_atolreef_serdes_control_db_init(u32 chip_id);
/* The run-time record ("csl-serdes-db"), and its release. */
i32 csl_atolreef_serdes_db_malloc(u32 chip_id);
i32 csl_atolreef_serdes_db_free(u32 chip_id);

/* The named slots. */
i32 csl_atolreef_serdes_init(u32 chip_id);
i32 csl_atolreef_serdes_deinit(u32 chip_id);
i32 csl_atolreef_serdes_control_set(u32 chip_id, u32 serdes_id, serdes_control *control);
i32 csl_atolreef_serdes_control_get(u32 chip_id, u32 serdes_id, serdes_control *control);
i32 csl_atolreef_serdes_rx_adapt_para_set(u32 chip_id, u32 serdes_id, serdes_rx_para *para);
i32 csl_atolreef_serdes_rx_adapt_para_get(u32 chip_id, u32 serdes_id, char *buffer);
i32 csl_atolreef_serdes_register_field_name_get(u32 chip_id, u32 serdes_id, char *reg, char *field, u32 *data);
i32 csl_atolreef_serdes_register_field_name_set(u32 chip_id, u32 serdes_id, char *reg, char *field, u32 data);

/* A whole named register by reg_name_id (at most 103). */
i32 csl_atolreef_serdes_register_set(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 data);
i32 csl_atolreef_serdes_register_get(u32 chip_id, u32 serdes_id, u32 reg_name_id, u32 *data);

/* Exported without a slot: the loss of signal of the lane
 * (phy_ctrl_srds_rx_los), and the two halves of the reset (mode 1 tx, 0 rx,
 * 2 the macro's PHY), which hold until the other half is called. */
i32 csl_atolreef_serdes_los_state_get(u32 chip_id, u32 serdes_id, u32 *los);
i32 csl_atolreef_serdes_keep_reset(u32 chip_id, u32 serdes_id, u32 mode);
i32 csl_atolreef_serdes_unreset(u32 chip_id, u32 serdes_id, u32 mode);

/* The transmit emphasis of a lane at `speed` from the properties: with
 * serdes_lane_pe_dist_speed 1 the lane's values for the speed's rate
 * ("serdes_tx_main_<lane>_10Gbps", ...) where they are set, else the
 * port's serdes_tx_main, serdes_tx_pre and serdes_tx_post (defaults 0x5A,
 * 0, 0x0C); swing_leg 0. */
void csl_atolreef_serdes_property_emphasis(u32 chip_id, u32 serdes_id, u32 speed, serdes_emphasis *emphasis);
/* Reflected binary over bits 30 to 0, the sign bit 31 kept. */
u32 csl_atolreef_grey_coding(u32 value);
u32 csl_atolreef_grey_decoding(u32 value);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_ATOLREEF_SERDES_H */
