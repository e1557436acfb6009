// Frames through two TAPs and the chip model, namespace to namespace: a
// host in one network namespace sends known-unicast frames on its TAP
// (port 1), the chip forwards them to port 2, whose TAP is in a second
// namespace, where a packet socket takes them.  An iteration sends a batch
// and waits until the whole batch has arrived, so the figure is frames
// delivered per second, kernel and model together.  Needs root, TAP
// devices and ip(8); skipped otherwise.
#include <benchmark/benchmark.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "support/vlan_ports.h"
#include "bench_chip.h"
#include "support/netns.h"

namespace {

using tide::bench::chip;
using tide::test::NetNs;

constexpr uint16_t kType = 0x88B5;
constexpr uint64_t kMacA = 0x02000000AA01ull, kMacB = 0x02000000BB02ull;
constexpr int kBatch = 256; // within the TAP's queue of 500 frames
constexpr int kWaitMs = 5000;

// Two hosts, on ports 1 and 2, each in its namespace with a packet socket.
struct Lab {
    std::unique_ptr<NetNs> ns[2];
    int sock[2] = {-1, -1};
    std::string error;

    Lab()
    {
        chip();
        error = tide::test::netns_unavailable();
        if (!error.empty()) {
            return;
        }
        tide::test::vlan_ports(0, 1, 0x6, 0x6);
        for (int h = 0; h < 2; h++) {
            const std::string tap = tide::test::unique_name("tb", std::to_string(h));
            ns[h] = std::make_unique<NetNs>(tide::test::unique_name("tidebench", std::to_string(h)));
            if (!ns[h]->ok() || tide_sim_tap_bind(0, 1 + h, tap.c_str(), TIDE_SIM_TAP_CREATE) != 0 ||
                tide::test::run_program({"ip", "link", "set", "dev", tap, "netns", ns[h]->name()}) != 0) {
                error = "the hosts could not be made";
                return;
            }
            ns[h]->run([&] {
                if (tide::test::link_quiet(tap) && tide::test::link_up(tap)) {
                    sock[h] = tide::test::packet_socket(tap, kType);
                }
            });
            const int big = 8 << 20;
            if (sock[h] < 0 || setsockopt(sock[h], SOL_SOCKET, SO_RCVBUFFORCE, &big, sizeof(big)) != 0) {
                error = "no packet socket in the namespace";
                return;
            }
        }
        // The chip learns host B on port 2: A's frames to it are known
        // unicast from then on.
        tide::test::packet_send(sock[1], tide::test::eth_frame(0xFFFFFFFFFFFFull, kMacB, kType));
        tide::test::packet_wait(
            sock[0], [](const std::vector<uint8_t> &) { return true; }, kWaitMs);
    }
    ~Lab()
    {
        for (int h = 0; h < 2; h++) {
            if (sock[h] >= 0) {
                close(sock[h]);
            }
            tide_sim_tap_unbind(0, 1 + h);
        }
    }
};

Lab &lab()
{
    static Lab l;
    return l;
}

// Takes every frame waiting on a socket; false when none came in time.
int _drain(int fd, std::vector<uint8_t> &buf, int timeout_ms)
{
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, timeout_ms) <= 0) {
        return -1;
    }
    int n = 0;
    while (recv(fd, buf.data(), buf.size(), 0) >= 0) {
        n++;
    }
    return n;
}

void BM_TapNamespaceToNamespace(benchmark::State &state)
{
    Lab &l = lab();
    if (!l.error.empty()) {
        state.SkipWithError(l.error.c_str());
        return;
    }
    const std::vector<uint8_t> f = tide::test::eth_frame(kMacB, kMacA, kType, static_cast<size_t>(state.range(0)));
    std::vector<uint8_t> buf(2048);
    for (auto _ : state) {
        for (int i = 0; i < kBatch; i++) {
            tide::test::packet_send(l.sock[0], f);
        }
        for (int got = 0; got < kBatch;) {
            const int n = _drain(l.sock[1], buf, kWaitMs);
            if (n < 0) {
                state.SkipWithError("frames were lost");
                return;
            }
            got += n;
        }
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    state.SetBytesProcessed(state.iterations() * kBatch * static_cast<int64_t>(f.size()));
}
BENCHMARK(BM_TapNamespaceToNamespace)->Arg(60)->Arg(1514)->UseRealTime();

} // namespace
