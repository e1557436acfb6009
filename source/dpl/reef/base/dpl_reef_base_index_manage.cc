// The table index manager.  It has no lock of its own: a caller holds the
// lock of its feature.
#include <cstring>

#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/base/dpl_reef_base_index_manage.h"

namespace {

u32 _entries(const cib_tab_info *tab)
{
    return tab->index_max + 1 - tab->index_min;
}

// The bitmap of a managed table, or the reason there is none.
i32 _bitmap_of(u32 chip_id, u32 tab_id, u8 **bitmap, u32 *entries, bool quiet_if_unmanaged)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr || chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_NOT_FOUND; // the caller logs it in its words
    }
    const dpl_index_manage &m = g_index_manage[chip_id];
    for (u32 i = 0; m.tabs != nullptr && i < m.count; i++) {
        if (m.tabs[i].tab_id == tab_id && tab_id != 0) {
            if (m.tabs[i].bitmap == nullptr) {
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tab index bitmap not malloc!\n");
                return SHR_E_NULL_PTR;
            }
            *bitmap = m.tabs[i].bitmap;
            *entries = _entries(tab);
            return 0;
        }
    }
    if (!quiet_if_unmanaged) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tab index bitmap not malloc!\n");
    }
    return SHR_E_RANGE; // marker: in the catalogue, not managed
}

bool _used(const u8 *bitmap, u32 n)
{
    return (bitmap[n / 8] >> (n % 8)) & 1;
}

} // namespace

extern "C" {

dpl_index_manage g_index_manage[SHR_MAX_CHIPS];

const u32 g_tab_id_list[DPL_INDEX_MANAGE_TABLES] = {451, 468, 469, 470, 471, 412, 466, 475, 409, 463, 481, 306};

i32 dpl_reef_base_index_manage_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    dpl_index_manage &m = g_index_manage[chip_id];
    if (m.tabs != nullptr) {
        return 0;
    }
    const u64 bytes = sizeof(dpl_tab_index_bitmap) * DPL_INDEX_MANAGE_TABLES;
    m.tabs = static_cast<dpl_tab_index_bitmap *>(xsal_malloc(bytes, "index_bitmap_mg", SHR_MOD_REG_TAB));
    if (m.tabs == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "index bitmap manage malloc failed!\n");
        return SHR_E_NULL_PTR;
    }
    memset(m.tabs, 0, bytes);
    m.count = DPL_INDEX_MANAGE_TABLES;
    for (u32 i = 0; i < DPL_INDEX_MANAGE_TABLES; i++) {
        const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, g_tab_id_list[i]);
        if (tab == nullptr) {
            continue; // a table this chip does not have
        }
        const u32 size = (tab->index_max + 8 - tab->index_min) / 8;
        u8 *bitmap = static_cast<u8 *>(xsal_malloc(size, "index_bitmap", SHR_MOD_REG_TAB));
        if (bitmap == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "index bitmap malloc failed!\n");
            dpl_reef_base_index_manage_deinit(chip_id);
            return SHR_E_NULL_PTR;
        }
        memset(bitmap, 0, size);
        m.tabs[i] = dpl_tab_index_bitmap{g_tab_id_list[i], bitmap};
    }
    return 0;
}

i32 dpl_reef_base_index_manage_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    dpl_index_manage &m = g_index_manage[chip_id];
    for (u32 i = 0; m.tabs != nullptr && i < m.count; i++) {
        xsal_mem_free(m.tabs[i].bitmap);
    }
    xsal_mem_free(m.tabs);
    m = dpl_index_manage{};
    return 0;
}

i32 dpl_reef_base_tab_index_alloc(u32 chip_id, u32 tab_id, u32 *index)
{
    u8 *bitmap = nullptr;
    u32 entries = 0;
    const i32 rc = _bitmap_of(chip_id, tab_id, &bitmap, &entries, true);
    if (rc == SHR_E_NOT_FOUND) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "input para tab_id is invalid!\n");
        return SHR_E_NULL_PTR;
    }
    if (rc == SHR_E_RANGE) {
        return SHR_E_FULL;
    }
    if (rc != 0) {
        return rc;
    }
    if (index == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "input para index is null!\n");
        return SHR_E_NULL_PTR;
    }
    for (u32 n = 0; n < entries; n++) {
        if (!_used(bitmap, n)) {
            bitmap[n / 8] |= static_cast<u8>(1u << (n % 8));
            *index = n;
            return 0;
        }
    }
    return SHR_E_FULL;
}

// The checks the three calls by number share.
static i32 _dpl_index_check(u32 chip_id, u32 tab_id, u32 index, u8 **bitmap)
{
    u32 entries = 0;
    const i32 rc = _bitmap_of(chip_id, tab_id, bitmap, &entries, true);
    if (rc == SHR_E_NOT_FOUND) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "input para tab id is invalid!\n");
        return SHR_E_NULL_PTR;
    }
    if (rc == SHR_E_RANGE) {
        return SHR_E_NULL_PTR;
    }
    if (rc != 0) {
        return rc;
    }
    if (index >= entries) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "input tab index is invalid!\n");
        return SHR_E_PARAM;
    }
    return 0;
}

i32 dpl_reef_base_tab_index_alloc_with_id(u32 chip_id, u32 tab_id, u32 index)
{
    u8 *bitmap = nullptr;
    const i32 rc = _dpl_index_check(chip_id, tab_id, index, &bitmap);
    if (rc != 0) {
        return rc;
    }
    if (_used(bitmap, index)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "tab index is alloced!\n");
        return SHR_E_EXISTS;
    }
    bitmap[index / 8] |= static_cast<u8>(1u << (index % 8));
    return 0;
}

i32 dpl_reef_base_tab_index_free(u32 chip_id, u32 tab_id, u32 index)
{
    u8 *bitmap = nullptr;
    const i32 rc = _dpl_index_check(chip_id, tab_id, index, &bitmap);
    if (rc != 0) {
        return rc;
    }
    if (!_used(bitmap, index)) {
        SHR_LOG_WRN(chip_id, SHR_MOD_REG_TAB, "the cur index is free,  not need free!\n");
        return 0;
    }
    bitmap[index / 8] &= static_cast<u8>(~(1u << (index % 8)));
    return 0;
}

i32 dpl_reef_base_tab_index_used_get(u32 chip_id, u32 tab_id, u32 index, u8 *used)
{
    if (used == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "input para used is null!\n");
        return SHR_E_NULL_PTR;
    }
    u8 *bitmap = nullptr;
    const i32 rc = _dpl_index_check(chip_id, tab_id, index, &bitmap);
    if (rc != 0) {
        return rc;
    }
    *used = _used(bitmap, index) ? 1 : 0;
    return 0;
}

} // extern "C"
