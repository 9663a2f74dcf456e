#include "component/message_table.h"

#include <limits>
#include <stdexcept>

namespace quorvane {

LONG MessageTable::Add(std::unique_ptr<COutgoingMessage> message, bool useSmtpServer) {
    const LONG number = m_nextMessageNumber;
    if (number == std::numeric_limits<LONG>::max()) throw std::length_error("message numbers");
    queued_.insert(queued_.end(), number);
    try {
        holders_.try_emplace(holders_.end(), number, number, std::move(message), useSmtpServer);
    } catch (...) {
        queued_.erase(number);
        throw;
    }
    return m_nextMessageNumber++;
}

CSmtpMailHolder* MessageTable::Find(LONG number) {
    const auto found = holders_.find(number);
    return found == holders_.end() ? nullptr : &found->second;
}

CSmtpMailHolder* MessageTable::TakeNext() noexcept {
    if (queued_.empty()) return nullptr;
    auto number = queued_.extract(queued_.begin());
    CSmtpMailHolder& holder = holders_.find(number.value())->second;
    sending_.insert(std::move(number));
    holder.m_status = MailStatusSending;
    return &holder;
}

std::unique_ptr<COutgoingMessage> MessageTable::Cancel(CSmtpMailHolder& holder) noexcept {
    switch (holder.m_status) {
        case MailStatusQueued:
            queued_.erase(holder.m_messageNumber);
            holder.m_status = MailStatusCanceled;
            return std::move(holder.m_message);
        case MailStatusSending:
            holder.m_cancelRequested = 1;
            return nullptr;
        default:
            return nullptr;
    }
}

// Allocates nothing, so that it can't fail.
std::set<LONG> MessageTable::CancelAll() noexcept {
    for (const LONG number : sending_) {
        holders_.find(number)->second.m_cancelRequested = 1;
    }
    for (const LONG number : queued_) {
        holders_.find(number)->second.m_status = MailStatusCanceled;
    }
    return std::exchange(queued_, {});
}

bool MessageTable::IsCancelled(LONG number) noexcept {
    CSmtpMailHolder* const holder = Find(number);
    if (!holder || !holder->m_cancelRequested) return false;
    holder->m_status = MailStatusCanceled;
    sending_.erase(number);
    return true;
}

std::unique_ptr<COutgoingMessage> MessageTable::Finish(CSmtpMailHolder& holder,
                                                       SendOutcome outcome) noexcept {
    sending_.erase(holder.m_messageNumber);
    if (outcome.code == 0) {
        holder.m_status = MailStatusSent;
    } else if (holder.m_status != MailStatusCanceled) {
        holder.m_status = MailStatusFailed;
        holder.m_errorText = std::move(outcome.text);
        holder.m_errorText.shrink_to_fit();
    }
    holder.m_errorCode = outcome.code;
    return std::move(holder.m_message);
}

}  // namespace quorvane
