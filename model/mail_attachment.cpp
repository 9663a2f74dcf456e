#include "model/mail_attachment.h"

#include <cstring>

#include "automation/property.h"

namespace quorvane {
namespace {

// Owns a block of the task allocator.
struct TaskBlock {
    ~TaskBlock() { CoTaskMemFree(data); }
    unsigned char* data = nullptr;
    LONG size = 0;
};

HRESULT ReadText(IMailAttachment* attachment, HRESULT (IMailAttachment::*get)(BSTR*),
                 WideString& out) {
    BstrHolder text;
    const HRESULT hr = (attachment->*get)(text.Receive());
    if (SUCCEEDED(hr)) out = FromBstr(text.Get());
    return hr;
}

HRESULT ReadProperties(IMailAttachment* attachment, CAttachmentPart& part) {
    MailEncoding encoding = MailEncodingDefault;
    VARIANT_BOOL isInline = VARIANT_FALSE;
    HRESULT hr = ReadText(attachment, &IMailAttachment::get_Name, part.name);
    if (SUCCEEDED(hr)) hr = ReadText(attachment, &IMailAttachment::get_File, part.file);
    if (SUCCEEDED(hr)) hr = attachment->get_Encoding(&encoding);
    if (SUCCEEDED(hr))
        hr = ReadText(attachment, &IMailAttachment::get_ContentType, part.contentType);
    if (SUCCEEDED(hr)) hr = ReadText(attachment, &IMailAttachment::get_Charset, part.charset);
    if (SUCCEEDED(hr)) hr = attachment->get_Inline(&isInline);
    if (SUCCEEDED(hr)) hr = ReadText(attachment, &IMailAttachment::get_ContentId, part.contentId);
    part.encoding = NormalizeEncoding(EnumerationValue(encoding));
    part.isInline = isInline != VARIANT_FALSE;
    return hr;
}

constexpr DISPID kLoadFromMemory = 8;
constexpr DISPID kFirstParameter = 0;

// Index of the first parameter among the arguments, which stand in reverse order behind the named
// ones; their count when it isn't given.
UINT FirstParameter(const DISPPARAMS& arguments) {
    for (UINT i = 0; i < arguments.cNamedArgs; ++i) {
        if (arguments.rgdispidNamedArgs[i] == kFirstParameter) return i;
    }
    return arguments.cArgs > arguments.cNamedArgs ? arguments.cArgs - 1 : arguments.cArgs;
}

}  // namespace

STDMETHODIMP CMailAttachment::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags,
                                     DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                     UINT* badArgument) {
    if (id == kLoadFromMemory && arguments) {
        const UINT block = FirstParameter(*arguments);
        if (block < arguments->cArgs && arguments->rgvarg[block].vt != (VT_BYREF | VT_UI1)) {
            if (badArgument) *badArgument = block;
            return DISP_E_TYPEMISMATCH;
        }
    }
    return ComObject::Invoke(id, iid, locale, flags, arguments, result, exception, badArgument);
}

STDMETHODIMP CMailAttachment::get_Name(BSTR* pVal) {
    return GetText(name_, pVal);
}

STDMETHODIMP CMailAttachment::put_Name(BSTR newVal) {
    return PutText(name_, newVal);
}

STDMETHODIMP CMailAttachment::get_File(BSTR* pVal) {
    return GetText(file_, pVal);
}

STDMETHODIMP CMailAttachment::put_File(BSTR newVal) {
    return PutText(file_, newVal);
}

STDMETHODIMP CMailAttachment::get_Encoding(MailEncoding* pVal) {
    return GetEnumeration(encoding_, pVal);
}

STDMETHODIMP CMailAttachment::put_Encoding(MailEncoding newVal) {
    encoding_ = EnumerationValue(newVal);
    return S_OK;
}

STDMETHODIMP CMailAttachment::get_ContentType(BSTR* pVal) {
    return GetText(contentType_, pVal);
}

STDMETHODIMP CMailAttachment::put_ContentType(BSTR newVal) {
    return PutText(contentType_, newVal);
}

STDMETHODIMP CMailAttachment::get_Charset(BSTR* pVal) {
    return GetText(charset_, pVal);
}

STDMETHODIMP CMailAttachment::put_Charset(BSTR newVal) {
    return PutText(charset_, newVal);
}

STDMETHODIMP CMailAttachment::get_Inline(VARIANT_BOOL* pVal) {
    return GetValue(inline_, pVal);
}

STDMETHODIMP CMailAttachment::put_Inline(VARIANT_BOOL newVal) {
    inline_ = newVal;
    return S_OK;
}

STDMETHODIMP CMailAttachment::get_ContentId(BSTR* pVal) {
    return GetText(contentId_, pVal);
}

STDMETHODIMP CMailAttachment::put_ContentId(BSTR newVal) {
    return PutText(contentId_, newVal);
}

STDMETHODIMP CMailAttachment::LoadFromMemory(unsigned char* data, LONG size) {
    if (!data || size < 1) return E_INVALIDARG;
    data_ = DataBlock();
    return Guarded([&] {
        data_ = DataBlock::Copy({data, static_cast<std::size_t>(size)});
        return S_OK;
    });
}

STDMETHODIMP CMailAttachment::SaveToMemory(unsigned char** pData, LONG* pDataSize) {
    if (!pData || !pDataSize) return E_INVALIDARG;
    *pData = nullptr;
    *pDataSize = 0;
    if (data_.empty()) return S_OK;
    *pData = static_cast<unsigned char*>(CoTaskMemAlloc(data_.size()));
    if (!*pData) return E_OUTOFMEMORY;
    std::memcpy(*pData, data_.data(), data_.size());
    *pDataSize = static_cast<LONG>(data_.size());
    return S_OK;
}

STDMETHODIMP CMailAttachment::GetMailAttachment(void** implementation) {
    if (!implementation) return E_INVALIDARG;
    *implementation = this;
    return S_OK;
}

CAttachmentPart CMailAttachment::Snapshot() const {
    CAttachmentPart part;
    part.name = name_;
    part.file = file_;
    part.encoding = NormalizeEncoding(encoding_);
    part.contentType = contentType_;
    part.charset = charset_;
    part.isInline = inline_ != VARIANT_FALSE;
    part.contentId = contentId_;
    part.data = data_;
    return part;
}

HRESULT SnapshotAttachment(IMailAttachment* attachment, CAttachmentPart& part) {
    HRESULT hr = ReadProperties(attachment, part);
    if (FAILED(hr)) return hr;
    TaskBlock block;
    hr = attachment->SaveToMemory(&block.data, &block.size);
    if (FAILED(hr)) return hr;
    if (block.data && block.size > 0) {
        part.data = DataBlock::Copy({block.data, static_cast<std::size_t>(block.size)});
    }
    return S_OK;
}

}  // namespace quorvane
