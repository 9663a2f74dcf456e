// What a user can do about a message that was not sent.
#pragma once

#include <string>
#include <string_view>

#include "cli/options.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// A sentence to stand beside the component's or the server's own words; empty when there is nothing
// to advise.
std::string HintFor(const client::Outcome& outcome, const Options& options);

// The same for a message that was refused before anything was sent.
std::string HintForRefusal(std::string_view text);

}  // namespace quorvane::cli
