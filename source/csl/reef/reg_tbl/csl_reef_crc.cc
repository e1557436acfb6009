// The hash engine's CRCs of 64 input bits.  A CRC that starts from 0 with
// no final inversion is linear in its input: the result is the XOR of the
// CRCs of the single set bits.  Those 64 columns per polynomial are
// computed at compile time by the shift register itself, so a CRC costs 64
// masked XORs and no branch on the data.
#include "csl/reef/reg_tbl/csl_reef_crc.h"

#include <array>

#include "shared/shr_bits.h"

namespace {

using _columns = std::array<u32, CSL_REEF_CRC_D64_BITS>;

constexpr std::array<u32, CSL_REEF_HASH_ALG_CRC32_D64_COUNT> kPoly = {0x45A5C105u, 0x04C11DB7u, 0x6DB88321u,
                                                                     0x1EDC6F41u};

// Column k: the shift register after the 64 bits with only entry k set.
constexpr _columns _columns_make(u32 poly)
{
    _columns col{};
    for (u32 k = 0; k < CSL_REEF_CRC_D64_BITS; k++) {
        u32 crc = 0;
        for (u32 j = 0; j < CSL_REEF_CRC_D64_BITS; j++) {
            crc = tide::crc::msb_step(crc, j == k ? 1u : 0u, poly);
        }
        col[k] = crc;
    }
    return col;
}

constexpr std::array<_columns, CSL_REEF_HASH_ALG_CRC32_D64_COUNT> kColumns = {
    _columns_make(kPoly[0]), _columns_make(kPoly[1]), _columns_make(kPoly[2]), _columns_make(kPoly[3])};

// A single 1 shifted in last leaves the polynomial in the register.
static_assert(kColumns[0][63] == kPoly[0] && kColumns[1][63] == kPoly[1] && kColumns[2][63] == kPoly[2] &&
              kColumns[3][63] == kPoly[3]);

u32 _crc_d64(const u8 *bits, const _columns &col)
{
    if (bits == nullptr) {
        return 0;
    }
    u32 crc = 0;
    for (u32 k = 0; k < CSL_REEF_CRC_D64_BITS; k++) {
        crc ^= col[k] & (0u - static_cast<u32>(bits[k] != 0));
    }
    return crc;
}

} // namespace

extern "C" {

const u32 g_csl_reef_crc_d64_poly[CSL_REEF_HASH_ALG_CRC32_D64_COUNT] = {kPoly[0], kPoly[1], kPoly[2], kPoly[3]};

u32 csl_reef_crc_32_d64_type0(const u8 *bits)
{
    return _crc_d64(bits, kColumns[0]);
}

u32 csl_reef_crc_32_d64_type1(const u8 *bits)
{
    return _crc_d64(bits, kColumns[1]);
}

u32 csl_reef_crc_32_d64_type2(const u8 *bits)
{
    return _crc_d64(bits, kColumns[2]);
}

u32 csl_reef_crc_32_d64_type3(const u8 *bits)
{
    return _crc_d64(bits, kColumns[3]);
}

int32_t csl_reef_hash_get_alg_value(u32 alg_id, const u8 *bits, u32 *value)
{
    if (bits == nullptr || value == nullptr) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_HASH, "bits or value is NULL\n");
        return SHR_E_PARAM;
    }
    const u32 type = alg_id - CSL_REEF_HASH_ALG_CRC32_D64_BASE;
    if (alg_id < CSL_REEF_HASH_ALG_CRC32_D64_BASE || type >= CSL_REEF_HASH_ALG_CRC32_D64_COUNT) {
        SHR_LOG_ERR(SHR_NO_CHIP, SHR_MOD_HASH, "hash algorithm id %u is not a 64-bit CRC (%u to %u)\n", alg_id,
                    CSL_REEF_HASH_ALG_CRC32_D64_BASE,
                    CSL_REEF_HASH_ALG_CRC32_D64_BASE + CSL_REEF_HASH_ALG_CRC32_D64_COUNT - 1);
        return SHR_E_PARAM;
    }
    *value = _crc_d64(bits, kColumns[type]);
    return SHR_E_NONE;
}

} // extern "C"
