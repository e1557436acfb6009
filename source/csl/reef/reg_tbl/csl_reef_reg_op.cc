// Register access by raw address in the LSW space, through a little-endian
// byte buffer: the door of base_api_reg_set_by_addr and _get_by_addr.
#include <cstring>

#include "csl/common/reg_tab/csl_reg.h"
#include "shared/shr_int.h"

extern "C" {

static int _csl_reef_by_addr_check(u32 chip_id, u32 addr, const u8 *data, u8 bytes)
{
    if (addr % 4 != 0) {
        csl_output_func(chip_id, 0, "ERR: address must be divided by 4\n");
        return SHR_E_PARAM;
    }
    if (data == nullptr || bytes < 4) {
        return SHR_E_PARAM;
    }
    return 0;
}

int csl_reef_reg_set_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes)
{
    const int rc = _csl_reef_by_addr_check(chip_id, addr, data, bytes);
    if (rc != 0) {
        return rc;
    }
    const u32 value = static_cast<u32>(data[0]) | static_cast<u32>(data[1]) << 8 | static_cast<u32>(data[2]) << 16 |
                      static_cast<u32>(data[3]) << 24;
    const u32 bits = shr_buf_bitwidth_get(data, bytes);
    if (bits > 32) {
        csl_output_func(chip_id, 0, "WARN: data bits %d more than %d, write data %#x\n", (int)bits, 32, value);
    }
    return csl_reg_write32(chip_id, addr, value);
}

int csl_reef_reg_get_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes)
{
    const int rc = _csl_reef_by_addr_check(chip_id, addr, data, bytes);
    if (rc != 0) {
        return rc;
    }
    u32 value = 0;
    const int st = csl_reg_read32(chip_id, addr, &value);
    if (st != 0) {
        return st;
    }
    for (u32 i = 0; i < 4; i++) {
        data[i] = static_cast<u8>(value >> (8 * i));
    }
    return 0;
}

int csl_reef_reg_set_u32_by_addr(u32 chip_id, u32 addr, u32 value)
{
    return csl_reg_write32(chip_id, addr, value);
}

int csl_reef_reg_get_u32_by_addr(u32 chip_id, u32 addr, u32 *value)
{
    return csl_reg_read32(chip_id, addr, value);
}

} // extern "C"
