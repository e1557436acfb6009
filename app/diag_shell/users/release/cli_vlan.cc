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
#include "dpl/reef/vlan/dpl_reef_vlan.h"

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
    // cp-mode WORD (pritag-<kind> | tag-num N <kind>): the copy mode of a kind (opri, ocfi, ipri, icfi) for
    // priority-tagged frames (keys 37, 42, 47, 52) or frames of N tags (the four keys after those, tag 3
    // first); enable writes the mode WORD, disable 0.
    static const cli_word kKinds[] = {{0, "opri"}, {1, "ocfi"}, {2, "ipri"}, {3, "icfi"}};
    u32 mode = 0, kind = 0, tags = 0;
    const bool pritag = std::strncmp(argv[2], "pritag-", 7) == 0;
    if (!_num(argv[1], &mode) || (!pritag && (argc < 6 || !_num(argv[3], &tags)))) {
        return SHR_E_PARAM;
    }
    if (!pritag && tags > 3) {
        cli_output_show("tag-num %u is out of range 0~3\n", tags);
        return SHR_E_PARAM;
    }
    cli_word_id_get(kKinds, pritag ? argv[2] + 7 : argv[4], &kind);
    return _glb_set(chip_id, VLAN_GLB_OPRI_CP_MODE + 5 * kind + (pritag ? 0 : 4 - tags), on != 0 ? mode : 0);
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

// `fn(word, value)` for the keyword and value pairs of argv from `first`;
// the literal words of a group ("match-vlan", "action", "key-type") stand
// alone.  False when `fn` refuses a pair.
template <typename Fn>
bool _pairs(i32 first, i32 argc, char **argv, Fn fn)
{
    for (i32 i = first; i + 1 < argc; i += 2) {
        while (i + 1 < argc && (std::strcmp(argv[i], "match-vlan") == 0 || std::strcmp(argv[i], "action") == 0 ||
                                std::strcmp(argv[i], "key-type") == 0)) {
            i++;
        }
        if (i + 1 >= argc) {
            break;
        }
        if (!fn(argv[i], argv[i + 1])) {
            return false;
        }
    }
    return true;
}

u16 _u16(u32 n)
{
    return static_cast<u16>(n > 0xFFFF ? 0xFFFF : n);
}

// A word of a translation's action: the tag actions, the new VIDs, the new
// priorities and CFIs (which also ask for their replacement).  `*known`
// false for a word of another kind.
bool _action_word(const char *w, const char *v, vlan_translate_action *a, bool *known)
{
    *known = true;
    if (std::strcmp(w, "otag-action") == 0 || std::strcmp(w, "itag-action") == 0) {
        cli_word_id_get(k_tag_actions, v, w[0] == 'o' ? &a->otag_action : &a->itag_action);
        return true;
    }
    if (std::strncmp(w, "new-", 4) != 0) {
        *known = false;
        return true;
    }
    u32 n = 0;
    if (!_num(v, &n)) {
        return false;
    }
    if (std::strcmp(w, "new-ovid") == 0) {
        a->new_outer_vlan = _u16(n);
    } else if (std::strcmp(w, "new-ivid") == 0) {
        a->new_inner_vlan = _u16(n);
    } else {
        // new-opri, new-ocfi, new-ipri, new-icfi
        const bool outer = w[4] == 'o';
        const bool pri = std::strcmp(w + 5, "pri") == 0;
        u8 *field = outer ? (pri ? &a->new_outer_pri : &a->new_outer_cfi) : (pri ? &a->new_inner_pri : &a->new_inner_cfi);
        *field = static_cast<u8>(n > 0xFF ? 0xFF : n);
        (outer ? (pri ? a->outer_pri_act : a->outer_cfi_act) : (pri ? a->inner_pri_act : a->inner_cfi_act)) = 2;
    }
    return true;
}

// One keyword and its value of a translation command, into its key and
// action: an action word, the port or trunk, else a number that `field`
// puts into the key's own fields.
template <typename Key, typename Field>
bool _vt_word(u32 chip_id, const char *w, const char *v, Key *k, vlan_translate_action *a, Field field)
{
    bool known = false;
    const bool ok = _action_word(w, v, a, &known);
    if (known) {
        return ok;
    }
    if (std::strcmp(w, "port") == 0) {
        return cli_pport_to_lport_checked(chip_id, v, &k->lport) == 0;
    }
    u32 n = 0;
    if (!_num(v, &n)) {
        return false;
    }
    if (std::strcmp(w, "tgid") == 0) {
        k->trunk_flag = 1;
        k->tgid = n;
    } else {
        field(w, n);
    }
    return true;
}

// The words of an egress translation command after its key type: each a
// keyword and its value, into the key and the action.
bool _evt_words(u32 chip_id, i32 first, i32 argc, char **argv, vlan_egress_translate_key *k,
                vlan_translate_action *a)
{
    return _pairs(first, argc, argv, [&](const char *w, const char *v) {
        return _vt_word(chip_id, w, v, k, a, [&](const char *word, u32 n) {
            if (std::strcmp(word, "ovid") == 0) {
                k->outer_vlan_id = _u16(n);
            } else if (std::strcmp(word, "ivid") == 0 || std::strcmp(word, "opri") == 0) {
                k->inner_vlan_id = _u16(n);
            } else if (std::strcmp(word, "dpid") == 0) {
                a->dpid = n;
                a->dpid_en = 1;
            }
        });
    });
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

// ---- ingress translation ---------------------------------------------------------------------

// The key types and the match words each takes, in the order of its add
// command.
struct IvtType {
    u32 id;
    const char *word;
    const char *match[6];
};
constexpr IvtType k_ivt_types[] = {
    {VLAN_IVT_KEY_OVID_IVID, "ovid-ivid", {"ovid", "ivid"}},
    {VLAN_IVT_KEY_OVID, "ovid", {"ovid"}},
    {VLAN_IVT_KEY_IVID, "ivid", {"ivid"}},
    {7, "otag", {"ovid", "opri", "ocfi"}},
    {8, "itag", {"ivid", "ipri", "icfi"}},
    {9, "opri-ocfi", {"opri", "ocfi"}},
    {10, "ipri-icfi", {"ipri", "icfi"}},
    {11, "otag-itag", {"ovid", "opri", "ocfi", "ivid", "ipri", "icfi"}},
    {VLAN_IVT_KEY_PORT_OVID_IVID, "port-ovid-ivid", {"ovid", "ivid"}},
    {VLAN_IVT_KEY_PORT_OVID, "port-ovid", {"ovid"}},
    {VLAN_IVT_KEY_PORT_IVID, "port-ivid", {"ivid"}},
    {15, "port-otag", {"ovid", "opri", "ocfi"}},
    {16, "port-itag", {"ivid", "ipri", "icfi"}},
    {17, "port-opri-ocfi", {"opri", "ocfi"}},
    {18, "port-ipri-icfi", {"ipri", "icfi"}},
    {19, "port-otag-itag", {"ovid", "opri", "ocfi", "ivid", "ipri", "icfi"}},
    {VLAN_IVT_KEY_OVID_OPRI, "ovid-opri", {"ovid", "opri"}},
    {VLAN_IVT_KEY_IVID_IPRI, "ivid-ipri", {"ivid", "ipri"}},
    {VLAN_IVT_KEY_PORT_OVID_OPRI, "port-ovid-opri", {"ovid", "opri"}},
    {VLAN_IVT_KEY_PORT_IVID_IPRI, "port-ivid-ipri", {"ivid", "ipri"}},
};

const IvtType *_ivt_type(const char *word)
{
    for (const IvtType &t : k_ivt_types) {
        if (std::strcmp(t.word, word) == 0) {
            return &t;
        }
    }
    return nullptr;
}

const char *_ivt_type_word(u32 id)
{
    for (const IvtType &t : k_ivt_types) {
        if (t.id == id) {
            return t.word;
        }
    }
    return "-";
}

// One keyword and its value of an ingress translation: the port or trunk,
// a match word (the CFIs are not part of this chip's keys), an action word.
bool _ivt_word(u32 chip_id, const char *w, const char *v, vlan_ingress_translate_key *k, vlan_translate_action *a)
{
    return _vt_word(chip_id, w, v, k, a, [k](const char *word, u32 n) {
        if (std::strcmp(word, "ovid") == 0) {
            k->outer_vlan = _u16(n);
        } else if (std::strcmp(word, "ivid") == 0) {
            k->inner_vlan = _u16(n);
        } else if (std::strcmp(word, "opri") == 0) {
            k->outer_pri = _u16(n);
        } else if (std::strcmp(word, "ipri") == 0) {
            k->inner_pri = _u16(n);
        }
    });
}

// ingress-vlan-translate add key-type <type> [(port WORD | tgid WORD)] match-vlan <values> action {...}:
// one handler per key type; the match values come in the type's order.
template <size_t Row>
i32 cli_vlan_ingress_vt_add(u32 chip_id, u32, i32 argc, char **argv)
{
    const IvtType &t = k_ivt_types[Row];
    vlan_ingress_translate_key k{};
    vlan_translate_action a{};
    k.vt_key_type = t.id;
    i32 at = 0;
    if (argc > 1 && (std::strcmp(argv[0], "port") == 0 || std::strcmp(argv[0], "tgid") == 0)) {
        if (!_ivt_word(chip_id, argv[0], argv[1], &k, &a)) {
            return SHR_E_PARAM;
        }
        at = 2;
    }
    for (const char *m : t.match) {
        if (m == nullptr || at >= argc) {
            break;
        }
        if (!_ivt_word(chip_id, m, argv[at++], &k, &a)) {
            return SHR_E_PARAM;
        }
    }
    if (!_pairs(at, argc, argv, [&](const char *w, const char *v) { return _ivt_word(chip_id, w, v, &k, &a); })) {
        return SHR_E_PARAM;
    }
    const i32 rc = vlan_api_ingress_translate_add(chip_id, &k, &a);
    return rc != 0 ? _fail("vlan_api_ingress_translate_add", rc) : 0;
}

// The key of a delete or a show: the type word, then keyword pairs.
bool _ivt_key(u32 chip_id, i32 argc, char **argv, vlan_ingress_translate_key *k)
{
    const i32 skip = argc > 0 && std::strcmp(argv[0], "key-type") == 0 ? 1 : 0;
    const IvtType *t = argc > skip ? _ivt_type(argv[skip]) : nullptr;
    if (t == nullptr) {
        cli_output_show("key type is invalid\n");
        return false;
    }
    k->vt_key_type = t->id;
    vlan_translate_action a{};
    return _pairs(skip + 1, argc, argv, [&](const char *w, const char *v) { return _ivt_word(chip_id, w, v, k, &a); });
}

i32 cli_vlan_ingress_vt_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    vlan_ingress_translate_key k{};
    if (!_ivt_key(chip_id, argc, argv, &k)) {
        return SHR_E_PARAM;
    }
    const i32 rc = vlan_api_ingress_translate_delete(chip_id, &k);
    return rc != 0 ? _fail("vlan_api_ingress_translate_delete", rc) : 0;
}

// The tag action words of a shown entry.
const char *_act_word(u32 act)
{
    static constexpr cli_word k_words[] = {{1, "ADD"}, {2, "REPLACE"}, {3, "DELETE"}, {4, "COPY"}, {5, "OUTER ADD"},
                                           {6, "INNER ADD"}, {7, "REPLACE WITH OVID"}, {8, "REPLACE WITH IVID"}};
    return cli_word_name_get(k_words, act, "NONE");
}

void _action_show(const vlan_translate_action *a)
{
    cli_output_show("| otag %-7s new-ovid %-4u itag %-7s new-ivid %-4u opri %u%s ipri %u%s\n", _act_word(a->otag_action),
                    a->new_outer_vlan, _act_word(a->itag_action), a->new_inner_vlan, a->new_outer_pri,
                    a->outer_pri_act != 0 ? "*" : "", a->new_inner_pri, a->inner_pri_act != 0 ? "*" : "");
}

i32 _ivt_show_one(u32, vlan_ingress_translate_key *k, vlan_translate_action *a, void *)
{
    cli_output_show("%-16s %-4s %-4u %-5u %-5u %-4u %-4u ", _ivt_type_word(k->vt_key_type),
                    k->trunk_flag != 0 ? "tgid" : "port", k->trunk_flag != 0 ? k->tgid : k->lport, k->outer_vlan,
                    k->inner_vlan, k->outer_pri, k->inner_pri);
    _action_show(a);
    return 0;
}

// show ingress-vlan-translate (key-type (...) (port WORD | tgid WORD |) match-vlan {...} | all)
i32 cli_vlan_ingress_vt_show(u32 chip_id, u32, i32 argc, char **argv)
{
    cli_output_show("%-16s %-4s %-4s %-5s %-5s %-4s %-4s | action\n", "Key type", "", "Id", "OVID", "IVID", "OPRI",
                    "IPRI");
    if (argc == 0 || std::strcmp(argv[0], "all") == 0) {
        const i32 rc = vlan_api_ingress_translate_traverse(chip_id, _ivt_show_one, nullptr);
        return rc != 0 ? _fail("vlan_api_ingress_translate_traverse", rc) : 0;
    }
    vlan_ingress_translate_key k{};
    vlan_translate_action a{};
    if (!_ivt_key(chip_id, argc, argv, &k)) {
        return SHR_E_PARAM;
    }
    const i32 rc = vlan_api_ingress_translate_get(chip_id, &k, &a);
    return rc != 0 ? _fail("vlan_api_ingress_translate_get", rc) : _ivt_show_one(chip_id, &k, &a, nullptr);
}

// ingress-vlan-translate ((tag-miss-drop | ... | untag-key-pvid) (enable | disable) | pri-tag-key-tag-num WORD)
i32 cli_vlan_ingress_vt_global_cfg_set(u32 chip_id, u32, i32 argc, char **argv)
{
    static constexpr cli_word k_keys[] = {
        {1, "pri-tag-key-tag-num"}, {2, "pri-tag-key-pvid-cfi"}, {3, "pri-tag-key-pvid-pri"},
        {4, "untag-key-pvid-cfi"},  {5, "untag-key-pvid-pri"},   {6, "pri-tag-key-pvid"},
        {7, "untag-key-pvid"},      {8, "tag-miss-drop"},        {9, "untag-miss-drop"}};
    vlan_control c{};
    if (argc < 2 || !cli_word_id_get(k_keys, argv[0], &c.key)) {
        return SHR_E_PARAM;
    }
    if (c.key == 1 && !_num(argv[1], &c.value)) {
        return SHR_E_PARAM;
    }
    if (c.key != 1) {
        c.value = _enable(argv[1]) ? 1 : 0;
    }
    const i32 rc = vlan_api_translation_global_cfg_set(chip_id, &c);
    return rc != 0 ? _fail("vlan_api_translation_global_cfg_set", rc) : 0;
}

// ---- MAC-, subnet- and protocol-based VLANs ---------------------------------------------------

// The action words of an assignment: "ovid-add" gives the frame that VLAN,
// "opri" its outer priority, "dscp" a voice entry's DSCP.
bool _assign_word(const char *w, const char *v, vlan_translate_action *a, u8 *dscp)
{
    u32 n = 0;
    if (!_num(v, &n)) {
        return false;
    }
    if (std::strcmp(w, "ovid-add") == 0) {
        a->otag_action = VLAN_TAG_ACT_ADD;
        a->new_outer_vlan = _u16(n);
    } else if (std::strcmp(w, "opri") == 0) {
        a->new_outer_pri = static_cast<u8>(n > 0xFF ? 0xFF : n);
        a->outer_pri_act = 2;
    } else if (std::strcmp(w, "dscp") == 0 && dscp != nullptr) {
        *dscp = static_cast<u8>(n > 0xFF ? 0xFF : n);
    }
    return true;
}

bool _mac(const char *word, u8 *out)
{
    if (cli_get_mac_addr(word, out) != 0) {
        cli_output_show("mac %s is invalid!\n", word);
        return false;
    }
    return true;
}

// The MAC key words: "smac" and "smac-mask" addresses, "voice-vlan" with
// its port and VID.
bool _mac_key(u32 chip_id, i32 argc, char **argv, i32 *at, vlan_mac_key *k)
{
    for (; *at < argc; (*at)++) {
        const char *w = argv[*at];
        if (std::strcmp(w, "voice-vlan") == 0) {
            k->voice = 1;
            continue;
        }
        const bool mac = std::strcmp(w, "smac") == 0, mask = std::strcmp(w, "smac-mask") == 0;
        const bool port = std::strcmp(w, "port") == 0, ovid = std::strcmp(w, "ovid") == 0;
        if (!(mac || mask || port || ovid) || *at + 1 >= argc) {
            break;
        }
        const char *v = argv[++*at];
        u32 n = 0;
        if ((mac && !_mac(v, k->smac)) || (mask && !_mac(v, k->smac_mask)) ||
            (port && cli_pport_to_lport_checked(chip_id, v, &k->lport) != 0) || (ovid && !_num(v, &n))) {
            return false;
        }
        if (ovid) {
            k->outer_vlan = _u16(n);
        }
    }
    return true;
}

// mac-vlan add smac .. smac-mask .. {opri WORD | ovid-add WORD}; mac-vlan add voice-vlan (...) {...}
i32 _mac_vlan_add(u32 chip_id, i32 argc, char **argv, bool voice)
{
    vlan_mac_key k{};
    vlan_translate_action a{};
    k.voice = voice ? 1 : 0;
    i32 at = 0;
    if (!voice) {
        // The two addresses come without their keywords.
        if (argc < 2 || !_mac(argv[0], k.smac) || !_mac(argv[1], k.smac_mask)) {
            return SHR_E_PARAM;
        }
        at = 2;
    } else if (!_mac_key(chip_id, argc, argv, &at, &k)) {
        return SHR_E_PARAM;
    }
    if (!_pairs(at, argc, argv, [&](const char *w, const char *v) { return _assign_word(w, v, &a, &k.dscp); })) {
        return SHR_E_PARAM;
    }
    const i32 rc = vlan_api_macbased_add(chip_id, &k, &a);
    return rc != 0 ? _fail("vlan_api_macbased_add", rc) : 0;
}

i32 cli_vlan_mac_vlan_add(u32 chip_id, u32, i32 argc, char **argv)
{
    return _mac_vlan_add(chip_id, argc, argv, false);
}

i32 cli_vlan_voice_vlan_add(u32 chip_id, u32, i32 argc, char **argv)
{
    return _mac_vlan_add(chip_id, argc, argv, true);
}

// A voice entry is named by its port and VID: the stored entry of that
// port and VID, whatever its address.
struct VoiceFind {
    vlan_mac_key want;
    vlan_mac_key found;
    bool hit;
};

i32 _voice_find(u32, vlan_mac_key *k, vlan_translate_action *, void *user)
{
    auto *f = static_cast<VoiceFind *>(user);
    if (!f->hit && k->voice != 0 && k->lport == f->want.lport && k->outer_vlan == f->want.outer_vlan) {
        f->found = *k;
        f->hit = true;
    }
    return 0;
}

// The stored MAC key the words name; false after a line.
bool _mac_lookup(u32 chip_id, i32 argc, char **argv, vlan_mac_key *k)
{
    i32 at = 0;
    if (!_mac_key(chip_id, argc, argv, &at, k)) {
        return false;
    }
    if (k->voice == 0) {
        return true;
    }
    VoiceFind f{*k, {}, false};
    vlan_api_macbased_traverse(chip_id, _voice_find, &f);
    if (!f.hit) {
        cli_output_show("voice vlan of port %u vid %u not found\n", k->lport, k->outer_vlan);
        return false;
    }
    *k = f.found;
    return true;
}

i32 _mac_show_one(u32, vlan_mac_key *k, vlan_translate_action *a, void *)
{
    const u8 *m = k->smac, *n = k->smac_mask;
    cli_output_show("%02x:%02x:%02x:%02x:%02x:%02x %02x:%02x:%02x:%02x:%02x:%02x %-5s %-4u %-4u %-4u ", m[0], m[1],
                    m[2], m[3], m[4], m[5], n[0], n[1], n[2], n[3], n[4], n[5], k->voice != 0 ? "voice" : "-",
                    k->lport, k->outer_vlan, k->dscp);
    _action_show(a);
    return 0;
}

// The n-th subnet entry in the order of the adds.
struct SubnetAt {
    u32 want;
    u32 seen;
    vlan_subnet_key found;
    bool hit;
};

i32 _subnet_at(u32, vlan_subnet_key *k, vlan_translate_action *, void *user)
{
    auto *f = static_cast<SubnetAt *>(user);
    if (f->seen++ == f->want) {
        f->found = *k;
        f->hit = true;
    }
    return 0;
}

// (index WORD | sip A.B.C.D ip-mask A.B.C.D | sipv6 WORD ipv6-mask WORD): the key; false after a line.
bool _subnet_key(u32 chip_id, i32 argc, char **argv, vlan_subnet_key *k)
{
    if (argc < 2) {
        return false;
    }
    if (std::strcmp(argv[0], "index") == 0) {
        SubnetAt f{0, 0, {}, false};
        if (!_num(argv[1], &f.want)) {
            return false;
        }
        vlan_api_subnetbased_traverse(chip_id, _subnet_at, &f);
        if (!f.hit) {
            cli_output_show("subnet vlan index %u not found\n", f.want);
        }
        *k = f.found;
        return f.hit;
    }
    if (std::strcmp(argv[0], "sipv6") == 0) {
        k->ipv6 = 1;
        return true;
    }
    if (argc < 4 || cli_get_ipv4addr(argv[1], &k->ipv4_sip) != 0 || cli_get_ipv4addr(argv[3], &k->ipv4_mask) != 0) {
        cli_output_show("ip address is invalid!\n");
        return false;
    }
    return true;
}

i32 _subnet_show_one(u32, vlan_subnet_key *k, vlan_translate_action *a, void *)
{
    const u32 s = k->ipv4_sip, m = k->ipv4_mask;
    cli_output_show("%3u.%3u.%3u.%3u %3u.%3u.%3u.%3u ", s >> 24, s >> 16 & 0xFF, s >> 8 & 0xFF, s & 0xFF, m >> 24,
                    m >> 16 & 0xFF, m >> 8 & 0xFF, m & 0xFF);
    _action_show(a);
    return 0;
}

const cli_word k_frame_types[] = {{VLAN_L2_PKT_ETHERNETII, "eth"}, {VLAN_L2_PKT_SNAP, "snap"},
                                  {VLAN_L2_PKT_LLC, "llc-other"}};

// (port WORD | tgid WORD) frame-type (eth | snap | llc-other) protocol-type WORD; the literal words reach a
// show, inside its group, and are passed over.
bool _protocol_key(u32 chip_id, i32 argc, char **all, vlan_protocol_key *k)
{
    char *argv[4] = {};
    i32 n_words = 0;
    for (i32 i = 0; i < argc && n_words < 4; i++) {
        if (std::strcmp(all[i], "frame-type") != 0 && std::strcmp(all[i], "protocol-type") != 0) {
            argv[n_words++] = all[i];
        }
    }
    u32 n = 0;
    if (n_words < 4) {
        return false;
    }
    if (std::strcmp(argv[0], "tgid") == 0) {
        k->trunk_flag = 1;
        if (!_num(argv[1], &k->tgid)) {
            return false;
        }
    } else if (cli_pport_to_lport_checked(chip_id, argv[1], &k->lport) != 0) {
        return false;
    }
    if (!cli_word_id_get(k_frame_types, argv[2], &k->l2_pkt_type) || !_num(argv[3], &n)) {
        return false;
    }
    k->protocol_type = _u16(n);
    return true;
}

i32 _protocol_show_one(u32, vlan_protocol_key *k, vlan_translate_action *a, void *)
{
    cli_output_show("%-4s %-4u %-9s 0x%04x ", k->trunk_flag != 0 ? "tgid" : "port",
                    k->trunk_flag != 0 ? k->tgid : k->lport, cli_word_name_get(k_frame_types, k->l2_pkt_type, "-"),
                    k->protocol_type);
    _action_show(a);
    return 0;
}

// ---- the commands of an assignment family, alike but for the key ----------------------------

// A family of the shell: how its words become a key (false after a line),
// its calls, one shown entry, the heading of a show.
template <typename Key>
struct AssignFamily {
    bool (*key)(u32 chip_id, i32 argc, char **argv, Key *k);
    i32 (*add)(u32, Key *, vlan_translate_action *);
    i32 (*del)(u32, Key *);
    i32 (*get)(u32, Key *, vlan_translate_action *);
    i32 (*traverse)(u32, i32 (*)(u32, Key *, vlan_translate_action *, void *), void *);
    i32 (*show_one)(u32, Key *, vlan_translate_action *, void *);
    const char *heading;
    const char *calls[4]; // the names of add, delete, get, traverse
};

// <key words> {opri WORD | ovid-add WORD}: the key takes the first four words.
template <typename Key>
i32 _assign_add(u32 chip_id, i32 argc, char **argv, const AssignFamily<Key> &f)
{
    Key k{};
    vlan_translate_action a{};
    if (!f.key(chip_id, argc, argv, &k) ||
        !_pairs(4, argc, argv, [&](const char *w, const char *v) { return _assign_word(w, v, &a, nullptr); })) {
        return SHR_E_PARAM;
    }
    const i32 rc = f.add(chip_id, &k, &a);
    return rc != 0 ? _fail(f.calls[0], rc) : 0;
}

template <typename Key>
i32 _assign_delete(u32 chip_id, i32 argc, char **argv, const AssignFamily<Key> &f)
{
    Key k{};
    if (!f.key(chip_id, argc, argv, &k)) {
        return SHR_E_PARAM;
    }
    const i32 rc = f.del(chip_id, &k);
    return rc != 0 ? _fail(f.calls[1], rc) : 0;
}

// show <family> (<key words> | all)
template <typename Key>
i32 _assign_show(u32 chip_id, i32 argc, char **argv, const AssignFamily<Key> &f)
{
    cli_output_show("%s | action\n", f.heading);
    if (argc == 0 || std::strcmp(argv[0], "all") == 0) {
        const i32 rc = f.traverse(chip_id, f.show_one, nullptr);
        return rc != 0 ? _fail(f.calls[3], rc) : 0;
    }
    Key k{};
    vlan_translate_action a{};
    if (!f.key(chip_id, argc, argv, &k)) {
        return SHR_E_PARAM;
    }
    const i32 rc = f.get(chip_id, &k, &a);
    return rc != 0 ? _fail(f.calls[2], rc) : f.show_one(chip_id, &k, &a, nullptr);
}

constexpr AssignFamily<vlan_mac_key> k_mac_family = {
    _mac_lookup, vlan_api_macbased_add, vlan_api_macbased_delete, vlan_api_macbased_get,
    vlan_api_macbased_traverse, _mac_show_one, "SMAC              Mask              Voice Port OVID DSCP",
    {"vlan_api_macbased_add", "vlan_api_macbased_delete", "vlan_api_macbased_get", "vlan_api_macbased_traverse"}};
constexpr AssignFamily<vlan_subnet_key> k_subnet_family = {
    _subnet_key, vlan_api_subnetbased_add, vlan_api_subnetbased_delete, vlan_api_subnetbased_get,
    vlan_api_subnetbased_traverse, _subnet_show_one, "SIP             Mask",
    {"vlan_api_subnetbased_add", "vlan_api_subnetbased_delete", "vlan_api_subnetbased_get",
     "vlan_api_subnetbased_traverse"}};
constexpr AssignFamily<vlan_protocol_key> k_protocol_family = {
    _protocol_key, vlan_api_protocolbased_add, vlan_api_protocolbased_delete, vlan_api_protocolbased_get,
    vlan_api_protocolbased_traverse, _protocol_show_one, "     Id   Frame     Type",
    {"vlan_api_protocolbased_add", "vlan_api_protocolbased_delete", "vlan_api_protocolbased_get",
     "vlan_api_protocolbased_traverse"}};

i32 cli_vlan_mac_vlan_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_delete(chip_id, argc, argv, k_mac_family);
}

i32 cli_vlan_mac_vlan_show(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_show(chip_id, argc, argv, k_mac_family);
}

// subnet-vlan add (sip A.B.C.D ip-mask A.B.C.D | sipv6 WORD ipv6-mask WORD) {opri WORD | ovid-add WORD}
i32 cli_vlan_subnet_vlan_add(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_add(chip_id, argc, argv, k_subnet_family);
}

i32 cli_vlan_subnet_vlan_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_delete(chip_id, argc, argv, k_subnet_family);
}

i32 cli_vlan_subnet_vlan_show(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_show(chip_id, argc, argv, k_subnet_family);
}

// protocol-vlan add (port WORD | tgid WORD) frame-type (...) protocol-type WORD {opri WORD | ovid-add WORD}
i32 cli_vlan_protocol_vlan_add(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_add(chip_id, argc, argv, k_protocol_family);
}

i32 cli_vlan_protocol_vlan_delete(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_delete(chip_id, argc, argv, k_protocol_family);
}

i32 cli_vlan_protocol_vlan_show(u32 chip_id, u32, i32 argc, char **argv)
{
    return _assign_show(chip_id, argc, argv, k_protocol_family);
}

// vlan (ingress-vlan-translate | egress-vlan-translate | mac-vlan | subnet-vlan | protocol-vlan) clear
i32 cli_vlan_vt_or_vacl_clear(u32 chip_id, u32, i32 argc, char **argv)
{
    struct Clear {
        const char *word;
        i32 (*fn)(u32);
    };
    static constexpr Clear k_clears[] = {{"ingress-vlan-translate", dpl_reef_vlan_ingress_translate_clear},
                                         {"egress-vlan-translate", dpl_reef_vlan_egress_translate_clear},
                                         {"mac-vlan", dpl_reef_vlan_macbased_clear},
                                         {"subnet-vlan", dpl_reef_vlan_subnetbased_clear},
                                         {"protocol-vlan", dpl_reef_vlan_protocolbased_clear}};
    for (const Clear &c : k_clears) {
        if (argc > 0 && std::strcmp(argv[0], c.word) == 0) {
            const i32 rc = c.fn(chip_id);
            return rc != 0 ? _fail(c.word, rc) : 0;
        }
    }
    return SHR_E_PARAM;
}

// ---- per-VLAN enables and counter types ------------------------------------------------------

i32 _vlan_ctrl_each(u32 chip_id, const char *vids, u32 key, u32 value)
{
    return _each_vid(vids, [&](u32 vid) {
        vlan_control c{key, value};
        const i32 rc = vlan_api_control_set(chip_id, vid, &c);
        return rc != 0 ? _fail("vlan_api_control_set", rc) : 0;
    });
}

// vlan WORD (pa-action WORD (copy-to-cpu | drop) | dai | trust-dot1p | isvsi) (enable | disable): the
// frame actions 1..3 of a VLAN are the control keys 5, 3 and 1 (to the CPU) and 6, 4, 2 (no forwarding).
i32 cli_vlan_cfg_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    const u32 on = _enable(argv[argc - 1]) ? 1 : 0;
    if (std::strcmp(argv[1], "dai") == 0) {
        return _vlan_ctrl_each(chip_id, argv[0], VLAN_CTRL_DAI_EN, on);
    }
    if (std::strcmp(argv[1], "pa-action") != 0) {
        cli_output_show("%s is not supported on this chip\n", argv[1]);
        return SHR_E_NOT_SUPPORT;
    }
    u32 act = 0;
    if (!_num(argv[2], &act)) {
        return SHR_E_PARAM;
    }
    if (act < 1 || act > 3) {
        cli_output_show("pa-action %u is out of range 1~3\n", act);
        return SHR_E_PARAM;
    }
    const u32 key = VLAN_CTRL_AD_ACT1_TOCPU - 2 * (act - 1) + (std::strcmp(argv[3], "drop") == 0 ? 1 : 0);
    return _vlan_ctrl_each(chip_id, argv[0], key, on);
}

// vlan WORD (counter-type | egr-counter-type) (none | simple-counter | ... | l2-vlanif-counter): the
// type's number goes to the record as it is; the record's range refuses the types it lacks.
const cli_word k_vlan_cnt_types[] = {{0, "none"},          {1, "simple-counter"}, {2, "ip-counter"},
                                     {3, "uc-mc-counter"}, {4, "l2-l3-counter"},  {5, "l2-vlanif-counter"}};

i32 cli_vlan_counter_type_set(u32 chip_id, u32, i32, char **argv)
{
    u32 type = 0;
    cli_word_id_get(k_vlan_cnt_types, argv[2], &type);
    const u32 key = std::strcmp(argv[1], "counter-type") == 0 ? VLAN_CTRL_CNT_TYPE : VLAN_CTRL_EGRESS_CNT_TYPE;
    return _vlan_ctrl_each(chip_id, argv[0], key, type);
}

// show vlan WORD software-table: the row nodes of the VLANs, with the index they share and its count.
i32 cli_vlan_softeware_info_show(u32 chip_id, u32, i32, char **argv)
{
    cli_output_show("%-6s %-6s %-6s %-6s %-6s %-6s %s\n", "VID", "Index", "ICount", "ECount", "Learn", "Class",
                    "Counter");
    return _each_vid(argv[0], [&](u32 vid) {
        dpl_reef_ivlan_node in{};
        dpl_reef_evlan_node out{};
        i32 rc = dpl_reef_vlan_ingress_control_software_info_get(chip_id, vid, &in);
        if (rc == 0) {
            rc = dpl_reef_vlan_egress_control_software_info_get(chip_id, vid, &out);
        }
        if (rc != 0) {
            return _fail("dpl_reef_vlan_software_info_get", rc);
        }
        cli_output_show("%-6u %-6u %-6u %-6u %-6u %-6u %u/%u\n", vid, in.index, in.count, out.count,
                        in.key.mac_lrn_mode, in.key.classid, in.key.cnt_type, in.key.cnt_id);
        return i32{SHR_E_NONE};
    });
}

// ---- port enables and selections ----------------------------------------------------------

// vlan ports WORD (<enable word>) (enable | disable): one port control key of 0..1 each.
const cli_word k_port_enable_words[] = {
    {VLAN_PORT_CTRL_VLAN_CHECK, "ingress-filter"},      {VLAN_PORT_CTRL_E_VLAN_CHECK, "egress-filter"},
    {VLAN_PORT_CTRL_VLAN_RANGE_EN, "vlan-range"},       {VLAN_PORT_CTRL_E_VLAN_RANGE_EN, "egr-vlan-range"},
    {VLAN_PORT_CTRL_TAG_PVID_PRI_ACT, "tag-pvid-pri"},  {VLAN_PORT_CTRL_TAG_PVID_CFI_ACT, "tag-pvid-cfi"},
    {VLAN_PORT_CTRL_PVID_PRI_ACT, "untag-pvid-pri"},    {VLAN_PORT_CTRL_PVID_CFI_ACT, "untag-pvid-cfi"},
    {VLAN_PORT_CTRL_RMTLP_BLK, "rmtlp-blk"},            {VLAN_PORT_CTRL_LAG_BLK, "lag-blk"},
    {VLAN_PORT_CTRL_I_BLK, "iblk"},                     {VLAN_PORT_CTRL_ERPS_BLK, "erps-blk"},
    {VLAN_PORT_CTRL_E_RMTLP_BLK, "egr-rmtlp-blk"},      {VLAN_PORT_CTRL_E_LAG_BLK, "egr-lag-blk"},
    {VLAN_PORT_CTRL_E_I_BLK, "egr-iblk"},               {VLAN_PORT_CTRL_E_ERPS_BLK, "egr-erps-blk"},
    {VLAN_PORT_CTRL_DAI_EN, "dai"},                     {VLAN_PORT_CTRL_DAI_PORT_TYPE, "dai-trust"},
    {VLAN_PORT_CTRL_VTMISS_DROP, "egr-vt-miss-drop"},
};

i32 cli_vlan_port_enable_set(u32 chip_id, u32, i32, char **argv)
{
    u32 key = 0;
    cli_word_id_get(k_port_enable_words, argv[1], &key);
    const u32 on = _enable(argv[2]) ? 1 : 0;
    return _each_port(chip_id, argv[0], [&](u32 lport) { return _port_ctrl(chip_id, lport, key, on); });
}

// vlan ports WORD (pvid-add-mode (none | untag | all) | egr-vt-lookup (first | second) (none |
//   port-ovid-ivid | port-ovid-dot1p | port-ovid) | (vlan-range | egr-vlan-range) WORD min WORD max WORD)
const cli_word k_pvid_add_modes[] = {{0, "none"}, {1, "untag"}, {2, "all"}};

// A VID range slot: the bound that keeps the slot ordered goes first, so
// that a range may move past the one it replaces.
i32 _port_range_set(u32 chip_id, u32 lport, bool egress, u32 slot, u32 min, u32 max)
{
    const u32 max_key = egress ? VLAN_PORT_CTRL_E_VID_MAX0 + 3 * slot : VLAN_PORT_CTRL_VID_MAX0 + 3 * slot;
    const u32 min_key = max_key + 1;
    const bool max_first = min > _port_ctrl_get(chip_id, lport, max_key);
    i32 rc = _port_ctrl(chip_id, lport, max_first ? max_key : min_key, max_first ? max : min);
    return rc != 0 ? rc : _port_ctrl(chip_id, lport, max_first ? min_key : max_key, max_first ? min : max);
}

i32 cli_vlan_port_cfg_value_select_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (std::strcmp(argv[1], "pvid-add-mode") == 0) {
        u32 mode = 0;
        cli_word_id_get(k_pvid_add_modes, argv[2], &mode);
        return _each_port(chip_id, argv[0],
                          [&](u32 lport) { return _port_ctrl(chip_id, lport, VLAN_PORT_CTRL_PVID_ADD_MODE, mode); });
    }
    if (std::strcmp(argv[1], "egr-vt-lookup") == 0) {
        u32 type = 0;
        cli_word_id_get(k_evt_key_types, argv[3], &type);
        const u32 key = std::strcmp(argv[2], "first") == 0 ? VLAN_PORT_CTRL_SIT1 : VLAN_PORT_CTRL_SIT2;
        return _each_port(chip_id, argv[0], [&](u32 lport) { return _port_ctrl(chip_id, lport, key, type); });
    }
    // (vlan-range | egr-vlan-range) slot min max
    u32 slot = 0, min = 0, max = 0;
    // argv: the ports, the word, the slot, "min" and its VID, "max" and its VID.
    if (argc < 7 || !_num(argv[2], &slot) || !_num(argv[4], &min) || !_num(argv[6], &max)) {
        return SHR_E_PARAM;
    }
    // Checked here as a whole, so that a refused range leaves both bounds as they were.
    if (slot > 3 || min > max || max > VLAN_VID_MAX) {
        cli_output_show("range slot %u min %u max %u is invalid (slot 0~3, min not above max, max 0~4095)\n", slot,
                        min, max);
        return SHR_E_PARAM;
    }
    const bool egress = argv[1][0] == 'e';
    return _each_port(chip_id, argv[0],
                      [&](u32 lport) { return _port_range_set(chip_id, lport, egress, slot, min, max); });
}

// What this chip has no setting for: its line and -24.
i32 _not_supported(const char *word)
{
    cli_output_show("%s is not supported on this chip\n", word);
    return SHR_E_NOT_SUPPORT;
}

// vlan ports WORD output-tpid-mode (port | vlan): the TPID of a sent outer tag is always the port's
// (egr-tpid-index), so "port" is what the port does already and "vlan" is refused.
i32 cli_vlan_port_output_tpid_mode_set(u32 chip_id, u32, i32, char **argv)
{
    if (std::strcmp(argv[1], "vlan") == 0) {
        return _not_supported("output-tpid-mode vlan");
    }
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        vlan_control c{VLAN_PORT_CTRL_TPID_INDEX, 0};
        const i32 rc = vlan_api_port_control_get(chip_id, lport, &c);
        return rc != 0 ? _fail("vlan_api_port_control_get", rc) : 0;
    });
}

// vlan (ing-vt-hash-mode | egr-vt-hash-mode | protocol-vlan-hash-mode) (...): the VLAN lookups of this
// chip are TCAM lookups, and the egress translation hash is the exact-match engine's (mode hash).
i32 cli_vlan_global_hash_set(u32, u32, i32, char **argv)
{
    return _not_supported(argv[0]);
}

// egress-vlan-translate add key-type (vp-ovid-ivid | port-group-ovid-ivid) ...: key types this chip's
// egress translation lacks.
template <const char *Type>
i32 cli_vlan_egress_vt_add_absent(u32, u32, i32, char **)
{
    return _not_supported(Type);
}
constexpr char k_vp_ovid_ivid[] = "vp-ovid-ivid";
constexpr char k_port_group_ovid_ivid[] = "port-group-ovid-ivid";

// ---- private VLANs, port default actions, tag checks by destination MAC --------------------------
// These commands reach calls that no chip of this build implements; the
// failure line is the shell's answer.

i32 _pvlan_set(u32 chip_id, u32 lport, vlan_pvlan_cfg cfg)
{
    const i32 rc = vlan_api_pvlan_port_set(chip_id, lport, &cfg);
    return rc != 0 ? _fail("vlan_api_pvlan_port_set", rc) : 0;
}

// private-vlan ports WORD (enable | disable)
i32 cli_vlan_pvlan_port_enable_set(u32 chip_id, u32, i32, char **argv)
{
    const u32 on = _enable(argv[1]) ? 1 : 0;
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        const i32 rc = vlan_api_pvlan_enable(chip_id, lport, on);
        return rc != 0 ? _fail("vlan_api_pvlan_enable", rc) : 0;
    });
}

// private-vlan WORD type (promiscuous | isolate | community)
i32 cli_vlan_pvlan_type_set(u32 chip_id, u32, i32, char **argv)
{
    static const cli_word kTypes[] = {{0, "promiscuous"}, {1, "isolate"}, {2, "community"}};
    u32 type = 0;
    cli_word_id_get(kTypes, argv[1], &type);
    return _each_vid(argv[0], [&](u32 vid) {
        return _pvlan_set(chip_id, VLAN_PVLAN_NO_PORT, vlan_pvlan_cfg{VLAN_PVLAN_TYPE, vid, type, 0, 1});
    });
}

// private-vlan WORD primary WORD ports WORD (enable | disable)
i32 cli_vlan_pvlan_port_set(u32 chip_id, u32, i32, char **argv)
{
    u32 primary = 0;
    if (!_num(argv[1], &primary)) {
        return SHR_E_PARAM;
    }
    const u32 on = _enable(argv[3]) ? 1 : 0;
    return _each_vid(argv[0], [&](u32 vid) {
        return _each_port(chip_id, argv[2], [&](u32 lport) {
            return _pvlan_set(chip_id, lport, vlan_pvlan_cfg{VLAN_PVLAN_PRIMARY, vid, primary, 0, on});
        });
    });
}

// private-vlan port WORD output (untag | tag WORD priority WORD)
i32 cli_vlan_pvlan_port_output_set(u32 chip_id, u32, i32 argc, char **argv)
{
    vlan_pvlan_cfg cfg{VLAN_PVLAN_OUTPUT, 0, 0, 0, 1};
    if (std::strcmp(argv[1], "tag") == 0) {
        // argv: the ports, "tag" and its VID, "priority" and its value.
        if (argc < 5 || !_num(argv[2], &cfg.vid) || !_num(argv[4], &cfg.pri)) {
            return SHR_E_PARAM;
        }
        cfg.value = 1;
    }
    return _each_port(chip_id, argv[0], [&](u32 lport) { return _pvlan_set(chip_id, lport, cfg); });
}

// show private-vlan vlan WORD
i32 cli_vlan_pvlan_vlan_show(u32 chip_id, u32, i32, char **argv)
{
    return _each_vid(argv[0], [&](u32 vid) {
        vlan_pvlan_cfg cfg{VLAN_PVLAN_TYPE, vid, 0, 0, 0};
        const i32 rc = vlan_api_pvlan_port_get(chip_id, VLAN_PVLAN_NO_PORT, &cfg);
        if (rc != 0) {
            return _fail("vlan_api_pvlan_port_get", rc);
        }
        cli_output_show("vlan %u type %u\n", vid, cfg.value);
        return i32{SHR_E_NONE};
    });
}

// show private-vlan ports WORD
i32 cli_vlan_pvlan_port_show(u32 chip_id, u32, i32, char **argv)
{
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        vlan_pvlan_cfg cfg{VLAN_PVLAN_OUTPUT, 0, 0, 0, 0};
        const i32 rc = vlan_api_pvlan_port_get(chip_id, lport, &cfg);
        if (rc != 0) {
            return _fail("vlan_api_pvlan_port_get", rc);
        }
        cli_output_show("port %u output %s vid %u priority %u\n", lport, cfg.value != 0 ? "tag" : "untag", cfg.vid,
                        cfg.pri);
        return i32{SHR_E_NONE};
    });
}

// port-vlan add port WORD action {...}: the action of a port's frames that no entry matched.
i32 cli_vlan_port_vlan_add(u32 chip_id, u32, i32 argc, char **argv)
{
    vlan_translate_action a{};
    const bool ok = _pairs(1, argc, argv, [&](const char *w, const char *v) {
        bool known = false;
        return _action_word(w, v, &a, &known) && known;
    });
    if (!ok) {
        return SHR_E_PARAM;
    }
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        const i32 rc = vlan_api_port_default_action_add(chip_id, lport, &a);
        return rc != 0 ? _fail("vlan_api_port_default_action_add", rc) : 0;
    });
}

// port-vlan del port WORD
i32 cli_vlan_port_vlan_delete(u32 chip_id, u32, i32, char **argv)
{
    return _each_port(chip_id, argv[0], [&](u32 lport) {
        const i32 rc = vlan_api_port_default_action_delete(chip_id, lport);
        return rc != 0 ? _fail("vlan_api_port_default_action_delete", rc) : 0;
    });
}

// show port-vlan (port WORD | all)
i32 cli_vlan_port_vlan_show(u32 chip_id, u32, i32 argc, char **argv)
{
    auto one = [&](u32 lport) {
        vlan_translate_action a{};
        const i32 rc = vlan_api_port_default_action_get(chip_id, lport, &a);
        if (rc != 0) {
            return _fail("vlan_api_port_default_action_get", rc);
        }
        cli_output_show("port %-4u otag %-7s new-ovid %u\n", lport, cli_word_name_get(k_tag_actions, a.otag_action, "?"),
                        a.new_outer_vlan);
        return i32{SHR_E_NONE};
    };
    if (argc > 1 && std::strcmp(argv[0], "port") == 0) {
        return _each_port(chip_id, argv[1], one);
    }
    u32 lport = 0;
    char name[CLI_PPORT_SIZE];
    for (i32 prev = -1; cli_port_list_next_lport_get(chip_id, 0, prev, &lport, name) == 0; prev = static_cast<i32>(lport)) {
        const i32 rc = one(lport);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

// vlan bypass-accept-frame (add | del) dmac XX:XX:XX:XX:XX:XX dmac-mask XX:XX:XX:XX:XX:XX
i32 cli_vlan_bypass_accept_frame_set(u32 chip_id, u32, i32, char **argv)
{
    vlan_dmac_check check{};
    if (cli_get_mac_addr(argv[1], check.dmac) != 0 || cli_get_mac_addr(argv[2], check.dmac_mask) != 0) {
        cli_output_show("mac address %s/%s is invalid.\n", argv[1], argv[2]);
        return SHR_E_PARAM;
    }
    check.enable = std::strcmp(argv[0], "add") == 0 ? 1 : 0;
    const i32 rc = vlan_api_tag_check_by_dmac_set(chip_id, &check);
    return rc != 0 ? _fail("vlan_api_tag_check_by_dmac_set", rc) : 0;
}

// show vlan bypass-accept-frame dmac
i32 cli_vlan_bypass_accept_frame_show(u32 chip_id, u32, i32, char **)
{
    vlan_dmac_check check{};
    const i32 rc = vlan_api_tag_check_by_dmac_get(chip_id, &check);
    if (rc != 0) {
        return _fail("vlan_api_tag_check_by_dmac_get", rc);
    }
    const u8 *m = check.dmac;
    cli_output_show("dmac %02x:%02x:%02x:%02x:%02x:%02x %s\n", m[0], m[1], m[2], m[3], m[4], m[5],
                    check.enable != 0 ? "enable" : "disable");
    return 0;
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

// The help of an ingress translation add: its words up to the match,
// the match's, then the action's.
#define CLI_VLAN_IVT_ACTION_HELP                                                                                 \
    "Action", "Outer tag action", "None", "Add", "Replace", "Delete", "Inner tag action", "None", "Add", "Replace", \
        "Delete", "New outer VID", "VID", "New inner VID", "VID", "New outer priority", "0~7", "New outer CFI",    \
        "0~1", "New inner priority", "0~7", "New inner CFI", "0~1", nullptr
#define CLI_VLAN_IVT_HELP(...)                                                                                   \
    {"Ingress VLAN translation", "Add", "Key type", "Key type", "Match", __VA_ARGS__, CLI_VLAN_IVT_ACTION_HELP}
#define CLI_VLAN_IVT_PORT_HELP(...)                                                                              \
    {"Ingress VLAN translation", "Add", "Key type", "Key type", "Port", "Port", "Trunk", "Trunk id", "Match",     \
     __VA_ARGS__, CLI_VLAN_IVT_ACTION_HELP}
#define CLI_VLAN_M(w) w, "Value"
const char *const k_ivt_help[][48] = {
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Inner VID")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Outer VID")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Inner VID")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Outer priority"), CLI_VLAN_M("Outer CFI")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Inner VID"), CLI_VLAN_M("Inner priority"), CLI_VLAN_M("Inner CFI")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Outer priority"), CLI_VLAN_M("Outer CFI")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Inner priority"), CLI_VLAN_M("Inner CFI")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Outer priority"), CLI_VLAN_M("Outer CFI"),
                      CLI_VLAN_M("Inner VID"), CLI_VLAN_M("Inner priority"), CLI_VLAN_M("Inner CFI")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Inner VID")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Outer VID")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Inner VID")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Outer priority"), CLI_VLAN_M("Outer CFI")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Inner VID"), CLI_VLAN_M("Inner priority"), CLI_VLAN_M("Inner CFI")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Outer priority"), CLI_VLAN_M("Outer CFI")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Inner priority"), CLI_VLAN_M("Inner CFI")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Outer priority"), CLI_VLAN_M("Outer CFI"),
                           CLI_VLAN_M("Inner VID"), CLI_VLAN_M("Inner priority"), CLI_VLAN_M("Inner CFI")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Outer priority")),
    CLI_VLAN_IVT_HELP(CLI_VLAN_M("Inner VID"), CLI_VLAN_M("Inner priority")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Outer VID"), CLI_VLAN_M("Outer priority")),
    CLI_VLAN_IVT_PORT_HELP(CLI_VLAN_M("Inner VID"), CLI_VLAN_M("Inner priority")),
};
#undef CLI_VLAN_M
#undef CLI_VLAN_IVT_PORT_HELP
#undef CLI_VLAN_IVT_HELP
#undef CLI_VLAN_IVT_ACTION_HELP
#define CLI_VLAN_IVT_KEY_HELP                                                                                     \
    "Key type", "Outer and inner VID", "Outer VID", "Inner VID", "Outer VID and priority",                       \
        "Inner VID and priority", "Outer tag", "Inner tag", "Outer priority and CFI", "Inner priority and CFI",     \
        "Both tags", "Port, outer VID and priority", "Port, inner VID and priority", "Port, outer and inner VID",  \
        "Port and outer VID", "Port and inner VID", "Port and outer tag", "Port and inner tag",                    \
        "Port, outer priority and CFI", "Port, inner priority and CFI", "Port and both tags", "Port", "Port",       \
        "Trunk", "Trunk id", "Match", "Outer VID", "Value", "Outer priority", "Value", "Outer CFI", "Value",       \
        "Inner VID", "Value", "Inner priority", "Value", "Inner CFI", "Value"
const char *const k_ivt_del_help[] = {"Ingress VLAN translation", "Delete", CLI_VLAN_IVT_KEY_HELP, nullptr};
const char *const k_ivt_show_help[] = {"Show", "Ingress VLAN translation", CLI_VLAN_IVT_KEY_HELP, "All", nullptr};
#undef CLI_VLAN_IVT_KEY_HELP
const char *const k_ivt_glb_help[] = {"Ingress VLAN translation", "Tag miss drop", "Untag miss drop",
                                      "Priority-tagged key PVID CFI", "Priority-tagged key PVID priority",
                                      "Untagged key PVID CFI", "Untagged key PVID priority",
                                      "Priority-tagged key PVID", "Untagged key PVID", "Enable", "Disable",
                                      "Priority-tagged key tag number", "Value", nullptr};
const char *const k_voice_add_help[] = {"MAC VLAN", "Add", "Voice VLAN", "Source MAC", "Address", "Mask", "Address",
                                        "Port", "Port", "Outer VID", "VID", "Port", "Port", "Outer VID", "VID", "DSCP",
                                        "0~63", "Outer priority", "0~7", "VLAN to add", "VID", nullptr};
const char *const k_mac_add_help[] = {"MAC VLAN", "Add", "Source MAC", "Address", "Mask", "Address",
                                      "Outer priority", "0~7", "VLAN to add", "VID", nullptr};
#define CLI_VLAN_MAC_KEY_HELP                                                                                     \
    "Source MAC", "Address", "Mask", "Address", "Voice VLAN", "Port", "Port", "Outer VID", "VID"
const char *const k_mac_del_help[] = {"MAC VLAN", "Delete", CLI_VLAN_MAC_KEY_HELP, nullptr};
const char *const k_mac_show_help[] = {"Show", "MAC VLAN", CLI_VLAN_MAC_KEY_HELP, "All", nullptr};
#undef CLI_VLAN_MAC_KEY_HELP
#define CLI_VLAN_SUBNET_KEY_HELP                                                                                  \
    "Source IPv4", "Address", "Mask", "Mask", "Source IPv6", "Address", "Mask", "Mask"
const char *const k_subnet_add_help[] = {"Subnet VLAN", "Add", CLI_VLAN_SUBNET_KEY_HELP, "Outer priority", "0~7",
                                         "VLAN to add", "VID", nullptr};
const char *const k_subnet_del_help[] = {"Subnet VLAN", "Delete", "Index", "Index", CLI_VLAN_SUBNET_KEY_HELP,
                                         nullptr};
const char *const k_subnet_show_help[] = {"Show", "Subnet VLAN", "Index", "Index", CLI_VLAN_SUBNET_KEY_HELP, "All",
                                          nullptr};
#undef CLI_VLAN_SUBNET_KEY_HELP
#define CLI_VLAN_PROTOCOL_KEY_HELP                                                                                \
    "Port", "Port", "Trunk", "Trunk id", "Frame type", "Ethernet II", "SNAP", "LLC", "Protocol type", "Value"
const char *const k_protocol_add_help[] = {"Protocol VLAN", "Add", CLI_VLAN_PROTOCOL_KEY_HELP, "Outer priority",
                                           "0~7", "VLAN to add", "VID", nullptr};
const char *const k_protocol_del_help[] = {"Protocol VLAN", "Delete", CLI_VLAN_PROTOCOL_KEY_HELP, nullptr};
const char *const k_protocol_show_help[] = {"Show", "Protocol VLAN", CLI_VLAN_PROTOCOL_KEY_HELP, "All", nullptr};
#undef CLI_VLAN_PROTOCOL_KEY_HELP
const char *const k_clear_help[] = {"VLAN", "Ingress VLAN translation", "Egress VLAN translation", "MAC VLAN",
                                    "Subnet VLAN", "Protocol VLAN", "Clear", nullptr};

const char *const k_sw_show_help[] = {"Show", "VLAN", "VLAN id list", "Software rows", nullptr};
const char *const k_out_tpid_help[] = {"VLAN", "Ports", "Port list", "TPID of a sent outer tag", "The port's",
                                       "The VLAN's", nullptr};
const char *const k_bypass_help[] = {"VLAN", "Frames that skip the accepted-frame checks", "Add", "Delete",
                                     "Destination MAC", "Address", "Mask", "Mask", nullptr};
const char *const k_bypass_show_help[] = {"Show", "VLAN", "Frames that skip the accepted-frame checks",
                                          "Destination MAC", nullptr};
#define CLI_VLAN_EVT_ABSENT_HELP(what)                                                                          \
    {"Egress VLAN translation", "Add", "Key type", "Key type", what, "Id", "Match", "Outer VID", "VID",          \
     "Inner VID", "VID", CLI_VLAN_ACTION_HELP, "Destination port", "Port", nullptr}
#define CLI_VLAN_ACTION_HELP                                                                                     \
    "Action", "Outer tag action", "None", "Add", "Replace", "Delete", "Inner tag action", "None", "Add",        \
        "Replace", "Delete", "New outer VID", "VID", "New inner VID", "VID", "New outer priority", "0~7",         \
        "New outer CFI", "0~1", "New inner priority", "0~7", "New inner CFI", "0~1"
const char *const k_evt_vp_help[] = CLI_VLAN_EVT_ABSENT_HELP("Virtual port");
const char *const k_evt_group_help[] = CLI_VLAN_EVT_ABSENT_HELP("Port group");
#undef CLI_VLAN_EVT_ABSENT_HELP
const char *const k_port_vlan_add_help[] = {"Port VLAN", "Add", "Port", "Port list", CLI_VLAN_ACTION_HELP, nullptr};
#undef CLI_VLAN_ACTION_HELP
const char *const k_port_vlan_del_help[] = {"Port VLAN", "Delete", "Port", "Port list", nullptr};
const char *const k_port_vlan_show_help[] = {"Show", "Port VLAN", "Port", "Port list", "All", nullptr};
const char *const k_pvlan_enable_help[] = {"Private VLAN", "Ports", "Port list", "Enable", "Disable", nullptr};
const char *const k_pvlan_type_help[] = {"Private VLAN", "VLAN id list", "Type", "Promiscuous", "Isolated",
                                         "Community", nullptr};
const char *const k_pvlan_port_help[] = {"Private VLAN", "Secondary VLAN id list", "Primary VLAN", "VLAN id",
                                         "Ports", "Port list", "Enable", "Disable", nullptr};
const char *const k_pvlan_vlan_show_help[] = {"Show", "Private VLAN", "VLAN", "VLAN id list", nullptr};
const char *const k_pvlan_output_help[] = {"Private VLAN", "Port", "Port list", "Output", "Untagged", "Tagged",
                                           "VLAN id", "Priority", "0~7", nullptr};
const char *const k_pvlan_port_show_help[] = {"Show", "Private VLAN", "Ports", "Port list", nullptr};
const char *const k_cfg_enable_help[] = {"VLAN", "VLAN id list", "Frame action", "Action 1~3", "Copy to CPU",
                                         "Drop", "Dynamic ARP inspection", "Trust dot1p", "VSI", "Enable", "Disable",
                                         nullptr};
const char *const k_counter_type_help[] = {"VLAN", "VLAN id list", "Ingress counter type", "Egress counter type",
                                           "None", "Simple", "IP", "Unicast and multicast", "L2 and L3",
                                           "L2 and VLAN interface", nullptr};
const char *const k_hash_help[] = {"VLAN", "Ingress translation hash", "Egress translation hash",
                                   "Protocol VLAN hash", "Zero", "CRC32 upper", "CRC32 lower", "CRC16 upper",
                                   "CRC16 lower", "LSB", nullptr};
const char *const k_port_enable_help[] = {
    "VLAN", "Ports", "Port list", "Ingress filtering", "Egress filtering", "Ingress VID ranges", "Egress VID ranges",
    "PVID priority on tagged frames", "PVID CFI on tagged frames", "PVID priority on untagged frames",
    "PVID CFI on untagged frames", "Remote loopback block", "LAG block", "Isolation block", "ERPS block",
    "Egress remote loopback block", "Egress LAG block", "Egress isolation block", "Egress ERPS block",
    "Dynamic ARP inspection", "ARP trusted port", "Egress translation miss drop", "Enable", "Disable", nullptr};
const char *const k_port_select_help[] = {
    "VLAN", "Ports", "Port list", "PVID add mode", "None", "Untagged frames", "All frames",
    "Egress translation lookup", "First", "Second", "None", "Port, outer and inner VID", "Port, outer VID, priority",
    "Port and outer VID", "Ingress VID range", "Egress VID range", "Slot 0~3", "Minimum", "VID", "Maximum", "VID",
    nullptr};

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
#define CLI_VLAN_IVT_ACTION                                                                                      \
    " action {otag-action (none | add | replace | delete) | itag-action (none | add | replace | delete) | "        \
    "new-ovid WORD | new-ivid WORD | new-opri WORD | new-ocfi WORD | new-ipri WORD | new-icfi WORD}"
#define CLI_VLAN_IVT(row, type, match)                                                                           \
    {"ingress-vlan-translate add key-type " type " match-vlan " match CLI_VLAN_IVT_ACTION, -1,                     \
     cli_vlan_ingress_vt_add<row>, k_ivt_help[row], 0}
#define CLI_VLAN_IVT_PORT(row, type, match)                                                                      \
    {"ingress-vlan-translate add key-type " type " (port WORD | tgid WORD) match-vlan " match CLI_VLAN_IVT_ACTION, \
     -1, cli_vlan_ingress_vt_add<row>, k_ivt_help[row], 0}
    CLI_VLAN_IVT(0, "ovid-ivid", "ovid WORD ivid WORD"),
    CLI_VLAN_IVT(1, "ovid", "ovid WORD"),
    CLI_VLAN_IVT(2, "ivid", "ivid WORD"),
    CLI_VLAN_IVT(3, "otag", "ovid WORD opri WORD ocfi WORD"),
    CLI_VLAN_IVT(4, "itag", "ivid WORD ipri WORD icfi WORD"),
    CLI_VLAN_IVT(5, "opri-ocfi", "opri WORD ocfi WORD"),
    CLI_VLAN_IVT(6, "ipri-icfi", "ipri WORD icfi WORD"),
    CLI_VLAN_IVT(7, "otag-itag", "ovid WORD opri WORD ocfi WORD ivid WORD ipri WORD icfi WORD"),
    CLI_VLAN_IVT_PORT(8, "port-ovid-ivid", "ovid WORD ivid WORD"),
    CLI_VLAN_IVT_PORT(9, "port-ovid", "ovid WORD"),
    CLI_VLAN_IVT_PORT(10, "port-ivid", "ivid WORD"),
    CLI_VLAN_IVT_PORT(11, "port-otag", "ovid WORD opri WORD ocfi WORD"),
    CLI_VLAN_IVT_PORT(12, "port-itag", "ivid WORD ipri WORD icfi WORD"),
    CLI_VLAN_IVT_PORT(13, "port-opri-ocfi", "opri WORD ocfi WORD"),
    CLI_VLAN_IVT_PORT(14, "port-ipri-icfi", "ipri WORD icfi WORD"),
    CLI_VLAN_IVT_PORT(15, "port-otag-itag", "ovid WORD opri WORD ocfi WORD ivid WORD ipri WORD icfi WORD"),
    CLI_VLAN_IVT(16, "ovid-opri", "ovid WORD opri WORD"),
    CLI_VLAN_IVT(17, "ivid-ipri", "ivid WORD ipri WORD"),
    CLI_VLAN_IVT_PORT(18, "port-ovid-opri", "ovid WORD opri WORD"),
    CLI_VLAN_IVT_PORT(19, "port-ivid-ipri", "ivid WORD ipri WORD"),
#undef CLI_VLAN_IVT_PORT
#undef CLI_VLAN_IVT
#undef CLI_VLAN_IVT_ACTION
#define CLI_VLAN_IVT_KEY                                                                                         \
    "key-type (ovid-ivid | ovid | ivid | ovid-opri | ivid-ipri | otag | itag | opri-ocfi | ipri-icfi | otag-itag | " \
    "port-ovid-opri | port-ivid-ipri | port-ovid-ivid | port-ovid | port-ivid | port-otag | port-itag | "         \
    "port-opri-ocfi | port-ipri-icfi | port-otag-itag) (port WORD | tgid WORD |) match-vlan {ovid WORD | opri WORD "  \
    "| ocfi WORD | ivid WORD | ipri WORD | icfi WORD}"
    {"ingress-vlan-translate del " CLI_VLAN_IVT_KEY, -1, cli_vlan_ingress_vt_delete, k_ivt_del_help, 0},
    {"show ingress-vlan-translate (" CLI_VLAN_IVT_KEY " | all)", -1, cli_vlan_ingress_vt_show, k_ivt_show_help, 0},
#undef CLI_VLAN_IVT_KEY
    {"ingress-vlan-translate ((tag-miss-drop | untag-miss-drop | pri-tag-key-pvid-cfi | pri-tag-key-pvid-pri | "
     "untag-key-pvid-cfi | untag-key-pvid-pri | pri-tag-key-pvid | untag-key-pvid) (enable | disable) | "
     "pri-tag-key-tag-num WORD)",
     -1, cli_vlan_ingress_vt_global_cfg_set, k_ivt_glb_help, 0},
    {"mac-vlan add voice-vlan (smac XX:XX:XX:XX:XX:XX smac-mask XX:XX:XX:XX:XX:XX port WORD ovid WORD | port WORD "
     "ovid WORD) {dscp WORD | opri WORD | ovid-add WORD}",
     -1, cli_vlan_voice_vlan_add, k_voice_add_help, 0},
    {"mac-vlan add smac XX:XX:XX:XX:XX:XX smac-mask XX:XX:XX:XX:XX:XX {opri WORD | ovid-add WORD}", -1,
     cli_vlan_mac_vlan_add, k_mac_add_help, 0},
    {"mac-vlan del {smac XX:XX:XX:XX:XX:XX smac-mask XX:XX:XX:XX:XX:XX | voice-vlan port WORD ovid WORD}", -1,
     cli_vlan_mac_vlan_delete, k_mac_del_help, 0},
    {"show mac-vlan ({smac XX:XX:XX:XX:XX:XX smac-mask XX:XX:XX:XX:XX:XX | voice-vlan port WORD ovid WORD} | all)",
     -1, cli_vlan_mac_vlan_show, k_mac_show_help, 0},
    {"subnet-vlan add (sip A.B.C.D ip-mask A.B.C.D | sipv6 WORD ipv6-mask WORD) {opri WORD | ovid-add WORD}", -1,
     cli_vlan_subnet_vlan_add, k_subnet_add_help, 0},
    {"subnet-vlan del (index WORD | sip A.B.C.D ip-mask A.B.C.D | sipv6 WORD ipv6-mask WORD)", -1,
     cli_vlan_subnet_vlan_delete, k_subnet_del_help, 0},
    {"show subnet-vlan (index WORD | sip A.B.C.D ip-mask A.B.C.D | sipv6 WORD ipv6-mask WORD | all)", -1,
     cli_vlan_subnet_vlan_show, k_subnet_show_help, 0},
    {"protocol-vlan add (port WORD | tgid WORD) frame-type (eth | snap | llc-other) protocol-type WORD {opri WORD | "
     "ovid-add WORD}",
     -1, cli_vlan_protocol_vlan_add, k_protocol_add_help, 0},
    {"protocol-vlan del (port WORD | tgid WORD) frame-type (eth | snap | llc-other) protocol-type WORD", -1,
     cli_vlan_protocol_vlan_delete, k_protocol_del_help, 0},
    {"show protocol-vlan ((port WORD | tgid WORD) frame-type (eth | snap | llc-other) protocol-type WORD | all)", -1,
     cli_vlan_protocol_vlan_show, k_protocol_show_help, 0},
    {"vlan (ingress-vlan-translate | egress-vlan-translate | mac-vlan | subnet-vlan | protocol-vlan) clear", -1,
     cli_vlan_vt_or_vacl_clear, k_clear_help, 0},
    {"vlan ports WORD output-tpid-mode (port | vlan)", -1, cli_vlan_port_output_tpid_mode_set, k_out_tpid_help, 0},
    {"vlan bypass-accept-frame (add | del) dmac XX:XX:XX:XX:XX:XX dmac-mask XX:XX:XX:XX:XX:XX", -1,
     cli_vlan_bypass_accept_frame_set, k_bypass_help, 0},
    {"show vlan bypass-accept-frame dmac", -1, cli_vlan_bypass_accept_frame_show, k_bypass_show_help, 0},
#define CLI_VLAN_EVT_ABSENT(type, word)                                                                          \
    "egress-vlan-translate add key-type " type " " word " WORD match-vlan ovid WORD ivid WORD action "          \
    "{otag-action (none | add | replace | delete) | itag-action (none | add | replace | delete) | new-ovid WORD | " \
    "new-ivid WORD | new-opri WORD | new-ocfi WORD | new-ipri WORD | new-icfi WORD | dpid WORD}"
    {CLI_VLAN_EVT_ABSENT("vp-ovid-ivid", "vp"), -1, cli_vlan_egress_vt_add_absent<k_vp_ovid_ivid>, k_evt_vp_help, 0},
    {CLI_VLAN_EVT_ABSENT("port-group-ovid-ivid", "port-group"), -1,
     cli_vlan_egress_vt_add_absent<k_port_group_ovid_ivid>, k_evt_group_help, 0},
#undef CLI_VLAN_EVT_ABSENT
    {"port-vlan add port WORD action {otag-action (none | add | replace | delete) | itag-action (none | add | "
     "replace | delete) | new-ovid WORD | new-ivid WORD | new-opri WORD | new-ocfi WORD | new-ipri WORD | "
     "new-icfi WORD}",
     -1, cli_vlan_port_vlan_add, k_port_vlan_add_help, 0},
    {"port-vlan del port WORD", -1, cli_vlan_port_vlan_delete, k_port_vlan_del_help, 0},
    {"show port-vlan (port WORD | all)", -1, cli_vlan_port_vlan_show, k_port_vlan_show_help, 0},
    {"private-vlan ports WORD (enable | disable)", -1, cli_vlan_pvlan_port_enable_set, k_pvlan_enable_help, 0},
    {"private-vlan WORD type (promiscuous | isolate | community)", -1, cli_vlan_pvlan_type_set, k_pvlan_type_help, 0},
    {"private-vlan WORD primary WORD ports WORD (enable | disable)", -1, cli_vlan_pvlan_port_set, k_pvlan_port_help,
     0},
    {"show private-vlan vlan WORD", -1, cli_vlan_pvlan_vlan_show, k_pvlan_vlan_show_help, 0},
    {"private-vlan port WORD output (untag | tag WORD priority WORD)", -1, cli_vlan_pvlan_port_output_set,
     k_pvlan_output_help, 0},
    {"show private-vlan ports WORD", -1, cli_vlan_pvlan_port_show, k_pvlan_port_show_help, 0},
    {"vlan WORD (pa-action WORD (copy-to-cpu | drop) | dai | trust-dot1p | isvsi) (enable | disable)", -1,
     cli_vlan_cfg_enable_set, k_cfg_enable_help, 0},
    {"vlan WORD (counter-type | egr-counter-type) (none | simple-counter | ip-counter | uc-mc-counter | "
     "l2-l3-counter | l2-vlanif-counter)",
     -1, cli_vlan_counter_type_set, k_counter_type_help, 0},
    {"vlan (ing-vt-hash-mode | egr-vt-hash-mode | protocol-vlan-hash-mode) (zero | crc32-upper | crc32-lower | "
     "crc16-upper | crc16-lower | lsb)",
     -1, cli_vlan_global_hash_set, k_hash_help, 0},
    {"vlan ports WORD (ingress-filter | egress-filter | vlan-range | egr-vlan-range | tag-pvid-pri | tag-pvid-cfi | "
     "untag-pvid-pri | untag-pvid-cfi | rmtlp-blk | lag-blk | iblk | erps-blk | egr-rmtlp-blk | egr-lag-blk | "
     "egr-iblk | egr-erps-blk | dai | dai-trust | egr-vt-miss-drop) (enable | disable)",
     -1, cli_vlan_port_enable_set, k_port_enable_help, 0},
    {"vlan ports WORD (pvid-add-mode (none | untag | all) | egr-vt-lookup (first | second) (none | port-ovid-ivid | "
     "port-ovid-dot1p | port-ovid) | (vlan-range | egr-vlan-range) WORD min WORD max WORD)",
     -1, cli_vlan_port_cfg_value_select_set, k_port_select_help, 0},
};

constexpr u32 k_vlan_commands = sizeof(g_vlan_desc) / sizeof(g_vlan_desc[0]);
cli_cmd_item g_vlan_items[k_vlan_commands];

// The debug mode's view of the VLAN rows in software.
cli_cmd_desc g_vlan_debug_desc[] = {
    {"show vlan WORD software-table", -1, cli_vlan_softeware_info_show, k_sw_show_help, 0},
};
cli_cmd_item g_vlan_debug_items[1];

} // namespace

extern "C" void cli_cmd_init_vlan(void)
{
    cli_cmd_descs_link(g_vlan_desc, g_vlan_items, k_vlan_commands, CLI_MODE_VLAN);
    cli_cmd_descs_link(g_vlan_debug_desc, g_vlan_debug_items, 1, CLI_MODE_DEBUG);
}
