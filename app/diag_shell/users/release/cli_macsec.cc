// Mode `macsec`: ports, secure channels and associations of both sides,
// flows, statistics, global settings and white lists.  Ports and SCs are
// the engine's own numbers (MACsec ports 0 to 31, SCs 0 to 63), given as
// integer lists where the command takes a list.  A setting command applies
// the keywords it is given, each with its value, as one masked record.
#include <tide/macsec.h>

#include <cstring>
#include <string>
#include <vector>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"

namespace {

constexpr const char *k_crypto[] = {"gcm-aes-128", "gcm-aes-256", "gcm-sm4"};
constexpr const char *k_protect[] = {"integrity", "confidentiality", "confidentiality-offset"};
constexpr const char *k_validate[] = {"", "disable", "check", "strict"};

constexpr const char *k_stat_names[MACSEC_STAT_COUNT] = {
    "enc untagged packets",  "enc protected octets",  "enc encrypted octets",  "enc protected packets",
    "enc encrypted packets", "dec notag packets   ",  "dec untag packets   ",  "dec badtag packets  ",
    "dec nosa packets    ",  "dec nosaerr packets ",  "dec protected octets",  "dec decrypted octets",
    "dec notvalid packets ", "dec invalid packets  ", "dec unchecked packets", "dec late packets     ",
    "dec delayed packets  ", "dec ok packets       "};

i32 _failed(const char *call, i32 rc)
{
    return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
}

bool _is(const char *word, const char *what)
{
    return word != nullptr && std::strcmp(word, what) == 0;
}

// Index of `what` among argv[from..], or -1.
i32 _find(i32 argc, char **argv, const char *what, i32 from = 0)
{
    for (i32 i = from; i < argc; i++) {
        if (_is(argv[i], what)) {
            return i;
        }
    }
    return -1;
}

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

i32 _invalid(const char *word)
{
    cli_output_show("Parameter '%s' is invalid!\n", word != nullptr ? word : "");
    return SHR_E_PARAM;
}

// The number after keyword `key`, when the line has the keyword: 1 taken,
// 0 absent, negative for a bad number.
template <typename T>
i32 _num(i32 argc, char **argv, const char *key, T *out, i32 from = 0)
{
    const i32 i = _find(argc, argv, key, from);
    if (i < 0) {
        return 0;
    }
    u64 v = 0;
    if (i + 1 >= argc || cli_get_uint64_param(argv[i + 1], &v) != SHR_E_NONE) {
        return _invalid(i + 1 < argc ? argv[i + 1] : nullptr);
    }
    *out = static_cast<T>(v);
    return 1;
}

// The word after `key` as its index in `names`: as _num.
i32 _choice(i32 argc, char **argv, const char *key, const char *const *names, u32 count, u32 *out)
{
    const i32 i = _find(argc, argv, key);
    if (i < 0) {
        return 0;
    }
    for (u32 k = 0; i + 1 < argc && k < count; k++) {
        if (_is(argv[i + 1], names[k])) {
            *out = k;
            return 1;
        }
    }
    return _invalid(i + 1 < argc ? argv[i + 1] : nullptr);
}

// "enable" or "disable" after `key`: as _num.
i32 _onoff(i32 argc, char **argv, const char *key, u32 *out)
{
    static const char *const k_off_on[] = {"disable", "enable"};
    return _choice(argc, argv, key, k_off_on, 2, out);
}

// Sets `bit` in `*mask` for a keyword taken; passes a failure on.
bool _take(i32 got, u32 bit, u32 *mask, i32 *rc)
{
    if (got < 0) {
        *rc = got;
    } else if (got > 0) {
        *mask |= bit;
    }
    return got >= 0;
}

i32 _dir_of(const char *word)
{
    return _is(word, "dec") ? static_cast<i32>(MACSEC_DIR_DEC) : static_cast<i32>(MACSEC_DIR_ENC);
}

// Calls `fn(n)` for every number of the list `word`.
template <typename Fn>
i32 _each(const char *word, Fn fn)
{
    if (word == nullptr || cli_check_intlist(word) <= 0) {
        return _invalid(word);
    }
    return cli_intlist_walk(word, fn);
}

// Whether a show line prints `field`: it was asked for, or "all".
bool _want(i32 argc, char **argv, const char *field)
{
    return _find(argc, argv, field) >= 0 || _find(argc, argv, "all") >= 0;
}

// ---- ports --------------------------------------------------------------------------

i32 _port_set(u32 chip_id, u32 dir, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    macsec_port_config c{};
    u32 v = 0;
    i32 rc = SHR_E_NONE;
    _take(_num(argc, argv, "max-frame", &c.max_frame), MACSEC_PORT_MAX_FRAME, &c.mask, &rc);
    _take(_num(argc, argv, "sectag-offset", &c.sectag_offset), MACSEC_PORT_SECTAG_OFFSET, &c.mask, &rc);
    _take(_onoff(argc, argv, "macsec-enable", &c.macsec_enable), MACSEC_PORT_ENABLE, &c.mask, &rc);
    _take(_onoff(argc, argv, "white-list", &c.white_list_enable), MACSEC_PORT_WHITE_LIST, &c.mask, &rc);
    _take(_num(argc, argv, "bypass-vid", &c.bypass_vid), MACSEC_PORT_BYPASS_VID, &c.mask, &rc);
    _take(_num(argc, argv, "bypass-vlan-tpid", &c.bypass_tpid), MACSEC_PORT_BYPASS_TPID, &c.mask, &rc);
    _take(_num(argc, argv, "default_sc", &c.default_sc), MACSEC_PORT_DEFAULT_SC, &c.mask, &rc);
    if (_take(_onoff(argc, argv, "loopback", &c.lb_vld), MACSEC_PORT_LOOPBACK, &c.mask, &rc) &&
        (c.mask & MACSEC_PORT_LOOPBACK) != 0) {
        _take(_onoff(argc, argv, "fastp", &c.lb_fastp_en), 0, &v, &rc);
        _take(_num(argc, argv, "loop_port", &c.lb_dport), 0, &v, &rc);
    }
    static const char *const k_safe[] = {"should", "must"};
    _take(_choice(argc, argv, "safe_mode", k_safe, 2, &c.safe_mode), MACSEC_PORT_SAFE_MODE, &c.mask, &rc);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    return _each(argv[0], [&](u32 port) -> i32 {
        return _failed("macsec_api_port_config_set", macsec_api_port_config_set(chip_id, port, dir, &c));
    });
}

i32 _port_get(u32 chip_id, u32 dir, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    return _each(argv[0], [&](u32 port) -> i32 {
        macsec_port_config c{};
        i32 rc = _failed("macsec_api_port_config_get", macsec_api_port_config_get(chip_id, port, dir, &c));
        if (rc != SHR_E_NONE) {
            return rc;
        }
        cli_output_show("port %u (%s):\n", port, dir == MACSEC_DIR_ENC ? "enc" : "dec");
        if (_want(argc, argv, "max-frame")) {
            cli_output_show("  max-frame        : %u\n", c.max_frame);
        }
        if (_want(argc, argv, "sectag-offset")) {
            cli_output_show("  sectag-offset    : %u\n", c.sectag_offset);
        }
        if (_want(argc, argv, "macsec-enable")) {
            cli_output_show("  macsec-enable    : %s\n", c.macsec_enable != 0 ? "enable" : "disable");
        }
        if (_want(argc, argv, "white-list")) {
            cli_output_show("  white-list       : %s\n", c.white_list_enable != 0 ? "enable" : "disable");
        }
        if (_want(argc, argv, "bypass-vid")) {
            cli_output_show("  bypass-vid       : %u\n", (u32)c.bypass_vid);
        }
        if (_want(argc, argv, "bypass-vlan-tpid")) {
            cli_output_show("  bypass-vlan-tpid : 0x%04x\n", (u32)c.bypass_tpid);
        }
        if (_want(argc, argv, "default_sc")) {
            cli_output_show("  default_sc       : %u\n", c.default_sc);
        }
        if (dir == MACSEC_DIR_DEC && _want(argc, argv, "loopback")) {
            cli_output_show("  loopback         : %s fastp %s loop_port %u\n", c.lb_vld != 0 ? "enable" : "disable",
                            c.lb_fastp_en != 0 ? "enable" : "disable", c.lb_dport);
        }
        if (dir == MACSEC_DIR_DEC && _want(argc, argv, "safe_mode")) {
            cli_output_show("  safe_mode        : %s\n", c.safe_mode != 0 ? "must" : "should");
        }
        if (_want(argc, argv, "ability")) {
            u32 cap[4] = {0, 0, 0, 0};
            rc = _failed("macsec_api_port_capability_get", macsec_api_port_capability_get(chip_id, port, dir, cap));
            cli_output_show("  ability          : sa %u-%u sc %u-%u\n", cap[0], cap[1], cap[2], cap[3]);
        }
        return rc;
    });
}

// ---- secure channels -------------------------------------------------------------

i32 _sc_set(u32 chip_id, u32 dir, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    macsec_secure_chan c{};
    i32 rc = SHR_E_NONE;
    _take(_choice(argc, argv, "protect-mode", k_protect, 3, &c.protect_mode), MACSEC_SC_PROTECT_MODE, &c.mask, &rc);
    _take(_choice(argc, argv, "validate-mode", k_validate, 4, &c.validate_mode), MACSEC_SC_VALIDATE_MODE, &c.mask, &rc);
    _take(_onoff(argc, argv, "sc-enable", &c.sc_enable), MACSEC_SC_ENABLE, &c.mask, &rc);
    _take(_onoff(argc, argv, "sci-enable", &c.sci_enable), MACSEC_SC_SCI_ENABLE, &c.mask, &rc);
    _take(_onoff(argc, argv, "protect-frames", &c.protect_frames), MACSEC_SC_PROTECT_FRAMES, &c.mask, &rc);
    _take(_num(argc, argv, "sci", &c.sci), MACSEC_SC_SCI, &c.mask, &rc);
    static const char *const k_an[4] = {"sa0-an", "sa1-an", "sa2-an", "sa3-an"};
    for (u32 i = 0; i < 4; i++) {
        _take(_num(argc, argv, k_an[i], &c.sa_an[i]), MACSEC_SC_SA0_AN >> i, &c.mask, &rc);
    }
    // The TCI: v, es, sc, scb one bit each, an two bits.
    static const char *const k_tci[5] = {"tci-v", "tci-es", "tci-sc", "tci-scb", "tci-an"};
    for (u32 i = 0; i < 5; i++) {
        u32 v = 0;
        if (_take(_num(argc, argv, k_tci[i], &v), MACSEC_SC_TCI_V << i, &c.mask, &rc) &&
            _find(argc, argv, k_tci[i]) >= 0) {
            c.tci = static_cast<u8>(c.tci | (i == 4 ? (v & 3) << 4 : (v & 1) << i));
        }
    }
    if (_take(_num(argc, argv, "em-dport", &c.em_dport), MACSEC_SC_EM_DPORT, &c.mask, &rc) &&
        (c.mask & MACSEC_SC_EM_DPORT) != 0) {
        const i32 i = _find(argc, argv, "em-dmac");
        if (i < 0 || i + 1 >= argc || cli_get_mac_addr_flexible(argv[i + 1], c.em_dmac) != 0) {
            rc = _invalid(i >= 0 && i + 1 < argc ? argv[i + 1] : "em-dmac");
        }
        c.mask |= MACSEC_SC_EM_DMAC;
    }
    if (rc != SHR_E_NONE) {
        return rc;
    }
    return _each(argv[0], [&](u32 sc) -> i32 {
        return _failed("macsec_api_secure_chan_create", macsec_api_secure_chan_create(chip_id, 0, 0, dir, &c, sc));
    });
}

i32 _sc_get(u32 chip_id, u32 dir, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    return _each(argv[0], [&](u32 sc) -> i32 {
        macsec_secure_chan c{};
        const i32 rc = _failed("macsec_api_secure_chan_get", macsec_api_secure_chan_get(chip_id, 0, dir, sc, &c));
        if (rc != SHR_E_NONE) {
            return rc;
        }
        cli_output_show("sc %u (%s):\n", sc, dir == MACSEC_DIR_ENC ? "enc" : "dec");
        if (dir == MACSEC_DIR_ENC && _want(argc, argv, "protect-mode")) {
            cli_output_show("  protect-mode   : %s\n", c.protect_mode < 3 ? k_protect[c.protect_mode] : "?");
        }
        if (dir == MACSEC_DIR_ENC && _want(argc, argv, "protect-frames")) {
            cli_output_show("  protect-frames : %s\n", c.protect_frames != 0 ? "enable" : "disable");
        }
        if (dir == MACSEC_DIR_DEC && _want(argc, argv, "validate-mode")) {
            cli_output_show("  validate-mode  : %s\n", c.validate_mode < 4 ? k_validate[c.validate_mode] : "?");
        }
        if (dir == MACSEC_DIR_DEC && _want(argc, argv, "sci-enable")) {
            cli_output_show("  sci-enable     : %s\n", c.sci_enable != 0 ? "enable" : "disable");
        }
        if (_want(argc, argv, "sci")) {
            cli_output_show("  sci            : 0x%016llx\n", (unsigned long long)c.sci);
        }
        if (dir == MACSEC_DIR_ENC) {
            static const char *const k_tci[4] = {"tci-v", "tci-es", "tci-sc", "tci-scb"};
            for (u32 i = 0; i < 4; i++) {
                if (_want(argc, argv, k_tci[i])) {
                    cli_output_show("  %-14s : %u\n", k_tci[i], (u32)(c.tci >> i & 1));
                }
            }
            if (_want(argc, argv, "tci-an")) {
                cli_output_show("  tci-an         : %u\n", (u32)(c.tci >> 4 & 3));
            }
        }
        if (_want(argc, argv, "sc-enable")) {
            cli_output_show("  sc-enable      : %s\n", c.sc_enable != 0 ? "enable" : "disable");
        }
        static const char *const k_an[4] = {"sa0-an", "sa1-an", "sa2-an", "sa3-an"};
        for (u32 i = 4; i-- > 0;) {
            if (_want(argc, argv, k_an[i])) {
                cli_output_show("  %-14s : %u\n", k_an[i], (u32)c.sa_an[i]);
            }
        }
        if (dir == MACSEC_DIR_ENC && _want(argc, argv, "em-dport")) {
            cli_output_show("  em-dport       : %u\n", c.em_dport);
        }
        if (dir == MACSEC_DIR_ENC && _want(argc, argv, "em-dmac")) {
            const u8 *m = c.em_dmac;
            cli_output_show("  em-dmac        : %02x:%02x:%02x:%02x:%02x:%02x\n", m[0], m[1], m[2], m[3], m[4], m[5]);
        }
        return rc;
    });
}

// ---- secure associations -----------------------------------------------------------

// The key of "sak sak3 W sak2 W (sak1 W sak0 W |)".
i32 _sak(i32 argc, char **argv, macsec_secure_assoc *a)
{
    if (_find(argc, argv, "sak") < 0) {
        return 0;
    }
    static const char *const k_words[4] = {"sak0", "sak1", "sak2", "sak3"};
    for (u32 i = 0; i < 4; i++) {
        const i32 got = _num(argc, argv, k_words[i], &a->sak[i]);
        if (got < 0 || (got == 0 && i >= 2)) {
            return got < 0 ? got : _invalid(k_words[i]);
        }
    }
    a->sak_valid = 1;
    return 1;
}

i32 _sa_set(u32 chip_id, u32 dir, i32 argc, char **argv)
{
    u32 an = 0, sc = 0;
    if (argc < 3) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[0], &an) != SHR_E_NONE || cli_get_uint32_param(argv[1], &sc) != SHR_E_NONE) {
        return _invalid(argv[0]);
    }
    macsec_secure_assoc a{};
    i32 rc = SHR_E_NONE;
    _take(_choice(argc, argv, "crypto", k_crypto, 3, &a.crypto), MACSEC_SA_CRYPTO, &a.mask, &rc);
    _take(_sak(argc, argv, &a), MACSEC_SA_SAK, &a.mask, &rc);
    _take(_num(argc, argv, "next-pn", &a.next_pn), MACSEC_SA_NEXT_PN, &a.mask, &rc);
    _take(_num(argc, argv, "pn-th", &a.pn_th), MACSEC_SA_PN_TH, &a.mask, &rc);
    _take(_num(argc, argv, "secure-offset", &a.secure_offset), MACSEC_SA_SECURE_OFFSET, &a.mask, &rc);
    _take(_onoff(argc, argv, "xpn-enable", &a.xpn_enable), MACSEC_SA_XPN_ENABLE, &a.mask, &rc);
    _take(_num(argc, argv, "pn-h32", &a.pn_h32), MACSEC_SA_PN_H32, &a.mask, &rc);
    _take(_onoff(argc, argv, "pn-rollover", &a.pn_rollover), MACSEC_SA_PN_ROLLOVER, &a.mask, &rc);
    _take(_onoff(argc, argv, "replay-protect", &a.replay_protect), MACSEC_SA_REPLAY_PROTECT, &a.mask, &rc);
    _take(_num(argc, argv, "replay-window", &a.replay_window), MACSEC_SA_REPLAY_WINDOW, &a.mask, &rc);
    _take(_num(argc, argv, "lowest-pn", &a.lowest_pn), MACSEC_SA_LOWEST_PN, &a.mask, &rc);
    const i32 iv = _find(argc, argv, "iv");
    if (iv >= 0) {
        u32 *const words[4] = {&a.ssci, &a.salt_l, &a.salt_m, &a.salt_h};
        for (u32 i = 0; i < 4; i++) {
            if (iv + 1 + static_cast<i32>(i) >= argc ||
                cli_get_uint32_param(argv[iv + 1 + i], words[i]) != SHR_E_NONE) {
                rc = _invalid("iv");
            }
        }
        a.mask |= MACSEC_SA_IV;
    }
    return rc != SHR_E_NONE ? rc
                            : _failed("macsec_api_secure_assoc_create",
                                      macsec_api_secure_assoc_create(chip_id, 0, sc, 0, dir, &a, an));
}

i32 _sa_get(u32 chip_id, u32 dir, i32 argc, char **argv)
{
    u32 an = 0, sc = 0;
    if (argc < 3) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[0], &an) != SHR_E_NONE || cli_get_uint32_param(argv[1], &sc) != SHR_E_NONE) {
        return _invalid(argv[0]);
    }
    macsec_secure_assoc a{};
    const i32 rc = _failed("macsec_api_secure_assoc_get", macsec_api_secure_assoc_get(chip_id, 0, sc, an, dir, &a));
    if (rc != SHR_E_NONE) {
        return rc;
    }
    cli_output_show("sa %u sc %u (%s):\n", an, sc, dir == MACSEC_DIR_ENC ? "enc" : "dec");
    if (_want(argc, argv, "crypto")) {
        cli_output_show("  crypto         : %s\n", a.crypto < 3 ? k_crypto[a.crypto] : "?");
    }
    if (_want(argc, argv, "sak")) {
        cli_output_show("  sak            : %s 0x%016llx 0x%016llx 0x%016llx 0x%016llx\n",
                        a.sak_valid != 0 ? "valid" : "invalid", (unsigned long long)a.sak[3],
                        (unsigned long long)a.sak[2], (unsigned long long)a.sak[1], (unsigned long long)a.sak[0]);
    }
    if (_want(argc, argv, "next-pn")) {
        cli_output_show("  next-pn        : %u\n", a.next_pn);
    }
    if (dir == MACSEC_DIR_ENC && _want(argc, argv, "pn-th")) {
        cli_output_show("  pn-th          : %llu\n", (unsigned long long)a.pn_th);
    }
    if (dir == MACSEC_DIR_DEC && _want(argc, argv, "replay-protect")) {
        cli_output_show("  replay-protect : %s\n", a.replay_protect != 0 ? "enable" : "disable");
    }
    if (dir == MACSEC_DIR_DEC && _want(argc, argv, "replay-window")) {
        cli_output_show("  replay-window  : %u\n", a.replay_window);
    }
    if (dir == MACSEC_DIR_DEC && _want(argc, argv, "lowest-pn")) {
        cli_output_show("  lowest-pn      : %llu\n", (unsigned long long)a.lowest_pn);
    }
    if (_want(argc, argv, "secure-offset")) {
        cli_output_show("  secure-offset  : %u\n", a.secure_offset);
    }
    if (_want(argc, argv, "xpn-enable")) {
        cli_output_show("  xpn-enable     : %s\n", a.xpn_enable != 0 ? "enable" : "disable");
    }
    if (_want(argc, argv, "pn-h32")) {
        cli_output_show("  pn-h32         : %u\n", a.pn_h32);
    }
    if (dir == MACSEC_DIR_ENC && _want(argc, argv, "pn-rollover")) {
        cli_output_show("  pn-rollover    : %s\n", a.pn_rollover != 0 ? "enable" : "disable");
    }
    if (_want(argc, argv, "iv")) {
        cli_output_show("  iv             : ssci 0x%08x salt 0x%08x 0x%08x 0x%08x\n", a.ssci, a.salt_h, a.salt_m,
                        a.salt_l);
    }
    return rc;
}

// The statistics of one port or SC, in the given id range.
i32 _mib_show(u32 chip_id, u32 port, u32 sc, u32 first, u32 last, bool non_zero)
{
    for (u32 id = first; id <= last; id++) {
        u64 v = 0;
        const i32 rc = _failed("macsec_api_stat_get", macsec_api_stat_get(chip_id, port, id, sc, 0, &v, 0));
        if (rc != SHR_E_NONE) {
            return rc;
        }
        if (!non_zero || v != 0) {
            cli_output_show("  %-24s: %llu\n", k_stat_names[id], (unsigned long long)v);
        }
    }
    return SHR_E_NONE;
}

} // namespace

extern "C" {

// macsec enc-ports WORD {...}
i32 cli_macsec_enc_port_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _port_set(chip_id, MACSEC_DIR_ENC, argc, argv);
}

// show macsec enc-ports WORD {...}
i32 cli_macsec_enc_port_config_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return _port_get(chip_id, MACSEC_DIR_ENC, argc, argv);
}

i32 cli_macsec_dec_port_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _port_set(chip_id, MACSEC_DIR_DEC, argc, argv);
}

i32 cli_macsec_dec_port_config_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return _port_get(chip_id, MACSEC_DIR_DEC, argc, argv);
}

i32 cli_macsec_enc_sc_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sc_set(chip_id, MACSEC_DIR_ENC, argc, argv);
}

i32 cli_macsec_enc_sc_config_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sc_get(chip_id, MACSEC_DIR_ENC, argc, argv);
}

i32 cli_macsec_dec_sc_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sc_set(chip_id, MACSEC_DIR_DEC, argc, argv);
}

i32 cli_macsec_dec_sc_config_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sc_get(chip_id, MACSEC_DIR_DEC, argc, argv);
}

i32 cli_macsec_enc_sa_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sa_set(chip_id, MACSEC_DIR_ENC, argc, argv);
}

i32 cli_macsec_enc_sa_config_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sa_get(chip_id, MACSEC_DIR_ENC, argc, argv);
}

i32 cli_macsec_dec_sa_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sa_set(chip_id, MACSEC_DIR_DEC, argc, argv);
}

i32 cli_macsec_dec_sa_config_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return _sa_get(chip_id, MACSEC_DIR_DEC, argc, argv);
}

// show macsec (enc | dec) ports WORD bind-detail: the port's settings and
// the SC its traffic defaults to.
i32 cli_macsec_port_bind_detail_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    char all[] = "all";
    char *args[] = {argv[1], all};
    return _port_get(chip_id, static_cast<u32>(_dir_of(argv[0])), 2, args);
}

// macsec (enc | dec) sc WORD destroy
i32 cli_macsec_sc_destroy(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    const u32 dir = static_cast<u32>(_dir_of(argv[0]));
    return _each(argv[1], [&](u32 sc) -> i32 {
        return _failed("macsec_api_secure_chan_destroy", macsec_api_secure_chan_destroy(chip_id, 0, dir, sc));
    });
}

// macsec (enc | dec) sa WORD sc WORD destroy
i32 cli_macsec_sa_destroy(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 an = 0, sc = 0;
    if (argc < 3) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[1], &an) != SHR_E_NONE || cli_get_uint32_param(argv[2], &sc) != SHR_E_NONE) {
        return _invalid(argv[1]);
    }
    return _failed("macsec_api_secure_assoc_destroy",
                   macsec_api_secure_assoc_destroy(chip_id, 0, an, sc, static_cast<u32>(_dir_of(argv[0]))));
}

// macsec (enc | dec) flow WORD port WORD {ec01 | ec10 | unknown-sci | notag-sa} action (forward | mark-err | drop)
i32 cli_macsec_flow_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 5) {
        return _bad_argc();
    }
    macsec_flow f{};
    f.dir = static_cast<u32>(_dir_of(argv[0]));
    static const char *const k_cond[4] = {"ec01", "ec10", "unknown-sci", "notag-sa"};
    u32 *const sw[4] = {&f.ec01, &f.ec10, &f.unknown_sci, &f.notag_sa};
    for (u32 i = 0; i < 4; i++) {
        if (_find(argc, argv, k_cond[i], 3) >= 0) {
            f.mask |= 1u << i;
            *sw[i] = 1;
        }
    }
    const char *act = argv[argc - 1];
    const u32 action = _is(act, "drop")       ? MACSEC_FLOW_DROP
                       : _is(act, "mark-err") ? MACSEC_FLOW_MARK_ERR
                                              : MACSEC_FLOW_FORWARD;
    return _each(argv[2], [&](u32 port) -> i32 {
        return _failed("macsec_api_flow_create", macsec_api_flow_create(chip_id, port, 0, &f, action));
    });
}

// show macsec (enc | dec) flow WORD port WORD
i32 cli_macsec_flow_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3) {
        return _bad_argc();
    }
    return _each(argv[2], [&](u32 port) -> i32 {
        static const char *const k_cond[4] = {"ec01", "ec10", "unknown-sci", "notag-sa"};
        cli_output_show("port %u flow:\n", port);
        for (u32 i = 0; i < 4; i++) {
            macsec_flow f{1u << i, 1, 1, 1, 1, MACSEC_DIR_DEC};
            u32 action = 0;
            const i32 rc = _failed("macsec_api_flow_get", macsec_api_flow_get(chip_id, port, 0, &f, &action));
            if (rc != SHR_E_NONE) {
                return rc;
            }
            cli_output_show("  %-12s: %s\n", k_cond[i], action == MACSEC_FLOW_DROP ? "drop" : "forward");
        }
        return SHR_E_NONE;
    });
}

// macsec ports WORD flow WORD destroy
i32 cli_macsec_flow_destroy(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 flow = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[1], &flow) != SHR_E_NONE) {
        return _invalid(argv[1]);
    }
    return _each(argv[0], [&](u32 port) -> i32 {
        return _failed("macsec_api_flow_destroy", macsec_api_flow_destroy(chip_id, port, flow));
    });
}

// macsec (enc | dec) mib clear ports WORD
i32 cli_macsec_port_mib_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    const u32 dir = static_cast<u32>(_dir_of(argv[0]));
    return _each(argv[1], [&](u32 port) -> i32 {
        return _failed("macsec_api_stat_clear", macsec_api_stat_clear(chip_id, MACSEC_STAT_CLEAR_PORT, port, dir));
    });
}

// macsec (enc | dec) mib clear sc WORD
i32 cli_macsec_sc_mib_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    const u32 dir = static_cast<u32>(_dir_of(argv[0]));
    return _each(argv[1], [&](u32 sc) -> i32 {
        return _failed("macsec_api_stat_clear", macsec_api_stat_clear(chip_id, MACSEC_STAT_CLEAR_SC, sc, dir));
    });
}

// show macsec mib sc WORD (non-zero | )
i32 cli_macsec_sc_mib_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    const bool non_zero = _find(argc, argv, "non-zero") >= 0;
    return _each(argv[0], [&](u32 sc) -> i32 {
        cli_output_show("sc %u:\n", sc);
        const i32 rc =
            _mib_show(chip_id, 0, sc, MACSEC_STAT_ENC_PROTECTED_PKTS, MACSEC_STAT_ENC_ENCRYPTED_PKTS, non_zero);
        return rc != SHR_E_NONE
                   ? rc
                   : _mib_show(chip_id, 0, sc, MACSEC_STAT_DEC_NOTVALID_PKTS, MACSEC_STAT_DEC_OK_PKTS, non_zero);
    });
}

// show macsec mib ports WORD (non-zero | )
i32 cli_macsec_port_mib_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    const bool non_zero = _find(argc, argv, "non-zero") >= 0;
    return _each(argv[0], [&](u32 port) -> i32 {
        cli_output_show("port %u:\n", port);
        const i32 rc =
            _mib_show(chip_id, port, 0, MACSEC_STAT_ENC_UNTAGGED_PKTS, MACSEC_STAT_ENC_ENCRYPTED_OCTETS, non_zero);
        return rc != SHR_E_NONE ? rc
                                : _mib_show(chip_id, port, 0, MACSEC_STAT_DEC_NOTAG_PKTS,
                                            MACSEC_STAT_DEC_DECRYPTED_OCTETS, non_zero);
    });
}

// macsec global {bypass | dec-to-enc-loopback | sc_mode} (enable | disable)
i32 cli_macsec_global_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    const u32 on = _is(argv[argc - 1], "enable") ? 1 : 0;
    macsec_global g{};
    if (_find(argc, argv, "bypass") >= 0) {
        g.mask |= MACSEC_GLOBAL_BYPASS;
        g.bypass = on;
    }
    if (_find(argc, argv, "dec-to-enc-loopback") >= 0) {
        g.mask |= MACSEC_GLOBAL_DEC_ENC_LOOPBACK;
        g.dec_enc_loopback = on;
    }
    if (_find(argc, argv, "sc_mode") >= 0) {
        g.mask |= MACSEC_GLOBAL_SC_MODE;
        g.sc_mode = on;
    }
    return _failed("macsec_api_globle_set", macsec_api_globle_set(chip_id, &g));
}

// show macsec global (bypass | dec-to-enc-loopback | sc_mode | all)
i32 cli_macsec_global_config_get(u32 chip_id, u32, i32 argc, char **argv)
{
    macsec_global g{};
    const i32 rc = _failed("macsec_api_globle_get", macsec_api_globle_get(chip_id, &g));
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (_want(argc, argv, "bypass")) {
        cli_output_show("bypass              : %s\n", g.bypass != 0 ? "enable" : "disable");
    }
    if (_want(argc, argv, "dec-to-enc-loopback")) {
        cli_output_show("dec-to-enc-loopback : %s\n", g.dec_enc_loopback != 0 ? "enable" : "disable");
    }
    if (_want(argc, argv, "sc_mode")) {
        cli_output_show("sc_mode             : %s\n", g.sc_mode != 0 ? "1:4" : "1:2");
    }
    return rc;
}

// macsec (enc | dec) white-list (ovlan | ivlan) entry WORD (enable | disable) tpid WORD
i32 cli_macsec_white_list_vlan_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 index = 0;
    u16 v[2] = {0, 0};
    if (argc < 5) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[2], &index) != SHR_E_NONE ||
        cli_get_uint16_para(argv[argc - 1], &v[0]) != SHR_E_NONE) {
        return _invalid(argv[2]);
    }
    v[1] = _find(argc, argv, "enable") >= 0 ? 1 : 0;
    const u32 type = _is(argv[1], "ivlan") ? MACSEC_WHITE_LIST_IVLAN : MACSEC_WHITE_LIST_OVLAN;
    return _failed("macsec_api_white_list_set",
                   macsec_api_white_list_set(chip_id, index, static_cast<u32>(_dir_of(argv[0])), type, v));
}

// show macsec (enc | dec) white-list (ovlan | ivlan | all-vlan) entry WORD
i32 cli_macsec_white_list_vlan_get(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 index = 0;
    if (argc < 3) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[2], &index) != SHR_E_NONE) {
        return _invalid(argv[2]);
    }
    const u32 dir = static_cast<u32>(_dir_of(argv[0]));
    for (const u32 type : {MACSEC_WHITE_LIST_OVLAN, MACSEC_WHITE_LIST_IVLAN}) {
        const char *name = type == MACSEC_WHITE_LIST_OVLAN ? "ovlan" : "ivlan";
        if (!_is(argv[1], name) && !_is(argv[1], "all-vlan")) {
            continue;
        }
        u16 v[2] = {0, 0};
        const i32 rc = _failed("macsec_api_white_list_get", macsec_api_white_list_get(chip_id, index, dir, type, v));
        if (rc != SHR_E_NONE) {
            return rc;
        }
        cli_output_show("%s entry %u: %s tpid 0x%04x\n", name, index, v[1] != 0 ? "enable" : "disable", (u32)v[0]);
    }
    return SHR_E_NONE;
}

// macsec (enc | dec) white-list ethertype entry WORD value WORD mask WORD
i32 cli_macsec_white_list_etype_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 index = 0;
    u16 value[2] = {0, 0}, mask[2] = {0, 0};
    if (argc < 4) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[1], &index) != SHR_E_NONE || cli_get_uint16_para(argv[2], &value[0]) != SHR_E_NONE ||
        cli_get_uint16_para(argv[3], &mask[0]) != SHR_E_NONE) {
        return _invalid(argv[1]);
    }
    const u32 dir = static_cast<u32>(_dir_of(argv[0]));
    const i32 rc = _failed("macsec_api_white_list_set",
                           macsec_api_white_list_set(chip_id, index, dir, MACSEC_WHITE_LIST_ETYPE, value));
    return rc != SHR_E_NONE
               ? rc
               : _failed("macsec_api_white_list_set",
                         macsec_api_white_list_set(chip_id, index, dir, MACSEC_WHITE_LIST_ETYPE_MASK, mask));
}

// show macsec (enc | dec) white-list ethertype entry WORD
i32 cli_macsec_white_list_etype_get(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 index = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    if (cli_get_uint32_param(argv[1], &index) != SHR_E_NONE) {
        return _invalid(argv[1]);
    }
    const u32 dir = static_cast<u32>(_dir_of(argv[0]));
    u16 value[2] = {0, 0}, mask[2] = {0, 0};
    i32 rc = _failed("macsec_api_white_list_get",
                     macsec_api_white_list_get(chip_id, index, dir, MACSEC_WHITE_LIST_ETYPE, value));
    rc = rc != SHR_E_NONE ? rc
                          : _failed("macsec_api_white_list_get",
                                    macsec_api_white_list_get(chip_id, index, dir, MACSEC_WHITE_LIST_ETYPE_MASK, mask));
    if (rc == SHR_E_NONE) {
        cli_output_show("ethertype entry %u: value 0x%04x mask 0x%04x\n", index, (u32)value[0], (u32)mask[0]);
    }
    return rc;
}

} // extern "C"

namespace {

// The definitions of the mode, in the catalogue's order.
cli_cmd_desc g_macsec_desc[] = {
    {"macsec enc-ports WORD {max-frame WORD | sectag-offset WORD | macsec-enable (enable | disable) | white-list "
     "(enable | disable) | bypass-vid WORD | bypass-vlan-tpid WORD | default_sc WORD}",
     -1, cli_macsec_enc_port_config_set, nullptr, 0},
    {"show macsec enc-ports WORD {max-frame | sectag-offset | macsec-enable | white-list | bypass-vid | "
     "bypass-vlan-tpid | ability | default_sc | all}",
     -1, cli_macsec_enc_port_config_get, nullptr, 0},
    {"macsec dec-ports WORD {max-frame WORD | sectag-offset WORD | macsec-enable (enable | disable) | white-list "
     "(enable | disable) | bypass-vid WORD | bypass-vlan-tpid WORD | default_sc WORD | loopback (enable | disable) "
     "fastp (enable | disable) loop_port WORD | safe_mode (should | must)}",
     -1, cli_macsec_dec_port_config_set, nullptr, 0},
    {"show macsec dec-ports WORD {max-frame | sectag-offset | macsec-enable | white-list | bypass-vid | "
     "bypass-vlan-tpid | ability | default_sc | loopback | safe_mode | all}",
     -1, cli_macsec_dec_port_config_get, nullptr, 0},
    {"macsec enc-sc WORD {protect-mode (integrity | confidentiality | confidentiality-offset) | protect-frames "
     "(enable | disable) | sci WORD | tci-v WORD | tci-es WORD | tci-sc WORD | tci-scb WORD | tci-an WORD | "
     "sc-enable (enable | disable) | sa3-an WORD | sa2-an WORD | sa1-an WORD | sa0-an WORD | em-dport WORD "
     "em-dmac WORD}",
     -1, cli_macsec_enc_sc_config_set, nullptr, 0},
    {"show macsec enc-sc WORD {protect-mode | protect-frames | sci | tci-v | tci-es | tci-sc | tci-scb | tci-an | "
     "sc-enable | sa3-an | sa2-an | sa1-an | sa0-an | em-dport | em-dmac | all}",
     -1, cli_macsec_enc_sc_config_get, nullptr, 0},
    {"macsec dec-sc WORD {validate-mode (disable | check | strict) | sci-enable (enable | disable) | sci WORD | "
     "sc-enable (enable | disable) | sa3-an WORD | sa2-an WORD | sa1-an WORD | sa0-an WORD}",
     -1, cli_macsec_dec_sc_config_set, nullptr, 0},
    {"show macsec dec-sc WORD {validate-mode | sci-enable | sci | sc-enable | sa3-an | sa2-an | sa1-an | sa0-an | "
     "all}",
     -1, cli_macsec_dec_sc_config_get, nullptr, 0},
    {"macsec enc-sa WORD sc WORD {crypto (gcm-aes-128 | gcm-aes-256 | gcm-sm4) | sak sak3 WORD sak2 WORD (sak1 WORD "
     "sak0 WORD | ) | next-pn WORD | pn-th WORD | secure-offset WORD | xpn-enable (enable | disable) | pn-h32 WORD | "
     "pn-rollover (enable | disable) | iv WORD WORD WORD WORD}",
     -1, cli_macsec_enc_sa_config_set, nullptr, 0},
    {"show macsec enc-sa WORD sc WORD {crypto | sak | next-pn | pn-th | secure-offset | xpn-enable | pn-h32 | "
     "pn-rollover | iv | all}",
     -1, cli_macsec_enc_sa_config_get, nullptr, 0},
    {"macsec dec-sa WORD sc WORD {crypto (gcm-aes-128 | gcm-aes-256 | gcm-sm4) | sak sak3 WORD sak2 WORD (sak1 WORD "
     "sak0 WORD | ) | replay-protect (enable | disable) | next-pn WORD | replay-window WORD | lowest-pn WORD | "
     "secure-offset WORD | xpn-enable (enable | disable) | pn-h32 WORD | iv WORD WORD WORD WORD}",
     -1, cli_macsec_dec_sa_config_set, nullptr, 0},
    {"show macsec dec-sa WORD sc WORD {crypto | sak | next-pn | replay-protect | replay-window | lowest-pn "
     "|secure-offset | xpn-enable | pn-h32 | iv | all}",
     -1, cli_macsec_dec_sa_config_get, nullptr, 0},
    {"show macsec (enc | dec) ports WORD bind-detail", -1, cli_macsec_port_bind_detail_get, nullptr, 0},
    {"macsec (enc | dec) sc WORD destroy", -1, cli_macsec_sc_destroy, nullptr, 0},
    {"macsec (enc | dec) sa WORD sc WORD destroy", -1, cli_macsec_sa_destroy, nullptr, 0},
    {"macsec (enc | dec) flow WORD port WORD {ec01 | ec10 | unknown-sci | notag-sa } action(forward | mark-err | "
     "drop)",
     -1, cli_macsec_flow_set, nullptr, 0},
    {"show macsec (enc | dec) flow WORD port WORD", -1, cli_macsec_flow_get, nullptr, 0},
    {"macsec ports WORD flow WORD destroy", -1, cli_macsec_flow_destroy, nullptr, 0},
    {"macsec (enc | dec) mib clear ports WORD", -1, cli_macsec_port_mib_clear, nullptr, 0},
    {"macsec (enc | dec) mib clear sc WORD", -1, cli_macsec_sc_mib_clear, nullptr, 0},
    {"show macsec mib sc WORD (non-zero | )", -1, cli_macsec_sc_mib_get, nullptr, 0},
    {"show macsec mib ports WORD (non-zero | )", -1, cli_macsec_port_mib_get, nullptr, 0},
    {"macsec global {bypass | dec-to-enc-loopback | sc_mode} (enable | disable)", -1, cli_macsec_global_config_set,
     nullptr, 0},
    {"show macsec global (bypass | dec-to-enc-loopback | sc_mode | all)", -1, cli_macsec_global_config_get, nullptr, 0},
    {"macsec (enc | dec) white-list (ovlan | ivlan) entry WORD (enable | disable) tpid WORD", -1,
     cli_macsec_white_list_vlan_set, nullptr, 0},
    {"show macsec (enc | dec) white-list (ovlan | ivlan | all-vlan) entry WORD", -1, cli_macsec_white_list_vlan_get,
     nullptr, 0},
    {"macsec (enc | dec) white-list ethertype entry WORD value WORD mask WORD", -1, cli_macsec_white_list_etype_set,
     nullptr, 0},
    {"show macsec (enc | dec) white-list ethertype entry WORD", -1, cli_macsec_white_list_etype_get, nullptr, 0},
};

constexpr u32 k_macsec_commands = sizeof(g_macsec_desc) / sizeof(g_macsec_desc[0]);
cli_cmd_item g_macsec_items[k_macsec_commands];

// Help of the words that need more than their own name.
struct WordHelp {
    const char *word;
    const char *help;
};
constexpr WordHelp k_word_help[] = {
    {"show", "Show"},
    {"macsec", "MACsec"},
    {"WORD", "Value or list"},
    {"enc", "Encrypt side"},
    {"dec", "Decrypt side"},
    {"enc-ports", "Ports, encrypt side"},
    {"dec-ports", "Ports, decrypt side"},
    {"enc-sc", "Secure channels, encrypt side"},
    {"dec-sc", "Secure channels, decrypt side"},
    {"enc-sa", "Secure associations, encrypt side"},
    {"dec-sa", "Secure associations, decrypt side"},
    {"sc", "Secure channel"},
    {"sa", "Secure association"},
    {"mib", "Statistics"},
    {"all", "Everything"},
    {"enable", "Enable"},
    {"disable", "Disable"},
};

// One help line per word of each definition, made once.
std::vector<std::vector<std::string>> g_macsec_help_text;
std::vector<std::vector<const char *>> g_macsec_help;

void _help_make()
{
    g_macsec_help_text.assign(k_macsec_commands, {});
    g_macsec_help.assign(k_macsec_commands, {});
    for (u32 i = 0; i < k_macsec_commands; i++) {
        const char *pos = g_macsec_desc[i].cmd;
        for (;;) {
            const char *tok = nullptr;
            u32 len = 0;
            const u32 type = cli_match_type_from_str(&pos, &tok, &len);
            if (type == CLI_TK_END || type == CLI_TK_BAD) {
                break;
            }
            if (type == CLI_TK_RANGE || type == CLI_TK_KEYWORD || type == CLI_TK_PIPE || type == CLI_TK_REDIRECT ||
                type >= CLI_TK_LINE) {
                std::string word(tok, len), help = word;
                for (const WordHelp &h : k_word_help) {
                    if (word == h.word) {
                        help = h.help;
                    }
                }
                g_macsec_help_text[i].push_back(help);
            }
        }
        for (const std::string &s : g_macsec_help_text[i]) {
            g_macsec_help[i].push_back(s.c_str());
        }
        g_macsec_help[i].push_back(nullptr);
        g_macsec_desc[i].help = g_macsec_help[i].data();
    }
}

} // namespace

extern "C" void cli_cmd_init_macsec(void)
{
    _help_make();
    cli_cmd_descs_link(g_macsec_desc, g_macsec_items, k_macsec_commands, CLI_MODE_MACSEC);
}
