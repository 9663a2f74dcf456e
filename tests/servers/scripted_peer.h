// A server that plays scripts on a real loopback socket, in a thread of its own.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/servers/loopback.h"
#include "tests/servers/script.h"

namespace quorvane::testing {

class ScriptedPeer {
public:
    // Plays one script for each connection, in order. Without any, connections are refused.
    ScriptedPeer(std::vector<Script> scripts, Delivery delivery);
    ~ScriptedPeer();  // ends the thread, whatever it waits for

    USHORT port() const { return listener_.port(); }  // network byte order

    // What "C: (message)" compares with from now on, the terminating line included.
    void ExpectMessage(std::string bytes);

    // Waits until everything has been said that comes before the next words of the client. False
    // when that doesn't happen within ten seconds.
    bool WaitUntilListening() const;
    // Waits until the first connection has come to its end; false after ten seconds.
    bool WaitForEnd() const;

    // Waits until the scripts have been played, or until a deviation or ten seconds of silence
    // ended them, and stops. Afterwards the results can be read.
    void Finish();

    int connections() const { return connections_; }
    // What the client did differently from the scripts, one sentence each.
    const std::vector<std::string>& deviations() const { return deviations_; }

private:
    class Conversation;

    void Run();
    bool WaitForConnection(int milliseconds);

    const std::vector<Script> scripts_;
    const Delivery delivery_;
    LoopbackListener listener_;
    std::mutex mutex_;
    std::string message_;
    std::atomic<bool> finishing_ = false;  // the client has done all that it will do
    std::atomic<bool> abandoned_ = false;
    std::atomic<bool> listening_ = false;
    std::atomic<bool> ended_ = false;
    int connections_ = 0;
    std::vector<std::string> deviations_;
    std::thread thread_;
};

}  // namespace quorvane::testing
