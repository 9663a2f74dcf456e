// Apartments of threads.
#pragma once

#include <memory>

#include "call_queue.h"
#include "object_table.h"
#include "proxy_table.h"

namespace quorvane::platform {

// One thread's own, or the one of all threads that are in the multithreaded one. It outlives its
// threads as long as somebody refers to it, closed: nothing can be entered or called any more.
class Apartment {
public:
    // Null `calls`: the multithreaded one.
    explicit Apartment(std::shared_ptr<CallQueue> calls) : calls_(std::move(calls)) {}
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

    // The calling thread's: the one it has entered, or the multithreaded one, if there is one,
    // which takes in all threads that have none of their own. Null when there is none.
    static std::shared_ptr<Apartment> Current();

    // Does the work on a thread of this apartment and waits for its outcome, to be called from
    // threads of others. RPC_E_DISCONNECTED when the apartment has ended or ends before the work
    // has begun.
    HRESULT Run(std::function<HRESULT()> work);

    // Lets go of an object that has lost its last user, from any thread: at once in this apartment,
    // else when its thread takes calls.
    void ReleaseUnused(ObjectTable::Number number) noexcept;

    // Incoming calls of the thread; null for the multithreaded apartment.
    const std::shared_ptr<CallQueue>& calls() const { return calls_; }
    ObjectTable& objects() { return objects_; }
    ProxyTable& proxies() { return proxies_; }

private:
    HRESULT RunOnNewThread(const std::function<HRESULT()>& work,
                           const std::shared_ptr<CallQueue>& queue);

    std::shared_ptr<CallQueue> calls_;
    ObjectTable objects_;
    ProxyTable proxies_;
};

}  // namespace quorvane::platform
