// Selection of a chip's MACsec driver.
#include "csl/common/macsec/csl_macsec.h"

#include "atolreef_cib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"

namespace {

const csl_macsec_ops_t *g_csl_macsec_ops[SHR_MAX_CHIPS];

} // namespace

extern "C" {

i32 csl_common_macsec_base_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_UNIT;
    }
    g_csl_macsec_ops[chip_id] = nullptr;
    // The siblings' engines are not described in this build: their calls
    // are refused later, one by one.
    if (csl_reef_tab_in_build(chip_id, cib_xsec_enc_enc_sa_tbl, SHR_MOD_MACSEC, SHR_LOG_INFO, "MACsec engine") != 0) {
        return 0;
    }
    g_csl_macsec_ops[chip_id] = &g_csl_macsec_atolreef;
    SHR_LOG_INF(chip_id, SHR_MOD_MACSEC, "macsec init type: atolreef \n");
    return 0;
}

i32 csl_common_macsec_probe(u32 chip_id, const csl_macsec_ops_t **out)
{
    if (chip_id >= SHR_MAX_CHIPS || out == nullptr) {
        return SHR_E_PARAM;
    }
    *out = g_csl_macsec_ops[chip_id];
    return 0;
}

} // extern "C"
