// The `l2` mode: addresses of the MAC table and the learning, aging, limit,
// move and flooding controls of the L2 service.
//
// The entry commands share one reader of their words: each keyword of an
// entry (a key part, a destination, an option) fills its part of an
// l2_addr and says which field a batched command compares.  Ports are
// named as the shell names them (cli_pport_to_lport).
#include <arpa/inet.h>

#include <tide/l2.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"

extern "C" {

const char *const g_mac_errmsg[] = {
    "Ok",
    "Static MAC preempts dynamic MAC successfully",
    "The specified KEY was inserted and overwritten successfully",
    "The specified KEY insertion preemption failed",
    "Failed to specify KEY insertion override",
    "Delete failed, miss",
    "Lookup failed, miss",
    "Failed to insert the specified HASH address. There are already table entries",
    "Global MAC quantity control failed, insertion failed",
    "Port MAC quantity control failed, insertion failed",
};

} // extern "C"

namespace {

constexpr u32 k_mac_causes = sizeof(g_mac_errmsg) / sizeof(g_mac_errmsg[0]);

const char *_cause_text(u32 cause)
{
    return cause < k_mac_causes ? g_mac_errmsg[cause] : "unknown cause";
}

bool _num(const char *word, u32 *out)
{
    return cli_get_uint32_param(word, out) == 0;
}

bool _mac(const char *word, u8 mac[6])
{
    if (cli_get_mac_addr(word, mac) != 0) {
        cli_output_show("mac address %s is wrong.\n", word);
        return false;
    }
    return true;
}

bool _ipv4(const char *word, u32 *out)
{
    if (cli_get_ipv4addr(word, out) != 0) {
        cli_output_show("parameter %s is incorrect.\n", word);
        return false;
    }
    return true;
}

// A port name of the operator into a logical port.
bool _port(u32 chip_id, const char *word, u32 *lport)
{
    return cli_pport_to_lport_checked(chip_id, word, lport) == 0;
}

bool _ipv6(const char *word, u8 out[16])
{
    if (inet_pton(AF_INET6, word, out) != 1) {
        cli_output_show("ipv6 address is wrong.\n");
        return false;
    }
    return true;
}

bool _enable(const char *word)
{
    return word != nullptr && std::strcmp(word, "enable") == 0;
}

// ---- the words of an entry --------------------------------------------------------

// What the words of an entry command filled.
struct Entry {
    u32 chip = 0;
    l2_addr addr{};
    u32 compare = 0; // compare bits of a batched command
    bool ip = false, sip = false;
};

using apply_fn = bool (*)(Entry &e, char **values);

struct Word {
    const char *word;
    u32 values; // words that follow it
    u32 flags;  // l2_addr flags it sets
    u32 compare;
    apply_fn apply;
};

bool _w_mac(Entry &e, char **v)
{
    e.addr.key_type = L2_KEY_MAC_VLAN;
    return _mac(v[0], e.addr.mac);
}
bool _w_vid(Entry &e, char **v)
{
    u32 n = 0;
    e.addr.vid = static_cast<u16>(n);
    return _num(v[0], &n) && (e.addr.vid = static_cast<u16>(n), n <= 0xFFFF);
}
bool _w_dip(Entry &e, char **v)
{
    e.ip = true;
    return _ipv4(v[0], &e.addr.dip4);
}
bool _w_sip(Entry &e, char **v)
{
    e.sip = true;
    return _ipv4(v[0], &e.addr.sip4);
}
bool _w_dipv6(Entry &e, char **v)
{
    e.ip = true;
    e.addr.iptype = 1;
    return _ipv6(v[0], e.addr.dipv6);
}
bool _w_sipv6(Entry &e, char **v)
{
    e.sip = true;
    return _ipv6(v[0], e.addr.sipv6);
}
bool _w_dip_sip(Entry &e, char **v)
{
    return _w_dip(e, v) && _w_sip(e, v + 1);
}
bool _w_dipv6_sipv6(Entry &e, char **v)
{
    return _w_dipv6(e, v) && _w_sipv6(e, v + 1);
}
bool _w_dip_sip_vlan(Entry &e, char **v)
{
    e.addr.flags |= L2_FLAG_KEY_VID; // the VLAN comes with its own word
    return _w_dip_sip(e, v);
}
bool _w_dipv6_sipv6_vlan(Entry &e, char **v)
{
    e.addr.flags |= L2_FLAG_KEY_VID;
    return _w_dipv6_sipv6(e, v);
}
template <u32 l2_addr::*Field>
bool _w_u32(Entry &e, char **v)
{
    return _num(v[0], &(e.addr.*Field));
}
template <u16 l2_addr::*Field>
bool _w_u16(Entry &e, char **v)
{
    u32 n = 0;
    if (!_num(v[0], &n) || n > 0xFFFF) {
        return false;
    }
    e.addr.*Field = static_cast<u16>(n);
    return true;
}

bool _w_port(Entry &e, char **v)
{
    return _port(e.chip, v[0], &e.addr.port);
}

constexpr Word k_words[] = {
    {"mac", 1, 0, L2_CMP_MAC, _w_mac},
    {"dip", 1, 0, L2_CMP_MAC, _w_dip},
    {"sip", 1, 0, L2_CMP_MAC, _w_sip},
    {"dipv6", 1, 0, L2_CMP_MAC, _w_dipv6},
    {"sipv6", 1, 0, L2_CMP_MAC, _w_sipv6},
    {"dip-sip", 2, 0, L2_CMP_MAC, _w_dip_sip},
    {"dip-sip-vlan", 2, 0, L2_CMP_MAC, _w_dip_sip_vlan},
    {"dipv6-sipv6", 2, 0, L2_CMP_MAC, _w_dipv6_sipv6},
    {"dipv6-sipv6-vlan", 2, 0, L2_CMP_MAC, _w_dipv6_sipv6_vlan},
    {"vid", 1, L2_FLAG_KEY_VID, L2_CMP_VLAN, _w_vid},
    {"fid", 1, L2_FLAG_KEY_FID, L2_CMP_VLAN, _w_vid},
    {"vfi", 1, L2_FLAG_KEY_VFI, L2_CMP_VLAN, _w_u16<&l2_addr::vfi>},
    {"modid", 1, 0, 0, _w_u32<&l2_addr::modid>},
    {"port", 1, L2_FLAG_DEST_PORT, L2_CMP_DEST, _w_port},
    {"tgid", 1, L2_FLAG_DEST_TRUNK, L2_CMP_DEST, _w_u32<&l2_addr::tgid>},
    {"mgid", 1, L2_FLAG_DEST_MCAST, L2_CMP_DEST, _w_u32<&l2_addr::mgid>},
    {"dvp", 1, L2_FLAG_DEST_DVP, L2_CMP_DEST, _w_u32<&l2_addr::dvp>},
    {"vp", 1, L2_FLAG_DEST_DVP, L2_CMP_DEST, _w_u32<&l2_addr::dvp>},
    {"nhp", 1, L2_FLAG_DEST_NHP, L2_CMP_DEST, _w_u32<&l2_addr::nhp>},
    {"ecmp", 1, L2_FLAG_DEST_ECMP, L2_CMP_DEST, _w_u32<&l2_addr::ecmp>},
    {"drop", 0, L2_FLAG_DEST_DROP, L2_CMP_DEST, nullptr},
    {"redirect-to-cpu", 0, L2_FLAG_DEST_CPU, L2_CMP_DEST, nullptr},
    {"causeid", 1, 0, 0, _w_u32<&l2_addr::causeid>},
    {"ovid", 1, 0, L2_CMP_OVID, _w_u16<&l2_addr::ovid>},
    {"gid", 1, 0, L2_CMP_GID, _w_u16<&l2_addr::gid>},
    {"static", 0, 0, L2_CMP_STATIC, nullptr},
    {"dynamic", 0, L2_FLAG_DYNAMIC, L2_CMP_STATIC, nullptr},
    {"remote", 0, L2_FLAG_REMOTE, L2_CMP_REMOTE, nullptr},
    {"src-hit", 0, L2_FLAG_SRC_HIT, 0, nullptr},
    {"dst-hit", 0, L2_FLAG_DST_HIT, 0, nullptr},
    {"pending", 0, L2_FLAG_PENDING, 0, nullptr},
    {"src-drop", 0, L2_FLAG_SRC_DROP, 0, nullptr},
    {"dst-drop", 0, L2_FLAG_DST_DROP, 0, nullptr},
    {"dyn-cover-static", 0, L2_FLAG_DYN_COVER_STATIC, 0, nullptr},
    {"dyn-cover-static-fwd", 0, L2_FLAG_DYN_COVER_STATIC_FWD, 0, nullptr},
    {"all", 0, 0, 0, nullptr},
    {"multicast", 0, 0, 0, nullptr},
};

// Reads the words of an entry from argv[first]; false (with a line
// printed) for a word it does not know or a bad value.
bool _entry_read(u32 chip_id, i32 argc, char **argv, i32 first, Entry *e)
{
    e->chip = chip_id;
    for (i32 i = first; i < argc;) {
        const Word *w = nullptr;
        for (const Word &k : k_words) {
            if (std::strcmp(k.word, argv[i]) == 0) {
                w = &k;
                break;
            }
        }
        if (w == nullptr || i + static_cast<i32>(w->values) >= argc + (w->values == 0 ? 1 : 0)) {
            cli_output_show("parameter %s is incorrect.\n", argv[i]);
            return false;
        }
        e->addr.flags |= w->flags;
        e->compare |= w->compare;
        if (w->apply != nullptr && !w->apply(*e, argv + i + 1)) {
            return false;
        }
        i += 1 + static_cast<i32>(w->values);
    }
    if (e->ip) {
        const bool vlan = (e->addr.flags & L2_FLAG_KEY_VID) != 0;
        e->addr.key_type = e->sip ? (vlan ? L2_KEY_DIP_SIP_VLAN : L2_KEY_DIP_SIP) : L2_KEY_DIP_VLAN;
    }
    return true;
}

void _dest_str(const l2_addr &a, char *buf, size_t len)
{
    if (a.flags & L2_FLAG_DEST_PORT) {
        snprintf(buf, len, "port %u", a.port);
    } else if (a.flags & L2_FLAG_DEST_TRUNK) {
        snprintf(buf, len, "tgid %u", a.tgid);
    } else if (a.flags & L2_FLAG_DEST_MCAST) {
        snprintf(buf, len, "mgid %u", a.mgid);
    } else if (a.flags & L2_FLAG_DEST_DROP) {
        snprintf(buf, len, "drop %u", a.causeid);
    } else if (a.flags & L2_FLAG_DEST_CPU) {
        snprintf(buf, len, "cpu %u", a.causeid);
    } else if (a.flags & L2_FLAG_DEST_DVP) {
        snprintf(buf, len, "dvp %u", a.dvp);
    } else if (a.flags & L2_FLAG_DEST_NHP) {
        snprintf(buf, len, "nhp %u", a.nhp);
    } else {
        snprintf(buf, len, "ecmp %u", a.ecmp);
    }
}

void _key_str(const l2_addr &a, char *buf, size_t len)
{
    if (a.key_type == L2_KEY_MAC_VLAN) {
        snprintf(buf, len, "%02x:%02x:%02x:%02x:%02x:%02x", a.mac[0], a.mac[1], a.mac[2], a.mac[3], a.mac[4],
                 a.mac[5]);
        return;
    }
    char dip[INET6_ADDRSTRLEN] = {};
    char sip[INET6_ADDRSTRLEN] = {};
    if (a.iptype == 1) {
        inet_ntop(AF_INET6, a.dipv6, dip, sizeof(dip));
        inet_ntop(AF_INET6, a.sipv6, sip, sizeof(sip));
    } else {
        const in_addr d{htonl(a.dip4)}, s{htonl(a.sip4)};
        inet_ntop(AF_INET, &d, dip, sizeof(dip));
        inet_ntop(AF_INET, &s, sip, sizeof(sip));
    }
    if (a.key_type == L2_KEY_DIP_VLAN) {
        snprintf(buf, len, "%s", dip);
    } else {
        snprintf(buf, len, "%s/%s", dip, sip);
    }
}

void _entry_head()
{
    cli_output_show("%-40s %-5s %-8s %-12s %-4s %s\n", "Key", "VID", "Type", "Destination", "Age", "Flags");
    cli_output_show("--------------------------------------------------------------------------------\n");
}

void _entry_line(const l2_addr &a)
{
    char key[96], dest[32];
    _key_str(a, key, sizeof(key));
    _dest_str(a, dest, sizeof(dest));
    cli_output_show("%-40s %-5u %-8s %-12s %-4u %s%s%s%s\n", key, a.vid, (a.flags & L2_FLAG_DYNAMIC) ? "dynamic" : "static",
               dest, a.age_cnt, (a.flags & L2_FLAG_SRC_DROP) ? "src-drop " : "",
               (a.flags & L2_FLAG_DST_DROP) ? "dst-drop " : "", (a.flags & L2_FLAG_DYN_COVER_STATIC) ? "dyn-cover-static " : "",
               (a.flags & L2_FLAG_DYN_COVER_STATIC_FWD) ? "dyn-cover-static-fwd" : "");
}

// An entry against the filter of `show l2 mac-info`: the VLAN and the
// destination, as far as the command names them.
bool _filter_match(const l2_addr &a, const Entry &f)
{
    const l2_addr &w = f.addr;
    if ((f.compare & L2_CMP_VLAN) && a.vid != w.vid) {
        return false;
    }
    if ((f.compare & L2_CMP_DEST) == 0) {
        return true;
    }
    constexpr u32 kDest = L2_FLAG_DEST_PORT | L2_FLAG_DEST_TRUNK | L2_FLAG_DEST_MCAST | L2_FLAG_DEST_DROP |
                          L2_FLAG_DEST_CPU | L2_FLAG_DEST_DVP | L2_FLAG_DEST_NHP | L2_FLAG_DEST_ECMP;
    if ((a.flags & kDest) != (w.flags & kDest)) {
        return false;
    }
    if (w.flags & L2_FLAG_DEST_PORT) {
        return a.port == w.port && a.modid == w.modid;
    }
    if (w.flags & L2_FLAG_DEST_TRUNK) {
        return a.tgid == w.tgid;
    }
    if (w.flags & (L2_FLAG_DEST_DROP | L2_FLAG_DEST_CPU)) {
        return w.causeid == 0 || a.causeid == w.causeid; // without a cause id: any
    }
    return true;
}

struct ShowWalk {
    const Entry *filter;
    u32 shown;
};

i32 _show_one(u32, l2_addr *a, void *user)
{
    auto *walk = static_cast<ShowWalk *>(user);
    if (_filter_match(*a, *walk->filter)) {
        _entry_line(*a);
        walk->shown++;
    }
    return 0;
}

// ---- ports and lists ----------------------------------------------------------------

// Calls `fn` for each id of a list of numbers and ranges ("3,5-7"); the
// first failure ends the walk.
template <typename Fn>
i32 _id_list_walk(const char *list, Fn fn)
{
    if (cli_check_intlist(list) < 0) {
        cli_output_show(" para %s is invalid.\n", list);
        return SHR_E_PARAM;
    }
    std::string copy(list);
    char *cursor = copy.data();
    for (i32 v = cli_get_next_from_intlist(&cursor, 0); v >= 0; v = cli_get_next_from_intlist(&cursor, v)) {
        const i32 rc = fn(static_cast<u32>(v));
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

// Calls `fn` for each port of a port list; the first failure ends the
// walk.
template <typename Fn>
i32 _port_list_walk(u32 chip_id, const char *list, Fn fn)
{
    return cli_pport_list_walk(chip_id, list, [&fn](u32 lport, const char *) { return fn(lport); });
}

// The number after a keyword, or a line and -4.
bool _arg_num(i32 argc, char **argv, i32 at, u32 *out)
{
    if (at >= argc) {
        cli_output_show("parameter number is incorrect. \n");
        return false;
    }
    return _num(argv[at], out);
}

constexpr const char *k_act_names[] = {"drop", "flood", "redirect-to-cpu", "copy-to-cpu"};
constexpr const char *k_learn_names[] = {"learn", "not-learn forward", "not-learn drop", "not-learn redirect-to-cpu",
                                         "not-learn copy-to-cpu"};

template <size_t N>
i32 _name_index(const char *const (&names)[N], const char *word)
{
    for (size_t i = 0; i < N; i++) {
        if (std::strcmp(names[i], word) == 0) {
            return static_cast<i32>(i);
        }
    }
    return -1;
}

i32 _control_set(u32 chip_id, u32 id, u32 value)
{
    const i32 rc = l2_api_control_set(chip_id, id, value);
    return rc != 0 ? cli_call_failed("l2_api_control_set", rc) : 0;
}

// Over-limit actions of the limit commands, as the limit registers take
// them.
u32 _limit_act(const char *word)
{
    return std::strcmp(word, "drop") == 0 ? 0 : (std::strcmp(word, "redirect-to-cpu") == 0 ? 1 : 2);
}

// The scope words of a limit command into a record: port, vid, glb; vfi
// and svp have no limit on this chip.
i32 _limit_scope(u32 chip_id, i32 argc, char **argv, l2_learn_limit *l, bool *all_ports)
{
    *all_ports = false;
    for (i32 i = 0; i < argc; i++) {
        if (std::strcmp(argv[i], "glb") == 0) {
            l->flags |= L2_LIMIT_GLOBAL;
        } else if (std::strcmp(argv[i], "port") == 0) {
            l->flags |= L2_LIMIT_PORT;
            if (i + 1 < argc && _name_index(k_act_names, argv[i + 1]) < 0 && std::strcmp(argv[i + 1], "enable") != 0 &&
                std::strcmp(argv[i + 1], "disable") != 0) {
                if (!_port(chip_id, argv[++i], &l->port)) {
                    return SHR_E_PARAM;
                }
            } else {
                *all_ports = true;
            }
        } else if (std::strcmp(argv[i], "vid") == 0) {
            l->flags |= L2_LIMIT_VLAN;
            if (!_arg_num(argc, argv, ++i, &l->vlan)) {
                return SHR_E_PARAM;
            }
        } else if (std::strcmp(argv[i], "vfi") == 0 || std::strcmp(argv[i], "svp") == 0 ||
                   std::strcmp(argv[i], "vlan-vfi") == 0) {
            cli_output_show("Key [%s] Not Support for chip[%s]!\n", argv[i], shr_chip_name_get(chip_id));
            return SHR_E_NOT_SUPPORT;
        }
    }
    return 0;
}

i32 _limit_apply(u32 chip_id, l2_learn_limit l, bool all_ports)
{
    if (!all_ports) {
        const i32 rc = l2_api_learn_limit_set(chip_id, &l);
        return rc != 0 ? cli_call_failed("l2_api_learn_limit_set", rc) : 0;
    }
    l2_learn_limit each = l;
    char name[CLI_PPORT_SIZE];
    for (i32 prev = -1; cli_port_list_next_lport_get(chip_id, 0, prev, &each.port, name) == 0;
         prev = static_cast<i32>(each.port)) {
        const i32 rc = l2_api_learn_limit_set(chip_id, &each);
        if (rc != 0) {
            return cli_call_failed("l2_api_learn_limit_set", rc);
        }
    }
    return 0;
}

i32 _age_set(u32 chip_id, u32 id, u32 value)
{
    const i32 rc = l2_api_age_control_set(chip_id, id, value);
    return rc != 0 ? cli_call_failed("l2_api_age_control_set", rc) : 0;
}


// The move priority record of `port WORD`, `tgid WORD` or `vp WORD`.
i32 _move_target(u32 chip_id, i32 argc, char **argv, l2_port_move_pri *pri)
{
    if (argc < 2) {
        cli_output_show("parameter number is incorrect. \n");
        return SHR_E_PARAM;
    }
    if (std::strcmp(argv[0], "vp") == 0) {
        cli_output_show("Key [%s] Not Support for chip[%s]!\n", argv[0], shr_chip_name_get(chip_id));
        return SHR_E_NOT_SUPPORT;
    }
    pri->flag = std::strcmp(argv[0], "tgid") == 0 ? 1 : 0;
    const bool ok = pri->flag == 1 ? _num(argv[1], &pri->id) : _port(chip_id, argv[1], &pri->id);
    return ok ? 0 : SHR_E_PARAM;
}

// Read, change, write of a move priority record.
template <typename Change>
i32 _move_change(u32 chip_id, l2_port_move_pri pri, Change change)
{
    cli_lock_take(chip_id, CLI_LOCK_L2, __FILE__, __LINE__);
    i32 rc = l2_api_port_move_pri_get(chip_id, &pri);
    if (rc == 0) {
        change(pri);
        rc = l2_api_port_move_pri_set(chip_id, &pri);
    }
    cli_lock_give(chip_id, CLI_LOCK_L2, __FILE__, __LINE__);
    return rc != 0 ? cli_call_failed("l2_api_port_move_pri_set", rc) : 0;
}


// A control whose words are (first | second): 0 and 1.
i32 _two_way(u32 chip_id, u32 id, i32 argc, char **argv, const char *one)
{
    return _control_set(chip_id, id, argc > 0 && std::strcmp(argv[argc - 1], one) == 0);
}


i32 _port_set(u32 chip_id, u32 port, u32 id, u32 value)
{
    const i32 rc = l2_api_port_control_set(chip_id, port, id, value);
    return rc != 0 ? cli_call_failed("l2_api_port_control_set", rc) : 0;
}

// A batched command over the fields that the words name; the count is
// printed with `format`.
i32 _batched_cmd(u32 chip_id, i32 argc, char **argv, i32 (*fn)(u32, l2_addr *, u32, u32 *), const char *what,
                 const char *format)
{
    Entry e;
    if (!_entry_read(chip_id, argc, argv, 0, &e)) {
        return SHR_E_PARAM;
    }
    u32 count = 0;
    const i32 rc = fn(chip_id, &e.addr, e.compare, &count);
    if (rc != 0) {
        return cli_call_failed(what, rc);
    }
    cli_output_show(format, count);
    return 0;
}

} // namespace

extern "C" {

// ---- entries --------------------------------------------------------------------------

// l2 add mac XX:XX:XX:XX:XX:XX (vid WORD | fid WORD) (destination) (options | )
i32 cli_l2_addr_add(u32 chip_id, u32, i32 argc, char **argv)
{
    Entry e;
    if (argc < 1 || !_mac(argv[0], e.addr.mac) || !_entry_read(chip_id, argc, argv, 1, &e)) {
        return SHR_E_PARAM;
    }
    e.addr.key_type = L2_KEY_MAC_VLAN;
    const i32 rc = l2_api_addr_add(chip_id, &e.addr);
    if (rc != 0) {
        cli_output_show("add l2 entry failed, fail case: %s (errmsg: %s)\n", _cause_text(e.addr.fail_case), shr_errmsg(rc));
    }
    return rc;
}

// l2 del (multicast | ) (key)
i32 cli_l2_entry_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    Entry e;
    if (!_entry_read(chip_id, argc, argv, 0, &e)) {
        return SHR_E_PARAM;
    }
    const i32 rc = l2_api_addr_del(chip_id, &e.addr);
    return rc != 0 ? cli_call_failed("l2_api_addr_del", rc) : 0;
}

// clear l2 (all | {fields}): one batched delete comparing the fields named.
i32 cli_l2_entry_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    return _batched_cmd(chip_id, argc, argv, l2_api_addr_batched_del, "l2_api_addr_batched_del",
                        "%u l2 entries deleted\n");
}

// show l2 mac-info (key | filter | all)
i32 cli_l2_entry_show(u32 chip_id, u32, i32 argc, char **argv)
{
    Entry e;
    if (!_entry_read(chip_id, argc, argv, 0, &e)) {
        return SHR_E_PARAM;
    }
    if (e.compare & L2_CMP_MAC) {
        const i32 rc = l2_api_addr_get(chip_id, &e.addr);
        if (rc != 0) {
            return cli_call_failed("l2_api_addr_get", rc);
        }
        _entry_head();
        _entry_line(e.addr);
        return 0;
    }
    if (e.addr.flags & (L2_FLAG_DEST_DVP | L2_FLAG_KEY_FID | L2_FLAG_KEY_VFI)) {
        return cli_call_failed("l2_api_addr_traverse", SHR_E_NOT_SUPPORT);
    }
    ShowWalk walk{&e, 0};
    _entry_head();
    const i32 rc = l2_api_addr_traverse(chip_id, _show_one, &walk);
    if (rc != 0) {
        return cli_call_failed("l2_api_addr_traverse", rc);
    }
    cli_output_show("Total: %u\n", walk.shown);
    return 0;
}

// show l2 mac-num ({filter} | ): one batched search.
i32 cli_l2_entry_num_batch_search_show(u32 chip_id, u32, i32 argc, char **argv)
{
    return _batched_cmd(chip_id, argc, argv, l2_api_addr_batched_search, "l2_api_addr_batched_search",
                        "mac num: %u\n");
}

// ---- aging and learning ------------------------------------------------------------------

// l2 aging WORD
i32 cli_l2_age_time_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 t = 0;
    return _arg_num(argc, argv, 0, &t) ? _age_set(chip_id, L2_AGE_TIME, t) : SHR_E_PARAM;
}

// l2 aging freq WORD
i32 cli_l2_aging_freq_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 f = 0;
    return _arg_num(argc, argv, 0, &f) ? _age_set(chip_id, L2_AGE_CLK_FREQ, f) : SHR_E_PARAM;
}

// l2 bidirect-aging (enable | disable)
i32 cli_l2_bidirect_aging_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    return _age_set(chip_id, L2_AGE_TWO_WAY, argc > 0 && _enable(argv[0]));
}

// l2 aging mode low-power (enable | disable)
i32 cli_l2_age_lp_mode_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    return _age_set(chip_id, L2_AGE_LP_MODE, argc > 0 && _enable(argv[argc - 1]));
}

// l2 aging-cnt-refresh (enable | disable)
i32 cli_l2_aging_timer_refresh_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    return _age_set(chip_id, L2_AGE_CNT_EN, argc > 0 && _enable(argv[0]));
}

// l2 learn (enable | disable)
i32 cli_l2_learn_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    const i32 rc = l2_api_learn_control_set(chip_id, 0, argc > 0 && _enable(argv[0]));
    return rc != 0 ? cli_call_failed("l2_api_learn_control_set", rc) : 0;
}

// l2 learn-aging-mode (software | hardware)
i32 cli_l2_learn_age_mode_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _control_set(chip_id, L2_CTRL_LEARN_MODE, argc > 0 && std::strcmp(argv[0], "hardware") == 0);
}

// l2 event-to-cpu (learn | move | aging | cpu-insert | cpu-del | cpu-batch-search | hash-full | all)
// (enable | disable)
i32 cli_l2_event_to_cpu_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr const char *kEvents[] = {"learn",   "move",           "aging",     "cpu-insert",
                                              "cpu-del", "cpu-batch-search", "hash-full"};
    if (argc < 2) {
        cli_output_show("parameter number is incorrect. \n");
        return SHR_E_PARAM;
    }
    const bool all = std::strcmp(argv[0], "all") == 0;
    const i32 one = _name_index(kEvents, argv[0]);
    for (u32 i = 0; i < sizeof(kEvents) / sizeof(kEvents[0]); i++) {
        if (all || static_cast<i32>(i) == one) {
            const i32 rc = _control_set(chip_id, L2_CTRL_MSG_LEARN + i, _enable(argv[1]));
            if (rc != 0) {
                return rc;
            }
        }
    }
    return 0;
}

// l2 learn-mode of a port.
i32 cli_l2_learn_port_mode_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 port = 0;
    if (argc < 2 || !_port(chip_id, argv[0], &port)) {
        return SHR_E_PARAM;
    }
    char mode[64];
    snprintf(mode, sizeof(mode), "%s%s%s", argv[1], argc > 2 ? " " : "", argc > 2 ? argv[2] : "");
    const i32 m = _name_index(k_learn_names, mode);
    if (m < 0) {
        cli_output_show("port learn-mode %s is not support \n", mode);
        return SHR_E_NOT_SUPPORT;
    }
    const i32 rc = l2_api_port_control_set(chip_id, port, L2_PORT_LEARN_MODE, static_cast<u32>(m));
    return rc != 0 ? cli_call_failed("l2_api_port_control_set", rc) : 0;
}

// ---- moves ---------------------------------------------------------------------------------

// l2 move pri WORD (enable | disable): one bit of the move priority mask.
i32 cli_l2_move_act_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 pri = 0;
    if (argc < 2 || !_num(argv[0], &pri) || pri > 3) {
        cli_output_show("pri %s is out of range, max 3\n", argc > 0 ? argv[0] : "");
        return SHR_E_PARAM;
    }
    cli_lock_take(chip_id, CLI_LOCK_L2, __FILE__, __LINE__);
    u32 mask = 0;
    i32 rc = l2_api_control_get(chip_id, L2_CTRL_MOVE_PRI_MASK, &mask);
    if (rc == 0) {
        mask = _enable(argv[1]) ? mask | 1u << pri : mask & ~(1u << pri);
        rc = l2_api_control_set(chip_id, L2_CTRL_MOVE_PRI_MASK, mask);
    }
    cli_lock_give(chip_id, CLI_LOCK_L2, __FILE__, __LINE__);
    return rc != 0 ? cli_call_failed("l2_api_control_set", rc) : 0;
}

// l2 move (port WORD | tgid WORD | vp WORD) (enable | disable)
i32 cli_l2_port_move_act_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    l2_port_move_pri pri{};
    const i32 rc = _move_target(chip_id, argc, argv, &pri);
    if (rc != 0 || argc < 3) {
        return rc != 0 ? rc : SHR_E_PARAM;
    }
    const u8 on = _enable(argv[2]) ? 1 : 0;
    return _move_change(chip_id, pri, [on](l2_port_move_pri &p) { p.enable = on; });
}

// l2 port-move (port WORD | tgid WORD | vp WORD) pri WORD
i32 cli_l2_port_move_pri_set(u32 chip_id, u32, i32 argc, char **argv)
{
    l2_port_move_pri pri{};
    u32 value = 0;
    const i32 rc = _move_target(chip_id, argc, argv, &pri);
    if (rc != 0 || !_arg_num(argc, argv, 2, &value) || value > 0xFF) {
        return rc != 0 ? rc : SHR_E_PARAM;
    }
    return _move_change(chip_id, pri, [value](l2_port_move_pri &p) { p.pri = static_cast<u8>(value); });
}

// l2 dyn-cover-static not-forward-act (drop | redirect-to-cpu)
i32 cli_l2_dyn_move_sta_noforward_act_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _two_way(chip_id, L2_CTRL_STATIC_MOVE_ACT, argc, argv, "redirect-to-cpu");
}

// l2 move fail-act (drop | forward)
i32 cli_l2_move_fail_act_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _two_way(chip_id, L2_CTRL_MOVE_FAIL_ACT, argc, argv, "forward");
}

// l2 hash-conflict-act (drop | forward)
i32 cli_l2_hash_conflict_act_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _two_way(chip_id, L2_CTRL_HASH_CONFLICT_ACT, argc, argv, "forward");
}

// l2 port-limit-mode (software | hardware)
i32 cli_l2_port_limit_mode_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _two_way(chip_id, L2_CTRL_PORT_LIMIT_MODE, argc, argv, "hardware");
}

// l2 cpu-insert (replace-static | replace-dynamic | replace-full) (enable | disable)
i32 cli_l2_cpu_insert_mac_config(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr const char *kPolicy[] = {"replace-static", "replace-dynamic", "replace-full"};
    const i32 id = argc >= 2 ? _name_index(kPolicy, argv[0]) : -1;
    if (id < 0) {
        return SHR_E_PARAM;
    }
    return _control_set(chip_id, L2_CTRL_REPLACE_STATIC + static_cast<u32>(id), _enable(argv[1]));
}

// l2 reserve-multicast check-mode (causeid | pkt-type)
i32 cli_l2_reserved_multicast_check_mode_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _two_way(chip_id, L2_CTRL_RSV_FORCE_BC_MODE, argc, argv, "causeid");
}

// l2 reserve-multicast force-broadcast (enable | disable)
i32 cli_l2_reserved_multicast_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    return _two_way(chip_id, L2_CTRL_RSV_FORCE_BC_EN, argc, argv, "enable");
}

// l2 hash-alg (...): the chip has the CRC and the XOR hash.
i32 cli_l2_hash_alg_set(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr const char *kAlg[] = {"crc", "xor"};
    const i32 alg = argc > 0 ? _name_index(kAlg, argv[0]) : -1;
    if (alg < 0) {
        cli_output_show("Key [%s] Not Support for chip[%s]!\n", argc > 0 ? argv[0] : "", shr_chip_name_get(chip_id));
        return SHR_E_NOT_SUPPORT;
    }
    return _control_set(chip_id, L2_CTRL_HASH_MODE, static_cast<u32>(alg) + 1);
}

// l2 ipmc (ipv6-ip-sel WORD WORD WORD WORD | ipv6-dip-sel WORD WORD WORD WORD)
i32 _cli_l2_ipmc_multicast_cfg_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 5) {
        cli_output_show("parameter number is incorrect. \n");
        return SHR_E_PARAM;
    }
    const u32 first = std::strcmp(argv[0], "ipv6-dip-sel") == 0 ? L2_CTRL_IPV6_DIP_SEL0 : L2_CTRL_IPV6_IP_SEL0;
    for (u32 i = 0; i < 4; i++) {
        u32 sel = 0;
        if (!_num(argv[1 + i], &sel)) {
            return SHR_E_PARAM;
        }
        const i32 rc = _control_set(chip_id, first + i, sel);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

// ---- ports ---------------------------------------------------------------------------------

// l2 bridge (port WORD | egress-port WORD) (enable | disable)
i32 cli_l2_port_bridge_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 port = 0;
    if (argc < 3 || !_port(chip_id, argv[1], &port)) {
        return SHR_E_PARAM;
    }
    const u32 id = std::strcmp(argv[0], "egress-port") == 0 ? L2_PORT_EGRESS_BRIDGE : L2_PORT_BRIDGE;
    return _port_set(chip_id, port, id, _enable(argv[2]));
}

// l2 port WORD (unknown-unicast-act ACT | unknown-multicast-act ACT | broadcast-act ACT |
// static-mac-move (enable | disable))
i32 cli_l2_port_config(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr const char *kWhat[] = {"unknown-unicast-act", "unknown-multicast-act", "broadcast-act"};
    u32 port = 0;
    if (argc < 3 || !_port(chip_id, argv[0], &port)) {
        return SHR_E_PARAM;
    }
    const i32 id = _name_index(kWhat, argv[1]);
    const i32 act = _name_index(k_act_names, argv[2]);
    if (id < 0 || act < 0) {
        cli_output_show("Key [%s] Not Support for chip[%s]!\n", argv[1], shr_chip_name_get(chip_id));
        return SHR_E_NOT_SUPPORT;
    }
    return _port_set(chip_id, port, static_cast<u32>(id), static_cast<u32>(act));
}

// l2 egress-port WORD (unknown-unicast-act | unknown-multicast-act | multicast-act | broadcast-act)
// (drop | forward)
i32 cli_l2_egresss_port_config(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr const char *kWhat[] = {"unknown-unicast-act", "unknown-multicast-act", "multicast-act",
                                            "broadcast-act"};
    u32 port = 0;
    const i32 id = argc >= 3 ? _name_index(kWhat, argv[1]) : -1;
    if (id < 0 || !_port(chip_id, argv[0], &port)) {
        return SHR_E_PARAM;
    }
    return _port_set(chip_id, port, L2_PORT_EGRESS_UNKNOWN_UCAST + static_cast<u32>(id),
                     std::strcmp(argv[2], "forward") == 0);
}

// ---- limits --------------------------------------------------------------------------------

// l2 mac-limit {port (WORD |) | vlan-vfi | glb} (enable | disable)
i32 cli_l2_mac_limit_enable_config(u32 chip_id, u32, i32 argc, char **argv)
{
    l2_learn_limit l{};
    bool all = false;
    const i32 rc = _limit_scope(chip_id, argc, argv, &l, &all);
    if (rc != 0 || argc < 1) {
        return rc != 0 ? rc : SHR_E_PARAM;
    }
    l.flags |= L2_LIMIT_ENABLE;
    l.limit_en = _enable(argv[argc - 1]) ? 1 : 0;
    if ((l.flags & L2_LIMIT_GLOBAL) && (l.flags & L2_LIMIT_PORT)) {
        l2_learn_limit glb = l;
        glb.flags &= ~L2_LIMIT_PORT;
        const i32 g = _limit_apply(chip_id, glb, false);
        if (g != 0) {
            return g;
        }
        l.flags &= ~L2_LIMIT_GLOBAL;
    }
    return _limit_apply(chip_id, l, all);
}

// l2 mac-limit over-limit (port WORD | vid WORD | svp WORD) (enable | disable)
i32 cli_l2_mac_limit_over_limit_enable(u32 chip_id, u32, i32 argc, char **argv)
{
    l2_learn_limit l{};
    bool all = false;
    const i32 rc = _limit_scope(chip_id, argc, argv, &l, &all);
    if (rc != 0 || argc < 1) {
        return rc != 0 ? rc : SHR_E_PARAM;
    }
    l.flags |= L2_LIMIT_OVER_LIMIT_EN;
    l.over_limit_en = _enable(argv[argc - 1]) ? 1 : 0;
    return _limit_apply(chip_id, l, all);
}

// l2 mac-limit (port WORD | vid WORD | vfi WORD | svp WORD | glb) (threshold WORD |) action ACT
i32 cli_l2_mac_limit_config(u32 chip_id, u32, i32 argc, char **argv)
{
    l2_learn_limit l{};
    bool all = false;
    i32 rc = _limit_scope(chip_id, argc, argv, &l, &all);
    if (rc != 0 || argc < 2) {
        return rc != 0 ? rc : SHR_E_PARAM;
    }
    for (i32 i = 0; i + 1 < argc; i++) {
        if (std::strcmp(argv[i], "threshold") == 0) {
            if (!_num(argv[i + 1], &l.limit_value)) {
                return SHR_E_PARAM;
            }
            l.flags |= L2_LIMIT_VALUE | L2_LIMIT_ENABLE;
            l.limit_en = 1;
        }
    }
    l.flags |= L2_LIMIT_OVER_ACT;
    l.over_act = _limit_act(argv[argc - 1]);
    return _limit_apply(chip_id, l, all);
}

// l2 mac-limit del (port WORD | vid WORD | vfi WORD | svp WORD | glb): the
// limit off, the threshold back to its default.
i32 cli_l2_mac_limit_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    l2_learn_limit l{};
    bool all = false;
    const i32 rc = _limit_scope(chip_id, argc, argv, &l, &all);
    if (rc != 0) {
        return rc;
    }
    l.flags |= L2_LIMIT_ENABLE | L2_LIMIT_VALUE;
    l.limit_value = 65535;
    return _limit_apply(chip_id, l, all);
}

// show l2 mac-limit (port (WORD | ) | vid (WORD | ) | vfi (WORD | ) | svp (WORD | ) | glb)
i32 cli_l2_mac_limit_show(u32 chip_id, u32, i32 argc, char **argv)
{
    l2_learn_limit l{};
    bool all = false;
    i32 rc = _limit_scope(chip_id, argc, argv, &l, &all);
    if (rc != 0) {
        return rc;
    }
    cli_output_show("%-8s %-6s %-8s %-10s %-10s %s\n", "Scope", "Id", "Enable", "Threshold", "Count", "Action");
    cli_output_show("--------------------------------------------------------------\n");
    const u32 first = all ? 0 : l.port, last = all ? 31 : l.port;
    for (u32 p = first; p <= last; p++) {
        l2_learn_limit each = l;
        each.port = p;
        rc = l2_api_learn_limit_get(chip_id, &each);
        if (rc != 0) {
            return cli_call_failed("l2_api_learn_limit_get", rc);
        }
        const bool glb = (l.flags & L2_LIMIT_GLOBAL) != 0;
        cli_output_show("%-8s %-6u %-8u %-10u %-10u %u\n", glb ? "global" : "port", glb ? 0 : p, each.limit_en,
                   each.limit_value, each.mac_cnt, each.over_act);
    }
    return 0;
}

// ---- displays ------------------------------------------------------------------------------

// show l2
i32 cli_l2_status_info_show(u32 chip_id, u32, i32, char **)
{
    struct Row {
        const char *name;
        bool age; // an age control id, else a control id
        u32 id;
    };
    static constexpr Row kRows[] = {
        {"age time (s)", true, L2_AGE_TIME},          {"bidirectional aging", true, L2_AGE_TWO_WAY},
        {"age count refresh", true, L2_AGE_CNT_EN},   {"low-power aging", true, L2_AGE_LP_MODE},
        {"core clock (MHz)", true, L2_AGE_CLK_FREQ},  {"learn mode (1 hw)", false, L2_CTRL_LEARN_MODE},
        {"hash (1 crc, 2 xor)", false, L2_CTRL_HASH_MODE}, {"replace static", false, L2_CTRL_REPLACE_STATIC},
        {"replace dynamic", false, L2_CTRL_REPLACE_DYNAMIC}, {"replace full", false, L2_CTRL_REPLACE_FULL},
        {"move priorities", false, L2_CTRL_MOVE_PRI_MASK}, {"port limit mode", false, L2_CTRL_PORT_LIMIT_MODE},
    };
    u32 learn = 0;
    i32 rc = l2_api_learn_control_get(chip_id, 0, &learn);
    if (rc != 0) {
        return cli_call_failed("l2_api_learn_control_get", rc);
    }
    cli_output_show("%-24s : %s\n", "learning", learn ? "enable" : "disable");
    for (const Row &r : kRows) {
        u32 v = 0;
        rc = r.age ? l2_api_age_control_get(chip_id, r.id, &v) : l2_api_control_get(chip_id, r.id, &v);
        if (rc != 0) {
            return cli_call_failed(r.age ? "l2_api_age_control_get" : "l2_api_control_get", rc);
        }
        cli_output_show("%-24s : %u\n", r.name, v);
    }
    return 0;
}

// show l2 reserve-multicast
i32 cli_l2_reserved_multicast_info_show(u32 chip_id, u32, i32, char **)
{
    static constexpr const char *kNames[] = {"ipv4 default causeid", "ipv6 default causeid", "check mode (1 causeid)",
                                             "force broadcast"};
    for (u32 i = 0; i < 4; i++) {
        u32 v = 0;
        const i32 rc = l2_api_control_get(chip_id, L2_CTRL_RSV_IPV4_CAUSEID + i, &v);
        if (rc != 0) {
            return cli_call_failed("l2_api_control_get", rc);
        }
        cli_output_show("%-24s : %u\n", kNames[i], v);
    }
    return 0;
}

// show l2 ports WORD
i32 cli_l2_port_info_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return SHR_E_PARAM;
    }
    cli_output_show("%-6s %-16s %-16s %-16s %-7s %s\n", "Port", "Unknown-ucast", "Unknown-mcast", "Broadcast", "Bridge",
               "Learn");
    cli_output_show("----------------------------------------------------------------------------------\n");
    return _port_list_walk(chip_id, argv[0], [chip_id](u32 port) {
        u32 v[4] = {}, learn = 0;
        for (u32 id = 0; id < 4; id++) {
            const i32 rc = l2_api_port_control_get(chip_id, port, id, &v[id]);
            if (rc != 0) {
                return cli_call_failed("l2_api_port_control_get", rc);
            }
        }
        const i32 rc = l2_api_port_control_get(chip_id, port, L2_PORT_LEARN_MODE, &learn);
        if (rc != 0) {
            return cli_call_failed("l2_api_port_control_get", rc);
        }
        cli_output_show("%-6u %-16s %-16s %-16s %-7s %s\n", port, k_act_names[v[0]], k_act_names[v[1]], k_act_names[v[2]],
                   v[3] ? "enable" : "disable", k_learn_names[learn]);
        return 0;
    });
}

// show l2 move (ports WORD | tgids WORD | vps WORD)
i32 cli_l2_port_move_info_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return SHR_E_PARAM;
    }
    if (std::strcmp(argv[0], "vps") == 0) {
        cli_output_show("Key [%s] Not Support for chip[%s]!\n", argv[0], shr_chip_name_get(chip_id));
        return SHR_E_NOT_SUPPORT;
    }
    const u32 flag = std::strcmp(argv[0], "tgids") == 0 ? 1 : 0;
    cli_output_show("%-6s %-8s %s\n", flag ? "Tgid" : "Port", "Enable", "Pri");
    cli_output_show("----------------------\n");
    auto show = [chip_id, flag](u32 id) {
        l2_port_move_pri pri{flag, 0, 0, id};
        const i32 rc = l2_api_port_move_pri_get(chip_id, &pri);
        if (rc != 0) {
            return cli_call_failed("l2_api_port_move_pri_get", rc);
        }
        cli_output_show("%-6u %-8s %u\n", id, pri.enable ? "enable" : "disable", pri.pri);
        return 0;
    };
    return flag ? _id_list_walk(argv[1], show) : _port_list_walk(chip_id, argv[1], show);
}

// show l2 cnt
i32 cli_l2_counter_show(u32 chip_id, u32, i32, char **)
{
    static constexpr const char *kNames[] = {"static mac", "dynamic mac", "move succeeded", "move failed"};
    for (u32 type = 0; type < 4; type++) {
        u32 n = 0;
        const i32 rc = l2_api_mac_cnt_get(chip_id, type, &n);
        if (rc != 0) {
            return cli_call_failed("l2_api_mac_cnt_get", rc);
        }
        cli_output_show("%-16s : %u\n", kNames[type], n);
    }
    return 0;
}

// l2 thread (start | stop | start-sync | stop-sync): no thread of the
// service runs in this library.
i32 cli_l2_thread_status_set(u32 chip_id, u32, i32 argc, char **argv)
{
    const bool start = argc > 0 && std::strncmp(argv[0], "start", 5) == 0;
    const i32 rc = start ? l2_api_sync_start(chip_id) : l2_api_sync_stop(chip_id);
    return rc != 0 ? cli_call_failed(start ? "l2_api_sync_start" : "l2_api_sync_stop", rc) : 0;
}

// show l2 thread
i32 cli_l2_thread_show(u32 chip_id, u32, i32, char **)
{
    cli_output_show("l2 thread : %s\n", l2_api_thread_is_running(chip_id) > 0 ? "running" : "not running");
    return 0;
}

} // extern "C"

// ---- the records ---------------------------------------------------------------------------

namespace {

#define L2_ENTRY_KEY                                                                                      \
    "(mac XX:XX:XX:XX:XX:XX (vid WORD (vfi WORD|) | fid WORD | vfi WORD) | dip WORD {sip WORD | vid WORD} | " \
    "dipv6 WORD {sipv6 WORD | vid WORD})"

const char *const k_add_help[] = {"L2 table", "Add an entry", "MAC address key", "MAC address", "VLAN", "VLAN id",
                                  "Forwarding id", "Forwarding id", "Destination module", "Module id",
                                  "Destination port", "Logical port", "Destination port", "Logical port",
                                  "Destination trunk", "Trunk id", "Destination multicast group", "Group id",
                                  "Drop", "Cause id", "Cause id", "Redirect to the CPU", "Cause id", "Cause id",
                                  "Dynamic entry (default static)", "Outer VLAN", "Outer VLAN id", "Group",
                                  "Group id", "Source hit", "Destination hit", "Drop when hit as source",
                                  "Drop when hit as destination", "Pending", "A dynamic entry may cover it",
                                  "A dynamic entry may cover it and forward", nullptr};
const char *const k_del_help[] = {"L2 table", "Delete an entry", "Multicast entry", "MAC address key", "MAC address",
                                  "VLAN", "VLAN id", "VFI", "VFI id", "Forwarding id", "Forwarding id", "VFI",
                                  "VFI id", "Destination IPv4 key", "IPv4 address", "Source IPv4", "IPv4 address",
                                  "VLAN", "VLAN id", "Destination IPv6 key", "IPv6 address", "Source IPv6",
                                  "IPv6 address", "VLAN", "VLAN id", nullptr};
// Short lines: with its long definition the record must fit in one page
// of a client's download.
const char *const k_clear_help[] = {"Clear", "L2 entries", "All", "MAC", "MAC", "DIP", "IPv4", "DIP, SIP", "IPv4",
                                    "IPv4", "DIP, SIP, VLAN", "IPv4", "IPv4", "DIPv6", "IPv6", "DIPv6, SIPv6", "IPv6",
                                    "IPv6", "DIPv6, SIPv6, VLAN", "IPv6", "IPv6", "VLAN", "Id", "FID", "Id", "VFI",
                                    "Id", "Trunk", "Id", "Module", "Id", "Port", "Port", "DVP", "Id", "NHP", "Id",
                                    "ECMP", "Id", "Drop", "Cause", "Id", "To CPU", "Cause", "Id", "Group", "Id",
                                    "Outer VLAN", "Id", "Static", "Dynamic", "Remote", "Pending", nullptr};
const char *const k_show_help[] = {"Show", "L2", "Entries of the L2 table", "MAC address key", "MAC address",
                                   "VLAN", "VLAN id", "VFI", "VFI id", "Forwarding id", "Forwarding id", "VFI",
                                   "VFI id", "VLAN", "VLAN id", "VFI", "VFI id", "Forwarding id", "Forwarding id",
                                   "VFI", "VFI id", "Module", "Module id", "Port", "Logical port", "Trunk",
                                   "Trunk id", "Virtual port", "Virtual port id", "Drop entries", "Cause id",
                                   "Cause id", "To-CPU entries", "Cause id", "Cause id", "Every entry", nullptr};
const char *const k_num_help[] = {"Show", "L2", "Number of entries", "VLAN", "VLAN id", "Module", "Module id", "Port",
                                  "Logical port", "Trunk", "Trunk id", "Static entries", "Dynamic entries", nullptr};
const char *const k_aging_help[] = {"L2", "Aging time", "Seconds (0 stops aging)", nullptr};
const char *const k_aging_freq_help[] = {"L2", "Aging", "Core clock of the aging timer", "MHz", nullptr};
const char *const k_bidir_help[] = {"L2", "Bidirectional aging", "Enable", "Disable", nullptr};
const char *const k_lp_help[] = {"L2", "Aging", "Aging mode", "Low power", "Enable", "Disable", nullptr};
const char *const k_refresh_help[] = {"L2", "Age counter refresh", "Enable", "Disable", nullptr};
const char *const k_learn_help[] = {"L2", "Hardware learning", "Enable", "Disable", nullptr};
const char *const k_learn_mode_help[] = {"L2", "Who learns and ages", "Software", "Hardware", nullptr};
const char *const k_bridge_help[] = {"L2", "Port bridging", "Ingress port", "Logical port", "Egress port",
                                     "Logical port", "Enable", "Disable", nullptr};
const char *const k_port_learn_help[] = {"L2", "Port", "Logical port", "Learning mode", "Learn",
                                         "Learn and copy to the CPU", "Pending, copy to the CPU",
                                         "Pending, redirect to the CPU", "Do not learn", "Drop", "Forward",
                                         "Redirect to the CPU", "Copy to the CPU", nullptr};
const char *const k_event_help[] = {"L2", "Event messages to the CPU", "Learning", "Station move", "Aging",
                                    "CPU insert", "CPU delete", "CPU batched search", "Hash table full", "All",
                                    "Enable", "Disable", nullptr};
const char *const k_move_pri_help[] = {"L2", "Station move", "Move priority", "Priority 0 to 3", "Enable", "Disable",
                                       nullptr};
const char *const k_move_help[] = {"L2", "Station move", "Port", "Logical port", "Trunk", "Trunk id",
                                   "Virtual port", "Virtual port id", "Enable", "Disable", nullptr};
const char *const k_port_move_help[] = {"L2", "Move priority of a port", "Port", "Logical port", "Trunk", "Trunk id",
                                        "Virtual port", "Virtual port id", "Priority", "0 to 3", nullptr};
const char *const k_sta_move_help[] = {"L2", "Dynamic entry meets a static one", "Action when not forwarded",
                                       "Drop", "Redirect to the CPU", nullptr};
const char *const k_move_fail_help[] = {"L2", "Station move", "Action of a refused move", "Drop", "Forward",
                                        nullptr};
const char *const k_conflict_help[] = {"L2", "Action of a hash conflict", "Drop", "Forward", nullptr};
const char *const k_limit_en_help[] = {"L2", "MAC limit", "Port", "Logical port (all without)", "VLAN or VFI",
                                       "Global", "Enable", "Disable", nullptr};
const char *const k_over_help[] = {"L2", "MAC limit", "Over the limit", "Port", "Logical port", "VLAN", "VLAN id",
                                   "Source virtual port", "Id", "Enable", "Disable", nullptr};
const char *const k_limit_help[] = {"L2", "MAC limit", "Port", "Logical port", "VLAN", "VLAN id", "VFI", "VFI id",
                                    "Source virtual port", "Id", "Global", "Threshold", "Entries", "Over-limit action",
                                    "Forward without learning", "Drop", "Redirect to the CPU", nullptr};
const char *const k_limit_del_help[] = {"L2", "MAC limit", "Remove", "Port", "Logical port", "VLAN", "VLAN id",
                                        "VFI", "VFI id", "Source virtual port", "Id", "Global", nullptr};
const char *const k_limit_show_help[] = {"Show", "L2", "MAC limit", "Port", "Logical port", "VLAN", "VLAN id",
                                         "VFI", "VFI id", "Source virtual port", "Id", "Global", nullptr};
const char *const k_port_limit_help[] = {"L2", "Port limit mode", "Software", "Hardware", nullptr};
const char *const k_cpu_insert_help[] = {"L2", "CPU insert policy", "Replace a static entry",
                                         "Replace a dynamic entry", "Take a dynamic entry of a full bucket", "Enable",
                                         "Disable", nullptr};
const char *const k_rsv_mode_help[] = {"L2", "Reserved multicast", "Check mode", "By cause id", "By packet type",
                                       nullptr};
const char *const k_rsv_bc_help[] = {"L2", "Reserved multicast", "Forced broadcast", "Enable", "Disable", nullptr};
const char *const k_hash_help[] = {"L2", "Hash algorithm", "Zero", "CRC", "XOR", "CRC32 upper", "CRC32 lower",
                                   "CRC16 upper", "CRC16 lower", "LSB", nullptr};
const char *const k_ipmc_help[] = {"L2", "IP multicast keys", "Digest of DIP + SIP keys", "DIP selector 0",
                                   "DIP selector 1", "SIP selector 2", "SIP selector 3", "Digest of DIP keys",
                                   "Selector 0", "Selector 1", "Selector 2", "Selector 3", nullptr};
const char *const k_port_cfg_help[] = {"L2", "Port", "Logical port", "Unknown unicast", "Drop", "Flood",
                                       "Redirect to the CPU", "Copy to the CPU", "Unknown multicast", "Drop", "Flood",
                                       "Redirect to the CPU", "Copy to the CPU", "Broadcast", "Drop", "Flood",
                                       "Redirect to the CPU", "Copy to the CPU", "Static MAC move", "Enable",
                                       "Disable", nullptr};
const char *const k_egress_help[] = {"L2", "Egress port", "Logical port", "Unknown unicast", "Drop", "Forward",
                                     "Unknown multicast", "Drop", "Forward", "Multicast", "Drop", "Forward",
                                     "Broadcast", "Drop", "Forward", nullptr};
const char *const k_status_help[] = {"Show", "L2 settings", nullptr};
const char *const k_rsv_show_help[] = {"Show", "L2", "Reserved multicast", nullptr};
const char *const k_ports_show_help[] = {"Show", "L2", "Port settings", "Port list", nullptr};
const char *const k_move_show_help[] = {"Show", "L2", "Move priorities", "Ports", "Port list", "Trunks",
                                        "Trunk list", "Virtual ports", "Virtual port list", nullptr};
const char *const k_cnt_show_help[] = {"Show", "L2", "Counters", nullptr};
const char *const k_thread_help[] = {"L2", "Event thread", "Start", "Stop", nullptr};
const char *const k_sync_help[] = {"L2", "Event thread", "Start synchronising", "Stop synchronising", nullptr};
const char *const k_thread_show_help[] = {"Show", "L2", "Event thread", nullptr};

cli_cmd_desc g_l2_desc[] = {
    {"l2 add mac XX:XX:XX:XX:XX:XX (vid WORD | fid WORD) (modid WORD port WORD | port WORD | tgid WORD | mgid WORD | "
     "drop (causeid WORD | ) | redirect-to-cpu (causeid WORD | )) ({dynamic | ovid WORD | gid WORD | src-hit | "
     "dst-hit | src-drop | dst-drop | pending | dyn-cover-static | dyn-cover-static-fwd} | )",
     -1, cli_l2_addr_add, k_add_help, 0},
    {"l2 del (multicast | ) " L2_ENTRY_KEY, -1, cli_l2_entry_delete, k_del_help, 0},
    {"clear l2 (all | {(mac XX:XX:XX:XX:XX:XX | dip WORD | dip-sip WORD WROD | dip-sip-vlan WORD WROD | dipv6 WORD | "
     "dipv6-sipv6 WORD WROD | dipv6-sipv6-vlan WORD WROD) | vid WORD | fid WORD | vfi WORD | tgid WORD | modid WORD "
     "port WORD | dvp WORD | nhp WORD | ecmp WORD | drop (causeid WORD | ) | redirect-to-cpu (causeid WORD | ) | "
     "mgid WORD | ovid WORD | static | dynamic | remote | pending})",
     -1, cli_l2_entry_clear, k_clear_help, 0},
    {"l2 bidirect-aging (enable | disable)", -1, cli_l2_bidirect_aging_enable_config, k_bidir_help, 0},
    {"l2 aging WORD", -1, cli_l2_age_time_set, k_aging_help, 0},
    {"l2 aging mode low-power (enable | disable)", -1, cli_l2_age_lp_mode_enable_config, k_lp_help, 0},
    {"l2 aging-cnt-refresh (enable | disable)", -1, cli_l2_aging_timer_refresh_enable_config, k_refresh_help, 0},
    {"l2 aging freq WORD", -1, cli_l2_aging_freq_set, k_aging_freq_help, 0},
    {"l2 bridge (port WORD | egress-port WORD) (enable | disable)", -1, cli_l2_port_bridge_enable_config,
     k_bridge_help, 0},
    {"l2 learn (enable | disable)", -1, cli_l2_learn_enable_config, k_learn_help, 0},
    {"l2 learn-aging-mode (software | hardware)", -1, cli_l2_learn_age_mode_set, k_learn_mode_help, 0},
    {"l2 port WORD learn-mode (learn | learn-copy-to-cpu | pending-copy-to-cpu | pending-redirect-to-cpu | "
     "not-learn (drop | forward | redirect-to-cpu | copy-to-cpu))",
     -1, cli_l2_learn_port_mode_set, k_port_learn_help, 0},
    {"l2 event-to-cpu (learn | move | aging | cpu-insert | cpu-del | cpu-batch-search | hash-full | all) (enable | "
     "disable)",
     -1, cli_l2_event_to_cpu_enable_config, k_event_help, 0},
    {"l2 move pri WORD (enable | disable)", -1, cli_l2_move_act_enable_config, k_move_pri_help, 0},
    {"l2 move (port WORD| tgid WORD | vp WORD) (enable | disable)", -1, cli_l2_port_move_act_enable_config,
     k_move_help, 0},
    {"l2 port-move (port WORD| tgid WORD | vp WORD) pri WROD", -1, cli_l2_port_move_pri_set, k_port_move_help, 0},
    {"l2 dyn-cover-static not-forward-act (drop | redirect-to-cpu)", -1, cli_l2_dyn_move_sta_noforward_act_set,
     k_sta_move_help, 0},
    {"l2 move fail-act (drop | forward)", -1, cli_l2_move_fail_act_set, k_move_fail_help, 0},
    {"l2 hash-conflict-act (drop | forward)", -1, cli_l2_hash_conflict_act_set, k_conflict_help, 0},
    {"l2 mac-limit {port (WORD |)| vlan-vfi | glb} (enable | disable)", -1, cli_l2_mac_limit_enable_config,
     k_limit_en_help, 0},
    {"l2 mac-limit over-limit (port WORD |vid WORD | svp WORD) (enable | disable)", -1,
     cli_l2_mac_limit_over_limit_enable, k_over_help, 0},
    {"l2 mac-limit (port WORD |vid WORD | vfi WORD | svp WORD | glb) (threshold WORD |) action (forward | drop | "
     "redirect-to-cpu)",
     -1, cli_l2_mac_limit_config, k_limit_help, 0},
    {"l2 mac-limit del (port WORD |vid WORD | vfi WORD | svp WORD | glb)", -1, cli_l2_mac_limit_delete,
     k_limit_del_help, 0},
    {"show l2 mac-limit (port (WORD | ) |vid (WORD | ) | vfi (WORD | ) | svp (WORD | ) | glb)", -1,
     cli_l2_mac_limit_show, k_limit_show_help, 0},
    {"l2 port-limit-mode (software | hardware)", -1, cli_l2_port_limit_mode_set, k_port_limit_help, 0},
    {"l2 cpu-insert (replace-static| replace-dynamic |replace-full) (enable | disable)", -1,
     cli_l2_cpu_insert_mac_config, k_cpu_insert_help, 0},
    {"l2 reserve-multicast check-mode (causeid | pkt-type)", -1, cli_l2_reserved_multicast_check_mode_set,
     k_rsv_mode_help, 0},
    {"l2 reserve-multicast force-broadcast (enable | disable)", -1, cli_l2_reserved_multicast_enable_config,
     k_rsv_bc_help, 0},
    {"l2 hash-alg (zero | crc | xor | crc32-upper | crc32-lower | crc16-upper | crc16-lower | lsb)", -1,
     cli_l2_hash_alg_set, k_hash_help, 0},
    {"l2 ipmc (ipv6-ip-sel WORD WROD WORD WORD | ipv6-dip-sel WORD WORD WORD WORD)", -1,
     _cli_l2_ipmc_multicast_cfg_set, k_ipmc_help, 0},
    {"l2 port WORD (unknown-unicast-act (drop | flood | redirect-to-cpu | copy-to-cpu) | unknown-multicast-act (drop "
     "| flood | redirect-to-cpu | copy-to-cpu) | broadcast-act (drop | flood | redirect-to-cpu | copy-to-cpu) | "
     "static-mac-move (enable | disable))",
     -1, cli_l2_port_config, k_port_cfg_help, 0},
    {"l2 egress-port WORD (unknown-unicast-act (drop | forward) | unknown-multicast-act (drop | forward) | "
     "multicast-act (drop | forward) | broadcast-act (drop | forward))",
     -1, cli_l2_egresss_port_config, k_egress_help, 0},
    {"show l2", -1, cli_l2_status_info_show, k_status_help, 0},
    {"show l2 reserve-multicast", -1, cli_l2_reserved_multicast_info_show, k_rsv_show_help, 0},
    {"show l2 ports WORD", -1, cli_l2_port_info_show, k_ports_show_help, 0},
    {"show l2 move (ports WORD | tgids WORD | vps WORD)", -1, cli_l2_port_move_info_show, k_move_show_help, 0},
    {"show l2 cnt", -1, cli_l2_counter_show, k_cnt_show_help, 0},
    {"show l2 mac-info (mac XX:XX:XX:XX:XX:XX (vid WORD (vfi WORD | ) | fid WORD | vfi WORD) | vid WORD (vfi WORD | ) "
     "| fid WORD | vfi WORD | modid WORD port WORD | tgid WORD | vp WORD | drop (causeid WORD | ) | redirect-to-cpu "
     "(causeid WORD | ) | all)",
     -1, cli_l2_entry_show, k_show_help, 0},
    {"show l2 mac-num ({vid WORD | modid WORD port WORD | tgid WORD | static | dynamic} | )", -1,
     cli_l2_entry_num_batch_search_show, k_num_help, 0},
    {"l2 thread (start | stop)", -1, cli_l2_thread_status_set, k_thread_help, 0},
    {"l2 thread (start-sync | stop-sync)", -1, cli_l2_thread_status_set, k_sync_help, 0},
    {"show l2 thread", -1, cli_l2_thread_show, k_thread_show_help, 0},
};

constexpr u32 k_l2_commands = sizeof(g_l2_desc) / sizeof(g_l2_desc[0]);
cli_cmd_item g_l2_items[k_l2_commands];

} // namespace

extern "C" void cli_cmd_init_l2(void)
{
    cli_cmd_descs_link(g_l2_desc, g_l2_items, k_l2_commands, CLI_MODE_L2);
}
