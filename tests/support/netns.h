// Test support for the model's TAP ports: what the machine allows, network
// namespaces and interfaces that clean up after themselves, work inside a
// namespace, and packet sockets that send and wait for frames.
//
// Names carry the test process's pid, so that tests running in parallel
// (and several build trees at once) never share an interface or a
// namespace.
#ifndef TIDE_TEST_NETNS_H
#define TIDE_TEST_NETNS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tide::test {

// Why this process cannot create TAP devices ("" when it can).
std::string tap_unavailable();
// Why it cannot create network namespaces with ip(8) ("" when it can).
std::string netns_unavailable();

// Runs a program with its arguments (no shell), its output thrown away;
// its exit status, or -1 when it did not run.
int run_program(const std::vector<std::string> &argv);

// A name unique to this process: "<prefix><pid><suffix>".
std::string unique_name(const std::string &prefix, const std::string &suffix);

// A network namespace made with `ip netns add` and deleted with the object.
class NetNs {
public:
    explicit NetNs(std::string name);
    ~NetNs();
    NetNs(const NetNs &) = delete;
    NetNs &operator=(const NetNs &) = delete;
    bool ok() const { return ok_; }
    const std::string &name() const { return name_; }
    // `ip -n <name> <args>`; true on success.
    bool ip(const std::vector<std::string> &args) const;
    // Runs `fn` on a thread that has entered the namespace; sockets it
    // opens stay in the namespace for every thread.
    void run(const std::function<void()> &fn) const;

private:
    std::string name_;
    bool ok_ = false;
};

// A persistent TAP made by the test (it outlives the descriptor that made
// it), deleted with the object.
class PersistentTap {
public:
    explicit PersistentTap(std::string name);
    ~PersistentTap();
    PersistentTap(const PersistentTap &) = delete;
    PersistentTap &operator=(const PersistentTap &) = delete;
    bool ok() const { return ok_; }

private:
    std::string name_;
    bool ok_ = false;
};

// Sets an interface of the caller's namespace up (or down); true on success.
bool link_up(const std::string &ifname, bool up = true);
// Sets its MTU.
bool link_mtu(const std::string &ifname, uint32_t mtu);
// The frames the kernel has received on an interface of the caller's
// namespace (for a TAP: the frames written to it); -1 when unknown.
int64_t link_rx_packets(const std::string &ifname);

// A packet socket on an interface of the caller's namespace for one
// ethertype (ETH_P_ALL: all), non-blocking; -1 on failure.
int packet_socket(const std::string &ifname, uint16_t ethertype);
bool packet_send(int fd, const std::vector<uint8_t> &frame);
// Waits until a frame for which `match` is true arrives, at most
// `timeout_ms` (0: only what is waiting now); other frames are skipped.
bool packet_wait(int fd, const std::function<bool(const std::vector<uint8_t> &)> &match, int timeout_ms);

// An Ethernet frame without FCS: destination, source, ethertype, then a
// payload counting up to `len` bytes.
std::vector<uint8_t> eth_frame(uint64_t dmac, uint64_t smac, uint16_t ethertype, size_t len = 60);
// The ethertype of a frame (0 for a runt).
uint16_t eth_type(const std::vector<uint8_t> &frame);

// Turns IPv6 off on an interface of the caller's namespace, so that the
// kernel sends nothing of its own on it; true on success.
bool link_quiet(const std::string &ifname);

// Polls `cond` until it holds, at most `timeout_ms`.
bool wait_until(const std::function<bool()> &cond, int timeout_ms);

} // namespace tide::test

#endif // TIDE_TEST_NETNS_H
