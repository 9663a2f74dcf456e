#include "cli/loopback.h"

#include <stdexcept>

#include "system_sockets.h"

namespace quorvane::cli {
namespace {

constexpr int kMoment = 50;  // milliseconds

bool HasNews(SOCKET socket) {
    WSAPOLLFD entry{};
    entry.fd = socket;
    entry.events = POLLIN;
    return WSAPoll(&entry, 1, kMoment) > 0;
}

}  // namespace

struct Loopback::Sockets {
    [[no_unique_address]] const SocketLibrary library{};
    SOCKET listener = INVALID_SOCKET;
    SOCKET connection = INVALID_SOCKET;
    int port = 0;
    ~Sockets() {
        if (connection != INVALID_SOCKET) closesocket(connection);
        if (listener != INVALID_SOCKET) closesocket(listener);
    }
};

Loopback::Loopback() : sockets_(std::make_unique<Sockets>()) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    const SOCKET listener = sockets_->listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (listener == INVALID_SOCKET || bind(listener, generic, size) != 0 ||
        listen(listener, 1) != 0 || getsockname(listener, generic, &size) != 0) {
        throw std::runtime_error("Can't listen on the loopback interface.");
    }
    sockets_->port = ntohs(address.sin_port);
}

Loopback::~Loopback() = default;

int Loopback::port() const {
    return sockets_->port;
}

bool Loopback::Accept() {
    if (!HasNews(sockets_->listener)) return false;
    sockets_->connection = accept(sockets_->listener, nullptr, nullptr);
    return sockets_->connection != INVALID_SOCKET;
}

bool Loopback::Receive(std::string& bytes) {
    if (!HasNews(sockets_->connection)) return true;
    char piece[65536];
    const auto count = recv(sockets_->connection, piece, sizeof piece, 0);
    if (count > 0) bytes.append(piece, static_cast<std::size_t>(count));
    return count > 0;
}

void Loopback::Send(std::string_view bytes) {
    send(sockets_->connection, bytes.data(), static_cast<int>(bytes.size()), kSendFlags);
}

}  // namespace quorvane::cli
