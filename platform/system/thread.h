// Threads that the C library's calls start.
#pragma once

#include <windef.h>

#include <csignal>

namespace quorvane::platform {

// Whether any thread of _beginthreadex hasn't ended.
bool ThreadsRun();

// As long as it lives, the calling thread takes no signals but those of its own faults, nor will
// the threads that it starts: signals are the host's, for its own threads.
class SignalsBlocked {
public:
    SignalsBlocked();
    ~SignalsBlocked();
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_;
};

// What _beginthreadex returns for each of its threads: a handle that nothing else has. Who waits
// for a thread does so through the handle that it gives out itself, so one is as good as another.
inline const HANDLE kThreadHandle = reinterpret_cast<HANDLE>(2);

}  // namespace quorvane::platform
