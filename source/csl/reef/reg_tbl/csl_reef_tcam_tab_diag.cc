// Looks into the TCAM for the shell: entries of a table, every row of
// every block as the chip holds it, the registry, and the memory test.
// All of it goes through the single-plane calls of the entry layer.
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "csl/reef/reg_tbl/csl_reef_tcam_tab_op.h"

namespace {

// A buffer of `bits` bits as hex, highest byte first, into `out`.
const char *_hex(const u8 *data, u32 bits, char *out, u32 room)
{
    u32 pos = static_cast<u32>(snprintf(out, room, "0x"));
    for (u32 i = (bits + 7) / 8; i-- > 0 && pos + 3 < room;) {
        pos += static_cast<u32>(snprintf(out + pos, room - pos, "%02x", data[i]));
    }
    return out;
}

bool _all_zero(const u8 *data, u32 bytes)
{
    for (u32 i = 0; i < bytes; i++) {
        if (data[i] != 0) {
            return false;
        }
    }
    return true;
}

constexpr u32 kHexRoom = 2 * CSL_TCAM_KEY_BYTES_MAX + 4;

// One row of a block, both planes and the action, as the chip holds it.
struct RawRow {
    u8 data[CSL_TCAM_ROW_BITS / 8] = {};
    u8 care[CSL_TCAM_ROW_BITS / 8] = {};
    u8 ad[CSL_TCAM_AD_BYTES] = {};
    u32 valid = 0;
};

int _raw_row(u32 chip_id, u32 block, u32 index, u32 bits, RawRow *r)
{
    int rc = csl_reef_tcam_key_mask_ad_get(chip_id, CSL_TCAM_KEY, block, index, r->data, bits, &r->valid);
    if (rc == 0) {
        rc = csl_reef_tcam_key_mask_ad_get(chip_id, CSL_TCAM_MASK, block, index, r->care, bits, nullptr);
    }
    if (rc == 0) {
        rc = csl_reef_tcam_key_mask_ad_get(chip_id, CSL_TCAM_AD, block, index, r->ad, CSL_TCAM_AD_BITS, nullptr);
    }
    return rc;
}

// A pattern of the memory test over `bytes` bytes.
void _pattern(u32 pattern, u8 *data, u32 bytes)
{
    for (u32 i = 0; i < bytes; i++) {
        data[i] = pattern == CSL_BIST_RANDOM ? static_cast<u8>(csl_ram_bist_rand() >> 24)
                                             : (pattern == CSL_BIST_ONES ? 0xFF : 0);
    }
}

// One row of the memory test: mask, key and action written and read back.
int _bist_row(u32 chip_id, u32 block, u32 index, u32 bits, u32 pattern, char *report)
{
    struct Part {
        u32 type;
        u32 bits;
        const char *name;
    };
    const Part parts[] = {{CSL_TCAM_MASK, bits, "mask"}, {CSL_TCAM_KEY, bits, "key"}, {CSL_TCAM_AD, CSL_TCAM_AD_BITS, "ad"}};
    int rc = 0;
    for (const Part &p : parts) {
        u8 wrote[CSL_TCAM_ROW_BITS / 8] = {}, back[CSL_TCAM_ROW_BITS / 8] = {};
        _pattern(pattern, wrote, (p.bits + 7) / 8);
        // The rows stay out of service: the data plane is written invalid.
        int step = csl_reef_tcam_key_mask_ad_set(chip_id, p.type, block, index, wrote, p.bits, 0);
        if (step == 0) {
            step = csl_reef_tcam_key_mask_ad_get(chip_id, p.type, block, index, back, p.bits, nullptr);
        }
        if (step != 0 || memcmp(wrote, back, (p.bits + 7) / 8) != 0) {
            csl_ram_bist_report(report, "Ram bist is testing tcam %s (block:%u  index:%u) failed!\n", p.name, block,
                                index);
            rc = SHR_E_FAIL;
        }
    }
    return rc;
}

} // namespace

extern "C" {

int csl_reef_tcam_dump(u32 chip_id, u32 tcam_id, u16 address, u32 count)
{
    const csl_tcam_tab_name_id *row = nullptr;
    int rc = csl_reef_tcam_get_tab_name_id(chip_id, tcam_id, &row);
    if (rc != 0) {
        return rc;
    }
    const u32 block = address & 0xFF;
    const cib_tab_info *key = csl_reef_tab_info_get(chip_id, row->key_tab_id);
    const u32 bits = key != nullptr ? key->width : 0;
    for (u32 i = 0; i < count && rc == 0; i++) {
        const u32 index = (address >> 8) + i;
        u8 k[CSL_TCAM_KEY_BYTES_MAX] = {}, m[CSL_TCAM_KEY_BYTES_MAX] = {}, ad[CSL_TCAM_AD_BYTES] = {};
        csl_tcam_data data = {m, k, ad};
        u32 valid = 0;
        rc = csl_reef_tcam_read(chip_id, tcam_id, static_cast<u16>(index << 8 | block), &data, &valid);
        if (rc != 0) {
            break;
        }
        char hex[kHexRoom];
        csl_output_func(chip_id, 0, "%s block %u index %u valid %u\n", row->name, block, index, valid);
        csl_output_func(chip_id, 0, "  key : %s\n", _hex(k, bits, hex, sizeof(hex)));
        csl_output_func(chip_id, 0, "  mask: %s\n", _hex(m, bits, hex, sizeof(hex)));
        csl_output_func(chip_id, 0, "  ad  : %s\n", _hex(ad, CSL_TCAM_AD_BITS, hex, sizeof(hex)));
    }
    return rc;
}

int csl_reef_tcam_tab_dump_all(u32 chip_id, u32 to_file, u32 non_zero)
{
    const u32 blocks = csl_reef_tcam_block_count(chip_id);
    int rc = 0;
    for (u32 block = 0; block < blocks && rc >= 0; block++) {
        u32 bits = 0;
        rc = csl_reef_tcam_block_width_get(chip_id, block, &bits);
        if (rc != 0) {
            break;
        }
        const u32 rows = csl_reef_tcam_block_rows(block, bits);
        rc = csl_output_func(chip_id, to_file, "==================[ tcam block %u: %u rows of %u bits ]==================\n",
                             block, rows, bits);
        for (u32 index = 0; index < rows && rc >= 0; index++) {
            RawRow r;
            rc = _raw_row(chip_id, block, index, bits, &r);
            if (rc != 0) {
                break;
            }
            const u32 bytes = bits / 8;
            if (non_zero && !r.valid && _all_zero(r.data, bytes) && _all_zero(r.care, bytes) &&
                _all_zero(r.ad, sizeof(r.ad))) {
                continue;
            }
            char d[kHexRoom], c[kHexRoom], a[kHexRoom];
            rc = csl_output_func(chip_id, to_file, "%3u valid %u data %s care %s ad %s\n", index, r.valid,
                                 _hex(r.data, bits, d, sizeof(d)), _hex(r.care, bits, c, sizeof(c)),
                                 _hex(r.ad, CSL_TCAM_AD_BITS, a, sizeof(a)));
        }
    }
    return rc < 0 ? rc : 0;
}

int csl_reef_tcam_tab_summary_show(u32 chip_id)
{
    csl_output_func(chip_id, 0, "%-4s %-40s %-5s %-24s %-12s %s\n", "id", "tcam table", "bits", "action table",
                    "tag", "sub-tag");
    csl_output_func(chip_id, 0, "%s\n", "------------------------------------------------------------------------"
                                        "----------------------------");
    for (u32 id = 0; id < CSL_TCAM_TAB_COUNT; id++) {
        const csl_tcam_tab_name_id &row = g_tcam_tab_name_id[id];
        const csl_tcam_tid_subid &tag = g_tcam_tid_subid[id];
        const cib_tab_info *key =
            row.key_tab_id != CSL_TCAM_NO_TAB ? csl_reef_tab_info_get(chip_id, row.key_tab_id) : nullptr;
        char width[8] = "-", t[16], sub[16] = "-";
        if (key != nullptr) {
            snprintf(width, sizeof(width), "%u", key->width);
        }
        snprintf(t, sizeof(t), "%u:%u=%u", tag.tid_start + tag.tid_width - 1, tag.tid_start, tag.tid_value);
        if (tag.subid_width != 0) {
            snprintf(sub, sizeof(sub), "%u:%u=%u", tag.subid_start + tag.subid_width - 1, tag.subid_start,
                     tag.subid_value);
        }
        csl_output_func(chip_id, 0, "%-4u %-40s %-5s %-24s %-12s %s\n", id, row.name, width,
                        row.ad_name != nullptr ? row.ad_name : "-", t, sub);
    }
    return 0;
}

int csl_reef_ram_bist_tcam_test(u32 chip_id, u32 use_sample, char *out, u32 out_len)
{
    if (out == nullptr && out_len > 0) {
        return SHR_E_NULL_PTR;
    }
    const u32 blocks = csl_reef_tcam_block_count(chip_id);
    CslHeapBytes text(CSL_RAM_BIST_TEXT_BYTES, "RAM bist test");
    if (text.get() == nullptr) {
        return SHR_E_MEMORY;
    }
    char *report = reinterpret_cast<char *>(text.get());
    int rc = 0;
    bool failed = false;
    for (u32 block = 0; block < blocks && rc == 0; block++) {
        u32 bits = 0;
        rc = csl_reef_tcam_block_width_get(chip_id, block, &bits);
        const u32 rows = rc == 0 ? csl_reef_tcam_block_rows(block, bits) : 0;
        for (u32 pattern : {CSL_BIST_RANDOM, CSL_BIST_ONES, CSL_BIST_ZEROS}) {
            for (u32 index = 0; index < rows; index = use_sample && index + 1 < rows ? rows - 1 : index + 1) {
                failed |= _bist_row(chip_id, block, index, bits, pattern, report) != 0;
            }
        }
    }
    csl_ram_bist_report(report, "Ram bist is testing tcam done!\n");
    if (out_len > 0) {
        snprintf(out, out_len, "%s", report);
    }
    return rc != 0 ? rc : (failed ? SHR_E_FAIL : 0);
}

} // extern "C"
