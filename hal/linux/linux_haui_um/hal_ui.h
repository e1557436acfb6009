/*
 * The user-mode back end of the HAL on Linux: the two device nodes, the
 * mapped apertures, command records with ioctl, DMA and interrupt wait.
 */
#ifndef TIDE_HAL_UI_H
#define TIDE_HAL_UI_H

#include <tide/hal_os.h>

#include "hal/hal_op/hal.h"

#ifdef __cplusplus
extern "C" {
#endif

#define HAL_UI_SUBSECTION_COUNT 10u

/* Aperture records and identity words of a chip. */
typedef struct hal_ui_chip_info {
    u64 lsw_vaddr, lsw_paddr, lsw_size;    /* BAR 4 */
    u64 axi_vaddr, axi_paddr, axi_size;    /* BAR 3 */
    u64 bar0_vaddr, bar0_paddr, bar0_size; /* BAR 0 */
    u32 chip_id;
    u32 byte_order;
} hal_ui_chip_info;

typedef struct hal_ui_subsection {
    u32 offset;
    u32 size;
} hal_ui_subsection;

typedef struct hal_ui_mapping {
    u64 vaddr;
    u64 paddr;
    u64 size;
} hal_ui_mapping;

/* A DMA block on the list g_drv_mem. */
typedef struct hal_ui_mem_node {
    u64 vaddr;
    u64 paddr;
    u32 len;
    u32 chip_id;
    struct hal_ui_mem_node *prev;
    struct hal_ui_mem_node *next;
} hal_ui_mem_node;

extern int g_hal_ui_devfd_for_ioctl;
extern int g_hal_ui_devfd_for_pkt;
extern hal_hw_ops g_hal_ui_drv;
extern hal_hw_ops g_hal_ui_spi_drv;
extern hal_pkt_ops g_hal_ui_pkt_drv;
extern hal_ui_chip_info g_hal_ui_chip_info[SHR_MAX_CHIPS];
extern u64 g_chip_iomem_vaddr[SHR_MAX_CHIPS][HAL_BAR_COUNT];
extern const hal_ui_subsection g_hal_ui_kelpreef_subsection_addr_space[HAL_UI_SUBSECTION_COUNT];
extern hal_ui_mapping g_hal_ui_subsection_resource[SHR_MAX_CHIPS][HAL_UI_SUBSECTION_COUNT];
extern hal_ui_mem_node g_drv_mem;
extern u32 g_is_mem_init;
extern xsal_rw_mutex_t g_pci_reg_op_lock[SHR_MAX_CHIPS];

int hal_ui_open(void);
int hal_ui_close(void);
int hal_ui_hw_ops_attach(u32 chip_id, u32 bus_type);
int hal_ui_hw_pkt_ops_attach(u32 chip_id, u32 bus_type);
int hal_ui_chip_mem_init(u32 chip_id);
int hal_ui_chip_mem_deinit(u32 chip_id);
int hal_ui_adpter_devmem_mmap(u64 paddr, u64 size, u64 *vaddr);

int hal_ui_chip_num_get(u32 *count);
int hal_ui_get_chip_info(u32 chip_id, u32 *vendor_id, u32 *device_id, u32 *byte_order, u32 *revision);
int hal_ui_get_iomem(u32 chip_id, u64 ranges[9]);
int hal_ui_get_chip_mem_info(u32 chip_id, u32 bar, u64 info[3]);
int hal_ui_get_drv_chip_type(u32 chip_id, u32 *bus_type);
int hal_ui_pci_config_read(u32 chip_id, u32 addr, u32 *value);
int hal_ui_pci_config_write(u32 chip_id, u32 addr, u32 value);
int hal_ui_reg_read_16(u32 chip_id, u32 bar, u32 addr, u32 *value);
int hal_ui_reg_write_16(u32 chip_id, u32 bar, u32 addr, u32 value);
int hal_ui_reg_read_32(u32 chip_id, u32 bar, u32 addr, u32 *value);
int hal_ui_reg_write_32(u32 chip_id, u32 bar, u32 addr, u32 value);
int hal_ui_reg_read_64(u32 chip_id, u32 bar, u32 addr, u64 *value);
int hal_ui_reg_write_64(u32 chip_id, u32 bar, u32 addr, u64 value);
int hal_ui_spi_reg_read_16(u32 chip_id, u32 bar, u32 addr, u32 *value);
int hal_ui_spi_reg_write_16(u32 chip_id, u32 bar, u32 addr, u32 value);
int hal_ui_spi_reg_read_32(u32 chip_id, u32 bar, u32 addr, u32 *value);
int hal_ui_spi_reg_write_32(u32 chip_id, u32 bar, u32 addr, u32 value);
int hal_ui_spi_reg_read_64(u32 chip_id, u32 bar, u32 addr, u64 *value);
int hal_ui_spi_reg_write_64(u32 chip_id, u32 bar, u32 addr, u64 value);
int hal_ui_dma_alloc(u32 chip_id, u64 *vaddr, u64 *paddr, u32 size, u64 *aux);
int hal_ui_dma_free(u32 chip_id, u32 reserved, u64 vaddr);
int hal_ui_dma_free_all(u32 chip_id);
int hal_ui_irq_wait(u32 chip_id);
int hal_ui_irq_enable(u32 chip_id, u64 mask);
int hal_ui_irq_disable(u32 chip_id);
int hal_ui_irq_exit(u32 chip_id);
int hal_ui_vp_conf_init(u32 chip_id, const u64 words[3]);
int hal_ui_subsection_bar_vaddr_get(u32 chip_id, u32 addr, u64 *vaddr, u64 *base);
int hal_ui_get_chip_id_by_bus(u16 bus, u32 *chip_id);
int hal_ui_get_busnum_mapping(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num);

int hal_ui_pkt_irq_open(u32 chip_id);
int hal_ui_pkt_irq_disable(u32 chip_id);
int hal_ui_pkt_wait_intr(u32 chip_id);
int hal_ui_pkt_send_msg(u32 chip_id, u32 *msg);

/* The seam in force (never NULL). */
extern const hal_ui_os_ops *g_hal_ui_os;
/* The seam's wait for a chip. */
int hal_ui_usleep(u32 chip_id, u32 usec);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_HAL_UI_H */
