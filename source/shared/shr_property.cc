/*
 * The property store: one hash table of key/value records for all chips,
 * the loader of the chip configuration file, and the readers that every
 * module uses to look a setting up with its fallbacks.
 */
#include <fcntl.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include <tide/property.h>
#include <tide/shr.h>
#include <tide/xsal.h>

#include "sal/linux_um/xsal_int.h"

#include "shared/shr_property_int.h"
#include "tide_int.h"

namespace {

constexpr u32 kBuckets = 1024;
constexpr u32 kLineSize = 1024;
/* A file that imports itself would otherwise recurse until the stack is
 * gone; nesting deeper than this is refused with an error line. */
constexpr u32 kImportDepthMax = 16;
/* Files that one load reads through imports, at all depths together.  A
 * file that imports itself twice would otherwise be read 2^17 times before
 * the depth stops it, and files that import each other several times each
 * hang the load for good. */
constexpr u32 kImportFilesMax = 256;
constexpr size_t kKeyMax = SHR_PROPERTY_KEY_SIZE - 1;
constexpr size_t kValueMax = SHR_PROPERTY_VALUE_SIZE - 1;

/* The hash of a record does not include its chip: the records of a key for
 * every chip share a bucket. */
u32 property_hash_key(const void *data)
{
    const auto *p = static_cast<const shr_property_t *>(data);
    u32 sum = 0;
    for (const char *c = p->key; *c != '\0'; ++c) {
        sum += static_cast<u8>(*c);
    }
    return sum & (kBuckets - 1);
}

int property_hash_cmp(const void *stored, const void *data)
{
    const auto *a = static_cast<const shr_property_t *>(stored);
    const auto *b = static_cast<const shr_property_t *>(data);
    return a->chip == b->chip && std::strcmp(a->key, b->key) == 0;
}

void property_free(void *record)
{
    xsal_mem_free(record);
}

/* A key as the table knows it: cut to what a record holds. */
void probe_make(shr_property_t *probe, u32 chip, const char *key)
{
    probe->chip = chip;
    xsal_strncpy_s(probe->key, sizeof(probe->key), key, kKeyMax);
}

/* A key made from a format; `ok` is false if it does not fit in a record,
 * and then no record can have it. */
struct Key {
    char text[SHR_PROPERTY_KEY_SIZE];
    bool ok;
    operator const char *() const { return ok ? text : nullptr; }
};

Key key_of(const char *format, ...) TIDE_PRINTF(1, 2);
Key key_of(const char *format, ...)
{
    Key k{};
    va_list args;
    va_start(args, format);
    const int n = std::vsnprintf(k.text, sizeof(k.text), format, args);
    va_end(args);
    k.ok = n >= 0 && static_cast<size_t>(n) <= kKeyMax;
    return k;
}

} // namespace

extern "C" {

shr_hash *shr_property_hash;

int shr_property_init(void)
{
    if (shr_property_hash == nullptr) {
        shr_property_hash = shr_hash_create_size(kBuckets, property_hash_key, property_hash_cmp);
        if (shr_property_hash == nullptr) {
            return SHR_E_MEMORY;
        }
    }
    return SHR_E_NONE;
}

int shr_property_deinit(void)
{
    if (shr_property_hash != nullptr) {
        shr_hash_destroy(shr_property_hash, property_free);
        shr_property_hash = nullptr;
    }
    return SHR_E_NONE;
}

int shr_property_set(u32 chip, const char *key, const char *value)
{
    if (key == nullptr || value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    int rv = shr_property_init();
    if (rv != SHR_E_NONE) {
        return rv;
    }
    shr_property_t probe;
    probe_make(&probe, chip, key);
    /* A replaced value is written into the record that stands, so a text
     * pointer a reader holds stays valid. */
    xsal_mutex_lock_(shr_property_hash->mutex, __FILE__, __LINE__);
    auto *record = static_cast<shr_property_t *>(shr_hash_lookup(shr_property_hash, &probe));
    if (record == nullptr) {
        record = static_cast<shr_property_t *>(xsal_malloc(sizeof(shr_property_t), "csl_property", SHR_MOD_COMMON));
        if (record == nullptr) {
            xsal_mutex_unlock_(shr_property_hash->mutex, __FILE__, __LINE__);
            return SHR_E_MEMORY;
        }
        *record = probe;
        if (shr_hash_insert_samekey_ignore(shr_property_hash, record, nullptr) == nullptr) {
            xsal_mem_free(record);
            xsal_mutex_unlock_(shr_property_hash->mutex, __FILE__, __LINE__);
            return SHR_E_MEMORY;
        }
    }
    xsal_strncpy_s(record->value, sizeof(record->value), value, kValueMax);
    xsal_mutex_unlock_(shr_property_hash->mutex, __FILE__, __LINE__);
    return SHR_E_NONE;
}

int shr_property_delete(u32 chip, const char *key, const char *value)
{
    (void)value;
    if (key == nullptr || shr_property_hash == nullptr) {
        return SHR_E_NONE;
    }
    shr_property_t probe;
    probe_make(&probe, chip, key);
    xsal_mem_free(shr_hash_delete(shr_property_hash, &probe));
    return SHR_E_NONE;
}

void shr_property_hash_iterate(void *arg, shr_property_iter_func_t func)
{
    if (shr_property_hash == nullptr || func == nullptr) {
        return;
    }
    struct Visit {
        shr_property_iter_func_t func;
        void *arg;
    } visit{func, arg};
    shr_hash_iterate(
        shr_property_hash,
        [](void *record, void *v) {
            auto *c = static_cast<Visit *>(v);
            c->func(static_cast<shr_property_t *>(record), c->arg);
        },
        &visit);
}

void shr_property_dumpall(void)
{
    shr_property_hash_iterate(nullptr, [](shr_property_t *p, void *) {
        xsal_printf("Chip%u: %s=%s\n", p->chip, p->key, p->value);
    });
}

/* The value text of exactly this key for this chip, or NULL. */
const char *shr_property_lookup(u32 chip, const char *key)
{
    if (shr_property_hash == nullptr || key == nullptr) {
        return nullptr;
    }
    shr_property_t probe;
    probe_make(&probe, chip, key);
    const auto *record = static_cast<const shr_property_t *>(shr_hash_lookup(shr_property_hash, &probe));
    return record != nullptr ? record->value : nullptr;
}

int shr_property_port_set_str(u32 chip, u32 port, const char *key, const char *value)
{
    if (key == nullptr || value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const Key name = key_of("%s_%d", key, static_cast<int>(port));
    if (!name.ok || std::strlen(value) > kValueMax) {
        return SHR_E_FULL;
    }
    return shr_property_set(chip, name, value);
}

int shr_property_port_set_u32(u32 chip, u32 port, const char *key, u32 value)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%u", value);
    return shr_property_port_set_str(chip, port, key, text);
}

} // extern "C"

/* ---- the configuration file ---------------------------------------------- */

namespace {

/* Cuts "key=value" at the first '='; false without one. */
bool cfg_str_get(char *line, char **key, char **value)
{
    char *eq = std::strchr(line, '=');
    if (eq == nullptr) {
        return false;
    }
    *eq = '\0';
    *key = line;
    *value = eq + 1;
    return true;
}

/* Finds ".chip<n>" (n up to 8 characters, ended by '.' or the end of the
 * key), cuts it out of the key and gives the chip number; -1 without one. */
i64 cfg_str_chip_strip(char *key)
{
    char *at = std::strstr(key, ".chip");
    if (at == nullptr) {
        return -1;
    }
    char *num = at + 5;
    size_t len = 0;
    while (len < 8 && num[len] != '\0' && num[len] != '.') {
        ++len;
    }
    char digits[9] = {};
    std::memcpy(digits, num, len);
    const i64 chip = xsal_ctoi(digits);
    std::memmove(at, num + len, std::strlen(num + len) + 1);
    return chip;
}

/* Loads one file; `imports_left` counts down the imports that the load
 * which started it may still read. */
int cfg_file_load(u32 chip, const char *path, u32 depth, u32 *imports_left)
{
    if (path == nullptr || path[0] == '\0') {
        SHR_LOG_ERR(chip, SHR_MOD_COMMON, "property file path is empty\n");
        return SHR_E_NULL_PTR;
    }
    xsal_file_t file = xsal_file_open(path, O_RDONLY);
    if (file == nullptr) {
        SHR_LOG_ERR(chip, SHR_MOD_COMMON, "open property file %s failed\n", path);
        return SHR_E_FAIL;
    }
    int rv = shr_property_init();
    char line[kLineSize];
    while (rv == SHR_E_NONE && xsal_file_readline(file, line, sizeof(line)) != nullptr) {
        if (line[0] == '#' || line[0] == '\n' || line[0] == '/' || line[0] == '\r') {
            continue;
        }
        if (char *cr = std::strchr(line, '\r'); cr != nullptr) {
            *cr = '\0';
        }
        xsal_clean_string_nullspace(line);
        char *key = nullptr;
        char *value = nullptr;
        if (!cfg_str_get(line, &key, &value)) {
            continue;
        }
        if (std::strncmp(key, "import", 6) == 0) {
            if (depth >= kImportDepthMax) {
                SHR_LOG_ERR(chip, SHR_MOD_COMMON, "property file %s: import of %s nested too deep\n", path, value);
                continue;
            }
            if (*imports_left == 0) {
                SHR_LOG_ERR(chip, SHR_MOD_COMMON, "property file %s: import of %s refused, %u files imported already\n",
                            path, value, kImportFilesMax);
                continue;
            }
            --*imports_left;
            /* A missing imported file is reported by its own load and does
             * not stop this one. */
            (void)cfg_file_load(chip, value, depth + 1, imports_left);
            continue;
        }
        const i64 for_chip = cfg_str_chip_strip(key);
        if (for_chip >= 0 && for_chip != static_cast<i64>(chip)) {
            continue;
        }
        rv = shr_property_set(chip, key, value);
    }
    xsal_file_close(file);
    return rv;
}

/* Numbers: the forms of xsal_ctoi, and with `scale` above 0 a fixed-point
 * decimal ("1.5" with scale 2 is 150).  `*end` is where the scan stopped.
 * A number too big for 64 bits wraps, as in xsal_ctoi: the arithmetic is
 * unsigned. */
i64 str_to_val(const char *text, int scale, const char **end)
{
    const char *p = text;
    u64 v = static_cast<u64>(xsal_ctoi_scan(p, &p));
    if (scale > 0) {
        const bool neg = text[0] == '-';
        int places = 0;
        if (*p == '.') {
            ++p;
            while (*p >= '0' && *p <= '9') {
                if (places < scale) {
                    const u64 digit = static_cast<u64>(*p - '0');
                    v = v * 10 + (neg ? 0 - digit : digit);
                    ++places;
                }
                ++p;
            }
        }
        /* Each step takes a factor 2: after 64 of them any value has
         * wrapped to 0, which ends the loop whatever the scale. */
        for (; places < scale && v != 0; ++places) {
            v *= 10;
        }
    }
    *end = p;
    return static_cast<i64>(v);
}

} // namespace

extern "C" {

int shr_property_cfg_file_load(u32 chip, const char *path)
{
    u32 imports_left = kImportFilesMax;
    return cfg_file_load(chip, path, 0, &imports_left);
}

int _shr_property_str_to_val(const char *text, int *value, int scale, char *terminator)
{
    if (text == nullptr || value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const char *end = text;
    *value = static_cast<int>(str_to_val(text, scale, &end));
    if (terminator != nullptr) {
        *terminator = *end;
    }
    return SHR_E_NONE;
}

} // extern "C"

/* ---- readers --------------------------------------------------------------- */

namespace {

/* The first of the keys that is there.  Each reader lists its fallbacks
 * as formatted keys; a key too long for a record is never there. */
template <typename... Keys>
const char *first_of(u32 chip, const Keys &...keys)
{
    const char *v = nullptr;
    ((v == nullptr ? (void)(v = shr_property_lookup(chip, keys)) : (void)0), ...);
    return v;
}

int number_or(const char *text, int dflt)
{
    return text != nullptr ? static_cast<int>(xsal_ctoi(text)) : dflt;
}

const char *chip_name(u32 chip)
{
    const char *name = shr_chip_name_get(chip);
    return name != nullptr ? name : "";
}

const char *suffix_or_empty(const char *suffix)
{
    return suffix != nullptr ? suffix : "";
}

/* The port forms of one name: "<name>_<port>", "<name>.port<port>", name. */
const char *port_lookup(u32 chip, int port, const char *name)
{
    if (name == nullptr) {
        return nullptr;
    }
    return first_of(chip, key_of("%s_%d", name, port), key_of("%s.port%d", name, port), name);
}

int csv_read(const char *text, int max, u32 *out)
{
    if (text == nullptr || out == nullptr || max <= 0 || text[0] == '\0') {
        return 0;
    }
    int n = 0;
    const char *p = text;
    while (n < max) {
        const char *end = p;
        out[n++] = static_cast<u32>(str_to_val(p, 0, &end));
        if (*end != ',') {
            break;
        }
        p = end + 1;
    }
    return n;
}

int scaled_or(const char *text, int scale, char *terminator, int dflt)
{
    if (text == nullptr) {
        return dflt;
    }
    int v = 0;
    _shr_property_str_to_val(text, &v, scale, terminator);
    return v;
}

} // namespace

extern "C" {

const char *shr_property_get_str(u32 chip, const char *key)
{
    return shr_property_lookup(chip, key);
}

int shr_property_get(u32 chip, const char *key, int dflt)
{
    if (key == nullptr) {
        return dflt;
    }
    return number_or(first_of(chip, key_of("%s.%s", key, chip_name(chip)), key), dflt);
}

const char *shr_property_get_ext_str(u32 chip, const char *key, const char *suffix)
{
    if (key == nullptr) {
        return nullptr;
    }
    const char *sfx = suffix_or_empty(suffix);
    return first_of(chip, key_of("%s.%s%s", key, chip_name(chip), sfx), key_of("%s%s", key, sfx));
}

int shr_property_get_ext(u32 chip, const char *key, const char *suffix, int dflt)
{
    return number_or(shr_property_get_ext_str(chip, key, suffix), dflt);
}

const char *shr_property_port_get_str(u32 chip, int port, const char *key)
{
    return port_lookup(chip, port, key);
}

int shr_property_port_get(u32 chip, int port, const char *key, int dflt)
{
    return number_or(port_lookup(chip, port, key), dflt);
}

const char *shr_property_cos_get_str(u32 chip, int cos, const char *key)
{
    if (key == nullptr) {
        return nullptr;
    }
    return first_of(chip, key_of("%s.cos%d", key, cos + 1), key);
}

int shr_property_cos_get(u32 chip, int cos, const char *key, int dflt)
{
    return number_or(shr_property_cos_get_str(chip, cos, key), dflt);
}

const char *shr_property_suffix_num_get_str(u32 chip, int num, const char *key, const char *suffix)
{
    if (key == nullptr) {
        return nullptr;
    }
    const char *sfx = suffix_or_empty(suffix);
    return first_of(chip, key_of("%s_%s%1d", key, sfx, num), key_of("%s.port%d.%s", key, num + 1, sfx),
                    key_of("%s_%s", key, sfx), key);
}

int shr_property_suffix_num_get(u32 chip, int num, const char *key, const char *suffix, int dflt)
{
    return number_or(shr_property_suffix_num_get_str(chip, num, key, suffix), dflt);
}

const char *shr_property_port_suffix_num_get_str(u32 chip, int port, int num, const char *key,
                                                 const char *suffix)
{
    if (key == nullptr) {
        return nullptr;
    }
    const char *sfx = suffix_or_empty(suffix);
    const Key with_num = key_of("%s_%s%1d", key, sfx, num);
    const Key with_suffix = key_of("%s_%s", key, sfx);
    const char *v = port_lookup(chip, port, with_num);
    if (v == nullptr) {
        v = port_lookup(chip, port, with_suffix);
    }
    return v != nullptr ? v : port_lookup(chip, port, key);
}

int shr_property_port_suffix_num_get(u32 chip, int port, int num, const char *key, const char *suffix, int dflt)
{
    return number_or(shr_property_port_suffix_num_get_str(chip, port, num, key, suffix), dflt);
}

const char *shr_property_uc_get_str(u32 chip, int uc, const char *key)
{
    if (key == nullptr) {
        return nullptr;
    }
    const Key first = uc == 0 ? key_of("%s_pci", key) : key_of("%s_uc%d", key, uc - 1);
    return first_of(chip, first, key);
}

int shr_property_uc_get(u32 chip, int uc, const char *key, int dflt)
{
    return number_or(shr_property_uc_get_str(chip, uc, key), dflt);
}

const char *shr_property_ci_get_str(u32 chip, int ci, const char *key)
{
    if (key == nullptr) {
        return nullptr;
    }
    return first_of(chip, key_of("%s_ci%d", key, ci), key);
}

int shr_property_ci_get(u32 chip, int ci, const char *key, int dflt)
{
    return number_or(shr_property_ci_get_str(chip, ci, key), dflt);
}

int shr_property_obj_attr_get(u32 chip, const char *prefix, const char *object, int index, const char *attr,
                              int scale, char *terminator, int dflt)
{
    if (prefix == nullptr || object == nullptr || attr == nullptr) {
        return dflt;
    }
    const Key indexed = index != -1 ? key_of("%s.%s%d.%s", prefix, object, index, attr) : Key{};
    return scaled_or(first_of(chip, indexed, key_of("%s.%s.%s", prefix, object, attr)), scale, terminator, dflt);
}

int shr_property_port_obj_attr_get(u32 chip, int port, const char *prefix, const char *object, int index,
                                   const char *attr, int scale, char *terminator, int dflt)
{
    if (prefix == nullptr || object == nullptr || attr == nullptr) {
        return dflt;
    }
    const char *v = nullptr;
    if (index != -1) {
        v = port_lookup(chip, port, key_of("%s.%s%d.%s", prefix, object, index, attr));
    }
    if (v == nullptr) {
        v = port_lookup(chip, port, key_of("%s.%s.%s", prefix, object, attr));
    }
    return scaled_or(v, scale, terminator, dflt);
}

int shr_property_get_csv(u32 chip, const char *key, int max, u32 *out)
{
    return csv_read(shr_property_get_str(chip, key), max, out);
}

int shr_property_port_get_csv(u32 chip, int port, const char *key, int max, u32 *out)
{
    return csv_read(port_lookup(chip, port, key), max, out);
}

int shr_property_ci_get_csv(u32 chip, int ci, const char *key, int max, u32 *out)
{
    return csv_read(shr_property_ci_get_str(chip, ci, key), max, out);
}

} // extern "C"

/* ---- named per-port and per-lane settings ---------------------------------- */

namespace {

int indexed_set(u32 chip, const char *key, u32 index, int value)
{
    const Key name = key_of("%s_%u", key, index);
    char text[16];
    if (!name.ok) {
        return SHR_E_FULL;
    }
    std::snprintf(text, sizeof(text), "%d", value);
    return shr_property_set(chip, name, text);
}

int indexed_get(u32 chip, const char *key, u32 index, int dflt)
{
    char suffix[16];
    std::snprintf(suffix, sizeof(suffix), "_%u", index);
    return shr_property_get_ext(chip, key, suffix, dflt);
}

/* The per-lane key of one pre-emphasis value: "<key>_<lane>", or with an
 * attribute "<key>_<lane>_<attr>". */
Key lane_key(const char *key, u32 lane, const char *attr)
{
    return attr != nullptr ? key_of("%s_%u_%s", key, lane, attr) : key_of("%s_%u", key, lane);
}

constexpr const char *kPeMpp[] = {"serdes_tx_main", "serdes_tx_pre", "serdes_tx_post"};
constexpr const char *kPeTap[] = {"serdes_lane_pe_tx_tap0",      "serdes_lane_pe_tx_tap1",
                                  "serdes_lane_pe_tx_tap2",      "serdes_lane_pe_tx_tap3",
                                  "serdes_lane_pe_tx_amplitude", "serdes_lane_pe_tx_polarity"};

int pe_check(u32 chip, const void *pe)
{
    if (pe == nullptr) {
        SHR_LOG_ERR(chip, SHR_MOD_COMMON, "NULL pointer!\n");
        return SHR_E_NULL_PTR;
    }
    return SHR_E_NONE;
}

int pe_set(u32 chip, u32 lane, const char *attr, const shr_property_pre_emphasis_t *pe)
{
    int rv = pe_check(chip, pe);
    if (rv != SHR_E_NONE) {
        return rv;
    }
    auto put = [&](const char *key, int value) {
        const Key k = lane_key(key, lane, attr);
        if (!k.ok) {
            return static_cast<int>(SHR_E_FULL);
        }
        char text[16];
        std::snprintf(text, sizeof(text), "%d", value);
        return shr_property_set(chip, k, text);
    };
    if (pe->type == SHR_PROPERTY_PE_TYPE_MPP) {
        const u8 v[] = {pe->u.mpp.main_, pe->u.mpp.pre, pe->u.mpp.post};
        for (size_t i = 0; i < 3 && rv == SHR_E_NONE; ++i) {
            rv = put(kPeMpp[i], v[i]);
        }
        return rv;
    }
    if (pe->type == SHR_PROPERTY_PE_TYPE_TAP) {
        const i16 v[] = {pe->u.tap.tap[0],     pe->u.tap.tap[1],     pe->u.tap.tap[2],
                         pe->u.tap.tap[3],     pe->u.tap.amplitude, pe->u.tap.polarity};
        for (size_t i = 0; i < 6 && rv == SHR_E_NONE; ++i) {
            rv = put(kPeTap[i], v[i]);
        }
        return rv;
    }
    return SHR_E_PARAM;
}

int pe_get(u32 chip, u32 lane, const char *attr, shr_property_pre_emphasis_t *pe)
{
    int rv = pe_check(chip, pe);
    if (rv != SHR_E_NONE) {
        return rv;
    }
    /* -1 (all ones in the narrower fields) says nothing is configured. */
    auto read = [&](const char *key) {
        const Key k = lane_key(key, lane, attr);
        return k.ok ? shr_property_get(chip, k, -1) : -1;
    };
    if (pe->type == SHR_PROPERTY_PE_TYPE_MPP) {
        pe->u.mpp.main_ = static_cast<u8>(read(kPeMpp[0]));
        pe->u.mpp.pre = static_cast<u8>(read(kPeMpp[1]));
        pe->u.mpp.post = static_cast<u8>(read(kPeMpp[2]));
        return SHR_E_NONE;
    }
    if (pe->type == SHR_PROPERTY_PE_TYPE_TAP) {
        for (size_t i = 0; i < 4; ++i) {
            pe->u.tap.tap[i] = static_cast<i16>(read(kPeTap[i]));
        }
        pe->u.tap.amplitude = static_cast<i16>(read(kPeTap[4]));
        pe->u.tap.polarity = static_cast<i16>(read(kPeTap[5]));
        return SHR_E_NONE;
    }
    return SHR_E_PARAM;
}

} // namespace

extern "C" {

#define SHR_PROPERTY_INDEXED(name, key, dflt)                                                                  \
    int shr_property_##name##_set(u32 chip, u32 index, int value) { return indexed_set(chip, key, index, value); } \
    int shr_property_##name##_get(u32 chip, u32 index) { return indexed_get(chip, key, index, dflt); }

SHR_PROPERTY_INDEXED(port_split_flag, "port_split_flag", 0)
SHR_PROPERTY_INDEXED(port_hw_initial_lm, "port_initial_lane_mode", 0)
SHR_PROPERTY_INDEXED(port_hw_initial_fec, "port_initial_fec", 0)
SHR_PROPERTY_INDEXED(port_hw_initial_ic, "port_initial_ic", 0)
SHR_PROPERTY_INDEXED(alone_lane_pn_type, "serdes_lane_pn_type", -1)
#undef SHR_PROPERTY_INDEXED

/* One setting for the chip: the key carries no lane. */
int shr_property_sds_lane_pe_dist_speed_flag_set(u32 chip, int value)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%d", value);
    return shr_property_set(chip, "serdes_lane_pe_dist_speed", text);
}

int shr_property_sds_lane_pe_dist_speed_flag_get(u32 chip)
{
    return shr_property_get_ext(chip, "serdes_lane_pe_dist_speed", nullptr, 0);
}

int shr_property_alone_lane_pre_emphasis_set(u32 chip, u32 lane, const shr_property_pre_emphasis_t *pe)
{
    return pe_set(chip, lane, nullptr, pe);
}

int shr_property_alone_lane_pre_emphasis_get(u32 chip, u32 lane, shr_property_pre_emphasis_t *pe)
{
    return pe_get(chip, lane, nullptr, pe);
}

int shr_property_sds_alone_lane_pre_emphasis_set_with_attr(u32 chip, u32 lane, const char *attr,
                                                           const shr_property_pre_emphasis_t *pe)
{
    return pe_set(chip, lane, attr, pe);
}

int shr_property_sds_alone_lane_pre_emphasis_get_with_attr(u32 chip, u32 lane, const char *attr,
                                                           shr_property_pre_emphasis_t *pe)
{
    return pe_get(chip, lane, attr, pe);
}

} // extern "C"
