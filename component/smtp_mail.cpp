// The settings of SmtpMail.
#include "component/smtp_mail.h"

#include <algorithm>

#include "automation/property.h"

namespace quorvane {
namespace {

constexpr LONG kDefaultReplyTimeout = 30;  // seconds

template <class Value>
HRESULT Put(Value& member, Value value) noexcept {
    member = value;
    return S_OK;
}

}  // namespace

STDMETHODIMP CSmtpMail::get_SmtpServer(BSTR* pVal) {
    return GetText(settings_.server, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpServer(BSTR newVal) {
    return PutText(settings_.server, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpPort(LONG* pVal) {
    return GetValue(settings_.port, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpPort(LONG newVal) {
    return Put(settings_.port, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpUsername(BSTR* pVal) {
    return GetText(settings_.username, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpUsername(BSTR newVal) {
    return PutText(settings_.username, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpPassword(BSTR* pVal) {
    return GetText(settings_.password, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpPassword(BSTR newVal) {
    return PutText(settings_.password, newVal);
}

STDMETHODIMP CSmtpMail::get_MaxThreads(LONG* pVal) {
    return GetValue(maxThreads_, pVal);
}

STDMETHODIMP CSmtpMail::put_MaxThreads(LONG newVal) {
    return Put(maxThreads_, std::max<LONG>(newVal, 1));
}

STDMETHODIMP CSmtpMail::get_SenderHostname(BSTR* pVal) {
    return GetText(settings_.senderHostname, pVal);
}

STDMETHODIMP CSmtpMail::put_SenderHostname(BSTR newVal) {
    return PutText(settings_.senderHostname, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpSPA(VARIANT_BOOL* pVal) {
    return GetValue(settings_.useSpa, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpSPA(VARIANT_BOOL newVal) {
    return Put(settings_.useSpa, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpSSL(VARIANT_BOOL* pVal) {
    return GetValue(settings_.useSsl, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpSSL(VARIANT_BOOL newVal) {
    return Put(settings_.useSsl, newVal);
}

STDMETHODIMP CSmtpMail::GetLastErrorCode(LONG* errorCode) {
    return GetValue(lastError_.code, errorCode);
}

STDMETHODIMP CSmtpMail::GetLastErrorDescription(BSTR* errorDescription) {
    return GetText(lastError_.text, errorDescription);
}

STDMETHODIMP CSmtpMail::get_ConnectAttempts(LONG* pVal) {
    return GetValue(settings_.connectAttempts, pVal);
}

STDMETHODIMP CSmtpMail::put_ConnectAttempts(LONG newVal) {
    return Put(settings_.connectAttempts, newVal);
}

STDMETHODIMP CSmtpMail::get_ReplyTimeout(LONG* pVal) {
    return GetValue(settings_.replyTimeout, pVal);
}

STDMETHODIMP CSmtpMail::put_ReplyTimeout(LONG newVal) {
    return Put(settings_.replyTimeout, newVal > 0 ? newVal : kDefaultReplyTimeout);
}

}  // namespace quorvane
