// The shell server: its thread and event loop, the listening socket, one
// thread per client with an event loop of its own, the command store that
// finds a record by (string, mode), and the message handlers.
//
// Who touches what: client_list is changed on the server thread only, under
// g_client_list_lock, because handlers on client threads look their own
// record up in it.  A client record belongs to its thread until that thread
// sets `exited`; the server thread then joins it and frees it.
#include <errno.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <arpa/inet.h>

#include <cstdio>
#include <cstring>

#include "app/diag_shell/shell/server/user/cli_server.h"
#include "app/diag_shell/users/release/cli_init.h"

extern "C" {

thread_master *server_master;
pthread_t server_tid;
int server_pipe[2] = {-1, -1};
int g_server_fd = -1;
i32 server_thread_ready;
i32 listen_port;
cli_list_link client_list;
pthread_key_t thread_client;
u32 g_cli_allow_response_msg = 1;
cli_cmd_item *cli_items[CLI_SERVER_ITEMS];
u32 cli_items_pos;
char g_cli_server_init_cmds[CLI_INIT_CMDS][CLI_INIT_CMD_SIZE];
u32 g_command_count;
u32 chip_id_for_sdk_um;

} // extern "C"

namespace {

constexpr u32 k_stop_word = 1;
constexpr long k_reap_seconds = 5;
constexpr i32 k_read_timeout_s = 5;

pthread_mutex_t g_client_list_lock = PTHREAD_MUTEX_INITIALIZER;
bool g_cli_inited;
bool g_thread_client_key;
bool g_server_started; // a server thread exists to be joined
char g_cli_server_socket_path[sizeof(sockaddr_un::sun_path)] = CLI_SERVER_SOCKET_PATH;
bool g_server_owns_path; // the server bound its socket file and removes it

// The hash: 256 chains of indices into cli_items (index + 1; 0 ends a
// chain).  The store keeps its own links, so the items stay on the init
// list, from which the library's own tree can be built again.
u16 g_cmd_hash_head[CLI_SERVER_BUCKETS];
u16 g_cmd_hash_next[CLI_SERVER_ITEMS];

struct _list_guard {
    _list_guard() { pthread_mutex_lock(&g_client_list_lock); }
    ~_list_guard() { pthread_mutex_unlock(&g_client_list_lock); }
    _list_guard(const _list_guard &) = delete;
    _list_guard &operator=(const _list_guard &) = delete;
};

// The server's callbacks run with cancellation off: an abrupt stop can
// only cancel the thread while it waits in its loop, never while it holds
// the list lock or has a client half freed.
struct _no_cancel {
    int old = 0;
    _no_cancel() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &old); }
    ~_no_cancel() { pthread_setcancelstate(old, nullptr); }
    _no_cancel(const _no_cancel &) = delete;
    _no_cancel &operator=(const _no_cancel &) = delete;
};

template <typename T> T _load(const T *p)
{
    return __atomic_load_n(p, __ATOMIC_ACQUIRE);
}

template <typename T> void _store(T *p, T v)
{
    __atomic_store_n(p, v, __ATOMIC_RELEASE);
}

cli_client *_client_of(cli_list_link *link)
{
    return reinterpret_cast<cli_client *>(reinterpret_cast<char *>(link) - offsetof(cli_client, client_node));
}

cli_send_rec *_rec_of(cli_list_link *link)
{
    return reinterpret_cast<cli_send_rec *>(reinterpret_cast<char *>(link) - offsetof(cli_send_rec, link));
}

bool _list_empty(const cli_list_link *head)
{
    return head->next == nullptr || head->next == head;
}

void _close(int *fd)
{
    if (*fd >= 0) {
        close(*fd);
        *fd = -1;
    }
}

// Writes one control word into a pipe.
void _pipe_word(int fd, u32 word)
{
    if (fd >= 0) {
        ssize_t n;
        do {
            n = write(fd, &word, sizeof(word));
        } while (n < 0 && errno == EINTR);
    }
}

// Reads one control word: 1 with the word, 0 for a short read.
bool _pipe_read(int fd, u32 *word)
{
    ssize_t n;
    do {
        n = read(fd, word, sizeof(*word));
    } while (n < 0 && errno == EINTR);
    return n == static_cast<ssize_t>(sizeof(*word));
}

bool _fd_usable(int fd)
{
    return fd >= 0 && fd < THREAD_FD_LIMIT;
}

// ---- the client's side of the loop ----------------------------------------------

int client_on_read(vthread *t);
int client_on_write(vthread *t);
int client_on_pipe(vthread *t);

void schdule_read(cli_client *c)
{
    c->read_thread = thread_add_read(c->master, client_on_read, c, c->sock);
}

void schdule_write(cli_client *c)
{
    if (c->write_thread == nullptr) {
        c->write_thread = thread_add_write(c->master, client_on_write, c, c->sock);
    }
}

void schdule_pipe(cli_client *c)
{
    c->pipe_thread = thread_add_read(c->master, client_on_pipe, c, c->pipe_fds[0]);
}

// Set on a client's thread when its client broke the exchange order: the
// connection ends once the pending reply is out.
thread_local bool g_client_closing;

int client_on_read(vthread *t)
{
    auto *c = static_cast<cli_client *>(t->arg);
    c->read_thread = nullptr;
    if (_load(&g_cli_allow_response_msg) == 0) {
        return 0;
    }
    if (c->trans_state != CLI_TRANS_READ) {
        // The client sent before the reply to its last message: that
        // message is not served, and the connection ends after the reply.
        xsal_printf("error, trans_state is in write.\n");
        g_client_closing = true;
        return 0;
    }
    if (msg_read(c->sock, c, k_read_timeout_s) < 0) {
        thread_stop();
        return 0;
    }
    schdule_read(c);
    if (msg_handler(c) != 0) {
        thread_stop();
    }
    return 0;
}

int client_on_write(vthread *t)
{
    auto *c = static_cast<cli_client *>(t->arg);
    c->write_thread = nullptr;
    if (c->trans_state != CLI_TRANS_WRITE) {
        xsal_printf("error, trans_state is in read.\n");
        return 0;
    }
    if (_list_empty(&c->send_queue)) {
        return 0;
    }
    cli_list_link *first = c->send_queue.next;
    cli_list_del(first);
    cli_send_rec *rec = _rec_of(first);
    if (!_list_empty(&c->send_queue)) {
        schdule_write(c);
    }
    // The socket is shared with the terminal monitor's output.
    xsal_mutex_lock(c->outp_lock);
    const i32 sent = msg_send(c->sock, rec->msg);
    xsal_mutex_unlock(c->outp_lock);
    if (sent < 0) {
        thread_stop();
    } else if ((rec->flags & CLI_SEND_LAST) != 0) {
        c->trans_state = CLI_TRANS_READ;
        if (g_client_closing) {
            thread_stop();
        }
    }
    if ((rec->flags & CLI_SEND_STATIC) == 0) {
        xsal_mem_free(rec);
    }
    return 0;
}

int client_on_pipe(vthread *t)
{
    auto *c = static_cast<cli_client *>(t->arg);
    c->pipe_thread = nullptr;
    u32 word = 0;
    if (!_pipe_read(c->pipe_fds[0], &word)) {
        thread_stop();
        return 0;
    }
    if (word == k_stop_word) {
        thread_stop();
    }
    schdule_pipe(c);
    return 0;
}

// Frees what the client's thread allocated and marks the record as done.
void client_destroy(cli_client *c)
{
    while (!_list_empty(&c->send_queue)) {
        cli_list_link *l = c->send_queue.next;
        cli_list_del(l);
        cli_send_rec *rec = _rec_of(l);
        if ((rec->flags & CLI_SEND_STATIC) == 0) {
            xsal_mem_free(rec);
        }
    }
    xsal_mem_free(c->recv_buf);
    xsal_mem_free(c->send_buf);
    c->recv_buf = nullptr;
    c->send_buf = nullptr;
    _store(&c->exited, 1u);
}

void *client_thread(void *arg)
{
    auto *c = static_cast<cli_client *>(arg);
    g_client_closing = false;
    thread_master *m = vthread_master_create();
    if (m == nullptr) {
        _store(&c->exited, 1u);
        return nullptr;
    }
    c->master = m;
    if (pthread_setspecific(thread_client, c) != 0) {
        xsal_printf("set client thread tls failed. error: %s\n", std::strerror(errno));
    }
    c->recv_buf = static_cast<u8 *>(xsal_malloc(CLI_CLIENT_BUF_SIZE, "recv_buf", SHR_MOD_CLI));
    c->send_buf = static_cast<u8 *>(xsal_malloc(CLI_CLIENT_BUF_SIZE, "send_buf", SHR_MOD_CLI));
    cli_list_init(&c->send_queue);
    c->trans_state = CLI_TRANS_READ;
    if (c->recv_buf != nullptr && c->send_buf != nullptr) {
        c->recv_buf_size = CLI_CLIENT_BUF_SIZE;
        c->send_buf_size = CLI_CLIENT_BUF_SIZE;
        schdule_read(c);
        schdule_pipe(c);
        if (c->read_thread != nullptr && c->pipe_thread != nullptr) {
            thread_main(m);
        }
        terminal_monitor_disable();
    }
    // The peer learns at once that the connection is over; the descriptor
    // itself is closed when the server collects the record.
    shutdown(c->sock, SHUT_RDWR);
    pthread_setspecific(thread_client, nullptr);
    c->master = nullptr;
    thread_master_free(m);
    client_destroy(c);
    return nullptr;
}

// ---- the server's side ------------------------------------------------------------

int server_on_accept(vthread *t);
int server_on_pipe(vthread *t);
int server_on_timer(vthread *t);

// Takes the clients whose threads have ended off the list and frees them.
void _reap_exited()
{
    cli_list_link done;
    cli_list_init(&done);
    {
        _list_guard guard;
        for (cli_list_link *l = client_list.next; l != &client_list;) {
            cli_list_link *next = l->next;
            if (_load(&_client_of(l)->exited) != 0) {
                cli_list_del(l);
                cli_list_add_tail(&done, l);
            }
            l = next;
        }
    }
    while (!_list_empty(&done)) {
        cli_list_link *l = done.next;
        cli_list_del(l);
        client_wait_and_free(_client_of(l));
    }
}

// A new client: its record, pipe and lock, on the list, with its thread.
void _client_start(int sock)
{
    auto *c = static_cast<cli_client *>(xsal_malloc(sizeof(cli_client), "cli_client", SHR_MOD_CLI));
    if (c == nullptr) {
        close(sock);
        return;
    }
    std::memset(c, 0, sizeof(*c));
    c->sock = sock;
    c->pipe_fds[0] = c->pipe_fds[1] = -1;
    c->done_without_mem.msg = c->done_without_mem_msg;
    c->done_without_mem.flags = CLI_SEND_STATIC | CLI_SEND_LAST;
    cli_msg_head_set(c->done_without_mem_msg, CLI_MSG_DONE_LEN, MSG_EXEC_DONE);
    const i32 code = -1;
    std::memcpy(c->done_without_mem_msg + CLI_MSG_HEAD_LEN, &code, sizeof(code));
    if (pipe2(c->pipe_fds, O_CLOEXEC) != 0 || !_fd_usable(c->pipe_fds[0])) {
        xsal_printf("no descriptor for a new client.\n");
        client_wait_and_free(c);
        return;
    }
    c->outp_lock = xsal_mutex_create("client lock");
    if (c->outp_lock == nullptr) {
        client_wait_and_free(c);
        return;
    }
    {
        _list_guard guard;
        cli_list_add_tail(&client_list, &c->client_node);
    }
    if (pthread_create(&c->tid, nullptr, client_thread, c) != 0) {
        c->tid = pthread_t{};
        {
            _list_guard guard;
            cli_list_del(&c->client_node);
        }
        client_wait_and_free(c);
    }
}

int server_on_accept(vthread *t)
{
    _no_cancel nc;
    const int listen_fd = t->u.fd;
    thread_add_read(server_master, server_on_accept, nullptr, listen_fd);
    const int sock = accept4(listen_fd, nullptr, nullptr, SOCK_CLOEXEC);
    if (sock < 0) {
        return 0;
    }
    if (!_fd_usable(sock)) {
        // The event loop watches descriptors below its limit only.
        xsal_printf("too many descriptors, client refused.\n");
        close(sock);
        return 0;
    }
    _reap_exited();
    _client_start(sock);
    return 0;
}

int server_on_pipe(vthread *t)
{
    _no_cancel nc;
    u32 word = 0;
    if (!_pipe_read(t->u.fd, &word)) {
        return 0;
    }
    if (word == k_stop_word) {
        thread_stop();
        return 0;
    }
    thread_add_read(server_master, server_on_pipe, nullptr, t->u.fd);
    return 0;
}

int server_on_timer(vthread *)
{
    _no_cancel nc;
    _reap_exited();
    thread_add_timer(server_master, server_on_timer, nullptr, k_reap_seconds);
    return 0;
}

void *server_thread(void *arg)
{
    sigset_t pipe_sig;
    sigemptyset(&pipe_sig);
    sigaddset(&pipe_sig, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_sig, nullptr);
    server_daemon(static_cast<int>(reinterpret_cast<intptr_t>(arg)), static_cast<i16>(listen_port));
    return nullptr;
}

// A file at `path` that may be replaced: none, or a socket nobody listens
// on.  A live server's socket or a file of another kind is left alone.
bool _path_free(const char *path, const sockaddr_un &addr)
{
    struct stat st;
    if (lstat(path, &st) != 0) {
        return errno == ENOENT;
    }
    if (!S_ISSOCK(st.st_mode)) {
        xsal_printf("%s exists and is no socket.\n", path);
        return false;
    }
    const int probe = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool live = probe >= 0 && connect(probe, reinterpret_cast<const sockaddr *>(&addr), sizeof(addr)) == 0;
    if (probe >= 0) {
        close(probe);
    }
    if (live) {
        xsal_printf("a shell server already listens on %s.\n", path);
        return false;
    }
    return unlink(path) == 0 || errno == ENOENT;
}

int _listen_on(int fd, const sockaddr *addr, socklen_t len)
{
    if (bind(fd, addr, len) != 0 || listen(fd, 10) != 0 || !_fd_usable(fd)) {
        close(fd);
        return -1;
    }
    return fd;
}

void _release_socket_path()
{
    if (g_server_owns_path) {
        unlink(g_cli_server_socket_path);
        g_server_owns_path = false;
    }
}

msg_reg _reg_of(const cli_cmd_item *item)
{
    msg_reg r;
    r.cmd = const_cast<char *>(item->desc->cmd);
    r.funcid = item->desc->funcid;
    r.help = const_cast<char **>(item->desc->help);
    r.mode = static_cast<i32>(item->mode);
    r.flags = item->flags;
    r.priv = item->priv;
    return r;
}

// Queues an empty message of `type` as the reply; 0, or -1 without memory.
i32 _reply_empty(cli_client *c, u16 type)
{
    cli_send_rec *rec = cli_send_rec_new(CLI_MSG_HEAD_LEN, type);
    if (rec == nullptr) {
        return -1;
    }
    rec->flags = CLI_SEND_LAST;
    send_msg_add(c, rec);
    return 0;
}

u32 _body_len(const cli_client *c)
{
    return cli_msg_head_get(c->recv_buf).msg_len - CLI_MSG_HEAD_LEN;
}

} // namespace

extern "C" {

// ---- command store -------------------------------------------------------------

void cmd_array_init(void)
{
    std::memset(cli_items, 0, sizeof(cli_items));
    cli_items_pos = 0;
}

void cmd_array_deinit(void)
{
    cmd_array_init();
}

void cmd_hash_init(void)
{
    std::memset(g_cmd_hash_head, 0, sizeof(g_cmd_hash_head));
    std::memset(g_cmd_hash_next, 0, sizeof(g_cmd_hash_next));
}

void cmd_hash_deinit(void)
{
    cmd_hash_init();
}

u32 cmd_hash_calc(const char *cmd)
{
    u32 h = 0;
    for (const u8 *p = reinterpret_cast<const u8 *>(cmd); *p != 0; p++) {
        h = h * 131u + *p;
    }
    return h & 0x7fffffffu;
}

cli_cmd_item *cmd_hash_find(u32 mode, const char *cmd)
{
    if (cmd == nullptr) {
        return nullptr;
    }
    for (u16 i = g_cmd_hash_head[cmd_hash_calc(cmd) % CLI_SERVER_BUCKETS]; i != 0; i = g_cmd_hash_next[i - 1]) {
        cli_cmd_item *item = cli_items[i - 1];
        if (item->mode == mode && std::strcmp(item->desc->cmd, cmd) == 0) {
            return item;
        }
    }
    return nullptr;
}

i32 cmd_add(cli_cmd_item *item)
{
    if (item == nullptr || item->desc == nullptr || item->desc->cmd == nullptr) {
        return -1;
    }
    if (cli_items_pos >= CLI_SERVER_ITEMS - 1) {
        xsal_printf("diagshell server has no enough memory to register cmd.\n");
        return -1;
    }
    if (cmd_hash_find(item->mode, item->desc->cmd) != nullptr) {
        return -1;
    }
    const u32 index = cli_items_pos++;
    cli_items[index] = item;
    const u32 bucket = cmd_hash_calc(item->desc->cmd) % CLI_SERVER_BUCKETS;
    g_cmd_hash_next[index] = g_cmd_hash_head[bucket];
    g_cmd_hash_head[bucket] = static_cast<u16>(index + 1);
    return 0;
}

// ---- sockets ------------------------------------------------------------------

int server_listen_tcp(const char *address, u16 port)
{
    sockaddr_in addr;
    std::memset(&addr, 0, sizeof(addr));
    addr.sin_family = AF_INET;
    addr.sin_port = htons(port);
    if (inet_pton(AF_INET, address, &addr.sin_addr) != 1) {
        return -1;
    }
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return -1;
    }
    const int on = 1;
    setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    return _listen_on(fd, reinterpret_cast<const sockaddr *>(&addr), sizeof(addr));
}

int server_listen_unix(const char *path)
{
    sockaddr_un addr;
    if (cli_msg_unix_addr(path, &addr) != 0 || !_path_free(path, addr)) {
        return -1;
    }
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return -1;
    }
    // Owner only.  Nobody can connect before listen(), so the mode is set
    // before anyone could use the socket.
    if (bind(fd, reinterpret_cast<const sockaddr *>(&addr), sizeof(addr)) != 0) {
        close(fd);
        return -1;
    }
    if (chmod(path, S_IRUSR | S_IWUSR) != 0 || listen(fd, 10) != 0 || !_fd_usable(fd)) {
        close(fd);
        unlink(path);
        return -1;
    }
    g_server_owns_path = true;
    return fd;
}

// ---- server life ------------------------------------------------------------------

i32 server_daemon(int pipe_read_fd, i16 port)
{
    if (!g_cli_inited) {
        g_cli_inited = true;
        cmd_array_init();
        cmd_hash_init();
        cli_cmd_init_all();
        cli_cmd_tree_build();
        cli_server_run_init_cmds();
    }
    for (cli_list_link *l = cli_cmd_init_list.next; l != nullptr && l != &cli_cmd_init_list; l = l->next) {
        cmd_add(reinterpret_cast<cli_cmd_item *>(reinterpret_cast<char *>(l) - offsetof(cli_cmd_item, node)));
    }
    server_master = vthread_master_create();
    int fd = -1;
    if (server_master != nullptr) {
        if (port >= 1) {
            fd = server_listen_tcp("127.0.0.1", static_cast<u16>(port));
            fd = fd >= 0 ? fd : server_listen_unix(g_cli_server_socket_path);
        } else {
            fd = server_listen_unix(g_cli_server_socket_path);
            fd = fd >= 0 ? fd : server_listen_tcp("127.0.0.1", CLI_SERVER_FALLBACK_PORT);
        }
    }
    if (fd < 0 || thread_add_read(server_master, server_on_pipe, nullptr, pipe_read_fd) == nullptr ||
        thread_add_read(server_master, server_on_accept, nullptr, fd) == nullptr ||
        thread_add_timer(server_master, server_on_timer, nullptr, k_reap_seconds) == nullptr) {
        if (fd >= 0) {
            close(fd);
        }
        _release_socket_path();
        thread_master_free(server_master);
        server_master = nullptr;
        cmd_array_deinit();
        cmd_hash_deinit();
        _store(&server_thread_ready, -1);
        return -1;
    }
    g_server_fd = fd;
    _store(&server_thread_ready, 1);
    thread_main(server_master);

    _no_cancel nc;
    server_destroy(g_server_fd);
    g_server_fd = -1;
    thread_master_free(server_master);
    server_master = nullptr;
    cmd_array_deinit();
    cmd_hash_deinit();
    cli_cmd_tree_release();
    return 0;
}

void client_wait_and_free(cli_client *c)
{
    if (c->tid != pthread_t{}) {
        pthread_join(c->tid, nullptr);
    }
    _close(&c->sock);
    _close(&c->pipe_fds[0]);
    _close(&c->pipe_fds[1]);
    if (c->outp_lock != nullptr) {
        xsal_mutex_destroy(c->outp_lock);
    }
    xsal_mem_free(c);
}

void server_destroy(int listen_fd)
{
    for (;;) {
        cli_client *c = nullptr;
        {
            _list_guard guard;
            if (_list_empty(&client_list)) {
                break;
            }
            c = _client_of(client_list.next);
            cli_list_del(&c->client_node);
        }
        _pipe_word(c->pipe_fds[1], k_stop_word);
        client_wait_and_free(c);
    }
    if (listen_fd >= 0) {
        close(listen_fd);
    }
    _release_socket_path();
}

cli_client *cli_server_client_get(void)
{
    return g_thread_client_key ? static_cast<cli_client *>(pthread_getspecific(thread_client)) : nullptr;
}

i32 cli_server_output_target(cli_client **client)
{
    *client = nullptr;
    _list_guard guard;
    // Before the server has ever started there is nowhere to show text.
    if (client_list.next == nullptr) {
        return -1;
    }
    if (_list_empty(&client_list)) {
        return 0;
    }
    cli_client *mine = cli_server_client_get();
    if (mine == nullptr) {
        return -1;
    }
    for (cli_list_link *l = client_list.next; l != &client_list; l = l->next) {
        if (_client_of(l) == mine) {
            *client = mine;
            return 1;
        }
    }
    return 0;
}

// ---- messages ----------------------------------------------------------------------

cli_send_rec *cli_send_rec_new(u32 msg_len, u16 msg_type)
{
    auto *rec = static_cast<cli_send_rec *>(xsal_malloc(sizeof(cli_send_rec) + msg_len, "send_rec", SHR_MOD_CLI));
    if (rec == nullptr) {
        return nullptr;
    }
    std::memset(rec, 0, sizeof(cli_send_rec) + msg_len);
    rec->msg = reinterpret_cast<u8 *>(rec + 1);
    cli_msg_head_set(rec->msg, msg_len, msg_type);
    return rec;
}

void send_msg_add(cli_client *client, cli_send_rec *rec)
{
    cli_list_add_tail(&client->send_queue, &rec->link);
    schdule_write(client);
}

void cli_msg_exec_done(cli_client *client, i32 code)
{
    cli_send_rec *rec = cli_send_rec_new(CLI_MSG_DONE_LEN, MSG_EXEC_DONE);
    if (rec == nullptr) {
        rec = &client->done_without_mem;
    } else {
        std::memcpy(rec->msg + CLI_MSG_HEAD_LEN, &code, sizeof(code));
        rec->flags = CLI_SEND_LAST;
    }
    send_msg_add(client, rec);
}

i32 msg_read(int fd, cli_client *client, i32 timeout_s)
{
    return cli_msg_recv(fd, &client->recv_buf, &client->recv_buf_size, timeout_s, 1);
}

i32 msg_handler(cli_client *client)
{
    i32 r = -1;
    switch (cli_msg_head_get(client->recv_buf).msg_type) {
    case MSG_REG:
        r = msg_reg_handler(client);
        break;
    case MSG_EXEC:
        r = msg_exec_handler(client);
        break;
    case MSG_SHAKE_HANDE:
        r = msg_shake_hande_handler(client);
        break;
    case MSG_TERMINAL_MONITOR:
        r = msg_terminal_monitor_handler(client);
        break;
    default:
        return -1;
    }
    client->trans_state = CLI_TRANS_WRITE;
    return r;
}

i32 msg_exec_handler(cli_client *client)
{
    msg_exec exec;
    if (cli_msg_exec_unpack(client->recv_buf + CLI_MSG_HEAD_LEN, _body_len(client), &exec) != 0) {
        xsal_printf("unpack command exec message failed.\n");
        cli_msg_exec_done(client, -1);
        return -1;
    }
    const u32 mode = static_cast<u32>(exec.view_mode) & ~CLI_MODE_CONSOLE_FLAG;
    const cli_cmd_item *item = cmd_hash_find(mode, exec.cmd);
    i32 code = -1;
    if (item != nullptr && (item->flags & CLI_FLAG_VIEW) != 0) {
        // Mode switches are the client's own business.
        code = 0;
    } else if (item != nullptr && item->desc->handler != nullptr) {
        code = item->desc->handler(static_cast<u32>(exec.chip_id), static_cast<u32>(exec.view_mode), exec.argc,
                                   exec.argv);
    }
    cli_msg_exec_done(client, code);
    return 0;
}

i32 msg_reg_handler(cli_client *client)
{
    if (_body_len(client) != CLI_MSG_REG_REQ_LEN - CLI_MSG_HEAD_LEN) {
        return -1;
    }
    i32 req[2];
    std::memcpy(req, client->recv_buf + CLI_MSG_HEAD_LEN, sizeof(req));
    const i32 start = req[0];
    const i64 max_size = req[1];
    constexpr i32 k_last = static_cast<i32>(CLI_SERVER_ITEMS) - 2;
    // First pass: how many records fit, and their bytes.
    i32 end = start;
    i64 sum = 0;
    if (start >= 0 && start <= k_last) {
        for (; end <= k_last && cli_items[end] != nullptr; end++) {
            msg_reg r = _reg_of(cli_items[end]);
            const i32 len = pack_length(&r, msg_reg_descs);
            if (len < 0) {
                break;
            }
            if (sum + len > max_size) {
                if (end == start) {
                    xsal_printf("\nlen = %d, ret = %d, size = %d.\n", static_cast<int>(sum), static_cast<int>(len),
                                static_cast<int>(max_size));
                }
                break;
            }
            sum += len;
        }
    }
    cli_send_rec *rec = cli_send_rec_new(CLI_MSG_REG_HEAD_LEN + static_cast<u32>(sum), MSG_REG);
    if (rec == nullptr) {
        return -1;
    }
    u32 pos = CLI_MSG_REG_HEAD_LEN;
    i32 next = start;
    for (; next < end; next++) {
        msg_reg r = _reg_of(cli_items[next]);
        const i32 n = pack_struct(&r, msg_reg_descs, rec->msg + pos, CLI_MSG_REG_HEAD_LEN + static_cast<u32>(sum) - pos, 1);
        if (n < 0) {
            xsal_printf("pack command %s failed.\n", r.cmd != nullptr ? r.cmd : "unknow");
            break;
        }
        pos += static_cast<u32>(n);
    }
    const i32 body[2] = {next - start, next};
    cli_msg_head_set(rec->msg, pos, MSG_REG);
    std::memcpy(rec->msg + CLI_MSG_HEAD_LEN, body, sizeof(body));
    rec->flags = CLI_SEND_LAST;
    send_msg_add(client, rec);
    return 0;
}

i32 msg_shake_hande_handler(cli_client *client)
{
    return _body_len(client) == 0 ? _reply_empty(client, MSG_SHAKE_HANDE) : -1;
}

i32 msg_terminal_monitor_handler(cli_client *client)
{
    if (_body_len(client) != 0) {
        return -1;
    }
    if (terminal_monitor_enable(1) != 0) {
        xsal_printf("terminal monitor enable fail, reason for table full!\n");
    }
    return _reply_empty(client, MSG_TERMINAL_MONITOR);
}

// ---- start-up commands ---------------------------------------------------------------

const char *cli_server_add_init_cmd(const char *line)
{
    if (line == nullptr || line[0] == '\0') {
        xsal_printf("invalid command\n");
        return nullptr;
    }
    if (g_command_count >= CLI_INIT_CMDS) {
        xsal_printf("no space for command\n");
        return nullptr;
    }
    char *slot = g_cli_server_init_cmds[g_command_count++];
    std::strncpy(slot, line, CLI_INIT_CMD_SIZE - 1);
    slot[CLI_INIT_CMD_SIZE - 1] = '\0';
    return slot;
}

void cli_server_run_init_cmds(void)
{
    cli_cmd_exec_lock();
    const u32 saved = cli_debug_on_off(0, 0);
    cli_debug_on_off(1, 1);
    for (u32 i = 0; i < g_command_count; i++) {
        cli_cmd_execute(0, g_cli_server_init_cmds[i], nullptr, 0);
    }
    cli_debug_on_off(1, saved);
    cli_cmd_exec_unlock();
}

// ---- exported ---------------------------------------------------------------------

i32 cli_server_socket_path_set(const char *path)
{
    sockaddr_un addr;
    if (g_server_started || cli_msg_unix_addr(path, &addr) != 0) {
        return -1;
    }
    std::memcpy(g_cli_server_socket_path, addr.sun_path, sizeof(g_cli_server_socket_path));
    return 0;
}

const char *cli_server_socket_path_get(void)
{
    return g_cli_server_socket_path;
}

i32 cli_server_address_get(char *text, u32 size)
{
    if (text == nullptr || size == 0 || _load(&server_thread_ready) != 1) {
        return -1;
    }
    sockaddr_storage addr;
    socklen_t len = sizeof(addr);
    if (getsockname(g_server_fd, reinterpret_cast<sockaddr *>(&addr), &len) != 0) {
        return -1;
    }
    if (addr.ss_family == AF_UNIX) {
        std::snprintf(text, size, "unix:%s", g_cli_server_socket_path);
    } else {
        std::snprintf(text, size, "tcp:127.0.0.1:%u", ntohs(reinterpret_cast<const sockaddr_in &>(addr).sin_port));
    }
    return 0;
}

i32 cli_server_client_list_init(void)
{
    {
        _list_guard guard;
        cli_list_init(&client_list);
    }
    if (!g_thread_client_key) {
        if (pthread_key_create(&thread_client, nullptr) != 0) {
            xsal_printf("create thread_client tls failed. error: %s.\n", std::strerror(errno));
            return -1;
        }
        g_thread_client_key = true;
    }
    return 0;
}

i32 cli_server_main(i32 port)
{
    if (g_server_started) {
        return _load(&server_thread_ready) == 1 ? 0 : -1;
    }
    if (cli_monitor_init() != 0) {
        return -1;
    }
    listen_port = port >= 1 && port <= 65534 ? port : 0;
    if (cli_server_client_list_init() != 0) {
        return -1;
    }
    _store(&server_thread_ready, 0);
    if (pipe2(server_pipe, O_CLOEXEC) != 0) {
        return -1;
    }
    if (!_fd_usable(server_pipe[0]) ||
        pthread_create(&server_tid, nullptr, server_thread, reinterpret_cast<void *>(intptr_t{server_pipe[0]})) !=
            0) {
        _close(&server_pipe[0]);
        _close(&server_pipe[1]);
        return -1;
    }
    g_server_started = true;
    for (u32 i = 0; i < 500 && _load(&server_thread_ready) == 0; i++) {
        usleep(10000);
    }
    if (_load(&server_thread_ready) == 1) {
        return 0;
    }
    if (_load(&server_thread_ready) == -1) {
        cli_server_wait(1);
    }
    return -1;
}

void cli_server_wait(i32 no_stop)
{
    if (!g_server_started) {
        return;
    }
    if (no_stop == 0) {
        _pipe_word(server_pipe[1], k_stop_word);
    }
    pthread_join(server_tid, nullptr);
    g_server_started = false;
    _store(&server_thread_ready, 0);
    _close(&server_pipe[0]);
    _close(&server_pipe[1]);
}

void cli_server_exit(void)
{
    if (!g_server_started || _load(&server_thread_ready) != 1) {
        return;
    }
    pthread_cancel(server_tid);
    pthread_join(server_tid, nullptr);
    g_server_started = false;
    _store(&server_thread_ready, 0);
    server_destroy(g_server_fd);
    g_server_fd = -1;
    cli_monitor_deinit();
    cmd_hash_deinit();
    cmd_array_deinit();
    cli_cmd_tree_release();
    thread_master_free(server_master);
    server_master = nullptr;
    _close(&server_pipe[0]);
    _close(&server_pipe[1]);
}

void cli_allow_response_msg_set(u32 value)
{
    _store(&g_cli_allow_response_msg, value);
}

u32 cli_chip_id_get(void)
{
    return _load(&chip_id_for_sdk_um);
}

u32 chip_id_set(u32 chip_id)
{
    _store(&chip_id_for_sdk_um, chip_id);
    return chip_id;
}

} // extern "C"
