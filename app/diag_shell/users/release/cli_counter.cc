// Mode `counter`: the table of counters, the totals, the entries of one
// counter with read-and-clear, enables of counters and of entries,
// clearing, and the counter thread.  A counter is named by its id (0 to
// 28) or by its name in the table ("iport_stat", "port_stat").
#include <tide/counter.h>

#include <cstring>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"

namespace {

constexpr const char *k_names[COUNTER_ID_MAX + 1] = {"pa_stat",
                                                     "mgid_stat",
                                                     "iport_stat",
                                                     "oport_stat",
                                                     "itunnel_stat",
                                                     "otunnel_stat",
                                                     "vlan_acl_stat",
                                                     "causeid_stat",
                                                     "tm_que_fwd_stat",
                                                     "tm_que_drop_stat",
                                                     "icar_acl_car_fwd_stat",
                                                     "icar_acl_car_drop_stat",
                                                     "icar_port_car_fwd_stat",
                                                     "icar_port_car_drop_stat",
                                                     "icar_vlan_suppression_car_fwd_stat",
                                                     "icar_vlan_suppression_car_drop_stat",
                                                     "icar_port_suppression_car_fwd_stat",
                                                     "icar_port_suppression_car_drop_stat",
                                                     "ecar_port_car_fwd_stat",
                                                     "ecar_port_car_drop_stat",
                                                     "ecar_acl_car_fwd_stat",
                                                     "ecar_acl_car_drop_stat",
                                                     "ecar_cpacl_car_fwd_stat",
                                                     "ecar_cpacl_car_drop_stat",
                                                     "ecar_cause_id_car_fwd_stat",
                                                     "ecar_cause_id_car_drop_stat",
                                                     "ecar_sport_ptype_car_fwd_stat",
                                                     "ecar_sport_ptype_car_drop_stat",
                                                     "port_stat"};

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

bool _is(const char *word, const char *what)
{
    return word != nullptr && xsal_strcmp(word, what) == 0;
}

bool _has(i32 argc, char **argv, const char *what)
{
    for (i32 i = 0; i < argc; i++) {
        if (_is(argv[i], what)) {
            return true;
        }
    }
    return false;
}

i32 _failed(const char *call, i32 rc)
{
    return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
}

// The counter id of a number or a name.
i32 _id(const char *word, u32 *id)
{
    for (u32 i = 0; word != nullptr && i <= COUNTER_ID_MAX; i++) {
        if (std::strcmp(word, k_names[i]) == 0) {
            *id = i;
            return SHR_E_NONE;
        }
    }
    if (word != nullptr && cli_get_uint32_param(word, id) == SHR_E_NONE && *id <= COUNTER_ID_MAX) {
        return SHR_E_NONE;
    }
    cli_output_show("Parameter '%s' is invalid!\n", word != nullptr ? word : "");
    return SHR_E_PARAM;
}

// Calls `fn(index)` for the entries that `argv` names after the counter:
// "tab-index LIST", or all the table's entries for "all" or nothing.
template <typename Fn>
i32 _entries(u32 chip_id, u32 id, i32 argc, char **argv, Fn fn)
{
    for (i32 i = 1; i + 1 < argc; i++) {
        if (_is(argv[i], "tab-index")) {
            return cli_intlist_walk(argv[i + 1], fn);
        }
    }
    u32 size = 0;
    const i32 rc = _failed("counter_api_size_get", counter_api_size_get(chip_id, id, &size));
    for (u32 index = 0; rc == SHR_E_NONE && index < size; index++) {
        const i32 st = fn(index);
        if (st != SHR_E_NONE) {
            return st;
        }
    }
    return rc;
}

const char *_rule()
{
    return "----------------------------------------------------------------\n";
}

} // namespace

extern "C" {

// show counter map
i32 cli_counter_map_display(u32 chip_id, u32, i32, char **)
{
    return _failed("counter_api_map_display", counter_api_map_display(chip_id));
}

// show counter glb (non-zero |) (clear |)
i32 cli_counter_global_display(u32 chip_id, u32, i32 argc, char **argv)
{
    const u32 flags = (_has(argc, argv, "non-zero") ? 1u : 0u) | (_has(argc, argv, "clear") ? 2u : 0u);
    return _failed("counter_api_global_display", counter_api_global_display(chip_id, flags));
}

// show counter WORD (tab-index WORD | all |) (cache-clear |) (non-zero |)
i32 cli_counter_one_display(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 1) {
        return _bad_argc();
    }
    i32 rc = _id(argv[0], &id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const u32 clr = _has(argc, argv, "cache-clear") ? 1 : 0;
    const bool non_zero = _has(argc, argv, "non-zero");
    cli_output_show("counter %u %s\n", id, k_names[id]);
    cli_output_show("%s", _rule());
    cli_output_show("%-10s%-24s%-24s\n", "index", "packets", "bytes");
    cli_output_show("%s", _rule());
    return _entries(chip_id, id, argc, argv, [&](u32 index) -> i32 {
        counter_key key{id, index, clr};
        counter_stats s{};
        const i32 st = counter_api_stats_get(chip_id, &key, &s);
        if (st != SHR_E_NONE) {
            return cli_call_failed("counter_api_stats_get", st);
        }
        if (!non_zero || s.pkt != 0 || s.bytes != 0) {
            cli_output_show("%-10u%-24llu%-24llu\n", index, static_cast<unsigned long long>(s.pkt),
                            static_cast<unsigned long long>(s.bytes));
        }
        return SHR_E_NONE;
    });
}

// counter WORD (enable | disable)
i32 cli_counter_id_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    const i32 rc = _id(argv[0], &id);
    return rc != SHR_E_NONE ? rc
                            : _failed("counter_api_enable_set",
                                      counter_api_enable_set(chip_id, id, _is(argv[1], "enable") ? 1 : 0));
}

// clear counter WORD (tab-index WORD | all |)
i32 cli_counter_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 1) {
        return _bad_argc();
    }
    const i32 rc = _id(argv[0], &id);
    return rc != SHR_E_NONE ? rc : _entries(chip_id, id, argc, argv, [&](u32 index) -> i32 {
        counter_key key{id, index, 0};
        return _failed("counter_api_stats_clear", counter_api_stats_clear(chip_id, &key));
    });
}

// counter thread (interval WORD | start-sync | stop-sync)
i32 cli_counter_thread_config(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    thread_cfg cfg{};
    i32 rc = _failed("counter_api_thread_get", counter_api_thread_get(chip_id, &cfg));
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (_is(argv[0], "interval")) {
        if (argc < 2 || cli_get_uint32_param(argv[1], &cfg.interval) != SHR_E_NONE) {
            cli_output_show("Parameter '%s' is invalid!\n", argc < 2 ? "" : argv[1]);
            return SHR_E_PARAM;
        }
    } else {
        cfg.sync = _is(argv[0], "start-sync") ? 1 : 0;
    }
    return _failed("counter_api_thread_set", counter_api_thread_set(chip_id, &cfg));
}

// show counter thread
i32 cli_counter_thread_display(u32 chip_id, u32, i32, char **)
{
    thread_cfg cfg{};
    const i32 rc = _failed("counter_api_thread_get", counter_api_thread_get(chip_id, &cfg));
    if (rc == SHR_E_NONE) {
        cli_output_show(" interval(ms) : %u\n", cfg.interval);
        cli_output_show(" sync         : %s\n", cfg.sync != 0 ? "enable" : "disable");
    }
    return rc;
}

// show counter WORD entry-status (tab-index WORD | all)
i32 cli_counter_entry_bitmap_display(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    const i32 rc = _id(argv[0], &id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    cli_output_show("%-10s%-10s\n", "index", "status");
    cli_output_show("%s", _rule());
    return _entries(chip_id, id, argc, argv, [&](u32 index) -> i32 {
        u8 on = 0;
        const i32 st = _failed("counter_api_entry_enable_get", counter_api_entry_enable_get(chip_id, id, index, &on));
        if (st == SHR_E_NONE) {
            cli_output_show("%-10u%-10s\n", index, on != 0 ? "enable" : "disable");
        }
        return st;
    });
}

// counter WORD entry-status (tab-index WORD | all) (enable | disable)
i32 cli_counter_entry_bitmap_enable(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 3) {
        return _bad_argc();
    }
    const i32 rc = _id(argv[0], &id);
    const u8 on = _is(argv[argc - 1], "enable") ? 1 : 0;
    return rc != SHR_E_NONE ? rc : _entries(chip_id, id, argc, argv, [&](u32 index) -> i32 {
        return _failed("counter_api_entry_enable_set", counter_api_entry_enable_set(chip_id, id, index, on));
    });
}

} // extern "C"

namespace {

const char *const k_help_map[] = {"Show", "Counters", "The table of counters", nullptr};
const char *const k_help_glb[] = {"Show", "Counters", "Totals of every table", "Only the non-zero ones",
                                  "Clear what was shown", nullptr};
const char *const k_help_one[] = {"Show", "Counters", "Counter id or name", "Entries", "Entry list", "All entries",
                                  "Read and clear", "Only the non-zero ones", nullptr};
const char *const k_help_enable[] = {"Counters", "Counter id or name", "Enable", "Disable", nullptr};
const char *const k_help_clear[] = {"Clear", "Counters", "Counter id or name", "Entries", "Entry list",
                                    "All entries", nullptr};
const char *const k_help_thread[] = {"Counters", "The counter thread", "Interval of a pass", "Milliseconds",
                                     "Run passes", "Sleep", nullptr};
const char *const k_help_thread_show[] = {"Show", "Counters", "The counter thread", nullptr};
const char *const k_help_entry_show[] = {"Show", "Counters", "Counter id or name", "Entries in the pass", "Entries",
                                         "Entry list", "All entries", nullptr};
const char *const k_help_entry_set[] = {"Counters", "Counter id or name", "Entries in the pass", "Entries",
                                        "Entry list", "All entries", "Enable", "Disable", nullptr};

cli_cmd_desc g_counter_desc[] = {
    {"show counter map", -1, cli_counter_map_display, k_help_map, 0},
    {"show counter glb (non-zero |) (clear |)", -1, cli_counter_global_display, k_help_glb, 0},
    {"show counter WORD (tab-index WORD | all |) (cache-clear |) (non-zero |)", -1, cli_counter_one_display,
     k_help_one, 0},
    {"counter WORD (enable | disable)", -1, cli_counter_id_enable_set, k_help_enable, 0},
    {"clear counter WORD (tab-index WORD | all |)", -1, cli_counter_clear, k_help_clear, 0},
    {"counter thread (interval WORD | start-sync | stop-sync)", -1, cli_counter_thread_config, k_help_thread, 0},
    {"show counter thread", -1, cli_counter_thread_display, k_help_thread_show, 0},
    {"show counter WORD entry-status (tab-index WORD | all)", -1, cli_counter_entry_bitmap_display,
     k_help_entry_show, 0},
    {"counter WORD entry-status (tab-index WORD | all) (enable | disable)", -1, cli_counter_entry_bitmap_enable,
     k_help_entry_set, 0},
};

constexpr u32 k_counter_commands = sizeof(g_counter_desc) / sizeof(g_counter_desc[0]);
cli_cmd_item g_counter_items[k_counter_commands];

} // namespace

extern "C" void cli_cmd_init_counter(void)
{
    cli_cmd_descs_link(g_counter_desc, g_counter_items, k_counter_commands, CLI_MODE_COUNTER);
}
