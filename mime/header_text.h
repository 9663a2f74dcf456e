// Header texts: plain, quoted (RFC 5322 section 3.2.4) or as encoded words (RFC 2047).
#pragma once

#include <string>

#include "automation/wide_string.h"
#include "model/outgoing_message.h"

namespace quorvane {

// Name of the character set that stands for UTF-8.
inline constexpr WideView kUnicodeCharset = OLESTR("unicode");

// True for the name "unicode" in any case: such text goes out as UTF-8. Text of every other
// character set goes out as the low byte of each UTF-16 unit.
bool IsUnicodeCharset(WideView charset);

// The bytes of the text in the character set, and the name that a receiver needs for them.
std::string ConvertText(WideView text, WideView charset);
std::string CharsetLabel(WideView charset);

// The 8-bit form of a subject, display name or attachment name. Text outside of printable ASCII
// becomes one encoded word, whatever its length, in the character set of the last body part that
// has one other than ISO 8859-1, else in UTF-8. Otherwise a phrase with anything but letters and
// digits is put in quotes, and other text stays as it is.
std::string EncodeHeaderText(const COutgoingMessage& message, WideView text, bool isPhrase);

}  // namespace quorvane
