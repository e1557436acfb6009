// The MACsec driver of atolreef: ports, secure channels, secure
// associations, flows, white lists, global settings and statistics mapped
// onto the engine's tables.  Nothing is kept in software: every call reads
// and writes the chip, under the service's lock (one recursive mutex per
// chip), and each step is a read-modify-write of one row or one field.
//
// Arguments are checked before anything is written, except the secure
// offset of a secure association, which is checked at its turn: the key
// words of the same call are in the chip by then.
#include <cstring>
#include <initializer_list>

#include "atolreef_cib.h"
#include "csl/common/macsec/csl_macsec.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "sal/linux_um/xsal_int.h"

namespace {

constexpr u32 kEnc = MACSEC_DIR_ENC;
constexpr u32 kDec = MACSEC_DIR_DEC;
constexpr u32 kProfile = 1;       // every port's profile
constexpr u32 kSectagOffset = 12; // the SecTAG after the two MAC addresses
constexpr u32 kSaRows = 128;
constexpr u32 kInitPolls = 200;
constexpr u32 kInitPollUs = 50;
constexpr u32 kOadpXoff = 80;
constexpr u32 kVidMax = 4095;
// The secure offsets the engine takes, by their code in enc_ofs.
constexpr u32 kOffsets[] = {0, 30, 50};

#define MACSEC_ERR(chip, ...) SHR_LOG_ERR(chip, SHR_MOD_MACSEC, __VA_ARGS__)

// ---- access helpers ---------------------------------------------------------------

// A typed row of a table: `members` selects what is written (a
// read-modify-write of the row by the accessor); empty writes every member.
template <typename Rec>
using TabSet = int (*)(u32, u32, u32, Rec *, u64 *);
template <typename Rec>
using TabGet = int (*)(u32, u32, u32, Rec *);
template <typename Rec>
using RegSet = int (*)(u32, u32, Rec *, u8 *);

template <typename Rec>
i32 _put(TabSet<Rec> set, u32 chip_id, u32 index, Rec rec, std::initializer_list<u32> members = {})
{
    u64 mask[2] = {0, 0};
    if (members.size() == 0) {
        mask[0] = mask[1] = ~u64{0};
    }
    for (u32 m : members) {
        mask[m / 64] |= u64{1} << (m % 64);
    }
    return set(chip_id, 0, index, &rec, mask);
}

template <typename Rec>
i32 _put(RegSet<Rec> set, u32 chip_id, Rec rec, std::initializer_list<u32> members)
{
    u8 mask[4] = {0, 0, 0, 0};
    for (u32 m : members) {
        mask[m / 8] = static_cast<u8>(mask[m / 8] | 1u << (m % 8));
    }
    return set(chip_id, 0, &rec, mask);
}

// A table of one word per entry (statistics, white list TPIDs, the
// exact-match words, the key-valid words).
i32 _word_get(u32 chip_id, u32 tab, u32 index, u32 *value)
{
    return csl_reef_tab_get_direct_uint32(chip_id, tab, index, value, 1, CSL_TAB_HW);
}

i32 _word_set(u32 chip_id, u32 tab, u32 index, u32 value)
{
    return csl_reef_tab_set_direct_uint32(chip_id, tab, index, &value, 1, CSL_TAB_HW_AND_IMAGE);
}

// A 64-bit packet number.
i32 _pn_get(u32 chip_id, u32 tab, u32 row, u64 *pn)
{
    u32 w[2] = {0, 0};
    const i32 rc = csl_reef_tab_get_direct_uint32(chip_id, tab, row, w, 2, CSL_TAB_HW);
    *pn = w[0] | u64{w[1]} << 32;
    return rc;
}

i32 _pn_set(u32 chip_id, u32 tab, u32 row, u64 pn)
{
    u32 w[2] = {static_cast<u32>(pn), static_cast<u32>(pn >> 32)};
    return csl_reef_tab_set_direct_uint32(chip_id, tab, row, w, 2, CSL_TAB_HW_AND_IMAGE);
}

// One bit of a whole-word register or one-word table entry.
i32 _bit_set(u32 chip_id, u32 reg, u32 bit, u32 on)
{
    u32 v = 0;
    i32 rc = csl_reef_reg_get_u32(chip_id, reg, &v);
    v = on != 0 ? v | 1u << bit : v & ~(1u << bit);
    return rc != 0 ? rc : csl_reef_reg_set_u32(chip_id, reg, v);
}

i32 _tab_bit_set(u32 chip_id, u32 tab, u32 index, u32 bit, u32 on)
{
    u32 v = 0;
    i32 rc = _word_get(chip_id, tab, index, &v);
    v = on != 0 ? v | 1u << bit : v & ~(1u << bit);
    return rc != 0 ? rc : _word_set(chip_id, tab, index, v);
}

// The tables and registers of one side.
struct Side {
    u32 nextpn, lowestpn, sak_vld, mib_port, mib_sc, mib_port_clr, mib_sc_clr_l32, mib_sc_clr_h32;
    u32 wl_ovlan, wl_ivlan, wl_ovlan_en, wl_ivlan_en, wl_port_en;
    u32 mib_port_rows, mib_sc_rows; // rows per port and per SC
};

constexpr Side kSide[2] = {
    {cib_xsec_enc_enc_nextpn_tbl, 0, cib_xsec_enc_enc_sak_entry_vld, cib_xsec_enc_enc_mib_port, cib_xsec_enc_enc_mib_sc,
     cib_xsec_enc_enc_mib_port_clr, cib_xsec_enc_enc_mib_sc_clr_l32, cib_xsec_enc_enc_mib_sc_clr_h32,
     cib_xsec_enc_enc_white_list_ovlan, cib_xsec_enc_enc_white_list_ivlan, cib_xsec_enc_enc_white_list_ovlan_en,
     cib_xsec_enc_enc_white_list_ivlan_en, cib_xsec_enc_enc_white_list_port_ctrl_enable, 4, 2},
    {cib_xsec_dec_dec_nextpn_tbl, cib_xsec_dec_dec_lowestpn_tbl, cib_xsec_dec_dec_sak_entry_vld,
     cib_xsec_dec_dec_mib_port, cib_xsec_dec_dec_mib_sc, cib_xsec_dec_dec_mib_port_clr, cib_xsec_dec_dec_mib_sc_clr_l32,
     cib_xsec_dec_dec_mib_sc_clr_h32, cib_xsec_dec_dec_white_list_ovlan, cib_xsec_dec_dec_white_list_ivlan,
     cib_xsec_dec_dec_white_list_ovlan_en, cib_xsec_dec_dec_white_list_ivlan_en,
     cib_xsec_dec_dec_white_list_port_ctrl_enable, 8, 8},
};

// ---- checks -------------------------------------------------------------------------

i32 _dir_check(u32 chip_id, u32 dir)
{
    if (dir > kDec) {
        MACSEC_ERR(chip_id, "chip_id:%d not support dir:%d\n", (int)chip_id, (int)dir);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

i32 _port_check(u32 chip_id, u32 port)
{
    if (port > MACSEC_PORT_MAX) {
        MACSEC_ERR(chip_id, "port index is invalid!\n");
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _dir_port_check(u32 chip_id, u32 dir, u32 port)
{
    const i32 rc = _dir_check(chip_id, dir);
    return rc != 0 ? rc : _port_check(chip_id, port);
}

// The SC mode: 0 for 64 SCs of 2 SAs, 1 for 32 SCs of 4.
i32 _sc_mode(u32 chip_id, u32 *mode)
{
    cib_xsec_enc_init_ctrl_t r{};
    const i32 rc = csl_reef_cib_xsec_enc_init_ctrl_get(chip_id, 0, &r);
    *mode = r.enc_global_ctrl_sc_mode;
    return rc;
}

// An SC index of the current mode.
i32 _sc_check(u32 chip_id, u32 sc, u32 *mode)
{
    if (sc > MACSEC_SC_MAX) {
        MACSEC_ERR(chip_id, "sc index is invalid!\n");
        return SHR_E_PARAM;
    }
    const i32 rc = _sc_mode(chip_id, mode);
    if (rc != 0) {
        return rc;
    }
    if (*mode == 1 && sc > 31) {
        MACSEC_ERR(chip_id, "current SC mode is 1:4, sc idx must less than 32!\n");
        return SHR_E_PARAM;
    }
    return 0;
}

// The SA row of (sc, an): an + sc * 2 in mode 1:2, an + sc * 4 in 1:4.
i32 _sa_row(u32 chip_id, u32 sc, u32 an, u32 *row)
{
    u32 mode = 0;
    i32 rc = _sc_check(chip_id, sc, &mode);
    if (rc != 0) {
        return rc;
    }
    if (an > MACSEC_AN_MAX) {
        MACSEC_ERR(chip_id, "an number is invalid!\n");
        return SHR_E_PARAM;
    }
    if (mode == 0 && an >= 2) {
        MACSEC_ERR(chip_id, "current sc mode is 1:2, an number should be less than 2\n");
        return SHR_E_PARAM;
    }
    *row = an + sc * (mode == 1 ? 4 : 2);
    return 0;
}

// ---- hardware start -------------------------------------------------------------------

// Polls until every done bit of one side is set: kInitPolls reads,
// kInitPollUs apart.
template <typename Rec, typename Done>
i32 _init_wait(u32 chip_id, int (*get)(u32, u32, Rec *), Done done, const char *side)
{
    for (u32 i = 0; i < kInitPolls; i++) {
        Rec r{};
        const i32 rc = get(chip_id, 0, &r);
        if (rc != 0) {
            return rc;
        }
        if (done(r)) {
            return 0;
        }
        xsal_udelay(static_cast<i32>(kInitPollUs));
    }
    MACSEC_ERR(chip_id, "macsec %s init not done!\n", side);
    return SHR_E_TIMEOUT;
}

i32 _hw_init(u32 chip_id)
{
    u32 bypass = 0;
    i32 rc = csl_reef_reg_get_u32(chip_id, cib_xsec_glb_macsec_bypass, &bypass);
    if (rc != 0 || bypass == 1) {
        return rc;
    }
    rc = _init_wait(
        chip_id, csl_reef_cib_xsec_enc_init_ctrl_get,
        [](const cib_xsec_enc_init_ctrl_t &r) {
            return r.enc_init_status_done == 1 && r.enc_glb_init_status_done == 1 && r.enc_mib_init_done_port == 1 &&
                   r.enc_mib_init_done_sc == 1;
        },
        "enc");
    if (rc != 0) {
        return rc;
    }
    cib_xsec_enc_init_ctrl_t ec{};
    ec.enc_oadp_total_buf_xoff_th = kOadpXoff;
    rc = _put(csl_reef_cib_xsec_enc_init_ctrl_set, chip_id, ec, {cib_xsec_enc_init_ctrl__enc_oadp_total_buf_xoff_th});
    cib_xsec_enc_int_enc_status_t es;
    memset(&es, 1, sizeof(es)); // every field is one bit: write one to clear
    u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    rc = rc != 0 ? rc : csl_reef_cib_xsec_enc_int_enc_status_set(chip_id, 0, &es, all);
    rc = rc != 0 ? rc : csl_reef_reg_set_u32(chip_id, cib_xsec_enc_clr_cnt, 0);
    if (rc != 0) {
        return rc;
    }
    rc = _init_wait(
        chip_id, csl_reef_cib_xsec_dec_init_ctrl_get,
        [](const cib_xsec_dec_init_ctrl_t &r) {
            return r.dec_init_done == 1 && r.dec_glb_init_status_done == 1 && r.dec_mib_init_done_port == 1 &&
                   r.dec_mib_init_done_sc == 1;
        },
        "dec");
    if (rc != 0) {
        return rc;
    }
    cib_xsec_dec_int_dec_status_t ds;
    memset(&ds, 1, sizeof(ds));
    rc = csl_reef_cib_xsec_dec_int_dec_status_set(chip_id, 0, &ds, all);
    // The fast path of each port, from its properties.
    for (u32 port = 0; rc == 0 && port <= MACSEC_PORT_MAX; port++) {
        cib_xsec_glb_dec_portmap_tbl_t pm{};
        rc = csl_reef_cib_xsec_glb_dec_portmap_tbl_get(chip_id, 0, port, &pm);
        pm.fastp_en =
            static_cast<u8>(csl_port_property_get(chip_id, static_cast<i32>(port), "macsec_fastp_enable", 0) & 1);
        pm.dport =
            static_cast<u8>(csl_port_property_get(chip_id, static_cast<i32>(port), "macsec_fastp_dport", 0) & 0x1F);
        rc = rc != 0 ? rc : _put(csl_reef_cib_xsec_glb_dec_portmap_tbl_set, chip_id, port, pm);
    }
    cib_xsec_enc_init_ctrl_t ecm{};
    rc = rc != 0
             ? rc
             : _put(csl_reef_cib_xsec_enc_init_ctrl_set, chip_id, ecm, {cib_xsec_enc_init_ctrl__enc_mib_ctrl_clr_mode});
    cib_xsec_dec_init_ctrl_t dcm{};
    rc = rc != 0
             ? rc
             : _put(csl_reef_cib_xsec_dec_init_ctrl_set, chip_id, dcm, {cib_xsec_dec_init_ctrl__dec_mib_ctrl_clr_mode});
    return rc;
}

// ---- ports ----------------------------------------------------------------------------

i32 _port_config_check(u32 chip_id, u32 dir, const macsec_port_config *c)
{
    const u32 m = c->mask;
    if ((m & MACSEC_PORT_SECTAG_OFFSET) != 0 && c->sectag_offset != kSectagOffset) {
        MACSEC_ERR(chip_id, "sectag offset can only be set to 12!\n");
        return SHR_E_PARAM;
    }
    if ((m & MACSEC_PORT_BYPASS_VID) != 0 && c->bypass_vid > kVidMax) {
        MACSEC_ERR(chip_id, "invalid vlan id!\n");
        return SHR_E_PARAM;
    }
    if ((m & MACSEC_PORT_DEFAULT_SC) != 0 && c->default_sc > MACSEC_SC_MAX) {
        MACSEC_ERR(chip_id, "sc index is invalid!\n");
        return SHR_E_PARAM;
    }
    if (dir == kDec && (m & MACSEC_PORT_LOOPBACK) != 0 && c->lb_dport > MACSEC_PORT_MAX) {
        MACSEC_ERR(chip_id, "port index is invalid!\n");
        return SHR_E_PARAM;
    }
    if (dir == kDec && (m & MACSEC_PORT_SAFE_MODE) != 0 && c->safe_mode > 1) {
        MACSEC_ERR(chip_id, "safe mode should be less than 2!\n");
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _enc_port_set(u32 chip_id, u32 port, const macsec_port_config *c)
{
    const u32 m = c->mask;
    i32 rc = 0;
    cib_xsec_glb_enc_port_tbl_t p{};
    if ((m & MACSEC_PORT_ENABLE) != 0) {
        const u8 e = c->macsec_enable != 0 ? 1 : 0;
        p.port_tbl_cfg_vld = p.macsec_en = p.default_action = e;
        p.profile_id = kProfile;
        rc = _put(csl_reef_cib_xsec_glb_enc_port_tbl_set, chip_id, port, p,
                  {cib_xsec_glb_enc_port_tbl__port_tbl_cfg_vld, cib_xsec_glb_enc_port_tbl__macsec_en,
                   cib_xsec_glb_enc_port_tbl__default_action, cib_xsec_glb_enc_port_tbl__profile_id});
        cib_xsec_enc_enc_profile_tbl_t f{};
        f.profile_tbl_cfg_vld = 1;
        f.sectag_offset = kSectagOffset;
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_enc_enc_profile_tbl_set, chip_id, kProfile, f,
                            {cib_xsec_enc_enc_profile_tbl__profile_tbl_cfg_vld,
                             cib_xsec_enc_enc_profile_tbl__sectag_offset});
    }
    if ((m & MACSEC_PORT_BYPASS_VID) != 0) {
        p.vlan_id = c->bypass_vid;
        rc = rc != 0
                 ? rc
                 : _put(csl_reef_cib_xsec_glb_enc_port_tbl_set, chip_id, port, p, {cib_xsec_glb_enc_port_tbl__vlan_id});
    }
    if ((m & MACSEC_PORT_BYPASS_TPID) != 0) {
        p.vlan_tpid = c->bypass_tpid;
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_glb_enc_port_tbl_set, chip_id, port, p,
                            {cib_xsec_glb_enc_port_tbl__vlan_tpid});
    }
    if ((m & MACSEC_PORT_DEFAULT_SC) != 0) {
        p.default_sc = static_cast<u8>(c->default_sc);
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_glb_enc_port_tbl_set, chip_id, port, p,
                            {cib_xsec_glb_enc_port_tbl__default_sc});
    }
    return rc;
}

i32 _dec_port_set(u32 chip_id, u32 port, const macsec_port_config *c)
{
    const u32 m = c->mask;
    i32 rc = 0;
    cib_xsec_glb_dec_port_tbl_t p{};
    cib_xsec_dec_dec_port_cfg_tbl_t pc{};
    if ((m & MACSEC_PORT_ENABLE) != 0) {
        const u8 e = c->macsec_enable != 0 ? 1 : 0;
        p.macsec_en = p.vld = e;
        p.profile_id = kProfile;
        rc = _put(csl_reef_cib_xsec_glb_dec_port_tbl_set, chip_id, port, p,
                  {cib_xsec_glb_dec_port_tbl__macsec_en, cib_xsec_glb_dec_port_tbl__vld,
                   cib_xsec_glb_dec_port_tbl__profile_id});
        cib_xsec_dec_dec_profile_tbl_t f{};
        f.profile_tbl_vld = 1;
        f.sectag_offset = kSectagOffset;
        rc = rc != 0
                 ? rc
                 : _put(csl_reef_cib_xsec_dec_dec_profile_tbl_set, chip_id, kProfile, f,
                        {cib_xsec_dec_dec_profile_tbl__profile_tbl_vld, cib_xsec_dec_dec_profile_tbl__sectag_offset});
        pc.port_cfg_tbl_vld = e;
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_dec_dec_port_cfg_tbl_set, chip_id, port, pc,
                            {cib_xsec_dec_dec_port_cfg_tbl__port_cfg_tbl_vld});
    }
    if ((m & MACSEC_PORT_BYPASS_VID) != 0) {
        p.bypass_vlan_id = c->bypass_vid;
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_glb_dec_port_tbl_set, chip_id, port, p,
                            {cib_xsec_glb_dec_port_tbl__bypass_vlan_id});
    }
    if ((m & MACSEC_PORT_BYPASS_TPID) != 0) {
        p.bypass_vlan_tpid = c->bypass_tpid;
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_glb_dec_port_tbl_set, chip_id, port, p,
                            {cib_xsec_glb_dec_port_tbl__bypass_vlan_tpid});
    }
    if ((m & MACSEC_PORT_SAFE_MODE) != 0) {
        p.safe_mode = static_cast<u8>(c->safe_mode);
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_glb_dec_port_tbl_set, chip_id, port, p,
                            {cib_xsec_glb_dec_port_tbl__safe_mode});
    }
    if ((m & MACSEC_PORT_DEFAULT_SC) != 0) {
        pc.dec_port_ctrl_default_sc = static_cast<u8>(c->default_sc);
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_dec_dec_port_cfg_tbl_set, chip_id, port, pc,
                            {cib_xsec_dec_dec_port_cfg_tbl__dec_port_ctrl_default_sc});
    }
    if ((m & MACSEC_PORT_LOOPBACK) != 0) {
        cib_xsec_glb_dec_portmap_tbl_t pm{};
        pm.dport = static_cast<u8>(c->lb_dport);
        pm.fastp_en = c->lb_fastp_en != 0 ? 1 : 0;
        pm.vld = c->lb_vld != 0 ? 1 : 0;
        rc = rc != 0 ? rc : _put(csl_reef_cib_xsec_glb_dec_portmap_tbl_set, chip_id, port, pm);
    }
    return rc;
}

i32 _port_config_set(u32 chip_id, u32 port, u32 dir, macsec_port_config *c)
{
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _port_config_check(chip_id, dir, c);
    if (rc != 0) {
        return rc;
    }
    if ((c->mask & MACSEC_PORT_WHITE_LIST) != 0) {
        rc = _bit_set(chip_id, kSide[dir].wl_port_en, port, c->white_list_enable);
    }
    return rc != 0 ? rc : dir == kEnc ? _enc_port_set(chip_id, port, c) : _dec_port_set(chip_id, port, c);
}

i32 _port_config_get(u32 chip_id, u32 port, u32 dir, macsec_port_config *c)
{
    i32 rc = _dir_port_check(chip_id, dir, port);
    if (rc != 0) {
        return rc;
    }
    *c = macsec_port_config{};
    u32 wl = 0;
    rc = csl_reef_reg_get_u32(chip_id, kSide[dir].wl_port_en, &wl);
    c->white_list_enable = wl >> port & 1;
    c->mask = MACSEC_PORT_SECTAG_OFFSET | MACSEC_PORT_ENABLE | MACSEC_PORT_WHITE_LIST | MACSEC_PORT_BYPASS_VID |
              MACSEC_PORT_BYPASS_TPID | MACSEC_PORT_DEFAULT_SC;
    if (dir == kEnc) {
        cib_xsec_glb_enc_port_tbl_t p{};
        cib_xsec_enc_enc_profile_tbl_t f{};
        rc = rc != 0 ? rc : csl_reef_cib_xsec_glb_enc_port_tbl_get(chip_id, 0, port, &p);
        rc = rc != 0 ? rc : csl_reef_cib_xsec_enc_enc_profile_tbl_get(chip_id, 0, kProfile, &f);
        c->macsec_enable = p.macsec_en;
        c->bypass_vid = p.vlan_id;
        c->bypass_tpid = p.vlan_tpid;
        c->default_sc = p.default_sc;
        c->sectag_offset = f.sectag_offset;
        return rc;
    }
    cib_xsec_glb_dec_port_tbl_t p{};
    cib_xsec_dec_dec_port_cfg_tbl_t pc{};
    cib_xsec_dec_dec_profile_tbl_t f{};
    cib_xsec_glb_dec_portmap_tbl_t pm{};
    rc = rc != 0 ? rc : csl_reef_cib_xsec_glb_dec_port_tbl_get(chip_id, 0, port, &p);
    rc = rc != 0 ? rc : csl_reef_cib_xsec_dec_dec_port_cfg_tbl_get(chip_id, 0, port, &pc);
    rc = rc != 0 ? rc : csl_reef_cib_xsec_dec_dec_profile_tbl_get(chip_id, 0, kProfile, &f);
    rc = rc != 0 ? rc : csl_reef_cib_xsec_glb_dec_portmap_tbl_get(chip_id, 0, port, &pm);
    c->mask |= MACSEC_PORT_LOOPBACK | MACSEC_PORT_SAFE_MODE;
    c->macsec_enable = p.macsec_en;
    c->bypass_vid = p.bypass_vlan_id;
    c->bypass_tpid = p.bypass_vlan_tpid;
    c->safe_mode = p.safe_mode;
    c->default_sc = pc.dec_port_ctrl_default_sc;
    c->sectag_offset = f.sectag_offset;
    c->lb_vld = pm.vld;
    c->lb_fastp_en = pm.fastp_en;
    c->lb_dport = pm.dport;
    return rc;
}

i32 _port_capability_get(u32 chip_id, u32 port, u32 dir, u32 cap[4])
{
    const i32 rc = _dir_port_check(chip_id, dir, port);
    if (rc == 0) {
        cap[0] = kSaRows;
        cap[1] = kSaRows;
        cap[2] = 32;
        cap[3] = MACSEC_SC_MAX + 1;
    }
    return rc;
}

// ---- secure channels -----------------------------------------------------------------

// Mask bit of sa_an[i].
constexpr u32 _an_bit(u32 i)
{
    return MACSEC_SC_SA0_AN >> i;
}

i32 _chan_check(u32 chip_id, u32 mode, const macsec_secure_chan *c)
{
    const u32 m = c->mask;
    if ((m & MACSEC_SC_PROTECT_MODE) != 0 && c->protect_mode > 2) {
        MACSEC_ERR(chip_id, "protect mode should be less than 3!\n");
        return SHR_E_PARAM;
    }
    if ((m & MACSEC_SC_VALIDATE_MODE) != 0 && c->validate_mode > 3) {
        MACSEC_ERR(chip_id, "validate frames is invalid, it shoule be less than 4!\n");
        return SHR_E_PARAM;
    }
    const u32 em = m & (MACSEC_SC_EM_DPORT | MACSEC_SC_EM_DMAC);
    if (em != 0 && em != (MACSEC_SC_EM_DPORT | MACSEC_SC_EM_DMAC)) {
        MACSEC_ERR(chip_id, "em-dport and em-dmac must be given together!\n");
        return SHR_E_PARAM;
    }
    if (em != 0 && c->em_dport > MACSEC_PORT_MAX) {
        MACSEC_ERR(chip_id, "invalid port id!\n");
        return SHR_E_PARAM;
    }
    for (u32 i = 0; i < 4; i++) {
        if ((m & _an_bit(i)) != 0 && c->sa_an[i] > MACSEC_AN_MAX) {
            MACSEC_ERR(chip_id, "sa%u_an:%u an number is invalid, need to less than 4.\n", i, (u32)c->sa_an[i]);
            return SHR_E_PARAM;
        }
    }
    if ((m & MACSEC_SC_TCI_AN) != 0 && mode == 0 && (c->tci >> 4 & 3) >= 2) {
        MACSEC_ERR(chip_id, "current SC mode is 1:2, encoding sa must less than 2!\n");
        return SHR_E_PARAM;
    }
    return 0;
}

// The exact-match entry of SC `sc`: destination port and MAC to the SC and
// profile 1; `c` NULL clears it.
i32 _em_set(u32 chip_id, u32 sc, const macsec_secure_chan *c)
{
    cib_xsec_glb_enc_em_tbl_t e{};
    u32 w0 = 0, w1 = 0;
    if (c != nullptr) {
        e.em_tbl_cfg_vld = 1;
        e.sc = static_cast<u8>(sc);
        e.profile_id = kProfile;
        const u8 *mac = c->em_dmac;
        w0 = u32{mac[2]} << 24 | u32{mac[3]} << 16 | u32{mac[4]} << 8 | mac[5];
        w1 = u32{mac[1]} | u32{mac[0]} << 8 | (c->em_dport & 0xFF) << 16;
    }
    i32 rc = c != nullptr ? _put(csl_reef_cib_xsec_glb_enc_em_tbl_set, chip_id, sc, e,
                                 {cib_xsec_glb_enc_em_tbl__em_tbl_cfg_vld, cib_xsec_glb_enc_em_tbl__sc,
                                  cib_xsec_glb_enc_em_tbl__profile_id})
                          : _put(csl_reef_cib_xsec_glb_enc_em_tbl_set, chip_id, sc, e,
                                 {cib_xsec_glb_enc_em_tbl__em_tbl_cfg_vld, cib_xsec_glb_enc_em_tbl__sc});
    rc = rc != 0 ? rc : _word_set(chip_id, cib_xsec_glb_enc_em_cfg, 2 * sc, w0);
    rc = rc != 0 ? rc : _word_set(chip_id, cib_xsec_glb_enc_em_cfg, 2 * sc + 1, w1);
    return rc;
}

i32 _enc_chan_set(u32 chip_id, u32 sc, const macsec_secure_chan *c)
{
    const u32 m = c->mask;
    cib_xsec_enc_enc_sc_tbl_t r{};
    r.protect_mode = static_cast<u8>(c->protect_mode);
    r.sc_tbl_cfg_vld = c->sc_enable != 0 ? 1 : 0;
    r.sci = c->sci;
    r.sa3_an = c->sa_an[3];
    r.sa2_an = c->sa_an[2];
    r.sa1_an = c->sa_an[1];
    r.sa0_an = c->sa_an[0];
    r.es_en = c->tci >> 1 & 1;
    r.sci_en = c->tci >> 2 & 1;
    r.scb_en = c->tci >> 3 & 1;
    r.encoding_sa = c->tci >> 4 & 3;
    r.protect_frames = c->protect_frames != 0 ? 1 : 0;
    // Field by field, in the order of the mask bits.
    const struct {
        u32 bit;
        u32 member;
    } kOrder[] = {
        {MACSEC_SC_PROTECT_MODE, cib_xsec_enc_enc_sc_tbl__protect_mode},
        {MACSEC_SC_ENABLE, cib_xsec_enc_enc_sc_tbl__sc_tbl_cfg_vld},
        {MACSEC_SC_EM_DPORT, ~0u},
        {MACSEC_SC_SCI, cib_xsec_enc_enc_sc_tbl__sci},
        {MACSEC_SC_SA3_AN, cib_xsec_enc_enc_sc_tbl__sa3_an},
        {MACSEC_SC_SA2_AN, cib_xsec_enc_enc_sc_tbl__sa2_an},
        {MACSEC_SC_SA1_AN, cib_xsec_enc_enc_sc_tbl__sa1_an},
        {MACSEC_SC_SA0_AN, cib_xsec_enc_enc_sc_tbl__sa0_an},
        {MACSEC_SC_TCI_ES, cib_xsec_enc_enc_sc_tbl__es_en},
        {MACSEC_SC_TCI_SC, cib_xsec_enc_enc_sc_tbl__sci_en},
        {MACSEC_SC_TCI_SCB, cib_xsec_enc_enc_sc_tbl__scb_en},
        {MACSEC_SC_TCI_AN, cib_xsec_enc_enc_sc_tbl__encoding_sa},
        {MACSEC_SC_PROTECT_FRAMES, cib_xsec_enc_enc_sc_tbl__protect_frames},
    };
    for (const auto &o : kOrder) {
        if ((m & o.bit) == 0) {
            continue;
        }
        const i32 rc = o.member == ~0u ? _em_set(chip_id, sc, c)
                                       : _put(csl_reef_cib_xsec_enc_enc_sc_tbl_set, chip_id, sc, r, {o.member});
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

i32 _dec_chan_set(u32 chip_id, u32 sc, const macsec_secure_chan *c)
{
    const u32 m = c->mask;
    cib_xsec_dec_dec_sc_tbl_t r{};
    i32 rc = csl_reef_cib_xsec_dec_dec_sc_tbl_get(chip_id, 0, sc, &r);
    if (rc != 0) {
        return rc;
    }
    bool row = false;
    if ((m & MACSEC_SC_VALIDATE_MODE) != 0) {
        r.sc_validate_frames = static_cast<u8>(c->validate_mode);
        row = true;
    }
    if ((m & MACSEC_SC_ENABLE) != 0) {
        r.sc_tbl_vld = c->sc_enable != 0 ? 1 : 0;
        row = true;
    }
    u8 *const ans[4] = {&r.sa0_an, &r.sa1_an, &r.sa2_an, &r.sa3_an};
    for (u32 i = 0; i < 4; i++) {
        if ((m & _an_bit(i)) != 0) {
            *ans[i] = c->sa_an[i];
            row = true;
        }
    }
    if ((m & (MACSEC_SC_SCI | MACSEC_SC_SCI_ENABLE)) != 0) {
        cib_xsec_dec_dec_sci_tbl_t s{};
        s.dec_sci = c->sci;
        s.dec_sci_vld = c->sci_enable != 0 ? 1 : 0;
        if ((m & MACSEC_SC_SCI) != 0 && (m & MACSEC_SC_SCI_ENABLE) != 0) {
            rc = _put(csl_reef_cib_xsec_dec_dec_sci_tbl_set, chip_id, sc, s);
        } else {
            rc = _put(csl_reef_cib_xsec_dec_dec_sci_tbl_set, chip_id, sc, s,
                      {(m & MACSEC_SC_SCI) != 0 ? u32{cib_xsec_dec_dec_sci_tbl__dec_sci}
                                                : u32{cib_xsec_dec_dec_sci_tbl__dec_sci_vld}});
        }
    }
    if (rc == 0 && row) {
        rc = _put(csl_reef_cib_xsec_dec_dec_sc_tbl_set, chip_id, sc, r);
    }
    return rc;
}

i32 _secure_chan_create(u32 chip_id, u32 port, u32 reserved, u32 dir, macsec_secure_chan *c, u32 sc)
{
    (void)reserved;
    u32 mode = 0;
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _sc_check(chip_id, sc, &mode);
    rc = rc != 0 ? rc : _chan_check(chip_id, mode, c);
    if (rc != 0) {
        return rc;
    }
    return dir == kEnc ? _enc_chan_set(chip_id, sc, c) : _dec_chan_set(chip_id, sc, c);
}

i32 _secure_chan_get(u32 chip_id, u32 port, u32 dir, u32 sc, macsec_secure_chan *c)
{
    u32 mode = 0;
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _sc_check(chip_id, sc, &mode);
    if (rc != 0) {
        return rc;
    }
    *c = macsec_secure_chan{};
    if (dir == kEnc) {
        cib_xsec_enc_enc_sc_tbl_t r{};
        cib_xsec_glb_enc_em_tbl_t e{};
        u32 w0 = 0, w1 = 0;
        rc = csl_reef_cib_xsec_enc_enc_sc_tbl_get(chip_id, 0, sc, &r);
        rc = rc != 0 ? rc : csl_reef_cib_xsec_glb_enc_em_tbl_get(chip_id, 0, sc, &e);
        rc = rc != 0 ? rc : _word_get(chip_id, cib_xsec_glb_enc_em_cfg, 2 * sc, &w0);
        rc = rc != 0 ? rc : _word_get(chip_id, cib_xsec_glb_enc_em_cfg, 2 * sc + 1, &w1);
        c->mask = MACSEC_SC_PROTECT_MODE | MACSEC_SC_ENABLE | MACSEC_SC_SCI | MACSEC_SC_SA3_AN | MACSEC_SC_SA2_AN |
                  MACSEC_SC_SA1_AN | MACSEC_SC_SA0_AN | MACSEC_SC_TCI_ES | MACSEC_SC_TCI_SC | MACSEC_SC_TCI_SCB |
                  MACSEC_SC_TCI_AN | MACSEC_SC_PROTECT_FRAMES;
        if (e.em_tbl_cfg_vld != 0) {
            c->mask |= MACSEC_SC_EM_DPORT | MACSEC_SC_EM_DMAC;
        }
        c->protect_mode = r.protect_mode;
        c->sc_enable = r.sc_tbl_cfg_vld;
        c->sci = r.sci;
        c->sa_an[0] = r.sa0_an;
        c->sa_an[1] = r.sa1_an;
        c->sa_an[2] = r.sa2_an;
        c->sa_an[3] = r.sa3_an;
        c->tci = static_cast<u8>(r.es_en << 1 | r.sci_en << 2 | r.scb_en << 3 | r.encoding_sa << 4);
        c->protect_frames = r.protect_frames;
        c->em_dport = w1 >> 16 & 0xFF;
        const u8 mac[6] = {static_cast<u8>(w1 >> 8),  static_cast<u8>(w1),      static_cast<u8>(w0 >> 24),
                           static_cast<u8>(w0 >> 16), static_cast<u8>(w0 >> 8), static_cast<u8>(w0)};
        memcpy(c->em_dmac, mac, sizeof(mac));
        return rc;
    }
    cib_xsec_dec_dec_sc_tbl_t r{};
    cib_xsec_dec_dec_sci_tbl_t s{};
    rc = csl_reef_cib_xsec_dec_dec_sc_tbl_get(chip_id, 0, sc, &r);
    rc = rc != 0 ? rc : csl_reef_cib_xsec_dec_dec_sci_tbl_get(chip_id, 0, sc, &s);
    c->mask = MACSEC_SC_VALIDATE_MODE | MACSEC_SC_ENABLE | MACSEC_SC_SCI | MACSEC_SC_SA3_AN | MACSEC_SC_SA2_AN |
              MACSEC_SC_SA1_AN | MACSEC_SC_SA0_AN | MACSEC_SC_SCI_ENABLE;
    c->validate_mode = r.sc_validate_frames;
    c->sc_enable = r.sc_tbl_vld;
    c->sa_an[0] = r.sa0_an;
    c->sa_an[1] = r.sa1_an;
    c->sa_an[2] = r.sa2_an;
    c->sa_an[3] = r.sa3_an;
    c->sci = s.dec_sci;
    c->sci_enable = s.dec_sci_vld;
    return rc;
}

// ---- secure associations ---------------------------------------------------------------

// The key of SA row `row`: with `valid` 1 the words go in (only the upper
// two for gcm-aes-128, `crypto` 0) and the row's valid bit is set; with 0
// the bit is cleared and the words stay.
i32 _sak_set(u32 chip_id, u32 dir, u32 row, u32 crypto, u32 valid, const u64 sak[4])
{
    i32 rc = 0;
    if (valid != 0) {
        const bool two = crypto == 0;
        if (dir == kEnc) {
            cib_xsec_enc_enc_sak_tbl_t k{sak[3], sak[2], sak[1], sak[0]};
            rc = two ? _put(csl_reef_cib_xsec_enc_enc_sak_tbl_set, chip_id, row, k,
                            {cib_xsec_enc_enc_sak_tbl__enc_sak_table_3, cib_xsec_enc_enc_sak_tbl__enc_sak_table_2})
                     : _put(csl_reef_cib_xsec_enc_enc_sak_tbl_set, chip_id, row, k);
        } else {
            cib_xsec_dec_dec_sak_tbl_t k{sak[3], sak[2], sak[1], sak[0]};
            rc = two ? _put(csl_reef_cib_xsec_dec_dec_sak_tbl_set, chip_id, row, k,
                            {cib_xsec_dec_dec_sak_tbl__dec_sak_table_3, cib_xsec_dec_dec_sak_tbl__dec_sak_table_2})
                     : _put(csl_reef_cib_xsec_dec_dec_sak_tbl_set, chip_id, row, k);
        }
    }
    return rc != 0 ? rc : _tab_bit_set(chip_id, kSide[dir].sak_vld, row / 32, row % 32, valid);
}

// The packet numbers of a row: next, and on the decrypt side lowest.
i32 _pns_get(u32 chip_id, u32 dir, u32 row, u64 pn[2])
{
    pn[1] = 0;
    i32 rc = _pn_get(chip_id, kSide[dir].nextpn, row, &pn[0]);
    return rc != 0 || dir == kEnc ? rc : _pn_get(chip_id, kSide[dir].lowestpn, row, &pn[1]);
}

i32 _pns_set(u32 chip_id, u32 dir, u32 row, const u64 pn[2])
{
    i32 rc = _pn_set(chip_id, kSide[dir].nextpn, row, pn[0]);
    return rc != 0 || dir == kEnc ? rc : _pn_set(chip_id, kSide[dir].lowestpn, row, pn[1]);
}

i32 _rollover_set(u32 chip_id, u32 on)
{
    cib_xsec_enc_init_ctrl_t r{};
    r.enc_global_ctrl_pn_rollover = on != 0 ? 1 : 0;
    return _put(csl_reef_cib_xsec_enc_init_ctrl_set, chip_id, r, {cib_xsec_enc_init_ctrl__enc_global_ctrl_pn_rollover});
}

// The fields both SA rows share, whichever side.
struct SaRow {
    u8 xpn_en = 0, curr_cs = 0, enc_ofs = 0, replay_protect = 0, vld = 0;
    u32 salt_1 = 0, ssci = 0, replay_window = 0;
    u64 salt_0 = 0, pn_th = 0;
};

i32 _sa_read(u32 chip_id, u32 dir, u32 row, SaRow *s)
{
    if (dir == kEnc) {
        cib_xsec_enc_enc_sa_tbl_t r{};
        const i32 rc = csl_reef_cib_xsec_enc_enc_sa_tbl_get(chip_id, 0, row, &r);
        *s = SaRow{r.xpn_en, r.curr_cs, r.enc_ofs, 0, r.sa_tbl_vld, r.salt_1, r.ssci, 0, r.salt_0, r.pn_th};
        return rc;
    }
    cib_xsec_dec_dec_sa_tbl_t r{};
    const i32 rc = csl_reef_cib_xsec_dec_dec_sa_tbl_get(chip_id, 0, row, &r);
    *s = SaRow{r.xpn_en, r.curr_cs, r.enc_ofs,       r.replay_protect, r.sa_tbl_vld,
               r.salt_1, r.ssci,    r.replay_window, r.salt_0,         0};
    return rc;
}

i32 _sa_write(u32 chip_id, u32 dir, u32 row, const SaRow &s)
{
    if (dir == kEnc) {
        cib_xsec_enc_enc_sa_tbl_t r{s.xpn_en, s.curr_cs, s.enc_ofs, s.salt_1, s.salt_0, s.ssci, s.pn_th, s.vld};
        return _put(csl_reef_cib_xsec_enc_enc_sa_tbl_set, chip_id, row, r);
    }
    cib_xsec_dec_dec_sa_tbl_t r{s.xpn_en, s.curr_cs, s.enc_ofs, s.replay_window, s.replay_protect, s.salt_1,
                                s.salt_0, s.ssci,    s.vld};
    return _put(csl_reef_cib_xsec_dec_dec_sa_tbl_set, chip_id, row, r);
}

i32 _secure_assoc_create(u32 chip_id, u32 port, u32 sc, u32 reserved, u32 dir, macsec_secure_assoc *a, u32 an)
{
    (void)reserved;
    u32 row = 0;
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _sa_row(chip_id, sc, an, &row);
    if (rc != 0) {
        return rc;
    }
    const u32 m = a->mask;
    if ((m & MACSEC_SA_CRYPTO) != 0 && a->crypto > 2) {
        MACSEC_ERR(chip_id, "cipher suite should be less than 3!\n");
        return SHR_E_PARAM;
    }
    SaRow s;
    rc = _sa_read(chip_id, dir, row, &s);
    if (rc != 0) {
        return rc;
    }
    if ((m & MACSEC_SA_CRYPTO) != 0) {
        s.curr_cs = static_cast<u8>(a->crypto);
    }
    if ((m & MACSEC_SA_SAK) != 0 && (rc = _sak_set(chip_id, dir, row, s.curr_cs, a->sak_valid, a->sak)) != 0) {
        return rc;
    }
    if (dir == kEnc && (m & MACSEC_SA_PN_TH) != 0) {
        s.pn_th = a->pn_th;
    }
    if ((m & MACSEC_SA_SECURE_OFFSET) != 0) {
        u32 code = 0;
        while (code < 3 && kOffsets[code] != a->secure_offset) {
            code++;
        }
        if (code == 3) {
            MACSEC_ERR(chip_id, "chip_id:%u sc:%u sc:%u support secure_offset:0-30-50\n", chip_id, sc, an);
            return SHR_E_NOT_SUPPORT;
        }
        s.enc_ofs = static_cast<u8>(code);
    }
    if ((m & MACSEC_SA_XPN_ENABLE) != 0) {
        s.xpn_en = a->xpn_enable != 0 ? 1 : 0;
    }
    const bool pns = (m & MACSEC_SA_NEXT_PN) != 0 || ((m & MACSEC_SA_PN_H32) != 0 && s.xpn_en == 1) ||
                     (dir == kDec && (m & MACSEC_SA_LOWEST_PN) != 0);
    if (pns) {
        u64 pn[2] = {0, 0};
        rc = _pns_get(chip_id, dir, row, pn);
        if ((m & MACSEC_SA_NEXT_PN) != 0) {
            pn[0] = s.xpn_en == 1 ? (pn[0] & ~u64{0xFFFFFFFF}) | a->next_pn : a->next_pn;
        }
        if ((m & MACSEC_SA_PN_H32) != 0 && s.xpn_en == 1) {
            pn[0] = (pn[0] & 0xFFFFFFFF) | u64{a->pn_h32} << 32;
        }
        if (dir == kDec && (m & MACSEC_SA_LOWEST_PN) != 0) {
            pn[1] = a->lowest_pn;
        }
        rc = rc != 0 ? rc : _pns_set(chip_id, dir, row, pn);
    }
    if (dir == kDec && (m & MACSEC_SA_REPLAY_PROTECT) != 0) {
        s.replay_protect = a->replay_protect != 0 ? 1 : 0;
    }
    if (dir == kDec && (m & MACSEC_SA_REPLAY_WINDOW) != 0) {
        s.replay_window = a->replay_window;
    }
    if (rc == 0 && dir == kEnc && (m & MACSEC_SA_PN_ROLLOVER) != 0) {
        rc = _rollover_set(chip_id, a->pn_rollover);
    }
    if ((m & MACSEC_SA_IV) != 0) {
        s.salt_1 = a->salt_h;
        s.salt_0 = u64{a->salt_m} << 32 | a->salt_l;
        s.ssci = a->ssci;
    }
    s.vld = 1;
    return rc != 0 ? rc : _sa_write(chip_id, dir, row, s);
}

i32 _secure_assoc_get(u32 chip_id, u32 port, u32 sc, u32 an, u32 dir, macsec_secure_assoc *a)
{
    u32 row = 0;
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _sa_row(chip_id, sc, an, &row);
    if (rc != 0) {
        return rc;
    }
    *a = macsec_secure_assoc{};
    SaRow s;
    u64 pn[2] = {0, 0};
    u32 vld = 0;
    rc = _sa_read(chip_id, dir, row, &s);
    rc = rc != 0 ? rc : _pns_get(chip_id, dir, row, pn);
    rc = rc != 0 ? rc : _word_get(chip_id, kSide[dir].sak_vld, row / 32, &vld);
    if (dir == kEnc) {
        cib_xsec_enc_enc_sak_tbl_t k{};
        cib_xsec_enc_init_ctrl_t c{};
        rc = rc != 0 ? rc : csl_reef_cib_xsec_enc_enc_sak_tbl_get(chip_id, 0, row, &k);
        rc = rc != 0 ? rc : csl_reef_cib_xsec_enc_init_ctrl_get(chip_id, 0, &c);
        a->sak[3] = k.enc_sak_table_3, a->sak[2] = k.enc_sak_table_2, a->sak[1] = k.enc_sak_table_1;
        a->sak[0] = k.enc_sak_table_0;
        a->pn_rollover = c.enc_global_ctrl_pn_rollover;
        a->mask = MACSEC_SA_PN_TH | MACSEC_SA_PN_ROLLOVER;
    } else {
        cib_xsec_dec_dec_sak_tbl_t k{};
        rc = rc != 0 ? rc : csl_reef_cib_xsec_dec_dec_sak_tbl_get(chip_id, 0, row, &k);
        a->sak[3] = k.dec_sak_table_3, a->sak[2] = k.dec_sak_table_2, a->sak[1] = k.dec_sak_table_1;
        a->sak[0] = k.dec_sak_table_0;
        a->mask = MACSEC_SA_REPLAY_PROTECT | MACSEC_SA_REPLAY_WINDOW | MACSEC_SA_LOWEST_PN;
    }
    a->mask |= MACSEC_SA_CRYPTO | MACSEC_SA_SAK | MACSEC_SA_SECURE_OFFSET | MACSEC_SA_NEXT_PN | MACSEC_SA_XPN_ENABLE |
               MACSEC_SA_PN_H32 | MACSEC_SA_IV;
    a->crypto = s.curr_cs;
    a->sak_valid = vld >> (row % 32) & 1;
    a->pn_th = s.pn_th;
    a->replay_protect = s.replay_protect;
    a->replay_window = s.replay_window;
    a->secure_offset = s.enc_ofs < 3 ? kOffsets[s.enc_ofs] : 0;
    a->next_pn = static_cast<u32>(pn[0]);
    a->pn_h32 = static_cast<u32>(pn[0] >> 32);
    a->lowest_pn = pn[1];
    a->xpn_enable = s.xpn_en;
    a->ssci = s.ssci;
    a->salt_l = static_cast<u32>(s.salt_0);
    a->salt_m = static_cast<u32>(s.salt_0 >> 32);
    a->salt_h = s.salt_1;
    return rc;
}

// Row zero, key wiped and invalid, packet numbers 0; on the encrypt side the
// chip-wide rollover off.
i32 _sa_clear(u32 chip_id, u32 dir, u32 row)
{
    const u64 zeros[4] = {0, 0, 0, 0};
    const u64 pn[2] = {0, 0};
    i32 rc = _sa_write(chip_id, dir, row, SaRow{});
    rc = rc != 0 ? rc : _sak_set(chip_id, dir, row, 1, 1, zeros);
    rc = rc != 0 ? rc : _sak_set(chip_id, dir, row, 1, 0, zeros);
    rc = rc != 0 ? rc : _pns_set(chip_id, dir, row, pn);
    return rc != 0 || dir == kDec ? rc : _rollover_set(chip_id, 0);
}

i32 _secure_assoc_destroy(u32 chip_id, u32 port, u32 an, u32 sc, u32 dir)
{
    u32 row = 0;
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _sa_row(chip_id, sc, an, &row);
    return rc != 0 ? rc : _sa_clear(chip_id, dir, row);
}

i32 _secure_chan_destroy(u32 chip_id, u32 port, u32 dir, u32 sc)
{
    u32 mode = 0;
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _sc_check(chip_id, sc, &mode);
    if (rc != 0) {
        return rc;
    }
    if (dir == kEnc) {
        rc = _put(csl_reef_cib_xsec_enc_enc_sc_tbl_set, chip_id, sc, cib_xsec_enc_enc_sc_tbl_t{});
        rc = rc != 0 ? rc : _em_set(chip_id, sc, nullptr);
    } else {
        rc = _put(csl_reef_cib_xsec_dec_dec_sc_tbl_set, chip_id, sc, cib_xsec_dec_dec_sc_tbl_t{});
        rc = rc != 0 ? rc : _put(csl_reef_cib_xsec_dec_dec_sci_tbl_set, chip_id, sc, cib_xsec_dec_dec_sci_tbl_t{});
    }
    rc = rc != 0 ? rc : _sc_mode(chip_id, &mode);
    const u32 sas = mode == 1 ? 4 : 2;
    for (u32 an = 0; rc == 0 && an < sas; an++) {
        rc = _sa_clear(chip_id, dir, an + sc * sas);
    }
    return rc;
}

// ---- flows ---------------------------------------------------------------------------

// The fields of dec_port_cfg_tbl behind the flow conditions, in mask order.
constexpr u32 kFlowMembers[4] = {cib_xsec_dec_dec_port_cfg_tbl__dec_port_ctrl_ec01_bypass,
                                 cib_xsec_dec_dec_port_cfg_tbl__dec_port_ctrl_ec10_drop,
                                 cib_xsec_dec_dec_port_cfg_tbl__dec_port_ctrl_unknownsci_bypass,
                                 cib_xsec_dec_dec_port_cfg_tbl__dec_port_ctrl_validate_en};

u8 *_flow_field(cib_xsec_dec_dec_port_cfg_tbl_t &r, u32 i)
{
    u8 *const f[4] = {&r.dec_port_ctrl_ec01_bypass, &r.dec_port_ctrl_ec10_drop, &r.dec_port_ctrl_unknownsci_bypass,
                      &r.dec_port_ctrl_validate_en};
    return f[i];
}

u32 _flow_switch(const macsec_flow *f, u32 i)
{
    const u32 s[4] = {f->ec01, f->ec10, f->unknown_sci, f->notag_sa};
    return s[i];
}

i32 _flow_create(u32 chip_id, u32 port, u32 reserved, macsec_flow *f, u32 action)
{
    (void)reserved;
    i32 rc = _dir_port_check(chip_id, f->dir, port);
    if (rc != 0) {
        return rc;
    }
    if (f->dir == kEnc) {
        MACSEC_ERR(chip_id, "chip_id:%u, port:%u, flow not support direction : %d\n", chip_id, port, (int)f->dir);
        return SHR_E_NOT_SUPPORT;
    }
    if ((action & MACSEC_FLOW_MARK_ERR) != 0) {
        MACSEC_ERR(chip_id, "chip_id:%u, port:%u, flow not support mark err\n", chip_id, port);
        return SHR_E_NOT_SUPPORT;
    }
    if (action != MACSEC_FLOW_FORWARD && action != MACSEC_FLOW_DROP) {
        MACSEC_ERR(chip_id, "chip_id:%u, port:%u, flow action:%u is invalid\n", chip_id, port, action);
        return SHR_E_PARAM;
    }
    cib_xsec_dec_dec_port_cfg_tbl_t r{};
    for (u32 i = 0; rc == 0 && i < 4; i++) {
        if ((f->mask & 1u << i) != 0 && _flow_switch(f, i) != 0) {
            *_flow_field(r, i) = action == MACSEC_FLOW_DROP ? 1 : 0;
            rc = _put(csl_reef_cib_xsec_dec_dec_port_cfg_tbl_set, chip_id, port, r, {kFlowMembers[i]});
        }
    }
    return rc;
}

i32 _flow_get(u32 chip_id, u32 port, u32 reserved, macsec_flow *f, u32 *action)
{
    (void)reserved;
    i32 rc = _port_check(chip_id, port);
    if (rc != 0) {
        return rc;
    }
    cib_xsec_dec_dec_port_cfg_tbl_t r{};
    rc = csl_reef_cib_xsec_dec_dec_port_cfg_tbl_get(chip_id, 0, port, &r);
    f->ec01 = r.dec_port_ctrl_ec01_bypass;
    f->ec10 = r.dec_port_ctrl_ec10_drop;
    f->unknown_sci = r.dec_port_ctrl_unknownsci_bypass;
    f->notag_sa = r.dec_port_ctrl_validate_en;
    f->dir = kDec;
    *action = MACSEC_FLOW_FORWARD;
    for (u32 i = 0; i < 4; i++) {
        if ((f->mask & 1u << i) != 0 && _flow_switch(f, i) != 0) {
            *action = MACSEC_FLOW_DROP;
        }
    }
    return rc;
}

i32 _flow_destroy(u32 chip_id, u32 port, u32 flow_id)
{
    (void)flow_id;
    const i32 rc = _port_check(chip_id, port);
    return rc != 0 ? rc
                   : _put(csl_reef_cib_xsec_dec_dec_port_cfg_tbl_set, chip_id, port, cib_xsec_dec_dec_port_cfg_tbl_t{},
                          {kFlowMembers[0], kFlowMembers[1], kFlowMembers[2], kFlowMembers[3]});
}

// ---- statistics ------------------------------------------------------------------------

// A bit of a clearing register set and cleared again.
i32 _clear_pulse(u32 chip_id, u32 reg, u32 bit)
{
    const i32 rc = _bit_set(chip_id, reg, bit, 1);
    return rc != 0 ? rc : _bit_set(chip_id, reg, bit, 0);
}

i32 _stat_clear(u32 chip_id, u32 type, u32 index, u32 dir)
{
    i32 rc = _dir_check(chip_id, dir);
    if (rc != 0) {
        return rc;
    }
    const Side &s = kSide[dir];
    if (type == MACSEC_STAT_CLEAR_PORT) {
        rc = _port_check(chip_id, index);
        return rc != 0 ? rc : _clear_pulse(chip_id, s.mib_port_clr, index);
    }
    if (type == MACSEC_STAT_CLEAR_SC) {
        if (index > MACSEC_SC_MAX) {
            MACSEC_ERR(chip_id, "sc index is invalid!\n");
            return SHR_E_PARAM;
        }
        return index < 32 ? _clear_pulse(chip_id, s.mib_sc_clr_l32, index)
                          : _clear_pulse(chip_id, s.mib_sc_clr_h32, index - 32);
    }
    MACSEC_ERR(chip_id, "chip_id:%d stat clear not support type:%d\n", (int)chip_id, (int)type);
    return SHR_E_NOT_SUPPORT;
}

// Where a statistic stands: table, first id of its group, rows per key,
// and whether it is kept by SC.
struct StatPlace {
    u32 tab, first, rows;
    bool by_sc;
};

StatPlace _stat_place(u32 stat)
{
    if (stat <= MACSEC_STAT_ENC_ENCRYPTED_OCTETS) {
        return {cib_xsec_enc_enc_mib_port, 0, 4, false};
    }
    if (stat <= MACSEC_STAT_ENC_ENCRYPTED_PKTS) {
        return {cib_xsec_enc_enc_mib_sc, 3, 2, true};
    }
    if (stat <= MACSEC_STAT_DEC_DECRYPTED_OCTETS) {
        return {cib_xsec_dec_dec_mib_port, 5, 8, false};
    }
    return {cib_xsec_dec_dec_mib_sc, 12, 8, true};
}

i32 _stat_get(u32 chip_id, u32 port, u32 stat, u32 sc, u32 an, u64 *value, u32 reserved)
{
    (void)an;
    (void)reserved;
    if (stat >= MACSEC_STAT_COUNT) {
        MACSEC_ERR(chip_id, "chip_id:%d not support stat:%u\n", (int)chip_id, stat);
        return SHR_E_NOT_SUPPORT;
    }
    const StatPlace p = _stat_place(stat);
    if (!p.by_sc && port > MACSEC_PORT_MAX) {
        MACSEC_ERR(chip_id, "port index is invalid!\n");
        return SHR_E_PARAM;
    }
    if (p.by_sc && sc > MACSEC_SC_MAX) {
        MACSEC_ERR(chip_id, "sc index is invalid!\n");
        return SHR_E_PARAM;
    }
    u32 v = 0;
    const i32 rc = _word_get(chip_id, p.tab, (p.by_sc ? sc : port) * p.rows + stat - p.first, &v);
    *value = v;
    return rc;
}

// ---- white lists, global settings, packet numbers -----------------------------------

i32 _white_list(u32 chip_id, u32 index, u32 dir, u32 type, u16 value[2], bool set)
{
    i32 rc = _dir_check(chip_id, dir);
    if (rc != 0) {
        return rc;
    }
    const Side &s = kSide[dir];
    if (type == MACSEC_WHITE_LIST_ETYPE || type == MACSEC_WHITE_LIST_ETYPE_MASK) {
        if (index > 7) {
            MACSEC_ERR(chip_id, "white list index not valid!\n");
            return SHR_E_PARAM;
        }
        // Both sides' ether type entries have the same layout: the ether
        // type in bits 15:0 and its mask in bits 31:16.
        const u32 tab =
            dir == kEnc ? u32{cib_xsec_enc_enc_white_list_etype_cfg} : u32{cib_xsec_dec_dec_white_list_etype_cfg};
        const u32 shift = type == MACSEC_WHITE_LIST_ETYPE ? 0 : 16;
        u32 w = 0;
        rc = _word_get(chip_id, tab, index, &w);
        if (!set) {
            value[0] = static_cast<u16>(w >> shift);
            return rc;
        }
        w = (w & ~(0xFFFFu << shift)) | u32{value[0]} << shift;
        return rc != 0 ? rc : _word_set(chip_id, tab, index, w);
    }
    if (type == MACSEC_WHITE_LIST_OVLAN || type == MACSEC_WHITE_LIST_IVLAN) {
        if (index > 4) {
            MACSEC_ERR(chip_id, "invlid tpid index!\n");
            return SHR_E_PARAM;
        }
        const bool outer = type == MACSEC_WHITE_LIST_OVLAN;
        const u32 tab = outer ? s.wl_ovlan : s.wl_ivlan, en = outer ? s.wl_ovlan_en : s.wl_ivlan_en;
        if (set) {
            rc = _word_set(chip_id, tab, index, value[0]);
            return rc != 0 ? rc : _bit_set(chip_id, en, index, value[1]);
        }
        u32 tpid = 0, bits = 0;
        rc = _word_get(chip_id, tab, index, &tpid);
        rc = rc != 0 ? rc : csl_reef_reg_get_u32(chip_id, en, &bits);
        value[0] = static_cast<u16>(tpid);
        value[1] = static_cast<u16>(bits >> index & 1);
        return rc;
    }
    MACSEC_ERR(chip_id, "chip_id:%d white list not support type:%d\n", (int)chip_id, (int)type);
    return SHR_E_NOT_SUPPORT;
}

i32 _white_list_set(u32 chip_id, u32 index, u32 dir, u32 type, u16 value[2])
{
    return _white_list(chip_id, index, dir, type, value, true);
}

i32 _white_list_get(u32 chip_id, u32 index, u32 dir, u32 type, u16 value[2])
{
    return _white_list(chip_id, index, dir, type, value, false);
}

i32 _globle_set(u32 chip_id, macsec_global *g)
{
    if ((g->mask & MACSEC_GLOBAL_SC_MODE) != 0 && g->sc_mode > 1) {
        MACSEC_ERR(chip_id, "invalid sc mode, it shoule be less than 2!\n");
        return SHR_E_PARAM;
    }
    i32 rc = 0;
    if ((g->mask & MACSEC_GLOBAL_BYPASS) != 0) {
        rc = csl_reef_reg_set_u32(chip_id, cib_xsec_glb_macsec_bypass, g->bypass);
    }
    if (rc == 0 && (g->mask & MACSEC_GLOBAL_DEC_ENC_LOOPBACK) != 0) {
        rc = csl_reef_reg_set_u32(chip_id, cib_xsec_glb_dec_enc_loopback, g->dec_enc_loopback);
    }
    if (rc == 0 && (g->mask & MACSEC_GLOBAL_SC_MODE) != 0) {
        cib_xsec_enc_init_ctrl_t e{};
        cib_xsec_dec_init_ctrl_t d{};
        e.enc_global_ctrl_sc_mode = d.dec_global_ctrl_sc_mode = static_cast<u8>(g->sc_mode);
        rc = _put(csl_reef_cib_xsec_enc_init_ctrl_set, chip_id, e, {cib_xsec_enc_init_ctrl__enc_global_ctrl_sc_mode});
        rc = rc != 0 ? rc
                     : _put(csl_reef_cib_xsec_dec_init_ctrl_set, chip_id, d,
                            {cib_xsec_dec_init_ctrl__dec_global_ctrl_sc_mode});
    }
    return rc;
}

i32 _globle_get(u32 chip_id, macsec_global *g)
{
    g->mask = MACSEC_GLOBAL_BYPASS | MACSEC_GLOBAL_DEC_ENC_LOOPBACK | MACSEC_GLOBAL_SC_MODE;
    i32 rc = csl_reef_reg_get_u32(chip_id, cib_xsec_glb_macsec_bypass, &g->bypass);
    rc = rc != 0 ? rc : csl_reef_reg_get_u32(chip_id, cib_xsec_glb_dec_enc_loopback, &g->dec_enc_loopback);
    rc = rc != 0 ? rc : _sc_mode(chip_id, &g->sc_mode);
    return rc;
}

i32 _next_pn(u32 chip_id, u32 port, u32 sc, u32 an, u32 dir, u64 pn[2], bool set)
{
    u32 row = 0;
    i32 rc = _dir_port_check(chip_id, dir, port);
    rc = rc != 0 ? rc : _sa_row(chip_id, sc, an, &row);
    if (rc != 0) {
        return rc;
    }
    if (!set) {
        return _pns_get(chip_id, dir, row, pn);
    }
    u64 now[2] = {0, 0};
    rc = _pns_get(chip_id, dir, row, now);
    now[0] = pn[0];
    if (dir == kDec) {
        now[1] = pn[1];
    }
    return rc != 0 ? rc : _pns_set(chip_id, dir, row, now);
}

i32 _next_pn_set(u32 chip_id, u32 port, u32 sc, u32 an, u32 dir, u64 pn[2])
{
    return _next_pn(chip_id, port, sc, an, dir, pn, true);
}

i32 _next_pn_get(u32 chip_id, u32 port, u32 sc, u32 an, u32 dir, u64 pn[2])
{
    return _next_pn(chip_id, port, sc, an, dir, pn, false);
}

// The engine's debug counters: 0 to 9 chip-wide, 10 to 19 of the port the
// engine last counted; the ids up to 29 the engine reserves read 0.
constexpr u32 kDfxRegs[20] = {
    cib_xsec_enc_enc_rx_total_cnt_debug,
    cib_xsec_enc_enc_tx_total_cnt_debug,
    cib_xsec_dec_dec_rx_total_cnt_debug,
    cib_xsec_dec_dec_tx_total_cnt_debug,
    cib_xsec_dec_dec_loop_enc_total_cnt_debug,
    cib_xsec_enc_enc_rx_err_total_cnt_debug,
    cib_xsec_enc_enc_tx_err_total_cnt_debug,
    cib_xsec_dec_dec_rx_err_total_cnt_debug,
    cib_xsec_dec_dec_tx_err_total_cnt_debug,
    cib_xsec_dec_dec_loop_enc_err_total_cnt_debug,
    cib_xsec_enc_enc_rx_cnt_debug,
    cib_xsec_enc_enc_tx_cnt_debug,
    cib_xsec_dec_dec_rx_cnt_debug,
    cib_xsec_dec_dec_tx_cnt_debug,
    cib_xsec_dec_dec_loop_enc_cnt_debug,
    cib_xsec_enc_enc_rx_err_cnt_debug,
    cib_xsec_enc_enc_tx_err_cnt_debug,
    cib_xsec_dec_dec_rx_err_cnt_debug,
    cib_xsec_dec_dec_tx_err_cnt_debug,
    cib_xsec_dec_dec_loop_enc_err_cnt_debug,
};

i32 _dfx_cnt_get(u32 chip_id, u32 lport, u32 type, u32 *out)
{
    (void)lport;
    if (type >= 30) {
        MACSEC_ERR(chip_id, "chip_id:%d not support type:%d\n", (int)chip_id, (int)type);
        return SHR_E_NOT_SUPPORT;
    }
    *out = 0;
    return type < 20 ? csl_reef_reg_get_u32(chip_id, kDfxRegs[type], out) : 0;
}

} // namespace

extern "C" const csl_macsec_ops_t g_csl_macsec_atolreef = {
    "g_csl_macsec_atolreef",
    _hw_init,
    _port_config_set,
    _port_config_get,
    _port_capability_get,
    _secure_chan_create,
    _secure_chan_get,
    _secure_chan_destroy,
    nullptr,
    _secure_assoc_create,
    _secure_assoc_get,
    _secure_assoc_destroy,
    nullptr,
    _flow_create,
    _flow_get,
    nullptr,
    _flow_destroy,
    _stat_clear,
    _stat_get,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    _globle_set,
    _globle_get,
    _white_list_set,
    _white_list_get,
    _next_pn_set,
    _next_pn_get,
    _dfx_cnt_get,
};
