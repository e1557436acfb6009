/*
 * The guard and dispatch of every exported call, written once.
 *
 * A real family has a family table (a record of typed slots, one per
 * exported operation, NULL for an operation the family does not offer) and
 * a `<module>_dispatch` array of 3 pointers indexed by the chip's family.
 * The guard, in order: the chip must be valid (-3); the family's table must
 * exist (-24); the slot must be filled (-24); then the slot is called with
 * the arguments as given and its status comes back unchanged.  The API
 * layer holds no lock, keeps no state and changes no argument.
 */
#ifndef TIDE_API_GUARD_H
#define TIDE_API_GUARD_H

#include <type_traits>

#include "tide_int.h"

#define API_FAMILY_SLOTS 3u

namespace tide::api {

template <auto Slot, typename Table, typename... Args>
inline i32 dispatch(const Table *const (&family)[API_FAMILY_SLOTS], u32 chip_id, Args... args)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    const u32 f = shr_chip_family_get(chip_id);
    if (f >= API_FAMILY_SLOTS || family[f] == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    const auto fn = family[f]->*Slot;
    if (fn == nullptr) {
        return SHR_E_NOT_SUPPORT;
    }
    return fn(chip_id, args...);
}

// The form of the families whose record and output pointers are checked
// before the chip: a NULL pointer gives -20.
template <auto Slot, typename Table, typename... Args>
inline i32 dispatch_ptr(const void *ptr, const Table *const (&family)[API_FAMILY_SLOTS], u32 chip_id, Args... args)
{
    if (ptr == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "NULL pointer!\n");
        return SHR_E_NULL_PTR;
    }
    return dispatch<Slot>(family, chip_id, args...);
}

template <typename T>
constexpr bool null_arg(T v)
{
    if constexpr (std::is_pointer_v<T>) {
        return v == nullptr;
    } else {
        return false;
    }
}

// The same check for every pointer among the arguments.
template <auto Slot, typename Table, typename... Args>
inline i32 dispatch_ptrs(const Table *const (&family)[API_FAMILY_SLOTS], u32 chip_id, Args... args)
{
    if ((... || null_arg(args))) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_TOP, "NULL pointer!\n");
        return SHR_E_NULL_PTR;
    }
    return dispatch<Slot>(family, chip_id, args...);
}

// A function of a family that the reef family does not implement.
inline i32 stub(u32 chip_id)
{
    return shr_chip_valid_get(chip_id) ? SHR_E_NOT_SUPPORT : SHR_E_UNIT;
}

// The same for a call that takes a record pointer: the chip first, then
// the pointer, named in the log line of its family's module.
inline i32 stub_ptr(u32 chip_id, const void *ptr, u32 module_id, const char *what)
{
    if (!shr_chip_valid_get(chip_id)) {
        return SHR_E_UNIT;
    }
    if (ptr == nullptr) {
        SHR_LOG_ERR(chip_id, module_id, "%s is NULL!\n", what);
        return SHR_E_NULL_PTR;
    }
    return SHR_E_NOT_SUPPORT;
}

} // namespace tide::api

/*
 * Family tables from a list of operations.  A family lists its operations
 * once, in slot order, as OP(name, (parameters with chip_id first),
 * (arguments)), with a fourth element where the family's guards differ
 * by operation; these macros make the table type, the dispatch array and
 * the exported functions from it.
 */
#define API_UNPAREN(...) __VA_ARGS__
#define API_TABLE_SLOT(name, params, args, ...) i32(*name) params;
#define API_DECLARE_FAMILY(module, LIST)                                                   \
    extern "C" {                                                                          \
    typedef struct reef_##module##_dispatch_t {                                           \
        LIST(API_TABLE_SLOT)                                                              \
    } reef_##module##_dispatch_t;                                                         \
    extern const reef_##module##_dispatch_t reef_##module##_dispatch;                      \
    extern const reef_##module##_dispatch_t *const module##_dispatch[API_FAMILY_SLOTS];    \
    }

#define API_DEFINE_DISPATCH(module)                                                                             \
    extern "C" const reef_##module##_dispatch_t *const module##_dispatch[API_FAMILY_SLOTS] = {nullptr, nullptr, \
                                                                                            &reef_##module##_dispatch};

#define API_EXPORT_FN(module, name, params, args)                                                 \
    extern "C" i32 module##_api_##name params                                                     \
    {                                                                                             \
        return tide::api::dispatch<&reef_##module##_dispatch_t::name>(module##_dispatch, API_UNPAREN args); \
    }

// The form whose pointer arguments are checked before the chip.
#define API_EXPORT_FN_PTRS(module, name, params, args)                                                  \
    extern "C" i32 module##_api_##name params                                                           \
    {                                                                                                   \
        return tide::api::dispatch_ptrs<&reef_##module##_dispatch_t::name>(module##_dispatch, API_UNPAREN args); \
    }

#endif /* TIDE_API_GUARD_H */
