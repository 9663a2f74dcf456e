// SmtpMail: the sending object.
#pragma once

#include "Quorvane.h"
#include "automation/object.h"
#include "component/connection_point.h"
#include "component/control.h"
#include "component/send_queue.h"
#include "model/outgoing_message.h"

namespace quorvane {

// Failures come back through one of two channels, never both. Wrong use of the interface gives a
// failing HRESULT with error information, and nothing is sent. A send that was attempted gives
// S_OK or S_FALSE with the outcome in the out-parameters, kept as the object's last error; that of
// a queued message is kept with it.
//
// The object is used on its apartment's thread, and its queue's threads don't know it.
class CSmtpMail final : public ComObject<AtomicCount, ISmtpMail, IConnectionPointContainer> {
public:
    // Starts the queue and removes an old trace file. Throws std::bad_alloc, and std::runtime_error
    // when a thread can't be started.
    CSmtpMail();

    // What the sender itself doesn't answer, the control may.
    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        const HRESULT hr = ComObject::QueryInterface(iid, out);
        return hr == E_NOINTERFACE ? control_.QueryInterface(iid, out) : hr;
    }

    STDMETHODIMP get_SmtpServer(BSTR* pVal) override;
    STDMETHODIMP put_SmtpServer(BSTR newVal) override;
    STDMETHODIMP get_SmtpPort(LONG* pVal) override;
    STDMETHODIMP put_SmtpPort(LONG newVal) override;
    STDMETHODIMP get_SmtpUsername(BSTR* pVal) override;
    STDMETHODIMP put_SmtpUsername(BSTR newVal) override;
    STDMETHODIMP get_SmtpPassword(BSTR* pVal) override;
    STDMETHODIMP put_SmtpPassword(BSTR newVal) override;
    STDMETHODIMP SimpleSend(BSTR from, BSTR to, BSTR subject, BSTR body, BSTR* errorMessage,
                            LONG* errorCode) override;
    STDMETHODIMP Send(IMailMessage* message, VARIANT_BOOL useSMTPServer, BSTR* errorMessage,
                      LONG* errorCode) override;
    STDMETHODIMP SendAsync(IMailMessage* message, VARIANT_BOOL useSMTPServer,
                           LONG* messageNumber) override;
    STDMETHODIMP GetStatus(LONG messageNumber, MailStatus* messageStatus) override;
    STDMETHODIMP GetErrorCode(LONG messageNumber, LONG* errorCode) override;
    STDMETHODIMP GetErrorDescription(LONG messageNumber, BSTR* errorDescription) override;
    STDMETHODIMP Cancel(LONG messageNumber) override;
    STDMETHODIMP CancelAll() override;
    STDMETHODIMP get_MaxThreads(LONG* pVal) override;
    STDMETHODIMP put_MaxThreads(LONG newVal) override;
    STDMETHODIMP SimpleSendScriptable(BSTR from, BSTR to, BSTR subject, BSTR body,
                                      VARIANT* errorMessage, LONG* errorCode) override;
    STDMETHODIMP SendScriptable(IMailMessage* message, VARIANT_BOOL useSMTPServer,
                                VARIANT* errorMessage, LONG* errorCode) override;
    STDMETHODIMP put_OnStatusChangeHandler(VARIANT newVal) override;
    STDMETHODIMP put_OnProgressHandler(VARIANT newVal) override;
    STDMETHODIMP get_SenderHostname(BSTR* pVal) override;
    STDMETHODIMP put_SenderHostname(BSTR newVal) override;
    STDMETHODIMP SimpleSendAttachment(BSTR from, BSTR to, BSTR subject, BSTR body, BSTR attachments,
                                      BSTR* errorMessage, LONG* errorCode) override;
    STDMETHODIMP SimpleSendAttachmentScriptable(BSTR from, BSTR to, BSTR subject, BSTR body,
                                                BSTR attachments, VARIANT* errorMessage,
                                                LONG* errorCode) override;
    STDMETHODIMP get_SmtpSPA(VARIANT_BOOL* pVal) override;
    STDMETHODIMP put_SmtpSPA(VARIANT_BOOL newVal) override;
    STDMETHODIMP get_SmtpSSL(VARIANT_BOOL* pVal) override;
    STDMETHODIMP put_SmtpSSL(VARIANT_BOOL newVal) override;
    STDMETHODIMP GetLastErrorCode(LONG* errorCode) override;
    STDMETHODIMP GetLastErrorDescription(BSTR* errorDescription) override;
    STDMETHODIMP GetQueueSize(LONG* queueSize) override;
    STDMETHODIMP get_ConnectAttempts(LONG* pVal) override;
    STDMETHODIMP put_ConnectAttempts(LONG newVal) override;
    STDMETHODIMP get_ReplyTimeout(LONG* pVal) override;
    STDMETHODIMP put_ReplyTimeout(LONG newVal) override;
    STDMETHODIMP SimpleSendHTML(BSTR from, BSTR to, BSTR subject, BSTR filename, BSTR* errorMessage,
                                LONG* errorCode) override;
    STDMETHODIMP SimpleSendHTMLScriptable(BSTR from, BSTR to, BSTR subject, BSTR filename,
                                          VARIANT* errorMessage, LONG* errorCode) override;

    // IConnectionPointContainer
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

private:
    HRESULT SendCore(COutgoingMessage& message, bool useSmtpServer, BSTR* errorMessage,
                     LONG* errorCode);

    template <class Read>
    HRESULT ReadQueued(LONG messageNumber, Read&& read) noexcept;
    template <class Value>
    HRESULT Put(Value SmtpSettings::*member, Value value) noexcept;
    HRESULT Put(WideString SmtpSettings::*member, BSTR value) noexcept;

    SendQueueClient queue_;  // and the settings, which its workers read
    EventConnectionPoint connectionPoint_{*this, queue_->listeners};
    SendOutcome lastError_;  // of the last synchronous send
    Control control_{static_cast<ISmtpMail&>(*this)};
};

}  // namespace quorvane
