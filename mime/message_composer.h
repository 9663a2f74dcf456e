// Composes the whole text of a message: header, blank line, body (RFC 5322, RFC 2045, RFC 2046).
#pragma once

#include <string>

#include "model/outgoing_message.h"

namespace quorvane {

// Replaces `out` with the message as it goes out after DATA: lines end in CRLF and are already
// dot-stuffed (RFC 5321 section 4.5.2); the terminating dot line is not included. Room for it
// (5 bytes) is reserved, so that appending it doesn't move the text.
//
// Adds the standard header fields to the record and decides its structure, which a later
// composition of the same record keeps. Reads body and attachment files; an attachment whose file
// is missing, unreadable or empty is left out. Throws std::bad_alloc.
void ComposeMessage(COutgoingMessage& message, std::string& out);

}  // namespace quorvane
