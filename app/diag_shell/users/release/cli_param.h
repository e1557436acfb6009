/*
 * What the command handlers have in common: reading numbers, lists,
 * addresses and hex data from their parameters, port names and port
 * lists, bitmaps as text, and the check that a keyword exists on the chip.
 */
#ifndef TIDE_CLI_PARAM_H
#define TIDE_CLI_PARAM_H

#include <tide/port.h>

#include "app/diag_shell/shell/cli/cli_core.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- numbers and addresses ------------------------------------------------ */

/* 1 for "0x" or "0X" followed by at least one hex digit and nothing else. */
i32 cli_is_hex_string(const char *s);
/* 1 for a non-empty string of decimal digits. */
i32 cli_is_dec_string(const char *s);
/* A number, hex with "0x", else decimal.  NULL: -20; not a number, or a
 * value beyond the type (for the 32 and 64-bit readers): -4.  The 8 and
 * 16-bit readers store 255 or 65,535 for a larger value and succeed. */
i32 cli_get_uint8_para(const char *s, u8 *out);
i32 cli_get_uint16_para(const char *s, u16 *out);
i32 cli_get_uint32_param(const char *s, u32 *out);
i32 cli_get_uint64_param(const char *s, u64 *out);
/* The same with one leading sign character. */
i32 cli_get_int32_para(const char *s, i32 *out);

/* Numbers in a list of numbers and ranges "a-b" separated by commas; -2
 * for another character, a range that goes down, an empty item (a comma
 * at either end, two commas) or an empty list. */
i32 cli_check_intlist(const char *s);
/* The next number of the list at `*cursor` after `previous` (0 for the
 * first call), or -2 at the end, when `*cursor` becomes NULL. */
i32 cli_get_next_from_intlist(char **cursor, i32 previous);

/* Six bytes from "XX:XX:XX:XX:XX:XX" (exactly 17 characters); 0 or -1.
 * The flexible form takes groups of one or two digits. */
i32 cli_get_mac_addr(const char *s, u8 *out);
i32 cli_get_mac_addr_flexible(const char *s, u8 *out);
/* "a.b.c.d" as a number, first byte highest; 0 or -1. */
i32 cli_get_ipv4addr(const char *s, u32 *out);
/* Bytes of "0x..." (an even number of hex digits), at most `room`; the
 * count at `*count`.  0 or -1. */
i32 cli_hex_string_to_u8_array(const char *s, u8 *out, u32 room, u32 *count);
/* The same from the first line of a file. */
i32 cli_hex_array_get_from_file(const char *path, u8 *out, u32 room, u32 *count);

/* Ports set in a bitmap of `bytes` bytes (8, 16 or 24) as "1,3-5" into
 * `out` of `room` bytes; 0, -4 for a bad size, -6 when the text does not
 * fit. */
i32 cli_pbmp_to_str(const u64 *bitmap, u32 bytes, char *out, u32 room);

/* Prints " call %s failed, %s\n" with the status's text and returns the
 * status. */
i32 cli_call_failed(const char *call, i32 rc);

/* ---- chips and ports ----------------------------------------------------------- */

/* 0 for a chip of the registry; -3 after "chip_id(%d) is invalid\n". */
i32 cli_chip_valid_check(u32 chip_id);

/* The port naming mode of each chip: 0 by the application's callbacks. */
extern u32 g_shell_mode[SHR_MAX_CHIPS];
extern cli_portmap_callback g_portmap_callback;

/* 0 if every item of the port list is well formed, else -4. */
i32 cli_pport_list_str_is_valid(const char *list);
/* The next port name of the list at `*cursor` into `out` (`room` bytes),
 * with `previous` the name that the last call gave: 0 with a name, 1 at
 * the end, -4 for an item that is not well formed. */
i32 cli_pport_str_get_from_port_list(char **cursor, const char *previous, u32 room, char *out);
i32 cli_pport_to_lport(u32 chip_id, const char *pport, u32 *lport);
/* The same, printing " chip_id: %u input port: %s convert to logical port
 * failed.(errmsg = %s) \n" when it fails. */
i32 cli_pport_to_lport_checked(u32 chip_id, const char *pport, u32 *lport);
/* `pport` has room for CLI_PPORT_SIZE bytes. */
i32 cli_lport_to_pport(u32 chip_id, u32 lport, char *pport);
/* Names of the ports of the bitmap separated by commas; -11 for an empty
 * bitmap, -6 when the text does not fit. */
i32 cli_lport_bitmap_to_pport_list(u32 chip_id, const port_bitmap *bitmap, char *out, u32 room);
/* The next port after `previous` (-1 for the first) with its name; `flag`
 * 1 includes the inner ports.  0, or non-zero after the last. */
i32 cli_port_list_next_lport_get(u32 chip_id, u32 flag, i32 previous, u32 *lport, char *pport);

/* Inner mode: the library's numbers and the names of the inner ports. */
i32 cli_inner_mode_pport_to_lport(u32 chip_id, const char *pport, u32 *lport);
i32 cli_inner_mode_port_list_next_lport_get(u32 chip_id, u32 flag, i32 previous, u32 *lport, char *pport);

/* ---- keywords by chip ----------------------------------------------------------- */

#define CLI_CHIP_TYPES 5u

/* A keyword of a command and whether each chip type has it (1). */
typedef struct cli_key_support {
    const char *word;
    u8 support[CLI_CHIP_TYPES];
} cli_key_support;

/* The switch of `cli-key-check`; 1 at start. */
extern u32 g_cli_key_check;
/* 0, or -24 after printing each word of argv that a row marks as missing
 * on this chip's type. */
i32 cli_key_support_check(u32 chip_id, i32 argc, char **argv, const cli_key_support *table, u32 rows);

#ifdef __cplusplus
}

#include <cstddef>
#include <cstring>

/* Calls `fn(id)` for each number of an integer list (numbers and ranges
 * `a-b`), in order.  A list that is not well formed prints " para %s is
 * invalid.\n" and gives -4; the first failure of `fn` ends the walk and is
 * returned. */
template <typename Fn>
i32 cli_intlist_walk(const char *list, Fn fn)
{
    if (list == nullptr || cli_check_intlist(list) < 0) {
        cli_output_show(" para %s is invalid.\n", list != nullptr ? list : "");
        return SHR_E_PARAM;
    }
    char *cursor = const_cast<char *>(list);
    for (i32 id = cli_get_next_from_intlist(&cursor, 0); id >= 0; id = cli_get_next_from_intlist(&cursor, id)) {
        const i32 rc = fn(static_cast<u32>(id));
        if (rc != SHR_E_NONE) {
            return rc;
        }
    }
    return SHR_E_NONE;
}

/* Calls `fn(lport, pport)` for each port of a port list, in order.  A chip
 * that is not there (-3), a list that is not well formed (-4) and a name
 * that names no port (its conversion status) end the walk with their line,
 * as does the first failure of `fn`, which is returned; what was done
 * before stays. */
template <typename Fn>
i32 cli_pport_list_walk(u32 chip_id, const char *list, Fn fn)
{
    if (cli_chip_valid_check(chip_id) != SHR_E_NONE) {
        return SHR_E_UNIT;
    }
    if (cli_pport_list_str_is_valid(list) != SHR_E_NONE) {
        cli_output_show("pport_list: %s is invalid!\n", list);
        return SHR_E_PARAM;
    }
    char *cursor = const_cast<char *>(list);
    char pport[CLI_PPORT_SIZE] = "";
    /* After the check of the whole list only its end stops the walk. */
    while (cli_pport_str_get_from_port_list(&cursor, pport, sizeof(pport), pport) == SHR_E_NONE) {
        u32 lport = 0;
        i32 rc = cli_pport_to_lport_checked(chip_id, pport, &lport);
        if (rc == SHR_E_NONE) {
            rc = fn(lport, static_cast<const char *>(pport));
        }
        if (rc != SHR_E_NONE) {
            return rc;
        }
    }
    return SHR_E_NONE;
}
// A keyword of a command and the value it stands for; a command's keywords
// are a constant table of these.
struct cli_word {
    u32 id;
    const char *name;
};

// The value of `word` in the table: false when the table lacks it.
template <size_t N>
bool cli_word_id_get(const cli_word (&words)[N], const char *word, u32 *id)
{
    for (const cli_word &w : words) {
        if (std::strcmp(w.name, word) == 0) {
            *id = w.id;
            return true;
        }
    }
    return false;
}

// The keyword of `id`, or `none` when the table lacks it.
template <size_t N>
const char *cli_word_name_get(const cli_word (&words)[N], u32 id, const char *none = nullptr)
{
    for (const cli_word &w : words) {
        if (w.id == id) {
            return w.name;
        }
    }
    return none;
}
#endif

#endif /* TIDE_CLI_PARAM_H */
