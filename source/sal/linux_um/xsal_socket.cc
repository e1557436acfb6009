// Raw packet sockets: whole Ethernet frames of one Ethernet type,
// received on one interface (or all) and sent on another.
#include <arpa/inet.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "sal/linux_um/xsal_int.h"

struct xsal_socket_packet_s {
    i32 fd;
    u16 protocol;
    i32 if_recv; // interface index; 0 for all
    i32 if_send;
};

namespace {

// Index of a named interface, 0 for NULL; -1 if unknown.
i32 _if_index(const char *name)
{
    if (name == nullptr) {
        return 0;
    }
    const unsigned index = if_nametoindex(name);
    return index != 0 ? static_cast<i32>(index) : -1;
}

sockaddr_ll _link_addr(u16 protocol, i32 if_index)
{
    sockaddr_ll addr;
    std::memset(&addr, 0, sizeof(addr));
    addr.sll_family = AF_PACKET;
    addr.sll_protocol = htons(protocol);
    addr.sll_ifindex = if_index;
    return addr;
}

} // namespace

extern "C" {

xsal_socket_packet_t xsal_socket_packet_create(u16 protocol, const char *if_recv, const char *if_send)
{
    const i32 recv_index = _if_index(if_recv);
    const i32 send_index = _if_index(if_send);
    if (recv_index < 0 || send_index < 0) {
        return nullptr;
    }
    auto *sock = static_cast<xsal_socket_packet_t>(
        xsal_malloc(sizeof(xsal_socket_packet_s), "socket_packet", SHR_MOD_COMMON));
    if (sock == nullptr) {
        return nullptr;
    }
    sock->protocol = protocol;
    sock->if_recv = recv_index;
    sock->if_send = send_index;
    sock->fd = socket(AF_PACKET, SOCK_RAW, htons(protocol));
    if (sock->fd < 0) {
        xsal_mem_free(sock);
        return nullptr;
    }
    const sockaddr_ll addr = _link_addr(protocol, recv_index);
    if (bind(sock->fd, reinterpret_cast<const sockaddr *>(&addr), sizeof(addr)) != 0) {
        close(sock->fd);
        xsal_mem_free(sock);
        return nullptr;
    }
    return sock;
}

int xsal_socket_packet_destroy(xsal_socket_packet_t sock)
{
    if (sock == nullptr) {
        return -1;
    }
    close(sock->fd);
    xsal_mem_free(sock);
    return 0;
}

int xsal_socket_packet_receive(xsal_socket_packet_t sock, void *buffer, i32 length)
{
    if (sock == nullptr || buffer == nullptr || length < 0) {
        return -1;
    }
    return static_cast<int>(recvfrom(sock->fd, buffer, static_cast<size_t>(length), 0, nullptr, nullptr));
}

int xsal_socket_packet_sendto(xsal_socket_packet_t sock, i32 if_index, const void *buffer, i32 length)
{
    if (sock == nullptr || buffer == nullptr || length < 0) {
        return -1;
    }
    const sockaddr_ll addr = _link_addr(sock->protocol, if_index);
    return static_cast<int>(sendto(sock->fd, buffer, static_cast<size_t>(length), 0,
                                   reinterpret_cast<const sockaddr *>(&addr), sizeof(addr)));
}

int xsal_socket_packet_send(xsal_socket_packet_t sock, const void *buffer, i32 length)
{
    if (sock == nullptr) {
        return -1;
    }
    return xsal_socket_packet_sendto(sock, sock->if_send, buffer, length);
}

} // extern "C"
