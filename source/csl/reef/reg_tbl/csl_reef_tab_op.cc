// Direct tables: entries reached as runs of 32-bit registers, with an
// optional software image per table.
#include <cstring>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

namespace {

csl_tab_cache *_image(u32 chip_id, u32 tab_id)
{
    csl_reg_tab_cm *cm = csl_reg_tab_cm_get(chip_id);
    return cm != nullptr && cm->tab_cache != nullptr && tab_id < cm->tab_count ? &cm->tab_cache[tab_id] : nullptr;
}

// Copies `width` bits of an entry; the rest of the last byte of the
// destination stays.
void _copy_bits(u8 *dst, const u8 *src, u32 width)
{
    const u32 full = width / 8;
    memcpy(dst, src, full);
    const u32 rest = width % 8;
    if (rest != 0) {
        const u8 mask = static_cast<u8>((1u << rest) - 1);
        dst[full] = static_cast<u8>((dst[full] & ~mask) | (src[full] & mask));
    }
}

// Checks common to set and get; the table record or the failure.
int _csl_reef_tab_check(u32 chip_id, u32 tab_id, const u8 *data, u32 bytes, const cib_tab_info **out)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: entry_data is NULL!\n");
        return SHR_E_PARAM;
    }
    if (tab_id > CIB_TAB_ID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: tab_id 0x%d is invalid!\n", (int)tab_id);
        return SHR_E_PARAM;
    }
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: table pointer is NULL!\n");
        return SHR_E_PARAM;
    }
    if (bytes < cib_tab_entry_bytes(tab)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: table(%u) bytes(%u) less than entry bytes(%u)!\n",
                    tab_id, bytes, cib_tab_entry_bytes(tab));
        return SHR_E_PARAM;
    }
    *out = tab;
    return 0;
}

// The instances an access reaches: one, or all for 0xFFF (a read takes the
// first).
int _csl_reef_tab_instances(u32 chip_id, const cib_tab_info *tab, u32 addr_index, u32 *first, u32 *last)
{
    const u32 instances = static_cast<u32>(tab->inst_a) * tab->inst_b;
    if (addr_index == CIB_ALL_INSTANCES) {
        if (instances == 0) {
            return SHR_E_FULL;
        }
        *first = 0;
        *last = instances - 1;
        return 0;
    }
    if (addr_index >= instances) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: tab_addr_idx(%d) is invalid, must less than %d !\n",
                    (int)addr_index, (int)instances);
        return SHR_E_FULL;
    }
    *first = *last = addr_index;
    return 0;
}

int _csl_reef_tab_hw_set_direct(u32 chip_id, const cib_tab_info *tab, u32 addr_index, u32 index, const u8 *data)
{
    u32 first = 0, last = 0;
    int rc = _csl_reef_tab_instances(chip_id, tab, addr_index, &first, &last);
    if (rc != 0) {
        return rc;
    }
    const u32 words = cib_entry_words(tab->width);
    for (u32 k = first; k <= last; k++) {
        const u32 base = tab->addr[k] + index * words * 4;
        for (u32 w = 0; w < words; w++) {
            u32 value;
            memcpy(&value, data + 4 * w, 4);
            rc = csl_reg_write32_validaddr(chip_id, base + 4 * w, value);
            if (rc != 0) {
                return rc;
            }
        }
    }
    return 0;
}

int _csl_reef_tab_hw_get_direct(u32 chip_id, const cib_tab_info *tab, u32 addr_index, u32 index, u8 *data)
{
    u32 first = 0, last = 0;
    const int rc = _csl_reef_tab_instances(chip_id, tab, addr_index, &first, &last);
    if (rc != 0) {
        return rc;
    }
    const u32 words = cib_entry_words(tab->width);
    const u32 base = tab->addr[first] + index * words * 4;
    for (u32 w = 0; w < words; w++) {
        u32 value = 0;
        const int st = csl_reg_read32_validaddr(chip_id, base + 4 * w, &value);
        if (st != 0) {
            return st;
        }
        memcpy(data + 4 * w, &value, 4);
    }
    return 0;
}

} // namespace

extern "C" {

int csl_reef_tab_set_direct(u32 chip_id, u32 id, u32 index, u8 *data, u32 bytes, u32 mode)
{
    const u32 tab_id = id & CIB_ID_MASK;
    const u32 addr_index = id >> CIB_INDEX_SHIFT;
    const cib_tab_info *tab = nullptr;
    int rc = _csl_reef_tab_check(chip_id, tab_id, data, bytes, &tab);
    if (rc != 0) {
        return rc;
    }
    CslTabLock lock(chip_id, tab_id);
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[SET %s]: index(%d)\n", tab->name, (int)index);
    if (index >= cib_tab_depth(tab)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[%s]: cur_index(%d) >= tab_count(%d)\n", tab->name, (int)index,
                    (int)cib_tab_depth(tab));
        return SHR_E_PARAM;
    }
    if (mode == CSL_TAB_HW || mode == CSL_TAB_HW_AND_IMAGE) {
        rc = _csl_reef_tab_hw_set_direct(chip_id, tab, addr_index, index, data);
        if (rc != 0) {
            SHR_LOG_ERRCODE(chip_id, rc);
            return rc;
        }
    }
    csl_tab_cache *image = _image(chip_id, tab_id);
    if (mode == CSL_TAB_IMAGE || mode == CSL_TAB_HW_AND_IMAGE) {
        if (tab->flags & CIB_TAB_NO_CACHE) {
            return SHR_E_NO_CACHE;
        }
        if (image != nullptr && image->enabled) {
            SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[%s]: save in cache \n", tab->name);
            _copy_bits(image->data + index * cib_tab_entry_bytes(tab), data, tab->width);
        }
    }
    // Tables that make their image at the first write: every entry not yet
    // written reads as zero from it.  A table that may not be cached gets
    // none.
    if ((tab->flags & CIB_TAB_LAZY_IMAGE) && image != nullptr && !image->enabled) {
        rc = csl_reef_tab_cache_enable_set(chip_id, tab_id, 1);
        if (rc == 0 && image->enabled) {
            _copy_bits(image->data + index * cib_tab_entry_bytes(tab), data, tab->width);
        }
    }
    return rc;
}

int csl_reef_tab_get_direct(u32 chip_id, u32 id, u32 index, u8 *data, u32 bytes, u32 mode)
{
    const u32 tab_id = id & CIB_ID_MASK;
    const u32 addr_index = id >> CIB_INDEX_SHIFT;
    const cib_tab_info *tab = nullptr;
    int rc = _csl_reef_tab_check(chip_id, tab_id, data, bytes, &tab);
    if (rc != 0) {
        return rc;
    }
    CslTabLock lock(chip_id, tab_id);
    if (index >= cib_tab_depth(tab)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[%s]: cur_index(%d) >= tab_count(%d)\n", tab->name, (int)index,
                    (int)cib_tab_depth(tab));
        return SHR_E_PARAM;
    }
    if (mode == CSL_TAB_HW) {
        if (tab->flags & CIB_TAB_INDIRECT) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[GET %s]: tab indirect!\n", tab->name);
            return 0;
        }
        rc = _csl_reef_tab_hw_get_direct(chip_id, tab, addr_index, index, data);
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "Get from hard [%s]: tab id:%u, index:%u, addr index:%u\n", tab->name,
                    tab_id, index, addr_index);
        return rc;
    }
    if (mode == CSL_TAB_IMAGE) {
        const csl_tab_cache *image = _image(chip_id, tab_id);
        if (image == nullptr || !image->enabled) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[GET %s]: get from cache, not enable cache!\n", tab->name);
            return SHR_E_NO_CACHE;
        }
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[GET %s]: get from cache \n", tab->name);
        _copy_bits(data, image->data + index * cib_tab_entry_bytes(tab), tab->width);
        return 0;
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ERR: get from hard and cache at same time!\n");
    return SHR_E_PARAM;
}

// The word forms: the same through a byte image of the entry.
static int _csl_reef_tab_uint32(u32 chip_id, u32 id, u32 index, u32 *words, u32 word_count, u32 mode, bool set)
{
    if (words == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const u64 bytes = static_cast<u64>(word_count) * 4;
    u8 *image = static_cast<u8 *>(xsal_malloc(bytes, "table words", SHR_MOD_REG_TAB));
    if (image == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "ERR: memery alloc fail.\n");
        return SHR_E_MEMORY;
    }
    memcpy(image, words, bytes);
    const int rc = set ? csl_reef_tab_set_direct(chip_id, id, index, image, static_cast<u32>(bytes), mode)
                       : csl_reef_tab_get_direct(chip_id, id, index, image, static_cast<u32>(bytes), mode);
    if (!set && rc == 0) {
        memcpy(words, image, bytes);
    }
    xsal_mem_free(image);
    return rc;
}

int csl_reef_tab_set_direct_uint32(u32 chip_id, u32 id, u32 index, u32 *words, u32 word_count, u32 mode)
{
    return _csl_reef_tab_uint32(chip_id, id, index, words, word_count, mode, true);
}

int csl_reef_tab_get_direct_uint32(u32 chip_id, u32 id, u32 index, u32 *words, u32 word_count, u32 mode)
{
    return _csl_reef_tab_uint32(chip_id, id, index, words, word_count, mode, false);
}

u8 *csl_reef_tab_image_get(u32 chip_id, u32 tab_id)
{
    const csl_tab_cache *image = _image(chip_id, tab_id);
    return image != nullptr && image->enabled ? image->data : nullptr;
}

int csl_reef_tab_cache_enable_set(u32 chip_id, u32 tab_id, u8 enable)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    csl_tab_cache *image = _image(chip_id, tab_id);
    if (tab == nullptr || image == nullptr) {
        return SHR_E_PARAM;
    }
    if (tab->flags & CIB_TAB_NO_CACHE) {
        return 0;
    }
    const u8 on = enable ? 1 : 0;
    if (image->enabled == on) {
        return 0;
    }
    if (on) {
        const u64 size = static_cast<u64>(cib_tab_entry_bytes(tab)) * cib_tab_depth(tab);
        if (size == 0) {
            return 0;
        }
        image->data = static_cast<u8 *>(xsal_malloc(size, tab->name, SHR_MOD_REG_TAB));
        if (image->data == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "memery alloc fail. tab_id=%d, byte per entry:%d\n", (int)tab_id,
                        (int)cib_tab_entry_bytes(tab));
            return SHR_E_MEMORY;
        }
        memset(image->data, 0, size);
    } else {
        xsal_mem_free(image->data);
        image->data = nullptr;
    }
    image->enabled = on;
    return 0;
}

} // extern "C"
