// A mail server within the process that takes one message and keeps it.
#pragma once

#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "cli/loopback.h"

namespace quorvane::cli {

struct CaughtMessage {
    std::string from;
    std::vector<std::string> to;
    std::string message;  // as it was before its dots were doubled
};

// The server's side of a dialogue, a function of bytes: takes what has arrived off the front, adds
// to the message, and returns what to reply.
class CatchingDialogue {
public:
    std::string Take(std::string& arrived);
    const CaughtMessage& caught() const { return caught_; }

private:
    std::string ReplyTo(std::string_view line);
    void Keep(std::string_view line);

    CaughtMessage caught_;
    bool inData_ = false;
};

// Runs it on a thread of its own, at a port of the loopback interface.
class Catcher {
public:
    Catcher();
    int port() const { return loopback_.port(); }
    // What has been caught; ends the catching.
    CaughtMessage Finish();

private:
    void Serve(const std::stop_token& stop);

    Loopback loopback_;
    CatchingDialogue dialogue_;
    std::jthread thread_;
};

}  // namespace quorvane::cli
