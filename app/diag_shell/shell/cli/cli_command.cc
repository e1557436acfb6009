// Running a command line: the parse, the call of the handler (or of a
// client's remote hook), the messages of failures, help requests, and the
// output sink with the capture buffer of the running line.
#include <cstdio>
#include <cstring>
#include <strings.h>

#include "app/diag_shell/shell/cli/cli_core.h"

namespace {

u32 g_fdebug;
cli_print_func_t g_cli_print_func;

bool _capturing()
{
    return g_clitree != nullptr && g_clitree->out_buf != nullptr && g_clitree->out_size > 0;
}

// A working copy of the line: trailing white space cut, and a trailing
// "?" cut and noted as a request for help.  Room is left for one more
// character.
struct _line {
    char *text = nullptr;
    size_t len = 0;
    bool help = false;

    explicit _line(const char *line)
    {
        const size_t n = std::strlen(line);
        text = static_cast<char *>(xsal_malloc(n + 2, "cli", SHR_MOD_CLI));
        if (text == nullptr) {
            return;
        }
        std::memcpy(text, line, n + 1);
        len = n;
        help = cli_cmdstr_preprocessing(text, &len) != 0;
    }
    ~_line() { xsal_mem_free(text); }
    _line(const _line &) = delete;
    _line &operator=(const _line &) = delete;

    bool blank() const
    {
        for (size_t i = 0; i < len; i++) {
            if (!cli_is_space(text[i])) {
                return false;
            }
        }
        return true;
    }
    bool ends_in_space() const { return len > 0 && cli_is_space(text[len - 1]); }
    // The last word, which the help request concerns.
    const char *last_word() const
    {
        size_t i = len;
        while (i > 0 && !cli_is_space(text[i - 1])) {
            i--;
        }
        return text + i;
    }
};

// "Ambiguous command: " with the keywords that could stand at the end of
// the line; false if there are none.
bool _print_candidates(const char *const *words)
{
    if (words == nullptr) {
        return false;
    }
    cli_printf("Ambiguous command: ");
    for (u32 i = 0; words[i] != nullptr; i++) {
        cli_printf("%s ", words[i]);
    }
    cli_printf("\r\n");
    return true;
}

bool _has_word(const char *const *words, const char *word)
{
    for (u32 i = 0; words != nullptr && words[i] != nullptr; i++) {
        if (strcasecmp(words[i], word) == 0) {
            return true;
        }
    }
    return false;
}

// A line that ended in "?": help for what may stand there; nothing runs.
void _cli_help(cli_tree *t, _line &line)
{
    if (line.blank() || line.ends_in_space()) {
        cli_cmdstr_describe(t, t->mode, CLI_PRIV_MAX, line.text, CLI_HELP_WIDTH);
        return;
    }
    const char **words = cli_cmdstr_complete(t, t->mode, CLI_PRIV_MAX, line.text);
    if (_has_word(words, line.last_word())) {
        // The word is complete: help for the next one.
        line.text[line.len++] = ' ';
        line.text[line.len] = '\0';
        cli_cmdstr_describe(t, t->mode, CLI_PRIV_MAX, line.text, CLI_HELP_WIDTH);
    } else if (!_print_candidates(words)) {
        cli_cmdstr_describe(t, t->mode, CLI_PRIV_MAX, line.text, CLI_HELP_WIDTH);
    }
    xsal_mem_free(words);
}

// Calls the command that the parse found.
i32 _cli_run(cli_tree *t, u32 chip_id)
{
    const cli_cmd_desc *desc = t->matched->cmd;
    i32 r = 0;
    if (_legacy_cmd.check != nullptr && _legacy_cmd.execute != nullptr &&
        _legacy_cmd.check(_legacy_cmd.context, desc->funcid) != 0) {
        r = _legacy_cmd.execute(_legacy_cmd.context, desc->funcid, t->mode, t->argc, t->argv);
    } else if (desc->handler != nullptr) {
        r = desc->handler(chip_id, t->mode, t->argc, t->argv);
    } else {
        r = 1;
        cli_printf("Command execute(errcode=%d)\r\n", r);
        return r;
    }
    // The handler may have freed the tree: `t` is not used from here on.
    if (r == 0) {
        if (cli_debug_on_off(0, 0) == 0) {
            cli_printf("return OK\r\n");
        }
    } else {
        cli_printf("Command execute(errcode=%d)\r\n", static_cast<int>(r));
    }
    return r;
}

} // namespace

extern "C" {

void cli_print_func_set(cli_print_func_t func)
{
    g_cli_print_func = func;
}

i32 cli_capture_append(const char *text, size_t len)
{
    if (!_capturing()) {
        return 0;
    }
    cli_tree *t = g_clitree;
    const size_t size = static_cast<size_t>(t->out_size);
    const size_t used = strnlen(t->out_buf, size);
    if (used + len < size) {
        std::memcpy(t->out_buf + used, text, len);
        t->out_buf[used + len] = '\0';
    }
    return 1;
}

i32 cli_vprintf(const char *format, va_list args)
{
    // The capture buffer of the running line takes the text first; else the
    // sink, or the console.
    if (g_cli_print_func == nullptr && !_capturing()) {
        return xsal_vprintf(format, args);
    }
    char small[512];
    va_list copy;
    va_copy(copy, args);
    const int n = std::vsnprintf(small, sizeof(small), format, copy);
    va_end(copy);
    if (n < 0) {
        return -1;
    }
    char *text = small;
    if (static_cast<size_t>(n) >= sizeof(small)) {
        text = static_cast<char *>(xsal_malloc(static_cast<u64>(n) + 1, "cli", SHR_MOD_CLI));
        if (text == nullptr) {
            return -1;
        }
        std::vsnprintf(text, static_cast<size_t>(n) + 1, format, args);
    }
    if (cli_capture_append(text, static_cast<size_t>(n)) == 0) {
        g_cli_print_func(text, static_cast<size_t>(n));
    }
    if (text != small) {
        xsal_mem_free(text);
    }
    return n;
}

i32 cli_printf(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const i32 n = cli_vprintf(format, args);
    va_end(args);
    return n;
}

u32 cli_debug_on_off(i32 op, u32 value)
{
    if (op == 1) {
        g_fdebug = value;
    }
    return g_fdebug;
}

u32 cli_cmdstr_preprocessing(char *line, size_t *len)
{
    size_t n = *len;
    while (n > 0 && cli_is_space(line[n - 1])) {
        n--;
    }
    const u32 help = n > 0 && line[n - 1] == '?' ? 1 : 0;
    n -= help;
    line[n] = '\0';
    *len = n;
    return help;
}

i32 cli_command_parse(u32 chip_id, const char *line, char *buf, i32 size)
{
    if (line == nullptr || (g_clitree == nullptr && cli_ctree_create() != 0)) {
        return -1;
    }
    cli_tree *t = g_clitree;
    const bool capture = buf != nullptr && size > 0;
    t->out_buf = capture ? buf : nullptr;
    t->out_size = capture ? size : 0;
    if (capture) {
        buf[0] = '\0';
    }
    _line work(line);
    i32 result = 0;
    bool failed = false;
    if (work.text == nullptr) {
        result = -1;
        failed = true;
    } else if (work.help) {
        _cli_help(t, work);
    } else {
        const i32 r = cli_cmdstr_parse(t, t->mode, CLI_PRIV_MAX, work.text, 1);
        if (r == CLI_PARSE_OK) {
            result = _cli_run(t, chip_id);
            failed = result != 0;
        } else if (r != CLI_PARSE_EMPTY) {
            // An incomplete line names the keywords that could end it; an
            // ambiguous one those of the word that could be several.
            const char **words = nullptr;
            if (r == CLI_PARSE_AMBIGUOUS) {
                words = cli_cmdstr_ambiguous(t, t->mode, CLI_PRIV_MAX, work.text);
            } else if (r == CLI_PARSE_INCOMPLETE || r == CLI_PARSE_INCOMPLETE_PIPE) {
                words = cli_cmdstr_complete(t, t->mode, CLI_PRIV_MAX, work.text);
            }
            if (!_print_candidates(words)) {
                cli_printf("Unrecognized command\r\n");
            }
            xsal_mem_free(words);
            result = -1;
            failed = true;
        }
    }
    if (failed && !capture) {
        cli_printf("return FAIL\r\n");
    }
    // A handler that ended the shell has freed the tree.
    t = g_clitree;
    if (t != nullptr) {
        cli_free_params(t);
        t->out_buf = nullptr;
        t->out_size = 0;
    }
    return result;
}

i32 cli_diagshell_exit(u32 chip_id)
{
    cli_tree *t = g_clitree != nullptr ? g_clitree : g_main_clitree;
    if (t == nullptr) {
        return 0;
    }
    if (t->out_buf != nullptr) {
        cli_ctree_free();
    } else if (t->exit_hook != nullptr) {
        const cli_exit_hook_t hook = t->exit_hook;
        cli_command_parse(chip_id, "terminal monitor disable", nullptr, 0);
        hook(chip_id);
    }
    return 0;
}

} // extern "C"
