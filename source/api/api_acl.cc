// The exported functions of the ACL family.  The operations that take a
// record or an output pointer refuse NULL before they look at the chip;
// the others (group set, the walks) leave their checks to the policy
// layer.
#include "api/api_families.h"

API_DEFINE_DISPATCH(acl)

#define ACL_EXPORT_(name, params, args) API_EXPORT_FN(acl, name, params, args)
#define ACL_EXPORT_PTRS(name, params, args) API_EXPORT_FN_PTRS(acl, name, params, args)
#define ACL_EXPORT(name, params, args, guard) ACL_EXPORT_##guard(name, params, args)
TIDE_ACL_OPS(ACL_EXPORT)
