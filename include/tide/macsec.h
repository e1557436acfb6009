/*
 * tide: MACsec.
 *
 * atolreef encrypts on transmit and decrypts on receive with a MACsec
 * engine of its own.  The library keeps no software image of it: every
 * setting lives in the engine's tables, and a read reads the chip.  Keys
 * and salts come from the caller and are not stored by the library.
 *
 * `dir`: 0 the encrypting (transmit) side, 1 the decrypting (receive) side.
 * Each record starts with a mask of the fields to apply; a field whose bit
 * is clear is left as the chip has it.
 *
 * Every call takes the chip id first and returns a status (0, or a
 * negative code whose text shr_errmsg gives).
 */
#ifndef TIDE_MACSEC_H
#define TIDE_MACSEC_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

#define MACSEC_DIR_ENC 0u
#define MACSEC_DIR_DEC 1u
#define MACSEC_PORT_MAX 31u
#define MACSEC_SC_MAX 63u
#define MACSEC_AN_MAX 3u

/* Port configuration. */
#define MACSEC_PORT_MAX_FRAME 0x1u
#define MACSEC_PORT_SECTAG_OFFSET 0x2u
#define MACSEC_PORT_ENABLE 0x4u
#define MACSEC_PORT_WHITE_LIST 0x8u
#define MACSEC_PORT_BYPASS_VID 0x10u
#define MACSEC_PORT_BYPASS_TPID 0x20u
#define MACSEC_PORT_DEFAULT_SC 0x40u
#define MACSEC_PORT_LOOPBACK 0x80u /* decrypt side only */
#define MACSEC_PORT_SAFE_MODE 0x100u /* decrypt side only */

typedef struct macsec_port_config {
    uint32_t mask;
    uint32_t max_frame;     /* accepted, not kept */
    uint32_t sectag_offset; /* accepted, not kept */
    uint32_t macsec_enable;
    uint32_t white_list_enable;
    uint16_t bypass_vid; /* up to 4095 */
    uint16_t bypass_tpid;
    uint32_t default_sc;
    uint32_t lb_vld;      /* the port's loop to the encrypt side */
    uint32_t lb_fastp_en;
    uint32_t lb_dport; /* below 32 */
    uint32_t safe_mode; /* 0 should, 1 must */
} macsec_port_config;

/* Secure channel. */
#define MACSEC_SC_PROTECT_MODE 0x1u
#define MACSEC_SC_VALIDATE_MODE 0x2u
#define MACSEC_SC_ENABLE 0x4u
#define MACSEC_SC_EM_DPORT 0x8u /* given together with MACSEC_SC_EM_DMAC */
#define MACSEC_SC_EM_DMAC 0x10u
#define MACSEC_SC_SCI 0x20u
#define MACSEC_SC_SA3_AN 0x40u
#define MACSEC_SC_SA2_AN 0x80u
#define MACSEC_SC_SA1_AN 0x100u
#define MACSEC_SC_SA0_AN 0x200u
#define MACSEC_SC_TCI_V 0x400u
#define MACSEC_SC_TCI_ES 0x800u
#define MACSEC_SC_TCI_SC 0x1000u
#define MACSEC_SC_TCI_SCB 0x2000u
#define MACSEC_SC_TCI_AN 0x4000u
#define MACSEC_SC_SCI_ENABLE 0x10000u
#define MACSEC_SC_PROTECT_FRAMES 0x20000u

typedef struct macsec_secure_chan {
    uint32_t mask;
    uint32_t protect_mode;  /* 0 integrity, 1 confidentiality, 2 confidentiality with offset */
    uint32_t validate_mode; /* 1 disable, 2 check, 3 strict */
    uint32_t sc_enable;
    uint32_t em_dport; /* up to 31 */
    uint8_t em_dmac[6];
    uint64_t sci;
    uint8_t sa_an[4]; /* sa_an[i]: the AN of the SC's SA i, below 4 */
    uint8_t tci;      /* bit 0 v, 1 es, 2 sc, 3 scb, 5:4 an (the encoding SA) */
    uint32_t sci_enable;
    uint32_t protect_frames;
} macsec_secure_chan;

/* Secure association. */
#define MACSEC_SA_CRYPTO 0x1u
#define MACSEC_SA_SAK 0x2u
#define MACSEC_SA_PN_TH 0x4u /* encrypt side */
#define MACSEC_SA_REPLAY_PROTECT 0x8u /* decrypt side */
#define MACSEC_SA_REPLAY_WINDOW 0x10u /* decrypt side */
#define MACSEC_SA_SECURE_OFFSET 0x20u
#define MACSEC_SA_NEXT_PN 0x40u
#define MACSEC_SA_XPN_ENABLE 0x80u
#define MACSEC_SA_PN_H32 0x100u
#define MACSEC_SA_PN_ROLLOVER 0x200u /* encrypt side, chip-wide */
#define MACSEC_SA_IV 0x400u
#define MACSEC_SA_LOWEST_PN 0x800u /* decrypt side */

typedef struct macsec_secure_assoc {
    uint32_t mask;
    uint32_t crypto;    /* 0 gcm-aes-128, 1 gcm-aes-256, 2 gcm-sm4 */
    uint32_t sak_valid; /* 1 writes sak[] and marks the key valid; 0 marks it invalid */
    uint64_t sak[4];    /* sak[3] the highest word; gcm-aes-128 uses sak[3] and sak[2] */
    uint64_t pn_th;
    uint32_t replay_protect;
    uint32_t replay_window;
    uint32_t secure_offset; /* 0, 30 or 50 */
    uint32_t next_pn;       /* the lower half of the next packet number */
    uint32_t xpn_enable;
    uint32_t pn_h32; /* the upper half, with xpn_enable 1 */
    uint32_t pn_rollover;
    uint32_t ssci;
    uint32_t salt_l;
    uint32_t salt_m;
    uint32_t salt_h;
    uint64_t lowest_pn;
} macsec_secure_assoc;

/* Flow conditions of the decrypt side and their action. */
#define MACSEC_FLOW_EC01 0x1u
#define MACSEC_FLOW_EC10 0x2u
#define MACSEC_FLOW_UNKNOWN_SCI 0x4u
#define MACSEC_FLOW_NOTAG_SA 0x8u
#define MACSEC_FLOW_FORWARD 0x1u
#define MACSEC_FLOW_MARK_ERR 0x2u
#define MACSEC_FLOW_DROP 0x4u

typedef struct macsec_flow {
    uint32_t mask;
    uint32_t ec01; /* a condition applies when its switch is not 0 */
    uint32_t ec10;
    uint32_t unknown_sci;
    uint32_t notag_sa;
    uint32_t dir;
} macsec_flow;

/* Chip-wide settings. */
#define MACSEC_GLOBAL_BYPASS 0x1u
#define MACSEC_GLOBAL_DEC_ENC_LOOPBACK 0x2u
#define MACSEC_GLOBAL_SC_MODE 0x8u

typedef struct macsec_global {
    uint32_t mask;
    uint32_t bypass;
    uint32_t dec_enc_loopback;
    uint32_t sc_mode; /* 0: 64 SCs of 2 SAs; 1: 32 SCs of 4 SAs */
} macsec_global;

/* White list entries, `type` of macsec_api_white_list_set/_get. */
#define MACSEC_WHITE_LIST_ETYPE 0u
#define MACSEC_WHITE_LIST_ETYPE_MASK 1u
#define MACSEC_WHITE_LIST_OVLAN 2u /* value[0] the TPID, value[1] the entry's enable */
#define MACSEC_WHITE_LIST_IVLAN 3u

/* Statistics of macsec_api_stat_get. */
enum macsec_stat {
    MACSEC_STAT_ENC_UNTAGGED_PKTS = 0,
    MACSEC_STAT_ENC_PROTECTED_OCTETS = 1,
    MACSEC_STAT_ENC_ENCRYPTED_OCTETS = 2,
    MACSEC_STAT_ENC_PROTECTED_PKTS = 3, /* by SC */
    MACSEC_STAT_ENC_ENCRYPTED_PKTS = 4, /* by SC */
    MACSEC_STAT_DEC_NOTAG_PKTS = 5,
    MACSEC_STAT_DEC_UNTAG_PKTS = 6,
    MACSEC_STAT_DEC_BADTAG_PKTS = 7,
    MACSEC_STAT_DEC_NOSA_PKTS = 8,
    MACSEC_STAT_DEC_NOSAERR_PKTS = 9,
    MACSEC_STAT_DEC_PROTECTED_OCTETS = 10,
    MACSEC_STAT_DEC_DECRYPTED_OCTETS = 11,
    MACSEC_STAT_DEC_NOTVALID_PKTS = 12, /* 12 to 17 by SC */
    MACSEC_STAT_DEC_INVALID_PKTS = 13,
    MACSEC_STAT_DEC_UNCHECKED_PKTS = 14,
    MACSEC_STAT_DEC_LATE_PKTS = 15,
    MACSEC_STAT_DEC_DELAYED_PKTS = 16,
    MACSEC_STAT_DEC_OK_PKTS = 17,
    MACSEC_STAT_COUNT = 18
};

/* macsec_api_stat_clear `type`. */
#define MACSEC_STAT_CLEAR_PORT 0u
#define MACSEC_STAT_CLEAR_SC 1u

TIDE_API int32_t macsec_api_port_config_set(uint32_t chip_id, uint32_t port, uint32_t dir, macsec_port_config *config);
TIDE_API int32_t macsec_api_port_config_get(uint32_t chip_id, uint32_t port, uint32_t dir, macsec_port_config *config);
/* cap[0] min SAs, cap[1] max SAs, cap[2] min SCs, cap[3] max SCs. */
TIDE_API int32_t macsec_api_port_capability_get(uint32_t chip_id, uint32_t port, uint32_t dir, uint32_t cap[4]);
TIDE_API int32_t macsec_api_secure_chan_create(uint32_t chip_id, uint32_t port, uint32_t reserved, uint32_t dir,
                                               macsec_secure_chan *chan, uint32_t sc);
TIDE_API int32_t macsec_api_secure_chan_get(uint32_t chip_id, uint32_t port, uint32_t dir, uint32_t sc,
                                            macsec_secure_chan *chan);
TIDE_API int32_t macsec_api_secure_chan_destroy(uint32_t chip_id, uint32_t port, uint32_t dir, uint32_t sc);
TIDE_API int32_t macsec_api_secure_chan_traverse(uint32_t chip_id);
TIDE_API int32_t macsec_api_secure_assoc_create(uint32_t chip_id, uint32_t port, uint32_t sc, uint32_t reserved,
                                                uint32_t dir, macsec_secure_assoc *assoc, uint32_t an);
TIDE_API int32_t macsec_api_secure_assoc_get(uint32_t chip_id, uint32_t port, uint32_t sc, uint32_t an, uint32_t dir,
                                             macsec_secure_assoc *assoc);
TIDE_API int32_t macsec_api_secure_assoc_destroy(uint32_t chip_id, uint32_t port, uint32_t an, uint32_t sc,
                                                 uint32_t dir);
TIDE_API int32_t macsec_api_secure_assoc_traverse(uint32_t chip_id);
TIDE_API int32_t macsec_api_flow_create(uint32_t chip_id, uint32_t port, uint32_t reserved, macsec_flow *flow,
                                        uint32_t action);
TIDE_API int32_t macsec_api_flow_get(uint32_t chip_id, uint32_t port, uint32_t reserved, macsec_flow *flow,
                                     uint32_t *action);
TIDE_API int32_t macsec_api_flow_traverse(uint32_t chip_id);
TIDE_API int32_t macsec_api_flow_destroy(uint32_t chip_id, uint32_t port, uint32_t flow_id);
TIDE_API int32_t macsec_api_stat_clear(uint32_t chip_id, uint32_t type, uint32_t index, uint32_t dir);
TIDE_API int32_t macsec_api_stat_get(uint32_t chip_id, uint32_t port, uint32_t stat, uint32_t sc, uint32_t an,
                                     uint64_t *value, uint32_t reserved);
/* Slots the engine leaves empty: they answer 0.  MACsec events reach the
 * application through the interrupt callbacks (interrupt_api_*). */
TIDE_API int32_t macsec_api_stat_get32(uint32_t chip_id);
TIDE_API int32_t macsec_api_event_register(uint32_t chip_id);
TIDE_API int32_t macsec_api_event_unregister(uint32_t chip_id);
TIDE_API int32_t macsec_api_event_set(uint32_t chip_id);
TIDE_API int32_t macsec_api_event_get(uint32_t chip_id);
TIDE_API int32_t macsec_api_globle_set(uint32_t chip_id, macsec_global *global);
TIDE_API int32_t macsec_api_globle_get(uint32_t chip_id, macsec_global *global);
TIDE_API int32_t macsec_api_white_list_set(uint32_t chip_id, uint32_t index, uint32_t dir, uint32_t type,
                                           uint16_t value[2]);
TIDE_API int32_t macsec_api_white_list_get(uint32_t chip_id, uint32_t index, uint32_t dir, uint32_t type,
                                           uint16_t value[2]);
/* pn[0] the next packet number; on the decrypt side pn[1] the lowest. */
TIDE_API int32_t macsec_api_next_pn_set(uint32_t chip_id, uint32_t port, uint32_t sc, uint32_t an, uint32_t dir,
                                        uint64_t pn[2]);
TIDE_API int32_t macsec_api_next_pn_get(uint32_t chip_id, uint32_t port, uint32_t sc, uint32_t an, uint32_t dir,
                                        uint64_t pn[2]);

TIDE_END_DECLS

#endif /* TIDE_MACSEC_H */
