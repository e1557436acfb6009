// The shell server from a client's side: executions per second on one
// connection, and the time a client takes to connect, download every
// record and build its command tree.  The server runs in a child process,
// so that the client's tree is the only one of this process.
#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "tests/support/shell_client.h"

namespace {

i32 _echo(u32, u32, i32, char **argv)
{
    cli_output_show("%s\n", argv[0]);
    return 0;
}

const char *const k_help[] = {"Bench", "Echo", "Word", nullptr};
cli_cmd_desc g_desc = {"bench echo WORD", -1, _echo, k_help, 0};
cli_cmd_item g_item = {&g_desc, 3, 0, 15, {}};

pid_t g_server;
std::string g_server_path;

void _stop_server()
{
    if (g_server > 0) {
        kill(g_server, SIGKILL);
        waitpid(g_server, nullptr, 0);
        unlink(g_server_path.c_str());
    }
}

// The socket of a server in a child process, started once.
const std::string &server()
{
    static const std::string path = [] {
        const std::string p = "/tmp/tide-bench-" + std::to_string(getpid()) + ".sock";
        g_server = fork();
        if (g_server == 0) {
            cli_cmd_items_link(&g_item, 1);
            cli_server_socket_path_set(p.c_str());
            if (cli_server_main(0) != 0) {
                _exit(1);
            }
            for (;;) {
                pause();
            }
        }
        g_server_path = p;
        std::atexit(_stop_server);
        for (int i = 0; i < 500 && access(p.c_str(), F_OK) != 0; i++) {
            usleep(10000);
        }
        return p;
    }();
    return path;
}

void _quiet(const char *, size_t) {}

// One execution with a line of output and its code, on one connection.
void BM_ExecRoundTrip(benchmark::State &state)
{
    tide::test::WireClient c(server());
    if (!c.shake()) {
        state.SkipWithError("no server");
        return;
    }
    std::string out;
    for (auto _ : state) {
        out.clear();
        if (c.exec("bench echo WORD", 3, {"hello"}, &out) != 0) {
            state.SkipWithError("execution failed");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ExecRoundTrip)->UseRealTime();

// Connect, shake hands, download every record in 64 KiB pages and build
// the tree from them, as tidesh does at start.
void BM_ConnectDownloadBuild(benchmark::State &state)
{
    const std::string &path = server();
    cli_print_func_set(_quiet);
    size_t records = 0;
    for (auto _ : state) {
        tide::test::WireClient c(path);
        if (!c.shake() || cli_ctree_init() != 0) {
            state.SkipWithError("no server");
            break;
        }
        const std::vector<tide::test::WireRecord> all = c.download(64 * 1024);
        for (size_t i = 0; i < all.size(); i++) {
            std::vector<const char *> help;
            for (const std::string &h : all[i].help) {
                help.push_back(h.c_str());
            }
            help.push_back(nullptr);
            cli_register_cmd(nullptr, static_cast<i32>(i), all[i].cmd.c_str(), static_cast<u32>(all[i].mode),
                             static_cast<u32>(all[i].flags), static_cast<u32>(all[i].priv), help.data());
        }
        records = all.size();
        cli_ctree_free();
    }
    state.counters["records"] = static_cast<double>(records);
}
BENCHMARK(BM_ConnectDownloadBuild)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
