// The `port` mode: commands that set and show the ports of a chip through
// the port service (`port_api_*`), and the link-scan words, whose family
// the reef chips do not have.
//
// A WORD that names ports is a port list ("1,3-5,cpu_port"); a setting runs
// on each port in turn and the first failure ends it, what was done before
// stands.  Failures print one line with the call and its status.  A display
// of several values shows "-" for a value whose call answers -24 (a port
// not in use, or an attribute the chip lacks) and goes on; a display of one
// value ends at its failure like a setting.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <tide/tide.h>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "app/diag_shell/users/release/cli_port.h"
#include "csl/common/port/csl_port.h"

namespace {

// Room for the text of one port's basic information and alarm report.
constexpr u32 k_basic_info_room = 256;
constexpr u32 k_alm_info_room = 16384;

// The names of the bits set in `bits`, joined by commas; "none" for none.
template <size_t N>
std::string _cli_port_bits_text(const cli_word (&words)[N], u32 bits)
{
    std::string text;
    for (const cli_word &w : words) {
        if ((bits & w.id) != 0) {
            if (!text.empty()) {
                text += ',';
            }
            text += w.name;
        }
    }
    return text.empty() ? "none" : text;
}

constexpr cli_word k_interface_words[] = {
    {PORT_INTERFACE_100BASE_FX, "100base-fx"},     {PORT_INTERFACE_SGMII, "sgmii"},
    {PORT_INTERFACE_1000BASE_X, "1000base-x"},     {PORT_INTERFACE_2G5_SGMII, "2_5G_sgmii"},
    {PORT_INTERFACE_2500BASE_X, "2500base-x"},     {PORT_INTERFACE_10GBASE_R, "10Gbase-r"},
    {PORT_INTERFACE_12G5BASE_R, "12_5Gbase-r"},    {PORT_INTERFACE_10GBASE_MINUS_R, "10Gbase-minus-r"},
    {PORT_INTERFACE_SGMII_4P, "sgmii_4P"},         {PORT_INTERFACE_SGMII_8P, "sgmii_8P"},
    {PORT_INTERFACE_QSGMII, "qsgmii"},             {PORT_INTERFACE_OSGMII, "osgmii"},
    {PORT_INTERFACE_10G_SXGMII, "10G-sxgmii"},     {PORT_INTERFACE_10G_DXGMII, "10G-dxgmii"},
    {PORT_INTERFACE_10G_QXGMII, "10G-qxgmii"},     {PORT_INTERFACE_FLEXMII, "flexmii"},
    {PORT_INTERFACE_MMAC, "mmac"},                 {PORT_INTERFACE_MPCS, "mpcs"},
    {PORT_INTERFACE_FLEXE, "flexe"}};

// Speeds in Mbit/s.
constexpr cli_word k_speed_words[] = {
    {10, "10M"},     {100, "100M"},    {1000, "1G"},      {2500, "2G5"},     {5000, "5G"},
    {10000, "10G"},  {25000, "25G"},   {40000, "40G"},    {50000, "50G"},    {100000, "100G"},
    {112000, "112G"}, {200000, "200G"}, {400000, "400G"}};

// The speed bits of an ability record.
constexpr cli_word k_ability_speed_words[] = {{PORT_ABILITY_10M, "10M"},   {PORT_ABILITY_100M, "100M"},
                                                    {PORT_ABILITY_1000M, "1G"},  {PORT_ABILITY_2G5, "2G5"},
                                                    {PORT_ABILITY_5G, "5G"},     {PORT_ABILITY_10G, "10G"}};

// The pause bits of an ability record; the command sets one of the last four.
constexpr cli_word k_ability_pause_words[] = {{PAUSE_TX, "tx-pause"},       {PAUSE_RX, "rx-pause"},
                                                    {PAUSE, "pause"},             {PAUSE_ASYMM, "asymm-pause"},
                                                    {PAUSE_SYMM, "symm-pause"},   {PAUSE_BOTH, "both-pause"},
                                                    {PAUSE_NONE, "no-pause"}};

constexpr cli_word k_dir_words[] = {{PORT_ENABLE_TX, "tx"}, {PORT_ENABLE_RX, "rx"}, {PORT_ENABLE_BOTH, "all"}};
constexpr cli_word k_vlan_pause_words[] = {{0, "tx-vlan-pause"}, {1, "rx-vlan-pause"}};
constexpr cli_word k_pause_words[] = {{PORT_PAUSE_TX_EN, "tx-pause"},
                                            {PORT_PAUSE_RX_EN, "rx-pause"},
                                            {PORT_PAUSE_TX_RESPON, "tx-pause-resp"},
                                            {PORT_PAUSE_RX_ERR, "rx-pause-err"}};
constexpr cli_word k_crc_words[] = {{PORT_CRC_TX_EN, "tx-crc"},
                                          {PORT_CRC_RX_EN, "rx-crc"},
                                          {PORT_CRC_TX_CHK, "tx-crc-check"},
                                          {PORT_CRC_RX_CHK, "rx-crc-check"}};
constexpr cli_word k_ctrl_words[] = {{PORT_CFG_TX_PADDING_EN, "padding-en"},
                                           {PORT_CFG_TX_CUT_EN, "tx-cut"},
                                           {PORT_CFG_RX_CUT_EN, "rx-cut"},
                                           {PORT_CFG_TX_DROP_EN, "tx-drop-en"},
                                           {PORT_CFG_RX_SHORT_ERR, "rx-short-err"}};
constexpr cli_word k_loop_words[] = {{PORT_LOOP_MAC_INNER, "mac-inner"}, {PORT_LOOP_MAC_OUTER, "mac-outer"},
                                           {PORT_LOOP_PCS_INNER, "pcs-inner"}, {PORT_LOOP_PCS_OUTER, "pcs-outer"},
                                           {PORT_LOOP_PHY_INNER, "phy-inner"}, {PORT_LOOP_PHY_OUTER, "phy-outer"},
                                           {PORT_LOOP_NONE, "none"}};
constexpr cli_word k_frame_words[] = {{PORT_FRAME_TX, "tx"}, {PORT_FRAME_RX, "rx"}};
constexpr cli_word k_linkscan_words[] = {{0, "none"}, {1, "sw"}, {2, "hw"}};
// The three words of the transmit path, each 0 or 1.
constexpr cli_word k_path_mode_words[] = {{0, "normal-mode"}, {1, "master-slave-mode"}};
constexpr cli_word k_path_select_words[] = {{0, "hw-select"}, {1, "sw-select"}};
constexpr cli_word k_path_words[] = {{0, "master-path"}, {1, "slave-path"}};

// The port_api_fault_get result by its value.
constexpr const char *k_fault_text[] = {"none",
                                        "LOCAL_FAULT",
                                        "REMOTE_FAULT",
                                        "LOCAL&REMOTE_FAULT",
                                        "LINK_INT_FAULT",
                                        "LINK_INT&LOCAL_FAULT",
                                        "LINK_INT&REMOTE_FAULT",
                                        "LINK_INT&LOCAL&REMOTE_FAULT"};

// Speeds above 10G are on no chip of the family.
constexpr cli_key_support k_speed_key_support[] = {
    {"25G", {0, 0, 0, 0, 0}},  {"40G", {0, 0, 0, 0, 0}},  {"50G", {0, 0, 0, 0, 0}},  {"100G", {0, 0, 0, 0, 0}},
    {"112G", {0, 0, 0, 0, 0}}, {"200G", {0, 0, 0, 0, 0}}, {"400G", {0, 0, 0, 0, 0}}};

i32 cli_port_speed_set_key_support_check(u32 chip_id, i32 argc, char **argv)
{
    return cli_key_support_check(chip_id, argc, argv, k_speed_key_support,
                                 sizeof(k_speed_key_support) / sizeof(k_speed_key_support[0]));
}

i32 cli_autoneg_ability_set_key_support_check(u32 chip_id, i32 argc, char **argv)
{
    return cli_port_speed_set_key_support_check(chip_id, argc, argv);
}

// ---- words, numbers, failures -----------------------------------------------------------

bool _on(const char *word)
{
    return std::strcmp(word, "enable") == 0;
}

const char *_onoff(u32 value)
{
    return value != 0 ? "enable" : "disable";
}

// A number as decimal text.  (std::to_string would leave its template
// helpers among the shared library's exported names.)
std::string _num_text(u64 n)
{
    char text[24];
    std::snprintf(text, sizeof(text), "%llu", static_cast<unsigned long long>(n));
    return text;
}

std::string _speed_text(u32 mbits)
{
    const char *name = cli_word_name_get(k_speed_words, mbits);
    return name != nullptr ? name : _num_text(mbits) + "M";
}

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

// A number of at most `max`; its failure line when it is not one.
i32 _cli_port_number_get(const char *word, u32 max, u32 *value)
{
    const i32 rc = cli_get_uint32_param(word, value);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (*value > max) {
        cli_output_show(" para %s is out of range 0~%u.\n", word, max);
        return SHR_E_PARAM;
    }
    return SHR_E_NONE;
}

// The status of a call: its line when it failed.  `pport` names the port,
// NULL for a call on the whole chip.
i32 _cli_port_call(const char *pport, const char *api, i32 rc)
{
    if (rc == SHR_E_NONE) {
        return rc;
    }
    if (pport != nullptr) {
        cli_output_show(" port %s: call %s failed, %s\n", pport, api, shr_errmsg(rc));
    } else {
        cli_output_show(" call %s failed, %s\n", api, shr_errmsg(rc));
    }
    return rc;
}

// The name of an API function, then the function: CLI_PORT_API(f) passes
// the name and the function, CLI_PORT_API(f)(args) the name and the
// call's status.
#define CLI_PORT_API(fn) #fn, fn

// Reads the values of a display: a call that answers -24 shows as "-",
// the first other failure prints its line and becomes the display's
// status.
class _cli_port_reader {
public:
    explicit _cli_port_reader(const char *pport) : pport_(pport) {}

    // The text of a value: `text()` once the call succeeded.
    template <typename Text>
    std::string value(const char *api, i32 rc, Text text)
    {
        if (rc == SHR_E_NONE) {
            return text();
        }
        if (rc != SHR_E_NOT_SUPPORT && status_ == SHR_E_NONE) {
            status_ = _cli_port_call(pport_, api, rc);
        }
        return "-";
    }
    i32 status() const { return status_; }

private:
    const char *pport_;
    i32 status_ = SHR_E_NONE;
};

// ---- walking ports ----------------------------------------------------------------------

// Runs `fn(lport, pport)` for each front port of the chip.
template <typename Fn>
i32 _cli_port_all_each(u32 chip_id, Fn fn)
{
    if (cli_chip_valid_check(chip_id) != SHR_E_NONE) {
        return SHR_E_UNIT;
    }
    u32 lport = 0;
    char pport[CLI_PPORT_SIZE];
    i32 rc = cli_port_list_next_lport_get(chip_id, 0, -1, &lport, pport);
    if (rc != SHR_E_NONE) {
        return _cli_port_call(nullptr, "cli_port_list_next_lport_get", rc);
    }
    do {
        rc = fn(lport, static_cast<const char *>(pport));
        if (rc != SHR_E_NONE) {
            return rc;
        }
    } while (cli_port_list_next_lport_get(chip_id, 0, static_cast<i32>(lport), &lport, pport) == SHR_E_NONE);
    return SHR_E_NONE;
}

// `fn` for the walks of a port list or of all ports, with a heading printed before the first port:
// a command that fails before any port prints none.
template <typename Fn>
auto _cli_port_headed(void (*heading)(), Fn fn)
{
    return [heading, fn, first = true](u32 lport, const char *pport) mutable -> i32 {
        if (first) {
            heading();
            first = false;
        }
        return fn(lport, pport);
    };
}

// ---- settings -----------------------------------------------------------------------------

// One call with one value on each port of the list.
template <typename... V>
i32 _cli_port_each_call(u32 chip_id, const char *list, const char *api, i32 (*fn)(u32, u32, V...), V... values)
{
    return cli_pport_list_walk(chip_id, list, [&](u32 lport, const char *pport) -> i32 {
        return _cli_port_call(pport, api, fn(chip_id, lport, values...));
    });
}

struct _setting {
    u32 type;
    u32 value;
};

// Runs `apply(lport, pport, setting)` for each setting, in order, on each
// port of the list; the first failure ends the command.
template <typename Apply>
i32 _cli_port_settings_each(u32 chip_id, const char *list, const std::vector<_setting> &settings, Apply apply)
{
    return cli_pport_list_walk(chip_id, list, [&](u32 lport, const char *pport) -> i32 {
        for (const _setting &s : settings) {
            const i32 rc = apply(lport, pport, s);
            if (rc != SHR_E_NONE) {
                return rc;
            }
        }
        return SHR_E_NONE;
    });
}

// Pairs of a keyword of `words` and (enable | disable) from argv[1]: the
// call `fn(chip, lport, type, value)` of each pair on each port of argv[0].
template <size_t N>
i32 _cli_port_onoff_pairs_set(u32 chip_id, i32 argc, char **argv, const cli_word (&words)[N], const char *api,
                              i32 (*fn)(u32, u32, u32, u32))
{
    if (argc < 3 || argc % 2 != 1) {
        return _bad_argc();
    }
    std::vector<_setting> settings;
    for (i32 i = 1; i < argc; i += 2) {
        _setting s{0, _on(argv[i + 1]) ? 1u : 0u};
        if (!cli_word_id_get(words, argv[i], &s.type)) {
            return _bad_word(argv[i]);
        }
        settings.push_back(s);
    }
    return _cli_port_settings_each(chip_id, argv[0], settings, [&](u32 lport, const char *pport, const _setting &s) {
        return _cli_port_call(pport, api, fn(chip_id, lport, s.type, s.value));
    });
}

// The port-ctrl flags take their value by pointer.
i32 _cli_port_cfg_control_set(u32 chip_id, u32 lport, u32 flag, u32 value)
{
    return port_api_cfg_control_set(chip_id, lport, flag, &value);
}

// ---- displays ------------------------------------------------------------------------------

// The speeds of each duplex and the pause bits of an ability record.
std::string _ability_text(const port_ability &a)
{
    return "full " + _cli_port_bits_text(k_ability_speed_words, a.speed_full) + ", half " +
           _cli_port_bits_text(k_ability_speed_words, a.speed_half) + ", pause " +
           _cli_port_bits_text(k_ability_pause_words, a.pause);
}

std::string _mac_text(const u8 (&mac)[6])
{
    char text[18];
    std::snprintf(text, sizeof(text), "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4],
                  mac[5]);
    return text;
}

const char *_interface_text(u32 type)
{
    return type < CSL_PORT_INTERFACE_NAMES ? interface_type_string[type] : "?";
}

constexpr const char *k_status_heading = " %-10s%-17s%-9s%-6s%-8s%-8s%s\n";

void _status_heading()
{
    cli_output_show(k_status_heading, "port", "interface", "enable", "link", "speed", "duplex", "autoneg");
    cli_output_show(" %s\n", std::string(64, '-').c_str());
}

// One row of the status table.
i32 _status_row(u32 chip_id, u32 lport, const char *pport)
{
    _cli_port_reader r(pport);
    port_interface intf{};
    u32 enable = 0, link = 0, speed = 0, duplex = 0, an = 0;
    const std::string c_intf = r.value(CLI_PORT_API(port_api_interface_get)(chip_id, lport, &intf),
                                       [&] { return std::string(_interface_text(intf.interface_type)); });
    const std::string c_enable = r.value(CLI_PORT_API(port_api_enable_get)(chip_id, lport, &enable),
                                         [&] { return std::string(_onoff(enable)); });
    const std::string c_link = r.value(CLI_PORT_API(port_api_link_status_get)(chip_id, lport, &link),
                                       [&] { return std::string(link == PORT_LINK_UP ? "up" : "down"); });
    const std::string c_speed = r.value(CLI_PORT_API(port_api_speed_get)(chip_id, lport, &speed),
                                        [&] { return _speed_text(speed); });
    const std::string c_duplex = r.value(CLI_PORT_API(port_api_duplex_get)(chip_id, lport, &duplex),
                                         [&] { return std::string(duplex != 0 ? "full" : "half"); });
    const std::string c_an = r.value(CLI_PORT_API(port_api_autoneg_get)(chip_id, lport, &an),
                                     [&] { return std::string(_onoff(an)); });
    if (r.status() == SHR_E_NONE) {
        cli_output_show(k_status_heading, pport, c_intf.c_str(), c_enable.c_str(), c_link.c_str(), c_speed.c_str(),
                        c_duplex.c_str(), c_an.c_str());
    }
    return r.status();
}

// Reads counter items of a port as text.  Items without hardware read 0,
// so a first read that answers -24 speaks for the port: it has no
// counters, and every item shows "-" without further calls.  `read` tells
// whether the port's counters could be read.
i32 _counters_read(u32 chip_id, u32 lport, const char *pport, const std::vector<u32> &items,
                   std::vector<std::string> *values, bool *read)
{
    _cli_port_reader r(pport);
    *read = false;
    values->assign(items.size(), "-");
    for (size_t i = 0; i < items.size(); i++) {
        u64 v = 0;
        (*values)[i] = r.value(CLI_PORT_API(port_api_counter_get)(chip_id, lport, items[i], &v), [&] {
            *read = true;
            return _num_text(v);
        });
        if (r.status() != SHR_E_NONE || !*read) {
            break;
        }
    }
    return r.status();
}

std::vector<u32> _all_counter_items()
{
    std::vector<u32> items(PORT_MIB_ITEMS);
    for (u32 i = 0; i < PORT_MIB_ITEMS; i++) {
        items[i] = i;
    }
    return items;
}

// The counters of one port, receive and transmit side by side.
i32 _counter_table(u32 chip_id, u32 lport, const char *pport, bool *read)
{
    std::vector<std::string> values;
    const i32 rc = _counters_read(chip_id, lport, pport, _all_counter_items(), &values, read);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    cli_output_show("\n port %s counters\n %s\n", pport, std::string(72, '-').c_str());
    constexpr u32 tx_items = PORT_MIB_ITEMS - PORT_MIB_RX_ITEMS;
    for (u32 row = 0; row < PORT_MIB_RX_ITEMS; row++) {
        if (row < tx_items) {
            cli_output_show(" %-22s: %-13s %-22s: %s\n", port_counter_rx_string[row], values[row].c_str(),
                            port_counter_tx_string[row], values[PORT_MIB_RX_ITEMS + row].c_str());
        } else {
            cli_output_show(" %-22s: %s\n", port_counter_rx_string[row], values[row].c_str());
        }
    }
    return SHR_E_NONE;
}

// The counters of the all-port table: total, good and bad frames received,
// then sent.
const std::vector<u32> k_counter_summary = {0, 2, 4, PORT_MIB_RX_ITEMS, PORT_MIB_RX_ITEMS + 2, PORT_MIB_RX_ITEMS + 4};
constexpr const char *k_counter_summary_format = " %-10s%-14s%-14s%-14s%-14s%-14s%s\n";

void _counter_heading()
{
    cli_output_show(k_counter_summary_format, "port", "rx_total_pkt", "rx_good_pkt", "rx_bad_pkt", "tx_total_pkt",
                    "tx_good_pkt", "tx_bad_pkt");
    cli_output_show(" %s\n", std::string(84, '-').c_str());
}

i32 _counter_row(u32 chip_id, u32 lport, const char *pport, bool *read)
{
    std::vector<std::string> v;
    const i32 rc = _counters_read(chip_id, lport, pport, k_counter_summary, &v, read);
    if (rc == SHR_E_NONE) {
        cli_output_show(k_counter_summary_format, pport, v[0].c_str(), v[1].c_str(), v[2].c_str(), v[3].c_str(),
                        v[4].c_str(), v[5].c_str());
    }
    return rc;
}

// Clears the counters of a port that showed some.
i32 _counter_clear(u32 chip_id, u32 lport, const char *pport, bool read)
{
    return read ? _cli_port_call(pport, CLI_PORT_API(port_api_counter_clean)(chip_id, lport)) : SHR_E_NONE;
}

void _basic_info_heading()
{
    cli_output_show("%-10s%-16s%-10s%-16s\n", "lport", "interface", "serdes_id", "mac");
}

// Every attribute of one port, one line each.
i32 _cfg_info(u32 chip_id, u32 lport, const char *pport)
{
    _cli_port_reader r(pport);
    std::vector<std::pair<std::string, std::string>> lines;
    auto add = [&lines](std::string label, std::string text) { lines.emplace_back(std::move(label), std::move(text)); };
    auto onoff = [](const u32 &v) { return [&v] { return std::string(_onoff(v)); }; };
    u32 v = 0;

    port_interface intf{};
    add("protocol-cfg type", r.value(CLI_PORT_API(port_api_interface_get)(chip_id, lport, &intf), [&] {
        return std::string(_interface_text(intf.interface_type)) + ", port-number " + _num_text(intf.port_num);
    }));
    port_serdes_id serdes{};
    add("serdes id", r.value(CLI_PORT_API(port_api_serdes_id_get)(chip_id, lport, &serdes),
                             [&] { return _num_text(serdes.serdes_id); }));
    add("power", r.value(CLI_PORT_API(port_api_enable_get)(chip_id, lport, &v),
                         [&] { return std::string(v != 0 ? "up" : "down"); }));
    for (const cli_word &w : {k_dir_words[0], k_dir_words[1]}) {
        add(std::string("tx-rx-enable ") + w.name,
            r.value(CLI_PORT_API(port_api_tx_rx_enable_get)(chip_id, lport, w.id, &v), onoff(v)));
    }
    add("autoneg-en", r.value(CLI_PORT_API(port_api_autoneg_get)(chip_id, lport, &v), onoff(v)));
    port_ability ability{};
    add("autoneg-ability", r.value(CLI_PORT_API(port_api_advert_ability_get)(chip_id, lport, &ability),
                                   [&] { return _ability_text(ability); }));
    ability = port_ability{};
    add("local ability", r.value(CLI_PORT_API(port_api_local_ability_get)(chip_id, lport, &ability),
                                 [&] { return _ability_text(ability); }));
    add("speed", r.value(CLI_PORT_API(port_api_speed_get)(chip_id, lport, &v), [&] { return _speed_text(v); }));
    add("duplex", r.value(CLI_PORT_API(port_api_duplex_get)(chip_id, lport, &v),
                          [&] { return std::string(v != 0 ? "full" : "half"); }));
    add("link", r.value(CLI_PORT_API(port_api_link_status_get)(chip_id, lport, &v),
                        [&] { return std::string(v == PORT_LINK_UP ? "up" : "down"); }));
    u32 link_mode = 0, link_status = 0;
    add("link-mode", r.value(CLI_PORT_API(port_api_force_get)(chip_id, lport, &link_mode, &link_status), [&] {
        return std::string(link_mode == PORT_LINK_NORMAL ? "normal-mode"
                                                         : link_status == PORT_LINK_UP ? "force-mode up"
                                                                                       : "force-mode down");
    }));
    port_loopback loop{};
    add("loop-mode", r.value(CLI_PORT_API(port_api_loopback_get)(chip_id, lport, &loop), [&] {
        const char *mode = cli_word_name_get(k_loop_words, loop.loop_mode);
        return std::string(mode != nullptr ? mode : "?") + ", transparent " + _onoff(loop.transparent);
    }));
    for (const cli_word &w : k_vlan_pause_words) {
        add(std::string("vlan-pause ") + w.name,
            r.value(CLI_PORT_API(port_api_vlan_pause_get)(chip_id, lport, w.id, &v), onoff(v)));
    }
    for (const cli_word &w : k_pause_words) {
        add(std::string("pause ") + w.name,
            r.value(CLI_PORT_API(port_api_pause_get)(chip_id, lport, w.id, &v), onoff(v)));
    }
    u8 smac[6] = {};
    add("pause-smac", r.value(CLI_PORT_API(port_api_pause_addr_get)(chip_id, lport, smac),
                              [&] { return _mac_text(smac); }));
    for (const cli_word &w : k_frame_words) {
        add(std::string("frame-len ") + w.name + " max-frame",
            r.value(CLI_PORT_API(port_api_max_frame_get)(chip_id, lport, w.id, &v), [&] { return _num_text(v); }));
        add(std::string("frame-len ") + w.name + " min-frame",
            r.value(CLI_PORT_API(port_api_min_frame_get)(chip_id, lport, w.id, &v), [&] { return _num_text(v); }));
    }
    u8 ifg = 0;
    add("ifg-value",
        r.value(CLI_PORT_API(port_api_ifg_get)(chip_id, lport, &ifg), [&] { return _num_text(ifg); }));
    add("dic", r.value(CLI_PORT_API(port_api_dic_mode_get)(chip_id, lport, &v), onoff(v)));
    for (const cli_word &w : k_crc_words) {
        add(std::string("crc-cfg ") + w.name,
            r.value(CLI_PORT_API(port_api_crc_get)(chip_id, lport, w.id, &v), onoff(v)));
    }
    for (const cli_word &w : k_ctrl_words) {
        add(std::string("port-ctrl ") + w.name,
            r.value(CLI_PORT_API(port_api_cfg_control_get)(chip_id, lport, w.id, &v), onoff(v)));
    }
    add("fault", r.value(CLI_PORT_API(port_api_fault_get)(chip_id, lport, &v), [&] {
        return std::string(v < sizeof(k_fault_text) / sizeof(k_fault_text[0]) ? k_fault_text[v] : "?");
    }));
    port_clk_delta delta{};
    add("clk-delta", r.value(CLI_PORT_API(port_api_clk_delta_get)(chip_id, lport, &delta), [&] {
        return std::string("rx ") + (delta.rx_sign != 0 ? "-" : "") + _num_text(delta.rx_delta) + ", tx " +
               (delta.tx_sign != 0 ? "-" : "") + _num_text(delta.tx_delta);
    }));
    if (r.status() != SHR_E_NONE) {
        return r.status();
    }
    cli_output_show("\n port %s configuration\n %s\n", pport, std::string(48, '-').c_str());
    for (const auto &line : lines) {
        cli_output_show(" %-26s: %s\n", line.first.c_str(), line.second.c_str());
    }
    return SHR_E_NONE;
}

// ---- the records ---------------------------------------------------------------------------

#define CLI_PORT_LIST_HELP "Port list: numbers, ranges a-b and names, separated by commas"
#define CLI_ENABLE_HELP "Enable", "Disable"
#define CLI_SPEED_HELP "10 Mbit/s", "100 Mbit/s", "1 Gbit/s", "2.5 Gbit/s", "5 Gbit/s", "10 Gbit/s"

const char *const k_help_map_set[] = {"Port", "Mapping mode of the MACs onto the MAGs", "Mapping mode: 0 or 1",
                                      nullptr};
const char *const k_help_map_get[] = {"Show", "Port", "Mapping mode of the MACs onto the MAGs", nullptr};
const char *const k_help_interface[] = {"Port", CLI_PORT_LIST_HELP, "Protocol of the port's MAG",
                                        "Interface type", "100BASE-FX", "SGMII", "1000BASE-X", "2.5G SGMII",
                                        "2500BASE-X", "10GBASE-R", "12.5GBASE-R", "10GBASE-R minus",
                                        "SGMII, 4 ports", "SGMII, 8 ports", "QSGMII", "OSGMII", "10G SXGMII",
                                        "10G DXGMII", "10G QXGMII", "FlexMII", "MMAC", "MPCS", "FlexE",
                                        "MACs of the MAG in use", "Number of MACs", nullptr};
const char *const k_help_tx_rx[] = {"Port", CLI_PORT_LIST_HELP, "Transmit and receive of the MAC", "Direction",
                                    "Transmit", "Receive", "Both", CLI_ENABLE_HELP, nullptr};
const char *const k_help_power_up[] = {"Port", CLI_PORT_LIST_HELP, "Enable the port", nullptr};
const char *const k_help_power_down[] = {"Port", CLI_PORT_LIST_HELP, "Disable the port", nullptr};
const char *const k_help_an_en[] = {"Port", CLI_PORT_LIST_HELP, "Auto-negotiation", CLI_ENABLE_HELP, nullptr};
const char *const k_help_an_restart[] = {"Port", CLI_PORT_LIST_HELP, "Restart auto-negotiation", nullptr};
const char *const k_help_an_ability[] = {"Port", CLI_PORT_LIST_HELP, "Abilities that auto-negotiation advertises",
                                         "Speed", CLI_SPEED_HELP, "25 Gbit/s", "50 Gbit/s", "100 Gbit/s",
                                         "200 Gbit/s", "400 Gbit/s", "Duplex", "Full duplex", "Half duplex",
                                         "Pause", "No pause", "Symmetric pause", "Asymmetric pause",
                                         "Symmetric and asymmetric pause", nullptr};
const char *const k_help_status_one[] = {"Show", "Port", CLI_PORT_LIST_HELP, "Enable, link, speed, duplex",
                                         nullptr};
const char *const k_help_status_all[] = {"Show", "Port", "Enable, link, speed, duplex", nullptr};
const char *const k_help_speed[] = {"Port",      CLI_PORT_LIST_HELP, "Speed",       CLI_SPEED_HELP,
                                    "25 Gbit/s", "40 Gbit/s",        "50 Gbit/s",   "100 Gbit/s",
                                    "112 Gbit/s", "200 Gbit/s",      "400 Gbit/s",  nullptr};
const char *const k_help_duplex[] = {"Port", CLI_PORT_LIST_HELP, "Duplex", "Full duplex", "Half duplex", nullptr};
const char *const k_help_vlan_pause[] = {"Port", CLI_PORT_LIST_HELP, "VLAN pause", "Transmit VLAN pause",
                                         CLI_ENABLE_HELP, "Receive VLAN pause", CLI_ENABLE_HELP, nullptr};
const char *const k_help_pause[] = {"Port",
                                    CLI_PORT_LIST_HELP,
                                    "Pause frames",
                                    "Send pause frames",
                                    CLI_ENABLE_HELP,
                                    "Obey received pause frames",
                                    CLI_ENABLE_HELP,
                                    "Answer pause frames",
                                    CLI_ENABLE_HELP,
                                    "Count bad pause frames as errors",
                                    CLI_ENABLE_HELP,
                                    nullptr};
const char *const k_help_pause_smac[] = {"Port", CLI_PORT_LIST_HELP, "Source address of pause frames",
                                         "MAC address", nullptr};
const char *const k_help_frame_len[] = {"Port",      CLI_PORT_LIST_HELP, "Frame length limits", "Direction",
                                        "Transmit",  "Receive",          "Longest frame",       "Bytes",
                                        "Shortest frame", "Bytes",       nullptr};
const char *const k_help_ifg[] = {"Port", CLI_PORT_LIST_HELP, "Inter-frame gap", "Gap", "Bytes",
                                  "Deficit idle count", CLI_ENABLE_HELP, nullptr};
const char *const k_help_cnt_one[] = {"Show", "Port", CLI_PORT_LIST_HELP, "Counters",
                                      "Clear them after showing", nullptr};
const char *const k_help_cnt_all[] = {"Show", "Port", "Counters", "Clear them after showing", nullptr};
const char *const k_help_loop[] = {"Port",          CLI_PORT_LIST_HELP,  "Loopback",          "MAC, inward",
                                   "MAC, outward",  "PCS, inward",       "PCS, outward",      "PHY, inward",
                                   "PHY, outward",  "No loopback",       "Pass frames on as well",
                                   CLI_ENABLE_HELP, nullptr};
const char *const k_help_link_mode[] = {"Port", CLI_PORT_LIST_HELP, "Link state", "Link as the line says",
                                        "Link forced", "Up", "Down", nullptr};
const char *const k_help_crc[] = {"Port",
                                  CLI_PORT_LIST_HELP,
                                  "CRC",
                                  "Append the CRC on transmit",
                                  CLI_ENABLE_HELP,
                                  "Strip the CRC on receive",
                                  CLI_ENABLE_HELP,
                                  "Check the CRC on transmit",
                                  CLI_ENABLE_HELP,
                                  "Check the CRC on receive",
                                  CLI_ENABLE_HELP,
                                  nullptr};
const char *const k_help_ctrl[] = {"Port",
                                   CLI_PORT_LIST_HELP,
                                   "MAC controls",
                                   "Pad short frames on transmit",
                                   "Cut long frames on transmit",
                                   "Cut long frames on receive",
                                   "Drop on transmit",
                                   "Count short frames as errors on receive",
                                   CLI_ENABLE_HELP,
                                   nullptr};
const char *const k_help_path_set[] = {"Port", "Transmit path of the chip", "One path", "Master and slave paths",
                                       "The hardware selects", "The software selects", "Master path",
                                       "Slave path", nullptr};
const char *const k_help_path_get[] = {"Show", "Port", "Transmit path of the chip", nullptr};
const char *const k_help_reset[] = {"Port", CLI_PORT_LIST_HELP, "Hold the port in reset", "Hold", "Release",
                                    nullptr};
const char *const k_help_cfg_info[] = {"Show", "Port", CLI_PORT_LIST_HELP, "Every attribute", nullptr};
const char *const k_help_basic_info[] = {"Show", "Port", "Interface, SerDes and MAC of each port in use", nullptr};
const char *const k_help_alm_info[] = {"Show", "Port", CLI_PORT_LIST_HELP, "Alarms and internal counters",
                                       "Clear them after showing", nullptr};
const char *const k_help_ls_enable[] = {"Link scan", "Switch link scan on or off", "enable or disable", nullptr};
const char *const k_help_ls_enable_get[] = {"Show", "Link scan", "Whether link scan runs", nullptr};
const char *const k_help_ls_mode[] = {"Link scan", "How ports are scanned", "Ports", CLI_PORT_LIST_HELP,
                                      "By the hardware", "By the software", "Not scanned", nullptr};
const char *const k_help_ls_mode_get[] = {"Show", "Link scan", "Ports", CLI_PORT_LIST_HELP, nullptr};

#undef CLI_PORT_LIST_HELP
#undef CLI_ENABLE_HELP
#undef CLI_SPEED_HELP

#define CLI_DESC(handler, cmd, help) {cmd, -1, handler, help, 0}

cli_cmd_desc g_cli_port_desc[] = {
    CLI_DESC(cli_mapping_mode_set, "port mapping-mode WORD", k_help_map_set),
    CLI_DESC(cli_mapping_mode_get, "show port mapping-mode", k_help_map_get),
    CLI_DESC(cli_interface_type_set,
             "port WORD protocol-cfg type (100base-fx | sgmii | 1000base-x | 2_5G_sgmii | 2500base-x | 10Gbase-r | "
             "12_5Gbase-r | 10Gbase-minus-r | sgmii_4P | sgmii_8P | qsgmii | osgmii | 10G-sxgmii | 10G-dxgmii | "
             "10G-qxgmii | ((flexmii | mmac | mpcs | flexe) port-number WORD))",
             k_help_interface),
    CLI_DESC(cli_tx_rx_enable_set, "port WORD tx-rx-enable dir (tx | rx | all) (enable | disable)", k_help_tx_rx),
    CLI_DESC(cli_power_up_set, "port WORD power-up", k_help_power_up),
    CLI_DESC(cli_power_down_set, "port WORD power-down", k_help_power_down),
    CLI_DESC(cli_autoneg_en_set, "port WORD autoneg-en (enable | disable)", k_help_an_en),
    CLI_DESC(cli_autoneg_restart_set, "port WORD autoneg-restart", k_help_an_restart),
    CLI_DESC(cli_autoneg_ability_set,
             "port WORD autoneg-ability speed (10M | 100M | 1G | 2G5 | 5G | 10G | 25G | 50G | 100G | 200G | 400G) "
             "duplex (full | half) (pause (no-pause | symm-pause | asymm-pause | both-pause) | )",
             k_help_an_ability),
    CLI_DESC(cli_port_single_port_status_get, "show port WORD status", k_help_status_one),
    CLI_DESC(cli_port_all_port_status_get, "show port status", k_help_status_all),
    CLI_DESC(cli_port_speed_set,
             "port WORD speed (10M | 100M | 1G | 2G5 | 5G | 10G | 25G | 40G | 50G | 100G | 112G | 200G | 400G)",
             k_help_speed),
    CLI_DESC(cli_port_duplex_set, "port WORD duplex (full | half)", k_help_duplex),
    CLI_DESC(cli_port_vlan_pause_set,
             "port WORD vlan-pause {tx-vlan-pause (enable | disable) | rx-vlan-pause (enable | disable)}",
             k_help_vlan_pause),
    CLI_DESC(cli_port_pause_set,
             "port WORD pause {tx-pause (enable | disable) | rx-pause (enable | disable) | tx-pause-resp (enable | "
             "disable) | rx-pause-err (enable | disable)}",
             k_help_pause),
    CLI_DESC(cli_port_pause_smac_set, "port WORD pause-smac XX:XX:XX:XX:XX:XX", k_help_pause_smac),
    CLI_DESC(cli_port_frame_length_set, "port WORD frame-len dir (tx | rx) {max-frame WORD | min-frame WORD}",
             k_help_frame_len),
    CLI_DESC(cli_port_ifg_cfg_set, "port WORD ifg-cfg {ifg-value WORD | dic (enable | disable)}", k_help_ifg),
    CLI_DESC(cli_port_single_port_counter_get, "show port WORD cnt (clear | )", k_help_cnt_one),
    CLI_DESC(cli_port_all_port_counter_get, "show port cnt (clear | )", k_help_cnt_all),
    CLI_DESC(cli_port_loop_mode_set,
             "port WORD loop-mode (mac-inner | mac-outer | pcs-inner | pcs-outer | phy-inner | phy-outer | none) "
             "(transparent (enable | disable) | )",
             k_help_loop),
    CLI_DESC(cli_port_link_mode_set, "port WORD link-mode (normal-mode | force-mode (up | down))", k_help_link_mode),
    CLI_DESC(cli_port_crc_set,
             "port WORD crc-cfg {tx-crc (enable | disable) | rx-crc (enable | disable) | tx-crc-check (enable | "
             "disable) | rx-crc-check (enable | disable)}",
             k_help_crc),
    CLI_DESC(cli_port_control_set,
             "port WORD port-ctrl (padding-en | tx-cut | rx-cut | tx-drop-en | rx-short-err) (enable | disable)",
             k_help_ctrl),
    CLI_DESC(cli_port_transmit_path_set,
             "port transmit-path (normal-mode | (master-slave-mode (hw-select | (sw-select (master-path | "
             "slave-path)))))",
             k_help_path_set),
    CLI_DESC(cli_port_transmit_path_get, "show port transmit-path", k_help_path_get),
    CLI_DESC(cli_port_reset_set, "port WORD reset (enable | disable)", k_help_reset),
    CLI_DESC(cli_port_cfg_info_get, "show port WORD cfg-info", k_help_cfg_info),
    CLI_DESC(cli_port_basic_info_get, "show port basic-info", k_help_basic_info),
    CLI_DESC(cli_port_alm_info_get, "show port WORD alm-info (clear | )", k_help_alm_info),
    CLI_DESC(cli_linkscan_enable_set, "linkscan enable WORD", k_help_ls_enable),
    CLI_DESC(cli_linkscan_enable_get, "show linkscan enable", k_help_ls_enable_get),
    CLI_DESC(cli_linkscan_mode_set, "linkscan mode ports WORD (hw | sw | none)", k_help_ls_mode),
    CLI_DESC(cli_linkscan_mode_get, "show linkscan ports WORD", k_help_ls_mode_get),
};

#undef CLI_DESC

constexpr u32 k_port_count = sizeof(g_cli_port_desc) / sizeof(g_cli_port_desc[0]);
cli_cmd_item g_cli_port_items[k_port_count];

} // namespace

extern "C" {

void cli_cmd_init_port(void)
{
    cli_cmd_descs_link(g_cli_port_desc, g_cli_port_items, k_port_count, CLI_MODE_PORT);
}

// port mapping-mode WORD
i32 cli_mapping_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 1) {
        return _bad_argc();
    }
    u32 mode = 0;
    const i32 rc = cli_get_uint32_param(argv[0], &mode);
    return rc != SHR_E_NONE ? rc : _cli_port_call(nullptr, CLI_PORT_API(port_api_map_mode_set)(chip_id, mode));
}

// show port mapping-mode
i32 cli_mapping_mode_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    u32 mode = 0;
    const i32 rc = _cli_port_call(nullptr, CLI_PORT_API(port_api_map_mode_get)(chip_id, &mode));
    if (rc == SHR_E_NONE) {
        cli_output_show(" mapping mode : %u%s\n", mode, mode < CSL_PORT_MAP_MODES ? "" : " (none loaded)");
    }
    return rc;
}

// port WORD protocol-cfg type (...)
i32 cli_interface_type_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 2 && argc != 4) {
        return _bad_argc();
    }
    port_interface intf{};
    if (!cli_word_id_get(k_interface_words, argv[1], &intf.interface_type)) {
        return _bad_word(argv[1]);
    }
    // The MACs in use: given for the shared types, else as many as the
    // type holds.
    switch (intf.interface_type) {
    case PORT_INTERFACE_SGMII_8P:
    case PORT_INTERFACE_OSGMII:
        intf.port_num = 8;
        break;
    case PORT_INTERFACE_SGMII_4P:
    case PORT_INTERFACE_QSGMII:
    case PORT_INTERFACE_10G_QXGMII:
        intf.port_num = 4;
        break;
    case PORT_INTERFACE_10G_DXGMII:
        intf.port_num = 2;
        break;
    default:
        intf.port_num = 1;
        break;
    }
    if (argc == 4) {
        u32 num = 0;
        const i32 rc = _cli_port_number_get(argv[3], UINT8_MAX, &num);
        if (rc != SHR_E_NONE) {
            return rc;
        }
        intf.port_num = static_cast<u8>(num);
    }
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) -> i32 {
        port_interface mine = intf;
        return _cli_port_call(pport, CLI_PORT_API(port_api_interface_set)(chip_id, lport, &mine));
    });
}

// port WORD tx-rx-enable dir (tx | rx | all) (enable | disable)
i32 cli_tx_rx_enable_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 3 ? _cli_port_onoff_pairs_set(chip_id, argc, argv, k_dir_words,
                                                 CLI_PORT_API(port_api_tx_rx_enable_set))
                     : _bad_argc();
}

// port WORD power-up
i32 cli_power_up_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 1 ? _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_enable_set), 1u) : _bad_argc();
}

// port WORD power-down
i32 cli_power_down_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 1 ? _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_enable_set), 0u) : _bad_argc();
}

// port WORD autoneg-en (enable | disable)
i32 cli_autoneg_en_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 2 ? _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_autoneg_set),
                                           _on(argv[1]) ? 1u : 0u)
                     : _bad_argc();
}

// port WORD autoneg-restart
i32 cli_autoneg_restart_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 1 ? _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_autoneg_restart)) : _bad_argc();
}

// port WORD autoneg-ability speed (...) duplex (full | half) (pause (...) | )
// The port advertises this one speed in this duplex; the pause bits change
// only when given.
i32 cli_autoneg_ability_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 3 && argc != 5) {
        return _bad_argc();
    }
    i32 rc = cli_autoneg_ability_set_key_support_check(chip_id, argc, argv);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    u32 speed = 0;
    u32 pause = 0;
    if (!cli_word_id_get(k_ability_speed_words, argv[1], &speed)) {
        cli_output_show(" speed %s can not be advertised\n", argv[1]);
        return SHR_E_PARAM;
    }
    if (argc == 5 && !cli_word_id_get(k_ability_pause_words, argv[4], &pause)) {
        return _bad_word(argv[4]);
    }
    const bool full = std::strcmp(argv[2], "full") == 0;
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) -> i32 {
        port_ability ability{};
        i32 r = _cli_port_call(pport, CLI_PORT_API(port_api_advert_ability_get)(chip_id, lport, &ability));
        if (r != SHR_E_NONE) {
            return r;
        }
        ability.speed_full = full ? speed : 0;
        ability.speed_half = full ? 0 : speed;
        if (argc == 5) {
            ability.pause = pause;
        }
        return _cli_port_call(pport, CLI_PORT_API(port_api_advert_ability_set)(chip_id, lport, &ability));
    });
}

// show port WORD status
i32 cli_port_single_port_status_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 1) {
        return _bad_argc();
    }
    return cli_pport_list_walk(chip_id, argv[0], _cli_port_headed(_status_heading, [&](u32 lport, const char *pport) {
                                   return _status_row(chip_id, lport, pport);
                               }));
}

// show port status
i32 cli_port_all_port_status_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    return _cli_port_all_each(chip_id, _cli_port_headed(_status_heading, [&](u32 lport, const char *pport) {
                                  return _status_row(chip_id, lport, pport);
                              }));
}

// port WORD speed (...)
i32 cli_port_speed_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 2) {
        return _bad_argc();
    }
    const i32 rc = cli_port_speed_set_key_support_check(chip_id, argc, argv);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    u32 speed = 0;
    if (!cli_word_id_get(k_speed_words, argv[1], &speed)) {
        return _bad_word(argv[1]);
    }
    return _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_speed_set), speed);
}

// port WORD duplex (full | half)
i32 cli_port_duplex_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 2 ? _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_duplex_set),
                                           std::strcmp(argv[1], "full") == 0 ? 1u : 0u)
                     : _bad_argc();
}

// port WORD vlan-pause {tx-vlan-pause (enable | disable) | rx-vlan-pause (enable | disable)}
i32 cli_port_vlan_pause_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return _cli_port_onoff_pairs_set(chip_id, argc, argv, k_vlan_pause_words,
                                     CLI_PORT_API(port_api_vlan_pause_set));
}

// port WORD pause {tx-pause (...) | rx-pause (...) | tx-pause-resp (...) | rx-pause-err (...)}
i32 cli_port_pause_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return _cli_port_onoff_pairs_set(chip_id, argc, argv, k_pause_words, CLI_PORT_API(port_api_pause_set));
}

// port WORD pause-smac XX:XX:XX:XX:XX:XX
i32 cli_port_pause_smac_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 2) {
        return _bad_argc();
    }
    u8 mac[6] = {};
    if (cli_get_mac_addr(argv[1], mac) != SHR_E_NONE) {
        return _bad_word(argv[1]);
    }
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) -> i32 {
        u8 mine[6];
        std::memcpy(mine, mac, sizeof(mine));
        return _cli_port_call(pport, CLI_PORT_API(port_api_pause_addr_set)(chip_id, lport, mine));
    });
}

// port WORD frame-len dir (tx | rx) {max-frame WORD | min-frame WORD}
i32 cli_port_frame_length_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 4 && argc != 6) {
        return _bad_argc();
    }
    u32 dir = 0;
    if (!cli_word_id_get(k_frame_words, argv[1], &dir)) {
        return _bad_word(argv[1]);
    }
    // The lengths in the order given: max-frame 1, min-frame 0.
    std::vector<_setting> lengths;
    for (i32 i = 2; i + 1 < argc; i += 2) {
        _setting s{std::strcmp(argv[i], "max-frame") == 0 ? 1u : 0u, 0};
        const i32 rc = cli_get_uint32_param(argv[i + 1], &s.value);
        if (rc != SHR_E_NONE) {
            return rc;
        }
        lengths.push_back(s);
    }
    return _cli_port_settings_each(chip_id, argv[0], lengths, [&](u32 lport, const char *pport, const _setting &s) {
        return s.type == 1 ? _cli_port_call(pport, CLI_PORT_API(port_api_max_frame_set)(chip_id, lport, dir, s.value))
                           : _cli_port_call(pport, CLI_PORT_API(port_api_min_frame_set)(chip_id, lport, dir, s.value));
    });
}

// port WORD ifg-cfg {ifg-value WORD | dic (enable | disable)}
i32 cli_port_ifg_cfg_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 3 && argc != 5) {
        return _bad_argc();
    }
    // In the order given: the gap (type 1) or the deficit idle count (0).
    std::vector<_setting> settings;
    for (i32 i = 1; i + 1 < argc; i += 2) {
        _setting s{std::strcmp(argv[i], "ifg-value") == 0 ? 1u : 0u, 0};
        if (s.type == 0) {
            s.value = _on(argv[i + 1]) ? 1u : 0u;
        } else {
            const i32 rc = _cli_port_number_get(argv[i + 1], UINT8_MAX, &s.value);
            if (rc != SHR_E_NONE) {
                return rc;
            }
        }
        settings.push_back(s);
    }
    return _cli_port_settings_each(chip_id, argv[0], settings, [&](u32 lport, const char *pport, const _setting &s) {
        return s.type == 1
                   ? _cli_port_call(pport, CLI_PORT_API(port_api_ifg_set)(chip_id, lport, static_cast<u8>(s.value)))
                   : _cli_port_call(pport, CLI_PORT_API(port_api_dic_mode_set)(chip_id, lport, s.value));
    });
}

// show port WORD cnt (clear | )
i32 cli_port_single_port_counter_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 1 && argc != 2) {
        return _bad_argc();
    }
    const bool clear = argc == 2;
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) -> i32 {
        bool read = false;
        const i32 rc = _counter_table(chip_id, lport, pport, &read);
        return rc != SHR_E_NONE || !clear ? rc : _counter_clear(chip_id, lport, pport, read);
    });
}

// show port cnt (clear | )
i32 cli_port_all_port_counter_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argv;
    const bool clear = argc == 1;
    return _cli_port_all_each(chip_id, _cli_port_headed(_counter_heading, [&](u32 lport, const char *pport) {
                                  bool read = false;
                                  const i32 rc = _counter_row(chip_id, lport, pport, &read);
                                  return rc != SHR_E_NONE || !clear ? rc : _counter_clear(chip_id, lport, pport, read);
                              }));
}

// port WORD loop-mode (...) (transparent (enable | disable) | )
i32 cli_port_loop_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 2 && argc != 4) {
        return _bad_argc();
    }
    port_loopback loop{};
    if (!cli_word_id_get(k_loop_words, argv[1], &loop.loop_mode)) {
        return _bad_word(argv[1]);
    }
    loop.transparent = argc == 4 && _on(argv[3]) ? 1u : 0u;
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) -> i32 {
        port_loopback mine = loop;
        return _cli_port_call(pport, CLI_PORT_API(port_api_loopback_set)(chip_id, lport, &mine));
    });
}

// port WORD link-mode (normal-mode | force-mode (up | down))
i32 cli_port_link_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 2 && argc != 3) {
        return _bad_argc();
    }
    const u32 mode = argc == 3 ? PORT_LINK_FORCED : PORT_LINK_NORMAL;
    const u32 status = argc == 3 && std::strcmp(argv[2], "up") == 0 ? PORT_LINK_UP : PORT_LINK_DOWN;
    return _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_force_set), mode, status);
}

// port WORD crc-cfg {tx-crc (...) | rx-crc (...) | tx-crc-check (...) | rx-crc-check (...)}
i32 cli_port_crc_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return _cli_port_onoff_pairs_set(chip_id, argc, argv, k_crc_words, CLI_PORT_API(port_api_crc_set));
}

// port WORD port-ctrl (padding-en | tx-cut | rx-cut | tx-drop-en | rx-short-err) (enable | disable)
i32 cli_port_control_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 3 ? _cli_port_onoff_pairs_set(chip_id, argc, argv, k_ctrl_words, "port_api_cfg_control_set",
                                                 _cli_port_cfg_control_set)
                     : _bad_argc();
}

// port transmit-path (normal-mode | (master-slave-mode (hw-select | (sw-select (master-path | slave-path)))))
i32 cli_port_transmit_path_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc < 1 || argc > 3) {
        return _bad_argc();
    }
    u32 mode = 0, select = 0, path = 0;
    const bool ok = cli_word_id_get(k_path_mode_words, argv[0], &mode) &&
                    (argc < 2 || cli_word_id_get(k_path_select_words, argv[1], &select)) &&
                    (argc < 3 || cli_word_id_get(k_path_words, argv[2], &path));
    if (!ok) {
        return _bad_word(argv[argc - 1]);
    }
    return _cli_port_call(nullptr, CLI_PORT_API(port_api_transmit_path_set)(chip_id, mode, select, path));
}

// show port transmit-path
i32 cli_port_transmit_path_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    u32 mode = 0, select = 0, path = 0;
    const i32 rc = _cli_port_call(nullptr, CLI_PORT_API(port_api_transmit_path_get)(chip_id, &mode, &select, &path));
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const char *m = cli_word_name_get(k_path_mode_words, mode);
    const char *s = cli_word_name_get(k_path_select_words, select);
    const char *p = cli_word_name_get(k_path_words, path);
    std::string text = m != nullptr ? m : "?";
    if (mode != 0) {
        text += std::string(" ") + (s != nullptr ? s : "?");
        if (select != 0) {
            text += std::string(" ") + (p != nullptr ? p : "?");
        }
    }
    cli_output_show(" transmit path : %s\n", text.c_str());
    return SHR_E_NONE;
}

// port WORD reset (enable | disable)
i32 cli_port_reset_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    return argc == 2 ? _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(port_api_reset), _on(argv[1]) ? 1u : 0u)
                     : _bad_argc();
}

// show port WORD cfg-info
i32 cli_port_cfg_info_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 1) {
        return _bad_argc();
    }
    return cli_pport_list_walk(chip_id, argv[0],
                               [&](u32 lport, const char *pport) { return _cfg_info(chip_id, lport, pport); });
}

// show port basic-info: the driver's line of each port in use.
i32 cli_port_basic_info_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    return _cli_port_all_each(chip_id, _cli_port_headed(_basic_info_heading, [&](u32 lport, const char *pport) -> i32 {
        char text[k_basic_info_room] = "";
        port_info_buff info{text, sizeof(text), 0};
        const i32 rc = port_api_basic_info_get(chip_id, lport, &info);
        if (rc == SHR_E_NOT_SUPPORT) {
            return SHR_E_NONE;
        }
        if (rc == SHR_E_NONE && info.used > 0) {
            cli_output_show("%.*s", static_cast<int>(info.used < sizeof(text) ? info.used : sizeof(text)), text);
        }
        return _cli_port_call(pport, "port_api_basic_info_get", rc);
    }));
}

// show port WORD alm-info (clear | )
i32 cli_port_alm_info_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 1 && argc != 2) {
        return _bad_argc();
    }
    const u32 clear = argc == 2 ? 1u : 0u;
    std::vector<char> text(k_alm_info_room);
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) -> i32 {
        port_info_buff info{text.data(), k_alm_info_room, 0};
        const i32 rc = _cli_port_call(pport, CLI_PORT_API(port_api_alm_info_get)(chip_id, lport, clear, &info));
        if (rc == SHR_E_NONE) {
            cli_output_show("\n port %s alarms\n%.*s", pport,
                            static_cast<int>(info.used < k_alm_info_room ? info.used : k_alm_info_room), text.data());
        }
        return rc;
    });
}

// linkscan enable WORD: "enable" or 1 switches link scan on, "disable" or 0
// off.
i32 cli_linkscan_enable_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 1) {
        return _bad_argc();
    }
    u32 enable = 0;
    if (_on(argv[0]) || std::strcmp(argv[0], "1") == 0) {
        enable = 1;
    } else if (std::strcmp(argv[0], "disable") != 0 && std::strcmp(argv[0], "0") != 0) {
        return _bad_word(argv[0]);
    }
    return _cli_port_call(nullptr, CLI_PORT_API(linkscan_api_enable_set)(chip_id, enable));
}

// show linkscan enable
i32 cli_linkscan_enable_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    (void)argc;
    (void)argv;
    u32 enable = 0;
    const i32 rc = _cli_port_call(nullptr, CLI_PORT_API(linkscan_api_enable_get)(chip_id, &enable));
    if (rc == SHR_E_NONE) {
        cli_output_show(" linkscan : %s\n", _onoff(enable));
    }
    return rc;
}

// linkscan mode ports WORD (hw | sw | none)
i32 cli_linkscan_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 2) {
        return _bad_argc();
    }
    u32 mode = 0;
    if (!cli_word_id_get(k_linkscan_words, argv[1], &mode)) {
        return _bad_word(argv[1]);
    }
    return _cli_port_each_call(chip_id, argv[0], CLI_PORT_API(linkscan_api_mode_set), mode);
}

// show linkscan ports WORD
i32 cli_linkscan_mode_get(u32 chip_id, u32 view_mode, i32 argc, char **argv)
{
    (void)view_mode;
    if (argc != 1) {
        return _bad_argc();
    }
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) -> i32 {
        u32 mode = 0;
        const i32 rc = _cli_port_call(pport, CLI_PORT_API(linkscan_api_mode_get)(chip_id, lport, &mode));
        if (rc == SHR_E_NONE) {
            const char *name = cli_word_name_get(k_linkscan_words, mode);
            cli_output_show(" port %-10s linkscan : %s\n", pport, name != nullptr ? name : "?");
        }
        return rc;
    });
}

} // extern "C"
