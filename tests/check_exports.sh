#!/bin/sh
# The shared library exports the public API under C names, and keeps the
# layers below it to itself.
#   check_exports.sh <libtide_sdk.so>
set -eu
lib=$1
syms=$(nm -D --defined-only "$lib" | awk '{print $3}')
fail=0
for want in init_api_base_software_process init_api_software_process init_api_hardware_process \
    deinit_api_software_process base_api_reg_set_by_addr base_api_reg_get_by_addr base_api_control_get \
    port_api_config_get port_api_enable_get port_api_reset \
    l2_api_addr_add l2_api_addr_get l2_api_addr_del l2_api_mac_msg_parse l2_api_protocol_traverse \
    acl_api_group_create acl_api_entry_install acl_api_global_cfg_get \
    vlan_api_create vlan_api_port_set vlan_api_port_control_set vlan_api_pvlan_enable vlan_api_pvlan_port_get \
    macsec_api_secure_assoc_create macsec_api_event_get \
    l3_api_iif_create pkt_api_init pkt_api_deinit shr_errmsg shr_chip_valid_get xsal_malloc \
    hal_ui_os_ops_set cli_cmd_execute cli_ctree_getprompt cli_server_main cli_server_wait cli_server_exit \
    cli_server_socket_path_set cli_server_add_init_cmd cli_output_show output_show_console cli_portmap_register \
    cli_shell_mode_set; do
    if ! echo "$syms" | grep -qx "$want"; then
        echo "missing export: $want"
        fail=1
    fi
done
for hidden in hal_ui_reg_read_32 csl_reg_read32 dpl_reef_soft_init dpl_lock_take cli_cmdstr_parse thread_main \
    dpl_reef_port_enable_set csl_port_valid_check cmd_hash_find msg_send pack_struct cli_pport_to_lport \
    dpl_reef_l2_addr_add csl_reef_hash_l2_mac_add csl_reef_hash_l2_mac_appointed_insert \
    dpl_reef_acl_tcam_alloc_entry dpl_reef_acl_group_create dpl_reef_vlan_create dpl_reef_vlan_ingress_control_set \
    dpl_reef_macsec_secure_assoc_create g_csl_macsec_atolreef; do
    if echo "$syms" | grep -qx "$hidden"; then
        echo "internal symbol exported: $hidden"
        fail=1
    fi
done
mangled=$(echo "$syms" | grep '^_Z' || true)
if [ -n "$mangled" ]; then
    echo "C++ names exported:"
    echo "$mangled"
    fail=1
fi
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
case "$soname" in
libtide_sdk.so.[0-9]*) ;;
*) echo "no versioned soname: '$soname'"; fail=1 ;;
esac
exit $fail
