// The replication engine of atolreef: its limits and its hardware init.
#include "dpl/reef/special/atolreef/dpl_atolreef_mcc.h"

#include <cstring>

#include "atolreef_cib.h"

extern "C" {

// Root ids 0 to 1023 (types l3mc and bc-tunnel do not exist), 2048 leaves,
// a group slot per root; a root takes up to 2047 copies.  The scanners
// hand out every leaf and every slot, the last ones included.
const dpl_reef_mcc_limits g_atolreef_mcc_limits = {1023, DPL_MCC_MLIB_LEAVES, 1024, DPL_MCC_COPY_MAX};

}

namespace {

constexpr u8 kAll[4] = {0xFF, 0xFF, 0xFF, 0xFF};

// One register written whole, with the failure's line.
template <typename Rec, int (*Set)(u32, u32, Rec *, u8 *)>
i32 _write(u32 chip_id, Rec rec, const char *name)
{
    u8 mask[4];
    memcpy(mask, kAll, sizeof(mask));
    const i32 rc = Set(chip_id, 0, &rec, mask);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "write %s fail, ret %d\n", name, (int)rc);
    }
    return rc;
}

i32 _pri_st(u32 chip_id)
{
    cib_mcc_pri_st_t r{};
    r.pri_full_h = 63;
    r.pri_full_l = 56;
    r.pri0_flag = r.pri1_flag = r.pri2_flag = r.pri3_flag = 1;
    r.pri4_flag = r.pri5_flag = r.pri6_flag = r.pri7_flag = 1;
    return _write<cib_mcc_pri_st_t, csl_reef_cib_mcc_pri_st_set>(chip_id, r, "mcc_pri_st");
}

i32 _qindx_st(u32 chip_id)
{
    cib_mcc_qindx_st_t r{};
    r.qindx_full_h = 127;
    r.qindx_full_l = 120;
    r.qindx0_flag = r.qindx1_flag = r.qindx2_flag = r.qindx3_flag = 1;
    r.qindx4_flag = r.qindx5_flag = r.qindx6_flag = r.qindx7_flag = 1;
    return _write<cib_mcc_qindx_st_t, csl_reef_cib_mcc_qindx_st_set>(chip_id, r, "mcc_qindx_st");
}

i32 _cpu_port(u32 chip_id)
{
    return _write<cib_mcc_cpu_port_cfg_t, csl_reef_cib_mcc_cpu_port_cfg_set>(chip_id, {31}, "mcc_cpu_port_cfg");
}

i32 _mcp_tokens(u32 chip_id)
{
    i32 rc = _write<cib_mcc_mcp_token_cnt_t, csl_reef_cib_mcc_mcp_token_cnt_set>(chip_id, {6}, "mcc_mcp_token_cnt");
    rc = rc != 0 ? rc : _write<cib_mcc_mcp_token_add_t, csl_reef_cib_mcc_mcp_token_add_set>(chip_id, {1}, "mcc_mcp_token_add");
    return rc != 0 ? rc
                   : _write<cib_mcc_mcp_token_dat_t, csl_reef_cib_mcc_mcp_token_dat_set>(chip_id, {254},
                                                                                            "mcc_mcp_token_dat");
}

i32 _bcp_tokens(u32 chip_id)
{
    i32 rc = _write<cib_mcc_bcp_token_cnt_t, csl_reef_cib_mcc_bcp_token_cnt_set>(chip_id, {3}, "mcc_bcp_token_cnt");
    rc = rc != 0 ? rc : _write<cib_mcc_bcp_token_add_t, csl_reef_cib_mcc_bcp_token_add_set>(chip_id, {1}, "mcc_bcp_token_add");
    return rc != 0 ? rc
                   : _write<cib_mcc_bcp_token_dat_t, csl_reef_cib_mcc_bcp_token_dat_set>(chip_id, {254},
                                                                                            "mcc_bcp_token_dat");
}

i32 _wrr(u32 chip_id)
{
    cib_mcc_uc_mc_wrr_t r{};
    r.mc_wrr = 1;
    r.uc_wrr = 1;
    return _write<cib_mcc_uc_mc_wrr_t, csl_reef_cib_mcc_uc_mc_wrr_set>(chip_id, r, "mcc_uc_mc_wrr");
}

// Every root: zero, with rep_num 1.
i32 _roots(u32 chip_id)
{
    u64 all[2] = {~0ull, ~0ull};
    for (u32 i = 0; i <= g_atolreef_mcc_limits.mrt_id_max; i++) {
        cib_mcc_mrt_t root{};
        root.rep_num = 1;
        const i32 rc = csl_reef_cib_mcc_mrt_set(chip_id, 0, i, &root, all);
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_MCC, "write mcc_mrt %u fail, ret %d\n", i, (int)rc);
            return rc;
        }
    }
    return 0;
}

constexpr i32 (*kHwSteps[])(u32) = {_pri_st, _qindx_st, _cpu_port, _mcp_tokens, _bcp_tokens, _wrr, _roots};

} // namespace

extern "C" i32 dpl_atolreef_mcc_hw_init(u32 chip_id)
{
    for (const auto step : kHwSteps) {
        const i32 rc = step(chip_id);
        if (rc != 0) {
            return rc;
        }
    }
    return 0;
}
