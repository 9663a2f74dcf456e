// --verbose: the steps of a send and their times, as they are seen from outside.
#pragma once

#include <chrono>
#include <map>
#include <set>
#include <string>

#include "cli/options.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// Writes lines to standard error, each with the seconds since it was made; nothing unless the
// options ask for it.
class EventLog {
public:
    explicit EventLog(const Options& options);

    void Status(LONG number, MailStatus status);
    // Of a long message; tells of each tenth.
    void Progress(LONG number, LONG sent, LONG total);
    // Whether the last status of the message has been told.
    bool HasEnded(LONG number) const { return ended_.contains(number); }

private:
    using Clock = std::chrono::steady_clock;

    void Describe(const Options& options);
    void Say(const std::string& what) const;

    const bool wanted_;
    const Clock::time_point start_ = Clock::now();
    std::map<LONG, long long> tenths_;
    std::set<LONG> ended_;
};

}  // namespace quorvane::cli
