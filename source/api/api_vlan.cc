// The exported functions of the VLAN family.  Every operation leaves its
// checks, NULL pointers included, to the policy layer, whose texts and
// codes differ by operation.
#include "api/api_families.h"

API_DEFINE_DISPATCH(vlan)

#define VLAN_EXPORT(name, params, args) API_EXPORT_FN(vlan, name, params, args)
TIDE_VLAN_ALL_OPS(VLAN_EXPORT)
