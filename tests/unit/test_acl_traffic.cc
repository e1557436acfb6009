// ACLs filter traffic end to end: entries made and installed through
// acl_api_* only, frames injected into the model and read where they
// leave.  VLAN 1 holds ports 0 to 27 untagged; host B sits on port 2.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "support/vlan_ports.h"
#include "support/acl_fixture.h"
#include "support/acl_frames.h"
#include "tide_int.h"

using namespace tide::test;

namespace {

constexpr uint32_t kIn = 1, kHostPort = 2, kOther = 3, kCpu = 31;
constexpr uint16_t kCauseAclDrop = 600;

class AclTraffic : public AclChip {
protected:
    AclTraffic() : AclChip(false) {}
    void SetUp() override
    {
        AclChip::SetUp();
        ASSERT_EQ(tide::test::vlan_ports(0, 1, kFrontPorts, kFrontPorts), 0);
        ASSERT_EQ(tide::test::vlan_ports(0, 2, kFrontPorts, 0), 0);
        l2_static(kHostB, 1, kHostPort);
        l2_static(kHostB, 2, kHostPort);
        for (uint32_t port : {kIn, kOther}) {
            acl_control c{ACL_PORT_ICAP_EN, 1};
            ASSERT_EQ(acl_api_port_control_set(0, port, &c), 0);
        }
    }

    // A lookup of the ingress stage: `base` global or port `port`.
    void lookup(uint32_t base, uint32_t port, uint32_t index, uint32_t type, uint32_t pri)
    {
        acl_lookup l{ACL_STAGE_ICAP, base, port, index, type, pri};
        ASSERT_EQ(acl_api_template_config_set(0, &l), 0);
    }

    // An entry with items and actions, installed.
    uint32_t rule(uint32_t g, uint32_t priority, uint32_t template_id, uint32_t based,
                  std::initializer_list<acl_item> items, std::initializer_list<acl_item> actions)
    {
        uint32_t id = 0;
        EXPECT_EQ(acl_api_entry_create(0, 0, priority, g, &id), 0);
        EXPECT_EQ(acl_api_entry_template_set(0, id, template_id), 0);
        EXPECT_EQ(acl_api_entry_based_set(0, id, based), 0);
        for (acl_item it : items) {
            EXPECT_EQ(acl_api_entry_match_field_set(0, id, &it), 0) << "item " << it.id;
        }
        for (acl_item a : actions) {
            EXPECT_EQ(acl_api_entry_action_set(0, id, &a), 0) << "action " << a.id;
        }
        EXPECT_EQ(acl_api_entry_install(0, id), 0);
        return id;
    }
};

// A drop rule on destination MAC and VLAN, bound to port 1 by the port's
// lookup: it stops exactly the matching frames entering there.
TEST_F(AclTraffic, ADropRuleOnAPortStopsExactlyItsFramesAndAPermitAboveLetsOneHostThrough)
{
    const uint32_t g = group();
    lookup(ACL_BASE_PORT, kIn, 0, kTypeL2, 1);
    const uint32_t drop = rule(g, 20, kL2Template, ACL_BASED_PORT,
                               {{kMatchDmacLow, static_cast<uint32_t>(kHostB), ~0u},
                                {kMatchDmacHigh, static_cast<uint32_t>(kHostB >> 32), 0xFFFF},
                                {kMatchOvid, 1, 0xFFF}},
                               {{kActionDrop, 0, 0}});
    Traffic t(0);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA)), Verdict::drop(kCauseAclDrop));
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB ^ 0x100, kHostA)).ports, kFrontPorts & ~(1u << kIn)); // floods
    EXPECT_EQ(t.send(kOther, l2_frame(kHostB, kHostC)).ports, 1u << kHostPort);             // not bound there
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA, 2)).ports, 1u << kHostPort);             // another VLAN
    // A permit of higher priority (smaller value) for host A only.
    const uint32_t permit = rule(g, 10, kL2Template, ACL_BASED_PORT,
                                 {{kMatchSmacLow, static_cast<uint32_t>(kHostA), ~0u}}, {{kActionPermit, 0, 0}});
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA)).ports, 1u << kHostPort);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA ^ 0x100)), Verdict::drop(kCauseAclDrop));
    // Uninstalling both restores forwarding.
    ASSERT_EQ(acl_api_entry_uninstall(0, permit), 0);
    ASSERT_EQ(acl_api_entry_uninstall(0, drop), 0);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA ^ 0x100)).ports, 1u << kHostPort);
}

TEST_F(AclTraffic, RedirectSendsOnlyToItsPortAndACopyReachesTheCpuWithItsCause)
{
    const uint32_t g = group();
    lookup(ACL_BASE_GLOBAL, 0, 0, kTypeL2, 1);
    const uint32_t redirect = rule(g, 10, kL2Template, ACL_BASED_GLB,
                                   {{kMatchSmacLow, static_cast<uint32_t>(kHostA), ~0u}},
                                   {{kActionRedirectPort, 0, 5}});
    Traffic t(0);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA)).ports, 1u << 5);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostC)).ports, 1u << kHostPort);
    ASSERT_EQ(acl_api_entry_destroy(0, redirect), 0);
    rule(g, 10, kL2Template, ACL_BASED_GLB, {{kMatchSmacLow, static_cast<uint32_t>(kHostA), ~0u}},
         {{kActionCopyToCpu, 0, 0}, {kActionCauseId, 77, 0}});
    const Verdict v = t.send(kIn, l2_frame(kHostB, kHostA));
    EXPECT_EQ(v.ports, 1u << kHostPort | 1u << kCpu);
    EXPECT_EQ(v.cpu_cause, 77u);
    // A port whose ACL is off skips the lookups.
    acl_control off{ACL_PORT_ICAP_EN, 0};
    ASSERT_EQ(acl_api_port_control_set(0, kIn, &off), 0);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA)).ports, 1u << kHostPort);
}

// Of two lookups that both hit, the one of the higher priority decides.
TEST_F(AclTraffic, OfTwoHitsTheLookupOfHigherPriorityDecides)
{
    const uint32_t g = group();
    rule(g, 10, kL2Template, ACL_BASED_GLB, {{kMatchSmacLow, static_cast<uint32_t>(kHostA), ~0u}},
         {{kActionDrop, 0, 0}});
    rule(g, 11, kL2Template, ACL_BASED_PORT, {{kMatchSmacLow, static_cast<uint32_t>(kHostA), ~0u}},
         {{kActionRedirectPort, 0, 6}});
    Traffic t(0);
    lookup(ACL_BASE_GLOBAL, 0, 0, kTypeL2, 2);
    lookup(ACL_BASE_PORT, kIn, 0, kTypeL2, 5);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA)).ports, 1u << 6);
    lookup(ACL_BASE_GLOBAL, 0, 0, kTypeL2, 6);
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA)), Verdict::drop(kCauseAclDrop));
    lookup(ACL_BASE_GLOBAL, 0, 0, kTypeL2, 5); // a tie: the global lookup comes first
    EXPECT_EQ(t.send(kIn, l2_frame(kHostB, kHostA)), Verdict::drop(kCauseAclDrop));
}

// One entry per ingress key template on its distinctive fields: the frame
// built to match is dropped, the one that differs in one bit of a matched
// field is forwarded.
TEST_F(AclTraffic, EveryIngressTemplateHitsItsFrameAndMissesAOneBitDifference)
{
    const uint32_t single = group(), dbl = group(128, ACL_MODE_DOUBLE);
    Traffic t(0);
    for (const TemplateCase &c : template_cases()) {
        SCOPED_TRACE(c.name);
        lookup(ACL_BASE_GLOBAL, 0, 0, c.lookup_type, 1);
        std::vector<acl_item> items = c.items;
        uint32_t id = 0;
        ASSERT_EQ(acl_api_entry_create(0, 0, 1, c.double_width ? dbl : single, &id), 0);
        ASSERT_EQ(acl_api_entry_template_set(0, id, c.template_id), 0);
        for (acl_item &it : items) {
            ASSERT_EQ(acl_api_entry_match_field_set(0, id, &it), 0) << "item " << it.id;
        }
        acl_item drop{kActionDrop, 0, 0};
        ASSERT_EQ(acl_api_entry_action_set(0, id, &drop), 0);
        ASSERT_EQ(acl_api_entry_install(0, id), 0);
        EXPECT_EQ(t.send(kIn, c.frame(false)), Verdict::drop(kCauseAclDrop));
        EXPECT_EQ(t.send(kIn, c.frame(true)).ports, 1u << kHostPort);
        ASSERT_EQ(acl_api_entry_destroy(0, id), 0);
    }
}

// A VLAN's lookup lives in the VLAN's ingress record, which the VLAN
// service shares among VLANs of equal settings: giving VLAN 2 a lookup
// filters its frames only, and VLAN 1 keeps its own.
TEST_F(AclTraffic, AVlanLookupFiltersThatVlanOnlyAndItsControlsStayWithIt)
{
    const uint32_t g = group(128, ACL_MODE_DOUBLE);
    rule(g, 1, 0 /* icap-ipv4 */, ACL_BASED_VLAN, {{kMatchDip, 0x0A000002, ~0u}}, {{kActionDrop, 0, 0}});
    Traffic t(0);
    const Frame in1 = ipv4_frame(kHostB, kHostA, 0x0A000001, 0x0A000002, 17, 1, 2);
    const Frame in2 = ipv4_frame(kHostB, kHostA, 0x0A000001, 0x0A000002, 17, 1, 2, 2);
    EXPECT_EQ(t.send(kIn, in2).ports, 1u << kHostPort);
    lookup(ACL_BASE_VLAN, 2, 0, 1 /* the IPv4 key */, 3);
    EXPECT_EQ(t.send(kIn, in2), Verdict::drop(kCauseAclDrop));
    EXPECT_EQ(t.send(kIn, in1).ports, 1u << kHostPort);
    EXPECT_EQ(t.send(kIn, ipv4_frame(kHostB, kHostA, 0x0A000001, 0x0A000003, 17, 1, 2, 2)).ports, 1u << kHostPort);
    acl_lookup got{ACL_STAGE_ICAP, ACL_BASE_VLAN, 2, 0, 0, 0};
    ASSERT_EQ(acl_api_template_config_get(0, &got), 0);
    EXPECT_EQ(got.type, 1u);
    EXPECT_EQ(got.pri, 3u);
    got.id = 1;
    ASSERT_EQ(acl_api_template_config_get(0, &got), 0);
    EXPECT_EQ(got.type, 0u);
    // The VLAN row's type has one bit; a second VLAN lookup, or one of a
    // VLAN that does not exist, is refused without change.
    acl_lookup bad{ACL_STAGE_ICAP, ACL_BASE_VLAN, 2, 0, 7, 1};
    EXPECT_EQ(acl_api_template_config_set(0, &bad), SHR_E_PARAM);
    bad = acl_lookup{ACL_STAGE_ICAP, ACL_BASE_VLAN, 2, 1, 1, 1};
    EXPECT_EQ(acl_api_template_config_set(0, &bad), SHR_E_NOT_SUPPORT);
    bad = acl_lookup{ACL_STAGE_ICAP, ACL_BASE_VLAN, 77, 0, 1, 1};
    EXPECT_NE(acl_api_template_config_set(0, &bad), 0);
    EXPECT_EQ(t.send(kIn, in2), Verdict::drop(kCauseAclDrop));
    lookup(ACL_BASE_VLAN, 2, 0, 0, 0);
    EXPECT_EQ(t.send(kIn, in2).ports, 1u << kHostPort);
    // The egress lookup of a VLAN, in its egress record.
    acl_lookup egress{ACL_STAGE_ECAP, ACL_BASE_VLAN, 2, 0, 1, 5};
    ASSERT_EQ(acl_api_template_config_set(0, &egress), 0);
    acl_lookup back{ACL_STAGE_ECAP, ACL_BASE_VLAN, 2, 0, 0, 0};
    ASSERT_EQ(acl_api_template_config_get(0, &back), 0);
    EXPECT_EQ(back.type, 1u);
    EXPECT_EQ(back.pri, 5u);
    back.id = 1;
    ASSERT_EQ(acl_api_template_config_get(0, &back), 0);
    EXPECT_EQ(back.pri, 0u);

    // The source guard enables of a VLAN, in the same record.
    acl_control v4{ACL_VLAN_IPSG_V4, 1};
    ASSERT_EQ(acl_api_vlan_control_set(0, 2, &v4), 0);
    acl_control read{ACL_VLAN_IPSG_V4, 0};
    ASSERT_EQ(acl_api_vlan_control_get(0, 2, &read), 0);
    EXPECT_EQ(read.value, 1u);
    ASSERT_EQ(acl_api_vlan_control_get(0, 1, &read), 0);
    EXPECT_EQ(read.value, 0u);
    read = acl_control{ACL_VLAN_IPSG_V6, 1};
    ASSERT_EQ(acl_api_vlan_control_get(0, 2, &read), 0);
    EXPECT_EQ(read.value, 0u);
    acl_control wrong{ACL_VLAN_IPSG_V6, 2};
    EXPECT_EQ(acl_api_vlan_control_set(0, 2, &wrong), SHR_E_PARAM);
    wrong = acl_control{ACL_VLAN_MFF, 1};
    EXPECT_EQ(acl_api_vlan_control_set(0, 2, &wrong), SHR_E_NOT_SUPPORT);
    wrong = acl_control{ACL_VLAN_IPSG_V4, 1};
    EXPECT_NE(acl_api_vlan_control_set(0, 77, &wrong), 0);
}

} // namespace
