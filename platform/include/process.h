// Threads of the C library.
#pragma once

#include "windef.h"

#ifdef __cplusplus

extern "C" {

// Starts a thread and returns its handle, which the caller closes with CloseHandle; 0 with errno
// set when it can't be started. `security`, `stackSize`, `flags` and `id` are 0. Differs from
// Windows: the handle is good for nothing else.
uintptr_t _beginthreadex(void* security, unsigned stackSize, unsigned(WINAPI* start)(void*),
                         void* argument, unsigned flags, unsigned* id);

}  // extern "C"

#endif
