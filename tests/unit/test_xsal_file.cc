// Files, disk space, raw packet sockets and the busy delay.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "sal/linux_um/xsal_int.h"
#include "unit/counting_alloc.h"

namespace {

// A temporary file path, removed at the end.
struct TempPath {
    std::string path;
    TempPath()
    {
        char tmpl[] = "/tmp/tide_fileXXXXXX";
        const int fd = mkstemp(tmpl);
        close(fd);
        path = tmpl;
    }
    ~TempPath() { unlink(path.c_str()); }
    std::string contents() const
    {
        std::ifstream in(path);
        std::stringstream ss;
        ss << in.rdbuf();
        return ss.str();
    }
};

} // namespace

TEST(XsalFile, WritelineAddsOrKeepsTheLineEndAndRefusesInnerNewlines)
{
    tide_test::CountingAlloc alloc;
    TempPath tmp;
    xsal_file_t f = xsal_file_open(tmp.path.c_str(), O_RDWR | O_TRUNC);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(xsal_file_writeline(f, "a\nb"), -1);
    EXPECT_EQ(xsal_file_writeline(f, "a\n"), 0);
    EXPECT_EQ(xsal_file_writeline(f, "a"), 0);
    EXPECT_EQ(xsal_file_writeline(f, nullptr), -1);
    EXPECT_EQ(xsal_file_write_log(f, "n=%d\n", 5), 4);
    EXPECT_EQ(tmp.contents(), "a\na\nn=5\n");

    // Lines read back through the same stream after a seek to the start.
    ASSERT_EQ(xsal_file_seek(f, 0, XSAL_SEEK_SET), 0);
    char line[16];
    EXPECT_STREQ(xsal_file_readline(f, line, sizeof(line)), "a\n");
    EXPECT_STREQ(xsal_file_readline(f, line, sizeof(line)), "a\n");
    EXPECT_STREQ(xsal_file_readline(f, line, sizeof(line)), "n=5\n");
    EXPECT_EQ(xsal_file_readline(f, line, sizeof(line)), nullptr);
    EXPECT_EQ(xsal_file_close(f), 0);
    EXPECT_EQ(alloc.live(), 0);
}

TEST(XsalFile, SeekOriginsCurrentStartEnd)
{
    TempPath tmp;
    xsal_file_t f = xsal_file_open(tmp.path.c_str(), O_RDWR | O_TRUNC);
    ASSERT_NE(f, nullptr);
    unsigned char data[100];
    for (unsigned i = 0; i < sizeof(data); i++) {
        data[i] = static_cast<unsigned char>(i);
    }
    ASSERT_EQ(xsal_file_write(f, data, sizeof(data)), 100);
    ASSERT_EQ(xsal_file_seek(f, 0, XSAL_SEEK_SET), 0);
    // Origin 0 is the current position: two steps of 24 reach 48.
    ASSERT_EQ(xsal_file_seek(f, 24, XSAL_SEEK_CUR), 0);
    ASSERT_EQ(xsal_file_seek(f, 24, XSAL_SEEK_CUR), 0);
    unsigned char b = 0;
    ASSERT_EQ(xsal_file_read(f, &b, 1), 1);
    EXPECT_EQ(b, 48);
    ASSERT_EQ(xsal_file_seek(f, -1, XSAL_SEEK_END), 0);
    ASSERT_EQ(xsal_file_read(f, &b, 1), 1);
    EXPECT_EQ(b, 99);
    EXPECT_EQ(xsal_file_read(f, &b, 1), 0);
    EXPECT_EQ(xsal_file_seek(f, 0, 3), -1);
    EXPECT_EQ(xsal_file_seek(nullptr, 0, XSAL_SEEK_SET), -1);
    EXPECT_EQ(xsal_file_close(f), 0);
}

TEST(XsalFile, OpenFailuresAndNullHandles)
{
    tide_test::CountingAlloc alloc;
    EXPECT_EQ(xsal_file_open(nullptr, O_RDONLY), nullptr);
    EXPECT_EQ(xsal_file_open("/nonexistent/dir/file", O_RDONLY), nullptr);
    EXPECT_EQ(alloc.live(), 0);
    EXPECT_EQ(xsal_file_close(nullptr), -1);
    char buf[4];
    EXPECT_EQ(xsal_file_read(nullptr, buf, 4), -1);
    EXPECT_EQ(xsal_file_write(nullptr, buf, 4), -1);

    // A descriptor open for writing only takes line writes too.
    TempPath tmp;
    xsal_file_t f = xsal_file_open(tmp.path.c_str(), O_WRONLY | O_TRUNC);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(xsal_file_writeline(f, "only"), 0);
    EXPECT_EQ(xsal_file_readline(f, buf, sizeof(buf)), nullptr);
    EXPECT_EQ(xsal_file_close(f), 0);
    EXPECT_EQ(tmp.contents(), "only\n");
}

TEST(XsalDisk, MeasuresTheDirectoryOfThePath)
{
    u32 mb = 7;
    EXPECT_EQ(sal_disk_available_size(nullptr, &mb), -1);
    EXPECT_EQ(mb, 0u);
    EXPECT_EQ(sal_disk_available_size("x", nullptr), -1);

    // No '/': the current directory.
    struct statfs st;
    ASSERT_EQ(statfs(".", &st), 0);
    const u64 expect_cwd = (static_cast<u64>(st.f_bavail) * static_cast<u64>(st.f_bsize)) >> 20;
    ASSERT_EQ(sal_disk_available_size("file.bin", &mb), 0);
    EXPECT_NEAR(static_cast<double>(mb), static_cast<double>(expect_cwd), 64.0);

    ASSERT_EQ(statfs("/tmp/", &st), 0);
    const u64 expect_tmp = (static_cast<u64>(st.f_bavail) * static_cast<u64>(st.f_bsize)) >> 20;
    ASSERT_EQ(sal_disk_available_size("/tmp/not-there.bin", &mb), 0);
    EXPECT_NEAR(static_cast<double>(mb), static_cast<double>(expect_tmp), 64.0);

    EXPECT_NE(sal_disk_available_size("/no/such/dir/f", &mb), 0);
    EXPECT_EQ(mb, 0u);
    std::string longdir = "/" + std::string(1100, 'd') + "/f";
    mb = 7;
    EXPECT_EQ(sal_disk_available_size(longdir.c_str(), &mb), -1);
    EXPECT_EQ(mb, 0u);
}

TEST(XsalSocket, RawFramesOnLoopback)
{
    EXPECT_EQ(xsal_socket_packet_create(0x88B5, "no-such-if0", nullptr), nullptr);
    EXPECT_EQ(xsal_socket_packet_receive(nullptr, nullptr, 0), -1);
    xsal_socket_packet_t s = xsal_socket_packet_create(0x88B5, "lo", "lo");
    if (s == nullptr) {
        GTEST_SKIP() << "raw packet sockets need CAP_NET_RAW";
    }
    unsigned char frame[60] = {};
    std::memset(frame, 0xFF, 6);                // broadcast destination
    frame[6] = 0x02;                             // a local source address
    frame[12] = 0x88;
    frame[13] = 0xB5;                            // the socket's Ethernet type
    std::memcpy(frame + 14, "tide-frame", 10);
    ASSERT_EQ(xsal_socket_packet_send(s, frame, sizeof(frame)), static_cast<int>(sizeof(frame)));
    unsigned char got[128];
    const int n = xsal_socket_packet_receive(s, got, sizeof(got));
    ASSERT_EQ(n, static_cast<int>(sizeof(frame)));
    EXPECT_EQ(std::memcmp(got + 14, "tide-frame", 10), 0);
    EXPECT_EQ(xsal_socket_packet_destroy(s), 0);
}

TEST(XsalDelay, BusyDelaySpinsItsCalibratedCount)
{
    // How long a count takes depends on the machine and its load; what the
    // delay promises is the count: n rounds of the calibrated loop.
    xsal_udelay(0);
    const u32 loops = g_xsal_udelay_loops;
    EXPECT_GE(loops, 1u);
    const u32 before = g_xsal_udelay_counter;
    xsal_udelay(2000);
    EXPECT_EQ(g_xsal_udelay_counter - before, 2000u * loops);
    xsal_udelay(-5); // nothing to wait
    EXPECT_EQ(g_xsal_udelay_counter - before, 2000u * loops);
}

TEST(XsalDelay, SleepLastsAtLeastItsTimeOnTheLayersClock)
{
    // The promise: the sleep returns once xsal_time_usecs() has moved on by
    // more than n, so at least n microseconds have passed on that clock.
    // Read with the same clock around the call, the span can only be
    // longer: no tolerance is needed.
    for (u32 usec : {1u, 999u, 3000u, 19999u, 20000u, 25000u}) {
        const u64 before = xsal_time_usecs();
        xsal_usleep(usec);
        const u64 after = xsal_time_usecs();
        EXPECT_GE(after - before, usec) << usec;
    }
}
