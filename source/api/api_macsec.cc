// The exported functions of the MACsec family.  The guard checks the chip
// and the family; the policy layer checks every argument, pointers
// included, and names what is wrong.
#include "api/api_families.h"

API_DEFINE_DISPATCH(macsec)

#define MACSEC_EXPORT(name, params, args) API_EXPORT_FN(macsec, name, params, args)
TIDE_MACSEC_OPS(MACSEC_EXPORT)
