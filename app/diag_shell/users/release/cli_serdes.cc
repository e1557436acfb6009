// The `serdes` mode: commands that set and show the SerDes lanes of a chip
// through the SerDes service (`serdes_api_*`).
//
// The WORD after "serdes" is a list of lanes ("2", "0-3", "1,5"); a setting
// runs on each lane in turn and the first failure ends it, what was done
// before stands.  Failures print one line with the lane, the call and its
// status.  Words of a command that no chip of the family has (the rates of
// other SerDes, the tap form of the emphasis) are refused by the key check.
#include <cstdio>
#include <cstring>
#include <string>

#include <tide/tide.h>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "app/diag_shell/users/release/cli_serdes.h"

namespace {

constexpr cli_word k_speed_words[] = {
    {SERDES_SPEED_1P25G_PLL0, "1P250G-pll0"},    {SERDES_SPEED_3P125G_PLL1, "3P1250G-pll1"},
    {SERDES_SPEED_5G_PLL0, "5G-pll0"},           {SERDES_SPEED_10G_PLL0, "10G-pll0"},
    {SERDES_SPEED_10P3125G_PLL1, "10P3125G-pll1"}, {SERDES_SPEED_1P25G_PLL1, "1P250G-pll1"},
    {SERDES_SPEED_3P125G_PLL0, "3P1250G-pll0"},  {SERDES_SPEED_5G_PLL1, "5G-pll1"},
    {SERDES_SPEED_10G_PLL1, "10G-pll1"},         {SERDES_SPEED_10P3125G_PLL0, "10P3125G-pll0"},
    {SERDES_SPEED_UNUSED, "unused"}};
constexpr cli_word k_width_words[] = {{8, "8BIT"},   {10, "10BIT"}, {16, "16BIT"}, {20, "20BIT"},
                                              {32, "32BIT"}, {40, "40BIT"}, {64, "64BIT"}};
constexpr cli_word k_dir_words[] = {{SERDES_DIR_TX, "tx"}, {SERDES_DIR_RX, "rx"}, {SERDES_DIR_BOTH, "all"}};
constexpr cli_word k_prbs_words[] = {
    {SERDES_PRBS7, "prbs7"},       {SERDES_PRBS9, "prbs9"},         {SERDES_PRBS11, "prbs11"},
    {SERDES_PRBS15, "prbs15"},     {SERDES_PRBS16, "prbs16"},       {SERDES_PRBS23, "prbs23"},
    {SERDES_PRBS231, "prbs231"},   {SERDES_PRBS31, "prbs31"},       {SERDES_PAT0X0, "pat0x0"},
    {SERDES_PAT1X1, "pat1x1"},     {SERDES_PAT2X2, "pat2x2"},       {SERDES_PAT5X5, "pat5x5"},
    {SERDES_PAT8X16, "pat8x16"},   {SERDES_PAT10X10, "pat10x10"},   {SERDES_PAT20X20, "pat20x20"},
    {SERDES_PAT1X1_61BIT, "pat1x1-61bit"}, {SERDES_PAT_USER, "pat-udp"}};
constexpr cli_word k_loop_words[] = {{SERDES_LOOP_SERIAL_TX2RX, "serpre-tx2rx"},
                                             {SERDES_LOOP_SERIAL_RX2TX, "serpre-rx2tx"},
                                             {SERDES_LOOP_PARALLEL_TX2RX, "paral-tx2rx"},
                                             {SERDES_LOOP_PARALLEL_RX2TX, "paral-rx2tx"}};
constexpr cli_word k_power_words[] = {{SERDES_POWER_TX, "tx"},
                                              {SERDES_POWER_RX, "rx"},
                                              {SERDES_POWER_TXRX, "txrx"},
                                              {SERDES_POWER_PLL0, "pll0"},
                                              {SERDES_POWER_PLL1, "pll1"}};
constexpr cli_word k_reset_words[] = {
    {SERDES_RESET_RX, "rx"}, {SERDES_RESET_TX, "tx"}, {SERDES_RESET_PHY, "phy"}};
constexpr cli_word k_adapt_words[] = {{0, "ctle"}, {SERDES_RX_ADAPT_DFE, "dfe"}};
constexpr cli_word k_work_mode_words[] = {{0, "eth"}, {1, "pcie"}};

// The rates of other SerDes and the tap form of the emphasis.
constexpr cli_key_support k_speed_key_support[] = {
    {"1P25G-MPLLA", {0, 0, 0, 0, 0}}, {"1P25G-MPLLB", {0, 0, 0, 0, 0}}, {"3P125G", {0, 0, 0, 0, 0}},
    {"5G", {0, 0, 0, 0, 0}},          {"10G", {0, 0, 0, 0, 0}},         {"10P3125G", {0, 0, 0, 0, 0}},
    {"12P5G", {0, 0, 0, 0, 0}},       {"7P8125G", {0, 0, 0, 0, 0}},     {"25P78125G", {0, 0, 0, 0, 0}},
    {"26P5625G", {0, 0, 0, 0, 0}},    {"53P125G", {0, 0, 0, 0, 0}}};
constexpr cli_key_support k_tap_key_support[] = {{"tap0", {0, 0, 0, 0, 0}}};

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

i32 _bad_word(const char *word)
{
    cli_output_show(" para %s is invalid.\n", word);
    return SHR_E_PARAM;
}

i32 _number(const char *word, u32 *value)
{
    return cli_get_uint32_param(word, value) == SHR_E_NONE ? SHR_E_NONE : _bad_word(word);
}

// The failure line of a call on one lane.
i32 _call(u32 serdes_id, const char *api, i32 rc)
{
    if (rc != SHR_E_NONE) {
        cli_output_show(" serdes %u: call %s failed, %s\n", serdes_id, api, shr_errmsg(rc));
    }
    return rc;
}

#define CLI_SERDES_API(fn) #fn, fn

// Calls `fn(serdes_id)` for each lane of the list; the first failure ends
// the walk.
template <typename Fn>
i32 _each_lane(u32 chip_id, const char *list, Fn fn)
{
    const i32 rc = cli_chip_valid_check(chip_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (cli_check_intlist(list) <= 0) {
        return _bad_word(list);
    }
    std::string copy(list);
    char *cursor = copy.data();
    for (i32 id = cli_get_next_from_intlist(&cursor, 0); id >= 0; id = cli_get_next_from_intlist(&cursor, id)) {
        const i32 status = fn(static_cast<u32>(id));
        if (status != SHR_E_NONE) {
            return status;
        }
    }
    return SHR_E_NONE;
}

// A text report of the lane into a buffer of `len`, then shown.
template <typename Fn>
i32 _show_text(u32 serdes_id, const char *api, u64 len, Fn fill)
{
    std::string text(len, '\0');
    const i32 rc = _call(serdes_id, api, fill(text.data(), len));
    if (rc == SHR_E_NONE) {
        text.resize(std::strlen(text.c_str()));
        cli_output_show("%s", text.c_str());
        if (!text.empty() && text.back() != '\n') {
            cli_output_show("\n");
        }
    }
    return rc;
}

// A control item of the lane: set from a number, or shown with `label`.
i32 _control_set(u32 chip_id, const char *list, u32 type, const char *word)
{
    u32 value = 0;
    const i32 rc = _number(word, &value);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    return _each_lane(chip_id, list, [&](u32 sid) -> i32 {
        u32 v = value;
        serdes_control c{type, &v};
        return _call(sid, CLI_SERDES_API(serdes_api_control_set)(chip_id, sid, &c));
    });
}

i32 _control_show(u32 chip_id, const char *list, u32 type, const char *label)
{
    return _each_lane(chip_id, list, [&](u32 sid) -> i32 {
        u32 v = 0;
        serdes_control c{type, &v};
        const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_control_get)(chip_id, sid, &c));
        if (rc == SHR_E_NONE) {
            cli_output_show(" serdes %u %-14s: %u\n", sid, label, v);
        }
        return rc;
    });
}

bool _on(const char *word)
{
    return std::strcmp(word, "enable") == 0;
}

// The two fields of the records that "serdes WORD <word> <value word>" sets.
template <typename Rec>
struct _pair_fields;
template <>
struct _pair_fields<serdes_pn> {
    static constexpr u32 serdes_pn::*first = &serdes_pn::dir, serdes_pn::*second = &serdes_pn::mode;
};
template <>
struct _pair_fields<serdes_loopback> {
    static constexpr u32 serdes_loopback::*first = &serdes_loopback::type,
                         serdes_loopback::*second = &serdes_loopback::enable;
};
template <>
struct _pair_fields<serdes_power> {
    static constexpr u32 serdes_power::*first = &serdes_power::dir, serdes_power::*second = &serdes_power::value;
};
template <>
struct _pair_fields<serdes_rx_adapt> {
    static constexpr u32 serdes_rx_adapt::*first = &serdes_rx_adapt::type,
                         serdes_rx_adapt::*second = &serdes_rx_adapt::enable;
};

// "serdes WORD <word> <value word>": the record's first field named by
// `words` from argv[1], its second `value`, set on each lane.
template <typename Rec, size_t N>
i32 _pair_set(u32 chip_id, i32 argc, char **argv, const cli_word (&words)[N], u32 value, const char *api,
              i32 (*fn)(u32, u32, Rec *))
{
    Rec rec{};
    if (argc != 3) {
        return _bad_argc();
    }
    if (!cli_word_id_get(words, argv[1], &(rec.*_pair_fields<Rec>::first))) {
        return _bad_word(argv[1]);
    }
    rec.*_pair_fields<Rec>::second = value;
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        Rec each = rec;
        return _call(sid, api, fn(chip_id, sid, &each));
    });
}

} // namespace

extern "C" {

i32 cli_serdes_pll_freq_set_key_support_check(u32 chip_id, i32 argc, char **argv)
{
    return cli_key_support_check(chip_id, argc, argv, k_speed_key_support,
                                 sizeof(k_speed_key_support) / sizeof(k_speed_key_support[0]));
}

i32 cli_serdes_pre_emphasis_set_key_support_check(u32 chip_id, i32 argc, char **argv)
{
    return cli_key_support_check(chip_id, argc, argv, k_tap_key_support, 1);
}

// show serdes WORD speed
i32 cli_serdes_support_freq_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_freq f{};
        const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_freq_get)(chip_id, sid, &f));
        if (rc != SHR_E_NONE) {
            return rc;
        }
        cli_output_show(" serdes %u speed: %s\n", sid, cli_word_name_get(k_speed_words, f.speed, "-"));
        return _show_text(sid, "serdes_api_support_speed_get", 1024, [&](char *b, u64 len) {
            return serdes_api_support_speed_get(chip_id, sid, b, len);
        });
    });
}

// serdes WORD speed (...) width (...)
i32 cli_serdes_pll_freq_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 3) {
        return _bad_argc();
    }
    i32 rc = cli_serdes_pll_freq_set_key_support_check(chip_id, argc, argv);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    serdes_freq f{};
    if (!cli_word_id_get(k_speed_words, argv[1], &f.speed)) {
        return _bad_word(argv[1]);
    }
    if (!cli_word_id_get(k_width_words, argv[2], &f.width)) {
        return _bad_word(argv[2]);
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_freq each = f;
        return _call(sid, CLI_SERDES_API(serdes_api_freq_set)(chip_id, sid, &each));
    });
}

// serdes WORD pn (tx | rx | all) (enable | disable)
i32 cli_serdes_lane_pn_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 3 ? _bad_argc()
                     : _pair_set(chip_id, argc, argv, k_dir_words, _on(argv[2]) ? 1 : 0,
                                 CLI_SERDES_API(serdes_api_pn_set));
}

// show serdes WORD pn
i32 cli_serdes_pn_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_pn tx{SERDES_DIR_TX, 0}, rx{SERDES_DIR_RX, 0};
        i32 rc = _call(sid, CLI_SERDES_API(serdes_api_pn_get)(chip_id, sid, &tx));
        rc = rc == SHR_E_NONE ? _call(sid, CLI_SERDES_API(serdes_api_pn_get)(chip_id, sid, &rx)) : rc;
        if (rc == SHR_E_NONE) {
            cli_output_show(" serdes %u pn: tx %s, rx %s\n", sid, tx.mode != 0 ? "inverted" : "normal",
                            rx.mode != 0 ? "inverted" : "normal");
        }
        return rc;
    });
}

// serdes WORD emphasis ((main WORD pre WORD post WORD (swing_leg WORD | )) | (tap0 WORD ... polarity WORD))
i32 cli_serdes_pre_emphasis_set(u32 chip_id, u32, i32 argc, char **argv)
{
    i32 rc = cli_serdes_pre_emphasis_set_key_support_check(chip_id, argc, argv);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (argc != 7 && argc != 9) {
        return _bad_argc();
    }
    u32 v[4] = {0, 0, 0, 0};
    for (i32 i = 0; i < (argc - 1) / 2; i++) {
        rc = _number(argv[2 + 2 * i], &v[i]);
        if (rc != SHR_E_NONE) {
            return rc;
        }
        if (v[i] > UINT8_MAX) {
            return _bad_word(argv[2 + 2 * i]);
        }
    }
    const serdes_emphasis e{0, static_cast<u8>(v[0]), static_cast<u8>(v[1]), static_cast<u8>(v[2]),
                            static_cast<u8>(v[3])};
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_emphasis each = e;
        return _call(sid, CLI_SERDES_API(serdes_api_emphasis_set)(chip_id, sid, &each));
    });
}

// show serdes WORD emphasis
i32 cli_serdes_pre_emphasis_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_emphasis e{};
        const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_emphasis_get)(chip_id, sid, &e));
        if (rc == SHR_E_NONE) {
            cli_output_show(" serdes %u emphasis: main %u pre %u post %u swing_leg %u\n", sid, e.main, e.pre, e.post,
                            e.swing_leg);
        }
        return rc;
    });
}

// serdes WORD (enable | disable) (tx | rx | all)
i32 cli_serdes_lane_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 dir = 0;
    if (argc != 3) {
        return _bad_argc();
    }
    if (!cli_word_id_get(k_dir_words, argv[2], &dir)) {
        return _bad_word(argv[2]);
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        u32 enable = _on(argv[1]) ? 1 : 0;
        return _call(sid, CLI_SERDES_API(serdes_api_serdes_enable_set)(chip_id, sid, &enable));
    });
}

// show serdes WORD enable-status
i32 cli_serdes_enable_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        u32 enable = 0;
        const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_serdes_enable_get)(chip_id, sid, &enable));
        if (rc == SHR_E_NONE) {
            cli_output_show(" serdes %u enable: %u\n", sid, enable);
        }
        return rc;
    });
}

// serdes WORD prbs-dir (tx | rx | all) prbs-mode (0 | prbs7 | ... | (pat-udp WORD))
i32 cli_serdes_prbs_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 3 && argc != 4) {
        return _bad_argc();
    }
    serdes_prbs p{1, 0, 0, nullptr};
    if (!cli_word_id_get(k_dir_words, argv[1], &p.dir)) {
        return _bad_word(argv[1]);
    }
    u64 pattern = 0;
    if (std::strcmp(argv[2], "0") == 0) {
        p.enable = 0; // "0" stops the generator and checker
    } else if (!cli_word_id_get(k_prbs_words, argv[2], &p.type)) {
        return _bad_word(argv[2]);
    }
    if (p.type == SERDES_PAT_USER) {
        if (argc != 4 || cli_get_uint64_param(argv[3], &pattern) != SHR_E_NONE) {
            return argc != 4 ? _bad_argc() : _bad_word(argv[3]);
        }
        p.user_pattern = &pattern;
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_prbs each = p;
        return _call(sid, CLI_SERDES_API(serdes_api_prbs_set)(chip_id, sid, &each));
    });
}

// show serdes WORD prbs-status
i32 cli_serdes_prbs_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        for (u32 dir : {SERDES_DIR_TX, SERDES_DIR_RX}) {
            serdes_prbs p{0, dir, 0, nullptr};
            const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_prbs_get)(chip_id, sid, &p));
            if (rc != SHR_E_NONE) {
                return rc;
            }
            cli_output_show(" serdes %u prbs %s: %s %s\n", sid, cli_word_name_get(k_dir_words, dir, "-"),
                            p.enable != 0 ? "enable" : "disable",
                            p.enable != 0 ? cli_word_name_get(k_prbs_words, p.type, "-") : "");
        }
        return SHR_E_NONE;
    });
}

// serdes WORD prbs insert-err num WORD
i32 cli_serdes_prbs_error_pkt_insert(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 count = 0;
    if (argc != 2) {
        return _bad_argc();
    }
    const i32 rc = _number(argv[1], &count);
    return rc != SHR_E_NONE ? rc : _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _call(sid, CLI_SERDES_API(serdes_api_prbs_insert_err_pkt)(chip_id, sid, count));
    });
}

// show serdes WORD prbs (err-cnt | status)
i32 cli_serdes_prbs_check(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 2) {
        return _bad_argc();
    }
    const bool count = std::strcmp(argv[1], "err-cnt") == 0;
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        if (count) {
            u32 errors = 0;
            const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_prbs_counter_get)(chip_id, sid, &errors));
            if (rc == SHR_E_NONE) {
                cli_output_show(" serdes %u prbs err-cnt: %u\n", sid, errors);
            }
            return rc;
        }
        serdes_prbs_check_info info{};
        const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_prbs_check)(chip_id, sid, &info));
        if (rc == SHR_E_NONE) {
            cli_output_show(" serdes %u prbs lock: %u err-cnt: %u\n", sid, info.lock, info.error_count);
        }
        return rc;
    });
}

// serdes WORD prbs clear-err-cnt
i32 cli_serdes_err_counter_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _call(sid, CLI_SERDES_API(serdes_api_prbs_counter_clear)(chip_id, sid));
    });
}

// serdes WORD prbs invert prbs-dir (tx | rx | all) (enable | disable)
i32 cli_serdes_prbs_invert_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 3 ? _bad_argc()
                     : _pair_set(chip_id, argc, argv, k_dir_words, _on(argv[2]) ? 1 : 0,
                                 CLI_SERDES_API(serdes_api_prbs_invert_enable_set));
}

// serdes WORD reset (tx | rx | phy)
i32 cli_serdes_reset_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 mode = 0;
    if (argc != 2) {
        return _bad_argc();
    }
    if (!cli_word_id_get(k_reset_words, argv[1], &mode)) {
        return _bad_word(argv[1]);
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _call(sid, CLI_SERDES_API(serdes_api_serdes_reset)(chip_id, sid, mode));
    });
}

// serdes WORD loopback (serpre-tx2rx | serpre-rx2tx | paral-tx2rx | paral-rx2tx) (enable | disable)
i32 cli_serdes_lane_loopback_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 3 ? _bad_argc()
                     : _pair_set(chip_id, argc, argv, k_loop_words, _on(argv[2]) ? 1 : 0,
                                 CLI_SERDES_API(serdes_api_loopback_set));
}

// show serdes WORD loopback-status
i32 cli_serdes_lane_loopback_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        for (const cli_word &w : k_loop_words) {
            serdes_loopback loop{w.id, 0};
            const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_loopback_get)(chip_id, sid, &loop));
            if (rc != SHR_E_NONE) {
                return rc;
            }
            cli_output_show(" serdes %u loopback %-13s: %s\n", sid, w.name, loop.enable != 0 ? "enable" : "disable");
        }
        return SHR_E_NONE;
    });
}

// serdes WORD power (tx | rx | txrx | pll0 | pll1) (up | down)
i32 cli_serdes_lane_power_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 3 ? _bad_argc()
                     : _pair_set(chip_id, argc, argv, k_power_words,
                                 std::strcmp(argv[2], "down") == 0 ? SERDES_POWER_DOWN : SERDES_POWER_UP,
                                 CLI_SERDES_API(serdes_api_power_set));
}

// show serdes WORD power-status
i32 cli_serdes_power_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        for (const cli_word &w : k_power_words) {
            serdes_power power{w.id, 0};
            const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_power_get)(chip_id, sid, &power));
            if (rc != SHR_E_NONE) {
                return rc;
            }
            cli_output_show(" serdes %u power %-4s: %s\n", sid, w.name, power.value == SERDES_POWER_DOWN ? "down" : "up");
        }
        return SHR_E_NONE;
    });
}

// serdes WORD los-threshold WORD
i32 cli_serdes_los_threshold_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 2 ? _bad_argc() : _control_set(chip_id, argv[0], SERDES_CONTROL_LOS_THR, argv[1]);
}

// show serdes WORD los-threshold
i32 cli_serdes_los_threshold_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 1 ? _bad_argc() : _control_show(chip_id, argv[0], SERDES_CONTROL_LOS_THR, "los-threshold");
}

// serdes WORD rxadapt (ctle | dfe) (enable | disable)
i32 cli_serdes_lane_rxadapt_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 3 ? _bad_argc()
                     : _pair_set(chip_id, argc, argv, k_adapt_words, _on(argv[2]) ? 1 : 0,
                                 CLI_SERDES_API(serdes_api_rx_adapt_set));
}

// show serdes WORD rxadapt-status (ctle | dfe)
i32 cli_serdes_rxadapt_sta_get(u32 chip_id, u32, i32 argc, char **argv)
{
    serdes_rx_adapt adapt{};
    if (argc != 2) {
        return _bad_argc();
    }
    if (!cli_word_id_get(k_adapt_words, argv[1], &adapt.type)) {
        return _bad_word(argv[1]);
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_rx_adapt each = adapt;
        const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_rx_adapt_get)(chip_id, sid, &each));
        if (rc == SHR_E_NONE) {
            cli_output_show(" serdes %u rxadapt %s: %s\n", sid, argv[1], each.enable != 0 ? "enable" : "disable");
        }
        return rc;
    });
}

// serdes WORD rx-adapt-para: the line carries no parameter, so it lists the
// parameters a program sets with serdes_api_rx_para_set.
i32 cli_serdes_rxadapt_para_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        cli_output_show(" serdes %u rx-adapt-para: ctle_hf_cal ctle_cap_cal ctle_res_cal vga_capen vga_res_cal "
                        "ctle_deq_enb vga_deq_enb lpf_res_sel ctle_lpf_capsel ctle_eqenb vga_stage12 ctle_hf ctle_lf "
                        "tap1_data tap1_phase (serdes_api_rx_para_set, para 1 to 15)\n",
                        sid);
        return SHR_E_NONE;
    });
}

// show serdes WORD rx-adapt-para
i32 cli_serdes_rxadapt_para_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _show_text(sid, "serdes_api_rx_para_get", SERDES_RX_PARA_BUFF_LEN,
                          [&](char *b, u64) { return serdes_api_rx_para_get(chip_id, sid, b); });
    });
}

// show serdes WORD eye (four-point | full)
i32 cli_serdes_eye_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 2) {
        return _bad_argc();
    }
    const bool full = std::strcmp(argv[1], "full") == 0;
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        if (full) {
            return _show_text(sid, "serdes_api_full_eye_get", SERDES_FULL_EYE_BUFF_LEN, [&](char *b, u64 len) {
                return serdes_api_full_eye_get(chip_id, sid, b, len);
            });
        }
        serdes_eye eye{};
        const i32 rc = _call(sid, CLI_SERDES_API(serdes_api_four_point_eye)(chip_id, sid, &eye));
        if (rc == SHR_E_NONE) {
            cli_output_show(" serdes %u eye: left %u right %u up %u down %u x_center %d y_center %d\n", sid, eye.left,
                            eye.right, eye.up, eye.down, static_cast<i32>(eye.x_center),
                            static_cast<i32>(eye.y_center));
        }
        return rc;
    });
}

// serdes WORD dump register (detail |)
i32 cli_serdes_reg_dump(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1 && argc != 2) {
        return _bad_argc();
    }
    const u32 detail = argc == 2 ? 1 : 0;
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _show_text(sid, "serdes_api_all_reg_dump", SERDES_REG_DUMP_BUFF_LEN, [&](char *b, u64 len) {
            return serdes_api_all_reg_dump(chip_id, sid, detail, b, len);
        });
    });
}

// The register of a read or write line: (addr WORD ((start_bit WORD end_bit WORD) | )) or (reg-name WORD
// ((field-name WORD) | )), from argv[1] on.
struct _cli_serdes_reg {
    bool by_name = false;
    serdes_raw_bits bits{0, 0, 0, 31};
    char *reg = nullptr;
    char *field = nullptr;
};

i32 _reg_parse(i32 argc, char **argv, _cli_serdes_reg *r)
{
    if (argc < 3) {
        return _bad_argc();
    }
    if (std::strcmp(argv[1], "reg-name") == 0) {
        r->by_name = true;
        r->reg = argv[2];
        if (argc == 5 && std::strcmp(argv[3], "field-name") == 0) {
            r->field = argv[4];
        } else if (argc != 3) {
            return _bad_argc();
        }
        return SHR_E_NONE;
    }
    i32 rc = _number(argv[2], &r->bits.addr);
    if (rc == SHR_E_NONE && argc == 7) {
        rc = _number(argv[4], &r->bits.start_bit);
        rc = rc == SHR_E_NONE ? _number(argv[6], &r->bits.end_bit) : rc;
    } else if (rc == SHR_E_NONE && argc != 3) {
        return _bad_argc();
    }
    return rc;
}

// serdes WORD register write (...) data WORD
i32 cli_serdes_reg_write(u32 chip_id, u32, i32 argc, char **argv)
{
    _cli_serdes_reg r;
    u32 data = 0;
    i32 rc = argc >= 4 ? _number(argv[argc - 1], &data) : _bad_argc();
    rc = rc == SHR_E_NONE ? _reg_parse(argc - 1, argv, &r) : rc;
    if (rc != SHR_E_NONE) {
        return rc;
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        if (r.by_name && r.field != nullptr) {
            return _call(sid, CLI_SERDES_API(serdes_api_name_register_field_set)(chip_id, sid, r.reg, r.field, data));
        }
        if (r.by_name) {
            return _call(sid, CLI_SERDES_API(serdes_api_name_register_set)(chip_id, sid, r.reg, data));
        }
        serdes_raw_bits bits = r.bits;
        bits.data = data;
        serdes_control c{SERDES_CONTROL_RAW_BITS, &bits};
        return _call(sid, CLI_SERDES_API(serdes_api_control_set)(chip_id, sid, &c));
    });
}

// serdes WORD register read (...)
i32 cli_serdes_reg_read(u32 chip_id, u32, i32 argc, char **argv)
{
    _cli_serdes_reg r;
    const i32 rc = _reg_parse(argc, argv, &r);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        u32 data = 0;
        i32 status = 0;
        if (r.by_name && r.field != nullptr) {
            status = _call(sid, CLI_SERDES_API(serdes_api_name_register_field_get)(chip_id, sid, r.reg, r.field, &data));
        } else if (r.by_name) {
            status = _call(sid, CLI_SERDES_API(serdes_api_name_register_get)(chip_id, sid, r.reg, &data));
        } else {
            serdes_raw_bits bits = r.bits;
            serdes_control c{SERDES_CONTROL_RAW_BITS, &bits};
            status = _call(sid, CLI_SERDES_API(serdes_api_control_get)(chip_id, sid, &c));
            data = bits.data;
        }
        if (status == SHR_E_NONE) {
            cli_output_show(" serdes %u value: 0x%x\n", sid, data);
        }
        return status;
    });
}

// show serdes WORD debug-info
i32 cli_serdes_debug_info_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _show_text(sid, "serdes_api_debug_info_get", SERDES_DEBUG_INFO_BUF_LEN, [&](char *b, u64 len) {
            return serdes_api_debug_info_get(chip_id, sid, b, len);
        });
    });
}

// serdes work-mode (eth | pcie)
i32 cli_serdes_work_mode_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 type = 0;
    if (argc != 1) {
        return _bad_argc();
    }
    if (!cli_word_id_get(k_work_mode_words, argv[0], &type)) {
        return _bad_word(argv[0]);
    }
    const i32 rc = cli_chip_valid_check(chip_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const i32 status = serdes_api_serdes_type_sel(chip_id, type);
    if (status != SHR_E_NONE) {
        cli_output_show(" call serdes_api_serdes_type_sel failed, %s\n", shr_errmsg(status));
    }
    return status;
}

// show serdes WORD sram-data
i32 cli_serdes_sram_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _show_text(sid, "serdes_api_sram_get", 4096,
                          [&](char *b, u64 len) { return serdes_api_sram_get(chip_id, sid, b, len); });
    });
}

// show serdes WORD los-status: the lane's lock, as "lock-status" shows it.
i32 cli_serdes_los_status_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 1 ? _bad_argc() : _control_show(chip_id, argv[0], SERDES_CONTROL_LOCK, "los-status");
}

// show serdes WORD lock-status
i32 cli_serdes_lock_status_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 1 ? _bad_argc() : _control_show(chip_id, argv[0], SERDES_CONTROL_LOCK, "lock-status");
}

// serdes WORD 8k_clk_id WORD
i32 cli_serdes_8k_clk_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 clk_id = 0;
    if (argc != 2) {
        return _bad_argc();
    }
    const i32 rc = _number(argv[1], &clk_id);
    return rc != SHR_E_NONE ? rc : _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _call(sid, CLI_SERDES_API(serdes_api_8k_clk_set)(chip_id, sid, clk_id));
    });
}

// show serdes WORD 8k_clk_id WORD
i32 cli_serdes_8k_clk_get(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 clk_id = 0;
    if (argc != 2) {
        return _bad_argc();
    }
    const i32 rc = _number(argv[1], &clk_id);
    return rc != SHR_E_NONE ? rc : _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        serdes_8k_clk clk{};
        const i32 status = _call(sid, CLI_SERDES_API(serdes_api_8k_clk_get)(chip_id, clk_id, &clk));
        if (status == SHR_E_NONE) {
            cli_output_show(" 8k clk %u: serdes %u enable %u clk_sel %u div0 %u div1 %u\n", clk_id, clk.serdes_id,
                            clk.enable, clk.clk_sel, clk.div0, clk.div1);
        }
        return status;
    });
}

// serdes WORD preset WORD
i32 cli_serdes_emphasis_preset_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 2 ? _bad_argc() : _control_set(chip_id, argv[0], SERDES_CONTROL_PRESET, argv[1]);
}

// show serdes WORD preset
i32 cli_serdes_emphasis_preset_get(u32 chip_id, u32, i32 argc, char **argv)
{
    return argc != 1 ? _bad_argc() : _control_show(chip_id, argv[0], SERDES_CONTROL_PRESET, "preset");
}

// serdes WORD offset_calibrate
i32 cli_serdes_offset_calibrate(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc != 1) {
        return _bad_argc();
    }
    return _each_lane(chip_id, argv[0], [&](u32 sid) -> i32 {
        return _show_text(sid, "serdes_api_ctle_offset_calibrate_result", SERDES_CTLE_OFFSET_CALIBRATE_BUFF_LEN,
                          [&](char *b, u64 len) {
                              return serdes_api_ctle_offset_calibrate_result(chip_id, sid, b, static_cast<u32>(len));
                          });
    });
}

} // extern "C"

namespace {

// One help line for each word of a command.
const char *const k_help_support_freq_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                               "Line rate", nullptr};
const char *const k_help_pll_freq_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Line rate",
                                           "1P25G-MPLLA", "1P25G-MPLLB", "3P125G", "5G", "10G", "10P3125G", "12P5G",
                                           "7P8125G", "25P78125G", "26P5625G", "53P125G", "1P250G-pll0",
                                           "3P1250G-pll1", "5G-pll0", "10G-pll0", "10P3125G-pll1", "1P250G-pll1",
                                           "3P1250G-pll0", "5G-pll1", "10G-pll1", "10P3125G-pll0",
                                           "Data width (only logged)", "8BIT", "10BIT", "16BIT", "20BIT", "32BIT",
                                           "40BIT", "64BIT", nullptr};
const char *const k_help_lane_pn_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Polarity",
                                          "Transmit", "Receive", "Both directions", "Enable", "Disable", nullptr};
const char *const k_help_pn_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges", "Polarity",
                                     nullptr};
const char *const k_help_pre_emphasis_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges",
                                               "Transmit emphasis", "Main tap", "Value: main tap", "Pre-cursor tap",
                                               "Value: pre-cursor tap", "Post-cursor tap", "Value: post-cursor tap",
                                               "Swing legs", "Value: swing legs", "Tap 0", "Value: tap 0", "Tap 1",
                                               "Value: tap 1", "Tap 2", "Value: tap 2", "Tap 3", "Value: tap 3",
                                               "Amplitude", "Value: amplitude", "Polarity", "Value: polarity",
                                               nullptr};
const char *const k_help_pre_emphasis_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                               "Transmit emphasis", nullptr};
const char *const k_help_lane_enable_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Enable",
                                              "Disable", "Transmit", "Receive", "Both directions", nullptr};
const char *const k_help_enable_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                         "Enable state", nullptr};
const char *const k_help_prbs_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "PRBS direction",
                                       "Transmit", "Receive", "Both directions", "PRBS pattern", "Off", "prbs7",
                                       "prbs9", "prbs11", "prbs15", "prbs16", "prbs23", "prbs231", "prbs31",
                                       "pat0x0", "pat1x1", "pat2x2", "pat5x5", "pat8x16", "pat10x10", "pat20x20",
                                       "pat1x1-61bit", "User pattern", "Value: user pattern", nullptr};
const char *const k_help_prbs_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges", "PRBS state",
                                       nullptr};
const char *const k_help_prbs_error_pkt_insert[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "PRBS",
                                                    "Inject errors", "Number of errors", "Value: number of errors",
                                                    nullptr};
const char *const k_help_prbs_check[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges", "PRBS",
                                         "Error count", "Lock and error count", nullptr};
const char *const k_help_err_counter_clear[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "PRBS",
                                                "Restart the checker", nullptr};
const char *const k_help_prbs_invert_enable_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "PRBS",
                                                     "Inversion", "PRBS direction", "Transmit", "Receive",
                                                     "Both directions", "Enable", "Disable", nullptr};
const char *const k_help_reset_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Reset", "Transmit",
                                        "Receive", "The whole macro", nullptr};
const char *const k_help_lane_loopback_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Loopback",
                                                "serpre-tx2rx", "serpre-rx2tx", "paral-tx2rx", "paral-rx2tx",
                                                "Enable", "Disable", nullptr};
const char *const k_help_lane_loopback_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                                "Loopback state", nullptr};
const char *const k_help_lane_power_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Power",
                                             "Transmit", "Receive", "Transmit and receive", "PLL 0 of the macro",
                                             "PLL 1 of the macro", "Power up", "Power down", nullptr};
const char *const k_help_power_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges", "Power state",
                                        nullptr};
const char *const k_help_los_threshold_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges",
                                                "Loss-of-signal threshold", "Value: loss-of-signal threshold",
                                                nullptr};
const char *const k_help_los_threshold_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                                "Loss-of-signal threshold", nullptr};
const char *const k_help_lane_rxadapt_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges",
                                               "Receive adaptation", "CTLE", "DFE", "Enable", "Disable", nullptr};
const char *const k_help_rxadapt_sta_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                              "Receive adaptation state", "CTLE", "DFE", nullptr};
const char *const k_help_rxadapt_para_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges",
                                               "Receive parameters", nullptr};
const char *const k_help_rxadapt_para_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                               "Receive parameters", nullptr};
const char *const k_help_eye_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                      "Eye measurement", "Four-point eye", "Full eye", nullptr};
const char *const k_help_reg_dump[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Dump", "Register",
                                       "With the fields", nullptr};
const char *const k_help_reg_write[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Register", "Write",
                                        "By offset in the macro", "Value: by offset in the macro", "First bit",
                                        "Value: first bit", "Last bit", "Value: last bit", "By register name",
                                        "Value: by register name", "One field", "Value: one field", "Value",
                                        "Value: value", nullptr};
const char *const k_help_reg_read[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "Register", "Read",
                                       "By offset in the macro", "Value: by offset in the macro", "First bit",
                                       "Value: first bit", "Last bit", "Value: last bit", "By register name",
                                       "Value: by register name", "One field", "Value: one field", nullptr};
const char *const k_help_debug_info_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                             "Diagnostic report", nullptr};
const char *const k_help_work_mode_set[] = {"SerDes lane", "Work mode of the SerDes", "Ethernet", "PCIe", nullptr};
const char *const k_help_sram_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                       "SRAM of the macro", nullptr};
const char *const k_help_los_status_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                             "Loss of signal", nullptr};
const char *const k_help_lock_status_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                              "Clock recovery lock", nullptr};
const char *const k_help_8k_clk_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges", "8 kHz clock",
                                         "Value: 8 khz clock", nullptr};
const char *const k_help_8k_clk_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                         "8 kHz clock", "Value: 8 khz clock", nullptr};
const char *const k_help_emphasis_preset_set[] = {"SerDes lane", "Lanes: a list of numbers and ranges",
                                                  "Transmit preset", "Value: transmit preset", nullptr};
const char *const k_help_emphasis_preset_get[] = {"Show", "SerDes lane", "Lanes: a list of numbers and ranges",
                                                  "Transmit preset", nullptr};
const char *const k_help_offset_calibrate[] = {"SerDes lane", "Lanes: a list of numbers and ranges",
                                               "Calibrate the offsets", nullptr};

#define CLI_DESC(handler, cmd, help) {cmd, -1, handler, help, 0}

cli_cmd_desc g_cli_serdes_desc[] = {
    CLI_DESC(cli_serdes_support_freq_get, "show serdes WORD speed", k_help_support_freq_get),
    CLI_DESC(cli_serdes_pll_freq_set,
             "serdes WORD speed (1P25G-MPLLA | 1P25G-MPLLB | 3P125G | 5G | 10G | 10P3125G | 12P5G | 7P8125G | "
             "25P78125G | 26P5625G | 53P125G | 1P250G-pll0 | 3P1250G-pll1 | 5G-pll0 | 10G-pll0 | 10P3125G-pll1 | "
             "1P250G-pll1 | 3P1250G-pll0 | 5G-pll1 | 10G-pll1 | 10P3125G-pll0) width (8BIT | 10BIT | 16BIT | 20BIT "
             "| 32BIT | 40BIT | 64BIT)",
             k_help_pll_freq_set),
    CLI_DESC(cli_serdes_lane_pn_set, "serdes WORD pn (tx | rx | all) (enable | disable)", k_help_lane_pn_set),
    CLI_DESC(cli_serdes_pn_get, "show serdes WORD pn", k_help_pn_get),
    CLI_DESC(cli_serdes_pre_emphasis_set,
             "serdes WORD emphasis ((main WORD pre WORD post WORD (swing_leg WORD | )) | (tap0 WORD tap1 WORD tap2 "
             "WORD tap3 WORD amp WORD polarity WORD))",
             k_help_pre_emphasis_set),
    CLI_DESC(cli_serdes_pre_emphasis_get, "show serdes WORD emphasis", k_help_pre_emphasis_get),
    CLI_DESC(cli_serdes_lane_enable_set, "serdes WORD (enable | disable) (tx | rx | all)", k_help_lane_enable_set),
    CLI_DESC(cli_serdes_enable_get, "show serdes WORD enable-status", k_help_enable_get),
    CLI_DESC(cli_serdes_prbs_set,
             "serdes WORD prbs-dir (tx | rx | all) prbs-mode (0 | prbs7 | prbs9 | prbs11 | prbs15 | prbs16 | prbs23 "
             "| prbs231 | prbs31 | pat0x0 | pat1x1 | pat2x2 | pat5x5 | pat8x16 | pat10x10 | pat20x20 | pat1x1-61bit "
             "| (pat-udp WORD))",
             k_help_prbs_set),
    CLI_DESC(cli_serdes_prbs_get, "show serdes WORD prbs-status", k_help_prbs_get),
    CLI_DESC(cli_serdes_prbs_error_pkt_insert, "serdes WORD prbs insert-err num WORD", k_help_prbs_error_pkt_insert),
    CLI_DESC(cli_serdes_prbs_check, "show serdes WORD prbs (err-cnt | status)", k_help_prbs_check),
    CLI_DESC(cli_serdes_err_counter_clear, "serdes WORD prbs clear-err-cnt", k_help_err_counter_clear),
    CLI_DESC(cli_serdes_prbs_invert_enable_set,
             "serdes WORD prbs invert prbs-dir (tx | rx | all) (enable | disable)", k_help_prbs_invert_enable_set),
    CLI_DESC(cli_serdes_reset_set, "serdes WORD reset (tx | rx | phy)", k_help_reset_set),
    CLI_DESC(cli_serdes_lane_loopback_set,
             "serdes WORD loopback (serpre-tx2rx | serpre-rx2tx | paral-tx2rx | paral-rx2tx) (enable | disable)",
             k_help_lane_loopback_set),
    CLI_DESC(cli_serdes_lane_loopback_get, "show serdes WORD loopback-status", k_help_lane_loopback_get),
    CLI_DESC(cli_serdes_lane_power_set, "serdes WORD power (tx | rx | txrx | pll0 | pll1) (up | down)", k_help_lane_power_set),
    CLI_DESC(cli_serdes_power_get, "show serdes WORD power-status", k_help_power_get),
    CLI_DESC(cli_serdes_los_threshold_set, "serdes WORD los-threshold WORD", k_help_los_threshold_set),
    CLI_DESC(cli_serdes_los_threshold_get, "show serdes WORD los-threshold", k_help_los_threshold_get),
    CLI_DESC(cli_serdes_lane_rxadapt_set, "serdes WORD rxadapt (ctle | dfe) (enable | disable)", k_help_lane_rxadapt_set),
    CLI_DESC(cli_serdes_rxadapt_sta_get, "show serdes WORD rxadapt-status (ctle | dfe)", k_help_rxadapt_sta_get),
    CLI_DESC(cli_serdes_rxadapt_para_set, "serdes WORD rx-adapt-para", k_help_rxadapt_para_set),
    CLI_DESC(cli_serdes_rxadapt_para_get, "show serdes WORD rx-adapt-para", k_help_rxadapt_para_get),
    CLI_DESC(cli_serdes_eye_get, "show serdes WORD eye (four-point | full)", k_help_eye_get),
    CLI_DESC(cli_serdes_reg_dump, "serdes WORD dump register (detail |)", k_help_reg_dump),
    CLI_DESC(cli_serdes_reg_write,
             "serdes WORD register write ((addr WORD ((start_bit WORD end_bit WORD) | )) | (reg-name WORD "
             "((field-name WORD) | ))) data WORD",
             k_help_reg_write),
    CLI_DESC(cli_serdes_reg_read,
             "serdes WORD register read ((addr WORD ((start_bit WORD end_bit WORD) | )) | (reg-name WORD "
             "((field-name WORD) | )))",
             k_help_reg_read),
    CLI_DESC(cli_serdes_debug_info_get, "show serdes WORD debug-info", k_help_debug_info_get),
    CLI_DESC(cli_serdes_work_mode_set, "serdes work-mode (eth | pcie)", k_help_work_mode_set),
    CLI_DESC(cli_serdes_sram_get, "show serdes WORD sram-data", k_help_sram_get),
    CLI_DESC(cli_serdes_los_status_get, "show serdes WORD los-status", k_help_los_status_get),
    CLI_DESC(cli_serdes_lock_status_get, "show serdes WORD lock-status", k_help_lock_status_get),
    CLI_DESC(cli_serdes_8k_clk_set, "serdes WORD 8k_clk_id WORD", k_help_8k_clk_set),
    CLI_DESC(cli_serdes_8k_clk_get, "show serdes WORD 8k_clk_id WORD", k_help_8k_clk_get),
    CLI_DESC(cli_serdes_emphasis_preset_set, "serdes WORD preset WORD", k_help_emphasis_preset_set),
    CLI_DESC(cli_serdes_emphasis_preset_get, "show serdes WORD preset", k_help_emphasis_preset_get),
    CLI_DESC(cli_serdes_offset_calibrate, "serdes WORD offset_calibrate", k_help_offset_calibrate),
};

#undef CLI_DESC

constexpr u32 k_serdes_count = sizeof(g_cli_serdes_desc) / sizeof(g_cli_serdes_desc[0]);
cli_cmd_item g_cli_serdes_items[k_serdes_count];

} // namespace

extern "C" void cli_cmd_init_serdes(void)
{
    cli_cmd_descs_link(g_cli_serdes_desc, g_cli_serdes_items, k_serdes_count, CLI_MODE_SERDES);
}
