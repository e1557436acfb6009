// tidesh: the shell client of tide.  It connects to the shell server of a
// process that runs the library (tided), downloads the command records,
// builds the same command tree as the library and parses what the operator
// types.  Mode switches and `exit` run here; every other command goes to
// the server as one call, and its output comes back while it runs.
//
//   tidesh [--socket PATH | --port N] [-c LINE]... [-f FILE] [-e] [-v]
#include <getopt.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>

#include <tide/cli.h>

#include "app/diag_shell/shell/server/user/cli_msg.h"
#include "tools/tidesh/tidesh.h"

namespace tidesh {

namespace {

// The largest body of one MSG_REG reply that we ask for.
constexpr i32 k_reg_page = 64 * 1024;

Session g_session;

void _print_sink(const char *text, size_t len)
{
    out_write(text, len);
}

bool _send(u16 type, const std::vector<u8> &body)
{
    std::vector<u8> msg(CLI_MSG_HEAD_LEN + body.size());
    cli_msg_head_set(msg.data(), static_cast<u32>(msg.size()), type);
    if (!body.empty()) {
        std::memcpy(msg.data() + CLI_MSG_HEAD_LEN, body.data(), body.size());
    }
    return msg_send(g_session.fd, msg.data()) == static_cast<i32>(msg.size());
}

// The next message, waiting as long as it takes; its type, or -1 when the
// connection ended.
i32 _recv()
{
    const i32 n = cli_msg_recv(g_session.fd, &g_session.buf, &g_session.size, -1, 0);
    if (n < 0) {
        if (!g_session.lost) {
            std::fprintf(stderr, "tidesh: the connection to the shell server was lost\n");
        }
        g_session.lost = true;
        return -1;
    }
    return cli_msg_head_get(g_session.buf).msg_type;
}

// Prints the text of a MSG_OUTPUT in the receive buffer.
void _print_output()
{
    const u32 len = cli_msg_head_get(g_session.buf).msg_len - CLI_MSG_HEAD_LEN;
    const char *text = reinterpret_cast<const char *>(g_session.buf + CLI_MSG_HEAD_LEN);
    out_write(text, strnlen(text, len));
}

bool _shake()
{
    return _send(MSG_SHAKE_HANDE, {}) && _recv() == static_cast<i32>(MSG_SHAKE_HANDE);
}

i32 _install(const msg_reg *r, void *)
{
    Session &s = g_session;
    const i32 index = static_cast<i32>(s.cmds.size());
    s.cmds.emplace_back(r->cmd);
    s.flags.push_back(static_cast<u32>(r->flags));
    // A definition that this tree cannot take is left out, as the
    // library's own tree does.
    cli_register_cmd(nullptr, index, r->cmd, static_cast<u32>(r->mode), static_cast<u32>(r->flags),
                     static_cast<u32>(r->priv), r->help);
    return 0;
}

bool _download()
{
    i32 start = 0;
    for (;;) {
        std::vector<u8> body(8);
        std::memcpy(body.data(), &start, 4);
        std::memcpy(body.data() + 4, &k_reg_page, 4);
        if (!_send(MSG_REG, body) || _recv() != static_cast<i32>(MSG_REG)) {
            return false;
        }
        const u32 len = cli_msg_head_get(g_session.buf).msg_len - CLI_MSG_HEAD_LEN;
        i32 next = 0;
        const i32 count = cli_msg_reg_reply_unpack(g_session.buf + CLI_MSG_HEAD_LEN, len, &next, _install, nullptr);
        if (count < 0) {
            std::fprintf(stderr, "tidesh: a bad record list came from the server\n");
            return false;
        }
        if (count == 0) {
            return true;
        }
        start = next;
    }
}

// ---- the hooks by which the parser runs a command on the server ----------

i32 _check(void *, i32 funcid)
{
    const Session &s = g_session;
    return funcid >= 0 && static_cast<size_t>(funcid) < s.cmds.size() && (s.flags[funcid] & CLI_FLAG_VIEW) == 0;
}

i32 _execute(void *, i32 funcid, u32 mode, i32 argc, char **argv)
{
    Session &s = g_session;
    if (s.lost) {
        return -1;
    }
    const std::string &cmd = s.cmds[static_cast<size_t>(funcid)];
    if (s.verbose) {
        std::fprintf(stderr, "tidesh: exec [%s] chip %u mode %u", cmd.c_str(), s.chip, mode);
        for (i32 i = 0; i < argc; i++) {
            std::fprintf(stderr, " '%s'", argv[i]);
        }
        std::fprintf(stderr, "\n");
    }
    msg_exec e = {const_cast<char *>(cmd.c_str()), static_cast<i32>(s.chip), static_cast<i32>(mode), argc, argv};
    const i32 len = pack_length(&e, msg_exec_descs);
    std::vector<u8> body(len > 0 ? static_cast<size_t>(len) : 0);
    if (len < 0 || pack_struct(&e, msg_exec_descs, body.data(), static_cast<u32>(len), 1) != len ||
        !_send(MSG_EXEC, body)) {
        std::fprintf(stderr, "tidesh: the command could not be sent\n");
        s.lost = true;
        return -1;
    }
    for (;;) {
        const i32 type = _recv();
        if (type < 0) {
            return -1;
        }
        if (type == static_cast<i32>(MSG_OUTPUT)) {
            _print_output();
        } else if (type == static_cast<i32>(MSG_EXEC_DONE) &&
                   cli_msg_head_get(s.buf).msg_len == CLI_MSG_DONE_LEN) {
            i32 code = 0;
            std::memcpy(&code, s.buf + CLI_MSG_HEAD_LEN, sizeof(code));
            // The session's chip: what `chip-id` chose, once the server
            // has checked it.
            if (code == 0 && cmd.rfind("chip-id ", 0) == 0 && argc >= 1) {
                s.chip = static_cast<u32>(std::strtoul(argv[0], nullptr, 10));
                setchipidPrompt(s.chip);
            }
            return code;
        }
    }
}

void _usage(FILE *out)
{
    std::fprintf(out,
                 "usage: tidesh [--socket PATH | --port N] [-c LINE]... [-f FILE] [-e] [-v]\n"
                 "  -s, --socket PATH  unix socket of the shell server (default %s)\n"
                 "  -p, --port N       TCP port of the shell server on 127.0.0.1 instead\n"
                 "  -c, --command LINE run LINE and exit (may be given several times)\n"
                 "  -f, --file FILE    run the lines of FILE and exit\n"
                 "  -e, --stop         stop at the first line that fails\n"
                 "      --chip N       the chip that commands act on at start (default 0)\n"
                 "      --history FILE history of the interactive shell (default ~/.tidesh_history)\n"
                 "  -v, --verbose      name every call sent to the server on standard error\n"
                 "  -h, --help         this text\n"
                 "Without -c or -f, lines come from the terminal, or from standard input when it\n"
                 "is not one.  Exit code: 0 when every line succeeded, 1 when one failed, 2 when\n"
                 "the shell server cannot be reached or the connection is lost.\n",
                 CLI_SERVER_SOCKET_PATH);
}

struct Options {
    std::string socket = CLI_SERVER_SOCKET_PATH;
    int port = 0;
    std::vector<std::string> commands;
    std::string file;
    bool stop = false;
    bool verbose = false;
    u32 chip = 0;
    std::string history;
};

// 0 to go on, 1 to stop with success (help), -1 on a bad option.
int _parse(int argc, char **argv, Options *opt)
{
    enum { k_chip = 1000, k_history };
    static const option longs[] = {{"socket", required_argument, nullptr, 's'},
                                   {"port", required_argument, nullptr, 'p'},
                                   {"command", required_argument, nullptr, 'c'},
                                   {"file", required_argument, nullptr, 'f'},
                                   {"stop", no_argument, nullptr, 'e'},
                                   {"chip", required_argument, nullptr, k_chip},
                                   {"history", required_argument, nullptr, k_history},
                                   {"verbose", no_argument, nullptr, 'v'},
                                   {"help", no_argument, nullptr, 'h'},
                                   {nullptr, 0, nullptr, 0}};
    auto number = [](const char *text, unsigned long max, unsigned long *v) {
        char *end = nullptr;
        errno = 0;
        *v = std::strtoul(text, &end, 10);
        return *text != '\0' && *end == '\0' && errno == 0 && *v <= max;
    };
    int c;
    unsigned long v = 0;
    while ((c = getopt_long(argc, argv, "s:p:c:f:evh", longs, nullptr)) != -1) {
        switch (c) {
        case 's':
            opt->socket = optarg;
            break;
        case 'p':
            if (!number(optarg, 65535, &v) || v == 0) {
                std::fprintf(stderr, "tidesh: --port takes 1 to 65535\n");
                return -1;
            }
            opt->port = static_cast<int>(v);
            break;
        case 'c':
            opt->commands.emplace_back(optarg);
            break;
        case 'f':
            opt->file = optarg;
            break;
        case 'e':
            opt->stop = true;
            break;
        case 'v':
            opt->verbose = true;
            break;
        case k_chip:
            if (!number(optarg, TIDE_MAX_CHIPS - 1, &v)) {
                std::fprintf(stderr, "tidesh: --chip takes 0 to %u\n", TIDE_MAX_CHIPS - 1);
                return -1;
            }
            opt->chip = static_cast<u32>(v);
            break;
        case k_history:
            opt->history = optarg;
            break;
        case 'h':
            _usage(stdout);
            return 1;
        default:
            _usage(stderr);
            return -1;
        }
    }
    if (optind < argc) {
        std::fprintf(stderr, "tidesh: unexpected argument '%s'\n", argv[optind]);
        return -1;
    }
    return 0;
}

// Runs lines until the end or, with `stop`, the first failure.
int _run_lines(std::istream &in, bool stop)
{
    int status = k_exit_ok;
    std::string line;
    while (std::getline(in, line)) {
        if (session_leaves(line)) {
            break;
        }
        if (session_run(line) != 0) {
            status = k_exit_failed;
            if (stop) {
                break;
            }
        }
        if (g_session.lost) {
            return k_exit_no_server;
        }
    }
    return status;
}

} // namespace

Session &session()
{
    return g_session;
}

void out_write(const char *text, size_t len)
{
    std::fwrite(text, 1, len, stdout);
    std::fflush(stdout);
}

int session_open(const std::string &socket_path, int port)
{
    Session &s = g_session;
    s.fd = port > 0 ? cli_msg_connect_tcp(static_cast<u16>(port)) : cli_msg_connect_unix(socket_path.c_str());
    if (s.fd < 0) {
        const std::string where = port > 0 ? "127.0.0.1 port " + std::to_string(port) : socket_path;
        std::fprintf(stderr,
                     "tidesh: cannot connect to the shell server at %s: %s\n"
                     "tidesh: is tided running? (./run.sh, or build/run/app/tided --socket PATH)\n",
                     where.c_str(), std::strerror(errno));
        return k_exit_no_server;
    }
    const cli_legacy_cmd hooks = {nullptr, nullptr, nullptr, _execute, _check};
    cli_print_func_set(_print_sink);
    if (legacy_cmd_reg_once(&hooks) != 0 || cli_ctree_init() != 0) {
        std::fprintf(stderr, "tidesh: no memory for the command tree\n");
        return k_exit_no_server;
    }
    if (!_shake()) {
        std::fprintf(stderr, "tidesh: the shell server did not answer the handshake\n");
        return k_exit_no_server;
    }
    if (!_download() || cli_ctree_create() != 0) {
        std::fprintf(stderr, "tidesh: the command records could not be downloaded\n");
        return k_exit_no_server;
    }
    setchipidPrompt(s.chip);
    return k_exit_ok;
}

void session_close()
{
    Session &s = g_session;
    if (s.fd >= 0) {
        close(s.fd);
        s.fd = -1;
    }
    cli_ctree_free();
    xsal_mem_free(s.buf);
    s.buf = nullptr;
}

bool session_leaves(const std::string &line)
{
    const size_t b = line.find_first_not_of(" \t\r");
    const size_t e = line.find_last_not_of(" \t\r");
    const std::string word = b == std::string::npos ? "" : line.substr(b, e - b + 1);
    const cli_tree *t = g_clitree != nullptr ? g_clitree : g_main_clitree;
    return word == "quit" || (word == "exit" && t != nullptr && t->mode == CLI_MODE_CONFIG);
}

i32 session_run(const std::string &line)
{
    return cli_command_parse(g_session.chip, line.c_str(), nullptr, 0);
}

bool session_async_message()
{
    const i32 type = _recv();
    if (type == static_cast<i32>(MSG_OUTPUT)) {
        _print_output();
    }
    return type >= 0;
}

} // namespace tidesh

int main(int argc, char **argv)
{
    using namespace tidesh;
    Options opt;
    const int parsed = _parse(argc, argv, &opt);
    if (parsed != 0) {
        return parsed > 0 ? k_exit_ok : k_exit_no_server;
    }
    signal(SIGPIPE, SIG_IGN);
    Session &s = session();
    s.verbose = opt.verbose;
    s.chip = opt.chip;
    int status = session_open(opt.socket, opt.port);
    if (status != k_exit_ok) {
        session_close();
        return status;
    }
    if (!opt.commands.empty() || !opt.file.empty()) {
        for (const std::string &line : opt.commands) {
            if (session_run(line) != 0) {
                status = k_exit_failed;
                if (opt.stop) {
                    break;
                }
            }
            if (s.lost) {
                break;
            }
        }
        if (!opt.file.empty() && !s.lost && !(opt.stop && status != k_exit_ok)) {
            std::ifstream in(opt.file);
            if (!in) {
                std::fprintf(stderr, "tidesh: cannot read %s\n", opt.file.c_str());
                status = k_exit_failed;
            } else {
                const int file_status = _run_lines(in, opt.stop);
                status = file_status != k_exit_ok ? file_status : status;
            }
        }
    } else if (isatty(STDIN_FILENO) != 0) {
        std::string history = opt.history;
        if (history.empty() && std::getenv("HOME") != nullptr) {
            history = std::string(std::getenv("HOME")) + "/.tidesh_history";
        }
        status = interactive(history, opt.stop);
    } else {
        status = _run_lines(std::cin, opt.stop);
    }
    if (s.lost) {
        status = k_exit_no_server;
    }
    session_close();
    return status;
}
