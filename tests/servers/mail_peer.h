// A mail server for many connections at a time, whose senders say how they want to be treated.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/servers/loopback.h"

namespace quorvane::testing {

// The local part of the sender's address begins with the treatment:
//
//     ok       everything is accepted at once
//     slow     the message is accepted 20 milliseconds after its end
//     hold     the message is accepted once the peer is opened
//     refuse   recipients are refused with 550
//     silent   the first recipient gets no reply
//     stall    nothing is read behind DATA until the peer is opened
//     reset    the connection is reset instead of a reply to the first recipient
//
// One thread serves all connections. The counts can be read at any time.
class MailPeer {
public:
    MailPeer();
    ~MailPeer();

    int port() const;  // host byte order

    // Lets all messages through that are held or stalled, now and from now on.
    void Open();

    // Wait until that many messages are held or have begun to be ill-treated ("silent", "stall"),
    // or have been accepted. False after twenty seconds.
    bool WaitForStuck(int count);
    bool WaitForAccepted(int count);

    struct Message {
        std::string sender;
        std::string helo;  // name that the client announced
    };
    // Has the peer count messages only, so that it doesn't grow with them.
    void CountOnly();
    long long acceptedCount() const;
    std::vector<Message> accepted() const;  // in the order of their acceptance
    // How often each sender's message was accepted.
    std::map<std::string, int> acceptedBySender() const;
    // Most transactions that ever ran at a time.
    int mostAtATime() const;

private:
    using Clock = std::chrono::steady_clock;
    struct Client;

    void Run();
    void Serve(Client& client);
    void TakeLine(Client& client, std::string_view line);
    void TakeMessage(Client& client);
    void Accept(Client& client);
    void EndTransaction(Client& client);
    bool WaitFor(const std::function<bool()>& condition) const;

    LoopbackListener listener_;
    mutable std::mutex mutex_;
    std::vector<Message> accepted_;
    int stuck_ = 0;
    int running_ = 0;
    int mostRunning_ = 0;
    long long acceptedCount_ = 0;
    bool countsOnly_ = false;
    bool open_ = false;
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace quorvane::testing
