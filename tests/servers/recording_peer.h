// A mail server that takes everything and remembers every line.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/servers/loopback.h"

namespace quorvane::testing {

// One connection after the other, in a thread of its own. It offers AUTH LOGIN and takes any
// account; a line ends with CRLF, a message with CRLF.CRLF.
class RecordingPeer {
public:
    RecordingPeer();
    ~RecordingPeer();

    int port() const;  // host byte order

    struct Record {
        std::vector<std::string> lines;     // commands and answers, without line ends
        std::vector<std::string> messages;  // with doubled dots and without the end
        std::string rest;                   // said last and never ended with CRLF
    };
    // What was said since the last call, in connections that the client has closed.
    Record Take();

private:
    void Run();
    void Serve(LoopbackSocket client);
    std::string ReplyTo(const std::string& line);

    LoopbackListener listener_;
    std::mutex mutex_;
    std::condition_variable changed_;
    Record record_;
    int promptsLeft_ = 0;  // of AUTH LOGIN
    bool asked_ = false;   // somebody waits for the end of all connections
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace quorvane::testing
