// The atolreef MAC and PCS driver against the chip model's registers: the
// bring-up phases, the interface sequence and its refusals, enable and
// forced link, auto-negotiation sources and pause resolution, speed rules,
// loopback and reset orders, and the counters with their store.
#include <gtest/gtest.h>
#include <tide/tide.h>

#include <string>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/driver/port/csl_atolreef_port_int.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "dpl/reef/port/dpl_reef_port.h"
#include "app/diag_shell/shell/server/user/cli_server.h"
#include "support/cli_lines.h"
#include "support/mode_cli.h"
#include "support/fixture.h"

using tide::test::Capture;

namespace {

constexpr uint32_t kLsw = 4;

void _prop(const std::string &key, i32 value)
{
    ASSERT_EQ(shr_property_set(0, key.c_str(), std::to_string(value).c_str()), 0);
}

uint32_t _addr(u32 reg, u32 index)
{
    const cib_reg_info *info = csl_reef_reg_info_get(0, reg);
    return info != nullptr && index < info->a ? info->addr[index] : 0;
}

// A field of a register instance as the model holds it.
u32 _peek(u32 reg, u32 index, u32 field)
{
    uint32_t word = 0;
    EXPECT_EQ(tide_sim_reg_peek(0, kLsw, _addr(reg, index), &word), 0);
    u8 data[4] = {static_cast<u8>(word), static_cast<u8>(word >> 8), static_cast<u8>(word >> 16),
                  static_cast<u8>(word >> 24)};
    u32 v = 0;
    EXPECT_EQ(csl_reg_field32_get_from_data(0, data, reg, &v, field), 0);
    return v;
}

void _poke_field(u32 reg, u32 index, u32 field, u32 value)
{
    uint32_t word = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, kLsw, _addr(reg, index), &word), 0);
    u8 data[4] = {static_cast<u8>(word), static_cast<u8>(word >> 8), static_cast<u8>(word >> 16),
                  static_cast<u8>(word >> 24)};
    ASSERT_EQ(csl_reg_field32_set_to_data(0, data, reg, value, field), 0);
    ASSERT_EQ(tide_sim_reg_poke(0, kLsw, _addr(reg, index), data[0] | data[1] << 8 | data[2] << 16 | data[3] << 24), 0);
}

// The LSW addresses written since the log was cleared, in order.
std::vector<uint32_t> _written()
{
    std::vector<uint32_t> out;
    for (const tide_sim_write &w : tide::test::sim_writes(0)) {
        if (w.bar == kLsw) {
            out.push_back(w.addr);
        }
    }
    return out;
}

// The last write of `addr`, -1 for none.
long _last(const std::vector<uint32_t> &v, uint32_t addr)
{
    for (size_t i = v.size(); i > 0; i--) {
        if (v[i - 1] == addr) {
            return static_cast<long>(i - 1);
        }
    }
    return -1;
}

// The first write of `addr`, -1 for none.
long _pos(const std::vector<uint32_t> &v, uint32_t addr)
{
    for (size_t i = 0; i < v.size(); i++) {
        if (v[i] == addr) {
            return static_cast<long>(i);
        }
    }
    return -1;
}

// One chip brought up with mapping mode 0 and, from the properties, MAG 0
// as SGMII (port 0), MAG 2 as SGMII_8P (ports 8 to 15), MAG 4 as
// 10GBASE_R (port 24) and MAG 6 as 1000BASE_X (port 25); the port
// counters are read by the tests only.  The other MAGs stay without a type
// (the fixture's harness does not bring the front ports up).
class PortMac : public tide::test::SimChips {
protected:
    PortMac() : SimChips(1, 0) { ports_ = false; }
    void SetUp() override
    {
        SimChips::SetUp();
        _prop("map_mode", 0);
        // The counter thread stays off the port counters: the reads of the
        // tests are the only ones.
        _prop("counter_enable_port_stat", 0);
        _prop("mag_interface_type_0", PORT_INTERFACE_SGMII);
        _prop("mag_interface_type_2", PORT_INTERFACE_SGMII_8P);
        _prop("mag_interface_type_4", PORT_INTERFACE_10GBASE_R);
        _prop("mag_interface_type_6", PORT_INTERFACE_1000BASE_X);
        up_chip(0);
        Capture::clear();
        tide_sim_write_log_clear(0);
    }
};

bool _active(u32 lport)
{
    port_config c{};
    EXPECT_EQ(port_api_config_get(0, &c), 0);
    return tide::port::pbmp_test(c.pbmp[PORT_CONFIG_ACTIVE], lport);
}

// ---- bring-up ----------------------------------------------------------------------------------

TEST_F(PortMac, BringUpProgramsTheMagsOfTheProperties)
{
    for (u32 p : {0u, 8u, 15u, 24u, 25u}) {
        EXPECT_TRUE(_active(p)) << p;
    }
    for (u32 p : {1u, 4u, 16u, 26u, 27u}) {
        EXPECT_FALSE(_active(p)) << p;
    }
    EXPECT_EQ(_peek(cib_mag_glue_glue_mode_cfg, 0, cib_f_glue_mode_cfg), 0u);
    EXPECT_EQ(_peek(cib_pcs_glb_protocol_type, 2, cib_f_protocol_type), 1u);
    EXPECT_EQ(_peek(cib_pcs_glb_protocol_type, 2, cib_f_ch_num), 3u);
    EXPECT_EQ(_peek(cib_pcs_glb_protocol_type, 4, cib_f_protocol_type), 8u);
    EXPECT_EQ(_peek(cib_pcs_glb_protocol_type, 4, cib_f_an_feature), 0u);
    // The band of the clock-valid rate: SGMII on MAG 0 (2/1, 8B/10B) and
    // 10GBASE_R on MAG 4 (5/4, 64B/66B), one per mille either side.
    EXPECT_EQ(_peek(cib_pcs_glb_rx_clk_vld_cfg, 0, cib_f_rx_clk_add_max), 10250u);
    EXPECT_EQ(_peek(cib_pcs_glb_rx_clk_vld_cfg, 0, cib_f_rx_clk_add_min), 10230u);
    EXPECT_EQ(_peek(cib_pcs_glb_tx_clk_vld_cfg, 4, cib_f_tx_clk_add_max), 64064u);
    EXPECT_EQ(_peek(cib_pcs_glb_tx_clk_vld_cfg, 4, cib_f_tx_clk_add_min), 63936u);
    // Phase 2 opened the MACs of the ports in use, and only those.
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 8, cib_f_tx_en), 1u);
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 8, cib_f_rx_en), 1u);
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 1, cib_f_tx_en), 0u);
    // First settings from the defaults of the type.
    u32 speed = 0, an = 9;
    EXPECT_EQ(port_api_speed_get(0, 24, &speed), 0);
    EXPECT_EQ(speed, 10000u);
    EXPECT_EQ(port_api_autoneg_get(0, 24, &an), 0);
    EXPECT_EQ(an, 0u);
    EXPECT_EQ(port_api_autoneg_get(0, 8, &an), 0);
    EXPECT_EQ(an, 1u);
    u32 len = 0;
    EXPECT_EQ(port_api_max_frame_get(0, 8, PORT_FRAME_RX, &len), 0);
    EXPECT_EQ(len, 9600u);
    u8 ifg = 0;
    EXPECT_EQ(port_api_ifg_get(0, 25, &ifg), 0);
    EXPECT_EQ(ifg, 12u);
}

// The clock's pulse on general register 0x47030 (space 3): value 80 in bits
// 8 to 0, bit 20 set then cleared.
TEST_F(PortMac, ClockPulseAndItsLock)
{
    down_chip(0);
    tide_sim_write_log_clear(0);
    up_chip(0);
    std::vector<uint64_t> clk;
    for (const tide_sim_write &w : tide::test::sim_writes(0)) {
        if (w.bar == 3 && w.addr == 0x47030) {
            clk.push_back(w.value);
        }
    }
    ASSERT_EQ(clk.size(), 3u);
    EXPECT_EQ(clk[0] & 0x1FFu, 80u);
    EXPECT_EQ(clk[0] & (1u << 20), 0u);
    EXPECT_EQ(clk[1], clk[0] | (1u << 20));
    EXPECT_EQ(clk[2], clk[0]);
}

class PortMacNoClock : public tide::test::SimChips {
protected:
    PortMacNoClock() : SimChips(1, 0) {}
};

TEST_F(PortMacNoClock, PhaseOneFailsWhenTheClockNeverLocks)
{
    ASSERT_EQ(tide_sim_clk400_never_lock_set(0, 1), 0);
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    Capture::clear();
    EXPECT_EQ(dpl_reef_port_hw_phase1_init(0), -9);
    EXPECT_TRUE(Capture::has("chip_id0 400M clk init fail! \n"));
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

// ---- the interface sequence and its refusals -----------------------------------------------------

TEST_F(PortMac, InterfaceRefusalsWriteNothing)
{
    port_interface ten{PORT_INTERFACE_10GBASE_R, 1};
    EXPECT_EQ(port_api_interface_set(0, 0, &ten), -24);
    EXPECT_TRUE(Capture::has("under map_cfg0 not support this interface type"));
    port_interface wrong_num{PORT_INTERFACE_SGMII_4P, 2};
    EXPECT_EQ(port_api_interface_set(0, 0, &wrong_num), -4);
    EXPECT_TRUE(Capture::has("interface_type4 not support port_num2"));
    EXPECT_TRUE(_written().empty());
    port_interface now{};
    EXPECT_EQ(port_api_interface_get(0, 0, &now), 0);
    EXPECT_EQ(now.interface_type, static_cast<u32>(PORT_INTERFACE_SGMII));
}

TEST_F(PortMac, MappingModeOneRefusals)
{
    ASSERT_EQ(port_api_map_mode_set(0, 1), 0);
    EXPECT_EQ(_peek(cib_mag_glue_glue_mode_cfg, 0, cib_f_glue_mode_cfg), 1u);
    EXPECT_EQ(_peek(cib_sch_sch_global_cfg, 0, cib_f_lane_scene), 1u);
    // Every type fell back to none.
    EXPECT_FALSE(_active(0));
    port_interface eight{PORT_INTERFACE_SGMII_8P, 8};
    EXPECT_EQ(port_api_interface_set(0, 8, &eight), -24);
    port_interface qx{PORT_INTERFACE_10G_QXGMII, 4};
    for (u32 first : {0u, 4u, 8u, 12u, 24u, 26u, 16u, 20u}) {
        EXPECT_EQ(port_api_interface_set(0, first, &qx), -24) << first;
    }
    EXPECT_EQ(port_api_map_mode_set(0, 2), -4);
    port_interface four{PORT_INTERFACE_QSGMII, 4};
    EXPECT_EQ(port_api_interface_set(0, 8, &four), 0);
    for (u32 p = 8; p < 12; p++) {
        EXPECT_TRUE(_active(p)) << p;
    }
}

// After bring-up a change runs the whole sequence: the MAG stops before
// its PCS is reset and reprogrammed, and its MACs open again at the end.
TEST_F(PortMac, InterfaceChangeOrder)
{
    port_interface x{PORT_INTERFACE_1000BASE_X, 1};
    ASSERT_EQ(port_api_interface_set(0, 8, &x), 0);
    const auto w = _written();
    const long gate = _pos(w, _addr(cib_lsw_hreg_clk_gating_en, 0));
    const long proto = _pos(w, _addr(cib_pcs_glb_protocol_type, 2));
    const long clk = _pos(w, _addr(cib_pcs_glb_rx_clk_vld_cfg, 2));
    const long enable = _last(w, _addr(cib_mac_port_enable_cfg, 8));
    ASSERT_GE(gate, 0);
    EXPECT_LT(gate, clk);
    EXPECT_LT(clk, proto);
    EXPECT_LT(proto, enable);
    EXPECT_TRUE(_active(8));
    EXPECT_FALSE(_active(9));
    EXPECT_EQ(_peek(cib_pcs_glb_protocol_type, 2, cib_f_protocol_type), 0u);
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 8, cib_f_tx_en), 1u);
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 9, cib_f_tx_en), 0u);
}

// ---- speed, duplex, auto-negotiation ---------------------------------------------------------------

TEST_F(PortMac, SpeedRulesOf2G5Sgmii)
{
    port_interface x{PORT_INTERFACE_2G5_SGMII, 1};
    ASSERT_EQ(port_api_interface_set(0, 0, &x), 0);
    ASSERT_EQ(port_api_autoneg_set(0, 0, 0), 0);
    EXPECT_EQ(port_api_speed_set(0, 0, 1000), -4);
    EXPECT_TRUE(Capture::has("current speed  1000M  can not support under current protocal interface"));
    u32 speed = 0;
    EXPECT_EQ(port_api_speed_set(0, 0, 2500), 0);
    EXPECT_EQ(port_api_speed_get(0, 0, &speed), 0);
    EXPECT_EQ(speed, 2500u);
    EXPECT_EQ(_peek(cib_pcs_8b10b_pcs_dup_mode, 0, cib_f_pcs_speed_cfg) & 3u, 2u);
    EXPECT_EQ(port_api_speed_set(0, 0, 100), 0);
    EXPECT_EQ(port_api_speed_get(0, 0, &speed), 0);
    EXPECT_EQ(speed, 100u);
    // Half duplex: refused on 1000BASE_X, taken on SGMII.
    EXPECT_EQ(port_api_duplex_set(0, 25, 0), -4);
    EXPECT_EQ(port_api_duplex_set(0, 0, 0), 0);
    EXPECT_EQ(_peek(cib_mac_port_half_cfg, 0, cib_f_half_en), 1u);
}

TEST_F(PortMac, AutonegSourcesAndForcedUp)
{
    // SGMII on port 0 (MAC 0 of MAG 0): speed and duplex from negotiation.
    ASSERT_EQ(port_api_autoneg_set(0, 0, 1), 0);
    EXPECT_EQ(_peek(cib_pcs_8b10b_pcs_dup_mode, 0, cib_f_pcs_speed_sel) & 1u, 0u);
    EXPECT_EQ(_peek(cib_mac_port_half_cfg, 0, cib_f_half_ability_sel), 1u);
    EXPECT_EQ(_peek(cib_mac_port_pause_cfg, 0, cib_f_pause_ability_sel), 0u);
    const u32 ch = csl_atolreef_pcs_channel(0, 0);
    EXPECT_EQ(_peek(cib_pcs_an_pcs_an_ctrl_2, ch, cib_f_an_enable), 1u);
    EXPECT_EQ(_peek(cib_pcs_an_pcs_an_ctrl_2, ch, cib_f_phy_link_en), 1u);
    // The partner offers 100M half.
    tide_sim_mac_partner slow{1, 100, 0, 0};
    ASSERT_EQ(tide_sim_mac_partner_set(0, 0, &slow), 0);
    ASSERT_EQ(port_api_autoneg_restart(0, 0), 0);
    u32 speed = 0, duplex = 9;
    EXPECT_EQ(port_api_speed_get(0, 0, &speed), 0);
    EXPECT_EQ(speed, 100u);
    EXPECT_EQ(port_api_duplex_get(0, 0, &duplex), 0);
    EXPECT_EQ(duplex, 0u);
    // Forced up turns negotiation off and refuses it back.
    ASSERT_EQ(port_api_force_set(0, 0, PORT_LINK_FORCED, PORT_LINK_UP), 0);
    EXPECT_EQ(_peek(cib_pcs_an_pcs_an_ctrl_2, ch, cib_f_an_enable), 0u);
    EXPECT_EQ(port_api_autoneg_set(0, 0, 1), -16);
    EXPECT_TRUE(Capture::has("force up mode not support an enable!"));
    // Normal link mode restores the last requested negotiation.
    ASSERT_EQ(port_api_force_set(0, 0, PORT_LINK_NORMAL, PORT_LINK_DOWN), 0);
    EXPECT_EQ(_peek(cib_pcs_an_pcs_an_ctrl_2, ch, cib_f_an_enable), 1u);
    u32 mode = 9, status = 9;
    EXPECT_EQ(port_api_force_get(0, 0, &mode, &status), 0);
    EXPECT_EQ(mode, 0u);
    // SGMII_8P takes its speed from negotiation, not its duplex.
    ASSERT_EQ(port_api_autoneg_set(0, 9, 1), 0);
    EXPECT_EQ((_peek(cib_pcs_8b10b_pcs_dup_mode, 2, cib_f_pcs_speed_sel) >> 1) & 1u, 0u);
    EXPECT_EQ(_peek(cib_mac_port_half_cfg, 9, cib_f_half_ability_sel), 0u);
    // 10GBASE_R negotiates nothing.
    EXPECT_EQ(port_api_autoneg_set(0, 24, 1), -4);
}

TEST_F(PortMac, PauseResolution)
{
    // 1000BASE_X on port 25: pause from negotiation.
    ASSERT_EQ(port_api_autoneg_set(0, 25, 1), 0);
    EXPECT_EQ(_peek(cib_mac_port_pause_cfg, 25, cib_f_pause_ability_sel), 1u);
    struct row {
        u32 advert; // port_ability pause
        u32 remote;
        u32 tx;
        u32 rx;
    };
    const row rows[] = {
        {PAUSE_NONE, 3, 0, 0},  {PAUSE_SYMM, 1, 1, 1},  {PAUSE_SYMM, 2, 0, 0},  {PAUSE_ASYMM, 3, 1, 0},
        {PAUSE_ASYMM, 1, 0, 0}, {PAUSE_BOTH, 3, 1, 1},  {PAUSE_BOTH, 2, 0, 1},  {PAUSE_BOTH, 0, 0, 0},
    };
    for (const row &r : rows) {
        port_ability a{};
        a.pause = r.advert;
        ASSERT_EQ(port_api_advert_ability_set(0, 25, &a), 0);
        port_ability back{};
        EXPECT_EQ(port_api_advert_ability_get(0, 25, &back), 0);
        EXPECT_EQ(back.pause, r.advert);
        tide_sim_mac_partner partner{1, 1000, 1, r.remote};
        ASSERT_EQ(tide_sim_mac_partner_set(0, 25, &partner), 0);
        ASSERT_EQ(port_api_autoneg_restart(0, 25), 0);
        u32 tx = 9, rx = 9;
        EXPECT_EQ(port_api_pause_get(0, 25, PORT_PAUSE_TX_EN, &tx), 0);
        EXPECT_EQ(port_api_pause_get(0, 25, PORT_PAUSE_RX_EN, &rx), 0);
        EXPECT_EQ(tx, r.tx) << r.advert << " " << r.remote;
        EXPECT_EQ(rx, r.rx) << r.advert << " " << r.remote;
    }
    // Pause from negotiation only where the type negotiates it.
    u32 on = 1;
    EXPECT_EQ(port_api_cfg_control_set(0, 8, PORT_CFG_PAUSE_FROM_AN, &on), -24);
}

// ---- enable, loopback, faults, reset -----------------------------------------------------------------

TEST_F(PortMac, DisabledPortIsForcedDownWithItsMacOn)
{
    ASSERT_EQ(port_api_enable_set(0, 10, 0), 0);
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 10, cib_f_tx_en), 1u);
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 10, cib_f_rx_en), 1u);
    EXPECT_EQ((_peek(cib_pcs_8b10b_force_link_set, 2, cib_f_force_link_en) >> 2) & 1u, 1u);
    EXPECT_EQ((_peek(cib_pcs_8b10b_force_link_set, 2, cib_f_force_err_kd) >> 2) & 1u, 1u);
    EXPECT_EQ((_peek(cib_pcs_8b10b_force_link_set, 2, cib_f_force_link_cfg) >> 2) & 1u, 0u);
    u32 en = 9;
    EXPECT_EQ(port_api_enable_get(0, 10, &en), 0);
    EXPECT_EQ(en, 0u);
    ASSERT_EQ(port_api_enable_set(0, 10, 1), 0);
    EXPECT_EQ((_peek(cib_pcs_8b10b_force_link_set, 2, cib_f_force_link_en) >> 2) & 1u, 0u);
    // 64B/66B also inserts a remote fault while disabled.
    ASSERT_EQ(port_api_enable_set(0, 24, 0), 0);
    EXPECT_EQ(_peek(cib_pcs_6466b_fault_ins_ctrl, 2, cib_f_fault_ins_en) & 1u, 1u);
    EXPECT_EQ(_peek(cib_pcs_6466b_fault_ins_ctrl, 2, cib_f_fault_ins_type) & 3u, 1u);
    ASSERT_EQ(port_api_enable_set(0, 24, 1), 0);
    EXPECT_EQ(_peek(cib_pcs_6466b_fault_ins_ctrl, 2, cib_f_fault_ins_en) & 1u, 0u);
    // Faults are a 64B/66B matter.
    u32 on = 1;
    EXPECT_EQ(port_api_cfg_control_set(0, 8, PORT_CFG_FAULT_RESPONSE_TYPE0, &on), -4);
    u32 fault = 9;
    EXPECT_EQ(port_api_fault_get(0, 24, &fault), 0);
    EXPECT_EQ(fault, 0u);
}

TEST_F(PortMac, LoopbackAndRangeChecks)
{
    port_loopback in{PORT_LOOP_MAC_INNER, 1};
    ASSERT_EQ(port_api_loopback_set(0, 8, &in), 0);
    port_loopback back{};
    EXPECT_EQ(port_api_loopback_get(0, 8, &back), 0);
    EXPECT_EQ(back.loop_mode, static_cast<u32>(PORT_LOOP_MAC_INNER));
    EXPECT_EQ(back.transparent, 1u);
    u32 mode = 0, status = 0;
    EXPECT_EQ(port_api_force_get(0, 8, &mode, &status), 0);
    EXPECT_EQ(mode, 1u);
    EXPECT_EQ(status, 1u);
    tide_sim_write_log_clear(0);
    EXPECT_EQ(port_api_loopback_set(0, 8, &in), 0);
    EXPECT_TRUE(_written().empty());
    port_loopback none{PORT_LOOP_NONE, 0};
    ASSERT_EQ(port_api_loopback_set(0, 8, &none), 0);
    EXPECT_EQ(port_api_loopback_get(0, 8, &back), 0);
    EXPECT_EQ(back.loop_mode, static_cast<u32>(PORT_LOOP_NONE));
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 8, cib_f_tx_en), 1u);
    // Values out of range change nothing.
    tide_sim_write_log_clear(0);
    EXPECT_EQ(port_api_max_frame_set(0, 8, PORT_FRAME_TX, 511), -4);
    EXPECT_EQ(port_api_max_frame_set(0, 8, PORT_FRAME_TX, 16001), -4);
    EXPECT_EQ(port_api_min_frame_set(0, 8, PORT_FRAME_RX, 121), -4);
    EXPECT_EQ(port_api_ifg_set(0, 8, 3), -4);
    EXPECT_EQ(port_api_crc_set(0, 8, 4, 1), -4);
    u32 v = 1;
    EXPECT_EQ(port_api_cfg_control_set(0, 8, 77, &v), -4);
    EXPECT_TRUE(_written().empty());
    EXPECT_EQ(port_api_dic_mode_set(0, 8, 1), -24);
    EXPECT_EQ(port_api_vlan_pause_set(0, 8, 0, 1), -24);
    u8 mac[6] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    u8 got[6] = {};
    EXPECT_EQ(port_api_pause_addr_set(0, 8, mac), 0);
    EXPECT_EQ(_peek(cib_mac_port_misc_cfg0, 8, cib_f_pause_smac_high), 0x0011u);
    EXPECT_EQ(_peek(cib_mac_port_misc_cfg1, 8, cib_f_pause_smac_low), 0x22334455u);
    EXPECT_EQ(port_api_pause_addr_get(0, 8, got), 0);
    EXPECT_EQ(std::vector<u8>(got, got + 6), std::vector<u8>(mac, mac + 6));
}

TEST_F(PortMac, PortResetHoldAndReleaseOrders)
{
    const uint32_t an = _addr(cib_pcs_an_an_rst, csl_atolreef_pcs_channel(2, 1));
    const uint32_t pcs = _addr(cib_pcs_8b10b_rst_pcs, 2);
    const uint32_t mac = _addr(cib_mac_port_rst_cfg, 9);
    const uint32_t map_rst = _addr(cib_mag_map_port_rst, 0);
    const uint32_t map_clr = _addr(cib_mag_map_port_clr, 0);
    const uint32_t cnt = _addr(cib_pcs_glb_ch_cnt_clr, 2);
    ASSERT_EQ(port_api_reset(0, 9, 1), 0);
    auto w = _written();
    EXPECT_LT(_pos(w, an), _pos(w, pcs));
    EXPECT_LT(_pos(w, pcs), _pos(w, mac));
    EXPECT_LT(_pos(w, mac), _pos(w, map_rst));
    EXPECT_LT(_pos(w, map_rst), _pos(w, map_clr));
    EXPECT_LT(_pos(w, map_clr), _pos(w, cnt));
    EXPECT_EQ((_peek(cib_mag_map_port_rst, 0, cib_f_port_rst) >> 9) & 1u, 1u);
    tide_sim_write_log_clear(0);
    ASSERT_EQ(port_api_reset(0, 9, 0), 0);
    w = _written();
    EXPECT_LT(_pos(w, map_rst), _pos(w, mac));
    EXPECT_LT(_pos(w, mac), _pos(w, pcs));
    EXPECT_LT(_pos(w, pcs), _pos(w, an));
    EXPECT_LT(_pos(w, an), _pos(w, map_clr));
    EXPECT_LT(_pos(w, map_clr), _pos(w, cnt));
    EXPECT_EQ(_peek(cib_mag_map_port_rst, 0, cib_f_port_rst), 0u);
    EXPECT_EQ(_peek(cib_mac_port_rst_cfg, 9, cib_f_mac_rst), 0u);
}

// ---- counters ----------------------------------------------------------------------------------------

void _mib_poke(u32 tab_lo, u32 tab_hi, u32 lport, u64 value)
{
    const cib_tab_info *lo = csl_reef_tab_info_get(0, tab_lo);
    const cib_tab_info *hi = csl_reef_tab_info_get(0, tab_hi);
    ASSERT_NE(lo, nullptr);
    ASSERT_NE(hi, nullptr);
    ASSERT_EQ(tide_sim_reg_poke(0, kLsw, lo->addr[lport], static_cast<u32>(value)), 0);
    ASSERT_EQ(tide_sim_reg_poke(0, kLsw, hi->addr[lport], static_cast<u32>(value >> 32)), 0);
}

TEST_F(PortMac, CountersFeedTheStoreInBothClearModes)
{
    constexpr u32 kRx64 = 12;
    const u64 big = (u64{3} << 32) | 5;
    // mib_clr_mode 1: the MAC keeps its total, a read replaces the store.
    _poke_field(cib_mac_port_mib_cfg, 8, cib_f_mib_clr_mode, 1);
    _mib_poke(cib_mac_mib_rx_64_l, cib_mac_mib_rx_64_h, 8, big);
    u64 v = 0;
    EXPECT_EQ(port_api_counter_get(0, 8, kRx64, &v), 0);
    EXPECT_EQ(v, big);
    EXPECT_EQ(port_api_counter_get(0, 8, kRx64, &v), 0);
    EXPECT_EQ(v, big);
    tide_sim_write_log_clear(0);
    EXPECT_EQ(port_api_counter_clean(0, 8), 0);
    const auto w = _written();
    ASSERT_EQ(w.size(), 2u); // clr_cnt_cfg pulsed 1 then 0
    EXPECT_EQ(w[0], _addr(cib_mac_port_clr_cnt_cfg, 8));
    // mib_clr_mode 0: a read clears the MAC, the store adds.
    _poke_field(cib_mac_port_mib_cfg, 8, cib_f_mib_clr_mode, 0);
    _mib_poke(cib_mac_mib_rx_64_l, cib_mac_mib_rx_64_h, 8, 7);
    EXPECT_EQ(port_api_counter_get(0, 8, kRx64, &v), 0);
    EXPECT_EQ(v, big + 7);
    // An item without hardware reads its stored value, 0 here.
    EXPECT_EQ(port_api_counter_get(0, 8, 20, &v), 0);
    EXPECT_EQ(v, 0u);
    EXPECT_EQ(port_api_counter_get(0, 8, 104, &v), -4);
    EXPECT_EQ(port_api_counter_clean(0, 1), -24); // not in use
}

TEST_F(PortMac, CounterWithoutStore)
{
    ASSERT_EQ(_csl_atolreef_port_counter_db_free(0), 0);
    _mib_poke(cib_mac_mib_tx_total_pkt_l, cib_mac_mib_tx_total_pkt_h, 8, 42);
    u64 v = 9;
    EXPECT_EQ(port_api_counter_get(0, 8, 53, &v), 0);
    EXPECT_EQ(v, 42u);
    EXPECT_EQ(port_api_counter_get(0, 8, 20, &v), 0);
    EXPECT_EQ(v, 0u);
    EXPECT_EQ(_csl_atolreef_port_counter_db_malloc(0), 0);
}

TEST_F(PortMac, Diagnostics)
{
    char text[2048] = {};
    port_info_buff b{text, sizeof(text), 0};
    EXPECT_EQ(port_api_basic_info_get(0, 9, &b), 0);
    EXPECT_NE(std::string(text).find("9         SGMII_8P"), std::string::npos) << text;
    b.used = 0;
    EXPECT_EQ(port_api_alm_info_get(0, 24, 0, &b), 0);
    EXPECT_NE(std::string(text).find("64b66b alm:"), std::string::npos) << text;
    char tiny[8] = {};
    port_info_buff t{tiny, sizeof(tiny), 0};
    EXPECT_EQ(port_api_alm_info_get(0, 24, 0, &t), 0);
    EXPECT_EQ(t.used, 7u);
}

// ---- the port mode of the shell on the driver ----------------------------------------------------

class PortMacShell : public tide::test::ShellModeOver<PortMac> {
protected:
    PortMacShell() : ShellModeOver("port") {}
};

TEST_F(PortMacShell, CommandsReachTheDriver)
{
    EXPECT_EQ(run("port 0 speed 1G"), 0) << out_;
    EXPECT_EQ(_peek(cib_pcs_8b10b_pcs_dup_mode, 0, cib_f_pcs_speed_cfg) & 3u, 2u);
    EXPECT_EQ(run("port 24 speed 1G"), -4);
    EXPECT_TRUE(said(" port 24: call port_api_speed_set failed, Invalid parameter\n")) << out_;
    EXPECT_EQ(run("port 9-10 power-down"), 0) << out_;
    for (u32 mac : {1u, 2u}) {
        EXPECT_EQ((_peek(cib_pcs_8b10b_force_link_set, 2, cib_f_force_err_kd) >> mac) & 1u, 1u) << mac;
    }
    EXPECT_EQ(_peek(cib_mac_port_enable_cfg, 9, cib_f_rx_en), 1u);
    EXPECT_EQ(run("port 9 link-mode force-mode up"), 0) << out_;
    EXPECT_EQ(run("port 9 autoneg-en enable"), -16);
    EXPECT_EQ(run("port 0 protocol-cfg type 10Gbase-r"), -24);
    tide_sim_write_log_clear(0);
    EXPECT_EQ(run("port 0 protocol-cfg type 10Gbase-r"), -24);
    EXPECT_TRUE(_written().empty());
}

} // namespace
