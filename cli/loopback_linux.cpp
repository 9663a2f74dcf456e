#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "cli/loopback.h"

namespace quorvane::cli {
namespace {

constexpr int kMoment = 50;  // milliseconds

bool HasNews(int socket) {
    pollfd entry{socket, POLLIN, 0};
    return poll(&entry, 1, kMoment) > 0;
}

}  // namespace

struct Loopback::Sockets {
    int listener = -1;
    int connection = -1;
    int port = 0;
    ~Sockets() {
        if (connection >= 0) close(connection);
        if (listener >= 0) close(listener);
    }
};

Loopback::Loopback() : sockets_(std::make_unique<Sockets>()) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    const int listener = sockets_->listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0 || bind(listener, generic, size) != 0 || listen(listener, 1) != 0 ||
        getsockname(listener, generic, &size) != 0) {
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
    sockets_->connection = accept4(sockets_->listener, nullptr, nullptr, SOCK_CLOEXEC);
    return sockets_->connection >= 0;
}

bool Loopback::Receive(std::string& bytes) {
    if (!HasNews(sockets_->connection)) return true;
    char piece[65536];
    const ssize_t count = recv(sockets_->connection, piece, sizeof piece, 0);
    if (count > 0) bytes.append(piece, static_cast<std::size_t>(count));
    return count > 0;
}

void Loopback::Send(std::string_view bytes) {
    send(sockets_->connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

}  // namespace quorvane::cli
