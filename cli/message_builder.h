// From the options to a message of the component.
#pragma once

#include "cli/options.h"
#include "quorvane.hpp"

namespace quorvane::cli {

// Throws UsageError when a text can't be written in the character set that was asked for, and
// client::Error when the component refuses something.
client::Message BuildMessage(const Options& options);

}  // namespace quorvane::cli
