#include "tests/servers/recording_peer.h"

#include <utility>

namespace quorvane::testing {
namespace {

constexpr int kGlance = 2;         // milliseconds
constexpr int kPatience = 10'000;  // milliseconds

// Takes the text up to the mark off the input, waiting for it. False at the end of the stream.
bool TakeUpTo(std::string_view mark, const LoopbackSocket& client, std::string& input,
              std::string& text) {
    std::size_t end;
    while ((end = input.find(mark)) == std::string::npos) {
        if (!client.WaitReadable(kPatience) || !client.Receive(input)) return false;
    }
    text = input.substr(0, end);
    input.erase(0, end + mark.size());
    return true;
}

}  // namespace

RecordingPeer::RecordingPeer() : thread_([this] { Run(); }) {}

RecordingPeer::~RecordingPeer() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    thread_.join();
}

int RecordingPeer::port() const {
    return ntohs(listener_.port());
}

RecordingPeer::Record RecordingPeer::Take() {
    std::unique_lock lock(mutex_);
    asked_ = true;
    changed_.wait(lock, [this] { return !asked_; });
    return std::exchange(record_, {});
}

void RecordingPeer::Run() {
    for (;;) {
        bool asked;
        {
            const std::lock_guard lock(mutex_);
            if (ending_) return;
            asked = asked_;
        }
        if (listener_.WaitForConnection(kGlance)) {
            Serve(listener_.Accept());
        } else if (asked) {
            const std::lock_guard lock(mutex_);
            asked_ = false;
            changed_.notify_all();
        }
    }
}

void RecordingPeer::Serve(LoopbackSocket client) {
    client.Send("220 peer\r\n");
    std::string input, text;
    while (TakeUpTo("\r\n", client, input, text)) {
        record_.lines.push_back(text);
        client.Send(ReplyTo(text));
        if (text != "DATA") continue;
        // What follows at once can be the end of an empty message.
        input.insert(0, "\r\n");
        if (!TakeUpTo("\r\n.\r\n", client, input, text)) break;
        record_.messages.push_back(text.substr(text.empty() ? 0 : 2));
        client.Send("250 kept\r\n");
    }
    record_.rest = input;
}

std::string RecordingPeer::ReplyTo(const std::string& line) {
    if (promptsLeft_ > 0) return --promptsLeft_ > 0 ? "334 UGFzc3dvcmQ6\r\n" : "235 in\r\n";
    if (line.starts_with("EHLO ")) return "250-peer\r\n250 AUTH LOGIN\r\n";
    if (line == "AUTH LOGIN") {
        promptsLeft_ = 2;
        return "334 VXNlcm5hbWU6\r\n";
    }
    if (line == "DATA") return "354 go\r\n";
    return line == "QUIT" ? "221 bye\r\n" : "250 ok\r\n";
}

}  // namespace quorvane::testing
