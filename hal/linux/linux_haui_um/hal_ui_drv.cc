// The back end of the HAL on Linux: command records on /dev/hal_drv and
// /dev/hal_cputr, the mapped register apertures of each chip, register
// access with byte-order swapping, DMA blocks and the interrupt wait.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "hal/linux/linux_haui_um/hal_ui.h"

namespace {

constexpr u32 kByteOrderNative = 2;
constexpr u32 kRangeWords = 3; // physical address, size, reserved word

bool _is_subsection_chip(u32 chip_id)
{
    const u32 type = shr_chip_type_get(chip_id);
    return type == SHR_CHIP_TYPE_KELPREEF || type == SHR_CHIP_TYPE_KELPREEF2;
}

u64 _devio_u64(const hal_devio &io, u32 off)
{
    u64 v;
    memcpy(&v, io.data + off, sizeof(v));
    return v;
}

void _devio_set_u64(hal_devio &io, u32 off, u64 v)
{
    memcpy(io.data + off, &v, sizeof(v));
}

u32 _devio_u32(const hal_devio &io, u32 off)
{
    u32 v;
    memcpy(&v, io.data + off, sizeof(v));
    return v;
}

// Passes one command on /dev/hal_drv.  The result word is -1 before the
// call; only what the driver writes there counts, not the return value of
// ioctl.  A closed device leaves it at -1.
int _hal_ui_cmd(u32 cmd, hal_devio &io)
{
    io.result = -1;
    if (g_hal_ui_devfd_for_ioctl >= 0) {
        (void)g_hal_ui_os->ioctl(g_hal_ui_devfd_for_ioctl, cmd, &io);
    }
    return io.result;
}

int _hal_ui_pkt_cmd(u32 cmd, hal_devio &io)
{
    io.result = -1;
    if (g_hal_ui_devfd_for_pkt < 0) {
        return io.result;
    }
    const int ret = g_hal_ui_os->ioctl(g_hal_ui_devfd_for_pkt, cmd, &io);
    if (ret != 0) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "command=%x, ret=%d, g_hal_ui_devfd_for_pkt=%d, pdevio=%p\n", cmd, ret,
                    g_hal_ui_devfd_for_pkt, static_cast<void *>(&io));
    }
    return io.result;
}

u64 _page_size()
{
    const long page = sysconf(_SC_PAGESIZE);
    return page > 0 ? static_cast<u64>(page) : 4096u;
}

// Length and file offset of the mapping that covers [paddr, paddr+size).
// False for a range whose whole pages would end beyond 2^64: no mapping
// covers it, and the arithmetic would wrap to a short one.
bool _hal_ui_map_span(u64 paddr, u64 size, u64 *map_off, u64 *map_len, u64 *page_off)
{
    const u64 page = _page_size();
    *page_off = paddr & (page - 1);
    *map_off = paddr & ~(page - 1);
    *map_len = page;
    if (size > ~0ull - *page_off - (page - 1)) {
        return false;
    }
    if (*page_off + size > page) {
        *map_len = (*page_off + size + page - 1) & ~(page - 1);
    }
    return true;
}

int _hal_ui_devmem_unmap(u64 vaddr, u64 paddr, u64 size)
{
    if (vaddr == 0) {
        return 0;
    }
    u64 map_off, map_len, page_off;
    if (!_hal_ui_map_span(paddr, size, &map_off, &map_len, &page_off)) {
        return -1; // never mapped
    }
    return g_hal_ui_os->munmap(reinterpret_cast<void *>(vaddr - page_off), map_len);
}

// Size of the mapping that holds a BAR 4 address.
u64 _hal_ui_lsw_span(u32 chip_id, u32 addr)
{
    if (!_is_subsection_chip(chip_id)) {
        return g_hal_ui_chip_info[chip_id].lsw_size;
    }
    for (u32 i = 0; i < HAL_UI_SUBSECTION_COUNT; i++) {
        const hal_ui_subsection &piece = g_hal_ui_kelpreef_subsection_addr_space[i];
        if (addr >= piece.offset && addr - piece.offset < piece.size) {
            return piece.size;
        }
    }
    return 0;
}

// Finds the mapped base and the offset of an access of `width` bytes, or
// the failure.  An access that would reach beyond its mapping is refused
// with -4: the aperture ends there, and so does the memory behind it.
int _hal_ui_reg_base(u32 chip_id, u32 bar, u32 addr, u32 width, u8 **base, u32 *offset)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    u64 vaddr = 0;
    u64 span = 0;
    const hal_ui_chip_info &info = g_hal_ui_chip_info[chip_id];
    if (bar == HAL_BAR0 || bar == HAL_BAR_AXI) {
        vaddr = g_chip_iomem_vaddr[chip_id][bar];
        span = bar == HAL_BAR0 ? info.bar0_size : info.axi_size;
        *offset = addr;
    } else if (bar == HAL_BAR_LSW) {
        u64 sub_base = 0;
        if (hal_ui_subsection_bar_vaddr_get(chip_id, addr, &vaddr, &sub_base) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "vaddr is not inited\n");
            return SHR_E_INIT;
        }
        span = _hal_ui_lsw_span(chip_id, addr);
        *offset = addr - static_cast<u32>(sub_base);
    } else {
        return SHR_E_PARAM;
    }
    if (vaddr == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "vaddr is not inited\n");
        return SHR_E_INIT;
    }
    // One access of the full width, naturally aligned as the bus does it.
    if (addr % width != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "bar %u addr 0x%08x is not aligned to %u bytes\n", bar, addr, width);
        return SHR_E_PARAM;
    }
    if (static_cast<u64>(*offset) + width > span) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "bar %u addr 0x%08x is beyond the aperture (size 0x%lx)\n", bar, addr,
                    (unsigned long)span);
        return SHR_E_PARAM;
    }
    *base = reinterpret_cast<u8 *>(vaddr);
    return 0;
}

// The per-chip register lock exists on the subsection chips only; reads
// share it and writes hold it alone.
void _hal_ui_pci_regop_lock(u32 chip_id, bool write)
{
    if (_is_subsection_chip(chip_id) && g_pci_reg_op_lock[chip_id] != nullptr) {
        if (write) {
            xsal_rw_mutex_wrlock(g_pci_reg_op_lock[chip_id]);
        } else {
            xsal_rw_mutex_rdlock(g_pci_reg_op_lock[chip_id]);
        }
    }
}

void _hal_ui_pci_regop_unlock(u32 chip_id, bool write)
{
    if (_is_subsection_chip(chip_id) && g_pci_reg_op_lock[chip_id] != nullptr) {
        if (write) {
            xsal_rw_mutex_wrunlock(g_pci_reg_op_lock[chip_id]);
        } else {
            xsal_rw_mutex_rdunlock(g_pci_reg_op_lock[chip_id]);
        }
    }
}

bool _native_order(u32 chip_id)
{
    return g_hal_ui_chip_info[chip_id].byte_order == kByteOrderNative;
}

// One access of the full width at base plus offset: a single load or store
// of a volatile word.
template <typename T>
T _hal_ui_load(const u8 *p)
{
    return *reinterpret_cast<const volatile T *>(p);
}

template <typename T>
void _hal_ui_store(u8 *p, T v)
{
    *reinterpret_cast<volatile T *>(p) = v;
}

template <typename T>
T _hal_ui_swap(T v)
{
    if constexpr (sizeof(T) == 2) {
        return __builtin_bswap16(v);
    } else if constexpr (sizeof(T) == 4) {
        return __builtin_bswap32(v);
    } else {
        return __builtin_bswap64(v);
    }
}

template <typename T>
int _hal_ui_reg_read(u32 chip_id, u32 bar, u32 addr, T *value)
{
    u8 *base = nullptr;
    u32 offset = 0;
    const int rc = _hal_ui_reg_base(chip_id, bar, addr, sizeof(T), &base, &offset);
    if (rc != 0) {
        return rc;
    }
    _hal_ui_pci_regop_lock(chip_id, false);
    T v = _hal_ui_load<T>(base + offset);
    if (!_native_order(chip_id)) {
        v = _hal_ui_swap(v);
    }
    _hal_ui_pci_regop_unlock(chip_id, false);
    *value = v;
    return 0;
}

template <typename T>
int _hal_ui_reg_write(u32 chip_id, u32 bar, u32 addr, T value)
{
    u8 *base = nullptr;
    u32 offset = 0;
    const int rc = _hal_ui_reg_base(chip_id, bar, addr, sizeof(T), &base, &offset);
    if (rc != 0) {
        return rc;
    }
    _hal_ui_pci_regop_lock(chip_id, true);
    _hal_ui_store<T>(base + offset, _native_order(chip_id) ? value : _hal_ui_swap(value));
    _hal_ui_pci_regop_unlock(chip_id, true);
    return 0;
}

// The address a log line shows: on BAR 4 the offset inside the subsection.
u32 _hal_ui_shown_addr(u32 chip_id, u32 bar, u32 addr)
{
    if (bar == HAL_BAR_LSW && chip_id < SHR_MAX_CHIPS) {
        u64 vaddr = 0, base = 0;
        if (hal_ui_subsection_bar_vaddr_get(chip_id, addr, &vaddr, &base) == 0) {
            return addr - static_cast<u32>(base);
        }
    }
    return addr;
}

void _hal_ui_chip_unmmap_hw(u32 chip_id)
{
    hal_ui_chip_info *info = &g_hal_ui_chip_info[chip_id];
    _hal_ui_devmem_unmap(info->bar0_vaddr, info->bar0_paddr, info->bar0_size);
    info->bar0_vaddr = 0;
    g_chip_iomem_vaddr[chip_id][HAL_BAR0] = 0;
    _hal_ui_devmem_unmap(info->axi_vaddr, info->axi_paddr, info->axi_size);
    info->axi_vaddr = 0;
    g_chip_iomem_vaddr[chip_id][HAL_BAR_AXI] = 0;
    for (u32 i = 0; i < HAL_UI_SUBSECTION_COUNT; i++) {
        hal_ui_mapping *m = &g_hal_ui_subsection_resource[chip_id][i];
        _hal_ui_devmem_unmap(m->vaddr, m->paddr, m->size);
        *m = hal_ui_mapping{};
    }
    _hal_ui_devmem_unmap(info->lsw_vaddr, info->lsw_paddr, info->lsw_size);
    info->lsw_vaddr = 0;
    g_chip_iomem_vaddr[chip_id][HAL_BAR_LSW] = 0;
}

int _hal_ui_map_range(u32 chip_id, u64 paddr, u64 size, u64 *vaddr)
{
    if (hal_ui_adpter_devmem_mmap(paddr, size, vaddr) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " chip id %d  mmap fail: %lx@%lx\n", (int)chip_id, (unsigned long)size,
                    (unsigned long)paddr);
        *vaddr = 0;
        return SHR_E_FAIL;
    }
    return 0;
}

int _hal_ui_chip_mmap_hw(u32 chip_id)
{
    u64 ranges[3 * kRangeWords] = {};
    if (hal_ui_get_iomem(chip_id, ranges) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " haui chip mmmp get chip info fail\n");
        return SHR_E_INTERNAL;
    }
    hal_ui_chip_info *info = &g_hal_ui_chip_info[chip_id];

    // First range: BAR 0.
    info->bar0_paddr = ranges[0];
    info->bar0_size = ranges[1];
    if (_hal_ui_map_range(chip_id, info->bar0_paddr, info->bar0_size, &info->bar0_vaddr) != 0) {
        _hal_ui_chip_unmmap_hw(chip_id);
        return SHR_E_FAIL;
    }
    g_chip_iomem_vaddr[chip_id][HAL_BAR0] = info->bar0_vaddr;

    // Second range: the LSW aperture, whole or in the pieces that exist on
    // a subsection chip.
    info->lsw_paddr = ranges[kRangeWords];
    info->lsw_size = ranges[kRangeWords + 1];
    if (_is_subsection_chip(chip_id)) {
        for (u32 i = 0; i < HAL_UI_SUBSECTION_COUNT; i++) {
            const hal_ui_subsection &piece = g_hal_ui_kelpreef_subsection_addr_space[i];
            hal_ui_mapping *m = &g_hal_ui_subsection_resource[chip_id][i];
            m->paddr = info->lsw_paddr + piece.offset;
            m->size = piece.size;
            if (hal_ui_adpter_devmem_mmap(m->paddr, m->size, &m->vaddr) != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " chip id %u  mmap fail: %lx@%lx, i = %u\n", chip_id,
                            (unsigned long)m->size, (unsigned long)m->paddr, i);
                m->vaddr = 0;
                _hal_ui_chip_unmmap_hw(chip_id);
                return SHR_E_FAIL;
            }
            SHR_LOG_INF(chip_id, SHR_MOD_HAL, "subsection_bar[%u] paddr:%#08lx, size:%#08lx, vaddr:%p\n", i,
                        (unsigned long)m->paddr, (unsigned long)m->size, reinterpret_cast<void *>(m->vaddr));
        }
    } else {
        if (_hal_ui_map_range(chip_id, info->lsw_paddr, info->lsw_size, &info->lsw_vaddr) != 0) {
            _hal_ui_chip_unmmap_hw(chip_id);
            return SHR_E_FAIL;
        }
        g_chip_iomem_vaddr[chip_id][HAL_BAR_LSW] = info->lsw_vaddr;
    }

    // Third range: BAR 3.
    info->axi_paddr = ranges[2 * kRangeWords];
    info->axi_size = ranges[2 * kRangeWords + 1];
    if (_hal_ui_map_range(chip_id, info->axi_paddr, info->axi_size, &info->axi_vaddr) != 0) {
        _hal_ui_chip_unmmap_hw(chip_id);
        return SHR_E_FAIL;
    }
    g_chip_iomem_vaddr[chip_id][HAL_BAR_AXI] = info->axi_vaddr;

    SHR_LOG_DBG(chip_id, SHR_MOD_INIT, "lsw_padd:%#lx vadd:%p axi_padd:%#lx vadd:%p\n", (unsigned long)info->lsw_paddr,
                reinterpret_cast<void *>(info->lsw_vaddr), (unsigned long)info->axi_paddr,
                reinterpret_cast<void *>(info->axi_vaddr));
    return 0;
}

void _hal_ui_mem_list_init()
{
    if (!g_is_mem_init) {
        g_drv_mem.prev = &g_drv_mem;
        g_drv_mem.next = &g_drv_mem;
        g_is_mem_init = 1;
    }
}

void _hal_ui_mem_unlink(hal_ui_mem_node *node)
{
    node->prev->next = node->next;
    node->next->prev = node->prev;
    node->prev = node->next = nullptr;
}

// Gives one block back: unmap, free the node, and tell the driver.
int _hal_ui_dma_release(hal_ui_mem_node *node, u32 cmd_chip)
{
    const u64 vaddr = node->vaddr, paddr = node->paddr;
    const u32 len = node->len;
    _hal_ui_mem_unlink(node);
    _hal_ui_devmem_unmap(vaddr, paddr, len);
    xsal_mem_free(node);
    if (len == 0) {
        return 0;
    }
    hal_devio io{};
    io.chip_id = cmd_chip;
    io.arg0 = len;
    _devio_set_u64(io, HAL_DEVIO_U64_OFF40, paddr);
    return _hal_ui_cmd(HAL_CMD_DMA_FREE, io) == 0 ? 0 : SHR_E_INTERNAL;
}

} // namespace

extern "C" {

int g_hal_ui_devfd_for_ioctl = -1;
int g_hal_ui_devfd_for_pkt = -1;
hal_ui_chip_info g_hal_ui_chip_info[SHR_MAX_CHIPS];
u64 g_chip_iomem_vaddr[SHR_MAX_CHIPS][HAL_BAR_COUNT];
hal_ui_mapping g_hal_ui_subsection_resource[SHR_MAX_CHIPS][HAL_UI_SUBSECTION_COUNT];
hal_ui_mem_node g_drv_mem;
u32 g_is_mem_init;
xsal_rw_mutex_t g_pci_reg_op_lock[SHR_MAX_CHIPS];

const hal_ui_subsection g_hal_ui_kelpreef_subsection_addr_space[HAL_UI_SUBSECTION_COUNT] = {
    {0x0, 0x400},           {0x400000, 0x300000}, {0x800000, 0x30000},   {0x1000000, 0x100000},
    {0x1400000, 0x100000},  {0x1800000, 0x4f0},   {0x1c00000, 0x20000},  {0x2000000, 0x100000},
    {0x4000000, 0x400000},  {0xf000000, 0x60000},
};

// ---- device nodes ---------------------------------------------------------

int hal_ui_open(void)
{
    if (g_hal_ui_devfd_for_ioctl >= 0) {
        return 0;
    }
    g_hal_ui_devfd_for_ioctl = g_hal_ui_os->open(HAL_DEV_DRV, O_RDWR | O_SYNC);
    if (g_hal_ui_devfd_for_ioctl < 0) {
        g_hal_ui_devfd_for_ioctl = -1;
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_HAL, "unable to open %s\n", HAL_DEV_DRV);
    }
    if (g_hal_ui_devfd_for_pkt < 0) {
        g_hal_ui_devfd_for_pkt = g_hal_ui_os->open(HAL_DEV_CPUTR, O_RDWR | O_SYNC);
        if (g_hal_ui_devfd_for_pkt < 0) {
            g_hal_ui_devfd_for_pkt = -1;
            SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_HAL, "unable to open %s\n", HAL_DEV_CPUTR);
        }
    }
    // A missing device shows later: the chip count stays 0 and commands
    // leave their result at -1.
    return 0;
}

int hal_ui_close(void)
{
    if (g_hal_ui_devfd_for_ioctl >= 0) {
        g_hal_ui_os->close(g_hal_ui_devfd_for_ioctl);
        g_hal_ui_devfd_for_ioctl = -1;
    }
    if (g_hal_ui_devfd_for_pkt >= 0) {
        g_hal_ui_os->close(g_hal_ui_devfd_for_pkt);
        g_hal_ui_devfd_for_pkt = -1;
    }
    return 0;
}

// ---- tables -----------------------------------------------------------------

int hal_ui_hw_ops_attach(u32 chip_id, u32 bus_type)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    switch (bus_type) {
    case HAL_BUS_MASTER:
    case HAL_BUS_SLAVE:
        g_hw_ops[chip_id] = &g_hal_ui_drv;
        return 0;
    case HAL_BUS_SPI:
        g_hw_ops[chip_id] = &g_hal_ui_spi_drv;
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "chip drv type error\n");
        g_hw_ops[chip_id] = nullptr;
        return SHR_E_PARAM;
    }
}

int hal_ui_hw_pkt_ops_attach(u32 chip_id, u32 bus_type)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    g_hw_pkt_ops[chip_id] = (bus_type == HAL_BUS_MASTER || bus_type == HAL_BUS_SLAVE) ? &g_hal_ui_pkt_drv : nullptr;
    return 0;
}

// ---- identity and apertures -------------------------------------------------

int hal_ui_chip_num_get(u32 *count)
{
    if (count == nullptr) {
        return SHR_E_NULL_PTR;
    }
    hal_devio io{};
    *count = _hal_ui_cmd(HAL_CMD_CHIP_NUM_GET, io) == 0 ? io.arg0 : 0;
    return 0;
}

int hal_ui_get_chip_info(u32 chip_id, u32 *vendor_id, u32 *device_id, u32 *byte_order, u32 *revision)
{
    if (vendor_id == nullptr || device_id == nullptr || byte_order == nullptr || revision == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "parameter is NULL\n");
        return SHR_E_PARAM;
    }
    hal_devio io{};
    io.chip_id = chip_id;
    if (_hal_ui_cmd(HAL_CMD_CHIP_INFO_GET, io) != 0) {
        return SHR_E_INTERNAL;
    }
    *vendor_id = io.arg0;
    *device_id = io.arg1;
    *byte_order = _devio_u32(io, 0);
    *revision = _devio_u32(io, 4);
    return 0;
}

int hal_ui_get_iomem(u32 chip_id, u64 ranges[9])
{
    hal_devio io{};
    io.chip_id = chip_id;
    if (_hal_ui_cmd(HAL_CMD_IOMEM_GET, io) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "chip id %d  get chip info fail\n", (int)chip_id);
        return SHR_E_INTERNAL;
    }
    for (u32 i = 0; i < 3 * kRangeWords; i++) {
        ranges[i] = _devio_u64(io, i * 8);
    }
    return 0;
}

int hal_ui_get_chip_mem_info(u32 chip_id, u32 bar, u64 info[3])
{
    if (chip_id >= SHR_MAX_CHIPS) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " haui get chip mem info invalid.\n");
        return SHR_E_PARAM;
    }
    if (info == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " haui get chip mem_info is NULL.\n");
        return SHR_E_PARAM;
    }
    const hal_ui_chip_info &ci = g_hal_ui_chip_info[chip_id];
    switch (bar) {
    case HAL_BAR0:
        info[0] = ci.bar0_vaddr, info[1] = ci.bar0_paddr, info[2] = ci.bar0_size;
        return 0;
    case HAL_BAR_AXI:
        info[0] = ci.axi_vaddr, info[1] = ci.axi_paddr, info[2] = ci.axi_size;
        return 0;
    case HAL_BAR_LSW:
        info[0] = ci.lsw_vaddr, info[1] = ci.lsw_paddr, info[2] = ci.lsw_size;
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " haui get chip mem info failed.\n");
        return SHR_E_FAIL;
    }
}

int hal_ui_get_drv_chip_type(u32 chip_id, u32 *bus_type)
{
    if (bus_type == nullptr) {
        return SHR_E_PARAM;
    }
    hal_devio io{};
    io.chip_id = chip_id;
    if (_hal_ui_cmd(HAL_CMD_DRV_CHIP_TYPE_GET, io) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " ioctl get chip drv type error\n");
        return SHR_E_INTERNAL;
    }
    *bus_type = io.arg0;
    return 0;
}

int hal_ui_pci_config_read(u32 chip_id, u32 addr, u32 *value)
{
    if (value == nullptr) {
        return SHR_E_PARAM;
    }
    hal_devio io{};
    io.chip_id = chip_id;
    io.arg0 = addr;
    if (_hal_ui_cmd(HAL_CMD_PCI_CONF_READ, io) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " %s chip id %d addr=%x\n", __func__, (int)chip_id, addr);
        return SHR_E_INTERNAL;
    }
    *value = static_cast<u32>(_devio_u64(io, HAL_DEVIO_U64_OFF40));
    return 0;
}

int hal_ui_pci_config_write(u32 chip_id, u32 addr, u32 value)
{
    hal_devio io{};
    io.chip_id = chip_id;
    io.arg0 = addr;
    _devio_set_u64(io, HAL_DEVIO_U64_OFF40, value);
    if (_hal_ui_cmd(HAL_CMD_PCI_CONF_WRITE, io) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " %s chip id %d addr=%x\n", __func__, (int)chip_id, addr);
        return SHR_E_INTERNAL;
    }
    return 0;
}

int hal_ui_adpter_devmem_mmap(u64 paddr, u64 size, u64 *vaddr)
{
    u64 map_off, map_len, page_off;
    void *p = MAP_FAILED;
    if (_hal_ui_map_span(paddr, size, &map_off, &map_len, &page_off)) {
        p = g_hal_ui_os->mmap(nullptr, map_len, PROT_READ | PROT_WRITE, MAP_SHARED, g_hal_ui_devfd_for_ioctl,
                              static_cast<off_t>(map_off));
    }
    if (p == MAP_FAILED || p == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_COMMON, "mmap target addr %jd failed.\n", (intmax_t)paddr);
        *vaddr = 0;
        return -1;
    }
    *vaddr = reinterpret_cast<u64>(p) + page_off;
    return 0;
}

int hal_ui_chip_mem_init(u32 chip_id)
{
    u32 chip_num = 0;
    hal_ui_chip_num_get(&chip_num);
    if (chip_num == 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "chip_num %d\n", (int)chip_num);
        return SHR_E_NOT_FOUND;
    }
    if (chip_id >= SHR_MAX_CHIPS) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "invalid chip_id\n");
        return SHR_E_BADID;
    }
    // A chip mapped already gives its mappings back first: the driver's
    // ranges are taken anew and nothing of the earlier ones stays mapped.
    _hal_ui_chip_unmmap_hw(chip_id);
    g_hal_ui_chip_info[chip_id].chip_id = chip_id;
    int rc = _hal_ui_chip_mmap_hw(chip_id);
    if (rc != 0) {
        return rc;
    }
    u32 vendor = 0, device = 0, byte_order = 0, revision = 0;
    rc = hal_ui_get_chip_info(chip_id, &vendor, &device, &byte_order, &revision);
    if (rc == 0) {
        g_hal_ui_chip_info[chip_id].byte_order = byte_order;
        if (_is_subsection_chip(chip_id) && g_pci_reg_op_lock[chip_id] == nullptr) {
            g_pci_reg_op_lock[chip_id] = xsal_rw_mutex_create("pci regop lock");
            if (g_pci_reg_op_lock[chip_id] == nullptr) {
                rc = SHR_E_MEMORY;
            }
        }
    }
    if (rc != 0) {
        _hal_ui_chip_unmmap_hw(chip_id);
    }
    return rc;
}

int hal_ui_chip_mem_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    _hal_ui_chip_unmmap_hw(chip_id);
    g_hal_ui_chip_info[chip_id] = hal_ui_chip_info{};
    if (g_pci_reg_op_lock[chip_id] != nullptr) {
        const int rc = xsal_rw_mutex_destroy(g_pci_reg_op_lock[chip_id]);
        g_pci_reg_op_lock[chip_id] = nullptr;
        if (rc != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "destroy address access lock failed!\n");
            return SHR_E_FAIL;
        }
    }
    return 0;
}

int hal_ui_subsection_bar_vaddr_get(u32 chip_id, u32 addr, u64 *vaddr, u64 *base)
{
    if (vaddr == nullptr || base == nullptr) {
        return SHR_E_NULL_PTR;
    }
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (!_is_subsection_chip(chip_id)) {
        *vaddr = g_hal_ui_chip_info[chip_id].lsw_vaddr;
        *base = 0;
        return 0;
    }
    for (u32 i = 0; i < HAL_UI_SUBSECTION_COUNT; i++) {
        const hal_ui_subsection &piece = g_hal_ui_kelpreef_subsection_addr_space[i];
        if (addr >= piece.offset && addr - piece.offset < piece.size) {
            *vaddr = g_hal_ui_subsection_resource[chip_id][i].vaddr;
            *base = piece.offset;
            return 0;
        }
    }
    return SHR_E_PARAM;
}

// ---- registers ----------------------------------------------------------------

int hal_ui_reg_read_16(u32 chip_id, u32 bar, u32 addr, u32 *value)
{
    u16 v = 0;
    const int rc = _hal_ui_reg_read<u16>(chip_id, bar, addr, &v);
    if (rc == 0) {
        *value = v;
    }
    return rc;
}

int hal_ui_reg_write_16(u32 chip_id, u32 bar, u32 addr, u32 value)
{
    return _hal_ui_reg_write<u16>(chip_id, bar, addr, static_cast<u16>(value));
}

int hal_ui_reg_read_32(u32 chip_id, u32 bar, u32 addr, u32 *value)
{
    const int rc = _hal_ui_reg_read<u32>(chip_id, bar, addr, value);
    if (rc == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_HAL, "[haui  read] chip_id:%u, bar id:%u, addr:0x%08x, data:0x%08x\r\n", chip_id,
                    bar, _hal_ui_shown_addr(chip_id, bar, addr), *value);
    }
    return rc;
}

int hal_ui_reg_write_32(u32 chip_id, u32 bar, u32 addr, u32 value)
{
    if (bar == HAL_BAR0 || bar == HAL_BAR_AXI || bar == HAL_BAR_LSW) {
        SHR_LOG_DBG(chip_id, SHR_MOD_HAL, "[haui write] chip_id:%u, bar id:%u, addr:0x%08x, data:0x%08x\r\n", chip_id,
                    bar, _hal_ui_shown_addr(chip_id, bar, addr), value);
    }
    return _hal_ui_reg_write<u32>(chip_id, bar, addr, value);
}

int hal_ui_reg_read_64(u32 chip_id, u32 bar, u32 addr, u64 *value)
{
    const int rc = _hal_ui_reg_read<u64>(chip_id, bar, addr, value);
    if (rc == 0) {
        SHR_LOG_DBG(chip_id, SHR_MOD_HAL, "[haui  read] chip_id:%u, bar id:%u, addr:%#x, data:%#lx\r\n", chip_id, bar,
                    _hal_ui_shown_addr(chip_id, bar, addr), (unsigned long)*value);
    }
    return rc;
}

int hal_ui_reg_write_64(u32 chip_id, u32 bar, u32 addr, u64 value)
{
    if (bar == HAL_BAR0 || bar == HAL_BAR_AXI || bar == HAL_BAR_LSW) {
        SHR_LOG_DBG(chip_id, SHR_MOD_HAL, "[haui write] chip_id:%u, bar id:%u, addr:%x, data:%#lx\r\n", chip_id, bar,
                    _hal_ui_shown_addr(chip_id, bar, addr), (unsigned long)value);
    }
    return _hal_ui_reg_write<u64>(chip_id, bar, addr, value);
}

// The SPI transport is not part of the library: its register slots succeed
// without effect unless the application gives register hooks.
int hal_ui_spi_reg_read_16(u32, u32, u32, u32 *value)
{
    if (value != nullptr) {
        *value = 0;
    }
    return 0;
}

int hal_ui_spi_reg_write_16(u32, u32, u32, u32)
{
    return 0;
}

int hal_ui_spi_reg_read_32(u32, u32, u32, u32 *value)
{
    if (value != nullptr) {
        *value = 0;
    }
    return 0;
}

int hal_ui_spi_reg_write_32(u32, u32, u32, u32)
{
    return 0;
}

int hal_ui_spi_reg_read_64(u32, u32, u32, u64 *value)
{
    if (value != nullptr) {
        *value = 0;
    }
    return 0;
}

int hal_ui_spi_reg_write_64(u32, u32, u32, u64)
{
    return 0;
}

// ---- DMA ------------------------------------------------------------------------

int hal_ui_dma_alloc(u32 chip_id, u64 *vaddr, u64 *paddr, u32 size, u64 *aux)
{
    if (vaddr == nullptr || paddr == nullptr) {
        return SHR_E_PARAM;
    }
    _hal_ui_mem_list_init();
    hal_devio io{};
    io.chip_id = chip_id;
    io.arg0 = size;
    _devio_set_u64(io, HAL_DEVIO_U64_OFF40, 0);
    if (_hal_ui_cmd(HAL_CMD_DMA_ALLOC, io) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " size=%x \n", size);
        return -1;
    }
    const u64 pa = _devio_u64(io, HAL_DEVIO_U64_OFF40);
    if (aux != nullptr) {
        *aux = _devio_u64(io, HAL_DEVIO_U64_OFF48);
    }
    u64 va = 0;
    if (hal_ui_adpter_devmem_mmap(pa, size, &va) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "mmap fail!\n");
        return -1;
    }
    auto *node = static_cast<hal_ui_mem_node *>(xsal_malloc(sizeof(hal_ui_mem_node), "alloc_mnode", SHR_MOD_HAL));
    if (node == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "fail\n");
        // Nothing may stay behind: the mapping goes, the block goes back.
        _hal_ui_devmem_unmap(va, pa, size);
        hal_devio fr{};
        fr.chip_id = chip_id;
        fr.arg0 = size;
        _devio_set_u64(fr, HAL_DEVIO_U64_OFF40, pa);
        (void)_hal_ui_cmd(HAL_CMD_DMA_FREE, fr);
        return SHR_E_MEMORY;
    }
    *node = hal_ui_mem_node{va, pa, size, chip_id, g_drv_mem.prev, &g_drv_mem};
    g_drv_mem.prev->next = node;
    g_drv_mem.prev = node;
    *paddr = pa;
    *vaddr = va;
    return 0;
}

int hal_ui_dma_free(u32 chip_id, u32 reserved, u64 vaddr)
{
    (void)reserved;
    if (!g_is_mem_init) {
        return 0;
    }
    for (hal_ui_mem_node *n = g_drv_mem.next; n != &g_drv_mem; n = n->next) {
        if (n->vaddr == vaddr && n->chip_id == chip_id) {
            const int rc = _hal_ui_dma_release(n, chip_id);
            if (rc != 0) {
                SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "huai dma free faild!\n");
            }
            return rc;
        }
    }
    return 0;
}

int hal_ui_dma_free_all(u32 chip_id)
{
    if (!g_is_mem_init) {
        return 0;
    }
    hal_ui_mem_node *n = g_drv_mem.next;
    while (n != &g_drv_mem) {
        hal_ui_mem_node *next = n->next;
        if (n->chip_id == chip_id && _hal_ui_dma_release(n, 0) != 0) {
            SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "haui dma free all faild!\n");
        }
        n = next;
    }
    return 0;
}

// ---- interrupts -----------------------------------------------------------------

int hal_ui_irq_wait(u32 chip_id)
{
    hal_devio io{};
    io.chip_id = chip_id;
    return _hal_ui_cmd(HAL_CMD_IRQ_WAIT, io);
}

int hal_ui_irq_enable(u32 chip_id, u64 mask)
{
    hal_devio io{};
    io.chip_id = chip_id;
    io.arg0 = static_cast<u32>(mask);
    io.arg1 = static_cast<u32>(mask >> 32);
    if (_hal_ui_cmd(HAL_CMD_IRQ_ENABLE, io) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " haui irq_enable fail \n");
        return -1;
    }
    return 0;
}

int hal_ui_irq_disable(u32)
{
    return 0;
}

int hal_ui_irq_exit(u32 chip_id)
{
    hal_devio io{};
    io.chip_id = chip_id;
    if (_hal_ui_cmd(HAL_CMD_IRQ_EXIT, io) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, " haui irq_exit fail \n");
        return -1;
    }
    return 0;
}

int hal_ui_vp_conf_init(u32 chip_id, const u64 words[3])
{
    hal_devio io{};
    io.chip_id = chip_id;
    for (u32 i = 0; i < 3; i++) {
        _devio_set_u64(io, i * 8, words != nullptr ? words[i] : 0);
    }
    return _hal_ui_cmd(HAL_CMD_VP_CONF_INIT, io) == 0 ? 0 : -1;
}

// ---- bus numbers ------------------------------------------------------------------

int hal_ui_get_chip_id_by_bus(u16 bus, u32 *chip_id)
{
    hal_devio io{};
    io.chip_id = bus;
    if (_hal_ui_cmd(HAL_CMD_CHIP_ID_BY_BUS_GET, io) != 0) {
        return -1;
    }
    *chip_id = io.arg0;
    return 0;
}

int hal_ui_get_busnum_mapping(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num)
{
    hal_devio io{};
    if (_hal_ui_cmd(HAL_CMD_BUS_MAPPING_GET, io) != 0) {
        return -1;
    }
    // The record has room for 16 pairs; a driver that reports more is
    // not believed beyond that.
    const u32 n = io.arg0 > HAL_DEVIO_MAP_MAX ? HAL_DEVIO_MAP_MAX : io.arg0;
    for (u32 i = 0; i < n; i++) {
        memcpy(&bus_num_arr[i], io.data + HAL_DEVIO_BUS_NUMS + i * 2, 2);
        memcpy(&chip_id_arr[i], io.data + HAL_DEVIO_CHIP_IDS + i * 4, 4);
    }
    *valid_num = n;
    return 0;
}

// ---- packet device -----------------------------------------------------------------

int hal_ui_pkt_irq_open(u32 chip_id)
{
    hal_devio io{};
    io.chip_id = chip_id;
    return _hal_ui_pkt_cmd(HAL_PKT_CMD_IRQ_OPEN, io);
}

int hal_ui_pkt_irq_disable(u32 chip_id)
{
    hal_devio io{};
    io.chip_id = chip_id;
    return _hal_ui_pkt_cmd(HAL_PKT_CMD_IRQ_DISABLE, io);
}

int hal_ui_pkt_wait_intr(u32 chip_id)
{
    hal_devio io{};
    io.chip_id = chip_id;
    return _hal_ui_pkt_cmd(HAL_PKT_CMD_WAIT_INTR, io);
}

int hal_ui_pkt_send_msg(u32 chip_id, u32 *msg)
{
    if (msg == nullptr) {
        return SHR_E_NULL_PTR;
    }
    hal_devio io{};
    io.chip_id = chip_id;
    io.arg0 = *msg;
    const int rc = _hal_ui_pkt_cmd(HAL_PKT_CMD_SEND_MSG, io);
    *msg = io.arg0;
    return rc;
}

// ---- the tables ----------------------------------------------------------------------

// The slots both register tables share: identity, bus type, interrupts.
static constexpr hal_hw_ops _hal_ui_common_slots()
{
    hal_hw_ops t{};
    t.chip_num_get = hal_ui_chip_num_get;
    t.chip_info_get = hal_ui_get_chip_info;
    t.drv_chip_type_get = hal_ui_get_drv_chip_type;
    t.irq_wait = hal_ui_irq_wait;
    t.irq_enable = hal_ui_irq_enable;
    t.irq_disable = hal_ui_irq_disable;
    t.irq_exit = hal_ui_irq_exit;
    return t;
}

// Chips on PCIe (bus types 0 and 1): mapped apertures, DMA, PCI config.
static constexpr hal_hw_ops _hal_ui_drv_slots()
{
    hal_hw_ops t = _hal_ui_common_slots();
    t.iomem_get = hal_ui_get_iomem;
    t.chip_mem_info_get = hal_ui_get_chip_mem_info;
    t.pci_config_read = hal_ui_pci_config_read;
    t.pci_config_write = hal_ui_pci_config_write;
    t.reg_read_16 = hal_ui_reg_read_16;
    t.reg_write_16 = hal_ui_reg_write_16;
    t.reg_read_32 = hal_ui_reg_read_32;
    t.reg_write_32 = hal_ui_reg_write_32;
    t.reg_read_64 = hal_ui_reg_read_64;
    t.reg_write_64 = hal_ui_reg_write_64;
    t.dma_alloc = hal_ui_dma_alloc;
    t.dma_free = hal_ui_dma_free;
    t.dma_free_all = hal_ui_dma_free_all;
    t.vp_conf_init = hal_ui_vp_conf_init;
    t.subsection_bar_vaddr_get = hal_ui_subsection_bar_vaddr_get;
    return t;
}

// Chips on SPI (bus type 2): register slots without effect.
static constexpr hal_hw_ops _hal_ui_spi_slots()
{
    hal_hw_ops t = _hal_ui_common_slots();
    t.reg_read_16 = hal_ui_spi_reg_read_16;
    t.reg_write_16 = hal_ui_spi_reg_write_16;
    t.reg_read_32 = hal_ui_spi_reg_read_32;
    t.reg_write_32 = hal_ui_spi_reg_write_32;
    t.reg_read_64 = hal_ui_spi_reg_read_64;
    t.reg_write_64 = hal_ui_spi_reg_write_64;
    return t;
}

// Writable: register hooks of the application replace their slots.
hal_hw_ops g_hal_ui_drv = _hal_ui_drv_slots();
hal_hw_ops g_hal_ui_spi_drv = _hal_ui_spi_slots();

hal_pkt_ops g_hal_ui_pkt_drv = {hal_ui_pkt_irq_open, hal_ui_pkt_irq_disable, hal_ui_pkt_wait_intr, nullptr, nullptr,
                               hal_ui_pkt_send_msg, nullptr};

} // extern "C"
