// The system's sockets, under the names that Winsock has for what differs.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quorvane::cli {

using SOCKET = int;
using WSAPOLLFD = pollfd;

inline constexpr SOCKET INVALID_SOCKET = -1;
inline constexpr int kSendFlags = MSG_NOSIGNAL;

// What a process has to have in hand while it uses sockets: nothing.
struct SocketLibrary {};

inline int closesocket(SOCKET socket) {
    return close(socket);
}

inline int WSAPoll(WSAPOLLFD* sockets, nfds_t count, int milliseconds) {
    return poll(sockets, count, milliseconds);
}

}  // namespace quorvane::cli
