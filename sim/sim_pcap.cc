// pcapng blocks in the byte order of the host, which the section header's
// magic number tells every reader.
#include "sim/sim_pcap.h"

#include <cstring>

namespace tide::sim {

namespace {

constexpr uint32_t kSectionHeader = 0x0A0D0D0A;
constexpr uint32_t kInterface = 1;
constexpr uint32_t kEnhancedPacket = 6;
constexpr uint32_t kByteOrderMagic = 0x1A2B3C4D;
constexpr uint16_t kLinkEthernet = 1;
constexpr uint32_t kSnapLen = 65535;
constexpr uint16_t kOptEnd = 0, kOptComment = 1, kOptIfName = 2, kOptFlags = 2, kOptShbUserAppl = 4;
constexpr uint32_t kFlagInbound = 1, kFlagOutbound = 2;

template <typename T>
void _put(std::string &s, T v)
{
    s.append(reinterpret_cast<const char *>(&v), sizeof(v));
}

void _pad(std::string &s)
{
    s.append((4 - s.size() % 4) % 4, '\0');
}

void _option(std::string &s, uint16_t code, const void *data, size_t len)
{
    _put<uint16_t>(s, code);
    _put<uint16_t>(s, static_cast<uint16_t>(len));
    s.append(static_cast<const char *>(data), len);
    _pad(s);
}

void _end_options(std::string &s)
{
    _put<uint16_t>(s, kOptEnd);
    _put<uint16_t>(s, 0);
}

} // namespace

std::unique_ptr<PcapWriter> PcapWriter::open(const char *path, uint32_t ports)
{
    FILE *f = fopen(path, "wb");
    if (f == nullptr) {
        return nullptr;
    }
    std::unique_ptr<PcapWriter> w(new PcapWriter(f));
    std::string shb;
    _put<uint32_t>(shb, kByteOrderMagic);
    _put<uint16_t>(shb, 1); // version 1.0
    _put<uint16_t>(shb, 0);
    _put<int64_t>(shb, -1); // section length not given
    static const char kAppl[] = "tide chip model";
    _option(shb, kOptShbUserAppl, kAppl, sizeof(kAppl) - 1);
    _end_options(shb);
    w->block(kSectionHeader, shb);
    for (uint32_t p = 0; p < ports; p++) {
        std::string idb;
        _put<uint16_t>(idb, kLinkEthernet);
        _put<uint16_t>(idb, 0);
        _put<uint32_t>(idb, kSnapLen);
        const std::string name = "port" + std::to_string(p);
        _option(idb, kOptIfName, name.data(), name.size());
        _end_options(idb);
        w->block(kInterface, idb);
    }
    if (!w->ok_) {
        w->close();
        return nullptr;
    }
    return w;
}

PcapWriter::~PcapWriter()
{
    close();
}

void PcapWriter::block(uint32_t type, const std::string &body)
{
    if (f_ == nullptr) {
        ok_ = false;
        return;
    }
    const uint32_t total = static_cast<uint32_t>(12 + body.size());
    std::string b;
    b.reserve(total);
    _put<uint32_t>(b, type);
    _put<uint32_t>(b, total);
    b += body;
    _put<uint32_t>(b, total);
    ok_ &= fwrite(b.data(), 1, b.size(), f_) == b.size();
}

bool PcapWriter::frame(uint32_t port, bool inbound, uint64_t time_us, const uint8_t *data, uint32_t len,
                       const std::string &comment)
{
    const uint32_t kept = len < kSnapLen ? len : kSnapLen;
    std::string epb;
    epb.reserve(32 + kept + comment.size());
    _put<uint32_t>(epb, port);
    _put<uint32_t>(epb, static_cast<uint32_t>(time_us >> 32));
    _put<uint32_t>(epb, static_cast<uint32_t>(time_us));
    _put<uint32_t>(epb, kept);
    _put<uint32_t>(epb, len);
    epb.append(reinterpret_cast<const char *>(data), kept);
    _pad(epb);
    const uint32_t flags = inbound ? kFlagInbound : kFlagOutbound;
    _option(epb, kOptFlags, &flags, sizeof(flags));
    if (!comment.empty()) {
        _option(epb, kOptComment, comment.data(), comment.size());
    }
    _end_options(epb);
    block(kEnhancedPacket, epb);
    return ok_;
}

bool PcapWriter::close()
{
    if (f_ != nullptr) {
        ok_ &= fclose(f_) == 0;
        f_ = nullptr;
    }
    return ok_;
}

} // namespace tide::sim
