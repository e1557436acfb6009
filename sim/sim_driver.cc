// The driver side of the model: the command records of /dev/hal_drv and
// /dev/hal_cputr, aperture and DMA mappings.
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "sim/sim_int.h"
#include "sim/sim_serdes.h"
#include "sim/sim_tap.h"

namespace tide::sim {

namespace {

constexpr int kResultOk = 0;
constexpr int kResultFail = -1;
constexpr int kResultNoChip = -7;
constexpr int kResultDisabled = -12;

uint64_t _u64(const hal_devio *io, uint32_t off)
{
    uint64_t v;
    memcpy(&v, io->data + off, sizeof(v));
    return v;
}

void _set_u64(hal_devio *io, uint32_t off, uint64_t v)
{
    memcpy(io->data + off, &v, sizeof(v));
}

void _set_u32(hal_devio *io, uint32_t off, uint32_t v)
{
    memcpy(io->data + off, &v, sizeof(v));
}

uint64_t _page()
{
    const long page = sysconf(_SC_PAGESIZE);
    return page > 0 ? static_cast<uint64_t>(page) : 4096u;
}

} // namespace

Model::Model(uint32_t chip_count) : serdes_fabric(std::make_unique<SerdesFabric>())
{
    for (uint32_t i = 0; i < chip_count; i++) {
        // PCI bus numbers of the chips: 1, 2, 3, 4.
        chips_.push_back(std::make_unique<Chip>(i, i + 1, serdes_fabric.get()));
    }
    reported = chip_count;
}

Model::~Model()
{
    // Every chip's TAP thread stops before any chip goes: a frame one of
    // them delivers may cross a cable into another chip.
    for (auto &c : chips_) {
        c->tap->close_all();
    }
    chips_.clear();
    for (auto &[paddr, block] : dma_) {
        munmap(block.mem, block.size);
    }
    // The chips go before the board's fabric, which they detach from.
    chips_.clear();
}

bool Model::ok() const
{
    for (const auto &c : chips_) {
        if (!c->ok()) {
            return false;
        }
    }
    return true;
}

uint64_t Model::dma_count() const
{
    std::lock_guard<std::mutex> lock(dma_mutex_);
    return dma_.size();
}

uint64_t Model::dma_frees_get() const
{
    std::lock_guard<std::mutex> lock(dma_mutex_);
    return dma_frees;
}

int Model::dma_alloc(hal_devio *io)
{
    if (reported_chip(io->chip_id) == nullptr || io->arg0 == 0) {
        return kResultFail;
    }
    const uint64_t page = _page();
    const uint64_t size = (static_cast<uint64_t>(io->arg0) + page - 1) & ~(page - 1);
    void *p = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) {
        return -2;
    }
    std::lock_guard<std::mutex> lock(dma_mutex_);
    const uint64_t paddr = dma_next_;
    // A page of gap between blocks keeps a mapping from running into the
    // next block.
    dma_next_ += size + page;
    dma_[paddr] = DmaBlock{static_cast<uint8_t *>(p), size, io->chip_id};
    _set_u64(io, HAL_DEVIO_U64_OFF40, paddr);
    _set_u64(io, HAL_DEVIO_U64_OFF48, 0);
    return kResultOk;
}

int Model::dma_free(hal_devio *io)
{
    const uint64_t paddr = _u64(io, HAL_DEVIO_U64_OFF40);
    std::lock_guard<std::mutex> lock(dma_mutex_);
    dma_frees++;
    const auto it = dma_.find(paddr);
    if (it == dma_.end() || io->arg0 == 0 || io->arg0 > it->second.size) {
        return kResultFail;
    }
    munmap(it->second.mem, it->second.size);
    dma_.erase(it);
    return kResultOk;
}

void *Model::map(uint64_t paddr, uint64_t length)
{
    // As mmap: a mapping of no bytes is refused.  The bounds are compared
    // without adding to the offset, which a length near 2^64 would wrap.
    if (length == 0) {
        return nullptr;
    }
    const auto fits = [&](uint64_t base, uint64_t size) {
        return paddr >= base && paddr - base < size && length <= size - (paddr - base);
    };
    for (const auto &c : chips_) {
        for (uint32_t ap = 0; ap < kApCount; ap++) {
            const Region &r = c->region(ap);
            if (fits(r.paddr, r.size)) {
                return r.mem + (paddr - r.paddr);
            }
        }
    }
    std::lock_guard<std::mutex> lock(dma_mutex_);
    auto it = dma_.upper_bound(paddr);
    if (it != dma_.begin()) {
        --it;
        if (fits(it->first, it->second.size)) {
            return it->second.mem + (paddr - it->first);
        }
    }
    return nullptr;
}

bool Model::owns(const void *addr) const
{
    const auto *p = static_cast<const uint8_t *>(addr);
    for (const auto &c : chips_) {
        for (uint32_t ap = 0; ap < kApCount; ap++) {
            const Region &r = c->region(ap);
            if (p >= r.mem && p < r.mem + r.size) {
                return true;
            }
        }
    }
    std::lock_guard<std::mutex> lock(dma_mutex_);
    for (const auto &[paddr, b] : dma_) {
        if (p >= b.mem && p < b.mem + b.size) {
            return true;
        }
    }
    return false;
}

int Model::ioctl_drv(unsigned long request, hal_devio *io)
{
    ioctl_calls++;
    switch (request) {
    case HAL_CMD_CHIP_NUM_GET:
        io->arg0 = reported;
        return kResultOk;
    case HAL_CMD_CHIP_INFO_GET: {
        Chip *c = reported_chip(io->chip_id);
        if (c == nullptr) {
            return kResultNoChip;
        }
        io->arg0 = c->identity.vendor_id;
        io->arg1 = c->identity.device_id;
        _set_u32(io, 0, c->identity.byte_order);
        _set_u32(io, 4, c->identity.revision);
        return kResultOk;
    }
    case HAL_CMD_IOMEM_GET: {
        Chip *c = reported_chip(io->chip_id);
        if (c == nullptr) {
            return kResultNoChip;
        }
        // Ranges in the order BAR 0, BAR 4, BAR 3.
        const uint32_t order[3] = {kApBar0, kApLsw, kApAxi};
        for (uint32_t i = 0; i < 3; i++) {
            const Region &r = c->region(order[i]);
            _set_u64(io, i * 24, r.paddr);
            _set_u64(io, i * 24 + 8, r.size);
            _set_u64(io, i * 24 + 16, 0);
        }
        return kResultOk;
    }
    case HAL_CMD_DRV_CHIP_TYPE_GET: {
        Chip *c = reported_chip(io->chip_id);
        if (c == nullptr) {
            return kResultNoChip;
        }
        io->arg0 = c->identity.bus_type;
        return kResultOk;
    }
    case HAL_CMD_PCI_CONF_READ:
    case HAL_CMD_PCI_CONF_WRITE: {
        Chip *c = reported_chip(io->chip_id);
        // One aligned word inside the configuration space; the bound is
        // not added to, so that an address near 2^32 cannot wrap into it.
        if (c == nullptr || io->arg0 % 4 != 0 || io->arg0 > kPciConfigSize - 4) {
            return kResultFail;
        }
        if (request == HAL_CMD_PCI_CONF_READ) {
            uint32_t v;
            memcpy(&v, c->pci_config.data() + io->arg0, 4);
            _set_u64(io, HAL_DEVIO_U64_OFF40, v);
        } else {
            const uint32_t v = static_cast<uint32_t>(_u64(io, HAL_DEVIO_U64_OFF40));
            memcpy(c->pci_config.data() + io->arg0, &v, 4);
        }
        return kResultOk;
    }
    case HAL_CMD_DMA_ALLOC:
        return dma_alloc(io);
    case HAL_CMD_DMA_FREE:
        return dma_free(io);
    case HAL_CMD_IRQ_WAIT: {
        Chip *c = reported_chip(io->chip_id);
        return c == nullptr ? kResultNoChip : c->irq_wait();
    }
    case HAL_CMD_IRQ_ENABLE: {
        Chip *c = reported_chip(io->chip_id);
        if (c == nullptr) {
            return kResultNoChip;
        }
        c->irq_enable(static_cast<uint64_t>(io->arg1) << 32 | io->arg0);
        return kResultOk;
    }
    case HAL_CMD_IRQ_EXIT: {
        Chip *c = reported_chip(io->chip_id);
        if (c == nullptr) {
            return kResultNoChip;
        }
        c->irq_exit();
        return kResultOk;
    }
    case HAL_CMD_VP_CONF_INIT: {
        Chip *c = reported_chip(io->chip_id);
        if (c == nullptr) {
            return kResultNoChip;
        }
        for (uint32_t i = 0; i < 3; i++) {
            c->vp_conf[i] = _u64(io, i * 8);
        }
        return kResultOk;
    }
    case HAL_CMD_CHIP_ID_BY_BUS_GET:
        for (uint32_t i = 0; i < reported; i++) {
            if (chips_[i]->bus_number() == (io->chip_id & 0xFFFF)) {
                io->arg0 = i;
                return kResultOk;
            }
        }
        return kResultNoChip;
    case HAL_CMD_BUS_MAPPING_GET:
        io->arg0 = reported;
        for (uint32_t i = 0; i < reported; i++) {
            const uint16_t bus = static_cast<uint16_t>(chips_[i]->bus_number());
            memcpy(io->data + HAL_DEVIO_BUS_NUMS + i * 2, &bus, 2);
            _set_u32(io, HAL_DEVIO_CHIP_IDS + i * 4, i);
        }
        return kResultOk;
    default:
        return kResultFail;
    }
}

int Model::ioctl_pkt(unsigned long request, hal_devio *io)
{
    if (reported_chip(io->chip_id) == nullptr) {
        return kResultNoChip;
    }
    switch (request) {
    case HAL_PKT_CMD_IRQ_OPEN:
    case HAL_PKT_CMD_IRQ_DISABLE:
    case HAL_PKT_CMD_SEND_MSG:
        return kResultOk;
    case HAL_PKT_CMD_WAIT_INTR:
        // The model has no CPU packet path yet: a wait ends at once as
        // disabled instead of blocking a thread for ever.
        return kResultDisabled;
    default:
        return kResultFail;
    }
}

} // namespace tide::sim
