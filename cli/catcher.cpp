#include "cli/catcher.h"

namespace quorvane::cli {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

// What is between the angle brackets.
std::string Path(std::string_view line) {
    const auto open = line.find('<');
    const auto close = line.rfind('>');
    if (open == line.npos || close == line.npos || close < open) return {};
    return std::string(line.substr(open + 1, close - open - 1));
}

}  // namespace

std::string CatchingDialogue::Take(std::string& arrived) {
    std::string replies;
    std::size_t start = 0;
    for (auto end = arrived.find(kLineEnd); end != arrived.npos;
         end = arrived.find(kLineEnd, start)) {
        replies += ReplyTo(std::string_view(arrived).substr(start, end - start));
        start = end + kLineEnd.size();
    }
    arrived.erase(0, start);
    return replies;
}

std::string CatchingDialogue::ReplyTo(std::string_view line) {
    if (inData_) {
        if (line != ".") {
            Keep(line);
            return {};
        }
        inData_ = false;
        return "250 Caught\r\n";
    }
    const std::string_view verb = line.substr(0, 4);
    if (verb == "MAIL") caught_.from = Path(line);
    if (verb == "RCPT") caught_.to.push_back(Path(line));
    if (verb == "QUIT") return "221 Bye\r\n";
    inData_ = verb == "DATA";
    return inData_ ? "354 Go ahead\r\n" : "250 OK\r\n";
}

void CatchingDialogue::Keep(std::string_view line) {
    if (line.starts_with('.')) line.remove_prefix(1);
    caught_.message += line;
    caught_.message += kLineEnd;
}

Catcher::Catcher() : thread_([this](const std::stop_token& stop) { Serve(stop); }) {}

CaughtMessage Catcher::Finish() {
    thread_.request_stop();
    thread_.join();
    return dialogue_.caught();
}

void Catcher::Serve(const std::stop_token& stop) {
    while (!loopback_.Accept()) {
        if (stop.stop_requested()) return;
    }
    loopback_.Send("220 Ready\r\n");
    std::string arrived;
    while (!stop.stop_requested() && loopback_.Receive(arrived)) {
        const std::string replies = dialogue_.Take(arrived);
        if (!replies.empty()) loopback_.Send(replies);
    }
}

}  // namespace quorvane::cli
