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

/* The command families, in the order of the init list. */
void cli_cmd_init_l2(void);
/* The `hash` commands of mode `base`. */
void cli_cmd_init_base_hash(void);
void cli_cmd_init_acl(void);
void cli_cmd_init_port(void);
void cli_cmd_init_serdes(void);
void cli_cmd_init_config(void);
void cli_cmd_init_common(void);
void cli_cmd_init_base(void);
void cli_cmd_init_vlan(void);

/* Handlers of mode `config`. */
i32 cli_terminal_monitor_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
/* Handlers of mode `common`. */
i32 cli_common_show_chip(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_key_check(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_key_check_show(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_debug_log_enable(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_debug_log_disable(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_debug_log_show(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_sdk_set_init(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_sdk_set_deinit(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_chip_id_by_bus_number_display(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_common_debug_show_mutex(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_chip_version_show(u32 chip_id, u32 view_mode, i32 argc, char **argv);

/* Handlers of mode `base`. */
i32 cli_base_tcam_tab_show_summary(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_tcam_tab_key_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_tcam_tab_mask_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_tcam_tab_ad_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_tcam_tab_write(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_tcam_tab_read(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_tcam_tab_clear(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_tcam_mgmt_display(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_base_plane_check(u32 chip_id, u32 view_mode, i32 argc, char **argv);

/* The replication engine's commands of mode `debug`. */
void cli_cmd_init_debug_reef_mcc(void);
/* Mode `interrupt`, and the interrupt commands of mode `debug`. */
void cli_cmd_init_interrupt(void);
void cli_cmd_init_qos(void);
void cli_cmd_init_debug_interrupt(void);
/* Mode `counter`. */
void cli_cmd_init_counter(void);
/* Mode `macsec`. */
void cli_cmd_init_macsec(void);

/* The commands of the chip model, in mode "sim". */
void cli_cmd_init_sim(void);

/* Handler of `chip-id <0-16>`. */
i32 cli_glb_chip_id_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);

/* The lock under which lines run one at a time (recursive). */
void cli_cmd_exec_lock(void);
void cli_cmd_exec_unlock(void);
/* Builds the tree of the library's records, or frees it, under that
 * lock; 0 or -1. */
i32 cli_cmd_tree_build(void);
void cli_cmd_tree_release(void);

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
