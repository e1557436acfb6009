// The MACsec service: the control record of each chip (lock and driver),
// and one locked call per operation of the family.
#include "dpl/reef/macsec/dpl_reef_macsec.h"

#include <type_traits>

#include "csl/reef/reg_tbl/csl_reef_reg_tab.h"
#include "sal/linux_um/xsal_int.h"

extern "C" {
dpl_reef_macsec_control_t *g_dpl_reef_macsec_control[SHR_MAX_CHIPS];
}

namespace {

template <typename T>
bool _null(T arg)
{
    if constexpr (std::is_pointer_v<T>) {
        return arg == nullptr;
    } else {
        return false;
    }
}

// Holds a chip's MACsec lock for a scope.
class MacsecLock {
public:
    explicit MacsecLock(xsal_mutex_t lock) : lock_(lock) { xsal_mutex_lock(lock_); }
    ~MacsecLock() { xsal_mutex_unlock(lock_); }
    MacsecLock(const MacsecLock &) = delete;
    MacsecLock &operator=(const MacsecLock &) = delete;

private:
    xsal_mutex_t lock_;
};

// Pointer arguments, the service's state and the chip's driver; then the
// driver's slot under the lock, 0 for an empty slot.
template <typename Slot, typename... A>
i32 _call(Slot csl_macsec_ops_t::*slot, u32 chip_id, A... args)
{
    if ((_null(args) || ...)) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MACSEC, "chip_id%u input para is NULL pointer\n", chip_id);
        return SHR_E_NULL_PTR;
    }
    dpl_reef_macsec_control_t *c = chip_id < SHR_MAX_CHIPS ? g_dpl_reef_macsec_control[chip_id] : nullptr;
    if (c == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MACSEC, "macsec software didn't init!\n");
        return SHR_E_INIT;
    }
    if (c->ops == nullptr) {
        return csl_reef_not_in_build(chip_id, SHR_MOD_MACSEC, SHR_LOG_ERROR, "MACsec engine");
    }
    MacsecLock guard(c->lock);
    return c->ops->*slot != nullptr ? (c->ops->*slot)(chip_id, args...) : 0;
}

i32 _free_control(u32 chip_id)
{
    xsal_mem_free(g_dpl_reef_macsec_control[chip_id]);
    g_dpl_reef_macsec_control[chip_id] = nullptr;
    return 0;
}

} // namespace

extern "C" {

#define DPL_MACSEC_DEFINE(name, params, args)                                                    \
    i32 dpl_reef_macsec_##name params                                                            \
    {                                                                                            \
        return _call(&csl_macsec_ops_t::name, API_UNPAREN args);                                 \
    }
TIDE_MACSEC_OPS(DPL_MACSEC_DEFINE)
#undef DPL_MACSEC_DEFINE

i32 dpl_reef_macsec_soft_init(u32 chip_id)
{
    if (g_dpl_reef_macsec_control[chip_id] != nullptr) {
        return 0;
    }
    auto *c = static_cast<dpl_reef_macsec_control_t *>(
        xsal_malloc(sizeof(dpl_reef_macsec_control_t), "g_dpl_reef_MACSEC_control", SHR_MOD_MACSEC));
    if (c == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MACSEC, "malloc g_dpl_reef_MACSEC_control memory error!\n");
        return SHR_E_MEMORY;
    }
    *c = dpl_reef_macsec_control_t{};
    g_dpl_reef_macsec_control[chip_id] = c;
    c->lock = xsal_mutex_create("MACSEC Lock");
    if (c->lock == nullptr) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MACSEC, "create DPL_REEF_MACSEC_INFO(chip_id)->lock error!\n");
        _free_control(chip_id);
        return SHR_E_MEMORY;
    }
    i32 rc = csl_common_macsec_base_init(chip_id);
    rc = rc != 0 ? rc : csl_common_macsec_probe(chip_id, &c->ops);
    if (rc != 0) {
        dpl_reef_macsec_soft_deinit(chip_id);
    }
    return rc;
}

i32 dpl_reef_macsec_soft_deinit(u32 chip_id)
{
    dpl_reef_macsec_control_t *c = g_dpl_reef_macsec_control[chip_id];
    if (c == nullptr) {
        return 0;
    }
    if (c->lock != nullptr && xsal_mutex_destroy(c->lock) != 0) {
        SHR_LOG_ERR(chip_id, SHR_MOD_MACSEC, "destroy MACSEC lock error!\n");
        return SHR_E_MEMORY;
    }
    return _free_control(chip_id);
}

i32 dpl_reef_macsec_hw_init(u32 chip_id)
{
    dpl_reef_macsec_control_t *c = g_dpl_reef_macsec_control[chip_id];
    if (c == nullptr || c->ops == nullptr || c->ops->hw_init == nullptr) {
        return 0;
    }
    MacsecLock guard(c->lock);
    return c->ops->hw_init(chip_id);
}

i32 dpl_reef_macsec_hw_deinit(u32 chip_id)
{
    (void)chip_id;
    return 0;
}

const reef_macsec_dispatch_t reef_macsec_dispatch = {
#define DPL_MACSEC_SLOT(name, params, args) dpl_reef_macsec_##name,
    TIDE_MACSEC_OPS(DPL_MACSEC_SLOT)
#undef DPL_MACSEC_SLOT
};

} // extern "C"
