#include "component/control_activation.h"

#include "Quorvane.h"
#include "automation/com_ptr.h"
#include "automation/type_info.h"

namespace quorvane {

STDMETHODIMP ActivationPart::QuickActivate(QACONTAINER* container, QACONTROL* control) {
    if (!container || !control) return E_POINTER;
    if (container->cbSize < sizeof *container || control->cbSize < sizeof *control) {
        return E_INVALIDARG;
    }
    *control = {};
    control->cbSize = sizeof *control;
    object_.SetClientSite(container->pClientSite);
    if (container->pAdviseSink) view_.SetAdvise(DVASPECT_CONTENT, 0, container->pAdviseSink);
    if (container->pUnkEventSink) ConnectEvents(*container->pUnkEventSink, &control->dwEventCookie);
    object_.GetMiscStatus(DVASPECT_CONTENT, &control->dwMiscStatus);
    view_.GetViewStatus(&control->dwViewStatus);
    return S_OK;
}

void ActivationPart::ConnectEvents(IUnknown& sink, DWORD* cookie) {
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    HRESULT hr = owner_.QueryInterface(__uuidof(IConnectionPointContainer), points.ReceiveVoid());
    if (SUCCEEDED(hr)) hr = points->FindConnectionPoint(DIID__ISmtpMailEvents, point.Receive());
    if (SUCCEEDED(hr)) hr = point->Advise(&sink, cookie);
    if (FAILED(hr)) *cookie = 0;
}

STDMETHODIMP ActivationPart::SetContentExtent(LPSIZEL size) {
    return object_.SetExtent(DVASPECT_CONTENT, size);
}

STDMETHODIMP ActivationPart::GetContentExtent(LPSIZEL size) {
    return object_.GetExtent(DVASPECT_CONTENT, size);
}

STDMETHODIMP ActivationPart::GetClassInfo(ITypeInfo** info) {
    return info ? GetOwnTypeInfo(CLSID_SmtpMail, info) : E_POINTER;
}

STDMETHODIMP ActivationPart::GetGUID(DWORD kind, GUID* guid) {
    if (!guid) return E_POINTER;
    const bool known = kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID;
    *guid = known ? DIID__ISmtpMailEvents : GUID_NULL;
    return known ? S_OK : E_INVALIDARG;
}

}  // namespace quorvane
