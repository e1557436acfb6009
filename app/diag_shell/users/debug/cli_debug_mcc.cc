// Mode `debug`: the replication engine below the API.  Replication trees
// are made and walked directly (`mcc alloc-mrt-table`, `increment-copy`,
// `decrement-copy`, `del-all-copy`), the shared lists of L2 multicast are
// shown and compressed, and the engine's thresholds, catch registers,
// token buckets, round robin and counters are set and read.
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "app/diag_shell/users/release/cli_init.h"
#include "app/diag_shell/users/release/cli_param.h"
#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"

namespace {

constexpr u32 kModeDebug = CLI_MODE_DEBUG;

// The stages of the copy engine, as the commands name them, with their
// debug counters.
struct Stage {
    const char *name;
    std::initializer_list<u32> debug_regs;
};
const Stage kStages[] = {
    {"msg",
     {cib_mcc_msg_trace0_in_debug4, cib_mcc_msg_trace0_in_debug5, cib_mcc_msg_trace1_in_debug6,
      cib_mcc_msg_trace1_in_debug7, cib_mcc_msg_trace_out_debug8, cib_mcc_msg_trace_out_debug9,
      cib_mcc_msg_trace_out_debug10, cib_mcc_msg_trace_out_debug11, cib_mcc_msg_trace_out_debug12,
      cib_mcc_msg_trace_out_debug13, cib_mcc_msg_trace_out_debug14, cib_mcc_msg_trace_out_debug15}},
    {"mcp",
     {cib_mcc_mcp_trace01_in_debug2, cib_mcc_mcp_trace0_out_debug3, cib_mcc_mcp_trace1_out_debug4,
      cib_mcc_mcp_trace_out_debug5, cib_mcc_mcp_trace_out_debug6}},
    {"bcp",
     {cib_mcc_bcp_trace01_in_cnt_debug2, cib_mcc_bcp_trace0_out_cnt_debug3, cib_mcc_bcp_trace1_out_cnt_debug4,
      cib_mcc_bcp_trace_out0_debug5, cib_mcc_bcp_trace_out1_debug6}},
    {"sch", {cib_mcc_sch_trace0_out_cnt_debug2, cib_mcc_sch_trace1_out_cnt_debug3}},
    {"mirr", {cib_mcc_mirr_trace_in_cnt_debug0, cib_mcc_mirr_trace_out_cnt_debug1}},
};

// The actions of a catch register.
constexpr const char *kCatchActs[] = {"drop", "forward", "redirect-to-cpu", "copy-to-cpu"};

i32 _bad_argc()
{
    cli_output_show("parameter number is incorrect. \n");
    return SHR_E_PARAM;
}

i32 _result(const char *call, i32 rc)
{
    return rc == SHR_E_NONE ? rc : cli_call_failed(call, rc);
}

// The numbers of argv[first..first + n), each a u32.
template <size_t N>
i32 _numbers(i32 argc, char **argv, i32 first, u32 (&out)[N])
{
    if (argc < first + static_cast<i32>(N)) {
        return _bad_argc();
    }
    for (size_t i = 0; i < N; i++) {
        if (cli_get_uint32_param(argv[first + i], &out[i]) != SHR_E_NONE) {
            return SHR_E_PARAM;
        }
    }
    return SHR_E_NONE;
}

// The index of a word in a list of words, or -1.
template <typename List>
i32 _index_of(const List &list, const char *word)
{
    i32 i = 0;
    for (const auto &w : list) {
        if (strcmp(w, word) == 0) {
            return i;
        }
        i++;
    }
    return -1;
}

const Stage *_stage(const char *name)
{
    for (const Stage &s : kStages) {
        if (strcmp(s.name, name) == 0) {
            return &s;
        }
    }
    return nullptr;
}

// Fields of a register set in one command; the first failure ends it.
i32 _fields_set(u32 chip_id, u32 reg_id, std::initializer_list<std::pair<const char *, u32>> fields)
{
    for (const auto &[field, value] : fields) {
        const i32 rc = dpl_reef_mcc_reg_field_set(chip_id, reg_id, field, value);
        if (rc != SHR_E_NONE) {
            return _result("dpl_reef_mcc_reg_field_set", rc);
        }
    }
    return SHR_E_NONE;
}

u32 _field(u32 chip_id, u32 reg_id, const char *field)
{
    u32 v = 0;
    dpl_reef_mcc_reg_field_get(chip_id, reg_id, field, &v);
    return v;
}

const char *_name_of(const cib_reg_info *reg)
{
    return reg != nullptr && reg->name != nullptr ? reg->name : "?";
}

// The walk of a root in the chip: leaf, next, key and edit of each copy.
i32 _hw_leaf_show(u32, u32 leaf, const mcc_port_config *e, void *)
{
    cli_output_show("  %-6u key 0x%03x tagnum %u vlanupdate %u vlanprichg %u prunedisable %u ovlan 0x%04x ivlan 0x%04x\n",
                    leaf, e->oport_inf_causeid, e->tagnum, e->vlanupdate, e->vlanprichg, e->prunedisable,
                    e->ovlan_rspan_vlan, e->ivlan_rspan_en);
    return 0;
}

// Chains of the shared lists, by their position on the list.
struct ChainPick {
    u32 want, at;
    const mlib_group *found;
};

i32 _chain_row(u32, const mlib_group *c, void *arg)
{
    auto *pick = static_cast<ChainPick *>(arg);
    if (pick->want == ~0u) {
        cli_output_show("%-6u %-6u %-6u %s\n", pick->at, c->node_cnt, c->mrt_cnt, c->node_buf);
    } else if (pick->at == pick->want) {
        pick->found = c;
    }
    pick->at++;
    return 0;
}

i32 _group_row(u32, const mrt_group *g, void *)
{
    cli_output_show("%-7u %-6u %-6u %-11u %s\n", g->mrt_id, g->db_id, g->rep_cnt, g->first_mlib_id, g->node_buf);
    return 0;
}

void _node_rows(shr_avl_table *tree, bool chain)
{
    shr_avl_traverser tr;
    for (void *p = shr_avl_t_first(&tr, tree); p != nullptr; p = shr_avl_t_next(&tr)) {
        const auto *n = static_cast<const mlib_node *>(p);
        const mcc_port_config &c = n->port_config;
        if (chain) {
            cli_output_show("  key 0x%04x leaf %-5u next %s%-5u use_cnt %-4u tagnum %u vlanupdate %u ovlan 0x%04x\n",
                            c.oport_inf_causeid, n->mlib_id, n->next_vld ? "" : "-", n->next_id, n->use_cnt, c.tagnum,
                            c.vlanupdate, c.ovlan_rspan_vlan);
        } else {
            cli_output_show("  key 0x%04x tagnum %u vlanupdate %u vlanprichg %u prunedisable %u ovlan 0x%04x ivlan 0x%04x\n",
                            c.oport_inf_causeid, c.tagnum, c.vlanupdate, c.vlanprichg, c.prunedisable,
                            c.ovlan_rspan_vlan, c.ivlan_rspan_en);
        }
    }
}

} // namespace

extern "C" {

// mcc alloc-mrt-table table-type (l2mc|l3mc) copy-number WORD
i32 cli_mcc_alloc_copy_table(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    i32 rc = _numbers(argc, argv, 1, n);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    copy_req req{strcmp(argv[0], "l3mc") == 0 ? MCC_TYPE_L3MC : MCC_TYPE_L2MC, 0, 0, n[0]};
    mrt_root_node root{};
    rc = dpl_reef_mcc_alloc_copy_resource(chip_id, &req, &root);
    if (rc == SHR_E_NONE) {
        cli_output_show("mrt id %u, first mlib id %u, last mlib id %u, copies %u\n", root.mrt_index, root.leafid_indx,
                        root.last_leaf, root.rep_num);
    }
    return _result("dpl_reef_mcc_alloc_copy_resource", rc);
}

// show mcc mrt-id WORD: the tree's record, then the chip's walk of the root.
i32 cli_mcc_mrt_table_show(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    i32 rc = _numbers(argc, argv, 0, n);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    mrt_root_node root{};
    if (dpl_reef_mcc_get_mrt_root_node(chip_id, n[0], &root) == SHR_E_NONE) {
        cli_output_show("tree: type %u first %u last %u rep_num %u stat_en %u udp_dport_en %u\n", root.type,
                        root.leafid_indx, root.last_leaf, root.rep_num, root.stat_en, root.udp_dport_en);
    }
    u32 valid = 0;
    cli_output_show("mrt %u in the chip:\n", n[0]);
    rc = dpl_reef_mcc_mrt_hw_walk(chip_id, n[0], _hw_leaf_show, nullptr, &valid);
    if (rc == SHR_E_NONE && !valid) {
        cli_output_show("  not valid\n");
    }
    return _result("dpl_reef_mcc_mrt_hw_walk", rc);
}

// show mcc mlib-id WORD
i32 cli_mcc_mlib_leaf_show(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    i32 rc = _numbers(argc, argv, 0, n);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    mleaf_node leaf{};
    rc = dpl_reef_mcc_get_mlib_leaf_node(chip_id, n[0], &leaf);
    if (rc == SHR_E_NONE) {
        cli_output_show("mlib %u: mrt %u valid %u next %s%u prev %u udp_dport_en %u\n", leaf.leaf_index, leaf.mrt_index,
                        leaf.mlib_vld, leaf.next_vld ? "" : "-", leaf.next_leaf, leaf.prev_leaf, leaf.udp_dport_en);
    }
    return _result("dpl_reef_mcc_get_mlib_leaf_node", rc);
}

// mcc increment-copy mrt-id WORD
i32 cli_mcc_increment_copy(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    i32 rc = _numbers(argc, argv, 0, n);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    u32 leaf = 0;
    rc = dpl_reef_mcc_increment_copy(chip_id, n[0], &leaf);
    if (rc == SHR_E_NONE) {
        cli_output_show("mrt %u: new mlib id %u\n", n[0], leaf);
    }
    return _result("dpl_reef_mcc_increment_copy", rc);
}

// mcc decrement-copy mrt-id WORD mlib-id WORD
i32 cli_mcc_decrement_copy(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[2] = {};
    const i32 rc = _numbers(argc, argv, 0, n);
    return rc != SHR_E_NONE ? rc : _result("dpl_reef_mcc_decrement_copy", dpl_reef_mcc_decrement_copy(chip_id, n[0], n[1]));
}

// mcc del-all-copy mrt-id WORD
i32 cli_mcc_del_all_copy(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    const i32 rc = _numbers(argc, argv, 0, n);
    return rc != SHR_E_NONE ? rc : _result("dpl_reef_mcc_del_all_copy", dpl_reef_mcc_del_all_copy(chip_id, n[0]));
}

// mcc no-cpu-pkt high-threshold WORD low-threshold WORD
i32 cli_mcc_nocpu_packet_drop_threshold_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[2] = {};
    const i32 rc = _numbers(argc, argv, 0, n);
    return rc != SHR_E_NONE ? rc : _fields_set(chip_id, cib_mcc_pri_st, {{"pri_full_h", n[0]}, {"pri_full_l", n[1]}});
}

// mcc cpu-pkt high-threshold WORD low-threshold WORD
i32 cli_mcc_cpu_packet_drop_threshold_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[2] = {};
    const i32 rc = _numbers(argc, argv, 0, n);
    return rc != SHR_E_NONE ? rc
                            : _fields_set(chip_id, cib_mcc_qindx_st, {{"qindx_full_h", n[0]}, {"qindx_full_l", n[1]}});
}

// The threshold a VLAN tag priority uses: its flag, 1 for the high one.
i32 _pri_threshold_set(u32 chip_id, i32 argc, char **argv, u32 reg_id, const char *prefix)
{
    if (argc < 2 || strncmp(argv[0], "pri", 3) != 0 || argv[0][3] < '0' || argv[0][3] > '7') {
        return _bad_argc();
    }
    char field[16];
    snprintf(field, sizeof(field), "%s%c_flag", prefix, argv[0][3]);
    return _fields_set(chip_id, reg_id, {{field, strcmp(argv[1], "high-threshold") == 0 ? 1u : 0u}});
}

// mcc no-cpu-pkt vlan-tag-pri (pri0 | ... | pri7) (high-threshold | low-threshold)
i32 cli_mcc_nocpu_packet_pri_threshold_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _pri_threshold_set(chip_id, argc, argv, cib_mcc_pri_st, "pri");
}

// mcc cpu-pkt vlan-tag-pri (pri0 | ... | pri7) (high-threshold | low-threshold)
i32 cli_mcc_cpu_packet_pri_threshold_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _pri_threshold_set(chip_id, argc, argv, cib_mcc_qindx_st, "qindx");
}

// mcc (msg | mcp | bcp | sch | mirr) catch-pkt (enable | disable)
i32 cli_mcc_catch_packet_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    if (argc < 2 || _stage(argv[0]) == nullptr) {
        return _bad_argc();
    }
    const std::string field = std::string(argv[0]) + "_catch_en";
    return _fields_set(chip_id, cib_mcc_catch_pkt_cfg, {{field.c_str(), strcmp(argv[1], "enable") == 0 ? 1u : 0u}});
}

// mcc (msg | mcp | bcp | sch | mirr) catch-pkt-type (drop | forward | redirect-to-cpu | copy-to-cpu)
i32 cli_mcc_catch_packet_type_set(u32 chip_id, u32, i32 argc, char **argv)
{
    const i32 act = argc >= 2 ? _index_of(kCatchActs, argv[1]) : -1;
    if (act < 0 || _stage(argv[0]) == nullptr) {
        return _bad_argc();
    }
    const std::string field = std::string(argv[0]) + "_catch_type";
    return _fields_set(chip_id, cib_mcc_catch_pkt_cfg, {{field.c_str(), static_cast<u32>(act)}});
}

// mcc udp-port WORD
i32 cli_mcc_mcc_rtp_cnt_use_udp_port_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    const i32 rc = _numbers(argc, argv, 0, n);
    return rc != SHR_E_NONE ? rc : _fields_set(chip_id, cib_mcc_rtp_udp_port, {{"rtp_udp_dport", n[0]}});
}

i32 _count_set(u32 chip_id, i32 argc, char **argv, u32 what)
{
    u32 n[1] = {};
    i32 rc = _numbers(argc, argv, 0, n);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    if (argc < 2) {
        return _bad_argc();
    }
    rc = dpl_reef_mcc_mrt_count_set(chip_id, n[0], what, strcmp(argv[1], "enable") == 0 ? 1 : 0);
    return _result("dpl_reef_mcc_mrt_count_set", rc);
}

// mcc group-id WORD rtp (enable| disable)
i32 cli_mcc_rtp_cnt_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _count_set(chip_id, argc, argv, MCC_COUNT_RTP);
}

// mcc group-id WORD stats (enable | disable)
i32 cli_mcc_cnt_enable_set(u32 chip_id, u32, i32 argc, char **argv)
{
    return _count_set(chip_id, argc, argv, MCC_COUNT_STATS);
}

// mcc unicast-weight WORD multicast-weight WORD
i32 cli_mcc_wrr_weight_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[2] = {};
    const i32 rc = _numbers(argc, argv, 0, n);
    return rc != SHR_E_NONE ? rc : _fields_set(chip_id, cib_mcc_uc_mc_wrr, {{"uc_wrr", n[0]}, {"mc_wrr", n[1]}});
}

// mcc (bcp | mcp) interval-beats WORD token-add WORD token-data WORD
i32 cli_mcc_bcp_mcp_token_config_set(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[3] = {};
    const i32 rc = _numbers(argc, argv, 1, n);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const bool bcp = strcmp(argv[0], "bcp") == 0;
    i32 r = _fields_set(chip_id, bcp ? cib_mcc_bcp_token_cnt : cib_mcc_mcp_token_cnt,
                        {{bcp ? "bcp_token_cnt" : "mcp_token_cnt", n[0]}});
    r = r != SHR_E_NONE ? r
                        : _fields_set(chip_id, bcp ? cib_mcc_bcp_token_add : cib_mcc_mcp_token_add,
                                      {{bcp ? "bcp_token_add" : "mcp_token_add", n[1]}});
    return r != SHR_E_NONE ? r
                           : _fields_set(chip_id, bcp ? cib_mcc_bcp_token_dat : cib_mcc_mcp_token_dat,
                                         {{bcp ? "bcp_token_dat" : "mcp_token_dat", n[2]}});
}

// show mcc (msg | mcp | bcp | sch | mirr) debug: the stage's counters, which
// clear when read.
i32 cli_mcc_debug_info_get(u32 chip_id, u32, i32 argc, char **argv)
{
    const Stage *s = argc >= 1 ? _stage(argv[0]) : nullptr;
    if (s == nullptr) {
        return _bad_argc();
    }
    cli_output_show("%-36s %s\n", "register", "value");
    for (u32 reg_id : s->debug_regs) {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
        u32 v = 0;
        const i32 rc = dpl_reef_mcc_reg_field_get(chip_id, reg_id, _name_of(reg) + 4, &v);
        if (rc != SHR_E_NONE) {
            return _result("dpl_reef_mcc_reg_field_get", rc);
        }
        cli_output_show("%-36s 0x%08x\n", _name_of(reg), v);
    }
    return SHR_E_NONE;
}

// show mcc rtp
i32 cli_mcc_rtp_debug_info_get(u32 chip_id, u32, i32, char **)
{
    u32 port = 0, count = 0;
    i32 rc = dpl_reef_mcc_reg_field_get(chip_id, cib_mcc_rtp_udp_port, "rtp_udp_dport", &port);
    rc = rc != SHR_E_NONE ? rc : dpl_reef_mcc_reg_field_get(chip_id, cib_mcc_rtp_pkt_cnt, "rtp_pkt_cnt", &count);
    if (rc == SHR_E_NONE) {
        cli_output_show("rtp udp port : %u\nrtp copies   : %u\n", port, count);
    }
    return _result("dpl_reef_mcc_reg_field_get", rc);
}

// show mcc fifo-status
i32 cli_mcc_fifo_status_debug_info_get(u32 chip_id, u32, i32, char **)
{
    const i32 rc = dpl_reef_mcc_chip_check(chip_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    for (const Stage &s : kStages) {
        const std::string field = std::string(s.name) + "_fifo_cnt";
        cli_output_show("%-5s fifo : %u\n", s.name, _field(chip_id, cib_mcc_fifo_status, field.c_str()));
    }
    return SHR_E_NONE;
}

// show mcc weight-status
i32 cli_mcc_weight_status_info_get(u32 chip_id, u32, i32, char **)
{
    const i32 rc = dpl_reef_mcc_chip_check(chip_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    cli_output_show("unicast weight   : %u (credits left %u)\n", _field(chip_id, cib_mcc_uc_mc_wrr, "uc_wrr"),
                    _field(chip_id, cib_mcc_wrr_status, "uc_wrr_cnt"));
    cli_output_show("multicast weight : %u (credits left %u)\n", _field(chip_id, cib_mcc_uc_mc_wrr, "mc_wrr"),
                    _field(chip_id, cib_mcc_wrr_status, "mc_wrr_cnt"));
    return SHR_E_NONE;
}

// show mcc: settings and resources.
i32 cli_mcc_info_show(u32 chip_id, u32, i32, char **)
{
    const i32 rc = dpl_reef_mcc_chip_check(chip_id);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    const u32 mcp[3] = {_field(chip_id, cib_mcc_mcp_token_cnt, "mcp_token_cnt"),
                        _field(chip_id, cib_mcc_mcp_token_add, "mcp_token_add"),
                        _field(chip_id, cib_mcc_mcp_token_dat, "mcp_token_dat")};
    const u32 bcp[3] = {_field(chip_id, cib_mcc_bcp_token_cnt, "bcp_token_cnt"),
                        _field(chip_id, cib_mcc_bcp_token_add, "bcp_token_add"),
                        _field(chip_id, cib_mcc_bcp_token_dat, "bcp_token_dat")};
    cli_output_show("cpu port              : %u\n", _field(chip_id, cib_mcc_cpu_port_cfg, "cpu_port_cfg"));
    cli_output_show("no-cpu-pkt thresholds : high %u low %u\n", _field(chip_id, cib_mcc_pri_st, "pri_full_h"),
                    _field(chip_id, cib_mcc_pri_st, "pri_full_l"));
    cli_output_show("cpu-pkt thresholds    : high %u low %u\n", _field(chip_id, cib_mcc_qindx_st, "qindx_full_h"),
                    _field(chip_id, cib_mcc_qindx_st, "qindx_full_l"));
    cli_output_show("mcp tokens            : interval %u add %u data %u\n", mcp[0], mcp[1], mcp[2]);
    cli_output_show("bcp tokens            : interval %u add %u data %u\n", bcp[0], bcp[1], bcp[2]);
    u32 leaves = 0, l2mc = 0, slots = 0;
    dpl_reef_mcc_mlib_unuse_node_cnt_get(chip_id, &leaves);
    dpl_reef_mcc_mrt_unuse_node_cnt_get(chip_id, MCC_TYPE_L2MC, &l2mc);
    dpl_reef_mcc_db_mrt_unuse_cnt_get(chip_id, &slots);
    cli_output_show("free mlib ids         : %u\n", leaves);
    cli_output_show("free l2mc mrt ids     : %u\n", l2mc);
    cli_output_show("free group slots      : %u\n", slots);
    cli_output_show("l2mc groups           : %u\n", dpl_reef_mcc_mrt_group_num_get(chip_id));
    cli_output_show("shared chains         : %u\n", dpl_reef_mcc_mlib_group_num_get(chip_id));
    return SHR_E_NONE;
}

// show mcc mlib group: the chains in list order.
i32 cli_mcc_mlib_group_show(u32 chip_id, u32, i32, char **)
{
    ChainPick all{~0u, 0, nullptr};
    cli_output_show("%-6s %-6s %-6s %s\n", "chain", "nodes", "roots", "keys");
    return _result("dpl_reef_mcc_mlib_group_traverse", dpl_reef_mcc_mlib_group_traverse(chip_id, _chain_row, &all));
}

// show mcc mlib group tree WORD: one chain's nodes, by its place in the list.
i32 cli_mcc_mlib_group_node_show(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    i32 rc = _numbers(argc, argv, 0, n);
    if (rc != SHR_E_NONE) {
        return rc;
    }
    ChainPick pick{n[0], 0, nullptr};
    rc = dpl_reef_mcc_mlib_group_traverse(chip_id, _chain_row, &pick);
    if (rc == SHR_E_NONE && pick.found == nullptr) {
        cli_output_show("chain %u does not exist\n", n[0]);
        return SHR_E_NOT_FOUND;
    }
    if (rc == SHR_E_NONE) {
        MccLock hold(chip_id);
        cli_output_show("chain %u: %u nodes, %u roots\n", n[0], pick.found->node_cnt, pick.found->mrt_cnt);
        _node_rows(pick.found->mlib_entry, true);
    }
    return _result("dpl_reef_mcc_mlib_group_traverse", rc);
}

// show mcc mrt group: the L2 multicast groups.
i32 cli_mcc_mrt_group_show(u32 chip_id, u32, i32, char **)
{
    cli_output_show("%-7s %-6s %-6s %-11s %s\n", "mrt id", "slot", "copies", "first mlib", "keys");
    return _result("dpl_reef_mcc_mrt_group_traverse", dpl_reef_mcc_mrt_group_traverse(chip_id, _group_row, nullptr));
}

// show mcc mrt group tree WORD: one group's members and their edits.
i32 cli_mcc_mrt_group_node_show(u32 chip_id, u32, i32 argc, char **argv)
{
    u32 n[1] = {};
    i32 rc = _numbers(argc, argv, 0, n);
    if (rc == SHR_E_NONE) {
        rc = dpl_reef_mcc_chip_check(chip_id);
    }
    if (rc != SHR_E_NONE) {
        return rc;
    }
    MccLock hold(chip_id);
    const mrt_group *g = dpl_reef_mcc_mrt_group_get(chip_id, n[0]);
    if (g == nullptr) {
        cli_output_show("mrt group %u does not exist\n", n[0]);
        return SHR_E_NOT_FOUND;
    }
    cli_output_show("mrt %u: slot %u, %u copies from mlib %u\n", g->mrt_id, g->db_id, g->rep_cnt, g->first_mlib_id);
    _node_rows(g->mlib_entry, false);
    return SHR_E_NONE;
}

// mcc compress
i32 cli_mcc_mrt_comparess(u32 chip_id, u32, i32, char **)
{
    const u32 before = dpl_reef_mcc_mlib_group_num_get(chip_id);
    const i32 rc = dpl_reef_mlib_group_compress(chip_id);
    if (rc == SHR_E_NONE) {
        cli_output_show("chains: %u before, %u after\n", before, dpl_reef_mcc_mlib_group_num_get(chip_id));
    }
    return _result("dpl_reef_mlib_group_compress", rc);
}

} // extern "C"

// ---- the records ---------------------------------------------------------------------------

namespace {

#define MCC_STAGE_HELP "Message stage", "Multicast copy stage", "Broadcast copy stage", "Scheduler stage", "Mirror stage"
#define MCC_PRI_HELP                                                                                               \
    "VLAN tag priority 0", "VLAN tag priority 1", "VLAN tag priority 2", "VLAN tag priority 3",                  \
        "VLAN tag priority 4", "VLAN tag priority 5", "VLAN tag priority 6", "VLAN tag priority 7"

const char *const k_alloc_help[] = {"Replication engine", "Allocate a root with its copies", "Table type",
                                    "L2 multicast ids", "L3 multicast ids", "Copies", "Number of copies", nullptr};
const char *const k_mrt_show_help[] = {"Show", "Replication engine", "Root", "Root id", nullptr};
const char *const k_mlib_show_help[] = {"Show", "Replication engine", "Leaf", "Leaf id", nullptr};
const char *const k_inc_help[] = {"Replication engine", "Add a copy at the tail", "Root", "Root id", nullptr};
const char *const k_dec_help[] = {"Replication engine", "Remove a copy", "Root", "Root id", "Leaf", "Leaf id",
                                  nullptr};
const char *const k_del_all_help[] = {"Replication engine", "Remove a root and all its copies", "Root", "Root id",
                                      nullptr};
const char *const k_nocpu_thr_help[] = {"Replication engine", "Copies for the front ports", "High threshold",
                                        "Buffer level", "Low threshold", "Buffer level", nullptr};
const char *const k_cpu_thr_help[] = {"Replication engine", "Copies for the CPU", "High threshold", "Buffer level",
                                      "Low threshold", "Buffer level", nullptr};
const char *const k_nocpu_pri_help[] = {"Replication engine", "Copies for the front ports", "By VLAN tag priority",
                                        MCC_PRI_HELP, "Use the high threshold", "Use the low threshold", nullptr};
const char *const k_cpu_pri_help[] = {"Replication engine", "Copies for the CPU", "By VLAN tag priority",
                                      MCC_PRI_HELP, "Use the high threshold", "Use the low threshold", nullptr};
const char *const k_catch_help[] = {"Replication engine", MCC_STAGE_HELP, "Catch packets at the stage", "Enable",
                                    "Disable", nullptr};
const char *const k_catch_type_help[] = {"Replication engine", MCC_STAGE_HELP, "What a caught packet does", "Drop",
                                         "Forward", "Redirect to the CPU", "Copy to the CPU", nullptr};
const char *const k_udp_help[] = {"Replication engine", "UDP port of the RTP count", "Port number", nullptr};
const char *const k_rtp_help[] = {"Replication engine", "Root", "Root id", "Count copies by RTP UDP port",
                                  "Enable", "Disable", nullptr};
const char *const k_stats_help[] = {"Replication engine", "Root", "Root id", "Count the root's frames", "Enable",
                                    "Disable", nullptr};
const char *const k_wrr_help[] = {"Replication engine", "Round robin weight of unicast", "Weight",
                                  "Round robin weight of replication", "Weight", nullptr};
const char *const k_token_help[] = {"Replication engine", "Broadcast copy stage", "Multicast copy stage",
                                    "Beats between token additions", "Beats", "Tokens added", "Tokens",
                                    "Token bucket size", "Tokens", nullptr};
const char *const k_debug_help[] = {"Show", "Replication engine", MCC_STAGE_HELP, "Debug counters (clear on read)",
                                    nullptr};
const char *const k_rtp_show_help[] = {"Show", "Replication engine", "RTP count", nullptr};
const char *const k_fifo_help[] = {"Show", "Replication engine", "FIFO levels", nullptr};
const char *const k_weight_help[] = {"Show", "Replication engine", "Round robin weights and credits", nullptr};
const char *const k_info_help[] = {"Show", "Replication engine settings and resources", nullptr};
const char *const k_mlib_group_help[] = {"Show", "Replication engine", "Shared leaf chains", "The chains", nullptr};
const char *const k_mlib_tree_help[] = {"Show", "Replication engine", "Shared leaf chains", "The chains",
                                        "The nodes of one chain", "Chain number", nullptr};
const char *const k_mrt_group_help[] = {"Show", "Replication engine", "L2 multicast groups", "The groups", nullptr};
const char *const k_mrt_tree_help[] = {"Show", "Replication engine", "L2 multicast groups", "The groups",
                                       "The members of one group", "Root id", nullptr};
const char *const k_compress_help[] = {"Replication engine", "Merge the shared chains that agree", nullptr};

#undef MCC_STAGE_HELP
#undef MCC_PRI_HELP

cli_cmd_desc g_mcc_desc[] = {
    {"mcc alloc-mrt-table table-type (l2mc|l3mc) copy-number WORD", -1, cli_mcc_alloc_copy_table, k_alloc_help, 0},
    {"show mcc mrt-id WORD", -1, cli_mcc_mrt_table_show, k_mrt_show_help, 0},
    {"show mcc mlib-id WORD", -1, cli_mcc_mlib_leaf_show, k_mlib_show_help, 0},
    {"mcc increment-copy mrt-id WORD", -1, cli_mcc_increment_copy, k_inc_help, 0},
    {"mcc decrement-copy mrt-id WORD mlib-id WORD", -1, cli_mcc_decrement_copy, k_dec_help, 0},
    {"mcc del-all-copy mrt-id WORD", -1, cli_mcc_del_all_copy, k_del_all_help, 0},
    {"mcc no-cpu-pkt high-threshold WORD low-threshold WORD", -1, cli_mcc_nocpu_packet_drop_threshold_set,
     k_nocpu_thr_help, 0},
    {"mcc cpu-pkt high-threshold WORD low-threshold WORD", -1, cli_mcc_cpu_packet_drop_threshold_set, k_cpu_thr_help,
     0},
    {"mcc no-cpu-pkt vlan-tag-pri (pri0 | pri1 | pri2 | pri3 | pri4 | pri5 | pri6 | pri7) (high-threshold | "
     "low-threshold)",
     -1, cli_mcc_nocpu_packet_pri_threshold_set, k_nocpu_pri_help, 0},
    {"mcc cpu-pkt vlan-tag-pri (pri0 | pri1 | pri2 | pri3 | pri4 | pri5 | pri6 | pri7) (high-threshold | "
     "low-threshold)",
     -1, cli_mcc_cpu_packet_pri_threshold_set, k_cpu_pri_help, 0},
    {"mcc (msg | mcp | bcp | sch | mirr) catch-pkt (enable | disable)", -1, cli_mcc_catch_packet_enable_set,
     k_catch_help, 0},
    {"mcc (msg | mcp | bcp | sch | mirr) catch-pkt-type (drop | forward | redirect-to-cpu | copy-to-cpu)", -1,
     cli_mcc_catch_packet_type_set, k_catch_type_help, 0},
    {"mcc udp-port WORD", -1, cli_mcc_mcc_rtp_cnt_use_udp_port_set, k_udp_help, 0},
    {"mcc group-id WORD rtp (enable| disable)", -1, cli_mcc_rtp_cnt_enable_set, k_rtp_help, 0},
    {"mcc group-id WORD stats (enable | disable)", -1, cli_mcc_cnt_enable_set, k_stats_help, 0},
    {"mcc unicast-weight WORD multicast-weight WORD", -1, cli_mcc_wrr_weight_set, k_wrr_help, 0},
    {"mcc (bcp | mcp) interval-beats WORD token-add WORD token-data WORD", -1, cli_mcc_bcp_mcp_token_config_set,
     k_token_help, 0},
    {"show mcc (msg | mcp | bcp | sch | mirr) debug", -1, cli_mcc_debug_info_get, k_debug_help, 0},
    {"show mcc rtp", -1, cli_mcc_rtp_debug_info_get, k_rtp_show_help, 0},
    {"show mcc fifo-status", -1, cli_mcc_fifo_status_debug_info_get, k_fifo_help, 0},
    {"show mcc weight-status", -1, cli_mcc_weight_status_info_get, k_weight_help, 0},
    {"show mcc", -1, cli_mcc_info_show, k_info_help, 0},
    {"show mcc mlib group", -1, cli_mcc_mlib_group_show, k_mlib_group_help, 0},
    {"show mcc mlib group tree WORD", -1, cli_mcc_mlib_group_node_show, k_mlib_tree_help, 0},
    {"show mcc mrt group", -1, cli_mcc_mrt_group_show, k_mrt_group_help, 0},
    {"show mcc mrt group tree WORD", -1, cli_mcc_mrt_group_node_show, k_mrt_tree_help, 0},
    {"mcc compress", -1, cli_mcc_mrt_comparess, k_compress_help, 0},
};

constexpr u32 k_mcc_commands = sizeof(g_mcc_desc) / sizeof(g_mcc_desc[0]);
cli_cmd_item g_mcc_items[k_mcc_commands];

} // namespace

extern "C" void cli_cmd_init_debug_reef_mcc(void)
{
    cli_cmd_descs_link(g_mcc_desc, g_mcc_items, k_mcc_commands, kModeDebug);
}
