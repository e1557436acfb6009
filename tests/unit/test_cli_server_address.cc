// The shell server's own addresses: the default unix socket, and TCP on
// 127.0.0.1 at the fallback port where no unix socket can be made.  Both
// belong to the machine, not to this test: a tided or a test of another
// build tree may hold one.  A test then skips, as what it would check
// cannot be set up; within one ctest run these tests take turns
// (RESOURCE_LOCK in tests/CMakeLists.txt), so that they never skip there
// because of each other.
#include <dirent.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "tests/support/shell_client.h"
#include "tests/support/temp_dir.h"
#include "tests/support/wait.h"

using tide::test::WireClient;

namespace {

// The inodes of this process's sockets.
std::set<std::string> _own_sockets()
{
    std::set<std::string> inodes;
    if (DIR *d = opendir("/proc/self/fd")) {
        while (const dirent *e = readdir(d)) {
            char link[64] = {};
            const std::string fd = std::string("/proc/self/fd/") + e->d_name;
            const ssize_t n = readlink(fd.c_str(), link, sizeof(link) - 1);
            const std::string target(link, n > 0 ? static_cast<size_t>(n) : 0);
            if (target.rfind("socket:[", 0) == 0) {
                inodes.insert(target.substr(8, target.size() - 9));
            }
        }
        closedir(d);
    }
    return inodes;
}

// TCP sockets of this process that listen, on any address.
size_t _own_tcp_listeners()
{
    const std::set<std::string> own = _own_sockets();
    size_t n = 0;
    for (const char *table : {"/proc/self/net/tcp", "/proc/self/net/tcp6"}) {
        std::ifstream in(table);
        std::string line;
        std::getline(in, line); // the header
        while (std::getline(in, line)) {
            std::istringstream fields(line);
            std::string slot, local, remote, state, queues, timer, retransmits, uid, timeout, inode;
            fields >> slot >> local >> remote >> state >> queues >> timer >> retransmits >> uid >> timeout >> inode;
            n += state == "0A" && own.count(inode) != 0; // 0A: LISTEN
        }
    }
    return n;
}

// The address family of the server's listening socket.
sockaddr_storage _server_address()
{
    sockaddr_storage addr{};
    socklen_t len = sizeof(addr);
    EXPECT_EQ(getsockname(g_server_fd, reinterpret_cast<sockaddr *>(&addr), &len), 0);
    return addr;
}

// True when another process holds TCP 127.0.0.1 at `port`: it cannot be
// listened on now.
bool _port_taken(u16 port)
{
    ::testing::internal::CaptureStdout();
    const int fd = server_listen_tcp("127.0.0.1", port);
    ::testing::internal::GetCapturedStdout();
    if (fd >= 0) {
        close(fd);
    }
    return fd < 0;
}

// True when another process holds the unix socket path: a server listens
// there, or a file of another kind stands in its place.  A stale socket
// file is no obstacle: a server replaces it.
bool _path_taken(const char *path)
{
    struct stat st;
    if (lstat(path, &st) != 0) {
        return false;
    }
    if (!S_ISSOCK(st.st_mode)) {
        return true;
    }
    WireClient probe{std::string(path)};
    return probe.ok();
}

TEST(CliServerAddress, PortZeroListensOnTheDefaultUnixSocketAndOnNoTcpPort)
{
    ASSERT_STREQ(cli_server_socket_path_get(), CLI_SERVER_SOCKET_PATH);
    // Until the socket is ours, or another process is seen to hold it.
    bool taken = false;
    const bool up = tide_test::eventually([&taken] {
        ::testing::internal::CaptureStdout();
        const i32 rc = cli_server_main(0);
        ::testing::internal::GetCapturedStdout();
        if (rc == 0 && _server_address().ss_family == AF_UNIX) {
            return true;
        }
        if (rc == 0) {
            cli_server_wait(0);
        }
        taken = _path_taken(CLI_SERVER_SOCKET_PATH);
        return taken;
    });
    if (taken) {
        GTEST_SKIP() << "another process holds " CLI_SERVER_SOCKET_PATH;
    }
    ASSERT_TRUE(up) << "no server on " CLI_SERVER_SOCKET_PATH ", although nobody else holds it";
    EXPECT_EQ(_own_tcp_listeners(), 0u);
    struct stat ours;
    ASSERT_EQ(lstat(CLI_SERVER_SOCKET_PATH, &ours), 0);
    EXPECT_TRUE(S_ISSOCK(ours.st_mode));
    {
        WireClient c(CLI_SERVER_SOCKET_PATH);
        ASSERT_TRUE(c.ok());
        EXPECT_TRUE(c.shake());
    }
    // Stopping removes our socket file; another server may have made one
    // of that name since.
    cli_server_wait(0);
    struct stat after;
    if (lstat(CLI_SERVER_SOCKET_PATH, &after) == 0) {
        EXPECT_NE(after.st_ino, ours.st_ino);
    }
}

TEST(CliServerAddress, PortZeroWithoutAUnixSocketListensOnTheFallbackPort)
{
    // A socket in a directory that does not exist cannot be made.
    tide_test::TempDir dir;
    const std::string path = dir.file("missing/shell.sock");
    ASSERT_EQ(cli_server_socket_path_set(path.c_str()), 0);
    // Until the port is ours, or another process is seen to hold it.
    bool taken = false;
    const bool up = tide_test::eventually([&taken] {
        ::testing::internal::CaptureStdout();
        const i32 rc = cli_server_main(0);
        ::testing::internal::GetCapturedStdout();
        taken = rc != 0 && _port_taken(CLI_SERVER_FALLBACK_PORT);
        return rc == 0 || taken;
    });
    if (taken) {
        GTEST_SKIP() << "another process holds port " << CLI_SERVER_FALLBACK_PORT;
    }
    ASSERT_TRUE(up) << "no server, although port " << CLI_SERVER_FALLBACK_PORT << " is free";
    const sockaddr_storage addr = _server_address();
    ASSERT_EQ(addr.ss_family, AF_INET);
    const auto *in = reinterpret_cast<const sockaddr_in *>(&addr);
    EXPECT_EQ(ntohl(in->sin_addr.s_addr), INADDR_LOOPBACK);
    EXPECT_EQ(ntohs(in->sin_port), CLI_SERVER_FALLBACK_PORT);
    EXPECT_EQ(_own_tcp_listeners(), 1u);
    {
        WireClient c(static_cast<u16>(CLI_SERVER_FALLBACK_PORT));
        ASSERT_TRUE(c.ok());
        EXPECT_TRUE(c.shake());
    }
    cli_server_wait(0);
    EXPECT_EQ(_own_tcp_listeners(), 0u);
    EXPECT_NE(access(path.c_str(), F_OK), 0);
}

} // namespace
