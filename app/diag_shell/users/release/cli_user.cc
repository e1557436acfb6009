// g_cli_lock: per chip, one mutex for each command family whose commands
// read, change and write a record of the chip.
#include "app/diag_shell/users/release/cli_init.h"

namespace {

xsal_mutex_t _cli_lock_get(u32 chip_id, u32 index, i32 *status)
{
    if (chip_id >= SHR_MAX_CHIPS || index >= CLI_LOCK_COUNT) {
        *status = SHR_E_PARAM;
        return nullptr;
    }
    *status = g_cli_lock[chip_id][index] != nullptr ? SHR_E_NONE : SHR_E_INIT;
    return g_cli_lock[chip_id][index];
}

} // namespace

extern "C" {

xsal_mutex_t g_cli_lock[SHR_MAX_CHIPS][CLI_LOCK_COUNT];
const char *const g_cli_lock_desc[CLI_LOCK_COUNT] = {"cli_l2",   "cli_l3",   "cli_pa",    "cli_dos",
                                                     "cli_storm", "cli_srv6", "cli_trunk", "cli_hash"};

i32 cli_user_init(void)
{
    const u32 chips = shr_chip_cur_num_get();
    for (u32 chip = 0; chip < chips && chip < SHR_MAX_CHIPS; chip++) {
        for (u32 i = 0; i < CLI_LOCK_COUNT; i++) {
            if (g_cli_lock[chip][i] != nullptr) {
                continue;
            }
            g_cli_lock[chip][i] = xsal_mutex_create(g_cli_lock_desc[i]);
            if (g_cli_lock[chip][i] == nullptr) {
                SHR_LOG_ERR(chip, SHR_MOD_CLI, "create %s lock failed\n", g_cli_lock_desc[i]);
                return SHR_E_INIT;
            }
        }
    }
    return SHR_E_NONE;
}

void cli_user_deinit(void)
{
    for (auto &chip : g_cli_lock) {
        for (xsal_mutex_t &m : chip) {
            if (m != nullptr) {
                xsal_mutex_destroy(m);
                m = nullptr;
            }
        }
    }
}

i32 cli_lock_take(u32 chip_id, u32 index, const char *file, i32 line)
{
    i32 status = SHR_E_NONE;
    xsal_mutex_t m = _cli_lock_get(chip_id, index, &status);
    return m != nullptr ? (xsal_mutex_lock_(m, file, line) == 0 ? SHR_E_NONE : SHR_E_FAIL) : status;
}

i32 cli_lock_give(u32 chip_id, u32 index, const char *file, i32 line)
{
    i32 status = SHR_E_NONE;
    xsal_mutex_t m = _cli_lock_get(chip_id, index, &status);
    return m != nullptr ? (xsal_mutex_unlock_(m, file, line) == 0 ? SHR_E_NONE : SHR_E_FAIL) : status;
}

} // extern "C"
