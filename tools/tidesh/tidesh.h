// tidesh, the shell client: its session with the server and its two ways
// of reading lines (a terminal with line editing, or lines from
// arguments, a file or a pipe).
#ifndef TIDESH_H
#define TIDESH_H

#include <string>
#include <vector>

#include "app/diag_shell/shell/cli/cli_core.h"

namespace tidesh {

// Exit codes.
constexpr int k_exit_ok = 0;
constexpr int k_exit_failed = 1;
constexpr int k_exit_no_server = 2;

struct Session {
    int fd = -1;
    u8 *buf = nullptr; // receive buffer, grows to the longest message
    u32 size = 0;
    u32 chip = 0;
    bool lost = false;    // the server went away
    bool verbose = false; // name every call sent to the server on stderr
    // The downloaded records by index (the funcid they are installed
    // with): the defining string and the item's flags.
    std::vector<std::string> cmds;
    std::vector<u32> flags;
};

// The one session of the process.
Session &session();

// Connects, shakes hands, downloads every record and builds the tree; 0,
// or prints why not and returns k_exit_no_server.
int session_open(const std::string &socket_path, int port);
void session_close();

// Runs one line as typed; the result of the line (0 for success).
i32 session_run(const std::string &line);

// True for a line that ends the shell: "quit" anywhere, "exit" in mode
// config (elsewhere `exit` goes back to config).
bool session_leaves(const std::string &line);

// Handles one message that arrived outside an exchange (monitor output);
// false when the connection has ended.
bool session_async_message();

// Writes text to the terminal.
void out_write(const char *text, size_t len);

// The interactive loop on a terminal; the exit code.
int interactive(const std::string &history_file, bool stop_on_error);

} // namespace tidesh

#endif // TIDESH_H
