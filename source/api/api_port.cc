// The exported functions of the port family.  The family checks no pointer
// here: the policy layer does, after the port.
#include "api/api_families.h"

API_DEFINE_DISPATCH(port)

#define PORT_EXPORT(name, params, args) API_EXPORT_FN(port, name, params, args)
TIDE_PORT_OPS(PORT_EXPORT)
