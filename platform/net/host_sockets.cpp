#include "host_sockets.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>

namespace quorvane::host {
namespace {

// Repeats a call while signals interrupt it.
template <class Call>
auto Complete(Call call) -> decltype(call()) {
    for (;;) {
        const auto result = call();
        if (result >= 0) return result;
        if (errno != EINTR) return -errno;
    }
}

int Answer(int result) {
    return result < 0 ? -errno : result;
}

sockaddr_in ToSystem(const Endpoint& endpoint) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = endpoint.port;
    address.sin_addr.s_addr = endpoint.address;
    return address;
}

Endpoint FromSystem(const sockaddr_in& address) {
    return {address.sin_addr.s_addr, address.sin_port};
}

// Waits until an interrupted connect, which goes on by itself, has its result.
int AwaitConnect(int descriptor) {
    pollfd entry = {descriptor, POLLOUT, 0};
    if (const int ready = Complete([&] { return poll(&entry, 1, -1); }); ready < 0) return ready;
    int error = 0;
    const int result = TakeError(descriptor, error);
    return result < 0 ? result : -error;
}

}  // namespace

int OpenStream() {
    return Answer(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP));
}

int Bind(int descriptor, const Endpoint& endpoint) {
    const sockaddr_in address = ToSystem(endpoint);
    return Answer(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
}

int Listen(int descriptor, int backlog) {
    return Answer(listen(descriptor, backlog));
}

int Accept(int descriptor, Endpoint& peer) {
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    const int accepted = Complete([&] {
        return accept4(descriptor, reinterpret_cast<sockaddr*>(&address), &size, SOCK_CLOEXEC);
    });
    peer = FromSystem(address);
    return accepted;
}

int LocalEndpoint(int descriptor, Endpoint& endpoint) {
    sockaddr_in address = {};
    socklen_t size = sizeof address;
    const int result =
        Answer(getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size));
    endpoint = FromSystem(address);
    return result;
}

int Connect(int descriptor, const Endpoint& endpoint) {
    const sockaddr_in address = ToSystem(endpoint);
    const int result =
        Answer(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    return result == -EINTR ? AwaitConnect(descriptor) : result;
}

long Send(int descriptor, const char* data, std::size_t size) {
    // A blocking send takes everything unless a signal comes in between.
    std::size_t sent = 0;
    while (sent < size) {
        const ssize_t count =
            Complete([&] { return send(descriptor, data + sent, size - sent, MSG_NOSIGNAL); });
        // An error behind a part that went out comes back at the next call.
        if (count < 0) return sent != 0 ? static_cast<long>(sent) : count;
        sent += static_cast<std::size_t>(count);
    }
    return static_cast<long>(sent);
}

long Receive(int descriptor, char* buffer, std::size_t size, bool peek) {
    return Complete([&] { return recv(descriptor, buffer, size, peek ? MSG_PEEK : 0); });
}

int LimitCalls(int descriptor, int limit) {
    const timeval time = {0, limit * 1000};
    for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO}) {
        if (setsockopt(descriptor, SOL_SOCKET, option, &time, sizeof time) != 0) return -errno;
    }
    return 0;
}

int ConnectOnce(int descriptor, const Endpoint& endpoint) {
    const sockaddr_in address = ToSystem(endpoint);
    const int result =
        Answer(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    return result == -EINTR ? -EINPROGRESS : result;
}

long ReceiveOnce(int descriptor, char* buffer, std::size_t size) {
    const ssize_t count = recv(descriptor, buffer, size, 0);
    if (count >= 0) return count;
    return errno == EINTR ? -EAGAIN : -errno;
}

long ReceiveAtOnce(int descriptor, char* buffer, std::size_t size, bool peek) {
    const int flags = MSG_DONTWAIT | (peek ? MSG_PEEK : 0);
    return Complete([&] { return recv(descriptor, buffer, size, flags); });
}

long SendAtOnce(int descriptor, const char* data, std::size_t size) {
    return Complete([&] { return send(descriptor, data, size, MSG_NOSIGNAL | MSG_DONTWAIT); });
}

int ShutDown(int descriptor, bool receiving, bool sending) {
    const int how = receiving && sending ? SHUT_RDWR : sending ? SHUT_WR : SHUT_RD;
    return Answer(shutdown(descriptor, how));
}

int Close(int descriptor) {
    // Never again after EINTR: the descriptor is closed then.
    return close(descriptor) != 0 && errno == EBADF ? -EBADF : 0;
}

int SetNoDelay(int descriptor, bool noDelay) {
    const int value = noDelay;
    return Answer(setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &value, sizeof value));
}

int TakeError(int descriptor, int& error) {
    socklen_t size = sizeof error;
    return Answer(getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size));
}

int Poll(std::span<PollEntry> entries, int timeout) {
    using std::chrono::milliseconds;
    using std::chrono::steady_clock;
    FewOrMany<pollfd> room(entries.size());
    const std::span<pollfd> system = room.get();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        system[i].fd = entries[i].descriptor;
        system[i].events = static_cast<short>((entries[i].wantsRead ? POLLIN : 0) |
                                              (entries[i].wantsWrite ? POLLOUT : 0));
    }
    const auto end =
        timeout > 0 ? steady_clock::now() + milliseconds(timeout) : steady_clock::time_point();
    int left = timeout;
    const int ready = Complete([&] {
        const int result = poll(system.data(), system.size(), left);
        if (result < 0 && timeout > 0) {
            // Rounded up, so that the wait never ends early.
            const auto rest = std::chrono::ceil<milliseconds>(end - steady_clock::now());
            left = rest.count() > 0 ? static_cast<int>(rest.count()) : 0;
        }
        return result;
    });
    for (std::size_t i = 0; ready >= 0 && i < entries.size(); ++i) {
        entries[i].readable = system[i].revents & POLLIN;
        entries[i].writable = system[i].revents & POLLOUT;
        entries[i].failed = system[i].revents & POLLERR;
        entries[i].hungUp = system[i].revents & POLLHUP;
        entries[i].invalid = system[i].revents & POLLNVAL;
    }
    return ready;
}

Resolution Resolve(const char* name, const char* service, bool numericOnly, bool passive,
                   std::vector<Endpoint>& found) {
    addrinfo hints = {};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = (numericOnly ? AI_NUMERICHOST : 0) | (passive ? AI_PASSIVE : 0);
    addrinfo* list = nullptr;
    switch (getaddrinfo(name, service, &hints, &list)) {
        case 0:
            break;
        case EAI_NONAME:
        case EAI_SERVICE:
            return Resolution::NoSuchName;
        case EAI_NODATA:
        case EAI_ADDRFAMILY:
            return Resolution::NoAddress;
        case EAI_AGAIN:
            return Resolution::TryAgain;
        case EAI_MEMORY:
            return Resolution::OutOfMemory;
        default:
            return Resolution::Failed;
    }
    for (const addrinfo* entry = list; entry; entry = entry->ai_next) {
        found.push_back(FromSystem(*reinterpret_cast<const sockaddr_in*>(entry->ai_addr)));
    }
    freeaddrinfo(list);
    return Resolution::Found;
}

uint16_t ServicePort(const char* name, const char* protocol) {
    std::array<char, 8192> buffer;
    servent entry;
    servent* found = nullptr;
    if (getservbyname_r(name, protocol, &entry, buffer.data(), buffer.size(), &found) != 0) {
        return 0;
    }
    return found ? static_cast<uint16_t>(found->s_port) : 0;
}

bool ParseAddress(const char* text, uint32_t& address) {
    return inet_pton(AF_INET, text, &address) == 1;
}

}  // namespace quorvane::host
