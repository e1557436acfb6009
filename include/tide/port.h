/*
 * tide: the port service.
 *
 * A logical port (`lport`) is the port number of every call: on atolreef 0
 * to 27 are the MAC ports of the front panel, 28 to 31 inner ports, 31 the
 * CPU port.  A port bitmap has room for 192 ports.  Every call takes the
 * chip id first and returns a status (0, or a negative code whose text
 * shr_errmsg gives); results go through the pointer arguments.
 */
#ifndef TIDE_PORT_H
#define TIDE_PORT_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* ---- port bitmap ---------------------------------------------------------- */

#define PORT_BITMAP_WORDS 3u
#define PORT_BITMAP_PORTS 192u

/* Bit `lport & 63` of word `lport >> 6`. */
typedef struct port_bitmap {
    uint64_t word[PORT_BITMAP_WORDS];
} port_bitmap;

/* The bitmaps of the port configuration, by position in port_config. */
enum port_config_pos {
    PORT_CONFIG_ALL = 0,    /* every logical port of the chip */
    PORT_CONFIG_ACTIVE = 1, /* ports that the current interface types bring into use */
    PORT_CONFIG_ETHER = 2,  /* front ports */
    PORT_CONFIG_INNER = 3,  /* inner ports */
    PORT_CONFIG_CPU = 5,    /* the CPU port */
    PORT_CONFIG_COUNT = 23
};

typedef struct port_config {
    port_bitmap pbmp[PORT_CONFIG_COUNT];
} port_config;

/* ---- records ---------------------------------------------------------------- */

/* Interface types of a MAG (a SerDes lane with its PCS and MACs). */
enum port_interface_type {
    PORT_INTERFACE_NULL = 0,
    PORT_INTERFACE_1000BASE_X = 1,
    PORT_INTERFACE_SGMII = 2,
    PORT_INTERFACE_2G5_SGMII = 3,
    PORT_INTERFACE_SGMII_4P = 4,
    PORT_INTERFACE_SGMII_8P = 5,
    PORT_INTERFACE_QSGMII = 6,
    PORT_INTERFACE_OSGMII = 7,
    PORT_INTERFACE_2500BASE_X = 8,
    PORT_INTERFACE_2G5BASE_X = 9,
    PORT_INTERFACE_10GBASE_R = 10,
    PORT_INTERFACE_12G5BASE_R = 11,
    PORT_INTERFACE_FLEXMII = 12,
    PORT_INTERFACE_MMAC = 13,
    PORT_INTERFACE_MPCS = 14,
    PORT_INTERFACE_FLEXE = 15,
    PORT_INTERFACE_10GBASE_MINUS_R = 16,
    PORT_INTERFACE_100BASE_FX = 17,
    PORT_INTERFACE_10G_SXGMII = 18,
    PORT_INTERFACE_10G_DXGMII = 19,
    PORT_INTERFACE_10G_QXGMII = 20,
    PORT_INTERFACE_COUNT = 21
};

typedef struct port_interface {
    uint32_t interface_type; /* enum port_interface_type */
    uint8_t port_num;        /* MACs of the MAG in use */
} port_interface;

enum port_loop_mode {
    PORT_LOOP_MAC_INNER = 0,
    PORT_LOOP_MAC_OUTER = 1,
    PORT_LOOP_PCS_INNER = 2,
    PORT_LOOP_PCS_OUTER = 3,
    PORT_LOOP_PHY_INNER = 4,
    PORT_LOOP_PHY_OUTER = 5,
    PORT_LOOP_NONE = 6
};

typedef struct port_loopback {
    uint32_t loop_mode;   /* enum port_loop_mode */
    uint32_t transparent; /* 1 enable */
} port_loopback;

/* Speed bits of port_ability. */
enum port_ability_speed {
    PORT_ABILITY_10M = 1,
    PORT_ABILITY_100M = 2,
    PORT_ABILITY_1000M = 4,
    PORT_ABILITY_2G5 = 8,
    PORT_ABILITY_5G = 16,
    PORT_ABILITY_10G = 32
};

enum port_ability_interface {
    INTERFACE_MII = 1,
    INTERFACE_GMII = 2,
    INTERFACE_SGMII = 4,
    INTERFACE_XGMII = 8,
    INTERFACE_QSGMII = 16,
    INTERFACE_CGMII = 32
};

enum port_ability_medium { MEDIUM_COPPER = 1, MEDIUM_FIBE = 2, MEDIUM_BACKPLANE = 4 };

enum port_ability_pause {
    PAUSE_TX = 1,
    PAUSE_RX = 2,
    PAUSE = 4,
    PAUSE_ASYMM = 8,
    PAUSE_SYMM = 16,
    PAUSE_BOTH = 32,
    PAUSE_NONE = 64
};

enum port_ability_eee {
    EEE_100MB_BASETX = 1,
    EEE_1GB_BASET = 2,
    EEE_10GB_BASET = 4,
    EEE_10GB_KX = 8,
    EEE_10GB_KX4 = 16,
    EEE_10GB_KR = 32
};

typedef struct port_ability {
    uint32_t speed_half; /* enum port_ability_speed bits */
    uint32_t speed_full;
    uint32_t interface; /* enum port_ability_interface bits */
    uint32_t medium;    /* enum port_ability_medium bits */
    uint32_t pause;     /* enum port_ability_pause bits */
    uint32_t eee;       /* enum port_ability_eee bits */
} port_ability;

typedef struct port_serdes_id {
    uint8_t count;     /* always 1 */
    uint8_t serdes_id; /* the MAG of the port */
} port_serdes_id;

typedef struct port_clk_delta {
    uint32_t rx_sign;
    uint32_t rx_delta;
    uint32_t tx_sign;
    uint32_t tx_delta;
} port_clk_delta;

/* A text buffer of the caller: `len` bytes; `used` is the length of the
 * text after the call. */
typedef struct port_info_buff {
    char *buff;
    uint32_t len;
    uint32_t used;
} port_info_buff;

/* Argument values. */
enum port_enable_type { PORT_ENABLE_TX = 0, PORT_ENABLE_RX = 1, PORT_ENABLE_BOTH = 2 };
enum port_frame_type { PORT_FRAME_TX = 0, PORT_FRAME_RX = 1 };
enum port_pause_type {
    PORT_PAUSE_TX_EN = 0,
    PORT_PAUSE_RX_EN = 1,
    PORT_PAUSE_TX_RESPON = 2,
    PORT_PAUSE_RX_ERR = 3
};
enum port_crc_type { PORT_CRC_TX_EN = 0, PORT_CRC_RX_EN = 1, PORT_CRC_TX_CHK = 2, PORT_CRC_RX_CHK = 3 };
enum port_link_mode { PORT_LINK_NORMAL = 0, PORT_LINK_FORCED = 1 };
enum port_link_status { PORT_LINK_DOWN = 0, PORT_LINK_UP = 1 };
enum port_cfg_flag {
    PORT_CFG_TX_PADDING_EN = 0,
    PORT_CFG_TX_CUT_EN = 1,
    PORT_CFG_RX_CUT_EN = 2,
    PORT_CFG_TX_DROP_EN = 3,
    PORT_CFG_RX_SHORT_ERR = 4,
    PORT_CFG_FAULT_INSERT_TYPE1 = 5,
    PORT_CFG_FAULT_INSERT_TYPE2 = 6,
    PORT_CFG_FAULT_RESPONSE_TYPE0 = 7,
    PORT_CFG_FAULT_RESPONSE_TYPE1 = 8,
    PORT_CFG_PAUSE_FROM_AN = 9
};
/* Bits of the port_api_fault_get result. */
enum port_fault_bit { PORT_FAULT_LOCAL = 1, PORT_FAULT_REMOTE = 2, PORT_FAULT_LINK_INT = 4 };

/* Counter items: 0 to 52 receive, 53 to 103 transmit. */
#define PORT_MIB_RX_ITEMS 53u
#define PORT_MIB_ITEMS 104u

/* ---- calls -------------------------------------------------------------------- */

TIDE_API int32_t port_api_map_mode_set(uint32_t chip_id, uint32_t mapping_mode);
TIDE_API int32_t port_api_map_mode_get(uint32_t chip_id, uint32_t *mapping_mode);
TIDE_API int32_t port_api_interface_set(uint32_t chip_id, uint32_t lport, port_interface *info);
TIDE_API int32_t port_api_interface_get(uint32_t chip_id, uint32_t lport, port_interface *info);
TIDE_API int32_t port_api_config_get(uint32_t chip_id, port_config *config);
TIDE_API int32_t port_api_tx_rx_enable_set(uint32_t chip_id, uint32_t lport, uint32_t enable_type,
                                           uint32_t enable_value);
TIDE_API int32_t port_api_tx_rx_enable_get(uint32_t chip_id, uint32_t lport, uint32_t enable_type,
                                           uint32_t *enable_value);
TIDE_API int32_t port_api_enable_set(uint32_t chip_id, uint32_t lport, uint32_t enable_value);
TIDE_API int32_t port_api_enable_get(uint32_t chip_id, uint32_t lport, uint32_t *enable_value);
TIDE_API int32_t port_api_autoneg_set(uint32_t chip_id, uint32_t lport, uint32_t enable);
TIDE_API int32_t port_api_autoneg_get(uint32_t chip_id, uint32_t lport, uint32_t *enable);
TIDE_API int32_t port_api_autoneg_restart(uint32_t chip_id, uint32_t lport);
TIDE_API int32_t port_api_advert_ability_set(uint32_t chip_id, uint32_t lport, port_ability *ability);
TIDE_API int32_t port_api_advert_ability_get(uint32_t chip_id, uint32_t lport, port_ability *ability);
TIDE_API int32_t port_api_local_ability_get(uint32_t chip_id, uint32_t lport, port_ability *ability);
TIDE_API int32_t port_api_remote_ability_get(uint32_t chip_id, uint32_t lport, port_ability *ability);
/* Speed in Mbit/s. */
TIDE_API int32_t port_api_speed_set(uint32_t chip_id, uint32_t lport, uint32_t speed);
TIDE_API int32_t port_api_speed_get(uint32_t chip_id, uint32_t lport, uint32_t *speed);
/* 1 full, 0 half. */
TIDE_API int32_t port_api_duplex_set(uint32_t chip_id, uint32_t lport, uint32_t duplex_mode);
TIDE_API int32_t port_api_duplex_get(uint32_t chip_id, uint32_t lport, uint32_t *duplex_mode);
TIDE_API int32_t port_api_vlan_pause_set(uint32_t chip_id, uint32_t lport, uint32_t type, uint32_t value);
TIDE_API int32_t port_api_vlan_pause_get(uint32_t chip_id, uint32_t lport, uint32_t type, uint32_t *value);
TIDE_API int32_t port_api_pause_set(uint32_t chip_id, uint32_t lport, uint32_t pause_type, uint32_t pause_value);
TIDE_API int32_t port_api_pause_get(uint32_t chip_id, uint32_t lport, uint32_t pause_type, uint32_t *pause_value);
/* The source address of pause frames, most significant byte first. */
TIDE_API int32_t port_api_pause_addr_set(uint32_t chip_id, uint32_t lport, uint8_t smac[6]);
TIDE_API int32_t port_api_pause_addr_get(uint32_t chip_id, uint32_t lport, uint8_t smac[6]);
TIDE_API int32_t port_api_max_frame_set(uint32_t chip_id, uint32_t lport, uint32_t frame_type, uint32_t length);
TIDE_API int32_t port_api_max_frame_get(uint32_t chip_id, uint32_t lport, uint32_t frame_type, uint32_t *length);
TIDE_API int32_t port_api_min_frame_set(uint32_t chip_id, uint32_t lport, uint32_t frame_type, uint32_t length);
TIDE_API int32_t port_api_min_frame_get(uint32_t chip_id, uint32_t lport, uint32_t frame_type, uint32_t *length);
TIDE_API int32_t port_api_mac_link_status_get(uint32_t chip_id, uint32_t lport, uint32_t *status);
TIDE_API int32_t port_api_link_status_get(uint32_t chip_id, uint32_t lport, uint32_t *status);
TIDE_API int32_t port_api_ifg_set(uint32_t chip_id, uint32_t lport, uint8_t ifg);
TIDE_API int32_t port_api_ifg_get(uint32_t chip_id, uint32_t lport, uint8_t *ifg);
TIDE_API int32_t port_api_fault_get(uint32_t chip_id, uint32_t lport, uint32_t *fault);
TIDE_API int32_t port_api_counter_get(uint32_t chip_id, uint32_t lport, uint32_t mib_item, uint64_t *value);
TIDE_API int32_t port_api_counter_clean(uint32_t chip_id, uint32_t lport);
TIDE_API int32_t port_api_loopback_set(uint32_t chip_id, uint32_t lport, port_loopback *loopback);
TIDE_API int32_t port_api_loopback_get(uint32_t chip_id, uint32_t lport, port_loopback *loopback);
TIDE_API int32_t port_api_force_set(uint32_t chip_id, uint32_t lport, uint32_t link_mode, uint32_t link_status);
TIDE_API int32_t port_api_force_get(uint32_t chip_id, uint32_t lport, uint32_t *link_mode, uint32_t *link_status);
TIDE_API int32_t port_api_crc_set(uint32_t chip_id, uint32_t lport, uint32_t crc_type, uint32_t crc_value);
TIDE_API int32_t port_api_crc_get(uint32_t chip_id, uint32_t lport, uint32_t crc_type, uint32_t *crc_value);
TIDE_API int32_t port_api_dic_mode_set(uint32_t chip_id, uint32_t lport, uint32_t mode);
TIDE_API int32_t port_api_dic_mode_get(uint32_t chip_id, uint32_t lport, uint32_t *mode);
TIDE_API int32_t port_api_clk_delta_get(uint32_t chip_id, uint32_t lport, port_clk_delta *delta);
/* 0 MAC mode, 1 PHY mode. */
TIDE_API int32_t port_api_mac_phy_mode_set(uint32_t chip_id, uint32_t mode);
TIDE_API int32_t port_api_mac_phy_mode_get(uint32_t chip_id, uint32_t *mode);
TIDE_API int32_t port_api_serdes_id_get(uint32_t chip_id, uint32_t lport, port_serdes_id *serdes);
TIDE_API int32_t port_api_transmit_path_set(uint32_t chip_id, uint32_t mode, uint32_t select, uint32_t path);
TIDE_API int32_t port_api_transmit_path_get(uint32_t chip_id, uint32_t *mode, uint32_t *select, uint32_t *path);
TIDE_API int32_t port_api_cfg_control_set(uint32_t chip_id, uint32_t lport, uint32_t flag, void *value);
TIDE_API int32_t port_api_cfg_control_get(uint32_t chip_id, uint32_t lport, uint32_t flag, void *value);
TIDE_API int32_t port_api_basic_info_get(uint32_t chip_id, uint32_t lport, port_info_buff *info);
TIDE_API int32_t port_api_alm_info_get(uint32_t chip_id, uint32_t lport, uint32_t clear, port_info_buff *info);
/* 1 holds the port in reset, any other value releases it. */
TIDE_API int32_t port_api_reset(uint32_t chip_id, uint32_t lport, uint32_t reset_flag);

TIDE_END_DECLS

#endif /* TIDE_PORT_H */
