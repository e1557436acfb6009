/*
 * tide: the diagnostic shell inside the library: running a command line,
 * the shell's mode and its prompt.
 *
 * The shell's commands are built into the library.  `cli_cmd_execute`
 * runs one line in the shell's current mode, as an operator would type it,
 * and can capture everything the line prints.
 */
#ifndef TIDE_CLI_H
#define TIDE_CLI_H

#include <tide/tide_common.h>

TIDE_BEGIN_DECLS

/* Highest mode of the shell; mode 0 is "config", mode 43 "sim" holds the
 * commands of the chip model. */
#define CLI_MODE_CONFIG 0u
#define CLI_MODE_LAST 43u

/* Room of the prompt text, terminating NUL included. */
#define CLI_PROMPT_SIZE 128u

/*
 * Runs one command line for `chip_id` in the shell's current mode.
 *
 * With `buf` and `size` given, the text that the line prints (messages of
 * the parser, help, the command's own output) goes into `buf`, always
 * NUL-terminated; a piece of text that does not fit is dropped whole.
 * Without a buffer the text goes to the console.
 *
 * A line that ends in "?" is a request for help and runs nothing.  Result:
 * the command's own status; 0 for an empty line, a comment ("#" or "!")
 * or a help request; -1 for a NULL line or a line that is not a complete
 * command.  Only one line runs at a time; calls from several threads wait
 * for each other.
 */
TIDE_API int32_t cli_cmd_execute(uint32_t chip_id, const char *line, char *buf, int32_t size);

/* Back to mode "config"; 0. */
TIDE_API int32_t cli_view_config(uint32_t chip_id);
/* To the mode of this name ("l2", "vlan", "debug", ...); 0, or -1 for a
 * name that is no mode. */
TIDE_API int32_t cli_view_custom(uint32_t chip_id, const char *mode_name);

/* The prompt: "Chip-<chip> <text>".  A text of more than 118 characters
 * leaves the prompt unchanged. */
TIDE_API void cli_setPrompt(uint32_t chip_id, const char *text);
/* Puts another chip number into the prompt. */
TIDE_API void setchipidPrompt(uint32_t chip_id);
/* The prompt as it stands, such as "Chip-0 Diag-Shell(config)#". */
TIDE_API const char *cli_ctree_getprompt(void);

/* Frees the shell's command tree; the next `cli_cmd_execute` builds it
 * again. */
TIDE_API void cli_ctree_free(void);

TIDE_END_DECLS

#endif /* TIDE_CLI_H */
