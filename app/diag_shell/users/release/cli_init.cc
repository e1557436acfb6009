// The init list of the library's command records, the commands that every
// mode has, and the door by which the application runs a command line.
#include <pthread.h>

#include <cstdlib>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "app/diag_shell/users/release/cli_init.h"

namespace {

// Help line of each mode-switching word, by mode number.
#define CLI_VIEW_HELP(name, number) {"(G) Access " name " mode", nullptr},
const char *const k_view_help[CLI_MODE_NAMES][2] = {CLI_MODE_LIST(CLI_VIEW_HELP)};
#undef CLI_VIEW_HELP

// Descriptor of each mode-switching word; the word is the mode's name.
// Their handler is set when the tree is built.
#define CLI_VIEW_DESC(name, number) {name, -1, nullptr, k_view_help[number], 0},
cli_cmd_desc g_cli_view_desc[CLI_MODE_NAMES] = {CLI_MODE_LIST(CLI_VIEW_DESC)};
#undef CLI_VIEW_DESC

const char *const k_exit_help[] = {"End current mode and down to previous mode", nullptr};
cli_cmd_desc g_cli_exit_desc = {"exit", -1, nullptr, k_exit_help, 0};

const char *const k_chip_id_help[] = {"Select the chip that commands act on", "Chip id", nullptr};
cli_cmd_desc g_cli_chip_id_desc = {"chip-id <0-16>", -1, cli_glb_chip_id_set, k_chip_id_help, 0};

// Per mode: a word for every mode but config, `exit` (not in config) and
// `chip-id`.
constexpr u32 k_items_per_mode = CLI_MODE_NAMES + 1;
cli_cmd_item g_cli_view_items[CLI_MODE_NAMES][k_items_per_mode];

bool g_cli_cmd_inited;

// Lines run one at a time; a handler may run another line.
pthread_mutex_t g_cli_exec_lock = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;

struct _exec_guard {
    _exec_guard() { pthread_mutex_lock(&g_cli_exec_lock); }
    ~_exec_guard() { pthread_mutex_unlock(&g_cli_exec_lock); }
    _exec_guard(const _exec_guard &) = delete;
    _exec_guard &operator=(const _exec_guard &) = delete;
};

} // namespace

extern "C" {

void cli_cmd_init_view(void)
{
    constexpr u16 view_flags = CLI_FLAG_GLOBAL | CLI_FLAG_VIEW;
    for (u32 mode = 0; mode < CLI_MODE_NAMES; mode++) {
        cli_cmd_item *items = g_cli_view_items[mode];
        u32 n = 0;
        for (u32 target = 1; target < CLI_MODE_NAMES; target++) {
            items[n++] = {&g_cli_view_desc[target], mode, view_flags, CLI_PRIV_MAX, {}};
        }
        if (mode != CLI_MODE_CONFIG) {
            items[n++] = {&g_cli_exit_desc, mode, CLI_FLAG_VIEW, CLI_PRIV_MAX, {}};
        }
        items[n++] = {&g_cli_chip_id_desc, mode, CLI_FLAG_GLOBAL, CLI_PRIV_MAX, {}};
        cli_cmd_items_link(items, n);
    }
}

void cli_cmd_descs_link(cli_cmd_desc *descs, cli_cmd_item *items, u32 count, u32 mode)
{
    for (u32 i = 0; i < count; i++) {
        items[i] = {&descs[i], mode, 0, CLI_PRIV_MAX, {}};
    }
    cli_cmd_items_link(items, count);
}

void cli_cmd_init_all(void)
{
    if (g_cli_cmd_inited) {
        return;
    }
    g_cli_cmd_inited = true;
    // The command families link their records here, in their order, ahead
    // of the commands that every mode has; the chip model's own commands
    // come after the chip's families.
    cli_cmd_init_l2();
    cli_cmd_init_base_hash();
    cli_cmd_init_acl();
    cli_cmd_init_debug_interrupt();
    cli_cmd_init_counter();
    cli_cmd_init_port();
    cli_cmd_init_serdes();
    cli_cmd_init_config();
    cli_cmd_init_common();
    cli_cmd_init_base();
    cli_cmd_init_vlan();
    cli_cmd_init_macsec();
    cli_cmd_init_debug_reef_mcc();
    cli_cmd_init_interrupt();
    cli_cmd_init_qos();
    cli_cmd_init_sim();
    cli_cmd_init_view();
}

i32 cli_glb_chip_id_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    char *stop = nullptr;
    const unsigned long id = argc >= 1 && argv != nullptr && argv[0] != nullptr ? std::strtoul(argv[0], &stop, 10) : 0;
    if (stop == nullptr || *stop != '\0' || stop == argv[0]) {
        cli_output_show("invalid param\n");
        return SHR_E_PARAM;
    }
    u32 type = 0;
    u32 sub_devid = 0;
    if (id >= SHR_MAX_CHIPS || shr_chip_sub_devid_get(static_cast<u32>(id), &type, &sub_devid) != SHR_E_NONE) {
        cli_output_show("chip_id %d invalid\n", static_cast<int>(id));
        return SHR_E_UNIT;
    }
    // A client keeps its session's chip and prompt itself and sends the
    // chip with every command; the shell inside the library keeps them
    // here.
    if (cli_server_client_get() == nullptr) {
        chip_id_set(static_cast<u32>(id));
        setchipidPrompt(static_cast<u32>(id));
    }
    return SHR_E_NONE;
}

void cli_cmd_exec_lock(void)
{
    pthread_mutex_lock(&g_cli_exec_lock);
}

void cli_cmd_exec_unlock(void)
{
    pthread_mutex_unlock(&g_cli_exec_lock);
}

i32 cli_cmd_tree_build(void)
{
    _exec_guard guard;
    cli_cmd_init_all();
    return cli_ctree_init() == 0 && cli_ctree_create() == 0 ? 0 : -1;
}

void cli_cmd_tree_release(void)
{
    _exec_guard guard;
    cli_ctree_delete();
    cli_ctree_deinit();
}

i32 cli_cmd_execute(u32 chip_id, const char *line, char *buf, i32 size)
{
    if (line == nullptr) {
        return -1;
    }
    _exec_guard guard;
    if (g_main_clitree == nullptr) {
        cli_cmd_init_all();
        if (cli_ctree_init() != 0) {
            return -1;
        }
    }
    return cli_command_parse(chip_id, line, buf, size);
}

} // extern "C"
