// What quorvane-send tells its user.
#pragma once

#include <string>
#include <string_view>

#include "cli/catcher.h"
#include "cli/progress.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// One message's outcome as a line of JSON, without the line end. A message that wasn't queued has
// no number, which is given as 0.
std::string OutcomeAsJson(const client::Outcome& outcome, LONG number, MailStatus status);
// The same for a message that was sent at once.
std::string OutcomeAsJson(const client::Outcome& outcome);

// The outcome of a message that was not sent, for a person: the code, unless the text is a reply
// that begins with it, and the text. Line breaks of the text are kept and its other control
// characters shown as '?', since the text may hold whatever the server said.
std::string OutcomeAsText(const client::Outcome& outcome);

// A message that was composed and not sent: the envelope as the commands that carry it, an empty
// line, and the message with the line ends of text. For a terminal, control characters that it
// might act on are shown as '?'.
std::string CaughtAsText(const CaughtMessage& caught, bool forTerminal);
// The same with the members that an outcome has, with the status "composed", and "from", "to" and
// "message" beside them. Bytes that are no UTF-8 become U+FFFD.
std::string CaughtAsJson(const CaughtMessage& caught);

// "Sent." or the like; says how many of how many when there is more than one message.
std::string Summary(int sent, int count);
// The same as a line for standard output.
std::string SummaryLine(int sent, int count);
// The end of a run that Ctrl-C has cut short: what hadn't been tried counts as cancelled.
std::string InterruptedSummary(const Progress& progress);

}  // namespace quorvane::cli
