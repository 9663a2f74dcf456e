// The system's sockets.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

namespace quorvane::cli {

inline constexpr int kSendFlags = 0;

// What a process has to have in hand while it uses sockets.
class SocketLibrary {
public:
    SocketLibrary() {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
    }
    ~SocketLibrary() { WSACleanup(); }
    SocketLibrary(const SocketLibrary&) = delete;
    SocketLibrary& operator=(const SocketLibrary&) = delete;
};

}  // namespace quorvane::cli
