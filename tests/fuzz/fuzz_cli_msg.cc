// Fuzzer of the wire format: any bytes as a received message, unpacked as
// an execution and as a registration reply the way the server and the
// client do, at every alignment of the receive buffer.
//
// Input: the message, header included.  The low bits of the first byte
// shift the buffer off its alignment.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "app/diag_shell/shell/server/user/cli_msg.h"

namespace {

const u8 *g_lo;
const u8 *g_hi;

// A string that unpacking returned lies inside the buffer and ends there.
void _check_str(const char *s)
{
    const u8 *p = reinterpret_cast<const u8 *>(s);
    if (p < g_lo || p >= g_hi || std::memchr(p, '\0', static_cast<size_t>(g_hi - p)) == nullptr) {
        __builtin_trap();
    }
}

void _check_array(char **arr, i32 expect)
{
    const u8 *p = reinterpret_cast<const u8 *>(arr);
    if (p < g_lo || p >= g_hi || reinterpret_cast<uintptr_t>(arr) % 8 != 0) {
        __builtin_trap();
    }
    i32 n = 0;
    for (; arr[n] != nullptr; n++) {
        _check_str(arr[n]);
    }
    if (expect >= 0 && n != expect) {
        __builtin_trap();
    }
}

i32 _on_record(const msg_reg *r, void *)
{
    _check_str(r->cmd);
    _check_array(r->help, -1);
    if (pack_length(r, msg_reg_descs) <= 0) {
        __builtin_trap();
    }
    return 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < CLI_MSG_HEAD_LEN || size > CLI_MSG_MAX_LEN) {
        return 0;
    }
    const u32 shift = data[0] & 7;
    const u32 len = static_cast<u32>(size - CLI_MSG_HEAD_LEN);
    // Exactly the room of the message, so that any read beyond it is seen.
    auto *room = static_cast<u8 *>(std::malloc(shift + size));
    for (int pass = 0; pass < 2; pass++) {
        std::memcpy(room + shift, data, size);
        u8 *body = room + shift + CLI_MSG_HEAD_LEN;
        g_lo = body;
        g_hi = body + len;
        if (pass == 0) {
            msg_exec e;
            if (cli_msg_exec_unpack(body, len, &e) == 0) {
                _check_str(e.cmd);
                _check_array(e.argv, e.argc);
                if (e.argc > 256 || pack_length(&e, msg_exec_descs) != static_cast<i32>(len)) {
                    __builtin_trap();
                }
            }
        } else {
            i32 next = 0;
            cli_msg_reg_reply_unpack(body, len, &next, _on_record, nullptr);
        }
    }
    std::free(room);
    return 0;
}
