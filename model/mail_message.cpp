#include "model/mail_message.h"

#include "automation/error_info.h"
#include "automation/property.h"
#include "model/growable.h"
#include "model/html_import.h"
#include "model/mail_address.h"
#include "model/mail_attachment.h"

namespace quorvane {
namespace {

// Reads the address object and makes an entry of it. The object is held during the call only.
HRESULT ReadAddress(IMailAddress* object, CAddressEntry& entry) {
    if (!object) return E_INVALIDARG;
    const ComPtr<IMailAddress> held(object);
    BstrHolder address;
    BstrHolder name;
    HRESULT hr = object->get_Address(address.Receive());
    if (SUCCEEDED(hr)) hr = object->get_Name(name.Receive());
    if (FAILED(hr)) return hr;
    entry = MakeAddressEntry(BstrView(address.Get()), BstrView(name.Get()));
    return S_OK;
}

HRESULT PutAddress(CAddressEntry& member, IMailAddress* object) noexcept {
    return Guarded([&] { return ReadAddress(object, member); });
}

HRESULT AddAddress(std::vector<CAddressEntry>& list, IMailAddress* object) noexcept {
    return Guarded([&] {
        CAddressEntry entry;
        const HRESULT hr = ReadAddress(object, entry);
        if (SUCCEEDED(hr)) AppendOrDrop(list, std::move(entry));
        return hr;
    });
}

// Gives the caller a new MailAddress with a copy of the entry.
HRESULT GetAddress(const CAddressEntry& member, IMailAddress** out) noexcept {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    ComPtr<IMailAddress> object;
    if (FAILED(CreateComObject<CMailAddress>(IID_IMailAddress, object.ReceiveVoid()))) {
        return E_OUTOFMEMORY;
    }
    BstrHolder address;
    BstrHolder name;
    HRESULT hr = ToBstr(member.address, address.Receive());
    if (SUCCEEDED(hr)) hr = ToBstr(member.name, name.Receive());
    if (SUCCEEDED(hr)) hr = object->put_Address(address.Get());
    if (SUCCEEDED(hr)) hr = object->put_Name(name.Get());
    if (SUCCEEDED(hr)) *out = object.Detach();
    return hr;
}

// Our own attachments hand over their data block by reference; any other implementation is read
// through its interface, which copies it.
HRESULT TakeAttachment(IMailAttachment* attachment, CAttachmentPart& part) {
    const ComPtr<IMailAttachment> held(attachment);
    ComPtr<IMailAttachmentObject> own;
    void* implementation = nullptr;
    if (SUCCEEDED(attachment->QueryInterface(IID_IMailAttachmentObject, own.ReceiveVoid())) &&
        own && SUCCEEDED(own->GetMailAttachment(&implementation))) {
        part = static_cast<const CMailAttachment*>(implementation)->Snapshot();
        return S_OK;
    }
    return SnapshotAttachment(attachment, part);
}

// Frees the storage too.
template <class Element>
HRESULT Clear(std::vector<Element>& list) noexcept {
    std::vector<Element>().swap(list);
    return S_OK;
}

// A header text as it is kept: 8-bit, without white space at the ends.
std::string HeaderText(BSTR text) {
    const std::string bytes = ToAnsi(BstrView(text));
    return std::string(Trim(bytes));
}

// The component has one name as a source of errors, whichever of its classes reports them.
HRESULT ReportFailure(LPCOLESTR text) {
    return ReportComError(CLSID_SmtpMail, text, 0, nullptr, IID_IMailMessage, E_FAIL);
}

}  // namespace

STDMETHODIMP CMailMessage::get_Sender(IMailAddress** pVal) {
    return GetAddress(content_.sender, pVal);
}

STDMETHODIMP CMailMessage::put_Sender(IMailAddress* newVal) {
    return PutAddress(content_.sender, newVal);
}

STDMETHODIMP CMailMessage::get_ReplyTo(IMailAddress** pVal) {
    return GetAddress(content_.replyTo, pVal);
}

STDMETHODIMP CMailMessage::put_ReplyTo(IMailAddress* newVal) {
    return PutAddress(content_.replyTo, newVal);
}

STDMETHODIMP CMailMessage::AddRecipient(IMailAddress* recipient) {
    return AddAddress(content_.to, recipient);
}

STDMETHODIMP CMailMessage::AddCcRecipient(IMailAddress* recipient) {
    return AddAddress(content_.cc, recipient);
}

STDMETHODIMP CMailMessage::AddBccRecipient(IMailAddress* recipient) {
    return AddAddress(content_.bcc, recipient);
}

STDMETHODIMP CMailMessage::AddAttachment(IMailAttachment* attachment) {
    if (!attachment) return E_INVALIDARG;
    return Guarded([&] {
        CAttachmentPart part;
        const HRESULT hr = TakeAttachment(attachment, part);
        if (SUCCEEDED(hr)) AppendOrDrop(content_.attachments, std::move(part));
        return hr;
    });
}

STDMETHODIMP CMailMessage::get_MessageSubject(BSTR* pVal) {
    return GetText(content_.subject, pVal);
}

STDMETHODIMP CMailMessage::put_MessageSubject(BSTR newVal) {
    return PutText(content_.subject, newVal);
}

STDMETHODIMP CMailMessage::get_MessageBody(BSTR* pVal) {
    return GetText(content_.body, pVal);
}

STDMETHODIMP CMailMessage::put_MessageBody(BSTR newVal) {
    return PutText(content_.body, newVal);
}

STDMETHODIMP CMailMessage::get_MessageBodyFormat(MailFormat* pVal) {
    return GetEnumeration(content_.bodyFormat, pVal);
}

STDMETHODIMP CMailMessage::put_MessageBodyFormat(MailFormat newVal) {
    content_.bodyFormat = EnumerationValue(newVal);
    return S_OK;
}

STDMETHODIMP CMailMessage::get_AltMessageBody(BSTR* pVal) {
    return GetText(content_.altBody, pVal);
}

STDMETHODIMP CMailMessage::put_AltMessageBody(BSTR newVal) {
    return PutText(content_.altBody, newVal);
}

STDMETHODIMP CMailMessage::get_MessageBodyEncoding(MailEncoding* pVal) {
    return GetEnumeration(content_.bodyEncoding, pVal);
}

STDMETHODIMP CMailMessage::put_MessageBodyEncoding(MailEncoding newVal) {
    content_.bodyEncoding = EnumerationValue(newVal);
    return S_OK;
}

STDMETHODIMP CMailMessage::get_MessageBodyCharset(BSTR* pVal) {
    return GetText(content_.bodyCharset, pVal);
}

STDMETHODIMP CMailMessage::put_MessageBodyCharset(BSTR newVal) {
    return PutText(content_.bodyCharset, newVal);
}

STDMETHODIMP CMailMessage::get_AltMessageBodyEncoding(MailEncoding* pVal) {
    return GetEnumeration(content_.altBodyEncoding, pVal);
}

STDMETHODIMP CMailMessage::put_AltMessageBodyEncoding(MailEncoding newVal) {
    content_.altBodyEncoding = EnumerationValue(newVal);
    return S_OK;
}

STDMETHODIMP CMailMessage::get_AltMessageBodyCharset(BSTR* pVal) {
    return GetText(content_.altBodyCharset, pVal);
}

STDMETHODIMP CMailMessage::put_AltMessageBodyCharset(BSTR newVal) {
    return PutText(content_.altBodyCharset, newVal);
}

STDMETHODIMP CMailMessage::get_MessagePriority(MailPriority* pVal) {
    return GetEnumeration(content_.priority, pVal);
}

STDMETHODIMP CMailMessage::put_MessagePriority(MailPriority newVal) {
    content_.priority = EnumerationValue(newVal);
    return S_OK;
}

STDMETHODIMP CMailMessage::get_MessageId(BSTR* pVal) {
    return GetText(content_.messageId, pVal);
}

STDMETHODIMP CMailMessage::put_MessageId(BSTR newVal) {
    return PutText(content_.messageId, newVal);
}

STDMETHODIMP CMailMessage::get_MessageBodyFile(BSTR* pVal) {
    return GetText(content_.bodyFile, pVal);
}

STDMETHODIMP CMailMessage::put_MessageBodyFile(BSTR newVal) {
    return PutText(content_.bodyFile, newVal);
}

STDMETHODIMP CMailMessage::AddHeader(BSTR Header, BSTR Value) {
    return Guarded([&] {
        const std::string name = HeaderText(Header);
        if (name.empty()) return E_INVALIDARG;
        const std::string value = HeaderText(Value);
        const std::size_t existing = content_.headers.Find(name);
        content_.headers.Append(name, value);  // first: where it throws, the old one stays
        if (existing != HeaderList::npos) content_.headers.Remove(existing);
        return S_OK;
    });
}

STDMETHODIMP CMailMessage::ClearAttachments() {
    return Clear(content_.attachments);
}

STDMETHODIMP CMailMessage::ClearRecipients() {
    return Clear(content_.to);
}

STDMETHODIMP CMailMessage::ClearCcRecipients() {
    return Clear(content_.cc);
}

STDMETHODIMP CMailMessage::ClearBccRecipients() {
    return Clear(content_.bcc);
}

STDMETHODIMP CMailMessage::get_RequestReadReceipt(VARIANT_BOOL* pVal) {
    return GetValue(content_.readReceipt, pVal);
}

STDMETHODIMP CMailMessage::put_RequestReadReceipt(VARIANT_BOOL newVal) {
    content_.readReceipt = newVal;
    return S_OK;
}

STDMETHODIMP CMailMessage::ImportHTML(BSTR filename) {
    try {
        content_.body = ImportHtmlFile(FromBstr(filename), content_.attachments);
        content_.bodyFormat = MailFormatHtml;
        return S_OK;
    } catch (const HtmlImportError& error) {
        return ReportFailure(error.text().c_str());
    } catch (...) {
        return ReportFailure(OLESTR("Unexpected exception!"));
    }
}

STDMETHODIMP CMailMessage::SetSender(IMailAddress* newVal) {
    return put_Sender(newVal);
}

STDMETHODIMP CMailMessage::SetReplyTo(IMailAddress* newVal) {
    return put_ReplyTo(newVal);
}

STDMETHODIMP CMailMessage::GetMailMessage(void** implementation) {
    if (!implementation) return E_INVALIDARG;
    *implementation = this;
    return S_OK;
}

}  // namespace quorvane
