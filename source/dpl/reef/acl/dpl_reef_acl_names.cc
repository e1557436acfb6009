// The words of the ACL: match ids, actions and templates, by id.  The
// shell's commands take them as they stand, and the tables give them
// their ids.
#include <cstring>

#include "dpl/reef/acl/dpl_reef_acl.h"

extern "C" {

const char *const g_entry_match_id_name[ACL_MATCH_ID_COUNT] = {
    "ip-type", "l3-pkt-type", "tcp-flag", "ethtype", "opri", "ocfi", "ovid", "ipri", "icfi", "ivid",
    "icmp-type", "icmp-code", "l4-src-port", "l4-dst-port", "reuse-l4sport-icmp-igmp",
    "reuse-l4dport-arpopcode", "dmac-31-0", "dmac-31-10", "dmac-47-32", "smac-31-0", "smac-47-32", "drop",
    "l2-dst-hit", "l3-dst-hit", "lookup-status", "flowid", "ports-31-0", "ports-63-32", "ports-57-32",
    "src-port", "src-is-trunk", "src-tgid", "svp-valid", "svp", "stack-port", "llc", "llc-header", "snap",
    "snap-header", "tag-num", "tag-status", "local-mac-hit", "tunnel-term", "ttl-type", "ttl", "gid",
    "tos-tc", "protocol-nh", "dst-port", "dst-is-trunk", "dst-tgid", "dvp", "dvp-valid", "nexthop", "ecmp",
    "multicast-group-id", "ip-frag-offset-flag", "ip-frag-info", "key-type", "ipv4-bit2-flag", "vrf-id",
    "sip", "sip-31-0", "sip-63-32", "sip-95-64", "sip-127-96", "dip", "dip-31-0", "dip-63-32", "dip-95-64",
    "dip-127-96", "arp-smac-31-0", "arp-smac-47-32", "arp-dmac-31-0", "arp-dmac-47-32", "arp-sip", "arp-dip",
    "icmpv6-smac-31-0", "icmpv6-smac-47-32", "icmpv6-dmac-31-0", "icmpv6-dmac-47-32", "nd-target-addr-31-0",
    "nd-target-addr-63-32", "nd-target-addr-95-64", "nd-target-addr-127-96", "l3-protocol-encoded",
    "udf-chunk0", "udf-chunk1", "udf-chunk2", "udf-chunk3", "udf-chunk4", "udf-chunk5", "udf-chunk6",
    "udf-chunk7", "udf-chunk8", "udf-chunk9", "udf-chunk10", "udf-chunk11", "udf-chunk12", "udf-chunk13",
    "dst-gid", "src-gid", "port-type", "ipv6-first-nh", "ipv6-first-subcode", "tunnel-ini", "cpacl-template",
    "cpu-cause-id", "color", "src-l2-classid", "src-l3-classid", "src-vfp-classid", "dst-l2-classid",
    "dst-l3-classid", "port-classid", "svp-l3-iif-classid", "vlan-classid", "tunnel-class-id", "l4-valid",
    "tpid-encode", "tunnel-type", "l3-routeable", "int-pri", "hop-limit", "range-check", "packet-resolution",
    "ip-info", "ipv6-flow-label", "egr-vxlt-hit", "mirror-dir", "eoh-pkt", "cpu-cos", "redirect-to-cpu",
    "src-modid", "dst-modid", "d-type", "d-filed", "s-filed", "svp-l3-iif", "fwd-type", "ipv6-sel-ip",
    "meta-pathlab", "meta-fwd", "meta-fwd-drop", "meta-fdir", "meta-buf-handle", "meta-trace-en",
    "meta-ipca-en", "meta-ipca-clolr", "meta-fwdtype", "meta-eth-mode", "meta-sp-rsm", "meta-tti-mode",
    "meta-dmac-type", "meta-unknown", "meta-pkt-type", "meta-causeid", "meta-sp", "meta-sb", "meta-srcintf",
    "meta-decap", "meta-dstintf", "meta-vsi-id", "meta-srv6-l3gate", "meta-encap", "meta-tag-num-tnl",
    "meta-new-tag-num", "meta-new-tag-num-tnl", "meta-ovlan-tnl", "meta-mirror-dir", "meta-mirror-en",
    "meta-mirror-id", "meta-sample-en", "meta-sample-id", "meta-aib1", "meta-smac2-index", "meta-hash-stk",
    "meta-cp2cp", "meta-hsg", "meta-qindex", "meta-color", "meta-srv-vld", "meta-sp-channel", "meta-mac-swap",
    "meta-remark", "meta-ttl-src", "meta-ttl-opcode", "meta-opri-tnl", "meta-ocfi-tnl", "meta-tp",
    "meta-rspan-en", "meta-len-change", "meta-dp-cp-qindex-en", "meta-dp-cp-qindex", "meta-smac1-index",
    "meta-tpid-index", "meta-opcode", "meta-decap-en", "meta-weight", "meta-stk-trunk", "meta-mc-flag",
    "meta-direct-attach", "meta-arp-miss", "meta-bc-ctrl", "meta-cp2np", "meta-hash0", "meta-hash1",
    "meta-mirror-sample-info", "meta-pri-cfi-remark", "meta-cp-qindex-en", "meta-cp-qindex",
    "meta-src-port-carid", "meta-src-port-caren", "meta-src-port-cntid", "meta-src-port-cnten",
    "meta-vlan-cntid", "meta-vlan-cnten", "meta-first-policy-acltype", "meta-acl-pri", "meta-phb-struct",
    "meta-cpcausecar-dis", "meta-nhp-index", "meta-arl-ovlan", "null",
};

const char *const g_entry_action_id_name[ACL_ACTION_ID_COUNT] = {
    "mirror", "mirror-disable", "sflow", "ipca-learn-en", "ipca-id-assign", "dp-id", "dscp-tos-mode",
    "dscp-tos-assign", "g-dscp-assign", "y-dscp-assign", "r-dscp-assign", "dscp-not-change", "g-tos-assign",
    "g-tos-dscp-not-change", "y-dscp-not-assign", "r-dscp-not-assign", "precedence-assign",
    "g-drop-precedence", "y-drop-precedence", "r-drop-precedence", "g-copy-pri-to-tos", "int-pri-assign",
    "cpu-cos-assign", "color-assign", "drop", "not-drop", "g-not-drop", "y-not-drop", "r-not-drop",
    "copy-to-cpu", "not-copy-to-cpu", "g-copy-to-cpu", "y-copy-to-cpu", "r-copy-to-cpu", "g-not-copy-to-cpu",
    "y-not-copy-to-cpu", "r-not-copy-to-cpu", "redirect-to-cpu", "g-redirect-to-cpu", "y-redirect-to-cpu",
    "r-redirect-to-cpu", "g-not-forward2cpu", "y-not-forward2cpu", "r-not-forward2cpu", "redirect-port",
    "redirect-trunk", "nexthop", "nexthop-ecmp-low-pri", "nexthop-ecmp-l3uc", "cnt", "policer",
    "policer-disable", "trace-id", "mac-swap", "cause-id", "cp-cause-id", "drop-cause-id", "ipca-type",
    "not-l2-learn-to-cpu", "not-l2-learn-discard", "not-l2-learn", "opri-cpmode-en", "ocfi-cpmode-en",
    "ipri-cpmode-en", "icfi-cpmode-en", "is-voice-vlan", "flow-id-assign", "opcode-update", "ad-act-pri",
    "vrf-assign", "multicast-id-assign", "pritag-del-mode", "del-one-tag", "del-two-tags", "fwd-update",
    "tti-mode", "qindx-update", "mirror-update", "mirror-dir-update", "sample-update", "meta-offset0",
    "meta-mask0", "meta-value0", "meta-offset1", "meta-mask1", "meta-value1", "l2-ports-add", "l3-ports-add",
    "l2-ports-mask", "l3-ports-mask", "redirect-ecmp", "redirect-bcast-bitmp", "redirect-l2mc",
    "redirect-l3mc", "cos-assign", "g-cos-assign", "y-cos-assign", "r-cos-assign", "g-pkt-pri-assign",
    "y-pkt-pri-assign", "r-pkt-pri-assign", "classid-assign", "l3-iif-assign", "svp-assign", "not-change-ttl",
    "spid-assign", "g-copy-pkt-pri-from-tos", "y-copy-pkt-pri-from-tos", "r-copy-pkt-pri-from-tos",
    "tpid-replace", "ecmp-ptr", "fpe-instruction", "g-fpe-instruction", "y-fpe-instruction",
    "r-fpe-instruction", "vcap-lb-lable", "vlan-check-disable", "ovid-add", "ovid-replace", "ovid-del",
    "ovid-cp-from-ivid", "ivid-add", "ivid-replace", "ivid-del", "ivid-cp-from-ovid", "opri-replace",
    "opri-cp-ipri-after-change", "opri-cp-opri-after-change", "opri-cp-ipri-before-change",
    "opri-cp-opri-before-change", "ipri-replace", "ipri-cp-ipri-after-change", "ipri-cp-opri-after-change",
    "ipri-cp-ipri-before-change", "ipri-cp-opri-before-change", "ocfi-replace", "ocfi-cp-icfi-after-change",
    "ocfi-cp-ocfi-after-change", "ocfi-cp-icfi-before-change", "ocfi-cp-ocfi-before-change", "icfi-replace",
    "icfi-cp-icfi-after-change", "icfi-cp-ocfi-after-change", "icfi-cp-icfi-before-change",
    "icfi-cp-ocfi-before-change", "g-pkt-pri-cp-from-ipri", "y-pkt-pri-cp-from-ipri",
    "r-pkt-pri-cp-from-ipri", "g-pkt-pri-not-change", "y-pkt-pri-not-change", "r-pkt-pri-not-change",
    "permit-forward", "null",
};

const char *const g_template_type_id_name[ACL_TEMPLATE_COUNT] = {
    "icap-ipv4", "icap-sipv6", "icap-dipv6", "icap-ipv6-mac", "icap-arp", "icap-all-ipv6-port",
    "icap-ipv6-ip-svp", "icap-udf", "icap-ucl-ipv4", "icap-ucl-ipv6", "icap-ipv6-exp", "icap-ipsg-v4",
    "icap-ipsg-v6", "icap-mff", "ecap-ipv4", "ecap-sipv6", "ecap-dipv6", "ecap-ipv6-mac", "ecap-all-ipv6-port",
    "ecap-ipv6-ip-dvp", "ecap-ipv6-exp", "cpucap-normal", "cpucap-sipv6", "cpucap-dipv6", "cpucap-ipv6-mac",
    "cpucap-ipv6-sec", "cpucap-ipv6-exp", "vcap-width-single", "vcap-width-double", "mcap",
    "icap-width-single-ipv4", "icap-width-single-l2", "null",
};

u32 dpl_reef_acl_name_find(const char *const *names, u32 count, const char *name)
{
    for (u32 i = 0; name != nullptr && i < count; i++) {
        if (strcmp(names[i], name) == 0) {
            return i;
        }
    }
    return count;
}

} // extern "C"
