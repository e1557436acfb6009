// The HAL on the chip model: device nodes, apertures, BAR ids, byte order,
// subsections, interrupt wait, DMA, bus numbers; and without any device.
#include <gtest/gtest.h>

#include <sys/mman.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "hal/hal_op/hal.h"
#include "hal/linux/linux_haui_um/hal_ui.h"
#include "support/fixture.h"
#include "support/wait.h"

using tide::test::Capture;
using tide::test::SimChips;

namespace {

// Raw view of a chip's mapped aperture, as the bus sees it.
uint32_t _raw_word(uint32_t chip, uint32_t bar, uint32_t addr)
{
    u64 info[3] = {};
    EXPECT_EQ(hal_get_chip_mem_info(chip, bar, info), 0);
    uint32_t v;
    memcpy(&v, reinterpret_cast<const uint8_t *>(info[0]) + addr, 4);
    return v;
}

void _set_raw_word(uint32_t chip, uint32_t bar, uint32_t addr, uint32_t v)
{
    u64 info[3] = {};
    ASSERT_EQ(hal_get_chip_mem_info(chip, bar, info), 0);
    memcpy(reinterpret_cast<uint8_t *>(info[0]) + addr, &v, 4);
}

class HalOnModel : public SimChips {
protected:
    HalOnModel() : SimChips(2, 1) {}
};

TEST_F(HalOnModel, RoundTripThroughTheWholeStack)
{
    uint8_t out[4] = {0x78, 0x56, 0x34, 0x12};
    uint8_t in[4] = {};
    ASSERT_EQ(base_api_reg_set_by_addr(0, 0x043F0100, out, 4), 0);
    ASSERT_EQ(base_api_reg_get_by_addr(0, 0x043F0100, in, 4), 0);
    EXPECT_EQ(memcmp(in, out, 4), 0);
    // The model saw the write through its hooks.
    uint32_t v = 0;
    EXPECT_EQ(tide_sim_reg_peek(0, 4, 0x043F0100, &v), 0);
    EXPECT_EQ(v, 0x12345678u);
    const auto writes = tide::test::sim_writes(0);
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes.back().addr, 0x043F0100u);
    EXPECT_EQ(writes.back().value, 0x12345678u);
    EXPECT_EQ(writes.back().width, 32u);
    // Chip 1 is attached but not brought up: the guard refuses it.
    EXPECT_EQ(base_api_reg_get_by_addr(1, 0x043F0100, in, 4), -3);
}

TEST_F(HalOnModel, BarIdsOtherThanZeroThreeFourAreRefusedSilently)
{
    Capture::clear();
    for (uint32_t bar : {1u, 2u, 5u, 6u}) {
        u16 v16 = 0;
        u32 v32 = 0;
        u64 v64 = 0;
        // The library's own back end, below any hook.
        EXPECT_EQ(hal_ui_reg_read_16(0, bar, 0, &v32), -4);
        EXPECT_EQ(hal_ui_reg_write_16(0, bar, 0, 1), -4);
        EXPECT_EQ(hal_ui_reg_read_32(0, bar, 0, &v32), -4);
        EXPECT_EQ(hal_ui_reg_write_32(0, bar, 0, 1), -4);
        EXPECT_EQ(hal_ui_reg_read_64(0, bar, 0, &v64), -4);
        EXPECT_EQ(hal_ui_reg_write_64(0, bar, 0, 1), -4);
        // And through the hooks of the model.
        EXPECT_EQ(hal_reg_read_16(0, bar, 0, &v16), -4);
        EXPECT_EQ(hal_reg_write_32(0, bar, 0, 1), -4);
    }
    EXPECT_TRUE(Capture::lines().empty());
}

TEST_F(HalOnModel, AccessBeyondAnApertureIsRefused)
{
    u32 v = 0;
    u64 info[3] = {};
    ASSERT_EQ(hal_get_chip_mem_info(0, 3, info), 0);
    const u32 end = static_cast<u32>(info[2]);
    EXPECT_EQ(hal_ui_reg_read_32(0, 3, end - 4, &v), 0);
    EXPECT_EQ(hal_ui_reg_read_32(0, 3, end, &v), -4);
    EXPECT_EQ(hal_ui_reg_write_32(0, 3, end - 2, 1), -4);
    EXPECT_EQ(hal_reg_read_32(0, 3, end, &v), -4);
    EXPECT_EQ(hal_ui_reg_read_32(0, 4, 0xFFFFFFFC, &v), -4);
}

TEST_F(HalOnModel, ApertureRecordsAndChipIdentity)
{
    u64 info[3] = {};
    EXPECT_EQ(hal_get_chip_mem_info(0, 4, info), 0);
    EXPECT_NE(info[0], 0u);
    EXPECT_GE(info[2], 0x04200000u);
    EXPECT_EQ(hal_get_chip_mem_info(0, 2, info), -11);
    EXPECT_EQ(hal_ui_get_chip_mem_info(4, 0, info), -4);
    EXPECT_EQ(hal_ui_get_chip_mem_info(0, 0, nullptr), -4);

    u32 vendor = 0, device = 0, order = 0, rev = 0;
    EXPECT_EQ(hal_probe_chip_info_get(0, &vendor, &device, &order, &rev), 0);
    EXPECT_EQ(device, 0x2025u);
    EXPECT_EQ(order, 2u);
    EXPECT_EQ(hal_ui_get_chip_info(0, nullptr, &device, &order, &rev), -4);

    // An atolreef chip takes every BAR 4 address in its whole aperture.
    u64 vaddr = 0, base = 1;
    EXPECT_EQ(hal_subsection_bar_vaddr_get(0, 0x1800000, &vaddr, &base), 0);
    EXPECT_EQ(base, 0u);
    EXPECT_EQ(vaddr, g_hal_ui_chip_info[0].lsw_vaddr);
    EXPECT_EQ(hal_subsection_bar_vaddr_get(0, 0x600, nullptr, &base), -20);

    u32 pci = 0;
    EXPECT_EQ(hal_pci_conf_read(0, 0, &pci), 0);
    EXPECT_EQ(pci >> 16, 0x2025u);
    EXPECT_EQ(hal_pci_conf_write(0, 0x40, 0xabcd), 0);
    EXPECT_EQ(hal_pci_conf_read(0, 0x40, &pci), 0);
    EXPECT_EQ(pci, 0xabcdu);
    EXPECT_EQ(hal_pci_conf_read(0, 0x10000, &pci), -1);
}

TEST_F(HalOnModel, SlotsOfMissingTablesGiveNotFound)
{
    u32 v = 0;
    EXPECT_EQ(hal_reg_read_32(3, 4, 0, &v), -7);
    EXPECT_EQ(hal_reg_read_32(9, 4, 0, &v), -7);
    EXPECT_EQ(hal_irq_wait(3), -7);
    EXPECT_EQ(hal_sim_chip_type_set(0, 1), -24);
    // A NULL function keeps the table as it is.
    const auto before = g_hw_ops[0]->reg_read_32;
    EXPECT_EQ(hal_reg_operate_func_register(0, nullptr, 2), 0);
    EXPECT_EQ(g_hw_ops[0]->reg_read_32, before);
    EXPECT_EQ(hal_reg_operate_func_register(3, reinterpret_cast<hal_reg_func_t>(hal_ui_reg_read_32), 2), 0);
}

TEST_F(HalOnModel, OpeningTwiceOpensOnce)
{
    const int fd = g_hal_ui_devfd_for_ioctl;
    ASSERT_GE(fd, 0);
    EXPECT_EQ(hal_init(), 0);
    EXPECT_EQ(g_hal_ui_devfd_for_ioctl, fd);
}

// Threads of chip 0 blocked in the driver's interrupt wait.
uint64_t _irq_waiters()
{
    tide_sim_stats stats{};
    EXPECT_EQ(tide_sim_stats_get(0, &stats), 0);
    return stats.irq_waiters;
}

TEST_F(HalOnModel, InterruptWaitEndsOnExitOrInterrupt)
{
    // An exit ends a wait in progress: it is given once the waiter is in.
    std::atomic<int> result{1};
    std::thread waiter([&] { result = hal_irq_wait(0); });
    if (!tide_test::eventually([] { return _irq_waiters() == 1; })) {
        ADD_FAILURE() << "the waiter never blocked in the driver";
        tide_sim_irq_raise(0);
        waiter.join();
        return;
    }
    EXPECT_EQ(result.load(), 1); // still blocked
    EXPECT_EQ(hal_irq_exit(0), 0);
    waiter.join();
    EXPECT_EQ(result.load(), -12);
    EXPECT_EQ(_irq_waiters(), 0u);

    // An interrupt raised before the wait is held for it.
    ASSERT_EQ(tide_sim_irq_raise(0), 0);
    EXPECT_EQ(hal_irq_wait(0), 0);
    // An exit with nobody waiting does not end the next wait, which the
    // interrupt raised while it waits ends.
    EXPECT_EQ(hal_irq_exit(0), 0);
    std::thread raiser([] {
        tide_test::eventually([] { return _irq_waiters() == 1; });
        tide_sim_irq_raise(0);
    });
    EXPECT_EQ(hal_irq_wait(0), 0);
    raiser.join();

    EXPECT_EQ(hal_irq_enable(0, 0x1234567890ull), 0);
    tide_sim_stats stats{};
    ASSERT_EQ(tide_sim_stats_get(0, &stats), 0);
    EXPECT_EQ(stats.irq_mask, 0x1234567890ull);
    EXPECT_EQ(hal_irq_disable(0), 0);
}

TEST_F(HalOnModel, DmaBlocksAreMappedAndReturned)
{
    u64 va1 = 0, pa1 = 0, va2 = 0, pa2 = 0, aux = 7;
    ASSERT_EQ(hal_dma_alloc(1, &va1, &pa1, 10000, &aux), 0);
    ASSERT_EQ(hal_dma_alloc(1, &va2, &pa2, 64, nullptr), 0);
    EXPECT_EQ(aux, 0u);
    EXPECT_NE(pa1, pa2);
    memset(reinterpret_cast<void *>(va1), 0x5a, 10000);
    tide_sim_stats stats{};
    tide_sim_stats_get(0, &stats);
    EXPECT_EQ(stats.dma_blocks, 2u);

    // An address that is not on the list, or another chip's block: no
    // command goes to the driver.
    const uint64_t frees = stats.dma_frees;
    EXPECT_EQ(hal_dma_free(1, 0, va1 + 8), 0);
    EXPECT_EQ(hal_dma_free(0, 0, va1), 0);
    tide_sim_stats_get(0, &stats);
    EXPECT_EQ(stats.dma_frees, frees);
    EXPECT_EQ(stats.dma_blocks, 2u);

    EXPECT_EQ(hal_dma_free(1, 0, va1), 0);
    tide_sim_stats_get(0, &stats);
    EXPECT_EQ(stats.dma_frees, frees + 1);
    EXPECT_EQ(stats.dma_blocks, 1u);
    EXPECT_EQ(hal_dma_free_all(1), 0);
    tide_sim_stats_get(0, &stats);
    EXPECT_EQ(stats.dma_blocks, 0u);
    EXPECT_EQ(hal_ui_dma_alloc(1, nullptr, &pa1, 64, nullptr), -4);
}

void *_no_memory(size_t)
{
    return nullptr;
}

TEST_F(HalOnModel, DmaBlockThatCannotBeRecordedGoesBack)
{
    xsal_malloc_base_func_set(_no_memory);
    u64 va = 0, pa = 0;
    const int rc = hal_dma_alloc(0, &va, &pa, 4096, nullptr);
    xsal_malloc_base_func_set(nullptr);
    EXPECT_EQ(rc, -2);
    tide_sim_stats stats{};
    tide_sim_stats_get(0, &stats);
    EXPECT_EQ(stats.dma_blocks, 0u);
    EXPECT_EQ(stats.dma_frees, 1u);
}

// Puts a seam of a test's own under the back end, which then reopens its
// devices, and the model's back when it goes.
hal_ui_os_ops g_model_seam;

class SeamSwap {
public:
    explicit SeamSwap(hal_ui_os_ops ops)
    {
        g_model_seam = *hal_ui_os_ops_get();
        hal_ui_close();
        hal_ui_os_ops_set(&ops);
        hal_ui_open();
    }
    ~SeamSwap()
    {
        hal_ui_close();
        hal_ui_os_ops_set(&g_model_seam);
        hal_ui_open();
    }
};

// A driver that reports chip 1's BAR 0 off its page and so long that its
// end lies beyond 2^64; the other commands are the model's.
int _bar0_beyond_2_64(int fd, unsigned long request, void *arg)
{
    const int rc = g_model_seam.ioctl(fd, request, arg);
    auto *io = static_cast<hal_devio *>(arg);
    if (request == HAL_CMD_IOMEM_GET && rc == 0 && io->chip_id == 1) {
        u64 paddr, size = ~0ull - 0x7FF;
        memcpy(&paddr, io->data, sizeof(paddr));
        paddr += 0x900;
        memcpy(io->data, &paddr, sizeof(paddr));
        memcpy(io->data + 8, &size, sizeof(size));
    }
    return rc;
}

TEST_F(HalOnModel, ApertureEndingBeyond2To64IsNotMapped)
{
    hal_ui_os_ops broken = *hal_ui_os_ops_get();
    broken.ioctl = _bar0_beyond_2_64;
    SeamSwap swap(broken);
    Capture::clear();
    // Its whole pages would wrap to one page: nothing is mapped, and no
    // register access can reach past that page.
    EXPECT_EQ(hal_ui_chip_mem_init(1), SHR_E_FAIL);
    EXPECT_TRUE(Capture::has("mmap target addr"));
    u64 info[3] = {};
    ASSERT_EQ(hal_ui_get_chip_mem_info(1, 0, info), 0);
    EXPECT_EQ(info[0], 0u);
    u32 v = 0;
    EXPECT_EQ(hal_ui_reg_read_32(1, 0, 0x40000000, &v), SHR_E_INIT);
}

std::atomic<int> g_mapped{0};

void *_counted_mmap(void *addr, size_t length, int prot, int flags, int fd, off_t offset)
{
    void *p = g_model_seam.mmap(addr, length, prot, flags, fd, offset);
    g_mapped += p != MAP_FAILED;
    return p;
}

int _counted_munmap(void *addr, size_t length)
{
    g_mapped--;
    return g_model_seam.munmap(addr, length);
}

TEST_F(HalOnModel, MappingAChipAgainGivesItsEarlierMappingsBack)
{
    hal_ui_os_ops counted = *hal_ui_os_ops_get();
    counted.mmap = _counted_mmap;
    counted.munmap = _counted_munmap;
    SeamSwap swap(counted);
    g_mapped = 0;
    ASSERT_EQ(hal_ui_chip_mem_init(1), 0);
    EXPECT_EQ(g_mapped, 3); // BAR 0, the LSW aperture, BAR 3
    ASSERT_EQ(hal_ui_chip_mem_init(1), 0);
    EXPECT_EQ(g_mapped, 3);
    u32 v = 0;
    EXPECT_EQ(hal_ui_reg_read_32(1, 3, 0x47014, &v), 0);
    ASSERT_EQ(hal_ui_chip_mem_deinit(1), 0);
    EXPECT_EQ(g_mapped, 0);
}

TEST(HalSeam, EmptySlotsKeepTheCLibrary)
{
    hal_ui_os_ops ops{};
    ops.ioctl = [](int, unsigned long, void *) { return 7; };
    hal_ui_os_ops_set(&ops);
    const hal_ui_os_ops *now = hal_ui_os_ops_get();
    EXPECT_EQ(now->ioctl(0, 0, nullptr), 7);
    EXPECT_NE(now->open, nullptr);
    EXPECT_NE(now->mmap, nullptr);
    EXPECT_EQ(now->open("/nonexistent/tide", 0), -1);
    hal_ui_os_ops_set(nullptr);
    EXPECT_NE(hal_ui_os_ops_get()->ioctl, ops.ioctl);
}

TEST_F(HalOnModel, BusNumbers)
{
    u16 bus[16] = {};
    u32 ids[16] = {};
    u32 n = 0;
    ASSERT_EQ(init_api_chip_id_busnum_mapping_get(bus, ids, &n), 0);
    ASSERT_EQ(n, 2u);
    EXPECT_EQ(bus[1], 2);
    EXPECT_EQ(ids[1], 1u);
    u32 chip = 9;
    EXPECT_EQ(init_api_chip_id_get_by_bus_number(2, &chip), 0);
    EXPECT_EQ(chip, 1u);
    EXPECT_NE(init_api_chip_id_get_by_bus_number(77, &chip), 0);
    EXPECT_TRUE(Capture::has("dpl get chipid by bus number failed!\n"));
    EXPECT_EQ(init_api_chip_id_get_by_bus_number(2, nullptr), -4);
    EXPECT_EQ(init_api_chip_id_busnum_mapping_get(bus, nullptr, &n), -4);
    EXPECT_EQ(hal_get_chipid_busnum_mapping(nullptr, ids, &n), -4);
    EXPECT_TRUE(Capture::has("One of (bus_num_arr | bus_num_arr | valid_num) is NULL!\n"));
}

// ---- byte order and subsections, through the library's own back end ---------

class HalNoHooks : public SimChips {
protected:
    HalNoHooks() : SimChips(1, 0, false) {}
};

TEST_F(HalNoHooks, ByteOrderOtherThanTwoSwapsBothWays)
{
    tide_sim_identity id{};
    ASSERT_EQ(tide_sim_identity_get(0, &id), 0);
    id.byte_order = 1;
    ASSERT_EQ(tide_sim_identity_set(0, &id), 0);
    // The register file was laid out in the native order, and without the
    // hooks no engine answers: the modules' hardware steps would read the
    // chip's status words swapped.  The swap itself is what is tested here.
    ASSERT_EQ(shr_property_set(0, "chip_hw_init", "0"), 0);
    up_chip(0);
    _set_raw_word(0, 4, 0x200, 0x11223344);
    u32 v = 0;
    ASSERT_EQ(hal_reg_read_32(0, 4, 0x200, &v), 0);
    EXPECT_EQ(v, 0x44332211u);
    ASSERT_EQ(hal_reg_write_32(0, 4, 0x204, 0x11223344), 0);
    EXPECT_EQ(_raw_word(0, 4, 0x204), 0x44332211u);
    u16 h = 0;
    ASSERT_EQ(hal_reg_read_16(0, 4, 0x200, &h), 0);
    EXPECT_EQ(h, 0x4433);
    u64 d = 0;
    ASSERT_EQ(hal_reg_write_64(0, 3, 0x100, 0x0102030405060708ull), 0);
    ASSERT_EQ(hal_reg_read_64(0, 3, 0x100, &d), 0);
    EXPECT_EQ(d, 0x0102030405060708ull);
    EXPECT_EQ(_raw_word(0, 3, 0x100), 0x04030201u);
    // The model's own view agrees with the SDK's.
    EXPECT_EQ(tide_sim_reg_peek(0, 4, 0x204, &v), 0);
    EXPECT_EQ(v, 0x11223344u);
}

TEST_F(HalNoHooks, NativeByteOrderReadsTheApertureAsItStands)
{
    up_chip(0);
    _set_raw_word(0, 4, 0x200, 0x11223344);
    u32 v = 0;
    ASSERT_EQ(hal_reg_read_32(0, 4, 0x200, &v), 0);
    EXPECT_EQ(v, 0x11223344u);
    // Nothing went through the hooks: the model's write log is empty of it.
    ASSERT_EQ(hal_reg_write_32(0, 4, 0x300, 9), 0);
    for (const auto &w : tide::test::sim_writes(0)) {
        EXPECT_NE(w.addr, 0x300u);
    }
    EXPECT_EQ(tide_sim_reg_peek(0, 4, 0x300, &v), 0);
    EXPECT_EQ(v, 9u);
}

TEST_F(HalNoHooks, KelpreefChipsUseTheSubsectionsOfTheLswAperture)
{
    tide_sim_identity id{};
    ASSERT_EQ(tide_sim_identity_get(0, &id), 0);
    id.device_id = 0x9228;
    id.revision = 0;
    ASSERT_EQ(tide_sim_identity_set(0, &id), 0);
    // The reset's done bit is written by the model's engine, which only the
    // hooks reach; give the chip its done bit by hand.
    ASSERT_EQ(tide_sim_reg_poke(0, 3, 0x47014, 1u << 2), 0);
    ASSERT_EQ(init_api_software_process(0, &cfg_), 0);
    EXPECT_STREQ(shr_chip_name_get(0), "kelpreef");
    EXPECT_NE(g_pci_reg_op_lock[0], nullptr);

    u64 vaddr = 0, base = 0;
    ASSERT_EQ(hal_subsection_bar_vaddr_get(0, 0x1800000, &vaddr, &base), 0);
    EXPECT_EQ(base, 0x1800000u);
    EXPECT_EQ(vaddr, g_hal_ui_subsection_resource[0][5].vaddr);
    EXPECT_EQ(hal_subsection_bar_vaddr_get(0, 0x600, &vaddr, &base), -4);

    Capture::clear();
    u32 v = 0;
    EXPECT_EQ(hal_reg_read_32(0, 4, 0x600, &v), -17);
    EXPECT_TRUE(Capture::has("vaddr is not inited\n"));
    ASSERT_EQ(hal_reg_write_32(0, 4, 0x1800010, 0xfeed), 0);
    ASSERT_EQ(hal_reg_read_32(0, 4, 0x1800010, &v), 0);
    EXPECT_EQ(v, 0xfeedu);
    // The last word of piece 5 is readable, the next is in no piece, and an
    // access must be aligned to its width.
    EXPECT_EQ(hal_reg_read_32(0, 4, 0x18004ec, &v), 0);
    EXPECT_EQ(hal_reg_read_32(0, 4, 0x18004f0, &v), -17);
    EXPECT_EQ(hal_reg_read_32(0, 4, 0x1800012, &v), -4);
    EXPECT_EQ(deinit_api_software_process(0), 0);
    EXPECT_EQ(g_pci_reg_op_lock[0], nullptr);
}

TEST_F(HalNoHooks, SpiChipsGetATableWithoutEffect)
{
    tide_sim_identity id{};
    ASSERT_EQ(tide_sim_identity_get(0, &id), 0);
    id.bus_type = 2;
    ASSERT_EQ(tide_sim_identity_set(0, &id), 0);
    ASSERT_EQ(hal_ops_attach(0), 0);
    EXPECT_EQ(g_hw_ops[0], &g_hal_ui_spi_drv);
    EXPECT_EQ(g_hw_pkt_ops[0], nullptr);
    u32 v = 5;
    EXPECT_EQ(hal_reg_write_32(0, 4, 0x10, 1), 0);
    EXPECT_EQ(hal_reg_read_32(0, 4, 0x10, &v), 0);
    EXPECT_EQ(v, 0u);
    EXPECT_EQ(hal_dma_alloc(0, nullptr, nullptr, 8, nullptr), -7);

    id.bus_type = 7;
    ASSERT_EQ(tide_sim_identity_set(0, &id), 0);
    Capture::clear();
    EXPECT_NE(hal_ops_attach(0), 0);
    EXPECT_EQ(g_hw_ops[0], nullptr);
    EXPECT_TRUE(Capture::has("chip drv type error\n"));
    hal_ops_dettach(0);
}

// ---- without any device ----------------------------------------------------------

TEST(HalNoDevice, InitSucceedsWithNoChips)
{
    Capture::clear();
    sdk_init_cfg cfg = tide::test::capture_cfg(false);
    ASSERT_EQ(hal_ui_os_ops_get()->open == nullptr, false);
    EXPECT_EQ(init_api_base_software_process(&cfg), 0);
    EXPECT_EQ(shr_chip_cur_num_get(), 0u);
    EXPECT_TRUE(Capture::has("unable to open /dev/hal_drv\n"));
    u32 count = 9;
    EXPECT_EQ(hal_chip_num_get(&count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(hal_chip_num_get(nullptr), -20);
    EXPECT_EQ(init_api_software_process(0, &cfg), -7);
    EXPECT_TRUE(Capture::has("Process dpl prepare inited failed!\n"));
    EXPECT_EQ(shr_chip_valid_get(0), 0u);
    u32 chip = 0;
    EXPECT_NE(init_api_chip_id_get_by_bus_number(1, &chip), 0);
    EXPECT_EQ(deinit_api_base_software_process(), 0);
}

} // namespace
