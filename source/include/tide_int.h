/*
 * Internal definitions shared by every layer of libtide_sdk: short integer
 * names, the log module ids, the log call through the hook and the status
 * codes by name.
 */
#ifndef TIDE_INT_H
#define TIDE_INT_H

#include <tide/shr.h>
#include <tide/xsal.h>

#include <stdint.h>

typedef uint8_t u8;
typedef uint16_t u16;
typedef uint32_t u32;
typedef uint64_t u64;
typedef int8_t i8;
typedef int16_t i16;
typedef int32_t i32;
typedef int64_t i64;

/* Log module ids, index of g_shr_mod_name. */
enum shr_module_id {
    SHR_MOD_HAL = 0, SHR_MOD_L3 = 1, SHR_MOD_INTR = 2, SHR_MOD_ARL = 3, SHR_MOD_PORT = 4,
    SHR_MOD_PKT = 5, SHR_MOD_PHY = 6, SHR_MOD_LINKSCAN = 7, SHR_MOD_COUNTER = 8, SHR_MOD_VXLAN = 9,
    SHR_MOD_VLAN = 10, SHR_MOD_STP = 11, SHR_MOD_REG_TAB = 12, SHR_MOD_TRUNK = 13, SHR_MOD_TUNNEL = 14,
    SHR_MOD_QOS = 15, SHR_MOD_RSM = 16, SHR_MOD_ECC = 17, SHR_MOD_TRACE = 18, SHR_MOD_INIT = 19,
    SHR_MOD_SERDES = 20, SHR_MOD_CLK = 21, SHR_MOD_PA = 22, SHR_MOD_ACL = 23, SHR_MOD_MCC = 24,
    SHR_MOD_PRBS = 25, SHR_MOD_MIRROR = 26, SHR_MOD_STACK = 27, SHR_MOD_FLEXE = 28, SHR_MOD_BFD = 29,
    SHR_MOD_OAM = 30, SHR_MOD_PTP = 31, SHR_MOD_SYNCE = 32, SHR_MOD_TTI = 33, SHR_MOD_MACSEC = 34,
    SHR_MOD_LED = 35, SHR_MOD_PGC = 36, SHR_MOD_SFLOW = 37, SHR_MOD_STORM = 38, SHR_MOD_SRV6 = 39,
    SHR_MOD_DOS = 40, SHR_MOD_ISOLATION = 41, SHR_MOD_TAS = 42, SHR_MOD_DYGASP = 43,
    SHR_MOD_KEEPALIVE = 44, SHR_MOD_CHANNELVLAN = 45, SHR_MOD_CLI = 46, SHR_MOD_HASH = 47,
    SHR_MOD_TCAM_MGMT = 48, SHR_MOD_PORT_SWITCH = 49, SHR_MOD_MULTICAST = 50, SHR_MOD_DMA = 51,
    SHR_MOD_MISC = 52, SHR_MOD_KETH = 53, SHR_MOD_COMMON = 54, SHR_MOD_DIRECT = 55, SHR_MOD_TOP = 56,
};

/* Status codes; the library names them by number, these names only make
 * the code read better. */
enum shr_status {
    SHR_E_NONE = 0,
    SHR_E_INTERNAL = -1,
    SHR_E_MEMORY = -2,
    SHR_E_UNIT = -3,
    SHR_E_PARAM = -4,
    SHR_E_EMPTY = -5,
    SHR_E_FULL = -6,
    SHR_E_NOT_FOUND = -7,
    SHR_E_EXISTS = -8,
    SHR_E_TIMEOUT = -9,
    SHR_E_BUSY = -10,
    SHR_E_FAIL = -11,
    SHR_E_DISABLED = -12,
    SHR_E_BADID = -13,
    SHR_E_RESOURCE = -14,
    SHR_E_CONFIG = -15,
    SHR_E_UNAVAIL = -16,
    SHR_E_INIT = -17,
    SHR_E_PORT = -18,
    SHR_E_POOL_MODE = -19,
    SHR_E_NULL_PTR = -20,
    SHR_E_FIELD_OVERFLOW = -21,
    SHR_E_TAB_INFO = -22,
    SHR_E_FIELD_WIDE = -23,
    SHR_E_NOT_SUPPORT = -24,
    SHR_E_HASH_CONFLICT = -25,
    SHR_E_HASH_CAM_FULL = -26,
    SHR_E_NO_CACHE = -27,
    SHR_E_RANGE = -28,
    SHR_E_INVALID_DATA = -29,
    SHR_E_NOT_IMPL = -30,
    SHR_E_UNKNOWN = -31,
};

#define SHR_MAX_CHIPS TIDE_MAX_CHIPS
/* chip id of log lines that concern no chip */
#define SHR_NO_CHIP (-1)

/* The log call, through the hook. */
#define SHR_LOG(chip, module, level, ...) \
    shr_debug_base_printf_func_get()((int32_t)(chip), (module), (level), __FILE__, __LINE__, __VA_ARGS__)
#define SHR_LOG_ERR(chip, module, ...) SHR_LOG(chip, module, SHR_LOG_ERROR, __VA_ARGS__)
#define SHR_LOG_WRN(chip, module, ...) SHR_LOG(chip, module, SHR_LOG_WARN, __VA_ARGS__)
#define SHR_LOG_INF(chip, module, ...) SHR_LOG(chip, module, SHR_LOG_INFO, __VA_ARGS__)
#define SHR_LOG_DBG(chip, module, ...) SHR_LOG(chip, module, SHR_LOG_DEBUG, __VA_ARGS__)

/* The idiom that reports a status with its text. */
#define SHR_LOG_ERRCODE(chip, status) \
    SHR_LOG_ERR(chip, SHR_MOD_TOP, "errcode = %d [%s]\n", (int)(status), shr_errmsg(status))

#endif /* TIDE_INT_H */
