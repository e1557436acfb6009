#include "support/netns.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <linux/if_tun.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <thread>

extern char **environ;

namespace tide::test {

namespace {

// An AF_INET datagram socket for the interface ioctls.
int _ctl_socket()
{
    return socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
}

bool _ifreq_ioctl(const std::string &ifname, unsigned long request, ifreq *ifr)
{
    const int s = _ctl_socket();
    if (s < 0) {
        return false;
    }
    strncpy(ifr->ifr_name, ifname.c_str(), IFNAMSIZ - 1);
    const bool ok = ioctl(s, request, ifr) == 0;
    close(s);
    return ok;
}

} // namespace

std::string tap_unavailable()
{
    if (geteuid() != 0) {
        return "TAP devices need root";
    }
    const int fd = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        return std::string("/dev/net/tun cannot be opened: ") + strerror(errno);
    }
    close(fd);
    return "";
}

std::string netns_unavailable()
{
    const std::string tap = tap_unavailable();
    if (!tap.empty()) {
        return tap;
    }
    NetNs probe(unique_name("tideprobe", ""));
    return probe.ok() ? "" : "network namespaces cannot be made with ip(8)";
}

int run_program(const std::vector<std::string> &argv)
{
    std::vector<char *> args;
    for (const std::string &a : argv) {
        args.push_back(const_cast<char *>(a.c_str()));
    }
    args.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int rc = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) {
        return -1;
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string unique_name(const std::string &prefix, const std::string &suffix)
{
    return prefix + std::to_string(getpid()) + suffix;
}

NetNs::NetNs(std::string name) : name_(std::move(name))
{
    ok_ = run_program({"ip", "netns", "add", name_}) == 0;
}

NetNs::~NetNs()
{
    if (ok_) {
        run_program({"ip", "netns", "del", name_});
    }
}

bool NetNs::ip(const std::vector<std::string> &args) const
{
    std::vector<std::string> argv = {"ip", "-n", name_};
    argv.insert(argv.end(), args.begin(), args.end());
    return run_program(argv) == 0;
}

void NetNs::run(const std::function<void()> &fn) const
{
    std::thread t([&] {
        const int fd = open(("/run/netns/" + name_).c_str(), O_RDONLY | O_CLOEXEC);
        const bool in = fd >= 0 && setns(fd, CLONE_NEWNET) == 0;
        if (fd >= 0) {
            close(fd);
        }
        if (in) {
            fn();
        }
    });
    t.join();
}

PersistentTap::PersistentTap(std::string name) : name_(std::move(name))
{
    const int fd = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        return;
    }
    ifreq ifr{};
    ifr.ifr_flags = IFF_TAP | IFF_NO_PI;
    strncpy(ifr.ifr_name, name_.c_str(), IFNAMSIZ - 1);
    ok_ = ioctl(fd, TUNSETIFF, &ifr) == 0 && ioctl(fd, TUNSETPERSIST, 1) == 0;
    close(fd);
}

PersistentTap::~PersistentTap()
{
    run_program({"ip", "link", "del", name_});
}

bool link_up(const std::string &ifname, bool up)
{
    ifreq ifr{};
    if (!_ifreq_ioctl(ifname, SIOCGIFFLAGS, &ifr)) {
        return false;
    }
    ifr.ifr_flags = static_cast<short>(up ? ifr.ifr_flags | IFF_UP : ifr.ifr_flags & ~IFF_UP);
    return _ifreq_ioctl(ifname, SIOCSIFFLAGS, &ifr);
}

bool link_mtu(const std::string &ifname, uint32_t mtu)
{
    ifreq ifr{};
    ifr.ifr_mtu = static_cast<int>(mtu);
    return _ifreq_ioctl(ifname, SIOCSIFMTU, &ifr);
}

int64_t link_rx_packets(const std::string &ifname)
{
    ifaddrs *list = nullptr;
    if (getifaddrs(&list) != 0) {
        return -1;
    }
    int64_t rx = -1;
    for (const ifaddrs *a = list; a != nullptr; a = a->ifa_next) {
        if (a->ifa_addr != nullptr && a->ifa_addr->sa_family == AF_PACKET && a->ifa_data != nullptr &&
            ifname == a->ifa_name) {
            rx = static_cast<const rtnl_link_stats *>(a->ifa_data)->rx_packets;
        }
    }
    freeifaddrs(list);
    return rx;
}

int packet_socket(const std::string &ifname, uint16_t ethertype)
{
    const int fd = socket(AF_PACKET, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, htons(ethertype));
    if (fd < 0) {
        return -1;
    }
    sockaddr_ll sll{};
    sll.sll_family = AF_PACKET;
    sll.sll_protocol = htons(ethertype);
    sll.sll_ifindex = static_cast<int>(if_nametoindex(ifname.c_str()));
    if (sll.sll_ifindex == 0 || bind(fd, reinterpret_cast<sockaddr *>(&sll), sizeof(sll)) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

bool packet_send(int fd, const std::vector<uint8_t> &frame)
{
    return send(fd, frame.data(), frame.size(), 0) == static_cast<ssize_t>(frame.size());
}

bool packet_wait(int fd, const std::function<bool(const std::vector<uint8_t> &)> &match, int timeout_ms)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    std::vector<uint8_t> buf(65536);
    for (;;) {
        const ssize_t n = recv(fd, buf.data(), buf.size(), 0);
        if (n >= 0) {
            if (match(std::vector<uint8_t>(buf.begin(), buf.begin() + n))) {
                return true;
            }
            continue;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        if (errno != EAGAIN || left <= 0) {
            return false;
        }
        pollfd p{fd, POLLIN, 0};
        poll(&p, 1, static_cast<int>(left));
    }
}

std::vector<uint8_t> eth_frame(uint64_t dmac, uint64_t smac, uint16_t ethertype, size_t len)
{
    std::vector<uint8_t> f;
    for (uint64_t mac : {dmac, smac}) {
        for (int i = 5; i >= 0; i--) {
            f.push_back(static_cast<uint8_t>(mac >> (8 * i)));
        }
    }
    f.push_back(static_cast<uint8_t>(ethertype >> 8));
    f.push_back(static_cast<uint8_t>(ethertype));
    while (f.size() < len) {
        f.push_back(static_cast<uint8_t>(f.size()));
    }
    return f;
}

uint16_t eth_type(const std::vector<uint8_t> &frame)
{
    return frame.size() < 14 ? 0 : static_cast<uint16_t>(frame[12] << 8 | frame[13]);
}

bool link_quiet(const std::string &ifname)
{
    const int fd = open(("/proc/sys/net/ipv6/conf/" + ifname + "/disable_ipv6").c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0) {
        return errno == ENOENT; // no IPv6 in this kernel: quiet already
    }
    const bool ok = write(fd, "1", 1) == 1;
    close(fd);
    return ok;
}

bool wait_until(const std::function<bool()> &cond, int timeout_ms)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
    while (!cond()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace tide::test
