// The queue behind SmtpMail's asynchronous sends, with the threads that empty it.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "component/event_proxy.h"
#include "component/event_queue.h"
#include "component/message_table.h"
#include "component/shared_settings.h"
#include "component/smtp_wrapper.h"
#include "component/stop_signal.h"

namespace quorvane {

// What an SmtpMail object shares with its threads: they hold the queue, never the object, so that
// the object can go at any time. While a message is being sent, though, everything goes on as if
// the object were still there; the worker that ends the last one of an object that is gone puts the
// queue to rest.
//
// Any thread. Each lock is held for a few steps only, never two of them at once, and none while
// listeners, servers or the table of listeners are called.
class SendQueue : public std::enable_shared_from_this<SendQueue> {
public:
    // Starts the event thread and a worker. Throws std::bad_alloc, and std::runtime_error when a
    // thread can't be started; none is left then.
    static std::shared_ptr<SendQueue> Start();
    SendQueue(const SendQueue&) = delete;
    SendQueue& operator=(const SendQueue&) = delete;

    // The object is gone. Unless a message is being sent: no listener is called any more, what is
    // queued is cancelled, the threads are told to end and get half a second for it. A thread that
    // is in a listener's call isn't waited for.
    void ReleaseClient() noexcept;

    // Queues a message and returns its number; see MessageTable.
    LONG Add(std::unique_ptr<COutgoingMessage> message, bool useSmtpServer);
    // Starts one more worker, unless there are as many as there may be. False when it can't start.
    bool StartWorker() noexcept;
    // Sets how many workers there may be, and starts as many as have something to do.
    void SetMaxThreads(LONG maxThreads) noexcept;
    LONG maxThreads() const;

    // Has the function read the holder of a message; false for an unknown number. What it throws
    // comes through.
    bool Read(LONG number, const std::function<void(const CSmtpMailHolder&)>& read);
    LONG Size() const;
    // False for an unknown number.
    bool Cancel(LONG number) noexcept;
    void CancelAll() noexcept;

    // For the session that sends the message: whether it shall be cancelled, and the same with the
    // message cancelled when it shall.
    bool IsCancelRequested(LONG number) noexcept;
    bool IsCancelled(LONG number) noexcept;
    void PostEvent(EventKind kind, LONG messageNumber, LONG first, LONG second) noexcept;

    SharedSettings settings;
    CProxy_ISmtpMailEvents listeners;

private:
    SendQueue() = default;

    bool StartThread(void (SendQueue::*body)()) noexcept;
    void EventThread();
    void WorkerThread();
    bool StayAsWorker(LONG needed) noexcept;
    bool ReturnAsWorker() noexcept;
    CSmtpMailHolder* Take() noexcept;
    void SendQueued(const CSmtpMailHolder& holder, std::optional<CSmtpWrapper>& session) noexcept;
    SendOutcome Deliver(const CSmtpMailHolder& holder, CSmtpWrapper& session);
    bool Finish(LONG number, SendOutcome outcome) noexcept;
    void Rest() noexcept;

    mutable std::mutex tableLock_;
    MessageTable table_;
    int boundSessions_ = 0;  // guarded by the table lock, as are the next two
    bool clientGone_ = false;
    bool resting_ = false;  // nothing is taken any more

    mutable std::mutex workerLock_;
    LONG m_workerCount = 0;
    LONG m_maxThreads = 5;

    EventQueue m_eventQueue;
    // Outlives the queue for a thread that tells it of its end.
    const std::shared_ptr<StopSignal> m_stopEvent = std::make_shared<StopSignal>();
};

// The object's own hold on its queue.
class SendQueueClient {
public:
    SendQueueClient() : queue_(SendQueue::Start()) {}
    ~SendQueueClient() { queue_->ReleaseClient(); }
    SendQueueClient(const SendQueueClient&) = delete;
    SendQueueClient& operator=(const SendQueueClient&) = delete;

    SendQueue* operator->() const { return queue_.get(); }

private:
    const std::shared_ptr<SendQueue> queue_;
};

}  // namespace quorvane
