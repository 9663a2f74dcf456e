#include "socket_errors.h"

#include <winsock2.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace quorvane::winsock {
namespace {

thread_local int t_lastError = 0;

constexpr int kHostErrors = 200;  // they are below

struct ErrorPair {
    int host;
    int windows;
};

constexpr ErrorPair kErrors[] = {
    {EINTR, WSAEINTR},
    {EBADF, WSAENOTSOCK},
    {ENOTSOCK, WSAENOTSOCK},
    {EACCES, WSAEACCES},
    {EPERM, WSAEACCES},
    {EFAULT, WSAEFAULT},
    {EINVAL, WSAEINVAL},
    {EMFILE, WSAEMFILE},
    {ENFILE, WSAEMFILE},
    {EAGAIN, WSAEWOULDBLOCK},
    {EINPROGRESS, WSAEWOULDBLOCK},  // what Windows says of a connect that goes on
    {EALREADY, WSAEALREADY},
    {EPROTOTYPE, WSAEPROTOTYPE},
    {ENOPROTOOPT, WSAENOPROTOOPT},
    {EPROTONOSUPPORT, WSAEPROTONOSUPPORT},
    {EOPNOTSUPP, WSAEOPNOTSUPP},
    {EAFNOSUPPORT, WSAEAFNOSUPPORT},
    {EADDRINUSE, WSAEADDRINUSE},
    {EADDRNOTAVAIL, WSAEADDRNOTAVAIL},
    {ENETDOWN, WSAENETDOWN},
    {ENETUNREACH, WSAENETUNREACH},
    {ENETRESET, WSAENETRESET},
    {ECONNABORTED, WSAECONNABORTED},
    {ECONNRESET, WSAECONNRESET},
    {EPIPE, WSAECONNRESET},  // sending to a peer that has reset the connection before
    {ENOBUFS, WSAENOBUFS},
    {ENOMEM, WSAENOBUFS},
    {EISCONN, WSAEISCONN},
    {ENOTCONN, WSAENOTCONN},
    {ETIMEDOUT, WSAETIMEDOUT},
    {ECONNREFUSED, WSAECONNREFUSED},
    {EHOSTDOWN, WSAEHOSTDOWN},
    {EHOSTUNREACH, WSAEHOSTUNREACH},
};

// By the host's error: nearly every wait asks for one.
constexpr auto kWindowsErrors = [] {
    std::array<int, kHostErrors> errors{};
    errors.fill(WSAEINVAL);
    for (const ErrorPair& pair : kErrors)
        errors[static_cast<std::size_t>(pair.host)] = pair.windows;
    return errors;
}();

}  // namespace

int SocketError(int hostError) {
    const auto index = static_cast<std::size_t>(hostError);
    return index < kWindowsErrors.size() ? kWindowsErrors[index] : WSAEINVAL;
}

int WSAGetLastError() {
    return t_lastError;
}

void WSASetLastError(int error) {
    t_lastError = error;
}

}  // namespace quorvane::winsock
