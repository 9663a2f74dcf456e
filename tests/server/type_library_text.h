// A type library as text, in its own order.
#pragma once

#include <string>

#include "automation/wide_string.h"

namespace quorvane {

// One line for a type, an implemented interface or a member. The members of a dual interface are
// those of its table of functions, with their place in it. Parameters of the writing half of a
// property come without their names. Throws std::runtime_error with the failing call and its
// status.
std::string TypeLibraryText(const WideString& path);

}  // namespace quorvane
