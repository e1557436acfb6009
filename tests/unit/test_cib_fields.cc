// Fields by catalogue, lookup by name, the field doors and the dumps, on the
// chip model.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "support/fixture.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

class CibFields : public SimChips {
protected:
    CibFields() : SimChips(1, 1) {}
};

TEST_F(CibFields, FieldRecordsAndTheirFailures)
{
    cib_field_info f{};
    ASSERT_EQ(csl_reg_field_info_get(0, cib_mcc_en_mode_cfg, cib_f_mcc_tick_cp_full_cfg, &f), 0);
    EXPECT_EQ(f.low_bit, 4);
    EXPECT_EQ(f.width, 7);
    EXPECT_EQ(csl_reg_field_info_get(0, 4466, cib_f_mcc_tick_cp_full_cfg, &f), -20);
    EXPECT_EQ(csl_reg_field_info_get(0, cib_mcc_en_mode_cfg, cib_f_mlib_vld, &f), -7);
    // Reserved pieces are no field to look up.
    EXPECT_EQ(csl_reg_field_info_get(0, cib_mcc_en_mode_cfg, cib_f_rsv, &f), -7);
    EXPECT_EQ(csl_tab_field_info_get(0, cib_mcc_mlib, 0, cib_f_mlib_vld, &f), 0);
    EXPECT_EQ(csl_tab_field_info_get(0, cib_mcc_mlib, 1, cib_f_mlib_vld, &f), -4);
    EXPECT_EQ(csl_tab_field_info_get(0, cib_mcc_mlib, 0, cib_f_mlib_vld, nullptr), -4);
    EXPECT_EQ(csl_tab_field_info_get(0, 556, 0, cib_f_mlib_vld, &f), -20);
}

TEST_F(CibFields, ValuesByFieldId)
{
    u8 word[4] = {0xAA, 0xAA, 0xAA, 0xAA};
    // A field the register does not have: nothing happens, no error.
    EXPECT_EQ(csl_reg_field8_set_to_data(0, word, cib_mcc_en_mode_cfg, 1, cib_f_mlib_vld), 0);
    EXPECT_EQ(word[0], 0xAA);
    EXPECT_EQ(csl_reg_field8_set_to_data(0, word, cib_mcc_en_mode_cfg, 0x55, cib_f_mcc_tick_cp_full_cfg), 0);
    u32 v = 0;
    EXPECT_EQ(csl_reg_field32_get_from_data(0, word, cib_mcc_en_mode_cfg, &v, cib_f_mcc_tick_cp_full_cfg), 0);
    EXPECT_EQ(v, 0x55u);
    EXPECT_EQ(word[0] & 0xF, 0xA); // the bits below stay
    // Too wide for 7 bits.
    EXPECT_EQ(csl_reg_field8_set_to_data(0, word, cib_mcc_en_mode_cfg, 0x80, cib_f_mcc_tick_cp_full_cfg), -23);
    EXPECT_EQ(csl_reg_field8_set_to_data(0, nullptr, cib_mcc_en_mode_cfg, 1, cib_f_lp_en_mode_cfg), -20);

    u8 entry[4] = {};
    // Tables: exact 0 cuts the value to the field, exact 1 refuses it.
    EXPECT_EQ(csl_tab_field16_set_to_data(0, entry, 0, cib_mcc_mlib, 0x1FFF, cib_f_leafid_next_ptr, 0), 0);
    u16 ptr = 0;
    EXPECT_EQ(csl_tab_field16_get_from_data(0, entry, 0, cib_mcc_mlib, &ptr, cib_f_leafid_next_ptr), 0);
    EXPECT_EQ(ptr, 0xFFF);
    EXPECT_EQ(entry[1] & 0x20, 0); // bit 13, next_vld, untouched
    EXPECT_EQ(csl_tab_field16_set_to_data(0, entry, 0, cib_mcc_mlib, 0x1FFF, cib_f_leafid_next_ptr, 1), -23);
    EXPECT_EQ(csl_tab_field8_get_from_data(0, entry, 0, cib_mcc_mlib, nullptr, cib_f_mlib_vld), -4);
    EXPECT_EQ(csl_tab_field8_set_to_data(0, nullptr, 0, cib_mcc_mlib, 1, cib_f_mlib_vld, 0), -4);
}

TEST_F(CibFields, LookupByName)
{
    u32 id = 0, idx = 9;
    const cib_tab_info *tab = nullptr;
    for (const char *name : {"mcc_mlib", "cib_mcc_mlib", "MCC_MLIB", "Cib_Mcc_Mlib"}) {
        EXPECT_EQ(csl_reef_tab_info_get_by_name(0, name, &id, &tab, &idx), 0) << name;
        EXPECT_EQ(id, static_cast<u32>(cib_mcc_mlib)) << name;
        EXPECT_EQ(idx, 0u);
    }
    EXPECT_EQ(csl_reef_tab_info_get_by_name(0, "mcc_mlib_1", &id, &tab, &idx), -6);
    EXPECT_EQ(csl_reef_tab_info_get_by_name(0, "mcc_mlibx", &id, &tab, &idx), -7);
    EXPECT_EQ(csl_reef_tab_info_get_by_name(0, "nosuchmodule_x", &id, &tab, &idx), -7);
    EXPECT_EQ(csl_reef_tab_info_get_by_name(0, "lsw_hreg_test_reg", &id, &tab, &idx), -7); // no tables there
    // An instance number after the name.
    const cib_reg_info *reg = nullptr;
    ASSERT_EQ(csl_reef_reg_info_get_by_name(0, "mac_port_enable_cfg_27", &id, &reg, &idx), 0);
    EXPECT_EQ(idx, 27u);
    EXPECT_EQ(csl_reef_reg_info_get_by_name(0, "mac_port_enable_cfg_28", &id, &reg, &idx), -6);
    // The longest module name decides: pcs_glb, not a shorter module that
    // the name also starts with.
    u32 module = 0;
    ASSERT_EQ(_module_info_get(0, "pcs_glb_rxbuf_alm", &module), 0);
    EXPECT_EQ(module, static_cast<u32>(cib_module_pcs_glb));
    ASSERT_EQ(_module_info_get(0, "mac_mib_rx_64_h", &module), 0);
    EXPECT_EQ(module, static_cast<u32>(cib_module_mac_mib));
    // Chips that are not there or have no catalogue.
    EXPECT_EQ(_module_info_get(1, "mcc_mlib", &module), -13);
}

TEST_F(CibFields, TableSizeOfTheSharedMacTable)
{
    u32 size = 0;
    ASSERT_EQ(csl_reef_tab_size_get(0, cib_arl_em_mac_tbl_key, &size), 0);
    EXPECT_EQ(size, 10244u);
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_lsw_hreg_fbm_share_ram_cfg, 1), 0);
    ASSERT_EQ(csl_reef_tab_size_get(0, cib_arl_em_mac_tbl_ad, &size), 0);
    EXPECT_EQ(size, 18436u);
    ASSERT_EQ(csl_reef_tab_size_get(0, cib_mcc_mlib, &size), 0);
    EXPECT_EQ(size, 2048u);
    EXPECT_EQ(csl_reef_tab_size_get(0, 556, &size), -2);
    EXPECT_EQ(csl_reef_tab_size_get(0, cib_mcc_mlib, nullptr), -4);
}

TEST_F(CibFields, PlacesByAddress)
{
    u32 is_reg = 0, id = 0, inst = 0, index = 0;
    ASSERT_EQ(csl_reef_reg_or_tab_info_get_by_addr(0, 0x1c00060, &is_reg, &id, &inst, &index), 0);
    EXPECT_EQ(is_reg, 1u);
    EXPECT_EQ(id, static_cast<u32>(cib_mcc_en_mode_cfg));
    ASSERT_EQ(csl_reef_reg_or_tab_info_get_by_addr(0, 0x1c08000 + 9 * 4, &is_reg, &id, &inst, &index), 0);
    EXPECT_EQ(is_reg, 0u);
    EXPECT_EQ(id, static_cast<u32>(cib_mcc_mlib));
    EXPECT_EQ(index, 9u);
    EXPECT_EQ(csl_reef_reg_or_tab_info_get_by_addr(0, 0x0fff0000, &is_reg, &id, &inst, &index), -7);
}

TEST_F(CibFields, FieldDoorsOfTheShell)
{
    u8 value[4] = {0x5, 0, 0, 0};
    base_field_op op{};
    op.name = "mcc_en_mode_cfg";
    op.kind = 0;
    op.field_name = "mcc_tick_cp_full_cfg";
    op.data = value;
    op.data_bytes = 4;
    ASSERT_EQ(base_api_field_set(0, &op), 0);
    u32 word = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, 0x1c00060, &word), 0);
    EXPECT_EQ(word, 0x50u);
    // Too many bits for the field: a warning, and the value is cut.
    value[0] = 0xFF;
    Capture::clear();
    ASSERT_EQ(base_api_field_set(0, &op), 0);
    EXPECT_NE(Capture::output().find("WARN: data bits 8 more than 7, write data 0xff\n"), std::string::npos);
    ASSERT_EQ(tide_sim_reg_peek(0, 4, 0x1c00060, &word), 0);
    EXPECT_EQ(word, 0x7Fu << 4);

    Capture::clear();
    ASSERT_EQ(base_api_field_get(0, &op, nullptr), 0);
    std::string out = Capture::output();
    EXPECT_NE(out.find("    address : 0x1c00060 register data : 0x7f0 field data : 0x7f(127)\n"), std::string::npos)
        << out;
    EXPECT_NE(out.find("Register Name : mcc_en_mode_cfg\n"), std::string::npos);

    op.field_name = "nosuch";
    Capture::clear();
    EXPECT_EQ(base_api_field_get(0, &op, nullptr), -7);
    EXPECT_NE(Capture::output().find("mcc_en_mode_cfg.nosuch not exsit\n"), std::string::npos);

    base_field_op by_addr{};
    by_addr.kind = 1;
    by_addr.addr = 0x1c00060;
    by_addr.count = 2;
    Capture::clear();
    ASSERT_EQ(base_api_field_get(0, &by_addr, nullptr), 0);
    EXPECT_NE(Capture::output().find("Register Addr : 0x1c00060 data : 0x7f0\n"), std::string::npos);
    EXPECT_NE(Capture::output().find("Register Addr : 0x1c00064 data : "), std::string::npos);
    by_addr.field_name = "x";
    EXPECT_EQ(base_api_field_get(0, &by_addr, nullptr), -4);

    base_field_op tab{};
    tab.kind = 2;
    tab.name = "mcc_mlib";
    tab.start = 2040;
    tab.count = 9;
    Capture::clear();
    EXPECT_EQ(base_api_field_get(0, &tab, nullptr), -4);
    EXPECT_NE(Capture::output().find("input start(2040) cnt(9) out of range 0~2047\n"), std::string::npos);
    tab.name = "nosuch_table";
    EXPECT_NE(base_api_field_get(0, &tab, nullptr), 0);
    EXPECT_NE(Capture::output().find("ERR: table name nosuch_table not found\n"), std::string::npos);
}

TEST_F(CibFields, TableFieldsThroughTheDoors)
{
    u8 one[4] = {1, 0, 0, 0};
    base_field_op op{};
    op.kind = 2;
    op.name = "mcc_mlib";
    op.start = 3;
    op.count = 2;
    op.field_name = "next_vld";
    op.data = one;
    op.data_bytes = 4;
    ASSERT_EQ(base_api_field_set(0, &op), 0);
    u32 word = 0;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, 0x1c08000 + 4 * 4, &word), 0);
    EXPECT_EQ(word, 1u << 13);
    Capture::clear();
    op.start = 0;
    op.count = 6;
    ASSERT_EQ(base_api_field_get(0, &op, nullptr), 0);
    const std::string out = Capture::output();
    EXPECT_NE(out.find("Table mcc_mlib : next_vld[0013:0013]\n"), std::string::npos) << out;
    EXPECT_NE(out.find("    index    3 : 0x01\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("index    2"), std::string::npos) << out; // zero entries left out

    // By name, whole entries.
    u8 entry[4] = {0x34, 0x12, 0, 0};
    ASSERT_EQ(base_api_direct_tab_set_by_name(0, "MCC_MLIB", 7, entry, 4), 0);
    u8 back[4] = {};
    ASSERT_EQ(base_api_direct_tab_get_by_name(0, "cib_mcc_mlib", 7, back, 4), 0);
    EXPECT_EQ(back[0], 0x34);
    EXPECT_EQ(back[1], 0x12);
    EXPECT_EQ(base_api_direct_tab_set_by_name(0, "mcc_mlib_1", 7, entry, 4), -6);
}

TEST_F(CibFields, DumpFormats)
{
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_mcc_en_mode_cfg, 0x51), 0);
    Capture::clear();
    ASSERT_EQ(csl_reef_reg_dump(0, cib_mcc_en_mode_cfg, 1, 0, nullptr), 0);
    EXPECT_EQ(Capture::output(),
              "Register Name : mcc_en_mode_cfg\n"
              "Register Addr : 0x1c00060,  Value: 0x51(81)\n"
              "--------------------------------------------------------------------------\n"
              "  mcc_tick_cp_full_cfg                    [ 4. 7] : 0x5(5)\n"
              "  lp_en_mode_cfg                          [ 0. 1] : 0x1(1)\n"
              "\n");
    // A zero register with skip_zero prints nothing.
    Capture::clear();
    ASSERT_EQ(csl_reef_reg_dump(0, cib_lsw_hreg_test_reg, 1, 1, nullptr), 0);
    EXPECT_EQ(Capture::output(), "");

    u8 entry[4] = {0x35, 0x40, 0, 0}; // mlib_vld, leafid_next_ptr 0x1a, udp_dport_en
    ASSERT_EQ(csl_reef_tab_set_direct(0, cib_mcc_mlib, 2, entry, 4, CSL_TAB_HW), 0);
    Capture::clear();
    ASSERT_EQ(csl_reef_direct_table_show(0, cib_mcc_mlib, 2, 1, 0, nullptr, CSL_TAB_HW), 0);
    const std::string out = Capture::output();
    EXPECT_NE(out.find("Table : mcc_mlib\nIndex : 2\n"), std::string::npos) << out;
    EXPECT_NE(out.find("0x : 00004035"), std::string::npos) << out;
    EXPECT_NE(out.find("mlib_vld                            [0014:0014] : 0x01\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("rsv"), std::string::npos);
    // An all-zero entry is skipped unless asked for.
    Capture::clear();
    ASSERT_EQ(csl_reef_direct_table_show(0, cib_mcc_mlib, 3, 1, 0, nullptr, CSL_TAB_HW), 0);
    EXPECT_EQ(Capture::output(), "");

    char text[512];
    ASSERT_EQ(base_api_tab_data_to_string(0, "mcc_mlib", entry, text, sizeof(text)), 0);
    EXPECT_NE(std::string(text).find("0x : 00004035\n"), std::string::npos) << text;
    EXPECT_NE(std::string(text).find("next_vld                            [0013:0013] : 0x00\n"), std::string::npos);
    EXPECT_EQ(base_api_tab_data_to_string(0, "mcc_mlib", entry, text, 2), -4);
    EXPECT_EQ(base_api_tab_data_to_string(0, nullptr, entry, text, sizeof(text)), -4);
}

TEST_F(CibFields, WriteTestOfAModule)
{
    Capture::clear();
    EXPECT_EQ(csl_reef_reg_write_test(0, "lsw_hreg", 0), 0);
    EXPECT_NE(Capture::output().find("failed\n"), std::string::npos);
    EXPECT_EQ(Capture::output().find(" fail\n"), std::string::npos) << Capture::output();
    // A stuck bit in a writable field is found.
    const u32 addr = g_atolreef_reg_list[cib_lsw_hreg_test_reg]->addr[0];
    ASSERT_EQ(tide_sim_stuck_bit_set(0, 4, addr, 7, 0), 0);
    Capture::clear();
    EXPECT_EQ(csl_reef_reg_write_test(0, "lsw_hreg", 0), -11);
    EXPECT_NE(Capture::output().find(" lsw_hreg_test_reg                   test_reg             RW    fail\n"),
              std::string::npos)
        << Capture::output();
    EXPECT_EQ(csl_reef_reg_write_test(0, "nosuch", 0), -7);
    EXPECT_EQ(csl_reef_reg_write_test(0, "mac_mib", 0), -7);
    EXPECT_NE(Capture::output().find("\nMode:mac_mib no register!\n\n"), std::string::npos);
    EXPECT_EQ(csl_reef_reg_force_test(0, "mcc", 2), 0);
    EXPECT_NE(Capture::output().find("test times = "), std::string::npos);
}

TEST_F(CibFields, ModuleClearAndDump)
{
    const u32 status = g_atolreef_reg_list[cib_lsw_hreg_lsw_fatal_0]->addr[0];
    ASSERT_EQ(tide_sim_reg_poke(0, 4, status, 0x9), 0);
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_lsw_hreg_test_reg, 0x77), 0);
    // Only write-one-to-clear fields: the status clears, the test register stays.
    ASSERT_EQ(csl_reef_module_reg_info_clear_by_name(0, "lsw_hreg", 0, 128), 0);
    u32 v = 1;
    ASSERT_EQ(tide_sim_reg_peek(0, 4, status, &v), 0);
    EXPECT_EQ(v, 0u);
    ASSERT_EQ(csl_reef_reg_get_u32(0, cib_lsw_hreg_test_reg, &v), 0);
    EXPECT_EQ(v, 0x77u);
    // RW fields back to zero.
    ASSERT_EQ(csl_reef_module_reg_info_clear_by_id(0, cib_module_lsw_hreg, 0, 1), 0);
    ASSERT_EQ(csl_reef_reg_get_u32(0, cib_lsw_hreg_test_reg, &v), 0);
    EXPECT_EQ(v, 0u);
    EXPECT_EQ(csl_reef_module_reg_info_clear_by_id(0, 58, 0, 1), -4);
    EXPECT_EQ(csl_reef_module_reg_info_clear_by_id(0, cib_module_lsw_hreg, 0, 2), 0); // read-only: nothing

    // A module's dump shows what is not zero.
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_mcc_en_mode_cfg, 0x3), 0);
    Capture::clear();
    ASSERT_EQ(base_api_chip_module_cnt_show(0, "mcc", nullptr, 0, 0, 0), 0);
    std::string out = Capture::output();
    EXPECT_NE(out.find("[ cib_mcc ]"), std::string::npos);
    EXPECT_NE(out.find("Register Name : mcc_en_mode_cfg\n"), std::string::npos);
    EXPECT_EQ(out.find("Register Name : mcc_catch_pkt_cfg\n"), std::string::npos);
    EXPECT_EQ(base_api_chip_module_cnt_show(0, "nosuch", nullptr, 0, 0, 0), -7);
    EXPECT_NE(Capture::output().find("ERR: no module named nosuch\n"), std::string::npos);

    // To a file with a limit: the dump stops at the limit and says so.
    char path[] = "/tmp/tide_dump_XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    Capture::clear();
    ASSERT_EQ(base_api_chip_module_cnt_show(0, "a", path, 0, 200, 0), 0);
    EXPECT_NE(Capture::output().find("has reached limit-MBytes"), std::string::npos);
    std::ifstream in(path);
    std::stringstream file;
    file << in.rdbuf();
    EXPECT_LE(file.str().size(), 200u);
    EXPECT_NE(file.str().find("[ cib_lsw_hreg ]"), std::string::npos);
    unlink(path);
}

} // namespace
