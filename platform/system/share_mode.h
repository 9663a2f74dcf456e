// Share modes of open files.
#pragma once

#include <winbase.h>

namespace quorvane::platform {

// Notes at the open file that it is being read and what its share mode denies to others, and checks
// that nobody who has it open denies reading and that nobody reads what this open wants for itself.
// False when the two don't agree; then the descriptor is to be closed. What is noted ends with the
// descriptor, however the process ends.
//
// A file system that can't keep record locks leaves every open unrestricted.
bool ShareForReading(int descriptor, DWORD shareMode);

// Ends what is noted at once, also when a forked process still has the descriptor.
void ForgetShareMode(int descriptor);

}  // namespace quorvane::platform
