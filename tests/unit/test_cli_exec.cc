// Running lines through cli_cmd_execute on the library's own command
// records: messages, help requests, modes and prompts, the commands of
// every mode, remote hooks, the exit and the lock table.
#include <thread>

#include "app/diag_shell/users/release/cli_init.h"
#include "tests/support/cli_fixture.h"
#include "tests/support/cli_lines.h"

using namespace tide::test;

namespace {

class CliExec : public ::testing::Test, public CliLines {
protected:
    void SetUp() override
    {
        last_call() = HandlerCall{};
        ASSERT_EQ(run(""), 0); // builds the tree
        ASSERT_EQ(out_, "");
    }
    void TearDown() override
    {
        cli_ctree_free();
        cli_debug_on_off(1, 0);
        _legacy_cmd = cli_legacy_cmd{};
    }

    // A line run without a capture buffer: what reaches the console.
    static std::string run_on_console(const char *line, i32 *result = nullptr)
    {
        ::testing::internal::CaptureStdout();
        const i32 r = cli_cmd_execute(0, line, nullptr, 0);
        if (result != nullptr) {
            *result = r;
        }
        return ::testing::internal::GetCapturedStdout();
    }
    static void add_mode(const char *mode)
    {
        for (const CatalogueCmd &c : k_catalogue) {
            if (std::string(c.mode) == mode) {
                ASSERT_EQ(register_with_help(record_handler, c.cmd, static_cast<u32>(cli_mode_by_name(mode))), 0);
            }
        }
    }

};

TEST_F(CliExec, HelpRequestListsWhatMayFollowWithCrLast)
{
    add_mode("stp");
    EXPECT_EQ(run("stp"), 0);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config/stp)#");
    EXPECT_EQ(run("show stp vlan 5 ?"), 0);
    EXPECT_EQ(out_, "?\r\n  <cr>\r\n");
    EXPECT_EQ(run("show stp vlan ?"), 0);
    EXPECT_EQ(out_, "?\r\n  WORD  WORD help\r\n");
    EXPECT_EQ(run("show stp ?"), 0);
    EXPECT_EQ(out_, "?\r\n  vlan   vlan help\r\n  WORD   WORD help\r\n  port   port help\r\n  state  state help\r\n"
                    "  <cr>\r\n");
    // Touching the last word: help for the next one if it is complete, the
    // keywords it could be otherwise.
    EXPECT_EQ(run("show stp?"), 0);
    EXPECT_EQ(out_, "?\r\n  vlan   vlan help\r\n  WORD   WORD help\r\n  port   port help\r\n  state  state help\r\n"
                    "  <cr>\r\n");
    EXPECT_EQ(run("show s?"), 0);
    EXPECT_EQ(out_, "Ambiguous command: stp \r\n");
    EXPECT_EQ(run("show stp vlan 5?"), 0);
    EXPECT_EQ(out_, "?\r\n  WORD  WORD help\r\n");
    EXPECT_EQ(run("nothing ?"), 0);
    EXPECT_EQ(out_, "?\r\nUnrecognized command\r\n");
    // A help request never runs the command.
    EXPECT_EQ(last_call().calls, 0);
    EXPECT_EQ(run("show stp vlan 5"), 0);
    EXPECT_EQ(last_call().calls, 1);
    EXPECT_EQ(last_call().mode, 25u);
}

TEST_F(CliExec, EveryModeHasTheModeWordsExitAndChipId)
{
    // The items of every mode, apart from the command families.
    u32 items = 0;
    for (cli_list_link *l = cli_cmd_init_list.next; l != &cli_cmd_init_list; l = l->next) {
        auto *item = reinterpret_cast<cli_cmd_item *>(reinterpret_cast<char *>(l) - offsetof(cli_cmd_item, node));
        items += (item->flags & (CLI_FLAG_VIEW | CLI_FLAG_GLOBAL)) != 0 ? 1 : 0;
    }
    // 44 modes: the chip's 43 and "sim".
    EXPECT_EQ(items, 44u * 43u + 43u + 44u);
    EXPECT_EQ(run("?"), 0);
    EXPECT_EQ(out_.rfind("?\r\n  terminal      Terminal\r\n  ptp           (G) Access ptp mode\r\n", 0), 0u) << out_;
    EXPECT_NE(out_.find("  debug         (G) Access debug mode\r\n"), std::string::npos);
    EXPECT_NE(out_.find("  chip-id       Select the chip that commands act on\r\n"), std::string::npos);
    EXPECT_EQ(out_.find("exit"), std::string::npos);
    EXPECT_EQ(out_.find("config"), std::string::npos);
    EXPECT_EQ(out_.find("<cr>"), std::string::npos);
    // A mode with no commands of its own yet shows the mode words' column.
    EXPECT_EQ(run("storm"), 0);
    EXPECT_EQ(run("?"), 0);
    EXPECT_NE(out_.find("  exit          End current mode and down to previous mode\r\n"), std::string::npos);
    // With the whole vocabulary of the chip on top, the tree holds 2621
    // items and no definition disagrees with another.
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(register_catalogue(record_handler), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(items + sizeof(k_catalogue) / sizeof(k_catalogue[0]), 2621u);
}

TEST_F(CliExec, ModesSwitchDirectlyAndExitGoesBackToConfig)
{
    // config has no exit: there is nothing below it.
    EXPECT_EQ(run("exit"), -1);
    EXPECT_EQ(out_, "Unrecognized command\r\n");
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config)#");
    EXPECT_EQ(run("vlan"), 0);
    EXPECT_EQ(g_clitree->mode, 14u);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config/vlan)#");
    EXPECT_EQ(run("port-isolate"), 0);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config/port-isolate)#");
    EXPECT_EQ(run("EXIT"), 0);
    EXPECT_EQ(g_clitree->mode, 0u);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config)#");
    EXPECT_EQ(cli_view_custom(1, "qos"), 0);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-1 Diag-Shell(config/qos)#");
    EXPECT_EQ(cli_view_custom(1, "nope"), -1);
    setchipidPrompt(3);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-3 Diag-Shell(config/qos)#");
    cli_setPrompt(0, std::string(119, 'p').c_str());
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-3 Diag-Shell(config/qos)#");
    EXPECT_EQ(cli_view_config(0), 0);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-0 Diag-Shell(config)#");
}

TEST_F(CliExec, ChipIdTakesAChipOfTheRegistryWithinItsRange)
{
    shr_chip_type_assign(2, SHR_CHIP_TYPE_ATOLREEF, 0);
    EXPECT_EQ(run("chip-id 2"), 0);
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-2 Diag-Shell(config)#");
    EXPECT_EQ(run("chip-id 16"), -3);
    EXPECT_EQ(out_, "chip_id 16 invalid\nCommand execute(errcode=-3)\r\n");
    EXPECT_EQ(run("chip-id 17"), -1);
    EXPECT_EQ(out_, "Unrecognized command\r\n");
    EXPECT_STREQ(cli_ctree_getprompt(), "Chip-2 Diag-Shell(config)#");
    shr_chip_type_assign(2, SHR_CHIP_TYPE_NULL, 0);
}

TEST_F(CliExec, ResultsAndTheirMessages)
{
    ASSERT_EQ(register_with_help(record_handler, "probe (fast | slow) WORD", 0), 0);
    last_call().result = -7;
    EXPECT_EQ(run("probe f x", 2), -7);
    EXPECT_EQ(out_, "Command execute(errcode=-7)\r\n");
    EXPECT_EQ(last_call().chip, 2u);
    EXPECT_EQ(last_call().argv, (std::vector<std::string>{"fast", "x"}));
    last_call().result = 0;
    EXPECT_EQ(run("probe slow y"), 0);
    EXPECT_EQ(out_, "return OK\r\n");
    cli_debug_on_off(1, 1);
    EXPECT_EQ(run("probe slow y"), 0);
    EXPECT_EQ(out_, "");
    EXPECT_EQ(run("probe"), -1);
    EXPECT_EQ(out_, "Ambiguous command: probe \r\n");
    EXPECT_EQ(run("probe s"), -1);
    EXPECT_EQ(out_, "Ambiguous command: slow \r\n");
    EXPECT_EQ(run("probe x"), -1);
    EXPECT_EQ(out_, "Unrecognized command\r\n");
    EXPECT_EQ(run("nonsense"), -1);
    EXPECT_EQ(out_, "Unrecognized command\r\n");
    ASSERT_EQ(cli_register_cmd(nullptr, -1, "orphan", 0, 0, 15, nullptr), 0);
    EXPECT_EQ(run("orphan"), 1);
    EXPECT_EQ(out_, "Command execute(errcode=1)\r\n");
    EXPECT_EQ(cli_cmd_execute(0, nullptr, buf_, sizeof(buf_)), -1);
    // A piece of text that does not fit the buffer is dropped whole.
    char small[10] = "xxxxxxxxx";
    EXPECT_EQ(cli_cmd_execute(0, "nonsense", small, sizeof(small)), -1);
    EXPECT_STREQ(small, "");
}

TEST_F(CliExec, WithoutABufferTheConsoleGetsTheVerdict)
{
    i32 r = 0;
    EXPECT_EQ(run_on_console("nonsense", &r), "Unrecognized command\r\nreturn FAIL\r\n");
    EXPECT_EQ(r, -1);
    EXPECT_EQ(run_on_console("vlan", &r), "return OK\r\n");
    EXPECT_EQ(r, 0);
    EXPECT_EQ(run_on_console("# a comment line", &r), "");
    EXPECT_EQ(r, 0);
    EXPECT_EQ(run_on_console("   ", &r), "");
}

TEST_F(CliExec, AmbiguousAbbreviationNamesItsCandidates)
{
    add_mode("port");
    EXPECT_EQ(run("port"), 0);
    // In port mode "po" is both the port commands and the port-isolate mode.
    EXPECT_EQ(run("po 3 sp 1G"), -1);
    EXPECT_EQ(out_, "Ambiguous command: port port-isolate \r\n");
    EXPECT_EQ(run("port 3 sp 1G"), 0);
    EXPECT_EQ(last_call().argv, (std::vector<std::string>{"3", "1G"}));
}

TEST_F(CliExec, HiddenWordsRunButStayOutOfHelpAndCompletion)
{
    ASSERT_EQ(register_with_help(record_handler, "secret-reset", 0, CLI_FLAG_HIDDEN), 0);
    EXPECT_EQ(run("?"), 0);
    EXPECT_EQ(out_.find("secret"), std::string::npos);
    EXPECT_EQ(run("secret?"), 0);
    EXPECT_EQ(out_, "?\r\nUnrecognized command\r\n");
    EXPECT_EQ(run("secret-r"), -1);
    EXPECT_EQ(run("secret-reset"), 0);
    EXPECT_EQ(last_call().calls, 1);
}

i32 _check_remote(void *context, i32 funcid)
{
    return context != nullptr && funcid == 7 ? 1 : 0;
}

i32 _execute_remote(void *context, i32 funcid, u32 mode, i32 argc, char **argv)
{
    auto *seen = static_cast<std::string *>(context);
    *seen = std::to_string(funcid) + "/" + std::to_string(mode) + "/" + std::to_string(argc) + "/" + argv[0];
    return -5;
}

TEST_F(CliExec, AClientsHooksRunItsCommandsRemotely)
{
    std::string seen;
    const cli_legacy_cmd hooks = {&seen, nullptr, nullptr, _execute_remote, _check_remote};
    ASSERT_EQ(legacy_cmd_reg_once(&hooks), 0);
    EXPECT_EQ(legacy_cmd_reg_once(&hooks), -1);
    ASSERT_EQ(register_with_help(record_handler, "remote WORD", 0, 0, 7), 0);
    ASSERT_EQ(register_with_help(record_handler, "local", 0, 0, 8), 0);
    EXPECT_EQ(run("remote abc"), -5);
    EXPECT_EQ(seen, "7/0/1/abc");
    EXPECT_EQ(last_call().calls, 0);
    EXPECT_EQ(run("local"), 0);
    EXPECT_EQ(last_call().calls, 1);
}

i32 g_exit_hook_chip = -1;

i32 _exit_hook(u32 chip_id)
{
    g_exit_hook_chip = static_cast<i32>(chip_id);
    return 0;
}

i32 _quit(u32 chip_id, u32, i32, char **)
{
    return cli_diagshell_exit(chip_id);
}

TEST_F(CliExec, ExitEndsTheShell)
{
    ASSERT_EQ(register_with_help(_quit, "quit", 0), 0);
    // Run with a capture buffer, the exit frees the tree; the next line
    // builds it again.
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(run("quit"), 0);
    ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(g_clitree, nullptr);
    EXPECT_EQ(g_main_clitree, nullptr);
    EXPECT_EQ(run("vlan"), 0);
    EXPECT_EQ(out_, "return OK\r\n");
    // A client's exit hook runs after the monitor is switched off.
    g_clitree->exit_hook = _exit_hook;
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(cli_diagshell_exit(3), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Unrecognized command\r\nreturn FAIL\r\n");
    EXPECT_EQ(g_exit_hook_chip, 3);
}

TEST_F(CliExec, LinesFromSeveralThreadsDoNotMix)
{
    auto worker = [](const char *line, const char *want, bool *ok) {
        char buf[4096];
        for (int i = 0; i < 200 && *ok; i++) {
            *ok = cli_cmd_execute(0, line, buf, sizeof(buf)) <= 0 && std::string(buf) == want;
        }
    };
    ASSERT_EQ(run("?"), 0);
    const std::string help = out_;
    bool a = true;
    bool b = true;
    std::thread t1(worker, "nonsense", "Unrecognized command\r\n", &a);
    std::thread t2(worker, "?", help.c_str(), &b);
    t1.join();
    t2.join();
    EXPECT_TRUE(a);
    EXPECT_TRUE(b);
}

TEST(CliLock, OneLockPerFamilyAndChip)
{
    shr_chip_cur_num_assign(2);
    ASSERT_EQ(cli_user_init(), 0);
    EXPECT_EQ(cli_lock_take(1, CLI_LOCK_HASH, __FILE__, __LINE__), 0);
    EXPECT_EQ(cli_lock_take(1, CLI_LOCK_HASH, __FILE__, __LINE__), 0); // recursive
    EXPECT_EQ(cli_lock_give(1, CLI_LOCK_HASH, __FILE__, __LINE__), 0);
    EXPECT_EQ(cli_lock_give(1, CLI_LOCK_HASH, __FILE__, __LINE__), 0);
    EXPECT_EQ(cli_lock_take(2, CLI_LOCK_L2, __FILE__, __LINE__), -17);
    EXPECT_EQ(cli_lock_take(0, CLI_LOCK_COUNT, __FILE__, __LINE__), -4);
    EXPECT_EQ(cli_lock_give(4, 0, __FILE__, __LINE__), -4);
    EXPECT_STREQ(g_cli_lock_desc[CLI_LOCK_TRUNK], "cli_trunk");
    cli_user_deinit();
    EXPECT_EQ(cli_lock_take(0, CLI_LOCK_L2, __FILE__, __LINE__), -17);
    shr_chip_cur_num_assign(0);
}

} // namespace
