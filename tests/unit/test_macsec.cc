// The MACsec service on the model: the engine's start and its bounded
// waits, what a mask writes and in which order, the SA and SC rows of both
// SC modes, packet numbers, flows, white lists, global settings,
// statistics, the refusals, and PN expiry through the interrupt engine.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <vector>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/macsec/dpl_reef_macsec.h"
#include "support/fixture.h"
#include "support/wait.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

constexpr u32 kEnc = MACSEC_DIR_ENC, kDec = MACSEC_DIR_DEC;

class Macsec : public SimChips {
protected:
    Macsec() : SimChips(1, 1) {}

    // Writes that reached the model since the last call.
    static std::vector<tide_sim_write> writes()
    {
        std::vector<tide_sim_write> w = tide::test::sim_writes(0);
        tide_sim_write_log_clear(0);
        return w;
    }
    static void sc_mode(u32 mode)
    {
        macsec_global g{MACSEC_GLOBAL_SC_MODE, 0, 0, mode};
        ASSERT_EQ(macsec_api_globle_set(0, &g), 0);
    }
    static cib_xsec_enc_enc_sa_tbl_t enc_sa(u32 row)
    {
        cib_xsec_enc_enc_sa_tbl_t r{};
        EXPECT_EQ(csl_reef_cib_xsec_enc_enc_sa_tbl_get(0, 0, row, &r), 0);
        return r;
    }
    static cib_xsec_enc_enc_sak_tbl_t enc_sak(u32 row)
    {
        cib_xsec_enc_enc_sak_tbl_t k{};
        EXPECT_EQ(csl_reef_cib_xsec_enc_enc_sak_tbl_get(0, 0, row, &k), 0);
        return k;
    }
    static u32 word(u32 tab, u32 index)
    {
        u32 v = 0;
        EXPECT_EQ(csl_reef_tab_get_direct_uint32(0, tab, index, &v, 1, CSL_TAB_HW), 0);
        return v;
    }
    static macsec_secure_assoc sak_assoc(u32 crypto, u64 base)
    {
        macsec_secure_assoc a{};
        a.mask = MACSEC_SA_CRYPTO | MACSEC_SA_SAK;
        a.crypto = crypto;
        a.sak_valid = 1;
        for (u32 i = 0; i < 4; i++) {
            a.sak[i] = base + i;
        }
        return a;
    }
};

TEST_F(Macsec, HardwareInitWaitsBoundedForTheDoneBitsAndSkipsABypassedEngine)
{
    // Brought up: the buffer threshold, the clearing modes.
    cib_xsec_enc_init_ctrl_t ec{};
    ASSERT_EQ(csl_reef_cib_xsec_enc_init_ctrl_get(0, 0, &ec), 0);
    EXPECT_EQ(ec.enc_oadp_total_buf_xoff_th, 80u);
    EXPECT_EQ(ec.enc_mib_ctrl_clr_mode, 0u);
    // Done bits that never come: -9 after the bounded poll, nothing more.
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_MACSEC_INIT, 1), 0);
    Capture::clear();
    writes();
    EXPECT_EQ(dpl_reef_macsec_hw_init(0), SHR_E_TIMEOUT);
    EXPECT_TRUE(Capture::has("macsec enc init not done!\n"));
    EXPECT_TRUE(writes().empty());
    // A bypassed engine is not started: no poll, so no time-out.
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_xsec_glb_macsec_bypass, 1), 0);
    writes();
    EXPECT_EQ(dpl_reef_macsec_hw_init(0), 0);
    EXPECT_TRUE(writes().empty());
    ASSERT_EQ(csl_reef_reg_set_u32(0, cib_xsec_glb_macsec_bypass, 0), 0);
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_MACSEC_INIT, 0), 0);
    EXPECT_EQ(dpl_reef_macsec_hw_init(0), 0);
}

TEST_F(Macsec, HardwareInitTakesTheFastPathOfEachPortFromItsProperties)
{
    ASSERT_EQ(shr_property_set(0, "macsec_fastp_enable_3", "1"), 0);
    ASSERT_EQ(shr_property_set(0, "macsec_fastp_dport_3", "7"), 0);
    ASSERT_EQ(dpl_reef_macsec_hw_init(0), 0);
    macsec_port_config c{};
    ASSERT_EQ(macsec_api_port_config_get(0, 3, kDec, &c), 0);
    EXPECT_EQ(c.lb_fastp_en, 1u);
    EXPECT_EQ(c.lb_dport, 7u);
    ASSERT_EQ(macsec_api_port_config_get(0, 4, kDec, &c), 0);
    EXPECT_EQ(c.lb_fastp_en, 0u);
}

TEST_F(Macsec, AZeroMaskWritesNothingExceptAnSaRow)
{
    writes();
    macsec_port_config pc{};
    macsec_secure_chan sc{};
    macsec_flow fl{0, 1, 1, 1, 1, kDec};
    for (u32 dir : {kEnc, kDec}) {
        EXPECT_EQ(macsec_api_port_config_set(0, 2, dir, &pc), 0);
        EXPECT_EQ(macsec_api_secure_chan_create(0, 2, 0, dir, &sc, 3), 0);
    }
    EXPECT_EQ(macsec_api_flow_create(0, 2, 0, &fl, MACSEC_FLOW_DROP), 0);
    macsec_global g{};
    EXPECT_EQ(macsec_api_globle_set(0, &g), 0);
    EXPECT_TRUE(writes().empty());
    // An SA is written back valid, and only its row.
    macsec_secure_assoc a{};
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 2, 3, 0, kEnc, &a, 1), 0);
    const std::vector<tide_sim_write> w = writes();
    ASSERT_FALSE(w.empty());
    const cib_tab_info &t = atolreef_cib_xsec_enc_enc_sa_tblm;
    const u32 base = t.addr[0], row = 7, bytes = (t.width + 31) / 32 * 4;
    for (const tide_sim_write &x : w) {
        EXPECT_GE(x.addr, base + row * bytes);
        EXPECT_LT(x.addr, base + (row + 1) * bytes);
    }
    EXPECT_EQ(enc_sa(7).sa_tbl_vld, 1u);
}

TEST_F(Macsec, Crypto0WritesOnlyTheUpperKeyWordsAndOtherSuitesAllFour)
{
    macsec_secure_assoc a = sak_assoc(1, 0x100);
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 0, 0, kEnc, &a, 0), 0);
    a = sak_assoc(0, 0x200);
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 0, 0, kEnc, &a, 0), 0);
    cib_xsec_enc_enc_sak_tbl_t k = enc_sak(0);
    EXPECT_EQ(k.enc_sak_table_3, 0x203u);
    EXPECT_EQ(k.enc_sak_table_2, 0x202u);
    EXPECT_EQ(k.enc_sak_table_1, 0x101u); // as the table had them
    EXPECT_EQ(k.enc_sak_table_0, 0x100u);
    a = sak_assoc(2, 0x300);
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 0, 0, kEnc, &a, 0), 0);
    k = enc_sak(0);
    EXPECT_EQ(k.enc_sak_table_1, 0x301u);
    EXPECT_EQ(k.enc_sak_table_0, 0x300u);
    EXPECT_EQ(word(cib_xsec_enc_enc_sak_entry_vld, 0) & 1u, 1u);
    // Valid 0 clears the key's bit and leaves its words.
    a.sak_valid = 0;
    a.sak[3] = 0;
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 0, 0, kEnc, &a, 0), 0);
    EXPECT_EQ(word(cib_xsec_enc_enc_sak_entry_vld, 0) & 1u, 0u);
    EXPECT_EQ(enc_sak(0).enc_sak_table_3, 0x303u);
    // The same on the decrypt side.
    a = sak_assoc(0, 0x400);
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 33, 0, kDec, &a, 1), 0);
    cib_xsec_dec_dec_sak_tbl_t d{};
    ASSERT_EQ(csl_reef_cib_xsec_dec_dec_sak_tbl_get(0, 0, 67, &d), 0);
    EXPECT_EQ(d.dec_sak_table_3, 0x403u);
    EXPECT_EQ(d.dec_sak_table_0, 0u);
    EXPECT_EQ(word(cib_xsec_dec_dec_sak_entry_vld, 2) >> 3 & 1u, 1u);
}

TEST_F(Macsec, ASecureOffsetOf10FailsAfterTheKeyIsWritten)
{
    macsec_secure_assoc a = sak_assoc(1, 0x500);
    a.mask |= MACSEC_SA_SECURE_OFFSET;
    a.secure_offset = 10;
    Capture::clear();
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 4, 0, kEnc, &a, 1), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("support secure_offset:0-30-50\n"));
    EXPECT_EQ(enc_sak(9).enc_sak_table_0, 0x500u);
    const cib_xsec_enc_enc_sa_tbl_t r = enc_sa(9);
    EXPECT_EQ(r.sa_tbl_vld, 0u);
    EXPECT_EQ(r.curr_cs, 0u);
    // 0, 30 and 50 are codes 0 to 2.
    a.mask = MACSEC_SA_SECURE_OFFSET;
    for (u32 i = 0; i < 3; i++) {
        a.secure_offset = i * 20 + (i != 0 ? 10 : 0);
        ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 4, 0, kEnc, &a, 1), 0);
        EXPECT_EQ(enc_sa(9).enc_ofs, i);
        macsec_secure_assoc back{};
        ASSERT_EQ(macsec_api_secure_assoc_get(0, 0, 4, 1, kEnc, &back), 0);
        EXPECT_EQ(back.secure_offset, a.secure_offset);
    }
}

TEST_F(Macsec, SaRowsFollowTheScMode)
{
    macsec_secure_assoc a{};
    Capture::clear();
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 5, 0, kEnc, &a, 2), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("current sc mode is 1:2, an number should be less than 2\n"));
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 5, 0, kEnc, &a, 1), 0);
    EXPECT_EQ(enc_sa(11).sa_tbl_vld, 1u);
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 63, 0, kEnc, &a, 1), 0);
    EXPECT_EQ(enc_sa(127).sa_tbl_vld, 1u);
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 64, 0, kEnc, &a, 0), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("sc index is invalid!\n"));
    sc_mode(1);
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 5, 0, kEnc, &a, 2), 0);
    EXPECT_EQ(enc_sa(22).sa_tbl_vld, 1u);
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 5, 0, kEnc, &a, 4), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("an number is invalid!\n"));
    EXPECT_EQ(macsec_api_secure_assoc_create(0, 0, 32, 0, kEnc, &a, 0), SHR_E_PARAM);
    EXPECT_TRUE(Capture::has("current SC mode is 1:4, sc idx must less than 32!\n"));
    // Both sides take the mode.
    cib_xsec_dec_init_ctrl_t d{};
    ASSERT_EQ(csl_reef_cib_xsec_dec_init_ctrl_get(0, 0, &d), 0);
    EXPECT_EQ(d.dec_global_ctrl_sc_mode, 1u);
    // Destroying SC 5 clears its four SAs in mode 1:4.
    for (u32 an = 0; an < 4; an++) {
        ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 5, 0, kEnc, &a, an), 0);
    }
    ASSERT_EQ(macsec_api_secure_chan_destroy(0, 0, kEnc, 5), 0);
    for (u32 row = 20; row < 24; row++) {
        EXPECT_EQ(enc_sa(row).sa_tbl_vld, 0u) << row;
    }
}

TEST_F(Macsec, SecureChannelsWriteTheirFieldsAndExactMatchEntry)
{
    macsec_secure_chan c{};
    c.mask = MACSEC_SC_PROTECT_MODE | MACSEC_SC_ENABLE | MACSEC_SC_EM_DPORT | MACSEC_SC_EM_DMAC | MACSEC_SC_SCI |
             MACSEC_SC_SA0_AN | MACSEC_SC_SA1_AN | MACSEC_SC_TCI_ES | MACSEC_SC_TCI_SC | MACSEC_SC_TCI_AN |
             MACSEC_SC_PROTECT_FRAMES;
    c.protect_mode = 1;
    c.sc_enable = 1;
    c.em_dport = 9;
    const u8 mac[6] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    memcpy(c.em_dmac, mac, 6);
    c.sci = 0x0011223344550001ull;
    c.sa_an[0] = 2;
    c.sa_an[1] = 3;
    c.tci = 0x1 << 4 | 0x4 | 0x2;
    c.protect_frames = 1;
    ASSERT_EQ(macsec_api_secure_chan_create(0, 9, 0, kEnc, &c, 6), 0);
    cib_xsec_glb_enc_em_tbl_t e{};
    ASSERT_EQ(csl_reef_cib_xsec_glb_enc_em_tbl_get(0, 0, 6, &e), 0);
    EXPECT_EQ(e.em_tbl_cfg_vld, 1u);
    EXPECT_EQ(e.sc, 6u);
    EXPECT_EQ(e.profile_id, 1u);
    EXPECT_EQ(word(cib_xsec_glb_enc_em_cfg, 12), 0x22334455u);
    EXPECT_EQ(word(cib_xsec_glb_enc_em_cfg, 13), 0x090011u);
    macsec_secure_chan back{};
    ASSERT_EQ(macsec_api_secure_chan_get(0, 9, kEnc, 6, &back), 0);
    EXPECT_EQ(back.protect_mode, 1u);
    EXPECT_EQ(back.sci, c.sci);
    EXPECT_EQ(back.em_dport, 9u);
    EXPECT_EQ(memcmp(back.em_dmac, mac, 6), 0);
    EXPECT_EQ(back.sa_an[0], 2u);
    EXPECT_EQ(back.sa_an[1], 3u);
    EXPECT_EQ(back.tci, c.tci);
    EXPECT_EQ(back.protect_frames, 1u);
    // One field alone leaves the others.
    macsec_secure_chan one{};
    one.mask = MACSEC_SC_SA1_AN;
    one.sa_an[1] = 1;
    ASSERT_EQ(macsec_api_secure_chan_create(0, 9, 0, kEnc, &one, 6), 0);
    ASSERT_EQ(macsec_api_secure_chan_get(0, 9, kEnc, 6, &back), 0);
    EXPECT_EQ(back.sa_an[1], 1u);
    EXPECT_EQ(back.sa_an[0], 2u);
    EXPECT_EQ(back.sci, c.sci);
    // The decrypt side: row, SCI and its valid bit.
    macsec_secure_chan d{};
    d.mask = MACSEC_SC_VALIDATE_MODE | MACSEC_SC_ENABLE | MACSEC_SC_SCI | MACSEC_SC_SCI_ENABLE | MACSEC_SC_SA3_AN;
    d.validate_mode = 3;
    d.sc_enable = 1;
    d.sci = 0xABCDull;
    d.sci_enable = 1;
    d.sa_an[3] = 3;
    ASSERT_EQ(macsec_api_secure_chan_create(0, 9, 0, kDec, &d, 40), 0);
    ASSERT_EQ(macsec_api_secure_chan_get(0, 9, kDec, 40, &back), 0);
    EXPECT_EQ(back.validate_mode, 3u);
    EXPECT_EQ(back.sci, 0xABCDull);
    EXPECT_EQ(back.sci_enable, 1u);
    EXPECT_EQ(back.sa_an[3], 3u);
    // Destroying wipes row, entry and words.
    ASSERT_EQ(macsec_api_secure_chan_destroy(0, 9, kEnc, 6), 0);
    ASSERT_EQ(macsec_api_secure_chan_get(0, 9, kEnc, 6, &back), 0);
    EXPECT_EQ(back.sci, 0u);
    EXPECT_EQ((back.mask & MACSEC_SC_EM_DMAC), 0u);
    EXPECT_EQ(word(cib_xsec_glb_enc_em_cfg, 13), 0u);
    ASSERT_EQ(macsec_api_secure_chan_destroy(0, 9, kDec, 40), 0);
    ASSERT_EQ(macsec_api_secure_chan_get(0, 9, kDec, 40, &back), 0);
    EXPECT_EQ(back.sci_enable, 0u);
    EXPECT_EQ(back.validate_mode, 0u);
}

TEST_F(Macsec, PacketNumbersSaltsAndReplay)
{
    macsec_secure_assoc a{};
    a.mask = MACSEC_SA_XPN_ENABLE | MACSEC_SA_NEXT_PN | MACSEC_SA_PN_H32 | MACSEC_SA_PN_TH | MACSEC_SA_IV |
             MACSEC_SA_PN_ROLLOVER;
    a.xpn_enable = 1;
    a.next_pn = 0x10;
    a.pn_h32 = 0x2;
    a.pn_th = 0x1000;
    a.pn_rollover = 1;
    a.ssci = 0x11;
    a.salt_l = 0x22;
    a.salt_m = 0x33;
    a.salt_h = 0x44;
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 1, 2, 0, kEnc, &a, 0), 0);
    u64 pn[2] = {0, 0};
    ASSERT_EQ(macsec_api_next_pn_get(0, 1, 2, 0, kEnc, pn), 0);
    EXPECT_EQ(pn[0], 0x200000010ull);
    const cib_xsec_enc_enc_sa_tbl_t r = enc_sa(4);
    EXPECT_EQ(r.salt_1, 0x44u);
    EXPECT_EQ(r.salt_0, 0x3300000022ull);
    EXPECT_EQ(r.ssci, 0x11u);
    EXPECT_EQ(r.pn_th, 0x1000u);
    // Without XPN the next number is written whole and pn-h32 is ignored.
    a.mask = MACSEC_SA_XPN_ENABLE | MACSEC_SA_NEXT_PN | MACSEC_SA_PN_H32;
    a.xpn_enable = 0;
    a.next_pn = 7;
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 1, 2, 0, kEnc, &a, 0), 0);
    ASSERT_EQ(macsec_api_next_pn_get(0, 1, 2, 0, kEnc, pn), 0);
    EXPECT_EQ(pn[0], 7u);
    macsec_secure_assoc back{};
    ASSERT_EQ(macsec_api_secure_assoc_get(0, 1, 2, 0, kEnc, &back), 0);
    EXPECT_EQ(back.pn_rollover, 1u);
    EXPECT_EQ(back.salt_m, 0x33u);
    // The decrypt side keeps the lowest number and the replay window.
    macsec_secure_assoc d{};
    d.mask = MACSEC_SA_NEXT_PN | MACSEC_SA_LOWEST_PN | MACSEC_SA_REPLAY_PROTECT | MACSEC_SA_REPLAY_WINDOW;
    d.next_pn = 100;
    d.lowest_pn = 50;
    d.replay_protect = 1;
    d.replay_window = 64;
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 1, 2, 0, kDec, &d, 1), 0);
    ASSERT_EQ(macsec_api_secure_assoc_get(0, 1, 2, 1, kDec, &back), 0);
    EXPECT_EQ(back.next_pn, 100u);
    EXPECT_EQ(back.lowest_pn, 50u);
    EXPECT_EQ(back.replay_protect, 1u);
    EXPECT_EQ(back.replay_window, 64u);
    u64 set[2] = {200, 150};
    ASSERT_EQ(macsec_api_next_pn_set(0, 1, 2, 1, kDec, set), 0);
    ASSERT_EQ(macsec_api_next_pn_get(0, 1, 2, 1, kDec, pn), 0);
    EXPECT_EQ(pn[0], 200u);
    EXPECT_EQ(pn[1], 150u);
    // Destroying an encrypt SA wipes it and turns the rollover off.
    ASSERT_EQ(macsec_api_secure_assoc_destroy(0, 1, 0, 2, kEnc), 0);
    ASSERT_EQ(macsec_api_secure_assoc_get(0, 1, 2, 0, kEnc, &back), 0);
    EXPECT_EQ(back.pn_rollover, 0u);
    EXPECT_EQ(back.next_pn, 0u);
    EXPECT_EQ(back.sak_valid, 0u);
    EXPECT_EQ(enc_sa(4).sa_tbl_vld, 0u);
}

TEST_F(Macsec, PortsFlowsWhiteListsAndGlobals)
{
    macsec_port_config p{};
    p.mask = MACSEC_PORT_ENABLE | MACSEC_PORT_WHITE_LIST | MACSEC_PORT_BYPASS_VID | MACSEC_PORT_DEFAULT_SC |
             MACSEC_PORT_SAFE_MODE | MACSEC_PORT_LOOPBACK;
    p.macsec_enable = 1;
    p.white_list_enable = 1;
    p.bypass_vid = 100;
    p.default_sc = 12;
    p.safe_mode = 1;
    p.lb_vld = 1;
    p.lb_dport = 30;
    for (u32 dir : {kEnc, kDec}) {
        ASSERT_EQ(macsec_api_port_config_set(0, 5, dir, &p), 0);
        macsec_port_config back{};
        ASSERT_EQ(macsec_api_port_config_get(0, 5, dir, &back), 0);
        EXPECT_EQ(back.macsec_enable, 1u);
        EXPECT_EQ(back.white_list_enable, 1u);
        EXPECT_EQ(back.bypass_vid, 100u);
        EXPECT_EQ(back.default_sc, 12u);
        EXPECT_EQ(back.sectag_offset, 12u);
    }
    cib_xsec_glb_enc_port_tbl_t ep{};
    ASSERT_EQ(csl_reef_cib_xsec_glb_enc_port_tbl_get(0, 0, 5, &ep), 0);
    EXPECT_EQ(ep.default_action, 1u);
    EXPECT_EQ(ep.profile_id, 1u);
    macsec_port_config back{};
    ASSERT_EQ(macsec_api_port_config_get(0, 5, kDec, &back), 0);
    EXPECT_EQ(back.safe_mode, 1u);
    EXPECT_EQ(back.lb_dport, 30u);
    u32 cap[4] = {};
    ASSERT_EQ(macsec_api_port_capability_get(0, 5, kDec, cap), 0);
    EXPECT_EQ(cap[1], 128u);
    EXPECT_EQ(cap[3], 64u);
    // Flows: a condition whose switch is 0 is left alone.
    macsec_flow f{MACSEC_FLOW_EC01 | MACSEC_FLOW_UNKNOWN_SCI, 1, 0, 0, 0, kDec};
    ASSERT_EQ(macsec_api_flow_create(0, 5, 0, &f, MACSEC_FLOW_DROP), 0);
    cib_xsec_dec_dec_port_cfg_tbl_t pc{};
    ASSERT_EQ(csl_reef_cib_xsec_dec_dec_port_cfg_tbl_get(0, 0, 5, &pc), 0);
    EXPECT_EQ(pc.dec_port_ctrl_ec01_bypass, 1u);
    EXPECT_EQ(pc.dec_port_ctrl_unknownsci_bypass, 0u);
    EXPECT_EQ(pc.port_cfg_tbl_vld, 1u);
    u32 action = 0;
    macsec_flow q{MACSEC_FLOW_EC01, 0, 0, 0, 0, kDec};
    ASSERT_EQ(macsec_api_flow_get(0, 5, 0, &q, &action), 0);
    EXPECT_EQ(q.ec01, 1u);
    EXPECT_EQ(action, MACSEC_FLOW_DROP);
    ASSERT_EQ(macsec_api_flow_destroy(0, 5, 0), 0);
    ASSERT_EQ(csl_reef_cib_xsec_dec_dec_port_cfg_tbl_get(0, 0, 5, &pc), 0);
    EXPECT_EQ(pc.dec_port_ctrl_ec01_bypass, 0u);
    EXPECT_EQ(pc.dec_port_ctrl_default_sc, 12u);
    // White lists.
    u16 v[2] = {0x88F7, 0};
    ASSERT_EQ(macsec_api_white_list_set(0, 3, kEnc, MACSEC_WHITE_LIST_ETYPE, v), 0);
    v[0] = 0xFFFF;
    ASSERT_EQ(macsec_api_white_list_set(0, 3, kEnc, MACSEC_WHITE_LIST_ETYPE_MASK, v), 0);
    EXPECT_EQ(word(cib_xsec_enc_enc_white_list_etype_cfg, 3), 0xFFFF88F7u);
    u16 t[2] = {0x9100, 1};
    ASSERT_EQ(macsec_api_white_list_set(0, 4, kDec, MACSEC_WHITE_LIST_IVLAN, t), 0);
    u16 got[2] = {0, 0};
    ASSERT_EQ(macsec_api_white_list_get(0, 4, kDec, MACSEC_WHITE_LIST_IVLAN, got), 0);
    EXPECT_EQ(got[0], 0x9100u);
    EXPECT_EQ(got[1], 1u);
    // Global settings.
    macsec_global g{MACSEC_GLOBAL_DEC_ENC_LOOPBACK, 0, 1, 0};
    ASSERT_EQ(macsec_api_globle_set(0, &g), 0);
    macsec_global gg{};
    ASSERT_EQ(macsec_api_globle_get(0, &gg), 0);
    EXPECT_EQ(gg.dec_enc_loopback, 1u);
    EXPECT_EQ(gg.bypass, 0u);
    // The empty slots answer 0.
    EXPECT_EQ(macsec_api_secure_chan_traverse(0), 0);
    EXPECT_EQ(macsec_api_event_register(0), 0);
    EXPECT_EQ(macsec_api_stat_get32(0), 0);
}

TEST_F(Macsec, BadInputIsRefusedWithItsLineAndChangesNothing)
{
    macsec_port_config p{};
    macsec_secure_chan c{};
    macsec_secure_assoc a{};
    macsec_flow f{};
    macsec_global g{};
    u16 v[2] = {0, 0};
    u64 pn[2] = {0, 0};
    u64 value = 0;
    struct Case {
        std::function<i32()> call;
        i32 rc;
        const char *line;
    };
    const Case cases[] = {
        {[&] { return macsec_api_port_config_set(0, 0, 2, &p); }, SHR_E_NOT_SUPPORT, "not support dir:2\n"},
        {[&] { return macsec_api_port_config_set(0, 32, kEnc, &p); }, SHR_E_PARAM, "port index is invalid!\n"},
        {[&] { return macsec_api_port_config_set(0, 0, kEnc, nullptr); }, SHR_E_NULL_PTR, "input para is NULL pointer\n"},
        {[&] {
             p = {};
             p.mask = MACSEC_PORT_ENABLE | MACSEC_PORT_BYPASS_VID;
             p.macsec_enable = 1;
             p.bypass_vid = 4096;
             return macsec_api_port_config_set(0, 0, kEnc, &p);
         },
         SHR_E_PARAM, "invalid vlan id!\n"},
        {[&] {
             p = {};
             p.mask = MACSEC_PORT_SAFE_MODE;
             p.safe_mode = 2;
             return macsec_api_port_config_set(0, 0, kDec, &p);
         },
         SHR_E_PARAM, "safe mode should be less than 2!\n"},
        {[&] {
             p = {};
             p.mask = MACSEC_PORT_SECTAG_OFFSET;
             p.sectag_offset = 8;
             return macsec_api_port_config_set(0, 0, kEnc, &p);
         },
         SHR_E_PARAM, "sectag offset can only be set to 12!\n"},
        {[&] {
             c = {};
             c.mask = MACSEC_SC_ENABLE | MACSEC_SC_PROTECT_MODE;
             c.protect_mode = 3;
             return macsec_api_secure_chan_create(0, 0, 0, kEnc, &c, 1);
         },
         SHR_E_PARAM, "protect mode should be less than 3!\n"},
        {[&] {
             c = {};
             c.mask = MACSEC_SC_SCI | MACSEC_SC_SA2_AN;
             c.sa_an[2] = 4;
             return macsec_api_secure_chan_create(0, 0, 0, kDec, &c, 1);
         },
         SHR_E_PARAM, "sa2_an:4 an number is invalid, need to less than 4.\n"},
        {[&] {
             c = {};
             c.mask = MACSEC_SC_TCI_AN | MACSEC_SC_SCI;
             c.tci = 2 << 4;
             return macsec_api_secure_chan_create(0, 0, 0, kEnc, &c, 1);
         },
         SHR_E_PARAM, "current SC mode is 1:2, encoding sa must less than 2!\n"},
        {[&] {
             c = {};
             c.mask = MACSEC_SC_EM_DPORT | MACSEC_SC_EM_DMAC;
             c.em_dport = 32;
             return macsec_api_secure_chan_create(0, 0, 0, kEnc, &c, 1);
         },
         SHR_E_PARAM, "invalid port id!\n"},
        {[&] {
             a = sak_assoc(3, 1);
             return macsec_api_secure_assoc_create(0, 0, 1, 0, kEnc, &a, 0);
         },
         SHR_E_PARAM, "cipher suite should be less than 3!\n"},
        {[&] {
             f = {MACSEC_FLOW_EC10, 0, 1, 0, 0, kEnc};
             return macsec_api_flow_create(0, 0, 0, &f, MACSEC_FLOW_DROP);
         },
         SHR_E_NOT_SUPPORT, "flow not support direction : 0\n"},
        {[&] {
             f = {MACSEC_FLOW_EC10, 0, 1, 0, 0, kDec};
             return macsec_api_flow_create(0, 0, 0, &f, MACSEC_FLOW_MARK_ERR);
         },
         SHR_E_NOT_SUPPORT, "flow not support mark err\n"},
        {[&] {
             g = {MACSEC_GLOBAL_SC_MODE | MACSEC_GLOBAL_BYPASS, 1, 0, 2};
             return macsec_api_globle_set(0, &g);
         },
         SHR_E_PARAM, "invalid sc mode, it shoule be less than 2!\n"},
        {[&] { return macsec_api_white_list_set(0, 8, kEnc, MACSEC_WHITE_LIST_ETYPE, v); }, SHR_E_PARAM,
         "white list index not valid!\n"},
        {[&] { return macsec_api_white_list_set(0, 5, kEnc, MACSEC_WHITE_LIST_OVLAN, v); }, SHR_E_PARAM,
         "invlid tpid index!\n"},
        {[&] { return macsec_api_white_list_set(0, 0, kEnc, 4, v); }, SHR_E_NOT_SUPPORT,
         "white list not support type:4\n"},
        {[&] { return macsec_api_stat_get(0, 0, 18, 0, 0, &value, 0); }, SHR_E_NOT_SUPPORT, "not support stat:18\n"},
        {[&] { return macsec_api_stat_get(0, 0, 3, 64, 0, &value, 0); }, SHR_E_PARAM, "sc index is invalid!\n"},
        {[&] { return macsec_api_stat_clear(0, 2, 0, kEnc); }, SHR_E_NOT_SUPPORT, "stat clear not support type:2\n"},
        {[&] { return macsec_api_next_pn_set(0, 0, 1, 2, kEnc, pn); }, SHR_E_PARAM,
         "current sc mode is 1:2, an number should be less than 2\n"},
    };
    writes();
    for (const Case &k : cases) {
        Capture::clear();
        EXPECT_EQ(k.call(), k.rc) << k.line;
        EXPECT_TRUE(Capture::has(k.line)) << k.line;
        EXPECT_TRUE(writes().empty()) << k.line;
    }
}

TEST_F(Macsec, StatisticsCountProtectedFramesAndClearByPortAndSc)
{
    macsec_secure_chan c{};
    c.mask = MACSEC_SC_ENABLE | MACSEC_SC_PROTECT_MODE | MACSEC_SC_TCI_AN;
    c.sc_enable = 1;
    c.protect_mode = 1; // confidentiality: counted as encrypted
    c.tci = 1 << 4;
    ASSERT_EQ(macsec_api_secure_chan_create(0, 4, 0, kEnc, &c, 40), 0);
    macsec_secure_assoc a{};
    a.mask = MACSEC_SA_NEXT_PN;
    a.next_pn = 1;
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 4, 40, 0, kEnc, &a, 1), 0);
    u32 done = 0;
    ASSERT_EQ(tide_sim_macsec_tx(0, 4, 40, 5, 100, &done), 0);
    EXPECT_EQ(done, 5u);
    u64 v = 0;
    ASSERT_EQ(macsec_api_stat_get(0, 4, MACSEC_STAT_ENC_ENCRYPTED_PKTS, 40, 0, &v, 0), 0);
    EXPECT_EQ(v, 5u);
    ASSERT_EQ(macsec_api_stat_get(0, 4, MACSEC_STAT_ENC_ENCRYPTED_OCTETS, 0, 0, &v, 0), 0);
    EXPECT_EQ(v, 500u);
    u64 pn[2] = {0, 0};
    ASSERT_EQ(macsec_api_next_pn_get(0, 4, 40, 1, kEnc, pn), 0);
    EXPECT_EQ(pn[0], 6u);
    // SC 40 is cleared through the upper register, port 4 through its bit.
    ASSERT_EQ(macsec_api_stat_clear(0, MACSEC_STAT_CLEAR_SC, 40, kEnc), 0);
    ASSERT_EQ(macsec_api_stat_get(0, 4, MACSEC_STAT_ENC_ENCRYPTED_PKTS, 40, 0, &v, 0), 0);
    EXPECT_EQ(v, 0u);
    ASSERT_EQ(macsec_api_stat_get(0, 4, MACSEC_STAT_ENC_ENCRYPTED_OCTETS, 0, 0, &v, 0), 0);
    EXPECT_EQ(v, 500u);
    ASSERT_EQ(macsec_api_stat_clear(0, MACSEC_STAT_CLEAR_PORT, 4, kEnc), 0);
    ASSERT_EQ(macsec_api_stat_get(0, 4, MACSEC_STAT_ENC_ENCRYPTED_OCTETS, 0, 0, &v, 0), 0);
    EXPECT_EQ(v, 0u);
    u32 pulse = 1;
    ASSERT_EQ(csl_reef_reg_get_u32(0, cib_xsec_enc_enc_mib_sc_clr_h32, &pulse), 0);
    EXPECT_EQ(pulse, 0u);
}

std::atomic<u32> g_pn_expired{0};

void _on_pn_expire(u32, intr_module, intr_type)
{
    g_pn_expired++;
}

TEST_F(Macsec, PnExpiryRaisesItsEventAndTheCallbackRunsOnce)
{
    g_pn_expired = 0;
    const intr_module enc{INTR_MOD_XSEC_ENC, 0};
    const intr_type pn_expire{2, 0};
    ASSERT_EQ(interrupt_api_callback_register(0, enc, pn_expire, _on_pn_expire), 0);
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    macsec_secure_chan c{};
    c.mask = MACSEC_SC_ENABLE;
    c.sc_enable = 1;
    ASSERT_EQ(macsec_api_secure_chan_create(0, 0, 0, kEnc, &c, 3), 0);
    macsec_secure_assoc a{};
    a.mask = MACSEC_SA_NEXT_PN | MACSEC_SA_PN_TH;
    a.next_pn = 1;
    a.pn_th = 10;
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 3, 0, kEnc, &a, 0), 0);
    u32 done = 0;
    ASSERT_EQ(tide_sim_macsec_tx(0, 0, 3, 8, 64, &done), 0); // numbers 1 to 8: below the threshold
    u32 n = 0;
    ASSERT_EQ(interrupt_api_stats_get(0, enc, pn_expire, &n), 0);
    EXPECT_EQ(n, 0u);
    ASSERT_EQ(tide_sim_macsec_tx(0, 0, 3, 4, 64, &done), 0); // 9 crosses it
    ASSERT_TRUE(tide_test::eventually([&] { return g_pn_expired.load() == 1; }));
    ASSERT_TRUE(tide_test::eventually(
        [&] { return interrupt_api_stats_get(0, enc, pn_expire, &n) == 0 && n == 1; }));
    // Passing further does not raise it again.
    ASSERT_EQ(tide_sim_macsec_tx(0, 0, 3, 4, 64, &done), 0);
    u64 pn[2] = {0, 0};
    ASSERT_EQ(macsec_api_next_pn_get(0, 0, 3, 0, kEnc, pn), 0);
    EXPECT_EQ(pn[0], 17u);
    EXPECT_EQ(g_pn_expired.load(), 1u);
}

TEST_F(Macsec, AnSaWithoutNumbersLeftRaisesSaExpire)
{
    const intr_module enc{INTR_MOD_XSEC_ENC, 0};
    const intr_type sa_expire{3, 0};
    ASSERT_EQ(interrupt_api_enable_set(0, {INTR_MODULE_ALL, INTR_SUBID_ALL}, {INTR_ID_ALL, INTR_ADDR_ALL}, 1), 0);
    macsec_secure_chan c{};
    c.mask = MACSEC_SC_ENABLE;
    c.sc_enable = 1;
    ASSERT_EQ(macsec_api_secure_chan_create(0, 0, 0, kEnc, &c, 1), 0);
    macsec_secure_assoc a{};
    a.mask = MACSEC_SA_NEXT_PN;
    a.next_pn = 0xFFFFFFFE;
    ASSERT_EQ(macsec_api_secure_assoc_create(0, 0, 1, 0, kEnc, &a, 0), 0);
    u32 done = 0;
    ASSERT_EQ(tide_sim_macsec_tx(0, 0, 1, 5, 64, &done), 0);
    EXPECT_EQ(done, 2u); // 0xFFFFFFFE and 0xFFFFFFFF
    u32 n = 0;
    ASSERT_TRUE(tide_test::eventually(
        [&] { return interrupt_api_stats_get(0, enc, sa_expire, &n) == 0 && n >= 1; }));
}

} // namespace

namespace {

class MacsecSibling : public SimChips {
protected:
    MacsecSibling() : SimChips(2, 0) {}
};

TEST_F(MacsecSibling, AChipWithoutTheEngineInTheBuildRefusesEveryCall)
{
    tide::test::kelpreef_identity_set(1, 0);
    up_chip(1);
    macsec_global g{};
    Capture::clear();
    EXPECT_EQ(macsec_api_globle_get(1, &g), SHR_E_NOT_SUPPORT);
    EXPECT_TRUE(Capture::has("no MACsec engine in this build"));
    EXPECT_EQ(macsec_api_secure_chan_traverse(1), SHR_E_NOT_SUPPORT);
}

} // namespace
