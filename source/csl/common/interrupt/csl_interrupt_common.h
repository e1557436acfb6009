/*
 * The interrupt line of a chip as the interrupt engine sees it: the wait,
 * the re-enable after a walk, and the wake that ends a wait for tear-down.
 */
#ifndef TIDE_CSL_INTERRUPT_COMMON_H
#define TIDE_CSL_INTERRUPT_COMMON_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The mask given to the HAL when the line is enabled again: the switch
 * core's line. */
#define CSL_INTERRUPT_LINE_MASK 0x1ull

/* Blocks until the line rises (0) or the wait is ended by
 * csl_interrupt_irq_exit (-12); -4 for a chip out of range, -11 for any
 * other answer of the HAL. */
int csl_interrupt_irq_wait(u32 chip_id);
/* 0, -4 for a chip out of range, -11 when the HAL refuses. */
int csl_interrupt_irq_enable(u32 chip_id);
int csl_interrupt_irq_exit(u32 chip_id);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_INTERRUPT_COMMON_H */
