// The OS seam of the back end: the calls by which the HAL reaches the
// kernel driver and waits for a chip.  The C library's by default; a
// simulated device installs its own.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "hal/linux/linux_haui_um/hal_ui.h"

static int _libc_open(const char *path, int flags)
{
    return open(path, flags);
}

static int _libc_ioctl(int fd, unsigned long request, void *arg)
{
    return ioctl(fd, request, arg);
}

// A real chip settles in real time.
static int _libc_usleep(uint32_t chip_id, uint32_t usec)
{
    (void)chip_id;
    xsal_usleep(usec);
    return 0;
}

static const hal_ui_os_ops g_hal_ui_libc_os = {
    .open = _libc_open,
    .close = close,
    .ioctl = _libc_ioctl,
    .mmap = mmap,
    .munmap = munmap,
    .usleep = _libc_usleep,
};

static hal_ui_os_ops g_hal_ui_custom_os;

extern "C" {

const hal_ui_os_ops *g_hal_ui_os = &g_hal_ui_libc_os;

void hal_ui_os_ops_set(const hal_ui_os_ops *ops)
{
    if (ops == nullptr) {
        g_hal_ui_os = &g_hal_ui_libc_os;
        return;
    }
    // Empty slots of the caller's table keep the C library's call.
    g_hal_ui_custom_os.open = ops->open != nullptr ? ops->open : g_hal_ui_libc_os.open;
    g_hal_ui_custom_os.close = ops->close != nullptr ? ops->close : g_hal_ui_libc_os.close;
    g_hal_ui_custom_os.ioctl = ops->ioctl != nullptr ? ops->ioctl : g_hal_ui_libc_os.ioctl;
    g_hal_ui_custom_os.mmap = ops->mmap != nullptr ? ops->mmap : g_hal_ui_libc_os.mmap;
    g_hal_ui_custom_os.munmap = ops->munmap != nullptr ? ops->munmap : g_hal_ui_libc_os.munmap;
    g_hal_ui_custom_os.usleep = ops->usleep != nullptr ? ops->usleep : g_hal_ui_libc_os.usleep;
    g_hal_ui_os = &g_hal_ui_custom_os;
}

const hal_ui_os_ops *hal_ui_os_ops_get(void)
{
    return g_hal_ui_os;
}

int hal_ui_usleep(u32 chip_id, u32 usec)
{
    return g_hal_ui_os->usleep(chip_id, usec);
}

} // extern "C"
