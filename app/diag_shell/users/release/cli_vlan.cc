// The `vlan` mode: VLANs and their members, the ports' VLAN behaviour,
// TPIDs and the global VLAN settings, through the vlan_api_* family.
//
// Ports are named as the shell names them (cli_pport_list_walk); a VID
// list ("10,20-22") runs a VLAN command once per VID, stopping at the
// first failure.
#include <tide/vlan.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"

namespace {

i32 _fail(const char *what, i32 rc)
{
    cli_output_show(" call %s failed, %s\n", what, shr_errmsg(rc));
    return rc;
}

bool _num(const char *word, u32 *out)
{
    if (cli_get_uint32_param(word, out) != 0) {
        cli_output_show("parameter %s is incorrect.\n", word);
        return false;
    }
    return true;
}

bool _enable(const char *word)
{
    return std::strcmp(word, "enable") == 0;
}

// A port list into a bitmap; false after its line.
bool _ports(u32 chip_id, const char *list, port_bitmap *out)
{
    *out = port_bitmap{};
    return cli_pport_list_walk(chip_id, list, [&](u32 lport, const char *) {
               out->word[lport / 64] |= u64{1} << (lport % 64);
               return SHR_E_NONE;
           }) == SHR_E_NONE;
}

// `fn(vid)` for each VID of a list, until the first failure.
template <typename Fn>
i32 _each_vid(const char *list, Fn fn)
{
    if (cli_check_intlist(list) < 0) {
        cli_output_show("vlan list %s is invalid!\n", list);
        return SHR_E_PARAM;
    }
    char buf[256];
    snprintf(buf, sizeof(buf), "%s", list);
    char *cursor = buf;
    for (i32 vid = cli_get_next_from_intlist(&cursor, 0); vid >= 0; vid = cli_get_next_from_intlist(&cursor, vid)) {
        const i32 rc = fn(static_cast<u32>(vid));
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

// `fn(lport)` for each port of a list, until the first failure.
template <typename Fn>
i32 _each_port(u32 chip_id, const char *list, Fn fn)
{
    return cli_pport_list_walk(chip_id, list, [&](u32 lport, const char *) { return fn(lport); });
}

i32 _port_ctrl(u32 chip_id, u32 lport, u32 key, u32 value)
{
    vlan_control c{key, value};
    const i32 rc = vlan_api_port_control_set(chip_id, lport, &c);
    return rc != 0 ? _fail("vlan_api_port_control_set", rc) : 0;
}

u32 _port_ctrl_get(u32 chip_id, u32 lport, u32 key)
{
    vlan_control c{key, 0};
    vlan_api_port_control_get(chip_id, lport, &c);
    return c.value;
}

// ---- VLANs -------------------------------------------------------------------------------

// vlan create WORD (ports WORD (untagged WORD |) |)
i32 cli_vlan_create(u32 chip_id, u32, i32 argc, char **argv)
{
    // argv: the VIDs, then "ports" and its list, "untagged" and its list.
    port_bitmap members{}, untagged{};
    if ((argc > 2 && !_ports(chip_id, argv[2], &members)) || (argc > 4 && !_ports(chip_id, argv[4], &untagged))) {
        return SHR_E_PARAM;
    }
    return _each_vid(argv[0], [&](u32 vid) {
        i32 rc = vlan_api_create(chip_id, vid);
        if (rc != 0) {
            return _fail("vlan_api_create", rc);
        }
        if (argc > 2) {
            rc = vlan_api_port_set(chip_id, vid, &members, &untagged);
        }
        return rc != 0 ? _fail("vlan_api_port_set", rc) : 0;
    });
}

// vlan WORD add ports WORD (untagged WORD |)
i32 cli_vlan_member_add(u32 chip_id, u32, i32 argc, char **argv)
{
    port_bitmap members{}, untagged{};
    if (!_ports(chip_id, argv[1], &members) || (argc > 3 && !_ports(chip_id, argv[3], &untagged))) {
        return SHR_E_PARAM;
    }
    return _each_vid(argv[0], [&](u32 vid) {
        const i32 rc = vlan_api_port_add(chip_id, vid, &members, &untagged);
        return rc != 0 ? _fail("vlan_api_port_add", rc) : 0;
    });
}

// vlan WORD del ports WORD
i32 cli_vlan_member_delete(u32 chip_id, u32, i32, char **argv)
{
    port_bitmap ports{};
    if (!_ports(chip_id, argv[1], &ports)) {
        return SHR_E_PARAM;
    }
    return _each_vid(argv[0], [&](u32 vid) {
        const i32 rc = vlan_api_port_delete(chip_id, vid, &ports);
        return rc != 0 ? _fail("vlan_api_port_delete", rc) : 0;
    });
}

// vlan destroy WORD
i32 cli_vlan_destroy(u32 chip_id, u32, i32, char **argv)
{
    return _each_vid(argv[0], [&](u32 vid) {
        const i32 rc = vlan_api_destroy(chip_id, vid);
        return rc != 0 ? _fail("vlan_api_destroy", rc) : 0;
    });
}

// One line of a VLAN: its members and untagged ports.
bool _show_one(u32 chip_id, u32 vid)
{
    port_bitmap m{}, u{};
    if (vlan_api_port_get(chip_id, vid, &m, &u) != 0) {
        return false;
    }
    char members[256] = "", untagged[256] = "";
    cli_lport_bitmap_to_pport_list(chip_id, &m, members, sizeof(members));
    cli_lport_bitmap_to_pport_list(chip_id, &u, untagged, sizeof(untagged));
    cli_output_show("%-6u %-40s %s\n", vid, members[0] != '\0' ? members : "-", untagged[0] != '\0' ? untagged : "-");
    return true;
}

// show vlan (WORD |)
i32 cli_vlan_show(u32 chip_id, u32, i32 argc, char **argv)
{
    cli_output_show("%-6s %-40s %s\n", "VID", "Members", "Untagged");
    if (argc > 0) {
        return _each_vid(argv[0], [&](u32 vid) {
            if (!_show_one(chip_id, vid)) {
                cli_output_show("vlan %u does not exist\n", vid);
                return SHR_E_NOT_FOUND;
            }
            return SHR_E_NONE;
        });
    }
    u32 count = 0;
    for (u32 vid = 0; vid <= VLAN_VID_MAX; vid++) {
        count += _show_one(chip_id, vid) ? 1 : 0;
    }
    cli_output_show("Total: %u\n", count);
    return 0;
}

// The settings of a VLAN's records by name, with their control keys.
const cli_word k_vlan_cfg_words[] = {
    {VLAN_CTRL_CLASSID, "class-id"},       {VLAN_CTRL_PROTOCOL_BMP, "protocol-bmp"},
    {VLAN_CTRL_CNT_ID, "counter-id"},       {VLAN_CTRL_MAC_IDX, "mac-index"},
    {VLAN_CTRL_SMAC_IDX, "egr-mac-index"},  {VLAN_CTRL_EGRESS_CNT_ID, "egr-counter-id"},
};

// vlan WORD (super-vid | class-id | ... ) WORD
i32 cli_vlan_cfg_set(u32 chip_id, u32, i32, char **argv)
{
    u32 key = 0, value = 0;
    if (!cli_word_id_get(k_vlan_cfg_words, argv[1], &key)) {
        cli_output_show("%s is not supported on this chip\n", argv[1]);
        return SHR_E_NOT_SUPPORT;
    }
    if (!_num(argv[2], &value)) {
        return SHR_E_PARAM;
    }
    return _each_vid(argv[0], [&](u32 vid) {
        vlan_control c{key, value};
        const i32 rc = vlan_api_control_set(chip_id, vid, &c);
        return rc != 0 ? _fail("vlan_api_control_set", rc) : 0;
    });
}

// show vlan (WORD |) info
i32 cli_vlan_cfg_show(u32 chip_id, u32, i32 argc, char **argv)
{
    auto one = [&](u32 vid) {
        port_bitmap m{}, u{};
        if (vlan_api_port_get(chip_id, vid, &m, &u) != 0) {
            return false;
        }
        cli_output_show("vlan %u:\n", vid);
        for (const cli_word &w : k_vlan_cfg_words) {
            vlan_control c{w.id, 0};
            vlan_api_control_get(chip_id, vid, &c);
            cli_output_show("  %-16s %u\n", w.name, c.value);
        }
        return true;
    };
    if (argc > 0) {
        return _each_vid(argv[0], [&](u32 vid) {
            if (!one(vid)) {
                cli_output_show("vlan %u does not exist\n", vid);
                return SHR_E_NOT_FOUND;
            }
            return SHR_E_NONE;
        });
    }
    for (u32 vid = 0; vid <= VLAN_VID_MAX; vid++) {
        one(vid);
    }
    return 0;
}

// ---- TPIDs ---------------------------------------------------------------------------------

// vlan tpid (outer | inner) index WORD WORD: the value of TPID `index`;
// `inner` also lets it stand for an inner tag.
i32 cli_vlan_tpid_set(u32 chip_id, u32, i32, char **argv)
{
    u32 index = 0, value = 0;
    if (!_num(argv[1], &index) || !_num(argv[2], &value)) {
        return SHR_E_PARAM;
    }
    i32 rc = vlan_api_tpid_set(chip_id, index, value);
    if (rc != 0) {
        return _fail("vlan_api_tpid_set", rc);
    }
    if (std::strcmp(argv[0], "inner") == 0) {
        vlan_control c{VLAN_GLB_INNER_TPID0 + index, 1};
        rc = vlan_api_global_cfg_set(chip_id, &c);
    }
    return rc != 0 ? _fail("vlan_api_global_cfg_set", rc) : 0;
}

// show vlan tpid (outer | inner)
i32 cli_vlan_tpid_show(u32 chip_id, u32, i32, char **argv)
{
    const bool inner = std::strcmp(argv[0], "inner") == 0;
    cli_output_show("%-6s %-8s %s\n", "Index", "TPID", inner ? "Inner" : "");
    for (u32 id = 0; id < VLAN_TPID_COUNT; id++) {
        u32 value = 0;
        const i32 rc = vlan_api_tpid_get(chip_id, id, &value);
        if (rc != 0) {
            return _fail("vlan_api_tpid_get", rc);
        }
        vlan_control c{VLAN_GLB_INNER_TPID0 + id, 0};
        vlan_api_global_cfg_get(chip_id, &c);
        cli_output_show("%-6u 0x%04x   %s\n", id, value, inner ? (c.value != 0 ? "enable" : "disable") : "");
    }
    return 0;
}

// ---- ports -----------------------------------------------------------------------------------

// vlan ports WORD pvid WORD ({pri WORD | cfi WORD} | )
i32 cli_vlan_port_pvid_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 pvid = 0;
    if (!_num(argv[1], &pvid)) {
        return SHR_E_PARAM;
    }
    // The optional words come as name, value pairs after the PVID.
    struct Opt {
        u32 key;
        u32 value;
        bool given;
    } pri{VLAN_PORT_CTRL_PVID_PRI, 0, false}, cfi{VLAN_PORT_CTRL_PVID_CFI, 0, false};
    for (i32 i = 2; i + 1 < argc; i += 2) {
        Opt &o = std::strcmp(argv[i], "pri") == 0 ? pri : cfi;
        o.given = _num(argv[i + 1], &o.value);
        if (!o.given) {
            return SHR_E_PARAM;
        }
    }
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        i32 rc = _port_ctrl(chip_id, lport, VLAN_PORT_CTRL_PVID, pvid);
        for (const Opt *o : {&pri, &cfi}) {
            if (rc == 0 && o->given) {
                rc = _port_ctrl(chip_id, lport, o->key, o->value);
            }
        }
        return rc;
    });
}

// vlan ports WORD outer-tpid-index WORD (enable | disable)
i32 cli_vlan_port_outer_tpid_index_set(u32 chip_id, u32, i32, char **argv)
{
    u32 index = 0;
    if (!_num(argv[1], &index) || index >= VLAN_TPID_COUNT) {
        cli_output_show("tpid index %s is out of range 0~3\n", argv[1]);
        return SHR_E_PARAM;
    }
    const bool on = _enable(argv[2]);
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        u32 bitmap = 0;
        i32 rc = vlan_api_port_tpid_bitmap_get(chip_id, lport, &bitmap);
        if (rc == 0) {
            bitmap = on ? bitmap | 1u << index : bitmap & ~(1u << index);
            rc = vlan_api_port_tpid_bitmap_set(chip_id, lport, bitmap);
        }
        return rc != 0 ? _fail("vlan_api_port_tpid_bitmap_set", rc) : 0;
    });
}

// vlan ports WORD accept-frame (tag | untag | both | none)
i32 cli_vlan_port_accpet_frame_set(u32 chip_id, u32, i32, char **argv)
{
    static const cli_word kAccept[] = {{1, "tag"}, {2, "untag"}, {3, "both"}, {0, "none"}};
    u32 accept = 0;
    cli_word_id_get(kAccept, argv[1], &accept);
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        const i32 rc = _port_ctrl(chip_id, lport, VLAN_PORT_CTRL_DISCARD_TAGGED, (accept & 1) != 0 ? 0 : 1);
        return rc != 0 ? rc : _port_ctrl(chip_id, lport, VLAN_PORT_CTRL_DISCARD_UNTAGGED, (accept & 2) != 0 ? 0 : 1);
    });
}

// vlan ports WORD (class-id WORD | gid WORD | protocol-bmp WORD | egr-hash-opc WORD | egr-tpid-index WORD | ...)
const cli_word k_port_value_words[] = {
    {VLAN_PORT_CTRL_CLASSID, "class-id"},        {VLAN_PORT_CTRL_GID, "gid"},
    {VLAN_PORT_CTRL_PROTOCOL_BMP, "protocol-bmp"}, {VLAN_PORT_CTRL_HASH_OPC, "egr-hash-opc"},
    {VLAN_PORT_CTRL_TPID_INDEX, "egr-tpid-index"},
};
const cli_word k_cnt_type_words[] = {{0, "none"}, {1, "ip"}, {2, "uuc-umc"}, {3, "all"}};

i32 cli_vlan_port_cfg_value_set(u32 chip_id, u32, i32, char **argv)
{
    u32 key = 0, value = 0;
    if (std::strcmp(argv[1], "port-cnt-type") == 0 || std::strcmp(argv[1], "egr-port-cnt-type") == 0) {
        key = argv[1][0] == 'p' ? VLAN_PORT_CTRL_PORT_CNT_TYPE : VLAN_PORT_CTRL_E_PORT_CNT_TYPE;
        cli_word_id_get(k_cnt_type_words, argv[2], &value);
    } else if (!cli_word_id_get(k_port_value_words, argv[1], &key)) {
        cli_output_show("%s is not supported on this chip\n", argv[1]);
        return SHR_E_NOT_SUPPORT;
    } else if (!_num(argv[2], &value)) {
        return SHR_E_PARAM;
    }
    return _each_port(chip_id, argv[0], [&](u32 lport) { return _port_ctrl(chip_id, lport, key, value); });
}

// vlan ports WORD trust (none | set-qindex-color qindex WORD color (green | yellow | red) |
//                        (dscp | opri | opri-cfi | ipri | ipri-cfi) map-id WORD)
i32 cli_vlan_port_trust_set(u32 chip_id, u32, i32 argc, char **argv)
{
    static const cli_word kTypes[] = {{VLAN_TRUST_NONE, "none"},
                                      {VLAN_TRUST_QINDEX_COLOR, "set-qindex-color"},
                                      {VLAN_TRUST_DSCP, "dscp"},
                                      {VLAN_TRUST_OUTER_PRI, "opri"},
                                      {VLAN_TRUST_OUTER_PRI_CFI, "opri-cfi"},
                                      {VLAN_TRUST_INNER_PRI, "ipri"},
                                      {VLAN_TRUST_INNER_PRI_CFI, "ipri-cfi"}};
    static const cli_word kColors[] = {{0, "green"}, {1, "yellow"}, {2, "red"}};
    u32 type = 0, value = 0, color = 0;
    cli_word_id_get(kTypes, argv[1], &type);
    vlan_trust_info info{};
    // argv: the ports, the type, then "qindex" n "color" c, or "map-id" n.
    if (type == VLAN_TRUST_QINDEX_COLOR && argc > 5) {
        if (!_num(argv[3], &value)) {
            return SHR_E_PARAM;
        }
        cli_word_id_get(kColors, argv[5], &color);
        info.qindex = static_cast<u8>(value > 0xFF ? 0xFF : value);
        info.color = static_cast<u8>(color);
    } else if (type != VLAN_TRUST_NONE && argc > 3) {
        if (!_num(argv[3], &value)) {
            return SHR_E_PARAM;
        }
        info.ba_tid = static_cast<u8>(value > 0xFF ? 0xFF : value);
    }
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        const i32 rc = vlan_api_port_trust_type_set(chip_id, lport, type, &info);
        return rc != 0 ? _fail("vlan_api_port_trust_type_set", rc) : 0;
    });
}

// show vlan port WORD info
i32 cli_vlan_port_cfg_show(u32 chip_id, u32, i32, char **argv)
{
    struct Row {
        const char *name;
        u32 key;
    };
    static constexpr Row kRows[] = {
        {"pvid", VLAN_PORT_CTRL_PVID},
        {"pvid priority", VLAN_PORT_CTRL_PVID_PRI},
        {"pvid cfi", VLAN_PORT_CTRL_PVID_CFI},
        {"ingress filtering", VLAN_PORT_CTRL_VLAN_CHECK},
        {"discard tagged", VLAN_PORT_CTRL_DISCARD_TAGGED},
        {"discard untagged", VLAN_PORT_CTRL_DISCARD_UNTAGGED},
        {"class id", VLAN_PORT_CTRL_CLASSID},
        {"gid", VLAN_PORT_CTRL_GID},
        {"protocol bitmap", VLAN_PORT_CTRL_PROTOCOL_BMP},
        {"egress filtering", VLAN_PORT_CTRL_E_VLAN_CHECK},
        {"egress tpid index", VLAN_PORT_CTRL_TPID_INDEX},
        {"egress miss drop", VLAN_PORT_CTRL_VTMISS_DROP},
    };
    return cli_pport_list_walk(chip_id, argv[0], [&](u32 lport, const char *pport) {
        cli_output_show("port %s:\n", pport);
        for (const Row &r : kRows) {
            cli_output_show("  %-20s %u\n", r.name, _port_ctrl_get(chip_id, lport, r.key));
        }
        u32 bitmap = 0, type = 0;
        vlan_trust_info info{};
        vlan_api_port_tpid_bitmap_get(chip_id, lport, &bitmap);
        vlan_api_port_trust_type_get(chip_id, lport, &type, &info);
        cli_output_show("  %-20s 0x%x\n", "outer tpid bitmap", bitmap);
        cli_output_show("  %-20s %u\n", "trust type", type);
        return SHR_E_NONE;
    });
}

// ---- global settings ---------------------------------------------------------------------

// vlan (vlan-check-drop-action | vlan-no-exist-action | stp-disable-drop-action | stp-learn-drop-action |
//       stp-block-drop-action) (forward | drop | copy-to-cpu | redirect-to-cpu)
const cli_word k_glb_action_keys[] = {{VLAN_GLB_VLAN_CHECK_ACT, "vlan-check-drop-action"},
                                      {VLAN_GLB_MSTP_DIS_ACT, "stp-disable-drop-action"},
                                      {VLAN_GLB_MSTP_LRN_ACT, "stp-learn-drop-action"},
                                      {VLAN_GLB_MSTP_BLK_ACT, "stp-block-drop-action"}};
const cli_word k_glb_actions[] = {{0, "copy-to-cpu"}, {1, "redirect-to-cpu"}, {2, "forward"}, {3, "drop"}};

i32 cli_vlan_global_action_set(u32 chip_id, u32, i32, char **argv)
{
    u32 key = 0, act = 0;
    if (!cli_word_id_get(k_glb_action_keys, argv[0], &key)) {
        cli_output_show("%s is not supported on this chip\n", argv[0]);
        return SHR_E_NOT_SUPPORT;
    }
    cli_word_id_get(k_glb_actions, argv[1], &act);
    vlan_control c{key, act};
    const i32 rc = vlan_api_global_cfg_set(chip_id, &c);
    return rc != 0 ? _fail("vlan_api_global_cfg_set", rc) : 0;
}

i32 _glb_set(u32 chip_id, u32 key, u32 value)
{
    vlan_control c{key, value};
    const i32 rc = vlan_api_global_cfg_set(chip_id, &c);
    return rc != 0 ? _fail("vlan_api_global_cfg_set", rc) : 0;
}

// vlan (pvid-add (untag | all) (add | add-after-del) | vacl-vt-action-mode (cross-effect | action-pri) |
//       after-vt-untag-vid-sel (zero | from-pkt-ovid) | stp-learn-drop-mode (learn | not-learn) |
//       vlan-switch-pritag-tagnum WORD | loopback-tnl-sp-mode (sp | sp-rsm))
// Each setting is a key of vlan_api_global_cfg_set and its value words.
const cli_word k_glb_values[] = {{0, "untag"}, {1, "all"},           {0, "add"},      {1, "add-after-del"},
                                 {0, "cross-effect"}, {1, "action-pri"}, {0, "zero"}, {1, "from-pkt-ovid"},
                                 {0, "not-learn"}, {1, "learn"},     {0, "sp"},       {1, "sp-rsm"}};
const cli_word k_glb_cfg_keys[] = {{8, "after-vt-untag-vid-sel"}, {9, "vacl-vt-action-mode"},
                                   {VLAN_GLB_MSTP_LRN_DROP_MODE, "stp-learn-drop-mode"},
                                   {VLAN_GLB_PRI_TAG_TAGNUM, "vlan-switch-pritag-tagnum"},
                                   {VLAN_GLB_LP_TNL_SP_MODE, "loopback-tnl-sp-mode"}};

i32 cli_vlan_global_cfg_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 first = 0, second = 0, key = 0;
    if (std::strcmp(argv[0], "pvid-add") == 0 && argc > 2) {
        cli_word_id_get(k_glb_values, argv[1], &first);
        cli_word_id_get(k_glb_values, argv[2], &second);
        const i32 rc = _glb_set(chip_id, VLAN_GLB_PVID_ADD_MODE, first);
        return rc != 0 ? rc : _glb_set(chip_id, VLAN_GLB_PRI_TAG_ADD_MODE, second);
    }
    cli_word_id_get(k_glb_cfg_keys, argv[0], &key);
    if (key == VLAN_GLB_PRI_TAG_TAGNUM ? !_num(argv[1], &first) : !cli_word_id_get(k_glb_values, argv[1], &first)) {
        return SHR_E_PARAM;
    }
    return _glb_set(chip_id, key, first);
}

// vlan remark-level (voice-vlan-dscp | voice-vlan-ocfi | voice-vlan-opri | voice-vlan-icfi | voice-vlan-ipri)
//      (not-modify | vacl | iacl | voice-vlan)
const cli_word k_remark_keys[] = {{VLAN_GLB_VOICE_DSCP_RMK, "voice-vlan-dscp"}, {4, "voice-vlan-ocfi"},
                                  {5, "voice-vlan-opri"}, {6, "voice-vlan-icfi"}, {7, "voice-vlan-ipri"}};
const cli_word k_remark_levels[] = {{0, "not-modify"}, {1, "vacl"}, {2, "iacl"}, {3, "voice-vlan"}};

i32 cli_vlan_global_remark_level_set(u32 chip_id, u32, i32, char **argv)
{
    u32 key = 0, level = 0;
    cli_word_id_get(k_remark_keys, argv[0], &key);
    cli_word_id_get(k_remark_levels, argv[1], &level);
    return _glb_set(chip_id, key, level);
}

// vlan (pa-immune-stp-learn-action | ... ) (forward-pkt | tocpu-pkt) (none | drop): the immune actions
// are keys 25..29 for forwarded frames and 30..34 for frames to the CPU, in the order of the words.
const cli_word k_immune_keys[] = {{0, "pa-immune-stp-learn-action"}, {1, "pa-immune-stp-block-action"},
                                  {2, "pa-immune-lag-blk-action"}, {3, "pa-immune-iblk-action"},
                                  {4, "pa-immune-erps-blk-action"}};

i32 cli_vlan_global_immune_action_set(u32 chip_id, u32, i32, char **argv)
{
    u32 which = 0;
    cli_word_id_get(k_immune_keys, argv[0], &which);
    const u32 base = std::strcmp(argv[1], "forward-pkt") == 0 ? VLAN_GLB_IMMUNE_FWD_STP_LRN : VLAN_GLB_IMMUNE_FWD_STP_LRN + 5;
    return _glb_set(chip_id, base + which, std::strcmp(argv[2], "drop") == 0 ? 1 : 0);
}

// vlan (inner-tpid WORD | low-power | cp-mode WORD (...)) (enable | disable)
i32 cli_vlan_global_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    const u32 on = _enable(argv[argc - 1]) ? 1 : 0;
    if (std::strcmp(argv[0], "low-power") == 0) {
        return _glb_set(chip_id, VLAN_GLB_LOW_POWER, on);
    }
    u32 index = 0;
    if (std::strcmp(argv[0], "inner-tpid") == 0) {
        if (!_num(argv[1], &index) || index >= VLAN_TPID_COUNT) {
            cli_output_show("tpid index %s is out of range 0~3\n", argv[1]);
            return SHR_E_PARAM;
        }
        return _glb_set(chip_id, VLAN_GLB_INNER_TPID0 + index, on);
    }
    cli_output_show("cp-mode is not supported in this build\n");
    return SHR_E_NOT_SUPPORT;
}

// show vlan glb-info
i32 cli_vlan_global_cfg_show(u32 chip_id, u32, i32, char **)
{
    auto value = [&](u32 key) {
        vlan_control c{key, 0};
        return vlan_api_global_cfg_get(chip_id, &c) == 0 ? static_cast<i32>(c.value) : -1;
    };
    for (const cli_word &k : k_glb_action_keys) {
        const i32 v = value(k.id);
        cli_output_show("%-26s %s\n", k.name, v >= 0 ? cli_word_name_get(k_glb_actions, static_cast<u32>(v), "?") : "-");
    }
    for (const cli_word &k : k_remark_keys) {
        const i32 v = value(k.id);
        cli_output_show("%-26s %s\n", k.name, v >= 0 ? cli_word_name_get(k_remark_levels, static_cast<u32>(v), "?") : "-");
    }
    cli_output_show("%-26s %d %d\n", "pvid-add", value(VLAN_GLB_PVID_ADD_MODE), value(VLAN_GLB_PRI_TAG_ADD_MODE));
    cli_output_show("%-26s %d\n", "stp-learn-drop-mode", value(VLAN_GLB_MSTP_LRN_DROP_MODE));
    cli_output_show("%-26s %d\n", "vlan-switch-pritag-tagnum", value(VLAN_GLB_PRI_TAG_TAGNUM));
    cli_output_show("%-26s %d\n", "low-power", value(VLAN_GLB_LOW_POWER));
    for (u32 id = 0; id < VLAN_TPID_COUNT; id++) {
        u32 tpid = 0;
        vlan_api_tpid_get(chip_id, id, &tpid);
        cli_output_show("tpid%-22u 0x%04x inner %d\n", id, tpid, value(VLAN_GLB_INNER_TPID0 + id));
    }
    return 0;
}

// ---- egress translation ------------------------------------------------------------------

const cli_word k_evt_key_types[] = {{VLAN_EVT_KEY_PORT_OVID_IVID, "port-ovid-ivid"},
                                   {VLAN_EVT_KEY_PORT_OVID_DOT1P, "port-ovid-dot1p"},
                                   {VLAN_EVT_KEY_PORT_OVID, "port-ovid"}};
const cli_word k_tag_actions[] = {{VLAN_TAG_ACT_NONE, "none"}, {VLAN_TAG_ACT_ADD, "add"},
                                  {VLAN_TAG_ACT_REPLACE, "replace"}, {VLAN_TAG_ACT_DELETE, "delete"}};

// The words of an egress translation command after its key type: each a
// keyword and its value, into the key and the action.  A new priority or
// CFI also asks for its replacement.
bool _evt_words(u32 chip_id, i32 first, i32 argc, char **argv, vlan_egress_translate_key *k,
                vlan_translate_action *a)
{
    for (i32 i = first; i + 1 < argc; i += 2) {
        // The literal words of a group stand alone.
        while (i + 1 < argc && (std::strcmp(argv[i], "match-vlan") == 0 || std::strcmp(argv[i], "action") == 0)) {
            i++;
        }
        if (i + 1 >= argc) {
            break;
        }
        const char *w = argv[i];
        const char *v = argv[i + 1];
        u32 n = 0;
        if (std::strcmp(w, "otag-action") == 0 || std::strcmp(w, "itag-action") == 0) {
            cli_word_id_get(k_tag_actions, v, w[0] == 'o' ? &a->otag_action : &a->itag_action);
            continue;
        }
        if (std::strcmp(w, "port") == 0) {
            if (cli_pport_to_lport_checked(chip_id, v, &k->lport) != 0) {
                return false;
            }
            continue;
        }
        if (!_num(v, &n)) {
            return false;
        }
        if (std::strcmp(w, "tgid") == 0) {
            k->trunk_flag = 1;
            k->tgid = n;
        } else if (std::strcmp(w, "ovid") == 0) {
            k->outer_vlan_id = static_cast<u16>(n > 0xFFFF ? 0xFFFF : n);
        } else if (std::strcmp(w, "ivid") == 0 || std::strcmp(w, "opri") == 0) {
            k->inner_vlan_id = static_cast<u16>(n > 0xFFFF ? 0xFFFF : n);
        } else if (std::strcmp(w, "new-ovid") == 0) {
            a->new_outer_vlan = static_cast<u16>(n > 0xFFFF ? 0xFFFF : n);
        } else if (std::strcmp(w, "new-ivid") == 0) {
            a->new_inner_vlan = static_cast<u16>(n > 0xFFFF ? 0xFFFF : n);
        } else if (std::strcmp(w, "dpid") == 0) {
            a->dpid = n;
            a->dpid_en = 1;
        } else {
            // new-opri, new-ocfi, new-ipri, new-icfi
            const bool outer = w[4] == 'o';
            const bool pri = std::strcmp(w + 5, "pri") == 0;
            u8 *field = outer ? (pri ? &a->new_outer_pri : &a->new_outer_cfi) : (pri ? &a->new_inner_pri : &a->new_inner_cfi);
            *field = static_cast<u8>(n > 0xFF ? 0xFF : n);
            (outer ? (pri ? a->outer_pri_act : a->outer_cfi_act) : (pri ? a->inner_pri_act : a->inner_cfi_act)) = 2;
        }
    }
    return true;
}

// The key type of argv[0]; false after a line for the types this chip lacks.
bool _evt_key_type(const char *word, vlan_egress_translate_key *k)
{
    if (!cli_word_id_get(k_evt_key_types, word, &k->key_type)) {
        cli_output_show("%s is not supported on this chip\n", word);
        return false;
    }
    return true;
}

// egress-vlan-translate add key-type <type> (port WORD | tgid WORD) match-vlan {...} action {...}: one
// handler per key type, the words after the type all in pairs.
template <u32 KeyType>
i32 cli_vlan_egress_vt_add(u32 chip_id, u32, i32 argc, char **argv)
{
    vlan_egress_translate_key k{};
    vlan_translate_action a{};
    k.key_type = KeyType;
    if (!_evt_words(chip_id, 0, argc, argv, &k, &a)) {
        return SHR_E_PARAM;
    }
    const i32 rc = vlan_api_egress_translate_add(chip_id, &k, &a);
    return rc != 0 ? _fail("vlan_api_egress_translate_add", rc) : 0;
}

// egress-vlan-translate del key-type (...) (port WORD | tgid WORD | vp WORD | port-group WORD) match-vlan {...}
i32 cli_vlan_egress_vt_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    vlan_egress_translate_key k{};
    vlan_translate_action a{};
    if (!_evt_key_type(argv[0], &k)) {
        return SHR_E_NOT_SUPPORT;
    }
    if (!_evt_words(chip_id, 1, argc, argv, &k, &a)) {
        return SHR_E_PARAM;
    }
    const i32 rc = vlan_api_egress_translate_delete(chip_id, &k);
    return rc != 0 ? _fail("vlan_api_egress_translate_delete", rc) : 0;
}

i32 _evt_show_one(u32, vlan_egress_translate_key *k, vlan_translate_action *a, void *)
{
    cli_output_show("%-16s %-4s %-4u %-5u %-5u | otag %-7s itag %-7s new-ovid %u new-ivid %u opri %u%s\n",
                    cli_word_name_get(k_evt_key_types, k->key_type, "-"), k->trunk_flag != 0 ? "tgid" : "port",
                    k->trunk_flag != 0 ? k->tgid : k->lport, k->outer_vlan_id, k->inner_vlan_id,
                    cli_word_name_get(k_tag_actions, a->otag_action, "?"),
                    cli_word_name_get(k_tag_actions, a->itag_action, "?"), a->new_outer_vlan, a->new_inner_vlan,
                    a->new_outer_pri, a->outer_pri_act != 0 ? " (replace)" : "");
    return 0;
}

// show egress-vlan-translate (key-type (...) (port WORD | ...) match-vlan {...} | all)
i32 cli_vlan_egress_vt_show(u32 chip_id, u32, i32 argc, char **argv)
{
    cli_output_show("%-16s %-4s %-4s %-5s %-5s | action\n", "Key type", "", "Id", "OVID", "IVID");
    if (argc == 0 || std::strcmp(argv[0], "all") == 0) {
        const i32 rc = vlan_api_egress_translate_traverse(chip_id, _evt_show_one, nullptr);
        return rc != 0 ? _fail("vlan_api_egress_translate_traverse", rc) : 0;
    }
    vlan_egress_translate_key k{};
    vlan_translate_action a{};
    // The key type, after "key-type" when the parser keeps that word.
    const bool word = std::strcmp(argv[0], "key-type") == 0;
    char **rest = argv + (word ? 1 : 0);
    argc -= word ? 1 : 0;
    if (!_evt_key_type(rest[0], &k)) {
        return SHR_E_NOT_SUPPORT;
    }
    if (!_evt_words(chip_id, 1, argc, rest, &k, &a)) {
        return SHR_E_PARAM;
    }
    const i32 rc = vlan_api_egress_translate_get(chip_id, &k, &a);
    if (rc != 0) {
        return _fail("vlan_api_egress_translate_get", rc);
    }
    return _evt_show_one(chip_id, &k, &a, nullptr);
}

// ---- the table of the mode ---------------------------------------------------------------

const char *const k_create_help[] = {"VLAN", "Create", "VLAN id list", "Member ports", "Port list",
                                     "Untagged ports", "Port list", nullptr};
const char *const k_add_help[] = {"VLAN", "VLAN id list", "Add members", "Member ports", "Port list",
                                  "Untagged ports", "Port list", nullptr};
const char *const k_del_help[] = {"VLAN", "VLAN id list", "Delete members", "Member ports", "Port list", nullptr};
const char *const k_destroy_help[] = {"VLAN", "Destroy", "VLAN id list", nullptr};
const char *const k_show_help[] = {"Show", "VLAN", "VLAN id list", nullptr};
const char *const k_tpid_help[] = {"VLAN", "TPID", "Outer tag", "Inner tag", "Index", "Index 0~3", "TPID value",
                                   nullptr};
const char *const k_tpid_show_help[] = {"Show", "VLAN", "TPID", "Outer tag", "Inner tag", nullptr};
const char *const k_pvid_help[] = {"VLAN", "Ports", "Port list", "PVID", "VLAN id", "Priority", "0~7", "CFI",
                                   "0~1", nullptr};
const char *const k_outer_tpid_help[] = {"VLAN", "Ports", "Port list", "Accepted outer TPID", "Index 0~3",
                                         "Enable", "Disable", nullptr};
const char *const k_accept_help[] = {"VLAN", "Ports", "Port list", "Accepted frames", "Tagged only",
                                     "Untagged only", "Both", "None", nullptr};
const char *const k_cfg_help[] = {"VLAN", "VLAN id list", "Super VLAN", "Class id", "Protocol bitmap", "FID",
                                  "Counter id", "Trust dot1p pointer", "Outer TPID index", "MAC index",
                                  "Egress MAC index", "Egress counter id", "Egress outer TPID",
                                  "Unknown unicast flood index", "Unknown multicast flood index",
                                  "Broadcast flood index", "Value", nullptr};
const char *const k_cfg_show_help[] = {"Show", "VLAN", "VLAN id list", "Settings", nullptr};
const char *const k_action_help[] = {"VLAN", "Ingress filtering failure", "VLAN not existing", "STP disabled",
                                     "STP learning", "STP blocking", "Forward", "Drop", "Copy to CPU",
                                     "Redirect to CPU", nullptr};
const char *const k_glb_cfg_help[] = {"VLAN", "PVID add mode", "Untagged frames", "All frames", "Add",
                                      "Add after delete", "VACL and translation action mode", "Cross effect",
                                      "Action priority", "VID after translation untag", "Zero", "From the outer VID",
                                      "STP learn drop mode", "Learn", "Not learn", "Priority-tagged tag number",
                                      "Value", "Loopback tunnel SP mode", "SP", "SP and RSM", nullptr};
const char *const k_remark_help[] = {"VLAN", "Remark level", "Voice VLAN DSCP", "Voice VLAN outer CFI",
                                     "Voice VLAN outer priority", "Voice VLAN inner CFI", "Voice VLAN inner priority",
                                     "Not modify", "VACL", "IACL", "Voice VLAN", nullptr};
const char *const k_immune_help[] = {"VLAN", "STP learn", "STP block", "ERPS block", "Isolation block", "LAG block",
                                     "Forwarded frames", "Frames to the CPU", "None", "Drop", nullptr};
const char *const k_enable_help[] = {"VLAN", "Inner TPID", "Index 0~3", "Low power", "Copy mode", "Tag number",
                                     "Priority-tagged outer priority", "Priority-tagged outer CFI",
                                     "Priority-tagged inner priority", "Priority-tagged inner CFI", "Tag number",
                                     "Value", "Outer priority", "Outer CFI", "Inner priority", "Inner CFI", "Enable",
                                     "Disable", nullptr};
// The help of an add: its words up to the match, the match's words, then
// the action's.
#define CLI_VLAN_EVT_ADD_HELP(...)                                                                               \
    {"Egress VLAN translation", "Add", "Key type", "Key type", "Port", "Port", "Trunk", "Trunk id", "Match",      \
     __VA_ARGS__, "Action", "Outer tag action", "None", "Add", "Replace", "Delete", "Inner tag action", "None",     \
     "Add", "Replace", "Delete", "New outer VID", "VID", "New inner VID", "VID", "New outer priority", "0~7",       \
     "New outer CFI", "0~1", "New inner priority", "0~7", "New inner CFI", "0~1", "Destination port", "0~127",     \
     nullptr}
const char *const k_evt_add_ovid_ivid_help[] = CLI_VLAN_EVT_ADD_HELP("Outer VID", "VID", "Inner VID", "VID");
const char *const k_evt_add_ovid_help[] = CLI_VLAN_EVT_ADD_HELP("Outer VID", "VID");
const char *const k_evt_add_ovid_dot1p_help[] = CLI_VLAN_EVT_ADD_HELP("Outer VID", "VID", "Outer priority", "0~7");
#undef CLI_VLAN_EVT_ADD_HELP
const char *const k_evt_del_help[] = {"Egress VLAN translation", "Delete", "Key type", "Port, outer and inner VID",
                                      "Port and outer VID", "Port, outer VID and priority", "VP, outer and inner VID",
                                      "Port group, outer and inner VID", "Port", "Port", "Trunk", "Trunk id", "VP",
                                      "VP id", "Port group", "Group id", "Match", "Outer VID", "VID", "Inner VID",
                                      "VID", "Outer priority", "0~7", nullptr};
const char *const k_evt_show_help[] = {"Show", "Egress VLAN translation", "Key type", "Port, outer and inner VID",
                                       "Port and outer VID", "Port, outer VID and priority",
                                       "VP, outer and inner VID", "Port group, outer and inner VID", "Port", "Port",
                                       "Trunk", "Trunk id", "VP", "VP id", "Port group", "Group id", "Match",
                                       "Outer VID", "VID", "Inner VID", "VID", "Outer priority", "0~7", "All",
                                       nullptr};
const char *const k_glb_show_help[] = {"Show", "VLAN", "Global settings", nullptr};
const char *const k_port_value_help[] = {"VLAN", "Ports", "Port list", "Trust dot1p pointer", "Value",
                                         "Egress translation group", "Value", "Class id", "Value", "Hash id",
                                         "Value", "Gid", "Value", "Protocol bitmap", "Value", "Egress hash opcode",
                                         "Value", "Egress TPID index", "Value", "Remark PHB table", "Value",
                                         "Port counter type", "Egress port counter type", "None", "IP",
                                         "Unknown unicast and multicast", "All", nullptr};
const char *const k_trust_help[] = {"VLAN", "Ports", "Port list", "Trust", "None", "Queue index and color",
                                    "Queue index", "0~7", "Color", "Green", "Yellow", "Red", "DSCP", "Outer priority",
                                    "Outer priority and CFI", "Inner priority", "Inner priority and CFI", "Map id",
                                    "0~63", nullptr};
const char *const k_port_show_help[] = {"Show", "VLAN", "Port", "Port list", "Settings", nullptr};

cli_cmd_desc g_vlan_desc[] = {
    {"vlan create WORD (ports WORD (untagged WORD |) |)", -1, cli_vlan_create, k_create_help, 0},
    {"vlan WORD add ports WORD (untagged WORD |)", -1, cli_vlan_member_add, k_add_help, 0},
    {"vlan WORD del ports WORD", -1, cli_vlan_member_delete, k_del_help, 0},
    {"vlan destroy WORD", -1, cli_vlan_destroy, k_destroy_help, 0},
    {"show vlan (WORD |)", -1, cli_vlan_show, k_show_help, 0},
    {"vlan tpid (outer | inner) index WORD WORD", -1, cli_vlan_tpid_set, k_tpid_help, 0},
    {"show vlan tpid (outer | inner)", -1, cli_vlan_tpid_show, k_tpid_show_help, 0},
    {"vlan ports WORD pvid WORD ({pri WORD | cfi WORD} | )", -1, cli_vlan_port_pvid_set, k_pvid_help, 0},
    {"vlan ports WORD outer-tpid-index WORD (enable | disable)", -1, cli_vlan_port_outer_tpid_index_set,
     k_outer_tpid_help, 0},
    {"vlan ports WORD accept-frame (tag | untag | both | none)", -1, cli_vlan_port_accpet_frame_set, k_accept_help,
     0},
    {"vlan WORD (super-vid | class-id | protocol-bmp | fid | counter-id |trust-dot1p-ptr | outer-tpid-index | "
     "mac-index | egr-mac-index | egr-counter-id | egr-outer-tpid | uuc-flood-index | umc-flood-index | "
     "bc-flood-index) WORD",
     -1, cli_vlan_cfg_set, k_cfg_help, 0},
    {"show vlan (WORD |) info", -1, cli_vlan_cfg_show, k_cfg_show_help, 0},
    {"vlan (vlan-check-drop-action | vlan-no-exist-action | stp-disable-drop-action | stp-learn-drop-action | "
     "stp-block-drop-action) (forward | drop | copy-to-cpu | redirect-to-cpu)",
     -1, cli_vlan_global_action_set, k_action_help, 0},
    {"vlan (pvid-add (untag | all) (add | add-after-del) | vacl-vt-action-mode (cross-effect | action-pri) | "
     "after-vt-untag-vid-sel (zero | from-pkt-ovid) | stp-learn-drop-mode (learn | not-learn) | "
     "vlan-switch-pritag-tagnum WORD | loopback-tnl-sp-mode (sp | sp-rsm))",
     -1, cli_vlan_global_cfg_set, k_glb_cfg_help, 0},
    {"vlan remark-level (voice-vlan-dscp | voice-vlan-ocfi | voice-vlan-opri | voice-vlan-icfi | voice-vlan-ipri) "
     "(not-modify | vacl | iacl | voice-vlan)",
     -1, cli_vlan_global_remark_level_set, k_remark_help, 0},
    {"vlan (pa-immune-stp-learn-action | pa-immune-stp-block-action | pa-immune-erps-blk-action | "
     "pa-immune-iblk-action | pa-immune-lag-blk-action) (forward-pkt | tocpu-pkt) (none | drop)",
     -1, cli_vlan_global_immune_action_set, k_immune_help, 0},
    {"vlan (inner-tpid WORD | low-power | cp-mode WORD (pritag-opri | pritag-ocfi | pritag-ipri | pritag-icfi | "
     "tag-num WORD (opri | ocfi | ipri | icfi))) (enable | disable)",
     -1, cli_vlan_global_enable_set, k_enable_help, 0},
    {"show vlan glb-info", -1, cli_vlan_global_cfg_show, k_glb_show_help, 0},
    {"vlan ports WORD (trust-dot1p-ptr WORD | egr-vt-group WORD | class-id WORD | hash-id WORD | gid WORD | "
     "protocol-bmp WORD | egr-hash-opc WORD | egr-tpid-index WORD | remark-phb-tid WORD | (port-cnt-type | "
     "egr-port-cnt-type) (none | ip | uuc-umc | all))",
     -1, cli_vlan_port_cfg_value_set, k_port_value_help, 0},
    {"vlan ports WORD trust (none | set-qindex-color qindex WORD color (green | yellow | red) | (dscp | opri | "
     "opri-cfi | ipri | ipri-cfi) map-id WORD)",
     -1, cli_vlan_port_trust_set, k_trust_help, 0},
    {"show vlan port WORD info", -1, cli_vlan_port_cfg_show, k_port_show_help, 0},
#define CLI_VLAN_EVT_ADD(type, match)                                                                            \
    "egress-vlan-translate add key-type " type " (port WORD | tgid WORD) match-vlan {" match "} action "           \
    "{otag-action (none | add | replace | delete) | itag-action (none | add | replace | delete) | new-ovid WORD | " \
    "new-ivid WORD | new-opri WORD | new-ocfi WORD | new-ipri WORD | new-icfi WORD | dpid WORD}"
    {CLI_VLAN_EVT_ADD("port-ovid-ivid", "ovid WORD | ivid WORD"), -1,
     cli_vlan_egress_vt_add<VLAN_EVT_KEY_PORT_OVID_IVID>, k_evt_add_ovid_ivid_help, 0},
    {CLI_VLAN_EVT_ADD("port-ovid", "ovid WORD"), -1, cli_vlan_egress_vt_add<VLAN_EVT_KEY_PORT_OVID>,
     k_evt_add_ovid_help, 0},
    {CLI_VLAN_EVT_ADD("port-ovid-dot1p", "ovid WORD | opri WORD"), -1,
     cli_vlan_egress_vt_add<VLAN_EVT_KEY_PORT_OVID_DOT1P>, k_evt_add_ovid_dot1p_help, 0},
#undef CLI_VLAN_EVT_ADD
    {"egress-vlan-translate del key-type (port-ovid-ivid | port-ovid | port-ovid-dot1p | vp-ovid-ivid | "
     "port-group-ovid-ivid) (port WORD | tgid WORD | vp WORD | port-group WORD) match-vlan {ovid WORD | ivid WORD "
     "| opri WORD}",
     -1, cli_vlan_egress_vt_delete, k_evt_del_help, 0},
    {"show egress-vlan-translate (key-type (port-ovid-ivid | port-ovid | port-ovid-dot1p | vp-ovid-ivid | "
     "port-group-ovid-ivid) (port WORD | tgid WORD | vp WORD | port-group WORD) match-vlan {ovid WORD | ivid WORD "
     "| opri WORD} | all)",
     -1, cli_vlan_egress_vt_show, k_evt_show_help, 0},
};

constexpr u32 k_vlan_commands = sizeof(g_vlan_desc) / sizeof(g_vlan_desc[0]);
cli_cmd_item g_vlan_items[k_vlan_commands];

} // namespace

extern "C" void cli_cmd_init_vlan(void)
{
    cli_cmd_descs_link(g_vlan_desc, g_vlan_items, k_vlan_commands, CLI_MODE_VLAN);
}
