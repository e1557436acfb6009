// Mode `base`: the TCAM doors of the base service and the read-back check
// of the test registers.
//
// An entry is written in two steps: `tcam set-key`, `tcam set-mask` and
// `tcam set-ad` keep a key, a mask and an action for the chip (hex numbers,
// the highest byte first), and `tcam write name WORD index WORD` writes them
// into a table at its table-wide index (block << 8 | index).
#include <tide/base.h>

#include <cstring>
#include <mutex>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"

namespace {

// The bytes of the widest key and of an action.
constexpr u32 kKeyBytes = 60;
constexpr u32 kAdBytes = 12;

// What `tcam set-*` keeps for a chip, in the bit order of the tables (the
// lowest byte first).
struct Staged {
    u8 key[kKeyBytes] = {};
    u8 mask[kKeyBytes] = {};
    u8 ad[kAdBytes] = {};
};

std::mutex g_staged_lock;
Staged g_staged[SHR_MAX_CHIPS];

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

// A hex number of the operator into a part of the chip's staged entry, the
// lowest byte first.
template <u32 Room>
i32 _stage(u32 chip_id, i32 argc, char **argv, u8 (Staged::*part)[Room])
{
    if (argc < 1) {
        return _bad_argc();
    }
    if (cli_chip_valid_check(chip_id) != SHR_E_NONE) {
        return SHR_E_UNIT;
    }
    u8 bytes[kKeyBytes] = {};
    u32 count = 0;
    if (cli_hex_string_to_u8_array(argv[0], bytes, Room, &count) != 0) {
        return SHR_E_PARAM;
    }
    std::lock_guard<std::mutex> hold(g_staged_lock);
    u8 *dst = g_staged[chip_id].*part;
    memset(dst, 0, Room);
    for (u32 i = 0; i < count; i++) {
        dst[i] = bytes[count - 1 - i];
    }
    return SHR_E_NONE;
}

// The table name and table-wide index of `... name WORD index WORD`.
i32 _name_index(i32 argc, char **argv, u32 *index)
{
    if (argc < 2) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[1], index) != SHR_E_NONE) {
        return SHR_E_PARAM;
    }
    return SHR_E_NONE;
}

i32 _result(const char *call, i32 rc)
{
    return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
}

} // namespace

extern "C" {

// show tcam summary
i32 cli_base_tcam_tab_show_summary(u32 chip_id, u32, i32, char **)
{
    return _result("base_api_tcam_summary_show", base_api_tcam_summary_show(chip_id));
}

// tcam set-key WORD
i32 cli_base_tcam_tab_key_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _stage(chip_id, argc, argv, &Staged::key);
}

// tcam set-mask WORD
i32 cli_base_tcam_tab_mask_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _stage(chip_id, argc, argv, &Staged::mask);
}

// tcam set-ad WORD
i32 cli_base_tcam_tab_ad_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _stage(chip_id, argc, argv, &Staged::ad);
}

// tcam write name WORD index WORD
i32 cli_base_tcam_tab_write(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 index = 0;
    i32 rc = _name_index(argc, argv, &index);
    if (rc != SHR_E_NONE || (rc = cli_chip_valid_check(chip_id)) != SHR_E_NONE) {
        return rc;
    }
    Staged copy;
    {
        std::lock_guard<std::mutex> hold(g_staged_lock);
        copy = g_staged[chip_id];
    }
    base_tcam_entry entry = {copy.key, copy.mask, copy.ad};
    rc = base_api_tcam_add(chip_id, argv[0], index, &entry);
    if (rc == SHR_E_NONE) {
        cli_output_show("Add tcam entry Success!\n");
    }
    return _result("base_api_tcam_add", rc);
}

// tcam read name WORD index WORD
i32 cli_base_tcam_tab_read(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 index = 0;
    const i32 rc = _name_index(argc, argv, &index);
    return rc != SHR_E_NONE ? rc : _result("base_api_tcam_show", base_api_tcam_show(chip_id, argv[0], index));
}

// clear tcam name WORD index WORD
i32 cli_base_tcam_tab_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 index = 0;
    const i32 rc = _name_index(argc, argv, &index);
    return rc != SHR_E_NONE ? rc : _result("base_api_tcam_del", base_api_tcam_del(chip_id, argv[0], index));
}

// show tcam-mgmt resource
i32 cli_base_tcam_mgmt_display(u32 chip_id, u32, i32, char **)
{
    return _result("base_api_tcam_resource_show", base_api_tcam_resource_show(chip_id));
}

// plane check: the test registers of the control plane written and read
// back.
i32 cli_base_plane_check(u32 chip_id, u32, i32, char **)
{
    base_test_cfg cfg = {0, 0};
    const i32 rc = base_api_control_get(chip_id, &cfg);
    if (rc == SHR_E_NONE || rc == SHR_E_TIMEOUT) {
        cli_output_show("plane check: %s\n", cfg.result == 1 ? "pass" : "fail");
    }
    return _result("base_api_control_get", rc);
}

} // extern "C"

// ---- the records ---------------------------------------------------------------------------

namespace {

const char *const k_summary_help[] = {"Show", "TCAM tables", "The tables and their keys", nullptr};
const char *const k_key_help[] = {"TCAM entry", "Key of the next write", "Hex number, 0x...", nullptr};
const char *const k_mask_help[] = {"TCAM entry", "Mask of the next write", "Hex number, 0x...", nullptr};
const char *const k_ad_help[] = {"TCAM entry", "Action of the next write", "Hex number, 0x...", nullptr};
const char *const k_write_help[] = {"TCAM entry", "Write the key, mask and action set before", "Table",
                                    "Table name", "Index", "block << 8 | index", nullptr};
const char *const k_read_help[] = {"TCAM entry", "Read an entry", "Table", "Table name", "Index",
                                   "block << 8 | index", nullptr};
const char *const k_clear_help[] = {"Clear", "TCAM entry", "Table", "Table name", "Index", "block << 8 | index",
                                    nullptr};
const char *const k_mgmt_help[] = {"Show", "TCAM blocks", "Blocks, owners and their hardware settings", nullptr};
const char *const k_plane_help[] = {"Control plane", "Write and read back the test registers", nullptr};

cli_cmd_desc g_base_desc[] = {
    {"show tcam summary", -1, cli_base_tcam_tab_show_summary, k_summary_help, 0},
    {"tcam set-key WORD", -1, cli_base_tcam_tab_key_set, k_key_help, 0},
    {"tcam set-mask WORD", -1, cli_base_tcam_tab_mask_set, k_mask_help, 0},
    {"tcam set-ad WORD", -1, cli_base_tcam_tab_ad_set, k_ad_help, 0},
    {"tcam write name WORD index WORD", -1, cli_base_tcam_tab_write, k_write_help, 0},
    {"tcam read name WORD index WORD", -1, cli_base_tcam_tab_read, k_read_help, 0},
    {"clear tcam name WORD index WORD", -1, cli_base_tcam_tab_clear, k_clear_help, 0},
    {"show tcam-mgmt resource", -1, cli_base_tcam_mgmt_display, k_mgmt_help, 0},
    {"plane check", -1, cli_base_plane_check, k_plane_help, 0},
};

constexpr u32 k_base_commands = sizeof(g_base_desc) / sizeof(g_base_desc[0]);
cli_cmd_item g_base_items[k_base_commands];

} // namespace

extern "C" void cli_cmd_init_base(void)
{
    cli_cmd_descs_link(g_base_desc, g_base_items, k_base_commands, CLI_MODE_BASE);
}
