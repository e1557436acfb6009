#include "support/sim_arl.h"

#include <gtest/gtest.h>

#include "hal/hal_op/hal.h"

namespace tide::test {

namespace {

constexpr uint32_t kCfg = 0x41C0040, kMac0 = 0x41C0050, kSch0 = 0x41C0060, kState = 0x41C007C;

} // namespace

void ArlImage::set(uint32_t low, uint32_t width, uint64_t v)
{
    for (uint32_t i = 0; i < width; i++) {
        const uint32_t b = low + i;
        if ((v >> i) & 1) {
            w[b / 32] |= 1u << (b % 32);
        } else {
            w[b / 32] &= ~(1u << (b % 32));
        }
    }
}

uint64_t ArlImage::get(uint32_t low, uint32_t width) const
{
    uint64_t v = 0;
    for (uint32_t i = 0; i < width; i++) {
        const uint32_t b = low + i;
        v |= static_cast<uint64_t>((w[b / 32] >> (b % 32)) & 1) << i;
    }
    return v;
}

ArlImage mac_entry(uint64_t mac, uint32_t vlan, bool is_static, uint32_t port)
{
    ArlImage e;
    e.set(117, 1, 1);        // valid
    e.set(102, 12, vlan);    // vlanid
    e.set(38 + 16, 48, mac); // mac_ip: the MAC in its bits 63..16
    e.set(37, 1, is_static); // stati
    e.set(32, 3, 0);         // opcode: port
    e.set(22, 10, port);     // learn_data
    return e;
}

ArlState arl_command(uint32_t chip, uint32_t op, const ArlImage &image, uint32_t flags, uint32_t bucket,
                     uint32_t addr, uint32_t compare)
{
    EXPECT_EQ(hal_reg_write_32(chip, 4, kMac0, flags << 29 | (image.w[3] & 0x1FFFFFFF)), 0);
    EXPECT_EQ(hal_reg_write_32(chip, 4, kMac0 + 4, image.w[2]), 0);
    EXPECT_EQ(hal_reg_write_32(chip, 4, kMac0 + 8, image.w[1]), 0);
    EXPECT_EQ(hal_reg_write_32(chip, 4, kMac0 + 12, image.w[0]), 0);
    EXPECT_EQ(hal_reg_write_32(chip, 4, kCfg, 1u << 31 | bucket << 28 | addr << 12 | op << 9 | compare), 0);
    return arl_state(chip);
}

ArlState arl_state(uint32_t chip)
{
    uint32_t s = 0;
    EXPECT_EQ(hal_reg_read_32(chip, 4, kState, &s), 0);
    return ArlState{s & 1, (s >> 1) & 1, (s >> 3) & 0x1F, (s >> 8) & 0x1FFFF};
}

ArlImage arl_found(uint32_t chip)
{
    ArlImage e;
    uint32_t v = 0;
    for (int i = 0; i < 4; i++) {
        hal_reg_read_32(chip, 4, kSch0 + 4 * i, &v);
        e.w[3 - i] = v;
    }
    return e;
}

bool arl_search(uint32_t chip, uint64_t mac, uint32_t vlan, ArlImage *out)
{
    if (arl_command(chip, 2, mac_entry(mac, vlan, false, 0)).fail != 0) {
        return false;
    }
    *out = arl_found(chip);
    return true;
}

} // namespace tide::test
