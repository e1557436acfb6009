/*
 * The shell server inside the library: one server thread that accepts
 * clients on a local socket, one thread per client with an event loop of
 * its own, the command store that finds a record by (string, mode), the
 * message handlers, and the output of handlers and terminal monitors.
 */
#ifndef TIDE_CLI_SERVER_H
#define TIDE_CLI_SERVER_H

#include <pthread.h>

#include "app/diag_shell/shell/cli/cli_core.h"
#include "app/diag_shell/shell/server/user/cli_msg.h"
#include "app/diag_shell/shell/vty/thread.h"

#ifdef __cplusplus
extern "C" {
#endif

#define CLI_SERVER_ITEMS 4096u     /* room of cli_items; the last stays NULL */
#define CLI_SERVER_BUCKETS 256u    /* buckets of cli_hash */
#define CLI_CLIENT_BUF_SIZE 4096u  /* first receive buffer; output buffer */
#define CLI_MONITOR_SLOTS 50u
#define CLI_INIT_CMDS 100u
#define CLI_INIT_CMD_SIZE 100u
#define CLI_MODE_CONSOLE_FLAG 0x100u /* bit of view_mode that marks a console */

/* Flags of a send record. */
#define CLI_SEND_STATIC 1u /* not freed after sending */
#define CLI_SEND_LAST 2u   /* last message of an exchange */

/* A message waiting to be sent; the message follows in the same block,
 * except in a static record. */
typedef struct cli_send_rec {
    u8 *msg;
    u32 flags;
    cli_list_link link;
} cli_send_rec;

/* Exchange state of a client. */
#define CLI_TRANS_READ 0u
#define CLI_TRANS_WRITE 1u

typedef struct cli_client {
    thread_master *master;
    vthread *read_thread;
    vthread *write_thread;
    vthread *pipe_thread;
    int sock;
    int pipe_fds[2];
    u32 exited; /* set by the client's thread as its last act */
    pthread_t tid;
    u8 *recv_buf;
    u32 recv_buf_size;
    u8 *send_buf;
    u32 send_buf_size;
    xsal_mutex_t outp_lock;
    u32 trans_state;
    cli_list_link send_queue;
    cli_list_link client_node;
    /* The reply of an execution when no memory is left for one: each
     * client has its own, so two clients never share a queue link. */
    cli_send_rec done_without_mem;
    u8 done_without_mem_msg[CLI_MSG_DONE_LEN];
} cli_client;

/* The terminal monitor table. */
typedef struct cli_monitor_ctl {
    xsal_mutex_t lock;
    cli_client *client[CLI_MONITOR_SLOTS];
    u32 console[CLI_MONITOR_SLOTS];
} cli_monitor_ctl;

extern thread_master *server_master;
extern pthread_t server_tid;
extern int server_pipe[2];
extern int g_server_fd;
extern i32 server_thread_ready;
extern i32 listen_port;
extern cli_list_link client_list;
extern pthread_key_t thread_client;
extern u32 g_cli_allow_response_msg;
extern cli_cmd_item *cli_items[CLI_SERVER_ITEMS];
extern u32 cli_items_pos;
extern cli_monitor_ctl terminal_monitor_client_ctl;
extern char g_cli_server_init_cmds[CLI_INIT_CMDS][CLI_INIT_CMD_SIZE];
extern u32 g_command_count;
extern u32 chip_id_for_sdk_um;

/* ---- command store ------------------------------------------------------ */

void cmd_array_init(void);
void cmd_array_deinit(void);
void cmd_hash_init(void);
void cmd_hash_deinit(void);
/* h = h * 131 + byte over the string, masked with 0x7fffffff. */
u32 cmd_hash_calc(const char *cmd);
/* Adds an item to the array and the hash; 0, or -1 when the array is full
 * or an item of the same string and mode is there. */
i32 cmd_add(cli_cmd_item *item);
cli_cmd_item *cmd_hash_find(u32 mode, const char *cmd);

/* ---- server and clients ---------------------------------------------------- */

i32 server_daemon(int pipe_read_fd, i16 port);
/* A listening socket, or -1. */
int server_listen_tcp(const char *address, u16 port);
int server_listen_unix(const char *path);
void server_destroy(int listen_fd);
void client_wait_and_free(cli_client *client);
/* Makes the (empty) client list and the key of the calling thread's
 * client: the server's first step, after which output has a destination
 * (the capture buffer or the console while no client is connected). */
i32 cli_server_client_list_init(void);
/* The client record of the calling thread, or NULL. */
cli_client *cli_server_client_get(void);
/* Where a handler's output goes: 1 to the client put at `*client` (the
 * calling thread's, connected), 0 nowhere in particular (no client is
 * connected, or this thread's client has left the list), -1 nowhere at all
 * (the server has never started, or clients are connected but none on this
 * thread). */
i32 cli_server_output_target(cli_client **client);

/* Queues a message and asks for a write; the record is the caller's no
 * more. */
void send_msg_add(cli_client *client, cli_send_rec *rec);
/* A send record with room for a message of `msg_len` bytes, zeroed, with
 * its header set; NULL without memory. */
cli_send_rec *cli_send_rec_new(u32 msg_len, u16 msg_type);
void cli_msg_exec_done(cli_client *client, i32 code);
/* Dispatches one received message; non-zero ends the client's loop. */
i32 msg_handler(cli_client *client);
i32 msg_exec_handler(cli_client *client);
i32 msg_reg_handler(cli_client *client);
i32 msg_shake_hande_handler(cli_client *client);
i32 msg_terminal_monitor_handler(cli_client *client);
/* Reads one message of the client into its receive buffer; its length or
 * -1. */
i32 msg_read(int fd, cli_client *client, i32 timeout_s);

void cli_server_run_init_cmds(void);

/* ---- output ------------------------------------------------------------------ */

/* Sends `len` bytes of text to the client as MSG_OUTPUT messages; 0 or the
 * failed send's result. */
i32 output_show_msg_send(cli_client *client, const char *text, u32 len);
/* Initialises the monitor table; 0 or -1. */
i32 cli_monitor_init(void);
void cli_monitor_deinit(void);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CLI_SERVER_H */
