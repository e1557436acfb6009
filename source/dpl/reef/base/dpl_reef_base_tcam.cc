// The TCAM doors of the base service: the registry and the block manager's
// resource as text, and one entry of a TCAM table by name and table-wide
// index (block << 8 | index) written, cleared and shown.
#include <cstring>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "dpl/reef/base/dpl_reef_base.h"

namespace {

constexpr u32 kShowText = 8192;

// The table and the API-form address of a door's chip, name and index,
// with the lines of the shell for a bad one.
i32 _entry_of(u32 chip_id, const char *table_name, u32 index, u32 *tcam_id, u16 *address)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (table_name == nullptr) {
        csl_output_func(chip_id, 0, "ERR: tab name NULL\n");
        return SHR_E_PARAM;
    }
    i32 rc = csl_reef_tcam_tab_index_get(chip_id, index, address);
    if (rc != 0) {
        return rc;
    }
    rc = csl_reef_tcam_tab_id_get(chip_id, table_name, tcam_id);
    if (rc == SHR_E_NOT_FOUND) {
        csl_output_func(chip_id, 0, "ERR: tcam tab %s not found\n", table_name);
    }
    return rc;
}

// One part of an entry decoded by its table's fields.
void _show_part(u32 chip_id, const char *what, u32 block, u32 index, const char *table, const u8 *data, char *text)
{
    csl_output_func(chip_id, 0, "%s of block %d entry %d:", what, (int)block, (int)index);
    const i32 rc = table != nullptr ? csl_table_data_to_string(chip_id, table, data, text, kShowText,
                                                               0x100000000ull, 0x100000000ull, 0)
                                    : SHR_E_NOT_FOUND;
    csl_output_func(chip_id, 0, "\n%s\n", rc == 0 ? text : shr_errmsg(rc));
}

} // namespace

extern "C" {

i32 dpl_reef_base_tcam_summary_show(u32 chip_id)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    csl_reef_tcam_tab_summary_show(chip_id);
    return 0;
}

i32 dpl_reef_base_tcam_resource_show(u32 chip_id)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return csl_reef_tcam_resource_show(chip_id);
}

i32 dpl_reef_base_tcam_add(u32 chip_id, const char *table_name, u32 index, base_tcam_entry *entry)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (entry == nullptr || entry->key == nullptr || entry->mask == nullptr || entry->data == nullptr) {
        csl_output_func(chip_id, 0, "ERR: tcam entry NULL\n");
        return SHR_E_PARAM;
    }
    u32 tcam_id = 0;
    u16 address = 0;
    i32 rc = _entry_of(chip_id, table_name, index, &tcam_id, &address);
    if (rc != 0) {
        return rc;
    }
    const csl_tcam_data data = {entry->mask, entry->key, entry->data};
    rc = csl_reef_tcam_add(chip_id, tcam_id, address, &data);
    if (rc == SHR_E_FULL) {
        csl_output_func(chip_id, 0, "ERR: 480bit tcam block must less than 16\n");
    }
    return rc;
}

i32 dpl_reef_base_tcam_del(u32 chip_id, const char *table_name, u32 index)
{
    u32 tcam_id = 0;
    u16 address = 0;
    const i32 rc = _entry_of(chip_id, table_name, index, &tcam_id, &address);
    return rc != 0 ? rc : csl_reef_tcam_del(chip_id, tcam_id, address);
}

i32 dpl_reef_base_tcam_show(u32 chip_id, const char *table_name, u32 index)
{
    u32 tcam_id = 0;
    u16 address = 0;
    i32 rc = _entry_of(chip_id, table_name, index, &tcam_id, &address);
    if (rc != 0) {
        return rc;
    }
    // Room for a whole entry of the widest table, in whole words.
    u8 key[CSL_TCAM_KEY_BYTES_MAX + 4] = {}, mask[CSL_TCAM_KEY_BYTES_MAX + 4] = {}, ad[CSL_TCAM_AD_BYTES + 4] = {};
    csl_tcam_data data = {mask, key, ad};
    u32 valid = 0;
    rc = csl_reef_tcam_read(chip_id, tcam_id, address, &data, &valid);
    if (rc != 0) {
        return rc;
    }
    char *text = static_cast<char *>(xsal_malloc(kShowText, "tcam show", SHR_MOD_REG_TAB));
    if (text == nullptr) {
        return SHR_E_MEMORY;
    }
    const csl_tcam_tab_name_id &row = g_tcam_tab_name_id[tcam_id];
    const u32 block = address & 0xFF, entry = address >> 8;
    _show_part(chip_id, "Key", block, entry, row.name, key, text);
    _show_part(chip_id, "Mask", block, entry, row.name, mask, text);
    _show_part(chip_id, "Ad", block, entry, row.ad_name, ad, text);
    csl_output_func(chip_id, 0, "Valid of block %d entry %d: %u\n", (int)block, (int)entry, valid);
    xsal_mem_free(text);
    return 0;
}

} // extern "C"
