// The interrupt tree of atolreef.  The chip's line rises when a category
// register has a bit that is both set and enabled; the walk goes from the
// top register through the category registers (and, for the MAG, SerDes
// and MACsec sources, a second level) to the rows of the dispatch tables,
// and serves each leaf of a row: mask, optional ECC repair, count and
// callback under the engine's lock, clear, unmask.
#include <tide/property.h>

#include <atomic>
#include <cstring>

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"
#include "dpl/common/dpl_init_pre.h"
#include "dpl/reef/interrupt/dpl_reef_interrupt.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_interrupt_cm.h"

extern "C" {
atolreef_intr_callback_index g_atolreef_intr_callback_index[CIB_MODULE_COUNT];
atolreef_intr_callback_info *g_atolreef_intr_callback_info[SHR_MAX_CHIPS];
u32 g_atolreef_intr_all_module_total_intr_types;
u32 g_atolreef_intr_inited_chip_num;
u32 g_atolreef_intr_cb_index_inited_flag;
u32 g_atolreef_ecc_default_action[SHR_MAX_CHIPS];
}

namespace {

// A category: its two group registers, the first top id of its bits, and
// its registers of the MAG second level.
struct Category {
    const char *name;
    u32 group_status[2];
    u32 group_mask[2];
    u32 top_base;
    u32 mag_row_base; // first row of the second table
    u32 mag_subid;    // subid of mag_glb
    u32 mag_status;
    u32 mag_mask;
};

// In the order of the walk: warning, event, ecc, fatal; with the bit of
// each in the top register.
struct Walk {
    u32 top_bit;
    Category cat;
};
constexpr Walk kWalks[] = {
    {5, {"warning", {cib_lsw_hreg_lsw_warning_0, cib_lsw_hreg_lsw_warning_1},
         {cib_lsw_hreg_lsw_warning_0_msk, cib_lsw_hreg_lsw_warning_1_msk}, 81, 51, 0, cib_mag_glb_int_stat_warning,
         cib_mag_glb_mask_int_warning}},
    {4, {"event", {cib_lsw_hreg_lsw_event_0, cib_lsw_hreg_lsw_event_1},
         {cib_lsw_hreg_lsw_event_0_msk, cib_lsw_hreg_lsw_event_1_msk}, 54, 34, 1, cib_mag_glb_int_stat_event,
         cib_mag_glb_mask_int_event}},
    {3, {"ecc", {cib_lsw_hreg_lsw_ecc_0, cib_lsw_hreg_lsw_ecc_1}, {cib_lsw_hreg_lsw_ecc_0_msk, cib_lsw_hreg_lsw_ecc_1_msk},
         27, 17, 3, cib_mag_glb_int_stat_ecc, cib_mag_glb_mask_int_ecc}},
    {2, {"fatal", {cib_lsw_hreg_lsw_fatal_0, cib_lsw_hreg_lsw_fatal_1},
         {cib_lsw_hreg_lsw_fatal_0_msk, cib_lsw_hreg_lsw_fatal_1_msk}, 0, 0, 2, cib_mag_glb_int_stat_fatal,
         cib_mag_glb_mask_int_fatal}},
};

// Bits of a category register and their offsets from the category's top
// id: group 0 has 19 bits with a hole at 16, group 1 the bits 0 to 7.
constexpr u32 kGroup0Bits[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, 18, 19};
constexpr u32 kGroup0Count = sizeof(kGroup0Bits) / sizeof(kGroup0Bits[0]);
constexpr u32 kGroup1Bits = 8;
constexpr u32 kMagBit = 15;        // group 0
constexpr u32 kMacsecGlbBit = 17;  // group 0, ecc walk
constexpr u32 kSdsBit = 7;         // group 1, warning walk
constexpr u32 kMagSourceBits = 17; // bits of mag_glb's registers
constexpr u32 kSdsRowBase = 68;
// The MACsec sources of the ecc walk: module, status, mask (none for
// xsec_glb) and first row of the second table.
struct Macsec {
    const char *name;
    u32 module_id;
    u32 status;
    u32 mask;
    u32 row_base;
};
constexpr Macsec kMacsec[] = {
    {"xsec_glb", cib_module_xsec_glb, cib_xsec_glb_int_status, INTR_NO_REG, 70},
    {"xsec_dec", cib_module_xsec_dec, cib_xsec_dec_int_status, cib_xsec_dec_int_mask, 72},
    {"xsec_enc", cib_module_xsec_enc, cib_xsec_enc_int_status, cib_xsec_enc_int_mask, 74},
};
constexpr u32 kTcamPlanes = 3;
constexpr u32 kTcamBlocks = INTR_ECC_TCAM_CNT_ROWS / kTcamPlanes;
constexpr u32 kEccRewriteType = INTR_ECC_NOTICE | INTR_ECC_MULTI_BIT;
constexpr u32 kFbmEccShared[] = {10, 11};
constexpr u32 kFbmSharedTable = 334;

enum class Flow { next, stop_category, stop_all };

u32 _field(u32 word, u32 start, u32 width)
{
    if (start >= 32 || width == 0) {
        return 0;
    }
    const u32 v = word >> start;
    return width >= 32 ? v : v & ((1u << width) - 1);
}

// A register word by id (instance in the upper bits); logs the reason of a
// failure with the register's name.
i32 _read(u32 chip_id, u32 id, u32 *value, const char *name)
{
    const i32 rc = csl_reef_reg_get_u32(chip_id, id, value);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip id:%u, get %s reg data failed!\n", chip_id, name);
    }
    return rc;
}

bool _stopping(u32 chip_id)
{
    return dpl_reef_interrupt_thread_status_get(chip_id) != 0;
}

// The chip's rows of the store; the row of one type.
atolreef_intr_callback_info *_row(u32 chip_id, u32 module_id, u32 subid, u32 intr_id)
{
    atolreef_intr_callback_info *rows = g_atolreef_intr_callback_info[chip_id];
    if (rows == nullptr || module_id >= CIB_MODULE_COUNT) {
        return nullptr;
    }
    const atolreef_intr_callback_index &ix = g_atolreef_intr_callback_index[module_id];
    if (ix.subid_base == nullptr || subid >= ix.subid_count) {
        return nullptr;
    }
    return &rows[ix.base + ix.subid_base[subid] + intr_id];
}

// ---- the repair of a damaged row -------------------------------------------------------

i32 _ecc_table_rewrite(u32 chip_id, intr_module module, intr_type type)
{
    const intr_ecc_module_info &mi = g_atolreef_all_ecc_module_info[module.module_id];
    if (mi.ecc_type_count == 0 || mi.subid_rows == nullptr || mi.subid_rows[module.subid] == nullptr) {
        return 0;
    }
    const intr_ecc_row &row = mi.subid_rows[module.subid][type.intr_id];
    if (row.debug_reg == INTR_NO_DEBUG_REG) {
        return 0;
    }
    intr_ecc_info info{};
    i32 rc = dpl_atolreef_interrupt_ecc_info_get(chip_id, module, type, &info);
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
        return rc;
    }
    // A single-bit error is corrected by the memory itself.
    if (info.ecc_type != kEccRewriteType) {
        return 0;
    }
    switch (row.kind) {
    case INTR_ECC_KIND_DIRECT:
        rc = csl_reef_direct_table_rewrite(chip_id, info.table_id, info.table_index);
        break;
    case INTR_ECC_KIND_TCAM:
        if (module.subid >= kTcamPlanes) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! tcam type unknown!\n");
            return SHR_E_PARAM;
        }
        rc = csl_reef_tcam_tab_rewrite(chip_id, module.subid, (info.table_id & 0xFF) | (info.table_index & 0xFF) << 8);
        break;
    case INTR_ECC_KIND_HASH:
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! hash ecc error:module:%u subid:%u type:%u\n", module.module_id,
                    module.subid, type.intr_id);
        break;
    default:
        SHR_LOG_DBG(chip_id, SHR_MOD_ECC, "INFO! ecc type not belong to (DIRECT | TCAM | HASH)\n");
        break;
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

// ---- the default handling of a row ---------------------------------------------------

// One leaf: masked, repaired, counted and called back, cleared, unmasked.
i32 _serve(u32 chip_id, intr_module module, intr_type type)
{
    u32 mask = 0, status = 0;
    i32 rc = dpl_reef_interrupt_action_get(chip_id, module, type, DPL_INTR_MASK, &mask);
    if (rc == 0) {
        rc = dpl_reef_interrupt_action_get(chip_id, module, type, DPL_INTR_STATUS, &status);
    }
    if (rc != 0) {
        return rc;
    }
    SHR_LOG_DBG(chip_id, SHR_MOD_INTR, "module:0x%x  subid:%u  type:%u  mask:0x%x  status:0x%x\n", module.module_id,
                module.subid, type.intr_id, mask, status);
    if (mask == 0 || status == 0) {
        return 0;
    }
    rc = dpl_reef_interrupt_action_set(chip_id, module.module_id, module.subid, type.intr_id, type.addr_idx,
                                       INTR_DISABLE);
    if (rc != 0) {
        return rc;
    }
    if (__atomic_load_n(&g_atolreef_ecc_default_action[chip_id], __ATOMIC_RELAXED) == 1) {
        rc = _ecc_table_rewrite(chip_id, module, type);
        if (rc != 0) {
            return rc;
        }
    }
    {
        IntrLock lock(chip_id, __func__, __LINE__);
        atolreef_intr_callback_info *row = _row(chip_id, module.module_id, module.subid, type.intr_id);
        if (row != nullptr) {
            row->count++;
            if (row->callback != nullptr) {
                row->callback(chip_id, module, type);
            }
        }
    }
    rc = dpl_reef_interrupt_action_set(chip_id, module.module_id, module.subid, type.intr_id, type.addr_idx,
                                       INTR_CLEAR);
    if (rc == 0) {
        rc = dpl_reef_interrupt_action_set(chip_id, module.module_id, module.subid, type.intr_id, type.addr_idx,
                                           INTR_ENABLE);
    }
    return rc;
}

i32 _default_handle(u32 chip_id, const intr_dispatch_row &row)
{
    for (u32 m = 0; m < row.module_count; m++) {
        const intr_dispatch_module &e = row.modules[m];
        for (u32 s = 0; s < e.subid_count; s++) {
            const intr_dispatch_subid &sub = e.subids[s];
            for (u32 t = 0; t < sub.type_count; t++) {
                const i32 rc = _serve(chip_id, {e.module_id, sub.subid}, {sub.types[t], e.addr_idx});
                if (rc != 0) {
                    SHR_LOG_ERRCODE(chip_id, rc);
                    return rc;
                }
            }
        }
    }
    return 0;
}

// ---- the second level -------------------------------------------------------------------

// The bits of a second-level source set in its status (and mask, when it
// has one): each runs its row of the second table, then its own bit is
// cleared in `module`, subid `subid`.
Flow _second_level(u32 chip_id, const char *cat, const char *source, u32 status_reg, u32 mask_reg, u32 bits,
                   u32 row_base, u32 module_id, u32 subid, const char *status_name)
{
    u32 status = 0, mask = 0xFFFFFFFFu;
    if (_read(chip_id, status_reg, &status, status_name) != 0 ||
        (mask_reg != INTR_NO_REG && _read(chip_id, mask_reg, &mask, status_name) != 0)) {
        return Flow::stop_category;
    }
    for (u32 bit = 0; bit < bits; bit++) {
        if (!(status & mask & (1u << bit))) {
            continue;
        }
        if (_stopping(chip_id)) {
            return Flow::stop_all;
        }
        if (module_id == cib_module_mag_glb) {
            SHR_LOG_DBG(chip_id, SHR_MOD_INTR, "atolreef intr top mag id:%u\n", row_base + bit);
        }
        _default_handle(chip_id, g_atolreef_intr_mag_sds_xsec_dispatch_info[row_base + bit]);
        if (dpl_reef_interrupt_action_set(chip_id, module_id, subid, bit, 0, INTR_CLEAR) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! chip id:%u, clear %s %s:%u failed!\n", chip_id, cat, source,
                        bit);
            return Flow::stop_category;
        }
    }
    return Flow::next;
}

// One bit of a category register, by its top id.
Flow _serve_bit(u32 chip_id, const Category &cat, u32 group, u32 bit, u32 top_id)
{
    const bool ecc = cat.top_base == 27, warning = cat.top_base == 81;
    if (group == 0 && bit == kMagBit) {
        return _second_level(chip_id, cat.name, "mag", cat.mag_status, cat.mag_mask, kMagSourceBits, cat.mag_row_base,
                             cib_module_mag_glb, cat.mag_subid, "mag_glb");
    }
    if (group == 0 && ecc && bit >= kMacsecGlbBit) {
        const Macsec &x = kMacsec[bit - kMacsecGlbBit];
        return _second_level(chip_id, cat.name, x.name, x.status, x.mask, 2, x.row_base, x.module_id, 0, x.name);
    }
    if (group == 1 && warning && bit == kSdsBit) {
        return _second_level(chip_id, cat.name, "sds", cib_phy_glb_int_stat_warning, cib_phy_glb_mask_int_warning, 2,
                             kSdsRowBase, cib_module_phy_glb, 0, "phy_glb");
    }
    dpl_atolreef_interrupt_lswtop_default_func(chip_id, top_id);
    return Flow::next;
}

// A category: group 0, then group 1.  Stops everything when the thread is
// to end; a register that cannot be read ends the category.
Flow _walk(u32 chip_id, const Category &cat)
{
    for (u32 group = 0; group < 2; group++) {
        char name[32];
        xsal_snprintf(name, sizeof(name), "lsw_%s_%u", cat.name, group);
        u32 status = 0, mask = 0;
        if (_read(chip_id, cat.group_status[group], &status, name) != 0 ||
            _read(chip_id, cat.group_mask[group], &mask, name) != 0) {
            return Flow::stop_category;
        }
        if (status == 0 || mask == 0) {
            continue;
        }
        const u32 count = group == 0 ? kGroup0Count : kGroup1Bits;
        for (u32 k = 0; k < count; k++) {
            const u32 bit = group == 0 ? kGroup0Bits[k] : k;
            if (!(status & mask & (1u << bit))) {
                continue;
            }
            if (_stopping(chip_id)) {
                return Flow::stop_all;
            }
            const Flow f = _serve_bit(chip_id, cat, group, bit, cat.top_base + (group == 0 ? k : kGroup0Count + k));
            if (f != Flow::next) {
                return f;
            }
        }
    }
    return Flow::next;
}

// ---- the callback store --------------------------------------------------------------

void _index_free()
{
    for (atolreef_intr_callback_index &ix : g_atolreef_intr_callback_index) {
        xsal_mem_free(ix.subid_base);
        ix = {};
    }
    g_atolreef_intr_cb_index_inited_flag = 0;
    g_atolreef_intr_all_module_total_intr_types = 0;
}

i32 _index_build()
{
    u32 total = 0;
    for (u32 m = 0; m < CIB_MODULE_COUNT; m++) {
        const intr_module_info &mi = g_atolreef_all_intr_module_info[m];
        if (mi.subids == nullptr || mi.subid_count == 0) {
            continue;
        }
        atolreef_intr_callback_index &ix = g_atolreef_intr_callback_index[m];
        ix.subid_count = mi.subid_count;
        ix.base = total;
        ix.subid_base =
            static_cast<u32 *>(xsal_malloc(sizeof(u32) * mi.subid_count, "intr-cb-index", SHR_MOD_INTR));
        if (ix.subid_base == nullptr) {
            return SHR_E_MEMORY;
        }
        u32 sum = 0;
        for (u32 s = 0; s < mi.subid_count; s++) {
            ix.subid_base[s] = sum;
            sum += mi.subids[s].type_count;
        }
        total += sum;
    }
    g_atolreef_intr_all_module_total_intr_types = total;
    g_atolreef_intr_cb_index_inited_flag = 1;
    return 0;
}

i32 _register_init(u32 chip_id)
{
    IntrLock lock(chip_id, __func__, __LINE__);
    i32 rc = 0;
    if (!g_atolreef_intr_cb_index_inited_flag || g_atolreef_intr_inited_chip_num == 0) {
        _index_free();
        rc = _index_build();
    }
    if (rc == 0) {
        const u64 bytes = sizeof(atolreef_intr_callback_info) * g_atolreef_intr_all_module_total_intr_types;
        g_atolreef_intr_callback_info[chip_id] =
            static_cast<atolreef_intr_callback_info *>(xsal_malloc(bytes, "intr-cb-info", SHR_MOD_INTR));
        if (g_atolreef_intr_callback_info[chip_id] == nullptr) {
            rc = SHR_E_MEMORY;
        } else {
            memset(g_atolreef_intr_callback_info[chip_id], 0, bytes);
        }
    }
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! intr cb func malloc failed!\n");
        if (g_atolreef_intr_inited_chip_num == 0) {
            _index_free();
        }
    }
    return rc;
}

// ---- ECC details ------------------------------------------------------------------------

// The word of the details of icar or ecar: word `word` of entry 0 of a
// table.
i32 _ecc_table_word(u32 chip_id, u32 tab_id, u32 word, u32 *data, u32 *addr)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr || tab->addr == nullptr || word >= cib_entry_words(tab->width)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! Can not get register(id: %u)!\n", tab_id);
        return SHR_E_NOT_FOUND;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    u8 *buf = static_cast<u8 *>(xsal_malloc(bytes, "intr tab", SHR_MOD_ECC));
    if (buf == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! intr tab malloc failed!\n");
        return SHR_E_PARAM;
    }
    const i32 rc = csl_reef_tab_get_direct(chip_id, tab_id, 0, buf, bytes, CSL_TAB_HW);
    if (rc == 0) {
        memcpy(data, buf + 4 * word, 4);
        *addr = tab->addr[0] + 4 * word;
    }
    xsal_mem_free(buf);
    return rc;
}

bool _is_policer(u32 module_id)
{
    return module_id == cib_module_icar || module_id == cib_module_ecar;
}

} // namespace

IntrLock::IntrLock(u32 chip_id, const char *function, u32 line)
    : chip_(chip_id), rc_(dpl_lock_take(chip_id, DPL_LOCK_INTERRUPT, function, line))
{
}

IntrLock::~IntrLock()
{
    if (rc_ == 0) {
        dpl_lock_give(chip_, DPL_LOCK_INTERRUPT, __func__, __LINE__);
    }
}

extern "C" {

const intr_module_info *dpl_atolreef_interrupt_module_info_get(void)
{
    return g_atolreef_all_intr_module_info;
}

const intr_ecc_module_info *dpl_atolreef_ecc_module_info_get(void)
{
    return g_atolreef_all_ecc_module_info;
}

const intr_ecc_error_cnt *dpl_atolreef_ecc_error_cnt_get(u32 *count)
{
    if (count != nullptr) {
        *count = INTR_ECC_ERROR_CNT_ROWS;
    }
    return g_atolreef_all_ecc_error_cnt;
}

const intr_ecc_tcam_cnt *dpl_atolreef_ecc_tcam_error_cnt_get(u32 *count)
{
    if (count != nullptr) {
        *count = INTR_ECC_TCAM_CNT_ROWS;
    }
    return g_atolreef_all_ecc_error_tcam_cnt;
}

i32 dpl_atolreef_interrupt_cm_init(u32 chip_id)
{
    __atomic_store_n(&g_atolreef_ecc_default_action[chip_id], 0u, __ATOMIC_RELAXED);
    const i32 rc = _register_init(chip_id);
    if (rc == 0) {
        g_atolreef_intr_inited_chip_num++;
    }
    return rc;
}

i32 dpl_atolreef_interrupt_cm_deinit(u32 chip_id)
{
    if (g_atolreef_intr_callback_info[chip_id] == nullptr) {
        return 0; // its init never ran, or failed
    }
    if (g_atolreef_intr_inited_chip_num > 0 && --g_atolreef_intr_inited_chip_num == 0) {
        _index_free();
    }
    xsal_mem_free(g_atolreef_intr_callback_info[chip_id]);
    g_atolreef_intr_callback_info[chip_id] = nullptr;
    return 0;
}

atolreef_intr_callback_info *dpl_atolreef_interrupt_callback_row(u32 chip_id, u32 module_id, u32 subid,
                                                                 u32 intr_id)
{
    return _row(chip_id, module_id, subid, intr_id);
}

i32 dpl_atolreef_interrupt_lswtop_default_func(u32 chip_id, u32 top_id)
{
    SHR_LOG_DBG(chip_id, SHR_MOD_INTR, "atolreef intr top id:%u\n", top_id);
    if (top_id >= INTR_LSWTOP_ROWS || g_atolreef_intr_lswtop_dispatch_info[top_id].modules == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INTR, "ERROR! intr top id(%u) ptr is null!\n", top_id);
        return 0;
    }
    return _default_handle(chip_id, g_atolreef_intr_lswtop_dispatch_info[top_id]);
}

void dpl_atolreef_interrupt_cm(u32 chip_id)
{
    u32 top = 0;
    if (_read(chip_id, cib_lsw_hreg_int2cib_lsw_status, &top, "int2cib_lsw_status") != 0) {
        return;
    }
    for (const Walk &w : kWalks) {
        if ((top & (1u << w.top_bit)) && _walk(chip_id, w.cat) == Flow::stop_all) {
            return;
        }
    }
}

i32 dpl_atolreef_interrupt_hw_init(u32 chip_id)
{
    cib_lsw_hreg_cib2int_lsw_ctrl_t ctrl{};
    ctrl.cib2int_lsw2iopad_msk = 1;
    ctrl.cib2int_lsw2gic_msk = 1;
    u8 mask[4] = {};
    for (u32 m : {cib_lsw_hreg_cib2int_lsw_ctrl__cib2int_lsw2iopad_msk,
                  cib_lsw_hreg_cib2int_lsw_ctrl__cib2int_lsw2gic_msk}) {
        mask[m / 8] |= static_cast<u8>(1u << (m % 8));
    }
    i32 rc = csl_reef_cib_lsw_hreg_cib2int_lsw_ctrl_set(chip_id, 0, &ctrl, mask);
    if (rc == 0) {
        cib_acl_core_tcam_scan_enable_t scan{};
        scan.tcam_scan_en = 0xFFFF;
        u8 all[4] = {0xFF, 0xFF, 0xFF, 0xFF};
        rc = csl_reef_cib_acl_core_tcam_scan_enable_set(chip_id, 0, &scan, all);
    }
    for (const Walk &w : kWalks) {
        for (u32 reg : w.cat.group_mask) {
            if (rc == 0) {
                rc = csl_reef_reg_set_u32(chip_id, reg, 0);
            }
        }
    }
    if (rc == 0) {
        cib_sch_msic_reg_cfg_t sch{};
        sch.clr_int_cfg = 0xFFF;
        u8 m[4] = {};
        m[cib_sch_msic_reg_cfg__clr_int_cfg / 8] |= static_cast<u8>(1u << (cib_sch_msic_reg_cfg__clr_int_cfg % 8));
        rc = csl_reef_cib_sch_msic_reg_cfg_set(chip_id, 0, &sch, m);
    }
    if (rc == 0 && shr_property_get(chip_id, "init_clear_all_intr", 1) != 0) {
        rc = dpl_reef_interrupt_clear_all(chip_id);
    }
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

i32 dpl_atolreef_interrupt_ecc_error_cnt_get(u32 chip_id, intr_ecc_cnt_para para, u32 *cnt)
{
    u32 word = 0;
    if (para.type <= INTR_ECC_TYPE_TCAM_AD) {
        if (para.id >= kTcamBlocks) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! tcam_block_id must less than %u!\n", kTcamBlocks);
            return SHR_E_PARAM;
        }
        const intr_ecc_tcam_cnt &row = g_atolreef_all_ecc_error_tcam_cnt[para.id + kTcamBlocks * para.type];
        const i32 rc = csl_reef_reg_get_u32(chip_id, row.reg_id, &word);
        if (rc != 0) {
            return rc;
        }
        cnt[0] = _field(word, row.start0, row.width0);
        if (para.type != INTR_ECC_TYPE_TCAM_AD) {
            cnt[1] = _field(word, row.start1, row.width1);
        }
        return 0;
    }
    for (const intr_ecc_error_cnt &row : g_atolreef_all_ecc_error_cnt) {
        if (row.table_id == para.id) {
            const i32 rc = csl_reef_reg_get_u32(chip_id, row.reg_id, &word);
            if (rc == 0) {
                cnt[0] = _field(word, row.start, row.width);
            }
            return rc;
        }
    }
    SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! tab id %u has no ecc count debug!\n", para.id);
    return SHR_E_PARAM;
}

i32 dpl_atolreef_interrupt_ecc_info_get(u32 chip_id, intr_module module, intr_type type, intr_ecc_info *info)
{
    const char *name = g_cib_module_name[module.module_id];
    if (module.module_id == cib_module_fbm && module.subid == 0 &&
        (type.intr_id == kFbmEccShared[0] || type.intr_id == kFbmEccShared[1])) {
        u32 shared = 0, status = 0;
        if (_read(chip_id, cib_fbm_share_ram_cfg, &shared, "fbm_share_ram_cfg") != 0) {
            return SHR_E_FAIL;
        }
        if ((shared & 3u) != 1) {
            return 0;
        }
        if (_read(chip_id, cib_fbm_int_status_ecc, &status, "fbm_int_status_ecc") != 0) {
            return SHR_E_FAIL;
        }
        info->ecc_type = kEccRewriteType;
        info->ecc_reg_addr = csl_reef_reg_info_get(chip_id, cib_fbm_int_status_ecc)->addr[0];
        info->ecc_reg_data = status;
        info->ecc_kind = INTR_ECC_KIND_HASH;
        info->table_id = kFbmSharedTable;
        return 0;
    }
    const intr_ecc_module_info &mi = g_atolreef_all_ecc_module_info[module.module_id];
    if (mi.ecc_type_count == 0 || mi.subid_rows == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! Module %s has no ecc information!\n", name);
        return SHR_E_NOT_FOUND;
    }
    const intr_ecc_row *rows = mi.subid_rows[module.subid];
    if (rows == nullptr || rows[type.intr_id].debug_reg == INTR_NO_DEBUG_REG) {
        SHR_LOG_INF(chip_id, SHR_MOD_ECC, "ERROR! The intr no ecc debug reg(module id:%u subid:%u intr id:%u)!\n",
                    module.module_id, module.subid, type.intr_id);
        return SHR_E_NOT_FOUND;
    }
    const intr_ecc_row &row = rows[type.intr_id];
    const u32 id = row.debug_reg & CIB_ID_MASK, inst = row.debug_reg >> CIB_INDEX_SHIFT;
    u32 data = 0, addr = 0;
    if (_is_policer(module.module_id)) {
        const i32 rc = _ecc_table_word(chip_id, id, inst, &data, &addr);
        if (rc != 0) {
            return rc;
        }
    } else {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, id);
        if (reg == nullptr || reg->addr == nullptr) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ECC, "ERROR! Can not get register(id: %u)!\n", id);
            return SHR_E_NOT_FOUND;
        }
        const u32 count = static_cast<u32>(reg->a) * reg->b;
        if (type.addr_idx >= count) {
            SHR_LOG_ERR(chip_id, SHR_MOD_ECC,
                        "ERROR! In module %s(id:%u) subid(%u) intr-id(%u): addr_idx must less than %u!\n", name,
                        module.module_id, module.subid, type.intr_id, count);
            return SHR_E_PARAM;
        }
        const i32 rc = csl_reef_reg_get_u32(chip_id, row.debug_reg, &data);
        if (rc != 0) {
            return rc;
        }
        addr = reg->addr[inst];
    }
    info->ecc_reg_addr = addr;
    info->ecc_reg_data = data;
    info->ecc_type = row.type_start == INTR_NO_FIELD ? 0 : _field(data, row.type_start, row.type_width);
    const u32 index = row.index_start == INTR_NO_FIELD ? 0 : _field(data, row.index_start, row.index_width);
    info->ecc_kind = row.kind;
    if (row.kind == INTR_ECC_KIND_DIRECT || row.kind == INTR_ECC_KIND_HASH || row.kind == INTR_ECC_KIND_TCAM) {
        info->table_id = row.table_id;
        info->table_index = index;
    }
    info->ecc_cnt = 0xFFFFFFFFu;
    info->ecc_cnt2 = 0xFFFFFFFFu;
    if (module.module_id == cib_module_acl_core) {
        u32 cnt[2] = {};
        if (dpl_atolreef_interrupt_ecc_error_cnt_get(chip_id, {module.subid, type.intr_id}, cnt) == 0) {
            info->ecc_cnt = cnt[0];
            info->ecc_cnt2 = cnt[1];
        }
        return 0;
    }
    for (const intr_ecc_error_cnt &c : g_atolreef_all_ecc_error_cnt) {
        if (c.module_id == module.module_id && c.subid == module.subid && c.intr_id == type.intr_id) {
            u32 cnt[2] = {};
            if (dpl_atolreef_interrupt_ecc_error_cnt_get(chip_id, {INTR_ECC_TYPE_DIRECT_TAB, c.table_id}, cnt) == 0) {
                info->ecc_cnt = cnt[0];
            }
            break;
        }
    }
    return 0;
}

} // extern "C"
