#include "platform/timed_calls.h"

namespace quorvane {

int PrepareTimedCalls(SOCKET s) {
    u_long nonBlocking = 1;
    return ioctlsocket(s, FIONBIO, &nonBlocking);
}

int ConnectInTime(SOCKET s, const sockaddr_in& peer) {
    return connect(s, reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
}

int ReceiveInTime(SOCKET s, char* buffer, int size, int time) {
    WSAPOLLFD entry{};
    entry.fd = s;
    entry.events = POLLIN;
    const int ready = WSAPoll(&entry, 1, time);
    if (ready == 0) WSASetLastError(WSAEWOULDBLOCK);
    return ready > 0 ? recv(s, buffer, size, 0) : SOCKET_ERROR;
}

int ReceiveAtOnce(SOCKET s, char* buffer, int size, int flags) {
    return recv(s, buffer, size, flags);
}

int SendAtOnce(SOCKET s, const char* data, int size) {
    return send(s, data, size, 0);
}

}  // namespace quorvane
