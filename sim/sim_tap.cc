// The chip's front ports on Linux TAP devices: binding, the I/O thread,
// and MAC TX to a TAP.
#include "sim/sim_tap.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <tide/shr.h>

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <vector>

#include "sim/sim_int.h"
#include "sim/sim_pkt.h"
#include "sim/sim_wire.h"

namespace tide::sim {

namespace {

const char *g_tun_path = "/dev/net/tun";

// Frames read from one descriptor before the thread turns to the next, so
// that a busy interface does not starve the others.
constexpr int kBatch = 64;
// The log's module of the model's packet interfaces ("PKT").
constexpr uint32_t kLogModule = 5;

// A name the kernel takes for a network interface: 1 to 15 characters,
// not "." or "..", without '/', ':' or blanks.
bool _name_ok(const char *name)
{
    const size_t n = strnlen(name, TIDE_SIM_IFNAME_MAX + 1);
    if (n == 0 || n > TIDE_SIM_IFNAME_MAX || strcmp(name, ".") == 0 || strcmp(name, "..") == 0) {
        return false;
    }
    for (size_t i = 0; i < n; i++) {
        const unsigned char c = static_cast<unsigned char>(name[i]);
        if (c == '/' || c == ':' || isspace(c) != 0 || iscntrl(c) != 0) {
            return false;
        }
    }
    return true;
}

bool _port_ok(uint32_t chip, uint32_t port)
{
    if (port > TIDE_SIM_TAP_PORT_MAX) {
        tap_log(chip, kLogError, "tap: port %u cannot be bound: front ports are 0 to %u\n", port,
                TIDE_SIM_TAP_PORT_MAX);
        return false;
    }
    return true;
}

// The status of a refusal of the TUN/TAP driver, for its errno.
int _status_of(int err)
{
    switch (err) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return -16;
    case EACCES:
    case EPERM:
        return -12;
    case EMFILE:
    case ENFILE:
        return -14;
    case EBUSY:
        return -10;
    default:
        return -11;
    }
}

struct Opened {
    int fd = -1;
    char name[IFNAMSIZ] = {};
    bool created = false;
};

// Opens the TUN/TAP driver and attaches the descriptor to the TAP `name`,
// which the kernel creates when there is none.
int _open_tap(uint32_t chip, const char *name, uint32_t flags, Opened *out)
{
    const bool existed = if_nametoindex(name) != 0;
    if ((flags & TIDE_SIM_TAP_ATTACH) != 0 && !existed) {
        tap_log(chip, kLogError, "tap: no interface %s to attach to\n", name);
        return -7;
    }
    if ((flags & TIDE_SIM_TAP_CREATE) != 0 && existed) {
        tap_log(chip, kLogError, "tap: interface %s exists already\n", name);
        return -10;
    }
    const int fd = open(g_tun_path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        const int err = errno;
        const int rc = _status_of(err);
        tap_log(chip, kLogError, "tap: cannot open %s: %s%s\n", g_tun_path, strerror(err),
                rc == -16 ? " (no TUN/TAP driver)" : "");
        return rc;
    }
    ifreq ifr{};
    ifr.ifr_flags = IFF_TAP | IFF_NO_PI | ((flags & TIDE_SIM_TAP_CREATE) != 0 ? IFF_TUN_EXCL : 0);
    memcpy(ifr.ifr_name, name, strnlen(name, TIDE_SIM_IFNAME_MAX));
    if (ioctl(fd, TUNSETIFF, &ifr) != 0) {
        const int err = errno;
        close(fd);
        // The driver refuses a name it cannot attach to with EINVAL when
        // it belongs to an interface of another kind.
        const int rc = err == EINVAL && existed ? -10 : _status_of(err);
        tap_log(chip, kLogError, "tap: cannot %s %s: %s%s\n", existed ? "attach to" : "create", name, strerror(err),
                rc == -10 ? " (the name is in use)" : "");
        return rc;
    }
    out->fd = fd;
    memcpy(out->name, ifr.ifr_name, sizeof(out->name));
    out->name[IFNAMSIZ - 1] = '\0';
    out->created = !existed;
    return 0;
}

} // namespace

void tap_log(uint32_t chip, TapLog level, const char *format, ...)
{
    char text[256];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof(text), format, args);
    va_end(args);
    shr_debug_base_printf_func_get()(static_cast<int32_t>(chip), kLogModule, level, __FILE__, __LINE__, "%s",
                                     text);
}

// The device node of the TUN/TAP driver; tests point it elsewhere to see
// the refusals of a machine without the driver.
void tap_device_path_set(const char *path)
{
    g_tun_path = path != nullptr ? path : "/dev/net/tun";
}

void TapPorts::close_all()
{
    std::lock_guard<std::mutex> ctl(ctl_);
    std::vector<int> fds;
    {
        std::lock_guard<std::mutex> lock(chip_.mutex);
        for (Binding &b : ports_) {
            if (b.fd >= 0) {
                fds.push_back(b.fd);
            }
            b = Binding{};
        }
        bound_ = 0;
    }
    stop();
    for (int fd : fds) {
        close(fd);
    }
}

int TapPorts::bind(uint32_t port, const char *ifname, uint32_t flags)
{
    const uint32_t chip = chip_.id();
    if (ifname == nullptr) {
        tap_log(chip, kLogError, "tap: no interface name for port %u\n", port);
        return -20;
    }
    if (!_port_ok(chip, port)) {
        return -4;
    }
    if (!_name_ok(ifname)) {
        tap_log(chip, kLogError,
                "tap: bad interface name \"%.32s\" for port %u: 1 to %u characters, no '/', ':' or blank\n", ifname,
                port, TIDE_SIM_IFNAME_MAX);
        return -4;
    }
    if ((flags & ~(TIDE_SIM_TAP_CREATE | TIDE_SIM_TAP_ATTACH)) != 0 ||
        flags == (TIDE_SIM_TAP_CREATE | TIDE_SIM_TAP_ATTACH)) {
        tap_log(chip, kLogError, "tap: bad flags 0x%x for port %u\n", flags, port);
        return -4;
    }
    // Under ctl_ the bindings change only here: the port found free stays
    // free while the kernel, outside the chip's mutex, makes the TAP.
    std::lock_guard<std::mutex> ctl(ctl_);
    {
        std::lock_guard<std::mutex> lock(chip_.mutex);
        const Binding &b = ports_[port];
        if (b.fd >= 0) {
            tap_log(chip, kLogError, "tap: port %u is bound to %s already\n", port, b.info.ifname);
            return -8;
        }
    }
    Opened tap;
    const int opened = _open_tap(chip, ifname, flags, &tap);
    if (opened != 0) {
        return opened;
    }
    {
        std::lock_guard<std::mutex> lock(chip_.mutex);
        Binding &nb = ports_[port];
        nb.fd = tap.fd;
        nb.info = tide_sim_tap_info{};
        nb.info.lport = port;
        memcpy(nb.info.ifname, tap.name, sizeof(nb.info.ifname));
        nb.info.state = tap.created ? TIDE_SIM_TAP_CREATED : 0;
        bound_ |= 1u << port;
        generation_++;
    }
    const int rc = thread_.joinable() ? 0 : start();
    if (rc != 0) {
        std::lock_guard<std::mutex> lock(chip_.mutex);
        ports_[port] = Binding{};
        bound_ &= ~(1u << port);
        generation_++;
        close(tap.fd);
        return rc;
    }
    wake();
    tap_log(chip, kLogInfo, "tap: port %u bound to %s (%s)\n", port, tap.name, tap.created ? "created" : "attached");
    return 0;
}

int TapPorts::unbind(uint32_t port)
{
    const uint32_t chip = chip_.id();
    if (!_port_ok(chip, port)) {
        return -4;
    }
    std::lock_guard<std::mutex> ctl(ctl_);
    int fd = -1;
    char name[TIDE_SIM_IFNAME_MAX + 1] = {};
    bool last = false;
    {
        std::unique_lock<std::mutex> lock(chip_.mutex);
        Binding &b = ports_[port];
        if (b.fd < 0) {
            tap_log(chip, kLogError, "tap: port %u is not bound\n", port);
            return -7;
        }
        fd = b.fd;
        memcpy(name, b.info.ifname, sizeof(name));
        b = Binding{};
        bound_ &= ~(1u << port);
        const uint64_t want = ++generation_;
        last = bound_ == 0;
        if (!last) {
            // The thread drops the descriptor from its poll before it is
            // closed.
            wake();
            seen_cv_.wait(lock, [&] { return seen_ >= want; });
        }
    }
    if (last) {
        stop();
    }
    close(fd);
    tap_log(chip, kLogInfo, "tap: port %u unbound from %s\n", port, name);
    return 0;
}

int TapPorts::list(tide_sim_tap_info *out, uint32_t max, uint32_t *count)
{
    if (count == nullptr || (out == nullptr && max > 0)) {
        tap_log(chip_.id(), kLogError, "tap: NULL pointer for the list of bindings\n");
        return -20;
    }
    std::lock_guard<std::mutex> lock(chip_.mutex);
    uint32_t n = 0;
    for (const Binding &b : ports_) {
        if (b.fd >= 0) {
            if (n < max) {
                out[n] = b.info;
            }
            n++;
        }
    }
    *count = n;
    return 0;
}

int TapPorts::write_frame(uint32_t port, const uint8_t *frame, uint32_t len)
{
    Binding &b = ports_[port];
    int err = EBADFD;
    if ((b.info.state & TIDE_SIM_TAP_GONE) == 0) {
        const ssize_t n = write(b.fd, frame, len);
        if (n == static_cast<ssize_t>(len)) {
            b.info.tx_frames++;
            return 0;
        }
        err = n < 0 ? errno : EMSGSIZE;
    }
    b.info.tx_dropped++;
    b.info.tx_errno = err;
    return err;
}

// ---- the I/O thread ------------------------------------------------------------

int TapPorts::start()
{
    wake_fd_ = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (wake_fd_ < 0) {
        const int err = errno;
        tap_log(chip_.id(), kLogError, "tap: no eventfd for the I/O thread: %s\n", strerror(err));
        return _status_of(err);
    }
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error &e) {
        tap_log(chip_.id(), kLogError, "tap: the I/O thread did not start: %s\n", e.what());
        close(wake_fd_);
        wake_fd_ = -1;
        return -14;
    }
    char name[16];
    snprintf(name, sizeof(name), "tide_sim_tap%u", chip_.id());
    pthread_setname_np(thread_.native_handle(), name);
    return 0;
}

void TapPorts::stop()
{
    if (!thread_.joinable()) {
        return;
    }
    {
        std::lock_guard<std::mutex> lock(chip_.mutex);
        stop_ = true;
    }
    wake();
    thread_.join();
    close(wake_fd_);
    wake_fd_ = -1;
    std::lock_guard<std::mutex> lock(chip_.mutex);
    stop_ = false;
}

void TapPorts::wake() const
{
    const uint64_t one = 1;
    if (wake_fd_ >= 0 && write(wake_fd_, &one, sizeof(one)) < 0) {
        // The counter is full, so the thread is woken already.
    }
}

void TapPorts::run()
{
    std::vector<uint8_t> buf(TIDE_SIM_FRAME_MAX);
    std::vector<pollfd> fds;
    std::vector<uint32_t> port_of;
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(chip_.mutex);
            if (stop_) {
                return;
            }
            fds.assign(1, pollfd{wake_fd_, POLLIN, 0});
            port_of.assign(1, 0);
            for (uint32_t p = 0; p < ports_.size(); p++) {
                const Binding &b = ports_[p];
                if (b.fd >= 0 && (b.info.state & TIDE_SIM_TAP_GONE) == 0) {
                    fds.push_back(pollfd{b.fd, POLLIN, 0});
                    port_of.push_back(p);
                }
            }
            seen_ = generation_;
        }
        seen_cv_.notify_all();
        if (poll(fds.data(), fds.size(), -1) < 0) {
            continue; // EINTR; the set is built again
        }
        if (fds[0].revents != 0) {
            uint64_t count = 0;
            if (read(wake_fd_, &count, sizeof(count)) < 0) {
                // Another wake-up consumed it; the set is built again anyway.
            }
            continue;
        }
        for (size_t i = 1; i < fds.size(); i++) {
            if (fds[i].revents != 0) {
                receive(port_of[i], fds[i].fd, fds[i].revents, buf.data());
            }
        }
    }
}

void TapPorts::receive(uint32_t port, int fd, short revents, uint8_t *buf)
{
    if ((revents & (POLLERR | POLLHUP | POLLNVAL)) != 0 && (revents & POLLIN) == 0) {
        mark_gone(port, fd, EBADFD);
        return;
    }
    for (int i = 0; i < kBatch; i++) {
        const ssize_t n = read(fd, buf, TIDE_SIM_FRAME_MAX);
        if (n < 0) {
            const int err = errno;
            if (err != EAGAIN && err != EINTR) {
                mark_gone(port, fd, err);
            }
            return;
        }
        if (n == 0) {
            return;
        }
        // The driver gives the whole length of a frame longer than the
        // buffer; its first bytes are far beyond the chip's maximum, which
        // drops it with its cause.
        const uint32_t len = n > TIDE_SIM_FRAME_MAX ? TIDE_SIM_FRAME_MAX : static_cast<uint32_t>(n);
        {
            std::lock_guard<std::mutex> lock(chip_.mutex);
            // A frame read while an unbind waits for this thread entered the
            // port before the unbind returned; it still counts for the port.
            if (ports_[port].fd == fd) {
                ports_[port].info.rx_frames++;
            }
            chip_.pkt->inject(port, buf, len);
        }
        // What it sent over cables and loops enters its ports now.
        if (chip_.fabric() != nullptr) {
            wire_deliver(*chip_.fabric());
        }
    }
}

void TapPorts::mark_gone(uint32_t port, int fd, int err)
{
    std::lock_guard<std::mutex> lock(chip_.mutex);
    Binding &b = ports_[port];
    if (b.fd != fd || (b.info.state & TIDE_SIM_TAP_GONE) != 0) {
        return;
    }
    b.info.state |= TIDE_SIM_TAP_GONE;
    tap_log(chip_.id(), kLogWarn,
            "tap: port %u: interface %s is gone (%s); frames for it are dropped until it is unbound\n", port,
            b.info.ifname, strerror(err));
}

} // namespace tide::sim
