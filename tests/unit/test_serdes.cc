// The SerDes service and the atolreef driver on the chip model: two chips
// whose lanes are cabled together (or plugged), PRBS between them with
// injected errors, polarity, loopbacks, the driver's waits against a lane
// that never answers, transmit emphasis from the properties per speed,
// and bad input that writes nothing.
#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include <tide/property.h>

#include "csl/reef/driver/serdes/csl_atolreef_serdes.h"
#include "support/fixture.h"
#include "support/serdes_lanes.h"
#include "tide_int.h"
#include "support/wait.h"

using tide::test::Capture;
using tide::test::kSerdesBar;
using tide::test::serdes_lane;
using tide::test::serdes_lane_addr;
using tide::test::serdes_peek;
using tide::test::sim_waited;
using tide::test::word_bits;

namespace {

// Lane 2 is free of the speed limit of lanes 0, 1, 6 and 7.
constexpr u32 kLane = 2;

// Registers the tests read back.
constexpr u32 kFfeCfg0 = 0x0a0;  // ffe_byp_ctrl 31, swing 27:24, post 21:16, pre 13:8, main 6:0
constexpr u32 kBistCfg1 = 0x584; // rx_bist_en_byp_val 1, ctrl 0
constexpr u32 kEyeCtl0 = 0x520;  // full_eye_cfg_en1 3, full_eye_en_sel 2

// Two chips; each test sets the properties it needs, then brings them up.
class Serdes : public tide::test::SimChips {
protected:
    Serdes() : SimChips(2, 0) {}

    // Both chips up with lane 2 at 10.3125G (10GBASE-R).
    void up_both()
    {
        for (u32 chip = 0; chip < 2; chip++) {
            prop(chip, "mag_interface_type_2", PORT_INTERFACE_10GBASE_R);
            up_chip(chip);
        }
    }
    static void prop(u32 chip, const std::string &key, i32 value)
    {
        ASSERT_EQ(shr_property_set(chip, key.c_str(), std::to_string(value).c_str()), 0);
    }
    static i32 prbs(u32 chip, u32 dir, u32 type, u32 enable = 1)
    {
        serdes_prbs p{enable, dir, type, nullptr};
        return serdes_api_prbs_set(chip, kLane, &p);
    }
    // Lane 2 of chip 0 cabled to lane 2 of chip 1, chip 0 sending `type`,
    // chip 1 checking it.
    static void cabled_prbs(u32 type)
    {
        ASSERT_EQ(tide_sim_serdes_link(0, kLane, 1, kLane), 0);
        ASSERT_EQ(prbs(0, SERDES_DIR_TX, type), 0);
        ASSERT_EQ(prbs(1, SERDES_DIR_RX, type), 0);
    }
    static i32 errors(u32 chip, u32 *count)
    {
        *count = 0xdead;
        return serdes_api_prbs_counter_get(chip, kLane, count);
    }
    static i32 invert(u32 chip, u32 dir, u32 mode)
    {
        serdes_pn pn{dir, mode};
        return serdes_api_pn_set(chip, kLane, &pn);
    }
};

TEST_F(Serdes, CabledLanesCarryPrbsAndCountInjectedErrorsExactly)
{
    TIDE_TEST_SEED(seed, 20);
    std::mt19937 rng(static_cast<u32>(seed));
    up_both();
    ASSERT_NO_FATAL_FAILURE(cabled_prbs(SERDES_PRBS31));

    u32 count = 0;
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
    u32 locked = 0;
    serdes_control lock{SERDES_CONTROL_LOCK, &locked};
    ASSERT_EQ(serdes_api_control_get(1, kLane, &lock), 0);
    EXPECT_EQ(locked, 1u);

    // Each read restarts the checker: the next one counts only new errors.
    for (int round = 0; round < 3; round++) {
        const u32 n = std::uniform_int_distribution<u32>(1, 200)(rng);
        ASSERT_EQ(serdes_api_prbs_insert_err_pkt(0, kLane, n), 0);
        ASSERT_EQ(errors(1, &count), 0);
        EXPECT_EQ(count, n) << "round " << round;
    }
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);

    // Another pattern at the checker: no lock.
    ASSERT_EQ(prbs(1, SERDES_DIR_RX, SERDES_PRBS7), 0);
    Capture::clear();
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);
    EXPECT_TRUE(Capture::has("chip_id:1 serdes_id:2 BIST lock fail!"));

    // The user pattern reaches the checker as a pattern of its own.
    u64 pattern = 0x0123456789abcdefull;
    serdes_prbs user_tx{1, SERDES_DIR_TX, SERDES_PAT_USER, &pattern};
    serdes_prbs user_rx{1, SERDES_DIR_RX, SERDES_PAT_USER, &pattern};
    ASSERT_EQ(serdes_api_prbs_set(0, kLane, &user_tx), 0);
    ASSERT_EQ(serdes_api_prbs_set(1, kLane, &user_rx), 0);
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
}

TEST_F(Serdes, PolarityMismatchKeepsTheCheckerUnlockedUntilOneSideInverts)
{
    up_both();
    ASSERT_NO_FATAL_FAILURE(cabled_prbs(SERDES_PRBS7));
    u32 count = 0;
    ASSERT_EQ(invert(0, SERDES_DIR_TX, 1), 0);
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);
    serdes_pn read{SERDES_DIR_TX, 0};
    ASSERT_EQ(serdes_api_pn_get(0, kLane, &read), 0);
    EXPECT_EQ(read.mode, 1u);

    // The receiver inverts too: the two inversions cancel.
    ASSERT_EQ(invert(1, SERDES_DIR_RX, 1), 0);
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
    // Both sides back upright.
    ASSERT_EQ(invert(0, SERDES_DIR_BOTH, 0), 0);
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);
    ASSERT_EQ(invert(1, SERDES_DIR_BOTH, 0), 0);
    EXPECT_EQ(errors(1, &count), 0);

    // The cable out: nothing arrives, nothing locks.
    ASSERT_EQ(tide_sim_serdes_unlink(1, kLane), 0);
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);
}

TEST_F(Serdes, PlugAndNearLoopbackLockALaneOnItself)
{
    up_both();
    ASSERT_EQ(prbs(0, SERDES_DIR_BOTH, SERDES_PRBS23), 0);
    u32 count = 0;
    EXPECT_EQ(errors(0, &count), SHR_E_FAIL); // nothing connected

    ASSERT_EQ(tide_sim_serdes_plug(0, kLane), 0);
    ASSERT_EQ(errors(0, &count), 0);
    EXPECT_EQ(count, 0u);
    ASSERT_EQ(serdes_api_prbs_insert_err_pkt(0, kLane, 7), 0);
    ASSERT_EQ(errors(0, &count), 0);
    EXPECT_EQ(count, 7u);
    ASSERT_EQ(tide_sim_serdes_unlink(0, kLane), 0);

    // The serial near loop does what the plug did, inside the lane.
    serdes_loopback loop{SERDES_LOOP_SERIAL_TX2RX, 1};
    ASSERT_EQ(serdes_api_loopback_set(0, kLane, &loop), 0);
    serdes_loopback read{SERDES_LOOP_SERIAL_TX2RX, 0};
    ASSERT_EQ(serdes_api_loopback_get(0, kLane, &read), 0);
    EXPECT_EQ(read.enable, 1u);
    ASSERT_EQ(errors(0, &count), 0);
    EXPECT_EQ(count, 0u);
    loop.enable = 0;
    ASSERT_EQ(serdes_api_loopback_set(0, kLane, &loop), 0);
    EXPECT_EQ(errors(0, &count), SHR_E_FAIL);

    // The far loop of chip 1 sends chip 0's pattern back to it.
    ASSERT_EQ(tide_sim_serdes_link(0, kLane, 1, kLane), 0);
    serdes_loopback far{SERDES_LOOP_PARALLEL_RX2TX, 1};
    ASSERT_EQ(serdes_api_loopback_set(1, kLane, &far), 0);
    ASSERT_EQ(errors(0, &count), 0);
    EXPECT_EQ(count, 0u);
}

TEST_F(Serdes, EyeOfAGoodLinkIsOpenAndCentred)
{
    up_both();
    ASSERT_EQ(tide_sim_serdes_link(0, kLane, 1, kLane), 0);
    serdes_eye eye{};
    ASSERT_EQ(serdes_api_four_point_eye(1, kLane, &eye), 0);
    EXPECT_GT(eye.left, 0u);
    EXPECT_GT(eye.right, 0u);
    EXPECT_GT(eye.up, 0u);
    EXPECT_GT(eye.down, 0u);
    EXPECT_LE(eye.left, 32u);
    EXPECT_LE(eye.right, 32u);
}

// The driver's two polling waits, against a lane that never answers: the
// status, the log line, the whole budget of polls spent on the model's
// clock, and the lane left as the sequence had it.
TEST_F(Serdes, WaitsOnALaneThatNeverAnswersEndWithTheirStatus)
{
    up_both();
    ASSERT_NO_FATAL_FAILURE(cabled_prbs(SERDES_PRBS31));
    ASSERT_EQ(tide_sim_serdes_fault_set(1, kLane, TIDE_SIM_SERDES_NEVER_LOCK), 0);

    // PRBS lock: 100 polls, 1000 us apart.
    Capture::clear();
    u64 before = sim_waited(1);
    u32 count = 0;
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);
    EXPECT_TRUE(Capture::has("chip_id:1 serdes_id:2 BIST lock fail!"));
    EXPECT_EQ(sim_waited(1) - before, 100u * 1000u);
    EXPECT_EQ(word_bits(serdes_peek(1, kLane, kBistCfg1), 1, 0), 3u) << "the checker keeps running";
    u32 locked = 1;
    serdes_control lock{SERDES_CONTROL_LOCK, &locked};
    ASSERT_EQ(serdes_api_control_get(1, kLane, &lock), 0);
    EXPECT_EQ(locked, 0u);

    // Eye measurement: 1000 polls in all, 500 us apart.
    ASSERT_EQ(tide_sim_serdes_fault_set(1, kLane, TIDE_SIM_SERDES_NEVER_CALIBRATE), 0);
    const u32 eye_ctl = serdes_peek(1, kLane, kEyeCtl0);
    Capture::clear();
    before = sim_waited(1);
    serdes_eye eye{};
    EXPECT_EQ(serdes_api_four_point_eye(1, kLane, &eye), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("chip_id:1 serdes_id:2 measure_done:0 time:1000"));
    const u64 spent = sim_waited(1) - before;
    EXPECT_GE(spent, 999u * 500u);
    EXPECT_LE(spent, 1000u * 500u);
    EXPECT_EQ(word_bits(serdes_peek(1, kLane, kEyeCtl0), 3, 2), word_bits(eye_ctl, 3, 2)) << "the eye's enables are restored";

    // The full eye fails the same way.
    std::string buffer(SERDES_FULL_EYE_BUFF_LEN, '\0');
    EXPECT_EQ(serdes_api_full_eye_get(1, kLane, buffer.data(), buffer.size()), SHR_E_TIMEOUT);

    // Without the faults the same lane answers again.
    ASSERT_EQ(tide_sim_serdes_fault_set(1, kLane, 0), 0);
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(serdes_api_four_point_eye(1, kLane, &eye), 0);
}

// Transmit emphasis from the property store: the record of the lane's speed
// when the chip distinguishes speeds, the lane's own values otherwise; a
// rate change takes the record of the new speed.
TEST_F(Serdes, PreEmphasisFromThePropertiesFollowsTheSpeed)
{
    prop(0, "mag_interface_type_2", PORT_INTERFACE_10GBASE_R);
    prop(0, "serdes_lane_pe_dist_speed", 1);
    shr_property_pre_emphasis_t fast{}, slow{};
    fast.type = slow.type = SHR_PROPERTY_PE_TYPE_MPP;
    fast.u.mpp = {70, 3, 9};
    slow.u.mpp = {50, 1, 4};
    ASSERT_EQ(shr_property_sds_alone_lane_pre_emphasis_set_with_attr(0, kLane, "10.3125Gbps", &fast), 0);
    ASSERT_EQ(shr_property_sds_alone_lane_pre_emphasis_set_with_attr(0, kLane, "5Gbps", &slow), 0);
    // Lane 3 has no record of its speed: its own values, else the defaults.
    prop(0, "mag_interface_type_3", PORT_INTERFACE_10GBASE_R);
    prop(0, "serdes_tx_post_3", 20);
    up_chip(0);

    auto expect_ffe = [](u32 serdes_id, u32 main, u32 pre, u32 post) {
        const u32 w = serdes_peek(0, serdes_id, kFfeCfg0);
        EXPECT_EQ(word_bits(w, 6, 0), main) << "lane " << serdes_id;
        EXPECT_EQ(word_bits(w, 13, 8), pre) << "lane " << serdes_id;
        EXPECT_EQ(word_bits(w, 21, 16), post) << "lane " << serdes_id;
        EXPECT_EQ(word_bits(w, 27, 24), 0u) << "lane " << serdes_id;
        EXPECT_EQ(word_bits(w, 31, 31), 1u) << "the taps, not the preset";
    };
    expect_ffe(kLane, 70, 3, 9);
    expect_ffe(3, 0x5A, 0, 20);

    serdes_freq five{SERDES_SPEED_5G_PLL1, 20};
    ASSERT_EQ(serdes_api_freq_set(0, kLane, &five), 0);
    expect_ffe(kLane, 50, 1, 4);
    serdes_freq back{SERDES_SPEED_10P3125G_PLL1, 20};
    ASSERT_EQ(serdes_api_freq_set(0, kLane, &back), 0);
    expect_ffe(kLane, 70, 3, 9);
    serdes_emphasis read{};
    ASSERT_EQ(serdes_api_emphasis_get(0, kLane, &read), 0);
    EXPECT_EQ(read.main, 70u);
    EXPECT_EQ(read.post, 9u);

    // A preset hands the taps back to the preset.
    u32 preset = 5;
    serdes_control control{SERDES_CONTROL_PRESET, &preset};
    ASSERT_EQ(serdes_api_control_set(0, kLane, &control), 0);
    EXPECT_EQ(word_bits(serdes_peek(0, kLane, kFfeCfg0), 31, 31), 0u);
    preset = 0;
    ASSERT_EQ(serdes_api_control_get(0, kLane, &control), 0);
    EXPECT_EQ(preset, 5u);
}

TEST_F(Serdes, SpeedLimitAndRateChanges)
{
    up_both();
    serdes_freq ten{SERDES_SPEED_10G_PLL0, 20};
    Capture::clear();
    EXPECT_EQ(serdes_api_freq_set(0, 0, &ten), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("chip_id:0 serdes_id[0] set freq: 14  lane 0/1/6/7 not support set speed > 5G"));
    u32 off = 0;
    serdes_control limit{SERDES_CONTROL_SPEED_LIMIT, &off};
    ASSERT_EQ(serdes_api_control_set(0, 0, &limit), 0);
    ASSERT_EQ(serdes_api_freq_set(0, 0, &ten), 0);
    serdes_freq read{};
    ASSERT_EQ(serdes_api_freq_get(0, 0, &read), 0);
    EXPECT_EQ(read.speed, static_cast<u32>(SERDES_SPEED_10G_PLL0));

    // Lanes of the two chips at the same rate lock; at different rates not.
    ASSERT_EQ(tide_sim_serdes_link(0, kLane, 1, kLane), 0);
    serdes_freq five{SERDES_SPEED_5G_PLL0, 20};
    ASSERT_EQ(serdes_api_freq_set(1, kLane, &five), 0);
    ASSERT_EQ(prbs(0, SERDES_DIR_TX, SERDES_PRBS31), 0);
    ASSERT_EQ(prbs(1, SERDES_DIR_RX, SERDES_PRBS31), 0);
    u32 count = 0;
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);
    ASSERT_EQ(serdes_api_freq_set(0, kLane, &five), 0);
    ASSERT_EQ(prbs(0, SERDES_DIR_TX, SERDES_PRBS31), 0);
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);

    // 5G to 10G on the same PLL keeps its VCO class: its dividers are not
    // written.
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    serdes_freq ten0{SERDES_SPEED_10G_PLL0, 20};
    ASSERT_EQ(serdes_api_freq_set(0, kLane, &ten0), 0);
    const u32 pll0_cfg0 = 0x850000 + 0x1048;
    for (const tide_sim_write &w : tide::test::sim_writes(0)) {
        EXPECT_FALSE(w.bar == kSerdesBar && w.addr == pll0_cfg0) << "PLL 0 reprogrammed";
    }
}

// Bad input: a status, a log line, and not one register written.
TEST_F(Serdes, BadInputWritesNothing)
{
    up_both();
    u32 value = 0;
    serdes_freq freq{22, 20};
    serdes_freq ten{SERDES_SPEED_10G_PLL0, 20};
    serdes_prbs prbs3{1, SERDES_DIR_TX, SERDES_PRBS15, nullptr};
    serdes_prbs prbs_dir{1, 3, SERDES_PRBS7, nullptr};
    serdes_loopback loop{4, 1};
    serdes_power power{5, SERDES_POWER_DOWN};
    serdes_emphasis tap1{1, 10, 0, 0, 0};
    serdes_rx_adapt ctle{0, 1};
    serdes_rx_para para{1, 0, 16, 1};
    u32 preset = 16;
    serdes_control preset_ctl{SERDES_CONTROL_PRESET, &preset};
    serdes_control lock_set{SERDES_CONTROL_LOCK, &value};
    serdes_control no_value{SERDES_CONTROL_LOS_THR, nullptr};
    char reg[] = "ffe_cfg0", field[] = "ffe_cmain_cfg", no_reg[] = "no_such_reg", no_field[] = "no_such_field";
    struct Case {
        const char *what;
        i32 rc;
        const char *log;
        std::function<i32()> call;
    };
    Case cases[] = {
        {"lane 8", SHR_E_INVALID_DATA, "serdes_id out range Error Happened, chip_id:0 max serdes_id:7, curr serdes_id:8",
         [&] { return serdes_api_freq_set(0, 8, &ten); }},
        {"lane 8 reset", SHR_E_INVALID_DATA, "curr serdes_id:8", [&] { return serdes_api_serdes_reset(0, 8, 0); }},
        {"null freq", SHR_E_NULL_PTR, "chip_id 0, serdes_id 2, freq set null point",
         [&] { return serdes_api_freq_set(0, kLane, nullptr); }},
        {"null control value", SHR_E_NULL_PTR, "chip_id 0, serdes_id 2, control set p_value null point",
         [&] { return serdes_api_control_set(0, kLane, &no_value); }},
        {"speed 22", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id[2] set freq: 22  not support",
         [&] { return serdes_api_freq_set(0, kLane, &freq); }},
        {"speed limit", SHR_E_NOT_SUPPORT, "lane 0/1/6/7 not support set speed > 5G",
         [&] { return serdes_api_freq_set(0, 6, &ten); }},
        {"prbs type", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id:2 prbs_type:3 not support",
         [&] { return serdes_api_prbs_set(0, kLane, &prbs3); }},
        {"prbs dir", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id:2 prbs disable dir: 3 error",
         [&] { return serdes_api_prbs_set(0, kLane, &prbs_dir); }},
        {"loopback type", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id:2 not support serdes_loopback_type: 4",
         [&] { return serdes_api_loopback_set(0, kLane, &loop); }},
        {"power dir", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id:2  set not support power type: 5",
         [&] { return serdes_api_power_set(0, kLane, &power); }},
        {"reset mode", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id:2 reset mod: 3 error",
         [&] { return serdes_api_serdes_reset(0, kLane, 3); }},
        {"emphasis tap", SHR_E_NOT_SUPPORT, "tx pre-emphasis set chip id:0  serdes_id:2  tap:1 not support",
         [&] { return serdes_api_emphasis_set(0, kLane, &tap1); }},
        {"rx adapt ctle", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id: 2, rxadapt0 not support.",
         [&] { return serdes_api_rx_adapt_set(0, kLane, &ctle); }},
        {"rx para 16", SHR_E_NOT_SUPPORT, "chip_id:0 serdes_id:2 rx para set not support type:16, value:1",
         [&] { return serdes_api_rx_para_set(0, kLane, &para); }},
        {"preset 16", SHR_E_PARAM, "chip_id:0 serdes_id:2 tx preset err, value: 16 > 0xf",
         [&] { return serdes_api_control_set(0, kLane, &preset_ctl); }},
        {"lock set", SHR_E_NOT_SUPPORT, "", [&] { return serdes_api_control_set(0, kLane, &lock_set); }},
        {"error injection", SHR_E_PARAM, "chip_id:0 serdes_id:2  prbs error injection num:65536 not support",
         [&] { return serdes_api_prbs_insert_err_pkt(0, kLane, 65536); }},
        {"injection without generator", SHR_E_FAIL, "chip_id:0 serdes_id:2 prbs tx not enable",
         [&] { return serdes_api_prbs_insert_err_pkt(0, kLane, 1); }},
        {"count without checker", SHR_E_FAIL, "chip_id:0 serdes_id:2 prbs rx not enable",
         [&] { return serdes_api_prbs_counter_get(0, kLane, &value); }},
        {"no register", SHR_E_NOT_FOUND, "register name set serdes_id 2 can't find reg , reg_name = no_such_reg",
         [&] { return serdes_api_name_register_field_set(0, kLane, no_reg, field, 1); }},
        {"no field", SHR_E_NOT_FOUND, "serdes_id 2 set can't find field_name , field_name = no_such_field",
         [&] { return serdes_api_name_register_field_set(0, kLane, reg, no_field, 1); }},
        {"wide value", SHR_E_NOT_SUPPORT,
         "serdes_id[2]  field set val 0x80  not support, reg_name_id:ffe_cfg0 bit_name_id:ffe_cmain_cfg max val 0x7f",
         [&] { return serdes_api_name_register_field_set(0, kLane, reg, field, 0x80); }},
        {"inner address", SHR_E_PARAM, "chip_id:0 serdes_id:2 inner register addr:0x4000 out of range",
         [&] { return serdes_api_inner_register_set(0, kLane, 0x4000, 1); }},
        {"refclk", SHR_E_PARAM, "chip_id:0 serdes_id:2 refclk:3 not support",
         [&] { return serdes_api_refclk_chose_set(0, kLane, 3); }},
    };
    for (Case &c : cases) {
        ASSERT_EQ(tide_sim_write_log_clear(0), 0);
        Capture::clear();
        EXPECT_EQ(c.call(), c.rc) << c.what;
        if (*c.log != '\0') {
            EXPECT_TRUE(Capture::has(c.log)) << c.what;
        }
        EXPECT_TRUE(tide::test::sim_writes(0).empty()) << c.what << ": registers written";
    }
}

// Slots the atolreef driver leaves empty answer -24 on every lane; the
// lane check comes first.
TEST_F(Serdes, EmptySlotsAnswerNotSupportedOnEveryLane)
{
    up_both();
    u32 v = 1;
    serdes_pn pn{SERDES_DIR_TX, 1};
    serdes_prbs_check_info check{};
    char text[64];
    for (u32 lane = 0; lane <= 8; lane++) {
        const i32 rc = lane < 8 ? SHR_E_NOT_SUPPORT : SHR_E_INVALID_DATA;
        EXPECT_EQ(serdes_api_serdes_enable_set(0, lane, &v), rc) << lane;
        EXPECT_EQ(serdes_api_serdes_enable_get(0, lane, &v), rc) << lane;
        EXPECT_EQ(serdes_api_refclk_set(0, lane, 1), rc) << lane;
        EXPECT_EQ(serdes_api_refclk_get(0, lane, &v), rc) << lane;
        EXPECT_EQ(serdes_api_prbs_check(0, lane, &check), rc) << lane;
        EXPECT_EQ(serdes_api_prbs_invert_enable_set(0, lane, &pn), rc) << lane;
        EXPECT_EQ(serdes_api_sram_get(0, lane, text, sizeof(text)), rc) << lane;
    }
    EXPECT_EQ(serdes_api_serdes_type_sel(0, 1), SHR_E_NOT_SUPPORT);
}

// Registers by name and by address reach the same word; the receiver's
// parameters land in their bypass fields.
TEST_F(Serdes, RegisterAccessByNameAndAddress)
{
    up_both();
    char reg[] = "ffe_cfg0", field[] = "ffe_cpre_cfg";
    ASSERT_EQ(serdes_api_name_register_field_set(0, kLane, reg, field, 0x2a), 0);
    EXPECT_EQ(word_bits(serdes_peek(0, kLane, kFfeCfg0), 13, 8), 0x2au);
    u32 v = 0;
    ASSERT_EQ(serdes_api_name_register_field_get(0, kLane, reg, field, &v), 0);
    EXPECT_EQ(v, 0x2au);
    ASSERT_EQ(serdes_api_inner_register_get(0, kLane, kFfeCfg0, &v), 0);
    EXPECT_EQ(v, serdes_peek(0, kLane, kFfeCfg0));
    ASSERT_EQ(serdes_api_name_register_get(0, kLane, reg, &v), 0);
    EXPECT_EQ(v, serdes_peek(0, kLane, kFfeCfg0));
    ASSERT_EQ(serdes_api_inner_register_set(0, 5, kFfeCfg0, 0x1234), 0);
    EXPECT_EQ(serdes_peek(0, 5, kFfeCfg0), 0x1234u);

    // ctle_hf 9: bypass on, Gray code of 9 (13) in eq_cfg9.
    serdes_rx_para hf{1, 0, SERDES_RX_PARA_CTLE_HF, 9};
    ASSERT_EQ(serdes_api_rx_para_set(0, kLane, &hf), 0);
    char eq9[] = "eq_cfg9", hf_val[] = "da_ctle_hf_gain_gray_bypass_val";
    ASSERT_EQ(serdes_api_name_register_field_get(0, kLane, eq9, hf_val, &v), 0);
    EXPECT_EQ(v, 13u);

    std::string report(SERDES_DEBUG_INFO_BUF_LEN, '\0');
    ASSERT_EQ(serdes_api_debug_info_get(0, kLane, report.data(), report.size()), 0);
    EXPECT_NE(report.find("soft version:20240816-MAIN"), std::string::npos);
    std::string speeds(1024, '\0');
    ASSERT_EQ(serdes_api_support_speed_get(0, kLane, speeds.data(), speeds.size()), 0);
    EXPECT_NE(speeds.find("15             10.3125Gbps_pll1"), std::string::npos);
}

// A PLL powered down walks its divider below its floor, 10 at a time with
// 10 ms between steps, and the lanes on it go dark; powered up it walks
// back to its rate and the link locks again.
TEST_F(Serdes, PllPowerRampsItsDividerAndTheLanesFollow)
{
    up_both();
    ASSERT_NO_FATAL_FAILURE(cabled_prbs(SERDES_PRBS31));
    u32 count = 0;
    ASSERT_EQ(errors(1, &count), 0);

    // 10.3125G is PLL 1 at divider 206: eleven steps down to 96.
    u64 before = sim_waited(0);
    serdes_power pll1{SERDES_POWER_PLL1, SERDES_POWER_DOWN};
    ASSERT_EQ(serdes_api_power_set(0, kLane, &pll1), 0);
    EXPECT_EQ(sim_waited(0) - before, 11u * 10000u);
    EXPECT_EQ(serdes_lane(0, kLane).tx_on, 0u);
    serdes_power read{SERDES_POWER_PLL1, 0};
    ASSERT_EQ(serdes_api_power_get(0, kLane, &read), 0);
    EXPECT_EQ(read.value, static_cast<u32>(SERDES_POWER_DOWN));
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);

    before = sim_waited(0);
    pll1.value = SERDES_POWER_UP;
    ASSERT_EQ(serdes_api_power_set(0, kLane, &pll1), 0);
    EXPECT_EQ(sim_waited(0) - before, 11u * 10000u);
    EXPECT_EQ(serdes_lane(0, kLane).rate_bps, 10312500000ull);
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
}

// A lane the properties switch off gets no PLL and stays dark; two lanes
// on one PLL share its rate, so a rate change of one moves the other.
TEST_F(Serdes, BringUpFollowsTheLanePropertiesAndLanesShareTheirPll)
{
    prop(0, "mag_interface_type_2", PORT_INTERFACE_SGMII_8P); // 10G on PLL 0
    prop(0, "mag_interface_type_3", PORT_INTERFACE_SGMII_8P);
    prop(0, "mag_interface_type_4", PORT_INTERFACE_1000BASE_X);
    prop(0, "serdes_enable_4", 0);
    up_chip(0);
    EXPECT_EQ(serdes_lane(0, 2).rate_bps, 10000000000ull);
    EXPECT_EQ(serdes_lane(0, 3).rate_bps, 10000000000ull);
    EXPECT_EQ(serdes_lane(0, 2).tx_on, 1u);
    const tide_sim_serdes_lane off = serdes_lane(0, 4);
    EXPECT_EQ(off.tx_on, 0u);
    EXPECT_EQ(off.rx_on, 0u);
    serdes_power both{SERDES_POWER_TXRX, 0};
    ASSERT_EQ(serdes_api_power_get(0, 4, &both), 0);
    EXPECT_EQ(both.value, static_cast<u32>(SERDES_POWER_DOWN));

    serdes_freq f{SERDES_SPEED_10P3125G_PLL0, 20};
    ASSERT_EQ(serdes_api_freq_set(0, 2, &f), 0);
    EXPECT_EQ(serdes_lane(0, 2).rate_bps, 10312500000ull);
    EXPECT_EQ(serdes_lane(0, 3).rate_bps, 10312500000ull) << "lane 3 shares PLL 0";

    // Receive adaptation on and off, as the lane reports it.
    serdes_rx_adapt dfe{SERDES_RX_ADAPT_DFE, 1};
    ASSERT_EQ(serdes_api_rx_adapt_set(0, 2, &dfe), 0);
    serdes_rx_adapt got{SERDES_RX_ADAPT_DFE, 0};
    ASSERT_EQ(serdes_api_rx_adapt_get(0, 2, &got), 0);
    EXPECT_EQ(got.enable, 1u);
    dfe.enable = 0;
    ASSERT_EQ(serdes_api_rx_adapt_set(0, 2, &dfe), 0);
    ASSERT_EQ(serdes_api_rx_adapt_get(0, 2, &got), 0);
    EXPECT_EQ(got.enable, 0u);
}

} // namespace

namespace {

u32 _gray(u32 v)
{
    return v ^ (v >> 1);
}

void _poke(u32 chip, u32 serdes_id, u32 offset, u32 value)
{
    ASSERT_EQ(tide_sim_reg_poke(chip, kSerdesBar, serdes_lane_addr(serdes_id, offset), value), 0);
}

// Each receive parameter turns its bypass on and lands in its value field,
// Gray coded where the equaliser counts in Gray code, split where the value
// spans two registers.
TEST_F(Serdes, ReceiveParametersReachTheirBypassFields)
{
    up_both();
    constexpr u32 kEq1 = 0x304, kEq2 = 0x308, kEq3 = 0x30c, kEq8 = 0x320, kEq9 = 0x324, kEq10 = 0x328,
                  kEq11 = 0x32c;
    struct Case {
        u32 para, value;
        u32 ctrl_reg, ctrl_bit;
        u32 val_reg, hi, lo, expect;
    } cases[] = {
        {1, 9, kEq1, 0, kEq3, 3, 0, 9},
        {2, 11, kEq1, 1, kEq3, 7, 4, 11},
        {3, 5, kEq1, 2, kEq3, 11, 8, 5},
        {4, 6, kEq1, 3, kEq3, 14, 12, 6},
        {5, 13, kEq1, 4, kEq3, 19, 16, 13},
        {6, 10, kEq1, 5, kEq3, 23, 20, 10},
        {7, 0x1d, kEq1, 6, kEq2, 2, 0, 0x1d >> 2},
        {8, 5, kEq1, 7, kEq2, 6, 4, 5},
        {9, 2, kEq1, 8, kEq2, 9, 8, 2},
        {10, 6, kEq1, 9, kEq2, 14, 12, 6},
        {11, 21, kEq1, 10, kEq2, 20, 16, 21},
        {12, 9, kEq8, 0, kEq9, 3, 0, _gray(9)},
        {13, 5, kEq8, 1, kEq9, 6, 4, _gray(5)},
        {14, 0x4b, kEq10, 0, kEq11, 6, 0, 0x40 | _gray(0x0b)},
        {15, 0x05, kEq10, 1, kEq11, 14, 8, _gray(5)},
    };
    for (const Case &c : cases) {
        // vga_stage12 also clears the stage control (bit 11).
        _poke(0, kLane, c.ctrl_reg, c.para == 11 ? 1u << 11 : 0);
        serdes_rx_para p{1, 0, c.para, c.value};
        ASSERT_EQ(serdes_api_rx_para_set(0, kLane, &p), 0) << c.para;
        EXPECT_EQ(word_bits(serdes_peek(0, kLane, c.ctrl_reg), c.ctrl_bit, c.ctrl_bit), 1u) << "bypass of " << c.para;
        EXPECT_EQ(word_bits(serdes_peek(0, kLane, c.val_reg), c.hi, c.lo), c.expect) << "value of " << c.para;
        if (c.para == 7) {
            EXPECT_EQ(word_bits(serdes_peek(0, kLane, kEq3), 25, 24), 0x1du & 3) << "low bits of 7";
        }
        if (c.para == 11) {
            EXPECT_EQ(word_bits(serdes_peek(0, kLane, kEq1), 11, 11), 0u) << "stage control of 11";
        }
    }
}

// The user pattern is split over three registers; raw bits reach the
// lane's word by address.
TEST_F(Serdes, UserPatternAndRawBitsReachTheirRegisters)
{
    up_both();
    u64 pattern = 0x0123456789abcdefull;
    serdes_prbs user{1, SERDES_DIR_TX, SERDES_PAT_USER, &pattern};
    ASSERT_EQ(serdes_api_prbs_set(0, kLane, &user), 0);
    EXPECT_EQ(word_bits(serdes_peek(0, kLane, 0x5a0), 15, 0), 0xcdefu);
    EXPECT_EQ(serdes_peek(0, kLane, 0x5a4), 0x456789abu);
    EXPECT_EQ(word_bits(serdes_peek(0, kLane, 0x5a8), 15, 0), 0x0123u);

    serdes_raw_bits bits{kFfeCfg0, 0x2a, 8, 13};
    serdes_control raw{SERDES_CONTROL_RAW_BITS, &bits};
    ASSERT_EQ(serdes_api_control_set(0, 5, &raw), 0);
    EXPECT_EQ(word_bits(serdes_peek(0, 5, kFfeCfg0), 13, 8), 0x2au);
    bits.data = 0;
    ASSERT_EQ(serdes_api_control_get(0, 5, &raw), 0);
    EXPECT_EQ(bits.data, 0x2au);
}

} // namespace

namespace {

// The resets bring a lane back as it was; a receive reset restarts the
// checker, so errors from before it are not counted; the two halves of a
// reset hold the lane until released.
TEST_F(Serdes, ResetsBringTheLaneBack)
{
    up_both();
    ASSERT_NO_FATAL_FAILURE(cabled_prbs(SERDES_PRBS31));
    u32 count = 0;
    ASSERT_EQ(serdes_api_prbs_insert_err_pkt(0, kLane, 4), 0);
    ASSERT_EQ(serdes_api_serdes_reset(1, kLane, SERDES_RESET_RX), 0);
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u) << "the checker restarted";

    for (u32 mode : {SERDES_RESET_TX, SERDES_RESET_PHY}) {
        ASSERT_EQ(serdes_api_serdes_reset(0, kLane, mode), 0) << mode;
        EXPECT_EQ(serdes_lane(0, kLane).tx_on, 1u) << mode;
        ASSERT_EQ(serdes_api_prbs_insert_err_pkt(0, kLane, 2), 0);
        ASSERT_EQ(errors(1, &count), 0) << mode;
        EXPECT_EQ(count, 2u) << mode;
    }

    ASSERT_EQ(csl_atolreef_serdes_keep_reset(0, kLane, SERDES_RESET_TX), 0);
    EXPECT_EQ(serdes_lane(0, kLane).tx_on, 0u);
    EXPECT_EQ(errors(1, &count), SHR_E_FAIL);
    ASSERT_EQ(csl_atolreef_serdes_unreset(0, kLane, SERDES_RESET_TX), 0);
    EXPECT_EQ(serdes_lane(0, kLane).tx_on, 1u);
    ASSERT_EQ(errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
}

} // namespace
