// Output of the diagnostic code: to the output hook, or to a file that a
// dump has opened for the chip.  The text is formatted on the heap and
// handed on as plain text.
#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>

#include "csl/common/reg_tab/csl_coverage.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "shared/shr_int.h"

extern "C" {

int g_csl_write_fd[SHR_MAX_CHIPS] = {-1, -1, -1, -1};
i64 g_csl_write_limit_bytes[SHR_MAX_CHIPS];
xsal_mutex_t g_csl_write_file_lock[SHR_MAX_CHIPS];

int csl_output_func(u32 chip_id, u32 to_file, const char *format, ...)
{
    if (to_file == 1 && (chip_id >= SHR_MAX_CHIPS || g_csl_write_fd[chip_id] < 0)) {
        SHR_LOG_DBG(chip_id, SHR_MOD_REG_TAB, "chip%d no file open.\n", (int)chip_id);
        return SHR_E_FAIL;
    }
    va_list args;
    va_start(args, format);
    u32 n = 0;
    char *buf = shr_vformat_alloc(1024, "csl_output", SHR_MOD_REG_TAB, &n, format, args);
    va_end(args);
    if (buf == nullptr) {
        return 0;
    }
    const int len = static_cast<int>(n);
    int rc = len;
    if (to_file == 0) {
        shr_debug_base_cli_printf_func_get()("%s", buf);
    } else if (g_csl_write_limit_bytes[chip_id] >= 0 && g_csl_write_limit_bytes[chip_id] < len) {
        rc = SHR_E_FULL;
    } else {
        xsal_mutex_lock(g_csl_write_file_lock[chip_id]);
        const ssize_t written = write(g_csl_write_fd[chip_id], buf, static_cast<size_t>(len));
        if (written > 0 && g_csl_write_limit_bytes[chip_id] >= 0) {
            g_csl_write_limit_bytes[chip_id] -= written;
        }
        xsal_mutex_unlock(g_csl_write_file_lock[chip_id]);
        rc = written == len ? len : SHR_E_FAIL;
    }
    xsal_mem_free(buf);
    return rc;
}

int csl_write_file_lock_init(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (g_csl_write_file_lock[chip_id] == nullptr) {
        g_csl_write_file_lock[chip_id] = xsal_mutex_create("write file lock");
    }
    if (g_csl_write_file_lock[chip_id] == nullptr) {
        return SHR_E_MEMORY;
    }
    return _csl_coverage_state_init(chip_id);
}

int csl_write_file_lock_deinit(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    _csl_coverage_state_deinit(chip_id);
    if (g_csl_write_fd[chip_id] >= 0) {
        close(g_csl_write_fd[chip_id]);
        g_csl_write_fd[chip_id] = -1;
    }
    if (g_csl_write_file_lock[chip_id] != nullptr) {
        xsal_mutex_destroy(g_csl_write_file_lock[chip_id]);
        g_csl_write_file_lock[chip_id] = nullptr;
    }
    return 0;
}

// Holds the file lock from the open to the close: a dump is one unit, and
// another thread's dump waits for it.
int csl_write_file_open(u32 chip_id, const char *path, u32 limit)
{
    if (chip_id >= SHR_MAX_CHIPS || path == nullptr) {
        return SHR_E_PARAM;
    }
    if (g_csl_write_file_lock[chip_id] == nullptr) {
        return SHR_E_INIT;
    }
    xsal_mutex_lock(g_csl_write_file_lock[chip_id]);
    if (g_csl_write_fd[chip_id] >= 0) {
        // The same thread opened it before (the mutex is recursive).
        xsal_mutex_unlock(g_csl_write_file_lock[chip_id]);
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "write file pipe already in use!\n");
        return 0;
    }
    const int fd = open(path, O_RDWR | O_CREAT | O_APPEND, 0644);
    if (fd < 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_REG_TAB, "open %s file error!\n", path);
        xsal_mutex_unlock(g_csl_write_file_lock[chip_id]);
        return SHR_E_FAIL;
    }
    g_csl_write_fd[chip_id] = fd;
    g_csl_write_limit_bytes[chip_id] = limit == 0xFFFFFFFFu ? -1 : static_cast<i64>(limit);
    return 0;
}

int csl_write_file_close(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS || g_csl_write_fd[chip_id] < 0) {
        return 0;
    }
    close(g_csl_write_fd[chip_id]);
    g_csl_write_fd[chip_id] = -1;
    g_csl_write_limit_bytes[chip_id] = 0;
    xsal_mutex_unlock(g_csl_write_file_lock[chip_id]);
    return 0;
}

} // extern "C"
