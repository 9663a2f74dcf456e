// Threads of single-threaded apartments that take the calls of others.
#pragma once

#include <windows.h>
#include <ole2.h>

#include <chrono>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

// Dispatches the thread's messages until the condition holds; false when it doesn't in time. Looks
// at the condition after each message and a hundred times a second.
template <class Condition>
bool PumpUntil(Condition holds, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!holds()) {
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        } else if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        } else {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
    }
    return true;
}

// A thread with an apartment of its own, which pumps except while it runs a task.
class PumpingThread {
public:
    PumpingThread() : thread_([this] { Pump(); }) {}
    PumpingThread(const PumpingThread&) = delete;
    PumpingThread& operator=(const PumpingThread&) = delete;
    // Leaves the apartment.
    ~PumpingThread() {
        Start([this] { ending_ = true; });
        thread_.join();
    }

    std::thread::id id() const { return thread_.get_id(); }

    // Runs the task on the thread.
    std::future<void> Start(std::function<void()> task) {
        std::packaged_task<void()> packaged(std::move(task));
        std::future<void> done = packaged.get_future();
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(packaged));
        return done;
    }
    // Runs the task and waits for it, without pumping.
    void Run(std::function<void()> task) { Start(std::move(task)).get(); }

private:
    void Pump() {
        CoInitialize(nullptr);
        while (!ending_) {
            std::vector<std::packaged_task<void()>> tasks;
            PumpUntil([this] { return HasTasks(); }, std::chrono::hours(1));
            {
                const std::lock_guard lock(mutex_);
                tasks.swap(tasks_);
            }
            for (auto& task : tasks) task();
        }
        CoUninitialize();
    }

    bool HasTasks() {
        const std::lock_guard lock(mutex_);
        return !tasks_.empty();
    }

    std::mutex mutex_;
    std::vector<std::packaged_task<void()>> tasks_;
    bool ending_ = false;
    std::thread thread_;
};
