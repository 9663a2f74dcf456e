// The program behind its entry point.
#pragma once

#include <string>
#include <vector>

namespace quorvane::cli {

// Exit status of quorvane-send.
enum ExitStatus { kSent = 0, kNotSent = 1, kWrongUse = 2 };

// Does what the arguments (UTF-8, without the program's name) ask for; returns the exit status.
int Run(const std::vector<std::string>& arguments);

}  // namespace quorvane::cli
