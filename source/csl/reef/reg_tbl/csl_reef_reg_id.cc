// Register access by catalogue id: the id names a register of the chip's
// catalogue and one of its instances (or all of them).
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

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
    if (data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_data is NULL!\n");
        return SHR_E_PARAM;
    }
    if (bytes < 4) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_bytes must be 4!\n");
        return SHR_E_PARAM;
    }
    const u32 value = static_cast<u32>(data[0]) | static_cast<u32>(data[1]) << 8 | static_cast<u32>(data[2]) << 16 |
                      static_cast<u32>(data[3]) << 24;
    return csl_reef_reg_set_u32(chip_id, id, value);
}

int csl_reef_reg_get(u32 chip_id, u32 id, u8 *data, u8 bytes)
{
    if (data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_data is NULL!\n");
        return SHR_E_PARAM;
    }
    if (bytes < 4) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[REG INVALID]: reg_bytes must be 4!\n");
        return SHR_E_PARAM;
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
