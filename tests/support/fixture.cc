#include "support/fixture.h"

#include "atolreef_cib.h"
#include "hal/linux/linux_haui_um/hal_ui.h"
#include "support/front_ports.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <mutex>

namespace tide::test {

namespace {

std::mutex g_mutex;
std::vector<LogLine> g_lines;
std::string g_output;

std::string _format(const char *format, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    const int n = vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string s(n > 0 ? static_cast<size_t>(n) : 0, '\0');
    if (n > 0) {
        vsnprintf(s.data(), s.size() + 1, format, args);
    }
    return s;
}

} // namespace

void Capture::log_sink(int32_t chip, uint32_t module, uint32_t level, const char *, uint32_t, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = _format(format, args);
    va_end(args);
    std::lock_guard<std::mutex> lock(g_mutex);
    g_lines.push_back(LogLine{chip, module, level, std::move(text)});
}

int Capture::output_sink(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    std::string text = _format(format, args);
    va_end(args);
    std::lock_guard<std::mutex> lock(g_mutex);
    g_output += text;
    return static_cast<int>(text.size());
}

std::vector<LogLine> Capture::lines()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_lines;
}

std::string Capture::output()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_output;
}

void Capture::clear()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_lines.clear();
    g_output.clear();
}

size_t Capture::count(const std::string &needle)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    size_t n = 0;
    for (const LogLine &l : g_lines) {
        n += l.text.find(needle) != std::string::npos;
    }
    return n;
}

long Capture::find(const std::string &needle, size_t from)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    for (size_t i = from; i < g_lines.size(); i++) {
        if (g_lines[i].text.find(needle) != std::string::npos) {
            return static_cast<long>(i);
        }
    }
    return -1;
}

sdk_init_cfg capture_cfg(bool hooks)
{
    sdk_init_cfg cfg{};
    cfg.log_printf = Capture::log_sink;
    cfg.cli_printf = Capture::output_sink;
    if (hooks) {
        tide_sim_sdk_init_cfg(&cfg);
    }
    return cfg;
}

void SimChips::SetUp()
{
    Capture::clear();
    ASSERT_EQ(tide_sim_install(chips_), 0);
    cfg_ = capture_cfg(hooks_);
    ASSERT_EQ(init_api_base_software_process(&cfg_), 0);
    up_.assign(chips_, false);
    for (uint32_t c = 0; c < bring_up_; c++) {
        up_chip(c);
    }
}

void SimChips::up_chip(uint32_t chip)
{
    if (!hooks_) {
        // Without the hooks no engine of the model runs; the reset's done
        // bit is set by hand so that hardware init finds it,
        tide_sim_identity id{};
        tide_sim_identity_get(chip, &id);
        ASSERT_EQ(tide_sim_reg_poke(chip, 3, 0x47014, id.device_id == 0x9228 ? 1u << 2 : 1u), 0);
        // the 400 MHz clock's lock bit, so that the ports' phase 1 finds it,
        ASSERT_EQ(tide_sim_reg_poke(chip, 3, 0x47044, 1u << 21), 0);
        // and the TCAM's done bits, so that its clearing finds them.
        ASSERT_EQ(tide_sim_reg_poke(chip, 4, atolreef_cib_acl_core_tcam_init_done_reg.addr[0], 0xFFFF), 0);
    }
    ASSERT_EQ(init_api_software_process(chip, &cfg_), 0);
    ASSERT_EQ(init_api_hardware_process(chip), 0);
    up_[chip] = true;
    if (hooks_ && ports_) {
        // The sibling types answer -24 for the port driver the build lacks.
        tide_sim_identity id{};
        tide_sim_identity_get(chip, &id);
        const int32_t rc = front_ports_up(chip);
        EXPECT_TRUE(rc == 0 || (rc == -24 && id.device_id == 0x9228)) << "front ports of chip " << chip << ": " << rc;
    }
}

void SimChips::down_chip(uint32_t chip)
{
    EXPECT_EQ(deinit_api_hardware_process(chip), 0);
    EXPECT_EQ(deinit_api_software_process(chip), 0);
    up_[chip] = false;
}

void SimChips::TearDown()
{
    for (uint32_t c = 0; c < up_.size(); c++) {
        if (up_[c]) {
            down_chip(c);
        }
    }
    EXPECT_EQ(deinit_api_base_software_process(), 0);
    tide_sim_uninstall();
    restore_hal_tables();
}

void kelpreef_identity_set(uint32_t chip, uint32_t revision)
{
    tide_sim_identity id{};
    ASSERT_EQ(tide_sim_identity_get(chip, &id), 0);
    id.device_id = 0x9228;
    id.revision = revision;
    ASSERT_EQ(tide_sim_identity_set(chip, &id), 0);
}

void restore_hal_tables()
{
    // Register hooks stay in the shared table after tear-down; a test that
    // follows in the same process starts from the library's own slots.
    g_hal_ui_drv.reg_read_16 = hal_ui_reg_read_16;
    g_hal_ui_drv.reg_write_16 = hal_ui_reg_write_16;
    g_hal_ui_drv.reg_read_32 = hal_ui_reg_read_32;
    g_hal_ui_drv.reg_write_32 = hal_ui_reg_write_32;
    g_hal_ui_drv.reg_read_64 = hal_ui_reg_read_64;
    g_hal_ui_drv.reg_write_64 = hal_ui_reg_write_64;
    g_hal_ui_spi_drv.reg_read_16 = hal_ui_spi_reg_read_16;
    g_hal_ui_spi_drv.reg_write_16 = hal_ui_spi_reg_write_16;
    g_hal_ui_spi_drv.reg_read_32 = hal_ui_spi_reg_read_32;
    g_hal_ui_spi_drv.reg_write_32 = hal_ui_spi_reg_write_32;
    g_hal_ui_spi_drv.reg_read_64 = hal_ui_spi_reg_read_64;
    g_hal_ui_spi_drv.reg_write_64 = hal_ui_spi_reg_write_64;
}

uint64_t test_seed()
{
    const char *env = std::getenv("TIDE_TEST_SEED");
    const uint64_t seed = env != nullptr ? std::strtoull(env, nullptr, 0) : std::random_device{}();
    std::printf("TIDE_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    return seed;
}

std::vector<tide_sim_write> sim_writes(uint32_t chip)
{
    uint32_t n = 0;
    tide_sim_write_log_get(chip, nullptr, 0, &n);
    std::vector<tide_sim_write> v(n);
    tide_sim_write_log_get(chip, v.data(), n, &n);
    v.resize(n);
    return v;
}

} // namespace tide::test
