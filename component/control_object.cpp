#include "component/control_object.h"

#include <olectl.h>

#include <algorithm>

#include "Quorvane.h"
#include "automation/boundary.h"
#include "automation/wide_string.h"
#include "component/control_identity.h"

namespace quorvane {
namespace {

// A text for the caller to free; null when there is no memory.
LPOLESTR CopyForCaller(WideView text) {
    const auto copy = static_cast<LPOLESTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(OLECHAR)));
    if (copy) *std::copy(text.begin(), text.end(), copy) = OLECHAR(0);
    return copy;
}

}  // namespace

template <class Tell>
void ObjectPart::TellSinks(Tell&& tell) noexcept {
    Guarded([&] {
        for (const Advice& advice : sinks_.TakeTurn()) tell(*advice.sink.Get());
        return S_OK;
    });
}

STDMETHODIMP ObjectPart::SetClientSite(IOleClientSite* site) {
    site_ = ComPtr<IOleClientSite>(site);
    return S_OK;
}

STDMETHODIMP ObjectPart::GetClientSite(IOleClientSite** site) {
    if (!site) return E_POINTER;
    *site = ComPtr<IOleClientSite>(site_).Detach();
    return S_OK;
}

STDMETHODIMP ObjectPart::SetHostNames(LPCOLESTR, LPCOLESTR) {
    return S_OK;
}

STDMETHODIMP ObjectPart::Close(DWORD saveOption) {
    inPlace_.InPlaceDeactivate();
    const ComPtr<IOleClientSite> site = site_;
    if (saveOption != OLECLOSE_NOSAVE && extent_.IsUnsaved() && site) {
        site->SaveObject();
        TellSinks([](IAdviseSink& sink) { sink.OnSave(); });
    }
    TellSinks([](IAdviseSink& sink) { sink.OnClose(); });
    return S_OK;
}

STDMETHODIMP ObjectPart::SetMoniker(DWORD, IMoniker*) {
    return E_NOTIMPL;
}

STDMETHODIMP ObjectPart::GetMoniker(DWORD, DWORD, IMoniker**) {
    return E_NOTIMPL;
}

STDMETHODIMP ObjectPart::InitFromData(IDataObject*, BOOL, DWORD) {
    return E_NOTIMPL;
}

STDMETHODIMP ObjectPart::GetClipboardData(DWORD, IDataObject**) {
    return E_NOTIMPL;
}

STDMETHODIMP ObjectPart::DoVerb(LONG verb, LPMSG, IOleClientSite* activeSite, LONG, HWND, LPCRECT) {
    const ComPtr<IOleClientSite> site = site_ ? site_ : ComPtr<IOleClientSite>(activeSite);
    switch (verb) {
        case OLEIVERB_PRIMARY:
        case OLEIVERB_UIACTIVATE:
            return site ? inPlace_.Activate(*site.Get(), true) : E_UNEXPECTED;
        case OLEIVERB_SHOW:
        case OLEIVERB_INPLACEACTIVATE:
            return site ? inPlace_.Activate(*site.Get(), false) : E_UNEXPECTED;
        case OLEIVERB_HIDE:
            inPlace_.Hide();
            return S_OK;
        case OLEIVERB_DISCARDUNDOSTATE:
            return S_OK;
        default:
            if (verb < 0) return E_NOTIMPL;
            const HRESULT hr = DoVerb(OLEIVERB_PRIMARY, nullptr, activeSite, 0, nullptr, nullptr);
            return FAILED(hr) ? hr : OLEOBJ_S_INVALIDVERB;
    }
}

STDMETHODIMP ObjectPart::EnumVerbs(IEnumOLEVERB** verbs) {
    if (!verbs) return E_POINTER;
    *verbs = nullptr;
    return OLEOBJ_E_NOVERBS;  // none for menus
}

STDMETHODIMP ObjectPart::Update() {
    return S_OK;
}

STDMETHODIMP ObjectPart::IsUpToDate() {
    return S_OK;
}

STDMETHODIMP ObjectPart::GetUserClassID(CLSID* clsid) {
    if (!clsid) return E_POINTER;
    *clsid = CLSID_SmtpMail;
    return S_OK;
}

STDMETHODIMP ObjectPart::GetUserType(DWORD, LPOLESTR* userType) {
    if (!userType) return E_POINTER;
    *userType = CopyForCaller(kControlUserType);
    return *userType ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP ObjectPart::SetExtent(DWORD aspect, SIZEL* size) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    return size ? extent_.Resize(*size) : E_POINTER;
}

STDMETHODIMP ObjectPart::GetExtent(DWORD aspect, SIZEL* size) {
    if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
    if (!size) return E_POINTER;
    *size = extent_.Size();
    return S_OK;
}

STDMETHODIMP ObjectPart::Advise(IAdviseSink* sink, DWORD* cookie) {
    return Guarded([&] { return sinks_.Add({}, 0, sink, cookie); });
}

STDMETHODIMP ObjectPart::Unadvise(DWORD cookie) {
    return sinks_.Remove(cookie);
}

STDMETHODIMP ObjectPart::EnumAdvise(IEnumSTATDATA** advices) {
    return sinks_.Enumerate(advices);
}

STDMETHODIMP ObjectPart::GetMiscStatus(DWORD aspect, DWORD* status) {
    if (!status) return E_POINTER;
    *status = aspect == DVASPECT_CONTENT ? kControlMiscStatus : 0;
    return S_OK;
}

STDMETHODIMP ObjectPart::SetColorScheme(LOGPALETTE*) {
    return E_NOTIMPL;
}

STDMETHODIMP ObjectPart::GetControlInfo(CONTROLINFO*) {
    return E_NOTIMPL;  // no keys of its own
}

STDMETHODIMP ObjectPart::OnMnemonic(LPMSG) {
    return E_NOTIMPL;
}

STDMETHODIMP ObjectPart::OnAmbientPropertyChange(DISPID) {
    return S_OK;
}

STDMETHODIMP ObjectPart::FreezeEvents(BOOL) {
    return S_OK;
}

}  // namespace quorvane
