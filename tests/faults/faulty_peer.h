// A mail server behind a connection that breaks.
#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>

#include "tests/faults/mail_server.h"
#include "tests/servers/loopback.h"

namespace quorvane::faults {

enum class Side { Client, Server };  // whose bytes are counted
enum class Kind {
    None,
    Cut,     // the connection is closed in order
    Reset,   // the connection is reset
    Stall,   // nothing comes through any more in that direction, the byte in question included
    Garble,  // the byte's highest bit is turned over; everything goes on
};

// What happens to the first connection, once that many bytes of one side have come through. Later
// connections are sound.
struct Fault {
    Kind kind = Kind::None;
    Side side = Side::Client;
    std::size_t at = 0;
};

// Listens on the loopback interface from its construction on and serves one connection after the
// other.
class FaultyPeer {
public:
    FaultyPeer(const Dialogue& dialogue, const Fault& fault);
    // Ends the connection in hand.
    ~FaultyPeer();
    FaultyPeer(const FaultyPeer&) = delete;
    FaultyPeer& operator=(const FaultyPeer&) = delete;

    int port() const;  // host byte order

    struct Result {
        int connections = 0;
        int accepted = 0;             // messages, of all connections
        bool answered = false;        // the reply to the last of them came through whole
        std::size_t answerEnd = 0;    // bytes of that connection up to the end of this reply
        std::string message;          // the last one
        std::size_t clientBytes = 0;  // of the first connection
        std::size_t serverBytes = 0;
    };
    // Called when the client has ended.
    Result Finish();

private:
    void Run();
    void Serve(const testing::LoopbackSocket& socket, const Fault& fault);

    const Dialogue dialogue_;
    const Fault fault_;
    testing::LoopbackListener listener_;
    Result result_;  // the thread's until it has ended
    std::atomic<bool> ends_ = false;
    std::thread thread_;
};

}  // namespace quorvane::faults
