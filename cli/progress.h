// How the sending of many messages is told while it goes on.
#pragma once

#include <chrono>
#include <string>

namespace quorvane::cli {

struct Progress {
    int count = 0;  // messages in all
    int sent = 0;
    int failed = 0;
    int cancelled = 0;
    std::chrono::milliseconds elapsed{0};
    long long bytesSent = 0;  // of the messages in flight that are told of
    long long bytesTotal = 0;

    int ended() const { return sent + failed + cancelled; }
};

// One line without its end, at most 79 characters: "12 sent, 1 failed, 87 queued, 20/s, 5 s left,
// 1.2 of 3.4 MB". Rate and time are left out until there is something to tell, and what doesn't fit
// is left off the end.
//
// Of a single message it is how much of it has gone: "[######..............] 30 %, 1.0 of 3.4 MB,
// 4 s left"; nothing until that is known.
std::string ProgressLine(const Progress& progress);

// With one decimal up to ten.
std::string Megabytes(long long bytes);

}  // namespace quorvane::cli
