// Header text ready for the wire, for contenders that take it so.
#pragma once

#include <string>

namespace quorvane::bench {

// UTF-8 text as it is when it is ASCII, else as one encoded word (RFC 2047).
std::string HeaderText(const std::string& text);

std::string Mailbox(const std::string& name, const std::string& address);

}  // namespace quorvane::bench
