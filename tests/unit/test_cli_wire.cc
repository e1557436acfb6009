// The wire format: exact bytes of a packed execution, in-place unpacking at
// any alignment, and refusal of every length or count that lies.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/shell_client.h"

using namespace tide::test;

namespace {

// `stp 1 vlan-list 10-12` typed in mode stp (25) on chip 0.
const std::vector<u8> k_stp_example = {
    // header: msg_len 91, type 0 (MSG_EXEC), reserved
    0x5b, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    // cmd "stp WORD vlan-list WORD" and its NUL
    's', 't', 'p', ' ', 'W', 'O', 'R', 'D', ' ', 'v', 'l', 'a', 'n', '-', 'l', 'i', 's', 't', ' ', 'W', 'O', 'R',
    'D', 0x00,
    // chip_id 0, view_mode 25, argc 2
    0x00, 0x00, 0x00, 0x00, 0x19, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00,
    // argv: count 2, a gap of 8 * 2 + 11 = 27 zero bytes, "1", "10-12"
    0x02, 0x00, 0x00, 0x00, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, '1',
    0x00, '1', '0', '-', '1', '2', 0x00};

TEST(CliWire, TheStpExamplePacksToItsBytesAndUnpacksInPlace)
{
    EXPECT_EQ(wire_message(MSG_EXEC, exec_body("stp WORD vlan-list WORD", 0, 25, {"1", "10-12"})), k_stp_example);

    // Unpacked at every alignment of the receive buffer: strings in place,
    // the pointer table on an 8-byte boundary.
    for (size_t shift = 0; shift < 8; shift++) {
        std::vector<u8> room(k_stp_example.size() + 16);
        u8 *body = room.data() + shift;
        const u32 len = static_cast<u32>(k_stp_example.size() - CLI_MSG_HEAD_LEN);
        std::memcpy(body, k_stp_example.data() + CLI_MSG_HEAD_LEN, len);
        msg_exec e;
        ASSERT_EQ(cli_msg_exec_unpack(body, len, &e), 0) << shift;
        EXPECT_EQ(reinterpret_cast<uintptr_t>(e.argv) % 8, 0u);
        EXPECT_STREQ(e.cmd, "stp WORD vlan-list WORD");
        EXPECT_EQ(reinterpret_cast<u8 *>(e.cmd), body);
        EXPECT_EQ(e.chip_id, 0);
        EXPECT_EQ(e.view_mode, 25);
        ASSERT_EQ(e.argc, 2);
        EXPECT_STREQ(e.argv[0], "1");
        EXPECT_STREQ(e.argv[1], "10-12");
        EXPECT_EQ(e.argv[2], nullptr);
        EXPECT_GE(reinterpret_cast<u8 *>(e.argv[0]), body);
        EXPECT_LT(reinterpret_cast<u8 *>(e.argv[1]), body + len);
    }
}

TEST(CliWire, StringArraysAndRecordsHaveTheirPackedSizes)
{
    // An empty array: the count and a gap of 11 bytes.
    char *none[] = {nullptr};
    char **arr = none;
    EXPECT_EQ(type_desc_strarray.length(&arr), 15);
    u8 buf[64];
    std::memset(buf, 0xee, sizeof(buf));
    EXPECT_EQ(type_desc_strarray.pack(&arr, buf, sizeof(buf)), 15);
    EXPECT_EQ(buf[0], 0);
    EXPECT_EQ(buf[14], 0);
    EXPECT_EQ(buf[15], 0xee);
    // A record of MSG_REG: cmd, funcid, help, mode, flags, priv.
    const char *help[] = {"Show", "Chip", nullptr};
    msg_reg r = {const_cast<char *>("show chip"), -1, const_cast<char **>(help), 36, 0x4000, 15};
    const i32 len = pack_length(&r, msg_reg_descs);
    EXPECT_EQ(len, 10 + 4 + (8 * 2 + 15 + 5 + 5) + 12);
    std::vector<u8> packed(static_cast<size_t>(len) + 3);
    EXPECT_EQ(pack_struct(&r, msg_reg_descs, packed.data() + 3, static_cast<u32>(len) - 1, 1), -1);
    ASSERT_EQ(pack_struct(&r, msg_reg_descs, packed.data() + 3, static_cast<u32>(len), 1), len);
    msg_reg back;
    ASSERT_EQ(pack_struct(&back, msg_reg_descs, packed.data() + 3, static_cast<u32>(len), 0), len);
    EXPECT_STREQ(back.cmd, "show chip");
    EXPECT_EQ(back.funcid, -1);
    EXPECT_STREQ(back.help[1], "Chip");
    EXPECT_EQ(back.help[2], nullptr);
    EXPECT_EQ(back.mode, 36);
    EXPECT_EQ(back.flags, 0x4000);
    EXPECT_EQ(back.priv, 15);
    // Type numbers above 5 have no descriptor; the fixed sizes.
    EXPECT_EQ(type_desc_get(6), nullptr);
    EXPECT_EQ(type_desc_get(CLI_FIELD_INT64)->size, 8u);
    EXPECT_EQ(type_desc_get(CLI_FIELD_INT16)->size, 2u);
    EXPECT_EQ(type_desc_get(CLI_FIELD_INT8)->size, 1u);
}

// The body of the example with one change, unpacked.
i32 _unpack_changed(size_t at, std::initializer_list<u8> bytes, i32 len_change = 0)
{
    std::vector<u8> body(k_stp_example.begin() + CLI_MSG_HEAD_LEN, k_stp_example.end());
    size_t i = at;
    for (u8 b : bytes) {
        body[i++] = b;
    }
    msg_exec e;
    return cli_msg_exec_unpack(body.data(), static_cast<u32>(static_cast<i32>(body.size()) + len_change), &e);
}

TEST(CliWire, EveryLengthAndCountIsCheckedAgainstTheMessage)
{
    constexpr size_t argc_at = 32;
    constexpr size_t count_at = 36;
    ASSERT_EQ(_unpack_changed(0, {}), 0);
    // A body cut anywhere, or longer than its record.
    for (i32 cut = 1; cut <= 75; cut++) {
        EXPECT_EQ(_unpack_changed(0, {}, -cut), -1) << cut;
    }
    std::vector<u8> longer(k_stp_example.begin() + CLI_MSG_HEAD_LEN, k_stp_example.end());
    longer.push_back(0);
    msg_exec e;
    EXPECT_EQ(cli_msg_exec_unpack(longer.data(), static_cast<u32>(longer.size()), &e), -1);
    // The command string without its NUL.
    EXPECT_EQ(_unpack_changed(23, {'x'}), -1);
    // argc that disagrees with the array, or is negative.
    EXPECT_EQ(_unpack_changed(argc_at, {3}), -1);
    EXPECT_EQ(_unpack_changed(argc_at, {0xff, 0xff, 0xff, 0xff}), -1);
    // Array counts: negative, larger than the body, one string short.
    EXPECT_EQ(_unpack_changed(count_at, {0xff, 0xff, 0xff, 0xff}), -1);
    EXPECT_EQ(_unpack_changed(count_at, {0xff, 0xff, 0xff, 0x7f}), -1);
    EXPECT_EQ(_unpack_changed(count_at, {0x00, 0x00, 0x00, 0x10}), -1);
    EXPECT_EQ(_unpack_changed(count_at, {3}), -1);
    EXPECT_EQ(_unpack_changed(count_at, {1}), -1); // "10-12" left over
    // The last string without its NUL.
    EXPECT_EQ(_unpack_changed(74, {'x'}), -1);
    // More words than a command takes.
    std::vector<std::string> many(257, "w");
    std::vector<u8> big = exec_body("x", 0, 0, many);
    EXPECT_EQ(cli_msg_exec_unpack(big.data(), static_cast<u32>(big.size()), &e), -1);
    many.pop_back();
    big = exec_body("x", 0, 0, many);
    EXPECT_EQ(cli_msg_exec_unpack(big.data(), static_cast<u32>(big.size()), &e), 0);
}

TEST(CliWire, RegistrationRepliesMustHoldExactlyTheirCount)
{
    const char *help[] = {"Show", nullptr};
    msg_reg r = {const_cast<char *>("show"), -1, const_cast<char **>(help), 3, 0, 15};
    const i32 one = pack_length(&r, msg_reg_descs);
    std::vector<u8> body(8 + 2 * static_cast<size_t>(one));
    const i32 head[2] = {2, 7};
    std::memcpy(body.data(), head, 8);
    pack_struct(&r, msg_reg_descs, body.data() + 8, static_cast<u32>(one), 1);
    pack_struct(&r, msg_reg_descs, body.data() + 8 + one, static_cast<u32>(one), 1);
    auto unpack = [&](std::vector<u8> b, i32 count, size_t len) {
        std::memcpy(b.data(), &count, 4);
        i32 next = 0;
        const i32 n = cli_msg_reg_reply_unpack(b.data(), static_cast<u32>(len), &next, nullptr, nullptr);
        return n < 0 ? n : n * 100 + next;
    };
    EXPECT_EQ(unpack(body, 2, body.size()), 207);
    EXPECT_EQ(unpack(body, 1, body.size()), -1);
    EXPECT_EQ(unpack(body, 3, body.size()), -1);
    EXPECT_EQ(unpack(body, -1, body.size()), -1);
    EXPECT_EQ(unpack(body, 2, body.size() - 1), -1);
    EXPECT_EQ(unpack(body, 0, 8), 7);
    EXPECT_EQ(unpack(body, 0, 7), -1);
}

} // namespace
