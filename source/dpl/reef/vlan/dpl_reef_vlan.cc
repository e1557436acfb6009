// The VLAN service of the reef family.  What every chip type shares lives
// here: the port controls (a read, one field changed, a write, under the
// port's own mutex), the trust type, the TPIDs, the global settings, the
// bring-up.  The VLANs themselves, their rows and members go to the chip's
// special table.  Registers and table fields are found by their names in
// the chip's catalogue, so that a chip type whose catalogue lacks one
// answers -24 instead of writing somewhere else.
#include "dpl/reef/vlan/dpl_reef_vlan.h"

#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_vlan.h"
#include "shared/shr_bits.h"

extern "C" {
reef_vlan_special_t reef_vlan_special[SHR_MAX_CHIPS];
}

namespace {

u32 g_vlan_init[SHR_MAX_CHIPS];
xsal_mutex_t g_vlan_port_lock[SHR_MAX_CHIPS][DPL_VLAN_PORT_MAX];

constexpr u32 kTgidMaxAtolreef = 7;
constexpr u32 kTgidMax = 127;
constexpr u32 kEntryBytesMax = 64;

template <typename Slot, typename... A>
i32 _special(u32 chip_id, Slot reef_vlan_special_t::*slot, A... args)
{
    const Slot fn = chip_id < SHR_MAX_CHIPS ? reef_vlan_special[chip_id].*slot : nullptr;
    return fn != nullptr ? fn(chip_id, args...)
                         : csl_reef_not_in_build(chip_id, SHR_MOD_VLAN, SHR_LOG_ERROR, "VLAN operation of its own");
}

// ---- fields by name ----------------------------------------------------------------------

const cib_field_info *_find(const cib_field_info *fields, u32 count, const char *name)
{
    for (u32 i = 0; fields != nullptr && i < count; i++) {
        if (strcmp(fields[i].name, name) == 0) {
            return &fields[i];
        }
    }
    return nullptr;
}

// A piece of a field: `low` and `width` inside the field, width 0 for the
// whole field.
struct Piece {
    u16 start;
    u16 width;
};

i32 _piece(u32 chip_id, const cib_field_info *f, u32 low, u32 width, const char *what, Piece *out)
{
    if (f == nullptr) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_VLAN, SHR_LOG_ERROR, what);
    }
    *out = Piece{static_cast<u16>(f->low_bit + low), static_cast<u16>(width != 0 ? width : f->width)};
    return 0;
}

// A register field (or a piece of it) read, or changed by a read and a
// write; the callers hold the service's lock.
i32 _reg_piece(u32 chip_id, u32 reg_id, const char *field, u32 low, u32 width, Piece *p)
{
    const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, reg_id);
    return _piece(chip_id, reg != nullptr ? _find(reg->fields, reg->field_count, field) : nullptr, low, width, field,
                  p);
}

i32 _reg_get(u32 chip_id, u32 reg_id, const char *field, u32 low, u32 width, u32 *value)
{
    Piece p{};
    i32 rc = _reg_piece(chip_id, reg_id, field, low, width, &p);
    u8 data[4] = {};
    if (rc == 0) {
        rc = csl_reef_reg_get(chip_id, CIB_ID(reg_id, 0), data, sizeof(data));
    }
    if (rc == 0) {
        rc = shr_field32_get_from_data(data, value, p.start, p.width);
    }
    return rc;
}

i32 _reg_set(u32 chip_id, u32 reg_id, const char *field, u32 low, u32 width, u32 value)
{
    Piece p{};
    i32 rc = _reg_piece(chip_id, reg_id, field, low, width, &p);
    if (rc != 0) {
        return rc;
    }
    u8 data[4] = {};
    rc = csl_reef_reg_get(chip_id, CIB_ID(reg_id, 0), data, sizeof(data));
    if (rc == 0) {
        rc = shr_field32_set_to_data(data, value, p.start, p.width);
    }
    return rc != 0 ? rc : csl_reef_reg_set(chip_id, CIB_ID(reg_id, 0), data, sizeof(data));
}

// A port row read and written whole, under the table's lock.
struct PortRow {
    u32 tab_id;
    u32 bytes;
    const cib_tab_info *info;
    u8 data[kEntryBytesMax];

    i32 field(u32 chip_id, const char *name, u32 low, u32 width, Piece *p) const
    {
        return _piece(chip_id, _find(info->modes[0].fields, info->modes[0].field_count, name), low, width, name, p);
    }
    u32 get(const Piece &p) const
    {
        u32 v = 0;
        shr_field32_get_from_data(data, &v, p.start, p.width);
        return v;
    }
    void set(const Piece &p, u32 v) { shr_field32_set_to_data(data, v, p.start, p.width); }
};

i32 _port_row_read(u32 chip_id, u32 tab_id, u32 lport, PortRow *row)
{
    row->tab_id = tab_id;
    row->info = csl_reef_tab_info_get(chip_id, tab_id);
    if (row->info == nullptr || row->info->mode_count == 0) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_VLAN, SHR_LOG_ERROR, "port row");
    }
    row->bytes = cib_tab_entry_bytes(row->info);
    memset(row->data, 0, sizeof(row->data));
    return csl_reef_tab_get_direct(chip_id, CIB_ID(tab_id, 0), lport, row->data, row->bytes, CSL_TAB_HW);
}

i32 _port_row_write(u32 chip_id, u32 lport, PortRow *row)
{
    return csl_reef_tab_set_direct(chip_id, CIB_ID(row->tab_id, 0), lport, row->data, row->bytes, CSL_TAB_HW);
}

// Holds a port's mutex and the port row table's lock for one
// read-modify-write of the row.
class PortHold {
public:
    PortHold(u32 chip_id, u32 lport, u32 tab_id) : m_(g_vlan_port_lock[chip_id][lport]), tab_(chip_id, tab_id)
    {
        if (m_ != nullptr) {
            xsal_mutex_lock_(m_, __FILE__, __LINE__);
        }
    }
    ~PortHold()
    {
        if (m_ != nullptr) {
            xsal_mutex_unlock_(m_, __FILE__, __LINE__);
        }
    }
    PortHold(const PortHold &) = delete;
    PortHold &operator=(const PortHold &) = delete;

private:
    xsal_mutex_t m_;
    CslTabLock tab_;
};

i32 _lport_check(u32 chip_id, u32 lport, const void *ptr)
{
    if (lport >= DPL_VLAN_PORT_MAX || csl_port_valid_check(chip_id, lport) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "lport:%d is invalid!!!\n", (int)lport);
        return SHR_E_PARAM;
    }
    if (ptr == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    return 0;
}

// ---- port controls -------------------------------------------------------------------------

enum class PortKind : u8 {
    plain,
    range_max, // the maximum of a VID range slot: at least the slot's minimum
    range_min, // its minimum: at most the slot's maximum
    acl_type0, // vlan_acltype 0 and both VLAN ACL enables
    acl_type1, // vlan_acltype 1 and both VLAN ACL enables
    refused,
};

struct PortKey {
    u32 key;
    const char *field;
    u8 low;
    u8 width;
    u16 max;
    PortKind kind;
    const char *partner; // the other end of a range slot
};

constexpr PortKey kPortKeys[] = {
    {4, "pvid", 12, 1, 1, PortKind::plain, nullptr},
    {6, "pvid", 13, 3, 7, PortKind::plain, nullptr},
    {8, "pvid", 0, 12, 4095, PortKind::plain, nullptr},
    {9, "vlan_check_en", 0, 0, 1, PortKind::plain, nullptr},
    {18, "untag_vlanacl_en", 0, 0, 1, PortKind::acl_type1, nullptr},
    {19, "untag_vlanacl_en", 0, 0, 1, PortKind::acl_type0, nullptr},
    {20, "untag_vlanacl_en", 0, 0, 1, PortKind::acl_type0, nullptr},
    {21, "tag_pvid_pri_act", 0, 0, 1, PortKind::plain, nullptr},
    {22, "tag_pvid_cfi_act", 0, 0, 1, PortKind::plain, nullptr},
    {23, nullptr, 0, 0, 0, PortKind::refused, nullptr},
    {24, "classid", 0, 0, 15, PortKind::plain, nullptr},
    {25, nullptr, 0, 0, 0, PortKind::refused, nullptr},
    {26, "gid", 0, 0, 15, PortKind::plain, nullptr},
    {27, "port_type", 0, 0, 1, PortKind::plain, nullptr},
    {28, "pvid_add_mode", 0, 0, 3, PortKind::plain, nullptr},
    {29, "pvid_pri_act", 0, 0, 1, PortKind::plain, nullptr},
    {30, "pvid_cfi_act", 0, 0, 1, PortKind::plain, nullptr},
    {31, "discard_tag_pkt", 0, 0, 1, PortKind::plain, nullptr},
    {32, "discard_untag_pkt", 0, 0, 1, PortKind::plain, nullptr},
    {33, "vlan_range_en", 0, 0, 1, PortKind::plain, nullptr},
    {34, "untag_vlanacl_en", 0, 0, 1, PortKind::acl_type0, nullptr},
    {35, "untag_vlanacl_en", 0, 0, 1, PortKind::acl_type0, nullptr},
    {36, nullptr, 0, 0, 0, PortKind::refused, nullptr},
    {37, "protocol_bmp", 0, 0, 255, PortKind::plain, nullptr},
    {38, "rmtlp_blk", 0, 0, 1, PortKind::plain, nullptr},
    {39, "lag_blk", 0, 0, 1, PortKind::plain, nullptr},
    {40, "i_blk", 0, 0, 1, PortKind::plain, nullptr},
    {41, "erps_blk", 0, 0, 1, PortKind::plain, nullptr},
    {42, "vlan_type0", 0, 0, 1, PortKind::plain, nullptr},
    {43, "vid_max0", 0, 0, 4095, PortKind::range_max, "vid_min0"},
    {44, "vid_min0", 0, 0, 4095, PortKind::range_min, "vid_max0"},
    {45, "vlan_type1", 0, 0, 1, PortKind::plain, nullptr},
    {46, "vid_max1", 0, 0, 4095, PortKind::range_max, "vid_min1"},
    {47, "vid_min1", 0, 0, 4095, PortKind::range_min, "vid_max1"},
    {48, "vlan_type2", 0, 0, 1, PortKind::plain, nullptr},
    {49, "vid_max2", 0, 0, 4095, PortKind::range_max, "vid_min2"},
    {50, "vid_min2", 0, 0, 4095, PortKind::range_min, "vid_max2"},
    {51, "vlan_type3", 0, 0, 1, PortKind::plain, nullptr},
    {52, "vid_max3", 0, 0, 4095, PortKind::range_max, "vid_min3"},
    {53, "vid_min3", 0, 0, 4095, PortKind::range_min, "vid_max3"},
    {54, "dai_en", 0, 0, 1, PortKind::plain, nullptr},
    {55, "dai_port_type", 0, 0, 1, PortKind::plain, nullptr},
    {56, "port_cnt_type", 0, 0, 3, PortKind::plain, nullptr},
    // The egress row.
    {57, "hash_opc", 0, 0, 255, PortKind::plain, nullptr},
    {58, "default_dp", 0, 0, 127, PortKind::plain, nullptr},
    {60, "sit1", 0, 0, 3, PortKind::plain, nullptr},
    {61, "sit2", 0, 0, 3, PortKind::plain, nullptr},
    {62, "vtmiss_drop", 0, 0, 1, PortKind::plain, nullptr},
    {63, "tpid_index", 0, 0, 3, PortKind::plain, nullptr},
    {64, "rmtlp_blk", 0, 0, 1, PortKind::plain, nullptr},
    {65, "lag_blk", 0, 0, 1, PortKind::plain, nullptr},
    {66, "i_blk", 0, 0, 1, PortKind::plain, nullptr},
    {67, "erps_blk", 0, 0, 1, PortKind::plain, nullptr},
    {68, "vlan_range_en", 0, 0, 1, PortKind::plain, nullptr},
    {69, "vlan_type0", 0, 0, 1, PortKind::plain, nullptr},
    {70, "vid_max0", 0, 0, 4095, PortKind::range_max, "vid_min0"},
    {71, "vid_min0", 0, 0, 4095, PortKind::range_min, "vid_max0"},
    {72, "vlan_type1", 0, 0, 1, PortKind::plain, nullptr},
    {73, "vid_max1", 0, 0, 4095, PortKind::range_max, "vid_min1"},
    {74, "vid_min1", 0, 0, 4095, PortKind::range_min, "vid_max1"},
    {75, "vlan_type2", 0, 0, 1, PortKind::plain, nullptr},
    {76, "vid_max2", 0, 0, 4095, PortKind::range_max, "vid_min2"},
    {77, "vid_min2", 0, 0, 4095, PortKind::range_min, "vid_max2"},
    {78, "vlan_type3", 0, 0, 1, PortKind::plain, nullptr},
    {79, "vid_max3", 0, 0, 4095, PortKind::range_max, "vid_min3"},
    {80, "vid_min3", 0, 0, 4095, PortKind::range_min, "vid_max3"},
    {81, "phbstruct", 13, 1, 1, PortKind::plain, nullptr},
    {82, "phbstruct", 7, 6, 63, PortKind::plain, nullptr},
    {83, "phbstruct", 6, 1, 1, PortKind::plain, nullptr},
    {84, "phbstruct", 5, 1, 1, PortKind::plain, nullptr},
    {85, "phbstruct", 3, 1, 1, PortKind::plain, nullptr},
    {86, "phbstruct", 2, 1, 1, PortKind::plain, nullptr},
    {87, "phbstruct", 1, 1, 1, PortKind::plain, nullptr},
    {88, "phbstruct", 0, 1, 1, PortKind::plain, nullptr},
    {90, "vlan_check_en", 0, 0, 1, PortKind::plain, nullptr},
    {93, "port_cnt_type", 0, 0, 3, PortKind::plain, nullptr},
};

const PortKey *_port_key(u32 chip_id, u32 key)
{
    for (const PortKey &k : kPortKeys) {
        if (k.key == key && k.kind != PortKind::refused) {
            return &k;
        }
        if (k.key == key) {
            break;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "This key:%u not support!!!\n", key);
    return nullptr;
}

u32 _port_tab(u32 key)
{
    return key < VLAN_PORT_CTRL_EGRESS_MIN ? cib_ipro_ipat_tbl : cib_epro_epat_table;
}

// A range pair of a slot stays ordered, its maximum at most 4095.
i32 _check_vlan_range(u32 chip_id, u32 min, u32 max)
{
    if (max > VLAN_VID_MAX || max < min) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "vlan range min:%u max:%u is invalid!!!\n", min, max);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _port_control_apply(u32 chip_id, const PortKey &k, u32 value, PortRow *row)
{
    Piece p{};
    i32 rc = row->field(chip_id, k.field, k.low, k.width, &p);
    if (rc != 0) {
        return rc;
    }
    switch (k.kind) {
    case PortKind::range_max:
    case PortKind::range_min: {
        Piece q{};
        rc = row->field(chip_id, k.partner, 0, 0, &q);
        if (rc == 0) {
            const u32 other = row->get(q);
            rc = k.kind == PortKind::range_max ? _check_vlan_range(chip_id, other, value)
                                               : _check_vlan_range(chip_id, value, other);
        }
        break;
    }
    case PortKind::acl_type0:
    case PortKind::acl_type1: {
        Piece type{}, tag{};
        rc = row->field(chip_id, "vlan_acltype", 0, 0, &type);
        if (rc == 0) {
            rc = row->field(chip_id, "tag_vlanacl_en", 0, 0, &tag);
        }
        if (rc == 0) {
            row->set(type, k.kind == PortKind::acl_type1 ? 1 : 0);
            row->set(tag, value);
        }
        break;
    }
    default:
        break;
    }
    if (rc == 0) {
        row->set(p, value);
    }
    return rc;
}

// ---- global settings -------------------------------------------------------------------------

struct GlobalKey {
    u32 key;
    u32 reg;
    const char *field;
    u8 low;
    u8 width;
    u8 max;
};

// Keys 8 and 9 and 11, 21..24 have no setting on atolreef.
constexpr GlobalKey kGlobalKeys[] = {
    {1, cib_ipro_vlan_glb_cfg0, "pritag_add_vlan_mode_cfg", 0, 1, 1},
    {2, cib_ipro_vlan_glb_cfg0, "pritag_add_vlan_mode_cfg", 1, 1, 1},
    {3, cib_ipro_vlan_glb_cfg0, "voice_dscp_rmk_lev_cfg", 0, 0, 3},
    {4, cib_ipro_vlan_glb_cfg0, "voice_ocfi_rmk_lev_cfg", 0, 0, 3},
    {5, cib_ipro_vlan_glb_cfg0, "voice_opri_rmk_lev_cfg", 0, 0, 3},
    {6, cib_ipro_vlan_glb_cfg0, "voice_icfi_rmk_lev_cfg", 0, 0, 3},
    {7, cib_ipro_vlan_glb_cfg0, "voice_ipri_rmk_lev_cfg", 0, 0, 3},
    {10, cib_ipro_vlan_glb_cfg0, "vlan_check_drop_act_cfg", 0, 0, 3},
    {12, cib_ipro_vlan_glb_cfg0, "mstp_dis_drop_act_cfg", 0, 0, 3},
    {13, cib_ipro_vlan_glb_cfg0, "mstp_lrn_drop_act_cfg", 0, 0, 3},
    {14, cib_ipro_vlan_glb_cfg0, "mstp_blk_drop_act_cfg", 0, 0, 3},
    {15, cib_ipro_vlan_glb_cfg0, "mstp_lrn_drop_mode_cfg", 0, 0, 1},
    {16, cib_ipro_vlan_glb_cfg0, "vlan_sw_pritag_tagnum_cfg", 0, 0, 1},
    {17, cib_tti_tpid_compare_cfg, "innervlan_tpidcfg_bm_tpid0", 0, 0, 1},
    {18, cib_tti_tpid_compare_cfg, "innervlan_tpidcfg_bm_tpid1", 0, 0, 1},
    {19, cib_tti_tpid_compare_cfg, "innervlan_tpidcfg_bm_tpid2", 0, 0, 1},
    {20, cib_tti_tpid_compare_cfg, "innervlan_tpidcfg_bm_tpid3", 0, 0, 1},
    {25, cib_ipro_vlan_glb_cfg0, "mstp_lrn_imm_act_cfg", 0, 1, 1},
    {26, cib_ipro_vlan_glb_cfg0, "mstp_blk_imm_act_cfg", 0, 1, 1},
    {27, cib_ipro_vlan_glb_cfg0, "lag_blk_imm_act_cfg", 0, 1, 1},
    {28, cib_ipro_vlan_glb_cfg0, "iblk_imm_act_cfg", 0, 1, 1},
    {29, cib_ipro_vlan_glb_cfg0, "erps_blk_imm_act_cfg", 0, 1, 1},
    {30, cib_ipro_vlan_glb_cfg0, "mstp_lrn_imm_act_cfg", 1, 1, 1},
    {31, cib_ipro_vlan_glb_cfg0, "mstp_blk_imm_act_cfg", 1, 1, 1},
    {32, cib_ipro_vlan_glb_cfg0, "lag_blk_imm_act_cfg", 1, 1, 1},
    {33, cib_ipro_vlan_glb_cfg0, "iblk_imm_act_cfg", 1, 1, 1},
    {34, cib_ipro_vlan_glb_cfg0, "erps_blk_imm_act_cfg", 1, 1, 1},
    {35, cib_ipro_vlan_glb_cfg1, "lp_en_mode_cfg", 0, 0, 1},
    {36, cib_ipro_vlan_glb_cfg1, "lp_tnl_sp_mode_cfg", 0, 0, 1},
    {37, cib_ipro_vlan_glb_cfg1, "pritag_opri_cp_mode_en_cfg", 0, 0, 15},
    {38, cib_ipro_vlan_glb_cfg1, "tag3_opri_cp_mode_en_cfg", 0, 0, 15},
    {39, cib_ipro_vlan_glb_cfg1, "tag2_opri_cp_mode_en_cfg", 0, 0, 15},
    {40, cib_ipro_vlan_glb_cfg1, "tag1_opri_cp_mode_en_cfg", 0, 0, 15},
    {41, cib_ipro_vlan_glb_cfg1, "tag0_opri_cp_mode_en_cfg", 0, 0, 15},
    {42, cib_ipro_vlan_glb_cfg2, "pritag_ocfi_cp_mode_en_cfg", 0, 0, 15},
    {43, cib_ipro_vlan_glb_cfg2, "tag3_ocfi_cp_mode_en_cfg", 0, 0, 15},
    {44, cib_ipro_vlan_glb_cfg2, "tag2_ocfi_cp_mode_en_cfg", 0, 0, 15},
    {45, cib_ipro_vlan_glb_cfg2, "tag1_ocfi_cp_mode_en_cfg", 0, 0, 15},
    {46, cib_ipro_vlan_glb_cfg2, "tag0_ocfi_cp_mode_en_cfg", 0, 0, 15},
    {47, cib_ipro_vlan_glb_cfg3, "pritag_ipri_cp_mode_en_cfg", 0, 0, 15},
    {48, cib_ipro_vlan_glb_cfg3, "tag3_ipri_cp_mode_en_cfg", 0, 0, 15},
    {49, cib_ipro_vlan_glb_cfg3, "tag2_ipri_cp_mode_en_cfg", 0, 0, 15},
    {50, cib_ipro_vlan_glb_cfg3, "tag1_ipri_cp_mode_en_cfg", 0, 0, 15},
    {51, cib_ipro_vlan_glb_cfg3, "tag0_ipri_cp_mode_en_cfg", 0, 0, 15},
    {52, cib_ipro_vlan_glb_cfg4, "pritag_icfi_cp_mode_en_cfg", 0, 0, 15},
    {53, cib_ipro_vlan_glb_cfg4, "tag3_icfi_cp_mode_en_cfg", 0, 0, 15},
    {54, cib_ipro_vlan_glb_cfg4, "tag2_icfi_cp_mode_en_cfg", 0, 0, 15},
    {55, cib_ipro_vlan_glb_cfg4, "tag1_icfi_cp_mode_en_cfg", 0, 0, 15},
    {56, cib_ipro_vlan_glb_cfg4, "tag0_icfi_cp_mode_en_cfg", 0, 0, 15},
    {57, cib_ipro_vlan_glb_cfg1, "vmap_key_untag_mode_cfg", 0, 0, 1},
};

// The translation global settings, keys 1..7.
constexpr const char *kVtGlobalFields[] = {
    "pritag_vacl_key_tag_num_cfg", "pritag_vacl_key_pvid_cfi_cfg", "pritag_vacl_key_pvid_pri_cfg",
    "untag_vacl_key_pvid_cfi_cfg", "untag_vacl_key_pvid_pri_cfg",  "pritag_vacl_key_pvid_cfg",
    "untag_vacl_key_pvid_cfg",
};

i32 _global_key(u32 chip_id, const vlan_control *cfg, const GlobalKey **out)
{
    if (cfg == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "glb_cfg ptr is NULL!!!\n");
        return SHR_E_INTERNAL;
    }
    const bool atolreef = shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF;
    const bool refused = atolreef ? (cfg->key == 8 || cfg->key == 9) : (cfg->key >= 35 && cfg->key <= 57);
    for (const GlobalKey &k : kGlobalKeys) {
        if (k.key == cfg->key && !refused) {
            *out = &k;
            return 0;
        }
    }
    if (refused) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "This key:%u not support!!!\n", cfg->key);
    }
    return SHR_E_NOT_SUPPORT;
}

// ---- TPIDs -------------------------------------------------------------------------------------

constexpr u32 kTpidRegs[VLAN_TPID_COUNT] = {cib_lsw_hreg_tpidcfg0, cib_lsw_hreg_tpidcfg0, cib_lsw_hreg_tpidcfg1,
                                           cib_lsw_hreg_tpidcfg1};
constexpr const char *kTpidFields[VLAN_TPID_COUNT] = {"tpid_value0", "tpid_value1", "tpid_value2", "tpid_value3"};
constexpr u32 kTpidSelRegs[] = {cib_tti_tpidcfg_sel0, cib_tti_tpidcfg_sel1, cib_tti_tpidcfg_sel2,
                                cib_tti_tpidcfg_sel3};
constexpr const char *kTpidSelFields[] = {"tpidcfg_sel0", "tpidcfg_sel1", "tpidcfg_sel2", "tpidcfg_sel3"};
constexpr u32 kPortsPerSel = 8;

i32 _tpid_id(u32 chip_id, u32 id)
{
    if (id >= VLAN_TPID_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "This key:%u not support!!!\n", id);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

i32 _tpid_port(u32 chip_id, u32 lport)
{
    if (lport / kPortsPerSel >= sizeof(kTpidSelRegs) / sizeof(kTpidSelRegs[0])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "lport:%d is invalid!!!\n", (int)lport);
        return SHR_E_PARAM;
    }
    return 0;
}

} // namespace

extern "C" {

// ---- bring-up ------------------------------------------------------------------------------

i32 dpl_reef_vlan_special_register(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        return 0;
    case SHR_CHIP_TYPE_ATOLREEF:
        return dpl_atolreef_vlan_special_register(chip_id);
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "error chip type!\n");
        return SHR_E_NOT_SUPPORT;
    }
}

i32 dpl_reef_vlan_set_property(u32 chip_id)
{
    const reef_vlan_special_t &s = reef_vlan_special[chip_id];
    return s.soft_init != nullptr ? s.soft_init(chip_id) : 0;
}

i32 dpl_reef_vlan_soft_init(u32 chip_id)
{
    if (g_vlan_init[chip_id]) {
        return 0;
    }
    i32 rc = dpl_reef_vlan_special_register(chip_id);
    if (rc == 0) {
        rc = dpl_lock_create(chip_id, DPL_LOCK_VLAN, "VLAN");
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "create DPL_LOCK_TYPE_VLAN fail!!!\n");
        }
    }
    for (u32 p = 0; rc == 0 && p < DPL_VLAN_PORT_MAX; p++) {
        g_vlan_port_lock[chip_id][p] = xsal_mutex_create_("vlan_port", __FILE__, __LINE__);
        if (g_vlan_port_lock[chip_id][p] == nullptr) {
            rc = SHR_E_MEMORY;
        }
    }
    if (rc == 0) {
        rc = dpl_reef_vlan_set_property(chip_id);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "set vlan property error!!!\n");
        }
    }
    if (rc != 0) {
        return rc; // the bring-up runs the deinit, which frees what was made
    }
    g_vlan_init[chip_id] = 1;
    return 0;
}

// Undoes whatever the init got done.
i32 dpl_reef_vlan_soft_deinit(u32 chip_id)
{
    const reef_vlan_special_t &s = reef_vlan_special[chip_id];
    if (s.soft_deinit != nullptr) {
        s.soft_deinit(chip_id);
    }
    for (xsal_mutex_t &m : g_vlan_port_lock[chip_id]) {
        if (m != nullptr) {
            xsal_mutex_destroy_(m, __FILE__, __LINE__);
            m = nullptr;
        }
    }
    dpl_lock_destroy(chip_id, DPL_LOCK_VLAN);
    reef_vlan_special[chip_id] = reef_vlan_special_t{};
    g_vlan_init[chip_id] = 0;
    return 0;
}

i32 dpl_reef_vlan_hw_init(u32 chip_id)
{
    const reef_vlan_special_t &s = reef_vlan_special[chip_id];
    if (s.hw_init == nullptr) {
        // Nothing of the VLAN stages can be programmed: the chip keeps its
        // reset values, and the calls answer -24.
        csl_reef_not_in_build(chip_id, SHR_MOD_VLAN, SHR_LOG_WARN, "VLAN rows");
        return 0;
    }
    return s.hw_init(chip_id);
}

i32 dpl_reef_vlan_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

i32 dpl_reef_check_tgid(u32 chip_id, u32 tgid)
{
    const u32 max = shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF ? kTgidMaxAtolreef : kTgidMax;
    if (tgid > max) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "tgid (%u) is out of range!!!\n", tgid);
        return SHR_E_PARAM;
    }
    return 0;
}

// ---- VLANs and their rows: the chip's ------------------------------------------------------

i32 dpl_reef_vlan_create(u32 chip_id, u32 vid)
{
    return _special(chip_id, &reef_vlan_special_t::create, vid);
}

i32 dpl_reef_vlan_destroy(u32 chip_id, u32 vid)
{
    return _special(chip_id, &reef_vlan_special_t::destroy, vid);
}

i32 dpl_reef_vlan_port_add(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged)
{
    return _special(chip_id, &reef_vlan_special_t::port_add, vid, members, untagged);
}

i32 dpl_reef_vlan_port_set(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged)
{
    return _special(chip_id, &reef_vlan_special_t::port_set, vid, members, untagged);
}

i32 dpl_reef_vlan_port_delete(u32 chip_id, u32 vid, port_bitmap *ports)
{
    return _special(chip_id, &reef_vlan_special_t::port_delete, vid, ports);
}

i32 dpl_reef_vlan_port_get(u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged)
{
    return _special(chip_id, &reef_vlan_special_t::port_get, vid, members, untagged);
}

i32 dpl_reef_vlan_control_set(u32 chip_id, u32 vid, vlan_control *control)
{
    return _special(chip_id, &reef_vlan_special_t::control_set, vid, control);
}

i32 dpl_reef_vlan_control_get(u32 chip_id, u32 vid, vlan_control *control)
{
    return _special(chip_id, &reef_vlan_special_t::control_get, vid, control);
}

i32 dpl_reef_vlan_ingress_control_get(u32 chip_id, u32 vid, dpl_reef_ivlan_key *record)
{
    return _special(chip_id, &reef_vlan_special_t::ingress_control_get, vid, record);
}

i32 dpl_reef_vlan_ingress_control_set(u32 chip_id, u32 vid, const dpl_reef_ivlan_key *record)
{
    return _special(chip_id, &reef_vlan_special_t::ingress_control_set, vid, record);
}

i32 dpl_reef_vlan_egress_control_get(u32 chip_id, u32 vid, dpl_reef_evlan_key *record)
{
    return _special(chip_id, &reef_vlan_special_t::egress_control_get, vid, record);
}

i32 dpl_reef_vlan_egress_control_set(u32 chip_id, u32 vid, const dpl_reef_evlan_key *record)
{
    return _special(chip_id, &reef_vlan_special_t::egress_control_set, vid, record);
}

i32 dpl_reef_vlan_ingress_control_software_info_get(u32 chip_id, u32 vid, dpl_reef_ivlan_node *node)
{
    return _special(chip_id, &reef_vlan_special_t::ingress_software_info_get, vid, node);
}

i32 dpl_reef_vlan_egress_control_software_info_get(u32 chip_id, u32 vid, dpl_reef_evlan_node *node)
{
    return _special(chip_id, &reef_vlan_special_t::egress_software_info_get, vid, node);
}

i32 dpl_reef_vlan_forward_bitmap_set(u32 chip_id, const port_bitmap *bitmap, u32 all)
{
    return _special(chip_id, &reef_vlan_special_t::forward_bitmap_set, bitmap, all);
}

i32 dpl_reef_vlan_map_index_get(u32 chip_id, u32 vid, u32 *index)
{
    return _special(chip_id, &reef_vlan_special_t::map_index_get, vid, index);
}

// ---- port controls -------------------------------------------------------------------------

i32 dpl_reef_vlan_port_control_set(u32 chip_id, u32 lport, vlan_control *control)
{
    i32 rc = _lport_check(chip_id, lport, control);
    if (rc != 0) {
        return rc;
    }
    const PortKey *k = _port_key(chip_id, control->key);
    if (k == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    if (control->value > k->max) {
        if (k->key == VLAN_PORT_CTRL_TPID_INDEX) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para out of range:(0~%u)!!!\n", (unsigned)k->max);
            return SHR_E_RANGE;
        }
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN,
                    k->key < VLAN_PORT_CTRL_EGRESS_MIN ? "key:%u , input value:%u is invalid!!!\n"
                                                       : "key:%u ,input value:%u is invalid!!!\n",
                    control->key, control->value);
        return SHR_E_PARAM;
    }
    const u32 tab = _port_tab(k->key);
    PortHold hold(chip_id, lport, tab);
    PortRow row{};
    rc = _port_row_read(chip_id, tab, lport, &row);
    if (rc == 0) {
        rc = _port_control_apply(chip_id, *k, control->value, &row);
    }
    return rc != 0 ? rc : _port_row_write(chip_id, lport, &row);
}

i32 dpl_reef_vlan_port_control_get(u32 chip_id, u32 lport, vlan_control *control)
{
    i32 rc = _lport_check(chip_id, lport, control);
    if (rc != 0) {
        return rc;
    }
    const PortKey *k = _port_key(chip_id, control->key);
    if (k == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    const u32 tab = _port_tab(k->key);
    PortHold hold(chip_id, lport, tab);
    PortRow row{};
    Piece p{};
    rc = _port_row_read(chip_id, tab, lport, &row);
    if (rc == 0) {
        rc = row.field(chip_id, k->field, k->low, k->width, &p);
    }
    if (rc == 0) {
        control->value = row.get(p);
        if (k->kind == PortKind::acl_type0 || k->kind == PortKind::acl_type1) {
            // The enables count for the VLAN ACL type the key names.
            Piece type{};
            rc = row.field(chip_id, "vlan_acltype", 0, 0, &type);
            const u32 want = k->kind == PortKind::acl_type1 ? 1 : 0;
            control->value = rc == 0 && row.get(type) == want ? control->value : 0;
        }
    }
    return rc;
}

i32 dpl_reef_vlan_port_trust_type_set(u32 chip_id, u32 lport, u32 type, vlan_trust_info *info)
{
    i32 rc = _lport_check(chip_id, lport, info);
    if (rc != 0) {
        return rc;
    }
    if (type > VLAN_TRUST_INNER_PRI_CFI) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input trust type : %d is invalid!!!\n", (int)type);
        return SHR_E_PARAM;
    }
    u32 ba = 0;
    if (type <= VLAN_TRUST_QINDEX_COLOR) {
        if (info->qindex > 7) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input param qindex : %u invalid!!!\n", info->qindex);
            return SHR_E_PARAM;
        }
        if (info->color > 3) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input param color : %u invalid!!!\n", info->color);
            return SHR_E_PARAM;
        }
        ba = info->qindex * 4u + info->color;
    } else {
        if (info->ba_tid > 63) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input param ba_tid : %u invalid!!!\n", info->ba_tid);
            return SHR_E_PARAM;
        }
        ba = info->ba_tid;
    }
    VLAN_LOCK(chip_id);
    CslTabLock tab(chip_id, cib_ipro_ipat_tbl);
    PortRow row{};
    Piece t{}, b{};
    rc = _port_row_read(chip_id, cib_ipro_ipat_tbl, lport, &row);
    if (rc == 0) {
        rc = row.field(chip_id, "trust_type", 0, 0, &t);
    }
    if (rc == 0) {
        rc = row.field(chip_id, "ba_info", 0, 0, &b);
    }
    if (rc != 0) {
        return rc;
    }
    row.set(t, type);
    row.set(b, ba);
    return _port_row_write(chip_id, lport, &row);
}

i32 dpl_reef_vlan_port_trust_type_get(u32 chip_id, u32 lport, u32 *type, vlan_trust_info *info)
{
    i32 rc = _lport_check(chip_id, lport, info);
    if (rc == 0 && type == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        rc = SHR_E_NULL_PTR;
    }
    if (rc != 0) {
        return rc;
    }
    VLAN_LOCK(chip_id);
    PortRow row{};
    Piece t{}, b{};
    rc = _port_row_read(chip_id, cib_ipro_ipat_tbl, lport, &row);
    if (rc == 0) {
        rc = row.field(chip_id, "trust_type", 0, 0, &t);
    }
    if (rc == 0) {
        rc = row.field(chip_id, "ba_info", 0, 0, &b);
    }
    if (rc != 0) {
        return rc;
    }
    *type = row.get(t);
    const u32 ba = row.get(b);
    *info = *type <= VLAN_TRUST_QINDEX_COLOR ? vlan_trust_info{static_cast<u8>(ba / 4), static_cast<u8>(ba % 4), 0}
                                             : vlan_trust_info{0, 0, static_cast<u8>(ba)};
    return 0;
}

// ---- global settings -------------------------------------------------------------------------

i32 dpl_reef_vlan_global_cfg_set(u32 chip_id, vlan_control *cfg)
{
    const GlobalKey *k = nullptr;
    const i32 rc = _global_key(chip_id, cfg, &k);
    if (rc != 0) {
        return rc;
    }
    if (cfg->value > k->max) {
        if (k->key == VLAN_GLB_PRI_TAG_TAGNUM) {
            SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "tagnum is out of range 0~%u!!!\n", (unsigned)k->max);
            return SHR_E_BADID;
        }
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input : %u param is invalid!!!\n", cfg->value);
        return SHR_E_PARAM;
    }
    VLAN_LOCK(chip_id);
    return _reg_set(chip_id, k->reg, k->field, k->low, k->width, cfg->value);
}

i32 dpl_reef_vlan_global_cfg_get(u32 chip_id, vlan_control *cfg)
{
    const GlobalKey *k = nullptr;
    const i32 rc = _global_key(chip_id, cfg, &k);
    if (rc != 0) {
        return rc;
    }
    VLAN_LOCK(chip_id);
    return _reg_get(chip_id, k->reg, k->field, k->low, k->width, &cfg->value);
}

i32 dpl_reef_vlan_translation_global_cfg_set(u32 chip_id, vlan_control *cfg)
{
    if (cfg == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    if (cfg->key == 0 || cfg->key > std::size(kVtGlobalFields)) {
        return SHR_E_NOT_SUPPORT;
    }
    if (cfg->value > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "key:%u , input value:%u is invalid!!!\n", cfg->key, cfg->value);
        return SHR_E_PARAM;
    }
    VLAN_LOCK(chip_id);
    return _reg_set(chip_id, cib_ipro_vacl_key_pvid_cfg, kVtGlobalFields[cfg->key - 1], 0, 0, cfg->value);
}

i32 dpl_reef_vlan_translation_global_cfg_get(u32 chip_id, vlan_control *cfg)
{
    if (cfg == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    if (cfg->key == 0 || cfg->key > std::size(kVtGlobalFields)) {
        return SHR_E_NOT_SUPPORT;
    }
    VLAN_LOCK(chip_id);
    return _reg_get(chip_id, cib_ipro_vacl_key_pvid_cfg, kVtGlobalFields[cfg->key - 1], 0, 0, &cfg->value);
}

// ---- TPIDs -------------------------------------------------------------------------------------

i32 dpl_reef_vlan_tpid_set(u32 chip_id, u32 id, u32 value)
{
    i32 rc = _tpid_id(chip_id, id);
    if (rc != 0) {
        return rc;
    }
    if (value > 0xFFFF) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input param is invalid!!!\n");
        return SHR_E_PARAM;
    }
    VLAN_LOCK(chip_id);
    return _reg_set(chip_id, kTpidRegs[id], kTpidFields[id], 0, 0, value);
}

i32 dpl_reef_vlan_tpid_get(u32 chip_id, u32 id, u32 *value)
{
    i32 rc = _tpid_id(chip_id, id);
    if (rc == 0 && value == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        rc = SHR_E_NULL_PTR;
    }
    if (rc != 0) {
        return rc;
    }
    VLAN_LOCK(chip_id);
    return _reg_get(chip_id, kTpidRegs[id], kTpidFields[id], 0, 0, value);
}

i32 dpl_reef_vlan_port_tpid_bitmap_set(u32 chip_id, u32 lport, u32 bitmap)
{
    i32 rc = _tpid_port(chip_id, lport);
    if (rc != 0) {
        return rc;
    }
    if (bitmap > 0xF) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input param is invalid!!!\n");
        return SHR_E_PARAM;
    }
    VLAN_LOCK(chip_id);
    const u32 r = lport / kPortsPerSel;
    return _reg_set(chip_id, kTpidSelRegs[r], kTpidSelFields[r], 4 * (lport % kPortsPerSel), 4, bitmap);
}

i32 dpl_reef_vlan_port_tpid_bitmap_get(u32 chip_id, u32 lport, u32 *bitmap)
{
    i32 rc = _tpid_port(chip_id, lport);
    if (rc == 0 && bitmap == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        rc = SHR_E_NULL_PTR;
    }
    if (rc != 0) {
        return rc;
    }
    VLAN_LOCK(chip_id);
    const u32 r = lport / kPortsPerSel;
    return _reg_get(chip_id, kTpidSelRegs[r], kTpidSelFields[r], 4 * (lport % kPortsPerSel), 4, bitmap);
}

// ---- VLAN TCAM entries: the chip's --------------------------------------------------------

}

namespace {

// -20 with its line when one of the pointers is NULL.
template <typename... P>
i32 _not_null(u32 chip_id, const P *...p)
{
    if (((p == nullptr) || ...)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    return 0;
}

template <typename Key>
i32 _vacl_add(u32 chip_id, u32 family, const Key *key, const vlan_translate_action *action)
{
    const i32 rc = _not_null(chip_id, key, action);
    return rc != 0 ? rc : _special(chip_id, &reef_vlan_special_t::vacl_add, family, key, action);
}

template <typename Key>
i32 _vacl_delete(u32 chip_id, u32 family, const Key *key)
{
    const i32 rc = _not_null(chip_id, key);
    return rc != 0 ? rc : _special(chip_id, &reef_vlan_special_t::vacl_delete, family, key);
}

template <typename Key>
i32 _vacl_get(u32 chip_id, u32 family, const Key *key, vlan_translate_action *action)
{
    const i32 rc = _not_null(chip_id, key, action);
    return rc != 0 ? rc : _special(chip_id, &reef_vlan_special_t::vacl_get, family, key, action);
}

// The typed callback of the caller behind the chip's untyped walk.
template <typename Key, typename Cb>
i32 _vacl_traverse(u32 chip_id, u32 family, Cb fn, void *user)
{
    if (fn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_VLAN, "input para is NULL pointer\n");
        return SHR_E_NULL_PTR;
    }
    struct Ctx {
        Cb fn;
        void *user;
    } ctx{fn, user};
    const dpl_vlan_vacl_cb each = [](u32 chip, void *key, vlan_translate_action *action, void *c) {
        const Ctx *x = static_cast<const Ctx *>(c);
        return x->fn(chip, static_cast<Key *>(key), action, x->user);
    };
    return _special(chip_id, &reef_vlan_special_t::vacl_traverse, family, each, static_cast<void *>(&ctx));
}

} // namespace

extern "C" {

#define DPL_REEF_VLAN_VACL(kind, family, key_t, cb_t)                                                              \
    i32 dpl_reef_vlan_##kind##_add(u32 chip_id, key_t *key, vlan_translate_action *action)                         \
    {                                                                                                              \
        return _vacl_add(chip_id, family, key, action);                                                            \
    }                                                                                                              \
    i32 dpl_reef_vlan_##kind##_delete(u32 chip_id, key_t *key)                                                     \
    {                                                                                                              \
        return _vacl_delete(chip_id, family, key);                                                                 \
    }                                                                                                              \
    i32 dpl_reef_vlan_##kind##_get(u32 chip_id, key_t *key, vlan_translate_action *action)                         \
    {                                                                                                              \
        return _vacl_get(chip_id, family, key, action);                                                            \
    }                                                                                                              \
    i32 dpl_reef_vlan_##kind##_traverse(u32 chip_id, cb_t fn, void *user)                                          \
    {                                                                                                              \
        return _vacl_traverse<key_t>(chip_id, family, fn, user);                                                   \
    }                                                                                                              \
    i32 dpl_reef_vlan_##kind##_clear(u32 chip_id)                                                                  \
    {                                                                                                              \
        return _special(chip_id, &reef_vlan_special_t::vacl_clear, static_cast<u32>(family));                      \
    }
DPL_REEF_VLAN_VACL(ingress_translate, DPL_VACL_VT, vlan_ingress_translate_key, vlan_ingress_translate_traverse_cb)
DPL_REEF_VLAN_VACL(macbased, DPL_VACL_MAC, vlan_mac_key, vlan_mac_traverse_cb)
DPL_REEF_VLAN_VACL(subnetbased, DPL_VACL_SUBNET, vlan_subnet_key, vlan_subnet_traverse_cb)
DPL_REEF_VLAN_VACL(protocolbased, DPL_VACL_PROTOCOL, vlan_protocol_key, vlan_protocol_traverse_cb)
#undef DPL_REEF_VLAN_VACL

#define DPL_REEF_VLAN_SLOT(name, params, args, ...) .name = dpl_reef_vlan_##name,
#define DPL_REEF_VLAN_EMPTY(name, params, args, ...) .name = nullptr,
const reef_vlan_dispatch_t reef_vlan_dispatch = {TIDE_VLAN_OPS(DPL_REEF_VLAN_SLOT)
                                                     TIDE_VLAN_EMPTY_OPS(DPL_REEF_VLAN_EMPTY)};
#undef DPL_REEF_VLAN_EMPTY
#undef DPL_REEF_VLAN_SLOT

} // extern "C"
