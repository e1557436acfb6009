// Where the ACL's lookups start: which key type each stage looks up, and
// with which priority, chip-wide, per port or per CPU cause; the global
// settings of the stages; the per-port enables.  Each is a field of a
// register or of a table of the chip, named in the tables below; the
// VLAN-based lookups and controls live in the VLAN service's records.
#include <cstddef>
#include <cstring>
#include <vector>

#include "atolreef_cib.h"
#include "csl/common/port/csl_port.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "dpl/reef/acl/dpl_reef_acl.h"
#include "dpl/reef/vlan/dpl_reef_vlan.h"
#include "shared/shr_bits.h"

namespace {

// A field of a register (instance 0) or of a table entry.
struct FieldAt {
    bool tab;
    u32 id;
    u32 module; // the register's chip module, for its lock
    const char *field;
};

// Bits of a field; width 0 when the catalogue lacks it.
tide::cib::Bits _bits(u32 chip_id, const FieldAt &f)
{
    const cib_field_info *fields = nullptr;
    u32 count = 0;
    if (f.tab) {
        const cib_tab_info *t = csl_reef_tab_info_get(chip_id, f.id);
        fields = t != nullptr ? t->modes[0].fields : nullptr;
        count = t != nullptr ? t->modes[0].field_count : 0;
    } else {
        const cib_reg_info *r = csl_reef_reg_info_get(chip_id, f.id);
        fields = r != nullptr ? r->fields : nullptr;
        count = r != nullptr ? r->field_count : 0;
    }
    for (u32 i = 0; i < count; i++) {
        if (strcmp(fields[i].name, f.field) == 0) {
            return tide::cib::Bits{fields[i].low_bit, fields[i].width};
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "no field %s in the catalogue\n", f.field);
    return tide::cib::Bits{};
}

// Reads a field, or read-changes-writes it when `set` is given.
i32 _field_rw(u32 chip_id, const FieldAt &f, u32 index, const u32 *set, u32 *get)
{
    const tide::cib::Bits b = _bits(chip_id, f);
    if (!b.ok()) {
        return SHR_E_NOT_SUPPORT;
    }
    if (!f.tab) {
        CslRegLock hold(chip_id, f.module);
        u32 word = 0;
        i32 rc = csl_reef_reg_get_u32(chip_id, CIB_ID(f.id, 0), &word);
        if (rc == 0 && set != nullptr) {
            rc = csl_reef_reg_set_u32(chip_id, CIB_ID(f.id, 0), b.put32(word, *set));
        }
        if (rc == 0 && get != nullptr) {
            *get = b.get32(word);
        }
        return rc;
    }
    const cib_tab_info *t = csl_reef_tab_info_get(chip_id, f.id);
    const u32 bytes = cib_tab_entry_bytes(t);
    std::vector<u8> data(bytes);
    CslTabLock hold(chip_id, f.id);
    i32 rc = csl_reef_tab_get_direct(chip_id, CIB_ID(f.id, 0), index, data.data(), bytes, CSL_TAB_HW);
    if (rc == 0 && set != nullptr) {
        shr_field64_set_to_data(data.data(), *set, b.low, b.width);
        rc = csl_reef_tab_set_direct(chip_id, CIB_ID(f.id, 0), index, data.data(), bytes, CSL_TAB_HW_AND_IMAGE);
    }
    if (rc == 0 && get != nullptr) {
        u64 v = 0;
        shr_field64_get_from_data(data.data(), &v, b.low, b.width);
        *get = static_cast<u32>(v);
    }
    return rc;
}

i32 _range(u32 chip_id, u32 chip_value, const FieldAt &f, const char *what)
{
    const tide::cib::Bits b = _bits(chip_id, f);
    if (!b.ok()) {
        return SHR_E_NOT_SUPPORT;
    }
    if (chip_value > b.max()) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "%s %u is out of range, max %u\n", what, chip_value,
                    static_cast<u32>(b.max()));
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _port_check(u32 chip_id, u32 port)
{
    const i32 rc = csl_port_valid_check(chip_id, port);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "port %u is not a port of this chip\n", port);
        return SHR_E_PARAM;
    }
    return 0;
}

i32 _vid_check(u32 chip_id, u32 vid)
{
    if (vid > 4095) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "vid %u is out of range, max %u\n", vid, 4095u);
        return SHR_E_PARAM;
    }
    return 0;
}

// ---- VLAN records ----------------------------------------------------------------------------

// A VLAN's lookups and enables live in its ingress or egress record, whose
// rows the VLAN service shares among VLANs of equal settings: they are
// read and rewritten whole through that service, never in the table.
i32 _vlan_record_get(u32 chip_id, u32 vid, dpl_reef_ivlan_key *r)
{
    return dpl_reef_vlan_ingress_control_get(chip_id, vid, r);
}
i32 _vlan_record_get(u32 chip_id, u32 vid, dpl_reef_evlan_key *r)
{
    return dpl_reef_vlan_egress_control_get(chip_id, vid, r);
}
i32 _vlan_record_set(u32 chip_id, u32 vid, const dpl_reef_ivlan_key *r)
{
    return dpl_reef_vlan_ingress_control_set(chip_id, vid, r);
}
i32 _vlan_record_set(u32 chip_id, u32 vid, const dpl_reef_evlan_key *r)
{
    return dpl_reef_vlan_egress_control_set(chip_id, vid, r);
}

// Reads the `fields` of a VLAN's record into `get`, or sets them from
// `set` first; a VLAN that does not exist gives the VLAN service's answer.
template <typename Key, size_t N>
i32 _vlan_record_rw(u32 chip_id, u32 vid, u8 Key::*const (&fields)[N], const u32 *set, u32 *get)
{
    Key r{};
    i32 rc = _vlan_record_get(chip_id, vid, &r);
    if (rc == 0 && set != nullptr) {
        for (size_t i = 0; i < N; i++) {
            r.*fields[i] = static_cast<u8>(set[i]);
        }
        rc = _vlan_record_set(chip_id, vid, &r);
    }
    for (size_t i = 0; rc == 0 && get != nullptr && i < N; i++) {
        get[i] = r.*fields[i];
    }
    return rc;
}

// ---- lookups --------------------------------------------------------------------------------

enum class Index : u8 { None, Port, Cause, Vlan };

// Where a lookup of a stage, base and lookup index is kept.
struct LookupRow {
    u32 stage;
    u32 base;
    u32 lookup_index;
    Index index;
    FieldAt type;
    FieldAt pri; // field NULL: the lookup has no priority
};

constexpr u32 kRegIacl = cib_iacl_glb_lookup_cfg, kRegEacl = cib_eacl_glb_lookup_cfg;
constexpr u32 kIpat = cib_ipro_ipat_tbl, kEport = cib_eacl_port_lookup_tbl, kCause = cib_cpacl_cause_lookup_tbl;
constexpr u32 kIvlan = cib_ipro_ivlan_tbl, kEvlan = cib_epro_evlan_table;
constexpr FieldAt kNoField{false, 0, 0, nullptr};

constexpr LookupRow kLookups[] = {
    {ACL_STAGE_VCAP, ACL_BASE_GLOBAL, 0, Index::None,
     {false, cib_ipro_vacl_type_glb_cfg, cib_module_ipro, "vacl_type_glb_cfg"}, kNoField},
    {ACL_STAGE_VCAP, ACL_BASE_PORT, 0, Index::Port, {true, kIpat, 0, "vlan_acltype"}, kNoField},
    {ACL_STAGE_ICAP, ACL_BASE_GLOBAL, 0, Index::None, {false, kRegIacl, cib_module_iacl, "first_acltype"},
     {false, kRegIacl, cib_module_iacl, "first_aclpri"}},
    {ACL_STAGE_ICAP, ACL_BASE_GLOBAL, 1, Index::None, {false, kRegIacl, cib_module_iacl, "second_acltype"},
     {false, kRegIacl, cib_module_iacl, "second_aclpri"}},
    {ACL_STAGE_ICAP, ACL_BASE_PORT, 0, Index::Port, {true, kIpat, 0, "first_policy_acltype"},
     {true, kIpat, 0, "first_policy_aclpri"}},
    {ACL_STAGE_ICAP, ACL_BASE_PORT, 1, Index::Port, {true, kIpat, 0, "second_policy_acltype"},
     {true, kIpat, 0, "second_policy_aclpri"}},
    {ACL_STAGE_ICAP, ACL_BASE_VLAN, 0, Index::Vlan, {true, kIvlan, 0, "first_policy_acltype"},
     {true, kIvlan, 0, "first_policy_aclpri"}},
    {ACL_STAGE_ECAP, ACL_BASE_GLOBAL, 0, Index::None, {false, kRegEacl, cib_module_eacl, "acltype"},
     {false, kRegEacl, cib_module_eacl, "aclpri"}},
    {ACL_STAGE_ECAP, ACL_BASE_PORT, 0, Index::Port, {true, kEport, 0, "acltype"}, {true, kEport, 0, "aclpri"}},
    {ACL_STAGE_ECAP, ACL_BASE_VLAN, 0, Index::Vlan, {true, kEvlan, 0, "first_policy_acltype"},
     {true, kEvlan, 0, "acl_pri"}},
    {ACL_STAGE_CPUCAP, ACL_BASE_CPU, 0, Index::Cause, {true, kCause, 0, "first_acltype"},
     {true, kCause, 0, "first_aclpri"}},
    {ACL_STAGE_CPUCAP, ACL_BASE_CPU, 1, Index::Cause, {true, kCause, 0, "second_acltype"},
     {true, kCause, 0, "second_aclpri"}},
};

// The row of a lookup record and the entry index it addresses.
i32 _lookup_row(u32 chip_id, const acl_lookup *l, const LookupRow **out)
{
    if (l->stage > ACL_STAGE_CPUCAP || l->base > ACL_BASE_CPU || l->lookup_index > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "lookup stage %u base %u index %u is out of range\n", l->stage, l->base,
                    l->lookup_index);
        return SHR_E_PARAM;
    }
    for (const LookupRow &r : kLookups) {
        if (r.stage != l->stage || r.base != l->base || r.lookup_index != l->lookup_index) {
            continue;
        }
        i32 rc = 0;
        if (r.index == Index::Port) {
            rc = _port_check(chip_id, l->id);
        } else if (r.index == Index::Vlan) {
            rc = _vid_check(chip_id, l->id);
        } else if (r.index == Index::Cause) {
            const cib_tab_info *t = csl_reef_tab_info_get(chip_id, kCause);
            if (t == nullptr || l->id > t->index_max) {
                SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "cpu cause %u is out of range\n", l->id);
                rc = SHR_E_PARAM;
            }
        }
        *out = &r;
        return rc;
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "lookup of stage %u base %u index %u is not on this chip\n", l->stage, l->base,
                l->lookup_index);
    return SHR_E_NOT_SUPPORT;
}

u32 _lookup_index(const LookupRow &r, u32 id)
{
    return r.index == Index::None ? 0 : id;
}

// Reads a lookup's type and priority ({type, pri}), or sets them from `set`
// first: in the VLAN's record for a VLAN lookup, else in its table or
// register.
i32 _lookup_rw(u32 chip_id, const LookupRow &r, u32 id, const u32 *set, u32 *get)
{
    if (r.index == Index::Vlan && r.stage == ACL_STAGE_ICAP) {
        static constexpr u8 dpl_reef_ivlan_key::*kFields[] = {&dpl_reef_ivlan_key::first_policy_acltype,
                                                               &dpl_reef_ivlan_key::first_policy_aclpri};
        return _vlan_record_rw(chip_id, id, kFields, set, get);
    }
    if (r.index == Index::Vlan) {
        static constexpr u8 dpl_reef_evlan_key::*kFields[] = {&dpl_reef_evlan_key::first_policy_acltype,
                                                               &dpl_reef_evlan_key::acl_pri};
        return _vlan_record_rw(chip_id, id, kFields, set, get);
    }
    const u32 index = _lookup_index(r, id);
    i32 rc = _field_rw(chip_id, r.type, index, set, get);
    if (rc == 0 && r.pri.field != nullptr) {
        rc = _field_rw(chip_id, r.pri, index, set != nullptr ? set + 1 : nullptr, get != nullptr ? get + 1 : nullptr);
    }
    return rc;
}

// ---- port controls -----------------------------------------------------------------------

struct PortControlRow {
    FieldAt fields[2]; // field NULL: none
};
constexpr PortControlRow kPortControls[ACL_PORT_CONTROL_COUNT] = {
    {{{true, kIpat, 0, "tag_vlanacl_en"}, {true, kIpat, 0, "untag_vlanacl_en"}}},
    {{{true, kIpat, 0, "iacl_en"}, kNoField}},
    {{{true, kEport, 0, "eacl_en"}, kNoField}},
    {{{true, kIpat, 0, "vacl_miss_drop"}, kNoField}},
    {{{true, kIpat, 0, "ipsgv4_en"}, kNoField}},
    {{{true, kIpat, 0, "ipsgv6_en"}, kNoField}},
    {{{true, kIpat, 0, "classid"}, kNoField}},
    {{kNoField, kNoField}},
    {{kNoField, kNoField}},
};

i32 _port_control_row(u32 chip_id, u32 port, const acl_control *c, const PortControlRow **out)
{
    if (c->key >= ACL_PORT_CONTROL_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "port control %u is out of range, max %u\n", c->key,
                    ACL_PORT_CONTROL_COUNT - 1);
        return SHR_E_PARAM;
    }
    const i32 rc = _port_check(chip_id, port);
    if (rc != 0) {
        return rc;
    }
    *out = &kPortControls[c->key];
    if ((*out)->fields[0].field == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "port control %u is not on this chip\n", c->key);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

// ---- global settings -------------------------------------------------------------------------

struct GlobalRow {
    u32 stage;
    u32 flag;
    FieldAt field;
    size_t member; // offset of the record's value
};
#define ACL_GLB(member) offsetof(acl_global_cfg, member)
constexpr u32 kVaclMode = cib_ipro_vacl_key_port_mode_cfg, kIaclCfg = cib_iacl_acl_gbl_cfg_reg;
constexpr u32 kIaclSel = cib_iacl_ipv6_ip_sel, kEaclSel = cib_eacl_ipv6_ip_sel;
constexpr GlobalRow kGlobals[] = {
    {ACL_STAGE_VCAP, ACL_GLB_VCAP_PORT_MODE0, {false, kVaclMode, cib_module_ipro, "vacl_key_port_mode_cfg0"},
     ACL_GLB(vacl_key_port_mode[0])},
    {ACL_STAGE_VCAP, ACL_GLB_VCAP_PORT_MODE1, {false, kVaclMode, cib_module_ipro, "vacl_key_port_mode_cfg1"},
     ACL_GLB(vacl_key_port_mode[1])},
    {ACL_STAGE_VCAP, ACL_GLB_VCAP_TYPE, {false, cib_ipro_vacl_type_glb_cfg, cib_module_ipro, "vacl_type_glb_cfg"},
     ACL_GLB(vacl_type)},
    {ACL_STAGE_ICAP, ACL_GLB_ICAP_CFG0, {false, kIaclCfg, cib_module_iacl, "acl_gbl_cfg0"}, ACL_GLB(iacl_cfg[0])},
    {ACL_STAGE_ICAP, ACL_GLB_ICAP_CFG1, {false, kIaclCfg, cib_module_iacl, "acl_gbl_cfg1"}, ACL_GLB(iacl_cfg[1])},
    {ACL_STAGE_ICAP, ACL_GLB_ICAP_CFG2, {false, kIaclCfg, cib_module_iacl, "acl_gbl_cfg2"}, ACL_GLB(iacl_cfg[2])},
    {ACL_STAGE_ICAP, ACL_GLB_IPV6_SEL, {false, kIaclSel, cib_module_iacl, "ipv6_ip_sel_0"}, ACL_GLB(ipv6_sel[0])},
    {ACL_STAGE_ICAP, ACL_GLB_IPV6_SEL, {false, kIaclSel, cib_module_iacl, "ipv6_ip_sel_1"}, ACL_GLB(ipv6_sel[1])},
    {ACL_STAGE_ICAP, ACL_GLB_IPV6_SEL, {false, kIaclSel, cib_module_iacl, "ipv6_ip_sel_2"}, ACL_GLB(ipv6_sel[2])},
    {ACL_STAGE_ICAP, ACL_GLB_IPV6_SEL, {false, kIaclSel, cib_module_iacl, "ipv6_ip_sel_3"}, ACL_GLB(ipv6_sel[3])},
    {ACL_STAGE_ECAP, ACL_GLB_IPV6_SEL, {false, kEaclSel, cib_module_eacl, "ipv6_ip_sel_0"}, ACL_GLB(ipv6_sel[0])},
    {ACL_STAGE_ECAP, ACL_GLB_IPV6_SEL, {false, kEaclSel, cib_module_eacl, "ipv6_ip_sel_1"}, ACL_GLB(ipv6_sel[1])},
    {ACL_STAGE_ECAP, ACL_GLB_IPV6_SEL, {false, kEaclSel, cib_module_eacl, "ipv6_ip_sel_2"}, ACL_GLB(ipv6_sel[2])},
    {ACL_STAGE_ECAP, ACL_GLB_IPV6_SEL, {false, kEaclSel, cib_module_eacl, "ipv6_ip_sel_3"}, ACL_GLB(ipv6_sel[3])},
    {ACL_STAGE_ECAP, ACL_GLB_IPV6_SEL, {false, kEaclSel, cib_module_eacl, "ipv6_ip_sel_4"}, ACL_GLB(ipv6_sel[4])},
    {ACL_STAGE_ECAP, ACL_GLB_IPV6_SEL, {false, kEaclSel, cib_module_eacl, "ipv6_ip_sel_5"}, ACL_GLB(ipv6_sel[5])},
};
#undef ACL_GLB

u32 *_member(acl_global_cfg *cfg, size_t offset)
{
    return reinterpret_cast<u32 *>(reinterpret_cast<u8 *>(cfg) + offset);
}

// The rows of a flag on a stage; -24 for a bit the stage does not have.
i32 _global_rows(u32 chip_id, u32 flag, const acl_global_cfg *cfg, std::vector<const GlobalRow *> *rows)
{
    if (cfg->stage > ACL_STAGE_CPUCAP || flag == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "global cfg stage %u flag 0x%x is out of range\n", cfg->stage, flag);
        return SHR_E_PARAM;
    }
    u32 known = 0;
    for (const GlobalRow &r : kGlobals) {
        if (r.stage == cfg->stage && (flag & r.flag)) {
            known |= r.flag;
            rows->push_back(&r);
        }
    }
    if (flag & ~known) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "global cfg flag 0x%x is not support on stage %u\n", flag & ~known,
                    cfg->stage);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

} // namespace

extern "C" {

// Key types a stage cannot look up on atolreef: icap 9, 10 and 12 (the
// IP source guard and svp keys), ecap 2 to 4, 6 and 7.
i32 dpl_reef_acl_control_check_lookup_type(u32 chip_id, u32 stage, u32 type)
{
    constexpr u32 kIcapNo = 1u << 9 | 1u << 10 | 1u << 12;
    constexpr u32 kEcapNo = 1u << 2 | 1u << 3 | 1u << 4 | 1u << 6 | 1u << 7;
    if (shr_chip_type_get(chip_id) != SHR_CHIP_TYPE_ATOLREEF || type >= 32) {
        return 0;
    }
    if ((stage == ACL_STAGE_ICAP && (kIcapNo >> type & 1)) || (stage == ACL_STAGE_ECAP && (kEcapNo >> type & 1))) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "lookup type %u is not support on stage %u\n", type, stage);
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

i32 dpl_reef_acl_control_lookup_type_set(u32 chip_id, acl_lookup *lookup)
{
    const LookupRow *r = nullptr;
    i32 rc = _lookup_row(chip_id, lookup, &r);
    rc = rc != 0 ? rc : _range(chip_id, lookup->type, r->type, "lookup type");
    if (rc == 0 && r->pri.field != nullptr) {
        rc = _range(chip_id, lookup->pri, r->pri, "lookup pri");
    }
    rc = rc != 0 ? rc : dpl_reef_acl_control_check_lookup_type(chip_id, lookup->stage, lookup->type);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    const u32 set[2] = {lookup->type, lookup->pri};
    return _lookup_rw(chip_id, *r, lookup->id, set, nullptr);
}

i32 dpl_reef_acl_control_lookup_type_get(u32 chip_id, acl_lookup *lookup)
{
    const LookupRow *r = nullptr;
    i32 rc = _lookup_row(chip_id, lookup, &r);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    u32 got[2] = {0, 0};
    rc = _lookup_rw(chip_id, *r, lookup->id, nullptr, got);
    if (rc == 0) {
        lookup->type = got[0];
        lookup->pri = got[1];
    }
    return rc;
}

i32 dpl_reef_acl_control_port_control_set(u32 chip_id, u32 port, acl_control *control)
{
    const PortControlRow *r = nullptr;
    i32 rc = _port_control_row(chip_id, port, control, &r);
    rc = rc != 0 ? rc : _range(chip_id, control->value, r->fields[0], "port control value");
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    for (const FieldAt &f : r->fields) {
        if (rc == 0 && f.field != nullptr) {
            rc = _field_rw(chip_id, f, port, &control->value, nullptr);
        }
    }
    return rc;
}

i32 dpl_reef_acl_control_port_control_get(u32 chip_id, u32 port, acl_control *control)
{
    const PortControlRow *r = nullptr;
    i32 rc = _port_control_row(chip_id, port, control, &r);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    return _field_rw(chip_id, r->fields[0], port, nullptr, &control->value);
}

// The per-VLAN enables of the VLAN's ingress record: the IP source guards.
// The chip has no per-VLAN MAC forced forwarding enable.
constexpr u8 dpl_reef_ivlan_key::*kVlanControls[ACL_VLAN_CONTROL_COUNT] = {
    &dpl_reef_ivlan_key::ipsgv4_en, &dpl_reef_ivlan_key::ipsgv6_en, nullptr};

i32 _vlan_control_check(u32 chip_id, u32 vid, const acl_control *control)
{
    i32 rc = _vid_check(chip_id, vid);
    if (rc == 0 && control->key >= ACL_VLAN_CONTROL_COUNT) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "vlan control %u is out of range, max %u\n", control->key,
                    ACL_VLAN_CONTROL_COUNT - 1);
        rc = SHR_E_PARAM;
    }
    if (rc == 0 && kVlanControls[control->key] == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "vlan control %u is not on this chip\n", control->key);
        rc = SHR_E_NOT_SUPPORT;
    }
    return rc;
}

i32 dpl_reef_acl_control_vlan_control_set(u32 chip_id, u32 vid, acl_control *control)
{
    i32 rc = _vlan_control_check(chip_id, vid, control);
    if (rc == 0 && control->value > 1) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "vlan control value %u is out of range, max %u\n", control->value, 1u);
        rc = SHR_E_PARAM;
    }
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    u8 dpl_reef_ivlan_key::*const fields[1] = {kVlanControls[control->key]};
    return _vlan_record_rw(chip_id, vid, fields, &control->value, nullptr);
}

i32 dpl_reef_acl_control_vlan_control_get(u32 chip_id, u32 vid, acl_control *control)
{
    const i32 rc = _vlan_control_check(chip_id, vid, control);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    u8 dpl_reef_ivlan_key::*const fields[1] = {kVlanControls[control->key]};
    return _vlan_record_rw(chip_id, vid, fields, nullptr, &control->value);
}

i32 dpl_reef_acl_control_global_cfg_set(u32 chip_id, u32 flag, acl_global_cfg *cfg)
{
    std::vector<const GlobalRow *> rows;
    i32 rc = _global_rows(chip_id, flag, cfg, &rows);
    // Every value is checked before anything is written.
    for (const GlobalRow *r : rows) {
        rc = rc != 0 ? rc : _range(chip_id, *_member(cfg, r->member), r->field, r->field.field);
    }
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    for (const GlobalRow *r : rows) {
        rc = rc != 0 ? rc : _field_rw(chip_id, r->field, 0, _member(cfg, r->member), nullptr);
    }
    return rc;
}

i32 dpl_reef_acl_control_global_cfg_get(u32 chip_id, u32 flag, acl_global_cfg *cfg)
{
    std::vector<const GlobalRow *> rows;
    i32 rc = _global_rows(chip_id, flag, cfg, &rows);
    if (rc != 0) {
        return rc;
    }
    ACL_LOCK(chip_id);
    for (const GlobalRow *r : rows) {
        rc = rc != 0 ? rc : _field_rw(chip_id, r->field, 0, nullptr, _member(cfg, r->member));
    }
    return rc;
}

} // extern "C"
