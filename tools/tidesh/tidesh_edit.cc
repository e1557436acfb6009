// The interactive shell of tidesh on a terminal, with libedit: completion
// by Tab and help by `?` from the local command tree, history in a file,
// Ctrl-C that clears the line, Ctrl-D that leaves, and output of the
// terminal monitor printed above the prompt while the operator types.
#include <fcntl.h>
#include <histedit.h>
#include <signal.h>
#include <sys/select.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string>

#include "tools/tidesh/tidesh.h"

namespace tidesh {

namespace {

constexpr wchar_t k_cancel_key = 3; // Ctrl-C as a key
constexpr size_t k_help_room = 256 * 1024;

// Ctrl-C arrives as a signal; its handler writes a byte into this pipe,
// which the key reader watches with the terminal and the server.
int g_sigint_pipe[2] = {-1, -1};
EditLine *g_el;
std::string g_prompt;

void _on_sigint(int)
{
    const int saved = errno;
    const char byte = 1;
    if (write(g_sigint_pipe[1], &byte, 1) < 0) {
        // Full: a Ctrl-C is pending already.
    }
    errno = saved;
}

const char *_prompt(EditLine *)
{
    g_prompt = std::string(cli_ctree_getprompt()) + " ";
    return g_prompt.c_str();
}

// The line as typed up to the cursor.
std::string _line_to_cursor(EditLine *el)
{
    const LineInfo *li = el_line(el);
    return std::string(li->buffer, static_cast<size_t>(li->cursor - li->buffer));
}

cli_tree *_tree()
{
    return g_clitree != nullptr ? g_clitree : g_main_clitree;
}

// Tab: the keyword the last word can only be is completed; where it could
// be several, their common beginning is inserted or they are listed.
unsigned char _complete(EditLine *el, int)
{
    const std::string line = _line_to_cursor(el);
    cli_tree *t = _tree();
    const char **words = cli_cmdstr_complete(t, t->mode, CLI_PRIV_MAX, line.c_str());
    if (words == nullptr) {
        return CC_REFRESH_BEEP;
    }
    const size_t start = line.find_last_of(" \t") == std::string::npos ? 0 : line.find_last_of(" \t") + 1;
    const std::string typed = line.substr(start);
    std::string common = words[0];
    size_t n = 0;
    for (; words[n] != nullptr; n++) {
        size_t k = 0;
        while (k < common.size() && words[n][k] == common[k]) {
            k++;
        }
        common.resize(k);
    }
    unsigned char result = CC_REFRESH;
    if (n == 1) {
        el_insertstr(el, (common.substr(typed.size()) + " ").c_str());
    } else if (common.size() > typed.size()) {
        el_insertstr(el, common.substr(typed.size()).c_str());
    } else {
        std::string list = "\n";
        for (size_t i = 0; i < n; i++) {
            list += std::string("  ") + words[i] + "\n";
        }
        out_write(list.data(), list.size());
        result = CC_REDISPLAY;
    }
    xsal_mem_free(words);
    return result;
}

// `?`: help for what may follow the line as typed; the line stays.
unsigned char _help(EditLine *el, int)
{
    const LineInfo *li = el_line(el);
    const std::string line = std::string(li->buffer, static_cast<size_t>(li->lastchar - li->buffer)) + "?";
    std::string text(k_help_room, '\0');
    Session &s = session();
    cli_command_parse(s.chip, line.c_str(), text.data(), static_cast<i32>(text.size()));
    text.resize(std::strlen(text.c_str()));
    if (text.rfind("?", 0) != 0) {
        text = "?\n" + text;
    }
    out_write(text.data(), text.size());
    return CC_REDISPLAY;
}

// Ctrl-C: the line is dropped and a fresh prompt given.
unsigned char _cancel(EditLine *el, int)
{
    const LineInfo *li = el_line(el);
    el_cursor(el, static_cast<int>(li->lastchar - li->cursor));
    el_deletestr(el, static_cast<int>(li->lastchar - li->buffer));
    out_write("^C\n", 3);
    return CC_REDISPLAY;
}

// Reads a key; while waiting, prints what the server sends on its own.
int _getc(EditLine *el, wchar_t *c)
{
    Session &s = session();
    for (;;) {
        fd_set rd;
        FD_ZERO(&rd);
        FD_SET(STDIN_FILENO, &rd);
        FD_SET(s.fd, &rd);
        FD_SET(g_sigint_pipe[0], &rd);
        int top = s.fd > STDIN_FILENO ? s.fd : STDIN_FILENO;
        top = g_sigint_pipe[0] > top ? g_sigint_pipe[0] : top;
        if (select(top + 1, &rd, nullptr, nullptr, nullptr) < 0) {
            if (errno == EINTR) {
                continue;
            }
            return -1;
        }
        if (FD_ISSET(g_sigint_pipe[0], &rd)) {
            char drain[16];
            while (read(g_sigint_pipe[0], drain, sizeof(drain)) > 0) {
            }
            *c = k_cancel_key;
            return 1;
        }
        if (FD_ISSET(s.fd, &rd)) {
            // Above the prompt: clear the line, print, draw it again.
            out_write("\r\033[K", 4);
            const bool alive = session_async_message();
            el_set(el, EL_REFRESH);
            if (!alive) {
                return 0;
            }
            continue;
        }
        char byte = 0;
        const ssize_t n = read(STDIN_FILENO, &byte, 1);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return 0;
        }
        *c = static_cast<unsigned char>(byte);
        return 1;
    }
}

} // namespace

int interactive(const std::string &history_file, bool stop_on_error)
{
    std::setlocale(LC_CTYPE, "");
    if (pipe2(g_sigint_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        std::fprintf(stderr, "tidesh: no pipe for Ctrl-C\n");
        return k_exit_failed;
    }
    struct sigaction sa = {};
    sa.sa_handler = _on_sigint;
    sigaction(SIGINT, &sa, nullptr);

    HistEvent ev;
    History *hist = history_init();
    history(hist, &ev, H_SETSIZE, 1000);
    history(hist, &ev, H_SETUNIQUE, 1);
    if (!history_file.empty()) {
        history(hist, &ev, H_LOAD, history_file.c_str());
    }
    g_el = el_init("tidesh", stdin, stdout, stderr);
    el_set(g_el, EL_EDITOR, "emacs");
    el_set(g_el, EL_PROMPT, _prompt);
    el_set(g_el, EL_HIST, history, hist);
    el_set(g_el, EL_GETCFN, _getc);
    el_set(g_el, EL_ADDFN, "tidesh-complete", "Complete the keyword", _complete);
    el_set(g_el, EL_ADDFN, "tidesh-help", "Help for what may follow", _help);
    el_set(g_el, EL_ADDFN, "tidesh-cancel", "Drop the line", _cancel);
    el_set(g_el, EL_BIND, "^I", "tidesh-complete", nullptr);
    el_set(g_el, EL_BIND, "?", "tidesh-help", nullptr);
    el_set(g_el, EL_BIND, "^C", "tidesh-cancel", nullptr);
    el_source(g_el, nullptr);

    int status = k_exit_ok;
    Session &s = session();
    for (;;) {
        int count = 0;
        const char *got = el_gets(g_el, &count);
        if (got == nullptr || count <= 0) {
            if (!s.lost) {
                out_write("\n", 1);
            }
            break;
        }
        std::string line(got);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
            line.pop_back();
        }
        if (line.find_first_not_of(" \t") != std::string::npos) {
            history(hist, &ev, H_ENTER, line.c_str());
            if (!history_file.empty()) {
                history(hist, &ev, H_SAVE, history_file.c_str());
            }
        }
        if (session_leaves(line)) {
            break;
        }
        // On a terminal a failed command is the operator's to see; only
        // with -e does it end the session, with code 1.
        if (session_run(line) != 0 && stop_on_error) {
            status = k_exit_failed;
            break;
        }
        if (s.lost) {
            break;
        }
    }
    el_end(g_el);
    history_end(hist);
    signal(SIGINT, SIG_DFL);
    close(g_sigint_pipe[0]);
    close(g_sigint_pipe[1]);
    return s.lost ? k_exit_no_server : status;
}

} // namespace tidesh

#if defined(__SANITIZE_ADDRESS__)
// libedit keeps its copies of the names of added editing functions until
// the process ends; the sanitized test build is told so.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:wcsdup\n";
}
#endif
