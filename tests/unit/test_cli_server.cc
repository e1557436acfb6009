// The shell server over its socket: handshake, paged download, executions
// with streamed output, the exchange discipline, clients that lie, clients
// that come and go, concurrent clients, terminal monitors, start-up
// commands, sockets and stopping.
#include <dirent.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "app/diag_shell/users/release/cli_init.h"
#include "tests/support/shell_client.h"
#include "tests/support/temp_dir.h"
#include "tests/support/wait.h"

using namespace tide::test;

namespace {

std::atomic<int> g_counted;

i32 _echo(u32, u32, i32 argc, char **argv)
{
    for (i32 i = 0; i < argc; i++) {
        cli_output_show("%s", argv[i]);
    }
    return 0;
}

i32 _fail(u32, u32, i32, char **)
{
    cli_output_show("failed once\n");
    return -7;
}

// Prints exactly N bytes: a, b, c, ... z, a, ...
i32 _bytes(u32, u32, i32, char **argv)
{
    const size_t n = std::strtoul(argv[0], nullptr, 10);
    std::string s(n, 'a');
    for (size_t i = 0; i < n; i++) {
        s[i] = static_cast<char>('a' + i % 26);
    }
    cli_output_show("%s", s.c_str());
    return 0;
}

i32 _where(u32 chip, u32 mode, i32, char **)
{
    cli_output_show("chip %u mode %#x", chip, mode);
    return 0;
}

i32 _count(u32, u32, i32, char **)
{
    g_counted++;
    return 0;
}

const char *const k_help[] = {"h1", "h2", "h3", "h4", nullptr};
cli_cmd_desc g_test_desc[] = {
    {"test echo .WORD", -1, _echo, k_help, 0},   {"test fail", -1, _fail, k_help, 0},
    {"test bytes WORD", -1, _bytes, k_help, 0},  {"test where", -1, _where, k_help, 0},
    {"test count", -1, _count, k_help, 0},       {"test echo .WORD", -1, _echo, k_help, 0},
};
// The last record repeats the first in another mode: one string, two
// entries of the store.
cli_cmd_item g_test_items[] = {
    {&g_test_desc[0], 3, 0, 15, {}}, {&g_test_desc[1], 3, 0, 15, {}}, {&g_test_desc[2], 3, 0, 15, {}},
    {&g_test_desc[3], 3, 0, 15, {}}, {&g_test_desc[4], 3, 0, 15, {}}, {&g_test_desc[5], 5, 0, 15, {}},
};

size_t _entries(const char *dir)
{
    size_t n = 0;
    if (DIR *d = opendir(dir)) {
        while (readdir(d) != nullptr) {
            n++;
        }
        closedir(d);
    }
    return n;
}

// Clients in the terminal monitor table.
u32 _monitors()
{
    xsal_mutex_lock(terminal_monitor_client_ctl.lock);
    u32 n = 0;
    for (const cli_client *c : terminal_monitor_client_ctl.client) {
        n += c != nullptr;
    }
    xsal_mutex_unlock(terminal_monitor_client_ctl.lock);
    return n;
}

// The server collects a finished client on its timer, every 5 seconds.
constexpr auto k_collect_limit = std::chrono::seconds(5) + tide_test::kPatience;

void _link_test_items()
{
    static bool linked = false;
    if (!linked) {
        cli_cmd_items_link(g_test_items, sizeof(g_test_items) / sizeof(g_test_items[0]));
        linked = true;
    }
}

class CliServer : public ::testing::Test {
protected:
    void SetUp() override
    {
        _link_test_items();
        path_ = dir_.file("shell.sock");
        ASSERT_EQ(cli_server_socket_path_set(path_.c_str()), 0);
        ASSERT_EQ(cli_server_main(0), 0);
    }
    void TearDown() override
    {
        cli_server_wait(0);
        cli_allow_response_msg_set(1);
    }

    // A client that has shaken hands.
    std::unique_ptr<WireClient> client()
    {
        auto c = std::make_unique<WireClient>(path_);
        EXPECT_TRUE(c->ok());
        EXPECT_TRUE(c->shake());
        return c;
    }

    tide_test::TempDir dir_;
    std::string path_;
};

TEST_F(CliServer, HandshakeAndPagedDownloadGiveEveryRecordOnceInInitListOrder)
{
    auto c = client();
    std::vector<const cli_cmd_item *> want;
    for (cli_list_link *l = cli_cmd_init_list.next; l != &cli_cmd_init_list; l = l->next) {
        want.push_back(reinterpret_cast<cli_cmd_item *>(reinterpret_cast<char *>(l) - offsetof(cli_cmd_item, node)));
    }
    // Pages of one to a few records, and one large page.
    for (i32 max_size : {1500, 100000}) {
        const std::vector<WireRecord> got = c->download(max_size);
        ASSERT_EQ(got.size(), want.size()) << max_size;
        for (size_t i = 0; i < got.size(); i++) {
            ASSERT_EQ(got[i].cmd, want[i]->desc->cmd) << i;
            ASSERT_EQ(got[i].mode, static_cast<i32>(want[i]->mode)) << i;
            ASSERT_EQ(got[i].flags, want[i]->flags) << i;
            ASSERT_EQ(got[i].priv, want[i]->priv) << i;
            ASSERT_EQ(got[i].funcid, -1);
        }
    }
    EXPECT_EQ(c->download(100000)[0].help, (std::vector<std::string>{"h1", "h2", "h3", "h4"}));
    // Past the end of the store, and a page too small for the first record.
    std::vector<WireRecord> none;
    i32 next = 0;
    EXPECT_EQ(c->reg_page(4095, 100000, &none, &next), 0);
    EXPECT_EQ(next, 4095);
    EXPECT_EQ(c->reg_page(7, 20, &none, &next), 0);
    EXPECT_EQ(next, 7);
    EXPECT_EQ(c->reg_page(-5, 100000, &none, &next), 0);
    EXPECT_EQ(next, -5);
    EXPECT_TRUE(none.empty());
}

TEST_F(CliServer, ExecutionsStreamTheirOutputAndEndWithTheHandlersCode)
{
    auto c = client();
    std::string out;
    EXPECT_EQ(c->exec("test echo .WORD", 3, {"ab", "cd"}, &out), 0);
    EXPECT_EQ(out, "abcd");
    out.clear();
    EXPECT_EQ(c->exec("test fail", 3, {}, &out), -7);
    EXPECT_EQ(out, "failed once\n");
    // The chip and the mode reach the handler, console flag included; the
    // store finds the record without it.
    out.clear();
    EXPECT_EQ(c->exec("test where", 3 | 0x100, {}, &out, 2), 0);
    EXPECT_EQ(out, "chip 2 mode 0x103");
    // One string in two modes; an unknown command or mode: -1 and no output.
    out.clear();
    EXPECT_EQ(c->exec("test echo .WORD", 5, {"x"}, &out), 0);
    EXPECT_EQ(out, "x");
    std::vector<u32> lengths;
    EXPECT_EQ(c->exec("test echo .WORD", 4, {"x"}, nullptr, 0, &lengths), -1);
    EXPECT_EQ(c->exec("no such command", 3, {}, nullptr, 0, &lengths), -1);
    EXPECT_TRUE(lengths.empty());
    // A mode switch is the client's business: nothing runs.
    EXPECT_EQ(c->exec("stp", 3, {}, nullptr, 0, &lengths), 0);
    EXPECT_TRUE(lengths.empty());
}

TEST_F(CliServer, OutputIsCutIntoMessagesOfTheSendBuffer)
{
    auto c = client();
    for (auto [bytes, want] : std::vector<std::pair<u32, std::vector<u32>>>{
             {4079, {4096}}, {4080, {4096, 18}}, {1, {18}}, {8158, {4096, 4096}}, {0, {}}}) {
        std::vector<u32> lengths;
        std::string out;
        ASSERT_EQ(c->exec("test bytes WORD", 3, {std::to_string(bytes)}, &out, 0, &lengths), 0);
        EXPECT_EQ(lengths, want) << bytes;
        EXPECT_EQ(out.size(), bytes);
    }
    // A megabyte arrives byte-exact before the code.
    std::string out;
    ASSERT_EQ(c->exec("test bytes WORD", 3, {"1048576"}, &out), 0);
    ASSERT_EQ(out.size(), 1048576u);
    for (size_t i = 0; i < out.size(); i++) {
        ASSERT_EQ(out[i], static_cast<char>('a' + i % 26)) << i;
    }
}

TEST_F(CliServer, AMessageThatLiesDropsThatClientOnly)
{
    auto good = client();
    // A client stuck halfway through a message does not hold anyone up.
    WireClient stuck(path_);
    std::vector<u8> half = wire_message(MSG_SHAKE_HANDE, {});
    half.resize(7);
    ASSERT_TRUE(stuck.send_raw(half));
    const std::vector<std::vector<u8>> lies = {
        wire_message(2, {}),                                   // no such type
        wire_message(9, {}),                                   // nor this
        wire_message(MSG_SHAKE_HANDE, {}, 15),                 // shorter than a header
        std::vector<u8>(CLI_MSG_HEAD_LEN, 0),                  // length 0
        wire_message(MSG_SHAKE_HANDE, {}, CLI_MSG_MAX_LEN + 1), // longer than any message
        wire_message(MSG_SHAKE_HANDE, {1, 2, 3, 4}),           // a body where none belongs
        wire_message(MSG_TERMINAL_MONITOR, {0}),
        wire_message(MSG_REG, {0, 0, 0, 0}),                   // half a request
        wire_message(MSG_REG, std::vector<u8>(12)),
        wire_message(MSG_EXEC, {'t', 'e', 's', 't'}),          // no NUL
        wire_message(MSG_EXEC, exec_body("test count", 0, 3, {"x"})),
    };
    std::vector<u8> argc_lie = exec_body("test count", 0, 3, {});
    argc_lie[11 + 8] = 1; // argc 1, no words
    ::testing::internal::CaptureStdout();
    for (size_t i = 0; i < lies.size() + 1; i++) {
        WireClient bad(path_);
        ASSERT_TRUE(bad.ok());
        std::vector<u8> m = i < lies.size() ? lies[i] : wire_message(MSG_EXEC, argc_lie);
        if (i == lies.size() - 1) {
            m[0] = static_cast<u8>(m[0] - 3); // the length cuts into the array
        }
        ASSERT_TRUE(bad.send_raw(m));
        EXPECT_TRUE(bad.closed()) << i;
        std::string out;
        EXPECT_EQ(good->exec("test echo .WORD", 3, {"still", "here"}, &out), 0) << i;
        EXPECT_EQ(out, "stillhere");
    }
    const std::string said = ::testing::internal::GetCapturedStdout();
    EXPECT_NE(said.find("unpack command exec message failed."), std::string::npos);
    EXPECT_EQ(g_counted.load(), 0);
    EXPECT_TRUE(good->shake());
}

TEST_F(CliServer, ASecondMessageBeforeTheReplyIsNotServed)
{
    auto c = client();
    std::vector<u8> two = wire_message(MSG_EXEC, exec_body("test count", 0, 3, {}));
    two.insert(two.end(), two.begin(), two.end());
    ::testing::internal::CaptureStdout();
    const bool sent = c->send_raw(two);
    const auto done = c->recv();
    const bool closed = c->closed();
    const std::string said = ::testing::internal::GetCapturedStdout();
    ASSERT_TRUE(sent);
    ASSERT_TRUE(done.has_value());
    EXPECT_EQ(done->type, MSG_EXEC_DONE);
    EXPECT_TRUE(closed);
    EXPECT_NE(said.find("error, trans_state is in write."), std::string::npos);
    EXPECT_EQ(g_counted.load(), 1);
}

TEST_F(CliServer, ClientsThatComeAndGoLeaveNoThreadOrDescriptorBehind)
{
    const size_t fds = _entries("/proc/self/fd");
    const size_t threads = _entries("/proc/self/task");
    for (int i = 0; i < 100; i++) {
        WireClient c(path_);
        ASSERT_TRUE(c.shake());
        if (i % 2 == 0) {
            std::string out;
            ASSERT_EQ(c.exec("test echo .WORD", 3, {"x"}, &out), 0);
        }
    }
    EXPECT_TRUE(tide_test::eventually(
        [&] { return _entries("/proc/self/fd") == fds && _entries("/proc/self/task") == threads; }, k_collect_limit))
        << _entries("/proc/self/fd") << " fds, " << _entries("/proc/self/task") << " threads";
}

TEST_F(CliServer, ConcurrentClientsGetExactlyTheirOwnOutput)
{
    constexpr int k_clients = 8;
    constexpr int k_runs = 1000;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int id = 0; id < k_clients; id++) {
        threads.emplace_back([&, id] {
            WireClient c(path_);
            if (!c.shake()) {
                wrong++;
                return;
            }
            for (int i = 0; i < k_runs; i++) {
                const std::string word = std::to_string(id) + "/" + std::to_string(i);
                std::string out;
                if (c.exec("test echo .WORD", 3, {word, "|"}, &out) != 0 || out != word + "|") {
                    wrong++;
                }
            }
        });
    }
    for (std::thread &t : threads) {
        t.join();
    }
    EXPECT_EQ(wrong.load(), 0);
}

TEST_F(CliServer, FiftyTerminalMonitorsGetTheConsoleTextAndTheFiftyFirstIsRefused)
{
    std::vector<std::unique_ptr<WireClient>> monitors;
    for (u32 i = 0; i < CLI_MONITOR_SLOTS; i++) {
        monitors.push_back(client());
        ASSERT_TRUE(monitors.back()->send(MSG_TERMINAL_MONITOR));
        const auto m = monitors.back()->recv();
        ASSERT_TRUE(m && m->type == MSG_TERMINAL_MONITOR && m->len == CLI_MSG_HEAD_LEN);
    }
    auto extra = client();
    ::testing::internal::CaptureStdout();
    ASSERT_TRUE(extra->send(MSG_TERMINAL_MONITOR));
    const auto m = extra->recv();
    ASSERT_TRUE(m && m->type == MSG_TERMINAL_MONITOR);
    EXPECT_EQ(output_show_console("to the monitors\n"), 0);
    const std::string console = ::testing::internal::GetCapturedStdout();
    EXPECT_NE(console.find("terminal monitor enable fail, reason for table full!"), std::string::npos);
    // The monitors entered by message are consoles: the process's console
    // is spared.
    EXPECT_EQ(console.find("to the monitors"), std::string::npos);
    for (auto &mon : monitors) {
        const auto text = mon->recv();
        ASSERT_TRUE(text && text->type == MSG_OUTPUT);
        EXPECT_STREQ(reinterpret_cast<const char *>(text->body.data()), "to the monitors\n");
    }
    // A monitor that leaves frees its place once its thread has seen the
    // end of its stream, and the next one takes it.
    monitors.pop_back();
    ASSERT_TRUE(tide_test::eventually([] { return _monitors() == CLI_MONITOR_SLOTS - 1; }));
    auto again = client();
    ASSERT_TRUE(again->send(MSG_TERMINAL_MONITOR));
    ASSERT_TRUE(again->recv().has_value());
    EXPECT_EQ(_monitors(), CLI_MONITOR_SLOTS);
    ::testing::internal::CaptureStdout();
    output_show_console("x");
    ::testing::internal::GetCapturedStdout();
    const auto text = again->recv();
    ASSERT_TRUE(text && text->type == MSG_OUTPUT);
    EXPECT_STREQ(reinterpret_cast<const char *>(text->body.data()), "x");
}

TEST_F(CliServer, AMonitorThatStopsReadingHoldsNobodyForLong)
{
    auto deaf = client();
    ASSERT_TRUE(deaf->send(MSG_TERMINAL_MONITOR));
    ASSERT_TRUE(deaf->recv().has_value());
    // Far more than the socket holds: the send gives up after 5 seconds
    // without room, and the console text is done with.  Only a send that
    // never gives up reaches the bound.
    const std::string big(8 << 20, 'm');
    ::testing::internal::CaptureStdout();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(output_show_console("%s", big.c_str()), 0);
    const auto took = std::chrono::steady_clock::now() - start;
    const std::string said = ::testing::internal::GetCapturedStdout();
    EXPECT_NE(said.find("terminal monitor timeout(ret:-2)."), std::string::npos);
    EXPECT_LT(took, std::chrono::seconds(5) + tide_test::kPatience);
    // It has left the monitor table: the next text goes to the console.
    ::testing::internal::CaptureStdout();
    output_show_console("next\n");
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "next\n");
    std::string out;
    EXPECT_EQ(client()->exec("test echo .WORD", 3, {"served"}, &out), 0);
    EXPECT_EQ(out, "served");
}

TEST(CliOutput, BeforeTheServerHasEverStartedNothingIsShown)
{
    // This process has never started a server: no client list exists.
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(cli_output_show("nowhere %d\n", 1), -1);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(CliServer, HandlerOutputOffAClientThread)
{
    // No client: the console.
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(cli_output_show("alone %d\n", 1), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "alone 1\n");
    // A client connected: this thread has none, so nothing is printed.
    auto c = client();
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(cli_output_show("lost %d\n", 2), -1);
    EXPECT_EQ(cli_output_show(nullptr), -1);
    const std::string said = ::testing::internal::GetCapturedStdout();
    EXPECT_EQ(said.find("lost"), std::string::npos);
    EXPECT_NE(said.find("[cli server] Format for custom output is empty."), std::string::npos);
    // Monitors off: the console gets the text.
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(output_show_console("console %s", "text"), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "console text");
}

TEST_F(CliServer, ServiceStopsForEveryClientWhenResponsesAreOff)
{
    auto c = client();
    cli_allow_response_msg_set(0);
    ASSERT_TRUE(c->send(MSG_SHAKE_HANDE));
    EXPECT_FALSE(c->recv(1).has_value());
}

TEST_F(CliServer, TheUnixSocketIsTheOwnersAndTheServersOwn)
{
    struct stat st;
    ASSERT_EQ(lstat(path_.c_str(), &st), 0);
    EXPECT_TRUE(S_ISSOCK(st.st_mode));
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    sockaddr_storage addr;
    socklen_t len = sizeof(addr);
    ASSERT_EQ(getsockname(g_server_fd, reinterpret_cast<sockaddr *>(&addr), &len), 0);
    EXPECT_EQ(addr.ss_family, AF_UNIX);
    // The path cannot change under a running server.
    EXPECT_EQ(cli_server_socket_path_set(dir_.file("elsewhere").c_str()), -1);
    EXPECT_STREQ(cli_server_socket_path_get(), path_.c_str());
    // Another server does not take a live socket, nor a file that is no
    // socket.
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(server_listen_unix(path_.c_str()), -1);
    const std::string other = path_ + ".file";
    FILE *f = std::fopen(other.c_str(), "w");
    ASSERT_NE(f, nullptr);
    std::fclose(f);
    EXPECT_EQ(server_listen_unix(other.c_str()), -1);
    const std::string said = ::testing::internal::GetCapturedStdout();
    EXPECT_NE(said.find("a shell server already listens on"), std::string::npos);
    EXPECT_NE(said.find("exists and is no socket."), std::string::npos);
    EXPECT_EQ(access(other.c_str(), F_OK), 0);
    unlink(other.c_str());
    EXPECT_TRUE(client()->shake());
    // Stopping removes the socket file.
    cli_server_wait(0);
    EXPECT_NE(access(path_.c_str(), F_OK), 0);
    // Paths that do not fit a socket address are refused.
    EXPECT_EQ(cli_server_socket_path_set(nullptr), -1);
    EXPECT_EQ(cli_server_socket_path_set(""), -1);
    EXPECT_EQ(cli_server_socket_path_set(std::string(108, 'x').c_str()), -1);
}

TEST_F(CliServer, ATcpPortListensOnTheLoopbackOnly)
{
    cli_server_wait(0);
    // A port that counts as one (below 32768) and that nobody else holds:
    // where TCP fails, the server takes its unix socket, and the next port
    // is tried.
    u16 port = 0;
    sockaddr_storage addr{};
    for (u16 p = static_cast<u16>(20000 + getpid() % 10000); port == 0 && p < 32767; p++) {
        ASSERT_EQ(cli_server_main(p), 0);
        socklen_t len = sizeof(addr);
        ASSERT_EQ(getsockname(g_server_fd, reinterpret_cast<sockaddr *>(&addr), &len), 0);
        if (addr.ss_family == AF_INET) {
            port = p;
        } else {
            cli_server_wait(0);
        }
    }
    ASSERT_NE(port, 0);
    const auto *in = reinterpret_cast<const sockaddr_in *>(&addr);
    EXPECT_EQ(ntohl(in->sin_addr.s_addr), INADDR_LOOPBACK);
    EXPECT_EQ(ntohs(in->sin_port), port);
    EXPECT_NE(access(path_.c_str(), F_OK), 0);
    WireClient c(port);
    ASSERT_TRUE(c.ok());
    EXPECT_TRUE(c.shake());
}

TEST_F(CliServer, AnAbruptStopCleansUpAndTheServerStartsAgain)
{
    auto c = client();
    cli_server_exit();
    EXPECT_EQ(server_thread_ready, 0);
    EXPECT_NE(access(path_.c_str(), F_OK), 0);
    EXPECT_TRUE(c->closed());
    ASSERT_EQ(cli_server_main(0), 0);
    EXPECT_TRUE(client()->shake());
}

TEST(CliServerStart, StartUpCommandsRunBeforeTheFirstClient)
{
    _link_test_items();
    tide_test::TempDir dir;
    // Lines are kept to 99 characters, 100 at most.
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(cli_server_add_init_cmd(""), nullptr);
    EXPECT_EQ(cli_server_add_init_cmd(nullptr), nullptr);
    ASSERT_NE(cli_server_add_init_cmd("l2"), nullptr);
    ASSERT_NE(cli_server_add_init_cmd("test echo started"), nullptr);
    const char *stored = cli_server_add_init_cmd(("test echo " + std::string(150, 'y')).c_str());
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(std::strlen(stored), 99u);
    for (u32 i = 3; i < CLI_INIT_CMDS; i++) {
        ASSERT_NE(cli_server_add_init_cmd("test count"), nullptr);
    }
    EXPECT_EQ(cli_server_add_init_cmd("test count"), nullptr);
    ASSERT_EQ(cli_server_socket_path_set(dir.file("shell.sock").c_str()), 0);
    ASSERT_EQ(cli_server_main(0), 0);
    const std::string said = ::testing::internal::GetCapturedStdout();
    cli_server_wait(0);
    EXPECT_NE(said.find("invalid command"), std::string::npos);
    EXPECT_NE(said.find("no space for command"), std::string::npos);
    EXPECT_NE(said.find("started"), std::string::npos);
    EXPECT_NE(said.find(std::string(89, 'y')), std::string::npos);
    EXPECT_EQ(said.find(std::string(90, 'y')), std::string::npos);
    // They run quietly: no "return OK".
    EXPECT_EQ(said.find("return OK"), std::string::npos);
    EXPECT_EQ(g_counted.load(), 97);
}

} // namespace
