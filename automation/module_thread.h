// Threads that run the library's code.
#pragma once

#include <functional>

namespace quorvane {

// Starts a thread for the body, which must not throw. The library counts as used until the body has
// returned, and stays loaded until the thread has left its code for good. The thread ends itself
// and nobody waits for it by handle. False when it can't be started; the body is destroyed then.
bool StartModuleThread(std::function<void()> body) noexcept;

}  // namespace quorvane
