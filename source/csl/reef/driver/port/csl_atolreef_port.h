/*
 * The port layout of atolreef: 8 MAGs, 28 MAC ports, 4 inner ports, the
 * two mapping modes of MACs onto MAGs, the PCS channel and link bit of
 * each MAC, and the chip's port driver table.
 */
#ifndef TIDE_CSL_ATOLREEF_PORT_H
#define TIDE_CSL_ATOLREEF_PORT_H

#include "csl/common/port/csl_port.h"

#ifdef __cplusplus
extern "C" {
#endif

#define CSL_ATOLREEF_PORT_COUNT 32u
#define CSL_ATOLREEF_PCS_CH_COUNT 34u
#define CSL_ATOLREEF_CPU_PORT 31u
#define CSL_ATOLREEF_FIRST_INNER_PORT 28u
#define CSL_ATOLREEF_MAC_GROUPS 5u

/* The driver table. */
extern const csl_port_driver_t g_csl_port_atolreef;
const csl_port_driver_t *csl_atolreef_port_driver_get(void);

/* Counts, bitmaps and, from the property `map_mode`, the MAG and MAC rows;
 * the names of the inner ports in the property store. */
i32 csl_atolreef_control_db_init(u32 chip_id);
/* Removes from the property store the names of the inner ports that
 * csl_atolreef_control_db_init added. */
i32 csl_atolreef_control_db_deinit(u32 chip_id);
/* Loads the MAG and MAC rows of mapping mode 0 or 1 (-4 for another): all
 * MAGs lose their interface type, no port stays active. */
i32 csl_atolreef_port_map_load(u32 chip_id, u32 map_mode);
/* No mapping mode: every MAC absent, no MAG with members or a type. */
i32 csl_atolreef_port_map_clear(u32 chip_id);
/* MAG and index in the MAG of a MAC port in the current mapping; -24
 * (logged) for a port without one. */
i32 csl_atolreef_port_mag_get(u32 chip_id, u32 lport, u32 *mag_id, u32 *mac);
i32 csl_atolreef_port_pcs_channel_get(u32 chip_id, u32 lport, u32 *channel);
/* Whether the MAG of the port takes the interface type and port count in
 * the current mapping mode: 0, or the refusal of the interface sequence
 * (logged), with nothing written. */
i32 csl_atolreef_port_interface_check(u32 chip_id, u32 lport, const port_interface *info);
/* Register index and bit of a MAC port in mag_glb_ch_link. */
i32 csl_atolreef_port_link_bit_get(u32 chip_id, u32 lport, u32 *reg_index, u32 *bit);

#ifdef __cplusplus
}

#include <array>

namespace tide::port::atolreef {

/* A MAG of a mapping mode: how many MACs it holds and the lport of the
 * first; its MACs have consecutive lports. */
struct mag_span {
    u8 max_port;
    u8 first;
};

constexpr mag_span kGlue0[CSL_PORT_MAX_MAG] = {{4, 0}, {4, 4}, {8, 8}, {8, 16}, {1, 24}, {1, 26}, {1, 25}, {1, 27}};
constexpr mag_span kGlue1[CSL_PORT_MAX_MAG] = {{4, 0}, {4, 4}, {4, 8}, {4, 12}, {1, 24}, {1, 26}, {4, 16}, {4, 20}};

constexpr std::array<csl_port_mag_info, CSL_PORT_MAX_MAG> mag_rows(const mag_span (&spans)[CSL_PORT_MAX_MAG])
{
    std::array<csl_port_mag_info, CSL_PORT_MAX_MAG> rows{};
    for (u32 m = 0; m < CSL_PORT_MAX_MAG; m++) {
        rows[m].protocol = 1;
        rows[m].max_port = spans[m].max_port;
        for (u32 i = 0; i < CSL_PORT_MAC_PER_MAG; i++) {
            rows[m].member[i] = i < spans[m].max_port ? spans[m].first + i : CSL_PORT_NONE;
        }
    }
    return rows;
}

/* A MAC that no MAG holds does not exist in the mode. */
constexpr std::array<csl_port_mac_info, CSL_PORT_MAX_MAC> mac_rows(const mag_span (&spans)[CSL_PORT_MAX_MAG])
{
    std::array<csl_port_mac_info, CSL_PORT_MAX_MAC> rows{};
    for (auto &r : rows) {
        r = {CSL_PORT_ABSENT, 0, CSL_PORT_NONE, CSL_PORT_NONE};
    }
    for (u32 m = 0; m < CSL_PORT_MAX_MAG; m++) {
        for (u32 i = 0; i < spans[m].max_port; i++) {
            rows[spans[m].first + i] = {CSL_PORT_UNUSED, 1, static_cast<u8>(m), static_cast<u8>(i)};
        }
    }
    return rows;
}

} // namespace tide::port::atolreef

/* The MAG and MAC rows of mapping modes 0 and 1. */
inline constexpr auto g_atolreef_mag_info_glue0 = tide::port::atolreef::mag_rows(tide::port::atolreef::kGlue0);
inline constexpr auto g_atolreef_mac_info_glue_0 = tide::port::atolreef::mac_rows(tide::port::atolreef::kGlue0);
inline constexpr auto g_atolreef_mag_info_glue1 = tide::port::atolreef::mag_rows(tide::port::atolreef::kGlue1);
inline constexpr auto g_atolreef_mac_info_glue_1 = tide::port::atolreef::mac_rows(tide::port::atolreef::kGlue1);

/* The MAC group of each MAC port: the unit of MAC reset and clock gating. */
inline constexpr u8 g_mac_group_id_per_mac[CSL_PORT_MAX_MAC] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1,
                                                                 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 4, 4};

/* The bit of a MAC in mag_glb_ch_link, [mag_id][mac], CSL_PORT_NONE for a
 * hole.  MAGs 0 to 3 are in register index 0, MAGs 4 to 7 in index 1. */
inline constexpr u8 g_port_link_bitmap[CSL_PORT_MAX_MAG][CSL_PORT_MAC_PER_MAG] = {
    {0, 1, 2, 3, 255, 255, 255, 255},         {8, 9, 10, 11, 255, 255, 255, 255},
    {16, 17, 18, 19, 20, 21, 22, 23},         {24, 25, 26, 27, 28, 29, 30, 31},
    {0, 255, 255, 255, 255, 255, 255, 255},   {8, 255, 255, 255, 255, 255, 255, 255},
    {16, 17, 18, 19, 255, 255, 255, 255},     {24, 25, 26, 27, 255, 255, 255, 255},
};

/* The SerDes speed id (11 to 20, 21 for none) of each interface type, for
 * the 15 family of lane rates (the port's serdes_freq_pll_sel 1) and the
 * 20 family (0). */
namespace tide::port::atolreef {
constexpr u8 speed_id(u32 type, bool pll_15)
{
    switch (type) {
    case PORT_INTERFACE_1000BASE_X:
    case PORT_INTERFACE_SGMII:
        return 11;
    case PORT_INTERFACE_2G5_SGMII:
    case PORT_INTERFACE_2500BASE_X:
        return pll_15 ? 12 : 17;
    case PORT_INTERFACE_SGMII_4P:
    case PORT_INTERFACE_QSGMII:
    case PORT_INTERFACE_100BASE_FX:
        return 13;
    case PORT_INTERFACE_SGMII_8P:
    case PORT_INTERFACE_OSGMII:
        return 14;
    case PORT_INTERFACE_10GBASE_R:
    case PORT_INTERFACE_FLEXMII:
    case PORT_INTERFACE_MMAC:
    case PORT_INTERFACE_MPCS:
    case PORT_INTERFACE_FLEXE:
    case PORT_INTERFACE_10G_SXGMII:
    case PORT_INTERFACE_10G_DXGMII:
    case PORT_INTERFACE_10G_QXGMII:
        return pll_15 ? 15 : 20;
    default:
        return PORT_INTERFACE_COUNT;
    }
}

constexpr std::array<u8, PORT_INTERFACE_COUNT> speed_ids(bool pll_15)
{
    std::array<u8, PORT_INTERFACE_COUNT> t{};
    for (u32 type = 0; type < PORT_INTERFACE_COUNT; type++) {
        t[type] = speed_id(type, pll_15);
    }
    return t;
}
} // namespace tide::port::atolreef

inline constexpr auto g_atolreef_port_protocol_to_speed_id = tide::port::atolreef::speed_ids(true);
inline constexpr auto g_atolreef_port_protocol_to_speed_id_pll20 = tide::port::atolreef::speed_ids(false);

/* The flat index of a MAC within the pcs_an channels. */
constexpr u32 csl_atolreef_pcs_channel(u32 mag_id, u32 mac)
{
    if (mag_id < 2) {
        return mag_id * 4 + mac;
    }
    if (mag_id < 4) {
        return mag_id * 8 - 8 + mac;
    }
    if (mag_id < 6) {
        return mag_id + 20 + mac;
    }
    return mag_id * 4 + 2 + mac;
}
#endif

#endif /* TIDE_CSL_ATOLREEF_PORT_H */
