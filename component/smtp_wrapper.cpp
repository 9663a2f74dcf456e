#include "component/smtp_wrapper.h"

#include "component/send_queue.h"

namespace quorvane {

CSmtpWrapper::CSmtpWrapper(SendQueue& mail)
    : CSmtp([this] {
          return m_messageNumber == kUnbound || m_mail.IsCancelRequested(m_messageNumber);
      }),
      m_mail(mail) {}

int CSmtpWrapper::OnProgress(ULONG bytesSent, ULONG bytesTotal) {
    if (m_messageNumber == kUnbound) return 1;
    if (m_mail.IsCancelled(m_messageNumber)) return 0;
    m_mail.PostEvent(EventKind::Progress, m_messageNumber, static_cast<LONG>(bytesSent),
                     static_cast<LONG>(bytesTotal));
    return 1;
}

}  // namespace quorvane
