/*
 * tide: the SerDes family, serdes_api_*.
 *
 * The eight high-speed lanes of a chip: lane rate, polarity, transmit
 * emphasis, PRBS, loopback, power, receive adaptation, eye measurement and
 * raw register access.  On atolreef a lane and a MAG are one thing: the
 * `serdes_id` is the port's `mag_id`, 0 to 7.  Every call takes the chip
 * first and returns a status: 0, or a negative code of shr_errmsg.  A
 * `serdes_id` at or above the chip's lane count gives -29; a pointer the
 * call needs that is NULL gives -20.
 */
#ifndef TIDE_SERDES_H
#define TIDE_SERDES_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* Lanes of an atolreef and lanes of one macro. */
#define SERDES_LANE_COUNT 8u
#define SERDES_LANES_PER_MACRO 4u

/* Speed ids: a line rate and the PLL of the macro that clocks it. */
enum serdes_speed_id {
    SERDES_SPEED_1P25G_PLL0 = 11,
    SERDES_SPEED_3P125G_PLL1 = 12,
    SERDES_SPEED_5G_PLL0 = 13,
    SERDES_SPEED_10G_PLL0 = 14,
    SERDES_SPEED_10P3125G_PLL1 = 15,
    SERDES_SPEED_1P25G_PLL1 = 16,
    SERDES_SPEED_3P125G_PLL0 = 17,
    SERDES_SPEED_5G_PLL1 = 18,
    SERDES_SPEED_10G_PLL1 = 19,
    SERDES_SPEED_10P3125G_PLL0 = 20,
    SERDES_SPEED_UNUSED = 21
};
#define SERDES_SPEED_FIRST SERDES_SPEED_1P25G_PLL0
#define SERDES_SPEED_LAST SERDES_SPEED_10P3125G_PLL0

/* Direction of a polarity, PRBS or power setting. */
#define SERDES_DIR_TX 0u
#define SERDES_DIR_RX 1u
#define SERDES_DIR_BOTH 2u

/* Power `dir`: 0 tx, 1 rx, 2 both, 3 PLL 0 of the lane's macro, 4 PLL 1. */
#define SERDES_POWER_TX 0u
#define SERDES_POWER_RX 1u
#define SERDES_POWER_TXRX 2u
#define SERDES_POWER_PLL0 3u
#define SERDES_POWER_PLL1 4u
/* Power `value`. */
#define SERDES_POWER_UP 0u
#define SERDES_POWER_DOWN 1u

/* PRBS types, numbered as the shell lists them. */
enum serdes_prbs_type {
    SERDES_PRBS7 = 0,
    SERDES_PRBS9 = 1,
    SERDES_PRBS11 = 2,
    SERDES_PRBS15 = 3,
    SERDES_PRBS16 = 4,
    SERDES_PRBS23 = 5,
    SERDES_PRBS231 = 6,
    SERDES_PRBS31 = 7,
    SERDES_PAT0X0 = 8,
    SERDES_PAT1X1 = 9,
    SERDES_PAT2X2 = 10,
    SERDES_PAT5X5 = 11,
    SERDES_PAT8X16 = 12,
    SERDES_PAT10X10 = 13,
    SERDES_PAT20X20 = 14,
    SERDES_PAT1X1_61BIT = 15,
    SERDES_PAT_USER = 16, /* the 64-bit user pattern */
    SERDES_PRBS_TYPES = 17
};

/* Loopback types. */
#define SERDES_LOOP_SERIAL_TX2RX 0u   /* "serpre-tx2rx": transmitter into its receiver */
#define SERDES_LOOP_SERIAL_RX2TX 1u   /* "serpre-rx2tx": what is received is sent back */
#define SERDES_LOOP_PARALLEL_TX2RX 2u /* "paral-tx2rx" */
#define SERDES_LOOP_PARALLEL_RX2TX 3u /* "paral-rx2tx" */
#define SERDES_LOOP_TYPES 4u

/* Reset modes of serdes_api_serdes_reset. */
#define SERDES_RESET_RX 0u
#define SERDES_RESET_TX 1u
#define SERDES_RESET_PHY 2u /* the whole macro of the lane */

/* Control types of serdes_api_control_set and _get. */
#define SERDES_CONTROL_LOCK 1u        /* get: 1 while the clock recovery is locked */
#define SERDES_CONTROL_LOS_THR 2u     /* loss-of-signal threshold */
#define SERDES_CONTROL_PRESET 3u      /* transmit preset, 0 to 15 */
#define SERDES_CONTROL_SPEED_LIMIT 4u /* set: 1 keeps lanes 0, 1, 6, 7 at 5 Gbit/s or less */
#define SERDES_CONTROL_RAW_BITS 5u    /* value: serdes_raw_bits */

/* Receive adaptation type: DFE, the only one. */
#define SERDES_RX_ADAPT_DFE 1u

/* Receive parameters, `para` of serdes_rx_para. */
enum serdes_rx_para_id {
    SERDES_RX_PARA_CTLE_HF_CAL = 1,
    SERDES_RX_PARA_CTLE_CAP_CAL = 2,
    SERDES_RX_PARA_CTLE_RES_CAL = 3,
    SERDES_RX_PARA_VGA_CAPEN = 4,
    SERDES_RX_PARA_VGA_RES_CAL = 5,
    SERDES_RX_PARA_CTLE_DEQ_ENB = 6,
    SERDES_RX_PARA_VGA_DEQ_ENB = 7,
    SERDES_RX_PARA_LPF_RES_SEL = 8,
    SERDES_RX_PARA_CTLE_LPF_CAPSEL = 9,
    SERDES_RX_PARA_CTLE_EQENB = 10,
    SERDES_RX_PARA_VGA_STAGE12 = 11,
    SERDES_RX_PARA_CTLE_HF = 12,
    SERDES_RX_PARA_CTLE_LF = 13,
    SERDES_RX_PARA_TAP1_DATA = 14,
    SERDES_RX_PARA_TAP1_PHASE = 15
};

/* Smallest buffers of the text operations. */
#define SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN 256u
#define SERDES_FULL_EYE_BUFF_LEN 8192u
#define SERDES_REG_DUMP_BUFF_LEN 65536u
#define SERDES_DEBUG_INFO_BUF_LEN 4096u
#define SERDES_SUPPORT_SPEED_BUFF_LEN 1024u
#define SERDES_RX_PARA_BUFF_LEN 2048u

/* Records that cross the API. */
typedef struct serdes_freq {
    uint32_t speed; /* enum serdes_speed_id */
    uint32_t width; /* only logged */
} serdes_freq;

typedef struct serdes_pn {
    uint32_t dir;  /* 0 tx, 1 rx, 2 both; get takes 0 or 1 */
    uint32_t mode; /* 1 inverted, 0 normal */
} serdes_pn;

typedef struct serdes_emphasis {
    uint32_t tap; /* must be 0 */
    uint8_t main;
    uint8_t pre;
    uint8_t post;
    uint8_t swing_leg;
} serdes_emphasis;

typedef struct serdes_prbs {
    uint32_t enable;
    uint32_t dir;  /* 0 tx, 1 rx, 2 both */
    uint32_t type; /* enum serdes_prbs_type */
    uint64_t *user_pattern; /* the pattern of type 16 */
} serdes_prbs;

/* The record of serdes_api_prbs_check, which atolreef does not have. */
typedef struct serdes_prbs_check_info {
    uint32_t lock;
    uint32_t error_count;
} serdes_prbs_check_info;

typedef struct serdes_loopback {
    uint32_t type; /* SERDES_LOOP_* */
    uint32_t enable;
} serdes_loopback;

typedef struct serdes_power {
    uint32_t dir;   /* SERDES_POWER_TX ... SERDES_POWER_PLL1 */
    uint32_t value; /* 1 power down, 0 power up */
} serdes_power;

typedef struct serdes_control {
    uint32_t type; /* SERDES_CONTROL_* */
    void *value;   /* u32, or serdes_raw_bits for type 5 */
} serdes_control;

/* Control type 5: bits start_bit to end_bit of the lane's register at
 * `addr` (an offset in the macro). */
typedef struct serdes_raw_bits {
    uint32_t addr;
    uint32_t data;
    uint32_t start_bit;
    uint32_t end_bit;
} serdes_raw_bits;

typedef struct serdes_rx_adapt {
    uint32_t type; /* must be 1, DFE */
    uint32_t enable;
} serdes_rx_adapt;

typedef struct serdes_rx_para {
    uint32_t sel; /* must be 1 */
    uint32_t reserved;
    uint32_t para; /* enum serdes_rx_para_id */
    uint32_t value;
} serdes_rx_para;

typedef struct serdes_eye {
    uint32_t unused;
    uint32_t left;
    uint32_t right;
    uint32_t up;
    uint32_t down;
    uint32_t x_center;
    uint32_t y_center;
} serdes_eye;

/* An 8K clock output (clk_id 0 to 2) as the hardware holds it. */
typedef struct serdes_8k_clk {
    uint32_t serdes_id; /* the lane its select fields take */
    uint32_t enable;
    uint32_t clk_sel;   /* clk_sel_mux4 */
    uint32_t div0;      /* srds_8k_div_cfg0 */
    uint32_t div1;      /* srds_8k_div_cfg1 */
} serdes_8k_clk;

TIDE_API int32_t serdes_api_refclk_set(uint32_t chip_id, uint32_t serdes_id, uint32_t refclk);
TIDE_API int32_t serdes_api_refclk_get(uint32_t chip_id, uint32_t serdes_id, uint32_t *refclk);
/* Reference clock type (0 to 2) for the next bring-up of the chip's lanes;
 * it takes the place of the property serdes_pll_clk_type. */
TIDE_API int32_t serdes_api_refclk_chose_set(uint32_t chip_id, uint32_t serdes_id, uint32_t refclk);
TIDE_API int32_t serdes_api_freq_set(uint32_t chip_id, uint32_t serdes_id, serdes_freq *freq);
TIDE_API int32_t serdes_api_freq_get(uint32_t chip_id, uint32_t serdes_id, serdes_freq *freq);
TIDE_API int32_t serdes_api_pn_set(uint32_t chip_id, uint32_t serdes_id, serdes_pn *pn);
TIDE_API int32_t serdes_api_pn_get(uint32_t chip_id, uint32_t serdes_id, serdes_pn *pn);
TIDE_API int32_t serdes_api_emphasis_set(uint32_t chip_id, uint32_t serdes_id, serdes_emphasis *emphasis);
TIDE_API int32_t serdes_api_emphasis_get(uint32_t chip_id, uint32_t serdes_id, serdes_emphasis *emphasis);
TIDE_API int32_t serdes_api_serdes_enable_set(uint32_t chip_id, uint32_t serdes_id, uint32_t *enable);
TIDE_API int32_t serdes_api_serdes_enable_get(uint32_t chip_id, uint32_t serdes_id, uint32_t *enable);
TIDE_API int32_t serdes_api_prbs_set(uint32_t chip_id, uint32_t serdes_id, serdes_prbs *prbs);
TIDE_API int32_t serdes_api_prbs_get(uint32_t chip_id, uint32_t serdes_id, serdes_prbs *prbs);
/* Puts `count` (at most 65535) bit errors into the generated pattern. */
TIDE_API int32_t serdes_api_prbs_insert_err_pkt(uint32_t chip_id, uint32_t serdes_id, uint32_t count);
/* The errors the checker counted; the read restarts the checker. */
TIDE_API int32_t serdes_api_prbs_counter_get(uint32_t chip_id, uint32_t serdes_id, uint32_t *count);
TIDE_API int32_t serdes_api_prbs_check(uint32_t chip_id, uint32_t serdes_id, serdes_prbs_check_info *info);
TIDE_API int32_t serdes_api_prbs_counter_clear(uint32_t chip_id, uint32_t serdes_id);
TIDE_API int32_t serdes_api_prbs_invert_enable_set(uint32_t chip_id, uint32_t serdes_id, serdes_pn *invert);
TIDE_API int32_t serdes_api_serdes_reset(uint32_t chip_id, uint32_t serdes_id, uint32_t mode);
TIDE_API int32_t serdes_api_loopback_set(uint32_t chip_id, uint32_t serdes_id, serdes_loopback *loopback);
/* Fills `enable` for the `type` given. */
TIDE_API int32_t serdes_api_loopback_get(uint32_t chip_id, uint32_t serdes_id, serdes_loopback *loopback);
TIDE_API int32_t serdes_api_power_set(uint32_t chip_id, uint32_t serdes_id, serdes_power *power);
/* Fills `value` for the `dir` given. */
TIDE_API int32_t serdes_api_power_get(uint32_t chip_id, uint32_t serdes_id, serdes_power *power);
TIDE_API int32_t serdes_api_control_set(uint32_t chip_id, uint32_t serdes_id, serdes_control *control);
TIDE_API int32_t serdes_api_control_get(uint32_t chip_id, uint32_t serdes_id, serdes_control *control);
TIDE_API int32_t serdes_api_rx_adapt_set(uint32_t chip_id, uint32_t serdes_id, serdes_rx_adapt *adapt);
TIDE_API int32_t serdes_api_rx_adapt_get(uint32_t chip_id, uint32_t serdes_id, serdes_rx_adapt *adapt);
TIDE_API int32_t serdes_api_rx_para_set(uint32_t chip_id, uint32_t serdes_id, serdes_rx_para *para);
/* A report of the receiver's settings into `buffer`, which holds at least
 * SERDES_RX_PARA_BUFF_LEN bytes. */
TIDE_API int32_t serdes_api_rx_para_get(uint32_t chip_id, uint32_t serdes_id, char *buffer);
TIDE_API int32_t serdes_api_four_point_eye(uint32_t chip_id, uint32_t serdes_id, serdes_eye *eye);
TIDE_API int32_t serdes_api_full_eye_get(uint32_t chip_id, uint32_t serdes_id, char *buffer, uint64_t len);
TIDE_API int32_t serdes_api_all_reg_dump(uint32_t chip_id, uint32_t serdes_id, uint32_t detail, char *buffer,
                                         uint64_t len);
/* A whole register of the lane's macro by its offset (a lane register
 * for the lane of serdes_id). */
TIDE_API int32_t serdes_api_inner_register_get(uint32_t chip_id, uint32_t serdes_id, uint32_t addr, uint32_t *data);
TIDE_API int32_t serdes_api_inner_register_set(uint32_t chip_id, uint32_t serdes_id, uint32_t addr, uint32_t data);
TIDE_API int32_t serdes_api_debug_info_get(uint32_t chip_id, uint32_t serdes_id, char *buffer, uint64_t len);
/* Registers and fields of the macro's catalogue by name. */
TIDE_API int32_t serdes_api_name_register_field_get(uint32_t chip_id, uint32_t serdes_id, char *reg, char *field,
                                                    uint32_t *data);
TIDE_API int32_t serdes_api_name_register_field_set(uint32_t chip_id, uint32_t serdes_id, char *reg, char *field,
                                                    uint32_t data);
TIDE_API int32_t serdes_api_name_register_get(uint32_t chip_id, uint32_t serdes_id, char *reg, uint32_t *data);
TIDE_API int32_t serdes_api_name_register_set(uint32_t chip_id, uint32_t serdes_id, char *reg, uint32_t data);
TIDE_API int32_t serdes_api_serdes_type_sel(uint32_t chip_id, uint32_t serdes_type);
TIDE_API int32_t serdes_api_support_speed_get(uint32_t chip_id, uint32_t serdes_id, char *buffer, uint64_t len);
TIDE_API int32_t serdes_api_sram_get(uint32_t chip_id, uint32_t serdes_id, char *buffer, uint64_t len);
/* Feeds 8K clock output `clk_id` (0 to 2) from the lane. */
TIDE_API int32_t serdes_api_8k_clk_set(uint32_t chip_id, uint32_t serdes_id, uint32_t clk_id);
TIDE_API int32_t serdes_api_8k_clk_get(uint32_t chip_id, uint32_t clk_id, serdes_8k_clk *clk);
/* Runs the offset calibration of one lane and reports it into `buffer`,
 * which holds at least SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN bytes. */
TIDE_API int32_t serdes_api_ctle_offset_calibrate_result(uint32_t chip_id, uint32_t serdes_id, char *buffer,
                                                         uint32_t len);

TIDE_END_DECLS

#endif /* TIDE_SERDES_H */
