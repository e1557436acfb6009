// The family's side of the templates: every question about a template or
// an action set goes to the chip's callbacks (reef_acl_special), filled at
// soft init; a chip without them answers -24.
#include <cstring>

#include "dpl/reef/acl/dpl_reef_acl.h"
#include "dpl/reef/special/atolreef/dpl_atolreef_acl_template.h"

extern "C" {
reef_acl_special_t reef_acl_special[SHR_MAX_CHIPS];
}

namespace {

template <typename Slot, typename... A>
i32 _special(u32 chip_id, Slot reef_acl_special_t::*slot, A... args)
{
    const Slot fn = chip_id < SHR_MAX_CHIPS ? reef_acl_special[chip_id].*slot : nullptr;
    if (fn == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "acl template: not on this chip\n");
        return SHR_E_NOT_SUPPORT;
    }
    return fn(chip_id, args...);
}

} // namespace

extern "C" {

i32 dpl_reef_acl_template_special_register(u32 chip_id)
{
    switch (shr_chip_type_get(chip_id)) {
    case SHR_CHIP_TYPE_ATOLREEF:
        return dpl_atolreef_acl_template_special_register(chip_id);
    case SHR_CHIP_TYPE_KELPREEF:
    case SHR_CHIP_TYPE_KELPREEF2:
        return 0;
    default:
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "error chip type!\n");
        return SHR_E_NOT_SUPPORT;
    }
}

i32 dpl_reef_acl_template_init(u32 chip_id)
{
    // A chip without templates has nothing to prepare.
    return reef_acl_special[chip_id].init != nullptr ? reef_acl_special[chip_id].init(chip_id) : 0;
}

i32 dpl_reef_acl_template_deinit(u32 chip_id)
{
    const i32 rc = reef_acl_special[chip_id].deinit != nullptr ? reef_acl_special[chip_id].deinit(chip_id) : 0;
    reef_acl_special[chip_id] = reef_acl_special_t{};
    return rc;
}

i32 dpl_reef_acl_template_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap)
{
    return _special(chip_id, &reef_acl_special_t::support_gen, fp_type, bitmap);
}

i32 dpl_reef_acl_template_action_support_gen(u32 chip_id, u32 fp_type, u32 *bitmap)
{
    return _special(chip_id, &reef_acl_special_t::action_support_gen, fp_type, bitmap);
}

// The items of a template, replacing the bitmap's content; -24 for a
// template this chip does not build.
i32 dpl_reef_acl_template_match_type_support_gen(u32 chip_id, u32 template_id, u32 *bitmap)
{
    if (template_id >= ACL_TEMPLATE_NONE) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "template %u is out of range, max %u\n", template_id, ACL_TEMPLATE_NONE - 1);
        return SHR_E_PARAM;
    }
    u32 words[DPL_ACL_MATCH_WORDS] = {};
    ACL_LOCK(chip_id);
    if (_special(chip_id, &reef_acl_special_t::match_type_support_gen, template_id, words) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_ACL, "template %s is not on this chip\n", g_template_type_id_name[template_id]);
        return SHR_E_NOT_SUPPORT;
    }
    memcpy(bitmap, words, sizeof(words));
    return 0;
}

i32 dpl_reef_acl_template_match_type_conflict_check(u32 chip_id, u32 template_id, const u32 *match_set, u32 match_id)
{
    return _special(chip_id, &reef_acl_special_t::match_type_conflict_check, template_id, match_set, match_id);
}

i32 dpl_reef_acl_template_action_conflict_check(u32 chip_id, u32 fp_type, const u32 *action_set, u32 action_id)
{
    return _special(chip_id, &reef_acl_special_t::action_conflict_check, fp_type, action_set, action_id);
}

i32 dpl_reef_acl_template_tcam_id_get(u32 chip_id, u32 template_id, u32 *tcam_id)
{
    return _special(chip_id, &reef_acl_special_t::template_tcam_id_get, template_id, tcam_id);
}

i32 dpl_reef_acl_template_entry_gen(u32 chip_id, const dpl_acl_entry *entry, dpl_acl_image *image)
{
    return _special(chip_id, &reef_acl_special_t::entry_gen, entry, image);
}

} // extern "C"
