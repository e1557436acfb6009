// Mode `qos`: priority maps, remark, the global switches, the common map
// of internal priorities to queues, flush, to-CPU enqueue, global redirect,
// capture, the queue checks, and policers.  The commands of the scheduler
// and the discard profiles come with those services.
#include <tide/qos.h>

#include <cstdio>
#include <cstring>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"

namespace {

constexpr cli_word k_policer_types[] = {{QOS_POLICER_SPORT, "sport"},
                                        {QOS_POLICER_DPORT, "dport"},
                                        {QOS_POLICER_TOCPU_CAUSEID, "tocpu-causeid"},
                                        {QOS_POLICER_SPORT_TOCPU_GROUP, "sport-tocpu-causeid-group"}};
constexpr cli_word k_modes[] = {{QOS_CAR_RFC2697, "rfc2697"},
                                {QOS_CAR_RFC2698, "rfc2698"},
                                {QOS_CAR_RFC4115, "rfc4115"},
                                {QOS_CAR_MEF10P2, "mef10p2"}};
constexpr cli_word k_acts[] = {{QOS_POLICER_ACT_DROP, "drop"},
                               {QOS_POLICER_ACT_PASS, "pass"},
                               {QOS_POLICER_ACT_NEW_COLOR, "new-color"},
                               {QOS_POLICER_ACT_NEW_INTL_PRI, "new-intl-pri"},
                               {QOS_POLICER_ACT_NEW_INTL_PRI_COLOR, "new-intl-pri-color"}};
constexpr cli_word k_colors[] = {{QOS_COLOR_GREEN, "green"}, {QOS_COLOR_YELLOW, "yellow"}, {QOS_COLOR_RED, "red"}};
constexpr cli_word k_map_types[] = {{QOS_MAP_OPRI, "opri"},
                                    {QOS_MAP_OPRI_OCFI, "opri-ocfi"},
                                    {QOS_MAP_IPRI, "ipri"},
                                    {QOS_MAP_IPRI_ICFI, "ipri-icfi"},
                                    {QOS_MAP_DSCP, "dscp"}};
constexpr cli_word k_remark_types[] = {{QOS_REMARK_OCFI, "ocfi"},      {QOS_REMARK_ICFI, "icfi"},
                                       {QOS_REMARK_DSCP, "dscp"},      {QOS_REMARK_TC, "tc"},
                                       {QOS_REMARK_IPRI, "ipri-exp2"}, {QOS_REMARK_OPRI, "opri-exp1"}};
constexpr cli_word k_tocpu_types[] = {{QOS_TOCPU_SNOOPING_DROP, "snooping-drop"},
                                      {QOS_TOCPU_CPU_QUEUE_ID, "cpu-queue-id"},
                                      {QOS_TOCPU_CPU_QUEUE_EN, "cpu-queue-en"},
                                      {QOS_TOCPU_TIME_EN, "time-en"}};

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

bool _is(const char *word, const char *what)
{
    return word != nullptr && xsal_strcmp(word, what) == 0;
}

i32 _bad_word(const char *word)
{
    cli_output_show("Parameter '%s' is invalid!\n", word != nullptr ? word : "");
    return SHR_E_PARAM;
}

template <size_t N>
i32 _word(const cli_word (&words)[N], const char *word, u32 *id)
{
    return word != nullptr && cli_word_id_get(words, word, id) ? SHR_E_NONE : _bad_word(word);
}

i32 _u32(const char *word, u32 *out)
{
    return cli_get_uint32_param(word, out) == SHR_E_NONE ? SHR_E_NONE : _bad_word(word);
}

i32 _u64(const char *word, u64 *out)
{
    return cli_get_uint64_param(word, out) == SHR_E_NONE ? SHR_E_NONE : _bad_word(word);
}

i32 _failed(const char *call, i32 rc)
{
    return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
}

// Calls `fn(id)` for each number of an id list; the first failure ends the
// walk and is returned.
template <typename Fn>
i32 _ids(const char *list, Fn fn)
{
    return cli_intlist_walk(list, fn);
}

u32 _on(const char *word)
{
    return _is(word, "enable") ? 1u : 0u;
}

// ---- policers ----------------------------------------------------------------------

// qos policer create TYPE ( profile-id WORD |)
i32 cli_qos_policer_create(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 type = 0, id = 0, with_id = 0;
    if (argc < 1) {
        return _bad_argc();
    }
    i32 rc = _word(k_policer_types, argv[0], &type);
    if (rc == SHR_E_NONE && argc >= 3) {
        with_id = 1;
        rc = _u32(argv[2], &id);
    }
    if (rc == SHR_E_NONE) {
        rc = _failed("qos_api_policer_create", qos_api_policer_create(chip_id, with_id, type, &id));
    }
    if (rc == SHR_E_NONE) {
        cli_output_show("policer %s profile-id %u created\n", argv[0], id);
    }
    return rc;
}

// qos policer destroy TYPE profile-id WORD
i32 cli_qos_policer_destroy(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 type = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    const i32 rc = _word(k_policer_types, argv[0], &type);
    return rc != SHR_E_NONE ? rc : _ids(argv[1], [&](u32 id) -> i32 {
        return _failed("qos_api_policer_destroy", qos_api_policer_destroy(chip_id, type, id));
    });
}

// Reads the rate words from `argv[at]` on: (bps | pps), the rate, the burst.
i32 _rate(char **argv, i32 at, qos_policer_cfg *c, u64 *rate, u64 *burst)
{
    c->rate_mode = _is(argv[at], "pps") ? 1 : 0;
    i32 rc = _u64(argv[at + 1], rate);
    return rc != SHR_E_NONE ? rc : _u64(argv[at + 2], burst);
}

i32 _compensation(i32 argc, char **argv, i32 at, qos_policer_cfg *c)
{
    if (at + 1 < argc && _is(argv[at], "compensation")) {
        c->flag |= QOS_POLICER_F_LEN_ADJ;
        return cli_get_int32_para(argv[at + 1], &c->len_adj) == SHR_E_NONE ? SHR_E_NONE : _bad_word(argv[at + 1]);
    }
    return SHR_E_NONE;
}

// qos policer single-bucket TYPE profile-id WORD (bps | pps) pir WORD pbs WORD (compensation WORD |)
i32 cli_qos_policer_single_bucket_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 5) {
        return _bad_argc();
    }
    u32 type = 0, id = 0;
    qos_policer_cfg c{};
    c.flag = QOS_POLICER_F_XIR | QOS_POLICER_F_XBS;
    i32 rc = _word(k_policer_types, argv[0], &type);
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[1], &id);
    }
    if (rc == SHR_E_NONE) {
        rc = _rate(argv, 2, &c, &c.xir, &c.xbs);
    }
    if (rc == SHR_E_NONE) {
        rc = _compensation(argc, argv, 5, &c);
    }
    return rc != SHR_E_NONE ? rc : _failed("qos_api_policer_set", qos_api_policer_set(chip_id, type, id, &c));
}

// qos policer double-bucket (sport | dport) profile-id WORD MODE (color-blind | color-aware) (bps | pps)
// cir WORD cbs WORD ({xir WORD | xbs WORD} | ) (compensation WORD |)
i32 cli_qos_policer_double_bucket_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 7) {
        return _bad_argc();
    }
    u32 type = 0, id = 0;
    qos_policer_cfg c{};
    c.flag = QOS_POLICER_F_MODE | QOS_POLICER_F_COLOR_MODE | QOS_POLICER_F_CIR | QOS_POLICER_F_CBS;
    c.color_mode = _is(argv[3], "color-aware") ? 1 : 0;
    i32 rc = _word(k_policer_types, argv[0], &type);
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[1], &id);
    }
    if (rc == SHR_E_NONE) {
        rc = _word(k_modes, argv[2], &c.mode);
    }
    if (rc == SHR_E_NONE) {
        rc = _rate(argv, 4, &c, &c.cir, &c.cbs);
    }
    i32 at = 7;
    while (rc == SHR_E_NONE && at + 1 < argc && !_is(argv[at], "compensation")) {
        const bool xir = _is(argv[at], "xir");
        c.flag |= xir ? QOS_POLICER_F_XIR : QOS_POLICER_F_XBS;
        rc = _u64(argv[at + 1], xir ? &c.xir : &c.xbs);
        at += 2;
    }
    if (rc == SHR_E_NONE) {
        rc = _compensation(argc, argv, at, &c);
    }
    return rc != SHR_E_NONE ? rc : _failed("qos_api_policer_set", qos_api_policer_set(chip_id, type, id, &c));
}

// qos policer-action (sport | dport) profile-id WORD COLOR (drop | pass | new-color COLOR | new-intl-pri WORD |
// new-intl-pri-color WORD COLOR)
i32 cli_qos_policer_action_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 4) {
        return _bad_argc();
    }
    u32 type = 0, id = 0, pri = 0;
    qos_policer_action a{};
    i32 rc = _word(k_policer_types, argv[0], &type);
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[1], &id);
    }
    if (rc == SHR_E_NONE) {
        rc = _word(k_colors, argv[2], &a.color);
    }
    if (rc == SHR_E_NONE) {
        rc = _word(k_acts, argv[3], &a.action);
    }
    if (rc == SHR_E_NONE && a.action == QOS_POLICER_ACT_NEW_COLOR) {
        rc = argc < 5 ? _bad_argc() : _word(k_colors, argv[4], &a.remark_color);
    } else if (rc == SHR_E_NONE && a.action >= QOS_POLICER_ACT_NEW_INTL_PRI) {
        rc = argc < 5 ? _bad_argc() : _u32(argv[4], &pri);
        a.remark_pri = static_cast<u8>(pri > 255 ? 255 : pri);
        if (rc == SHR_E_NONE && a.action == QOS_POLICER_ACT_NEW_INTL_PRI_COLOR) {
            rc = argc < 6 ? _bad_argc() : _word(k_colors, argv[5], &a.remark_color);
        }
    }
    return rc != SHR_E_NONE ? rc
                            : _failed("qos_api_policer_action_set", qos_api_policer_action_set(chip_id, type, id, &a));
}

// show qos policer TYPE profile-id (WORD | all)
i32 cli_qos_policer_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    u32 type = 0;
    i32 rc = _word(k_policer_types, argv[0], &type);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const bool all = _is(argv[1], "all");
    const u32 count = type <= QOS_POLICER_DPORT ? 32 : 512;
    cli_output_show("%-6s %-8s %-6s %-5s %-14s %-14s %-10s %-10s %-7s %s\n", "id", "mode", "color", "unit", "cir",
                    "xir", "cbs", "xbs", "len_adj", "actions (green yellow red)");
    cli_output_show("---------------------------------------------------------------------------------------------\n");
    auto show = [&](u32 id) -> i32 {
        u32 created = 0;
        i32 r = qos_api_policer_created_get(chip_id, type, id, &created);
        if (r != SHR_E_NONE || created == 0) {
            return all ? SHR_E_NONE : _failed("qos_api_policer_created_get", r != 0 ? r : SHR_E_NOT_FOUND);
        }
        qos_policer_cfg c{};
        r = qos_api_policer_get(chip_id, type, id, &c);
        if (r == SHR_E_NOT_FOUND && all) {
            return SHR_E_NONE; // a row the ACL holds
        }
        if (r != SHR_E_NONE) {
            return _failed("qos_api_policer_get", r);
        }
        char acts[64] = "-";
        qos_policer_actions a{};
        if (type <= QOS_POLICER_DPORT && qos_api_policer_action_get(chip_id, type, id, &a) == SHR_E_NONE) {
            snprintf(acts, sizeof(acts), "%s %s %s", cli_word_name_get(k_acts, a.action[0], "?"),
                     cli_word_name_get(k_acts, a.action[1], "?"), cli_word_name_get(k_acts, a.action[2], "?"));
        }
        cli_output_show("%-6u %-8s %-6s %-5s %-14lu %-14lu %-10lu %-10lu %-7d %s\n", id,
                        type <= QOS_POLICER_DPORT ? cli_word_name_get(k_modes, c.mode, "?") : "-",
                        c.color_mode ? "aware" : "blind", c.rate_mode ? "pps" : "bps", (unsigned long)c.cir,
                        (unsigned long)c.xir, (unsigned long)c.cbs, (unsigned long)c.xbs, (int)c.len_adj, acts);
        return SHR_E_NONE;
    };
    if (all) {
        for (u32 id = 0; id < count && rc == SHR_E_NONE; id++) {
            rc = show(id);
        }
        return rc;
    }
    return _ids(argv[1], show);
}

// The binding record of `argv` from `argv[0]`: TYPE WORD (WORD for the group).
i32 _bind_info(u32 chip_id, char **argv, i32 argc, qos_bind_info *b, i32 *next)
{
    i32 rc = _word(k_policer_types, argv[0], &b->type);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    *next = 2;
    switch (b->type) {
    case QOS_POLICER_TOCPU_CAUSEID:
        return _u32(argv[1], &b->causeid);
    case QOS_POLICER_SPORT_TOCPU_GROUP:
        *next = 3;
        if (argc < 3) {
            return _bad_argc();
        }
        rc = cli_pport_to_lport_checked(chip_id, argv[1], &b->lport);
        return rc != SHR_E_NONE ? rc : _u32(argv[2], &b->causeid_group);
    default:
        return cli_pport_to_lport_checked(chip_id, argv[1], &b->lport);
    }
}

// qos policer-bind (sport WORD | dport WORD | sport-tocpu-causeid-group WORD WORD | tocpu-causeid WORD)
// profile-id WORD
i32 cli_qos_policer_bind(u32 chip_id, u32, i32 argc, char **argv)
{
    qos_bind_info b{};
    i32 next = 0;
    if (argc < 3) {
        return _bad_argc();
    }
    i32 rc = _bind_info(chip_id, argv, argc, &b, &next);
    if (rc == SHR_E_NONE) {
        rc = next < argc ? _u32(argv[next], &b.policer_id) : _bad_argc();
    }
    return rc != SHR_E_NONE ? rc : _failed("qos_api_policer_bind", qos_api_policer_bind(chip_id, &b));
}

// qos policer-unbind (sport WORD | dport WORD | sport-tocpu-causeid-group WORD WORD | tocpu-causeid WORD)
i32 cli_qos_policer_unbind(u32 chip_id, u32, i32 argc, char **argv)
{
    qos_bind_info b{};
    i32 next = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    const i32 rc = _bind_info(chip_id, argv, argc, &b, &next);
    return rc != SHR_E_NONE ? rc : _failed("qos_api_policer_unbind", qos_api_policer_unbind(chip_id, &b));
}

// show qos policer-bind-info (sports WORD | dports WORD | tocpu-causeids WORD | sport-tocpu-causeid-group
// sports WORD)
i32 cli_qos_policer_bind_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    cli_output_show("%-16s %s\n", "member", "profile-id");
    cli_output_show("--------------------------------\n");
    if (_is(argv[0], "tocpu-causeids")) {
        return _ids(argv[1], [&](u32 cause) -> i32 {
            qos_bind_info b{QOS_POLICER_TOCPU_CAUSEID, cause, 0, 0, 0};
            const i32 rc = _failed("qos_api_policer_bind_get", qos_api_policer_bind_get(chip_id, &b));
            if (rc == SHR_E_NONE) {
                cli_output_show("%-16u %u\n", cause, b.policer_id);
            }
            return rc;
        });
    }
    const u32 type = _is(argv[0], "dports") ? QOS_POLICER_DPORT
                     : _is(argv[0], "sports") ? QOS_POLICER_SPORT
                                              : QOS_POLICER_SPORT_TOCPU_GROUP;
    const char *list = type == QOS_POLICER_SPORT_TOCPU_GROUP ? (argc >= 3 ? argv[2] : nullptr) : argv[1];
    if (list == nullptr) {
        return _bad_argc();
    }
    return cli_pport_list_walk(chip_id, list, [&](u32 lport, const char *pport) -> i32 {
        qos_bind_info b{type, 0, 0, lport, 0};
        const i32 rc = _failed("qos_api_policer_bind_get", qos_api_policer_bind_get(chip_id, &b));
        if (rc == SHR_E_NONE) {
            cli_output_show("%-16s %u\n", pport, b.policer_id);
        }
        return rc;
    });
}

// ---- maps, remark, switches -----------------------------------------------------------

// qos common-map intl-pri-to-cosq WORD WORD | ... (the others are of chip types 1 and 2)
i32 cli_qos_common_map_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3) {
        return _bad_argc();
    }
    qos_common_map_cfg c{};
    i32 rc = SHR_E_NONE;
    u32 key = 0, value = 0;
    if (_is(argv[0], "intl-pri-to-cosq")) {
        c.type = QOS_COMMON_MAP_INTL_PRI_TO_COSQ;
        rc = _u32(argv[1], &key);
        c.intl_pri = static_cast<u8>(key > 255 ? 255 : key);
        if (rc == SHR_E_NONE) {
            rc = _u32(argv[2], &c.cosq);
        }
    } else if (_is(argv[0], "dpid-to-dp-group")) {
        c.type = QOS_COMMON_MAP_DPID_TO_DP_GROUP;
        rc = _u32(argv[1], &c.dpid);
        if (rc == SHR_E_NONE) {
            rc = _u32(argv[2], &c.dp_group);
        }
    } else if (_is(argv[0], "causeid-to-causeid-group")) {
        c.type = QOS_COMMON_MAP_CAUSEID_TO_GROUP;
        rc = _u32(argv[1], &c.causeid);
        if (rc == SHR_E_NONE) {
            rc = _u32(argv[2], &value);
        }
        c.causeid_group = value;
        c.enable = argc > 3 ? _on(argv[3]) : 0;
    } else {
        cli_output_show("chip type (%u) not support common map %s\n", shr_chip_type_get(chip_id), argv[0]);
        return SHR_E_NOT_SUPPORT;
    }
    return rc != SHR_E_NONE ? rc : _failed("qos_api_common_map_ctrl_set", qos_api_common_map_ctrl_set(chip_id, &c));
}

// show qos common-map intl-pri-to-cosq | ...
i32 cli_qos_common_map_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    if (!_is(argv[0], "intl-pri-to-cosq")) {
        cli_output_show("chip type (%u) not support common map %s\n", shr_chip_type_get(chip_id), argv[0]);
        return SHR_E_NOT_SUPPORT;
    }
    cli_output_show("%-10s %s\n", "intl-pri", "cosq");
    cli_output_show("----------------\n");
    for (u32 pri = 0; pri < 8; pri++) {
        qos_common_map_cfg c{};
        c.type = QOS_COMMON_MAP_INTL_PRI_TO_COSQ;
        c.intl_pri = static_cast<u8>(pri);
        const i32 rc = _failed("qos_api_common_map_ctrl_get", qos_api_common_map_ctrl_get(chip_id, &c));
        if (rc != SHR_E_NONE) {
            return rc;
        }
        cli_output_show("%-10u %u\n", pri, c.cosq);
    }
    return SHR_E_NONE;
}

// The key of a priority map from its type word on: opri WORD | opri-ocfi WORD WORD | ipri WORD | ipri-icfi
// WORD WORD | dscp WORD; the index after it.
i32 _map_key(char **argv, i32 argc, i32 at, u32 *type, qos_map_cfg *m, i32 *next)
{
    i32 rc = _word(k_map_types, argv[at], type);
    u32 a = 0, b = 0;
    const bool two = *type == QOS_MAP_OPRI_OCFI || *type == QOS_MAP_IPRI_ICFI;
    if (rc == SHR_E_NONE) {
        rc = at + (two ? 2 : 1) < argc ? _u32(argv[at + 1], &a) : _bad_argc();
    }
    if (rc == SHR_E_NONE && two) {
        rc = _u32(argv[at + 2], &b);
    }
    const u8 a8 = static_cast<u8>(a > 255 ? 255 : a);
    if (*type == QOS_MAP_DSCP) {
        m->dscp = a8;
    } else {
        m->pri = a8;
        m->cfi = static_cast<u8>(b > 255 ? 255 : b);
    }
    *next = at + (two ? 3 : 2);
    return rc;
}

// qos priority-map WORD type (opri WORD | opri-ocfi WORD WORD | ipri WORD | ipri-icfi WORD WORD | dscp WORD
// (replace-dscp WORD |) | exp WORD | untag) intl-pri WORD color (green | yellow | red)
i32 cli_qos_priority_map_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 4) {
        return _bad_argc();
    }
    u32 map_id = 0, type = 0;
    qos_map_cfg m{};
    i32 next = 0;
    i32 rc = _u32(argv[0], &map_id);
    if (rc == SHR_E_NONE && (_is(argv[1], "exp") || _is(argv[1], "untag"))) {
        cli_output_show("chip type (%u) not support priority map type %s\n", shr_chip_type_get(chip_id), argv[1]);
        return SHR_E_NOT_SUPPORT;
    }
    if (rc == SHR_E_NONE) {
        rc = _map_key(argv, argc, 1, &type, &m, &next);
    }
    if (rc == SHR_E_NONE && next < argc && _is(argv[next], "replace-dscp")) {
        cli_output_show("chip type (%u) not support replace-dscp\n", shr_chip_type_get(chip_id));
        return SHR_E_NOT_SUPPORT;
    }
    if (rc == SHR_E_NONE) {
        rc = next + 1 < argc ? _u32(argv[next], &m.intl_pri) : _bad_argc();
    }
    if (rc == SHR_E_NONE) {
        rc = _word(k_colors, argv[next + 1], &m.color);
    }
    return rc != SHR_E_NONE ? rc
                            : _failed("qos_api_priority_map_set", qos_api_priority_map_set(chip_id, type, map_id, &m));
}

// show qos priority-map type TYPE map-ids WORD
i32 cli_qos_priority_map_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    u32 type = 0;
    i32 rc = _word(k_map_types, argv[0], &type);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const bool cfi = type == QOS_MAP_OPRI_OCFI || type == QOS_MAP_IPRI_ICFI;
    const u32 keys = type == QOS_MAP_DSCP ? 64 : 8;
    cli_output_show("%-7s %-5s %-4s %-9s %s\n", "map-id", argv[0], "cfi", "intl-pri", "color");
    cli_output_show("------------------------------------\n");
    return _ids(argv[1], [&](u32 map_id) -> i32 {
        for (u32 k = 0; k < keys; k++) {
            for (u32 c = 0; c <= (cfi ? 1u : 0u); c++) {
                qos_map_cfg m{};
                m.dscp = static_cast<u8>(k);
                m.pri = static_cast<u8>(k);
                m.cfi = static_cast<u8>(c);
                const i32 r = _failed("qos_api_priority_map_get", qos_api_priority_map_get(chip_id, type, map_id, &m));
                if (r != SHR_E_NONE) {
                    return r;
                }
                cli_output_show("%-7u %-5u %-4u %-9u %s\n", map_id, k, c, m.intl_pri,
                                cli_word_name_get(k_colors, m.color, "?"));
            }
        }
        return SHR_E_NONE;
    });
}

// qos priority-map glb pri-sel (use-original | use-remarkd)
i32 cli_qos_priority_glb_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    const u32 v = _is(argv[argc - 1], "use-remarkd") ? 1 : 0;
    return _failed("qos_api_ctrl_set", qos_api_ctrl_set(chip_id, QOS_CTRL_BA_TAG, v));
}

// One global switch with the words of its two values.
i32 _ctrl_show(u32 chip_id, u32 type, const char *label, const char *off, const char *on)
{
    u32 v = 0;
    const i32 rc = _failed("qos_api_ctrl_get", qos_api_ctrl_get(chip_id, type, &v));
    if (rc == SHR_E_NONE) {
        cli_output_show("%s : %s\n", label, v ? on : off);
    }
    return rc;
}

i32 cli_qos_priority_glb_show(u32 chip_id, u32, i32, char **)
{
    return _ctrl_show(chip_id, QOS_CTRL_BA_TAG, "pri-sel", "use-original", "use-remarkd");
}

// qos remark WORD intl-pri WORD color COLOR TYPE WORD (WORD|)
i32 cli_qos_remark_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 5) {
        return _bad_argc();
    }
    u32 id = 0, type = 0, value = 0;
    qos_remark_cfg r{};
    i32 rc = _u32(argv[0], &id);
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[1], &r.intl_pri);
    }
    if (rc == SHR_E_NONE) {
        rc = _word(k_colors, argv[2], &r.color);
    }
    if (rc == SHR_E_NONE && _is(argv[3], "mpls-opri-ocfi")) {
        cli_output_show("Not support remark type %u \n", 6u);
        return SHR_E_NOT_SUPPORT;
    }
    if (rc == SHR_E_NONE) {
        rc = _word(k_remark_types, argv[3], &type);
    }
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[4], &value);
    }
    const u16 v = static_cast<u16>(value > 65535 ? 65535 : value);
    r.tc = r.dscp = r.pri = r.cfi = v;
    return rc != SHR_E_NONE ? rc : _failed("qos_api_remark_set", qos_api_remark_set(chip_id, type, id, &r));
}

// show qos remark TYPE remark-ids WORD
i32 cli_qos_remark_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    u32 type = 0;
    const i32 rc = _word(k_remark_types, argv[0], &type);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    cli_output_show("%-10s %-9s %-7s %s\n", "remark-id", "intl-pri", "color", argv[0]);
    cli_output_show("------------------------------------\n");
    return _ids(argv[1], [&](u32 id) -> i32 {
        for (u32 pri = 0; pri < 8; pri++) {
            for (u32 color = 0; color < 3; color++) {
                qos_remark_cfg r{pri, color, 0, 0, 0, 0};
                const i32 e = _failed("qos_api_remark_get", qos_api_remark_get(chip_id, type, id, &r));
                if (e != SHR_E_NONE) {
                    return e;
                }
                const u32 v = type == QOS_REMARK_TC     ? r.tc
                              : type == QOS_REMARK_DSCP ? r.dscp
                              : type <= QOS_REMARK_ICFI ? r.cfi
                                                        : r.pri;
                cli_output_show("%-10u %-9u %-7s %u\n", id, pri, cli_word_name_get(k_colors, color, "?"), v);
            }
        }
        return SHR_E_NONE;
    });
}

// qos remark glb (tunnel (usr-pri-cfi | usr-tc-dscp) (enable | disable) | priority (acl-high | remark-high))
i32 cli_qos_remark_glb_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    if (_is(argv[0], "priority")) {
        return _failed("qos_api_ctrl_set",
                       qos_api_ctrl_set(chip_id, QOS_CTRL_PHB_PRI, _is(argv[1], "remark-high") ? 1 : 0));
    }
    if (argc < 3) {
        return _bad_argc();
    }
    const u32 type = _is(argv[1], "usr-tc-dscp") ? QOS_CTRL_TUNNEL_USR_TC_DSCP : QOS_CTRL_TUNNEL_USR_PRI_CFI;
    return _failed("qos_api_ctrl_set", qos_api_ctrl_set(chip_id, type, _on(argv[2])));
}

i32 cli_qos_remark_glb_show(u32 chip_id, u32, i32, char **)
{
    return _ctrl_show(chip_id, QOS_CTRL_PHB_PRI, "priority", "acl-high", "remark-high");
}

// ---- flush, to-CPU enqueue, redirect, capture -------------------------------------------

// qos flush (ports WORD | dpids WORD)
i32 cli_qos_flush_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    if (_is(argv[0], "dpids")) {
        return _ids(argv[1], [&](u32 dpid) -> i32 {
            qos_flush_cfg f{QOS_FLUSH_DP, 0, dpid};
            return _failed("qos_api_flush_set", qos_api_flush_set(chip_id, &f));
        });
    }
    return cli_pport_list_walk(chip_id, argv[1], [&](u32 lport, const char *) -> i32 {
        qos_flush_cfg f{QOS_FLUSH_PORT, lport, 0};
        return _failed("qos_api_flush_set", qos_api_flush_set(chip_id, &f));
    });
}

// qos tocpu-enqueue-cfg cpu-causeids WORD (cpu-queue-en (enable | disable) | cpu-queue-id WORD |
// snooping-drop (enable | disable) | time-en (enable | disable))
i32 cli_qos_tocpu_enqueue_cfg_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3) {
        return _bad_argc();
    }
    u32 type = 0, queue = 0;
    i32 rc = _word(k_tocpu_types, argv[1], &type);
    if (rc == SHR_E_NONE && type == QOS_TOCPU_CPU_QUEUE_ID) {
        rc = _u32(argv[2], &queue);
    }
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const u32 on = _on(argv[2]);
    qos_tocpu_cfg c{on, on, queue, on};
    return _ids(argv[0], [&](u32 cause) -> i32 {
        qos_tocpu_key k{cause};
        return _failed("qos_api_tocpu_enqueue_set", qos_api_tocpu_enqueue_set(chip_id, type, &k, &c));
    });
}

// show qos tocpu-enqueue-cfg cpu-causeids WORD
i32 cli_qos_tocpu_enqueue_cfg_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    cli_output_show("%-8s %-14s %-13s %-13s %s\n", "causeid", "snooping-drop", "cpu-queue-en", "cpu-queue-id",
                    "time-en");
    cli_output_show("------------------------------------------------------------\n");
    return _ids(argv[0], [&](u32 cause) -> i32 {
        qos_tocpu_key k{cause};
        qos_tocpu_cfg c{};
        const i32 rc = _failed("qos_api_tocpu_enqueue_get", qos_api_tocpu_enqueue_get(chip_id, &k, &c));
        if (rc == SHR_E_NONE) {
            cli_output_show("%-8u %-14u %-13u %-13u %u\n", cause, c.snooping_drop, c.cpu_queue_en, c.cpu_queue_id,
                            c.time_en);
        }
        return rc;
    });
}

// Read, change, write of the global redirect record.
template <typename Fn>
i32 _redirect_change(u32 chip_id, Fn change)
{
    qos_redirect_cfg r{};
    i32 rc = qos_api_redirect_glb_get(chip_id, &r);
    if (rc == SHR_E_NONE) {
        rc = change(&r);
    }
    if (rc == SHR_E_NONE) {
        rc = qos_api_redirect_glb_set(chip_id, &r);
    }
    if (rc != SHR_E_NONE) {
        cli_output_show(" redirect glb set failed, errmsg : %s \n", shr_errmsg(rc));
    }
    return rc;
}

// qos redirect (to-cpu | to-eth) port-id WORD queue-offset WORD
i32 cli_qos_redir_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3) {
        return _bad_argc();
    }
    return _redirect_change(chip_id, [&](qos_redirect_cfg *r) -> i32 {
        r->redir_flag = _is(argv[0], "to-cpu") ? QOS_REDIR_TO_CPU : QOS_REDIR_TO_ETH;
        const i32 rc = cli_pport_to_lport_checked(chip_id, argv[1], &r->lport);
        return rc != SHR_E_NONE ? rc : _u32(argv[2], &r->queue_offset);
    });
}

// qos redirect drop-pkt (enable | disable)
i32 cli_qos_redir_drop_pkt_en_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    return _redirect_change(chip_id, [&](qos_redirect_cfg *r) -> i32 {
        r->drop_pkt_en = _on(argv[argc - 1]);
        return SHR_E_NONE;
    });
}

// qos redirect causeids WORD (enable | disable)
i32 cli_qos_redir_causeid_en_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    const u32 on = _on(argv[1]);
    return _ids(argv[0], [&](u32 cause) -> i32 {
        return _failed("qos_api_redirect_cause_enable_set", qos_api_redirect_cause_enable_set(chip_id, cause, on));
    });
}

// show qos redirect (causeids WORD |)
i32 cli_qos_redir_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc >= 2) {
        cli_output_show("%-8s %s\n", "causeid", "redirect");
        cli_output_show("------------------\n");
        return _ids(argv[1], [&](u32 cause) -> i32 {
            u32 on = 0;
            const i32 rc =
                _failed("qos_api_redirect_cause_enable_get", qos_api_redirect_cause_enable_get(chip_id, cause, &on));
            if (rc == SHR_E_NONE) {
                cli_output_show("%-8u %s\n", cause, on ? "enable" : "disable");
            }
            return rc;
        });
    }
    qos_redirect_cfg r{};
    const i32 rc = _failed("qos_api_redirect_glb_get", qos_api_redirect_glb_get(chip_id, &r));
    if (rc == SHR_E_NONE) {
        char pport[CLI_PPORT_SIZE] = "";
        if (cli_lport_to_pport(chip_id, r.lport, pport) != SHR_E_NONE) {
            snprintf(pport, sizeof(pport), "%u", r.lport);
        }
        cli_output_show("redirect     : %s\n", r.redir_flag == QOS_REDIR_TO_CPU ? "to-cpu" : "to-eth");
        cli_output_show("port         : %s\n", pport);
        cli_output_show("queue-offset : %u\n", r.queue_offset);
        cli_output_show("drop-pkt     : %s\n", r.drop_pkt_en ? "enable" : "disable");
    }
    return rc;
}

// qos capture num WORD dport WORD queue-offset WORD
i32 cli_qos_capture_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3) {
        return _bad_argc();
    }
    qos_capture_info now{};
    i32 rc = _failed("qos_api_capture_status_get", qos_api_capture_status_get(chip_id, &now));
    qos_capture_cfg c{now.flags, 0, 0, 0};
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[0], &c.cap_num);
    }
    if (rc == SHR_E_NONE) {
        rc = cli_pport_to_lport_checked(chip_id, argv[1], &c.lport);
    }
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[2], &c.queue_offset);
    }
    return rc != SHR_E_NONE ? rc : _failed("qos_api_capture_set", qos_api_capture_set(chip_id, &c));
}

// qos capture causeid-index WORD cuaseid WORD
i32 cli_qos_capture_causeid_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    u32 index = 0, cause = 0;
    i32 rc = _u32(argv[0], &index);
    if (rc == SHR_E_NONE) {
        rc = _u32(argv[1], &cause);
    }
    return rc != SHR_E_NONE ? rc
                            : _failed("qos_api_capture_causeid_set", qos_api_capture_causeid_set(chip_id, index, cause));
}

// qos capture {causeid | ex-len-1588} (start | stop)
i32 cli_qos_capture_start(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    qos_capture_info now{};
    i32 rc = _failed("qos_api_capture_status_get", qos_api_capture_status_get(chip_id, &now));
    if (rc != SHR_E_NONE) {
        return rc;
    }
    u32 flags = 0;
    for (i32 i = 0; i + 1 < argc; i++) {
        flags |= _is(argv[i], "ex-len-1588") ? QOS_CAPTURE_EX_LEN_1588 : QOS_CAPTURE_ON;
    }
    const bool start = _is(argv[argc - 1], "start");
    qos_capture_cfg c{start ? (now.flags | flags) : (now.flags & ~flags), now.cap_pid, now.cap_num, now.cap_qid};
    return _failed("qos_api_capture_set", qos_api_capture_set(chip_id, &c));
}

// show qos capture
i32 cli_qos_capture_show(u32 chip_id, u32, i32, char **)
{
    qos_capture_info i{};
    i32 rc = _failed("qos_api_capture_status_get", qos_api_capture_status_get(chip_id, &i));
    if (rc != SHR_E_NONE) {
        return rc;
    }
    cli_output_show("capture      : %s\n", (i.flags & QOS_CAPTURE_ON) ? "start" : "stop");
    cli_output_show("dport        : %u\n", i.cap_pid);
    cli_output_show("num          : %u\n", i.cap_num);
    cli_output_show("queue-offset : %u\n", i.cap_qid);
    cli_output_show("captured     : %u\n", i.cap_cnt);
    for (u32 index = 0; index < 4 && rc == SHR_E_NONE; index++) {
        u32 cause = 0;
        rc = _failed("qos_api_capture_causeid_get", qos_api_capture_causeid_get(chip_id, index, &cause));
        if (rc == SHR_E_NONE) {
            cli_output_show("causeid[%u]   : %u\n", index, cause);
        }
    }
    return rc;
}

// ---- statistics and status ---------------------------------------------------------------

// One counter of a key, printed as "<what> <id> : packets bytes" or as a
// cell count.
i32 _cnt_line(u32 chip_id, u32 type, const char *what, u32 id, qos_counter_key key)
{
    qos_counter_info i{};
    const i32 rc = _failed("qos_api_counter_info_get", qos_api_counter_info_get(chip_id, type, &key, &i));
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (i.valid_mask & QOS_COUNTER_VALID_CELL) {
        cli_output_show("%-10s %-6u cells %u\n", what, id, i.cell_num);
    } else {
        cli_output_show("%-10s %-6u packets %-14lu bytes %lu\n", what, id, (unsigned long)i.pkt_num,
                        (unsigned long)i.byte_num);
    }
    return SHR_E_NONE;
}

i32 _clear(u32 chip_id, u32 type, qos_clear_key key)
{
    return _failed("qos_api_counter_status_clear", qos_api_counter_status_clear(chip_id, type, &key));
}

// The history watcher's types of a member word: highest and lowest of one
// member, and of all members; 0 for none.
struct HisWords {
    const char *word;
    u32 one_max, one_min, all_max, all_min;
};
constexpr HisWords k_his[] = {{"queue", 9, 13, 16, 19},  {"port", 11, 14, 18, 20},   {"dpid", 10, 0, 17, 0},
                              {"glb-mc", 0, 0, 21, 22}, {"glb-share", 0, 0, 12, 15}, {"fbm-left", 0, 0, 23, 24}};

i32 _his_show(u32 chip_id, i32 argc, char **argv)
{
    const HisWords *h = nullptr;
    for (const HisWords &w : k_his) {
        h = _is(argv[1], w.word) ? &w : h;
    }
    if (h == nullptr) {
        return _bad_word(argv[1]);
    }
    const bool one = argc > 2 && !_is(argv[2], "all") && !_is(argv[2], "clear");
    const u32 types[2] = {one ? h->one_max : h->all_max, one ? h->one_min : h->all_min};
    u32 id = 0;
    if (one && _u32(argv[2], &id) != SHR_E_NONE) {
        return SHR_E_PARAM;
    }
    const qos_counter_key key{id, id, id, 0};
    i32 rc = SHR_E_NONE;
    for (u32 k = 0; k < 2 && rc == SHR_E_NONE; k++) {
        if (types[k] != 0) {
            rc = _cnt_line(chip_id, types[k], k == 0 ? "highest" : "lowest", id, key);
        }
    }
    if (rc == SHR_E_NONE && _is(argv[argc - 1], "clear")) {
        rc = _clear(chip_id, 5, qos_clear_key{});
    }
    return rc;
}

// show qos cnt (queues-not-empty (WORD|all) | fwd-drop (ports WORD | queues WORD) | his-min-max (...)) (clear|)
i32 cli_qos_counter_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    const bool clear = _is(argv[argc - 1], "clear");
    if (_is(argv[0], "his-min-max")) {
        return _his_show(chip_id, argc, argv);
    }
    if (_is(argv[0], "queues-not-empty")) {
        auto one = [&](u32 q) -> i32 {
            qos_counter_key key{0, 0, q, 0};
            qos_counter_info i{};
            const i32 rc = _failed("qos_api_counter_info_get", qos_api_counter_info_get(chip_id, 0, &key, &i));
            if (rc == SHR_E_NONE && i.pkt_num != 0) {
                cli_output_show("queue %-6u packets %lu\n", q, (unsigned long)i.pkt_num);
            }
            return rc;
        };
        if (!_is(argv[1], "all")) {
            return _ids(argv[1], one);
        }
        i32 rc = SHR_E_NONE;
        for (u32 q = 0; q < 256 && rc == SHR_E_NONE; q++) {
            rc = one(q);
        }
        return rc;
    }
    if (argc < 3) {
        return _bad_argc();
    }
    if (_is(argv[1], "queues")) {
        return _ids(argv[2], [&](u32 q) -> i32 {
            const qos_counter_key key{0, 0, q, 0};
            i32 rc = _cnt_line(chip_id, 1, "forwarded", q, key);
            if (rc == SHR_E_NONE) {
                rc = _cnt_line(chip_id, 2, "dropped", q, key);
            }
            if (rc == SHR_E_NONE && clear) {
                rc = _clear(chip_id, 2, qos_clear_key{0, q, 0});
            }
            return rc == SHR_E_NONE && clear ? _clear(chip_id, 3, qos_clear_key{0, q, 0}) : rc;
        });
    }
    return cli_pport_list_walk(chip_id, argv[2], [&](u32 lport, const char *) -> i32 {
        const i32 rc = _cnt_line(chip_id, 3, "port-out", lport, qos_counter_key{lport, 0, 0, 0});
        return rc == SHR_E_NONE && clear ? _clear(chip_id, 1, qos_clear_key{lport, 0, 0}) : rc;
    });
}

// show qos status (port-not-empty | queue-not-empty | backpressure | ram-share-mode | port-flush)
i32 cli_qos_status_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    if (_is(argv[0], "ram-share-mode")) {
        return _ctrl_show(chip_id, QOS_CTRL_FBM_SHARE_RAM, "ram-share-mode", "0", "1");
    }
    const bool queues = _is(argv[0], "queue-not-empty");
    const u32 type = queues ? 0 : _is(argv[0], "port-flush") ? 10 : _is(argv[0], "port-not-empty") ? 1 : 2;
    auto one = [&](u32 id, const char *name) -> i32 {
        qos_status_key key{id, id, 0};
        u32 st = 0;
        const i32 rc = _failed("qos_api_status_info_get", qos_api_status_info_get(chip_id, type, &key, &st));
        if (rc == SHR_E_NONE && st != 0) {
            cli_output_show("%s %-6s : %s\n", queues ? "queue" : "port", name, argv[0]);
        }
        return rc;
    };
    i32 rc = SHR_E_NONE;
    char name[CLI_PPORT_SIZE] = "";
    if (queues) {
        for (u32 q = 0; q < 256 && rc == SHR_E_NONE; q++) {
            snprintf(name, sizeof(name), "%u", q);
            rc = one(q, name);
        }
        return rc;
    }
    u32 lport = 0;
    for (i32 prev = -1; rc == SHR_E_NONE && cli_port_list_next_lport_get(chip_id, 0, prev, &lport, name) == 0;
         prev = static_cast<i32>(lport)) {
        rc = one(lport, name);
    }
    return rc;
}

// ---- checks ------------------------------------------------------------------------------

// show qos congestion queue WORD
i32 cli_qos_que_congestion_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    return _ids(argv[0], [&](u32 qid) -> i32 {
        qos_check_key k{0, qid};
        qos_check_result r{};
        const i32 rc = _failed("qos_api_que_congestion_check", qos_api_que_congestion_check(chip_id, &k, &r));
        for (u32 i = 0; rc == SHR_E_NONE && i < 8; i++) {
            if (r.checked[i]) {
                cli_output_show("queue %-5u : %s\n", r.queue_id[i], r.congested[i] ? "congested" : "not congested");
            }
        }
        return rc;
    });
}

// show qos band-zero-check queues WORD
i32 cli_qos_que_band_zero_show(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    return _ids(argv[0], [&](u32 qid) -> i32 {
        qos_check_key k{1, qid};
        u32 zero = 0;
        const i32 rc =
            _failed("qos_api_que_bandwidth_cfg_zero_check", qos_api_que_bandwidth_cfg_zero_check(chip_id, &k, &zero));
        if (rc == SHR_E_NONE) {
            cli_output_show("queue %-5u : %s\n", qid, zero ? "a shaper on its way gives nothing" : "ok");
        }
        return rc;
    });
}

const char *const k_help_policer_create[] = {"Quality of service", "Policer profiles", "Create",
    "Ingress port policer", "Egress port policer", "Ingress port and to-CPU cause group policer",
    "To-CPU cause id policer", "Profile id", "Value", nullptr};
const char *const k_help_policer_single_bucket_set[] = {"Quality of service", "Policer profiles",
    "Single bucket parameters", "Ingress port and to-CPU cause group policer", "To-CPU cause id policer",
    "Profile id", "Value", "Bits per second", "Packets per second", "Peak rate", "Value", "Peak burst in bytes",
    "Value", "Length compensation, -32 to 31", "Value", nullptr};
const char *const k_help_policer_double_bucket_set[] = {"Quality of service", "Policer profiles",
    "Double bucket parameters", "Ingress port policer", "Egress port policer", "Profile id", "Value",
    "Single rate three colour", "Two rate three colour", "Two rate three colour, RFC 4115", "MEF 10.2",
    "Colour-blind", "Colour-aware", "Bits per second", "Packets per second", "Committed rate", "Value",
    "Committed burst in bytes", "Value", "Excess or peak rate", "Value", "Excess or peak burst in bytes", "Value",
    "Length compensation, -32 to 31", "Value", nullptr};
const char *const k_help_policer_action_set[] = {"Quality of service", "Action of a colour", "Ingress port policer",
    "Egress port policer", "Profile id", "Value", "Green", "Yellow", "Red", "Drop", "Pass", "Pass with a new colour",
    "Green", "Yellow", "Red", "Pass with a new internal priority", "Value",
    "Pass with a new internal priority and colour", "Value", "Green", "Yellow", "Red", nullptr};
const char *const k_help_policer_show[] = {"Show", "Quality of service", "Policer profiles", "Ingress port policer",
    "Egress port policer", "Ingress port and to-CPU cause group policer", "To-CPU cause id policer", "Profile id",
    "Value", "All", nullptr};
const char *const k_help_policer_bind[] = {"Quality of service", "Bind a profile", "Ingress port policer", "Value",
    "Egress port policer", "Value", "Ingress port and to-CPU cause group policer", "Value", "Value",
    "To-CPU cause id policer", "Value", "Profile id", "Value", nullptr};
const char *const k_help_policer_unbind[] = {"Quality of service", "Unbind a profile", "Ingress port policer",
    "Value", "Egress port policer", "Value", "Ingress port and to-CPU cause group policer", "Value", "Value",
    "To-CPU cause id policer", "Value", nullptr};
const char *const k_help_policer_bind_show[] = {"Show", "Quality of service", "Bindings", "Ingress ports", "Value",
    "Egress ports", "Value", "Ingress port and to-CPU cause group policer", "Ingress ports", "Value",
    "To-CPU cause ids", "Value", nullptr};
const char *const k_help_policer_destroy[] = {"Quality of service", "Policer profiles", "Destroy",
    "Ingress port policer", "Egress port policer", "Ingress port and to-CPU cause group policer",
    "To-CPU cause id policer", "Profile id", "Value", nullptr};
const char *const k_help_common_map_set[] = {"Quality of service", "Common maps", "Queue of an internal priority",
    "Value", "Value", "DP group of a DP", "Value", "Value", "Group of a cause id", "Value", "Value", "Enable",
    "Disable", "Port", "Value", "Priority group of a packet priority", "Value", "Value",
    "Service pool of a priority group", "Value", "Value", nullptr};
const char *const k_help_common_map_show[] = {"Show", "Quality of service", "Common maps",
    "Queue of an internal priority", "DP group of a DP", "DP ids", "Value", "Group of a cause id", "Cause ids",
    "Value", "Ports", "Value", "Priority group of a packet priority", "Service pool of a priority group", nullptr};
const char *const k_help_priority_map_set[] = {"Quality of service", "Priority maps", "Value", "Key type",
    "Outer priority", "Value", "Outer priority and CFI", "Value", "Value", "Inner priority", "Value",
    "Inner priority and CFI", "Value", "Value", "DSCP", "Value", "New DSCP", "Value", "MPLS EXP", "Value", "Untagged",
    "Internal priority", "Value", "Colour", "Green", "Yellow", "Red", nullptr};
const char *const k_help_priority_map_show[] = {"Show", "Quality of service", "Priority maps", "Key type",
    "Outer priority", "Outer priority and CFI", "Inner priority", "Inner priority and CFI", "DSCP", "MPLS EXP",
    "Untagged", "Map ids", "Value", nullptr};
const char *const k_help_priority_glb_set[] = {"Quality of service", "Priority maps", "Global settings",
    "Which priority the maps read", "The original priority", "The remarked priority", nullptr};
const char *const k_help_priority_glb_show[] = {"Show", "Quality of service", "Priority maps", "Global settings",
    nullptr};
const char *const k_help_remark_set[] = {"Quality of service", "Remark", "Value", "Internal priority", "Value",
    "Colour", "Green", "Yellow", "Red", "Outer CFI", "Inner CFI", "DSCP", "Traffic class", "Inner priority",
    "Outer priority", "MPLS outer priority and CFI", "Value", "Value", nullptr};
const char *const k_help_remark_show[] = {"Show", "Quality of service", "Remark", "Outer CFI", "Inner CFI", "DSCP",
    "Traffic class", "Inner priority", "Outer priority", "MPLS outer priority and CFI",
    "MPLS EXP to outer priority and CFI", "Remark ids", "Value", nullptr};
const char *const k_help_remark_glb_set[] = {"Quality of service", "Remark", "Global settings", "Tunnel priorities",
    "User priority and CFI", "User TC and DSCP", "Enable", "Disable", "Which wins", "The ACL", "The remark", nullptr};
const char *const k_help_remark_glb_show[] = {"Show", "Quality of service", "Remark", "Global settings", nullptr};
const char *const k_help_flush_set[] = {"Quality of service", "Flush", "Ports", "Value", "DP ids", "Value", nullptr};
const char *const k_help_redir_set[] = {"Quality of service", "Global redirect", "To the CPU", "To an Ethernet port",
    "Port", "Value", "Queue offset", "Value", nullptr};
const char *const k_help_redir_drop_pkt_en_set[] = {"Quality of service", "Global redirect",
    "Redirect dropped packets", "Enable", "Disable", nullptr};
const char *const k_help_redir_causeid_en_set[] = {"Quality of service", "Global redirect", "Cause ids", "Value",
    "Enable", "Disable", nullptr};
const char *const k_help_redir_show[] = {"Show", "Quality of service", "Global redirect", "Cause ids", "Value",
    nullptr};
const char *const k_help_capture_set[] = {"Quality of service", "Packet capture", "Packets to capture", "Value",
    "Egress port policer", "Value", "Queue offset", "Value", nullptr};
const char *const k_help_capture_causeid_set[] = {"Quality of service", "Packet capture", 
    "Capture cause index, 0 to 3", "Value", "Cause id", "Value", nullptr};
const char *const k_help_capture_start[] = {"Quality of service", "Packet capture", "By cause id",
    "With the 1588 length", "Start", "Stop", nullptr};
const char *const k_help_capture_show[] = {"Show", "Quality of service", "Packet capture", nullptr};
const char *const k_help_tocpu_enqueue_cfg_set[] = {"Quality of service", "Queues of frames to the CPU",
    "To-CPU cause ids", "Value", "Queue by the cause id", "Enable", "Disable", "CPU queue offset", "Value",
    "Snooping drop", "Enable", "Disable", "Time stamp", "Enable", "Disable", nullptr};
const char *const k_help_tocpu_enqueue_cfg_show[] = {"Show", "Quality of service", "Queues of frames to the CPU",
    "To-CPU cause ids", "Value", nullptr};
const char *const k_help_que_congestion_show[] = {"Show", "Quality of service", "Congestion check", "Queue", "Value",
    nullptr};
const char *const k_help_que_band_zero_show[] = {"Show", "Quality of service", "Shapers with nothing to give",
    "Queues", "Value", nullptr};

const char *const k_help_counter_show[] = {"Show", "Quality of service", "Counters", "Packets held by queues",
    "Queue ids", "All queues", "Forwarded and dropped", "Ports", "Ports", "Queues", "Queue ids",
    "Highest and lowest cell counts", "Queue", "Queue id", "All queues", "Port", "Port", "All ports", "DP", "DP id",
    "All DPs", "Global multicast", "Global share pool", "Free buffers", "Clear what was shown", nullptr};
const char *const k_help_status_show[] = {"Show", "Quality of service", "Status", "Ports not empty",
    "Queues not empty", "Back-pressure", "Shared RAM mode", "Ports closed by flush", nullptr};

#define POLICER_TYPES "(sport | dport | sport-tocpu-causeid-group | tocpu-causeid)"
#define COLORS "(green | yellow | red)"
cli_cmd_desc g_qos_desc[] = {
    {"qos policer create " POLICER_TYPES " ( profile-id WORD |)", -1, cli_qos_policer_create, k_help_policer_create, 0},
    {"qos policer single-bucket (sport-tocpu-causeid-group | tocpu-causeid) profile-id WORD (bps | pps) pir WORD "
     "pbs WORD (compensation WORD |)",
     -1, cli_qos_policer_single_bucket_set, k_help_policer_single_bucket_set, 0},
    {"qos policer double-bucket (sport | dport) profile-id WORD (rfc2697 | rfc2698 | rfc4115 | mef10p2) "
     "(color-blind | color-aware) (bps | pps) cir WORD cbs WORD ({xir WORD | xbs WORD} | ) (compensation WORD |)",
     -1, cli_qos_policer_double_bucket_set, k_help_policer_double_bucket_set, 0},
    {"qos policer-action (sport | dport) profile-id WORD " COLORS " (drop | pass | new-color " COLORS
     " | new-intl-pri WORD | new-intl-pri-color WORD " COLORS " )",
     -1, cli_qos_policer_action_set, k_help_policer_action_set, 0},
    {"show qos policer " POLICER_TYPES " profile-id (WORD | all)", -1, cli_qos_policer_show, k_help_policer_show, 0},
    {"qos policer-bind (sport WORD | dport WORD| sport-tocpu-causeid-group WORD WORD| tocpu-causeid WORD) "
     "profile-id WORD",
     -1, cli_qos_policer_bind, k_help_policer_bind, 0},
    {"qos policer-unbind (sport WORD | dport WORD| sport-tocpu-causeid-group WORD WORD | tocpu-causeid WORD)", -1,
     cli_qos_policer_unbind, k_help_policer_unbind, 0},
    {"show qos policer-bind-info (sports WORD | dports WORD | sport-tocpu-causeid-group sports WORD | "
     "tocpu-causeids WORD)",
     -1, cli_qos_policer_bind_show, k_help_policer_bind_show, 0},
    {"qos policer destroy (sport | dport | sport-tocpu-causeid-group | tocpu-causeid ) profile-id WORD", -1,
     cli_qos_policer_destroy, k_help_policer_destroy, 0},
    {"qos common-map (intl-pri-to-cosq WORD WORD | dpid-to-dp-group WORD WORD | causeid-to-causeid-group WORD WORD "
     "(enable|disable) | port WORD (pkt-pri-to-pg WORD WORD | pg-to-service-pool WORD WORD) )",
     -1, cli_qos_common_map_set, k_help_common_map_set, 0},
    {"show qos common-map (intl-pri-to-cosq | dpid-to-dp-group dpids WORD | causeid-to-causeid-group causeids WORD "
     "| ports WORD (pkt-pri-to-pg | pg-to-service-pool) )",
     -1, cli_qos_common_map_show, k_help_common_map_show, 0},
    {"qos priority-map WORD type (opri WORD | opri-ocfi WORD WORD | ipri WORD| ipri-icfi WORD WORD | dscp WORD "
     "(replace-dscp WORD | ) | exp WORD | untag ) intl-pri WORD color " COLORS,
     -1, cli_qos_priority_map_set, k_help_priority_map_set, 0},
    {"show qos priority-map type ( opri | opri-ocfi | ipri | ipri-icfi | dscp | exp | untag ) map-ids WORD", -1,
     cli_qos_priority_map_show, k_help_priority_map_show, 0},
    {"qos priority-map glb pri-sel (use-original | use-remarkd)", -1, cli_qos_priority_glb_set, k_help_priority_glb_set, 0},
    {"show qos priority-map glb", -1, cli_qos_priority_glb_show, k_help_priority_glb_show, 0},
    {"qos remark WORD intl-pri WORD color " COLORS
     " (ocfi | icfi | dscp | tc | ipri-exp2 | opri-exp1 | mpls-opri-ocfi ) WORD (WORD|)",
     -1, cli_qos_remark_set, k_help_remark_set, 0},
    {"show qos remark (ocfi | icfi | dscp | tc | ipri-exp2 | opri-exp1 | mpls-opri-ocfi | mpls-exp-opri-ocfi ) "
     "remark-ids WORD",
     -1, cli_qos_remark_show, k_help_remark_show, 0},
    {"qos remark glb (tunnel (usr-pri-cfi | usr-tc-dscp) (enable | disable) | priority (acl-high | remark-high))",
     -1, cli_qos_remark_glb_set, k_help_remark_glb_set, 0},
    {"show qos remark glb", -1, cli_qos_remark_glb_show, k_help_remark_glb_show, 0},
    {"qos flush (ports WORD | dpids WORD)", -1, cli_qos_flush_set, k_help_flush_set, 0},
    {"qos redirect (to-cpu | to-eth) port-id WORD queue-offset WORD", -1, cli_qos_redir_set, k_help_redir_set, 0},
    {"qos redirect drop-pkt (enable | disable)", -1, cli_qos_redir_drop_pkt_en_set, k_help_redir_drop_pkt_en_set, 0},
    {"qos redirect causeids WORD ( enable | disable )", -1, cli_qos_redir_causeid_en_set, k_help_redir_causeid_en_set, 0},
    {"show qos redirect (causeids WORD | )", -1, cli_qos_redir_show, k_help_redir_show, 0},
    {"qos capture num WORD dport WORD queue-offset WORD", -1, cli_qos_capture_set, k_help_capture_set, 0},
    {"qos capture causeid-index WORD cuaseid WORD", -1, cli_qos_capture_causeid_set, k_help_capture_causeid_set, 0},
    {"qos capture {causeid | ex-len-1588} (start|stop)", -1, cli_qos_capture_start, k_help_capture_start, 0},
    {"show qos capture", -1, cli_qos_capture_show, k_help_capture_show, 0},
    {"qos tocpu-enqueue-cfg cpu-causeids WORD (cpu-queue-en (enable | disable ) | cpu-queue-id WORD | "
     "snooping-drop (enable | disable) | time-en (enable | disable) )",
     -1, cli_qos_tocpu_enqueue_cfg_set, k_help_tocpu_enqueue_cfg_set, 0},
    {"show qos tocpu-enqueue-cfg cpu-causeids WORD", -1, cli_qos_tocpu_enqueue_cfg_show, k_help_tocpu_enqueue_cfg_show, 0},
    {"show qos cnt ( queues-not-empty (WORD|all) | fwd-drop (ports WORD | queues WORD) | his-min-max ( queue "
     "(WORD |all ) | port (WORD | all) | dpid (WORD | all) | glb-mc | glb-share | fbm-left )) (clear|)",
     -1, cli_qos_counter_show, k_help_counter_show, 0},
    {"show qos status (port-not-empty | queue-not-empty | backpressure | ram-share-mode | port-flush)", -1,
     cli_qos_status_show, k_help_status_show, 0},
    {"show qos congestion queue WORD", -1, cli_qos_que_congestion_show, k_help_que_congestion_show, 0},
    {"show qos band-zero-check queues WORD", -1, cli_qos_que_band_zero_show, k_help_que_band_zero_show, 0},
};
#undef POLICER_TYPES
#undef COLORS

constexpr u32 k_qos_commands = sizeof(g_qos_desc) / sizeof(g_qos_desc[0]);
cli_cmd_item g_qos_items[k_qos_commands];

} // namespace

extern "C" void cli_cmd_init_qos(void)
{
    cli_cmd_descs_link(g_qos_desc, g_qos_items, k_qos_commands, CLI_MODE_QOS);
}
