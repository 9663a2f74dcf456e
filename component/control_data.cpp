#include "component/control_data.h"

#include "automation/enumerator.h"
#include "component/control_drawing.h"

namespace quorvane {
namespace {

// A metafile has no device of its own; it is drawn in pixels of this size.
constexpr LONG kPixelsAnInch = 96;
constexpr LONG kHimetricAnInch = 2540;

constexpr FORMATETC kPicture = {CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, -1, TYMED_MFPICT};

void GiveFormat(const FORMATETC& held, FORMATETC& item) {
    item = held;
}

using FormatEnumerator = Enumerator<IEnumFORMATETC, FORMATETC, FORMATETC, GiveFormat>;

int Pixels(LONG himetric) {
    return static_cast<int>(LONGLONG{himetric} * kPixelsAnInch / kHimetricAnInch);
}

HMETAFILE DrawMetafile(const SIZEL& size, HICON icon) {
    const HDC dc = CreateMetaFileW(nullptr);
    if (!dc) return nullptr;
    const RECT bounds = {0, 0, Pixels(size.cx), Pixels(size.cy)};
    SetWindowOrgEx(dc, 0, 0, nullptr);
    SetWindowExtEx(dc, bounds.right, bounds.bottom, nullptr);
    DrawControl(dc, bounds, icon);
    return CloseMetaFile(dc);
}

// The receiver frees both, the picture and the block that it stands in.
HGLOBAL MakePicture(const SIZEL& size, HICON icon) {
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, sizeof(METAFILEPICT));
    if (!block) return nullptr;
    const HMETAFILE metafile = DrawMetafile(size, icon);
    if (!metafile) {
        GlobalFree(block);
        return nullptr;
    }
    *static_cast<METAFILEPICT*>(GlobalLock(block)) = {MM_ANISOTROPIC, size.cx, size.cy, metafile};
    GlobalUnlock(block);
    return block;
}

}  // namespace

void DataPart::SendDataChange() noexcept {
    Guarded([&] {
        for (const Advice& advice : sinks_.TakeTurn()) Tell(advice);
        return S_OK;
    });
}

void DataPart::Tell(const Advice& advice) noexcept {
    FORMATETC format = advice.format;
    STGMEDIUM medium = {};
    if (!(advice.flags & ADVF_NODATA)) GetData(&format, &medium);
    advice.sink->OnDataChange(&format, &medium);
    ReleaseStgMedium(&medium);
}

STDMETHODIMP DataPart::GetData(FORMATETC* format, STGMEDIUM* medium) {
    if (!medium) return E_POINTER;
    *medium = {};
    const HRESULT hr = QueryGetData(format);
    if (FAILED(hr)) return hr;
    medium->hMetaFilePict = MakePicture(extent_.Size(), icon_);
    if (!medium->hMetaFilePict) return E_OUTOFMEMORY;
    medium->tymed = TYMED_MFPICT;
    return S_OK;
}

STDMETHODIMP DataPart::GetDataHere(FORMATETC*, STGMEDIUM*) {
    return E_NOTIMPL;
}

STDMETHODIMP DataPart::QueryGetData(FORMATETC* format) {
    if (!format) return E_POINTER;
    if (format->cfFormat != kPicture.cfFormat) return DV_E_FORMATETC;
    if (!(format->tymed & kPicture.tymed)) return DV_E_TYMED;
    if (format->dwAspect != kPicture.dwAspect) return DV_E_DVASPECT;
    return format->lindex == kPicture.lindex ? S_OK : DV_E_LINDEX;
}

STDMETHODIMP DataPart::GetCanonicalFormatEtc(FORMATETC* format, FORMATETC* canonical) {
    if (!format || !canonical) return E_POINTER;
    *canonical = *format;
    canonical->ptd = nullptr;
    return DATA_S_SAMEFORMATETC;
}

STDMETHODIMP DataPart::SetData(FORMATETC*, STGMEDIUM*, BOOL) {
    return E_NOTIMPL;
}

STDMETHODIMP DataPart::EnumFormatEtc(DWORD direction, IEnumFORMATETC** formats) {
    if (!formats) return E_POINTER;
    *formats = nullptr;
    if (direction != DATADIR_GET) return E_NOTIMPL;
    return Guarded([&] { return FormatEnumerator::Create({kPicture}, formats); });
}

STDMETHODIMP DataPart::DAdvise(FORMATETC* format, DWORD flags, IAdviseSink* sink, DWORD* cookie) {
    const HRESULT supported = QueryGetData(format);
    if (FAILED(supported)) return supported;
    return Guarded([&] {
        const HRESULT hr = sinks_.Add(*format, flags, sink, cookie);
        if (SUCCEEDED(hr) && flags & ADVF_PRIMEFIRST) {
            Tell({*cookie, flags, *format, ComPtr<IAdviseSink>(sink)});
            if (flags & ADVF_ONLYONCE) sinks_.Remove(*cookie);
        }
        return hr;
    });
}

STDMETHODIMP DataPart::DUnadvise(DWORD cookie) {
    return sinks_.Remove(cookie);
}

STDMETHODIMP DataPart::EnumDAdvise(IEnumSTATDATA** advices) {
    return sinks_.Enumerate(advices);
}

}  // namespace quorvane
