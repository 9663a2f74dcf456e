// The one place where command lines are made (RFC 5321 section 4.1.1).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "automation/wide_string.h"

namespace quorvane {

// Most bytes of an argument in the ANSI code page: RFC 5321 section 4.5.3.1.3 gives a path 256,
// and a host name is given what the same line length leaves.
inline constexpr std::size_t kMaxAddressLength = 256;
inline constexpr std::size_t kMaxHostNameLength = 264;

// A value from outside that takes the place of %s in a command.
struct CommandArgument {
    WideView what;  // what the failure text calls it
    WideView value;
    std::size_t limit;
};

// Replaces `line` with the command, line end included: `format` with its %s, where it has one,
// filled with the argument in the ANSI code page. False when the value is too long or holds a CR,
// LF or NUL, which would start a command of its own; then `line` is empty and `problem` says what
// is wrong, to be shown to the user.
bool WriteCommand(std::string_view format, const CommandArgument& argument, std::string& line,
                  WideString& problem);

// The same for a value of our own making, such as Base64, or a command without one.
std::string WriteCommand(std::string_view format, std::string_view value = {});

}  // namespace quorvane
