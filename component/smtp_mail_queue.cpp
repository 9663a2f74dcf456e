// The asynchronous sends of SmtpMail.
#include "automation/property.h"
#include "component/send_method.h"
#include "component/smtp_mail.h"

namespace quorvane {
namespace {

HRESULT ReportUnknownNumber() {
    return Report(OLESTR("Invalid message number"), E_INVALIDARG);
}

}  // namespace

STDMETHODIMP CSmtpMail::SendAsync(IMailMessage* message, VARIANT_BOOL useSMTPServer,
                                  LONG* messageNumber) {
    if (!message || !messageNumber) return E_INVALIDARG;
    return GuardedSend([&] {
        const ComPtr<IMailMessage> held(message);
        const CMailMessage* own = OwnMessage(message);
        if (!own) return ReportForeignMessage();
        const bool useServer = useSMTPServer != VARIANT_FALSE;
        if (useServer && queue_->settings.Get()->server.empty()) return ReportMissingServer();
        auto copy = std::make_unique<COutgoingMessage>();
        PrepareOutgoingMessage(*own, *copy);
        const WideString invalid = ValidateOutgoingMessage(*copy);
        if (!invalid.empty()) return Report(invalid.c_str(), E_INVALIDARG);
        const LONG number = queue_->Add(std::move(copy), useServer);
        // The message stays queued, for the workers that there are.
        if (!queue_->StartWorker()) return Report(OLESTR("Can't create send thread!"), E_FAIL);
        *messageNumber = number;
        return S_OK;
    });
}

template <class Read>
HRESULT CSmtpMail::ReadQueued(LONG messageNumber, Read&& read) noexcept {
    return Guarded([&] {
        HRESULT hr = S_OK;
        const bool known =
            queue_->Read(messageNumber, [&](const CSmtpMailHolder& holder) { hr = read(holder); });
        return known ? hr : ReportUnknownNumber();
    });
}

STDMETHODIMP CSmtpMail::GetStatus(LONG messageNumber, MailStatus* messageStatus) {
    if (!messageStatus) return E_INVALIDARG;
    return ReadQueued(messageNumber, [&](const CSmtpMailHolder& holder) {
        return GetEnumeration(holder.m_status, messageStatus);
    });
}

STDMETHODIMP CSmtpMail::GetErrorCode(LONG messageNumber, LONG* errorCode) {
    if (!errorCode) return E_INVALIDARG;
    return ReadQueued(messageNumber, [&](const CSmtpMailHolder& holder) {
        return GetValue(holder.m_errorCode, errorCode);
    });
}

STDMETHODIMP CSmtpMail::GetErrorDescription(LONG messageNumber, BSTR* errorDescription) {
    if (!errorDescription) return E_INVALIDARG;
    return ReadQueued(messageNumber, [&](const CSmtpMailHolder& holder) {
        return GetText(holder.m_errorText, errorDescription);
    });
}

STDMETHODIMP CSmtpMail::Cancel(LONG messageNumber) {
    return queue_->Cancel(messageNumber) ? S_OK : ReportUnknownNumber();
}

STDMETHODIMP CSmtpMail::CancelAll() {
    queue_->CancelAll();
    return S_OK;
}

STDMETHODIMP CSmtpMail::GetQueueSize(LONG* queueSize) {
    return GetValue(queue_->Size(), queueSize);
}

STDMETHODIMP CSmtpMail::get_MaxThreads(LONG* pVal) {
    return GetValue(queue_->maxThreads(), pVal);
}

STDMETHODIMP CSmtpMail::put_MaxThreads(LONG newVal) {
    queue_->SetMaxThreads(newVal);
    return S_OK;
}

STDMETHODIMP CSmtpMail::put_OnStatusChangeHandler(VARIANT newVal) {
    return Guarded([&] { return queue_->listeners.PutStatusHandler(newVal); });
}

STDMETHODIMP CSmtpMail::put_OnProgressHandler(VARIANT newVal) {
    return Guarded([&] { return queue_->listeners.PutProgressHandler(newVal); });
}

STDMETHODIMP CSmtpMail::EnumConnectionPoints(IEnumConnectionPoints** points) {
    return EnumOnlyPoint(connectionPoint_, points);
}

STDMETHODIMP CSmtpMail::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
    return FindOnlyPoint(connectionPoint_, DIID__ISmtpMailEvents, iid, point);
}

}  // namespace quorvane
