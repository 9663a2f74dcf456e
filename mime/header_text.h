// Header texts: plain, quoted (RFC 5322 section 3.2.4) or as encoded words (RFC 2047).
#pragma once

#include <string>

#include "automation/wide_string.h"
#include "model/outgoing_message.h"

namespace quorvane {

// Appends the 8-bit form of a subject, display name or attachment name. Text outside of printable
// ASCII becomes one encoded word, whatever its length, in the character set of the last body part
// that has one other than ISO 8859-1, else in UTF-8. Otherwise a phrase with anything but letters
// and digits is put in quotes, and other text stays as it is.
void AppendHeaderText(const COutgoingMessage& message, WideView text, bool isPhrase,
                      std::string& out);

}  // namespace quorvane
