// Threads that the C library's calls start.
#pragma once

#include <windef.h>

namespace quorvane::platform {

// What _beginthreadex returns for each of its threads: a handle that nothing else has. Who waits for
// a thread does so through the handle that it gives out itself, so one is as good as another.
inline const HANDLE kThreadHandle = reinterpret_cast<HANDLE>(2);

}  // namespace quorvane::platform
