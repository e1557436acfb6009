// Tokens of definition strings, and the grading of a typed word against a
// word node of the tree.
#include <array>
#include <cctype>
#include <cstring>
#include <string_view>

#include "app/diag_shell/shell/cli/cli_core.h"

namespace {

bool _is_lower_start(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '*';
}

bool _is_keyword_char(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '+' || c == '-';
}

bool _is_upper_char(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == ':' || c == '-' || c == '.' ||
           c == '/';
}

// Upper-case words with a meaning of their own; any other is a WORD.
struct _upper_word {
    std::string_view text;
    u32 type;
};

constexpr _upper_word k_upper_words[] = {
    {"LINE", CLI_TK_LINE},
    {"WORD", CLI_TK_WORD},
    {"A.B.C.D", CLI_TK_IPV4},
    {"A.B.C.D/M", CLI_TK_IPV4_PREFIX},
    {"X:X::X:X", CLI_TK_IPV6},
    {"X:X::X:X/M", CLI_TK_IPV6_PREFIX},
    {"HH:MM:SS", CLI_TK_TIME},
    {"AA:NN", CLI_TK_AS_NN},
    {"XX:XX:XX:XX:XX:XX", CLI_TK_MAC},
    {"MAC", CLI_TK_MAC_DOT},
    {"IFNAME", CLI_TK_IFNAME},
};

// A signed decimal of at most 10 digits at `p`; the position behind it,
// or nullptr.
const char *_range_bound(const char *p, const char *end)
{
    if (p < end && (*p == '+' || *p == '-')) {
        p++;
    }
    const char *digits = p;
    while (p < end && *p >= '0' && *p <= '9') {
        p++;
    }
    const long n = p - digits;
    return n >= 1 && n <= 10 ? p : nullptr;
}

// Shape of a value of fixed groups, such as an IPv4 address or a MAC.
struct _group_shape {
    u32 groups;
    char sep;
    u32 min_digits;
    u32 max_digits;
    bool hex;
    u32 max_value[6];
};

constexpr _group_shape k_ipv4 = {4, '.', 1, 3, false, {255, 255, 255, 255}};
constexpr _group_shape k_time = {3, ':', 1, 2, false, {12, 60, 60}};
constexpr _group_shape k_mac = {6, ':', 2, 2, true, {255, 255, 255, 255, 255, 255}};
constexpr _group_shape k_mac_dot = {3, '.', 4, 4, true, {0xffff, 0xffff, 0xffff}};

enum class _shape_fit { none, partial, complete };

int _digit_value(char c, bool hex)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (hex) {
        const int l = std::tolower(static_cast<unsigned char>(c));
        if (l >= 'a' && l <= 'f') {
            return l - 'a' + 10;
        }
    }
    return -1;
}

// How the text [p, end) fits the shape; `*stop` is where the reading
// stopped.  Partial: a beginning of such a value.
_shape_fit _fit_shape(const _group_shape &shape, const char *p, const char *end, const char **stop)
{
    u32 group = 0;
    u32 digits = 0;
    u32 value = 0;
    while (p < end) {
        const int d = _digit_value(*p, shape.hex);
        if (d >= 0) {
            value = value * (shape.hex ? 16 : 10) + static_cast<u32>(d);
            if (++digits > shape.max_digits || value > shape.max_value[group]) {
                *stop = p;
                return _shape_fit::none;
            }
        } else if (*p == shape.sep && digits >= shape.min_digits && group + 1 < shape.groups) {
            group++;
            digits = 0;
            value = 0;
        } else {
            *stop = p;
            return _shape_fit::none;
        }
        p++;
    }
    *stop = p;
    return group + 1 == shape.groups && digits >= shape.min_digits ? _shape_fit::complete : _shape_fit::partial;
}

u32 _grade_shape(const _group_shape &shape, u32 full_grade, const char *p, const char *end, const char **reach)
{
    switch (_fit_shape(shape, p, end, reach)) {
    case _shape_fit::complete:
        return full_grade;
    case _shape_fit::partial:
        return CLI_GRADE_PARTIAL;
    default:
        return CLI_GRADE_NONE;
    }
}

u32 _grade_ipv4_prefix(const char *p, const char *end, const char **reach)
{
    const char *slash = static_cast<const char *>(std::memchr(p, '/', static_cast<size_t>(end - p)));
    const _shape_fit addr = _fit_shape(k_ipv4, p, slash != nullptr ? slash : end, reach);
    if (addr == _shape_fit::none) {
        return CLI_GRADE_NONE;
    }
    if (slash == nullptr || addr == _shape_fit::partial) {
        return slash == nullptr ? CLI_GRADE_PARTIAL : CLI_GRADE_NONE;
    }
    const char *q = slash + 1;
    u32 len = 0;
    u32 digits = 0;
    while (q < end && *q >= '0' && *q <= '9' && digits < 2) {
        len = len * 10 + static_cast<u32>(*q - '0');
        q++;
        digits++;
    }
    *reach = q;
    if (q != end || len > 32) {
        return CLI_GRADE_NONE;
    }
    return digits == 0 ? CLI_GRADE_PARTIAL : CLI_GRADE_IPV4_PREFIX;
}

u32 _grade_keyword(const cli_node *node, const char *p, const char *word_end, const char **reach)
{
    const size_t typed = static_cast<size_t>(word_end - p);
    const size_t len = std::strlen(node->str);
    size_t same = 0;
    while (same < typed && same < len &&
           std::tolower(static_cast<unsigned char>(p[same])) == std::tolower(static_cast<unsigned char>(node->str[same]))) {
        same++;
    }
    *reach = p + same;
    if (same != typed) {
        return CLI_GRADE_NONE;
    }
    if (typed == len) {
        return CLI_GRADE_FULL;
    }
    // A hidden word is run only when typed in full.
    return (node->attr & CLI_ATTR_HIDDEN) != 0 ? CLI_GRADE_NONE : CLI_GRADE_PREFIX;
}

u32 _grade_range(const cli_node *node, const char *p, const char *end, const char **reach)
{
    i64 v = 0;
    if (cli_string_to_int(p, end, &v, reach) != 0) {
        return CLI_GRADE_NONE;
    }
    if (*p == '+' && (node->attr & CLI_ATTR_NO_PLUS) != 0) {
        return CLI_GRADE_NONE;
    }
    return v >= node->range_min && v <= node->range_max ? CLI_GRADE_RANGE : CLI_GRADE_NONE;
}

// The match functions of the word types; each gives the grade of the typed
// word at `p`, where it ends and how far it agreed with the node.
u32 _match_none(const cli_node *, const char *p, const char *, const char **word_end, const char **reach)
{
    *word_end = p;
    *reach = p;
    return CLI_GRADE_NONE;
}

u32 _match_keyword(const cli_node *node, const char *p, const char *end, const char **word_end, const char **reach)
{
    *word_end = cli_word_end(p, end, 0);
    return _grade_keyword(node, p, *word_end, reach);
}

template <char C>
u32 _match_char(const cli_node *, const char *p, const char *, const char **word_end, const char **reach)
{
    *word_end = p + 1;
    *reach = *word_end;
    return *p == C ? CLI_GRADE_FULL : CLI_GRADE_NONE;
}

u32 _match_range(const cli_node *node, const char *p, const char *end, const char **word_end, const char **reach)
{
    *word_end = cli_word_end(p, end, 0);
    return _grade_range(node, p, *word_end, reach);
}

u32 _match_line(const cli_node *, const char *, const char *end, const char **word_end, const char **reach)
{
    *word_end = end;
    *reach = end;
    return CLI_GRADE_LINE;
}

u32 _match_word(const cli_node *, const char *p, const char *end, const char **word_end, const char **reach)
{
    *word_end = cli_word_end(p, end, 1);
    *reach = *word_end;
    return CLI_GRADE_WORD;
}

template <const _group_shape &S, u32 G>
u32 _match_shape(const cli_node *, const char *p, const char *end, const char **word_end, const char **reach)
{
    *word_end = cli_word_end(p, end, 0);
    return _grade_shape(S, G, p, *word_end, reach);
}

u32 _match_ipv4_prefix(const cli_node *, const char *p, const char *end, const char **word_end, const char **reach)
{
    *word_end = cli_word_end(p, end, 0);
    return _grade_ipv4_prefix(p, *word_end, reach);
}

constexpr u32 k_type_count = CLI_TK_ROOT + 1;

constexpr auto k_match_table = [] {
    std::array<cli_match_func_t, k_type_count> t{};
    t.fill(_match_none);
    t[CLI_TK_KEYWORD] = _match_keyword;
    t[CLI_TK_PIPE] = _match_char<'|'>;
    t[CLI_TK_REDIRECT] = _match_char<'>'>;
    t[CLI_TK_RANGE] = _match_range;
    t[CLI_TK_LINE] = _match_line;
    t[CLI_TK_WORD] = _match_word;
    t[CLI_TK_IPV6] = _match_word;
    t[CLI_TK_IPV6_PREFIX] = _match_word;
    t[CLI_TK_AS_NN] = _match_word;
    t[CLI_TK_IFNAME] = _match_word;
    t[CLI_TK_IPV4] = _match_shape<k_ipv4, CLI_GRADE_IPV4>;
    t[CLI_TK_IPV4_PREFIX] = _match_ipv4_prefix;
    t[CLI_TK_TIME] = _match_shape<k_time, CLI_GRADE_TIME>;
    t[CLI_TK_MAC] = _match_shape<k_mac, CLI_GRADE_MAC>;
    t[CLI_TK_MAC_DOT] = _match_shape<k_mac_dot, CLI_GRADE_MAC>;
    return t;
}();

} // namespace

extern "C" {

u32 cli_match_type_from_str(const char **pos, const char **token, u32 *len)
{
    const char *p = *pos;
    while (cli_is_space(*p)) {
        p++;
    }
    *token = p;
    const char c = *p;
    u32 type = CLI_TK_BAD;
    const char *q = p + 1;
    switch (c) {
    case '\0':
        type = CLI_TK_END;
        q = p;
        break;
    case '(':
        type = CLI_TK_GROUP_OPEN;
        break;
    case ')':
        type = CLI_TK_GROUP_CLOSE;
        break;
    case '{':
        type = CLI_TK_SET_OPEN;
        break;
    case '}':
        type = CLI_TK_SET_CLOSE;
        break;
    case '[':
        type = CLI_TK_OPT_OPEN;
        break;
    case ']':
        type = CLI_TK_OPT_CLOSE;
        break;
    case '`':
        type = CLI_TK_MARK;
        break;
    case '\'':
        type = CLI_TK_JOIN_CLOSE;
        break;
    case '|':
        type = p[1] == '|' ? CLI_TK_PIPE : CLI_TK_ALT;
        q = p[1] == '|' ? p + 2 : p + 1;
        break;
    case '>':
        type = CLI_TK_REDIRECT;
        break;
    case '.':
        type = CLI_TK_REPEAT;
        break;
    case '?':
        type = CLI_TK_ONCE;
        break;
    case '<': {
        const char *close = std::strchr(p, '>');
        const char *mid = close != nullptr ? _range_bound(p + 1, close) : nullptr;
        const char *last = mid != nullptr && *mid == '-' ? _range_bound(mid + 1, close) : nullptr;
        if (last == close && close != nullptr) {
            type = CLI_TK_RANGE;
            q = close + 1;
        }
        break;
    }
    default:
        if (_is_lower_start(c)) {
            type = CLI_TK_KEYWORD;
            while (_is_keyword_char(*q)) {
                q++;
            }
        } else if (c >= 'A' && c <= 'Z') {
            while (_is_upper_char(*q)) {
                q++;
            }
            const std::string_view word(p, static_cast<size_t>(q - p));
            type = CLI_TK_WORD;
            for (const auto &u : k_upper_words) {
                if (u.text == word) {
                    type = u.type;
                }
            }
        }
        break;
    }
    *len = static_cast<u32>(q - p);
    *pos = q;
    return type;
}

i32 cli_set_range_value(const char *token, u32 len, i64 *min, i64 *max)
{
    const char *end = token + len;
    if (len < 5 || token[0] != '<' || end[-1] != '>') {
        return -1;
    }
    const char *mid = _range_bound(token + 1, end - 1);
    if (mid == nullptr || *mid != '-' || _range_bound(mid + 1, end - 1) != end - 1) {
        return -1;
    }
    const char *stop = nullptr;
    if (cli_string_to_int(token + 1, mid, min, &stop) != 0 || cli_string_to_int(mid + 1, end - 1, max, &stop) != 0) {
        return -1;
    }
    return 0;
}

i32 cli_string_to_int(const char *p, const char *end, i64 *value, const char **stop)
{
    const char *q = p;
    bool neg = false;
    if (q < end && (*q == '+' || *q == '-')) {
        neg = *q == '-';
        q++;
    }
    i64 v = 0;
    while (q < end && *q >= '0' && *q <= '9') {
        v = v * 10 + (*q - '0');
        if (v > 4294967295LL + 1) {
            break;
        }
        q++;
    }
    *stop = q;
    if (q < end && !cli_is_space(*q)) {
        return -1;
    }
    v = neg ? -v : v;
    if (v < -2147483648LL || v > 4294967295LL) {
        return -1;
    }
    *value = v;
    return 0;
}

const char *cli_word_end(const char *p, const char *end, u32 quoted)
{
    bool in_quote = false;
    while (p < end) {
        const char c = *p;
        if (quoted != 0 && c == '\\' && p + 1 < end) {
            p += 2;
            continue;
        }
        if (quoted != 0 && c == '"') {
            in_quote = !in_quote;
        } else if (!in_quote && cli_is_space(c)) {
            break;
        }
        p++;
    }
    return p;
}

cli_match_func_t cli_matchNode(const cli_node *node)
{
    return node->type < k_type_count ? k_match_table[node->type] : _match_none;
}

} // extern "C"
