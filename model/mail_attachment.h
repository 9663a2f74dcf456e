// MailAttachment: the automation object with which a client describes one attachment.
#pragma once

#include "Quorvane.h"
#include "automation/object.h"
#include "automation/wide_string.h"
#include "model/parts.h"

namespace quorvane {

// Names a file, or holds a block of bytes, and the details of its MIME part. Opens no file.
class CMailAttachment final : public ComObject<PlainCount, IMailAttachment, IMailAttachmentObject> {
public:
    STDMETHODIMP get_Name(BSTR* pVal) override;
    STDMETHODIMP put_Name(BSTR newVal) override;
    STDMETHODIMP get_File(BSTR* pVal) override;
    STDMETHODIMP put_File(BSTR newVal) override;
    STDMETHODIMP get_Encoding(MailEncoding* pVal) override;
    STDMETHODIMP put_Encoding(MailEncoding newVal) override;
    STDMETHODIMP get_ContentType(BSTR* pVal) override;
    STDMETHODIMP put_ContentType(BSTR newVal) override;
    STDMETHODIMP get_Charset(BSTR* pVal) override;
    STDMETHODIMP put_Charset(BSTR newVal) override;
    STDMETHODIMP get_Inline(VARIANT_BOOL* pVal) override;
    STDMETHODIMP put_Inline(VARIANT_BOOL newVal) override;
    STDMETHODIMP get_ContentId(BSTR* pVal) override;
    STDMETHODIMP put_ContentId(BSTR newVal) override;
    STDMETHODIMP LoadFromMemory(unsigned char* data, LONG size) override;
    STDMETHODIMP SaveToMemory(unsigned char** pData, LONG* pDataSize) override;

    // A late-bound call hands over a block only by reference: a number in its place would be taken
    // for a block of one byte, whatever the size says. DISP_E_TYPEMISMATCH then.
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override;

    // IMailAttachmentObject
    STDMETHODIMP GetMailAttachment(void** implementation) override;

    // A copy of everything as messages keep it; the data block is shared, not copied.
    CAttachmentPart Snapshot() const;

private:
    WideString name_;
    WideString file_;
    WideString contentType_;
    WideString contentId_;
    LONG encoding_ = MailEncodingBase64;
    WideString charset_;
    VARIANT_BOOL inline_ = VARIANT_FALSE;
    DataBlock data_;
};

// Reads an attachment of any implementation through its interface, in the order Name, File,
// Encoding, ContentType, Charset, Inline, ContentId, data. Fails with the first failing status.
HRESULT SnapshotAttachment(IMailAttachment* attachment, CAttachmentPart& part);

}  // namespace quorvane
