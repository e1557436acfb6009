// Log lines on the console, the bring-up record in debug buffer 0, and the
// file output of the diagnostic code.
#include <gtest/gtest.h>
#include <unistd.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "csl/common/reg_tab/csl_coverage.h"
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

// The coverage log runs in a directory of its own: its files are named by
// the local address and a random number, in the working directory.
class Coverage : public SimChips {
protected:
    Coverage() : SimChips(1, 1) {}
    void SetUp() override
    {
        char tmpl[] = "/tmp/tide_cov_XXXXXX";
        ASSERT_NE(mkdtemp(tmpl), nullptr);
        dir_ = tmpl;
        ASSERT_NE(getcwd(old_, sizeof(old_)), nullptr);
        ASSERT_EQ(chdir(dir_.c_str()), 0);
        SimChips::SetUp();
        g_csl_log_coverage_wait_us = 0;
    }
    void TearDown() override
    {
        SimChips::TearDown();
        g_csl_log_coverage_line_max = CSL_COVERAGE_LINES_PER_FILE;
        g_csl_log_coverage_wait_us = 500000;
        ASSERT_EQ(chdir(old_), 0);
        ASSERT_EQ(std::system(("rm -rf " + dir_).c_str()), 0);
    }
    static std::string read_file(const std::string &path)
    {
        std::ifstream in(path);
        std::stringstream all;
        all << in.rdbuf();
        return all.str();
    }
    size_t files() const
    {
        size_t n = 0;
        for (const auto &e : std::filesystem::directory_iterator(dir_)) {
            n += e.path().filename().string().rfind("sdk_", 0) == 0;
        }
        return n;
    }
    std::string dir_;
    char old_[4096] = {};
};

TEST_F(Coverage, RegisterTrafficIsLoggedUntilStopped)
{
    ASSERT_EQ(csl_coverage_localip_set("10_1_2_3", 20), 0);
    EXPECT_EQ(csl_coverage_localip_set("10_1_2_3", 19), -4);
    EXPECT_EQ(csl_coverage_enable_disable(0, 0, nullptr, nullptr), -7); // not running
    ASSERT_EQ(csl_coverage_enable_disable(0, 1, nullptr, nullptr), 0);
    EXPECT_EQ(csl_coverage_enable_disable(0, 1, nullptr, nullptr), -8);
    const std::string name = g_csl_log_coverage_name[0];
    EXPECT_EQ(name.rfind("sdk_10_1_2_3_", 0), 0u) << name;
    EXPECT_EQ(name.size(), std::string("sdk_10_1_2_3_0123456789.log").size());

    ASSERT_EQ(csl_reg_write32(0, 0x100, 0xABC), 0);
    u32 v = 0;
    ASSERT_EQ(csl_reg_read32(0, 0x100, &v), 0);
    // Other BARs are not logged.
    ASSERT_EQ(csl_reg_general_read32(0, 3, 0x47014, &v), 0);

    u32 count = 0;
    char names[CSL_COVERAGE_FILES_MAX][CSL_COVERAGE_NAME_LEN] = {};
    Capture::clear();
    ASSERT_EQ(csl_coverage_enable_disable(0, 0, &count, names), 0);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(names[0], name);
    EXPECT_NE(Capture::output().find("coverage name: " + name), std::string::npos);
    EXPECT_EQ(read_file(name), "##write 0x00000100 = 0xabc\n##read  0x00000100 = 0xabc\n");
    char saved[CSL_COVERAGE_NAME_LEN];
    EXPECT_EQ(csl_coverage_save_filename_get(0, saved, 49), -4);
    ASSERT_EQ(csl_coverage_save_filename_get(0, saved, sizeof(saved)), 0);
    EXPECT_EQ(saved, name);
    // Stopped: traffic adds nothing.
    ASSERT_EQ(csl_reg_write32(0, 0x100, 1), 0);
    EXPECT_EQ(read_file(name).size(), 54u);
}

TEST_F(Coverage, FullFileRollsOverToANewName)
{
    ASSERT_EQ(csl_coverage_enable_disable(0, 1, nullptr, nullptr), 0);
    const std::string first = g_csl_log_coverage_name[0];
    for (u32 i = 0; i < CSL_COVERAGE_LINES_PER_FILE; i++) {
        ASSERT_EQ(_csl_coverage_read_write(0, 4 * (i % 64), i, "read"), 0);
    }
    const std::string second = g_csl_log_coverage_name[0];
    EXPECT_NE(second, first);
    EXPECT_EQ(g_csl_log_coverage_flag[0], 1u);
    EXPECT_EQ(g_csl_log_file_count[0], 2u);
    const std::string text = read_file(first);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), static_cast<long>(CSL_COVERAGE_LINES_PER_FILE));
    ASSERT_EQ(_csl_coverage_read_write(0, 8, 1, "write"), 0);
    EXPECT_EQ(read_file(second), "##write 0x00000008 = 0x1\n");
    u32 count = 0;
    ASSERT_EQ(csl_coverage_enable_disable(0, 0, &count, nullptr), 0);
    EXPECT_EQ(count, 2u);
}

TEST_F(Coverage, StopsAfterItsShareOfFiles)
{
    g_csl_log_coverage_line_max = 1;
    ASSERT_EQ(csl_coverage_enable_disable(0, 1, nullptr, nullptr), 0);
    for (u32 i = 0; i + 1 < CSL_COVERAGE_FILES_MAX; i++) {
        ASSERT_EQ(csl_reg_write32(0, 0x100, i), 0);
        ASSERT_EQ(g_csl_log_coverage_flag[0], 1u) << i;
    }
    Capture::clear();
    ASSERT_EQ(csl_reg_write32(0, 0x100, 7), 0); // the access itself succeeds
    EXPECT_TRUE(Capture::has("Log file count is over 100, please disable !!!\n"));
    EXPECT_EQ(g_csl_log_coverage_flag[0], 0u);
    EXPECT_EQ(files(), static_cast<size_t>(CSL_COVERAGE_FILES_MAX));
    EXPECT_EQ(csl_coverage_enable_disable(0, 0, nullptr, nullptr), -7);
    // A new run starts afresh.
    g_csl_log_coverage_line_max = CSL_COVERAGE_LINES_PER_FILE;
    ASSERT_EQ(csl_coverage_enable_disable(0, 1, nullptr, nullptr), 0);
    EXPECT_EQ(g_csl_log_file_count[0], 1u);
}

// The upload runs external tools: a missing setting or tool is a status,
// never a hang.
class Upload : public Coverage {
protected:
    void SetUp() override
    {
        Coverage::SetUp();
        path_ = getenv("PATH");
        setenv("PATH", dir_.c_str(), 1);
    }
    void TearDown() override
    {
        setenv("PATH", path_.c_str(), 1);
        for (const char *v : {"ftp_upload_ip", "ftp_upload_username", "ftp_upload_password"}) {
            unsetenv(v);
        }
        Coverage::TearDown();
    }
    // A stand-in for an upload tool: records its arguments, exits with `rc`.
    void tool(const char *name, int rc)
    {
        const std::string p = dir_ + "/" + name;
        std::ofstream(p) << "#!/bin/sh\necho \"$@\" > " << dir_ << "/" << name << ".args\nexit " << rc << "\n";
        ASSERT_EQ(chmod(p.c_str(), 0755), 0);
    }
    std::string path_;
};

TEST_F(Upload, MissingSettingsAndToolsAreStatuses)
{
    EXPECT_EQ(csl_upload_log_file(nullptr), -4);
    Capture::clear();
    EXPECT_EQ(csl_upload_log_file("f.log"), -7);
    EXPECT_TRUE(Capture::has("Error! get ftp_upload_ip env fail!\n"));
    setenv("ftp_upload_ip", "192.0.2.1", 1);
    setenv("ftp_upload_username", "u", 1);
    EXPECT_EQ(csl_upload_log_file("f.log"), -7);
    EXPECT_TRUE(Capture::has("Error! get ftp_upload_password env fail!\n"));
    setenv("ftp_upload_password", "secret", 1);
    // Neither tool on the search path: -11 at once.
    EXPECT_EQ(csl_upload_log_file("f.log"), -11);
    EXPECT_STREQ(getenv("ftp_upload_password"), "secret"); // kept for a retry
}

TEST_F(Upload, FallsBackToTftpAndForgetsThePassword)
{
    // The time limit the tools run under comes from the system.
    std::ofstream(dir_ + "/timeout") << "#!/bin/sh\nshift\nexec \"$@\"\n";
    ASSERT_EQ(chmod((dir_ + "/timeout").c_str(), 0755), 0);
    ASSERT_EQ(symlink("/bin/rm", (dir_ + "/rm").c_str()), 0);
    tool("ftpput", 1);
    tool("tftp", 0);
    setenv("ftp_upload_ip", "192.0.2.1", 1);
    setenv("ftp_upload_username", "u", 1);
    setenv("ftp_upload_password", "secret", 1);
    EXPECT_EQ(csl_upload_log_file("f.log"), 0);
    EXPECT_EQ(read_file(dir_ + "/ftpput.args"), "-u u -p secret 192.0.2.1 f.log f.log\n");
    EXPECT_EQ(read_file(dir_ + "/tftp.args"), "-r f.log -p 192.0.2.1\n");
    EXPECT_STREQ(getenv("ftp_upload_password"), "");

    // With the upload flag a full file is sent and removed.
    setenv("ftp_upload_password", "secret", 1);
    tool("ftpput", 0);
    g_csl_log_coverage_line_max = 1;
    ASSERT_EQ(csl_coverage_upload_log_flag_set(0, 1), 0);
    ASSERT_EQ(csl_coverage_enable_disable(0, 1, nullptr, nullptr), 0);
    const std::string first = g_csl_log_coverage_name[0];
    ASSERT_EQ(csl_reg_write32(0, 0x100, 1), 0);
    EXPECT_FALSE(std::filesystem::exists(dir_ + "/" + first));
    EXPECT_EQ(files(), 1u);
    EXPECT_EQ(read_file(dir_ + "/ftpput.args"), "-u u -p secret 192.0.2.1 " + first + " " + first + "\n");
}

} // namespace
