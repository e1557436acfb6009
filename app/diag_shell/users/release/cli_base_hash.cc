// The `hash` commands of the `base` mode: an entry of a hash table by its
// key and AD images, dumps, algorithms and displays.
//
// An operator first gives the images (`hash set-key`, `hash set-ad`, as
// hex numbers) and the CAM choice (`hash insert-cam force`), then names
// the operation and the table.  The images and the choice are kept per
// chip until changed, for every client of the shell.
#include <tide/base.h>

#include <cstring>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"

namespace {

// The widest image of a hash table: the whole entry of the MAC table.
constexpr u32 k_image_bytes = 16;

struct HashSession {
    u8 key[k_image_bytes];
    u8 ad[k_image_bytes];
    u32 force; // 1: inserts go to the CAM
};

HashSession g_cli_hash_session[SHR_MAX_CHIPS];

i32 _fail(const char *what, i32 rc)
{
    cli_output_show(" call %s failed, %s\n", what, shr_errmsg(rc));
    return rc;
}

i32 _argc_check(i32 argc, i32 least)
{
    if (argc < least) {
        cli_output_show("parameter number is incorrect. \n");
        return SHR_E_PARAM;
    }
    return 0;
}

// The session of a chip of the registry, under the family's lock when the
// application made the lock table (as the other families, a command runs
// without it otherwise).
class SessionLock {
public:
    explicit SessionLock(u32 chip_id) : chip_(chip_id), rc_(cli_chip_valid_check(chip_id))
    {
        locked_ = rc_ == 0 && cli_lock_take(chip_, CLI_LOCK_HASH, __FILE__, __LINE__) == 0;
    }
    ~SessionLock()
    {
        if (locked_) {
            cli_lock_give(chip_, CLI_LOCK_HASH, __FILE__, __LINE__);
        }
    }
    SessionLock(const SessionLock &) = delete;
    SessionLock &operator=(const SessionLock &) = delete;
    i32 status() const { return rc_; }
    HashSession &session() const { return g_cli_hash_session[chip_]; }

private:
    u32 chip_;
    i32 rc_;
    bool locked_ = false;
};

// A hex number into an image of the session: its last two digits are
// byte 0.
i32 _image_set(u32 chip_id, const char *text, u8 (HashSession::*image)[k_image_bytes])
{
    u8 bytes[k_image_bytes] = {};
    u32 count = 0;
    if (cli_hex_string_to_u8_array(text, bytes, sizeof(bytes), &count) != 0) {
        return SHR_E_PARAM;
    }
    SessionLock hold(chip_id);
    if (hold.status() != 0) {
        return hold.status();
    }
    u8 *to = hold.session().*image;
    memset(to, 0, k_image_bytes);
    for (u32 i = 0; i < count; i++) {
        to[i] = bytes[count - 1 - i];
    }
    return 0;
}

// A command of one word: the API's call with it, and the failure's line.
template <typename Fn>
i32 _with_word(i32 argc, char **argv, const char *what, Fn fn)
{
    i32 rc = _argc_check(argc, 1);
    if (rc == 0) {
        rc = fn(argv[0]);
        rc = rc != 0 ? _fail(what, rc) : 0;
    }
    return rc;
}

bool _num(const char *word, u32 *out)
{
    if (cli_get_uint32_param(word, out) != 0) {
        cli_output_show("parameter %s is incorrect.\n", word);
        return false;
    }
    return true;
}

} // namespace

extern "C" {

// show hash summary
i32 cli_base_hash_tab_summary_show(u32 chip_id, u32, i32, char **)
{
    const i32 rc = base_api_hash_tab_summary_show(chip_id);
    return rc != 0 ? _fail("base_api_hash_tab_summary_show", rc) : 0;
}

// hash set-key WORD
i32 cli_base_hash_tab_key_set(u32 chip_id, u32, i32 argc, char **argv)
{
    const i32 rc = _argc_check(argc, 1);
    return rc != 0 ? rc : _image_set(chip_id, argv[0], &HashSession::key);
}

// hash set-ad WORD
i32 cli_base_hash_tab_ad_set(u32 chip_id, u32, i32 argc, char **argv)
{
    const i32 rc = _argc_check(argc, 1);
    return rc != 0 ? rc : _image_set(chip_id, argv[0], &HashSession::ad);
}

// hash insert-cam force (on | off)
i32 cli_base_hash_tab_cam_force_set(u32 chip_id, u32, i32 argc, char **argv)
{
    i32 rc = _argc_check(argc, 1);
    SessionLock hold(chip_id);
    rc = rc != 0 ? rc : hold.status();
    if (rc == 0) {
        hold.session().force = std::strcmp(argv[0], "on") == 0 ? 1 : 0;
    }
    return rc;
}

// hash (add-entry | del-entry | hard-search-key | soft-search-key) WORD
i32 cli_base_hash_tab_op(u32 chip_id, u32, i32 argc, char **argv)
{
    i32 rc = _argc_check(argc, 2);
    SessionLock hold(chip_id);
    rc = rc != 0 ? rc : hold.status();
    if (rc != 0) {
        return rc;
    }
    // The API says what happened; a refusal's line is its own.
    base_hash_op op{argv[0], argv[1], hold.session().key, hold.session().ad, hold.session().force};
    return base_api_hash_tab_op(chip_id, &op);
}

// show hash (hardware | software) WORD (bar0 | bar1 | cam | kt | ad) WORD (num WORD |)
i32 cli_base_hash_tab_dump(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr const char *kBuckets[] = {"bar0", "bar1", "cam", "kt", "ad"};
    i32 rc = _argc_check(argc, 4);
    if (rc != 0) {
        return rc;
    }
    base_hash_dump d{argv[1], 0, std::strcmp(argv[0], "software") == 0 ? 1u : 0u, 0, 0};
    for (u32 i = 0; i < sizeof(kBuckets) / sizeof(kBuckets[0]); i++) {
        d.bucket = std::strcmp(argv[2], kBuckets[i]) == 0 ? i : d.bucket;
    }
    u32 num = 1;
    if (!_num(argv[3], &d.start) || (argc >= 6 && !_num(argv[5], &num))) {
        return SHR_E_PARAM;
    }
    if (num == 0 || d.start + num - 1 < d.start) {
        cli_output_show("num %u is not a count of rows from %u\n", num, d.start);
        return SHR_E_PARAM;
    }
    d.end = d.start + num - 1;
    rc = base_api_hash_tab_dump(chip_id, &d);
    return rc != 0 ? _fail("base_api_hash_tab_dump", rc) : 0;
}

// hash set-alg WORD bar0 <0-3> bar1 <0-3> (left-shift <0-1> |) (fp-select <0-1> |)
i32 cli_base_hash_tab_alg_set(u32 chip_id, u32, i32 argc, char **argv)
{
    i32 rc = _argc_check(argc, 3);
    if (rc != 0) {
        return rc;
    }
    base_hash_alg a{argv[0], 0, 0, 0, 0};
    if (!_num(argv[1], &a.barrel0) || !_num(argv[2], &a.barrel1)) {
        return SHR_E_PARAM;
    }
    for (i32 i = 3; i + 1 < argc; i += 2) {
        u32 *to = std::strcmp(argv[i], "left-shift") == 0 ? &a.left_shift : &a.fp_select;
        if (!_num(argv[i + 1], to)) {
            return SHR_E_PARAM;
        }
    }
    rc = base_api_hash_alg_set(chip_id, &a);
    return rc != 0 ? _fail("base_api_hash_alg_set", rc) : 0;
}

// hash get-alg WORD
i32 cli_base_hash_tab_alg_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return _with_word(argc, argv, "base_api_hash_alg_get", [&](const char *table) {
        base_hash_alg a{table, 0, 0, 0, 0};
        return base_api_hash_alg_get(chip_id, &a);
    });
}

// show hash info WORD
i32 cli_base_hash_tab_info_show(u32 chip_id, u32, i32 argc, char **argv)
{
    return _with_word(argc, argv, "base_api_hash_info_show",
                      [&](const char *table) { return base_api_hash_info_show(chip_id, table); });
}

} // extern "C"

namespace {

const char *const k_summary_help[] = {"Show", "Hash tables", "Size and use of every hash table", nullptr};
const char *const k_key_help[] = {"Hash tables", "Key image of the next operation", "Hex number (0x...)", nullptr};
const char *const k_ad_help[] = {"Hash tables", "AD image of the next operation", "Hex number (0x...)", nullptr};
const char *const k_force_help[] = {"Hash tables", "Where inserts go", "Straight into the CAM", "On", "Off",
                                    nullptr};
const char *const k_op_help[] = {"Hash tables",  "Add the key with the AD", "Delete the key",
                                 "Search the key in the chip", "Search the key in the software image",
                                 "Table: ECIB, L2_MAC, L3_MFIB, VRRP_MCDP", nullptr};
const char *const k_dump_help[] = {"Show",      "Hash tables", "From the chip", "From the software image",
                                   "Table name", "Barrel 0",   "Barrel 1",      "CAM",
                                   "Key table", "AD table",    "First row",     "Rows",
                                   "Count", nullptr};
const char *const k_alg_set_help[] = {"Hash tables", "Barrel algorithms", "Table name", "Barrel 0", "Algorithm 0 to 3",
                                      "Barrel 1",    "Algorithm 0 to 3", "Rotate each CRC by its top bits",
                                      "0 off, 1 on", "FP select",        "0 off, 1 on", nullptr};
const char *const k_alg_get_help[] = {"Hash tables", "Barrel algorithms", "Table name", nullptr};
const char *const k_info_help[] = {"Show", "Hash tables", "Geometry, use and algorithms", "Table name", nullptr};

cli_cmd_desc g_base_hash_desc[] = {
    {"show hash summary", -1, cli_base_hash_tab_summary_show, k_summary_help, 0},
    {"hash set-key WORD", -1, cli_base_hash_tab_key_set, k_key_help, 0},
    {"hash set-ad WORD", -1, cli_base_hash_tab_ad_set, k_ad_help, 0},
    {"hash insert-cam force (on | off)", -1, cli_base_hash_tab_cam_force_set, k_force_help, 0},
    {"hash (add-entry | del-entry | hard-search-key | soft-search-key) WORD", -1, cli_base_hash_tab_op, k_op_help, 0},
    {"show hash (hardware | software) WORD (bar0 | bar1 | cam | kt | ad) WORD (num WORD |)", -1,
     cli_base_hash_tab_dump, k_dump_help, 0},
    {"hash set-alg WORD bar0 <0-3> bar1 <0-3> (left-shift <0-1> |) (fp-select <0-1> |)", -1,
     cli_base_hash_tab_alg_set, k_alg_set_help, 0},
    {"hash get-alg WORD", -1, cli_base_hash_tab_alg_get, k_alg_get_help, 0},
    {"show hash info WORD", -1, cli_base_hash_tab_info_show, k_info_help, 0},
};

constexpr u32 k_base_hash_commands = sizeof(g_base_hash_desc) / sizeof(g_base_hash_desc[0]);
cli_cmd_item g_base_hash_items[k_base_hash_commands];

} // namespace

extern "C" void cli_cmd_init_base_hash(void)
{
    cli_cmd_descs_link(g_base_hash_desc, g_base_hash_items, k_base_hash_commands, CLI_MODE_BASE);
}
