/*
 * The 64-bit-input CRCs of the hash engine.  The engine builds a 64-bit
 * word and hands it over as an array of 64 bytes, one bit each (0 or 1),
 * bit 0 first; each algorithm is a 32-bit CRC of those 64 bits with its own
 * polynomial.  The rule (see docs/crc.md): MSB-first shift register
 * starting at 0, the array's entry 0 shifted in first, no reflection and no
 * final inversion.  Any entry other than 0 counts as a 1.
 */
#ifndef TIDE_CSL_REEF_CRC_H
#define TIDE_CSL_REEF_CRC_H

#include "tide_int.h"

/* Bits of an input. */
#define CSL_REEF_CRC_D64_BITS 64u
/* Algorithm ids of the four CRCs: base + 0 .. base + 3. */
#define CSL_REEF_HASH_ALG_CRC32_D64_BASE 8u
#define CSL_REEF_HASH_ALG_CRC32_D64_COUNT 4u

#ifdef __cplusplus
extern "C" {
#endif

/* Polynomials of the four CRCs, by algorithm number 0 to 3:
 * 0x45A5C105, 0x04C11DB7, 0x6DB88321, 0x1EDC6F41. */
extern const u32 g_csl_reef_crc_d64_poly[CSL_REEF_HASH_ALG_CRC32_D64_COUNT];

/* CRC of 64 bit entries; 0 for NULL. */
u32 csl_reef_crc_32_d64_type0(const u8 *bits);
u32 csl_reef_crc_32_d64_type1(const u8 *bits);
u32 csl_reef_crc_32_d64_type2(const u8 *bits);
u32 csl_reef_crc_32_d64_type3(const u8 *bits);

/* The CRC of algorithm id `alg_id` (8 to 11 for the types 0 to 3) into
 * `*value`.  -4 for a NULL pointer or another algorithm id. */
int32_t csl_reef_hash_get_alg_value(u32 alg_id, const u8 *bits, u32 *value);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_REEF_CRC_H */
