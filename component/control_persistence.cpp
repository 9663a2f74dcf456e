#include "component/control_persistence.h"

#include <oleauto.h>

#include "Quorvane.h"
#include "automation/com_ptr.h"

namespace quorvane {
namespace {

constexpr ULONG kVersion = 1;
constexpr LPCOLESTR kContents = OLESTR("Contents");
constexpr LPCOLESTR kWidth = OLESTR("_cx");
constexpr LPCOLESTR kHeight = OLESTR("_cy");

struct StreamRecord {
    ULONG version;
    ULONG width;
    ULONG height;
};
static_assert(sizeof(StreamRecord) == 12);

// Streams may give less than asked for before they are at their end.
HRESULT ReadRecord(IStream& stream, StreamRecord& record) {
    auto* next = reinterpret_cast<BYTE*>(&record);
    ULONG missing = sizeof record;
    while (missing > 0) {
        ULONG got = 0;
        const HRESULT hr = stream.Read(next, missing, &got);
        if (FAILED(hr)) return hr;
        if (got == 0 || got > missing) return STG_E_READFAULT;
        next += got;
        missing -= got;
    }
    return S_OK;
}

HRESULT WriteRecord(IStream& stream, const StreamRecord& record) {
    ULONG written = 0;
    const HRESULT hr = stream.Write(&record, sizeof record, &written);
    if (FAILED(hr)) return hr;
    return written == sizeof record ? S_OK : STG_E_MEDIUMFULL;
}

// A property that the bag doesn't have leaves the value.
HRESULT ReadProperty(IPropertyBag& bag, LPCOLESTR name, IErrorLog* log, ULONG& value) {
    VARIANT read;
    VariantInit(&read);
    read.vt = VT_UI4;
    HRESULT hr = bag.Read(name, &read, log);
    if (hr == E_INVALIDARG) return S_OK;
    if (FAILED(hr)) return hr;
    hr = VariantChangeType(&read, &read, 0, VT_UI4);
    if (SUCCEEDED(hr)) value = read.ulVal;
    VariantClear(&read);
    return hr;
}

HRESULT WriteProperty(IPropertyBag& bag, LPCOLESTR name, LONG value) {
    VARIANT written;
    VariantInit(&written);
    written.vt = VT_UI4;
    written.ulVal = static_cast<ULONG>(value);
    return bag.Write(name, &written);
}

}  // namespace

HRESULT PersistencePart::Restore(ULONG width, ULONG height) {
    const HRESULT hr = extent_.Resize({static_cast<LONG>(width), static_cast<LONG>(height)});
    if (SUCCEEDED(hr)) extent_.MarkSaved();
    return hr;
}

STDMETHODIMP PersistencePart::GetClassID(CLSID* clsid) {
    if (!clsid) return E_POINTER;
    *clsid = CLSID_SmtpMail;
    return S_OK;
}

STDMETHODIMP PersistencePart::IsDirty() {
    return extent_.IsUnsaved() ? S_OK : S_FALSE;
}

STDMETHODIMP PersistencePart::InitNew() {
    return S_OK;  // a new object is new already
}

STDMETHODIMP PersistencePart::Load(IStream* stream) {
    if (!stream) return E_POINTER;
    StreamRecord record = {};
    const HRESULT hr = ReadRecord(*stream, record);
    if (FAILED(hr)) return hr;
    return record.version == kVersion ? Restore(record.width, record.height) : E_FAIL;
}

STDMETHODIMP PersistencePart::Save(IStream* stream, BOOL clearDirty) {
    if (!stream) return E_POINTER;
    const SIZEL& size = extent_.Size();
    const HRESULT hr =
        WriteRecord(*stream, {kVersion, static_cast<ULONG>(size.cx), static_cast<ULONG>(size.cy)});
    if (SUCCEEDED(hr) && clearDirty) extent_.MarkSaved();
    return hr;
}

STDMETHODIMP PersistencePart::GetSizeMax(ULARGE_INTEGER* size) {
    if (!size) return E_POINTER;
    size->QuadPart = sizeof(StreamRecord);
    return S_OK;
}

STDMETHODIMP PersistencePart::InitNew(IStorage* storage) {
    return storage ? S_OK : E_POINTER;
}

STDMETHODIMP PersistencePart::Load(IStorage* storage) {
    if (!storage) return E_POINTER;
    ComPtr<IStream> stream;
    const HRESULT hr = storage->OpenStream(kContents, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0,
                                           stream.Receive());
    return FAILED(hr) ? hr : Load(stream.Get());
}

STDMETHODIMP PersistencePart::Save(IStorage* storage, BOOL) {
    if (!storage) return E_POINTER;
    ComPtr<IStream> stream;
    const HRESULT hr = storage->CreateStream(
        kContents, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, stream.Receive());
    return FAILED(hr) ? hr : Save(stream.Get(), TRUE);
}

STDMETHODIMP PersistencePart::SaveCompleted(IStorage*) {
    return S_OK;
}

STDMETHODIMP PersistencePart::HandsOffStorage() {
    return S_OK;  // no storage is held between two calls
}

STDMETHODIMP PersistencePart::Load(IPropertyBag* bag, IErrorLog* log) {
    if (!bag) return E_POINTER;
    auto width = static_cast<ULONG>(extent_.Size().cx);
    auto height = static_cast<ULONG>(extent_.Size().cy);
    HRESULT hr = ReadProperty(*bag, kWidth, log, width);
    if (SUCCEEDED(hr)) hr = ReadProperty(*bag, kHeight, log, height);
    return FAILED(hr) ? hr : Restore(width, height);
}

STDMETHODIMP PersistencePart::Save(IPropertyBag* bag, BOOL clearDirty, BOOL) {
    if (!bag) return E_POINTER;
    HRESULT hr = WriteProperty(*bag, kWidth, extent_.Size().cx);
    if (SUCCEEDED(hr)) hr = WriteProperty(*bag, kHeight, extent_.Size().cy);
    if (SUCCEEDED(hr) && clearDirty) extent_.MarkSaved();
    return hr;
}

}  // namespace quorvane
