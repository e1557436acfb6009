// The frame of every call: chip registry, status texts, module names, the
// guard and dispatch, stub families, hooks, allocation, locks.
#include <gtest/gtest.h>
#include <tide/tide.h>

#include <set>
#include <string>
#include <thread>

#include "api/api_families.h"
#include "api/api_guard.h"
#include "sal/linux_um/xsal_bounds.h"
#include "sal/linux_um/xsal_int.h"
#include "shared/shr_int.h"
#include "support/fixture.h"

using tide::test::Capture;

namespace {

// Leaves the registry and hooks as they were at load.
class Frame : public ::testing::Test {
protected:
    void TearDown() override
    {
        for (uint32_t c = 0; c < TIDE_MAX_CHIPS; c++) {
            shr_chip_type_assign(c, SHR_CHIP_TYPE_NULL, 0);
        }
        shr_chip_cur_num_assign(0);
        shr_debug_base_printf_func_set(nullptr);
        shr_debug_base_cli_printf_func_set(nullptr);
        xsal_malloc_base_func_set(nullptr);
        xsal_free_base_func_set(nullptr);
    }
};

TEST_F(Frame, RegistryGettersRefuseChipIdsAboveThree)
{
    shr_chip_type_assign(3, SHR_CHIP_TYPE_ATOLREEF, 7);
    for (uint32_t chip : {4u, 5u, 0xFFFFFFFFu}) {
        EXPECT_EQ(shr_chip_valid_get(chip), 0u);
        EXPECT_EQ(shr_chip_family_get(chip), 0u);
        EXPECT_EQ(shr_chip_type_get(chip), 0u);
        EXPECT_STREQ(shr_chip_name_get(chip), "null");
        uint32_t type = 9, sub = 9;
        EXPECT_EQ(shr_chip_sub_devid_get(chip, &type, &sub), -20);
    }
    // Chip 3 is a real slot.
    EXPECT_EQ(shr_chip_valid_get(3), 1u);
    uint32_t type = 0, sub = 0;
    EXPECT_EQ(shr_chip_sub_devid_get(3, &type, &sub), 0);
    EXPECT_EQ(type, 3u);
    EXPECT_EQ(sub, 7u);
    EXPECT_EQ(shr_chip_sub_devid_get(2, &type, &sub), -7);
    // An empty slot has never been named.
    EXPECT_STREQ(shr_chip_name_get(2), "null");
}

TEST_F(Frame, TypeAssignFollowsTheTypeTable)
{
    const struct {
        uint32_t type;
        uint32_t valid;
        uint32_t family;
        const char *name;
    } rows[] = {{0, 0, 0, "null"},
                {1, 1, 2, "kelpreef"},
                {2, 1, 2, "kelpreef2"},
                {3, 1, 2, "atolreef"},
                {4, 0, 0, "sandshark"}};
    for (const auto &row : rows) {
        shr_chip_type_assign(1, row.type, 0);
        EXPECT_EQ(shr_chip_valid_get(1), row.valid) << row.name;
        EXPECT_EQ(shr_chip_family_get(1), row.family) << row.name;
        EXPECT_STREQ(shr_chip_name_get(1), row.name);
    }
    // A type beyond the name table keeps the last name but is not valid.
    shr_chip_type_assign(1, 9, 0);
    EXPECT_EQ(shr_chip_valid_get(1), 0u);
    EXPECT_STREQ(shr_chip_name_get(1), "sandshark");
    shr_chip_type_assign(4, SHR_CHIP_TYPE_ATOLREEF, 0); // ignored, no crash
}

TEST_F(Frame, ClassifyByDeviceAndRevision)
{
    uint32_t type = 0, family = 0;
    EXPECT_EQ(shr_chip_classify(0x2025, 0, &type, &family), 0);
    EXPECT_EQ(type, 3u);
    EXPECT_EQ(family, 2u);
    EXPECT_EQ(shr_chip_classify(0x9228, 1, &type, &family), 0);
    EXPECT_EQ(type, 2u);
    for (int32_t rev : {0, 2, -1}) {
        EXPECT_EQ(shr_chip_classify(0x9228, rev, &type, &family), 0);
        EXPECT_EQ(type, 1u) << rev;
    }
    type = 77;
    EXPECT_EQ(shr_chip_classify(0x1234, 0, &type, &family), -7);
    EXPECT_EQ(type, 77u);
    EXPECT_EQ(shr_chip_classify(0x2025, 0, nullptr, &family), -20);
    EXPECT_EQ(shr_chip_classify(0x2025, 0, &type, nullptr), -20);
}

TEST_F(Frame, ChipCountIsClampedToFour)
{
    shr_chip_cur_num_assign(9);
    EXPECT_EQ(shr_chip_cur_num_get(), 4u);
    shr_chip_cur_num_assign(3);
    EXPECT_EQ(shr_chip_cur_num_get(), 3u);
}

TEST_F(Frame, StatusTextsAndModuleNames)
{
    EXPECT_STREQ(shr_errmsg(0), "Ok");
    EXPECT_STREQ(shr_errmsg(-7), "Entry not found");
    EXPECT_STREQ(shr_errmsg(-25), "Hash table confict");
    EXPECT_STREQ(shr_errmsg(-30), "Not implemented");
    EXPECT_STREQ(shr_errmsg(-31), "Unknown error");
    EXPECT_STREQ(shr_errmsg(-1000), "Unknown error");
    EXPECT_STREQ(shr_errmsg(5), "Unknown error");

    EXPECT_STREQ(shr_module_name_get(0), "HAL");
    EXPECT_STREQ(shr_module_name_get(19), "INIT");
    EXPECT_STREQ(shr_module_name_get(52), "misc");
    EXPECT_STREQ(shr_module_name_get(56), "TOP");
    EXPECT_STREQ(shr_module_name_get(57), "INVALID MODULE");
    std::set<std::string> names;
    for (uint32_t m = 0; m < SHR_MODULE_COUNT; m++) {
        names.insert(shr_module_name_get(m));
    }
    EXPECT_EQ(names.size(), SHR_MODULE_COUNT);
}

// ---- guard and dispatch -------------------------------------------------------

struct probe_table {
    i32 (*op)(u32 chip_id, int a, const char *b);
    i32 (*missing)(u32 chip_id);
};

u32 g_probe_chip;
int g_probe_a;
const char *g_probe_b;

i32 _probe_op(u32 chip_id, int a, const char *b)
{
    g_probe_chip = chip_id;
    g_probe_a = a;
    g_probe_b = b;
    return -13;
}

const probe_table g_probe = {_probe_op, nullptr};
const probe_table *const g_probe_dispatch[3] = {nullptr, nullptr, &g_probe};
const probe_table *const g_probe_no_family[3] = {nullptr, nullptr, nullptr};

TEST_F(Frame, GuardChecksChipThenFamilyThenSlot)
{
    using tide::api::dispatch;
    const char *text = "x";
    // Invalid chip first, whatever the table.
    EXPECT_EQ(dispatch<&probe_table::op>(g_probe_dispatch, 0, 1, text), -3);
    EXPECT_EQ(dispatch<&probe_table::op>(g_probe_no_family, 0, 1, text), -3);

    shr_chip_type_assign(0, SHR_CHIP_TYPE_ATOLREEF, 0);
    EXPECT_EQ(dispatch<&probe_table::op>(g_probe_no_family, 0, 1, text), -24);
    EXPECT_EQ(dispatch<&probe_table::missing>(g_probe_dispatch, 0), -24);
    // The slot's status comes back unchanged, with the arguments as given.
    EXPECT_EQ(dispatch<&probe_table::op>(g_probe_dispatch, 0, 42, text), -13);
    EXPECT_EQ(g_probe_chip, 0u);
    EXPECT_EQ(g_probe_a, 42);
    EXPECT_EQ(g_probe_b, text);
}

TEST_F(Frame, PointerGuardComesBeforeTheChip)
{
    using tide::api::dispatch_ptr;
    Capture::clear();
    shr_debug_base_printf_func_set(Capture::log_sink);
    int record = 0;
    EXPECT_EQ(dispatch_ptr<&probe_table::op>(nullptr, g_probe_dispatch, 7, 1, "x"), -20);
    ASSERT_EQ(Capture::lines().size(), 1u);
    EXPECT_EQ(Capture::lines()[0].text, "NULL pointer!\n");
    EXPECT_EQ(Capture::lines()[0].module, 56u);
    EXPECT_EQ(Capture::lines()[0].level, 1u);
    EXPECT_EQ(dispatch_ptr<&probe_table::op>(&record, g_probe_dispatch, 7, 1, "x"), -3);
}

TEST_F(Frame, ExportedCallsOnInvalidAndValidChips)
{
    base_field_op op{};
    base_test_cfg test{};
    uint8_t data[4] = {};
    for (uint32_t chip : {0u, 4u, 7u}) {
        EXPECT_EQ(base_api_reg_set_by_addr(chip, 0, data, 4), -3);
        EXPECT_EQ(base_api_field_get(chip, &op, nullptr), -3);
        EXPECT_EQ(base_api_control_get(chip, &test), -3);
        EXPECT_EQ(init_api_hardware_process(chip), -3);
        EXPECT_EQ(deinit_api_hardware_process(chip), -3);
        EXPECT_EQ(l3_api_iif_create(chip, 0, nullptr), -3);
        EXPECT_EQ(pkt_api_init(chip, nullptr), -3);
        EXPECT_EQ(pkt_api_deinit(chip, 2), -3);
        EXPECT_EQ(linkscan_api_mode_set(chip, 1, 2), -3);
    }
    shr_chip_type_assign(0, SHR_CHIP_TYPE_ATOLREEF, 0);
    // Empty slots of a real family and stub families answer -24.
    EXPECT_EQ(base_api_cause_show(0, 0, 0, 0), -24);
    EXPECT_EQ(pkt_api_init(0, nullptr), -24);
    EXPECT_EQ(pkt_api_deinit(0, 2), -24);
    uint32_t on = 7;
    EXPECT_EQ(linkscan_api_enable_set(0, 1), -24);
    EXPECT_EQ(linkscan_api_enable_get(0, &on), -24);
    EXPECT_EQ(linkscan_api_mode_set(0, 1, 2), -24);
    EXPECT_EQ(linkscan_api_mode_get(0, 1, &on), -24);
    EXPECT_EQ(on, 7u);
    // The soft reset has no exported door; its slot checks the value first.
    EXPECT_EQ(tide::api::dispatch<&reef_init_dispatch_t::chip_soft_reset>(init_dispatch, 0, 0x1000000u), -4);
}

// Calls an exported function with the chip and value-initialised arguments.
template <typename... Args>
i32 _call_with_zeros(i32 (*fn)(u32, Args...), u32 chip_id)
{
    return fn(chip_id, Args{}...);
}

TEST_F(Frame, EveryBaseCallRefusesInvalidChipsAndAnswersEmptySlots)
{
    std::set<std::string> filled;
    for (u32 chip : {0u, 4u, 0xFFFFFFFFu}) {
#define CHECK_INVALID(name, params, args) EXPECT_EQ(_call_with_zeros(base_api_##name, chip), -3) << #name;
        TIDE_BASE_OPS(CHECK_INVALID)
#undef CHECK_INVALID
    }
    shr_chip_type_assign(0, SHR_CHIP_TYPE_ATOLREEF, 0);
#define CHECK_EMPTY(name, params, args)                                  \
    if (reef_base_dispatch.name == nullptr) {                            \
        EXPECT_EQ(_call_with_zeros(base_api_##name, 0), -24) << #name;   \
    } else {                                                             \
        filled.insert(#name);                                            \
    }
    TIDE_BASE_OPS(CHECK_EMPTY)
#undef CHECK_EMPTY
    EXPECT_EQ(filled, (std::set<std::string>{"reg_set_by_addr", "reg_get_by_addr", "direct_tab_set_by_name",
                                             "direct_tab_get_by_name", "field_set", "field_get", "tab_data_to_string",
                                             "hash_tab_summary_show", "hash_tab_op", "hash_tab_dump", "hash_alg_set",
                                             "hash_alg_get", "hash_info_show", "tcam_summary_show", "tcam_resource_show",
                                             "tcam_add", "tcam_del", "tcam_show", "chip_module_cnt_show", "control_get"}));
}

// Every port call refuses an invalid chip; on a valid chip whose port
// service is not up, none of them crashes or succeeds.  The family has no
// empty slot.
TEST_F(Frame, EveryPortCallRefusesInvalidChipsAndHasItsSlot)
{
    for (u32 chip : {0u, 4u, 0xFFFFFFFFu}) {
#define CHECK_INVALID(name, params, args) EXPECT_EQ(_call_with_zeros(port_api_##name, chip), -3) << #name;
        TIDE_PORT_OPS(CHECK_INVALID)
#undef CHECK_INVALID
    }
    shr_chip_type_assign(0, SHR_CHIP_TYPE_ATOLREEF, 0);
    size_t slots = 0;
#define CHECK_NOT_UP(name, params, args)                              \
    EXPECT_NE(reef_port_dispatch.name, nullptr) << #name;             \
    EXPECT_LT(_call_with_zeros(port_api_##name, 0), 0) << #name;       \
    slots++;
    TIDE_PORT_OPS(CHECK_NOT_UP)
#undef CHECK_NOT_UP
    EXPECT_EQ(slots, 56u);
    EXPECT_EQ(sizeof(reef_port_dispatch_t), 56 * sizeof(void *));
}

TEST_F(Frame, StubRecordPointerIsCheckedAfterTheChip)
{
    Capture::clear();
    shr_debug_base_printf_func_set(Capture::log_sink);
    shr_chip_type_assign(1, SHR_CHIP_TYPE_KELPREEF2, 1);
    EXPECT_EQ(l3_api_iif_create(1, 0, nullptr), -20);
    ASSERT_EQ(Capture::lines().size(), 1u);
    EXPECT_EQ(Capture::lines()[0].text, "iif is NULL!\n");
    EXPECT_EQ(Capture::lines()[0].module, 1u);
    EXPECT_EQ(Capture::lines()[0].level, 1u);
    alignas(8) char record[64] = {};
    EXPECT_EQ(l3_api_iif_create(1, 0, reinterpret_cast<l3_iif *>(record)), -24);
}

// ---- hooks and allocation ---------------------------------------------------------

TEST_F(Frame, HooksRestoreTheirDefaults)
{
    EXPECT_EQ(shr_debug_base_printf_func_get(), shr_debugk);
    EXPECT_EQ(shr_debug_base_cli_printf_func_get(), xsal_printf);
    shr_debug_base_printf_func_set(Capture::log_sink);
    shr_debug_base_cli_printf_func_set(Capture::output_sink);
    EXPECT_EQ(shr_debug_base_printf_func_get(), Capture::log_sink);
    shr_debug_base_printf_func_set(nullptr);
    shr_debug_base_cli_printf_func_set(nullptr);
    EXPECT_EQ(shr_debug_base_printf_func_get(), shr_debugk);
    EXPECT_EQ(shr_debug_base_cli_printf_func_get(), xsal_printf);
}

size_t g_allocs;
size_t g_frees;
void *_counting_malloc(size_t n)
{
    g_allocs++;
    return malloc(n);
}
void _counting_free(void *p)
{
    g_frees++;
    free(p);
}

TEST_F(Frame, AllocationGoesThroughTheBackend)
{
    g_allocs = g_frees = 0;
    xsal_malloc_base_func_set(_counting_malloc);
    xsal_free_base_func_set(_counting_free);
    EXPECT_EQ(xsal_malloc(0, "none", SHR_MOD_COMMON), nullptr);
    // A size whose low 32 bits are zero is refused without a call.
    EXPECT_EQ(xsal_malloc(0x100000000ull, "wrapped", SHR_MOD_COMMON), nullptr);
    EXPECT_EQ(g_allocs, 0u);
    void *p = xsal_malloc(24, "table", SHR_MOD_COMMON);
    ASSERT_NE(p, nullptr);
    xsal_mem_free(p);
    xsal_mem_free(nullptr);
    EXPECT_EQ(g_allocs, 1u);
    EXPECT_EQ(g_frees, 1u);
    xsal_malloc_base_func_set(nullptr);
    EXPECT_EQ(xsal_malloc_base_func_get(), static_cast<xsal_malloc_func_t>(malloc));
    // Mutexes are allocated through the same backend.
    xsal_malloc_base_func_set(_counting_malloc);
    xsal_mutex_t m = xsal_mutex_create("counted");
    EXPECT_EQ(g_allocs, 2u);
    xsal_mutex_destroy(m);
    EXPECT_EQ(g_frees, 2u);
}

void *_failing_malloc(size_t)
{
    return nullptr;
}

TEST_F(Frame, MutexCreationSurvivesNoMemory)
{
    xsal_malloc_base_func_set(_failing_malloc);
    EXPECT_EQ(xsal_mutex_create("m"), nullptr);
    EXPECT_EQ(xsal_rw_mutex_create("rw"), nullptr);
    EXPECT_EQ(xsal_console_init(), -1);
    xsal_malloc_base_func_set(nullptr);
}

TEST_F(Frame, MutexesAreRecursiveAndRefuseNull)
{
    xsal_mutex_t m = xsal_mutex_create("recursive");
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(xsal_mutex_lock(m), 0);
    EXPECT_EQ(xsal_mutex_lock(m), 0);
    EXPECT_EQ(xsal_mutex_trylock(m), 0);
    int other = 0;
    std::thread([&] { other = xsal_mutex_trylock(m); }).join();
    EXPECT_EQ(other, -1);
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(xsal_mutex_unlock(m), 0);
    }
    std::thread([&] {
        other = xsal_mutex_trylock(m);
        xsal_mutex_unlock(m);
    }).join();
    EXPECT_EQ(other, 0);
    EXPECT_EQ(xsal_mutex_destroy(m), 0);

    EXPECT_EQ(xsal_mutex_lock(nullptr), -1);
    EXPECT_EQ(xsal_mutex_trylock(nullptr), -1);
    EXPECT_EQ(xsal_mutex_unlock(nullptr), -1);
    EXPECT_EQ(xsal_mutex_destroy(nullptr), -1);
    EXPECT_EQ(xsal_rw_mutex_rdlock(nullptr), -1);
    EXPECT_EQ(xsal_rw_mutex_destroy(nullptr), -1);
}

TEST_F(Frame, ReadersShareWritersExclude)
{
    xsal_rw_mutex_t rw = xsal_rw_mutex_create("rw");
    ASSERT_NE(rw, nullptr);
    EXPECT_EQ(xsal_rw_mutex_rdlock(rw), 0);
    int rd = -9, wr = -9;
    std::thread([&] {
        rd = xsal_rw_mutex_tryrdlock_(rw, __FILE__, __LINE__);
        if (rd == 0) {
            xsal_rw_mutex_rdunlock(rw);
        }
        wr = xsal_rw_mutex_trywrlock_(rw, __FILE__, __LINE__);
    }).join();
    EXPECT_EQ(rd, 0);
    EXPECT_EQ(wr, -1);
    EXPECT_EQ(xsal_rw_mutex_rdunlock(rw), 0);
    EXPECT_EQ(xsal_rw_mutex_destroy(rw), 0);
}

TEST_F(Frame, ConsoleInitIsIdempotent)
{
    EXPECT_EQ(xsal_console_init(), 0);
    xsal_mutex_t first = g_xsal_console_mutex;
    EXPECT_EQ(xsal_console_init(), 0);
    EXPECT_EQ(g_xsal_console_mutex, first);
    testing::internal::CaptureStdout();
    EXPECT_EQ(xsal_printf("%s %d\n", "console", 5), 10);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "console 5\n");
    EXPECT_EQ(xsal_console_deinit(), 0);
    EXPECT_EQ(g_xsal_console_mutex, nullptr);
}

TEST_F(Frame, BoundedMemoryCallsNeverWritePastTheDestination)
{
    unsigned char buf[12];
    memset(buf, 0xEE, sizeof(buf));
    const unsigned char src[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    // The destination is the first 8 bytes; the last 4 are a guard.
    EXPECT_NE(xsal_memcpy_s(buf, 8, src, 10), 0);
    for (unsigned char b : buf) {
        EXPECT_EQ(b, 0xEE);
    }
    EXPECT_EQ(xsal_memcpy_s(buf, 8, src, 8), 0);
    EXPECT_EQ(buf[7], 8);
    EXPECT_EQ(buf[8], 0xEE);
    EXPECT_NE(xsal_memcpy_s(nullptr, 8, src, 1), 0);
    EXPECT_NE(xsal_memcpy_s(buf, 8, nullptr, 1), 0);
    EXPECT_EQ(xsal_memcpy_s(buf, 8, nullptr, 0), 0);
    EXPECT_NE(xsal_memcpy_s(buf, 8, buf + 2, 4), 0); // overlap
    EXPECT_NE(xsal_memcpy_s(buf, static_cast<size_t>(-1), src, 1), 0);

    EXPECT_NE(xsal_memset_s(buf, 8, 0, 9), 0);
    EXPECT_EQ(buf[0], 1);
    EXPECT_EQ(xsal_memset_s(buf, 8, 0, 8), 0);
    EXPECT_EQ(buf[7], 0);
    EXPECT_EQ(buf[8], 0xEE);
    EXPECT_EQ(tide::bounds::memmove_s(buf, 8, buf + 1, 4), 0);
}

// ---- the default sink -----------------------------------------------------------

TEST_F(Frame, DefaultSinkFiltersByModuleSwitchAndLevel)
{
    // At load only DIRECT (55) is on, and it prints at any level.
    testing::internal::CaptureStdout();
    shr_debugk(-1, 55, 4, "dir/file.cc", 12, "direct %d\n", 1);
    shr_debugk(-1, 19, 0, "file.cc", 1, "init\n");
    shr_debugk(-1, 57, 0, "file.cc", 1, "beyond\n");
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("direct 1\n"), std::string::npos);
    EXPECT_NE(out.find("file.cc:00012"), std::string::npos);
    EXPECT_NE(out.find("DIRECT DEBUG"), std::string::npos);
    EXPECT_EQ(out.find("init"), std::string::npos);
    EXPECT_EQ(out.find("beyond"), std::string::npos);

    shr_debugk_enable(12);
    shr_debugk_ll_enable(12, 1);
    testing::internal::CaptureStdout();
    shr_debugk(0, 12, 0, "f.cc", 1, "fatal\n");
    shr_debugk(0, 12, 1, "f.cc", 1, "error\n");
    shr_debugk(0, 12, 2, "f.cc", 1, "warn\n");
    out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("fatal"), std::string::npos);
    EXPECT_NE(out.find("error"), std::string::npos);
    EXPECT_EQ(out.find("warn"), std::string::npos);

    shr_debugk_disable(55);
    testing::internal::CaptureStdout();
    shr_debugk(-1, 55, 0, "f.cc", 1, "off\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    shr_debugk_enable(55);
    shr_debugk_disable(12);
    shr_debugk_ll_enable(12, 0);
}

} // namespace
