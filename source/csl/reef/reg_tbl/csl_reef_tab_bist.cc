// RAM test of the direct tables: each writable table gets random, all-ones
// and all-zeros entries, written to hardware and image and read back from
// the hardware; read-only tables are only read.  Mismatches are described
// in a text report.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "csl/common/reg_tab/csl_reg.h"
#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "sal/linux_um/xsal_int.h"
#include "shared/shr_bits.h"

namespace {

// The random source of the patterns: a linear congruential generator,
// seeded from the clock at its first use.
u32 g_bist_rand_state;
bool g_bist_rand_seeded;

// The report takes a failure only while more than this is left of it.
constexpr u32 kTextReserve = 200;

} // namespace

extern "C" {

u32 csl_ram_bist_rand(void)
{
    if (!g_bist_rand_seeded) {
        g_bist_rand_state = static_cast<u32>(xsal_time_usecs());
        g_bist_rand_seeded = true;
    }
    g_bist_rand_state = g_bist_rand_state * 1664525u + 1013904223u;
    return g_bist_rand_state;
}

void csl_ram_bist_report(char *text, const char *format, ...)
{
    const u32 used = static_cast<u32>(strnlen(text, CSL_RAM_BIST_TEXT_BYTES));
    if (CSL_RAM_BIST_TEXT_BYTES - used <= kTextReserve) {
        return;
    }
    va_list args;
    va_start(args, format);
    vsnprintf(text + used, CSL_RAM_BIST_TEXT_BYTES - used, format, args);
    va_end(args);
}

} // extern "C"

namespace {

// Tables whose entries do not read back as written: their keys.
constexpr u32 kTabEncSak = 211; // xsec_enc_enc_sak_tbl
constexpr u32 kTabDecSak = 234; // xsec_dec_dec_sak_tbl
// sch_que_shap_tbl: its first 7 bytes hold state that the shaper updates.
constexpr u32 kTabQueShap = 515;
constexpr u32 kQueShapSkipBytes = 7;


bool _is_rw(const cib_field_info &f)
{
    return f.access == CIB_ACC_RW || f.access == CIB_ACC_RWW;
}


// The bytes of an entry, highest first.
void _report_bytes(char *text, const char *label, const u8 *data, u32 bytes)
{
    csl_ram_bist_report(text, "%s(bytes %u): ", label, bytes);
    for (u32 i = bytes; i > 0; i--) {
        csl_ram_bist_report(text, "%02x ", data[i - 1]);
    }
    csl_ram_bist_report(text, "\n");
}

// The bytes of an entry that are compared.
u32 _compare_from(u32 tab_id)
{
    return tab_id == kTabQueShap ? kQueShapSkipBytes : 0;
}

bool _compared(u32 tab_id)
{
    return tab_id != kTabEncSak && tab_id != kTabDecSak;
}

// One table under test: its record, the entries and the two entry buffers.
struct BistRun {
    u32 chip_id;
    u32 tab_id;
    const cib_tab_info *tab;
    u32 bytes;
    u32 depth;
    bool sample;
    u8 *wr;
    u8 *rd;
    char *text;
};

// Entries of a run: all, or the first and the last.
template <typename Fn>
int _for_entries(const BistRun &run, Fn fn)
{
    if (run.sample) {
        return run.depth > 1 ? fn(0) | fn(run.depth - 1) : fn(0);
    }
    int rc = 0;
    for (u32 i = 0; i < run.depth; i++) {
        rc |= fn(i);
    }
    return rc;
}

// Writes one pattern to an entry and compares what the hardware gives back.
int _test_entry(const BistRun &run, u32 pattern, u32 index)
{
    int rc = csl_reef_tab_test_data_get(run.chip_id, run.tab_id, pattern, run.wr, run.bytes);
    rc |= csl_reef_tab_set_direct(run.chip_id, run.tab_id, index, run.wr, run.bytes, CSL_TAB_HW_AND_IMAGE);
    memset(run.rd, 0, run.bytes);
    rc |= csl_reef_tab_get_direct(run.chip_id, run.tab_id, index, run.rd, run.bytes, CSL_TAB_HW);
    if (rc != 0 || !_compared(run.tab_id)) {
        return rc;
    }
    const u32 from = _compare_from(run.tab_id);
    if (memcmp(run.wr + from, run.rd + from, run.bytes - from) == 0) {
        return 0;
    }
    csl_ram_bist_report(run.text, " ram bist test fail information: ");
    csl_ram_bist_report(run.text, " table name: %s   index: %u\n", run.tab->name, index);
    csl_ram_bist_report(run.text, " write  value(hex high address  -->  low address)\n");
    csl_ram_bist_report(run.text, "==============================================================================\n");
    _report_bytes(run.text, "write", run.wr, run.bytes);
    _report_bytes(run.text, " read", run.rd, run.bytes);
    csl_ram_bist_report(run.text, "Ram bist is testing direct %s(%u) failed!\n", run.tab->name, run.tab_id);
    return SHR_E_FAIL;
}

} // namespace

extern "C" {

int csl_reef_tab_all_ro_check(u32 chip_id, u32 tab_id, u8 *all_ro)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr || all_ro == nullptr) {
        return SHR_E_PARAM;
    }
    *all_ro = 1;
    // The first record is the highest field; it does not count.
    const cib_tab_mode *mode = tab->modes;
    for (u32 i = 1; mode != nullptr && i < mode->field_count; i++) {
        if (_is_rw(mode->fields[i])) {
            *all_ro = 0;
            break;
        }
    }
    return 0;
}

int csl_reef_tab_test_data_get(u32 chip_id, u32 tab_id, u32 pattern, u8 *data, u32 bytes)
{
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr || data == nullptr || bytes < cib_tab_entry_bytes(tab) || pattern > CSL_BIST_RANDOM) {
        return SHR_E_PARAM;
    }
    memset(data, 0, bytes);
    const cib_tab_mode *mode = tab->modes;
    int rc = 0;
    for (u32 i = 1; mode != nullptr && i < mode->field_count; i++) {
        const cib_field_info &f = mode->fields[i];
        if (!_is_rw(f)) {
            continue;
        }
        u64 value = 0;
        if (pattern == CSL_BIST_ONES) {
            value = ~0ull;
        } else if (pattern == CSL_BIST_RANDOM) {
            value = (static_cast<u64>(csl_ram_bist_rand()) << 32) | csl_ram_bist_rand();
        }
        if (f.width < 64) {
            value &= (1ull << f.width) - 1;
        }
        rc |= shr_field64_set_to_data(data, value, f.low_bit, f.width);
    }
    return rc;
}

int _csl_reef_direct_tab_test_single(u32 chip_id, u32 tab_id, u32 use_sample, char *text, u32 loops)
{
    if (tab_id > CIB_TAB_ID_MAX || loops == 0 || text == nullptr) {
        return SHR_E_PARAM;
    }
    const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
    if (tab == nullptr) {
        return SHR_E_PARAM;
    }
    if (static_cast<u32>(tab->inst_a) * tab->inst_b == 0) {
        return 0;
    }
    const u32 bytes = cib_tab_entry_bytes(tab);
    CslHeapBytes wr(bytes, "RAM bist entry"), rd(bytes, "RAM bist entry");
    if (wr.get() == nullptr || rd.get() == nullptr) {
        return SHR_E_MEMORY;
    }
    const BistRun run{chip_id, tab_id, tab, bytes, cib_tab_depth(tab), use_sample != 0, wr.get(), rd.get(), text};
    u8 all_ro = 1;
    int rc = csl_reef_tab_all_ro_check(chip_id, tab_id, &all_ro);
    if (all_ro) {
        for (u32 l = 0; l < loops; l++) {
            rc |= _for_entries(run, [&](u32 i) {
                return csl_reef_tab_get_direct(chip_id, tab_id, i, run.rd, bytes, CSL_TAB_HW);
            });
        }
    } else {
        for (u32 pattern : {CSL_BIST_RANDOM, CSL_BIST_ONES, CSL_BIST_ZEROS}) {
            for (u32 l = 0; l < loops; l++) {
                rc |= _for_entries(run, [&](u32 i) { return _test_entry(run, pattern, i); });
            }
        }
    }
    csl_ram_bist_report(text, "Ram bist is testing direct %s done! \n", tab->name);
    return rc;
}

int csl_reef_direct_tab_ram_bist_test(u32 chip_id, u32 use_sample, u32 loops, char *out, u32 out_len)
{
    if (out == nullptr) {
        return SHR_E_NULL_PTR;
    }
    // A chip type without tables in the build has nothing to test, which
    // is not a pass.
    if (csl_reef_catalogue_in_build(chip_id, SHR_MOD_REG_TAB, SHR_LOG_ERROR) != 0) {
        return SHR_E_NOT_SUPPORT;
    }
    CslHeapBytes text(CSL_RAM_BIST_TEXT_BYTES, "RAM bist test");
    if (text.get() == nullptr) {
        return SHR_E_MEMORY;
    }
    char *report = reinterpret_cast<char *>(text.get());
    int rc = 0;
    for (u32 tab_id = 0; tab_id <= CIB_TAB_ID_MAX; tab_id++) {
        const cib_tab_info *tab = csl_reef_tab_info_get(chip_id, tab_id);
        if (tab == nullptr || (tab->flags & CIB_TAB_INDIRECT)) {
            continue;
        }
        rc |= _csl_reef_direct_tab_test_single(chip_id, tab_id, use_sample, report, loops);
    }
    if (out_len > 0) {
        snprintf(out, out_len, "%s", report);
    }
    return rc;
}

// The memory test of bring-up: every direct table's first and last entry
// take the three patterns once.  The report is kept only when it fails.
int csl_reef_chip_ram_dft_test(u32 chip_id)
{
    char report[512];
    const int rc = csl_reef_direct_tab_ram_bist_test(chip_id, 1, 1, report, sizeof(report));
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "%s\n", report);
    }
    return rc;
}

} // extern "C"
