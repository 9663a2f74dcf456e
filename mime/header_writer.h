// The one place where header lines of messages and parts are written.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quorvane {

// Appends one header field (RFC 5322 section 2.2): the name, ": ", the pieces of the value one
// after the other, CRLF. Whatever the texts hold, the line stays one field:
// - a line break in the value (CRLF, CR or LF) that isn't followed by a blank or tab gets a blank
//   behind it, which makes it a folded line of the same field; CR and LF alone become CRLF;
// - a zero byte in the value becomes '?';
// - in the name, CR, LF and NUL become '?', and so does a blank at its start, where a dot is
// doubled
//   (RFC 5321 section 4.5.2); anything else goes out as it stands.
void AppendHeaderLine(std::string& out, std::string_view name,
                      std::initializer_list<std::string_view> value);

}  // namespace quorvane
