// The TCAM manager's start and stop, the acl_core registers of the blocks
// (mode, bank enables, kind bitmaps) behind their wrappers, the walks of a
// caller's block list, and the display of the resource.
#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"

extern "C" {

xsal_mutex_t g_tcam_mgmt_lock[SHR_MAX_CHIPS];
u32 g_tcam_mgmt_init[SHR_MAX_CHIPS];

} // extern "C"

namespace {

// The kind bitmap registers of atolreef by map type; 0 for none.
constexpr u32 kNoReg = 0;
constexpr u32 kKindReg[CSL_TCAM_MAP_TYPE_COUNT] = {
    cib_acl_core_tcamblock_cfg1, cib_acl_core_tcamblock_cfg0, kNoReg, cib_acl_core_tcamblock_cfg2,
    cib_acl_core_tcamblock_cfg3, cib_acl_core_tcamblock_cfg3, kNoReg, cib_acl_core_tcamblock_cfg4,
    cib_acl_core_tcamblock_cfg5, kNoReg, cib_acl_core_tcamblock_cfg6, kNoReg, kNoReg, kNoReg, kNoReg, kNoReg,
    kNoReg, cib_acl_core_tcamblock_cfg7, cib_acl_core_tcamblock_cfg8, cib_acl_core_tcamblock_cfg7,
    cib_acl_core_tcamblock_cfg8,
};

constexpr u32 kBankReg[16] = {
    cib_acl_core_tcam_glb_cbe0,  cib_acl_core_tcam_glb_cbe1,  cib_acl_core_tcam_glb_cbe2,  cib_acl_core_tcam_glb_cbe3,
    cib_acl_core_tcam_glb_cbe4,  cib_acl_core_tcam_glb_cbe5,  cib_acl_core_tcam_glb_cbe6,  cib_acl_core_tcam_glb_cbe7,
    cib_acl_core_tcam_glb_cbe8,  cib_acl_core_tcam_glb_cbe9,  cib_acl_core_tcam_glb_cbe10, cib_acl_core_tcam_glb_cbe11,
    cib_acl_core_tcam_glb_cbe12, cib_acl_core_tcam_glb_cbe13, cib_acl_core_tcam_glb_cbe14, cib_acl_core_tcam_glb_cbe15,
};

// The checks every wrapper makes: atolreef (-24), an out pointer (-20).
int _acl_core_check(u32 chip_id, const void *out)
{
    if (shr_chip_type_get(chip_id) != SHR_CHIP_TYPE_ATOLREEF) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "ERR: acl_core of chip %u is not supported\n", chip_id);
        return SHR_E_NOT_SUPPORT;
    }
    return out == nullptr ? SHR_E_NULL_PTR : 0;
}

int _block_check(u32 chip_id, u32 block)
{
    if (block >= sizeof(kBankReg) / sizeof(kBankReg[0])) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "Wrong tcam block id %u\n", block);
        return SHR_E_PARAM;
    }
    return 0;
}

int _logged(u32 chip_id, int rc)
{
    if (rc != 0) {
        SHR_LOG_ERRCODE(chip_id, rc);
    }
    return rc;
}

// A field of a register read or written in place.
int _field_get(u32 chip_id, u32 reg_id, const char *field, u32 *value)
{
    const tide::cib::Bits f = tide::cib::reg_field(csl_reef_reg_info_get(chip_id, reg_id), field);
    u32 word = 0;
    const int rc = csl_reef_reg_get_u32(chip_id, reg_id, &word);
    *value = f.get32(word);
    return _logged(chip_id, rc);
}

int _field_set(u32 chip_id, u32 reg_id, const char *field, u32 value)
{
    const tide::cib::Bits f = tide::cib::reg_field(csl_reef_reg_info_get(chip_id, reg_id), field);
    if (!f.ok() || value > f.max()) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "value 0x%x does not fit %s\n", value, field);
        return SHR_E_PARAM;
    }
    u32 word = 0;
    int rc = csl_reef_reg_get_u32(chip_id, reg_id, &word);
    if (rc == 0) {
        rc = csl_reef_reg_set_u32(chip_id, reg_id, f.put32(word, value));
    }
    return _logged(chip_id, rc);
}


// The list's nodes in order; a head of zeros is an empty list.
template <typename Fn>
void _each_node(const csl_tcam_block_node *head, Fn fn)
{
    for (const csl_tcam_block_node *n = head->next; n != nullptr && n != head; n = n->next) {
        if (!fn(*n)) {
            return;
        }
    }
}

// The names of the kinds that share each bitmap register.
constexpr const char *kKindRegNames[] = {"iacl-320", "iacl-160", "ipsg", "spa, eacl-s", "eacl-160", "eacl-320",
                                         "cpacl-320", "vacl-160, vt-160", "vacl-320, vt-320"};
constexpr u32 kKindRegOwner[] = {CSL_TCAM_MAP_IACL_320, CSL_TCAM_MAP_IACL_160, CSL_TCAM_MAP_IPSG,
                                 CSL_TCAM_MAP_SPA,      CSL_TCAM_MAP_EACL_160, CSL_TCAM_MAP_EACL_320,
                                 CSL_TCAM_MAP_CPACL_320, CSL_TCAM_MAP_VACL_160, CSL_TCAM_MAP_VACL_320};

void _hardware_show(u32 chip_id, const csl_tcam_resource &res)
{
    csl_output_func(chip_id, 0, "\nTCAM hardware resource\n%-6s %-6s %s\n", "block", "mode", "bank");
    for (u32 id = 0; id < res.total && id < sizeof(kBankReg) / sizeof(kBankReg[0]); id++) {
        u32 mode = 0, bank = 0;
        if (csl_reef_tcam_op_acl_core_tcam_block_mode_get(chip_id, id, &mode) != 0 ||
            csl_reef_tcam_op_acl_core_tcam_block_bank_get(chip_id, id, &bank) != 0) {
            return;
        }
        csl_output_func(chip_id, 0, "%-6u %-6u 0x%04x\n", id, mode, bank);
    }
    for (u32 i = 0; i < sizeof(kKindRegOwner) / sizeof(kKindRegOwner[0]); i++) {
        u32 bitmap = 0;
        if (csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(chip_id, kKindRegOwner[i], &bitmap) == 0) {
            csl_output_func(chip_id, 0, "tcamblock_cfg%u %-18s 0x%04x\n", i, kKindRegNames[i], bitmap);
        }
    }
    u32 cfgpri = 0;
    if (csl_reef_tcam_op_acl_core_tcam_block_cfgpri_get(chip_id, &cfgpri) == 0) {
        csl_output_func(chip_id, 0, "cfgpri %u\n", cfgpri);
    }
}

} // namespace

extern "C" {

int csl_reef_tcam_mgmt_init_soft(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (g_tcam_mgmt_init[chip_id] != 0) {
        return 0;
    }
    int rc = csl_reef_tcam_resource_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam resource init failed (%d)\n", rc);
        return rc;
    }
    g_tcam_mgmt_lock[chip_id] = xsal_mutex_create("tcam mgmt");
    if (g_tcam_mgmt_lock[chip_id] == nullptr) {
        csl_reef_tcam_resource_deinit(chip_id);
        return SHR_E_INIT;
    }
    for (csl_tcam_block_node &head : g_module_head[chip_id]) {
        csl_reef_tcam_block_list_init(&head);
    }
    g_tcam_mgmt_init[chip_id] = 1;
    return 0;
}

int csl_reef_tcam_mgmt_deinit_soft(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (g_tcam_mgmt_init[chip_id] == 0) {
        return 0;
    }
    // The lists of the module view go with the software; the hardware is
    // not touched.
    for (u32 m = 0; m < CSL_TCAM_UTILS_MODULES; m++) {
        csl_tcam_block_node *head = &g_module_head[chip_id][m];
        while (head->next != nullptr && head->next != head) {
            csl_tcam_block_node *n = head->next;
            head->next = n->next;
            xsal_mem_free(n);
        }
        csl_reef_tcam_block_list_init(head);
        g_module_alloced[chip_id][m] = 0;
    }
    xsal_mutex_destroy(g_tcam_mgmt_lock[chip_id]);
    g_tcam_mgmt_lock[chip_id] = nullptr;
    csl_reef_tcam_resource_deinit(chip_id);
    g_tcam_mgmt_init[chip_id] = 0;
    return 0;
}

int csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(u32 chip_id, u32 map_type, u32 *bitmap)
{
    int rc = _acl_core_check(chip_id, bitmap);
    if (rc == 0 && (map_type >= CSL_TCAM_MAP_TYPE_COUNT || kKindReg[map_type] == kNoReg)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "tcam map type %u has no block bitmap\n", map_type);
        rc = SHR_E_PARAM;
    }
    return rc != 0 ? rc : _logged(chip_id, csl_reef_reg_get_u32(chip_id, kKindReg[map_type], bitmap));
}

int csl_reef_tcam_op_acl_core_tcamblock_bitmap_set(u32 chip_id, u32 map_type, u32 bitmap)
{
    u32 unused = 0;
    int rc = csl_reef_tcam_op_acl_core_tcamblock_bitmap_get(chip_id, map_type, &unused);
    return rc != 0 ? rc : _logged(chip_id, csl_reef_reg_set_u32(chip_id, kKindReg[map_type], bitmap));
}

int csl_reef_tcam_op_acl_core_tcam_block_mode_get(u32 chip_id, u32 block, u32 *mode)
{
    int rc = _acl_core_check(chip_id, mode);
    if (rc == 0) {
        rc = _block_check(chip_id, block);
    }
    u32 all = 0;
    if (rc == 0) {
        rc = _field_get(chip_id, cib_acl_core_tcam_glb_cfg0, "blockmode", &all);
    }
    if (rc == 0) {
        *mode = (all >> (2 * block)) & 3;
    }
    return rc;
}

int csl_reef_tcam_op_acl_core_tcam_block_mode_set(u32 chip_id, u32 block, u32 mode)
{
    int rc = _acl_core_check(chip_id, &mode);
    if (rc == 0) {
        rc = _block_check(chip_id, block);
    }
    if (rc == 0 && mode > CSL_TCAM_MODE_UNSET) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TCAM_MGMT, "Wrong tcam block mode %u\n", mode);
        rc = SHR_E_PARAM;
    }
    u32 all = 0;
    if (rc == 0) {
        rc = _field_get(chip_id, cib_acl_core_tcam_glb_cfg0, "blockmode", &all);
    }
    if (rc == 0) {
        all = (all & ~(3u << (2 * block))) | mode << (2 * block);
        rc = _field_set(chip_id, cib_acl_core_tcam_glb_cfg0, "blockmode", all);
    }
    return rc;
}

int csl_reef_tcam_op_acl_core_tcam_block_bank_get(u32 chip_id, u32 block, u32 *bank)
{
    int rc = _acl_core_check(chip_id, bank);
    if (rc == 0) {
        rc = _block_check(chip_id, block);
    }
    return rc != 0 ? rc : _logged(chip_id, csl_reef_reg_get_u32(chip_id, kBankReg[block], bank));
}

int csl_reef_tcam_op_acl_core_tcam_block_bank_set(u32 chip_id, u32 block, u32 bank)
{
    int rc = _acl_core_check(chip_id, &bank);
    if (rc == 0) {
        rc = _block_check(chip_id, block);
    }
    return rc != 0 ? rc : _logged(chip_id, csl_reef_reg_set_u32(chip_id, kBankReg[block], bank));
}

int csl_reef_tcam_op_acl_core_tcam_block_cfgpri_get(u32 chip_id, u32 *cfgpri)
{
    const int rc = _acl_core_check(chip_id, cfgpri);
    return rc != 0 ? rc : _field_get(chip_id, cib_acl_core_tcam_glb_cfg1, "cfgpri", cfgpri);
}

int csl_reef_tcam_op_acl_core_tcam_block_cfgpri_set(u32 chip_id, u32 cfgpri)
{
    const int rc = _acl_core_check(chip_id, &cfgpri);
    return rc != 0 ? rc : _field_set(chip_id, cib_acl_core_tcam_glb_cfg1, "cfgpri", cfgpri);
}

int csl_reef_tcam_op_acl_core_tcam_block_480mode_get(u32 chip_id, u32 block, u32 *on)
{
    (void)block;
    (void)on;
    SHR_LOG_DBG(chip_id, SHR_MOD_TCAM_MGMT, "tcam 480-bit mode is not supported\n");
    return SHR_E_NOT_SUPPORT;
}

int csl_reef_tcam_op_acl_core_tcam_block_480mode_set(u32 chip_id, u32 block, u32 on)
{
    return csl_reef_tcam_op_acl_core_tcam_block_480mode_get(chip_id, block, &on);
}


int csl_reef_tcam_blocklist_get(u32 chip_id, const csl_tcam_block_node *head, u32 *count, u32 *ids)
{
    (void)chip_id;
    if (head == nullptr || count == nullptr || ids == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *count = 0;
    _each_node(head, [&](const csl_tcam_block_node &n) {
        ids[(*count)++] = n.block_id;
        return true;
    });
    return 0;
}

u32 csl_reef_tcam_block_list_size_get(u32 chip_id, const csl_tcam_block_node *head)
{
    (void)chip_id;
    u32 total = 0;
    if (head != nullptr) {
        _each_node(head, [&](const csl_tcam_block_node &n) {
            total += n.entries;
            return true;
        });
    }
    return total;
}

u32 csl_reef_tcam_block_size_get(u32 chip_id, const csl_tcam_block_node *head, u32 block_id)
{
    (void)chip_id;
    u32 entries = 0;
    if (head != nullptr) {
        _each_node(head, [&](const csl_tcam_block_node &n) {
            entries = n.block_id == block_id ? n.entries : 0;
            return n.block_id != block_id;
        });
    }
    return entries;
}

int csl_reef_tcam_block_entry_index_location_get(u32 idx, u32 *block, u32 *index, const csl_tcam_block_node *head)
{
    if (block == nullptr || index == nullptr || head == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (head->next == nullptr || head->next == head) {
        return SHR_E_NOT_FOUND;
    }
    const csl_tcam_block_node *n = head->next;
    while (idx >= n->entries && n->next != head) {
        idx -= n->entries;
        n = n->next;
    }
    *block = n->block_id;
    *index = idx;
    return 0;
}

int csl_reef_tcam_resource_show(u32 chip_id)
{
    const csl_tcam_resource *res = csl_reef_tcam_resource_get(chip_id);
    if (res == nullptr) {
        csl_output_func(chip_id, 0, "ERR: chip %u has no tcam resource\n", chip_id);
        return SHR_E_RESOURCE;
    }
    csl_output_func(chip_id, 0, "TCAM software resource: total %u  fixed %u  flexible %u  used %u\n", res->total,
                    res->fixed, res->flexible, res->used);
    csl_output_func(chip_id, 0, "%-6s %-5s %-5s %-4s %-10s %-7s %s\n", "block", "used", "mode", "480", "map-type",
                    "in-use", "entries");
    for (u32 id = 0; id < res->total; id++) {
        const csl_tcam_block &b = id < res->fixed ? res->fixed_blocks[id] : res->flex_blocks[id - res->fixed];
        const char *owner = b.map_type < CSL_TCAM_MAP_TYPE_COUNT ? g_tcam_mgmt_info[b.map_type].name : "-";
        csl_output_func(chip_id, 0, "%-6u %-5u %-5u %-4u %-10s 0x%04x  %u\n", id, b.used, b.mode, b.is_480, owner,
                        b.in_use, b.entries);
    }
    if (shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF) {
        _hardware_show(chip_id, *res);
    }
    return 0;
}

} // extern "C"
