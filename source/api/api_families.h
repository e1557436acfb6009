/*
 * The operations of every real family, in slot order, and their family
 * tables.  A list entry is OP(name, (parameters, chip_id first),
 * (arguments)); the exported function is `<module>_api_<name>`.
 *
 * This header is the contract between source/api and the policy layer:
 * the api layer defines the exported functions and the `<module>_dispatch`
 * arrays, the policy layer fills `reef_<module>_dispatch`.
 */
#ifndef TIDE_API_FAMILIES_H
#define TIDE_API_FAMILIES_H

#include <tide/acl.h>
#include <tide/base.h>
#include <tide/counter.h>
#include <tide/init.h>
#include <tide/interrupt.h>
#include <tide/l2.h>
#include <tide/macsec.h>
#include <tide/port.h>
#include <tide/qos.h>
#include <tide/serdes.h>
#include <tide/vlan.h>

#include "api/api_guard.h"

/* ---- init: six slots; the exported init calls are written by hand ------- */
#define TIDE_INIT_OPS(OP)                                   \
    OP(soft_init, (u32 chip_id), (chip_id))                 \
    OP(soft_deinit, (u32 chip_id), (chip_id))               \
    OP(hw_init, (u32 chip_id), (chip_id))                   \
    OP(hw_deinit, (u32 chip_id), (chip_id))                 \
    OP(chip_hw_reset, (u32 chip_id), (chip_id))             \
    OP(chip_soft_reset, (u32 chip_id, u32 value), (chip_id, value))

API_DECLARE_FAMILY(init, TIDE_INIT_OPS)

/* ---- base: 23 slots ------------------------------------------------------ */
#define TIDE_BASE_OPS(OP)                                                                                  \
    OP(reg_set_by_addr, (u32 chip_id, u32 addr, u8 *data, u8 bytes), (chip_id, addr, data, bytes))         \
    OP(reg_get_by_addr, (u32 chip_id, u32 addr, u8 *data, u8 bytes), (chip_id, addr, data, bytes))         \
    OP(direct_tab_set_by_name, (u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes),             \
       (chip_id, name, index, data, bytes))                                                                 \
    OP(direct_tab_get_by_name, (u32 chip_id, const char *name, u32 index, u8 *data, u32 bytes),             \
       (chip_id, name, index, data, bytes))                                                                 \
    OP(field_set, (u32 chip_id, base_field_op *op), (chip_id, op))                                          \
    OP(field_get, (u32 chip_id, base_field_op *op, const char *file), (chip_id, op, file))                  \
    OP(chip_version_show, (u32 chip_id), (chip_id))                                                         \
    OP(tab_data_to_string, (u32 chip_id, const char *table_name, u8 *data, char *text, u32 size),           \
       (chip_id, table_name, data, text, size))                                                             \
    OP(hash_tab_summary_show, (u32 chip_id), (chip_id))                                                     \
    OP(hash_tab_op, (u32 chip_id, base_hash_op *op), (chip_id, op))                                         \
    OP(hash_tab_dump, (u32 chip_id, base_hash_dump *dump), (chip_id, dump))                                 \
    OP(hash_alg_set, (u32 chip_id, base_hash_alg *alg), (chip_id, alg))                                     \
    OP(hash_alg_get, (u32 chip_id, base_hash_alg *alg), (chip_id, alg))                                     \
    OP(hash_info_show, (u32 chip_id, const char *table_name), (chip_id, table_name))                        \
    OP(tcam_summary_show, (u32 chip_id), (chip_id))                                                         \
    OP(tcam_resource_show, (u32 chip_id), (chip_id))                                                        \
    OP(tcam_add, (u32 chip_id, const char *table_name, u32 index, base_tcam_entry *entry),                  \
       (chip_id, table_name, index, entry))                                                                 \
    OP(tcam_del, (u32 chip_id, const char *table_name, u32 index), (chip_id, table_name, index))            \
    OP(tcam_show, (u32 chip_id, const char *table_name, u32 index), (chip_id, table_name, index))           \
    OP(cause_show, (u32 chip_id, u32 type, u32 only_hits, u32 clear), (chip_id, type, only_hits, clear))    \
    OP(cause_set, (u32 chip_id, base_cause_cfg *cfg), (chip_id, cfg))                                       \
    OP(chip_module_cnt_show,                                                                                \
       (u32 chip_id, const char *module, const char *file, u32 mask, u32 limit_bytes, u32 raw),             \
       (chip_id, module, file, mask, limit_bytes, raw))                                                     \
    OP(control_get, (u32 chip_id, base_test_cfg *cfg), (chip_id, cfg))

API_DECLARE_FAMILY(base, TIDE_BASE_OPS)

/* ---- port: 56 slots ------------------------------------------------------ */
#define TIDE_PORT_OPS(OP)                                                                                   \
    OP(map_mode_set, (u32 chip_id, u32 mapping_mode), (chip_id, mapping_mode))                              \
    OP(map_mode_get, (u32 chip_id, u32 *mapping_mode), (chip_id, mapping_mode))                             \
    OP(interface_set, (u32 chip_id, u32 lport, port_interface *info), (chip_id, lport, info))               \
    OP(interface_get, (u32 chip_id, u32 lport, port_interface *info), (chip_id, lport, info))               \
    OP(config_get, (u32 chip_id, port_config *config), (chip_id, config))                                   \
    OP(tx_rx_enable_set, (u32 chip_id, u32 lport, u32 enable_type, u32 enable_value),                       \
       (chip_id, lport, enable_type, enable_value))                                                         \
    OP(tx_rx_enable_get, (u32 chip_id, u32 lport, u32 enable_type, u32 *enable_value),                      \
       (chip_id, lport, enable_type, enable_value))                                                         \
    OP(enable_set, (u32 chip_id, u32 lport, u32 enable_value), (chip_id, lport, enable_value))              \
    OP(enable_get, (u32 chip_id, u32 lport, u32 *enable_value), (chip_id, lport, enable_value))             \
    OP(autoneg_set, (u32 chip_id, u32 lport, u32 enable), (chip_id, lport, enable))                         \
    OP(autoneg_get, (u32 chip_id, u32 lport, u32 *enable), (chip_id, lport, enable))                        \
    OP(autoneg_restart, (u32 chip_id, u32 lport), (chip_id, lport))                                         \
    OP(advert_ability_set, (u32 chip_id, u32 lport, port_ability *ability), (chip_id, lport, ability))      \
    OP(advert_ability_get, (u32 chip_id, u32 lport, port_ability *ability), (chip_id, lport, ability))      \
    OP(local_ability_get, (u32 chip_id, u32 lport, port_ability *ability), (chip_id, lport, ability))       \
    OP(remote_ability_get, (u32 chip_id, u32 lport, port_ability *ability), (chip_id, lport, ability))      \
    OP(speed_set, (u32 chip_id, u32 lport, u32 speed), (chip_id, lport, speed))                             \
    OP(speed_get, (u32 chip_id, u32 lport, u32 *speed), (chip_id, lport, speed))                            \
    OP(duplex_set, (u32 chip_id, u32 lport, u32 duplex_mode), (chip_id, lport, duplex_mode))                \
    OP(duplex_get, (u32 chip_id, u32 lport, u32 *duplex_mode), (chip_id, lport, duplex_mode))               \
    OP(vlan_pause_set, (u32 chip_id, u32 lport, u32 type, u32 value), (chip_id, lport, type, value))        \
    OP(vlan_pause_get, (u32 chip_id, u32 lport, u32 type, u32 *value), (chip_id, lport, type, value))       \
    OP(pause_set, (u32 chip_id, u32 lport, u32 pause_type, u32 pause_value),                                \
       (chip_id, lport, pause_type, pause_value))                                                           \
    OP(pause_get, (u32 chip_id, u32 lport, u32 pause_type, u32 *pause_value),                               \
       (chip_id, lport, pause_type, pause_value))                                                           \
    OP(pause_addr_set, (u32 chip_id, u32 lport, u8 *smac), (chip_id, lport, smac))                          \
    OP(pause_addr_get, (u32 chip_id, u32 lport, u8 *smac), (chip_id, lport, smac))                          \
    OP(max_frame_set, (u32 chip_id, u32 lport, u32 frame_type, u32 length),                                 \
       (chip_id, lport, frame_type, length))                                                                \
    OP(max_frame_get, (u32 chip_id, u32 lport, u32 frame_type, u32 *length),                                \
       (chip_id, lport, frame_type, length))                                                                \
    OP(min_frame_set, (u32 chip_id, u32 lport, u32 frame_type, u32 length),                                 \
       (chip_id, lport, frame_type, length))                                                                \
    OP(min_frame_get, (u32 chip_id, u32 lport, u32 frame_type, u32 *length),                                \
       (chip_id, lport, frame_type, length))                                                                \
    OP(mac_link_status_get, (u32 chip_id, u32 lport, u32 *status), (chip_id, lport, status))                \
    OP(link_status_get, (u32 chip_id, u32 lport, u32 *status), (chip_id, lport, status))                    \
    OP(ifg_set, (u32 chip_id, u32 lport, u8 ifg), (chip_id, lport, ifg))                                    \
    OP(ifg_get, (u32 chip_id, u32 lport, u8 *ifg), (chip_id, lport, ifg))                                   \
    OP(fault_get, (u32 chip_id, u32 lport, u32 *fault), (chip_id, lport, fault))                            \
    OP(counter_get, (u32 chip_id, u32 lport, u32 mib_item, u64 *value), (chip_id, lport, mib_item, value))  \
    OP(counter_clean, (u32 chip_id, u32 lport), (chip_id, lport))                                           \
    OP(loopback_set, (u32 chip_id, u32 lport, port_loopback *loopback), (chip_id, lport, loopback))         \
    OP(loopback_get, (u32 chip_id, u32 lport, port_loopback *loopback), (chip_id, lport, loopback))         \
    OP(force_set, (u32 chip_id, u32 lport, u32 link_mode, u32 link_status),                                 \
       (chip_id, lport, link_mode, link_status))                                                            \
    OP(force_get, (u32 chip_id, u32 lport, u32 *link_mode, u32 *link_status),                               \
       (chip_id, lport, link_mode, link_status))                                                            \
    OP(crc_set, (u32 chip_id, u32 lport, u32 crc_type, u32 crc_value), (chip_id, lport, crc_type, crc_value)) \
    OP(crc_get, (u32 chip_id, u32 lport, u32 crc_type, u32 *crc_value),                                     \
       (chip_id, lport, crc_type, crc_value))                                                               \
    OP(dic_mode_set, (u32 chip_id, u32 lport, u32 mode), (chip_id, lport, mode))                            \
    OP(dic_mode_get, (u32 chip_id, u32 lport, u32 *mode), (chip_id, lport, mode))                           \
    OP(clk_delta_get, (u32 chip_id, u32 lport, port_clk_delta *delta), (chip_id, lport, delta))             \
    OP(mac_phy_mode_set, (u32 chip_id, u32 mode), (chip_id, mode))                                          \
    OP(mac_phy_mode_get, (u32 chip_id, u32 *mode), (chip_id, mode))                                         \
    OP(serdes_id_get, (u32 chip_id, u32 lport, port_serdes_id *serdes), (chip_id, lport, serdes))           \
    OP(transmit_path_set, (u32 chip_id, u32 mode, u32 select, u32 path), (chip_id, mode, select, path))     \
    OP(transmit_path_get, (u32 chip_id, u32 *mode, u32 *select, u32 *path), (chip_id, mode, select, path))  \
    OP(cfg_control_set, (u32 chip_id, u32 lport, u32 flag, void *value), (chip_id, lport, flag, value))     \
    OP(cfg_control_get, (u32 chip_id, u32 lport, u32 flag, void *value), (chip_id, lport, flag, value))     \
    OP(basic_info_get, (u32 chip_id, u32 lport, port_info_buff *info), (chip_id, lport, info))              \
    OP(alm_info_get, (u32 chip_id, u32 lport, u32 clear, port_info_buff *info), (chip_id, lport, clear, info)) \
    OP(reset, (u32 chip_id, u32 lport, u32 reset_flag), (chip_id, lport, reset_flag))

API_DECLARE_FAMILY(port, TIDE_PORT_OPS)

/* ---- l2: 51 slots; PTRS marks the operations whose pointer arguments the
 * guard checks before the chip ------------------------------------------- */
#define TIDE_L2_OPS(OP)                                                                                     \
    OP(addr_add, (u32 chip_id, l2_addr *addr), (chip_id, addr), PTRS)                                       \
    OP(addr_replace, (u32 chip_id, l2_addr *addr), (chip_id, addr), PTRS)                                   \
    OP(addr_del, (u32 chip_id, l2_addr *addr), (chip_id, addr), PTRS)                                       \
    OP(addr_get, (u32 chip_id, l2_addr *addr), (chip_id, addr), PTRS)                                       \
    OP(addr_get_by_index, (u32 chip_id, u32 index, l2_addr *addr), (chip_id, index, addr), PTRS)            \
    OP(addr_next_entry_get, (u32 chip_id, u32 *cursor, l2_addr *addr), (chip_id, cursor, addr), PTRS)       \
    OP(addr_traverse, (u32 chip_id, l2_addr_traverse_cb fn, void *user), (chip_id, fn, user), )             \
    OP(addr_batched_del, (u32 chip_id, l2_addr *addr, u32 compare, u32 *count),                             \
       (chip_id, addr, compare, count), PTRS)                                                               \
    OP(addr_batched_search, (u32 chip_id, l2_addr *addr, u32 compare, u32 *count),                          \
       (chip_id, addr, compare, count), PTRS)                                                               \
    OP(multicast_create, (u32 chip_id, u32 flags, u32 *mgid), (chip_id, flags, mgid), PTRS)                 \
    OP(multicast_bitmap_get, (u32 chip_id, u32 mgid, l2_multicast_bitmap *bitmap), (chip_id, mgid, bitmap), \
       PTRS)                                                                                                \
    OP(multicast_bitmap_set, (u32 chip_id, u32 mgid, l2_multicast_bitmap *bitmap), (chip_id, mgid, bitmap), \
       PTRS)                                                                                                \
    OP(multicast_port_add, (u32 chip_id, u32 mgid, u64 port), (chip_id, mgid, port), )                      \
    OP(multicast_port_delete, (u32 chip_id, u32 mgid, u64 port), (chip_id, mgid, port), )                   \
    OP(multicast_port_attribute_set, (u32 chip_id, u32 mgid, u64 port, l2_multicast_port_attr *attr),       \
       (chip_id, mgid, port, attr), PTRS)                                                                   \
    OP(multicast_port_attribute_get, (u32 chip_id, u32 mgid, u64 port, l2_multicast_port_attr *attr),       \
       (chip_id, mgid, port, attr), PTRS)                                                                   \
    OP(multicast_destroy, (u32 chip_id, u32 mgid), (chip_id, mgid), )                                       \
    OP(mac_clear_all, (u32 chip_id), (chip_id), )                                                           \
    OP(age_control_get, (u32 chip_id, u32 id, u32 *value), (chip_id, id, value), PTRS)                      \
    OP(age_control_set, (u32 chip_id, u32 id, u32 value), (chip_id, id, value), )                           \
    OP(learn_control_get, (u32 chip_id, u32 id, u32 *value), (chip_id, id, value), PTRS)                    \
    OP(learn_control_set, (u32 chip_id, u32 id, u32 value), (chip_id, id, value), )                         \
    OP(control_get, (u32 chip_id, u32 id, u32 *value), (chip_id, id, value), PTRS)                          \
    OP(control_set, (u32 chip_id, u32 id, u32 value), (chip_id, id, value), )                               \
    OP(port_control_get, (u32 chip_id, u32 port, u32 id, u32 *value), (chip_id, port, id, value), PTRS)     \
    OP(port_control_set, (u32 chip_id, u32 port, u32 id, u32 value), (chip_id, port, id, value), )          \
    OP(vlan_control_get, (u32 chip_id, u32 vid, u32 id, u32 *value), (chip_id, vid, id, value), PTRS)       \
    OP(vlan_control_set, (u32 chip_id, u32 vid, u32 id, u32 value), (chip_id, vid, id, value), )            \
    OP(port_move_pri_get, (u32 chip_id, l2_port_move_pri *pri), (chip_id, pri), PTRS)                       \
    OP(port_move_pri_set, (u32 chip_id, l2_port_move_pri *pri), (chip_id, pri), PTRS)                       \
    OP(learn_limit_get, (u32 chip_id, l2_learn_limit *limit), (chip_id, limit), PTRS)                       \
    OP(learn_limit_set, (u32 chip_id, l2_learn_limit *limit), (chip_id, limit), PTRS)                       \
    OP(mac_cnt_get, (u32 chip_id, u32 type, u32 *count), (chip_id, type, count), PTRS)                      \
    OP(addr_freeze, (u32 chip_id), (chip_id), )                                                             \
    OP(addr_unfreeze, (u32 chip_id), (chip_id), )                                                           \
    OP(addr_register, (u32 chip_id, l2_addr_callback fn, void *user), (chip_id, fn, user), )                \
    OP(addr_unregister, (u32 chip_id, l2_addr_callback fn), (chip_id, fn), )                                \
    OP(protocol_add, (u32 chip_id, l2_protocol *entry), (chip_id, entry), PTRS)                             \
    OP(protocol_get, (u32 chip_id, l2_protocol *entry), (chip_id, entry), PTRS)                             \
    OP(protocol_delete, (u32 chip_id, l2_protocol *entry), (chip_id, entry), )                              \
    OP(protocol_delete_all, (u32 chip_id), (chip_id), )                                                     \
    OP(protocol_search, (u32 chip_id, l2_protocol *entry), (chip_id, entry), PTRS)                          \
    OP(protocol_traverse, (u32 chip_id, l2_protocol_traverse_cb fn, void *user), (chip_id, fn, user), )     \
    OP(sync_start, (u32 chip_id), (chip_id), )                                                              \
    OP(sync_stop, (u32 chip_id), (chip_id), )                                                               \
    OP(thread_is_idling, (u32 chip_id), (chip_id), )                                                        \
    OP(thread_set_idling, (u32 chip_id, u32 idling), (chip_id, idling), )                                   \
    OP(thread_is_running, (u32 chip_id), (chip_id), )                                                       \
    OP(sync_get, (u32 chip_id, u32 *state), (chip_id, state), )                                             \
    OP(mac_entry_size_get, (u32 chip_id, u32 *size), (chip_id, size), )                                     \
    OP(mac_msg_parse, (u32 chip_id, const u8 *buf, u32 len, l2_addr *out, u32 *count),                      \
       (chip_id, buf, len, out, count), )

API_DECLARE_FAMILY(l2, TIDE_L2_OPS)

/* ---- vlan: the operations of VLANs, ports, TPIDs and global settings --- */
/* The add, delete, get and traverse of one kind of VLAN TCAM entry. */
#define TIDE_VLAN_VACL_OPS(OP, kind, key_t, cb_t)                                                              \
    OP(kind##_add, (u32 chip_id, key_t *key, vlan_translate_action *action), (chip_id, key, action))          \
    OP(kind##_delete, (u32 chip_id, key_t *key), (chip_id, key))                                               \
    OP(kind##_get, (u32 chip_id, key_t *key, vlan_translate_action *action), (chip_id, key, action))          \
    OP(kind##_traverse, (u32 chip_id, cb_t fn, void *user), (chip_id, fn, user))
#define TIDE_VLAN_OPS(OP)                                                                                        \
    OP(port_trust_type_set, (u32 chip_id, u32 lport, u32 type, vlan_trust_info *info), (chip_id, lport, type, info)) \
    OP(port_trust_type_get, (u32 chip_id, u32 lport, u32 *type, vlan_trust_info *info), (chip_id, lport, type, info)) \
    OP(port_control_set, (u32 chip_id, u32 lport, vlan_control *control), (chip_id, lport, control))           \
    OP(port_control_get, (u32 chip_id, u32 lport, vlan_control *control), (chip_id, lport, control))           \
    OP(control_set, (u32 chip_id, u32 vid, vlan_control *control), (chip_id, vid, control))                    \
    OP(control_get, (u32 chip_id, u32 vid, vlan_control *control), (chip_id, vid, control))                    \
    OP(global_cfg_set, (u32 chip_id, vlan_control *cfg), (chip_id, cfg))                                       \
    OP(global_cfg_get, (u32 chip_id, vlan_control *cfg), (chip_id, cfg))                                       \
    OP(create, (u32 chip_id, u32 vid), (chip_id, vid))                                                         \
    OP(destroy, (u32 chip_id, u32 vid), (chip_id, vid))                                                        \
    OP(port_add, (u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged), (chip_id, vid, members, untagged)) \
    OP(port_set, (u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged), (chip_id, vid, members, untagged)) \
    OP(port_delete, (u32 chip_id, u32 vid, port_bitmap *ports), (chip_id, vid, ports))                         \
    OP(port_get, (u32 chip_id, u32 vid, port_bitmap *members, port_bitmap *untagged), (chip_id, vid, members, untagged)) \
    OP(tpid_set, (u32 chip_id, u32 id, u32 value), (chip_id, id, value))                                       \
    OP(tpid_get, (u32 chip_id, u32 id, u32 *value), (chip_id, id, value))                                      \
    OP(port_tpid_bitmap_set, (u32 chip_id, u32 lport, u32 bitmap), (chip_id, lport, bitmap))                   \
    OP(port_tpid_bitmap_get, (u32 chip_id, u32 lport, u32 *bitmap), (chip_id, lport, bitmap))                  \
    OP(translation_global_cfg_set, (u32 chip_id, vlan_control *cfg), (chip_id, cfg))                           \
    OP(translation_global_cfg_get, (u32 chip_id, vlan_control *cfg), (chip_id, cfg))                           \
    OP(egress_translate_add, (u32 chip_id, vlan_egress_translate_key *key, vlan_translate_action *action),     \
       (chip_id, key, action))                                                                                 \
    OP(egress_translate_delete, (u32 chip_id, vlan_egress_translate_key *key), (chip_id, key))                 \
    OP(egress_translate_get, (u32 chip_id, vlan_egress_translate_key *key, vlan_translate_action *action),     \
       (chip_id, key, action))                                                                                 \
    OP(egress_translate_traverse, (u32 chip_id, vlan_egress_translate_traverse_cb fn, void *user),             \
       (chip_id, fn, user))                                                                                    \
    TIDE_VLAN_VACL_OPS(OP, ingress_translate, vlan_ingress_translate_key, vlan_ingress_translate_traverse_cb)  \
    TIDE_VLAN_VACL_OPS(OP, macbased, vlan_mac_key, vlan_mac_traverse_cb)                                       \
    TIDE_VLAN_VACL_OPS(OP, subnetbased, vlan_subnet_key, vlan_subnet_traverse_cb)                              \
    TIDE_VLAN_VACL_OPS(OP, protocolbased, vlan_protocol_key, vlan_protocol_traverse_cb)

/* The slots no chip of this build fills (14 to 16, 43 to 49): -24. */
#define TIDE_VLAN_EMPTY_OPS(OP)                                                                                   \
    OP(port_default_action_add, (u32 chip_id, u32 lport, vlan_translate_action *action), (chip_id, lport, action)) \
    OP(port_default_action_get, (u32 chip_id, u32 lport, vlan_translate_action *action), (chip_id, lport, action)) \
    OP(port_default_action_delete, (u32 chip_id, u32 lport), (chip_id, lport))                                 \
    OP(pvlan_enable, (u32 chip_id, u32 lport, u32 enable), (chip_id, lport, enable))                           \
    OP(tag_check_by_dmac_set, (u32 chip_id, vlan_dmac_check *check), (chip_id, check))                         \
    OP(tag_check_by_dmac_get, (u32 chip_id, vlan_dmac_check *check), (chip_id, check))                         \
    OP(pvlan_port_set, (u32 chip_id, u32 lport, vlan_pvlan_cfg *cfg), (chip_id, lport, cfg))                   \
    OP(pvlan_port_get, (u32 chip_id, u32 lport, vlan_pvlan_cfg *cfg), (chip_id, lport, cfg))

#define TIDE_VLAN_ALL_OPS(OP) TIDE_VLAN_OPS(OP) TIDE_VLAN_EMPTY_OPS(OP)

API_DECLARE_FAMILY(vlan, TIDE_VLAN_ALL_OPS)

/* ---- acl: the operations of groups, entries, lookups and controls, in the
 * order of the family's slots; PTRS marks those whose pointer arguments
 * the guard checks before the chip ------------------------------------------ */
#define TIDE_ACL_OPS(OP)                                                                                      \
    OP(group_create, (u32 chip_id, u32 flags, u32 *group_id), (chip_id, flags, group_id), PTRS)               \
    OP(group_set, (u32 chip_id, u32 group_id, acl_group_para *para), (chip_id, group_id, para), )             \
    OP(group_get, (u32 chip_id, u32 group_id, acl_group_info *info), (chip_id, group_id, info), PTRS)         \
    OP(group_traverse, (u32 chip_id, acl_group_traverse_cb fn, void *user), (chip_id, fn, user), )            \
    OP(group_destroy, (u32 chip_id, u32 group_id), (chip_id, group_id), )                                     \
    OP(template_config_set, (u32 chip_id, acl_lookup *lookup), (chip_id, lookup), PTRS)                       \
    OP(template_config_get, (u32 chip_id, acl_lookup *lookup), (chip_id, lookup), PTRS)                       \
    OP(action_support_get, (u32 chip_id, u32 type, u32 mode, u32 *bitmap), (chip_id, type, mode, bitmap),     \
       PTRS)                                                                                                  \
    OP(match_support_get, (u32 chip_id, u32 template_id, u32 *bitmap), (chip_id, template_id, bitmap), PTRS)  \
    OP(group_install, (u32 chip_id, u32 group_id), (chip_id, group_id), )                                     \
    OP(group_uninstall, (u32 chip_id, u32 group_id), (chip_id, group_id), )                                   \
    OP(entry_create, (u32 chip_id, u32 flags, u32 priority, u32 group_id, u32 *entry_id),                     \
       (chip_id, flags, priority, group_id, entry_id), PTRS)                                                  \
    OP(entry_template_set, (u32 chip_id, u32 entry_id, u32 template_id), (chip_id, entry_id, template_id), )  \
    OP(entry_template_get, (u32 chip_id, u32 entry_id, u32 *template_id), (chip_id, entry_id, template_id),   \
       PTRS)                                                                                                  \
    OP(entry_based_set, (u32 chip_id, u32 entry_id, u32 mode), (chip_id, entry_id, mode), )                   \
    OP(entry_based_get, (u32 chip_id, u32 entry_id, u32 *mode), (chip_id, entry_id, mode), PTRS)              \
    OP(entry_destroy, (u32 chip_id, u32 entry_id), (chip_id, entry_id), )                                     \
    OP(entry_install, (u32 chip_id, u32 entry_id), (chip_id, entry_id), )                                     \
    OP(entry_uninstall, (u32 chip_id, u32 entry_id), (chip_id, entry_id), )                                   \
    OP(entry_match_field_set, (u32 chip_id, u32 entry_id, acl_item *item), (chip_id, entry_id, item), PTRS)   \
    OP(entry_match_field_remove, (u32 chip_id, u32 entry_id, acl_item *item), (chip_id, entry_id, item), PTRS) \
    OP(entry_action_set, (u32 chip_id, u32 entry_id, acl_item *item), (chip_id, entry_id, item), PTRS)        \
    OP(entry_action_remove, (u32 chip_id, u32 entry_id, acl_item *item), (chip_id, entry_id, item), PTRS)     \
    OP(entry_get, (u32 chip_id, u32 entry_id, acl_entry_info *info), (chip_id, entry_id, info), PTRS)         \
    OP(entry_traverse, (u32 chip_id, acl_entry_traverse_cb fn, void *user), (chip_id, fn, user), )            \
    OP(entry_traverse_in_group, (u32 chip_id, u32 group_id, acl_entry_traverse_cb fn, void *user),            \
       (chip_id, group_id, fn, user), )                                                                       \
    OP(entry_pri_set, (u32 chip_id, u32 entry_id, u32 priority), (chip_id, entry_id, priority), )             \
    OP(port_control_set, (u32 chip_id, u32 port, acl_control *control), (chip_id, port, control), PTRS)       \
    OP(port_control_get, (u32 chip_id, u32 port, acl_control *control), (chip_id, port, control), PTRS)       \
    OP(vlan_control_set, (u32 chip_id, u32 vid, acl_control *control), (chip_id, vid, control), PTRS)         \
    OP(vlan_control_get, (u32 chip_id, u32 vid, acl_control *control), (chip_id, vid, control), PTRS)         \
    OP(global_cfg_set, (u32 chip_id, u32 flag, acl_global_cfg *cfg), (chip_id, flag, cfg), PTRS)              \
    OP(global_cfg_get, (u32 chip_id, u32 flag, acl_global_cfg *cfg), (chip_id, flag, cfg), PTRS)

API_DECLARE_FAMILY(acl, TIDE_ACL_OPS)
/* ---- interrupt: 24 slots ------------------------------------------------- */
#define TIDE_INTERRUPT_OPS(OP)                                                                              \
    OP(support_module_dump, (u32 chip_id), (chip_id))                                                      \
    OP(module_status_dump, (u32 chip_id, intr_module module, intr_type type), (chip_id, module, type))      \
    OP(clear_all, (u32 chip_id), (chip_id))                                                                \
    OP(clear, (u32 chip_id, intr_module module, intr_type type), (chip_id, module, type))                   \
    OP(enable_set, (u32 chip_id, intr_module module, intr_type type, u32 enable),                          \
       (chip_id, module, type, enable))                                                                     \
    OP(mask_get, (u32 chip_id, intr_module module, intr_type type, u32 *mask), (chip_id, module, type, mask)) \
    OP(status_get, (u32 chip_id, intr_module module, intr_type type, u32 *status),                         \
       (chip_id, module, type, status))                                                                     \
    OP(subid_types_get, (u32 chip_id, u32 module_id, u32 *count), (chip_id, module_id, count))             \
    OP(onesubid_types_get, (u32 chip_id, u32 module_id, u32 subid, u32 *count),                            \
       (chip_id, module_id, subid, count))                                                                  \
    OP(base_info_get, (u32 chip_id, u32 module_id), (chip_id, module_id))                                  \
    OP(debug_get, (u32 chip_id, intr_module module, intr_type type, intr_debug *debug),                    \
       (chip_id, module, type, debug))                                                                      \
    OP(debug_info_get, (u32 chip_id, intr_module module, intr_type type, intr_debug_info *info),           \
       (chip_id, module, type, info))                                                                       \
    OP(callback_register, (u32 chip_id, intr_module module, intr_type type, intr_callback callback),       \
       (chip_id, module, type, callback))                                                                   \
    OP(callback_unregister, (u32 chip_id, intr_module module, intr_type type), (chip_id, module, type))     \
    OP(stats_get, (u32 chip_id, intr_module module, intr_type type, u32 *count),                           \
       (chip_id, module, type, count))                                                                      \
    OP(stats_clear, (u32 chip_id, intr_module module, intr_type type), (chip_id, module, type))             \
    OP(ecc_error_cnt_get, (u32 chip_id, intr_ecc_cnt_para para, u32 *cnt), (chip_id, para, cnt))           \
    OP(ecc_module_ecc_types_get, (u32 chip_id, u32 module_id, u32 *count), (chip_id, module_id, count))    \
    OP(ecc_info_get, (u32 chip_id, intr_module module, intr_type type, intr_ecc_info *info),               \
       (chip_id, module, type, info))                                                                       \
    OP(ecc_lpm_se_get, (u32 chip_id, u32 table_type, u32 *param, u32 *tbl_num),                            \
       (chip_id, table_type, param, tbl_num))                                                               \
    OP(default_action_set, (u32 chip_id, u32 action), (chip_id, action))                                   \
    OP(default_action_get, (u32 chip_id, u32 *action), (chip_id, action))                                  \
    OP(lport_to_reg_index, (u32 chip_id, u32 lport, u32 kind, u8 *index), (chip_id, lport, kind, index))   \
    OP(reg_index_to_lport, (u32 chip_id, u8 index, u32 kind, u32 *lport), (chip_id, index, kind, lport))

API_DECLARE_FAMILY(interrupt, TIDE_INTERRUPT_OPS)
/* ---- serdes: 45 slots.  OP(slot, (parameters), (arguments), name): the
 * exported function is serdes_api_<name>, the slot of the table <slot>
 * (the two differ where the name starts with a digit) ------------------- */
#define TIDE_SERDES_OPS(OP)                                                                                   \
    OP(refclk_set, (u32 chip_id, u32 serdes_id, u32 refclk), (chip_id, serdes_id, refclk), refclk_set)      \
    OP(refclk_get, (u32 chip_id, u32 serdes_id, u32 *refclk), (chip_id, serdes_id, refclk), refclk_get)     \
    OP(refclk_chose_set, (u32 chip_id, u32 serdes_id, u32 refclk), (chip_id, serdes_id, refclk),            \
       refclk_chose_set)                                                                                      \
    OP(freq_set, (u32 chip_id, u32 serdes_id, serdes_freq *freq), (chip_id, serdes_id, freq), freq_set)     \
    OP(freq_get, (u32 chip_id, u32 serdes_id, serdes_freq *freq), (chip_id, serdes_id, freq), freq_get)     \
    OP(pn_set, (u32 chip_id, u32 serdes_id, serdes_pn *pn), (chip_id, serdes_id, pn), pn_set)               \
    OP(pn_get, (u32 chip_id, u32 serdes_id, serdes_pn *pn), (chip_id, serdes_id, pn), pn_get)               \
    OP(emphasis_set, (u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis), (chip_id, serdes_id, emphasis), \
       emphasis_set)                                                                                          \
    OP(emphasis_get, (u32 chip_id, u32 serdes_id, serdes_emphasis *emphasis), (chip_id, serdes_id, emphasis), \
       emphasis_get)                                                                                          \
    OP(serdes_enable_set, (u32 chip_id, u32 serdes_id, u32 *enable), (chip_id, serdes_id, enable),          \
       serdes_enable_set)                                                                                     \
    OP(serdes_enable_get, (u32 chip_id, u32 serdes_id, u32 *enable), (chip_id, serdes_id, enable),          \
       serdes_enable_get)                                                                                     \
    OP(prbs_set, (u32 chip_id, u32 serdes_id, serdes_prbs *prbs), (chip_id, serdes_id, prbs), prbs_set)     \
    OP(prbs_get, (u32 chip_id, u32 serdes_id, serdes_prbs *prbs), (chip_id, serdes_id, prbs), prbs_get)     \
    OP(prbs_insert_err_pkt, (u32 chip_id, u32 serdes_id, u32 count), (chip_id, serdes_id, count),           \
       prbs_insert_err_pkt)                                                                                   \
    OP(prbs_counter_get, (u32 chip_id, u32 serdes_id, u32 *count), (chip_id, serdes_id, count),             \
       prbs_counter_get)                                                                                      \
    OP(prbs_check, (u32 chip_id, u32 serdes_id, serdes_prbs_check_info *info), (chip_id, serdes_id, info),  \
       prbs_check)                                                                                            \
    OP(prbs_counter_clear, (u32 chip_id, u32 serdes_id), (chip_id, serdes_id), prbs_counter_clear)          \
    OP(prbs_invert_enable_set, (u32 chip_id, u32 serdes_id, serdes_pn *invert), (chip_id, serdes_id, invert), \
       prbs_invert_enable_set)                                                                                \
    OP(serdes_reset, (u32 chip_id, u32 serdes_id, u32 mode), (chip_id, serdes_id, mode), serdes_reset)      \
    OP(loopback_set, (u32 chip_id, u32 serdes_id, serdes_loopback *loopback), (chip_id, serdes_id, loopback), \
       loopback_set)                                                                                          \
    OP(loopback_get, (u32 chip_id, u32 serdes_id, serdes_loopback *loopback), (chip_id, serdes_id, loopback), \
       loopback_get)                                                                                          \
    OP(power_set, (u32 chip_id, u32 serdes_id, serdes_power *power), (chip_id, serdes_id, power), power_set) \
    OP(power_get, (u32 chip_id, u32 serdes_id, serdes_power *power), (chip_id, serdes_id, power), power_get) \
    OP(control_set, (u32 chip_id, u32 serdes_id, serdes_control *control), (chip_id, serdes_id, control),   \
       control_set)                                                                                           \
    OP(control_get, (u32 chip_id, u32 serdes_id, serdes_control *control), (chip_id, serdes_id, control),   \
       control_get)                                                                                           \
    OP(rx_adapt_set, (u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt), (chip_id, serdes_id, adapt),     \
       rx_adapt_set)                                                                                          \
    OP(rx_adapt_get, (u32 chip_id, u32 serdes_id, serdes_rx_adapt *adapt), (chip_id, serdes_id, adapt),     \
       rx_adapt_get)                                                                                          \
    OP(rx_para_set, (u32 chip_id, u32 serdes_id, serdes_rx_para *para), (chip_id, serdes_id, para),         \
       rx_para_set)                                                                                           \
    OP(rx_para_get, (u32 chip_id, u32 serdes_id, char *buffer), (chip_id, serdes_id, buffer), rx_para_get)  \
    OP(four_point_eye, (u32 chip_id, u32 serdes_id, serdes_eye *eye), (chip_id, serdes_id, eye),            \
       four_point_eye)                                                                                        \
    OP(full_eye_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len), (chip_id, serdes_id, buffer, len), \
       full_eye_get)                                                                                          \
    OP(all_reg_dump, (u32 chip_id, u32 serdes_id, u32 detail, char *buffer, u64 len),                       \
       (chip_id, serdes_id, detail, buffer, len), all_reg_dump)                                               \
    OP(inner_register_get, (u32 chip_id, u32 serdes_id, u32 addr, u32 *data), (chip_id, serdes_id, addr, data), \
       inner_register_get)                                                                                    \
    OP(inner_register_set, (u32 chip_id, u32 serdes_id, u32 addr, u32 data), (chip_id, serdes_id, addr, data), \
       inner_register_set)                                                                                    \
    OP(debug_info_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len), (chip_id, serdes_id, buffer, len), \
       debug_info_get)                                                                                        \
    OP(name_register_field_get, (u32 chip_id, u32 serdes_id, char *reg, char *field, u32 *data),            \
       (chip_id, serdes_id, reg, field, data), name_register_field_get)                                       \
    OP(name_register_field_set, (u32 chip_id, u32 serdes_id, char *reg, char *field, u32 data),             \
       (chip_id, serdes_id, reg, field, data), name_register_field_set)                                       \
    OP(name_register_get, (u32 chip_id, u32 serdes_id, char *reg, u32 *data), (chip_id, serdes_id, reg, data), \
       name_register_get)                                                                                     \
    OP(name_register_set, (u32 chip_id, u32 serdes_id, char *reg, u32 data), (chip_id, serdes_id, reg, data), \
       name_register_set)                                                                                     \
    OP(serdes_type_sel, (u32 chip_id, u32 serdes_type), (chip_id, serdes_type), serdes_type_sel)            \
    OP(support_speed_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len), (chip_id, serdes_id, buffer, len), \
       support_speed_get)                                                                                     \
    OP(sram_get, (u32 chip_id, u32 serdes_id, char *buffer, u64 len), (chip_id, serdes_id, buffer, len),    \
       sram_get)                                                                                              \
    OP(clk_8k_set, (u32 chip_id, u32 serdes_id, u32 clk_id), (chip_id, serdes_id, clk_id), 8k_clk_set)      \
    OP(clk_8k_get, (u32 chip_id, u32 clk_id, serdes_8k_clk *clk), (chip_id, clk_id, clk), 8k_clk_get)       \
    OP(ctle_offset_calibrate_result, (u32 chip_id, u32 serdes_id, char *buffer, u32 len),                   \
       (chip_id, serdes_id, buffer, len), ctle_offset_calibrate_result)

API_DECLARE_FAMILY(serdes, TIDE_SERDES_OPS)

/* ---- qos: 62 slots ------------------------------------------------------ */
#define TIDE_QOS_OPS(OP)                                                                                                             \
    OP(priority_map_set, (u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg), (chip_id, type, map_id, cfg))                        \
    OP(priority_map_get, (u32 chip_id, u32 type, u32 map_id, qos_map_cfg *cfg), (chip_id, type, map_id, cfg))                        \
    OP(remark_set, (u32 chip_id, u32 type, u32 remark_id, qos_remark_cfg *cfg), (chip_id, type, remark_id, cfg))                     \
    OP(remark_get, (u32 chip_id, u32 type, u32 remark_id, qos_remark_cfg *cfg), (chip_id, type, remark_id, cfg))                     \
    OP(ctrl_set, (u32 chip_id, u32 type, u32 value), (chip_id, type, value))                                                         \
    OP(ctrl_get, (u32 chip_id, u32 type, u32 *value), (chip_id, type, value))                                                        \
    OP(policer_create, (u32 chip_id, u32 with_id, u32 type, u32 *id), (chip_id, with_id, type, id))                                  \
    OP(policer_destroy, (u32 chip_id, u32 type, u32 id), (chip_id, type, id))                                                        \
    OP(policer_created_get, (u32 chip_id, u32 type, u32 id, u32 *created), (chip_id, type, id, created))                             \
    OP(policer_set, (u32 chip_id, u32 type, u32 id, qos_policer_cfg *cfg), (chip_id, type, id, cfg))                                 \
    OP(policer_get, (u32 chip_id, u32 type, u32 id, qos_policer_cfg *cfg), (chip_id, type, id, cfg))                                 \
    OP(policer_action_set, (u32 chip_id, u32 type, u32 id, qos_policer_action *act), (chip_id, type, id, act))                       \
    OP(policer_action_get, (u32 chip_id, u32 type, u32 id, qos_policer_actions *acts), (chip_id, type, id, acts))                    \
    OP(policer_bind, (u32 chip_id, qos_bind_info *info), (chip_id, info))                                                            \
    OP(policer_unbind, (u32 chip_id, qos_bind_info *info), (chip_id, info))                                                          \
    OP(policer_bind_get, (u32 chip_id, qos_bind_info *info), (chip_id, info))                                                        \
    OP(common_map_ctrl_set, (u32 chip_id, qos_common_map_cfg *cfg), (chip_id, cfg))                                                  \
    OP(common_map_ctrl_get, (u32 chip_id, qos_common_map_cfg *cfg), (chip_id, cfg))                                                  \
    OP(bandwidth_enable_set, (u32 chip_id, qos_bandwidth_en_key *key, u32 enable), (chip_id, key, enable))                           \
    OP(bandwidth_enable_get, (u32 chip_id, qos_bandwidth_en_key *key, u32 *enable), (chip_id, key, enable))                          \
    OP(bandwidth_rate_mode_set, (u32 chip_id, qos_bandwidth_key *key, u8 mode), (chip_id, key, mode))                                \
    OP(bandwidth_set, (u32 chip_id, qos_bandwidth_cfg *cfg), (chip_id, cfg))                                                         \
    OP(bandwidth_get, (u32 chip_id, qos_bandwidth_cfg *cfg), (chip_id, cfg))                                                         \
    OP(bandwidth_len_adj_set, (u32 chip_id, qos_bandwidth_key *key), (chip_id, key))                                                 \
    OP(bandwidth_len_adj_get, (u32 chip_id, qos_bandwidth_key *key), (chip_id, key))                                                 \
    OP(sched_set, (u32 chip_id, qos_sch_key *key, qos_sch_cfg *cfg), (chip_id, key, cfg))                                            \
    OP(sched_get, (u32 chip_id, qos_sch_key *key, qos_sch_cfg *cfg), (chip_id, key, cfg))                                            \
    OP(sched_set_by_queue_profile, (u32 chip_id, u32 profile_id, qos_sch_profile_cfg *cfg), (chip_id, profile_id, cfg))              \
    OP(sched_get_by_queue_profile, (u32 chip_id, u32 profile_id, qos_sch_profile_cfg *cfg), (chip_id, profile_id, cfg))              \
    OP(sched_bind_queue_profile, (u32 chip_id, u32 queue_group_id, u32 profile_id), (chip_id, queue_group_id, profile_id))           \
    OP(sched_queue_profile_bind_info_get, (u32 chip_id, u32 queue_group_id, u32 *profile_id), (chip_id, queue_group_id, profile_id)) \
    OP(topo_add, (u32 chip_id, qos_topo_cfg *cfg), (chip_id, cfg))                                                                   \
    OP(topo_del, (u32 chip_id, qos_topo_cfg *cfg), (chip_id, cfg))                                                                   \
    OP(topo_get, (u32 chip_id, qos_topo_cfg *cfg), (chip_id, cfg))                                                                   \
    OP(flush_set, (u32 chip_id, qos_flush_cfg *cfg), (chip_id, cfg))                                                                 \
    OP(tocpu_enqueue_set, (u32 chip_id, u32 type, qos_tocpu_key *key, qos_tocpu_cfg *cfg), (chip_id, type, key, cfg))                \
    OP(tocpu_enqueue_get, (u32 chip_id, qos_tocpu_key *key, qos_tocpu_cfg *cfg), (chip_id, key, cfg))                                \
    OP(redirect_glb_set, (u32 chip_id, qos_redirect_cfg *cfg), (chip_id, cfg))                                                       \
    OP(redirect_glb_get, (u32 chip_id, qos_redirect_cfg *cfg), (chip_id, cfg))                                                       \
    OP(redirect_cause_enable_set, (u32 chip_id, u32 causeid, u32 is_enable), (chip_id, causeid, is_enable))                          \
    OP(redirect_cause_enable_get, (u32 chip_id, u32 causeid, u32 *is_enable), (chip_id, causeid, is_enable))                         \
    OP(capture_set, (u32 chip_id, qos_capture_cfg *cfg), (chip_id, cfg))                                                             \
    OP(capture_status_get, (u32 chip_id, qos_capture_info *info), (chip_id, info))                                                   \
    OP(capture_causeid_set, (u32 chip_id, u32 causeid_index, u32 causeid), (chip_id, causeid_index, causeid))                        \
    OP(capture_causeid_get, (u32 chip_id, u32 causeid_index, u32 *causeid), (chip_id, causeid_index, causeid))                       \
    OP(discard_profile_create, (u32 chip_id, u32 with_id, u32 type, u32 *id), (chip_id, with_id, type, id))                          \
    OP(discard_profile_destroy, (u32 chip_id, u32 type, u32 id), (chip_id, type, id))                                                \
    OP(discard_profile_created_get, (u32 chip_id, u32 type, u32 id, u32 *created), (chip_id, type, id, created))                     \
    OP(discard_profile_set, (u32 chip_id, qos_discard_profile_key *key, qos_discard_profile_cfg *cfg), (chip_id, key, cfg))          \
    OP(discard_profile_get, (u32 chip_id, qos_discard_profile_key *key, qos_discard_profile_cfg *cfg), (chip_id, key, cfg))          \
    OP(discard_profile_bind, (u32 chip_id, qos_discard_bind_key *key, u32 type, u32 id), (chip_id, key, type, id))                   \
    OP(discard_profile_unbind, (u32 chip_id, qos_discard_bind_key *key, u32 type), (chip_id, key, type))                             \
    OP(discard_profile_bind_get, (u32 chip_id, qos_discard_bind_key *key, u32 type, u32 *id), (chip_id, key, type, id))              \
    OP(discard_set, (u32 chip_id, qos_discard_cfg *cfg), (chip_id, cfg))                                                             \
    OP(discard_get, (u32 chip_id, qos_discard_cfg *cfg), (chip_id, cfg))                                                             \
    OP(discard_ctrl_set, (u32 chip_id, qos_discard_ctrl *ctrl), (chip_id, ctrl))                                                     \
    OP(discard_ctrl_get, (u32 chip_id, qos_discard_ctrl *ctrl), (chip_id, ctrl))                                                     \
    OP(counter_info_get, (u32 chip_id, u32 type, qos_counter_key *key, qos_counter_info *info), (chip_id, type, key, info))          \
    OP(status_info_get, (u32 chip_id, u32 type, qos_status_key *key, u32 *status), (chip_id, type, key, status))                     \
    OP(counter_status_clear, (u32 chip_id, u32 type, qos_clear_key *key), (chip_id, type, key))                                      \
    OP(que_congestion_check, (u32 chip_id, qos_check_key *key, qos_check_result *result), (chip_id, key, result))                    \
    OP(que_bandwidth_cfg_zero_check, (u32 chip_id, qos_check_key *key, u32 *zero), (chip_id, key, zero))

API_DECLARE_FAMILY(qos, TIDE_QOS_OPS)

/* ---- counter: 13 slots; 11 and 12 are left empty ------------------------ */
#define TIDE_COUNTER_OPS(OP)                                                                               \
    OP(map_display, (u32 chip_id), (chip_id))                                                              \
    OP(enable_set, (u32 chip_id, u32 id, u32 enable), (chip_id, id, enable))                               \
    OP(enable_get, (u32 chip_id, u32 id, u32 *enable), (chip_id, id, enable))                              \
    OP(stats_get, (u32 chip_id, counter_key *key, counter_stats *stats), (chip_id, key, stats))            \
    OP(stats_clear, (u32 chip_id, counter_key *key), (chip_id, key))                                       \
    OP(thread_set, (u32 chip_id, thread_cfg *cfg), (chip_id, cfg))                                         \
    OP(thread_get, (u32 chip_id, thread_cfg *cfg), (chip_id, cfg))                                         \
    OP(global_display, (u32 chip_id, u32 flags), (chip_id, flags))                                         \
    OP(size_get, (u32 chip_id, u32 id, u32 *entries), (chip_id, id, entries))                              \
    OP(entry_enable_set, (u32 chip_id, u32 id, u32 index, u8 enable), (chip_id, id, index, enable))        \
    OP(entry_enable_get, (u32 chip_id, u32 id, u32 index, u8 *enable), (chip_id, id, index, enable))       \
    OP(control_set, (u32 chip_id, u32 key, u32 value), (chip_id, key, value))                              \
    OP(control_get, (u32 chip_id, u32 key, u32 *value), (chip_id, key, value))

API_DECLARE_FAMILY(counter, TIDE_COUNTER_OPS)

/* ---- macsec: 28 slots; traverses, stat_get32 and the events are empty ---- */
#define TIDE_MACSEC_OPS(OP)                                                                                         \
    OP(port_config_set, (u32 chip_id, u32 port, u32 dir, macsec_port_config *config), (chip_id, port, dir, config)) \
    OP(port_config_get, (u32 chip_id, u32 port, u32 dir, macsec_port_config *config), (chip_id, port, dir, config)) \
    OP(port_capability_get, (u32 chip_id, u32 port, u32 dir, u32 cap[4]), (chip_id, port, dir, cap))               \
    OP(secure_chan_create, (u32 chip_id, u32 port, u32 reserved, u32 dir, macsec_secure_chan *chan, u32 sc),        \
       (chip_id, port, reserved, dir, chan, sc))                                                                    \
    OP(secure_chan_get, (u32 chip_id, u32 port, u32 dir, u32 sc, macsec_secure_chan *chan),                         \
       (chip_id, port, dir, sc, chan))                                                                              \
    OP(secure_chan_destroy, (u32 chip_id, u32 port, u32 dir, u32 sc), (chip_id, port, dir, sc))                     \
    OP(secure_chan_traverse, (u32 chip_id), (chip_id))                                                              \
    OP(secure_assoc_create, (u32 chip_id, u32 port, u32 sc, u32 reserved, u32 dir, macsec_secure_assoc *assoc, u32 an), \
       (chip_id, port, sc, reserved, dir, assoc, an))                                                               \
    OP(secure_assoc_get, (u32 chip_id, u32 port, u32 sc, u32 an, u32 dir, macsec_secure_assoc *assoc),              \
       (chip_id, port, sc, an, dir, assoc))                                                                         \
    OP(secure_assoc_destroy, (u32 chip_id, u32 port, u32 an, u32 sc, u32 dir), (chip_id, port, an, sc, dir))        \
    OP(secure_assoc_traverse, (u32 chip_id), (chip_id))                                                             \
    OP(flow_create, (u32 chip_id, u32 port, u32 reserved, macsec_flow *flow, u32 action),                           \
       (chip_id, port, reserved, flow, action))                                                                     \
    OP(flow_get, (u32 chip_id, u32 port, u32 reserved, macsec_flow *flow, u32 *action),                             \
       (chip_id, port, reserved, flow, action))                                                                     \
    OP(flow_traverse, (u32 chip_id), (chip_id))                                                                     \
    OP(flow_destroy, (u32 chip_id, u32 port, u32 flow_id), (chip_id, port, flow_id))                                \
    OP(stat_clear, (u32 chip_id, u32 type, u32 index, u32 dir), (chip_id, type, index, dir))                        \
    OP(stat_get, (u32 chip_id, u32 port, u32 stat, u32 sc, u32 an, u64 *value, u32 reserved),                       \
       (chip_id, port, stat, sc, an, value, reserved))                                                              \
    OP(stat_get32, (u32 chip_id), (chip_id))                                                                        \
    OP(event_register, (u32 chip_id), (chip_id))                                                                    \
    OP(event_unregister, (u32 chip_id), (chip_id))                                                                  \
    OP(event_set, (u32 chip_id), (chip_id))                                                                         \
    OP(event_get, (u32 chip_id), (chip_id))                                                                         \
    OP(globle_set, (u32 chip_id, macsec_global *global), (chip_id, global))                                         \
    OP(globle_get, (u32 chip_id, macsec_global *global), (chip_id, global))                                         \
    OP(white_list_set, (u32 chip_id, u32 index, u32 dir, u32 type, u16 value[2]), (chip_id, index, dir, type, value)) \
    OP(white_list_get, (u32 chip_id, u32 index, u32 dir, u32 type, u16 value[2]), (chip_id, index, dir, type, value)) \
    OP(next_pn_set, (u32 chip_id, u32 port, u32 sc, u32 an, u32 dir, u64 pn[2]), (chip_id, port, sc, an, dir, pn))  \
    OP(next_pn_get, (u32 chip_id, u32 port, u32 sc, u32 an, u32 dir, u64 pn[2]), (chip_id, port, sc, an, dir, pn))

API_DECLARE_FAMILY(macsec, TIDE_MACSEC_OPS)

#endif /* TIDE_API_FAMILIES_H */
