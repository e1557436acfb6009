/*
 * The shell's command language: command records, the per-mode word tree
 * compiled from their definition strings, the parser, completion and
 * context help.
 *
 * This core serves two sides.  Inside the library it runs `cli_cmd_execute`
 * on the records of the init list; a shell client builds the same tree
 * from the records it downloads (`cli_register_cmd`) and parses what the
 * operator types.  It needs nothing of the library but the OS layer's
 * `xsal_malloc`, `xsal_mem_free` and `xsal_vprintf`, and prints through a
 * sink that its user may replace (`cli_print_func_set`).  A program links
 * it from `tide_sdk_static`, or compiles the sources of this directory.
 */
#ifndef TIDE_CLI_CORE_H
#define TIDE_CLI_CORE_H

#include <stdarg.h>
#include <stddef.h>

#include <tide/cli.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- limits and numbers -------------------------------------------------- */

#define CLI_MODE_MAX 43u        /* highest mode a command item may name */
#define CLI_MODE_PIPE 44u       /* tree of what may follow a pipe */
#define CLI_MODE_PIPE_PASSED 45u
#define CLI_MODE_NAMES 44u      /* rows of g_cli_mode_array */
#define CLI_MAX_ARGS 256        /* parameters of one command */
#define CLI_MAX_WORD 256        /* characters of one parameter */
#define CLI_MAX_HELP 257        /* help lines of one definition, NULL included */
#define CLI_PRIV_MAX 15u
#define CLI_HELP_WIDTH 80u

/* Command item flags. */
#define CLI_FLAG_HIDDEN 0x0001u
#define CLI_FLAG_NO_PLUS 0x1000u /* range words refuse a plus sign */
#define CLI_FLAG_GLOBAL 0x4000u  /* present in all modes */
#define CLI_FLAG_VIEW 0x8000u    /* switches modes: handler cli_view_setup */

/* Word node attributes. */
#define CLI_ATTR_HIDDEN 0x0001u
#define CLI_ATTR_PIPE 0x0004u     /* a pipe may follow this word */
#define CLI_ATTR_GROUP 0x0008u    /* stands in a group: a keyword is a parameter */
#define CLI_ATTR_ONCE 0x0010u     /* once per line */
#define CLI_ATTR_OPTIONAL 0x0020u
#define CLI_ATTR_JOINED 0x0100u   /* appended to the previous parameter */
#define CLI_ATTR_NO_PLUS 0x1000u  /* range word that refuses a plus sign */

/* Results of cli_cmdstr_parse. */
enum cli_parse_result {
    CLI_PARSE_OK = 0,
    CLI_PARSE_INCOMPLETE = 1,
    CLI_PARSE_INCOMPLETE_PIPE = 2,
    CLI_PARSE_EMPTY = 3,
    CLI_PARSE_AMBIGUOUS = 4,
    CLI_PARSE_NO_MATCH = 5,
    CLI_PARSE_NO_MODE = 6,
    CLI_PARSE_BAD_ARG = 7,
};

/* Token types of a definition string; also the type of the word node a
 * token makes. */
enum cli_token_type {
    CLI_TK_GROUP_OPEN = 0,
    CLI_TK_GROUP_CLOSE = 1,
    CLI_TK_SET_OPEN = 2,
    CLI_TK_SET_CLOSE = 3,
    CLI_TK_OPT_OPEN = 4,
    CLI_TK_OPT_CLOSE = 5,
    CLI_TK_MARK = 6,
    CLI_TK_JOIN_CLOSE = 7,
    CLI_TK_ALT = 8,
    CLI_TK_PIPE = 9,
    CLI_TK_REDIRECT = 10,
    CLI_TK_REPEAT = 11,
    CLI_TK_ONCE = 12,
    CLI_TK_RANGE = 13,
    CLI_TK_KEYWORD = 14,
    CLI_TK_LINE = 16,
    CLI_TK_WORD = 17,
    CLI_TK_IPV4 = 18,
    CLI_TK_IPV4_PREFIX = 19,
    CLI_TK_IPV6 = 20,
    CLI_TK_IPV6_PREFIX = 21,
    CLI_TK_TIME = 22,
    CLI_TK_AS_NN = 23,
    CLI_TK_MAC = 24,
    CLI_TK_MAC_DOT = 25,
    CLI_TK_IFNAME = 26,
    CLI_TK_BAD = 27,
    CLI_TK_END = 28,   /* end of the definition; no token */
    CLI_TK_ROOT = 29,  /* type of a mode's root node; no token */
};

/* Match grades of a typed word against a node. */
enum cli_grade {
    CLI_GRADE_NONE = 0,
    CLI_GRADE_PARTIAL = 1,
    CLI_GRADE_LINE = 2,
    CLI_GRADE_WORD = 3,
    CLI_GRADE_IPV4_PREFIX = 4,
    CLI_GRADE_IPV4 = 5,
    CLI_GRADE_TIME = 6,
    CLI_GRADE_RANGE = 8,
    CLI_GRADE_MAC = 9,
    CLI_GRADE_PREFIX = 10,
    CLI_GRADE_FULL = 11,
};

/* ---- records ------------------------------------------------------------- */

/* A handler: (chip, view mode, parameter count, parameters); a status. */
typedef i32 (*cli_cmd_handler_t)(u32 chip_id, u32 view_mode, i32 argc, char **argv);

/* Command descriptor: one per definition. */
typedef struct cli_cmd_desc {
    const char *cmd;                 /* definition string */
    i32 funcid;                      /* -1 for the library's records */
    cli_cmd_handler_t handler;
    const char *const *help;         /* one line per word, NULL-terminated */
    u32 attr;                        /* the item's flags, once installed */
} cli_cmd_desc;

/* Link of a circular doubly linked list. */
typedef struct cli_list_link {
    struct cli_list_link *next;
    struct cli_list_link *prev;
} cli_list_link;

/* Command item: one per (command, mode). */
typedef struct cli_cmd_item {
    cli_cmd_desc *desc;
    u32 mode;
    u16 flags;
    u16 priv;
    cli_list_link node;
} cli_cmd_item;

/* A growable array of pointers. */
typedef struct cli_carrier {
    u32 count;
    u32 capacity;
    void **items;
} cli_carrier;

/* Word node of the tree. */
typedef struct cli_node {
    u32 type;                 /* cli_token_type */
    const char *str;          /* the word as written */
    const char *desc_str;     /* its help line */
    i64 range_max;
    i64 range_min;
    cli_cmd_desc *cmd;        /* set where a command ends */
    cli_carrier *next;        /* words that may follow */
    u16 priv;                 /* lowest level of the commands through it */
    u16 attr;                 /* CLI_ATTR_* */
    u16 refcnt;               /* definitions through it */
    char *parent_str;         /* parents' words, when it has several */
} cli_node;

/* Exit hook of a client; called by cli_diagshell_exit. */
typedef i32 (*cli_exit_hook_t)(u32 chip_id);

/* Tree root.  g_main_clitree owns the nodes; g_clitree is a working copy
 * of it where a parse leaves its results. */
typedef struct cli_tree {
    u32 mode;
    u8 priv;
    cli_carrier *roots;        /* root node of each mode */
    cli_node *matched;
    cli_carrier *candidates;   /* nodes the last word could be */
    cli_carrier *used;         /* once-only nodes taken in this line */
    u32 trailing_space;
    u32 pipe_allowed;
    i32 argc;
    char *argv[CLI_MAX_ARGS];
    cli_node *pipe_matched;
    i32 pipe_argc;
    char *pipe_argv[CLI_MAX_ARGS];
    char *last_joined;
    const char *error_pos;     /* furthest place the parser reached */
    const char *pipe_pos;
    char *out_buf;             /* capture buffer of cli_cmd_execute */
    i32 out_size;
    void *client_hook[2];
    cli_exit_hook_t exit_hook;
    u32 last_word;             /* the parse stopped at the line's last word */
} cli_tree;

/* Hooks of a shell client that runs commands remotely. */
typedef i32 (*cli_legacy_install_t)(cli_tree *tree, void *context);
typedef i32 (*cli_legacy_exec_t)(void *context, i32 funcid, u32 mode, i32 argc, char **argv);
typedef i32 (*cli_legacy_check_t)(void *context, i32 funcid);
typedef struct cli_legacy_cmd {
    void *context;
    void *value;
    cli_legacy_install_t install;
    cli_legacy_exec_t execute;
    cli_legacy_check_t check;
} cli_legacy_cmd;

/* The modes: name and number, in the order of their numbers. */
#define CLI_MODE_LIST(X) \
    X("config", 0) X("ptp", 1) X("l3", 2) X("l2", 3) X("dygasp", 4) X("base", 5) X("hash", 6) \
    X("channelvlan", 7) X("port", 8) X("pa", 9) X("stack", 10) X("macsec", 11) X("mirror", 12) \
    X("clk", 13) X("vlan", 14) X("qos", 15) X("ip-tunnel", 16) X("flexe", 17) X("multicast", 18) \
    X("trunk", 19) X("srv6", 20) X("acl", 21) X("serdes", 22) X("misc", 23) X("synce", 24) X("stp", 25) \
    X("pgc", 26) X("port-isolate", 27) X("dos", 28) X("pkt", 29) X("mdio", 30) X("keepalive", 31) \
    X("product", 32) X("debug", 33) X("counter", 34) X("keth", 35) X("common", 36) X("phy", 37) \
    X("sflow", 38) X("tas", 39) X("interrupt", 40) X("led", 41) X("storm", 42) X("sim", 43)
/* Modes that the library's command families install into. */
#define CLI_MODE_L2 3u
#define CLI_MODE_BASE 5u
#define CLI_MODE_PORT 8u
#define CLI_MODE_MACSEC 11u
#define CLI_MODE_VLAN 14u
#define CLI_MODE_ACL 21u
#define CLI_MODE_SERDES 22u
#define CLI_MODE_DEBUG 33u
#define CLI_MODE_COUNTER 34u
#define CLI_MODE_QOS 15u
#define CLI_MODE_INTERRUPT 40u
/* Our own mode, after the chip's: the chip model's commands. */
#define CLI_MODE_SIM 43u

/* Row of the mode table. */
typedef struct cli_mode_row {
    const char *name;
    u32 mode;
} cli_mode_row;

extern cli_tree *g_main_clitree;
extern cli_tree *g_clitree;
extern cli_list_link cli_cmd_init_list;
extern const cli_mode_row g_cli_mode_array[CLI_MODE_NAMES];
extern char g_strPrompt[CLI_PROMPT_SIZE];
extern cli_legacy_cmd _legacy_cmd;

/* ---- lists --------------------------------------------------------------- */

/* An empty list head links to itself; a head that was never set (all
 * zero) counts as empty too. */
void cli_list_init(cli_list_link *head);
void cli_list_add_tail(cli_list_link *head, cli_list_link *link);
void cli_list_del(cli_list_link *link);
/* Links `count` items onto cli_cmd_init_list in order. */
void cli_cmd_items_link(cli_cmd_item *items, u32 count);

/* ---- carriers and node memory --------------------------------------------- */

cli_carrier *cli_init_carrier(u32 n);
void cli_free_carrier(cli_carrier *c);
/* Room up to `index`; 0 or -1. */
i32 cli_check_carrier(cli_carrier *c, u32 index);
i32 cli_set_carrier(cli_carrier *c, void *item);
i32 cli_setindex_carrier(cli_carrier *c, u32 index, void *item);
/* Appends the non-empty items of `src`; 0 or -1. */
i32 cli_add_carrier(cli_carrier *dst, const cli_carrier *src);
void *cli_search_carrier(const cli_carrier *c, u32 index);
/* Index of `value`, or -1. */
i32 cli_search_value_carrier(const cli_carrier *c, const void *value);

/* Block of the tree: kind 0 a word node, kind 1 a descriptor block.
 * Cleared; NULL for another kind or without memory. */
void *cli_node_malloc(u64 size, u32 kind);
void cli_free_all_node(void);

/* ---- tokens and matching --------------------------------------------------- */

/* Next token of a definition at `*pos`: its type, start and length;
 * `*pos` moves past it.  CLI_TK_END at the end. */
u32 cli_match_type_from_str(const char **pos, const char **token, u32 *len);
/* Bounds of a range token "<a-b>"; 0 or -1. */
i32 cli_set_range_value(const char *token, u32 len, i64 *min, i64 *max);
/* A decimal number with an optional sign, -2147483648 to 4294967295,
 * ending at white space or at `end`; 0 or -1.  A sign alone reads as 0. */
i32 cli_string_to_int(const char *p, const char *end, i64 *value, const char **stop);
/* A match function: the grade of the typed text at `p` (up to `end`)
 * against `node`; `*word_end` is where the word ends, `*reach` how far it
 * agreed with the node. */
typedef u32 (*cli_match_func_t)(const cli_node *node, const char *p, const char *end, const char **word_end,
                                const char **reach);
/* The match function of the node's word type. */
cli_match_func_t cli_matchNode(const cli_node *node);
/* End of the typed word at `p`: white space ends it, except inside double
 * quotes or after a backslash. */
const char *cli_word_end(const char *p, const char *end, u32 quoted);
static inline int cli_is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/* ---- the tree ---------------------------------------------------------------- */

/* The state of one definition being compiled. */
typedef struct cli_build_ctx cli_build_ctx;
/* Compiles tokens of the definition until one that ends a sequence (an
 * alternative's `|`, a closing token, the end); `cur` goes from the entry
 * set to the set of the sequence's last words.  The ending token, or -1. */
i32 cli_ctree_build(cli_build_ctx *build, cli_carrier *cur);
/* A node of this type and text among the successors of the set `cur`. */
cli_node *cli_search_SametypeAndStr_node(const cli_carrier *cur, u32 type, const char *str, u32 len);

i32 cli_ctree_init(void);
i32 cli_ctree_create(void);
void cli_ctree_delete(void);
void cli_ctree_deinit(void);
/* Installs every item of cli_cmd_init_list into `root`. */
void cli_cmd_build_local(cli_tree *root);
/* Compiles one definition into the tree of `mode`; 0 or -1. */
i32 cli_cmd_install_gen(cli_tree *root, u32 mode, u32 priv, u32 flags, cli_cmd_desc *desc);
/* Compiles one definition into the tree of what may follow a pipe. */
i32 cli_pipe_cmd_install(cli_tree *root, u32 priv, u32 flags, cli_cmd_desc *desc);
/* A copy of the record (cmd, help lines) in one block, installed into
 * g_main_clitree. */
i32 cli_register_cmd(cli_cmd_handler_t handler, i32 funcid, const char *cmd, u32 mode, u32 flags, u32 priv,
                     const char *const *help);
/* The same with the help lines as arguments ending in NULL. */
i32 cli_cmd_register(cli_cmd_handler_t handler, i32 funcid, const char *cmd, u32 mode, u32 flags, u32 priv,
                     ...);

/* ---- parsing -------------------------------------------------------------------- */

i32 cli_cmdstr_parse(cli_tree *root, u32 mode, u32 priv, const char *line, u32 set_params);
/* Matches the words of [text, end) from the successors of `node` on; into
 * the pipe's results with `pipe` set. */
i32 cli_parse_cmdstr(cli_tree *root, const cli_node *node, const char *text, const char *end, u32 set_params,
                     u32 pipe);
/* Stores the word [p, word_end) that matched `node` with `grade` as a
 * parameter, if it is one; a parse result. */
i32 cli_setparameters(cli_tree *root, u32 pipe, const cli_node *node, u32 grade, const char *p, const char *word_end);
/* The first pipe or redirect character outside double quotes; a backslash
 * escapes the character behind it.  NULL for none. */
const char *cli_parsepipe(const char *p, const char *end);
/* Keywords that could be typed at the end of `line`, NULL-terminated,
 * freed by xsal_mem_free; NULL for none. */
const char **cli_cmdstr_complete(cli_tree *root, u32 mode, u32 priv, const char *line);
/* The keywords that the word where the parse found several could be;
 * NULL unless `line` is ambiguous. */
const char **cli_cmdstr_ambiguous(cli_tree *root, u32 mode, u32 priv, const char *line);
void cli_cmdstr_describe(cli_tree *root, u32 mode, u32 priv, const char *line, u32 width);
/* Frees the parameters of the last parse. */
void cli_free_params(cli_tree *root);

/* ---- running lines ---------------------------------------------------------------- */

i32 cli_command_parse(u32 chip_id, const char *line, char *buf, i32 size);
/* Cuts trailing white space and a trailing "?" from `line` of `*len`
 * characters; 1 if the "?" was there (a request for help). */
u32 cli_cmdstr_preprocessing(char *line, size_t *len);
i32 cli_view_setup(u32 chip_id, u32 mode, i32 argc, char **argv);
/* Mode number of a name; -1 for none. */
i32 cli_mode_by_name(const char *name);
i32 legacy_cmd_reg_once(const cli_legacy_cmd *hooks);
i32 cli_diagshell_exit(u32 chip_id);

/* ---- output ------------------------------------------------------------------------- */

/* Where the core prints: the capture buffer of the running line if it has
 * one, else this sink.  NULL puts the console back. */
typedef void (*cli_print_func_t)(const char *text, size_t len);
void cli_print_func_set(cli_print_func_t func);
i32 cli_printf(const char *format, ...) TIDE_PRINTF(1, 2);
i32 cli_vprintf(const char *format, va_list args);
/* Appends to the capture buffer of the running line if there is one: 1
 * (the text is dropped whole if it does not fit), else 0. */
i32 cli_capture_append(const char *text, size_t len);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CLI_CORE_H */
