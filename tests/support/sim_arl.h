// Test support: the model's MAC table driven through its command block the
// way a driver does (entry image into the four command words, the command
// with its start bit, the status read back), until the L2 service exists.
#ifndef TIDE_TEST_SIM_ARL_H
#define TIDE_TEST_SIM_ARL_H

#include <cstdint>

namespace tide::test {

// A MAC table entry (bit positions of the atolreef entry), w[0] bits 31..0.
struct ArlImage {
    uint32_t w[4] = {};

    void set(uint32_t low, uint32_t width, uint64_t v);
    uint64_t get(uint32_t low, uint32_t width) const;

    uint32_t port() const { return static_cast<uint32_t>(get(22, 10)); }
    bool is_static() const { return get(37, 1) != 0; }
    uint32_t age() const { return static_cast<uint32_t>(get(35, 2)); }
};

// A MAC key in `vlan` with a port destination.
ArlImage mac_entry(uint64_t mac, uint32_t vlan, bool is_static, uint32_t port);

struct ArlState {
    uint32_t finish, fail, cause, count;
};

// Insert flags as the first command word holds them, shifted down by 29.
constexpr uint32_t kArlGrab = 1, kArlReplaceDynamic = 2, kArlReplaceStatic = 4;

ArlState arl_command(uint32_t chip, uint32_t op, const ArlImage &image, uint32_t flags = 0, uint32_t bucket = 0,
                     uint32_t addr = 0, uint32_t compare = 0);
ArlState arl_state(uint32_t chip);
// The entry a search returned.
ArlImage arl_found(uint32_t chip);
// Searches (mac, vlan); false on a miss.
bool arl_search(uint32_t chip, uint64_t mac, uint32_t vlan, ArlImage *out);

} // namespace tide::test

#endif // TIDE_TEST_SIM_ARL_H
