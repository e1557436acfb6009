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

} // namespace tide::test

#endif // TIDE_TEST_CLI_CATALOGUE_H
