// Threads that the C library's calls start.
#pragma once

#include <windef.h>

namespace quorvane::platform {

// What _beginthreadex returns for each of its threads: a handle that no open file has. Nobody waits
// for a thread through its handle, so one is as good as another.
inline const HANDLE kThreadHandle = reinterpret_cast<HANDLE>(2);

}  // namespace quorvane::platform
