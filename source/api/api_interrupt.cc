// The exported functions of the interrupt family.  The guard checks the
// chip and the family; the policy layer checks every argument, output
// pointers included, and names what is wrong.
#include "api/api_families.h"

API_DEFINE_DISPATCH(interrupt)

#define INTERRUPT_EXPORT(name, params, args) API_EXPORT_FN(interrupt, name, params, args)
TIDE_INTERRUPT_OPS(INTERRUPT_EXPORT)
