// The chip's front ports on Linux TAP devices.
//
// A bound port is a cable to a network interface: the chip's I/O thread
// reads the frames the kernel sends on the TAP and injects each into the
// chip on that port, under the chip's mutex, like any other injection; the
// packet path writes every frame the chip sends on the port to the TAP
// (send, called under the chip's mutex).
//
// Locks: `ctl_` serialises bind, unbind and stop, which start and join the
// thread and close descriptors; the chip's mutex guards the bindings, which
// both the thread and the packet path read.  `ctl_` is taken before the
// chip's mutex.  A descriptor is closed only once the thread has shown
// (`seen_`) that it no longer polls it, so a closed number is never read.
#ifndef TIDE_SIM_TAP_H
#define TIDE_SIM_TAP_H

#include <tide/sim.h>

#include <array>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace tide::sim {

class Chip;

class TapPorts {
public:
    explicit TapPorts(Chip &chip) : chip_(chip) {}
    ~TapPorts() { close_all(); }
    TapPorts(const TapPorts &) = delete;
    TapPorts &operator=(const TapPorts &) = delete;

    // The public calls: they check their arguments, log every refusal and
    // take the locks themselves.
    int bind(uint32_t port, const char *ifname, uint32_t flags);
    int unbind(uint32_t port);
    int list(tide_sim_tap_info *out, uint32_t max, uint32_t *count);
    // Unbinds every port and stops the thread (the chip is going).
    void close_all();

    // MAC TX of a bound port, under the chip's mutex: writes the frame to
    // the port's TAP and gives 0, or the errno of the TAP's refusal;
    // kNotBound for a port that is not bound.
    static constexpr int kNotBound = -1;
    int send(uint32_t port, const uint8_t *frame, uint32_t len)
    {
        return ((bound_ >> port) & 1) != 0 ? write_frame(port, frame, len) : kNotBound;
    }

private:
    struct Binding {
        int fd = -1;
        tide_sim_tap_info info{};
    };

    Chip &chip_;
    std::mutex ctl_;

    // Under the chip's mutex.
    std::array<Binding, TIDE_SIM_TAP_PORT_MAX + 1> ports_{};
    uint32_t bound_ = 0;       // bit n: port n is bound
    uint64_t generation_ = 0;  // moves with every change of the bindings
    uint64_t seen_ = 0;        // the generation the thread polls
    bool stop_ = false;
    std::condition_variable seen_cv_;

    // Under ctl_.
    std::thread thread_;
    int wake_fd_ = -1; // an eventfd that breaks the thread's poll

    int write_frame(uint32_t port, const uint8_t *frame, uint32_t len);
    int start();
    void stop();
    void wake() const;
    void run();
    // Reads up to a batch of frames from one descriptor into the chip.
    void receive(uint32_t port, int fd, short revents, uint8_t *buf);
    void mark_gone(uint32_t port, int fd, int err);
};

// A line of the model's TAP ports in the application's log (module PKT).
enum TapLog : uint32_t { kLogError = 1, kLogWarn = 2, kLogInfo = 3 };
void tap_log(uint32_t chip, TapLog level, const char *format, ...) __attribute__((format(printf, 3, 4)));

// Points the model at another device node than /dev/net/tun (NULL: back to
// it), as on a machine without the driver or with the node's mode closed.
void tap_device_path_set(const char *path);

} // namespace tide::sim

#endif // TIDE_SIM_TAP_H
