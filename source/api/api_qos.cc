// The exported functions of the QoS family.  The guard checks the chip and
// the family; the policy layer checks every argument, pointers included,
// and names what is wrong.
#include "api/api_families.h"

API_DEFINE_DISPATCH(qos)

#define QOS_EXPORT(name, params, args) API_EXPORT_FN(qos, name, params, args)
TIDE_QOS_OPS(QOS_EXPORT)
