// The chip model as a product: install rules, knobs, the reset controller,
// the write log and the driver records it answers.
#include <gtest/gtest.h>

#include <sys/mman.h>

#include <cstring>

#include "hal/linux/linux_haui_um/hal_ui.h"
#include "support/fixture.h"

using tide::test::SimChips;

namespace {

TEST(SimInstall, CountsAndKnobsWithoutAModel)
{
    EXPECT_EQ(tide_sim_install(0), -4);
    EXPECT_EQ(tide_sim_install(5), -4);
    tide_sim_identity id{};
    EXPECT_EQ(tide_sim_identity_get(0, &id), -17);
    EXPECT_EQ(tide_sim_chip_count_set(1), -17);
    EXPECT_EQ(tide_sim_irq_raise(0), -17);
    tide_sim_uninstall(); // nothing installed: no effect

    ASSERT_EQ(tide_sim_install(2), 0);
    EXPECT_EQ(tide_sim_install(1), -8);
    EXPECT_EQ(tide_sim_identity_get(2, &id), -3);
    EXPECT_EQ(tide_sim_identity_get(1, nullptr), -20);
    EXPECT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_COUNT, 1), -4);
    EXPECT_EQ(tide_sim_chip_count_set(3), -4);
    uint32_t v = 0;
    EXPECT_EQ(tide_sim_reg_peek(0, 1, 0, &v), -4);
    EXPECT_EQ(tide_sim_reg_poke(0, 4, 0x10000000, 1), -4);
    tide_sim_uninstall();
    // The C library's calls are the HAL's seam again.
    EXPECT_EQ(tide_sim_install(1), 0);
    tide_sim_uninstall();
}

TEST(SimInstall, ApplicationWithoutHooksStillReachesTheRegisterFile)
{
    ASSERT_EQ(tide_sim_install(1), 0);
    sdk_init_cfg cfg{};
    ASSERT_EQ(init_api_base_software_process(&cfg), 0);
    ASSERT_EQ(init_api_software_process(0, &cfg), 0);
    ASSERT_EQ(tide_sim_reg_poke(0, 4, 0x500, 0xfeedf00d), 0);
    uint8_t in[4] = {};
    ASSERT_EQ(base_api_reg_get_by_addr(0, 0x500, in, 4), 0);
    EXPECT_EQ(in[0], 0x0d);
    EXPECT_EQ(in[3], 0xfe);
    EXPECT_EQ(deinit_api_software_process(0), 0);
    EXPECT_EQ(deinit_api_base_software_process(), 0);
    tide_sim_uninstall();
}

class SimModel : public SimChips {
protected:
    SimModel() : SimChips(2, 0) {}
};

TEST_F(SimModel, ResetControllerSetsItsDoneBitAtTheEndOfTheSequence)
{
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    uint32_t status = 0;
    ASSERT_EQ(hal_reg_write_32(0, 3, 0x47200, 0), 0);
    tide_sim_reg_peek(0, 3, 0x47014, &status);
    EXPECT_EQ(status & 1, 0u);
    for (uint32_t step : {8u, 10u, 11u}) {
        ASSERT_EQ(hal_reg_write_32(0, 3, 0x47200, step), 0);
        tide_sim_reg_peek(0, 3, 0x47014, &status);
        EXPECT_EQ(status & 1, 0u) << step;
    }
    // The reset puts the switch core back to its reset values.
    ASSERT_EQ(hal_reg_write_32(0, 4, 0x1000, 0x77), 0);
    ASSERT_EQ(hal_reg_write_32(0, 3, 0x47200, 15), 0);
    tide_sim_reg_peek(0, 3, 0x47014, &status);
    EXPECT_EQ(status & 1, 1u);
    uint32_t v = 1;
    ASSERT_EQ(hal_reg_read_32(0, 4, 0x1000, &v), 0);
    EXPECT_EQ(v, 0u);
    // Stalled, the next reset never reports done.
    ASSERT_EQ(tide_sim_engine_stall_set(0, TIDE_SIM_ENGINE_RESET, 1), 0);
    ASSERT_EQ(hal_reg_write_32(0, 3, 0x47200, 0), 0);
    ASSERT_EQ(hal_reg_write_32(0, 3, 0x47200, 15), 0);
    tide_sim_reg_peek(0, 3, 0x47014, &status);
    EXPECT_EQ(status & 1, 0u);
    EXPECT_EQ(deinit_api_software_process(0), 0);
}

TEST_F(SimModel, WriteLogKeepsTheNewestWritesInOrder)
{
    ASSERT_EQ(init_api_software_process(1, &cfg_), 0);
    ASSERT_EQ(tide_sim_write_log_clear(1), 0);
    const uint32_t total = TIDE_SIM_WRITE_LOG_DEPTH + 10;
    for (uint32_t i = 0; i < total; i++) {
        ASSERT_EQ(hal_reg_write_32(1, 4, 0x100, i), 0);
    }
    ASSERT_EQ(hal_reg_write_64(1, 0, 0x8, 0xabcdef0123ull), 0);
    ASSERT_EQ(hal_reg_write_16(1, 4, 0x202, 0x1234), 0);
    const auto writes = tide::test::sim_writes(1);
    ASSERT_EQ(writes.size(), TIDE_SIM_WRITE_LOG_DEPTH);
    EXPECT_EQ(writes[0].value, 12u);
    EXPECT_EQ(writes[writes.size() - 3].value, total - 1);
    EXPECT_EQ(writes[writes.size() - 2].width, 64u);
    EXPECT_EQ(writes[writes.size() - 2].bar, 0u);
    EXPECT_EQ(writes.back().width, 16u);
    EXPECT_EQ(writes.back().addr, 0x202u);
    // Chip 0 saw none of it.
    EXPECT_TRUE(tide::test::sim_writes(0).empty());
    tide_sim_write one{};
    uint32_t n = 0;
    ASSERT_EQ(tide_sim_write_log_get(1, &one, 1, &n), 0);
    EXPECT_EQ(n, TIDE_SIM_WRITE_LOG_DEPTH);
    EXPECT_EQ(one.value, 12u);
    EXPECT_EQ(deinit_api_software_process(1), 0);
}

TEST_F(SimModel, DriverReportsWhatTheKnobsSay)
{
    tide_sim_identity id{};
    ASSERT_EQ(tide_sim_identity_get(1, &id), 0);
    EXPECT_EQ(id.device_id, 0x2025u);
    EXPECT_EQ(id.byte_order, 2u);
    EXPECT_EQ(id.bus_type, 0u);
    id.vendor_id = 0x1234;
    id.revision = 9;
    ASSERT_EQ(tide_sim_identity_set(1, &id), 0);
    u32 vendor = 0, device = 0, order = 0, rev = 0;
    ASSERT_EQ(hal_ui_get_chip_info(1, &vendor, &device, &order, &rev), 0);
    EXPECT_EQ(vendor, 0x1234u);
    EXPECT_EQ(rev, 9u);
    ASSERT_EQ(init_api_software_process(1, &cfg_), 0);
    uint32_t type = 0, sub = 0;
    ASSERT_EQ(shr_chip_sub_devid_get(1, &type, &sub), 0);
    EXPECT_EQ(sub, 9u);
    EXPECT_EQ(deinit_api_software_process(1), 0);

    // The driver can report fewer chips than the model has.
    ASSERT_EQ(tide_sim_chip_count_set(1), 0);
    u32 count = 0;
    ASSERT_EQ(hal_chip_num_get(&count), 0);
    EXPECT_EQ(count, 1u);
    EXPECT_NE(hal_ui_get_chip_info(1, &vendor, &device, &order, &rev), 0);
    EXPECT_NE(init_api_software_process(1, &cfg_), 0);
    ASSERT_EQ(tide_sim_chip_count_set(0), 0);
    ASSERT_EQ(hal_chip_num_get(&count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(hal_ui_chip_mem_init(0), -7);
    ASSERT_EQ(tide_sim_chip_count_set(2), 0);
}

TEST_F(SimModel, CommandRecordsOfTheDriverContract)
{
    hal_devio io{};
    EXPECT_EQ(sizeof(io), 120u);
    const hal_ui_os_ops *os = hal_ui_os_ops_get();
    // An unknown command fails, and so does a record on a foreign fd.
    EXPECT_NE(os->ioctl(g_hal_ui_devfd_for_ioctl, 0x4C99, &io), 0);
    EXPECT_EQ(io.result, -1);
    EXPECT_NE(os->ioctl(1, HAL_CMD_CHIP_NUM_GET, &io), 0);
    // The packet device has no traffic yet: a wait ends at once.
    io = hal_devio{};
    EXPECT_NE(os->ioctl(g_hal_ui_devfd_for_pkt, HAL_PKT_CMD_WAIT_INTR, &io), 0);
    EXPECT_EQ(io.result, -12);
    u32 msg = 5;
    ASSERT_EQ(hal_ops_attach(0), 0);
    EXPECT_EQ(hal_pkt_send_msg(0, &msg), 0);
    EXPECT_EQ(msg, 5u);
    hal_ops_dettach(0);
    // The VP record is taken as given.
    u64 words[3] = {1, 2, 3};
    EXPECT_EQ(hal_ui_vp_conf_init(0, words), 0);
    // Configuration space: aligned words of its 4 KiB, and nothing else,
    // however close to 2^32 the address is.
    u32 v = 0;
    EXPECT_EQ(hal_ui_pci_config_write(1, 4092, 0x5A5A5A5A), 0);
    EXPECT_EQ(hal_ui_pci_config_read(1, 4092, &v), 0);
    EXPECT_EQ(v, 0x5A5A5A5Au);
    for (u32 addr : {4096u, 4094u, 0xFFFFFFFCu, 0xFFFFFFFFu}) {
        EXPECT_NE(hal_ui_pci_config_write(1, addr, 1), 0) << addr;
        EXPECT_NE(hal_ui_pci_config_read(1, addr, &v), 0) << addr;
    }
}

TEST_F(SimModel, MappingsLieWhollyInsideTheMemoryTheyName)
{
    const hal_ui_os_ops *os = hal_ui_os_ops_get();
    const int fd = g_hal_ui_devfd_for_ioctl;
    u64 ranges[9] = {};
    ASSERT_EQ(hal_ui_get_iomem(0, ranges), 0);
    const u64 base = ranges[0], size = ranges[1];
    auto map = [&](u64 paddr, u64 length) {
        return os->mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, static_cast<off_t>(paddr));
    };
    EXPECT_NE(map(base, size), MAP_FAILED);
    EXPECT_NE(map(base + size - 8, 8), MAP_FAILED);
    EXPECT_EQ(map(base + size - 8, 16), MAP_FAILED);
    EXPECT_EQ(map(base, 0), MAP_FAILED);
    // A length that wraps the end of the aperture around 2^64.
    EXPECT_EQ(map(base + 0x10, ~0ull - 7), MAP_FAILED);
    EXPECT_EQ(map(base + size, ~0ull), MAP_FAILED);

    // The same for a DMA block.
    u64 va = 0, pa = 0;
    ASSERT_EQ(hal_ui_dma_alloc(0, &va, &pa, 4096, nullptr), 0);
    EXPECT_NE(map(pa, 4096), MAP_FAILED);
    EXPECT_EQ(map(pa + 8, ~0ull - 4), MAP_FAILED);
    EXPECT_EQ(map(pa, 0), MAP_FAILED);
    EXPECT_EQ(hal_ui_dma_free(0, 0, va), 0);
}

} // namespace
