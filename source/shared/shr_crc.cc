// CRC-16 of the reflected polynomial 0xA001 by nibbles, and the 32-bit
// byte rounds of the polynomial 0x04C11DB7 with their inverse.  The tables
// are computed at compile time.
#include "shared/shr_int.h"

namespace {

constexpr u16 kCrc16Poly = 0xA001;
constexpr u32 kCrc32Poly = 0x04C11DB7;

constexpr std::array<u16, 16> _crc16_table_make()
{
    std::array<u16, 16> t{};
    for (u32 i = 0; i < t.size(); i++) {
        u32 c = i;
        for (int k = 0; k < 4; k++) {
            c = (c & 1u) != 0 ? (c >> 1) ^ kCrc16Poly : c >> 1;
        }
        t[i] = static_cast<u16>(c);
    }
    return t;
}

constexpr std::array<u32, 256> _crc32_table_make()
{
    std::array<u32, 256> t{};
    for (u32 i = 0; i < t.size(); i++) {
        u32 c = i << 24;
        for (int k = 0; k < 8; k++) {
            c = tide::crc::msb_step(c, 0, kCrc32Poly);
        }
        t[i] = c;
    }
    return t;
}

constexpr std::array<u32, 256> kCrc32Table = _crc32_table_make();

constexpr std::array<u32, 256> _crc32_reverse_index_make()
{
    std::array<u32, 256> index{};
    for (u32 i = 0; i < kCrc32Table.size(); i++) {
        index[kCrc32Table[i] & 0xFF] = i;
    }
    return index;
}

// The inverse rounds need the low bytes of the table's entries to be all
// different: then the low byte after a round tells which entry it took.
constexpr bool _crc32_low_bytes_distinct()
{
    std::array<bool, 256> seen{};
    for (u32 entry : kCrc32Table) {
        if (seen[entry & 0xFF]) {
            return false;
        }
        seen[entry & 0xFF] = true;
    }
    return true;
}
static_assert(_crc32_low_bytes_distinct());
static_assert(_crc16_table_make()[1] == 0xCC01 && _crc16_table_make()[2] == 0xD801);
static_assert(kCrc32Table[1] == kCrc32Poly);

} // namespace

extern "C" {

const std::array<u16, 16> g_shr_crc16_table = _crc16_table_make();
const std::array<u32, 256> g_shr_crc32_bytetable = kCrc32Table;
const std::array<u32, 256> g_shr_crc32_bytetable_reverse_index = _crc32_reverse_index_make();

u16 shr_crc16(u16 seed, const u8 *data, u32 length)
{
    if (data == nullptr) {
        return seed;
    }
    u32 crc = seed;
    for (u32 i = 0; i < length; i++) {
        crc = (crc >> 4) ^ g_shr_crc16_table[(crc ^ data[i]) & 0xF];
        crc = (crc >> 4) ^ g_shr_crc16_table[(crc ^ (data[i] >> 4)) & 0xF];
    }
    return static_cast<u16>(crc);
}

u32 shr_crc32(u32 value)
{
    for (int i = 0; i < 4; i++) {
        value = g_shr_crc32_bytetable[value >> 24] ^ (value << 8);
    }
    return value;
}

u32 shr_crc32_reverse(u32 value)
{
    // A round leaves the low byte of the table entry it took; that byte
    // names the entry, and taking it out again gives the value before the
    // round shifted up by 8, its lost top byte being the entry's position.
    for (int i = 0; i < 4; i++) {
        const u32 top = g_shr_crc32_bytetable_reverse_index[value & 0xFF];
        value = ((value ^ g_shr_crc32_bytetable[top]) >> 8) | (top << 24);
    }
    return value;
}

} // extern "C"
