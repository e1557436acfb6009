// Argument helpers of the command handlers: numbers, integer lists, MAC
// and IPv4 addresses, hex data, port bitmaps as text, port names and port
// lists in both naming modes, and the check of keywords by chip type.
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <tide/property.h>

#include "app/diag_shell/users/release/cli_param.h"

extern "C" {

u32 g_shell_mode[SHR_MAX_CHIPS];
cli_portmap_callback g_portmap_callback;
u32 g_cli_key_check = 1;

} // extern "C"

namespace {

constexpr i32 k_list_end = -2;

bool _is_hex(char c)
{
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

bool _is_digit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

bool _is_blank(char c)
{
    return c == ' ' || c == '\t';
}

// A number of cli_is_hex_string or cli_is_dec_string form, within 64 bits.
bool _parse_u64(const char *s, u64 *v)
{
    const bool hex = cli_is_hex_string(s) != 0;
    if (!hex && cli_is_dec_string(s) == 0) {
        return false;
    }
    errno = 0;
    char *end = nullptr;
    *v = std::strtoull(s, &end, hex ? 16 : 10);
    return errno == 0 && *end == '\0';
}

i32 _null_param(const void *s, const void *out)
{
    cli_output_show("Input Null PTR(%p,%p)\n", s, out);
    return SHR_E_NULL_PTR;
}

i32 _bad_number(const char *s)
{
    cli_output_show("Input Non-Valid-Number String(%s)\n", s);
    return SHR_E_PARAM;
}

// The unsigned readers: `Cap` stores the type's largest value for a larger
// number; without it a larger number is refused.
template <typename T, bool Cap> i32 _get_unsigned(const char *s, T *out)
{
    if (s == nullptr || out == nullptr) {
        return _null_param(s, out);
    }
    u64 v = 0;
    if (!_parse_u64(s, &v)) {
        return _bad_number(s);
    }
    constexpr u64 max = std::numeric_limits<T>::max();
    if (v > max) {
        if (!Cap) {
            return _bad_number(s);
        }
        v = max;
    }
    *out = static_cast<T>(v);
    return SHR_E_NONE;
}

// Decimal digits from `*p` as a number up to `max`; `*p` moves past them.
bool _digits(const char **p, u64 max, u64 *v)
{
    const char *q = *p;
    u64 n = 0;
    while (_is_digit(*q)) {
        n = n * 10 + static_cast<u64>(*q - '0');
        if (n > max) {
            return false;
        }
        q++;
    }
    if (q == *p) {
        return false;
    }
    *p = q;
    *v = n;
    return true;
}

constexpr u64 k_list_max = static_cast<u64>(std::numeric_limits<i32>::max());

// A decimal number with optional blanks behind it, filling [b, e).
bool _number(const char *b, const char *e, u64 *v)
{
    const char *p = b;
    if (!_digits(&p, std::numeric_limits<u32>::max(), v) || p > e) {
        return false;
    }
    while (p < e && _is_blank(*p)) {
        p++;
    }
    return p == e;
}

// One part of a dotted port name: digits, or a channel "v" and digits.
bool _dotted_part(const char *b, const char *e, bool *channel)
{
    *channel = b < e && (*b == 'v' || *b == 'V');
    const char *p = *channel ? b + 1 : b;
    u64 v = 0;
    return p < e && _number(p, e, &v);
}

// "a.b" or "a.b.vC": at most two number parts, a channel part only last.
bool _dotted_ok(const char *b, const char *e)
{
    u32 parts = 0;
    bool channel = false;
    for (const char *p = b; p <= e; parts++) {
        const char *dot = static_cast<const char *>(std::memchr(p, '.', static_cast<size_t>(e - p)));
        const char *end = dot != nullptr ? dot : e;
        if (channel || !_dotted_part(p, end, &channel)) {
            return false;
        }
        p = end + 1;
    }
    return parts <= 3 && (parts < 3 || channel);
}

// "a-b" with a not above b; the first number at `*a`.
bool _range_ok(const char *b, const char *e, const char *dash, u64 *a)
{
    u64 last = 0;
    return _number(b, dash, a) && _number(dash + 1, e, &last) && *a <= last;
}

i32 _bad_item(const char *b, const char *e)
{
    xsal_printf("Parameter '%.*s' is invalid!\n", static_cast<int>(e - b), b);
    return SHR_E_PARAM;
}

i32 _put(char *out, u32 room, const char *b, size_t len)
{
    if (len >= room) {
        return SHR_E_PARAM;
    }
    std::memcpy(out, b, len);
    out[len] = '\0';
    return SHR_E_NONE;
}

// ---- inner ports ------------------------------------------------------------------
//
// The port start names the inner ports in the chip's property store: one
// property per name holding the logical port, and the per-port property
// "inner_port" holding the name.

bool _in(const port_bitmap &b, u32 lport)
{
    return lport < PORT_BITMAP_PORTS && ((b.word[lport / 64] >> (lport % 64)) & 1u) != 0;
}

i32 _cli_inner_mode_lport_to_pport(u32 chip_id, u32 lport, char *pport)
{
    port_config cfg;
    const i32 rc = port_api_config_get(chip_id, &cfg);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const char *name = _in(cfg.pbmp[PORT_CONFIG_INNER], lport)
                           ? shr_property_port_get_str(chip_id, static_cast<int>(lport), "inner_port")
                           : nullptr;
    if (name != nullptr) {
        std::snprintf(pport, CLI_PPORT_SIZE, "%s", name);
        return SHR_E_NONE;
    }
    if (_in(cfg.pbmp[PORT_CONFIG_ALL], lport)) {
        std::snprintf(pport, CLI_PPORT_SIZE, "%u", lport);
        return SHR_E_NONE;
    }
    return SHR_E_NOT_FOUND;
}

bool _inner_mode(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS && g_shell_mode[chip_id] != 0;
}

// Appends text to `out`; false when it does not fit.
bool _append(char *out, u32 room, u32 *used, const char *fmt, u32 a, u32 b = 0)
{
    const int n = std::snprintf(out + *used, room - *used, fmt, a, b);
    if (n < 0 || static_cast<u32>(n) >= room - *used) {
        return false;
    }
    *used += static_cast<u32>(n);
    return true;
}

} // namespace

extern "C" {

// ---- numbers -----------------------------------------------------------------------

i32 cli_is_hex_string(const char *s)
{
    if (s == nullptr || s[0] != '0' || (s[1] != 'x' && s[1] != 'X') || s[2] == '\0') {
        return 0;
    }
    for (const char *p = s + 2; *p != '\0'; p++) {
        if (!_is_hex(*p)) {
            return 0;
        }
    }
    return 1;
}

i32 cli_is_dec_string(const char *s)
{
    if (s == nullptr || *s == '\0') {
        return 0;
    }
    for (const char *p = s; *p != '\0'; p++) {
        if (!_is_digit(*p)) {
            return 0;
        }
    }
    return 1;
}

i32 cli_get_uint8_para(const char *s, u8 *out)
{
    return _get_unsigned<u8, true>(s, out);
}

i32 cli_get_uint16_para(const char *s, u16 *out)
{
    return _get_unsigned<u16, true>(s, out);
}

i32 cli_get_uint32_param(const char *s, u32 *out)
{
    return _get_unsigned<u32, false>(s, out);
}

i32 cli_get_uint64_param(const char *s, u64 *out)
{
    return _get_unsigned<u64, false>(s, out);
}

i32 cli_get_int32_para(const char *s, i32 *out)
{
    if (s == nullptr || out == nullptr) {
        return _null_param(s, out);
    }
    const bool negative = s[0] == '-';
    u64 v = 0;
    if (!_parse_u64(negative || s[0] == '+' ? s + 1 : s, &v)) {
        return _bad_number(s);
    }
    const u64 limit = negative ? k_list_max + 1 : k_list_max;
    if (v > limit) {
        return _bad_number(s);
    }
    *out = negative ? static_cast<i32>(-static_cast<i64>(v)) : static_cast<i32>(v);
    return SHR_E_NONE;
}

// ---- integer lists ---------------------------------------------------------------------

i32 cli_check_intlist(const char *s)
{
    if (s == nullptr || *s == '\0') {
        return k_list_end;
    }
    u64 count = 0;
    for (const char *p = s;;) {
        u64 a = 0;
        u64 b = 0;
        if (!_digits(&p, k_list_max, &a)) {
            return k_list_end;
        }
        b = a;
        if (*p == '-') {
            p++;
            if (!_digits(&p, k_list_max, &b) || a > b) {
                return k_list_end;
            }
        }
        count += b - a + 1;
        if (*p == '\0') {
            break;
        }
        if (*p != ',' || *++p == '\0') {
            return k_list_end;
        }
    }
    return count > k_list_max ? static_cast<i32>(k_list_max) : static_cast<i32>(count);
}

i32 cli_get_next_from_intlist(char **cursor, i32 previous)
{
    if (cursor == nullptr || *cursor == nullptr || **cursor == '\0') {
        if (cursor != nullptr) {
            *cursor = nullptr;
        }
        return k_list_end;
    }
    const char *p = *cursor;
    u64 v = 0;
    if (*p == '-') {
        // Inside a range: the numbers after `previous` up to its end.
        p++;
        if (!_digits(&p, k_list_max, &v) || previous < 0 || static_cast<u64>(previous) + 1 > v) {
            *cursor = nullptr;
            return k_list_end;
        }
        if (static_cast<u64>(previous) + 1 < v) {
            return previous + 1;
        }
    } else if (!_digits(&p, k_list_max, &v)) {
        *cursor = nullptr;
        return k_list_end;
    } else if (*p == '-') {
        // The start of a range; a range of one number is passed whole.
        const char *q = p + 1;
        u64 last = 0;
        if (!_digits(&q, k_list_max, &last) || last != v) {
            *cursor = const_cast<char *>(p);
            return static_cast<i32>(v);
        }
        p = q;
    }
    if (*p == ',') {
        p++;
    }
    *cursor = *p == '\0' ? nullptr : const_cast<char *>(p);
    return static_cast<i32>(v);
}

// ---- addresses and hex data ------------------------------------------------------------

i32 cli_get_mac_addr(const char *s, u8 *out)
{
    if (s == nullptr || out == nullptr || std::strlen(s) != 17) {
        return -1;
    }
    for (u32 i = 0; i < 17; i++) {
        if (i % 3 == 2 ? s[i] != ':' : !_is_hex(s[i])) {
            return -1;
        }
    }
    for (u32 i = 0; i < 6; i++) {
        const char pair[3] = {s[i * 3], s[i * 3 + 1], '\0'};
        out[i] = static_cast<u8>(std::strtoul(pair, nullptr, 16));
    }
    return 0;
}

i32 cli_get_mac_addr_flexible(const char *s, u8 *out)
{
    if (s == nullptr || out == nullptr) {
        return -1;
    }
    const char *p = s;
    for (u32 i = 0; i < 6; i++) {
        u32 digits = 0;
        u32 v = 0;
        while (digits < 3 && _is_hex(p[digits])) {
            const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(p[digits])));
            v = v * 16 + static_cast<u32>(c <= '9' ? c - '0' : c - 'a' + 10);
            digits++;
        }
        if (digits == 0 || digits > 2 || p[digits] != (i < 5 ? ':' : '\0')) {
            return -1;
        }
        out[i] = static_cast<u8>(v);
        p += digits + 1;
    }
    return 0;
}

i32 cli_get_ipv4addr(const char *s, u32 *out)
{
    if (s == nullptr || out == nullptr) {
        return -1;
    }
    u32 addr = 0;
    const char *p = s;
    for (u32 i = 0; i < 4; i++) {
        u64 byte = 0;
        if (!_digits(&p, 99999, &byte) || *p != (i < 3 ? '.' : '\0')) {
            return -1;
        }
        if (byte > 255) {
            cli_output_show("ipv4 address is wrong.\n");
            return -1;
        }
        addr = addr << 8 | static_cast<u32>(byte);
        p++;
    }
    *out = addr;
    return 0;
}

i32 cli_call_failed(const char *call, i32 rc)
{
    cli_output_show(" call %s failed, %s\n", call, shr_errmsg(rc));
    return rc;
}

i32 cli_hex_string_to_u8_array(const char *s, u8 *out, u32 room, u32 *count)
{
    if (s == nullptr || out == nullptr || count == nullptr) {
        return -1;
    }
    if (cli_is_hex_string(s) == 0) {
        cli_output_show("Value \"%s\" is Invalid. You should give data via hex, start with '0x'\n", s);
        return -1;
    }
    const size_t digits = std::strlen(s) - 2;
    if (digits % 2 != 0) {
        cli_output_show("Input string must be even numbered characters!\n");
        return -1;
    }
    if (digits / 2 > room) {
        cli_output_show("Value \"%s\" is longer than %u bytes\n", s, room);
        return -1;
    }
    for (size_t i = 0; i < digits / 2; i++) {
        const char pair[3] = {s[2 + 2 * i], s[3 + 2 * i], '\0'};
        out[i] = static_cast<u8>(std::strtoul(pair, nullptr, 16));
    }
    *count = static_cast<u32>(digits / 2);
    return 0;
}

i32 cli_hex_array_get_from_file(const char *path, u8 *out, u32 room, u32 *count)
{
    FILE *f = path != nullptr ? std::fopen(path, "r") : nullptr;
    if (f == nullptr) {
        cli_output_show("can not open %s\n", path != nullptr ? path : "(null)");
        return -1;
    }
    char *line = nullptr;
    size_t cap = 0;
    const ssize_t n = getline(&line, &cap, f);
    std::fclose(f);
    i32 r = -1;
    if (n > 0) {
        size_t len = static_cast<size_t>(n);
        while (len > 0 && (cli_is_space(line[len - 1]))) {
            len--;
        }
        line[len] = '\0';
        r = cli_hex_string_to_u8_array(line, out, room, count);
    } else {
        cli_output_show("Value \"\" is Invalid. You should give data via hex, start with '0x'\n");
    }
    std::free(line);
    return r;
}

i32 cli_pbmp_to_str(const u64 *bitmap, u32 bytes, char *out, u32 room)
{
    if (bitmap == nullptr || out == nullptr || room == 0) {
        return SHR_E_NULL_PTR;
    }
    if (bytes == 0 || bytes % 8 != 0 || bytes > 24) {
        cli_output_show("[cli_pbmp_to_str] invliad pbmp_len\n");
        return SHR_E_PARAM;
    }
    out[0] = '\0';
    const u32 bits = bytes * 8;
    u32 used = 0;
    auto set = [bitmap](u32 bit) { return ((bitmap[bit / 64] >> (bit % 64)) & 1u) != 0; };
    for (u32 bit = 0; bit < bits; bit++) {
        if (!set(bit)) {
            continue;
        }
        u32 last = bit;
        while (last + 1 < bits && set(last + 1)) {
            last++;
        }
        const bool ok = last == bit ? _append(out, room, &used, used > 0 ? ",%u" : "%u", bit)
                                    : _append(out, room, &used, used > 0 ? ",%u-%u" : "%u-%u", bit, last);
        if (!ok) {
            out[0] = '\0';
            cli_output_show("[cli_pbmp_to_str]out of range\n");
            return SHR_E_FULL;
        }
        bit = last;
    }
    return SHR_E_NONE;
}

// ---- port lists ------------------------------------------------------------------------

i32 cli_pport_str_get_from_port_list(char **cursor, const char *previous, u32 room, char *out)
{
    if (cursor == nullptr || out == nullptr || room == 0) {
        return SHR_E_NULL_PTR;
    }
    char *p = *cursor;
    if (p == nullptr) {
        return 1;
    }
    while (_is_blank(*p)) {
        p++;
    }
    const bool after_comma = *p == ',';
    if (after_comma) {
        p++;
        while (_is_blank(*p)) {
            p++;
        }
    }
    if (*p == '\0') {
        // A comma must be followed by an item.
        *cursor = p;
        return after_comma ? _bad_item(p, p) : 1;
    }
    char *end = std::strchr(p, ',');
    end = end != nullptr ? end : p + std::strlen(p);
    const char *e = end;
    while (e > p && _is_blank(e[-1])) {
        e--;
    }
    const size_t len = static_cast<size_t>(e - p);
    u64 a = 0;
    if (*p == '-') {
        // The rest of a range: the number after the previous one.
        u64 last = 0;
        u64 prev = 0;
        if (!_number(p + 1, e, &last) || previous == nullptr ||
            !_number(previous, previous + std::strlen(previous), &prev) || prev >= last) {
            return _bad_item(p, e);
        }
        std::snprintf(out, room, "%u", static_cast<u32>(prev + 1));
        *cursor = prev + 1 == last ? end : p;
        return SHR_E_NONE;
    }
    if (len == 0) {
        return _bad_item(p, e);
    }
    if (!_is_digit(*p)) {
        // A name stands as it is.
        *cursor = end;
        return _put(out, room, p, len) == SHR_E_NONE ? SHR_E_NONE : _bad_item(p, e);
    }
    const char *dash = static_cast<const char *>(std::memchr(p, '-', len));
    if (dash != nullptr) {
        if (!_range_ok(p, e, dash, &a)) {
            return _bad_item(p, e);
        }
        u64 last = 0;
        _number(dash + 1, e, &last);
        std::snprintf(out, room, "%u", static_cast<u32>(a));
        *cursor = a == last ? end : const_cast<char *>(dash);
        return SHR_E_NONE;
    }
    const bool dotted = std::memchr(p, '.', len) != nullptr;
    if ((dotted ? !_dotted_ok(p, e) : !_number(p, e, &a)) || _put(out, room, p, len) != SHR_E_NONE) {
        return _bad_item(p, e);
    }
    *cursor = end;
    return SHR_E_NONE;
}

i32 cli_pport_list_str_is_valid(const char *list)
{
    if (list == nullptr) {
        return SHR_E_PARAM;
    }
    char *cursor = const_cast<char *>(list);
    char name[CLI_PPORT_SIZE];
    for (;;) {
        const i32 r = cli_pport_str_get_from_port_list(&cursor, name, sizeof(name), name);
        if (r == 1) {
            return SHR_E_NONE;
        }
        if (r != SHR_E_NONE) {
            return SHR_E_PARAM;
        }
        // A range was checked whole at its start.
        if (*cursor == '-') {
            cursor = std::strchr(cursor, ',');
            if (cursor == nullptr) {
                return SHR_E_NONE;
            }
        }
    }
}

i32 cli_chip_valid_check(u32 chip_id)
{
    if (shr_chip_valid_get(chip_id) == 0) {
        cli_output_show("chip_id(%d) is invalid\n", static_cast<int>(chip_id));
        return SHR_E_UNIT;
    }
    return SHR_E_NONE;
}

i32 cli_inner_mode_pport_to_lport(u32 chip_id, const char *pport, u32 *lport)
{
    if (!_is_digit(pport[0])) {
        const i32 v = shr_property_get(chip_id, pport, -1);
        if (v < 0) {
            return SHR_E_NOT_FOUND;
        }
        *lport = static_cast<u32>(v);
        return SHR_E_NONE;
    }
    errno = 0;
    char *end = nullptr;
    const unsigned long v = std::strtoul(pport, &end, 0);
    while (_is_blank(*end)) {
        end++;
    }
    if (errno != 0 || *end != '\0') {
        xsal_printf("pport: %s is invalid!\n", pport);
        return SHR_E_PARAM;
    }
    port_config cfg;
    const i32 rc = port_api_config_get(chip_id, &cfg);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (v >= PORT_BITMAP_PORTS || !_in(cfg.pbmp[PORT_CONFIG_ALL], static_cast<u32>(v))) {
        return SHR_E_NOT_FOUND;
    }
    *lport = static_cast<u32>(v);
    return SHR_E_NONE;
}

i32 cli_inner_mode_port_list_next_lport_get(u32 chip_id, u32 flag, i32 previous, u32 *lport, char *pport)
{
    port_config cfg;
    const i32 rc = port_api_config_get(chip_id, &cfg);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    for (i32 p = previous < 0 ? 0 : previous + 1; p < static_cast<i32>(PORT_BITMAP_PORTS); p++) {
        const u32 port = static_cast<u32>(p);
        if (_in(cfg.pbmp[PORT_CONFIG_ETHER], port) || (flag != 0 && _in(cfg.pbmp[PORT_CONFIG_INNER], port))) {
            *lport = port;
            return _cli_inner_mode_lport_to_pport(chip_id, port, pport);
        }
    }
    return SHR_E_NOT_FOUND;
}

i32 cli_pport_to_lport(u32 chip_id, const char *pport, u32 *lport)
{
    if (pport == nullptr || lport == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (_inner_mode(chip_id)) {
        return cli_inner_mode_pport_to_lport(chip_id, pport, lport);
    }
    return g_portmap_callback.pport_to_lport != nullptr ? g_portmap_callback.pport_to_lport(chip_id, pport, lport)
                                                        : SHR_E_NOT_SUPPORT;
}

i32 cli_pport_to_lport_checked(u32 chip_id, const char *pport, u32 *lport)
{
    const i32 rc = cli_pport_to_lport(chip_id, pport, lport);
    if (rc != SHR_E_NONE) {
        cli_output_show(" chip_id: %u input port: %s convert to logical port failed.(errmsg = %s) \n", chip_id,
                        pport != nullptr ? pport : "(null)", shr_errmsg(rc));
    }
    return rc;
}

i32 cli_lport_to_pport(u32 chip_id, u32 lport, char *pport)
{
    if (pport == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (_inner_mode(chip_id)) {
        return _cli_inner_mode_lport_to_pport(chip_id, lport, pport);
    }
    return g_portmap_callback.lport_to_pport != nullptr ? g_portmap_callback.lport_to_pport(chip_id, lport, pport)
                                                        : SHR_E_NOT_SUPPORT;
}

i32 cli_port_list_next_lport_get(u32 chip_id, u32 flag, i32 previous, u32 *lport, char *pport)
{
    if (lport == nullptr || pport == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (_inner_mode(chip_id)) {
        return cli_inner_mode_port_list_next_lport_get(chip_id, flag, previous, lport, pport);
    }
    return g_portmap_callback.port_next != nullptr ? g_portmap_callback.port_next(chip_id, flag, previous, lport, pport)
                                                   : SHR_E_NOT_SUPPORT;
}

i32 cli_lport_bitmap_to_pport_list(u32 chip_id, const port_bitmap *bitmap, char *out, u32 room)
{
    if (bitmap == nullptr || out == nullptr || room == 0) {
        return SHR_E_NULL_PTR;
    }
    out[0] = '\0';
    u32 used = 0;
    for (u32 lport = 0; lport < PORT_BITMAP_PORTS; lport++) {
        if (!_in(*bitmap, lport)) {
            continue;
        }
        char name[CLI_PPORT_SIZE];
        const i32 rc = cli_lport_to_pport(chip_id, lport, name);
        if (rc != SHR_E_NONE) {
            return rc;
        }
        const int n = std::snprintf(out + used, room - used, "%s%s", used > 0 ? "," : "", name);
        if (n < 0 || static_cast<u32>(n) >= room - used) {
            out[0] = '\0';
            return SHR_E_FULL;
        }
        used += static_cast<u32>(n);
    }
    return used > 0 ? SHR_E_NONE : SHR_E_FAIL;
}

i32 cli_portmap_register(const cli_portmap_callback *callbacks)
{
    g_portmap_callback = callbacks != nullptr ? *callbacks : cli_portmap_callback{};
    return SHR_E_NONE;
}

i32 cli_shell_mode_set(u32 chip_id, u32 mode)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    g_shell_mode[chip_id] = mode;
    return SHR_E_NONE;
}

// ---- keywords by chip ---------------------------------------------------------------------

i32 cli_key_support_check(u32 chip_id, i32 argc, char **argv, const cli_key_support *table, u32 rows)
{
    if (g_cli_key_check == 0 || rows == 0 || table == nullptr || argv == nullptr) {
        return SHR_E_NONE;
    }
    const u32 type = shr_chip_type_get(chip_id);
    bool bad = false;
    for (u32 r = 0; r < rows; r++) {
        for (i32 i = 0; i < argc; i++) {
            if (argv[i] == nullptr || std::strcmp(argv[i], table[r].word) != 0) {
                continue;
            }
            if (type >= CLI_CHIP_TYPES || table[r].support[type] != 1) {
                cli_output_show("Key [%s] Not Support for chip[%s]!\n", table[r].word, shr_chip_name_get(chip_id));
                bad = true;
            }
            break;
        }
    }
    return bad ? SHR_E_NOT_SUPPORT : SHR_E_NONE;
}

} // extern "C"
