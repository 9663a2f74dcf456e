// The two ways of a message out of the component.
#pragma once

#include "component/settings.h"
#include "model/outgoing_message.h"
#include "smtp/direct_delivery.h"
#include "smtp/session.h"

namespace quorvane {

// Both block for the whole dialogue and close the session, unless it throws. A session that has
// been used before keeps the settings that they don't name. Composing the message adds its standard
// header fields.

// Sends the message to settings.server. Sets what the settings hold, except that the session keeps
// its host name when they have none, and stays willing to use NTLM once it was.
SendOutcome SendThroughRelay(const SmtpSettings& settings, CSmtp& session,
                             COutgoingMessage& message);

// Sends the message to the mail exchangers of its recipients' domains. After a failure the domains
// before it have the message.
SendOutcome SendDirect(const DirectSettings& settings, CSmtp& session, COutgoingMessage& message);

}  // namespace quorvane
