// Stream sockets on the loopback interface, for tests. No wait is without a limit, and a failure is
// an answer rather than an exception: peers that misbehave are what the tests are about.
#pragma once

#include <winsock2.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane::testing {

// Owns a socket.
class LoopbackSocket {
public:
    LoopbackSocket() = default;
    explicit LoopbackSocket(SOCKET socket) : socket_(socket) {}
    LoopbackSocket(LoopbackSocket&& other) noexcept;
    LoopbackSocket& operator=(LoopbackSocket&& other) noexcept;
    ~LoopbackSocket() { Close(); }

    bool IsOpen() const { return socket_ != INVALID_SOCKET; }
    SOCKET get() const { return socket_; }
    // Bytes that have arrived and were not received make this a reset for the other side.
    void Close();

    // True when there is something to receive, or to accept, within that many milliseconds.
    bool WaitReadable(int milliseconds) const;
    // All of it, however long that takes; false when the other side is gone.
    bool Send(std::string_view bytes) const;
    // Appends what has arrived, waiting for it. False at the end of the stream.
    bool Receive(std::string& bytes) const;
    // What has arrived and is left to be received.
    std::string Peek() const;

private:
    SOCKET socket_ = INVALID_SOCKET;
};

// A port of this computer's loopback interface, chosen by the system.
class LoopbackListener {
public:
    // Without listening, connections to the port are refused while it stays reserved.
    explicit LoopbackListener(bool listening = true);

    USHORT port() const { return port_; }  // network byte order
    SOCKET socket() const { return socket_.get(); }
    bool WaitForConnection(int milliseconds) const { return socket_.WaitReadable(milliseconds); }
    LoopbackSocket Accept() const;

private:
    LoopbackSocket socket_;
    USHORT port_ = 0;
};

}  // namespace quorvane::testing
