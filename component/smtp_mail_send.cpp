// The synchronous sends of SmtpMail.
#include "component/delivery.h"
#include "component/send_method.h"
#include "component/smtp_mail.h"
#include "model/html_import.h"
#include "model/simple_send.h"

namespace quorvane {
namespace {

void ClearOutcome(BSTR* errorMessage, LONG* errorCode) {
    if (errorMessage) *errorMessage = nullptr;
    if (errorCode) *errorCode = 0;
}

// Calls a plain method with the text of the VARIANT as its error message. What the VARIANT held may
// be an argument of the call as well, so it lives as long.
template <class Plain>
HRESULT Scriptable(VARIANT* errorMessage, Plain&& plain) noexcept {
    if (!errorMessage) return E_INVALIDARG;
    VARIANT before = *errorMessage;
    errorMessage->vt = VT_BSTR;
    errorMessage->bstrVal = nullptr;
    const HRESULT hr = plain(&errorMessage->bstrVal);
    VariantClear(&before);
    return hr;
}

}  // namespace

STDMETHODIMP CSmtpMail::Send(IMailMessage* message, VARIANT_BOOL useSMTPServer, BSTR* errorMessage,
                             LONG* errorCode) {
    ClearOutcome(errorMessage, errorCode);
    if (!message) return E_INVALIDARG;
    return GuardedSend([&] {
        const ComPtr<IMailMessage> held(message);
        const CMailMessage* own = OwnMessage(message);
        if (!own) return ReportForeignMessage();
        COutgoingMessage copy;
        PrepareOutgoingMessage(*own, copy);
        return SendCore(copy, useSMTPServer != VARIANT_FALSE, errorMessage, errorCode);
    });
}

HRESULT CSmtpMail::SendCore(COutgoingMessage& message, bool useSmtpServer, BSTR* errorMessage,
                            LONG* errorCode) {
    lastError_ = SendOutcome();
    const WideString invalid = ValidateOutgoingMessage(message);
    if (!invalid.empty()) return Report(invalid.c_str(), E_INVALIDARG);
    const std::shared_ptr<const SmtpSettings> settings = queue_->settings.Get();
    if (useSmtpServer && settings->server.empty()) return ReportMissingServer();
    CSmtp session;
    if (useSmtpServer) {
        lastError_ = SendThroughRelay(*settings, session, message);
    } else {
        // Without a user name, willingness to use NTLM has no effect.
        lastError_ = SendDirect({TlsNone, 1, settings->senderHostname}, session, message);
    }
    if (lastError_.code != 0 && errorMessage) ToBstr(lastError_.text, errorMessage);
    if (errorCode) *errorCode = lastError_.code;
    return lastError_.code == 0 ? S_OK : S_FALSE;
}

STDMETHODIMP CSmtpMail::SendScriptable(IMailMessage* message, VARIANT_BOOL useSMTPServer,
                                       VARIANT* errorMessage, LONG* errorCode) {
    return Scriptable(errorMessage,
                      [&](BSTR* text) { return Send(message, useSMTPServer, text, errorCode); });
}

STDMETHODIMP CSmtpMail::SimpleSend(BSTR from, BSTR to, BSTR subject, BSTR body, BSTR* errorMessage,
                                   LONG* errorCode) {
    return SimpleSendAttachment(from, to, subject, body, nullptr, errorMessage, errorCode);
}

STDMETHODIMP CSmtpMail::SimpleSendScriptable(BSTR from, BSTR to, BSTR subject, BSTR body,
                                             VARIANT* errorMessage, LONG* errorCode) {
    return Scriptable(errorMessage, [&](BSTR* text) {
        return SimpleSend(from, to, subject, body, text, errorCode);
    });
}

STDMETHODIMP CSmtpMail::SimpleSendAttachment(BSTR from, BSTR to, BSTR subject, BSTR body,
                                             BSTR attachments, BSTR* errorMessage,
                                             LONG* errorCode) {
    ClearOutcome(errorMessage, errorCode);
    return GuardedSend([&] {
        COutgoingMessage message;
        const WideString text = FromBstr(body);
        SetSimpleBody(message, FromBstr(subject), text, IsHtmlBody(text));
        ParseAddressText(BstrView(from), message.sender);
        AddRecipientList(message, FromBstr(to));
        AddAttachmentList(message, FromBstr(attachments));
        return SendCore(message, true, errorMessage, errorCode);
    });
}

STDMETHODIMP CSmtpMail::SimpleSendAttachmentScriptable(BSTR from, BSTR to, BSTR subject, BSTR body,
                                                       BSTR attachments, VARIANT* errorMessage,
                                                       LONG* errorCode) {
    return Scriptable(errorMessage, [&](BSTR* text) {
        return SimpleSendAttachment(from, to, subject, body, attachments, text, errorCode);
    });
}

STDMETHODIMP CSmtpMail::SimpleSendHTML(BSTR from, BSTR to, BSTR subject, BSTR filename,
                                       BSTR* errorMessage, LONG* errorCode) {
    ClearOutcome(errorMessage, errorCode);
    return GuardedSend([&] {
        COutgoingMessage message;
        const WideString html = ImportHtmlFile(FromBstr(filename), message.attachments);
        SetSimpleBody(message, FromBstr(subject), html, true);
        ParseAddressText(BstrView(from), message.sender);
        AddRecipientList(message, FromBstr(to));
        return SendCore(message, true, errorMessage, errorCode);
    });
}

STDMETHODIMP CSmtpMail::SimpleSendHTMLScriptable(BSTR from, BSTR to, BSTR subject, BSTR filename,
                                                 VARIANT* errorMessage, LONG* errorCode) {
    return Scriptable(errorMessage, [&](BSTR* text) {
        return SimpleSendHTML(from, to, subject, filename, text, errorCode);
    });
}

}  // namespace quorvane
