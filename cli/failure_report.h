// What is said on standard error of messages that were not sent.
#pragma once

#include <set>
#include <string>

#include "cli/options.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// "quorvane-send: " in front of a sentence, and a hint below it unless that is empty.
std::string ErrorText(const std::string& sentence, const std::string& hint);

// Tells of the failures of one run, and gives each hint once.
class FailureReport {
public:
    explicit FailureReport(const Options& options) : options_(options) {}
    // A message without a number has 0. The number is told where there is more than one message.
    void Tell(LONG number, const client::Outcome& outcome);

private:
    const Options& options_;
    std::set<std::string> given_;
};

}  // namespace quorvane::cli
