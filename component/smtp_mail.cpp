// The settings of SmtpMail.
#include "component/smtp_mail.h"

#include "automation/property.h"
#include "component/trace_log.h"

namespace quorvane {
namespace {

constexpr LONG kDefaultReplyTimeout = 30;  // seconds
constexpr LPCOLESTR kTraceFile = OLESTR("C:\\QuorvaneTrace.txt");

}  // namespace

CSmtpMail::CSmtpMail() {
    LibraryTraceLog().SetFile(kTraceFile);
    LibraryTraceLog().Enable(true);
}

template <class Value>
HRESULT CSmtpMail::Put(Value SmtpSettings::*member, Value value) noexcept {
    return Guarded([&] {
        queue_->settings.Put([&](SmtpSettings& settings) { settings.*member = value; });
        return S_OK;
    });
}

HRESULT CSmtpMail::Put(WideString SmtpSettings::*member, BSTR value) noexcept {
    return Guarded([&] {
        queue_->settings.Put([&](SmtpSettings& settings) { settings.*member = FromBstr(value); });
        return S_OK;
    });
}

STDMETHODIMP CSmtpMail::get_SmtpServer(BSTR* pVal) {
    return GetText(queue_->settings.Get()->server, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpServer(BSTR newVal) {
    return Put(&SmtpSettings::server, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpPort(LONG* pVal) {
    return GetValue(queue_->settings.Get()->port, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpPort(LONG newVal) {
    return Put(&SmtpSettings::port, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpUsername(BSTR* pVal) {
    return GetText(queue_->settings.Get()->username, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpUsername(BSTR newVal) {
    return Put(&SmtpSettings::username, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpPassword(BSTR* pVal) {
    return GetText(queue_->settings.Get()->password, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpPassword(BSTR newVal) {
    return Put(&SmtpSettings::password, newVal);
}

STDMETHODIMP CSmtpMail::get_SenderHostname(BSTR* pVal) {
    return GetText(queue_->settings.Get()->senderHostname, pVal);
}

STDMETHODIMP CSmtpMail::put_SenderHostname(BSTR newVal) {
    return Put(&SmtpSettings::senderHostname, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpSPA(VARIANT_BOOL* pVal) {
    return GetValue(queue_->settings.Get()->useSpa, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpSPA(VARIANT_BOOL newVal) {
    return Put(&SmtpSettings::useSpa, newVal);
}

STDMETHODIMP CSmtpMail::get_SmtpSSL(VARIANT_BOOL* pVal) {
    return GetValue(queue_->settings.Get()->useSsl, pVal);
}

STDMETHODIMP CSmtpMail::put_SmtpSSL(VARIANT_BOOL newVal) {
    return Put(&SmtpSettings::useSsl, newVal);
}

STDMETHODIMP CSmtpMail::GetLastErrorCode(LONG* errorCode) {
    return GetValue(lastError_.code, errorCode);
}

STDMETHODIMP CSmtpMail::GetLastErrorDescription(BSTR* errorDescription) {
    return GetText(lastError_.text, errorDescription);
}

STDMETHODIMP CSmtpMail::get_ConnectAttempts(LONG* pVal) {
    return GetValue(queue_->settings.Get()->connectAttempts, pVal);
}

STDMETHODIMP CSmtpMail::put_ConnectAttempts(LONG newVal) {
    return Put(&SmtpSettings::connectAttempts, newVal);
}

STDMETHODIMP CSmtpMail::get_ReplyTimeout(LONG* pVal) {
    return GetValue(queue_->settings.Get()->replyTimeout, pVal);
}

STDMETHODIMP CSmtpMail::put_ReplyTimeout(LONG newVal) {
    return Put(&SmtpSettings::replyTimeout, newVal > 0 ? newVal : kDefaultReplyTimeout);
}

}  // namespace quorvane
