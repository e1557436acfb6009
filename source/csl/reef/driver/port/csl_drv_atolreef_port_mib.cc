// The MIB counters of the atolreef MACs and the software store that keeps
// their totals, "port_counter": 28 ports of 104 items.
#include "csl/reef/driver/port/csl_atolreef_port_int.h"

using namespace tide::port::atolreef;

extern "C" {
u64 *g_atolreef_port_counter[SHR_MAX_CHIPS];
}

namespace {

constexpr u32 kNoHw = 0xFFFFFFFFu;
constexpr u32 kAlignErrItem = 43;

// The low and high table of each item with hardware behind it.
struct mib_pair {
    u32 lo;
    u32 hi;
};

#define MIB(name) {cib_mac_mib_##name##_l, cib_mac_mib_##name##_h}
#define NONE {kNoHw, kNoHw}
constexpr mib_pair g_mib_tabs[PORT_MIB_ITEMS] = {
    // receive 0 to 52
    MIB(rx_total_pkt), MIB(rx_total_byte), MIB(rx_good_pkt), MIB(rx_good_byte), MIB(rx_bad_pkt), MIB(rx_bad_byte),
    MIB(rxunicast), MIB(rxmulticast), MIB(rxbroadcast), MIB(rxundersize), MIB(rx_fragment), MIB(rxundermin),
    MIB(rx_64), MIB(rx_127_65), MIB(rx_255_128), MIB(rx_511_256), MIB(rx_1023_512), MIB(rx_1518_1024),
    NONE, NONE, NONE, NONE, NONE, NONE,
    MIB(rx_max_1519), MIB(rx_max_1519_good), MIB(rx_max_1519_bad), MIB(rx_overmax_good), MIB(rx_overmax_bad),
    MIB(rxpause), MIB(rxctrl), MIB(rxsymbol_err), MIB(rxfcs_err), MIB(rx_segment_bytes), MIB(rx_err_all),
    NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    MIB(rx_align_err),
    NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
    // transmit 53 to 103
    MIB(tx_total_pkt), MIB(tx_total_byte), MIB(tx_good_pkt), MIB(tx_good_byte), MIB(tx_bad_pkt), MIB(tx_bad_byte),
    MIB(txunicast), MIB(txmulticast), MIB(txbroadcast), MIB(txundersized), MIB(txundermin), MIB(txfragment),
    MIB(tx_64), MIB(tx_127_65), MIB(tx_255_128), MIB(tx_511_256), MIB(tx_1023_512), MIB(tx_1518_1024),
    NONE, NONE, NONE, NONE, NONE, NONE,
    MIB(tx_max_1519), MIB(tx_max_1519_good), MIB(tx_max_1519_bad), MIB(tx_overmax_good), MIB(tx_overmax_bad),
    MIB(txpause), MIB(txctrl),
    NONE,
    MIB(txerr_all),
    NONE, NONE,
    MIB(tx_half_deferral), MIB(tx_half_singel_col), MIB(tx_half_multi_col), MIB(tx_half_excessive_col),
    MIB(tx_half_late_col), MIB(tx_half_crs_lost),
    NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE,
};
#undef MIB
#undef NONE

constexpr u32 _mib_hw_count()
{
    u32 n = 0;
    for (const mib_pair &p : g_mib_tabs) {
        n += p.lo != kNoHw ? 1 : 0;
    }
    return n;
}
static_assert(_mib_hw_count() == 62, "62 counter items have hardware");

u64 *_store(u32 chip_id, u32 lport)
{
    u64 *s = g_atolreef_port_counter[chip_id];
    return s == nullptr ? nullptr : s + static_cast<u64>(lport) * PORT_MIB_ITEMS;
}

i32 _mib_read(u32 chip_id, u32 lport, u32 item, u64 *value)
{
    *value = 0;
    const mib_pair &p = g_mib_tabs[item];
    if (p.lo == kNoHw) {
        return 0;
    }
    u32 lo = 0, hi = 0;
    i32 rc = csl_reef_tab_get_direct_uint32(chip_id, CIB_ID(p.lo, lport), 0, &lo, 1, CSL_TAB_HW);
    if (rc == 0) {
        rc = csl_reef_tab_get_direct_uint32(chip_id, CIB_ID(p.hi, lport), 0, &hi, 1, CSL_TAB_HW);
    }
    *value = static_cast<u64>(lo) | (static_cast<u64>(hi) << 32);
    return rc;
}

// Feeds a value read from the hardware into the store.  A MAC that keeps
// its totals (mib_clr_mode 1) replaces the stored value; one whose read
// clears it adds to it.  The counter thread's refresh runs under the chip
// lock and an application's read under the port's own lock, which do not
// exclude each other, so the store's words are updated atomically: what
// each read took out of the hardware is added exactly once.
i32 _csl_atolreef_counter_update(u32 chip_id, u32 lport, u32 item, u64 value)
{
    u64 *s = _store(chip_id, lport);
    if (s == nullptr) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "chip_id%d counter db not malloc, so no need save date in DB.\n",
                    static_cast<int>(chip_id));
        return 0;
    }
    bool replace = false;
    if (g_cnt_clr_mode[chip_id] == 1 && item != kAlignErrItem) {
        u32 mode = 0;
        const i32 rc = reg_field_get(chip_id, cib_mac_port_mib_cfg, lport, cib_f_mib_clr_mode, &mode);
        if (rc != 0) {
            return rc;
        }
        replace = mode == 1;
    }
    if (replace) {
        __atomic_store_n(&s[item], value, __ATOMIC_RELAXED);
    } else {
        __atomic_fetch_add(&s[item], value, __ATOMIC_RELAXED);
    }
    return 0;
}

bool _port_used(u32 chip_id, u32 lport)
{
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    return ctl != nullptr && lport < CSL_PORT_MAX_MAC && ctl->mac_info[lport].use == CSL_PORT_USED;
}

} // namespace

extern "C" {

i32 _csl_atolreef_port_counter_db_malloc(u32 chip_id)
{
    if (g_atolreef_port_counter[chip_id] != nullptr) {
        return 0;
    }
    auto *s = tide::port::zalloc<u64>(static_cast<u64>(CSL_PORT_MAX_MAC) * PORT_MIB_ITEMS, "port_counter");
    if (s == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u port counter malloc fail.\n", chip_id);
        return SHR_E_MEMORY;
    }
    g_atolreef_port_counter[chip_id] = s;
    return 0;
}

i32 _csl_atolreef_port_counter_db_free(u32 chip_id)
{
    xsal_mem_free(g_atolreef_port_counter[chip_id]);
    g_atolreef_port_counter[chip_id] = nullptr;
    return 0;
}

i32 _csl_atolreef_counter_get(u32 chip_id, u32 lport, u32 mib_item, u64 *value)
{
    if (mib_item >= PORT_MIB_ITEMS) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u mib item%u out of range\n", chip_id, lport, mib_item);
        return SHR_E_PARAM;
    }
    u64 hw = 0;
    i32 rc = _mib_read(chip_id, lport, mib_item, &hw);
    if (rc == 0) {
        rc = _csl_atolreef_counter_update(chip_id, lport, mib_item, hw);
    }
    if (rc != 0) {
        return rc;
    }
    const u64 *s = _store(chip_id, lport);
    *value = s != nullptr ? __atomic_load_n(&s[mib_item], __ATOMIC_RELAXED) : hw;
    return 0;
}

i32 _csl_atolreef_counter_read_hw(u32 chip_id, u32 lport, u64 *values)
{
    for (u32 item = 0; item < PORT_MIB_ITEMS; item++) {
        const i32 rc = _csl_atolreef_counter_get(chip_id, lport, item, &values[item]);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

i32 _csl_atolreef_port_counter_db_update(u32 chip_id)
{
    u64 values[PORT_MIB_ITEMS];
    for (u32 lport = 0; lport < CSL_PORT_MAX_MAC; lport++) {
        if (!_port_used(chip_id, lport)) {
            continue;
        }
        const i32 rc = _csl_atolreef_counter_read_hw(chip_id, lport, values);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

i32 _csl_atolreef_port_counter_clean(u32 chip_id, u32 lport)
{
    if (!_port_used(chip_id, lport)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_PORT, "chip_id%u lport%u is not a valid port,please input right port number!\n",
                    chip_id, lport);
        return SHR_E_PARAM;
    }
    u32 mode = 0;
    i32 rc = reg_field_get(chip_id, cib_mac_port_mib_cfg, lport, cib_f_mib_clr_mode, &mode);
    if (rc == 0 && mode == 1) {
        rc = reg_update(chip_id, cib_mac_port_clr_cnt_cfg, lport, {{cib_f_clr_cnt_cfg, 1}});
        if (rc == 0) rc = reg_update(chip_id, cib_mac_port_clr_cnt_cfg, lport, {{cib_f_clr_cnt_cfg, 0}});
    } else if (rc == 0) {
        u64 ignored = 0;
        for (u32 item = 0; item < PORT_MIB_ITEMS && rc == 0; item++) {
            rc = _mib_read(chip_id, lport, item, &ignored);
        }
    }
    if (rc == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_PORT, "chip_id%u lport%u clear counter\n", chip_id, lport);
    }
    return rc;
}

} // extern "C"
