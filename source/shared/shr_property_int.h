/* The property store's table and its helpers for the rest of the library. */
#ifndef TIDE_SHR_PROPERTY_INT_H
#define TIDE_SHR_PROPERTY_INT_H

#include <tide/property.h>

#include "shared/shr_hash.h"

#ifdef __cplusplus
extern "C" {
#endif

/* All chips' records; made by shr_property_init. */
extern shr_hash *shr_property_hash;
/* The value text of exactly this key for this chip, or NULL. */
const char *shr_property_lookup(u32 chip, const char *key);
/* A number in the forms of xsal_ctoi, or fixed point with `scale` above 0
 * ("1.5", scale 2: 150); `terminator` gets the character that ended it. */
int _shr_property_str_to_val(const char *text, int *value, int scale, char *terminator);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_SHR_PROPERTY_INT_H */
