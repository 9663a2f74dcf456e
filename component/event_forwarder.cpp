#include "component/event_forwarder.h"

#include <utility>

#include "Quorvane.h"
#include "automation/counted.h"

namespace quorvane {
namespace {

class EventForwarder final : public Counted<AtomicCount, IDispatch> {
public:
    EventForwarder(ComPtr<IUnknown> sink, ComPtr<IDispatch> events)
        : sink_(std::move(sink)), events_(std::move(events)) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        if (iid != IID_IUnknown && iid != IID_IDispatch && iid != DIID__ISmtpMailEvents) {
            return sink_->QueryInterface(iid, out);
        }
        *out = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return events_->GetTypeInfoCount(count); }
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
        return events_->GetTypeInfo(index, locale, info);
    }
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                               DISPID* ids) override {
        return events_->GetIDsOfNames(iid, names, count, locale, ids);
    }
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments,
                        VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
        return events_->Invoke(id, iid, locale, flags, arguments, result, exception, badArgument);
    }

private:
    const ComPtr<IUnknown> sink_;
    const ComPtr<IDispatch> events_;
};

}  // namespace

ComPtr<IDispatch> ForwardEvents(ComPtr<IUnknown> sink, ComPtr<IDispatch> events) {
    return ComPtr<IDispatch>(new EventForwarder(std::move(sink), std::move(events)));
}

}  // namespace quorvane
