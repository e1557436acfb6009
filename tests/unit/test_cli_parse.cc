// The parser: match grades, abbreviations, parameters, limits, hidden
// words, pipes and completion.
#include <string>

#include "tests/support/cli_fixture.h"

using namespace tide::test;

namespace {

class CliParse : public CliTree {};

using Words = std::vector<std::string>;

TEST_F(CliParse, KeywordBeatsNumberBeatsWord)
{
    ASSERT_EQ(add("show stp (vlan WORD | WORD)"), 0);
    EXPECT_EQ(parse("show stp vlan 5"), 0);
    EXPECT_EQ(args(), (Words{"vlan", "5"}));
    EXPECT_EQ(parse("show stp v 5"), 0); // a prefix of a keyword still beats a word
    EXPECT_EQ(args(), (Words{"vlan", "5"}));
    EXPECT_EQ(parse("show stp 7"), 0);
    EXPECT_EQ(args(), Words{"7"});
    EXPECT_EQ(parse("show stp vlan"), 1);
    ASSERT_EQ(add("speed (10g | <1-100>) (<1-100> | WORD)"), 0);
    EXPECT_EQ(parse("speed 10 5"), 0); // "10" is the beginning of "10g"
    EXPECT_EQ(args(), (Words{"10g", "5"}));
    EXPECT_EQ(parse("speed 20 x5"), 0);
    EXPECT_EQ(args(), (Words{"20", "x5"}));
}

TEST_F(CliParse, AbbreviationsResolveAndReachTheHandlerInTheirDefinedSpelling)
{
    for (const CatalogueCmd &c : k_catalogue) {
        if (std::string(c.mode) == "port") {
            ASSERT_EQ(register_with_help(record_handler, c.cmd, 8), 0) << c.cmd;
        }
    }
    EXPECT_EQ(parse("po 3 sp 1G", 8), 0);
    EXPECT_EQ(args(), (Words{"3", "1G"}));
    EXPECT_EQ(parse("PORT 3 SPEED 1g", 8), 0);
    EXPECT_EQ(args(), (Words{"3", "1G"}));
    EXPECT_EQ(parse("po 3 sp 1", 8), 4); // 1G, 100M, 100G, 112G
    EXPECT_EQ(complete("po 3 sp 10", 8), (Words{"10M", "100M", "10G", "100G"}));
    ASSERT_EQ(add("l2 learn (enable | disable)"), 0);
    EXPECT_EQ(parse("L2 LEARN EN"), 0);
    EXPECT_EQ(args(), Words{"enable"});
}

TEST_F(CliParse, SharedPrefixIsAmbiguousUnlessTypedInFull)
{
    ASSERT_EQ(add("l2 learn (enable | disable)"), 0);
    ASSERT_EQ(add("l2 learn-aging-mode (software | hardware)"), 0);
    EXPECT_EQ(parse("l2 lea enable"), 4);
    EXPECT_EQ(parse("l2 learn enable"), 0);
    EXPECT_EQ(complete("l2 lea"), (Words{"learn", "learn-aging-mode"}));
    EXPECT_EQ(describe("l2 lea"), "?\r\n  learn             learn help\r\n  learn-aging-mode  learn-aging-mode help\r\n");
    EXPECT_EQ(describe("l2 lea enable"), "?\r\nAmbiguous command:  \"l2 lea enable\"\r\n");
}

TEST_F(CliParse, RangesAcceptTheirBoundsOnly)
{
    ASSERT_EQ(add("chip-id <0-16>"), 0);
    ASSERT_EQ(add("offset <-10-10>"), 0);
    ASSERT_EQ(add("strict <0-16>", 3, CLI_FLAG_NO_PLUS), 0);
    for (const char *ok : {"chip-id 16", "chip-id 0", "chip-id +3", "chip-id 007", "chip-id -", "offset -10"}) {
        EXPECT_EQ(parse(ok), 0) << ok;
    }
    for (const char *no : {"chip-id 17", "chip-id -1", "chip-id 4294967296", "chip-id 1x", "offset 11",
                           "strict +3", "chip-id 99999999999999999999"}) {
        EXPECT_EQ(parse(no), 5) << no;
    }
    EXPECT_EQ(parse("chip-id 16"), 0);
    EXPECT_EQ(args(), Words{"16"}); // stored as typed
    EXPECT_EQ(parse("strict 3"), 0);
}

TEST_F(CliParse, LongWordsAndLongLinesAreRefused)
{
    ASSERT_EQ(add("echo .WORD"), 0);
    const std::string w256(256, 'w');
    EXPECT_EQ(parse(("echo " + w256).c_str()), 0);
    EXPECT_EQ(args(), Words{w256});
    EXPECT_EQ(parse(("echo " + w256 + "w").c_str()), 7);
    std::string line = "echo";
    for (int i = 0; i < 256; i++) {
        line += " " + std::to_string(i);
    }
    EXPECT_EQ(parse(line.c_str()), 0);
    EXPECT_EQ(t_->argc, 256);
    EXPECT_EQ(parse((line + " x").c_str()), 5);
}

TEST_F(CliParse, TypedValuesAreGradedByShape)
{
    ASSERT_EQ(add("ip A.B.C.D"), 0);
    ASSERT_EQ(add("net A.B.C.D/M"), 0);
    ASSERT_EQ(add("mac XX:XX:XX:XX:XX:XX"), 0);
    ASSERT_EQ(add("dmac MAC"), 0);
    ASSERT_EQ(add("at HH:MM:SS"), 0);
    ASSERT_EQ(add("any (A.B.C.D | WORD)"), 0);
    const std::pair<const char *, int> cases[] = {
        {"ip 10.0.0.1", 0},          {"ip 10.0", 1},           {"ip 10.0 x", 5},         {"ip 256.1.1.1", 5},
        {"ip 1.2.3.4.5", 5},         {"net 10.0.0.0/8", 0},    {"net 10.0.0.0", 1},      {"net 10.0.0.0/", 1},
        {"net 10.0.0.0/33", 5},      {"mac 00:1a:2B:33:44:55", 0}, {"mac 00:1a", 1},     {"mac 0:1:2:3:4:5", 5},
        {"dmac 0011.2233.aabb", 0},  {"dmac 0011.22", 1},      {"at 12:60:60", 0},       {"at 13:00:00", 5},
        {"at 9:5", 1},
    };
    // Graded for help (1: the beginning of a value) ...
    for (const auto &[line, want] : cases) {
        EXPECT_EQ(parse(line, 3, 0), want) << line;
    }
    // ... while a line to run needs whole values.
    EXPECT_EQ(parse("ip 10.0"), 5);
    EXPECT_EQ(parse("ip 10.0.0.1"), 0);
    // A complete address beats a free word; an unfinished one loses to it.
    EXPECT_EQ(parse("any 10.1.1.1"), 0);
    EXPECT_EQ(t_->matched->type, CLI_TK_IPV4);
    EXPECT_EQ(parse("any 10.1"), 0);
    EXPECT_EQ(t_->matched->type, CLI_TK_WORD);
}

TEST_F(CliParse, QuotedWordsAndTheRestOfTheLine)
{
    ASSERT_EQ(add("set name WORD"), 0);
    ASSERT_EQ(add("say LINE"), 0);
    EXPECT_EQ(parse("set name \"a b\""), 0);
    EXPECT_EQ(args(), Words{"\"a b\""});
    EXPECT_EQ(parse("set name a\\ b"), 0);
    EXPECT_EQ(args(), Words{"a\\ b"});
    EXPECT_EQ(parse("set name a b"), 5);
    EXPECT_EQ(parse("say hello   big world"), 0);
    EXPECT_EQ(args(), Words{"hello   big world"});
}

TEST_F(CliParse, EmptyLinesCommentsAndModes)
{
    ASSERT_EQ(add("l2 show"), 0);
    for (const char *empty : {"", "   \t", "# l2 show", "  ! note"}) {
        EXPECT_EQ(parse(empty), 3) << empty;
    }
    EXPECT_EQ(parse("l2 show", 4), 6); // nothing installed there
    EXPECT_EQ(parse("l2 show", CLI_MODE_MAX + 1), 6);
    EXPECT_EQ(parse(nullptr), 7);
    EXPECT_EQ(cli_cmdstr_parse(nullptr, 3, 15, "l2", 1), 7);
    EXPECT_EQ(parse("l3 show"), 5);
    EXPECT_EQ(parse("l2 show extra"), 5);
}

TEST_F(CliParse, HiddenWordsRunWhenTypedInFullButAreNeverOffered)
{
    ASSERT_EQ(add("debug secret-dump", 3, CLI_FLAG_HIDDEN), 0);
    ASSERT_EQ(add("debug show"), 0);
    EXPECT_EQ(parse("debug secret-dump"), 0);
    EXPECT_EQ(parse("debug secret"), 5);
    EXPECT_EQ(parse("debug secret-dump", 3, 0), 5);
    EXPECT_EQ(complete("debug "), Words{"show"});
    EXPECT_EQ(complete("debug s"), Words{"show"});
    EXPECT_EQ(describe("debug "), "?\r\n  show  show help\r\n");
    // A word that a visible command also uses stays visible.
    ASSERT_EQ(add("debug secret-dump all"), 0);
    EXPECT_EQ(complete("debug "), (Words{"secret-dump", "show"}));
}

TEST_F(CliParse, WordsAboveTheLevelAreSkipped)
{
    ASSERT_EQ(register_with_help(record_handler, "reboot now", 3), 0);
    ASSERT_EQ(cli_cmd_register(record_handler, -1, "reset", 3, 0, 1, "Reset", nullptr), 0);
    EXPECT_EQ(parse("reboot now", 3, 1, 1), 5);
    EXPECT_EQ(parse("reset", 3, 1, 1), 0);
    EXPECT_EQ(parse("reboot now", 3, 1, 15), 0);
}

TEST_F(CliParse, PipeFollowsOnlyWhereTheDefinitionAllowsIt)
{
    ASSERT_EQ(add("show l2 `"), 0);
    ASSERT_EQ(add("show l2 cnt"), 0);
    ASSERT_EQ(add("show stp"), 0);
    cli_cmd_desc include = {"|| include LINE", -1, nullptr, nullptr, 0};
    ASSERT_EQ(cli_pipe_cmd_install(t_, 15, 0, &include), 0);
    EXPECT_EQ(parse("show l2 | include mac 1"), 0);
    EXPECT_EQ(args(), Words{});
    EXPECT_EQ(t_->pipe_argc, 1);
    EXPECT_STREQ(t_->pipe_argv[0], "mac 1");
    EXPECT_EQ(parse("show l2 | exclude x"), 5);
    EXPECT_EQ(parse("show stp | include x"), 5); // no pipe behind "stp"
    EXPECT_EQ(parse("show l2 cnt"), 0);
    EXPECT_EQ(parse("show | include x"), 2);
    EXPECT_EQ(parse("show l2 \"a|b\""), 5); // quoted: no pipe, and no such word
    EXPECT_EQ(describe("show l2 "),
              "?\r\n  cnt  cnt help\r\n  |    Output modifiers\r\n  >    Output redirection\r\n  <cr>\r\n");
    EXPECT_EQ(describe("show | x"), "?\r\nIncomplete command before pipe.\r\n");
}

TEST_F(CliParse, CompletionOffersKeywordsOfTheLastWordOrOfTheNextOne)
{
    ASSERT_EQ(add("show stp (vlan WORD | WORD)"), 0);
    ASSERT_EQ(add("show stp state"), 0);
    ASSERT_EQ(add("show storm"), 0);
    EXPECT_EQ(complete("show st"), (Words{"stp", "storm"}));
    EXPECT_EQ(complete("sh"), Words{"show"});
    EXPECT_EQ(complete("show stp "), (Words{"vlan", "state"})); // WORD is no keyword
    EXPECT_EQ(complete("show stp vlan 5 "), Words{});
    EXPECT_EQ(complete("show x"), Words{});
    EXPECT_EQ(complete(""), Words{});
}

TEST_F(CliParse, HelpTextIsFoldedToTheWidth)
{
    ASSERT_EQ(cli_cmd_register(record_handler, -1, "fold (a | bb)", 3, 0, 15, "Fold",
                               "one two three four five six seven", "x", nullptr),
              0);
    // 20 columns: 6 of margins and 2 of words leave 12 for the text.
    EXPECT_EQ(describe("fold ", 3, 20), "?\r\n  a   one two\r\n      three four\r\n      five six\r\n      seven\r\n"
                                        "  bb  x\r\n");
}

} // namespace
