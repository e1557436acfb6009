/*
 * The `port` mode: the commands that set and show the ports of a chip
 * through the port service, and the link-scan words.
 */
#ifndef TIDE_CLI_PORT_H
#define TIDE_CLI_PORT_H

#include "app/diag_shell/shell/cli/cli_core.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Handlers, in the order of their records; cli_cmd_init_port links them. */
i32 cli_mapping_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_mapping_mode_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_interface_type_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_tx_rx_enable_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_power_up_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_power_down_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_autoneg_en_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_autoneg_restart_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_autoneg_ability_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_single_port_status_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_all_port_status_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_speed_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_duplex_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_vlan_pause_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_pause_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_pause_smac_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_frame_length_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_ifg_cfg_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_single_port_counter_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_all_port_counter_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_loop_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_link_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_crc_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_control_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_transmit_path_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_transmit_path_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_reset_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_cfg_info_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_basic_info_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_port_alm_info_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_linkscan_enable_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_linkscan_enable_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_linkscan_mode_set(u32 chip_id, u32 view_mode, i32 argc, char **argv);
i32 cli_linkscan_mode_get(u32 chip_id, u32 view_mode, i32 argc, char **argv);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CLI_PORT_H */
