/*
 * tide: families that exist with their signatures and no implementation on
 * the reef family.  Each call returns -3 for an invalid chip and -24
 * ("Not Support") for a valid one; calls that take a record pointer refuse a
 * NULL pointer with -20 after the chip check.
 */
#ifndef TIDE_STUB_H
#define TIDE_STUB_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* L3 ingress interface (layout private to the L3 family). */
typedef struct l3_iif l3_iif;

/* Packet family configuration. */
typedef struct pkt_init_cfg {
    uint32_t mode;      /* 2: the CPU port path of the reef family */
    uint32_t tx_thread; /* 1: create the transmit thread */
    uint32_t rx_thread; /* 1: create the receive thread */
} pkt_init_cfg;

TIDE_API int32_t l3_api_iif_create(uint32_t chip_id, uint32_t flags, l3_iif *iif);
TIDE_API int32_t pkt_api_init(uint32_t chip_id, pkt_init_cfg *cfg);
TIDE_API int32_t pkt_api_deinit(uint32_t chip_id, uint32_t mode);

/* Link scan: on (1) or off (0) for the chip; per port, the scan mode
 * 0 none, 1 software, 2 hardware. */
TIDE_API int32_t linkscan_api_enable_set(uint32_t chip_id, uint32_t enable);
TIDE_API int32_t linkscan_api_enable_get(uint32_t chip_id, uint32_t *enable);
TIDE_API int32_t linkscan_api_mode_set(uint32_t chip_id, uint32_t lport, uint32_t mode);
TIDE_API int32_t linkscan_api_mode_get(uint32_t chip_id, uint32_t lport, uint32_t *mode);

TIDE_END_DECLS

#endif /* TIDE_STUB_H */
