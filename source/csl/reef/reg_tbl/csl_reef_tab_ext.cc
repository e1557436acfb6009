// Direct tables beyond one entry: block transfers, clearing, the refresh of
// the hardware from the image, entries as text and as debug lines.
//
// These functions go entry by entry through csl_reef_tab_set_direct and
// _get_direct, each of which takes the table lock; the image alone is read
// or copied under the lock here.  Another thread may change entries between
// two steps.
#include <cstdio>
#include <cstring>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

namespace {

// Option words of the text form: every field, also those of value 0, and
// the entry's bytes before the fields.
constexpr u64 kTextAllFields = 0x100000000ull;
constexpr u64 kTextWithBytes = 0x100000000ull;

enum class Dir { kRead, kWrite };

// The checks of a block transfer; the table, the entry bytes and the
// number of entries, or the failure.
int _range_check(u32 chip_id, u32 tab_id, u32 index_min, u32 index_max, const csl_mem_buf *buf, Dir dir,
                 const cib_tab_info **out, u32 *entry_bytes, u32 *count)
{
    if (buf == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "\ngot buffer pointer null\n");
        return SHR_E_PARAM;
    }
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "\ngot tab %d pointer null\n", (int)tab_id);
        return SHR_E_NULL_PTR;
    }
    const u32 depth = cib_tab_depth(tab);
    // A range that runs backwards wraps here and is refused as well; so is
    // one that ends beyond the table, which the image could not hold.
    if (index_max - index_min >= depth || index_max >= depth) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "range out of tab size\n");
        return SHR_E_PARAM;
    }
    const u32 n = index_max - index_min + 1;
    const u64 need = static_cast<u64>(cib_tab_entry_bytes(tab)) * n;
    if (buf->len == 0 || buf->data == nullptr || buf->len < need) {
        if (dir == Dir::kWrite) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "got buffer size less than %d\n", (int)need);
        }
        return SHR_E_PARAM;
    }
    *out = tab;
    *entry_bytes = cib_tab_entry_bytes(tab);
    *count = n;
    return 0;
}

// Copies a run of entries between the image and a buffer under the table
// lock; false when the image is off.
bool _image_copy(u32 chip_id, u32 tab_id, u32 offset, u8 *buf, u32 bytes, Dir dir)
{
    CslTabLock lock(chip_id, tab_id);
    u8 *image = csl_reef_tab_image_get(chip_id, tab_id);
    if (image == nullptr) {
        return false;
    }
    if (dir == Dir::kRead) {
        memcpy(buf, image + offset, bytes);
    } else {
        memcpy(image + offset, buf, bytes);
    }
    return true;
}

// A block transfer.  A read takes the image in one copy when it is on, else
// the hardware entry by entry; a write always goes to the hardware entry by
// entry, and then into the image when it is on.
int _transfer(u32 chip_id, u32 id, u32 index_min, u32 index_max, csl_mem_buf *buf, Dir dir)
{
    const u32 tab_id = id & CIB_ID_MASK;
    const cib_tab_info *tab = nullptr;
    u32 bytes = 0, count = 0;
    int rc = _range_check(chip_id, tab_id, index_min, index_max, buf, dir, &tab, &bytes, &count);
    if (rc != 0) {
        return rc;
    }
    const bool read = dir == Dir::kRead;
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB,
                read ? "[TAB ARRAY READ START]%s, index_min: %d, index_max: %d\n"
                     : "[TAB ARRAY WRITE START]%s, index_min: %d, index_max: %d\n",
                tab->name, (int)index_min, (int)index_max);
    if (!read || !_image_copy(chip_id, tab_id, index_min * bytes, buf->data, count * bytes, dir)) {
        for (u32 i = 0; i < count; i++) {
            u8 *entry = buf->data + i * bytes;
            rc = read ? csl_reef_tab_get_direct(chip_id, id, index_min + i, entry, bytes, CSL_TAB_HW)
                      : csl_reef_tab_set_direct(chip_id, id, index_min + i, entry, bytes, CSL_TAB_HW);
            if (rc != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, read ? "\ngot data err: %s\n" : "\nset data err: %s\n",
                            shr_errmsg(rc));
                return rc;
            }
        }
    }
    if (!read) {
        _image_copy(chip_id, tab_id, index_min * bytes, buf->data, count * bytes, dir);
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, read ? "[TAB ARRAY READ END]%s\n" : "[TAB ARRAY WRITE END]%s\n",
                tab->name);
    return 0;
}

// Writes zeros to entries first to last with mode 2; the OR of the
// statuses.
int _clear_entries(u32 chip_id, u32 id, u32 first, u32 last)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, id & CIB_ID_MASK);
    if (tab == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: table pointer is NULL!\n");
        return SHR_E_PARAM;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    CslHeapBytes zeros(bytes, "table clear");
    if (zeros.get() == nullptr) {
        return SHR_E_MEMORY;
    }
    int rc = 0;
    for (u32 i = first; i <= last; i++) {
        rc |= csl_reef_tab_set_direct(chip_id, id, i, zeros.get(), bytes, CSL_TAB_HW_AND_IMAGE);
        if (i == 0xFFFFFFFFu) {
            break;
        }
    }
    return rc;
}

// One entry of the hardware refreshed: from the image when it is on, else
// zeros.
int _rewrite_entry(u32 chip_id, u32 id, const cib_tab_info *tab, u32 index, u8 *entry)
{
    const u32 tab_id = id & CIB_ID_MASK;
    const u32 bytes = cib_tab_entry_bytes(tab);
    CslTabLock lock(chip_id, tab_id);
    const u8 *image = csl_reef_tab_image_get(chip_id, tab_id);
    if (image != nullptr && index < cib_tab_depth(tab)) {
        memcpy(entry, image + static_cast<u64>(index) * bytes, bytes);
    } else {
        memset(entry, 0, bytes);
    }
    return csl_reef_tab_set_direct(chip_id, id, index, entry, bytes, CSL_TAB_HW);
}

} // namespace

extern "C" {

int csl_reef_mem_array_read_range(u32 chip_id, u32 id, u32 index_min, u32 index_max, csl_mem_buf *buf)
{
    return _transfer(chip_id, id, index_min, index_max, buf, Dir::kRead);
}

int csl_reef_mem_array_write_range(u32 chip_id, u32 id, u32 index_min, u32 index_max, csl_mem_buf *buf)
{
    return _transfer(chip_id, id, index_min, index_max, buf, Dir::kWrite);
}

int csl_reef_direct_table_entry_clr(u32 chip_id, u32 tab_id, u32 index)
{
    return _clear_entries(chip_id, tab_id, index, index);
}

int csl_reef_direct_table_entry_clr_range(u32 chip_id, u32 tab_id, u32 first, u32 last)
{
    return _clear_entries(chip_id, tab_id, first, last);
}

int csl_reef_direct_table_entry_all_clr(u32 chip_id, u32 tab_id)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id & CIB_ID_MASK);
    return _clear_entries(chip_id, tab_id, 0, tab != nullptr ? tab->index_max : 0);
}

int csl_reef_direct_table_rewrite(u32 chip_id, u32 id, u32 index)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    const u32 tab_id = id & CIB_ID_MASK;
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "Rewrite tab id:%u, index:%u\n", tab_id, index);
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: table(%u) pointer is NULL!\n", tab_id);
        return SHR_E_PARAM;
    }
    CslHeapBytes entry(cib_tab_entry_bytes(tab), "table rewrite");
    if (entry.get() == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Malloc entry cache failed!\n");
        return SHR_E_NULL_PTR;
    }
    if (index != CSL_TAB_REWRITE_ALL) {
        return _rewrite_entry(chip_id, id, tab, index, entry.get());
    }
    // The whole table: every entry of the image, which is indexed from 0
    // whatever the table's index_min; without an image only entry 0.
    if (csl_reef_tab_image_get(chip_id, tab_id) == nullptr) {
        return _rewrite_entry(chip_id, id, tab, 0, entry.get());
    }
    const u32 depth = cib_tab_depth(tab);
    for (u32 i = 0; i < depth; i++) {
        const int rc = _rewrite_entry(chip_id, id, tab, i, entry.get());
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

int csl_reef_direct_table_tostring(u32 chip_id, u32 id, u32 index, char *buf, u32 len)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, id & CIB_ID_MASK);
    if (tab == nullptr || buf == nullptr) {
        return SHR_E_PARAM;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    CslHeapBytes entry(bytes, "table tostring entry");
    if (entry.get() == nullptr) {
        return SHR_E_MEMORY;
    }
    const int rc = csl_reef_tab_get_direct(chip_id, id, index, entry.get(), bytes, CSL_TAB_HW);
    if (rc != 0) {
        return rc;
    }
    return csl_table_data_to_string(chip_id, tab->name, entry.get(), buf, len, kTextAllFields, kTextWithBytes, 0);
}

int csl_reef_table_debug_out_data(u32 chip_id, const csl_table_data *entry)
{
    if (entry == nullptr || (entry->data == nullptr && entry->bytes != 0)) {
        return SHR_E_PARAM;
    }
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, entry->tab_id & CIB_ID_MASK);
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[TAB DATA] %s(%u) index:%u bytes:%u\n", tab != nullptr ? tab->name : "-",
                entry->tab_id, entry->index, entry->bytes);
    // Whole words from the highest down, eight to a line; a last partial
    // word is padded with zeros.
    const u32 words = (entry->bytes + 3) / 4;
    char line[8 * 11 + 8];
    u32 pos = 0;
    for (u32 w = words; w > 0; w--) {
        u32 value = 0;
        const u32 off = (w - 1) * 4;
        memcpy(&value, entry->data + off, entry->bytes - off < 4 ? entry->bytes - off : 4);
        pos += static_cast<u32>(snprintf(line + pos, sizeof(line) - pos, " 0x%08x", value));
        if ((words - w + 1) % 8 == 0 || w == 1) {
            SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "[TAB DATA]%s\n", line);
            pos = 0;
        }
    }
    return 0;
}

} // extern "C"
