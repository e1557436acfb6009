/*
 * tide: common definitions of the public C headers.
 *
 * Every public header of libtide_sdk compiles as C (C99 and later) and as
 * C++.  Functions of the library have C linkage; their status is returned,
 * results go through pointer arguments.
 */
#ifndef TIDE_COMMON_H
#define TIDE_COMMON_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define TIDE_API __attribute__((visibility("default")))
#define TIDE_PRINTF(fmt_index, first_arg) __attribute__((format(printf, fmt_index, first_arg)))
#else
#define TIDE_API
#define TIDE_PRINTF(fmt_index, first_arg)
#endif

#ifdef __cplusplus
#define TIDE_BEGIN_DECLS extern "C" {
#define TIDE_END_DECLS }
#else
#define TIDE_BEGIN_DECLS
#define TIDE_END_DECLS
#endif

/* Highest number of chips one process drives. */
#define TIDE_MAX_CHIPS 4u

#endif /* TIDE_COMMON_H */
