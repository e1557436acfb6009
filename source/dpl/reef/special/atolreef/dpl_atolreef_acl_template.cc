// The ACL templates of atolreef, as data.
//
// A template row names its TCAM table, whether its type tag follows the
// entry's base, and its items in the order a builder applies them; each
// item row says which field of the key it fills (from which bit of the
// field, how many bits) and, where two items share a field, the
// selector field it sets.  An action set row lists its actions; each
// action row sets one or two fields of the action record from a constant,
// the value or the second value.  A kind of group (fp type) lists its
// action set and its templates.  Only templates with a row here are
// offered; adding one is adding rows.
//
// Names are resolved once per chip at soft init into the chip's tables
// (positions of the fields in the catalogue's records, ids of the names).
#include "dpl/reef/special/atolreef/dpl_atolreef_acl_template.h"

#include <cstring>
#include <span>

#include "atolreef_tcam_table.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"
#include "shared/shr_bits.h"

namespace {

// ---- the rows ------------------------------------------------------------------------

// Where a match item lands: `width` bits of the field `field` from its bit
// `lo` (0: the rest of the field); `side`, when set, is a field that the
// item sets to `side_value` with mask `side_mask`.
struct ItemRow {
    const char *match;
    const char *field;
    u8 lo;
    u8 width;
    const char *side;
    u8 side_value;
    u8 side_mask;
};

// What an action sets in one field.
enum class Src : u8 { Const, Value, Second };
struct ActionOp {
    const char *field;
    Src src;
    u32 and_mask; // of the value; the constant for Src::Const
    u32 add;
    bool or_in; // the field gains the bits instead of taking them
};
struct ActionRow {
    const char *action;
    ActionOp ops[2];
};

struct ActionSetRow {
    const char *name;
    std::span<const char *const> actions; // the actions the set takes
    const char *ad_table;                 // the action table its fields lie in
    std::span<const ActionRow> fields;    // how they build
    const char *valid;                    // field always 1, or NULL
};

// A field a template always sets, whatever the entry's items say.
struct Forced {
    const char *field;
    u32 value;
    u32 mask;
};

struct TemplateRow {
    u32 template_id;
    u32 tcam_id;
    bool tid_by_base; // the type tag follows the entry's base
    const ActionSetRow *actions;
    std::span<const ItemRow> items;
    Forced forced;
};

struct FpRow {
    u32 fp_type;
    const ActionSetRow *actions;
    std::span<const u32> templates;
};

// Which items or actions exclude each other: a new one of `news` may not
// join any of `others` already set.
struct ConflictRow {
    std::span<const char *const> news;
    std::span<const char *const> others;
    const char *message;
};

// ---- action sets ---------------------------------------------------------------------------

constexpr const char *kIaclActions[] = {
    "mirror", "sflow", "opri-replace", "ipri-replace", "dscp-tos-mode", "dscp-tos-assign", "int-pri-assign",
    "color-assign", "opri-cp-ipri-before-change", "drop", "copy-to-cpu", "redirect-to-cpu", "redirect-port",
    "redirect-trunk", "nexthop", "cnt", "policer", "trace-id", "not-drop", "mac-swap", "cause-id",
    "permit-forward",
};
constexpr const char *kDest = "causeid_dport_nhpid_ecmpgrp";
constexpr ActionRow kIaclActionFields[] = {
    {"mirror", {{"mirroren", Src::Const, 1, 0, false}, {"mirrorid", Src::Second, 3, 0, false}}},
    {"sflow", {{"sflowen", Src::Const, 1, 0, false}, {"sflowid", Src::Value, 7, 0, false}}},
    {"opri-replace", {{"oprien", Src::Const, 1, 0, false}, {"opri", Src::Value, 7, 0, false}}},
    {"ipri-replace", {{"iprien", Src::Const, 1, 0, false}, {"ipri", Src::Value, 7, 0, false}}},
    {"dscp-tos-mode", {{"dscp_tos_mode", Src::Value, 3, 0, false}, {}}},
    {"dscp-tos-assign", {{"dscp", Src::Value, 0xFF, 0, false}, {}}},
    {"int-pri-assign", {{"qindexen", Src::Const, 1, 0, false}, {"qidx", Src::Value, 7, 0, false}}},
    {"color-assign", {{"coloren", Src::Const, 1, 0, false}, {"color", Src::Value, 3, 0, false}}},
    {"opri-cp-ipri-before-change", {{"opricpipri", Src::Const, 1, 0, false}, {}}},
    {"permit-forward", {{"fwdcmd", Src::Const, 0, 0, false}, {}}},
    {"drop", {{"fwdcmd", Src::Const, 1, 0, false}, {}}},
    {"copy-to-cpu", {{"fwdcmd", Src::Const, 2, 0, false}, {}}},
    {"redirect-to-cpu", {{"fwdcmd", Src::Const, 3, 0, false}, {}}},
    {"redirect-port", {{"fwdcmd", Src::Const, 5, 0, false}, {kDest, Src::Second, 31, 0, false}}},
    {"redirect-trunk", {{"fwdcmd", Src::Const, 5, 0, false}, {kDest, Src::Value, 7, 0x800, false}}},
    {"nexthop", {{"fwdcmd", Src::Const, 9, 0, false}, {kDest, Src::Second, 0x1FF, 0, true}}},
    {"cnt", {{"staten", Src::Const, 1, 0, false}, {"statid", Src::Value, 0xFFF, 0, false}}},
    {"policer", {{"caren", Src::Const, 1, 0, false}, {"carid", Src::Value, 0x7FF, 0, false}}},
    {"trace-id", {{"traceen", Src::Const, 1, 0, false}, {"traceid", Src::Value, 1, 0, false}}},
    {"not-drop", {{"denydrop", Src::Const, 1, 0, false}, {}}},
    {"mac-swap", {{"macswapen", Src::Const, 1, 0, false}, {}}},
    {"cause-id", {{kDest, Src::Value, 0x3FF, 0, false}, {}}},
};
constexpr const char *kIpsgActions[] = {"cnt", "drop", "redirect-to-cpu", "cp-cause-id", "not-drop"};
constexpr const char *kEaclActions[] = {
    "mirror", "sflow", "opri-replace", "ipri-replace", "dscp-tos-mode", "dscp-tos-assign", "color-assign",
    "opri-cp-ipri-before-change", "drop", "copy-to-cpu", "redirect-to-cpu", "del-one-tag", "del-two-tags",
    "ovid-replace", "ivid-replace", "cnt", "policer", "cause-id", "permit-forward",
};
constexpr const char *kCpuaclActions[] = {"drop", "cause-id", "policer-disable", "policer", "cnt", "permit-forward"};
constexpr const char *kVaclActions[] = {
    "not-l2-learn-to-cpu", "not-l2-learn-discard", "not-l2-learn", "opri-cp-ipri-before-change",
    "opri-cp-opri-before-change", "ipri-cp-ipri-before-change", "ipri-cp-opri-before-change",
    "ocfi-cp-icfi-before-change", "ocfi-cp-ocfi-before-change", "icfi-cp-icfi-before-change",
    "icfi-cp-ocfi-before-change", "ovid-add", "ovid-replace", "ovid-del", "ivid-add", "ivid-replace", "ivid-del",
    "opri-replace", "ipri-replace", "ocfi-replace", "icfi-replace", "is-voice-vlan", "flow-id-assign",
    "redirect-port", "redirect-trunk", "drop", "dscp-tos-assign", "redirect-to-cpu", "cp-cause-id",
    "drop-cause-id", "multicast-id-assign", "cnt", "permit-forward",
};
constexpr const char *kMaclActions[] = {
    "fwd-update", "opcode-update", "qindx-update", "mirror-update", "mirror-dir-update", "sample-update",
    "meta-offset0", "meta-mask0", "meta-value0", "meta-offset1", "meta-mask1", "meta-value1",
};

constexpr ActionSetRow kIaclSet{"g_iacl_atolreef_template_action", kIaclActions, "iacl_tcam_iacl_ad",
                                kIaclActionFields, "valid"};
// Shorthands of the action rows: a field set to a constant, to the value
// cut by a mask, to the second value cut by a mask.
constexpr ActionOp _c(const char *field, u32 constant)
{
    return ActionOp{field, Src::Const, constant, 0, false};
}
constexpr ActionOp _v(const char *field, u32 mask)
{
    return ActionOp{field, Src::Value, mask, 0, false};
}
constexpr ActionOp _s(const char *field, u32 mask)
{
    return ActionOp{field, Src::Second, mask, 0, false};
}

// Source guard: fwdcmd 1 drop, 2 to the CPU.
constexpr ActionRow kIpsgActionFields[] = {
    {"cnt", {_c("staten", 1), _v("statid", 0xFFF)}},
    {"drop", {_c("fwdcmd", 1), {}}},
    {"redirect-to-cpu", {_c("fwdcmd", 2), {}}},
    {"cp-cause-id", {_v("causeid", 0xFFF), {}}},
    {"not-drop", {_c("denydrop", 1), {}}},
};
// Egress: fwdcmd as the ingress one; tagcmd 1 deletes one tag, 2 both;
// the cause and the new outer VID share a field (they exclude each other).
constexpr ActionRow kEaclActionFields[] = {
    {"mirror", {_c("mirroren", 1), _s("mirrorid", 3)}},
    {"sflow", {_c("sflowen", 1), _v("sflowid", 7)}},
    {"opri-replace", {_c("oprien", 1), _v("opri", 7)}},
    {"ipri-replace", {_c("iprien", 1), _v("ipri", 7)}},
    {"dscp-tos-mode", {_v("dscp_tos_mode", 3), {}}},
    {"dscp-tos-assign", {_v("dscp", 0xFF), {}}},
    {"color-assign", {_c("coloren", 1), _v("color", 3)}},
    {"opri-cp-ipri-before-change", {_c("opricpipri", 1), {}}},
    {"permit-forward", {_c("fwdcmd", 0), {}}},
    {"drop", {_c("fwdcmd", 1), {}}},
    {"copy-to-cpu", {_c("fwdcmd", 2), {}}},
    {"redirect-to-cpu", {_c("fwdcmd", 3), {}}},
    {"del-one-tag", {_c("tagcmd", 1), {}}},
    {"del-two-tags", {_c("tagcmd", 2), {}}},
    {"ovid-replace", {_c("ovlanen", 1), _v("causeid_ovlan", 0xFFF)}},
    {"ivid-replace", {_c("ivlanen", 1), _v("ivlan", 0xFFF)}},
    {"cnt", {_c("staten", 1), _v("statid", 0xFFF)}},
    {"policer", {_c("caren", 1), _v("carid", 0x7FF)}},
    {"cause-id", {_v("causeid_ovlan", 0x3FF), {}}},
};
// CPU ACL: one operation with its operand.
constexpr ActionRow kCpuaclActionFields[] = {
    {"permit-forward", {_c("op", 0), {}}},
    {"cause-id", {_c("op", 1), _v("opdata", 0x1FF)}},
    {"drop", {_c("op", 2), _v("opdata", 0x3FF)}},
    {"policer-disable", {_c("op", 3), {}}},
    {"policer", {_c("op", 4), _v("opdata", 0x7FF)}},
    {"cnt", {_c("staten", 1), _v("statid", 0xFFF)}},
};
// VLAN ACL: the three learning actions and the redirect to the CPU are
// bits of their own (no rule keeps them apart from each other or from the
// redirects); the copy commands 1 from the inner, 2 from the outer field;
// VID commands 1 add, 2 replace, 3 delete; fwdcmd 0 permit, 1 drop, 2 copy
// to the CPU, 4 port, 5 trunk, 6 multicast group.  The 8-bit dscp takes the
// value as the ingress set's does (a DSCP shifted left 2); the counter id
// has 5 bits.
constexpr ActionRow kVaclActionFields[] = {
    {"not-l2-learn", {_c("nolrn", 1), {}}},
    {"not-l2-learn-to-cpu", {_c("nolrntocpu", 1), {}}},
    {"not-l2-learn-discard", {_c("nolrndiscard", 1), {}}},
    {"opri-cp-ipri-before-change", {_c("opricp", 1), {}}},
    {"opri-cp-opri-before-change", {_c("opricp", 2), {}}},
    {"ipri-cp-ipri-before-change", {_c("ipricp", 1), {}}},
    {"ipri-cp-opri-before-change", {_c("ipricp", 2), {}}},
    {"ocfi-cp-icfi-before-change", {_c("ocficp", 1), {}}},
    {"ocfi-cp-ocfi-before-change", {_c("ocficp", 2), {}}},
    {"icfi-cp-icfi-before-change", {_c("icficp", 1), {}}},
    {"icfi-cp-ocfi-before-change", {_c("icficp", 2), {}}},
    {"ovid-add", {_c("ovlancmd", 1), _v("ovlan", 0xFFF)}},
    {"ovid-replace", {_c("ovlancmd", 2), _v("ovlan", 0xFFF)}},
    {"ovid-del", {_c("ovlancmd", 3), {}}},
    {"ivid-add", {_c("ivlancmd", 1), _v("ivlan", 0xFFF)}},
    {"ivid-replace", {_c("ivlancmd", 2), _v("ivlan", 0xFFF)}},
    {"ivid-del", {_c("ivlancmd", 3), {}}},
    {"opri-replace", {_c("oprien", 1), _v("opri", 7)}},
    {"ipri-replace", {_c("iprien", 1), _v("ipri", 7)}},
    {"ocfi-replace", {_c("ocfien", 1), _v("ocfi", 1)}},
    {"icfi-replace", {_c("icfien", 1), _v("icfi", 1)}},
    {"is-voice-vlan", {_c("voicevlan", 1), {}}},
    {"flow-id-assign", {_c("flowiden", 1), _v("flowid", 15)}},
    {"permit-forward", {_c("fwdcmd", 0), {}}},
    {"drop", {_c("fwdcmd", 1), {}}},
    {"drop-cause-id", {_c("fwdcmd", 1), _v("causeid", 0x1FF)}},
    {"cp-cause-id", {_c("fwdcmd", 2), _v("causeid", 0x1FF)}},
    {"redirect-to-cpu", {_c("tocpu", 1), {}}},
    {"redirect-port", {_c("fwdcmd", 4), _s("dest", 31)}},
    {"redirect-trunk", {_c("fwdcmd", 5), _v("dest", 7)}},
    {"multicast-id-assign", {_c("fwdcmd", 6), _v("dest", 0x3FF)}},
    {"dscp-tos-assign", {_c("dscpen", 1), _v("dscp", 0xFF)}},
    {"cnt", {_c("staten", 1), _v("statid", 0x1F)}},
};
// Egress metadata ACL: each update has its enable and its value.
constexpr ActionRow kMaclActionFields[] = {
    {"fwd-update", {_c("fwden", 1), _v("fwd", 7)}},
    {"opcode-update", {_c("opcodeen", 1), _v("opcode", 15)}},
    {"qindx-update", {_c("qindexen", 1), _v("qindex", 7)}},
    {"mirror-update", {_c("mirroren", 1), _v("mirrorid", 7)}},
    {"mirror-dir-update", {_c("mirrordiren", 1), _v("mirrordir", 1)}},
    {"sample-update", {_c("sampleen", 1), _v("sampleid", 15)}},
    {"meta-offset0", {_v("offset0", 0x3F), {}}},
    {"meta-mask0", {_v("mask0", 0xFFF), {}}},
    {"meta-value0", {_v("value0", 0xFFF), {}}},
    {"meta-offset1", {_v("offset1", 0x3F), {}}},
    {"meta-mask1", {_v("mask1", 0xFFF), {}}},
    {"meta-value1", {_v("value1", 0xFFF), {}}},
};

constexpr ActionSetRow kIpsgSet{"g_iacl_ipsg_atolreef_template_action", kIpsgActions, "iacl_tcam_iacl_ipsg_ad",
                                kIpsgActionFields, "valid"};
constexpr ActionSetRow kEaclSet{"g_eacl_atolreef_template_action", kEaclActions, "eacl_tcam_eacl_ad",
                                kEaclActionFields, "valid"};
constexpr ActionSetRow kCpuaclSet{"g_cpuacl_atolreef_template_action", kCpuaclActions, "cpacl_tcam_cpacl_ad",
                                  kCpuaclActionFields, "valid"};
constexpr ActionSetRow kVaclSet{"g_vacl_atolreef_template_action", kVaclActions, "ipro_tcam_vlanacl_ad",
                                kVaclActionFields, "valid"};
constexpr ActionSetRow kMaclSet{"g_macl_atolreef_template_action", kMaclActions, "epro_tcam_meta_acl_ad",
                                kMaclActionFields, "valid"};
constexpr const ActionSetRow *kSets[] = {&kIaclSet, &kIpsgSet, &kEaclSet, &kCpuaclSet, &kVaclSet, &kMaclSet};

// ---- templates -------------------------------------------------------------------------------

#include "dpl/reef/special/atolreef/dpl_atolreef_acl_template_items.inc"

constexpr Forced kArpType{"ethtype", 2054, 0xFFFF};
constexpr Forced kNone{nullptr, 0, 0};
constexpr TemplateRow kTemplates[] = {
    {0, CSL_TCAM_ID_IACL_TCAM_IACL_320_IPV4_KEY, true, &kIaclSet, kIacl320Ipv4Items, kNone},
    {1, CSL_TCAM_ID_IACL_TCAM_IACL_320_IPV6_SIP_KEY, true, &kIaclSet, kIacl320Ipv6SipItems, kNone},
    {2, CSL_TCAM_ID_IACL_TCAM_IACL_320_IPV6_DIP_KEY, true, &kIaclSet, kIacl320Ipv6DipItems, kNone},
    {4, CSL_TCAM_ID_IACL_TCAM_IACL_320_ARP_KEY, true, &kIaclSet, kIacl320ArpItems, kArpType},
    {5, CSL_TCAM_ID_IACL_TCAM_IACL_320_IPV6_ALLIP_PV_KEY, true, &kIaclSet, kIacl320Ipv6AllipPvItems, kNone},
    {7, CSL_TCAM_ID_IACL_TCAM_IACL_320_UDF_KEY, true, &kIaclSet, kIacl320UdfItems, kNone},
    {8, CSL_TCAM_ID_IACL_TCAM_IACL_UCL_320_IPV4_KEY, true, &kIaclSet, kIaclUcl320Ipv4Items, kNone},
    {9, CSL_TCAM_ID_IACL_TCAM_IACL_UCL_320_IPV6_KEY, true, &kIaclSet, kIaclUcl320Ipv6Items, kNone},
    {11, CSL_TCAM_ID_IACL_TCAM_IACL_IPSG_V4_KEY, false, &kIpsgSet, kIaclIpsgV4Items, kNone},
    {12, CSL_TCAM_ID_IACL_TCAM_IACL_IPSG_V6_KEY, false, &kIpsgSet, kIaclIpsgV6Items, kNone},
    {14, CSL_TCAM_ID_EACL_TCAM_EACL_320_IPV4_KEY, false, &kEaclSet, kEacl320Ipv4Items, kNone},
    {18, CSL_TCAM_ID_EACL_TCAM_EACL_320_IPV6_ALLIP_PV_KEY, false, &kEaclSet, kEacl320Ipv6AllipPvItems, kNone},
    {21, CSL_TCAM_ID_CPACL_TCAM_CPACL_320_NORMAL_KEY, false, &kCpuaclSet, kCpacl320NormalItems, kNone},
    {22, CSL_TCAM_ID_CPACL_TCAM_CPACL_320_IPV6_SIP_KEY, false, &kCpuaclSet, kCpacl320Ipv6SipItems, kNone},
    {23, CSL_TCAM_ID_CPACL_TCAM_CPACL_320_IPV6_DIP_KEY, false, &kCpuaclSet, kCpacl320Ipv6DipItems, kNone},
    {24, CSL_TCAM_ID_CPACL_TCAM_CPACL_320_IPV6_MAC_KEY, false, &kCpuaclSet, kCpacl320Ipv6MacItems, kNone},
    {25, CSL_TCAM_ID_CPACL_TCAM_CPACL_320_IPV6_SEC_KEY, false, &kCpuaclSet, kCpacl320Ipv6SecItems, kNone},
    {27, CSL_TCAM_ID_IPRO_TCAM_VLANACL_160_KEY, false, &kVaclSet, kVacl160Items, kNone},
    {28, CSL_TCAM_ID_IPRO_TCAM_VLANACL_320_KEY, false, &kVaclSet, kVacl320Items, kNone},
    {29, CSL_TCAM_ID_EPRO_TCAM_META_ACL_KEY, false, &kMaclSet, kMaclItems, kNone},
    {30, CSL_TCAM_ID_IACL_TCAM_IACL_160_IPV4_KEY, true, &kIaclSet, kIacl160Ipv4Items, kNone},
    {31, CSL_TCAM_ID_IACL_TCAM_IACL_160_L2_KEY, true, &kIaclSet, kIacl160L2Items, kNone},
};
constexpr u32 kTemplateCount = sizeof(kTemplates) / sizeof(kTemplates[0]);

// ---- kinds of group ---------------------------------------------------------------------------

constexpr u32 kFp0[] = {0, 1, 2, 4, 5, 7, 8, 9};
constexpr u32 kFp2[] = {12, 11};
constexpr u32 kFp4[] = {14, 18};
constexpr u32 kFp6[] = {21, 22, 23, 24, 25};
constexpr u32 kFp8[] = {27};
constexpr u32 kFp9[] = {28};
constexpr u32 kFp10[] = {29};
constexpr u32 kFp11[] = {31, 30};
constexpr FpRow kFpRows[DPL_ACL_FP_TYPE_COUNT] = {
    {0, &kIaclSet, kFp0},   {1, nullptr, {}},      {2, &kIpsgSet, kFp2},  {3, nullptr, {}},
    {4, &kEaclSet, kFp4},   {5, nullptr, {}},      {6, &kCpuaclSet, kFp6}, {7, nullptr, {}},
    {8, &kVaclSet, kFp8},   {9, &kVaclSet, kFp9},  {10, &kMaclSet, kFp10}, {11, &kIaclSet, kFp11},
};

// ---- conflicts ----------------------------------------------------------------------------------

constexpr const char *kTosProto[] = {"tos-tc", "protocol-nh"};
constexpr const char *kUdfDest[] = {"dst-port", "dst-tgid", "nexthop", "ecmp", "multicast-group-id"};
constexpr const char *kDests[] = {"dst-port", "dst-tgid", "nexthop", "multicast-group-id"};
constexpr const char *kUdfDestAll[] = {"tos-tc", "protocol-nh", "dst-port", "dst-tgid", "nexthop",
                                       "multicast-group-id"};
constexpr const char *kSrcs[] = {"src-port", "src-tgid"};
constexpr const char *kUdfMsg =
    "udf match item conflict, maybe in [tos-tc proto-nh dest-port dest-trunk dvp next-hop ecmp multicast]\n";
constexpr ConflictRow kUdfRule[] = {
    {kTosProto, kUdfDest, kUdfMsg},
    {kDests, kUdfDestAll, kUdfMsg},
};
constexpr ConflictRow kCommonRule[] = {
    {kSrcs, kSrcs, "common match item conflict, maybe in [port trunk-id svp stack-port]\n"},
    {kDests, kDests, "common match item conflict, maybe in [dest-port dest-trunk dvp next-hop ecmp multicast]\n"},
};
// Templates that take the UDF rule; the others the common rule.
constexpr u32 kUdfRuleTemplates[] = {0, 7, 8, 11, 12, 30};

constexpr const char *kIFwd[] = {"drop", "copy-to-cpu", "redirect-to-cpu", "permit-forward"};
constexpr const char *kIFwdAll[] = {"drop",    "copy-to-cpu", "redirect-to-cpu", "redirect-port",
                                    "redirect-trunk", "nexthop", "redirect-ecmp", "permit-forward"};
constexpr const char *kIRedir[] = {"redirect-port", "redirect-trunk", "nexthop", "redirect-ecmp"};
constexpr const char *kIRedirAll[] = {"drop",    "copy-to-cpu",  "redirect-to-cpu", "redirect-port", "redirect-trunk",
                                      "nexthop", "redirect-ecmp", "permit-forward",  "cause-id"};
constexpr const char *kICause[] = {"cause-id"};
constexpr const char *kIIpca[] = {"ipca-id-assign", "dp-id"};
constexpr const char *kICauseMsg =
    "iacl action conflict, maybe in [cause-id drop copy-to-cpu redirect-to-cpu dest-port dest-trunk nexthop ecmp]\n";
constexpr ConflictRow kIngressActions[] = {
    {kIFwd, kIFwdAll, "iacl action conflict, maybe in [drop copy-to-cpu redirect-to-cpu dest-port dest-trunk nexthop ecmp]\n"},
    {kIRedir, kIRedirAll, kICauseMsg},
    {kICause, kIRedir, kICauseMsg},
    {kIIpca, kIIpca, "iacl action conflict, maybe in [ipca-id dp-id]\n"},
};
constexpr const char *kGFwd[] = {"drop", "not-drop", "redirect-to-cpu"};
constexpr ConflictRow kIpsgActionRules[] = {
    {kGFwd, kGFwd, "ipsg action conflict, maybe in [drop redirect-to-cpu not-drop]\n"},
};
constexpr const char *kEFwd[] = {"drop", "copy-to-cpu", "redirect-to-cpu", "del-one-tag", "del-two-tags",
                                 "permit-forward"};
constexpr const char *kEFwdAll[] = {"drop",         "copy-to-cpu",    "redirect-to-cpu", "del-one-tag",
                                    "del-two-tags", "permit-forward", "ovid-replace",    "ivid-replace"};
constexpr const char *kERepl[] = {"ovid-replace", "ivid-replace"};
constexpr const char *kEReplAll[] = {"drop", "cause-id", "copy-to-cpu", "redirect-to-cpu", "del-one-tag",
                                     "del-two-tags"};
constexpr const char *kECause[] = {"cause-id"};
constexpr const char *kEReplMsg = "eacl action conflict, maybe in [cause-id drop redirect-to-cpu copy-to-cpu del-one-tag "
                                  "del-two-tags ovlan-replace ivlan-replace]\n";
constexpr ConflictRow kEgressActions[] = {
    {kEFwd, kEFwdAll,
     "eacl action conflict, maybe int [drop redirect-to-cpu copy-to-cpu del-one-tag del-two-tags ovlan-replace "
     "ivlan-replace]\n"},
    {kERepl, kEReplAll, kEReplMsg},
    {kECause, kERepl, kEReplMsg},
};
constexpr const char *kCAll[] = {"drop", "cause-id", "policer-disable", "policer", "permit-forward"};
constexpr ConflictRow kCpuActions[] = {
    {kCAll, kCAll, "cpacl action conflict, maybe in [drop cause-id car-disable car]\n"},
};
constexpr const char *kVOvid[] = {"ovid-add", "ovid-replace", "ovid-del"};
constexpr const char *kVIvid[] = {"ivid-add", "ivid-replace", "ivid-del"};
constexpr const char *kVOpri[] = {"opri-cp-ipri-after-change", "opri-cp-opri-after-change",
                                  "opri-cp-ipri-before-change", "opri-cp-opri-before-change"};
constexpr const char *kVIpri[] = {"ipri-cp-ipri-after-change", "ipri-cp-opri-after-change",
                                  "ipri-cp-ipri-before-change", "ipri-cp-opri-before-change"};
constexpr const char *kVOcfi[] = {"ocfi-cp-icfi-after-change", "ocfi-cp-ocfi-after-change",
                                  "ocfi-cp-icfi-before-change", "ocfi-cp-ocfi-before-change"};
constexpr const char *kVIcfi[] = {"icfi-cp-icfi-after-change", "icfi-cp-ocfi-after-change",
                                  "icfi-cp-icfi-before-change", "icfi-cp-ocfi-before-change"};
constexpr const char *kVDrop[] = {"drop", "drop-cause-id"};
constexpr const char *kVDropOthers[] = {"copy-to-cpu", "cp-cause-id", "redirect-port", "redirect-trunk",
                                        "multicast-id-assign"};
constexpr const char *kVCopy[] = {"copy-to-cpu", "cp-cause-id"};
constexpr const char *kVCopyOthers[] = {"drop", "drop-cause-id", "redirect-port", "redirect-trunk",
                                        "multicast-id-assign"};
constexpr const char *kVRedir[] = {"redirect-port", "redirect-trunk", "multicast-id-assign"};
constexpr const char *kVRedirOthers[] = {"redirect-port", "redirect-trunk", "multicast-id-assign", "drop",
                                         "drop-cause-id", "copy-to-cpu",   "cp-cause-id"};
constexpr const char *kVDropMsg =
    "vacl action conflict, maybe in [drop drop-cause-id copy-to-cpu cp-cause-id vrf-id dest-port dest-trunk multicast]\n";
constexpr ConflictRow kVlanActions[] = {
    {kVOvid, kVOvid, "vacl action conflict, maybe in [ovlan-add or ovlan-del ovlan-replace]\n"},
    {kVIvid, kVIvid, "vacl action conflict, maybe in [ivlan-add or ivlan-del ivlan-replace]\n"},
    {kVOpri, kVOpri,
     "vacl action conflict, maybe in [opri-cp-ipri-after-change opri-cp-opri-after-change opri-cp-ipri-before-change "
     "opri-cp-opri-before-change]\n"},
    {kVIpri, kVIpri,
     "vacl action conflict, maybe in [ipri-cp-ipri-after-change ipri-cp-opri-after-change ipri-cp-ipri-before-change "
     "ipri-cp-opri-before-change]\n"},
    {kVOcfi, kVOcfi,
     "vacl action conflict, maybe in [ocfi-cp-icfi-after-change ocfi-cp-ocfi-after-change ocfi-cp-icfi-before-change "
     "ocfi-cp-ocfi-before-change]\n"},
    {kVIcfi, kVIcfi,
     "vacl action conflict, maybe in [icfi-cp-icfi-after-change icfi-cp-ocfi-after-change icfi-cp-icfi-before-change "
     "icfi-cp-ocfi-before-change]\n"},
    {kVDrop, kVDropOthers, kVDropMsg},
    {kVCopy, kVCopyOthers,
     "vacl action conflict, maybe in [drop drop-cause-id or copy-to-cpu cp-cause-id vrf-id dest-port dest-trunk "
     "multicast]\n"},
    {kVRedir, kVRedirOthers, kVDropMsg},
};

// The action rules of a kind of group.
std::span<const ConflictRow> _action_rules(u32 fp_type)
{
    switch (fp_type) {
    case 0:
    case 1:
    case 11:
        return kIngressActions;
    case 2:
        return kIpsgActionRules;
    case 4:
    case 5:
        return kEgressActions;
    case 6:
    case 7:
        return kCpuActions;
    case 8:
    case 9:
        return kVlanActions;
    default:
        return {};
    }
}

// ---- the chip's resolved tables ---------------------------------------------------------------

constexpr u32 kItemsMax = 64;
constexpr u32 kActionsMax = 40;

struct Field {
    u16 start = 0;
    u16 width = 0; // 0: none
};

struct RItem {
    u32 match_id;
    Field field;
    Field side;
    u8 side_value, side_mask;
};

struct RTemplate {
    const TemplateRow *row;
    const cib_tab_info *key_tab;
    const cib_tab_info *ad_tab;
    Field tid, subtid;
    u32 subtid_value, tid_value;
    Field forced; // a field the template always sets
    u32 forced_value, forced_mask;
    u32 item_count;
    RItem items[kItemsMax];
    u32 set; // index into the sets
};

struct ROp {
    Field field;
    Src src;
    u32 and_mask, add;
    bool or_in;
};
struct RAction {
    u32 action_id;
    u32 op_count;
    ROp ops[2];
};
struct RSet {
    u32 count;
    u32 ids[kActionsMax];
    u32 built; // actions with a field row
    RAction actions[kActionsMax];
    Field valid;
};

struct RRule {
    u32 news[DPL_ACL_MATCH_WORDS];
    u32 others[DPL_ACL_MATCH_WORDS];
    const char *message;
};

struct ChipTables {
    RSet sets[sizeof(kSets) / sizeof(kSets[0])];
    RTemplate templates[kTemplateCount];
    RRule udf_rule[sizeof(kUdfRule) / sizeof(kUdfRule[0])];
    RRule common_rule[sizeof(kCommonRule) / sizeof(kCommonRule[0])];
    RRule action_rules[DPL_ACL_FP_TYPE_COUNT][9];
};

ChipTables *g_acl_atolreef_template[SHR_MAX_CHIPS];

i32 _bad(u32 chip_id, const char *what, const char *name)
{
    SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "acl template: unknown %s %s\n", what, name != nullptr ? name : "(null)");
    return SHR_E_CONFIG;
}

i32 _match_id(u32 chip_id, const char *name, u32 *id)
{
    *id = dpl_reef_acl_name_find(g_entry_match_id_name, ACL_MATCH_NULL, name);
    return *id < ACL_MATCH_NULL ? 0 : _bad(chip_id, "match item", name);
}

i32 _action_id(u32 chip_id, const char *name, u32 *id)
{
    *id = dpl_reef_acl_name_find(g_entry_action_id_name, ACL_ACTION_NULL, name);
    return *id < ACL_ACTION_NULL ? 0 : _bad(chip_id, "action", name);
}

// A field of a catalogue table by name.
i32 _field(u32 chip_id, const cib_tab_info *tab, const char *name, Field *out)
{
    for (u32 i = 0; tab != nullptr && name != nullptr && i < tab->modes[0].field_count; i++) {
        const cib_field_info &f = tab->modes[0].fields[i];
        if (strcmp(f.name, name) == 0) {
            *out = Field{f.low_bit, f.width};
            return 0;
        }
    }
    return _bad(chip_id, "field", name);
}

// `lo` and `width` of a row inside its field.
Field _part(Field f, u8 lo, u8 width)
{
    const u16 rest = lo < f.width ? static_cast<u16>(f.width - lo) : 0;
    return Field{static_cast<u16>(f.start + lo), static_cast<u16>(width == 0 || width > rest ? rest : width)};
}

i32 _names_bitmap(u32 chip_id, std::span<const char *const> names, bool actions, u32 *bitmap)
{
    for (const char *n : names) {
        u32 id = 0;
        const i32 rc = actions ? _action_id(chip_id, n, &id) : _match_id(chip_id, n, &id);
        if (rc != 0) {
            return rc;
        }
        dpl_acl_bit_set(bitmap, id);
    }
    return 0;
}

i32 _rules_resolve(u32 chip_id, std::span<const ConflictRow> rows, bool actions, RRule *out)
{
    for (size_t i = 0; i < rows.size(); i++) {
        out[i] = RRule{};
        out[i].message = rows[i].message;
        i32 rc = _names_bitmap(chip_id, rows[i].news, actions, out[i].news);
        rc = rc != 0 ? rc : _names_bitmap(chip_id, rows[i].others, actions, out[i].others);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}

i32 _set_resolve(u32 chip_id, const ActionSetRow &row, RSet *out)
{
    *out = RSet{};
    const cib_tab_info *ad_tab = nullptr;
    u32 tab_id = 0, instance = 0;
    if (!row.fields.empty() && csl_reef_tab_info_get_by_name(chip_id, row.ad_table, &tab_id, &ad_tab, &instance) != 0) {
        return _bad(chip_id, "action table", row.ad_table);
    }
    for (const char *n : row.actions) {
        const i32 rc = _action_id(chip_id, n, &out->ids[out->count]);
        if (rc != 0) {
            return rc;
        }
        out->count++;
    }
    if (row.fields.empty()) {
        return 0;
    }
    if (row.valid != nullptr) {
        const i32 rc = _field(chip_id, ad_tab, row.valid, &out->valid);
        if (rc != 0) {
            return rc;
        }
    }
    for (const ActionRow &a : row.fields) {
        RAction &r = out->actions[out->built];
        i32 rc = _action_id(chip_id, a.action, &r.action_id);
        for (const ActionOp &op : a.ops) {
            if (rc != 0 || op.field == nullptr) {
                continue;
            }
            ROp &o = r.ops[r.op_count++];
            o = ROp{{}, op.src, op.and_mask, op.add, op.or_in};
            rc = _field(chip_id, ad_tab, op.field, &o.field);
        }
        if (rc != 0) {
            return rc;
        }
        out->built++;
    }
    return 0;
}

i32 _template_resolve(u32 chip_id, const TemplateRow &row, RTemplate *out)
{
    *out = RTemplate{};
    out->row = &row;
    const csl_tcam_tab_name_id &reg = g_tcam_tab_name_id[row.tcam_id];
    const csl_tcam_tid_subid &tags = g_tcam_tid_subid[row.tcam_id];
    out->key_tab = csl_reef_tab_info_get(chip_id, reg.key_tab_id);
    out->ad_tab = csl_reef_tab_info_get(chip_id, reg.ad_tab_id);
    if (reg.key_tab_id == CSL_TCAM_NO_TAB || out->key_tab == nullptr || out->ad_tab == nullptr) {
        return _bad(chip_id, "tcam table", reg.name);
    }
    out->tid = Field{tags.tid_start, tags.tid_width};
    out->subtid = Field{tags.subid_start, tags.subid_width};
    out->tid_value = tags.tid_value;
    out->subtid_value = tags.subid_value;
    if (row.forced.field != nullptr) {
        const i32 rc = _field(chip_id, out->key_tab, row.forced.field, &out->forced);
        if (rc != 0) {
            return rc;
        }
        out->forced_value = row.forced.value;
        out->forced_mask = row.forced.mask;
    }
    for (const ItemRow &it : row.items) {
        if (out->item_count == kItemsMax) {
            return _bad(chip_id, "item beyond the room of template", g_template_type_id_name[row.template_id]);
        }
        RItem &r = out->items[out->item_count];
        r = RItem{};
        Field f;
        i32 rc = _match_id(chip_id, it.match, &r.match_id);
        rc = rc != 0 ? rc : _field(chip_id, out->key_tab, it.field, &f);
        if (rc == 0 && it.side != nullptr) {
            rc = _field(chip_id, out->key_tab, it.side, &r.side);
        }
        if (rc != 0) {
            return rc;
        }
        r.field = _part(f, it.lo, it.width);
        r.side_value = it.side_value;
        r.side_mask = it.side_mask;
        out->item_count++;
    }
    for (u32 s = 0; s < sizeof(kSets) / sizeof(kSets[0]); s++) {
        if (kSets[s] == row.actions) {
            out->set = s;
        }
    }
    return 0;
}

const ChipTables *_tables(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_acl_atolreef_template[chip_id] : nullptr;
}

const RTemplate *_template(u32 chip_id, u32 template_id)
{
    const ChipTables *t = _tables(chip_id);
    for (u32 i = 0; t != nullptr && i < kTemplateCount; i++) {
        if (t->templates[i].row->template_id == template_id) {
            return &t->templates[i];
        }
    }
    return nullptr;
}

void _put(u8 *data, Field f, u64 value)
{
    if (f.width != 0) {
        const u64 cut = f.width >= 64 ? value : value & ((u64{1} << f.width) - 1);
        shr_field64_set_to_data(data, cut, f.start, f.width);
    }
}

u64 _get(const u8 *data, Field f)
{
    u64 v = 0;
    if (f.width != 0) {
        shr_field64_get_from_data(data, &v, f.start, f.width);
    }
    return v;
}

i32 _conflict(u32 chip_id, std::span<const RRule> rules, const u32 *set, u32 words, u32 id)
{
    u32 copy[DPL_ACL_MATCH_WORDS] = {};
    memcpy(copy, set, words * sizeof(u32));
    dpl_acl_bit_clear(copy, id);
    for (const RRule &r : rules) {
        if (r.message == nullptr || !dpl_acl_bit_get(r.news, id)) {
            continue;
        }
        for (u32 w = 0; w < words; w++) {
            if (copy[w] & r.others[w]) {
                SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "%s", r.message);
                return SHR_E_CONFIG;
            }
        }
    }
    return 0;
}

} // namespace

extern "C" {

u32 _dpl_atolreef_acl_template_iacl_tid_select_based_on_mode(u32 based_mode)
{
    return based_mode == ACL_BASED_PORT ? 4u : based_mode == ACL_BASED_VLAN ? 10u : 11u;
}

i32 dpl_atolreef_acl_template_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (g_acl_atolreef_template[chip_id] != nullptr) {
        return 0;
    }
    auto *t = static_cast<ChipTables *>(xsal_malloc(sizeof(ChipTables), "acl_template", SHR_MOD_ACL));
    if (t == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "acl template table malloc fail\n");
        return SHR_E_FAIL;
    }
    memset(static_cast<void *>(t), 0, sizeof(ChipTables));
    i32 rc = 0;
    for (u32 s = 0; rc == 0 && s < sizeof(kSets) / sizeof(kSets[0]); s++) {
        rc = _set_resolve(chip_id, *kSets[s], &t->sets[s]);
    }
    for (u32 i = 0; rc == 0 && i < kTemplateCount; i++) {
        rc = _template_resolve(chip_id, kTemplates[i], &t->templates[i]);
    }
    rc = rc != 0 ? rc : _rules_resolve(chip_id, kUdfRule, false, t->udf_rule);
    rc = rc != 0 ? rc : _rules_resolve(chip_id, kCommonRule, false, t->common_rule);
    for (u32 fp = 0; rc == 0 && fp < DPL_ACL_FP_TYPE_COUNT; fp++) {
        rc = _rules_resolve(chip_id, _action_rules(fp), true, t->action_rules[fp]);
    }
    if (rc != 0) {
        xsal_mem_free(t);
        return rc;
    }
    g_acl_atolreef_template[chip_id] = t;
    return 0;
}

i32 dpl_atolreef_acl_template_deinit(u32 chip_id)
{
    if (chip_id < SHR_MAX_CHIPS) {
        xsal_mem_free(g_acl_atolreef_template[chip_id]);
        g_acl_atolreef_template[chip_id] = nullptr;
    }
    return 0;
}

i32 dpl_atolreef_acl_template_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap)
{
    if (bitmap == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (fp_type >= DPL_ACL_FP_TYPE_COUNT) {
        return SHR_E_PARAM;
    }
    for (u32 id : kFpRows[fp_type].templates) {
        if (_template(chip_id, id) != nullptr) {
            *bitmap |= 1u << id;
        }
    }
    return 0;
}

i32 dpl_atolreef_acl_template_action_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap)
{
    const ChipTables *t = _tables(chip_id);
    if (bitmap == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (fp_type >= DPL_ACL_FP_TYPE_COUNT || t == nullptr) {
        return SHR_E_PARAM;
    }
    for (u32 s = 0; s < sizeof(kSets) / sizeof(kSets[0]); s++) {
        if (kSets[s] != kFpRows[fp_type].actions) {
            continue;
        }
        for (u32 i = 0; i < t->sets[s].count; i++) {
            dpl_acl_bit_set(bitmap, t->sets[s].ids[i]);
        }
    }
    return 0;
}

i32 dpl_atolreef_acl_template_match_type_support_gen(u32 chip_id, u32 template_id, u32 *bitmap)
{
    if (bitmap == nullptr) {
        return SHR_E_NULL_PTR;
    }
    const RTemplate *t = _template(chip_id, template_id);
    if (t == nullptr) {
        return SHR_E_PARAM;
    }
    for (u32 i = 0; i < t->item_count; i++) {
        dpl_acl_bit_set(bitmap, t->items[i].match_id);
    }
    return 0;
}

i32 dpl_atolreef_acl_template_match_type_conflict_check(u32 chip_id, u32 template_id, const u32 *match_set,
                                                        u32 match_id)
{
    const ChipTables *t = _tables(chip_id);
    if (match_set == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (t == nullptr || match_id >= ACL_MATCH_NULL) {
        return SHR_E_CONFIG;
    }
    bool udf = false;
    for (u32 id : kUdfRuleTemplates) {
        udf |= id == template_id;
    }
    return udf ? _conflict(chip_id, t->udf_rule, match_set, DPL_ACL_MATCH_WORDS, match_id)
               : _conflict(chip_id, t->common_rule, match_set, DPL_ACL_MATCH_WORDS, match_id);
}

i32 dpl_atolreef_acl_template_action_conflict_check(u32 chip_id, u32 fp_type, const u32 *action_set, u32 action_id)
{
    const ChipTables *t = _tables(chip_id);
    if (action_set == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (t == nullptr || action_id >= ACL_ACTION_NULL) {
        return SHR_E_CONFIG;
    }
    if (fp_type >= DPL_ACL_FP_TYPE_COUNT) {
        return 0;
    }
    return _conflict(chip_id, t->action_rules[fp_type], action_set, DPL_ACL_ACTION_WORDS, action_id);
}

i32 dpl_atolreef_acl_template_tcam_id_get(u32 chip_id, u32 template_id, u32 *tcam_id)
{
    const RTemplate *t = _template(chip_id, template_id);
    if (tcam_id == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (t == nullptr) {
        return SHR_E_CONFIG;
    }
    *tcam_id = t->row->tcam_id;
    return 0;
}

// The key and mask of the entry's items in its template's order after
// the type tags, and its actions in its set's order after the valid bit.
// A field no item names stays 0 in key and mask: it takes no part in the
// match.
i32 dpl_atolreef_acl_template_entry_gen(u32 chip_id, const dpl_acl_entry *entry, dpl_acl_image *image)
{
    const ChipTables *tables = _tables(chip_id);
    const RTemplate *t = entry != nullptr ? _template(chip_id, entry->template_id) : nullptr;
    if (image == nullptr || entry == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (t == nullptr || tables == nullptr) {
        return SHR_E_CONFIG;
    }
    const RSet &set = tables->sets[t->set];
    if (set.built == 0) {
        return SHR_E_CONFIG;
    }
    memset(image, 0, sizeof(*image));
    const u32 tid = t->row->tid_by_base ? _dpl_atolreef_acl_template_iacl_tid_select_based_on_mode(entry->based_mode)
                                        : t->tid_value;
    _put(image->key, t->tid, tid);
    _put(image->mask, t->tid, 0xF);
    _put(image->key, t->subtid, t->subtid_value);
    _put(image->mask, t->subtid, 0xF);
    for (u32 i = 0; i < t->item_count; i++) {
        const RItem &r = t->items[i];
        const acl_item *item = entry->match[r.match_id];
        if (!dpl_acl_bit_get(entry->match_set, r.match_id) || item == nullptr) {
            continue;
        }
        if (r.side.width != 0) {
            _put(image->key, r.side, r.side_value);
            _put(image->mask, r.side, r.side_mask);
        }
        _put(image->key, r.field, item->value);
        _put(image->mask, r.field, item->mask);
    }
    _put(image->key, t->forced, t->forced_value);
    _put(image->mask, t->forced, t->forced_mask);
    _put(image->ad, set.valid, 1);
    for (u32 i = 0; i < set.built; i++) {
        const RAction &a = set.actions[i];
        const acl_item *item = entry->action[a.action_id];
        if (!dpl_acl_bit_get(entry->action_set, a.action_id) || item == nullptr) {
            continue;
        }
        for (u32 k = 0; k < a.op_count; k++) {
            const ROp &op = a.ops[k];
            const u32 src = op.src == Src::Const ? op.and_mask : op.src == Src::Value ? item->value : item->mask;
            u64 v = op.src == Src::Const ? src : (src & op.and_mask) + op.add;
            if (op.or_in) {
                v |= _get(image->ad, op.field);
            }
            _put(image->ad, op.field, v);
        }
    }
    return 0;
}

i32 dpl_atolreef_acl_template_special_register(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    reef_acl_special[chip_id] = reef_acl_special_t{
        dpl_atolreef_acl_template_match_type_conflict_check,
        dpl_atolreef_acl_template_action_conflict_check,
        dpl_atolreef_acl_template_match_type_support_gen,
        dpl_atolreef_acl_template_support_gen,
        dpl_atolreef_acl_template_action_support_gen,
        dpl_atolreef_acl_template_init,
        dpl_atolreef_acl_template_deinit,
        dpl_atolreef_acl_template_tcam_id_get,
        dpl_atolreef_acl_template_entry_gen,
    };
    return 0;
}

} // extern "C"
