// Calls that wait for one thread, and that thread's waiting.
#pragma once

#include <windows.h>

#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>

namespace quorvane::platform {

class CallQueue;

// Work for a thread of another apartment.
class Call {
public:
    // `caller`: the queue of the thread that waits for the outcome; null when nobody does.
    Call(std::function<HRESULT()> work, std::shared_ptr<CallQueue> caller)
        : work_(std::move(work)), caller_(std::move(caller)) {}

    // Does the work and wakes the caller, even when the thread ends within.
    void Run();
    // Tells the caller the outcome and wakes it.
    void Finish(HRESULT status);

private:
    friend CallQueue;

    std::function<HRESULT()> work_;
    std::shared_ptr<CallQueue> caller_;
    LPARAM number_ = 0;  // in the queue it is in
    // Guarded by the caller's queue.
    bool done_ = false;
    HRESULT status_ = S_OK;
};

// Belongs to one thread; others put calls into it.
class CallQueue {
public:
    // Any thread. False when the queue is closed.
    bool Post(const std::shared_ptr<Call>& call);

    // The owner takes the oldest call out to dispatch it later. Returns its number, 0 when there is
    // no call.
    LPARAM Take();
    // Runs the call that was taken out under the number; nothing when there is none.
    void Dispatch(LPARAM number);
    // Waits until there is a call to take. False when the time, in milliseconds or INFINITE, is up.
    bool WaitForCall(DWORD time);
    // Waits for the outcome of a call that the owner has made, and runs incoming ones meanwhile.
    HRESULT WaitForOutcome(const Call& call);
    // Gives up all calls that have not been run, and takes no more.
    void Close();

private:
    friend Call;

    std::mutex mutex_;
    std::condition_variable changed_;
    bool closed_ = false;
    LPARAM lastNumber_ = 0;
    std::list<std::shared_ptr<Call>> waiting_;
    std::list<std::shared_ptr<Call>> taken_;
};

}  // namespace quorvane::platform
