#include "cli/style.h"

#include <cstdlib>

#include "cli/system.h"

namespace quorvane::cli {
namespace {

bool IsWanted() {
    const char* refused = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return (!refused || *refused == '\0') && (!terminal || std::string_view(terminal) != "dumb");
}

std::string Coloured(Colour colour, std::string_view text) {
    constexpr const char* kCodes[] = {"0", "1;31", "32", "36", "2"};
    return std::string("\x1B[") + kCodes[static_cast<int>(colour)] + "m" + std::string(text) +
           "\x1B[0m";
}

}  // namespace

std::string ForOutput(Colour colour, std::string_view text) {
    static const bool shows = IsWanted() && system::OutputShowsColours();
    return shows && colour != Colour::kNone ? Coloured(colour, text) : std::string(text);
}

std::string ForError(Colour colour, std::string_view text) {
    static const bool shows = IsWanted() && system::ErrorShowsColours();
    return shows && colour != Colour::kNone ? Coloured(colour, text) : std::string(text);
}

}  // namespace quorvane::cli
