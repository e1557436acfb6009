// Test support: a VLAN with its members in one call, through the VLAN
// service.  A VLAN that exists already keeps its rows and gets the new
// members.
#ifndef TIDE_TEST_VLAN_PORTS_H
#define TIDE_TEST_VLAN_PORTS_H

#include <tide/vlan.h>

namespace tide::test {

// VLAN `vid` with the member ports of the bitmap `ports` (bit n: lport n),
// those also in `untagged` sending without a tag.  0 or the failing status.
inline int32_t vlan_ports(uint32_t chip, uint32_t vid, uint32_t ports, uint32_t untagged)
{
    const int32_t rc = vlan_api_create(chip, vid);
    if (rc != 0 && rc != -8) {
        return rc;
    }
    port_bitmap members{{ports, 0, 0}};
    port_bitmap ut{{ports & untagged, 0, 0}};
    return vlan_api_port_set(chip, vid, &members, &ut);
}

} // namespace tide::test

#endif // TIDE_TEST_VLAN_PORTS_H
