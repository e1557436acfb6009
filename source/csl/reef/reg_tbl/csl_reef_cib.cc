// The engine of the generated typed accessors: a typed record is a list of
// members, each standing for one field record; the engine moves members
// between the record and a word image of the register or entry, and does
// the read-modify-write under the module's lock.
#include <cstring>

#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "shared/shr_bits.h"

namespace {

bool _mask_bit(const u8 *mask, u32 i)
{
    return (mask[i / 8] >> (i % 8)) & 1;
}

bool _all_ones(const u8 *mask, u32 bytes)
{
    for (u32 i = 0; i < bytes; i++) {
        if (mask[i] != 0xFF) {
            return false;
        }
    }
    return true;
}

int _member_to_data(const cib_member &m, const cib_field_info &f, const u8 *record, u8 *data)
{
    const u8 *p = record + m.offset;
    switch (m.size) {
    case 1:
        return shr_field8_set_to_data(data, *p, f.low_bit, f.width);
    case 2: {
        u16 v;
        memcpy(&v, p, 2);
        return shr_field16_set_to_data(data, v, f.low_bit, f.width);
    }
    case 4: {
        u32 v;
        memcpy(&v, p, 4);
        return shr_field32_set_to_data(data, v, f.low_bit, f.width);
    }
    default: {
        u64 v;
        memcpy(&v, p, 8);
        return shr_field64_set_to_data(data, v, f.low_bit, f.width);
    }
    }
}

int _member_from_data(const cib_member &m, const cib_field_info &f, u8 *record, u8 *data)
{
    u8 *p = record + m.offset;
    switch (m.size) {
    case 1:
        return shr_field8_get_from_data(data, p, f.low_bit, f.width);
    case 2: {
        u16 v = 0;
        const int rc = shr_field16_get_from_data(data, &v, f.low_bit, f.width);
        memcpy(p, &v, 2);
        return rc;
    }
    case 4: {
        u32 v = 0;
        const int rc = shr_field32_get_from_data(data, &v, f.low_bit, f.width);
        memcpy(p, &v, 4);
        return rc;
    }
    default: {
        u64 v = 0;
        const int rc = shr_field64_get_from_data(data, &v, f.low_bit, f.width);
        memcpy(p, &v, 8);
        return rc;
    }
    }
}


} // namespace

extern "C" {

int csl_reef_cib_record_to_data(const cib_field_info *fields, const cib_member *members, u32 member_count,
                                const void *record, u8 *data, const u8 *mask, u32 mask_bytes)
{
    const u8 *rec = static_cast<const u8 *>(record);
    int rc = 0;
    for (u32 i = 0; i < member_count; i++) {
        if (mask != nullptr && (i / 8 >= mask_bytes || !_mask_bit(mask, i))) {
            continue;
        }
        rc |= _member_to_data(members[i], fields[members[i].field], rec, data);
    }
    return rc;
}

int csl_reef_cib_data_to_record(const cib_field_info *fields, const cib_member *members, u32 member_count,
                                void *record, const u8 *data)
{
    u8 *rec = static_cast<u8 *>(record);
    int rc = 0;
    for (u32 i = 0; i < member_count; i++) {
        rc |= _member_from_data(members[i], fields[members[i].field], rec, const_cast<u8 *>(data));
    }
    return rc;
}

int csl_reef_cib_reg_record_get(u32 chip_id, u32 reg_id, u32 addr_index, u32 cib_module_id, const cib_reg_info *reg,
                                void *out)
{
    if (out == nullptr) {
        return SHR_E_NULL_PTR;
    }
    CslRegLock lock(chip_id, cib_module_id);
    u8 word[4] = {};
    int rc = csl_reef_reg_get(chip_id, CIB_ID(reg_id, addr_index), word, 4);
    rc |= csl_reef_cib_data_to_record(reg->fields, reg->members, reg->member_count, out, word);
    return rc;
}

int csl_reef_cib_reg_record_set(u32 chip_id, u32 reg_id, u32 addr_index, u32 cib_module_id, const cib_reg_info *reg,
                                const void *in, const u8 mask[4])
{
    if (in == nullptr || mask == nullptr) {
        return SHR_E_NULL_PTR;
    }
    CslRegLock lock(chip_id, cib_module_id);
    u8 word[4] = {};
    int rc = 0;
    if (_all_ones(mask, 4)) {
        // The whole record: no read of the hardware.
        rc = csl_reef_cib_record_to_data(reg->fields, reg->members, reg->member_count, in, word, nullptr, 0);
    } else {
        rc = csl_reef_reg_get(chip_id, CIB_ID(reg_id, addr_index), word, 4);
        rc |= csl_reef_cib_record_to_data(reg->fields, reg->members, reg->member_count, in, word, mask, 4);
    }
    rc |= csl_reef_reg_set(chip_id, CIB_ID(reg_id, addr_index), word, 4);
    return rc;
}

int csl_reef_cib_tab_record_get(u32 chip_id, u32 tab_id, u32 addr_index, u32 index, const cib_tab_info *tab, void *out)
{
    if (out == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    CslHeapBytes entry(bytes, "table");
    u8 *data = entry.get();
    if (data == nullptr) {
        return SHR_E_NULL_PTR;
    }
    int rc = 0;
    {
        CslTabLock lock(chip_id, tab_id);
        rc = csl_reef_tab_get_direct(chip_id, CIB_ID(tab_id, addr_index), index, data, bytes, CSL_TAB_HW);
        rc |= csl_reef_cib_data_to_record(tab->modes[0].fields, tab->members, tab->member_count, out, data);
    }
    return rc;
}

int csl_reef_cib_tab_record_set(u32 chip_id, u32 tab_id, u32 addr_index, u32 index, const cib_tab_info *tab,
                                const void *in, const u64 mask[2])
{
    if (in == nullptr || mask == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    CslHeapBytes entry(bytes, "table");
    u8 *data = entry.get();
    if (data == nullptr) {
        return SHR_E_NULL_PTR;
    }
    int rc = 0;
    {
        CslTabLock lock(chip_id, tab_id);
        const u32 id = CIB_ID(tab_id, addr_index);
        const cib_field_info *fields = tab->modes[0].fields;
        if (mask[0] == ~0ull && mask[1] == ~0ull) {
            rc = csl_reef_cib_record_to_data(fields, tab->members, tab->member_count, in, data, nullptr, 0);
        } else {
            u8 m[16];
            memcpy(m, mask, 16);
            rc = csl_reef_tab_get_direct(chip_id, id, index, data, bytes, CSL_TAB_HW);
            rc |= csl_reef_cib_record_to_data(fields, tab->members, tab->member_count, in, data, m, 16);
        }
        rc |= csl_reef_tab_set_direct(chip_id, id, index, data, bytes, CSL_TAB_HW_AND_IMAGE);
    }
    return rc;
}

} // extern "C"

namespace tide::cib {

Bits reg_field(const cib_reg_info *reg, const char *name)
{
    for (u32 i = 0; reg != nullptr && i < reg->field_count; i++) {
        if (strcmp(reg->fields[i].name, name) == 0) {
            return Bits{reg->fields[i].low_bit, reg->fields[i].width};
        }
    }
    return Bits{};
}

const cib_reg_info *CatalogueNeeds::reg(u32 reg_id, u32 *addr)
{
    const cib_reg_info *r = csl_reef_reg_info_get(chip_id, reg_id);
    ok &= r != nullptr && r->a > 0;
    if (r != nullptr && r->a > 0) {
        *addr = r->addr[0];
    }
    return r;
}

Bits CatalogueNeeds::field(const cib_reg_info *reg, const char *name)
{
    const Bits f = reg_field(reg, name);
    ok &= f.ok();
    return f;
}

} // namespace tide::cib
