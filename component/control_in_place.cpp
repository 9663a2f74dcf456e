#include "component/control_in_place.h"

#include <ocidl.h>

#include <utility>

#include "component/control_drawing.h"
#include "component/control_identity.h"

namespace quorvane {

HRESULT InPlacePart::Activate(IOleClientSite& client, bool withInterface) {
    const ComPtr<IUnknown> held(&owner_);
    const ComPtr<IOleClientSite> heldClient(&client);
    HRESULT hr = Enter(client);
    if (SUCCEEDED(hr)) {
        hr = Appear();
        if (FAILED(hr)) InPlaceDeactivate();
    }
    if (SUCCEEDED(hr) && withInterface) hr = ActivateInterface();
    if (SUCCEEDED(hr)) client.ShowObject();
    return hr;
}

HRESULT InPlacePart::Enter(IOleClientSite& client) {
    if (site_) return S_OK;
    ComPtr<IOleInPlaceSite> site;
    HRESULT hr = client.QueryInterface(__uuidof(IOleInPlaceSite), site.ReceiveVoid());
    if (FAILED(hr)) return hr;
    if (site->CanInPlaceActivate() != S_OK) return E_FAIL;
    hr = site->OnInPlaceActivate();
    if (SUCCEEDED(hr)) site_ = site;
    return hr;
}

HRESULT InPlacePart::Appear() {
    const ComPtr<IOleInPlaceSite> site = site_;
    HWND parent = nullptr;
    HRESULT hr = site->GetWindow(&parent);
    if (FAILED(hr)) return hr;
    RECT place = {};
    RECT clip = {};
    OLEINPLACEFRAMEINFO info = {};
    info.cb = sizeof info;
    ComPtr<IOleInPlaceFrame> frame;
    ComPtr<IOleInPlaceUIWindow> document;
    hr = site->GetWindowContext(frame.Receive(), document.Receive(), &place, &clip, &info);
    if (FAILED(hr)) return hr;
    if (!site_ || !window_.Create(parent, place)) return E_FAIL;
    frame_ = std::move(frame);
    document_ = std::move(document);
    window_.Place(place, clip);
    window_.Show(true);
    return S_OK;
}

HRESULT InPlacePart::ActivateInterface() {
    const ComPtr<IOleInPlaceSite> site = site_;
    if (!site) return E_FAIL;
    if (hasInterface_) return S_OK;
    hasInterface_ = true;  // taking the focus leads back here
    const HRESULT hr = site->OnUIActivate();
    if (FAILED(hr)) {
        hasInterface_ = false;
        return hr;
    }
    window_.TakeFocus();
    if (!hasInterface_) return E_FAIL;
    TellBorders(this);
    return S_OK;
}

// Tells frame and document who is active in them; an active object of ours wants no tool bars.
void InPlacePart::TellBorders(IOleInPlaceActiveObject* active) {
    const ComPtr<IOleInPlaceFrame> frame = frame_;
    const ComPtr<IOleInPlaceUIWindow> document = document_;
    for (IOleInPlaceUIWindow* const border :
         {document.Get(), static_cast<IOleInPlaceUIWindow*>(frame.Get())}) {
        if (!border) continue;
        border->SetActiveObject(active, active ? kControlUserType : nullptr);
        if (active) border->SetBorderSpace(nullptr);
    }
}

void InPlacePart::Hide() {
    const ComPtr<IUnknown> held(&owner_);
    UIDeactivate();
    window_.Show(false);
}

STDMETHODIMP InPlacePart::GetWindow(HWND* window) {
    if (!window) return E_POINTER;
    *window = window_.Handle();
    return *window ? S_OK : E_FAIL;
}

STDMETHODIMP InPlacePart::ContextSensitiveHelp(BOOL) {
    return E_NOTIMPL;
}

STDMETHODIMP InPlacePart::InPlaceDeactivate() {
    const ComPtr<IUnknown> held(&owner_);
    UIDeactivate();
    window_.Destroy();
    frame_.Reset();
    document_.Reset();
    if (const ComPtr<IOleInPlaceSite> site = std::move(site_)) site->OnInPlaceDeactivate();
    return S_OK;
}

STDMETHODIMP InPlacePart::UIDeactivate() {
    if (!std::exchange(hasInterface_, false)) return S_OK;
    const ComPtr<IUnknown> held(&owner_);
    const ComPtr<IOleInPlaceSite> site = site_;
    TellBorders(nullptr);
    if (site) site->OnUIDeactivate(FALSE);
    return S_OK;
}

STDMETHODIMP InPlacePart::SetObjectRects(LPCRECT place, LPCRECT clip) {
    if (!place || !clip) return E_POINTER;
    window_.Place(*place, *clip);
    return S_OK;
}

STDMETHODIMP InPlacePart::ReactivateAndUndo() {
    return INPLACE_E_NOTUNDOABLE;
}

STDMETHODIMP InPlacePart::TranslateAccelerator(LPMSG) {
    return S_FALSE;
}

STDMETHODIMP InPlacePart::OnFrameWindowActivate(BOOL) {
    return S_OK;
}

STDMETHODIMP InPlacePart::OnDocWindowActivate(BOOL) {
    return S_OK;
}

STDMETHODIMP InPlacePart::ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) {
    return S_OK;
}

STDMETHODIMP InPlacePart::EnableModeless(BOOL) {
    return S_OK;
}

void InPlacePart::Paint(HDC dc, const RECT& bounds) {
    DrawControl(dc, bounds, icon_);
}

void InPlacePart::Clicked() {
    const ComPtr<IUnknown> held(&owner_);
    ActivateInterface();
}

void InPlacePart::FocusChanged(bool hasFocus) {
    const ComPtr<IUnknown> held(&owner_);
    const ComPtr<IOleInPlaceSite> site = site_;
    if (!site) return;
    if (hasFocus) ActivateInterface();
    ComPtr<IOleControlSite> controls;
    if (SUCCEEDED(site->QueryInterface(__uuidof(IOleControlSite), controls.ReceiveVoid()))) {
        controls->OnFocus(hasFocus);
    }
}

}  // namespace quorvane
