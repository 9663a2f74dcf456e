// Delivery through the configured relay server.
#pragma once

#include "component/settings.h"
#include "model/outgoing_message.h"

namespace quorvane {

// Sends the message in one session with settings.server and ends it on every path. The message is
// composed during the call, which adds its standard header fields. Blocks for the whole dialogue.
SendOutcome SendThroughRelay(const SmtpSettings& settings, COutgoingMessage& message);

}  // namespace quorvane
