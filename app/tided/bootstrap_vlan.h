// A VLAN made by hand, until the VLAN family exists: the map entry of the
// VID, the shared ingress and egress rows, and the two membership bitmaps,
// written through the by-name field door of the base service.  tided and
// the tests use it; vlan_api_create and vlan_api_port_set replace it.
#ifndef TIDE_BOOTSTRAP_VLAN_H
#define TIDE_BOOTSTRAP_VLAN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* VLAN `vid` on chip `chip` with the member ports of the bitmap `ports`
 * (bit n: lport n), those of `untagged` sending without a tag.  Every such
 * VLAN shares row 0 of the VLAN rows, which holds the defaults of a new
 * VLAN: valid, learning, flooding unknown unicast, unknown multicast and
 * broadcast.  0, or the status of the first write that failed. */
int32_t bootstrap_vlan(uint32_t chip, uint16_t vid, uint32_t ports, uint32_t untagged);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_BOOTSTRAP_VLAN_H */
