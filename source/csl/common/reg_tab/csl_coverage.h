/*
 * The coverage log of register traffic, per chip, and the upload of its
 * files.
 */
#ifndef TIDE_CSL_COVERAGE_H
#define TIDE_CSL_COVERAGE_H

#include <tide/xsal.h>

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

#define CSL_COVERAGE_NAME_LEN 50u
#define CSL_COVERAGE_LOCALIP_LEN 20u
#define CSL_COVERAGE_LINES_PER_FILE 100000u
/* Files of one run: the first and 100 more; the next rollover stops the
 * log. */
#define CSL_COVERAGE_FILES_MAX 101u
#define CSL_UPLOAD_CMD_LEN 256u
#define CSL_UPLOAD_TIMEOUT_S 30u

extern xsal_file_t g_csl_log_coverage_file[SHR_MAX_CHIPS];
extern u32 g_csl_log_coverage_line[SHR_MAX_CHIPS];
extern char g_csl_log_coverage_name[SHR_MAX_CHIPS][CSL_COVERAGE_NAME_LEN];
extern char g_csl_save_file_name[SHR_MAX_CHIPS][CSL_COVERAGE_NAME_LEN];
extern u32 g_csl_log_file_count[SHR_MAX_CHIPS];
extern char *g_csl_log_coverage_arr[SHR_MAX_CHIPS][CSL_COVERAGE_FILES_MAX];
extern u32 g_csl_auto_upload_log_flag[SHR_MAX_CHIPS];
extern xsal_mutex_t g_csl_log_coverage_lock[SHR_MAX_CHIPS];
extern char g_csl_localip[CSL_COVERAGE_LOCALIP_LEN];
/* Lines per file and the pause around opening the next file; tests make
 * them small. */
extern u32 g_csl_log_coverage_line_max;
extern u32 g_csl_log_coverage_wait_us;

/* The lock made; state cleared.  Run when the catalogue of a chip starts. */
int _csl_coverage_state_init(u32 chip);
/* The log stopped, its file closed, names freed, the lock destroyed. */
void _csl_coverage_state_deinit(u32 chip);
/* One line "##<word> 0x<addr> = 0x<data>"; rolls over when the file is full. */
int _csl_coverage_read_write(u32 chip, u32 addr, u64 data, const char *word);

/* enable 1 starts a run (-8 if one runs); 0 stops it (-7 if none runs),
 * giving the count of files and their names (`names` holds
 * CSL_COVERAGE_FILES_MAX, may be NULL). */
int csl_coverage_enable_disable(u32 chip, u32 enable, u32 *count, char (*names)[CSL_COVERAGE_NAME_LEN]);
/* The address part of the file names; -4 if `size` is under 20. */
int csl_coverage_localip_set(const char *ip, u32 size);
int csl_coverage_upload_log_flag_set(u32 chip, u32 flag);
/* The name of the file closed last; -4 if `size` is under 50. */
int csl_coverage_save_filename_get(u32 chip, char *buffer, u32 size);
/* Sends a file with ftpput (or tftp) to the server named by the
 * environment: ftp_upload_ip, ftp_upload_username, ftp_upload_password.
 * -7 if one is missing, -11 if both tools fail. */
int csl_upload_log_file(const char *file);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CSL_COVERAGE_H */
