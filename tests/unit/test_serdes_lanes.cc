// The SerDes lane settings against the model's view of the lane: every
// speed id reaches the lane's clock and takes the transmit emphasis of its
// rate, the analog defaults of each rate, cabled lanes lock only at one
// rate and one pattern, each loop is the loop it names, a powered-down
// transmitter goes quiet, the transmit reset and the offset calibration
// write their sequences in order (as the write log shows them), and the
// sibling chips refuse every lane call.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <tide/property.h>

#include "support/fixture.h"
#include "support/serdes_lanes.h"
#include "tide_int.h"

using tide::test::Capture;
using tide::test::serdes_lane;
using tide::test::serdes_lane_addr;
using tide::test::serdes_peek;
using tide::test::sim_waited;
using tide::test::word_bits;

namespace {

constexpr u32 kLane = 2; // free of the speed limit of lanes 0, 1, 6 and 7

// The values written to one lane register, oldest first.
std::vector<u32> _writes_to(u32 chip, u32 serdes_id, u32 offset)
{
    std::vector<u32> out;
    for (const tide_sim_write &w : tide::test::sim_writes(chip)) {
        if (w.addr == serdes_lane_addr(serdes_id, offset)) {
            out.push_back(static_cast<u32>(w.value));
        }
    }
    return out;
}

// Registers the tests follow.
constexpr u32 kFfeCfg0 = 0x0a0;   // ffe_byp_ctrl 31, swing 27:24, post 21:16, pre 13:8, main 6:0
constexpr u32 kBistCfg3 = 0x58c;  // tx_soft_rstn_byp_val 1, ctrl 0
constexpr u32 kEqCfg1 = 0x304;    // eq_cal_mode 13:12
constexpr u32 kCalKickA = 0xaa4;  // 30:23 the calibration's enables
constexpr u32 kCalKickB = 0xaa0;  // 26:25 its start, 1 the hold
constexpr u32 kOfsWords = 0x148;  // four channel words from here
constexpr u32 kOfsBypass = 0x168; // 3:0

// A 6-bit slicer offset: bit 5 the sign, bits 4:0 Gray code.
i32 _slicer(u32 v6)
{
    u32 mag = v6 & 0x1F;
    for (u32 shift = mag >> 1; shift != 0; shift >>= 1) {
        mag ^= shift;
    }
    return (v6 & 0x20) != 0 ? -static_cast<i32>(mag) : static_cast<i32>(mag);
}

struct RateCase {
    u32 speed;
    const char *attr; // the pre-emphasis record's speed
    u64 bps;
};
constexpr RateCase kRates[] = {
    {SERDES_SPEED_1P25G_PLL0, "1.25Gbps", 1250000000ull},   {SERDES_SPEED_3P125G_PLL1, "3.125Gbps", 3125000000ull},
    {SERDES_SPEED_5G_PLL0, "5Gbps", 5000000000ull},         {SERDES_SPEED_10G_PLL0, "10Gbps", 10000000000ull},
    {SERDES_SPEED_10P3125G_PLL1, "10.3125Gbps", 10312500000ull},
    {SERDES_SPEED_1P25G_PLL1, "1.25Gbps", 1250000000ull},   {SERDES_SPEED_3P125G_PLL0, "3.125Gbps", 3125000000ull},
    {SERDES_SPEED_5G_PLL1, "5Gbps", 5000000000ull},         {SERDES_SPEED_10G_PLL1, "10Gbps", 10000000000ull},
    {SERDES_SPEED_10P3125G_PLL0, "10.3125Gbps", 10312500000ull},
};

// The lanes as the SerDes bring-up leaves them.  The fixture's harness
// stays off the front ports: the MAG properties here choose lane rates,
// some of them types mapping mode 0 refuses on a MAG.
class SerdesLanes : public tide::test::SimChips {
public:
    void up(u32 chip) { up_chip(chip); }

protected:
    SerdesLanes() : SimChips(2, 0) { ports_ = false; }
    static void prop(u32 chip, const std::string &key, i32 value)
    {
        ASSERT_EQ(shr_property_set(chip, key.c_str(), std::to_string(value).c_str()), 0);
    }
    void up_both()
    {
        for (u32 chip = 0; chip < 2; chip++) {
            prop(chip, "mag_interface_type_2", PORT_INTERFACE_10GBASE_R);
            up_chip(chip);
        }
    }
    static i32 speed(u32 chip, u32 s)
    {
        serdes_freq f{s, 20};
        return serdes_api_freq_set(chip, kLane, &f);
    }
    static i32 prbs(u32 chip, u32 dir)
    {
        serdes_prbs p{1, dir, SERDES_PRBS31, nullptr};
        return serdes_api_prbs_set(chip, kLane, &p);
    }
    // Lane 2 of chip 0 cabled to lane 2 of chip 1, PRBS31 from 0 to 1.
    static void cabled_prbs31()
    {
        ASSERT_EQ(tide_sim_serdes_link(0, kLane, 1, kLane), 0);
        ASSERT_EQ(prbs(0, SERDES_DIR_TX), 0);
        ASSERT_EQ(prbs(1, SERDES_DIR_RX), 0);
    }
    static i32 prbs_errors(u32 chip, u32 *count)
    {
        return serdes_api_prbs_counter_get(chip, kLane, count);
    }
};

// Each speed id, set at run time: the model's lane runs at its line rate on
// the PLL the id names, the driver reads the id back, and the lane's
// transmit emphasis is the property record of that rate.
TEST_F(SerdesLanes, EverySpeedReachesTheLaneWithTheEmphasisOfItsRate)
{
    prop(0, "mag_interface_type_2", PORT_INTERFACE_10GBASE_R);
    prop(0, "serdes_lane_pe_dist_speed", 1);
    // A record per rate, each with values of its own.
    for (u32 i = 0; i < 5; i++) {
        shr_property_pre_emphasis_t pe{};
        pe.type = SHR_PROPERTY_PE_TYPE_MPP;
        pe.u.mpp = {static_cast<u8>(40 + 5 * i), static_cast<u8>(1 + i), static_cast<u8>(10 + i)};
        ASSERT_EQ(shr_property_sds_alone_lane_pre_emphasis_set_with_attr(0, kLane, kRates[i].attr, &pe), 0);
    }
    up_chip(0);

    for (const RateCase &c : kRates) {
        ASSERT_EQ(speed(0, c.speed), 0) << c.speed;
        serdes_freq read{};
        ASSERT_EQ(serdes_api_freq_get(0, kLane, &read), 0);
        EXPECT_EQ(read.speed, c.speed);
        EXPECT_EQ(serdes_lane(0, kLane).rate_bps, c.bps) << c.speed;

        u32 i = 0;
        while (std::string(kRates[i].attr) != c.attr) {
            i++;
        }
        const u32 w = serdes_peek(0, kLane, kFfeCfg0);
        EXPECT_EQ(word_bits(w, 6, 0), 40 + 5 * i) << c.attr;
        EXPECT_EQ(word_bits(w, 13, 8), 1 + i) << c.attr;
        EXPECT_EQ(word_bits(w, 21, 16), 10 + i) << c.attr;
        EXPECT_EQ(word_bits(w, 31, 31), 1u) << c.attr;
    }
}

// Without emphasis by speed the lane keeps its own values (or what an
// operator set) through every rate change, whatever records the store
// holds; with it, a value a speed's record leaves unset (255) is the lane's
// own.
TEST_F(SerdesLanes, EmphasisOfTheLaneItselfAndPartlySetRecords)
{
    prop(0, "mag_interface_type_2", PORT_INTERFACE_10GBASE_R);
    prop(0, "serdes_tx_main_2", 66);
    prop(0, "serdes_tx_pre_2", 2);
    prop(0, "serdes_tx_post_2", 7);
    shr_property_pre_emphasis_t five{};
    five.type = SHR_PROPERTY_PE_TYPE_MPP;
    five.u.mpp = {80, 255, 255};
    ASSERT_EQ(shr_property_sds_alone_lane_pre_emphasis_set_with_attr(0, kLane, "5Gbps", &five), 0);
    up_chip(0);

    auto ffe = [] {
        const u32 w = serdes_peek(0, kLane, kFfeCfg0);
        return std::vector<u32>{word_bits(w, 6, 0), word_bits(w, 13, 8), word_bits(w, 21, 16)};
    };
    EXPECT_EQ(ffe(), (std::vector<u32>{66, 2, 7}));
    for (const RateCase &c : kRates) {
        ASSERT_EQ(speed(0, c.speed), 0) << c.speed;
        EXPECT_EQ(ffe(), (std::vector<u32>{66, 2, 7})) << c.attr;
    }
    serdes_emphasis mine{};
    mine.main = 50;
    mine.pre = 3;
    mine.post = 9;
    ASSERT_EQ(serdes_api_emphasis_set(0, kLane, &mine), 0);
    ASSERT_EQ(speed(0, SERDES_SPEED_5G_PLL0), 0);
    EXPECT_EQ(ffe(), (std::vector<u32>{50, 3, 9})) << "the operator's values stay";

    // By speed: the 5G record's main, the lane's own pre and post.
    prop(0, "serdes_lane_pe_dist_speed", 1);
    ASSERT_EQ(speed(0, SERDES_SPEED_10G_PLL0), 0);
    EXPECT_EQ(ffe(), (std::vector<u32>{66, 2, 7})) << "no 10G record";
    ASSERT_EQ(speed(0, SERDES_SPEED_5G_PLL1), 0);
    EXPECT_EQ(ffe(), (std::vector<u32>{80, 2, 7}));
}

// The receiver's analog defaults of each rate class, as the lanes hold them
// after the bring-up: the bypassed loop filter, capacitor and de-emphasis
// controls, the phase interpolator and the level shifter by rate, and the
// bias block the same on every lane.
TEST_F(SerdesLanes, BringUpLeavesTheAnalogDefaultsOfEachRate)
{
    struct Row {
        u64 bps;
        u32 cap_en, ctle_deq;                         // afe_cfg_n_1
        u32 pi_bypass, lf_en, lf_en_res;              // pi_cfg3
        u32 buf_rescal, pibuf_sr, bwctrl, pi_rescal;  // pi_cfg4
        u32 cmllp;                                    // afe_cfg_n_2
    };
    constexpr Row kRows[] = {
        {1250000000ull, 0, 0, 1, 1, 2, 0, 15, 3, 4, 1},
        {3125000000ull, 7, 0, 1, 1, 0, 0, 4, 1, 4, 1},
        {5000000000ull, 15, 0, 1, 1, 0, 0, 4, 0, 4, 1},
        {10312500000ull, 15, 15, 1, 0, 0, 7, 15, 3, 4, 0},
    };
    prop(0, "mag_interface_type_2", PORT_INTERFACE_1000BASE_X);
    prop(0, "mag_interface_type_3", PORT_INTERFACE_2500BASE_X);
    prop(0, "mag_interface_type_4", PORT_INTERFACE_QSGMII);
    prop(0, "mag_interface_type_5", PORT_INTERFACE_10GBASE_R);
    up_chip(0);

    for (u32 sid = 2; sid <= 5; sid++) {
        const Row &r = kRows[sid - 2];
        ASSERT_EQ(serdes_lane(0, sid).rate_bps, r.bps) << "lane " << sid;
        const u32 afe1 = serdes_peek(0, sid, 0x044);
        EXPECT_EQ(word_bits(afe1, 0, 0), 1u) << sid;   // rx_lf_en_bypass
        EXPECT_EQ(word_bits(afe1, 1, 1), 0u) << sid;   // rx_lf_en_val
        EXPECT_EQ(word_bits(afe1, 2, 2), 1u) << sid;   // vga_cap_en_bypass
        EXPECT_EQ(word_bits(afe1, 7, 4), r.cap_en) << sid;
        EXPECT_EQ(word_bits(afe1, 8, 8), 1u) << sid;   // rx_ctle_deq_enb_bypass
        EXPECT_EQ(word_bits(afe1, 15, 12), r.ctle_deq) << sid;
        const u32 pi3 = serdes_peek(0, sid, 0x38c), pi4 = serdes_peek(0, sid, 0x390);
        EXPECT_EQ(word_bits(pi3, 0, 0), r.pi_bypass) << sid;
        EXPECT_EQ(word_bits(pi3, 1, 1), r.lf_en) << sid;
        EXPECT_EQ(word_bits(pi3, 5, 4), r.lf_en_res) << sid;
        EXPECT_EQ(word_bits(pi4, 2, 0), r.buf_rescal) << sid;
        EXPECT_EQ(word_bits(pi4, 7, 4), r.pibuf_sr) << sid;
        EXPECT_EQ(word_bits(pi4, 9, 8), r.bwctrl) << sid;
        EXPECT_EQ(word_bits(pi4, 14, 12), r.pi_rescal) << sid;
        const u32 afe2 = serdes_peek(0, sid, 0x048);
        EXPECT_EQ(word_bits(afe2, 1, 0), 1u | r.cmllp << 1) << sid;
        const u32 ptat = serdes_peek(0, sid, 0x06c);
        EXPECT_EQ(word_bits(ptat, 14, 0), 0u) << sid;               // the three ctat biases
        EXPECT_EQ(word_bits(ptat, 29, 15), 0x7FFFu) << sid;         // the three ptat biases at 31
    }
}

// A cable joins two lanes, but the far checker locks only when both ends
// run at one rate; the PLL a rate comes from does not matter.
TEST_F(SerdesLanes, CabledLanesLockOnlyAtOneRate)
{
    up_both();
    ASSERT_NO_FATAL_FAILURE(cabled_prbs31());
    u32 count = 0;
    ASSERT_EQ(prbs_errors(1, &count), 0);
    EXPECT_EQ(count, 0u);

    ASSERT_EQ(speed(0, SERDES_SPEED_5G_PLL0), 0);
    EXPECT_EQ(prbs_errors(1, &count), SHR_E_FAIL);
    EXPECT_EQ(serdes_lane(1, kLane).cdr_locked, 0u);
    ASSERT_EQ(speed(1, SERDES_SPEED_5G_PLL1), 0);
    ASSERT_EQ(prbs(1, SERDES_DIR_RX), 0);
    ASSERT_EQ(prbs_errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(serdes_lane(1, kLane).cdr_locked, 1u);
}

// The transmit reset holds the lane's soft reset through its bypass: the
// control first, then the value low, high again, and the control last,
// with a settling wait after the low and at the end.
TEST_F(SerdesLanes, TransmitResetPulsesItsBypassInOrder)
{
    up_both();
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    const u64 before = sim_waited(0);
    ASSERT_EQ(serdes_api_serdes_reset(0, kLane, SERDES_RESET_TX), 0);
    EXPECT_EQ(sim_waited(0) - before, 2000u);

    const std::vector<u32> w = _writes_to(0, kLane, kBistCfg3);
    ASSERT_EQ(w.size(), 4u);
    // (control, value) of each write.
    EXPECT_EQ(word_bits(w[0], 0, 0), 1u);
    EXPECT_EQ(word_bits(w[1], 1, 0), 1u);  // value 0, control 1
    EXPECT_EQ(word_bits(w[2], 1, 0), 3u);
    EXPECT_EQ(word_bits(w[3], 1, 0), 2u);  // value 1, control back to 0
    EXPECT_EQ(serdes_lane(0, kLane).tx_on, 1u);
}

// Offset calibration of one lane: five rounds of the CTLE offset, each with
// the calibration mode and the engine's start and stop, then five rounds of
// the slicers; the mean of each channel's rounds goes to the channel words
// the report shows, and the bypass of the words is taken last.
TEST_F(SerdesLanes, OffsetCalibrationRunsItsRoundsAndWritesTheReportedWords)
{
    up_both();
    // The bring-up calibrated every lane, one after the other with one set
    // of tables.  The model reads a lane's own offset (-3 to 3 by lane,
    // channel and value), one more on odd rounds and nine more every fifth
    // round: the mean without the extremes lies within one of it.
    for (u32 sid = 0; sid < 8; sid++) {
        for (u32 ch = 0; ch < 4; ch++) {
            const u32 w = serdes_peek(0, sid, kOfsWords + 4 * ch);
            for (u32 k = 0; k < 5; k++) {
                const i32 own = static_cast<i32>((sid * 5 + ch * 3 + k) % 7) - 3;
                const i32 got = _slicer(w >> (6 * k) & 0x3F);
                EXPECT_GE(got, own - 1) << "lane " << sid << " channel " << ch << " value " << k;
                EXPECT_LE(got, own + 1) << "lane " << sid << " channel " << ch << " value " << k;
            }
        }
    }
    for (u32 sid : {0u, 3u, kLane, 5u}) {
        ASSERT_EQ(tide_sim_write_log_clear(0), 0);
        const u64 before = sim_waited(0);
        std::string report(SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN, '\0');
        ASSERT_EQ(serdes_api_ctle_offset_calibrate_result(0, sid, report.data(), report.size()), 0);
        u32 id = 0, words[4] = {};
        ASSERT_EQ(sscanf(report.c_str(), "serdes%u:\nCHA = 0x%x\nCHB = 0x%x\nCHC = 0x%x\nCHD = 0x%x", &id, &words[0],
                         &words[1], &words[2], &words[3]),
                  5)
            << report;
        EXPECT_EQ(id, sid);
        for (u32 ch = 0; ch < 4; ch++) {
            EXPECT_EQ(serdes_peek(0, sid, kOfsWords + 4 * ch), words[ch]) << "lane " << sid << " channel " << ch;
            const std::vector<u32> ww = _writes_to(0, sid, kOfsWords + 4 * ch);
            ASSERT_EQ(ww.size(), 1u);
        }
        // Ten rounds of 5000 and 10000 us.
        EXPECT_EQ(sim_waited(0) - before, 10u * 15000u) << "lane " << sid;

        u32 starts = 0, stops = 0;
        for (u32 v : _writes_to(0, sid, kCalKickA)) {
            starts += word_bits(v, 30, 23) == 255;
            stops += word_bits(v, 30, 23) == 0;
        }
        EXPECT_EQ(starts, 10u);
        EXPECT_EQ(stops, 10u);
        u32 kicks = 0;
        for (u32 v : _writes_to(0, sid, kCalKickB)) {
            kicks += word_bits(v, 26, 25) == 2;
        }
        EXPECT_EQ(kicks, 10u);
        u32 modes = 0;
        for (u32 v : _writes_to(0, sid, kEqCfg1)) {
            modes += word_bits(v, 13, 12) == 2;
        }
        EXPECT_EQ(modes, 5u) << "the calibration mode before each CTLE round";
        const std::vector<u32> byp = _writes_to(0, sid, kOfsBypass);
        ASSERT_EQ(byp.size(), 2u);
        EXPECT_EQ(word_bits(byp[0], 3, 0), 0u);
        EXPECT_EQ(word_bits(byp[1], 3, 0), 15u);
        EXPECT_EQ(word_bits(serdes_peek(0, sid, kCalKickB), 1, 1), 0u) << "the hold is released";
    }
}

// A lane that never finishes calibrating still ends its rounds: the engine
// reads nothing, every offset is 0, and the words say so.
TEST_F(SerdesLanes, CalibrationOfALaneThatNeverFinishesGivesZeroOffsets)
{
    up_both();
    ASSERT_EQ(tide_sim_serdes_fault_set(0, kLane, TIDE_SIM_SERDES_NEVER_CALIBRATE), 0);
    std::string report(SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN, '\0');
    ASSERT_EQ(serdes_api_ctle_offset_calibrate_result(0, kLane, report.data(), report.size()), 0);
    EXPECT_NE(report.find("CHA = 0x0\nCHB = 0x0\nCHC = 0x0\nCHD = 0x0\n"), std::string::npos) << report;
    // A buffer too short is refused before anything is written.
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    std::string shorter(SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN - 1, '\0');
    EXPECT_NE(serdes_api_ctle_offset_calibrate_result(0, kLane, shorter.data(), shorter.size()), 0);
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
}


// Every pattern the generator takes (PRBS7, 23 and 31) locks a cabled
// checker of the same pattern with no errors, and a checker of another
// pattern stays unlocked; the patterns the chip lacks are refused on both
// sides with their line and write nothing.
TEST_F(SerdesLanes, EveryPatternLocksOnlyOnItself)
{
    up_both();
    ASSERT_EQ(tide_sim_serdes_link(0, kLane, 1, kLane), 0);
    std::vector<u32> supported;
    for (u32 type = SERDES_PRBS7; type < SERDES_PAT_USER; type++) {
        serdes_prbs tx{1, SERDES_DIR_TX, type, nullptr};
        serdes_prbs rx{1, SERDES_DIR_RX, type, nullptr};
        ASSERT_EQ(tide_sim_write_log_clear(0), 0);
        const i32 rc = serdes_api_prbs_set(0, kLane, &tx);
        if (rc != 0) {
            EXPECT_EQ(rc, SHR_E_NOT_SUPPORT) << type;
            EXPECT_TRUE(Capture::has("chip_id:0 serdes_id:2 prbs_type:" + std::to_string(type) + " not support \n"));
            EXPECT_TRUE(tide::test::sim_writes(0).empty()) << type;
            EXPECT_EQ(serdes_api_prbs_set(1, kLane, &rx), SHR_E_NOT_SUPPORT) << type;
            continue;
        }
        ASSERT_EQ(serdes_api_prbs_set(1, kLane, &rx), 0) << type;
        u32 count = 1;
        ASSERT_EQ(prbs_errors(1, &count), 0) << type;
        EXPECT_EQ(count, 0u) << type;
        EXPECT_EQ(serdes_lane(1, kLane).prbs_locked, 1u) << type;
        if (!supported.empty()) {
            serdes_prbs other{1, SERDES_DIR_RX, supported.back(), nullptr};
            ASSERT_EQ(serdes_api_prbs_set(1, kLane, &other), 0);
            EXPECT_EQ(prbs_errors(1, &count), SHR_E_FAIL) << type << " sent, " << supported.back() << " checked";
        }
        supported.push_back(type);
    }
    EXPECT_EQ(supported, (std::vector<u32>{SERDES_PRBS7, SERDES_PRBS23, SERDES_PRBS31}));
}

// Each of the four loops reaches the model's lane as the loop it names and
// reads back; only the loop set is on, and disabling it takes it away.
TEST_F(SerdesLanes, EachLoopbackIsTheLoopItNames)
{
    up_both();
    struct Case {
        u32 type;
        bool near; // the transmitter into the lane's own receiver; else far
    } cases[] = {
        {SERDES_LOOP_SERIAL_TX2RX, true},
        {SERDES_LOOP_SERIAL_RX2TX, false},
        {SERDES_LOOP_PARALLEL_TX2RX, true},
        {SERDES_LOOP_PARALLEL_RX2TX, false},
    };
    for (const Case &c : cases) {
        serdes_loopback on{c.type, 1};
        ASSERT_EQ(serdes_api_loopback_set(0, kLane, &on), 0) << c.type;
        EXPECT_EQ(serdes_lane(0, kLane).near_loop, c.near ? 1u : 0u) << c.type;
        EXPECT_EQ(serdes_lane(0, kLane).far_loop, c.near ? 0u : 1u) << c.type;
        for (u32 t = 0; t < SERDES_LOOP_TYPES; t++) {
            serdes_loopback read{t, 7};
            ASSERT_EQ(serdes_api_loopback_get(0, kLane, &read), 0);
            EXPECT_EQ(read.enable, t == c.type ? 1u : 0u) << c.type << " set, " << t << " read";
        }
        serdes_loopback off{c.type, 0};
        ASSERT_EQ(serdes_api_loopback_set(0, kLane, &off), 0) << c.type;
        EXPECT_EQ(serdes_lane(0, kLane).near_loop + serdes_lane(0, kLane).far_loop, 0u) << c.type;
    }
}

// A transmitter powered down goes quiet on its cable: the far checker loses
// its lock until the transmitter is powered up again.
TEST_F(SerdesLanes, PoweredDownTransmitterLeavesTheFarCheckerUnlocked)
{
    up_both();
    ASSERT_NO_FATAL_FAILURE(cabled_prbs31());
    u32 count = 0;
    ASSERT_EQ(prbs_errors(1, &count), 0);

    serdes_power down{SERDES_POWER_TX, SERDES_POWER_DOWN};
    ASSERT_EQ(serdes_api_power_set(0, kLane, &down), 0);
    EXPECT_EQ(serdes_lane(0, kLane).tx_on, 0u);
    serdes_power read{SERDES_POWER_TX, 0};
    ASSERT_EQ(serdes_api_power_get(0, kLane, &read), 0);
    EXPECT_EQ(read.value, 1u);
    EXPECT_EQ(prbs_errors(1, &count), SHR_E_FAIL);

    serdes_power up{SERDES_POWER_TX, SERDES_POWER_UP};
    ASSERT_EQ(serdes_api_power_set(0, kLane, &up), 0);
    EXPECT_EQ(serdes_lane(0, kLane).tx_on, 1u);
    ASSERT_EQ(prbs_errors(1, &count), 0);
    EXPECT_EQ(count, 0u);
}

// A sibling chip (revision 0 kelpreef, 1 kelpreef2) beside an atolreef
// chip, in a build that carries only atolreef's SerDes driver: every lane
// setting and reading on the sibling answers -24 with the driver's line
// and leaves its registers alone, while the atolreef chip answers as usual.
void _sibling_refuses_every_lane_call(SerdesLanes &t, u32 revision)
{
    tide::test::kelpreef_identity_set(1, revision);
    t.up(0);
    t.up(1);
    serdes_freq freq{SERDES_SPEED_5G_PLL0, 20};
    serdes_pn pn{SERDES_DIR_TX, 1};
    serdes_emphasis emphasis{};
    serdes_prbs prbs{1, SERDES_DIR_TX, SERDES_PRBS31, nullptr};
    serdes_loopback loop{SERDES_LOOP_SERIAL_TX2RX, 1};
    serdes_power power{SERDES_POWER_TX, SERDES_POWER_DOWN};
    serdes_eye eye{};
    u32 count = 0;
    std::string text(SERDES_FULL_EYE_BUFF_LEN, '\0');
    const std::function<i32(u32)> calls[] = {
        [&](u32 c) { return serdes_api_freq_set(c, kLane, &freq); },
        [&](u32 c) { return serdes_api_freq_get(c, kLane, &freq); },
        [&](u32 c) { return serdes_api_pn_set(c, kLane, &pn); },
        [&](u32 c) { return serdes_api_emphasis_get(c, kLane, &emphasis); },
        [&](u32 c) { return serdes_api_prbs_set(c, kLane, &prbs); },
        [&](u32 c) { return serdes_api_prbs_insert_err_pkt(c, kLane, 3); },
        [&](u32 c) { return serdes_api_prbs_counter_clear(c, kLane); },
        [&](u32 c) { return serdes_api_serdes_reset(c, kLane, SERDES_RESET_TX); },
        [&](u32 c) { return serdes_api_loopback_set(c, kLane, &loop); },
        [&](u32 c) { return serdes_api_power_set(c, kLane, &power); },
        [&](u32 c) { return serdes_api_four_point_eye(c, kLane, &eye); },
        [&](u32 c) { return serdes_api_inner_register_set(c, kLane, 0x0a0, 1); },
        [&](u32 c) { return serdes_api_support_speed_get(c, kLane, text.data(), text.size()); },
    };
    for (size_t i = 0; i < std::size(calls); i++) {
        ASSERT_EQ(tide_sim_write_log_clear(1), 0);
        Capture::clear();
        EXPECT_EQ(calls[i](1), SHR_E_NOT_SUPPORT) << "call " << i;
        EXPECT_TRUE(Capture::has("no SerDes driver in this build")) << "call " << i;
        EXPECT_TRUE(tide::test::sim_writes(1).empty()) << "call " << i;
    }
    // The atolreef chip still answers (its counter read needs a checker).
    EXPECT_EQ(calls[0](0), 0);
    EXPECT_EQ(calls[4](0), 0);
    EXPECT_EQ(serdes_api_prbs_counter_get(0, kLane, &count), SHR_E_FAIL) << "nothing cabled";
}

TEST_F(SerdesLanes, KelpreefAnswersEveryLaneCallWithNotSupported)
{
    _sibling_refuses_every_lane_call(*this, 0);
}

TEST_F(SerdesLanes, Kelpreef2AnswersEveryLaneCallWithNotSupported)
{
    _sibling_refuses_every_lane_call(*this, 1);
}

} // namespace
