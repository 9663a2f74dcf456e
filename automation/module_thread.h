// Threads that run the library's code.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <utility>

namespace quorvane {

// Starts a thread for the body, which must not throw. The library counts as used until the body has
// returned, and stays loaded until the thread has left its code for good. False when it can't be
// started; the body is destroyed then.
bool StartModuleThread(std::function<void()> body) noexcept;

// The end of the thread that makes it, for others to wait for. Null when there is no handle to be
// had.
class ThreadEnd {
public:
    ThreadEnd() noexcept;
    ThreadEnd(ThreadEnd&& other) noexcept : thread_(std::exchange(other.thread_, nullptr)) {}
    ThreadEnd& operator=(ThreadEnd&& other) noexcept {
        std::swap(thread_, other.thread_);
        return *this;
    }
    ~ThreadEnd();

    // True once the system has done with the thread too, which is later than the end of its body.
    bool WaitFor(std::chrono::milliseconds time) const noexcept;

private:
    HANDLE thread_;
};

}  // namespace quorvane
