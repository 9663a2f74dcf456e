// The quoted-printable encoding (RFC 2045 section 6.7).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane {

// Appends the text in lines of at most 76 characters, soft line breaks included, of which none
// ends in a blank. A CR, with or without a LF, ends a line; a LF elsewhere stays as it is. Lines
// that begin with a dot get a second one (RFC 5321 section 4.5.2), which the 76 don't count.
void EncodeQuotedPrintable(std::string_view text, std::string& out);
// The same without vector instructions, for processors that have none.
void EncodeQuotedPrintablePortable(std::string_view text, std::string& out);

// Size of what EncodeQuotedPrintable appends, for text with ordinary lines; text with many bare
// CRs or leading dots can take more.
std::size_t QuotedPrintableSizeEstimate(std::string_view text);
// The same for text of which only the size and the number of escaped characters are known.
std::size_t QuotedPrintableSizeEstimate(std::size_t size, std::size_t escapes);

}  // namespace quorvane
