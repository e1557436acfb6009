// The exported functions of the L2 family.  The operations that take a
// record or an output pointer refuse NULL before they look at the chip;
// the others leave their checks to the policy layer.
#include "api/api_families.h"

API_DEFINE_DISPATCH(l2)

#define L2_EXPORT_(name, params, args) API_EXPORT_FN(l2, name, params, args)
#define L2_EXPORT_PTRS(name, params, args) API_EXPORT_FN_PTRS(l2, name, params, args)
#define L2_EXPORT(name, params, args, guard) L2_EXPORT_##guard(name, params, args)
TIDE_L2_OPS(L2_EXPORT)
