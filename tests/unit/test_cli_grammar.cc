// The command language's definitions: tokens, the compiled tree with its
// shared nodes and help lines, groups, sets, repetition, and the reports
// of definitions that disagree.
#include <utility>

#include "tests/support/cli_fixture.h"

using namespace tide::test;

namespace {

class CliGrammar : public CliTree {};

std::vector<std::pair<u32, std::string>> tokens(const char *def)
{
    std::vector<std::pair<u32, std::string>> out;
    const char *pos = def;
    for (;;) {
        const char *tok = nullptr;
        u32 len = 0;
        const u32 type = cli_match_type_from_str(&pos, &tok, &len);
        if (type == CLI_TK_END) {
            return out;
        }
        out.emplace_back(type, std::string(tok, len));
        if (type == CLI_TK_BAD) {
            return out;
        }
    }
}

// cli_cmd_register with as many help lines as the sequence is long, then
// `last`.
template <size_t... I>
i32 register_lines(std::index_sequence<I...>, const char *last)
{
    return cli_cmd_register(record_handler, -1, "many", 3, 0, 15, ((void)I, "help")..., last);
}

u32 type_of(const char *token)
{
    const auto t = tokens(token);
    return t.size() == 1 && t[0].second == token ? t[0].first : 999u;
}

TEST(CliTokens, DefinitionStringsSplitIntoTypedTokens)
{
    using T = std::vector<std::pair<u32, std::string>>;
    EXPECT_EQ(tokens("show stp (vlan WORD | WORD)"),
              (T{{14, "show"}, {14, "stp"}, {0, "("}, {14, "vlan"}, {17, "WORD"}, {8, "|"}, {17, "WORD"}, {1, ")"}}));
    EXPECT_EQ(tokens("\tl2\r\n{a|b}[c]`x'"), (T{{14, "l2"}, {2, "{"}, {14, "a"}, {8, "|"}, {14, "b"}, {3, "}"},
                                                {4, "["}, {14, "c"}, {5, "]"}, {6, "`"}, {14, "x"}, {7, "'"}}));
    EXPECT_EQ(tokens("(WORD|) || > .WORD ?x"), (T{{0, "("}, {17, "WORD"}, {8, "|"}, {1, ")"}, {9, "||"}, {10, ">"},
                                                  {11, "."}, {17, "WORD"}, {12, "?"}, {14, "x"}}));
    const std::pair<const char *, u32> kinds[] = {
        {"<1-16>", 13},      {"<-5--1>", 13},   {"<+0-4294967295>", 13},    {"10G", 14},   {"*", 14},
        {"tcam-mgmt", 14},   {"a_b+c", 14},     {"LINE", 16},               {"WORD", 17},  {"WROD", 17},
        {"BIT", 17},         {"A.B.C.D", 18},   {"A.B.C.D/M", 19},          {"X:X::X:X", 20},
        {"X:X::X:X/M", 21},  {"HH:MM:SS", 22},  {"AA:NN", 23},              {"XX:XX:XX:XX:XX:XX", 24},
        {"MAC", 25},         {"IFNAME", 26},
    };
    for (const auto &[text, type] : kinds) {
        EXPECT_EQ(type_of(text), type) << text;
    }
    // Tokens that fit no rule stop the definition.
    for (const char *bad : {"@", "<1-x>", "<12345678901-2>", "<1-2", "<->", "-x"}) {
        const auto t = tokens(bad);
        ASSERT_FALSE(t.empty()) << bad;
        EXPECT_EQ(t.back().first, CLI_TK_BAD) << bad;
    }
    i64 lo = 0;
    i64 hi = 0;
    ASSERT_EQ(cli_set_range_value("<-5--1>", 7, &lo, &hi), 0);
    EXPECT_EQ(lo, -5);
    EXPECT_EQ(hi, -1);
}

TEST_F(CliGrammar, DefinitionsShareTheirBeginningAndKeepTheFirstHelpLine)
{
    ASSERT_EQ(cli_cmd_register(record_handler, -1, "show stp (vlan WORD | WORD)", 25, 0, 15, "Show", "STP",
                               "By VLAN", "VLAN list", "Group id", nullptr),
              0);
    ASSERT_EQ(cli_cmd_register(record_handler, -1, "show stp state", 25, 0, 15, "Show again", "STP again",
                               "Global state", nullptr),
              0);
    const cli_node *show = child(root(25), "show");
    ASSERT_NE(show, nullptr);
    EXPECT_EQ(root(25)->next->count, 1u);
    EXPECT_EQ(show->refcnt, 2);
    EXPECT_STREQ(show->desc_str, "Show");
    const cli_node *stp = child(show, "stp");
    ASSERT_NE(stp, nullptr);
    EXPECT_STREQ(stp->desc_str, "STP");
    ASSERT_EQ(stp->next->count, 3u); // vlan, WORD, state
    const cli_node *vlan = child(stp, "vlan");
    const cli_node *group = child(stp, "WORD");
    ASSERT_NE(vlan, nullptr);
    ASSERT_NE(group, nullptr);
    // One help line per word, alternatives included, in definition order.
    EXPECT_STREQ(vlan->desc_str, "By VLAN");
    EXPECT_STREQ(child(vlan, "WORD")->desc_str, "VLAN list");
    EXPECT_STREQ(group->desc_str, "Group id");
    EXPECT_NE(vlan->attr & CLI_ATTR_GROUP, 0);
    EXPECT_EQ(stp->attr & CLI_ATTR_GROUP, 0);
    EXPECT_NE(group->cmd, nullptr);
    EXPECT_EQ(vlan->cmd, nullptr);
    EXPECT_EQ(describe("show stp ", 25), "?\r\n  vlan   By VLAN\r\n  WORD   Group id\r\n  state  Global state\r\n");
}

TEST_F(CliGrammar, RangeWordsKeepTheirBoundsAndHelp)
{
    ASSERT_EQ(cli_cmd_register(record_handler, -1, "chip-id <1-16>", 3, 0, 15, "Chip", "Chip number", nullptr), 0);
    ASSERT_EQ(cli_cmd_register(record_handler, -1, "route A.B.C.D/M", 3, 0, 15, "Route", "Prefix", nullptr), 0);
    const cli_node *range = child(child(root(), "chip-id"), "<1-16>");
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(range->type, CLI_TK_RANGE);
    EXPECT_EQ(range->range_min, 1);
    EXPECT_EQ(range->range_max, 16);
    EXPECT_EQ(child(child(root(), "route"), "A.B.C.D/M")->type, CLI_TK_IPV4_PREFIX);
    EXPECT_EQ(describe("chip-id "), "?\r\n  <1-16>  Chip number\r\n");
    EXPECT_EQ(describe("route "), "?\r\n  A.B.C.D/M  Prefix\r\n");
}

TEST_F(CliGrammar, ConflictingDefinitionIsReportedAndTheBuildGoesOn)
{
    ASSERT_EQ(add("show stp (vlan WORD | WORD)"), 0);
    cli_out().clear();
    // The same word outside a group.
    EXPECT_EQ(add("show stp WORD"), 0);
    EXPECT_EQ(cli_out(), "\r\ncli register wrong:[show stp WORD]\n[WORD] already exists with different symbol\r\n\r\n");
    // The same word behind another set of parents.
    ASSERT_EQ(add("a (b | c) d"), 0);
    cli_out().clear();
    EXPECT_EQ(add("a (b | e) d"), 0);
    EXPECT_EQ(cli_out(), "\r\ncli register wrong:[a (b | e) d]\n[d] add with different parent nodes\r\n\r\n");
    // Both definitions are in the tree, and so is what follows.
    ASSERT_EQ(add("l2 learn (enable | disable)"), 0);
    EXPECT_EQ(parse("show stp 5"), 0);
    EXPECT_EQ(parse("a e d"), 0);
    EXPECT_EQ(parse("a c d"), 0);
    EXPECT_EQ(parse("l2 learn en"), 0);
    EXPECT_EQ(args(), std::vector<std::string>{"enable"});
}

TEST_F(CliGrammar, FaultyDefinitionsAreRefused)
{
    EXPECT_EQ(add("bad @ word"), -1);
    EXPECT_EQ(add("open (a | b"), -1);
    EXPECT_EQ(add("wrong (a | b}"), -1);
    // What was built before the fault stays.
    EXPECT_NE(child(root(), "bad"), nullptr);
    EXPECT_EQ(parse("bad"), 1);
    EXPECT_EQ(add("fine", CLI_MODE_MAX + 1), -1);
    EXPECT_EQ(add("fine", CLI_MODE_MAX), 0);
    // The help lines of cli_cmd_register must end within 257 entries.
    EXPECT_EQ(register_lines(std::make_index_sequence<256>{}, nullptr), 0);
    EXPECT_EQ(register_lines(std::make_index_sequence<257>{}, nullptr), -1);
    EXPECT_EQ(cli_register_cmd(record_handler, -1, nullptr, 3, 0, 15, nullptr), -1);
}

TEST_F(CliGrammar, SetTakesEachAlternativeOnceInAnyOrder)
{
    ASSERT_EQ(add("l2 mac-limit {port (WORD |)| vlan-vfi | glb} (enable | disable)"), 0);
    EXPECT_EQ(parse("l2 mac-limit glb port 3 enable"), 0);
    EXPECT_EQ(args(), (std::vector<std::string>{"glb", "port", "3", "enable"}));
    EXPECT_EQ(parse("l2 mac-limit port vlan-vfi glb disable"), 0);
    EXPECT_EQ(parse("l2 mac-limit glb glb enable"), 5);
    EXPECT_EQ(parse("l2 mac-limit enable"), 5); // at least one
    EXPECT_EQ(complete("l2 mac-limit glb "), (std::vector<std::string>{"port", "vlan-vfi", "enable", "disable"}));
    // Used alternatives are no longer offered.
    EXPECT_EQ(describe("l2 mac-limit port vlan-vfi "),
              "?\r\n  glb      glb help\r\n  enable   enable help\r\n  disable  disable help\r\n");
}

TEST_F(CliGrammar, OptionalGroupsRepetitionAndJoinedWords)
{
    ASSERT_EQ(add("opt [a | b] end"), 0);
    EXPECT_EQ(parse("opt end"), 0);
    EXPECT_EQ(parse("opt b a end"), 0);
    EXPECT_EQ(parse("opt a a end"), 5);
    ASSERT_EQ(add("echo .WORD"), 0);
    EXPECT_EQ(parse("echo x y z"), 0);
    EXPECT_EQ(args(), (std::vector<std::string>{"x", "y", "z"}));
    ASSERT_EQ(add("name (WORD WORD' done"), 0);
    EXPECT_EQ(parse("name first second done"), 0);
    EXPECT_EQ(args(), std::vector<std::string>{"first second"});
    ASSERT_EQ(add("stamp ?WORD WORD"), 0);
    EXPECT_NE(child(child(root(), "stamp"), "WORD")->attr & CLI_ATTR_ONCE, 0);
}

} // namespace
