#include "tests/servers/loopback.h"

#include <stdexcept>
#include <utility>

namespace quorvane::testing {
namespace {

constexpr std::size_t kBufferSize = 65536;

void Check(bool succeeded, const char* operation) {
    if (!succeeded) {
        throw std::runtime_error(std::string(operation) + " failed, socket error " +
                                 std::to_string(WSAGetLastError()));
    }
}

}  // namespace

LoopbackSocket::LoopbackSocket(LoopbackSocket&& other) noexcept
    : socket_(std::exchange(other.socket_, INVALID_SOCKET)) {}

LoopbackSocket& LoopbackSocket::operator=(LoopbackSocket&& other) noexcept {
    std::swap(socket_, other.socket_);
    return *this;
}

void LoopbackSocket::Close() {
    if (IsOpen()) {
        closesocket(std::exchange(socket_, INVALID_SOCKET));
    }
}

bool LoopbackSocket::WaitReadable(int milliseconds) const {
    WSAPOLLFD entry{};
    entry.fd = socket_;
    entry.events = POLLIN;
    return WSAPoll(&entry, 1, milliseconds) > 0;
}

bool LoopbackSocket::Send(std::string_view bytes) const {
    while (!bytes.empty()) {
        const int sent = send(socket_, bytes.data(), static_cast<int>(bytes.size()), 0);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool LoopbackSocket::Receive(std::string& bytes) const {
    const std::size_t size = bytes.size();
    bytes.resize(size + kBufferSize);
    const int count = recv(socket_, bytes.data() + size, static_cast<int>(kBufferSize), 0);
    bytes.resize(size + (count > 0 ? static_cast<std::size_t>(count) : 0));
    return count > 0;
}

std::string LoopbackSocket::Peek() const {
    std::string bytes(kBufferSize, '\0');
    const int count = recv(socket_, bytes.data(), static_cast<int>(bytes.size()), MSG_PEEK);
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

LoopbackListener::LoopbackListener(bool listening) {
    WSADATA data;
    WSAStartup(0x0202, &data);
    socket_ = LoopbackSocket(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    Check(socket_.IsOpen(), "socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    int size = sizeof address;
    Check(bind(socket_.get(), generic, size) == 0, "bind");
    Check(!listening || listen(socket_.get(), SOMAXCONN) == 0, "listen");
    Check(getsockname(socket_.get(), generic, &size) == 0, "getsockname");
    port_ = address.sin_port;
}

LoopbackSocket LoopbackListener::Accept() const {
    LoopbackSocket accepted(accept(socket_.get(), nullptr, nullptr));
    // Segments leave as they are written, so that a test decides how a reply is cut.
    const int noDelay = 1;
    setsockopt(accepted.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&noDelay),
               sizeof noDelay);
    return accepted;
}

}  // namespace quorvane::testing
