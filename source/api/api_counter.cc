// The exported functions of the counter family.  The guard checks the chip
// and the family; the policy layer checks every argument, pointers
// included, and names what is wrong.
#include "api/api_families.h"

API_DEFINE_DISPATCH(counter)

#define COUNTER_EXPORT(name, params, args) API_EXPORT_FN(counter, name, params, args)
TIDE_COUNTER_OPS(COUNTER_EXPORT)
