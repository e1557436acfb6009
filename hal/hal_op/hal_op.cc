// The chip-independent front of the HAL: each call finds the chip's
// operations table and calls one slot.  A chip without a table, or an
// empty slot, gives -7.
#include "hal/hal_op/hal.h"
#include "hal/linux/linux_haui_um/hal_ui.h"

namespace {

// Calls slot `Slot` of the table of `chip_id` with the chip and `args`.
template <auto Slot, typename... Args>
int _hal_slot_call(u32 chip_id, Args... args)
{
    if (chip_id >= SHR_MAX_CHIPS || g_hw_ops[chip_id] == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    const auto fn = g_hw_ops[chip_id]->*Slot;
    if (fn == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    return fn(chip_id, args...);
}

template <auto Slot, typename... Args>
int _hal_pkt_slot_call(u32 chip_id, Args... args)
{
    if (chip_id >= SHR_MAX_CHIPS || g_hw_pkt_ops[chip_id] == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    const auto fn = g_hw_pkt_ops[chip_id]->*Slot;
    if (fn == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    return fn(chip_id, args...);
}

// DMA goes through the table of the lowest chip id that has one.
hal_hw_ops *_hal_dma_ops()
{
    for (u32 c = 0; c < SHR_MAX_CHIPS; c++) {
        if (g_hw_ops[c] != nullptr) {
            return g_hw_ops[c];
        }
    }
    return nullptr;
}

} // namespace

extern "C" {

hal_hw_ops *g_hw_ops[SHR_MAX_CHIPS];
hal_pkt_ops *g_hw_pkt_ops[SHR_MAX_CHIPS];

int hal_init(void)
{
    return hal_ui_open();
}

int hal_deinit(void)
{
    return hal_ui_close();
}

int hal_chip_num_get(u32 *count)
{
    if (count == nullptr) {
        return SHR_E_NULL_PTR;
    }
    return hal_ui_chip_num_get(count);
}

int hal_chip_mem_init(u32 chip_id)
{
    return hal_ui_chip_mem_init(chip_id);
}

int hal_chip_mem_deinit(u32 chip_id)
{
    return hal_ui_chip_mem_deinit(chip_id);
}

int hal_ops_attach(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    u32 bus_type = 0;
    const int rc = hal_ui_get_drv_chip_type(chip_id, &bus_type);
    if (rc != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_HAL, "get chip drv type error\n");
        return rc;
    }
    hal_ui_hw_pkt_ops_attach(chip_id, bus_type);
    return hal_ui_hw_ops_attach(chip_id, bus_type);
}

int hal_ops_dettach(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_BADID;
    }
    g_hw_ops[chip_id] = nullptr;
    g_hw_pkt_ops[chip_id] = nullptr;
    return 0;
}

int hal_reg_operate_func_register(u32 chip_id, hal_reg_func_t fn, u32 which)
{
    if (fn == nullptr || chip_id >= SHR_MAX_CHIPS || g_hw_ops[chip_id] == nullptr) {
        return 0;
    }
    hal_hw_ops *ops = g_hw_ops[chip_id];
    switch (which) {
    case 0:
        ops->reg_read_16 = reinterpret_cast<hal_reg_read32_f>(fn);
        break;
    case 1:
        ops->reg_write_16 = reinterpret_cast<hal_reg_write32_f>(fn);
        break;
    case 2:
        ops->reg_read_32 = reinterpret_cast<hal_reg_read32_f>(fn);
        break;
    case 3:
        ops->reg_write_32 = reinterpret_cast<hal_reg_write32_f>(fn);
        break;
    case 4:
        ops->reg_read_64 = reinterpret_cast<hal_reg_read64_f>(fn);
        break;
    case 5:
        ops->reg_write_64 = reinterpret_cast<hal_reg_write64_f>(fn);
        break;
    default:
        return SHR_E_PARAM;
    }
    return 0;
}

int hal_reg_read_16(u32 chip_id, u32 bar, u32 addr, u16 *value)
{
    if (value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    u32 word = 0;
    const int rc = _hal_slot_call<&hal_hw_ops::reg_read_16>(chip_id, bar, addr, &word);
    if (rc == 0) {
        *value = static_cast<u16>(word);
    }
    return rc;
}

int hal_reg_write_16(u32 chip_id, u32 bar, u32 addr, u16 value)
{
    return _hal_slot_call<&hal_hw_ops::reg_write_16>(chip_id, bar, addr, static_cast<u32>(value));
}

int hal_reg_read_32(u32 chip_id, u32 bar, u32 addr, u32 *value)
{
    if (value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    return _hal_slot_call<&hal_hw_ops::reg_read_32>(chip_id, bar, addr, value);
}

int hal_reg_write_32(u32 chip_id, u32 bar, u32 addr, u32 value)
{
    return _hal_slot_call<&hal_hw_ops::reg_write_32>(chip_id, bar, addr, value);
}

int hal_reg_read_64(u32 chip_id, u32 bar, u32 addr, u64 *value)
{
    if (value == nullptr) {
        return SHR_E_NULL_PTR;
    }
    return _hal_slot_call<&hal_hw_ops::reg_read_64>(chip_id, bar, addr, value);
}

int hal_reg_write_64(u32 chip_id, u32 bar, u32 addr, u64 value)
{
    return _hal_slot_call<&hal_hw_ops::reg_write_64>(chip_id, bar, addr, value);
}

int hal_probe_chip_info_get(u32 chip_id, u32 *vendor_id, u32 *device_id, u32 *byte_order, u32 *revision)
{
    return _hal_slot_call<&hal_hw_ops::chip_info_get>(chip_id, vendor_id, device_id, byte_order, revision);
}

int hal_get_drv_chip_type(u32 chip_id, u32 *bus_type)
{
    return _hal_slot_call<&hal_hw_ops::drv_chip_type_get>(chip_id, bus_type);
}

int hal_get_chip_mem_info(u32 chip_id, u32 bar, u64 info[3])
{
    return _hal_slot_call<&hal_hw_ops::chip_mem_info_get>(chip_id, bar, info);
}

int hal_pci_conf_read(u32 chip_id, u32 addr, u32 *value)
{
    return _hal_slot_call<&hal_hw_ops::pci_config_read>(chip_id, addr, value);
}

int hal_pci_conf_write(u32 chip_id, u32 addr, u32 value)
{
    return _hal_slot_call<&hal_hw_ops::pci_config_write>(chip_id, addr, value);
}

int hal_irq_wait(u32 chip_id)
{
    return _hal_slot_call<&hal_hw_ops::irq_wait>(chip_id);
}

int hal_irq_enable(u32 chip_id, u64 mask)
{
    return _hal_slot_call<&hal_hw_ops::irq_enable>(chip_id, mask);
}

int hal_irq_disable(u32 chip_id)
{
    return _hal_slot_call<&hal_hw_ops::irq_disable>(chip_id);
}

int hal_usleep(u32 chip_id, u32 usec)
{
    return hal_ui_usleep(chip_id, usec);
}

int hal_irq_exit(u32 chip_id)
{
    return _hal_slot_call<&hal_hw_ops::irq_exit>(chip_id);
}

int hal_vp_conf_init(u32 chip_id, const u64 words[3])
{
    return _hal_slot_call<&hal_hw_ops::vp_conf_init>(chip_id, words);
}

int hal_subsection_bar_vaddr_get(u32 chip_id, u32 addr, u64 *vaddr, u64 *base)
{
    if (vaddr == nullptr || base == nullptr) {
        return SHR_E_NULL_PTR;
    }
    return _hal_slot_call<&hal_hw_ops::subsection_bar_vaddr_get>(chip_id, addr, vaddr, base);
}

int hal_pkt_wait_intr(u32 chip_id)
{
    return _hal_pkt_slot_call<&hal_pkt_ops::wait_intr>(chip_id);
}

int hal_pkt_send_msg(u32 chip_id, u32 *msg)
{
    return _hal_pkt_slot_call<&hal_pkt_ops::send_msg>(chip_id, msg);
}

int hal_dma_alloc(u32 chip_id, u64 *vaddr, u64 *paddr, u32 size, u64 *aux)
{
    hal_hw_ops *ops = _hal_dma_ops();
    if (ops == nullptr || ops->dma_alloc == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    return ops->dma_alloc(chip_id, vaddr, paddr, size, aux);
}

int hal_dma_free(u32 chip_id, u32 reserved, u64 vaddr)
{
    hal_hw_ops *ops = _hal_dma_ops();
    if (ops == nullptr || ops->dma_free == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    return ops->dma_free(chip_id, reserved, vaddr);
}

int hal_dma_free_all(u32 chip_id)
{
    hal_hw_ops *ops = _hal_dma_ops();
    if (ops == nullptr || ops->dma_free_all == nullptr) {
        return SHR_E_NOT_FOUND;
    }
    return ops->dma_free_all(chip_id);
}

int hal_get_chip_id_by_bus_number(u16 bus, u32 *chip_id)
{
    if (chip_id == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_HAL, "chip_id is NULL!\n");
        return SHR_E_PARAM;
    }
    return hal_ui_get_chip_id_by_bus(bus, chip_id);
}

int hal_get_chipid_busnum_mapping(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num)
{
    if (bus_num_arr == nullptr || chip_id_arr == nullptr || valid_num == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_HAL, "One of (bus_num_arr | bus_num_arr | valid_num) is NULL!\n");
        return SHR_E_PARAM;
    }
    const int rc = hal_ui_get_busnum_mapping(bus_num_arr, chip_id_arr, valid_num);
    if (rc != 0) {
        return rc;
    }
    SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_HAL, "valid number:%u\n", *valid_num);
    for (u32 i = 0; i < *valid_num; i++) {
        SHR_LOG_INF(SHR_NO_CHIP, SHR_MOD_HAL, "chip id:%u, bus number:%u\n", chip_id_arr[i], (u32)bus_num_arr[i]);
    }
    return 0;
}

int hal_sim_chip_type_set(u32 chip_id, u32 type)
{
    (void)chip_id;
    (void)type;
    return SHR_E_NOT_SUPPORT;
}

} // extern "C"
