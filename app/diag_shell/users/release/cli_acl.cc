// The `acl` mode: groups, entries with their templates, match items and
// actions, the lookups of the stages, the port and VLAN controls and the
// global settings of the ACL.
//
// A match item or an action is named by its word of the ACL's name
// tables: `acl entry 5 match add smac-31-0 0x00000001` matches MAC
// source addresses whose low word is 1 (mask all ones unless given),
// `acl entry 5 action add drop` drops.  The commands whose alternatives
// are those tables are made from them when the records are linked.
#include <tide/acl.h>
#include <tide/property.h>
#include <tide/vlan.h>

#include <cstdio>
#include <cstring>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "dpl/reef/acl/dpl_reef_acl.h"

namespace {

constexpr const char *kTypeNames[] = {"vcap", "icap", "ecap", "cpucap", "ipsg", "mff", "mcap"};
constexpr const char *kModeNames[] = {"single", "double", "triple", "quad", "auto"};
constexpr const char *kBasedNames[] = {"glb", "port", "vlan", "vp"};
constexpr const char *kAllocNames[] = {"blocks", "size", "auto"};
constexpr u32 kBasedWords = sizeof(kBasedNames) / sizeof(kBasedNames[0]);

// Key types of the lookups by stage: the word of the shell and the key's
// sub-type tag.  Where two words share a value, the later one is this
// chip's and is what a show prints.
struct Named {
    const char *name;
    u32 value;
};
constexpr Named kVcapTypes[] = {{"width-single", 0}, {"width-double", 1}};
constexpr Named kIcapTypes[] = {{"none", 0},          {"ipv4", 1},         {"sipv6", 2},
                                {"dipv6", 3},         {"ipv6-mac", 4},     {"all-ipv6-port", 5},
                                {"ipv6-ip-svp", 12},  {"ipv6-exp", 7},     {"udf", 6},
                                {"arp", 8},           {"ucl-ipv4", 13},    {"ucl-ipv6", 14},
                                {"width-single-l2", 7}, {"width-single-ipv4", 4}};
constexpr Named kEcapTypes[] = {{"none", 0},     {"ipv4", 1},          {"sipv6", 2},
                                {"dipv6", 3},    {"ipv6-mac", 4},      {"all-ipv6-port", 5},
                                {"ipv6-exp", 6}, {"ipv6-ip-dvp", 7}};
constexpr Named kCpucapTypes[] = {{"none", 0},     {"normal", 1},   {"sipv6", 2}, {"dipv6", 3},
                                  {"ipv6-mac", 4}, {"ipv6-sec", 5}, {"ipv6-exp", 6}};
struct Stage {
    const char *name;
    u32 stage;
    const Named *types;
    u32 type_count;
};
constexpr Stage kStages[] = {
    {"vcap", ACL_STAGE_VCAP, kVcapTypes, sizeof(kVcapTypes) / sizeof(kVcapTypes[0])},
    {"icap", ACL_STAGE_ICAP, kIcapTypes, sizeof(kIcapTypes) / sizeof(kIcapTypes[0])},
    {"ecap", ACL_STAGE_ECAP, kEcapTypes, sizeof(kEcapTypes) / sizeof(kEcapTypes[0])},
    {"cpucap", ACL_STAGE_CPUCAP, kCpucapTypes, sizeof(kCpucapTypes) / sizeof(kCpucapTypes[0])},
};
constexpr const char *kBaseWords[] = {"glb", "port", "vlan", "svp", "cpu-cause"};

// Port controls by word; a value of `enable` / `disable` or a number.
constexpr Named kPortControls[] = {
    {"vcap", ACL_PORT_VCAP_EN},         {"icap", ACL_PORT_ICAP_EN},         {"ecap", ACL_PORT_ECAP_EN},
    {"vcap-miss-drop", ACL_PORT_VCAP_MISS_DROP}, {"ipsg-v4", ACL_PORT_IPSG_V4}, {"ipsg-v6", ACL_PORT_IPSG_V6},
    {"ing-classid", ACL_PORT_ING_CLASSID}, {"egr-classid", ACL_PORT_EGR_CLASSID},
    {"vcap-group-id", ACL_PORT_VCAP_GROUP_ID},
};
constexpr Named kVlanControls[] = {{"ipsg-v4", ACL_VLAN_IPSG_V4}, {"ipsg-v6", ACL_VLAN_IPSG_V6}, {"mff", ACL_VLAN_MFF}};

template <size_t N>
u32 _word(const char *const (&names)[N], const char *w)
{
    return dpl_reef_acl_name_find(names, N, w);
}

const Named *_named(const Named *rows, u32 count, const char *w)
{
    for (u32 i = 0; w != nullptr && i < count; i++) {
        if (std::strcmp(rows[i].name, w) == 0) {
            return &rows[i];
        }
    }
    return nullptr;
}

const char *_name_of(const Named *rows, u32 count, u32 value)
{
    for (u32 i = count; i-- > 0;) {
        if (rows[i].value == value) {
            return rows[i].name;
        }
    }
    return "?";
}

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

bool _num(const char *w, u32 *out)
{
    if (w == nullptr || cli_get_uint32_param(w, out) != SHR_E_NONE) {
        cli_output_show("parameter %s is incorrect.\n", w != nullptr ? w : "");
        return false;
    }
    return true;
}

i32 _result(const char *call, i32 rc)
{
    return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
}

const char *_onoff(u32 v)
{
    return v ? "enable" : "disable";
}

// ---- groups ---------------------------------------------------------------------------------

void _group_line(const acl_group_info &g)
{
    const bool set = g.type < sizeof(kTypeNames) / sizeof(kTypeNames[0]);
    cli_output_show("%-12u %-11s %-7s %-7s %-9u %-8u %-10u %-9u\n", g.group_id, g.name, set ? kTypeNames[g.type] : "-",
                    set && g.mode < 5 ? kModeNames[g.mode] : "-", g.priority, g.entry_count, g.installed, g.table_size);
}

void _group_head()
{
    cli_output_show("%-12s %-11s %-7s %-7s %-9s %-8s %-10s %-9s\n", "Group", "Name", "Type", "Mode", "Priority",
                    "Entries", "Installed", "Rows");
    cli_output_show("------------------------------------------------------------------------------\n");
}

void _bitmap_names(const char *title, const u32 *bitmap, u32 count, const char *const *names)
{
    cli_output_show("%s:", title);
    u32 n = 0;
    for (u32 i = 0; i < count; i++) {
        if ((bitmap[i / 32] >> (i % 32)) & 1) {
            cli_output_show("%s%s", n++ % 6 == 0 ? "\n    " : " ", names[i]);
        }
    }
    cli_output_show("%s\n", n == 0 ? " none" : "");
}

i32 _entry_row(u32, u32 id, const acl_entry_info *i, void *)
{
    char place[32] = "-";
    if (i->state & ACL_ENTRY_INSTALLED) {
        std::snprintf(place, sizeof(place), "%u.%u (%u)", i->block, i->index_in_block, i->logical_index);
    }
    cli_output_show("%-12u %-12u %-11u %-10s %-22s %s\n", id, i->group_id, i->priority,
                    (i->state & ACL_ENTRY_INSTALLED) ? "installed" : (i->state & ACL_ENTRY_DIRTY) ? "dirty" : "idle",
                    g_template_type_id_name[i->template_id < ACL_TEMPLATE_COUNT ? i->template_id : ACL_TEMPLATE_NONE],
                    place);
    return 0;
}

void _entry_head()
{
    cli_output_show("%-12s %-12s %-11s %-10s %-22s %s\n", "Entry", "Group", "Priority", "State", "Template",
                    "Row (logical)");
    cli_output_show("----------------------------------------------------------------------------------------\n");
}

void _group_show(u32 chip_id, const acl_group_info &g, bool detail)
{
    const bool set = g.type < sizeof(kTypeNames) / sizeof(kTypeNames[0]);
    cli_output_show(" group id    : %u\n name        : %s\n type        : %s\n width mode  : %s\n", g.group_id, g.name,
                    set ? kTypeNames[g.type] : "not set", set && g.mode < 5 ? kModeNames[g.mode] : "not set");
    cli_output_show(" priority    : %u\n alloc mode  : %s\n size asked  : %u\n entries     : %u\n installed   : %u\n",
                    g.priority, g.alloc_mode < 3 ? kAllocNames[g.alloc_mode] : "?", g.entry_num, g.entry_count,
                    g.installed);
    cli_output_show(" table rows  : %u\n blocks      :", g.table_size);
    for (u32 b = 0; b < g.block_num; b++) {
        cli_output_show(" %u", g.block_ids[b]);
    }
    cli_output_show("%s\n moves       : %llu\n", g.block_num == 0 ? " none" : "", static_cast<unsigned long long>(g.moves));
    _bitmap_names(" templates  ", &g.match_support, ACL_TEMPLATE_NONE, g_template_type_id_name);
    if (detail) {
        _bitmap_names(" actions    ", g.action_support, ACL_ACTION_NULL, g_entry_action_id_name);
        _entry_head();
        acl_api_entry_traverse_in_group(chip_id, g.group_id, _entry_row, nullptr);
    }
}

// ---- the commands whose alternatives are the name tables ------------------------------------

constexpr u32 kCmdRoom = 8192;

struct Generated {
    char cmd[kCmdRoom];
    const char *help[CLI_MAX_HELP];
};

// A definition of `head` (with its help lines), the words of `names`
// (0 .. count - 1) as one group, and `tail`.
void _generate(Generated *g, const char *head, const char *const *head_help, const char *const *names, u32 count,
               const char *tail, const char *const *tail_help)
{
    u32 len = static_cast<u32>(std::snprintf(g->cmd, kCmdRoom, "%s (", head));
    for (u32 i = 0; i < count && len < kCmdRoom; i++) {
        len += static_cast<u32>(std::snprintf(g->cmd + len, kCmdRoom - len, "%s%s", i ? " | " : "", names[i]));
    }
    if (len < kCmdRoom) {
        std::snprintf(g->cmd + len, kCmdRoom - len, ")%s%s", *tail ? " " : "", tail);
    }
    u32 h = 0;
    for (; *head_help != nullptr && h < CLI_MAX_HELP - 1; head_help++) {
        g->help[h++] = *head_help;
    }
    for (u32 i = 0; i < count && h < CLI_MAX_HELP - 1; i++) {
        g->help[h++] = names[i];
    }
    for (; *tail_help != nullptr && h < CLI_MAX_HELP - 1; tail_help++) {
        g->help[h++] = *tail_help;
    }
    g->help[h] = nullptr;
}

Generated g_acl_match_add, g_acl_match_del, g_acl_action_add, g_acl_action_del, g_acl_template_set, g_acl_template_show;

// A value or mask of an item: a number, or an IPv4 address in dotted form
// (the address fields take it first byte highest).
bool _item_value(const char *w, u32 *out)
{
    if (strchr(w, '.') != nullptr) {
        if (cli_get_ipv4addr(w, out) != SHR_E_NONE) {
            cli_output_show("parameter %s is incorrect.\n", w);
            return false;
        }
        return true;
    }
    return _num(w, out);
}

// An entry's item by the words after the entry id: name, value, mask or
// second value.
i32 _item(i32 argc, char **argv, const char *const *names, u32 count, u32 default_mask, acl_item *item)
{
    if (argc < 2) {
        return _bad_argc();
    }
    item->id = dpl_reef_acl_name_find(names, count, argv[1]);
    if (item->id >= count) {
        cli_output_show("parameter %s is incorrect.\n", argv[1]);
        return SHR_E_PARAM;
    }
    item->value = 0;
    item->mask = default_mask;
    if ((argc > 2 && !_item_value(argv[2], &item->value)) || (argc > 3 && !_item_value(argv[3], &item->mask))) {
        return SHR_E_PARAM;
    }
    return SHR_E_NONE;
}

// An item command of an entry: the entry id, then the item's words
// (`min_argc` words at least), handed to `call`.
i32 _entry_item(u32 chip_id, i32 argc, char **argv, i32 min_argc, const char *const *names, u32 count,
                u32 default_mask, const char *call_name, int32_t (*call)(uint32_t, uint32_t, acl_item *))
{
    u32 id = 0;
    acl_item item{};
    const i32 rc = argc < min_argc ? _bad_argc() : _item(argc, argv, names, count, default_mask, &item);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    return _result(call_name, call(chip_id, id, &item));
}

// `<id> <verb>`: the call of the verb's row for the id.
struct IdVerb {
    const char *word;
    const char *call_name;
    int32_t (*call)(uint32_t, uint32_t);
};
i32 _id_verb(u32 chip_id, i32 argc, char **argv, const IdVerb (&verbs)[3])
{
    u32 id = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    for (const IdVerb &v : verbs) {
        if (std::strcmp(argv[1], v.word) == 0) {
            return _result(v.call_name, v.call(chip_id, id));
        }
    }
    cli_output_show("parameter %s is incorrect.\n", argv[1]);
    return SHR_E_PARAM;
}

// The lookup of `acl template <stage> ...`: base and id from argv[at] on;
// `at` moves past them.
bool _lookup_base(u32 chip_id, i32 argc, char **argv, i32 *at, acl_lookup *l)
{
    if (*at >= argc) {
        _bad_argc();
        return false;
    }
    const char *w = argv[(*at)++];
    l->base = _word(kBaseWords, w);
    if (std::strcmp(w, "dvp") == 0) {
        l->base = ACL_BASE_SVP;
    }
    if (l->base == ACL_BASE_GLOBAL) {
        return true;
    }
    if (*at >= argc) {
        _bad_argc();
        return false;
    }
    if (l->base == ACL_BASE_PORT) {
        return cli_pport_to_lport_checked(chip_id, argv[(*at)++], &l->id) == SHR_E_NONE;
    }
    return _num(argv[(*at)++], &l->id);
}

const Stage *_stage(u32 stage)
{
    for (const Stage &s : kStages) {
        if (s.stage == stage) {
            return &s;
        }
    }
    return nullptr;
}

// The lookup's key type by its word and the lookup sequence after it.
i32 _lookup_set(u32 chip_id, acl_lookup *l, i32 argc, char **argv, i32 at)
{
    const Stage *s = _stage(l->stage);
    if (at >= argc) {
        return _bad_argc();
    }
    const Named *t = _named(s->types, s->type_count, argv[at++]);
    if (t == nullptr) {
        cli_output_show("parameter %s is incorrect.\n", argv[at - 1]);
        return SHR_E_PARAM;
    }
    l->type = t->value;
    if (at + 1 < argc && std::strcmp(argv[at], "lookup-sequence") == 0 && !_num(argv[at + 1], &l->lookup_index)) {
        return SHR_E_PARAM;
    }
    return _result("acl_api_template_config_set", acl_api_template_config_set(chip_id, l));
}

void _lookup_show(u32 chip_id, acl_lookup l)
{
    const Stage *s = _stage(l.stage);
    for (u32 index = 0; index < 2; index++) {
        l.lookup_index = index;
        const i32 rc = acl_api_template_config_get(chip_id, &l);
        if (rc == SHR_E_NONE) {
            cli_output_show(" %s lookup %u: type %s pri %u\n", s->name, index, _name_of(s->types, s->type_count, l.type),
                            l.pri);
        } else if (rc != SHR_E_NOT_SUPPORT || index == 0) {
            cli_call_failed("acl_api_template_config_get", rc);
        }
    }
}

// ---- global settings -------------------------------------------------------------------

struct GlobalWord {
    u32 stage;
    const char *word;
    u32 flag;
    u32 values;
    u32 *(*slot)(acl_global_cfg *cfg);
};
constexpr GlobalWord kGlobalWords[] = {
    {ACL_STAGE_VCAP, "key-port-mode0", ACL_GLB_VCAP_PORT_MODE0, 1, [](acl_global_cfg *c) { return &c->vacl_key_port_mode[0]; }},
    {ACL_STAGE_VCAP, "key-port-mode1", ACL_GLB_VCAP_PORT_MODE1, 1, [](acl_global_cfg *c) { return &c->vacl_key_port_mode[1]; }},
    {ACL_STAGE_VCAP, "type", ACL_GLB_VCAP_TYPE, 1, [](acl_global_cfg *c) { return &c->vacl_type; }},
    {ACL_STAGE_ICAP, "cfg0", ACL_GLB_ICAP_CFG0, 1, [](acl_global_cfg *c) { return &c->iacl_cfg[0]; }},
    {ACL_STAGE_ICAP, "cfg1", ACL_GLB_ICAP_CFG1, 1, [](acl_global_cfg *c) { return &c->iacl_cfg[1]; }},
    {ACL_STAGE_ICAP, "cfg2", ACL_GLB_ICAP_CFG2, 1, [](acl_global_cfg *c) { return &c->iacl_cfg[2]; }},
    {ACL_STAGE_ICAP, "ipv6-ip-sel", ACL_GLB_IPV6_SEL, 4, [](acl_global_cfg *c) { return &c->ipv6_sel[0]; }},
    {ACL_STAGE_ECAP, "ipv6-ip-sel", ACL_GLB_IPV6_SEL, 6, [](acl_global_cfg *c) { return &c->ipv6_sel[0]; }},
};

i32 _port_controls_show(u32 chip_id, u32 lport, const char *pport)
{
    cli_output_show("%-8s", pport);
    for (const Named &n : kPortControls) {
        acl_control c{n.value, 0};
        const i32 rc = acl_api_port_control_get(chip_id, lport, &c);
        if (rc == SHR_E_NONE) {
            char number[12];
            std::snprintf(number, sizeof(number), "%u", c.value);
            cli_output_show(" %-9s", n.value <= ACL_PORT_IPSG_V6 ? _onoff(c.value) : number);
        } else if (rc == SHR_E_NOT_SUPPORT) {
            cli_output_show(" %-9s", "-");
        } else {
            cli_output_show("\n");
            return cli_call_failed("acl_api_port_control_get", rc);
        }
    }
    cli_output_show("\n");
    return SHR_E_NONE;
}

} // namespace

extern "C" {

// acl group WORD create type (...) width-mode (...) ({alloc-mode (size WORD |
// block-ids WORD) | priority WORD | name WORD}|)
i32 cli_acl_group_create(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3) {
        return _bad_argc();
    }
    u32 id = 0;
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    acl_group_para p{};
    p.type = _word(kTypeNames, argv[1]);
    p.mode = _word(kModeNames, argv[2]);
    p.entry_num = ACL_GROUP_ENTRY_UNIT;
    // The size as the chip's allocation mode wants it.
    const u32 automatic = shr_property_get(chip_id, "acl_alloc_tcam_resource_mode", 0) == 1;
    p.flags = automatic ? ACL_GROUP_FLAG_AUTO : ACL_GROUP_FLAG_SIZE;
    for (i32 i = 3; i < argc; i++) {
        const char *w = argv[i];
        if (std::strcmp(w, "alloc-mode") == 0) {
            continue;
        }
        if (i + 1 >= argc) {
            return _bad_argc();
        }
        const char *v = argv[++i];
        if (std::strcmp(w, "size") == 0 || std::strcmp(w, "priority") == 0) {
            if (!_num(v, std::strcmp(w, "size") == 0 ? &p.entry_num : &p.priority)) {
                return SHR_E_PARAM;
            }
        } else if (std::strcmp(w, "block-ids") == 0) {
            if (cli_check_intlist(v) < 0) {
                cli_output_show(" para %s is invalid.\n", v);
                return SHR_E_PARAM;
            }
            p.flags = ACL_GROUP_FLAG_BLOCKS;
            char *cursor = argv[i];
            for (i32 b = cli_get_next_from_intlist(&cursor, 0); b >= 0; b = cli_get_next_from_intlist(&cursor, b)) {
                if (p.block_num == ACL_GROUP_BLOCKS_MAX) {
                    cli_output_show("more than %u blocks\n", ACL_GROUP_BLOCKS_MAX);
                    return SHR_E_PARAM;
                }
                p.block_ids[p.block_num++] = static_cast<u32>(b);
            }
        } else if (std::strcmp(w, "name") == 0 && std::strlen(v) <= ACL_GROUP_NAME_LEN) {
            std::strncpy(p.name, v, ACL_GROUP_NAME_LEN);
        } else {
            cli_output_show("parameter %s is incorrect.\n", v);
            return SHR_E_PARAM;
        }
    }
    i32 rc = acl_api_group_create(chip_id, ACL_GROUP_FLAG_WITH_ID, &id);
    if (rc != SHR_E_NONE) {
        return cli_call_failed("acl_api_group_create", rc);
    }
    rc = acl_api_group_set(chip_id, id, &p);
    if (rc != SHR_E_NONE) {
        acl_api_group_destroy(chip_id, id); // the command does all or nothing
        return cli_call_failed("acl_api_group_set", rc);
    }
    return SHR_E_NONE;
}

// show acl group (WORD | all | support-action) (detail |)
i32 cli_acl_group_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    const bool detail = argc > 1 && std::strcmp(argv[1], "detail") == 0;
    if (std::strcmp(argv[0], "all") == 0) {
        _group_head();
        return _result("acl_api_group_traverse",
                       acl_api_group_traverse(
                           chip_id,
                           [](u32, u32, const acl_group_info *g, void *) {
                               _group_line(*g);
                               return 0;
                           },
                           nullptr));
    }
    if (std::strcmp(argv[0], "support-action") == 0) {
        for (u32 type = 0; type < sizeof(kTypeNames) / sizeof(kTypeNames[0]); type++) {
            for (u32 mode = 0; mode < sizeof(kModeNames) / sizeof(kModeNames[0]); mode++) {
                u32 bitmap[DPL_ACL_ACTION_SUPPORT_WORDS] = {};
                if (dpl_reef_get_fp_group_type(chip_id, type, mode) == DPL_ACL_FP_TYPE_NONE ||
                    acl_api_action_support_get(chip_id, type, mode, bitmap) != SHR_E_NONE) {
                    continue;
                }
                char title[32];
                std::snprintf(title, sizeof(title), " %s %s", kTypeNames[type], kModeNames[mode]);
                _bitmap_names(title, bitmap, ACL_ACTION_NULL, g_entry_action_id_name);
            }
        }
        return SHR_E_NONE;
    }
    u32 id = 0;
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    acl_group_info g{};
    const i32 rc = acl_api_group_get(chip_id, id, &g);
    if (rc != SHR_E_NONE) {
        return cli_call_failed("acl_api_group_get", rc);
    }
    _group_show(chip_id, g, detail);
    return SHR_E_NONE;
}

// acl group WORD (destroy | install | uninstall)
i32 cli_acl_group_set(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr IdVerb verbs[] = {{"destroy", "acl_api_group_destroy", acl_api_group_destroy},
                                       {"install", "acl_api_group_install", acl_api_group_install},
                                       {"uninstall", "acl_api_group_uninstall", acl_api_group_uninstall}};
    return _id_verb(chip_id, argc, argv, verbs);
}

// acl template vcap based (glb | port WORD) type (width-single | width-double)
i32 cli_acl_vcap_template_set(u32 chip_id, u32, i32 argc, char **argv)
{
    acl_lookup l{ACL_STAGE_VCAP, 0, 0, 0, 0, 0};
    i32 at = 0;
    return _lookup_base(chip_id, argc, argv, &at, &l) ? _lookup_set(chip_id, &l, argc, argv, at) : SHR_E_PARAM;
}

// acl template icap based (glb | port WORD | vlan WORD | svp WORD) pri WORD
// type (...) (lookup-sequence WORD |); ecap the same with dvp and without
// the sequence
i32 _cap_template_set(u32 chip_id, u32 stage, i32 argc, char **argv)
{
    acl_lookup l{stage, 0, 0, 0, 0, 0};
    i32 at = 0;
    if (!_lookup_base(chip_id, argc, argv, &at, &l) || at >= argc || !_num(argv[at++], &l.pri)) {
        return SHR_E_PARAM;
    }
    return _lookup_set(chip_id, &l, argc, argv, at);
}

i32 cli_acl_icap_template_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _cap_template_set(chip_id, ACL_STAGE_ICAP, argc, argv);
}

i32 cli_acl_ecap_template_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _cap_template_set(chip_id, ACL_STAGE_ECAP, argc, argv);
}

// acl template cpucap based cpu-cause WORD type (...) (lookup-sequence WORD |)
i32 cli_acl_cpucap_template_set(u32 chip_id, u32, i32 argc, char **argv)
{
    acl_lookup l{ACL_STAGE_CPUCAP, ACL_BASE_CPU, 0, 0, 0, 0};
    if (argc < 2) {
        return _bad_argc();
    }
    return _num(argv[0], &l.id) ? _lookup_set(chip_id, &l, argc, argv, 1) : SHR_E_PARAM;
}

// show acl template (vcap (glb | port WORD) | icap (...) | ecap (...) | cpucap WORD)
i32 cli_acl_cap_template_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2) {
        return _bad_argc();
    }
    acl_lookup l{};
    for (const Stage &s : kStages) {
        if (std::strcmp(argv[0], s.name) == 0) {
            l.stage = s.stage;
        }
    }
    i32 at = 1;
    if (l.stage == ACL_STAGE_CPUCAP) {
        l.base = ACL_BASE_CPU;
        if (!_num(argv[1], &l.id)) {
            return SHR_E_PARAM;
        }
    } else if (!_lookup_base(chip_id, argc, argv, &at, &l)) {
        return SHR_E_PARAM;
    }
    _lookup_show(chip_id, l);
    return SHR_E_NONE;
}

// acl entry WORD create group WORD pri WORD
i32 cli_acl_entry_create(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0, group = 0, pri = 0;
    if (argc < 3) {
        return _bad_argc();
    }
    if (!_num(argv[0], &id) || !_num(argv[1], &group) || !_num(argv[2], &pri)) {
        return SHR_E_PARAM;
    }
    return _result("acl_api_entry_create", acl_api_entry_create(chip_id, ACL_ENTRY_FLAG_WITH_ID, pri, group, &id));
}

// acl entry WORD (destroy | install | uninstall)
i32 cli_acl_entry_set(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr IdVerb verbs[] = {{"destroy", "acl_api_entry_destroy", acl_api_entry_destroy},
                                       {"install", "acl_api_entry_install", acl_api_entry_install},
                                       {"uninstall", "acl_api_entry_uninstall", acl_api_entry_uninstall}};
    return _id_verb(chip_id, argc, argv, verbs);
}

// acl entry WORD template (<template>)
i32 cli_acl_entry_template_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    const u32 t = dpl_reef_acl_name_find(g_template_type_id_name, ACL_TEMPLATE_NONE, argv[1]);
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    return _result("acl_api_entry_template_set", acl_api_entry_template_set(chip_id, id, t));
}

// show acl entry WORD template
i32 cli_acl_entry_template_get(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0, t = 0;
    if (argc < 1) {
        return _bad_argc();
    }
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    const i32 rc = acl_api_entry_template_get(chip_id, id, &t);
    if (rc != SHR_E_NONE) {
        return cli_call_failed("acl_api_entry_template_get", rc);
    }
    cli_output_show(" entry %u template: %s\n", id, g_template_type_id_name[t < ACL_TEMPLATE_COUNT ? t : ACL_TEMPLATE_NONE]);
    return SHR_E_NONE;
}

// acl entry WORD based (glb | port | vlan | vp )
i32 cli_acl_entry_based_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    return _result("acl_api_entry_based_set", acl_api_entry_based_set(chip_id, id, _word(kBasedNames, argv[1])));
}

// show acl entry WORD based
i32 cli_acl_entry_based_get(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0, mode = 0;
    if (argc < 1) {
        return _bad_argc();
    }
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    const i32 rc = acl_api_entry_based_get(chip_id, id, &mode);
    if (rc != SHR_E_NONE) {
        return cli_call_failed("acl_api_entry_based_get", rc);
    }
    cli_output_show(" entry %u based: %s\n", id, mode < kBasedWords ? kBasedNames[mode] : "default");
    return SHR_E_NONE;
}

// acl entry WORD match add (<item>) WORD (WORD |)
i32 cli_acl_entry_match_add(u32 chip_id, u32, i32 argc, char **argv)
{
    return _entry_item(chip_id, argc, argv, 3, g_entry_match_id_name, ACL_MATCH_NULL, 0xFFFFFFFFu,
                       "acl_api_entry_match_field_set", acl_api_entry_match_field_set);
}

// acl entry WORD match del (<item>)
i32 cli_acl_entry_match_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    return _entry_item(chip_id, argc, argv, 2, g_entry_match_id_name, ACL_MATCH_NULL, 0,
                       "acl_api_entry_match_field_remove", acl_api_entry_match_field_remove);
}

// acl entry WORD action add (<action>) (WORD (WORD |) |)
i32 cli_acl_entry_action_add(u32 chip_id, u32, i32 argc, char **argv)
{
    return _entry_item(chip_id, argc, argv, 2, g_entry_action_id_name, ACL_ACTION_NULL, 0,
                       "acl_api_entry_action_set", acl_api_entry_action_set);
}

// acl entry WORD action del (<action>)
i32 cli_acl_entry_action_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    return _entry_item(chip_id, argc, argv, 2, g_entry_action_id_name, ACL_ACTION_NULL, 0,
                       "acl_api_entry_action_remove", acl_api_entry_action_remove);
}

// acl entry WORD pri WORD
i32 cli_acl_entry_pri_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0, pri = 0;
    if (argc < 2) {
        return _bad_argc();
    }
    if (!_num(argv[0], &id) || !_num(argv[1], &pri)) {
        return SHR_E_PARAM;
    }
    return _result("acl_api_entry_pri_set", acl_api_entry_pri_set(chip_id, id, pri));
}

// show acl entry WORD
i32 cli_acl_entry_get(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 id = 0;
    if (argc < 1) {
        return _bad_argc();
    }
    if (!_num(argv[0], &id)) {
        return SHR_E_PARAM;
    }
    auto *i = static_cast<acl_entry_info *>(xsal_malloc(sizeof(acl_entry_info), "cli acl entry", SHR_MOD_CLI));
    if (i == nullptr) {
        return SHR_E_MEMORY;
    }
    const i32 rc = acl_api_entry_get(chip_id, id, i);
    if (rc == SHR_E_NONE) {
        _entry_head();
        _entry_row(chip_id, id, i, nullptr);
        cli_output_show(" based: %s\n", i->based_mode < kBasedWords ? kBasedNames[i->based_mode] : "default");
        for (u32 k = 0; k < i->match_count; k++) {
            cli_output_show(" match  %-28s value 0x%08x mask 0x%08x\n", g_entry_match_id_name[i->match[k].id],
                            i->match[k].value, i->match[k].mask);
        }
        for (u32 k = 0; k < i->action_count; k++) {
            cli_output_show(" action %-28s value 0x%08x second 0x%08x\n", g_entry_action_id_name[i->action[k].id],
                            i->action[k].value, i->action[k].mask);
        }
    }
    xsal_mem_free(i);
    return _result("acl_api_entry_get", rc);
}

// show acl entry all
i32 cli_acl_entry_all_get(u32 chip_id, u32, i32, char **)
{
    _entry_head();
    return _result("acl_api_entry_traverse", acl_api_entry_traverse(chip_id, _entry_row, nullptr));
}

// acl port WORD cfg {vcap (enable | disable) | ... | ing-classid WORD | ...}
i32 cli_acl_port_config(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3 || argc % 2 == 0) {
        return _bad_argc();
    }
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *) -> i32 {
        for (i32 i = 1; i + 1 < argc; i += 2) {
            const Named *n = _named(kPortControls, sizeof(kPortControls) / sizeof(kPortControls[0]), argv[i]);
            acl_control c{n != nullptr ? n->value : u32{ACL_PORT_CONTROL_COUNT}, 0};
            if (std::strcmp(argv[i + 1], "enable") == 0 || std::strcmp(argv[i + 1], "disable") == 0) {
                c.value = std::strcmp(argv[i + 1], "enable") == 0;
            } else if (!_num(argv[i + 1], &c.value)) {
                return SHR_E_PARAM;
            }
            const i32 rc = acl_api_port_control_set(chip_id, lport, &c);
            if (rc != SHR_E_NONE) {
                return cli_call_failed("acl_api_port_control_set", rc);
            }
        }
        return SHR_E_NONE;
    });
}

// show acl port (WORD | all) cfg
i32 cli_acl_port_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    cli_output_show("%-8s", "Port");
    for (const Named &n : kPortControls) {
        cli_output_show(" %-9.9s", n.name);
    }
    cli_output_show("\n------------------------------------------------------------------------------------------\n");
    if (std::strcmp(argv[0], "all") != 0) {
        return cli_pport_list_walk(chip_id, argv[0],
                                   [chip_id](u32 lport, const char *pport) { return _port_controls_show(chip_id, lport, pport); });
    }
    u32 lport = 0;
    char pport[CLI_PPORT_SIZE] = "";
    for (i32 prev = -1; cli_port_list_next_lport_get(chip_id, 0, prev, &lport, pport) == SHR_E_NONE;
         prev = static_cast<i32>(lport)) {
        const i32 rc = _port_controls_show(chip_id, lport, pport);
        if (rc != SHR_E_NONE) {
            return rc;
        }
    }
    return SHR_E_NONE;
}

// acl vlan WORD cfg {ipsg-v4 (enable | disable) | ipsg-v6 (...) | mff (...)}
i32 cli_acl_vlan_config(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3 || cli_check_intlist(argv[0]) < 0) {
        return argc < 3 ? _bad_argc() : (cli_output_show(" para %s is invalid.\n", argv[0]), SHR_E_PARAM);
    }
    char *cursor = argv[0];
    for (i32 vid = cli_get_next_from_intlist(&cursor, 0); vid >= 0; vid = cli_get_next_from_intlist(&cursor, vid)) {
        for (i32 i = 1; i + 1 < argc; i += 2) {
            const Named *n = _named(kVlanControls, 3, argv[i]);
            acl_control c{n != nullptr ? n->value : u32{ACL_VLAN_CONTROL_COUNT}, std::strcmp(argv[i + 1], "enable") == 0};
            const i32 rc = acl_api_vlan_control_set(chip_id, static_cast<u32>(vid), &c);
            if (rc != SHR_E_NONE) {
                return cli_call_failed("acl_api_vlan_control_set", rc);
            }
        }
    }
    return SHR_E_NONE;
}

// show acl vlan (WORD | all) cfg
i32 cli_acl_vlan_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    char all[] = "1-4095";
    char *cursor = std::strcmp(argv[0], "all") == 0 ? all : argv[0];
    if (cli_check_intlist(cursor) < 0) {
        cli_output_show(" para %s is invalid.\n", argv[0]);
        return SHR_E_PARAM;
    }
    const bool every = cursor == all;
    for (i32 vid = cli_get_next_from_intlist(&cursor, 0); vid >= 0; vid = cli_get_next_from_intlist(&cursor, vid)) {
        // "all" lists the VLANs that exist.
        port_bitmap members{}, untagged{};
        if (every && vlan_api_port_get(chip_id, static_cast<u32>(vid), &members, &untagged) != SHR_E_NONE) {
            continue;
        }
        for (const Named &n : kVlanControls) {
            acl_control c{n.value, 0};
            const i32 rc = acl_api_vlan_control_get(chip_id, static_cast<u32>(vid), &c);
            if (rc == SHR_E_NOT_SUPPORT) {
                continue; // a control the chip does not have
            }
            if (rc != SHR_E_NONE) {
                return cli_call_failed("acl_api_vlan_control_get", rc);
            }
            cli_output_show(" vlan %d %-8s: %s\n", vid, n.name, _onoff(c.value));
        }
    }
    return SHR_E_NONE;
}

// acl glb cfg (vcap (key-port-mode0 WORD | key-port-mode1 WORD | type WORD) |
// icap (cfg0 WORD | cfg1 WORD | cfg2 WORD | ipv6-ip-sel WORD WORD WORD WORD) |
// ecap ipv6-ip-sel WORD WORD WORD WORD WORD WORD)
i32 cli_acl_global_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 3) {
        return _bad_argc();
    }
    acl_global_cfg cfg{};
    for (const Stage &s : kStages) {
        if (std::strcmp(argv[0], s.name) == 0) {
            cfg.stage = s.stage;
        }
    }
    for (const GlobalWord &g : kGlobalWords) {
        if (g.stage != cfg.stage || std::strcmp(g.word, argv[1]) != 0) {
            continue;
        }
        if (argc < static_cast<i32>(2 + g.values)) {
            return _bad_argc();
        }
        u32 *slot = g.slot(&cfg);
        for (u32 v = 0; v < g.values; v++) {
            if (!_num(argv[2 + v], &slot[v])) {
                return SHR_E_PARAM;
            }
        }
        return _result("acl_api_global_cfg_set", acl_api_global_cfg_set(chip_id, g.flag, &cfg));
    }
    cli_output_show("parameter %s is incorrect.\n", argv[1]);
    return SHR_E_PARAM;
}

// show acl glb cfg
i32 cli_acl_global_config_get(u32 chip_id, u32, i32, char **)
{
    for (const GlobalWord &g : kGlobalWords) {
        acl_global_cfg cfg{};
        cfg.stage = g.stage;
        const i32 rc = acl_api_global_cfg_get(chip_id, g.flag, &cfg);
        if (rc != SHR_E_NONE) {
            return cli_call_failed("acl_api_global_cfg_get", rc);
        }
        cli_output_show(" %-6s %-15s:", _stage(g.stage)->name, g.word);
        for (u32 v = 0; v < g.values; v++) {
            cli_output_show(" %u", g.slot(&cfg)[v]);
        }
        cli_output_show("\n");
    }
    return SHR_E_NONE;
}

// show acl template (all | <template>): the items of the templates this
// chip builds
i32 cli_acl_template_get(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 1) {
        return _bad_argc();
    }
    const bool all = std::strcmp(argv[0], "all") == 0;
    for (u32 t = 0; t < ACL_TEMPLATE_NONE; t++) {
        if (!all && std::strcmp(argv[0], g_template_type_id_name[t]) != 0) {
            continue;
        }
        u32 items[DPL_ACL_MATCH_WORDS] = {};
        const i32 rc = acl_api_match_support_get(chip_id, t, items);
        if (rc == SHR_E_NONE) {
            char title[48];
            std::snprintf(title, sizeof(title), " %s", g_template_type_id_name[t]);
            _bitmap_names(title, items, ACL_MATCH_NULL, g_entry_match_id_name);
        } else if (!all) {
            return cli_call_failed("acl_api_match_support_get", rc);
        }
    }
    return SHR_E_NONE;
}

} // extern "C"

// ---- the records ---------------------------------------------------------------------------

namespace {

const char *const k_group_create_help[] = {
    "ACL", "Group", "Group id", "Create", "Type", "VLAN ACL", "Ingress ACL", "Egress ACL", "CPU ACL",
    "IP source guard", "MFF", "Meta ACL", "Width mode", "160 bits", "320 bits", "480 bits", "640 bits",
    "Automatic", "Allocation", "Size", "Entries, a multiple of 128", "Blocks", "Block id list", "Priority",
    "Group priority", "Name", "Up to 11 characters", nullptr};
const char *const k_group_get_help[] = {"Show", "ACL", "Group", "Group id", "All groups",
                                        "Actions of each kind of group", "With entries and actions", nullptr};
const char *const k_group_set_help[] = {"ACL", "Group", "Group id", "Destroy with its entries",
                                        "Install every entry", "Uninstall every entry", nullptr};
const char *const k_vcap_tpl_help[] = {"ACL", "Lookup", "VLAN ACL", "Based on", "Chip-wide", "Port", "Port name",
                                       "Key type", "160-bit key", "320-bit key", nullptr};
const char *const k_icap_tpl_help[] = {
    "ACL", "Lookup", "Ingress ACL", "Based on", "Chip-wide", "Port", "Port name", "VLAN", "VLAN id",
    "Source virtual port", "Virtual port id", "Priority", "0 to 7", "Key type", "None", "IPv4", "IPv6 source",
    "IPv6 destination", "IPv6 and MAC", "All IPv6 and port", "IPv6 and svp", "IPv6 480 bits", "UDF", "ARP",
    "UCL IPv4", "UCL IPv6", "160-bit L2", "160-bit IPv4", "Lookup sequence", "0 first, 1 second", nullptr};
const char *const k_ecap_tpl_help[] = {
    "ACL", "Lookup", "Egress ACL", "Based on", "Chip-wide", "Port", "Port name", "VLAN", "VLAN id",
    "Destination virtual port", "Virtual port id", "Priority", "0 to 7", "Key type", "None", "IPv4",
    "IPv6 source", "IPv6 destination", "IPv6 and MAC", "All IPv6 and port", "IPv6 and dvp", "IPv6 480 bits",
    nullptr};
const char *const k_cpucap_tpl_help[] = {"ACL", "Lookup", "CPU ACL", "Based on", "CPU cause", "Cause id", "Key type",
                                         "None", "Normal", "IPv6 source", "IPv6 destination", "IPv6 and MAC",
                                         "IPv6 security", "IPv6 480 bits", "Lookup sequence", "0 first, 1 second",
                                         nullptr};
const char *const k_cap_tpl_get_help[] = {
    "Show", "ACL", "Lookup", "VLAN ACL", "Chip-wide", "Port", "Port name", "Ingress ACL", "Chip-wide", "Port",
    "Port name", "VLAN", "VLAN id", "Source virtual port", "Virtual port id", "Egress ACL", "Chip-wide", "Port",
    "Port name", "VLAN", "VLAN id", "Destination virtual port", "Virtual port id", "CPU ACL", "Cause id", nullptr};
const char *const k_entry_create_help[] = {"ACL", "Entry", "Entry id", "Create", "Group", "Group id", "Priority",
                                           "Smaller first", nullptr};
const char *const k_entry_set_help[] = {"ACL", "Entry", "Entry id", "Destroy", "Install", "Uninstall", nullptr};
const char *const k_entry_tpl_head[] = {"ACL", "Entry", "Entry id", "Template", nullptr};
const char *const k_entry_tpl_get_help[] = {"Show", "ACL", "Entry", "Entry id", "Template", nullptr};
const char *const k_entry_based_help[] = {"ACL", "Entry", "Entry id", "Key base", "Chip-wide", "Port", "VLAN",
                                          "Virtual port", nullptr};
const char *const k_entry_based_get_help[] = {"Show", "ACL", "Entry", "Entry id", "Key base", nullptr};
const char *const k_match_add_head[] = {"ACL", "Entry", "Entry id", "Match item", "Add", nullptr};
const char *const k_match_del_head[] = {"ACL", "Entry", "Entry id", "Match item", "Remove", nullptr};
const char *const k_action_add_head[] = {"ACL", "Entry", "Entry id", "Action", "Add", nullptr};
const char *const k_action_del_head[] = {"ACL", "Entry", "Entry id", "Action", "Remove", nullptr};
const char *const k_match_tail[] = {"Value (a number or A.B.C.D)", "Mask (all ones without; a number or A.B.C.D)",
                                    nullptr};
const char *const k_action_tail[] = {"Value", "Second value", nullptr};
const char *const k_none[] = {nullptr};
const char *const k_entry_pri_help[] = {"ACL", "Entry", "Entry id", "Priority", "Smaller first", nullptr};
const char *const k_entry_get_help[] = {"Show", "ACL", "Entry", "Entry id", nullptr};
const char *const k_entry_all_help[] = {"Show", "ACL", "Entry", "All entries", nullptr};
const char *const k_port_cfg_help[] = {
    "ACL", "Port", "Port list", "Settings", "VLAN ACL lookups", "Enable", "Disable", "Ingress ACL lookups", "Enable",
    "Disable", "Egress ACL lookups", "Enable", "Disable", "A VLAN ACL miss drops", "Enable", "Disable",
    "IPv4 source guard", "Enable", "Disable", "IPv6 source guard", "Enable", "Disable", "Ingress class id",
    "0 to 15", "Egress class id", "Class id", "VLAN ACL group id", "Group id", nullptr};
const char *const k_port_get_help[] = {"Show", "ACL", "Port", "Port list", "All ports", "Settings", nullptr};
const char *const k_vlan_cfg_help[] = {"ACL", "VLAN", "VLAN list", "Settings", "IPv4 source guard", "Enable",
                                       "Disable", "IPv6 source guard", "Enable", "Disable", "MFF", "Enable",
                                       "Disable", nullptr};
const char *const k_vlan_get_help[] = {"Show", "ACL", "VLAN", "VLAN id", "All VLANs", "Settings", nullptr};
const char *const k_glb_set_help[] = {
    "ACL", "Global", "Settings", "VLAN ACL", "Key port mode 0", "Value", "Key port mode 1", "Value", "Key type",
    "Value", "Ingress ACL", "Setting 0", "0 to 255", "Setting 1", "0 to 255", "Setting 2", "0 to 255",
    "IPv6 chunks", "Chunk 0", "Chunk 1", "Chunk 2", "Chunk 3", "Egress ACL", "IPv6 chunks", "Chunk 0", "Chunk 1",
    "Chunk 2", "Chunk 3", "Chunk 4", "Chunk 5", nullptr};
const char *const k_glb_get_help[] = {"Show", "ACL", "Global", "Settings", nullptr};
const char *const k_tpl_show_head[] = {"Show", "ACL", "Template", nullptr};

cli_cmd_desc g_acl_desc[] = {
    {"acl group WORD create type (vcap | icap | ecap | cpucap | ipsg | mff |mcap) width-mode (single | double | "
     "triple | quad | auto) ({alloc-mode (size WORD | block-ids WORD) | priority WORD | name WORD}|)",
     -1, cli_acl_group_create, k_group_create_help, 0},
    {"show acl group (WORD | all | support-action) (detail |)", -1, cli_acl_group_get, k_group_get_help, 0},
    {"acl group WORD (destroy | install | uninstall)", -1, cli_acl_group_set, k_group_set_help, 0},
    {"acl template vcap based (glb | port WORD) type (width-single | width-double)", -1, cli_acl_vcap_template_set,
     k_vcap_tpl_help, 0},
    {"acl template icap based (glb | port WORD | vlan WORD | svp WORD) pri WORD type (none | ipv4 | sipv6 | dipv6 | "
     "ipv6-mac | all-ipv6-port | ipv6-ip-svp | ipv6-exp | udf | arp | ucl-ipv4 | ucl-ipv6 | width-single-l2 | "
     "width-single-ipv4) (lookup-sequence WORD |)",
     -1, cli_acl_icap_template_set, k_icap_tpl_help, 0},
    {"acl template ecap based (glb | port WORD | vlan WORD | dvp WORD ) pri WORD type (none | ipv4 | sipv6 | dipv6 | "
     "ipv6-mac | all-ipv6-port | ipv6-ip-dvp | ipv6-exp)",
     -1, cli_acl_ecap_template_set, k_ecap_tpl_help, 0},
    {"acl template cpucap based cpu-cause WORD type (none | normal | sipv6 | dipv6 | ipv6-mac | ipv6-sec | ipv6-exp) "
     "(lookup-sequence WORD |)",
     -1, cli_acl_cpucap_template_set, k_cpucap_tpl_help, 0},
    {"show acl template (vcap (glb | port WORD) | icap (glb | port WORD | vlan WORD | svp WORD) | ecap (glb | port "
     "WORD | vlan WORD | dvp WORD) | cpucap WORD)",
     -1, cli_acl_cap_template_get, k_cap_tpl_get_help, 0},
    {"acl entry WORD create group WORD pri WORD", -1, cli_acl_entry_create, k_entry_create_help, 0},
    {"acl entry WORD (destroy | install | uninstall)", -1, cli_acl_entry_set, k_entry_set_help, 0},
    {nullptr, -1, cli_acl_entry_template_set, nullptr, 0},
    {"show acl entry WORD template", -1, cli_acl_entry_template_get, k_entry_tpl_get_help, 0},
    {"acl entry WORD based (glb | port | vlan | vp )", -1, cli_acl_entry_based_set, k_entry_based_help, 0},
    {"show acl entry WORD based", -1, cli_acl_entry_based_get, k_entry_based_get_help, 0},
    {nullptr, -1, cli_acl_entry_match_add, nullptr, 0},
    {nullptr, -1, cli_acl_entry_match_delete, nullptr, 0},
    {nullptr, -1, cli_acl_entry_action_add, nullptr, 0},
    {nullptr, -1, cli_acl_entry_action_delete, nullptr, 0},
    {"acl entry WORD pri WORD", -1, cli_acl_entry_pri_set, k_entry_pri_help, 0},
    {"show acl entry WORD", -1, cli_acl_entry_get, k_entry_get_help, 0},
    {"show acl entry all", -1, cli_acl_entry_all_get, k_entry_all_help, 0},
    {"acl port WORD cfg {vcap (enable | disable) | icap (enable | disable) | ecap (enable | disable) | vcap-miss-drop "
     "(enable | disable) | ipsg-v4 (enable | disable) | ipsg-v6 (enable | disable) | ing-classid WORD | egr-classid "
     "WORD | vcap-group-id WORD}",
     -1, cli_acl_port_config, k_port_cfg_help, 0},
    {"show acl port (WORD | all) cfg", -1, cli_acl_port_get, k_port_get_help, 0},
    {"acl vlan WORD cfg {ipsg-v4 (enable | disable) | ipsg-v6 (enable | disable) | mff (enable | disable)}", -1,
     cli_acl_vlan_config, k_vlan_cfg_help, 0},
    {"show acl vlan (WORD | all) cfg", -1, cli_acl_vlan_get, k_vlan_get_help, 0},
    {"acl glb cfg (vcap (key-port-mode0 WORD | key-port-mode1 WORD | type WORD) | icap (cfg0 WORD | cfg1 WORD | cfg2 "
     "WORD | ipv6-ip-sel WORD WORD WORD WORD) | ecap ipv6-ip-sel WORD WORD WORD WORD WORD WORD)",
     -1, cli_acl_global_config_set, k_glb_set_help, 0},
    {"show acl glb cfg", -1, cli_acl_global_config_get, k_glb_get_help, 0},
    {nullptr, -1, cli_acl_template_get, nullptr, 0},
};

constexpr u32 k_acl_commands = sizeof(g_acl_desc) / sizeof(g_acl_desc[0]);
cli_cmd_item g_acl_items[k_acl_commands];

// The generated definitions into the records whose handler they belong to.
void _place(cli_cmd_handler_t handler, const Generated &g)
{
    for (cli_cmd_desc &d : g_acl_desc) {
        if (d.handler == handler) {
            d.cmd = g.cmd;
            d.help = g.help;
        }
    }
}

} // namespace

extern "C" void cli_cmd_init_acl(void)
{
    _generate(&g_acl_template_set, "acl entry WORD template", k_entry_tpl_head, g_template_type_id_name,
              ACL_TEMPLATE_NONE, "", k_none);
    _generate(&g_acl_match_add, "acl entry WORD match add", k_match_add_head, g_entry_match_id_name, ACL_MATCH_NULL,
              "WORD (WORD |)", k_match_tail);
    _generate(&g_acl_match_del, "acl entry WORD match del", k_match_del_head, g_entry_match_id_name, ACL_MATCH_NULL,
              "", k_none);
    _generate(&g_acl_action_add, "acl entry WORD action add", k_action_add_head, g_entry_action_id_name,
              ACL_ACTION_NULL, "(WORD (WORD |) |)", k_action_tail);
    _generate(&g_acl_action_del, "acl entry WORD action del", k_action_del_head, g_entry_action_id_name,
              ACL_ACTION_NULL, "", k_none);
    // "all" and the templates' names, as one group.
    static const char *tpl_words[ACL_TEMPLATE_COUNT];
    tpl_words[0] = "all";
    for (u32 t = 0; t < ACL_TEMPLATE_NONE; t++) {
        tpl_words[t + 1] = g_template_type_id_name[t];
    }
    _generate(&g_acl_template_show, "show acl template", k_tpl_show_head, tpl_words, ACL_TEMPLATE_COUNT, "", k_none);
    _place(cli_acl_entry_template_set, g_acl_template_set);
    _place(cli_acl_entry_match_add, g_acl_match_add);
    _place(cli_acl_entry_match_delete, g_acl_match_del);
    _place(cli_acl_entry_action_add, g_acl_action_add);
    _place(cli_acl_entry_action_delete, g_acl_action_del);
    _place(cli_acl_template_get, g_acl_template_show);
    cli_cmd_descs_link(g_acl_desc, g_acl_items, k_acl_commands, CLI_MODE_ACL);
}
