// MailMessage: the message that a client fills before handing it to SmtpMail.
#pragma once

#include <vector>

#include "Quorvane.h"
#include "automation/object.h"
#include "automation/wide_string.h"
#include "model/address_entry.h"
#include "model/header_list.h"
#include "model/parts.h"

namespace quorvane {

// What a message holds, as plain values.
struct MessageContent {
    WideString body;
    LONG bodyFormat = MailFormatText;
    WideString altBody;
    LONG bodyEncoding = MailEncodingDefault;
    LONG altBodyEncoding = MailEncodingDefault;
    WideString bodyCharset;
    WideString altBodyCharset;
    WideString subject;
    WideString messageId;
    CAddressEntry sender;
    CAddressEntry replyTo;
    LONG priority = MailPriorityNormal;
    WideString bodyFile;
    VARIANT_BOOL readReceipt = VARIANT_FALSE;
    std::vector<CAddressEntry> to;
    std::vector<CAddressEntry> cc;
    std::vector<CAddressEntry> bcc;
    std::vector<CAttachmentPart> attachments;
    HeaderList headers;
};

// A passive container: setters and Add methods read the values out of the objects that they are
// given and keep no reference. Refuses null objects and empty header names, and nothing else;
// what can't be sent is found when it is sent.
class CMailMessage final : public ComObject<PlainCount, IMailMessage, IMailMessageObject> {
public:
    STDMETHODIMP get_Sender(IMailAddress** pVal) override;
    STDMETHODIMP put_Sender(IMailAddress* newVal) override;
    STDMETHODIMP get_ReplyTo(IMailAddress** pVal) override;
    STDMETHODIMP put_ReplyTo(IMailAddress* newVal) override;
    STDMETHODIMP AddRecipient(IMailAddress* recipient) override;
    STDMETHODIMP AddCcRecipient(IMailAddress* recipient) override;
    STDMETHODIMP AddBccRecipient(IMailAddress* recipient) override;
    STDMETHODIMP AddAttachment(IMailAttachment* attachment) override;
    STDMETHODIMP get_MessageSubject(BSTR* pVal) override;
    STDMETHODIMP put_MessageSubject(BSTR newVal) override;
    STDMETHODIMP get_MessageBody(BSTR* pVal) override;
    STDMETHODIMP put_MessageBody(BSTR newVal) override;
    STDMETHODIMP get_MessageBodyFormat(MailFormat* pVal) override;
    STDMETHODIMP put_MessageBodyFormat(MailFormat newVal) override;
    STDMETHODIMP get_AltMessageBody(BSTR* pVal) override;
    STDMETHODIMP put_AltMessageBody(BSTR newVal) override;
    STDMETHODIMP get_MessageBodyEncoding(MailEncoding* pVal) override;
    STDMETHODIMP put_MessageBodyEncoding(MailEncoding newVal) override;
    STDMETHODIMP get_MessageBodyCharset(BSTR* pVal) override;
    STDMETHODIMP put_MessageBodyCharset(BSTR newVal) override;
    STDMETHODIMP get_AltMessageBodyEncoding(MailEncoding* pVal) override;
    STDMETHODIMP put_AltMessageBodyEncoding(MailEncoding newVal) override;
    STDMETHODIMP get_AltMessageBodyCharset(BSTR* pVal) override;
    STDMETHODIMP put_AltMessageBodyCharset(BSTR newVal) override;
    STDMETHODIMP get_MessagePriority(MailPriority* pVal) override;
    STDMETHODIMP put_MessagePriority(MailPriority newVal) override;
    STDMETHODIMP get_MessageId(BSTR* pVal) override;
    STDMETHODIMP put_MessageId(BSTR newVal) override;
    STDMETHODIMP get_MessageBodyFile(BSTR* pVal) override;
    STDMETHODIMP put_MessageBodyFile(BSTR newVal) override;
    STDMETHODIMP AddHeader(BSTR Header, BSTR Value) override;
    STDMETHODIMP ClearAttachments() override;
    STDMETHODIMP ClearRecipients() override;
    STDMETHODIMP ClearCcRecipients() override;
    STDMETHODIMP ClearBccRecipients() override;
    STDMETHODIMP get_RequestReadReceipt(VARIANT_BOOL* pVal) override;
    STDMETHODIMP put_RequestReadReceipt(VARIANT_BOOL newVal) override;
    STDMETHODIMP ImportHTML(BSTR filename) override;
    STDMETHODIMP SetSender(IMailAddress* newVal) override;
    STDMETHODIMP SetReplyTo(IMailAddress* newVal) override;

    // IMailMessageObject
    STDMETHODIMP GetMailMessage(void** implementation) override;

    const MessageContent& content() const { return content_; }

private:
    MessageContent content_;
};

}  // namespace quorvane
