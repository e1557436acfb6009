// Register access by catalogue id: the id names a register of the chip's
// catalogue and one of its instances (or all of them).
#include <strings.h>

#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "sal/linux_um/xsal_int.h"
#include "shared/shr_bits.h"

// A register's byte buffer: present, and room for a word.
static int _csl_reef_reg_buf_check(u32 chip_id, const u8 *data, u8 bytes)
{
    if (data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_data is NULL!\n");
        return SHR_E_PARAM;
    }
    if (bytes < 4) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_bytes must be 4!\n");
        return SHR_E_PARAM;
    }
    return 0;
}

extern "C" {

int csl_reef_reg_set_u32(u32 chip_id, u32 id, u32 value)
{
    const u32 reg_id = id & CIB_ID_MASK;
    const u32 addr_index = id >> CIB_INDEX_SHIFT;
    if (reg_id > CIB_REG_ID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_id 0x%x is invalid!\n", reg_id);
        return SHR_E_PARAM;
    }
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
    if (reg == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg pointer null, reg_id: %u\n", reg_id);
        return SHR_E_NOT_FOUND;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[REG SET]: reg name: %-30s   reg_data:0x%08x   addr-index:%u\n",
                reg->name != nullptr ? reg->name : "", value, addr_index);
    const u32 count = static_cast<u32>(reg->a) * reg->b;
    if (count == 0) {
        return 0; // a placeholder without address
    }
    u32 first = addr_index, last = addr_index;
    if (addr_index == CIB_ALL_INSTANCES) {
        first = 0;
        last = count - 1;
    } else if (addr_index >= count) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "reg_id:%u  reg_index(%u) is invalid, must less than %u !\n", reg_id,
                    addr_index, count);
        return SHR_E_FULL;
    }
    for (u32 i = first; i <= last; i++) {
        const int rc = csl_reg_write32_validaddr(chip_id, reg->addr[i], value);
        if (rc != 0) {
            SHR_LOG_ERRCODE(chip_id, rc);
            return rc;
        }
    }
    return 0;
}

int csl_reef_reg_set(u32 chip_id, u32 id, u8 *data, u8 bytes)
{
    const int bad = _csl_reef_reg_buf_check(chip_id, data, bytes);
    if (bad != 0) {
        return bad;
    }
    const u32 value = static_cast<u32>(data[0]) | static_cast<u32>(data[1]) << 8 | static_cast<u32>(data[2]) << 16 |
                      static_cast<u32>(data[3]) << 24;
    return csl_reef_reg_set_u32(chip_id, id, value);
}

int csl_reef_reg_get(u32 chip_id, u32 id, u8 *data, u8 bytes)
{
    const int bad = _csl_reef_reg_buf_check(chip_id, data, bytes);
    if (bad != 0) {
        return bad;
    }
    const u32 reg_id = id & CIB_ID_MASK;
    u32 addr_index = id >> CIB_INDEX_SHIFT;
    if (reg_id > CIB_REG_ID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_id 0x%x is invalid!\n", reg_id);
        return SHR_E_PARAM;
    }
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
    if (reg == nullptr) {
        SHR_LOG_INF(chip_id, SHR_MOD_REG_TAB, "reg pointer null(reg id:%u)\n", reg_id);
        return SHR_E_MEMORY;
    }
    const u32 count = static_cast<u32>(reg->a) * reg->b;
    if (count == 0) {
        return 0; // the buffer stays as it was
    }
    if (addr_index == CIB_ALL_INSTANCES) {
        addr_index = 0;
    } else if (addr_index >= count) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "reg_index(%d) is invalid, must less than %d !\n", (int)addr_index,
                    (int)count);
        return SHR_E_FULL;
    }
    u32 value = 0;
    const int rc = csl_reg_read32_validaddr(chip_id, reg->addr[addr_index], &value);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    for (u32 i = 0; i < 4; i++) {
        data[i] = static_cast<u8>(value >> (8 * i));
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[REG GET]: reg name: %-30s   reg_data:0x%x%x%x%x   addr-index:%u\n",
                reg->name != nullptr ? reg->name : "", data[3], data[2], data[1], data[0], addr_index);
    return 0;
}

int csl_reef_reg_get_u32(u32 chip_id, u32 id, u32 *value)
{
    if (value == nullptr) {
        return SHR_E_PARAM;
    }
    u8 data[4] = {};
    const int rc = csl_reef_reg_get(chip_id, id, data, 4);
    if (rc == 0) {
        *value = static_cast<u32>(data[0]) | static_cast<u32>(data[1]) << 8 | static_cast<u32>(data[2]) << 16 |
                 static_cast<u32>(data[3]) << 24;
    }
    return rc;
}

} // extern "C"

// ---- self tests of the registers ---------------------------------------------------

namespace {

// The registers a test covers: those of one module, or of all with "all".
int _csl_reef_reg_test_range(u32 chip_id, const char *module, u32 *first, u32 *last)
{
    if (module == nullptr) {
        return SHR_E_PARAM;
    }
    if (strcasecmp(module, "all") == 0) {
        *first = 0;
        *last = CIB_REG_ID_MAX;
        return 0;
    }
    u32 module_id = 0;
    if (_module_info_get(chip_id, module, &module_id) != 0) {
        csl_output_func(chip_id, 0, "\nNo module name:%s!\n\n", module);
        return SHR_E_NOT_FOUND;
    }
    const cib_module_info &mod = atolreef_allmodule_list[module_id];
    if (mod.reg_first == CIB_NO_RANGE) {
        csl_output_func(chip_id, 0, "\nMode:%s no register!\n\n", module);
        return SHR_E_NOT_FOUND;
    }
    *first = mod.reg_first;
    *last = mod.reg_last;
    return 0;
}

// What a field reads back after all ones were written: 1 all ones, 0 zeros,
// -1 not compared.
int _csl_reef_expect_after_ones(u32 reg_id, const cib_field_info &f)
{
    switch (f.access) {
    case CIB_ACC_RW:
        return reg_id == cib_lsw_hreg_test_reg_n ? 0 : 1;
    case CIB_ACC_RC_H:
    case CIB_ACC_WC:
    case CIB_ACC_RC_P:
    case CIB_ACC_WC_H:
        return 0;
    default:
        return -1;
    }
}

} // namespace

extern "C" {

int csl_reef_reg_write_test(u32 chip_id, const char *module, u32 verbose)
{
    if (shr_chip_type_get(chip_id) != SHR_CHIP_TYPE_ATOLREEF) {
        csl_output_func(chip_id, 0, "\nERR: module list is null or not support\n");
        return SHR_E_PARAM;
    }
    u32 first = 0, last = 0;
    int rc = _csl_reef_reg_test_range(chip_id, module, &first, &last);
    if (rc != 0) {
        return rc;
    }
    u32 tested = 0, failed = 0;
    for (u32 r = first; r <= last && r < CIB_REG_LIST_SLOTS; r++) {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, r);
        if (reg == nullptr) {
            continue;
        }
        for (u32 k = 0; k < static_cast<u32>(reg->a) * reg->b; k++) {
            const u32 id = CIB_ID(r, k);
            u32 kept = 0, back = 0;
            rc = csl_reef_reg_get_u32(chip_id, id, &kept);
            rc |= csl_reef_reg_set_u32(chip_id, id, 0xFFFFFFFF);
            rc |= csl_reef_reg_get_u32(chip_id, id, &back);
            rc |= csl_reef_reg_get_u32(chip_id, id, &back);
            if (rc != 0) {
                return rc;
            }
            bool compared = false, ok = true;
            u8 data[4];
            memcpy(data, &back, 4);
            for (u32 i = 0; i < reg->field_count; i++) {
                const cib_field_info &f = reg->fields[i];
                const int want = strcmp(f.name, "rsv") == 0 ? -1 : _csl_reef_expect_after_ones(r, f);
                if (want < 0) {
                    continue;
                }
                compared = true;
                u64 v = 0;
                shr_field64_get_from_data(data, &v, f.low_bit, f.width);
                const u64 ones = f.width >= 64 ? ~0ull : (1ull << f.width) - 1;
                if (v != (want ? ones : 0)) {
                    ok = false;
                    csl_output_func(chip_id, 0, " %-35s %-20s %-4s  fail\n", reg->name, f.name,
                                    g_cib_access_name[f.access]);
                }
            }
            if (compared) {
                csl_reef_reg_set_u32(chip_id, id, kept);
            }
            tested++;
            failed += ok ? 0 : 1;
            if (verbose && ok) {
                csl_output_func(chip_id, 0, " %-35s %-20s %-4s  pass\n", reg->name, "", "");
            }
        }
    }
    csl_output_func(chip_id, 0, "register write test: %u tested, %u failed\n", tested, failed);
    return failed == 0 ? 0 : SHR_E_FAIL;
}

int csl_reef_reg_force_test(u32 chip_id, const char *module, u32 times)
{
    u32 first = 0, last = 0;
    const int rc = _csl_reef_reg_test_range(chip_id, module, &first, &last);
    if (rc != 0) {
        return rc;
    }
    const u64 start = xsal_time_usecs();
    u64 items = 0;
    for (u32 t = 0; t < times; t++) {
        for (u32 r = first; r <= last && r < CIB_REG_LIST_SLOTS; r++) {
            const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, r);
            if (reg == nullptr || reg->a == 0) {
                continue;
            }
            u32 v = 0;
            csl_reef_reg_get_u32(chip_id, r, &v);
            csl_reef_reg_set_u32(chip_id, r, v);
            items += 2;
        }
    }
    const u64 used = xsal_time_usecs() - start;
    csl_output_func(chip_id, 0, "\ntime_used = %lu us!\n", (unsigned long)used);
    csl_output_func(chip_id, 0, "test times = %lu!\n", (unsigned long)items);
    csl_output_func(chip_id, 0, "frequence(items/s) = %0.2f us!\n",
                    used == 0 ? 0.0 : static_cast<double>(items) * 1e6 / static_cast<double>(used));
    return 0;
}

} // extern "C"
