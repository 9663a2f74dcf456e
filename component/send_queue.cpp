// The client's side of the queue, and the life of its threads.
#include "component/send_queue.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include "automation/module_thread.h"

namespace quorvane {
namespace {

constexpr std::chrono::milliseconds kReleaseLimit{500};

// The calling thread's single-threaded apartment.
class Apartment {
public:
    Apartment() : entered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~Apartment() {
        if (entered_) CoUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

private:
    bool entered_;
};

}  // namespace

std::shared_ptr<SendQueue> SendQueue::Start() {
    std::shared_ptr<SendQueue> queue(new SendQueue);
    if (!queue->StartWorker() || !queue->StartThread(&SendQueue::EventThread)) {
        queue->m_stopEvent->Send();
        throw std::runtime_error("a thread can't be started");
    }
    return queue;
}

void SendQueue::ReleaseClient() noexcept {
    {
        const std::lock_guard lock(tableLock_);
        clientGone_ = true;
        if (boundSessions_ > 0) return;
        resting_ = true;
    }
    Rest();
    m_stopEvent->WaitForThreads(kReleaseLimit);
    listeners.RevokeSinks();
}

void SendQueue::Rest() noexcept {
    listeners.RevokeHandlers();
    CancelAll();
    m_stopEvent->Send();
}

LONG SendQueue::Add(std::unique_ptr<COutgoingMessage> message, bool useSmtpServer) {
    LONG number;
    {
        const std::lock_guard lock(tableLock_);
        number = table_.Add(std::move(message), useSmtpServer);
    }
    m_stopEvent->Ring(Work::Messages);
    return number;
}

bool SendQueue::StartWorker() noexcept {
    {
        const std::lock_guard lock(workerLock_);
        if (m_workerCount >= m_maxThreads) return true;
        ++m_workerCount;
    }
    if (StartThread(&SendQueue::WorkerThread)) return true;
    const std::lock_guard lock(workerLock_);
    --m_workerCount;
    return false;
}

// A worker that finds nothing queued leaves again, so that more of them than messages would only
// come and go.
void SendQueue::SetMaxThreads(LONG maxThreads) noexcept {
    LONG missing;
    {
        const std::lock_guard lock(workerLock_);
        m_maxThreads = std::max<LONG>(maxThreads, 1);
        missing = m_maxThreads - m_workerCount;
    }
    std::size_t queued;
    {
        const std::lock_guard lock(tableLock_);
        queued = table_.QueuedCount();
    }
    for (; missing > 0 && queued > 0 && StartWorker(); --missing) --queued;
}

LONG SendQueue::maxThreads() const {
    const std::lock_guard lock(workerLock_);
    return m_maxThreads;
}

bool SendQueue::Read(LONG number, const std::function<void(const CSmtpMailHolder&)>& read) {
    const std::lock_guard lock(tableLock_);
    const CSmtpMailHolder* const holder = table_.Find(number);
    if (holder) read(*holder);
    return holder != nullptr;
}

LONG SendQueue::Size() const {
    const std::lock_guard lock(tableLock_);
    return static_cast<LONG>(table_.QueueSize());
}

bool SendQueue::Cancel(LONG number) noexcept {
    std::unique_ptr<COutgoingMessage> cancelled;
    {
        const std::lock_guard lock(tableLock_);
        CSmtpMailHolder* const holder = table_.Find(number);
        if (!holder) return false;
        cancelled = table_.Cancel(*holder);
    }
    if (cancelled) PostEvent(EventKind::StatusChange, number, MailStatusCanceled, 0);
    return true;
}

void SendQueue::CancelAll() noexcept {
    std::set<LONG> cancelled;
    {
        const std::lock_guard lock(tableLock_);
        cancelled = table_.CancelAll();
    }
    for (const LONG number : cancelled) {
        std::unique_ptr<COutgoingMessage> done;
        {
            const std::lock_guard lock(tableLock_);
            done = std::move(table_.Find(number)->m_message);
        }
        PostEvent(EventKind::StatusChange, number, MailStatusCanceled, 0);
    }
}

void SendQueue::PostEvent(EventKind kind, LONG messageNumber, LONG first, LONG second) noexcept {
    m_eventQueue.Post({kind, messageNumber, first, second});
    m_stopEvent->Ring(Work::Events);
}

bool SendQueue::StartThread(void (SendQueue::*body)()) noexcept {
    m_stopEvent->ThreadStarts();
    auto run = [queue = weak_from_this().lock(), stop = m_stopEvent, body]() mutable {
        {
            const Apartment apartment;
            (queue.get()->*body)();
            queue.reset();  // it holds what belongs to COM
        }
        stop->ThreadEnds();
    };
    try {
        if (StartModuleThread(std::move(run))) return true;
    } catch (const std::bad_alloc&) {
    }
    m_stopEvent->ThreadFailsToStart();
    return false;
}

}  // namespace quorvane
