// One connection from this process to itself.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace quorvane::cli {

// A port of the loopback interface that takes one connection. No call waits longer than a moment.
class Loopback {
public:
    // Throws std::runtime_error when there is no port to be had.
    Loopback();
    ~Loopback();
    Loopback(const Loopback&) = delete;
    Loopback& operator=(const Loopback&) = delete;

    int port() const;
    // False when nobody has called yet.
    bool Accept();
    // Appends what has arrived, nothing perhaps. False at the end.
    bool Receive(std::string& bytes);
    void Send(std::string_view bytes);

private:
    struct Sockets;
    std::unique_ptr<Sockets> sockets_;
};

}  // namespace quorvane::cli
