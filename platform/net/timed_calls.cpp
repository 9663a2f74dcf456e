#include "platform/timed_calls.h"

#include "host_sockets.h"
#include "socket_errors.h"

namespace quorvane {
namespace {

int Descriptor(SOCKET s) {
    return static_cast<int>(s);
}

int Report(long result) {
    if (result >= 0) return static_cast<int>(result);
    WSASetLastError(winsock::SocketError(static_cast<int>(-result)));
    return SOCKET_ERROR;
}

}  // namespace

int PrepareTimedCalls(SOCKET s) {
    return Report(host::LimitCalls(Descriptor(s), kTimedCallLimit));
}

int ConnectInTime(SOCKET s, const sockaddr_in& peer) {
    return Report(host::ConnectOnce(Descriptor(s), {peer.sin_addr.s_addr, peer.sin_port}));
}

int ReceiveInTime(SOCKET s, char* buffer, int size, int time) {
    const auto room = static_cast<std::size_t>(size);
    // The socket's own limit is always the same.
    if (time >= kTimedCallLimit) return Report(host::ReceiveOnce(Descriptor(s), buffer, room));
    WSAPOLLFD entry{};
    entry.fd = s;
    entry.events = POLLIN;
    const int ready = WSAPoll(&entry, 1, time);
    if (ready == 0) WSASetLastError(WSAEWOULDBLOCK);
    return ready > 0 ? ReceiveAtOnce(s, buffer, size, 0) : SOCKET_ERROR;
}

int ReceiveAtOnce(SOCKET s, char* buffer, int size, int flags) {
    return Report(host::ReceiveAtOnce(Descriptor(s), buffer, static_cast<std::size_t>(size),
                                      (flags & MSG_PEEK) != 0));
}

int SendAtOnce(SOCKET s, const char* data, int size) {
    return Report(host::SendAtOnce(Descriptor(s), data, static_cast<std::size_t>(size)));
}

}  // namespace quorvane
