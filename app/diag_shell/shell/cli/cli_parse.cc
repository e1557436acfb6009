// The parser: a line of words against the tree of a mode, word by word;
// with the parameters it collects for the handler, the completions of the
// last word and the context help.
#include <cstring>
#include <strings.h>

#include "app/diag_shell/shell/cli/cli_core.h"

namespace {

const char *_skip_space(const char *p, const char *end)
{
    while (p < end && cli_is_space(*p)) {
        p++;
    }
    return p;
}

char *_copy_text(const char *text, size_t len)
{
    auto *s = static_cast<char *>(xsal_malloc(len + 1, "cli_setarg", SHR_MOD_CLI));
    if (s != nullptr) {
        std::memcpy(s, text, len);
        s[len] = '\0';
    }
    return s;
}

bool _skipped(const cli_tree *t, const cli_node *n, u32 set_params)
{
    return n->priv > t->priv || ((n->attr & CLI_ATTR_ONCE) != 0 && cli_search_value_carrier(t->used, n) >= 0) ||
           ((n->attr & CLI_ATTR_HIDDEN) != 0 && set_params == 0);
}

const cli_node *_mode_root(const cli_tree *t, u32 mode)
{
    return mode <= CLI_MODE_PIPE ? static_cast<const cli_node *>(cli_search_carrier(t->roots, mode)) : nullptr;
}

// The node where the parse of a line ended, in the pipe's tree if the line
// passed a pipe.
const cli_node *_last_node(const cli_tree *t)
{
    return t->pipe_pos != nullptr ? t->pipe_matched : t->matched;
}

// The nodes that may stand at the end of `line`: the last word's
// candidates, or what may follow the last word when white space ends the
// line.  nullptr when the parse says nothing may.
const cli_carrier *_cli_next_words(cli_tree *t, i32 r, const cli_node **last)
{
    *last = nullptr;
    const bool complete = r == CLI_PARSE_OK || r == CLI_PARSE_INCOMPLETE;
    if (t->trailing_space != 0 && complete) {
        *last = _last_node(t);
        return (*last)->next;
    }
    if (t->trailing_space == 0 && (complete || (r == CLI_PARSE_AMBIGUOUS && t->last_word != 0))) {
        return t->candidates;
    }
    return nullptr;
}

// One listed word of the help.
struct _help_row {
    const char *word;
    const char *text;
};

bool _listed(const cli_tree *t, const cli_node *n, u32 priv)
{
    return n->type != CLI_TK_ROOT && n->priv <= priv && (n->attr & CLI_ATTR_HIDDEN) == 0 &&
           !((n->attr & CLI_ATTR_ONCE) != 0 && cli_search_value_carrier(t->used, n) >= 0);
}

// Whether an earlier node of `from` shows the same word.
bool _shown_before(const cli_carrier *from, u32 index)
{
    const auto *n = static_cast<const cli_node *>(from->items[index]);
    for (u32 i = 0; i < index; i++) {
        const auto *m = static_cast<const cli_node *>(from->items[i]);
        if (m->type == n->type && std::strcmp(m->str, n->str) == 0) {
            return true;
        }
    }
    return false;
}

void _print_row(const _help_row &row, int pad, u32 width)
{
    const u32 used = static_cast<u32>(pad) + 6;
    const size_t room = width > used ? width - used : 0;
    const char *text = row.text != nullptr ? row.text : "";
    const char *word = row.word;
    do {
        size_t len = std::strlen(text);
        if (room > 0 && len > room) {
            // Fold at the last blank that keeps the line within the width,
            // or at the first blank if a single word is too long.
            size_t cut = room;
            while (cut > 0 && text[cut] != ' ') {
                cut--;
            }
            if (cut == 0) {
                const char *blank = std::strchr(text, ' ');
                cut = blank != nullptr ? static_cast<size_t>(blank - text) : len;
            }
            len = cut;
        }
        cli_printf("  %-*s  %.*s\r\n", pad, word, static_cast<int>(len), text);
        text += len;
        while (*text == ' ') {
            text++;
        }
        word = "";
    } while (*text != '\0');
}

void _print_help_list(const cli_tree *t, const cli_carrier *from, u32 priv, const cli_node *last, u32 width)
{
    const u32 n = from != nullptr ? from->count : 0;
    int pad = 1;
    for (u32 i = 0; i < n; i++) {
        const auto *node = static_cast<const cli_node *>(from->items[i]);
        if (_listed(t, node, priv)) {
            const int len = static_cast<int>(std::strlen(node->str));
            pad = len > pad ? len : pad;
        }
    }
    for (u32 i = 0; i < n; i++) {
        const auto *node = static_cast<const cli_node *>(from->items[i]);
        if (_listed(t, node, priv) && !_shown_before(from, i)) {
            _print_row({node->str, node->desc_str}, pad, width);
        }
    }
    if (last != nullptr && (last->attr & CLI_ATTR_PIPE) != 0) {
        _print_row({"|", "Output modifiers"}, pad, width);
        _print_row({">", "Output redirection"}, pad, width);
    }
    if (last != nullptr && last->cmd != nullptr) {
        cli_printf("  <cr>\r\n");
    }
}

// The keywords among `from` that the operator may type, each once; freed
// by xsal_mem_free.  nullptr for none.
const char **_keyword_list(const cli_tree *t, const cli_carrier *from, u32 priv)
{
    if (from == nullptr || from->count == 0) {
        return nullptr;
    }
    auto **out = static_cast<const char **>(xsal_malloc((from->count + 1) * sizeof(char *), "cli", SHR_MOD_CLI));
    if (out == nullptr) {
        return nullptr;
    }
    u32 n = 0;
    for (u32 i = 0; i < from->count; i++) {
        const auto *node = static_cast<const cli_node *>(from->items[i]);
        if (node->type == CLI_TK_KEYWORD && _listed(t, node, priv) && !_shown_before(from, i)) {
            out[n++] = node->str;
        }
    }
    out[n] = nullptr;
    if (n == 0) {
        xsal_mem_free(out);
        return nullptr;
    }
    return out;
}

} // namespace

extern "C" {

// The first pipe or redirect character outside double quotes; a backslash
// escapes the character behind it.  nullptr for none.
const char *cli_parsepipe(const char *p, const char *end)
{
    bool quoted = false;
    for (; p < end; p++) {
        if (*p == '\\' && p + 1 < end) {
            p++;
        } else if (*p == '"') {
            quoted = !quoted;
        } else if (!quoted && (*p == '|' || *p == '>')) {
            return p;
        }
    }
    return nullptr;
}

// Stores the word that matched `node` as a parameter, if it is one.
i32 cli_setparameters(cli_tree *t, u32 pipe, const cli_node *node, u32 grade, const char *p, const char *word_end)
{
    if (grade == CLI_GRADE_PARTIAL) {
        return CLI_PARSE_NO_MATCH;
    }
    const char *text = nullptr;
    size_t len = 0;
    if (node->type == CLI_TK_KEYWORD) {
        // Keywords of groups are parameters, in their defined spelling.
        if ((node->attr & (CLI_ATTR_GROUP | CLI_ATTR_JOINED)) == 0) {
            return CLI_PARSE_OK;
        }
        text = node->str;
        len = std::strlen(text);
    } else if (grade >= CLI_GRADE_LINE && grade <= CLI_GRADE_MAC) {
        text = p;
        len = static_cast<size_t>(word_end - p);
    } else {
        return CLI_PARSE_OK;
    }
    if (len > CLI_MAX_WORD) {
        return CLI_PARSE_BAD_ARG;
    }
    i32 &argc = pipe != 0 ? t->pipe_argc : t->argc;
    char **argv = pipe != 0 ? t->pipe_argv : t->argv;
    if ((node->attr & CLI_ATTR_JOINED) != 0 && argc > 0) {
        const size_t old = std::strlen(argv[argc - 1]);
        char *joined = static_cast<char *>(xsal_malloc(old + 1 + len + 1, "cli_setarg", SHR_MOD_CLI));
        if (joined == nullptr) {
            return CLI_PARSE_BAD_ARG;
        }
        std::memcpy(joined, argv[argc - 1], old);
        joined[old] = ' ';
        std::memcpy(joined + old + 1, text, len);
        joined[old + 1 + len] = '\0';
        xsal_mem_free(argv[argc - 1]);
        argv[argc - 1] = joined;
        t->last_joined = joined;
        return CLI_PARSE_OK;
    }
    if (argc >= CLI_MAX_ARGS) {
        return CLI_PARSE_NO_MATCH;
    }
    char *copy = _copy_text(text, len);
    if (copy == nullptr) {
        return CLI_PARSE_BAD_ARG;
    }
    argv[argc++] = copy;
    return CLI_PARSE_OK;
}

// Matches the words of [p, end) from the successors of `node` on.
i32 cli_parse_cmdstr(cli_tree *t, const cli_node *node, const char *p, const char *end, u32 set_params, u32 pipe)
{
    for (;;) {
        p = _skip_space(p, end);
        const cli_carrier *next = node->next;
        if (next == nullptr || next->count == 0) {
            return CLI_PARSE_NO_MATCH;
        }
        if (set_params == 0) {
            t->candidates->count = 0;
        }
        cli_node *best = nullptr;
        u32 best_grade = CLI_GRADE_NONE;
        u32 best_count = 0;
        const char *best_end = p;
        for (u32 i = 0; i < next->count; i++) {
            auto *n = static_cast<cli_node *>(next->items[i]);
            if (_skipped(t, n, set_params)) {
                continue;
            }
            const char *word_end = p;
            const char *reach = p;
            const u32 grade = cli_matchNode(n)(n, p, end, &word_end, &reach);
            if ((n->attr & CLI_ATTR_HIDDEN) == 0 && reach > t->error_pos) {
                t->error_pos = reach;
            }
            if (grade == CLI_GRADE_NONE) {
                continue;
            }
            if (set_params == 0 && cli_set_carrier(t->candidates, n) != 0) {
                return CLI_PARSE_BAD_ARG;
            }
            if (grade > best_grade) {
                best = n;
                best_grade = grade;
                best_count = 1;
                best_end = word_end;
            } else if (grade == best_grade) {
                best_count++;
            }
        }
        if (best == nullptr) {
            return CLI_PARSE_NO_MATCH;
        }
        if (set_params != 0) {
            const i32 r = cli_setparameters(t, pipe, best, best_grade, p, best_end);
            if (r != CLI_PARSE_OK) {
                return r;
            }
        }
        const char *after = _skip_space(best_end, end);
        const bool space = after > best_end;
        t->last_word = after == end;
        t->trailing_space = space ? 1 : 0;
        if (best_grade == CLI_GRADE_PARTIAL && space) {
            return CLI_PARSE_NO_MATCH;
        }
        if (best_count != 1) {
            return CLI_PARSE_AMBIGUOUS;
        }
        if ((best->attr & CLI_ATTR_PIPE) != 0) {
            t->pipe_allowed = 1;
        }
        if ((best->attr & CLI_ATTR_ONCE) != 0 && space && cli_set_carrier(t->used, best) != 0) {
            return CLI_PARSE_BAD_ARG;
        }
        if (after < end) {
            node = best;
            p = after;
            continue;
        }
        if (pipe != 0) {
            t->pipe_matched = best;
        } else {
            t->matched = best;
        }
        return best->cmd != nullptr && best_grade != CLI_GRADE_PARTIAL ? CLI_PARSE_OK : CLI_PARSE_INCOMPLETE;
    }
}

void cli_free_params(cli_tree *root)
{
    if (root == nullptr) {
        return;
    }
    for (i32 i = 0; i < root->argc; i++) {
        xsal_mem_free(root->argv[i]);
        root->argv[i] = nullptr;
    }
    for (i32 i = 0; i < root->pipe_argc; i++) {
        xsal_mem_free(root->pipe_argv[i]);
        root->pipe_argv[i] = nullptr;
    }
    root->argc = 0;
    root->pipe_argc = 0;
    root->last_joined = nullptr;
}

i32 cli_cmdstr_parse(cli_tree *root, u32 mode, u32 priv, const char *line, u32 set_params)
{
    if (root == nullptr || line == nullptr) {
        return CLI_PARSE_BAD_ARG;
    }
    const cli_node *top = mode <= CLI_MODE_MAX ? _mode_root(root, mode) : nullptr;
    if (top == nullptr) {
        return CLI_PARSE_NO_MODE;
    }
    root->priv = static_cast<u8>(priv);
    root->matched = nullptr;
    root->pipe_matched = nullptr;
    root->pipe_allowed = 0;
    root->pipe_pos = nullptr;
    root->trailing_space = 0;
    root->last_word = 0;
    root->used->count = 0;
    root->candidates->count = 0;
    root->error_pos = line;
    cli_free_params(root);

    const char *end = line + std::strlen(line);
    const char *p = _skip_space(line, end);
    if (p == end || *p == '!' || *p == '#') {
        return CLI_PARSE_EMPTY;
    }
    const char *pipe = *p == 's' || *p == 'S' ? cli_parsepipe(p, end) : nullptr;
    if (pipe == nullptr) {
        return cli_parse_cmdstr(root, top, p, end, set_params, 0);
    }
    // A pipe: the part before it must be a complete command that allows
    // one; the part behind it is parsed in the pipe's tree.
    root->pipe_pos = pipe;
    const i32 r = cli_parse_cmdstr(root, top, p, pipe, set_params, 0);
    if (r == CLI_PARSE_INCOMPLETE) {
        return CLI_PARSE_INCOMPLETE_PIPE;
    }
    if (r != CLI_PARSE_OK) {
        return r;
    }
    const cli_node *pipe_top = _mode_root(root, CLI_MODE_PIPE);
    if (root->pipe_allowed == 0 || pipe_top == nullptr) {
        return CLI_PARSE_NO_MATCH;
    }
    root->trailing_space = 0;
    return cli_parse_cmdstr(root, pipe_top, pipe, end, set_params, 1);
}

const char **cli_cmdstr_complete(cli_tree *root, u32 mode, u32 priv, const char *line)
{
    const i32 r = cli_cmdstr_parse(root, mode, priv, line, 0);
    if (r == CLI_PARSE_NO_MODE || r == CLI_PARSE_BAD_ARG || r == CLI_PARSE_EMPTY) {
        return nullptr;
    }
    const cli_node *last = nullptr;
    return _keyword_list(root, _cli_next_words(root, r, &last), priv);
}

const char **cli_cmdstr_ambiguous(cli_tree *root, u32 mode, u32 priv, const char *line)
{
    const i32 r = cli_cmdstr_parse(root, mode, priv, line, 0);
    return r == CLI_PARSE_AMBIGUOUS ? _keyword_list(root, root->candidates, priv) : nullptr;
}

void cli_cmdstr_describe(cli_tree *root, u32 mode, u32 priv, const char *line, u32 width)
{
    cli_printf("?\r\n");
    if (root == nullptr || line == nullptr) {
        return;
    }
    const char *end = line + std::strlen(line);
    if (_skip_space(line, end) == end) {
        const cli_node *top = mode <= CLI_MODE_MAX ? _mode_root(root, mode) : nullptr;
        if (top == nullptr) {
            cli_printf("Unrecognized command\r\n");
            return;
        }
        root->used->count = 0;
        _print_help_list(root, top->next, priv, nullptr, width);
        return;
    }
    const i32 r = cli_cmdstr_parse(root, mode, priv, line, 0);
    const cli_node *last = nullptr;
    const cli_carrier *from = _cli_next_words(root, r, &last);
    if (from != nullptr) {
        _print_help_list(root, from, priv, last, width);
    } else if (r == CLI_PARSE_INCOMPLETE_PIPE) {
        cli_printf("Incomplete command before pipe.\r\n");
    } else if (r == CLI_PARSE_AMBIGUOUS) {
        cli_printf("Ambiguous command:  \"%s\"\r\n", line);
    } else if (r != CLI_PARSE_EMPTY) {
        cli_printf("Unrecognized command\r\n");
    }
}

} // extern "C"
