// The two ways of a message out of the component, each in a session of its own.
#pragma once

#include "component/settings.h"
#include "model/outgoing_message.h"

namespace quorvane {

// Both block for the whole dialogue and end the session on every path. Composing the message adds
// its standard header fields.

// Sends the message to settings.server.
SendOutcome SendThroughRelay(const SmtpSettings& settings, COutgoingMessage& message);

// Sends the message to the mail exchangers of its recipients' domains, without encryption. Of the
// settings only the sender's host name counts. After a failure the domains before it have the
// message.
SendOutcome SendDirect(const SmtpSettings& settings, COutgoingMessage& message);

}  // namespace quorvane
