// The L2 address service of the reef family.  Addresses are checked and
// converted outside the feature lock, then one or more commands of the MAC
// table run under it; the table itself lives in the chip.  The service's
// own state is the multicast group marks.
#include <tide/property.h>

#include <cstring>
#include <initializer_list>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/l2/dpl_reef_l2.h"
#include "dpl/reef/mcc/dpl_reef_mcc.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_l2.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"

extern "C" {
dpl_reef_l2_property g_l2_property[SHR_MAX_CHIPS];
u8 *g_l2_multicast_mac_arr[SHR_MAX_CHIPS];
reef_l2_special_t reef_l2_special[SHR_MAX_CHIPS];
}

L2Lock::L2Lock(u32 chip_id, const char *function, u32 line)
    : chip_(chip_id), rc_(dpl_lock_take(chip_id, DPL_LOCK_L2, function, line))
{
}

L2Lock::~L2Lock()
{
    if (rc_ == 0) {
        dpl_lock_give(chip_, DPL_LOCK_L2, __func__, __LINE__);
    }
}

namespace {

u32 g_l2_soft_inited[SHR_MAX_CHIPS];

// Compare bits of the batched operations, with the selection byte each
// sets.
struct CmpBit {
    u32 bit;
    u8 csl_l2_mac_cmp::*sel;
};
constexpr CmpBit kCmpBits[] = {
    {L2_CMP_REMOTE, &csl_l2_mac_cmp::remote}, {L2_CMP_GID, &csl_l2_mac_cmp::gid},
    {L2_CMP_LRNCLASS, &csl_l2_mac_cmp::lrnclass}, {L2_CMP_OVID, &csl_l2_mac_cmp::ovlan},
    {L2_CMP_DEST, &csl_l2_mac_cmp::opcode}, {L2_CMP_MAC, &csl_l2_mac_cmp::mac},
    {L2_CMP_VLAN, &csl_l2_mac_cmp::vsiid}, {L2_CMP_STATIC, &csl_l2_mac_cmp::stati},
};

constexpr u32 kKeyFlags = L2_FLAG_KEY_VID | L2_FLAG_KEY_FID | L2_FLAG_KEY_VFI;
constexpr u32 kDestFlags = L2_FLAG_DEST_PORT | L2_FLAG_DEST_TRUNK | L2_FLAG_DEST_DVP | L2_FLAG_DEST_NHP |
                           L2_FLAG_DEST_ECMP | L2_FLAG_DEST_MCAST | L2_FLAG_DEST_DROP | L2_FLAG_DEST_CPU;
constexpr u8 kOpMcast = 5;

csl_l2_mac_cmp _cmp_of(u32 bitmap)
{
    csl_l2_mac_cmp cmp{};
    for (const CmpBit &c : kCmpBits) {
        if (bitmap & c.bit) {
            cmp.*c.sel = 1;
        }
    }
    return cmp;
}

bool _one_bit_at_most(u32 v)
{
    return (v & (v - 1)) == 0;
}

// The mark of a multicast group id; NULL outside 16..1023 or before init.
u8 *_mark(u32 chip_id, u32 mgid)
{
    u8 *arr = g_l2_multicast_mac_arr[chip_id];
    return arr != nullptr && mgid >= DPL_L2_MGID_MIN && mgid <= DPL_L2_MGID_MAX ? &arr[mgid - DPL_L2_MGID_MIN]
                                                                              : nullptr;
}

void _mark_set(u32 chip_id, u32 mgid, u8 value)
{
    u8 *m = _mark(chip_id, mgid);
    if (m != nullptr) {
        *m = value;
    }
}

bool _mgid_check(u32 chip_id, u32 mgid)
{
    if (mgid < DPL_L2_MGID_MIN || mgid > DPL_L2_MGID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "multicast_index %d param error\n", (int)mgid);
        return false;
    }
    return true;
}

const cib_field_info *_reg_field(u32 chip_id, u32 reg_id, const char *field)
{
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
    for (u32 i = 0; reg != nullptr && i < reg->field_count; i++) {
        if (strcmp(reg->fields[i].name, field) == 0) {
            return &reg->fields[i];
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "register %u has no field %s\n", reg_id, field);
    return nullptr;
}

u32 _field_max(const cib_field_info &f)
{
    return f.width >= 32 ? 0xFFFFFFFFu : (1u << f.width) - 1;
}

// The learning and aging switches that a batched delete stops.
struct LearnAge {
    u8 lrn, age, two_way;
};

i32 _learn_age_get(u32 chip_id, LearnAge *s)
{
    cib_arl_age_lrn_cfg0_t r{};
    const i32 rc = csl_reef_cib_arl_age_lrn_cfg0_get(chip_id, 0, &r);
    *s = LearnAge{r.glb_lrn_en, r.glb_age_en, r.two_way_age_en};
    return rc;
}

i32 _learn_age_set(u32 chip_id, const LearnAge &s)
{
    cib_arl_age_lrn_cfg0_t r{};
    r.glb_lrn_en = s.lrn;
    r.glb_age_en = s.age;
    r.two_way_age_en = s.two_way;
    u8 mask[4] = {};
    for (u32 m : {cib_arl_age_lrn_cfg0__glb_lrn_en, cib_arl_age_lrn_cfg0__glb_age_en,
                  cib_arl_age_lrn_cfg0__two_way_age_en}) {
        mask[m / 8] |= static_cast<u8>(1u << (m % 8));
    }
    return csl_reef_cib_arl_age_lrn_cfg0_set(chip_id, 0, &r, mask);
}

u32 _entries(u32 chip_id, i32 *rc)
{
    u32 bar0 = 0, bar1 = 0;
    *rc = csl_reef_hash_l2_mac_scope_get(chip_id, &bar0, &bar1);
    return *rc == 0 ? bar0 + bar1 + CSL_L2_MAC_CAM_ENTRIES : 0;
}

template <typename Slot, typename... A>
i32 _special(u32 chip_id, Slot reef_l2_special_t::*slot, A... args)
{
    const Slot fn = reef_l2_special[chip_id].*slot;
    return fn != nullptr ? fn(chip_id, args...)
                         : csl_reef_not_in_build(chip_id, SHR_MOD_ARL, SHR_LOG_ERROR, "L2 operation of its own");
}

// Whether the build describes the chip's MAC table: 0, or -24 with a line
// at `level`.
i32 _mac_table_in_build(u32 chip_id, u32 level)
{
    return csl_reef_tab_in_build(chip_id, cib_arl_em_mac_tbl_ad, SHR_MOD_ARL, level, "MAC table");
}

// The calls that reach the MAC table, the registers of the L2 block or the
// port rows: a chip type whose MAC table the build does not describe
// answers -24 with a line, before any check of the call's own.
template <auto Fn>
struct OnTable;
template <typename... A, i32 (*Fn)(u32, A...)>
struct OnTable<Fn> {
    static i32 _call(u32 chip_id, A... args)
    {
        const i32 rc = _mac_table_in_build(chip_id, SHR_LOG_ERROR);
        return rc != 0 ? rc : Fn(chip_id, args...);
    }
};
template <auto Fn>
constexpr auto _on_table = OnTable<Fn>::_call;

// An operation whose answer is constant: the event thread, its sync and
// callbacks do not exist in this library (the application reads the
// chip's messages by its own path, l2_api_mac_msg_parse).
template <i32 Status, typename... A>
i32 _answer(u32, A...)
{
    return Status;
}

// The chip's special operation under the feature lock.
template <typename Slot, typename... A>
i32 _special_locked(u32 chip_id, Slot reef_l2_special_t::*slot, A... args)
{
    L2_LOCK(chip_id);
    return l2_lock_hold_.status() != 0 ? l2_lock_hold_.status() : _special(chip_id, slot, args...);
}

// Groups whose marks no MAC entry uses any more lose their marks and their
// replication groups.
i32 _l2_batched_delete_multicast_delete(u32 chip_id)
{
    for (u32 mgid = DPL_L2_MGID_MIN; mgid <= DPL_L2_MGID_MAX; mgid++) {
        const u8 *m = _mark(chip_id, mgid);
        if (m == nullptr || *m == 0) {
            continue;
        }
        csl_l2_mac_key key{};
        csl_l2_mac_ad ad{};
        ad.opcode = kOpMcast;
        ad.learn_data = static_cast<u16>(mgid);
        csl_l2_mac_cmp cmp{};
        cmp.opcode = 1;
        u8 fail = 0;
        u32 count = 0;
        const i32 rc = csl_reef_hash_l2_mac_tbl_batched_search(chip_id, &key, &ad, nullptr, &cmp, &fail, &count);
        if (rc != 0 && rc != SHR_E_NOT_FOUND) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "\n\r csl_reef_hash_l2_mac_tbl_batched_search fail %d\n\r", (int)rc);
            return rc;
        }
        if (count == 0) {
            dpl_reef_l2_multicast_destroy(chip_id, mgid);
            _mark_set(chip_id, mgid, 0);
        }
    }
    return 0;
}

// The batched record: key and AD from the record as far as the compare
// bitmap needs them.
i32 _batched_convert(u32 chip_id, const l2_addr *addr, u32 bitmap, u32 no_dest_bits, csl_l2_mac_key *key,
                     csl_l2_mac_ad *ad)
{
    *key = csl_l2_mac_key{};
    *ad = csl_l2_mac_ad{};
    if (bitmap == 0) {
        return 0;
    }
    if (_l2_to_l2x(chip_id, addr, key, ad, (bitmap & no_dest_bits) != 0 ? 1 : 0) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "transform l2 addr type to internal type error\n");
        return SHR_E_PARAM;
    }
    return 0;
}

// An action of the two forward-or-CPU bits (unknown unicast, unknown
// multicast, broadcast): 0 drop, 1 flood, 2 redirect to CPU, 3 copy to CPU.
u8 _act_tocp(u32 act)
{
    return act >= 2 ? 1 : 0;
}
u8 _act_broad(u32 act)
{
    return act & 1;
}
u32 _act_of(u8 tocp, u8 broad)
{
    return (tocp ? 2u : 0u) | (broad ? 1u : 0u);
}

constexpr const char *kPortActWrong[3] = {"unknown-unicast-act %d is wrong \n\r", "unknown-multicast-act %d is wrong \n\r",
                                          "broadcast-act %d is wrong \n\r"};

// Learn modes of a port: (mac_lrn_mode, nolrn_tocp, nolrn_discard).
struct LearnMode {
    u8 lrn, tocp, discard;
};
constexpr LearnMode kLearnModes[5] = {{1, 0, 0}, {0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0}};

void _mask_set(u64 mask[2], u32 member)
{
    mask[member / 64] |= u64{1} << (member % 64);
}

i32 _port_check(u32 chip_id, u32 port)
{
    if (port > g_l2_property[chip_id].port_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port %d is out of range, min 0, max %d \n", (int)port,
                    (int)g_l2_property[chip_id].port_max);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _ipat_control_set(u32 chip_id, u32 port, u32 id, u32 value)
{
    cib_ipro_ipat_tbl_t r{};
    u64 mask[2] = {};
    if (id <= L2_PORT_BCAST_ACT) {
        static constexpr u32 kMembers[3][2] = {
            {cib_ipro_ipat_tbl__unuc_tocp, cib_ipro_ipat_tbl__unuc_broad},
            {cib_ipro_ipat_tbl__unmc_tocp, cib_ipro_ipat_tbl__unmc_broad},
            {cib_ipro_ipat_tbl__bc_tocp, cib_ipro_ipat_tbl__bc_broad},
        };
        u8 *fields[3][2] = {{&r.unuc_tocp, &r.unuc_broad}, {&r.unmc_tocp, &r.unmc_broad}, {&r.bc_tocp, &r.bc_broad}};
        *fields[id][0] = _act_tocp(value);
        *fields[id][1] = _act_broad(value);
        _mask_set(mask, kMembers[id][0]);
        _mask_set(mask, kMembers[id][1]);
    } else if (id == L2_PORT_BRIDGE) {
        r.port_bridge_en = static_cast<u8>(value);
        _mask_set(mask, cib_ipro_ipat_tbl__port_bridge_en);
    } else {
        const LearnMode &m = kLearnModes[value];
        r.mac_lrn_mode = m.lrn;
        r.nolrn_tocp = m.tocp;
        r.nolrn_discard = m.discard;
        _mask_set(mask, cib_ipro_ipat_tbl__mac_lrn_mode);
        _mask_set(mask, cib_ipro_ipat_tbl__nolrn_tocp);
        _mask_set(mask, cib_ipro_ipat_tbl__nolrn_discard);
    }
    return csl_reef_cib_ipro_ipat_tbl_set(chip_id, 0, port, &r, mask);
}

// The egress port row's field of each egress control, from id 4 on.
struct EpatField {
    u8 cib_epro_epat_table_t::*field;
    u32 member;
};
constexpr EpatField kEpat[] = {
    {&cib_epro_epat_table_t::port_bridge_en, cib_epro_epat_table__port_bridge_en},
    {&cib_epro_epat_table_t::unuc_ctrl, cib_epro_epat_table__unuc_ctrl},
    {&cib_epro_epat_table_t::unmc_ctrl, cib_epro_epat_table__unmc_ctrl},
    {&cib_epro_epat_table_t::mc_ctrl, cib_epro_epat_table__mc_ctrl},
    {&cib_epro_epat_table_t::bc_ctrl, cib_epro_epat_table__bc_ctrl},
};

i32 _epat_control_set(u32 chip_id, u32 port, u32 id, u32 value)
{
    const EpatField &f = kEpat[id - L2_PORT_EGRESS_BRIDGE];
    cib_epro_epat_table_t r{};
    r.*f.field = static_cast<u8>(value);
    u64 mask[2] = {};
    _mask_set(mask, f.member);
    return csl_reef_cib_epro_epat_table_set(chip_id, 0, port, &r, mask);
}

bool _port_control_known(u32 id)
{
    return id <= L2_PORT_EGRESS_BCAST || id == L2_PORT_LEARN_MODE;
}

i32 _table_init(u32 chip_id)
{
    cib_arl_mac_tab_init_en_t en{};
    u8 mask[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    i32 rc = csl_reef_cib_arl_mac_tab_init_en_set(chip_id, 0, &en, mask);
    en.mac_tab_init_en = 1;
    rc |= csl_reef_cib_arl_mac_tab_init_en_set(chip_id, 0, &en, mask);
    if (rc != 0) {
        return rc;
    }
    const u64 start = xsal_time_usecs();
    for (u32 poll = 0; poll < DPL_L2_TABLE_INIT_POLLS; poll++) {
        cib_arl_mac_ram_sta_t sta{};
        rc = csl_reef_cib_arl_mac_ram_sta_get(chip_id, 0, &sta);
        if (rc != 0) {
            return rc;
        }
        if (sta.mac_ram_init_ok == 1) {
            SHR_LOG_DBG(chip_id, SHR_MOD_ARL, "[INIT] mac tab init time: %lu us\n",
                        (unsigned long)(xsal_time_usecs() - start));
            return 0;
        }
        xsal_usleep(DPL_L2_TABLE_INIT_POLL_US);
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "mac tab init opertion timeout\n");
    return SHR_E_TIMEOUT;
}

// A register field given by a control id.
struct CtlField {
    u32 reg_id;
    const char *field;
};

// The fields of l2_api_control_set by id; an empty row is an id this chip
// does not have.
constexpr CtlField kControls[L2_CTRL_COUNT] = {
    {cib_arl_cpuop_cfg_mac0, "replace_sta_flag"},
    {cib_arl_cpuop_cfg_mac0, "replace_dyn_flag"},
    {cib_arl_cpuop_cfg_mac0, "grap_flag"},
    {cib_arl_arl_glb_cfg, "lrn_mode"},
    {cib_arl_arl_glb_cfg, "lrn_msg_send_en"},
    {cib_arl_arl_glb_cfg, "float_msg_send_en"},
    {cib_arl_arl_glb_cfg, "age_msg_send_en"},
    {cib_arl_arl_glb_cfg, "cpu_ins_msg_send_en"},
    {cib_arl_arl_glb_cfg, "cpu_del_msg_send_en"},
    {cib_arl_arl_glb_cfg, "cpu_batch_sch_msg_send_en"},
    {cib_arl_arl_glb_cfg, "hash_full_msg_send_en"},
    {cib_arl_trap_msg_ctrl_cnt, "trap_msg_ctrl_cnt"},
    {cib_arl_arl_glb_cfg, "mac_float_pfe"},
    {cib_arl_arl_glb_cfg, "sta_float_act"},
    {cib_arl_arl_glb_cfg, "mac_float_fail_act"},
    {cib_arl_arl_glb_cfg, "port_lmt_mode"},
    {cib_arl_arl_glb_cfg, "hash_mode"},
    {cib_arl_rsv_mc_cfg, "ipv4_default_causeid"},
    {cib_arl_rsv_mc_cfg, "ipv6_default_causeid"},
    {cib_arl_rsv_mc_cfg, "rsv_mc_force_bc_mode"},
    {cib_arl_rsv_mc_cfg, "rsv_mc_force_bc_en"},
    {0, nullptr},
    {0, nullptr},
    {0, nullptr},
    {cib_arl_arl_glb_cfg, "hash_conflict_act"},
    {cib_arl_ipv6_dip_sel, "ipv6_dip_sel_0"},
    {cib_arl_ipv6_dip_sel, "ipv6_dip_sel_1"},
    {cib_arl_ipv6_dip_sel, "ipv6_dip_sel_2"},
    {cib_arl_ipv6_dip_sel, "ipv6_dip_sel_3"},
    {cib_arl_ipv6_ip_sel, "ipv6_ip_sel_0"},
    {cib_arl_ipv6_ip_sel, "ipv6_ip_sel_1"},
    {cib_arl_ipv6_ip_sel, "ipv6_ip_sel_2"},
    {cib_arl_ipv6_ip_sel, "ipv6_ip_sel_3"},
};

constexpr u32 kTrapMsgCntMax = 0xFFFFF;
constexpr u32 kSipSelOffset = 16;
constexpr u32 kSelMax = 14;

// The value of a control id as the register holds it; -4 for a value the
// id does not take.
i32 _control_to_field(u32 chip_id, u32 id, u32 value, u32 *field)
{
    if (id == L2_CTRL_TRAP_MSG_CNT && value > kTrapMsgCntMax) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "input %d max %d\n\r", (int)value, (int)kTrapMsgCntMax);
        return SHR_E_PARAM;
    }
    if (id == L2_CTRL_HASH_MODE) {
        if (value != 1 && value != 2) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "hash mode %d is wrong\n\r", (int)value);
            return SHR_E_PARAM;
        }
        *field = value - 1;
        return 0;
    }
    if (id >= L2_CTRL_IPV6_DIP_SEL0) {
        if (value > kSelMax) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "ipv6_config dip config is out of range\n");
            return SHR_E_PARAM;
        }
        if (value & 1) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "\n\r ipv6_config dip is not even number \n\r");
            return SHR_E_PARAM;
        }
        *field = id >= L2_CTRL_IPV6_IP_SEL0 + 2 ? value + kSipSelOffset : value;
        return 0;
    }
    *field = value;
    return 0;
}

u32 _field_to_control(u32 id, u32 field)
{
    if (id == L2_CTRL_HASH_MODE) {
        return field + 1;
    }
    if (id >= L2_CTRL_IPV6_IP_SEL0 + 2 && field >= kSipSelOffset) {
        return field - kSipSelOffset;
    }
    return field;
}

i32 _control_row(u32 chip_id, u32 id, const CtlField **row)
{
    if (id >= L2_CTRL_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "unknown control type %d\n\r", (int)id);
        return SHR_E_PARAM;
    }
    if (kControls[id].field == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    *row = &kControls[id];
    return 0;
}

// The insert policy flags share their register with the command block's
// image: they change under the engine's lock.
class EngineLock {
public:
    EngineLock(u32 chip_id, u32 reg_id)
        : chip_(chip_id), held_(reg_id == cib_arl_cpuop_cfg_mac0 &&
                                csl_reef_hash_table_get_lock(chip_id, CSL_HASH_TYPE_L2_MAC) == 0)
    {
    }
    ~EngineLock()
    {
        if (held_) {
            csl_reef_hash_table_get_unlock(chip_, CSL_HASH_TYPE_L2_MAC);
        }
    }
    EngineLock(const EngineLock &) = delete;
    EngineLock &operator=(const EngineLock &) = delete;

private:
    u32 chip_;
    bool held_;
};

i32 _age_control_set(u32 chip_id, u32 id, u32 value)
{
    switch (id) {
    case L2_AGE_TIME: {
        const i32 rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "age_time", value);
        return rc != 0 ? rc : dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_age_en", value != 0);
    }
    case L2_AGE_TWO_WAY: {
        const i32 rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "two_way_age_en", value);
        return rc != 0 || value != 1 ? rc : dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_age_en", 1);
    }
    case L2_AGE_CNT_EN:
        return dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "age_cnt_en", value);
    case L2_AGE_LP_MODE:
        return dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lp_mode, 0, "lp_mode", value);
    case L2_AGE_CLK_FREQ:
        return dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "sys_clk_freq", value);
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "age control type %d is wrong\n\r", (int)id);
        return SHR_E_PARAM;
    }
}

// The steps of the hardware init, in order.

// A default written for ids 0 to count - 1; a chip without the operation
// has nothing to write.
template <typename Fn>
i32 _for_each_id(u32 count, Fn fn)
{
    for (u32 id = 0; id < count; id++) {
        const i32 rc = fn(id);
        if (rc != 0 && rc != SHR_E_NOT_SUPPORT) {
            return rc;
        }
    }
    return 0;
}

i32 _hw_move_pri_defaults(u32 chip_id)
{
    const dpl_reef_l2_property &p = g_l2_property[chip_id];
    i32 rc = 0;
    for (u32 flag : {0u, 1u}) {
        rc = rc != 0 ? rc : _for_each_id(flag == 0 ? p.port_max + 1 : p.tgid_max + 1, [&](u32 id) {
            l2_port_move_pri pri{flag, 1, 0, id};
            return dpl_reef_l2_port_move_pri_set(chip_id, &pri);
        });
    }
    return rc;
}

i32 _hw_limit_defaults(u32 chip_id)
{
    return _for_each_id(g_l2_property[chip_id].port_max, [chip_id](u32 port) {
        l2_learn_limit limit{};
        limit.flags = L2_LIMIT_PORT | L2_LIMIT_ENABLE | L2_LIMIT_VALUE;
        limit.port = port;
        limit.limit_en = 1;
        limit.limit_value = DPL_L2_LIMIT_DEFAULT;
        return dpl_reef_l2_learn_limit_set(chip_id, &limit);
    });
}

i32 _hw_messages(u32 chip_id)
{
    i32 rc = dpl_reef_l2_control_set(chip_id, L2_CTRL_TRAP_MSG_CNT, 1);
    rc = rc != 0 ? rc : _age_control_set(chip_id, L2_AGE_CNT_EN, 1);
    if (rc == 0 && shr_property_get(chip_id, "l2_msg_full_act", 0) == 1) {
        rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg2, 0, "mac_msg_full_act", 1);
    }
    if (rc == 0 && shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF) {
        const i32 mode = shr_property_get(chip_id, "trap_send_mode", 0);
        rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg2, 0, "trap_send_mode", static_cast<u32>(mode));
    }
    return rc;
}

i32 _hw_share_ram(u32 chip_id)
{
    if (shr_property_get(chip_id, "fbm_share_ram_cfg", 0) != 1) {
        return 0;
    }
    const i32 rc = dpl_reef_l2_reg_field_set(chip_id, cib_arl_arl_glb_cfg, 0, "ram_share_mode", 1);
    return rc != 0 ? rc : _table_init(chip_id);
}

i32 _hw_pfe(u32 chip_id)
{
    return dpl_reef_l2_control_set(chip_id, L2_CTRL_MOVE_PRI_MASK, 15);
}

i32 _hw_age(u32 chip_id)
{
    return _age_control_set(chip_id, L2_AGE_TIME, DPL_L2_AGE_TIME_DEFAULT);
}

i32 _hw_port_limit_mode(u32 chip_id)
{
    return dpl_reef_l2_control_set(chip_id, L2_CTRL_PORT_LIMIT_MODE, 1);
}

// The core clock comes from the clock service once it exists; until then
// the chip's nominal frequency.
i32 _hw_clock(u32 chip_id)
{
    return _age_control_set(chip_id, L2_AGE_CLK_FREQ, DPL_L2_CLK_MHZ_DEFAULT);
}

constexpr i32 (*kHwSteps[])(u32) = {
    _hw_pfe, _table_init, _hw_age, _hw_port_limit_mode, _hw_limit_defaults, _hw_move_pri_defaults, _hw_clock,
    _hw_messages, _hw_share_ram,
};

// Checks a member: type in the low 32 bits, id in the high 32.
i32 _mc_member_check(u32 chip_id, u32 mgid, u64 port)
{
    if (!_mgid_check(chip_id, mgid)) {
        return SHR_E_PARAM;
    }
    const u32 type = static_cast<u32>(port);
    const u32 id = static_cast<u32>(port >> 32);
    const dpl_reef_l2_property &p = g_l2_property[chip_id];
    if (type == 2 || type == 3) {
        return SHR_E_NOT_SUPPORT;
    }
    if (type > 3) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port type %d param error\n", (int)type);
        return SHR_E_PARAM;
    }
    if (type == 0 && id > p.port_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port %d out of range,max %d\n", (int)id, (int)p.port_max);
        return SHR_E_PARAM;
    }
    if (type == 1 && id > p.tgid_max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "tgid %d out of range,max %d\n", (int)id, (int)p.tgid_max);
        return SHR_E_PARAM;
    }
    return 0;
}

// A member of the packed form as the replication engine names it: a port
// or a trunk (whose key carries 0x800).
mcc_member _mc_member(u64 port)
{
    return mcc_member{static_cast<u32>(port) == 1 ? MCC_PORT_FLAG_TRUNK : MCC_PORT_FLAG_PORT,
                      static_cast<u32>(port >> 32)};
}

// The replication group of a multicast group id: made, empty, at its first
// use, which also marks the id.
i32 _mc_group_ensure(u32 chip_id, u32 mgid)
{
    if (dpl_reef_mcc_mrt_group_get(chip_id, mgid) != nullptr) {
        return 0;
    }
    mcc_port_bitmap none{};
    none.empty = 1;
    mrt_info info{};
    info.req = mcc_mrt_req{MCC_TYPE_L2MC, 1, mgid};
    const i32 rc = dpl_reef_mcc_group_create(chip_id, &none, nullptr, &info);
    if (rc == 0) {
        _mark_set(chip_id, mgid, 1);
    }
    return rc;
}

// A group that has no replication group yet: -7 with the line.
i32 _mc_group_missing(u32 chip_id, u32 mgid)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "multicast group %u has no member\n", mgid);
    return SHR_E_NOT_FOUND;
}

// The rewrite of a member as its copy's egress edit: VLAN and priority
// changes, the tag count, the port bridge (the copy may leave by the port
// the frame came in), the destination id, the outer and inner tags.
mcc_port_config _mc_edit_of(const l2_multicast_port_attr &a)
{
    mcc_port_config c{};
    c.vlanupdate = (a.flags & L2_MC_ATTR_VID_CHANGE) != 0 ? 1 : 0;
    c.vlanprichg = (a.flags & L2_MC_ATTR_PRI_CHANGE) != 0 ? 1 : 0;
    c.prunedisable = a.port_bridge != 0 ? 1 : 0;
    c.tagnum = a.tagnum;
    c.dpid_dvp_index_mirror_carid = a.dpid_sel != 0 ? static_cast<u8>(a.dpid) : 0;
    c.ovlan_rspan_vlan = static_cast<u16>(a.ovid | a.opri << 13);
    c.ivlan_rspan_en = static_cast<u16>(a.ivid | a.ipri << 13);
    return c;
}

l2_multicast_port_attr _mc_attr_of(const mcc_port_config &c)
{
    l2_multicast_port_attr a{};
    a.flags = (c.vlanupdate ? L2_MC_ATTR_VID_CHANGE : 0u) | (c.vlanprichg ? L2_MC_ATTR_PRI_CHANGE : 0u);
    a.port_bridge = c.prunedisable;
    a.tagnum = c.tagnum;
    a.dpid_sel = c.dpid_dvp_index_mirror_carid != 0 ? 1 : 0;
    a.dpid = c.dpid_dvp_index_mirror_carid;
    a.ovid = c.ovlan_rspan_vlan & 0xFFF;
    a.opri = static_cast<u8>(c.ovlan_rspan_vlan >> 13);
    a.ivid = c.ivlan_rspan_en & 0xFFF;
    a.ipri = static_cast<u8>(c.ivlan_rspan_en >> 13);
    return a;
}

// Whether a copy's key names a trunk, and its port or trunk id.
bool _mc_key_trunk(u16 key)
{
    return (key & MCC_KEY_TRUNK) != 0;
}

u32 _mc_key_id(u16 key)
{
    return _mc_key_trunk(key) ? key & 0x7Fu : key & 63u;
}

// The checks of a per-VLAN control, before the VLAN record is touched.
i32 _vlan_control_check(u32 chip_id, u32 vid, u32 id, const u32 *value)
{
    if (vid > DPL_L2_VID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "vlan id %d is out of range, min %d, max %d \n", (int)vid, 0,
                    (int)DPL_L2_VID_MAX);
        return SHR_E_PARAM;
    }
    if (id > L2_VLAN_IPMC_MODE) {
        return SHR_E_NOT_SUPPORT;
    }
    if (value != nullptr) {
        static constexpr const char *kWrong[] = {"value is wrong %d\n\r", "l2 uuc action value %d is wrong \n\r",
                                                 "l2 umc action value %d is wrong \n\r",
                                                 "l2 bc action value %d is wrong \n\r"};
        static constexpr u32 kMax[] = {1, 3, 3, 3, 3};
        if (*value > kMax[id]) {
            if (id == L2_VLAN_IPMC_MODE) {
                SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "vid %d ipmc mode is wrong value %d\n\r", (int)vid, (int)*value);
            } else {
                SHR_LOG_ERR(chip_id, SHR_MOD_ARL, kWrong[id], (int)*value);
            }
            return SHR_E_PARAM;
        }
    }
    return 0;
}

// The fields of the ingress VLAN record a flood control id names.
struct VlanAct {
    u8 dpl_reef_ivlan_key::*tocp;
    u8 dpl_reef_ivlan_key::*broad;
};
constexpr VlanAct kVlanActs[] = {
    {&dpl_reef_ivlan_key::unuc_tocp, &dpl_reef_ivlan_key::unuc_broad},
    {&dpl_reef_ivlan_key::unmc_tocp, &dpl_reef_ivlan_key::unmc_broad},
    {&dpl_reef_ivlan_key::bc_tocp, &dpl_reef_ivlan_key::bc_broad},
};

// The checks of a per-VLAN control, then the VLAN's ingress record.  The
// per-VLAN controls read and rewrite it through the VLAN service, which
// moves the VLAN between shared rows as the record demands.
i32 _vlan_record(u32 chip_id, u32 vid, u32 id, const u32 *value, dpl_reef_ivlan_key *rec)
{
    const i32 rc = _vlan_control_check(chip_id, vid, id, value);
    return rc != 0 ? rc : dpl_reef_vlan_ingress_control_get(chip_id, vid, rec);
}

} // namespace

extern "C" {

// ---- register fields by name --------------------------------------------------------

i32 dpl_reef_l2_reg_field_get(u32 chip_id, u32 reg_id, u32 index, const char *field, u32 *value)
{
    const cib_field_info *f = _reg_field(chip_id, reg_id, field);
    if (f == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    u32 word = 0;
    const i32 rc = csl_reef_reg_get_u32(chip_id, CIB_ID(reg_id, index), &word);
    if (rc == 0) {
        *value = (word >> f->low_bit) & _field_max(*f);
    }
    return rc;
}

i32 dpl_reef_l2_reg_field_set(u32 chip_id, u32 reg_id, u32 index, const char *field, u32 value)
{
    const cib_field_info *f = _reg_field(chip_id, reg_id, field);
    if (f == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    if (value > _field_max(*f)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "input %d max %d\n\r", (int)value, (int)_field_max(*f));
        return SHR_E_PARAM;
    }
    EngineLock engine(chip_id, reg_id);
    CslRegLock hold(chip_id, cib_module_arl);
    u32 word = 0;
    i32 rc = csl_reef_reg_get_u32(chip_id, CIB_ID(reg_id, index), &word);
    if (rc == 0) {
        const u32 mask = _field_max(*f) << f->low_bit;
        rc = csl_reef_reg_set_u32(chip_id, CIB_ID(reg_id, index), (word & ~mask) | (value << f->low_bit));
    }
    return rc;
}

// ---- bring-up -------------------------------------------------------------------------

i32 dpl_reef_l2_set_property(u32 chip_id)
{
    // A chip type without a port model accepts port 0 only.
    const csl_port_control *ctl = csl_port_control_get(chip_id);
    const u32 ports = ctl != nullptr ? ctl->lport_count : 0;
    const bool atolreef = shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF;
    g_l2_property[chip_id] = dpl_reef_l2_property{ports > 0 ? ports - 1 : 0, atolreef ? 7u : 127u, atolreef ? 63u : 255u,
                                                  atolreef ? 511u : 1023u, atolreef ? 1023u : 2047u};
    return 0;
}

i32 dpl_reef_l2_special_register(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        return 0;
    case SHR_CHIP_TYPE_ATOLREEF:
        return dpl_atolreef_l2_special_register(chip_id);
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "error chip type!\n");
        return SHR_E_NOT_SUPPORT;
    }
}

i32 dpl_reef_l2_soft_init(u32 chip_id)
{
    if (g_l2_soft_inited[chip_id]) {
        return 0;
    }
    i32 rc = dpl_reef_l2_special_register(chip_id);
    if (rc == 0) {
        rc = dpl_reef_l2_set_property(chip_id);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "set l2 property error!!!\n");
        }
    }
    if (rc == 0 && g_l2_multicast_mac_arr[chip_id] == nullptr) {
        g_l2_multicast_mac_arr[chip_id] =
            static_cast<u8 *>(xsal_malloc(DPL_L2_MGID_COUNT, "l2_multicast_control", SHR_MOD_ARL));
        if (g_l2_multicast_mac_arr[chip_id] == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "g_l2_multicast_mac_arr malloc fail!!!\n");
            rc = SHR_E_MEMORY;
        }
    }
    if (rc == 0) {
        rc = dpl_lock_create(chip_id, DPL_LOCK_L2, "L2");
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "create DPL_LOCK_TYPE_L2 fail!!!\n");
        }
    }
    if (rc != 0) {
        return rc; // the bring-up runs the deinit, which frees what was made
    }
    memset(g_l2_multicast_mac_arr[chip_id], 0, DPL_L2_MGID_COUNT);
    g_l2_soft_inited[chip_id] = 1;
    return 0;
}

// Undoes whatever the init got done; groups still marked give their
// replication groups back.
i32 dpl_reef_l2_soft_deinit(u32 chip_id)
{
    for (u32 mgid = DPL_L2_MGID_MIN; mgid <= DPL_L2_MGID_MAX; mgid++) {
        const u8 *m = _mark(chip_id, mgid);
        if (m != nullptr && *m != 0 && dpl_reef_mcc_mrt_group_get(chip_id, mgid) != nullptr) {
            dpl_reef_mcc_group_del(chip_id, mgid);
        }
    }
    xsal_mem_free(g_l2_multicast_mac_arr[chip_id]);
    g_l2_multicast_mac_arr[chip_id] = nullptr;
    dpl_lock_destroy(chip_id, DPL_LOCK_L2);
    reef_l2_special[chip_id] = reef_l2_special_t{};
    g_l2_property[chip_id] = dpl_reef_l2_property{};
    g_l2_soft_inited[chip_id] = 0;
    return 0;
}

i32 dpl_reef_l2_hw_init(u32 chip_id)
{
    if (_mac_table_in_build(chip_id, SHR_LOG_WARN) != 0) {
        // Nothing of the table can be programmed: the chip keeps what its
        // reset gave it, and the table calls answer -24.
        return 0;
    }
    for (const auto step : kHwSteps) {
        const i32 rc = step(chip_id);
        if (rc != 0) {
            SHR_LOG_ERRCODE(chip_id, rc);
            return rc;
        }
    }
    return 0;
}

i32 dpl_reef_l2_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

// ---- addresses ------------------------------------------------------------------------

i32 dpl_reef_l2_addr_add(u32 chip_id, l2_addr *addr)
{
    i32 rc = _l2_addr_check(chip_id, addr);
    csl_l2_mac_key key;
    csl_l2_mac_ad ad;
    rc = rc != 0 ? rc : _l2_to_l2x(chip_id, addr, &key, &ad, 0);
    if (rc != 0) {
        return rc;
    }
    // A CPU add starts with a full age counter, and the insert policy is
    // the system's, held in the command word.
    ad.age_cnt = 3;
    const u8 ad_mask[CSL_L2_MAC_AD_MASK_BYTES] = {0xFF, 0x0F}; // every field but the three flags
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    rc = csl_reef_hash_l2_mac_add(chip_id, &key, nullptr, &ad, ad_mask, &addr->fail_case);
    if (ad.opcode == kOpMcast) {
        _mark_set(chip_id, addr->mgid, rc == 0 ? 1 : 0);
    }
    return rc;
}

i32 dpl_reef_l2_addr_get(u32 chip_id, l2_addr *addr)
{
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    if (_l2_addr_key_check(chip_id, addr) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "param error\n");
        return SHR_E_PARAM;
    }
    csl_l2_mac_key key;
    csl_l2_mac_ad ad;
    i32 rc = _l2_to_l2x(chip_id, addr, &key, &ad, 1);
    if (rc != 0) {
        return rc;
    }
    // Every failure of the search, a miss or a time-out of the command
    // block, means the address could not be found: -7, with the table's
    // cause (if it gave one) in fail_case.
    rc = csl_reef_hash_l2_mac_tbl_search_hard(chip_id, &key, &ad, &addr->fail_case);
    if (rc != 0) {
        return SHR_E_NOT_FOUND;
    }
    return _l2x_to_l2(chip_id, &key, &ad, addr);
}

i32 dpl_reef_l2_addr_del(u32 chip_id, l2_addr *addr)
{
    csl_l2_mac_key key;
    csl_l2_mac_ad ad;
    i32 rc = _l2_to_l2x(chip_id, addr, &key, &ad, 1);
    if (rc != 0) {
        return rc;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    // The entry as it stands: an absent one is -7 without a delete command,
    // and a multicast one gives back its group's mark.
    rc = dpl_reef_l2_addr_get(chip_id, addr);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "dpl_reef_l2_addr_get fail %d \n\r", (int)rc);
        return rc;
    }
    rc = csl_reef_hash_l2_mac_del(chip_id, &key, &addr->fail_case);
    if (rc == 0 && (addr->flags & L2_FLAG_DEST_MCAST)) {
        _mark_set(chip_id, addr->mgid, 0);
    }
    return rc;
}

i32 dpl_reef_l2_addr_replace(u32 chip_id, l2_addr *addr)
{
    if ((addr->flags & L2_FLAG_REPLACE) == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "flags is wrong\n");
        return SHR_E_PARAM;
    }
    i32 rc = _l2_addr_check(chip_id, addr);
    if (rc != 0) {
        return rc;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    l2_addr old = *addr;
    rc = dpl_reef_l2_addr_get(chip_id, &old);
    rc = rc != 0 ? rc : dpl_reef_l2_addr_del(chip_id, &old);
    return rc != 0 ? rc : dpl_reef_l2_addr_add(chip_id, addr);
}

i32 dpl_reef_l2_addr_get_by_index(u32 chip_id, u32 index, l2_addr *addr)
{
    return _special_locked(chip_id, &reef_l2_special_t::addr_get_by_index, index, addr);
}

i32 dpl_reef_l2_addr_next_entry_get(u32 chip_id, u32 *cursor, l2_addr *addr)
{
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    i32 rc = 0;
    const u32 size = _entries(chip_id, &rc);
    for (u32 i = *cursor; rc == 0 && i < size; i++) {
        rc = _special(chip_id, &reef_l2_special_t::addr_get_by_index, i, addr);
        if (rc == 0 && addr->valid) {
            *cursor = i + 1;
            return 0;
        }
    }
    if (rc != 0) {
        return rc;
    }
    *cursor = size;
    return SHR_E_NOT_FOUND;
}

i32 dpl_reef_l2_addr_traverse(u32 chip_id, l2_addr_traverse_cb fn, void *user)
{
    if (fn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "  %-25s\n", "trav_fn is null");
        return SHR_E_PARAM;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    i32 rc = 0;
    const u32 size = _entries(chip_id, &rc);
    for (u32 i = 0; rc == 0 && i < size; i++) {
        l2_addr a{};
        rc = _special(chip_id, &reef_l2_special_t::addr_get_by_index, i, &a);
        if (rc == 0 && a.valid) {
            rc = fn(chip_id, &a, user);
        }
    }
    return rc;
}

i32 dpl_reef_l2_addr_batched_del(u32 chip_id, l2_addr *addr, u32 compare, u32 *count)
{
    if (compare != 0) {
        if (!_one_bit_at_most(addr->flags & kKeyFlags)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "can only choose one from vid, fid, vfi. \n");
            return SHR_E_PARAM;
        }
        if (!_one_bit_at_most(addr->flags & kDestFlags)) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "can only choose one destination. \n");
            return SHR_E_PARAM;
        }
    }
    csl_l2_mac_key key;
    csl_l2_mac_ad ad;
    constexpr u32 kNoDest = L2_CMP_REMOTE | L2_CMP_OVID | L2_CMP_MAC | L2_CMP_VLAN | L2_CMP_STATIC;
    i32 rc = _batched_convert(chip_id, addr, compare, kNoDest, &key, &ad);
    if (rc != 0) {
        return rc;
    }
    const csl_l2_mac_cmp cmp = _cmp_of(compare);
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    // Neither learning nor aging may change the table during the sweep.
    LearnAge saved{};
    rc = _learn_age_get(chip_id, &saved);
    rc = rc != 0 ? rc : _learn_age_set(chip_id, LearnAge{});
    *count = 0;
    rc = rc != 0 ? rc : csl_reef_hash_l2_mac_tbl_batched_delete(chip_id, &key, &ad, nullptr, &cmp, &addr->fail_case,
                                                                  count);
    rc = rc != 0 ? rc : _l2_batched_delete_multicast_delete(chip_id);
    // After a failure the chip's state is unknown: the switches stay off.
    return rc != 0 ? rc : _learn_age_set(chip_id, saved);
}

i32 dpl_reef_l2_addr_batched_search(u32 chip_id, l2_addr *addr, u32 compare, u32 *count)
{
    csl_l2_mac_key key;
    csl_l2_mac_ad ad;
    constexpr u32 kNoDest = L2_CMP_REMOTE | L2_CMP_MAC | L2_CMP_VLAN | L2_CMP_STATIC;
    i32 rc = _batched_convert(chip_id, addr, compare, kNoDest, &key, &ad);
    if (rc != 0) {
        return rc;
    }
    const csl_l2_mac_cmp cmp = _cmp_of(compare);
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    *count = 0;
    return csl_reef_hash_l2_mac_tbl_batched_search(chip_id, &key, &ad, nullptr, &cmp, &addr->fail_case, count);
}

i32 dpl_reef_l2_mac_clear_all(u32 chip_id)
{
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    return _table_init(chip_id);
}

// ---- multicast group ids ---------------------------------------------------------------

i32 dpl_reef_l2_multicast_create(u32 chip_id, u32 flags, u32 *mgid)
{
    if (flags > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "flags is wrong \n\r");
        return SHR_E_PARAM;
    }
    if (flags == 1 && *mgid > DPL_L2_MGID_MAX) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "multicast group %d is invalid \n\r", (int)*mgid);
        return SHR_E_PARAM;
    }
    if (flags == 1 && *mgid < DPL_L2_MGID_MIN) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "mgid is wrong %d \n\r", (int)*mgid);
        return SHR_E_PARAM;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    if (g_l2_multicast_mac_arr[chip_id] == nullptr) {
        return SHR_E_INIT;
    }
    if (flags == 1) {
        u8 *m = _mark(chip_id, *mgid);
        if (*m) {
            return SHR_E_EXISTS;
        }
        *m = 1;
        return 0;
    }
    // The lowest free id; 1023 is only given on request.
    for (u32 id = DPL_L2_MGID_MIN; id < DPL_L2_MGID_MAX; id++) {
        u8 *m = _mark(chip_id, id);
        if (*m == 0) {
            *m = 1;
            *mgid = id;
            return 0;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "no free multicast group id from %u to %u\n", DPL_L2_MGID_MIN,
                DPL_L2_MGID_MAX - 1);
    return SHR_E_FULL;
}

i32 dpl_reef_l2_multicast_destroy(u32 chip_id, u32 mgid)
{
    if (!_mgid_check(chip_id, mgid)) {
        return SHR_E_PARAM;
    }
    // The replication group goes; the mark stays until no MAC entry uses
    // the id.  A group that never had one has nothing to release.
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    if (dpl_reef_mcc_mrt_group_get(chip_id, mgid) == nullptr) {
        return 0;
    }
    const i32 rc = dpl_reef_mcc_group_del(chip_id, mgid);
    if (rc != 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_ARL, "dpl_reef_mcc_group_del %u fail %d\n", mgid, (int)rc);
    }
    return rc;
}

// The members as the chip's replication chain holds them: a leaf with a
// trunk key sets the trunk bitmap, any other the port bitmap.
i32 dpl_reef_l2_multicast_bitmap_get(u32 chip_id, u32 mgid, l2_multicast_bitmap *bitmap)
{
    if (!_mgid_check(chip_id, mgid)) {
        return SHR_E_PARAM;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    const u8 *m = _mark(chip_id, mgid);
    if (dpl_reef_mcc_mrt_group_get(chip_id, mgid) == nullptr && (m == nullptr || *m == 0)) {
        return _mc_group_missing(chip_id, mgid);
    }
    *bitmap = l2_multicast_bitmap{};
    auto leaf = [](u32, u32, const mcc_port_config *edit, void *user) -> i32 {
        auto *b = static_cast<l2_multicast_bitmap *>(user);
        const bool trunk = _mc_key_trunk(edit->oport_inf_causeid);
        const u32 id = _mc_key_id(edit->oport_inf_causeid);
        port_bitmap &set = trunk ? b->trunks : b->ports;
        set.word[id >> 6] |= u64{1} << (id & 63);
        b->type |= trunk ? 2u : 1u;
        return 0;
    };
    return dpl_reef_mcc_mrt_hw_walk(chip_id, mgid, leaf, bitmap, nullptr);
}

// A new group with the ports or trunks of the bitmap; the members of that
// kind of an existing group are replaced, one member at a time.
i32 dpl_reef_l2_multicast_bitmap_set(u32 chip_id, u32 mgid, l2_multicast_bitmap *bitmap)
{
    if (!_mgid_check(chip_id, mgid)) {
        return SHR_E_PARAM;
    }
    const dpl_reef_l2_property &p = g_l2_property[chip_id];
    if (bitmap->type == 2 || bitmap->type == 3) {
        return SHR_E_NOT_SUPPORT;
    }
    if (bitmap->type > 3) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "\n\r port_bitmap flag id wrong \n\r");
        return SHR_E_PARAM;
    }
    const bool ports = bitmap->type == 0;
    const port_bitmap &set = ports ? bitmap->ports : bitmap->trunks;
    const u32 max = ports ? p.port_max : p.tgid_max;
    // The replication engine holds 64 ports and 128 trunks.
    const u32 room = ports ? (bitmap->flag == 1 ? 64u : max + 1) : max + 1;
    for (u32 id = room; id < PORT_BITMAP_PORTS; id++) {
        if ((set.word[id >> 6] >> (id & 63)) & 1) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, ports ? "chip port %d invalid, min 0, max %d\n" : "tgid %d invalid, min 0, max %d\n",
                        (int)id, (int)(room - 1));
            return SHR_E_PARAM;
        }
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    const mrt_group *g = dpl_reef_mcc_mrt_group_get(chip_id, mgid);
    if (g == nullptr) {
        mcc_port_bitmap members{};
        members.mcc_port_flag = ports ? MCC_PORT_FLAG_PORT : MCC_PORT_FLAG_TRUNK;
        members.bits[0] = set.word[0];
        members.bits[1] = ports ? 0 : set.word[1];
        const mcc_port_config none{};
        mrt_info info{};
        info.req = mcc_mrt_req{MCC_TYPE_L2MC, 1, mgid};
        const i32 rc = dpl_reef_mcc_group_create(chip_id, &members, &none, &info);
        _mark_set(chip_id, mgid, rc == 0 ? 1 : 0);
        return rc;
    }
    // Members of this kind now, from the group's own keys.
    port_bitmap now{};
    auto kind = [&](u16 key) { return _mc_key_trunk(key) != ports; };
    shr_avl_traverser tr;
    for (void *i = shr_avl_t_first(&tr, g->mlib_entry); i != nullptr; i = shr_avl_t_next(&tr)) {
        const u16 key = static_cast<const mlib_node *>(i)->port_config.oport_inf_causeid;
        if (kind(key)) {
            const u32 id = _mc_key_id(key);
            now.word[id >> 6] |= u64{1} << (id & 63);
        }
    }
    const u32 type = ports ? 0u : 1u;
    const mcc_port_config none{};
    for (u32 id = 0; id < room; id++) {
        const bool want = ((set.word[id >> 6] >> (id & 63)) & 1) != 0;
        const bool have = ((now.word[id >> 6] >> (id & 63)) & 1) != 0;
        if (want == have) {
            continue;
        }
        const mcc_member member = _mc_member(L2_MC_PORT(type, id));
        const i32 rc = want ? dpl_reef_mcc_group_port_add(chip_id, mgid, &member, &none)
                            : dpl_reef_mcc_group_port_del(chip_id, mgid, &member, &none);
        if (rc != 0) {
            return rc;
        }
    }
    _mark_set(chip_id, mgid, 1);
    return 0;
}

i32 dpl_reef_l2_multicast_port_add(u32 chip_id, u32 mgid, u64 port)
{
    i32 rc = _mc_member_check(chip_id, mgid, port);
    if (rc != 0) {
        return rc;
    }
    L2_LOCK(chip_id);
    rc = l2_lock_hold_.status();
    rc = rc != 0 ? rc : _mc_group_ensure(chip_id, mgid);
    if (rc != 0) {
        return rc;
    }
    const mcc_member member = _mc_member(port);
    const mcc_port_config none{};
    rc = dpl_reef_mcc_group_port_add(chip_id, mgid, &member, &none);
    if (rc == SHR_E_EXISTS) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "this port is exist\n");
    }
    return rc;
}

i32 dpl_reef_l2_multicast_port_del(u32 chip_id, u32 mgid, u64 port)
{
    i32 rc = _mc_member_check(chip_id, mgid, port);
    if (rc != 0) {
        return rc;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    if (dpl_reef_mcc_mrt_group_get(chip_id, mgid) == nullptr) {
        return _mc_group_missing(chip_id, mgid);
    }
    const mcc_member member = _mc_member(port);
    const mcc_port_config none{};
    return dpl_reef_mcc_group_port_del(chip_id, mgid, &member, &none);
}

i32 dpl_reef_l2_multicast_port_attribute_set(u32 chip_id, u32 mgid, u64 port, l2_multicast_port_attr *attr)
{
    i32 rc = _mc_member_check(chip_id, mgid, port);
    if (rc != 0) {
        return rc;
    }
    struct Range {
        u32 value, max;
        const char *format;
    };
    const Range ranges[] = {
        {attr->tagnum, 2, "tagnum %d out of range, max %d\n"}, {attr->opri, 7, "opri %d out of range, max %d\n"},
        {attr->ipri, 7, "ipri %d out of range, max %d\n"},     {attr->ovid, 4095, "ovid %d out of range, max %d\n"},
        {attr->ivid, 4095, "ivid %d out of range, max %d\n"},  {attr->dpid, 127, "dpid %d out of range, max %d\n"},
    };
    for (const Range &r : ranges) {
        if (r.value > r.max) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ARL, r.format, (int)r.value, (int)r.max);
            return SHR_E_PARAM;
        }
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    if (dpl_reef_mcc_mrt_group_get(chip_id, mgid) == nullptr) {
        return _mc_group_missing(chip_id, mgid);
    }
    const mcc_member member = _mc_member(port);
    const mcc_port_config edit = _mc_edit_of(*attr);
    rc = dpl_reef_mcc_group_port_config(chip_id, mgid, &member, &edit);
    if (rc == SHR_E_NOT_FOUND) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "The port is not in multicast group\n");
    }
    return rc;
}

// The member's edit as its copy's leaf in the chip holds it.
i32 dpl_reef_l2_multicast_port_attribute_get(u32 chip_id, u32 mgid, u64 port, l2_multicast_port_attr *attr)
{
    i32 rc = _mc_member_check(chip_id, mgid, port);
    if (rc != 0) {
        return rc;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    if (dpl_reef_mcc_mrt_group_get(chip_id, mgid) == nullptr) {
        return _mc_group_missing(chip_id, mgid);
    }
    mcc_port_config probe{};
    const mcc_member member = _mc_member(port);
    rc = dpl_reef_mcc_port_config_refresh(chip_id, &member, &probe);
    if (rc != 0) {
        return rc;
    }
    struct Find {
        u16 key;
        bool found;
        mcc_port_config edit;
    } find{probe.oport_inf_causeid, false, {}};
    auto leaf = [](u32, u32, const mcc_port_config *edit, void *user) -> i32 {
        auto *f = static_cast<Find *>(user);
        if ((edit->oport_inf_causeid & 0xFFF) == (f->key & 0xFFF)) {
            f->found = true;
            f->edit = *edit;
        }
        return 0;
    };
    rc = dpl_reef_mcc_mrt_hw_walk(chip_id, mgid, leaf, &find, nullptr);
    if (rc == 0 && !find.found) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "The port is not in multicast group\n");
        return SHR_E_NOT_FOUND;
    }
    if (rc == 0) {
        *attr = _mc_attr_of(find.edit);
    }
    return rc;
}

// ---- controls ------------------------------------------------------------------------------

i32 dpl_reef_l2_age_control_set(u32 chip_id, u32 id, u32 value)
{
    L2_LOCK(chip_id);
    return l2_lock_hold_.status() != 0 ? l2_lock_hold_.status() : _age_control_set(chip_id, id, value);
}

i32 dpl_reef_l2_age_control_get(u32 chip_id, u32 id, u32 *value)
{
    static constexpr CtlField kAge[] = {
        {cib_arl_age_lrn_cfg0, "age_time"}, {cib_arl_age_lrn_cfg0, "two_way_age_en"},
        {cib_arl_age_lrn_cfg0, "age_cnt_en"}, {cib_arl_age_lp_mode, "lp_mode"},
        {cib_arl_age_lrn_cfg0, "sys_clk_freq"},
    };
    if (id >= sizeof(kAge) / sizeof(kAge[0])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "age control type %d is wrong\n\r", (int)id);
        return SHR_E_PARAM;
    }
    return dpl_reef_l2_reg_field_get(chip_id, kAge[id].reg_id, 0, kAge[id].field, value);
}

i32 dpl_reef_l2_learn_control_set(u32 chip_id, u32 id, u32 value)
{
    if (id != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "learn control type %d is wrong\n\r", (int)id);
        return SHR_E_PARAM;
    }
    L2_LOCK(chip_id);
    return l2_lock_hold_.status() != 0 ? l2_lock_hold_.status()
                                       : dpl_reef_l2_reg_field_set(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_lrn_en", value);
}

i32 dpl_reef_l2_learn_control_get(u32 chip_id, u32 id, u32 *value)
{
    if (id != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "learn control type %d is wrong\n\r", (int)id);
        return SHR_E_PARAM;
    }
    return dpl_reef_l2_reg_field_get(chip_id, cib_arl_age_lrn_cfg0, 0, "glb_lrn_en", value);
}

i32 dpl_reef_l2_control_set(u32 chip_id, u32 id, u32 value)
{
    const CtlField *row = nullptr;
    u32 field = 0;
    i32 rc = _control_row(chip_id, id, &row);
    rc = rc != 0 ? rc : _control_to_field(chip_id, id, value, &field);
    if (rc != 0) {
        return rc;
    }
    L2_LOCK(chip_id);
    return l2_lock_hold_.status() != 0 ? l2_lock_hold_.status()
                                       : dpl_reef_l2_reg_field_set(chip_id, row->reg_id, 0, row->field, field);
}

i32 dpl_reef_l2_control_get(u32 chip_id, u32 id, u32 *value)
{
    const CtlField *row = nullptr;
    i32 rc = _control_row(chip_id, id, &row);
    u32 field = 0;
    rc = rc != 0 ? rc : dpl_reef_l2_reg_field_get(chip_id, row->reg_id, 0, row->field, &field);
    if (rc == 0) {
        *value = _field_to_control(id, field);
    }
    return rc;
}

i32 dpl_reef_l2_port_control_set(u32 chip_id, u32 port, u32 id, u32 value)
{
    i32 rc = _port_check(chip_id, port);
    if (rc != 0) {
        return rc;
    }
    if (!_port_control_known(id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port control type %d is not support \n\r", (int)id);
        return SHR_E_NOT_SUPPORT;
    }
    if (id <= L2_PORT_BCAST_ACT && value > 3) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, kPortActWrong[id], (int)value);
        return SHR_E_PARAM;
    }
    if (id == L2_PORT_LEARN_MODE && value >= sizeof(kLearnModes) / sizeof(kLearnModes[0])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port learn-mode %d is not support \n\r", (int)value);
        return SHR_E_NOT_SUPPORT;
    }
    if (id > L2_PORT_BCAST_ACT && id != L2_PORT_LEARN_MODE && value > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "input %d max %d\n\r", (int)value, 1);
        return SHR_E_PARAM;
    }
    L2_LOCK(chip_id);
    if (l2_lock_hold_.status() != 0) {
        return l2_lock_hold_.status();
    }
    const bool ingress = id <= L2_PORT_BRIDGE || id == L2_PORT_LEARN_MODE;
    rc = ingress ? _ipat_control_set(chip_id, port, id, value) : _epat_control_set(chip_id, port, id, value);
    return rc;
}

i32 dpl_reef_l2_port_control_get(u32 chip_id, u32 port, u32 id, u32 *value)
{
    i32 rc = _port_check(chip_id, port);
    if (rc != 0) {
        return rc;
    }
    if (!_port_control_known(id)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "port control type %d is not support \n\r", (int)id);
        return SHR_E_NOT_SUPPORT;
    }
    if (id <= L2_PORT_BRIDGE || id == L2_PORT_LEARN_MODE) {
        cib_ipro_ipat_tbl_t r{};
        rc = csl_reef_cib_ipro_ipat_tbl_get(chip_id, 0, port, &r);
        const u32 acts[3] = {_act_of(r.unuc_tocp, r.unuc_broad), _act_of(r.unmc_tocp, r.unmc_broad),
                             _act_of(r.bc_tocp, r.bc_broad)};
        if (id <= L2_PORT_BCAST_ACT) {
            *value = acts[id];
        } else if (id == L2_PORT_BRIDGE) {
            *value = r.port_bridge_en;
        } else {
            // Learning wins; otherwise the not-learning action.
            *value = r.mac_lrn_mode ? 0 : (r.nolrn_tocp ? (r.nolrn_discard ? 3 : 4) : (r.nolrn_discard ? 2 : 1));
        }
        return rc;
    }
    cib_epro_epat_table_t r{};
    rc = csl_reef_cib_epro_epat_table_get(chip_id, 0, port, &r);
    *value = r.*kEpat[id - L2_PORT_EGRESS_BRIDGE].field;
    return rc;
}

i32 dpl_reef_l2_vlan_control_set(u32 chip_id, u32 vid, u32 id, u32 value)
{
    dpl_reef_ivlan_key rec{};
    const i32 rc = _vlan_record(chip_id, vid, id, &value, &rec);
    if (rc != 0) {
        return rc;
    }
    if (id == L2_VLAN_LEARN) {
        rec.mac_lrn_mode = static_cast<u8>(value);
    } else if (id == L2_VLAN_IPMC_MODE) {
        rec.ipmc_mode = static_cast<u8>(value);
    } else {
        const VlanAct &a = kVlanActs[id - L2_VLAN_UNKNOWN_UCAST_ACT];
        rec.*a.tocp = _act_tocp(value);
        rec.*a.broad = _act_broad(value);
    }
    return dpl_reef_vlan_ingress_control_set(chip_id, vid, &rec);
}

i32 dpl_reef_l2_vlan_control_get(u32 chip_id, u32 vid, u32 id, u32 *value)
{
    dpl_reef_ivlan_key rec{};
    const i32 rc = _vlan_record(chip_id, vid, id, nullptr, &rec);
    if (rc != 0) {
        return rc;
    }
    if (id == L2_VLAN_LEARN) {
        *value = rec.mac_lrn_mode;
    } else if (id == L2_VLAN_IPMC_MODE) {
        *value = rec.ipmc_mode;
    } else {
        const VlanAct &a = kVlanActs[id - L2_VLAN_UNKNOWN_UCAST_ACT];
        *value = _act_of(rec.*a.tocp, rec.*a.broad);
    }
    return 0;
}

i32 dpl_reef_l2_port_move_pri_get(u32 chip_id, l2_port_move_pri *pri)
{
    return _special_locked(chip_id, &reef_l2_special_t::port_move_pri_get, pri);
}

i32 dpl_reef_l2_port_move_pri_set(u32 chip_id, l2_port_move_pri *pri)
{
    return _special_locked(chip_id, &reef_l2_special_t::port_move_pri_set, pri);
}

i32 dpl_reef_l2_learn_limit_get(u32 chip_id, l2_learn_limit *limit)
{
    return _special_locked(chip_id, &reef_l2_special_t::learn_limit_get, limit);
}

i32 dpl_reef_l2_learn_limit_set(u32 chip_id, l2_learn_limit *limit)
{
    return _special_locked(chip_id, &reef_l2_special_t::learn_limit_set, limit);
}

i32 dpl_reef_l2_mac_cnt_get(u32 chip_id, u32 type, u32 *count)
{
    static constexpr CtlField kCounts[] = {
        {cib_arl_glb_mac_cnt, "static_mac_cnt"}, {cib_arl_glb_mac_cnt, "dynamic_mac_cnt"},
        {cib_arl_age_lrn_cfg1, "float_succ_cnt"}, {cib_arl_age_lrn_cfg1, "float_fail_cnt"},
    };
    if (type >= sizeof(kCounts) / sizeof(kCounts[0])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "mac count type %d is wrong\n\r", (int)type);
        return SHR_E_PARAM;
    }
    return dpl_reef_l2_reg_field_get(chip_id, kCounts[type].reg_id, 0, kCounts[type].field, count);
}

i32 dpl_reef_l2_addr_freeze(u32 chip_id)
{
    L2_LOCK(chip_id);
    i32 rc = l2_lock_hold_.status();
    rc = rc != 0 ? rc : dpl_reef_l2_learn_control_set(chip_id, 0, 0);
    return rc != 0 ? rc : _age_control_set(chip_id, L2_AGE_TIME, 0);
}

i32 dpl_reef_l2_addr_unfreeze(u32 chip_id)
{
    L2_LOCK(chip_id);
    i32 rc = l2_lock_hold_.status();
    rc = rc != 0 ? rc : dpl_reef_l2_learn_control_set(chip_id, 0, 1);
    return rc != 0 ? rc : _age_control_set(chip_id, L2_AGE_TIME, DPL_L2_AGE_TIME_DEFAULT);
}

i32 dpl_reef_l2_mac_entry_size_get(u32 chip_id, u32 *size)
{
    if (size == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "size is NULL\n");
        return SHR_E_NULL_PTR;
    }
    i32 rc = 0;
    *size = _entries(chip_id, &rc);
    return rc;
}

i32 dpl_reef_l2_mac_msg_parse(u32 chip_id, const u8 *buf, u32 len, l2_addr *out, u32 *count)
{
    if (count == nullptr || (len > 0 && (buf == nullptr || out == nullptr))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ARL, "message buffer, records or count is NULL\n");
        return SHR_E_NULL_PTR;
    }
    return _special(chip_id, &reef_l2_special_t::mac_msg_parse, buf, len, out, count);
}

// The family table: slots 37 to 42 (protocol entries) are empty.  The
// calls that reach the chip are guarded by its MAC table; the group marks,
// the calls without a service in this build and the chip-specific message
// parser answer for themselves.
extern const reef_l2_dispatch_t reef_l2_dispatch = {
    .addr_add = _on_table<dpl_reef_l2_addr_add>,
    .addr_replace = _on_table<dpl_reef_l2_addr_replace>,
    .addr_del = _on_table<dpl_reef_l2_addr_del>,
    .addr_get = _on_table<dpl_reef_l2_addr_get>,
    .addr_get_by_index = _on_table<dpl_reef_l2_addr_get_by_index>,
    .addr_next_entry_get = _on_table<dpl_reef_l2_addr_next_entry_get>,
    .addr_traverse = _on_table<dpl_reef_l2_addr_traverse>,
    .addr_batched_del = _on_table<dpl_reef_l2_addr_batched_del>,
    .addr_batched_search = _on_table<dpl_reef_l2_addr_batched_search>,
    .multicast_create = dpl_reef_l2_multicast_create,
    .multicast_bitmap_get = dpl_reef_l2_multicast_bitmap_get,
    .multicast_bitmap_set = dpl_reef_l2_multicast_bitmap_set,
    .multicast_port_add = dpl_reef_l2_multicast_port_add,
    .multicast_port_delete = dpl_reef_l2_multicast_port_del,
    .multicast_port_attribute_set = dpl_reef_l2_multicast_port_attribute_set,
    .multicast_port_attribute_get = dpl_reef_l2_multicast_port_attribute_get,
    .multicast_destroy = dpl_reef_l2_multicast_destroy,
    .mac_clear_all = _on_table<dpl_reef_l2_mac_clear_all>,
    .age_control_get = _on_table<dpl_reef_l2_age_control_get>,
    .age_control_set = _on_table<dpl_reef_l2_age_control_set>,
    .learn_control_get = _on_table<dpl_reef_l2_learn_control_get>,
    .learn_control_set = _on_table<dpl_reef_l2_learn_control_set>,
    .control_get = _on_table<dpl_reef_l2_control_get>,
    .control_set = _on_table<dpl_reef_l2_control_set>,
    .port_control_get = _on_table<dpl_reef_l2_port_control_get>,
    .port_control_set = _on_table<dpl_reef_l2_port_control_set>,
    .vlan_control_get = dpl_reef_l2_vlan_control_get,
    .vlan_control_set = dpl_reef_l2_vlan_control_set,
    .port_move_pri_get = _on_table<dpl_reef_l2_port_move_pri_get>,
    .port_move_pri_set = _on_table<dpl_reef_l2_port_move_pri_set>,
    .learn_limit_get = _on_table<dpl_reef_l2_learn_limit_get>,
    .learn_limit_set = _on_table<dpl_reef_l2_learn_limit_set>,
    .mac_cnt_get = _on_table<dpl_reef_l2_mac_cnt_get>,
    .addr_freeze = _on_table<dpl_reef_l2_addr_freeze>,
    .addr_unfreeze = _on_table<dpl_reef_l2_addr_unfreeze>,
    .addr_register = _answer<SHR_E_NOT_SUPPORT, l2_addr_callback, void *>,
    .addr_unregister = _answer<SHR_E_NOT_SUPPORT, l2_addr_callback>,
    .protocol_add = nullptr,
    .protocol_get = nullptr,
    .protocol_delete = nullptr,
    .protocol_delete_all = nullptr,
    .protocol_search = nullptr,
    .protocol_traverse = nullptr,
    .sync_start = _answer<SHR_E_NOT_SUPPORT>,
    .sync_stop = _answer<SHR_E_NOT_SUPPORT>,
    .thread_is_idling = _answer<0>,
    .thread_set_idling = _answer<SHR_E_NOT_SUPPORT, u32>,
    .thread_is_running = _answer<0>,
    .sync_get = _answer<SHR_E_NOT_SUPPORT, u32 *>,
    .mac_entry_size_get = _on_table<dpl_reef_l2_mac_entry_size_get>,
    .mac_msg_parse = dpl_reef_l2_mac_msg_parse,
};

} // extern "C"
