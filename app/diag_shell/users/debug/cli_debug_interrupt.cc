// Mode `debug`, the interrupt commands: a callback for every interrupt
// type, to watch the engine serve them, and the raise of the interrupt
// engine's test door.
#include <tide/interrupt.h>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "dpl/reef/interrupt/dpl_reef_interrupt.h"

namespace {

// The callback of the debug shell: a line in the log for each interrupt
// served.
void _cli_intr_debug_callback(u32 chip_id, intr_module module, intr_type type)
{
    SHR_LOG_INF(chip_id, SHR_MOD_INTR, "interrupt served: module %u subid %u type %u instance %u\n", module.module_id,
                module.subid, type.intr_id, type.addr_idx);
}

i32 _register_one(u32 chip_id, bool on, u32 m, u32 s, u32 t)
{
    return on ? interrupt_api_callback_register(chip_id, {m, s}, {t, 0}, _cli_intr_debug_callback)
              : interrupt_api_callback_unregister(chip_id, {m, s}, {t, 0});
}

} // namespace

extern "C" {

// interrupt (register | unregister) callback (all | module WORD sub-id WORD
// intr-id WORD)
i32 cli_intr_callback_register(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        cli_output_show("parameter number is incorrect. \n");
        return SHR_E_PARAM;
    }
    const bool on = xsal_strcmp(argv[0], "register") == 0;
    const char *call = on ? "interrupt_api_callback_register" : "interrupt_api_callback_unregister";
    if (xsal_strcmp(argv[1], "all") != 0) {
        u32 m = 0, s = 0, t = 0;
        // argv: register, module, M, sub-id, S, intr-id, T
        if (argc < 7 || cli_get_uint32_param(argv[2], &m) != SHR_E_NONE ||
            cli_get_uint32_param(argv[4], &s) != SHR_E_NONE || cli_get_uint32_param(argv[6], &t) != SHR_E_NONE) {
            cli_output_show("parameter number is incorrect. \n");
            return SHR_E_PARAM;
        }
        const i32 rc = _register_one(chip_id, on, m, s, t);
        return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
    }
    u32 done = 0;
    for (u32 m = 0; m < INTR_MODULE_COUNT; m++) {
        u32 subids = 0;
        i32 rc = interrupt_api_subid_types_get(chip_id, m, &subids);
        if (rc != SHR_E_NONE) {
            return cli_call_failed("interrupt_api_subid_types_get", rc);
        }
        for (u32 s = 0; s < subids; s++) {
            u32 types = 0;
            rc = interrupt_api_onesubid_types_get(chip_id, m, s, &types);
            for (u32 t = 0; rc == SHR_E_NONE && t < types; t++, done++) {
                rc = _register_one(chip_id, on, m, s, t);
            }
            if (rc != SHR_E_NONE) {
                return cli_call_failed(call, rc);
            }
        }
    }
    cli_output_show("%s the debug callback of %u interrupt types\n", on ? "registered" : "unregistered", done);
    return SHR_E_NONE;
}

// interrupt sim-mode raise-once
i32 cli_intr_raise_once(u32 chip_id, u32, i32, char **)
{
    const i32 rc = dpl_reef_interrupt_raise(chip_id);
    return rc == SHR_E_NONE ? rc : cli_call_failed("dpl_reef_interrupt_raise", rc);
}

} // extern "C"

namespace {

const char *const k_callback_help[] = {"Interrupts",
                                       "Register the debug callback",
                                       "Unregister the debug callback",
                                       "Callback that logs every interrupt served",
                                       "Every type of every module",
                                       "Module",
                                       "Module number",
                                       "Subid",
                                       "Subid number",
                                       "Interrupt type",
                                       "Type number",
                                       nullptr};
const char *const k_raise_help[] = {"Interrupts", "The engine's test door", "Raise once", nullptr};

cli_cmd_desc g_debug_intr_desc[] = {
    {"interrupt (register | unregister) callback (all | module WORD sub-id WORD intr-id WORD)", -1,
     cli_intr_callback_register, k_callback_help, 0},
    {"interrupt sim-mode raise-once", -1, cli_intr_raise_once, k_raise_help, 0},
};

constexpr u32 k_debug_intr_commands = sizeof(g_debug_intr_desc) / sizeof(g_debug_intr_desc[0]);
cli_cmd_item g_debug_intr_items[k_debug_intr_commands];

} // namespace

extern "C" void cli_cmd_init_debug_interrupt(void)
{
    cli_cmd_descs_link(g_debug_intr_desc, g_debug_intr_items, k_debug_intr_commands, CLI_MODE_DEBUG);
}
