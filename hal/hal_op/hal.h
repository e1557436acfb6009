/*
 * The HAL: the chip-independent front (hal_*) and the operations tables
 * that the back end fills (hal_ui_*).
 */
#ifndef TIDE_HAL_H
#define TIDE_HAL_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* BAR ids of register accesses. */
#define HAL_BAR0 0u
#define HAL_BAR_AXI 3u
#define HAL_BAR_LSW 4u
#define HAL_BAR_COUNT 6u

/* Bus types reported by the driver. */
#define HAL_BUS_MASTER 0u
#define HAL_BUS_SLAVE 1u
#define HAL_BUS_SPI 2u

/* Register slots.  The 16-bit slots carry their value in the low half of a
 * 32-bit word, so that one register hook of the application serves the 16
 * and the 32-bit accesses alike. */
typedef int (*hal_reg_read32_f)(u32 chip_id, u32 bar, u32 addr, u32 *value);
typedef int (*hal_reg_write32_f)(u32 chip_id, u32 bar, u32 addr, u32 value);
typedef int (*hal_reg_read64_f)(u32 chip_id, u32 bar, u32 addr, u64 *value);
typedef int (*hal_reg_write64_f)(u32 chip_id, u32 bar, u32 addr, u64 value);
/* Any register function, as given to hal_reg_operate_func_register. */
typedef void (*hal_reg_func_t)(void);

/* The 32 slots of a chip's operations table. */
typedef struct hal_hw_ops {
    int (*chip_num_get)(u32 *count);                                                       /* 0 */
    int (*chip_info_get)(u32 chip_id, u32 *vendor_id, u32 *device_id, u32 *byte_order, u32 *revision); /* 1 */
    int (*iomem_get)(u32 chip_id, u64 ranges[9]);                                          /* 2 */
    int (*chip_mem_info_get)(u32 chip_id, u32 bar, u64 info[3]);                          /* 3 */
    int (*drv_chip_type_get)(u32 chip_id, u32 *bus_type);                                  /* 4 */
    int (*pci_config_read)(u32 chip_id, u32 addr, u32 *value);                             /* 5 */
    int (*pci_config_write)(u32 chip_id, u32 addr, u32 value);                             /* 6 */
    hal_reg_read32_f reg_read_16;                                                          /* 7 */
    hal_reg_write32_f reg_write_16;                                                        /* 8 */
    hal_reg_read32_f reg_read_32;                                                          /* 9 */
    hal_reg_write32_f reg_write_32;                                                        /* 10 */
    hal_reg_read64_f reg_read_64;                                                          /* 11 */
    hal_reg_write64_f reg_write_64;                                                        /* 12 */
    int (*dma_alloc)(u32 chip_id, u64 *vaddr, u64 *paddr, u32 size, u64 *aux);             /* 13 */
    int (*dma_free)(u32 chip_id, u32 reserved, u64 vaddr);                                 /* 14 */
    int (*dma_free_all)(u32 chip_id);                                                      /* 15 */
    void *rsv16, *rsv17;                                                                   /* 16, 17 */
    int (*irq_wait)(u32 chip_id);                                                          /* 18 */
    int (*irq_enable)(u32 chip_id, u64 mask);                                              /* 19 */
    int (*irq_disable)(u32 chip_id);                                                       /* 20 */
    int (*irq_exit)(u32 chip_id);                                                          /* 21 */
    void *rsv22, *rsv23, *rsv24, *rsv25;                                                   /* 22 to 25 */
    int (*vp_conf_init)(u32 chip_id, const u64 words[3]);                                  /* 26 */
    void *rsv27, *rsv28, *rsv29, *rsv30;                                                   /* 27 to 30 */
    int (*subsection_bar_vaddr_get)(u32 chip_id, u32 addr, u64 *vaddr, u64 *base);         /* 31 */
} hal_hw_ops;

/* The 7 slots of a chip's packet table. */
typedef struct hal_pkt_ops {
    int (*irq_open)(u32 chip_id);           /* 0 */
    int (*irq_disable)(u32 chip_id);        /* 1 */
    int (*wait_intr)(u32 chip_id);          /* 2 */
    void *rsv3, *rsv4;                      /* 3, 4 */
    int (*send_msg)(u32 chip_id, u32 *msg); /* 5 */
    void *rsv6;                             /* 6 */
} hal_pkt_ops;

extern hal_hw_ops *g_hw_ops[SHR_MAX_CHIPS];
extern hal_pkt_ops *g_hw_pkt_ops[SHR_MAX_CHIPS];

/* ---- front ------------------------------------------------------------ */
int hal_init(void);
int hal_deinit(void);
int hal_chip_num_get(u32 *count);
int hal_chip_mem_init(u32 chip_id);
int hal_chip_mem_deinit(u32 chip_id);
int hal_ops_attach(u32 chip_id);
int hal_ops_dettach(u32 chip_id);
int hal_reg_operate_func_register(u32 chip_id, hal_reg_func_t fn, u32 which);

int hal_reg_read_16(u32 chip_id, u32 bar, u32 addr, u16 *value);
int hal_reg_write_16(u32 chip_id, u32 bar, u32 addr, u16 value);
int hal_reg_read_32(u32 chip_id, u32 bar, u32 addr, u32 *value);
int hal_reg_write_32(u32 chip_id, u32 bar, u32 addr, u32 value);
int hal_reg_read_64(u32 chip_id, u32 bar, u32 addr, u64 *value);
int hal_reg_write_64(u32 chip_id, u32 bar, u32 addr, u64 value);

int hal_probe_chip_info_get(u32 chip_id, u32 *vendor_id, u32 *device_id, u32 *byte_order, u32 *revision);
int hal_get_drv_chip_type(u32 chip_id, u32 *bus_type);
int hal_get_chip_mem_info(u32 chip_id, u32 bar, u64 info[3]);
int hal_pci_conf_read(u32 chip_id, u32 addr, u32 *value);
int hal_pci_conf_write(u32 chip_id, u32 addr, u32 value);
int hal_irq_wait(u32 chip_id);
int hal_irq_enable(u32 chip_id, u64 mask);
int hal_irq_disable(u32 chip_id);
int hal_irq_exit(u32 chip_id);
int hal_vp_conf_init(u32 chip_id, const u64 words[3]);
int hal_subsection_bar_vaddr_get(u32 chip_id, u32 addr, u64 *vaddr, u64 *base);
int hal_pkt_wait_intr(u32 chip_id);
/* A driver's wait for the chip to settle: real time on a chip, the
 * device's own time on a simulated one (the OS seam decides). */
int hal_usleep(u32 chip_id, u32 usec);
int hal_pkt_send_msg(u32 chip_id, u32 *msg);

int hal_dma_alloc(u32 chip_id, u64 *vaddr, u64 *paddr, u32 size, u64 *aux);
int hal_dma_free(u32 chip_id, u32 reserved, u64 vaddr);
int hal_dma_free_all(u32 chip_id);

int hal_get_chip_id_by_bus_number(u16 bus, u32 *chip_id);
int hal_get_chipid_busnum_mapping(u16 *bus_num_arr, u32 *chip_id_arr, u32 *valid_num);
int hal_sim_chip_type_set(u32 chip_id, u32 type);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_HAL_H */
