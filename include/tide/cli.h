/*
 * tide: the diagnostic shell inside the library: running a command line,
 * the shell's mode and its prompt, the shell server that lets an operator
 * reach the library from a shell client, and the shell's port names.
 *
 * The shell's commands are built into the library.  `cli_cmd_execute`
 * runs one line in the shell's current mode, as an operator would type it,
 * and can capture everything the line prints.  `cli_server_main` starts a
 * server on a local socket; a client (tidesh) downloads the commands,
 * parses what the operator types and has the server run it.
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

/* ---- shell server --------------------------------------------------------- */

/* Unix socket of the server unless another path is chosen. */
#define CLI_SERVER_SOCKET_PATH "/tmp/.diag_shell_server_sock"
/* TCP port on 127.0.0.1 when the unix socket cannot be used. */
#define CLI_SERVER_FALLBACK_PORT 18567

/*
 * Chooses the path of the server's unix socket, so that several processes
 * on one machine each have their own; call it before `cli_server_main`.
 * 0, or -1 for NULL, an empty path, one of 108 characters or more, or a
 * server that is already running.  NULL is refused; the default path is
 * CLI_SERVER_SOCKET_PATH.
 */
TIDE_API int32_t cli_server_socket_path_set(const char *path);
/* The path that the server uses. */
TIDE_API const char *cli_server_socket_path_get(void);
/* Where the running server listens, as "unix:PATH" or "tcp:127.0.0.1:PORT",
 * into `text` of `size` bytes; 0, or -1 when no server listens. */
TIDE_API int32_t cli_server_address_get(char *text, uint32_t size);

/*
 * Starts the shell server and waits (at most 5 seconds) until it listens.
 * `port` 1 to 32767: TCP on 127.0.0.1 at that port, the unix socket if that
 * fails.  Any other value: the unix socket, TCP on 127.0.0.1 at port 18567
 * if that fails.  0, or -1 if the server could not come up.
 */
TIDE_API int32_t cli_server_main(int32_t port);
/* `no_stop` 0 asks the server to stop; then waits for its thread to end. */
TIDE_API void cli_server_wait(int32_t no_stop);
/* Stops the server at once, without waiting for its loop to finish; does
 * nothing unless the server is up. */
TIDE_API void cli_server_exit(void);
/* Queues a command line (up to 99 characters are kept) to run when the
 * server starts; call before `cli_server_main`.  The stored copy, or NULL
 * for an empty line or when 100 lines are queued. */
TIDE_API const char *cli_server_add_init_cmd(const char *line);
/* 0 makes the server stop serving its clients' messages; 1 at start. */
TIDE_API void cli_allow_response_msg_set(uint32_t value);

/* The shell's current chip. */
TIDE_API uint32_t cli_chip_id_get(void);
TIDE_API uint32_t chip_id_set(uint32_t chip_id);

/*
 * Output of a command handler.  On the thread of a connected client the
 * text goes to that client; with no client connected, to the capture
 * buffer of the running `cli_cmd_execute` or to the console.  0, or -1 for
 * a NULL format or a thread that has no client while clients are
 * connected (nothing is printed then).
 */
TIDE_API int32_t cli_output_show(const char *format, ...) TIDE_PRINTF(1, 2);
/* Text for the terminal monitors: sent to every client that enabled the
 * monitor, and printed on the console unless one of them is a console.
 * 0, or -1. */
TIDE_API int32_t output_show_console(const char *format, ...) TIDE_PRINTF(1, 2);
/* Enters the calling client in the monitor table (50 places); 0 or -1. */
TIDE_API int32_t terminal_monitor_enable(uint32_t console);
TIDE_API int32_t terminal_monitor_disable(void);
/* op 1 sets the flag that silences "return OK"; any op returns it. */
TIDE_API uint32_t cli_debug_on_off(int32_t op, uint32_t value);

/* ---- port names -------------------------------------------------------------- */

/* Room of a port name (pport), terminating NUL included. */
#define CLI_PPORT_SIZE 20u

/*
 * How the application names its ports, when it numbers them otherwise
 * than the library: logical port to name, name to logical port, and the
 * next port of the chip after `previous` (-1 for the first), with its
 * name; `flag` 1 includes the inner ports.  Each returns 0, or non-zero
 * (after the last port for the third).  They are called from the
 * server's client threads and must be thread-safe.
 */
typedef int32_t (*cli_lport_to_pport_f)(uint32_t chip_id, uint32_t lport, char *pport);
typedef int32_t (*cli_pport_to_lport_f)(uint32_t chip_id, const char *pport, uint32_t *lport);
typedef int32_t (*cli_port_next_f)(uint32_t chip_id, uint32_t flag, int32_t previous, uint32_t *lport,
                                   char *pport);
typedef struct cli_portmap_callback {
    cli_lport_to_pport_f lport_to_pport;
    cli_pport_to_lport_f pport_to_lport;
    cli_port_next_f port_next;
} cli_portmap_callback;

/* Installs the three callbacks (copied); NULL removes them.  0. */
TIDE_API int32_t cli_portmap_register(const cli_portmap_callback *callbacks);
/* Mode 0 names ports through the callbacks; any other value by the
 * library's own numbers and inner port names.  0, or -4 for a bad chip. */
TIDE_API int32_t cli_shell_mode_set(uint32_t chip_id, uint32_t mode);

TIDE_END_DECLS

#endif /* TIDE_CLI_H */
