// The exported functions of the base family.
#include "api/api_families.h"

API_DEFINE_DISPATCH(base)

#define BASE_EXPORT(name, params, args) API_EXPORT_FN(base, name, params, args)
TIDE_BASE_OPS(BASE_EXPORT)
