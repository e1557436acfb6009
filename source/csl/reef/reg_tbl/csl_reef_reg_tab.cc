// The catalogue manager of each chip, the start and stop of the catalogue,
// and the module locks under which all generated accessors work.
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_hash_tab_op.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"

namespace {

// The tables of the exact-match hash engine keep an image from the start.
constexpr u32 kAtolreefCachedTables[] = {438, 439, 440};

int _csl_atolreef_table_cache(u32 chip_id, u8 enable)
{
    for (u32 tab_id : kAtolreefCachedTables) {
        if (csl_reef_tab_cache_enable_set(chip_id, tab_id, enable) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB,
                        enable ? "The table(id:%u) enable cache failed!\n" : "The table(id:%u) disable cache failed!\n",
                        tab_id);
            return SHR_E_INIT;
        }
    }
    return 0;
}

int _csl_atolreef_reg_tab_init(u32 chip_id)
{
    csl_reg_tab_cm *cm = g_csl_reg_tab_cm[chip_id];
    cm->reg_list = g_atolreef_reg_list;
    cm->tab_list = g_atolreef_tab_list;
    cm->reg_count = CIB_REG_LIST_SLOTS;
    cm->tab_count = CIB_TAB_LIST_SLOTS;
    const u64 bytes = sizeof(csl_tab_cache) * CIB_TAB_LIST_SLOTS;
    cm->tab_cache = static_cast<csl_tab_cache *>(xsal_malloc(bytes, "table cm cache", SHR_MOD_REG_TAB));
    if (cm->tab_cache == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(cm->tab_cache, 0, bytes);
    if (_csl_atolreef_table_cache(chip_id, 1) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "The table enable cache failed!\n");
        return SHR_E_INIT;
    }
    return 0;
}

int _csl_atolreef_reg_tab_deinit(u32 chip_id)
{
    csl_reg_tab_cm *cm = g_csl_reg_tab_cm[chip_id];
    int rc = 0;
    if (cm->tab_cache != nullptr) {
        if (_csl_atolreef_table_cache(chip_id, 0) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "The table disable cache failed!\n");
            rc = SHR_E_INIT;
        }
        // Every other image that is still on: the tables that made theirs
        // at the first write, and any that an operator turned on.
        for (u32 tab_id = 0; tab_id < cm->tab_count; tab_id++) {
            if (cm->tab_cache[tab_id].enabled && csl_reef_tab_cache_enable_set(chip_id, tab_id, 0) != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "The table(%u) disable cache failed!\n", tab_id);
                rc = SHR_E_INIT;
            }
        }
        xsal_mem_free(cm->tab_cache);
        cm->tab_cache = nullptr;
    }
    cm->reg_list = nullptr;
    cm->tab_list = nullptr;
    cm->reg_count = 0;
    cm->tab_count = 0;
    return rc;
}

// By chip type: only atolreef has a catalogue.
int (*const g_csl_reef_init_chip_func[5])(u32) = {nullptr, nullptr, nullptr, _csl_atolreef_reg_tab_init, nullptr};
int (*const g_csl_reef_deinit_chip_func[5])(u32) = {nullptr, nullptr, nullptr, _csl_atolreef_reg_tab_deinit,
                                                     nullptr};

bool _has_reg_lock(u32 m)
{
    return m != 31 && m != 33;
}

bool _has_tab_lock(u32 m)
{
    return m != 31 && m != 32 && m != 33;
}

} // namespace

extern "C" {

csl_reg_tab_cm *g_csl_reg_tab_cm[SHR_MAX_CHIPS];
xsal_mutex_t g_reef_module_reg_lock[SHR_MAX_CHIPS][CIB_MODULE_COUNT];
xsal_mutex_t g_reef_module_tab_lock[SHR_MAX_CHIPS][CIB_MODULE_COUNT];

int csl_reg_tab_cm_malloc(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (g_csl_reg_tab_cm[chip_id] != nullptr) {
        return 0;
    }
    auto *cm = static_cast<csl_reg_tab_cm *>(xsal_malloc(sizeof(csl_reg_tab_cm), "reg tab cm", SHR_MOD_REG_TAB));
    if (cm == nullptr) {
        return SHR_E_MEMORY;
    }
    memset(cm, 0, sizeof(*cm));
    g_csl_reg_tab_cm[chip_id] = cm;
    return 0;
}

void csl_reg_tab_cm_free(u32 chip_id)
{
    if (chip_id < SHR_MAX_CHIPS) {
        xsal_mem_free(g_csl_reg_tab_cm[chip_id]);
        g_csl_reg_tab_cm[chip_id] = nullptr;
    }
}

csl_reg_tab_cm *csl_reg_tab_cm_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_csl_reg_tab_cm[chip_id] : nullptr;
}

const cib_reg_info *csl_reef_reg_info_get(u32 chip_id, u32 reg_id)
{
    const csl_reg_tab_cm *cm = csl_reg_tab_cm_get(chip_id);
    if (cm == nullptr || cm->reg_list == nullptr || reg_id >= cm->reg_count) {
        return nullptr;
    }
    return cm->reg_list[reg_id];
}

const cib_tab_info *csl_reef_tab_info_get(u32 chip_id, u32 tab_id)
{
    const csl_reg_tab_cm *cm = csl_reg_tab_cm_get(chip_id);
    if (cm == nullptr || cm->tab_list == nullptr || tab_id >= cm->tab_count) {
        return nullptr;
    }
    return cm->tab_list[tab_id];
}

int csl_reef_not_in_build(u32 chip_id, u32 module_id, u32 level, const char *what)
{
    SHR_LOG(chip_id, module_id, level, "%s: no %s in this build\n", shr_chip_name_get(chip_id), what);
    return SHR_E_NOT_SUPPORT;
}

int csl_reef_tab_in_build(u32 chip_id, u32 tab_id, u32 module_id, u32 level, const char *what)
{
    return csl_reef_tab_info_get(chip_id, tab_id) != nullptr ? 0
                                                             : csl_reef_not_in_build(chip_id, module_id, level, what);
}

int csl_reef_reg_in_build(u32 chip_id, u32 reg_id, u32 module_id, u32 level, const char *what)
{
    return csl_reef_reg_info_get(chip_id, reg_id) != nullptr ? 0
                                                             : csl_reef_not_in_build(chip_id, module_id, level, what);
}

int csl_reef_catalogue_in_build(u32 chip_id, u32 module_id, u32 level)
{
    const csl_reg_tab_cm *cm = csl_reg_tab_cm_get(chip_id);
    const bool has = cm != nullptr && (cm->reg_list != nullptr || cm->tab_list != nullptr);
    return has ? 0 : csl_reef_not_in_build(chip_id, module_id, level, "catalogue");
}

int csl_reef_reg_tab_soft_init(u32 chip_id)
{
    if (csl_reg_tab_cm_malloc(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "The manager of reg tab malloc failed!\n");
        return SHR_E_NULL_PTR;
    }
    const u32 type = shr_chip_type_get(chip_id);
    if (type < 5 && g_csl_reef_init_chip_func[type] != nullptr && g_csl_reef_init_chip_func[type](chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[Base init] chip(%u) reg tab inited failed!\n", chip_id);
    }
    csl_reef_module_lock_init(chip_id);
    if (csl_write_file_lock_init(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[Base init] create write file lock failed!\n");
    }
    const int rc = csl_reef_hash_tab_soft_init(chip_id);
    const int tcam = csl_reef_tcam_tab_soft_init(chip_id);
    if (tcam != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[Base init] init tcam table failed!\n");
        return tcam;
    }
    return rc;
}

int csl_reef_reg_tab_soft_deinit(u32 chip_id)
{
    if (csl_reg_tab_cm_get(chip_id) == nullptr) {
        return 0;
    }
    const u32 type = shr_chip_type_get(chip_id);
    int rc = 0;
    if (type < 5 && g_csl_reef_deinit_chip_func[type] != nullptr) {
        rc = g_csl_reef_deinit_chip_func[type](chip_id);
    }
    csl_reg_tab_cm_free(chip_id);
    csl_reef_module_lock_deinit(chip_id);
    csl_write_file_lock_deinit(chip_id);
    csl_reef_hash_tab_soft_deinit(chip_id);
    csl_reef_tcam_tab_soft_deinit(chip_id);
    return rc;
}

// The TCAM is cleared by the chip before anything is written to it.
int csl_reef_reg_tab_hw_init(u32 chip_id)
{
    const int rc = csl_reef_tcam_tab_hw_init(chip_id);
    return rc != 0 ? rc : csl_reef_hash_tab_hw_init(chip_id);
}

int csl_reef_module_lock_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    char name[64];
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        if (_has_reg_lock(m) && g_reef_module_reg_lock[chip_id][m] == nullptr) {
            snprintf(name, sizeof(name), "module_%s_reg_lock", g_cib_module_name[m]);
            g_reef_module_reg_lock[chip_id][m] = xsal_mutex_create(name);
            if (g_reef_module_reg_lock[chip_id][m] == nullptr) {
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[Base init] create module reg lock failed!");
            }
        }
        if (_has_tab_lock(m) && g_reef_module_tab_lock[chip_id][m] == nullptr) {
            snprintf(name, sizeof(name), "module_%s_tab_lock", g_cib_module_name[m]);
            g_reef_module_tab_lock[chip_id][m] = xsal_mutex_create(name);
            if (g_reef_module_tab_lock[chip_id][m] == nullptr) {
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "[Base init] create module tab lock failed!");
            }
        }
    }
    return 0;
}

int csl_reef_module_lock_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        for (xsal_mutex_t *lock : {&g_reef_module_reg_lock[chip_id][m], &g_reef_module_tab_lock[chip_id][m]}) {
            if (*lock != nullptr) {
                xsal_mutex_destroy(*lock);
                *lock = nullptr;
            }
        }
    }
    return 0;
}

static xsal_mutex_t _csl_reef_reg_lock_of(u32 chip_id, u32 cib_module_id)
{
    if (chip_id >= SHR_MAX_CHIPS || cib_module_id >= CIB_MODULE_COUNT) {
        return nullptr;
    }
    return g_reef_module_reg_lock[chip_id][cib_module_id];
}

static xsal_mutex_t _csl_reef_tab_lock_of(u32 chip_id, u32 tab_id)
{
    const u32 m = g_direct_tab_id_to_module_id[tab_id];
    if (chip_id >= SHR_MAX_CHIPS || m >= CIB_MODULE_COUNT) {
        return nullptr;
    }
    return g_reef_module_tab_lock[chip_id][m];
}

int csl_reef_module_reg_get_lock(u32 chip_id, u32 cib_module_id)
{
    xsal_mutex_t lock = _csl_reef_reg_lock_of(chip_id, cib_module_id);
    return lock != nullptr && xsal_mutex_lock(lock) == 0 ? 0 : SHR_E_INIT;
}

int csl_reef_module_reg_get_unlock(u32 chip_id, u32 cib_module_id)
{
    xsal_mutex_t lock = _csl_reef_reg_lock_of(chip_id, cib_module_id);
    return lock != nullptr && xsal_mutex_unlock(lock) == 0 ? 0 : SHR_E_INIT;
}

int csl_reef_module_tab_get_lock(u32 chip_id, u32 tab_id)
{
    if (tab_id > CIB_TAB_ID_MAX) {
        return SHR_E_PARAM;
    }
    xsal_mutex_t lock = _csl_reef_tab_lock_of(chip_id, tab_id);
    return lock != nullptr && xsal_mutex_lock(lock) == 0 ? 0 : SHR_E_INIT;
}

int csl_reef_module_tab_get_unlock(u32 chip_id, u32 tab_id)
{
    if (tab_id > CIB_TAB_ID_MAX) {
        return SHR_E_PARAM;
    }
    xsal_mutex_t lock = _csl_reef_tab_lock_of(chip_id, tab_id);
    return lock != nullptr && xsal_mutex_unlock(lock) == 0 ? 0 : SHR_E_INIT;
}

} // extern "C"
