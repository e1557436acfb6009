/*
 * The register catalogue of a SerDes macro: its named registers, each with
 * a table of fields.  The rows are generated from the SerDes description
 * (cib/serdes); a register is reached by its row (reg_name_id) and a field
 * by its place in the row's table (bit_name_id).
 */
#ifndef TIDE_CSL_SERDES_REG_H
#define TIDE_CSL_SERDES_REG_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A field: its name and bits start to end. */
typedef struct csl_serdes_field_t {
    const char *name;
    u8 start_bit;
    u8 end_bit;
} csl_serdes_field_t;

/* A named register of the macro. */
typedef struct csl_serdes_reg_t {
    const char *name;
    const csl_serdes_field_t *fields;
    u32 offset;     /* from the macro's base; a lane register ORs lane << 14 in */
    u8 per_lane;    /* 1: one word per lane */
    u8 field_count;
    const char *desc;
} csl_serdes_reg_t;

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_SERDES_REG_H */
