// What quorvane-send tells its user.
#pragma once

#include <string>
#include <string_view>

#include "quorvane.hpp"

namespace quorvane::cli {

// One message's outcome as a line of JSON, without the line end. A message that wasn't queued has
// no number, which is given as 0.
std::string OutcomeAsJson(const client::Outcome& outcome, LONG number, MailStatus status);
// The same for a message that was sent at once.
std::string OutcomeAsJson(const client::Outcome& outcome);

// The outcome of a message that was not sent, for a person: the code and the text. Line breaks of
// the text are kept and its other control characters shown as '?', since the text may hold
// whatever the server said.
std::string OutcomeAsText(const client::Outcome& outcome);

// "Sent." or the like; says how many of how many when there is more than one message.
std::string Summary(int sent, int count);

}  // namespace quorvane::cli
