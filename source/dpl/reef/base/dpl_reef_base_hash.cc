// The hash doors of the base service: operations on an entry by table
// name, dumps, the barrels' algorithms and the displays of the hash tables.
// Each turns the table's name into its hash type, refuses what the chip
// does not have and says the outcome on the output channel.
#include "dpl/reef/base/dpl_reef_base_hash.h"

#include <strings.h>

#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_hash_show.h"

namespace {

constexpr u32 kNoType = CSL_HASH_TYPE_COUNT;

// The hash type of a table name, without regard to case; kNoType for
// another name.
u32 _type_of(const char *table)
{
    for (u32 t = 0; table != nullptr && t < CSL_HASH_TYPE_COUNT; t++) {
        if (strcasecmp(table, g_csl_hash_type_name[t]) == 0) {
            return t;
        }
    }
    return kNoType;
}

// A named table's type for the doors that name it: -24 after "ERR: no hash
// tab named %s\n" for an unknown name.
i32 _named_type(u32 chip_id, const char *table, u32 *type)
{
    *type = _type_of(table);
    if (*type == kNoType) {
        csl_output_func(chip_id, 0, "ERR: no hash tab named %s\n", table != nullptr ? table : "(null)");
        return SHR_E_NOT_SUPPORT;
    }
    return 0;
}

// The two hash types atolreef lacks.
bool _absent(u32 chip_id, u32 type)
{
    return shr_chip_type_get(chip_id) == SHR_CHIP_TYPE_ATOLREEF &&
           (type == CSL_HASH_TYPE_L3_MFIB || type == CSL_HASH_TYPE_VRRP_MCDP);
}

enum Op : u32 { kAdd, kDel, kHardSearch, kSoftSearch, kOps };
constexpr const char *kOpName[kOps] = {"add-entry", "del-entry", "hard-search-key", "soft-search-key"};

// An operation by its name or a prefix of it, without regard to case.
u32 _op_of(const char *op)
{
    const size_t len = op != nullptr ? strlen(op) : 0;
    for (u32 i = 0; len > 0 && i < kOps; i++) {
        if (len <= strlen(kOpName[i]) && strncasecmp(op, kOpName[i], len) == 0) {
            return i;
        }
    }
    return kOps;
}

const char *_case_text(u8 fail)
{
    const char *t = csl_reef_hash_l2_mac_fail_case_text(fail);
    return t != nullptr ? t : "unknown case";
}

i32 _l2_mac_add(u32 chip_id, const base_hash_op *op)
{
    cib_arl_cpuop_cfg_mac0_t mac0{};
    i32 rc = csl_reef_cib_arl_cpuop_cfg_mac0_get(chip_id, 0, &mac0);
    if (rc != 0) {
        csl_output_func(chip_id, 0, "ERR: get L2_MAC op cfg register err (errmsg: %s)\n", shr_errmsg(rc));
        return rc;
    }
    u8 fail = 0;
    rc = csl_reef_hash_l2_mac_appointed_insert(chip_id, static_cast<const u8 *>(op->key),
                                               CSL_L2_MAC_FLAGS(mac0.replace_sta_flag, mac0.replace_dyn_flag,
                                                                mac0.grap_flag),
                                               static_cast<const u8 *>(op->data), &fail);
    if (rc != 0) {
        csl_output_func(chip_id, 0, "ERR: add entry to L2_MAC Fail, case %s (errmsg: %s)\n", _case_text(fail),
                        shr_errmsg(rc));
        return rc;
    }
    csl_output_func(chip_id, 0, "Add entry Success!\n");
    return 0;
}

// The outcomes of an insert and what the door says of each.
struct AddOutcome {
    i32 status;
    const char *text;
    bool success;
};
constexpr AddOutcome kAddOutcomes[] = {
    {0, "Add entry Success!\n", true},
    {SHR_E_EXISTS, "NOTE: add entry hit entry, update ad table!\n", true},
    {SHR_E_HASH_CONFLICT, "Add entry Success! entry save in cam!\n", true},
    {SHR_E_FULL, "ERR: add entry Fail! table full!\n", false},
    {SHR_E_CONFIG, "ERR: add entry Fail! barrel 0 and 1 algorithm is same!\n", false},
    {SHR_E_HASH_CAM_FULL, "ERR: add entry Fail! bar confict and cam full!\n", false},
};

i32 _add(u32 chip_id, u32 type, const base_hash_op *op)
{
    const i32 rc = csl_reef_hash_tab_insert(chip_id, type, static_cast<const u8 *>(op->key),
                                            static_cast<const u8 *>(op->data), op->option);
    for (const AddOutcome &o : kAddOutcomes) {
        if (o.status == rc) {
            csl_output_func(chip_id, 0, "%s", o.text);
            return o.success ? 0 : rc;
        }
    }
    csl_output_func(chip_id, 0, "ERR: add entry Fail (errmsg: %s)\n", shr_errmsg(rc));
    return rc;
}

i32 _del(u32 chip_id, u32 type, const base_hash_op *op)
{
    i32 rc = 0;
    if (type == CSL_HASH_TYPE_L2_MAC) {
        u8 fail = 0;
        rc = csl_reef_hash_l2_mac_appointed_delete(chip_id, static_cast<const u8 *>(op->key), &fail);
        if (rc != 0) {
            csl_output_func(chip_id, 0, "ERR: delete entry from L2_MAC Fail, case %s (errmsg: %s)\n",
                            _case_text(fail), shr_errmsg(rc));
            return rc;
        }
    } else {
        rc = csl_reef_hash_tab_delete(chip_id, type, static_cast<const u8 *>(op->key));
        if (rc != 0) {
            csl_output_func(chip_id, 0, "ERR: delete entry Fail! (errmsg: %s)\n", shr_errmsg(rc));
            return rc;
        }
    }
    csl_output_func(chip_id, 0, "Delete entry Success!\n");
    return 0;
}

// Where a search found its key, and the action row of the entry.
i32 _dpl_reef_hash_search_result_print(u32 chip_id, const csl_ecib_search_result &r)
{
    static const char *const kHit[4] = {"none", "cam", "bar0", "bar1"};
    csl_output_func(chip_id, 0, "hit %s row %u slot %u ad index %u\n", kHit[r.hit_type < 4 ? r.hit_type : 0],
                    r.index, r.slot, r.ad_index);
    u8 data[CSL_ECIB_AD_BYTES] = {};
    ecib_ad ad{};
    i32 rc = csl_reef_hash_ecib_hard_table_read(chip_id, CSL_ECIB_TAB_AD, r.ad_index, data, sizeof(data));
    rc = rc != 0 ? rc : csl_reef_hash_data_TO_ecib_ad(chip_id, &ad, data);
    if (rc != 0) {
        csl_output_func(chip_id, 0, "ERR: show search result error (errmsg: %s)\n", shr_errmsg(rc));
        return rc;
    }
    csl_output_func(chip_id, 0, "ad: ");
    csl_reef_hash_ecib_ad_show(chip_id, &ad);
    return 0;
}

i32 _search(u32 chip_id, u32 type, u32 which, const base_hash_op *op)
{
    const u8 *key = static_cast<const u8 *>(op->key);
    if (type == CSL_HASH_TYPE_L2_MAC) {
        if (which == kSoftSearch) {
            csl_output_func(chip_id, 0, "ERR: L2_MAC Not Support soft-search!\n");
            return SHR_E_NOT_SUPPORT;
        }
        u8 entry[CSL_L2_MAC_ENTRY_BYTES] = {};
        u8 fail = 0;
        const i32 rc = csl_reef_hash_l2_mac_appointed_search(chip_id, key, entry, &fail);
        if (rc != 0) {
            csl_output_func(chip_id, 0, "ERR: soft-search entry from L2_MAC Fail, case %s (errmsg: %s)\n",
                            _case_text(fail), shr_errmsg(rc));
            return rc;
        }
        u32 w[4];
        memcpy(w, entry, sizeof(w));
        csl_output_func(chip_id, 0, "L2_MAC entry: 0x%08x %08x %08x %08x\n", w[3], w[2], w[1], w[0]);
        return 0;
    }
    csl_ecib_search_result r{};
    const u32 mode = which == kSoftSearch ? CSL_ECIB_SEARCH_SOFT : CSL_ECIB_SEARCH_HARD;
    const i32 rc = csl_reef_hash_tab_search(chip_id, type, mode, key, &r);
    if (rc == SHR_E_NOT_FOUND) {
        csl_output_func(chip_id, 0, "NOTE: search entry Missed!\n");
        return 0;
    }
    if (rc != 0) {
        csl_output_func(chip_id, 0, "ERR: search entry Fail (errmsg: %s)\n", shr_errmsg(rc));
        return rc;
    }
    return _dpl_reef_hash_search_result_print(chip_id, r);
}

// The refusals that the algorithm doors share: a table with algorithms
// this door can set, on this chip.
i32 _alg_type(u32 chip_id, const base_hash_alg *alg, const char *l2_text, u32 *type)
{
    if (alg == nullptr || alg->table == nullptr) {
        return SHR_E_PARAM;
    }
    i32 rc = _named_type(chip_id, alg->table, type);
    if (rc != 0) {
        return rc;
    }
    if (*type == CSL_HASH_TYPE_L2_MAC) {
        csl_output_func(chip_id, 0, "%s", l2_text);
        return SHR_E_NOT_SUPPORT;
    }
    return _absent(chip_id, *type) ? SHR_E_NOT_SUPPORT : 0;
}

} // namespace

extern "C" {

i32 dpl_reef_base_hash_tab_summary_show(u32 chip_id)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    return csl_reef_hash_tab_summary_show(chip_id);
}

i32 dpl_reef_base_hash_tab_op(u32 chip_id, base_hash_op *op)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (op == nullptr || op->op == nullptr || op->table == nullptr) {
        return SHR_E_PARAM;
    }
    const u32 type = _type_of(op->table);
    if (type != kNoType && _absent(chip_id, type)) {
        return SHR_E_NOT_SUPPORT;
    }
    if (type == kNoType) {
        csl_output_func(chip_id, 0, "ERR: hash tab %s Not Support!\n", op->table);
        return SHR_E_NOT_SUPPORT;
    }
    const u32 which = _op_of(op->op);
    switch (which) {
    case kAdd:
        return type == CSL_HASH_TYPE_L2_MAC ? _l2_mac_add(chip_id, op) : _add(chip_id, type, op);
    case kDel:
        return _del(chip_id, type, op);
    case kHardSearch:
    case kSoftSearch:
        return _search(chip_id, type, which, op);
    default:
        csl_output_func(chip_id, 0, "ERR: Not Support %s\n", op->op);
        return SHR_E_NOT_SUPPORT;
    }
}

i32 dpl_reef_base_hash_tab_dump(u32 chip_id, base_hash_dump *dump)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (dump == nullptr) {
        return SHR_E_PARAM;
    }
    u32 type = 0;
    const i32 rc = _named_type(chip_id, dump->table, &type);
    if (rc != 0) {
        return rc;
    }
    if (_absent(chip_id, type)) {
        return SHR_E_NOT_SUPPORT;
    }
    return csl_reef_hash_table_dump(chip_id, type, dump->bucket, dump->soft, dump->start, dump->end);
}

i32 dpl_reef_base_hash_alg_set(u32 chip_id, base_hash_alg *alg)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    u32 type = 0;
    const i32 rc = _alg_type(chip_id, alg, "ERR: L2_MAC Not Support set algorithm\n", &type);
    if (rc != 0) {
        return rc;
    }
    if (alg->barrel0 == alg->barrel1) {
        csl_output_func(chip_id, 0, "ERR: barrel0 algorithm %d equal barrel1 algorithm %d!\n", (int)alg->barrel0,
                        (int)alg->barrel1);
        return SHR_E_HASH_CONFLICT;
    }
    return csl_reef_hash_alg_mode_set(chip_id, type, alg->barrel0, alg->barrel1, alg->left_shift);
}

i32 dpl_reef_base_hash_alg_get(u32 chip_id, base_hash_alg *alg)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    u32 type = 0;
    i32 rc = _alg_type(chip_id, alg, "ERR: L2_MAC Not Support get algorithm\n", &type);
    if (rc != 0) {
        return rc;
    }
    rc = csl_reef_hash_alg_mode_get(chip_id, type, &alg->barrel0, &alg->barrel1, &alg->left_shift);
    if (rc != 0) {
        return rc;
    }
    csl_output_func(chip_id, 0, "%s hash algorithm:\n", g_csl_hash_type_name[type]);
    csl_output_func(chip_id, 0, "(0:0x45a5_c105  1:0x04c1_1db7  2:0x6db8_8321  3:0x1edc_6f41)\n");
    csl_output_func(chip_id, 0, "barrel 0  : %u\n", alg->barrel0);
    csl_output_func(chip_id, 0, "barrel 1  : %u\n", alg->barrel1);
    csl_output_func(chip_id, 0, "left shift: %s\n", alg->left_shift != 0 ? "enable" : "disable");
    if (type == CSL_HASH_TYPE_L3_MFIB) {
        csl_output_func(chip_id, 0, "fp select: %s\n", alg->fp_select != 0 ? "enable" : "disable");
    }
    return 0;
}

i32 dpl_reef_base_hash_info_show(u32 chip_id, const char *table_name)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (table_name == nullptr) {
        return SHR_E_PARAM;
    }
    u32 type = 0;
    const i32 rc = _named_type(chip_id, table_name, &type);
    if (rc != 0) {
        return rc;
    }
    if (type == CSL_HASH_TYPE_L2_MAC) {
        csl_output_func(chip_id, 0, "ERR: L2_MAC Not Support show info\n");
        return SHR_E_NOT_SUPPORT;
    }
    return csl_reef_hash_info_show(chip_id, type);
}

} // extern "C"
