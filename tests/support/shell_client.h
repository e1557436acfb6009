// Test support of the shell server: a client that speaks the wire format
// message by message, so that tests can also send what a real client never
// would.
#ifndef TIDE_TEST_SHELL_CLIENT_H
#define TIDE_TEST_SHELL_CLIENT_H

#include <unistd.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "app/diag_shell/shell/server/user/cli_msg.h"
#include "tests/support/wait.h"

namespace tide::test {

struct WireMsg {
    u16 type = 0;
    u32 len = 0;
    std::vector<u8> body;
};

// A downloaded command record.
struct WireRecord {
    std::string cmd;
    i32 funcid;
    std::vector<std::string> help;
    i32 mode;
    i32 flags;
    i32 priv;
};

// A whole message: header and body.
inline std::vector<u8> wire_message(u16 type, const std::vector<u8> &body, u32 len_override = 0)
{
    std::vector<u8> m(CLI_MSG_HEAD_LEN + body.size());
    cli_msg_head_set(m.data(), len_override != 0 ? len_override : static_cast<u32>(m.size()), type);
    if (!body.empty()) {
        std::memcpy(m.data() + CLI_MSG_HEAD_LEN, body.data(), body.size());
    }
    return m;
}

// The packed body of a MSG_EXEC.
inline std::vector<u8> exec_body(const std::string &cmd, i32 chip, i32 mode, const std::vector<std::string> &args)
{
    std::vector<char *> argv;
    for (const std::string &a : args) {
        argv.push_back(const_cast<char *>(a.c_str()));
    }
    argv.push_back(nullptr);
    msg_exec e = {const_cast<char *>(cmd.c_str()), chip, mode, static_cast<i32>(args.size()), argv.data()};
    std::vector<u8> body(static_cast<size_t>(pack_length(&e, msg_exec_descs)));
    pack_struct(&e, msg_exec_descs, body.data(), static_cast<u32>(body.size()), 1);
    return body;
}

class WireClient {
public:
    // How long a reply that must come may take on a loaded machine.
    static constexpr i32 k_patience_s = static_cast<i32>(tide_test::kPatience.count());

    explicit WireClient(const std::string &path) : fd_(cli_msg_connect_unix(path.c_str())) {}
    explicit WireClient(u16 port) : fd_(cli_msg_connect_tcp(port)) {}
    ~WireClient()
    {
        if (fd_ >= 0) {
            close(fd_);
        }
        xsal_mem_free(buf_);
    }
    WireClient(const WireClient &) = delete;
    WireClient &operator=(const WireClient &) = delete;

    bool ok() const { return fd_ >= 0; }
    int fd() const { return fd_; }

    bool send_raw(const std::vector<u8> &bytes) const
    {
        return ::write(fd_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    }
    bool send(u16 type, const std::vector<u8> &body = {}) const { return send_raw(wire_message(type, body)); }

    // The next message, or nothing at the end of the stream or after
    // `timeout_s` seconds.
    std::optional<WireMsg> recv(i32 timeout_s = k_patience_s)
    {
        const i32 n = cli_msg_recv(fd_, &buf_, &size_, timeout_s, 0);
        if (n < 0) {
            return std::nullopt;
        }
        WireMsg m;
        const cli_msg_head h = cli_msg_head_get(buf_);
        m.type = h.msg_type;
        m.len = h.msg_len;
        m.body.assign(buf_ + CLI_MSG_HEAD_LEN, buf_ + n);
        return m;
    }

    // True when the server ended the connection (an end of file, or a
    // reset when it left data unread).
    bool closed(i32 timeout_s = k_patience_s)
    {
        u8 byte = 0;
        return block_read(fd_, &byte, 1, timeout_s) <= 0 && errno != ETIMEDOUT;
    }

    bool shake()
    {
        if (!send(MSG_SHAKE_HANDE)) {
            return false;
        }
        const auto m = recv();
        return m && m->type == MSG_SHAKE_HANDE && m->len == CLI_MSG_HEAD_LEN;
    }

    // One MSG_REG exchange; the records at `out`, the count as result (-1
    // for a bad reply).
    i32 reg_page(i32 start, i32 max_size, std::vector<WireRecord> *out, i32 *next)
    {
        std::vector<u8> body(8);
        std::memcpy(body.data(), &start, 4);
        std::memcpy(body.data() + 4, &max_size, 4);
        if (!send(MSG_REG, body)) {
            return -1;
        }
        auto m = recv();
        if (!m || m->type != MSG_REG) {
            return -1;
        }
        return cli_msg_reg_reply_unpack(
            m->body.data(), static_cast<u32>(m->body.size()), next,
            [](const msg_reg *r, void *ctx) {
                WireRecord w{r->cmd, r->funcid, {}, r->mode, r->flags, r->priv};
                for (char **h = r->help; *h != nullptr; h++) {
                    w.help.emplace_back(*h);
                }
                static_cast<std::vector<WireRecord> *>(ctx)->push_back(std::move(w));
                return 0;
            },
            out);
    }

    std::vector<WireRecord> download(i32 max_size = 8192)
    {
        std::vector<WireRecord> all;
        i32 start = 0;
        for (;;) {
            i32 next = 0;
            const i32 n = reg_page(start, max_size, &all, &next);
            if (n <= 0) {
                return all;
            }
            start = next;
        }
    }

    // Runs a command: the output at `out`, the code as result; INT32_MIN
    // when the exchange broke.
    i32 exec(const std::string &cmd, i32 mode, const std::vector<std::string> &args, std::string *out = nullptr,
             i32 chip = 0, std::vector<u32> *lengths = nullptr)
    {
        if (!send(MSG_EXEC, exec_body(cmd, chip, mode, args))) {
            return INT32_MIN;
        }
        for (;;) {
            auto m = recv();
            if (!m) {
                return INT32_MIN;
            }
            if (m->type == MSG_OUTPUT) {
                if (out != nullptr) {
                    out->append(reinterpret_cast<const char *>(m->body.data()),
                                strnlen(reinterpret_cast<const char *>(m->body.data()), m->body.size()));
                }
                if (lengths != nullptr) {
                    lengths->push_back(m->len);
                }
            } else if (m->type == MSG_EXEC_DONE && m->body.size() == 4) {
                i32 code = 0;
                std::memcpy(&code, m->body.data(), 4);
                return code;
            } else {
                return INT32_MIN;
            }
        }
    }

private:
    int fd_;
    u8 *buf_ = nullptr;
    u32 size_ = 0;
};

} // namespace tide::test

#endif // TIDE_TEST_SHELL_CLIENT_H
