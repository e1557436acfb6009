/*
 * The library's command records: the init list that links them, the
 * commands that every mode has, the lock table of the command families.
 */
#ifndef TIDE_CLI_INIT_H
#define TIDE_CLI_INIT_H

#include "app/diag_shell/shell/cli/cli_core.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Entries of g_cli_lock, per chip. */
#define CLI_LOCK_L2 0u
#define CLI_LOCK_L3 1u
#define CLI_LOCK_PA 2u
#define CLI_LOCK_DOS 3u
#define CLI_LOCK_STORM 4u
#define CLI_LOCK_SRV6 5u
#define CLI_LOCK_TRUNK 6u
#define CLI_LOCK_HASH 7u
#define CLI_LOCK_COUNT 8u

extern xsal_mutex_t g_cli_lock[SHR_MAX_CHIPS][CLI_LOCK_COUNT];
extern const char *const g_cli_lock_desc[CLI_LOCK_COUNT];

/* Links every command record of the library onto cli_cmd_init_list, once
 * per process. */
void cli_cmd_init_all(void);
/* The commands of every mode: the mode-switching words, `exit` and
 * `chip-id`. */
void cli_cmd_init_view(void);

/* Places `count` command records in `mode` (priority 15, no flags) through
 * their items and links them onto the init list. */
void cli_cmd_descs_link(cli_cmd_desc *descs, cli_cmd_item *items, u32 count, u32 mode);
/* The commands of the L2 address service, in mode "l2". */
void cli_cmd_init_l2(void);
/* The commands of the chip model, in mode "sim". */
void cli_cmd_init_sim(void);

/* Handler of `chip-id <0-16>`. */
i32 cli_glb_chip_id_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);

/* Creates the lock table for the chips of the registry; 0 or -17. */
i32 cli_user_init(void);
void cli_user_deinit(void);
/* 0, -4 for a chip or index out of range, -17 for a lock not created. */
i32 cli_lock_take(u32 chip_id, u32 index, const char *file, i32 line);
i32 cli_lock_give(u32 chip_id, u32 index, const char *file, i32 line);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CLI_INIT_H */
