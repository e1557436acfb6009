// The port control record of each chip, its port driver, and the checks
// of port numbers that every feature uses.
#include <bit>

#include <tide/property.h>

#include "csl/common/port/csl_port.h"
#include "csl/reef/driver/port/csl_atolreef_port.h"

using tide::port::pbmp_test;

extern "C" {

csl_port_control *g_csl_port_control[SHR_MAX_CHIPS];
const csl_port_driver_t *g_csl_port_driver[SHR_MAX_CHIPS];

const char *const interface_type_string[CSL_PORT_INTERFACE_NAMES] = {
    "NULL",       "1000BASE_X", "SGMII",      "2G5_SGMII",       "SGMII_4P",   "SGMII_8P",
    "QSGMII",     "OSGMII",     "2500BASE_X", "2G5BASE_X",       "10GBASE_R",  "12G5BASE_R",
    "FLEXMII",    "MMAC",       "MPCS",       "FLEXE",           "10GBASE_MINUS_R", "100BASE_FX",
    "10G_SXGMII", "10G_DXGMII", "10G_QXGMII", "NULL"};

const char *const loop_mode_string[CSL_PORT_LOOP_MODES] = {"MAC-INNER", "MAC-OUTER", "PCS-INNER", "PCS-OUTER",
                                                           "PHY-INNER", "PHY-OUTER", "NONE"};

const char *const port_counter_rx_string[PORT_MIB_RX_ITEMS] = {
    "rx_total_pkt",     "rx_total_byte",    "rx_good_pkt",      "rx_good_byte",   "rx_bad_pkt",
    "rx_bad_byte",      "rxunicast",        "rxmulticast",      "rxbroadcast",    "rxundersize",
    "rx_fragment",      "rxundermin",       "rx_64",            "rx_127_65",      "rx_255_128",
    "rx_511_256",       "rx_1023_512",      "rx_1518_1024",     "rx_2047_1519",   "rx_4095_2048",
    "rx_8191_4096",     "rx_9216_8192",     "rx_12887_9217",    "rx_16383_12888", "rx_max_1519",
    "rx_max_1519_good", "rx_max_1519_bad",  "rx_overmax_good",  "rx_overmax_bad", "rxpause",
    "rxctrl",           "rxsymbol_err",     "rxfcs_err",        "rx_segment_bytes", "rx_err_all",
    "rx_9000b",         "rx_runt",          "rx_jumbo",         "rx_oversize",    "rx_jabber",
    "rx_long",          "rx_long_noerr",    "rx_long_err",      "rx_align_err",   "rx_local_fault",
    "rx_remote_fault",  "rx_symbol_fault",  "rx_code_fault",    "rx_pfc_control", "rx_unsupport_control",
    "rx_loopback",      "rx_out_range",     "rx_mtu_err"};

const char *const port_counter_tx_string[PORT_MIB_ITEMS - PORT_MIB_RX_ITEMS] = {
    "tx_total_pkt",     "tx_total_byte",   "tx_good_pkt",        "tx_good_byte",          "tx_bad_pkt",
    "tx_bad_byte",      "txunicast",       "txmulticast",        "txbroadcast",           "txundersized",
    "txundermin",       "txfragment",      "tx_64",              "tx_127_65",             "tx_255_128",
    "tx_511_256",       "tx_1023_512",     "tx_1518_1024",       "tx_2047_1519",          "tx_4095_2048",
    "tx_8191_4096",     "tx_9216_8192",    "tx_12887_9217",      "tx_16383_12888",        "tx_max_1519",
    "tx_max_1519_good", "tx_max_1519_bad", "tx_overmax_good",    "tx_overmax_bad",        "txpause",
    "txctrl",           "tx1588pkt",       "txerr_all",          "tx_from_app_good",      "tx_from_app_bad",
    "tx_half_deferral", "tx_half_singel_col", "tx_half_multi_col", "tx_half_excessive_col", "tx_half_late_col",
    "tx_half_crs_lost", "tx_9000b",        "tx_jumbo",           "tx_oversize",           "tx_jabber",
    "tx_fcs_err",       "tx_local_fault",  "tx_remote_fault",    "tx_inter_err",          "tx_parity_err",
    "tx_pfc"};

i32 csl_port_property_get(u32 chip_id, i32 port, const char *key, i32 dflt)
{
    // A chip setting, or a port's with the port forms tried first.
    return port < 0 ? shr_property_get(chip_id, key, dflt) : shr_property_port_get(chip_id, port, key, dflt);
}

i32 csl_port_control_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (g_csl_port_control[chip_id] != nullptr) {
        return 0;
    }
    auto *ctl = tide::port::zalloc<csl_port_control>(1, "port_control");
    if (ctl == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "port_control malloc fail.\n");
        return SHR_E_NULL_PTR;
    }
    ctl->map_mode = CSL_PORT_MAP_NONE;
    ctl->lock = xsal_mutex_create("socPortControlMutex");
    if (ctl->lock == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "port_control malloc fail.\n");
        xsal_mem_free(ctl);
        return SHR_E_NULL_PTR;
    }
    g_csl_port_control[chip_id] = ctl;
    return 0;
}

i32 csl_port_control_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    csl_port_control *ctl = g_csl_port_control[chip_id];
    g_csl_port_control[chip_id] = nullptr;
    g_csl_port_driver[chip_id] = nullptr;
    if (ctl != nullptr) {
        xsal_mutex_destroy(ctl->lock);
        xsal_mem_free(ctl);
    }
    return 0;
}

csl_port_control *csl_port_control_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_csl_port_control[chip_id] : nullptr;
}

i32 csl_port_base_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    g_csl_port_driver[chip_id] =
        shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? csl_atolreef_port_driver_get() : nullptr;
    return 0;
}

i32 csl_port_control_db_init(u32 chip_id)
{
    return shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? csl_atolreef_control_db_init(chip_id) : 0;
}

i32 csl_port_control_db_deinit(u32 chip_id)
{
    // Only atolreef's fill stores anything; its record says what.
    return csl_atolreef_control_db_deinit(chip_id);
}

i32 csl_port_probe(u32 chip_id, u32 lport, const csl_port_driver_t **driver)
{
    (void)lport;
    if (driver == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const csl_port_driver_t *d = chip_id < SHR_MAX_CHIPS ? g_csl_port_driver[chip_id] : nullptr;
    if (d == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    *driver = d;
    return 0;
}

i32 csl_port_not_exist(u32 chip_id, u32 lport)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "lport: %d dose not exist, please enter the correct port  \n", (int)lport);
    return SHR_E_NOT_SUPPORT;
}

i32 csl_port_valid_check(u32 chip_id, u32 lport)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    return pbmp_test(ctl->valid_bmp, lport) ? 0 : csl_port_not_exist(chip_id, lport);
}

i32 csl_port_valid_bmp_check(u32 chip_id, const port_bitmap *pbmp)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || pbmp == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    // The lowest port of the bitmap outside the existing ones, a word at a
    // time.
    for (u32 w = 0; w < PORT_BITMAP_WORDS; w++) {
        const u64 stranger = pbmp->word[w] & ~ctl->valid_bmp.word[w];
        if (stranger != 0) {
            const int lport = static_cast<int>(w * 64 + static_cast<u32>(std::countr_zero(stranger)));
            SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "lport: %d dose not exist, please enter the correct port bitmap \n",
                        lport);
            return SHR_E_NOT_SUPPORT;
        }
    }
    return 0;
}

i32 csl_port_valid_bmp_get(u32 chip_id, port_bitmap *pbmp)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    if (ctl == nullptr || pbmp == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u pointer is NULL\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    *pbmp = ctl->valid_bmp;
    return 0;
}

} // extern "C"
