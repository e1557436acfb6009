// tidesh, the shell client, against a server in this process: one-shot
// commands, scripts, standard input, exit codes, and an interactive session
// on a pseudo-terminal (completion, help, history, Ctrl-C, Ctrl-D and
// monitor output above the prompt).
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "support/temp_dir.h"
#include "support/wait.h"

extern char **environ;

namespace {

i32 _say(u32, u32, i32, char **argv)
{
    cli_output_show("%s\n", argv[0]);
    return 0;
}

i32 _fail(u32, u32, i32, char **)
{
    cli_output_show("it failed\n");
    return -5;
}

const char *const k_help[] = {"Test commands", "Say a word", "The word", nullptr};
const char *const k_fail_help[] = {"Test commands", "Fail", nullptr};
cli_cmd_desc g_desc[] = {{"test say WORD", -1, _say, k_help, 0}, {"test fail", -1, _fail, k_fail_help, 0}};
cli_cmd_item g_items[] = {{&g_desc[0], 3, 0, 15, {}}, {&g_desc[1], 3, 0, 15, {}}};

struct Outcome {
    int code = -1;
    std::string out;
    std::string err;
};

std::string _read_all(int fd)
{
    std::string s;
    char buf[4096];
    ssize_t n;
    while ((n = read(fd, buf, sizeof(buf))) > 0) {
        s.append(buf, static_cast<size_t>(n));
    }
    close(fd);
    return s;
}

class Tidesh : public ::testing::Test {
protected:
    void SetUp() override
    {
        static bool linked = false;
        if (!linked) {
            cli_cmd_items_link(g_items, 2);
            linked = true;
        }
        path_ = dir_.file("shell.sock");
        ASSERT_EQ(cli_server_socket_path_set(path_.c_str()), 0);
        ASSERT_EQ(cli_server_main(0), 0);
    }
    void TearDown() override { cli_server_wait(0); }

    // Runs tidesh with these arguments and standard input.
    Outcome run(std::vector<std::string> args, const std::string &input = "", bool socket = true)
    {
        if (socket) {
            args.insert(args.begin(), {"--socket", path_});
        }
        args.insert(args.begin(), TIDE_TIDESH);
        std::vector<char *> argv;
        for (std::string &a : args) {
            argv.push_back(a.data());
        }
        argv.push_back(nullptr);
        int in[2], out[2], err[2];
        EXPECT_EQ(pipe(in) | pipe(out) | pipe(err), 0);
        posix_spawn_file_actions_t fa;
        posix_spawn_file_actions_init(&fa);
        posix_spawn_file_actions_adddup2(&fa, in[0], 0);
        posix_spawn_file_actions_adddup2(&fa, out[1], 1);
        posix_spawn_file_actions_adddup2(&fa, err[1], 2);
        for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) {
            posix_spawn_file_actions_addclose(&fa, fd);
        }
        pid_t pid = 0;
        EXPECT_EQ(posix_spawn(&pid, TIDE_TIDESH, &fa, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&fa);
        close(in[0]);
        close(out[1]);
        close(err[1]);
        EXPECT_EQ(write(in[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
        close(in[1]);
        Outcome r;
        std::thread errs([&] { r.err = _read_all(err[0]); });
        r.out = _read_all(out[0]);
        errs.join();
        int status = 0;
        waitpid(pid, &status, 0);
        r.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return r;
    }

    std::string file(const std::string &text)
    {
        const std::string name = dir_.file("script");
        std::ofstream(name) << text;
        return name;
    }

    static size_t count(const std::string &s, const std::string &what)
    {
        size_t n = 0;
        for (size_t at = s.find(what); at != std::string::npos; at = s.find(what, at + 1)) {
            n++;
        }
        return n;
    }

    tide_test::TempDir dir_;
    std::string path_;
};

TEST_F(Tidesh, OneShotCommandsPrintTheirOutputAndTheExitCodeSaysHowTheyWent)
{
    Outcome r = run({"-c", "l2", "-c", "test say hello"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "return OK\r\nhello\nreturn OK\r\n");
    r = run({"-c", "l2", "-c", "test fail", "-c", "test say after"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, "return OK\r\nit failed\nCommand execute(errcode=-5)\r\nreturn FAIL\r\nafter\nreturn OK\r\n");
    r = run({"-e", "-c", "no such command", "-c", "l2"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, "Unrecognized command\r\nreturn FAIL\r\n");
    // The chip is checked by the server; only chip 0 is there.
    r = run({"-c", "chip-id 2"});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.out.find("chip_id 2 invalid"), std::string::npos);
    r = run({"--chip", "0", "-c", "common", "-c", "show cli-key-check"});
    EXPECT_EQ(r.code, 0);
    EXPECT_NE(r.out.find(" CLI key check : enable\n"), std::string::npos);
}

TEST_F(Tidesh, WithoutAServerItSaysSoAndExitsWithTwo)
{
    const Outcome r = run({"--socket", path_ + ".none", "-c", "l2"}, "", false);
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("tidesh: cannot connect to the shell server at " + path_ + ".none"), std::string::npos);
    EXPECT_EQ(run({"--bogus"}).code, 2);
    EXPECT_EQ(run({"--help"}, "", false).code, 0);
}

TEST_F(Tidesh, ScriptsAndStandardInputSwitchModesWithoutTheServer)
{
    const std::string script = "# a comment\nl2\ntest say one\nexit\n\nl2\ntest say two\nexit\n";
    Outcome r = run({"-v", "-f", file(script)});
    EXPECT_EQ(r.code, 0) << r.out;
    EXPECT_NE(r.out.find("one\n"), std::string::npos);
    EXPECT_NE(r.out.find("two\n"), std::string::npos);
    // Two calls reached the server: the mode switches and exits ran here.
    EXPECT_EQ(count(r.err, "tidesh: exec ["), 2u) << r.err;
    EXPECT_EQ(count(r.err, "tidesh: exec [test say WORD] chip 0 mode 3"), 2u);
    // -e stops at the first failure; without it the script goes on.
    const std::string failing = file("l2\ntest fail\ntest say after\n");
    r = run({"-e", "-f", failing});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out.find("after"), std::string::npos);
    r = run({"-f", failing});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.out.find("after"), std::string::npos);
    // Lines on standard input; "exit" in config ends them.
    r = run({}, "l2\ntest say piped\nexit\nexit\ntest say never\n");
    EXPECT_EQ(r.code, 0);
    EXPECT_NE(r.out.find("piped\n"), std::string::npos);
    EXPECT_EQ(r.out.find("never"), std::string::npos);
    EXPECT_EQ(run({"-f", path_ + ".missing"}).code, 1);
}

// An interactive session on a pseudo-terminal.
class Terminal {
public:
    explicit Terminal(const std::string &socket, const std::string &history)
    {
        // Arguments and environment are made before the fork: the child of
        // a process with threads (the server's) may only exec, as another
        // thread may have held the allocator's lock at the fork.
        std::vector<std::string> env = {"TERM=xterm"};
        for (char **e = environ; *e != nullptr; e++) {
            if (std::string(*e).rfind("TERM=", 0) != 0) {
                env.emplace_back(*e);
            }
        }
        std::vector<char *> envp;
        for (std::string &e : env) {
            envp.push_back(e.data());
        }
        envp.push_back(nullptr);
        std::string args[] = {TIDE_TIDESH, "--socket", socket, "--history", history};
        std::vector<char *> argv;
        for (std::string &a : args) {
            argv.push_back(a.data());
        }
        argv.push_back(nullptr);
        winsize ws = {40, 100, 0, 0};
        pid_ = forkpty(&fd_, nullptr, nullptr, &ws);
        if (pid_ == 0) {
            execve(TIDE_TIDESH, argv.data(), envp.data());
            _exit(127);
        }
    }
    ~Terminal()
    {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    void type(const std::string &keys) { ASSERT_EQ(write(fd_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size())); }
    // Reads until `what` appears after the last mark, in the text written
    // to the terminal without its control sequences (cursor moves and the
    // like); what was read from the mark on.
    std::string expect(const std::string &what)
    {
        const auto end = std::chrono::steady_clock::now() + tide_test::kPatience;
        while (screen_.find(what, mark_) == std::string::npos && std::chrono::steady_clock::now() < end) {
            pollfd p = {fd_, POLLIN, 0};
            if (poll(&p, 1, 100) > 0) {
                char buf[4096];
                const ssize_t n = read(fd_, buf, sizeof(buf));
                if (n <= 0) {
                    break;
                }
                raw_.append(buf, static_cast<size_t>(n));
                screen_ = _plain(raw_);
            }
        }
        const size_t at = screen_.find(what, mark_);
        const std::string seen = screen_.substr(mark_);
        EXPECT_NE(at, std::string::npos) << "waiting for [" << what << "], the screen shows:\n" << seen;
        mark_ = at == std::string::npos ? screen_.size() : at + what.size();
        return seen;
    }
    // The exit code, or -1 if it does not end.
    int wait_exit()
    {
        int status = 0;
        if (!tide_test::eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; })) {
            return -1;
        }
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    // The text without escape sequences and carriage returns.
    static std::string _plain(const std::string &raw)
    {
        std::string s;
        for (size_t i = 0; i < raw.size(); i++) {
            if (raw[i] == '\x1b') {
                if (i + 1 < raw.size() && raw[i + 1] == '[') {
                    i += 2;
                    while (i < raw.size() && !(raw[i] >= 0x40 && raw[i] <= 0x7e)) {
                        i++;
                    }
                } else {
                    i++;
                }
            } else if (raw[i] != '\r' && raw[i] != '\a') {
                s += raw[i];
            }
        }
        return s;
    }

    int fd_ = -1;
    pid_t pid_ = -1;
    std::string raw_;
    std::string screen_;
    size_t mark_ = 0;
};

TEST_F(Tidesh, AnInteractiveSessionCompletesHelpsRecallsAndShowsMonitorOutput)
{
    const std::string history = dir_.file("history");
    Terminal t(path_, history);
    t.expect("Chip-0 Diag-Shell(config)# ");
    // Tab completes a unique beginning, with a blank behind it.
    t.type("comm\t");
    t.expect("common ");
    t.type("\r");
    t.expect("return OK");
    t.expect("Chip-0 Diag-Shell(config/common)# ");
    t.type("show cli-k\t");
    t.expect("cli-key-check ");
    // `?` lists what may follow and draws the line again.
    t.type("?");
    t.expect("<cr>");
    t.expect("Chip-0 Diag-Shell(config/common)# show cli-key-check ");
    t.type("\r");
    t.expect(" CLI key check : enable");
    // Several candidates: their common beginning, then the list.
    t.type("show ch\t\t");
    t.expect("chip-id");
    t.type("\x15"); // Ctrl-U: kill the line
    // History: the previous line comes back with the Up key.
    t.type("\x1b[A\r");
    t.expect(" CLI key check : enable");
    // Ctrl-C drops the line (once it is on the screen: the terminal drops
    // what is typed ahead of an interrupt).
    t.type("show nothing");
    t.expect("show nothing");
    t.type("\x03");
    t.expect("^C");
    t.type("exit\r");
    t.expect("Chip-0 Diag-Shell(config)# ");
    t.type("terminal monitor enable\r");
    t.expect("return OK");
    t.expect("Chip-0 Diag-Shell(config)# ");
    // Output of the monitor while a line is being typed: above the prompt,
    // and the line is drawn again.  Once "l2" is on the screen, tidesh
    // waits for the next key, and the server's message with it.
    t.type("l2");
    t.expect("l2");
    output_show_console("async hello\n");
    t.expect("async hello");
    t.expect("Chip-0 Diag-Shell(config)# l2");
    // Ctrl-C, then Ctrl-D on the empty line (one at a time: the terminal
    // drops what is typed ahead of an interrupt).
    t.type("\x03");
    t.expect("^C");
    t.type("\x04");
    EXPECT_EQ(t.wait_exit(), 0);
    std::ifstream saved(history);
    std::string all((std::istreambuf_iterator<char>(saved)), std::istreambuf_iterator<char>());
    EXPECT_NE(all.find("terminal\\040monitor\\040enable"), std::string::npos) << all;
}

} // namespace
