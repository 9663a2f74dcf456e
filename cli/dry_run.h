// --dry-run: what would be sent.
#pragma once

#include "cli/options.h"
#include "cli/run.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// Has the component send the message to a catcher within this process, and prints the envelope and
// the message that came. Throws UsageError for a message that the component refuses.
ExitStatus PrintInsteadOfSending(const Options& options, const client::Message& message);

}  // namespace quorvane::cli
