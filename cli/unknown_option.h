// What to say about arguments that are no options of the command.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvane::cli {

// A sentence about the argument, with the option that was likely meant. `names` are the options
// that there are, with their dashes.
std::string AboutUnknown(std::string_view argument, const std::vector<std::string>& names);

}  // namespace quorvane::cli
