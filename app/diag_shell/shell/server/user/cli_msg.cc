// The wire format: header, the six packed field types, packing and
// unpacking of records by their field lists, and the socket calls of both
// ends.
#include <errno.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <arpa/inet.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "app/diag_shell/shell/server/user/cli_msg.h"

namespace {

constexpr u32 k_max_words = 256; // words of one MSG_EXEC

// ---- fixed-size integers ---------------------------------------------------

template <typename T> i32 _int_pack(const void *field, u8 *buf, u32 room)
{
    if (room < sizeof(T)) {
        return -1;
    }
    std::memcpy(buf, field, sizeof(T));
    return sizeof(T);
}

template <typename T> i32 _int_unpack(u8 *buf, u32 room, void *field)
{
    if (room < sizeof(T)) {
        return -1;
    }
    std::memcpy(field, buf, sizeof(T));
    return sizeof(T);
}

template <typename T> i32 _int_length(const void *)
{
    return sizeof(T);
}

template <typename T> constexpr type_desc _int_desc(u32 type)
{
    return {type, sizeof(T), _int_pack<T>, _int_unpack<T>, _int_length<T>};
}

// ---- strings -----------------------------------------------------------------

i32 _str_length(const void *field)
{
    const char *s = *static_cast<char *const *>(field);
    if (s == nullptr) {
        return -1;
    }
    const size_t n = std::strlen(s) + 1;
    return n < CLI_MSG_MAX_LEN ? static_cast<i32>(n) : -1;
}

i32 _str_pack(const void *field, u8 *buf, u32 room)
{
    const i32 n = _str_length(field);
    if (n < 0 || static_cast<u32>(n) > room) {
        return -1;
    }
    std::memcpy(buf, *static_cast<char *const *>(field), static_cast<size_t>(n));
    return n;
}

// The string in place: it must end with a NUL inside the room.
i32 _str_unpack(u8 *buf, u32 room, void *field)
{
    const void *nul = std::memchr(buf, '\0', room);
    if (nul == nullptr) {
        return -1;
    }
    *static_cast<char **>(field) = reinterpret_cast<char *>(buf);
    return static_cast<i32>(static_cast<const u8 *>(nul) - buf + 1);
}

// ---- string arrays -------------------------------------------------------------
//
// i32 n, a gap of 8n + 11 zero bytes, then the n strings with their NULs.
// The gap is where the receiver writes the table of n + 1 pointers, at the
// field's address rounded up to 8: at most 7 + 8(n + 1) = 8n + 15 bytes
// from the field's start, which is exactly the room of the count and the
// gap.

u64 _strarray_gap_end(u64 n)
{
    return 4 + 8 * n + 11;
}

i32 _strarray_length(const void *field)
{
    char *const *arr = *static_cast<char *const *const *>(field);
    u64 total = _strarray_gap_end(0);
    for (u32 i = 0; arr != nullptr && arr[i] != nullptr; i++) {
        total += 8 + std::strlen(arr[i]) + 1;
        if (total >= CLI_MSG_MAX_LEN) {
            return -1;
        }
    }
    return static_cast<i32>(total);
}

i32 _strarray_pack(const void *field, u8 *buf, u32 room)
{
    const i32 total = _strarray_length(field);
    if (total < 0 || static_cast<u32>(total) > room) {
        return -1;
    }
    char *const *arr = *static_cast<char *const *const *>(field);
    i32 n = 0;
    while (arr != nullptr && arr[n] != nullptr) {
        n++;
    }
    std::memcpy(buf, &n, sizeof(n));
    u64 pos = _strarray_gap_end(static_cast<u64>(n));
    std::memset(buf + 4, 0, pos - 4);
    for (i32 i = 0; i < n; i++) {
        const size_t len = std::strlen(arr[i]) + 1;
        std::memcpy(buf + pos, arr[i], len);
        pos += len;
    }
    return total;
}

i32 _strarray_unpack(u8 *buf, u32 room, void *field)
{
    i32 n = 0;
    if (room < 4) {
        return -1;
    }
    std::memcpy(&n, buf, sizeof(n));
    if (n < 0 || _strarray_gap_end(static_cast<u64>(n)) > room) {
        return -1;
    }
    // Every string must end inside the room before anything is written.
    u32 pos = static_cast<u32>(_strarray_gap_end(static_cast<u64>(n)));
    const u32 first = pos;
    for (i32 i = 0; i < n; i++) {
        const void *nul = std::memchr(buf + pos, '\0', room - pos);
        if (nul == nullptr) {
            return -1;
        }
        pos = static_cast<u32>(static_cast<const u8 *>(nul) - buf) + 1;
    }
    const uintptr_t at = (reinterpret_cast<uintptr_t>(buf) + 7) & ~static_cast<uintptr_t>(7);
    auto **table = reinterpret_cast<char **>(at);
    u32 s = first;
    for (i32 i = 0; i < n; i++) {
        table[i] = reinterpret_cast<char *>(buf + s);
        s += static_cast<u32>(std::strlen(table[i])) + 1;
    }
    table[n] = nullptr;
    *static_cast<char ***>(field) = table;
    return static_cast<i32>(pos);
}

// ---- records -------------------------------------------------------------------------

#define CLI_FIELD(rec, name, type) {#name, type, offsetof(rec, name)}

const field_desc k_exec_cmd = CLI_FIELD(msg_exec, cmd, CLI_FIELD_STR);
const field_desc k_exec_chip = CLI_FIELD(msg_exec, chip_id, CLI_FIELD_INT32);
const field_desc k_exec_mode = CLI_FIELD(msg_exec, view_mode, CLI_FIELD_INT32);
const field_desc k_exec_argc = CLI_FIELD(msg_exec, argc, CLI_FIELD_INT32);
const field_desc k_exec_argv = CLI_FIELD(msg_exec, argv, CLI_FIELD_STRARRAY);

const field_desc k_reg_cmd = CLI_FIELD(msg_reg, cmd, CLI_FIELD_STR);
const field_desc k_reg_funcid = CLI_FIELD(msg_reg, funcid, CLI_FIELD_INT32);
const field_desc k_reg_help = CLI_FIELD(msg_reg, help, CLI_FIELD_STRARRAY);
const field_desc k_reg_mode = CLI_FIELD(msg_reg, mode, CLI_FIELD_INT32);
const field_desc k_reg_flags = CLI_FIELD(msg_reg, flags, CLI_FIELD_INT32);
const field_desc k_reg_priv = CLI_FIELD(msg_reg, priv, CLI_FIELD_INT32);

#undef CLI_FIELD

int _connect(int family, const sockaddr *addr, socklen_t len)
{
    const int fd = socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return -1;
    }
    if (connect(fd, addr, len) != 0) {
        const int e = errno;
        close(fd);
        errno = e;
        return -1;
    }
    return fd;
}

} // namespace

extern "C" {

const type_desc type_desc_int32 = _int_desc<i32>(CLI_FIELD_INT32);
const type_desc type_desc_int64 = _int_desc<i64>(CLI_FIELD_INT64);
const type_desc type_desc_int16 = _int_desc<i16>(CLI_FIELD_INT16);
const type_desc type_desc_int8 = _int_desc<i8>(CLI_FIELD_INT8);
const type_desc type_desc_str = {CLI_FIELD_STR, 0, _str_pack, _str_unpack, _str_length};
const type_desc type_desc_strarray = {CLI_FIELD_STRARRAY, 0, _strarray_pack, _strarray_unpack, _strarray_length};

const type_desc *const type_descs[CLI_FIELD_TYPES] = {&type_desc_int32, &type_desc_int64, &type_desc_int16,
                                                      &type_desc_int8,  &type_desc_str,   &type_desc_strarray};

const field_desc *const msg_exec_descs[] = {&k_exec_cmd, &k_exec_chip, &k_exec_mode, &k_exec_argc, &k_exec_argv,
                                            nullptr};
const field_desc *const msg_reg_descs[] = {&k_reg_cmd,  &k_reg_funcid, &k_reg_help,
                                           &k_reg_mode, &k_reg_flags,  &k_reg_priv, nullptr};

const type_desc *type_desc_get(u32 type)
{
    return type < CLI_FIELD_TYPES ? type_descs[type] : nullptr;
}

i32 pack_struct(void *st, const field_desc *const *descs, u8 *buf, u32 len, u32 pack)
{
    if (st == nullptr || descs == nullptr || (buf == nullptr && len != 0)) {
        return -1;
    }
    u32 used = 0;
    for (u32 i = 0; descs[i] != nullptr; i++) {
        const type_desc *t = type_desc_get(descs[i]->type);
        if (t == nullptr) {
            return -1;
        }
        void *field = static_cast<u8 *>(st) + descs[i]->offset;
        const i32 n = pack != 0 ? t->pack(field, buf + used, len - used) : t->unpack(buf + used, len - used, field);
        if (n < 0) {
            return -1;
        }
        used += static_cast<u32>(n);
    }
    return static_cast<i32>(used);
}

i32 pack_length(const void *st, const field_desc *const *descs)
{
    if (st == nullptr || descs == nullptr) {
        return -1;
    }
    u64 total = 0;
    for (u32 i = 0; descs[i] != nullptr; i++) {
        const type_desc *t = type_desc_get(descs[i]->type);
        const i32 n = t != nullptr ? t->length(static_cast<const u8 *>(st) + descs[i]->offset) : -1;
        if (n < 0) {
            return -1;
        }
        total += static_cast<u64>(n);
    }
    return total < CLI_MSG_MAX_LEN ? static_cast<i32>(total) : -1;
}

cli_msg_head cli_msg_head_get(const u8 *msg)
{
    cli_msg_head h;
    std::memcpy(&h, msg, sizeof(h));
    return h;
}

void cli_msg_head_set(u8 *msg, u32 msg_len, u16 msg_type)
{
    const cli_msg_head h = {msg_len, msg_type, 0, 0, 0};
    std::memcpy(msg, &h, sizeof(h));
}

i32 cli_msg_exec_unpack(u8 *body, u32 len, msg_exec *out)
{
    std::memset(out, 0, sizeof(*out));
    if (pack_struct(out, msg_exec_descs, body, len, 0) != static_cast<i32>(len)) {
        return -1;
    }
    i32 words = 0;
    while (out->argv[words] != nullptr) {
        words++;
    }
    return out->argc == words && static_cast<u32>(words) <= k_max_words ? 0 : -1;
}

i32 cli_msg_reg_reply_unpack(u8 *body, u32 len, i32 *next_index, cli_msg_reg_fn fn, void *ctx)
{
    constexpr u32 head = CLI_MSG_REG_HEAD_LEN - CLI_MSG_HEAD_LEN;
    i32 count = 0;
    if (len < head) {
        return -1;
    }
    std::memcpy(&count, body, sizeof(count));
    std::memcpy(next_index, body + sizeof(count), sizeof(*next_index));
    if (count < 0) {
        return -1;
    }
    u32 pos = head;
    for (i32 i = 0; i < count; i++) {
        msg_reg rec;
        const i32 n = pack_struct(&rec, msg_reg_descs, body + pos, len - pos, 0);
        if (n <= 0 || (fn != nullptr && fn(&rec, ctx) != 0)) {
            return -1;
        }
        pos += static_cast<u32>(n);
    }
    return pos == len ? count : -1;
}

i32 block_read(int fd, u8 *buf, u32 len, i32 timeout_s)
{
    if (fd < 0 || fd >= FD_SETSIZE) {
        return -1;
    }
    u32 got = 0;
    while (got < len) {
        fd_set rd;
        FD_ZERO(&rd);
        FD_SET(fd, &rd);
        timeval tv = {timeout_s, 0};
        const int r = select(fd + 1, &rd, nullptr, nullptr, timeout_s < 0 ? nullptr : &tv);
        if (r < 0) {
            if (errno == EINTR) {
                continue;
            }
            xsal_printf("select error.\n");
            return -1;
        }
        if (r == 0) {
            xsal_printf("select timeout.\n");
            errno = ETIMEDOUT;
            return static_cast<i32>(got);
        }
        const ssize_t n = read(fd, buf + got, len - got);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            std::perror("read: ");
            return -1;
        }
        if (n == 0) {
            return static_cast<i32>(got);
        }
        got += static_cast<u32>(n);
    }
    return static_cast<i32>(got);
}

i32 msg_send(int fd, const u8 *msg)
{
    if (fd < 0 || fd >= FD_SETSIZE) {
        return -1;
    }
    // Each piece waits at most 5 seconds for room: a peer that stops
    // reading cannot hold the sender for ever.
    const u32 len = cli_msg_head_get(msg).msg_len;
    u32 sent = 0;
    while (sent < len) {
        fd_set wr;
        FD_ZERO(&wr);
        FD_SET(fd, &wr);
        timeval tv = {5, 0};
        const int r = select(fd + 1, nullptr, &wr, nullptr, &tv);
        if (r < 0 && errno == EINTR) {
            continue;
        }
        if (r <= 0) {
            return -2;
        }
        const ssize_t n = send(fd, msg + sent, len - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n < 0) {
            if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK) {
                continue;
            }
            return -1;
        }
        sent += static_cast<u32>(n);
    }
    return static_cast<i32>(sent);
}

i32 cli_msg_recv(int fd, u8 **buf, u32 *size, i32 timeout_s, u32 report)
{
    u8 head[CLI_MSG_HEAD_LEN];
    if (block_read(fd, head, sizeof(head), timeout_s) != static_cast<i32>(sizeof(head))) {
        return -1;
    }
    const u32 msg_len = cli_msg_head_get(head).msg_len;
    if (msg_len < CLI_MSG_HEAD_LEN || msg_len > CLI_MSG_MAX_LEN) {
        if (report != 0) {
            xsal_printf("bad message length %u.\n", msg_len);
        }
        return -1;
    }
    if (msg_len > *size || *buf == nullptr) {
        auto *grown = static_cast<u8 *>(xsal_malloc(msg_len, "recv_buf", SHR_MOD_CLI));
        if (grown == nullptr) {
            if (report != 0) {
                xsal_printf("no enough memory for recv msg, msg len is %d.\n", static_cast<int>(msg_len));
            }
            return -1;
        }
        xsal_mem_free(*buf);
        *buf = grown;
        *size = msg_len;
    }
    std::memcpy(*buf, head, sizeof(head));
    const u32 body = msg_len - CLI_MSG_HEAD_LEN;
    const i32 got = block_read(fd, *buf + CLI_MSG_HEAD_LEN, body, timeout_s);
    if (got != static_cast<i32>(body)) {
        if (report != 0) {
            xsal_printf("block_read error: len = %d. msg_len = %d.\n", static_cast<int>(got),
                        static_cast<int>(msg_len));
        }
        return -1;
    }
    return static_cast<i32>(msg_len);
}

i32 cli_msg_unix_addr(const char *path, sockaddr_un *addr)
{
    std::memset(addr, 0, sizeof(*addr));
    addr->sun_family = AF_UNIX;
    if (path == nullptr || path[0] == '\0' || std::strlen(path) >= sizeof(addr->sun_path)) {
        errno = ENAMETOOLONG;
        return -1;
    }
    std::memcpy(addr->sun_path, path, std::strlen(path) + 1);
    return 0;
}

int cli_msg_connect_unix(const char *path)
{
    sockaddr_un addr;
    if (cli_msg_unix_addr(path, &addr) != 0) {
        return -1;
    }
    return _connect(AF_UNIX, reinterpret_cast<const sockaddr *>(&addr), sizeof(addr));
}

int cli_msg_connect_tcp(u16 port)
{
    sockaddr_in addr;
    std::memset(&addr, 0, sizeof(addr));
    addr.sin_family = AF_INET;
    addr.sin_port = htons(port);
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return _connect(AF_INET, reinterpret_cast<const sockaddr *>(&addr), sizeof(addr));
}

} // extern "C"
