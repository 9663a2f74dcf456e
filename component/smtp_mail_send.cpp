// The synchronous sends of SmtpMail.
#include "automation/error_info.h"
#include "component/delivery.h"
#include "component/smtp_mail.h"
#include "model/html_import.h"
#include "model/mail_message.h"
#include "model/simple_send.h"

namespace quorvane {
namespace {

HRESULT Report(LPCOLESTR text, HRESULT status) {
    return ReportComError(CLSID_SmtpMail, text, 0, nullptr, IID_ISmtpMail, status);
}

void ClearOutcome(BSTR* errorMessage, LONG* errorCode) {
    if (errorMessage) *errorMessage = nullptr;
    if (errorCode) *errorCode = 0;
}

// The implementation behind the pointer when it is one of this component's own messages, in its
// own apartment; null otherwise.
const CMailMessage* OwnMessage(IMailMessage* message) {
    ComPtr<IMailMessageObject> own;
    void* implementation = nullptr;
    if (FAILED(message->QueryInterface(IID_IMailMessageObject, own.ReceiveVoid())) || !own ||
        FAILED(own->GetMailMessage(&implementation))) {
        return nullptr;
    }
    return static_cast<const CMailMessage*>(implementation);
}

// Runs a send and reports whatever escapes from it.
template <class Body>
HRESULT GuardedSend(Body&& body) noexcept {
    try {
        return body();
    } catch (const HtmlImportError& error) {
        return Report(error.text().c_str(), E_FAIL);
    } catch (...) {
        return Report(OLESTR("Unexpected exception!"), E_FAIL);
    }
}

// Calls a plain method with the text of the VARIANT as its error message.
template <class Plain>
HRESULT Scriptable(VARIANT* errorMessage, Plain&& plain) noexcept {
    if (!errorMessage) return E_INVALIDARG;
    VariantClear(errorMessage);
    errorMessage->vt = VT_BSTR;
    errorMessage->bstrVal = nullptr;
    return plain(&errorMessage->bstrVal);
}

}  // namespace

STDMETHODIMP CSmtpMail::Send(IMailMessage* message, VARIANT_BOOL useSMTPServer, BSTR* errorMessage,
                             LONG* errorCode) {
    ClearOutcome(errorMessage, errorCode);
    if (!message) return E_INVALIDARG;
    return GuardedSend([&] {
        const ComPtr<IMailMessage> held(message);
        const CMailMessage* own = OwnMessage(message);
        if (!own) return Report(OLESTR("Quorvane internal error 973!"), E_FAIL);
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
    if (useSmtpServer && settings_.server.empty()) {
        return Report(
            OLESTR("SmtpServer property can't be empty if useSmtpServer parameter is true"),
            E_INVALIDARG);
    }
    lastError_ =
        useSmtpServer ? SendThroughRelay(settings_, message) : SendDirect(settings_, message);
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
        ParseAddressText(FromBstr(from), message.sender);
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
        ParseAddressText(FromBstr(from), message.sender);
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
