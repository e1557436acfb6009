// The shell's "serdes" mode on two chips of the model: PRBS between two
// cabled lanes driven by command lines, settings that reach the lanes and
// read back, and the refusals of bad words, lanes and rates.
#include <gtest/gtest.h>
#include <tide/cli.h>
#include <tide/property.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "support/cli_lines.h"
#include "support/fixture.h"

namespace {

class CliSerdes : public tide::test::SimChips, public tide::test::CliLines {
protected:
    CliSerdes() : SimChips(2, 0) {}
    void SetUp() override
    {
        SimChips::SetUp();
        // Lanes 2 and 3 at 10.3125G on both chips.
        for (u32 chip = 0; chip < 2; chip++) {
            ASSERT_EQ(shr_property_set(chip, "mag_interface_type_2", "10"), 0);
            ASSERT_EQ(shr_property_set(chip, "mag_interface_type_3", "10"), 0);
            up_chip(chip);
        }
        ASSERT_EQ(cli_shell_mode_set(0, 1), 0);
        ASSERT_EQ(run("serdes"), 0);
    }
    void TearDown() override
    {
        cli_view_config(0);
        cli_ctree_free();
        cli_shell_mode_set(0, 0);
        g_cli_key_check = 1;
        SimChips::TearDown();
    }
};

TEST_F(CliSerdes, PrbsBetweenCabledLanesCountsTheInjectedErrors)
{
    ASSERT_EQ(tide_sim_serdes_link(0, 2, 1, 2), 0);
    ASSERT_EQ(run("serdes 2 prbs-dir tx prbs-mode prbs31", 0), 0) << out_;
    ASSERT_EQ(run("serdes 2 prbs-dir rx prbs-mode prbs31", 1), 0) << out_;
    ASSERT_EQ(run("show serdes 2 prbs-status", 1), 0);
    EXPECT_TRUE(said(" serdes 2 prbs rx: enable prbs31")) << out_;
    ASSERT_EQ(run("show serdes 2 lock-status", 1), 0);
    EXPECT_TRUE(said(" serdes 2 lock-status   : 1")) << out_;

    ASSERT_EQ(run("serdes 2 prbs insert-err num 5", 0), 0) << out_;
    ASSERT_EQ(run("show serdes 2 prbs err-cnt", 1), 0) << out_;
    EXPECT_TRUE(said(" serdes 2 prbs err-cnt: 5")) << out_;

    // The sender inverts: the checker loses the pattern.
    ASSERT_EQ(run("serdes 2 pn tx enable", 0), 0);
    EXPECT_EQ(run("show serdes 2 prbs err-cnt", 1), -11);
    EXPECT_TRUE(said(" serdes 2: call serdes_api_prbs_counter_get failed")) << out_;
    ASSERT_EQ(run("serdes 2 pn rx enable", 1), 0);
    ASSERT_EQ(run("show serdes 2 prbs err-cnt", 1), 0);
    EXPECT_TRUE(said(" serdes 2 prbs err-cnt: 0")) << out_;

    // "0" stops the generator.
    ASSERT_EQ(run("serdes 2 prbs-dir tx prbs-mode 0", 0), 0);
    ASSERT_EQ(run("show serdes 2 prbs-status", 0), 0);
    EXPECT_TRUE(said(" serdes 2 prbs tx: disable")) << out_;
}

TEST_F(CliSerdes, SettingsReachTheLanesAndReadBack)
{
    struct Case {
        const char *set;
        const char *show;
        const char *shown;
    } cases[] = {
        {"serdes 2-3 pn rx enable", "show serdes 3 pn", " serdes 3 pn: tx normal, rx inverted"},
        {"serdes 2 emphasis main 60 pre 2 post 8 swing_leg 1", "show serdes 2 emphasis",
         " serdes 2 emphasis: main 60 pre 2 post 8 swing_leg 1"},
        {"serdes 2 loopback paral-rx2tx enable", "show serdes 2 loopback-status",
         " serdes 2 loopback paral-rx2tx  : enable"},
        {"serdes 3 power tx down", "show serdes 3 power-status", " serdes 3 power tx  : down"},
        {"serdes 2 preset 7", "show serdes 2 preset", " serdes 2 preset        : 7"},
        {"serdes 2 los-threshold 3", "show serdes 2 los-threshold", " serdes 2 los-threshold : 3"},
        {"serdes 2 rxadapt dfe enable", "show serdes 2 rxadapt-status dfe", " serdes 2 rxadapt dfe: enable"},
        {"serdes 2 speed 5G-pll0 width 20BIT", "show serdes 2 speed", " serdes 2 speed: 5G-pll0"},
        {"serdes 2 register write reg-name ffe_cfg0 field-name ffe_cpre_cfg data 0x15",
         "serdes 2 register read reg-name ffe_cfg0 field-name ffe_cpre_cfg", " serdes 2 value: 0x15"},
        {"serdes 2 register write addr 0x0a0 start_bit 16 end_bit 21 data 9",
         "serdes 2 register read reg-name ffe_cfg0 field-name ffe_cpost_cfg", " serdes 2 value: 0x9"},
    };
    for (const Case &c : cases) {
        ASSERT_EQ(run(c.set), 0) << c.set << "\n" << out_;
        ASSERT_EQ(run(c.show), 0) << c.show << "\n" << out_;
        EXPECT_TRUE(said(c.shown)) << c.show << "\n" << out_;
    }
    // Reports land in the output.
    ASSERT_EQ(run("show serdes 2 debug-info"), 0);
    EXPECT_TRUE(said("soft version:20240816-MAIN")) << out_;
    ASSERT_EQ(run("show serdes 2 rx-adapt-para"), 0);
    EXPECT_TRUE(said("rx_ctle_hf_cal[3:0]")) << out_;
    ASSERT_EQ(run("serdes 2 offset_calibrate"), 0);
    EXPECT_TRUE(said("serdes2:\nCHA = 0x")) << out_;
    ASSERT_EQ(tide_sim_serdes_plug(0, 3), 0);
    ASSERT_EQ(run("serdes 3 power tx up"), 0);
    ASSERT_EQ(run("show serdes 3 eye four-point"), 0) << out_;
    EXPECT_TRUE(said(" serdes 3 eye: left ")) << out_;
}

// What an operator does to check one lane without a cable: the serial near
// loop, PRBS both ways, errors injected, counted and cleared, the pattern
// inverted on one side and then the other, the eye of the looped lane, and
// the loop taken away again.  The model's lane follows each line.
TEST_F(CliSerdes, LaneCheckedOnItselfThroughTheNearLoop)
{
    auto lane = [] {
        tide_sim_serdes_lane l{};
        EXPECT_EQ(tide_sim_serdes_lane_get(0, 3, &l), 0);
        return l;
    };
    ASSERT_EQ(run("serdes 3 loopback serpre-tx2rx enable"), 0) << out_;
    EXPECT_EQ(lane().near_loop, 1u);
    ASSERT_EQ(run("serdes 3 prbs-dir all prbs-mode prbs23"), 0) << out_;
    EXPECT_EQ(lane().prbs_generator, 1u);
    EXPECT_EQ(lane().prbs_checker, 1u);
    ASSERT_EQ(run("show serdes 3 prbs err-cnt"), 0) << out_;
    EXPECT_TRUE(said(" serdes 3 prbs err-cnt: 0")) << out_;

    ASSERT_EQ(run("serdes 3 prbs insert-err num 9"), 0) << out_;
    ASSERT_EQ(run("serdes 3 prbs insert-err num 4"), 0) << out_;
    ASSERT_EQ(run("show serdes 3 prbs err-cnt"), 0) << out_;
    EXPECT_TRUE(said(" serdes 3 prbs err-cnt: 13")) << out_;
    ASSERT_EQ(run("serdes 3 prbs insert-err num 2"), 0) << out_;
    ASSERT_EQ(run("serdes 3 prbs clear-err-cnt"), 0) << out_;
    ASSERT_EQ(run("show serdes 3 prbs err-cnt"), 0) << out_;
    EXPECT_TRUE(said(" serdes 3 prbs err-cnt: 0")) << out_;

    // Polarity on the way out only: the checker loses the pattern; on the
    // way in too: the two cancel.
    ASSERT_EQ(run("serdes 3 pn tx enable"), 0) << out_;
    EXPECT_EQ(lane().tx_inverted, 1u);
    EXPECT_EQ(run("show serdes 3 prbs err-cnt"), -11) << out_;
    ASSERT_EQ(run("serdes 3 pn rx enable"), 0) << out_;
    ASSERT_EQ(run("show serdes 3 pn"), 0);
    EXPECT_TRUE(said(" serdes 3 pn: tx inverted, rx inverted")) << out_;
    ASSERT_EQ(run("show serdes 3 prbs err-cnt"), 0) << out_;
    ASSERT_EQ(run("serdes 3 pn all disable"), 0) << out_;
    EXPECT_EQ(lane().tx_inverted + lane().rx_inverted, 0u);

    ASSERT_EQ(run("show serdes 3 eye four-point"), 0) << out_;
    EXPECT_TRUE(said(" serdes 3 eye: left ")) << out_;
    ASSERT_EQ(run("show serdes 3 eye full"), 0) << out_;
    EXPECT_TRUE(said("serdes3 full eye: mean errors per point, x -32..32 step 4, y 60..-60 step 10\n")) << out_;
    // The row through the centre: open in the middle, closed at the edges.
    const size_t row = out_.find("\n   0:\t");
    ASSERT_NE(row, std::string::npos) << out_;
    std::vector<unsigned long> errs;
    const char *p = out_.c_str() + row + 7;
    for (char *end = nullptr; errs.size() < 17; p = end) {
        errs.push_back(std::strtoul(p, &end, 10));
        ASSERT_NE(end, p) << out_;
    }
    EXPECT_EQ(errs[8], 0u) << out_;
    EXPECT_GT(errs[0], 0u) << out_;
    EXPECT_GT(errs[16], 0u) << out_;

    ASSERT_EQ(run("serdes 3 loopback serpre-tx2rx disable"), 0) << out_;
    EXPECT_EQ(lane().near_loop, 0u);
    EXPECT_EQ(run("show serdes 3 prbs err-cnt"), -11) << out_;
    ASSERT_EQ(run("show serdes 3 loopback-status"), 0);
    EXPECT_TRUE(said(" serdes 3 loopback serpre-tx2rx : disable")) << out_;
}

// Transmit emphasis set on a list of lanes reaches every lane of the list
// and none beyond it.
TEST_F(CliSerdes, EmphasisOnALaneListReachesEachLane)
{
    ASSERT_EQ(run("show serdes 4 emphasis"), 0);
    const std::string before = out_;
    ASSERT_EQ(run("serdes 2-3 emphasis main 55 pre 4 post 11"), 0) << out_;
    for (const char *sid : {"2", "3"}) {
        ASSERT_EQ(run(std::string("show serdes ") + sid + " emphasis"), 0);
        EXPECT_TRUE(said(std::string(" serdes ") + sid + " emphasis: main 55 pre 4 post 11")) << out_;
    }
    ASSERT_EQ(run("show serdes 4 emphasis"), 0);
    EXPECT_EQ(out_, before);
}

// Every speed word of the chip sets the lane to its line rate, reads back
// as the same word, and the words of other chips' rates are refused
// without a write.
TEST_F(CliSerdes, EverySpeedWordSetsItsLineRate)
{
    const struct {
        const char *word;
        u64 bps;
    } speeds[] = {
        {"1P250G-pll0", 1250000000ull},   {"3P1250G-pll1", 3125000000ull}, {"5G-pll0", 5000000000ull},
        {"10G-pll0", 10000000000ull},     {"10P3125G-pll1", 10312500000ull}, {"1P250G-pll1", 1250000000ull},
        {"3P1250G-pll0", 3125000000ull},  {"5G-pll1", 5000000000ull},      {"10G-pll1", 10000000000ull},
        {"10P3125G-pll0", 10312500000ull},
    };
    for (const auto &sp : speeds) {
        ASSERT_EQ(run(std::string("serdes 2 speed ") + sp.word + " width 20BIT"), 0) << sp.word << "\n" << out_;
        tide_sim_serdes_lane l{};
        ASSERT_EQ(tide_sim_serdes_lane_get(0, 2, &l), 0);
        EXPECT_EQ(l.rate_bps, sp.bps) << sp.word;
        ASSERT_EQ(run("show serdes 2 speed"), 0);
        EXPECT_TRUE(said(std::string(" serdes 2 speed: ") + sp.word + "\n")) << out_;
    }
    for (const char *word : {"1P25G-MPLLA", "3P125G", "10G", "7P8125G", "25P78125G", "53P125G"}) {
        ASSERT_EQ(tide_sim_write_log_clear(0), 0);
        EXPECT_EQ(run(std::string("serdes 2 speed ") + word + " width 20BIT"), -24) << word << "\n" << out_;
        EXPECT_TRUE(tide::test::sim_writes(0).empty()) << word;
    }
}

TEST_F(CliSerdes, RefusalsPrintTheirLineAndChangeNothing)
{
    struct Case {
        const char *line;
        i32 rc;
        const char *said;
    } cases[] = {
        {"serdes x pn tx enable", -4, " para x is invalid."},
        {"serdes 8 pn tx enable", -29, " serdes 8: call serdes_api_pn_set failed"},
        {"serdes 2 speed 12P5G width 20BIT", -24, "Key [12P5G] Not Support for chip[atolreef]!"},
        {"serdes 2 emphasis tap0 1 tap1 2 tap2 3 tap3 4 amp 5 polarity 0", -24, "Key [tap0] Not Support"},
        {"serdes 2 emphasis main 300 pre 0 post 0", -4, " para 300 is invalid."},
        {"serdes 2 preset 16", -4, " serdes 2: call serdes_api_control_set failed"},
        {"serdes 2 rxadapt ctle enable", -24, " serdes 2: call serdes_api_rx_adapt_set failed"},
        {"serdes 2 prbs-dir all prbs-mode prbs9", -24, " serdes 2: call serdes_api_prbs_set failed"},
        {"serdes 2 enable tx", -24, " serdes 2: call serdes_api_serdes_enable_set failed"},
        {"serdes work-mode pcie", -24, " call serdes_api_serdes_type_sel failed"},
        {"serdes 2 register read reg-name no_such_reg", -7, " serdes 2: call serdes_api_name_register_get failed"},
    };
    for (const Case &c : cases) {
        ASSERT_EQ(tide_sim_write_log_clear(0), 0);
        EXPECT_EQ(run(c.line), c.rc) << c.line << "\n" << out_;
        EXPECT_TRUE(said(c.said)) << c.line << "\n" << out_;
        EXPECT_TRUE(tide::test::sim_writes(0).empty()) << c.line;
    }
    // A list stops at its first failure; the lanes before it were set.
    EXPECT_EQ(run("serdes 6-8 pn tx enable"), -29);
    ASSERT_EQ(run("show serdes 7 pn"), 0);
    EXPECT_TRUE(said(" serdes 7 pn: tx inverted")) << out_;
}

} // namespace
