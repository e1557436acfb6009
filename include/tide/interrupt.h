/*
 * tide: interrupts and ECC errors of the chip.
 *
 * The chip raises one interrupt line; a thread per chip ("tdl_interrupt%d")
 * waits for it, walks the chip's tree of status registers from the top
 * down to the leaves, and for each leaf whose status and mask bits are both
 * set it masks the leaf, repairs the memory behind an ECC error when the
 * chip's default action asks for it, counts the interrupt, calls the
 * callback registered for it, clears the status and unmasks the leaf.
 *
 * An interrupt is named by four numbers: the chip module (0 to 57, the
 * chip's own numbering), the subid (a group of interrupts of the module),
 * the interrupt type within the subid, and the instance of its register.
 * The reference of every type is generated with the build
 * (generated/intr-reference.md).
 *
 * Every call takes the chip id first and returns a status (0, or a
 * negative code whose text shr_errmsg gives).
 */
#ifndef TIDE_INTERRUPT_H
#define TIDE_INTERRUPT_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* Which module and which group of interrupts in it. */
typedef struct intr_module {
    uint32_t module_id;
    uint32_t subid;
} intr_module;

/* Which interrupt of the group and which instance of its register. */
typedef struct intr_type {
    uint32_t intr_id;
    uint32_t addr_idx;
} intr_type;

/* Wild cards, where a call accepts them. */
#define INTR_MODULE_ALL 0xFFFFFFFFu /* all modules */
#define INTR_SUBID_ALL 0xFFFFFFFEu  /* all subids of a module */
#define INTR_ID_ALL 0xFFFFFFFDu     /* all types of a subid; for a read, the whole register */
#define INTR_ADDR_ALL 0xFFFFFFFCu   /* all instances */

#define INTR_MODULE_COUNT 58u

/* Chip modules that carry interrupts. */
enum intr_module_id {
    INTR_MOD_LSW_HREG = 0, INTR_MOD_MDIO_PHY = 2, INTR_MOD_AXI = 3, INTR_MOD_PHY_GLB = 5, INTR_MOD_PHY_CTRL = 6,
    INTR_MOD_MAG_GLB = 7, INTR_MOD_MAG_MAP = 8, INTR_MOD_MAG_GLUE = 9, INTR_MOD_MAC_GLB = 16,
    INTR_MOD_MAC_PORT = 17, INTR_MOD_PCS_GLB = 19, INTR_MOD_PCS_8B10B = 20, INTR_MOD_PCS_6466B = 21,
    INTR_MOD_PCS_4B5B = 22, INTR_MOD_PCS_AN = 23, INTR_MOD_XSEC_ENC = 24, INTR_MOD_XSEC_DEC = 25,
    INTR_MOD_XSEC_GLB = 26, INTR_MOD_CPUTR = 28, INTR_MOD_PRBS = 29, INTR_MOD_RSM = 34, INTR_MOD_FBM = 35,
    INTR_MOD_TTI = 36, INTR_MOD_ACL_CORE = 37, INTR_MOD_IPRO = 39, INTR_MOD_ARL = 43, INTR_MOD_IACL = 44,
    INTR_MOD_NHP = 45, INTR_MOD_CPACL = 47, INTR_MOD_ICAR = 48, INTR_MOD_MCC = 49, INTR_MOD_EPRO = 50,
    INTR_MOD_STAT = 51, INTR_MOD_ECAR = 52, INTR_MOD_QM = 53, INTR_MOD_SCH = 54, INTR_MOD_PEDSEG = 56,
    INTR_MOD_EACL = 57
};

/* The events of the MAC table: module INTR_MOD_ARL, subid 0.  The chip
 * learns and ages by itself; an application that wants to hear of it
 * registers a callback for these types and enables them (and the ARL bits
 * of the event and warning categories). */
#define INTR_ARL_SUBID 0u
#define INTR_ARL_LEARN 17u /* an address was learned (event category) */
#define INTR_ARL_AGE 18u   /* an address aged out (warning category) */
#define INTR_ARL_MOVE 19u  /* a station moved to another port (warning) */
#define INTR_ARL_FULL 20u  /* a learn found its buckets full (warning) */

/* Actions of enable and clear. */
#define INTR_DISABLE 0u
#define INTR_ENABLE 1u
#define INTR_CLEAR 2u

/* Called on the interrupt thread, with the interrupt lock held, for each
 * interrupt served: the module and subid, the type and the instance that
 * fired.  It must not wait for another thread's interrupt calls. */
typedef void (*intr_callback)(uint32_t chip_id, intr_module module, intr_type type);

/* debug_get: `type` 0 copies the subid's name, 1 the type's name, into
 * `name` of `size` bytes (cut to fit). */
typedef struct intr_debug {
    char *name;
    uint32_t size;
    uint32_t type;
} intr_debug;

#define INTR_DEBUG_REG_MAX 8u
/* debug_info_get: the values and addresses of a type's debug registers. */
typedef struct intr_debug_info {
    uint32_t value[INTR_DEBUG_REG_MAX];
    uint32_t addr[INTR_DEBUG_REG_MAX];
    uint32_t count;
} intr_debug_info;

/* Kinds of memory behind an ECC error. */
#define INTR_ECC_KIND_NONE 0u
#define INTR_ECC_KIND_RAM 1u
#define INTR_ECC_KIND_FIFO 2u
#define INTR_ECC_KIND_DIRECT 3u
#define INTR_ECC_KIND_HASH 4u
#define INTR_ECC_KIND_TCAM 5u

/* Bits of the error type of an ECC error. */
#define INTR_ECC_NOTICE 0x1u
#define INTR_ECC_SINGLE_BIT 0x2u
#define INTR_ECC_MULTI_BIT 0x4u

/* An ECC error as the chip describes it (ecc_info_get). */
typedef struct intr_ecc_info {
    uint32_t ecc_type;     /* INTR_ECC_NOTICE | _SINGLE_BIT | _MULTI_BIT */
    uint32_t ecc_reg_addr; /* address of the register that holds the details */
    uint32_t ecc_reg_data; /* its raw value */
    uint32_t ecc_kind;     /* INTR_ECC_KIND_* */
    uint32_t table_id;     /* direct or hash table, TCAM block */
    uint32_t table_index;  /* the damaged entry */
    uint32_t ecc_cnt;      /* errors counted; 0xFFFFFFFF: the memory has no count */
    uint32_t ecc_cnt2;     /* second count of a TCAM plane */
} intr_ecc_info;

/* ecc_error_cnt_get: which count. */
#define INTR_ECC_TYPE_TCAM_KEY 0u  /* id: TCAM block; two counts */
#define INTR_ECC_TYPE_TCAM_MASK 1u /* id: TCAM block; two counts */
#define INTR_ECC_TYPE_TCAM_AD 2u   /* id: TCAM block; one count */
#define INTR_ECC_TYPE_DIRECT_TAB 3u /* id: table id; one count */
typedef struct intr_ecc_cnt_para {
    uint32_t type;
    uint32_t id;
} intr_ecc_cnt_para;

/* ecc_lpm_se_get: the route tables of the kelpreef chips. */
#define INTR_ECC_LPM_TBLV4 0u
#define INTR_ECC_LPM_TBLV6 1u

/* lport_to_reg_index and reg_index_to_lport: kind of index. */
#define INTR_INDEX_PORT_REG 0u /* index of the per-port interrupt registers (MAG and MAC) */
#define INTR_INDEX_LPORT 1u    /* the logical port itself */

/* The modules with interrupts: "module id        module name" and a line
 * each. */
TIDE_API int32_t interrupt_api_support_module_dump(uint32_t chip_id);
/* The status of each type of one module (wild cards for subid, type and
 * instance). */
TIDE_API int32_t interrupt_api_module_status_dump(uint32_t chip_id, intr_module module, intr_type type);
/* Writes all ones to the first status register of every subid of every
 * module, all instances. */
TIDE_API int32_t interrupt_api_clear_all(uint32_t chip_id);
/* Clears status bits; all wild cards allowed. */
TIDE_API int32_t interrupt_api_clear(uint32_t chip_id, intr_module module, intr_type type);
/* Sets (enable not 0) or clears mask bits; all wild cards allowed.  A type
 * without mask register is always on: nothing is written. */
TIDE_API int32_t interrupt_api_enable_set(uint32_t chip_id, intr_module module, intr_type type, uint32_t enable);
/* Mask or status bits of one type (or, with INTR_ID_ALL, the whole
 * register); no wild card for module or subid (-24).  A type without mask
 * register reads as mask 0xFFFFFFFF. */
TIDE_API int32_t interrupt_api_mask_get(uint32_t chip_id, intr_module module, intr_type type, uint32_t *mask);
TIDE_API int32_t interrupt_api_status_get(uint32_t chip_id, intr_module module, intr_type type,
                                          uint32_t *status);
/* Number of subids of a module; number of types of a subid. */
TIDE_API int32_t interrupt_api_subid_types_get(uint32_t chip_id, uint32_t module_id, uint32_t *count);
TIDE_API int32_t interrupt_api_onesubid_types_get(uint32_t chip_id, uint32_t module_id, uint32_t subid,
                                                  uint32_t *count);
/* Prints the types of a module with their status and mask registers. */
TIDE_API int32_t interrupt_api_base_info_get(uint32_t chip_id, uint32_t module_id);
/* The name of a subid or of a type. */
TIDE_API int32_t interrupt_api_debug_get(uint32_t chip_id, intr_module module, intr_type type, intr_debug *debug);
/* The type's debug registers; -7 when it has none. */
TIDE_API int32_t interrupt_api_debug_info_get(uint32_t chip_id, intr_module module, intr_type type,
                                              intr_debug_info *info);
/* One callback per type, for all its instances; no wild cards. */
TIDE_API int32_t interrupt_api_callback_register(uint32_t chip_id, intr_module module, intr_type type,
                                                 intr_callback callback);
TIDE_API int32_t interrupt_api_callback_unregister(uint32_t chip_id, intr_module module, intr_type type);
/* How often a type was served since start or the last clear. */
TIDE_API int32_t interrupt_api_stats_get(uint32_t chip_id, intr_module module, intr_type type, uint32_t *count);
TIDE_API int32_t interrupt_api_stats_clear(uint32_t chip_id, intr_module module, intr_type type);
/* The ECC counts of a TCAM block (cnt[0], cnt[1] for key and mask) or of a
 * direct table (cnt[0]). */
TIDE_API int32_t interrupt_api_ecc_error_cnt_get(uint32_t chip_id, intr_ecc_cnt_para para, uint32_t *cnt);
/* Number of ECC types of a module. */
TIDE_API int32_t interrupt_api_ecc_module_ecc_types_get(uint32_t chip_id, uint32_t module_id, uint32_t *count);
/* The last ECC error of a type; no wild cards. */
TIDE_API int32_t interrupt_api_ecc_info_get(uint32_t chip_id, intr_module module, intr_type type,
                                            intr_ecc_info *info);
/* Route tables of the kelpreef chips only. */
TIDE_API int32_t interrupt_api_ecc_lpm_se_get(uint32_t chip_id, uint32_t table_type, uint32_t *param,
                                              uint32_t *tbl_num);
/* 1: the handling of an ECC error rewrites a damaged table entry from the
 * software image; 0 (at start): it only counts and calls back. */
TIDE_API int32_t interrupt_api_default_action_set(uint32_t chip_id, uint32_t action);
TIDE_API int32_t interrupt_api_default_action_get(uint32_t chip_id, uint32_t *action);
/* A logical port and the index of its per-port interrupt registers. */
TIDE_API int32_t interrupt_api_lport_to_reg_index(uint32_t chip_id, uint32_t lport, uint32_t kind, uint8_t *index);
TIDE_API int32_t interrupt_api_reg_index_to_lport(uint32_t chip_id, uint8_t index, uint32_t kind, uint32_t *lport);

TIDE_END_DECLS

#endif /* TIDE_INTERRUPT_H */
