#include <winsock2.h>

#include <cerrno>
#include <vector>

#include "host_sockets.h"
#include "socket_errors.h"

namespace quorvane::winsock {
namespace {

int Descriptor(SOCKET s) {
    return s > INT32_MAX ? -1 : static_cast<int>(s);
}

// The result of a host call, its error noted.
int Report(long result) {
    if (result >= 0) return static_cast<int>(result);
    WSASetLastError(SocketError(static_cast<int>(-result)));
    return SOCKET_ERROR;
}

int Fail(int error) {
    WSASetLastError(error);
    return SOCKET_ERROR;
}

SOCKET ReportSocket(int result) {
    return Report(result) < 0 ? INVALID_SOCKET : static_cast<SOCKET>(result);
}

// The endpoint at `address`; false, with the error noted, when there is none of IPv4.
bool ReadEndpoint(const sockaddr* address, int size, host::Endpoint& endpoint) {
    if (!address || size < static_cast<int>(sizeof(sockaddr_in))) {
        WSASetLastError(WSAEFAULT);
        return false;
    }
    const auto& ip = *reinterpret_cast<const sockaddr_in*>(address);
    if (ip.sin_family != AF_INET) {
        WSASetLastError(WSAEAFNOSUPPORT);
        return false;
    }
    endpoint = {ip.sin_addr.s_addr, ip.sin_port};
    return true;
}

// Writes the endpoint where the caller wants it, if anywhere.
void WriteEndpoint(const host::Endpoint& endpoint, sockaddr* address, int* size) {
    if (!address || !size || *size < static_cast<int>(sizeof(sockaddr_in))) return;
    auto& ip = *reinterpret_cast<sockaddr_in*>(address);
    ip = {};
    ip.sin_family = AF_INET;
    ip.sin_port = endpoint.port;
    ip.sin_addr.s_addr = endpoint.address;
    *size = sizeof ip;
}

}  // namespace

int WSAStartup(WORD version, LPWSADATA data) {
    if (!data) return WSAEFAULT;
    *data = {};
    data->wVersion = version;
    data->wHighVersion = 0x0202;
    return 0;
}

SOCKET socket(int family, int type, int protocol) {
    if (family != AF_INET || type != SOCK_STREAM || (protocol != 0 && protocol != IPPROTO_TCP)) {
        WSASetLastError(family != AF_INET ? WSAEAFNOSUPPORT : WSAEPROTONOSUPPORT);
        return INVALID_SOCKET;
    }
    return ReportSocket(host::OpenStream());
}

int bind(SOCKET s, const sockaddr* address, int size) {
    host::Endpoint endpoint;
    if (!ReadEndpoint(address, size, endpoint)) return SOCKET_ERROR;
    return Report(host::Bind(Descriptor(s), endpoint));
}

int listen(SOCKET s, int backlog) {
    return Report(host::Listen(Descriptor(s), backlog));
}

SOCKET accept(SOCKET s, sockaddr* address, int* size) {
    host::Endpoint peer;
    const int accepted = host::Accept(Descriptor(s), peer);
    if (accepted >= 0) WriteEndpoint(peer, address, size);
    return ReportSocket(accepted);
}

int getsockname(SOCKET s, sockaddr* address, int* size) {
    host::Endpoint endpoint;
    if (!address || !size || *size < static_cast<int>(sizeof(sockaddr_in))) return Fail(WSAEFAULT);
    const int result = host::LocalEndpoint(Descriptor(s), endpoint);
    if (result >= 0) WriteEndpoint(endpoint, address, size);
    return Report(result);
}

int connect(SOCKET s, const sockaddr* address, int size) {
    host::Endpoint endpoint;
    if (!ReadEndpoint(address, size, endpoint)) return SOCKET_ERROR;
    return Report(host::Connect(Descriptor(s), endpoint));
}

int send(SOCKET s, const char* data, int size, int flags) {
    if (flags != 0) return Fail(WSAEOPNOTSUPP);
    if (size < 0) return Fail(WSAEFAULT);
    return Report(host::Send(Descriptor(s), data, static_cast<std::size_t>(size)));
}

int recv(SOCKET s, char* buffer, int size, int flags) {
    if (flags & ~MSG_PEEK) return Fail(WSAEOPNOTSUPP);
    if (size < 0) return Fail(WSAEFAULT);
    return Report(
        host::Receive(Descriptor(s), buffer, static_cast<std::size_t>(size), flags & MSG_PEEK));
}

int shutdown(SOCKET s, int how) {
    if (how < SD_RECEIVE || how > SD_BOTH) return Fail(WSAEINVAL);
    return Report(host::ShutDown(Descriptor(s), how != SD_SEND, how != SD_RECEIVE));
}

int closesocket(SOCKET s) {
    return Report(host::Close(Descriptor(s)));
}

int setsockopt(SOCKET s, int level, int option, const char* value, int size) {
    if (!value || size < 1) return Fail(WSAEFAULT);
    if (level != IPPROTO_TCP || option != TCP_NODELAY) return Fail(WSAENOPROTOOPT);
    return Report(host::SetNoDelay(Descriptor(s), *value != 0));
}

int getsockopt(SOCKET s, int level, int option, char* value, int* size) {
    int error = 0;
    if (!value || !size || *size < static_cast<int>(sizeof error)) return Fail(WSAEFAULT);
    if (level != SOL_SOCKET || option != SO_ERROR) return Fail(WSAENOPROTOOPT);
    const int result = host::TakeError(Descriptor(s), error);
    if (result < 0) return Report(result);
    error = error == 0 ? 0 : SocketError(error);
    __builtin_memcpy(value, &error, sizeof error);
    *size = sizeof error;
    return 0;
}

int WSAPoll(LPWSAPOLLFD sockets, ULONG count, INT timeout) {
    if (!sockets || count == 0) return Fail(WSAEINVAL);
    host::FewOrMany<host::PollEntry> room(count);
    const std::span<host::PollEntry> entries = room.get();
    for (ULONG i = 0; i < count; ++i) {
        entries[i].descriptor = Descriptor(sockets[i].fd);
        entries[i].wantsRead = sockets[i].events & POLLRDNORM;
        entries[i].wantsWrite = sockets[i].events & POLLWRNORM;
    }
    const int ready = host::Poll(entries, timeout);
    for (ULONG i = 0; ready >= 0 && i < count; ++i) {
        const host::PollEntry& entry = entries[i];
        sockets[i].revents =
            static_cast<SHORT>((entry.readable ? POLLRDNORM : 0) |
                               (entry.writable ? POLLWRNORM : 0) | (entry.failed ? POLLERR : 0) |
                               (entry.hungUp ? POLLHUP : 0) | (entry.invalid ? POLLNVAL : 0));
    }
    return Report(ready);
}

}  // namespace quorvane::winsock
