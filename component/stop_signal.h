// What an object's threads wait for: the signal that ends them, and work for those that have none;
// and how long the object's release waits for them.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

#include "automation/module_thread.h"

namespace quorvane {

enum class Work { Messages, Events };

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
        for (Bell& bell : bells_) bell.condition.notify_all();
    }

    bool sent() const {
        const std::lock_guard lock(mutex_);
        return sent_;
    }

    // True as soon as the signal is sent; false when the time has come without it.
    bool WaitUntil(std::chrono::steady_clock::time_point time) {
        std::unique_lock lock(mutex_);
        return sentCondition_.wait_until(lock, time, [this] { return sent_; });
    }

    // There is something new to do. Wakes those who sleep until then.
    void Ring(Work work) {
        Bell& bell = BellOf(work);
        {
            const std::lock_guard lock(mutex_);
            ++bell.rings;
            if (bell.sleepers == 0) return;
        }
        bell.condition.notify_all();
    }
    // How often that has been.
    unsigned long long rings(Work work) {
        const std::lock_guard lock(mutex_);
        return BellOf(work).rings;
    }
    // Sleeps until it has been more often than that. True when the signal is sent.
    bool WaitForRing(Work work, unsigned long long rings) {
        Bell& bell = BellOf(work);
        std::unique_lock lock(mutex_);
        ++bell.sleepers;
        bell.condition.wait(lock, [&] { return sent_ || bell.rings > rings; });
        --bell.sleepers;
        return sent_;
    }

    void ThreadStarts() { Count(1, 0); }
    void ThreadFailsToStart() { Count(-1, 0); }
    // Called by the thread, as its last act that concerns the object.
    void ThreadEnds() {
        {
            const std::lock_guard lock(mutex_);
            std::erase_if(ends_, [](const ThreadEnd& end) {
                return end.WaitFor(std::chrono::milliseconds(0));
            });
            try {
                ends_.emplace_back();
            } catch (const std::bad_alloc&) {
                // Nobody waits for the rest of its way then.
            }
        }
        Count(-1, 0);
    }
    // A thread is about to call somebody else's code, which returns when it likes. False once the
    // signal is sent: nobody is called any more.
    bool CallBegins() {
        const std::lock_guard lock(mutex_);
        if (sent_) return false;
        ++calls_;
        return true;
    }
    void CallEnds() { Count(0, -1); }

    // Until every thread has gone or is in such a call, at most that long. Gone altogether, since
    // the host may be about to end the process, and not every system takes it well when a thread is
    // on its last steps then.
    void WaitForThreads(std::chrono::milliseconds limit) {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        std::vector<ThreadEnd> ends;
        {
            std::unique_lock lock(mutex_);
            quietCondition_.wait_until(lock, deadline, [this] { return threads_ <= calls_; });
            ends.swap(ends_);
        }
        for (const ThreadEnd& end : ends) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            end.WaitFor(std::max(left, std::chrono::milliseconds(0)));
        }
    }

private:
    struct Bell {
        std::condition_variable condition;
        unsigned long long rings = 0;
        int sleepers = 0;
    };

    Bell& BellOf(Work work) { return bells_[static_cast<std::size_t>(work)]; }

    void Count(int threads, int calls) {
        const std::lock_guard lock(mutex_);
        threads_ += threads;
        calls_ += calls;
        if (threads_ <= calls_) quietCondition_.notify_all();
    }

    mutable std::mutex mutex_;
    std::condition_variable sentCondition_;
    std::condition_variable quietCondition_;
    std::array<Bell, 2> bells_;
    std::vector<ThreadEnd> ends_;  // of those that are on their last steps
    bool sent_ = false;
    int threads_ = 0;
    int calls_ = 0;
};

}  // namespace quorvane
