#include "tests/scripts/host/event_sink.h"

#include <ocidl.h>

#include <atomic>
#include <utility>

namespace scripthost {
namespace {

using quorvane::BstrHolder;
using quorvane::ComPtr;

// The description of the events, out of the type library that describes the object.
HRESULT Describe(IDispatch& object, REFIID events, ComPtr<ITypeInfo>& description) {
    ComPtr<ITypeInfo> own;
    ComPtr<ITypeLib> library;
    UINT index = 0;
    HRESULT hr = object.GetTypeInfo(0, LOCALE_USER_DEFAULT, own.Receive());
    if (SUCCEEDED(hr)) hr = own->GetContainingTypeLib(library.Receive(), &index);
    if (SUCCEEDED(hr)) hr = library->GetTypeInfoOfGuid(events, description.Receive());
    return hr;
}

class EventSink final : public IDispatch {
public:
    EventSink(REFIID events, ComPtr<ITypeInfo> description, std::wstring prefix, Globals globals)
        : events_(events),
          description_(std::move(description)),
          prefix_(std::move(prefix)),
          globals_(std::move(globals)) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == events_;
        *out = known ? static_cast<IDispatch*>(this) : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID event, REFIID, LCID locale, WORD, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
        BstrHolder name;
        UINT names = 0;
        const HRESULT hr = description_->GetNames(event, name.Receive(), 1, &names);
        if (FAILED(hr) || names == 0) return DISP_E_MEMBERNOTFOUND;
        const ComPtr<IDispatch> globals = globals_();
        std::wstring function = prefix_ + name.Get();
        LPOLESTR functionName = function.data();
        DISPID id = DISPID_UNKNOWN;
        if (!globals || FAILED(globals->GetIDsOfNames(IID_NULL, &functionName, 1, locale, &id))) {
            return S_OK;  // the script doesn't listen to this one
        }
        return globals->Invoke(id, IID_NULL, locale, DISPATCH_METHOD, parameters, result, exception,
                               badArgument);
    }

private:
    ~EventSink() = default;

    const IID events_;
    const ComPtr<ITypeInfo> description_;
    const std::wstring prefix_;
    const Globals globals_;
    std::atomic<ULONG> references_{0};
};

}  // namespace

HRESULT ConnectEvents(IDispatch& object, const std::wstring& prefix, const Globals& globals) {
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IEnumConnectionPoints> points;
    ComPtr<IConnectionPoint> point;
    ComPtr<ITypeInfo> description;
    IID events{};
    HRESULT hr = object.QueryInterface(IID_IConnectionPointContainer, container.ReceiveVoid());
    if (SUCCEEDED(hr)) hr = container->EnumConnectionPoints(points.Receive());
    if (SUCCEEDED(hr)) hr = points->Next(1, point.Receive(), nullptr) == S_OK ? S_OK : E_FAIL;
    if (SUCCEEDED(hr)) hr = point->GetConnectionInterface(&events);
    if (SUCCEEDED(hr)) hr = Describe(object, events, description);
    if (FAILED(hr)) return hr;
    const ComPtr<EventSink> sink(new EventSink(events, std::move(description), prefix, globals));
    DWORD cookie = 0;
    return point->Advise(sink.Get(), &cookie);
}

}  // namespace scripthost
