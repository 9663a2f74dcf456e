// Colours of what quorvane-send says.
#pragma once

#include <string>
#include <string_view>

namespace quorvane::cli {

enum class Colour { kNone, kRed, kGreen, kCyan, kGrey };

// The text in a colour where standard output or error is a terminal that shows any, the text as it
// is elsewhere. Never with NO_COLOR in the environment (unless that is empty) or TERM=dumb.
std::string ForOutput(Colour colour, std::string_view text);
std::string ForError(Colour colour, std::string_view text);

}  // namespace quorvane::cli
