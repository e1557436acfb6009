// The coverage log: while it runs for a chip, every LSW register access
// adds a line to a file.  A file holds a fixed number of lines; then it is
// closed (and uploaded when asked) and the next one is opened, up to a
// limit of files per run.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <tide/property.h>

#include "csl/common/reg_tab/csl_coverage.h"
#include "csl/common/reg_tab/csl_reg.h"
#include "sal/linux_um/xsal_int.h"

extern "C" {

xsal_file_t g_csl_log_coverage_file[SHR_MAX_CHIPS];
u32 g_csl_log_coverage_line[SHR_MAX_CHIPS];
char g_csl_log_coverage_name[SHR_MAX_CHIPS][CSL_COVERAGE_NAME_LEN];
char g_csl_save_file_name[SHR_MAX_CHIPS][CSL_COVERAGE_NAME_LEN];
u32 g_csl_log_file_count[SHR_MAX_CHIPS];
char *g_csl_log_coverage_arr[SHR_MAX_CHIPS][CSL_COVERAGE_FILES_MAX];
u32 g_csl_auto_upload_log_flag[SHR_MAX_CHIPS];
xsal_mutex_t g_csl_log_coverage_lock[SHR_MAX_CHIPS];
char g_csl_localip[CSL_COVERAGE_LOCALIP_LEN] = "0_0_0_0";

u32 g_csl_log_coverage_line_max = CSL_COVERAGE_LINES_PER_FILE;
u32 g_csl_log_coverage_wait_us = 500000;

} // extern "C"

namespace {

// Holds a chip's coverage lock for a scope.
class CoverageLock {
public:
    explicit CoverageLock(u32 chip) : m_(g_csl_log_coverage_lock[chip]) { xsal_mutex_lock(m_); }
    ~CoverageLock() { xsal_mutex_unlock(m_); }
    CoverageLock(const CoverageLock &) = delete;
    CoverageLock &operator=(const CoverageLock &) = delete;

private:
    xsal_mutex_t m_;
};

// A fresh name into the chip's current name, and the file opened.
int _csl_coverage_file_new(u32 chip)
{
    std::snprintf(g_csl_log_coverage_name[chip], CSL_COVERAGE_NAME_LEN, "sdk_%s_%010d.log", g_csl_localip,
                  static_cast<int>(xsal_rand() & 0x7FFFFFFF));
    g_csl_log_coverage_file[chip] = xsal_file_open(g_csl_log_coverage_name[chip], O_RDWR | O_CREAT | O_TRUNC);
    if (g_csl_log_coverage_file[chip] == nullptr) {
        SHR_LOG_ERR(chip, SHR_MOD_REG_TAB, "Could not open %s !!!\n", g_csl_log_coverage_name[chip]);
        return SHR_E_FAIL;
    }
    return 0;
}

// Keeps the current name in the list of this run's files.
int _csl_coverage_name_record(u32 chip, const char *tag)
{
    const u32 slot = g_csl_log_file_count[chip];
    if (slot >= CSL_COVERAGE_FILES_MAX) {
        return SHR_E_FULL;
    }
    char *name = static_cast<char *>(xsal_malloc(CSL_COVERAGE_NAME_LEN, tag, SHR_MOD_REG_TAB));
    if (name == nullptr) {
        return SHR_E_MEMORY;
    }
    std::memcpy(name, g_csl_log_coverage_name[chip], CSL_COVERAGE_NAME_LEN);
    g_csl_log_coverage_arr[chip][slot] = name;
    g_csl_log_file_count[chip] = slot + 1;
    SHR_LOG_DBG(chip, SHR_MOD_REG_TAB, "[open]file_count: %d : %s\n", (int)g_csl_log_file_count[chip], name);
    return 0;
}

void _csl_coverage_names_free(u32 chip, char (*names)[CSL_COVERAGE_NAME_LEN])
{
    for (u32 i = 0; i < CSL_COVERAGE_FILES_MAX; i++) {
        char *&slot = g_csl_log_coverage_arr[chip][i];
        if (slot != nullptr && names != nullptr && i < g_csl_log_file_count[chip]) {
            std::memcpy(names[i], slot, CSL_COVERAGE_NAME_LEN);
        }
        xsal_mem_free(slot);
        slot = nullptr;
    }
}

void _csl_coverage_close(u32 chip)
{
    xsal_file_close(g_csl_log_coverage_file[chip]);
    g_csl_log_coverage_file[chip] = nullptr;
    std::memcpy(g_csl_save_file_name[chip], g_csl_log_coverage_name[chip], CSL_COVERAGE_NAME_LEN);
}

// The file is full: close it, upload it if asked, and go on in a new one
// unless the run has had its share of files.
int _csl_coverage_rollover(u32 chip)
{
    _csl_coverage_close(chip);
    if (g_csl_auto_upload_log_flag[chip] == 1 && csl_upload_log_file(g_csl_save_file_name[chip]) == 0) {
        char cmd[CSL_COVERAGE_NAME_LEN + 16];
        std::snprintf(cmd, sizeof(cmd), "rm -f %s\n", g_csl_save_file_name[chip]);
        if (std::system(cmd) != 0) {
            return SHR_E_FAIL;
        }
    }
    g_csl_log_coverage_line[chip] = 0;
    g_csl_log_coverage_flag[chip] = 0;
    if (g_csl_log_file_count[chip] >= CSL_COVERAGE_FILES_MAX) {
        SHR_LOG_ERR(chip, SHR_MOD_REG_TAB, "Log file count is over %d, please disable !!!\n",
                    (int)CSL_COVERAGE_FILES_MAX - 1);
        return SHR_E_FULL;
    }
    xsal_usleep(g_csl_log_coverage_wait_us);
    int rc = _csl_coverage_file_new(chip);
    if (rc != 0) {
        return rc;
    }
    SHR_LOG_INF(chip, SHR_MOD_REG_TAB, "g_csl_log_coverage_name %s\n", g_csl_log_coverage_name[chip]);
    g_csl_log_coverage_flag[chip] = 1;
    rc = _csl_coverage_name_record(chip, "g_log_coverage_arr_rw");
    xsal_usleep(g_csl_log_coverage_wait_us);
    return rc;
}

} // namespace

extern "C" {

int _csl_coverage_state_init(u32 chip)
{
    if (chip >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    if (g_csl_log_coverage_lock[chip] == nullptr) {
        g_csl_log_coverage_lock[chip] = xsal_mutex_create("log coverage");
        if (g_csl_log_coverage_lock[chip] == nullptr) {
            return SHR_E_MEMORY;
        }
    }
    return 0;
}

void _csl_coverage_state_deinit(u32 chip)
{
    if (chip >= SHR_MAX_CHIPS) {
        return;
    }
    g_csl_log_coverage_flag[chip] = 0;
    if (g_csl_log_coverage_file[chip] != nullptr) {
        _csl_coverage_close(chip);
    }
    _csl_coverage_names_free(chip, nullptr);
    g_csl_log_coverage_line[chip] = 0;
    g_csl_log_file_count[chip] = 0;
    g_csl_auto_upload_log_flag[chip] = 0;
    if (g_csl_log_coverage_lock[chip] != nullptr) {
        xsal_mutex_destroy(g_csl_log_coverage_lock[chip]);
        g_csl_log_coverage_lock[chip] = nullptr;
    }
}

int _csl_coverage_read_write(u32 chip, u32 addr, u64 data, const char *word)
{
    if (chip >= SHR_MAX_CHIPS || g_csl_log_coverage_lock[chip] == nullptr) {
        return SHR_E_PARAM;
    }
    CoverageLock lock(chip);
    if (g_csl_log_coverage_file[chip] == nullptr) {
        SHR_LOG_DBG(chip, SHR_MOD_REG_TAB, "coverage file is NULL !!!\n");
        return SHR_E_NULL_PTR;
    }
    xsal_file_write_log(g_csl_log_coverage_file[chip], "##%-5s 0x%08x = 0x%lx\n", word, addr, (unsigned long)data);
    xsal_file_seek(g_csl_log_coverage_file[chip], 0, XSAL_SEEK_END);
    if (++g_csl_log_coverage_line[chip] >= g_csl_log_coverage_line_max) {
        return _csl_coverage_rollover(chip);
    }
    return 0;
}

int csl_coverage_enable_disable(u32 chip, u32 enable, u32 *count, char (*names)[CSL_COVERAGE_NAME_LEN])
{
    if (chip >= SHR_MAX_CHIPS || g_csl_log_coverage_lock[chip] == nullptr) {
        return SHR_E_PARAM;
    }
    CoverageLock lock(chip);
    if (enable != 0) {
        if (g_csl_log_coverage_flag[chip] == 1) {
            SHR_LOG_ERR(chip, SHR_MOD_REG_TAB, "Log file has open, don't open repeatly !!!\n");
            return SHR_E_EXISTS;
        }
        // Names of an earlier run that was cut off by the file limit go.
        _csl_coverage_names_free(chip, nullptr);
        g_csl_log_file_count[chip] = 0;
        if (g_csl_log_coverage_file[chip] != nullptr) {
            SHR_LOG_ERR(chip, SHR_MOD_REG_TAB, "[open]Log file has open, %p !!!\n",
                        static_cast<void *>(g_csl_log_coverage_file[chip]));
            return SHR_E_INIT;
        }
        const int rc = _csl_coverage_file_new(chip);
        if (rc != 0) {
            return rc;
        }
        SHR_LOG_INF(chip, SHR_MOD_REG_TAB, "coverage name: %s\n", g_csl_log_coverage_name[chip]);
        g_csl_log_coverage_flag[chip] = 1;
        return _csl_coverage_name_record(chip, "g_log_coverage_arr_en_dis");
    }
    if (g_csl_log_coverage_flag[chip] == 0) {
        SHR_LOG_ERR(chip, SHR_MOD_REG_TAB, "Log file has not open !!!\n");
        return SHR_E_NOT_FOUND;
    }
    g_csl_log_coverage_flag[chip] = 0;
    _csl_coverage_close(chip);
    shr_debug_base_cli_printf_func_get()("coverage name: %s\n", g_csl_log_coverage_name[chip]);
    g_csl_log_coverage_line[chip] = 0;
    if (count != nullptr) {
        *count = g_csl_log_file_count[chip];
    }
    _csl_coverage_names_free(chip, names);
    g_csl_log_file_count[chip] = 0;
    return 0;
}

int csl_coverage_localip_set(const char *ip, u32 size)
{
    if (ip == nullptr || size < CSL_COVERAGE_LOCALIP_LEN) {
        return SHR_E_PARAM;
    }
    xsal_strncpy_s(g_csl_localip, sizeof(g_csl_localip), ip, sizeof(g_csl_localip) - 1);
    return 0;
}

int csl_coverage_upload_log_flag_set(u32 chip, u32 flag)
{
    if (chip >= SHR_MAX_CHIPS) {
        return SHR_E_PARAM;
    }
    g_csl_auto_upload_log_flag[chip] = flag;
    return 0;
}

int csl_coverage_save_filename_get(u32 chip, char *buffer, u32 size)
{
    if (chip >= SHR_MAX_CHIPS || buffer == nullptr || size < CSL_COVERAGE_NAME_LEN) {
        return SHR_E_PARAM;
    }
    std::memcpy(buffer, g_csl_save_file_name[chip], CSL_COVERAGE_NAME_LEN);
    return 0;
}

int csl_upload_log_file(const char *file)
{
    if (file == nullptr) {
        return SHR_E_PARAM;
    }
    static constexpr struct {
        const char *name;
        const char *missing;
    } kEnv[] = {
        {"ftp_upload_ip", "Error! get ftp_upload_ip env fail!\n"},
        {"ftp_upload_username", "Error! get ftp_upload_username env fail!\n"},
        {"ftp_upload_password", "Error! get ftp_upload_password env fail!\n"},
    };
    const char *value[3];
    for (size_t i = 0; i < 3; i++) {
        value[i] = std::getenv(kEnv[i].name);
        if (value[i] == nullptr) {
            SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_REG_TAB, "%s", kEnv[i].missing);
            return SHR_E_NOT_FOUND;
        }
    }
    // The tools run under a time limit: the caller may hold the coverage
    // lock, and a server that never answers must not stall register access.
    char cmd[CSL_UPLOAD_CMD_LEN];
    int n = std::snprintf(cmd, sizeof(cmd), "timeout %u ftpput -u %s -p %s %s %s %s >/dev/null 2>&1",
                          CSL_UPLOAD_TIMEOUT_S, value[1], value[2], value[0], file, file);
    if (n < 0 || static_cast<size_t>(n) >= sizeof(cmd)) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_REG_TAB, "upload command for %s too long\n", file);
        return SHR_E_FULL;
    }
    if (std::system(cmd) != 0) {
        n = std::snprintf(cmd, sizeof(cmd), "timeout %u tftp -r %s -p %s >/dev/null 2>&1", CSL_UPLOAD_TIMEOUT_S,
                          file, value[0]);
        if (n < 0 || static_cast<size_t>(n) >= sizeof(cmd) || std::system(cmd) != 0) {
            return SHR_E_FAIL;
        }
    }
    // The password is not left readable in the process's memory: its text
    // in the environment is overwritten with zeros.
    std::memset(const_cast<char *>(value[2]), 0, std::strlen(value[2]));
    return 0;
}

} // extern "C"
