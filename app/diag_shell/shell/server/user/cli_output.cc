// Output for the operator: a handler's text to its client, or to the
// capture buffer or the console when it runs without one; text for the
// terminal monitors; the monitor table.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "shared/shr_int.h"

extern "C" {

cli_monitor_ctl terminal_monitor_client_ctl;

} // extern "C"

namespace {

// A handler's text formatted on the heap, from 100 bytes up; freed with
// the record.
struct _text {
    u32 len = 0; // set by the formatting of `buf`, so declared first
    char *buf = nullptr;
    _text(const char *format, va_list args)
        : buf(shr_vformat_alloc(100, "cli_output", SHR_MOD_CLI, &len, format, args))
    {
    }
    ~_text() { xsal_mem_free(buf); }
    _text(const _text &) = delete;
    _text &operator=(const _text &) = delete;
};

// Text with no client to go to: the capture buffer of the running line,
// else the console.
void output_show_without_client(const char *text, u32 len)
{
    if (cli_capture_append(text, len) == 0) {
        xsal_printf("%s", text);
    }
}

struct _monitor_guard {
    bool held;
    _monitor_guard()
        : held(terminal_monitor_client_ctl.lock != nullptr && xsal_mutex_lock(terminal_monitor_client_ctl.lock) == 0)
    {
    }
    ~_monitor_guard()
    {
        if (held) {
            xsal_mutex_unlock(terminal_monitor_client_ctl.lock);
        }
    }
    _monitor_guard(const _monitor_guard &) = delete;
    _monitor_guard &operator=(const _monitor_guard &) = delete;
};

// Slot of the client in the monitor table, or -1.
i32 _monitor_slot(const cli_client *c)
{
    for (u32 i = 0; i < CLI_MONITOR_SLOTS; i++) {
        if (terminal_monitor_client_ctl.client[i] == c) {
            return static_cast<i32>(i);
        }
    }
    return -1;
}

} // namespace

extern "C" {

i32 output_show_msg_send(cli_client *client, const char *text, u32 len)
{
    xsal_mutex_lock(client->outp_lock);
    const u32 piece_max = client->send_buf_size - CLI_MSG_HEAD_LEN - 1;
    i32 r = 0;
    for (u32 done = 0; done < len;) {
        const u32 piece = len - done < piece_max ? len - done : piece_max;
        const u32 msg_len = piece == piece_max ? client->send_buf_size : piece + CLI_MSG_HEAD_LEN + 1;
        cli_msg_head_set(client->send_buf, msg_len, MSG_OUTPUT);
        std::memcpy(client->send_buf + CLI_MSG_HEAD_LEN, text + done, piece);
        client->send_buf[CLI_MSG_HEAD_LEN + piece] = '\0';
        const i32 sent = msg_send(client->sock, client->send_buf);
        if (sent < 0) {
            xsal_printf("terminal monitor timeout(ret:%d).\n", static_cast<int>(sent));
            r = sent;
            break;
        }
        done += piece;
    }
    xsal_mutex_unlock(client->outp_lock);
    return r;
}

i32 cli_output_show(const char *format, ...)
{
    if (format == nullptr) {
        xsal_printf("[cli server] Format for custom output is empty.\n");
        return -1;
    }
    cli_client *client = nullptr;
    const i32 target = cli_server_output_target(&client);
    if (target < 0) {
        return -1;
    }
    va_list args;
    va_start(args, format);
    const _text text(format, args);
    va_end(args);
    if (text.buf == nullptr) {
        return 0;
    }
    if (target == 1) {
        output_show_msg_send(client, text.buf, text.len);
    } else {
        output_show_without_client(text.buf, text.len);
    }
    return 0;
}

i32 output_show_console(const char *format, ...)
{
    if (format == nullptr) {
        xsal_printf("[cli kernel] Format for custom output is empty.\n");
        return -1;
    }
    va_list args;
    va_start(args, format);
    const _text text(format, args);
    va_end(args);
    if (text.buf == nullptr) {
        return 0;
    }
    i32 r = 0;
    bool console_seen = false;
    {
        _monitor_guard guard;
        if (guard.held) {
            for (u32 i = 0; i < CLI_MONITOR_SLOTS; i++) {
                cli_client *c = terminal_monitor_client_ctl.client[i];
                if (c == nullptr) {
                    continue;
                }
                console_seen = console_seen || terminal_monitor_client_ctl.console[i] == 1;
                // A monitor that takes no more text leaves the table, so
                // that it does not hold up the next messages too.
                if (output_show_msg_send(c, text.buf, text.len) < 0) {
                    terminal_monitor_client_ctl.client[i] = nullptr;
                    terminal_monitor_client_ctl.console[i] = 0;
                }
            }
        } else {
            r = -1;
        }
    }
    if (!console_seen) {
        xsal_printf("%s", text.buf);
    }
    return r;
}

i32 terminal_monitor_enable(u32 console)
{
    cli_client *c = cli_server_client_get();
    _monitor_guard guard;
    if (c == nullptr || !guard.held) {
        return -1;
    }
    if (_monitor_slot(c) >= 0) {
        return 0;
    }
    const i32 slot = _monitor_slot(nullptr);
    if (slot < 0) {
        return -1;
    }
    terminal_monitor_client_ctl.client[slot] = c;
    terminal_monitor_client_ctl.console[slot] = console;
    return 0;
}

i32 terminal_monitor_disable(void)
{
    cli_client *c = cli_server_client_get();
    _monitor_guard guard;
    if (c == nullptr || !guard.held) {
        return -1;
    }
    const i32 slot = _monitor_slot(c);
    if (slot >= 0) {
        terminal_monitor_client_ctl.client[slot] = nullptr;
        terminal_monitor_client_ctl.console[slot] = 0;
    }
    return 0;
}

i32 cli_monitor_init(void)
{
    if (terminal_monitor_client_ctl.lock != nullptr) {
        _monitor_guard guard;
        std::memset(terminal_monitor_client_ctl.client, 0, sizeof(terminal_monitor_client_ctl.client));
        std::memset(terminal_monitor_client_ctl.console, 0, sizeof(terminal_monitor_client_ctl.console));
        return 0;
    }
    std::memset(&terminal_monitor_client_ctl, 0, sizeof(terminal_monitor_client_ctl));
    terminal_monitor_client_ctl.lock = xsal_mutex_create("terminal_monitor_client_ctl lock");
    return terminal_monitor_client_ctl.lock != nullptr ? 0 : -1;
}

void cli_monitor_deinit(void)
{
    if (terminal_monitor_client_ctl.lock != nullptr) {
        xsal_mutex_destroy(terminal_monitor_client_ctl.lock);
    }
    std::memset(&terminal_monitor_client_ctl, 0, sizeof(terminal_monitor_client_ctl));
}

} // extern "C"
