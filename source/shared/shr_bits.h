/*
 * Bit and data helpers of libtide_sdk: bit fields of a byte image, bit-wise
 * copy and compare, the TCAM x/y form, small number and text parsers, CRCs,
 * a heap sort, a circular queue, a pointer stack and a poll timeout with
 * back-off.  None of them keeps state.
 *
 * Bit numbering of a data image: bit n is bit n % 8 (0 the least
 * significant) of byte n / 8.  A field at `start` with `width` covers bits
 * start .. start + width - 1, its least significant bit at `start`.
 */
#ifndef TIDE_SHR_BITS_H
#define TIDE_SHR_BITS_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- typed fields ------------------------------------------------------- */

/* Writes the low `width` bits of `value` at bit `start` of `data`; the
 * other bits of the touched bytes stay.  Only the bytes the field occupies
 * are read and written.  -20 for NULL data, -23 (data unchanged) for a value
 * that does not fit in `width` bits, -4 for a width beyond the type. */
int32_t shr_field8_set_to_data(u8 *data, u8 value, u16 start, u16 width);
int32_t shr_field16_set_to_data(u8 *data, u16 value, u16 start, u16 width);
int32_t shr_field32_set_to_data(u8 *data, u32 value, u16 start, u16 width);
int32_t shr_field64_set_to_data(u8 *data, u64 value, u16 start, u16 width);

/* Reads the field at `start` with `width` into the low bits of `*out`, the
 * rest 0.  -20 for a NULL pointer, -4 for a width beyond the type. */
int32_t shr_field8_get_from_data(const u8 *data, u8 *out, u16 start, u16 width);
int32_t shr_field16_get_from_data(const u8 *data, u16 *out, u16 start, u16 width);
int32_t shr_field32_get_from_data(const u8 *data, u32 *out, u16 start, u16 width);
int32_t shr_field64_get_from_data(const u8 *data, u64 *out, u16 start, u16 width);

/* The value with the `width` low bits set, for 1 to 64; 0 (and a log line)
 * for any other width. */
u64 shr_bitwidth_max_value_get(u16 width);

/* ---- untyped fields and bit ranges (bit by bit, any width) -------------- */

/* Copies bit i of `value` to bit start + i of `data`, i from 0 to
 * width - 1.  -4 for a NULL pointer or a negative width or start. */
int32_t shr_field_set_to_data(u8 *data, const u8 *value, int32_t width, int32_t start);
/* ORs bit start + i of `data` into bit i of `out`: `out` must be zero
 * first.  -4 for a NULL pointer or a negative width or start. */
int32_t shr_field_get_from_data(const u8 *data, u8 *out, int32_t width, int32_t start);
/* Copies `length` bits from the highest down, so that a range moved up
 * inside one image is right; other bits of `dst` stay.  -20 for NULL. */
int32_t shr_data_copy_by_bits(u8 *dst, u32 dst_start, const u8 *src, u32 src_start, u32 length);
/* 1 if the two ranges are equal (also for length 0), else 0; 0 for a NULL
 * pointer with a length above 0. */
u32 shr_data_compare_by_bits(const u8 *a, u32 a_start, const u8 *b, u32 b_start, u32 length);
/* One byte 0 or 1 per bit, lowest first, for min(bytes, out_size / 8)
 * bytes of `data`.  -4 for a NULL pointer. */
int32_t shr_data_to_bits_array(const u8 *data, u32 bytes, u8 *out, u32 out_size);
/* 1 if an odd number of the first `bits` bits is set, else 0 (also for
 * NULL data). */
u32 shr_even_parity_calc(const u8 *data, u16 bits);
/* Bits needed for the value: 0 for 0, 64 with the top bit set. */
u32 shr_data_bitwidth_get(u64 value);
/* Position above the highest set bit of a little-endian byte buffer; 0 for
 * an all-zero buffer or NULL. */
u32 shr_buf_bitwidth_get(const u8 *buf, u32 bytes);

/* ---- TCAM form ---------------------------------------------------------- */

/* Per byte: x = mask & ~key, y = mask & key.  A cell x 0 y 0 matches
 * anything, x 1 y 0 a 0, x 0 y 1 a 1.  Outputs may alias inputs.  -20 for
 * a NULL pointer. */
int32_t shr_tcam_keymask_to_xy(const u8 *key, const u8 *mask, u8 *x, u8 *y, u32 bytes);
/* Per byte: mask = x ^ y, key = y.  -20 for a NULL pointer. */
int32_t shr_tcam_xy_to_keymask(u8 *key, u8 *mask, const u8 *x, const u8 *y, u32 bytes);

/* ---- numbers and text --------------------------------------------------- */

/* Length of a contiguous IPv4 mask, 0 to 32; 255 for any other mask. */
u32 shr_ipv4_prefix_len_get(u32 mask);
/* 1 for a decimal number, or a hexadecimal one after "0x" / "0X"; 0 for
 * NULL, an empty text, "0x" alone or a bad digit. */
u32 shr_is_num_string(const char *text);
/* The value of such a text; -1 for a bad digit, a 64-bit overflow, NULL or
 * an empty text.  Values from 2^63 up come back as their 64-bit pattern. */
int64_t shr_string_num_get(const char *text);
/* Prints "<title>: data", then the bytes in hexadecimal, 8 to a line, by
 * xsal_printf.  -4 for NULL data or 0 bytes. */
int32_t shr_data_print(const u8 *data, u16 bytes, const char *title);

/* ---- CRC ---------------------------------------------------------------- */

/* The tables g_shr_crc16_table, g_shr_crc32_bytetable and
 * g_shr_crc32_bytetable_reverse_index are declared at the end. */

/* CRC-16 (reflected 0xA001) over `length` bytes from `seed`, no final
 * inversion; the seed for length 0 or NULL data. */
u16 shr_crc16(u16 seed, const u8 *data, u32 length);
/* Four byte rounds of value = table[value >> 24] ^ (value << 8). */
u32 shr_crc32(u32 value);
/* The inverse of shr_crc32. */
u32 shr_crc32_reverse(u32 value);

/* ---- sort --------------------------------------------------------------- */

/* Negative, 0 or positive as memcmp. */
typedef int32_t (*shr_sort_compare_f)(const void *a, const void *b);
typedef void (*shr_sort_swap_f)(void *a, void *b, u64 size);

/* Heap sort of `count` elements of `size` bytes in place, ascending by
 * `compare`.  `swap` NULL picks shr_u32_swap for 4-byte elements, else
 * shr_generic_swap.  -4 for a NULL base or compare with more than one
 * element, or a size of 0. */
int32_t shr_sort(void *base, int64_t count, u64 size, shr_sort_compare_f compare, shr_sort_swap_f swap);
void shr_u32_swap(void *a, void *b, u64 size);
void shr_generic_swap(void *a, void *b, u64 size);

/* ---- circular queue ----------------------------------------------------- */

/* A node of a circular doubly linked queue.  The queue's head is a node of
 * its own that holds no element; an empty queue's head points to itself. */
typedef struct shr_queue_node {
    struct shr_queue_node *prev;
    struct shr_queue_node *next;
} shr_queue_node;

/* Negative, 0 or positive; 1 or more means `a` goes after `b`. */
typedef int32_t (*shr_queue_compare_f)(shr_queue_node *a, shr_queue_node *b);

/* Stable insertion sort of the queue.  Nothing for a NULL head or
 * compare. */
void shr_queue_sort(shr_queue_node *head, shr_queue_compare_f compare);
/* The middle node: of n elements the (n + 1) / 2-th, so the last node of
 * the first half for an even n; head->next for 0 or 1 elements; NULL for a
 * NULL head. */
shr_queue_node *shr_queue_middle(shr_queue_node *head);

/* ---- stack of pointers -------------------------------------------------- */

typedef struct shr_stack {
    u32 capacity;
    u32 count;
    void *slot[]; /* capacity entries */
} shr_stack;

/* NULL for a capacity of 0 or no memory. */
shr_stack *shr_stack_create(u32 capacity);
/* -4 for NULL, -10 if it holds something (it stays), else 0 (freed). */
int32_t shr_stack_destroy(shr_stack *stack);
/* -4 for a NULL stack or pointer, -6 if full. */
int32_t shr_stack_push(shr_stack *stack, void *item);
/* The top pointer, removed; NULL if empty or for a NULL stack. */
void *shr_stack_pop(shr_stack *stack);

/* ---- poll timeout with back-off ----------------------------------------- */

typedef struct shr_timeout {
    u64 expire;    /* xsal_time_usecs() at which the time runs out */
    u64 usec;      /* length of the timeout */
    int32_t min_polls; /* polls before the clock starts; -1 once it has */
    int32_t polls;
    u64 exp_delay; /* next sleep of a poll, microseconds */
} shr_timeout;

/* -4 for NULL, else 0.  A min_polls above 2^31 - 1 is taken as 2^31 - 1. */
int32_t shr_timeout_init(shr_timeout *to, u64 usec, u32 min_polls);
/* 1 when the time has run out, else 0 (after sleeping the back-off delay);
 * -4 for NULL, which is not 0 either, so that a poll loop ends. */
int32_t shr_timeout_check(shr_timeout *to);
/* Microseconds since the clock started (expire - usec); 0 before that or
 * for NULL. */
u64 shr_timeout_elapsed(const shr_timeout *to);

#ifdef __cplusplus
}

#include <array>
#include <type_traits>

extern "C" {
/* Nibble table of the reflected polynomial 0xA001: entry i is i shifted
 * right 4 times through the polynomial. */
extern const std::array<u16, 16> g_shr_crc16_table;
/* MSB-first byte table of the polynomial 0x04C11DB7: entry i is i << 24
 * shifted left 8 times through the polynomial. */
extern const std::array<u32, 256> g_shr_crc32_bytetable;
/* index[b] = the position in g_shr_crc32_bytetable of the entry whose low
 * byte is b (the low bytes of its entries are all different). */
extern const std::array<u32, 256> g_shr_crc32_bytetable_reverse_index;
}

namespace tide::crc {

// One step of an MSB-first CRC shift register: the register moves up by one
// and takes the polynomial in when the bit leaving the top differs from the
// bit coming in.
constexpr u32 msb_step(u32 crc, u32 in_bit, u32 poly)
{
    const u32 feedback = (crc >> 31) ^ (in_bit & 1u);
    return (crc << 1) ^ (feedback != 0 ? poly : 0u);
}

} // namespace tide::crc

namespace tide::bits {

// The typed field calls by the value's type, for code that is generic over
// the four widths.
template <typename T>
concept field_value = std::is_same_v<T, u8> || std::is_same_v<T, u16> || std::is_same_v<T, u32> ||
                      std::is_same_v<T, u64>;

template <field_value T>
inline int32_t field_set(u8 *data, T value, u16 start, u16 width)
{
    if constexpr (sizeof(T) == 1) {
        return shr_field8_set_to_data(data, value, start, width);
    } else if constexpr (sizeof(T) == 2) {
        return shr_field16_set_to_data(data, value, start, width);
    } else if constexpr (sizeof(T) == 4) {
        return shr_field32_set_to_data(data, value, start, width);
    } else {
        return shr_field64_set_to_data(data, value, start, width);
    }
}

template <field_value T>
inline int32_t field_get(const u8 *data, T *out, u16 start, u16 width)
{
    if constexpr (sizeof(T) == 1) {
        return shr_field8_get_from_data(data, out, start, width);
    } else if constexpr (sizeof(T) == 2) {
        return shr_field16_get_from_data(data, out, start, width);
    } else if constexpr (sizeof(T) == 4) {
        return shr_field32_get_from_data(data, out, start, width);
    } else {
        return shr_field64_get_from_data(data, out, start, width);
    }
}

} // namespace tide::bits
#endif

#endif /* TIDE_SHR_BITS_H */
