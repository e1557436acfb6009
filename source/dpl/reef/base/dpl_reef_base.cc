// The base service of the reef family.
#include <strings.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "api/api_families.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_field.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"
#include "csl/reef/service/tcam_mgmt/csl_reef_tcam_mgmt.h"
#include "dpl/reef/base/dpl_reef_base.h"
#include "dpl/reef/base/dpl_reef_base_hash.h"
#include "dpl/reef/base/dpl_reef_base_index_manage.h"
#include "csl/common/port/csl_port.h"
#include "shared/shr_property_int.h"
#include "atolreef_cib.h"

extern "C" {

static u32 g_dpl_reef_base_soft_inited[SHR_MAX_CHIPS];

// The catalogue comes first: everything after it speaks in its terms.  A
// failure of it is logged and the sequence goes on.
i32 dpl_reef_base_soft_init(u32 chip_id)
{
    if (csl_reef_reg_tab_soft_init(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[SOFT-INIT: %13s] reg tab soft init failed!\n", "base");
    }
    if (csl_reef_tcam_mgmt_init_soft(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[SOFT-INIT: %13s] tcam mgmt init failed!\n", "base");
    }
    if (dpl_reef_base_index_manage_init(chip_id) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[SOFT-INIT: %13s] index manage init failed!\n", "base");
    }
    g_dpl_reef_base_soft_inited[chip_id] = 1;
    return 0;
}

i32 dpl_reef_base_soft_deinit(u32 chip_id)
{
    dpl_reef_base_index_manage_deinit(chip_id);
    csl_reef_tcam_mgmt_deinit_soft(chip_id);
    const i32 rc = csl_reef_reg_tab_soft_deinit(chip_id);
    g_dpl_reef_base_soft_inited[chip_id] = 0;
    return rc;
}

// Every port of the chip's port table takes packets in and out, and its
// egress counters count by type 3.
static i32 _dpl_reef_pat_tbl_valid_hw_init(u32 chip_id)
{
    const csl_port_control *ctl = g_csl_port_control[chip_id];
    const u32 ports = ctl != nullptr ? ctl->lport_count : 0;
    i32 rc = 0;
    for (u32 port = 0; port < ports; port++) {
        cib_ipro_ipat_tbl_t ipat{};
        ipat.vld = 1;
        u64 ipat_mask[2] = {};
        ipat_mask[cib_ipro_ipat_tbl__vld / 64] = 1ull << (cib_ipro_ipat_tbl__vld % 64);
        if (csl_reef_cib_ipro_ipat_tbl_set(chip_id, 0, port, &ipat, ipat_mask) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "set port:%u ipat vld fail!!!\n", port);
            rc = SHR_E_FAIL;
            break;
        }
        cib_epro_epat_table_t epat{};
        epat.vld = 1;
        epat.port_cnt_type = 3;
        u64 epat_mask[2] = {};
        for (u32 bit : {(u32)cib_epro_epat_table__vld, (u32)cib_epro_epat_table__port_cnt_type}) {
            epat_mask[bit / 64] |= 1ull << (bit % 64);
        }
        if (csl_reef_cib_epro_epat_table_set(chip_id, 0, port, &epat, epat_mask) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "set port:%u epat vld fail or egress counter type fail !!!\n", port);
            rc = SHR_E_FAIL;
            break;
        }
    }
    return rc;
}

// Every cause id is valid and copies to the CPU by its queue index; the
// other fields keep what the chip holds.
static i32 _dpl_reef_init_cause_tbl_en(u32 chip_id)
{
    if (shr_property_get(chip_id, "causid_en", 1) != 1) {
        return 0;
    }
    // A chip type whose cause id table the build does not describe keeps
    // the chip's own: the step is left out, with a line that says so.
    if (csl_reef_tab_in_build(chip_id, cib_epro_causeid_table, SHR_MOD_INIT, SHR_LOG_WARN, "cause id table") != 0) {
        return 0;
    }
    const u32 depth = cib_tab_depth(csl_reef_tab_info_get(chip_id, cib_epro_causeid_table));
    u64 mask[2] = {};
    mask[0] = (1ull << cib_epro_causeid_table__vld) | (1ull << cib_epro_causeid_table__cp_qindex_en);
    for (u32 i = 0; i < depth; i++) {
        cib_epro_causeid_table_t row{};
        row.vld = 1;
        row.cp_qindex_en = 1;
        const i32 rc = csl_reef_cib_epro_causeid_table_set(chip_id, 0, i, &row, mask);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "cause id init failed!!!!!!![ret=%d]\n", (int)rc);
            return rc;
        }
    }
    return 0;
}

i32 dpl_reef_base_hw_init(u32 chip_id)
{
    if (shr_property_get(chip_id, "ram_dft_test", 0) == 1) {
        const i32 rc = csl_reef_chip_ram_dft_test(chip_id);
        if (rc != 0) {
            SHR_LOG_INF(chip_id, SHR_MOD_INIT, "[CHIP-INIT: %13s] ram test failed!\n", "base");
            return rc < 0 ? rc : SHR_E_INIT;
        }
    }
    i32 rc = csl_reef_reg_tab_hw_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[CHIP-INIT: %13s] reg tab soft init failed!\n", "base");
        return rc;
    }
    rc = _dpl_reef_pat_tbl_valid_hw_init(chip_id);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[CHIP-INIT: %13s] ipat or epat set valid failed!\n", "base");
        return rc;
    }
    rc = _dpl_reef_init_cause_tbl_en(chip_id);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_INIT, "[CHIP-INIT: %13s] cause id init failed!\n", "base");
    }
    return rc;
}

i32 dpl_reef_base_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

// The doors by name and by field find their registers and tables in the
// chip's catalogue: -3 for a chip that is not valid, -24 with a line for a
// chip type whose catalogue the build lacks.  The doors by address need
// none and work on every type.
static i32 _dpl_reef_base_catalogue_check(u32 chip_id)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return csl_reef_catalogue_in_build(chip_id, SHR_MOD_TOP, SHR_LOG_ERROR);
}

i32 dpl_reef_base_reg_set_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return csl_reef_reg_set_by_addr(chip_id, addr, data, bytes);
}

i32 dpl_reef_base_reg_get_by_addr(u32 chip_id, u32 addr, u8 *data, u8 bytes)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return csl_reef_reg_get_by_addr(chip_id, addr, data, bytes);
}

i32 dpl_reef_base_direct_tab_set_by_name(u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes)
{
    const i32 rc = _dpl_reef_base_catalogue_check(chip_id);
    return rc != 0 ? rc : csl_reef_direct_tab_set_by_name(chip_id, name, index, data, bytes);
}

i32 dpl_reef_base_direct_tab_get_by_name(u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes)
{
    const i32 rc = _dpl_reef_base_catalogue_check(chip_id);
    return rc != 0 ? rc : csl_reef_direct_tab_get_by_name(chip_id, name, index, data, bytes);
}

i32 dpl_reef_base_field_set(u32 chip_id, base_field_op *op)
{
    const i32 rc = _dpl_reef_base_catalogue_check(chip_id);
    return rc != 0 ? rc : csl_reef_field_set(chip_id, op, CSL_TAB_HW);
}

i32 dpl_reef_base_field_get(u32 chip_id, base_field_op *op, const char *file)
{
    const i32 rc = _dpl_reef_base_catalogue_check(chip_id);
    return rc != 0 ? rc : csl_reef_field_get(chip_id, op, file, CSL_TAB_HW);
}

i32 dpl_reef_base_tab_data_to_string(u32 chip_id, const char *table_name, u8 *data, char *text, u32 size)
{
    const i32 rc = _dpl_reef_base_catalogue_check(chip_id);
    // Every field, also those of value 0, and the entry's bytes first.
    return rc != 0 ? rc
                   : csl_table_data_to_string(chip_id, table_name, data, text, size, 0x100000000ull, 0x100000000ull, 0);
}

i32 dpl_reef_base_chip_module_cnt_show(u32 chip_id, const char *module, const char *file, u32 mask,
                                       u32 limit_bytes, u32 raw)
{
    i32 rc = _dpl_reef_base_catalogue_check(chip_id);
    if (rc != 0) {
        return rc;
    }
    if (module == nullptr) {
        return SHR_E_PARAM;
    }
    const u32 to_file = file != nullptr && *file != '\0' ? 1 : 0;
    if (to_file && csl_write_file_open(chip_id, file, limit_bytes) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_TOP, "Open dump file failed!\n");
        return SHR_E_FAIL;
    }
    // A prefix of "all", in any case, dumps every module.
    const size_t len = strlen(module);
    const bool all = len > 0 && len <= 3 && strncasecmp(module, "all", len) == 0;
    const char *failed = module;
    // The TCAM's rows come with every module, or alone by their mask bit.
    constexpr u32 kTcamOnly = 0x4000000u;
    if (!all) {
        rc = csl_reef_module_cnt_show(chip_id, module, to_file, mask, raw);
    } else if (mask != kTcamOnly) {
        for (u32 m = 0; m < CIB_MODULE_COUNT && rc == 0; m++) {
            if (atolreef_allmodule_list[m].name != nullptr) {
                failed = atolreef_allmodule_list[m].name;
                rc = csl_reef_module_cnt_show(chip_id, failed, to_file, mask, raw);
            }
        }
    }
    if (all && rc == 0 && (mask == kTcamOnly || mask == 0xFFFFFFFFu)) {
        failed = "tcam";
        rc = csl_reef_tcam_tab_dump_all(chip_id, to_file, raw ? 0 : 1);
    }
    if (rc == SHR_E_FULL) {
        csl_output_func(chip_id, 0, "WARN: file %s has reached limit-MBytes (%u Mb)\n", file != nullptr ? file : "",
                        limit_bytes / 1048576);
        rc = 0;
    }
    if (to_file) {
        csl_write_file_close(chip_id);
    }
    if (rc == SHR_E_NOT_FOUND) {
        csl_output_func(chip_id, 0, "ERR: no module named %s\n", module);
    } else if (rc < 0) {
        csl_output_func(chip_id, 0, "ERR: dump module named %s Fail (errmsg: %s)\n", failed, shr_errmsg(rc));
    }
    return rc;
}

// Test registers and the value each reads back after 0x5A5A5A5A: the
// "_n" registers return the complement of what is written.
struct TestReg {
    u32 id;
    u32 expect;
};
constexpr u32 kTestPattern = 0x5A5A5A5Au;
constexpr TestReg kTestRegs[] = {
    {cib_lsw_hreg_test_reg, kTestPattern},     {cib_pa_test_reg, kTestPattern},
    {cib_epro_test_reg, kTestPattern},         {cib_ipro_test_reg, kTestPattern},
    {cib_lsw_hreg_test_reg_n, ~kTestPattern},  {cib_ipro_test_reg_n, ~kTestPattern},
};

// Every instance of every test register written and read back; a register
// the catalogue lacks is skipped.
i32 dpl_reef_base_control_get(u32 chip_id, base_test_cfg *cfg)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (cfg == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (cfg->type != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "test type %u is not supported\n", cfg->type);
        return SHR_E_PARAM;
    }
    cfg->result = 1;
    for (const TestReg &t : kTestRegs) {
        const cib_reg_info *reg = csl_reef_reg_info_get(chip_id, t.id);
        const u32 count = reg != nullptr ? static_cast<u32>(reg->a) * reg->b : 0;
        for (u32 inst = 0; inst < count; inst++) {
            u32 back = 0;
            i32 rc = csl_reef_reg_set_u32(chip_id, CIB_ID(t.id, inst), kTestPattern);
            if (rc == 0) {
                rc = csl_reef_reg_get_u32(chip_id, CIB_ID(t.id, inst), &back);
            }
            if (rc != 0) {
                SHR_LOG_ERRCODE(chip_id, rc);
                return rc;
            }
            if (back != t.expect) {
                char name[48];
                snprintf(name, sizeof(name), count > 1 ? "%s[%u]" : "%s", reg->name, inst);
                SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "name:%-30s  write data:0x%08x   read data:0x%08x\n", name,
                            kTestPattern, back);
                cfg->result = 0;
                return SHR_E_TIMEOUT;
            }
        }
    }
    return 0;
}

// The slots of the base family that this layer fills; the others stay
// empty and answer -24.
static constexpr reef_base_dispatch_t _dpl_reef_base_dispatch_make()
{
    reef_base_dispatch_t t{};
    t.reg_set_by_addr = dpl_reef_base_reg_set_by_addr;
    t.reg_get_by_addr = dpl_reef_base_reg_get_by_addr;
    t.direct_tab_set_by_name = dpl_reef_base_direct_tab_set_by_name;
    t.direct_tab_get_by_name = dpl_reef_base_direct_tab_get_by_name;
    t.field_set = dpl_reef_base_field_set;
    t.field_get = dpl_reef_base_field_get;
    t.tab_data_to_string = dpl_reef_base_tab_data_to_string;
    t.hash_tab_summary_show = dpl_reef_base_hash_tab_summary_show;
    t.hash_tab_op = dpl_reef_base_hash_tab_op;
    t.hash_tab_dump = dpl_reef_base_hash_tab_dump;
    t.hash_alg_set = dpl_reef_base_hash_alg_set;
    t.hash_alg_get = dpl_reef_base_hash_alg_get;
    t.hash_info_show = dpl_reef_base_hash_info_show;
    t.tcam_summary_show = dpl_reef_base_tcam_summary_show;
    t.tcam_resource_show = dpl_reef_base_tcam_resource_show;
    t.tcam_add = dpl_reef_base_tcam_add;
    t.tcam_del = dpl_reef_base_tcam_del;
    t.tcam_show = dpl_reef_base_tcam_show;
    t.chip_module_cnt_show = dpl_reef_base_chip_module_cnt_show;
    t.control_get = dpl_reef_base_control_get;
    return t;
}

extern const reef_base_dispatch_t reef_base_dispatch = _dpl_reef_base_dispatch_make();

} // extern "C"
