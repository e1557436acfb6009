// Fuzzer of the HAL's command records, both ways across the OS seam:
//
// - the chip model as the driver: any command with any record on either
//   device node, and any mapping, must be answered without a crash, with
//   a result that the return of ioctl agrees with, and with an error for a
//   record it cannot honour (an unknown command, a chip it does not
//   report, a configuration address outside the space, ...);
// - the HAL back end as the driver's client: every hal_ui_* call runs over
//   a seam that forwards to the model and then may overwrite what the
//   model answered (result, words and payload) with input bytes, as a
//   broken driver would; the back end must not crash, must not touch
//   memory beyond what was mapped for it, and must fail where the driver
//   failed.
//
// Input: a program of operations, each an opcode byte and its operands
// read from the front.  During a HAL call each command the back end passes
// takes one byte from the input first: bits 0-3 overwrite the result,
// arg0, arg1 and the payload of the model's answer with the bytes that
// follow.
#include <fcntl.h>
#include <sys/mman.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <tide/hal_os.h>
#include <tide/shr.h>
#include <tide/sim.h>

#include "fuzz_support.h"
#include "hal/hal_op/hal.h"
#include "hal/linux/linux_haui_um/hal_ui.h"

namespace {

using tide::fuzz::fail;
using tide::fuzz::Input;

constexpr uint32_t kChips = 2; // chips of the model; ids 2 and 3 are not there
constexpr uint32_t kOpsMax = 64;
constexpr uint32_t kPciConfigSize = 4096;

hal_ui_os_ops g_model_os; // the model's seam
int g_drv_fd = -1;
int g_pkt_fd = -1;
Input *g_in;              // the input of the running operation
bool g_tamper;            // whether answers to the back end may be overwritten
std::vector<int32_t> g_results; // results the back end saw, in order
std::vector<uint64_t> g_model_dma; // blocks the model handed out

// What the back end has mapped through the seam.
struct Mapping {
    uint64_t addr;
    uint64_t length;
};
std::vector<Mapping> g_maps;

const uint32_t kDrvCmds[] = {
    HAL_CMD_CHIP_NUM_GET,  HAL_CMD_PCI_CONF_READ, HAL_CMD_PCI_CONF_WRITE,    HAL_CMD_DMA_ALLOC,
    HAL_CMD_DMA_FREE,      HAL_CMD_IRQ_WAIT,      HAL_CMD_IRQ_ENABLE,        HAL_CMD_IRQ_EXIT,
    HAL_CMD_CHIP_INFO_GET, HAL_CMD_IOMEM_GET,     HAL_CMD_VP_CONF_INIT,      HAL_CMD_DRV_CHIP_TYPE_GET,
    HAL_CMD_CHIP_ID_BY_BUS_GET, HAL_CMD_BUS_MAPPING_GET,
};
const uint32_t kPktCmds[] = {HAL_PKT_CMD_WAIT_INTR, HAL_PKT_CMD_IRQ_OPEN, HAL_PKT_CMD_IRQ_DISABLE,
                             HAL_PKT_CMD_SEND_MSG};

template <typename T, size_t N>
bool _one_of(T v, const T (&list)[N])
{
    for (const T &x : list) {
        if (x == v) {
            return true;
        }
    }
    return false;
}

// One command to the model.  A wait for an interrupt finds one raised on
// its chip, so that it returns at once; a block the model hands out is
// remembered, so that it goes back after the input.
int _model_ioctl(int fd, unsigned long request, hal_devio *io)
{
    if (fd == g_drv_fd && request == HAL_CMD_IRQ_WAIT && io != nullptr && io->chip_id < kChips) {
        tide_sim_irq_raise(io->chip_id);
    }
    const int ret = g_model_os.ioctl(fd, request, io);
    if (fd == g_drv_fd && request == HAL_CMD_DMA_ALLOC && io != nullptr && io->result == 0) {
        uint64_t paddr;
        std::memcpy(&paddr, io->data + HAL_DEVIO_U64_OFF40, sizeof(paddr));
        g_model_dma.push_back(paddr);
    }
    return ret;
}

// The seam under the back end: the model, then what the input overwrites.
int _seam_ioctl(int fd, unsigned long request, void *arg)
{
    auto *io = static_cast<hal_devio *>(arg);
    int ret = _model_ioctl(fd, request, io);
    if (g_tamper && io != nullptr) {
        const auto t = g_in->take<uint8_t>();
        if (t & 1) {
            io->result = g_in->take<int32_t>();
        }
        if (t & 2) {
            io->arg0 = g_in->take<uint32_t>();
        }
        if (t & 4) {
            io->arg1 = g_in->take<uint32_t>();
        }
        if (t & 8) {
            g_in->bytes(io->data, sizeof(io->data));
        }
        ret = io->result == 0 ? 0 : -1;
    }
    g_results.push_back(io != nullptr ? io->result : -1);
    return ret;
}

void *_seam_mmap(void *addr, size_t length, int prot, int flags, int fd, off_t offset)
{
    void *p = g_model_os.mmap(addr, length, prot, flags, fd, offset);
    if (p != MAP_FAILED) {
        g_maps.push_back(Mapping{reinterpret_cast<uint64_t>(p), length});
    }
    return p;
}

int _seam_munmap(void *addr, size_t length)
{
    for (auto it = g_maps.begin(); it != g_maps.end(); ++it) {
        if (it->addr == reinterpret_cast<uint64_t>(addr) && it->length == length) {
            g_maps.erase(it);
            return g_model_os.munmap(addr, length);
        }
    }
    fail("the back end unmapped what it had not mapped");
}

// Memory the back end uses lies wholly inside one of its mappings: the
// apertures and DMA blocks it believes in end where the driver's memory
// ends.
void _expect_mapped(uint64_t vaddr, uint64_t size)
{
    if (vaddr == 0) {
        return;
    }
    for (const Mapping &m : g_maps) {
        if (vaddr >= m.addr && vaddr - m.addr <= m.length && size <= m.length - (vaddr - m.addr)) {
            return;
        }
    }
    fail("the back end uses memory beyond what it mapped");
}

void _expect_apertures_mapped(uint32_t chip)
{
    if (chip >= SHR_MAX_CHIPS) {
        return;
    }
    const hal_ui_chip_info &ci = g_hal_ui_chip_info[chip];
    _expect_mapped(ci.bar0_vaddr, ci.bar0_size);
    _expect_mapped(ci.axi_vaddr, ci.axi_size);
    _expect_mapped(ci.lsw_vaddr, ci.lsw_size);
    for (const hal_ui_mapping &m : g_hal_ui_subsection_resource[chip]) {
        _expect_mapped(m.vaddr, m.size);
    }
}

// ---- the model as the driver ------------------------------------------------

// Whether a command names a chip in its record that must be there.
bool _per_chip(uint32_t cmd)
{
    return cmd != HAL_CMD_CHIP_NUM_GET && cmd != HAL_CMD_CHIP_ID_BY_BUS_GET && cmd != HAL_CMD_BUS_MAPPING_GET &&
           cmd != HAL_CMD_DMA_FREE;
}

void _raw_command(Input &in, bool pkt)
{
    const auto pick = in.take<uint8_t>();
    uint32_t cmd;
    if (pkt) {
        cmd = pick < 4 * std::size(kPktCmds) ? kPktCmds[pick % std::size(kPktCmds)] : in.take<uint32_t>();
    } else {
        cmd = pick < 16 * std::size(kDrvCmds) ? kDrvCmds[pick % std::size(kDrvCmds)] : in.take<uint32_t>();
    }
    // The record alone on the heap: a write beyond it is seen.
    auto *io = static_cast<hal_devio *>(std::malloc(sizeof(hal_devio)));
    in.bytes(io, sizeof(hal_devio));
    const int ret = _model_ioctl(pkt ? g_pkt_fd : g_drv_fd, cmd, io);
    const bool known = pkt ? _one_of(cmd, kPktCmds) : _one_of(cmd, kDrvCmds);
    if (ret != (io->result == 0 ? 0 : -1)) {
        fail("the return of ioctl does not agree with the record's result");
    }
    if (io->result == 0) {
        if (!known) {
            fail("an unknown command succeeded");
        }
        if ((pkt || _per_chip(cmd)) && io->chip_id >= kChips) {
            fail("a command for a chip the model does not have succeeded");
        }
        if ((cmd == HAL_CMD_PCI_CONF_READ || cmd == HAL_CMD_PCI_CONF_WRITE) &&
            (io->arg0 % 4 != 0 || io->arg0 > kPciConfigSize - 4)) {
            fail("a configuration access outside the configuration space succeeded");
        }
        if (!pkt && cmd == HAL_CMD_DMA_ALLOC && io->arg0 == 0) {
            fail("a DMA block of no bytes was handed out");
        }
        if (!pkt && cmd == HAL_CMD_CHIP_NUM_GET && io->arg0 != kChips) {
            fail("the chip count is not that of the model");
        }
        if (!pkt && cmd == HAL_CMD_BUS_MAPPING_GET && io->arg0 > HAL_DEVIO_MAP_MAX) {
            fail("the bus mapping holds more pairs than its record");
        }
    }
    std::free(io);
}

// A map of the model's memory covers every byte it was asked for.
void _raw_map(Input &in)
{
    const auto offset = in.take<int64_t>();
    const auto length = in.take<uint64_t>();
    void *p = g_model_os.mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, g_drv_fd, offset);
    if (p == MAP_FAILED) {
        return;
    }
    if (length == 0) {
        fail("a mapping of no bytes succeeded");
    }
    const auto *bytes = static_cast<const volatile uint8_t *>(p);
    (void)bytes[0];
    (void)bytes[length - 1];
    g_model_os.munmap(p, length);
}

void _raw_bad_call(Input &in)
{
    hal_devio io{};
    const auto pick = in.take<uint8_t>();
    const int fd = pick & 1 ? g_drv_fd : -1;
    if (g_model_os.ioctl(fd, kDrvCmds[pick % std::size(kDrvCmds)], fd == -1 ? &io : nullptr) != -1) {
        fail("a command without a record or on a foreign descriptor succeeded");
    }
}

// ---- the back end over a broken driver ----------------------------------------

// The back end must fail where the first command it passed failed.
void _expect_failed_with_driver(uint32_t which, int rc)
{
    if (!g_results.empty() && g_results.front() != 0 && rc == 0) {
        std::fprintf(stderr, "HAL call %u, driver result %d\n", which, g_results.front());
        fail("the back end succeeded where the driver failed");
    }
}

std::vector<uint64_t> g_hal_dma; // blocks the back end handed to us

void _hal_call(Input &in, uint32_t which)
{
    const auto chip = in.take<uint8_t>() % 5u; // 4: beyond the chip ids
    g_results.clear();
    g_tamper = true;
    int rc = 0;
    switch (which) {
    case 0: {
        // A failed command counts no chips, and the call itself succeeds.
        uint32_t n = 0xFFFF;
        if (hal_ui_chip_num_get(&n) != 0 || (!g_results.empty() && g_results.front() != 0 && n != 0)) {
            fail("the chip count survived a failed command");
        }
        return;
    }
    case 1: {
        uint32_t v = 0, d = 0, o = 0, r = 0;
        rc = hal_ui_get_chip_info(chip, &v, &d, &o, &r);
        break;
    }
    case 2: {
        uint64_t ranges[9];
        rc = hal_ui_get_iomem(chip, ranges);
        break;
    }
    case 3: {
        uint32_t bus_type = 0;
        rc = hal_ui_get_drv_chip_type(chip, &bus_type);
        break;
    }
    case 4: {
        uint32_t v = 0;
        rc = hal_ui_pci_config_read(chip, in.take<uint32_t>(), &v);
        break;
    }
    case 5: {
        const auto addr = in.take<uint32_t>();
        rc = hal_ui_pci_config_write(chip, addr, in.take<uint32_t>());
        break;
    }
    case 6: {
        uint64_t va = 0, pa = 0, aux = 0;
        const uint32_t size = in.take<uint16_t>() + 1u;
        rc = hal_ui_dma_alloc(chip, &va, &pa, size, &aux);
        if (rc == 0) {
            _expect_mapped(va, size);
            g_hal_dma.push_back(va);
        }
        break;
    }
    case 7: {
        const auto pick = in.take<uint8_t>();
        const uint64_t va = pick < g_hal_dma.size() ? g_hal_dma[pick] : in.take<uint64_t>();
        (void)hal_ui_dma_free(chip, 0, va);
        return;
    }
    case 8:
        (void)hal_ui_dma_free_all(chip);
        return;
    case 9:
        rc = hal_ui_irq_enable(chip, in.take<uint64_t>());
        break;
    case 10:
        rc = hal_ui_irq_exit(chip);
        break;
    case 11:
        rc = hal_ui_irq_wait(chip);
        break;
    case 12: {
        uint64_t words[3];
        in.bytes(words, sizeof(words));
        rc = hal_ui_vp_conf_init(chip, words);
        break;
    }
    case 13: {
        uint32_t id = 0;
        rc = hal_ui_get_chip_id_by_bus(in.take<uint16_t>(), &id);
        break;
    }
    case 14: {
        // Arrays of exactly the room the record has.
        auto *buses = static_cast<uint16_t *>(std::malloc(HAL_DEVIO_MAP_MAX * sizeof(uint16_t)));
        auto *ids = static_cast<uint32_t *>(std::malloc(HAL_DEVIO_MAP_MAX * sizeof(uint32_t)));
        uint32_t n = 0;
        rc = hal_ui_get_busnum_mapping(buses, ids, &n);
        if (rc == 0 && n > HAL_DEVIO_MAP_MAX) {
            fail("the bus mapping gave more pairs than the record holds");
        }
        std::free(buses);
        std::free(ids);
        break;
    }
    case 15: {
        uint32_t msg = in.take<uint32_t>();
        switch (in.take<uint8_t>() % 4) {
        case 0:
            rc = hal_ui_pkt_irq_open(chip);
            break;
        case 1:
            rc = hal_ui_pkt_irq_disable(chip);
            break;
        case 2:
            rc = hal_ui_pkt_wait_intr(chip);
            break;
        default:
            rc = hal_ui_pkt_send_msg(chip, &msg);
            break;
        }
        break;
    }
    case 16:
        // Maps the apertures where the (possibly broken) driver says they
        // are; the register operations then use them.
        (void)hal_ui_chip_mem_init(chip + (in.take<uint8_t>() & 4u));
        _expect_apertures_mapped(chip);
        return;
    case 17:
        (void)hal_ui_chip_mem_deinit(chip);
        return;
    }
    _expect_failed_with_driver(which, rc);
}

// Register accesses on whatever is mapped; no command passes.
void _register_access(Input &in)
{
    const auto how = in.take<uint8_t>();
    const uint32_t chip = (how >> 3) % 5u;
    const uint32_t bar = in.take<uint8_t>() % 6u;
    const auto addr = in.take<uint32_t>();
    const auto value = in.take<uint64_t>();
    uint32_t v32 = 0;
    uint64_t v64 = 0;
    switch (how % 6) {
    case 0:
        (void)hal_ui_reg_read_16(chip, bar, addr, &v32);
        break;
    case 1:
        (void)hal_ui_reg_write_16(chip, bar, addr, static_cast<uint32_t>(value));
        break;
    case 2:
        (void)hal_ui_reg_read_32(chip, bar, addr, &v32);
        break;
    case 3:
        (void)hal_ui_reg_write_32(chip, bar, addr, static_cast<uint32_t>(value));
        break;
    case 4:
        (void)hal_ui_reg_read_64(chip, bar, addr, &v64);
        break;
    default:
        (void)hal_ui_reg_write_64(chip, bar, addr, value);
        break;
    }
    uint64_t info[3];
    uint64_t vaddr = 0, base = 0;
    (void)hal_ui_get_chip_mem_info(chip, bar, info);
    (void)hal_ui_subsection_bar_vaddr_get(chip, addr, &vaddr, &base);
}

// A chip's type decides whether its switch core is one aperture or the
// pieces of a kelpreef.
void _chip_type(Input &in)
{
    const auto b = in.take<uint8_t>();
    shr_chip_type_assign(b % 4u, (b >> 2) % 4u, 0);
    _expect_apertures_mapped(b % 4u);
}

// Back to the state before the input: apertures unmapped, DMA blocks
// given back by the back end and, for those whose answer was overwritten,
// to the model directly.
void _reset()
{
    g_tamper = false;
    for (uint32_t chip = 0; chip < SHR_MAX_CHIPS; chip++) {
        hal_ui_chip_mem_deinit(chip);
        shr_chip_type_assign(chip, 0, 0);
    }
    while (g_is_mem_init && g_drv_mem.next != &g_drv_mem) {
        hal_ui_dma_free_all(g_drv_mem.next->chip_id);
    }
    for (uint64_t paddr : g_model_dma) {
        hal_devio io{};
        io.arg0 = 1;
        std::memcpy(io.data + HAL_DEVIO_U64_OFF40, &paddr, sizeof(paddr));
        g_model_os.ioctl(g_drv_fd, HAL_CMD_DMA_FREE, &io);
    }
    g_model_dma.clear();
    g_hal_dma.clear();
    if (!g_maps.empty()) {
        fail("a mapping of the back end outlived its chip and its DMA blocks");
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    tide::fuzz::quiet();
    if (tide_sim_install(kChips) != 0) {
        std::exit(1);
    }
    g_model_os = *hal_ui_os_ops_get();
    g_drv_fd = g_model_os.open(HAL_DEV_DRV, O_RDWR);
    g_pkt_fd = g_model_os.open(HAL_DEV_CPUTR, O_RDWR);
    hal_ui_os_ops seam = g_model_os;
    seam.ioctl = _seam_ioctl;
    seam.mmap = _seam_mmap;
    seam.munmap = _seam_munmap;
    hal_ui_os_ops_set(&seam);
    hal_ui_open();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Input in(data, size);
    g_in = &in;
    for (uint32_t n = 0; n < kOpsMax && !in.empty(); n++) {
        const auto op = in.take<uint8_t>();
        switch (op % 25) {
        case 0:
        case 1:
            _raw_command(in, false);
            break;
        case 2:
            _raw_command(in, true);
            break;
        case 3:
            _raw_map(in);
            break;
        case 4:
            _raw_bad_call(in);
            break;
        case 5:
            _register_access(in);
            break;
        case 6:
            _chip_type(in);
            break;
        default:
            _hal_call(in, op % 25 - 7u);
            break;
        }
        g_tamper = false;
    }
    _reset();
    return 0;
}
