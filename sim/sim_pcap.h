// The model's capture file: every frame in and out of a chip, in the
// pcapng format that Wireshark, tshark and tcpdump read.
//
// One interface per logical port, named "port0" to "port31" (port 31 is the
// CPU port), link type Ethernet, time stamps in microseconds of the model's
// clock.  Each frame's record carries its direction in the packet flags
// (inbound: it came into the chip on that port; outbound: it left the chip
// there) and, when there is one, a comment: the cause of a frame that the
// chip dropped, or of a frame it sent to the CPU.
#ifndef TIDE_SIM_PCAP_H
#define TIDE_SIM_PCAP_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace tide::sim {

class PcapWriter {
public:
    // A new file with its section and interface blocks; NULL when the file
    // cannot be written.
    static std::unique_ptr<PcapWriter> open(const char *path, uint32_t ports);
    ~PcapWriter();
    PcapWriter(const PcapWriter &) = delete;
    PcapWriter &operator=(const PcapWriter &) = delete;

    // One frame; false when the write failed.
    bool frame(uint32_t port, bool inbound, uint64_t time_us, const uint8_t *data, uint32_t len,
               const std::string &comment);
    // Flushes and closes; false when anything failed since the open.
    bool close();

private:
    explicit PcapWriter(FILE *f) : f_(f) {}
    FILE *f_;
    bool ok_ = true;

    void block(uint32_t type, const std::string &body);
};

} // namespace tide::sim

#endif // TIDE_SIM_PCAP_H
