// Log lines on the console, the bring-up record in debug buffer 0, and the
// file output of the diagnostic code.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

#include "csl/common/reg_tab/csl_reg.h"
#include "sal/linux_um/xsal_int.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

TEST(Log, ConsoleLinesAreCutAtNewlinesAnd512Characters)
{
    testing::internal::CaptureStdout();
    xsal_log_printf("%s", std::string(600, 'x').c_str());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(512, 'x') + "\r\n");
    testing::internal::CaptureStdout();
    xsal_log_printf("a\nbb\nccc");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a\r\nbb\r\nccc");
    EXPECT_STREQ(xsal_log_levelname_get(4), "DEBUG");
    EXPECT_STREQ(xsal_log_levelname_get(5), "UNKNOWN");
}

TEST(Log, DebugBufferKeepsTheEarliestText)
{
    ASSERT_EQ(xsal_log_debug_buffer_allocate(0), 0);
    u32 size = 0, used = 0;
    ASSERT_EQ(xsal_log_buffter_utilization_get(0, &size, &used), 0);
    EXPECT_EQ(size, 0x20000u);
    const std::string chunk(1000, 'a');
    u32 put = 0;
    while (xsal_log_str_to_buf_put(chunk.c_str(), static_cast<u32>(chunk.size()), 0) == 0) {
        put++;
    }
    // 131 whole chunks fit in 131,071 bytes; the 132nd is dropped whole.
    EXPECT_EQ(put, 131u);
    ASSERT_EQ(xsal_log_buffter_utilization_get(0, &size, &used), 0);
    EXPECT_EQ(used, 131000u);
    EXPECT_EQ(xsal_log_str_to_buf_put("b", 1, 0), 0); // small text still fits
    char *data = xsal_log_debug_obtain_buffer_get(0, &used);
    EXPECT_EQ(data[0], 'a');
    EXPECT_EQ(data[used - 1], 'b');
    ASSERT_EQ(xsal_log_debug_buffer_clear(0), 0);
    EXPECT_EQ(xsal_log_buffter_utilization_get(0, &size, &used), -1);
    // The caller's own memory.
    char mine[64];
    ASSERT_EQ(xsal_log_debug_outside_buffer_allocate(1, reinterpret_cast<u8 *>(mine), sizeof(mine)), 0);
    EXPECT_EQ(xsal_log_str_to_buf_put("hello", 5, 1), 0);
    EXPECT_STREQ(mine, "hello");
    ASSERT_EQ(xsal_log_debug_buffer_clear(1), 0);
}

class LogOnChip : public SimChips {
protected:
    LogOnChip() : SimChips(1, 1) {}
};

TEST_F(LogOnChip, BringUpIsRecordedInBufferZero)
{
    u32 used = 0;
    const char *data = xsal_log_debug_obtain_buffer_get(0, &used);
    ASSERT_NE(data, nullptr);
    const std::string text(data, used);
    EXPECT_NE(text.find("[SOFT-INIT:          base]............[OK]"), std::string::npos) << text;
    EXPECT_NE(text.find("[CHIP-INIT:      hw reset]............[OK]"), std::string::npos);
    EXPECT_NE(text.find(" INFO "), std::string::npos);
    EXPECT_NE(text.find("chip_id: 0]"), std::string::npos);
}

TEST_F(LogOnChip, FileOutputHonoursItsLimit)
{
    char path[] = "/tmp/tide_out_XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    ASSERT_EQ(csl_write_file_open(0, path, 10), 0);
    EXPECT_EQ(csl_output_func(0, 1, "%s", "12345678901"), -6); // 11 bytes
    EXPECT_EQ(csl_output_func(0, 1, "%s", "1234"), 4);
    // The same thread opening again is told the file is in use.
    Capture::clear();
    EXPECT_EQ(csl_write_file_open(0, path, 10), 0);
    EXPECT_TRUE(Capture::has("write file pipe already in use!\n"));
    EXPECT_EQ(csl_output_func(0, 1, "%s", "567890"), 6);
    EXPECT_EQ(csl_output_func(0, 1, "%s", "x"), -6);
    ASSERT_EQ(csl_write_file_close(0), 0);
    EXPECT_EQ(csl_output_func(0, 1, "after"), -11);
    std::ifstream in(path);
    std::stringstream all;
    all << in.rdbuf();
    EXPECT_EQ(all.str(), "1234567890");
    unlink(path);
    EXPECT_EQ(csl_write_file_open(0, "/nonexistent/dir/file", 0xFFFFFFFF), -11);
}

} // namespace
