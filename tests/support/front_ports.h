// Test support: the front ports of a chip brought up through the SDK, as
// an application does: a mapping mode, each MAG's interface type, every
// port in use enabled.  With the model's MAC gating on, frames enter and
// leave only by such ports.
#ifndef TIDE_TEST_FRONT_PORTS_H
#define TIDE_TEST_FRONT_PORTS_H

#include <tide/sim.h>
#include <tide/tide.h>

#include "csl/common/port/csl_port.h"

namespace tide::test {

// The interface type of each MAG in mapping mode 0 that puts all of its
// MACs in use: QSGMII on MAGs 0 and 1, OSGMII on 2 and 3, SGMII on the
// single-port MAGs 4 to 7.
inline constexpr uint32_t kFrontPortTypes[CSL_PORT_MAX_MAG] = {
    PORT_INTERFACE_QSGMII, PORT_INTERFACE_QSGMII, PORT_INTERFACE_OSGMII, PORT_INTERFACE_OSGMII,
    PORT_INTERFACE_SGMII,  PORT_INTERFACE_SGMII,  PORT_INTERFACE_SGMII,  PORT_INTERFACE_SGMII};
// The first port of each MAG in mapping mode 0.
inline constexpr uint32_t kFrontPortMagFirst[CSL_PORT_MAX_MAG] = {0, 4, 8, 16, 24, 26, 25, 27};

// The ports a MAG of interface type `type` puts in use at most.
constexpr uint8_t front_port_count(uint32_t type)
{
    switch (type) {
    case PORT_INTERFACE_SGMII_8P: case PORT_INTERFACE_OSGMII: return 8;
    case PORT_INTERFACE_SGMII_4P: case PORT_INTERFACE_QSGMII: case PORT_INTERFACE_10G_QXGMII: return 4;
    case PORT_INTERFACE_10G_DXGMII: return 2;
    default: return 1;
    }
}

// Brings the front ports of `chip` up: mapping mode 0 unless one is set,
// the interface type of the property mag_interface_type_<mag> (else the one
// above) on each MAG without one, with the port count of the property
// mag_port_number_<mag> (else the type's most), then every port in use
// enabled.  The first failure is returned.
inline int32_t front_ports_up(uint32_t chip)
{
    uint32_t mode = 0;
    int32_t rc = port_api_map_mode_get(chip, &mode);
    if (rc == 0 && mode >= CSL_PORT_MAP_MODES) {
        rc = port_api_map_mode_set(chip, 0);
    }
    for (uint32_t mag = 0; mag < CSL_PORT_MAX_MAG && rc == 0; mag++) {
        const uint32_t first = kFrontPortMagFirst[mag];
        port_interface now{};
        rc = port_api_interface_get(chip, first, &now);
        if (rc == 0 && now.interface_type == PORT_INTERFACE_NULL) {
            const i32 type = csl_port_property_get(chip, static_cast<i32>(mag), "mag_interface_type",
                                                   static_cast<i32>(kFrontPortTypes[mag]));
            const uint32_t t = static_cast<uint32_t>(type);
            const i32 ports = csl_port_property_get(chip, static_cast<i32>(mag), "mag_port_number", front_port_count(t));
            port_interface want{t, static_cast<uint8_t>(ports)};
            rc = port_api_interface_set(chip, first, &want);
        }
    }
    port_config c{};
    if (rc == 0) {
        rc = port_api_config_get(chip, &c);
    }
    for (uint32_t lport = 0; lport < CSL_PORT_MAX_MAC && rc == 0; lport++) {
        if (tide::port::pbmp_test(c.pbmp[PORT_CONFIG_ACTIVE], lport)) {
            rc = port_api_enable_set(chip, lport, 1);
        }
    }
    return rc;
}

// Whether a port's link is up, as the port service reads it.
inline bool link_up(uint32_t chip, uint32_t port)
{
    uint32_t up = 0;
    return port_api_link_status_get(chip, port, &up) == 0 && up == 1;
}

// Why the model holds a port's link down (TIDE_SIM_MAC_*), for failure
// messages; 99 when the model cannot say.
inline uint32_t link_down_cause(uint32_t chip, uint32_t port)
{
    tide_sim_mac_port p{};
    return tide_sim_mac_port_get(chip, port, &p) == 0 ? p.down : 99;
}

} // namespace tide::test

#endif // TIDE_TEST_FRONT_PORTS_H
