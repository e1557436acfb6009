// Displays of the hash tables: a summary of every table of the chip, the
// facts of one, and a dump of rows, from the chip or from the software
// images.  They print through the output hook and change nothing.
#include "csl/reef/reg_tbl/csl_reef_hash_show.h"

#include <cstring>

#include "atolreef_cib.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/auto_code/api/csl_reef_hash_table.h"
#include "csl/reef/reg_tbl/csl_reef_hash_ecib.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "shared/shr_bits.h"

namespace {

constexpr u32 kEcibTab[3] = {cib_epro_em_pv_ht0_tbl, cib_epro_em_pv_ht1_tbl, cib_epro_em_pv_cam_tbl};
constexpr const char *kBucketName[5] = {"bar0", "bar1", "cam", "kt", "ad"};

const csl_ecib_hw_info &_hw(u32 chip_id)
{
    const u32 type = shr_chip_type_get(chip_id);
    return g_ecib_hw_info[type < 5 ? type : 4];
}

u32 _depth(u32 chip_id, u32 tab_id)
{
    const cib_tab_info *t = csl_reef_tab_info_get(chip_id, tab_id);
    return t != nullptr ? cib_tab_depth(t) : 0;
}

u32 _slots(u32 bucket)
{
    return bucket == CSL_HASH_BUCKET_CAM ? 1 : CSL_ECIB_SLOTS;
}

u64 _slot(const csl_ecib_hw_info &hw, const u8 *row, u32 slot)
{
    u64 v = 0;
    shr_field64_get_from_data(row, &v, static_cast<u16>(slot * hw.slot_bits), static_cast<u16>(hw.slot_bits));
    return v;
}

bool _valid(const csl_ecib_hw_info &hw, u64 slot)
{
    return ((slot >> (hw.slot_bits - 1)) & 1) != 0;
}

// A row of barrel or CAM, from the image (`soft`) or from the chip.
i32 _ecib_row(u32 chip_id, u32 bucket, u32 row, u32 soft, u8 *data)
{
    memset(data, 0, CSL_ECIB_ROW_BYTES);
    if (soft != 0) {
        return csl_reef_tab_get_direct(chip_id, kEcibTab[bucket], row, data, CSL_ECIB_ROW_BYTES, CSL_TAB_IMAGE);
    }
    return csl_reef_hash_ecib_hard_table_read(chip_id, CSL_ECIB_TAB_READ_BAR0 + bucket, row, data,
                                              CSL_ECIB_ROW_BYTES);
}

// Valid slots of each memory in the images.
i32 _ecib_usage(u32 chip_id, u32 used[3])
{
    const csl_ecib_hw_info &hw = _hw(chip_id);
    for (u32 b = 0; b < 3; b++) {
        used[b] = 0;
        for (u32 r = 0; r < _depth(chip_id, kEcibTab[b]); r++) {
            u8 row[CSL_ECIB_ROW_BYTES];
            const i32 rc = _ecib_row(chip_id, b, r, 1, row);
            if (rc != 0) {
                return rc;
            }
            for (u32 s = 0; s < _slots(b); s++) {
                used[b] += _valid(hw, _slot(hw, row, s)) ? 1 : 0;
            }
        }
    }
    return 0;
}

// The valid slots of rows `start` to `end` of a barrel or the CAM.
i32 _ecib_dump_rows(u32 chip_id, u32 bucket, u32 soft, u32 start, u32 end, u32 *shown)
{
    const csl_ecib_hw_info &hw = _hw(chip_id);
    for (u32 r = start; r <= end; r++) {
        u8 row[CSL_ECIB_ROW_BYTES];
        const i32 rc = _ecib_row(chip_id, bucket, r, soft, row);
        if (rc != 0) {
            return rc;
        }
        for (u32 s = 0; s < _slots(bucket); s++) {
            const u64 v = _slot(hw, row, s);
            if (!_valid(hw, v)) {
                continue;
            }
            u8 kdata[CSL_ECIB_KEY_BYTES] = {};
            shr_field64_set_to_data(kdata, v & ((1ull << hw.key_bits) - 1), 0, static_cast<u16>(hw.key_bits));
            ecib_key k{};
            csl_reef_hash_data_TO_ecib_key(chip_id, &k, kdata);
            csl_output_func(chip_id, 0,
                            "%s[%u] slot %u: tid %u trunk_flag %u portid_trunkid %u ovid %u ivid_opri %u ad %u\n",
                            kBucketName[bucket], r, s, k.tid, k.trunk_flag, k.portid_trunkid, k.ovid, k.ivid_opri,
                            static_cast<u32>((v >> hw.ad_start) & ((1ull << hw.ad_width) - 1)));
            ++*shown;
        }
    }
    return 0;
}

// AD rows `start` to `end`: those the software holds in use (`soft`), or
// every row of the chip that is not zero.
i32 _ecib_dump_ad(u32 chip_id, u32 soft, u32 start, u32 end, u32 *shown)
{
    for (u32 r = start; r <= end; r++) {
        if (soft != 0 && (g_ecib_used_entry_info[chip_id] == nullptr || g_ecib_used_entry_info[chip_id][r] == 0)) {
            continue;
        }
        u8 data[CSL_ECIB_AD_BYTES] = {};
        i32 rc = csl_reef_hash_ecib_hard_table_read(chip_id, CSL_ECIB_TAB_AD, r, data, sizeof(data));
        ecib_ad a{};
        rc = rc != 0 ? rc : csl_reef_hash_data_TO_ecib_ad(chip_id, &a, data);
        if (rc != 0) {
            return rc;
        }
        u64 any = 0;
        memcpy(&any, data, sizeof(any));
        if (soft == 0 && any == 0) {
            continue;
        }
        csl_output_func(chip_id, 0, "ad[%u]: ", r);
        csl_reef_hash_ecib_ad_show(chip_id, &a);
        ++*shown;
    }
    return 0;
}

i32 _ecib_dump(u32 chip_id, u32 bucket, u32 soft, u32 start, u32 end)
{
    if (bucket == CSL_HASH_BUCKET_KT) {
        csl_output_func(chip_id, 0, "ERR: ECIB has no kt\n");
        return SHR_E_NOT_SUPPORT;
    }
    const u32 tab = bucket == CSL_HASH_BUCKET_AD ? static_cast<u32>(cib_epro_ecib_table) : kEcibTab[bucket];
    if (csl_reef_judge_index_scope(chip_id, tab, start, end) != 0) {
        csl_output_func(chip_id, 0, "ERR: ECIB %s index %u-%u out of 0-%u\n", kBucketName[bucket], start, end,
                        _depth(chip_id, tab) - 1);
        return SHR_E_PARAM;
    }
    tide::hash::HashGuard hold(chip_id, CSL_HASH_TYPE_ECIB);
    if (hold.status() != 0) {
        return hold.status();
    }
    u32 shown = 0;
    const i32 rc = bucket == CSL_HASH_BUCKET_AD ? _ecib_dump_ad(chip_id, soft, start, end, &shown)
                                                : _ecib_dump_rows(chip_id, bucket, soft, start, end, &shown);
    if (rc == 0) {
        csl_output_func(chip_id, 0, "ECIB %s %s: %u entries\n", soft != 0 ? "software" : "hardware",
                        kBucketName[bucket], shown);
    }
    return rc;
}

// The MAC table has no software image: its buckets are read from the chip
// address by address.
i32 _l2_mac_dump(u32 chip_id, u32 bucket, u32 soft, u32 start, u32 end)
{
    if (soft != 0 || bucket > CSL_HASH_BUCKET_CAM) {
        csl_output_func(chip_id, 0, "ERR: L2_MAC has no %s\n", soft != 0 ? "software image" : kBucketName[bucket]);
        return SHR_E_NOT_SUPPORT;
    }
    if (start > end || csl_reef_hash_l2_mac_scope_judge(chip_id, bucket, end) != 0) {
        csl_output_func(chip_id, 0, "ERR: L2_MAC %s index %u-%u is not a range of the bucket\n",
                        kBucketName[bucket], start, end);
        return SHR_E_PARAM;
    }
    u32 shown = 0;
    for (u32 a = start; a <= end; a++) {
        u8 entry[CSL_L2_MAC_ENTRY_BYTES] = {};
        u8 fail = 0;
        const i32 rc = csl_reef_hash_l2_mac_appointed_hash_search(chip_id, bucket, a, entry, &fail);
        if (rc == SHR_E_FAIL && fail == CSL_L2_MAC_SEARCH_MISS) {
            continue; // an empty address
        }
        if (rc != 0) {
            return rc;
        }
        u32 w[4];
        memcpy(w, entry, sizeof(w));
        csl_output_func(chip_id, 0, "%s[%u]: 0x%08x %08x %08x %08x\n", kBucketName[bucket], a, w[3], w[2], w[1], w[0]);
        shown++;
    }
    csl_output_func(chip_id, 0, "L2_MAC hardware %s: %u entries\n", kBucketName[bucket], shown);
    return 0;
}

} // namespace

extern "C" {

const char *const g_csl_hash_type_name[CSL_HASH_TYPE_COUNT] = {"L3_MFIB", "VRRP_MCDP", "ECIB", "L2_MAC"};

void csl_reef_hash_ecib_ad_show(u32 chip_id, const ecib_ad *a)
{
    csl_output_func(chip_id, 0,
                    "vld %u ivid 0x%04x ovid 0x%04x opri %u ocfi %u ipri %u icfi %u vlan_opc %u multi %u "
                    "dpid_en %u dpid %u\n",
                    a->vld, a->ivid, a->ovid, a->outer_pri, a->outer_cfi, a->inner_pri, a->inner_cfi, a->vlan_opc,
                    a->multi_mapping_flag, a->dpid_en, a->dpid);
}

i32 csl_reef_hash_tab_summary_show(u32 chip_id)
{
    csl_output_func(chip_id, 0, "%-10s %-6s %8s %8s\n", "table", "memory", "size", "used");
    csl_output_func(chip_id, 0, "-------------------------------------\n");
    u32 bar0 = 0, bar1 = 0;
    if (csl_reef_hash_l2_mac_scope_get(chip_id, &bar0, &bar1) == 0) {
        // One batched search with no compare counts every entry.
        const u8 zeros[CSL_L2_MAC_ENTRY_BYTES] = {};
        const csl_l2_mac_cmp none{};
        u8 fail = 0;
        u32 count = 0;
        const i32 rc = csl_reef_hash_l2_mac_batched_search(chip_id, zeros, zeros, &none, &fail, &count);
        if (rc != 0) {
            return rc;
        }
        csl_output_func(chip_id, 0, "%-10s %-6s %8u %8u\n", "L2_MAC", "all", bar0 + bar1 + CSL_L2_MAC_CAM_ENTRIES,
                        count);
    }
    u32 entries = 0, used_ad = 0;
    if (csl_reef_hash_ecib_get_entry_size(chip_id, &entries, &used_ad, nullptr) != 0) {
        return 0; // no exact-match engine on this chip
    }
    tide::hash::HashGuard hold(chip_id, CSL_HASH_TYPE_ECIB);
    u32 used[3] = {};
    const i32 rc = hold.status() != 0 ? hold.status() : _ecib_usage(chip_id, used);
    if (rc != 0) {
        return rc;
    }
    for (u32 b = 0; b < 3; b++) {
        csl_output_func(chip_id, 0, "%-10s %-6s %8u %8u\n", "ECIB", kBucketName[b],
                        _depth(chip_id, kEcibTab[b]) * _slots(b), used[b]);
    }
    csl_output_func(chip_id, 0, "%-10s %-6s %8u %8u\n", "ECIB", "ad", entries, used_ad);
    return 0;
}

i32 csl_reef_hash_info_show(u32 chip_id, u32 type)
{
    if (type != CSL_HASH_TYPE_ECIB) {
        return type < CSL_HASH_TYPE_COUNT ? SHR_E_NOT_SUPPORT : SHR_E_PARAM;
    }
    u32 entries = 0, used_ad = 0, alg0 = 0, alg1 = 0, shift = 0;
    i32 rc = csl_reef_hash_ecib_get_entry_size(chip_id, &entries, &used_ad, nullptr);
    rc = rc != 0 ? rc : csl_reef_hash_alg_mode_get(chip_id, type, &alg0, &alg1, &shift);
    if (rc != 0) {
        return rc;
    }
    tide::hash::HashGuard hold(chip_id, CSL_HASH_TYPE_ECIB);
    u32 used[3] = {};
    rc = hold.status() != 0 ? hold.status() : _ecib_usage(chip_id, used);
    if (rc != 0) {
        return rc;
    }
    const csl_ecib_hw_info &hw = _hw(chip_id);
    csl_output_func(chip_id, 0, "ECIB hash table\n");
    for (u32 b = 0; b < 3; b++) {
        csl_output_func(chip_id, 0, "  %-10s: %u rows x %u slots, %u used\n", kBucketName[b],
                        _depth(chip_id, kEcibTab[b]), _slots(b), used[b]);
    }
    csl_output_func(chip_id, 0, "  %-10s: %u rows, %u used\n", "ad", entries, used_ad);
    csl_output_func(chip_id, 0, "  %-10s: %u bits (key %u, ad %u at %u, valid at %u)\n", "slot", hw.slot_bits,
                    hw.key_bits, hw.ad_width, hw.ad_start, hw.slot_bits - 1);
    csl_output_func(chip_id, 0, "  %-10s: barrel 0 %u, barrel 1 %u, left shift %s\n", "algorithm", alg0, alg1,
                    shift != 0 ? "enable" : "disable");
    return 0;
}

i32 csl_reef_hash_table_dump(u32 chip_id, u32 type, u32 bucket, u32 soft, u32 start, u32 end)
{
    if (bucket > CSL_HASH_BUCKET_AD) {
        csl_output_func(chip_id, 0, "ERR: bucket %u is not 0 to 4 (bar0, bar1, cam, kt, ad)\n", bucket);
        return SHR_E_PARAM;
    }
    switch (type) {
    case CSL_HASH_TYPE_ECIB:
        return _ecib_dump(chip_id, bucket, soft, start, end);
    case CSL_HASH_TYPE_L2_MAC:
        return _l2_mac_dump(chip_id, bucket, soft, start, end);
    default:
        return type < CSL_HASH_TYPE_COUNT ? SHR_E_NOT_SUPPORT : SHR_E_PARAM;
    }
}

} // extern "C"
