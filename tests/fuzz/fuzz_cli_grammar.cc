// Fuzzer of the definition compiler: a random definition compiled into a
// tree of its own, then random lines against it.
//
// Input: the definition, a newline, then lines separated by newlines.
#include <cstdint>
#include <cstring>
#include <string>

#include "app/diag_shell/shell/cli/cli_core.h"

namespace {

void _sink(const char *, size_t) {}

i32 _handler(u32, u32, i32, char **)
{
    return 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string input(reinterpret_cast<const char *>(data), size);
    const size_t nl = input.find('\n');
    const std::string def = input.substr(0, nl);
    cli_print_func_set(_sink);
    if (cli_ctree_init() != 0) {
        __builtin_trap();
    }
    // Every token of the definition lies inside it.
    const char *pos = def.c_str();
    for (;;) {
        const char *tok = nullptr;
        u32 len = 0;
        const u32 type = cli_match_type_from_str(&pos, &tok, &len);
        if (tok < def.c_str() || tok + len > def.c_str() + def.size() || type > CLI_TK_END) {
            __builtin_trap();
        }
        if (type == CLI_TK_END || type == CLI_TK_BAD) {
            break;
        }
    }
    const char *help[] = {"a", "b", "c", nullptr};
    cli_register_cmd(_handler, -1, def.c_str(), 3, 0, CLI_PRIV_MAX, help);
    cli_register_cmd(_handler, -1, def.c_str(), 4, CLI_FLAG_HIDDEN, CLI_PRIV_MAX, nullptr);
    size_t start = nl == std::string::npos ? input.size() : nl + 1;
    while (start < input.size()) {
        size_t end = input.find('\n', start);
        end = end == std::string::npos ? input.size() : end;
        const std::string line = input.substr(start, end - start);
        cli_tree *t = g_main_clitree;
        for (u32 mode : {3u, 4u}) {
            cli_cmdstr_parse(t, mode, CLI_PRIV_MAX, line.c_str(), 1);
            cli_free_params(t);
            xsal_mem_free(cli_cmdstr_complete(t, mode, CLI_PRIV_MAX, line.c_str()));
            cli_cmdstr_describe(t, mode, CLI_PRIV_MAX, line.c_str(), 40);
        }
        start = end + 1;
    }
    cli_ctree_free();
    return 0;
}
