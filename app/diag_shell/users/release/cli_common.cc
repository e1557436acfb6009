// Commands of mode `config` (the terminal monitor) and the first commands
// of mode `common`: the chip, the keyword check switch, log switches and
// levels, bring-up and tear-down of a chip, the bus-number map, locks and
// the version registers.
#include <cstring>
#include <strings.h>

#include <tide/tide.h>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "shared/shr_int.h"

namespace {

constexpr u32 k_mode_config = 0;
constexpr u32 k_mode_common = 36;

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

// One step of bring-up or tear-down: its failure, or its success line.
i32 _step(u32 chip_id, i32 rc, const char *what, const char *done)
{
    if (rc != SHR_E_NONE) {
        cli_output_show("%s chip_id %d failed!, ret: %d, Fail reason:%s \n", what, static_cast<int>(chip_id),
                        static_cast<int>(rc), shr_errmsg(rc));
    } else {
        cli_output_show("%s............[OK]\r\n", done);
    }
    return rc;
}

bool _enabled(const char *word)
{
    return word != nullptr && std::strcmp(word, "enable") == 0;
}

// ---- log modules -------------------------------------------------------------------

// The module words of `debug-log`: each names the log module of that name;
// "pci" is the bus access of the hardware layer, module "HAL".
i32 _log_module_id(const char *word)
{
    if (std::strcmp(word, "pci") == 0) {
        return SHR_MOD_HAL;
    }
    for (u32 id = 0; id < SHR_MODULE_COUNT; id++) {
        if (strcasecmp(shr_module_name_get(id), word) == 0) {
            return static_cast<i32>(id);
        }
    }
    return -1;
}

constexpr const char *k_levels[] = {"fatal", "error", "warn", "info", "debug"};

i32 _level_of(const char *word)
{
    for (u32 i = 0; i < sizeof(k_levels) / sizeof(k_levels[0]); i++) {
        if (std::strcmp(k_levels[i], word) == 0) {
            return static_cast<i32>(i);
        }
    }
    return -1;
}

// Calls `fn` for the module the word names, or for every module for "all";
// -4 for a word that names none.
template <typename Fn> i32 _for_modules(const char *word, Fn fn)
{
    if (std::strcmp(word, "all") == 0) {
        for (u32 id = 0; id < SHR_MODULE_COUNT; id++) {
            fn(id);
        }
        return SHR_E_NONE;
    }
    const i32 id = _log_module_id(word);
    if (id < 0) {
        cli_output_show(" module %s is invalid.\n", word);
        return SHR_E_PARAM;
    }
    fn(static_cast<u32>(id));
    return SHR_E_NONE;
}

// ---- the records -----------------------------------------------------------------

#define CLI_MODULE_WORDS                                                                                        \
    "(all | pci | l3 | intr | arl | port | pkt | dma | phy | linkscan | counter | vxlan | vlan | stp | reg_tab " \
    "| trunk | tunnel | qos | rsm | ecc | trace | init | serdes | clk | pa | acl | mcc | prbs | mirror | stack " \
    "| flexe | bfd | oam | ptp | tti | macsec | led | pgc | sflow | storm | dos | isolation | tas | dygasp "     \
    "| keepalive | common | misc | channelvlan | multicast | top | hal)"

// Help lines of the module words, in their order.
#define CLI_MODULE_HELP                                                                                         \
    "All modules", "PCI bus access", "L3", "Interrupts", "L2 addresses", "Ports", "Packets", "DMA", "PHY",      \
        "Link scan", "Counters", "VXLAN", "VLAN", "STP", "Registers and tables", "Trunks", "Tunnels", "QoS",   \
        "RSM", "ECC", "Packet trace", "Bring-up", "SerDes", "Clocks", "Packet analysis", "ACL",                 \
        "Replication", "PRBS", "Mirror", "Stacking", "FlexE", "BFD", "OAM", "PTP", "TTI", "MACsec", "LED",     \
        "PGC", "sFlow", "Storm control", "DoS", "Port isolation", "TAS", "Dying gasp", "Keepalive", "Common",   \
        "Miscellaneous", "Channel VLAN", "Multicast", "Top level", "Hardware layer"

const char *const k_help_terminal[] = {"Terminal", "Copy the process's console messages to this session",
                                       "Enable", "Disable", nullptr};
const char *const k_help_show_chip[] = {"Show", "Chip", "The die identity in the fuses", nullptr};
const char *const k_help_key_check[] = {"Check that a command's keywords exist on the chip", "Enable", "Disable",
                                        nullptr};
const char *const k_help_key_check_show[] = {"Show", "The keyword check switch", nullptr};
const char *const k_help_log_enable[] = {"Log switches and levels", CLI_MODULE_HELP, "Enable the module's log",
                                         "Fatal",  "Error",  "Warning", "Info", "Debug", nullptr};
const char *const k_help_log_disable[] = {"Log switches and levels", CLI_MODULE_HELP, "Disable the module's log",
                                          nullptr};
const char *const k_help_log_show[] = {"Show", "Log switches and levels", CLI_MODULE_HELP, nullptr};
const char *const k_help_sdk_init[] = {"The chip's bring-up", "Bring the chip up", nullptr};
const char *const k_help_sdk_deinit[] = {"The chip's bring-up", "Tear the chip down", nullptr};
const char *const k_help_bus_map[] = {"Show", "Chip ids", "By bus number", "Map", "Bus number", nullptr};
const char *const k_help_mutex[] = {"Show", "Locks", "Statistics", nullptr};
const char *const k_help_version[] = {"Show", "The chip's version registers", nullptr};

#define CLI_DESC(handler, cmd, help) {cmd, -1, handler, help, 0}

cli_cmd_desc g_cli_config_desc[] = {
    CLI_DESC(cli_terminal_monitor_set, "terminal monitor (enable | disable)", k_help_terminal),
};

cli_cmd_desc g_cli_common_desc[] = {
    CLI_DESC(cli_common_show_chip, "show chip (die-id |)", k_help_show_chip),
    CLI_DESC(cli_common_key_check, "cli-key-check (enable | disable)", k_help_key_check),
    CLI_DESC(cli_common_key_check_show, "show cli-key-check", k_help_key_check_show),
    CLI_DESC(cli_common_debug_log_enable,
             "debug-log " CLI_MODULE_WORDS " enable (fatal | error | warn | info | debug )", k_help_log_enable),
    CLI_DESC(cli_common_debug_log_disable, "debug-log " CLI_MODULE_WORDS " disable", k_help_log_disable),
    CLI_DESC(cli_common_debug_log_show, "show debug-log " CLI_MODULE_WORDS, k_help_log_show),
    CLI_DESC(cli_common_sdk_set_init, "sdk init", k_help_sdk_init),
    CLI_DESC(cli_common_sdk_set_deinit, "sdk deinit", k_help_sdk_deinit),
    CLI_DESC(cli_common_chip_id_by_bus_number_display, "show chip-id bus-number mapping (WORD |)", k_help_bus_map),
    CLI_DESC(cli_common_debug_show_mutex, "show mutex info", k_help_mutex),
    CLI_DESC(cli_base_chip_version_show, "show version", k_help_version),
};

#undef CLI_DESC

constexpr u32 k_common_count = sizeof(g_cli_common_desc) / sizeof(g_cli_common_desc[0]);
constexpr u32 k_config_count = sizeof(g_cli_config_desc) / sizeof(g_cli_config_desc[0]);
cli_cmd_item g_cli_common_items[k_common_count];
cli_cmd_item g_cli_config_items[k_config_count];

template <u32 N> void _link(cli_cmd_desc (&desc)[N], cli_cmd_item (&items)[N], u32 mode)
{
    cli_cmd_descs_link(desc, items, N, mode);
}

} // namespace

extern "C" {

void cli_cmd_init_config(void)
{
    _link(g_cli_config_desc, g_cli_config_items, k_mode_config);
}

void cli_cmd_init_common(void)
{
    _link(g_cli_common_desc, g_cli_common_items, k_mode_common);
}

i32 cli_terminal_monitor_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    if (argc < 1) {
        return _bad_argc();
    }
    if (!_enabled(argv[0])) {
        terminal_monitor_disable();
        return SHR_E_NONE;
    }
    if (cli_server_client_get() == nullptr) {
        cli_output_show("terminal monitor is for shell clients\n");
        return SHR_E_FAIL;
    }
    if (terminal_monitor_enable((view_mode & CLI_MODE_CONSOLE_FLAG) != 0 ? 1 : 0) != 0) {
        cli_output_show("terminal monitor enable fail, reason for table full!\n");
        return SHR_E_FULL;
    }
    return SHR_E_NONE;
}

i32 cli_common_show_chip(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argv;
    i32 rc = cli_chip_valid_check(chip_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (argc >= 1) {
        // The die identity is read by the sensor and fuse service.
        return cli_call_failed("misc_api_dieid_show", SHR_E_NOT_SUPPORT);
    }
    u32 type = 0;
    u32 sub_devid = 0;
    rc = shr_chip_sub_devid_get(chip_id, &type, &sub_devid);
    if (rc != SHR_E_NONE) {
        return cli_call_failed("shr_chip_sub_devid_get", rc);
    }
    cli_output_show(" chip id      : %u\n chip name    : %s\n chip type    : %u\n chip family  : %u\n"
                    " sub device   : %u\n chips        : %u\n",
                    chip_id, shr_chip_name_get(chip_id), type, shr_chip_family_get(chip_id), sub_devid,
                    shr_chip_cur_num_get());
    return SHR_E_NONE;
}

i32 cli_common_key_check(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    if (argc < 1) {
        return _bad_argc();
    }
    g_cli_key_check = _enabled(argv[0]) ? 1 : 0;
    return SHR_E_NONE;
}

i32 cli_common_key_check_show(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    (void)argc;
    (void)argv;
    cli_output_show(" CLI key check : %s\n", g_cli_key_check != 0 ? "enable" : "disable");
    return SHR_E_NONE;
}

i32 cli_common_debug_log_enable(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    if (argc < 2) {
        return _bad_argc();
    }
    const i32 level = _level_of(argv[1]);
    if (level < 0) {
        cli_output_show(" level %s is invalid.\n", argv[1]);
        return SHR_E_PARAM;
    }
    return _for_modules(argv[0], [level](u32 id) {
        shr_debugk_enable(id);
        shr_debugk_ll_enable(id, static_cast<u8>(level));
    });
}

i32 cli_common_debug_log_disable(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    if (argc < 1) {
        return _bad_argc();
    }
    return _for_modules(argv[0], [](u32 id) { shr_debugk_disable(id); });
}

i32 cli_common_debug_log_show(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    if (argc < 1) {
        return _bad_argc();
    }
    cli_output_show(" %-14s %-8s %s\n ------------------------------\n", "module", "switch", "level");
    return _for_modules(argv[0], [](u32 id) {
        const u8 level = shr_debugk_ll_level_get(id);
        cli_output_show(" %-14s %-8s %s\n", shr_module_name_get(id),
                        g_shr_current_dk_enable[id] != 0 ? "enable" : "disable",
                        level < sizeof(k_levels) / sizeof(k_levels[0]) ? k_levels[level] : "?");
    });
}

i32 cli_common_sdk_set_init(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    sdk_init_cfg cfg;
    std::memset(&cfg, 0, sizeof(cfg));
    i32 rc = _step(chip_id, init_api_software_process(chip_id, &cfg), "soft init", "[soft init]");
    rc = rc != SHR_E_NONE ? rc : _step(chip_id, init_api_hardware_process(chip_id), "chip init", "[chip init]");
    if (rc != SHR_E_NONE) {
        return rc;
    }
    pkt_init_cfg pkt = {2, shr_property_get(chip_id, "cputr_create_tx_thread", 1) == 1 ? 1u : 0u,
                        shr_property_get(chip_id, "cputr_create_rx_thread", 1) == 1 ? 1u : 0u};
    rc = pkt_api_init(chip_id, &pkt);
    if (rc < 0 && rc != SHR_E_NOT_SUPPORT) {
        cli_output_show("pkt init failed!\n");
        return rc;
    }
    return SHR_E_NONE;
}

i32 cli_common_sdk_set_deinit(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    const i32 rc = pkt_api_deinit(chip_id, 2);
    if (rc < 0 && rc != SHR_E_NOT_SUPPORT) {
        cli_output_show("pkt deinit failed!\n");
        return rc;
    }
    const i32 hw = _step(chip_id, deinit_api_hardware_process(chip_id), "chip deinit", "[chip deinit]");
    return hw != SHR_E_NONE ? hw : _step(chip_id, deinit_api_software_process(chip_id), "soft deinit", "[soft deinit]");
}

i32 cli_common_chip_id_by_bus_number_display(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    constexpr u32 k_room = 16;
    u16 bus[k_room] = {};
    u32 chips[k_room] = {};
    u32 n = 0;
    if (argc >= 1) {
        u16 number = 0;
        i32 rc = cli_get_uint16_para(argv[0], &number);
        if (rc != SHR_E_NONE) {
            return rc;
        }
        rc = init_api_chip_id_get_by_bus_number(number, &chips[0]);
        if (rc != SHR_E_NONE) {
            return cli_call_failed("init_api_chip_id_get_by_bus_number", rc);
        }
        bus[0] = number;
        n = 1;
    } else {
        const i32 rc = init_api_chip_id_busnum_mapping_get(bus, chips, &n);
        if (rc != SHR_E_NONE) {
            return cli_call_failed("init_api_chip_id_busnum_mapping_get", rc);
        }
    }
    cli_output_show(" %-12s %s\n ---------------------\n", "bus number", "chip id");
    for (u32 i = 0; i < n && i < k_room; i++) {
        cli_output_show(" %-12u %u\n", bus[i], chips[i]);
    }
    return SHR_E_NONE;
}

i32 cli_common_debug_show_mutex(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)chip_id;
    (void)view_mode;
    (void)argc;
    (void)argv;
    xsal_mutex_stat();
    xsal_rw_mutex_stat();
    xsal_sem_stat();
    cli_output_show(" lock statistics are not kept by this build\n");
    return SHR_E_NONE;
}

i32 cli_base_chip_version_show(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    const i32 rc = base_api_chip_version_show(chip_id);
    return rc == SHR_E_NONE ? rc : cli_call_failed("base_api_chip_version_show", rc);
}

} // extern "C"
