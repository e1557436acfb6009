/*
 * The port model of a chip: which logical ports exist, how they map onto
 * MAGs and MACs, the bitmaps that describe sets of them, and the chip's
 * port driver, a table of operations.
 */
#ifndef TIDE_CSL_PORT_H
#define TIDE_CSL_PORT_H

#include <tide/port.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

#define CSL_PORT_MAX_MAG 8u
#define CSL_PORT_MAX_MAC 28u
#define CSL_PORT_MAC_PER_MAG 8u
/* No MAG, MAC or member. */
#define CSL_PORT_NONE 255u

/* `use` of a MAC row. */
enum csl_port_use { CSL_PORT_UNUSED = 0, CSL_PORT_USED = 1, CSL_PORT_ABSENT = 2 };

/* Mapping modes; 2 means none is loaded. */
#define CSL_PORT_MAP_MODES 2u
#define CSL_PORT_MAP_NONE 2u

/* One MAC port, by lport. */
typedef struct csl_port_mac_info {
    u32 use;   /* enum csl_port_use */
    u8 enable; /* port enable as last set */
    u8 mag_id; /* CSL_PORT_NONE when absent */
    u8 mac;    /* index in the MAG, CSL_PORT_NONE when absent */
} csl_port_mac_info;

/* One MAG, by mag_id. */
typedef struct csl_port_mag_info {
    u32 protocol;
    u32 interface_type; /* enum port_interface_type, 0 until configured */
    u8 max_port;        /* MACs the MAG can hold in this mapping mode */
    u8 port_num;        /* MACs in use now */
    u32 member[CSL_PORT_MAC_PER_MAG]; /* lport of each MAC, CSL_PORT_NONE for none */
} csl_port_mag_info;

/* The port control record of a chip. */
typedef struct csl_port_control {
    xsal_mutex_t lock;
    port_bitmap valid_bmp; /* the ports that exist */
    u32 cpu_port;
    u32 map_mode; /* 0, 1, or CSL_PORT_MAP_NONE */
    u32 mag_count;
    u32 mac_count;
    u32 pcs_ch_count;
    u32 lport_count;
    port_config port_config;
    csl_port_mac_info mac_info[CSL_PORT_MAX_MAC];
    csl_port_mag_info mag_info[CSL_PORT_MAX_MAG];
} csl_port_control;

/*
 * The operations of a port driver, in slot order, after the name slot.
 * OP(name, (parameters)).  Per-port operations take the lport second;
 * chip-wide ones take an lport they ignore.
 */
#define CSL_PORT_DRIVER_OPS(OP)                                                          \
    OP(port_counter_db_malloc, (u32 chip_id))                                            \
    OP(port_counter_db_free, (u32 chip_id))                                              \
    OP(port_counter_db_update, (u32 chip_id))                                            \
    OP(port_hw_phase1_init, (u32 chip_id))                                               \
    OP(port_hw_phase2_init, (u32 chip_id))                                               \
    OP(mapping_mode_set, (u32 chip_id, u32 lport, u32 map_type))                         \
    OP(mapping_mode_get, (u32 chip_id, u32 lport, u32 *map_type))                        \
    OP(port_interface_type_set, (u32 chip_id, u32 lport, port_interface *info))          \
    OP(port_interface_type_get, (u32 chip_id, u32 lport, port_interface *info))          \
    OP(port_config_get, (u32 chip_id, u32 lport, port_config *config))                   \
    OP(port_tx_rx_enable_set, (u32 chip_id, u32 lport, u32 enable_type, u32 value))      \
    OP(port_tx_rx_enable_get, (u32 chip_id, u32 lport, u32 enable_type, u32 *value))     \
    OP(port_enable_set, (u32 chip_id, u32 lport, u32 value))                             \
    OP(port_enable_get, (u32 chip_id, u32 lport, u32 *value))                            \
    OP(pcs_an_enable_set, (u32 chip_id, u32 lport, u32 enable))                          \
    OP(pcs_an_enable_get, (u32 chip_id, u32 lport, u32 *enable))                         \
    OP(autoneg_restart_set, (u32 chip_id, u32 lport))                                    \
    OP(advert_ability_set, (u32 chip_id, u32 lport, port_ability *ability))              \
    OP(advert_ability_get, (u32 chip_id, u32 lport, port_ability *ability))              \
    OP(local_ability_get, (u32 chip_id, u32 lport, port_ability *ability))               \
    OP(remote_ability_get, (u32 chip_id, u32 lport, port_ability *ability))              \
    OP(port_speed_set, (u32 chip_id, u32 lport, u32 speed))                              \
    OP(port_speed_get, (u32 chip_id, u32 lport, u32 *speed))                             \
    OP(port_duplex_set, (u32 chip_id, u32 lport, u32 duplex_mode))                       \
    OP(port_duplex_get, (u32 chip_id, u32 lport, u32 *duplex_mode))                      \
    OP(vlan_pause_set, (u32 chip_id, u32 lport, u32 type, u32 value))                    \
    OP(vlan_pause_get, (u32 chip_id, u32 lport, u32 type, u32 *value))                   \
    OP(mac_pause_set, (u32 chip_id, u32 lport, u32 pause_type, u32 value))               \
    OP(mac_pause_get, (u32 chip_id, u32 lport, u32 pause_type, u32 *value))              \
    OP(mac_pause_smac_set, (u32 chip_id, u32 lport, u8 *smac))                           \
    OP(mac_pause_smac_get, (u32 chip_id, u32 lport, u8 *smac))                           \
    OP(max_frame_set, (u32 chip_id, u32 lport, u32 frame_type, u32 length))              \
    OP(max_frame_get, (u32 chip_id, u32 lport, u32 frame_type, u32 *length))             \
    OP(min_frame_set, (u32 chip_id, u32 lport, u32 frame_type, u32 length))              \
    OP(min_frame_get, (u32 chip_id, u32 lport, u32 frame_type, u32 *length))             \
    OP(mac_link_status_get, (u32 chip_id, u32 lport, u32 *status))                       \
    OP(link_status_get, (u32 chip_id, u32 lport, u32 *status))                           \
    OP(ifg_set, (u32 chip_id, u32 lport, u8 ifg))                                        \
    OP(ifg_get, (u32 chip_id, u32 lport, u8 *ifg))                                       \
    OP(mac_fault_status_get, (u32 chip_id, u32 lport, u32 *fault))                       \
    OP(counter_get, (u32 chip_id, u32 lport, u32 mib_item, u64 *value))                  \
    OP(port_counter_clean, (u32 chip_id, u32 lport))                                     \
    OP(port_loopback_set, (u32 chip_id, u32 lport, port_loopback *loopback))             \
    OP(port_loopback_get, (u32 chip_id, u32 lport, port_loopback *loopback))             \
    OP(port_force_link_set, (u32 chip_id, u32 lport, u32 link_mode, u32 link_status))    \
    OP(port_force_link_get, (u32 chip_id, u32 lport, u32 *link_mode, u32 *link_status))  \
    OP(port_crc_set, (u32 chip_id, u32 lport, u32 crc_type, u32 value))                  \
    OP(port_crc_get, (u32 chip_id, u32 lport, u32 crc_type, u32 *value))                 \
    OP(dic_mode_set, (u32 chip_id, u32 lport, u32 mode))                                 \
    OP(dic_mode_get, (u32 chip_id, u32 lport, u32 *mode))                                \
    OP(clk_delta_result_get, (u32 chip_id, u32 lport, port_clk_delta *delta))            \
    OP(mac_phy_mode_set, (u32 chip_id, u32 lport, u32 mode))                             \
    OP(mac_phy_mode_get, (u32 chip_id, u32 lport, u32 *mode))                            \
    OP(serdes_id_get, (u32 chip_id, u32 lport, port_serdes_id *serdes))                  \
    OP(port_transmit_path_set, (u32 chip_id, u32 mode, u32 select, u32 path))            \
    OP(port_transmit_path_get, (u32 chip_id, u32 *mode, u32 *select, u32 *path))         \
    OP(cfg_control_set, (u32 chip_id, u32 lport, u32 flag, void *value))                 \
    OP(cfg_control_get, (u32 chip_id, u32 lport, u32 flag, void *value))                 \
    OP(basic_info_get, (u32 chip_id, u32 lport, port_info_buff *info))                   \
    OP(alm_info_get, (u32 chip_id, u32 lport, u32 clear, port_info_buff *info))          \
    OP(port_reset_set, (u32 chip_id, u32 lport, u32 reset_flag))

#define CSL_PORT_DRIVER_SLOT(name, params) i32(*name) params;
/* A port driver: its name, then one slot per operation; an empty slot is
 * an operation the driver does not have. */
typedef struct csl_port_driver_t {
    const char *name;
    CSL_PORT_DRIVER_OPS(CSL_PORT_DRIVER_SLOT)
} csl_port_driver_t;
#undef CSL_PORT_DRIVER_SLOT

/* ---- the control record ------------------------------------------------------ */

extern csl_port_control *g_csl_port_control[SHR_MAX_CHIPS];
/* The chip's port driver, NULL for a chip without one. */
extern const csl_port_driver_t *g_csl_port_driver[SHR_MAX_CHIPS];

/* Allocates the record and its mutex; -20 when that fails. */
i32 csl_port_control_init(u32 chip_id);
i32 csl_port_control_deinit(u32 chip_id);
/* The record, or NULL (also for a chip id above 3). */
csl_port_control *csl_port_control_get(u32 chip_id);
/* Stores the chip type's port driver; nothing for a chip without one. */
i32 csl_port_base_init(u32 chip_id);
/* Fills counts, bitmaps and the MAG and MAC rows for the chip type. */
i32 csl_port_control_db_init(u32 chip_id);
/* Removes what the fill put into the property store. */
i32 csl_port_control_db_deinit(u32 chip_id);
/* The driver of a port; -7 when the chip type has none. */
i32 csl_port_probe(u32 chip_id, u32 lport, const csl_port_driver_t **driver);

/* 0 for an existing port; -24 (logged) for one that does not exist; -20
 * when the chip has no control record. */
i32 csl_port_valid_check(u32 chip_id, u32 lport);
/* -24 (logged) at the first port of the bitmap that does not exist. */
i32 csl_port_valid_bmp_check(u32 chip_id, const port_bitmap *pbmp);
i32 csl_port_valid_bmp_get(u32 chip_id, port_bitmap *pbmp);
/* -24, logged with the message of a port that does not exist. */
i32 csl_port_not_exist(u32 chip_id, u32 lport);

/* ---- names ------------------------------------------------------------------------ */

/* The name of each interface type (enum port_interface_type), and one
 * more "NULL" past the last. */
#define CSL_PORT_INTERFACE_NAMES 22u
extern const char *const interface_type_string[CSL_PORT_INTERFACE_NAMES];
/* The name of each loop mode (enum port_loop_mode). */
#define CSL_PORT_LOOP_MODES 7u
extern const char *const loop_mode_string[CSL_PORT_LOOP_MODES];
/* The counter items: receive 0 to 52, then transmit from 53. */
extern const char *const port_counter_rx_string[PORT_MIB_RX_ITEMS];
extern const char *const port_counter_tx_string[PORT_MIB_ITEMS - PORT_MIB_RX_ITEMS];

/* ---- properties ---------------------------------------------------------------- */

/* A number property of the chip (`port` -1) or of a port or MAG, or
 * `dflt` when it is not set. */
i32 csl_port_property_get(u32 chip_id, i32 port, const char *key, i32 dflt);

#ifdef __cplusplus
}

#include <cstring>

/* ---- port bitmaps ------------------------------------------------------------------ */

namespace tide::port {

constexpr bool pbmp_test(const port_bitmap &b, u32 lport)
{
    return lport < PORT_BITMAP_PORTS && ((b.word[lport >> 6] >> (lport & 63)) & 1u) != 0;
}
constexpr void pbmp_set(port_bitmap &b, u32 lport)
{
    if (lport < PORT_BITMAP_PORTS) {
        b.word[lport >> 6] |= u64{1} << (lport & 63);
    }
}
constexpr void pbmp_clear(port_bitmap &b, u32 lport)
{
    if (lport < PORT_BITMAP_PORTS) {
        b.word[lport >> 6] &= ~(u64{1} << (lport & 63));
    }
}
/* Ports first to last, both included. */
constexpr port_bitmap pbmp_range(u32 first, u32 last)
{
    port_bitmap b{};
    for (u32 p = first; p <= last; p++) {
        pbmp_set(b, p);
    }
    return b;
}
constexpr port_bitmap pbmp_and_not(const port_bitmap &a, const port_bitmap &b)
{
    port_bitmap r{};
    for (u32 w = 0; w < PORT_BITMAP_WORDS; w++) {
        r.word[w] = a.word[w] & ~b.word[w];
    }
    return r;
}
constexpr port_bitmap pbmp_or(const port_bitmap &a, const port_bitmap &b)
{
    port_bitmap r{};
    for (u32 w = 0; w < PORT_BITMAP_WORDS; w++) {
        r.word[w] = a.word[w] | b.word[w];
    }
    return r;
}
constexpr bool pbmp_eq(const port_bitmap &a, const port_bitmap &b)
{
    for (u32 w = 0; w < PORT_BITMAP_WORDS; w++) {
        if (a.word[w] != b.word[w]) {
            return false;
        }
    }
    return true;
}

/* `count` zeroed records from xsal_malloc, or NULL. */
template <typename T>
T *zalloc(u64 count, const char *tag)
{
    auto *p = static_cast<T *>(xsal_malloc(count * sizeof(T), tag, SHR_MOD_PORT));
    if (p != nullptr) {
        memset(p, 0, count * sizeof(T));
    }
    return p;
}

/* Holds a recursive mutex for the length of a scope. */
class MutexGuard {
public:
    explicit MutexGuard(xsal_mutex_t m) : m_(m), held_(xsal_mutex_lock(m) == 0) {}
    ~MutexGuard()
    {
        if (held_) {
            xsal_mutex_unlock(m_);
        }
    }
    MutexGuard(const MutexGuard &) = delete;
    MutexGuard &operator=(const MutexGuard &) = delete;

private:
    xsal_mutex_t m_;
    bool held_;
};

} // namespace tide::port
#endif

#endif /* TIDE_CSL_PORT_H */
