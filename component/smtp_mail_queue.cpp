// The queue of SmtpMail. Its members answer E_NOTIMPL: this version sends synchronously only. Their
// out-parameters are cleared all the same, since callers free them.
#include "component/smtp_mail.h"

namespace quorvane {
namespace {

template <class Value>
HRESULT NotImplemented(Value* out) {
    if (out) *out = Value{};
    return E_NOTIMPL;
}

}  // namespace

STDMETHODIMP CSmtpMail::SendAsync(IMailMessage*, VARIANT_BOOL, LONG* messageNumber) {
    return NotImplemented(messageNumber);
}

STDMETHODIMP CSmtpMail::GetStatus(LONG, MailStatus* messageStatus) {
    return NotImplemented(messageStatus);
}

STDMETHODIMP CSmtpMail::GetErrorCode(LONG, LONG* errorCode) {
    return NotImplemented(errorCode);
}

STDMETHODIMP CSmtpMail::GetErrorDescription(LONG, BSTR* errorDescription) {
    return NotImplemented(errorDescription);
}

STDMETHODIMP CSmtpMail::Cancel(LONG) {
    return E_NOTIMPL;
}

STDMETHODIMP CSmtpMail::CancelAll() {
    return E_NOTIMPL;
}

STDMETHODIMP CSmtpMail::put_OnStatusChangeHandler(VARIANT) {
    return E_NOTIMPL;
}

STDMETHODIMP CSmtpMail::put_OnProgressHandler(VARIANT) {
    return E_NOTIMPL;
}

STDMETHODIMP CSmtpMail::GetQueueSize(LONG* queueSize) {
    return NotImplemented(queueSize);
}

}  // namespace quorvane
