// The per-mode word tree: its root record, the compiler of definition
// strings into shared word nodes, the installation of command records,
// the modes and the prompt.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "app/diag_shell/shell/cli/cli_core.h"

extern "C" {

cli_tree *g_main_clitree;
cli_tree *g_clitree;
cli_list_link cli_cmd_init_list;
char g_strPrompt[CLI_PROMPT_SIZE];
cli_legacy_cmd _legacy_cmd;

#define CLI_MODE_ROW(name, number) {name, number},
const cli_mode_row g_cli_mode_array[CLI_MODE_NAMES] = {CLI_MODE_LIST(CLI_MODE_ROW)};
#undef CLI_MODE_ROW

} // extern "C"

// Groups nest at most this deep in one definition.
constexpr u32 k_cli_max_depth = 32;

// An open group of the definition being compiled.
struct cli_group_frame {
    cli_carrier *entry;   // current set when the group opened
    cli_carrier *starts;  // words that can come first in the group
    cli_carrier *members; // every word of the group
};

struct cli_build_ctx {
    cli_tree *root;
    cli_cmd_desc *desc;
    u16 priv;
    u32 flags;
    const char *pos;
    u32 help_index;
    u32 help_count;
    bool repeat_next;
    bool once_next;
    u32 depth;
    cli_group_frame frames[k_cli_max_depth];
};

namespace {

// Carriers of the tree start with this many slots.
constexpr u32 k_carrier_start = 8;
// A carrier that frees itself.
struct _carrier_ref {
    cli_carrier *c;
    explicit _carrier_ref(cli_carrier *carrier) : c(carrier) {}
    ~_carrier_ref() { cli_free_carrier(c); }
    _carrier_ref(const _carrier_ref &) = delete;
    _carrier_ref &operator=(const _carrier_ref &) = delete;
};

bool _contains(const cli_carrier *c, const void *item)
{
    return cli_search_value_carrier(c, item) >= 0;
}

i32 _add_unique(cli_carrier *c, void *item)
{
    return _contains(c, item) ? 0 : cli_set_carrier(c, item);
}

// Replaces the contents of `dst` by those of `src`.
i32 _assign(cli_carrier *dst, const cli_carrier *src)
{
    dst->count = 0;
    return cli_add_carrier(dst, src);
}

cli_carrier *_copy(const cli_carrier *src)
{
    cli_carrier *c = cli_init_carrier(src->count);
    if (c != nullptr && cli_add_carrier(c, src) != 0) {
        cli_free_carrier(c);
        return nullptr;
    }
    return c;
}

cli_node *_node_new(u32 type, const char *str, u32 len)
{
    auto *node = static_cast<cli_node *>(cli_node_malloc(sizeof(cli_node) + len + 1, 0));
    if (node == nullptr) {
        return nullptr;
    }
    node->next = cli_init_carrier(k_carrier_start);
    if (node->next == nullptr) {
        return nullptr; // the block stays on the node list and is freed with the tree
    }
    auto *text = reinterpret_cast<char *>(node + 1);
    std::memcpy(text, str, len);
    text[len] = '\0';
    node->type = type;
    node->str = text;
    return node;
}

void _report(const cli_build_ctx &ctx, const char *fmt, const cli_node *node)
{
    cli_printf("\r\ncli register wrong:[%s]\n", ctx.desc->cmd);
    cli_printf(fmt, node->str);
}

// The words of the current set, joined by blanks.
char *_parent_string(const cli_carrier *cur)
{
    size_t len = 1;
    for (u32 i = 0; i < cur->count; i++) {
        len += std::strlen(static_cast<cli_node *>(cur->items[i])->str) + 1;
    }
    auto *s = static_cast<char *>(xsal_malloc(len, "cli_pvalid", SHR_MOD_CLI));
    if (s == nullptr) {
        return nullptr;
    }
    s[0] = '\0';
    for (u32 i = 0; i < cur->count; i++) {
        if (i > 0) {
            std::strcat(s, " ");
        }
        std::strcat(s, static_cast<cli_node *>(cur->items[i])->str);
    }
    return s;
}

// Places one word behind the current set: a node of the same type and
// text among the successors is shared, else a new node is made.
cli_node *_build_word(cli_build_ctx &ctx, cli_carrier *cur, u32 type, const char *str, u32 len)
{
    const bool grouped = ctx.depth > 0;
    const bool hidden = (ctx.flags & CLI_FLAG_HIDDEN) != 0;
    const bool no_plus = (ctx.flags & CLI_FLAG_NO_PLUS) != 0;
    char *parents = cur->count > 1 ? _parent_string(cur) : nullptr;
    if (cur->count > 1 && parents == nullptr) {
        return nullptr;
    }
    cli_node *node = cli_search_SametypeAndStr_node(cur, type, str, len);
    if (node == nullptr) {
        node = _node_new(type, str, len);
        if (node == nullptr) {
            xsal_mem_free(parents);
            return nullptr;
        }
        node->desc_str = ctx.help_index < ctx.help_count ? ctx.desc->help[ctx.help_index] : nullptr;
        node->priv = ctx.priv;
        node->attr = static_cast<u16>((grouped ? CLI_ATTR_GROUP : 0) | (hidden ? CLI_ATTR_HIDDEN : 0) |
                                      (no_plus ? CLI_ATTR_NO_PLUS : 0));
        if (type == CLI_TK_RANGE) {
            cli_set_range_value(str, len, &node->range_min, &node->range_max);
        }
        node->parent_str = parents;
    } else {
        if (((node->attr & CLI_ATTR_GROUP) != 0) != grouped) {
            _report(ctx, "[%s] already exists with different symbol\r\n\r\n", node);
        }
        if (parents != nullptr && (node->parent_str == nullptr || std::strcmp(parents, node->parent_str) != 0)) {
            _report(ctx, "[%s] add with different parent nodes\r\n\r\n", node);
        }
        xsal_mem_free(parents);
        if (ctx.priv < node->priv) {
            node->priv = ctx.priv;
        }
        // A word stays visible, and its range takes a plus sign, if any
        // command through it says so.
        if (!hidden) {
            node->attr &= static_cast<u16>(~CLI_ATTR_HIDDEN);
        }
        if (!no_plus) {
            node->attr &= static_cast<u16>(~CLI_ATTR_NO_PLUS);
        }
    }
    for (u32 i = 0; i < cur->count; i++) {
        if (_add_unique(static_cast<cli_node *>(cur->items[i])->next, node) != 0) {
            return nullptr;
        }
    }
    node->refcnt++;
    ctx.help_index++;
    if (ctx.repeat_next && _add_unique(node->next, node) != 0) {
        return nullptr;
    }
    if (ctx.once_next) {
        node->attr |= CLI_ATTR_ONCE;
    }
    ctx.repeat_next = false;
    ctx.once_next = false;
    // Group bookkeeping: a word placed behind a group's entry can come
    // first in that group.
    for (u32 d = 0; d < ctx.depth; d++) {
        cli_group_frame &f = ctx.frames[d];
        bool first = false;
        for (u32 i = 0; i < cur->count && !first; i++) {
            first = _contains(f.entry, cur->items[i]);
        }
        if ((first && _add_unique(f.starts, node) != 0) || _add_unique(f.members, node) != 0) {
            return nullptr;
        }
    }
    return node;
}

bool _closes(u32 open, i32 close)
{
    switch (open) {
    case CLI_TK_GROUP_OPEN:
        return close == CLI_TK_GROUP_CLOSE || close == CLI_TK_JOIN_CLOSE;
    case CLI_TK_SET_OPEN:
        return close == CLI_TK_SET_CLOSE;
    default:
        return close == CLI_TK_OPT_CLOSE;
    }
}

// Links every end word of a set back to the words that can start it, so
// that another alternative can follow.
i32 _link_back(const cli_carrier *ends, const cli_carrier *starts)
{
    for (u32 i = 0; i < ends->count; i++) {
        auto *end = static_cast<cli_node *>(ends->items[i]);
        for (u32 j = 0; j < starts->count; j++) {
            if (_add_unique(end->next, starts->items[j]) != 0) {
                return -1;
            }
        }
    }
    return 0;
}

// One group, from behind its opening token to its closing token, each
// alternative from the same entry set; `cur` becomes the group's ends.
i32 _build_group(cli_build_ctx &ctx, cli_carrier *cur, u32 open)
{
    if (ctx.depth >= k_cli_max_depth) {
        return -1;
    }
    _carrier_ref entry(_copy(cur));
    _carrier_ref starts(cli_init_carrier(k_carrier_start));
    _carrier_ref members(cli_init_carrier(k_carrier_start));
    _carrier_ref ends(cli_init_carrier(k_carrier_start));
    _carrier_ref alt(cli_init_carrier(k_carrier_start));
    if (entry.c == nullptr || starts.c == nullptr || members.c == nullptr || ends.c == nullptr ||
        alt.c == nullptr) {
        return -1;
    }
    ctx.frames[ctx.depth] = {entry.c, starts.c, members.c};
    ctx.depth++;
    i32 close = 0;
    do {
        if (_assign(alt.c, entry.c) != 0) {
            ctx.depth--;
            return -1;
        }
        close = cli_ctree_build(&ctx, alt.c);
        for (u32 i = 0; close >= 0 && i < alt.c->count; i++) {
            if (_add_unique(ends.c, alt.c->items[i]) != 0) {
                close = -1;
            }
        }
    } while (close == CLI_TK_ALT);
    ctx.depth--;
    if (close < 0 || !_closes(open, close)) {
        return -1;
    }
    if (open == CLI_TK_SET_OPEN || open == CLI_TK_OPT_OPEN) {
        const u16 bits = open == CLI_TK_SET_OPEN ? CLI_ATTR_ONCE : (CLI_ATTR_ONCE | CLI_ATTR_OPTIONAL);
        for (u32 i = 0; i < starts.c->count; i++) {
            static_cast<cli_node *>(starts.c->items[i])->attr |= bits;
        }
        if (_link_back(ends.c, starts.c) != 0) {
            return -1;
        }
        if (open == CLI_TK_OPT_OPEN && cli_add_carrier(ends.c, entry.c) != 0) {
            return -1;
        }
    }
    if (close == CLI_TK_JOIN_CLOSE) {
        // The words of a joined group make one parameter: each but the
        // first of its alternative is appended to the one before.
        for (u32 i = 0; i < members.c->count; i++) {
            auto *n = static_cast<cli_node *>(members.c->items[i]);
            if (!_contains(starts.c, n)) {
                n->attr |= CLI_ATTR_JOINED;
            }
        }
    }
    return _assign(cur, ends.c);
}

// Compiles `desc` into the tree of `mode`.
i32 _install(cli_tree *root, u32 mode, u32 priv, u32 flags, cli_cmd_desc *desc)
{
    if (root == nullptr || desc == nullptr || desc->cmd == nullptr) {
        return -1;
    }
    auto *top = static_cast<cli_node *>(cli_search_carrier(root->roots, mode));
    if (top == nullptr) {
        top = _node_new(CLI_TK_ROOT, "", 0);
        if (top == nullptr || cli_setindex_carrier(root->roots, mode, top) != 0) {
            return -1;
        }
    }
    desc->attr = flags;
    cli_build_ctx ctx{};
    ctx.root = root;
    ctx.desc = desc;
    ctx.priv = static_cast<u16>(priv);
    ctx.flags = flags;
    ctx.pos = desc->cmd;
    while (desc->help != nullptr && desc->help[ctx.help_count] != nullptr) {
        ctx.help_count++;
    }
    _carrier_ref cur(cli_init_carrier(k_carrier_start));
    if (cur.c == nullptr || cli_set_carrier(cur.c, top) != 0) {
        return -1;
    }
    if (cli_ctree_build(&ctx, cur.c) != CLI_TK_END) {
        return -1;
    }
    for (u32 i = 0; i < cur.c->count; i++) {
        static_cast<cli_node *>(cur.c->items[i])->cmd = desc;
    }
    return 0;
}

void _set_mode_prompt(u32 chip_id, u32 mode)
{
    char text[CLI_PROMPT_SIZE];
    if (mode == 0 || mode >= CLI_MODE_NAMES) {
        std::snprintf(text, sizeof(text), "Diag-Shell(config)#");
    } else {
        std::snprintf(text, sizeof(text), "Diag-Shell(config/%s)#", g_cli_mode_array[mode].name);
    }
    cli_setPrompt(chip_id, text);
}

cli_tree *_working_tree()
{
    return g_clitree != nullptr ? g_clitree : g_main_clitree;
}

void _set_mode(u32 chip_id, u32 mode)
{
    for (cli_tree *t : {g_clitree, g_main_clitree}) {
        if (t != nullptr) {
            t->mode = mode;
        }
    }
    _set_mode_prompt(chip_id, mode);
}

} // namespace

extern "C" {

cli_node *cli_search_SametypeAndStr_node(const cli_carrier *cur, u32 type, const char *str, u32 len)
{
    for (u32 i = 0; i < cur->count; i++) {
        const cli_carrier *next = static_cast<cli_node *>(cur->items[i])->next;
        for (u32 j = 0; j < next->count; j++) {
            auto *n = static_cast<cli_node *>(next->items[j]);
            if (n->type == type && std::strncmp(n->str, str, len) == 0 && n->str[len] == '\0') {
                return n;
            }
        }
    }
    return nullptr;
}

// Compiles tokens until one that ends a sequence (an alternative's `|`, a
// closing token or the end); `cur` goes from the entry set to the set of
// the sequence's last words.  The ending token, or -1 for a fault.
i32 cli_ctree_build(cli_build_ctx *build, cli_carrier *cur)
{
    cli_build_ctx &ctx = *build;
    for (;;) {
        const char *tok = nullptr;
        u32 len = 0;
        const u32 type = cli_match_type_from_str(&ctx.pos, &tok, &len);
        switch (type) {
        case CLI_TK_GROUP_OPEN:
        case CLI_TK_SET_OPEN:
        case CLI_TK_OPT_OPEN:
            if (_build_group(ctx, cur, type) != 0) {
                return -1;
            }
            break;
        case CLI_TK_GROUP_CLOSE:
        case CLI_TK_SET_CLOSE:
        case CLI_TK_OPT_CLOSE:
        case CLI_TK_JOIN_CLOSE:
        case CLI_TK_ALT:
        case CLI_TK_END:
            return static_cast<i32>(type);
        case CLI_TK_MARK:
            // A backquote marks the words before it as ones a pipe may
            // follow.
            for (u32 i = 0; i < cur->count; i++) {
                static_cast<cli_node *>(cur->items[i])->attr |= CLI_ATTR_PIPE;
            }
            break;
        case CLI_TK_REPEAT:
            ctx.repeat_next = true;
            break;
        case CLI_TK_ONCE:
            ctx.once_next = true;
            break;
        case CLI_TK_BAD:
            return -1;
        default: {
            cli_node *node = _build_word(ctx, cur, type, tok, len);
            if (node == nullptr) {
                return -1;
            }
            cur->count = 0;
            if (cli_set_carrier(cur, node) != 0) {
                return -1;
            }
            break;
        }
        }
    }
}

i32 cli_ctree_init(void)
{
    if (g_main_clitree != nullptr) {
        return 0;
    }
    auto *t = static_cast<cli_tree *>(xsal_malloc(sizeof(cli_tree), "cli_tree", SHR_MOD_CLI));
    if (t == nullptr) {
        return -1;
    }
    std::memset(t, 0, sizeof(*t));
    t->roots = cli_init_carrier(k_carrier_start);
    t->candidates = cli_init_carrier(k_carrier_start);
    t->used = cli_init_carrier(k_carrier_start);
    if (t->roots == nullptr || t->candidates == nullptr || t->used == nullptr) {
        cli_free_carrier(t->roots);
        cli_free_carrier(t->candidates);
        cli_free_carrier(t->used);
        xsal_mem_free(t);
        return -1;
    }
    t->priv = CLI_PRIV_MAX;
    g_main_clitree = t;
    _set_mode_prompt(0, 0);
    if (_legacy_cmd.install != nullptr) {
        _legacy_cmd.install(t, _legacy_cmd.context);
    }
    cli_cmd_build_local(t);
    return 0;
}

i32 cli_ctree_create(void)
{
    if (g_clitree != nullptr) {
        return 0;
    }
    if (g_main_clitree == nullptr) {
        return -1;
    }
    auto *t = static_cast<cli_tree *>(xsal_malloc(sizeof(cli_tree), "cli_tree", SHR_MOD_CLI));
    if (t == nullptr) {
        return -1;
    }
    std::memcpy(t, g_main_clitree, sizeof(*t));
    t->argc = 0;
    t->pipe_argc = 0;
    g_clitree = t;
    return 0;
}

void cli_ctree_delete(void)
{
    if (g_clitree != nullptr) {
        cli_free_params(g_clitree);
        xsal_mem_free(g_clitree);
        g_clitree = nullptr;
    }
}

void cli_ctree_deinit(void)
{
    // The working copy shares the carriers of the tree.
    cli_ctree_delete();
    if (g_main_clitree != nullptr) {
        cli_free_params(g_main_clitree);
        cli_free_carrier(g_main_clitree->roots);
        cli_free_carrier(g_main_clitree->candidates);
        cli_free_carrier(g_main_clitree->used);
        xsal_mem_free(g_main_clitree);
        g_main_clitree = nullptr;
    }
    cli_free_all_node();
}

void cli_ctree_free(void)
{
    cli_ctree_deinit();
}

void cli_cmd_build_local(cli_tree *root)
{
    for (cli_list_link *l = cli_cmd_init_list.next; l != nullptr && l != &cli_cmd_init_list; l = l->next) {
        auto *item = reinterpret_cast<cli_cmd_item *>(reinterpret_cast<char *>(l) - offsetof(cli_cmd_item, node));
        if ((item->flags & CLI_FLAG_VIEW) != 0) {
            item->desc->handler = cli_view_setup;
        }
        cli_cmd_install_gen(root, item->mode, item->priv, item->flags, item->desc);
    }
}

i32 cli_cmd_install_gen(cli_tree *root, u32 mode, u32 priv, u32 flags, cli_cmd_desc *desc)
{
    if (mode > CLI_MODE_MAX) {
        return -1;
    }
    return _install(root, mode, priv, flags, desc);
}

i32 cli_pipe_cmd_install(cli_tree *root, u32 priv, u32 flags, cli_cmd_desc *desc)
{
    return _install(root, CLI_MODE_PIPE, priv, flags, desc);
}

i32 cli_register_cmd(cli_cmd_handler_t handler, i32 funcid, const char *cmd, u32 mode, u32 flags, u32 priv,
                     const char *const *help)
{
    if (cmd == nullptr || g_main_clitree == nullptr) {
        return -1;
    }
    // One block: the descriptor, the help pointers, then the texts.
    u32 lines = 0;
    size_t text = std::strlen(cmd) + 1;
    while (help != nullptr && help[lines] != nullptr) {
        text += std::strlen(help[lines]) + 1;
        lines++;
    }
    const size_t table = (lines + 1) * sizeof(char *);
    auto *desc = static_cast<cli_cmd_desc *>(cli_node_malloc(sizeof(cli_cmd_desc) + table + text, 1));
    if (desc == nullptr) {
        return -1;
    }
    auto **lines_out = reinterpret_cast<const char **>(desc + 1);
    char *out = reinterpret_cast<char *>(lines_out) + table;
    auto put = [&out](const char *s) {
        const size_t n = std::strlen(s) + 1;
        std::memcpy(out, s, n);
        const char *start = out;
        out += n;
        return start;
    };
    desc->cmd = put(cmd);
    for (u32 i = 0; i < lines; i++) {
        lines_out[i] = put(help[i]);
    }
    desc->help = lines_out;
    desc->funcid = funcid;
    desc->handler = (flags & CLI_FLAG_VIEW) != 0 && handler == nullptr ? cli_view_setup : handler;
    return cli_cmd_install_gen(g_main_clitree, mode, priv, flags, desc);
}

i32 cli_cmd_register(cli_cmd_handler_t handler, i32 funcid, const char *cmd, u32 mode, u32 flags, u32 priv, ...)
{
    auto **room = static_cast<const char **>(xsal_malloc(CLI_MAX_HELP * sizeof(char *), "help_room", SHR_MOD_CLI));
    if (room == nullptr) {
        return -1;
    }
    va_list args;
    va_start(args, priv);
    u32 n = 0;
    const char *line = nullptr;
    do {
        line = va_arg(args, const char *);
        if (n < CLI_MAX_HELP) {
            room[n] = line;
        }
        n++;
    } while (line != nullptr && n < CLI_MAX_HELP);
    va_end(args);
    const i32 r = line == nullptr ? cli_register_cmd(handler, funcid, cmd, mode, flags, priv, room) : -1;
    xsal_mem_free(room);
    return r;
}

i32 cli_mode_by_name(const char *name)
{
    if (name == nullptr) {
        return -1;
    }
    for (const cli_mode_row &row : g_cli_mode_array) {
        if (std::strcmp(row.name, name) == 0) {
            return static_cast<i32>(row.mode);
        }
    }
    return -1;
}

i32 cli_view_setup(u32 chip_id, u32 mode, i32 argc, char **argv)
{
    (void)mode;
    (void)argc;
    (void)argv;
    cli_tree *t = _working_tree();
    if (t == nullptr || t->matched == nullptr || t->matched->cmd == nullptr) {
        return 0;
    }
    // The first word of the definition that ran names the target.
    const char *def = t->matched->cmd->cmd;
    const char *word = def;
    u32 len = 0;
    cli_match_type_from_str(&def, &word, &len);
    char name[64];
    std::snprintf(name, sizeof(name), "%.*s", static_cast<int>(len), word);
    if (std::strcmp(name, "exit") == 0) {
        if (t->mode != 0) {
            _set_mode(chip_id, 0);
        }
        return 0;
    }
    const i32 target = cli_mode_by_name(name);
    if (target >= 0) {
        _set_mode(chip_id, static_cast<u32>(target));
    }
    return 0;
}

i32 cli_view_config(u32 chip_id)
{
    _set_mode(chip_id, 0);
    return 0;
}

i32 cli_view_custom(u32 chip_id, const char *mode_name)
{
    const i32 target = cli_mode_by_name(mode_name);
    if (target < 0) {
        return -1;
    }
    _set_mode(chip_id, static_cast<u32>(target));
    return 0;
}

void cli_setPrompt(u32 chip_id, const char *text)
{
    if (text == nullptr || std::strlen(text) > 118) {
        return;
    }
    std::snprintf(g_strPrompt, sizeof(g_strPrompt), "Chip-%d %s", static_cast<int>(chip_id), text);
}

void setchipidPrompt(u32 chip_id)
{
    const char *blank = std::strchr(g_strPrompt, ' ');
    char text[CLI_PROMPT_SIZE];
    std::snprintf(text, sizeof(text), "%s", blank != nullptr ? blank + 1 : "Diag-Shell(config)#");
    cli_setPrompt(chip_id, text);
}

const char *cli_ctree_getprompt(void)
{
    return g_strPrompt;
}

i32 legacy_cmd_reg_once(const cli_legacy_cmd *hooks)
{
    if (hooks == nullptr || _legacy_cmd.install != nullptr || _legacy_cmd.execute != nullptr ||
        _legacy_cmd.check != nullptr) {
        return -1;
    }
    _legacy_cmd = *hooks;
    return 0;
}

} // extern "C"
