// Fuzzer of the L2 event messages: any bytes as a buffer of messages that
// an application received from the chip, parsed on an atolreef of the chip
// model into address records of exactly the room the messages need.  The
// first records parsed go through the service as an application would use
// them: added, read back and deleted, which leaves the table empty again.
//
// Input: the message buffer (16 bytes a message, up to 1792 bytes).
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <tide/l2.h>
#include <tide/sim.h>

#include "fuzz_support.h"

namespace {

constexpr uint32_t kChip = 0;
constexpr uint32_t kRoundTrips = 4;
constexpr uint32_t kCountUntouched = 0xA5A5A5A5u;

void _bring_up()
{
    sdk_init_cfg cfg = tide::fuzz::quiet_cfg();
    tide_sim_sdk_init_cfg(&cfg);
    if (tide_sim_install(1) != 0 || init_api_base_software_process(&cfg) != 0 ||
        init_api_software_process(kChip, &cfg) != 0 || init_api_hardware_process(kChip) != 0) {
        std::fprintf(stderr, "bring-up of a chip on the model failed\n");
        std::exit(1);
    }
}

// Messages whose key check bits (w0 bits 12 and 11) are clear: the MAC +
// VLAN addresses among them.
uint32_t _addresses(const uint8_t *data, uint32_t len)
{
    uint32_t n = 0;
    for (uint32_t off = 0; off + L2_MSG_BYTES <= len; off += L2_MSG_BYTES) {
        uint32_t w0;
        std::memcpy(&w0, data + off, sizeof(w0));
        n += (w0 >> 11 & 3) == 0;
    }
    return n;
}

void _check_record(const l2_addr &a)
{
    const uint32_t dest = a.flags & (L2_FLAG_DEST_PORT | L2_FLAG_DEST_TRUNK | L2_FLAG_DEST_DVP | L2_FLAG_DEST_NHP |
                                     L2_FLAG_DEST_ECMP | L2_FLAG_DEST_MCAST | L2_FLAG_DEST_DROP | L2_FLAG_DEST_CPU);
    if (a.key_type != L2_KEY_MAC_VLAN || (a.flags & L2_FLAG_KEY_VID) == 0 || dest == 0 || (dest & (dest - 1)) != 0) {
        tide::fuzz::fail("a parsed address has no MAC + VLAN key or not exactly one destination");
    }
    if (a.vid > 4095 || a.ovid > 4095 || a.gid > 63 || a.msg_type > 15 || a.age_cnt > 3 || a.valid > 1 ||
        a.port > 1023 || a.tgid > 1023 || a.mgid > 1023 || a.causeid > 1023) {
        tide::fuzz::fail("a parsed field is wider than its bits in the message");
    }
    if ((a.flags & L2_FLAG_DEST_PORT) != 0 && a.port > 31) {
        tide::fuzz::fail("a port destination beyond the port numbers");
    }
}

// Add, read back, delete: what the service takes it must find and remove.
void _round_trip(const l2_addr &parsed)
{
    l2_addr a = parsed;
    if (l2_api_addr_add(kChip, &a) != 0) {
        return;
    }
    l2_addr got{};
    got.key_type = parsed.key_type;
    got.flags = parsed.flags & (L2_FLAG_KEY_VID | L2_FLAG_KEY_FID);
    got.vid = parsed.vid;
    std::memcpy(got.mac, parsed.mac, sizeof(got.mac));
    if (l2_api_addr_get(kChip, &got) != 0 || std::memcmp(got.mac, parsed.mac, sizeof(got.mac)) != 0 ||
        got.vid != parsed.vid) {
        tide::fuzz::fail("an address the service took is not found by its key");
    }
    l2_addr del = parsed;
    if (l2_api_addr_del(kChip, &del) != 0) {
        tide::fuzz::fail("an address the service took cannot be deleted");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    _bring_up();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > 4 * L2_MSG_BUFFER_MAX) {
        return 0;
    }
    const auto len = static_cast<uint32_t>(size);
    const uint32_t room = len / L2_MSG_BYTES;
    // A copy of exactly the input's length and records of exactly the room
    // of its messages, so that a read or write beyond either is seen.
    auto *buf = static_cast<uint8_t *>(std::malloc(len == 0 ? 1 : len));
    std::memcpy(buf, data, len);
    auto *out = static_cast<l2_addr *>(std::malloc(room == 0 ? 1 : room * sizeof(l2_addr)));
    uint32_t count = kCountUntouched;
    const int32_t rc = l2_api_mac_msg_parse(kChip, buf, len, out, &count);

    if (len > L2_MSG_BUFFER_MAX || len % L2_MSG_BYTES != 0) {
        if (rc != -4 || count != kCountUntouched) {
            tide::fuzz::fail("a buffer of a bad length was not refused with -4, or the count changed");
        }
    } else {
        if (rc != 0 || count != _addresses(buf, len)) {
            tide::fuzz::fail("a buffer of whole messages was refused, or the count is not that of its addresses");
        }
        for (uint32_t i = 0; i < count; i++) {
            _check_record(out[i]);
        }
        for (uint32_t i = 0; i < count && i < kRoundTrips; i++) {
            _round_trip(out[i]);
        }
        uint32_t statics = 0, dynamics = 0, entries = 0;
        if (tide_sim_arl_count_get(kChip, &statics, &dynamics, &entries) != 0 || statics + dynamics != 0) {
            tide::fuzz::fail("the table is not empty after the round trips");
        }
    }
    std::free(out);
    std::free(buf);
    return 0;
}
