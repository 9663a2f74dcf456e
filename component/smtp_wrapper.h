// The session of a worker.
#pragma once

#include "smtp/session.h"

namespace quorvane {

class SendQueue;

// A session that can be bound to a message of the queue. Its operations do nothing and return -2
// while it is unbound or its message is to be cancelled; they end early when that is asked for
// while they wait. The queue outlives it.
class CSmtpWrapper final : public CSmtp {
public:
    explicit CSmtpWrapper(SendQueue& mail);
    ~CSmtpWrapper() override { Close(); }  // while it can still be asked

    void Bind(LONG messageNumber) { m_messageNumber = messageNumber; }
    void Unbind() { m_messageNumber = kUnbound; }

    // Raises the event, or stops the transfer when the message is cancelled.
    int OnProgress(ULONG bytesSent, ULONG bytesTotal) override;

private:
    static constexpr LONG kUnbound = -1;

    SendQueue& m_mail;
    LONG m_messageNumber = kUnbound;
};

}  // namespace quorvane
