#include "component/event_forwarder.h"

#include <utility>

#include "Quorvane.h"
#include "automation/counted.h"

namespace quorvane {
namespace {

class EventForwarder final : public Counted<AtomicCount, IDispatch> {
public:
    explicit EventForwarder(ComPtr<IDispatch> events) : events_(std::move(events)) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
        if (!out) return E_POINTER;
        const bool own =
            iid == IID_IUnknown || iid == IID_IDispatch || iid == DIID__ISmtpMailEvents;
        *out = own ? static_cast<IDispatch*>(this) : nullptr;
        if (own) AddRef();
        return own ? S_OK : E_NOINTERFACE;
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
    const ComPtr<IDispatch> events_;
};

}  // namespace

ComPtr<IDispatch> ForwardEvents(ComPtr<IDispatch> events) {
    return ComPtr<IDispatch>(new EventForwarder(std::move(events)));
}

}  // namespace quorvane
