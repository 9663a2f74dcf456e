// The messages that an SmtpMail object has queued, by number.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <utility>

#include "Quorvane.h"
#include "automation/wide_string.h"
#include "component/settings.h"
#include "model/outgoing_message.h"

namespace quorvane {

// One queued message. What is left of it once it is finished is small: the copy is gone.
class CSmtpMailHolder {
public:
    CSmtpMailHolder(LONG number, std::unique_ptr<COutgoingMessage> message, bool useSmtpServer)
        : m_messageNumber(number), m_message(std::move(message)), m_useSmtpServer(useSmtpServer) {}
    virtual ~CSmtpMailHolder() = default;
    CSmtpMailHolder(const CSmtpMailHolder&) = delete;
    CSmtpMailHolder& operator=(const CSmtpMailHolder&) = delete;

    const LONG m_messageNumber;
    std::unique_ptr<COutgoingMessage> m_message;  // null once finished or cancelled
    LONG m_status = MailStatusQueued;             // a MailStatus
    const BYTE m_useSmtpServer;
    BYTE m_cancelRequested = 0;  // while it was being sent
    LONG m_errorCode = -1;
    WideString m_errorText;
};

// Every message is kept until the table goes. The numbers of those that wait and of those that are
// being sent are kept beside them, so that nothing but a look-up by number meets the finished ones.
//
// Has no lock of its own. Operations that give a copy out leave its destruction to the caller, who
// may wait with it until the lock is released.
class MessageTable {
public:
    // Queues the message and returns its number: 1, 2, 3 ... Throws std::bad_alloc, and
    // std::length_error when there are no more numbers; nothing is queued then.
    LONG Add(std::unique_ptr<COutgoingMessage> message, bool useSmtpServer);

    // Null for a number that was never given.
    CSmtpMailHolder* Find(LONG number);

    // Marks the queued message with the lowest number as being sent; null when none is queued.
    CSmtpMailHolder* TakeNext() noexcept;

    // Cancels a queued message, and asks for it when the message is being sent. Gives out the copy
    // of one that was queued, else null.
    std::unique_ptr<COutgoingMessage> Cancel(CSmtpMailHolder& holder) noexcept;

    // The same for all of them. Returns the numbers of those that were queued, whose copies stay in
    // their holders: nobody but the caller touches them any more.
    std::set<LONG> CancelAll() noexcept;

    // True when the message was to be cancelled while it was being sent; it is cancelled then.
    bool IsCancelled(LONG number) noexcept;

    // Records how the sending of a message ended, and gives out its copy.
    std::unique_ptr<COutgoingMessage> Finish(CSmtpMailHolder& holder, SendOutcome outcome) noexcept;

    std::size_t QueuedCount() const { return queued_.size(); }
    // Number of messages that wait or are being sent.
    std::size_t QueueSize() const { return queued_.size() + sending_.size(); }

private:
    std::map<LONG, CSmtpMailHolder> holders_;
    std::set<LONG> queued_;
    std::set<LONG> sending_;
    LONG m_nextMessageNumber = 1;
};

}  // namespace quorvane
