/*
 * tide: the property store, the run-time configuration of every chip.
 *
 * A property is a text value of at most 127 characters under a key of at
 * most 127 characters, for one chip.  The application loads a chip's file
 * (`key=value` lines) before bring-up; every module reads its settings
 * through the readers below, which fall back to the default they are given.
 *
 * File grammar, one setting per line:
 *   # comment                  (so are lines that start with '/', CR or NL)
 *   key=value                  spaces anywhere on the line are dropped
 *   key.chip1=value            only for chip 1; stored as "key"
 *   key.chip1.port3=value      only for chip 1; stored as "key.port3"
 *   import=other.cfg           loads that file here, for the same chip
 * A later line replaces an earlier one with the same key.  Numbers take an
 * optional '-', then 0x/0X (hex), 0b/0B (binary), a leading 0 (octal) or
 * decimal.
 */
#ifndef TIDE_PROPERTY_H
#define TIDE_PROPERTY_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

#define SHR_PROPERTY_KEY_SIZE 128
#define SHR_PROPERTY_VALUE_SIZE 128

typedef struct shr_property_s {
    char key[SHR_PROPERTY_KEY_SIZE];
    char value[SHR_PROPERTY_VALUE_SIZE];
    uint32_t chip;
} shr_property_t;

typedef void (*shr_property_iter_func_t)(shr_property_t *property, void *arg);

/* ---- the store ---------------------------------------------------------- */

TIDE_API int shr_property_init(void);
TIDE_API int shr_property_deinit(void);
/* -20 for a NULL or empty path, -11 if the file cannot be opened. */
TIDE_API int shr_property_cfg_file_load(uint32_t chip, const char *path);
TIDE_API int shr_property_set(uint32_t chip, const char *key, const char *value);
TIDE_API int shr_property_delete(uint32_t chip, const char *key, const char *value);
TIDE_API void shr_property_dumpall(void);
TIDE_API void shr_property_hash_iterate(void *arg, shr_property_iter_func_t func);
/* Store "<key>_<port>"; -6 if key or value do not fit. */
TIDE_API int shr_property_port_set_u32(uint32_t chip, uint32_t port, const char *key, uint32_t value);
TIDE_API int shr_property_port_set_str(uint32_t chip, uint32_t port, const char *key, const char *value);

/* ---- readers: a number with a default, or the value text (NULL) -------- */

/* "<key>.<chip name>", then "<key>". */
TIDE_API int shr_property_get(uint32_t chip, const char *key, int dflt);
TIDE_API const char *shr_property_get_str(uint32_t chip, const char *key);
/* "<key>.<chip name><suffix>", then "<key><suffix>". */
TIDE_API int shr_property_get_ext(uint32_t chip, const char *key, const char *suffix, int dflt);
TIDE_API const char *shr_property_get_ext_str(uint32_t chip, const char *key, const char *suffix);
/* "<key>_<port>", "<key>.port<port>", "<key>". */
TIDE_API int shr_property_port_get(uint32_t chip, int port, const char *key, int dflt);
TIDE_API const char *shr_property_port_get_str(uint32_t chip, int port, const char *key);
/* "<key>.cos<cos+1>", "<key>". */
TIDE_API int shr_property_cos_get(uint32_t chip, int cos, const char *key, int dflt);
TIDE_API const char *shr_property_cos_get_str(uint32_t chip, int cos, const char *key);
/* "<key>_<suffix><num>", "<key>.port<num+1>.<suffix>", "<key>_<suffix>", "<key>". */
TIDE_API int shr_property_suffix_num_get(uint32_t chip, int num, const char *key, const char *suffix, int dflt);
TIDE_API const char *shr_property_suffix_num_get_str(uint32_t chip, int num, const char *key, const char *suffix);
/* "<key>_<suffix><num>" by port then plain, "<key>_<suffix>" by port then
 * plain, "<key>" by port then plain. */
TIDE_API int shr_property_port_suffix_num_get(uint32_t chip, int port, int num, const char *key,
                                              const char *suffix, int dflt);
TIDE_API const char *shr_property_port_suffix_num_get_str(uint32_t chip, int port, int num, const char *key,
                                                          const char *suffix);
/* uc 0: "<key>_pci"; else "<key>_uc<uc-1>"; then "<key>". */
TIDE_API int shr_property_uc_get(uint32_t chip, int uc, const char *key, int dflt);
TIDE_API const char *shr_property_uc_get_str(uint32_t chip, int uc, const char *key);
/* "<key>_ci<ci>", "<key>". */
TIDE_API int shr_property_ci_get(uint32_t chip, int ci, const char *key, int dflt);
TIDE_API const char *shr_property_ci_get_str(uint32_t chip, int ci, const char *key);
/* "<prefix>.<object><index>.<attr>" (index other than -1), then
 * "<prefix>.<object>.<attr>".  The value may be fixed point: with `scale`
 * above 0, "1.5" and scale 2 give 150.  `terminator` (may be NULL) gets the
 * character that ended the number. */
TIDE_API int shr_property_obj_attr_get(uint32_t chip, const char *prefix, const char *object, int index,
                                       const char *attr, int scale, char *terminator, int dflt);
TIDE_API int shr_property_port_obj_attr_get(uint32_t chip, int port, const char *prefix, const char *object,
                                            int index, const char *attr, int scale, char *terminator, int dflt);

/* Comma-separated numbers; how many were read (at most `max`), 0 if the key
 * is not there. */
TIDE_API int shr_property_get_csv(uint32_t chip, const char *key, int max, uint32_t *out);
TIDE_API int shr_property_port_get_csv(uint32_t chip, int port, const char *key, int max, uint32_t *out);
TIDE_API int shr_property_ci_get_csv(uint32_t chip, int ci, const char *key, int max, uint32_t *out);

/* ---- named per-port and per-lane settings ------------------------------ */

TIDE_API int shr_property_port_split_flag_set(uint32_t chip, uint32_t port, int value);
TIDE_API int shr_property_port_split_flag_get(uint32_t chip, uint32_t port);
TIDE_API int shr_property_port_hw_initial_lm_set(uint32_t chip, uint32_t port, int value);
TIDE_API int shr_property_port_hw_initial_lm_get(uint32_t chip, uint32_t port);
TIDE_API int shr_property_port_hw_initial_fec_set(uint32_t chip, uint32_t port, int value);
TIDE_API int shr_property_port_hw_initial_fec_get(uint32_t chip, uint32_t port);
TIDE_API int shr_property_port_hw_initial_ic_set(uint32_t chip, uint32_t port, int value);
TIDE_API int shr_property_port_hw_initial_ic_get(uint32_t chip, uint32_t port);
TIDE_API int shr_property_alone_lane_pn_type_set(uint32_t chip, uint32_t lane, int value);
TIDE_API int shr_property_alone_lane_pn_type_get(uint32_t chip, uint32_t lane);
/* One setting of the chip, "serdes_lane_pe_dist_speed", with no lane. */
TIDE_API int shr_property_sds_lane_pe_dist_speed_flag_set(uint32_t chip, int value);
TIDE_API int shr_property_sds_lane_pe_dist_speed_flag_get(uint32_t chip);

/* Pre-emphasis of one lane.  Type 0: main, pre, post (u8 each).  Type 1:
 * taps 0-3, amplitude, polarity (i16 each).  -1 in a value read back means
 * nothing is configured. */
#define SHR_PROPERTY_PE_TYPE_MPP 0
#define SHR_PROPERTY_PE_TYPE_TAP 1
typedef struct shr_property_pre_emphasis_s {
    uint32_t type;
    union {
        struct {
            uint8_t main_;
            uint8_t pre;
            uint8_t post;
        } mpp;
        struct {
            int16_t tap[4];
            int16_t amplitude;
            int16_t polarity;
        } tap;
    } u;
} shr_property_pre_emphasis_t;

TIDE_API int shr_property_alone_lane_pre_emphasis_set(uint32_t chip, uint32_t lane,
                                                      const shr_property_pre_emphasis_t *pe);
TIDE_API int shr_property_alone_lane_pre_emphasis_get(uint32_t chip, uint32_t lane, shr_property_pre_emphasis_t *pe);
/* The same with "<key>_<lane>_<attr>" (attr a speed name; NULL: no attr). */
TIDE_API int shr_property_sds_alone_lane_pre_emphasis_set_with_attr(uint32_t chip, uint32_t lane, const char *attr,
                                                                    const shr_property_pre_emphasis_t *pe);
TIDE_API int shr_property_sds_alone_lane_pre_emphasis_get_with_attr(uint32_t chip, uint32_t lane, const char *attr,
                                                                    shr_property_pre_emphasis_t *pe);

TIDE_END_DECLS

#endif /* TIDE_PROPERTY_H */
