// Mode `interrupt`: the chip's interrupt types, their status, masks and
// counts, their ECC details and debug registers, and the ECC default
// action.  A module is named by its number or its name ("arl"), a subid and
// a type by number; `all` stands for every one.
#include <tide/interrupt.h>

#include <cstring>
#include <functional>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "csl/reef/reg_tbl/csl_reef_cib.h"

namespace {

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

bool _is(const char *word, const char *what)
{
    return word != nullptr && xsal_strcmp(word, what) == 0;
}

// A number, or `all` as the wild card `all_value`.
i32 _number_or_all(const char *word, u32 all_value, u32 *out)
{
    if (_is(word, "all")) {
        *out = all_value;
        return SHR_E_NONE;
    }
    if (cli_get_uint32_param(word, out) != SHR_E_NONE) {
        cli_output_show("Parameter '%s' is invalid!\n", word != nullptr ? word : "");
        return SHR_E_PARAM;
    }
    return SHR_E_NONE;
}

// A module by its number or its name, or `all`.
i32 _module(const char *word, u32 *out)
{
    for (u32 m = 0; word != nullptr && m < CIB_MODULE_COUNT; m++) {
        if (xsal_strcmp(word, g_cib_module_name[m]) == 0) {
            *out = m;
            return SHR_E_NONE;
        }
    }
    return _number_or_all(word, INTR_MODULE_ALL, out);
}

// module, sub-id and intr-id words at argv[0..2].
i32 _select(i32 argc, char **argv, intr_module *module, u32 *intr_id)
{
    if (argc < 3) {
        return _bad_argc();
    }
    i32 rc = _module(argv[0], &module->module_id);
    if (rc == SHR_E_NONE) {
        rc = _number_or_all(argv[1], INTR_SUBID_ALL, &module->subid);
    }
    if (rc == SHR_E_NONE) {
        rc = _number_or_all(argv[2], INTR_ID_ALL, intr_id);
    }
    return rc;
}

// The instance of `(multi-addr (WORD | all) |)` at argv[at], or
// `absent` when the group is not given.
i32 _multi_addr(i32 argc, char **argv, i32 at, u32 absent, u32 *addr_idx)
{
    *addr_idx = absent;
    if (argc > at + 1 && _is(argv[at], "multi-addr")) {
        return _number_or_all(argv[at + 1], INTR_ADDR_ALL, addr_idx);
    }
    return SHR_E_NONE;
}

bool _has_word(i32 argc, char **argv, i32 from, const char *word)
{
    for (i32 i = from; i < argc; i++) {
        if (_is(argv[i], word)) {
            return true;
        }
    }
    return false;
}

i32 _result(const char *call, i32 rc)
{
    return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
}

// Calls fn(module, subid, intr_id) for every type the selection names, in
// order; the first failure ends the walk.  A module without interrupts
// named by `all` is left out.
i32 _each_type(u32 chip_id, intr_module sel, u32 intr_id, const std::function<i32(u32, u32, u32)> &fn)
{
    const u32 first = sel.module_id == INTR_MODULE_ALL ? 0 : sel.module_id;
    const u32 last = sel.module_id == INTR_MODULE_ALL ? CIB_MODULE_COUNT - 1 : sel.module_id;
    for (u32 m = first; m <= last; m++) {
        u32 subids = 0;
        i32 rc = interrupt_api_subid_types_get(chip_id, m, &subids);
        if (rc != SHR_E_NONE) {
            return _result("interrupt_api_subid_types_get", rc);
        }
        for (u32 s = 0; s < subids; s++) {
            if (sel.subid != INTR_SUBID_ALL && s != sel.subid) {
                continue;
            }
            u32 types = 0;
            if ((rc = interrupt_api_onesubid_types_get(chip_id, m, s, &types)) != SHR_E_NONE) {
                return _result("interrupt_api_onesubid_types_get", rc);
            }
            for (u32 t = 0; t < types; t++) {
                if ((intr_id == INTR_ID_ALL || t == intr_id) && (rc = fn(m, s, t)) != SHR_E_NONE) {
                    return rc;
                }
            }
        }
    }
    return SHR_E_NONE;
}

// The selection is checked by the API first, so that a bad number gets its
// line and nothing is printed.
i32 _check(u32 chip_id, intr_module sel, u32 intr_id)
{
    u32 count = 0;
    if (sel.module_id != INTR_MODULE_ALL) {
        const i32 rc = sel.subid == INTR_SUBID_ALL
                           ? interrupt_api_subid_types_get(chip_id, sel.module_id, &count)
                           : interrupt_api_onesubid_types_get(chip_id, sel.module_id, sel.subid, &count);
        if (rc != SHR_E_NONE) {
            return _result(sel.subid == INTR_SUBID_ALL ? "interrupt_api_subid_types_get"
                                                       : "interrupt_api_onesubid_types_get",
                           rc);
        }
        if (sel.subid != INTR_SUBID_ALL && intr_id != INTR_ID_ALL && intr_id >= count) {
            cli_output_show("intr-id %u is invalid, the subid has %u types\n", intr_id, count);
            return SHR_E_PARAM;
        }
    }
    return SHR_E_NONE;
}

// The module, subid and intr-id words, checked against the chip.
i32 _select_checked(u32 chip_id, i32 argc, char **argv, intr_module *sel, u32 *intr_id)
{
    const i32 rc = _select(argc, argv, sel, intr_id);
    return rc != SHR_E_NONE ? rc : _check(chip_id, *sel, *intr_id);
}

void _type_name(u32 chip_id, u32 m, u32 s, u32 t, char *name, u32 size)
{
    intr_debug debug = {name, size, 1};
    name[0] = '\0';
    interrupt_api_debug_get(chip_id, {m, s}, {t, 0}, &debug);
}

const char *_kind_text(const intr_ecc_info &e, char *buf, u32 size)
{
    switch (e.ecc_kind) {
    case INTR_ECC_KIND_RAM:
        return "RAM";
    case INTR_ECC_KIND_FIFO:
        return "FIFO";
    case INTR_ECC_KIND_DIRECT:
        xsal_snprintf(buf, size, "%u(DIRECT)", e.ecc_type);
        return buf;
    case INTR_ECC_KIND_HASH:
        xsal_snprintf(buf, size, "%u(HASH)", e.ecc_type);
        return buf;
    case INTR_ECC_KIND_TCAM:
        xsal_snprintf(buf, size, "%u(TCAM)", e.ecc_type);
        return buf;
    default:
        return "None";
    }
}

} // namespace

extern "C" {

// show interrupt support-module
i32 cli_intr_support_module_dump(u32 chip_id, u32, i32, char **)
{
    return _result("interrupt_api_support_module_dump", interrupt_api_support_module_dump(chip_id));
}

// show interrupt base-info module (WORD | all)
i32 cli_intr_base_info_get(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 module_id = 0;
    if (argc < 1) {
        return _bad_argc();
    }
    i32 rc = _module(argv[0], &module_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        u32 subids = 0;
        if (module_id != INTR_MODULE_ALL && m != module_id) {
            continue;
        }
        if (module_id == INTR_MODULE_ALL &&
            (interrupt_api_subid_types_get(chip_id, m, &subids) != SHR_E_NONE || subids == 0)) {
            continue;
        }
        if ((rc = interrupt_api_base_info_get(chip_id, m)) != SHR_E_NONE) {
            return _result("interrupt_api_base_info_get", rc);
        }
    }
    return SHR_E_NONE;
}

// show interrupt status module (WORD | all) sub-id (WORD | all) intr-id
// (WORD | all) (non-zero |): status and mask of each type, over all its
// instances (a bit set in any).
i32 cli_intr_module_status_get(u32 chip_id, u32, i32 argc, char **argv)
{
    intr_module sel = {};
    u32 intr_id = 0;
    const i32 rc = _select_checked(chip_id, argc, argv, &sel, &intr_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const bool non_zero = _has_word(argc, argv, 3, "non-zero");
    cli_output_show("   Module         Subid  Intr ID  Status      Mask        Name\n");
    return _each_type(chip_id, sel, intr_id, [&](u32 m, u32 s, u32 t) -> i32 {
        u32 status = 0, mask = 0;
        i32 r = interrupt_api_status_get(chip_id, {m, s}, {t, INTR_ADDR_ALL}, &status);
        if (r == SHR_E_NONE) {
            r = interrupt_api_mask_get(chip_id, {m, s}, {t, INTR_ADDR_ALL}, &mask);
        }
        if (r != SHR_E_NONE) {
            return _result("interrupt_api_status_get", r);
        }
        if (!non_zero || status != 0) {
            char name[64];
            _type_name(chip_id, m, s, t, name, sizeof(name));
            cli_output_show("   %-13s  %02u     %02u       0x%08x  0x%08x  %s\n", g_cib_module_name[m], s, t, status,
                            mask, name);
        }
        return SHR_E_NONE;
    });
}

// interrupt (enable | disable) module (WORD | all) sub-id (WORD | all)
// intr-id (WORD | all) (multi-addr (WORD | all) |)
i32 cli_intr_cfg(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 4) {
        return _bad_argc();
    }
    intr_module sel = {};
    u32 intr_id = 0, addr_idx = 0;
    i32 rc = _select(argc - 1, argv + 1, &sel, &intr_id);
    if (rc == SHR_E_NONE) {
        rc = _multi_addr(argc, argv, 4, INTR_ADDR_ALL, &addr_idx);
    }
    if (rc != SHR_E_NONE) {
        return rc;
    }
    return _result("interrupt_api_enable_set",
                   interrupt_api_enable_set(chip_id, sel, {intr_id, addr_idx}, _is(argv[0], "enable") ? 1 : 0));
}

// clear interrupt module (WORD | all) sub-id (WORD | all) intr-id (WORD |
// all) (multi-addr (WORD | all) |)
i32 cli_intr_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    intr_module sel = {};
    u32 intr_id = 0, addr_idx = 0;
    i32 rc = _select(argc, argv, &sel, &intr_id);
    if (rc == SHR_E_NONE) {
        rc = _multi_addr(argc, argv, 3, INTR_ADDR_ALL, &addr_idx);
    }
    if (rc != SHR_E_NONE) {
        return rc;
    }
    return _result("interrupt_api_clear", interrupt_api_clear(chip_id, sel, {intr_id, addr_idx}));
}

// show interrupt ecc module (WORD | all) sub-id (WORD | all) intr-id (WORD |
// all) (multi-addr (WORD | all) |) (non-zero |): the ECC details of each
// type of the modules that have them.
i32 cli_ecc_module_get(u32 chip_id, u32, i32 argc, char **argv)
{
    intr_module sel = {};
    u32 intr_id = 0, addr_idx = 0;
    i32 rc = _select(argc, argv, &sel, &intr_id);
    if (rc == SHR_E_NONE) {
        // The memories with ECC details are those of modules of one
        // instance: `all` is instance 0.
        rc = _multi_addr(argc, argv, 3, 0, &addr_idx);
        addr_idx = addr_idx == INTR_ADDR_ALL ? 0 : addr_idx;
    }
    if (rc != SHR_E_NONE || (rc = _check(chip_id, sel, intr_id)) != SHR_E_NONE) {
        return rc;
    }
    const bool non_zero = _has_word(argc, argv, 3, "non-zero");
    u32 shown_module = INTR_MODULE_ALL;
    cli_output_show("   (Table ECC Type: bit0:notice  bit1:single bit err  bit2:multi bit err)\n");
    return _each_type(chip_id, sel, intr_id, [&](u32 m, u32 s, u32 t) -> i32 {
        u32 types = 0;
        if (interrupt_api_ecc_module_ecc_types_get(chip_id, m, &types) != SHR_E_NONE || types == 0) {
            return SHR_E_NONE;
        }
        intr_ecc_info e = {};
        if (interrupt_api_ecc_info_get(chip_id, {m, s}, {t, addr_idx}, &e) != SHR_E_NONE ||
            (non_zero && e.ecc_reg_data == 0)) {
            return SHR_E_NONE;
        }
        if (shown_module != m) {
            shown_module = m;
            cli_output_show("  Module %s(id:%u)\n", g_cib_module_name[m], m);
            cli_output_show("   Subid  Intr ID  ECC Reg Addr    ECC Reg Data    ECC Type    Table ID    ECC Table Index"
                            "    ECC Count\n");
        }
        char kind[24];
        cli_output_show("    %02u      %02u      0x%08x      0x%08x     %-10s     %03u       %-13u     %u\n", s, t,
                        e.ecc_reg_addr, e.ecc_reg_data, _kind_text(e, kind, sizeof(kind)), e.table_id, e.table_index,
                        m == INTR_MOD_ACL_CORE ? e.ecc_cnt2 : e.ecc_cnt);
        return SHR_E_NONE;
    });
}

// show interrupt err-debug module (WORD | all) sub-id (WORD | all) intr-id
// (WORD | all) (non-zero |): the debug registers of the types that have
// them.
i32 cli_intr_error_debug_info_get(u32 chip_id, u32, i32 argc, char **argv)
{
    intr_module sel = {};
    u32 intr_id = 0;
    const i32 rc = _select_checked(chip_id, argc, argv, &sel, &intr_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const bool non_zero = _has_word(argc, argv, 3, "non-zero");
    cli_output_show("   Module         Subid  Intr ID  Reg Addr    Reg Data    Name\n");
    return _each_type(chip_id, sel, intr_id, [&](u32 m, u32 s, u32 t) -> i32 {
        intr_debug_info info = {};
        if (interrupt_api_debug_info_get(chip_id, {m, s}, {t, 0}, &info) != SHR_E_NONE) {
            return SHR_E_NONE; // a type without debug registers
        }
        char name[64];
        _type_name(chip_id, m, s, t, name, sizeof(name));
        for (u32 i = 0; i < info.count; i++) {
            if (!non_zero || info.value[i] != 0) {
                cli_output_show("   %-13s  %02u     %02u       0x%08x  0x%08x  %s\n", g_cib_module_name[m], s, t,
                                info.addr[i], info.value[i], name);
            }
        }
        return SHR_E_NONE;
    });
}

// interrupt ecc default action (enable | disable)
i32 cli_ecc_default_action_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    return _result("interrupt_api_default_action_set",
                   interrupt_api_default_action_set(chip_id, _is(argv[0], "enable") ? 1 : 0));
}

// show interrupt ecc default action
i32 cli_ecc_default_action_get(u32 chip_id, u32, i32, char **)
{
    u32 action = 0;
    const i32 rc = interrupt_api_default_action_get(chip_id, &action);
    if (rc == SHR_E_NONE) {
        cli_output_show("ECC default action: %s\n", action == 1 ? "enable (rewrite damaged entries)" : "disable");
    }
    return _result("interrupt_api_default_action_get", rc);
}

// show interrupt stats module (WORD | all) (non-zero |) (clear |): how
// often each type was served; `clear` zeroes what was shown.
i32 cli_intr_module_stats_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    intr_module sel = {0, INTR_SUBID_ALL};
    i32 rc = _module(argv[0], &sel.module_id);
    if (rc != SHR_E_NONE || (rc = _check(chip_id, sel, INTR_ID_ALL)) != SHR_E_NONE) {
        return rc;
    }
    const bool non_zero = _has_word(argc, argv, 1, "non-zero");
    const bool clear = _has_word(argc, argv, 1, "clear");
    cli_output_show("   Module         Subid  Intr ID  Count       Name\n");
    rc = _each_type(chip_id, sel, INTR_ID_ALL, [&](u32 m, u32 s, u32 t) -> i32 {
        u32 count = 0;
        const i32 r = interrupt_api_stats_get(chip_id, {m, s}, {t, 0}, &count);
        if (r != SHR_E_NONE) {
            return _result("interrupt_api_stats_get", r);
        }
        if (!non_zero || count != 0) {
            char name[64];
            _type_name(chip_id, m, s, t, name, sizeof(name));
            cli_output_show("   %-13s  %02u     %02u       %-10u  %s\n", g_cib_module_name[m], s, t, count, name);
        }
        return SHR_E_NONE;
    });
    if (rc == SHR_E_NONE && clear) {
        rc = _result("interrupt_api_stats_clear",
                     interrupt_api_stats_clear(chip_id, sel, {INTR_ID_ALL, INTR_ADDR_ALL}));
    }
    return rc;
}

} // extern "C"

// ---- the records ---------------------------------------------------------------------------

namespace {

#define INTR_SELECT_HELP \
    "Module", "Module name or number", "All modules", "Subid", "Subid number", "All subids", "Interrupt type", \
        "Type number", "All types"
#define INTR_ADDR_HELP "Instance of the registers", "Instance number", "All instances"

const char *const k_support_help[] = {"Show", "Interrupts", "The modules with interrupts", nullptr};
const char *const k_base_help[] = {"Show", "Interrupts", "The types of a module and their registers", "Module",
                                   "Module name or number", "All modules", nullptr};
const char *const k_status_help[] = {"Show", "Interrupts", "Status and mask bits", INTR_SELECT_HELP,
                                     "Only types whose status is set", nullptr};
const char *const k_cfg_help[] = {"Interrupts", "Enable", "Disable", INTR_SELECT_HELP, INTR_ADDR_HELP, nullptr};
const char *const k_clear_help[] = {"Clear", "Interrupt status", INTR_SELECT_HELP, INTR_ADDR_HELP, nullptr};
const char *const k_ecc_help[] = {"Show", "Interrupts", "ECC errors", INTR_SELECT_HELP, INTR_ADDR_HELP,
                                  "Only types with error details", nullptr};
const char *const k_debug_help[] = {"Show", "Interrupts", "Debug registers", INTR_SELECT_HELP,
                                    "Only registers that are not zero", nullptr};
const char *const k_action_set_help[] = {"Interrupts", "ECC errors", "Default handling", "Rewrite damaged entries",
                                         "Rewrite them from the software image", "Only count and call back",
                                         nullptr};
const char *const k_action_get_help[] = {"Show", "Interrupts", "ECC errors", "Default handling",
                                         "Whether damaged entries are rewritten", nullptr};
const char *const k_stats_help[] = {"Show", "Interrupts", "How often each type was served", "Module",
                                    "Module name or number", "All modules", "Only types served at least once",
                                    "Zero the counts shown", nullptr};

#define INTR_SELECT "module (WORD | all) sub-id (WORD | all) intr-id (WORD | all)"
cli_cmd_desc g_intr_desc[] = {
    {"show interrupt support-module", -1, cli_intr_support_module_dump, k_support_help, 0},
    {"show interrupt base-info module (WORD | all)", -1, cli_intr_base_info_get, k_base_help, 0},
    {"show interrupt status " INTR_SELECT " (non-zero |)", -1, cli_intr_module_status_get, k_status_help, 0},
    {"interrupt (enable | disable) " INTR_SELECT " (multi-addr (WORD | all) |)", -1, cli_intr_cfg, k_cfg_help, 0},
    {"clear interrupt " INTR_SELECT " (multi-addr (WORD | all) |)", -1, cli_intr_clear, k_clear_help, 0},
    {"show interrupt ecc " INTR_SELECT " (multi-addr (WORD | all) |) (non-zero |)", -1, cli_ecc_module_get,
     k_ecc_help, 0},
    {"show interrupt err-debug " INTR_SELECT " (non-zero |)", -1, cli_intr_error_debug_info_get, k_debug_help, 0},
    {"interrupt ecc default action (enable | disable)", -1, cli_ecc_default_action_set, k_action_set_help, 0},
    {"show interrupt ecc default action", -1, cli_ecc_default_action_get, k_action_get_help, 0},
    {"show interrupt stats module (WORD | all) (non-zero |) (clear |)", -1, cli_intr_module_stats_get, k_stats_help,
     0},
};
#undef INTR_SELECT

constexpr u32 k_intr_commands = sizeof(g_intr_desc) / sizeof(g_intr_desc[0]);
cli_cmd_item g_intr_items[k_intr_commands];

} // namespace

extern "C" void cli_cmd_init_interrupt(void)
{
    cli_cmd_descs_link(g_intr_desc, g_intr_items, k_intr_commands, CLI_MODE_INTERRUPT);
}
