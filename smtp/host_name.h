// The name under which a session introduces itself.
#pragma once

#include "automation/wide_string.h"

namespace quorvane {

// Keeps of the name what may stand in a host name: ASCII letters, digits, '.' and '-', none of the
// latter two at either end. "EMPTY" when nothing is left.
WideString MakeHostName(WideView name);

// MakeHostName of this computer's name.
WideString LocalHostName();

}  // namespace quorvane
