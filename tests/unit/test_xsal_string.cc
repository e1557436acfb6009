// Bounded string calls and string helpers.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstring>
#include <string>

#include "sal/linux_um/xsal_int.h"
#include "unit/counting_alloc.h"

namespace {

// A destination of `size` bytes inside a larger buffer whose bytes past
// `size` are a guard pattern.
struct Guarded {
    static constexpr size_t kGuard = 16;
    char buf[64 + kGuard];
    size_t size;

    explicit Guarded(size_t n) : size(n) { std::memset(buf, 0x5A, sizeof(buf)); }
    bool guard_intact() const
    {
        for (size_t i = size; i < size + kGuard; i++) {
            if (buf[i] != 0x5A) {
                return false;
            }
        }
        return true;
    }
};

std::string g_dump;

int _capture(const char *format, ...)
{
    char line[128];
    va_list args;
    va_start(args, format);
    const int n = vsnprintf(line, sizeof(line), format, args);
    va_end(args);
    g_dump += line;
    return n;
}

} // namespace

TEST(XsalBoundedString, CopiesThatDoNotFitWriteNothingPastTheSizeAndLeaveEmpty)
{
    Guarded d(6);
    EXPECT_EQ(xsal_strcpy_s(d.buf, d.size, "hello"), 0);
    EXPECT_STREQ(d.buf, "hello");
    EXPECT_NE(xsal_strcpy_s(d.buf, d.size, "hello!"), 0);
    EXPECT_STREQ(d.buf, "");
    EXPECT_TRUE(d.guard_intact());

    // A count below the size cuts; a count that does not fit refuses.
    EXPECT_EQ(xsal_strncpy_s(d.buf, d.size, "hello world", 5), 0);
    EXPECT_STREQ(d.buf, "hello");
    EXPECT_EQ(xsal_strncpy_s(d.buf, d.size, "hi", 5), 0);
    EXPECT_STREQ(d.buf, "hi");
    EXPECT_NE(xsal_strncpy_s(d.buf, d.size, "hello world", 6), 0);
    EXPECT_STREQ(d.buf, "");
    EXPECT_TRUE(d.guard_intact());

    EXPECT_EQ(xsal_strcpy_s(d.buf, d.size, "ab"), 0);
    EXPECT_EQ(xsal_strcat_s(d.buf, d.size, "cde"), 0);
    EXPECT_STREQ(d.buf, "abcde");
    EXPECT_NE(xsal_strcat_s(d.buf, d.size, "f"), 0);
    EXPECT_STREQ(d.buf, "");
    EXPECT_TRUE(d.guard_intact());

    // An unterminated destination, NULL and overlap are refused.
    std::memset(d.buf, 'x', d.size);
    EXPECT_NE(xsal_strcat_s(d.buf, d.size, "a"), 0);
    EXPECT_EQ(d.buf[0], '\0');
    EXPECT_NE(xsal_strcpy_s(d.buf, d.size, nullptr), 0);
    EXPECT_NE(xsal_strcpy_s(nullptr, 4, "a"), 0);
    EXPECT_NE(xsal_strcpy_s(d.buf, 0, "a"), 0);
    EXPECT_EQ(xsal_strcpy_s(d.buf, d.size, "abc"), 0);
    EXPECT_NE(xsal_strcat_s(d.buf, d.size, d.buf), 0);
    EXPECT_TRUE(d.guard_intact());
}

TEST(XsalBoundedString, PrintsRefuseOrTruncateAsTheirKindSays)
{
    Guarded d(8);
    EXPECT_EQ(xsal_snprintf(d.buf, d.size, "%d-%s", 42, "abc"), 6);
    EXPECT_STREQ(d.buf, "42-abc");
    EXPECT_EQ(xsal_snprintf(d.buf, d.size, "%s", "12345678"), -1);
    EXPECT_STREQ(d.buf, "");
    EXPECT_TRUE(d.guard_intact());

    // The count limits too.
    EXPECT_EQ(xsal_snprintf_s(d.buf, d.size, 3, "%s", "abc"), 3);
    EXPECT_EQ(xsal_snprintf_s(d.buf, d.size, 3, "%s", "abcd"), -1);
    EXPECT_STREQ(d.buf, "");

    // Truncating print: what it wrote, terminated.
    EXPECT_EQ(xsal_sprintf_s(d.buf, d.size, "%s", "0123456789"), 7);
    EXPECT_STREQ(d.buf, "0123456");
    EXPECT_TRUE(d.guard_intact());

    char big[32];
    EXPECT_EQ(xsal_sprintf(big, "%05u|%x", 7u, 255u), 8);
    EXPECT_STREQ(big, "00007|ff");
}

TEST(XsalBoundedString, ChainedTruncatingAppendsFillTheBufferExactly)
{
    Guarded d(20);
    size_t off = 0;
    for (int i = 0; i < 10; i++) {
        off += static_cast<size_t>(xsal_sprintf_s(d.buf + off, d.size - off, "item%d,", i));
    }
    EXPECT_EQ(off, d.size - 1);
    EXPECT_STREQ(d.buf, "item0,item1,item2,i");
    EXPECT_TRUE(d.guard_intact());
}

TEST(XsalBoundedScan, SizedStringConversionsAndNumbers)
{
    int a = 0;
    unsigned x = 0;
    char word[8];
    char c[2];
    EXPECT_EQ(xsal_sscanf("  12 0x1f hello Zq", "%d %x %s %c", &a, &x, word, sizeof(word), c, sizeof(c)), 4);
    EXPECT_EQ(a, 12);
    EXPECT_EQ(x, 0x1Fu);
    EXPECT_STREQ(word, "hello");
    EXPECT_EQ(c[0], 'Z');

    // Too long for its destination: an empty string, and the scan ends.
    int after = -1;
    EXPECT_EQ(xsal_sscanf("7 toolongword 9", "%d %s %d", &a, word, sizeof(word), &after), 1);
    EXPECT_STREQ(word, "");
    EXPECT_EQ(after, -1);
    // A width keeps it in bounds.
    EXPECT_EQ(xsal_sscanf("toolongword", "%4s", word, sizeof(word)), 1);
    EXPECT_STREQ(word, "tool");

    char key[16];
    char value[16];
    int consumed = 0;
    EXPECT_EQ(xsal_sscanf("speed=1000,rest", "%[^=]=%[0-9]%n", key, sizeof(key), value, sizeof(value), &consumed),
              2);
    EXPECT_STREQ(key, "speed");
    EXPECT_STREQ(value, "1000");
    EXPECT_EQ(consumed, 10);

    long long big = 0;
    EXPECT_EQ(xsal_sscanf("skip 123456789012", "%*s %lld", &big), 1);
    EXPECT_EQ(big, 123456789012LL);
    EXPECT_EQ(xsal_sscanf("50%", "%d%%", &a), 1);

    // Input that ends before the first conversion, and a mismatch.
    EXPECT_EQ(xsal_sscanf("   ", "%d", &a), -1);
    EXPECT_EQ(xsal_sscanf("abc", "%d", &a), 0);
    EXPECT_EQ(xsal_sscanf("5", "%d %d", &a, &after), 1);
    // A destination of size 0 is refused.
    EXPECT_EQ(xsal_sscanf("abc", "%s", word, static_cast<size_t>(0)), -1);
}

TEST(XsalStringHelpers, CopiesConversionsAndCleaning)
{
    tide_test::CountingAlloc alloc;
    char *dup = xsal_strdup("copy me");
    char *ndup = xsal_strndup("copy me", 4);
    EXPECT_STREQ(dup, "copy me");
    EXPECT_STREQ(ndup, "copy");
    EXPECT_EQ(alloc.live(), 2);
    xsal_mem_free(dup);
    xsal_mem_free(ndup);
    EXPECT_EQ(alloc.live(), 0);

    char lower[8] = {};
    EXPECT_EQ(xsal_strupper_to_lower(lower, "AbC", 3), lower);
    EXPECT_STREQ(lower, "abc");
    EXPECT_EQ(xsal_strupper_to_lower(lower, "AbC", 0), nullptr);

    EXPECT_EQ(xsal_ctoi("0x1F"), 31);
    EXPECT_EQ(xsal_ctoi("0B101"), 5);
    EXPECT_EQ(xsal_ctoi("017"), 15);
    EXPECT_EQ(xsal_ctoi("-42"), -42);
    // The least number there is, and beyond 64 bits a number wraps.
    EXPECT_EQ(xsal_ctoi("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(xsal_ctoi("-0x8000000000000000"), INT64_MIN);
    EXPECT_EQ(xsal_ctoi("18446744073709551617"), 1);
    EXPECT_EQ(xsal_ctoi("12ab"), 12);
    EXPECT_EQ(xsal_ctoi("089"), 0);
    EXPECT_EQ(xsal_ctoi(""), 0);
    const char *end = nullptr;
    EXPECT_EQ(xsal_ctoi_scan("0x10,5", &end), 16);
    EXPECT_EQ(*end, ',');

    EXPECT_EQ(xsal_strto32("99999999999", nullptr, 10), INT32_MAX);
    EXPECT_EQ(xsal_strto32("-99999999999", nullptr, 10), INT32_MIN);
    EXPECT_EQ(xsal_strtou32("99999999999", nullptr, 10), UINT32_MAX);
    EXPECT_EQ(xsal_strtou64("ffffffffff", nullptr, 16), 0xFFFFFFFFFFull);

    char text[] = " a b\tc\nd\r\n";
    EXPECT_STREQ(xsal_clean_string_nullspace(text), "abcd");

    // Comparisons give the difference of the first differing bytes.
    EXPECT_EQ(xsal_strcmp("ab", "abc"), -'c');
    EXPECT_EQ(xsal_memcmp("\x01\xff", "\x01\x01", 2), 0xff - 0x01);
    EXPECT_EQ(xsal_strncasecmp("ABC", "abd", 3), 'c' - 'd');
    EXPECT_EQ(xsal_strncasecmp("x", "y", 0), 0);
    EXPECT_EQ(xsal_strstr(text, nullptr), text);
}

TEST(XsalStringHelpers, AlignedCopyMatchesMemcpyForEveryAlignment)
{
    alignas(8) unsigned char src[80];
    for (size_t i = 0; i < sizeof(src); i++) {
        src[i] = static_cast<unsigned char>(i * 7 + 1);
    }
    for (size_t so = 0; so < 4; so++) {
        for (size_t dof = 0; dof < 4; dof++) {
            for (size_t n : {0u, 1u, 3u, 4u, 5u, 31u, 32u, 33u, 64u}) {
                alignas(8) unsigned char dst[80];
                std::memset(dst, 0xEE, sizeof(dst));
                // The size caps the count.
                const size_t size = n > 2 ? n - 2 : n;
                ASSERT_EQ(xsal_memcpy_addr_4byte_align_s(dst + dof, size, src + so, n), 0);
                EXPECT_EQ(std::memcmp(dst + dof, src + so, size), 0) << so << " " << dof << " " << n;
                EXPECT_EQ(dst[dof + size], 0xEE);
            }
        }
    }
    unsigned char small[4] = {};
    EXPECT_EQ(xsal_byte_memcpy_s(small, 2, "wxyz", 4), 0);
    EXPECT_EQ(std::memcmp(small, "wx\0\0", 4), 0);
    EXPECT_EQ(xsal_byte_memset_s(small, 3, 'q', 8), 0);
    EXPECT_EQ(std::memcmp(small, "qqq\0", 4), 0);
}

TEST(XsalStringHelpers, MemdumpLayout)
{
    unsigned char data[18];
    for (unsigned i = 0; i < sizeof(data); i++) {
        data[i] = static_cast<unsigned char>(i);
    }
    g_dump.clear();
    xsal_utils_memdump("pfx", data, sizeof(data), _capture);
    char head[64];
    snprintf(head, sizeof(head), "pfx %016lx | ", reinterpret_cast<unsigned long>(data));
    std::string expected = head;
    expected += "00 01 02 03 04 05 06 07  08 09 0a 0b 0c 0d 0e 0f \n";
    snprintf(head, sizeof(head), "pfx %016lx | ", reinterpret_cast<unsigned long>(data + 16));
    expected += head;
    expected += "10 11 \n";
    EXPECT_EQ(g_dump, expected);
}
