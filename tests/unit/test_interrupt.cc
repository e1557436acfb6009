// The interrupt family's calls on the chip model: the tables' totals, the
// actions and reads with their wild cards and refusals, the names, counts
// and debug registers, the port indexes, the hardware start, the thread
// and the sibling chips.
#include <dirent.h>
#include <gtest/gtest.h>
#include <tide/interrupt.h>
#include <tide/property.h>

#include <cstring>
#include <fstream>
#include <set>
#include <string>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "dpl/reef/interrupt/dpl_reef_interrupt.h"
#include "support/fixture.h"
#include "support/wait.h"
#include "tide_int.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

constexpr intr_module kArl = {INTR_MOD_ARL, 0};
constexpr intr_module kTop = {INTR_MOD_LSW_HREG, 0}; // lsw_int_status: no mask register

u32 _reg(const cib_reg_info &r, u32 instance = 0)
{
    u32 v = 0;
    tide_sim_reg_peek(0, 4, r.addr[instance], &v);
    return v;
}

std::vector<tide_sim_write> _writes()
{
    return tide::test::sim_writes(0);
}

void _nop(u32, intr_module, intr_type) {}

class Intr : public SimChips {
protected:
    Intr() : SimChips(1, 1) {}
};

TEST_F(Intr, TheTablesHoldTheChipsTotals)
{
    u32 types = 0, ecc = 0, modules = 0;
    for (u32 m = 0; m < INTR_MODULE_COUNT; m++) {
        u32 subids = 0, n = 0;
        ASSERT_EQ(interrupt_api_subid_types_get(0, m, &subids), 0);
        modules += subids != 0;
        for (u32 s = 0; s < subids; s++) {
            ASSERT_EQ(interrupt_api_onesubid_types_get(0, m, s, &n), 0);
            types += n;
        }
        ASSERT_EQ(interrupt_api_ecc_module_ecc_types_get(0, m, &n), 0);
        ecc += n;
    }
    EXPECT_EQ(types, 903u);
    EXPECT_EQ(modules, 38u);
    EXPECT_GE(ecc, 75u + 10 + 48);
    // The L2 events of the public header are the chip's.
    char name[32];
    intr_debug d = {name, sizeof(name), 1};
    const std::pair<u32, const char *> events[] = {
        {INTR_ARL_LEARN, "lrn_event"}, {INTR_ARL_AGE, "age_event"}, {INTR_ARL_MOVE, "float_event"},
        {INTR_ARL_FULL, "hash_full"}};
    for (const auto &[type, want] : events) {
        ASSERT_EQ(interrupt_api_debug_get(0, kArl, {type, 0}, &d), 0);
        EXPECT_STREQ(name, want);
    }
}

TEST_F(Intr, HardwareStartOpensTheLineMasksTheCategoriesAndClearsEverything)
{
    cib_lsw_hreg_cib2int_lsw_ctrl_t ctrl{};
    ASSERT_EQ(csl_reef_cib_lsw_hreg_cib2int_lsw_ctrl_get(0, 0, &ctrl), 0);
    EXPECT_EQ(ctrl.cib2int_lsw2gic_msk, 1u);
    EXPECT_EQ(ctrl.cib2int_lsw2iopad_msk, 1u);
    EXPECT_EQ(_reg(atolreef_cib_acl_core_tcam_scan_enable_reg), 0xFFFFu);
    EXPECT_EQ(_reg(atolreef_cib_sch_msic_reg_cfg_reg) & 0xFFF, 0xFFFu);
    for (const cib_reg_info *r : {&atolreef_cib_lsw_hreg_lsw_fatal_0_msk_reg, &atolreef_cib_lsw_hreg_lsw_ecc_1_msk_reg,
                                  &atolreef_cib_lsw_hreg_lsw_warning_0_msk_reg}) {
        EXPECT_EQ(_reg(*r), 0u) << r->name;
    }
    // A category masked: a leaf raised leaves the line low.
    ASSERT_EQ(interrupt_api_enable_set(0, kArl, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_ARL, 0, INTR_ARL_LEARN, 0), 0);
    u32 level = 1;
    ASSERT_EQ(tide_sim_intr_line_get(0, &level), 0);
    EXPECT_EQ(level, 0u);
}

TEST_F(Intr, ClearAllWritesOnesToEveryFirstStatusRegister)
{
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_MAC_PORT, 0, 2, 27), 0);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_QM, 0, 5, 0), 0);
    ASSERT_EQ(interrupt_api_clear_all(0), 0);
    EXPECT_EQ(_reg(atolreef_cib_mac_port_int_stat_reg, 27), 0u);
    EXPECT_EQ(_reg(atolreef_cib_qm_int_status_reg), 0u);
}

TEST_F(Intr, ActionsTouchTheTypesBitsAlone)
{
    // Enable and disable read-modify-write the mask; clear writes the
    // type's bits only.
    ASSERT_EQ(interrupt_api_enable_set(0, kArl, {INTR_ARL_AGE, 0}, 1), 0);
    ASSERT_EQ(interrupt_api_enable_set(0, kArl, {INTR_ARL_MOVE, 0}, 1), 0);
    EXPECT_EQ(_reg(atolreef_cib_arl_int_mask_reg), 1u << INTR_ARL_AGE | 1u << INTR_ARL_MOVE);
    ASSERT_EQ(interrupt_api_enable_set(0, kArl, {INTR_ARL_AGE, 0}, 0), 0);
    EXPECT_EQ(_reg(atolreef_cib_arl_int_mask_reg), 1u << INTR_ARL_MOVE);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_ARL, 0, 3, 0), 0);
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    ASSERT_EQ(interrupt_api_clear(0, kArl, {INTR_ARL_AGE, 0}), 0);
    const auto w = _writes();
    ASSERT_EQ(w.size(), 1u);
    EXPECT_EQ(w[0].addr, atolreef_cib_arl_int_sta_reg.addr[0]);
    EXPECT_EQ(w[0].value, 1u << INTR_ARL_AGE);
    EXPECT_EQ(_reg(atolreef_cib_arl_int_sta_reg), 1u << 3); // the other bit stays
    // Whole registers, and all instances read as one.
    u32 v = 0;
    ASSERT_EQ(interrupt_api_mask_get(0, kArl, {INTR_ID_ALL, 0}, &v), 0);
    EXPECT_EQ(v, 1u << INTR_ARL_MOVE);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_MAC_PORT, 0, 1, 20), 0);
    ASSERT_EQ(interrupt_api_status_get(0, {INTR_MOD_MAC_PORT, 0}, {1, 19}, &v), 0);
    EXPECT_EQ(v, 0u);
    ASSERT_EQ(interrupt_api_status_get(0, {INTR_MOD_MAC_PORT, 0}, {1, INTR_ADDR_ALL}, &v), 0);
    EXPECT_EQ(v, 1u);
}

TEST_F(Intr, ATypeWithoutMaskIsAlwaysOnAndEnablingItWritesNothing)
{
    u32 v = 0;
    ASSERT_EQ(interrupt_api_mask_get(0, kTop, {0, 0}, &v), 0);
    EXPECT_EQ(v, 0xFFFFFFFFu);
    ASSERT_EQ(tide_sim_write_log_clear(0), 0);
    EXPECT_EQ(interrupt_api_enable_set(0, kTop, {INTR_ID_ALL, INTR_ADDR_ALL}, 0), 0);
    EXPECT_EQ(interrupt_api_enable_set(0, {INTR_MOD_XSEC_GLB, 0}, {1, 0}, 1), 0);
    EXPECT_TRUE(_writes().empty());
}

TEST_F(Intr, WildCardsAndTheirRefusals)
{
    u32 v = 0;
    const intr_type one = {0, 0};
    Capture::clear();
    // Reads are of one module and one subid.
    EXPECT_EQ(interrupt_api_mask_get(0, {INTR_MODULE_ALL, 0}, one, &v), -24);
    EXPECT_EQ(interrupt_api_status_get(0, {INTR_MOD_ARL, INTR_SUBID_ALL}, one, &v), -24);
    EXPECT_TRUE(Capture::has("ERROR! Not support get all module or get all subid at a time!"));
    EXPECT_EQ(interrupt_api_status_get(0, kArl, one, nullptr), -4);
    EXPECT_TRUE(Capture::has("ERROR! status is NULL!"));
    // Callbacks: no NULL function, no module without interrupts, no wild
    // cards.
    EXPECT_EQ(interrupt_api_callback_register(0, kArl, one, nullptr), -4);
    EXPECT_TRUE(Capture::has("ERROR! callback function is NULL!"));
    EXPECT_EQ(interrupt_api_callback_register(0, {1, 0}, one, _nop), -4);
    EXPECT_TRUE(Capture::has("ERROR! module(1) has no interrupt!"));
    EXPECT_EQ(interrupt_api_callback_register(0, {INTR_MOD_ARL, INTR_SUBID_ALL}, one, _nop), -4);
    EXPECT_EQ(interrupt_api_stats_get(0, kArl, {INTR_ID_ALL, 0}, &v), -4);
    EXPECT_TRUE(Capture::has("ERROR! Only support get one stats at a time!"));
    // Numbers out of range, each named.
    EXPECT_EQ(interrupt_api_clear(0, {58, 0}, one), -4);
    EXPECT_TRUE(Capture::has("ERROR! module id(58) must less than 58!"));
    EXPECT_EQ(interrupt_api_clear(0, {INTR_MOD_ARL, 1}, one), -4);
    EXPECT_TRUE(Capture::has("ERROR! In module arl(id:43): subid must less than 1!"));
    EXPECT_EQ(interrupt_api_clear(0, kArl, {21, 0}), -4);
    EXPECT_TRUE(Capture::has("ERROR! In module arl(id:43) subid(0): intr id must less than 21!"));
    EXPECT_EQ(interrupt_api_clear(0, {1, 0}, one), -4);
    EXPECT_TRUE(Capture::has("ERROR! Module mdio(id:1) has no interrupt information!"));
    // With all subids the type must be in range of each: cputr's third
    // subid has two.
    EXPECT_EQ(interrupt_api_enable_set(0, {INTR_MOD_CPUTR, INTR_SUBID_ALL}, {3, 0}, 1), -4);
    EXPECT_TRUE(Capture::has("ERROR! In module cputr(id:28) subid(2): intr id must less than 2!"));
    EXPECT_EQ(interrupt_api_status_get(0, {INTR_MOD_MAC_PORT, 0}, {0, 28}, &v), -4);
    EXPECT_TRUE(Capture::has("ERROR! In module mac_port(id:17): addr_idx must less than 28!"));
    EXPECT_EQ(interrupt_api_module_status_dump(0, {INTR_MODULE_ALL, 0}, one), -4);
    EXPECT_TRUE(Capture::has("ERROR! Only support dump one module at a time!"));
    // Clear with every wild card skips the modules without interrupts.
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_EACL, 0, 1, 0), 0);
    EXPECT_EQ(interrupt_api_clear(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}), 0);
    EXPECT_EQ(_reg(atolreef_cib_eacl_int_sta_reg), 0u);
}

TEST_F(Intr, NamesCountsAndDebugRegisters)
{
    char name[8];
    intr_debug d = {name, sizeof(name), 0};
    ASSERT_EQ(interrupt_api_debug_get(0, {INTR_MOD_MAG_MAP, 4}, {0, 0}, &d), 0);
    EXPECT_STREQ(name, "mag_map"); // cut to the buffer
    d.type = 1;
    EXPECT_EQ(interrupt_api_debug_get(0, {INTR_MOD_ARL, INTR_SUBID_ALL}, {0, 0}, &d), -4);
    EXPECT_EQ(interrupt_api_debug_get(0, kArl, {INTR_ID_ALL, 0}, &d), -4);
    EXPECT_TRUE(Capture::has("ERROR! Must specific module id, sub id and intr id to get intr name!"));
    d.type = 2;
    EXPECT_EQ(interrupt_api_debug_get(0, kArl, {0, 0}, &d), -4);
    EXPECT_TRUE(Capture::has("ERROR! Unknown debug type!"));

    intr_debug_info info{};
    EXPECT_EQ(interrupt_api_debug_info_get(0, {INTR_MOD_EACL, 0}, {0, 0}, &info), -7);
    ASSERT_EQ(interrupt_api_debug_info_get(0, kArl, {0, 0}, &info), 0);
    EXPECT_EQ(info.count, 2u);
    EXPECT_EQ(info.addr[0], atolreef_cib_arl_cpuop_state_reg.addr[0]);
    ASSERT_EQ(interrupt_api_debug_info_get(0, {INTR_MOD_PCS_AN, 0}, {0, 33}, &info), 0);
    EXPECT_EQ(info.addr[0], atolreef_cib_pcs_an_pcs_an_status_1_reg.addr[33]);

    // Counts: cleared with wild cards.
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_ARL, 0, 2, 0), 0);
    u32 n = 0;
    ASSERT_TRUE(tide_test::eventually([&] { return interrupt_api_stats_get(0, kArl, {2, 0}, &n) == 0 && n == 1; }));
    ASSERT_EQ(interrupt_api_stats_clear(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, 0}), 0);
    ASSERT_EQ(interrupt_api_stats_get(0, kArl, {2, 0}, &n), 0);
    EXPECT_EQ(n, 0u);
}

TEST_F(Intr, DumpsPrintTheTables)
{
    Capture::clear();
    ASSERT_EQ(interrupt_api_support_module_dump(0), 0);
    ASSERT_EQ(interrupt_api_base_info_get(0, INTR_MOD_LSW_HREG), 0);
    ASSERT_EQ(interrupt_api_module_status_dump(0, {INTR_MOD_MAC_PORT, 0}, {0, INTR_ADDR_ALL}), 0);
    const std::string out = Capture::output();
    EXPECT_NE(out.find("module id        module name\n"), std::string::npos);
    EXPECT_NE(out.find("  43               arl\n"), std::string::npos);
    EXPECT_EQ(out.find("               mdio\n"), std::string::npos);
    EXPECT_NE(out.find("  Module name: lsw_hreg             Module id: 0\n"), std::string::npos);
    EXPECT_NE(out.find("  Module subid num: 10\n"), std::string::npos);
    EXPECT_NE(out.find("lsw_fatal_0[ 3.1]"), std::string::npos);
    EXPECT_NE(out.find("No Mask Reg"), std::string::npos);
    EXPECT_NE(out.find("link_down_int"), std::string::npos);
}

TEST_F(Intr, EccDefaultActionAndSiblingOnlyCalls)
{
    u32 action = 7;
    ASSERT_EQ(interrupt_api_default_action_get(0, &action), 0);
    EXPECT_EQ(action, 0u);
    ASSERT_EQ(interrupt_api_default_action_set(0, 1), 0);
    ASSERT_EQ(interrupt_api_default_action_get(0, &action), 0);
    EXPECT_EQ(action, 1u);
    EXPECT_EQ(interrupt_api_default_action_set(0, 2), -4);
    u32 p = 0, t = 0;
    EXPECT_EQ(interrupt_api_ecc_lpm_se_get(0, INTR_ECC_LPM_TBLV4, &p, &t), -24);
    EXPECT_TRUE(Capture::has("ERROR! Only support kelpreef or kelpreef2 for lpm_se module!"));
}

TEST_F(Intr, PortIndexesAndBack)
{
    const csl_port_control *ctl = csl_port_control_get(0);
    ASSERT_NE(ctl, nullptr);
    std::set<u8> seen;
    for (u32 lport = 0; lport < CSL_PORT_MAX_MAC; lport++) {
        if (!tide::port::pbmp_test(ctl->valid_bmp, lport) || ctl->mac_info[lport].mag_id == CSL_PORT_NONE) {
            continue;
        }
        u8 index = 0;
        ASSERT_EQ(interrupt_api_lport_to_reg_index(0, lport, INTR_INDEX_PORT_REG, &index), 0);
        EXPECT_LT(index, 34u);
        EXPECT_TRUE(seen.insert(index).second) << "index " << unsigned(index) << " twice";
        u32 back = 0;
        ASSERT_EQ(interrupt_api_reg_index_to_lport(0, index, INTR_INDEX_PORT_REG, &back), 0);
        EXPECT_EQ(back, lport);
        ASSERT_EQ(interrupt_api_lport_to_reg_index(0, lport, INTR_INDEX_LPORT, &index), 0);
        EXPECT_EQ(index, lport);
    }
    u8 index = 0;
    u32 lport = 0;
    EXPECT_EQ(interrupt_api_lport_to_reg_index(0, 150, INTR_INDEX_PORT_REG, &index), -24);
    EXPECT_TRUE(Capture::has("ERROR! lport: 150 dose not exist, please enter the correct port"));
    EXPECT_EQ(interrupt_api_reg_index_to_lport(0, 34, INTR_INDEX_PORT_REG, &lport), -4);
    EXPECT_EQ(interrupt_api_reg_index_to_lport(0, 77, INTR_INDEX_LPORT, &lport), 0);
    EXPECT_EQ(lport, 77u);
}

// ---- the thread and the chip types ---------------------------------------------------------

bool _thread_named(const std::string &name)
{
    DIR *d = opendir("/proc/self/task");
    bool found = false;
    for (dirent *e = d != nullptr ? readdir(d) : nullptr; e != nullptr && !found; e = readdir(d)) {
        std::ifstream comm(std::string("/proc/self/task/") + e->d_name + "/comm");
        std::string s;
        found = std::getline(comm, s) && s == name;
    }
    if (d != nullptr) {
        closedir(d);
    }
    return found;
}

class IntrThread : public SimChips {
protected:
    IntrThread() : SimChips(2, 0) {}
};

TEST_F(IntrThread, OnePerChipUnlessThePropertySaysNo)
{
    ASSERT_EQ(shr_property_set(1, "init_create_intr_thread", "0"), 0);
    up_chip(0);
    up_chip(1);
    EXPECT_TRUE(_thread_named("tdl_interrupt0"));
    EXPECT_FALSE(_thread_named("tdl_interrupt1"));
    EXPECT_EQ(g_intr_thread[1].enabled, 0u);
    Capture::clear();
    down_chip(1);
    EXPECT_TRUE(Capture::has("[interrupt thread destroy]: not inited"));
    down_chip(0);
    EXPECT_TRUE(tide_test::eventually([] { return !_thread_named("tdl_interrupt0"); }));
    // A second bring-up starts it again.
    up_chip(0);
    EXPECT_TRUE(_thread_named("tdl_interrupt0"));
}

TEST_F(IntrThread, WithoutClearAtStartAPendingStatusStays)
{
    // (No hard reset either, which would clear it.)
    ASSERT_EQ(shr_property_set(0, "init_clear_all_intr", "0"), 0);
    ASSERT_EQ(shr_property_set(0, "chip_lsw_hw_reset", "0"), 0);
    ASSERT_EQ(tide_sim_intr_raise(0, INTR_MOD_EACL, 0, 0, 0), 0);
    up_chip(0);
    EXPECT_EQ(_reg(atolreef_cib_eacl_int_sta_reg), 1u);
}

TEST_F(IntrThread, SiblingsComeUpWithoutTablesAndKelpreef2WithoutThread)
{
    tide::test::kelpreef_identity_set(0, 0);
    tide::test::kelpreef_identity_set(1, 1);
    up_chip(0);
    up_chip(1);
    EXPECT_TRUE(_thread_named("tdl_interrupt0"));
    EXPECT_FALSE(_thread_named("tdl_interrupt1"));
    EXPECT_TRUE(Capture::has("kelpreef: no interrupt tables in this build"));
    u32 v = 0;
    Capture::clear();
    EXPECT_EQ(interrupt_api_status_get(0, kArl, {0, 0}, &v), -4);
    EXPECT_TRUE(Capture::has("ERROR! Can not found reef interrupt module info!"));
    EXPECT_EQ(interrupt_api_default_action_set(1, 1), 0);
    EXPECT_EQ(interrupt_api_default_action_get(1, &v), 0);
    EXPECT_EQ(v, 0u);
    EXPECT_EQ(dpl_reef_interrupt_action_set(0, INTR_MOD_ARL, 0, 0, 0, INTR_ENABLE), 0);
    u32 p = 0;
    EXPECT_EQ(interrupt_api_ecc_lpm_se_get(1, INTR_ECC_LPM_TBLV6, &p, &v), -24);
    EXPECT_EQ(interrupt_api_ecc_lpm_se_get(1, 9, &p, &v), -4);
    EXPECT_EQ(dpl_reef_interrupt_raise(4), -4);
}

} // namespace
