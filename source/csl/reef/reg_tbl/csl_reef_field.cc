// Fields by catalogue: field records, values placed in and read from word
// images by field id, registers and tables found by name, the field doors
// of the shell, dumps of registers, entries and whole modules, and the
// clearing of a module's status.
#include <strings.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "shared/shr_bits.h"

namespace {

constexpr const char *kRegDashes = "--------------------------------------------------------------------------\n";
constexpr const char *kTabDashes = "------------------------------------------------------------------------------\n";

bool _is_reserved(const char *name)
{
    return strcmp(name, "rsv") == 0 || strcmp(name, "reserve") == 0;
}

u32 _reg_count(const cib_reg_info *reg)
{
    return static_cast<u32>(reg->a) * reg->b;
}

const cib_field_info *_find_field(const cib_field_info *fields, u32 count, u32 field_id)
{
    for (u32 i = 0; i < count; i++) {
        if (fields[i].field_id == field_id && !_is_reserved(fields[i].name)) {
            return &fields[i];
        }
    }
    return nullptr;
}

const cib_field_info *_find_field_by_name(const cib_field_info *fields, u32 count, const char *name)
{
    for (u32 i = 0; i < count; i++) {
        if (strcmp(fields[i].name, name) == 0 && !_is_reserved(fields[i].name)) {
            return &fields[i];
        }
    }
    return nullptr;
}

// The value of a field of up to 64 bits from a word image.
u64 _field_value(const u8 *data, const cib_field_info &f)
{
    u64 v = 0;
    shr_field64_get_from_data(const_cast<u8 *>(data), &v, f.low_bit, f.width);
    return v;
}

// Case-insensitive "has prefix".
bool _has_prefix(const char *text, const char *prefix)
{
    return strncasecmp(text, prefix, strlen(prefix)) == 0;
}

const char *_strip_cib(const char *name)
{
    return _has_prefix(name, "cib_") ? name + 4 : name;
}

// Prints the bytes of a field, highest first, as hex without leading
// zero bytes beyond the first.
int _print_field_hex(u32 chip_id, u32 to_file, const u8 *data, const cib_field_info &f, char *out, u32 out_len)
{
    const u32 bytes = (f.width + 7) / 8;
    u8 value[8] = {};
    u64 v = _field_value(data, f);
    memcpy(value, &v, sizeof(v));
    u32 pos = 0;
    for (u32 i = bytes; i > 0; i--) {
        if (out != nullptr) {
            if (pos + 3 > out_len) {
                break;
            }
            pos += static_cast<u32>(snprintf(out + pos, out_len - pos, "%02x", value[i - 1]));
        } else {
            csl_output_func(chip_id, to_file, "%02x", value[i - 1]);
        }
    }
    return static_cast<int>(pos);
}

// Runs an output body with the chip's output redirected to `file` when one
// is given.
template <typename Body>
int _with_file(u32 chip_id, const char *file, Body body)
{
    if (file == nullptr || *file == '\0') {
        return body(0u);
    }
    int rc = csl_write_file_open(chip_id, file, 0xFFFFFFFFu);
    if (rc != 0) {
        return rc;
    }
    rc = body(1u);
    csl_write_file_close(chip_id);
    return rc;
}

} // namespace

extern "C" {

const char *const g_cib_access_name[CIB_ACC_COUNT] = {
    "RW",   "RO",    "RWW",  "RC_H",  "WC",    "RC_P",     "WC_H",  "W1C_H",    "IPSC", "IPSC2", "IPSC_RC",
    "BPSC", "BPSC2", "RW1C", "INTWC", "ELOGF", "ELOGF_RC", "ELOGL", "ELOGL_RC", "WRC",  "TAB",   "CAM",
};

// ---- field records ------------------------------------------------------------

int csl_reg_field_info_get(u32 chip_id, u32 reg_id, u32 field_id, cib_field_info *out)
{
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id & CIB_ID_MASK);
    if (reg == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (reg->fields == nullptr || reg->field_count == 0) {
        return SHR_E_NOT_SUPPORT;
    }
    const cib_field_info *f = _find_field(reg->fields, reg->field_count, field_id);
    if (f == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    if (out != nullptr) {
        *out = *f;
    }
    return 0;
}

int csl_tab_field_info_get(u32 chip_id, u32 tab_id, u8 mode, u32 field_id, cib_field_info *out)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id & CIB_ID_MASK);
    if (tab == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (out == nullptr || mode >= tab->mode_count) {
        return tab->modes == nullptr ? SHR_E_NOT_SUPPORT : SHR_E_PARAM;
    }
    if (tab->modes == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    const cib_tab_mode &m = tab->modes[mode];
    const cib_field_info *f = m.fields != nullptr ? _find_field(m.fields, m.field_count, field_id) : nullptr;
    if (f == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    *out = *f;
    return 0;
}

} // extern "C"

namespace {

// The typed field doors of the four widths: a field the register or table
// does not have is no error, and nothing is done.
template <typename T>
int _reg_field_set(u32 chip_id, u8 *data, u32 reg_id, T value, u32 field_id)
{
    if (data == nullptr) {
        return SHR_E_NULL_PTR;
    }
    cib_field_info f{};
    const int rc = csl_reg_field_info_get(chip_id, reg_id, field_id, &f);
    if (rc != 0) {
        return rc == SHR_E_NOT_FOUND ? 0 : rc;
    }
    return shr_field64_set_to_data(data, static_cast<u64>(value), f.low_bit, f.width);
}

template <typename T>
int _reg_field_get(u32 chip_id, u8 *data, u32 reg_id, T *value, u32 field_id)
{
    if (data == nullptr || value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    cib_field_info f{};
    const int rc = csl_reg_field_info_get(chip_id, reg_id, field_id, &f);
    if (rc != 0) {
        return rc == SHR_E_NOT_FOUND ? 0 : rc;
    }
    *value = static_cast<T>(_field_value(data, f));
    return 0;
}

template <typename T>
int _tab_field_set(u32 chip_id, u8 *data, u8 mode, u32 tab_id, T value, u32 field_id, u32 exact)
{
    if (data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: tab_data is NULL!\n");
        return SHR_E_PARAM;
    }
    cib_field_info f{};
    const int rc = csl_tab_field_info_get(chip_id, tab_id, mode, field_id, &f);
    if (rc != 0) {
        return rc == SHR_E_NOT_FOUND ? 0 : rc;
    }
    u64 v = static_cast<u64>(value);
    if (exact == 0 && f.width < 64) {
        v &= (1ull << f.width) - 1;
    }
    return shr_field64_set_to_data(data, v, f.low_bit, f.width);
}

template <typename T>
int _tab_field_get(u32 chip_id, u8 *data, u8 mode, u32 tab_id, T *value, u32 field_id)
{
    if (data == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: tab_data is NULL!\n");
        return SHR_E_PARAM;
    }
    if (value == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[TABLE INVALID]: field_val is NULL!\n");
        return SHR_E_PARAM;
    }
    cib_field_info f{};
    const int rc = csl_tab_field_info_get(chip_id, tab_id, mode, field_id, &f);
    if (rc != 0) {
        return rc == SHR_E_NOT_FOUND ? 0 : rc;
    }
    *value = static_cast<T>(_field_value(data, f));
    return 0;
}

} // namespace

extern "C" {

#define CSL_FIELD_WIDTH_FUNCS(N)                                                                                  \
    int csl_reg_field##N##_set_to_data(u32 chip_id, u8 *data, u32 reg_id, u##N value, u32 field_id)              \
    {                                                                                                             \
        return _reg_field_set(chip_id, data, reg_id, value, field_id);                                           \
    }                                                                                                             \
    int csl_reg_field##N##_get_from_data(u32 chip_id, u8 *data, u32 reg_id, u##N *value, u32 field_id)           \
    {                                                                                                             \
        return _reg_field_get(chip_id, data, reg_id, value, field_id);                                           \
    }                                                                                                             \
    int csl_tab_field##N##_set_to_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u##N value, u32 field_id,     \
                                       u32 exact)                                                                 \
    {                                                                                                             \
        return _tab_field_set(chip_id, data, mode, tab_id, value, field_id, exact);                              \
    }                                                                                                             \
    int csl_tab_field##N##_get_from_data(u32 chip_id, u8 *data, u8 mode, u32 tab_id, u##N *value, u32 field_id)  \
    {                                                                                                             \
        return _tab_field_get(chip_id, data, mode, tab_id, value, field_id);                                     \
    }

CSL_FIELD_WIDTH_FUNCS(8)
CSL_FIELD_WIDTH_FUNCS(16)
CSL_FIELD_WIDTH_FUNCS(32)
CSL_FIELD_WIDTH_FUNCS(64)

// ---- lookup by name -------------------------------------------------------------

// The module a name belongs to: the longest module name that the name
// starts with, without regard to case and with or without "cib_".
int _module_info_get(u32 chip_id, const char *name, u32 *module_id)
{
    const u32 type = shr_chip_type_get(chip_id);
    if (type == SHR_CHIP_TYPE_NULL || type > SHR_CHIP_TYPE_ATOLREEF) {
        return SHR_E_BADID;
    }
    if (csl_reef_reg_info_get(chip_id, 0) == nullptr && csl_reef_tab_info_get(chip_id, 1) == nullptr) {
        return SHR_E_NULL_PTR; // no catalogue for this chip
    }
    const bool given_prefix = _has_prefix(name, "cib_");
    size_t best = 0;
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        const char *mod = atolreef_allmodule_list[m].name;
        if (mod == nullptr) {
            continue;
        }
        const char *cmp = given_prefix ? mod : mod + 4;
        const size_t len = strlen(cmp);
        if (len > best && strncasecmp(name, cmp, len) == 0) {
            best = len;
            *module_id = m;
        }
    }
    if (best == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "no module named %s\n", name);
        return SHR_E_NOT_FOUND;
    }
    return 0;
}

int _info_ptr_and_addr_start_idx_get_by_name(u32 chip_id, const char *name, u32 *id, const void **record,
                                             u32 is_register, u32 *addr_index)
{
    if (name == nullptr || id == nullptr || record == nullptr || addr_index == nullptr) {
        return SHR_E_PARAM;
    }
    u32 module_id = 0;
    const int rc = _module_info_get(chip_id, name, &module_id);
    if (rc != 0) {
        return rc;
    }
    const cib_module_info &mod = atolreef_allmodule_list[module_id];
    const u32 first = is_register ? mod.reg_first : mod.tab_first;
    const u32 last = is_register ? mod.reg_last : mod.tab_last;
    if (first == CIB_NO_RANGE) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, is_register ? "module %s no register\n" : "module %s no tab\n",
                    mod.name);
        return SHR_E_NOT_FOUND;
    }
    const char *want = _strip_cib(name);
    for (u32 i = first; i <= last; i++) {
        const char *entry = nullptr;
        u32 instances = 0;
        const void *rec = nullptr;
        if (is_register) {
            const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, i);
            if (reg == nullptr || reg->name == nullptr) {
                continue;
            }
            entry = reg->name;
            instances = reg->a;
            rec = reg;
        } else {
            const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, i);
            if (tab == nullptr || tab->name == nullptr) {
                continue;
            }
            entry = tab->name;
            instances = tab->inst_a;
            rec = tab;
        }
        if (!_has_prefix(want, entry)) {
            continue;
        }
        // Nothing follows: instance 0; "_" and decimal digits: that
        // instance; anything else is another name.
        const char *rest = want + strlen(entry);
        u32 index = 0;
        if (*rest != '\0') {
            if (rest[0] != '_' || rest[1] == '\0') {
                continue;
            }
            bool digits = true;
            for (const char *p = rest + 1; *p != '\0'; p++) {
                digits &= isdigit(static_cast<unsigned char>(*p)) != 0;
            }
            if (!digits) {
                continue;
            }
            index = static_cast<u32>(strtoul(rest + 1, nullptr, 10));
        }
        if (index >= instances) {
            SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "%s address out of range 0~%d\n", name, (int)instances - 1);
            return SHR_E_FULL;
        }
        *id = i;
        *record = rec;
        *addr_index = index;
        return 0;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "%s not found\n", name);
    return SHR_E_NOT_FOUND;
}

int csl_reef_reg_info_get_by_name(u32 chip_id, const char *name, u32 *reg_id, const cib_reg_info **reg,
                                  u32 *addr_index)
{
    const void *rec = nullptr;
    const int rc = _info_ptr_and_addr_start_idx_get_by_name(chip_id, name, reg_id, &rec, 1, addr_index);
    if (rc == 0 && reg != nullptr) {
        *reg = static_cast<const cib_reg_info *>(rec);
    }
    return rc;
}

int csl_reef_tab_info_get_by_name(u32 chip_id, const char *name, u32 *tab_id, const cib_tab_info **tab,
                                  u32 *addr_index)
{
    const void *rec = nullptr;
    const int rc = _info_ptr_and_addr_start_idx_get_by_name(chip_id, name, tab_id, &rec, 0, addr_index);
    if (rc == 0 && tab != nullptr) {
        *tab = static_cast<const cib_tab_info *>(rec);
    }
    return rc;
}

int csl_reef_direct_tab_set_by_name(u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes)
{
    (void)bytes;
    u32 tab_id = 0, addr_index = 0;
    const cib_tab_info *tab = nullptr;
    const int rc = csl_reef_tab_info_get_by_name(chip_id, name, &tab_id, &tab, &addr_index);
    if (rc != 0) {
        return rc;
    }
    return csl_reef_tab_set_direct(chip_id, CIB_ID(tab_id, addr_index), index, data, cib_tab_entry_bytes(tab), CSL_TAB_HW);
}

int csl_reef_direct_tab_get_by_name(u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes)
{
    u32 tab_id = 0, addr_index = 0;
    const cib_tab_info *tab = nullptr;
    const int rc = csl_reef_tab_info_get_by_name(chip_id, name, &tab_id, &tab, &addr_index);
    if (rc != 0) {
        return rc;
    }
    return csl_reef_tab_get_direct(chip_id, CIB_ID(tab_id, addr_index), index, data, bytes, CSL_TAB_HW);
}

// ---- sizes and places --------------------------------------------------------------

int csl_reef_tab_size_get(u32 chip_id, u32 id, u32 *size)
{
    if (size == nullptr) {
        return SHR_E_PARAM;
    }
    const u32 tab_id = id & CIB_ID_MASK;
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr) {
        return SHR_E_MEMORY;
    }
    if (tab->flags & CIB_TAB_INDIRECT) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "The table(id: %u) is indirect!\n", tab_id);
    }
    if (tab_id == cib_arl_em_mac_tbl_key || tab_id == cib_arl_em_mac_tbl_ad) {
        // The MAC table grows into the RAM it shares with the buffer
        // manager when the share mode is on.
        u32 share = 0;
        csl_reef_reg_get_u32(chip_id, cib_lsw_hreg_fbm_share_ram_cfg, &share);
        *size = share == 1 ? 18436 : 10244;
        return 0;
    }
    *size = cib_tab_depth(tab);
    return 0;
}

int csl_reef_reg_or_tab_info_get_by_addr(u32 chip_id, u32 addr, u32 *is_register, u32 *id, u32 *addr_index,
                                         u32 *index)
{
    if (is_register == nullptr || id == nullptr || addr_index == nullptr || index == nullptr) {
        return SHR_E_PARAM;
    }
    for (u32 r = 0; r < CIB_REG_LIST_SLOTS; r++) {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, r);
        for (u32 k = 0; reg != nullptr && k < _reg_count(reg); k++) {
            if (reg->addr[k] == (addr & ~3u)) {
                *is_register = 1, *id = r, *addr_index = k, *index = 0;
                return 0;
            }
        }
    }
    for (u32 t = 0; t < CIB_TAB_LIST_SLOTS; t++) {
        const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, t);
        if (tab == nullptr || (tab->flags & CIB_TAB_INDIRECT)) {
            continue;
        }
        const u32 span = cib_tab_depth(tab) * cib_tab_entry_bytes(tab);
        for (u32 k = 0; k < static_cast<u32>(tab->inst_a) * tab->inst_b; k++) {
            if (addr >= tab->addr[k] && addr - tab->addr[k] < span) {
                *is_register = 0, *id = t, *addr_index = k, *index = (addr - tab->addr[k]) / cib_tab_entry_bytes(tab);
                return 0;
            }
        }
    }
    return SHR_E_NOT_FOUND;
}

int csl_reef_module_info_check(u32 chip_id, const char *name, u32 addr_index)
{
    u32 module_id = 0;
    if (name == nullptr || _module_info_get(chip_id, name, &module_id) != 0) {
        csl_output_func(chip_id, 0, "ERR: no module named %s\n", name != nullptr ? name : "");
        return SHR_E_NOT_FOUND;
    }
    const cib_module_info &mod = atolreef_allmodule_list[module_id];
    u32 count = 1;
    if (mod.reg_first != CIB_NO_RANGE) {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, mod.reg_first);
        count = reg != nullptr ? _reg_count(reg) : 0;
    }
    if (addr_index >= count) {
        csl_output_func(chip_id, 0, "ERR: %s wrong address index:%u, module address number:%u!\n", name, addr_index,
                        count);
        return SHR_E_PARAM;
    }
    return 0;
}

// ---- dumps ---------------------------------------------------------------------------

// One register instance with its fields.  Dump and show share the format.
static int _csl_reef_reg_print(u32 chip_id, u32 id, u64 flags, u32 skip_zero, u32 to_file)
{
    const u32 reg_id = id & CIB_ID_MASK;
    u32 addr_index = id >> CIB_INDEX_SHIFT;
    if (addr_index == CIB_ALL_INSTANCES) {
        addr_index = 0;
    }
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
    if (reg == nullptr || _reg_count(reg) == 0) {
        return reg == nullptr ? SHR_E_NOT_FOUND : 0;
    }
    if (addr_index >= _reg_count(reg)) {
        return SHR_E_FULL;
    }
    u32 value = 0;
    const int rc = csl_reef_reg_get_u32(chip_id, CIB_ID(reg_id, addr_index), &value);
    if (rc != 0) {
        return rc;
    }
    if (skip_zero == 1 && value == 0) {
        return 0;
    }
    const char *name = reg->name != nullptr ? reg->name : "";
    int out = 0;
    if (_reg_count(reg) > 1) {
        out = csl_output_func(chip_id, to_file, "Register Name : %s[%u]\n", name, addr_index);
    } else {
        out = csl_output_func(chip_id, to_file, "Register Name : %s\n", name);
    }
    if (out < 0) {
        return out;
    }
    csl_output_func(chip_id, to_file, "Register Addr : 0x%x,  Value: 0x%x(%u)\n", reg->addr[addr_index], value, value);
    const bool fields = static_cast<u32>(flags) != 0;
    const bool zeros = (flags >> 32) != 0;
    if (fields) {
        csl_output_func(chip_id, to_file, "%s", kRegDashes);
        u8 data[4];
        memcpy(data, &value, 4);
        for (u32 i = 0; i < reg->field_count; i++) {
            const cib_field_info &f = reg->fields[i];
            const u64 v = _field_value(data, f);
            if (_is_reserved(f.name) || (v == 0 && !zeros)) {
                continue;
            }
            csl_output_func(chip_id, to_file, "  %-40s[%2d.%2d] : ", f.name, f.low_bit, f.width);
            csl_output_func(chip_id, to_file, "0x%x(%u)\n", static_cast<u32>(v), static_cast<u32>(v));
        }
    }
    return csl_output_func(chip_id, to_file, "\n") < 0 ? SHR_E_FULL : 0;
}

int csl_reef_reg_dump(u32 chip_id, u32 id, u64 flags, u32 skip_zero, const char *file)
{
    return _with_file(chip_id, file,
                      [&](u32 to_file) { return _csl_reef_reg_print(chip_id, id, flags, skip_zero, to_file); });
}

int csl_reef_reg_show(u32 chip_id, u32 id, u64 flags, u32 skip_zero, const char *file)
{
    return csl_reef_reg_dump(chip_id, id, flags, skip_zero, file);
}

// The text of an entry's fields, one line each: name, bits and the value in
// hex, highest byte first.
static int _csl_entry_field_lines(u32 chip_id, const cib_tab_info *tab, const u8 *data, bool zeros, u32 to_file,
                                  char *out, u32 out_len, u32 *pos)
{
    const cib_tab_mode *mode = tab->modes;
    if (mode == nullptr) {
        return 0;
    }
    for (u32 i = 0; i < mode->field_count; i++) {
        const cib_field_info &f = mode->fields[i];
        if (_is_reserved(f.name) || (!zeros && _field_value(data, f) == 0)) {
            continue;
        }
        const int hi = f.low_bit + f.width - 1;
        if (out != nullptr) {
            if (*pos + 64 >= out_len) {
                return SHR_E_FULL;
            }
            *pos += static_cast<u32>(
                snprintf(out + *pos, out_len - *pos, "%-35s [%04d:%04d] : 0x", f.name, hi, f.low_bit));
            *pos += static_cast<u32>(_print_field_hex(chip_id, to_file, data, f, out + *pos, out_len - *pos));
            *pos += static_cast<u32>(snprintf(out + *pos, out_len - *pos, "\n"));
        } else {
            csl_output_func(chip_id, to_file, "%-35s [%04d:%04d] : 0x", f.name, hi, f.low_bit);
            _print_field_hex(chip_id, to_file, data, f, nullptr, 0);
            csl_output_func(chip_id, to_file, "\n");
        }
    }
    return 0;
}

static int _csl_reef_entry_print(u32 chip_id, u32 id, u32 index, u64 flags, u32 to_file, u32 mode)
{
    const u32 tab_id = id & CIB_ID_MASK;
    const u32 addr_index = id >> CIB_INDEX_SHIFT;
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    u8 *data = static_cast<u8 *>(xsal_malloc(bytes, "table show", SHR_MOD_REG_TAB));
    if (data == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(data, 0, bytes);
    int rc = csl_reef_tab_get_direct(chip_id, id, index, data, bytes, mode);
    bool all_zero = true;
    for (u32 i = 0; i < bytes; i++) {
        all_zero &= data[i] == 0;
    }
    if (rc == 0 && !(all_zero && (flags >> 32) == 0)) {
        if (addr_index != 0 && addr_index != CIB_ALL_INSTANCES) {
            csl_output_func(chip_id, to_file, "Table : %s[%u]\n", tab->name, addr_index);
        } else {
            csl_output_func(chip_id, to_file, "Table : %s\n", tab->name);
        }
        if (static_cast<u32>(flags) == 1) {
            csl_reef_entry_index_line(chip_id, tab_id, index, to_file);
        }
        csl_output_func(chip_id, to_file, "%s0x : ", kTabDashes);
        for (u32 i = bytes; i > 0; i--) {
            csl_output_func(chip_id, to_file, "%02x", data[i - 1]);
            const u32 done = bytes - i + 1;
            if (done % 32 == 0 && i > 1) {
                csl_output_func(chip_id, to_file, "\n     ");
            } else if (done % 4 == 0) {
                csl_output_func(chip_id, to_file, " ");
            }
        }
        csl_output_func(chip_id, to_file, "\n%s", kTabDashes);
        u32 unused = 0;
        rc = _csl_entry_field_lines(chip_id, tab, data, true, to_file, nullptr, 0, &unused);
        if (csl_output_func(chip_id, to_file, "\n") < 0) {
            rc = SHR_E_FULL;
        }
    }
    xsal_mem_free(data);
    return rc;
}

// The index line of an entry.  The statistics of the causes name the cause
// an index counts, from the cause lists of the chip when they are present.
void csl_reef_entry_index_line(u32 chip_id, u32 tab_id, u32 index, u32 to_file)
{
    if (tab_id == cib_stat_causeid_stat_result_tbl && shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF) {
        // The cause lists that name these indexes come with the base
        // service's cause table.
        csl_output_func(chip_id, to_file, "Index : %u     Module: NULL   Name: NULL\n", index);
        return;
    }
    csl_output_func(chip_id, to_file, "Index : %u\n", index);
}

int csl_reef_direct_table_show(u32 chip_id, u32 id, u32 index, u64 flags, u32 reserved, const char *file, u32 mode)
{
    (void)reserved;
    return _with_file(chip_id, file,
                      [&](u32 to_file) { return _csl_reef_entry_print(chip_id, id, index, flags, to_file, mode); });
}

int csl_table_data_to_string(u32 chip_id, const char *table_name, const u8 *data, char *buf, u32 len, u64 opt0,
                             u64 opt1, u32 opt2)
{
    (void)opt2;
    if (shr_chip_family_get(chip_id) != SHR_CHIP_FAMILY_REEF) {
        return SHR_E_UNIT;
    }
    if (table_name == nullptr || buf == nullptr || data == nullptr) {
        return SHR_E_PARAM;
    }
    u32 tab_id = 0, addr_index = 0;
    const cib_tab_info *tab = nullptr;
    int rc = csl_reef_tab_info_get_by_name(chip_id, table_name, &tab_id, &tab, &addr_index);
    if (rc != 0) {
        return rc;
    }
    if (len < cib_tab_entry_bytes(tab)) {
        return SHR_E_PARAM;
    }
    const u32 work_len = 8192;
    char *work = static_cast<char *>(xsal_malloc(work_len, "table tostring", SHR_MOD_REG_TAB));
    if (work == nullptr) {
        return SHR_E_MEMORY;
    }
    u32 pos = 0;
    work[0] = '\0';
    // opt0, high word: fields of value 0 too.  opt1, high word: the entry's
    // bytes first.
    if ((opt1 >> 32) != 0) {
        const u32 bytes = cib_tab_entry_bytes(tab);
        pos += static_cast<u32>(snprintf(work + pos, work_len - pos, "0x : "));
        for (u32 i = bytes; i > 0 && pos + 4 < work_len; i--) {
            pos += static_cast<u32>(snprintf(work + pos, work_len - pos, "%02x", data[i - 1]));
        }
        pos += static_cast<u32>(snprintf(work + pos, work_len - pos, "\n"));
    }
    rc = _csl_entry_field_lines(chip_id, tab, data, (opt0 >> 32) != 0, 0, work, work_len, &pos);
    snprintf(buf, len, "%s", work);
    xsal_mem_free(work);
    return rc;
}

// ---- the field doors ---------------------------------------------------------------

static int _csl_reef_field_reg_by_addr(u32 chip_id, base_field_op *op, u32 to_file, bool set)
{
    if (op->field_name != nullptr) {
        csl_output_func(chip_id, 0, "ERR: not support field name and reg address valid at the same time!\n");
        return SHR_E_PARAM;
    }
    const u32 count = op->count == 0 ? 1 : op->count;
    for (u32 i = 0; i < count; i++) {
        const u32 addr = op->addr + 4 * i;
        int rc = 0;
        if (set) {
            u32 value = 0;
            memcpy(&value, op->data, op->data_bytes < 4 ? op->data_bytes : 4);
            rc = csl_reg_general_write32(chip_id, 4, addr, value);
        } else {
            u32 value = 0;
            rc = csl_reg_general_read32(chip_id, 4, addr, &value);
            if (rc == 0) {
                csl_output_func(chip_id, to_file, "Register Addr : 0x%x data : 0x%x\n", addr, value);
            }
        }
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

// Changes one field (or the whole word) of a word image from the caller's
// value bytes; a value wider than the field is cut, with a warning.
static void _csl_field_put(u32 chip_id, u8 *image, const cib_field_info *f, u32 image_bits, const base_field_op *op)
{
    const u32 width = f != nullptr ? f->width : image_bits;
    const u32 low = f != nullptr ? f->low_bit : 0;
    const u32 bits = shr_buf_bitwidth_get(op->data, op->data_bytes);
    u64 value = 0;
    memcpy(&value, op->data, op->data_bytes < 8 ? op->data_bytes : 8);
    if (bits > width) {
        csl_output_func(chip_id, 0, "WARN: data bits %d more than %d, write data %#x\n", (int)bits, (int)width,
                        static_cast<u32>(value));
    }
    if (width < 64) {
        value &= (1ull << width) - 1;
    }
    if (width <= 64) {
        shr_field64_set_to_data(image, value, static_cast<u16>(low), static_cast<u16>(width));
        return;
    }
    // A whole entry wider than 64 bits takes the caller's bytes as they are.
    const u32 bytes = (width + 7) / 8;
    memset(image, 0, bytes);
    memcpy(image, op->data, op->data_bytes < bytes ? op->data_bytes : bytes);
}

static int _csl_reef_field_reg_by_name(u32 chip_id, base_field_op *op, u32 to_file, bool set)
{
    u32 reg_id = 0, addr_index = 0;
    const cib_reg_info *reg = nullptr;
    int rc = csl_reef_reg_info_get_by_name(chip_id, op->name, &reg_id, &reg, &addr_index);
    if (rc == SHR_E_FULL) {
        csl_output_func(chip_id, 0, "ERR: %s addr offset %d out of range 0~%d\n", op->name, (int)addr_index, 0);
        return rc;
    }
    if (rc != 0) {
        csl_output_func(chip_id, 0, "ERR: register name %s not found\n", op->name);
        return rc;
    }
    const u32 count = op->count == 0 ? 1 : op->count;
    if (addr_index + count > _reg_count(reg)) {
        csl_output_func(chip_id, 0,
                        set ? "ERR: input cnt(%d) exceeds the number of addr %d\n"
                            : "input cnt(%d) exceeds the number of addr %d\n",
                        (int)count, (int)_reg_count(reg));
        return SHR_E_PARAM;
    }
    const cib_field_info *f = nullptr;
    if (op->field_name != nullptr) {
        f = _find_field_by_name(reg->fields, reg->field_count, op->field_name);
        if (f == nullptr) {
            csl_output_func(chip_id, 0, "%s.%s not exsit\n", reg->name, op->field_name);
            return SHR_E_NOT_FOUND;
        }
    }
    for (u32 k = addr_index; k < addr_index + count; k++) {
        const u32 id = CIB_ID(reg_id, k);
        u8 word[4] = {};
        rc = csl_reef_reg_get(chip_id, id, word, 4);
        if (rc != 0) {
            return rc;
        }
        if (set) {
            if (op->data == nullptr) {
                return SHR_E_PARAM;
            }
            _csl_field_put(chip_id, word, f, 32, op);
            rc = csl_reef_reg_set(chip_id, id, word, 4);
        } else if (f == nullptr) {
            rc = _csl_reef_reg_print(chip_id, id, 1, 0, to_file);
        } else {
            u32 value = 0;
            memcpy(&value, word, 4);
            const u64 fv = _field_value(word, *f);
            if (k != 0) {
                csl_output_func(chip_id, to_file, "    [%u] address : 0x%x register data : 0x%x", k, reg->addr[k],
                                value);
            } else {
                csl_output_func(chip_id, to_file, "    address : 0x%x register data : 0x%x", reg->addr[k], value);
            }
            csl_output_func(chip_id, to_file, " field data : 0x%x(%u)\n", static_cast<u32>(fv), static_cast<u32>(fv));
            rc = _csl_reef_reg_print(chip_id, id, 1, 0, to_file);
        }
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

static int _csl_reef_field_tab_by_name(u32 chip_id, base_field_op *op, u32 to_file, bool set, u32 mode)
{
    u32 tab_id = 0, addr_index = 0;
    const cib_tab_info *tab = nullptr;
    int rc = csl_reef_tab_info_get_by_name(chip_id, op->name, &tab_id, &tab, &addr_index);
    if (rc != 0) {
        csl_output_func(chip_id, 0, "ERR: table name %s not found\n", op->name);
        return rc;
    }
    const u32 depth = cib_tab_depth(tab);
    const u32 count = op->count == 0 ? 1 : op->count;
    if (op->start >= depth || count > depth - op->start) {
        csl_output_func(chip_id, 0,
                        set ? "ERR: input start index(%d) cnt(%d) out of range %d~%d\n"
                            : "input start(%d) cnt(%d) out of range %d~%d\n",
                        (int)op->start, (int)count, 0, (int)depth - 1);
        return SHR_E_PARAM;
    }
    const cib_field_info *f = nullptr;
    if (op->field_name != nullptr) {
        if (tab->modes == nullptr || tab->modes[0].field_count == 0) {
            shr_debug_base_cli_printf_func_get()("Don't support to access table by field name!\n");
            return SHR_E_NOT_SUPPORT;
        }
        f = _find_field_by_name(tab->modes[0].fields, tab->modes[0].field_count, op->field_name);
        if (f == nullptr) {
            csl_output_func(chip_id, 0, "%s.%s not exsit\n", tab->name, op->field_name);
            return SHR_E_NOT_FOUND;
        }
    }
    const u32 id = CIB_ID(tab_id, addr_index);
    if (!set && f == nullptr) {
        for (u32 i = op->start; i < op->start + count && rc == 0; i++) {
            rc = _csl_reef_entry_print(chip_id, id, i, 1ull | (static_cast<u64>(op->show_all) << 32), to_file, mode);
        }
        return rc;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    u8 *entry = static_cast<u8 *>(xsal_malloc(bytes, "table field", SHR_MOD_REG_TAB));
    if (entry == nullptr) {
        return SHR_E_MEMORY;
    }
    if (!set) {
        csl_output_func(chip_id, to_file, "Table %s : %s[%04d:%04d]\n", tab->name, f->name,
                        f->low_bit + f->width - 1, f->low_bit);
    }
    for (u32 i = op->start; i < op->start + count && rc == 0; i++) {
        memset(entry, 0, bytes);
        rc = csl_reef_tab_get_direct(chip_id, id, i, entry, bytes, mode);
        if (rc != 0) {
            break;
        }
        if (set) {
            if (op->data == nullptr) {
                rc = SHR_E_PARAM;
                break;
            }
            _csl_field_put(chip_id, entry, f, tab->width, op);
            rc = csl_reef_tab_set_direct(chip_id, id, i, entry, bytes, mode == 1 ? CSL_TAB_IMAGE : CSL_TAB_HW);
        } else if (op->show_all || _field_value(entry, *f) != 0) {
            csl_output_func(chip_id, to_file, "    index %4d : 0x", (int)i);
            _print_field_hex(chip_id, to_file, entry, *f, nullptr, 0);
            csl_output_func(chip_id, to_file, "\n");
        }
    }
    xsal_mem_free(entry);
    return rc;
}

static int _csl_reef_field_op(u32 chip_id, base_field_op *op, const char *file, u32 mode, bool set)
{
    if (op == nullptr) {
        return SHR_E_PARAM;
    }
    if (op->kind != 1 && op->name == nullptr) {
        return SHR_E_PARAM;
    }
    return _with_file(chip_id, set ? nullptr : file, [&](u32 to_file) {
        switch (op->kind) {
        case 0:
            return _csl_reef_field_reg_by_name(chip_id, op, to_file, set);
        case 1:
            if (set && op->data == nullptr) {
                return static_cast<int>(SHR_E_PARAM);
            }
            return _csl_reef_field_reg_by_addr(chip_id, op, to_file, set);
        case 2:
            return _csl_reef_field_tab_by_name(chip_id, op, to_file, set, mode);
        default:
            return static_cast<int>(SHR_E_PARAM);
        }
    });
}

int csl_reef_field_get(u32 chip_id, base_field_op *op, const char *file, u32 mode)
{
    return _csl_reef_field_op(chip_id, op, file, mode, false);
}

int csl_reef_field_set(u32 chip_id, base_field_op *op, u32 mode)
{
    return _csl_reef_field_op(chip_id, op, nullptr, mode, true);
}

// ---- a module's status and contents ------------------------------------------------------

int csl_reef_module_reg_info_clear_by_id(u32 chip_id, u32 cib_module_id, u32 addr_index, u32 types)
{
    if (cib_module_id >= CIB_MODULE_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Error! Wrong Module id:%u, max module id:%u!\n", cib_module_id,
                    CIB_MODULE_COUNT - 1);
        return SHR_E_PARAM;
    }
    if (types == (1u << CIB_ACC_RO)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "Readonly register not support clear!\n");
        return 0;
    }
    const cib_module_info &mod = atolreef_allmodule_list[cib_module_id];
    if (mod.reg_first == CIB_NO_RANGE || mod.name == nullptr) {
        return 0;
    }
    for (u32 r = mod.reg_first; r <= mod.reg_last; r++) {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, r);
        if (reg == nullptr || addr_index >= _reg_count(reg)) {
            continue;
        }
        bool selected = false;
        for (u32 i = 0; i < reg->field_count; i++) {
            selected |= !_is_reserved(reg->fields[i].name) && ((types >> reg->fields[i].access) & 1);
        }
        if (!selected) {
            continue;
        }
        // The read clears the read-clear fields; then the selected fields
        // take their cleared value and the word is written back.
        u8 word[4] = {};
        const u32 id = CIB_ID(r, addr_index);
        int rc = csl_reef_reg_get(chip_id, id, word, 4);
        if (rc != 0) {
            return rc;
        }
        for (u32 i = 0; i < reg->field_count; i++) {
            const cib_field_info &f = reg->fields[i];
            if (_is_reserved(f.name) || !((types >> f.access) & 1)) {
                continue;
            }
            if (f.access == CIB_ACC_RW || f.access == CIB_ACC_RWW) {
                shr_field64_set_to_data(word, 0, f.low_bit, f.width);
            } else if (f.access == CIB_ACC_WC || f.access == CIB_ACC_WC_H || f.access == CIB_ACC_W1C_H) {
                const u64 ones = f.width >= 64 ? ~0ull : (1ull << f.width) - 1;
                shr_field64_set_to_data(word, ones, f.low_bit, f.width);
            }
        }
        rc = csl_reef_reg_set(chip_id, id, word, 4);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

int csl_reef_module_reg_info_clear_by_name(u32 chip_id, const char *name, u32 addr_index, u32 types)
{
    u32 module_id = 0;
    if (name == nullptr || _module_info_get(chip_id, name, &module_id) != 0) {
        return SHR_E_NOT_FOUND;
    }
    return csl_reef_module_reg_info_clear_by_id(chip_id, module_id, addr_index, types);
}

int csl_reef_module_cnt_show(u32 chip_id, const char *module, u32 to_file, u32 mask, u32 raw)
{
    (void)mask;
    u32 module_id = 0;
    if (module == nullptr || _module_info_get(chip_id, module, &module_id) != 0) {
        return SHR_E_NOT_FOUND;
    }
    const cib_module_info &mod = atolreef_allmodule_list[module_id];
    const u32 copies = mod.instances == 0 ? 1 : mod.instances;
    const u64 flags = raw ? 0 : 1;
    for (u32 k = 0; k < copies; k++) {
        if (csl_output_func(chip_id, to_file,
                            "========================================================[ %s ]"
                            "========================================================\n",
                            mod.name) < 0) {
            return SHR_E_FULL;
        }
        int rc = 0;
        for (u32 r = mod.reg_first; mod.reg_first != CIB_NO_RANGE && r <= mod.reg_last && rc == 0; r++) {
            const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, r);
            if (reg != nullptr && k < _reg_count(reg)) {
                rc = _csl_reef_reg_print(chip_id, CIB_ID(r, k), flags, 1, to_file);
            }
        }
        for (u32 t = mod.tab_first; mod.tab_first != CIB_NO_RANGE && t <= mod.tab_last && rc == 0; t++) {
            const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, t);
            if (tab == nullptr || (tab->flags & CIB_TAB_INDIRECT) || k >= static_cast<u32>(tab->inst_a) * tab->inst_b) {
                continue;
            }
            for (u32 i = 0; i < cib_tab_depth(tab) && rc == 0; i++) {
                rc = _csl_reef_entry_print(chip_id, CIB_ID(t, k), i, flags, to_file, CSL_TAB_HW);
            }
        }
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

} // extern "C"
