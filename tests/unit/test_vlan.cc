// The VLAN service through the exported calls, on the chip model: the
// sharing of the VLAN row pairs (read back from the model's own rows),
// membership, port controls, TPIDs, global settings, the refusals, and
// frames through the model's VLAN stages.
#include <gtest/gtest.h>
#include <tide/property.h>

#include <map>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_vlan.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"
#include "support/fixture.h"
#include <tide/l2.h>
#include "support/vlan_ports.h"
#include "support/wait.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

constexpr uint32_t kLsw = 4;
constexpr uint32_t kNoRow = 0xFFFFFFFF;

// One word of an entry of a table in the model, by the catalogue's
// address: entry i lies at addr + i * words * 4.
uint32_t model_word(const cib_tab_info &tab, uint32_t index, uint32_t word)
{
    const uint32_t words = (tab.width + 31) / 32;
    uint32_t v = 0;
    EXPECT_EQ(tide_sim_reg_peek(0, kLsw, tab.addr[0] + (index * words + word) * 4, &v), 0);
    return v;
}

// The model's row of a VID, or kNoRow when its map entry is not valid.
uint32_t model_row(uint32_t vid)
{
    const uint32_t w = model_word(atolreef_cib_ipro_vmap_tblm, vid, 0);
    return (w >> 8 & 1) != 0 ? (w & 0xFF) : kNoRow;
}

uint32_t model_classid(uint32_t row)
{
    return model_word(atolreef_cib_ipro_ivlan_tblm, row, 1) >> 28 & 0xF; // bits 63..60
}

bool model_row_zero(uint32_t row)
{
    for (uint32_t w = 0; w < 4; w++) {
        if (model_word(atolreef_cib_ipro_ivlan_tblm, row, w) != 0) {
            return false;
        }
    }
    return model_word(atolreef_cib_epro_evlan_tablem, row, 0) == 0;
}

i32 set_ctrl(uint32_t vid, uint32_t key, uint32_t value)
{
    vlan_control c{key, value};
    return vlan_api_control_set(0, vid, &c);
}

i32 port_ctrl(uint32_t port, uint32_t key, uint32_t value)
{
    vlan_control c{key, value};
    return vlan_api_port_control_set(0, port, &c);
}

uint32_t port_ctrl_get(uint32_t port, uint32_t key)
{
    vlan_control c{key, 0};
    EXPECT_EQ(vlan_api_port_control_get(0, port, &c), 0) << key;
    return c.value;
}

uint32_t count_of(uint32_t vid)
{
    dpl_reef_ivlan_node in{};
    dpl_reef_evlan_node eg{};
    EXPECT_EQ(dpl_reef_vlan_ingress_control_software_info_get(0, vid, &in), 0);
    EXPECT_EQ(dpl_reef_vlan_egress_control_software_info_get(0, vid, &eg), 0);
    EXPECT_EQ(in.count, eg.count) << "vid " << vid;
    EXPECT_EQ(in.index, eg.index) << "vid " << vid;
    return in.count;
}

class Vlan : public SimChips {};

// A chip brought up with properties of the test.
class VlanProps : public SimChips {
protected:
    VlanProps() : SimChips(1, 0) {}
    void up(std::initializer_list<std::pair<const char *, const char *>> props)
    {
        for (const auto &[k, v] : props) {
            ASSERT_EQ(shr_property_set(0, k, v), 0);
        }
        up_chip(0);
    }
};

TEST_F(Vlan, DefaultVlansShareOnePairAndAChangeSplitsAndRejoins)
{
    for (uint32_t vid = 1; vid <= 300; vid++) {
        ASSERT_EQ(vlan_api_create(0, vid), 0) << vid;
    }
    const uint32_t shared = model_row(1);
    ASSERT_NE(shared, kNoRow);
    for (uint32_t vid = 1; vid <= 300; vid++) {
        ASSERT_EQ(model_row(vid), shared) << vid;
    }
    EXPECT_EQ(count_of(1), 300u);

    // One field of one VID: a pair of its own, with the egress row copied.
    ASSERT_EQ(set_ctrl(100, VLAN_CTRL_CLASSID, 5), 0);
    const uint32_t own = model_row(100);
    EXPECT_NE(own, shared);
    EXPECT_EQ(model_classid(own), 5u);
    EXPECT_EQ(model_classid(shared), 0u);
    EXPECT_EQ(model_word(atolreef_cib_epro_evlan_tablem, own, 0), model_word(atolreef_cib_epro_evlan_tablem, shared, 0));
    EXPECT_EQ(count_of(1), 299u);
    EXPECT_EQ(count_of(100), 1u);
    // Alone on its pair, a second change rewrites the row in place.
    ASSERT_EQ(set_ctrl(100, VLAN_CTRL_CLASSID, 6), 0);
    EXPECT_EQ(model_row(100), own);
    EXPECT_EQ(model_classid(own), 6u);
    // Another VID with the same record moves onto that pair.
    ASSERT_EQ(set_ctrl(101, VLAN_CTRL_CLASSID, 6), 0);
    EXPECT_EQ(model_row(101), own);
    EXPECT_EQ(count_of(100), 2u);

    // Back to the defaults: both rejoin the shared pair, the other is freed.
    ASSERT_EQ(set_ctrl(100, VLAN_CTRL_CLASSID, 0), 0);
    ASSERT_EQ(set_ctrl(101, VLAN_CTRL_CLASSID, 0), 0);
    EXPECT_EQ(model_row(100), shared);
    EXPECT_EQ(model_row(101), shared);
    EXPECT_EQ(count_of(1), 300u);
    EXPECT_TRUE(model_row_zero(own));

    // The same through the egress record.
    ASSERT_EQ(set_ctrl(7, VLAN_CTRL_EGRESS_CNT_ID, 4000), 0);
    EXPECT_NE(model_row(7), shared);
    vlan_control c{VLAN_CTRL_EGRESS_CNT_ID, 0};
    ASSERT_EQ(vlan_api_control_get(0, 7, &c), 0);
    EXPECT_EQ(c.value, 4000u);
    ASSERT_EQ(set_ctrl(7, VLAN_CTRL_EGRESS_CNT_ID, 0), 0);
    EXPECT_EQ(model_row(7), shared);

    // Destroying all gives the last pair back.
    for (uint32_t vid = 1; vid <= 300; vid++) {
        ASSERT_EQ(vlan_api_destroy(0, vid), 0) << vid;
    }
    EXPECT_EQ(model_row(1), kNoRow);
    EXPECT_TRUE(model_row_zero(shared));
}

TEST_F(VlanProps, WithoutSharingEachVidTakesAPairUntilTheyRunOut)
{
    up({{"vlan_multiplex_flag", "0"}});
    std::set<uint32_t> rows;
    for (uint32_t vid = 1; vid <= 256; vid++) {
        ASSERT_EQ(vlan_api_create(0, vid), 0) << vid;
        rows.insert(model_row(vid));
    }
    EXPECT_EQ(rows.size(), 256u);
    Capture::clear();
    EXPECT_EQ(vlan_api_create(0, 257), -6);
    EXPECT_TRUE(Capture::has("ivlan is full 256 -- 256 !!!"));
    EXPECT_TRUE(Capture::has("vlan:257 create fail!!!"));
    EXPECT_EQ(model_row(257), kNoRow);
    // One destroy frees a pair for the next.
    ASSERT_EQ(vlan_api_destroy(0, 5), 0);
    EXPECT_EQ(vlan_api_create(0, 257), 0);
}

// Entries of a VLAN TCAM space, or 0 when it holds no blocks.
uint32_t vacl_space(uint32_t module)
{
    return g_module_alloced[0][module] == 0 ? 0u
                                            : csl_reef_tcam_block_list_size_get(0, &g_module_head[0][module]);
}

// The blocks the chip's register gives the space.
uint32_t vacl_blocks(uint32_t map_type)
{
    uint32_t bitmap = 0;
    EXPECT_EQ(csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(0, map_type, &bitmap), 0);
    return bitmap;
}

TEST_F(VlanProps, TheVlanTcamSpacesAreCarvedByThePropertiesAndGivenBackAtDeinit)
{
    // Reservations that do not fit are dropped at software init, with a line.
    Capture::clear();
    up({{"vacl_160bit_cnt", "100"}, {"vacl_320bit_cnt", "0"}, {"vacl_cnt", "40"}, {"mac_vlan_cnt", "70"},
        {"subnet_vlan_cnt", "60"}, {"protocol_vlan_cnt", "1"}});
    const dpl_atolreef_vlan_property &p = g_atolreef_vlan_info[0]->prop;
    EXPECT_EQ(p.vacl_cnt, 40u);
    EXPECT_EQ(p.mac_vlan_cnt, 0u); // 40 + 70 is over 100
    EXPECT_EQ(p.subnet_vlan_cnt, 60u);
    EXPECT_EQ(p.protocol_vlan_cnt, 0u);
    EXPECT_TRUE(Capture::has("vlan tcam reservation 70 is over the 160-bit space 100, set to 0"));
    EXPECT_TRUE(Capture::has("vlan tcam reservation 1 is over the 320-bit space 0, set to 0"));

    // Module 1 holds at least the 160-bit size in blocks the chip names as
    // vt-160; module 2 holds nothing.
    EXPECT_GE(vacl_space(CSL_TCAM_UTILS_VT_160), 100u);
    EXPECT_NE(vacl_blocks(CSL_TCAM_MAP_VT_160), 0u);
    EXPECT_EQ(vacl_space(CSL_TCAM_UTILS_VT_320), 0u);
    EXPECT_EQ(vacl_blocks(CSL_TCAM_MAP_VT_320), 0u);

    // A second hardware init carves the same spaces again.
    const uint32_t blocks = vacl_blocks(CSL_TCAM_MAP_VT_160);
    ASSERT_EQ(dpl_reef_vlan_hw_init(0), 0);
    EXPECT_EQ(vacl_blocks(CSL_TCAM_MAP_VT_160), blocks);

    // The blocks go back with the service.
    down_chip(0);
    EXPECT_EQ(g_module_alloced[0][CSL_TCAM_UTILS_VT_160], 0u);
    EXPECT_EQ(g_module_alloced[0][CSL_TCAM_UTILS_VT_320], 0u);
}

TEST_F(Vlan, TheDefaultVlanTcamSpacesHold128And64Entries)
{
    EXPECT_GE(vacl_space(CSL_TCAM_UTILS_VT_160), 128u);
    EXPECT_GE(vacl_space(CSL_TCAM_UTILS_VT_320), 64u);
    EXPECT_NE(vacl_blocks(CSL_TCAM_MAP_VT_160), 0u);
    EXPECT_NE(vacl_blocks(CSL_TCAM_MAP_VT_320), 0u);
    EXPECT_EQ(vacl_blocks(CSL_TCAM_MAP_VT_160) & vacl_blocks(CSL_TCAM_MAP_VT_320), 0u);
}

TEST_F(Vlan, AChangeThatNeedsAFreePairWhenNoneIsLeftKeepsTheVidOnItsRow)
{
    // 256 pairs in use: VIDs 1..255 each with its own class id... and the
    // shared default pair with VIDs 300 and 301.
    ASSERT_EQ(vlan_api_create(0, 300), 0);
    ASSERT_EQ(vlan_api_create(0, 301), 0);
    for (uint32_t vid = 1; vid <= 255; vid++) {
        ASSERT_EQ(vlan_api_create(0, vid), 0);
        ASSERT_EQ(set_ctrl(vid, VLAN_CTRL_CNT_ID, vid), 0) << vid;
    }
    const uint32_t row = model_row(300);
    Capture::clear();
    EXPECT_EQ(set_ctrl(300, VLAN_CTRL_CNT_ID, 999), -6);
    EXPECT_TRUE(Capture::has("ivlan is full!!!"));
    EXPECT_EQ(model_row(300), row);
    EXPECT_EQ(count_of(300), 2u);
    // Joining an existing pair needs none.
    EXPECT_EQ(set_ctrl(300, VLAN_CTRL_CNT_ID, 17), 0);
    EXPECT_EQ(model_row(300), model_row(17));
}

TEST_F(Vlan, RandomSequencesKeepSoftwareCountsAndModelRowsInStep)
{
    const uint64_t seed = tide_test::test_seed(0x5eed19);
    SCOPED_TRACE(tide_test::seed_note(seed));
    std::mt19937_64 rng(seed);
    std::map<uint32_t, uint32_t> classid; // created VIDs and their class id
    for (int step = 0; step < 3000; step++) {
        const uint32_t vid = static_cast<uint32_t>(rng() % 600);
        const uint32_t what = static_cast<uint32_t>(rng() % 4);
        const bool exists = classid.count(vid) != 0;
        if (what == 0) {
            ASSERT_EQ(vlan_api_create(0, vid), exists ? -8 : 0);
            classid.emplace(vid, 0);
        } else if (what == 1) {
            ASSERT_EQ(vlan_api_destroy(0, vid), exists ? 0 : -7);
            classid.erase(vid);
        } else {
            // Few values, so that VIDs meet on shared rows again.
            const uint32_t c = static_cast<uint32_t>(rng() % 4);
            ASSERT_EQ(set_ctrl(vid, VLAN_CTRL_CLASSID, c), exists ? 0 : -7);
            if (exists) {
                classid[vid] = c;
            }
        }
    }
    // Each class id is on exactly one row of the model; its count in
    // software is the number of VIDs on it; every other row is zero.
    std::map<uint32_t, uint32_t> row_of_class, vids_on_row;
    for (const auto &[vid, c] : classid) {
        const uint32_t row = model_row(vid);
        ASSERT_NE(row, kNoRow) << vid;
        EXPECT_EQ(model_classid(row), c) << vid;
        const auto [it, fresh] = row_of_class.emplace(c, row);
        EXPECT_EQ(it->second, row) << "class " << c << " on two rows";
        vids_on_row[row]++;
        dpl_reef_ivlan_node n{};
        ASSERT_EQ(dpl_reef_vlan_ingress_control_software_info_get(0, vid, &n), 0);
        EXPECT_EQ(n.index, row);
    }
    for (const auto &[row, n] : vids_on_row) {
        const uint32_t vid = [&] {
            for (const auto &[v, c] : classid) {
                if (model_row(v) == row) {
                    return v;
                }
            }
            return 0u;
        }();
        EXPECT_EQ(count_of(vid), n) << "row " << row;
    }
    for (uint32_t row = 0; row < DPL_VLAN_ROWS; row++) {
        if (vids_on_row.count(row) == 0) {
            EXPECT_TRUE(model_row_zero(row)) << "row " << row << " leaked";
        }
    }
    for (uint32_t vid = 0; vid < 600; vid++) {
        if (classid.count(vid) == 0) {
            EXPECT_EQ(model_row(vid), kNoRow) << vid;
        }
    }
}

TEST_F(Vlan, MembershipReachesBothTablesAndTheRecordsRefuseBadInput)
{
    ASSERT_EQ(vlan_api_create(0, 10), 0);
    port_bitmap m{{0xF, 0, 0}}, u{{0x3, 0, 0}}, got_m{}, got_u{};
    ASSERT_EQ(vlan_api_port_set(0, 10, &m, &u), 0);
    port_bitmap add{{0x30, 0, 0}}, add_u{{0x10, 0, 0}};
    ASSERT_EQ(vlan_api_port_add(0, 10, &add, &add_u), 0);
    ASSERT_EQ(vlan_api_port_get(0, 10, &got_m, &got_u), 0);
    EXPECT_EQ(got_m.word[0], 0x3Fu);
    EXPECT_EQ(got_u.word[0], 0x13u);
    port_bitmap del{{0x11, 0, 0}};
    ASSERT_EQ(vlan_api_port_delete(0, 10, &del), 0);
    ASSERT_EQ(vlan_api_port_get(0, 10, &got_m, &got_u), 0);
    EXPECT_EQ(got_m.word[0], 0x2Eu);
    EXPECT_EQ(got_u.word[0], 0x2u);
    EXPECT_EQ(model_word(atolreef_cib_ipro_vbmp_tblm, 10, 0), 0x2Eu);

    // The forward bitmap masks the members the VLAN was given.
    port_bitmap fwd{{0x0F, 0, 0}};
    ASSERT_EQ(dpl_reef_vlan_forward_bitmap_set(0, &fwd, 1), 0);
    EXPECT_EQ(model_word(atolreef_cib_ipro_vbmp_tblm, 10, 0), 0x0Eu);

    // Refusals: status, line, nothing changed.
    port_bitmap stranger{{0, 1, 0}};
    Capture::clear();
    EXPECT_EQ(vlan_api_port_set(0, 10, &stranger, &u), -4);
    EXPECT_TRUE(Capture::has(" portbmp[0]:0 is invalid!!!"));
    EXPECT_EQ(vlan_api_port_add(0, 10, &m, &stranger), -4);
    EXPECT_TRUE(Capture::has(" portbmp_ut[0]:0 is invalid!!!"));
    EXPECT_EQ(vlan_api_port_set(0, 4096, &m, &u), -4);
    EXPECT_TRUE(Capture::has("vlan 4096 is invalid !!!"));
    EXPECT_EQ(vlan_api_port_set(0, 11, &m, &u), -7);
    EXPECT_TRUE(Capture::has("vlan 11 not exist !!!"));
    EXPECT_EQ(vlan_api_port_get(0, 10, nullptr, &u), -20);
    EXPECT_EQ(model_word(atolreef_cib_ipro_vbmp_tblm, 10, 0), 0x0Eu);

    EXPECT_EQ(vlan_api_create(0, 4096), -4);
    EXPECT_TRUE(Capture::has("vid is invalid!!!"));
    EXPECT_EQ(vlan_api_create(0, 10), -8);
    EXPECT_TRUE(Capture::has("vlan 10 already be created !!!"));
    EXPECT_EQ(vlan_api_destroy(0, 12), -7);
    EXPECT_TRUE(Capture::has("vlan 12 not exist !!!"));
    EXPECT_EQ(set_ctrl(10, 7, 1), -24);
    EXPECT_EQ(set_ctrl(10, VLAN_CTRL_CLASSID, 16), -4);
    EXPECT_TRUE(Capture::has("key:10 , input value:16 is invalid!!!"));
    EXPECT_EQ(set_ctrl(10, VLAN_CTRL_PROTOCOL_BMP, 256), -28);
    EXPECT_TRUE(Capture::has("protocol bitmap is out of range!!!"));
    EXPECT_EQ(set_ctrl(11, VLAN_CTRL_CLASSID, 1), -7);
    EXPECT_TRUE(Capture::has("vlan 11 is not exist!!!"));
    EXPECT_EQ(vlan_api_control_set(0, 10, nullptr), -20);
    EXPECT_EQ(set_ctrl(4096, VLAN_CTRL_CLASSID, 1), -4);
    EXPECT_EQ(count_of(10), 1u);
    EXPECT_EQ(model_classid(model_row(10)), 0u);

    // A destroyed VLAN leaves no members behind.
    ASSERT_EQ(vlan_api_destroy(0, 10), 0);
    EXPECT_EQ(model_word(atolreef_cib_ipro_vbmp_tblm, 10, 0), 0u);
    EXPECT_EQ(model_word(atolreef_cib_epro_vlanbitmap_tablem, 10, 0), 0u);
}

TEST_F(Vlan, PortControlsChangeOneFieldAndCheckRanges)
{
    ASSERT_EQ(port_ctrl(3, VLAN_PORT_CTRL_PVID, 100), 0);
    ASSERT_EQ(port_ctrl(3, VLAN_PORT_CTRL_PVID_PRI, 5), 0);
    ASSERT_EQ(port_ctrl(3, VLAN_PORT_CTRL_PVID_CFI, 1), 0);
    EXPECT_EQ(port_ctrl_get(3, VLAN_PORT_CTRL_PVID), 100u);
    EXPECT_EQ(port_ctrl_get(3, VLAN_PORT_CTRL_PVID_PRI), 5u);
    cib_ipro_ipat_tbl_t ipat{};
    ASSERT_EQ(csl_reef_cib_ipro_ipat_tbl_get(0, 0, 3, &ipat), 0);
    EXPECT_EQ(ipat.pvid, 5u << 13 | 1u << 12 | 100u);
    EXPECT_EQ(ipat.vld, 1u); // the rest of the row stays

    // A VID range slot stays ordered.
    ASSERT_EQ(port_ctrl(3, VLAN_PORT_CTRL_VID_MAX0, 200), 0);
    ASSERT_EQ(port_ctrl(3, VLAN_PORT_CTRL_VID_MIN0, 150), 0);
    Capture::clear();
    EXPECT_EQ(port_ctrl(3, VLAN_PORT_CTRL_VID_MIN0, 201), -4);
    EXPECT_EQ(port_ctrl(3, VLAN_PORT_CTRL_VID_MAX0, 149), -4);
    EXPECT_EQ(port_ctrl(3, VLAN_PORT_CTRL_VID_MAX0, 4096), -4);
    EXPECT_EQ(port_ctrl_get(3, VLAN_PORT_CTRL_VID_MIN0), 150u);
    EXPECT_EQ(port_ctrl_get(3, VLAN_PORT_CTRL_VID_MAX0), 200u);
    ASSERT_EQ(port_ctrl(3, VLAN_PORT_CTRL_E_VID_MAX0 + 3, 10), 0); // egress slot 1
    EXPECT_EQ(port_ctrl(3, VLAN_PORT_CTRL_E_VID_MIN0 + 3, 11), -4);

    // The egress row, pieces of one field, the VLAN ACL pairs.
    ASSERT_EQ(port_ctrl(4, VLAN_PORT_CTRL_TPID_INDEX, 2), 0);
    EXPECT_EQ(port_ctrl(4, VLAN_PORT_CTRL_TPID_INDEX, 4), -28);
    EXPECT_TRUE(Capture::has("input para out of range:(0~3)!!!"));
    ASSERT_EQ(port_ctrl(4, 82, 63), 0);
    ASSERT_EQ(port_ctrl(4, 88, 1), 0);
    cib_epro_epat_table_t epat{};
    ASSERT_EQ(csl_reef_cib_epro_epat_table_get(0, 0, 4, &epat), 0);
    EXPECT_EQ(epat.tpid_index, 2u);
    EXPECT_EQ(epat.phbstruct, 63u << 7 | 1u);
    ASSERT_EQ(port_ctrl(4, VLAN_PORT_CTRL_VLAN_ACL_TYPE1, 1), 0);
    EXPECT_EQ(port_ctrl_get(4, VLAN_PORT_CTRL_VLAN_ACL_TYPE1), 1u);
    EXPECT_EQ(port_ctrl_get(4, VLAN_PORT_CTRL_VLAN_ACL_TYPE0), 0u);

    // Refusals.
    EXPECT_EQ(port_ctrl(3, 23, 0), -24);
    EXPECT_TRUE(Capture::has("This key:23 not support!!!"));
    EXPECT_EQ(port_ctrl(3, 59, 0), -24);
    EXPECT_EQ(port_ctrl(3, VLAN_PORT_CTRL_CLASSID, 16), -4);
    EXPECT_TRUE(Capture::has("key:24 , input value:16 is invalid!!!"));
    EXPECT_EQ(port_ctrl(3, VLAN_PORT_CTRL_HASH_OPC, 256), -4);
    EXPECT_TRUE(Capture::has("key:57 ,input value:256 is invalid!!!"));
    EXPECT_EQ(port_ctrl(40, VLAN_PORT_CTRL_PVID, 1), -4);
    EXPECT_TRUE(Capture::has("lport:40 is invalid!!!"));
    EXPECT_EQ(vlan_api_port_control_set(0, 3, nullptr), -20);
}

TEST_F(Vlan, TpidsTrustAndGlobalSettings)
{
    uint32_t v = 0;
    const uint32_t defaults[] = {0x8100, 0x88A8, 0x9100, 0x9200};
    for (uint32_t id = 0; id < 4; id++) {
        ASSERT_EQ(vlan_api_tpid_get(0, id, &v), 0);
        EXPECT_EQ(v, defaults[id]);
    }
    ASSERT_EQ(vlan_api_tpid_set(0, 3, 0x9300), 0);
    ASSERT_EQ(vlan_api_tpid_get(0, 3, &v), 0);
    EXPECT_EQ(v, 0x9300u);
    ASSERT_EQ(vlan_api_tpid_get(0, 2, &v), 0);
    EXPECT_EQ(v, 0x9100u);
    EXPECT_EQ(vlan_api_tpid_set(0, 4, 0x8100), -24);
    EXPECT_EQ(vlan_api_tpid_set(0, 0, 0x10000), -4);

    ASSERT_EQ(vlan_api_port_tpid_bitmap_get(0, 9, &v), 0);
    EXPECT_EQ(v, 1u);
    ASSERT_EQ(vlan_api_port_tpid_bitmap_set(0, 9, 0xA), 0);
    ASSERT_EQ(vlan_api_port_tpid_bitmap_get(0, 9, &v), 0);
    EXPECT_EQ(v, 0xAu);
    ASSERT_EQ(vlan_api_port_tpid_bitmap_get(0, 8, &v), 0);
    EXPECT_EQ(v, 1u);
    EXPECT_EQ(vlan_api_port_tpid_bitmap_set(0, 32, 1), -4);

    vlan_trust_info t{3, 2, 0}, got{};
    ASSERT_EQ(vlan_api_port_trust_type_set(0, 5, VLAN_TRUST_QINDEX_COLOR, &t), 0);
    ASSERT_EQ(vlan_api_port_trust_type_get(0, 5, &v, &got), 0);
    EXPECT_EQ(v, 1u);
    EXPECT_EQ(got.qindex, 3u);
    EXPECT_EQ(got.color, 2u);
    t = vlan_trust_info{8, 0, 0};
    Capture::clear();
    EXPECT_EQ(vlan_api_port_trust_type_set(0, 5, 1, &t), -4);
    EXPECT_TRUE(Capture::has("input param qindex : 8 invalid!!!"));
    t = vlan_trust_info{0, 0, 64};
    EXPECT_EQ(vlan_api_port_trust_type_set(0, 5, VLAN_TRUST_DSCP, &t), -4);
    EXPECT_EQ(vlan_api_port_trust_type_set(0, 5, 8, &t), -4);

    vlan_control g{VLAN_GLB_VLAN_CHECK_ACT, 2};
    ASSERT_EQ(vlan_api_global_cfg_set(0, &g), 0);
    g.value = 0;
    ASSERT_EQ(vlan_api_global_cfg_get(0, &g), 0);
    EXPECT_EQ(g.value, 2u);
    g = vlan_control{VLAN_GLB_PRI_TAG_ADD_MODE, 1};
    ASSERT_EQ(vlan_api_global_cfg_set(0, &g), 0);
    g = vlan_control{VLAN_GLB_PVID_ADD_MODE, 0};
    ASSERT_EQ(vlan_api_global_cfg_get(0, &g), 0);
    EXPECT_EQ(g.value, 0u);
    g = vlan_control{VLAN_GLB_PRI_TAG_TAGNUM, 2};
    EXPECT_EQ(vlan_api_global_cfg_set(0, &g), -13);
    g = vlan_control{8, 0};
    EXPECT_EQ(vlan_api_global_cfg_set(0, &g), -24);
    EXPECT_TRUE(Capture::has("This key:8 not support!!!"));
    g = vlan_control{VLAN_GLB_VLAN_CHECK_ACT, 4};
    EXPECT_EQ(vlan_api_global_cfg_set(0, &g), -4);
    EXPECT_TRUE(Capture::has("input : 4 param is invalid!!!"));
    EXPECT_EQ(vlan_api_global_cfg_set(0, nullptr), -1);
    // The copy modes of ocfi, ipri and icfi (42..56): each key its own 4 bits.
    for (u32 key = 42; key <= 56; key++) {
        g = vlan_control{key, key - 41};
        ASSERT_EQ(vlan_api_global_cfg_set(0, &g), 0) << key;
    }
    for (u32 key = 42; key <= 56; key++) {
        g = vlan_control{key, 99};
        ASSERT_EQ(vlan_api_global_cfg_get(0, &g), 0) << key;
        EXPECT_EQ(g.value, key - 41) << key;
    }
    g = vlan_control{47, 16};
    EXPECT_EQ(vlan_api_global_cfg_set(0, &g), -4);
    EXPECT_TRUE(Capture::has("input : 16 param is invalid!!!"));
    g = vlan_control{47, 99};
    ASSERT_EQ(vlan_api_global_cfg_get(0, &g), 0);
    EXPECT_EQ(g.value, 6u);

    vlan_control vt{VLAN_VT_GLB_UNTAG_KEY_PVID, 1};
    ASSERT_EQ(vlan_api_translation_global_cfg_set(0, &vt), 0);
    vt.value = 0;
    ASSERT_EQ(vlan_api_translation_global_cfg_get(0, &vt), 0);
    EXPECT_EQ(vt.value, 1u);
    vt = vlan_control{8, 1};
    EXPECT_EQ(vlan_api_translation_global_cfg_set(0, &vt), -24);
}

// ---- frames through the model ---------------------------------------------------------------

using Frame = std::vector<uint8_t>;

Frame frame(int tag_vid, uint16_t tpid = 0x8100)
{
    Frame f = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x02, 0, 0, 0, 0, 0x0A};
    if (tag_vid >= 0) {
        f.insert(f.end(), {static_cast<uint8_t>(tpid >> 8), static_cast<uint8_t>(tpid),
                           static_cast<uint8_t>(tag_vid >> 8), static_cast<uint8_t>(tag_vid)});
    }
    f.insert(f.end(), {0x08, 0x00});
    f.resize(f.size() + 60, 0x5A);
    return f;
}

// The ports a frame left by, each with the VID of its outer tag (-1 for
// untagged).
std::map<uint32_t, int> sent()
{
    std::map<uint32_t, int> out;
    for (uint32_t p = 0; p < 32; p++) {
        uint8_t buf[TIDE_SIM_FRAME_MAX];
        uint32_t len = 0;
        while (tide_sim_packet_capture(0, p, buf, sizeof(buf), &len) == 0) {
            out[p] = buf[12] == 0x81 && buf[13] == 0x00 ? ((buf[14] & 0xF) << 8 | buf[15]) : -1;
        }
    }
    return out;
}

uint64_t drops(uint32_t cause)
{
    cib_stat_causeid_stat_result_tbl_t rec{};
    EXPECT_EQ(csl_reef_cib_stat_causeid_stat_result_tbl_get(0, 0, cause, &rec), 0);
    return rec.causeid_stat_result_pkt_num;
}

void inject(uint32_t port, const Frame &f)
{
    ASSERT_EQ(tide_sim_packet_inject(0, port, f.data(), static_cast<uint32_t>(f.size())), 0);
}

TEST_F(Vlan, FramesTakeThePvidAreFilteredAndUntaggedByTheRows)
{
    // VLAN 20 on ports 1, 2 and 3, port 3 untagged; port 1's PVID is 20.
    ASSERT_EQ(tide::test::vlan_ports(0, 20, 0xE, 0x8), 0);
    ASSERT_EQ(port_ctrl(1, VLAN_PORT_CTRL_PVID, 20), 0);
    for (uint32_t p : {1u, 2u, 3u, 4u}) {
        ASSERT_EQ(port_ctrl(p, VLAN_PORT_CTRL_VLAN_CHECK, 1), 0);
    }
    inject(1, frame(-1));
    EXPECT_EQ(sent(), (std::map<uint32_t, int>{{2, 20}, {3, -1}}));

    // Tagged with VLAN 20 on port 4, which is not a member: filtered.
    const uint64_t before = drops(572);
    inject(4, frame(20));
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(drops(572), before + 1);

    // A member joins; a port that drops tagged frames drops them.
    port_bitmap four{{0x10, 0, 0}}, none{};
    ASSERT_EQ(vlan_api_port_add(0, 20, &four, &none), 0);
    inject(4, frame(20));
    EXPECT_EQ(sent(), (std::map<uint32_t, int>{{1, 20}, {2, 20}, {3, -1}}));
    ASSERT_EQ(port_ctrl(4, VLAN_PORT_CTRL_DISCARD_TAGGED, 1), 0);
    const uint64_t tagged = drops(568);
    inject(4, frame(20));
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(drops(568), tagged + 1);

    // A TPID the port does not accept leaves the frame untagged: it takes
    // the PVID, VLAN 1, which does not exist here.
    ASSERT_EQ(vlan_api_port_tpid_bitmap_set(0, 2, 0x2), 0);
    const uint64_t no_map = drops(570);
    inject(2, frame(20));
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(drops(570), no_map + 1);
    // TPID 1 set to the frame's: a tag again.
    ASSERT_EQ(vlan_api_tpid_set(0, 1, 0x8100), 0);
    inject(2, frame(20));
    EXPECT_EQ(sent(), (std::map<uint32_t, int>{{1, 20}, {3, -1}, {4, 20}}));

    // A destroyed VLAN's frames find no map entry.
    ASSERT_EQ(vlan_api_destroy(0, 20), 0);
    const uint64_t vmap = drops(570);
    inject(1, frame(-1));
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(drops(570), vmap + 1);
}


TEST_F(Vlan, L2ControlsAndLearnLimitsOfAVlanAreItsRecord)
{
    // VLANs 30 and 31 on ports 1 and 2, both taking 30 as their PVID.
    ASSERT_EQ(tide::test::vlan_ports(0, 30, 0x6, 0x6), 0);
    ASSERT_EQ(tide::test::vlan_ports(0, 31, 0x6, 0x6), 0);
    for (uint32_t p : {1u, 2u}) {
        ASSERT_EQ(port_ctrl(p, VLAN_PORT_CTRL_PVID, 30), 0);
    }
    const uint32_t shared = model_row(30);
    ASSERT_EQ(model_row(31), shared);

    // Broadcast dropped in VLAN 30 only: it takes a row of its own.
    ASSERT_EQ(l2_api_vlan_control_set(0, 30, L2_VLAN_BCAST_ACT, 0), 0);
    EXPECT_NE(model_row(30), shared);
    uint32_t v = 9;
    ASSERT_EQ(l2_api_vlan_control_get(0, 30, L2_VLAN_BCAST_ACT, &v), 0);
    EXPECT_EQ(v, 0u);
    const uint64_t bc = drops(585);
    inject(1, frame(-1));
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(drops(585), bc + 1);
    ASSERT_EQ(l2_api_vlan_control_set(0, 30, L2_VLAN_BCAST_ACT, 1), 0);
    EXPECT_EQ(model_row(30), shared);
    inject(1, frame(-1));
    EXPECT_EQ(sent(), (std::map<uint32_t, int>{{2, -1}}));

    // Learning off in the VLAN's record.
    ASSERT_EQ(l2_api_vlan_control_set(0, 30, L2_VLAN_LEARN, 0), 0);
    ASSERT_EQ(l2_api_vlan_control_get(0, 30, L2_VLAN_LEARN, &v), 0);
    EXPECT_EQ(v, 0u);
    ASSERT_EQ(l2_api_vlan_control_set(0, 30, L2_VLAN_LEARN, 1), 0);

    // A VLAN's over-limit action: a port limit of 1 on port 1 refuses the
    // second station; the VLAN asks for a drop with its own cause.
    l2_learn_limit lim{};
    lim.flags = L2_LIMIT_PORT | L2_LIMIT_ENABLE | L2_LIMIT_VALUE;
    lim.port = 1;
    lim.limit_en = 1;
    lim.limit_value = 1;
    ASSERT_EQ(l2_api_learn_limit_set(0, &lim), 0);
    l2_learn_limit vl{};
    vl.flags = L2_LIMIT_VLAN | L2_LIMIT_OVER_LIMIT_EN | L2_LIMIT_OVER_ACT;
    vl.vlan = 30;
    vl.over_limit_en = 1;
    vl.over_act = 0;
    ASSERT_EQ(l2_api_learn_limit_set(0, &vl), 0);
    EXPECT_NE(model_row(30), shared);
    l2_learn_limit got{};
    got.flags = L2_LIMIT_VLAN;
    got.vlan = 30;
    ASSERT_EQ(l2_api_learn_limit_get(0, &got), 0);
    EXPECT_EQ(got.over_limit_en, 1u);
    EXPECT_EQ(got.over_act, 0u);
    Frame first = frame(-1), second = frame(-1);
    second[11] = 0x0B;
    inject(1, first);
    EXPECT_EQ(sent().size(), 1u);
    const uint64_t vlan_lmt = drops(592);
    inject(1, second);
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(drops(592), vlan_lmt + 1);

    // Refusals: no count or enable per VLAN; no such VLAN.
    vl.flags = L2_LIMIT_VLAN | L2_LIMIT_ENABLE;
    EXPECT_EQ(l2_api_learn_limit_set(0, &vl), -24);
    vl.flags = L2_LIMIT_VLAN | L2_LIMIT_OVER_ACT;
    vl.vlan = 33;
    EXPECT_EQ(l2_api_learn_limit_set(0, &vl), -7);
    EXPECT_EQ(l2_api_vlan_control_set(0, 33, L2_VLAN_LEARN, 0), -7);
}


TEST_F(Vlan, EgressTranslationRewritesTheOuterTagAndAMissDropsWhenAsked)
{
    // VLAN 40 on ports 1 (untagged, PVID 40) and 2 (tagged).
    ASSERT_EQ(tide::test::vlan_ports(0, 40, 0x6, 0x2), 0);
    ASSERT_EQ(port_ctrl(1, VLAN_PORT_CTRL_PVID, 40), 0);

    vlan_egress_translate_key k{};
    k.key_type = VLAN_EVT_KEY_PORT_OVID;
    k.lport = 2;
    k.outer_vlan_id = 40;
    vlan_translate_action a{};
    a.otag_action = VLAN_TAG_ACT_REPLACE;
    a.new_outer_vlan = 400;
    a.new_outer_pri = 6;
    a.outer_pri_act = 2;
    ASSERT_EQ(vlan_api_egress_translate_add(0, &k, &a), 0);
    vlan_translate_action got{};
    ASSERT_EQ(vlan_api_egress_translate_get(0, &k, &got), 0);
    EXPECT_EQ(got.new_outer_vlan, 400u);
    EXPECT_EQ(got.new_outer_pri, 6u);
    EXPECT_EQ(got.otag_action, 2u);
    EXPECT_EQ(got.outer_pri_act, 2u);

    // The port looks up key type 3 (port and outer VID).
    ASSERT_EQ(port_ctrl(2, VLAN_PORT_CTRL_SIT1, VLAN_EVT_KEY_PORT_OVID), 0);
    inject(1, frame(-1));
    uint8_t buf[TIDE_SIM_FRAME_MAX];
    uint32_t len = 0;
    ASSERT_EQ(tide_sim_packet_capture(0, 2, buf, sizeof(buf), &len), 0);
    EXPECT_EQ(buf[12], 0x81);
    EXPECT_EQ((buf[14] & 0xF) << 8 | buf[15], 400);
    EXPECT_EQ(buf[14] >> 5, 6);
    EXPECT_TRUE(sent().empty());

    // A frame of another VLAN misses; with vtmiss_drop the copy is dropped.
    ASSERT_EQ(tide::test::vlan_ports(0, 41, 0x6, 0x2), 0);
    ASSERT_EQ(port_ctrl(1, VLAN_PORT_CTRL_PVID, 41), 0);
    inject(1, frame(-1));
    EXPECT_EQ(sent(), (std::map<uint32_t, int>{{2, 41}}));
    ASSERT_EQ(port_ctrl(2, VLAN_PORT_CTRL_VTMISS_DROP, 1), 0);
    const uint64_t miss = drops(728);
    inject(1, frame(-1));
    EXPECT_TRUE(sent().empty());
    EXPECT_EQ(drops(728), miss + 1);

    // The walk finds the entry; a delete and a clear empty the table.
    std::vector<vlan_egress_translate_key> keys;
    auto collect = [](uint32_t, vlan_egress_translate_key *key, vlan_translate_action *, void *user) -> int32_t {
        static_cast<std::vector<vlan_egress_translate_key> *>(user)->push_back(*key);
        return 0;
    };
    ASSERT_EQ(vlan_api_egress_translate_traverse(0, collect, &keys), 0);
    ASSERT_EQ(keys.size(), 1u);
    EXPECT_EQ(keys[0].lport, 2u);
    EXPECT_EQ(keys[0].outer_vlan_id, 40u);
    vlan_egress_translate_key k2 = k;
    k2.outer_vlan_id = 41;
    ASSERT_EQ(vlan_api_egress_translate_add(0, &k2, &a), 0);
    ASSERT_EQ(vlan_api_egress_translate_delete(0, &k), 0);
    EXPECT_EQ(vlan_api_egress_translate_get(0, &k, &got), -7);
    ASSERT_EQ(dpl_reef_vlan_egress_translate_clear(0), 0);
    keys.clear();
    ASSERT_EQ(vlan_api_egress_translate_traverse(0, collect, &keys), 0);
    EXPECT_TRUE(keys.empty());

    // Refusals.
    Capture::clear();
    k.key_type = 4;
    EXPECT_EQ(vlan_api_egress_translate_add(0, &k, &a), -4);
    EXPECT_TRUE(Capture::has("input key_type : 4 is invalid param!!!"));
    k.key_type = VLAN_EVT_KEY_PORT_OVID_DOT1P;
    k.inner_vlan_id = 8;
    EXPECT_EQ(vlan_api_egress_translate_add(0, &k, &a), -4);
    k.inner_vlan_id = 0;
    a.outer_pri_act = 1;
    EXPECT_EQ(vlan_api_egress_translate_add(0, &k, &a), -4);
    EXPECT_TRUE(Capture::has("input opri-action : 1 is invalid param!!!"));
    a.outer_pri_act = 0;
    a.dpid = 128;
    EXPECT_EQ(vlan_api_egress_translate_add(0, &k, &a), -4);
    EXPECT_TRUE(Capture::has("dpid is invalid!!!"));
    k.trunk_flag = 1;
    k.tgid = 8;
    a.dpid = 0;
    EXPECT_EQ(vlan_api_egress_translate_add(0, &k, &a), -4);
    EXPECT_TRUE(Capture::has("tgid (8) is out of range!!!"));
    EXPECT_EQ(vlan_api_egress_translate_add(0, nullptr, &a), -20);
}


TEST_F(Vlan, ControlsOfOnePortFromSeveralThreadsLoseNoChange)
{
    // Two fields of the VLAN service and one of the L2 service in the same
    // port row, each changed by its own thread: every change reads the row,
    // so a change made between another's read and write would be lost.
    constexpr u32 kRounds = 200;
    std::thread pvid([] {
        for (u32 i = 1; i <= kRounds; i++) {
            port_ctrl(6, VLAN_PORT_CTRL_PVID, i);
        }
    });
    std::thread gid([] {
        for (u32 i = 0; i < kRounds; i++) {
            port_ctrl(6, VLAN_PORT_CTRL_GID, i % 16);
        }
    });
    std::thread bridge([] {
        for (u32 i = 0; i < kRounds; i++) {
            l2_api_port_control_set(0, 6, L2_PORT_BRIDGE, i & 1);
        }
    });
    pvid.join();
    gid.join();
    bridge.join();
    EXPECT_EQ(port_ctrl_get(6, VLAN_PORT_CTRL_PVID), kRounds);
    EXPECT_EQ(port_ctrl_get(6, VLAN_PORT_CTRL_GID), (kRounds - 1) % 16);
    u32 v = 9;
    ASSERT_EQ(l2_api_port_control_get(0, 6, L2_PORT_BRIDGE, &v), 0);
    EXPECT_EQ(v, (kRounds - 1) & 1);
}

} // namespace
