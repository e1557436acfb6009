// The one path of every register access: alignment check, address hook,
// log lines, a single-address watch with a call stack, and the forced-read
// table that lets an operator make a 32-bit read return a chosen value.
#include <execinfo.h>

#include <cstdlib>

#include "csl/common/reg_tab/csl_coverage.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "hal/hal_op/hal.h"

extern "C" {

csl_reg_cache_entry g_reg_cache_t[SHR_MAX_CHIPS][CSL_REG_CACHE_ENTRIES];
u32 g_csl_opt_reg_cache_enable[SHR_MAX_CHIPS];
u32 g_recode_addr[SHR_MAX_CHIPS];
u32 g_recode_enable[SHR_MAX_CHIPS];
u32 g_csl_log_coverage_flag[SHR_MAX_CHIPS];

// Address check of checked LSW accesses: an open hook that accepts every
// address (the aperture bound is enforced by the HAL).
static int _csl_reg_check_lsw_addr_validity(u32 addr)
{
    (void)addr;
    return 0;
}

static void _csl_print_backtrace(u32 chip_id)
{
    void *frames[100];
    const int n = backtrace(frames, 100);
    csl_output_func(chip_id, 0, "backtrace() returned %d addresses\n", n);
    char **symbols = backtrace_symbols(frames, n);
    if (symbols == nullptr) {
        csl_output_func(chip_id, 0, "backtrace_symbols is NULL!");
        return;
    }
    for (int i = 0; i < n; i++) {
        csl_output_func(chip_id, 0, "%s\n", symbols[i]);
    }
    free(symbols); // memory of the C library's backtrace_symbols
}

static bool _csl_watched(u32 chip_id, u32 addr)
{
    return chip_id < SHR_MAX_CHIPS && g_recode_enable[chip_id] && g_recode_addr[chip_id] == addr;
}

static int _csl_reg_cache_read(u32 chip_id, u32 addr, u32 *data)
{
    for (const csl_reg_cache_entry &e : g_reg_cache_t[chip_id]) {
        if (e.valid == 1 && e.addr == addr) {
            *data = e.data;
            SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "read reg cache, addr:0x%x, data:0x%x\n", addr, e.data);
            return 0;
        }
    }
    return SHR_E_NO_CACHE;
}

} // extern "C"

namespace {

// The HAL call of each access width.
int _hal_read(u32 c, u32 b, u32 a, u16 *v) { return hal_reg_read_16(c, b, a, v); }
int _hal_read(u32 c, u32 b, u32 a, u32 *v) { return hal_reg_read_32(c, b, a, v); }
int _hal_read(u32 c, u32 b, u32 a, u64 *v) { return hal_reg_read_64(c, b, a, v); }
int _hal_write(u32 c, u32 b, u32 a, u16 v) { return hal_reg_write_16(c, b, a, v); }
int _hal_write(u32 c, u32 b, u32 a, u32 v) { return hal_reg_write_32(c, b, a, v); }
int _hal_write(u32 c, u32 b, u32 a, u64 v) { return hal_reg_write_64(c, b, a, v); }

// Values of every width are shown as "0x%lx": for 16 and 32-bit values the
// text is the same as "0x%x".
constexpr const char *kSetFmt = "[REG SET]bar:%u  addr:0x%08x  reg_data:0x%lx\n";
constexpr const char *kGetFmt = "[REG GET]bar:%u  addr:0x%08x  reg_data:0x%lx\n";

// The checks before an access: 32-bit accesses must be word-aligned, and a
// checked access to the LSW space passes the address hook.
template <typename T>
int _csl_reg_precheck(u32 chip_id, u32 bar, u32 addr, u32 check)
{
    if constexpr (sizeof(T) == 4) {
        if (addr % 4 != 0) {
            csl_output_func(chip_id, 0, "ERR: input address must be divided by 4 !\n");
            return SHR_E_PARAM;
        }
    }
    if (check == 1 && bar == HAL_BAR_LSW) {
        return _csl_reg_check_lsw_addr_validity(addr);
    }
    return 0;
}

template <typename T>
int _csl_reg_write(u32 chip_id, u32 bar, u32 addr, T value, u32 check)
{
    const int pre = _csl_reg_precheck<T>(chip_id, bar, addr, check);
    if (pre != 0) {
        return pre;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, kSetFmt, bar, addr, (unsigned long)value);
    if (bar != HAL_BAR_LSW) {
        return _hal_write(chip_id, bar, addr, value);
    }
    if (_csl_watched(chip_id, addr)) {
        csl_output_func(chip_id, 0, "[REG SET]bar:%u  addr:0x%x  reg_data:0x%lx\n", bar, addr, (unsigned long)value);
        _csl_print_backtrace(chip_id);
    }
    const int rc = _hal_write(chip_id, HAL_BAR_LSW, addr, value);
    if (chip_id < SHR_MAX_CHIPS && g_csl_log_coverage_flag[chip_id]) {
        _csl_coverage_read_write(chip_id, addr, static_cast<u64>(value), "write");
    }
    return rc;
}

template <typename T>
int _csl_reg_read(u32 chip_id, u32 bar, u32 addr, T *value, u32 check)
{
    if (value == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_data is NULL!\n");
        return SHR_E_PARAM;
    }
    const int pre = _csl_reg_precheck<T>(chip_id, bar, addr, check);
    if (pre != 0) {
        return pre;
    }
    if constexpr (sizeof(T) == 4) {
        // The forced-read table answers a 32-bit read of its address on any
        // BAR; the hardware is not read and nothing is logged.
        if (chip_id < SHR_MAX_CHIPS && g_csl_opt_reg_cache_enable[chip_id] &&
            _csl_reg_cache_read(chip_id, addr, value) == 0) {
            return 0;
        }
    }
    const int rc = _hal_read(chip_id, bar, addr, value);
    if (rc != 0) {
        return rc;
    }
    if (bar == HAL_BAR_LSW && _csl_watched(chip_id, addr)) {
        csl_output_func(chip_id, 0, "[REG GET]bar:%u  addr:0x%x  reg_data:0x%lx\n", bar, addr, (unsigned long)*value);
        _csl_print_backtrace(chip_id);
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, kGetFmt, bar, addr, (unsigned long)*value);
    if (bar == HAL_BAR_LSW && chip_id < SHR_MAX_CHIPS && g_csl_log_coverage_flag[chip_id]) {
        _csl_coverage_read_write(chip_id, addr, static_cast<u64>(*value), "read");
    }
    return 0;
}

} // namespace

extern "C" {

int _csl_reg_read16_func(u32 chip_id, u32 bar, u32 addr, u16 *value, u32 check)
{
    return _csl_reg_read<u16>(chip_id, bar, addr, value, check);
}

int _csl_reg_write16_func(u32 chip_id, u32 bar, u32 addr, u16 value, u32 check)
{
    return _csl_reg_write<u16>(chip_id, bar, addr, value, check);
}

int _csl_reg_read32_func(u32 chip_id, u32 bar, u32 addr, u32 *value, u32 check)
{
    return _csl_reg_read<u32>(chip_id, bar, addr, value, check);
}

int _csl_reg_write32_func(u32 chip_id, u32 bar, u32 addr, u32 value, u32 check)
{
    return _csl_reg_write<u32>(chip_id, bar, addr, value, check);
}

int _csl_reg_read64_func(u32 chip_id, u32 bar, u32 addr, u64 *value, u32 check)
{
    return _csl_reg_read<u64>(chip_id, bar, addr, value, check);
}

int _csl_reg_write64_func(u32 chip_id, u32 bar, u32 addr, u64 value, u32 check)
{
    return _csl_reg_write<u64>(chip_id, bar, addr, value, check);
}

int csl_reg_read32(u32 chip_id, u32 addr, u32 *value)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return _csl_reg_read32_func(chip_id, HAL_BAR_LSW, addr, value, 1);
}

int csl_reg_write32(u32 chip_id, u32 addr, u32 value)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return _csl_reg_write32_func(chip_id, HAL_BAR_LSW, addr, value, 1);
}

int csl_reg_read32_validaddr(u32 chip_id, u32 addr, u32 *value)
{
    return _csl_reg_read32_func(chip_id, HAL_BAR_LSW, addr, value, 0);
}

int csl_reg_write32_validaddr(u32 chip_id, u32 addr, u32 value)
{
    return _csl_reg_write32_func(chip_id, HAL_BAR_LSW, addr, value, 0);
}

int csl_reg_read32_logged(u32 chip_id, u32 addr, u32 *value)
{
    const int rc = csl_reg_read32_validaddr(chip_id, addr, value);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

int csl_reg_write32_logged(u32 chip_id, u32 addr, u32 value)
{
    const int rc = csl_reg_write32_validaddr(chip_id, addr, value);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

int csl_reg_read64(u32 chip_id, u32 addr, u64 *value)
{
    return _csl_reg_read64_func(chip_id, HAL_BAR_LSW, addr, value, 1);
}

int csl_reg_write64(u32 chip_id, u32 addr, u64 value)
{
    return _csl_reg_write64_func(chip_id, HAL_BAR_LSW, addr, value, 1);
}

int csl_reg_read64_validaddr(u32 chip_id, u32 addr, u64 *value)
{
    return _csl_reg_read64_func(chip_id, HAL_BAR_LSW, addr, value, 0);
}

int csl_reg_write64_validaddr(u32 chip_id, u32 addr, u64 value)
{
    return _csl_reg_write64_func(chip_id, HAL_BAR_LSW, addr, value, 0);
}

int csl_reg_general_read16(u32 chip_id, u32 bar, u32 addr, u16 *value)
{
    return _csl_reg_read16_func(chip_id, bar, addr, value, 1);
}

int csl_reg_general_write16(u32 chip_id, u32 bar, u32 addr, u16 value)
{
    return _csl_reg_write16_func(chip_id, bar, addr, value, 1);
}

int csl_reg_general_read32(u32 chip_id, u32 bar, u32 addr, u32 *value)
{
    return _csl_reg_read32_func(chip_id, bar, addr, value, 1);
}

int csl_reg_general_write32(u32 chip_id, u32 bar, u32 addr, u32 value)
{
    return _csl_reg_write32_func(chip_id, bar, addr, value, 1);
}

int csl_reg_general_read64(u32 chip_id, u32 bar, u32 addr, u64 *value)
{
    return _csl_reg_read64_func(chip_id, bar, addr, value, 1);
}

int csl_reg_general_write64(u32 chip_id, u32 bar, u32 addr, u64 value)
{
    return _csl_reg_write64_func(chip_id, bar, addr, value, 1);
}

int csl_efuse_read32(u32 chip_id, u32 offset, u32 *data)
{
    if (data == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const u32 type = shr_chip_type_get(chip_id);
    if (type < SHR_CHIP_TYPE_KELPREEF || type > SHR_CHIP_TYPE_SANDSHARK) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[EFUSE GET]Chip type(%u) is unknown!\n", type);
        return SHR_E_BADID;
    }
    u32 base = 0;
    if (type != SHR_CHIP_TYPE_SANDSHARK) {
        u32 bus_type = 0;
        const int rc = hal_get_drv_chip_type(chip_id, &bus_type);
        if (rc != 0) {
            return rc;
        }
        switch (bus_type) {
        case HAL_BUS_MASTER:
            base = 0x39000;
            break;
        case HAL_BUS_SLAVE:
        case HAL_BUS_SPI:
            base = 0x34000;
            break;
        default:
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[EFUSE GET]Chip bus type(%u) is unknown!\n", bus_type);
            return SHR_E_FAIL;
        }
    }
    const int rc = csl_reg_general_read32(chip_id, HAL_BAR_AXI, base + offset, data);
    if (rc == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[EFUSE GET] Type:%s, addr:0x%x, data:0x%x\n", shr_chip_name_get(chip_id),
                    base + offset, *data);
    }
    return rc;
}

int csl_reg_cache_enable(u32 chip_id, u32 enable)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    // The entries are kept when the table is switched off.
    g_csl_opt_reg_cache_enable[chip_id] = enable ? 1 : 0;
    return 0;
}

int csl_reg_cache_clear(u32 chip_id, i32 clear)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (clear == 1) {
        for (csl_reg_cache_entry &e : g_reg_cache_t[chip_id]) {
            e = csl_reg_cache_entry{};
        }
    }
    return 0;
}

int csl_reg_cache_update(u32 chip_id, u32 addr, u32 data)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    if (!g_csl_opt_reg_cache_enable[chip_id]) {
        return SHR_E_NO_CACHE;
    }
    csl_reg_cache_entry *entries = g_reg_cache_t[chip_id];
    for (u32 i = 0; i < CSL_REG_CACHE_ENTRIES; i++) {
        if (entries[i].valid == 1 && entries[i].addr == addr) {
            entries[i].data = data;
            return 0;
        }
    }
    u32 slot = 0; // all five taken: entry 0 is overwritten
    for (u32 i = 0; i < CSL_REG_CACHE_ENTRIES; i++) {
        if (entries[i].valid == 0) {
            slot = i;
            break;
        }
    }
    entries[slot] = csl_reg_cache_entry{1, addr, data};
    return 0;
}

int csl_recode_set(u32 chip_id, u32 addr, u32 enable)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_PARAM;
    }
    g_recode_addr[chip_id] = addr;
    g_recode_enable[chip_id] = enable;
    return 0;
}

} // extern "C"
