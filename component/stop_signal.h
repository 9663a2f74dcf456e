// The end of an object's threads: how they are told, and how long its release waits for them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace quorvane {

// Any thread.
class StopSignal {
public:
    // Sent once and for good.
    void Send() {
        {
            const std::lock_guard lock(mutex_);
            sent_ = true;
        }
        sentCondition_.notify_all();
    }

    bool sent() const {
        const std::lock_guard lock(mutex_);
        return sent_;
    }

    // True as soon as the signal is sent; false when the time has passed without it.
    bool WaitFor(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        return sentCondition_.wait_for(lock, time, [this] { return sent_; });
    }

    void ThreadStarts() { Count(1, 0); }
    void ThreadEnds() { Count(-1, 0); }
    // A thread calls somebody else's code, which returns when it likes.
    void CallBegins() { Count(0, 1); }
    void CallEnds() { Count(0, -1); }

    // Until every thread has ended or is in such a call, at most that long.
    void WaitForThreads(std::chrono::milliseconds limit) {
        std::unique_lock lock(mutex_);
        quietCondition_.wait_for(lock, limit, [this] { return threads_ <= calls_; });
    }

private:
    void Count(int threads, int calls) {
        const std::lock_guard lock(mutex_);
        threads_ += threads;
        calls_ += calls;
        if (threads_ <= calls_) quietCondition_.notify_all();
    }

    mutable std::mutex mutex_;
    std::condition_variable sentCondition_;
    std::condition_variable quietCondition_;
    bool sent_ = false;
    int threads_ = 0;
    int calls_ = 0;
};

}  // namespace quorvane
