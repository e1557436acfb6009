/*
 * The shell's wire format: the 16-byte message header, the packed field
 * types and the records that travel in messages, and the socket calls that
 * both ends of a connection use.
 *
 * Integers travel in the host's byte order: both ends run on one machine.
 * A record is packed field after field, without alignment or padding, by
 * walking a list of field descriptors.  Unpacking never copies: strings
 * and string arrays are returned in place in the receive buffer, so an
 * unpacked record lives as long as the buffer holds that message.
 *
 * Nothing read from the wire is trusted: every length and count is checked
 * against the bytes of the message before it is used.
 */
#ifndef TIDE_CLI_MSG_H
#define TIDE_CLI_MSG_H

#include "tide_int.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- header and message types --------------------------------------------- */

#define CLI_MSG_HEAD_LEN 16u
/* Longest message either end accepts; a header that announces more is a
 * protocol error. */
#define CLI_MSG_MAX_LEN (1u << 20)

#define MSG_EXEC 0u
#define MSG_REG 1u
#define MSG_EXEC_DONE 3u
#define MSG_SHAKE_HANDE 4u
#define MSG_OUTPUT 5u
#define MSG_TERMINAL_MONITOR 6u

typedef struct cli_msg_head {
    u32 msg_len; /* total length, header included */
    u16 msg_type;
    u16 reserved0;
    u32 reserved1;
    u32 reserved2;
} cli_msg_head;

/* Length of a MSG_EXEC_DONE message: the header and the i32 code. */
#define CLI_MSG_DONE_LEN 20u
/* Body of a MSG_REG request: i32 start_index, i32 max_size. */
#define CLI_MSG_REG_REQ_LEN 24u
/* Header of a MSG_REG reply before its records: i32 count, i32 next_index. */
#define CLI_MSG_REG_HEAD_LEN 24u

/* ---- field types ------------------------------------------------------------ */

#define CLI_FIELD_INT32 0u
#define CLI_FIELD_INT64 1u
#define CLI_FIELD_INT16 2u
#define CLI_FIELD_INT8 3u
#define CLI_FIELD_STR 4u
#define CLI_FIELD_STRARRAY 5u
#define CLI_FIELD_TYPES 6u

/* Operations of one field type.  `pack` writes the field into at most
 * `room` bytes; `unpack` reads it from the `room` bytes at `buf` into the
 * field; both give the bytes used or -1.  `length` gives the packed size
 * or -1. */
typedef struct type_desc {
    u32 type;
    u32 size; /* fixed packed size; 0 when it varies */
    i32 (*pack)(const void *field, u8 *buf, u32 room);
    i32 (*unpack)(u8 *buf, u32 room, void *field);
    i32 (*length)(const void *field);
} type_desc;

extern const type_desc type_desc_int32;
extern const type_desc type_desc_int64;
extern const type_desc type_desc_int16;
extern const type_desc type_desc_int8;
extern const type_desc type_desc_str;
extern const type_desc type_desc_strarray;
extern const type_desc *const type_descs[CLI_FIELD_TYPES];

/* The descriptor of a type number; NULL above 5. */
const type_desc *type_desc_get(u32 type);

/* One field of a record: its name, type and offset in the structure. */
typedef struct field_desc {
    const char *name;
    u32 type;
    u32 offset;
} field_desc;

/* Packs (`pack` 1) the record into at most `len` bytes at `buf`, or
 * unpacks (`pack` 0) it from them; the bytes used, or -1. */
i32 pack_struct(void *st, const field_desc *const *descs, u8 *buf, u32 len, u32 pack);
/* Packed size of the record; -1 if a field cannot be packed. */
i32 pack_length(const void *st, const field_desc *const *descs);

/* Body of MSG_EXEC. */
typedef struct msg_exec {
    char *cmd;
    i32 chip_id;
    i32 view_mode;
    i32 argc;
    char **argv;
} msg_exec;

/* One command record of a MSG_REG reply. */
typedef struct msg_reg {
    char *cmd;
    i32 funcid;
    char **help;
    i32 mode;
    i32 flags;
    i32 priv;
} msg_reg;

extern const field_desc *const msg_exec_descs[];
extern const field_desc *const msg_reg_descs[];

/* Reads the header at the start of `msg` (which holds at least 16 bytes). */
cli_msg_head cli_msg_head_get(const u8 *msg);
/* Writes a header with the length and type, reserved words zero. */
void cli_msg_head_set(u8 *msg, u32 msg_len, u16 msg_type);

/* Unpacks the body of a MSG_EXEC (the `len` bytes behind the header) in
 * place.  The body must be used exactly, and `argc` must be the number of
 * words in `argv`, at most 256; 0 or -1. */
i32 cli_msg_exec_unpack(u8 *body, u32 len, msg_exec *out);

/* Unpacks the body of a MSG_REG reply in place and calls `fn` for each of
 * its records in order.  The body must hold exactly `count` records; the
 * count, with the next index at `*next_index`, or -1 (also when `fn`
 * returns non-zero). */
typedef i32 (*cli_msg_reg_fn)(const msg_reg *rec, void *ctx);
i32 cli_msg_reg_reply_unpack(u8 *body, u32 len, i32 *next_index, cli_msg_reg_fn fn, void *ctx);

/* ---- sockets ---------------------------------------------------------------- */

/* Reads `len` bytes, waiting at most `timeout_s` seconds for each piece (a
 * negative value waits without limit).  The bytes read: fewer than `len`
 * at the end of the stream or a timeout, -1 on an error. */
i32 block_read(int fd, u8 *buf, u32 len, i32 timeout_s);
/* Writes the whole message (its length from its header), waiting at most
 * 5 seconds each time for the socket to take more; the bytes written, -2
 * if the socket did not become writable in time, -1 on an error. */
i32 msg_send(int fd, const u8 *msg);

/* Reads one whole message into `*buf` (of `*size` bytes), which grows to
 * the message's length and never shrinks; `*buf` is from xsal_malloc.
 * The message's length, or -1: a short read, a length below 16 or above
 * CLI_MSG_MAX_LEN, or no memory.  With `report` set the reason of a
 * failure is printed on the console. */
i32 cli_msg_recv(int fd, u8 **buf, u32 *size, i32 timeout_s, u32 report);

struct sockaddr_un;
/* Fills a unix socket address for `path`; 0, or -1 (errno ENAMETOOLONG)
 * for a NULL or empty path or one of 108 characters or more. */
i32 cli_msg_unix_addr(const char *path, struct sockaddr_un *addr);

/* A connected stream socket, or -1 with errno set. */
int cli_msg_connect_unix(const char *path);
int cli_msg_connect_tcp(u16 port);

#ifdef __cplusplus
}
#endif

#endif /* TIDE_CLI_MSG_H */
