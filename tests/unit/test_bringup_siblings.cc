// The sibling chips on the model: kelpreef and kelpreef2 come up and go
// down next to an atolreef with default properties and do what the build
// has for their type.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shared/shr_int.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::LogLine;
using tide::test::SimChips;

namespace {

constexpr u32 kAtolreef = 0, kKelpreef = 1, kKelpreef2 = 2;
// The test register of the switch core, RW, in the first piece of the
// kelpreef aperture and in atolreef's.
constexpr u32 kTestRegAddr = 0xB0;

std::vector<LogLine> errors()
{
    std::vector<LogLine> out;
    for (const LogLine &l : Capture::lines()) {
        if (l.level <= SHR_LOG_ERROR) {
            out.push_back(l);
        }
    }
    return out;
}

std::string texts(const std::vector<LogLine> &lines)
{
    std::string s;
    for (const LogLine &l : lines) {
        s += l.text;
    }
    return s;
}

l2_addr station()
{
    l2_addr a{};
    a.flags = L2_FLAG_KEY_VID | L2_FLAG_DEST_PORT;
    a.mac[0] = 0x02;
    a.mac[5] = 0x42;
    a.vid = 1;
    a.port = 3;
    return a;
}

// Three chips of the model, one of each type, none brought up yet.
class Siblings : public SimChips {
protected:
    Siblings() : SimChips(3, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        tide::test::kelpreef_identity_set(kKelpreef, 0);
        tide::test::kelpreef_identity_set(kKelpreef2, 1);
    }
};

TEST_F(Siblings, OneOfEachTypeComesUpWorksAndGoesDown)
{
    Capture::clear();
    for (u32 chip : {kAtolreef, kKelpreef, kKelpreef2}) {
        up_chip(chip);
    }
    EXPECT_EQ(texts(errors()), "");
    EXPECT_STREQ(shr_chip_name_get(kAtolreef), "atolreef");
    EXPECT_STREQ(shr_chip_name_get(kKelpreef), "kelpreef");
    EXPECT_STREQ(shr_chip_name_get(kKelpreef2), "kelpreef2");
    // Each sibling says at WARN what its bring-up left out; atolreef
    // leaves nothing out.
    for (const char *name : {"kelpreef", "kelpreef2"}) {
        for (const char *what : {"low power and clock gating registers", "cause id table", "MAC table"}) {
            const std::string line = std::string(name) + ": no " + what + " in this build\n";
            EXPECT_EQ(Capture::count(line), 1u) << line;
        }
    }
    EXPECT_FALSE(Capture::has("atolreef: no"));

    // The register door by address works on every type.
    for (u32 chip : {kAtolreef, kKelpreef, kKelpreef2}) {
        u8 in[4] = {0x5A, 0xA5, 0x0F, 0xF0};
        u8 out[4] = {};
        ASSERT_EQ(base_api_reg_set_by_addr(chip, kTestRegAddr, in, 4), 0) << chip;
        ASSERT_EQ(base_api_reg_get_by_addr(chip, kTestRegAddr, out, 4), 0) << chip;
        EXPECT_EQ(std::vector<u8>(out, out + 4), std::vector<u8>(in, in + 4)) << chip;
        u32 mgid = 0;
        EXPECT_EQ(l2_api_multicast_create(chip, 0, &mgid), 0) << chip; // a mark of the service's own
    }
    // atolreef's MAC table takes and finds an address.
    l2_addr a = station();
    ASSERT_EQ(l2_api_addr_add(kAtolreef, &a), 0);
    l2_addr got = station();
    got.port = 0;
    ASSERT_EQ(l2_api_addr_get(kAtolreef, &got), 0);
    EXPECT_EQ(got.port, 3u);

    // Down in the reverse order of types, without a line at ERROR.
    Capture::clear();
    for (u32 chip : {kKelpreef2, kKelpreef, kAtolreef}) {
        down_chip(chip);
        EXPECT_EQ(shr_chip_valid_get(chip), 0u);
    }
    EXPECT_EQ(texts(errors()), "");
}

} // namespace
