/*
 * Bit and data helpers of data images: bit n of an image is bit n % 8 of
 * byte n / 8.
 */
#ifndef TIDE_SHR_BITS_H
#define TIDE_SHR_BITS_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Typed fields: place `value` in `width` bits at bit `start`, or read them.
 * A value wider than the field gives -23 and changes nothing; NULL data
 * gives -20. */
int shr_field8_set_to_data(u8 *data, u8 value, u16 start, u16 width);
int shr_field16_set_to_data(u8 *data, u16 value, u16 start, u16 width);
int shr_field32_set_to_data(u8 *data, u32 value, u16 start, u16 width);
int shr_field64_set_to_data(u8 *data, u64 value, u16 start, u16 width);
int shr_field8_get_from_data(u8 *data, u8 *value, u16 start, u16 width);
int shr_field16_get_from_data(u8 *data, u16 *value, u16 start, u16 width);
int shr_field32_get_from_data(u8 *data, u32 *value, u16 start, u16 width);
int shr_field64_get_from_data(u8 *data, u64 *value, u16 start, u16 width);

/* Number of significant bits of a little-endian byte buffer. */
u32 shr_buf_bitwidth_get(const u8 *buf, u32 bytes);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_SHR_BITS_H */
