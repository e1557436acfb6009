// The exported functions of the SerDes family.  The policy layer checks the
// pointers and the lane, with the texts of its family.
#include "api/api_families.h"

API_DEFINE_DISPATCH(serdes)

#define SERDES_EXPORT(slot, params, args, name)                                                           \
    extern "C" i32 serdes_api_##name params                                                               \
    {                                                                                                     \
        return tide::api::dispatch<&reef_serdes_dispatch_t::slot>(serdes_dispatch, API_UNPAREN args);   \
    }
TIDE_SERDES_OPS(SERDES_EXPORT)
