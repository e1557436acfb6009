// The sibling chips on the model: kelpreef and kelpreef2 come up and go
// down next to an atolreef with default properties, do what the build has
// for their type and refuse the rest with -24 and a line.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "api/api_families.h"
#include "dpl/reef/init/dpl_reef_init.h"
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

// Three chips of the model, one of each type, none brought up yet.  The
// fixture's harness stays off the front ports: the port service of a
// sibling refuses them at ERROR, and what is checked here is the chips' own
// bring-up.
class Siblings : public SimChips {
protected:
    Siblings() : SimChips(3, 0) { ports_ = false; }
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
        for (const char *what :
             {"low power and clock gating registers", "cause id table", "MAC table", "VLAN rows"}) {
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
    // The MAC table: atolreef's takes and finds an address, the siblings
    // have none in the build.
    l2_addr a = station();
    ASSERT_EQ(l2_api_addr_add(kAtolreef, &a), 0);
    l2_addr got = station();
    got.port = 0;
    ASSERT_EQ(l2_api_addr_get(kAtolreef, &got), 0);
    EXPECT_EQ(got.port, 3u);
    for (u32 chip : {kKelpreef, kKelpreef2}) {
        Capture::clear();
        EXPECT_EQ(l2_api_addr_add(chip, &a), -24);
        EXPECT_EQ(l2_api_addr_get(chip, &got), -24);
        EXPECT_EQ(Capture::count(std::string(shr_chip_name_get(chip)) + ": no MAC table in this build\n"), 2u);
    }

    // Down in the reverse order of types, without a line at ERROR.
    Capture::clear();
    for (u32 chip : {kKelpreef2, kKelpreef, kAtolreef}) {
        down_chip(chip);
        EXPECT_EQ(shr_chip_valid_get(chip), 0u);
    }
    EXPECT_EQ(texts(errors()), "");
}

// Every call that needs what the build lacks for a sibling's type answers
// -24 with one line, before its own checks, and writes nothing to the chip.
TEST_F(Siblings, WhatTheBuildLacksAnswers24AndTouchesNothing)
{
    up_chip(kKelpreef);
    u32 v = 0, cursor = 0;
    u8 data[64] = {};
    char text[64] = {};
    l2_addr a = station();
    l2_port_move_pri pri{};
    l2_learn_limit limit{};
    port_bitmap pbmp{};
    base_field_op op{};
    op.name = "lsw_hreg_test_reg";
    op.count = 1;
    op.data = data;
    op.data_bytes = 4;
    const u32 c = kKelpreef;
    const std::vector<std::pair<std::string, std::function<i32()>>> calls = {
        {"MAC table", [&] { return l2_api_addr_add(c, &a); }},
        {"MAC table", [&] { return l2_api_addr_del(c, &a); }},
        {"MAC table", [&] { return l2_api_addr_get_by_index(c, 0, &a); }},
        {"MAC table", [&] { return l2_api_addr_next_entry_get(c, &cursor, &a); }},
        {"MAC table", [&] { return l2_api_addr_traverse(c, nullptr, nullptr); }}, // refused before its own check
        {"MAC table", [&] { return l2_api_addr_batched_del(c, &a, 0, &v); }},
        {"MAC table", [&] { return l2_api_mac_clear_all(c); }},
        {"MAC table", [&] { return l2_api_age_control_set(c, 0, 30); }},
        {"MAC table", [&] { return l2_api_port_control_set(c, 0, 0, 1); }},
        {"MAC table", [&] { return l2_api_port_move_pri_set(c, &pri); }},
        {"MAC table", [&] { return l2_api_learn_limit_set(c, &limit); }},
        {"MAC table", [&] { return l2_api_addr_freeze(c); }},
        {"MAC table", [&] { return l2_api_mac_entry_size_get(c, &v); }},
        {"L2 operation of its own", [&] { return l2_api_mac_msg_parse(c, data, 16, &a, &v); }},
        {"catalogue", [&] { return base_api_direct_tab_set_by_name(c, "epro_causeid_table", 0, data, 64); }},
        {"catalogue", [&] { return base_api_field_get(c, &op, nullptr); }},
        {"catalogue", [&] { return base_api_field_set(c, &op); }},
        {"catalogue", [&] { return base_api_tab_data_to_string(c, "epro_causeid_table", data, text, 64); }},
        {"catalogue", [&] { return base_api_chip_module_cnt_show(c, "all", nullptr, 0, 0, 0); }},
        {"core reset register", [&] { return reef_init_dispatch.chip_soft_reset(c, 1); }},
        {"VLAN operation of its own", [&] { return vlan_api_create(c, 1); }},
        {"VLAN operation of its own", [&] { return vlan_api_port_set(c, 1, &pbmp, &pbmp); }},
        {"tpid_value0", [&] { return vlan_api_tpid_set(c, 0, 0x8100); }},
    };
    for (size_t i = 0; i < calls.size(); i++) {
        ASSERT_EQ(tide_sim_write_log_clear(c), 0);
        Capture::clear();
        EXPECT_EQ(calls[i].second(), -24) << i;
        EXPECT_EQ(texts(errors()), "kelpreef: no " + calls[i].first + " in this build\n") << i;
        EXPECT_TRUE(tide::test::sim_writes(c).empty()) << i;
    }
}

// A memory test asked of a sibling has nothing it could test: bring-up
// fails with -24 instead of passing, and comes up once it is not asked.
TEST_F(Siblings, MemoryTestOfASiblingIsRefused)
{
    ASSERT_EQ(shr_property_set(kKelpreef2, "ram_dft_test", "1"), 0);
    ASSERT_EQ(init_api_software_process(kKelpreef2, &cfg_), 0);
    Capture::clear();
    EXPECT_EQ(init_api_hardware_process(kKelpreef2), -24);
    EXPECT_TRUE(Capture::has("kelpreef2: no catalogue in this build\n"));
    EXPECT_TRUE(Capture::has("[CHIP-INIT:          base] ram test failed!\n"));
    EXPECT_EQ(g_dpl_reef_hw_inited[kKelpreef2], 0u);
    ASSERT_EQ(shr_property_set(kKelpreef2, "ram_dft_test", "0"), 0);
    ASSERT_EQ(init_api_hardware_process(kKelpreef2), 0);
    up_[kKelpreef2] = true;
}

} // namespace
