// Texts of the status codes, the log module names and the level names.
#include "shared/shr_int.h"

extern "C" {

const char *const g_shr_errmsg[32] = {
    "Ok",
    "Internal error",
    "Out of memory",
    "Invalid unit",
    "Invalid parameter",
    "Table empty",
    "Table full",
    "Entry not found",
    "Entry exists",
    "Operation timed out",
    "Operation still running",
    "Operation failed",
    "Operation disabled",
    "Invalid identifier",
    "No resources for operation",
    "Invalid configuration",
    "Feature unavailable",
    "Feature not initialized",
    "Invalid port",
    "Invalid table pool mode",
    "ptr null",
    "field overflow",
    "register table info err",
    "field_wide_err",
    "Not Support",
    "Hash table confict",
    "Hash cam table full",
    "Not enable cache",
    "Input para out of range",
    "Invalid Data",
    "Not implemented",
    "Unknown error",
};

const char *const g_shr_mod_name[SHR_MODULE_COUNT] = {
    "HAL",       "L3",         "INTR",        "ARL",       "PORT",      "PKT",       "PHY",
    "LINKSCAN",  "COUNTER",    "VXLAN",       "VLAN",      "STP",       "REG_TAB",   "TRUNK",
    "TUNNEL",    "QOS",        "RSM",         "ECC",       "TRACE",     "INIT",      "SERDES",
    "CLK",       "PA",         "ACL",         "MCC",       "PRBS",      "MIRROR",    "STACK",
    "FLEXE",     "BFD",        "OAM",         "PTP",       "SYNCE",     "TTI",       "MACSEC",
    "LED",       "PGC",        "SFLOW",       "STORM",     "SRV6",      "DOS",       "ISOLATION",
    "TAS",       "DYGASP",     "KEEPALIVE",   "CHANNELVLAN", "CLI",     "HASH",      "TCAM_MGMT",
    "PORT_SWITCH", "MULTICAST", "DMA",        "misc",      "KETH",      "COMMON",    "DIRECT",
    "TOP",
};

const char *const g_sal_loglevel_name[5] = {"FATAL", "ERROR", "WARN", "INFO", "DEBUG"};

const char *shr_errmsg(i32 status)
{
    // Only 0 and negative statuses have texts; a positive value is a
    // caller's mistake and is reported like any code out of range.
    if (status > 0 || status < SHR_E_UNKNOWN) {
        return g_shr_errmsg[-SHR_E_UNKNOWN];
    }
    return g_shr_errmsg[-status];
}

const char *shr_module_name_get(u32 module_id)
{
    if (module_id >= SHR_MODULE_COUNT) {
        return "INVALID MODULE";
    }
    const char *name = g_shr_mod_name[module_id];
    return name != nullptr ? name : "UNKNOWN";
}

} // extern "C"
