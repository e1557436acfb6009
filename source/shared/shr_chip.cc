// Chip registry: one slot per chip id, written during bring-up and
// tear-down, read without a lock afterwards.
#include "shared/shr_int.h"

extern "C" {

shr_chip_info g_shr_chips[SHR_MAX_CHIPS];
u32 g_shr_chip_cur_num;

const char *const g_shr_chip_name[5] = {"null", "kelpreef", "kelpreef2", "atolreef", "sandshark"};

u32 shr_chip_valid_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_shr_chips[chip_id].valid : 0;
}

u32 shr_chip_family_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_shr_chips[chip_id].family : 0;
}

u32 shr_chip_type_get(u32 chip_id)
{
    return chip_id < SHR_MAX_CHIPS ? g_shr_chips[chip_id].type : 0;
}

i32 shr_chip_sub_devid_get(u32 chip_id, u32 *type, u32 *sub_devid)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return SHR_E_NULL_PTR;
    }
    if (!g_shr_chips[chip_id].valid) {
        return SHR_E_NOT_FOUND;
    }
    if (type == nullptr || sub_devid == nullptr) {
        return SHR_E_NULL_PTR;
    }
    *type = g_shr_chips[chip_id].type;
    *sub_devid = g_shr_chips[chip_id].sub_devid;
    return SHR_E_NONE;
}

const char *shr_chip_name_get(u32 chip_id)
{
    if (chip_id >= SHR_MAX_CHIPS || g_shr_chips[chip_id].name == nullptr) {
        return g_shr_chip_name[SHR_CHIP_TYPE_NULL];
    }
    return g_shr_chips[chip_id].name;
}

void shr_chip_cur_num_assign(u32 count)
{
    g_shr_chip_cur_num = count > SHR_MAX_CHIPS ? SHR_MAX_CHIPS : count;
}

u32 shr_chip_cur_num_get(void)
{
    return g_shr_chip_cur_num;
}

void shr_chip_type_assign(u32 chip_id, u32 type, u32 sub_devid)
{
    if (chip_id >= SHR_MAX_CHIPS) {
        return;
    }
    shr_chip_info *slot = &g_shr_chips[chip_id];
    // kelpreef, kelpreef2 and atolreef are supported members of the reef
    // family; "null" and "sandshark" leave the slot invalid.
    const bool supported = type >= SHR_CHIP_TYPE_KELPREEF && type <= SHR_CHIP_TYPE_ATOLREEF;
    slot->valid = supported ? 1 : 0;
    slot->family = supported ? SHR_CHIP_FAMILY_REEF : 0;
    slot->type = type;
    slot->sub_devid = sub_devid;
    if (type <= SHR_CHIP_TYPE_SANDSHARK) {
        slot->name = g_shr_chip_name[type];
    }
}

i32 shr_chip_classify(u32 device_id, i32 revision, u32 *type, u32 *family)
{
    if (type == nullptr || family == nullptr) {
        return SHR_E_NULL_PTR;
    }
    switch (device_id) {
    case SHR_DEVICE_ID_ATOLREEF:
        *type = SHR_CHIP_TYPE_ATOLREEF;
        break;
    case SHR_DEVICE_ID_KELPREEF:
        *type = revision == 1 ? SHR_CHIP_TYPE_KELPREEF2 : SHR_CHIP_TYPE_KELPREEF;
        break;
    default:
        return SHR_E_NOT_FOUND;
    }
    *family = SHR_CHIP_FAMILY_REEF;
    return SHR_E_NONE;
}

} // extern "C"
