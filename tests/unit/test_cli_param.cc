// The handlers' argument helpers: numbers, integer lists, addresses, hex
// data, bitmaps as text, port lists and port names in both naming modes,
// and the keyword check.
#include <cstring>
#include <string>
#include <vector>

#include <tide/property.h>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "tests/support/fixture.h"
#include "tests/support/temp_dir.h"

using namespace tide::test;

namespace {

// Everything a helper prints on the console (where the shell's output
// goes while no client is connected), and its result.
template <typename F> std::string _said(F f, i32 *result)
{
    EXPECT_EQ(cli_server_client_list_init(), 0);
    ::testing::internal::CaptureStdout();
    *result = f();
    return ::testing::internal::GetCapturedStdout();
}

TEST(CliParam, NumbersByTheirFormAndWidth)
{
    u8 b = 0;
    u16 h = 0;
    u32 w = 0;
    u64 d = 0;
    i32 s = 0;
    i32 r = 0;
    EXPECT_EQ(cli_get_uint8_para("300", &b), 0);
    EXPECT_EQ(b, 255);
    EXPECT_EQ(cli_get_uint16_para("0x12345", &h), 0);
    EXPECT_EQ(h, 65535);
    EXPECT_EQ(cli_get_uint32_param("0XfF", &w), 0);
    EXPECT_EQ(w, 255u);
    EXPECT_EQ(cli_get_uint32_param("4294967295", &w), 0);
    EXPECT_EQ(w, 4294967295u);
    EXPECT_EQ(cli_get_uint64_param("0xffffffffffffffff", &d), 0);
    EXPECT_EQ(d, ~0ull);
    EXPECT_EQ(cli_get_int32_para("-2147483648", &s), 0);
    EXPECT_EQ(s, INT32_MIN);
    EXPECT_EQ(cli_get_int32_para("+0x10", &s), 0);
    EXPECT_EQ(s, 16);
    // "0x" alone is neither hex nor decimal; no cap beyond 8 and 16 bits.
    for (const char *bad : {"0x", "", "12a", "-1", " 1", "4294967296", "0x1g"}) {
        EXPECT_EQ(_said([&] { return cli_get_uint32_param(bad, &w); }, &r),
                  std::string("Input Non-Valid-Number String(") + bad + ")\n");
        EXPECT_EQ(r, -4) << bad;
    }
    EXPECT_EQ(cli_get_int32_para("2147483648", &s), -4);
    EXPECT_EQ(cli_get_int32_para("--1", &s), -4);
    EXPECT_EQ(cli_get_uint64_param("18446744073709551616", &d), -4);
    EXPECT_NE(_said([&] { return cli_get_uint8_para(nullptr, &b); }, &r).find("Input Null PTR("), std::string::npos);
    EXPECT_EQ(r, -20);
    EXPECT_EQ(cli_is_hex_string("0x0"), 1);
    EXPECT_EQ(cli_is_dec_string("007"), 1);
}

std::vector<i32> _walk(const char *list)
{
    std::string copy = list;
    char *cursor = copy.data();
    std::vector<i32> got;
    for (i32 v = cli_get_next_from_intlist(&cursor, 0); v >= 0; v = cli_get_next_from_intlist(&cursor, v)) {
        got.push_back(v);
        if (got.size() > 100) {
            break;
        }
    }
    EXPECT_EQ(cursor, nullptr) << list;
    return got;
}

TEST(CliParam, IntegerListsAreCheckedAndWalked)
{
    EXPECT_EQ(_walk("3,5-7"), (std::vector<i32>{3, 5, 6, 7}));
    EXPECT_EQ(_walk("7"), (std::vector<i32>{7}));
    EXPECT_EQ(_walk("0-0,4-5,1"), (std::vector<i32>{0, 4, 5, 1}));
    EXPECT_EQ(cli_check_intlist("3,5-7"), 4);
    EXPECT_EQ(cli_check_intlist("4094"), 1);
    for (const char *bad : {"5-3", "1,", ",1", "1,,2", "", "1-", "-1", "1-2-3", "a", "1 ,2", "1;2"}) {
        EXPECT_EQ(cli_check_intlist(bad), -2) << bad;
    }
    char *none = nullptr;
    EXPECT_EQ(cli_get_next_from_intlist(&none, 0), -2);
}

TEST(CliParam, AddressesAndHexData)
{
    u8 mac[6];
    EXPECT_EQ(cli_get_mac_addr("00:1a:2B:3c:4D:ff", mac), 0);
    EXPECT_EQ(std::vector<u8>(mac, mac + 6), (std::vector<u8>{0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0xff}));
    for (const char *bad : {"0:1a:2b:3c:4d:ff", "00:1a:2b:3c:4d:ff:", "00-1a-2b-3c-4d-ff", "00:1a:2b:3c:4d:fg"}) {
        EXPECT_EQ(cli_get_mac_addr(bad, mac), -1) << bad;
    }
    EXPECT_EQ(cli_get_mac_addr_flexible("0:1a:b:3c:4:ff", mac), 0);
    EXPECT_EQ(std::vector<u8>(mac, mac + 6), (std::vector<u8>{0x00, 0x1a, 0x0b, 0x3c, 0x04, 0xff}));
    EXPECT_EQ(cli_get_mac_addr_flexible("0:1a:b:3c:4", mac), -1);
    EXPECT_EQ(cli_get_mac_addr_flexible("0:1a:b:3c:4:fff", mac), -1);
    u32 ip = 0;
    EXPECT_EQ(cli_get_ipv4addr("192.168.1.254", &ip), 0);
    EXPECT_EQ(ip, 0xc0a801feu);
    i32 r = 0;
    EXPECT_EQ(_said([&] { return cli_get_ipv4addr("1.2.256.4", &ip); }, &r), "ipv4 address is wrong.\n");
    EXPECT_EQ(r, -1);
    EXPECT_EQ(cli_get_ipv4addr("1.2.3", &ip), -1);
    EXPECT_EQ(cli_get_ipv4addr("1.2.3.4.5", &ip), -1);

    u8 data[4];
    u32 n = 0;
    EXPECT_EQ(cli_hex_string_to_u8_array("0x0aFF10", data, sizeof(data), &n), 0);
    EXPECT_EQ(n, 3u);
    EXPECT_EQ(std::vector<u8>(data, data + 3), (std::vector<u8>{0x0a, 0xff, 0x10}));
    EXPECT_EQ(_said([&] { return cli_hex_string_to_u8_array("0xabc", data, sizeof(data), &n); }, &r),
              "Input string must be even numbered characters!\n");
    EXPECT_NE(_said([&] { return cli_hex_string_to_u8_array("abcd", data, sizeof(data), &n); }, &r)
                  .find("You should give data via hex, start with '0x'"),
              std::string::npos);
    EXPECT_EQ(cli_hex_string_to_u8_array("0x0102030405", data, sizeof(data), &n), -1);
    tide_test::TempDir dir;
    const std::string path = dir.file("hex");
    FILE *f = std::fopen(path.c_str(), "w");
    std::fputs("0x0102\r\nignored\n", f);
    std::fclose(f);
    EXPECT_EQ(cli_hex_array_get_from_file(path.c_str(), data, sizeof(data), &n), 0);
    EXPECT_EQ(n, 2u);
    std::remove(path.c_str());
    EXPECT_EQ(_said([&] { return cli_hex_array_get_from_file(path.c_str(), data, sizeof(data), &n); }, &r),
              "can not open " + path + "\n");
}

TEST(CliParam, BitmapsAsTextWithRanges)
{
    u64 bmp[3] = {0b1011101ull | 1ull << 63, 1ull, 1ull << 63};
    char out[64];
    ASSERT_EQ(cli_pbmp_to_str(bmp, 24, out, sizeof(out)), 0);
    EXPECT_STREQ(out, "0,2-4,6,63-64,191");
    ASSERT_EQ(cli_pbmp_to_str(bmp, 8, out, sizeof(out)), 0);
    EXPECT_STREQ(out, "0,2-4,6,63");
    u64 empty[1] = {0};
    ASSERT_EQ(cli_pbmp_to_str(empty, 8, out, sizeof(out)), 0);
    EXPECT_STREQ(out, "");
    i32 r = 0;
    EXPECT_EQ(_said([&] { return cli_pbmp_to_str(bmp, 12, out, sizeof(out)); }, &r),
              "[cli_pbmp_to_str] invliad pbmp_len\n");
    EXPECT_EQ(r, -4);
    EXPECT_EQ(cli_pbmp_to_str(bmp, 32, out, sizeof(out)), -4);
    EXPECT_EQ(_said([&] { return cli_pbmp_to_str(bmp, 24, out, 10); }, &r), "[cli_pbmp_to_str]out of range\n");
    EXPECT_EQ(r, -6);
    EXPECT_STREQ(out, "");
}

std::vector<std::string> _items(const char *list, i32 *last)
{
    std::string copy = list;
    char *cursor = copy.data();
    char name[CLI_PPORT_SIZE] = "";
    std::vector<std::string> got;
    ::testing::internal::CaptureStdout();
    while ((*last = cli_pport_str_get_from_port_list(&cursor, name, sizeof(name), name)) == 0 && got.size() < 50) {
        got.emplace_back(name);
    }
    ::testing::internal::GetCapturedStdout();
    return got;
}

TEST(CliParam, PortListsGiveNamesNumbersRangesAndDottedForms)
{
    i32 last = 0;
    EXPECT_EQ(_items(" 1, 3-5 ,cpu_port,2.1,4.v2,7-7, 9 ", &last),
              (std::vector<std::string>{"1", "3", "4", "5", "cpu_port", "2.1", "4.v2", "7", "9"}));
    EXPECT_EQ(last, 1);
    EXPECT_EQ(_items(",6", &last), (std::vector<std::string>{"6"}));
    EXPECT_EQ(cli_pport_list_str_is_valid("1,3-5,cpu_port,2.1,1.2.v3"), 0);
    EXPECT_EQ(cli_pport_list_str_is_valid("0-4294967295"), 0); // checked whole, not walked
    for (const char *bad : {"5-3", "1,,2", "1-2-3", "1.2.3", "1.v2.3", "3x", "1..2", "a-very-long-port-name-x", "1,"}) {
        i32 r = 0;
        EXPECT_NE(_said([&] { return cli_pport_list_str_is_valid(bad); }, &r).find("is invalid!"),
                  std::string::npos)
            << bad;
        EXPECT_EQ(r, -4) << bad;
    }
    // A range stops at a bad item and names it.
    EXPECT_EQ(_items("1-2,x y z,", &last), (std::vector<std::string>{"1", "2", "x y z"}));
    EXPECT_EQ(last, -4);
}

TEST(CliParam, KeywordsMissingOnTheChipTypeAreNamedAndRefused)
{
    shr_chip_type_assign(0, SHR_CHIP_TYPE_ATOLREEF, 0);
    const cli_key_support table[] = {{"ecn", {0, 1, 1, 0, 0}}, {"red", {0, 0, 0, 0, 0}}, {"green", {1, 1, 1, 1, 1}}};
    char w0[] = "ecn", w1[] = "green", w2[] = "red";
    char *argv[] = {w0, w1, w2};
    i32 r = 0;
    const std::string said = _said([&] { return cli_key_support_check(0, 3, argv, table, 3); }, &r);
    EXPECT_EQ(r, -24);
    EXPECT_NE(said.find("Key [ecn] Not Support for chip["), std::string::npos);
    EXPECT_NE(said.find("Key [red] Not Support for chip["), std::string::npos);
    EXPECT_EQ(said.find("green"), std::string::npos);
    EXPECT_EQ(cli_key_support_check(0, 1, argv + 1, table, 3), 0);
    EXPECT_EQ(cli_key_support_check(0, 3, argv, table, 0), 0);
    g_cli_key_check = 0;
    EXPECT_EQ(cli_key_support_check(0, 3, argv, table, 3), 0);
    g_cli_key_check = 1;
}

class CliPorts : public SimChips {};

i32 _cb_to_lport(u32, const char *pport, u32 *lport)
{
    if (std::strncmp(pport, "ge", 2) != 0) {
        return -7;
    }
    *lport = static_cast<u32>(std::atoi(pport + 2)) - 1;
    return 0;
}

i32 _cb_to_pport(u32, u32 lport, char *pport)
{
    std::snprintf(pport, CLI_PPORT_SIZE, "ge%u", lport + 1);
    return 0;
}

i32 _cb_next(u32, u32, i32 previous, u32 *lport, char *pport)
{
    if (previous >= 2) {
        return 1;
    }
    *lport = static_cast<u32>(previous + 1);
    return _cb_to_pport(0, *lport, pport);
}

TEST_F(CliPorts, NamesGoThroughTheCallbacksOrTheLibrarysOwnNumbers)
{
    u32 lport = 0;
    char name[CLI_PPORT_SIZE];
    // Callback mode without callbacks.
    EXPECT_EQ(cli_pport_to_lport(0, "1", &lport), -24);
    EXPECT_EQ(cli_lport_to_pport(0, 1, name), -24);
    EXPECT_EQ(cli_port_list_next_lport_get(0, 1, -1, &lport, name), -24);
    const cli_portmap_callback cb = {_cb_to_pport, _cb_to_lport, _cb_next};
    ASSERT_EQ(cli_portmap_register(&cb), 0);
    EXPECT_EQ(cli_pport_to_lport(0, "ge5", &lport), 0);
    EXPECT_EQ(lport, 4u);
    EXPECT_EQ(cli_lport_to_pport(0, 4, name), 0);
    EXPECT_STREQ(name, "ge5");
    std::vector<std::string> walked;
    for (i32 prev = -1; cli_port_list_next_lport_get(0, 0, prev, &lport, name) == 0; prev = static_cast<i32>(lport)) {
        walked.emplace_back(name);
    }
    EXPECT_EQ(walked, (std::vector<std::string>{"ge1", "ge2", "ge3"}));
    cli_portmap_register(nullptr);

    // Inner mode: numbers of existing ports and the inner ports' names.
    ASSERT_EQ(cli_shell_mode_set(0, 1), 0);
    EXPECT_EQ(cli_shell_mode_set(4, 1), -4);
    EXPECT_EQ(cli_pport_to_lport(0, "27", &lport), 0);
    EXPECT_EQ(lport, 27u);
    EXPECT_EQ(cli_pport_to_lport(0, "0x1a  ", &lport), 0);
    EXPECT_EQ(lport, 26u);
    EXPECT_EQ(cli_pport_to_lport(0, "cpu_port", &lport), 0);
    EXPECT_EQ(lport, 31u);
    EXPECT_EQ(cli_pport_to_lport(0, "mirror_lb_port", &lport), 0);
    EXPECT_EQ(lport, 28u);
    EXPECT_EQ(cli_pport_to_lport(0, "999", &lport), -7);
    EXPECT_EQ(cli_pport_to_lport(0, "no_such_port", &lport), -7);
    i32 r = 0;
    EXPECT_EQ(_said([&] { return cli_pport_to_lport(0, "3.v1", &lport); }, &r), "pport: 3.v1 is invalid!\n");
    EXPECT_EQ(r, -4);
    EXPECT_EQ(cli_lport_to_pport(0, 5, name), 0);
    EXPECT_STREQ(name, "5");
    EXPECT_EQ(cli_lport_to_pport(0, 31, name), 0);
    EXPECT_STREQ(name, "cpu_port");
    EXPECT_EQ(cli_lport_to_pport(0, 150, name), -7);
    u32 count = 0;
    u32 last = 0;
    for (i32 prev = -1; cli_port_list_next_lport_get(0, 0, prev, &lport, name) == 0; prev = static_cast<i32>(lport)) {
        count++;
        last = lport;
    }
    EXPECT_EQ(count, 28u);
    EXPECT_EQ(last, 27u);
    EXPECT_EQ(cli_port_list_next_lport_get(0, 1, 27, &lport, name), 0);
    EXPECT_EQ(lport, 28u);
    EXPECT_STREQ(name, "mirror_lb_port");
    EXPECT_EQ(cli_port_list_next_lport_get(0, 1, 31, &lport, name), -7);

    // Names from the chip's property store come first.
    ASSERT_EQ(shr_property_set(0, "uplink", "5"), 0);
    EXPECT_EQ(cli_pport_to_lport(0, "uplink", &lport), 0);
    EXPECT_EQ(lport, 5u);
    ASSERT_EQ(shr_property_port_set_str(0, 29, "inner_port", "prbs"), 0);
    EXPECT_EQ(cli_lport_to_pport(0, 29, name), 0);
    EXPECT_STREQ(name, "prbs");

    port_bitmap bmp = {};
    char list[64];
    EXPECT_EQ(cli_lport_bitmap_to_pport_list(0, &bmp, list, sizeof(list)), -11);
    bmp.word[0] = 1u << 3 | 1u << 4 | 1ull << 31;
    ASSERT_EQ(cli_lport_bitmap_to_pport_list(0, &bmp, list, sizeof(list)), 0);
    EXPECT_STREQ(list, "3,4,cpu_port");
    EXPECT_EQ(cli_lport_bitmap_to_pport_list(0, &bmp, list, 8), -6);
    cli_shell_mode_set(0, 0);
}

} // namespace
