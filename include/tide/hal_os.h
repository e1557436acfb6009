/*
 * tide: the OS seam of the HAL back end.
 *
 * The HAL reaches the kernel driver only through these calls: open the
 * device nodes, pass command records with ioctl, map and unmap the chip's
 * apertures and DMA blocks, and wait for a chip to settle.  By default they
 * are the C library's (the wait is the OS layer's xsal_usleep).  A
 * simulated device (such as the chip model of libtide_sim) installs its
 * own table before init_api_base_software_process and so stands where the
 * kernel driver would; its wait may take the time on its own clock.
 */
#ifndef TIDE_HAL_OS_H
#define TIDE_HAL_OS_H

#include <sys/types.h>
#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

typedef struct hal_ui_os_ops {
    int (*open)(const char *path, int flags);
    int (*close)(int fd);
    int (*ioctl)(int fd, unsigned long request, void *arg);
    void *(*mmap)(void *addr, size_t length, int prot, int flags, int fd, off_t offset);
    int (*munmap)(void *addr, size_t length);
    /* A driver waits `usec` microseconds for chip `chip_id` to settle (a
     * PLL to ramp, a lane to calibrate); 0. */
    int (*usleep)(uint32_t chip_id, uint32_t usec);
} hal_ui_os_ops;

/* Installs a seam; NULL puts the C library's calls back.  The table is
 * copied.  Must not be called while device nodes are open. */
TIDE_API void hal_ui_os_ops_set(const hal_ui_os_ops *ops);
/* The seam in force. */
TIDE_API const hal_ui_os_ops *hal_ui_os_ops_get(void);

/* The command record passed with every command on both device nodes. */
typedef struct hal_devio {
    uint32_t chip_id;
    int32_t result;
    uint32_t reserved0;
    uint32_t arg0;
    uint32_t arg1;
    uint32_t reserved1;
    uint8_t data[96];
} hal_devio;

/* Commands of /dev/hal_drv. */
#define HAL_CMD_CHIP_NUM_GET 0x4C01u
#define HAL_CMD_PCI_CONF_READ 0x4C05u
#define HAL_CMD_PCI_CONF_WRITE 0x4C06u
#define HAL_CMD_DMA_ALLOC 0x4C0Du
#define HAL_CMD_DMA_FREE 0x4C0Eu
#define HAL_CMD_IRQ_WAIT 0x4C11u
#define HAL_CMD_IRQ_ENABLE 0x4C12u
#define HAL_CMD_IRQ_EXIT 0x4C14u
#define HAL_CMD_CHIP_INFO_GET 0x4C15u
#define HAL_CMD_IOMEM_GET 0x4C16u
#define HAL_CMD_VP_CONF_INIT 0x4C18u
#define HAL_CMD_DRV_CHIP_TYPE_GET 0x4C1Au
#define HAL_CMD_CHIP_ID_BY_BUS_GET 0x4C1Bu
#define HAL_CMD_BUS_MAPPING_GET 0x4C1Cu

/* Commands of /dev/hal_cputr. */
#define HAL_PKT_CMD_WAIT_INTR 0x5001u
#define HAL_PKT_CMD_IRQ_OPEN 0x5002u
#define HAL_PKT_CMD_IRQ_DISABLE 0x5003u
#define HAL_PKT_CMD_SEND_MSG 0x5004u

/* Device node paths. */
#define HAL_DEV_DRV "/dev/hal_drv"
#define HAL_DEV_CPUTR "/dev/hal_cputr"

/* Byte offsets inside `data` (the record offset less 24) of the payload
 * words that the commands use. */
#define HAL_DEVIO_U64_OFF40 16u /* u64 at record offset 40 */
#define HAL_DEVIO_U64_OFF48 24u /* u64 at record offset 48 */
#define HAL_DEVIO_BUS_NUMS 0u   /* u16[16] at record offset 24 */
#define HAL_DEVIO_CHIP_IDS 32u  /* u32[16] at record offset 56 */
#define HAL_DEVIO_MAP_MAX 16u

TIDE_END_DECLS

#endif /* TIDE_HAL_OS_H */
