// Fuzzer of the parser: random lines against the library's whole
// vocabulary, for parsing, completion, help and running.
//
// Input: one control byte, then the line.  The control byte picks the
// mode and what is done with the line.
#include <cstdint>
#include <cstring>
#include <string>

#include "tests/support/cli_catalogue.h"

namespace {

void _sink(const char *text, size_t len)
{
    // Everything printed is a complete C string of the length given.
    if (std::strlen(text) != len) {
        __builtin_trap();
    }
}

i32 _handler(u32, u32, i32 argc, char **argv)
{
    if (argc < 0 || argc > CLI_MAX_ARGS) {
        __builtin_trap();
    }
    for (i32 i = 0; i < argc; i++) {
        if (argv[i] == nullptr || std::strlen(argv[i]) > CLI_MAX_WORD) {
            __builtin_trap();
        }
    }
    return argc % 2;
}

bool _build()
{
    cli_print_func_set(_sink);
    if (cli_ctree_init() != 0 || tide::test::build_realistic_tree(_handler) != 0 || cli_ctree_create() != 0) {
        __builtin_trap();
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool built = _build();
    (void)built;
    if (size < 1) {
        return 0;
    }
    const u8 ctl = data[0];
    const std::string line(reinterpret_cast<const char *>(data + 1), size - 1);
    const u32 mode = ctl % CLI_MODE_NAMES;
    cli_tree *t = g_clitree;
    switch (ctl >> 6) {
    case 0: {
        const i32 r = cli_cmdstr_parse(t, mode, CLI_PRIV_MAX, line.c_str(), 1);
        if (r < 0 || r > CLI_PARSE_BAD_ARG || (r == CLI_PARSE_OK && t->pipe_pos == nullptr && t->matched->cmd == nullptr)) {
            __builtin_trap();
        }
        cli_free_params(t);
        break;
    }
    case 1: {
        const char **words = cli_cmdstr_complete(t, mode, CLI_PRIV_MAX, line.c_str());
        for (u32 i = 0; words != nullptr && words[i] != nullptr; i++) {
            if (words[i][0] == '\0') {
                __builtin_trap();
            }
        }
        xsal_mem_free(words);
        break;
    }
    case 2:
        cli_cmdstr_describe(t, mode, CLI_PRIV_MAX, line.c_str(), 8 + ctl % 100);
        break;
    default: {
        char out[512];
        t->mode = mode;
        cli_command_parse(0, line.c_str(), out, sizeof(out));
        if (strnlen(out, sizeof(out)) == sizeof(out)) {
            __builtin_trap();
        }
        break;
    }
    }
    return 0;
}
