#include "call_queue.h"

#include <algorithm>
#include <chrono>
#include <new>

namespace quorvane::platform {

void Call::Run() {
    struct Outcome {
        Call& call;
        HRESULT status = RPC_E_DISCONNECTED;  // of a thread that ends within
        ~Outcome() { call.Finish(status); }
    } outcome{*this};
    try {
        outcome.status = work_();
    } catch (const std::bad_alloc&) {
        outcome.status = E_OUTOFMEMORY;
    }
}

void Call::Finish(HRESULT status) {
    if (!caller_) return;
    const std::lock_guard lock(caller_->mutex_);
    done_ = true;
    status_ = status;
    caller_->changed_.notify_all();
}

bool CallQueue::Post(const std::shared_ptr<Call>& call) {
    const std::lock_guard lock(mutex_);
    if (closed_) return false;
    waiting_.push_back(call);
    call->number_ = ++lastNumber_;
    changed_.notify_all();
    return true;
}

LPARAM CallQueue::Take() {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) return 0;
    taken_.splice(taken_.end(), waiting_, waiting_.begin());
    return taken_.back()->number_;
}

void CallQueue::Dispatch(LPARAM number) {
    std::list<std::shared_ptr<Call>> call;
    {
        const std::lock_guard lock(mutex_);
        const auto found = std::find_if(taken_.begin(), taken_.end(), [number](const auto& taken) {
            return taken->number_ == number;
        });
        if (found == taken_.end()) return;
        call.splice(call.end(), taken_, found);
    }
    call.front()->Run();
}

bool CallQueue::WaitForCall(DWORD time) {
    std::unique_lock lock(mutex_);
    const auto isThere = [this] { return !waiting_.empty(); };
    if (time != INFINITE) {
        return changed_.wait_for(lock, std::chrono::milliseconds(time), isThere);
    }
    changed_.wait(lock, isThere);
    return true;
}

HRESULT CallQueue::WaitForOutcome(const Call& call) {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [&] { return call.done_ || !waiting_.empty(); });
        if (call.done_) return call.status_;
        const std::shared_ptr<Call> incoming = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        incoming->Run();
        lock.lock();
    }
}

void CallQueue::Close() {
    std::list<std::shared_ptr<Call>> left;
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        left.splice(left.end(), taken_);
        left.splice(left.end(), waiting_);
    }
    for (const auto& call : left) call->Finish(RPC_E_DISCONNECTED);
}

}  // namespace quorvane::platform
