// The module view of the TCAM manager: the features that take a fixed set
// of blocks at start and keep them (packet analysis, VLAN translation)
// hold one block list each here, by module number.
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"

extern "C" {

csl_tcam_block_node g_module_head[SHR_MAX_CHIPS][CSL_TCAM_UTILS_MODULES];
u32 g_module_alloced[SHR_MAX_CHIPS][CSL_TCAM_UTILS_MODULES];

} // extern "C"

namespace {

// The map type of each module: 0 spa, 1 vt-160 (p-plus-v on the kelpreef
// chips), 2 vt-320, 3 to 5 the tunnel tables, which atolreef lacks.
constexpr u32 kModuleType[CSL_TCAM_UTILS_MODULES] = {CSL_TCAM_MAP_SPA,     CSL_TCAM_MAP_VT_160, CSL_TCAM_MAP_VT_320,
                                                     CSL_TCAM_MAP_TT_MYSTA, CSL_TCAM_MAP_TT_IP, CSL_TCAM_MAP_TT_SRV6};
constexpr u32 kFirstTunnelModule = 3;

// The module's map type after the checks of every call: chip and module
// (-4), a module this chip lacks (-24), whether it holds blocks (-11 when
// that is not what the call wants).
int _module_check(u32 chip_id, u32 module, bool want_alloced, u32 *map_type)
{
    if (chip_id >= SHR_MAX_CHIPS || module >= CSL_TCAM_UTILS_MODULES) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam utils: wrong chip %u or module %u\n", chip_id, module);
        return SHR_E_PARAM;
    }
    const bool atolreef = shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF;
    if (atolreef && module >= kFirstTunnelModule) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam utils: module %u is not on this chip\n", module);
        return SHR_E_NOT_SUPPORT;
    }
    if ((g_module_alloced[chip_id][module] != 0) != want_alloced) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam utils: module %u %s\n", module,
                    want_alloced ? "holds no blocks" : "holds blocks already");
        return SHR_E_FAIL;
    }
    *map_type = module == CSL_TCAM_UTILS_VT_160 && !atolreef ? static_cast<u32>(CSL_TCAM_MAP_P_PLUS_V) : kModuleType[module];
    return 0;
}

// Marks the module as holding its list when `rc` is 0.
int _alloced(u32 chip_id, u32 module, int rc)
{
    if (rc == 0) {
        g_module_alloced[chip_id][module] = 1;
    }
    return rc;
}

} // namespace

extern "C" {

int csl_reef_tcam_utils_block_alloc(u32 chip_id, u32 module, u32 entries)
{
    u32 map_type = 0;
    const int rc = _module_check(chip_id, module, false, &map_type);
    return rc != 0 ? rc
                   : _alloced(chip_id, module,
                              csl_reef_tcam_block_auto_alloc(chip_id, entries, map_type, &g_module_head[chip_id][module]));
}

int csl_reef_tcam_utils_block_manual_alloc(u32 chip_id, u32 module, u32 count, const u32 *ids)
{
    u32 map_type = 0;
    const int rc = _module_check(chip_id, module, false, &map_type);
    return rc != 0 ? rc
                   : _alloced(chip_id, module,
                              csl_reef_tcam_block_manual_alloc(chip_id, count, ids, map_type,
                                                               &g_module_head[chip_id][module]));
}

int csl_reef_tcam_utils_block_free(u32 chip_id, u32 module)
{
    u32 map_type = 0;
    int rc = _module_check(chip_id, module, true, &map_type);
    if (rc == 0) {
        rc = csl_reef_tcam_block_free(chip_id, map_type, &g_module_head[chip_id][module]);
    }
    if (rc == 0) {
        g_module_alloced[chip_id][module] = 0;
    }
    return rc;
}

int csl_reef_tcam_utils_index_to_block_index(u32 chip_id, u32 module, u32 idx, u32 *block, u32 *index)
{
    u32 map_type = 0;
    const int rc = _module_check(chip_id, module, true, &map_type);
    return rc != 0 ? rc
                   : csl_reef_tcam_block_entry_index_location_get(idx, block, index, &g_module_head[chip_id][module]);
}

} // extern "C"
