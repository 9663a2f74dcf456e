// Events on their way from the threads that raise them to the one that fires them.
#pragma once

#include <windows.h>

#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace quorvane {

enum class EventKind : LONG { StatusChange = 0, Progress = 1 };

struct PendingEvent {
    EventKind kind;
    LONG messageNumber;
    LONG first;   // the new status; bytes sent
    LONG second;  // 0; bytes in all
};

// Keeps the order. Any thread.
class EventQueue {
public:
    // An event for which there is no memory is lost.
    void Post(const PendingEvent& event) noexcept {
        const std::lock_guard lock(mutex_);
        try {
            events_.push_back(event);
        } catch (const std::bad_alloc&) {
        }
    }

    std::vector<PendingEvent> TakeAll() noexcept {
        const std::lock_guard lock(mutex_);
        return std::exchange(events_, {});
    }

private:
    std::mutex mutex_;
    std::vector<PendingEvent> events_;
};

}  // namespace quorvane
