// The queue of SmtpMail. Its members answer E_NOTIMPL: this version sends synchronously only.
#include "component/smtp_mail.h"

namespace quorvane {

STDMETHODIMP CSmtpMail::SendAsync(IMailMessage*, VARIANT_BOOL, LONG*) {
    return E_NOTIMPL;
}

STDMETHODIMP CSmtpMail::GetStatus(LONG, MailStatus*) {
    return E_NOTIMPL;
}

STDMETHODIMP CSmtpMail::GetErrorCode(LONG, LONG*) {
    return E_NOTIMPL;
}

STDMETHODIMP CSmtpMail::GetErrorDescription(LONG, BSTR*) {
    return E_NOTIMPL;
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

STDMETHODIMP CSmtpMail::GetQueueSize(LONG*) {
    return E_NOTIMPL;
}

}  // namespace quorvane
