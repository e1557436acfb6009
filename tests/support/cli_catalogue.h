// A realistic command tree for tests, benchmarks and the fuzzer: every
// definition of tests/support/cli_catalogue.inc registered in its mode,
// with a help line made up for each word.
#ifndef TIDE_TEST_CLI_CATALOGUE_H
#define TIDE_TEST_CLI_CATALOGUE_H

#include <string>
#include <vector>

#include "app/diag_shell/shell/cli/cli_core.h"

namespace tide::test {

struct CatalogueCmd {
    const char *mode;
    const char *handler;
    const char *cmd;
};

inline constexpr CatalogueCmd k_catalogue[] = {
#include "tests/support/cli_catalogue.inc"
};

// One help line per word of a definition: "<word> help".
inline std::vector<std::string> help_lines(const char *cmd)
{
    std::vector<std::string> lines;
    const char *pos = cmd;
    for (;;) {
        const char *tok = nullptr;
        u32 len = 0;
        const u32 type = cli_match_type_from_str(&pos, &tok, &len);
        if (type == CLI_TK_END || type == CLI_TK_BAD) {
            return lines;
        }
        if (type == CLI_TK_RANGE || type == CLI_TK_KEYWORD || type == CLI_TK_PIPE || type == CLI_TK_REDIRECT ||
            type >= CLI_TK_LINE) {
            lines.push_back(std::string(tok, len) + " help");
        }
    }
}

// Registers one definition with made-up help lines into g_main_clitree.
inline int register_with_help(cli_cmd_handler_t handler, const char *cmd, u32 mode, u32 flags = 0,
                              i32 funcid = -1)
{
    const std::vector<std::string> lines = help_lines(cmd);
    std::vector<const char *> ptrs;
    for (const std::string &l : lines) {
        ptrs.push_back(l.c_str());
    }
    ptrs.push_back(nullptr);
    return cli_register_cmd(handler, funcid, cmd, mode, flags, CLI_PRIV_MAX, ptrs.data());
}

// Registers the whole catalogue; the number of definitions refused.
inline int register_catalogue(cli_cmd_handler_t handler)
{
    int refused = 0;
    for (const CatalogueCmd &c : k_catalogue) {
        const i32 mode = cli_mode_by_name(c.mode);
        if (mode < 0 || register_with_help(handler, c.cmd, static_cast<u32>(mode)) != 0) {
            refused++;
        }
    }
    return refused;
}

// Definitions that use every kind of word the language has.
inline constexpr const char *k_every_kind[] = {
    "test ip A.B.C.D mask A.B.C.D/M",
    "test mac XX:XX:XX:XX:XX:XX MAC",
    "test time HH:MM:SS (<0-16> | <-100-100>)",
    "test say LINE",
    "test echo .WORD",
    "test join (WORD WORD' end",
    "test opt [a | b] ?WORD",
    "test v6 X:X::X:X X:X::X:X/M AA:NN IFNAME",
    "test set {one | two WORD | three (x | y |)} done",
    "show test `",
};

// The library's vocabulary as a client sees it: the whole catalogue, the
// mode-switching words, `exit` and `chip-id` of every mode, the
// definitions of every kind in mode 0 and a pipe tree.  The number of
// definitions refused.
inline int build_realistic_tree(cli_cmd_handler_t handler)
{
    int refused = register_catalogue(handler);
    for (u32 mode = 0; mode < CLI_MODE_NAMES; mode++) {
        for (u32 target = 1; target < CLI_MODE_NAMES; target++) {
            const std::string help = std::string("(G) Access ") + g_cli_mode_array[target].name + " mode";
            const char *lines[] = {help.c_str(), nullptr};
            refused += cli_register_cmd(nullptr, -1, g_cli_mode_array[target].name, mode,
                                        CLI_FLAG_GLOBAL | CLI_FLAG_VIEW, CLI_PRIV_MAX, lines) != 0;
        }
        if (mode != 0) {
            refused += register_with_help(nullptr, "exit", mode, CLI_FLAG_VIEW) != 0;
        }
        refused += register_with_help(handler, "chip-id <0-16>", mode, CLI_FLAG_GLOBAL) != 0;
    }
    for (const char *def : k_every_kind) {
        refused += register_with_help(handler, def, 0) != 0;
    }
    refused += register_with_help(handler, "test hidden-word", 0, CLI_FLAG_HIDDEN) != 0;
    static cli_cmd_desc include = {"|| include LINE", -1, nullptr, nullptr, 0};
    static cli_cmd_desc redirect = {"> WORD", -1, nullptr, nullptr, 0};
    refused += cli_pipe_cmd_install(g_main_clitree, CLI_PRIV_MAX, 0, &include) != 0;
    refused += cli_pipe_cmd_install(g_main_clitree, CLI_PRIV_MAX, 0, &redirect) != 0;
    return refused;
}

} // namespace tide::test

#endif // TIDE_TEST_CLI_CATALOGUE_H
