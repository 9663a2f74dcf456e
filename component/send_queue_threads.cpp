// What the threads of the queue do.
#include <chrono>

#include "component/delivery.h"
#include "component/pace.h"
#include "component/send_queue.h"

namespace quorvane {
namespace {

// Every thread looks for work this often; a worker takes one message at each look.
constexpr std::chrono::milliseconds kPace{50};

// A failure that no server and no session has words for.
SendOutcome UnexpectedOutcome() noexcept {
    try {
        return {-1, OLESTR("Unexpected exception!")};
    } catch (...) {
        return {-1, {}};  // nor is there memory for the words
    }
}

// The session stays what earlier messages have made of it, if it can be closed.
void CloseAfterException(std::optional<CSmtpWrapper>& session) noexcept {
    if (!session) return;
    try {
        session->Close();
        session->Unbind();
    } catch (...) {
        session.reset();
    }
}

}  // namespace

void SendQueue::EventThread() {
    Pace pace(*m_stopEvent, Work::Events, kPace);
    for (bool idle = false; pace.NextLook(idle);) {
        const std::vector<PendingEvent> events = m_eventQueue.TakeAll();
        idle = events.empty();
        for (const PendingEvent& event : events) {
            if (!m_stopEvent->CallBegins()) return;
            if (event.kind == EventKind::StatusChange) {
                listeners.FireStatusChange(event.messageNumber, event.first);
            } else {
                listeners.FireProgress(event.messageNumber, event.first, event.second);
            }
            m_stopEvent->CallEnds();
        }
    }
}

void SendQueue::WorkerThread() {
    // Made for the first message and kept for those that follow.
    std::optional<CSmtpWrapper> session;
    if (!StayAsWorker(maxThreads())) return;
    Pace pace(*m_stopEvent, Work::Messages, kPace);
    for (bool idle = false; pace.NextLook(idle);) {
        idle = false;
        if (const CSmtpMailHolder* const holder = Take()) {
            SendQueued(*holder, session);
        } else if (StayAsWorker(1)) {
            idle = true;
        } else if (!ReturnAsWorker()) {
            return;
        }
    }
    StayAsWorker(0);
}

// Counts the worker out when there are more than are needed.
bool SendQueue::StayAsWorker(LONG needed) noexcept {
    const std::lock_guard lock(workerLock_);
    if (m_workerCount <= needed) return true;
    --m_workerCount;
    return false;
}

// A message that was queued while the worker still counted may have brought none with it.
bool SendQueue::ReturnAsWorker() noexcept {
    {
        const std::lock_guard lock(tableLock_);
        if (table_.QueuedCount() == 0) return false;
    }
    const std::lock_guard lock(workerLock_);
    if (m_workerCount >= m_maxThreads) return false;
    ++m_workerCount;
    return true;
}

// The holder stays where it is, and its copy is the worker's until Finish.
CSmtpMailHolder* SendQueue::Take() noexcept {
    const std::lock_guard lock(tableLock_);
    CSmtpMailHolder* const holder = resting_ ? nullptr : table_.TakeNext();
    if (holder) ++boundSessions_;
    return holder;
}

void SendQueue::SendQueued(const CSmtpMailHolder& holder,
                           std::optional<CSmtpWrapper>& session) noexcept {
    const LONG number = holder.m_messageNumber;
    PostEvent(EventKind::StatusChange, number, MailStatusSending, 0);
    SendOutcome outcome;
    try {
        if (!session) session.emplace(*this);
        session->Bind(number);
        outcome = Deliver(holder, *session);
        session->Unbind();
    } catch (...) {
        outcome = UnexpectedOutcome();
        CloseAfterException(session);
    }
    if (outcome.code == -2) IsCancelled(number);
    if (Finish(number, std::move(outcome))) {
        Rest();
        listeners.RevokeSinks();
    }
}

SendOutcome SendQueue::Deliver(const CSmtpMailHolder& holder, CSmtpWrapper& session) {
    const std::shared_ptr<const SmtpSettings> current = settings.Get();
    if (holder.m_useSmtpServer) return SendThroughRelay(*current, session, *holder.m_message);
    return SendDirect({TlsStartTls, 0, current->senderHostname}, session, *holder.m_message);
}

bool SendQueue::IsCancelRequested(LONG number) noexcept {
    const std::lock_guard lock(tableLock_);
    const CSmtpMailHolder* const holder = table_.Find(number);
    return holder && holder->m_cancelRequested;
}

bool SendQueue::IsCancelled(LONG number) noexcept {
    const std::lock_guard lock(tableLock_);
    return table_.IsCancelled(number);
}

// True when the queue shall be put to rest: this was the last message being sent of an object that
// is gone.
bool SendQueue::Finish(LONG number, SendOutcome outcome) noexcept {
    std::unique_ptr<COutgoingMessage> done;
    LONG status;
    bool last;
    {
        const std::lock_guard lock(tableLock_);
        CSmtpMailHolder& holder = *table_.Find(number);
        done = table_.Finish(holder, std::move(outcome));
        status = holder.m_status;
        --boundSessions_;
        last = clientGone_ && boundSessions_ == 0;
        if (last) resting_ = true;
    }
    PostEvent(EventKind::StatusChange, number, status, 0);
    return last;
}

}  // namespace quorvane
