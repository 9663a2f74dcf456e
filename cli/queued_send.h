// Sending through the component's queue.
#pragma once

#include "cli/options.h"
#include "cli/run.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// Whether the options ask for what only the queue can do: its events tell of each step, and of how
// much of a large message has gone.
bool WantsQueue(const Options& options);

// Queues the message as often as the options say, and tells how it goes until all have ended or the
// user interrupts it: then what is queued is cancelled. Throws UsageError for a message that the
// component refuses.
ExitStatus SendThroughQueue(const Options& options, client::Mailer& mailer,
                            const client::Message& message);

}  // namespace quorvane::cli
