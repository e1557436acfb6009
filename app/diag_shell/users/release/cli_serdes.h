/*
 * The `serdes` mode: the commands that set and show the SerDes lanes of a
 * chip through the SerDes service.
 */
#ifndef TIDE_CLI_SERDES_H
#define TIDE_CLI_SERDES_H

#include "app/diag_shell/shell/cli/cli_core.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Handlers, in the order of their records; cli_cmd_init_serdes links them. */
i32 cli_serdes_support_freq_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_pll_freq_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_lane_pn_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_pn_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_pre_emphasis_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_pre_emphasis_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_lane_enable_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_enable_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_prbs_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_prbs_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_prbs_error_pkt_insert(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_prbs_check(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_err_counter_clear(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_prbs_invert_enable_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_reset_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_lane_loopback_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_lane_loopback_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_lane_power_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_power_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_los_threshold_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_los_threshold_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_lane_rxadapt_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_rxadapt_sta_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_rxadapt_para_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_rxadapt_para_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_eye_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_reg_dump(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_reg_write(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_reg_read(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_debug_info_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_work_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_sram_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_los_status_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_lock_status_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_8k_clk_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_8k_clk_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_emphasis_preset_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_emphasis_preset_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_serdes_offset_calibrate(u32 chip_id, u32 view_mode, i32 argc, char **argv);
/* The key checks of the commands with words no chip of the family has. */
i32 cli_serdes_pll_freq_set_key_support_check(u32 chip_id, i32 argc, char **argv);
i32 cli_serdes_pre_emphasis_set_key_support_check(u32 chip_id, i32 argc, char **argv);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CLI_SERDES_H */
