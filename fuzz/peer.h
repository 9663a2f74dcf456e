// A server on the loopback interface that says what the input holds.
#pragma once

#include <atomic>
#include <string>
#include <string_view>
#include <thread>

#include "tests/servers/loopback.h"

namespace quorvane::fuzzing {

// Says one turn after the other, and between two of them waits until the client has said a line, or
// a message, or nothing for some milliseconds. Behind the last it closes the connection. The script
// goes on when the client connects again.
//
// A separator of texts ends a turn, and a kCut a piece that is sent by itself.
class Peer {
public:
    static constexpr char kCut = '\x1F';

    explicit Peer(std::string_view script);
    ~Peer() { Finish(); }

    USHORT port() const;  // network byte order

    // Waits for the end of the conversation; the client has done all that it will do. Afterwards
    // the results can be read.
    void Finish();

    const std::string& said() const { return m_said; }
    const std::string& received() const { return m_received; }
    // True when every turn was one line, and the one that answered the end of a message said 250.
    bool accepted() const { return m_accepted; }

private:
    void Run();
    void Converse(testing::LoopbackSocket& socket);
    bool Say(testing::LoopbackSocket& socket, std::string_view turn);
    bool AwaitWords(testing::LoopbackSocket& socket, bool mayBeMessage);

    std::string_view m_script;
    std::string m_said;
    std::string m_received;
    bool m_plain = true;  // all turns were lines, each an answer to a line
    bool m_hasMessage = false;
    bool m_accepted = false;
    std::atomic<bool> m_finishing = false;
    std::thread m_thread;
};

}  // namespace quorvane::fuzzing
